// Page: a scaled picture of a sheet with its margins and a grid of cells.
// The host hands over a PageLayout in a unit of its own; the user drags
// the margin lines, the first cell's grid lines and its inner margins, and
// the layout is rewritten on every move. A click away from any handle
// toggles between the whole sheet and a close-up of one cell. This unit
// holds the window procedure, creation and the layout messages; painting
// is in page_paint.cpp, hover and drag in page_drag.cpp.
#include "page.h"
#include "gadget_frame.h"
#include "../core/module_globals.h"
#include "../core/state_cursor.h"

namespace {

// The resource library's cursors for the margin lines.
const DWORD kCursorTopBottom = 30;
const DWORD kCursorLeftRight = 31;

PageRecord *Record(HWND window) { return GadgetRecord<PageRecord>(window); }

LRESULT OnCreate(HWND window)
{
    PageRecord *r = GadgetCreate<PageRecord>(window);
    if (!r)
        return GadgetCreateFailed;
    r->dragHandle = -1;
    r->hoverHandle = -1;
    r->hoverKind = PK_None;
    r->cursorTopBottom = LoadStateCursor(g_module.hResourceLibrary, kCursorTopBottom);
    r->cursorLeftRight = LoadStateCursor(g_module.hResourceLibrary, kCursorLeftRight);
    r->cursorNorthSouth = LoadCursorA(nullptr, IDC_SIZENS);
    r->cursorEastWest = LoadCursorA(nullptr, IDC_SIZEWE);
    r->cursorNESW = LoadCursorA(nullptr, IDC_SIZENESW);
    r->cursorNWSE = LoadCursorA(nullptr, IDC_SIZENWSE);
    if (r->cursorTopBottom && r->cursorLeftRight && r->cursorNorthSouth && r->cursorEastWest &&
        r->cursorNESW && r->cursorNWSE)
        return 0;
    // Cursors are shared: none of them is destroyed.
    OSErrorSetErrorInfo(RV_UserError, "LoadCursor");
    GadgetFreeRecord(window, true);
    return GadgetCreateFailed;
}

void OnDestroy(HWND window, PageRecord *r)
{
    if (r->dragDC)
        ReleaseDC(window, r->dragDC);
    r->dragDC = nullptr;
    GadgetFreeRecord(window, true);
}

LRESULT OnSetLayout(HWND window, PageRecord *r, const PageLayout *layout)
{
    if (!layout) {
        OSErrorSetErrorInfo(RV_BadParms, "PGM_SETLAYOUT");
        return GadgetFailure;
    }
    r->layout = *layout;
    InvalidateRect(window, nullptr, TRUE);
    return GadgetSuccess;
}

LRESULT OnGetLayout(const PageRecord *r, PageLayout *layout)
{
    if (!layout) {
        OSErrorSetErrorInfo(RV_BadParms, "PGM_GETLAYOUT");
        return GadgetFailure;
    }
    *layout = r->layout;
    return GadgetSuccess;
}

POINT PointOf(LPARAM lParam)
{
    POINT p = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    return p;
}

}  // namespace

extern "C" LRESULT WINAPI GadPageWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    PageRecord *r = Record(window);
    if (!r)
        return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window, r);
        return 0;
    case WM_PAINT:
        PagePaint(window, r);
        return 0;
    case WM_MOUSEMOVE:
        PageMouseMove(window, r, PointOf(lParam));
        return 0;
    case WM_LBUTTONDOWN:
        PageButtonDown(window, r);
        return 0;
    case WM_LBUTTONUP:
        PageEndDrag(window, r);
        return 0;
    case WM_CAPTURECHANGED:
        PageEndDrag(window, r);
        return 0;
    case WM_CANCELMODE:
        PageEndDrag(window, r);
        break;
    case 0x401:
        return OnSetLayout(window, r, reinterpret_cast<const PageLayout *>(lParam));
    case 0x402:
        return OnGetLayout(r, reinterpret_cast<PageLayout *>(lParam));
    case 0x403:
        return static_cast<LONG>(MAKELONG(LOWORD(r->hoverKind), LOWORD(r->hoverHandle)));
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

// The class procedure RegisterGadgets installs.
LRESULT CALLBACK PageWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return GadPageWndProc(window, message, wParam, lParam);
}
