// The lanes of a busy list against the pass over all pairs that defines
// them, on random lists with ties, nesting and identical intervals, and on
// lists the sweep hands back to that pass (an end past the calendar, a
// start that is no date).
#include "qz_test.h"
#include "busy_lanes.h"
#include <random>
#include <vector>

namespace {

// The definition: every lane 0, then in list order each interval's lane
// rises by one for each overlapping interval met whose lane equals it.
bool AllPairs(std::vector<BusyInterval> &list, DWORD *laneCount)
{
    for (BusyInterval &b : list)
        b.lane = 0;
    for (size_t i = 0; i < list.size(); ++i) {
        for (size_t j = 0; j < list.size(); ++j) {
            if (j == i)
                continue;
            int overlap = TrackerOverlap(&list[i].start, list[i].lengthMinutes, &list[j].start, list[j].lengthMinutes);
            if (overlap < 0)
                return false;
            if (overlap && list[j].lane == list[i].lane)
                ++list[i].lane;
        }
        if (list[i].lane > *laneCount)
            *laneCount = list[i].lane > 5 ? 5 : list[i].lane;
    }
    return true;
}

// `count` intervals on quarter hours within `hours`; a tenth copy an
// earlier one, some have no length.
std::vector<BusyInterval> RandomList(std::mt19937 &random, size_t count, unsigned hours)
{
    const DWORD lengths[] = {0, 15, 30, 45, 60, 120, 600, 1440};
    std::vector<BusyInterval> list(count);
    for (size_t i = 0; i < count; ++i) {
        if (i && random() % 10 == 0) {
            list[i] = list[random() % i];
        } else {
            list[i].start = MakeDate(2026, 3, 1);
            OSAdjustDateTime(&list[i].start, 0, 0, 0, 0, static_cast<LONG>(random() % (hours * 4) * 15), 0, 0);
            list[i].lengthMinutes = lengths[random() % 8];
        }
        list[i].id = static_cast<DWORD>(i);
        list[i].lane = 0xDEAD;
    }
    return list;
}

TEST(BusyLanes, SweepGivesEveryLaneThePassOverAllPairsGives)
{
    std::mt19937 random(2026);
    // The pass over all pairs is slow in the emulated lane: smaller lists there.
    const size_t large = static_cast<size_t>(MonkeySteps(1000, 150)), largest = static_cast<size_t>(MonkeySteps(5000, 400));
    const struct { size_t count; unsigned hours; } shapes[] = {
        {0, 1}, {1, 1}, {2, 1}, {3, 1}, {12, 2}, {40, 1}, {200, 400}, {300, 1}, {large, 500}, {largest, largest / 4}};
    for (const auto &shape : shapes) {
        for (int round = 0; round < (shape.count < 100 ? 40 : 1); ++round) {
            std::vector<BusyInterval> expected = RandomList(random, shape.count, shape.hours);
            std::vector<BusyInterval> swept = expected;
            // Lists outside the sweep's order: an end past 2101, a start
            // that is no date, the no-date value that orders last.
            if (shape.count == 40 && round % 4) {
                size_t at = random() % shape.count;
                expected[at].start = round % 4 == 1 ? MakeDate(2101, 12, 31, 23) : MakeDate(2026, 13, 1);
                if (round % 4 == 3)
                    OSSetNoDateHigh(&expected[at].start);
                expected[at].lengthMinutes = 120;
                swept[at] = expected[at];
            }
            DWORD expectedLanes = round % 6, sweptLanes = round % 6;
            OSErrorClearError();
            bool expectedOk = AllPairs(expected, &expectedLanes);
            ResultCode expectedError = OSErrorGetErrorValue();
            OSErrorClearError();
            ASSERT_EQ(expectedOk, BusyLanesAssign(swept.data(), static_cast<DWORD>(swept.size()), &sweptLanes, 5));
            EXPECT_EQ(expectedError, OSErrorGetErrorValue());
            ASSERT_EQ(expectedLanes, sweptLanes) << shape.count << " round " << round;
            for (size_t i = 0; i < shape.count; ++i)
                ASSERT_EQ(expected[i].lane, swept[i].lane) << shape.count << " round " << round << " at " << i;
        }
    }
}

}  // namespace
