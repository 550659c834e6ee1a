// The TimeTracker's costs, each beside a platform peer from the same run.
//
// Drag step: one mouse move while the end is dragged, with 1 hour and with
// 24 hours in view, and once landing between the coarse steps, where the
// step must read the Shift key; the peer is one BitBlt of the gadget's
// client area to the window, the least a full repaint would cost, timed in
// turns with it. The step composes and shows only what changed, over the
// scale rendered once, so it must not grow with the hours in view.
//
// Busy lanes: TTM_SETBUSYLIST with 100, 1,000 and 10,000 appointments (the
// lanes come from a sweep over the intervals by start, so the growth from
// 1,000 to 10,000 should stay near 10); the peer is the C runtime's qsort
// of the same 1,000 intervals by their start.
#include <windows.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>
#include "bench_timing.h"
#include "qziso32.h"

namespace {

DateTimeValue At(int day, int hour, int minute)
{
    DateTimeValue v = {};
    OSSetDateTime(&v, 2026, 3, 1, 0, 0, 0, 0);
    OSAdjustDateTime(&v, 0, 0, day, hour, minute, 0, 0);
    return v;
}

LRESULT Send(HWND g, UINT message, WPARAM wParam, const void *p)
{
    return SendMessageA(g, message, wParam, reinterpret_cast<LPARAM>(p));
}

// Seconds per mouse move of a drag of the end, swinging by `minutes`, and
// per BitBlt of the whole client area to the window (the peer). A move there
// and back and two blits take turns many times over, and the median turn of
// each counts: on a loaded machine a longer batch is more often interrupted,
// which would weigh on the side with the dearer call.
void DragStep(HWND g, DWORD hours, LONG minutes, double *step, double *blit)
{
    // The end stands in the middle of the view either way.
    DateTimeValue view = At(0, 9, 0), start = At(0, 8, 0), end = At(0, 9, 0);
    OSAdjustDateTime(&view, 0, 0, 0, 0, -static_cast<LONG>(hours) * 30, 0, 0);
    SendMessageA(g, TTM_SETHOURSINVIEW, hours, 0);
    Send(g, TTM_SETVIEWSTART, 0, &view);
    Send(g, TTM_SETSTART, 0, &start);
    Send(g, TTM_SETEND, 0, &end);
    RECT client;
    GetClientRect(g, &client);
    const int x = client.right / 2 + 4;
    const LONG y = static_cast<LONG>(Send(g, TTM_TIMETOY, 0, &end));
    DateTimeValue later = end;
    OSAdjustDateTime(&later, 0, 0, 0, 0, minutes, 0, 0);
    const LONG swing = static_cast<LONG>(Send(g, TTM_TIMETOY, 0, &later)) - y;
    HDC dc = GetDC(g);
    HDC memory = CreateCompatibleDC(dc);
    HBITMAP bitmap = CreateCompatibleBitmap(dc, client.right, client.bottom);
    HGDIOBJ old = SelectObject(memory, bitmap);
    DateTimeValue seen[2] = {};
    std::vector<double> steps, blits;
    Send(g, TTM_SETEND, 0, &end);
    UpdateWindow(g);
    SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
    for (int round = 0; round < 2000; ++round) {
        double begin = Seconds();
        for (int i = 0; i < 2; ++i) {
            SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x, y + (i % 2 ? 0 : swing)));
            if (round == 0)
                Send(g, TTM_GETEND, 0, &seen[i]);
        }
        GdiFlush();
        steps.push_back((Seconds() - begin) / 2);
        begin = Seconds();
        for (int i = 0; i < 2; ++i)
            BitBlt(dc, 0, 0, client.right, client.bottom, memory, 0, 0, SRCCOPY);
        GdiFlush();
        blits.push_back((Seconds() - begin) / 2);
    }
    SendMessageA(g, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(g, dc);
    LONG d, h, m, sec;
    OSDiffDateTime(&seen[1], &seen[0], &d, &h, &m, &sec);
    printf("the end moves %ld minutes a step with %lu hours in view\n", static_cast<long>(h * 60 + m),
           static_cast<unsigned long>(hours));
    std::sort(steps.begin(), steps.end());
    std::sort(blits.begin(), blits.end());
    *step = steps[steps.size() / 2];
    *blit = blits[blits.size() / 2];
}

