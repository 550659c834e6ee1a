// The date and time conventions: read from the system's international
// settings at attach, kept in memory, handed out and written back; and the
// name tables and parser words of the resource library.
#include <cstring>
#include "calendar_internal.h"
#include "../core/module_globals.h"
#include "../settings/settings_internal.h"

const char kIntlKeyPath[] = "Control Panel\\International";
const char kProductIntlKey[] = "Software\\Tarvo\\Kelendrix\\98.0\\International";
static const char kIntlSection[] = "Intl";

DateTimeFormats g_dateTimeFormats;
DateTimeNames g_dateTimeNames;

// Copies `text` into a field of `width` bytes, cut and terminated.
static void CopyField(char *field, size_t width, const char *text)
{
    size_t length = strlen(text);
    if (length > width - 1)
        length = width - 1;
    memcpy(field, text, length);
    field[length] = 0;
}

// Loads resource string `id` into a field; a missing string leaves it empty.
static void LoadField(char *field, int width, UINT id)
{
    field[0] = 0;
    if (LoadStringA(g_module.hResourceLibrary, id, field, width) <= 0)
        field[0] = 0;
}

// Reads a system text value into a field of `width`, with its default.
static void ReadIntlText(const char *valueName, const char *defaultText, char *field, size_t width)
{
    char text[260] = {};
    CopyField(text, sizeof text, defaultText);
    GetIntlProfileString(kIntlKeyPath, kIntlSection, valueName, defaultText, text, sizeof text - 1, 0);
    CopyField(field, width, text);
}

extern "C" BOOL WINAPI OSDateTimeGetWinIniSettings(void)
{
    DateTimeIntlSettings &intl = g_dateTimeIntl;
    DateTimeFormats &formats = g_dateTimeFormats;
    LoadField(formats.resourceMorning, sizeof formats.resourceMorning, 40652);
    LoadField(formats.resourceAfternoon, sizeof formats.resourceAfternoon, 40653);

    intl.iTime = GetIntlProfileInt(kIntlKeyPath, kIntlSection, "iTime", 0, 0);
    ReadIntlText("sTimeFormat", intl.iTime ? "HH:mm:ss" : "h:mm:ss tt", formats.timeFormat,
                 sizeof formats.timeFormat);
    ReadIntlText("sTime", ":", intl.sTime, sizeof intl.sTime);
    // The morning and afternoon texts are never empty: an empty system value
    // falls back on the resource text.
    ReadIntlText("s1159", formats.resourceMorning, intl.s1159, sizeof intl.s1159);
    if (!intl.s1159[0])
        CopyField(intl.s1159, sizeof intl.s1159, formats.resourceMorning);
    ReadIntlText("s2359", formats.resourceAfternoon, intl.s2359, sizeof intl.s2359);
    if (!intl.s2359[0])
        CopyField(intl.s2359, sizeof intl.s2359, formats.resourceAfternoon);
    formats.leadZero = GetIntlProfileInt(kIntlKeyPath, kIntlSection, "iTLZero", 0, 0);
    intl.iDate = GetIntlProfileInt(kIntlKeyPath, kIntlSection, "iDate", 0, 0);

    // Default formats by field order: day first, month first, year first.
    UINT shortId = intl.iDate == 0 ? 50452 : intl.iDate == 1 ? 50450 : 50454;
    char defaultFormat[50];
    LoadField(defaultFormat, sizeof defaultFormat, shortId);
    ReadIntlText("sShortDate", defaultFormat, formats.shortDate, sizeof formats.shortDate);
    LoadField(defaultFormat, sizeof defaultFormat, shortId + 1);
    ReadIntlText("sLongDate", defaultFormat, formats.longDate, sizeof formats.longDate);
    ReadIntlText("sDate", "/", intl.sDate, sizeof intl.sDate);

    int years = 0;
    for (const char *c = formats.shortDate; *c; ++c)
        years += *c == 'y' || *c == 'Y';
    formats.fourDigitYear = years > 2;

    intl.weekStart = OSGetProfileInt(kProductIntlKey, "KeliWeekStartsOn", 0, g_module.settingsName, 0);
    char translation[sizeof intl.codePageTranslation] = {};
    OSGetProfileString(kProductIntlKey, "KelsCodePageTranslation", "0", translation,
                       sizeof translation - 1, g_module.settingsName, 0);
    CopyField(intl.codePageTranslation, sizeof intl.codePageTranslation, translation);
    return 1;
}

extern "C" BOOL WINAPI OSDateTimeGetIntlSettings(DateTimeIntlSettings *out)
{
    if (!out) {
        OSErrorSetErrorInfo(RV_BadParms, "DateTimeIntlSettings");
        return 1;
    }
    *out = g_dateTimeIntl;
    return 1;
}

// Writers of the product's names; a failure is recorded and the value
// stays changed in memory.
static const char *SettingsName() { return g_module.settingsName ? g_module.settingsName : ""; }

static void WriteNumber(const char *keyPath, const char *valueName, LONG value)
{
    OSWriteProfileInt(keyPath, valueName, value, SettingsName(), 0);
}

static void WriteText(const char *keyPath, const char *valueName, const char *text)
{
    OSWriteProfileString(keyPath, valueName, text, SettingsName(), 0);
}

// Stores a text field that differs and writes it under its product name.
static void UpdateText(char *held, const char *given, size_t width, const char *keyPath,
                       const char *valueName)
{
    char cut[260];
    CopyField(cut, width, given);
    if (strcmp(held, cut) == 0)
        return;
    CopyField(held, width, cut);
    WriteText(keyPath, valueName, held);
}

