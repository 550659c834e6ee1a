// DateTimeValue: construction, validity, day counts, weekdays and compares.
#include <cstddef>
#include "calendar_internal.h"

DateTimeIntlSettings g_dateTimeIntl;

static const BYTE kDaysInMonth[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

bool IsLeapYear(unsigned year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

unsigned DaysInMonth(unsigned year, unsigned month)
{
    if (month < 1 || month > 12)
        return 0;
    if (month == 2 && IsLeapYear(year))
        return 29;
    return kDaysInMonth[month - 1];
}

static bool AllFieldsAre(const DateTimeValue *v, unsigned n)
{
    return v->year == n && v->month == n && v->day == n && v->hour == n && v->minute == n &&
           v->second == n && v->hourBias == n;
}

bool IsNoDateLow(const DateTimeValue *value) { return AllFieldsAre(value, 1); }
bool IsNoDateHigh(const DateTimeValue *value) { return AllFieldsAre(value, 2); }

extern "C" BOOL WINAPI OSGetDateTime(DateTimeValue *out)
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    return OSSetDateTime(out, now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute,
                         now.wSecond, 0);
}

extern "C" BOOL WINAPI OSSetDateTime(DateTimeValue *out, UINT year, UINT month, UINT day,
                                     UINT hour, UINT minute, UINT second, UINT hourBias)
{
    if (!out) {
        OSErrorSetErrorInfo(RV_BadParms, "DateTimeValue");
        return 0;
    }
    out->year = static_cast<WORD>(year);
    out->month = static_cast<BYTE>(month);
    out->day = static_cast<BYTE>(day);
    out->hour = static_cast<BYTE>(hour);
    out->minute = static_cast<BYTE>(minute);
    out->second = static_cast<BYTE>(second);
    out->hourBias = static_cast<BYTE>(hourBias);
    return 1;
}

extern "C" DateTimeValue *WINAPI OSSetNoDateLow(DateTimeValue *out)
{
    if (out)
        OSSetDateTime(out, 1, 1, 1, 1, 1, 1, 1);
    return out;
}

extern "C" DateTimeValue *WINAPI OSSetNoDateHigh(DateTimeValue *out)
{
    if (out)
        OSSetDateTime(out, 2, 2, 2, 2, 2, 2, 2);
    return out;
}

extern "C" LONG WINAPI OSDaysSince01011800(WORD year, WORD month, WORD day)
{
    // Month corrections K for months 1 to 12.
    static const LONG kCorrection[12] = {0, 0, 3, 3, 4, 4, 5, 5, 5, 6, 6, 7};
    if (month < 1 || month > 12) {
        OSErrorSetErrorInfo(RV_MonthRange, month, 1, 12);
        return 0;
    }
    LONG y = static_cast<WORD>(year - 1600);
    LONG count = day + 365L * year + 31L * month - kCorrection[month - 1] + y / 4 - y / 100 +
                 y / 400 - 584031 - 73049;
    if (IsLeapYear(year) && month < 3)
        --count;
    return count;
}

LONG DayNumber(const DateTimeValue *value)
{
    return OSDaysSince01011800(value->year, value->month, value->day);
}

// Validity in the fixed order; `why` records the first fault.
static bool Validate(const DateTimeValue *v, unsigned lowestYear, bool seconds, bool why)
{
    if (!v) {
        if (why)
            OSErrorSetErrorInfo(RV_BadParms, "DateTimeValue");
        return false;
    }
    if (IsNoDateLow(v) || IsNoDateHigh(v))
        return true;
    struct Check {
        ResultCode code;
        unsigned value, low, high;
    };
    const unsigned monthDays = DaysInMonth(v->year, v->month);
    const Check checks[] = {
        {RV_YearRange, v->year, lowestYear, 2101},
        {RV_MonthRange, v->month, 1, 12},
        {RV_DayRange, v->day, 1, monthDays},
        {RV_HourRange, v->hour, 0, 23},
        {RV_MinuteRange, v->minute, 0, 59},
        {RV_SecondRange, seconds ? v->second : 0u, 0, 59},
    };
    for (const Check &check : checks) {
        if (check.value < check.low || check.value > check.high) {
            if (why)
                OSErrorSetErrorInfo(check.code, check.value, check.low, check.high);
            return false;
        }
    }
    return true;
}

extern "C" BOOL WINAPI OSIsValidDateTime(const DateTimeValue *value)
{
    return Validate(value, 1800, true, false);
}

extern "C" BOOL WINAPI OSDTIsValidDateTime(const DateTimeValue *value)
{
    return Validate(value, 1801, false, false);
}

extern "C" BOOL WINAPI OSWhyIsInvalidDateTime(const DateTimeValue *value)
{
    return Validate(value, 1800, true, true);
}

bool CheckDateTime(const DateTimeValue *value)
{
    return OSIsValidDateTime(value) || OSWhyIsInvalidDateTime(value);
}

// Compares field by field up to `depth` fields of the order below.
static int Compare(const DateTimeValue *a, const DateTimeValue *b, int depth)
{
    if (a && b && memcmp(a, b, sizeof *a) == 0)
        return 0;
    if (!CheckDateTime(a) || !CheckDateTime(b))
        return 0;
    bool lowA = IsNoDateLow(a), lowB = IsNoDateLow(b);
    if (lowA || lowB)
        return lowA == lowB ? 0 : (lowA ? -1 : 1);
    bool highA = IsNoDateHigh(a), highB = IsNoDateHigh(b);
    if (highA || highB)
        return highA == highB ? 0 : (highA ? 1 : -1);
    const unsigned fieldsA[] = {a->year, a->month, a->day, a->hourBias, a->hour, a->minute, a->second};
    const unsigned fieldsB[] = {b->year, b->month, b->day, b->hourBias, b->hour, b->minute, b->second};
    for (int i = 0; i < depth; ++i)
        if (fieldsA[i] != fieldsB[i])
            return fieldsA[i] < fieldsB[i] ? -1 : 1;
    return 0;
}

extern "C" int WINAPI OSDateTimeCompare(const DateTimeValue *a, const DateTimeValue *b)
{
    return Compare(a, b, 7);
}

extern "C" int WINAPI OSDateCompare(const DateTimeValue *a, const DateTimeValue *b)
{
    return Compare(a, b, 3);
}

extern "C" int WINAPI OSYearCompare(const DateTimeValue *a, const DateTimeValue *b)
{
    return Compare(a, b, 1);
}

extern "C" BOOL WINAPI OSDayOfWeek(const DateTimeValue *value, LONG *weekday, LONG)
{
    if (!CheckDateTime(value))
        return 0;
    if (!weekday) {
        OSErrorSetErrorInfo(RV_BadParms, "OSDayOfWeek");
        return 0;
    }
    // 1 January 1800 was a Wednesday.
    *weekday = static_cast<LONG>((static_cast<DWORD>(DayNumber(value)) + 3) % 7);
    return 1;
}

extern "C" BOOL WINAPI OSIsWeekend(LONG weekday)
{
    return weekday == 0 || weekday == 6;
}

extern "C" LONG WINAPI OSDateTimeGetNumDaysInMonth(const DateTimeValue *value)
{
    if (!value) {
        OSErrorSetErrorInfo(RV_BadParms, "DateTimeValue");
        return 0;
    }
    unsigned days = DaysInMonth(value->year, value->month);
    if (!days)
        OSErrorSetErrorInfo(RV_MonthRange, value->month, 1, 12);
    return static_cast<LONG>(days);
}

extern "C" BOOL WINAPI OSIsDateTimePM(const DateTimeValue *value)
{
    if (!value)
        return FALSE;
    return g_dateTimeIntl.iTime == 0 && value->hour >= 12;
}
