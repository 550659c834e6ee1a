// Throws away the keys the user typed ahead, so that they do not reach the
// next window after a long piece of work or a question.
#include "qziso32.h"

// The keyboard messages, WM_KEYDOWN to the last of the system keys.
const UINT kLastKeyMessage = 0x0108;

extern "C" BOOL WINAPI OSKeyFlushBuffer(void)
{
    MSG msg;
    // A peek first: the system then delivers input that it still holds back.
    PeekMessageA(&msg, nullptr, 0, 0, PM_NOREMOVE);
    while (PeekMessageA(&msg, nullptr, WM_KEYFIRST, kLastKeyMessage, PM_REMOVE)) {
    }
    return 0;
}
