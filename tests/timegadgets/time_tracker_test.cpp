// TimeTracker: the hour scale's geometry both ways, the normalising of
// start, end and duration, the busy lanes, the drag with its notifications
// and scrolling, the free-time search, and one dialog driven as the
// application drives it. Its monkey runs in random_host_test.
#include "qz_test.h"
#include "window_harness.h"

namespace {

const int ID = 100;
#define TOLD(code) {WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID, code), 0}
const DateTimeValue kDay = MakeDate(2026, 3, 11);  // a Wednesday

DateTimeValue At(int hour, int minute, int dayOffset = 0)
{
    DateTimeValue v = kDay;
    OSAdjustDateTime(&v, 0, 0, dayOffset, hour, minute, 0, 0);
    return v;
}

LRESULT Send(HWND g, UINT message, WPARAM wParam, const void *p)
{
    return SendMessageA(g, message, wParam, reinterpret_cast<LPARAM>(p));
}

DateTimeValue Get(HWND g, UINT message)
{
    DateTimeValue v = {};
    EXPECT_EQ(1, Send(g, message, 0, &v));
    return v;
}

LONG Minutes(const DateTimeValue &from, const DateTimeValue &to)
{
    LONG d, h, m, s;
    EXPECT_TRUE(OSDiffDateTime(&from, &to, &d, &h, &m, &s));
    return (d * 24 + h) * 60 + m;
}

BusyInterval Busy(const DateTimeValue &start, DWORD minutes, DWORD flags = 0)
{
    BusyInterval b = {start, minutes, 0, 0, flags};
    return b;
}

class TimeTrackerTest : public GadgetTest {
protected:
    RecordingParent parent{320, 600};
    void TearDown() override
    {
        for (HWND child; (child = GetWindow(parent.Window(), GW_CHILD)) != nullptr;)
            DestroyWindow(child);
        GadgetTest::TearDown();
    }
    HWND Make(RecordingParent &parent, DWORD style = 0, int height = 300)
    {
        HWND g = parent.CreateChild("TimeTracker", ID, style, 10, 10, 100, height);
        EXPECT_TRUE(g != nullptr);
        Place(g, At(8, 0), At(10, 0), At(11, 0));
        parent.Pump();
        parent.Clear();
        return g;
    }
    static void Place(HWND g, const DateTimeValue &view, const DateTimeValue &start, const DateTimeValue &end)
    {
        EXPECT_EQ(1, Send(g, TTM_SETVIEWSTART, 0, &view));
        EXPECT_EQ(1, Send(g, TTM_SETEND, 0, &end));
        EXPECT_EQ(1, Send(g, TTM_SETSTART, 0, &start));
        EXPECT_EQ(1, Send(g, TTM_SETEND, 0, &end));
    }
    static LONG Y(HWND g, const DateTimeValue &t) { return static_cast<LONG>(Send(g, TTM_TIMETOY, 0, &t)); }
    static LPARAM Point(int x, int y) { return MAKELPARAM(x, y); }
    // The scale's top and height, as the y of the view's first and last hour.
    static void Scale(HWND g, LONG *top, LONG *height)
    {
        DateTimeValue view = Get(g, TTM_GETVIEWSTART), last = view;
        OSAdjustDateTime(&last, 0, 0, 0, static_cast<LONG>(Send(g, TTM_GETHOURSINVIEW, 0, nullptr)), 0, 0, 0);
        *top = Y(g, view);
        *height = Y(g, last) - *top;
    }
    // A point on the scale left of the figures.
    static int ScaleX(HWND g)
    {
        RECT client;
        GetClientRect(g, &client);
        DWORD ideal = LOWORD(Send(g, TTM_GETIDEALSIZE, 0, nullptr));
        EXPECT_EQ(static_cast<LONG>(ideal), client.right);
        return 8 + 7 + 1;  // lane strip, half the spare width, one in
    }
    static int CentreX(HWND g)
    {
        RECT client;
        GetClientRect(g, &client);
        return client.right / 2 + 4;
    }
};

// ---------------------------------------------------------------- geometry
// Time to y against the formula, for every 5-minute step of the view, with
// a scale whose height is not a multiple of its hours; a click at each y
// lands the start on the hour nearest the time that y reads back as.
TEST_F(TimeTrackerTest, TimeToYAndBackForEveryFiveMinutes)
{
    HWND g = nullptr;
    LONG top = 0, height = 0;
    for (int h = 300; h < 316 && height % 8 == 0; ++h) {
        if (g)
            DestroyWindow(g);
        g = Make(parent, 0, h);
        Scale(g, &top, &height);
    }
    ASSERT_NE(0, height % 8);
    const LONG pph = height / 8, extra = height % 8;
    DateTimeValue view = Get(g, TTM_GETVIEWSTART);
    for (LONG step = 0; step < 8 * 12; ++step) {
        LONG hour = step / 12, minute = step % 12 * 5;
        DateTimeValue t = At(8 + hour, minute);
        LONG base = pph * hour + (hour < extra ? hour : extra);
        LONG scale = pph + (base >= top && base < top + height && hour < extra ? 1 : 0);
        LONG y = top + base + scale * minute / 60;
        ASSERT_EQ(y, Y(g, t)) << ToText(t);
        // y back to a time, then the click's rounding to the hour.
        LONG rel = y - top, h = rel / pph;
        LONG back = ((rel - pph * h - (h < extra ? h : extra)) * 60) / (pph + (h < extra ? 1 : 0));
        back = back / 5 * 5;
        DateTimeValue expected = At(8 + h + (back >= 30 ? 1 : 0), 0);
        SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, Point(ScaleX(g), y));
        SendMessageA(g, WM_LBUTTONUP, 0, Point(ScaleX(g), y));
        ASSERT_EQ(expected, Get(g, TTM_GETSTART)) << "click at " << y << " for " << ToText(t);
    }
    EXPECT_EQ(1, Send(g, TTM_SETVIEWSTART, 0, &view));
    DateTimeValue bad = MakeDate(1799, 1, 1);
    EXPECT_EQ(-1, Send(g, TTM_TIMETOY, 0, &bad));
}

