// The Waffle's geometry and view: column widths, cell rectangles, the
// inverted frame around the current cell, painting, moving the edit from
// cell to cell, scrolling by rows and the snap of the height to whole rows.
#include "waffle.h"
#include "../gadgets/gadget_frame.h"
#include "qziso32.h"

namespace {

LONG ClientWidth(HWND window)
{
    RECT client;
    GetClientRect(window, &client);
    return client.right;
}

bool RangeIsEmpty(const WaffleRecord *r)
{
    int low = 0, high = 0;
    GetScrollRange(r->scrollBar, SB_CTL, &low, &high);
    return high <= low;
}

// Screen coordinates are ints; a row far down gives a top beyond them.
LONG ClampToInt(LONGLONG value)
{
    if (value > 0x3FFFFFFF)
        return 0x3FFFFFFF;
    if (value < -0x3FFFFFFF)
        return -0x3FFFFFFF;
    return static_cast<LONG>(value);
}

// Where the edit lies for a cell: inside its frame.
void PlaceEdit(HWND window, WaffleRecord *r, bool hideCaret)
{
    RECT cell = WaffleCellRect(window, r, r->currentCell, false);
    if (hideCaret)
        HideCaret(r->edit);
    MoveWindow(r->edit, cell.left + 3, cell.top + 3, cell.right - cell.left - 6,
               cell.bottom - cell.top - 5, TRUE);
    if (hideCaret)
        ShowCaret(r->edit);
}

}  // namespace

LONG WaffleMod(LONG value, LONG divisor)
{
    LONG rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

LONG WaffleScrollPos(const WaffleRecord *r)
{
    return GetScrollPos(r->scrollBar, SB_CTL);
}

bool WaffleNotifyError(HWND window, const WaffleRecord *r)
{
    return GadgetNotifyAlive(window, kWaffleError, r);
}

// Free = client width, less the scroll bar when it scrolls, less each
// column not marked as sharing; the S sharing columns split it, the first
// Free mod S one pixel wider. A column marked to share in painting only
// counts as fixed here, and gets Free / S when painted.
void WaffleColumnSpan(HWND window, const WaffleRecord *r, DWORD column, bool painting, LONG *left,
                      LONG *right)
{
    LONG free = ClientWidth(window);
    if (!RangeIsEmpty(r))
        free -= GetSystemMetrics(SM_CXVSCROLL);
    LONG sharing = 0;
    for (DWORD c = 0; c < r->columnCount; ++c) {
        if (r->columns[c].width == kWaffleShares)
            ++sharing;
        else
            free -= static_cast<LONG>(r->columns[c].width * r->charWidth);
    }
    LONG share = sharing ? free / sharing : 0;
    LONG extra = sharing ? free % sharing : 0;
    LONG x = 0, shared = 0;
    for (DWORD c = 0; c <= column && c < r->columnCount; ++c) {
        DWORD width = r->columns[c].width;
        LONG pixels;
        if (width == kWaffleShares)
            pixels = share + (shared++ < extra ? 1 : 0);
        else if (painting && width == kWaffleSharesInPaint)
            pixels = share;
        else
            pixels = static_cast<LONG>(width * r->charWidth);
        *left = x;
        x += pixels;
        *right = x;
    }
}

RECT WaffleCellRect(HWND window, const WaffleRecord *r, DWORD index, bool painting)
{
    RECT rect = {};
    if (!r->cells || !r->columnCount)
        return rect;
    DWORD row = index / r->columnCount;
    WaffleColumnSpan(window, r, index % r->columnCount, painting, &rect.left, &rect.right);
    LONGLONG top = (LONGLONG(row) + WaffleHeadRows(r) - WaffleScrollPos(r)) * r->rowHeight;
    rect.top = ClampToInt(top);
    rect.bottom = ClampToInt(top + r->rowHeight);
    return rect;
}

// Four bars of three pixels around the cell, reaching one pixel outside
// it, inverted and clipped to the grid below the heads.
static void DrawFrame(HWND window, const WaffleRecord *r, HDC dc)
{
    RECT cell = WaffleCellRect(window, r, r->currentCell, false);
    RECT client;
    GetClientRect(window, &client);
    RECT clip = {2, WaffleHeadRows(r) * LONG(r->rowHeight), client.right - 2, client.bottom - 2};
    LONG l = cell.left - 1, t = cell.top - 1, rr = cell.right + 1, b = cell.bottom + 1;
    const RECT bars[4] = {
        {l, t, rr, t + 3}, {l, b - 3, rr, b}, {l, t + 3, l + 3, b - 3}, {rr - 3, t + 3, rr, b - 3}};
    HGDIOBJ earlier = SelectObject(dc, GetStockObject(WHITE_BRUSH));
    for (const RECT &bar : bars) {
        RECT part;
        if (IntersectRect(&part, &bar, &clip))
            PatBlt(dc, part.left, part.top, part.right - part.left, part.bottom - part.top, PATINVERT);
    }
    SelectObject(dc, earlier);
}

bool WaffleToggleFrame(HWND window, WaffleRecord *r)
{
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return false;
    }
    // Where a paint is pending the paint draws the frame: an inversion
    // drawn there now as well would cancel it.
    HRGN pending = CreateRectRgn(0, 0, 0, 0);
    if (pending && GetUpdateRgn(window, pending, FALSE) > NULLREGION)
        ExtSelectClipRgn(dc, pending, RGN_DIFF);
    DrawFrame(window, r, dc);
    if (pending)
        DeleteObject(pending);
    ReleaseDC(window, dc);
    return true;
}