static void UpdateNumber(LONG *held, LONG given, const char *keyPath, const char *valueName)
{
    if (*held == given)
        return;
    *held = given;
    WriteNumber(keyPath, valueName, given);
}

extern "C" BOOL WINAPI OSDateTimeSetIntlSettings(const DateTimeIntlSettings *settings)
{
    if (!settings) {
        OSErrorSetErrorInfo(RV_BadParms, "DateTimeIntlSettings");
        return 1;
    }
    // The given texts may lack terminators within their widths.
    DateTimeIntlSettings given = *settings;
    given.sTime[sizeof given.sTime - 1] = 0;
    given.s1159[sizeof given.s1159 - 1] = 0;
    given.s2359[sizeof given.s2359 - 1] = 0;
    given.sDate[sizeof given.sDate - 1] = 0;
    given.codePageTranslation[sizeof given.codePageTranslation - 1] = 0;
    DateTimeIntlSettings &held = g_dateTimeIntl;
    UpdateNumber(&held.iTime, given.iTime, kIntlKeyPath, "KeliTime");
    UpdateText(held.sTime, given.sTime, sizeof held.sTime, kIntlKeyPath, "KelsTime");
    UpdateText(held.s1159, given.s1159, sizeof held.s1159, kIntlKeyPath, "Kels1159");
    UpdateText(held.s2359, given.s2359, sizeof held.s2359, kIntlKeyPath, "Kels2359");
    UpdateText(held.sDate, given.sDate, sizeof held.sDate, kIntlKeyPath, "KelsDate");
    UpdateNumber(&held.iDate, given.iDate, kIntlKeyPath, "KeliDate");
    UpdateNumber(&held.weekStart, given.weekStart, kProductIntlKey, "KeliWeekStartsOn");
    UpdateText(held.codePageTranslation, given.codePageTranslation, sizeof held.codePageTranslation,
               kProductIntlKey, "KelsCodePageTranslation");
    OSDateTimeSetWeekStart(given.weekStart);
    return 1;
}

extern "C" BOOL WINAPI OSDateTimeGetDateFormat(char *buffer, DWORD flags, DWORD bufferSize)
{
    const char *format = (flags & 2) ? g_dateTimeFormats.shortDate : g_dateTimeFormats.longDate;
    if (!buffer)
        return 1;
    // At most the buffer size, with no terminator if that cuts the text.
    size_t count = strlen(format) + 1;
    memcpy(buffer, format, count < bufferSize ? count : bufferSize);
    return 1;
}

extern "C" BOOL WINAPI OSDateTimeGetTimeFormat(char *buffer, DWORD flags, DWORD bufferSize)
{
    if (!buffer || !bufferSize)
        return 1;
    const char *format = g_dateTimeFormats.timeFormat;
    if (flags & 16) {
        CopyField(buffer, bufferSize, format);
        return 1;
    }
    const char *separator = g_dateTimeIntl.sTime;
    size_t separatorLength = strlen(separator);
    DWORD written = 0;
    for (const char *c = format; *c && written < bufferSize - 1; ++c) {
        if (*c == 's') {
            // Take back a separator written just before the seconds.
            if (separatorLength && static_cast<size_t>(c - format) >= separatorLength &&
                memcmp(c - separatorLength, separator, separatorLength) == 0 &&
                written >= separatorLength &&
                memcmp(buffer + written - separatorLength, separator, separatorLength) == 0)
                written -= static_cast<DWORD>(separatorLength);
            continue;
        }
        if ((flags & 64) && *c != 't')
            continue;
        if ((flags & 128) && *c == 't')
            continue;
        buffer[written++] = *c;
    }
    buffer[written] = 0;
    return 1;
}

extern "C" LONG WINAPI OSDateTimeGetWeekStart(void) { return g_dateTimeIntl.weekStart; }

extern "C" LONG WINAPI OSDateTimeSetWeekStart(LONG day)
{
    g_dateTimeIntl.weekStart = day;
    return day;
}

extern "C" LONG WINAPI OSDateTimeGetLeadZero(void) { return g_dateTimeFormats.leadZero; }

static bool LoadName(char **slot, UINT id)
{
    *slot = LoadStringCopy(g_module.hResourceLibrary, id);
    return *slot != nullptr;
}

BOOL DateTimeStartUp(HMODULE)
{
    OSDateTimeGetWinIniSettings();
    DateTimeNames &names = g_dateTimeNames;
    if (!LoadName(&names.wordNow, 400) || !LoadName(&names.wordMidday, 404) ||
        !LoadName(&names.wordToday, 401) || !LoadName(&names.wordTomorrow, 402) ||
        !LoadName(&names.wordYesterday, 403))
        return FALSE;
    for (UINT i = 0; i < 31; ++i) {
        if (i < 7 && (!LoadName(&names.longDay[i], 100 + i) || !LoadName(&names.shortDay[i], 110 + i) ||
                      !LoadName(&names.dayFormThree[i], 120 + i) ||
                      !LoadName(&names.dayFormFour[i], 130 + i)))
            return FALSE;
        if (i < 12 && (!LoadName(&names.longMonth[i], 200 + i) ||
                       !LoadName(&names.shortMonth[i], 220 + i) ||
                       !LoadName(&names.monthFormThree[i], 240 + i)))
            return FALSE;
        if (!LoadName(&names.ordinal[i], kStringOrdinalBase + 1 + i))
            return FALSE;
    }
    return TRUE;
}
