// FreeTime's union of busy time: the overlap test with its order, the
// merge of one interval into a list of disjoint ones, and the two lists
// built from everyone's intervals: the tracker's (what counts as busy) and
// the week view's (everything shown).
#include "free_time.h"
#include "../gadgets/gadget_frame.h"

namespace {

const DWORD kElement = sizeof(BusyInterval);

// Days from 1 January 1800 to the date, and minutes on top; false for a
// value outside the calendar. The merge runs this for every pair it
// compares, so it works on the fields directly.
bool AbsoluteMinute(const DateTimeValue &t, LONGLONG *out)
{
    static const int kBefore[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    int y = t.year, m = t.month, d = t.day;
    if (y < 1800 || y > 2101 || m < 1 || m > 12 || d < 1 || d > 31 || t.hour > 23 || t.minute > 59)
        return false;
    bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    static const int kLength[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (d > kLength[m - 1] + (m == 2 && leap ? 1 : 0))
        return false;
    LONGLONG years = y - 1800;
    // Leap days before this year, counted from 1800 (itself no leap year).
    LONGLONG leaps = ((y - 1) / 4 - 1799 / 4) - ((y - 1) / 100 - 1799 / 100) + ((y - 1) / 400 - 1799 / 400);
    LONGLONG days = years * 365 + leaps + kBefore[m - 1] + (m > 2 && leap ? 1 : 0) + (d - 1);
    *out = days * 1440 + t.hour * 60 + t.minute;
    return true;
}

bool Absorb(BusyInterval *a, const BusyInterval *b, int order)
{
    LONGLONG as = 0, bs = 0;
    if (!AbsoluteMinute(a->start, &as) || !AbsoluteMinute(b->start, &bs))
        return false;
    LONGLONG aEnd = as + a->lengthMinutes, bEnd = bs + b->lengthMinutes;
    LONGLONG end = aEnd > bEnd ? aEnd : bEnd;
    if (order == 13) {
        a->start = b->start;
        as = bs;
    }
    a->lengthMinutes = static_cast<DWORD>(end - as);
    return true;
}

}  // namespace

int FreeTimeOverlap(const BusyInterval *a, const BusyInterval *b)
{
    if (a->lengthMinutes == 0 || b->lengthMinutes == 0)
        return 2;
    LONGLONG as = 0, bs = 0;
    if (!AbsoluteMinute(a->start, &as) || !AbsoluteMinute(b->start, &bs))
        return 1;
    if (as <= bs)
        return bs < as + a->lengthMinutes ? 12 : 2;
    return as < bs + b->lengthMinutes ? 13 : 2;
}

void FreeTimeFreeList(BusyInterval *list)
{
    if (list && LocalFree(list))
        OSErrorSetErrorInfo(RV_KernelError);
}

bool FreeTimeMergeOne(BusyInterval **list, DWORD *count, const BusyInterval *interval)
{
    OSReWait(FALSE);
    BusyInterval *items = *list;
    DWORD n = *count;
    DWORD first = MAXDWORD, overlapped = 0;
    for (DWORD i = 0; i < n; ++i) {
        int order = FreeTimeOverlap(&items[i], interval);
        if (order == 1) {
            OSErrorSetErrorInfo(RV_Failure, "FreeTime merge");
            return false;
        }
        if (order == 2)
            continue;
        ++overlapped;
        if (first == MAXDWORD) {
            first = i;
            if (!Absorb(&items[i], interval, order))
                return false;
        }
    }
    if (overlapped) {
        // The others that touched the new interval join the first; the
        // list stays disjoint, so none of them overlaps anything else.
        DWORD kept = first + 1;
        for (DWORD i = first + 1; i < n; ++i) {
            int order = FreeTimeOverlap(&items[first], &items[i]);
            if (order == 12 || order == 13) {
                if (!Absorb(&items[first], &items[i], order))
                    return false;
                continue;
            }
            items[kept++] = items[i];
        }
        if (kept < n) {
            *count = kept;
            // Shrinking in place cannot fail to keep the data.
            HLOCAL smaller = LocalReAlloc(items, kept * kElement, LMEM_MOVEABLE | LMEM_ZEROINIT);
            if (smaller)
                *list = static_cast<BusyInterval *>(smaller);
        }
        return true;
    }
    DWORD bytes = (n + 1) * kElement;
    BusyInterval *grown = n ? static_cast<BusyInterval *>(LocalReAlloc(items, bytes, LMEM_MOVEABLE | LMEM_ZEROINIT))
                            : static_cast<BusyInterval *>(LocalAlloc(LPTR, bytes));
    if (!grown) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, bytes);
        return false;
    }
    grown[n] = *interval;
    *list = grown;
    *count = n + 1;
    return true;
}

namespace {

// The union of every person's intervals into a new list; `busyOnly` leaves
// out what does not count as busy.
bool BuildUnion(const FreeTimeRecord *r, bool busyOnly, BusyInterval **out, DWORD *outCount)
{
    BusyInterval *list = nullptr;
    DWORD count = 0;
    bool ok = true;
    Feedback_Begin(nullptr);
    OSWait();
    for (DWORD p = 0; ok && p < r->personCount; ++p) {
        const FreeTimePerson &person = r->people[p];
        if (busyOnly && r->ignoreOptional && person.optional)
            continue;
        for (DWORD i = 0; ok && i < person.busyCount; ++i) {
            if (busyOnly && (person.busy[i].flags & 1))
                continue;
            ok = FreeTimeMergeOne(&list, &count, &person.busy[i]);
        }
    }
    OSUnWait();
    Feedback_End();
    if (!ok) {
        FreeTimeFreeList(list);
        return false;
    }
    *out = list;
    *outCount = count;
    return true;
}

}  // namespace

bool FreeTimeFeedTracker(HWND window, FreeTimeRecord *r)
{
    if (!r->redrawOn || !r->busyListDirty)
        return true;
    BusyInterval *list = nullptr;
    DWORD count = 0;
    if (!BuildUnion(r, true, &list, &count))
        return false;
    HWND tracker = r->tracker;
    bool ok = SendMessageA(tracker, TTM_CLEARBUSY, 0, 0) == 1 &&
              SendMessageA(tracker, TTM_SETBUSYLIST, count, reinterpret_cast<LPARAM>(list)) == 1;
    FreeTimeFreeList(list);
    if (!GadgetAlive(window, r))
        return false;
    r->busyListDirty = 0;
    r->needsRender = 1;
    return ok;
}

bool FreeTimeRebuildMerged(FreeTimeRecord *r)
{
    if (r->viewMode != kWeekView || !r->mergedDirty || !r->redrawOn)
        return true;
    BusyInterval *list = nullptr;
    DWORD count = 0;
    if (!BuildUnion(r, false, &list, &count))
        return false;
    FreeTimeFreeList(r->merged);
    r->merged = list;
    r->mergedCount = count;
    r->mergedDirty = 0;
    r->needsRender = 1;
    return true;
}

bool FreeTimeRunPending(HWND window, FreeTimeRecord *r)
{
    bool ok = FreeTimeRebuildMerged(r);
    if (ok) {
        ok = FreeTimeFeedTracker(window, r);
        if (!GadgetAlive(window, r))
            return false;
    }
    if (!ok)
        return GadgetNotifyAlive(window, FTN_ERROR, r);
    return true;
}
