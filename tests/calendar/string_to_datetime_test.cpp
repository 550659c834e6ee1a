// Text to DateTimeValue: the order of attempts, the words, and round trips
// of every day and every minute under three conventions.
#include "intl_conventions.h"

namespace {

// The present date at the time of a call; a parse that fills fields from the
// present and straddles midnight may have taken either day, so a check asks
// for the expected value on the day before the parse and on the day after.
DateTimeValue Now()
{
    DateTimeValue now;
    OSGetDateTime(&now);
    return now;
}

DateTimeValue OnDay(const DateTimeValue &day, unsigned hour = 0, unsigned minute = 0, unsigned second = 0)
{
    return MakeDate(day.year, day.month, day.day, hour, minute, second);
}

template <class Parse, class Expected>
void ExpectFromThePresent(const char *text, Parse parse, Expected expected)
{
    const DateTimeValue before = Now();
    const DateTimeValue got = parse(text);
    const DateTimeValue after = Now();
    EXPECT_TRUE(got == expected(before) || got == expected(after))
        << text << ": " << ToText(got) << ", expected " << ToText(expected(before));
}

DateTimeValue Date(const char *text, BOOL *ok = nullptr)
{
    DateTimeValue v;
    BOOL result = OSStringToDateTime(&v, text);
    if (ok)
        *ok = result;
    return v;
}

DateTimeValue Time(const char *text)
{
    DateTimeValue v;
    OSStringToDateTimeTimeBias(&v, text);
    return v;
}

// The text reads as the present moment, to the second.
void ExpectPresentMoment(const char *text, DateTimeValue (*parse)(const char *))
{
    const DateTimeValue before = Now();
    const DateTimeValue got = parse(text);
    const DateTimeValue after = Now();
    EXPECT_LE(0, OSDateTimeCompare(&got, &before)) << text << ": " << ToText(got);
    EXPECT_GE(0, OSDateTimeCompare(&got, &after)) << text << ": " << ToText(got);
}

void ExpectDate(const char *text, DateTimeValue (*expected)(const DateTimeValue &))
{
    ExpectFromThePresent(text, [](const char *t) { return Date(t); }, expected);
}

class StringToDateTime : public ErrorStateTest {};

// Words and numbers by their looks, in each field order (0 month first,
// 1 day first, 2 year first); a short year at the year's place is 2000 and
// that up to 31, and a first number of exactly 12 beside one above 12 is the
// month.
TEST_F(StringToDateTime, ReadsDatesByTheirLooksAndTheFieldOrder)
{
    const struct { int order; const char *text; DateTimeValue date; } rows[] = {
        {0, "march 4 2001", MakeDate(2001, 3, 4)}, {0, "4 MAR 2001", MakeDate(2001, 3, 4)},
        {0, "Friday 21st Sept. 2001", MakeDate(2001, 9, 21)},
        {0, "3/4/05", MakeDate(2005, 3, 4)},       {0, "3/4/31", MakeDate(2031, 3, 4)},
        {1, "3.4.2001", MakeDate(2001, 4, 3)},     {1, "12.13.2001", MakeDate(2001, 12, 13)},
        {1, "13.12.2001", MakeDate(2001, 12, 13)}, {1, "12.12.2001", MakeDate(2001, 12, 12)},
        {2, "3-4-5", MakeDate(2003, 4, 5)},
    };
    for (const auto &row : rows) {
        const auto conventions = Conventions(row.order);
        EXPECT_EQ(row.date, Date(row.text)) << row.text;
    }
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    BOOL ok = TRUE;
    Date("40/50/2003", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    ExpectDate("13/4", [](const DateTimeValue &d) { return MakeDate(d.year, 4, 13); });
    ExpectPresentMoment("   ", [](const char *t) { return Date(t); });
    // Elsewhere a number above the present year minus 1950 is a year of the
    // 1900s; one not above it and above 31 is a year of the 2000s.
    const unsigned boundary = Now().year - 1950;
    char text[32];
    if (boundary + 1 < 100) {
        snprintf(text, sizeof text, "3 4 %u", boundary + 1);
        EXPECT_EQ(MakeDate(1900 + boundary + 1, 3, 4), Date(text)) << text;
    }
    snprintf(text, sizeof text, "3 4 %u", boundary);
    EXPECT_EQ(MakeDate(2000 + boundary, 3, 4), Date(text)) << text;
}

// Reads each row's text as a time of the present day.
void ExpectTimes(const std::vector<std::pair<std::string, unsigned>> &rows)
{
    for (const auto &row : rows) {
        const unsigned hour = row.second;
        ExpectFromThePresent(row.first.c_str(), Time,
                             [hour](const DateTimeValue &d) { return OnDay(d, hour); });
    }
}

TEST_F(StringToDateTime, KnowsItsWords)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    const struct { const char *word; LONG days; } days[] = {{"today", 0}, {"Tomorrow", 1}, {"YESTERDAY", -1}};
    for (const auto &day : days)
        ExpectFromThePresent(day.word, [](const char *t) { return Date(t); }, [&day](const DateTimeValue &d) {
            DateTimeValue v = OnDay(d);
            OSAdjustDateTimeByDays(&v, day.days);
            return v;
        });
    ExpectTimes({{"noon", 12}});
    ExpectPresentMoment("now", Time);
}

TEST_F(StringToDateTime, ReadsClockTimesAndMarkers)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    const struct {
        const char *text;
        unsigned hour, minute, second;
    } rows[] = {{"5", 5, 0, 0},        {"5 PM", 17, 0, 0},    {"12 am", 0, 0, 0},
                {"12:30 PM", 12, 30, 0}, {"3:04:05", 3, 4, 5}, {"pm 3:04", 15, 4, 0}};
    for (const auto &row : rows) {
        const auto expected = [&row](const DateTimeValue &d) {
            return OnDay(d, row.hour, row.minute, row.second);
        };
        ExpectFromThePresent(row.text, Time, expected);
    }
    // A token behind the afternoon text adds twelve hours once more.
    DateTimeValue v;
    EXPECT_FALSE(OSStringToDateTimeTimeBias(&v, "5 PM x"));
    // A whole marker is needed with "tt"; one letter with a single "t".
    ExpectTimes({{"5 P", 5}, {"12 A", 12}});
    IntlConventions oneLetter({{"sTimeFormat", "h:mm:ss t"}});
    ExpectTimes({{"5 P", 17}, {"5 PM", 17}, {"12 A", 0}, {"5 x", 5}});
}

