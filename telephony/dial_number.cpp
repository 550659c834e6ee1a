// Dialling a number piece by piece at its dial modifiers, with partial
// dialling, and asking the user at each stop.
#include "telephony_internal.h"
#include <cstring>

namespace {
struct DialModifier {
    LONG refusal;      // the service's result when it refuses the modifier
    DWORD capability;  // the line's capability flag; 0 always counts
    char character;
    UINT message;
};
const DialModifier kDialModifierTable[] = {
    {TAPI_DIALBILLING, 0x40, '$', 1170},
    {TAPI_DIALDIALTONE, 0x100, 'W', 1171},
    {TAPI_DIALDIALTONE, 0x100, 'w', 1171},
    {TAPI_DIALQUIET, 0x80, '@', 1172},
    {TAPI_DIALPROMPT, 0, '?', 1173},
};
const int kModifierCount = sizeof kDialModifierTable / sizeof kDialModifierTable[0];

// The three records a dial fetches; freed together on failure.
struct DialRecords {
    TapiLineAddressCaps *addressCaps;
    TapiLineCallParams *params;
    TapiLineDevCaps *devCaps;
};

void FreeDialRecords(DialRecords &records)
{
    if (records.addressCaps)
        LocalFree(records.addressCaps);
    if (records.params)
        LocalFree(records.params);
    if (records.devCaps)
        LocalFree(records.devCaps);
    records = DialRecords{};
}

int ShowMessage(HWND window, UINT id, UINT flags)
{
    return OSMessage(window, g_module.hResourceLibrary, g_module.appTitle, id, flags);
}

TapiLineCallParams *BuildCallParams(DWORD address, const char *displayName)
{
    if (!displayName)
        displayName = "";
    DWORD nameSize = lstrlenA(displayName) + 1;
    DWORD size = sizeof(TapiLineCallParams) + nameSize;
    auto *params = static_cast<TapiLineCallParams *>(LocalAlloc(LMEM_ZEROINIT, size));
    if (!params) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, size);
        return nullptr;
    }
    params->dwTotalSize = size;
    params->dwBearerMode = TAPI_BEARERMODE_VOICE;
    params->dwMediaMode = TAPI_MEDIAMODE_INTERACTIVEVOICE;
    params->dwCallParamFlags = TAPI_CALLPARAMFLAGS_IDLE;
    params->dwAddressMode = TAPI_ADDRESSMODE_ADDRESSID;
    params->dwAddressID = address;
    params->dwDisplayableAddressSize = nameSize;
    params->dwDisplayableAddressOffset = sizeof(TapiLineCallParams);
    memcpy(params + 1, displayName, nameSize);
    return params;
}

// Shows the verdict of the usable-line check; true when the line will do.
bool CheckLine(HWND window, DWORD device)
{
    static const UINT kVerdictMessages[7] = {0, 1165, 1166, 0, 1167, 1168, 1169};
    DWORD verdict = Telephony_VerifyUsableLine(window, device);
    if (verdict == 0)
        return true;
    if (verdict < 7 && kVerdictMessages[verdict])
        ShowMessage(window, kVerdictMessages[verdict], 0);
    return false;
}

// Opens the dialling line; false after telling the user.
bool OpenDialLine(HWND window, DWORD device, DWORD version)
{
    g_tel.lineInUse = 1;
    for (;;) {
        LONG result = g_tel.tapi.lineOpen(g_tel.lineApp, device, &g_tel.currentLine, version, 0, 0,
                                          TAPI_CALLPRIVILEGE_NONE, TAPI_MEDIAMODE_DATAMODEM, nullptr);
        TelephonyTrace("Line open returned %d", result);
        if (result == TAPI_ALLOCATED) {
            ShowMessage(window, 1175, 0);
            return false;
        }
        if (!TelephonyCheckResult(window, result, 1)) {
            ShowMessage(window, 1176, 0);
            return false;
        }
        if (result == 0)
            return true;
    }
}

// Waits until the call can take more digits, then asks the user at the
// stop. False when the wait or the status read fails or the user cancels.
bool PassStop(HWND window, char stop)
{
    for (;;) {
        TapiLineCallStatus *status = ReadCallStatus(window, g_tel.currentCall);
        if (!status)
            return false;
        bool canDial = (status->dwCallFeatures & TAPI_CALLFEATURE_DIAL) != 0;
        LocalFree(status);
        if (canDial)
            break;
        if (WaitForCallState(0) != 0)
            return false;
    }
    for (const DialModifier &row : kDialModifierTable) {
        if (row.character == stop && ShowMessage(window, row.message, MB_OKCANCEL) == IDCANCEL)
            return false;
    }
    return true;
}

