// The two readers of the international settings: the registry key first,
// and where it has nothing, the system profile's section.
#include "settings_internal.h"

DWORD GetIntlProfileString(const char *keyPath, const char *section, const char *valueName,
                           const char *defaultText, char *buffer, DWORD bufferSize, BOOL)
{
    HKEY key = OpenSettingsKey(HKEY_CURRENT_USER, keyPath, kSettingsReadAccess, nullptr);
    if (!key) {
        OSErrorSetErrorInfo(RV_ReadFailure, keyPath ? keyPath : "");
        return 0;
    }
    DWORD result = 0;
    if (buffer && bufferSize) {
        result = ReadProfileText(key, valueName, buffer, bufferSize);
        if (!result)
            result = GetProfileStringA(section, valueName, defaultText ? defaultText : "", buffer,
                                       bufferSize);
    }
    RegCloseKey(key);
    // The test was written for a count with the terminator, while the profile
    // counts without it: a one-character answer reads as nothing.
    return result == 1 ? 0 : result;
}

LONG GetIntlProfileInt(const char *keyPath, const char *section, const char *valueName,
                       LONG defaultValue, BOOL)
{
    bool created = false;
    HKEY key = OpenSettingsKey(HKEY_CURRENT_USER, keyPath, kSettingsReadAccess, &created);
    if (!key) {
        OSErrorSetErrorInfo(RV_ReadFailure, keyPath ? keyPath : "");
        return 0;
    }
    LONG result = 0;
    if (created || !ReadProfileNumber(key, valueName, &result))
        result = static_cast<LONG>(GetProfileIntA(section, valueName, defaultValue));
    RegCloseKey(key);
    return result;
}
