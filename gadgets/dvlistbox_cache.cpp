// QzDVListBox: the sliding cache of entries, the loads that fill it, the
// one-item lookups and the adds the host makes from its callback.
#include "dvlistbox.h"
#include <string.h>

namespace dvl {

bool Notify(HWND w, DVListRecord *r, UINT code, void *request)
{
    if (r->callback)
        r->callback(w, code, request, r->callbackData);
    return GadgetAlive(w, r);
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
bool ReleaseEntry(HWND w, DVListRecord *r, DvEntry &entry, LONG index)
{
    if (!(entry.flags & kValid))
        return true;
    DvEntry gone = entry;
    memset(&entry, 0, sizeof entry);
    DVLRELEASEREQUEST request = {index, gone.itemData, gone.text};
    bool alive = Notify(w, r, VLN_RELEASE, &request);
    if (gone.ref)
        LocalFree(gone.ref);
    if (gone.text)
        LocalFree(gone.text);
    return alive;
}

bool DropScratch(HWND w, DVListRecord *r)
{
    if (r->scratchEntry && !ReleaseEntry(w, r, *r->scratchEntry, r->scratchIndex))
        return false;
    r->scratchIndex = kNoIndex;
    return true;
}

// Releases every entry; what the list knew of the ends goes with them.
bool Flush(HWND w, DVListRecord *r)
{
    for (DWORD p = 0; r->cacheEntries && p < r->cacheSize; ++p)
        if (!ReleaseEntry(w, r, r->cacheEntries[p], Wrap(static_cast<long long>(r->cacheFirst) + p)))
            return false;
    r->endFlags &= ~(kAtTop | kAtBottom);
    ++r->flushCount;
    return true;
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

bool PlaceCache(HWND w, DVListRecord *r)
{
    long long first = r->cacheFirst, size = r->cacheSize, top = r->topIndex;
    if (first <= top && top + r->visibleCount <= first + size)
        return true;
    long long newFirst = WindowStart(r, r->cacheSize);
    for (DWORD p = 0; r->cacheEntries && p < r->cacheSize; ++p) {
        long long index = first + p;
        if ((index < newFirst || index >= newFirst + size) &&
            !ReleaseEntry(w, r, r->cacheEntries[p], Wrap(index)))
            return false;
    }
    if (newFirst > first)
        r->endFlags &= ~kAtTop;
    if (newFirst < first)
        r->endFlags &= ~kAtBottom;
    if (r->cacheEntries)
        VListShiftEntries(r->cacheEntries, r->cacheSize, sizeof(DvEntry), newFirst - first);
    r->cacheFirst = Wrap(newFirst);
    return true;
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
    // f through f + loadBatch, both included: a last run may hold loadBatch + 1.
    long long l = f + r->loadBatch < windowEnd ? f + r->loadBatch : windowEnd;
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

// The reference of one item (asked for if need be) into `to`; false when
// there is none, or when the host destroyed the list meanwhile.
bool LookUpRef(HWND w, DVListRecord *r, LONG index, BYTE *to)
{
    DvEntry *e = LookUp(w, index, true);
    return GadgetAlive(w, r) && CopyEntryRef(r, e, to);
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
            if (!DropScratch(w, r))
                return nullptr;
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
        if (!UpdateThumb(w, r))
            return FALSE;
    }
    DWORD row;
    if ((r = Rec(w)) != nullptr && !scratch && RowOf(r, index, &row)) {
        if (r->moving)
            r->addedOnView = true;
        else
            if (!RepaintRow(w, r, index))
                return FALSE;
    }
    return TRUE;
}

}  // namespace dvl
