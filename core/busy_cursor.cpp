// The busy cursor: eight frames that long work keeps turning through
// OSReWait, and the Escape key that lets the user stop that work.
#include "module_globals.h"
#include "state_cursor.h"

namespace {

const DWORD kFrameCount = 8;
const DWORD kFrameInterval = 500;   // milliseconds between frames at the least
const UINT kStopQuestion = 5000;    // "stop the work?" with yes and no

struct BusyCursor {
    HCURSOR frames[kFrameCount];    // resources 1 to 8 of the resource library
    DWORD lastTick;                 // tick count of the last frame
    LONG disabled;                  // set by OSWaitDisable, never cleared
    HCURSOR savedCursor;            // the cursor shown before the wait began
    DWORD frame;                    // current frame
    DWORD nesting;                  // depth of OSWait calls
};

BusyCursor s_busy;

void ShowFrame(DWORD frame)
{
    s_busy.frame = frame;
    SetCursor(s_busy.frames[frame]);
}

// The user pressed Escape: ask whether to stop. True when the answer is no.
bool UserStopsTheWork()
{
    SetCursor(s_busy.savedCursor);
    OSKeyFlushBuffer();
    int answer = OSMessage(nullptr, g_module.hResourceLibrary, g_module.appTitle, kStopQuestion,
                           MB_YESNO | MB_ICONQUESTION);
    if (answer == 0)
        OSErrorClearError();
    if (answer == IDNO) {
        s_busy.nesting = 0;
        return true;
    }
    ShowFrame(s_busy.frame);
    return false;
}

}  // namespace

extern "C" BOOL WINAPI OSWaitInit(void)
{
    if (s_busy.disabled)
        return 0;
    for (DWORD i = 0; i < kFrameCount; ++i) {
        s_busy.frames[i] = LoadStateCursor(g_module.hResourceLibrary, i + 1);
        if (!s_busy.frames[i]) {
            OSErrorSetErrorInfo(RV_UserError);
            return 0;
        }
    }
    return 1;
}

extern "C" DWORD WINAPI OSWait(void)
{
    if (s_busy.disabled)
        return static_cast<DWORD>(s_busy.disabled);
    // Forget an earlier press: only a press during the wait counts.
    GetAsyncKeyState(VK_ESCAPE);
    if (s_busy.nesting) {
        ++s_busy.nesting;
        OSReWait(0);
        return s_busy.nesting;
    }
    s_busy.frame = 0;
    s_busy.savedCursor = SetCursor(s_busy.frames[0]);
    ShowCursor(TRUE);
    s_busy.lastTick = GetTickCount();
    s_busy.nesting = 1;
    return s_busy.nesting;
}

extern "C" BOOL WINAPI OSReWait(BOOL checkEscape)
{
    if (s_busy.disabled || !s_busy.nesting)
        return 0;
    Feedback_Flush_WM_SETTEXT();
    if (checkEscape && (GetAsyncKeyState(VK_ESCAPE) & 1) && UserStopsTheWork())
        return 1;
    if (GetTickCount() - s_busy.lastTick < kFrameInterval)
        return 0;
    ShowFrame((s_busy.frame + 1) % kFrameCount);
    s_busy.lastTick = GetTickCount();
    return 0;
}

extern "C" DWORD WINAPI OSUnWait(void)
{
    if (s_busy.disabled || !s_busy.nesting)
        return s_busy.nesting;
    --s_busy.nesting;
    OSReWait(0);
    if (!s_busy.nesting) {
        SetCursor(s_busy.savedCursor);
        // Undo the wait's ShowCursor, and never leave the cursor hidden.
        for (int count = ShowCursor(FALSE); count < 0; count = ShowCursor(TRUE)) {
        }
    }
    return s_busy.nesting;
}

extern "C" void WINAPI OSWaitDisable(void)
{
    s_busy.disabled = 1;
}
