// "QzVListBox": a list box that holds only a sliding window of its items.
// The host's callback loads what the view needs and is told what leaves the
// window; items are addressed by a 32-bit index from 0.
#include "gadget_frame.h"
#include "vlist_shared.h"
#include "qziso32.h"
#include <string.h>

namespace {

const DWORD kUnknown = 0xFFFFFFFFu;
const DWORD kMaxCache = 4096;
const UINT_PTR kAutoScrollTimer = 29;
const WORD kCodeSetFocus = 0x0B, kCodeKillFocus = 0x0C, kCodeSelChange = 0x11,
           kCodeMouseUp = 0x12;

struct CacheEntry {
    DWORD valid;
    DWORD index;
    char *text;  // owned local copy, or the caller's text in the scratch entry
    LPARAM itemData;
};

struct VListRecord {
    CacheEntry *cacheEntries;
    HFONT font;
    DWORD cacheFirst;
    DWORD cacheSize;
    int itemHeight;
    DWORD caretIndex;
    VListSelection selection;
    DWORD currentSelection;
    DWORD totalItems;
    bool mouseCaptured;
    HDC memoryDC;
    HBITMAP savedBitmap;
    DWORD highWater;
    VLISTBOXPROC callback;
    LPARAM callbackData;
    DWORD topIndex;
    DWORD visibleCount;
    CacheEntry *scratchEntry;
    bool inScrollRange;
    DWORD loadBatch;
    bool autoScrollRunning;
    DWORD anchorIndex;
    bool inResize;
    bool inTextSync;
    bool focused;
    int clientWidth;
};

VListRecord *Rec(HWND w) { return w ? GadgetRecord<VListRecord>(w) : nullptr; }
bool HasStyle(HWND w, DWORD mask) { return (GetWindowLongA(w, GWL_STYLE) & mask) == mask; }
bool Extended(HWND w) { return HasStyle(w, VLS_EXTENDEDSEL); }
bool Multiple(HWND w) { return HasStyle(w, VLS_MULTIPLESEL); }
bool Single(HWND w) { return !Extended(w) && !Multiple(w); }
DWORD Count(const VListRecord *r) { return r->totalItems != kUnknown ? r->totalItems : r->highWater; }

void Notify(HWND w, VListRecord *r, UINT code, void *request)
{
    if (r->callback)
        r->callback(w, code, request, r->callbackData);
}

void ReportError(HWND w)
{
    VListRecord *r = Rec(w);
    if (r)
        Notify(w, r, VLN_ERROR, nullptr);
}

bool Valid(const VListRecord *r, DWORD pos)
{
    return r->cacheEntries && pos < r->cacheSize && r->cacheEntries[pos].valid;
}

// The cached entry of `index`, or null.
CacheEntry *Cached(VListRecord *r, DWORD index)
{
    if (index < r->cacheFirst || index - r->cacheFirst >= r->cacheSize || !r->cacheEntries)
        return nullptr;
    CacheEntry *e = &r->cacheEntries[index - r->cacheFirst];
    return e->valid ? e : nullptr;
}

bool IsSelected(HWND w, const VListRecord *r, DWORD index)
{
    if (Single(w))
        return index == r->currentSelection;
    return VListSelContains(r->selection, index);
}

void ReleaseEntry(HWND w, VListRecord *r, DWORD pos)
{
    CacheEntry e = r->cacheEntries[pos];
    if (!e.valid)
        return;
    memset(&r->cacheEntries[pos], 0, sizeof(CacheEntry));
    VLRELEASEREQUEST request = {r->cacheFirst + pos, e.itemData, e.text};
    Notify(w, r, VLN_RELEASE, &request);
    if (e.text)
        LocalFree(e.text);
}

// Releases every entry, frees the cache and the selection; a scratch entry
// left here belongs to the lookup that is running and is freed by it.
void DropCache(HWND w, VListRecord *r)
{
    if (r->cacheEntries) {
        for (DWORD p = 0; p < r->cacheSize && r->cacheEntries; ++p)
            ReleaseEntry(w, r, p);
        if (r->cacheEntries)
            LocalFree(r->cacheEntries);
        r->cacheEntries = nullptr;
    }
    VListSelClear(r->selection);
    r->scratchEntry = nullptr;
}

// The first index of a window of `size` that centres the view.
DWORD WindowStart(const VListRecord *r, DWORD size)
{
    DWORD h = r->visibleCount / 2, g = size / 2;
    unsigned long long first =
        static_cast<unsigned long long>(r->topIndex) + h < g ? 0 : r->topIndex - g + h;
    if (r->totalItems != kUnknown && static_cast<unsigned long long>(size) + first > r->totalItems)
        first = r->totalItems > size ? r->totalItems - size : 0;
    return static_cast<DWORD>(first);
}

void PlaceCache(HWND w, VListRecord *r)
{
    unsigned long long first = r->cacheFirst, size = r->cacheSize;
    if (first <= r->topIndex && first + size >= static_cast<unsigned long long>(r->topIndex) +
                                                       r->visibleCount)
        return;
    DWORD newFirst = WindowStart(r, r->cacheSize);
    if (r->cacheEntries) {
        for (DWORD p = 0; p < r->cacheSize && r->cacheEntries; ++p) {
            unsigned long long index = first + p;
            if (index < newFirst || index >= static_cast<unsigned long long>(newFirst) + size)
                ReleaseEntry(w, r, p);
        }
    }
    if (r->cacheEntries)
        VListShiftEntries(r->cacheEntries, r->cacheSize, sizeof(CacheEntry),
                          static_cast<long long>(newFirst) - static_cast<long long>(first));
    r->cacheFirst = newFirst;
}

void Load(HWND w, VListRecord *r, DWORD first, DWORD last)
{
    VLLOADREQUEST request = {first, last};
    Notify(w, r, VLN_LOAD, &request);
}

void Refill(HWND w, VListRecord *r)
{
    if (!r->callback || r->totalItems == 0 || r->cacheSize == 0)
        return;
    bool complete = true;
    for (DWORD row = 0; row < r->visibleCount && complete; ++row) {
        DWORD index = r->topIndex + row;
        if (r->totalItems != kUnknown && index >= r->totalItems)
            break;
        complete = Cached(r, index) != nullptr;
    }
    if (complete)
        return;
    DWORD start = WindowStart(r, r->loadBatch);
    DWORD end = r->cacheSize;  // positions in the window
    if (r->totalItems != kUnknown && r->totalItems - r->cacheFirst < end)
        end = r->totalItems - r->cacheFirst;
    DWORD pos = start > r->cacheFirst ? start - r->cacheFirst : 0;
    while (pos < end && Valid(r, pos))
        ++pos;
    DWORD limit = pos + r->loadBatch < end ? pos + r->loadBatch : end;
    DWORD runStart = kUnknown;
    for (; pos < limit; ++pos) {
        if (!Valid(r, pos)) {
            if (runStart == kUnknown)
                runStart = pos;
        } else if (runStart != kUnknown) {
            Load(w, r, r->cacheFirst + runStart, r->cacheFirst + pos - 1);
            runStart = kUnknown;
        }
    }
    // A trailing run of one waits for the next refill.
    if (runStart != kUnknown && limit - runStart >= 2)
        Load(w, r, r->cacheFirst + runStart, r->cacheFirst + limit - 1);
}

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

void PaintRow(HWND w, VListRecord *r, HDC dc, DWORD row)
{
    DWORD index = r->topIndex + row;
    RECT rect = RowRect(r, row);
    PatBlt(dc, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, PATCOPY);
    if (r->totalItems != kUnknown && index >= r->totalItems)
        return;
    if (index < r->cacheFirst || index - r->cacheFirst >= r->cacheSize) {
        OSErrorSetErrorInfo(RV_Failure);
        return;
    }
    CacheEntry *e = Cached(r, index);
    bool selected = IsSelected(w, r, index);
    bool caret = r->focused && index == r->caretIndex;
    if (HasStyle(w, VLS_OWNERDRAW)) {
        VLDRAWREQUEST request = {index, (selected ? VLDS_SELECTED : 0u) | (caret ? VLDS_FOCUS : 0u),
                                 dc, rect, e ? e->itemData : 0, e ? e->text : nullptr};
        Notify(w, r, VLN_DRAW, &request);
        return;
    }
    if (e && e->text) {
        SetBkColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
        SetTextColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
        ExtTextOutA(dc, rect.left + 1, rect.top, ETO_CLIPPED | ETO_OPAQUE, &rect, e->text,
                    lstrlenA(e->text), nullptr);
    }
    if (caret)
        DrawFocusRect(dc, &rect);
}

// Paints `first` to `last` rows (or all) into `dc` with the font and brush.
void PaintRows(HWND w, VListRecord *r, HDC dc, DWORD first, DWORD last, bool all)
{
    if (!r->callback || r->itemHeight <= 0)
        return;
    VListRowPaint paint = VListBeginRowPaint(dc, r->font);
    if (all) {
        RECT client;
        GetClientRect(w, &client);
        PatBlt(dc, 0, 0, client.right, client.bottom, PATCOPY);
        first = 0;
        last = r->visibleCount ? r->visibleCount - 1 : 0;
    }
    for (DWORD row = first; row <= last && row < r->visibleCount; ++row)
        PaintRow(w, r, dc, row);
    VListEndRowPaint(paint);
}

void RepaintAll(HWND w, VListRecord *r)
{
    if (r->memoryDC)
        PaintRows(w, r, r->memoryDC, 0, 0, true);
    InvalidateRect(w, nullptr, r->memoryDC ? FALSE : TRUE);
}

// Repaints the row of `index` if it is on view.
void RepaintItem(HWND w, VListRecord *r, DWORD index)
{
    if (index < r->topIndex || index - r->topIndex >= r->visibleCount)
        return;
    DWORD row = index - r->topIndex;
    RECT rect = RowRect(r, row);
    if (r->memoryDC)
        PaintRows(w, r, r->memoryDC, row, row, false);
    InvalidateRect(w, &rect, r->memoryDC ? FALSE : TRUE);
}

// Moves a mark (the current selection or the caret) to `index`, repainting
// the row it leaves and then the row it reaches.
void MoveMark(HWND w, VListRecord *r, DWORD &mark, DWORD index)
{
    DWORD old = mark;
    mark = index;
    RepaintItem(w, r, old);
    RepaintItem(w, r, index);
}

void UpdateThumb(HWND w, VListRecord *r)
{
    if (r->inScrollRange)
        return;
    r->inScrollRange = true;
    DWORD count = Count(r);
    int range = VListThumbRange(count, r->visibleCount);
    int low, high;
    GetScrollRange(w, SB_VERT, &low, &high);
    if (low != 0 || high != range)
        SetScrollRange(w, SB_VERT, 0, range, TRUE);
    r = Rec(w);
    if (r) {
        int pos = VListThumbFromIndex(r->topIndex, count, r->visibleCount);
        if (GetScrollPos(w, SB_VERT) != pos)
            SetScrollPos(w, SB_VERT, pos, TRUE);
        r->inScrollRange = false;
    }
}

DWORD ClampTop(const VListRecord *r, DWORD top)
{
    if (r->totalItems != kUnknown &&
        static_cast<unsigned long long>(top) + r->visibleCount > r->totalItems)
        return r->totalItems < r->visibleCount ? 0 : r->totalItems - r->visibleCount;
    return top;
}

// Moves the view to `top`, gliding by `step` pixels.
void ScrollTo(HWND w, VListRecord *r, DWORD top, int step)
{
    UpdateWindow(w);
    bool wasUnknown = r->totalItems == kUnknown;
    top = ClampTop(r, top);
    DWORD old = r->topIndex;
    r->topIndex = top;
    PlaceCache(w, r);
    Refill(w, r);
    if (wasUnknown && r->totalItems != kUnknown) {
        r->topIndex = ClampTop(r, r->topIndex);
        PlaceCache(w, r);
        Refill(w, r);
    }
    top = r->topIndex;
    if (!r->memoryDC) {
        InvalidateRect(w, nullptr, TRUE);
    } else if (top != old) {
        DWORD d = top > old ? top - old : old - top;
        if (d >= r->visibleCount) {
            RepaintAll(w, r);
        } else {
            RECT rows = RowsRect(r);
            int pixels = static_cast<int>(d) * r->itemHeight;
            int dy = top > old ? -pixels : pixels;
            ScrollDC(r->memoryDC, 0, dy, &rows, &rows, nullptr, nullptr);
            if (top > old)
                PaintRows(w, r, r->memoryDC, r->visibleCount - d, r->visibleCount - 1, false);
            else
                PaintRows(w, r, r->memoryDC, 0, d - 1, false);
            VListGlide(w, r->memoryDC, rows, -dy, step);
        }
    }
    UpdateThumb(w, r);
}

// Sends VLN_SELCHANGE (with VLS_NOTIFY) and keeps the window text in step.
void SyncText(HWND w, VListRecord *r)
{
    if (!Single(w) || !HasStyle(w, VLS_NOTIFY))
        return;
    char buffer[256] = "";
    if (r->currentSelection != kUnknown) {
        VLGETTEXTREQUEST request = {buffer, r->currentSelection, sizeof buffer};
        Notify(w, r, VLN_GETTEXT, &request);
        buffer[sizeof buffer - 1] = 0;
    }
    r->inTextSync = true;
    SetWindowTextA(w, buffer);
    if ((r = Rec(w)) != nullptr)
        r->inTextSync = false;
}

void SelChanged(HWND w, VListRecord *r)
{
    if (HasStyle(w, VLS_NOTIFY)) {
        DWORD word = 0;
        Notify(w, r, VLN_SELCHANGE, &word);
    }
    if (!r->inTextSync)
        SyncText(w, r);
}

// ---------------------------------------------------------------- selection
void Toggle(HWND w, VListRecord *r, DWORD index)
{
    bool ok = VListSelContains(r->selection, index) ? VListSelRemove(r->selection, index)
                                                     : VListSelAdd(r->selection, index);
    if (!ok)
        ReportError(w);
    RepaintItem(w, r, index);
}

// Shift with Home, End or a click: the selection becomes the full run.
void SelectRun(HWND w, VListRecord *r)
{
    if (r->totalItems == kUnknown && r->highWater) {
        if (r->caretIndex > r->highWater - 1)
            r->caretIndex = r->highWater - 1;
        if (r->anchorIndex > r->highWater)
            r->anchorIndex = r->highWater;
    }
    DWORD low = r->anchorIndex < r->caretIndex ? r->anchorIndex : r->caretIndex;
    DWORD high = r->anchorIndex < r->caretIndex ? r->caretIndex : r->anchorIndex;
    if (!VListSelSetRun(r->selection, low, high))
        ReportError(w);
    RepaintAll(w, r);
}

// The caret moved from p to q with the anchor fixed: the selection stays the
// run between anchor and caret.
void RangeWalk(HWND w, VListRecord *r, DWORD p, DWORD q)
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
                if (!ok)
                    ReportError(w);
            }
        }
        RepaintItem(w, r, i);
        if (i == high)
            break;
    }
}

