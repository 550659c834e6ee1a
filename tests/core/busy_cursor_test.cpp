// The busy cursor as long work sees it: the frames of the cursor set in
// force, their pace, nesting, the display count, Escape and the switch.
#include "message_box_driver.h"
#include "qz_test.h"

namespace {

const char kUserSetupKey[] = "Software\\Tarvo\\Kelendrix\\98.0\\UserSetup";

// "Cursor State" as given (negative: no value), and the frames reloaded.
BOOL LoadFramesOfSet(LONG setting)
{
    if (setting < 0)
        RegDeleteKeyValueA(HKEY_CURRENT_USER, kUserSetupKey, "Cursor State");
    else
        RegSetKeyValueA(HKEY_CURRENT_USER, kUserSetupKey, "Cursor State", REG_DWORD, &setting,
                        sizeof setting);
    return OSWaitInit();
}

HCURSOR Frame(DWORD id)
{
    return LoadCursorA(ResourceGetHandle(), MAKEINTRESOURCEA(id));
}

// Some frame of the default set; which one depends on the time passed.
bool ShowsBusyFrame()
{
    for (DWORD id = 1001; id <= 1008; ++id)
        if (GetCursor() == Frame(id))
            return true;
    return false;
}

// The cursor's display count, left as it was.
int DisplayCount()
{
    int count = ShowCursor(TRUE);
    ShowCursor(FALSE);
    return count - 1;
}

class BusyCursor : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        SetCursor(arrow);
    }
    void TearDown() override
    {
        while (OSUnWait() != 0) {
        }
        ErrorStateTest::TearDown();
    }
    HCURSOR arrow = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
};

TEST_F(BusyCursor, FramesComeFromTheCursorSetInForce)
{
    const struct {
        LONG setting;
        DWORD firstId;
    } rows[] = {{0, 1}, {2, 2001}, {1, 1001}, {-1, 1001}};
    for (const auto &row : rows) {
        ASSERT_EQ(1, LoadFramesOfSet(row.setting)) << row.setting;
        ASSERT_EQ(1u, OSWait());
        EXPECT_EQ(Frame(row.firstId), GetCursor()) << row.setting;
        EXPECT_EQ(0u, OSUnWait());
        EXPECT_EQ(arrow, GetCursor());
    }
    // A set the resource library lacks fails the start-up with a user error
    // (at attach that ends the process: see the attach causes).
    EXPECT_EQ(0, LoadFramesOfSet(5));
    EXPECT_EQ(RV_UserError, OSErrorGetErrorValue());
    EXPECT_EQ(1, LoadFramesOfSet(-1));
}

TEST_F(BusyCursor, TurnsOneFrameEachHalfSecondWhateverTheCallRate)
{
    // The library takes its tick inside the call that turns the frame, so
    // each half second is measured from before that call to after the next.
    DWORD lastTurnStart = GetTickCount();
    ASSERT_EQ(1u, OSWait());
    for (DWORD step = 1; step <= 8; ++step) {   // a whole turn, back to the first frame
        HCURSOR before = GetCursor();
        DWORD callStart = lastTurnStart, callEnd = lastTurnStart;
        int calls = 0;
        for (; GetCursor() == before && callEnd - lastTurnStart < 5000; ++calls) {
            Sleep(5);
            callStart = GetTickCount();
            EXPECT_EQ(0, OSReWait(0));
            callEnd = GetTickCount();
        }
        ASSERT_EQ(Frame(1001 + step % 8), GetCursor()) << step;
        EXPECT_GE(callEnd - lastTurnStart, 500u) << step;
        EXPECT_GT(calls, 10) << "the frame waited for the half second, not for a call count";
        lastTurnStart = callStart;
    }
}

TEST_F(BusyCursor, NestedWaitsEndWithTheLastUnWaitAndNeverHideTheCursor)
{
    int shown = DisplayCount();
    EXPECT_EQ(1u, OSWait());
    EXPECT_EQ(2u, OSWait());
    EXPECT_EQ(shown + 1, DisplayCount()) << "only the outer wait shows the cursor";
    EXPECT_EQ(1u, OSUnWait());
    EXPECT_TRUE(ShowsBusyFrame()) << "one wait is still running";
    EXPECT_EQ(0u, OSUnWait());
    EXPECT_EQ(arrow, GetCursor());
    EXPECT_EQ(shown, DisplayCount());
    // No wait running: nothing changes.
    EXPECT_EQ(0u, OSUnWait());
    EXPECT_EQ(0, OSReWait(1));
    EXPECT_EQ(shown, DisplayCount());
    // A hidden cursor shows again when the wait ends.
    while (DisplayCount() > -3)
        ShowCursor(FALSE);
    OSWait();
    OSUnWait();
    EXPECT_EQ(0, DisplayCount());
    while (DisplayCount() != shown)
        ShowCursor(DisplayCount() < shown);
}

// Escape pressed and let go, through the system's input queue.
void PressEscape()
{
    INPUT keys[2] = {};
    keys[0].type = keys[1].type = INPUT_KEYBOARD;
    keys[0].ki.wVk = keys[1].ki.wVk = VK_ESCAPE;
    keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
    ASSERT_EQ(2u, SendInput(2, keys, sizeof(INPUT)));
}

TEST_F(BusyCursor, EscapeAsksAndTheAnswerDecides)
{
    char question[512] = {}, title[64] = {};
    LoadStringA(ResourceGetHandle(), 5000, question, sizeof question);
    LoadStringA(ResourceGetHandle(), 1, title, sizeof title);
    HWND host = CreateWindowExA(0, "STATIC", "work", WS_POPUP | WS_VISIBLE, 0, 0, 40, 40, nullptr,
                                nullptr, nullptr, nullptr);
    SetForegroundWindow(host);
    MessageBoxDriver boxes;
    // A press before the wait does not count, nor one that nobody checks for.
    PressEscape();
    ASSERT_EQ(1u, OSWait());
    EXPECT_EQ(0, OSReWait(1));
    PressEscape();
    EXPECT_EQ(0, OSReWait(0));
    // Yes: the work goes on with the busy cursor; keys typed ahead are gone.
    PressEscape();
    PostMessageA(host, WM_CHAR, 'x', 0);
    boxes.Expect(question, MB_YESNO | MB_ICONQUESTION, IDYES, title);
    EXPECT_EQ(0, OSReWait(1));
    EXPECT_TRUE(ShowsBusyFrame()) << "the busy cursor shows again";
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, host, WM_CHAR, WM_CHAR, PM_REMOVE));
    // No: the work stops, the wait ends, the old cursor is back.
    PressEscape();
    boxes.Expect(question, MB_YESNO | MB_ICONQUESTION, IDNO, title);
    EXPECT_EQ(1, OSReWait(1));
    EXPECT_EQ(arrow, GetCursor());
    EXPECT_EQ(0u, OSUnWait()) << "no wait is running any more";
    EXPECT_FALSE(OSErrorIsErrorPending());
    DestroyWindow(host);
}

TEST(BusyCursorSwitch, DisabledWaitsDoNothingAndBoxesStayAway)
{
    EXPECT_EQ(0u, RunChild("wait_probe.exe waitdisable", 20000));
    EXPECT_EQ(0u, RunChild("wait_probe.exe messagedisable", 20000));
}

}  // namespace
