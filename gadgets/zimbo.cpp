// "Zimbo": an invisible strip over a tab that hands the mouse to its parent,
// the tab gadget, in the parent's coordinates. It keeps no state.
#include "gadget_frame.h"

LRESULT CALLBACK ZimboWndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP: {
        // Both halves read unsigned: only positions inside the strip forward.
        POINT point = {static_cast<LONG>(LOWORD(lParam)), static_cast<LONG>(HIWORD(lParam))};
        HWND parent = GetParent(hwnd);
        ClientToScreen(hwnd, &point);
        ScreenToClient(parent, &point);
        SendMessageA(parent, message, wParam, MAKELPARAM(point.x, point.y));
        break;
    }
    default:
        break;
    }
    return DefWindowProcA(hwnd, message, wParam, lParam);
}
