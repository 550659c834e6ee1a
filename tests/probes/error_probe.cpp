// Records a terminating error in one of several situations, named by the
// first argument, and reports by exit status: 255 means the library ended
// the process; any other value is the probe's own.
#include <windows.h>
#include <cstring>
#include "qziso32.h"

static BOOL WINAPI Veto(LONG_PTR data, ErrorContext *context)
{
    return data == 42 && context == OSErrorGetErrorInfo() ? FALSE : TRUE;
}

static BOOL WINAPI Allow(LONG_PTR, ErrorContext *) { return TRUE; }

static int WINAPI RaiseToAssertion(char *out, int, const char *format, va_list)
{
    lstrcpyA(out, format);
    OSErrorGetErrorInfo()->errorCode = RV_AssertionFailure;
    return lstrlenA(out);
}

int main(int argc, char **argv)
{
    const char *scenario = argc > 1 ? argv[1] : "";
    if (!strcmp(scenario, "fatal")) {
        OSErrorSetErrorInfo(RV_AssertionFailure);
        return 1;
    }
    if (!strcmp(scenario, "veto")) {
        OSErrorRegisterCallback(42, Veto);
        OSErrorSetErrorInfo(RV_AssertionFailure);
        return OSErrorGetErrorValue() == RV_AssertionFailure ? 7 : 1;
    }
    if (!strcmp(scenario, "allow")) {
        OSErrorRegisterCallback(0, Allow);
        OSErrorSetErrorInfo(RV_TreeBroken);
        return 1;
    }
    if (!strcmp(scenario, "quitting")) {
        DefenceQuit();
        OSErrorSetErrorInfo(RV_CriticalFault, "text");
        return OSErrorGetErrorValue() == RV_CriticalFault ? 8 : 1;
    }
    if (!strcmp(scenario, "mode3")) {
        OSErrorSetErrorMode(RV_NoFile, 3);
        OSErrorSetErrorInfo(RV_NoFile, "a.txt");
        return 1;
    }
    if (!strcmp(scenario, "survivable")) {
        OSErrorSetErrorMode(RV_AssertionFailure, 1);
        OSErrorSetErrorInfo(RV_AssertionFailure);
        return OSErrorGetErrorValue() == RV_AssertionFailure ? 9 : 1;
    }
    if (!strcmp(scenario, "formatter")) {
        OSErrorSetErrorInfo(RV_Formatted, RaiseToAssertion, "raised");
        return 1;
    }
    return 2;
}
