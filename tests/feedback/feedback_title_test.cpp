// The title display, seen through the titles the main window is given.
#include "feedback_fixture.h"
#include "message_box_driver.h"

namespace {

const std::string kBusy = "Diary - Working...";

std::vector<std::string> TitlesOf(const TitleRecorder &recorder)
{
    std::vector<std::string> titles;
    for (const TitleEvent &event : recorder.Titles())
        titles.push_back(event.title);
    return titles;
}

}  // namespace

TEST_F(FeedbackDisplay, BlinksBetweenTheBusyTextAndThePlainTitleOnePerZ)
{
    ASSERT_TRUE(Feedback_SetFilename("notes.kel"));
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().size() >= 5; }, 10000));
    EXPECT_TRUE(Feedback_End());
    const auto &titles = recorder_.Titles();
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(titles[i].title, i % 2 ? "Diary - [notes.kel]" : kBusy) << i;
        if (i) {
            EXPECT_GE(titles[i].tick - titles[i - 1].tick + kTickSlack, kDelayZ) << i;
        }
    }
    EXPECT_TRUE(SettlesAt("Diary - [notes.kel]"));
    ASSERT_TRUE(Feedback_SetFilename(nullptr));
    recorder_.Clear();
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().size() >= 2; }, 10000));
    EXPECT_TRUE(Feedback_End());
    EXPECT_EQ(recorder_.Titles()[1].title, "Diary");
}

TEST_F(FeedbackDisplay, QueuedMessagesShowInOrderOnePerZThenTheBlinkGoesOn)
{
    FeedbackMessage first = Message(2, 0, "Reading");
    FeedbackMessage formatted = Message(0, 1, "week.kel");
    FeedbackMessage plainFormat = Message(1, 2, "ignored");
    FeedbackMessage last = Message(7, 0, "Done");
    ASSERT_TRUE(Feedback_Begin(&first));
    EXPECT_TRUE(Feedback_PostMsg(&formatted));
    EXPECT_TRUE(Feedback_PostMsg(&plainFormat));
    EXPECT_TRUE(Feedback_PostMsg(&last));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().size() >= 5; }, 10000));
    EXPECT_TRUE(Feedback_End());
    std::vector<std::string> expected = {"Diary - Reading", "Diary - Saving week.kel...",
                                         "Diary - Loading %s...", "Diary - Done", kBusy};
    std::vector<std::string> titles = TitlesOf(recorder_);
    titles.resize(5);
    EXPECT_EQ(titles, expected);
    const auto &events = recorder_.Titles();
    for (size_t i = 1; i < 5; ++i)
        EXPECT_GE(events[i].tick - events[i - 1].tick + kTickSlack, kDelayZ) << i;
    EXPECT_TRUE(SettlesAt("Diary"));
}

TEST_F(FeedbackDisplay, CountZeroPurgesTheQueueAndRestoresTheTitle)
{
    FeedbackMessage message = Message(2, 0, "never shown");
    ASSERT_TRUE(Feedback_SetZ(2000));
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(Feedback_Begin(nullptr));
    EXPECT_TRUE(Feedback_End());
    // Still counted once: the display goes on.
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Saw(kBusy); }, 10000));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(Feedback_PostMsg(&message));
    EXPECT_TRUE(Feedback_End());
    EXPECT_FALSE(Feedback_End());
    EXPECT_FALSE(Feedback_PostMsg(&message));
    EXPECT_TRUE(SettlesAt("Diary"));
    EXPECT_FALSE(recorder_.Saw("Diary - never shown"));
    // The queue was emptied: a new run starts with the blink, not the old messages.
    Feedback_SetZ(kDelayZ);
    recorder_.Clear();
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().size() >= 3; }, 10000));
    EXPECT_TRUE(Feedback_End());
    EXPECT_EQ(recorder_.Titles()[0].title, kBusy);
    EXPECT_FALSE(recorder_.Saw("Diary - never shown"));
}

TEST_F(FeedbackDisplay, ASentMessageShowsAtOnceAndIsHeldBeforeTheTitleReturns)
{
    FeedbackMessage sent = Message(0, 7, "diary.kel");
    DWORD sentAt = GetTickCount();
    EXPECT_FALSE(Feedback_SendMsg(&sent));
    ASSERT_EQ(recorder_.Titles().size(), 1u);
    EXPECT_EQ(recorder_.Titles()[0].title, "Diary - Copying diary.kel...");
    EXPECT_TRUE(SettlesAt("Diary"));
    ASSERT_EQ(recorder_.Titles().size(), 2u);
    EXPECT_GE(recorder_.Titles()[1].tick - sentAt + kTickSlack, kDelayX);
    // Sent during a run, the message takes the title until the next step.
    recorder_.Clear();
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Saw(kBusy); }, 10000));
    Feedback_SendMsg(&sent);
    EXPECT_EQ(recorder_.Current(), "Diary - Copying diary.kel...");
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().back().title != "Diary - Copying diary.kel..."; }, 10000));
    EXPECT_TRUE(Feedback_End());
    EXPECT_TRUE(SettlesAt("Diary"));
}

