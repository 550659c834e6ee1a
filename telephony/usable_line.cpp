// Looking at a line without keeping it, and the version a legacy caller gets.
#include "telephony_internal.h"

enum LineVerdict : DWORD {
    kUsable = 0,
    kFailed = 1,
    kNoVoice = 2,
    kCannotMakeCalls = 4,
    kInUseElsewhere = 5,
    kCannotCallNow = 6,
};

static DWORD VerdictOfOpenLine(TapiLine line)
{
    TapiLineAddressStatus *status = ReadAddressStatus(line);
    if (!status)
        return kFailed;
    DWORD verdict = (status->dwAddressFeatures & TAPI_ADDRFEATURE_MAKECALL) ? kUsable : kCannotCallNow;
    LocalFree(status);
    return verdict;
}

static DWORD VerdictOfDevice(HWND window, DWORD device, DWORD version)
{
    TapiLineDevCaps *caps = ReadDevCaps(device, version);
    if (!caps)
        return kFailed;
    DWORD bearerModes = caps->dwBearerModes, features = caps->dwLineFeatures;
    LocalFree(caps);
    if (!(bearerModes & TAPI_BEARERMODE_VOICE))
        return kNoVoice;
    if (!(features & TAPI_LINEFEATURE_MAKECALL))
        return kCannotMakeCalls;
    TapiLine line = 0;
    for (;;) {
        LONG result = g_tel.tapi.lineOpen(g_tel.lineApp, device, &line, version, 0, 0,
                                          TAPI_CALLPRIVILEGE_NONE, TAPI_MEDIAMODE_DATAMODEM, nullptr);
        if (result == 0)
            break;
        if (result == TAPI_ALLOCATED)
            return kInUseElsewhere;
        if (!TelephonyCheckResult(window, result, 1))
            return kFailed;
    }
    DWORD verdict = VerdictOfOpenLine(line);
    g_tel.tapi.lineClose(line);
    return verdict;
}

extern "C" DWORD WINAPI Telephony_VerifyUsableLine(HWND window, DWORD device)
{
    if (!g_module.telephonyLoaded)
        return 0;
    // Not registered yet: the line cannot be checked, as the service answers
    // an application it does not know.
    if (!TelephonyOn())
        return kFailed;
    DWORD version = 0;
    TapiExtensionId extension = {};
    g_tel.tapi.lineNegotiateAPIVersion(g_tel.lineApp, device, TAPI_VERSION_1_4, TAPI_VERSION_1_4,
                                       &version, &extension);
    if (version == 0)
        return kFailed;
    return VerdictOfDevice(window, device, version);
}

// An incompatible answer only on a repeat gives the window handle back; the
// callers take it as a version and that stays so.
extern "C" DWORD WINAPI Telephony_lineNegotiateLegacyAPIVersion(HWND window, DWORD device)
{
    if (!TelephonyOn())
        return 0;
    for (bool first = true;; first = false) {
        DWORD version = 0;
        TapiExtensionId extension = {};
        LONG result = g_tel.tapi.lineNegotiateAPIVersion(g_tel.lineApp, device, TAPI_VERSION_1_3,
                                                         TAPI_VERSION_1_4, &version, &extension);
        if (result == 0)
            return version;
        if (result == TAPI_INCOMPATIBLEAPIVERSION)
            return first ? 0 : static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(window));
        if (!TelephonyCheckResult(window, result, 1))
            return 0;
    }
}
