// Every time gadget under random input from its host: a long run after
// which each getter is in range and every GDI object went back, and a
// parent that destroys the gadget, or opens a message box, inside each
// notification it hears while a shorter script runs. ctest runs the hostile
// parent again under Wine's heap checks.
#include "qz_test.h"
#include "window_harness.h"
#include "message_box_driver.h"
#include <random>
#include <set>

namespace {

const int ID = 64;

struct Op {
    UINT message;  // 0: the gadget's own setters, with wParam as the dice
    WPARAM wParam;
    LPARAM lParam;
    BYTE keys;     // 1 Shift, 2 Ctrl
};

struct Gadget {
    const char *className;
    DWORD style;
    int width, height;
    std::set<WORD> mustHear;                   // the hostile script must reach these
    void (*poke)(HWND g, unsigned dice);       // a random call of the gadget's own setters
    bool (*consistent)(HWND g);                // its getters agree and are in range
};

LRESULT Send(HWND g, UINT message, WPARAM wParam, const void *p)
{
    return SendMessageA(g, message, wParam, reinterpret_cast<LPARAM>(p));
}

DateTimeValue Day(unsigned dice) { return MakeDate(2026, 3, 10, dice % 24, dice / 24 % 60); }

bool Valid(HWND g, UINT message)
{
    DateTimeValue t = {};
    return Send(g, message, 0, &t) == 1 && OSIsValidDateTime(&t);
}

void PokeTracker(HWND g, unsigned dice)
{
    DateTimeValue t = Day(dice >> 4);
    BusyInterval b = {t, dice % 300, 0, 0, 0};
    switch (dice % 6) {
    case 0: SendMessageA(g, TTM_SETHOURSINVIEW, dice % 26, 0); break;
    case 1: Send(g, TTM_SETSTART, 0, &t); break;
    case 2: Send(g, TTM_SETEND, 0, &t); break;
    case 3: Send(g, TTM_ADDBUSY, dice % 8, &b); break;
    case 4: Send(g, TTM_REMOVEBUSY, dice % 8, nullptr); break;
    case 5: SendMessageA(g, TTM_SETDURATION, 0, MAKELONG(dice % 60, dice / 60 % 26)); break;
    }
}

bool TrackerConsistent(HWND g)
{
    DateTimeValue s = {}, e = {};
    LONG d, h, m, sec;
    if (!Valid(g, TTM_GETSTART) || !Valid(g, TTM_GETEND) || Send(g, TTM_GETSTART, 0, &s) != 1 ||
        Send(g, TTM_GETEND, 0, &e) != 1 || !OSDiffDateTime(&s, &e, &d, &h, &m, &sec))
        return false;
    const LONG minutes = (d * 24 + h) * 60 + m;
    const LRESULT duration = SendMessageA(g, TTM_GETDURATION, 0, 0), hours = SendMessageA(g, TTM_GETHOURSINVIEW, 0, 0);
    const LRESULT colour = SendMessageA(g, TTM_GETOWNBARCOLOUR, 0, 0);
    return minutes >= 0 && minutes <= 24 * 60 && minutes == HIWORD(duration) * 60 + LOWORD(duration) &&
           hours >= 1 && hours <= 24 && (colour == 0x00FF00 || colour == 0x0000FF);
}

void PokeSetter(HWND g, unsigned dice)
{
    DateTimeValue t = Day(dice >> 3);
    switch (dice % 5) {
    case 0: SendMessageA(g, TSM_SETHOURSINVIEW, 1 + dice % 26, 0); break;
    case 1: SendMessageA(g, TSM_SETCOARSESTEP, dice % 62, 0); break;
    case 2: SendMessageA(g, TSM_SETFINESTEP, 1 + dice % 30, 0); break;
    default: Send(g, dice % 2 ? TSM_SETVALUE : TSM_SETVIEWSTART, 0, &t); break;
    }
}

bool SetterConsistent(HWND g)
{
    const LRESULT hours = SendMessageA(g, TSM_GETHOURSINVIEW, 0, 0), coarse = SendMessageA(g, TSM_GETCOARSESTEP, 0, 0);
    return Valid(g, TSM_GETVALUE) && Valid(g, TSM_GETVIEWSTART) && hours >= 1 && hours <= 24 && coarse >= 1 &&
           coarse <= 59;
}

void PokeDateTracker(HWND g, unsigned dice)
{
    DateTimeValue d = MakeDate(1795 + dice % 310, dice / 310 % 14, dice / 4340 % 33);
    Send(g, DTKM_SETDATE, 0, &d);
}

bool DateTrackerConsistent(HWND g)
{
    DateTimeValue d = {};
    return Send(g, DTKM_GETDATE, 0, &d) == 1 && OSDTIsValidDateTime(&d) && d.year <= 2100;
}

void PokeTumbler(HWND g, unsigned dice)
{
    LONG minimum = dice % 100, range[4] = {minimum, minimum + 1 + static_cast<LONG>(dice / 100 % 1300),
                                           minimum + static_cast<LONG>(dice % 50), 1 + static_cast<LONG>(dice % 30)};
    Send(g, TUM_SETRANGE, 0, range);
}

// Ranges, values and colours of any size, the raised look, and no range.
void PokeGauge(HWND g, unsigned dice)
{
    LONG n = static_cast<LONG>(dice) - 0x40000000, range[3] = {LONG(dice % 50) - 10, LONG(dice / 50 % 300), n % 200};
    switch (dice % 5) {
    case 0: SendMessageA(g, GGM_SETRANGE, 0, dice % 7 ? reinterpret_cast<LPARAM>(range) : 0); break;
    case 1: SendMessageA(g, GGM_SETVALUE, 0, dice % 4 ? n % 400 : n); break;
    case 2: SendMessageA(g, GGM_SETBACKCOLOUR + dice / 5 % 2, 0, dice & 0xFFFFFF); break;
    case 3: SendMessageA(g, GGM_SETRAISED, dice / 5 % 2, 0); break;
    case 4: SendMessageA(g, GGM_GETBARCOLOUR, 0, 0); break;
    }
}

bool Always(HWND) { return true; }

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

// Presses, moves and releases over the arrows, the middle and anywhere;
// keys, characters, timers, bad and good text, focus and capture loss,
// sizes, fonts, hiding, and the gadget's own setters.
std::vector<Op> Script(int w, int h, unsigned seed, int count)
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
    for (int i = 0; i < count; ++i) {
        LPARAM p = MAKELPARAM(pick(2) ? xs[pick(4)] : pick(w), pick(2) ? ys[pick(4)] : pick(h + 60) - 30);
        BYTE held = static_cast<BYTE>(pick(4) == 0 ? 1 + pick(2) : 0);
        switch (pick(13)) {
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
        case 10: ops.push_back({WM_SIZE, 0, MAKELPARAM(20 + pick(2 * w), 20 + pick(2 * h)), 0}); break;
        case 11: ops.push_back({WM_SETFONT, static_cast<WPARAM>(pick(3)), pick(2), 0}); break;
        case 12: ops.push_back({0, random(), 0, 0}); break;
        }
    }
    return ops;
}

