// The key buffer flush and the timer calls, through a window of the test's.
#include "qz_test.h"

namespace {

UINT_PTR s_fired;
void CALLBACK RecordTimer(HWND, UINT, UINT_PTR id, DWORD)
{
    s_fired = id;
}

TEST(KeyBufferAndTimers, FlushRemovesTheKeyboardRangeOnlyAndTimersForward)
{
    HWND window = CreateWindowExA(0, "STATIC", "keys", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                                  nullptr, nullptr);
    const struct {
        UINT message;
        bool removed;
    } rows[] = {{WM_KEYDOWN, true}, {WM_CHAR, true},     {WM_SYSDEADCHAR, true},
                {0x0108, true},     {0x0109, false},     {WM_MOUSEMOVE, false},
                {WM_TIMER, false},  {WM_USER + 1, false}};
    for (const auto &row : rows)
        PostMessageA(window, row.message, 'A', 0);
    EXPECT_EQ(0, OSKeyFlushBuffer());
    for (const auto &row : rows) {
        MSG msg;
        EXPECT_EQ(!row.removed, !!PeekMessageA(&msg, window, row.message, row.message, PM_REMOVE))
            << std::hex << row.message;
    }

    EXPECT_EQ(7u, OSSetTimer(window, 7, 10, RecordTimer));
    MSG msg;
    for (DWORD start = GetTickCount(); !s_fired && GetTickCount() - start < 5000;)
        if (GetMessageA(&msg, nullptr, 0, 0))
            DispatchMessageA(&msg);
    EXPECT_EQ(7u, s_fired);
    EXPECT_TRUE(OSKillTimer(window, 7));
    EXPECT_FALSE(OSKillTimer(window, 7)) << "already gone";
    EXPECT_EQ(1, OSTimerTestReincarnate(1, 2));
    DestroyWindow(window);
}

}  // namespace
