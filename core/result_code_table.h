// One row per ResultCode: its name, its default mode, and what
// OSErrorSetErrorInfo reads after the code.
#pragma once
#include "qziso32.h"

enum ArgRead : unsigned char {
    AR_End = 0,
    AR_ItemText,          // text or VIRTUALFILE into itemText
    AR_ItemTextOrNull,    // the same; null is expected and leaves it empty
    AR_ItemValue,
    AR_ItemValue16,       // itemValue, as a 16-bit word
    AR_Detail1,
    AR_Detail2,
    AR_Address,
    AR_RangeLow,
    AR_RangeHigh,
    AR_Stage,
    AR_OsError,
    AR_MemberName,
    AR_DetailText255,
    AR_DetailTextOrNull1023,
    AR_FunctionAddress,
    AR_DropWord,          // a word that is read and not kept
    AR_DropPointer,       // a pointer that is read and not kept
};

enum ArgSpecial : unsigned char {
    SP_None = 0,
    SP_LastOsError,       // osError takes the last OS error
    SP_OsError,           // RV_OSError: itemText only where osError is 4
    SP_ForceOsError,      // osError from the arguments, then as RV_OSError
    SP_Formatter,         // code 71: formatter, format, arguments
    SP_ResourceContext,   // context string 13060 of the resource library
    SP_CommDlg,           // the common dialog library is consulted
    SP_NetDll,            // detailText and the file copy are zeroed first
};

struct ResultCodeRow {
    const char *name;         // null for the codes without a name
    DWORD defaultMode;
    ArgSpecial special;
    ArgRead reads[6];
};

// Indexed by code, 0 to RV_LastCode.
extern const ResultCodeRow g_resultCodes[RV_LastCode + 1];
