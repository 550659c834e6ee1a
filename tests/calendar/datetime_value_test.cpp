// DateTimeValue arithmetic held against an independent proleptic Gregorian
// computation, plus the rules for validity, compares and bad input.
#include <algorithm>
#include <cstdint>
#include <vector>
#include <random>
#include "qz_test.h"

namespace {

// Days since 1970-01-01 of a civil date, and back (the well-known
// era-based conversion), written here independently of the library.
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, unsigned *year, unsigned *month, unsigned *day)
{
    z += 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    *day = doy - (153 * mp + 2) / 5 + 1;
    *month = mp < 10 ? mp + 3 : mp - 9;
    *year = static_cast<unsigned>(yoe + era * 400 + (*month <= 2));
}

const int64_t kEpoch1800 = DaysFromCivil(1800, 1, 1);
const int64_t kLastDay = DaysFromCivil(2101, 12, 31) - kEpoch1800;

DateTimeValue DateOfDay(int64_t n, unsigned hour = 0, unsigned minute = 0, unsigned second = 0)
{
    unsigned y, m, d;
    CivilFromDays(n + kEpoch1800, &y, &m, &d);
    return MakeDate(y, m, d, hour, minute, second);
}

int64_t SecondsOf(const DateTimeValue &v)
{
    return (DaysFromCivil(v.year, v.month, v.day) - kEpoch1800) * 86400 + v.hour * 3600 +
           v.minute * 60 + v.second;
}

DateTimeValue DateOfSecond(int64_t s)
{
    int64_t day = s >= 0 ? s / 86400 : (s - 86399) / 86400;
    int64_t rest = s - day * 86400;
    return DateOfDay(day, static_cast<unsigned>(rest / 3600), static_cast<unsigned>(rest / 60 % 60),
                     static_cast<unsigned>(rest % 60));
}

class Calendar : public ErrorStateTest {};

