// DateTracker: keys, the year limit, the month buttons and their repeat,
// the grid's rows and grey days, the focus rectangle, text in and out,
// through messages as a host drives it. Its monkey runs in random_host_test.
#include "qz_test.h"
#include "window_harness.h"
#include <algorithm>
#include <string>

namespace {

const int ID = 55;
const int kGlyph = 9;  // the month buttons' pictures are 9 x 9

// What the gadget tells its parent, by notification code.
#define TOLD(code) {WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID, code), 0}
const Message nothing_seq[] = {{0, 0, 0, 0}};
const Message changed_seq[] = {TOLD(DTKN_DATECHANGED), {0, 0, 0, 0}};
const Message changed_twice_seq[] = {TOLD(DTKN_DATECHANGED), TOLD(DTKN_DATECHANGED), {0, 0, 0, 0}};
const Message chosen_seq[] = {TOLD(DTKN_DATECHOSEN), {0, 0, 0, 0}};
const Message click_seq[] = {TOLD(DTKN_DATECHANGED), TOLD(DTKN_DATECHOSEN), {0, 0, 0, 0}};
const Message bad_text_seq[] = {TOLD(DTKN_ERROR), TOLD(DTKN_DATECHANGED), {0, 0, 0, 0}};

// Where the gadget puts its grid and buttons, worked out from its client
// size and the system font, with Sunday as the week's start.
struct Layout {
    int left, top, width, height, rows;
    RECT prev, next;

    Layout(HWND g, const DateTimeValue &date)
    {
        RECT c;
        GetClientRect(g, &c);
        TEXTMETRICA tm = FontMetrics(nullptr);
        int line = tm.tmHeight + tm.tmExternalLeading + 1;
        int l = 2, t = 2, r = c.right - 2, b = c.bottom - 2;
        SetRect(&prev, l + 2, t + (line - kGlyph) / 2, l + 2 + kGlyph, t + (line - kGlyph) / 2 + kGlyph);
        SetRect(&next, r - kGlyph - 2, prev.top, r - 2, prev.bottom);
        width = (r - l) / 7;
        left = l + ((r - 7 * width - l) >> 1);
        top = t - 1 + line + line + 1 + 1;
        rows = OSDateTimeCalcNumRowsForMonth(&date, 0);
        height = (b - top) / rows;
        top += (b - top - height * rows) / 2;
    }
    POINT Cell(int row, int column) const
    {
        return {left + column * width + width / 2, top + row * height + height / 2};
    }
    // A corner of the cell away from its number.
    RECT Corner(int row, int column) const
    {
        int x = left + column * width + 2, y = top + row * height + 2;
        return {x, y, x + 3, y + 3};
    }
};

class DateTrackerTest : public GadgetTest {
protected:
    void SetUp() override
    {
        GadgetTest::SetUp();
        savedWeekStart_ = OSDateTimeGetWeekStart();
        OSDateTimeSetWeekStart(0);
        g = parent.CreateChild("DateTracker", ID, 0, 10, 10, 100, 100);
        ASSERT_TRUE(g != nullptr);
    }
    void TearDown() override
    {
        DestroyWindow(g);
        OSDateTimeSetWeekStart(savedWeekStart_);
        GadgetTest::TearDown();
    }
    RecordingParent parent;
    HWND g = nullptr;
    static void Set(HWND g, const DateTimeValue &d)
    {
        ASSERT_EQ(1, SendMessageA(g, DTKM_SETDATE, 0, reinterpret_cast<LPARAM>(&d))) << ToText(d);
        UpdateWindow(g);
    }
    static DateTimeValue Get(HWND g)
    {
        DateTimeValue d = {};
        EXPECT_EQ(1, SendMessageA(g, DTKM_GETDATE, 0, reinterpret_cast<LPARAM>(&d)));
        return d;
    }
    static std::string Text(HWND g)
    {
        char text[100] = {};
        return GetWindowTextA(g, text, sizeof text), text;
    }
    static std::string DateText(const DateTimeValue &d)
    {
        char text[80] = {};
        return OSDateTimeToString(&d, text, nullptr, DTS_SHORTDATE, sizeof text), text;
    }
    static DateTimeValue Today()
    {
        DateTimeValue d;
        return OSGetDateTime(&d), MakeDate(d.year, d.month, d.day);
    }
    static void Press(HWND g, POINT p) { SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y)); }
    static void Move(HWND g, POINT p) { SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(p.x, p.y)); }
    static void Release(HWND g, POINT p) { SendMessageA(g, WM_LBUTTONUP, 0, MAKELPARAM(p.x, p.y)); }
    static void Quiet(RecordingParent &parent)
    {
        parent.Pump();
        parent.Clear();
    }