// ---------------------------------------------------------------- row fit
void FitRows(HWND w, VListRecord *r)
{
    if (r->inResize)
        return;
    r->inResize = true;
    RECT client;
    GetClientRect(w, &client);
    VListRowMetrics m = VListMeasureRows(w, r->font, HasStyle(w, VLS_OWNERDRAW), r->callback,
                                         r->callbackData, client.bottom);
    r->itemHeight = m.itemHeight;
    r->visibleCount = m.visibleCount;
    if (r->cacheSize && r->cacheSize < r->visibleCount)
        r->cacheSize = r->visibleCount;  // the array grows at the next add
    if (r->loadBatch < r->visibleCount)
        r->loadBatch = r->visibleCount;
    // The height fits whole rows; the width stays as the window has it.
    VListFitWindow(w, static_cast<int>(r->visibleCount) * m.itemHeight);
    if ((r = Rec(w)) != nullptr)
        r->inResize = false;
}

void FreeMemoryDC(VListRecord *r)
{
    VListFreeMemoryDC(r->memoryDC, r->savedBitmap);
}

void RebuildMemoryDC(HWND w, VListRecord *r)
{
    FreeMemoryDC(r);
    RECT client;
    GetClientRect(w, &client);
    r->clientWidth = client.right;
    if (client.right <= 0 || client.bottom <= 0)
        return;
    r->memoryDC = VListCreateMemoryDC(w, &r->savedBitmap);
    if (!r->memoryDC)
        ReportError(w);
}

