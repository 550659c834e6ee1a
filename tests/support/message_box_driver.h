// Answers the message boxes that the library shows, so tests can say
// "expect a box with this text and these buttons, answer Retry" in one line:
//
//     MessageBoxDriver boxes;
//     boxes.Expect("Disk full", MB_RETRYCANCEL | MB_ICONHAND, IDRETRY);
//     EXPECT_EQ(IDRETRY, UIHandleErrorRetry(window));
//
// A per-thread WH_CBT hook, installed after any hook of the library so that
// it sees each box first, notices the box at HCBT_ACTIVATE and starts a short
// thread timer; the timer fires inside the box's own message loop, reads the
// caption, text, icon and buttons, and presses the answer.
#pragma once
#include <windows.h>
#include <deque>
#include <functional>
#include <string>
#include <vector>

// One message box as the driver saw it.
struct SeenBox {
    std::string caption;
    std::string text;
    UINT icon = 0;      // MB_ICONHAND, MB_ICONEXCLAMATION, MB_ICONASTERISK, MB_ICONQUESTION or 0
    UINT buttons = 0;   // MB_OK, MB_OKCANCEL, MB_YESNO, MB_RETRYCANCEL, ... | MB_HELP
    HWND owner = nullptr;
    bool topmost = false;           // shown system-modal
    int disabledThreadWindows = 0;  // visible top-level windows of the thread, besides the
                                    // owner, disabled under it (a task-modal box)
    int answer = 0;                 // the button the driver pressed
};

class MessageBoxDriver {
public:
    MessageBoxDriver();
    // Removes the hook; fails the test if an expected box never came.
    ~MessageBoxDriver();
    MessageBoxDriver(const MessageBoxDriver &) = delete;
    MessageBoxDriver &operator=(const MessageBoxDriver &) = delete;

    // The next box must show `text` with `buttonsAndIcon` (and `caption`,
    // unless null); the driver presses `answer`.
    void Expect(const std::string &text, UINT buttonsAndIcon, int answer,
                const char *caption = nullptr);
    // Boxes nobody expected are pressed with `answer`; with `strict` each one
    // is also a test failure. By default: IDCANCEL, strict.
    void AnswerOthers(int answer, bool strict = true);
    // Every box seen so far, in order.
    const std::vector<SeenBox> &Seen() const { return seen_; }
    // Dialogs that are not message boxes (a file dialog, say) go to `handler`
    // once they are active, from inside their own message loop.
    void OnDialog(std::function<void(HWND)> handler) { dialogHandler_ = std::move(handler); }

    // Reads a message box window the way the driver does (for direct use).
    static SeenBox Read(HWND box);

private:
    struct Expected {
        std::string text;
        UINT style;
        int answer;
        bool checkCaption;
        std::string caption;
    };
    static LRESULT CALLBACK CbtHook(int code, WPARAM wParam, LPARAM lParam);
    static void CALLBACK TimerFired(HWND, UINT, UINT_PTR id, DWORD);
    void Handle(HWND window);

    HHOOK hook_ = nullptr;
    MessageBoxDriver *previous_ = nullptr;
    std::deque<Expected> expected_;
    std::vector<SeenBox> seen_;
    std::vector<std::pair<UINT_PTR, HWND>> timers_;
    std::vector<HWND> handled_;
    std::function<void(HWND)> dialogHandler_;
    int othersAnswer_ = IDCANCEL;
    bool othersStrict_ = true;
};

// "caption | text | buttons | icon", for failure messages.
std::string Describe(const SeenBox &box);
