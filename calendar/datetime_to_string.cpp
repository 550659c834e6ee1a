// DateTimeValue to text: the format language of the system's date formats,
// a mode that builds the format from the conventions and a few flags, and
// single month and day names.
#include <cstring>
#include "calendar_internal.h"
#include "../core/module_globals.h"

static char g_dateTimeText[200];

// What the flags ask of the walk.
struct WalkRules {
    bool seconds;     // show seconds
    bool markersOnly; // only the morning or afternoon text
    bool noMarkers;   // no morning or afternoon text
};

// The output of the walk: write position and room, the room counting the
// place of the terminator, which is always kept free.
struct Output {
    char *at;
    DWORD room;
    DWORD lastLength; // length of the previous directive's output
};

// Writes up to `length` characters of `text`, cut to leave the terminator's place.
static void PutText(Output *out, const char *text, size_t length)
{
    if (out->room <= 1) {
        out->lastLength = 0;
        return;
    }
    if (length > out->room - 1)
        length = out->room - 1;
    memcpy(out->at, text, length);
    out->at += length;
    out->room -= static_cast<DWORD>(length);
    out->lastLength = static_cast<DWORD>(length);
}

static void PutString(Output *out, const char *text) { PutText(out, text, strlen(text)); }

// Decimal number, as "%d" (minDigits 1) or "%.2d" (minDigits 2) would write it.
// Numbers are formatted here rather than through the counted formatter,
// which writes the same digits.
static void PutNumber(Output *out, long value, int minDigits)
{
    char digits[16];
    int n = 0;
    bool negative = value < 0;
    unsigned long magnitude = negative ? 0ul - static_cast<unsigned long>(value) : value;
    do {
        digits[n++] = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude);
    while (n < minDigits)
        digits[n++] = '0';
    char text[17];
    int length = 0;
    if (negative)
        text[length++] = '-';
    while (n)
        text[length++] = digits[--n];
    PutText(out, text, length);
}

// Moves the write position on by the previous directive's length without
// writing, as the historical walk does; never past the room.
static void SkipLast(Output *out)
{
    DWORD step = out->lastLength;
    if (out->room <= 1)
        step = 0;
    else if (step > out->room - 1)
        step = out->room - 1;
    out->at += step;
    out->room -= step;
}

// Two-digit years: a year more than 50 years from the present is written
// whole, so that no date can be read in the wrong century.
static bool PutShortYear(Output *out, unsigned year)
{
    DateTimeValue now;
    if (!OSGetDateTime(&now))
        return false;
    long distance = static_cast<long>(year) - now.year;
    if (distance > 50 || distance < -50)
        PutNumber(out, year, 2);
    else
        PutNumber(out, year % 100, 2);
    return true;
}

// Writes resource string `id`; false (with the error recorded) if missing.
static bool PutResourceString(Output *out, UINT id)
{
    char *text = LoadStringCopy(g_module.hResourceLibrary, id);
    if (!text)
        return false;
    PutString(out, text);
    LocalFree(text);
    return true;
}

static size_t RunLength(const char *c)
{
    size_t n = 1;
    while (c[n] == c[0])
        ++n;
    return n;
}

// Walks `format`, writing the value. Returns with what was written so far
// when a string cannot be loaded or the present date cannot be had.
static void WalkFormat(const DateTimeValue *v, LONG weekday, const char *format, const WalkRules &rules,
                       Output *out)
{
    const DateTimeIntlSettings &intl = g_dateTimeIntl;
    const DateTimeNames &names = g_dateTimeNames;
    const char *marker = v->hour < 12 ? intl.s1159 : intl.s2359;
    const char *c = format;
    while (*c && out->room > 1) {
        size_t run = RunLength(c);
        switch (*c) {
        case 'd':
            if (run <= 2)
                PutNumber(out, v->day, static_cast<int>(run));
            else
                PutString(out, run == 3 ? names.shortDay[weekday] : names.longDay[weekday]);
            break;
        case 'M':
            if (run <= 2)
                PutNumber(out, v->month, static_cast<int>(run));
            else
                PutString(out, run == 3 ? names.shortMonth[v->month - 1] : names.longMonth[v->month - 1]);
            break;
        case 'y':
            if (run <= 2) {
                if (!PutShortYear(out, v->year))
                    return;
            } else {
                PutNumber(out, v->year, 1);
            }
            break;
        case 'h':
            if (!rules.markersOnly)
                PutNumber(out, v->hour % 12 ? v->hour % 12 : 12, run == 1 ? 1 : 2);
            break;
        case 'H':
            if (!rules.markersOnly)
                PutNumber(out, v->hour, run == 1 ? 1 : 2);
            break;
        case 'm':
            if (run >= 3)
                SkipLast(out);
            else if (!rules.markersOnly)
                PutNumber(out, v->minute, static_cast<int>(run));
            break;
        case 's':
            if (rules.seconds && !rules.markersOnly)
                PutNumber(out, v->second, 2);
            break;
        case 't':
            if (rules.noMarkers)
                break;
            if (run == 1) {
                if (*marker)
                    PutText(out, marker, 1);
                else
                    SkipLast(out);
            } else {
                PutString(out, marker);
            }
            break;
        case 'o':
        case 'z':
        case 'Z': {
            run = 1;
            UINT id = *c == 'o' ? kStringOrdinalBase + v->day : *c == 'z' ? kStringHourUnit : kStringMinuteUnit;
            if (!PutResourceString(out, id))
                return;
            break;
        }
        case '/': {
            run = 1;
            size_t length = strlen(intl.sDate);
            if (length && out->room > length)
                PutText(out, intl.sDate, length);
            break;
        }
        case ':': {
            run = 1;
            size_t length = strlen(intl.sTime);
            if (length && out->room > length && !rules.markersOnly && (rules.seconds || c[1] != 's'))
                PutText(out, intl.sTime, length);
            break;
        }
        case '"':
        case '\'': {
            // Quoted text stands as it is, up to the matching quote.
            const char quote = *c;
            const char *end = c + 1;
            while (*end && *end != quote)
                ++end;
            if (!rules.markersOnly)
                PutText(out, c + 1, static_cast<size_t>(end - c - 1));
            run = static_cast<size_t>(end - c) + (*end ? 1 : 0);
            break;
        }
        default:
            run = 1;
            PutText(out, c, 1);
            break;
        }
        c += run;
    }
}

