// The settings store's writers: a text value, a number, or the removal of a
// value, each under the current user's root. The key is created if needed.
#include "settings_internal.h"

// Opens the key for writing, applies `write` to it and closes it. Failures
// to open or to write are recorded as RV_WriteFailure with `reportName`.
template <typename Write>
static BOOL WriteSettingsValue(const char *keyPath, const char *reportName, Write write)
{
    HKEY key = OpenSettingsKey(HKEY_CURRENT_USER, keyPath, kSettingsWriteAccess, nullptr);
    if (!key) {
        OSErrorSetErrorInfo(RV_WriteFailure, reportName ? reportName : "");
        return 0;
    }
    LONG status = write(key);
    RegCloseKey(key);
    if (status != ERROR_SUCCESS) {
        OSErrorSetErrorInfo(RV_WriteFailure, reportName ? reportName : "");
        return 0;
    }
    return 1;
}

extern "C" BOOL WINAPI OSWriteProfileString(const char *keyPath, const char *valueName,
                                            const char *text, const char *reportName, BOOL)
{
    return WriteSettingsValue(keyPath, reportName, [&](HKEY key) {
        // A null text removes the value; removing a missing one fails.
        if (!text)
            return RegDeleteValueA(key, valueName);
        DWORD size = static_cast<DWORD>(lstrlenA(text)) + 1;
        return RegSetValueExA(key, valueName, 0, REG_SZ, reinterpret_cast<const BYTE *>(text),
                              size);
    });
}

extern "C" BOOL WINAPI OSWriteProfileInt(const char *keyPath, const char *valueName, LONG number,
                                         const char *reportName, BOOL)
{
    return WriteSettingsValue(keyPath, reportName, [&](HKEY key) {
        DWORD value = static_cast<DWORD>(number);
        return RegSetValueExA(key, valueName, 0, REG_DWORD, reinterpret_cast<const BYTE *>(&value),
                              sizeof value);
    });
}
