// The installation's registration record, "kel.ri" beside the library. The
// record is stored enciphered and this library does not decipher it: the
// reader only tells whether the record is there and can be opened, and hands
// back an empty text.
#include "qziso32.h"
#include "module_globals.h"

// Writes the record's path into `path` (MAX_PATH bytes); false when the
// library's own path does not leave room for the name.
static bool RegistrationRecordPath(char *path)
{
    const DWORD length = GetModuleFileNameA(g_module.hModule, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return false;
    DWORD folderEnd = length;
    while (folderEnd > 0 && path[folderEnd - 1] != '\\' && path[folderEnd - 1] != '/')
        --folderEnd;
    static const char kName[] = "kel.ri";
    if (folderEnd + sizeof kName > MAX_PATH)
        return false;
    CopyMemory(path + folderEnd, kName, sizeof kName);
    return true;
}

extern "C" BOOL WINAPI OSGetRegInfo(char *buffer, int bufferSize)
{
    if (buffer && bufferSize > 0)
        buffer[0] = '\0';
    char path[MAX_PATH];
    if (!RegistrationRecordPath(path)) {
        OSErrorSetErrorInfo(RV_BadPath, "kel.ri");
        return FALSE;
    }
    HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const DWORD cause = GetLastError();
        const bool absent = cause == ERROR_FILE_NOT_FOUND || cause == ERROR_PATH_NOT_FOUND;
        OSErrorSetErrorInfo(absent ? RV_NoFile : RV_ReadFailure, path);
        return FALSE;
    }
    CloseHandle(file);
    return TRUE;
}
