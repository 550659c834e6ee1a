// A stand-in for the optional help helper library, "tvhlpn31.dll": it keeps
// the RegisterOwningFile calls, which the help tests read back through
// HelperCalls. It lies in bin/helper/, out of the search order, so a test
// decides when it is present by loading it.
#include <windows.h>

static char s_files[64][MAX_PATH];
static HWND s_windows[64];
static LONG s_count;

extern "C" __declspec(dllexport) BOOL WINAPI RegisterOwningFile(const char *file, HWND window)
{
    if (s_count < 64) {
        lstrcpynA(s_files[s_count], file ? file : "(null)", MAX_PATH);
        s_windows[s_count] = window;
    }
    ++s_count;
    return TRUE;
}

// The number of calls so far; for an index below it, that call's file and window.
extern "C" __declspec(dllexport) LONG WINAPI HelperCalls(LONG index, char *file, HWND *window)
{
    if (index >= 0 && index < s_count && index < 64) {
        lstrcpynA(file, s_files[index], MAX_PATH);
        *window = s_windows[index];
    }
    return s_count;
}
