// The application thread's cost of queueing a title message with
// Feedback_PostMsg, against posting the same text to the window with
// PostMessageA, measured in the same run. The worker runs with long delays,
// so the figure is the caller's own cost: a copy of the message, the queue's
// lock pair, and a peek only while the worker is sending a title.
#include <windows.h>
#include <algorithm>
#include <cstdio>
#include <vector>
#include "qziso32.h"
#include "bench_timing.h"

namespace {

// Seconds for 1000 calls of `post`; `drain` then empties the queue,
// outside the timing.
template <typename Post, typename Drain>
double Batch(Post post, Drain drain)
{
    const double start = Seconds();
    for (int i = 0; i < 1000; ++i) post();
    const double elapsed = Seconds() - start;
    drain();
    return elapsed;
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main()
{
    HWND window = CreateWindowA("STATIC", "Diary", WS_OVERLAPPEDWINDOW, 0, 0, 200, 100, nullptr, nullptr,
                                nullptr, nullptr);
    Feedback_SetX(500);
    Feedback_SetY(500);
    Feedback_SetZ(500);
    Feedback_SetCaption("Diary");
    HANDLE worker = CreateThread(nullptr, 0, Feedback_Thread, window, 0, nullptr);
    while (!Feedback_Begin(nullptr))
        Sleep(1);
    char text[] = "Saving week 47 of the diary";
    FeedbackMessage message = {2, 0, text};
    // The two sides take turns, batch by batch, so that the load of the
    // machine falls on both alike; the medians are compared.
    std::vector<double> ours, peer, mutexPair, peek;
    HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    for (int round = 0; round < 41; ++round) {
        ours.push_back(Batch([&] { Feedback_PostMsg(&message); },
                             [] {
                                 Feedback_CleanupAll();
                                 Feedback_Begin(nullptr);
                             }));
        peer.push_back(Batch([&] { PostMessageA(window, WM_APP, 0, reinterpret_cast<LPARAM>(text)); },
                             [] {
                                 MSG msg;
                                 while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
                                 }
                             }));
        mutexPair.push_back(Batch([&] {
            WaitForSingleObject(mutex, INFINITE);
            ReleaseMutex(mutex);
        }, [] {}));
        peek.push_back(Batch([&] {
            MSG msg;
            PeekMessageA(&msg, window, WM_SETTEXT, WM_SETTEXT, PM_REMOVE);
        }, [] {}));
    }
    CloseHandle(mutex);
    ReportRates("Feedback_PostMsg", 1000 / Median(ours), "PostMessageA (same text)", 1000 / Median(peer));
    // What the call no longer pays: a kernel mutex for the queue, and a peek
    // on every call (it peeks only while the worker sends a title, which
    // the long delays here make rare).
    printf("%-44s %12.0f calls/s\n", "for scale: a kernel mutex wait and release", 1000 / Median(mutexPair));
    printf("%-44s %12.0f calls/s\n", "for scale: one PeekMessageA for WM_SETTEXT", 1000 / Median(peek));
    Feedback_TerminateThread();
    WaitForSingleObject(worker, INFINITE);
    CloseHandle(worker);
    DestroyWindow(window);
    return 0;
}
