// TimeTracker's search for free time: the appointment walks forward,
// visibly, past busy intervals, closed hours and (if asked) weekends, until
// it fits; at the limit it goes back, or takes the longest gap found.
#include "time_tracker.h"
#include "../gadgets/gadget_frame.h"

namespace {

const DWORD kMinutesPerDay = 1440;

enum class Walk { Go, Stop };

struct Search {
    HWND window;
    TimeTrackerRecord *r;
    FreeSlotRequest *q;
    DWORD duration;
    DateTimeValue origin;
    bool noLimit;
    bool weekends;  // weekend days may hold the slot
    LRESULT result;
    bool gone;      // the parent destroyed the gadget while it walked
};

// A step of the search. Past the calendar's last year the search has run
// out of time to look in: that is recorded as the search's own failure.
bool SearchShift(DateTimeValue *value, LONG days, LONG hours, LONG minutes)
{
    DateTimeValue moved = *value;
    if (!OSAdjustDateTime(&moved, 0, 0, days, hours, minutes, 0, 0))
        return false;
    if (!OSIsValidDateTime(&moved)) {
        OSErrorSetErrorInfo(RV_FreetimeError, "TTM_FINDFREESLOT");
        return false;
    }
    *value = moved;
    return true;
}

bool IsNoLimit(const DateTimeValue &v)
{
    return v.year == 2 && v.month == 2 && v.day == 2 && v.hour == 2 && v.minute == 2 && v.second == 2 &&
           v.hourBias == 2;
}

// 1 some busy interval overlaps (start, length), 0 none, -1 failed.
int AnyOverlap(const TimeTrackerRecord *r, const DateTimeValue *start, DWORD length)
{
    for (DWORD i = 0; i < r->busyCount; ++i) {
        int overlap = TrackerOverlap(start, length, &r->busy[i].start, r->busy[i].lengthMinutes);
        if (overlap != 0)
            return overlap;
    }
    return 0;
}

bool Weekday(const DateTimeValue &v, LONG *day) { return OSDayOfWeek(&v, day, 0) != 0; }

bool IsWeekendDay(const DateTimeValue &v)
{
    LONG day = 0;
    return Weekday(v, &day) && OSIsWeekend(day);
}

DWORD DayOpen(const FreeSlotRequest *q, const DateTimeValue &v)
{
    LONG day = 0;
    if (q->useWeekdayHours && Weekday(v, &day) && q->weekdayOpen[day] / 60 < 24)
        return q->weekdayOpen[day];
    return q->dayOpen;
}

DWORD DayClose(const FreeSlotRequest *q, const DateTimeValue &v)
{
    LONG day = 0;
    if (q->useWeekdayHours && Weekday(v, &day) && q->weekdayClose[day] / 60 < 24)
        return q->weekdayClose[day];
    return q->dayClose;
}

void SetTimeOfDay(DateTimeValue *v, DWORD minutes)
{
    v->hour = static_cast<BYTE>(minutes / 60);
    v->minute = static_cast<BYTE>(minutes % 60);
    v->second = 0;
}

DWORD MinuteOfDay(const DateTimeValue &v) { return v.hour * 60u + v.minute; }

// Moves the appointment visibly; false when the parent destroyed the
// gadget on hearing of it.
bool Keep(Search &s, const DateTimeValue &v)
{
    SendMessageA(s.window, TTM_SETSTARTKEEP, 0, reinterpret_cast<LPARAM>(&v));
    if (GadgetAlive(s.window, s.r))
        return true;
    s.gone = true;
    s.result = -1;
    return false;
}

// By start; the blanks (length 0) that a removal leaves go last, since
// they take no time and their starts may be no date at all.
int __cdecl CompareStarts(const void *a, const void *b)
{
    const BusyInterval *x = static_cast<const BusyInterval *>(a);
    const BusyInterval *y = static_cast<const BusyInterval *>(b);
    if (x->lengthMinutes == 0 || y->lengthMinutes == 0)
        return (x->lengthMinutes == 0) - (y->lengthMinutes == 0);
    return OSDateTimeCompare(&x->start, &y->start);
}

// The longest gap after the origin between busy intervals, within the
// day's hours and off the weekend, up to the limit.
bool GapSearch(Search &s)
{
    TimeTrackerRecord *r = s.r;
    if (r->busyCount)
        QSort(r->busy, r->busyCount, sizeof(BusyInterval), CompareStarts);
    DWORD count = r->busyCount;
    while (count && r->busy[count - 1].lengthMinutes == 0)
        --count;
    LONG best = 0;
    DateTimeValue bestStart = s.origin;
    for (DWORD i = 0; i < count; ++i) {
        DateTimeValue g = r->busy[i].start;
        if (!SearchShift(&g, 0, 0, static_cast<LONG>(r->busy[i].lengthMinutes)))
            return false;
        while (!s.weekends && IsWeekendDay(g))
            if (!SearchShift(&g, 1, 0, 0))
                return false;
        if (MinuteOfDay(g) < s.q->dayOpen)
            SetTimeOfDay(&g, s.q->dayOpen);
        if (!Later(&g, &s.origin))
            continue;
        DateTimeValue f = s.q->limit;
        if (i + 1 < count && !Later(&r->busy[i + 1].start, &s.q->limit))
            f = r->busy[i + 1].start;
        while (!s.weekends && IsWeekendDay(f))
            if (!SearchShift(&f, -1, 0, 0))
                return false;
        if (MinuteOfDay(f) > s.q->dayClose)
            SetTimeOfDay(&f, s.q->dayClose);
        LONG hours = 0, minutes = 0;
        if (!TrackerDiff(&g, &f, &hours, &minutes))
            return false;
        LONG length = hours * 60 + minutes;
        if (length >= 0 && length > best) {
            best = length;
            bestStart = g;
        }
    }
    if (!Keep(s, bestStart))
        return false;
    if (best > 0) {
        SendMessageA(s.window, TTM_SETDURATION, 0, MAKELONG(best % 60, best / 60));
        s.q->found = GadgetAlive(s.window, r) ? 1 : 0;
    } else {
        s.q->found = 0;
    }
    return true;
}

// At or past the limit the walk ends: back at the origin, or in the
// longest gap. The search then answers 1, or -1 when the gap search failed.
Walk LimitCheck(Search &s, const DateTimeValue &c)
{
    if (s.noLimit || Later(&s.q->limit, &c))
        return Walk::Go;
    if (s.q->longestGap) {
        s.result = GapSearch(s) ? 1 : -1;
    } else {
        s.q->found = 0;
        s.result = Keep(s, s.origin) ? 1 : -1;
    }
    return Walk::Stop;
}

// A step of the walk that fails (the calendar's end, say) ends it with -1.
Walk Fail(Search &s)
{
    s.result = -1;
    return Walk::Stop;
}

Walk NextDay(Search &s, DateTimeValue *c, bool toOpen)
{
    if (!SearchShift(c, 1, 0, 0))
        return Fail(s);
    if (LimitCheck(s, *c) == Walk::Stop)
        return Walk::Stop;
    if (toOpen)
        SetTimeOfDay(c, DayOpen(s.q, *c));
    return Walk::Go;
}

Walk WalkForward(Search &s, DateTimeValue *c)
{
    TimeTrackerRecord *r = s.r;
    for (;;) {
        for (;;) {
            int overlap = AnyOverlap(r, c, s.duration);
            if (overlap == 0)
                break;
            if (!SearchShift(c, 0, 0, r->fineStep))
                return Fail(s);
        }
        if (OSReWait(1))
            return Walk::Go;
        DateTimeValue e = *c;
        if (!SearchShift(&e, 0, 0, static_cast<LONG>(s.duration)))
            return Fail(s);
        DWORD close = DayClose(s.q, *c);
        bool otherDay = OSDateCompare(&e, c) != 0;
        if (otherDay || e.hour > close / 60 || (e.hour == close / 60 && e.minute > close % 60)) {
            if (NextDay(s, c, true) == Walk::Stop)
                return Walk::Stop;
            if (!Keep(s, *c))
                return Walk::Stop;
        }
        bool moved = false;
        if (!s.weekends && IsWeekendDay(*c)) {
            while (IsWeekendDay(*c))
                if (NextDay(s, c, false) == Walk::Stop)
                    return Walk::Stop;
            if (!Keep(s, *c))
                return Walk::Stop;
            moved = true;
        }
        bool restart = false;
        LONG day = 0;
        if (!IsWeekendDay(*c)) {
            while (Weekday(*c, &day) && s.q->weekdayOpen[day] / 60 >= 24) {
                if (NextDay(s, c, true) == Walk::Stop)
                    return Walk::Stop;
                moved = true;
                if (IsWeekendDay(*c)) {
                    restart = true;
                    break;
                }
            }
        }
        if (restart || moved)
            continue;
        if (AnyOverlap(r, c, s.duration) == 0)
            return Walk::Go;
    }
}

bool SomeWorkdayFits(const FreeSlotRequest *q, DWORD duration)
{
    for (LONG day = 0; day < 7; ++day)
        if (!OSIsWeekend(day) && q->weekdayClose[day] < 25 * 60 &&
            q->weekdayClose[day] - q->weekdayOpen[day] >= duration)
            return true;
    return false;
}

}  // namespace

