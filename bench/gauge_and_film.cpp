// The gauge and the film player against their platform peers, measured in
// the same run: one GasGauge value step with its repaint against the
// system's progress bar moved by PBM_SETPOS and repainted, and one film
// frame (key-colour mode, over the saved background) against a
// TransparentBlt of the same cell straight from the sheet. Ratios above 1
// mean the library is faster.
#include <windows.h>
#include <commctrl.h>
#include <cstdio>
#include "bench_timing.h"
#include "qziso32.h"

namespace {

const int kSteps = 2000;
const int kFrames = 8;
const int kFilms = 300;

void Report(const char *what, double ours, double theirs, unsigned count)
{
    std::printf("%-52s ours %9.1f us  platform %9.1f us  ratio %.2fx\n", what, ours * 1e6 / count,
                theirs * 1e6 / count, theirs / ours);
}

void GaugeAgainstProgressBar(HWND host)
{
    typedef BOOL(WINAPI * InitControls)(const INITCOMMONCONTROLSEX *);
    HMODULE comctl = LoadLibraryA("comctl32.dll");
    auto init = reinterpret_cast<InitControls>(
        reinterpret_cast<void (*)()>(GetProcAddress(comctl, "InitCommonControlsEx")));
    INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_PROGRESS_CLASS};
    if (init)
        init(&classes);
    HWND gauge = CreateWindowExA(0, "GasGauge", "", WS_CHILD | WS_VISIBLE, 0, 0, 300, 24, host,
                                 nullptr, nullptr, nullptr);
    HWND bar = CreateWindowExA(0, "msctls_progress32", "", WS_CHILD | WS_VISIBLE, 0, 30, 300, 24,
                               host, nullptr, nullptr, nullptr);
    if (!gauge || !bar) {
        std::printf("the gauge or the progress bar could not be made\n");
        return;
    }
    // Steps of one percent: one frame each, no message pump.
    double ours = Time([&] {
        for (int i = 0; i < kSteps; ++i)
            SendMessageA(gauge, GGM_SETVALUE, 0, 40 + (i & 1));
    });
    double theirs = Time([&] {
        for (int i = 0; i < kSteps; ++i) {
            SendMessageA(bar, PBM_SETPOS, 40 + (i & 1), 0);
            UpdateWindow(bar);
        }
    });
    Report("GasGauge one-percent step with repaint", ours, theirs, kSteps);
    DestroyWindow(gauge);
    DestroyWindow(bar);
}

void FilmAgainstTransparentBlt()
{
    typedef BOOL(WINAPI * TransparentBltProc)(HDC, int, int, int, int, HDC, int, int, int, int, UINT);
    auto transparentBlt = reinterpret_cast<TransparentBltProc>(reinterpret_cast<void (*)()>(
        GetProcAddress(LoadLibraryA("msimg32.dll"), "TransparentBlt")));
    HDC screen = GetDC(nullptr);
    HDC target = CreateCompatibleDC(screen);
    HBITMAP surface = CreateCompatibleBitmap(screen, 128, 128);
    HGDIOBJ earlier = SelectObject(target, surface);
    PatBlt(target, 0, 0, 128, 128, WHITENESS);
    static const LONG cells[kFrames] = {0, 1, 2, 3, 4, 5, 6, 7};
    double ours = Time([&] {
        for (int i = 0; i < kFilms; ++i)
            PlayFilm(target, 40, 40, ResourceGetHandle(), 9200, 4, 2, FILM_KEYCOLOUR, kFrames, 0,
                     0xFF00FF, 0, cells, 1);
    });
    HDC sheetDC = CreateCompatibleDC(screen);
    HBITMAP sheet = LoadBitmapA(ResourceGetHandle(), MAKEINTRESOURCEA(9200));
    HGDIOBJ earlierSheet = SelectObject(sheetDC, sheet);
    double theirs = Time([&] {
        for (int i = 0; i < kFilms; ++i)
            for (int f = 0; f < kFrames; ++f)
                transparentBlt(target, 40, 40, 16, 16, sheetDC, (f % 4) * 16, (f / 4) * 16, 16, 16,
                               0xFF00FF);
    });
    if (!transparentBlt)
        std::printf("TransparentBlt is missing\n");
    else
        Report("Film frame, key colour, over the saved background", ours, theirs, kFilms * kFrames);
    SelectObject(sheetDC, earlierSheet);
    DeleteObject(sheet);
    DeleteDC(sheetDC);
    SelectObject(target, earlier);
    DeleteObject(surface);
    DeleteDC(target);
    ReleaseDC(nullptr, screen);
}

}  // namespace

int main()
{
    if (!IsolateInstanceStart(0, 0) || !RegisterGadgets(0)) {
        std::printf("the library could not start\n");
        return 1;
    }
    HWND host = CreateWindowExA(0, "STATIC", "bench", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 320,
                                100, nullptr, nullptr, nullptr, nullptr);
    GaugeAgainstProgressBar(host);
    FilmAgainstTransparentBlt();
    DestroyWindow(host);
    UnRegisterGadgets();
    return 0;
}
