// QzDVListBox: painting rows, the thumb, moves and reloads of the view,
// and the row fit.
#include "dvlistbox.h"
#include <string.h>

namespace dvl {

// ---------------------------------------------------------------- painting
RECT RowRect(HWND w, const DVListRecord *r, DWORD row)
{
    RECT client;
    GetClientRect(w, &client);
    RECT rect = {0, static_cast<int>(row) * r->itemHeight, client.right,
                 static_cast<int>(row + 1) * r->itemHeight};
    return rect;
}

bool PaintRow(HWND w, DVListRecord *r, HDC dc, DWORD row)
{
    LONG index = Wrap(static_cast<long long>(r->topIndex) + row);
    RECT rect = RowRect(w, r, row);
    PatBlt(dc, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, PATCOPY);
    if (!Possible(r, index))
        return true;
    if (!InWindow(r, index)) {
        OSErrorSetErrorInfo(RV_Warning);
        return true;
    }
    DvEntry *e = Cached(r, index);
    bool selected = e && (e->flags & kSelected);
    bool caret = r->focused && index == r->caretIndex;
    if (HasStyle(w, VLS_OWNERDRAW)) {
        VLDRAWREQUEST request = {static_cast<DWORD>(index),
                                 (selected ? VLDS_SELECTED : 0u) | (caret ? VLDS_FOCUS : 0u), dc, rect,
                                 e ? e->itemData : 0, e ? e->text : nullptr};
        return Notify(w, r, VLN_DRAW, &request);
    }
    if (e && e->text) {
        SetBkColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
        SetTextColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
        ExtTextOutA(dc, rect.left + r->charWidth / 2, rect.top, ETO_CLIPPED | ETO_OPAQUE, &rect,
                    e->text, lstrlenA(e->text), nullptr);
    }
    if (caret)
        DrawFocusRect(dc, &rect);
    return true;
}

// Paints the rows that meet `clip` (all rows when null) into `dc`. A host
// that destroys the list from VLN_DRAW ends the pass there.
bool PaintRows(HWND w, DVListRecord *r, HDC dc, const RECT *clip)
{
    if (!r->cacheEntries || !CanPaint(r) || r->itemHeight <= 0)
        return true;
    VListRowPaint paint = VListBeginRowPaint(dc, r->font);
    if (!paint.brush) {
        VListEndRowPaint(paint);
        ReportError(w);
        return GadgetAlive(w, r);
    }
    RECT client;
    GetClientRect(w, &client);
    if (!clip || Count(r) == 0)
        PatBlt(dc, 0, 0, client.right, client.bottom, PATCOPY);
    bool alive = true;
    if (Count(r) != 0 || r->totalItems == -1) {
        for (DWORD row = 0; alive && row < r->visibleCount; ++row) {
            RECT rect = RowRect(w, r, row), meet;
            if (!clip || IntersectRect(&meet, &rect, clip))
                alive = PaintRow(w, r, dc, row);
        }
    }
    VListEndRowPaint(paint);
    return alive;
}

bool RepaintAll(HWND w, DVListRecord *r)
{
    if (r->memoryDC && !PaintRows(w, r, r->memoryDC, nullptr))
        return false;
    InvalidateRect(w, nullptr, FALSE);
    return true;
}

bool RowOf(const DVListRecord *r, LONG index, DWORD *row)
{
    long long d = static_cast<long long>(index) - r->topIndex;
    if (index == kNoIndex || d < 0 || d >= static_cast<long long>(r->visibleCount))
        return false;
    *row = static_cast<DWORD>(d);
    return true;
}

bool RepaintRow(HWND w, DVListRecord *r, LONG index)
{
    DWORD row;
    if (!RowOf(r, index, &row))
        return true;
    RECT rect = RowRect(w, r, row);
    if (!r->cacheEntries || !CanPaint(r)) {
        ValidateRect(w, &rect);
        return true;
    }
    if (r->memoryDC && !PaintRows(w, r, r->memoryDC, &rect))
        return false;
    InvalidateRect(w, &rect, FALSE);
    return true;
}

bool UpdateThumb(HWND w, DVListRecord *r)
{
    DWORD count = Count(r) > 0 ? static_cast<DWORD>(Count(r)) : 0;
    return VListSyncThumb(w, r, count, [](const DVListRecord *v) {
        return v->topIndex > 0 ? static_cast<DWORD>(v->topIndex) : 0;
    });
}

// ---------------------------------------------------------------- moves
LONG ClampTop(const DVListRecord *r, LONG top)
{
    long long t = top;
    if ((r->endFlags & kAtBottom) && t > static_cast<long long>(Count(r)) - r->visibleCount)
        t = static_cast<long long>(Count(r)) - r->visibleCount;
    if ((r->endFlags & kAtTop) && t < 0)
        t = 0;
    return Wrap(t);
}

// The rounds of a move or a reload: place and refill around `newTop` until
// the host's reports of its ends settle. Returns false when a load ran off
// the data (pastTop or pastBottom left set).
bool SettleTop(HWND w, DVListRecord *&r, LONG newTop, LONG &oldTop, Settle how)
{
    bool wasUnknown = r->totalItems == -1;
    for (int round = 0; round < kMoveRounds; ++round) {
        r->topIndex = newTop;
        ClearLoadFlags(r);
        if (!PlaceCache(w, r)) {
            r = nullptr;
            return true;
        }
        Refill(w, r);
        if (!(r = Rec(w)))
            return true;
        if (r->pastTop || r->pastBottom) {
            if (how == kSettleAtEnd) {
                r->pastTop = r->pastBottom = false;
            } else {
                // A move keeps the end it moves towards; a plain reload
                // stops at either.
                if (how == kSettleUp)
                    r->pastBottom = false;
                else if (how == kSettleDown)
                    r->pastTop = false;
                if (r->pastTop || r->pastBottom)
                    return false;
            }
        }
        if (r->topFound || r->bottomFound) {
            oldTop = Wrap(static_cast<long long>(oldTop) + r->indexShift);
            r->indexShift = 0;
            newTop = ClampTop(r, r->topIndex);
            if (newTop != r->topIndex)
                continue;
            r->topFound = r->bottomFound = false;
        }
        if (!wasUnknown)
            break;
        if (static_cast<DWORD>(r->visibleCount + newTop) <= static_cast<DWORD>(r->totalItems))
            break;
        newTop = Wrap(static_cast<long long>(r->totalItems) - r->visibleCount);
        if (newTop == r->topIndex)
            break;
    }
    return true;
}

// Moves the view to `top`, gliding by `step` pixels.
void Move(HWND w, DVListRecord *r, LONG top, int step)
{
    LONG oldTop = r->topIndex;
    if (CanPaint(r))
        UpdateWindow(w);
    if (!(r = Rec(w)))
        return;
    top = ClampTop(r, top);
    bool up = top < oldTop;
    ++r->moving;
    r->addedOnView = false;
    bool settled = SettleTop(w, r, top, oldTop, up ? kSettleUp : kSettleDown);
    if (!r)
        return;
    --r->moving;
    if (!settled) {
        LONG end = r->pastTop ? kSentinelTop : kSentinelBottom;
        r->pastTop = r->pastBottom = false;
        Reload(w, r, end);
        return;
    }
    long long distance = static_cast<long long>(r->topIndex) - oldTop;
    long long d = distance < 0 ? -distance : distance;
    if (distance == 0 && r->addedOnView) {
        if (!RepaintAll(w, r))
            return;
    } else if (distance != 0) {
        if (r->memoryDC && CanPaint(r) && d < r->visibleCount) {
            RECT client;
            GetClientRect(w, &client);
            RECT rows = {0, 0, client.right, static_cast<int>(r->visibleCount) * r->itemHeight};
            int pixels = static_cast<int>(d) * r->itemHeight;
            ScrollDC(r->memoryDC, 0, distance > 0 ? -pixels : pixels, &rows, &rows, nullptr, nullptr);
            RECT strip = rows;
            if (distance > 0)
                strip.top = rows.bottom - pixels;
            else
                strip.bottom = pixels;
            if (!PaintRows(w, r, r->memoryDC, &strip))
                return;
            VListGlide(w, r->memoryDC, rows, distance > 0 ? pixels : -pixels, step);
        } else if (r->memoryDC) {
            if (!RepaintAll(w, r))
                return;
        } else if (d < r->visibleCount && CanPaint(r)) {
            ScrollWindow(w, 0, static_cast<int>(-distance * r->itemHeight), nullptr, nullptr);
        } else {
            InvalidateRect(w, nullptr, TRUE);
        }
    }
    if (!UpdateThumb(w, r))
        return;
}

// Rebuilds the whole window around `top`, which may name an end.
void Reload(HWND w, DVListRecord *r, LONG top)
{
    if (!Flush(w, r) || !DropScratch(w, r))
        return;
    bool atEnd = false;
    if (top == kSentinelTop) {
        DVListBox_SetAbsoluteTop(w, 0);
        r->endFlags |= kFromTop;
        top = 0;
        atEnd = true;
    } else if (top == kSentinelBottom) {
        LONG count = Count(r);
        DVListBox_SetAbsoluteBottom(w, count - 1 > 0 ? count - 1 : 0);
        r->endFlags |= kFromBottom;
        top = Wrap(static_cast<long long>(Count(r)) - r->visibleCount);
        atEnd = true;
    }
    if (r->totalItems != -1 && r->totalItems > static_cast<long long>(r->visibleCount) &&
        top > static_cast<long long>(r->totalItems) - r->visibleCount)
        top = Wrap(static_cast<long long>(r->totalItems) - r->visibleCount);
    LONG oldTop = r->topIndex;
    ++r->moving;
    bool settled = SettleTop(w, r, top, oldTop, atEnd ? kSettleAtEnd : kSettleReload);
    if (!r)
        return;
    --r->moving;
    r->endFlags &= ~(kFromTop | kFromBottom);
    if (!settled) {
        LONG end = r->pastTop ? kSentinelTop : kSentinelBottom;
        r->pastTop = r->pastBottom = false;
        Reload(w, r, end);
        return;
    }
    if (!RepaintAll(w, r))
        return;
    if (!UpdateThumb(w, r))
        return;
}

void SetTop(HWND w, DVListRecord *r, LONG index, bool reload, int step)
{
    if (index == kNoIndex)
        index = r->topIndex;
    if (reload)
        Reload(w, r, index);
    else
        Move(w, r, index, step);
}

// Brings the row of `index` on screen.
void ShowIndex(HWND w, DVListRecord *r, LONG index, bool reload, int step)
{
    DWORD row;
    if (RowOf(r, index, &row)) {  // on screen: no move, and no reload either
        if (!RepaintRow(w, r, index))
            return;
        return;
    }
    LONG top = index;
    if (index >= r->topIndex && r->visibleCount)
        top = Wrap(static_cast<long long>(index) - r->visibleCount + 1);
    SetTop(w, r, top, reload, step);
}

// ---------------------------------------------------------------- row fit
bool FitRows(HWND w, DVListRecord *r)
{
    if (r->inResize)
        return true;
    r->inResize = true;
    RECT client;
    GetClientRect(w, &client);
    int height = client.bottom > r->requestedHeight ? client.bottom : r->requestedHeight;
    VListRowMetrics m = VListMeasureRows(w, r->font, HasStyle(w, VLS_OWNERDRAW), r->callback,
                                         r->callbackData, height);
    if (!GadgetAlive(w, r))  // VLN_MEASURE went to the host
        return false;
    r->itemHeight = m.itemHeight;
    r->charWidth = m.charWidth;
    r->visibleCount = m.visibleCount;
    if (r->cacheEntries && r->cacheSize < r->visibleCount) {
        HLOCAL grown = LocalReAlloc(r->cacheEntries, r->visibleCount * sizeof(DvEntry),
                                    LMEM_MOVEABLE | LMEM_ZEROINIT);
        if (grown) {
            r->cacheEntries = static_cast<DvEntry *>(grown);
            r->cacheSize = r->visibleCount;
        } else {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory);
            r->visibleCount = r->cacheSize;
        }
    }
    if (r->loadBatch < r->visibleCount)
        r->loadBatch = r->visibleCount;
    VListFitWindow(w, static_cast<int>(r->visibleCount) * m.itemHeight);
    if (!GadgetAlive(w, r))
        return false;
    r->inResize = false;
    return true;
}

}  // namespace dvl
