// The worker cuts a long title without a word: the error state belongs to
// the application's thread, and a cut there must not hide its next error.
#include "feedback_fixture.h"

TEST_F(FeedbackDisplay, TheWorkerCutsLongTitlesSilently)
{
    const std::string caption(250, 'C'), file(60, 'f');
    ASSERT_TRUE(Feedback_SetCaption(caption.c_str()));
    ASSERT_TRUE(Feedback_SetFilename(file.c_str()));
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().size() >= 4; }, 10000));
    EXPECT_TRUE(Feedback_End());
    EXPECT_TRUE(SettlesAt((caption + " - [" + file).substr(0, 291)));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_Success);
    EXPECT_FALSE(Feedback_SetCaption(nullptr));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_BadParms);
}
