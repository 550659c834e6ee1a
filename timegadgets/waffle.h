// Waffle: a grid of cells under column heads, edited in place by one edit
// control that roves from cell to cell. The units share this record and
// the helpers declared here: waffle.cpp (messages, children, heads),
// waffle_cells.cpp (the cell store), waffle_view.cpp (geometry, painting,
// moving and scrolling) and waffle_edit.cpp (the edit's keys).
#pragma once
#include <windows.h>

const int kWaffleTextSize = 128;  // a cell's text with its terminator
const int kWaffleEditId = 30001;
const int kWaffleScrollId = 30002;
const int kWaffleHeadId = 30003;
const WORD kWaffleError = 100;
const WORD kWaffleCellChanged = 101;
const DWORD kWaffleShares = 0xFFFFFFFF;       // a column that shares the free width
const DWORD kWaffleSharesInPaint = 0xFFFFFFFE; // shares only when the grid is painted
const DWORD kWaffleNoSnap = 0x01;             // style: keep any height

// The messages a head understands.
const UINT kHeadSetup = 0x401;
const UINT kHeadGetChild = 0x403;
const UINT kHeadOpen = 0x405;
const UINT kHeadIsOpen = 0x406;
const UINT kHeadExtraHeight = 0x412;
const UINT kHeadRelayout = 0x413;
const UINT kDateGet = 0x403;  // asked of a date head's inner calendar

struct WaffleCell {
    char text[kWaffleTextSize];
    DWORD index;
};

struct WaffleColumn {
    DWORD id;
    DWORD width;
    LONG hasList;
    LONG sortList;
    DWORD headStyle;
    HWND head;
    DWORD headType;
};

struct WaffleRecord {
    WNDPROC oldEditProc;
    HFONT normalFont;
    HFONT boldFont;
    HWND scrollBar;
    HWND edit;
    WaffleCell *cells;
    WaffleColumn *columns;
    HBRUSH gridBrush;
    DWORD currentCell;
    DWORD previousCell;
    DWORD columnCount;
    DWORD rowCount;
    DWORD cellCount;
    DWORD rowHeight;
    DWORD charWidth;
    LONG fontIsNormal;
    LONG focusShown;
    // Beside the fields above: room in `cells`, and an open-addressed table
    // from a cell index to its place in `cells`, so that a lookup costs the
    // same however many cells are stored. The table holds place + 1, 0 for
    // a free slot; null while it could not be made (lookups then scan).
    DWORD cellRoom;
    DWORD *slots;
    DWORD slotCount;  // a power of two, or 0
    HFONT derivedFont;  // the font made from the host's, deleted by the gadget
    LONG sizing;        // a snap of the height is under way
};

inline WaffleRecord *WaffleOf(HWND window)
{
    return reinterpret_cast<WaffleRecord *>(GetWindowLongPtrA(window, 0));
}

// ---------------------------------------------------------------- cells
// The place of `index` in `cells`, or -1.
LONG WaffleFindCell(const WaffleRecord *r, DWORD index);
// Stores `text` (checked: 0 to 127 characters) at `index`: 1, or -1 with
// the cause recorded; the store is unchanged on a failure.
LRESULT WaffleSetCell(WaffleRecord *r, DWORD index, const char *text);
// Copies the text at `index` (or "") into `buffer` of 128.
void WaffleGetCell(const WaffleRecord *r, DWORD index, char *buffer);
// The strings of a row (byColumn false) or a column, in the order of
// `cells`: their size, or writes them to `buffer`.
DWORD WaffleLineSize(const WaffleRecord *r, DWORD line, bool byColumn);
void WaffleGetLine(const WaffleRecord *r, DWORD line, bool byColumn, char *buffer);
// The row of the highest stored index, 0 with none.
DWORD WaffleLastRow(const WaffleRecord *r);
// Raises by `columnCount` every index from `first` on.
void WaffleOpenRow(WaffleRecord *r, DWORD first);
// Removes the cells of row `row` and lowers the later ones.
void WaffleRemoveRow(WaffleRecord *r, DWORD row);
void WaffleFreeCells(WaffleRecord *r);

// ---------------------------------------------------------------- view
// A mathematical modulo: the result lies in 0 .. divisor - 1.
LONG WaffleMod(LONG value, LONG divisor);
// H: 1 while there are columns (the head row), else 0.
inline LONG WaffleHeadRows(const WaffleRecord *r) { return r->columnCount ? 1 : 0; }
LONG WaffleScrollPos(const WaffleRecord *r);
// Left and right of column `column`; `painting` also shares a width of
// kWaffleSharesInPaint.
void WaffleColumnSpan(HWND window, const WaffleRecord *r, DWORD column, bool painting, LONG *left,
                      LONG *right);
// The rectangle of cell `index`; all zero without cells or columns.
RECT WaffleCellRect(HWND window, const WaffleRecord *r, DWORD index, bool painting);
// Draws or erases the inverted frame around the current cell.
bool WaffleToggleFrame(HWND window, WaffleRecord *r);
// Moves the edit over the current cell.
void WaffleMoveEdit(HWND window, WaffleRecord *r);
// Moving to a cell; `notify` sends the cell-changed notification. 1, or -1.
LRESULT WaffleGoToCell(HWND window, WaffleRecord *r, LONG wanted, bool notify);
// Rows of one page: (client height - head row) / row height.
LONG WafflePageRows(HWND window, const WaffleRecord *r);
void WaffleOnVScroll(HWND window, WaffleRecord *r, WORD code, WORD thumb);
void WaffleSetRange(HWND window, WaffleRecord *r);
// Places the heads, the scroll bar and the edit.
void WaffleLayout(HWND window, WaffleRecord *r);
void WaffleOnSize(HWND window, WaffleRecord *r);
void WaffleOnPaint(HWND window, WaffleRecord *r);
void WaffleOnLButtonDown(HWND window, WaffleRecord *r, LONG x, LONG y);
// Sends the error notification; false when the gadget is gone.
bool WaffleNotifyError(HWND window, const WaffleRecord *r);
