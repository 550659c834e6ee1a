// Status boxes driven like a host's job: the box over a disabled parent,
// Cancel by button and by system menu, resume, the close at the top value,
// the flags, two boxes at once, a box closed from inside its own gauge's
// pump, and a monkey run.
#include "qz_test.h"
#include "window_harness.h"
#include <random>
#include <string>

namespace {

std::string BoxText(HWND box)
{
    char text[64] = {};
    GetDlgItemTextA(box, 100, text, sizeof text);
    return text;
}

// The edge of the gauge's bar along its top row, in bar-coloured pixels.
long GaugeEdge(HWND box)
{
    Readback rb = Readback::Of(GetDlgItem(box, 101));
    RECT top = {0, 0, rb.Width(), 1};
    return rb.Count(0xFF0000, &top);
}

struct StatusBoxTest : GadgetTest {
    RecordingParent parent;
};

TEST_F(StatusBoxTest, JobLoopPollsCancelResumesAndCloses)
{
    HWND box = StatusBox(parent.Window(), "Copying", 0, 10, STATUS_CANCEL);
    ASSERT_TRUE(box != nullptr);
    EXPECT_TRUE(IsWindowVisible(box));
    EXPECT_FALSE(IsWindowEnabled(parent.Window()));
    EXPECT_EQ("Copying", BoxText(box));
    for (DWORD step = 1; step <= 10; ++step) {
        StatusValue(box, step);
        if (step == 4)
            SendMessageA(GetDlgItem(box, IDCANCEL), BM_CLICK, 0, 0);
        PumpMessages();
        EXPECT_EQ(step == 4 ? 1u : 0u, StatusCanceled(box)) << step;  // the box stays open
        EXPECT_TRUE(StatusResume(box));
    }
    SendMessageA(box, WM_SYSCOMMAND, SC_CLOSE, 0);  // counts as Cancel
    EXPECT_TRUE(IsWindow(box));
    EXPECT_EQ(1u, StatusCanceled(box));
    EXPECT_EQ(Readback::Of(GetDlgItem(box, 101)).Width(), GaugeEdge(box));
    EXPECT_TRUE(StatusSetText(box, "Done") && BoxText(box) == "Done");
    EXPECT_TRUE(StatusClose(box));
    EXPECT_FALSE(IsWindow(box));
    EXPECT_TRUE(IsWindowEnabled(parent.Window()));
    EXPECT_FALSE(StatusClose(box));
    EXPECT_FALSE(StatusResume(box));
}

// With the close flag: below the top the answer is the top; at it or above
// the box closes and the parent is enabled again.
TEST_F(StatusBoxTest, ClosesByItselfAtTheTopValue)
{
    struct Row { DWORD value; LRESULT result; bool open; } rows[] = {
        {0, 20, true}, {19, 20, true}, {20, TRUE, false}, {21, TRUE, false},
    };
    for (const Row &row : rows) {
        HWND box = StatusBox(parent.Window(), "", 10, 20, STATUS_CANCEL | STATUS_CLOSEATHIGH);
        EXPECT_EQ(row.result, StatusValue(box, row.value)) << row.value;
        EXPECT_EQ(row.open, bool(IsWindow(box))) << row.value;
        EXPECT_EQ(!row.open, bool(IsWindowEnabled(parent.Window()))) << row.value;
        StatusClose(box);
    }
}

TEST_F(StatusBoxTest, FlagsChooseTheTemplateAndVisibility)
{
    struct Row { LONG flags; bool made, cancelButton, visible; } rows[] = {
        {0x0000, true, false, true}, {0x0001, true, true, true}, {0x0002, false, false, false},
        {0x00FF, false, false, false}, {0x4001, true, true, false}, {0x10000, true, false, true},
    };
    for (const Row &row : rows) {
        OSErrorClearError();
        HWND box = StatusBox(parent.Window(), "", 0, 1, row.flags);
        SCOPED_TRACE(row.flags);
        EXPECT_EQ(row.made, box != nullptr);
        EXPECT_EQ(row.made ? RV_Success : RV_Failure, OSErrorGetErrorValue());
        EXPECT_EQ(row.cancelButton, GetDlgItem(box, IDCANCEL) != nullptr);
        EXPECT_EQ(row.visible, bool(IsWindowVisible(box)));
        EXPECT_EQ(!row.made, bool(IsWindowEnabled(parent.Window())));
        StatusClose(box);
    }
}

TEST_F(StatusBoxTest, TwoBoxesStayApartAndUnknownHandlesAreRefused)
{
    RecordingParent other;
    HWND first = StatusBox(parent.Window(), "one", 0, 100, STATUS_CANCEL);
    HWND second = StatusBox(other.Window(), "two", 0, 100, STATUS_CANCEL);
    SendMessageA(second, WM_COMMAND, IDCANCEL, 0);
    EXPECT_EQ(0u, StatusCanceled(first));
    EXPECT_EQ(1u, StatusCanceled(second));
    StatusValue(first, 50);
    EXPECT_EQ(0, GaugeEdge(second));
    StatusClose(first);
    EXPECT_TRUE(IsWindowEnabled(parent.Window()));
    EXPECT_FALSE(IsWindowEnabled(other.Window()));
    StatusClose(second);
    for (HWND stranger : {HWND(nullptr), parent.Window(), first}) {
        OSErrorClearError();
        EXPECT_EQ(0u, StatusCanceled(stranger));
        EXPECT_EQ(0, StatusValue(stranger, 1));
        EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    }
}

// The host closes the box in a message that the gauge dispatches while it
// animates, and opens another (whose record may take the freed block): the
// call that moved the gauge returns the gauge's answer without its record.
TEST_F(StatusBoxTest, ClosedFromInsideItsGaugesPump)
{
    HWND box = StatusBox(parent.Window(), "", 0, 100, STATUS_CANCEL | STATUS_CLOSEATHIGH);
    HWND next = nullptr;
    parent.Answer([&](HWND, UINT message, WPARAM, LPARAM, bool *) {
        if (message == WM_USER + 9 && StatusClose(box))
            next = StatusBox(nullptr, "", 0, 1000, STATUS_CANCEL | STATUS_CLOSEATHIGH | STATUS_HIDDEN);
        return LRESULT(0);
    });
    PostMessageA(parent.Window(), WM_USER + 9, 0, 0);
    EXPECT_EQ(0, StatusValue(box, 100));
    EXPECT_FALSE(IsWindow(box));
    EXPECT_TRUE(IsWindowEnabled(parent.Window()));
    EXPECT_TRUE(StatusClose(next));
}

TEST_F(StatusBoxTest, MonkeyLeavesNothingOpen)
{
    std::mt19937 random(43);
    StatusClose(StatusBox(parent.Window(), "", 0, 1, STATUS_CANCEL));  // the first box's caches
    PumpMessages();
    long before = GdiObjectsInUse();
    HWND box = nullptr;
    for (int i = 0; i < MonkeySteps(800, 100); ++i) {
        DWORD n = random();
        if (!IsWindow(box))
            box = StatusBox(parent.Window(), "monkey", n % 50, n % 300, (n >> 8) & 0xC001);
        switch (n % 8) {
        case 0: StatusValue(box, n % 400); break;
        case 1: SendMessageA(box, WM_COMMAND, 1 + n % 2, 0); break;
        case 2: SendMessageA(box, WM_SYSCOMMAND, SC_CLOSE, 0); break;
        case 3: StatusResume(box); break;
        case 4: SendMessageA(box, WM_KEYDOWN + n % 3, n % 2 ? VK_ESCAPE : VK_RETURN, 0); break;
        case 5: SendMessageA(box, WM_SETFONT, n % 2 ? WPARAM(GetStockObject(SYSTEM_FONT)) : 0, 1); break;
        case 6: MoveWindow(box, 0, 0, n % 400, (n >> 4) % 200, TRUE); break;
        case 7: if (n % 5 == 0) StatusClose(box); break;
        }
        if (i % 50 == 0)
            PumpMessages();
    }
    StatusClose(box);
    EXPECT_TRUE(IsWindowEnabled(parent.Window()));
    EXPECT_EQ(before, GdiObjectsInUse());
}

}  // namespace
