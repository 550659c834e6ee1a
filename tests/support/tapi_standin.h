// The scripted stand-in of the telephony service: what a test gives it and
// the names of its extra exports. It is built as its own "tapi32.dll" (in
// bin/tapi_standin/, and a variant without "lineDial" in bin/tapi_lacking/)
// and handed to the library with Telephony_Initialize.
//
// It writes one transcript line per service call with its arguments, and
// delivers its events the way the real service does: it posts them to a
// hidden window of its own on the thread that registered, and calls the
// library's callback only when that thread pumps its messages.
#pragma once
#include <windows.h>

// Where an event's device argument points.
enum StandInTarget : DWORD {
    kStandInLine = 0,      // the open line
    kStandInCall = 1,      // the call made by lineMakeCall
    kStandInOtherCall = 2, // a call the library knows nothing of
    kStandInNoDevice = 3,  // 0
};

struct StandInEvent {
    DWORD message;  // LINE_CALLSTATE, LINE_CLOSE, LINE_LINEDEVSTATE, LINE_CREATE...
    DWORD target;   // StandInTarget
    DWORD_PTR param1, param2, param3;
};

// What a line device says of itself.
struct StandInDevice {
    DWORD apiVersion;       // what lineNegotiateAPIVersion agrees; 0 refuses
    DWORD bearerModes;      // LINEDEVCAPS
    DWORD lineFeatures;
    DWORD devCapFlags;
    DWORD addrCapFlags;     // LINEADDRESSCAPS
    DWORD addressFeatures;  // LINEADDRESSSTATUS
};

// Results of a plan: an asynchronous call hands out a request id when its
// result is kStandInAsync, and its reply never comes when the reply is
// kStandInNever.
const LONG kStandInAsync = 0x7FFFFFFF;
const LONG kStandInNever = 0x7FFFFFFE;

// StandIn_Reset(): no plans, an empty transcript, one usable device.
typedef void(WINAPI *StandInResetProc)(void);
// StandIn_SetDevice(device, record): devices 0.. are numbered in order.
typedef void(WINAPI *StandInSetDeviceProc)(DWORD, const StandInDevice *);
// StandIn_Plan(function, result, reply, events, count): the next call of
// `function` answers `result` (and `reply`), then posts the events.
typedef void(WINAPI *StandInPlanProc)(const char *, LONG, LONG, const StandInEvent *, DWORD);
// StandIn_Post(events, count): unsolicited events, posted now.
typedef void(WINAPI *StandInPostProc)(const StandInEvent *, DWORD);
// StandIn_GrowOnce(function): its next read says it needs 100 bytes more.
typedef void(WINAPI *StandInGrowOnceProc)(const char *);
// StandIn_TakeTranscript(buffer, size): the lines so far, each ended by
// '\n', and forgets them; returns the size needed.
typedef DWORD(WINAPI *StandInTakeTranscriptProc)(char *, DWORD);
