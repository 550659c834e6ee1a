// Error presentation: a pending error becomes a message box. The record is
// offered to the registered callback, copied, cleared, and its code mapped
// to a message of the resource library with its icon and arguments.
#include <cstring>
#include "error_map_table.h"
#include "../core/module_globals.h"

typedef LONG (WINAPI *VirtualFileToPathCallback)(LONG_PTR, VIRTUALFILE *, char *);

struct ErrorCallbackNode {
    ErrorCallbackNode *prev;
    ErrorCallbackNode *next;
    HANDLE thread;
    UIErrorCallback callback;
};

// The record keeps its function pointers untyped; void (*)() is the cast
// between function types that the compiler accepts as deliberate.
template <typename To, typename From> static To FunctionCast(From function)
{
    return reinterpret_cast<To>(reinterpret_cast<void (*)()>(function));
}

static char s_errorCaption[256];
static ErrorContext s_errorSnapshot;
static ErrorContext s_osErrorSnapshot;
static ErrorCallbackNode *s_callbackHead;

static int __cdecl UIErrorMessageBox(HWND window, HMODULE module, const char *caption, UINT messageId,
                                     UINT flags, ...)
{
    static char format[512];
    static char text[1024];
    Feedback_CleanupAll();
    if (LoadStringA(module, messageId, format, sizeof format) <= 0)
        lstrcpynA(format, g_module.memoryFailureText ? g_module.memoryFailureText : "", sizeof format);
    for (char *c = format; *c; ++c)
        if (*c == '~') {
            *c = ' ';
            break;
        }
    va_list args;
    va_start(args, flags);
    FillInOrRaw(text, sizeof text - 1, format, args);
    va_end(args);
    UINT firstFlags = flags;
    if (!window) {
        firstFlags |= MB_TASKMODAL;
    } else if (OSErrorGetErrorInfo()->quietInBackground) {
        HWND active = GetActiveWindow();
        bool behind = IsIconic(window) || !active ||
                      GetAncestor(window, GA_ROOT) != GetAncestor(active, GA_ROOT);
        if (behind)
            return IDCANCEL;
    }
    if (int answer = MessageBoxA(window, text, caption, firstFlags))
        return answer;
    if (int answer = MessageBoxA(window, text, caption, flags | MB_SYSTEMMODAL))
        return answer;
    MessageBoxA(window, g_module.memoryFailureText, caption, MB_SYSTEMMODAL | MB_ICONHAND);
    return IDCANCEL;
}

static ULONG_PTR ArgumentValue(ErrorArg arg, const ErrorContext &snap)
{
    switch (arg) {
    case EA_ItemText: return reinterpret_cast<ULONG_PTR>(snap.itemText);
    case EA_DetailText: return reinterpret_cast<ULONG_PTR>(snap.detailText);
    case EA_CodeName: return reinterpret_cast<ULONG_PTR>(OSErrorGetRVErrorString(snap.errorCode));
    case EA_OsErrorText: return reinterpret_cast<ULONG_PTR>(OSErrorGetOSErrorString(snap.osError));
    case EA_Detail1: return snap.detail1;
    case EA_ItemValue: return snap.itemValue;
    case EA_None: break;
    }
    return 0;
}

// Hands one row to the presenter, with the caption of step 4 unless the row
// names the application's title. `flags` are the retry flags.
static int Present(UIErrorPresenter presenter, HWND window, const ErrorMapRow &row, UINT flags,
                   const ErrorContext &snap, DWORD messageId)
{
    const char *caption = row.appTitleCaption ? g_module.appTitle : s_errorCaption;
    HMODULE module = g_module.hResourceLibrary;
    flags |= row.icon;
    ULONG_PTR first = ArgumentValue(row.args[0], snap);
    ULONG_PTR second = ArgumentValue(row.args[1], snap);
    if (row.args[0] == EA_None)
        return presenter(window, module, caption, messageId, flags);
    if (row.args[1] == EA_None)
        return presenter(window, module, caption, messageId, flags, first);
    return presenter(window, module, caption, messageId, flags, first, second);
}

