// "QzDVListBox": a virtual list over data whose length and ends need not be
// known. Items are known by references, blocks of a fixed size that the host
// gives; an index is only a place on a number line that the list shifts when
// the host reports an end of its data during a load. Caret, selection and
// anchor are held as references with an index beside them, and the indices
// are found again after every load.
#include "gadget_frame.h"
#include "vlist_shared.h"
#include "qziso32.h"
#include <string.h>

namespace {

const LONG kNoIndex = DVL_NOINDEX;
const LONG kSentinelTop = DVL_SENTINELTOP;
const LONG kSentinelBottom = DVL_SENTINELBOTTOM;
const DWORD kMaxCache = 4096;
const UINT_PTR kAutoScrollTimer = 29;
const UINT_PTR kTypeAheadTimer = 28;
const UINT kTypeAheadDelay = 500;
const int kLookupRounds = 6;
const int kMoveRounds = 5;
const DWORD kTypeAheadMax = 20;

// endFlags
const WORD kAtTop = 0x01;       // the cache reaches the real first item
const WORD kAtBottom = 0x02;    // the cache reaches the real last item
const WORD kFromTop = 0x10;     // the load in hand starts from the real top
const WORD kFromBottom = 0x20;  // ... from the real bottom

// Entry flags
const DWORD kValid = 0x01;
const DWORD kSelected = 0x02;

struct DvEntry {
    DWORD flags;
    BYTE *ref;    // owned copy of the reference, refSize bytes
    char *text;   // owned copy, or null
    LPARAM itemData;
};

struct DVListRecord {
    bool multiSelect;
    DvEntry *cacheEntries;
    HFONT font;
    LONG cacheFirst;
    DWORD cacheSize;
    int itemHeight;
    int charWidth;
    int requestedHeight;
    bool caretRefValid;
    LONG caretIndex;
    BYTE *caretRef;
    DWORD selectedCount;
    HGLOBAL selectedRefs;
    bool currentRefValid;
    BYTE *currentRef;
    LONG currentIndex;
    LONG totalItems;
    bool mouseCaptured;
    HDC memoryDC;
    HBITMAP savedBitmap;
    LONG highWater;
    VLISTBOXPROC callback;
    LPARAM callbackData;
    LONG topIndex;
    DWORD visibleCount;
    DvEntry *scratchEntry;
    LONG scratchIndex;
    bool inScrollRange;
    DWORD loadBatch;
    bool autoScrollRunning;
    LONG anchorIndex;
    bool anchorRefValid;
    BYTE *anchorRef;
    bool inResize;
    DWORD refSize;
    LONG indexShift;
    WORD endFlags;
    bool pastTop;
    bool pastBottom;
    bool topFound;
    bool bottomFound;
    bool redrawEnabled;
    bool updateEnabled;
    bool typeAheadRunning;
    char typeAhead[kTypeAheadMax + 1];
    WORD flushCount;
    WORD loadCount;
    bool spaceKeyDown;
    bool focused;
    int moving;          // moves in hand: adds then leave painting to the move
    bool addedOnView;    // an add during a move filled a row on view
};

DVListRecord *Rec(HWND w) { return w ? GadgetRecord<DVListRecord>(w) : nullptr; }
bool HasStyle(HWND w, DWORD mask) { return (GetWindowLongA(w, GWL_STYLE) & mask) == mask; }
bool Extended(HWND w) { return HasStyle(w, VLS_EXTENDEDSEL); }
bool Multiple(HWND w) { return HasStyle(w, VLS_MULTIPLESEL); }
bool Single(HWND w) { return !Extended(w) && !Multiple(w); }
// Index arithmetic wraps as 32-bit signed numbers do.
LONG Wrap(long long v) { return static_cast<LONG>(static_cast<DWORD>(static_cast<unsigned long long>(v))); }
LONG Count(const DVListRecord *r) { return r->totalItems != -1 ? r->totalItems : r->highWater; }
bool CanPaint(const DVListRecord *r) { return r->redrawEnabled && r->updateEnabled; }

void Notify(HWND w, DVListRecord *r, UINT code, void *request)
{
    if (r->callback)
        r->callback(w, code, request, r->callbackData);
}

void ReportError(HWND w)
{
    if (DVListRecord *r = Rec(w))
        Notify(w, r, VLN_ERROR, nullptr);
}

void ClearLoadFlags(DVListRecord *r)
{
    r->indexShift = 0;
    r->pastTop = r->pastBottom = r->topFound = r->bottomFound = false;
}

bool AnyEndReport(const DVListRecord *r)
{
    return r->pastTop || r->pastBottom || r->topFound || r->bottomFound;
}

// ---------------------------------------------------------------- cache
bool InWindow(const DVListRecord *r, LONG index)
{
    long long d = static_cast<long long>(index) - r->cacheFirst;
    return r->cacheEntries && d >= 0 && d < static_cast<long long>(r->cacheSize);
}

DvEntry *Slot(DVListRecord *r, LONG index)
{
    return InWindow(r, index) ? &r->cacheEntries[index - static_cast<long long>(r->cacheFirst)]
                              : nullptr;
}

DvEntry *Cached(DVListRecord *r, LONG index)
{
    DvEntry *e = Slot(r, index);
    return e && (e->flags & kValid) ? e : nullptr;
}

bool SameRef(const DVListRecord *r, const BYTE *a, const void *b)
{
    return a && b && memcmp(a, b, r->refSize) == 0;
}

// Releases a valid entry to the host and frees what it owns.
void ReleaseEntry(HWND w, DVListRecord *r, DvEntry &entry, LONG index)
{
    if (!(entry.flags & kValid))
        return;
    DvEntry gone = entry;
    memset(&entry, 0, sizeof entry);
    DVLRELEASEREQUEST request = {index, gone.itemData, gone.text};
    Notify(w, r, VLN_RELEASE, &request);
    if (gone.ref)
        LocalFree(gone.ref);
    if (gone.text)
        LocalFree(gone.text);
}

void DropScratch(HWND w, DVListRecord *r)
{
    if (r->scratchEntry)
        ReleaseEntry(w, r, *r->scratchEntry, r->scratchIndex);
    r->scratchIndex = kNoIndex;
}

// Releases every entry; what the list knew of the ends goes with them.
void Flush(HWND w, DVListRecord *r)
{
    for (DWORD p = 0; r->cacheEntries && p < r->cacheSize; ++p)
        ReleaseEntry(w, r, r->cacheEntries[p], Wrap(static_cast<long long>(r->cacheFirst) + p));
    r->endFlags &= ~(kAtTop | kAtBottom);
    ++r->flushCount;
}

bool FindInCache(DVListRecord *r, const void *ref, LONG *index)
{
    if (!ref || r->refSize == 0 || !r->cacheEntries)
        return false;
    for (DWORD p = 0; p < r->cacheSize; ++p) {
        const DvEntry &e = r->cacheEntries[p];
        if ((e.flags & kValid) && SameRef(r, e.ref, ref)) {
            *index = Wrap(static_cast<long long>(r->cacheFirst) + p);
            return true;
        }
    }
    return false;
}

// The first index of a window of `size` entries that centres the view.
long long WindowStart(const DVListRecord *r, DWORD size)
{
    long long top = r->topIndex, vis = r->visibleCount;
    DWORD h = r->visibleCount / 2, g = size / 2;
    long long first = static_cast<DWORD>(r->topIndex + h) < g ? top : top - g + h;
    if ((r->endFlags & kAtTop) && first < 0)
        first = 0;
    long long e = top + vis > r->totalItems ? top + vis : r->totalItems;
    if (r->totalItems != -1 && size + first > e && e > static_cast<long long>(size))
        first = e - size;
    return first;
}

void PlaceCache(HWND w, DVListRecord *r)
{
    long long first = r->cacheFirst, size = r->cacheSize, top = r->topIndex;
    if (first <= top && top + r->visibleCount <= first + size)
        return;
    long long newFirst = WindowStart(r, r->cacheSize);
    for (DWORD p = 0; r->cacheEntries && p < r->cacheSize; ++p) {
        long long index = first + p;
        if (index < newFirst || index >= newFirst + size)
            ReleaseEntry(w, r, r->cacheEntries[p], Wrap(index));
    }
    if (newFirst > first)
        r->endFlags &= ~kAtTop;
    if (newFirst < first)
        r->endFlags &= ~kAtBottom;
    if (r->cacheEntries)
        VListShiftEntries(r->cacheEntries, r->cacheSize, sizeof(DvEntry), newFirst - first);
    r->cacheFirst = Wrap(newFirst);
}

void Load(HWND w, DVListRecord *r, LONG first, LONG last)
{
    LONG count = Count(r);
    LONG tag = first;
    if ((r->endFlags & kFromTop) || ((r->endFlags & kAtTop) && first == 0))
        tag = kSentinelTop;
    else if ((r->endFlags & kFromBottom) || ((r->endFlags & kAtBottom) && last == count - 1))
        tag = kSentinelBottom;
    DVLLOADREQUEST request = {tag, static_cast<DWORD>(last - first + 1), count};
    Notify(w, r, VLN_LOAD, &request);
}

// Whether a row at `index` can hold an item, as far as the list knows.
bool Possible(const DVListRecord *r, LONG index)
{
    if ((r->endFlags & kAtTop) && index < 0)
        return false;
    if ((r->endFlags & kAtBottom) && index >= Count(r))
        return false;
    return true;
}

void Resolve(DVListRecord *r, bool valid, const BYTE *ref, LONG &index, long long f, long long l)
{
    if (!valid)
        return;
    LONG found;
    if (FindInCache(r, ref, &found))
        index = found;
    else if (index != kNoIndex && index >= f && index <= l)
        index = kNoIndex;  // expected there, and gone
}

void Refill(HWND w, DVListRecord *r)
{
    ++r->loadCount;
    ClearLoadFlags(r);
    if (!r->callback || !r->cacheEntries || r->cacheSize == 0)
        return;
    bool complete = true;
    for (DWORD row = 0; row < r->visibleCount && complete; ++row) {
        LONG index = Wrap(static_cast<long long>(r->topIndex) + row);
        if (Possible(r, index))
            complete = Cached(r, index) != nullptr;
    }
    if (complete)
        return;
    long long start = WindowStart(r, r->loadBatch);
    if (start < r->cacheFirst)
        start = r->cacheFirst;
    long long windowEnd = static_cast<long long>(r->cacheFirst) + r->cacheSize - 1;
    long long f = start;
    while (f <= windowEnd && Cached(r, Wrap(f)))
        ++f;
    long long l = f + r->loadBatch - 1 < windowEnd ? f + r->loadBatch - 1 : windowEnd;
    // Nothing is asked for beyond an end the list knows.
    if ((r->endFlags & kAtTop) && f < 0)
        f = 0;
    if ((r->endFlags & kAtBottom) && l > Count(r) - 1LL)
        l = Count(r) - 1LL;
    bool inRun = false, stopped = false;
    long long runStart = 0;
    for (long long i = f; i <= l; ++i) {
        if (!Cached(r, Wrap(i))) {
            if (!inRun)
                runStart = i;
            inRun = true;
            continue;
        }
        if (!inRun)
            continue;
        inRun = false;
        Load(w, r, Wrap(runStart), Wrap(i - 1));
        if (!(r = Rec(w)))
            return;
        if (AnyEndReport(r)) {
            stopped = true;
            break;
        }
    }
    if (inRun && !stopped) {
        Load(w, r, Wrap(runStart), Wrap(l));
        if (!(r = Rec(w)))
            return;
    }
    if (r->topFound || r->bottomFound) {
        f += r->indexShift;
        l += r->indexShift;
    }
    Resolve(r, r->caretRefValid, r->caretRef, r->caretIndex, f, l);
    Resolve(r, r->currentRefValid, r->currentRef, r->currentIndex, f, l);
    Resolve(r, r->anchorRefValid, r->anchorRef, r->anchorIndex, f, l);
}

// One item: from the cache, from the scratch entry, or (with `load`) asked
// for alone. The item may move while it is asked for; the lookup follows it
// a few times and then gives up.
DvEntry *LookUp(HWND w, LONG index, bool load)
{
    for (int round = 0; round < kLookupRounds; ++round) {
        DVListRecord *r = Rec(w);
        if (!r || !r->scratchEntry)
            return nullptr;
        if (!InWindow(r, index)) {
            if (!load)
                return nullptr;
            if (r->scratchIndex == index && (r->scratchEntry->flags & kValid))
                return r->scratchEntry;
            DropScratch(w, r);
            r->scratchIndex = index;
        } else {
            DvEntry *e = Slot(r, index);
            if (e->flags & kValid)
                return e;
            if (!load)
                return nullptr;
            memset(e, 0, sizeof *e);
        }
        ClearLoadFlags(r);
        Load(w, r, index, index);
        if (!(r = Rec(w)))
            return nullptr;
        if (r->pastTop || r->pastBottom) {
            r->pastTop = r->pastBottom = false;
            return nullptr;
        }
        if (r->indexShift == 0) {
            if (DvEntry *e = Cached(r, index))
                return e;
            if (r->scratchIndex == index && (r->scratchEntry->flags & kValid))
                return r->scratchEntry;
            return nullptr;
        }
        index = Wrap(static_cast<long long>(index) + r->indexShift);
        r->indexShift = 0;
    }
    OSErrorSetErrorInfo(RV_Failure, "About to loop indefinitely.");
    return nullptr;
}

// ---------------------------------------------------------------- selection store
// Position of `ref` among the sorted references, or where it would go.
DWORD SelSearch(const DVListRecord *r, const BYTE *refs, const void *ref, bool *found)
{
    DWORD low = 0, high = r->selectedCount;
    *found = false;
    while (low < high) {
        DWORD mid = low + (high - low) / 2;
        int c = memcmp(refs + static_cast<size_t>(mid) * r->refSize, ref, r->refSize);
        if (c == 0) {
            *found = true;
            return mid;
        }
        if (c < 0)
            low = mid + 1;
        else
            high = mid;
    }
    return low;
}

bool IsRefSelected(HWND w, const DVListRecord *r, const void *ref)
{
    if (!ref || r->refSize == 0)
        return false;
    if (!r->multiSelect || Single(w))
        return r->currentRefValid && SameRef(r, r->currentRef, ref);
    if (!r->selectedRefs)
        return false;
    const BYTE *refs = static_cast<const BYTE *>(GlobalLock(r->selectedRefs));
    if (!refs)
        return false;
    bool found;
    SelSearch(r, refs, ref, &found);
    GlobalUnlock(r->selectedRefs);
    return found;
}

void MarkCached(DVListRecord *r, const void *ref, bool selected, LONG *index)
{
    *index = kNoIndex;
    if (FindInCache(r, ref, index)) {
        DvEntry *e = Slot(r, *index);
        e->flags = selected ? (e->flags | kSelected) : (e->flags & ~kSelected);
    }
}

void RepaintRow(HWND w, DVListRecord *r, LONG index);
void RepaintAll(HWND w, DVListRecord *r);

bool SelInsert(DVListRecord *r, const void *ref, DWORD at)
{
    SIZE_T bytes = static_cast<SIZE_T>(r->selectedCount + 1) * r->refSize;
    HGLOBAL block = r->selectedRefs ? GlobalReAlloc(r->selectedRefs, bytes, GMEM_MOVEABLE | GMEM_ZEROINIT)
                                    : GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
    if (!block) {
        OSErrorSetErrorInfo(RV_OutOfGlobalMemory, static_cast<DWORD>(bytes));
        return false;
    }
    r->selectedRefs = block;
    BYTE *refs = static_cast<BYTE *>(GlobalLock(block));
    if (!refs)
        return false;
    memmove(refs + static_cast<size_t>(at + 1) * r->refSize, refs + static_cast<size_t>(at) * r->refSize,
            static_cast<size_t>(r->selectedCount - at) * r->refSize);
    memcpy(refs + static_cast<size_t>(at) * r->refSize, ref, r->refSize);
    GlobalUnlock(block);
    ++r->selectedCount;
    return true;
}

void SelRemove(DVListRecord *r, DWORD at)
{
    BYTE *refs = static_cast<BYTE *>(GlobalLock(r->selectedRefs));
    if (!refs)
        return;
    memmove(refs + static_cast<size_t>(at) * r->refSize, refs + static_cast<size_t>(at + 1) * r->refSize,
            static_cast<size_t>(r->selectedCount - at - 1) * r->refSize);
    GlobalUnlock(r->selectedRefs);
    --r->selectedCount;
    HGLOBAL smaller = GlobalReAlloc(r->selectedRefs, static_cast<SIZE_T>(r->selectedCount) * r->refSize,
                                    GMEM_MOVEABLE);
    if (smaller)
        r->selectedRefs = smaller;  // a failed shrink keeps the larger block
}

// Empties the selection and clears the selected bits in the cache.
void SelClear(DVListRecord *r)
{
    if (r->selectedRefs)
        GlobalFree(r->selectedRefs);
    r->selectedRefs = nullptr;
    r->selectedCount = 0;
    for (DWORD p = 0; r->multiSelect && r->cacheEntries && p < r->cacheSize; ++p)
        r->cacheEntries[p].flags &= ~kSelected;
}

// Selects (1), deselects (0) or toggles (other) one reference.
bool SetSelRef(HWND w, DVListRecord *r, DWORD mode, const void *ref)
{
    if (!r->multiSelect || !ref || r->refSize == 0)
        return false;
    bool found = false;
    DWORD at = 0;
    if (r->selectedRefs) {
        const BYTE *refs = static_cast<const BYTE *>(GlobalLock(r->selectedRefs));
        if (!refs)
            return false;
        at = SelSearch(r, refs, ref, &found);
        GlobalUnlock(r->selectedRefs);
    }
    bool want = mode == 0 ? false : mode == 1 ? true : !found;
    LONG index;
    if (want && !found) {
        if (!SelInsert(r, ref, at)) {
            ReportError(w);
            return false;
        }
        MarkCached(r, ref, true, &index);
        RepaintRow(w, r, index);
    } else if (!want && found) {
        if (r->selectedCount == 1) {
            SelClear(r);
            RepaintAll(w, r);
            return true;
        }
        SelRemove(r, at);
        MarkCached(r, ref, false, &index);
        RepaintRow(w, r, index);
    }
    return true;
}

bool CopyEntryRef(const DVListRecord *r, const DvEntry *e, BYTE *to)
{
    if (!e || !to || !e->ref)
        return false;
    memcpy(to, e->ref, r->refSize);
    return true;
}

// Selects every item from `low` to `high` with `mode`: cached items one by
// one, the runs the list has not seen through VLN_SELRANGE.
void SelectRange(HWND w, DVListRecord *r, LONG low, LONG high, DWORD mode)
{
    if (low > high) {
        LONG t = low;
        low = high;
        high = t;
    }
    BYTE *ref = r->refSize ? static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize)) : nullptr;
    if (!ref)
        return;
    LONG count = Count(r);
    auto sendRun = [&](long long a, long long b) {
        LONG tag = Wrap(a);
        if ((r->endFlags & kAtTop) && a == 0)
            tag = kSentinelTop;
        else if ((r->endFlags & kAtBottom) && b == count - 1LL)
            tag = kSentinelBottom;
        DVLSELRANGEREQUEST request = {tag, static_cast<DWORD>(b - a + 1), mode};
        Notify(w, r, VLN_SELRANGE, &request);
    };
    long long first = r->cacheFirst, last = first + r->cacheSize - 1;
    if (low < first)
        sendRun(low, high < first ? high : first - 1);
    long long from = low > first ? low : first, to = high < last ? high : last;
    long long runStart = 0;
    bool inRun = false;
    for (long long i = from; i <= to && (r = Rec(w)) != nullptr; ++i) {
        DvEntry *e = Cached(r, Wrap(i));
        if (e && CopyEntryRef(r, e, ref)) {
            if (inRun)
                sendRun(runStart, i - 1);
            inRun = false;
            SetSelRef(w, r, mode, ref);
        } else if (!inRun) {
            inRun = true;
            runStart = i;
        }
    }
    if (r && inRun)
        sendRun(runStart, to);
    if (r && high > last)
        sendRun(low > last ? low : last + 1, high);
    LocalFree(ref);
}

