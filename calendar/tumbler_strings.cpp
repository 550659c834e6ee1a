// Tumbler time strings: a time of day as a number of minutes in decimal,
// to and from the hour-and-minute text and the real text.
#include <cstring>
#include "calendar_internal.h"
#include "../core/module_globals.h"

// The present date with the time zeroed, as every conversion starts.
static void StartOfToday(DateTimeValue *value)
{
    OSGetDateTime(value);
    value->hour = value->minute = value->second = value->hourBias = 0;
}

// Copies and trims the input; false if nothing is left.
static bool TrimmedCopy(const char *text, char *buffer, size_t size, char **start)
{
    buffer[0] = 0;
    if (text)
        lstrcpynA(buffer, text, static_cast<int>(size));
    *start = TrimDateTimeText(buffer);
    return **start != 0;
}

static void LoadUnit(UINT id, char *unit, int size)
{
    if (LoadStringA(g_module.hResourceLibrary, id, unit, size) <= 0)
        unit[0] = 0;
}

// Splits at blanks, tabs, the unit words' characters and the time separator.
static void TokeniseTumblerText(char *text, char *hourUnit)
{
    char minuteUnit[16];
    LoadUnit(kStringHourUnit, hourUnit, 16);
    LoadUnit(kStringMinuteUnit, minuteUnit, 16);
    char separators[64];
    char time[sizeof g_dateTimeIntl.sTime];
    lstrcpynA(time, g_dateTimeIntl.sTime, sizeof time);
    OScsprintf(separators, sizeof separators - 1, " \t%s%s%s", hourUnit, minuteUnit, time);
    TokeniseDateTimeText(text, separators);
}

static void ReadHourMinuteText(DateTimeValue *value, char *text)
{
    char hourUnit[16];
    char original[256];
    lstrcpynA(original, text, sizeof original);
    TokeniseTumblerText(text, hourUnit);
    unsigned long long hours = 0, minutes = 0;
    if (g_dateTimeTokenCount != 1) {
        hours = ReadLeadingNumber(g_dateTimeTokens[0].text);
        minutes = ReadLeadingNumber(g_dateTimeTokens[1].text);
        if (hours * 60 + minutes > 1439)
            hours = 23, minutes = 59;
    } else if (hourUnit[0] && strstr(original, hourUnit)) {
        hours = ReadLeadingNumber(g_dateTimeTokens[0].text);
        if (hours * 60 > 1439)
            hours = 23, minutes = 59;
    } else {
        minutes = ReadLeadingNumber(g_dateTimeTokens[0].text);
        if (minutes > 1439)
            minutes = 1439;
    }
    OSAdjustDateTime(value, 0, 0, 0, static_cast<LONG>(hours), static_cast<LONG>(minutes), 0, 0);
}

static void ReadRealText(DateTimeValue *value, char *text)
{
    char hourUnit[16];
    TokeniseTumblerText(text, hourUnit);
    DateTimeKnownFields known = {};
    const BYTE hourBias = value->hourBias;
    DateTimeValue today = *value;
    ParseTimeTokens(value, &known, false);
    ParseNumberTokens(value, &known, false);
    FillUnknownFields(value, &known, &today);
    value->hourBias = hourBias;
}

static void WriteMinutes(const DateTimeValue *value, char *out)
{
    // At most four digits: 23 hours and 59 minutes.
    OScsprintf(out, 8, "%u", static_cast<unsigned>(value->hour * 60u + value->minute));
}

static const char *ClockFormat() { return g_dateTimeIntl.iTime ? "HH:mm" : "HHz mmZ"; }

// Reads a typed time with `read` into `value`, starting from today. Text that
// is empty after trimming reads as nothing: `out`, when given, is emptied and
// the answer is false.
static bool ReadTypedTime(const char *text, char *out, DateTimeValue *value, void (*read)(DateTimeValue *, char *))
{
    char buffer[256];
    char *start;
    StartOfToday(value);
    if (!TrimmedCopy(text, buffer, sizeof buffer, &start)) {
        if (out)
            out[0] = 0;
        return false;
    }
    read(value, start);
    return true;
}

extern "C" BOOL WINAPI OSConvertTumblerTimeStringToHourMinuteString(const char *text, char *out)
{
    DateTimeValue value;
    if (!ReadTypedTime(text, out, &value, ReadHourMinuteText))
        return 1;
    const char *written = OSDateTimeToString(&value, nullptr, ClockFormat(), 32, 0);
    if (!written)
        return 0;
    if (out)
        strcpy(out, written);
    return 1;
}

extern "C" BOOL WINAPI OSConvertTumblerTimeStringToRealString(const char *text, char *out)
{
    if (!out)
        return 1;
    out[0] = 0;
    DateTimeValue value;
    if (!ReadTypedTime(text, out, &value, ReadRealText))
        return 1;
    // Five characters and the terminator.
    OSDateTimeToString(&value, out, ClockFormat(), 32, 6);
    return 1;
}

// Reads a typed time with `read` and writes it as a count of minutes.
static BOOL ToTumblerString(const char *text, char *out, void (*read)(DateTimeValue *, char *))
{
    DateTimeValue value;
    if (ReadTypedTime(text, out, &value, read) && out)
        WriteMinutes(&value, out);
    return 1;
}

extern "C" BOOL WINAPI OSConvertHourMinuteStringToTumblerTimeString(const char *text, char *out)
{
    return ToTumblerString(text, out, ReadHourMinuteText);
}

extern "C" BOOL WINAPI OSConvertRealStringToTumblerTimeString(const char *text, char *out)
{
    return ToTumblerString(text, out, ReadRealText);
}
