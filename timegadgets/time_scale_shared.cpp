#include "time_scale_shared.h"

bool ShiftDateTime(DateTimeValue *t, LONG days, LONG hours, LONG minutes, LONG seconds)
{
    DateTimeValue moved = *t;
    if (!OSAdjustDateTime(&moved, 0, 0, days, hours, minutes, seconds, 0))
        return false;
    if (!OSIsValidDateTime(&moved)) {
        OSWhyIsInvalidDateTime(&moved);
        return false;
    }
    *t = moved;
    return true;
}

BYTE HeldStep(BYTE coarse, BYTE fine)
{
    return (GetKeyState(VK_SHIFT) & 0x80) ? coarse : fine;
}

bool SnapMinute(DateTimeValue *t, DWORD step, const char *what)
{
    if (step == 0) {
        OSErrorSetErrorInfo(RV_BadParms, what);
        return false;
    }
    t->minute = static_cast<BYTE>((t->minute / step) * step);
    return true;
}