// ---------------------------------------------------------------- painting
RECT RowRect(HWND w, const DVListRecord *r, DWORD row)
{
    RECT client;
    GetClientRect(w, &client);
    RECT rect = {0, static_cast<int>(row) * r->itemHeight, client.right,
                 static_cast<int>(row + 1) * r->itemHeight};
    return rect;
}

void PaintRow(HWND w, DVListRecord *r, HDC dc, DWORD row)
{
    LONG index = Wrap(static_cast<long long>(r->topIndex) + row);
    RECT rect = RowRect(w, r, row);
    PatBlt(dc, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, PATCOPY);
    if (!Possible(r, index))
        return;
    if (!InWindow(r, index)) {
        OSErrorSetErrorInfo(RV_Warning);
        return;
    }
    DvEntry *e = Cached(r, index);
    bool selected = e && (e->flags & kSelected);
    bool caret = r->focused && index == r->caretIndex;
    if (HasStyle(w, VLS_OWNERDRAW)) {
        VLDRAWREQUEST request = {static_cast<DWORD>(index),
                                 (selected ? VLDS_SELECTED : 0u) | (caret ? VLDS_FOCUS : 0u), dc, rect,
                                 e ? e->itemData : 0, e ? e->text : nullptr};
        Notify(w, r, VLN_DRAW, &request);
        return;
    }
    if (e && e->text) {
        SetBkColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
        SetTextColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
        ExtTextOutA(dc, rect.left + r->charWidth / 2, rect.top, ETO_CLIPPED | ETO_OPAQUE, &rect,
                    e->text, lstrlenA(e->text), nullptr);
    }
    if (caret)
        DrawFocusRect(dc, &rect);
}