static const ErrorMapRow &SpecialMessage(DWORD messageId)
{
    for (size_t i = 0; i < g_specialMessageCount; ++i)
        if (g_specialMessages[i].messageId == messageId)
            return g_specialMessages[i];
    return g_errorDefaultRow;
}

static void FillItemFromVirtualFile(ErrorContext &snap)
{
    ErrorContext *live = OSErrorGetErrorInfo();
    auto callback = FunctionCast<VirtualFileToPathCallback>(live->vfToPfCallback);
    if (callback && !callback(0, live->virtualFileCopy, snap.itemText))
        OSErrorClearError();
}

static void ChooseCaption(HWND window, DWORD useWindowCaption, const ErrorContext &ctx)
{
    HMODULE resources = g_module.hResourceLibrary;
    if (useWindowCaption && window && IsWindow(window)) {
        GetWindowTextA(window, s_errorCaption, sizeof s_errorCaption);
        if (strstr(s_errorCaption, "<SBA>"))
            LoadStringA(resources, 13000, s_errorCaption, sizeof s_errorCaption);
    } else {
        s_errorCaption[0] = 0;
        if (ctx.contextStringId)
            LoadStringA(ctx.contextModule, ctx.contextStringId, s_errorCaption, sizeof s_errorCaption);
        if (!s_errorCaption[0])
            LoadStringA(resources, 13000, s_errorCaption, sizeof s_errorCaption);
    }
    if (!s_errorCaption[0] && g_module.appTitle)
        lstrcpynA(s_errorCaption, g_module.appTitle, sizeof s_errorCaption);
}

static int PresentExecuteError(UIErrorPresenter presenter, HWND window, UINT flags)
{
    ErrorContext &snap = s_errorSnapshot;
    DWORD messageId = MSG_EXECUTE_BASE + snap.itemValue;
    // A launch failure without a text of its own shows the general one; the
    // errors of the failed load are dropped, as presentation is running.
    if (char *text = LoadStringCopy(g_module.hResourceLibrary, messageId))
        LocalFree(text);
    else
        snap.itemValue = 0;
    return Present(presenter, window, SpecialMessage(MSG_EXECUTE_BASE), flags, snap,
                   MSG_EXECUTE_BASE + snap.itemValue);
}

static int PresentOsError(UIErrorPresenter presenter, HWND window, UINT flags)
{
    ErrorContext &snap = s_osErrorSnapshot;
    snap = *OSErrorGetErrorInfo();
    OSErrorClearError();
    if (!snap.itemText[0])
        FillItemFromVirtualFile(snap);
    DWORD messageId = snap.osError == 4 ? 11009 : snap.osError == 32 ? 10104 : 11010;
    return Present(presenter, window, SpecialMessage(messageId), flags, snap, messageId);
}

static int PresentQuireApi(UIErrorPresenter presenter, HWND window, UINT flags)
{
    const ErrorContext &snap = s_errorSnapshot;
    if (!snap.offerClose)
        return Present(presenter, window, SpecialMessage(52007), flags, snap, 52007);
    // The question asks whatever the retry flags say.
    int answer = Present(presenter, window, SpecialMessage(52053), 0, snap, 52053);
    if (answer == IDYES && window) {
        HWND top = window;
        while (HWND parent = GetParent(top))
            top = parent;
        PostMessageA(top, WM_SYSCOMMAND, SC_CLOSE, 0);
    }
    return answer;
}

// Code 94: a mouse capture is let go before a message of the caller's choice.
static void PresentReleasedCapture()
{
    if (HWND focus = GetFocus()) {
        PostMessageA(focus, WM_LBUTTONUP, 0, -1);
        InvalidateRect(focus, nullptr, TRUE);
    }
    BYTE keys[256];
    GetKeyboardState(keys);
    keys[VK_LBUTTON] &= 0x7F;
    SetKeyboardState(keys);
    GetKeyboardState(keys);
    SetFocus(nullptr);
    ErrorContext *live = OSErrorGetErrorInfo();
    OSMessage(nullptr, g_module.hResourceLibrary, s_errorCaption, live->itemValue, MB_ICONASTERISK);
    SetFocus(reinterpret_cast<HWND>(static_cast<ULONG_PTR>(live->detail2)));
}

