// TimeTracker's busy list: the overlap test, the lanes, adding, removing
// and replacing intervals, and the forward search for free time.
#include "time_tracker.h"
#include "../gadgets/gadget_frame.h"

namespace {

const DWORD kElement = sizeof(BusyInterval);

BusyInterval *NewList(DWORD count)
{
    if (count == 0)
        return nullptr;
    // A count whose size does not fit 32 bits is refused before anything
    // is allocated.
    if (count > MAXDWORD / kElement) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, MAXDWORD);
        return nullptr;
    }
    DWORD bytes = count * kElement;
    auto *list = static_cast<BusyInterval *>(LocalAlloc(LPTR, bytes));
    if (!list)
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, bytes);
    return list;
}

void FreeList(BusyInterval *list)
{
    if (list && LocalFree(list))
        OSErrorSetErrorInfo(RV_KernelError);
}

// One pass over the others; no second pass is made, so a lane can still
// match an interval seen earlier in the pass.
bool AssignLane(TimeTrackerRecord *r, DWORD index)
{
    BusyInterval &b = r->busy[index];
    b.lane = 0;
    for (DWORD j = 0; j < r->busyCount; ++j) {
        if (j == index)
            continue;
        int overlap = TrackerOverlap(&b.start, b.lengthMinutes, &r->busy[j].start, r->busy[j].lengthMinutes);
        if (overlap < 0) {
            OSErrorSetErrorInfo(RV_Failure);
            return false;
        }
        if (overlap && r->busy[j].lane == b.lane)
            ++b.lane;
    }
    if (b.lane > r->laneCount)
        r->laneCount = b.lane > kMaxLanes ? kMaxLanes : b.lane;
    return true;
}

bool AssignLanes(TimeTrackerRecord *r)
{
    return BusyLanesAssign(r->busy, r->busyCount, &r->laneCount, kMaxLanes);
}

void ListChanged(HWND window, TimeTrackerRecord *r)
{
    TrackerFitWidth(window, r);
    TrackerRedraw(window, r);
}

}  // namespace

void TrackerFitWidth(HWND window, TimeTrackerRecord *r)
{
    if (!g_trackerDrag.sizing) {
        RECT outer;
        GetWindowRect(window, &outer);
        g_trackerDrag.sizing = true;
        SetWindowPos(window, nullptr, 0, 0, static_cast<int>(TrackerIdealWidth(r)), outer.bottom - outer.top,
                     SWP_NOMOVE | SWP_NOZORDER);
        g_trackerDrag.sizing = false;
    }
    TrackerLayout(window, r);
    if (IsWindowVisible(window) && TrackerBuildSurfaces(window, r))
        InvalidateRect(window, nullptr, TRUE);
}

LRESULT TrackerAddBusy(HWND window, TimeTrackerRecord *r, DWORD id, const BusyInterval *interval)
{
    if (!interval) {
        OSErrorSetErrorInfo(RV_BadParms, "TTM_ADDBUSY");
        return GadgetFailure;
    }
    BusyInterval *list = NewList(r->busyCount + 1);
    if (!list)
        return GadgetFailure;
    if (r->busyCount)
        CopyMemory(list, r->busy, r->busyCount * kElement);
    list[r->busyCount] = *interval;
    list[r->busyCount].id = id;
    FreeList(r->busy);
    r->busy = list;
    ++r->busyCount;
    bool ok = AssignLane(r, r->busyCount - 1);
    ListChanged(window, r);
    return ok ? GadgetSuccess : GadgetFailure;
}

// The copy stops at the match: the elements behind it stay blank (length
// 0) in the shorter list, as hosts have always seen.
LRESULT TrackerRemoveBusy(HWND window, TimeTrackerRecord *r, DWORD id)
{
    if (r->busyCount == 0)
        return GadgetSuccess;
    if (r->busyCount == 1) {
        FreeList(r->busy);
        r->busy = nullptr;
        r->busyCount = 0;
        ListChanged(window, r);
        return GadgetSuccess;
    }
    BusyInterval *list = NewList(r->busyCount - 1);
    if (!list)
        return GadgetFailure;
    for (DWORD i = 0; i < r->busyCount; ++i) {
        if (r->busy[i].id == id) {
            FreeList(r->busy);
            r->busy = list;
            --r->busyCount;
            bool ok = AssignLanes(r);
            ListChanged(window, r);
            return ok ? GadgetSuccess : GadgetFailure;
        }
        if (i < r->busyCount - 1)
            list[i] = r->busy[i];
    }
    FreeList(list);
    return GadgetSuccess;
}

LRESULT TrackerSetBusyList(HWND window, TimeTrackerRecord *r, DWORD count, const BusyInterval *source)
{
    if (count && !source) {
        OSErrorSetErrorInfo(RV_BadParms, "TTM_SETBUSYLIST");
        return GadgetFailure;
    }
    BusyInterval *list = NewList(count);
    if (count && !list)
        return GadgetFailure;
    if (count)
        CopyMemory(list, source, count * kElement);
    FreeList(r->busy);
    r->busy = list;
    r->busyCount = count;
    bool ok = AssignLanes(r);
    ListChanged(window, r);
    return ok ? GadgetSuccess : GadgetFailure;
}

LRESULT TrackerClearBusy(HWND window, TimeTrackerRecord *r)
{
    FreeList(r->busy);
    r->busy = nullptr;
    r->busyCount = 0;
    ListChanged(window, r);
    return GadgetSuccess;
}
