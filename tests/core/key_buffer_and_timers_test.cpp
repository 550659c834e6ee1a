// The key buffer flush and the timer calls, through a window of the test's.
#include <functional>
#include <vector>
#include "qz_test.h"

namespace {

HWND MakeWindow()
{
    return CreateWindowExA(0, "STATIC", "keys", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr,
                           nullptr);
}

TEST(KeyBuffer, FlushRemovesTheKeyboardRangeOnly)
{
    HWND window = MakeWindow();
    ASSERT_NE(nullptr, window);
    struct Row {
        UINT message;
        bool removed;
    };
    const Row rows[] = {
        {WM_KEYDOWN, true},    {WM_KEYUP, true},     {WM_CHAR, true},       {WM_DEADCHAR, true},
        {WM_SYSKEYDOWN, true}, {WM_SYSKEYUP, true},  {WM_SYSCHAR, true},    {WM_SYSDEADCHAR, true},
        {0x0108, true},        {0x0109, false},      {WM_MOUSEMOVE, false}, {WM_USER + 1, false},
        {WM_NULL + 0xFF, false},
    };
    for (const Row &row : rows)
        PostMessageA(window, row.message, 'A', 0);
    EXPECT_EQ(0, OSKeyFlushBuffer());
    for (const Row &row : rows) {
        MSG msg;
        BOOL found = PeekMessageA(&msg, window, row.message, row.message, PM_REMOVE);
        EXPECT_EQ(!row.removed, found != 0) << "message " << std::hex << row.message;
    }
    EXPECT_EQ(0, OSKeyFlushBuffer()) << "an empty queue";
    DestroyWindow(window);
}

std::vector<UINT_PTR> s_fired;

void CALLBACK RecordTimer(HWND, UINT, UINT_PTR id, DWORD)
{
    s_fired.push_back(id);
}

void PumpUntil(const std::function<bool()> &done)
{
    DWORD start = GetTickCount();
    MSG msg;
    while (!done() && GetTickCount() - start < 5000) {
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&msg);
        Sleep(1);
    }
}

TEST(Timers, SetAndKillForwardToTheSystem)
{
    HWND window = MakeWindow();
    s_fired.clear();
    EXPECT_EQ(7u, OSSetTimer(window, 7, 10, RecordTimer));
    PumpUntil([] { return !s_fired.empty(); });
    ASSERT_FALSE(s_fired.empty());
    EXPECT_EQ(7u, s_fired[0]);
    EXPECT_TRUE(OSKillTimer(window, 7));
    EXPECT_FALSE(OSKillTimer(window, 7)) << "already gone";
    // Without a window the system picks the id.
    UINT_PTR id = OSSetTimer(nullptr, 0, 10, RecordTimer);
    EXPECT_NE(0u, id);
    EXPECT_TRUE(OSKillTimer(nullptr, id));
    EXPECT_EQ(1, OSTimerTestReincarnate(1, 2));
    DestroyWindow(window);
}

}  // namespace
