// Shared helpers of the calendar units.
#pragma once
#include <cstddef>
#include "qziso32.h"

static_assert(sizeof(DateTimeValue) == 8, "DateTimeValue is eight bytes on every build");
static_assert(offsetof(DateTimeValue, month) == 2 && offsetof(DateTimeValue, day) == 3 &&
                  offsetof(DateTimeValue, hour) == 4 && offsetof(DateTimeValue, minute) == 5 &&
                  offsetof(DateTimeValue, second) == 6 && offsetof(DateTimeValue, hourBias) == 7,
              "DateTimeValue field offsets are a stored format");

// The conventions in force; the clock setting is read by OSIsDateTimePM.
extern DateTimeIntlSettings g_dateTimeIntl;

bool IsLeapYear(unsigned year);
// Days in `month` of `year`; 0 for a month outside 1..12.
unsigned DaysInMonth(unsigned year, unsigned month);
bool IsNoDateLow(const DateTimeValue *value);
bool IsNoDateHigh(const DateTimeValue *value);
// The library's idiom: test, and record why the value is invalid.
bool CheckDateTime(const DateTimeValue *value);
// Day count of the value's date from 1 January 1800.
LONG DayNumber(const DateTimeValue *value);
// Moves the days as the arithmetic does, carrying into months and years.
void AdjustDaysUnchecked(DateTimeValue *value, long long delta);
