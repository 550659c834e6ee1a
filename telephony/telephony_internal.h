// The telephony family's process-wide state, its table of the service's
// entry points, and the steps its units share. All of it runs on the window
// thread: the service delivers its callback through that thread's queue.
#pragma once
#include "../core/module_globals.h"
#include "tapi_records.h"

// The service's 21 entry points, looked up by name in this order.
struct TapiEntries {
    LONG(WINAPI *lineInitialize)(TapiLineApp *, HINSTANCE, TapiLineCallback, LPCSTR, LPDWORD);
    LONG(WINAPI *lineTranslateDialog)(TapiLineApp, DWORD, DWORD, HWND, LPCSTR);
    LONG(WINAPI *lineGetTranslateCaps)(TapiLineApp, DWORD, void *);
    LONG(WINAPI *lineSetCurrentLocation)(TapiLineApp, DWORD);
    LONG(WINAPI *lineGetCountry)(DWORD, DWORD, void *);
    LONG(WINAPI *lineGetAddressCaps)(TapiLineApp, DWORD, DWORD, DWORD, DWORD, TapiLineAddressCaps *);
    LONG(WINAPI *lineGetDevCaps)(TapiLineApp, DWORD, DWORD, DWORD, TapiLineDevCaps *);
    LONG(WINAPI *lineOpen)(TapiLineApp, DWORD, TapiLine *, DWORD, DWORD, DWORD_PTR, DWORD, DWORD,
                           const TapiLineCallParams *);
    LONG(WINAPI *lineClose)(TapiLine);
    LONG(WINAPI *lineNegotiateAPIVersion)(TapiLineApp, DWORD, DWORD, DWORD, LPDWORD, TapiExtensionId *);
    LONG(WINAPI *lineGetAddressStatus)(TapiLine, DWORD, TapiLineAddressStatus *);
    LONG(WINAPI *lineConfigDialogEdit)(DWORD, HWND, LPCSTR, const void *, DWORD, void *);
    LONG(WINAPI *lineSetDevConfig)(DWORD, const void *, DWORD, LPCSTR);
    LONG(WINAPI *lineGetDevConfig)(DWORD, void *, LPCSTR);
    LONG(WINAPI *lineMakeCall)(TapiLine, TapiCall *, LPCSTR, DWORD, const TapiLineCallParams *);
    LONG(WINAPI *lineDial)(TapiCall, LPCSTR, DWORD);
    LONG(WINAPI *lineGetCallStatus)(TapiCall, TapiLineCallStatus *);
    LONG(WINAPI *lineDeallocateCall)(TapiCall);
    LONG(WINAPI *lineDrop)(TapiCall, LPCSTR, DWORD);
    LONG(WINAPI *lineShutdown)(TapiLineApp);
    LONG(WINAPI *lineTranslateAddress)(TapiLineApp, DWORD, DWORD, LPCSTR, DWORD, DWORD, void *);
};
static_assert(sizeof(TapiEntries) == 21 * sizeof(void *), "one pointer per entry point");

struct TelephonyState {
    TapiEntries tapi;
    TapiLineApp lineApp;        // 0 while not registered
    DWORD numDevices;           // grows on LINE_CREATE
    TapiLine currentLine;
    TapiCall currentCall;
    DWORD lineInUse;            // from the open of a line for dialling to hang-up
    DWORD lineStarting;         // re-entry guards
    DWORD lineStopping;
    LONG pendingRequest;        // the request waited for, and its reply
    DWORD replyArrived;
    LONG replyResult;
    DWORD lastCallState;        // of the current call
    DWORD callStateSeen;
    HWND hangupWindow;          // told of a hang-up
    WORD hangupMessage;
    DWORD hangupRunning;
    DWORD callWaitOver;
    DWORD replyWaitOver;
    DWORD unansweredRetries;    // unavailable results retried with no box shown
};
extern TelephonyState g_tel;

// TelephonyEnabled and the service's module live in the module globals, so
// that detach can free the library. The entry points are bound by the
// client start; until then the family acts as if it were off rather than
// call through an empty table.
inline bool TelephonyOn() { return g_module.telephonyLoaded != 0 && g_tel.tapi.lineInitialize != nullptr; }

// Looks up the 21 entry points; false at the first one missing.
bool TapiBindEntries(HMODULE library);

BOOL TelephonyLineStart(HWND window, BOOL interactive);
BOOL TelephonyLineStop(HWND window);
// Whether to go on after a service result; tells the user why not.
BOOL TelephonyCheckResult(HWND window, LONG result, BOOL interactive);
void CALLBACK TelephonyLineCallback(DWORD device, DWORD message, DWORD_PTR instance,
                                    DWORD_PTR param1, DWORD_PTR param2, DWORD_PTR param3);

// Handles one waiting message of the window thread, or sleeps briefly.
void PumpOne();
// The waits pump the window thread's messages.
LONG WaitForReply(LONG request);
DWORD WaitForCallState(DWORD target);

// Growing reads of the service's variable-sized records: a zeroed local
// block of `firstSize` bytes, grown to the size the service needs. Null on
// failure; the caller frees the block with LocalFree.
TapiLineDevCaps *ReadDevCaps(DWORD device, DWORD version);
TapiLineAddressCaps *ReadAddressCaps(DWORD device, DWORD version);
TapiLineAddressStatus *ReadAddressStatus(TapiLine line);
TapiLineCallStatus *ReadCallStatus(HWND window, TapiCall call);

// Trace points; they do nothing.
inline void TelephonyTrace(const char *, ...) {}
