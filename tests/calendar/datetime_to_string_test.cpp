// DateTimeValue to text: the format language, against the platform's
// formatter for the pictures both know, and the flags mode.
#include <cstring>
#include <random>
#include "intl_conventions.h"

namespace {

class DateTimeToString : public ErrorStateTest {};

std::string Format(const DateTimeValue &v, const char *format, DWORD flags = 0)
{
    char text[200];
    const char *result = OSDateTimeToString(&v, text, format, flags, sizeof text);
    return result ? result : "<null>";
}

std::string Platform(const DateTimeValue &v, const char *datePicture, const char *timePicture)
{
    SYSTEMTIME st = {};
    st.wYear = v.year, st.wMonth = v.month, st.wDay = v.day;
    st.wHour = v.hour, st.wMinute = v.minute, st.wSecond = v.second;
    const LCID enUS = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);
    char date[200] = {}, time[200] = {};
    if (!GetDateFormatA(enUS, 0, &st, datePicture, date, sizeof date))
        return "<date failed>";
    if (!GetTimeFormatA(enUS, 0, &st, timePicture, time, sizeof time))
        return "<time failed>";
    return std::string(date) + " " + time;
}

TEST_F(DateTimeToString, MatchesThePlatformFormatterOverTheCalendar)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    struct Picture {
        const char *date, *time;
    };
    // Pictures the two formatters share; the two-digit year only within
    // 50 years of today, below.
    const Picture pictures[] = {
        {"d/M/yyyy", "h:mm:ss tt"},
        {"dd/MM/yyyy", "hh:mm:ss t"},
        {"ddd, MMM d yyyy", "H:mm:ss"},
        {"dddd, MMMM dd, yyyy", "HH:mm:ss"},
        {"'Day' d 'of' MMMM yyyy", "h 'h' mm 'min'"},
        {"yyyy-MM-dd (dddd)", "HH'h'mm tt"},
    };
    std::mt19937 random(1800);
    DateTimeValue now;
    OSGetDateTime(&now);
    int compared = 0;
    const int steps = MonkeySteps(12000, 3000);
    for (int i = 0; i < steps; ++i) {
        DateTimeValue v = MakeDate(1800, 1, 1, i % 24, random() % 60, random() % 60);
        OSAdjustDateTimeByDays(&v, static_cast<LONG>(random() % 110302));
        const Picture &p = pictures[i % 6];
        std::string format = std::string(p.date) + " " + p.time;
        ASSERT_EQ(Platform(v, p.date, p.time), Format(v, format.c_str())) << ToText(v) << " " << format;
        if (std::abs(static_cast<int>(v.year) - now.year) <= 50) {
            ASSERT_EQ(Platform(v, "M/d/yy", "h:m"), Format(v, "M/d/yy h:m")) << ToText(v);
            ++compared;
        }
    }
    // About a third of the calendar lies within 50 years of now.
    EXPECT_GT(compared, steps / 4);
}

TEST_F(DateTimeToString, FollowsItsOwnRulesWhereThePlatformDiffers)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    DateTimeValue now;
    OSGetDateTime(&now);
    // A year more than 50 years away is written whole.
    EXPECT_EQ("1885", Format(MakeDate(1885, 1, 1), "yy"));
    EXPECT_EQ("2101", Format(MakeDate(2101, 1, 1), "y"));
    char expected[8];
    snprintf(expected, sizeof expected, "%02u", now.year % 100);
    EXPECT_EQ(expected, Format(MakeDate(now.year, 1, 1), "y"));
    // Seconds always have a lead zero; the 12-hour clock shows 0 as 12.
    EXPECT_EQ("05", Format(MakeDate(2001, 7, 5, 14, 7, 5), "s"));
    const struct {
        unsigned hour;
        const char *text;
    } clock[] = {{0, "12"}, {12, "12"}, {13, "1"}};
    for (const auto &row : clock)
        EXPECT_EQ(row.text, Format(MakeDate(2001, 7, 5, row.hour, 30), "h"));
    EXPECT_EQ("05/07/01 2:07:09 PM", Format(MakeDate(2001, 7, 5, 14, 7, 9), "dd/MM/yy h:mm:ss tt"));
    EXPECT_EQ("5th July", Format(MakeDate(2001, 7, 5), "o MMMM"));
    EXPECT_EQ("14h 07m", Format(MakeDate(2001, 7, 5, 14, 7), "HHz mmZ"));
    EXPECT_EQ("dMy", Format(MakeDate(2001, 7, 5), "\"dMy\""));
    // A format passed with flags ignores them.
    EXPECT_EQ("2:07:09 PM", Format(MakeDate(2001, 7, 5, 14, 7, 9), "h:mm:ss tt", 64 | 128));
}