// ---------------------------------------------------------------- normalising
TEST_F(TimeTrackerTest, NormalisingKeepsTheDurationBetweenZeroAnd24Hours)
{
    HWND g = Make(parent);
    enum Op { SetStart, SetEnd, SetDuration };
    const struct { Op op; DateTimeValue value; LPARAM duration; DateTimeValue start, end; DWORD hours, minutes; }
    rows[] = {
        {SetStart, At(10, 30), 0, At(10, 30), At(11, 0), 0, 30},      // inside: the end stays
        {SetStart, At(12, 0), 0, At(12, 0), At(12, 0), 0, 0},         // past the end: it follows
        {SetEnd, At(9, 15), 0, At(9, 15), At(9, 15), 0, 0},           // before the start: it follows
        {SetEnd, At(9, 15, 1), 0, At(9, 15), At(9, 15, 1), 24, 0},    // exactly a day is kept
        {SetEnd, At(9, 20, 1), 0, At(9, 20), At(9, 20, 1), 24, 0},    // over: the start is pulled
        {SetStart, At(8, 0), 0, At(8, 0), At(8, 0, 1), 24, 0},        // over from the start: the end gives way
        {SetDuration, {}, MAKELONG(45, 2), At(8, 0), At(10, 45), 2, 45},
        {SetDuration, {}, MAKELONG(1, 24), At(8, 0), At(8, 0, 1), 24, 0},
    };
    for (const auto &row : rows) {
        DateTimeValue v = row.value;
        v.second = 40;  // seconds are dropped
        LRESULT result = row.op == SetDuration ? SendMessageA(g, TTM_SETDURATION, 0, row.duration)
                                               : Send(g, row.op == SetStart ? TTM_SETSTART : TTM_SETEND, 0, &v);
        EXPECT_EQ(1, result);
        EXPECT_EQ(row.start, Get(g, TTM_GETSTART)) << ToText(row.value);
        EXPECT_EQ(row.end, Get(g, TTM_GETEND)) << ToText(row.value);
        EXPECT_EQ(MAKELONG(row.minutes, row.hours), Send(g, TTM_GETDURATION, 0, nullptr)) << ToText(row.value);
    }
    DateTimeValue bad = MakeDate(2026, 2, 30, 10);
    EXPECT_EQ(-1, Send(g, TTM_SETSTART, 0, &bad));
    EXPECT_EQ(RV_DayRange, OSErrorGetErrorValue());
    EXPECT_EQ(-1, SendMessageA(g, TTM_SETHOURSINVIEW, 25, 0));
    EXPECT_EQ(-1, SendMessageA(g, TTM_SETCOARSESTEP, 60, 0));
    EXPECT_EQ(1, SendMessageA(g, TTM_SETCOARSESTEP, 15, 0));
    EXPECT_EQ(15, SendMessageA(g, TTM_GETCOARSESTEP, 0, 0));
}

