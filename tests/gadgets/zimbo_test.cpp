// "Zimbo": the mouse over the strip reaches its parent in the parent's
// coordinates, and the strip itself shows nothing and keeps nothing.
#include <vector>
#include "qz_test.h"
#include "window_harness.h"

namespace {

struct Seen {
    UINT message;
    WPARAM wParam;
    int x, y;
};
std::vector<Seen> g_seen;

LRESULT CALLBACK MouseParent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_MOUSEMOVE || message == WM_LBUTTONDOWN || message == WM_LBUTTONUP ||
        message == WM_RBUTTONDOWN)
        g_seen.push_back({message, wParam, static_cast<short>(LOWORD(lParam)),
                          static_cast<short>(HIWORD(lParam))});
    return DefWindowProcA(hwnd, message, wParam, lParam);
}

TEST(Zimbo, HandsTheMouseToItsParentInTheParentsCoordinates)
{
    ASSERT_TRUE(RegisterGadgets(0));
    WNDCLASSA wc = {};
    wc.lpfnWndProc = MouseParent;
    wc.hInstance = GetModuleHandleA(nullptr);
    wc.lpszClassName = "ZimboTestParent";
    RegisterClassA(&wc);
    HWND parent = CreateWindowA("ZimboTestParent", "", WS_POPUP | WS_VISIBLE, 40, 30, 200, 100,
                                nullptr, nullptr, wc.hInstance, nullptr);
    HWND zimbo = CreateWindowA("Zimbo", "Page two", WS_CHILD | WS_VISIBLE, 50, 8, 60, 16, parent,
                               reinterpret_cast<HMENU>(3), wc.hInstance, nullptr);
    ASSERT_TRUE(zimbo);
    g_seen.clear();
    SendMessageA(zimbo, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 4));
    SendMessageA(zimbo, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(7, 6));
    SendMessageA(zimbo, WM_LBUTTONUP, 0, MAKELPARAM(9, 2));
    SendMessageA(zimbo, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(1, 1));   // not forwarded
    ASSERT_EQ(3u, g_seen.size());
    const Seen expected[] = {{WM_LBUTTONDOWN, MK_LBUTTON, 55, 12},
                             {WM_MOUSEMOVE, MK_LBUTTON, 57, 14},
                             {WM_LBUTTONUP, 0, 59, 10}};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(expected[i].message, g_seen[i].message) << i;
        EXPECT_EQ(expected[i].wParam, g_seen[i].wParam) << i;
        EXPECT_EQ(expected[i].x, g_seen[i].x) << i;
        EXPECT_EQ(expected[i].y, g_seen[i].y) << i;
    }
    char text[32];
    GetWindowTextA(zimbo, text, sizeof text);
    EXPECT_STREQ("Page two", text) << "the caption rides on the window text";
    EXPECT_EQ(0, GetWindowLongPtrA(zimbo, 0)) << "the window word stays untouched";
    DestroyWindow(parent);
    UnregisterClassA("ZimboTestParent", wc.hInstance);
    UnRegisterGadgets();
}

}  // namespace
