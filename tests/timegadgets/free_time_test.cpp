// FreeTime: the union the tracker is given, the clash answer, the lists the
// host hands over, the week rules, the grid by readback, the free-slot
// search through the gadget, a host's dialog, and a monkey against a model.
#include "qz_test.h"
#include "window_harness.h"
#include "readback.h"
#include "message_box_driver.h"
#include "failure_seam.h"
#include <algorithm>
#include <random>
#include <set>

namespace {

const int ID = 100;
const DateTimeValue kMonday = MakeDate(2026, 3, 9);

DateTimeValue At(int day, int hour, int minute = 0)
{
    DateTimeValue v = kMonday;
    OSAdjustDateTime(&v, 0, 0, day, hour, minute, 0, 0);
    return v;
}
LRESULT Send(HWND g, UINT message, WPARAM wParam, const void *p = nullptr)
{
    return SendMessageA(g, message, wParam, reinterpret_cast<LPARAM>(p));
}
BusyInterval Busy(int day, int hour, int minute, DWORD length, DWORD id = 0, DWORD flags = 0)
{
    return BusyInterval{At(day, hour, minute), length, id, 0, flags};
}
LRESULT Add(HWND g, DWORD person, BusyInterval b) { return Send(g, FTM_ADDBUSY, person, &b); }
FreeSlotRequest Request(DateTimeValue limit, DWORD open, DWORD close)
{
    FreeSlotRequest q{};
    q.limit = limit, q.dayOpen = open, q.dayClose = close;
    return q;
}
LONG MinuteOf(const DateTimeValue &t)
{
    LONG d, h, m, s;
    OSDiffDateTime(&kMonday, &t, &d, &h, &m, &s);
    return (d * 24 + h) * 60 + m;
}

// What the tracker was last given, caught by a subclass as a host could.
struct TrackerSpy {
    static inline std::vector<BusyInterval> list;
    static inline int lists = 0;
    static inline WNDPROC original = nullptr;
    static LRESULT CALLBACK Proc(HWND w, UINT m, WPARAM wp, LPARAM lp)
    {
        if (m == TTM_SETBUSYLIST) {
            auto *b = reinterpret_cast<const BusyInterval *>(lp);
            list.assign(b, b + wp);
            ++lists;
        }
        return CallWindowProcA(original, w, m, wp, lp);
    }
};

class FreeTimeTest : public GadgetTest {
protected:
    RecordingParent parent{600, 500};
    void TearDown() override
    {
        for (HWND child; (child = GetWindow(parent.Window(), GW_CHILD)) != nullptr;)
            DestroyWindow(child);
        GadgetTest::TearDown();
    }
    HWND Make(int people)
    {
        HWND g = parent.CreateChild("FreeTime", ID, 0, 0, 0, 420, 400);
        EXPECT_TRUE(g != nullptr);
        tracker = reinterpret_cast<HWND>(Send(g, FTM_GETTRACKER, 0));
        TrackerSpy::original = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrA(tracker, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(TrackerSpy::Proc)));
        TrackerSpy::list.clear();
        TrackerSpy::lists = 0;
        for (int p = 1; p <= people; ++p)
            EXPECT_EQ(1, Send(g, FTM_ADDPERSON, p, ""));
        DateTimeValue view = At(0, 8);
        Send(tracker, TTM_SETVIEWSTART, 0, &view);
        Meeting(0, 13, 0, 60);
        return g;
    }
    void Meeting(int day, int hour, int minute, int length)
    {
        DateTimeValue s = At(day, hour, minute), e = s;
        OSAdjustDateTime(&e, 0, 0, 0, 0, length, 0, 0);
        Send(tracker, TTM_SETEND, 0, &e);
        Send(tracker, TTM_SETSTART, 0, &s);
        Send(tracker, TTM_SETEND, 0, &e);
    }
    HWND tracker = nullptr;
};

