// "Zimbo": the mouse over the strip reaches its parent in the parent's
// coordinates, and the strip itself shows nothing and keeps nothing.
#include <string>
#include <vector>
#include "qz_test.h"
#include "window_harness.h"

namespace {

// "down 1 55,12": the mouse message, its keys and its point.
std::vector<std::string> g_seen;

LRESULT CALLBACK MouseParent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    const char *name = message == WM_MOUSEMOVE ? "move" : message == WM_LBUTTONDOWN ? "down"
                     : message == WM_LBUTTONUP ? "up" : message == WM_RBUTTONDOWN ? "right" : nullptr;
    if (name)
        g_seen.push_back(std::string(name) + " " + std::to_string(wParam) + " " +
                         std::to_string(static_cast<short>(LOWORD(lParam))) + "," +
                         std::to_string(static_cast<short>(HIWORD(lParam))));
    return DefWindowProcA(hwnd, message, wParam, lParam);
}

TEST(Zimbo, HandsTheMouseToItsParentInTheParentsCoordinates)
{
    ASSERT_TRUE(RegisterGadgets(0));
    HWND parent = CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 40, 30, 200, 100, nullptr, nullptr,
                                nullptr, nullptr);
    SetWindowLongPtrA(parent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(MouseParent));
    HWND zimbo = CreateWindowA("Zimbo", "Page two", WS_CHILD | WS_VISIBLE, 50, 8, 60, 16, parent,
                               reinterpret_cast<HMENU>(3), nullptr, nullptr);
    ASSERT_TRUE(zimbo);
    g_seen.clear();
    SendMessageA(zimbo, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 4));
    SendMessageA(zimbo, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(7, 6));
    SendMessageA(zimbo, WM_LBUTTONUP, 0, MAKELPARAM(9, 2));
    SendMessageA(zimbo, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(1, 1));   // not forwarded
    EXPECT_EQ(std::vector<std::string>({"down 1 55,12", "move 1 57,14", "up 0 59,10"}), g_seen);
    char text[32];
    GetWindowTextA(zimbo, text, sizeof text);
    EXPECT_STREQ("Page two", text) << "the caption rides on the window text";
    EXPECT_EQ(0, GetWindowLongPtrA(zimbo, 0)) << "the window word stays untouched";
    DestroyWindow(parent);
    UnRegisterGadgets();
}

}  // namespace
