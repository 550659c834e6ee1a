// Moves by days held against the walk the library used before it went
// through a day number: month by month with a 16-bit year, stepping over
// whole 65536-year wraps, 400-year cycles and whole years where it can.
#include <random>
#include "qz_test.h"

namespace {

bool Leap(long long y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }
long long Last(const DateTimeValue &v)
{
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return kDays[v.month - 1] + (v.month == 2 && Leap(v.year));
}
void StepMonth(DateTimeValue &v, int by)
{
    int m = v.month + by;
    v.year = static_cast<WORD>(v.year + (m > 12) - (m < 1));
    v.month = static_cast<BYTE>(m > 12 ? 1 : m < 1 ? 12 : m);
}

void WalkDays(DateTimeValue &v, long long delta)
{
    const long long cycle = 146097, wrap = 65536LL * 365 + 65536 / 4 - 65536 / 100 + 65536 / 400;
    long long d = v.day + delta;
    if (d > wrap + 31)
        d -= (d - 32) / wrap * wrap;
    else if (d < -wrap)
        d += -d / wrap * wrap;
    while (d < 1) {
        long long cycles = std::min(-d / cycle, static_cast<long long>(v.year / 400));
        d += cycles * cycle;
        v.year = static_cast<WORD>(v.year - 400 * cycles);
        if (d >= 1)
            break;
        StepMonth(v, -1);
        d += Last(v);
    }
    for (;;) {
        long long cycles = std::min((d - 32) / cycle, static_cast<long long>((0xFFFF - v.year) / 400));
        if (cycles > 0) {
            d -= cycles * cycle;
            v.year = static_cast<WORD>(v.year + 400 * cycles);
        }
        const long long year = Leap(v.year) ? 366 : 365;
        if (v.month == 1 && d > year + 31) {
            d -= year;
            v.year = static_cast<WORD>(v.year + 1);
            continue;
        }
        if (d <= Last(v))
            break;
        d -= Last(v);
        StepMonth(v, 1);
    }
    v.day = static_cast<BYTE>(d);
}

class DayMoveWalk : public ErrorStateTest {};

TEST_F(DayMoveWalk, AnyDateByAnyCountLandsWhereTheWalkDoes)
{
    const long long wrap = 23936532;
    std::vector<long long> counts = {1, -1, 31, -31, 146097 + 31, -146097, wrap, -wrap, wrap + 32, -wrap - 1,
                                     2147483647LL, -2147483648LL, 2147483647LL - wrap, 65536LL * 146097 / 400};
    std::vector<DateTimeValue> starts = {MakeDate(1800, 1, 1), MakeDate(2101, 12, 31), MakeDate(2000, 2, 29, 23),
                                         MakeDate(1, 1, 1, 1, 1, 1), MakeDate(2, 2, 2, 2, 2, 2)};
    starts[3].hourBias = 1, starts[4].hourBias = 2;  // no date low, no date high
    std::vector<std::pair<DateTimeValue, long long>> moves;
    for (const DateTimeValue &start : starts)
        for (long long count : counts)
            moves.push_back({start, count});
    std::mt19937 random(65536);
    std::uniform_int_distribution<long long> anyCount(-2147483648LL, 2147483647LL);
    std::uniform_int_distribution<unsigned> anyYear(1800, 2101), anyMonth(1, 12), anyDay(1, 31);
    for (int i = 0; i < MonkeySteps(3000, 300); ++i) {
        DateTimeValue date = MakeDate(anyYear(random), anyMonth(random), 1, i % 24);
        date.day = static_cast<BYTE>(std::min<long long>(anyDay(random), Last(date)));
        moves.push_back({date, i % 3 ? anyCount(random) : anyCount(random) % 5000});
    }
    for (const auto &move : moves) {
        DateTimeValue ours = move.first, walked = move.first;
        ASSERT_TRUE(OSAdjustDateTime(&ours, 0, 0, static_cast<LONG>(move.second), 0, 0, 0, 0));
        WalkDays(walked, move.second);
        ASSERT_EQ(walked, ours) << ToText(move.first) << " by " << move.second;
        // Within 1601 to 2101 and short of a wrap, the move through the day
        // number lands there too.
        DateTimeValue byDays = move.first;
        if (!move.first.hourBias && walked.year >= 1601 && walked.year <= 2101 && move.second > -wrap &&
            move.second < wrap) {
            ASSERT_TRUE(OSAdjustDateTimeByDays(&byDays, static_cast<LONG>(move.second)));
            ASSERT_EQ(walked, byDays) << ToText(move.first) << " by days " << move.second;
        }
    }
    // Far back, a move by days walks from 1 January 1601.
    for (long long count : {-150000LL, -2147483648LL, -wrap - 80000}) {
        DateTimeValue ours = MakeDate(1900, 6, 15, 8), walked = MakeDate(1601, 1, 1, 8);
        ASSERT_TRUE(OSAdjustDateTimeByDays(&ours, static_cast<LONG>(count)));
        WalkDays(walked, 72683 + OSDaysSince01011800(1900, 6, 15) + count);
        ASSERT_EQ(walked, ours) << count;
    }
    // The day number's steps from 1 January 1601 at, one below and one above
    // each edge: a year, four years, a century, 400 years.
    for (long long r : {364, 365, 366, 729, 730, 731, 1095, 1096, 1460, 1461, 1462, 36523, 36524, 36525,
                        146096, 146097, 146098, 146097 + 36525, 146097 + 36524 + 1461}) {
        DateTimeValue ours = MakeDate(1800, 1, 1), walked = MakeDate(1601, 1, 1);
        ASSERT_TRUE(OSAdjustDateTimeByDays(&ours, static_cast<LONG>(r - 72683)));
        WalkDays(walked, r);
        EXPECT_EQ(walked, ours) << r;
    }
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

}  // namespace
