// Text to DateTimeValue: a forgiving reader that recognises the fields by
// what they look like, in a fixed order of attempts, and fills what is not
// given from the present moment.
#include <cstring>
#include "calendar_internal.h"

DateTimeToken g_dateTimeTokens[kMaxDateTimeTokens];
int g_dateTimeTokenCount;

enum { kTextLimit = 256 };

// Leading blanks and tabs skipped, trailing blanks cut off.
char *TrimDateTimeText(char *text)
{
    return StripTrailingSpaces(SkipWhiteSpace(text));
}

DWORD ReadLeadingNumber(const char *text)
{
    DWORD n = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        n = n * 10 + static_cast<DWORD>(*text - '0');
    return n;
}

// All digits of the text, the rest skipped: "21st" gives 21.
static DWORD ReadEmbeddedNumber(const char *text)
{
    DWORD n = 0;
    for (; *text; ++text)
        if (*text >= '0' && *text <= '9')
            n = n * 10 + static_cast<DWORD>(*text - '0');
    return n;
}

static bool IsSeparator(char c, const char *separators)
{
    return c && strchr(separators, c) != nullptr;
}

void TokeniseDateTimeText(char *text, const char *separators)
{
    memset(g_dateTimeTokens, 0, sizeof g_dateTimeTokens);
    g_dateTimeTokenCount = 0;
    char *c = text;
    while (*c && g_dateTimeTokenCount < kMaxDateTimeTokens) {
        while (IsSeparator(*c, separators))
            ++c;
        if (!*c)
            break;
        char *start = c;
        while (*c && !IsSeparator(*c, separators))
            ++c;
        // A token longer than its entry is cut to the entry.
        size_t length = static_cast<size_t>(c - start);
        if (length > sizeof g_dateTimeTokens[0].text - 1)
            length = sizeof g_dateTimeTokens[0].text - 1;
        memcpy(g_dateTimeTokens[g_dateTimeTokenCount].text, start, length);
        ++g_dateTimeTokenCount;
    }
}

static bool IsPlainLetter(unsigned char c)
{
    return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z');
}

// The compare users see, by lstrcmpi. Plain ASCII letters and digits weigh
// the same in every locale, so a difference among them settles the answer
// at once; anything else goes to the locale's compare.
static bool SameWord(const char *a, const char *b)
{
    for (const unsigned char *p = reinterpret_cast<const unsigned char *>(a),
                             *q = reinterpret_cast<const unsigned char *>(b);;
         ++p, ++q) {
        if (!*p && !*q)
            return true;
        bool plainP = !*p || IsPlainLetter(*p), plainQ = !*q || IsPlainLetter(*q);
        if (!plainP || !plainQ)
            break;
        if ((*p | 0x20) != (*q | 0x20))
            return false;
    }
    return lstrcmpiA(a, b) == 0;
}

// The date attempts' year rule for one number; `full` is the rule of the
// full attempts, which does not look at the field order.
static bool TakeYear(DateTimeValue *v, DWORD n, LONG presentYear, bool full)
{
    if (full) {
        if (n >= 32 && n < 2101) {
            v->year = static_cast<WORD>(n < 1800 ? n + 1900 : n);
            return true;
        }
        return false;
    }
    if (n > static_cast<DWORD>(presentYear - 1950) && n < 2101) {
        v->year = static_cast<WORD>(n < 1800 ? n + 1900 : n);
        return true;
    }
    LONG order = g_dateTimeIntl.iDate;
    if ((order == 0 || order == 1) && n > 31) {
        v->year = static_cast<WORD>(n < 1800 ? n + 2000 : n);
        return true;
    }
    if (order >= 2) {
        v->year = static_cast<WORD>(n < 1800 ? n + 2000 : n);
        return true;
    }
    return false;
}

static void TakeDate(DateTimeValue *v, DateTimeKnownFields *known, const DateTimeValue &date)
{
    v->year = date.year;
    v->month = date.month;
    v->day = date.day;
    known->year = known->month = known->day = 1;
}