// Paints the rows that meet `clip` (all rows when null) into `dc`.
void PaintRows(HWND w, DVListRecord *r, HDC dc, const RECT *clip)
{
    if (!r->cacheEntries || !CanPaint(r) || r->itemHeight <= 0)
        return;
    VListRowPaint paint = VListBeginRowPaint(dc, r->font);
    RECT client;
    GetClientRect(w, &client);
    if (!clip || Count(r) == 0)
        PatBlt(dc, 0, 0, client.right, client.bottom, PATCOPY);
    if (Count(r) != 0 || r->totalItems == -1) {
        for (DWORD row = 0; row < r->visibleCount; ++row) {
            RECT rect = RowRect(w, r, row), meet;
            if (!clip || IntersectRect(&meet, &rect, clip))
                PaintRow(w, r, dc, row);
        }
    }
    VListEndRowPaint(paint);
}

void RepaintAll(HWND w, DVListRecord *r)
{
    if (r->memoryDC)
        PaintRows(w, r, r->memoryDC, nullptr);
    InvalidateRect(w, nullptr, FALSE);
}

bool RowOf(const DVListRecord *r, LONG index, DWORD *row)
{
    long long d = static_cast<long long>(index) - r->topIndex;
    if (index == kNoIndex || d < 0 || d >= static_cast<long long>(r->visibleCount))
        return false;
    *row = static_cast<DWORD>(d);
    return true;
}

void RepaintRow(HWND w, DVListRecord *r, LONG index)
{
    DWORD row;
    if (!RowOf(r, index, &row))
        return;
    RECT rect = RowRect(w, r, row);
    if (!r->cacheEntries || !CanPaint(r)) {
        ValidateRect(w, &rect);
        return;
    }
    if (r->memoryDC)
        PaintRows(w, r, r->memoryDC, &rect);
    InvalidateRect(w, &rect, FALSE);
}

