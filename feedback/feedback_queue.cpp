// The feedback display's state, its locks, its message queue and its titles.
#include "feedback_state.h"
#include "../core/text_formatter.h"

FeedbackState g_feedback;

static CRITICAL_SECTION s_lifeLock;
static INIT_ONCE s_lifeLockOnce = INIT_ONCE_STATIC_INIT;

static BOOL CALLBACK InitLifeLock(PINIT_ONCE, PVOID, PVOID *)
{
    InitializeCriticalSection(&s_lifeLock);
    return TRUE;
}

void FeedbackLifeLock()
{
    InitOnceExecuteOnce(&s_lifeLockOnce, InitLifeLock, nullptr, nullptr);
    EnterCriticalSection(&s_lifeLock);
}

void FeedbackLifeUnlock()
{
    LeaveCriticalSection(&s_lifeLock);
}

void FeedbackLockState()
{
    WaitForSingleObject(g_feedback.stateMutex.load(), INFINITE);
}

void FeedbackUnlockState()
{
    ReleaseMutex(g_feedback.stateMutex.load());
}

char *FeedbackCopyText(const char *text)
{
    int size = lstrlenA(text) + 1;
    char *copy = static_cast<char *>(LocalAlloc(LPTR, size));
    if (copy)
        CopyMemory(copy, text, size);
    return copy;
}

void FeedbackFreeMessage(FeedbackMessage *message)
{
    if (!message)
        return;
    if (message->Text)
        LocalFree(message->Text);
    LocalFree(message);
}

bool FeedbackQueueAppend(const FeedbackMessage *message)
{
    FeedbackNode *node = static_cast<FeedbackNode *>(LocalAlloc(LPTR, sizeof(FeedbackNode)));
    if (!node)
        return false;
    FeedbackMessage *copy = static_cast<FeedbackMessage *>(LocalAlloc(LPTR, sizeof(FeedbackMessage)));
    if (copy) {
        *copy = *message;
        copy->Text = nullptr;
        if (message->Text && !(copy->Text = FeedbackCopyText(message->Text))) {
            LocalFree(copy);
            copy = nullptr;
        }
    }
    if (!copy) {
        LocalFree(node);
        return false;
    }
    node->message = copy;
    FeedbackQueueRecord &queue = g_feedback.queue;
    AcquireSRWLockExclusive(&queue.lock);
    node->next = queue.sentinel;
    node->prev = queue.sentinel->prev;
    queue.sentinel->prev->next = node;
    queue.sentinel->prev = node;
    queue.count.fetch_add(1);
    ReleaseSRWLockExclusive(&queue.lock);
    return true;
}

// Unlinks the oldest node. The caller holds the queue lock.
static FeedbackMessage *UnlinkOldest()
{
    FeedbackQueueRecord &queue = g_feedback.queue;
    FeedbackNode *node = queue.sentinel->next;
    if (node == queue.sentinel)
        return nullptr;
    node->prev->next = node->next;
    node->next->prev = node->prev;
    queue.count.fetch_sub(1);
    FeedbackMessage *message = node->message;
    LocalFree(node);
    return message;
}

FeedbackMessage *FeedbackQueueTake()
{
    FeedbackQueueRecord &queue = g_feedback.queue;
    // The count is looked at without the lock; the removal checks again under it.
    if (queue.count.load() == 0)
        return nullptr;
    AcquireSRWLockExclusive(&queue.lock);
    FeedbackMessage *message = UnlinkOldest();
    ReleaseSRWLockExclusive(&queue.lock);
    return message;
}

void FeedbackQueueEmpty()
{
    FeedbackQueueRecord &queue = g_feedback.queue;
    AcquireSRWLockExclusive(&queue.lock);
    while (FeedbackMessage *message = UnlinkOldest())
        FeedbackFreeMessage(message);
    ReleaseSRWLockExclusive(&queue.lock);
}

bool FeedbackMessageIsValid(const FeedbackMessage *message)
{
    if (message->Kind <= 1 && message->Index >= FEEDBACK_FORMATS) {
        OSErrorSetErrorInfo(RV_BadParms, "FeedbackMessage");
        return false;
    }
    return true;
}

// Formats `format` with one argument into `out`, cut to a title. Both threads
// format, so this works in a buffer of its own, not the formatters' shared one.
static void FormatPiece(char *out, const char *format, ...)
{
    char work[kFormatBufferSize];
    va_list args;
    va_start(args, format);
    FormatText(work, format, args);
    va_end(args);
    lstrcpynA(out, work, FEEDBACK_TITLE_SIZE);
}

bool FeedbackBuildText(const FeedbackMessage *message, char *out)
{
    out[0] = 0;
    if (message->Kind > 1) {
        if (!message->Text)
            return false;
        lstrcpynA(out, message->Text, FEEDBACK_TITLE_SIZE);
        return true;
    }
    const char *format = message->Index < FEEDBACK_FORMATS ? g_feedback.formats[message->Index] : nullptr;
    // A format that failed to load is never read.
    if (!format)
        return false;
    if (message->Kind == 1)
        lstrcpynA(out, format, FEEDBACK_TITLE_SIZE);
    else
        FormatPiece(out, format, message->Text);
    return true;
}

// Appends `text` at `*length`, keeping room for the terminator; false if cut.
static bool Append(char *title, int *length, const char *text)
{
    bool whole = true;
    for (; *text; ++text) {
        if (*length >= FEEDBACK_TITLE_SIZE - 1) {
            whole = false;
            break;
        }
        title[(*length)++] = *text;
    }
    // Terminated on a cut too: the title ends at the last byte that fits.
    title[*length] = 0;
    return whole;
}

bool FeedbackComposeTitle(char *title, const char *caption, const char *piece, bool bracketed)
{
    int length = 0;
    title[0] = 0;
    bool whole = Append(title, &length, caption);
    if (piece && whole)
        whole = Append(title, &length, bracketed ? " - [" : " - ") && Append(title, &length, piece) &&
                (!bracketed || Append(title, &length, "]"));
    // A caption and text that together overrun the title are cut; the
    // caller decides whether the cut is worth an error.
    return whole;
}

void FeedbackRestoreTitle()
{
    char title[FEEDBACK_TITLE_SIZE];
    FeedbackLockState();
    bool any = g_feedback.caption != nullptr;
    if (any)
        FeedbackComposeTitle(title, g_feedback.caption, g_feedback.filename, true);
    FeedbackUnlockState();
    if (any)
        FeedbackShowTitle(title);
}

void FeedbackShowTitle(const char *title)
{
    g_feedback.titleSends.fetch_add(1);
    SetWindowTextA(g_feedback.window.load(), title);
    g_feedback.titleSends.fetch_sub(1);
}

void FeedbackFlushTitleSends()
{
    // A send is counted before it reaches the window's queue, so a count of
    // 0 means the peek would find none of the worker's titles waiting.
    if (g_feedback.titleSends.load() != 0)
        Feedback_Flush_WM_SETTEXT();
}
