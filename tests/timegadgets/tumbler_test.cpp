// Tumbler: stepping, limits, leaving the edit, the display forms, keys,
// mouse and the forced height, through messages as a host drives it.
#include "qz_test.h"
#include "window_harness.h"
#include "failure_seam.h"

namespace {

const int ID = 77;

class TumblerTest : public GadgetTest {
protected:
    RecordingParent parent;
    HWND g = nullptr;
    void SetUp() override { GadgetTest::SetUp(), g = Make(parent); }
    void TearDown() override { DestroyWindow(g), GadgetTest::TearDown(); }
    HWND Make(RecordingParent &parent, DWORD style = 0)
    {
        HWND g = parent.CreateChild("Tumbler", ID, style, 10, 10, 120, 40);
        EXPECT_TRUE(g != nullptr);
        parent.Ignore(WM_CTLCOLOREDIT);
        parent.Ignore(WM_CTLCOLORSTATIC);
        return g;
    }
    static void SetRange(HWND g, LONG minimum, LONG maximum, LONG value, LONG step)
    {
        LONG range[4] = {minimum, maximum, value, step};
        EXPECT_EQ(0, SendMessageA(g, TUM_SETRANGE, 0, reinterpret_cast<LPARAM>(range)));
    }
    static LONG Value(HWND g)
    {
        BOOL ok = FALSE;
        LONG v = static_cast<LONG>(GetDlgItemInt(GetParent(g), ID, &ok, TRUE));
        EXPECT_TRUE(ok);
        return v;
    }
    static std::string EditText(HWND g)
    {
        char text[128] = {};
        GetWindowTextA(GetDlgItem(g, 1), text, sizeof text);
        return text;
    }
    // The font's line and five pixels, as the gadget sizes itself.
    static int LineHeight(HFONT font)
    {
        TEXTMETRICA tm = FontMetrics(font);
        return tm.tmHeight + tm.tmExternalLeading + 5;
    }
    static int ButtonX(HWND g)
    {
        RECT client;
        GetClientRect(g, &client);
        return client.right - GetSystemMetrics(SM_CXVSCROLL);
    }
};

// Up rounds to the next multiple of the step; down divides the unsigned
// pattern, so it skips a multiple and turns negative below the step. The
// maximum wins when the limits cross.
TEST_F(TumblerTest, StepsByTheUnsignedRuleAndClamps)
{
    const struct { LONG minimum, maximum, value, step; bool up; LONG expected; } rows[] = {
        {0, 99, 7, 5, true, 10},       {0, 99, 7, 5, false, 0},     {0, 99, 10, 5, false, 5},
        {0, 99, 98, 5, true, 99},      {0, 99, 3, 5, false, 0},     {-20, 20, 3, 5, false, -6},
        {-20, 20, -6, 5, false, -11},  {-20, 20, -6, 5, true, -1},  {-20, 20, -18, 5, false, -20},
        {50, 10, 20, 1, true, 10},     {50, 10, 20, 1, false, 10},  {-100, 100, 0, 1, true, 1},
        {-2000000000, 2000000000, -1999999999, 1000000000, true, -1294967296},
        {10, 20, 12, 1, false, 11},    {10, 20, 11, 1, false, 10},  {10, 20, 10, 1, false, 10},
        {10, 20, 18, 1, true, 19},     {10, 20, 19, 1, true, 20},   {10, 20, 20, 1, true, 20},
        {0, 99, 4, 0, true, 4},  // a step of 0 is refused with an error, not a division by 0
    };
    for (const auto &row : rows) {
        OSErrorClearError();
        SetRange(g, row.minimum, row.maximum, row.value, row.step);
        ASSERT_EQ(row.value, Value(g));
        SendMessageA(g, WM_KEYDOWN, row.up ? VK_UP : VK_DOWN, 0);
        SendMessageA(g, WM_KEYUP, row.up ? VK_UP : VK_DOWN, 0);
        EXPECT_EQ(row.expected, Value(g)) << row.value << (row.up ? " up " : " down ") << row.step;
        EXPECT_TRUE(row.step || OSErrorGetErrorValue() == RV_BadParms);
    }
}

// A button that cannot be composed for want of a GDI object records why.
TEST_F(TumblerTest, PaintFailuresAreRecorded)
{
    auto paint = [&] {
        RECT buttons = {ButtonX(g), 0, 1000, 1000};
        InvalidateRect(g, &buttons, FALSE);
        UpdateWindow(g);
    };
    unsigned points = 0;
    {
        FailureSeam count(FailureSeam::Gdi, 0);
        paint();
        points = count.Calls();
    }
    EXPECT_EQ(6u, points);  // per button: the canvas, its DC and the glyph's DC
    for (unsigned n = 1; n <= points; ++n) {
        OSErrorClearError();
        {
            FailureSeam seam(FailureSeam::Gdi, n);
            paint();
        }
        EXPECT_EQ(RV_GDIError, OSErrorGetErrorValue()) << n;
    }
}

#define TOLD(code) {WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID, code), 0}
static const Message key_step_seq[] = {
    {WM_COMMAND, sent | wparam | lparam_is_child | optional, MAKEWPARAM(ID, EN_UPDATE), 0}, TOLD(EN_CHANGE), {0, 0, 0, 0}};
static const Message key_release_seq[] = {TOLD(EN_CHANGE), {0, 0, 0, 0}};
static const Message nothing_seq[] = {{0, 0, 0, 0}};

// The edit hands the step keys to the gadget: the press steps (the edit's
// own notifications are forwarded), the release adds EN_CHANGE. '+' steps
// on its character and is released by whatever key comes up next.
TEST_F(TumblerTest, StepKeysNotifyOnPressAndRelease)
{
    HWND edit = GetDlgItem(g, 1);
    SetRange(g, 0, 99, 10, 1);
    parent.Pump();
    parent.Clear();
    const struct { UINT down, ch; LONG expected; } rows[] = {
        {VK_UP, 0, 11}, {VK_DOWN, 0, 10}, {VK_ADD, '+', 11}, {VK_SUBTRACT, '-', 10}, {VK_OEM_PLUS, '+', 11}};
    for (const auto &row : rows) {
        SendMessageA(edit, WM_KEYDOWN, row.down, 0);
        if (row.ch)
            SendMessageA(edit, WM_CHAR, row.ch, 0);
        EXPECT_SEQUENCE(parent, key_step_seq, "step key pressed");
        SendMessageA(edit, WM_KEYUP, row.down, 0);
        EXPECT_SEQUENCE(parent, key_release_seq, "step key released");
        EXPECT_EQ(row.expected, Value(g));
        EXPECT_EQ(std::to_string(row.expected), EditText(g));
    }
    // Other keys stay with the edit and send nothing of the gadget's own.
    SendMessageA(edit, WM_KEYDOWN, VK_LEFT, 0);
    SendMessageA(edit, WM_KEYUP, VK_LEFT, 0);
    EXPECT_SEQUENCE(parent, nothing_seq, "arrow left");
}

// Leaving the edit: empty or low (compared unsigned) becomes the minimum,
// high becomes the maximum; EN_CHANGE goes ahead of the edit's EN_KILLFOCUS.
TEST_F(TumblerTest, LeavingTheEditValidates)
{
    HWND edit = GetDlgItem(g, 1);
    const struct { LONG minimum, maximum; const char *typed; LONG expected; } rows[] = {
        {10, 50, "5", 10},  {10, 50, "", 10},  {10, 50, "77", 50},
        {10, 50, "30", 30}, {-10, 50, "5", -10}, {-10, 50, "-3", 50}};
    for (const auto &row : rows) {
        SetRange(g, row.minimum, row.maximum, row.minimum, 1);
        SetWindowTextA(edit, row.typed);
        parent.Pump();
        parent.Clear();
        SendMessageA(edit, WM_KILLFOCUS, 0, 0);
        EXPECT_EQ(row.expected, Value(g)) << row.typed;
        parent.Pump();
        std::vector<Message> seen = parent.Take();
        ASSERT_GE(seen.size(), 2u);
        EXPECT_EQ(MAKEWPARAM(ID, EN_CHANGE), seen[seen.size() - 2].wParam);
        EXPECT_EQ(MAKEWPARAM(ID, EN_KILLFOCUS), seen.back().wParam);
    }
}

// The time form shows the display text and gives minutes; hours and
// minutes win when both forms are asked for. A value the real form cannot
// show leaves the edit as it was.
TEST_F(TumblerTest, TimeFormsConvertBothWays)
{
    for (DWORD style : {DWORD(TUS_HOURMINUTE), DWORD(TUS_HOURMINUTE | TUS_REAL)}) {
        RecordingParent parent;
        HWND g = Make(parent, style);
        SetRange(g, 0, 1439, 90, 15);
        char display[64] = {};
        ASSERT_TRUE(OSConvertTumblerTimeStringToHourMinuteString("90", display));
        EXPECT_EQ(display, EditText(g)) << style;
        EXPECT_EQ(90, Value(g));
        EXPECT_EQ(2, SendMessageA(g, WM_GETTEXTLENGTH, 0, 0));
        SendMessageA(g, WM_KEYDOWN, VK_UP, 0);
        EXPECT_EQ(105, Value(g));
        ASSERT_TRUE(OSConvertTumblerTimeStringToHourMinuteString("105", display));
        EXPECT_EQ(display, EditText(g));
        // A short buffer is never written past its size.
        char small[4] = {'#', '#', '#', '#'};
        SendMessageA(g, WM_GETTEXT, 3, reinterpret_cast<LPARAM>(small));
        EXPECT_EQ('\0', small[2]);
        EXPECT_EQ('#', small[3]);
    }
    RecordingParent parent;
    HWND g = Make(parent, TUS_REAL);
    SetRange(g, 0, 1439, 90, 15);
    EXPECT_EQ("0", EditText(g));
    SetWindowTextA(GetDlgItem(g, 1), "");
    EXPECT_EQ(0, SendMessageA(g, WM_GETTEXTLENGTH, 0, 0));
}

// The gadget forces its height to the font's line and five pixels; the
// edit sits at (1, 2) beside the buttons.
TEST_F(TumblerTest, ForcesItsHeightFromTheFont)
{
    RECT client;
    GetClientRect(g, &client);
    EXPECT_EQ(LineHeight(static_cast<HFONT>(GetStockObject(ANSI_VAR_FONT))), client.bottom);
    HFONT big = CreateFontA(-30, 0, 0, 0, FW_NORMAL, 0, 0, 0, ANSI_CHARSET, 0, 0, 0, 0, "Arial");
    SendMessageA(g, WM_SETFONT, reinterpret_cast<WPARAM>(big), 0);
    EXPECT_EQ(reinterpret_cast<LRESULT>(big), SendMessageA(g, WM_GETFONT, 0, 0));
    SetWindowPos(g, nullptr, 0, 0, 150, 100, SWP_NOMOVE | SWP_NOZORDER);
    GetClientRect(g, &client);
    EXPECT_EQ(LineHeight(big), client.bottom);
    EXPECT_EQ(150, client.right);
    RECT edit;
    GetWindowRect(GetDlgItem(g, 1), &edit);
    MapWindowPoints(nullptr, g, reinterpret_cast<POINT *>(&edit), 2);
    EXPECT_EQ(1, edit.left);
    EXPECT_EQ(2, edit.top);
    EXPECT_EQ(ButtonX(g) - 1, edit.right);
    DestroyWindow(g);
    DeleteObject(big);
}

// Holding a button: one step at once; the first move onto the other half
// only stops it, coming back steps again; leaving releases; the release
// sends nothing of its own. The pressed face differs from the raised one.
// Held, a button repeats after the delay until it is released.
TEST_F(TumblerTest, MouseStepsChangesHalvesAfterAReleaseAndRepeatsWhenHeld)
{
    SetRange(g, 0, 99, 0, 1);
    const int x = ButtonX(g) + 3;
    RECT client;
    GetClientRect(g, &client);
    const int upY = 2, downY = client.bottom - 3;
    Readback raised = Readback::Of(g);
    auto press = [&](int y) { SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y)); };
    press(upY);
    EXPECT_EQ(1, Value(g));
    EXPECT_EQ(g, GetCapture());
    EXPECT_GT(raised.Differences(Readback::Of(g)), 0);
    // Where the pointer goes, and the value after: the other half, back,
    // within the half, off the buttons, back again.
    const struct { int x, y; LONG value; } moves[] = {
        {x, downY, 1}, {x, upY, 2}, {x, upY + 1, 2}, {x - 30, upY, 2}, {x, upY, 3}};
    for (const auto &m : moves) {
        SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(m.x, m.y));
        EXPECT_EQ(m.value, Value(g)) << m.x << "," << m.y;
    }
    parent.Pump();
    parent.Clear();
    SendMessageA(g, WM_LBUTTONUP, 0, MAKELPARAM(x, upY));
    EXPECT_SEQUENCE(parent, nothing_seq, "button up");
    EXPECT_EQ(nullptr, GetCapture());
    Readback released = Readback::Of(g);
    for (int y = 0; y < client.bottom; ++y)
        for (int bx = ButtonX(g); bx < client.right; ++bx)
            ASSERT_EQ(raised.At(bx, y), released.At(bx, y)) << bx << "," << y;
    press(downY);
    EXPECT_EQ(2, Value(g));
    SendMessageA(g, WM_LBUTTONUP, 0, MAKELPARAM(x, downY));
    // A press left of the buttons takes no step.
    SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, upY));
    EXPECT_EQ(2, Value(g));
    EXPECT_EQ(nullptr, GetCapture());
    // A slow machine takes longer to show the repeat, so the wait ends at
    // the second step after the press's own or after 10 s.
    press(upY);
    for (DWORD start = GetTickCount(); Value(g) <= 4 && GetTickCount() - start < 10000; Sleep(10))
        PumpMessages();
    LONG held = Value(g);
    EXPECT_GT(held, 4);
    SendMessageA(g, WM_LBUTTONUP, 0, 0);
    PumpMessages();
    Sleep(200);
    PumpMessages();
    EXPECT_EQ(held, Value(g));
}

}  // namespace
