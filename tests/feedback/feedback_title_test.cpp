// The title display, seen through the titles the main window is given.
#include "feedback_fixture.h"
#include <functional>
#include "message_box_driver.h"

namespace {

const std::string kBusy = "Diary - Working...";

// The first `n` titles, and that each came at least `gap` after the one before.
::testing::AssertionResult FirstTitles(const TitleRecorder &recorder, const std::vector<std::string> &expected,
                                       DWORD gap)
{
    const auto &t = recorder.Titles();
    for (size_t i = 0; i < expected.size(); ++i) {
        if (i >= t.size() || t[i].title != expected[i])
            return ::testing::AssertionFailure() << "title " << i << ": " << (i < t.size() ? t[i].title : "none");
        if (i && t[i].tick - t[i - 1].tick + kTickSlack < gap)
            return ::testing::AssertionFailure() << "title " << i << " came early";
    }
    return ::testing::AssertionSuccess();
}

}  // namespace

TEST_F(FeedbackDisplay, BlinksBetweenTheBusyTextAndThePlainTitleOnePerZ)
{
    for (const char *file : {"notes.kel", static_cast<const char *>(nullptr)}) {
        const std::string plain = file ? std::string("Diary - [") + file + "]" : "Diary";
        ASSERT_TRUE(Feedback_SetFilename(file));
        recorder_.Clear();
        ASSERT_TRUE(Feedback_Begin(nullptr));
        ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().size() >= 5; }, 10000));
        EXPECT_TRUE(Feedback_End());
        EXPECT_TRUE(FirstTitles(recorder_, {kBusy, plain, kBusy, plain, kBusy}, kDelayZ));
        EXPECT_TRUE(SettlesAt(plain));
    }
}

TEST_F(FeedbackDisplay, QueuedMessagesShowInOrderOnePerZThenTheBlinkGoesOn)
{
    FeedbackMessage first = Message(2, 0, "Reading"), formatted = Message(0, 1, "week.kel"),
                    plainFormat = Message(1, 2, "ignored"), last = Message(7, 0, "Done");
    ASSERT_TRUE(Feedback_Begin(&first));
    EXPECT_TRUE(Feedback_PostMsg(&formatted));
    EXPECT_TRUE(Feedback_PostMsg(&plainFormat));
    EXPECT_TRUE(Feedback_PostMsg(&last));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().size() >= 5; }, 10000));
    EXPECT_TRUE(Feedback_End());
    EXPECT_TRUE(FirstTitles(recorder_, {"Diary - Reading", "Diary - Saving week.kel...", "Diary - Loading %s...",
                                        "Diary - Done", kBusy}, kDelayZ));
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
    // The title arrives while the worker is still inside its display step; a
    // count reaching 0 there sends it idle with the queue kept. Let it reach
    // its sleep of Z first, so that the count reaches 0 in the sleep.
    recorder_.Pump(400);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(Feedback_PostMsg(&message));
    EXPECT_TRUE(Feedback_End());
    EXPECT_FALSE(Feedback_End());
    EXPECT_FALSE(Feedback_PostMsg(&message));
    // The plain title of the blink may already show while the worker still
    // sleeps its step: wait out a whole step, so that it wakes to the count 0.
    EXPECT_TRUE(SettlesAt("Diary", 2000 + 500));
    // The queue was emptied: a new run starts with the blink.
    Feedback_SetZ(kDelayZ);
    recorder_.Clear();
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().size() >= 3; }, 10000));
    EXPECT_TRUE(Feedback_End());
    EXPECT_EQ(recorder_.Titles()[0].title, kBusy);
    EXPECT_FALSE(recorder_.Saw("Diary - never shown"));
}

// A sent message shows at once. Sent just as a step of Z began, it holds the
// display for as long as it has already been shown: the next step comes
// after about two Z, not one (no hold) and not three (the rest of 3000 ms).
TEST_F(FeedbackDisplay, ASentMessageShowsAtOnceAndHoldsAsLongAsItWasShown)
{
    FeedbackMessage sent = Message(0, 7, "diary.kel");
    EXPECT_FALSE(Feedback_SendMsg(&sent));
    EXPECT_TRUE(FirstTitles(recorder_, {"Diary - Copying diary.kel..."}, 0));
    EXPECT_TRUE(SettlesAt("Diary"));
    const DWORD z = 1000;
    ASSERT_TRUE(Feedback_SetZ(z));
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Saw(kBusy); }, 10000));
    DWORD sentAt = GetTickCount();
    Feedback_SendMsg(&sent);
    EXPECT_EQ(recorder_.Current(), "Diary - Copying diary.kel...");
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Current() != "Diary - Copying diary.kel..."; }, 10000));
    DWORD next = recorder_.Titles().back().tick - sentAt;
    EXPECT_TRUE(Feedback_End());
    EXPECT_GE(next + 2 * kTickSlack, 2 * z - 100);
    if (sizeof(void *) == 8) {  // the emulated 32-bit lane runs slow
        EXPECT_LT(next, 3 * z - 300);
    }
    EXPECT_TRUE(SettlesAt("Diary"));
}

