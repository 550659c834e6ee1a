#include "window_harness.h"
#include <algorithm>
#include <cstdio>
#include <sstream>

namespace {

const char kParentClass[] = "QzRecordingParent";

ATOM RegisterParentClass()
{
    static ATOM atom = 0;
    if (!atom) {
        WNDCLASSA wc = {};
        wc.lpfnWndProc = DefWindowProcA;
        wc.hInstance = GetModuleHandleA(nullptr);
        wc.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
        wc.lpszClassName = kParentClass;
        atom = RegisterClassA(&wc);
    }
    return atom;
}

struct NamedMessage {
    UINT message;
    const char *name;
};

// Messages that a child may send or post to its parent, each named as written.
#define NAMED(message) {message, #message}
const NamedMessage kParentMessages[] = {
    NAMED(WM_COMMAND), NAMED(WM_NOTIFY), NAMED(WM_PARENTNOTIFY), NAMED(WM_DRAWITEM), NAMED(WM_MEASUREITEM),
    NAMED(WM_COMPAREITEM), NAMED(WM_DELETEITEM), NAMED(WM_VKEYTOITEM), NAMED(WM_CHARTOITEM),
    NAMED(WM_CTLCOLORMSGBOX), NAMED(WM_CTLCOLOREDIT), NAMED(WM_CTLCOLORLISTBOX), NAMED(WM_CTLCOLORBTN),
    NAMED(WM_CTLCOLORDLG), NAMED(WM_CTLCOLORSCROLLBAR), NAMED(WM_CTLCOLORSTATIC),
    NAMED(WM_HSCROLL), NAMED(WM_VSCROLL), NAMED(WM_NEXTDLGCTL),
};
#undef NAMED

std::string Describe(const Message &m, bool expected)
{
    char text[128];
    std::string flags;
    if (m.flags & sent) flags += "sent|";
    if (m.flags & posted) flags += "posted|";
    if (expected) {
        if (m.flags & wparam) flags += "wparam|";
        if (m.flags & lparam) flags += "lparam|";
        if (m.flags & lparam_is_child) flags += "child|";
        if (m.flags & optional) flags += "optional|";
    }
    if (!flags.empty()) flags.pop_back();
    std::snprintf(text, sizeof text, "%-20s %-22s w=%#llx l=%#llx", MessageName(m.message).c_str(),
                  flags.c_str(), static_cast<unsigned long long>(m.wParam),
                  static_cast<unsigned long long>(m.lParam));
    return text;
}

bool Fits(const Message &want, const Message &got, HWND child)
{
    if (want.message != got.message) return false;
    unsigned how = want.flags & (sent | posted);
    if (how && (how & got.flags) == 0) return false;
    if ((want.flags & wparam) && want.wParam != got.wParam) return false;
    if ((want.flags & lparam) && want.lParam != got.lParam) return false;
    if ((want.flags & lparam_is_child) && got.lParam != reinterpret_cast<LPARAM>(child))
        return false;
    return true;
}

void SendMouse(HWND window, UINT message, int x, int y, WPARAM keys)
{
    SendMessageA(window, message, keys, MAKELPARAM(x, y));
}

}  // namespace

std::string MessageName(UINT message)
{
    for (const auto &named : kParentMessages)
        if (named.message == message) return named.name;
    char text[32];
    if (message >= WM_USER && message < 0x8000)
        std::snprintf(text, sizeof text, "WM_USER+%u", message - WM_USER);
    else
        std::snprintf(text, sizeof text, "msg %#x", message);
    return text;
}

bool RecordingParent::IsParentMessage(UINT message)
{
    if (message >= WM_USER && message < 0xC000) return true;
    return std::any_of(std::begin(kParentMessages), std::end(kParentMessages),
                       [message](const NamedMessage &m) { return m.message == message; });
}

RecordingParent::RecordingParent(int width, int height, DWORD style)
{
    RegisterParentClass();
    RECT frame = {0, 0, width, height};
    AdjustWindowRect(&frame, style, FALSE);
    window_ = CreateWindowExA(0, kParentClass, "recording parent", style | WS_VISIBLE, 0, 0,
                              frame.right - frame.left, frame.bottom - frame.top, nullptr, nullptr,
                              GetModuleHandleA(nullptr), nullptr);
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(WindowProc));
    UpdateWindow(window_);
    Pump();
    seen_.clear();
}

RecordingParent::~RecordingParent()
{
    if (IsWindow(window_)) DestroyWindow(window_);
    PumpMessages();
}

HWND RecordingParent::CreateChild(const char *className, int id, DWORD style, int x, int y,
                                  int width, int height, const char *text, LPVOID param)
{
    child_ = CreateWindowExA(0, className, text, WS_CHILD | WS_VISIBLE | style, x, y, width, height,
                             window_, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                             GetModuleHandleA(nullptr), param);
    return child_;
}

void RecordingParent::Pump()
{
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        const MSG *outer = dispatching_;
        dispatching_ = &msg;
        DispatchMessageA(&msg);
        dispatching_ = outer;
    }
}

std::vector<Message> RecordingParent::Take()
{
    std::vector<Message> taken;
    taken.swap(seen_);
    return taken;
}