// Date attempts 1 to 3: the year, month names, and day words.
static void ParseDateWords(DateTimeValue *v, DateTimeKnownFields *known, const DateTimeValue &today,
                           bool full)
{
    const DateTimeNames &names = g_dateTimeNames;
    const int count = g_dateTimeTokenCount;
    if (!known->year) {
        for (int i = 0; i < count; ++i) {
            DateTimeToken &token = g_dateTimeTokens[i];
            if (token.used)
                continue;
            if (TakeYear(v, ReadLeadingNumber(token.text), today.year, full)) {
                token.used = 1;
                known->year = 1;
                break;
            }
        }
    }
    for (int i = 0; i < count; ++i) {
        DateTimeToken &token = g_dateTimeTokens[i];
        if (token.used)
            continue;
        for (int m = 0; m < 12; ++m) {
            if (SameWord(token.text, names.longMonth[m]) || SameWord(token.text, names.shortMonth[m]) ||
                SameWord(token.text, names.monthFormThree[m])) {
                v->month = static_cast<BYTE>(m + 1);
                known->month = 1;
                token.used = 1;
                break;
            }
        }
    }
    for (int i = 0; i < count; ++i) {
        DateTimeToken &token = g_dateTimeTokens[i];
        if (token.used)
            continue;
        bool dayName = false;
        for (int d = 0; d < 7 && !dayName; ++d)
            dayName = SameWord(token.text, names.longDay[d]) || SameWord(token.text, names.shortDay[d]);
        if (dayName) {
            token.used = 1;
            continue;
        }
        for (int k = 0; k < 31; ++k) {
            if (strstr(token.text, names.ordinal[k])) {
                DWORD n = ReadEmbeddedNumber(token.text);
                if (n) {
                    v->day = static_cast<BYTE>(n);
                    known->day = 1;
                }
                token.used = 1;
                break;
            }
        }
        if (token.used)
            continue;
        if (SameWord(token.text, names.wordToday)) {
            TakeDate(v, known, today);
            token.used = 1;
        } else if (SameWord(token.text, names.wordTomorrow) || SameWord(token.text, names.wordYesterday)) {
            DateTimeValue date = today;
            OSAdjustDateTimeByDays(&date, SameWord(token.text, names.wordTomorrow) ? 1 : -1);
            TakeDate(v, known, date);
            token.used = 1;
        }
    }
}

static bool IsYearLetter(char c) { return c == 'y' || c == 'Y'; }

// Date attempt 4: the token at the year's place in the short date format.
static void ParseYearByPosition(DateTimeValue *v, DateTimeKnownFields *known, LONG presentYear)
{
    if (known->year || known->month || known->day)
        return;
    const char *format = g_dateTimeFormats.shortDate;
    const int count = g_dateTimeTokenCount;
    int position = 2;
    if (count == 0)
        position = 0;
    else if (count == 1)
        position = IsYearLetter(format[0]) ? 0 : 1;
    else if (count == 2)
        position = IsYearLetter(format[0]) ? 0 : (strlen(format) > 3 && IsYearLetter(format[3])) ? 1 : 2;
    // A place past the last token holds no text.
    if (position >= count)
        return;
    DateTimeToken &token = g_dateTimeTokens[position];
    if (token.text[0] < '0' || token.text[0] > '9')
        return;
    DWORD n = ReadLeadingNumber(token.text);
    v->year = static_cast<WORD>(n + 2000 <= static_cast<DWORD>(presentYear) + 50 ? n + 2000 : n + 1900);
    known->year = 1;
    token.used = 1;
}

