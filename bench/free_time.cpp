// FreeTime's costs, each beside a peer from the same run.
//
// Loading: P people with K busy intervals a week each, by FTM_ADDBUSY, with
// redraw off (the union is built once when redraw comes back on) against
// redraw on (the union is built again after every interval). The ratio is
// the saving of the batch; the merged count is the length of the union the
// tracker is given.
//
// Free-slot search: a meeting of an hour searched for across 90 working
// days whose union leaves only the last day free, with two sizes of union;
// the peer is a plain loop over the same union in minutes, stepping as the
// search does. The search tests every step against every merged interval,
// so its time grows with the merged count times the days walked.
#include <windows.h>
#include <cstdio>
#include <vector>
#include "bench_timing.h"
#include "qziso32.h"

namespace {

WNDPROC g_trackerProc = nullptr;
DWORD g_lastUnion = 0;

LRESULT CALLBACK Spy(HWND w, UINT m, WPARAM wp, LPARAM lp)
{
    if (m == TTM_SETBUSYLIST)
        g_lastUnion = static_cast<DWORD>(wp);
    return CallWindowProcA(g_trackerProc, w, m, wp, lp);
}

DateTimeValue At(int day, int hour, int minute)
{
    DateTimeValue v = {};
    OSSetDateTime(&v, 2026, 3, 2, 0, 0, 0, 0);  // a Monday
    OSAdjustDateTime(&v, 0, 0, day, hour, minute, 0, 0);
    return v;
}

HWND MakePlanner(HWND host)
{
    HWND g = CreateWindowExA(0, "FreeTime", "", WS_CHILD | WS_VISIBLE, 0, 0, 600, 400, host, nullptr,
                             GetModuleHandleA(nullptr), nullptr);
    HWND tracker = reinterpret_cast<HWND>(SendMessageA(g, FTM_GETTRACKER, 0, 0));
    g_trackerProc = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(tracker, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Spy)));
    return g;
}

// Seconds to load P people x K intervals a week into a new gadget.
double Load(HWND host, int people, int perWeek, bool redrawOff, DWORD *merged)
{
    HWND g = MakePlanner(host);
    double start = Seconds();
    if (redrawOff)
        SendMessageA(g, WM_SETREDRAW, FALSE, 0);
    for (int p = 0; p < people; ++p) {
        SendMessageA(g, FTM_ADDPERSON, p, reinterpret_cast<LPARAM>("person"));
        for (int k = 0; k < perWeek; ++k) {
            int slot = (p * 7 + k * 13) % (5 * 36);  // quarter hours of five 9-hour days
            BusyInterval b = {At(slot / 36, 8 + (slot % 36) / 4, (slot % 4) * 15), 15u + (k % 3) * 15u,
                              static_cast<DWORD>(k), 0, 0};
            SendMessageA(g, FTM_ADDBUSY, p, reinterpret_cast<LPARAM>(&b));
        }
    }
    if (redrawOff)
        SendMessageA(g, WM_SETREDRAW, TRUE, 0);
    double spent = Seconds() - start;
    *merged = g_lastUnion;
    DestroyWindow(g);
    return spent;
}

// A union that leaves every working day of 90 full but the last: `perDay`
// blocks a day, touching, from 8:00 to 18:00.
std::vector<BusyInterval> FullDays(int perDay)
{
    std::vector<BusyInterval> list;
    DWORD length = 600 / static_cast<DWORD>(perDay);
    for (int d = 0; d < 89; ++d)
        for (int i = 0; i < perDay; ++i)
            list.push_back({At(d, 8, 0), length, 0, 0, 0}),
                OSAdjustDateTime(&list.back().start, 0, 0, 0, 0, static_cast<LONG>(length) * i, 0, 0);
    return list;
}