// ---------------------------------------------------------------- lanes
// Lane L's blocks are drawn at column (lanes - L) * 8 of the strip; a lane
// shows as that column's busy colour at the interval's middle.
TEST_F(TimeTrackerTest, BusyLanesByOneAndAsAListRemovalAndColours)
{
    HWND g = Make(parent);
    const DWORD baseWidth = LOWORD(Send(g, TTM_GETIDEALSIZE, 0, nullptr));
    const BusyInterval list[] = {
        Busy(At(9, 0), 60), Busy(At(9, 30), 60), Busy(At(9, 45), 30),  // three at once
        Busy(At(11, 0), 30),                                            // touches the end: no clash
    };
    auto laneShown = [&](int lanes, int lane, const DateTimeValue &t) {
        Readback pixels = Readback::Of(g);
        return pixels.At((lanes - lane) * 8 + 1 + 3, Y(g, t) + 2) == 0xFF0000;
    };
    for (int pass = 0; pass < 2; ++pass) {
        if (pass == 0) {
            for (DWORD i = 0; i < 4; ++i)
                EXPECT_EQ(1, Send(g, TTM_ADDBUSY, 10 + i, &list[i]));
        } else {
            EXPECT_EQ(1, Send(g, TTM_CLEARBUSY, 0, nullptr));
            EXPECT_EQ(1, Send(g, TTM_SETBUSYLIST, 4, list));
        }
        // One by one each meets only those before it: lanes 0, 1, 2. As a
        // list, the one pass meets lanes still 0 and raises each at most
        // past the ones it meets in order: lanes 1, 1, 0, so the first two
        // share a column; the lane count never falls.
        const struct { int lane; DateTimeValue at; bool shown; } looks[2][4] = {
            {{0, At(9, 10), true}, {1, At(10, 15), true}, {2, At(9, 55), true}, {1, At(9, 10), false}},
            {{1, At(9, 10), true}, {1, At(10, 15), true}, {0, At(9, 55), true}, {2, At(9, 55), false}},
        };
        EXPECT_EQ(baseWidth + 16, LOWORD(Send(g, TTM_GETIDEALSIZE, 0, nullptr))) << pass;
        for (const auto &look : looks[pass])
            EXPECT_EQ(look.shown, laneShown(2, look.lane, look.at)) << pass << " lane " << look.lane << ToText(look.at);
        // The appointment (10:00 to 11:00) clashes with the second and third.
        EXPECT_EQ(0x0000FF, Send(g, TTM_GETOWNBARCOLOUR, 0, nullptr));
    }
    // Removing the second (id 11 when added one by one, 0 in the list)
    // loses the ones behind it as blanks; the lanes never shrink.
    EXPECT_EQ(1, Send(g, TTM_REMOVEBUSY, 999, nullptr));  // absent: unchanged
    EXPECT_EQ(0x0000FF, Send(g, TTM_GETOWNBARCOLOUR, 0, nullptr));
    EXPECT_EQ(1, Send(g, TTM_CLEARBUSY, 0, nullptr));
    for (DWORD i = 0; i < 4; ++i)
        Send(g, TTM_ADDBUSY, 10 + i, &list[i]);
    EXPECT_EQ(1, Send(g, TTM_REMOVEBUSY, 11, nullptr));
    EXPECT_EQ(0x00FF00, Send(g, TTM_GETOWNBARCOLOUR, 0, nullptr));
    EXPECT_TRUE(laneShown(2, 0, At(9, 10)));
    EXPECT_FALSE(laneShown(2, 2, At(9, 55)));
    EXPECT_EQ(baseWidth + 16, LOWORD(Send(g, TTM_GETIDEALSIZE, 0, nullptr)));
    // A list of one is emptied whatever the id.
    Send(g, TTM_SETBUSYLIST, 1, &list[1]);
    EXPECT_EQ(0x0000FF, Send(g, TTM_GETOWNBARCOLOUR, 0, nullptr));
    EXPECT_EQ(1, Send(g, TTM_REMOVEBUSY, 4711, nullptr));
    EXPECT_EQ(0x00FF00, Send(g, TTM_GETOWNBARCOLOUR, 0, nullptr));
}