// Two people whose busy times overlap give the tracker one block: no lane
// beyond the first, and the tracker's width is that for one interval.
// Touching blocks stay two; a block flagged as not busy is left out.
TEST_F(FreeTimeTest, OverlappingPeopleGiveTheTrackerOneBlock)
{
    HWND g = Make(3);
    LRESULT ideal = Send(tracker, TTM_GETIDEALSIZE, 0);
    EXPECT_EQ(1, Add(g, 1, Busy(0, 9, 0, 90)));
    EXPECT_EQ(1, Add(g, 2, Busy(0, 10, 0, 60)));
    EXPECT_EQ(1, Add(g, 3, Busy(0, 11, 0, 30)));  // touching
    EXPECT_EQ(1, Add(g, 3, Busy(0, 14, 0, 60, 0, FTB_NOTBUSY)));
    ASSERT_EQ(2u, TrackerSpy::list.size());
    EXPECT_EQ(At(0, 9), TrackerSpy::list[0].start);
    EXPECT_EQ(120u, TrackerSpy::list[0].lengthMinutes);
    EXPECT_EQ(At(0, 11), TrackerSpy::list[1].start);
    EXPECT_EQ(ideal, Send(tracker, TTM_GETIDEALSIZE, 0));
    // Loading with redraw off builds the union once, when it comes back on.
    Send(g, FTM_REMOVEPERSON, 3);
    SendMessageA(g, WM_SETREDRAW, FALSE, 0);
    const int before = TrackerSpy::lists;
    for (int p = 1; p <= 2; ++p)
        for (int k = 1; k < 5; ++k)
            Add(g, p, Busy(k, 9 + p, 0, 90));
    SendMessageA(g, WM_SETREDRAW, TRUE, 0);
    EXPECT_EQ(before + 1, TrackerSpy::lists);
    ASSERT_EQ(5u, TrackerSpy::list.size());
    EXPECT_EQ(150u, TrackerSpy::list[1].lengthMinutes);  // 10:00 to 12:30
}

// The clash answer at the edges of a busy block, and the flags that take
// a block out of it.
TEST_F(FreeTimeTest, ConflictAtTheEdgesOfABusyBlock)
{
    HWND g = Make(2);
    Add(g, 2, Busy(0, 10, 0, 60));
    static const struct { int hour, minute, length, optional, ignore; LRESULT conflict; } kCases[] = {
        {10, 15, 30, 0, 0, 1}, {9, 0, 60, 0, 0, 0}, {9, 1, 60, 0, 0, 1}, {11, 0, 60, 0, 0, 0},
        {10, 59, 60, 0, 0, 1}, {9, 0, 180, 0, 0, 1}, {10, 15, 30, 1, 0, 1}, {10, 15, 30, 1, 1, 0},
        {10, 15, 30, 0, 1, 1},
    };
    for (const auto &c : kCases) {
        Send(g, FTM_SETOPTIONAL, 2, reinterpret_cast<const void *>(static_cast<LPARAM>(c.optional)));
        Send(g, FTM_SETIGNOREOPTIONAL, c.ignore);
        Meeting(0, c.hour, c.minute, c.length);
        EXPECT_EQ(c.conflict, Send(g, FTM_GETCONFLICT, 0)) << c.hour << ":" << c.minute << " for " << c.length;
    }
}

// Lists the host hands over are copied; the count comes first, and a list
// with a start outside the calendar is refused whole.
TEST_F(FreeTimeTest, BusyListsAreCopiedAndChecked)
{
    HWND g = Make(1);
    BusyInterval list[2] = {Busy(0, 9, 0, 30, 7), Busy(0, 12, 0, 30, 8)};
    EXPECT_EQ(-1, Send(g, FTM_SETBUSYLIST, 1, list));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    OSErrorClearError();
    EXPECT_EQ(1, SendMessageA(g, FTM_SETBUSYCOUNT, 1, 2));
    list[1].start.month = 13;
    EXPECT_EQ(-1, Send(g, FTM_SETBUSYLIST, 1, list));
    EXPECT_EQ(RV_MonthRange, OSErrorGetErrorValue());
    EXPECT_EQ(0u, TrackerSpy::list.size());
    OSErrorClearError();
    list[1].start.month = 3;
    EXPECT_EQ(1, Send(g, FTM_SETBUSYLIST, 1, list));
    list[0].lengthMinutes = 600;  // the host's array is its own again
    Send(g, FTM_SETIGNOREOPTIONAL, 0);
    ASSERT_EQ(2u, TrackerSpy::list.size());
    EXPECT_EQ(30u, TrackerSpy::list[0].lengthMinutes);
    // The count is used once; removal by id, then the last whatever its id.
    EXPECT_EQ(-1, Send(g, FTM_SETBUSYLIST, 1, list));
    OSErrorClearError();
    EXPECT_EQ(1, SendMessageA(g, FTM_REMOVEBUSY, 1, 7));
    ASSERT_EQ(1u, TrackerSpy::list.size());
    EXPECT_EQ(At(0, 12), TrackerSpy::list[0].start);
    EXPECT_EQ(1, SendMessageA(g, FTM_REMOVEBUSY, 1, 99));
    EXPECT_EQ(0u, TrackerSpy::list.size());
}

