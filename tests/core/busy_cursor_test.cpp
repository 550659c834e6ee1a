// The busy cursor as long work sees it: the frames of the cursor set in
// force, their pace, nesting, the display count and the one-way switch.
#include <string>
#include <vector>
#include "message_box_driver.h"
#include "qz_test.h"

namespace {

const char kUserSetupKey[] = "Software\\Tarvo\\Kelendrix\\98.0\\UserSetup";

// Sets "Cursor State" for one test and removes it afterwards, then reloads
// the frames of the default set.
class CursorSetting {
public:
    void Set(DWORD setting)
    {
        HKEY key;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExA(HKEY_CURRENT_USER, kUserSetupKey, 0, nullptr, 0,
                                                 KEY_SET_VALUE, nullptr, &key, nullptr));
        RegSetValueExA(key, "Cursor State", 0, REG_DWORD, reinterpret_cast<const BYTE *>(&setting),
                       sizeof setting);
        RegCloseKey(key);
    }
    ~CursorSetting()
    {
        RegDeleteKeyValueA(HKEY_CURRENT_USER, kUserSetupKey, "Cursor State");
        OSWaitInit();
    }
};

std::vector<HCURSOR> Frames(DWORD firstId)
{
    std::vector<HCURSOR> frames;
    for (DWORD i = 0; i < 8; ++i)
        frames.push_back(LoadCursorA(ResourceGetHandle(), MAKEINTRESOURCEA(firstId + i)));
    return frames;
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
        arrow = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
        SetCursor(arrow);
    }
    void TearDown() override
    {
        while (OSUnWait() != 0) {
        }
        SetCursor(arrow);
        ErrorStateTest::TearDown();
    }
    HCURSOR arrow = nullptr;
};

TEST_F(BusyCursor, FramesComeFromTheCursorSetInForce)
{
    struct Row {
        LONG setting;   // -1: no value
        DWORD firstId;
    };
    const Row rows[] = {{-1, 1001}, {0, 1}, {1, 1001}, {2, 2001}};
    for (const Row &row : rows) {
        SCOPED_TRACE(row.setting);
        CursorSetting setting;
        if (row.setting >= 0)
            setting.Set(static_cast<DWORD>(row.setting));
        ASSERT_EQ(1, OSWaitInit());
        ASSERT_EQ(1u, OSWait());
        HCURSOR first = Frames(row.firstId)[0];
        ASSERT_NE(nullptr, first);
        EXPECT_EQ(first, GetCursor());
        EXPECT_EQ(0u, OSUnWait());
        EXPECT_EQ(arrow, GetCursor());
    }
}

TEST_F(BusyCursor, AMissingFrameFailsTheStartUpWithAUserError)
{
    CursorSetting setting;
    setting.Set(5);   // no such set in the resource library
    EXPECT_EQ(0, OSWaitInit());
    EXPECT_EQ(RV_UserError, OSErrorGetErrorValue());
}

TEST_F(BusyCursor, AttachFailsWhenTheResourceLibraryHasNoCursors)
{
    // Every string is there; the busy cursor's start-up records a user
    // error while the mode table is still zero, which ends the process.
    EXPECT_EQ(255u, RunChild("attach_probe.exe /LNC"));
    EXPECT_EQ(0u, RunChild("attach_probe.exe /LEN"));
}

TEST_F(BusyCursor, TurnsOneFrameEachHalfSecondWhateverTheCallRate)
{
    const std::vector<HCURSOR> frames = Frames(1001);
    ASSERT_EQ(1u, OSWait());
    ASSERT_EQ(frames[0], GetCursor());
    DWORD lastChange = GetTickCount();
    // A whole turn and back to the first frame.
    for (int step = 1; step <= 8; ++step) {
        HCURSOR expected = frames[step % 8];
        HCURSOR before = GetCursor();
        int calls = 0;
        while (GetCursor() == before && GetTickCount() - lastChange < 5000) {
            EXPECT_EQ(0, OSReWait(0));
            ++calls;
            Sleep(5);
        }
        DWORD now = GetTickCount();
        ASSERT_EQ(expected, GetCursor()) << "step " << step;
        EXPECT_GE(now - lastChange, 499u) << "step " << step << " after " << calls << " calls";
        EXPECT_GT(calls, 10) << "the frame waited for the half second, not for a call count";
        lastChange = now;
    }
    EXPECT_EQ(0u, OSUnWait());
    EXPECT_EQ(arrow, GetCursor());
}