// ---------------------------------------------------------------- drag
static const Message arrow_release_seq[] = {
    TOLD(TTN_SCROLLED), TOLD(TTN_SCROLLED), TOLD(TTN_VIEWCHANGED), TOLD(TTN_ERROR),
    {0, 0, 0, 0}};

TEST_F(TimeTrackerTest, DragProtocolSnappingAndAutoScroll)
{
    HWND g = Make(parent, TTS_LIVETEXT | TTS_TRACKNOTIFY, 320);
    SetFocus(parent.Window());
    parent.Clear();
    LONG top, height;
    Scale(g, &top, &height);
    const int x = CentreX(g);
    // The end label sits on the end's y; the press takes focus and capture.
    SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, Point(x, Y(g, At(11, 0))));
    EXPECT_EQ(g, GetFocus());
    EXPECT_EQ(g, GetCapture());
    // Fine: 17 minutes down lands on 11:15; with Shift, 12:20 (which the
    // fine step keeps) lands on the coarse 12:00.
    SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, Point(x, Y(g, At(11, 17))));
    EXPECT_EQ(At(11, 15), Get(g, TTM_GETEND));
    {
        HeldKey shift(VK_SHIFT);
        PumpMessages();
        SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, Point(x, Y(g, At(12, 20))));
    }
    PumpMessages();
    EXPECT_EQ(At(12, 0), Get(g, TTM_GETEND));
    char text[64];
    GetWindowTextA(g, text, sizeof text);
    DateTimeValue ten = At(10, 0);
    EXPECT_STREQ(OSDateTimeToString(&ten, nullptr, nullptr, DTS_TIME, 200), text);
    static const Message press_moves_seq[] = {
        TOLD(TTN_SETFOCUS), TOLD(TTN_TIMECHANGED), TOLD(TTN_TRACKING), TOLD(TTN_TIMECHANGED), TOLD(TTN_TRACKING),
        {0, 0, 0, 0}};
    EXPECT_SEQUENCE(parent, press_moves_seq, "press and two moves");
    // Below the scale: the view steps forward and scrolling begins; the
    // ticks then step by 10 minutes (doubled at once), 20 from the sixth.
    SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, Point(x, top + height + 10));
    KillTimer(g, 4);  // the test gives the ticks itself
    DateTimeValue view = Get(g, TTM_GETVIEWSTART);
    EXPECT_EQ(At(8, 5), view);
    const LONG expectedSteps[] = {10, 10, 10, 10, 10, 10, 20};
    for (LONG step : expectedSteps) {
        SendMessageA(g, WM_TIMER, 4, 0);
        DateTimeValue next = Get(g, TTM_GETVIEWSTART);
        EXPECT_EQ(step, Minutes(view, next));
        view = next;
        DateTimeValue end = view;
        OSAdjustDateTime(&end, 0, 0, 0, 8, 0, 0, 0);
        EXPECT_EQ(end, Get(g, TTM_GETEND));
    }
    SendMessageA(g, WM_LBUTTONUP, 0, Point(x, top + height + 10));
    EXPECT_EQ(nullptr, GetCapture());
    static const Message scroll_release_seq[] = {
        TOLD(TTN_SCROLLED), TOLD(TTN_TIMECHANGED), TOLD(TTN_TRACKING),  // crossing
        TOLD(TTN_SCROLLED), TOLD(TTN_SCROLLED), TOLD(TTN_SCROLLED), TOLD(TTN_SCROLLED),  // the seven ticks
        TOLD(TTN_SCROLLED), TOLD(TTN_SCROLLED), TOLD(TTN_SCROLLED),
        TOLD(TTN_SCROLLED), TOLD(TTN_TIMECHANGED), {0, 0, 0, 0}};  // release
    EXPECT_SEQUENCE(parent, scroll_release_seq, "auto-scroll and release");
    // The up arrow: a press steps the view back 30 minutes; its release
    // tells scrolled, view changed, and then the deliberate error.
    RECT client;
    GetClientRect(g, &client);
    view = Get(g, TTM_GETVIEWSTART);
    SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, Point(client.right - 6, 8));
    KillTimer(g, 1);
    SendMessageA(g, WM_TIMER, 1, 0);
    SendMessageA(g, WM_LBUTTONUP, 0, Point(client.right - 6, 8));
    EXPECT_EQ(-60, Minutes(view, Get(g, TTM_GETVIEWSTART)));
    EXPECT_SEQUENCE(parent, arrow_release_seq, "arrow release");
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

