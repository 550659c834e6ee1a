// Arithmetic on DateTimeValue: field-wise adjustment with carries, moves by
// whole days through a day number, and differences.
#include <cstring>
#include "calendar_internal.h"

static void AdjustYears(DateTimeValue *v, long long delta);
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

// The day field moves on a calendar of 65536 years with a 16-bit year that
// wraps: year 0 follows year 65535 and every year keeps its leap rule, so the
// months repeat after kDaysIn65536Years days (year 0 is in all three leap
// terms and cancels). Moving by days is the same as walking month by month
// from the first of the value's month, but goes through a day number on that
// circle, in constant time.
const long long kDaysIn65536Years = 65536LL * 365 + 65536 / 4 - 65536 / 100 + 65536 / 400;

// Days from 1 January of year 0 to 1 January of `year` (0 to 65536).
static long long DaysBeforeYear(long long year)
{
    return year * 365 + (year + 3) / 4 - (year + 99) / 100 + (year + 399) / 400;
}

static const unsigned short kDaysBeforeMonth[2][13] = {
    {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365},
    {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366}};

void AdjustDaysUnchecked(DateTimeValue *v, long long delta)
{
    if (delta) {
        const unsigned leap = IsLeapYear(v->year) ? 1 : 0;
        long long n = DaysBeforeYear(v->year) + kDaysBeforeMonth[leap][v->month - 1] + v->day - 1 + delta;
        n %= kDaysIn65536Years;
        if (n < 0)
            n += kDaysIn65536Years;
        // The year by the mean length of 400 years, then corrected by a step.
        long long year = n * 400 / 146097;
        while (DaysBeforeYear(year + 1) <= n)
            ++year;
        while (DaysBeforeYear(year) > n)
            --year;
        const unsigned dayOfYear = static_cast<unsigned>(n - DaysBeforeYear(year));
        const unsigned short *before = kDaysBeforeMonth[IsLeapYear(static_cast<unsigned>(year)) ? 1 : 0];
        unsigned month = dayOfYear / 32 + 1;  // never past the month sought
        while (dayOfYear >= before[month])
            ++month;
        v->year = static_cast<WORD>(year);
        v->month = static_cast<BYTE>(month);
        v->day = static_cast<BYTE>(dayOfYear - before[month - 1] + 1);
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
