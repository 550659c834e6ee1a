// QzVListBox: painting rows, the thumb, scrolling with its glide, the text
// link, the selection walks and the row fit.
#include "vlistbox.h"
#include <string.h>

namespace vlb {

// ---------------------------------------------------------------- painting
RECT RowRect(const VListRecord *r, DWORD row)
{
    RECT rect = {0, static_cast<int>(row) * r->itemHeight, r->clientWidth,
                 static_cast<int>(row + 1) * r->itemHeight};
    return rect;
}

RECT RowsRect(const VListRecord *r)
{
    return RECT{0, 0, r->clientWidth, static_cast<int>(r->visibleCount) * r->itemHeight};
}

bool PaintRow(HWND w, VListRecord *r, HDC dc, DWORD row)
{
    DWORD index = r->topIndex + row;
    RECT rect = RowRect(r, row);
    PatBlt(dc, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, PATCOPY);
    if (r->totalItems != kUnknown && index >= r->totalItems)
        return true;
    if (index < r->cacheFirst || index - r->cacheFirst >= r->cacheSize) {
        OSErrorSetErrorInfo(RV_Failure);
        return true;
    }
    CacheEntry *e = Cached(r, index);
    bool selected = IsSelected(w, r, index);
    bool caret = r->focused && index == r->caretIndex;
    if (HasStyle(w, VLS_OWNERDRAW)) {
        VLDRAWREQUEST request = {index, (selected ? VLDS_SELECTED : 0u) | (caret ? VLDS_FOCUS : 0u),
                                 dc, rect, e ? e->itemData : 0, e ? e->text : nullptr};
        return Notify(w, r, VLN_DRAW, &request);
    }
    if (e && e->text) {
        SetBkColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
        SetTextColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
        ExtTextOutA(dc, rect.left + 1, rect.top, ETO_CLIPPED | ETO_OPAQUE, &rect, e->text,
                    lstrlenA(e->text), nullptr);
    }
    if (caret)
        DrawFocusRect(dc, &rect);
    return true;
}

// Paints `first` to `last` rows (or all) into `dc` with the font and brush.
// A host that destroys the list from VLN_DRAW ends the pass there.
bool PaintRows(HWND w, VListRecord *r, HDC dc, DWORD first, DWORD last, bool all)
{
    if (!r->callback || r->itemHeight <= 0)
        return true;
    VListRowPaint paint = VListBeginRowPaint(dc, r->font);
    if (!paint.brush) {
        VListEndRowPaint(paint);
        return ReportError(w);
    }
    if (all) {
        RECT client;
        GetClientRect(w, &client);
        PatBlt(dc, 0, 0, client.right, client.bottom, PATCOPY);
        first = 0;
        last = r->visibleCount ? r->visibleCount - 1 : 0;
    }
    bool alive = true;
    for (DWORD row = first; alive && row <= last && row < r->visibleCount; ++row)
        alive = PaintRow(w, r, dc, row);
    VListEndRowPaint(paint);
    return alive;
}

bool RepaintAll(HWND w, VListRecord *r)
{
    if (r->memoryDC && !PaintRows(w, r, r->memoryDC, 0, 0, true))
        return false;
    InvalidateRect(w, nullptr, r->memoryDC ? FALSE : TRUE);
    return true;
}

// Repaints the row of `index` if it is on view.
bool RepaintItem(HWND w, VListRecord *r, DWORD index)
{
    if (index < r->topIndex || index - r->topIndex >= r->visibleCount)
        return true;
    DWORD row = index - r->topIndex;
    RECT rect = RowRect(r, row);
    if (r->memoryDC && !PaintRows(w, r, r->memoryDC, row, row, false))
        return false;
    InvalidateRect(w, &rect, r->memoryDC ? FALSE : TRUE);
    return true;
}

// Moves a mark (the current selection or the caret) to `index`, repainting
// the row it leaves and then the row it reaches.
bool MoveMark(HWND w, VListRecord *r, DWORD &mark, DWORD index)
{
    DWORD old = mark;
    mark = index;
    return RepaintItem(w, r, old) && RepaintItem(w, r, index);
}

bool UpdateThumb(HWND w, VListRecord *r)
{
    return VListSyncThumb(w, r, Count(r), [](const VListRecord *v) { return v->topIndex; });
}

DWORD ClampTop(const VListRecord *r, DWORD top)
{
    if (r->totalItems != kUnknown &&
        static_cast<unsigned long long>(top) + r->visibleCount > r->totalItems)
        return r->totalItems < r->visibleCount ? 0 : r->totalItems - r->visibleCount;
    return top;
}

// Moves the view to `top`, gliding by `step` pixels.
bool ScrollTo(HWND w, VListRecord *r, DWORD top, int step)
{
    UpdateWindow(w);  // pending paint may reach the host's VLN_DRAW
    if (!GadgetAlive(w, r))
        return false;
    bool wasUnknown = r->totalItems == kUnknown;
    top = ClampTop(r, top);
    DWORD old = r->topIndex;
    r->topIndex = top;
    if (!PlaceCache(w, r) || !Refill(w, r))
        return false;
    if (wasUnknown && r->totalItems != kUnknown) {
        r->topIndex = ClampTop(r, r->topIndex);
        if (!PlaceCache(w, r) || !Refill(w, r))
            return false;
    }
    top = r->topIndex;
    if (!r->memoryDC) {
        InvalidateRect(w, nullptr, TRUE);
    } else if (top != old) {
        DWORD d = top > old ? top - old : old - top;
        if (d >= r->visibleCount) {
            if (!RepaintAll(w, r))
                return false;
        } else {
            RECT rows = RowsRect(r);
            int pixels = static_cast<int>(d) * r->itemHeight;
            int dy = top > old ? -pixels : pixels;
            ScrollDC(r->memoryDC, 0, dy, &rows, &rows, nullptr, nullptr);
            bool alive = top > old
                             ? PaintRows(w, r, r->memoryDC, r->visibleCount - d, r->visibleCount - 1, false)
                             : PaintRows(w, r, r->memoryDC, 0, d - 1, false);
            if (!alive)
                return false;
            VListGlide(w, r->memoryDC, rows, -dy, step);
        }
    }
    return UpdateThumb(w, r);
}

// Sends VLN_SELCHANGE (with VLS_NOTIFY) and keeps the window text in step.
bool SyncText(HWND w, VListRecord *r)
{
    if (!Single(w) || !HasStyle(w, VLS_NOTIFY))
        return true;
    char buffer[256] = "";
    if (r->currentSelection != kUnknown) {
        VLGETTEXTREQUEST request = {buffer, r->currentSelection, sizeof buffer};
        if (!Notify(w, r, VLN_GETTEXT, &request))
            return false;
        buffer[sizeof buffer - 1] = 0;
    }
    r->inTextSync = true;
    SetWindowTextA(w, buffer);
    if (!GadgetAlive(w, r))
        return false;
    r->inTextSync = false;
    return true;
}

bool SelChanged(HWND w, VListRecord *r)
{
    if (HasStyle(w, VLS_NOTIFY)) {
        DWORD word = 0;
        if (!Notify(w, r, VLN_SELCHANGE, &word))
            return false;
    }
    return r->inTextSync || SyncText(w, r);
}

// ---------------------------------------------------------------- selection
bool Toggle(HWND w, VListRecord *r, DWORD index)
{
    bool ok = VListSelContains(r->selection, index) ? VListSelRemove(r->selection, index)
                                                     : VListSelAdd(r->selection, index);
    if (!ok && !ReportError(w))
        return false;
    return RepaintItem(w, r, index);
}

// Shift with Home, End or a click: the selection becomes the full run.
bool SelectRun(HWND w, VListRecord *r)
{
    if (r->totalItems == kUnknown && r->highWater) {
        if (r->caretIndex > r->highWater - 1)
            r->caretIndex = r->highWater - 1;
        if (r->anchorIndex > r->highWater)
            r->anchorIndex = r->highWater;
    }
    DWORD low = r->anchorIndex < r->caretIndex ? r->anchorIndex : r->caretIndex;
    DWORD high = r->anchorIndex < r->caretIndex ? r->caretIndex : r->anchorIndex;
    if (!VListSelSetRun(r->selection, low, high) && !ReportError(w))
        return false;
    return RepaintAll(w, r);
}

// The caret moved from p to q with the anchor fixed: the selection stays the
// run between anchor and caret.
bool RangeWalk(HWND w, VListRecord *r, DWORD p, DWORD q)
{
    DWORD a = r->anchorIndex;
    DWORD low = p < q ? p : q, high = p < q ? q : p;
    for (DWORD i = low;; ++i) {
        if (i != a) {
            bool touched = true;
            if (i == p && q != a)
                touched = (p >= a && p > q) || (p < a && q > p);
            if (touched) {
                bool ok = true;
                if (!VListSelContains(r->selection, i))
                    ok = VListSelAdd(r->selection, i);
                else if (i != q)
                    ok = VListSelRemove(r->selection, i);
                if (!ok && !ReportError(w))
                    return false;
            }
        }
        if (!RepaintItem(w, r, i))
            return false;
        if (i == high)
            return true;
    }
}

// ---------------------------------------------------------------- row fit
bool FitRows(HWND w, VListRecord *r)
{
    if (r->inResize)
        return true;
    r->inResize = true;
    RECT client;
    GetClientRect(w, &client);
    VListRowMetrics m = VListMeasureRows(w, r->font, HasStyle(w, VLS_OWNERDRAW), r->callback,
                                         r->callbackData, client.bottom);
    if (!GadgetAlive(w, r))  // VLN_MEASURE went to the host
        return false;
    r->itemHeight = m.itemHeight;
    r->visibleCount = m.visibleCount;
    // More rows than the window holds: the window (and its array) grows.
    if (r->cacheSize && r->cacheSize < r->visibleCount && !ResizeCache(w, r, r->visibleCount))
        return false;
    if (r->loadBatch < r->visibleCount)
        r->loadBatch = r->visibleCount;
    // The height fits whole rows; the width stays as the window has it.
    VListFitWindow(w, static_cast<int>(r->visibleCount) * m.itemHeight);
    if (!GadgetAlive(w, r))
        return false;
    r->inResize = false;
    return true;
}

void FreeMemoryDC(VListRecord *r)
{
    VListFreeMemoryDC(r->memoryDC, r->savedBitmap);
}

bool RebuildMemoryDC(HWND w, VListRecord *r)
{
    FreeMemoryDC(r);
    RECT client;
    GetClientRect(w, &client);
    r->clientWidth = client.right;
    if (client.right <= 0 || client.bottom <= 0)
        return true;
    r->memoryDC = VListCreateMemoryDC(w, &r->savedBitmap);
    return r->memoryDC || ReportError(w);
}

}  // namespace vlb
