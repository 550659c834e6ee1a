// Taking a call and its line down, and telling the host why.
#include "telephony_internal.h"

extern "C" WORD WINAPI Telephony_SetHangupMessage(HWND window, WORD message)
{
    g_tel.hangupWindow = window;
    g_tel.hangupMessage = message;
    return message;
}

// Repeats a synchronous service call while the user wants it repeated.
template <typename Call> static void RepeatWhileWanted(HWND window, Call call)
{
    LONG result;
    do
        result = call();
    while (TelephonyCheckResult(window, result, 1) && result != 0);
}

static void DropCall(HWND window)
{
    for (;;) {
        LONG reply = WaitForReply(g_tel.tapi.lineDrop(g_tel.currentCall, nullptr, 0));
        if (reply == 2 || reply == TAPI_INVALCALLSTATE)
            break;
        if (!TelephonyCheckResult(window, reply, 1) || reply == 0)
            break;
    }
    WaitForCallState(TAPI_CALLSTATE_IDLE);
}

extern "C" BOOL WINAPI Telephony_HangupCall(HWND window, DWORD reason)
{
    if (!TelephonyOn() || g_tel.hangupRunning || !g_tel.lineInUse)
        return 1;
    g_tel.hangupRunning = 1;
    if (g_tel.currentCall) {
        TapiLineCallStatus *status = ReadCallStatus(window, g_tel.currentCall);
        if (!status) {
            TelephonyLineStop(window);
            g_tel.hangupRunning = 0;
            return 0;
        }
        if (!(status->dwCallState & TAPI_CALLSTATE_IDLE))
            DropCall(window);
        TapiCall call = g_tel.currentCall;
        RepeatWhileWanted(window, [&] { return g_tel.tapi.lineDeallocateCall(call); });
        LocalFree(status);
    }
    if (g_tel.currentLine) {
        TapiLine line = g_tel.currentLine;
        RepeatWhileWanted(window, [&] { return g_tel.tapi.lineClose(line); });
    }
    if (g_tel.hangupMessage)
        SendMessageA(g_tel.hangupWindow, g_tel.hangupMessage, 0, static_cast<LPARAM>(reason));
    g_tel.lineInUse = 0;
    g_tel.hangupRunning = 0;
    g_tel.currentLine = 0;
    g_tel.currentCall = 0;
    return 1;
}
