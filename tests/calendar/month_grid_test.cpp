// Month grids, week numbers and the zodiac.
#include <vector>
#include "qz_test.h"

namespace {

class MonthGrid : public ErrorStateTest {};

struct Cell {
    DateTimeValue date;
    LONG column, row;
};

LONG WINAPI Collect(const DateTimeValue *cell, LONG column, LONG row, LONG_PTR data, LONG_PTR answer)
{
    reinterpret_cast<std::vector<Cell> *>(data)->push_back({*cell, column, row});
    return static_cast<LONG>(answer);
}

TEST_F(MonthGrid, EveryMonthOfTheCalendarMatchesItsFirstWeekdayAndLength)
{
    for (unsigned year = 1800; year <= 2101; ++year) {
        for (unsigned month = 1; month <= 12; ++month) {
            const LONG weekStart = static_cast<LONG>((year + month) % 7);
            const DateTimeValue first = MakeDate(year, month, 1);
            LONG weekday = 0;
            ASSERT_TRUE(OSDayOfWeek(&first, &weekday, 0));
            const LONG days = OSDateTimeGetNumDaysInMonth(&first);
            const LONG column = (weekday - weekStart + 7) % 7;
            const LONG rows = OSDateTimeCalcNumRowsForMonth(&first, weekStart);
            ASSERT_EQ((column + days + 6) / 7, rows) << year << "-" << month;
            std::vector<Cell> cells;
            ASSERT_TRUE(OSDateTimeMonthGrid(&first, weekStart, TRUE, Collect,
                                            reinterpret_cast<LONG_PTR>(&cells), 1));
            ASSERT_EQ(static_cast<size_t>(days), cells.size());
            for (LONG d = 0; d < days; ++d) {
                ASSERT_EQ(MakeDate(year, month, d + 1), cells[d].date);
                ASSERT_EQ((column + d) % 7, cells[d].column);
                ASSERT_EQ((column + d) / 7, cells[d].row);
            }
            if (year == 1800 || year == 2101)
                continue;
            cells.clear();
            ASSERT_TRUE(OSDateTimeMonthGridEx(&first, weekStart, FALSE, Collect,
                                              reinterpret_cast<LONG_PTR>(&cells), 1));
            ASSERT_EQ(42u, cells.size());
            DateTimeValue expected = first;
            OSAdjustDateTimeByDays(&expected, -column);
            ASSERT_EQ(expected, cells[0].date);
        }
    }
}

TEST_F(MonthGrid, RowsEdgeCasesAndEarlyEnd)
{
    EXPECT_EQ(4, OSDateTimeCalcNumRowsForMonth(&static_cast<const DateTimeValue &>(MakeDate(2015, 2, 1)), 0));
    EXPECT_EQ(6, OSDateTimeCalcNumRowsForMonth(&static_cast<const DateTimeValue &>(MakeDate(2015, 8, 1)), 1));
    std::vector<Cell> cells;
    const DateTimeValue first = MakeDate(2015, 8, 1);
    EXPECT_TRUE(OSDateTimeMonthGrid(&first, 0, FALSE, Collect, reinterpret_cast<LONG_PTR>(&cells), 0));
    EXPECT_EQ(1u, cells.size());
    EXPECT_FALSE(OSDateTimeMonthGrid(&first, 0, FALSE, Collect, reinterpret_cast<LONG_PTR>(&cells), -1));
}

TEST_F(MonthGrid, WeekNumbers)
{
    const struct {
        DateTimeValue date;
        LONG weekStart, week;
    } rows[] = {
        {MakeDate(2001, 1, 1), 1, 1},   {MakeDate(2001, 12, 31), 1, 1}, {MakeDate(2004, 12, 31), 1, 53},
        {MakeDate(2005, 1, 1), 1, 53},  {MakeDate(2005, 1, 3), 1, 1},   {MakeDate(2008, 12, 29), 1, 1},
        {MakeDate(2010, 6, 15), 1, 24}, {MakeDate(2010, 6, 15), 0, 24},
    };
    for (const auto &row : rows) {
        LONG week = -1;
        EXPECT_TRUE(OSWeekNo(&row.date, row.weekStart, &week));
        EXPECT_EQ(row.week, week) << ToText(row.date);
    }
    LONG week = 0;
    DateTimeValue bad = MakeDate(2001, 13, 1);
    EXPECT_FALSE(OSWeekNo(&bad, 1, &week));
    EXPECT_EQ(RV_MonthRange, OSErrorGetErrorValue());
}

TEST_F(MonthGrid, ZodiacSignsNamesAndRanges)
{
    const struct {
        unsigned month, day;
        LONG sign;
    } rows[] = {{3, 20, 11}, {3, 21, 0}, {1, 20, 9}, {1, 21, 10}, {12, 22, 9}, {8, 23, 4}};
    for (const auto &row : rows) {
        DateTimeValue v = MakeDate(2001, row.month, row.day);
        EXPECT_EQ(row.sign, OSGetZodiacSign(&v)) << row.month << "/" << row.day;
    }
    DateTimeValue low;
    OSSetNoDateLow(&low);
    EXPECT_EQ(9, OSGetZodiacSign(&low));
    char text[64];
    EXPECT_STREQ("Aries", OSZodiacToString(0, text, 1, sizeof text));
    EXPECT_STREQ("Aries 21 Mar - 20 Apr", OSZodiacToString(0, text, 2, sizeof text));
    EXPECT_STREQ("22 Dec - 20 Jan", OSZodiacToString(9, text, 3, sizeof text));
    EXPECT_EQ(nullptr, OSZodiacToString(0, text, 2, 16));
    EXPECT_STREQ("Aries 21 Mar - ", text);
    EXPECT_EQ(nullptr, OSZodiacToString(12, text, 1, sizeof text));
    EXPECT_EQ(RV_StringNonExistant, OSErrorGetErrorValue());
    LONG sign = -1;
    EXPECT_TRUE(OSStringToZodiac("sagittarius", &sign));
    EXPECT_EQ(8, sign);
    EXPECT_FALSE(OSStringToZodiac("Ophiuchus", &sign));
    EXPECT_EQ(94 + 5, OSGetZodiacSymbol(5));
}

} // namespace
