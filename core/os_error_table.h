// The built-in names of operating system errors, for numbers the system
// itself cannot describe.
#pragma once
#include <cstddef>
#include <windows.h>

struct OsErrorRow {
    DWORD number;             // masked with 0xFFFFFFF
    const char *name;
    const char *description;  // one line of English
};

extern const OsErrorRow g_osErrors[];
extern const size_t g_osErrorCount;