// ---------------------------------------------------------------- handlers
LRESULT OnCreate(HWND w)
{
    VListRecord *r = static_cast<VListRecord *>(GadgetCreateRecord(w, sizeof(VListRecord)));
    if (!r)
        return GadgetCreateFailed;
    r->currentSelection = kUnknown;
    r->itemHeight = 1;
    return 0;
}

void OnDestroy(HWND w, VListRecord *r)
{
    DropCache(w, r);
    Notify(w, r, VLN_DESTROY, nullptr);
    FreeMemoryDC(r);
    if (r->autoScrollRunning)
        OSKillTimer(w, kAutoScrollTimer);
    GadgetFreeRecord(w, true);
}

void OnSize(HWND w, VListRecord *r)
{
    FitRows(w, r);
    RebuildMemoryDC(w, r);
    PlaceCache(w, r);
    Refill(w, r);
    RepaintAll(w, r);
    UpdateThumb(w, r);
}

void OnPaint(HWND w, VListRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(w, &ps);
    if (r->memoryDC)
        VListCopyArea(dc, ps.rcPaint, r->memoryDC);
    else
        PaintRows(w, r, dc, 0, 0, true);
    EndPaint(w, &ps);
}

void OnFocus(HWND w, VListRecord *r, bool gained, HWND other)
{
    r->focused = gained;
    if (r->callback) {
        GadgetNotifyParent(w, gained ? kCodeSetFocus : kCodeKillFocus);
        if (!(r = Rec(w)))
            return;
        VLFOCUSREQUEST request = {other};
        Notify(w, r, gained ? VLN_SETFOCUS : VLN_KILLFOCUS, &request);
    }
    RepaintItem(w, r, r->caretIndex);
}