// Runs the script on a new gadget; `onNotify` acts on the n-th notification
// (from 1); with `checked`, the gadget's getters are checked after each
// step. Returns the codes heard.
std::vector<WORD> RunScript(const Gadget &gadget, const std::vector<Op> &ops,
                            const std::function<void(HWND parent, HWND g, size_t n, WORD code)> &onNotify,
                            bool checked = false)
{
    RecordingParent parent(320, 400);
    HWND g = parent.CreateChild(gadget.className, ID, gadget.style, 10, 10, gadget.width, gadget.height);
    EXPECT_TRUE(g != nullptr) << gadget.className;
    const int fonts[] = {SYSTEM_FONT, ANSI_VAR_FONT, DEFAULT_GUI_FONT};
    std::vector<WORD> heard;
    parent.Answer([&](HWND window, UINT message, WPARAM wParam, LPARAM lParam, bool *handled) -> LRESULT {
        if (message == WM_COMMAND && LOWORD(wParam) == ID && reinterpret_cast<HWND>(lParam) == g) {
            heard.push_back(HIWORD(wParam));
            onNotify(window, g, heard.size(), HIWORD(wParam));
        }
        *handled = false;
        return 0;
    });
    for (size_t i = 0; i < ops.size() && IsWindow(g); ++i) {
        const Op &op = ops[i];
        ThreadKeys(op.keys);
        if (op.message == WM_SETFOCUS || op.message == WM_KILLFOCUS)
            SetFocus(op.message == WM_SETFOCUS ? g : parent.Window());
        else if (op.message == WM_SIZE)
            SetWindowPos(g, nullptr, 0, 0, LOWORD(op.lParam), HIWORD(op.lParam), SWP_NOMOVE | SWP_NOZORDER);
        else if (op.message == WM_SETFONT)
            SendMessageA(g, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(fonts[op.wParam])), op.lParam);
        else if (op.message == 0)
            gadget.poke(g, static_cast<unsigned>(op.wParam));
        else
            SendMessageA(g, op.message, op.wParam, op.lParam);
        if (checked && IsWindow(g) && !gadget.consistent(g)) {
            ADD_FAILURE() << gadget.className << " out of range after step " << i;
            break;
        }
        if (i % 500 == 0)
            PumpMessages();
    }
    ThreadKeys(0);
    if (IsWindow(g))
        SendMessageA(g, WM_LBUTTONUP, 0, 0);
    EXPECT_EQ(nullptr, GetCapture()) << gadget.className;
    parent.Answer(nullptr);
    if (IsWindow(g))
        DestroyWindow(g);
    return heard;
}

