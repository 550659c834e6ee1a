// The library's small pseudo-random generator: one process-wide word.
#include "qziso32.h"

static LONG g_randomState;

extern "C" DWORD WINAPI SeedRnd(void)
{
    g_randomState = static_cast<LONG>(GetTickCount());
    return static_cast<DWORD>(g_randomState);
}

// state = (state + state * 3430 + 13367) mod 65280, in signed 32-bit
// arithmetic that wraps; the result is state mod limit, with C's sign.
extern "C" int WINAPI Rnd(WORD limit)
{
    const ULONG state = static_cast<ULONG>(g_randomState);
    const LONG next = static_cast<LONG>(state + state * 3430u + 13367u);
    g_randomState = next % 65280;
    if (limit == 0) {
        // RV_DivideByZero would end the process by its default mode.
        OSErrorSetErrorInfo(RV_BadParms, "Rnd");
        return 0;
    }
    return g_randomState % limit;
}
