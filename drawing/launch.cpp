// Starts another program for the host. A program that is not where it
// should be is looked for with the user's help through the file dialog.
#include "qziso32.h"
#include "../core/module_globals.h"
#include <commdlg.h>
#include <shellapi.h>

namespace {

const int kPathSize = MAX_PATH;
const HINSTANCE kFirstSuccess = reinterpret_cast<HINSTANCE>(32);

// What ShellExecuteA answered, as a number: 32 and above is success.
DWORD LaunchResult(HINSTANCE result)
{
    return static_cast<DWORD>(reinterpret_cast<UINT_PTR>(result));
}

bool NotFound(DWORD result)
{
    return result == SE_ERR_FNF || result == SE_ERR_PNF;
}

// Asks the user where the program lies; 1 if a file was chosen into `path`.
BOOL LocateProgram(HWND window, char *path, const char *pattern)
{
    char *description = LoadStringCopy(g_module.hResourceLibrary, 30110);
    char *title = LoadStringCopy(g_module.hResourceLibrary, 27330);
    // The filter is a list of pairs: what the user reads, then the pattern.
    char filter[256] = {};
    int used = description ? lstrlenA(description) : 0;
    if (used > 200)
        used = 200;
    if (description)
        memcpy(filter, description, used);
    lstrcpynA(filter + used + 1, pattern, 50);

    OPENFILENAMEA dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = window;
    dialog.lpstrFilter = filter;
    dialog.lpstrFile = path;
    dialog.nMaxFile = kPathSize;
    dialog.lpstrTitle = title;
    dialog.Flags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
    BOOL chosen = GetOpenFileNameA(&dialog);
    if (!chosen) {
        DWORD error = CommDlgExtendedError();
        if (error)
            OSErrorSetErrorInfo(RV_CommDlgError,
                                static_cast<DWORD>(reinterpret_cast<UINT_PTR>(&GetOpenFileNameA)),
                                error);
    }
    if (title)
        LocalFree(title);
    if (description)
        LocalFree(description);
    return chosen ? 1 : 0;
}

// Cuts the arguments off a command: the text ends at the first blank, or,
// where a backslash follows that blank, at the first blank after the last
// backslash, so that a blank inside a folder name survives.
void CutArguments(char *command)
{
    char *blank = strchr(command, ' ');
    if (blank && strchr(blank, '\\'))
        blank = strchr(strrchr(command, '\\'), ' ');
    if (blank)
        *blank = 0;
}

void ReportLaunchFailure(HWND window, const char *path, DWORD result)
{
    OSErrorSetErrorInfo(RV_ExecuteError, path, result);
    UIHandleError(window);
}

} // namespace

extern "C" BOOL WINAPI TarvoLaunch(HWND window, const char *key, char *defaultPath, LONG show)
{
    char path[kPathSize] = {};
    const char *fallback = defaultPath ? defaultPath : "";
    if (!GetPrivateProfileStringA("Tarvo Applications", key, fallback, path, kPathSize, "TARVO.INI"))
        lstrcpynA(path, fallback, kPathSize);
    CutArguments(path);
    for (;;) {
        DWORD result = LaunchResult(ShellExecuteA(window, nullptr, path, nullptr, nullptr, show));
        // Every other failure passes in silence, as the application expects.
        if (result >= LaunchResult(kFirstSuccess) || !NotFound(result))
            return TRUE;
        if (LocateProgram(window, path, "*.EXE") != 1) {
            ReportLaunchFailure(window, path, result);
            return FALSE;
        }
    }
}

extern "C" BOOL WINAPI CustomLaunch(HWND window, char *path, LONG show, const char *parameters)
{
    char command[kPathSize] = {};
    lstrcpynA(command, path ? path : "", kPathSize);
    for (;;) {
        DWORD result =
            LaunchResult(ShellExecuteA(window, nullptr, command, parameters, nullptr, show));
        if (result >= LaunchResult(kFirstSuccess))
            return TRUE;
        // The user hears of every failure first, and is asked second.
        ReportLaunchFailure(window, command, result);
        if (!NotFound(result))
            return TRUE;
        if (LocateProgram(window, command, "*.EXE") != 1)
            return FALSE;
    }
}
