// FreeTime: a grid of people (or of the days of a week) with their busy
// times as solid blocks, beside a TimeTracker on which the user places a
// meeting. The tracker gets the union of everyone's busy time, so it shows
// a clash in its lanes and its bar colour; the grid asks it for the y of
// every time, so the two scales agree. This unit holds the record's life,
// the people and their lists, and the messages; the union and the drawing
// have units of their own.
#include "free_time.h"
#include "time_gadgets.h"
#include "../gadgets/gadget_frame.h"

namespace {

const DWORD kTrackerStyle = 0x50000026;  // child, visible, TTS_SINGLEDAY | TTS_TRACKNOTIFY | TTS_KEEPVISIBLE
const DWORD kScrollBarStyle = 0x50000000;
const DWORD kPerson = sizeof(FreeTimePerson);
const DWORD kElement = sizeof(BusyInterval);

FreeTimeRecord *Record(HWND window) { return FreeTimeOf(window); }

LRESULT ToTracker(FreeTimeRecord *r, UINT message, WPARAM wParam, LPARAM lParam)
{
    return SendMessageA(r->tracker, message, wParam, lParam);
}

FreeTimePerson *FindPerson(FreeTimeRecord *r, DWORD id)
{
    for (DWORD i = 0; i < r->personCount; ++i)
        if (r->people[i].id == id)
            return &r->people[i];
    return nullptr;
}

void FreeBlock(void *block)
{
    if (block && LocalFree(block))
        OSErrorSetErrorInfo(RV_KernelError);
}

bool CheckDate(const DateTimeValue *value, const char *what)
{
    if (!value) {
        OSErrorSetErrorInfo(RV_BadParms, what);
        return false;
    }
    if (OSIsValidDateTime(value))
        return true;
    OSWhyIsInvalidDateTime(value);
    return false;
}

// ---------------------------------------------------------------- sorting
int __cdecl ByName(const void *a, const void *b)
{
    const auto *p = static_cast<const FreeTimePerson *>(a);
    const auto *q = static_cast<const FreeTimePerson *>(b);
    bool pLast = p->state == 10 || p->state == 11, qLast = q->state == 10 || q->state == 11;
    if (pLast != qLast)
        return pLast ? 1 : -1;
    return lstrcmpA(p->name, q->name);
}

int __cdecl ByState(const void *a, const void *b)
{
    DWORD p = static_cast<const FreeTimePerson *>(a)->state, q = static_cast<const FreeTimePerson *>(b)->state;
    return p < q ? -1 : p > q ? 1 : 0;
}

void Sort(FreeTimeRecord *r)
{
    if (r->personCount > 1)
        QSort(r->people, r->personCount, kPerson, r->sortMode == 2 ? ByState : ByName);
}

// ---------------------------------------------------------------- after a change
// The lists changed: the union is rebuilt now when redraw is on, and the
// grid follows. False when the parent destroyed the gadget meanwhile.
bool ListsChanged(HWND window, FreeTimeRecord *r, bool mergedToo)
{
    r->busyListDirty = 1;
    if (mergedToo)
        r->mergedDirty = 1;
    if (!FreeTimeRunPending(window, r))
        return false;
    FreeTimeInvalidate(window, r);
    return true;
}

void SetPersonList(FreeTimePerson *p, BusyInterval *list, DWORD count)
{
    FreeTimeFreeList(p->busy);
    p->busy = list;
    p->busyCount = count;
}

// ---------------------------------------------------------------- people
LRESULT OnAddPerson(HWND window, FreeTimeRecord *r, DWORD id, const char *name)
{
    if (!name)
        name = "";
    DWORD length = static_cast<DWORD>(lstrlenA(name)) + 1;
    char *copy = static_cast<char *>(LocalAlloc(LPTR, length));
    if (!copy) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, length);
        return GadgetFailure;
    }
    lstrcpyA(copy, name);
    DWORD bytes = (r->personCount + 1) * kPerson;
    void *grown = r->people ? LocalReAlloc(r->people, bytes, LMEM_MOVEABLE | LMEM_ZEROINIT) : LocalAlloc(LPTR, bytes);
    if (!grown) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, bytes);
        FreeBlock(copy);
        return GadgetFailure;
    }
    r->people = static_cast<FreeTimePerson *>(grown);
    FreeTimePerson &p = r->people[r->personCount++];
    ZeroMemory(&p, sizeof p);
    p.name = copy;
    p.id = id;
    p.state = 1;
    Sort(r);
    FreeTimeSetScrollBar(r);
    FreeTimeInvalidate(window, r);
    return GadgetSuccess;
}