// Moves the caret to `index` and scrolls it into view.
void FollowCaret(HWND w, VListRecord *r, int step)
{
    DWORD caret = r->caretIndex;
    if (caret < r->topIndex)
        ScrollTo(w, r, caret, step);
    else if (r->visibleCount && caret - r->topIndex >= r->visibleCount)
        ScrollTo(w, r, caret - r->visibleCount + 1, step);
    else
        RepaintItem(w, r, caret);
}

void OnKeyDown(HWND w, VListRecord *r, WPARAM key)
{
    if (key < VK_SPACE || key > VK_DOWN || key == VK_LEFT || key == VK_RIGHT || !r->callback)
        return;
    DWORD old = r->caretIndex, oldSel = r->currentSelection, caret = old;
    DWORD count = Count(r);
    DWORD lastItem = r->totalItems != kUnknown ? r->totalItems - 1 : kUnknown;
    int step = r->itemHeight;
    switch (key) {
    case VK_SPACE:
        if (Single(w))
            r->currentSelection = r->currentSelection == caret ? kUnknown : caret;
        else if (Multiple(w))
            Toggle(w, r, caret);
        SelChanged(w, r);
        GadgetNotifyParent(w, kCodeSelChange);
        if ((r = Rec(w)) != nullptr)
            RepaintItem(w, r, r->caretIndex);
        return;
    case VK_PRIOR:
        caret = r->visibleCount && caret > r->visibleCount - 1 ? caret - r->visibleCount + 1 : 0;
        break;
    case VK_NEXT:
        caret = caret + (r->visibleCount ? r->visibleCount - 1 : 0);
        if (caret > lastItem || caret < old)
            caret = lastItem;
        break;
    case VK_END: caret = count - 1; break;
    case VK_HOME: caret = 0; break;
    case VK_UP:
        caret = caret ? caret - 1 : 0;
        step = 1;
        break;
    case VK_DOWN:
        if (!Single(w) && !Extended(w))
            caret = caret < lastItem ? caret + 1 : lastItem;
        else if (r->currentSelection != kUnknown)
            caret = caret < lastItem ? caret + 1 : lastItem;
        step = 1;
        break;
    }
    r->caretIndex = caret;
    if (!Multiple(w))
        r->currentSelection = caret;
    SelChanged(w, r);
    GadgetNotifyParent(w, kCodeSelChange);
    if (!(r = Rec(w)))
        return;
    if (Extended(w)) {
        if (GetKeyState(VK_SHIFT) < 0) {
            if (key == VK_HOME || key == VK_END)
                SelectRun(w, r);
            else
                RangeWalk(w, r, old, r->caretIndex);
        } else {
            VListSelClear(r->selection);
            r->anchorIndex = r->caretIndex;
            if (!VListSelAdd(r->selection, r->caretIndex))
                ReportError(w);
            RepaintAll(w, r);
        }
        SelChanged(w, r);
        GadgetNotifyParent(w, kCodeSelChange);
        if (!(r = Rec(w)))
            return;
    }
    RepaintItem(w, r, old);
    if (Single(w) && oldSel != kUnknown)
        RepaintItem(w, r, oldSel);
    FollowCaret(w, r, step);
}

