// Helpers for testing windows: a recording parent, expected sequences as
// tables, pixel readback and input.
//
//     RecordingParent parent;
//     HWND gadget = parent.CreateChild("TimeTracker", ID_TRACKER, 0, 0, 200, 300);
//     SendMessageA(gadget, TTM_SETSTART, 0, (LPARAM)&start);
//     static const Message set_start_seq[] = {
//         { WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID_TRACKER, TTN_TIMECHANGED) },
//         { 0 }
//     };
//     EXPECT_SEQUENCE(parent, set_start_seq, "set start");
//
// The parent records every message a child sends or posts to it that a
// gadget may use to talk to its parent; everything else goes to
// DefWindowProc unrecorded. A posted message is recorded when Pump()
// dispatches it.
#pragma once
#include <gtest/gtest.h>
#include <windows.h>
#include "readback.h"
#include <functional>
#include <string>
#include <vector>

// Flags of an expected or recorded message.
enum MessageFlags : unsigned {
    sent = 0x1,             // arrived through SendMessage
    posted = 0x2,           // arrived through the queue
    wparam = 0x4,           // the expected wParam is significant
    lparam = 0x8,           // the expected lParam is significant
    optional = 0x10,        // may be missing from the recorded sequence
    lparam_is_child = 0x20, // lParam must be the child that the test names (SetChild)
};

struct Message {
    UINT message;
    unsigned flags;
    WPARAM wParam;
    LPARAM lParam;
};

class RecordingParent {
public:
    // A visible top-level window with a client area of `width` x `height`
    // at the screen's top left.
    explicit RecordingParent(int width = 320, int height = 240, DWORD style = WS_OVERLAPPEDWINDOW);
    ~RecordingParent();
    RecordingParent(const RecordingParent &) = delete;
    RecordingParent &operator=(const RecordingParent &) = delete;

    HWND Window() const { return window_; }
    // A child window of `className` with `id`, WS_CHILD | WS_VISIBLE | style.
    // The child named for lparam_is_child becomes this one.
    HWND CreateChild(const char *className, int id, DWORD style, int x, int y, int width,
                     int height, const char *text = "", LPVOID param = nullptr);
    void SetChild(HWND child) { child_ = child; }
    HWND Child() const { return child_; }

    // Dispatches what waits in the queue, recording what was posted here.
    void Pump();
    // The sequence so far (after Pump), which is then emptied.
    std::vector<Message> Take();
    void Clear() { seen_.clear(); }
    // Leaves `message` out of the record from now on (painting chatter such
    // as WM_CTLCOLORBTN, whose count the system varies).
    void Ignore(UINT message) { ignored_.push_back(message); }

    // What the parent answers to a recorded message; by default
    // DefWindowProc's answer.
    void Answer(std::function<LRESULT(HWND, UINT, WPARAM, LPARAM, bool *handled)> answer)
    {
        answer_ = std::move(answer);
    }

    // True for the messages a parent is told by its children.
    static bool IsParentMessage(UINT message);

private:
    static LRESULT CALLBACK WindowProc(HWND, UINT, WPARAM, LPARAM);
    HWND window_ = nullptr;
    HWND child_ = nullptr;
    const MSG *dispatching_ = nullptr;
    std::vector<Message> seen_;
    std::vector<UINT> ignored_;
    std::function<LRESULT(HWND, UINT, WPARAM, LPARAM, bool *)> answer_;
};

// Compares `seen` with the 0-terminated `expected`; on a difference the
// result's message shows both side by side. `child` stands in for
// lparam_is_child.
::testing::AssertionResult SequenceMatches(const std::vector<Message> &seen,
                                           const Message *expected, HWND child,
                                           const char *context);

#define EXPECT_SEQUENCE(parent, expected, context)                                          \
    do {                                                                                    \
        (parent).Pump();                                                                    \
        EXPECT_TRUE(SequenceMatches((parent).Take(), (expected), (parent).Child(), (context))); \
    } while (0)

// The name of a message for dumps: "WM_COMMAND", or "WM_USER+5", or hex.
std::string MessageName(UINT message);

// Pixels: see readback.h.

// ----------------------------------------------------------------------
// Input. The message forms go straight to the window; the SendInput forms
// go through the system, for capture and key state.
// ----------------------------------------------------------------------
void Click(HWND window, int x, int y, WPARAM keys = 0);
void DoubleClick(HWND window, int x, int y, WPARAM keys = 0);
// Press at `from`, `steps` moves to `to`, release there; the moves go to
// the capture window if the press set one.
void Drag(HWND window, POINT from, POINT to, int steps = 4, WPARAM keys = 0);
// WM_KEYDOWN, WM_CHAR for a character key, WM_KEYUP.
void Key(HWND window, UINT virtualKey);
void Chars(HWND window, const char *text);

// System input: the key or button state changes as for a real user.
void SystemKey(WORD virtualKey, bool up);
// Holds a key down (Shift, Control) for its lifetime.
class HeldKey {
public:
    explicit HeldKey(WORD virtualKey);
    ~HeldKey();
    HeldKey(const HeldKey &) = delete;
    HeldKey &operator=(const HeldKey &) = delete;

private:
    WORD key_;
};
// Shift (1) and Ctrl (2) as GetKeyState reads them, for this thread alone;
// 0 lets both go.
void ThreadKeys(BYTE keys);
// Dispatches every waiting message of the thread.
void PumpMessages();
