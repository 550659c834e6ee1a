// The two waits of the dialling code. Both pump the window thread's
// messages, since the service's callback arrives through them; a nested
// wait that finishes ends the wait around it.
#include "telephony_internal.h"

// A call state is waited for at most 30 seconds, by the system's tick count.
static const DWORD kCallStateLimitMs = 30000;

// Handles one waiting message; without one, sleeps until input arrives or
// a short while has passed, rather than spin.
void PumpOne()
{
    MSG msg;
    if (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    } else {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    }
}

LONG WaitForReply(LONG request)
{
    g_tel.replyWaitOver = 0;
    TelephonyTrace("Request ID is %d", request);
    if (request < 1) {
        g_tel.replyWaitOver = 1;
        return request;
    }
    g_tel.replyArrived = 0;
    g_tel.pendingRequest = request;
    g_tel.replyResult = TAPI_OPERATIONFAILED;
    LONG result = 1;
    for (;;) {
        PumpOne();
        if (g_tel.replyArrived) {
            result = g_tel.replyResult;
            break;
        }
        if (!g_tel.lineInUse || g_tel.replyWaitOver)
            break;
    }
    g_tel.replyWaitOver = 1;
    return result;
}

DWORD WaitForCallState(DWORD target)
{
    g_tel.callWaitOver = 0;
    DWORD start = GetTickCount();
    g_tel.callStateSeen = 0;
    DWORD result;
    for (;;) {
        if (target && g_tel.lastCallState == target) {
            result = 0;
            break;
        }
        PumpOne();
        if (!target && g_tel.callStateSeen) {
            result = 0;
            break;
        }
        if (!g_tel.lineInUse || g_tel.callWaitOver) {
            result = 1;
            break;
        }
        if (GetTickCount() - start > kCallStateLimitMs) {
            result = 2;
            break;
        }
    }
    g_tel.callWaitOver = 1;
    return result;
}
