// The Page gallery page: an A4 sheet in tenths of a millimetre with 2 x 3
// cells, shown whole and, beside it, zoomed in on one cell by a click.
#include "gallery.h"
#include "qziso32.h"

namespace {

// 210 x 297 mm with 15 mm margins, cells 85 x 82.3 mm 10 mm apart, and
// 4 mm inside each cell.
const PageLayout kA4 = {0, 2, 3, 150, 150, 150, 150, 40, 40, 40, 40,
                        2100, 2970, 850, 823, 50, 50, 50, 50, 0, 0};

HWND PageGadget(HWND page, int id, int x, int y, int width, int height)
{
    HWND gadget = CreateWindowExA(0, "Page", "", WS_CHILD | WS_VISIBLE, x, y, width, height, page,
                                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                  GetModuleHandleA(nullptr), nullptr);
    if (gadget)
        SendMessageA(gadget, PGM_SETLAYOUT, 0, reinterpret_cast<LPARAM>(&kA4));
    return gadget;
}

}  // namespace

HWND BuildPageLayoutPage(HWND host)
{
    HWND page = MakePageWindow(host, "Page", 410, 258);
    if (!page) return nullptr;
    HWND whole = PageGadget(page, 100, 10, 10, 168, 238);
    HWND close = PageGadget(page, 101, 190, 31, 210, 205);
    if (!whole || !close) return nullptr;
    // A click away from every handle zooms in on the first cell.
    UpdateWindow(close);
    SendMessageA(close, WM_MOUSEMOVE, 0, MAKELPARAM(105, 150));
    SendMessageA(close, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(105, 150));
    SendMessageA(close, WM_LBUTTONUP, 0, MAKELPARAM(105, 150));
    return page;
}
