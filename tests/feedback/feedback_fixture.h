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
        if (caption) {
            ASSERT_TRUE(Feedback_SetCaption(caption));
        }
        recorder_.Clear();
        thread_ = CreateThread(nullptr, 0, Feedback_Thread, recorder_.Window(), 0, nullptr);
        ASSERT_NE(thread_, nullptr);
        if (caption) {
            ASSERT_TRUE(recorder_.PumpUntil([&] { return recorder_.Saw(caption); }, 10000));
        } else {
            recorder_.Pump(100);
        }
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
    // Pumps until the display is back at `title` and nothing more comes.
    ::testing::AssertionResult SettlesAt(const std::string &title)
    {
        // The worker may have nothing to restore: a run that a clean-up
        // ended before it began leaves the title as it was.
        DWORD start = GetTickCount();
        bool settled = recorder_.PumpUntil(
            [&] {
                const auto &t = recorder_.Titles();
                DWORD since = t.empty() ? start : t.back().tick;
                return recorder_.Current() == title && GetTickCount() - since > 4 * kDelayZ;
            },
            10000);
        if (settled)
            return ::testing::AssertionSuccess();
        ::testing::AssertionResult failure = ::testing::AssertionFailure();
        failure << "titles:";
        for (const TitleEvent &event : recorder_.Titles())
            failure << " [" << event.tick << " " << event.title << "]";
        return failure;
    }
    TitleRecorder recorder_{"Diary"};
    HANDLE thread_ = nullptr;
};
