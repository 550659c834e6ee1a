// The feedback display's process-wide state, shared by the worker thread and
// the application's thread.
//
// Lock order: the state mutex first, the queue lock second. The words below
// are read without a lock, so they are atomics; they are written under the
// state mutex, apart from idle, terminate and shown. A title is built into a
// local buffer under the state mutex and shown after its release.
#pragma once
#include <atomic>
#include "qziso32.h"

// Each title is built in a buffer of this size.
const int FEEDBACK_TITLE_SIZE = 292;
// A sent message younger than this gets extra time before the display goes on.
const DWORD FEEDBACK_HOLD_TIME = 3000;

struct FeedbackNode {
    FeedbackNode *prev;
    FeedbackNode *next;
    FeedbackMessage *message;   // a private copy, with a private copy of its text
};

struct FeedbackQueueRecord {
    std::atomic<DWORD> count;
    FeedbackNode *sentinel;     // linked to itself when empty
    SRWLOCK lock;               // held for one link operation; never waits on a kernel object
};

struct FeedbackState {
    std::atomic<DWORD> delayX{80};
    std::atomic<DWORD> delayY{120};
    std::atomic<DWORD> delayZ{250};
    std::atomic<DWORD> terminate{1};
    std::atomic<DWORD> idle{1};
    std::atomic<DWORD> ready{0};
    std::atomic<DWORD> beginCount{0};
    std::atomic<DWORD> sendPending{0};
    std::atomic<DWORD> lastSendTick{0};
    std::atomic<DWORD> blink{0};
    std::atomic<DWORD> shown{0};
    std::atomic<HWND> window{nullptr};
    std::atomic<DWORD> titleSends{0};  // title sends of the worker under way to the window's thread
    HANDLE threadHandle = nullptr;
    char *caption = nullptr;
    char *filename = nullptr;
    char *formats[FEEDBACK_FORMATS] = {};
    HANDLE event = nullptr;
    std::atomic<HANDLE> stateMutex{nullptr};
    FeedbackQueueRecord queue{};
};

extern FeedbackState g_feedback;

// Guards the life of the queue, the locks, the event, the caption and the
// file name while the worker shuts down: the setters of caption and file
// name, Feedback_CleanupAll and the start of Feedback_TerminateThread hold it,
// and the worker frees and closes under it. Recursive for its owner; taken
// before the state mutex, and nothing is waited for while the worker holds it.
void FeedbackLifeLock();
void FeedbackLifeUnlock();

void FeedbackLockState();
void FeedbackUnlockState();

// A local copy of `text`, or null.
char *FeedbackCopyText(const char *text);
// Appends a copy of `message` to the queue; false if a copy failed.
bool FeedbackQueueAppend(const FeedbackMessage *message);
// Takes the oldest message off the queue, or null.
FeedbackMessage *FeedbackQueueTake();
void FeedbackFreeMessage(FeedbackMessage *message);
// Frees every queued message. The caller holds the state mutex.
void FeedbackQueueEmpty();

// Whether the message names a format that exists (kinds 0 and 1); records
// RV_BadParms for an index past the table.
bool FeedbackMessageIsValid(const FeedbackMessage *message);
// The message's text by its kind into `out` (FEEDBACK_TITLE_SIZE bytes);
// false when there is none.
bool FeedbackBuildText(const FeedbackMessage *message, char *out);
// "caption - piece", "caption - [piece]" or the caption alone, cut to fit;
// false when cut. Records nothing: the worker must not touch the error state,
// which belongs to the application's thread.
bool FeedbackComposeTitle(char *title, const char *caption, const char *piece, bool bracketed);
// Sets the window's title, counted in titleSends while the send is under way.
void FeedbackShowTitle(const char *title);
// The flush of a post: peeks only while a title send is under way, which is
// the only WM_SETTEXT the flush is there for.
void FeedbackFlushTitleSends();
// Restores the plain title: caption and file name. No caption, no title.
void FeedbackRestoreTitle();