static int PresentSnapshot(UIErrorPresenter presenter, HWND window, UINT flags)
{
    const ErrorContext &snap = s_errorSnapshot;
    DWORD code = snap.errorCode;
    switch (code) {
    case RV_Failure:
        if (!GetProfileIntA("Defensive", "ShowUIRVFailure", 0))
            return IDCANCEL;
        return Present(presenter, window, SpecialMessage(11001), flags, snap, 11001);
    case RV_ExecuteError: return PresentExecuteError(presenter, window, flags);
    case RV_OSError: return PresentOsError(presenter, window, flags);
    case RV_QuireAPI: return PresentQuireApi(presenter, window, flags);
    case ERROR_CODE_94: PresentReleasedCapture(); return IDCANCEL;
    default: break;
    }
    if (code > RV_LastCode)
        return Present(presenter, window, g_errorDefaultRow, flags, snap, g_errorDefaultRow.messageId);
    const ErrorMapRow *row = FindErrorMapRow(code);
    if (!row)
        return IDCANCEL;  // a code that shows nothing
    return Present(presenter, window, *row, flags, snap, row->messageId);
}

static int UIErrorPresent(HWND window, DWORD useWindowCaption, UIErrorPresenter presenter, bool retry)
{
    ErrorContext *ctx = OSErrorGetErrorInfo();
    if (ctx->isPresenting)
        return IDCANCEL;
    ctx->isPresenting = TRUE;
    UINT flags = retry ? MB_RETRYCANCEL : 0;
    int result = IDCANCEL;
    if (ctx->isPending) {
        ctx->isPending = FALSE;
        ChooseCaption(window, useWindowCaption, *ctx);
        if (window && !IsWindow(window))
            window = nullptr;
        bool dealtWith = false;
        if (s_callbackHead) {
            ctx->presenter = FunctionCast<FARPROC>(presenter);
            dealtWith = s_callbackHead->callback(window, ctx) != 0;
            presenter = FunctionCast<UIErrorPresenter>(ctx->presenter);
        }
        if (!dealtWith) {
            s_errorSnapshot = *ctx;
            OSErrorClearError();
            VIRTUALFILE *file = ctx->virtualFileCopy;
            if (!s_errorSnapshot.itemText[0] && file && file->data &&
                *static_cast<unsigned char *>(file->data) == VIRTUALFILE_MARKER)
                FillItemFromVirtualFile(s_errorSnapshot);
            // A callback may take the presenter away; nothing is shown then.
            if (presenter)
                result = PresentSnapshot(presenter, window, flags);
        }
    }
    ctx->isPresenting = FALSE;
    OSErrorClearError();
    return result;
}

extern "C" int WINAPI UIHandleErrorFunc(HWND window, DWORD useWindowCaption, UIErrorPresenter presenter)
{
    return UIErrorPresent(window, useWindowCaption, presenter, false);
}

extern "C" int WINAPI UIHandleErrorEx(HWND window, DWORD useWindowCaption)
{
    return UIErrorPresent(window, useWindowCaption, UIErrorMessageBox, false);
}

extern "C" int WINAPI UIHandleError(HWND window)
{
    return UIHandleErrorEx(window, 0);
}

extern "C" int WINAPI UIHandleErrorRetry(HWND window)
{
    return UIErrorPresent(window, 1, UIErrorMessageBox, true);
}

extern "C" BOOL WINAPI UIErrorRegisterCallback(DWORD, UIErrorCallback callback)
{
    if (!callback) {
        OSErrorSetErrorInfo(RV_BadParms, "UIErrorRegisterCallback");
        return 0;
    }
    ErrorCallbackNode *node = static_cast<ErrorCallbackNode *>(LocalAlloc(LPTR, sizeof(ErrorCallbackNode)));
    if (!node) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(sizeof(ErrorCallbackNode)));
        return 0;
    }
    if (!s_callbackHead) {
        s_callbackHead = node;
    } else {
        ErrorCallbackNode *tail = s_callbackHead;
        while (tail->next)
            tail = tail->next;
        tail->next = node;
        node->prev = tail;
    }
    node->thread = GetCurrentThread();
    node->callback = callback;
    return 1;
}

extern "C" BOOL WINAPI UIErrorUnRegisterCallback(DWORD)
{
    return 1;
}
