// A running feedback worker on a recorded main window, with delays of a few
// milliseconds so that a whole display cycle takes a moment.
#pragma once
#include "qz_test.h"
#include "title_recorder.h"

const DWORD kDelayX = 5, kDelayY = 5, kDelayZ = 40;
// GetTickCount moves in steps of up to about 16 ms.
const DWORD kTickSlack = 17;

inline FeedbackMessage Message(DWORD kind, DWORD index, const char *text)
{
    return FeedbackMessage{kind, index, const_cast<char *>(text)};
}

class FeedbackDisplay : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        Feedback_SetX(kDelayX);
        Feedback_SetY(kDelayY);
        Feedback_SetZ(kDelayZ);
        Start("Diary");
    }
    void TearDown() override
    {
        Stop();
        ErrorStateTest::TearDown();
    }
    // Starts the worker; with a caption, waits for its first plain title.
    void Start(const char *caption)
    {
        ASSERT_TRUE(!caption || Feedback_SetCaption(caption));
        recorder_.Clear();
        thread_ = CreateThread(nullptr, 0, Feedback_Thread, recorder_.Window(), 0, nullptr);
        ASSERT_NE(thread_, nullptr);
        if (caption)
            ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Saw(caption); }, 10000));
        else
            recorder_.Pump(100);
        recorder_.Clear();
    }
    void Stop()
    {
        if (!thread_)
            return;
        Feedback_TerminateThread();
        EXPECT_EQ(WaitForSingleObject(thread_, 10000), WAIT_OBJECT_0);
        CloseHandle(thread_);
        thread_ = nullptr;
    }
    // Pumps until the display is back at `title` and nothing more comes for
    // `quiet` ms. The worker may have nothing to restore: a run that a
    // clean-up ended before it began leaves the title as it was. A quiet time
    // longer than the worker's step lets a sleeping worker wake and purge.
    ::testing::AssertionResult SettlesAt(const std::string &title, DWORD quiet = 4 * kDelayZ)
    {
        DWORD start = GetTickCount();
        const auto &t = recorder_.Titles();
        if (recorder_.PumpUntil([&] { return recorder_.Current() == title &&
                                             GetTickCount() - (t.empty() ? start : t.back().tick) > quiet; },
                                10000))
            return ::testing::AssertionSuccess();
        ::testing::AssertionResult failure = ::testing::AssertionFailure() << "titles:";
        for (const TitleEvent &event : t)
            failure << " [" << event.tick << " " << event.title << "]";
        return failure;
    }
    TitleRecorder recorder_{"Diary"};
    HANDLE thread_ = nullptr;
};
