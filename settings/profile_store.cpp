// The settings store: registry values under the current user's root (or a
// root the caller names). Each call opens the key, works, and closes it.
// Opening creates a key that does not exist yet; the readers rely on that.
#include "settings_internal.h"

const REGSAM kSettingsReadAccess = 0x20019;   // KEY_READ
const REGSAM kSettingsWriteAccess = 0x20006;  // KEY_WRITE
// Values up to this size are read on the stack.
const DWORD kProfileStackBytes = 4096;

// Opens (creating) `keyPath` under `root`; `created` tells whether it is new.
HKEY OpenSettingsKey(HKEY root, const char *keyPath, REGSAM access, bool *created)
{
    HKEY key = nullptr;
    DWORD disposition = 0;
    if (!keyPath || RegCreateKeyExA(root, keyPath, 0, const_cast<char *>(""), 0, access, nullptr,
                                    &key, &disposition) != ERROR_SUCCESS)
        return nullptr;
    if (created)
        *created = disposition == REG_CREATED_NEW_KEY;
    return key;
}

// Lists the value names one after another, each with its terminator. The
// room shrinks by each name's length without its terminator; the limit given
// to the system is never more than what is left of the buffer.
static DWORD ListValueNames(HKEY key, char *buffer, DWORD bufferSize)
{
    DWORD count = 0;
    DWORD room = bufferSize;
    DWORD used = 0;
    for (DWORD index = 0; room > 0 && used < bufferSize; ++index) {
        DWORD length = room < bufferSize - used ? room : bufferSize - used;
        if (RegEnumValueA(key, index, buffer + used, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
            break;
        room -= length;
        count += length + 1;
        used += length + 1;
    }
    return count;
}

DWORD ReadProfileText(HKEY key, const char *valueName, char *buffer, DWORD bufferSize)
{
    DWORD size = 0;
    if (RegQueryValueExA(key, valueName, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS || !size)
        return 0;
    if (size <= bufferSize) {
        if (RegQueryValueExA(key, valueName, nullptr, nullptr, reinterpret_cast<BYTE *>(buffer),
                             &size) != ERROR_SUCCESS)
            return 0;
        return size;
    }
    // A value longer than the buffer: its first bytes, with no terminator.
    // The system reads only whole values, so it is read whole into a block
    // on the stack, which a shortage of memory cannot refuse; only a value
    // longer than that block needs one from the heap.
    BYTE local[kProfileStackBytes];
    BYTE *all = size <= sizeof local ? local : static_cast<BYTE *>(LocalAlloc(LPTR, size));
    if (!all) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, size);
        return 0;
    }
    DWORD result = 0;
    if (RegQueryValueExA(key, valueName, nullptr, nullptr, all, &size) == ERROR_SUCCESS) {
        CopyMemory(buffer, all, bufferSize);
        result = bufferSize;
    }
    if (all != local)
        LocalFree(all);
    return result;
}

bool ReadProfileNumber(HKEY key, const char *valueName, LONG *number)
{
    DWORD type = 0, size = 0;
    if (RegQueryValueExA(key, valueName, nullptr, &type, nullptr, &size) != ERROR_SUCCESS || !size)
        return false;
    DWORD value = 0;
    if (type == REG_SZ) {
        // A stored text must fit in 12 bytes; a longer one reads as 0.
        char text[13] = {};
        DWORD textSize = 12;
        if (RegQueryValueExA(key, valueName, nullptr, nullptr, reinterpret_cast<BYTE *>(text),
                             &textSize) == ERROR_SUCCESS)
            AtoI(text, &value);
    } else {
        // Raw bytes of any other type, four at the most, read on the stack;
        // a value longer than that block reads as 0, as a failed read does.
        BYTE all[kProfileStackBytes];
        if (size <= sizeof all &&
            RegQueryValueExA(key, valueName, nullptr, nullptr, all, &size) == ERROR_SUCCESS)
            CopyMemory(&value, all, size < sizeof value ? size : sizeof value);
    }
    *number = static_cast<LONG>(value);
    return true;
}

extern "C" DWORD WINAPI OSGetProfileStringPassID(const char *keyPath, const char *valueName,
                                                const char *defaultText, char *buffer,
                                                DWORD bufferSize, const char *reportName, BOOL,
                                                HKEY root)
{
    HKEY key = OpenSettingsKey(root, keyPath, kSettingsReadAccess, nullptr);
    if (!key) {
        OSErrorSetErrorInfo(RV_ReadFailure, reportName ? reportName : "");
        return 0;
    }
    DWORD result = 0;
    if (!buffer || !bufferSize) {
        result = 0;
    } else if (!valueName) {
        result = ListValueNames(key, buffer, bufferSize);
    } else {
        DWORD size = ReadProfileText(key, valueName, buffer, bufferSize);
        if (size) {
            result = size;
        } else {
            const char *text = defaultText ? defaultText : "";
            DWORD count = static_cast<DWORD>(lstrlenA(text)) + 1;
            if (count > bufferSize)
                count = bufferSize;
            CopyMemory(buffer, text, count);
            result = count == 1 ? 0 : count;
        }
    }
    RegCloseKey(key);
    return result;
}

extern "C" DWORD WINAPI OSGetProfileString(const char *keyPath, const char *valueName,
                                          const char *defaultText, char *buffer, DWORD bufferSize,
                                          const char *reportName, BOOL flag)
{
    return OSGetProfileStringPassID(keyPath, valueName, defaultText, buffer, bufferSize, reportName,
                                    flag, HKEY_CURRENT_USER);
}

extern "C" LONG WINAPI OSGetProfileInt(const char *keyPath, const char *valueName, LONG defaultValue,
                                       const char *reportName, BOOL)
{
    bool created = false;
    HKEY key = OpenSettingsKey(HKEY_CURRENT_USER, keyPath, kSettingsReadAccess, &created);
    if (!key) {
        OSErrorSetErrorInfo(RV_ReadFailure, reportName ? reportName : "");
        return 0;
    }
    LONG result = defaultValue;
    if (!created)
        ReadProfileNumber(key, valueName, &result);
    RegCloseKey(key);
    return result;
}