// Sends the number piece by piece; true when the last piece went out.
bool DialPieces(HWND window, const char *number, char *work, const DialRecords &records)
{
    char stops[16] = {};
    size_t stopCount = 0;
    for (const DialModifier &row : kDialModifierTable) {
        if ((records.devCaps->dwDevCapFlags & row.capability) == row.capability)
            stops[stopCount++] = row.character;
    }
    const size_t length = strlen(number);
    size_t position = 0;
    bool firstPiece = true;
    bool refused = false;
    while (refused || position < length) {
        refused = false;
        size_t run = strcspn(number + position, stops);
        char stop = 0;
        if (position + run < length) {
            if (!(records.addressCaps->dwAddrCapFlags & TAPI_ADDRCAPFLAGS_PARTIALDIAL)) {
                ShowMessage(window, 1177, 0);
                return false;
            }
            memcpy(work, number + position, run);
            lstrcpyA(work + run, ";");
            stop = number[position + run];
            position += run + 1;
        } else {
            lstrcpyA(work, number + position);
            position = length;
        }
        LONG reply;
        for (;;) {
            TelephonyTrace("Dialing %s", work);
            LONG request = firstPiece
                               ? g_tel.tapi.lineMakeCall(g_tel.currentLine, &g_tel.currentCall, work, 0,
                                                         records.params)
                               : g_tel.tapi.lineDial(g_tel.currentCall, work, 0);
            reply = WaitForReply(request);
            TelephonyTrace("lReturn from number dialing is %d", reply);
            if (reply >= TAPI_DIALBILLING && reply <= TAPI_DIALQUIET)
                break;
            if (!TelephonyCheckResult(window, reply, 1))
                return false;
            if (reply == 0)
                break;
        }
        if (reply != 0) {
            // The service refuses a modifier in the piece: stop at it from
            // now on, and go on from where the position stands. An empty
            // piece refused leaves nothing to split: the dial fails.
            if (!work[0]) {
                OSErrorSetErrorInfo(RV_Retry);
                return false;
            }
            for (const DialModifier &row : kDialModifierTable) {
                if (row.refusal == reply && stopCount < sizeof stops - 1)
                    stops[stopCount++] = row.character;
            }
            refused = true;
            continue;
        }
        firstPiece = false;
        if (stop && !PassStop(window, stop))
            return false;
    }
    return true;
}
}

extern "C" BOOL WINAPI Telephony_DialNumber(HWND window, LONG device, DWORD address, const char *number,
                                            const char *displayName)
{
    if (!g_module.telephonyLoaded)
        return 1;
    if (device == -1) {
        ShowMessage(window, 1153, MB_ICONEXCLAMATION);
        return 0;
    }
    if (!number) {
        OSErrorSetErrorInfo(RV_BadParms, "Telephony_DialNumber");
        return 0;
    }
    if (!CheckLine(window, device))
        return 0;
    DWORD version = 0;
    TapiExtensionId extension = {};
    LONG result = g_tel.tapi.lineNegotiateAPIVersion(g_tel.lineApp, device, TAPI_VERSION_1_4,
                                                     TAPI_VERSION_1_4, &version, &extension);
    if (version == 0) {
        TelephonyCheckResult(window, result, 1);
        return 0;
    }
    if (g_tel.lineInUse) {
        ShowMessage(window, 1174, 0);
        return 0;
    }
    DialRecords records = {};
    bool dialled = false;
    if (OpenDialLine(window, device, version)) {
        records.addressCaps = ReadAddressCaps(device, version);
        records.params = records.addressCaps ? BuildCallParams(address, displayName) : nullptr;
        records.devCaps = records.params ? ReadDevCaps(device, version) : nullptr;
        if (records.devCaps) {
            // The work buffer outlives the dial on every path, a small loss
            // that is kept.
            DWORD size = lstrlenA(number) + 1;
            char *work = static_cast<char *>(LocalAlloc(LMEM_ZEROINIT, size));
            if (!work)
                OSErrorSetErrorInfo(RV_OutOfLocalMemory, size);
            else
                dialled = DialPieces(window, number, work, records);
        }
    }
    FreeDialRecords(records);
    if (dialled) {
        TelephonyTrace("Dial number returning, hCall is %x", g_tel.currentCall);
        return 1;
    }
    Telephony_HangupCall(window, TAPI_CALLSTATE_DISCONNECTED);
    g_tel.lineInUse = 0;
    return 0;
}