LRESULT OnRemovePerson(HWND window, FreeTimeRecord *r, DWORD id)
{
    FreeTimePerson *p = FindPerson(r, id);
    if (!p)
        return GadgetSuccess;
    FreeTimeFreeList(p->busy);
    FreeBlock(p->name);
    DWORD index = static_cast<DWORD>(p - r->people);
    MoveMemory(p, p + 1, (r->personCount - index - 1) * kPerson);
    --r->personCount;
    if (r->firstPerson && r->firstPerson >= r->personCount)
        r->firstPerson = r->personCount ? r->personCount - 1 : 0;
    FreeTimeSetScrollBar(r);
    return ListsChanged(window, r, true) ? GadgetSuccess : GadgetFailure;
}

// ---------------------------------------------------------------- busy lists
LRESULT OnAddBusy(HWND window, FreeTimeRecord *r, DWORD id, const BusyInterval *interval)
{
    FreeTimePerson *p = FindPerson(r, id);
    if (!p)
        return GadgetSuccess;
    if (!interval) {
        OSErrorSetErrorInfo(RV_BadParms, "FTM_ADDBUSY");
        return GadgetFailure;
    }
    if (!CheckDate(&interval->start, "FTM_ADDBUSY"))
        return GadgetFailure;
    BusyInterval copy = *interval;
    OSWait();
    Feedback_Begin(nullptr);
    DWORD bytes = (p->busyCount + 1) * kElement;
    void *grown = p->busy ? LocalReAlloc(p->busy, bytes, LMEM_MOVEABLE | LMEM_ZEROINIT) : LocalAlloc(LPTR, bytes);
    bool ok = grown != nullptr;
    if (ok) {
        p->busy = static_cast<BusyInterval *>(grown);
        p->busy[p->busyCount++] = copy;
        // One interval joins the week's union at once; anything else waits
        // for the whole rebuild.
        if (r->viewMode == kWeekView && r->redrawOn && !r->mergedDirty)
            ok = FreeTimeMergeOne(&r->merged, &r->mergedCount, &copy);
        else
            r->mergedDirty = 1;
    } else {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, bytes);
    }
    Feedback_End();
    OSUnWait();
    if (!ListsChanged(window, r, !ok))
        return GadgetFailure;
    return ok ? GadgetSuccess : GadgetFailure;
}

LRESULT OnRemoveBusy(HWND window, FreeTimeRecord *r, DWORD id, WORD intervalId)
{
    FreeTimePerson *p = FindPerson(r, id);
    if (!p || p->busyCount == 0)
        return GadgetSuccess;
    DWORD kept = 0;
    if (p->busyCount > 1)
        for (DWORD i = 0; i < p->busyCount; ++i)
            if (p->busy[i].id != intervalId)
                p->busy[kept++] = p->busy[i];
    if (kept == p->busyCount)
        return GadgetSuccess;
    if (kept == 0)
        SetPersonList(p, nullptr, 0);
    else
        p->busyCount = kept;
    return ListsChanged(window, r, true) ? GadgetSuccess : GadgetFailure;
}

LRESULT OnSetBusyCount(FreeTimeRecord *r, DWORD id, WORD count)
{
    FreeTimePerson *p = FindPerson(r, id);
    if (p) {
        p->pendingCount = count;
        p->countSet = 1;
    }
    return GadgetSuccess;
}

// The host's array is read for exactly the count it announced, and only
// after every start in it is found to be a date.
LRESULT OnSetBusyList(HWND window, FreeTimeRecord *r, DWORD id, const BusyInterval *source)
{
    FreeTimePerson *p = FindPerson(r, id);
    if (!p)
        return GadgetSuccess;
    if (!p->countSet || (p->pendingCount && !source)) {
        OSErrorSetErrorInfo(RV_BadParms, "FTM_SETBUSYLIST");
        return GadgetFailure;
    }
    DWORD count = p->pendingCount;
    for (DWORD i = 0; i < count; ++i)
        if (!CheckDate(&source[i].start, "FTM_SETBUSYLIST"))
            return GadgetFailure;
    DWORD bytes = count * kElement;
    auto *list = static_cast<BusyInterval *>(LocalAlloc(LPTR, bytes ? bytes : 1));
    if (!list) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, bytes);
        return GadgetFailure;
    }
    if (count)
        CopyMemory(list, source, bytes);
    p->countSet = 0;
    SetPersonList(p, list, count);
    return ListsChanged(window, r, true) ? GadgetSuccess : GadgetFailure;
}

