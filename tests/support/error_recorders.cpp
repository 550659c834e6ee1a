#include "error_recorders.h"

static std::string s_kinds;
static int s_answer = IDOK;
static std::vector<PresentedBox> s_boxes;
static std::vector<CallbackCall> s_calls;
static std::function<LONG(HWND, ErrorContext *)> s_action;
static bool s_swap;

void SetPresenterArguments(const std::string &kinds) { s_kinds = kinds; }
void SetPresenterAnswer(int answer) { s_answer = answer; }
std::vector<PresentedBox> &PresentedBoxes() { return s_boxes; }
std::vector<CallbackCall> &CallbackCalls() { return s_calls; }
void SetCallbackAction(std::function<LONG(HWND, ErrorContext *)> action) { s_action = std::move(action); }
void SetCallbackSwapsPresenter(bool swap) { s_swap = swap; }

int __cdecl RecordingPresenter(HWND window, HMODULE module, const char *caption, UINT messageId,
                               UINT flags, ...)
{
    PresentedBox box{window, module, caption ? caption : "(null)", messageId, flags, {}};
    va_list args;
    va_start(args, flags);
    for (char kind : s_kinds) {
        if (kind == 's') {
            const char *text = va_arg(args, const char *);
            box.args.push_back(text ? text : "(null)");
        } else {
            box.args.push_back(std::to_string(va_arg(args, ULONG_PTR) & 0xFFFFFFFFu));
        }
    }
    va_end(args);
    s_boxes.push_back(box);
    return s_answer;
}

template <typename To, typename From> static To FunctionCast(From function)
{
    return reinterpret_cast<To>(reinterpret_cast<void (*)()>(function));
}

static LONG WINAPI RecordingCallback(HWND window, ErrorContext *context)
{
    s_calls.push_back({window, context->errorCode, context->presenter});
    if (s_swap)
        context->presenter = FunctionCast<FARPROC>(&RecordingPresenter);
    return s_action ? s_action(window, context) : 0;
}

void InstallRecordingCallback()
{
    static bool installed = UIErrorRegisterCallback(0, RecordingCallback) != 0;
    (void)installed;
}

void ResetErrorRecorders()
{
    s_kinds.clear();
    s_answer = IDOK;
    s_boxes.clear();
    s_calls.clear();
    s_action = nullptr;
    s_swap = false;
}

ErrorContext *MakePendingError(DWORD code)
{
    OSErrorClearError();
    ErrorContext *ctx = OSErrorGetErrorInfo();
    ctx->errorCode = static_cast<ResultCode>(code);
    ctx->contextStringId = 0;
    ctx->contextModule = nullptr;
    ZeroMemory(ctx->itemText, sizeof ctx->itemText);
    ZeroMemory(ctx->detailText, sizeof ctx->detailText);
    ctx->detail1 = ctx->detail2 = ctx->itemValue = ctx->osError = 0;
    ctx->offerClose = 0;
    ctx->isPending = TRUE;
    return ctx;
}