DWORD IndexAt(const VListRecord *r, int y)
{
    return static_cast<DWORD>(static_cast<long long>(r->topIndex) + y / r->itemHeight);
}

void OnLButtonDown(HWND w, VListRecord *r, WPARAM keys, int y)
{
    if (!r->callback)
        return;
    DWORD index = IndexAt(r, y);
    if (r->totalItems != kUnknown && index > r->totalItems - 1)
        return;
    SetCapture(w);
    r->mouseCaptured = true;
    DWORD oldCaret = r->caretIndex, oldSel = r->currentSelection;
    r->caretIndex = index;
    if (Single(w)) {
        r->currentSelection = index;
        RepaintItem(w, r, oldSel);
    } else if (Multiple(w)) {
        Toggle(w, r, index);
    } else {
        r->currentSelection = index;
        if (keys & MK_CONTROL) {
            r->anchorIndex = index;
            Toggle(w, r, index);
            ReleaseCapture();
            r->mouseCaptured = false;
        } else if (keys & MK_SHIFT) {
            SelectRun(w, r);
        } else {
            r->anchorIndex = index;
            VListSelClear(r->selection);
            if (!VListSelAdd(r->selection, index))
                ReportError(w);
            RepaintAll(w, r);
        }
    }
    RepaintItem(w, r, oldCaret);
    RepaintItem(w, r, index);
    SetFocus(w);
}

void OnMouseMove(HWND w, VListRecord *r, int y)
{
    if (!r->mouseCaptured || r->itemHeight <= 0)
        return;
    DWORD old = r->caretIndex, caret = old;
    int rowsBottom = static_cast<int>(r->visibleCount) * r->itemHeight;
    DWORD count = Count(r);
    DWORD lastRow = count > r->topIndex ? count - r->topIndex : 0;  // rows holding items
    if (lastRow > r->visibleCount)
        lastRow = r->visibleCount;
    if (y >= 0 && y < rowsBottom && (r->totalItems == kUnknown || (DWORD)(y / r->itemHeight) < lastRow)) {
        caret = IndexAt(r, y);
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, false);
    } else {
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, true);
        if (y < 0) {
            if (r->topIndex == 0)
                return;
            caret = r->topIndex - 1;
            ScrollTo(w, r, r->topIndex - 1, r->itemHeight);
        } else {
            if (r->totalItems != kUnknown && r->topIndex == ClampTop(r, kUnknown))
                return;
            caret = r->topIndex + r->visibleCount;
            ScrollTo(w, r, r->topIndex + 1, r->itemHeight);
        }
    }
    if (!(r = Rec(w)) || caret == old)
        return;
    r->caretIndex = caret;
    if (Single(w)) {
        DWORD oldSel = r->currentSelection;
        r->currentSelection = caret;
        RepaintItem(w, r, oldSel);
    } else if (Extended(w)) {
        r->currentSelection = caret;
        RangeWalk(w, r, old, caret);
    }
    RepaintItem(w, r, old);
    RepaintItem(w, r, caret);
}

