// Stand-ins for the two feedback calls the busy cursor and the message boxes
// make; replaced by the feedback worker.
#include "qziso32.h"

extern "C" BOOL WINAPI Feedback_CleanupAll(void)
{
    return 0;
}

extern "C" void WINAPI Feedback_Flush_WM_SETTEXT(void)
{
}
