// A small host: loads the library, starts it, shows the language and its
// resource library, checks a date, moves it by days, provokes a bad month,
// and prints what the error state recorded. Run it with /LDE for German.
#include <cstdio>
#include "qziso32.h"

static void PrintDate(const char *label, const DateTimeValue &v)
{
    std::printf("%-28s %04u-%02u-%02u %02u:%02u:%02u\n", label, v.year, v.month, v.day, v.hour,
                v.minute, v.second);
}

int main()
{
    if (!IsolateInstanceStart(0, 0)) {
        std::printf("IsolateInstanceStart failed\n");
        return 1;
    }
    OSVERSIONINFOA *version = OSGetVersionInfo();
    std::printf("started on Windows %lu.%lu\n", version->dwMajorVersion, version->dwMinorVersion);

    char language[4] = {}, library[16] = {}, title[128] = {}, ordinal[32] = {};
    OSGet2CharacterLanguageString(language);
    OSBuildResourceString(library);
    LoadStringA(ResourceGetHandle(), 1, title, sizeof title);
    std::printf("%-28s %s (%s)\n", "language:", language, library);
    std::printf("%-28s %s\n", "application title:", title);
    OSSuffix(3, 0, ordinal, sizeof ordinal);
    std::printf("%-28s %s, ", "the third day:", ordinal);
    OSSuffix(3, 1, ordinal, sizeof ordinal);
    std::printf("%s\n", ordinal);

    DateTimeValue date;
    OSSetDateTime(&date, 2000, 2, 28, 9, 30, 0, 0);
    PrintDate("a date:", date);
    std::printf("%-28s %s\n", "valid:", OSIsValidDateTime(&date) ? "yes" : "no");
    OSAdjustDateTimeByDays(&date, 1);
    PrintDate("one day later (leap day):", date);
    OSAdjustDateTimeByDays(&date, 366);
    PrintDate("366 days later:", date);

    DateTimeValue bad;
    OSSetDateTime(&bad, 2000, 13, 1, 0, 0, 0, 0);
    std::printf("%-28s %s\n", "month 13 valid:", OSIsValidDateTime(&bad) ? "yes" : "no");
    OSAdjustDateTimeByDays(&bad, 1);

    const ErrorContext *error = OSErrorGetErrorInfo();
    ResultCode code = OSErrorGetErrorValue();
    std::printf("error recorded:              %d %s\n", code, OSErrorGetRVErrorString(code));
    std::printf("offending value and range:   %lu (%lu..%lu)\n", error->itemValue, error->rangeLow,
                error->rangeHigh);
    OSErrorClearError();
    IsolateInstanceStop(0);
    return code == RV_MonthRange ? 0 : 1;
}