// The flags mode builds the format from the conventions in force (0 month
// first, 2 year first), their separators translated.
TEST_F(DateTimeToString, BuildsTheFormatFromTheFlags)
{
    const DateTimeValue v = MakeDate(2001, 7, 5, 14, 7, 9);
    const struct {
        int order;
        DWORD flags;
        const char *text;
    } rows[] = {
        {0, 0, ""},        {0, 1, "Thursday July 5 2001"}, {0, 2, "7/5/2001"}, {0, 3, "Thursday July 5 2001"},
        {0, 2 | 32, "7/5/2001 2:07 PM"},  {0, 2 | 16, "7/5/2001 2:07:09 PM"},
        {0, 32, "2:07 PM"}, {0, 32 | 128, "2:07 "},        {0, 64, " PM"},
        {2, 2 | 32, "2001-07-05 14.07"},  {2, 2 | 16, "2001-07-05 14.07.09"},
    };
    for (const auto &row : rows) {
        const auto conventions = Conventions(row.order);
        EXPECT_EQ(row.text, Format(v, nullptr, row.flags)) << row.order << " " << row.flags;
    }
}

TEST_F(DateTimeToString, NoDateAndInvalidValues)
{
    DateTimeValue low;
    OSSetNoDateLow(&low);
    EXPECT_EQ("", Format(low, "dd/MM/yyyy"));
    DateTimeValue bad = MakeDate(2001, 2, 29);
    char text[16] = "x";
    EXPECT_EQ(nullptr, OSDateTimeToString(&bad, text, "d", 0, sizeof text));
    EXPECT_EQ(RV_DayRange, OSErrorGetErrorValue());
    EXPECT_STREQ("x", text);
}

TEST_F(DateTimeToString, NeverWritesPastTheSizeGiven)
{
    const DateTimeValue v = MakeDate(2001, 9, 30, 23, 59, 59);
    const char *formats[] = {"dddd MMMM yyyy HH:mm:ss tt", "'quoted text' d", "ddmmmmm", "o z Z"};
    for (const char *format : formats) {
        for (DWORD size = 0; size < 40; ++size) {
            char buffer[48];
            memset(buffer, '#', sizeof buffer);
            OSDateTimeToString(&v, buffer, format, 0, size);
            for (DWORD i = size; i < sizeof buffer; ++i)
                ASSERT_EQ('#', buffer[i]) << format << " size " << size;
            if (size) {
                ASSERT_NE(nullptr, memchr(buffer, 0, size)) << format << " size " << size;
            }
        }
    }
}

TEST_F(DateTimeToString, MonthAndDayNamesByFlags)
{
    const struct {
        DWORD flags;
        const char *month, *day;
    } rows[] = {{1, "9", "W"}, {2, "09", "We"}, {3, "Sep", "Wed"}, {4, "September", "Wednesday"}};
    for (const auto &row : rows) {
        char month[16] = {}, day[16] = {};
        EXPECT_TRUE(OSMonthToString(9, row.flags, month, sizeof month));
        EXPECT_TRUE(OSDayToString(3 + 7, row.flags, day, sizeof day));
        EXPECT_STREQ(row.month, month);
        EXPECT_STREQ(row.day, day);
    }
}

} // namespace
