// Readers of the international settings, internal to the library: the
// registry first, the system profile's section as the fallback.
#pragma once
#include "qziso32.h"

// Key path under the current user, profile section, value name, default,
// buffer, size, flag. Returns bytes or characters placed; 0 for nothing.
DWORD GetIntlProfileString(const char *keyPath, const char *section, const char *valueName,
                           const char *defaultText, char *buffer, DWORD bufferSize, BOOL flag);
// Key path, profile section, value name, default, flag. Returns the number.
LONG GetIntlProfileInt(const char *keyPath, const char *section, const char *valueName,
                       LONG defaultValue, BOOL flag);

// Opens (creating) `keyPath` under `root`; `created` tells whether it is new.
HKEY OpenSettingsKey(HKEY root, const char *keyPath, REGSAM access, bool *created);
// Reads a registry string or double word value as the profile readers do.
// Returns false when the value is missing or empty.
bool ReadProfileNumber(HKEY key, const char *valueName, LONG *number);
// Reads a text value cut at `bufferSize` bytes; returns the size, 0 if missing.
DWORD ReadProfileText(HKEY key, const char *valueName, char *buffer, DWORD bufferSize);

extern const REGSAM kSettingsReadAccess;   // 0x20019
extern const REGSAM kSettingsWriteAccess;  // 0x20006
