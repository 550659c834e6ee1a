// Error numbers of the platform turned into text for diagnostics: common
// dialog and DDE management errors by name, operating system errors by the
// system's own message or the built-in table.
#include "qziso32.h"
#include <cderr.h>
#include <ddeml.h>
#include "os_error_table.h"

namespace {
struct NameRow {
    DWORD number;
    const char *name;
};

#define NAME_ROW(code) {code, #code}

const NameRow kCommDlgErrors[] = {
    NAME_ROW(CDERR_GENERALCODES),     NAME_ROW(CDERR_STRUCTSIZE),      NAME_ROW(CDERR_INITIALIZATION),
    NAME_ROW(CDERR_NOTEMPLATE),       NAME_ROW(CDERR_NOHINSTANCE),     NAME_ROW(CDERR_LOADSTRFAILURE),
    NAME_ROW(CDERR_FINDRESFAILURE),   NAME_ROW(CDERR_LOADRESFAILURE),  NAME_ROW(CDERR_LOCKRESFAILURE),
    NAME_ROW(CDERR_MEMALLOCFAILURE),  NAME_ROW(CDERR_MEMLOCKFAILURE),  NAME_ROW(CDERR_NOHOOK),
    NAME_ROW(CDERR_REGISTERMSGFAIL),  NAME_ROW(CDERR_DIALOGFAILURE),   NAME_ROW(PDERR_PRINTERCODES),
    NAME_ROW(PDERR_SETUPFAILURE),     NAME_ROW(PDERR_PARSEFAILURE),    NAME_ROW(PDERR_RETDEFFAILURE),
    NAME_ROW(PDERR_LOADDRVFAILURE),   NAME_ROW(PDERR_GETDEVMODEFAIL),  NAME_ROW(PDERR_INITFAILURE),
    NAME_ROW(PDERR_NODEVICES),        NAME_ROW(PDERR_NODEFAULTPRN),    NAME_ROW(PDERR_DNDMMISMATCH),
    NAME_ROW(PDERR_CREATEICFAILURE),  NAME_ROW(PDERR_PRINTERNOTFOUND), NAME_ROW(PDERR_DEFAULTDIFFERENT),
    NAME_ROW(CFERR_CHOOSEFONTCODES),  NAME_ROW(CFERR_NOFONTS),         NAME_ROW(CFERR_MAXLESSTHANMIN),
    NAME_ROW(FNERR_FILENAMECODES),    NAME_ROW(FNERR_SUBCLASSFAILURE), NAME_ROW(FNERR_INVALIDFILENAME),
    NAME_ROW(FNERR_BUFFERTOOSMALL),   NAME_ROW(FRERR_FINDREPLACECODES), NAME_ROW(FRERR_BUFFERLENGTHZERO),
    NAME_ROW(CCERR_CHOOSECOLORCODES),
};

// 16384 upwards, in order.
const NameRow kDdemlErrors[] = {
    NAME_ROW(DMLERR_ADVACKTIMEOUT),    NAME_ROW(DMLERR_BUSY),              NAME_ROW(DMLERR_DATAACKTIMEOUT),
    NAME_ROW(DMLERR_DLL_NOT_INITIALIZED), NAME_ROW(DMLERR_DLL_USAGE),      NAME_ROW(DMLERR_EXECACKTIMEOUT),
    NAME_ROW(DMLERR_INVALIDPARAMETER), NAME_ROW(DMLERR_LOW_MEMORY),        NAME_ROW(DMLERR_MEMORY_ERROR),
    NAME_ROW(DMLERR_NOTPROCESSED),     NAME_ROW(DMLERR_NO_CONV_ESTABLISHED), NAME_ROW(DMLERR_POKEACKTIMEOUT),
    NAME_ROW(DMLERR_POSTMSG_FAILED),   NAME_ROW(DMLERR_REENTRANCY),        NAME_ROW(DMLERR_SERVER_DIED),
    NAME_ROW(DMLERR_SYS_ERROR),        NAME_ROW(DMLERR_UNADVACKTIMEOUT),   NAME_ROW(DMLERR_UNFOUND_QUEUE_ID),
};

// Clears `text`, then writes the name of `number` from `rows`, or the
// default text with the number filled in.
template <size_t N>
const char *NameOf(char (&text)[80], const NameRow (&rows)[N], DWORD number, const char *defaultText)
{
    ZeroMemory(text, sizeof text);
    for (const NameRow &row : rows) {
        if (row.number == number) {
            lstrcpynA(text, row.name, sizeof text);
            return text;
        }
    }
    wsprintfA(text, defaultText, static_cast<int>(number));
    return text;
}
}  // namespace

extern "C" const char *WINAPI OSErrorGetCommDlgErrorString(DWORD error)
{
    static char text[80];
    return NameOf(text, kCommDlgErrors, error, "ErrorNo (%d)");
}

extern "C" const char *WINAPI OSErrorGetDDEMLErrorString(DWORD error)
{
    static char text[80];
    return NameOf(text, kDdemlErrors, error, "DDEML ErrorNo %d");
}

extern "C" const char *WINAPI OSErrorGetOSErrorString(DWORD error)
{
    static char text[256];
    // Neutral language, default sublanguage: word 1024.
    if (FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                       MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, sizeof text, nullptr))
        return text;
    const char *name = "Unknown ID";
    const char *description = "";
    DWORD masked = error & 0xFFFFFFF;
    for (size_t i = 0; i < g_osErrorCount; ++i) {
        if (g_osErrors[i].number == masked) {
            name = g_osErrors[i].name;
            description = g_osErrors[i].description;
        }
    }
    wsprintfA(text, "Error %d(%#x) : %s - %s", static_cast<int>(error), error, name, description);
    return text;
}