void UpdateThumb(HWND w, DVListRecord *r)
{
    if (r->inScrollRange)
        return;
    r->inScrollRange = true;
    DWORD count = Count(r) > 0 ? static_cast<DWORD>(Count(r)) : 0;
    int range = VListThumbRange(count, r->visibleCount);
    int low, high;
    GetScrollRange(w, SB_VERT, &low, &high);
    if (low != 0 || high != range)
        SetScrollRange(w, SB_VERT, 0, range, TRUE);
    if (!(r = Rec(w)))
        return;
    DWORD top = r->topIndex > 0 ? static_cast<DWORD>(r->topIndex) : 0;
    int pos = VListThumbFromIndex(top, count, r->visibleCount);
    if (GetScrollPos(w, SB_VERT) != pos)
        SetScrollPos(w, SB_VERT, pos, TRUE);
    r->inScrollRange = false;
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

void Reload(HWND w, DVListRecord *r, LONG top);

// The rounds of a move or a reload: place and refill around `newTop` until
// the host's reports of its ends settle. Returns false when a load ran off
// the data (pastTop or pastBottom left set).
bool SettleTop(HWND w, DVListRecord *&r, LONG newTop, LONG &oldTop, bool up, bool atEnd)
{
    bool wasUnknown = r->totalItems == -1;
    for (int round = 0; round < kMoveRounds; ++round) {
        r->topIndex = newTop;
        ClearLoadFlags(r);
        PlaceCache(w, r);
        Refill(w, r);
        if (!(r = Rec(w)))
            return true;
        if (r->pastTop || r->pastBottom) {
            if (atEnd) {
                r->pastTop = r->pastBottom = false;
            } else {
                if (up)
                    r->pastBottom = false;
                else
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
    bool settled = SettleTop(w, r, top, oldTop, up, false);
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
        RepaintAll(w, r);
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
            PaintRows(w, r, r->memoryDC, &strip);
            VListGlide(w, r->memoryDC, rows, distance > 0 ? pixels : -pixels, step);
        } else if (r->memoryDC) {
            RepaintAll(w, r);
        } else if (d < r->visibleCount && CanPaint(r)) {
            ScrollWindow(w, 0, static_cast<int>(-distance * r->itemHeight), nullptr, nullptr);
        } else {
            InvalidateRect(w, nullptr, TRUE);
        }
    }
    UpdateThumb(w, r);
}

// Rebuilds the whole window around `top`, which may name an end.
void Reload(HWND w, DVListRecord *r, LONG top)
{
    Flush(w, r);
    DropScratch(w, r);
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
    bool settled = SettleTop(w, r, top, oldTop, false, atEnd);
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
    RepaintAll(w, r);
    UpdateThumb(w, r);
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
    if (RowOf(r, index, &row) && !reload) {
        RepaintRow(w, r, index);
        return;
    }
    LONG top = index;
    if (index >= r->topIndex && r->visibleCount)
        top = Wrap(static_cast<long long>(index) - r->visibleCount + 1);
    SetTop(w, r, top, reload, step);
}

// ---------------------------------------------------------------- references
enum Which { kCaret, kCurrent };

// Makes `ref` (or none) the caret or the current selection and brings it
// into view, loading around it when the list has not seen it.
bool SetRef(HWND w, DVListRecord *r, Which which, const void *ref, bool reloadAsked)
{
    bool &valid = which == kCaret ? r->caretRefValid : r->currentRefValid;
    BYTE *block = which == kCaret ? r->caretRef : r->currentRef;
    LONG oldIndex = kNoIndex;
    bool oldFound = valid && FindInCache(r, block, &oldIndex);
    if (which == kCurrent && oldFound)
        Slot(r, oldIndex)->flags &= ~kSelected;
    LONG index = kNoIndex;
    bool reload = reloadAsked;
    if (ref && block) {
        memmove(block, ref, r->refSize);
        valid = true;
        if (!FindInCache(r, block, &index)) {
            DVLFINDREQUEST request = {block, kNoIndex, 0};
            Notify(w, r, VLN_FIND, &request);
            if (!(r = Rec(w)))
                return false;
            index = request.index;
            reload = reload || request.reload != 0 || index == kNoIndex;
        }
    } else {
        valid = false;
    }
    if (which == kCaret) {
        r->caretIndex = index;
    } else {
        r->currentIndex = index;
        if (DvEntry *e = Cached(r, index))
            e->flags |= kSelected;
        r->caretIndex = index;
        r->caretRefValid = r->currentRefValid;
        if (r->caretRef && r->currentRef)
            memcpy(r->caretRef, r->currentRef, r->refSize);
    }
    r->anchorIndex = r->caretIndex;
    r->anchorRefValid = r->caretRefValid;
    if (r->anchorRef && r->caretRef)
        memcpy(r->anchorRef, r->caretRef, r->refSize);
    if (reload) {
        SetTop(w, r, index, true, 1);
    } else {
        if (oldFound)
            RepaintRow(w, r, oldIndex);
        if (index != kNoIndex) {
            DWORD row;
            if (RowOf(r, index, &row)) {
                if (index != oldIndex)
                    RepaintRow(w, r, index);
            } else {
                ShowIndex(w, r, index, false, 1);
            }
        }
    }
    if ((r = Rec(w)) != nullptr && CanPaint(r))
        UpdateWindow(w);
    return true;
}

bool SetCaretRef(HWND w, DVListRecord *r, const void *ref, bool reload)
{
    return SetRef(w, r, Single(w) ? kCurrent : kCaret, ref, reload);
}

// ---------------------------------------------------------------- row fit
void FitRows(HWND w, DVListRecord *r)
{
    if (r->inResize)
        return;
    r->inResize = true;
    RECT client;
    GetClientRect(w, &client);
    int height = client.bottom > r->requestedHeight ? client.bottom : r->requestedHeight;
    VListRowMetrics m = VListMeasureRows(w, r->font, HasStyle(w, VLS_OWNERDRAW), r->callback,
                                         r->callbackData, height);
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
    if ((r = Rec(w)) != nullptr)
        r->inResize = false;
}

// ---------------------------------------------------------------- handlers
LRESULT OnCreate(HWND w)
{
    DVListRecord *r = static_cast<DVListRecord *>(GadgetCreateRecord(w, sizeof(DVListRecord)));
    if (!r)
        return GadgetCreateFailed;
    r->currentIndex = r->scratchIndex = r->anchorIndex = kNoIndex;
    r->redrawEnabled = r->updateEnabled = true;
    r->itemHeight = 1;
    return 0;
}

void FreeRefs(DVListRecord *r)
{
    BYTE **blocks[] = {&r->caretRef, &r->currentRef, &r->anchorRef};
    for (BYTE **b : blocks) {
        if (*b)
            LocalFree(*b);
        *b = nullptr;
    }
}

// Releases everything the list holds of the host's items.
void DropItems(HWND w, DVListRecord *r)
{
    Flush(w, r);
    if (r->cacheEntries)
        LocalFree(r->cacheEntries);
    r->cacheEntries = nullptr;
    SelClear(r);
    DropScratch(w, r);
    if (r->scratchEntry)
        LocalFree(r->scratchEntry);
    r->scratchEntry = nullptr;
}

void OnDestroy(HWND w, DVListRecord *r)
{
    DropItems(w, r);
    FreeRefs(r);
    VListFreeMemoryDC(r->memoryDC, r->savedBitmap);
    if (r->autoScrollRunning)
        OSKillTimer(w, kAutoScrollTimer);
    if (r->typeAheadRunning)
        OSKillTimer(w, kTypeAheadTimer);
    GadgetFreeRecord(w, true);
}

void OnSize(HWND w, DVListRecord *r)
{
    r->updateEnabled = false;
    FitRows(w, r);
    if (HasStyle(w, VLS_DOUBLEBUFFER)) {
        VListFreeMemoryDC(r->memoryDC, r->savedBitmap);
        r->memoryDC = VListCreateMemoryDC(w, &r->savedBitmap);
    }
    Move(w, r, r->topIndex, r->itemHeight);
    if (!(r = Rec(w)))
        return;
    r->updateEnabled = true;
    RepaintAll(w, r);
    UpdateThumb(w, r);
}

void OnPaint(HWND w, DVListRecord *r)
{
    RECT update;
    if (!GetUpdateRect(w, &update, FALSE))
        return;
    InvalidateRect(w, &update, FALSE);
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(w, &ps);
    if (r->memoryDC)
        VListCopyArea(dc, ps.rcPaint, r->memoryDC);
    else
        PaintRows(w, r, dc, &ps.rcPaint);
    EndPaint(w, &ps);
}

void OnFocus(HWND w, DVListRecord *r, bool gained, HWND other)
{
    r->focused = gained;
    VLFOCUSREQUEST request = {other};
    Notify(w, r, gained ? VLN_SETFOCUS : VLN_KILLFOCUS, &request);
    if ((r = Rec(w)) != nullptr)
        RepaintRow(w, r, r->caretIndex);
}

void SelChange(HWND w, DVListRecord *r)
{
    DWORD word = 0;
    Notify(w, r, VLN_SELCHANGE, &word);
}

// Step 4 of a key move: the caret's entry gives the references.
bool TakeCaretEntry(HWND w, DVListRecord *r, bool load)
{
    DvEntry *e = LookUp(w, r->caretIndex, load);
    if (!(r = Rec(w)) || !e || !e->ref)
        return false;
    memcpy(r->caretRef, e->ref, r->refSize);
    memcpy(r->currentRef, e->ref, r->refSize);
    r->caretRefValid = r->currentRefValid = true;
    if (!Multiple(w))
        e->flags |= kSelected;
    if (r->anchorIndex == r->caretIndex) {
        memcpy(r->anchorRef, e->ref, r->refSize);
        r->anchorRefValid = true;
    }
    return true;
}

// The Shift step from the old caret `p` to the caret: the selection keeps
// being the run between anchor and caret.
void ShiftStep(HWND w, DVListRecord *r, LONG p)
{
    LONG q = r->caretIndex, a = r->anchorIndex;
    if (p == q || r->refSize == 0)
        return;
    BYTE *pRef = static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize));
    if (!pRef)
        return;
    bool havePRef = CopyEntryRef(r, LookUp(w, p, true), pRef);
    if (!(r = Rec(w))) {
        LocalFree(pRef);
        return;
    }
    bool keep = q == a ? true : (p >= a ? q < p : q > p);
    bool anchorWas = r->anchorRefValid && IsRefSelected(w, r, r->anchorRef);
    r->updateEnabled = false;
    SelectRange(w, r, p, q, 2);
    if ((r = Rec(w)) != nullptr) {
        if (!keep && havePRef)
            SetSelRef(w, r, 2, pRef);
        if (r->anchorRefValid && IsRefSelected(w, r, r->anchorRef) != anchorWas)
            SetSelRef(w, r, 2, r->anchorRef);
        if (r->caretRefValid)
            SetSelRef(w, r, 1, r->caretRef);
        r->updateEnabled = true;
        RepaintAll(w, r);
    }
    LocalFree(pRef);
}

bool NothingSelected(HWND w, const DVListRecord *r)
{
    if (Single(w))
        return r->currentIndex == kNoIndex && !r->currentRefValid;
    return r->selectedCount == 0;
}