private:
    LONG savedWeekStart_ = 0;
};

// Each key moves the date and tells the parent once; the text follows.
// Ctrl turns the month keys into year keys; Tab and Enter only choose.
// December 2100 is as far as the keys go, and nothing is told then.
TEST_F(DateTrackerTest, KeysMoveTheDateWithinTheYearLimit)
{
    const struct { DateTimeValue from; UINT key; bool control; DateTimeValue to; const Message *told; } rows[] = {
        {MakeDate(2024, 1, 31), VK_NEXT, false, MakeDate(2024, 2, 29), changed_seq},
        {MakeDate(2024, 3, 31), VK_PRIOR, false, MakeDate(2024, 2, 29), changed_seq},
        {MakeDate(2024, 2, 29), VK_NEXT, true, MakeDate(2025, 2, 28), changed_seq},
        {MakeDate(2024, 2, 10), VK_PRIOR, true, MakeDate(2023, 2, 10), changed_seq},
        {MakeDate(2024, 2, 29), VK_RIGHT, false, MakeDate(2024, 3, 1), changed_seq},
        {MakeDate(2024, 3, 1), VK_LEFT, false, MakeDate(2024, 2, 29), changed_seq},
        {MakeDate(2024, 3, 5), VK_UP, false, MakeDate(2024, 2, 27), changed_seq},
        {MakeDate(2024, 12, 28), VK_DOWN, false, MakeDate(2025, 1, 4), changed_seq},
        {MakeDate(1990, 6, 6), VK_HOME, false, Today(), changed_seq},
        {MakeDate(2024, 5, 5), VK_RETURN, false, MakeDate(2024, 5, 5), chosen_seq},
        {MakeDate(2024, 5, 5), VK_TAB, false, MakeDate(2024, 5, 5), chosen_seq},
        {MakeDate(2100, 12, 15), VK_NEXT, false, MakeDate(2100, 12, 15), nothing_seq},
        {MakeDate(2100, 12, 31), VK_RIGHT, false, MakeDate(2100, 12, 31), nothing_seq},
        {MakeDate(2100, 3, 1), VK_NEXT, true, MakeDate(2100, 3, 1), nothing_seq},
        {MakeDate(2024, 5, 5), 'A', false, MakeDate(2024, 5, 5), nothing_seq},
    };
    for (const auto &row : rows) {
        Set(g, row.from);
        Quiet(parent);
        ThreadKeys(row.control ? 2 : 0);  // the gadget reads Ctrl from the thread's key state
        SendMessageA(g, WM_KEYDOWN, row.key, 0);
        ThreadKeys(0);
        std::string context = ToText(row.from) + " key " + std::to_string(row.key);
        EXPECT_SEQUENCE(parent, row.told, context.c_str());
        EXPECT_EQ(row.to, Get(g)) << context;
        if (row.told != nothing_seq) {
            EXPECT_EQ(DateText(row.to), Text(g)) << context;
        }
    }
    const DateTimeValue refused[] = {MakeDate(2101, 1, 1), MakeDate(2024, 2, 30), MakeDate(2024, 13, 1)};
    for (const auto &d : refused)
        EXPECT_EQ(DTK_FAILURE, SendMessageA(g, DTKM_SETDATE, 0, reinterpret_cast<LPARAM>(&d))) << ToText(d);
    EXPECT_EQ(DTK_FAILURE, SendMessageA(g, DTKM_SETDATE, 0, 0));
    // The time of day given is dropped on the way out.
    Set(g, MakeDate(2030, 7, 9, 13, 45, 10));
    EXPECT_EQ(MakeDate(2030, 7, 9), Get(g));
}