void OnLButtonUp(HWND w, VListRecord *r)
{
    if (!r->mouseCaptured)
        return;
    r->mouseCaptured = false;
    ReleaseCapture();
    if (!(r = Rec(w)))
        return;
    SelChanged(w, r);
    GadgetNotifyParent(w, kCodeMouseUp);
    if ((r = Rec(w)) != nullptr)
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, false);
}

void OnSetText(HWND w, VListRecord *r, const char *text)
{
    if (r->inTextSync || !Single(w) || !r->callback)
        return;
    r->inTextSync = true;
    char current[256] = "";
    GetWindowTextA(w, current, sizeof current);
    if (lstrcmpiA(text ? text : "", current) != 0) {
        VLFINDREQUEST request = {text ? text : "", 0};
        Notify(w, r, VLN_FIND, &request);
        if (request.index != kUnknown)
            VListBox_SetCurSel(w, request.index);
    }
    if ((r = Rec(w)) != nullptr)
        r->inTextSync = false;
}

LRESULT CALLBACK VListProc(HWND w, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(w);
    VListRecord *r = Rec(w);
    if (!r)
        return DefWindowProcA(w, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY: OnDestroy(w, r); return 0;
    case WM_SIZE: OnSize(w, r); return 0;
    case WM_SETFOCUS: OnFocus(w, r, true, reinterpret_cast<HWND>(wParam)); return 0;
    case WM_KILLFOCUS: OnFocus(w, r, false, reinterpret_cast<HWND>(wParam)); return 0;
    case WM_SETTEXT:
        OnSetText(w, r, reinterpret_cast<const char *>(lParam));
        break;
    case WM_PAINT: OnPaint(w, r); return 0;
    case WM_SETFONT:
        r->font = reinterpret_cast<HFONT>(wParam);
        OnSize(w, r);
        return 0;
    case WM_GETFONT: return reinterpret_cast<LRESULT>(r->font);
    case WM_GETDLGCODE: return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_KEYDOWN: OnKeyDown(w, r, wParam); return 0;
    case WM_CHAR:
        if (HasStyle(w, VLS_WANTCHARS)) {
            VLCHARREQUEST request = {static_cast<DWORD>(wParam), LOWORD(lParam)};
            Notify(w, r, VLN_CHAR, &request);
        }
        return 0;
    case WM_TIMER:
        if (wParam == kAutoScrollTimer)
            VListReplayMouseMove(w);
        return 0;
    case WM_VSCROLL: {
        DWORD top = r->topIndex, vis = r->visibleCount;
        int step = r->itemHeight;
        switch (LOWORD(wParam)) {
        case SB_LINEUP:
            if (top == 0)
                return 0;
            ScrollTo(w, r, top - 1, 1);
            return 0;
        case SB_LINEDOWN: ScrollTo(w, r, top + 1, 1); return 0;
        case SB_PAGEUP:
            if (top == 0)
                return 0;
            ScrollTo(w, r, top >= vis ? top - vis + 1 : 0, step);
            return 0;
        case SB_PAGEDOWN: ScrollTo(w, r, top + (vis ? vis - 1 : 0), step); return 0;
        case SB_THUMBTRACK:
            if (HasStyle(w, VLS_NOTHUMBTRACK))
                return 0;
            [[fallthrough]];
        case SB_THUMBPOSITION:
            ScrollTo(w, r, VListIndexFromThumb(static_cast<short>(HIWORD(wParam)), Count(r), vis),
                     step);
            return 0;
        case SB_TOP: ScrollTo(w, r, 0, step); return 0;
        case SB_BOTTOM:
            if (r->totalItems == kUnknown)
                return 0;
            ScrollTo(w, r, r->totalItems > vis ? r->totalItems - vis : 0, step);
            return 0;
        }
        return 0;
    }
    case WM_MOUSEMOVE: OnMouseMove(w, r, static_cast<short>(HIWORD(lParam))); return 0;
    case WM_LBUTTONDOWN: OnLButtonDown(w, r, wParam, static_cast<short>(HIWORD(lParam))); return 0;
    case WM_LBUTTONUP: OnLButtonUp(w, r); return 0;
    case WM_LBUTTONDBLCLK:
        if (HasStyle(w, VLS_NOTIFY)) {
            DWORD index = IndexAt(r, static_cast<short>(HIWORD(lParam)));
            Notify(w, r, VLN_DBLCLK, &index);
        }
        return 0;
    }
    return DefWindowProcA(w, message, wParam, lParam);
}

