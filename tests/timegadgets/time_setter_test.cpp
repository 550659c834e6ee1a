// TimeSetter: setters and their limits, key steps and Shift snapping, the
// rounding of clicks, dragging the label, the held arrows and the automatic
// scroll, the window text both ways. Its monkey runs in random_host_test.
#include "qz_test.h"
#include "window_harness.h"
#include <string>

namespace {

const int ID = 41;
const int kMinutesPerPixelHeight = 8 * 60;  // scale height: one pixel a minute over 8 hours

std::string TimeText(const DateTimeValue &t)
{
    char text[20] = {};
    OSDateTimeToString(&t, text, nullptr, DTS_TIME, sizeof text);
    return text;
}

std::string WindowText(HWND g)
{
    char text[64] = {};
    SendMessageA(g, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
    return text;
}

class TimeSetterTest : public GadgetTest {
protected:
    RecordingParent parent{300, 700};
    HWND g = nullptr;
    DateTimeValue day = MakeDate(2026, 3, 10);
    // Where the gadget puts its parts, from its client size and font.
    LONG labelWidth = 0, labelHeight = 0, scaleTop = 0, scaleLeft = 0, scaleRight = 0, centreX = 0;

    void SetUp() override
    {
        GadgetTest::SetUp();
        ThreadKeys(0);
        g = Make(kMinutesPerPixelHeight);
    }
    void TearDown() override
    {
        ThreadKeys(0);
        DestroyWindow(g);
        GadgetTest::TearDown();
    }
    HWND Make(int scaleHeight)
    {
        HWND w = parent.CreateChild("TimeSetter", ID, 0, 10, 10, 50, 100);
        EXPECT_TRUE(w != nullptr);
        TEXTMETRICA tm = FontMetrics(HGDIOBJ(SendMessageA(w, WM_GETFONT, 0, 0)));
        labelHeight = (tm.tmHeight - tm.tmDescent + 2) | 1;
        RECT rc;
        GetWindowRect(w, &rc);
        SetWindowPos(w, nullptr, 0, 0, rc.right - rc.left, scaleHeight + 71 + 2 * (labelHeight / 2),
                     SWP_NOMOVE | SWP_NOZORDER);
        GetClientRect(w, &rc);
        labelWidth = rc.right - 20;
        scaleLeft = (rc.right - labelWidth - 10) / 2;
        scaleRight = scaleLeft + labelWidth + 10;
        centreX = scaleLeft + (labelWidth + 10) / 2;
        scaleTop = labelHeight / 2 + 44;
        return w;
    }
    DateTimeValue At(unsigned hour, unsigned minute) const
    {
        return MakeDate(day.year, day.month, day.day, hour, minute);
    }
    void Set(UINT message, const DateTimeValue &t) { ASSERT_EQ(1, SendMessageA(g, message, 0, (LPARAM)&t)); }
    DateTimeValue Get(UINT message)
    {
        DateTimeValue t = {};
        EXPECT_EQ(1, SendMessageA(g, message, 0, reinterpret_cast<LPARAM>(&t)));
        return t;
    }
    // View at 08:00, value at `hour`:`minute`, record emptied.
    void Start(unsigned hour, unsigned minute)
    {
        Set(TSM_SETVIEWSTART, At(8, 0));
        Set(TSM_SETVALUE, At(hour, minute));
        parent.Pump();
        parent.Clear();
    }
    void Mouse(UINT message, LONG x, LONG y) { SendMessageA(g, message, MK_LBUTTON, MAKELPARAM(x, y)); }
    // How many times the parent heard `code` since the last Take.
    int Heard(WORD code)
    {
        parent.Pump();
        int n = 0;
        for (const Message &m : parent.Take())
            n += m.message == WM_COMMAND && m.wParam == MAKEWPARAM(ID, code);
        return n;
    }
    RECT LabelAt(LONG minutesFromTop) const
    {
        LONG top = scaleTop + minutesFromTop - labelHeight / 2;
        return {centreX - labelWidth / 2, top, centreX - labelWidth / 2 + labelWidth, top + labelHeight};
    }
};

#define TOLD(code) {WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID, code), 0}
const Message time_changed_seq[] = {TOLD(TSN_TIMECHANGED), {0, 0, 0, 0}};
const Message changed_then_error_seq[] = {TOLD(TSN_TIMECHANGED), TOLD(TSN_ERROR), {0, 0, 0, 0}};
const Message focus_seq[] = {TOLD(TSN_SETFOCUS), TOLD(TSN_KILLFOCUS), {0, 0, 0, 0}};

// Defaults, the limits of the setters, and the answers without a record.
TEST_F(TimeSetterTest, DefaultsAndSetterLimits)
{
    DateTimeValue now, view = Get(TSM_GETVIEWSTART), value = Get(TSM_GETVALUE);
    OSGetDateTime(&now);
    EXPECT_EQ(MakeDate(now.year, now.month, now.day, 8, 0, 0), view);
    EXPECT_EQ(now.day, value.day);
    EXPECT_EQ(8, SendMessageA(g, TSM_GETHOURSINVIEW, 0, 0));
    EXPECT_EQ(5, SendMessageA(g, TSM_GETFINESTEP, 0, 0));
    EXPECT_EQ(30, SendMessageA(g, TSM_GETCOARSESTEP, 0, 0));
    EXPECT_EQ(0x818100, SendMessageA(g, TSM_GETBACKCOLOUR, 0, 0));
    EXPECT_EQ(1, labelWidth % 2);  // the width is forced to the label's, which is odd
    const struct { UINT set, get; WPARAM given; LRESULT result, after; } rows[] = {
        {TSM_SETHOURSINVIEW, TSM_GETHOURSINVIEW, 24, 1, 24},   {TSM_SETHOURSINVIEW, TSM_GETHOURSINVIEW, 25, -1, 24},
        {TSM_SETCOARSESTEP, TSM_GETCOARSESTEP, 59, 1, 59},     {TSM_SETCOARSESTEP, TSM_GETCOARSESTEP, 60, -1, 59},
        {TSM_SETCOARSESTEP, TSM_GETCOARSESTEP, 0, -1, 59},     {TSM_SETCOARSESTEP, TSM_GETCOARSESTEP, 0x10F, 1, 15},
        {TSM_SETFINESTEP, TSM_GETFINESTEP, 0x207, 1, 7},       {TSM_SETFINESTEP, TSM_GETFINESTEP, 200, 1, 200},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(row.result, SendMessageA(g, row.set, row.given, 0)) << std::hex << row.set << " " << row.given;
        EXPECT_EQ(row.after, SendMessageA(g, row.get, 0, 0)) << std::hex << row.set << " " << row.given;
    }
    DateTimeValue bad = At(8, 0);
    bad.month = 13;
    EXPECT_EQ(-1, SendMessageA(g, TSM_SETVALUE, 0, reinterpret_cast<LPARAM>(&bad)));
    EXPECT_NE(RV_Success, OSErrorGetErrorValue());
    EXPECT_EQ(-1, SendMessageA(g, TSM_GETVALUE, 0, 0));
    EXPECT_EQ(view, Get(TSM_GETVIEWSTART));
    // No hours in view is taken, and a click then fails instead of dividing by 0.
    OSErrorClearError();
    EXPECT_EQ(1, SendMessageA(g, TSM_SETHOURSINVIEW, 0, 0));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    parent.Pump();
    parent.Clear();
    Mouse(WM_LBUTTONDOWN, centreX, scaleTop + 100);
    Mouse(WM_LBUTTONUP, centreX, scaleTop + 100);
    EXPECT_EQ(1, Heard(TSN_ERROR));
    // The steps answer 255 for a window without a record.
    EXPECT_EQ(255, GadTSWndProc(parent.Window(), TSM_GETFINESTEP, 0, 0));
    EXPECT_EQ(255, GadTSWndProc(parent.Window(), TSM_GETCOARSESTEP, 0, 0));
    // The width stays the label's whatever the host asks.
    SetWindowPos(g, nullptr, 0, 0, 400, 300, SWP_NOMOVE | SWP_NOZORDER);
    RECT rc;
    GetClientRect(g, &rc);
    EXPECT_EQ(labelWidth + 20, rc.right);
    EXPECT_EQ(300, rc.bottom);
}

// A key moves by the fine step and snaps by the step in force; the view
// follows a value that leaves it. Each step sets the text and notifies once.
TEST_F(TimeSetterTest, KeyStepsSnapAndPushTheView)
{
    const struct { unsigned hour, minute; UINT key; bool shift; unsigned toHour, toMinute, viewHour, viewMinute; }
    rows[] = {
        {10, 40, VK_DOWN, false, 10, 45, 8, 0}, {10, 40, VK_DOWN, true, 10, 30, 8, 0},
        {10, 42, VK_UP, false, 10, 35, 8, 0},   {16, 0, VK_UP, true, 15, 30, 8, 0},
        {8, 3, VK_UP, false, 7, 55, 7, 55},     {16, 0, VK_DOWN, false, 16, 5, 8, 5},
        {15, 58, VK_DOWN, false, 16, 0, 8, 0},
    };
    for (const auto &row : rows) {
        Start(row.hour, row.minute);
        ThreadKeys(row.shift);
        SendMessageA(g, WM_KEYDOWN, row.key, 0);
        ThreadKeys(0);
        EXPECT_EQ(At(row.toHour, row.toMinute), Get(TSM_GETVALUE)) << row.hour << ":" << row.minute;
        EXPECT_EQ(At(row.viewHour, row.viewMinute), Get(TSM_GETVIEWSTART)) << row.hour << ":" << row.minute;
        EXPECT_SEQUENCE(parent, time_changed_seq, "key step");
        EXPECT_EQ(TimeText(Get(TSM_GETVALUE)), WindowText(g));
    }
    Start(10, 0);
    SendMessageA(g, WM_KEYDOWN, VK_LEFT, 0);
    EXPECT_EQ(0, Heard(TSN_TIMECHANGED));
}

// A click on the scale goes to the nearest hour: minute 29 down, 30 up.
// One pixel is one minute here.
TEST_F(TimeSetterTest, ClicksRoundToTheNearestHour)
{
    const struct { BYTE fine; LONG minutesFromTop; unsigned hour; } rows[] = {
        {1, 149, 10}, {1, 150, 11}, {5, 154, 11}, {5, 148, 10}, {1, 0, 8}, {1, 479, 16}};
    for (const auto &row : rows) {
        Start(12, 0);
        SendMessageA(g, TSM_SETFINESTEP, row.fine, 0);
        Mouse(WM_LBUTTONDOWN, centreX + labelWidth / 2 + 3, scaleTop + row.minutesFromTop);
        Mouse(WM_LBUTTONUP, 0, 0);
        EXPECT_EQ(At(row.hour, 0), Get(TSM_GETVALUE)) << row.minutesFromTop;
        EXPECT_EQ(1, Heard(TSN_TIMECHANGED));
        EXPECT_EQ(nullptr, GetCapture());
    }
}

// Dragging the label moves the value by whole snapped steps and repaints
// the label at its new place; the release sets the text once more. Losing
// the capture (a box opened, another window) ends a drag at once: the value
// stays, nothing more is told, and the next press starts anew.
TEST_F(TimeSetterTest, DraggingTheLabelMovesTheValueUntilTheCaptureGoes)
{
    Start(10, 0);
    RECT before = LabelAt(120);
    EXPECT_GT(Readback::Of(g).Count(0xC0C0C0, &before), labelWidth);
    Mouse(WM_LBUTTONDOWN, centreX, scaleTop + 120);
    EXPECT_EQ(g, GetCapture());
    const struct { LONG y; bool shift; unsigned hour, minute; } moves[] = {
        {127, false, 10, 5}, {133, false, 10, 10}, {131, false, 10, 10}, {160, true, 10, 30}, {200, false, 11, 20}};
    for (const auto &m : moves) {
        ThreadKeys(m.shift);
        Mouse(WM_MOUSEMOVE, centreX, scaleTop + m.y);
        ThreadKeys(0);
        EXPECT_EQ(At(m.hour, m.minute), Get(TSM_GETVALUE)) << m.y;
    }
    EXPECT_EQ(5, Heard(TSN_TIMECHANGED));
    Readback shown = Readback::Of(g);
    RECT after = LabelAt(200);
    EXPECT_EQ(0, shown.Count(0xC0C0C0, &before));
    EXPECT_GT(shown.Count(0xC0C0C0, &after), labelWidth);
    EXPECT_EQ(0xFFFFFFu, shown.At(after.left, after.top));
    EXPECT_EQ(0u, shown.At(after.right - 1, after.bottom - 1));
    Mouse(WM_LBUTTONUP, centreX, scaleTop + 200);
    EXPECT_EQ(1, Heard(TSN_TIMECHANGED));
    EXPECT_EQ(TimeText(At(11, 20)), WindowText(g));
    EXPECT_EQ(nullptr, GetCapture());
    Mouse(WM_LBUTTONDOWN, centreX, scaleTop + 200);
    SendMessageA(g, WM_CANCELMODE, 0, 0);
    EXPECT_EQ(nullptr, GetCapture());
    Mouse(WM_MOUSEMOVE, centreX, scaleTop + 260);
    EXPECT_EQ(At(11, 20), Get(TSM_GETVALUE));
    EXPECT_EQ(0, Heard(TSN_TIMECHANGED));
    Mouse(WM_LBUTTONDOWN, centreX, scaleTop + 200);
    EXPECT_EQ(g, GetCapture());
    Mouse(WM_LBUTTONUP, centreX, scaleTop + 200);
}

// A held arrow moves the view by 30 minutes at once and at every tick, each
// tick notifying; the arrow shows pressed until the release.
TEST_F(TimeSetterTest, HeldArrowRepeatsUntilReleased)
{
    Start(10, 0);
    LONG width = scaleRight - scaleLeft;
    RECT arrow = {scaleLeft + (width - 11) / 2, 6, scaleLeft + (width + 11) / 2, 19};
    LONG arrowX = arrow.left + 5;
    auto changedPixels = [&](const Readback &a, const Readback &b) {
        int changed = 0;
        for (LONG y = arrow.top; y < arrow.bottom; ++y)
            for (LONG x = arrow.left; x < arrow.right; ++x)
                changed += a.At(x, y) != b.At(x, y);
        return changed;
    };
    Readback raised = Readback::Of(g);
    Mouse(WM_LBUTTONDOWN, arrowX, 10);
    EXPECT_EQ(At(7, 30), Get(TSM_GETVIEWSTART));
    EXPECT_GT(changedPixels(raised, Readback::Of(g)), 50);
    int ticks = 0;
    DWORD start = GetTickCount();
    while (ticks < 3 && GetTickCount() - start < 10000) {
        PumpMessages();
        Sleep(10);
        ticks += Heard(TSN_TIMECHANGED);
    }
    Mouse(WM_LBUTTONUP, arrowX, 10);
    ticks += Heard(TSN_TIMECHANGED);
    EXPECT_GE(ticks, 3);
    DateTimeValue view = At(7, 30);
    OSAdjustDateTime(&view, 0, 0, 0, 0, -30 * ticks, 0, 0);
    EXPECT_EQ(view, Get(TSM_GETVIEWSTART));
    EXPECT_EQ(At(10, 0), Get(TSM_GETVALUE));
    Sleep(200);
    PumpMessages();
    EXPECT_EQ(0, Heard(TSN_TIMECHANGED));
    EXPECT_EQ(0, changedPixels(raised, Readback::Of(g)));
}

// Dragging past the top starts the automatic scroll: the value rides on the
// top of the view and the step doubles at the first tick and every six
// ticks, up to an hour. Past the bottom, the value rides on the foot.
TEST_F(TimeSetterTest, AutomaticScrollAccelerates)
{
    Start(8, 10);
    Mouse(WM_LBUTTONDOWN, centreX, scaleTop + 10);
    Mouse(WM_MOUSEMOVE, centreX, scaleTop - 5);
    KillTimer(g, 5);  // ticks are sent by hand below
    DateTimeValue view = At(7, 55);
    EXPECT_EQ(view, Get(TSM_GETVIEWSTART));
    EXPECT_EQ(view, Get(TSM_GETVALUE));
    parent.Pump();
    parent.Clear();
    const int steps[] = {10, 10, 10, 10, 10, 10, 20, 20, 20, 20, 20, 20, 40, 40, 40, 40, 40, 40, 60, 60};
    for (int step : steps) {
        SendMessageA(g, WM_TIMER, 5, 0);
        OSAdjustDateTime(&view, 0, 0, 0, 0, -step, 0, 0);
        ASSERT_EQ(view, Get(TSM_GETVIEWSTART)) << step;
        EXPECT_EQ(view, Get(TSM_GETVALUE));
    }
    EXPECT_EQ(20, Heard(TSN_TIMECHANGED));
    Mouse(WM_LBUTTONUP, centreX, 0);
    EXPECT_EQ(nullptr, GetCapture());

    Start(15, 50);
    Mouse(WM_LBUTTONDOWN, centreX, scaleTop + 470);
    Mouse(WM_MOUSEMOVE, centreX, scaleTop + 490);
    KillTimer(g, 5);
    SendMessageA(g, WM_TIMER, 5, 0);
    Mouse(WM_LBUTTONUP, centreX, 0);
    EXPECT_EQ(At(8, 15), Get(TSM_GETVIEWSTART));
    EXPECT_EQ(At(16, 15), Get(TSM_GETVALUE));
}

// Text in: the time is taken on the value's date, the text kept as given;
// unreadable text gives the current time and an error after the change.
TEST_F(TimeSetterTest, WindowTextInAndOut)
{
    Start(12, 0);
    std::string typed = TimeText(At(10, 30));
    SetWindowTextA(g, typed.c_str());
    EXPECT_EQ(At(10, 30), Get(TSM_GETVALUE));
    EXPECT_SEQUENCE(parent, time_changed_seq, "typed time");
    EXPECT_EQ(typed, WindowText(g));
    const char *unreadable = "77:88";
    DateTimeValue parsed;
    ASSERT_FALSE(OSStringToDateTimeTimeBias(&parsed, unreadable));
    SetWindowTextA(g, unreadable);
    EXPECT_SEQUENCE(parent, changed_then_error_seq, "unreadable text");
    EXPECT_EQ(unreadable, WindowText(g));
    DateTimeValue now, value = Get(TSM_GETVALUE);
    OSGetDateTime(&now);
    EXPECT_EQ(day.day, value.day);
    EXPECT_EQ(now.hour, value.hour);
    Set(TSM_SETVALUE, At(9, 5));
    EXPECT_EQ(TimeText(At(9, 5)), WindowText(g));
    parent.Pump();
    parent.Clear();
    SendMessageA(g, WM_SETFOCUS, 0, 0);
    SendMessageA(g, WM_KILLFOCUS, 0, 0);
    EXPECT_SEQUENCE(parent, focus_seq, "focus");
}

// Over 8 * perHour + 2 pixels the first two hours are a pixel taller; the
// second counts as taller once its base, perHour + 1, reaches the scale's top.
TEST_F(TimeSetterTest, TallerHourFromTheScaleTop)
{
    for (LONG perHour : {scaleTop - 2, scaleTop - 1, scaleTop}) {
        DestroyWindow(g);
        g = Make(8 * perHour + 2);
        SendMessageA(g, TSM_SETFINESTEP, 1, 0);
        Start(9, 59);
        RECT label = LabelAt(perHour + 1 + (perHour + (perHour + 1 >= scaleTop)) * 59 / 60);
        Readback shown = Readback::Of(g);
        EXPECT_EQ(0xFFFFFFu, shown.At(label.left, label.top)) << perHour;
        EXPECT_EQ(0u, shown.At(label.right - 1, label.bottom - 1)) << perHour;
    }
}

// The scale takes the contrast colour of the background.
TEST_F(TimeSetterTest, BackColourSetsScaleContrast)
{
    Start(12, 0);
    const struct { COLORREF back, scale; } rows[] = {{RGB(255, 255, 255), 0}, {RGB(0, 0, 128), 0xFFFFFF}, {0x818100, 0}};
    for (const auto &row : rows) {
        EXPECT_EQ(1, SendMessageA(g, TSM_SETBACKCOLOUR, 0, row.back));
        EXPECT_EQ(static_cast<LRESULT>(row.back), SendMessageA(g, TSM_GETBACKCOLOUR, 0, 0));
        Readback shown = Readback::Of(g);
        EXPECT_EQ(row.back, shown.At(1, 1));
        EXPECT_EQ(row.scale, shown.At(scaleLeft, scaleTop + 300)) << std::hex << row.back;
        EXPECT_EQ(row.scale, shown.At(scaleLeft + 4, scaleTop + 360));  // 14:00's tick
    }
}

}  // namespace
