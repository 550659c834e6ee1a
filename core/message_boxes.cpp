// Message boxes whose text comes from a resource, filled in with arguments.
// When the system is too short of memory for an ordinary box, a system-modal
// one is tried, and at last the fixed out-of-memory text.
#include "module_globals.h"

namespace {

const LONG kFormatSize = 512;
const LONG kTextLimit = 1024;
const UINT kMemoryFailureStyle = MB_SYSTEMMODAL | MB_ICONHAND;
const DWORD kBoxLanguage = 1024;    // the user's default language

// Each function keeps buffers of its own: a box of one may be up while the
// other runs.
struct BoxBuffers {
    char format[kFormatSize];
    char text[kTextLimit + 1];
};

LONG s_disabled;
BoxBuffers s_messageBuffers;
BoxBuffers s_helpBuffers;
// The help records of the boxes that are up, innermost first. A box hands
// its context on as a 32-bit help id, which cannot carry a pointer in the
// 64-bit build; so each box gets a number of its own as its id, and the
// callback finds the record by the id of the box that asked. A box up below
// another one (its owner not disabled by it) still answers with its own.
struct ShownHelp {
    DWORD id;
    const MessageHelpRecord *help;
    ShownHelp *outer;
};
ShownHelp *s_shownHelp;
DWORD s_lastHelpId;

// A parent window that is gone shows no box: the box would fail with -1.
bool ParentIsGone(HWND parent, const char *function)
{
    if (!parent || IsWindow(parent))
        return false;
    OSErrorSetErrorInfo(RV_BadParms, function);
    return true;
}

// Loads and fills in the text; false, with the cause recorded, if the string
// is missing.
bool PrepareText(BoxBuffers &buffers, HMODULE module, UINT stringId, va_list args)
{
    if (LoadStringA(module, stringId, buffers.format, kFormatSize) <= 0) {
        OSErrorSetErrorInfo(RV_StringNonExistant, stringId);
        return false;
    }
    FillInOrRaw(buffers.text, kTextLimit, buffers.format, args);
    return true;
}

using ShowBox = int (*)(HWND parent, const char *text, const char *caption, UINT style,
                        const MessageHelpRecord *help);

int ShowPlainBox(HWND parent, const char *text, const char *caption, UINT style,
                 const MessageHelpRecord *)
{
    return MessageBoxA(parent, text, caption, style);
}

// Asks for the help that the box's record names, in the window that asked.
void CALLBACK MessageHelpCallback(LPHELPINFO info)
{
    if (!info)
        return;
    const MessageHelpRecord *help = nullptr;
    for (const ShownHelp *shown = s_shownHelp; shown; shown = shown->outer)
        if (shown->id == static_cast<DWORD>(info->dwContextId))
            help = shown->help;
    if (!help)
        return;
    char *windowName = nullptr;
    if (help->module && help->stringId) {
        windowName = LoadStringCopy(help->module, help->stringId);
        if (!windowName)
            return;
    }
    HWND window = static_cast<HWND>(info->hItemHandle);
    BOOL shown = help->admin ? ResourceAdminHelp(window, HELP_CONTEXT, help->topic, windowName)
                             : ResourceHelp(window, HELP_CONTEXT, help->topic, windowName);
    if (!shown)
        OSErrorSetErrorInfo(RV_UserError);
    if (windowName)
        LocalFree(windowName);
}

int ShowHelpBox(HWND parent, const char *text, const char *caption, UINT style,
                const MessageHelpRecord *help)
{
    MSGBOXPARAMSA params = {};
    params.cbSize = sizeof params;
    params.hwndOwner = parent;
    params.lpszText = text;
    params.lpszCaption = caption;
    params.dwStyle = style;
    ShownHelp shown = {++s_lastHelpId ? s_lastHelpId : ++s_lastHelpId, help, s_shownHelp};
    params.dwContextHelpId = shown.id;
    params.lpfnMsgBoxCallback = MessageHelpCallback;
    params.dwLanguageId = kBoxLanguage;
    s_shownHelp = &shown;
    int answer = MessageBoxIndirectA(&params);
    s_shownHelp = shown.outer;
    return answer;
}

// Beeps and shows the box: task-modal without a parent, then system-modal,
// then the out-of-memory text, which answers 2.
int ShowWithFallbacks(ShowBox show, HWND parent, const char *text, const char *caption, UINT style,
                      const MessageHelpRecord *help)
{
    MessageBeep(style);
    int answer = show(parent, text, caption, parent ? style : style | MB_TASKMODAL, help);
    if (answer == 0)
        answer = show(parent, text, caption, style | MB_SYSTEMMODAL, help);
    if (answer == 0) {
        show(parent, g_module.memoryFailureText, caption, kMemoryFailureStyle, nullptr);
        answer = IDCANCEL;
    }
    return answer;
}

// The steps both functions share: the switch, the parent, the feedback
// display stopped, the text loaded and filled in, the box and its fallbacks.
int ShowMessage(const char *function, BoxBuffers &buffers, ShowBox show,
                const MessageHelpRecord *help, HWND parent, HMODULE module, const char *caption,
                UINT stringId, UINT style, va_list args)
{
    if (s_disabled || ParentIsGone(parent, function))
        return 0;
    Feedback_CleanupAll();
    if (!PrepareText(buffers, module, stringId, args))
        return 0;
    if (help)
        style |= MB_HELP;
    return ShowWithFallbacks(show, parent, buffers.text, caption, style, help);
}

}  // namespace

void FillInOrRaw(char *text, LONG limit, const char *format, va_list args)
{
    // A filling that ran ends the text with its terminator; one that was
    // refused returns 0 and leaves the buffer as it was.
    text[0] = 1;
    if (OSrvsprintf(text, limit, format, args) == 0 && text[0] != 0)
        lstrcpynA(text, format, limit + 1);
}

extern "C" int __cdecl OSMessage(HWND parent, HMODULE module, const char *caption, UINT stringId,
                                 UINT style, ...)
{
    va_list args;
    va_start(args, style);
    int answer = ShowMessage(__func__, s_messageBuffers, ShowPlainBox, nullptr, parent, module,
                             caption, stringId, style, args);
    va_end(args);
    return answer;
}

extern "C" int __cdecl OSMessageWithHelp(const MessageHelpRecord *help, HWND parent, HMODULE module,
                                         const char *caption, UINT stringId, UINT style, ...)
{
    va_list args;
    va_start(args, style);
    int answer = ShowMessage(__func__, s_helpBuffers, ShowHelpBox, help, parent, module, caption,
                             stringId, style, args);
    va_end(args);
    return answer;
}

extern "C" void WINAPI OSMessageDisable(void)
{
    s_disabled = 1;
}

#if !defined(_WIN64)
static_assert(sizeof(MessageHelpRecord) == 16, "the help record is four 32-bit words");
#endif