LRESULT OnClearBusy(HWND window, FreeTimeRecord *r, DWORD id)
{
    FreeTimePerson *p = FindPerson(r, id);
    if (!p)
        return GadgetSuccess;
    SetPersonList(p, nullptr, 0);
    return ListsChanged(window, r, true) ? GadgetSuccess : GadgetFailure;
}

LRESULT OnSetUnavailable(HWND window, FreeTimeRecord *r, DWORD id, LPARAM flag)
{
    FreeTimePerson *p = FindPerson(r, id);
    if (!p)
        return GadgetSuccess;
    p->unavailable = flag ? 1 : 0;
    if (flag)
        SetPersonList(p, nullptr, 0);
    return ListsChanged(window, r, true) ? GadgetSuccess : GadgetFailure;
}

LRESULT OnSetOptional(HWND window, FreeTimeRecord *r, DWORD id, LPARAM flag)
{
    FreeTimePerson *p = FindPerson(r, id);
    if (!p)
        return GadgetSuccess;
    p->optional = flag ? 1 : 0;
    if (p->busyCount && !ListsChanged(window, r, false))
        return GadgetFailure;
    return GadgetSuccess;
}

LRESULT OnSetState(HWND window, FreeTimeRecord *r, DWORD id, WORD state)
{
    FreeTimePerson *p = FindPerson(r, id);
    if (p) {
        p->state = state;
        Sort(r);
        FreeTimeInvalidate(window, r);
    }
    return GadgetSuccess;
}

// ---------------------------------------------------------------- week and view
// The first day of the week holding `day`, time cleared: Monday for
// Monday to Saturday, and the Monday after for a Sunday.
bool WeekOf(DateTimeValue *day)
{
    LONG weekday = 0;
    day->hour = 0;
    day->minute = 0;
    return OSDayOfWeek(day, &weekday, 0) && OSAdjustDateTimeByDays(day, 1 - weekday);
}

LRESULT OnSetWeek(HWND window, FreeTimeRecord *r, const DateTimeValue *value)
{
    if (!CheckDate(value, "FTM_SETWEEK"))
        return GadgetFailure;
    DateTimeValue week = *value;
    if (!WeekOf(&week))
        return GadgetFailure;
    r->weekStart = week;
    FreeTimeInvalidate(window, r);
    return GadgetSuccess;
}

bool Forwarded(HWND window, FreeTimeRecord *r, LRESULT answer)
{
    if (!GadgetAlive(window, r))
        return false;
    if (answer == GadgetFailure)
        GadgetNotifyAlive(window, FTN_ERROR, r);
    return answer != GadgetFailure;
}

LRESULT OnSetDate(HWND window, FreeTimeRecord *r, const DateTimeValue *value)
{
    if (!CheckDate(value, "FTM_SETDATE"))
        return GadgetFailure;
    DateTimeValue date = *value, view;
    LONG days = 0, h = 0, m = 0, s = 0;
    if (ToTracker(r, TTM_GETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view)) != 1 ||
        !OSDiffDateTime(&view, &date, &days, &h, &m, &s) || !OSAdjustDateTimeByDays(&view, days)) {
        GadgetNotifyAlive(window, FTN_ERROR, r);
        return GadgetFailure;
    }
    if (!Forwarded(window, r, ToTracker(r, TTM_SETSTARTKEEP, 0, reinterpret_cast<LPARAM>(&date))))
        return GadgetFailure;
    if (!Forwarded(window, r, ToTracker(r, TTM_SETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view))))
        return GadgetFailure;
    return GadgetSuccess;
}

void Relayout(HWND window, FreeTimeRecord *r)
{
    FreeTimeLayout(window, r);
    FreeTimeBuildSurfaces(window, r);
    FreeTimeSetScrollBar(r);
    FreeTimeInvalidate(window, r);
}

LRESULT OnSetViewMode(HWND window, FreeTimeRecord *r, WPARAM mode)
{
    if (mode != kPeopleView && mode != kWeekView) {
        OSErrorSetErrorInfo(RV_BadParms, "FTM_SETVIEWMODE");
        return GadgetFailure;
    }
    LONG_PTR style = GetWindowLongPtrA(r->tracker, GWL_STYLE);
    style = mode == kPeopleView ? (style & ~LONG_PTR(TTS_SINGLEDAY)) : (style | TTS_SINGLEDAY);
    SetWindowLongPtrA(r->tracker, GWL_STYLE, style);
    r->viewMode = static_cast<DWORD>(mode);
    r->firstPerson = 0;
    if (mode == kWeekView)
        r->mergedDirty = 1;
    if (!FreeTimeRunPending(window, r))
        return GadgetFailure;
    Relayout(window, r);
    DateTimeValue week = r->weekStart;
    return OnSetWeek(window, r, &week);
}