void WaffleMoveEdit(HWND window, WaffleRecord *r) { PlaceEdit(window, r, false); }

LONG WafflePageRows(HWND window, const WaffleRecord *r)
{
    RECT client;
    GetClientRect(window, &client);
    return (client.bottom - WaffleHeadRows(r) * LONG(r->rowHeight)) / LONG(r->rowHeight);
}

LRESULT WaffleGoToCell(HWND window, WaffleRecord *r, LONG wanted, bool notify)
{
    if (!r->columnCount) {
        OSErrorSetErrorInfo(RV_BadParms, "WFM_GOTOCELL");
        return -1;
    }
    LONG columns = static_cast<LONG>(r->columnCount);
    LONG last = static_cast<LONG>(r->rowCount * r->columnCount) - 1;
    LONG n = wanted;
    if (n < 0)
        n = WaffleMod(n, columns);
    else if (n > last)
        n = WaffleMod(n, columns) - columns + last + 1;
    HDC probe = GetDC(window);
    if (!probe) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return -1;
    }
    ReleaseDC(window, probe);
    if (r->focusShown)
        WaffleToggleFrame(window, r);
    char text[kWaffleTextSize];
    GetWindowTextA(r->edit, text, kWaffleTextSize);
    WaffleSetCell(r, r->currentCell, text);
    r->previousCell = r->currentCell;
    r->currentCell = static_cast<DWORD>(n);
    if (r->focusShown)
        WaffleToggleFrame(window, r);
    SetWindowPos(r->edit, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    SetWindowTextA(r->edit, "");
    WaffleMoveEdit(window, r);
    WaffleGetCell(r, r->currentCell, text);
    SetWindowTextA(r->edit, text);
    SendMessageA(r->edit, EM_SETSEL, 0, -1);
    UpdateWindow(r->edit);
    // The view follows by whole rows; the scroll handler clamps.
    RECT client;
    GetClientRect(window, &client);
    LONG rowHeight = static_cast<LONG>(r->rowHeight);
    LONGLONG top =
        (LONGLONG(r->currentCell / r->columnCount) + WaffleHeadRows(r) - WaffleScrollPos(r)) * rowHeight;
    LONGLONG position = WaffleScrollPos(r);
    LONGLONG below = top + rowHeight - client.bottom;
    LONGLONG above = WaffleHeadRows(r) * rowHeight - top;
    if (below > 0)
        position += (below + rowHeight - 1) / rowHeight;
    else if (above > 0)
        position -= (above + rowHeight - 1) / rowHeight;
    if (position != WaffleScrollPos(r)) {
        LONG wanted16 = static_cast<LONG>(position < 0 ? 0 : position > 0xFFFF ? 0xFFFF : position);
        SendMessageA(window, WM_VSCROLL, MAKEWPARAM(SB_THUMBPOSITION, wanted16), 0);
        if (!GadgetAlive(window, r))
            return 1;
    }
    if (notify)
        GadgetNotifyAlive(window, kWaffleCellChanged, r);
    return 1;
}

void WaffleSetRange(HWND window, WaffleRecord *r)
{
    RECT client;
    GetClientRect(window, &client);
    LONGLONG high = LONGLONG(r->rowCount) + WaffleHeadRows(r) - client.bottom / LONG(r->rowHeight);
    if (high < 0)
        high = 0;
    // The thumb travels in the 16 bits of WM_VSCROLL.
    if (high > 0xFFFF)
        high = 0xFFFF;
    SetScrollRange(r->scrollBar, SB_CTL, 0, static_cast<int>(high), TRUE);
}