// A date shows its week: Monday to Saturday go back to the Monday, a
// Sunday goes on to the next one.
TEST_F(FreeTimeTest, WeekRules)
{
    HWND g = Make(0);
    static const struct { int day; int monday; } kDays[] = {{0, 0}, {2, 0}, {5, 0}, {6, 7}, {7, 7}, {-1, 0}};
    for (const auto &d : kDays) {
        DateTimeValue day = At(d.day, 15, 40), week = {};
        EXPECT_EQ(1, Send(g, FTM_SETWEEK, 0, &day));
        EXPECT_EQ(1, Send(g, FTM_GETWEEK, 0, &week));
        EXPECT_EQ(At(d.monday, 0), week) << "day " << d.day << " gave " << ToText(week);
    }
    DateTimeValue bad = At(0, 0);
    bad.hour = 25;
    EXPECT_EQ(-1, Send(g, FTM_SETWEEK, 0, &bad));
    EXPECT_EQ(RV_HourRange, OSErrorGetErrorValue());
}

// The people view: a block is clipped a pixel inside the grid, an
// unavailable person's column is shaded, a day off shows nothing.
TEST_F(FreeTimeTest, ClippingAndShadingByReadback)
{
    HWND g = Make(3);
    ShowWindow(parent.Window(), SW_SHOW);
    EXPECT_EQ(1, Send(g, FTM_SETVIEWMODE, 1));
    DateTimeValue view = At(0, 8);
    Send(tracker, TTM_SETVIEWSTART, 0, &view);
    Add(g, 1, Busy(0, 6, 0, 14 * 60));
    Add(g, 3, Busy(1, 9, 0, 60));
    Send(g, FTM_SETUNAVAILABLE, 2, reinterpret_cast<const void *>(1));
    // The grid's top and bottom are the tracker's first and last hour; a
    // column is as wide as the font's line and its leading.
    POINT origin = {0, 0};
    MapWindowPoints(tracker, g, &origin, 1);
    DateTimeValue last = At(0, 8 + static_cast<int>(Send(g, FTM_GETHOURSINVIEW, 0)));
    LONG top = origin.y + static_cast<LONG>(Send(tracker, TTM_TIMETOY, 0, &view));
    LONG bottom = origin.y + static_cast<LONG>(Send(tracker, TTM_TIMETOY, 0, &last));
    TEXTMETRICA tm = FontMetrics(GetStockObject(ANSI_VAR_FONT));
    LONG column = tm.tmHeight + 2 * tm.tmInternalLeading + tm.tmExternalLeading;
    Readback shot = Readback::Of(g);
    const COLORREF blue = 0xFF0000, white = 0xFFFFFF, grey = 0xC0C0C0;
    const struct { LONG x, y; COLORREF colour; } kPixels[] = {
        {2, top, 0}, {2, top + 1, blue}, {2, bottom - 1, blue}, {2, bottom, 0},
        {column + 3, top + 1, grey}, {column + 3, bottom - 1, grey},
    };
    for (const auto &px : kPixels)
        EXPECT_EQ(px.colour, shot.At(px.x, px.y)) << px.x << ", " << px.y - top << " below the top";
    RECT third = {2 * column + 2, top + 1, 3 * column, bottom};
    EXPECT_EQ(0, shot.Count(blue, &third));
    EXPECT_LT(0, shot.Count(white, &third));
}

// The free-slot search through the gadget: across days to the one where
// the meeting ends exactly at closing time, or a minute over; the limit at
// the day found and a day before.
TEST_F(FreeTimeTest, FreeSlotSearchAcrossDays)
{
    HWND g = Make(2);
    Add(g, 1, Busy(0, 9, 0, 8 * 60));
    Add(g, 2, Busy(1, 9, 0, 7 * 60));
    static const struct { int length, limitDay; DWORD found; int day, hour; } kCases[] = {
        {60, 9, 1, 1, 16}, {61, 9, 1, 2, 9}, {61, 3, 1, 2, 9}, {61, 2, 0, 0, 9}, {60, 1, 0, 0, 9},
    };
    for (const auto &c : kCases) {
        Meeting(0, 9, 0, c.length);
        FreeSlotRequest q = Request(At(c.limitDay, 0), 9 * 60, 17 * 60);
        EXPECT_EQ(0, Send(g, FTM_FINDFREESLOT, 0, &q));
        DateTimeValue start = {};
        Send(g, FTM_GETSTART, 0, &start);
        EXPECT_EQ(c.found, q.found) << c.length << " minutes, limit day " << c.limitDay;
        EXPECT_EQ(At(c.day, c.hour), start) << ToText(start);
    }
}

struct DialogLog {
    HWND gadget = nullptr;
    std::vector<WORD> codes;
    bool destroyOnTimeChange = false;
};

