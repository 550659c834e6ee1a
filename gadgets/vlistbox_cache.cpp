// QzVListBox: the sliding window of entries, the loads that fill it, the
// adds the host makes from its callback and the one-item lookups.
#include "vlistbox.h"
#include <string.h>

namespace vlb {

bool Notify(HWND w, VListRecord *r, UINT code, void *request)
{
    if (r->callback)
        r->callback(w, code, request, r->callbackData);
    return GadgetAlive(w, r);
}

bool ReportError(HWND w)
{
    VListRecord *r = Rec(w);
    return r && Notify(w, r, VLN_ERROR, nullptr);
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

bool ReleaseEntry(HWND w, VListRecord *r, DWORD pos)
{
    CacheEntry e = r->cacheEntries[pos];
    if (!e.valid)
        return true;
    memset(&r->cacheEntries[pos], 0, sizeof(CacheEntry));
    VLRELEASEREQUEST request = {r->cacheFirst + pos, e.itemData, e.text};
    bool alive = Notify(w, r, VLN_RELEASE, &request);
    if (e.text)
        LocalFree(e.text);
    return alive;
}

// Releases every entry, frees the cache and the selection; a scratch entry
// left here belongs to the lookup that is running and is freed by it.
bool DropCache(HWND w, VListRecord *r)
{
    if (r->cacheEntries) {
        for (DWORD p = 0; p < r->cacheSize && r->cacheEntries; ++p)
            if (!ReleaseEntry(w, r, p))
                return false;
        if (r->cacheEntries)
            LocalFree(r->cacheEntries);
        r->cacheEntries = nullptr;
        r->cacheCapacity = 0;
    }
    VListSelClear(r->selection);
    r->scratchEntry = nullptr;
    return true;
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

bool PlaceCache(HWND w, VListRecord *r)
{
    unsigned long long first = r->cacheFirst, size = r->cacheSize;
    if (first <= r->topIndex && first + size >= static_cast<unsigned long long>(r->topIndex) +
                                                       r->visibleCount)
        return true;
    DWORD newFirst = WindowStart(r, r->cacheSize);
    if (r->cacheEntries) {
        for (DWORD p = 0; p < r->cacheSize && r->cacheEntries; ++p) {
            unsigned long long index = first + p;
            if (index < newFirst || index >= static_cast<unsigned long long>(newFirst) + size) {
                if (!ReleaseEntry(w, r, p))
                    return false;
                // The host moved the view or sized the window from the
                // release: start again from what the record says now.
                if (r->cacheFirst != first || r->cacheSize != size)
                    return PlaceCache(w, r);
            }
        }
    }
    if (r->cacheEntries)
        VListShiftEntries(r->cacheEntries, r->cacheSize, sizeof(CacheEntry),
                          static_cast<long long>(newFirst) - static_cast<long long>(first));
    r->cacheFirst = newFirst;
    return true;
}

// Makes the window `size` entries long. Entries past a shorter window are
// released at once (an entry lives exactly as long as it stays inside the
// window); a longer one grows the array, keeping the entries it holds.
bool ResizeCache(HWND w, VListRecord *r, DWORD size)
{
    for (DWORD p = size; p < r->cacheSize && r->cacheEntries; ++p)
        if (!ReleaseEntry(w, r, p))
            return false;
    if (r->cacheEntries && size > r->cacheCapacity) {
        SIZE_T bytes = static_cast<SIZE_T>(size) * sizeof(CacheEntry);
        CacheEntry *grown = bytes / sizeof(CacheEntry) == size
                                ? static_cast<CacheEntry *>(LocalAlloc(LPTR, bytes))
                                : nullptr;
        if (!grown) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(bytes));
            return ReportError(w);  // the window keeps the size it has
        }
        DWORD kept = r->cacheSize < size ? r->cacheSize : size;
        memcpy(grown, r->cacheEntries, kept * sizeof(CacheEntry));
        LocalFree(r->cacheEntries);
        r->cacheEntries = grown;
        r->cacheCapacity = size;
    }
    r->cacheSize = size;
    return true;
}

bool Load(HWND w, VListRecord *r, DWORD first, DWORD last)
{
    VLLOADREQUEST request = {first, last};
    return Notify(w, r, VLN_LOAD, &request);
}

bool Refill(HWND w, VListRecord *r)
{
    if (!r->callback || r->totalItems == 0 || r->cacheSize == 0)
        return true;
    bool complete = true;
    for (DWORD row = 0; row < r->visibleCount && complete; ++row) {
        DWORD index = r->topIndex + row;
        if (r->totalItems != kUnknown && index >= r->totalItems)
            break;
        complete = Cached(r, index) != nullptr;
    }
    if (complete)
        return true;
    DWORD start = WindowStart(r, r->loadBatch);
    DWORD end = r->cacheSize;  // positions in the window
    if (r->totalItems != kUnknown && r->totalItems - r->cacheFirst < end)
        end = r->totalItems - r->cacheFirst;
    DWORD pos = start > r->cacheFirst ? start - r->cacheFirst : 0;
    while (pos < end && Valid(r, pos))
        ++pos;
    DWORD limit = pos + r->loadBatch < end ? pos + r->loadBatch : end;
    DWORD runStart = kUnknown;
    DWORD first = r->cacheFirst;
    for (; pos < limit; ++pos) {
        // A load may have moved or shrunk the window (the host re-sized it,
        // or set a total): this refill then ends, the next one goes on.
        if (r->cacheFirst != first || limit > r->cacheSize)
            return true;
        if (!Valid(r, pos)) {
            if (runStart == kUnknown)
                runStart = pos;
        } else if (runStart != kUnknown) {
            if (!Load(w, r, first + runStart, first + pos - 1))
                return false;
            runStart = kUnknown;
        }
    }
    // A trailing run of one waits for the next refill.
    if (runStart != kUnknown && limit - runStart >= 2)
        return Load(w, r, first + runStart, first + limit - 1);
    return true;
}

// After an add to a list of unknown length: the count reaches past `index`.
bool RaiseHighWater(HWND w, VListRecord *r, DWORD index)
{
    if (r->totalItems != kUnknown)
        return true;
    if (static_cast<unsigned long long>(index) + 1 > r->highWater)
        r->highWater = index + 1;
    return UpdateThumb(w, r);
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
        return RaiseHighWater(w, r, index) ? TRUE : FALSE;
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
        r->cacheSize = r->cacheCapacity = static_cast<DWORD>(count);
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
    return RaiseHighWater(w, r, index) ? TRUE : FALSE;
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

}  // namespace vlb
