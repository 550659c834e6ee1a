// The lanes of a busy list. The lane of an interval depends on the lanes
// of the overlapping intervals before it in list order, and only on those
// (the ones after it are still 0 when it is given its lane). So the
// overlapping pairs are found by a sweep over the intervals in order of
// start, and each interval then reads only its own neighbours: the cost
// follows the number of clashes, not the square of the list.
//
// Lists the sweep cannot order exactly as the date comparison does (a time
// outside the calendar or a no-date value, an end past its last year,
// mixed hour biases, a length read as negative) and lists whose neighbour table cannot be
// allocated take the pass over all pairs, which gives the same lanes.
#include "busy_lanes.h"
#include <algorithm>

int TrackerOverlap(const DateTimeValue *aStart, DWORD aLength, const DateTimeValue *bStart, DWORD bLength)
{
    if (aLength == 0 || bLength == 0)
        return 0;
    int order = OSDateTimeCompare(aStart, bStart);
    if (order == 0)
        return 1;
    const DateTimeValue *earlier = order < 0 ? aStart : bStart;
    const DateTimeValue *later = order < 0 ? bStart : aStart;
    DWORD length = order < 0 ? aLength : bLength;
    DateTimeValue end = *earlier;
    if (!OSAdjustDateTime(&end, 0, 0, 0, 0, static_cast<LONG>(length), 0, 0))
        return -1;
    // An end past the calendar's last year lies after any start there is.
    if (!OSIsValidDateTime(&end))
        return 1;
    return OSDateTimeCompare(&end, later) > 0 ? 1 : 0;
}

namespace {

void RaiseLaneCount(DWORD lane, DWORD *laneCount, DWORD maxLanes)
{
    if (lane > *laneCount)
        *laneCount = lane > maxLanes ? maxLanes : lane;
}

// The pass over all pairs.
bool AllPairs(BusyInterval *list, DWORD count, DWORD *laneCount, DWORD maxLanes)
{
    for (DWORD i = 0; i < count; ++i)
        list[i].lane = 0;
    for (DWORD i = 0; i < count; ++i) {
        BusyInterval &b = list[i];
        for (DWORD j = 0; j < count; ++j) {
            if (j == i)
                continue;
            int overlap = TrackerOverlap(&b.start, b.lengthMinutes, &list[j].start, list[j].lengthMinutes);
            if (overlap < 0) {
                OSErrorSetErrorInfo(RV_Failure);
                return false;
            }
            if (overlap && list[j].lane == b.lane)
                ++b.lane;
        }
        RaiseLaneCount(b.lane, laneCount, maxLanes);
    }
    return true;
}

// Orders valid times of one hour bias exactly as OSDateTimeCompare does.
unsigned long long Key(const DateTimeValue &v)
{
    unsigned long long k = v.year;
    k = k * 13 + v.month;
    k = k * 32 + v.day;
    k = k * 24 + v.hour;
    k = k * 60 + v.minute;
    return k * 60 + v.second;
}

template <typename T> T *Take(SIZE_T count)
{
    if (count == 0 || count > static_cast<SIZE_T>(-1) / sizeof(T))
        return nullptr;
    return static_cast<T *>(LocalAlloc(LMEM_FIXED, count * sizeof(T)));
}

struct Work {
    unsigned long long *from = nullptr;  // start keys
    unsigned long long *to = nullptr;    // end keys
    DWORD *order = nullptr;              // the timed intervals by start, then index
    DWORD *active = nullptr;             // those begun and not yet ended
    DWORD *first = nullptr;              // neighbours of i: next[first[i] .. first[i + 1])
    DWORD *next = nullptr;
    ~Work()
    {
        void *blocks[] = {from, to, order, active, first, next};
        for (void *block : blocks)
            if (block)
                LocalFree(block);
    }
};

// The keys of every interval; false when one cannot be ordered by them.
bool MakeKeys(const BusyInterval *list, DWORD count, Work &w, DWORD *timed)
{
    bool biasSeen = false;
    BYTE bias = 0;
    *timed = 0;
    for (DWORD i = 0; i < count; ++i) {
        const BusyInterval &b = list[i];
        if (b.lengthMinutes == 0)
            continue;
        // The two no-date values pass as valid but order outside the years.
        if (b.lengthMinutes > 0x7FFFFFFFu || b.start.year < 1800 || !OSIsValidDateTime(&b.start) ||
            (biasSeen && b.start.hourBias != bias))
            return false;
        biasSeen = true;
        bias = b.start.hourBias;
        DateTimeValue end = b.start;
        if (!OSAdjustDateTime(&end, 0, 0, 0, 0, static_cast<LONG>(b.lengthMinutes), 0, 0) ||
            !OSIsValidDateTime(&end) || end.hourBias != bias)
            return false;
        w.from[i] = Key(b.start);
        w.to[i] = Key(end);
        w.order[(*timed)++] = i;
    }
    return true;
}

// The sweep: each interval meets those begun before it (or with it) that
// have not ended by its start. With `fill` null it only counts.
ULONGLONG Sweep(const Work &w, DWORD timed, DWORD *fill)
{
    ULONGLONG pairs = 0;
    DWORD live = 0;
    for (DWORD k = 0; k < timed; ++k) {
        DWORD x = w.order[k];
        DWORD kept = 0;
        for (DWORD a = 0; a < live; ++a)
            if (w.to[w.active[a]] > w.from[x])
                w.active[kept++] = w.active[a];
        live = kept;
        for (DWORD a = 0; a < live; ++a) {
            DWORD y = w.active[a];
            if (fill) {
                w.next[fill[x]++] = y;
                w.next[fill[y]++] = x;
            } else {
                ++w.first[x + 1];
                ++w.first[y + 1];
            }
        }
        pairs += live;
        w.active[live++] = x;
    }
    return pairs;
}

}  // namespace