class HostileParentTest : public GadgetTest, public ::testing::WithParamInterface<Gadget> {};
class RandomHostTest : public GadgetTest, public ::testing::WithParamInterface<Gadget> {};

RECT ClientOf(const Gadget &gadget)
{
    RECT client = {};
    RecordingParent probe;
    GetClientRect(probe.CreateChild(gadget.className, ID, gadget.style, 0, 0, gadget.width, gadget.height), &client);
    return client;
}

// A parent that destroys the gadget at each notification in turn (every
// one, up to a bound per lane), and one that opens a box at the first of
// each kind; the script then goes on against what is left.
TEST_P(HostileParentTest, DestroysOrOpensABoxInEachNotification)
{
    const Gadget &gadget = GetParam();
    const RECT client = ClientOf(gadget);
    const std::vector<Op> ops = Script(client.right, client.bottom, 7, 90);
    const std::vector<WORD> all = RunScript(gadget, ops, [](HWND, HWND, size_t, WORD) {});
    const std::set<WORD> kinds(all.begin(), all.end());
    for (WORD code : gadget.mustHear)
        EXPECT_TRUE(kinds.count(code)) << gadget.className << " never told " << code;
    const size_t stride = all.size() / static_cast<size_t>(MonkeySteps(60, 12)) + 1;
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

// A long run: the getters stay in range after every step, and destroying
// the gadget gives back every GDI object it made.
TEST_P(RandomHostTest, GettersStayInRangeAndNothingLeaks)
{
    const Gadget &gadget = GetParam();
    for (int id = 1080; id <= 1085; ++id)  // shared once loaded: not the gadget's to free
        LoadCursorA(ResourceGetHandle(), MAKEINTRESOURCEA(id));
    const RECT client = ClientOf(gadget);
    const std::vector<Op> ops = Script(client.right, client.bottom, 11, MonkeySteps(2000, 200));
    auto quiet = [](HWND, HWND, size_t, WORD) { OSErrorClearError(); };
    RunScript(gadget, ops, quiet);  // once first, for what the system loads once and keeps
    PumpMessages();
    const long before = GdiObjectsInUse();
    RunScript(gadget, ops, quiet, true);
    PumpMessages();
    EXPECT_EQ(before, GdiObjectsInUse()) << gadget.className;
    OSErrorClearError();
}

const Gadget kGadgets[] = {
    {"TimeTracker", TTS_LIVETEXT | TTS_TRACKNOTIFY | TTS_NOFOCUS, 100, 300,
     {TTN_TIMECHANGED, TTN_SCROLLED, TTN_VIEWCHANGED, TTN_ERROR, TTN_TRACKING}, PokeTracker, TrackerConsistent},
    {"TimeTracker", TTS_SINGLEDAY | TTS_ENDTEXT | TTS_KEEPVISIBLE, 100, 300,
     {TTN_TIMECHANGED, TTN_SCROLLED, TTN_SETFOCUS, TTN_KILLFOCUS}, PokeTracker, TrackerConsistent},
    {"TimeSetter", 0, 50, 300, {TSN_TIMECHANGED, TSN_ERROR, TSN_SETFOCUS}, PokeSetter, SetterConsistent},
    {"DateTracker", 0, 200, 160, {DTKN_DATECHANGED, DTKN_DATECHOSEN, DTKN_ERROR}, PokeDateTracker,
     DateTrackerConsistent},
    {"Tumbler", 0, 120, 40, {EN_CHANGE}, PokeTumbler, Always},
    {"GasGauge", 0, 200, 40, {}, PokeGauge, Always},
};
INSTANTIATE_TEST_SUITE_P(TimeGadgets, HostileParentTest, ::testing::ValuesIn(kGadgets));
INSTANTIATE_TEST_SUITE_P(TimeGadgets, RandomHostTest, ::testing::ValuesIn(kGadgets));

}  // namespace
