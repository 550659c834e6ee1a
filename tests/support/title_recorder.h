// A main window whose title changes are logged: the window is subclassed and
// each WM_SETTEXT is kept with its tick. The window belongs to the thread
// that made the recorder, and so does the log.
#pragma once
#include <functional>
#include <string>
#include <vector>
#include <windows.h>

struct TitleEvent {
    DWORD tick;
    std::string title;
};

class TitleRecorder {
public:
    explicit TitleRecorder(const char *initialTitle = "");
    ~TitleRecorder();
    HWND Window() const { return window_; }
    const std::vector<TitleEvent> &Titles() const { return titles_; }
    void Clear() { titles_.clear(); }
    // Runs after each logged title, on the window's thread.
    void OnTitle(std::function<void(const std::string &)> handler) { handler_ = std::move(handler); }
    std::string Current() const;
    // Pumps this thread's messages until `done` holds or `timeoutMs` passes.
    bool PumpUntil(const std::function<bool()> &done, DWORD timeoutMs);
    // Pumps for `ms` milliseconds.
    void Pump(DWORD ms);
    // Whether `title` was logged since the last Clear.
    bool Saw(const std::string &title) const;

private:
    static LRESULT CALLBACK Proc(HWND, UINT, WPARAM, LPARAM);
    HWND window_ = nullptr;
    WNDPROC original_ = nullptr;
    std::vector<TitleEvent> titles_;
    std::function<void(const std::string &)> handler_;
};
