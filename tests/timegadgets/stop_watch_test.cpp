// StopWatch on a clock the test turns (the library's GetTickCount is
// patched): ticks counted from the start, set and read beyond a day, the
// start/stop toggle from the host and from clicks, the hands and the
// system colours by readback, and a monkey run.
#include "import_patch.h"
#include "qz_test.h"
#include "window_harness.h"
#include <random>

namespace {

const int ID = 61;
DWORD g_now = 7654321;  // the machine has been up for hours
DWORD WINAPI FakeTickCount() { return g_now; }

struct Elapsed { DWORD h, m, s; };
bool operator==(const Elapsed &a, const Elapsed &b) { return a.h == b.h && a.m == b.m && a.s == b.s; }
std::ostream &operator<<(std::ostream &os, const Elapsed &e) { return os << e.h << ':' << e.m << ':' << e.s; }

class StopWatchTest : public GadgetTest {
protected:
    ImportPatch clock{LibraryModule(), "kernel32.dll", "GetTickCount", reinterpret_cast<const void *>(FakeTickCount)};
    RecordingParent parent{200, 200};
    HWND g = nullptr;
    void SetUp() override
    {
        GadgetTest::SetUp();
        ASSERT_TRUE(clock.Applied());
        g = parent.CreateChild("StopWatch", ID, 0, 0, 0, 120, 120);
        ASSERT_TRUE(g != nullptr);
        parent.Ignore(WM_CTLCOLORSTATIC);
    }
    void TearDown() override { DestroyWindow(g), GadgetTest::TearDown(); }
    Elapsed Get()
    {
        Elapsed e = {99, 99, 99};
        SendMessageA(g, SWM_GETELAPSED, 0, reinterpret_cast<LPARAM>(&e));
        return e;
    }
    void Set(Elapsed e) { SendMessageA(g, SWM_SETELAPSED, 0, reinterpret_cast<LPARAM>(&e)); }
    void Tick(DWORD ms) { g_now += ms, SendMessageA(g, WM_TIMER, 1, 0); }
};

// Real seconds between updates count, from the start on.
TEST_F(StopWatchTest, TicksCountSecondsFromTheStart)
{
    g_now = 7654321;
    SendMessageA(g, SWM_START, 0, 0);
    struct Row { DWORD ms; Elapsed after; } rows[] = {
        {0, {0, 0, 0}}, {679, {0, 0, 1}}, {999, {0, 0, 1}}, {1, {0, 0, 2}}, {3000, {0, 0, 5}},
        {55000, {0, 1, 0}}, {3599000, {1, 0, 59}}, {86400000, {25, 0, 59}},
    };
    for (const Row &row : rows) {
        Tick(row.ms);
        EXPECT_EQ(row.after, Get()) << "after " << row.ms << " ms more";
    }
    static const Message ticks[] = {{WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID, SWN_CHANGED), 0},
                                    {0, 0, 0, 0}};
    parent.Take();
    Tick(1000);
    EXPECT_SEQUENCE(parent, ticks, "a notification per tick");
}

// A click starts (from zero) or stops by the toggle, which the host's stop
// leaves set; each click notifies.
TEST_F(StopWatchTest, ClickToggleAndTheHostsStartAndStop)
{
    enum Action { ClickIt, HostStart, HostStop };
    struct Row { Action action; bool zeroed; } rows[] = {
        {ClickIt, true}, {ClickIt, false}, {ClickIt, true}, {HostStop, false},
        {ClickIt, false}, {ClickIt, true}, {HostStart, true}, {ClickIt, false},
    };
    int clicks = 0;
    for (const Row &row : rows) {
        Set({30, 5, 7});  // beyond a day
        if (row.action == ClickIt) Click(g, 60, 60), ++clicks;
        else SendMessageA(g, row.action == HostStart ? SWM_START : SWM_STOP, 0, 0);
        const Elapsed zero = {0, 0, 0}, kept = {30, 5, 7};
        EXPECT_EQ(row.zeroed ? zero : kept, Get()) << &row - rows;
    }
    long notes = 0;
    parent.Pump();
    for (const Message &m : parent.Take())
        notes += m.message == WM_COMMAND && m.wParam == MAKEWPARAM(ID, SWN_CHANGED);
    EXPECT_EQ(clicks, notes);
}

// The hands from the composite's centre, which lies in the middle of the
// client: at 0:00:00 all point up; at 0:00:30 the seconds hand points down.
TEST_F(StopWatchTest, HandsAndSystemColoursByReadback)
{
    HBITMAP watch = LoadBitmapA(ResourceGetHandle(), MAKEINTRESOURCEA(60));
    BITMAP info;
    GetObjectA(watch, sizeof info, &info), DeleteObject(watch);
    HDC dc = GetDC(g);
    SIZE text;
    GetTextExtentPoint32A(dc, "00:00:00", 8, &text), ReleaseDC(g, dc);
    int w = info.bmWidth > text.cx ? info.bmWidth : text.cx;
    int h = info.bmHeight + info.bmHeight / 3 + text.cy;
    int left = (120 - w) / 2, top = (120 - h) / 2;
    int cx = left + w / 2 - (w % 2 == 0), cy = top + (info.bmHeight + 3) / 2 + 1;
    const COLORREF ink = 0, dial = GetSysColor(COLOR_BTNHIGHLIGHT);
    Readback at0 = Readback::Of(g);
    EXPECT_EQ(ink, at0.At(cx, cy - 6));
    EXPECT_EQ(dial, at0.At(cx, cy + 6));
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), at0.At(left + (w - info.bmWidth) / 2 + 20, top + 3));
    Set({0, 0, 30});
    Readback at30 = Readback::Of(g);
    EXPECT_EQ(ink, at30.At(cx, cy + 6));
    EXPECT_EQ(ink, at30.At(cx, cy - 6));  // the minutes and hours stay up
}

TEST_F(StopWatchTest, MonkeyLeavesNoObjectsBehind)
{
    DestroyWindow(g);
    long before = GdiObjectsInUse();
    std::mt19937 random(77);
    g = parent.CreateChild("StopWatch", ID, 0, 0, 0, 120, 120);
    for (int i = 0; i < MonkeySteps(1500, 150); ++i) {
        DWORD n = random();
        Elapsed e = {n % 50, n % 70, n % 90};
        switch (n % 9) {
        case 0: if (n % 20 == 0) Click(g, n % 130, n % 140); break;
        case 1: Set(e); break;
        case 2: Get(); break;
        case 3: Tick(n % 5000); break;
        case 4: SetWindowPos(g, nullptr, 0, 0, n % 200, (n >> 8) % 200, SWP_NOMOVE | SWP_NOZORDER); break;
        case 5: SendMessageA(g, WM_SETFONT, n % 2 ? WPARAM(GetStockObject(SYSTEM_FONT)) : 0, 1); break;
        case 6: UpdateWindow(g); InvalidateRect(g, nullptr, TRUE); break;
        case 7: SendMessageA(g, n % 2 ? SWM_GETELAPSED : SWM_SETELAPSED, 0, 0); break;
        case 8: SendMessageA(g, WM_KEYDOWN + n % 3, n % 256, n); break;
        }
    }
    DestroyWindow(g);
    EXPECT_EQ(before, GdiObjectsInUse());
}

}  // namespace
