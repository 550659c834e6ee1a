// The message-box driver that the library's box tests rely on: it must read
// what a box really shows and press what it is told, or those tests prove
// nothing.
#include <gtest/gtest-spi.h>
#include "message_box_driver.h"
#include "qz_test.h"

namespace {

TEST(MessageBoxDriver, ReadsTheBoxAndPressesTheAnswer)
{
    MessageBoxDriver boxes;
    boxes.Expect("Disk full", MB_RETRYCANCEL | MB_ICONHAND, IDRETRY, "Saving");
    boxes.Expect("Continue?", MB_YESNO | MB_ICONQUESTION, IDNO);
    boxes.Expect("Done", MB_OK, IDOK);

    EXPECT_EQ(IDRETRY, MessageBoxA(nullptr, "Disk full", "Saving", MB_RETRYCANCEL | MB_ICONHAND));
    EXPECT_EQ(IDNO, MessageBoxA(nullptr, "Continue?", "Q", MB_YESNO | MB_ICONQUESTION));
    EXPECT_EQ(IDOK, MessageBoxA(nullptr, "Done", "", MB_OK));

    ASSERT_EQ(3u, boxes.Seen().size());
    EXPECT_EQ("Saving", boxes.Seen()[0].caption);
    EXPECT_EQ(UINT(MB_ICONQUESTION), boxes.Seen()[1].icon);
    EXPECT_EQ(UINT(MB_OK), boxes.Seen()[2].buttons);
    EXPECT_EQ(0u, boxes.Seen()[2].icon);
}

TEST(MessageBoxDriver, SeesOwnerHelpButtonAndTaskModality)
{
    HWND window = CreateWindowA("STATIC", "host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100,
                                nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, window);
    MessageBoxDriver boxes;
    boxes.AnswerOthers(IDOK, false);

    MessageBoxA(window, "owned", "c", MB_OK | MB_HELP | MB_ICONASTERISK);
    MessageBoxA(nullptr, "task", "c", MB_OK | MB_TASKMODAL);
    MessageBoxA(nullptr, "system", "c", MB_OK | MB_SYSTEMMODAL | MB_ICONEXCLAMATION);

    ASSERT_EQ(3u, boxes.Seen().size());
    const SeenBox &owned = boxes.Seen()[0];
    EXPECT_EQ(window, owned.owner);
    EXPECT_EQ(UINT(MB_OK | MB_HELP), owned.buttons);
    EXPECT_EQ(UINT(MB_ICONASTERISK), owned.icon);
    EXPECT_EQ(0, owned.disabledThreadWindows);
    EXPECT_EQ(nullptr, boxes.Seen()[1].owner);
    EXPECT_GE(boxes.Seen()[1].disabledThreadWindows, 1);
    EXPECT_FALSE(boxes.Seen()[1].topmost);
    EXPECT_TRUE(boxes.Seen()[2].topmost);
    EXPECT_TRUE(IsWindowEnabled(window));
    DestroyWindow(window);
}

TEST(MessageBoxDriver, ReportsWrongAndMissingBoxes)
{
    EXPECT_NONFATAL_FAILURE(
        {
            MessageBoxDriver boxes;
            boxes.Expect("one text", MB_OK, IDOK);
            MessageBoxA(nullptr, "another text", "c", MB_OK);
        },
        "shown:    \"c\" | \"another text\" | OK | no icon");
    EXPECT_NONFATAL_FAILURE(
        {
            MessageBoxDriver boxes;
            boxes.Expect("never shown", MB_OKCANCEL | MB_ICONHAND, IDOK);
        },
        "expected a box \"never shown\" | OK Cancel | hand, and none came");
    EXPECT_NONFATAL_FAILURE(
        {
            MessageBoxDriver boxes;
            EXPECT_EQ(IDCANCEL, MessageBoxA(nullptr, "stray", "c", MB_OKCANCEL));
        },
        "unexpected message box");
}

INT_PTR CALLBACK PlainDialog(HWND, UINT message, WPARAM, LPARAM)
{
    return message == WM_INITDIALOG;
}

TEST(MessageBoxDriver, HandsOtherDialogsToTheHandler)
{
    MessageBoxDriver boxes;
    HWND seen = nullptr;
    boxes.OnDialog([&seen](HWND dialog) {
        seen = dialog;
        EndDialog(dialog, 42);
    });
    // The smallest dialog template: a caption-less "#32770" with no controls.
    struct {
        DLGTEMPLATE header;
        WORD menu, windowClass, title;
    } tmpl = {};
    tmpl.header.style = WS_POPUP | WS_VISIBLE | DS_MODALFRAME;
    tmpl.header.cx = 50;
    tmpl.header.cy = 20;
    INT_PTR result = DialogBoxIndirectParamA(nullptr, &tmpl.header, nullptr, PlainDialog, 0);
    EXPECT_EQ(42, result);
    EXPECT_NE(nullptr, seen);
    EXPECT_TRUE(boxes.Seen().empty());
}

} // namespace
