// Arithmetic on DateTimeValue: field-wise adjustment with carries, moves by
// whole days through the 400-year cycle, and differences.
#include <cstring>
#include "calendar_internal.h"

static void AdjustYears(DateTimeValue *v, long long delta);
static void AdjustMonths(DateTimeValue *v, long long delta);
static void AdjustHours(DateTimeValue *v, long long delta);

// A day beyond the end of the resulting month becomes its last day; this
// runs at the end of every adjustment, the recursive ones included.
static void ClampDay(DateTimeValue *v)
{
    unsigned last = DaysInMonth(v->year, v->month);
    if (last && v->day > last)
        v->day = static_cast<BYTE>(last);
}

// One clock field: add the delta, carry whole units into the next field
// up, and keep the remainder within 0 .. unit-1.
static long long WrapField(long long value, long long unit, void (*carry)(DateTimeValue *, long long),
                           DateTimeValue *v)
{
    if (value < 0 && value % unit != 0)
        value -= unit;
    if (value < 0 || value > unit - 1)
        carry(v, value / unit);
    if (value < 0)
        value = unit - (-value % unit);
    return value % unit;
}

static void StepYears(DateTimeValue *v, long long delta)
{
    v->year = static_cast<WORD>(v->year + delta);
}

// The year carried from the month field: a recursive adjustment, with its
// own clamp of the day.
static void AdjustYears(DateTimeValue *v, long long delta)
{
    StepYears(v, delta);
    ClampDay(v);
}

// The month field without the clamp; a caller that moves the years as well
// clamps once, after both.
static void StepMonths(DateTimeValue *v, long long delta)
{
    if (delta) {
        long long m = v->month + delta - 1;
        v->month = static_cast<BYTE>(WrapField(m, 12, AdjustYears, v) + 1);
    }
}

static void AdjustMonths(DateTimeValue *v, long long delta)
{
    StepMonths(v, delta);
    ClampDay(v);
}

// The walk by months below comes back to the same month after 400 years
// (146097 days) while the 16-bit year does not wrap on the way, and after
// 65536 years from anywhere, the wrap included (each year value passed once;
// year 0 is in all three leap terms and cancels).
const long long kDaysIn400Years = 146097;
const long long kDaysIn65536Years = 65536LL * 365 + 65536 / 4 - 65536 / 100 + 65536 / 400;
const long long kLongestMonth = 31;

// Forwards: whole 400-year cycles that the walk would pass month by month,
// as long as more than a month's days remain after them.
static void StepCyclesForward(DateTimeValue *v, long long *d)
{
    long long cycles = (*d - kLongestMonth - 1) / kDaysIn400Years;
    const long long room = (0xFFFF - v->year) / 400;
    if (cycles > room)
        cycles = room;
    if (cycles > 0) {
        *d -= cycles * kDaysIn400Years;
        StepYears(v, 400 * cycles);
    }
}

// Backwards: whole cycles after which the count is still below 1.
static void StepCyclesBack(DateTimeValue *v, long long *d)
{
    long long cycles = -*d / kDaysIn400Years;
    const long long room = v->year / 400;
    if (cycles > room)
        cycles = room;
    if (cycles > 0) {
        *d += cycles * kDaysIn400Years;
        StepYears(v, -400 * cycles);
    }
}

void AdjustDaysUnchecked(DateTimeValue *v, long long delta)
{
    if (delta) {
        long long d = v->day + delta;
        // Whole wraps of the year field bring the walk back where it started.
        if (d > kDaysIn65536Years + kLongestMonth)
            d -= (d - kLongestMonth - 1) / kDaysIn65536Years * kDaysIn65536Years;
        else if (d < -kDaysIn65536Years)
            d += -d / kDaysIn65536Years * kDaysIn65536Years;
        while (d < 1) {
            StepCyclesBack(v, &d);
            if (d >= 1)
                break;
            AdjustMonths(v, -1);
            d += DaysInMonth(v->year, v->month);
        }
        for (;;) {
            StepCyclesForward(v, &d);
            // Whole years from January on step over twelve months at once.
            const long long year = IsLeapYear(v->year) ? 366 : 365;
            if (v->month == 1 && d > year + kLongestMonth) {
                d -= year;
                StepYears(v, 1);
                continue;
            }
            const unsigned last = DaysInMonth(v->year, v->month);
            if (d <= last)
                break;
            d -= last;
            AdjustMonths(v, 1);
        }
        v->day = static_cast<BYTE>(d);
    }
    ClampDay(v);
}

static void AdjustHours(DateTimeValue *v, long long delta)
{
    if (delta)
        v->hour = static_cast<BYTE>(WrapField(v->hour + delta, 24, AdjustDaysUnchecked, v));
    ClampDay(v);
}

