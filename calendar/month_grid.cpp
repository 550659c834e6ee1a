// Layout services of a month view: columns for a week start, rows of a
// month, a walk over the cells, and week numbers.
#include "calendar_internal.h"

extern "C" LONG WINAPI OSDateTimeGetColumnForDayOfWeek(LONG weekday, LONG weekStart)
{
    return (weekday - weekStart + 7) % 7;
}

static bool IsWeekday(LONG day) { return day >= 0 && day <= 6; }

// The weekday of a day count from 1 January 1800, a Wednesday.
static LONG WeekdayOfCount(LONG count) { return static_cast<LONG>((static_cast<DWORD>(count) + 3) % 7); }

// The first day of the value's month and its weekday; false, recorded, if
// the value is invalid.
static bool FirstOfMonth(const DateTimeValue *value, DateTimeValue *first, LONG *weekday)
{
    *first = *value;
    first->day = 1;
    return OSDayOfWeek(first, weekday, 0) != FALSE;
}

extern "C" LONG WINAPI OSDateTimeCalcNumRowsForMonth(const DateTimeValue *value, LONG weekStart)
{
    if (!value) {
        OSErrorSetErrorInfo(RV_BadParms, "DateTimeValue");
        return 0;
    }
    DateTimeValue first;
    LONG weekday = 0;
    if (!FirstOfMonth(value, &first, &weekday))
        return 0;
    LONG column = OSDateTimeGetColumnForDayOfWeek(weekday, weekStart);
    LONG days = OSDateTimeGetNumDaysInMonth(&first);
    LONG rows = column == 0 && days == 28 ? 4 : 5;
    if (column == 5 && days > 30)
        ++rows;
    if (column == 6 && days >= 30)
        ++rows;
    return rows;
}

static BOOL WalkMonth(const DateTimeValue *value, LONG weekStart, BOOL skipOtherMonths,
                      MonthGridCellProc callback, LONG_PTR data1, LONG_PTR data2, bool sixRows)
{
    if (!value || !callback) {
        OSErrorSetErrorInfo(RV_BadParms, "OSDateTimeMonthGrid");
        return 0;
    }
    DateTimeValue first;
    LONG weekday = 0;
    if (!FirstOfMonth(value, &first, &weekday))
        return 0;
    LONG rows = sixRows ? 6 : OSDateTimeCalcNumRowsForMonth(&first, weekStart);
    LONG offset = -OSDateTimeGetColumnForDayOfWeek(weekday, weekStart);
    for (LONG row = 0; row < rows; ++row) {
        for (LONG column = 0; column < 7; ++column, ++offset) {
            DateTimeValue cell = first;
            if (!OSAdjustDateTime(&cell, 0, 0, offset, 0, 0, 0, 0))
                return 0;
            if (skipOtherMonths && cell.month != first.month)
                continue;
            LONG answer = callback(&cell, column, row, data1, data2);
            if (answer == -1)
                return 0;
            if (answer == 0)
                return 1;
        }
    }
    return 1;
}

extern "C" BOOL WINAPI OSDateTimeMonthGrid(const DateTimeValue *value, LONG weekStart,
                                           BOOL skipOtherMonths, MonthGridCellProc callback,
                                           LONG_PTR data1, LONG_PTR data2)
{
    return WalkMonth(value, weekStart, skipOtherMonths, callback, data1, data2, false);
}

extern "C" BOOL WINAPI OSDateTimeMonthGridEx(const DateTimeValue *value, LONG weekStart,
                                             BOOL skipOtherMonths, MonthGridCellProc callback,
                                             LONG_PTR data1, LONG_PTR data2)
{
    return WalkMonth(value, weekStart, skipOtherMonths, callback, data1, data2, true);
}

// Moves a day count forward, or back, to the nearest week start.
static LONG ForwardToWeekStart(LONG count, LONG weekStart)
{
    while (WeekdayOfCount(count) != weekStart)
        ++count;
    return count;
}

static LONG BackToWeekStart(LONG count, LONG weekStart)
{
    while (WeekdayOfCount(count) != weekStart)
        --count;
    return count;
}

// Weeks count from the first week with at least four days in the year.
extern "C" BOOL WINAPI OSWeekNo(const DateTimeValue *value, LONG weekStart, LONG *weekNumber)
{
    if (!CheckDateTime(value))
        return 0;
    if (!weekNumber || !IsWeekday(weekStart)) {
        OSErrorSetErrorInfo(RV_BadParms, "OSWeekNo");
        return 0;
    }
    const LONG date = DayNumber(value);
    const WORD year = value->year;
    LONG start = OSDaysSince01011800(year, 1, 1);
    if (year > 1800) {
        if (OSDateTimeGetColumnForDayOfWeek(WeekdayOfCount(start), weekStart) >= 4) {
            // The year's first days belong to the last week of the year before.
            start = ForwardToWeekStart(start, weekStart);
            if (start > date) {
                start = OSDaysSince01011800(static_cast<WORD>(year - 1), 1, 1);
                if (OSDateTimeGetColumnForDayOfWeek(WeekdayOfCount(start), weekStart) >= 4)
                    start = ForwardToWeekStart(start, weekStart);
            }
        } else {
            start = BackToWeekStart(start, weekStart);
        }
    }
    LONG end = OSDaysSince01011800(static_cast<WORD>(year + 1), 1, 1);
    if (OSDateTimeGetColumnForDayOfWeek(WeekdayOfCount(end), weekStart) < 4) {
        end = BackToWeekStart(end, weekStart);
        if (date >= end) {
            *weekNumber = 1;
            return 1;
        }
    }
    *weekNumber = (date - start) / 7 + 1;
    return 1;
}