void ParseNumberTokens(DateTimeValue *v, DateTimeKnownFields *known, bool import)
{
    if (known->month && known->day)
        return;
    int first = -1, second = -1;
    for (int i = 0; i < g_dateTimeTokenCount && second < 0; ++i) {
        if (g_dateTimeTokens[i].used)
            continue;
        if (first < 0)
            first = i;
        else
            second = i;
    }
    if (first < 0)
        return;
    DWORD a = ReadLeadingNumber(g_dateTimeTokens[first].text);
    g_dateTimeTokens[first].used = 1;
    if (second < 0) {
        if (a <= 31) {
            v->day = static_cast<BYTE>(a);
            known->day = 1;
        }
        return;
    }
    DWORD b = ReadLeadingNumber(g_dateTimeTokens[second].text);
    g_dateTimeTokens[second].used = 1;
    DWORD month, day;
    if (a <= 12 && b > 12) {
        month = a, day = b;
    } else if (a > 12 && b <= 12) {
        month = b, day = a;
    } else if (import && known->year && first != 0) {
        // Imported text starts with its year: year, month, day.
        month = a, day = b;
    } else if (g_dateTimeIntl.iDate == 0) {
        month = a, day = b;
    } else if (g_dateTimeIntl.iDate == 1) {
        month = b, day = a;
    } else {
        const char *format = g_dateTimeFormats.shortDate;
        const char *field = strpbrk(format, "dM");
        if (field && *field == 'd')
            month = b, day = a;
        else
            month = a, day = b;
    }
    v->month = static_cast<BYTE>(month);
    v->day = static_cast<BYTE>(day);
    known->month = known->day = 1;
}

// Upper-case copy of `text` into `to` of 64 bytes.
static void UpperCopy(char *to, const char *text)
{
    lstrcpynA(to, text, 64);
    CharUpperBuffA(to, static_cast<DWORD>(strlen(to)));
}

// The pass over all tokens for the morning and afternoon texts.
static void ApplyMarkers(DateTimeValue *v, const char *morning, const char *afternoon)
{
    for (int i = 0; i < g_dateTimeTokenCount; ++i) {
        DateTimeToken &token = g_dateTimeTokens[i];
        char upper[64];
        UpperCopy(upper, token.text);
        if (strstr(upper, morning)) {
            if (v->hour == 12)
                v->hour = 0;
            token.used = 1;
        }
        if (strstr(upper, afternoon)) {
            if (v->hour != 12)
                v->hour = static_cast<BYTE>(v->hour + 12);
            token.used = 1;
        }
    }
}

// Splits a token at the time separator's characters into hour, minute, second.
static void ReadClockParts(DateTimeValue *v, const char *text, const char *separator)
{
    char copy[32];
    lstrcpynA(copy, text, sizeof copy);
    BYTE *fields[3] = {&v->hour, &v->minute, &v->second};
    int part = 0;
    char *c = copy;
    while (*c && part < 3) {
        while (IsSeparator(*c, separator))
            ++c;
        if (!*c)
            break;
        *fields[part++] = static_cast<BYTE>(ReadLeadingNumber(c));
        while (*c && !IsSeparator(*c, separator))
            ++c;
    }
}

void ParseTimeTokens(DateTimeValue *v, DateTimeKnownFields *known, bool full)
{
    if (known->hour)
        return;
    const DateTimeIntlSettings &intl = g_dateTimeIntl;
    const DateTimeNames &names = g_dateTimeNames;
    // The clock markers: the resource's for 24 hours, the settings' for 12.
    char morning[64], afternoon[64];
    UpperCopy(morning, intl.iTime ? g_dateTimeFormats.resourceMorning : intl.s1159);
    UpperCopy(afternoon, intl.iTime ? g_dateTimeFormats.resourceAfternoon : intl.s2359);
    int markerLetters = 0;
    for (const char *c = g_dateTimeFormats.timeFormat; *c; ++c)
        markerLetters += *c == 't';
    if (markerLetters == 1) {
        morning[morning[0] ? 1 : 0] = 0;
        afternoon[afternoon[0] ? 1 : 0] = 0;
    }
    for (int i = 0; i < g_dateTimeTokenCount; ++i) {
        DateTimeToken &token = g_dateTimeTokens[i];
        if (token.used)
            continue;
        if (intl.sTime[0] && strstr(token.text, intl.sTime)) {
            ReadClockParts(v, token.text, intl.sTime);
            known->hour = known->minute = known->second = 1;
            token.used = 1;
        } else if (!full) {
            token.used = 1;
            if (!known->hour) {
                v->hour = static_cast<BYTE>(ReadLeadingNumber(token.text));
                known->hour = 1;
            }
        }
        DateTimeValue now;
        if (SameWord(token.text, names.wordNow) && OSGetDateTime(&now)) {
            v->hour = now.hour, v->minute = now.minute, v->second = now.second;
            known->hour = known->minute = known->second = 1;
            token.used = 1;
        } else if (SameWord(token.text, names.wordMidday)) {
            v->hour = 12, v->minute = 0, v->second = 0;
            known->hour = known->minute = known->second = 1;
            token.used = 1;
        }
        ApplyMarkers(v, morning, afternoon);
    }
}

