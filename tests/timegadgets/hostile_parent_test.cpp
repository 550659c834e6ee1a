// Every time gadget under a parent that destroys it, or opens a message box,
// inside each notification it hears, while a fixed script of input runs.
// ctest runs these under Wine's heap checks: a gadget that touches its
// freed record fails there, one that crashes fails here.
#include "qz_test.h"
#include "window_harness.h"
#include "message_box_driver.h"
#include <random>
#include <set>

namespace {

const int ID = 64;

struct Op {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    BYTE keys;  // 1 Shift, 2 Ctrl
};

struct Gadget {
    const char *className;
    DWORD style;
    int width, height;
    std::set<WORD> mustHear;  // the script must reach these notifications
};

// The parent destroys the gadget and at once takes its record's block back
// (the heap hands out the block just freed), filled with a pattern: a
// gadget that writes to its freed record changes the pattern.
struct Canary {
    BYTE *block = nullptr;
    SIZE_T size = 0;
    void Destroy(HWND g)
    {
        HLOCAL record = reinterpret_cast<HLOCAL>(GetWindowLongPtrA(g, 0));
        size = record ? LocalSize(record) : 0;
        DestroyWindow(g);
        block = size ? static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, size)) : nullptr;
        if (block)
            FillMemory(block, size, 0xA5);
    }
    ~Canary()
    {
        SIZE_T intact = 0;
        while (block && intact < size && block[intact] == 0xA5)
            ++intact;
        EXPECT_EQ(size, intact) << "the freed record was written";
        if (block)
            LocalFree(block);
    }
};

void SetKeys(BYTE keys)
{
    BYTE state[256];
    GetKeyboardState(state);
    state[VK_SHIFT] = (keys & 1) ? 0x80 : 0;
    state[VK_CONTROL] = (keys & 2) ? 0x80 : 0;
    SetKeyboardState(state);
}

// Presses, moves and releases over the arrows, the middle and anywhere;
// keys, characters, timers, bad and good text, focus and capture loss.
std::vector<Op> Script(int w, int h, unsigned seed)
{
    std::mt19937 random(seed);
    auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const int xs[] = {6, w - 6, w / 2 + 4, w - 8};
    const int ys[] = {8, h - 8, h / 2, h / 3};
    const WPARAM keys[] = {VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT, VK_RETURN, VK_PRIOR, VK_ADD};
    static const char *texts[] = {"77:88", "zz", "10:30", "3/4/2026"};
    std::vector<Op> ops = {{WM_SETTEXT, 0, reinterpret_cast<LPARAM>(texts[0]), 0},
                           {WM_SETTEXT, 0, reinterpret_cast<LPARAM>(texts[1]), 0},
                           {WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(w - 6, 8), 0},
                           {WM_TIMER, 1, 0, 0},
                           {WM_LBUTTONUP, 0, MAKELPARAM(w - 6, 8), 0}};
    for (int i = 0; i < 90; ++i) {
        LPARAM p = MAKELPARAM(pick(2) ? xs[pick(4)] : pick(w), pick(2) ? ys[pick(4)] : pick(h + 60) - 30);
        BYTE held = static_cast<BYTE>(pick(4) == 0 ? 1 + pick(2) : 0);
        switch (pick(10)) {
        case 0: ops.push_back({WM_LBUTTONDOWN, MK_LBUTTON, p, held}); break;
        case 1: case 2: ops.push_back({WM_MOUSEMOVE, MK_LBUTTON, p, held}); break;
        case 3: ops.push_back({WM_LBUTTONUP, 0, p, held}); break;
        case 4: ops.push_back({WM_KEYDOWN, keys[pick(7)], 0, held});
                ops.push_back({WM_KEYUP, ops.back().wParam, 0, held}); break;
        case 5: ops.push_back({WM_CHAR, static_cast<WPARAM>(pick(2) ? '+' : '-'), 0, 0}); break;
        case 6: ops.push_back({WM_TIMER, static_cast<WPARAM>(1 + pick(5)), 0, 0}); break;
        case 7: ops.push_back({WM_SETTEXT, 0, reinterpret_cast<LPARAM>(texts[pick(4)]), 0}); break;
        case 8: ops.push_back({WM_SETFOCUS, 0, 0, 0}); ops.push_back({WM_KILLFOCUS, 0, 0, 0}); break;
        case 9: ops.push_back({WM_CANCELMODE, 0, 0, 0}); break;
        }
    }
    return ops;
}