bool BusyLanesAssign(BusyInterval *list, DWORD count, DWORD *laneCount, DWORD maxLanes)
{
    if (count == 0)
        return true;
    Work w;
    w.from = Take<unsigned long long>(count);
    w.to = Take<unsigned long long>(count);
    w.order = Take<DWORD>(count);
    w.active = Take<DWORD>(count);
    w.first = Take<DWORD>(static_cast<SIZE_T>(count) + 1);
    DWORD timed = 0;
    if (!w.from || !w.to || !w.order || !w.active || !w.first || !MakeKeys(list, count, w, &timed))
        return AllPairs(list, count, laneCount, maxLanes);
    std::sort(w.order, w.order + timed, [&w](DWORD a, DWORD b) {
        return w.from[a] != w.from[b] ? w.from[a] < w.from[b] : a < b;
    });
    ZeroMemory(w.first, (static_cast<SIZE_T>(count) + 1) * sizeof(DWORD));
    ULONGLONG pairs = Sweep(w, timed, nullptr);
    if (pairs > 0x7FFFFFFFull)
        return AllPairs(list, count, laneCount, maxLanes);
    for (DWORD i = 0; i < count; ++i)
        w.first[i + 1] += w.first[i];
    if (pairs) {
        w.next = Take<DWORD>(static_cast<SIZE_T>(pairs) * 2);
        DWORD *fill = Take<DWORD>(count);
        if (!w.next || !fill) {
            if (fill)
                LocalFree(fill);
            return AllPairs(list, count, laneCount, maxLanes);
        }
        CopyMemory(fill, w.first, count * sizeof(DWORD));
        Sweep(w, timed, fill);
        LocalFree(fill);
    }
    // In list order: the neighbours before an interval, in list order, each
    // raise its lane when theirs equals it; a neighbour after it still has
    // lane 0, so it raises a lane of 0 to 1.
    for (DWORD i = 0; i < count; ++i) {
        DWORD *begin = w.next + w.first[i], *end = w.next + w.first[i + 1];
        DWORD lane = 0;
        if (begin != end) {
            std::sort(begin, end);
            DWORD *p = begin;
            for (; p != end && *p < i; ++p)
                if (list[*p].lane == lane)
                    ++lane;
            if (lane == 0 && p != end)
                lane = 1;
        }
        list[i].lane = lane;
        RaiseLaneCount(lane, laneCount, maxLanes);
    }
    return true;
}
