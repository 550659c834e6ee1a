// The Waffle's page: a small order sheet with a list head, a date head and
// a free-width notes column, some cells filled. The heads are "QzCombo"
// windows; where that class is missing the grid shows without them.
#include "gallery.h"
#include "qziso32.h"
#include <initializer_list>

HWND BuildWafflePage(HWND host)
{
    HWND page = MakePageWindow(host, "Waffle", 420, 200);
    if (!page)
        return nullptr;
    HWND grid = CreateWindowExA(0, "Waffle", "", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 10, 10, 400, 180,
                                page, reinterpret_cast<HMENU>(static_cast<INT_PTR>(300)),
                                GetModuleHandleA(nullptr), nullptr);
    if (!grid)
        return nullptr;
    SendMessageA(grid, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    const DWORD columns[3][5] = {{1, 14, 1, 1, 0}, {2, 12, 0, 0, 0}, {3, 0xFFFFFFFF, 0, 0, 0}};
    const char *captions[3] = {"Fruit", "Delivery", "Notes"};
    for (int c = 0; c < 3; ++c) {
        SendMessageA(grid, WFM_ADDCOLUMN, 0, reinterpret_cast<LPARAM>(columns[c]));
        SendMessageA(grid, WFM_SETCOLUMNCAPTION, columns[c][0], reinterpret_cast<LPARAM>(captions[c]));
    }
    SendMessageA(grid, WFM_SETCOLUMNTYPE, 1, 4);  // the second head drops a calendar
    for (const char *fruit : {"Apples", "Pears", "Plums", "Quinces"})
        SendMessageA(grid, WFM_ADDLISTSTRING, 1, reinterpret_cast<LPARAM>(fruit));
    SendMessageA(grid, WFM_SETROWCOUNT, 12, 0);
    SendMessageA(grid, WFM_PUTCOLUMN, 0, reinterpret_cast<LPARAM>("Apples\0Pears\0Plums\0Apples\0"));
    SendMessageA(grid, WFM_FILLCOLUMN, 1,
                 reinterpret_cast<LPARAM>("03/04/2026\0 \0" "05/04/2026\0" "09/04/2026\0"));
    SendMessageA(grid, WFM_PUTCOLUMN, 2,
                 reinterpret_cast<LPARAM>("ripe ones only\0-\0two crates\0for the fair\0"));
    OSErrorClearError();  // heads missing where "QzCombo" is not registered
    return page;
}