void OnKeyDown(HWND w, DVListRecord *r, WPARAM key)
{
    if (key != VK_SPACE)
        r->spaceKeyDown = false;
    if (key < VK_SPACE || key > VK_DOWN || key == VK_LEFT || key == VK_RIGHT || !r->callback ||
        !r->cacheEntries)
        return;
    bool single = Single(w), extended = Extended(w), multiple = Multiple(w) && !extended;
    bool shift = GetKeyState(VK_SHIFT) < 0;
    bool reload = false;
    if ((key == VK_PRIOR || key == VK_NEXT || key == VK_UP || key == VK_DOWN) && r->caretRefValid &&
        r->caretIndex == kNoIndex) {
        DVLFINDREQUEST request = {r->caretRef, kNoIndex, 0};
        Notify(w, r, VLN_FIND, &request);
        if (!(r = Rec(w)) || request.index == kNoIndex)
            return;
        r->caretIndex = request.index;
        reload = request.reload != 0;
    }
    LONG oldCaret = r->caretIndex, oldCurrent = r->currentIndex;
    LONG caret = oldCaret, current = oldCurrent;
    long long count = Count(r), vis = r->visibleCount;
    int step = r->itemHeight;
    switch (key) {
    case VK_SPACE:
        r->spaceKeyDown = true;
        if (extended) {
            if (GetKeyState(VK_CONTROL) < 0)
                return;
            SelClear(r);
        }
        if (single) {
            DvEntry *e = LookUp(w, caret, true);
            if (!(r = Rec(w)))
                return;
            if (r->currentIndex == caret && r->currentRefValid) {
                if (e)
                    e->flags &= ~kSelected;
                r->currentIndex = kNoIndex;
                r->currentRefValid = false;
            } else if (e && e->ref) {
                SetRef(w, r, kCurrent, e->ref, false);
            }
        } else if (r->caretRefValid) {
            SetSelRef(w, r, 2, r->caretRef);
        }
        if (!(r = Rec(w)))
            return;
        SelChange(w, r);
        if ((r = Rec(w)) != nullptr)
            RepaintAll(w, r);
        return;
    case VK_PRIOR:
        if ((r->endFlags & kAtTop) && caret <= vis - 1)
            caret = current = 0;
        else
            caret = current = Wrap(caret + 1 - vis);
        break;
    case VK_NEXT:
        if ((r->endFlags & kAtBottom) && caret >= count - vis)
            caret = current = Wrap(count - 1);
        else
            caret = current = Wrap(caret + vis - 1);
        break;
    case VK_END:
        if (r->endFlags & kAtBottom) {
            caret = current = Wrap(count - 1);
        } else {
            Reload(w, r, kSentinelBottom);
            if (!(r = Rec(w)))
                return;
            caret = current = Wrap(count - 1);
        }
        break;
    case VK_HOME:
        if (!(r->endFlags & kAtTop)) {
            Reload(w, r, kSentinelTop);
            if (!(r = Rec(w)))
                return;
        }
        caret = current = 0;
        break;
    case VK_UP:
        step = 1;
        if ((r->endFlags & kAtTop) && caret == 0)
            current = 0;
        else
            caret = current = Wrap(static_cast<long long>(caret) - 1);
        break;
    case VK_DOWN:
        step = 1;
        if (!multiple && NothingSelected(w, r))
            current = caret;
        else if ((r->endFlags & kAtBottom) && caret == count - 1)
            current = caret;
        else
            caret = current = Wrap(static_cast<long long>(caret) + 1);
        break;
    }
    if (caret != oldCaret || current != oldCurrent || key == VK_HOME || key == VK_END) {
        r->caretRefValid = r->currentRefValid = false;
    }
    r->caretIndex = caret;
    r->currentIndex = current;
    SelChange(w, r);
    if (!(r = Rec(w)))
        return;
    if (!multiple) {
        if (DvEntry *e = Cached(r, oldCurrent)) {
            e->flags &= ~kSelected;
            RepaintRow(w, r, oldCurrent);
        }
        if (extended && !shift) {
            SelClear(r);
            r->anchorIndex = r->caretIndex;
            RepaintAll(w, r);
        }
    } else {
        r->currentIndex = oldCurrent;
    }
    if (r->caretIndex != oldCaret)
        RepaintRow(w, r, oldCaret);
    if (single)
        RepaintRow(w, r, oldCurrent);
    TakeCaretEntry(w, r, false);
    if (!(r = Rec(w)))
        return;
    ShowIndex(w, r, r->caretIndex, reload, step);
    if (!(r = Rec(w)))
        return;
    if (!r->caretRefValid || (!multiple && !r->currentRefValid)) {
        TakeCaretEntry(w, r, true);
        if (!(r = Rec(w)))
            return;
        RepaintRow(w, r, r->caretIndex);
    }
    if (extended) {
        if (shift) {
            if (key == VK_HOME || key == VK_END) {
                LONG a = r->anchorIndex != kNoIndex ? r->anchorIndex : r->caretIndex;
                SelClear(r);
                SelectRange(w, r, a, r->caretIndex, 1);
                if ((r = Rec(w)) != nullptr)
                    RepaintAll(w, r);
            } else {
                ShiftStep(w, r, oldCaret);
            }
        } else if (r->caretRefValid) {
            SetSelRef(w, r, 1, r->caretRef);
            RepaintRow(w, r, r->caretIndex);
        }
        if ((r = Rec(w)) != nullptr)
            SelChange(w, r);
    }
}

LONG IndexAt(const DVListRecord *r, int y)
{
    return Wrap(static_cast<long long>(r->topIndex) + y / r->itemHeight);
}

void OnLButtonDown(HWND w, DVListRecord *r, WPARAM keys, int y)
{
    if (!r->callback || !r->cacheEntries || r->itemHeight <= 0)
        return;
    LONG index = IndexAt(r, y);
    SetCapture(w);
    if (!(r = Rec(w)))
        return;
    r->mouseCaptured = true;
    LONG oldCaret = r->caretIndex;
    r->caretIndex = index;
    DvEntry *e = Cached(r, index);
    if (Single(w)) {
        LONG oldCurrent = r->currentIndex;
        LONG found;
        if (r->currentRefValid && FindInCache(r, r->currentRef, &found)) {
            Slot(r, found)->flags &= ~kSelected;
            oldCurrent = found;
        }
        r->currentIndex = index;
        r->currentRefValid = e && e->ref;
        if (r->currentRefValid) {
            memcpy(r->currentRef, e->ref, r->refSize);
            e->flags |= kSelected;
        }
        RepaintRow(w, r, oldCurrent);
    } else if (Multiple(w) && !Extended(w)) {
        if (e && e->ref)
            SetSelRef(w, r, 2, e->ref);
    } else {
        r->currentIndex = index;
        if (e && e->ref) {
            memcpy(r->caretRef, e->ref, r->refSize);
            memcpy(r->currentRef, e->ref, r->refSize);
            r->caretRefValid = r->currentRefValid = true;
        }
        if (keys & MK_CONTROL) {
            r->anchorIndex = r->caretIndex;
            r->anchorRefValid = r->caretRefValid;
            if (r->anchorRef)
                memcpy(r->anchorRef, r->caretRef, r->refSize);
            if (e && e->ref)
                SetSelRef(w, r, 2, e->ref);
            ReleaseCapture();
            if ((r = Rec(w)) != nullptr)
                r->mouseCaptured = false;
        } else if ((keys & MK_SHIFT) && r->anchorRefValid) {
            SelClear(r);
            SelectRange(w, r, r->anchorIndex, r->caretIndex, 1);
            if ((r = Rec(w)) != nullptr)
                RepaintAll(w, r);
        } else {
            r->anchorIndex = r->caretIndex;
            r->anchorRefValid = r->caretRefValid;
            if (r->anchorRef)
                memcpy(r->anchorRef, r->caretRef, r->refSize);
            SelClear(r);
            if (e && e->ref)
                SetSelRef(w, r, 1, e->ref);
            RepaintAll(w, r);
        }
    }
    if (!(r = Rec(w)))
        return;
    RepaintRow(w, r, oldCaret);
    RepaintRow(w, r, index);
    SetFocus(w);
}

void OnMouseMove(HWND w, DVListRecord *r, int y)
{
    if (!r->mouseCaptured || r->itemHeight <= 0)
        return;
    LONG old = r->caretIndex, caret = old;
    int rowsBottom = static_cast<int>(r->visibleCount) * r->itemHeight;
    if (y >= 0 && y < rowsBottom) {
        caret = IndexAt(r, y);
        if (!Possible(r, caret))
            return;
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, false);
    } else {
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, true);
        if (y < 0) {
            if ((r->endFlags & kAtTop) && r->topIndex < 1)
                return;
            caret = Wrap(static_cast<long long>(r->topIndex) - 1);
            Move(w, r, caret, r->itemHeight);
        } else {
            if (Count(r) <= static_cast<long long>(r->visibleCount) ||
                ((r->endFlags & kAtBottom) && r->topIndex >= ClampTop(r, kSentinelBottom)))
                return;
            caret = Wrap(static_cast<long long>(r->topIndex) + r->visibleCount);
            Move(w, r, Wrap(static_cast<long long>(r->topIndex) + 1), r->itemHeight);
        }
        if (!(r = Rec(w)))
            return;
    }
    if (caret == old)
        return;
    r->caretIndex = caret;
    if (Single(w)) {
        LONG oldCurrent = r->currentIndex;
        if (DvEntry *e = Cached(r, oldCurrent))
            e->flags &= ~kSelected;
        r->currentIndex = caret;
        DvEntry *e = Cached(r, caret);
        r->currentRefValid = e && e->ref;
        if (r->currentRefValid) {
            memcpy(r->currentRef, e->ref, r->refSize);
            e->flags |= kSelected;
        }
        RepaintRow(w, r, oldCurrent);
    } else if (Extended(w)) {
        r->currentIndex = caret;
        if (DvEntry *e = Cached(r, caret)) {
            if (e->ref) {
                memcpy(r->caretRef, e->ref, r->refSize);
                r->caretRefValid = true;
            }
        }
        ShiftStep(w, r, old);
        if (!(r = Rec(w)))
            return;
    }
    RepaintRow(w, r, old);
    RepaintRow(w, r, caret);
}

