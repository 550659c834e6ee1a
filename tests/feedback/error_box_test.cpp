// Real message boxes from error presentation, read and answered by the
// message-box driver.
#include "error_recorders.h"
#include "message_box_driver.h"
#include "qz_test.h"

namespace {

std::string Text(UINT id)
{
    char text[512] = {};
    LoadStringA(ResourceGetHandle(), id, text, sizeof text);
    return text;
}

HWND TopWindow(const char *title)
{
    HWND window = CreateWindowA("STATIC", title, WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 100,
                                nullptr, nullptr, nullptr, nullptr);
    return window;
}

class ErrorBoxes : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        InstallRecordingCallback();
        ResetErrorRecorders();
    }
    void TearDown() override
    {
        OSErrorGetErrorInfo()->quietInBackground = 0;
        ErrorStateTest::TearDown();
    }
};

}  // namespace

TEST_F(ErrorBoxes, TheBoxShowsTheMessageWithItsFirstTildeBlankAndTheWindowCaption)
{
    HWND window = TopWindow("Month view");
    MessageBoxDriver boxes;
    // The text holds two tildes: only the first one becomes a blank.
    boxes.Expect("The program is not installed correctly. Please run SETUP~1.EXE from the installation disk.",
                 MB_OK | MB_ICONASTERISK, IDOK, Text(1).c_str());
    MakePendingError(RV_BadInstall);
    EXPECT_EQ(UIHandleErrorEx(window, 1), IDOK);
    boxes.Expect("The file plan.kel was not found.", MB_RETRYCANCEL | MB_ICONASTERISK, IDRETRY, "Month view");
    lstrcpyA(MakePendingError(RV_NoFile)->itemText, "plan.kel");
    EXPECT_EQ(UIHandleErrorRetry(window), IDRETRY);
    boxes.Expect("An unexpected error occurred (ErrorNo (300)).", MB_OK | MB_ICONHAND, IDOK,
                 Text(13000).c_str());
    MakePendingError(300);
    EXPECT_EQ(UIHandleError(window), IDOK);
    ASSERT_EQ(boxes.Seen().size(), 3u);
    EXPECT_EQ(boxes.Seen()[2].owner, window);
    EXPECT_EQ(boxes.Seen()[2].disabledThreadWindows, 0);
    DestroyWindow(window);
}

TEST_F(ErrorBoxes, WithoutAWindowTheBoxIsTaskModal)
{
    HWND other = TopWindow("Other");
    MessageBoxDriver boxes;
    boxes.Expect(Text(11005), MB_OK | MB_ICONASTERISK, IDOK);
    MakePendingError(RV_UserError);
    EXPECT_EQ(UIHandleError(nullptr), IDOK);
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_GE(boxes.Seen()[0].disabledThreadWindows, 1);
    EXPECT_TRUE(IsWindowEnabled(other));
    DestroyWindow(other);
}

TEST_F(ErrorBoxes, QuietInBackgroundShowsNothingForAWindowBehindOrIconic)
{
    HWND front = TopWindow("Front");
    HWND behind = TopWindow("Behind");
    SetActiveWindow(front);
    ASSERT_EQ(GetActiveWindow(), front);
    OSErrorGetErrorInfo()->quietInBackground = 1;
    {
        MessageBoxDriver boxes;  // strict: any box fails the test
        MakePendingError(RV_UserError);
        EXPECT_EQ(UIHandleError(behind), IDCANCEL);
        EXPECT_FALSE(OSErrorIsErrorPending());
    }
    {
        MessageBoxDriver boxes;
        boxes.Expect(Text(11005), MB_OK | MB_ICONASTERISK, IDOK);
        MakePendingError(RV_UserError);
        EXPECT_EQ(UIHandleError(front), IDOK);
    }
    ShowWindow(front, SW_MINIMIZE);
    {
        MessageBoxDriver boxes;
        MakePendingError(RV_UserError);
        EXPECT_EQ(UIHandleError(front), IDCANCEL);
    }
    DestroyWindow(behind);
    DestroyWindow(front);
}
