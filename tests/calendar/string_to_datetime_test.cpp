// Text to DateTimeValue: the order of attempts, the words, and round trips
// of every day and every minute under three conventions.
#include "intl_conventions.h"

namespace {

class StringToDateTime : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        OSGetDateTime(&today);
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
    DateTimeValue today;
};

TEST_F(StringToDateTime, ReadsNumbersByTheirLooksAndTheFieldOrder)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    EXPECT_EQ(MakeDate(1999, 3, 4), Date("3 4 99"));
    EXPECT_EQ(MakeDate(today.year, 4, 13), Date("13/4"));
    EXPECT_EQ(MakeDate(2001, 3, 4), Date("march 4 2001"));
    EXPECT_EQ(MakeDate(2001, 3, 4), Date("4 MAR 2001"));
    EXPECT_EQ(MakeDate(2001, 9, 21), Date("Friday 21st Sept. 2001"));
    BOOL ok = TRUE;
    Date("40/50/2003", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    DateTimeValue now = Date("   ");
    EXPECT_EQ(today.year, now.year);
    EXPECT_EQ(today.day, now.day);
}

TEST_F(StringToDateTime, FollowsDayFirstAndYearFirst)
{
    {
        IntlConventions conventions(CONVENTIONS_DAY_FIRST_24H);
        EXPECT_EQ(MakeDate(2001, 4, 3), Date("3.4.2001"));
    }
    {
        IntlConventions conventions(CONVENTIONS_YEAR_FIRST);
        EXPECT_EQ(MakeDate(2003, 4, 5), Date("3-4-5"));
    }
}

TEST_F(StringToDateTime, KnowsItsWords)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    EXPECT_EQ(MakeDate(today.year, today.month, today.day), Date("today"));
    DateTimeValue expected = MakeDate(today.year, today.month, today.day);
    OSAdjustDateTimeByDays(&expected, 1);
    EXPECT_EQ(expected, Date("Tomorrow"));
    OSAdjustDateTimeByDays(&expected, -2);
    EXPECT_EQ(expected, Date("YESTERDAY"));
    DateTimeValue noon = Time("noon");
    EXPECT_EQ(12, noon.hour);
    EXPECT_EQ(0, noon.minute);
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
        DateTimeValue v = Time(row.text);
        EXPECT_EQ(MakeDate(today.year, today.month, today.day, row.hour, row.minute, row.second), v)
            << row.text;
    }
    // A token behind the afternoon text adds twelve hours once more.
    DateTimeValue v;
    EXPECT_FALSE(OSStringToDateTimeTimeBias(&v, "5 PM x"));
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

void RoundTripEveryDay(DWORD flags)
{
    DateTimeValue v = MakeDate(1800, 1, 1);
    for (int n = 0; n < 110303; ++n) {
        char text[200];
        ASSERT_NE(nullptr, OSDateTimeToString(&v, text, nullptr, flags, sizeof text));
        DateTimeValue back;
        ASSERT_TRUE(OSStringToDateTime(&back, text)) << text;
        ASSERT_EQ(v, back) << text;
        OSAdjustDateTimeByDays(&v, 1);
    }
    EXPECT_EQ(MakeDate(2102, 1, 1), v);
}

void RoundTripEveryMinute()
{
    DateTimeValue today;
    OSGetDateTime(&today);
    for (int minute = 0; minute < 1440; ++minute) {
        const DateTimeValue v = MakeDate(today.year, today.month, today.day, minute / 60, minute % 60, 0);
        for (DWORD flags : {32u, 16u}) {
            char text[200];
            ASSERT_NE(nullptr, OSDateTimeToString(&v, text, nullptr, flags, sizeof text));
            DateTimeValue back;
            ASSERT_TRUE(OSStringToDateTimeTimeBias(&back, text)) << text;
            ASSERT_EQ(v, back) << text;
        }
    }
}

TEST_F(StringToDateTime, RoundTripsMonthFirstTwelveHours)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    RoundTripEveryDay(2);
    RoundTripEveryDay(1);
    RoundTripEveryMinute();
}

TEST_F(StringToDateTime, RoundTripsDayFirstTwentyFourHours)
{
    IntlConventions conventions(CONVENTIONS_DAY_FIRST_24H);
    RoundTripEveryDay(2);
    RoundTripEveryDay(1);
    RoundTripEveryMinute();
}

TEST_F(StringToDateTime, RoundTripsYearFirst)
{
    IntlConventions conventions(CONVENTIONS_YEAR_FIRST);
    RoundTripEveryDay(2);
    RoundTripEveryDay(1);
    RoundTripEveryMinute();
}

} // namespace