// ---------------------------------------------------------------- edges
// Minutes from the day's midnight, either side of it.
DateTimeValue M(int minutes) { return At(0, minutes); }

// Up and Down, alone, with Shift (start alone, coarse snap) and with Ctrl
// (end alone), inside the view (8:00 to 16:00), at its start and one step
// past its end; with TTS_SINGLEDAY at the day's first and last steps.
TEST_F(TimeTrackerTest, KeysAtTheEdgesOfTheViewAndTheDay)
{
    const WPARAM U = VK_UP, D = VK_DOWN;
    const struct { bool singleDay; BYTE keys; WPARAM key; int view, start, end, toView, toStart, toEnd; } rows[] = {
        {0, 0, U, 480, 640, 700, 480, 635, 695},    {0, 1, U, 480, 640, 700, 480, 630, 700},
        {0, 2, U, 480, 640, 700, 480, 640, 695},    {0, 0, D, 480, 640, 700, 480, 645, 705},
        {0, 1, D, 480, 640, 700, 480, 630, 700},    {0, 2, D, 480, 640, 700, 480, 640, 705},
        {0, 0, U, 480, 480, 540, 475, 475, 535},    {0, 1, U, 480, 480, 540, 450, 450, 540},
        {0, 2, U, 480, 480, 480, 475, 480, 480},    {0, 0, D, 480, 900, 960, 485, 905, 965},
        {0, 1, D, 480, 985, 985, 510, 985, 990},    {0, 2, D, 480, 900, 960, 485, 900, 965},
        {0, 0, D, 480, 895, 955, 480, 900, 960},    {0, 0, U, 480, 965, 965, 480, 960, 960},
        {0, 0, U, 0, 0, 60, -5, -5, 55},            {0, 0, D, 955, 1375, 1435, 960, 1380, 1440},
        {1, 0, U, 0, 0, 60, 0, 0, 55},              {1, 1, U, 0, 0, 60, 0, 0, 60},
        {1, 2, U, 0, 0, 0, 0, 0, 0},                {1, 0, D, 955, 1375, 1435, 955, 1380, 1435},
        {1, 0, D, 950, 1370, 1430, 955, 1375, 1435}, {1, 1, D, 955, 1435, 1435, 930, 1410, 1410},
        {1, 2, D, 955, 1375, 1435, 955, 1375, 1435}, {1, 0, D, 480, 640, 700, 480, 645, 705},
        // Single day inside the view and at its start: the view steps back by the fine step alone.
        {1, 0, U, 480, 640, 700, 480, 635, 695},    {1, 1, U, 480, 640, 700, 480, 630, 700},
        {1, 2, U, 480, 640, 700, 480, 640, 695},    {1, 1, D, 480, 640, 700, 480, 630, 700},
        {1, 2, D, 480, 640, 700, 480, 640, 705},    {1, 0, U, 480, 480, 540, 475, 475, 535},
        {1, 1, U, 480, 480, 540, 475, 475, 540},    {1, 2, U, 480, 480, 480, 475, 480, 480},
        // One step past the view's end (16:05 on a view to 16:00), either style.
        {0, 1, U, 480, 965, 965, 480, 960, 965},    {0, 2, U, 480, 965, 965, 480, 965, 965},
        {0, 0, D, 480, 905, 965, 490, 910, 970},    {0, 1, D, 480, 905, 965, 480, 900, 965},
        {0, 2, D, 480, 905, 965, 490, 905, 970},    {1, 0, D, 480, 905, 965, 485, 910, 965},
        {1, 1, D, 480, 905, 965, 480, 900, 965},    {1, 2, D, 480, 905, 965, 485, 905, 965},
        {1, 0, U, 480, 965, 965, 480, 960, 960},    {1, 1, U, 480, 965, 965, 480, 960, 965},
        {1, 2, U, 480, 965, 965, 480, 965, 965},
    };
    HWND plain = Make(parent), singleDay = Make(parent, TTS_SINGLEDAY);
    for (const auto &row : rows) {
        HWND g = row.singleDay ? singleDay : plain;
        Place(g, M(row.view), M(row.start), M(row.end));
        ThreadKeys(row.keys);
        SendMessageA(g, WM_KEYDOWN, row.key, 0);
        ThreadKeys(0);
        const std::string what = std::string(row.key == U ? "up" : "down") + " keys " + std::to_string(row.keys) +
                                 (row.singleDay ? " single day" : "") + " from " + ToText(M(row.start));
        EXPECT_EQ(M(row.toView), Get(g, TTM_GETVIEWSTART)) << what;
        EXPECT_EQ(M(row.toStart), Get(g, TTM_GETSTART)) << what;
        EXPECT_EQ(M(row.toEnd), Get(g, TTM_GETEND)) << what;
    }
}

