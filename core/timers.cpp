// Timers, forwarded to the system.
#include "qziso32.h"

extern "C" UINT_PTR WINAPI OSSetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure)
{
    return SetTimer(window, id, milliseconds, procedure);
}

extern "C" BOOL WINAPI OSKillTimer(HWND window, UINT_PTR id)
{
    return KillTimer(window, id);
}

extern "C" BOOL WINAPI OSTimerTestReincarnate(DWORD, DWORD)
{
    return 1;
}