void OnLButtonUp(HWND w, DVListRecord *r)
{
    if (!r->mouseCaptured)
        return;
    DvEntry *e = LookUp(w, r->caretIndex, false);
    r->caretRefValid = CopyEntryRef(r, e, r->caretRef);
    r->mouseCaptured = false;
    ReleaseCapture();
    if (!(r = Rec(w)))
        return;
    SelChange(w, r);
    if ((r = Rec(w)) != nullptr)
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, false);
}

void OnChar(HWND w, DVListRecord *r, WPARAM ch, LPARAM lParam)
{
    if (HasStyle(w, VLS_WANTCHARS)) {
        VLCHARREQUEST request = {static_cast<DWORD>(ch), LOWORD(lParam)};
        Notify(w, r, VLN_CHAR, &request);
        return;
    }
    if (r->spaceKeyDown) {
        r->spaceKeyDown = false;
        return;
    }
    if (r->typeAheadRunning)
        OSKillTimer(w, kTypeAheadTimer);
    DWORD repeat = LOWORD(lParam);
    if (repeat > kTypeAheadMax)
        repeat = kTypeAheadMax;
    DWORD length = lstrlenA(r->typeAhead);
    for (DWORD i = 0; i < repeat && length < kTypeAheadMax; ++i)
        r->typeAhead[length++] = static_cast<char>(ch);
    r->typeAhead[length] = 0;
    OSSetTimer(w, kTypeAheadTimer, kTypeAheadDelay, nullptr);
    r->typeAheadRunning = true;
}

// Asks the host for `text`; the answer, with its reload flag, lands in
// `request` and the reference in `ref`.
void Search(HWND w, DVListRecord *r, const char *text, BYTE *ref, DVLSEARCHREQUEST *request)
{
    DVLSEARCHREQUEST ask = {text, 0, kNoIndex, 0, ref};
    Notify(w, r, VLN_SEARCH, &ask);
    *request = ask;
}

void OnTypeAheadTimer(HWND w, DVListRecord *r)
{
    OSKillTimer(w, kTypeAheadTimer);
    r->typeAheadRunning = false;
    BYTE *ref = r->refSize ? static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize)) : nullptr;
    DVLSEARCHREQUEST request;
    Search(w, r, r->typeAhead, ref, &request);
    if (!(r = Rec(w))) {
        if (ref)
            LocalFree(ref);
        return;
    }
    if (request.index == kNoIndex) {
        MessageBeep(static_cast<UINT>(-1));
    } else {
        r->updateEnabled = false;
        if (r->multiSelect) {
            SelClear(r);
            SetSelRef(w, r, 1, ref);
        }
        if (request.reload)
            SetTop(w, r, request.index, true, 1);
        if ((r = Rec(w)) != nullptr && ref)
            SetCaretRef(w, r, ref, false);
        if ((r = Rec(w)) != nullptr) {
            r->updateEnabled = true;
            RepaintAll(w, r);
            if (r->redrawEnabled)
                UpdateWindow(w);
        }
    }
    if ((r = Rec(w)) != nullptr)
        r->typeAhead[0] = 0;
    if (ref)
        LocalFree(ref);
}

// The thumb as a place in the alphabet: the first two letters searched for.
void AlphaThumb(HWND w, DVListRecord *r, LONG mapped)
{
    long long n = Count(r);
    long long v = n > 0 ? (static_cast<long long>(mapped) + 1) * 676 / n + 1 : 1;
    BYTE *ref = r->refSize ? static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize)) : nullptr;
    DVLSEARCHREQUEST request = {};
    request.index = kNoIndex;
    for (;;) {
        char text[3] = {static_cast<char>(v / 26 + 'a'), static_cast<char>(v % 26 + 'a'), 0};
        Search(w, r, text, ref, &request);
        if (!(r = Rec(w)) || request.index != kNoIndex || v <= 0)
            break;
        --v;
    }
    if (r) {
        if (request.index != kNoIndex)
            SetTop(w, r, request.index, request.reload != 0, r->itemHeight);
        else
            Reload(w, r, kSentinelTop);
    }
    if (ref)
        LocalFree(ref);
}

void OnVScroll(HWND w, DVListRecord *r, WORD request, int thumb)
{
    LONG top = r->topIndex;
    long long vis = r->visibleCount;
    int step = r->itemHeight;
    if (request == SB_THUMBTRACK) {
        if (HasStyle(w, VLS_NOTHUMBTRACK))
            return;
        request = SB_THUMBPOSITION;
    }
    if (request == SB_THUMBPOSITION) {
        int low, high;
        GetScrollRange(w, SB_VERT, &low, &high);
        if (thumb <= low) {
            request = SB_TOP;
        } else if (thumb >= high) {
            request = SB_BOTTOM;
        } else {
            DWORD count = Count(r) > 0 ? static_cast<DWORD>(Count(r)) : 0;
            LONG index = static_cast<LONG>(VListIndexFromThumb(thumb, count, r->visibleCount));
            if (HasStyle(w, VLS_ALPHATHUMB))
                AlphaThumb(w, r, index);
            else
                Move(w, r, index, step);
            return;
        }
    }
    switch (request) {
    case SB_LINEUP:
        if ((r->endFlags & kAtTop) && top == 0)
            return;
        Move(w, r, Wrap(static_cast<long long>(top) - 1), 1);
        return;
    case SB_LINEDOWN: Move(w, r, Wrap(static_cast<long long>(top) + 1), 1); return;
    case SB_PAGEUP: Move(w, r, Wrap(top - vis + 1), step); return;
    case SB_PAGEDOWN: Move(w, r, Wrap(top + vis - 1), step); return;
    case SB_TOP:
        if (r->endFlags & kAtTop)
            Move(w, r, 0, step);
        else
            Reload(w, r, kSentinelTop);
        return;
    case SB_BOTTOM:
        if (r->endFlags & kAtBottom)
            Move(w, r, Wrap(static_cast<long long>(r->totalItems) - vis), step);
        else
            Reload(w, r, kSentinelBottom);
        return;
    }
}

LRESULT DVListProc(HWND w, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(w);
    DVListRecord *r = Rec(w);
    if (!r)
        return DefWindowProcA(w, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY: OnDestroy(w, r); return 0;
    case WM_SIZE:
        if (r->inResize)
            return 0;
        r->requestedHeight = HIWORD(lParam);
        OnSize(w, r);
        return 0;
    case WM_SETFOCUS: OnFocus(w, r, true, reinterpret_cast<HWND>(wParam)); return 0;
    case WM_KILLFOCUS: OnFocus(w, r, false, reinterpret_cast<HWND>(wParam)); return 0;
    case WM_SETREDRAW: r->redrawEnabled = wParam != 0; return 0;
    case WM_PAINT: OnPaint(w, r); return 0;
    case WM_SETFONT:
        r->font = reinterpret_cast<HFONT>(wParam);
        OnSize(w, r);
        return 0;
    case WM_GETFONT: return reinterpret_cast<LRESULT>(r->font);
    case WM_GETDLGCODE: return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_KEYDOWN: OnKeyDown(w, r, wParam); return 0;
    case WM_CHAR: OnChar(w, r, wParam, lParam); return 0;
    case WM_TIMER:
        if (wParam == kAutoScrollTimer) {
            VListReplayMouseMove(w);
        } else if (wParam == kTypeAheadTimer) {
            OnTypeAheadTimer(w, r);
        }
        return 0;
    case WM_VSCROLL:
        OnVScroll(w, r, LOWORD(wParam), static_cast<short>(HIWORD(wParam)));
        return 0;
    case WM_MOUSEMOVE: OnMouseMove(w, r, static_cast<short>(HIWORD(lParam))); return 0;
    case WM_LBUTTONDOWN: OnLButtonDown(w, r, wParam, static_cast<short>(HIWORD(lParam))); return 0;
    case WM_LBUTTONUP: OnLButtonUp(w, r); return 0;
    case WM_LBUTTONDBLCLK:
        if (HasStyle(w, VLS_NOTIFY) && r->itemHeight > 0) {
            LONG index = IndexAt(r, static_cast<short>(HIWORD(lParam)));
            Notify(w, r, VLN_DBLCLK, &index);
        }
        return 0;
    }
    return DefWindowProcA(w, message, wParam, lParam);
}

