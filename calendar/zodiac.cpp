// Signs of the zodiac: the sign of a date, its name and date range, the
// sign of a name, and the character that draws it.
#include <cstring>
#include "calendar_internal.h"
#include "../core/module_globals.h"

enum { kZodiacSigns = 12, kNoSign = 12, kZodiacNameBase = 260 };

// The day of its month on which each sign starts; sign 0 starts in March.
static const BYTE kSignStartDay[kZodiacSigns] = {21, 21, 22, 22, 24, 24, 24, 24, 23, 22, 21, 20};

static char g_zodiacText[128];

static unsigned SignStartMonth(unsigned sign) { return (sign + 2) % 12 + 1; }

extern "C" LONG WINAPI OSGetZodiacSign(const DateTimeValue *value)
{
    if (!CheckDateTime(value))
        return kNoSign;
    unsigned i = (value->month + 9u) % 12;
    return value->day >= kSignStartDay[i] ? static_cast<LONG>(i) : static_cast<LONG>((i + 11) % 12);
}

// Appends `text` when it fits with its terminator in `size`.
static bool AppendFits(char *buffer, DWORD size, const char *text)
{
    size_t used = strlen(buffer), length = strlen(text);
    if (used + length > size - 1)
        return false;
    memcpy(buffer + used, text, length + 1);
    return true;
}

extern "C" char *WINAPI OSZodiacToString(LONG sign, char *buffer, LONG mode, DWORD bufferSize)
{
    if (!buffer) {
        buffer = g_zodiacText;
        bufferSize = sizeof g_zodiacText;
    }
    if (sign < 0 || sign >= kZodiacSigns) {
        OSErrorSetErrorInfo(RV_StringNonExistant, kZodiacNameBase + sign);
        return nullptr;
    }
    char *name = LoadStringCopy(g_module.hResourceLibrary, kZodiacNameBase + static_cast<UINT>(sign));
    if (!name)
        return nullptr;
    if (!bufferSize) {
        LocalFree(name);
        return nullptr;
    }
    if (mode == 1) {
        lstrcpynA(buffer, name, static_cast<int>(bufferSize));
        LocalFree(name);
        return buffer;
    }
    DateTimeValue start;
    OSGetDateTime(&start);
    OSSetDateTime(&start, start.year, SignStartMonth(sign), kSignStartDay[sign], 0, 0, 0, 0);
    DateTimeValue end = start;
    OSAdjustDateTime(&end, 0, 1, 0, 0, 0, 0, 0);
    end.day = static_cast<BYTE>(kSignStartDay[(sign + 1) % kZodiacSigns] - 1);

    char date[32];
    OSDateTimeToString(&start, date, "dd MMM", 0, sizeof date);
    char head[160];
    if (mode == 2)
        OScsprintf(head, sizeof head - 1, "%s %s - ", name, date);
    else
        OScsprintf(head, sizeof head - 1, "%s - ", date);
    LocalFree(name);
    lstrcpynA(buffer, head, static_cast<int>(bufferSize));
    OSDateTimeToString(&end, date, "dd MMM", 0, sizeof date);
    // The end date goes on only if it fits; otherwise the start stays.
    return AppendFits(buffer, bufferSize, date) ? buffer : nullptr;
}

extern "C" BOOL WINAPI OSStringToZodiac(const char *text, LONG *sign)
{
    if (!text || !sign) {
        OSErrorSetErrorInfo(RV_BadParms, "OSStringToZodiac");
        return 0;
    }
    for (LONG i = 0; i < kZodiacSigns; ++i) {
        char *name = LoadStringCopy(g_module.hResourceLibrary, kZodiacNameBase + static_cast<UINT>(i));
        if (!name)
            return 0;
        bool same = lstrcmpiA(text, name) == 0;
        LocalFree(name);
        if (same) {
            *sign = i;
            return 1;
        }
    }
    return 0;
}

extern "C" LONG WINAPI OSGetZodiacSymbol(LONG sign) { return sign + 94; }