LRESULT OnSetHoursInView(HWND window, FreeTimeRecord *r, WPARAM hours)
{
    if (!Forwarded(window, r, ToTracker(r, TTM_SETHOURSINVIEW, hours, 0)))
        return GadgetFailure;
    Relayout(window, r);
    return GadgetSuccess;
}

LRESULT OnFindFreeSlot(HWND window, FreeTimeRecord *r, FreeSlotRequest *request)
{
    LRESULT answer = ToTracker(r, TTM_FINDFREESLOT, 0, reinterpret_cast<LPARAM>(request));
    return Forwarded(window, r, answer) ? 0 : GadgetFailure;
}

// ---------------------------------------------------------------- window messages
void OnDestroy(HWND window, FreeTimeRecord *r, bool clearWord);

// A creation that fails part way: the children made so far go now (the
// system takes a failed window down without telling its children), and the
// record goes with its word cleared, whether or not WM_DESTROY follows.
LRESULT CreateFailed(HWND window, FreeTimeRecord *r)
{
    if (r->scrollBar)
        DestroyWindow(r->scrollBar);
    if (r->tracker)
        DestroyWindow(r->tracker);
    OnDestroy(window, r, true);
    return GadgetCreateFailed;
}

LRESULT OnCreate(HWND window)
{
    auto *r = GadgetCreate<FreeTimeRecord>(window);
    if (!r)
        return GadgetCreateFailed;
    r->redrawOn = 1;
    r->sortMode = 1;
    r->viewMode = kWeekView;
    HINSTANCE instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
    r->tracker = CreateWindowExA(0, "TimeTracker", "", kTrackerStyle, 0, 0, 0, 0, window,
                                 reinterpret_cast<HMENU>(static_cast<INT_PTR>(kTrackerId)), instance, nullptr);
    r->scrollBar = r->tracker ? CreateWindowExA(0, "Scrollbar", "", kScrollBarStyle, 0, 0, 0, 0, window,
                                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(kScrollBarId)),
                                                instance, nullptr)
                              : nullptr;
    if (!r->scrollBar) {
        OSErrorSetErrorInfo(RV_UserError, "CreateWindow");
        return CreateFailed(window, r);
    }
    r->font = static_cast<HFONT>(GetStockObject(ANSI_VAR_FONT));
    FreeTimeMetrics(window, r);
    DateTimeValue view;
    if (ToTracker(r, TTM_GETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view)) != 1 || !WeekOf(&view))
        return CreateFailed(window, r);
    r->weekStart = view;
    if (!UIVertDrawTextInit())
        return CreateFailed(window, r);
    r->vertText = 1;
    return 0;
}

void OnDestroy(HWND window, FreeTimeRecord *r, bool clearWord)
{
    for (DWORD i = 0; i < r->personCount; ++i) {
        FreeTimeFreeList(r->people[i].busy);
        FreeBlock(r->people[i].name);
    }
    FreeBlock(r->people);
    FreeTimeFreeList(r->merged);
    FreeTimeDestroySurfaces(r);
    if (r->vertText)
        UICleanUpVertDrawText();
    GadgetFreeRecord(window, clearWord);
}

void OnSize(HWND window, FreeTimeRecord *r)
{
    Relayout(window, r);
}

LRESULT OnSetRedraw(HWND window, FreeTimeRecord *r, WPARAM on)
{
    UpdateWindow(window);
    DefWindowProcA(window, WM_SETREDRAW, on, 0);
    r->redrawOn = on ? 1 : 0;
    if (!on)
        return 0;
    if (!FreeTimeRunPending(window, r))
        return 0;
    r->needsRender = 1;
    InvalidateRect(window, nullptr, FALSE);
    InvalidateRect(r->scrollBar, nullptr, TRUE);
    InvalidateRect(r->tracker, nullptr, TRUE);
    return 0;
}

void OnSetFont(HWND window, FreeTimeRecord *r, HFONT font)
{
    r->font = font ? font : static_cast<HFONT>(GetStockObject(ANSI_VAR_FONT));
    FreeTimeMetrics(window, r);
    Relayout(window, r);
}