// Fills the entry for `index` (growing the window to reach it), or the
// scratch entry of a running lookup.
BOOL Add(HWND w, DWORD index, const char *text, LPARAM data, bool isString)
{
    VListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    if (r->scratchEntry) {
        CacheEntry *s = r->scratchEntry;
        if (isString) {
            if (s->valid)
                return FALSE;
            s->index = index;
            s->text = const_cast<char *>(text);
        }
        s->itemData = data;
        s->valid = 1;
        return TRUE;
    }
    unsigned long long first = r->cacheFirst, size = r->cacheSize;
    unsigned long long newFirst = index < first ? index : first;
    unsigned long long newEnd = index >= first + size ? index + 1ull : first + size;
    if (!r->cacheEntries || newFirst != first || newEnd != first + size) {
        unsigned long long count = newEnd - newFirst;
        SIZE_T bytes = static_cast<SIZE_T>(count * sizeof(CacheEntry));
        if (count > 0xFFFFFFFFull || bytes / sizeof(CacheEntry) != count) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory);
            return FALSE;
        }
        CacheEntry *grown = static_cast<CacheEntry *>(LocalAlloc(LPTR, bytes));
        if (!grown) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(bytes));
            return FALSE;
        }
        if (r->cacheEntries) {
            memcpy(grown + (first - newFirst), r->cacheEntries, size * sizeof(CacheEntry));
            LocalFree(r->cacheEntries);
        }
        r->cacheEntries = grown;
        r->cacheFirst = static_cast<DWORD>(newFirst);
        r->cacheSize = static_cast<DWORD>(count);
    }
    CacheEntry *e = &r->cacheEntries[index - r->cacheFirst];
    if (isString) {
        if (e->valid)
            return FALSE;
        char *copy = nullptr;
        if (text) {
            copy = static_cast<char *>(LocalAlloc(LMEM_FIXED, lstrlenA(text) + 1));
            if (!copy) {
                OSErrorSetErrorInfo(RV_OutOfLocalMemory);
                return FALSE;
            }
            lstrcpyA(copy, text);
        }
        e->index = index;
        e->text = copy;
    }
    e->itemData = data;
    e->valid = 1;
    if (r->totalItems == kUnknown) {
        if (static_cast<unsigned long long>(index) + 1 > r->highWater)
            r->highWater = index + 1;
        UpdateThumb(w, r);
    }
    return TRUE;
}

// One item, from the cache or through a one-item scratch entry.
bool LookUp(HWND w, DWORD index, CacheEntry *answer)
{
    VListRecord *r = Rec(w);
    if (!r || (r->totalItems != kUnknown && index > r->totalItems))
        return false;
    if (CacheEntry *e = Cached(r, index)) {
        *answer = *e;
        return true;
    }
    CacheEntry *scratch = static_cast<CacheEntry *>(LocalAlloc(LPTR, sizeof(CacheEntry)));
    if (!scratch) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, sizeof(CacheEntry));
        return false;
    }
    r->scratchEntry = scratch;
    Load(w, r, index, index);
    *answer = *scratch;
    LocalFree(scratch);
    if ((r = Rec(w)) != nullptr && r->scratchEntry == scratch)
        r->scratchEntry = nullptr;
    return answer->valid != 0;
}

}  // namespace

LRESULT CALLBACK GadVListWndProc(HWND w, UINT message, WPARAM wParam, LPARAM lParam)
{
    return VListProc(w, message, wParam, lParam);
}

extern "C" BOOL WINAPI VListBox_Initialize(HWND w, DWORD total, DWORD cacheSize, DWORD loadBatch,
                                           VLISTBOXPROC callback, LPARAM data)
{
    VListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    DropCache(w, r);
    r->currentSelection = kUnknown;
    if (cacheSize == kUnknown)
        cacheSize = kMaxCache;
    if (cacheSize > kMaxCache) {
        r->topIndex = 0;
        return FALSE;
    }
    r->cacheSize = cacheSize > r->visibleCount ? cacheSize : r->visibleCount;
    r->loadBatch = loadBatch < r->cacheSize ? loadBatch : r->cacheSize;
    r->callback = callback;
    r->callbackData = data;
    r->totalItems = total;
    r->highWater = 0;
    r->cacheFirst = 0;
    r->topIndex = 0;
    VLINITREQUEST request = {total < r->visibleCount ? total : r->visibleCount, r->loadBatch};
    Notify(w, r, VLN_INIT, &request);
    if (!(r = Rec(w)))
        return FALSE;
    UpdateThumb(w, r);
    RepaintAll(w, r);
    return TRUE;
}

extern "C" BOOL WINAPI VListBox_AddItemData(HWND w, DWORD index, LPARAM itemData)
{
    return Add(w, index, nullptr, itemData, false);
}

