// The service's callback. It arrives through the window thread's queue, so
// it runs inside whatever loop pumps that queue, a wait of the library's own
// included.
#include "telephony_internal.h"

static void HangUpCall(DWORD reason) { Telephony_HangupCall(nullptr, reason); }

static void OnCallState(DWORD call, DWORD state, DWORD privilege)
{
    if (call != g_tel.currentCall)
        return;
    TelephonyTrace("call state");
    g_tel.lastCallState = state;
    g_tel.callStateSeen = 1;
    switch (privilege) {
    case 0:
        break;
    case 4: // owner: the call is hung up, and the state handled as well
        HangUpCall(TAPI_CALLSTATE_DISCONNECTED);
        break;
    default: // monitor, or anything else
        HangUpCall(TAPI_CALLSTATE_DISCONNECTED);
        return;
    }
    switch (state) {
    case TAPI_CALLSTATE_IDLE:
    case TAPI_CALLSTATE_BUSY:
    case TAPI_CALLSTATE_SPECIALINFO:
    case TAPI_CALLSTATE_DISCONNECTED:
        HangUpCall(state);
        break;
    default:
        break;
    }
}

static void OnLineCreate(DWORD device)
{
    if (g_tel.numDevices <= device)
        g_tel.numDevices = device + 1;
}

static void OnDeviceState(DWORD state, DWORD_PTR detail, DWORD_PTR further)
{
    switch (state) {
    case TAPI_DEVSTATE_DISCONNECTED:
    case TAPI_DEVSTATE_OUTOFSERVICE:
    case TAPI_DEVSTATE_MAINTENANCE:
        HangUpCall(TAPI_CALLSTATE_DISCONNECTED);
        break;
    case TAPI_DEVSTATE_REINIT:
        switch (static_cast<DWORD>(detail)) {
        case 0:
            TelephonyLineStop(nullptr);
            break;
        case TAPI_LINE_LINEDEVSTATE:
            OnDeviceState(static_cast<DWORD>(further), 0, 0);
            break;
        case TAPI_LINE_CREATE:
            OnLineCreate(static_cast<DWORD>(further));
            break;
        }
        break;
    default:
        break;
    }
}

void CALLBACK TelephonyLineCallback(DWORD device, DWORD message, DWORD_PTR, DWORD_PTR param1,
                                    DWORD_PTR param2, DWORD_PTR param3)
{
    switch (message) {
    case TAPI_LINE_CALLSTATE:
        OnCallState(device, static_cast<DWORD>(param1), static_cast<DWORD>(param3));
        break;
    case TAPI_LINE_CLOSE:
        g_tel.currentLine = 0;
        g_tel.currentCall = 0;
        HangUpCall(TAPI_CALLSTATE_DISCONNECTED);
        break;
    case TAPI_LINE_LINEDEVSTATE:
        OnDeviceState(static_cast<DWORD>(param1), param2, param3);
        break;
    case TAPI_LINE_REPLY:
        TelephonyTrace("Got a reply on line %d %x", g_tel.pendingRequest, static_cast<LONG>(param2));
        if (static_cast<LONG>(param1) == g_tel.pendingRequest) {
            g_tel.replyArrived = 1;
            g_tel.replyResult = static_cast<LONG>(param2);
        }
        break;
    case TAPI_LINE_CREATE:
        OnLineCreate(static_cast<DWORD>(param1));
        break;
    default:
        break;
    }
}