LRESULT TrackerFindFreeSlot(HWND window, TimeTrackerRecord *r, FreeSlotRequest *q)
{
    if (!q) {
        OSErrorSetErrorInfo(RV_BadParms, "TTM_FINDFREESLOT");
        return -1;
    }
    Search s = {window, r, q, r->durationHours * 60 + r->durationMinutes, r->start, IsNoLimit(q->limit),
                q->includeWeekends != 0, 0, false};
    q->found = 0;
    if (q->useWeekdayHours && !s.weekends && !SomeWorkdayFits(q, s.duration))
        return -1;
    if (OSDateTimeCompare(&r->start, &r->end) == 0)
        return 0;
    // A step of 0 would never leave a busy interval.
    if (r->fineStep == 0) {
        OSErrorSetErrorInfo(RV_BadParms, "TimeTracker step");
        return -1;
    }
    if (!s.noLimit) {
        q->limit.hour = q->limit.minute = q->limit.second = 0;
        if (!SearchShift(&q->limit, 0, 0, -static_cast<LONG>(r->fineStep)))
            return -1;
    }
    DateTimeValue c = r->start;
    int overlap = AnyOverlap(r, &c, s.duration);
    if (overlap < 0)
        return -1;
    if (overlap == 0)
        c = r->end;
    OSWait();
    if (WalkForward(s, &c) == Walk::Stop) {
        OSUnWait();
        return s.result;
    }
    if (!Keep(s, c)) {
        OSUnWait();
        return -1;
    }
    r->viewStart = c;
    SetTimeOfDay(&r->viewStart, DayOpen(q, c));
    if (!GadgetNotifyAlive(window, TTN_VIEWCHANGED, r) || !GadgetNotifyAlive(window, TTN_SCROLLED, r)) {
        OSUnWait();
        return -1;
    }
    q->found = 1;
    TrackerRenderScale(r);
    TrackerRedraw(window, r);
    OSUnWait();
    return 0;
}
