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

static_assert(sizeof(DateTimeIntlSettings) == 296 && offsetof(DateTimeIntlSettings, sTime) == 4 &&
                  offsetof(DateTimeIntlSettings, s1159) == 8 &&
                  offsetof(DateTimeIntlSettings, s2359) == 17 &&
                  offsetof(DateTimeIntlSettings, sDate) == 26 &&
                  offsetof(DateTimeIntlSettings, iDate) == 28 &&
                  offsetof(DateTimeIntlSettings, weekStart) == 32 &&
                  offsetof(DateTimeIntlSettings, codePageTranslation) == 36,
              "DateTimeIntlSettings is copied whole by hosts");

// The conventions kept beside the public record.
struct DateTimeFormats {
    char timeFormat[50];
    char shortDate[30];
    char longDate[50];
    LONG leadZero;
    BOOL fourDigitYear;     // the short date format holds more than two `y`
    char resourceMorning[9]; // strings 40652 and 40653, the 24-hour clock's markers
    char resourceAfternoon[9];
};
extern DateTimeFormats g_dateTimeFormats;

// Names and parser words, loaded once at attach and never freed.
struct DateTimeNames {
    char *longDay[7];
    char *shortDay[7];
    char *dayFormThree[7];
    char *dayFormFour[7];
    char *longMonth[12];
    char *shortMonth[12];
    char *monthFormThree[12];
    char *ordinal[31];
    char *wordNow;       // 400
    char *wordToday;     // 401
    char *wordTomorrow;  // 402
    char *wordYesterday; // 403
    char *wordMidday;    // 404
};
extern DateTimeNames g_dateTimeNames;

// The calendar's part of attach: settings, then the name tables.
BOOL DateTimeStartUp(HMODULE module);

extern const char kIntlKeyPath[];    // "Control Panel\International"
extern const char kProductIntlKey[]; // the product's own international key

// The unit words of the tumbler forms and the text of an ordinal.
enum { kStringHourUnit = 40650, kStringMinuteUnit = 40651, kStringOrdinalBase = 2600 };

// Parsing shared by the text readers and the tumbler strings.
struct DateTimeToken {
    char text[32];
    LONG used;
};
struct DateTimeKnownFields {
    LONG year, month, day, hour, minute, second;
};
enum { kMaxDateTimeTokens = 20 };
extern DateTimeToken g_dateTimeTokens[kMaxDateTimeTokens];
extern int g_dateTimeTokenCount;

// Splits `text` (changed in place) at any character of `separators`.
void TokeniseDateTimeText(char *text, const char *separators);
// The time attempts; `full` passes over tokens without the time separator.
void ParseTimeTokens(DateTimeValue *value, DateTimeKnownFields *known, bool full);
// The month-and-day number attempt.
void ParseNumberTokens(DateTimeValue *value, DateTimeKnownFields *known, bool import);
// Fills what is not known: the date from `today`, the time with zeros.
void FillUnknownFields(DateTimeValue *value, const DateTimeKnownFields *known,
                       const DateTimeValue *today);
DWORD ReadLeadingNumber(const char *text);
// Blanks and tabs off the front, blanks off the end; returns the new start.
char *TrimDateTimeText(char *text);