static void AdjustMinutes(DateTimeValue *v, long long delta)
{
    if (delta)
        v->minute = static_cast<BYTE>(WrapField(v->minute + delta, 60, AdjustHours, v));
    ClampDay(v);
}

static void AdjustSeconds(DateTimeValue *v, long long delta)
{
    if (delta)
        v->second = static_cast<BYTE>(WrapField(v->second + delta, 60, AdjustMinutes, v));
    ClampDay(v);
}

extern "C" BOOL WINAPI OSAdjustDateTime(DateTimeValue *value, LONG years, LONG months, LONG days,
                                        LONG hours, LONG minutes, LONG seconds, LONG extraHours)
{
    if (!CheckDateTime(value))
        return 0;
    AdjustSeconds(value, seconds);
    AdjustMinutes(value, minutes);
    AdjustHours(value, static_cast<long long>(hours) + extraHours);
    AdjustDaysUnchecked(value, days);
    // Months and years move together: 31 January plus a month and three
    // years is 29 February three years on. The day is clamped once, at the end.
    StepMonths(value, months);
    StepYears(value, years);
    ClampDay(value);
    return 1;
}

extern "C" BOOL WINAPI OSAdjustDateTimeByDays(DateTimeValue *value, LONG days)
{
    if (!CheckDateTime(value))
        return 0;
    // Count from 1 January 1601, the first day of a 400-year cycle, so that
    // whole cycles, centuries and leap-year spans can be stepped over.
    long long r = static_cast<long long>(DayNumber(value)) + days + 72683;
    value->year = 1601;
    value->month = 1;
    value->day = 1;
    if (r >= 0) {
        if (r >= 146097) {
            value->year = static_cast<WORD>(value->year + 400 * (r / 146097));
            r %= 146097;
        }
        if (r > 36524) {
            long long q = (r - 1) / 36524;
            value->year = static_cast<WORD>(value->year + 100 * q);
            r -= q * 36524;
        }
        if (r > 1461) {
            long long q = (r - 1) / 1461;
            value->year = static_cast<WORD>(value->year + 4 * q);
            r -= q * 1461;
        }
    }
    if (r < 0) {
        AdjustDaysUnchecked(value, r);
        return 1;
    }
    // At most four years and a day are left: whole years, then the month
    // from the running totals of month lengths.
    unsigned d = static_cast<unsigned>(r);
    for (unsigned length; d >= (length = IsLeapYear(value->year) ? 366u : 365u);) {
        d -= length;
        value->year = static_cast<WORD>(value->year + 1);
    }
    static const unsigned short kDaysBefore[2][13] = {
        {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365},
        {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366}};
    const unsigned short *before = kDaysBefore[IsLeapYear(value->year) ? 1 : 0];
    unsigned month = 1;
    while (d >= before[month])
        ++month;
    value->month = static_cast<BYTE>(month);
    value->day = static_cast<BYTE>(d - before[month - 1] + 1);
    return 1;
}

static LONG SecondsOf(const DateTimeValue *v, bool withDays)
{
    DWORD s = ((static_cast<DWORD>(v->hourBias) + v->hour) * 60 + v->minute) * 60 + v->second;
    if (withDays)
        s += static_cast<DWORD>(DayNumber(v)) * 86400u;
    return static_cast<LONG>(s);
}

extern "C" BOOL WINAPI OSDiffDateTime(const DateTimeValue *first, const DateTimeValue *second,
                                      LONG *days, LONG *hours, LONG *minutes, LONG *seconds)
{
    if (!days || !hours || !minutes || !seconds) {
        OSErrorSetErrorInfo(RV_BadParms, "OSDiffDateTime");
        return 0;
    }
    if (first && second && memcmp(first, second, sizeof *first) == 0) {
        *days = *hours = *minutes = *seconds = 0;
        return 1;
    }
    if (!CheckDateTime(first) || !CheckDateTime(second))
        return 0;
    bool datesDiffer = DayNumber(first) != DayNumber(second);
    // 32-bit arithmetic that wraps, as the stored differences always have.
    LONG t = static_cast<LONG>(static_cast<DWORD>(SecondsOf(second, datesDiffer)) -
                               static_cast<DWORD>(SecondsOf(first, datesDiffer)));
    *days = 0;
    if (datesDiffer) {
        *days = t / 86400;
        if (*days)
            t %= 86400;
    }
    *hours = t / 3600;
    if (*hours)
        t %= 3600;
    *minutes = t / 60;
    if (*minutes)
        t %= 60;
    *seconds = t;
    return 1;
}
