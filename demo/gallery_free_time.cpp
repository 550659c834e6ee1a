// The FreeTime page: five people's week, once as the merged week and once
// person by person on the meeting's day, with a meeting that clashes.
#include "gallery.h"
#include "qziso32.h"

namespace {

DateTimeValue Day(int day, int hour, int minute = 0)
{
    DateTimeValue v = {2026, 3, 9, 0, 0, 0, 0};  // a Monday
    OSAdjustDateTime(&v, 0, 0, day, hour, minute, 0, 0);
    return v;
}

struct Sample {
    DWORD person;
    int day, hour, minute;
    DWORD length;
};

// Five people's busy week; Wednesday's meeting at 14:00 meets Bea's review.
const char *const kNames[] = {"Ann Ashby", "Bea Brandt", "Carl Cole", "Dora Dunn", "Emil Engel"};
const Sample kBusy[] = {
    {1, 0, 9, 0, 90},  {1, 2, 10, 0, 60}, {1, 4, 13, 0, 120}, {2, 0, 10, 30, 60}, {2, 2, 13, 30, 90},
    {2, 3, 9, 0, 240}, {3, 1, 8, 0, 120}, {3, 2, 9, 30, 45},  {3, 4, 15, 0, 60},  {4, 1, 11, 0, 90},
    {4, 2, 8, 30, 30}, {4, 3, 14, 0, 60}, {5, 0, 14, 0, 120}, {5, 2, 11, 0, 60},  {5, 4, 9, 0, 45},
};

HWND Planner(HWND page, int id, int y, DWORD mode)
{
    HWND g = CreateWindowExA(0, "FreeTime", "", WS_CHILD | WS_VISIBLE, 10, y, 600, 300, page,
                             reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
    if (!g)
        return nullptr;
    SendMessageA(g, WM_SETREDRAW, FALSE, 0);
    SendMessageA(g, FTM_SETVIEWMODE, mode, 0);
    for (DWORD p = 0; p < 5; ++p)
        SendMessageA(g, FTM_ADDPERSON, p + 1, reinterpret_cast<LPARAM>(kNames[p]));
    SendMessageA(g, FTM_SETSTATE, 4, 3);
    SendMessageA(g, FTM_SETSTATE, 5, 2);
    for (const Sample &s : kBusy) {
        BusyInterval b = {Day(s.day, s.hour, s.minute), s.length, 0, 0, 0};
        SendMessageA(g, FTM_ADDBUSY, s.person, reinterpret_cast<LPARAM>(&b));
    }
    if (mode == 1)
        SendMessageA(g, FTM_SETUNAVAILABLE, 3, 1);
    HWND tracker = reinterpret_cast<HWND>(SendMessageA(g, FTM_GETTRACKER, 0, 0));
    DateTimeValue view = Day(2, 8), start = Day(2, 14), end = Day(2, 15);
    SendMessageA(tracker, TTM_SETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view));
    SendMessageA(tracker, TTM_SETEND, 0, reinterpret_cast<LPARAM>(&end));
    SendMessageA(tracker, TTM_SETSTART, 0, reinterpret_cast<LPARAM>(&start));
    SendMessageA(g, FTM_SETWEEK, 0, reinterpret_cast<LPARAM>(&view));
    SendMessageA(g, WM_SETREDRAW, TRUE, 0);
    return g;
}

}  // namespace

HWND BuildFreeTimePage(HWND host)
{
    HWND page = MakePageWindow(host, "FreeTime", 620, 620);
    if (!page)
        return nullptr;
    if (!Planner(page, 100, 10, 2) || !Planner(page, 101, 315, 1))
        return nullptr;
    return page;
}