// Appointments of 30 to 120 minutes, eight a day from 8:00, some overlapping.
std::vector<BusyInterval> Appointments(int count)
{
    std::vector<BusyInterval> list(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        BusyInterval &b = list[static_cast<size_t>(i)];
        b.start = At(i / 8, 8 + (i % 8), (i * 7) % 4 * 15);
        b.lengthMinutes = 30 + static_cast<DWORD>((i * 13) % 4) * 30;
        b.id = static_cast<DWORD>(i);
    }
    return list;
}

double SetList(HWND g, const std::vector<BusyInterval> &list)
{
    return Time([&] { Send(g, TTM_SETBUSYLIST, list.size(), list.data()); });
}

int __cdecl CompareStarts(const void *a, const void *b)
{
    return OSDateTimeCompare(&static_cast<const BusyInterval *>(a)->start,
                             &static_cast<const BusyInterval *>(b)->start);
}

}  // namespace

int main()
{
    if (!RegisterGadgets(0)) {
        printf("the gadget classes could not be registered\n");
        return 1;
    }
    HWND host = CreateWindowExA(0, "static", "bench", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 700, nullptr,
                                nullptr, GetModuleHandleA(nullptr), nullptr);
    HWND g = CreateWindowExA(0, "TimeTracker", "", WS_CHILD | WS_VISIBLE, 10, 10, 120, 640, host, nullptr,
                             GetModuleHandleA(nullptr), nullptr);
    if (!g) {
        printf("no tracker\n");
        return 1;
    }
    double one, onePeer, day, dayPeer, off, offPeer;
    DragStep(g, 1, 30, &one, &onePeer);
    DragStep(g, 24, 30, &day, &dayPeer);
    // 20 minutes with 1 hour in view lands between the coarse steps: the
    // step reads the Shift key.
    DragStep(g, 1, 20, &off, &offPeer);
    printf("drag step, 1 hour in view                  %10.1f us per move\n", one * 1e6);
    printf("BitBlt of the whole gadget (peer)          %10.1f us\n", onePeer * 1e6);
    printf("drag step, 24 hours in view                %10.1f us per move\n", day * 1e6);
    printf("BitBlt of the whole gadget (peer)          %10.1f us\n", dayPeer * 1e6);
    printf("drag step, 1 hour, between coarse steps    %10.1f us per move\n", off * 1e6);
    printf("BitBlt of the whole gadget (peer)          %10.1f us\n", offPeer * 1e6);
    printf("ratio (step / peer), 1 hour               %10.2f\n", one / onePeer);
    printf("ratio (step / peer), 24 hours             %10.2f\n", day / dayPeer);
    printf("ratio (step / peer), between coarse steps %10.2f\n", off / offPeer);
    printf("growth from 1 to 24 hours                  %10.2f\n\n", day / one);

    const std::vector<BusyInterval> small = Appointments(100), large = Appointments(1000);
    const double hundred = SetList(g, small), thousand = SetList(g, large);
    const double tenThousand = SetList(g, Appointments(10000));
    std::vector<BusyInterval> work;
    const double copy = Time([&] { work = large; });
    const double sort = Time([&] {
        work = large;
        qsort(work.data(), work.size(), sizeof(BusyInterval), CompareStarts);
    }) - copy;
    printf("busy list of 100 appointments              %10.2f ms\n", hundred * 1e3);
    printf("busy list of 1,000 appointments            %10.2f ms\n", thousand * 1e3);
    printf("busy list of 10,000 appointments           %10.2f ms\n", tenThousand * 1e3);
    printf("growth from 100 to 1,000                   %10.1f\n", thousand / hundred);
    printf("growth from 1,000 to 10,000                %10.1f\n", tenThousand / thousand);
    printf("qsort of the 1,000 by start (peer)         %10.2f ms\n", sort * 1e3);
    printf("ratio (list / peer), 1,000                 %10.1f\n", thousand / sort);
    DestroyWindow(host);
    UnRegisterGadgets();
    return 0;
}