// Fills the entry of `index` in the window, or the scratch entry when it is
// waiting for that index. An entry that is already valid is released first.
BOOL Add(HWND w, LONG index, const void *ref, const char *text, LPARAM data, bool isString)
{
    DVListRecord *r = Rec(w);
    if (!r || !r->cacheEntries)
        return FALSE;
    bool scratch = !InWindow(r, index);
    if (scratch && (index == kNoIndex || index != r->scratchIndex))
        return FALSE;
    BYTE *refCopy = nullptr;
    char *textCopy = nullptr;
    if (r->refSize) {
        refCopy = static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize));
        if (!refCopy) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, r->refSize);
            return FALSE;
        }
        if (ref)
            memcpy(refCopy, ref, r->refSize);
    }
    if (isString && text) {
        textCopy = static_cast<char *>(LocalAlloc(LMEM_FIXED, lstrlenA(text) + 1));
        if (!textCopy) {
            if (refCopy)
                LocalFree(refCopy);
            OSErrorSetErrorInfo(RV_OutOfLocalMemory);
            return FALSE;
        }
        lstrcpyA(textCopy, text);
    }
    DvEntry *e = scratch ? r->scratchEntry : Slot(r, index);
    if (e->flags & kValid) {
        ReleaseEntry(w, r, *e, index);
        if (!(r = Rec(w)) || (!scratch && !InWindow(r, index))) {
            if (refCopy)
                LocalFree(refCopy);
            if (textCopy)
                LocalFree(textCopy);
            return FALSE;
        }
        e = scratch ? r->scratchEntry : Slot(r, index);
    }
    e->flags = kValid | (IsRefSelected(w, r, refCopy) ? kSelected : 0u);
    e->ref = refCopy;
    e->text = textCopy;
    e->itemData = data;
    if (r->totalItems == -1 && static_cast<long long>(index) + 1 > r->highWater) {
        r->highWater = Wrap(static_cast<long long>(index) + 1);
        UpdateThumb(w, r);
    }
    DWORD row;
    if ((r = Rec(w)) != nullptr && !scratch && RowOf(r, index, &row)) {
        if (r->moving)
            r->addedOnView = true;
        else
            RepaintRow(w, r, index);
    }
    return TRUE;
}

}  // namespace

LRESULT CALLBACK GadDVListForwarder(HWND w, UINT message, WPARAM wParam, LPARAM lParam)
{
    return DVListBox_WndProc(w, message, wParam, lParam);
}

extern "C" LRESULT WINAPI DVListBox_WndProc(HWND w, UINT message, WPARAM wParam, LPARAM lParam)
{
    return DVListProc(w, message, wParam, lParam);
}

extern "C" BOOL WINAPI DVListBox_Initialize(HWND w, LONG total, DWORD cacheSize, DWORD loadBatch,
                                            DWORD refSize, VLISTBOXPROC callback, LPARAM data)
{
    DVListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    DropItems(w, r);
    r->multiSelect = HasStyle(w, VLS_EXTENDEDSEL) || HasStyle(w, VLS_MULTIPLESEL);
    if (cacheSize == 0xFFFFFFFFu)
        cacheSize = kMaxCache;
    if (cacheSize > kMaxCache)
        return FALSE;
    DWORD size = cacheSize > r->visibleCount ? cacheSize : r->visibleCount;
    refSize &= 0xFFFF;
    // Everything new is made first, so that a failure leaves the old blocks.
    DvEntry *entries = static_cast<DvEntry *>(LocalAlloc(LPTR, (size ? size : 1) * sizeof(DvEntry)));
    DvEntry *scratch = entries ? static_cast<DvEntry *>(LocalAlloc(LPTR, sizeof(DvEntry))) : nullptr;
    BYTE *refs[3] = {};
    bool ok = scratch != nullptr;
    for (int i = 0; ok && refSize && i < 3; ++i)
        ok = (refs[i] = static_cast<BYTE *>(LocalAlloc(LPTR, refSize))) != nullptr;
    if (!ok) {
        for (int i = 2; i >= 0; --i)
            if (refs[i])
                LocalFree(refs[i]);
        if (scratch)
            LocalFree(scratch);
        if (entries)
            LocalFree(entries);
        OSErrorSetErrorInfo(RV_OutOfLocalMemory);
        return FALSE;
    }
    FreeRefs(r);
    r->cacheEntries = entries;
    r->cacheSize = size;
    r->loadBatch = loadBatch < size ? loadBatch : size;
    r->scratchEntry = scratch;
    r->scratchIndex = kNoIndex;
    r->caretRef = refs[0];
    r->currentRef = refs[1];
    r->anchorRef = refs[2];
    r->refSize = refSize;
    r->endFlags = kAtTop;
    r->caretRefValid = r->currentRefValid = r->anchorRefValid = false;
    r->currentIndex = r->anchorIndex = kNoIndex;
    r->caretIndex = 0;
    r->cacheFirst = r->topIndex = 0;
    r->highWater = 0;
    r->totalItems = total;
    r->callback = callback;
    r->callbackData = data;
    r->typeAhead[0] = 0;
    VLINITREQUEST request = {r->visibleCount, r->loadBatch};
    if (total != -1 && static_cast<DWORD>(total) < request.firstRows)
        request.firstRows = static_cast<DWORD>(total);
    Notify(w, r, VLN_INIT, &request);
    if (!(r = Rec(w)))
        return FALSE;
    UpdateThumb(w, r);
    RepaintAll(w, r);
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_AddItemData(HWND w, LONG index, const void *ref, LPARAM itemData)
{
    return Add(w, index, ref, nullptr, itemData, false);
}

extern "C" BOOL WINAPI DVListBox_AddString(HWND w, LONG index, const void *ref, LPCSTR text,
                                           LPARAM itemData)
{
    if (!Rec(w) || (HasStyle(w, VLS_OWNERDRAW) && !HasStyle(w, VLS_STRINGS)))
        return FALSE;
    return Add(w, index, ref, text, itemData, true);
}

extern "C" BOOL WINAPI DVListBox_SetNumItems(HWND w, LONG total)
{
    DVListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    r->totalItems = total;
    if (!r->moving && r->cacheEntries)
        Move(w, r, r->topIndex, 1);
    if ((r = Rec(w)) != nullptr)
        UpdateThumb(w, r);
    return TRUE;
}

extern "C" LONG WINAPI DVListBox_GetNumItems(HWND w)
{
    DVListRecord *r = Rec(w);
    return r ? Count(r) : -1;
}

extern "C" LONG WINAPI DVListBox_GetCurSel(HWND w)
{
    DVListRecord *r = Rec(w);
    return r && !r->multiSelect ? r->currentIndex : kNoIndex;
}

extern "C" BOOL WINAPI DVListBox_SetCurSelRef(HWND w, const void *ref)
{
    DVListRecord *r = Rec(w);
    if (!r || r->multiSelect)
        return FALSE;
    return SetRef(w, r, kCurrent, ref, false);
}

extern "C" BOOL WINAPI DVListBox_SetCurSel(HWND w, LONG index)
{
    DVListRecord *r = Rec(w);
    if (!r || r->multiSelect)
        return FALSE;
    if (index == kNoIndex)
        return SetRef(w, r, kCurrent, nullptr, false);
    if (r->refSize == 0)
        return FALSE;
    BYTE *ref = static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize));
    if (!ref)
        return FALSE;
    BOOL ok = CopyEntryRef(r, LookUp(w, index, true), ref) && (r = Rec(w)) != nullptr &&
              SetRef(w, r, kCurrent, ref, false);
    LocalFree(ref);
    return ok;
}

extern "C" BOOL WINAPI DVListBox_GetCurSelRef(HWND w, void *buffer)
{
    DVListRecord *r = Rec(w);
    if (!r || r->multiSelect || !r->currentRefValid || !buffer)
        return FALSE;
    memcpy(buffer, r->currentRef, r->refSize);
    return TRUE;
}

extern "C" LONG WINAPI DVListBox_GetCaretIndex(HWND w)
{
    DVListRecord *r = Rec(w);
    return r ? r->caretIndex : -1;
}

extern "C" BOOL WINAPI DVListBox_SetCaretRef(HWND w, const void *ref)
{
    DVListRecord *r = Rec(w);
    return r && SetCaretRef(w, r, ref, false);
}

extern "C" BOOL WINAPI DVListBox_SetCaretIndex(HWND w, LONG index)
{
    DVListRecord *r = Rec(w);
    if (!r || r->refSize == 0)
        return FALSE;
    BYTE *ref = static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize));
    if (!ref)
        return FALSE;
    BOOL ok = CopyEntryRef(r, LookUp(w, index, true), ref) && (r = Rec(w)) != nullptr &&
              SetCaretRef(w, r, ref, false);
    LocalFree(ref);
    return ok;
}

