// The operating system's regional settings, one small reader each. All live
// under "Control Panel\International" of the current user; the decimal and
// thousands marks and the negative number form fall back on the profile's
// "Intl" section.
#include "settings_internal.h"

namespace {

const char kIntlKey[] = "Control Panel\\International";
const char kIntlSection[] = "Intl";
const char kIntlReportName[] = "WIN.INI";

// Country codes by the system's "iCountry" number; anything else is "**".
struct CountryCode {
    DWORD number;
    const char *code;
};
const CountryCode kCountryCodes[] = {
    {1, "US"},  {2, "CA"},  {31, "NL"}, {33, "FR"}, {34, "ES"},  {39, "IT"},  {44, "GB"},
    {45, "DK"}, {46, "SE"}, {47, "NO"}, {49, "DE"}, {351, "PT"}, {358, "FI"},
};
const char kUnknownCountry[] = "**";

const char *CountryCodeFor(DWORD number)
{
    for (const CountryCode &entry : kCountryCodes)
        if (entry.number == number)
            return entry.code;
    return kUnknownCountry;
}

// Reads `valueName` as text into a buffer of `size` bytes and scans the
// number at its start. The buffer has one byte more than the reader may
// fill, so a value without a terminator still ends.
DWORD ReadIntlNumberText(const char *valueName, const char *defaultText, DWORD size)
{
    char text[12] = {};
    if (size >= sizeof text)
        size = sizeof text - 1;
    OSGetProfileString(kIntlKey, valueName, defaultText, text, size, kIntlReportName, 0);
    DWORD number = 0;
    AtoI(text, &number);
    return number;
}

// The first character of a mark kept in the key or the profile; one
// character from the profile counts as nothing found.
BYTE ReadIntlMark(const char *valueName, BYTE fallback)
{
    char text[6] = {};
    if (!GetIntlProfileString(kIntlKey, kIntlSection, valueName, "s", text, sizeof text - 1, 0))
        return fallback;
    return static_cast<BYTE>(text[0]);
}

}  // namespace

extern "C" BYTE WINAPI OSGetSeparator(void)
{
    // One buffer for the process: the answer is the same for every caller.
    static char s_separator[6];
    OSGetProfileString(kIntlKey, "sList", ",", s_separator, sizeof s_separator - 1,
                       kIntlReportName, 0);
    return static_cast<BYTE>(s_separator[0]);
}

extern "C" BOOL WINAPI OSGetLanguage(char *buffer, DWORD size)
{
    OSGetProfileString(kIntlKey, "sLanguage", "en", buffer, size, kIntlReportName, 0);
    return 1;
}

extern "C" BOOL WINAPI OSGetCountry(char *buffer, LONG size)
{
    if (!buffer) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kIntlKey, 0, kSettingsReadAccess, &key) != ERROR_SUCCESS) {
        OSErrorSetErrorInfo(RV_ReadFailure, kIntlReportName);
        return 0;
    }
    // Four bytes: a number of four digits and more does not fit, and fails.
    char text[5] = {};
    DWORD textSize = 4;
    LONG status = RegQueryValueExA(key, "iCountry", nullptr, nullptr, reinterpret_cast<BYTE *>(text),
                                   &textSize);
    RegCloseKey(key);
    if (status != ERROR_SUCCESS)
        return 0;
    DWORD number = 0;
    AtoI(text, &number);
    if (size > 0)
        lstrcpynA(buffer, CountryCodeFor(number), size);
    return 1;
}

// Reads the language name, not a country value, so the answer is usually 0:
// that is how hosts have always seen it.
extern "C" LONG WINAPI OSGetCountryCode(void)
{
    return static_cast<LONG>(ReadIntlNumberText("sLanguage", "en", 4));
}

extern "C" UINT WINAPI OSGetCodePage(void)
{
    return GetACP();
}

// 0 is metric, 1 is US measure.
extern "C" LONG WINAPI OSGetMeasurement(void)
{
    return static_cast<LONG>(ReadIntlNumberText("iMeasure", "1", 10));
}

extern "C" BYTE WINAPI OSGetDecimal(void)
{
    return ReadIntlMark("sDecimal", '.');
}

extern "C" BYTE WINAPI OSGetThousand(void)
{
    return ReadIntlMark("sThousand", ',');
}

extern "C" LONG WINAPI OSGetNegNumber(void)
{
    return GetIntlProfileInt(kIntlKey, kIntlSection, "iNegNumber", 1, 0);
}
