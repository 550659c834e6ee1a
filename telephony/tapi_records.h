// The telephony service's records and values as its 1.4 interface defines
// them. They are declared here rather than taken from a system header so that
// both builds pass the service exactly the 1.4 layouts.
#pragma once
#include <windows.h>

typedef DWORD TapiLineApp;   // line application, line and call handles:
typedef DWORD TapiLine;      // 32-bit values on both builds
typedef DWORD TapiCall;

// The line callback: device, message, instance and three parameters, the
// last four pointer-wide on x64. Request ids and results in them are 32-bit.
typedef void(CALLBACK *TapiLineCallback)(DWORD device, DWORD message, DWORD_PTR instance,
                                         DWORD_PTR param1, DWORD_PTR param2, DWORD_PTR param3);

struct TapiDialParams {
    DWORD dwDialPause, dwDialSpeed, dwDigitDuration, dwWaitForDialtone;
};

struct TapiLineDevCaps {
    DWORD dwTotalSize, dwNeededSize, dwUsedSize;
    DWORD dwProviderInfoSize, dwProviderInfoOffset, dwSwitchInfoSize, dwSwitchInfoOffset;
    DWORD dwPermanentLineID, dwLineNameSize, dwLineNameOffset, dwStringFormat;
    DWORD dwAddressModes, dwNumAddresses, dwBearerModes, dwMaxRate, dwMediaModes;
    DWORD dwGenerateToneModes, dwGenerateToneMaxNumFreq, dwGenerateDigitModes;
    DWORD dwMonitorToneMaxNumFreq, dwMonitorToneMaxNumEntries, dwMonitorDigitModes;
    DWORD dwGatherDigitsMinTimeout, dwGatherDigitsMaxTimeout;
    DWORD dwMedCtlDigitMaxListSize, dwMedCtlMediaMaxListSize, dwMedCtlToneMaxListSize;
    DWORD dwMedCtlCallStateMaxListSize, dwDevCapFlags, dwMaxNumActiveCalls, dwAnswerMode;
    DWORD dwRingModes, dwLineStates, dwUUIAcceptSize, dwUUIAnswerSize, dwUUIMakeCallSize;
    DWORD dwUUIDropSize, dwUUISendUserUserInfoSize, dwUUICallInfoSize;
    TapiDialParams MinDialParams, MaxDialParams, DefaultDialParams;
    DWORD dwNumTerminals, dwTerminalCapsSize, dwTerminalCapsOffset, dwTerminalTextEntrySize;
    DWORD dwTerminalTextSize, dwTerminalTextOffset, dwDevSpecificSize, dwDevSpecificOffset;
    DWORD dwLineFeatures;
};
static_assert(sizeof(TapiLineDevCaps) == 240, "LINEDEVCAPS of the 1.4 interface");

struct TapiLineAddressCaps {
    DWORD dwTotalSize, dwNeededSize, dwUsedSize;
    DWORD dwLineDeviceID, dwAddressSize, dwAddressOffset, dwDevSpecificSize, dwDevSpecificOffset;
    DWORD dwAddressSharing, dwAddressStates, dwCallInfoStates, dwCallerIDFlags, dwCalledIDFlags;
    DWORD dwConnectedIDFlags, dwRedirectionIDFlags, dwRedirectingIDFlags, dwCallStates;
    DWORD dwDialToneModes, dwBusyModes, dwSpecialInfo, dwDisconnectModes, dwMaxNumActiveCalls;
    DWORD dwMaxNumOnHoldCalls, dwMaxNumOnHoldPendingCalls, dwMaxNumConference, dwMaxNumTransConf;
    DWORD dwAddrCapFlags, dwCallFeatures, dwRemoveFromConfCaps, dwRemoveFromConfState;
    DWORD dwTransferModes, dwParkModes, dwForwardModes, dwMaxForwardEntries, dwMaxSpecificEntries;
    DWORD dwMinFwdNumRings, dwMaxFwdNumRings, dwMaxCallCompletions, dwCallCompletionConds;
    DWORD dwCallCompletionModes, dwNumCompletionMessages, dwCompletionMsgTextEntrySize;
    DWORD dwCompletionMsgTextSize, dwCompletionMsgTextOffset, dwAddressFeatures;
};
static_assert(sizeof(TapiLineAddressCaps) == 180, "LINEADDRESSCAPS of the 1.4 interface");

struct TapiLineAddressStatus {
    DWORD dwTotalSize, dwNeededSize, dwUsedSize;
    DWORD dwNumInUse, dwNumActiveCalls, dwNumOnHoldCalls, dwNumOnHoldPendCalls;
    DWORD dwAddressFeatures, dwNumRingsNoAnswer, dwForwardNumEntries, dwForwardSize;
    DWORD dwForwardOffset, dwTerminalModesSize, dwTerminalModesOffset;
    DWORD dwDevSpecificSize, dwDevSpecificOffset;
};
static_assert(sizeof(TapiLineAddressStatus) == 64, "LINEADDRESSSTATUS of the 1.4 interface");

