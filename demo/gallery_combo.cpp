// The QzCombo page: closed combos of several kinds, each showing the text
// its child gave it. An open combo is a window of its own on the desktop,
// running its own loop, so the off-screen page cannot picture one open.
#include "gallery.h"
#include "qziso32.h"
#include <initializer_list>

namespace {

HWND MakeCombo(HWND page, int id, DWORD style, int y, int kind)
{
    HWND combo = CreateWindowExA(0, "QzCombo", "", WS_CHILD | WS_VISIBLE | style, 10, y, 200, 160, page,
                                 reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr),
                                 nullptr);
    if (combo && SendMessageA(combo, QCM_SETCHILD, kind | (id << 8), WS_VSCROLL) != 1)
        return nullptr;
    if (combo)
        SendMessageA(combo, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), TRUE);
    return combo;
}

}  // namespace

// A TimeTracker's time, a DateTracker's date, a plain list's choice, the
// static form's caption, and a disabled combo.
HWND BuildComboPage(HWND host)
{
    HWND page = MakePageWindow(host, "QzCombo", 220, 190);
    if (!page)
        return nullptr;
    HWND tracker = MakeCombo(page, 40, 0, 10, QCK_TIMETRACKER);
    HWND date = MakeCombo(page, 41, 0, 45, QCK_DATETRACKER);
    HWND list = MakeCombo(page, 42, 0, 80, QCK_PLAINLIST);
    HWND fixed = MakeCombo(page, 43, QCS_STATIC, 115, QCK_PLAINLIST);
    HWND off = MakeCombo(page, 44, 0, 150, QCK_TIMESETTER);
    if (!tracker || !date || !list || !fixed || !off)
        return nullptr;
    for (HWND combo : {tracker, date, off})
        SendMessageA(combo, QCM_CHILDTOTEXT, 0, 0);
    HWND items = reinterpret_cast<HWND>(SendMessageA(list, QCM_GETCHILD, 0, 0));
    for (const char *name : {"Ann Berg", "Bob Clay", "Cora Dunn"})
        SendMessageA(items, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
    SendMessageA(list, QCM_SETTEXT, 0, reinterpret_cast<LPARAM>("Bob Clay"));
    SetWindowTextA(fixed, "Weekly meeting");
    EnableWindow(off, FALSE);
    return page;
}