TEST_F(BusyCursor, NestedWaitsEndWithTheLastUnWait)
{
    const std::vector<HCURSOR> frames = Frames(1001);
    int shown = DisplayCount();
    EXPECT_EQ(1u, OSWait());
    EXPECT_EQ(shown + 1, DisplayCount());
    EXPECT_EQ(2u, OSWait());
    EXPECT_EQ(shown + 1, DisplayCount()) << "only the outer wait shows the cursor";
    EXPECT_EQ(1u, OSUnWait());
    EXPECT_EQ(frames[0], GetCursor()) << "one wait is still running";
    EXPECT_EQ(0u, OSUnWait());
    EXPECT_EQ(arrow, GetCursor());
    EXPECT_EQ(shown, DisplayCount());
    // No wait running: nothing changes.
    HCURSOR cross = LoadCursorA(nullptr, MAKEINTRESOURCEA(32515));
    SetCursor(cross);
    EXPECT_EQ(0u, OSUnWait());
    EXPECT_EQ(0, OSReWait(1));
    EXPECT_EQ(cross, GetCursor());
    EXPECT_EQ(shown, DisplayCount());
    EXPECT_FALSE(OSErrorIsErrorPending());
}

TEST_F(BusyCursor, EndingAWaitNeverLeavesTheCursorHidden)
{
    int shown = DisplayCount();
    while (DisplayCount() > -3)
        ShowCursor(FALSE);
    ASSERT_EQ(1u, OSWait());
    EXPECT_EQ(-2, DisplayCount());
    EXPECT_EQ(0u, OSUnWait());
    EXPECT_EQ(0, DisplayCount());
    while (DisplayCount() < shown)
        ShowCursor(TRUE);
    while (DisplayCount() > shown)
        ShowCursor(FALSE);
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

std::string ResourceText(UINT id)
{
    char text[512] = {};
    LoadStringA(ResourceGetHandle(), id, text, sizeof text);
    return text;
}

TEST_F(BusyCursor, EscapeAsksAndTheAnswerDecides)
{
    const std::vector<HCURSOR> frames = Frames(1001);
    const std::string question = ResourceText(5000), title = ResourceText(1);
    ASSERT_FALSE(question.empty());
    HWND host = CreateWindowExA(0, "STATIC", "work", WS_POPUP | WS_VISIBLE, 0, 0, 40, 40, nullptr,
                                nullptr, nullptr, nullptr);
    SetForegroundWindow(host);
    SetFocus(host);
    MessageBoxDriver boxes;

    // A press before the wait does not count, nor one that nobody checks for.
    PressEscape();
    ASSERT_EQ(1u, OSWait());
    EXPECT_EQ(0, OSReWait(1));
    PressEscape();
    EXPECT_EQ(0, OSReWait(0));

    // Yes: the work goes on with the busy cursor.
    PressEscape();
    PostMessageA(host, WM_CHAR, 'x', 0);   // typed ahead, flushed before the question
    boxes.Expect(question, MB_YESNO | MB_ICONQUESTION, IDYES, title.c_str());
    EXPECT_EQ(0, OSReWait(1));
    EXPECT_EQ(frames[0], GetCursor());
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, host, WM_CHAR, WM_CHAR, PM_REMOVE));
    EXPECT_EQ(0, OSReWait(1)) << "the press was answered";

    // No: the work stops, the wait ends, the old cursor is back.
    PressEscape();
    boxes.Expect(question, MB_YESNO | MB_ICONQUESTION, IDNO, title.c_str());
    EXPECT_EQ(1, OSReWait(1));
    EXPECT_EQ(arrow, GetCursor());
    EXPECT_EQ(0u, OSUnWait()) << "no wait is running any more";
    ASSERT_EQ(2u, boxes.Seen().size());
    EXPECT_EQ(nullptr, boxes.Seen()[0].owner);
    EXPECT_FALSE(OSErrorIsErrorPending());
    DestroyWindow(host);
}

TEST(BusyCursorSwitch, DisabledWaitsDoNothingAndBoxesStayAway)
{
    EXPECT_EQ(0u, RunChild("wait_probe.exe waitdisable", 20000));
    EXPECT_EQ(0u, RunChild("wait_probe.exe messagedisable", 20000));
}

}  // namespace
