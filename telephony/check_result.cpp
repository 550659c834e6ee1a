// What the library does with a service result: go on, or tell the user why
// not. Each service error has its message, its buttons and its answer.
#include "telephony_internal.h"

namespace {
enum Outcome { kStop, kRetryUnlessCancel, kTranslateUnlessCancel };
struct ResultRow {
    LONG result;
    UINT message;
    UINT flags;
    Outcome outcome;
};
const ResultRow kResultTable[] = {
    {TAPI_INIFILECORRUPT, 1158, MB_OKCANCEL, kTranslateUnlessCancel},
    {TAPI_INVALCARD, 1158, MB_OKCANCEL, kTranslateUnlessCancel},
    {TAPI_INVALLOCATION, 1158, MB_OKCANCEL, kTranslateUnlessCancel},
    {TAPI_NODRIVER, 1159, MB_OK, kStop},
    {TAPI_NOMEM, 1161, MB_OK, kStop},
    {TAPI_OPERATIONFAILED, 1162, MB_OK, kStop},
    {TAPI_RESOURCEUNAVAIL, 1163, MB_RETRYCANCEL, kRetryUnlessCancel},
    {TAPI_NOMULTIPLEINSTANCE, 1160, MB_OK, kStop},
};
const ResultRow kOtherResult = {0, 1162, MB_OK, kStop};

// An unavailable line is tried again at the user's word. With no box to
// answer (messages switched off, the parent gone) it is tried this many
// times in a row, then given up with the error recorded.
const DWORD kUnansweredRetries = 8;

BOOL RetryUnlessCancelled(int answer)
{
    if (answer) {
        g_tel.unansweredRetries = 0;
        return answer != IDCANCEL;
    }
    if (++g_tel.unansweredRetries <= kUnansweredRetries)
        return 1;
    g_tel.unansweredRetries = 0;
    OSErrorSetErrorInfo(RV_Retry);
    return 0;
}
}

BOOL TelephonyCheckResult(HWND window, LONG result, BOOL interactive)
{
    if (result != TAPI_RESOURCEUNAVAIL)
        g_tel.unansweredRetries = 0;
    if (result > 0)
        return 1; // a request id
    if (!interactive || result == 0)
        return result == 0;
    if (result == TAPI_REINIT) {
        TelephonyLineStop(window);
        return 0;
    }
    const ResultRow *row = &kOtherResult;
    for (const ResultRow &candidate : kResultTable) {
        if (candidate.result == result)
            row = &candidate;
    }
    int answer = OSMessage(window, g_module.hResourceLibrary, g_module.appTitle, row->message, row->flags);
    switch (row->outcome) {
    case kTranslateUnlessCancel:
        if (answer != IDCANCEL)
            g_tel.tapi.lineTranslateDialog(g_tel.lineApp, 0, TAPI_VERSION_1_4, window, nullptr);
        return 0;
    case kRetryUnlessCancel:
        return RetryUnlessCancelled(answer);
    default:
        return 0;
    }
}
