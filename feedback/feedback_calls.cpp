// The feedback calls of the application's thread. None waits for the
// display: each costs a lock pair and at most one peek at the queue, which
// lets a title update that the worker is sending go through; a post peeks
// only while such an update is under way.
#include "feedback_state.h"

static bool Ready()
{
    return g_feedback.ready.load() == 1;
}

extern "C" void WINAPI Feedback_Flush_WM_SETTEXT(void)
{
    if (!Ready() || g_feedback.beginCount.load() == 0)
        return;
    MSG msg;
    if (PeekMessageA(&msg, g_feedback.window.load(), WM_SETTEXT, WM_SETTEXT, PM_REMOVE))
        DispatchMessageA(&msg);
}

extern "C" BOOL WINAPI Feedback_PostMsg(const FeedbackMessage *message)
{
    if (!Ready() || g_feedback.beginCount.load() == 0)
        return 0;
    BOOL queued = message && FeedbackMessageIsValid(message) && FeedbackQueueAppend(message);
    FeedbackFlushTitleSends();
    return queued;
}

extern "C" BOOL WINAPI Feedback_Begin(const FeedbackMessage *message)
{
    if (!Ready())
        return 0;
    FeedbackLockState();
    g_feedback.beginCount.fetch_add(1);
    FeedbackUnlockState();
    if (message)
        Feedback_PostMsg(message);
    if (g_feedback.idle.load() == 1)
        SetEvent(g_feedback.event);
    Feedback_Flush_WM_SETTEXT();
    return 1;
}

extern "C" BOOL WINAPI Feedback_End(void)
{
    if (!Ready() || g_feedback.beginCount.load() == 0)
        return 0;
    FeedbackLockState();
    // The worker may have zeroed the count since the look above.
    DWORD count = g_feedback.beginCount.load();
    if (count)
        g_feedback.beginCount.store(count - 1);
    FeedbackUnlockState();
    return count != 0;
}

extern "C" BOOL WINAPI Feedback_SendMsg(const FeedbackMessage *message)
{
    if (!Ready() || !message || !FeedbackMessageIsValid(message))
        return 0;
    if (message->Kind == 0 && !message->Text)
        return 0;
    char text[FEEDBACK_TITLE_SIZE];
    char title[FEEDBACK_TITLE_SIZE];
    if (!FeedbackBuildText(message, text))
        return 0;
    FeedbackLockState();
    bool any = g_feedback.caption != nullptr;
    bool whole = any && FeedbackComposeTitle(title, g_feedback.caption, text, false);
    FeedbackUnlockState();
    if (!any)
        return 0;
    if (!whole)
        OSErrorSetErrorInfo(RV_BufferTooSmall);
    SetWindowTextA(g_feedback.window.load(), title);
    FeedbackLockState();
    g_feedback.sendPending.store(1);
    g_feedback.lastSendTick.store(GetTickCount());
    FeedbackUnlockState();
    if (g_feedback.idle.load() == 1)
        SetEvent(g_feedback.event);
    return 0;
}

extern "C" BOOL WINAPI Feedback_CleanupAll(void)
{
    if (!Ready())
        return 0;
    // Both threads clean up; the worker may be on its way out. Under the
    // life lock it cannot tear the queue and the locks down meanwhile.
    FeedbackLifeLock();
    if (!Ready()) {
        FeedbackLifeUnlock();
        return 0;
    }
    FeedbackState &f = g_feedback;
    FeedbackLockState();
    FeedbackQueueEmpty();
    f.beginCount.store(0);
    f.sendPending.store(0);
    f.lastSendTick.store(0);
    f.blink.store(0);
    Feedback_Flush_WM_SETTEXT();
    f.shown.store(0);
    if (f.terminate.load() == 1)
        f.ready.store(0);
    FeedbackUnlockState();
    FeedbackLifeUnlock();
    return 0;
}

extern "C" BOOL WINAPI Feedback_TerminateThread(void)
{
    FeedbackState &f = g_feedback;
    // The worker may see the terminate flag at once; the life lock keeps its
    // queue, locks and event alive until they are no longer used here.
    FeedbackLifeLock();
    if (!Ready()) {
        FeedbackLifeUnlock();
        return 0;
    }
    f.terminate.store(1);
    Feedback_CleanupAll();
    SetEvent(f.event);
    FeedbackLifeUnlock();
    // The worker may be inside SetWindowTextA, waiting for this thread to
    // take the title: keep taking titles until it says it has stopped.
    HWND window = f.window.load();
    while (f.terminate.load() == 1) {
        MSG msg;
        if (PeekMessageA(&msg, window, WM_SETTEXT, WM_SETTEXT, PM_REMOVE))
            DispatchMessageA(&msg);
        else
            SwitchToThread();
    }
    f.terminate.store(1);
    return 1;
}

// Runs `change` on a text under the state mutex if the worker has one; the
// caption and file name may be set before the worker has started.
template <typename Change> static BOOL ChangeText(Change change)
{
    FeedbackLifeLock();
    bool locked = g_feedback.stateMutex.load() != nullptr;
    if (locked)
        FeedbackLockState();
    BOOL result = change();
    if (locked)
        FeedbackUnlockState();
    FeedbackLifeUnlock();
    return result;
}

static char *CopyOf(const char *text)
{
    char *copy = FeedbackCopyText(text);
    if (!copy)
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(lstrlenA(text) + 1));
    return copy;
}

extern "C" BOOL WINAPI Feedback_SetCaption(const char *caption)
{
    if (!caption) {
        OSErrorSetErrorInfo(RV_BadParms, "Feedback_SetCaption");
        return 0;
    }
    return ChangeText([caption]() -> BOOL {
        char *copy = CopyOf(caption);
        if (!copy)
            return 0;
        LocalFree(g_feedback.caption);
        g_feedback.caption = copy;
        return 1;
    });
}

extern "C" BOOL WINAPI Feedback_SetFilename(const char *filename)
{
    return ChangeText([filename]() -> BOOL {
        LocalFree(g_feedback.filename);
        g_feedback.filename = nullptr;
        if (filename && !(g_feedback.filename = CopyOf(filename)))
            return 0;
        // The flush runs even outside a Feedback_Begin.
        g_feedback.beginCount.fetch_add(1);
        Feedback_Flush_WM_SETTEXT();
        g_feedback.beginCount.fetch_sub(1);
        return 1;
    });
}

static BOOL SetDelay(std::atomic<DWORD> &delay, DWORD milliseconds)
{
    // Before the worker starts there is no lock, and the value stays in force.
    bool locked = Ready();
    if (locked)
        FeedbackLockState();
    delay.store(milliseconds);
    if (locked)
        FeedbackUnlockState();
    return 1;
}

extern "C" BOOL WINAPI Feedback_SetX(DWORD milliseconds)
{
    return SetDelay(g_feedback.delayX, milliseconds);
}

extern "C" BOOL WINAPI Feedback_SetY(DWORD milliseconds)
{
    return SetDelay(g_feedback.delayY, milliseconds);
}

extern "C" BOOL WINAPI Feedback_SetZ(DWORD milliseconds)
{
    return SetDelay(g_feedback.delayZ, milliseconds);
}
