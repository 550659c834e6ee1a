// The calendar against its platform peers, measured in the same run:
// formatting, parsing and day arithmetic. Ratios above 1 mean the library
// is faster.
#include <windows.h>
#include <oleauto.h>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>
#include "qziso32.h"

namespace {

double Seconds()
{
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

template <typename F> double Time(F work)
{
    double best = 1e9;
    for (int round = 0; round < 3; ++round) {
        double start = Seconds();
        work();
        double spent = Seconds() - start;
        if (spent < best)
            best = spent;
    }
    return best;
}

volatile unsigned g_sink;

void Report(const char *what, double ours, double theirs, unsigned count)
{
    std::printf("%-44s ours %8.1f ns  platform %8.1f ns  ratio %.2fx\n", what, ours * 1e9 / count,
                theirs * 1e9 / count, theirs / ours);
}

} // namespace

int main()
{
    const unsigned count = 20000;
    std::vector<DateTimeValue> values(count);
    std::vector<SYSTEMTIME> times(count);
    for (unsigned i = 0; i < count; ++i) {
        DateTimeValue &v = values[i];
        OSSetDateTime(&v, 1800, 1, 1, i % 24, (i * 7) % 60, (i * 13) % 60, 0);
        OSAdjustDateTimeByDays(&v, static_cast<LONG>((i * 7919u) % 110303));
        SYSTEMTIME &st = times[i];
        memset(&st, 0, sizeof st);
        st.wYear = v.year, st.wMonth = v.month, st.wDay = v.day;
        st.wHour = v.hour, st.wMinute = v.minute, st.wSecond = v.second;
    }
    const LCID enUS = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);
    const char *datePicture = "dddd, MMMM d, yyyy", *timePicture = "h:mm:ss tt";
    const std::string format = std::string(datePicture) + " " + timePicture;

    // Both sides must produce the same text.
    for (unsigned i = 0; i < count; i += 97) {
        char ours[200], date[100], time[100];
        OSDateTimeToString(&values[i], ours, format.c_str(), 0, sizeof ours);
        GetDateFormatA(enUS, 0, &times[i], datePicture, date, sizeof date);
        GetTimeFormatA(enUS, 0, &times[i], timePicture, time, sizeof time);
        if (std::string(date) + " " + time != ours) {
            std::printf("texts differ: %s | %s %s\n", ours, date, time);
            return 1;
        }
    }
    double ours = Time([&] {
        char text[200];
        for (unsigned i = 0; i < count; ++i)
            g_sink += OSDateTimeToString(&values[i], text, format.c_str(), 0, sizeof text)[0];
    });
    double theirs = Time([&] {
        char date[100], time[100];
        for (unsigned i = 0; i < count; ++i) {
            GetDateFormatA(enUS, 0, &times[i], datePicture, date, sizeof date);
            GetTimeFormatA(enUS, 0, &times[i], timePicture, time, sizeof time);
            g_sink += date[0] + time[0];
        }
    });
    Report("OSDateTimeToString vs GetDate+GetTimeFormatA", ours, theirs, count);

    // Parsing the same short texts.
    std::vector<std::string> texts(count);
    std::vector<std::wstring> wide(count);
    for (unsigned i = 0; i < count; ++i) {
        char text[64];
        OSDateTimeToString(&values[i], text, "M/d/yyyy", 0, sizeof text);
        texts[i] = text;
        wide[i] = std::wstring(texts[i].begin(), texts[i].end());
    }
    ours = Time([&] {
        DateTimeValue v;
        for (unsigned i = 0; i < count; ++i)
            g_sink += OSStringToDateTime(&v, texts[i].c_str()) + v.day;
    });
    theirs = Time([&] {
        DATE date;
        for (unsigned i = 0; i < count; ++i) {
            g_sink += VarDateFromStr(const_cast<OLECHAR *>(wide[i].c_str()), enUS, 0, &date) == S_OK;
        }
    });
    Report("OSStringToDateTime vs VarDateFromStr", ours, theirs, count);

    // Day arithmetic: a move by days, and a day count.
    ours = Time([&] {
        for (unsigned i = 0; i < count; ++i) {
            DateTimeValue v = values[i];
            OSAdjustDateTimeByDays(&v, 1000);
            g_sink += v.day;
        }
    });
    theirs = Time([&] {
        for (unsigned i = 0; i < count; ++i) {
            FILETIME ft;
            SystemTimeToFileTime(&times[i], &ft);
            ULARGE_INTEGER n;
            n.LowPart = ft.dwLowDateTime, n.HighPart = ft.dwHighDateTime;
            n.QuadPart += 1000ull * 864000000000ull;
            ft.dwLowDateTime = n.LowPart, ft.dwHighDateTime = n.HighPart;
            SYSTEMTIME st;
            FileTimeToSystemTime(&ft, &st);
            g_sink += st.wDay;
        }
    });
    Report("OSAdjustDateTimeByDays vs FileTime round trip", ours, theirs, count);
    // The farthest moves, some 5.8 million years either way, against the same
    // platform round trip by 1000 days (the platform has no such range).
    const double nearPeer = theirs;
    ours = Time([&] {
        for (unsigned i = 0; i < count; ++i) {
            DateTimeValue v = values[i];
            OSAdjustDateTime(&v, 0, 0, i % 2 ? 2147483647 : -2147483647 - 1, 0, 0, 0, 0);
            g_sink += v.day;
        }
    });
    Report("OSAdjustDateTime by +-2^31 days vs FileTime 1000", ours, nearPeer, count);
    ours = Time([&] {
        for (unsigned i = 0; i < count; ++i)
            g_sink += OSDaysSince01011800(values[i].year, values[i].month, values[i].day);
    });
    theirs = Time([&] {
        for (unsigned i = 0; i < count; ++i) {
            FILETIME ft;
            SystemTimeToFileTime(&times[i], &ft);
            g_sink += static_cast<unsigned>((((ULONGLONG)ft.dwHighDateTime << 32) | ft.dwLowDateTime) /
                                            864000000000ull);
        }
    });
    Report("OSDaysSince01011800 vs SystemTimeToFileTime", ours, theirs, count);
    return 0;
}