struct TapiLineCallStatus {
    DWORD dwTotalSize, dwNeededSize, dwUsedSize;
    DWORD dwCallState, dwCallStateMode, dwCallPrivilege, dwCallFeatures;
    DWORD dwDevSpecificSize, dwDevSpecificOffset;
};
static_assert(sizeof(TapiLineCallStatus) == 36, "LINECALLSTATUS of the 1.4 interface");

// The call parameters as the library builds them: the 1.4 fields, then
// room up to 176 bytes that stays zero; the display name follows at 176.
struct TapiLineCallParams {
    DWORD dwTotalSize, dwBearerMode, dwMinRate, dwMaxRate, dwMediaMode, dwCallParamFlags;
    DWORD dwAddressMode, dwAddressID;
    TapiDialParams DialParams;
    DWORD dwOrigAddressSize, dwOrigAddressOffset;
    DWORD dwDisplayableAddressSize, dwDisplayableAddressOffset;
    DWORD dwCalledPartySize, dwCalledPartyOffset, dwCommentSize, dwCommentOffset;
    DWORD dwUserUserInfoSize, dwUserUserInfoOffset, dwHighLevelCompSize, dwHighLevelCompOffset;
    DWORD dwLowLevelCompSize, dwLowLevelCompOffset, dwDevSpecificSize, dwDevSpecificOffset;
    DWORD dwReserved[16];
};
static_assert(sizeof(TapiLineCallParams) == 176, "call parameters with the name at 176");

struct TapiExtensionId {
    DWORD dwExtensionID0, dwExtensionID1, dwExtensionID2, dwExtensionID3;
};

// Service results.
enum : LONG {
    TAPI_ALLOCATED = LONG(0x80000001),
    TAPI_DIALBILLING = LONG(0x80000008),
    TAPI_DIALDIALTONE = LONG(0x80000009),
    TAPI_DIALPROMPT = LONG(0x8000000A),
    TAPI_DIALQUIET = LONG(0x8000000B),
    TAPI_INCOMPATIBLEAPIVERSION = LONG(0x8000000C),
    TAPI_INIFILECORRUPT = LONG(0x8000000E),
    TAPI_INVALCALLSTATE = LONG(0x8000001C),
    TAPI_INVALCARD = LONG(0x8000001E),
    TAPI_INVALLOCATION = LONG(0x8000002D),
    TAPI_NODEVICE = LONG(0x80000042),
    TAPI_NODRIVER = LONG(0x80000043),
    TAPI_NOMEM = LONG(0x80000044),
    TAPI_OPERATIONFAILED = LONG(0x80000048),
    TAPI_RESOURCEUNAVAIL = LONG(0x8000004B),
    TAPI_REINIT = LONG(0x80000052),
    TAPI_NOMULTIPLEINSTANCE = LONG(0x80000056),
};

// Callback messages, call states and the other values the library uses.
enum : DWORD {
    TAPI_LINE_CALLSTATE = 2,
    TAPI_LINE_CLOSE = 3,
    TAPI_LINE_LINEDEVSTATE = 8,
    TAPI_LINE_REPLY = 12,
    TAPI_LINE_CREATE = 19,

    TAPI_CALLSTATE_IDLE = 0x1,
    TAPI_CALLSTATE_BUSY = 0x40,
    TAPI_CALLSTATE_SPECIALINFO = 0x80,
    TAPI_CALLSTATE_DISCONNECTED = 0x4000,

    TAPI_DEVSTATE_DISCONNECTED = 0x8,
    TAPI_DEVSTATE_OUTOFSERVICE = 0x80,
    TAPI_DEVSTATE_MAINTENANCE = 0x100,
    TAPI_DEVSTATE_REINIT = 0x40000,

    TAPI_VERSION_1_3 = 0x10003,
    TAPI_VERSION_1_4 = 0x10004,
    TAPI_BEARERMODE_VOICE = 0x1,
    TAPI_LINEFEATURE_MAKECALL = 0x8,
    TAPI_ADDRFEATURE_MAKECALL = 0x2,
    TAPI_ADDRCAPFLAGS_PARTIALDIAL = 0x10000,
    TAPI_CALLFEATURE_DIAL = 0x40,
    TAPI_CALLPRIVILEGE_NONE = 0x1,
    TAPI_MEDIAMODE_INTERACTIVEVOICE = 0x4,
    TAPI_MEDIAMODE_DATAMODEM = 0x10,
    TAPI_CALLPARAMFLAGS_IDLE = 0x2,
    TAPI_ADDRESSMODE_ADDRESSID = 0x1,
};