INT_PTR CALLBACK LogDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(dialog, DWLP_USER, lParam);
        return TRUE;
    }
    auto *log = reinterpret_cast<DialogLog *>(GetWindowLongPtrA(dialog, DWLP_USER));
    if (message != WM_COMMAND || !log || reinterpret_cast<HWND>(lParam) != log->gadget)
        return FALSE;
    log->codes.push_back(HIWORD(wParam));
    if (log->destroyOnTimeChange && HIWORD(wParam) == FTN_TIMECHANGED)
        DestroyWindow(log->gadget);
    return TRUE;
}

// The host's dialog: the tracker's notifications reach it renumbered and in
// order; a search that runs off the calendar is an error the user is shown;
// a host that destroys the gadget inside its time notification.
TEST_F(FreeTimeTest, DialogRenumberingCalendarEndAndHostileHost)
{
    DialogLog log;
    HWND dialog = CreateDialogParam(ResourceGetHandle(), "FREETIMEDIALOG", nullptr, LogDialogProc,
                                    reinterpret_cast<LPARAM>(&log));
    HWND g = log.gadget = GetDlgItem(dialog, ID);
    ASSERT_TRUE(g != nullptr);
    ShowWindow(dialog, SW_SHOW);
    tracker = reinterpret_cast<HWND>(Send(g, FTM_GETTRACKER, 0));
    Meeting(0, 10, 0, 60);
    PumpMessages();
    log.codes.clear();
    DateTimeValue date = At(3, 11);
    EXPECT_EQ(1, Send(g, FTM_SETDATE, 0, &date));
    SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 150));  // on the grid
    SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 1));    // on the week's header
    const std::vector<WORD> expected = {FTN_TIMECHANGED, FTN_VIEWCHANGED, FTN_GRIDCLICK};
    EXPECT_EQ(expected, log.codes);

    date = MakeDate(2101, 12, 31, 22);
    Send(g, FTM_SETDATE, 0, &date);
    Send(g, FTM_ADDPERSON, 1, "Ann");
    Add(g, 1, BusyInterval{MakeDate(2101, 12, 31, 21), 180, 0, 0, 0});
    log.codes.clear();
    FreeSlotRequest q = Request({}, 0, 24 * 60 - 1);
    OSSetNoDateHigh(&q.limit);
    q.includeWeekends = 1;
    EXPECT_EQ(-1, Send(g, FTM_FINDFREESLOT, 0, &q));
    ASSERT_FALSE(log.codes.empty());
    EXPECT_EQ(FTN_ERROR, log.codes.back());
    {
        MessageBoxDriver boxes;
        boxes.Expect("An unexpected error occurred (RV_FreetimeError).", MB_OK | MB_ICONHAND, IDOK);
        UIHandleError(dialog);
    }
    log.destroyOnTimeChange = true;
    date = At(1, 11);
    EXPECT_EQ(-1, Send(g, FTM_SETDATE, 0, &date));
    EXPECT_FALSE(IsWindow(g));
    DestroyWindow(dialog);
}

// Every allocation and GDI object of a gadget's life refused in turn (a
// FreeTime with a person, painted; a TimeTracker and a TimeSetter made and
// destroyed): nothing drawn is left behind.
TEST_F(FreeTimeTest, EachRefusalLeavesNoGdiObject)
{
    ShowWindow(parent.Window(), SW_SHOW);
    for (const char *name : {"FreeTime", "TimeTracker", "TimeSetter"}) {
        auto life = [&] {
            HWND g = parent.CreateChild(name, ID, 0, 0, 0, 420, 300);
            if (g && !strcmp(name, "FreeTime")) {  // the others are made and destroyed
                Send(g, FTM_ADDPERSON, 1, "Ann"), Add(g, 1, Busy(0, 9, 0, 60)), Send(g, FTM_SETVIEWMODE, 1);
                UpdateWindow(g);
            }
            DestroyWindow(g);
        };
        const unsigned kinds = FailureSeam::Memory | FailureSeam::Gdi;
        unsigned points = 0;
        {
            FailureSeam count(kinds, 0);
            life();
            points = count.Calls();
        }
        // Counting the objects is slow under Wine: one count over all the runs.
        const long before = GdiObjectsInUse();
        for (unsigned n = 1; n <= points; n += MonkeySteps(1, 3), OSErrorClearError()) {
            FailureSeam seam(kinds, n);
            life();
        }
        EXPECT_EQ(before, GdiObjectsInUse()) << name << " over " << points << " refusals";
    }
}

