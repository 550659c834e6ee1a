// The month calendar gadget against the platform's month calendar control,
// measured in the same run: a move to the next or previous month, painted
// at once. Ratios above 1 mean the library is faster.
#include <windows.h>
#include <commctrl.h>
#include <cstdio>
#include "bench_timing.h"
#include "qziso32.h"

namespace {

const int kMoves = 200;

typedef BOOL(WINAPI *InitControls)(const INITCOMMONCONTROLSEX *);

HWND MakeFrame(const char *title)
{
    return CreateWindowExA(0, "STATIC", title, WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 400, nullptr,
                           nullptr, GetModuleHandleA(nullptr), nullptr);
}

void Pump()
{
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&msg);
}

}  // namespace

int main()
{
    HMODULE controls = LoadLibraryA("comctl32.dll");
    InitControls init = controls ? reinterpret_cast<InitControls>(
                                       reinterpret_cast<void *>(GetProcAddress(controls, "InitCommonControlsEx")))
                                 : nullptr;
    INITCOMMONCONTROLSEX icc = {sizeof icc, ICC_DATE_CLASSES};
    if (!init || !init(&icc) || !RegisterGadgets(0)) {
        std::printf("cannot set up the controls\n");
        return 1;
    }
    HWND ourFrame = MakeFrame("DateTracker");
    HWND theirFrame = MakeFrame("SysMonthCal32");
    HWND ours = CreateWindowExA(0, "DateTracker", "", WS_CHILD | WS_VISIBLE, 10, 10, 200, 200, ourFrame,
                                nullptr, GetModuleHandleA(nullptr), nullptr);
    HWND theirs = CreateWindowExA(0, "SysMonthCal32", "", WS_CHILD | WS_VISIBLE, 10, 10, 250, 200, theirFrame,
                                  nullptr, GetModuleHandleA(nullptr), nullptr);
    if (!ours || !theirs) {
        std::printf("cannot make the controls\n");
        return 1;
    }
    DateTimeValue start = {};
    OSSetDateTime(&start, 2020, 6, 15, 0, 0, 0, 0);
    SendMessageA(ours, DTKM_SETDATE, 0, reinterpret_cast<LPARAM>(&start));
    SYSTEMTIME months[2] = {};
    months[0].wYear = months[1].wYear = 2020;
    months[0].wMonth = 6;
    months[1].wMonth = 7;
    months[0].wDay = months[1].wDay = 15;
    SendMessageA(theirs, MCM_SETCURSEL, 0, reinterpret_cast<LPARAM>(&months[0]));
    UpdateWindow(ours);
    UpdateWindow(theirs);
    Pump();
    // The platform's control must show the month it selects, or it would
    // be timed without the month's repaint.
    SendMessageA(theirs, MCM_SETCURSEL, 0, reinterpret_cast<LPARAM>(&months[1]));
    SYSTEMTIME shown[2] = {};
    SendMessageA(theirs, MCM_GETMONTHRANGE, GMR_DAYSTATE, reinterpret_cast<LPARAM>(shown));
    SendMessageA(theirs, MCM_SETCURSEL, 0, reinterpret_cast<LPARAM>(&months[0]));
    SYSTEMTIME shownBefore[2] = {};
    SendMessageA(theirs, MCM_GETMONTHRANGE, GMR_DAYSTATE, reinterpret_cast<LPARAM>(shownBefore));
    if (shown[0].wMonth == shownBefore[0].wMonth)
        std::printf("note: the platform's control did not turn the month\n");

    // The gadget paints the new month inside the key's handling.
    double ourTime = Time([&] {
        for (int i = 0; i < kMoves; ++i)
            SendMessageA(ours, WM_KEYDOWN, i % 2 ? VK_PRIOR : VK_NEXT, 0);
    });
    double theirTime = Time([&] {
        for (int i = 0; i < kMoves; ++i) {
            SendMessageA(theirs, MCM_SETCURSEL, 0, reinterpret_cast<LPARAM>(&months[(i + 1) % 2]));
            UpdateWindow(theirs);
        }
    });
    std::printf("%-48s ours %10.1f us  platform %10.1f us  ratio %.2fx  (goal >= 1x)\n",
                "month change with repaint", ourTime * 1e6 / kMoves, theirTime * 1e6 / kMoves,
                theirTime / ourTime);
    DestroyWindow(ourFrame);
    DestroyWindow(theirFrame);
    UnRegisterGadgets();
    return 0;
}