TEST_F(FeedbackDisplay, TerminateStopsTheWorkerAndARestartRunsAgain)
{
    Stop();
    EXPECT_FALSE(Feedback_TerminateThread());
    EXPECT_FALSE(Feedback_Begin(nullptr));
    EXPECT_FALSE(Feedback_End());
    // A caption can be set before the worker runs; without one, no title is written.
    Start(nullptr);
    ASSERT_TRUE(Feedback_Begin(nullptr));
    recorder_.Pump(6 * kDelayZ);
    EXPECT_TRUE(recorder_.Titles().empty());
    FeedbackMessage sent = Message(2, 0, "unseen");
    Feedback_SendMsg(&sent);
    EXPECT_TRUE(recorder_.Titles().empty());
    EXPECT_TRUE(Feedback_End());
    Stop();
    Start("Journal");
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Saw("Journal - Working..."); }, 10000));
    EXPECT_TRUE(Feedback_End());
    EXPECT_TRUE(SettlesAt("Journal"));
}

TEST_F(FeedbackDisplay, BadMessagesAreRefusedAndRecorded)
{
    FeedbackMessage nullText = Message(0, 1, nullptr);
    FeedbackMessage nullPlain = Message(2, 0, nullptr);
    FeedbackMessage pastTable = Message(0, FEEDBACK_FORMATS, "x");
    Feedback_SendMsg(&nullText);
    Feedback_SendMsg(&nullPlain);
    Feedback_SendMsg(nullptr);
    EXPECT_TRUE(recorder_.Titles().empty());
    EXPECT_FALSE(Feedback_PostMsg(&nullPlain));  // outside a run
    ASSERT_TRUE(Feedback_Begin(nullptr));
    EXPECT_FALSE(Feedback_PostMsg(nullptr));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_Success);
    EXPECT_FALSE(Feedback_PostMsg(&pastTable));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_BadParms);
    OSErrorClearError();
    Feedback_SendMsg(&pastTable);
    EXPECT_EQ(OSErrorGetErrorValue(), RV_BadParms);
    OSErrorClearError();
    EXPECT_FALSE(Feedback_SetCaption(nullptr));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_BadParms);
    OSErrorClearError();
    EXPECT_TRUE(Feedback_End());
    EXPECT_TRUE(SettlesAt("Diary"));
}

TEST_F(FeedbackDisplay, AnOversizeCaptionAndTextAreCutToTheTitle)
{
    std::string caption(300, 'C'), text(250, 't');
    ASSERT_TRUE(Feedback_SetCaption(caption.c_str()));
    FeedbackMessage sent = Message(2, 0, text.c_str());
    Feedback_SendMsg(&sent);
    ASSERT_EQ(recorder_.Titles().size(), 1u);
    EXPECT_EQ(recorder_.Titles()[0].title, caption.substr(0, 291));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_BufferTooSmall);
    OSErrorClearError();
    ASSERT_TRUE(Feedback_SetCaption("Diary"));
    Feedback_SendMsg(&sent);
    EXPECT_EQ(recorder_.Titles().back().title, "Diary - " + text.substr(0, 291 - 8));
    OSErrorClearError();
    EXPECT_TRUE(SettlesAt("Diary"));
}

TEST_F(FeedbackDisplay, AnErrorBoxEndsTheRunAndALaterEndReturnsZero)
{
    FeedbackMessage message = Message(2, 0, "queued");
    // A long first delay: the box comes before the worker shows anything.
    ASSERT_TRUE(Feedback_SetX(3000));
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(Feedback_PostMsg(&message));
    {
        MessageBoxDriver boxes;
        char text[256] = {};
        LoadStringA(ResourceGetHandle(), 11005, text, sizeof text);
        boxes.Expect(text, MB_OK | MB_ICONASTERISK, IDOK);
        OSErrorSetErrorInfo(RV_UserError);
        EXPECT_EQ(UIHandleError(recorder_.Window()), IDOK);
    }
    EXPECT_FALSE(Feedback_End());
    EXPECT_FALSE(Feedback_PostMsg(&message));
    EXPECT_TRUE(SettlesAt("Diary"));
    EXPECT_FALSE(recorder_.Saw("Diary - queued"));
}

// A sent message holds the display for as long as it has already been shown
// when the worker next looks: sent just as a step of Z began, the next step
// comes after about two Z, not one (no hold) and not three (the rest of a
// 3000 ms hold).
TEST_F(FeedbackDisplay, TheHoldLastsAsLongAsTheSentMessageHasBeenShown)
{
    const DWORD z = 1000;
    FeedbackMessage sent = Message(2, 0, "Sent");
    ASSERT_TRUE(Feedback_SetZ(z));
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Saw(kBusy); }, 10000));
    DWORD sentAt = GetTickCount();
    Feedback_SendMsg(&sent);
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().back().title != "Diary - Sent"; }, 10000));
    DWORD next = recorder_.Titles().back().tick - sentAt;
    EXPECT_TRUE(Feedback_End());
    EXPECT_GE(next + 2 * kTickSlack, 2 * z - 100);
    // The emulated 32-bit lane runs slow; the upper bound holds natively.
    if (sizeof(void *) == 8) {
        EXPECT_LT(next, 3 * z - 300);
    }
    EXPECT_TRUE(SettlesAt("Diary"));
}