extern "C" BOOL WINAPI DVListBox_GetCaretRef(HWND w, void *buffer)
{
    DVListRecord *r = Rec(w);
    if (!r || !r->caretRefValid || !buffer)
        return FALSE;
    memcpy(buffer, r->caretRef, r->refSize);
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_SetCaretRefNReload(HWND w, const void *ref, BOOL reload)
{
    DVListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    bool update = r->updateEnabled;
    WORD loads = r->loadCount;
    r->updateEnabled = false;
    if (reload) {
        Flush(w, r);
        DropScratch(w, r);
    }
    SetCaretRef(w, r, ref, false);
    if (!(r = Rec(w)))
        return FALSE;
    if (r->loadCount == loads)
        Reload(w, r, r->topIndex);
    if (!(r = Rec(w)))
        return FALSE;
    r->updateEnabled = update;
    if (reload)
        RepaintAll(w, r);
    if (CanPaint(r))
        UpdateWindow(w);
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_GetSelRef(HWND w, const void *ref)
{
    DVListRecord *r = Rec(w);
    return r && r->multiSelect && IsRefSelected(w, r, ref);
}

extern "C" BOOL WINAPI DVListBox_SetSelRef(HWND w, DWORD mode, const void *ref)
{
    DVListRecord *r = Rec(w);
    return r && SetSelRef(w, r, mode, ref);
}

extern "C" BOOL WINAPI DVListBox_GetSel(HWND w, LONG index)
{
    DvEntry *e = Rec(w) ? LookUp(w, index, true) : nullptr;
    return e && (e->flags & kSelected);
}

extern "C" BOOL WINAPI DVListBox_SetSel(HWND w, DWORD mode, LONG index)
{
    DVListRecord *r = Rec(w);
    if (!r || !r->multiSelect || r->refSize == 0)
        return FALSE;
    BYTE *ref = static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize));
    if (!ref)
        return FALSE;
    BOOL ok = CopyEntryRef(r, LookUp(w, index, true), ref) && (r = Rec(w)) != nullptr &&
              SetSelRef(w, r, mode, ref);
    LocalFree(ref);
    return ok;
}

extern "C" DWORD WINAPI DVListBox_GetSelCount(HWND w)
{
    DVListRecord *r = Rec(w);
    return r ? r->selectedCount : 0;
}

extern "C" BOOL WINAPI DVListBox_GetSelItems(HWND w, void *buffer)
{
    DVListRecord *r = Rec(w);
    if (!r || (!buffer && r->selectedCount))
        return FALSE;
    if (!r->selectedCount)
        return TRUE;
    const BYTE *refs = static_cast<const BYTE *>(GlobalLock(r->selectedRefs));
    if (!refs)
        return FALSE;
    memcpy(buffer, refs, static_cast<size_t>(r->selectedCount) * r->refSize);
    GlobalUnlock(r->selectedRefs);
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_SetSelItems(HWND w, DWORD count, const void *refs)
{
    DVListRecord *r = Rec(w);
    if (!r || !r->multiSelect || (count && !refs) || (count && r->refSize == 0))
        return FALSE;
    SelClear(r);
    if (count) {
        // One reference size per reference, whatever that size is.
        SIZE_T bytes = static_cast<SIZE_T>(count) * r->refSize;
        HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
        BYTE *to = block ? static_cast<BYTE *>(GlobalLock(block)) : nullptr;
        if (!to) {
            if (block)
                GlobalFree(block);
            OSErrorSetErrorInfo(RV_OutOfGlobalMemory, static_cast<DWORD>(bytes));
            return FALSE;
        }
        memcpy(to, refs, bytes);
        GlobalUnlock(block);
        r->selectedRefs = block;
        r->selectedCount = count;
        const BYTE *from = static_cast<const BYTE *>(refs);
        for (DWORD i = 0; i < count; ++i) {
            LONG index;
            MarkCached(r, from + static_cast<size_t>(i) * r->refSize, true, &index);
        }
    }
    RepaintAll(w, r);
    return TRUE;
}

extern "C" LONG WINAPI DVListBox_GetTopIndex(HWND w)
{
    DVListRecord *r = Rec(w);
    return r ? r->topIndex : 0;
}

extern "C" BOOL WINAPI DVListBox_SetTopIndex(HWND w, LONG index, BOOL reload)
{
    DVListRecord *r = Rec(w);
    if (!r || !r->cacheEntries)
        return FALSE;
    SetTop(w, r, index, reload != 0, 1);
    return TRUE;
}

extern "C" LPARAM WINAPI DVListBox_GetItemData(HWND w, LONG index)
{
    DVListRecord *r = Rec(w);
    if (!r || r->totalItems == 0)
        return -1;
    DvEntry *e = LookUp(w, index, true);
    return e ? e->itemData : -1;
}

extern "C" BOOL WINAPI DVListBox_GetItemRef(HWND w, LONG index, void *buffer)
{
    DVListRecord *r = Rec(w);
    if (!r || r->refSize == 0 || r->totalItems == 0 || !buffer)
        return FALSE;
    if (r->totalItems != -1 && index >= r->totalItems)
        return FALSE;
    DvEntry *e = LookUp(w, index, true);
    return (r = Rec(w)) != nullptr && CopyEntryRef(r, e, static_cast<BYTE *>(buffer));
}

extern "C" BOOL WINAPI DVListBox_IsItemCached(HWND w, LONG index)
{
    DVListRecord *r = Rec(w);
    return r && Cached(r, index);
}

extern "C" BOOL WINAPI DVListBox_IsItemVisible(HWND w, LONG index)
{
    DVListRecord *r = Rec(w);
    DWORD row;
    return r && RowOf(r, index, &row);
}

extern "C" BOOL WINAPI DVListBox_GetText(HWND w, LONG index, LPSTR buffer)
{
    DvEntry *e = Rec(w) ? LookUp(w, index, true) : nullptr;
    if (e && e->text && buffer)
        lstrcpyA(buffer, e->text);
    return TRUE;
}

extern "C" DWORD WINAPI DVListBox_GetTextLen(HWND w, LONG index)
{
    DvEntry *e = Rec(w) ? LookUp(w, index, true) : nullptr;
    return e && e->text ? lstrlenA(e->text) : 0;
}

extern "C" BOOL WINAPI DVListBox_SetAbsoluteTop(HWND w, LONG n)
{
    DVListRecord *r = Rec(w);
    if (!r)
        return TRUE;
    r->endFlags |= kAtTop;
    r->indexShift = Wrap(-static_cast<long long>(n));
    r->cacheFirst = Wrap(static_cast<long long>(r->cacheFirst) - n);
    struct { LONG *index; bool *valid; } held[] = {
        {&r->caretIndex, &r->caretRefValid}, {&r->currentIndex, &r->currentRefValid},
        {&r->anchorIndex, &r->anchorRefValid}, {&r->scratchIndex, nullptr}};
    for (auto &h : held) {
        if (*h.index == kNoIndex)
            continue;
        *h.index = Wrap(static_cast<long long>(*h.index) - n);
        if (h.valid && *h.index < 0) {
            *h.index = 0;
            *h.valid = false;
        }
    }
    r->highWater = Wrap(static_cast<long long>(r->highWater) - n);
    r->topIndex = Wrap(static_cast<long long>(r->topIndex) - n);
    if (r->topIndex < 0)
        r->topIndex = 0;
    PlaceCache(w, r);
    r->endFlags |= kAtTop;
    r->topFound = true;
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_SetAbsoluteBottom(HWND w, LONG n)
{
    DVListRecord *r = Rec(w);
    if (!r)
        return TRUE;
    r->endFlags |= kAtBottom;
    long long count = Count(r);
    if (count == 0 && n != 0) {
        DVListBox_SetNumItems(w, Wrap(static_cast<long long>(n) + 1));
        if (!(r = Rec(w)))
            return TRUE;
        count = static_cast<long long>(n) + 1;
    }
    long long last = count - 1 > 0 ? count - 1 : 0;
    long long shift = last - n;
    bool highWaterSet = false;
    if (r->totalItems == -1 && shift != 0) {
        r->highWater = Wrap(static_cast<long long>(n) + 1);
        highWaterSet = true;
    }
    r->cacheFirst = Wrap(r->cacheFirst + shift);
    r->topIndex = Wrap(r->topIndex + shift);
    if (r->scratchIndex != kNoIndex)
        r->scratchIndex = Wrap(r->scratchIndex + shift);
    struct { LONG *index; bool *valid; } held[] = {
        {&r->caretIndex, &r->caretRefValid}, {&r->currentIndex, &r->currentRefValid},
        {&r->anchorIndex, &r->anchorRefValid}};
    for (auto &h : held) {
        if (*h.index == kNoIndex)
            continue;
        *h.index = Wrap(*h.index + shift);
        if (*h.index > last) {
            *h.index = Wrap(last);
            *h.valid = false;
        }
    }
    if (!highWaterSet)
        r->highWater = Wrap(r->highWater + shift);
    r->indexShift = Wrap(shift);
    PlaceCache(w, r);
    r->endFlags |= kAtBottom;
    r->bottomFound = true;
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_SetPastTop(HWND w, LONG)
{
    if (DVListRecord *r = Rec(w))
        r->pastTop = true;
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_SetPastBottom(HWND w, LONG)
{
    if (DVListRecord *r = Rec(w))
        r->pastBottom = true;
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_FindItemInCache(HWND w, const void *ref, LONG *index)
{
    DVListRecord *r = Rec(w);
    LONG found;
    if (!r || !FindInCache(r, ref, &found))
        return FALSE;
    if (index)
        *index = found;
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_Invalidate(HWND w)
{
    DVListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    RepaintAll(w, r);
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_InvalidateItem(HWND w, LONG index)
{
    DVListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    RepaintRow(w, r, index);
    return TRUE;
}
