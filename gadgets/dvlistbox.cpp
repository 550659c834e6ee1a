// "QzDVListBox": a virtual list over data whose length and ends need not be
// known. Items are known by references, blocks of a fixed size that the host
// gives; an index is only a place on a number line that the list shifts when
// the host reports an end of its data during a load. Caret, selection and
// anchor are held as references with an index beside them, and the indices
// are found again after every load.
#include "dvlistbox.h"
#include <string.h>

namespace dvl {

// ---------------------------------------------------------------- handlers
LRESULT OnCreate(HWND w)
{
    DVListRecord *r = GadgetCreate<DVListRecord>(w);
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
bool DropItems(HWND w, DVListRecord *r)
{
    if (!Flush(w, r))
        return false;
    if (r->cacheEntries)
        LocalFree(r->cacheEntries);
    r->cacheEntries = nullptr;
    SelClear(r);
    if (!DropScratch(w, r))
        return false;
    if (r->scratchEntry)
        LocalFree(r->scratchEntry);
    r->scratchEntry = nullptr;
    return true;
}

// Whatever the host does from the releases and VLN_DESTROY finds no list;
// the record is freed at the end.
void OnDestroy(HWND w, DVListRecord *r)
{
    r->dying = true;
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
    if (!FitRows(w, r))
        return;
    if (HasStyle(w, VLS_DOUBLEBUFFER)) {
        VListFreeMemoryDC(r->memoryDC, r->savedBitmap);
        r->memoryDC = VListCreateMemoryDC(w, &r->savedBitmap);
    }
    Move(w, r, r->topIndex, r->itemHeight);
    if (!(r = Rec(w)))
        return;
    r->updateEnabled = true;
    if (!RepaintAll(w, r))
        return;
    if (!UpdateThumb(w, r))
        return;
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
        if (!PaintRows(w, r, dc, &ps.rcPaint))
            return;
    EndPaint(w, &ps);
}

void OnFocus(HWND w, DVListRecord *r, bool gained, HWND other)
{
    r->focused = gained;
    VLFOCUSREQUEST request = {other};
    Notify(w, r, gained ? VLN_SETFOCUS : VLN_KILLFOCUS, &request);
    if ((r = Rec(w)) != nullptr)
        if (!RepaintRow(w, r, r->caretIndex))
            return;
}

LRESULT DVListProc(HWND w, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(w);
    DVListRecord *r = Rec(w);
    if (!r)
        return DefWindowProcA(w, message, wParam, lParam);
    if (VListMouseMessage(w, r, message, wParam, lParam))
        return 0;
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
    case WM_LBUTTONDBLCLK:
        if (HasStyle(w, VLS_NOTIFY) && r->itemHeight > 0) {
            LONG index = IndexAt(r, static_cast<short>(HIWORD(lParam)));
            Notify(w, r, VLN_DBLCLK, &index);
        }
        return 0;
    }
    return DefWindowProcA(w, message, wParam, lParam);
}

}  // namespace dvl

using namespace dvl;

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
    if (!r || !DropItems(w, r))
        return FALSE;
    r->multiSelect = HasStyle(w, VLS_EXTENDEDSEL) || HasStyle(w, VLS_MULTIPLESEL);
    DWORD size;
    if (!VListCacheSize(cacheSize, kMaxCache, r->visibleCount, &size))
        return FALSE;
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
    return VListStartView(w, r, request);
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
        if (!UpdateThumb(w, r))
            return FALSE;
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
    if (!ref) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, r->refSize);
        return FALSE;
    }
    DvEntry *e = LookUp(w, index, true);  // the host may destroy the list meanwhile
    BOOL ok = GadgetAlive(w, r) && CopyEntryRef(r, e, ref) && SetRef(w, r, kCurrent, ref, false);
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
    BOOL ok = LookUpRef(w, r, index, ref) &&
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
    if (reload && (!Flush(w, r) || !DropScratch(w, r)))
        return FALSE;
    SetCaretRef(w, r, ref, false);
    if (!(r = Rec(w)))
        return FALSE;
    if (r->loadCount == loads)
        Reload(w, r, r->topIndex);
    if (!(r = Rec(w)))
        return FALSE;
    r->updateEnabled = update;
    if (reload)
        if (!RepaintAll(w, r))
            return FALSE;
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
    BOOL ok = LookUpRef(w, r, index, ref) &&
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
    if (!RepaintAll(w, r))
        return FALSE;
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
    if (!PlaceCache(w, r))
        return FALSE;
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
    if (!PlaceCache(w, r))
        return FALSE;
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
    if (!RepaintAll(w, r))
        return FALSE;
    return TRUE;
}

extern "C" BOOL WINAPI DVListBox_InvalidateItem(HWND w, LONG index)
{
    DVListRecord *r = Rec(w);
    if (!r)
        return FALSE;
    if (!RepaintRow(w, r, index))
        return FALSE;
    return TRUE;
}