void ScrollWeek(HWND window, FreeTimeRecord *r, WORD code)
{
    LONG days = code == SB_LINELEFT ? -7 : code == SB_LINERIGHT ? 7 : code == SB_PAGELEFT ? -28
                                                               : code == SB_PAGERIGHT ? 28 : 0;
    SetScrollPos(r->scrollBar, SB_CTL, 1, TRUE);
    if (!days)
        return;
    DateTimeValue week = r->weekStart, view, start;
    bool ok = OSAdjustDateTimeByDays(&week, days) &&
              ToTracker(r, TTM_GETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view)) == 1 &&
              ToTracker(r, TTM_GETSTART, 0, reinterpret_cast<LPARAM>(&start)) == 1 &&
              OSAdjustDateTimeByDays(&view, days) && OSAdjustDateTimeByDays(&start, days);
    if (!ok) {
        GadgetNotifyAlive(window, FTN_ERROR, r);
        return;
    }
    r->weekStart = week;
    if (!Forwarded(window, r, ToTracker(r, TTM_SETSTARTKEEP, 0, reinterpret_cast<LPARAM>(&start))) ||
        !Forwarded(window, r, ToTracker(r, TTM_SETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view))))
        return;
    // The tracker's view notification set the week from its view; the
    // week that scrolled stays.
    r->weekStart = week;
    FreeTimeInvalidate(window, r);
}

void ScrollPeople(HWND window, FreeTimeRecord *r, WORD code, WORD thumb)
{
    LONG columns = static_cast<LONG>(FreeTimeColumnCount(r));
    LONG first = static_cast<LONG>(r->firstPerson);
    switch (code) {
    case SB_LINELEFT: --first; break;
    case SB_LINERIGHT: ++first; break;
    case SB_PAGELEFT: first -= columns; break;
    case SB_PAGERIGHT: first += columns; break;
    case SB_THUMBPOSITION: first = thumb; break;
    default: return;
    }
    if (first < 0)
        first = 0;
    LONG most = static_cast<LONG>(r->personCount) - columns;
    if (first > most)
        first = most > 0 ? most : 0;
    r->firstPerson = static_cast<DWORD>(first);
    FreeTimeSetScrollBar(r);
    FreeTimeInvalidate(window, r);
}

// The tracker's notifications, renumbered for the parent.
void OnTrackerCommand(HWND window, FreeTimeRecord *r, WORD code)
{
    switch (code) {
    case TTN_TRACKING:
        FreeTimeFastMeeting(window, r);
        return;
    case TTN_TIMECHANGED:
        FreeTimeFastMeeting(window, r);
        GadgetNotifyAlive(window, FTN_TIMECHANGED, r);
        return;
    case TTN_VIEWCHANGED:
    case TTN_SCROLLED: {
        DateTimeValue view;
        if (ToTracker(r, TTM_GETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view)) == 1) {
            view.hour = 0;
            view.minute = 0;
            if (r->viewMode != kWeekView || WeekOf(&view))
                r->weekStart = view;
        }
        FreeTimeInvalidate(window, r);
        if (code == TTN_VIEWCHANGED)
            GadgetNotifyAlive(window, FTN_VIEWCHANGED, r);
        return;
    }
    default:
        return;
    }
}

void OnLButtonDown(HWND window, FreeTimeRecord *r, LPARAM lParam)
{
    POINT pt = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    if (PtInRect(&r->rcGrid, pt))
        GadgetNotifyAlive(window, FTN_GRIDCLICK, r);
}