TEST_F(StringToDateTime, TheTwentyFourHourClockTakesTheResourceMarkers)
{
    IntlConventions conventions({{"iTime", "1"}, {"sTimeFormat", "HH:mm:ss"}, {"s1159", "vorm"},
                                 {"s2359", "nachm"}});
    char morning[16] = {}, afternoon[16] = {};
    ASSERT_GT(LoadStringA(ResourceGetHandle(), 40652, morning, sizeof morning), 0);
    ASSERT_GT(LoadStringA(ResourceGetHandle(), 40653, afternoon, sizeof afternoon), 0);
    ExpectTimes({{std::string("5 ") + afternoon, 17}, {std::string("12 ") + morning, 0},
                 {"5 nachm", 5}, {"12 vorm", 12}});
}

TEST_F(StringToDateTime, CompleteAndImport)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    DateTimeValue v;
    EXPECT_TRUE(OSStringToDateTimeComplete(&v, "3/4/2001 2:05 pm"));
    EXPECT_EQ(MakeDate(2001, 3, 4, 14, 5), v);
    for (const char *order : {"0", "1", "2"}) {
        IntlConventions field({{"iDate", order}});
        EXPECT_EQ(1, OSStringToDateTimeForImport(&v, "2001 3 4"));
        EXPECT_EQ(MakeDate(2001, 3, 4), v) << order;
        EXPECT_EQ(1, OSStringToDateTimeForImport(&v, "2001-03-04 10:11:12"));
        EXPECT_EQ(MakeDate(2001, 3, 4, 10, 11, 12), v) << order;
    }
    EXPECT_EQ(1, OSStringToDateTimeForImport(&v, "nothing"));
    EXPECT_EQ(MakeDate(0, 0, 0), v);
}

// Every day of the calendar written in the long and the short form and read
// back (every fifth day in the emulated lane: all weekdays and days of the
// month still come round), and every minute of today in both time forms,
// under each convention.
TEST_F(StringToDateTime, RoundTripsUnderEachConvention)
{
    const int stride = MonkeySteps(1, 5);
    for (int convention = 0; convention < 3; ++convention) {
        SCOPED_TRACE(convention);
        const auto set = Conventions(convention);
        for (DWORD flags : {2u, 1u}) {
            DateTimeValue v = MakeDate(1800, 1, 1);
            for (int n = 0; n < 110303; n += stride) {
                char text[200];
                ASSERT_NE(nullptr, OSDateTimeToString(&v, text, nullptr, flags, sizeof text));
                DateTimeValue back;
                ASSERT_TRUE(OSStringToDateTime(&back, text)) << text;
                ASSERT_EQ(v, back) << text;
                OSAdjustDateTimeByDays(&v, stride);
            }
        }
        for (int minute = 0; minute < 1440; ++minute) {
            for (DWORD flags : {32u, 16u}) {
                const auto atMinute = [minute](const DateTimeValue &d) {
                    return OnDay(d, minute / 60, minute % 60);
                };
                const DateTimeValue v = atMinute(Now());
                char text[200];
                ASSERT_NE(nullptr, OSDateTimeToString(&v, text, nullptr, flags, sizeof text));
                ExpectFromThePresent(text, Time, atMinute);
            }
        }
    }
}

} // namespace
