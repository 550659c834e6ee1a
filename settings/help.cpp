// Help: the language's help file, or the administrator's, opened through the
// system's help engine. An optional helper library is told first which file
// belongs to the application.
#include <cstring>
#include "../core/module_globals.h"

namespace {

const DWORD kRegisterOnly1 = static_cast<DWORD>(-1);
const DWORD kRegisterOnly2 = static_cast<DWORD>(-2);

using RegisterOwningFileProc = BOOL(WINAPI *)(const char *file, HWND window);

// Found once and kept for the process; looked for again while missing.
RegisterOwningFileProc s_registerOwningFile;

RegisterOwningFileProc FindHelperLibrary()
{
    if (!s_registerOwningFile) {
        HMODULE helper = GetModuleHandleA("tvhlpn31.dll");
        if (!helper)
            helper = LoadLibraryA("tvhlpn31.dll");
        if (helper)
            s_registerOwningFile =
                reinterpret_cast<RegisterOwningFileProc>(
                reinterpret_cast<void *>(GetProcAddress(helper, "RegisterOwningFile")));
    }
    return s_registerOwningFile;
}

// The library's own folder, then the file, then ">" and the help window's
// name. False, with RV_BufferTooSmall recorded, when it does not fit.
bool BuildHelpFileName(char (&file)[MAX_PATH], bool admin, const char *windowName)
{
    DWORD length = GetModuleFileNameA(g_module.hModule, file, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        OSErrorSetErrorInfo(RV_BufferTooSmall);
        return false;
    }
    char *slash = strrchr(file, '\\');
    char *name = slash ? slash + 1 : file;
    char tail[MAX_PATH] = {};
    if (admin) {
        lstrcpyA(tail, "admin\\KelAdmin.hlp");
    } else {
        char language[4] = {};
        OSGet2CharacterLanguageString(language);
        lstrcpyA(tail, "tv1c50");
        lstrcatA(tail, language);
        lstrcatA(tail, ".hlp");
    }
    size_t used = static_cast<size_t>(name - file) + strlen(tail);
    size_t windowLength = windowName ? strlen(windowName) + 1 : 0;
    if (used + windowLength >= MAX_PATH) {
        OSErrorSetErrorInfo(RV_BufferTooSmall);
        return false;
    }
    lstrcpyA(name, tail);
    if (windowName) {
        lstrcatA(name, ">");
        lstrcatA(name, windowName);
    }
    return true;
}

BOOL OpenHelpFile(HWND window, UINT command, DWORD data, const char *windowName, bool admin)
{
    char file[MAX_PATH] = {};
    if (!BuildHelpFileName(file, admin, windowName))
        return 0;
    if (RegisterOwningFileProc registerOwningFile = FindHelperLibrary())
        registerOwningFile(file, window);
    // These two only tell the helper library; no help opens.
    if (data == kRegisterOnly1 || data == kRegisterOnly2)
        return 1;
    return WinHelpA(window, file, command, data);
}

HWND TopLevelWindow(HWND window)
{
    while (HWND parent = GetParent(window))
        window = parent;
    return window;
}

}  // namespace

extern "C" BOOL WINAPI ResourceHelp(HWND window, UINT command, DWORD data, const char *windowName)
{
    return OpenHelpFile(window, command, data, windowName, false);
}

extern "C" BOOL WINAPI ResourceAdminHelp(HWND window, UINT command, DWORD data, const char *windowName)
{
    return OpenHelpFile(window, command, data, windowName, true);
}

extern "C" BOOL WINAPI OSHelp(HWND window)
{
    if (!window || !IsWindow(window)) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    // The window with the focus is asked first, then each parent in turn.
    HelpRequest request = {};
    LRESULT context = 0;
    for (HWND asked = window; asked && !context; asked = GetParent(asked))
        context = SendMessageA(asked, g_module.helpMessageId, 0, reinterpret_cast<LPARAM>(&request));
    HWND top = TopLevelWindow(window);

    char *windowName = nullptr;
    if (request.Instance && request.StringId) {
        windowName = LoadStringCopy(request.Instance, request.StringId);
        if (!windowName)
            return 0;
    }
    BOOL shown;
    if (context)
        shown = request.Admin
                    ? ResourceAdminHelp(top, HELP_CONTEXT, static_cast<DWORD>(context), windowName)
                    : ResourceHelp(top, HELP_CONTEXT, static_cast<DWORD>(context), windowName);
    else if (request.Admin)
        shown = ResourceAdminHelp(top, HELP_INDEX, 0, windowName);
    else
        shown = ResourceHelp(top, HELP_FINDER, 0, nullptr);
    if (windowName)
        LocalFree(windowName);
    if (!shown) {
        OSErrorSetErrorInfo(RV_UserError);
        return 0;
    }
    return 1;
}

#if !defined(_WIN64)
static_assert(sizeof(HelpRequest) == 16, "the help request is four 32-bit words");
#endif
