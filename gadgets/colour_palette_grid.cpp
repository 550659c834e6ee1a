// The colour grid of the palette control's drop-down list: its layout and
// bitmap, the flashing frame with the colour's number, the hit test and
// the keys, and the procedure that takes the list over while it is open.
#include "colour_palette.h"
#include "../core/module_globals.h"
#include <stdio.h>

namespace {

const UINT_PTR kFlashTimer = 1;
const UINT kFlashMs = 350;
const UINT kLabelString = 30160;
const char kListProperty[] = "ID";

PaletteLayout &Layout() { return g_palette.layout; }

// The top left of a cell: the rows of the table lie below the favourites'
// row and its separating line.
POINT CellOrigin(DWORD cell)
{
    const PaletteLayout &l = Layout();
    int row = static_cast<int>(cell) / kGridColumns, column = static_cast<int>(cell) % kGridColumns;
    POINT at = {l.cellGap + column * (l.cellWidth + l.cellGap), l.cellGap + row * (l.cellHeight + l.cellGap)};
    if (row > 0)
        at.y += 2 * l.cellGap + 1;
    return at;
}

// The height of the cells with both separating lines: the label line lies
// below it.
int CellsHeight()
{
    const PaletteLayout &l = Layout();
    return CellOrigin(kCellCount - 1).y + l.cellHeight + 3 * l.cellGap;
}

void FillCell(HDC dc, DWORD cell)
{
    const PaletteLayout &l = Layout();
    POINT at = CellOrigin(cell);
    RECT rect = {at.x, at.y, at.x + l.cellWidth, at.y + l.cellHeight};
    int index = cell < kFavouriteCount ? kFavourites[cell] : static_cast<int>(cell) - kFavouriteCount;
    HBRUSH brush = CreateSolidBrush(kColourTable[index]);
    if (brush) {
        FillRect(dc, &rect, brush);
        DeleteObject(brush);
    }
    FrameRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

// Paints the grid into a bitmap compatible with the desktop, made once.
HBITMAP GridBitmap()
{
    PaletteLayout &l = Layout();
    if (l.gridBitmap)
        return l.gridBitmap;
    if (l.gridColumns * (l.cellWidth + l.cellGap) > l.gridWidth)
        l.cellWidth -= l.cellGap;
    if ((l.gridRows) * (l.cellHeight + l.cellGap) > l.gridHeight)
        l.cellHeight -= l.cellGap;
    if (l.cellWidth < 1 || l.cellHeight < 1)
        return nullptr;
    l.gridWidth = l.gridColumns * (l.cellWidth + l.cellGap) + l.cellGap;
    l.gridHeight = CellsHeight() + l.cellHeight + l.cellGap;
    HDC screen = GetDC(nullptr);
    if (!screen)
        return nullptr;
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = memory ? CreateCompatibleBitmap(screen, l.gridWidth, l.gridHeight) : nullptr;
    HGDIOBJ oldBitmap = bitmap ? SelectObject(memory, bitmap) : nullptr;
    if (oldBitmap) {
        HGDIOBJ oldBrush = SelectObject(memory, GetStockObject(WHITE_BRUSH));
        PatBlt(memory, 0, 0, l.gridWidth, l.gridHeight, PATCOPY);
        SelectObject(memory, oldBrush);
        HPALETTE oldPalette = g_palette.palette ? SelectPalette(memory, g_palette.palette, TRUE) : nullptr;
        if (oldPalette)
            RealizePalette(memory);
        for (DWORD cell = 0; cell < static_cast<DWORD>(kCellCount); ++cell)
            FillCell(memory, cell);
        if (oldPalette)
            SelectPalette(memory, oldPalette, TRUE);
        // Lines the width of the grid under the favourites and under the table.
        RECT line = {0, CellOrigin(0).y + l.cellHeight + l.cellGap, l.gridWidth, 0};
        line.bottom = line.top + 1;
        FillRect(memory, &line, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        line.top = CellsHeight() - 2 * l.cellGap;
        line.bottom = line.top + 1;
        FillRect(memory, &line, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        SelectObject(memory, oldBitmap);
        l.gridBitmap = bitmap;
    } else if (bitmap) {
        DeleteObject(bitmap);
    }
    if (memory)
        DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return l.gridBitmap;
}

void CopyGrid(HDC dc)
{
    HBITMAP grid = GridBitmap();
    HDC memory = grid ? CreateCompatibleDC(dc) : nullptr;
    if (!memory)
        return;
    HGDIOBJ old = SelectObject(memory, grid);
    if (old) {
        BitBlt(dc, 0, 0, Layout().gridWidth, Layout().gridHeight, memory, 0, 0, SRCCOPY);
        SelectObject(memory, old);
    }
    DeleteDC(memory);
}

// The text of ccSetColorString, or else the resource library's label.
const char *LabelText()
{
    if (g_palette.colourString)
        return g_palette.colourString;
    PaletteLayout &l = Layout();
    if (!l.labelText) {
        char text[128] = {};
        int length = LoadStringA(g_module.hResourceLibrary, kLabelString, text, sizeof text);
        l.labelText = static_cast<char *>(LocalAlloc(LPTR, length + 1));
        if (l.labelText)
            lstrcpynA(l.labelText, text, length + 1);
    }
    return l.labelText ? l.labelText : "";
}

// The label and the colour's number under the grid, the number opaque.
void DrawNumber(PaletteInstance *block, HWND control, HDC dc)
{
    HFONT font = PaletteClassFont(control);
    HGDIOBJ oldFont = font ? SelectObject(dc, font) : nullptr;
    UINT oldAlign = SetTextAlign(dc, TA_BOTTOM | TA_LEFT);
    int x = Layout().cellGap, y = Layout().gridHeight - Layout().cellGap;
    if (block->labelPending) {
        const char *label = LabelText();
        int length = lstrlenA(label);
        SIZE size = {};
        GetTextExtentPoint32A(dc, label, length, &size);
        block->labelWidth = size.cx;
        GetTextExtentPoint32A(dc, "000", 3, &size);
        block->numberWidth = size.cx;
        block->numberHeight = size.cy;
        SetBkMode(dc, TRANSPARENT);
        TextOutA(dc, x, y, label, length);
        block->labelPending = 0;
    }
    char number[16];
    int length = snprintf(number, sizeof number, "%ld", static_cast<long>(block->selectedIndex));
    RECT box = {x + block->labelWidth, y - block->numberHeight, x + block->labelWidth + block->numberWidth, y};
    SetBkMode(dc, OPAQUE);
    SetBkColor(dc, RGB(255, 255, 255));
    ExtTextOutA(dc, box.left, y, ETO_OPAQUE, &box, number, static_cast<UINT>(length), nullptr);
    SetTextAlign(dc, oldAlign);
    if (oldFont)
        SelectObject(dc, oldFont);
}

void InvertFrame(HDC dc, DWORD cell)
{
    const PaletteLayout &l = Layout();
    POINT at = CellOrigin(cell);
    Rectangle(dc, at.x - l.cellGap, at.y - l.cellGap, at.x + l.cellWidth + l.cellGap,
              at.y + l.cellHeight + l.cellGap);
}

// Flips the frame round `cell` (and round a favourite's own cell in the
// table) with an inverting pen, then writes the number.
void FlipFrame(PaletteInstance *block, HWND control, DWORD cell)
{
    if (cell >= static_cast<DWORD>(kCellCount) || !block->listWindow)
        return;
    HDC dc = GetDC(block->listWindow);
    if (!dc)
        return;
    HPEN pen = CreatePen(PS_SOLID, 1, RGB(0, 0, 0));
    if (pen) {
        int oldRop = SetROP2(dc, R2_NOTXORPEN);
        HGDIOBJ oldPen = SelectObject(dc, pen);
        HGDIOBJ oldBrush = SelectObject(dc, GetStockObject(HOLLOW_BRUSH));
        InvertFrame(dc, cell);
        if (cell < static_cast<DWORD>(kFavouriteCount))
            InvertFrame(dc, kFavourites[cell] + kFavouriteCount);
        SelectObject(dc, oldBrush);
        SelectObject(dc, oldPen);
        SetROP2(dc, oldRop);
        DeleteObject(pen);
        block->frameShown = !block->frameShown;
    }
    DrawNumber(block, control, dc);
    ReleaseDC(block->listWindow, dc);
}

// The cell under a point of the list, or false when the point is outside.
bool HitCell(HWND list, LPARAM lParam, DWORD *cell)
{
    RECT client;
    GetClientRect(list, &client);
    int x = static_cast<short>(LOWORD(lParam)), y = static_cast<short>(HIWORD(lParam));
    if (x < client.left || x > client.right || y < client.top || y > client.bottom)
        return false;
    const PaletteLayout &l = Layout();
    int sx = l.cellWidth + l.cellGap, sy = l.cellHeight + l.cellGap;
    if (sx <= 0 || sy <= 0)
        return false;
    x -= x % sx;
    y -= y % sy;
    *cell = static_cast<DWORD>((y + sy / 2) / sy * l.gridColumns + (x + sx / 2) / sx);
    return true;
}

void OnHit(PaletteInstance *block, HWND control, HWND list, LPARAM lParam)
{
    DWORD cell;
    if (!HitCell(list, lParam, &cell))
        return;
    if (cell < static_cast<DWORD>(kCellCount))
        MovePaletteFrame(block, control, cell);
    SendMessageA(control, CB_SETITEMDATA, 0, block->selectedIndex);
    if (IsWindow(list))
        InvalidateRect(list, nullptr, FALSE);
    if (PaletteBlock(control) == block)
        block->tracking = 1;
}

LRESULT CALLBACK PaletteListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam)
{
    HWND control = static_cast<HWND>(GetPropA(list, kListProperty));
    PaletteInstance *block = PaletteBlock(control);
    WNDPROC own = g_palette.oldListProc;
    if (!block || !block->listActive || !own)
        return own ? CallWindowProcA(own, list, message, wParam, lParam)
                   : DefWindowProcA(list, message, wParam, lParam);
    switch (message) {
    case WM_SETFOCUS:
        block->flashCell = kNoCell;
        SetTimer(list, kFlashTimer, kFlashMs, nullptr);
        break;
    case WM_KILLFOCUS:
        KillTimer(list, kFlashTimer);
        break;
    case WM_PAINT: {
        PAINTSTRUCT paint;
        HDC dc = BeginPaint(list, &paint);
        if (dc)
            CopyGrid(dc);
        EndPaint(list, &paint);
        block->labelPending = 1;
        block->frameShown = 0;
        return 0;
    }
    case WM_ERASEBKGND:
        return 1;
    case WM_SHOWWINDOW:
        if (!wParam)
            ReleasePaletteList(block);
        break;
    case WM_TIMER:
        if (wParam != kFlashTimer)
            break;
        if (block->flashCell != block->hoverCell)
            block->flashCell = block->hoverCell;
        else
            FlipFrame(block, control, block->hoverCell);
        return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        OnHit(block, control, list, lParam);
        return 0;
    case WM_MOUSEMOVE:
        if (block->tracking)
            OnHit(block, control, list, lParam);
        return 0;
    case WM_LBUTTONUP:
        if (GetCapture() == list)
            ReleaseCapture();
        if ((block = PaletteBlock(control)) != nullptr) {
            block->tracking = 0;
            if (block->frameShown)
                FlipFrame(block, control, block->hoverCell);
        }
        PostMessageA(control, CB_SHOWDROPDOWN, FALSE, 0);
        return 0;
    default:
        break;
    }
    return CallWindowProcA(own, list, message, wParam, lParam);
}

}  // namespace

bool ComputePaletteLayout()
{
    HDC screen = GetDC(nullptr);
    if (!screen)
        return false;
    TEXTMETRICA metrics = {};
    GetTextMetricsA(screen, &metrics);
    ReleaseDC(nullptr, screen);
    g_palette.itemHeight = metrics.tmHeight + 2;
    LONG units = GetDialogBaseUnits();
    PaletteLayout &l = Layout();
    l.gridRows = 18;
    l.gridColumns = kGridColumns;
    l.gridWidth = LOWORD(units) * 80 / 4;
    l.gridHeight = HIWORD(units) * 96 / 8;
    l.cellGap = GetSystemMetrics(SM_CXBORDER);
    l.cellWidth = l.gridWidth / 16;
    l.cellHeight = l.gridHeight / 18;
    return true;
}

void PlacePaletteList(PaletteInstance *block, HWND control)
{
    HWND list = block->listWindow;
    if (!list)
        return;
    GridBitmap();  // settles the cell sizes
    const PaletteLayout &l = Layout();
    int width = l.gridWidth + 3 * GetSystemMetrics(SM_CXBORDER);
    int height = l.cellHeight + 2 * GetSystemMetrics(SM_CYBORDER) + l.gridHeight;
    RECT at;
    GetWindowRect(control, &at);
    int x = at.left, y = at.bottom;
    if (y + height > GetSystemMetrics(SM_CYSCREEN))
        y = at.top - height;
    if (x + width > GetSystemMetrics(SM_CXSCREEN))
        x = at.right - width;
    SetWindowPos(list, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void TakeOverPaletteList(PaletteInstance *block, HWND control)
{
    HWND list = block->listWindow;
    if (!list)
        return;
    block->listActive = 1;
    block->tracking = 0;
    PlacePaletteList(block, control);
    HDC dc = GetDC(list);
    if (dc) {
        CopyGrid(dc);
        ReleaseDC(list, dc);
    }
    block->labelPending = 1;
    block->frameShown = 0;
    block->flashCell = kNoCell;
    SetTimer(list, kFlashTimer, kFlashMs, nullptr);
    WNDPROC old = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(PaletteListProc)));
    if (old != PaletteListProc)
        g_palette.oldListProc = old;
    // What the list painted of its own under the grid is painted over.
    InvalidateRect(list, nullptr, FALSE);
}

void ReleasePaletteList(PaletteInstance *block)
{
    block->listActive = 0;
    block->frameShown = 0;
    HWND list = block->listWindow;
    if (!list || !IsWindow(list))
        return;
    KillTimer(list, kFlashTimer);
    if (g_palette.oldListProc &&
        GetWindowLongPtrA(list, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(PaletteListProc))
        SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_palette.oldListProc));
}

LONG PaletteCellIndex(DWORD cell)
{
    return cell < static_cast<DWORD>(kFavouriteCount) ? kFavourites[cell]
                                                      : static_cast<LONG>(cell) - kFavouriteCount;
}

void MovePaletteFrame(PaletteInstance *block, HWND control, DWORD cell)
{
    if (block->listActive && block->frameShown)
        FlipFrame(block, control, block->hoverCell);
    block->frameShown = 0;
    block->hoverCell = cell;
    block->selectedIndex = PaletteCellIndex(cell);
    if (block->listActive)
        FlipFrame(block, control, cell);
}

DWORD PaletteKeyCell(DWORD cell, WPARAM key, bool *known)
{
    DWORD row = cell / kGridColumns, column = cell % kGridColumns;
    *known = true;
    switch (key) {
    case VK_END: return kCellCount - 1;
    case VK_HOME: return 0;
    case VK_LEFT: column = (column + kGridColumns - 1) % kGridColumns; break;
    case VK_RIGHT: column = (column + 1) % kGridColumns; break;
    case VK_UP: row = (row + kCellRows - 1) % kCellRows; break;
    case VK_DOWN: row = (row + 1) % kCellRows; break;
    default: *known = false; return cell;
    }
    return row * kGridColumns + column;
}

void FreePaletteGrid()
{
    PaletteLayout &l = Layout();
    if (l.gridBitmap)
        DeleteObject(l.gridBitmap);
    l.gridBitmap = nullptr;
    if (l.labelText)
        LocalFree(l.labelText);
    l.labelText = nullptr;
}
