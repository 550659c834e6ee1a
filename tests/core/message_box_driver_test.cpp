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

} // namespace