double Search(HWND g, const std::vector<BusyInterval> &busy)
{
    SendMessageA(g, FTM_CLEARBUSY, 0, 0);
    SendMessageA(g, FTM_SETBUSYCOUNT, 0, static_cast<LPARAM>(busy.size()));
    SendMessageA(g, FTM_SETBUSYLIST, 0, reinterpret_cast<LPARAM>(busy.data()));
    return Time([&] {
        HWND tracker = reinterpret_cast<HWND>(SendMessageA(g, FTM_GETTRACKER, 0, 0));
        DateTimeValue s = At(0, 9, 0), e = At(0, 10, 0);
        SendMessageA(tracker, TTM_SETSTART, 0, reinterpret_cast<LPARAM>(&s));
        SendMessageA(tracker, TTM_SETEND, 0, reinterpret_cast<LPARAM>(&e));
        FreeSlotRequest q = {};
        OSSetNoDateHigh(&q.limit);
        q.dayOpen = 8 * 60;
        q.dayClose = 18 * 60;
        q.includeWeekends = 1;
        SendMessageA(g, FTM_FINDFREESLOT, 0, reinterpret_cast<LPARAM>(&q));
    });
}

// The peer: the same walk in plain minutes, 5 minutes a step, each step
// tested against every interval.
double PlainSearch(const std::vector<BusyInterval> &busy)
{
    std::vector<long> starts, ends;
    for (const BusyInterval &b : busy) {
        LONG d, h, m, s;
        DateTimeValue origin = At(0, 0, 0);
        OSDiffDateTime(&origin, &b.start, &d, &h, &m, &s);
        starts.push_back((d * 24 + h) * 60 + m);
        ends.push_back(starts.back() + static_cast<long>(b.lengthMinutes));
    }
    volatile long found = 0;
    double spent = Time([&] {
        long c = 9 * 60;
        for (;;) {
            bool clash = false;
            for (size_t i = 0; i < starts.size() && !clash; ++i)
                clash = c < ends[i] && starts[i] < c + 60;
            if (!clash && c % 1440 + 60 <= 18 * 60)
                break;
            c = clash ? c + 5 : (c / 1440 + 1) * 1440 + 8 * 60;
        }
        found = c;
    });
    return spent;
}

}  // namespace

int main()
{
    if (!RegisterGadgets(0)) {
        printf("the gadget classes could not be registered\n");
        return 1;
    }
    HWND host = CreateWindowExA(0, "static", "bench", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 640, 460, nullptr,
                                nullptr, GetModuleHandleA(nullptr), nullptr);
    static const struct { int people, perWeek; } kLoads[] = {{5, 10}, {20, 50}, {50, 100}};
    for (const auto &l : kLoads) {
        DWORD mergedOff = 0, mergedOn = 0;
        double off = Load(host, l.people, l.perWeek, true, &mergedOff);
        double on = Load(host, l.people, l.perWeek, false, &mergedOn);
        printf("load %2d people x %3d a week, redraw off    %10.1f ms (union of %lu)\n", l.people, l.perWeek,
               off * 1e3, static_cast<unsigned long>(mergedOff));
        printf("load %2d people x %3d a week, redraw on     %10.1f ms (union of %lu)\n", l.people, l.perWeek,
               on * 1e3, static_cast<unsigned long>(mergedOn));
        printf("ratio (on / off)                            %10.1f\n\n", on / off);
    }
    HWND g = MakePlanner(host);
    SendMessageA(g, FTM_ADDPERSON, 0, reinterpret_cast<LPARAM>("all"));
    const std::vector<BusyInterval> few = FullDays(2), many = FullDays(20);
    const double searchFew = Search(g, few), searchMany = Search(g, many);
    const double plainFew = PlainSearch(few), plainMany = PlainSearch(many);
    printf("free slot over 90 days, union of %4zu       %10.1f ms\n", few.size(), searchFew * 1e3);
    printf("plain loop over the same (peer)             %10.3f ms\n", plainFew * 1e3);
    printf("ratio (search / peer)                       %10.1f\n", searchFew / plainFew);
    printf("free slot over 90 days, union of %4zu       %10.1f ms\n", many.size(), searchMany * 1e3);
    printf("plain loop over the same (peer)             %10.3f ms\n", plainMany * 1e3);
    printf("ratio (search / peer)                       %10.1f\n", searchMany / plainMany);
    printf("growth with a union %zu times as long       %10.1f\n", many.size() / few.size(), searchMany / searchFew);
    DestroyWindow(host);
    UnRegisterGadgets();
    return 0;
}
