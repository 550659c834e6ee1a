// A stand-in for the optional help helper library, "tvhlpn31.dll": it keeps
// every RegisterOwningFile call, and the help tests read them back through
// HelperCalls. It lies in bin/helper/, out of the normal search order, so a
// test chooses when the library is present by loading it first.
#include <windows.h>

namespace {

struct Call {
    char file[MAX_PATH];
    HWND window;
};

const LONG kMaxCalls = 64;
Call s_calls[kMaxCalls];
LONG s_count;

}  // namespace

extern "C" __declspec(dllexport) BOOL WINAPI RegisterOwningFile(const char *file, HWND window)
{
    if (s_count < kMaxCalls) {
        lstrcpynA(s_calls[s_count].file, file ? file : "(null)", MAX_PATH);
        s_calls[s_count].window = window;
    }
    ++s_count;
    return TRUE;
}

// The number of calls so far; with an index below it, that call's file and
// window are copied out.
extern "C" __declspec(dllexport) LONG WINAPI HelperCalls(LONG index, char *file, HWND *window)
{
    if (index >= 0 && index < s_count && index < kMaxCalls) {
        if (file)
            lstrcpynA(file, s_calls[index].file, MAX_PATH);
        if (window)
            *window = s_calls[index].window;
    }
    return s_count;
}
