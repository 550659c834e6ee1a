// The Waffle's costs with 10,000 rows of 8 columns, each beside the
// platform's list view ("SysListView32", report mode) holding the same
// cells, measured in the same run.
//
// Scrolling: one page down and the repaint it causes, from the top to the
// bottom of the grid and back; the peer scrolls the list view by the same
// pages.
//
// Filling: every cell written once, row by row, with 1,000 and with 10,000
// rows. Cells are kept in the order first written with an index beside
// them, so the time per cell should not grow with the count (a growth near
// 1 from 1,000 to 10,000 rows); the peer sets the same texts as subitems.
#include <windows.h>
#include <commctrl.h>
#include <cstdio>
#include "bench_timing.h"
#include "qziso32.h"

namespace {

const int kColumns = 8;
const int kWidth = 640, kHeight = 400;

void CellText(int row, int column, char *text) { wsprintfA(text, "r%d c%d", row, column); }

HWND MakeWaffle(HWND host, int rows)
{
    HWND w = CreateWindowExA(0, "Waffle", "", WS_CHILD | WS_VISIBLE | WFS_NOSNAP, 0, 0, kWidth, kHeight,
                             host, nullptr, nullptr, nullptr);
    for (int c = 0; c < kColumns; ++c) {
        DWORD column[5] = {DWORD(c + 1), 0xFFFFFFFF, 0, 0, 0};
        SendMessageA(w, WFM_ADDCOLUMN, 0, reinterpret_cast<LPARAM>(column));
    }
    SendMessageA(w, WFM_SETROWCOUNT, rows, 0);
    OSErrorClearError();  // the heads need "QzCombo"
    return w;
}

void FillWaffle(HWND w, int rows)
{
    char text[32];
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < kColumns; ++c) {
            CellText(r, c, text);
            SendMessageA(w, WFM_SETCELL, r * kColumns + c, reinterpret_cast<LPARAM>(text));
        }
}

HWND MakeList(HWND host)
{
    HWND list = CreateWindowExA(0, "SysListView32", "", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, kWidth,
                                kHeight, host, nullptr, nullptr, nullptr);
    for (int c = 0; c < kColumns; ++c) {
        LVCOLUMNA column = {};
        column.mask = LVCF_WIDTH | LVCF_TEXT;
        column.cx = kWidth / kColumns;
        column.pszText = const_cast<char *>("head");
        SendMessageA(list, LVM_INSERTCOLUMNA, c, reinterpret_cast<LPARAM>(&column));
    }
    return list;
}

void FillList(HWND list, int rows)
{
    char text[32];
    for (int r = 0; r < rows; ++r) {
        LVITEMA item = {};
        item.mask = LVIF_TEXT;
        item.iItem = r;
        CellText(r, 0, text);
        item.pszText = text;
        SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
        for (int c = 1; c < kColumns; ++c) {
            CellText(r, c, text);
            item.iSubItem = c;
            SendMessageA(list, LVM_SETITEMTEXTA, r, reinterpret_cast<LPARAM>(&item));
        }
    }
}

// Pages down and up again, each repainted at once.
int ScrollPages(HWND window, int pages)
{
    for (int p = 0; p < pages; ++p) {
        SendMessageA(window, WM_VSCROLL, p < pages / 2 ? SB_PAGEDOWN : SB_PAGEUP, 0);
        UpdateWindow(window);
    }
    return pages;
}

}  // namespace

int main()
{
    HMODULE comctl = LoadLibraryA("comctl32.dll");
    typedef void(WINAPI * InitFn)(void);
    if (InitFn init = comctl ? reinterpret_cast<InitFn>(GetProcAddress(comctl, "InitCommonControls")) : nullptr)
        init();
    RegisterGadgets(0);
    HWND host = CreateWindowExA(0, "STATIC", "bench", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, kWidth + 40,
                                kHeight + 60, nullptr, nullptr, nullptr, nullptr);
    const int kRows = 10000, kPages = 40;

    HWND w = MakeWaffle(host, kRows);
    FillWaffle(w, kRows);
    HWND list = MakeList(host);
    FillList(list, kRows);
    ShowWindow(list, SW_HIDE);
    double waffleScroll = Time([&] { ScrollPages(w, kPages); });
    ShowWindow(w, SW_HIDE), ShowWindow(list, SW_SHOW);
    double listScroll = Time([&] { ScrollPages(list, kPages); });
    printf("Scrolling a page of 10,000 rows x 8 columns, repainted\n");
    ReportRates("Waffle WM_VSCROLL page", kPages / waffleScroll, "SysListView32 WM_VSCROLL page",
                kPages / listScroll);
    DestroyWindow(w), DestroyWindow(list);

    double perCell[2] = {};
    const int counts[2] = {1000, 10000};
    for (int i = 0; i < 2; ++i) {
        double spent = 1e9;
        for (int round = 0; round < 3; ++round) {
            HWND fresh = MakeWaffle(host, counts[i]);
            double start = Seconds();
            FillWaffle(fresh, counts[i]);
            double t = Seconds() - start;
            spent = t < spent ? t : spent;
            DestroyWindow(fresh);
        }
        perCell[i] = spent / (counts[i] * kColumns);
    }
    double listFill = 1e9;
    for (int round = 0; round < 3; ++round) {
        HWND fresh = MakeList(host);
        ShowWindow(fresh, SW_HIDE);
        double start = Seconds();
        FillList(fresh, kRows);
        double t = Seconds() - start;
        listFill = t < listFill ? t : listFill;
        DestroyWindow(fresh);
    }
    printf("Filling cell by cell, 10,000 rows x 8 columns\n");
    ReportRates("Waffle WFM_SETCELL", 1 / perCell[1], "SysListView32 insert item / set subitem",
                kRows * kColumns / listFill);
    printf("Waffle fill, time per cell: %.3f us at 1,000 rows, %.3f us at 10,000 rows; growth %.2f\n",
           perCell[0] * 1e6, perCell[1] * 1e6, perCell[1] / perCell[0]);
    DestroyWindow(host);
    UnRegisterGadgets();
    return 0;
}