TEST_F(FeedbackDisplay, TerminateStopsTheWorkerAndARestartRunsAgain)
{
    Stop();
    EXPECT_FALSE(Feedback_TerminateThread());
    EXPECT_FALSE(Feedback_Begin(nullptr));
    EXPECT_FALSE(Feedback_End());
    // Without a caption no title is written.
    Start(nullptr);
    ASSERT_TRUE(Feedback_Begin(nullptr));
    FeedbackMessage sent = Message(2, 0, "unseen");
    Feedback_SendMsg(&sent);
    recorder_.Pump(6 * kDelayZ);
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
    FeedbackMessage nullText = Message(0, 1, nullptr), nullPlain = Message(2, 0, nullptr),
                    pastTable = Message(0, FEEDBACK_FORMATS, "x");
    Feedback_SendMsg(&nullText);
    Feedback_SendMsg(&nullPlain);
    Feedback_SendMsg(nullptr);
    EXPECT_TRUE(recorder_.Titles().empty());
    EXPECT_FALSE(Feedback_PostMsg(&nullPlain));  // outside a run
    ASSERT_TRUE(Feedback_Begin(nullptr));
    EXPECT_FALSE(Feedback_PostMsg(nullptr));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_Success);
    const std::function<BOOL()> refused[] = {[&] { return Feedback_PostMsg(&pastTable); },
                                             [&] { return Feedback_SendMsg(&pastTable); },
                                             [] { return Feedback_SetCaption(nullptr); }};
    for (const auto &call : refused) {
        EXPECT_FALSE(call());
        EXPECT_EQ(OSErrorGetErrorValue(), RV_BadParms);
        OSErrorClearError();
    }
    EXPECT_TRUE(Feedback_End());
    EXPECT_TRUE(SettlesAt("Diary"));
}

// A cut on the application's thread is recorded; the worker cuts silently,
// so the application's next error is the one recorded.
TEST_F(FeedbackDisplay, LongTitlesAreCutAndOnlyTheApplicationsCutIsRecorded)
{
    const std::string caption(300, 'C'), text(250, 't');
    ASSERT_TRUE(Feedback_SetCaption(caption.c_str()));
    FeedbackMessage sent = Message(2, 0, text.c_str());
    Feedback_SendMsg(&sent);
    EXPECT_TRUE(FirstTitles(recorder_, {caption.substr(0, 291)}, 0));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_BufferTooSmall);
    OSErrorClearError();
    ASSERT_TRUE(Feedback_SetCaption("Diary"));
    Feedback_SendMsg(&sent);
    EXPECT_EQ(recorder_.Current(), "Diary - " + text.substr(0, 291 - 8));
    EXPECT_TRUE(SettlesAt("Diary"));
    OSErrorClearError();
    const std::string longCaption(250, 'C'), file(60, 'f');
    ASSERT_TRUE(Feedback_SetCaption(longCaption.c_str()));
    ASSERT_TRUE(Feedback_SetFilename(file.c_str()));
    ASSERT_TRUE(Feedback_Begin(nullptr));
    ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Titles().size() >= 6; }, 10000));
    EXPECT_TRUE(Feedback_End());
    EXPECT_TRUE(SettlesAt((longCaption + " - [" + file).substr(0, 291)));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_Success);
}

// An error box, and any box of OSMessage, ends the run: a later
// Feedback_End finds the count at 0 and queued messages never show.
TEST_F(FeedbackDisplay, ABoxEndsTheRunAndALaterEndReturnsZero)
{
    char text[256] = {};
    LoadStringA(ResourceGetHandle(), 11005, text, sizeof text);
    const std::function<int()> boxes[] = {[&] { return OSErrorSetErrorInfo(RV_UserError), UIHandleError(recorder_.Window()); },
                                          [&] { return OSMessage(recorder_.Window(), ResourceGetHandle(), "C", 11005, MB_OK | MB_ICONASTERISK); }};
    FeedbackMessage message = Message(2, 0, "queued");
    ASSERT_TRUE(Feedback_SetX(3000));  // the box comes before the worker shows anything
    for (const auto &box : boxes) {
        ASSERT_TRUE(Feedback_Begin(nullptr));
        ASSERT_TRUE(Feedback_Begin(&message));
        {
            MessageBoxDriver driver;
            driver.Expect(text, MB_OK | MB_ICONASTERISK, IDOK);
            EXPECT_EQ(box(), IDOK);
        }
        EXPECT_FALSE(Feedback_End());
        EXPECT_FALSE(Feedback_PostMsg(&message));
    }
    EXPECT_TRUE(SettlesAt("Diary"));
    EXPECT_FALSE(recorder_.Saw("Diary - queued"));
}