// Runs the script on a new gadget; `onNotify` acts on the n-th notification
// (from 1) and gets its code. Returns the codes heard.
std::vector<WORD> RunScript(const Gadget &gadget, const std::vector<Op> &ops,
                      const std::function<void(HWND parent, HWND g, size_t n, WORD code)> &onNotify)
{
    RecordingParent parent(320, 400);
    HWND g = parent.CreateChild(gadget.className, ID, gadget.style, 10, 10, gadget.width, gadget.height);
    EXPECT_TRUE(g != nullptr) << gadget.className;
    std::vector<WORD> heard;
    parent.Answer([&](HWND window, UINT message, WPARAM wParam, LPARAM lParam, bool *handled) -> LRESULT {
        if (message == WM_COMMAND && LOWORD(wParam) == ID && reinterpret_cast<HWND>(lParam) == g) {
            heard.push_back(HIWORD(wParam));
            onNotify(window, g, heard.size(), HIWORD(wParam));
        }
        *handled = false;
        return 0;
    });
    for (const Op &op : ops) {
        if (!IsWindow(g))
            break;
        SetKeys(op.keys);
        if (op.message == WM_SETFOCUS || op.message == WM_KILLFOCUS)
            SetFocus(op.message == WM_SETFOCUS ? g : parent.Window());
        else
            SendMessageA(g, op.message, op.wParam, op.lParam);
    }
    SetKeys(0);
    if (IsWindow(g))
        SendMessageA(g, WM_LBUTTONUP, 0, 0);
    EXPECT_EQ(nullptr, GetCapture()) << gadget.className;
    parent.Answer(nullptr);
    if (IsWindow(g))
        DestroyWindow(g);
    return heard;
}

class HostileParentTest : public GadgetTest, public ::testing::WithParamInterface<Gadget> {};

// A parent that destroys the gadget at each notification in turn (every
// one, up to a bound per lane), and one that opens a box at the first of
// each kind; the script then goes on against what is left.
TEST_P(HostileParentTest, DestroysOrOpensABoxInEachNotification)
{
    const Gadget &gadget = GetParam();
    RECT client = {};
    {
        RecordingParent probe;
        GetClientRect(probe.CreateChild(gadget.className, ID, gadget.style, 0, 0, gadget.width, gadget.height),
                      &client);
    }
    const std::vector<Op> ops = Script(client.right, client.bottom, 7);
    const std::vector<WORD> all = RunScript(gadget, ops, [](HWND, HWND, size_t, WORD) {});
    const std::set<WORD> kinds(all.begin(), all.end());
    for (WORD code : gadget.mustHear)
        EXPECT_TRUE(kinds.count(code)) << gadget.className << " never told " << code;
    const size_t runs = static_cast<size_t>(MonkeySteps(60, 12));
    const size_t stride = all.size() / runs + 1;
    for (size_t k = 1; k <= all.size(); k += stride) {
        Canary canary;
        RunScript(gadget, ops, [k, &canary](HWND, HWND g, size_t n, WORD) {
            if (n == k)
                canary.Destroy(g);
        });
        OSErrorClearError();
    }
    MessageBoxDriver boxes;
    boxes.AnswerOthers(IDOK, false);
    std::set<WORD> boxed;
    RunScript(gadget, ops, [&boxed](HWND parent, HWND, size_t, WORD code) {
        if (boxed.insert(code).second)
            MessageBoxA(parent, "In the middle of a notification", "Host", MB_OK);
    });
    OSErrorClearError();
}

INSTANTIATE_TEST_SUITE_P(
    TimeGadgets, HostileParentTest,
    ::testing::Values(Gadget{"TimeTracker", TTS_LIVETEXT | TTS_TRACKNOTIFY | TTS_NOFOCUS, 100, 300,
                             {TTN_TIMECHANGED, TTN_SCROLLED, TTN_VIEWCHANGED, TTN_ERROR, TTN_TRACKING}},
                      Gadget{"TimeTracker", TTS_SINGLEDAY | TTS_ENDTEXT | TTS_KEEPVISIBLE, 100, 300,
                             {TTN_TIMECHANGED, TTN_SCROLLED, TTN_SETFOCUS, TTN_KILLFOCUS}},
                      Gadget{"TimeSetter", 0, 50, 300, {TSN_TIMECHANGED, TSN_ERROR, TSN_SETFOCUS}},
                      Gadget{"DateTracker", 0, 200, 160, {DTKN_DATECHANGED, DTKN_DATECHOSEN, DTKN_ERROR}},
                      Gadget{"Tumbler", 0, 120, 40, {EN_CHANGE}}));

}  // namespace
