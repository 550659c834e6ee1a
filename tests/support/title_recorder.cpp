#include "title_recorder.h"

static const char kRecorderProp[] = "QzTitleRecorder";

TitleRecorder::TitleRecorder(const char *initialTitle)
{
    window_ = CreateWindowExA(0, "STATIC", initialTitle, WS_OVERLAPPEDWINDOW, 0, 0, 200, 100, nullptr,
                              nullptr, GetModuleHandleA(nullptr), nullptr);
    SetPropA(window_, kRecorderProp, this);
    original_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&TitleRecorder::Proc)));
}

TitleRecorder::~TitleRecorder()
{
    SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original_));
    RemovePropA(window_, kRecorderProp);
    DestroyWindow(window_);
}

LRESULT CALLBACK TitleRecorder::Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *self = static_cast<TitleRecorder *>(GetPropA(window, kRecorderProp));
    LRESULT result = CallWindowProcA(self->original_, window, message, wParam, lParam);
    if (message == WM_SETTEXT) {
        std::string title = lParam ? reinterpret_cast<const char *>(lParam) : "";
        self->titles_.push_back({GetTickCount(), title});
        if (self->handler_)
            self->handler_(title);
    }
    return result;
}

std::string TitleRecorder::Current() const
{
    char text[512] = {};
    GetWindowTextA(window_, text, sizeof text);
    return text;
}

bool TitleRecorder::PumpUntil(const std::function<bool()> &done, DWORD timeoutMs)
{
    DWORD start = GetTickCount();
    for (;;) {
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&msg);
        if (done())
            return true;
        if (GetTickCount() - start >= timeoutMs)
            return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    }
}

void TitleRecorder::Pump(DWORD ms)
{
    PumpUntil([] { return false; }, ms);
}

bool TitleRecorder::Saw(const std::string &title) const
{
    for (const TitleEvent &event : titles_)
        if (event.title == title)
            return true;
    return false;
}
