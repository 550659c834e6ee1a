// A QzCombo dropping a list against the system's "ComboBox" dropping its
// own (CB_SHOWDROPDOWN), both measured from the request to the end of the
// list's first paint, in the same run. Each drop is closed again before the
// next; the fastest of the drops is reported, since the machine's load
// only ever adds. Ratios above 1 mean the library is faster.
#include <windows.h>
#include <cstdio>
#include "bench_timing.h"
#include "qziso32.h"

namespace {

const int kDrops = 200;
const int kItems = 40;
WNDPROC g_listProc;
double g_paintedAt;
HWND g_closeAfterPaint;  // our combo: closed once its list has painted

// The list's own procedure, with the end of its paint noted.
LRESULT CALLBACK NotePaint(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = CallWindowProcA(g_listProc, window, message, wParam, lParam);
    if (message == WM_PAINT && g_paintedAt == 0) {
        g_paintedAt = Seconds();
        if (g_closeAfterPaint)
            PostMessageA(g_closeAfterPaint, QCM_SHOWDROPDOWN, 0, QCC_ORDINARY);
    }
    return result;
}

void Fill(HWND list, UINT add)
{
    char name[16];
    for (int i = 0; i < kItems; ++i) {
        wsprintfA(name, "Name %d", i);
        SendMessageA(list, add, 0, reinterpret_cast<LPARAM>(name));
    }
}

void Pump()
{
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
}

// The combo's own loop runs inside the request: the close is posted once
// the list has painted.
double OursPerDrop(HWND host)
{
    HWND combo = CreateWindowExA(0, "QzCombo", "", WS_CHILD | WS_VISIBLE | QCS_NOSCREENCOPY, 10, 10, 200, 200,
                                 host, reinterpret_cast<HMENU>(1), nullptr, nullptr);
    if (!combo || SendMessageA(combo, QCM_SETCHILD, QCK_PLAINLIST | (9 << 8), WS_VSCROLL) != 1)
        return 0;
    HWND list = reinterpret_cast<HWND>(SendMessageA(combo, QCM_GETCHILD, 0, 0));
    Fill(list, LB_ADDSTRING);
    g_listProc = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(NotePaint)));
    double best = 0;
    for (int i = 0; i < kDrops; ++i) {
        g_paintedAt = 0;
        g_closeAfterPaint = combo;
        double start = Seconds();
        SendMessageA(combo, QCM_SHOWDROPDOWN, 1, 0);
        g_closeAfterPaint = nullptr;
        if (g_paintedAt == 0)
            return 0;
        if (i == 0 || g_paintedAt - start < best)
            best = g_paintedAt - start;
        Pump();
    }
    DestroyWindow(combo);
    return best;
}

double PlatformPerDrop(HWND host)
{
    HWND combo = CreateWindowExA(0, "ComboBox", "", WS_CHILD | WS_VISIBLE | CBS_DROPDOWNLIST | WS_VSCROLL, 10, 10,
                                 200, 200, host, reinterpret_cast<HMENU>(2), nullptr, nullptr);
    COMBOBOXINFO info = {};
    info.cbSize = sizeof info;
    if (!combo || !GetComboBoxInfo(combo, &info) || !info.hwndList)
        return 0;
    Fill(combo, CB_ADDSTRING);
    g_listProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(info.hwndList, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(NotePaint)));
    double best = 0;
    for (int i = 0; i < kDrops; ++i) {
        g_paintedAt = 0;
        double start = Seconds();
        SendMessageA(combo, CB_SHOWDROPDOWN, TRUE, 0);
        for (int spin = 0; g_paintedAt == 0 && spin < 1000; ++spin) {
            UpdateWindow(info.hwndList);
            Pump();
        }
        if (g_paintedAt == 0)
            return 0;
        if (i == 0 || g_paintedAt - start < best)
            best = g_paintedAt - start;
        SendMessageA(combo, CB_SHOWDROPDOWN, FALSE, 0);
        Pump();
    }
    DestroyWindow(combo);
    return best;
}

}  // namespace

int main()
{
    RegisterGadgets(0);
    HWND host = CreateWindowExA(0, "Static", "", WS_POPUP | WS_VISIBLE, 0, 0, 300, 300, nullptr, nullptr, nullptr,
                                nullptr);
    double ours = OursPerDrop(host);
    double theirs = PlatformPerDrop(host);
    if (ours <= 0 || theirs <= 0) {
        std::printf("a drop-down did not paint (ours %g s, platform %g s)\n", ours, theirs);
        return 1;
    }
    std::printf("%-52s ours %9.1f us  platform %9.1f us  ratio %.2fx\n", "drop-down to the list's first paint",
                ours * 1e6, theirs * 1e6, theirs / ours);
    DestroyWindow(host);
    UnRegisterGadgets();
    return 0;
}
