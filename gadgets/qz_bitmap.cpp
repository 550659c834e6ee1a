// "QzBitmap": a bitmap shown on the dialog colour. The window word holds the
// caller's bitmap handle itself; the gadget never deletes it. Style 0x8000
// draws it centred with the colour of its top-left pixel transparent.
#include "gadget_frame.h"
#include "../core/module_globals.h"

namespace {

const UINT kSetBitmap = 0x401;
const UINT kGetBitmap = 0x402;
const LONG kTransparentStyle = 0x8000;

HBITMAP Bitmap(HWND hwnd) { return reinterpret_cast<HBITMAP>(GetWindowLongPtrA(hwnd, 0)); }

// Centred at the rectangle's size, not its position: right for a client
// rectangle, which starts at the origin.
void DrawTransparent(HDC hdc, const RECT &rect, HBITMAP bitmap)
{
    BITMAP info;
    if (!GetObjectA(bitmap, sizeof info, &info)) {
        OSErrorSetErrorInfo(RV_GDIError);
        return;
    }
    RECT client = rect;
    if (info.bmPlanes == 1 && info.bmBitsPixel == 1) {
        UIBitBlt(hdc, &client, bitmap);
        return;
    }
    HDC memory = CreateCompatibleDC(hdc);
    if (!memory) {
        OSErrorSetErrorInfo(RV_GDIError);
        return;
    }
    HGDIOBJ old = SelectObject(memory, bitmap);
    const COLORREF transparent = GetPixel(memory, 0, 0);
    const int x = (static_cast<int>(rect.right - rect.left) - info.bmWidth) / 2;
    const int y = (static_cast<int>(rect.bottom - rect.top) - info.bmHeight) / 2;
    UIMaskBlt(hdc, x, y, info.bmWidth, info.bmHeight, memory, 0, 0, transparent);
    SelectObject(memory, old);
    DeleteDC(memory);
}

void OnPaint(HWND hwnd)
{
    PAINTSTRUCT ps;
    HDC hdc = BeginPaint(hwnd, &ps);
    RECT client;
    GetClientRect(hwnd, &client);
    HBRUSH brush = CreateSolidBrush(UIGetDlgColor());
    if (brush) {
        HGDIOBJ old = SelectObject(hdc, brush);
        PatBlt(hdc, 0, 0, client.right, client.bottom, PATCOPY);
        SelectObject(hdc, old);
        DeleteObject(brush);
    } else {
        OSErrorSetErrorInfo(RV_GDIError);
    }
    if (HBITMAP bitmap = Bitmap(hwnd)) {
        if (GetWindowLongA(hwnd, GWL_STYLE) & kTransparentStyle)
            DrawTransparent(hdc, client, bitmap);
        else
            UIBitBlt(hdc, &client, bitmap);
    }
    EndPaint(hwnd, &ps);
}

}  // namespace

LRESULT CALLBACK QzBitmapWndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case kSetBitmap:
        SetWindowLongPtrA(hwnd, 0, static_cast<LONG_PTR>(wParam));
        InvalidateRect(hwnd, nullptr, TRUE);
        return 0;
    case kGetBitmap:
        return GetWindowLongPtrA(hwnd, 0);
    case WM_PAINT:
        OnPaint(hwnd);
        return 0;
    default:
        return DefWindowProcA(hwnd, message, wParam, lParam);
    }
}