LRESULT OnMessage(HWND window, FreeTimeRecord *r, UINT message, WPARAM wParam, LPARAM lParam)
{
    const DWORD id = static_cast<DWORD>(wParam);
    const auto *date = reinterpret_cast<const DateTimeValue *>(lParam);
    switch (message) {
    case FTM_ADDPERSON: return OnAddPerson(window, r, id, reinterpret_cast<const char *>(lParam));
    case FTM_REMOVEPERSON: return OnRemovePerson(window, r, id);
    case FTM_ADDBUSY: return OnAddBusy(window, r, id, reinterpret_cast<const BusyInterval *>(lParam));
    case FTM_REMOVEBUSY: return OnRemoveBusy(window, r, id, LOWORD(lParam));
    case FTM_SETBUSYLIST: return OnSetBusyList(window, r, id, reinterpret_cast<const BusyInterval *>(lParam));
    case FTM_CLEARBUSY: return OnClearBusy(window, r, id);
    case FTM_SETSTATE: return OnSetState(window, r, id, LOWORD(lParam));
    case FTM_GETSTATE: {
        FreeTimePerson *p = FindPerson(r, id);
        return p ? static_cast<LRESULT>(p->state) : GadgetFailure;
    }
    case FTM_SETWEEK: return OnSetWeek(window, r, date);
    case FTM_GETWEEK:
        if (lParam)
            *reinterpret_cast<DateTimeValue *>(lParam) = r->weekStart;
        return GadgetSuccess;
    case FTM_SETDATE: return OnSetDate(window, r, date);
    case FTM_GETSTART:
    case FTM_SETSTART: {
        UINT forward = message == FTM_GETSTART ? TTM_GETSTART : TTM_SETSTARTKEEP;
        LRESULT answer = ToTracker(r, forward, 0, lParam);
        return Forwarded(window, r, answer) ? answer : GadgetFailure;
    }
    case FTM_SETSHOWWEEKEND:
        r->showWeekend = wParam ? 1 : 0;
        Relayout(window, r);
        return GadgetSuccess;
    case FTM_SETHOURSINVIEW: return OnSetHoursInView(window, r, wParam);
    case FTM_GETDURATION: return ToTracker(r, TTM_GETDURATION, 0, 0);
    case FTM_GETTRACKER: return reinterpret_cast<LRESULT>(r->tracker);
    case FTM_GETHOURSINVIEW: return ToTracker(r, TTM_GETHOURSINVIEW, 0, 0);
    case FTM_SETVIEWMODE: return OnSetViewMode(window, r, wParam);
    case FTM_GETVIEWMODE: return r->viewMode;
    case FTM_SETBUSYCOUNT: return OnSetBusyCount(r, id, LOWORD(lParam));
    case FTM_SETUNAVAILABLE: return OnSetUnavailable(window, r, id, lParam);
    case FTM_FINDFREESLOT: return OnFindFreeSlot(window, r, reinterpret_cast<FreeSlotRequest *>(lParam));
    case FTM_SETSORTMODE:
        if (wParam == 1 || wParam == 2)
            r->sortMode = static_cast<DWORD>(wParam);
        Sort(r);
        FreeTimeInvalidate(window, r);
        return 0;
    case FTM_SETOPTIONAL: return OnSetOptional(window, r, id, lParam);
    case FTM_SETIGNOREOPTIONAL:
        r->ignoreOptional = wParam ? 1 : 0;
        return ListsChanged(window, r, false) ? GadgetSuccess : GadgetFailure;
    case FTM_GETCONFLICT: return ToTracker(r, TTM_GETOWNBARCOLOUR, 0, 0) == 0x0000FF ? 1 : 0;
    default: return DefWindowProcA(window, message, wParam, lParam);
    }
}

}  // namespace

extern "C" LRESULT WINAPI GadFTWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    FreeTimeRecord *r = Record(window);
    if (!r)
        return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window, r, false);
        return 0;
    case WM_SIZE:
        OnSize(window, r);
        return 0;
    case WM_SETREDRAW: return OnSetRedraw(window, r, wParam);
    case WM_PAINT:
        FreeTimeOnPaint(window, r);
        return 0;
    case WM_ERASEBKGND: return 1;
    case WM_SHOWWINDOW:
        ToTracker(r, WM_SHOWWINDOW, wParam, lParam);
        return DefWindowProcA(window, message, wParam, lParam);
    case WM_SETFONT:
        OnSetFont(window, r, reinterpret_cast<HFONT>(wParam));
        return 0;
    case WM_GETFONT: return reinterpret_cast<LRESULT>(r->font);
    case WM_COMMAND:
        if (LOWORD(wParam) == kTrackerId && reinterpret_cast<HWND>(lParam) == r->tracker)
            OnTrackerCommand(window, r, HIWORD(wParam));
        return 0;
    case WM_HSCROLL:
        if (reinterpret_cast<HWND>(lParam) == r->scrollBar) {
            if (r->viewMode == kWeekView)
                ScrollWeek(window, r, LOWORD(wParam));
            else
                ScrollPeople(window, r, LOWORD(wParam), HIWORD(wParam));
        }
        return 0;
    case WM_LBUTTONDOWN:
        OnLButtonDown(window, r, lParam);
        return 0;
    default:
        if (message >= FTM_ADDPERSON && message <= FTM_GETCONFLICT)
            return OnMessage(window, r, message, wParam, lParam);
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

LRESULT CALLBACK FreeTimeForwarder(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return GadFTWndProc(window, message, wParam, lParam);
}