// Text from outside: a date is taken and the text kept as given; other
// text gives today and an error notice; empty text does nothing. Hidden,
// the up and down keys move a day, and the text comes back through
// WM_SETTEXT, telling the parent a second time.
TEST_F(DateTrackerTest, WindowTextSetsTheDateAndHiddenKeysHandItBack)
{
    Set(g, MakeDate(2024, 5, 20));
    const std::string typed = DateText(MakeDate(2031, 8, 3)), bad = "no date at all";
    Quiet(parent);
    const struct { std::string text; const Message *told; DateTimeValue date; std::string shown; } rows[] = {
        {typed, changed_seq, MakeDate(2031, 8, 3), typed}, {"", nothing_seq, MakeDate(2031, 8, 3), typed},
        {bad, bad_text_seq, Today(), bad}};
    for (const auto &row : rows) {
        SetWindowTextA(g, row.text.c_str());
        EXPECT_SEQUENCE(parent, row.told, ("text \"" + row.text + "\"").c_str());
        EXPECT_EQ(row.date, Get(g)) << row.text;
        EXPECT_EQ(row.shown, Text(g));
    }

    Set(g, MakeDate(2024, 5, 20));
    ShowWindow(g, SW_HIDE);
    Quiet(parent);
    SendMessageA(g, WM_KEYDOWN, VK_DOWN, 0);
    EXPECT_SEQUENCE(parent, changed_twice_seq, "hidden, down");
    SendMessageA(g, WM_KEYDOWN, VK_UP, 0);
    SendMessageA(g, WM_KEYDOWN, VK_UP, 0);
    EXPECT_EQ(MakeDate(2024, 5, 19), Get(g));
    EXPECT_EQ(DateText(MakeDate(2024, 5, 19)), Text(g));
}

// Days of other months are grey; a month is as many rows as it needs, and a
// row wholly in the next month is not drawn.
TEST_F(DateTrackerTest, GreyCellsAndRowsFollowTheMonth)
{
    const struct { DateTimeValue month; std::vector<const char *> rows; /* 'g': a grey day */ } cases[] = {
        // February 2015 starts on a Sunday: four rows, all its own.
        {MakeDate(2015, 2, 10), {".......", ".......", ".......", "......."}},
        // September 2015: 30 and 31 August lead, 1 to 3 October trail, and
        // the row from 4 October is left out.
        {MakeDate(2015, 9, 10), {"gg.....", ".......", ".......", ".......", "....ggg"}},
        // August 2015 starts on a Saturday: six rows.
        {MakeDate(2015, 8, 10), {"gggggg.", ".......", ".......", ".......", ".......", "..ggggg"}},
    };
    for (const auto &c : cases) {
        Set(g, c.month);
        Layout layout(g, c.month);
        ASSERT_EQ(static_cast<int>(c.rows.size()), layout.rows);
        Readback shot = Readback::Of(g);
        for (int row = 0; row < layout.rows; ++row)
            for (int column = 0; column < 7; ++column) {
                RECT corner = layout.Corner(row, column);
                EXPECT_EQ(c.rows[row][column] == 'g', shot.Count(0xC0C0C0, &corner) == 9)
                    << ToText(c.month) << " row " << row << " column " << column;
            }
    }
}

// Moving within the month only moves the focus rectangle: the picture is
// then the same as a full paint of the new date, the old cell clean.
TEST_F(DateTrackerTest, FocusMovesWithoutTrace)
{
    for (UINT key : {VK_RIGHT, VK_DOWN, VK_LEFT}) {
        Set(g, MakeDate(2015, 9, 10));
        Readback before = Readback::Of(g);
        SendMessageA(g, WM_KEYDOWN, key, 0);
        DateTimeValue moved = Get(g);
        Readback after = Readback::Of(g);
        EXPECT_GT(before.Differences(after), 0) << key;
        Set(g, moved);
        EXPECT_EQ(0, Readback::Of(g).Differences(after)) << key;
    }
}

// A click on a day selects it and chooses it; a click on a grey day of the
// next month chooses that; a drag off the gadget changes nothing more.
TEST_F(DateTrackerTest, MouseSelectsAndChoosesDays)
{
    const DateTimeValue september = MakeDate(2015, 9, 10);
    Set(g, september);
    Layout layout(g, september);
    Quiet(parent);
    const struct { int row, column; DateTimeValue day; } clicks[] = {
        {2, 3, MakeDate(2015, 9, 16)}, {4, 5, MakeDate(2015, 10, 2)}};
    for (const auto &click : clicks) {
        Press(g, layout.Cell(click.row, click.column));
        Release(g, layout.Cell(click.row, click.column));
        EXPECT_SEQUENCE(parent, click_seq, ToText(click.day).c_str());
        EXPECT_EQ(click.day, Get(g));
        EXPECT_EQ(nullptr, GetCapture());
    }

    // Below the last row lies the row that was left out: its cells have no
    // date, so a click there only chooses the date as it is.
    for (const DateTimeValue &month : {september, MakeDate(2015, 2, 10)}) {
        Set(g, month);
        RECT client;
        GetClientRect(g, &client);
        POINT below = {layout.Cell(0, 0).x, client.bottom - 1};
        Quiet(parent);
        Press(g, below);
        Release(g, below);
        EXPECT_SEQUENCE(parent, chosen_seq, "click below the last row");
        EXPECT_EQ(month, Get(g));
    }

    Set(g, september);
    Quiet(parent);
    Press(g, layout.Cell(1, 1));
    Move(g, {-20, layout.Cell(1, 1).y});
    Move(g, {500, 500});
    Release(g, {500, 500});
    EXPECT_SEQUENCE(parent, changed_seq, "drag off the gadget");
    EXPECT_EQ(MakeDate(2015, 9, 7), Get(g));
}