TEST_F(Calendar, EveryDayCountAndWeekdayFrom1800To2101MatchesTheOracle)
{
    for (int64_t n = 0; n <= kLastDay; ++n) {
        DateTimeValue date = DateOfDay(n);
        ASSERT_EQ(n, OSDaysSince01011800(date.year, date.month, date.day)) << ToText(date);
        ASSERT_TRUE(OSIsValidDateTime(&date)) << ToText(date);
        LONG weekday = -1;
        ASSERT_TRUE(OSDayOfWeek(&date, &weekday, 0));
        // 1970-01-01 was a Thursday (4).
        ASSERT_EQ((n + kEpoch1800 % 7 + 7 + 4) % 7, weekday) << ToText(date);
        ASSERT_EQ(OSDateTimeGetNumDaysInMonth(&date), static_cast<LONG>(DaysFromCivil(date.month == 12 ? date.year + 1 : date.year, date.month % 12 + 1, 1) - DaysFromCivil(date.year, date.month, 1)));
    }
    EXPECT_EQ(365, OSDaysSince01011800(1801, 1, 1));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(Calendar, AdjustingBySecondsMinutesHoursAndDaysCarriesLikeTheOracle)
{
    std::mt19937 random(2101);
    std::uniform_int_distribution<int64_t> anySecond(86400 * 400, (kLastDay - 400) * 86400);
    std::uniform_int_distribution<LONG> delta(-30000000, 30000000);
    for (int i = 0; i < MonkeySteps(20000, 4000); ++i) {
        int64_t start = anySecond(random);
        LONG seconds = delta(random), minutes = delta(random) / 60, hours = delta(random) / 3600,
             days = delta(random) / 86400;
        DateTimeValue value = DateOfSecond(start);
        ASSERT_TRUE(OSAdjustDateTime(&value, 0, 0, days, hours, minutes, seconds, 0));
        int64_t expected = start + seconds + minutes * 60LL + hours * 3600LL + days * 86400LL;
        ASSERT_EQ(DateOfSecond(expected), value) << ToText(DateOfSecond(start));
        EXPECT_EQ(expected, SecondsOf(value));
    }
}

TEST_F(Calendar, AdjustingAtTheEdgesOfMonthsAndDays)
{
    struct Row {
        DateTimeValue from;
        LONG years, months, days, hours, minutes, seconds, extra;
        DateTimeValue expected;
    } rows[] = {
        {MakeDate(2001, 3, 31), 0, -1, 0, 0, 0, 0, 0, MakeDate(2001, 2, 28)},
        {MakeDate(2000, 3, 31), 0, -1, 0, 0, 0, 0, 0, MakeDate(2000, 2, 29)},
        {MakeDate(2000, 1, 31), 0, 1, 0, 0, 0, 0, 0, MakeDate(2000, 2, 29)},
        {MakeDate(1999, 12, 31, 23, 59, 59), 0, 0, 0, 0, 0, 1, 0, MakeDate(2000, 1, 1)},
        {MakeDate(2000, 1, 1), 0, 0, 0, 0, 0, -1, 0, MakeDate(1999, 12, 31, 23, 59, 59)},
        {MakeDate(2000, 1, 1), 0, 0, 0, 0, 0, -60, 0, MakeDate(1999, 12, 31, 23, 59, 0)},
        {MakeDate(2000, 5, 15), 0, -13, 0, 0, 0, 0, 0, MakeDate(1999, 4, 15)},
        {MakeDate(2000, 5, 15), 0, -5, 0, 0, 0, 0, 0, MakeDate(1999, 12, 15)},
        {MakeDate(2000, 2, 29), 1, 0, 0, 0, 0, 0, 0, MakeDate(2001, 2, 28)},
        {MakeDate(2000, 5, 15, 10), 0, 0, 0, 2, 0, 0, 13, MakeDate(2000, 5, 16, 1)},
        {MakeDate(2000, 5, 15, 1), 0, 0, 0, -25, 0, 0, 0, MakeDate(2000, 5, 14, 0)},
        // Months and years together clamp once, at the end; the carry from
        // the months into the years clamps on its own.
        {MakeDate(2001, 1, 31), 3, 1, 0, 0, 0, 0, 0, MakeDate(2004, 2, 29)},
        {MakeDate(1896, 7, 30), -7, 31, 0, 0, 0, 0, 0, MakeDate(1892, 2, 29)},
        {MakeDate(2003, 12, 31), 1, 14, 0, 0, 0, 0, 0, MakeDate(2006, 2, 28)},
        // A carry into the years clamps the day in the month it leaves: 29
        // February of a leap year becomes the 28th on the way.
        {MakeDate(2000, 2, 29), 0, 13, 0, 0, 0, 0, 0, MakeDate(2001, 3, 28)},
        {MakeDate(2000, 2, 29), 0, 12, 0, 0, 0, 0, 0, MakeDate(2001, 2, 28)},
        {MakeDate(2000, 2, 29), 0, 11, 0, 0, 0, 0, 0, MakeDate(2001, 1, 28)},
        {MakeDate(2000, 2, 29), 0, 10, 0, 0, 0, 0, 0, MakeDate(2000, 12, 29)},
    };
    for (const Row &row : rows) {
        DateTimeValue value = row.from;
        ASSERT_TRUE(OSAdjustDateTime(&value, row.years, row.months, row.days, row.hours,
                                     row.minutes, row.seconds, row.extra));
        EXPECT_EQ(row.expected, value) << "from " << ToText(row.from);
    }
}

TEST_F(Calendar, ValidityAndTheRecordedReason)
{
    struct Row {
        DateTimeValue value;
        BOOL valid, dtValid;
        ResultCode code;
        DWORD item, low, high;
    } rows[] = {
        {MakeDate(1900, 2, 28, 23, 59, 59), TRUE, TRUE, RV_Success, 0, 0, 0},
        {MakeDate(1900, 2, 29), FALSE, FALSE, RV_DayRange, 29, 1, 28},
        {MakeDate(2101, 12, 30, 1, 1, 1), TRUE, TRUE, RV_Success, 0, 0, 0},
        {MakeDate(2000, 2, 29), TRUE, TRUE, RV_Success, 0, 0, 0},
        {MakeDate(1800, 1, 1), TRUE, FALSE, RV_Success, 0, 0, 0},
        {MakeDate(2102, 1, 1), FALSE, FALSE, RV_YearRange, 2102, 1800, 2101},
        {MakeDate(1799, 12, 31), FALSE, FALSE, RV_YearRange, 1799, 1800, 2101},
        {MakeDate(2000, 0, 1), FALSE, FALSE, RV_MonthRange, 0, 1, 12},
        {MakeDate(2000, 13, 1), FALSE, FALSE, RV_MonthRange, 13, 1, 12},
        {MakeDate(2000, 4, 0), FALSE, FALSE, RV_DayRange, 0, 1, 30},
        {MakeDate(2000, 4, 31), FALSE, FALSE, RV_DayRange, 31, 1, 30},
        {MakeDate(2000, 4, 1, 24), FALSE, FALSE, RV_HourRange, 24, 0, 23},
        {MakeDate(2000, 4, 1, 0, 60), FALSE, FALSE, RV_MinuteRange, 60, 0, 59},
        {MakeDate(2000, 4, 1, 0, 0, 60), FALSE, TRUE, RV_SecondRange, 60, 0, 59},
        {MakeDate(2102, 13, 32, 25), FALSE, FALSE, RV_YearRange, 2102, 1800, 2101},
    };
    for (const Row &row : rows) {
        OSErrorClearError();
        EXPECT_EQ(row.valid, OSIsValidDateTime(&row.value)) << ToText(row.value);
        EXPECT_EQ(row.dtValid, OSDTIsValidDateTime(&row.value)) << ToText(row.value);
        EXPECT_EQ(RV_Success, OSErrorGetErrorValue()) << "the tests are silent";
        EXPECT_EQ(row.valid, OSWhyIsInvalidDateTime(&row.value));
        EXPECT_EQ(row.code, OSErrorGetErrorValue()) << ToText(row.value);
        if (row.code != RV_Success) {
            const ErrorContext *ctx = OSErrorGetErrorInfo();
            EXPECT_EQ(row.item, ctx->itemValue);
            EXPECT_EQ(row.low, ctx->rangeLow);
            EXPECT_EQ(row.high, ctx->rangeHigh);
        }
    }
    DateTimeValue low, high;
    OSSetNoDateLow(&low);
    OSSetNoDateHigh(&high);
    EXPECT_TRUE(OSIsValidDateTime(&low) && OSIsValidDateTime(&high));
    EXPECT_TRUE(OSDTIsValidDateTime(&low) && OSDTIsValidDateTime(&high));
}

// The sentinels, each compare's fields, and the hour bias, which counts
// after the day and before the hour.
TEST_F(Calendar, ComparesOrderSentinelsAndFields)
{
    DateTimeValue low, high;
    OSSetNoDateLow(&low);
    OSSetNoDateHigh(&high);
    const DateTimeValue date = MakeDate(1950, 6, 1, 12), later = MakeDate(1950, 6, 1, 13),
                        nextYear = MakeDate(1951, 1, 1), january = MakeDate(1950, 1, 1);
    DateTimeValue biased = date;
    biased.hourBias = 1;
    using Compare = int(WINAPI *)(const DateTimeValue *, const DateTimeValue *);
    const struct { Compare compare; const DateTimeValue &a, &b; int expected; } rows[] = {
        {OSDateTimeCompare, low, date, -1},  {OSDateTimeCompare, date, high, -1},
        {OSDateTimeCompare, high, low, 1},   {OSDateTimeCompare, high, high, 0},
        {OSDateTimeCompare, date, later, -1}, {OSDateTimeCompare, biased, later, 1},
        {OSDateCompare, date, later, 0},     {OSDateCompare, nextYear, later, 1},
        {OSYearCompare, date, january, 0},   {OSYearCompare, date, nextYear, -1},
    };
    for (const auto &row : rows)
        EXPECT_EQ(row.expected, row.compare(&row.a, &row.b)) << ToText(row.a) << " " << ToText(row.b);
    DateTimeValue invalid = MakeDate(1950, 2, 30);
    EXPECT_EQ(0, OSDateTimeCompare(&invalid, &date));
    EXPECT_EQ(RV_DayRange, OSErrorGetErrorValue());
}

// Equal records answer zeros without looking at validity.
TEST_F(Calendar, DifferencesSplitIntoDaysHoursMinutesSeconds)
{
    const DateTimeValue a = MakeDate(2000, 1, 1, 10, 30, 15), b = MakeDate(2000, 1, 3, 8, 10, 5),
                        invalid = MakeDate(2000, 13, 40);
    const struct { const DateTimeValue &from, &to; std::vector<LONG> parts; } rows[] = {
        {MakeDate(2000, 2, 29), MakeDate(2000, 3, 1), {1, 0, 0, 0}},
        {a, b, {1, 21, 39, 50}}, {b, a, {-1, -21, -39, -50}}, {invalid, invalid, {0, 0, 0, 0}},
    };
    for (const auto &row : rows) {
        LONG d, h, m, s;
        ASSERT_TRUE(OSDiffDateTime(&row.from, &row.to, &d, &h, &m, &s)) << ToText(row.from);
        EXPECT_EQ(row.parts, (std::vector<LONG>{d, h, m, s})) << ToText(row.from) << " " << ToText(row.to);
    }
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(Calendar, InvalidValuesAreRecordedByEveryFunction)
{
    DateTimeValue bad = MakeDate(2000, 13, 1);
    DateTimeValue good = MakeDate(2000, 1, 1);
    LONG out = 0;
    const struct {
        const char *name;
        BOOL result;
    } calls[] = {
        {"OSAdjustDateTime", OSAdjustDateTime(&bad, 0, 0, 1, 0, 0, 0, 0)},
        {"OSAdjustDateTimeByDays", OSAdjustDateTimeByDays(&bad, 1)},
        {"OSDiffDateTime", OSDiffDateTime(&good, &bad, &out, &out, &out, &out)},
        {"OSDayOfWeek", OSDayOfWeek(&bad, &out, 0)},
    };
    for (const auto &call : calls) {
        EXPECT_FALSE(call.result) << call.name;
    }
    EXPECT_EQ(RV_MonthRange, OSErrorGetErrorValue());
    EXPECT_EQ(MakeDate(2000, 13, 1), bad) << "an invalid value is left as it was";
}

TEST_F(Calendar, NullAndOutOfTableInputsAreRefusedWithoutACrash)
{
    EXPECT_FALSE(OSIsValidDateTime(nullptr));
    EXPECT_FALSE(OSAdjustDateTimeByDays(nullptr, 3));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    OSErrorClearError();
    DateTimeValue date = MakeDate(2000, 1, 1);
    EXPECT_FALSE(OSDiffDateTime(&date, &date, nullptr, nullptr, nullptr, nullptr));
    EXPECT_FALSE(OSDayOfWeek(&date, nullptr, 0));
    EXPECT_EQ(nullptr, OSSetNoDateLow(nullptr));
    OSErrorClearError();
    EXPECT_EQ(0, OSDaysSince01011800(2000, 13, 1));
    EXPECT_EQ(RV_MonthRange, OSErrorGetErrorValue());
    OSErrorClearError();
    DateTimeValue badMonth = MakeDate(2000, 200, 1);
    EXPECT_EQ(0, OSDateTimeGetNumDaysInMonth(&badMonth));
    EXPECT_EQ(RV_MonthRange, OSErrorGetErrorValue());
}

TEST_F(Calendar, WeekendsAndTheAfternoon)
{
    for (LONG day = 0; day < 7; ++day)
        EXPECT_EQ(day == 0 || day == 6, OSIsWeekend(day) != FALSE) << day;
    DateTimeValue noon = MakeDate(2000, 1, 1, 12), morning = MakeDate(2000, 1, 1, 11, 59);
    EXPECT_TRUE(OSIsDateTimePM(&noon));
    EXPECT_FALSE(OSIsDateTimePM(&morning));
    DateTimeValue now;
    EXPECT_TRUE(OSGetDateTime(&now));
    EXPECT_TRUE(OSIsValidDateTime(&now));
    EXPECT_EQ(0, now.hourBias);
}

}  // namespace