// TTM_SETSTARTKEEP keeps the duration (the seconds dropped) but holds the
// end to 23:00 plus the last whole fine step; TTS_KEEPVISIBLE scrolls only
// once the appointment leaves the view.
TEST_F(TimeTrackerTest, StartKeepCeilingAndKeepVisibleEdges)
{
    HWND g = Make(parent), kept = Make(parent, TTS_KEEPVISIBLE);
    const struct { int fine, start, toStart, toEnd; } keeps[] = {
        {5, 1200, 1200, 1260}, {5, 1434, 1434, 1435}, {5, 1435, 1435, 1435}, {5, 1438, 1435, 1435},
        {7, 1415, 1415, 1436}, {7, 1435, 1435, 1436}, {7, 1438, 1436, 1436},
    };
    for (const auto &row : keeps) {
        SendMessageA(g, TTM_SETDURATION, 0, MAKELONG(0, 1));
        SendMessageA(g, TTM_SETFINESTEP, static_cast<WPARAM>(row.fine), 0);
        DateTimeValue start = M(row.start);
        start.second = 40;
        EXPECT_EQ(1, Send(g, TTM_SETSTARTKEEP, 0, &start));
        EXPECT_EQ(M(row.toStart), Get(g, TTM_GETSTART)) << row.fine << " " << row.start;
        EXPECT_EQ(M(row.toEnd), Get(g, TTM_GETEND)) << row.fine << " " << row.start;
    }
    const struct { UINT message; int value, toView; } visible[] = {
        {TTM_SETSTART, 480, 480}, {TTM_SETSTART, 479, 479}, {TTM_SETEND, 960, 480}, {TTM_SETEND, 961, 481},
    };
    for (const auto &row : visible) {
        Place(kept, M(480), M(600), M(660));
        DateTimeValue value = M(row.value);
        EXPECT_EQ(1, Send(kept, row.message, 0, &value));
        EXPECT_EQ(M(row.toView), Get(kept, TTM_GETVIEWSTART)) << row.value;
    }
}