void FillUnknownFields(DateTimeValue *v, const DateTimeKnownFields *known, const DateTimeValue *today)
{
    if (!known->year)
        v->year = today->year;
    if (!known->month)
        v->month = today->month;
    if (!known->day)
        v->day = today->day;
    if (!known->hour)
        v->hour = 0;
    if (!known->minute)
        v->minute = 0;
    if (!known->second)
        v->second = 0;
}

enum class ParseKind { Date, TimeBias, Complete, Import };

static BOOL ParseDateTimeText(DateTimeValue *out, const char *text, ParseKind kind)
{
    if (!out) {
        OSErrorSetErrorInfo(RV_BadParms, "DateTimeValue");
        return 0;
    }
    memset(out, 0, sizeof *out);
    DateTimeKnownFields known = {};
    char buffer[kTextLimit] = {};
    if (text)
        lstrcpynA(buffer, text, kind == ParseKind::Import ? kTextLimit : kTextLimit);
    char *start = buffer;
    const bool trim = kind == ParseKind::Date || kind == ParseKind::TimeBias;
    if (trim) {
        start = TrimDateTimeText(buffer);
        if (!*start) {
            OSGetDateTime(out);
            return OSIsValidDateTime(out);
        }
    }
    DateTimeValue today;
    if (!OSGetDateTime(&today))
        return 0;
    char separators[8] = " \t";
    size_t used = 2;
    if (kind != ParseKind::TimeBias && g_dateTimeIntl.sDate[0])
        separators[used++] = g_dateTimeIntl.sDate[0];
    if (kind == ParseKind::Import)
        separators[used++] = '-';
    separators[used] = 0;
    TokeniseDateTimeText(start, separators);

    switch (kind) {
    case ParseKind::Date:
        ParseDateWords(out, &known, today, false);
        ParseYearByPosition(out, &known, today.year);
        ParseNumberTokens(out, &known, false);
        break;
    case ParseKind::TimeBias:
        ParseTimeTokens(out, &known, false);
        ParseNumberTokens(out, &known, false);
        break;
    case ParseKind::Complete:
    case ParseKind::Import:
        ParseDateWords(out, &known, today, true);
        ParseTimeTokens(out, &known, true);
        ParseNumberTokens(out, &known, kind == ParseKind::Import);
        break;
    }
    if (kind == ParseKind::Import)
        return 1;
    FillUnknownFields(out, &known, &today);
    return OSIsValidDateTime(out);
}

extern "C" BOOL WINAPI OSStringToDateTime(DateTimeValue *out, const char *text)
{
    return ParseDateTimeText(out, text, ParseKind::Date);
}

extern "C" BOOL WINAPI OSStringToDateTimeTimeBias(DateTimeValue *out, const char *text)
{
    return ParseDateTimeText(out, text, ParseKind::TimeBias);
}

extern "C" BOOL WINAPI OSStringToDateTimeComplete(DateTimeValue *out, const char *text)
{
    return ParseDateTimeText(out, text, ParseKind::Complete);
}

extern "C" BOOL WINAPI OSStringToDateTimeForImport(DateTimeValue *out, const char *text)
{
    return ParseDateTimeText(out, text, ParseKind::Import);
}
