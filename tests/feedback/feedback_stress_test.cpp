// Random feedback calls from the main thread, with pumping, a title handler
// that calls back into the library, and a stop and restart of the worker
// every five hundred calls. Every title seen must be a legal one, and the
// handles and the library's local blocks come back to where they started.
#include <atomic>
#include <random>
#include <set>
#include "feedback_fixture.h"
#include "import_patch.h"

namespace {

std::atomic<long> g_liveBlocks{0};
ImportPatch *g_allocPatch, *g_freePatch;

HLOCAL WINAPI CountingLocalAlloc(UINT flags, SIZE_T size)
{
    HLOCAL block = g_allocPatch->Original<decltype(&LocalAlloc)>()(flags, size);
    return g_liveBlocks += block ? 1 : 0, block;
}

HLOCAL WINAPI CountingLocalFree(HLOCAL block)
{
    g_liveBlocks -= block ? 1 : 0;
    return g_freePatch->Original<decltype(&LocalFree)>()(block);
}

const char *const kCaptions[] = {"Diary", "Journal - Week", "Planner"};
const char *const kFiles[] = {"a.kel", "week [2].kel"};
const char *const kTexts[] = {"Step", "Reading", "b.kel"};
std::mt19937 g_random{12345};

int Pick(int n) { return static_cast<int>(g_random() % static_cast<unsigned>(n)); }

FeedbackMessage RandomMessage()
{
    return Message(static_cast<DWORD>(Pick(3)), static_cast<DWORD>(Pick(FEEDBACK_FORMATS)), kTexts[Pick(3)]);
}

std::set<std::string> LegalTitles()
{
    std::set<std::string> pieces = {"Working..."}, titles;
    for (int id = 53001; id <= 53007; ++id) {
        char format[128] = {}, text[256];
        LoadStringA(ResourceGetHandle(), id, format, sizeof format);
        pieces.insert(format);  // kind 1
        for (const char *t : kTexts)
            pieces.insert((wsprintfA(text, format, t), text));
    }
    pieces.insert(std::begin(kTexts), std::end(kTexts));
    for (const std::string caption : kCaptions) {
        titles.insert(caption);
        for (const std::string &piece : pieces)
            titles.insert(caption + " - " + piece);
        for (const char *file : kFiles)
            titles.insert(caption + " - [" + file + "]");
    }
    return titles;
}

HANDLE StartWorker(TitleRecorder &recorder)
{
    HANDLE thread = CreateThread(nullptr, 0, Feedback_Thread, recorder.Window(), 0, nullptr);
    recorder.PumpUntil([] { return Feedback_Begin(nullptr) != 0; }, 30000);  // ready
    Feedback_End();
    return thread;
}

void StopWorker(HANDLE thread, TitleRecorder &recorder)
{
    EXPECT_TRUE(Feedback_TerminateThread());
    recorder.PumpUntil([&] { return WaitForSingleObject(thread, 0) == WAIT_OBJECT_0; }, 30000);
    CloseHandle(thread);
}

}  // namespace

TEST(FeedbackStress, RandomCallsKeepLegalTitlesAndGiveBackEveryHandleAndBlock)
{
    const int calls = MonkeySteps(6000, 1500);
    const std::set<std::string> legal = LegalTitles();
    TitleRecorder recorder("Diary");
    ImportPatch allocPatch(LibraryModule(), "kernel32.dll", "LocalAlloc", reinterpret_cast<const void *>(CountingLocalAlloc));
    ImportPatch freePatch(LibraryModule(), "kernel32.dll", "LocalFree", reinterpret_cast<const void *>(CountingLocalFree));
    ASSERT_TRUE(allocPatch.Applied() && freePatch.Applied());
    g_allocPatch = &allocPatch;
    g_freePatch = &freePatch;
    OSErrorClearError();
    Feedback_SetX(1);
    Feedback_SetY(1);
    Feedback_SetZ(2);
    DWORD handlesBefore = 0, handlesAfter = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handlesBefore);
    const long blocksBefore = g_liveBlocks.load();
    size_t titlesSeen = 0, illegal = 0;
    std::string firstIllegal;
    recorder.OnTitle([&](const std::string &title) {  // a handler that calls back in
        ++titlesSeen;
        if (!legal.count(title) && !illegal++)
            firstIllegal = title;
        if (Pick(4) == 0) {
            Feedback_SetCaption(kCaptions[Pick(3)]);
            FeedbackMessage message = RandomMessage();
            Feedback_PostMsg(&message);
        }
    });
    Feedback_SetCaption(kCaptions[0]);
    HANDLE worker = StartWorker(recorder);
    for (int i = 0; i < calls; ++i) {
        FeedbackMessage message = RandomMessage();
        MSG msg;
        switch (Pick(12)) {
        case 0: Feedback_Begin(Pick(2) ? &message : nullptr); break;
        case 1: Feedback_End(); break;
        case 2: case 3: Feedback_PostMsg(&message); break;
        case 4: Feedback_SendMsg(&message); break;
        case 5: Feedback_SetCaption(kCaptions[Pick(3)]); break;
        case 6: Feedback_SetFilename(Pick(3) ? kFiles[Pick(2)] : nullptr); break;
        case 7: Feedback_SetZ(1 + Pick(3)); break;
        case 8: Feedback_CleanupAll(); break;
        case 9: Feedback_Flush_WM_SETTEXT(); break;
        default:
            while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageA(&msg);
            if (Pick(8) == 0)
                Sleep(1);  // the worker's turn
        }
        if (i % 500 == 499) {  // stop and restart the worker
            StopWorker(worker, recorder);
            Feedback_SetCaption(kCaptions[Pick(3)]);
            worker = StartWorker(recorder);
        }
    }
    StopWorker(worker, recorder);
    recorder.OnTitle(nullptr);
    EXPECT_EQ(illegal, 0u) << "first illegal title: " << firstIllegal;
    EXPECT_GT(titlesSeen, static_cast<size_t>(calls / 20));
    GetProcessHandleCount(GetCurrentProcess(), &handlesAfter);
    EXPECT_EQ(handlesAfter, handlesBefore);
    EXPECT_EQ(g_liveBlocks.load(), blocksBefore) << "every caption, name, format, queue node and message freed";
    OSErrorClearError();
    Feedback_SetX(80);
    Feedback_SetY(120);
    Feedback_SetZ(250);
}
