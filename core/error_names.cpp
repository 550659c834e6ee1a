// The name of a ResultCode, for diagnostics.
#include <cstdio>
#include "result_code_table.h"

extern "C" const char *WINAPI OSErrorGetRVErrorString(ResultCode code)
{
    static char text[80];
    ZeroMemory(text, sizeof text);
    DWORD index = static_cast<DWORD>(code);
    if (index <= RV_LastCode && g_resultCodes[index].name)
        lstrcpynA(text, g_resultCodes[index].name, sizeof text);
    else
        wsprintfA(text, "ErrorNo (%d)", static_cast<int>(code));
    return text;
}