// A month button steps once at once and looks pressed; leaving it shows it
// up again; released, it looks as before the press.
TEST_F(DateTrackerTest, MonthButtonsStepAndShowTheirState)
{
    Set(g, MakeDate(2015, 9, 10));
    Layout layout(g, MakeDate(2015, 9, 10));
    for (bool next : {false, true}) {
        const RECT &button = next ? layout.next : layout.prev;
        auto shot = [&] {  // the button and a pixel round it
            HDC dc = GetDC(g);
            Readback r = ReadDC(dc, button.left - 1, button.top - 1, kGlyph + 2, kGlyph + 2);
            ReleaseDC(g, dc);
            return r;
        };
        Readback up = shot();
        POINT on = {button.left + 4, button.top + 4};
        Quiet(parent);
        Press(g, on);
        EXPECT_SEQUENCE(parent, changed_seq, next ? "next pressed" : "prev pressed");
        EXPECT_EQ(next ? MakeDate(2015, 10, 10) : MakeDate(2015, 8, 10), Get(g));
        EXPECT_GT(up.Differences(shot()), 0);
        Move(g, {on.x, -5});
        Release(g, {on.x, -5});
        EXPECT_SEQUENCE(parent, nothing_seq, "released off the button");
        EXPECT_EQ(0, up.Differences(shot()));
        Set(g, MakeDate(2015, 9, 10));
    }
}

// Held: nothing more for a second, then a month at each tick, and after two
// seconds at the fast pace. Every step is told once.
TEST_F(DateTrackerTest, HeldMonthButtonRepeatsAfterItsDelays)
{
    Set(g, MakeDate(2000, 1, 15));
    Layout layout(g, MakeDate(2000, 1, 15));
    POINT on = {layout.next.left + 4, layout.next.top + 4};
    Quiet(parent);
    auto months = [&] {
        DateTimeValue d = Get(g);
        return (d.year - 2000) * 12 + d.month - 1;
    };
    // Pumps until `count` months are stepped or `limit` ms pass from `from`.
    auto waitFor = [&](int count, DWORD limit, DWORD from = GetTickCount()) {
        while (months() < count && GetTickCount() - from < limit) {
            PumpMessages();
            Sleep(5);
        }
    };
    DWORD pressed = GetTickCount();
    Press(g, on);
    EXPECT_EQ(1, months());
    waitFor(INT_MAX, 900, pressed);
    EXPECT_EQ(1, months());
    waitFor(2, 10000);
    EXPECT_GE(months(), 2);
    // Past two seconds the steps come at 55 ms: from one step, four more
    // take far less than the second they would at 250 ms. The fastest of
    // four runs counts, so a stall of a loaded machine does not.
    waitFor(INT_MAX, 2300, pressed);
    DWORD fastest = ~0u;
    for (int run = 0; run < 4; run++) {
        waitFor(months() + 1, 10000);
        int fastFrom = months();
        DWORD fastStart = GetTickCount();
        waitFor(fastFrom + 4, 10000);
        fastest = std::min(fastest, GetTickCount() - fastStart);
    }
    EXPECT_LT(fastest, 800u);
    Release(g, on);
    int held = months();
    parent.Pump();
    std::vector<Message> told = parent.Take();
    EXPECT_EQ(static_cast<size_t>(held), told.size());
    for (const Message &m : told)
        EXPECT_EQ(MAKEWPARAM(ID, DTKN_DATECHANGED), m.wParam);
    Sleep(150);
    PumpMessages();
    EXPECT_EQ(held, months());
}

}  // namespace