void WaffleOnVScroll(HWND window, WaffleRecord *r, WORD code, WORD thumb)
{
    LONG old = WaffleScrollPos(r);
    LONG position = old;
    switch (code) {
    case SB_LINEUP: position -= 1; break;
    case SB_LINEDOWN: position += 1; break;
    case SB_PAGEUP: position -= WafflePageRows(window, r); break;
    case SB_PAGEDOWN: position += WafflePageRows(window, r); break;
    case SB_THUMBPOSITION: position = thumb; break;
    default: return;
    }
    int low = 0, high = 0;
    GetScrollRange(r->scrollBar, SB_CTL, &low, &high);
    if (position > high)
        position = high;
    if (position < low)
        position = low;
    SetScrollPos(r->scrollBar, SB_CTL, position, TRUE);
    if (position == old)
        return;
    RECT client;
    GetClientRect(window, &client);
    LONG headBottom = WaffleHeadRows(r) * LONG(r->rowHeight);
    RECT area = {1, headBottom + 1, client.right, client.bottom};
    RECT bar;
    GetWindowRect(r->scrollBar, &bar);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT *>(&bar), 2);
    if (bar.left > area.left && bar.left < area.right)
        area.right = bar.left;
    ScrollWindow(window, 0, (old - position) * LONG(r->rowHeight), &area, &area);
    PlaceEdit(window, r, true);
}

