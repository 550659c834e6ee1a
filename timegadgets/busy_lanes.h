// The busy list's geometry in time: the overlap of two intervals and the
// lane of each interval of a list.
#pragma once
#include <windows.h>
#include "qziso32.h"

// 1 overlap, 0 none, -1 the arithmetic failed. A length of 0 never
// overlaps; touching intervals do not clash; equal starts always do.
int TrackerOverlap(const DateTimeValue *aStart, DWORD aLength, const DateTimeValue *bStart, DWORD bLength);

// Every lane of `list` as one pass over all the others in list order gives
// it, with every lane 0 before the pass: an interval's lane starts at 0 and
// rises by one for each overlapping interval met whose lane equals it.
// `laneCount` grows to the largest lane (at most `maxLanes`) and never
// falls. False, with RV_Failure recorded, when an overlap cannot be told.
bool BusyLanesAssign(BusyInterval *list, DWORD count, DWORD *laneCount, DWORD maxLanes);