// Random people, intervals, flags, redraw and views; after every step the
// tracker's list is the union of what counts as busy, and the clash answer
// that of the model.
TEST_F(FreeTimeTest, MonkeyKeepsUnionAndConflictWithTheModel)
{
    HWND g = Make(0);
    std::mt19937 rng(26);
    struct Person { bool present = false, optional = false; std::vector<BusyInterval> busy; };
    Person model[5];
    bool ignore = false, redraw = true;
    LONG meetStart = 13 * 60, meetLength = 60;
    for (int step = 0; step < MonkeySteps(400, 60); ++step) {
        int p = static_cast<int>(rng() % 5);
        Person &m = model[p];
        switch (rng() % 11) {
        case 0: if (!m.present) { Send(g, FTM_ADDPERSON, p, "x"); m = Person(); m.present = true; } break;
        case 1: Send(g, FTM_REMOVEPERSON, p); m = Person(); break;
        case 2: case 3: {
            BusyInterval b = Busy(0, 6 + static_cast<int>(rng() % 12), static_cast<int>(rng() % 4) * 15,
                                  rng() % 150, rng() % 3, rng() % 4 == 0 ? FTB_NOTBUSY : 0);
            if (Add(g, p, b) == 1 && m.present) m.busy.push_back(b);
            break;
        }
        case 4: {  // every interval of the id, or the only one whatever its id
            DWORD id = rng() % 3;
            SendMessageA(g, FTM_REMOVEBUSY, p, id);
            const bool only = m.busy.size() == 1;
            auto gone = [&](const BusyInterval &b) { return b.id == id || only; };
            m.busy.erase(std::remove_if(m.busy.begin(), m.busy.end(), gone), m.busy.end());
            break;
        }
        case 5: m.optional = m.present && rng() % 2; SendMessageA(g, FTM_SETOPTIONAL, p, m.optional); break;
        case 6: ignore = rng() % 2; Send(g, FTM_SETIGNOREOPTIONAL, ignore); break;
        case 7: redraw = rng() % 3 != 0; SendMessageA(g, WM_SETREDRAW, redraw, 0); break;
        case 8:
            meetStart = 6 * 60 + static_cast<LONG>(rng() % 50) * 15, meetLength = static_cast<LONG>(rng() % 90);
            Meeting(0, meetStart / 60, meetStart % 60, meetLength);
            Send(g, FTM_SETVIEWMODE, 1 + rng() % 2);
            break;
        case 9: { LPARAM off = rng() % 2; SendMessageA(g, FTM_SETUNAVAILABLE, p, off); if (off) m.busy.clear(); break; }
        case 10: {  // sizes from nothing, scrolls, clicks, fonts, sorts, states, weekends, hours
            const UINT chaos[] = {WM_HSCROLL, WM_LBUTTONDOWN, WM_SETFONT, FTM_SETSORTMODE, FTM_SETSTATE,
                                  FTM_SETSHOWWEEKEND, FTM_SETHOURSINVIEW};
            SetWindowPos(g, nullptr, 0, 0, rng() % 700, rng() % 500, SWP_NOMOVE | SWP_NOZORDER);
            UINT what = chaos[rng() % 7];
            SendMessageA(g, what, what == WM_SETFONT ? reinterpret_cast<WPARAM>(GetStockObject(SYSTEM_FONT)) : rng() % 26,
                         what == WM_HSCROLL ? reinterpret_cast<LPARAM>(GetDlgItem(g, 2)) : LPARAM(rng() % 0x2000000));
            UpdateWindow(g);
            break;
        }
        }
        if (!redraw)
            continue;
        // Every busy minute, in the model and in the tracker's blocks, which
        // must not overlap one another.
        std::set<LONG> busy, given;
        auto cover = [](std::set<LONG> &minutes, const BusyInterval &b) {
            for (LONG t = MinuteOf(b.start); t < MinuteOf(b.start) + LONG(b.lengthMinutes); ++t)
                minutes.insert(t);
        };
        for (const Person &q : model)
            for (const BusyInterval &b : q.busy)
                if (!(b.flags & FTB_NOTBUSY) && !(ignore && q.optional))
                    cover(busy, b);
        size_t total = 0;
        for (const BusyInterval &b : TrackerSpy::list)
            cover(given, b), total += b.lengthMinutes;
        ASSERT_EQ(total, given.size()) << "step " << step << ": the tracker's blocks overlap";
        ASSERT_EQ(busy, given) << "step " << step;
        bool clash = false;
        for (LONG t = meetStart; t < meetStart + meetLength && !clash; ++t)
            clash = busy.count(t) != 0;
        ASSERT_EQ(clash ? 1 : 0, Send(g, FTM_GETCONFLICT, 0)) << "step " << step;
    }
}

}  // namespace
