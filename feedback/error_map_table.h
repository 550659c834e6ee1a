// What each ResultCode shows: message id, icon, arguments and caption.
// Data only, so that the tests can walk it beside the resource texts.
#pragma once
#include "qziso32.h"

// An argument handed to the presenter, taken from the error snapshot.
enum ErrorArg : unsigned char {
    EA_None = 0,
    EA_ItemText,      // text: itemText
    EA_DetailText,    // text: detailText
    EA_CodeName,      // text: OSErrorGetRVErrorString of the code
    EA_OsErrorText,   // text: OSErrorGetOSErrorString of osError
    EA_Detail1,       // number: detail1
    EA_ItemValue,     // number: itemValue
};

struct ErrorMapRow {
    DWORD code;
    DWORD messageId;
    UINT icon;
    ErrorArg args[2];
    bool appTitleCaption;   // caption appTitle instead of the chosen caption
};

// One row per shown code, in the table's order.
extern const ErrorMapRow g_errorMap[];
extern const size_t g_errorMapCount;

// The codes that show nothing.
extern const DWORD g_silentCodes[];
extern const size_t g_silentCodeCount;

// The codes with a rule of their own.
const DWORD ERROR_CODE_94 = 94;
extern const DWORD g_specialCodes[];
extern const size_t g_specialCodeCount;

// Codes past the table show this row, with the code's number in its name.
extern const ErrorMapRow g_errorDefaultRow;

// Messages the rules of their own show: RV_Failure, the launch failures, the
// system errors and the data service's question and report.
const DWORD MSG_EXECUTE_BASE = 10010;
const DWORD MSG_EXECUTE_LAST = 10042;
extern const ErrorMapRow g_specialMessages[];
extern const size_t g_specialMessageCount;

// The row of `code`, or null.
const ErrorMapRow *FindErrorMapRow(DWORD code);
