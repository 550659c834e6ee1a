// The gallery's page of the multi-select text list and the colour palette
// control: a QzListBox whose text a static beside it mirrors, and two
// palette controls showing their chosen colours.
#include "gallery.h"
#include "qziso32.h"
#include <string>

namespace {

const int kListId = 301, kMirrorId = 302;
WNDPROC g_pageProc = nullptr;

// The page shows the list's text in the static each time the list changes.
LRESULT CALLBACK ListPageProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND && LOWORD(wParam) == 1 && HIWORD(wParam) == LBN_SELCHANGE) {
        char text[256] = {};
        GetWindowTextA(GetParent(reinterpret_cast<HWND>(lParam)), text, sizeof text);
        SetDlgItemTextA(page, kMirrorId, text);
    }
    return CallWindowProcA(g_pageProc, page, message, wParam, lParam);
}

HWND Make(HWND page, const char *cls, const char *text, DWORD style, int id, int x, int y, int w, int h)
{
    return CreateWindowExA(0, cls, text, WS_CHILD | WS_VISIBLE | style, x, y, w, h, page,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
}

}  // namespace

HWND BuildListBoxPalettePage(HWND host)
{
    HWND page = MakePageWindow(host, "QzListBox and colour palette", 380, 230);
    if (!page) return nullptr;
    g_pageProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(page, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ListPageProc)));
    HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    HWND list = Make(page, "QzListBox", "", 0, kListId, 10, 10, 150, 150);
    HWND mirror = Make(page, "STATIC", "", SS_LEFT | WS_BORDER, kMirrorId, 170, 10, 200, 60);
    if (!list || !mirror) return nullptr;
    SendMessageA(list, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    SendMessageA(mirror, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    for (const char *name : {"Anna", "Bernd", "Clara", "Dieter", "Eva", "Felix", "Greta", "Hans", "Ida"})
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
    // A text naming two people and one the list does not know; then one
    // more chosen in the list: the unknown name stays in its place.
    std::string text = std::string("Bernd") + char(OSGetSeparator()) + "Zoe" + char(OSGetSeparator()) + "Eva";
    SetWindowTextA(list, text.c_str());
    SendMessageA(list, LB_SETSEL, TRUE, 7);
    const DWORD palette = CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_NOINTEGRALHEIGHT;
    const COLORREF chosen[] = {RGB(200, 30, 30), RGB(40, 120, 220)};
    for (int i = 0; i < 2; ++i) {
        HWND colour = Make(page, "ccpal_popup", "", palette, 310 + i, 170 + i * 100, 90, 90, 200);
        if (!colour) return nullptr;
        ccPalSetRGB(colour, chosen[i]);
    }
    return page;
}