// The free-slot search, in minutes from the day's midnight, from 8:00 each
// day to the close: an end on the close fits, a minute over goes to the next
// morning; with busy blocks 10:00-12:30 and 13:00-17:30 an hour fits only the
// next morning, the longest gap keeps the first of two equal ones, no working
// day as long as the appointment is refused, and start equal to end moves
// nothing. The walk stops once a day's step reaches the limit (given back
// less the fine step) and goes on a minute short of it. Busy 2: the blocks
// and one at 20:00 added one by one, the second removed: the blank it
// leaves takes no part in the longest gap. -1: not checked.
TEST_F(TimeTrackerTest, FreeSlotFindsStopsAtTheCloseAndTheLimitOrRefuses)
{
    HWND g = Make(parent);
    const BusyInterval blocks[] = {Busy(At(10, 0), 150), Busy(At(13, 0), 270), Busy(At(20, 0), 30)};
    const struct {
        int busy;
        int start, end, close, limitDay, longest, weekdays, result, found, toStart, toEnd, toView, limitBack;
    } rows[] = {
        {1, 600, 660, 1080, 0, 0, 0, 0, 1, 1920, 1980, 1920, -1}, {1, 600, 720, 1080, 1, 0, 0, 1, 0, 600, 720, -1, 1435},
        {1, 600, 720, 1080, 1, 1, 0, 1, 1, 750, 780, -1, -1},     {1, 600, 720, 1080, 0, 0, 1, -1, -1, 600, 720, -1, -1},
        {1, 600, 600, 1080, 1, 1, 0, 0, -1, 600, 600, -1, -1},    {0, 900, 960, 1020, 0, 0, 0, 0, 1, 960, 1020, -1, -1},
        {0, 901, 961, 1020, 0, 0, 0, 0, 1, 1920, 1980, -1, -1},   {0, 1375, 1435, 1020, 2, 0, 0, 1, 0, 1375, 1435, -1, -1},
        {0, 1374, 1434, 1020, 2, 0, 0, 0, 1, 1920, 1980, -1, -1}, {2, 600, 1140, 1080, 1, 1, 0, 1, 1, 750, 1080, -1, -1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << row.start << "-" << row.end << " busy " << row.busy);
        EXPECT_EQ(1, Send(g, row.busy == 1 ? TTM_SETBUSYLIST : TTM_CLEARBUSY, 2, blocks));
        for (DWORD i = 0; row.busy == 2 && i < 3; ++i)
            Send(g, TTM_ADDBUSY, i + 1, &blocks[i]);
        EXPECT_TRUE(row.busy != 2 || Send(g, TTM_REMOVEBUSY, 2, nullptr) == 1);
        Place(g, M(480), M(row.start), M(row.end));
        FreeSlotRequest q = {};
        q.dayOpen = 480;
        q.dayClose = static_cast<DWORD>(row.close);
        q.includeWeekends = !row.weekdays;  // per-weekday hours: Monday to Friday
        q.longestGap = static_cast<DWORD>(row.longest);
        q.useWeekdayHours = static_cast<DWORD>(row.weekdays);
        for (int d = 0; d < 7; ++d)
            q.weekdayOpen[d] = 9 * 60, q.weekdayClose[d] = 10 * 60;
        if (row.limitDay)
            q.limit = At(0, 0, row.limitDay);
        else
            OSSetNoDateHigh(&q.limit);
        EXPECT_EQ(row.result, Send(g, TTM_FINDFREESLOT, 0, &q));
        EXPECT_TRUE(row.found < 0 || DWORD(row.found) == q.found);
        EXPECT_TRUE(row.toStart < 0 || (M(row.toStart) == Get(g, TTM_GETSTART) && M(row.toEnd) == Get(g, TTM_GETEND)));
        EXPECT_TRUE(row.toView < 0 ||
                    (M(row.toView) == Get(g, TTM_GETVIEWSTART) && Send(g, TTM_GETOWNBARCOLOUR, 0, nullptr) == 0x00FF00));
        EXPECT_TRUE(row.limitBack < 0 || M(row.limitBack) == q.limit);
    }
    // A count whose size wraps 32 bits is refused before anything is read.
    EXPECT_EQ(-1, Send(g, TTM_SETBUSYLIST, 0x0AAAAAABu, blocks));
    EXPECT_EQ(RV_OutOfLocalMemory, OSErrorGetErrorValue());
}

// Dragging the start alone, and the duration label that moves both.
TEST_F(TimeTrackerTest, DraggingTheStartOrTheWhole)
{
    HWND g = Make(parent);
    const struct { int pressAt, moveTo, toStart, toEnd; } rows[] = {
        {600, 570, 570, 720}, {660, 720, 660, 780}, {660, 600, 540, 660},
    };
    for (const auto &row : rows) {
        Place(g, M(480), M(600), M(720));
        const int x = CentreX(g);
        SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, Point(x, Y(g, M(row.pressAt)) + 1));
        SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, Point(x, Y(g, M(row.moveTo)) + 1));
        SendMessageA(g, WM_LBUTTONUP, 0, Point(x, Y(g, M(row.moveTo)) + 1));
        EXPECT_EQ(M(row.toStart), Get(g, TTM_GETSTART)) << row.pressAt << " to " << row.moveTo;
        EXPECT_EQ(M(row.toEnd), Get(g, TTM_GETEND)) << row.pressAt << " to " << row.moveTo;
    }
}

