// The time arithmetic the hour-scale gadgets (TimeSetter, TimeTracker) share.
#pragma once
#include "qziso32.h"

// Moves `t`; a result outside the calendar's years (it ends in 2101) fails
// with its reason and leaves `t` as it was, rather than keeping a value no
// later call accepts.
bool ShiftDateTime(DateTimeValue *t, LONG days, LONG hours, LONG minutes, LONG seconds);

// The snap step in force: the coarse one while Shift is held.
BYTE HeldStep(BYTE coarse, BYTE fine);

// The minute down to a multiple of `step`. A step of 0 cannot snap: it is
// recorded as bad parameters naming `what`, and `t` is kept.
bool SnapMinute(DateTimeValue *t, DWORD step, const char *what);