LRESULT CALLBACK RecordingParent::WindowProc(HWND window, UINT message, WPARAM wParam,
                                             LPARAM lParam)
{
    auto *self = reinterpret_cast<RecordingParent *>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (self && IsParentMessage(message) &&
        std::find(self->ignored_.begin(), self->ignored_.end(), message) == self->ignored_.end()) {
        const MSG *queued = self->dispatching_;
        bool wasPosted = queued && queued->hwnd == window && queued->message == message &&
                         queued->wParam == wParam && queued->lParam == lParam;
        self->seen_.push_back({message, wasPosted ? unsigned(posted) : unsigned(sent), wParam, lParam});
        if (self->answer_) {
            bool handled = false;
            LRESULT result = self->answer_(window, message, wParam, lParam, &handled);
            if (handled) return result;
        }
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

::testing::AssertionResult SequenceMatches(const std::vector<Message> &seen,
                                           const Message *expected, HWND child,
                                           const char *context)
{
    std::vector<Message> want;
    for (const Message *m = expected; m->message; ++m) want.push_back(*m);

    // Walk both: an optional expected entry that does not fit is skipped.
    size_t w = 0, s = 0;
    bool same = true;
    while (w < want.size() && s < seen.size()) {
        if (Fits(want[w], seen[s], child)) {
            ++w, ++s;
        } else if (want[w].flags & optional) {
            ++w;
        } else {
            same = false;
            break;
        }
    }
    while (same && w < want.size() && (want[w].flags & optional)) ++w;
    if (same && w == want.size() && s == seen.size()) return ::testing::AssertionSuccess();

    std::ostringstream dump;
    dump << context << ": the sequence differs (first at expected " << w << ", seen " << s << ")\n";
    dump << "  " << std::string(3, ' ') << "expected" << std::string(50, ' ') << "seen\n";
    size_t rows = std::max(want.size(), seen.size());
    for (size_t i = 0; i < rows; ++i) {
        std::string left = i < want.size() ? Describe(want[i], true) : "";
        std::string right = i < seen.size() ? Describe(seen[i], false) : "";
        left.resize(56, ' ');
        dump << (i == w || i == s ? "=> " : "   ") << i << " " << left << "  " << right << "\n";
    }
    return ::testing::AssertionFailure() << dump.str();
}

// ---------------------------------------------------------------------- input

void Click(HWND window, int x, int y, WPARAM keys)
{
    SendMouse(window, WM_LBUTTONDOWN, x, y, keys | MK_LBUTTON);
    SendMouse(window, WM_LBUTTONUP, x, y, keys);
}

void DoubleClick(HWND window, int x, int y, WPARAM keys)
{
    Click(window, x, y, keys);
    SendMouse(window, WM_LBUTTONDBLCLK, x, y, keys | MK_LBUTTON);
    SendMouse(window, WM_LBUTTONUP, x, y, keys);
}

void Drag(HWND window, POINT from, POINT to, int steps, WPARAM keys)
{
    SendMouse(window, WM_LBUTTONDOWN, from.x, from.y, keys | MK_LBUTTON);
    // With capture set, moves and the release go where the system would
    // send them, in the capturing window's coordinates.
    auto target = [window](POINT *p) {
        HWND capture = GetCapture();
        if (!capture || capture == window) return window;
        MapWindowPoints(window, capture, p, 1);
        return capture;
    };
    if (steps < 1) steps = 1;
    for (int i = 1; i <= steps; ++i) {
        POINT p = {from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps};
        HWND into = target(&p);
        SendMouse(into, WM_MOUSEMOVE, p.x, p.y, keys | MK_LBUTTON);
    }
    POINT end = to;
    HWND into = target(&end);
    SendMouse(into, WM_LBUTTONUP, end.x, end.y, keys);
}

void Key(HWND window, UINT virtualKey)
{
    UINT scan = MapVirtualKeyA(virtualKey, 0);
    LPARAM down = 1 | (LPARAM(scan) << 16);
    SendMessageA(window, WM_KEYDOWN, virtualKey, down);
    UINT character = MapVirtualKeyA(virtualKey, 2);
    if (character) SendMessageA(window, WM_CHAR, character, down);
    SendMessageA(window, WM_KEYUP, virtualKey, down | (LPARAM(3) << 30));
}

void Chars(HWND window, const char *text)
{
    for (; *text; ++text)
        SendMessageA(window, WM_CHAR, static_cast<BYTE>(*text), 1);
}

void SystemKey(WORD virtualKey, bool up)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtualKey;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyA(virtualKey, 0));
    input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    SendInput(1, &input, sizeof input);
    PumpMessages();
}

HeldKey::HeldKey(WORD virtualKey) : key_(virtualKey) { SystemKey(key_, false); }
HeldKey::~HeldKey() { SystemKey(key_, true); }

void ThreadKeys(BYTE keys)
{
    BYTE state[256];
    GetKeyboardState(state);
    state[VK_SHIFT] = (keys & 1) ? 0x80 : 0;
    state[VK_CONTROL] = (keys & 2) ? 0x80 : 0;
    SetKeyboardState(state);
}

void PumpMessages()
{
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
}