// An hour whose base lands on the scale's top is one of the taller ones; a
// text that cannot be read moves the appointment to now, then tells of the
// error. (The label's face: TimeTrackerDragPaint.LabelTextStandsWhereDrawTextPutsIt.)
TEST_F(TimeTrackerTest, TallerHourAtTheTopAndTextOrder)
{
    HWND g = Make(parent);
    SendMessageA(g, TTM_SETHOURSINVIEW, 3, 0);
    const LONG top = Y(g, At(8, 0));
    RECT rc;
    GetWindowRect(g, &rc);
    // A scale of 3 * (top - 1) + 2: the first hour ends at top + top.
    SetWindowPos(g, nullptr, 0, 0, rc.right - rc.left, 5 * top - 1, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(2 * top + top * 59 / 60, Y(g, At(9, 59)));
    parent.Pump();
    parent.Clear();
    SetWindowTextA(g, "77:88");
    static const Message changed_then_error_seq[] = {TOLD(TTN_TIMECHANGED), TOLD(TTN_ERROR), {0, 0, 0, 0}};
    EXPECT_SEQUENCE(parent, changed_then_error_seq, "unreadable text");
}

// Losing the capture ends a drag at once: its scroll timer stops, the
// parent hears nothing more, and the next press starts a new drag.
TEST_F(TimeTrackerTest, CaptureLossEndsTheDragQuietly)
{
    HWND g = Make(parent, TTS_NOFOCUS | TTS_LIVETEXT);
    LONG top, height;
    Scale(g, &top, &height);
    const int x = CentreX(g);
    for (UINT loss : {WM_CANCELMODE, WM_CAPTURECHANGED}) {
        Place(g, At(8, 0), At(10, 0), At(11, 0));
        SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, Point(x, Y(g, At(11, 0))));
        SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, Point(x, top + height + 10));
        EXPECT_EQ(At(16, 5), Get(g, TTM_GETEND)) << MessageName(loss);
        if (loss == WM_CANCELMODE)
            SendMessageA(g, WM_CANCELMODE, 0, 0);
        else
            SetCapture(parent.Window());
        ReleaseCapture();
        parent.Pump();
        parent.Clear();
        for (int i = 0; i < 4; ++i) {
            Sleep(60);
            PumpMessages();
        }
        SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, Point(x, Y(g, At(12, 0))));
        EXPECT_EQ(At(16, 5), Get(g, TTM_GETEND)) << MessageName(loss);
        static const Message nothing_seq[] = {{0, 0, 0, 0}};
        EXPECT_SEQUENCE(parent, nothing_seq, "after the capture went");
    }
}

// ---------------------------------------------------------------- end to end
std::vector<WORD> dialogHeard;  // the codes the dialog's tracker sent it

INT_PTR CALLBACK TrackerDialogProc(HWND, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_COMMAND && LOWORD(wParam) == ID)
        dialogHeard.push_back(HIWORD(wParam));
    return message == WM_INITDIALOG || message == WM_COMMAND;
}

// The application's dialog with its tracker, which has the focus once the
// dialog opens: the host places the appointment, the user steps it with a
// key, the host hears of it and reads the text. (A search that runs off the
// calendar is shown through the FreeTime dialog, which hands it to this.)
TEST_F(TimeTrackerTest, DialogFromTheResourceLibraryEndToEnd)
{
    HWND dialog = CreateDialogParam(ResourceGetHandle(), "TRACKERDIALOG", nullptr, TrackerDialogProc, 0);
    HWND g = GetDlgItem(dialog, ID);
    ASSERT_TRUE(g != nullptr);
    ShowWindow(dialog, SW_SHOW);
    Place(g, At(8, 0), At(10, 0), At(11, 0));
    PumpMessages();
    dialogHeard.clear();
    EXPECT_EQ(g, GetFocus());
    SendMessageA(g, WM_KEYDOWN, VK_DOWN, 0);
    EXPECT_EQ(std::vector<WORD>{TTN_TIMECHANGED}, dialogHeard);
    DateTimeValue start = Get(g, TTM_GETSTART);
    EXPECT_EQ(At(10, 5), start);
    char text[64];
    GetWindowTextA(g, text, sizeof text);
    EXPECT_STREQ(OSDateTimeToString(&start, nullptr, nullptr, DTS_TIME, 200), text);
    DestroyWindow(dialog);
}

}  // namespace
