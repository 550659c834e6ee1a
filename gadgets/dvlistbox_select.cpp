// QzDVListBox: the selection store (a sorted block of references) and the
// caret and current selection held as references.
#include "dvlistbox.h"
#include <string.h>

namespace dvl {

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
        if (!RepaintRow(w, r, index))
            return false;
    } else if (!want && found) {
        if (r->selectedCount == 1) {
            SelClear(r);
            if (!RepaintAll(w, r))
                return false;
            return true;
        }
        SelRemove(r, at);
        MarkCached(r, ref, false, &index);
        if (!RepaintRow(w, r, index))
            return false;
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

// ---------------------------------------------------------------- references

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
            if (!RepaintRow(w, r, oldIndex))
                return false;
        if (index != kNoIndex) {
            DWORD row;
            if (RowOf(r, index, &row)) {
                if (index != oldIndex)
                    if (!RepaintRow(w, r, index))
                        return false;
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

}  // namespace dvl
