// The feedback worker: a thread that owns the timing of the title display.
// After a first delay X and a second delay Y it shows one step, then one step
// each delay Z: the oldest queued message, or, with the queue empty, the busy
// text and the plain title in turn. When the count of Feedback_Begin drops
// to 0 it purges and restores the title, then sleeps on the event.
#include "feedback_state.h"
#include "../core/module_globals.h"

static void StartWorker(HWND window)
{
    FeedbackState &f = g_feedback;
    f.window.store(window);
    f.threadHandle = GetCurrentThread();
    f.event = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    f.beginCount.store(0);
    f.queue.sentinel = static_cast<FeedbackNode *>(LocalAlloc(LPTR, sizeof(FeedbackNode)));
    if (f.queue.sentinel)
        f.queue.sentinel->prev = f.queue.sentinel->next = f.queue.sentinel;
    else
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(sizeof(FeedbackNode)));
    f.queue.count.store(0);
    FeedbackLifeLock();
    f.stateMutex.store(CreateMutexA(nullptr, FALSE, nullptr));
    FeedbackLifeUnlock();
    for (int i = 0; i < FEEDBACK_FORMATS; ++i)
        f.formats[i] = LoadStringCopy(g_module.hResourceLibrary, 53000 + i);
    f.terminate.store(0);
    f.idle.store(0);
    // Without its queue or its locks the worker cannot run.
    if (f.queue.sentinel && f.stateMutex.load() && f.event)
        f.ready.store(1);
}

static void StopWorker()
{
    FeedbackState &f = g_feedback;
    Feedback_CleanupAll();
    f.ready.store(0);
    FeedbackLifeLock();
    LocalFree(f.queue.sentinel);
    f.queue.sentinel = nullptr;
    LocalFree(f.caption);
    f.caption = nullptr;
    LocalFree(f.filename);
    f.filename = nullptr;
    for (char *&format : f.formats) {
        LocalFree(format);
        format = nullptr;
    }
    if (HANDLE mutex = f.stateMutex.exchange(nullptr))
        CloseHandle(mutex);
    if (f.event)
        CloseHandle(f.event);
    f.event = nullptr;
    FeedbackLifeUnlock();
    f.idle.store(1);
    f.threadHandle = nullptr;
    f.blink.store(0);
    // The last write: the application's thread waits for it.
    f.terminate.store(0);
}

static bool Busy()
{
    return g_feedback.beginCount.load() != 0 || g_feedback.sendPending.load() != 0;
}

// Gives a message sent lately its time on the title. The sleep lasts as long
// as the message has already been shown, not the time that remains.
static void Hold()
{
    DWORD elapsed = GetTickCount() - g_feedback.lastSendTick.load();
    if (elapsed < FEEDBACK_HOLD_TIME)
        Sleep(elapsed);
    FeedbackLockState();
    g_feedback.sendPending.store(0);
    FeedbackUnlockState();
}

// Sleeps `delay`, honours a sent message; true while the count stays above 0.
static bool Pause(DWORD delay)
{
    Sleep(delay);
    if (g_feedback.sendPending.load())
        Hold();
    return g_feedback.beginCount.load() != 0;
}

static void ShowTitle(const char *piece, bool bracketed)
{
    char title[FEEDBACK_TITLE_SIZE];
    FeedbackLockState();
    bool any = g_feedback.caption != nullptr;
    if (any)
        FeedbackComposeTitle(title, g_feedback.caption, piece, bracketed);
    FeedbackUnlockState();
    if (any)
        FeedbackShowTitle(title);
}

static bool HasCaption()
{
    FeedbackLockState();
    bool any = g_feedback.caption != nullptr;
    FeedbackUnlockState();
    return any;
}

static void DisplayStep()
{
    FeedbackMessage *message = FeedbackQueueTake();
    if (!message) {
        if (!HasCaption())
            return;
        DWORD blink = ~g_feedback.blink.load();
        g_feedback.blink.store(blink);
        if (!blink)
            FeedbackRestoreTitle();
        else if (g_feedback.formats[0])
            ShowTitle(g_feedback.formats[0], false);
        return;
    }
    char text[FEEDBACK_TITLE_SIZE];
    if (FeedbackBuildText(message, text))
        ShowTitle(text, false);
    FeedbackFreeMessage(message);
}

// The idle step: restore the title and, with nothing to do, sleep on the
// event. The counters are looked at again after the reset, so that a begin
// or a send that came between the first look and the reset is not lost.
static void IdleStep()
{
    FeedbackState &f = g_feedback;
    FeedbackRestoreTitle();
    if (Busy() || f.terminate.load())
        return;
    f.blink.store(0);
    f.idle.store(1);
    ResetEvent(f.event);
    if (!Busy() && !f.terminate.load())
        WaitForSingleObject(f.event, INFINITE);
    f.idle.store(0);
}

enum CycleEnd { CycleCountZero, CycleIdle, CycleTerminate };

// Runs the display while there is something to show.
static CycleEnd RunCycle()
{
    FeedbackState &f = g_feedback;
    for (;;) {
        if (!Pause(f.delayX.load()))
            return CycleCountZero;
        f.shown.store(1);
        if (!Pause(f.delayY.load()))
            return CycleCountZero;
        DisplayStep();
        if (f.terminate.load())
            return CycleTerminate;
        for (;;) {
            if (f.beginCount.load() == 0) {
                if (f.sendPending.load() == 0)
                    return CycleIdle;
                break;  // a sent message alone: a new cycle
            }
            if (!Pause(f.delayZ.load()))
                return CycleCountZero;
            DisplayStep();
            if (f.terminate.load())
                return CycleTerminate;
        }
    }
}

extern "C" DWORD WINAPI Feedback_Thread(LPVOID window)
{
    FeedbackState &f = g_feedback;
    if (!f.ready.load())
        StartWorker(static_cast<HWND>(window));
    bool started = f.ready.load() == 1;
    while (!f.terminate.load() && f.ready.load() == 1) {
        if (Busy()) {
            CycleEnd end = RunCycle();
            if (end == CycleTerminate)
                break;
            if (end == CycleCountZero) {
                // The count reached 0: purge the queue and look again.
                Feedback_CleanupAll();
                if (f.terminate.load())
                    break;
                continue;
            }
        }
        IdleStep();
    }
    StopWorker();
    // A worker that never got ready leaves the stopped state as it found it.
    if (!started)
        f.terminate.store(1);
    ExitThread(0);
    return 0;
}