extern "C" BOOL WINAPI VListBox_AddString(HWND w, DWORD index, LPCSTR text, LPARAM itemData)
{
    if (!Rec(w) || HasStyle(w, VLS_OWNERDRAW | VLS_STRINGS))
        return FALSE;
    return Add(w, index, text, itemData, true);
}

extern "C" BOOL WINAPI VListBox_SetNumItems(HWND w, DWORD total)
{
    VListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    if (total != kUnknown) {
        if (total <= r->visibleCount) {
            r->topIndex = 0;
            r->cacheSize = r->loadBatch = total;
        } else if (r->topIndex > total - r->visibleCount) {
            r->topIndex = total - r->visibleCount;
        }
    }
    r->totalItems = total;
    PlaceCache(w, r);
    Refill(w, r);
    if ((r = Rec(w)) != nullptr) {
        UpdateThumb(w, r);
        RepaintAll(w, r);
    }
    return TRUE;
}

extern "C" DWORD WINAPI VListBox_GetNumItems(HWND w)
{
    VListRecord *r = Rec(w);
    return r ? r->totalItems : kUnknown;
}

extern "C" DWORD WINAPI VListBox_GetCurSel(HWND w)
{
    VListRecord *r = Rec(w);
    if (!r || Multiple(w))
        return kUnknown;
    return r->currentSelection;
}

extern "C" BOOL WINAPI VListBox_SetCurSel(HWND w, DWORD index)
{
    VListRecord *r = Rec(w);
    if (!r || Multiple(w))
        return FALSE;
    MoveMark(w, r, r->currentSelection, index);
    VListBox_SetTopIndex(w, index);
    if (!(r = Rec(w)))
        return FALSE;
    r->caretIndex = index;
    UpdateWindow(w);
    if (!r->inTextSync) {
        SyncText(w, r);
        GadgetNotifyParent(w, kCodeSelChange);
    }
    return TRUE;
}

extern "C" DWORD WINAPI VListBox_GetCaretIndex(HWND w)
{
    VListRecord *r = Rec(w);
    return r ? r->caretIndex : kUnknown;
}

extern "C" BOOL WINAPI VListBox_SetCaretIndex(HWND w, DWORD index)
{
    VListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    MoveMark(w, r, r->caretIndex, index);
    return TRUE;
}

extern "C" BOOL WINAPI VListBox_SetSel(HWND w, BOOL /*flag*/, DWORD index)
{
    VListRecord *r = Rec(w);
    if (!r || Single(w))
        return FALSE;
    if (!VListSelAdd(r->selection, index))
        return FALSE;
    RepaintItem(w, r, index);
    return TRUE;
}

extern "C" BOOL WINAPI VListBox_GetSel(HWND w, DWORD index)
{
    VListRecord *r = Rec(w);
    return r && IsSelected(w, r, index);
}

extern "C" DWORD WINAPI VListBox_GetSelCount(HWND w)
{
    VListRecord *r = Rec(w);
    return r ? r->selection.count : 0;
}

extern "C" BOOL WINAPI VListBox_GetSelItems(HWND w, DWORD *buffer)
{
    VListRecord *r = Rec(w);
    if (!r || (!buffer && r->selection.count)) {
        OSErrorSetErrorInfo(RV_Failure);
        return FALSE;
    }
    VListSelCopy(r->selection, buffer);
    return TRUE;
}

extern "C" BOOL WINAPI VListBox_SetSelItems(HWND w, DWORD count, const DWORD *items)
{
    VListRecord *r = Rec(w);
    if (!r || (count && !items))
        return FALSE;
    VListSelClear(r->selection);
    for (DWORD i = 0; i < count; ++i)
        if (!VListSelAdd(r->selection, items[i]))
            return FALSE;
    RepaintAll(w, r);
    return TRUE;
}

extern "C" DWORD WINAPI VListBox_GetTopIndex(HWND w)
{
    VListRecord *r = Rec(w);
    return r ? r->topIndex : 0;
}

extern "C" BOOL WINAPI VListBox_SetTopIndex(HWND w, DWORD index)
{
    VListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    ScrollTo(w, r, index, 1);
    return TRUE;
}

extern "C" LPARAM WINAPI VListBox_GetItemData(HWND w, DWORD index)
{
    CacheEntry e;
    return LookUp(w, index, &e) ? e.itemData : -1;
}

extern "C" BOOL WINAPI VListBox_IsItemCached(HWND w, DWORD index)
{
    VListRecord *r = Rec(w);
    return r && Cached(r, index);
}

extern "C" BOOL WINAPI VListBox_GetText(HWND w, DWORD index, LPSTR buffer)
{
    CacheEntry e;
    if (LookUp(w, index, &e) && e.text && buffer)
        lstrcpyA(buffer, e.text);
    return TRUE;
}

extern "C" DWORD WINAPI VListBox_GetTextLen(HWND w, DWORD index)
{
    CacheEntry e;
    return LookUp(w, index, &e) && e.text ? lstrlenA(e.text) : 0;
}