void WaffleLayout(HWND window, WaffleRecord *r)
{
    RECT client;
    GetClientRect(window, &client);
    LONG rowHeight = static_cast<LONG>(r->rowHeight);
    LONG barWidth = GetSystemMetrics(SM_CXVSCROLL);
    LONG heads = 0;
    for (DWORD c = 0; c < r->columnCount; ++c)
        heads += r->columns[c].head ? 1 : 0;
    HDWP defer = BeginDeferWindowPos(heads + 1);
    for (DWORD c = 0; defer && c < r->columnCount; ++c) {
        if (!r->columns[c].head)
            continue;
        LONG left = 0, right = 0;
        WaffleColumnSpan(window, r, c, false, &left, &right);
        if (c + 1 == r->columnCount)
            right += barWidth - 1;
        defer = DeferWindowPos(defer, r->columns[c].head, nullptr, left, 0, right - left, 5 * rowHeight,
                               SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (defer)
        defer = DeferWindowPos(defer, r->scrollBar, nullptr, client.right - barWidth - 2, rowHeight + 1,
                               barWidth, client.bottom - rowHeight - 2, SWP_NOZORDER | SWP_NOACTIVATE);
    if (!defer || !EndDeferWindowPos(defer)) {
        OSErrorSetErrorInfo(RV_UserError, "DeferWindowPos");
        if (!WaffleNotifyError(window, r))
            return;
    }
    WaffleMoveEdit(window, r);
    for (DWORD c = 0; c < r->columnCount; ++c) {
        HWND head = r->columns[c].head;
        if (!head)
            continue;
        SendMessageA(head, kHeadRelayout, 0, 0);
        SendMessageA(head, kHeadExtraHeight, 5 * rowHeight, 0);
        if (!GadgetAlive(window, r))
            return;
    }
}

void WaffleOnSize(HWND window, WaffleRecord *r)
{
    RECT client, frame;
    GetClientRect(window, &client);
    GetWindowRect(window, &frame);
    LONG rowHeight = static_cast<LONG>(r->rowHeight);
    bool snap = !(GetWindowLongA(window, GWL_STYLE) & kWaffleNoSnap);
    if (snap && !r->sizing && client.bottom % rowHeight) {
        LONG height = client.bottom / rowHeight * rowHeight + (frame.bottom - frame.top - client.bottom) + 4;
        if (height != frame.bottom - frame.top) {
            r->sizing = 1;
            SetWindowPos(window, nullptr, 0, 0, frame.right - frame.left, height,
                         SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
            if (!GadgetAlive(window, r))
                return;
            r->sizing = 0;
        }
    }
    WaffleSetRange(window, r);
    WaffleLayout(window, r);
}

// The text of each stored cell whose rectangle meets the area painted.
// Cells never overlap, so the visible rows are looked up by index rather
// than every stored cell tested: the cost follows the rows shown, not the
// cells stored. False when the column edges cannot be kept.
static bool PaintCells(HWND window, const WaffleRecord *r, HDC dc, const RECT &area)
{
    LONG *edges = static_cast<LONG *>(LocalAlloc(LPTR, r->columnCount * 2 * sizeof(LONG)));
    if (!edges) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(r->columnCount * 2 * sizeof(LONG)));
        return false;
    }
    for (DWORD c = 0; c < r->columnCount; ++c)
        WaffleColumnSpan(window, r, c, true, &edges[2 * c], &edges[2 * c + 1]);
    LONG rowHeight = static_cast<LONG>(r->rowHeight);
    LONGLONG position = WaffleScrollPos(r);
    LONGLONG firstRow = area.top / rowHeight - 1 + position;
    LONGLONG lastRow = area.bottom / rowHeight + position;
    if (firstRow < 0)
        firstRow = 0;
    LONGLONG rows = LONGLONG(0xFFFFFFFFu) / r->columnCount;
    for (LONGLONG row = firstRow; row <= lastRow && row <= rows; ++row) {
        LONGLONG top = (row + WaffleHeadRows(r) - position) * rowHeight;
        for (DWORD c = 0; c < r->columnCount; ++c) {
            LONGLONG index = row * r->columnCount + c;
            if (index > 0xFFFFFFFFLL)
                break;
            LONG place = WaffleFindCell(r, static_cast<DWORD>(index));
            RECT cell = {edges[2 * c], static_cast<LONG>(top), edges[2 * c + 1], static_cast<LONG>(top + rowHeight)};
            RECT seen;
            if (place < 0 || !IntersectRect(&seen, &cell, &area))
                continue;
            cell.left += 3;
            DrawTextA(dc, r->cells[place].text, -1, &cell, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
        }
    }
    LocalFree(edges);
    return true;
}

void WaffleOnPaint(HWND window, WaffleRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (!dc) {
        EndPaint(window, &ps);
        OSErrorSetErrorInfo(RV_GDIError, "BeginPaint");
        WaffleNotifyError(window, r);
        return;
    }
    RECT client;
    GetClientRect(window, &client);
    LONG rowHeight = static_cast<LONG>(r->rowHeight);
    LONG headBottom = WaffleHeadRows(r) * rowHeight;
    SetBkMode(dc, TRANSPARENT);
    SetBrushOrgEx(dc, 0, rowHeight, nullptr);
    UnrealizeObject(r->gridBrush);
    HGDIOBJ earlierFont = r->normalFont ? SelectObject(dc, r->normalFont) : nullptr;
    HGDIOBJ earlierBrush = SelectObject(dc, r->gridBrush);
    for (DWORD k = 1; k < r->rowCount && LONG(k) * rowHeight < client.bottom; ++k)
        PatBlt(dc, 0, LONG(k) * rowHeight, client.right, 1, PATCOPY);
    for (DWORD c = 0; c < r->columnCount; ++c) {
        LONG left = 0, right = 0;
        WaffleColumnSpan(window, r, c, true, &left, &right);
        if (right >= client.right)
            break;
        PatBlt(dc, right, rowHeight, 1, client.bottom - rowHeight, PATCOPY);
    }
    SelectObject(dc, earlierBrush);
    RECT grid = {0, headBottom, client.right, client.bottom};
    DrawEdge(dc, &grid, EDGE_SUNKEN, BF_LEFT | BF_RIGHT | BF_BOTTOM);
    if (r->focusShown && r->columnCount)
        DrawFrame(window, r, dc);
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    if (r->columnCount && r->cellCount && !PaintCells(window, r, dc, ps.rcPaint)) {
        if (earlierFont)
            SelectObject(dc, earlierFont);
        EndPaint(window, &ps);
        WaffleNotifyError(window, r);
        return;
    }
    if (earlierFont)
        SelectObject(dc, earlierFont);
    EndPaint(window, &ps);
}

void WaffleOnLButtonDown(HWND window, WaffleRecord *r, LONG x, LONG y)
{
    if (!r->columnCount)
        return;
    LONG rowHeight = static_cast<LONG>(r->rowHeight);
    LONG row = (y - WaffleHeadRows(r) * rowHeight) / rowHeight + WaffleScrollPos(r);
    DWORD column = 0;
    for (;; ++column) {
        if (column == r->columnCount)
            return;
        LONG left = 0, right = 0;
        WaffleColumnSpan(window, r, column, false, &left, &right);
        if (x >= left && x < right)
            break;
    }
    HideCaret(r->edit);
    SendMessageA(window, WFM_GOTOCELL, static_cast<WPARAM>(static_cast<DWORD>(row * LONG(r->columnCount) + LONG(column))), 0);
    if (!GadgetAlive(window, r))
        return;
    ShowCaret(r->edit);
    POINT at = {x, y};
    MapWindowPoints(window, r->edit, &at, 1);
    LPARAM where = MAKELPARAM(at.x, at.y);
    SendMessageA(r->edit, WM_LBUTTONDOWN, MK_LBUTTON, where);
    SendMessageA(r->edit, WM_LBUTTONUP, 0, where);
    SendMessageA(r->edit, WM_LBUTTONDOWN, MK_LBUTTON, where);
    SendMessageA(r->edit, WM_LBUTTONUP, 0, where);
}