// Copies `format` replacing each occurrence of `actual` by `generic`, so that
// the walk treats every separator alike.
static void CopyWithGenericSeparator(char *to, size_t room, const char *format, const char *actual,
                                     char generic)
{
    size_t actualLength = strlen(actual);
    bool replace = actualLength && !(actualLength == 1 && actual[0] == generic);
    size_t n = 0;
    for (const char *c = format; *c && n + 1 < room;) {
        if (replace && strncmp(c, actual, actualLength) == 0) {
            to[n++] = generic;
            c += actualLength;
        } else {
            to[n++] = *c++;
        }
    }
    to[n] = 0;
}

// Builds the format the flags ask for from the conventions.
static void BuildFormat(char *format, size_t room, DWORD flags)
{
    const DateTimeFormats &formats = g_dateTimeFormats;
    const bool time = (flags & (16 | 32 | 64 | 128)) != 0;
    format[0] = 0;
    size_t used = 0;
    if (flags & 1) {
        CopyWithGenericSeparator(format, room, formats.longDate, "", '/');
    } else if (flags & 2) {
        CopyWithGenericSeparator(format, room, formats.shortDate, g_dateTimeIntl.sDate, '/');
    } else {
        if (time) {
            if (strchr(g_dateTimeIntl.sTime, '\''))
                CopyWithGenericSeparator(format, room, formats.timeFormat, "", ':');
            else
                CopyWithGenericSeparator(format, room, formats.timeFormat, g_dateTimeIntl.sTime, ':');
        }
        return;
    }
    if (time) {
        used = strlen(format);
        if (used + 1 < room) {
            format[used++] = ' ';
            CopyWithGenericSeparator(format + used, room - used, formats.timeFormat,
                                     g_dateTimeIntl.sTime, ':');
        }
    }
}

extern "C" char *WINAPI OSDateTimeToString(const DateTimeValue *value, char *buffer, const char *format,
                                           DWORD flags, DWORD bufferSize)
{
    if (!CheckDateTime(value))
        return 0;
    if (!buffer) {
        buffer = g_dateTimeText;
        bufferSize = sizeof g_dateTimeText;
    }
    if (IsNoDateLow(value) || IsNoDateHigh(value)) {
        if (bufferSize)
            buffer[0] = 0;
        return buffer;
    }
    LONG weekday = 0;
    if (!OSDayOfWeek(value, &weekday, 0))
        return 0;
    WalkRules rules = {true, false, false};
    char built[sizeof g_dateTimeFormats.longDate + 1 + sizeof g_dateTimeFormats.timeFormat + 1];
    if (!format) {
        BuildFormat(built, sizeof built, flags);
        format = built;
        rules.seconds = (flags & 16) != 0;
        rules.markersOnly = (flags & 64) != 0;
        rules.noMarkers = (flags & 128) != 0;
    }
    Output out = {buffer, bufferSize, 0};
    if (bufferSize == 0)
        return buffer;
    WalkFormat(value, weekday, format, rules, &out);
    *out.at = 0;
    return buffer;
}

// Copies `text` into the caller's buffer, cut and terminated.
static void CopyName(char *buffer, DWORD bufferSize, const char *text)
{
    if (!buffer || !bufferSize)
        return;
    lstrcpynA(buffer, text, static_cast<int>(bufferSize));
}

static void CopyNumber(char *buffer, DWORD bufferSize, LONG number, int minDigits)
{
    if (!buffer || !bufferSize)
        return;
    Output out = {buffer, bufferSize, 0};
    PutNumber(&out, number, minDigits);
    *out.at = 0;
}

extern "C" BOOL WINAPI OSMonthToString(LONG month, DWORD flags, char *buffer, DWORD bufferSize)
{
    if (month < 1 || month > 12) {
        OSErrorSetErrorInfo(RV_MonthRange, month, 1, 12);
        return 1;
    }
    // Each test overwrites the buffer: the last that matches wins.
    if (flags & 1)
        CopyNumber(buffer, bufferSize, month, 1);
    if (flags & 2)
        CopyNumber(buffer, bufferSize, month, 2);
    if ((flags & 3) == 3)
        CopyName(buffer, bufferSize, g_dateTimeNames.shortMonth[month - 1]);
    if (flags & 4)
        CopyName(buffer, bufferSize, g_dateTimeNames.longMonth[month - 1]);
    return 1;
}

extern "C" BOOL WINAPI OSDayToString(LONG weekday, DWORD flags, char *buffer, DWORD bufferSize)
{
    LONG day = weekday % 7;
    if (day < 0)
        day += 7;
    if (flags & 1)
        CopyName(buffer, bufferSize, g_dateTimeNames.dayFormFour[day]);
    if (flags & 2)
        CopyName(buffer, bufferSize, g_dateTimeNames.dayFormThree[day]);
    if ((flags & 3) == 3)
        CopyName(buffer, bufferSize, g_dateTimeNames.shortDay[day]);
    if (flags & 4)
        CopyName(buffer, bufferSize, g_dateTimeNames.longDay[day]);
    return 1;
}
