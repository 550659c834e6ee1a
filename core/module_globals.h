// Module-wide values that attach sets and every family reads.
#pragma once
#include "qziso32.h"

struct ModuleGlobals {
    HMODULE hModule;            // this library; the instance of all window classes
    HMODULE hResourceLibrary;   // the language's resource library
    LONG startedFlag;           // 1 once attach has finished
    char *settingsName;         // string 9: report name for settings failures
    char *appTitle;             // string 1: caption of message boxes
    char *memoryFailureText;    // string 10003: shown when a box cannot be
    UINT helpMessageId;         // registered "WM_KEL_HELP"
    LONG instanceCount;         // live clients
    char versionString[16];     // what NetDLLGetVersion copies out; never written
    char *string800;            // loaded at attach and kept
    char *string801;
    LONG telephonyLoaded;       // true while the telephony library is held
    HMODULE hTelephonyLibrary;
    OSVERSIONINFOA versionInfo; // filled by IsolateInstanceStart
};

extern ModuleGlobals g_module;

// Loads string `id` of `module` into a local block of exactly its size.
// Records RV_OutOfLocalMemory or RV_StringNonExistant and yields null.
char *LoadStringCopy(HMODULE module, UINT id);

// Fills `format` in with OSrvsprintf into `text` (room for `limit`
// characters and the terminator). When the filling writes nothing (memory
// short, an order it refuses) the box shows the format as it stands rather
// than whatever the buffer held before.
void FillInOrRaw(char *text, LONG limit, const char *format, va_list args);

// The error state's reset, run at the end of a successful attach.
void ErrorStateReset(HMODULE module);
