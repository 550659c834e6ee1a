// "QzVListBox": a list box that holds only a sliding window of its items.
// The host's callback loads what the view needs and is told what leaves the
// window; items are addressed by a 32-bit index from 0.
#include "vlistbox.h"
#include <string.h>

namespace vlb {

// ---------------------------------------------------------------- handlers
LRESULT OnCreate(HWND w)
{
    VListRecord *r = GadgetCreate<VListRecord>(w);
    if (!r)
        return GadgetCreateFailed;
    r->currentSelection = kUnknown;
    r->itemHeight = 1;
    return 0;
}

// Whatever the host does from the releases and VLN_DESTROY (destroy the
// window again, call an export) finds no list; the record is freed once
// everything is told.
void OnDestroy(HWND w, VListRecord *r)
{
    r->dying = true;
    DropCache(w, r);
    Notify(w, r, VLN_DESTROY, nullptr);
    FreeMemoryDC(r);
    EndDrag(w, r);
    GadgetFreeRecord(w, true);
}

bool OnSize(HWND w, VListRecord *r)
{
    return FitRows(w, r) && RebuildMemoryDC(w, r) && PlaceCache(w, r) && Refill(w, r) &&
           RepaintAll(w, r) && UpdateThumb(w, r);
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

bool OnFocus(HWND w, VListRecord *r, bool gained, HWND other)
{
    r->focused = gained;
    if (r->callback) {
        if (!GadgetNotifyAlive(w, gained ? kCodeSetFocus : kCodeKillFocus, r))
            return false;
        VLFOCUSREQUEST request = {other};
        if (!Notify(w, r, gained ? VLN_SETFOCUS : VLN_KILLFOCUS, &request))
            return false;
    }
    return RepaintItem(w, r, r->caretIndex);
}

LRESULT CALLBACK VListProc(HWND w, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(w);
    VListRecord *r = Rec(w);
    if (!r)
        return DefWindowProcA(w, message, wParam, lParam);
    if (VListMouseMessage(w, r, message, wParam, lParam))
        return 0;
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
    case WM_LBUTTONDBLCLK:
        if (HasStyle(w, VLS_NOTIFY)) {
            DWORD index = IndexAt(r, static_cast<short>(HIWORD(lParam)));
            Notify(w, r, VLN_DBLCLK, &index);
        }
        return 0;
    }
    return DefWindowProcA(w, message, wParam, lParam);
}

}  // namespace vlb

using namespace vlb;

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
    if (!DropCache(w, r))
        return FALSE;
    r->currentSelection = kUnknown;
    if (!VListCacheSize(cacheSize, kMaxCache, r->visibleCount, &r->cacheSize)) {
        r->topIndex = 0;
        return FALSE;
    }
    r->loadBatch = loadBatch < r->cacheSize ? loadBatch : r->cacheSize;
    r->callback = callback;
    r->callbackData = data;
    r->totalItems = total;
    r->highWater = 0;
    r->cacheFirst = 0;
    r->topIndex = 0;
    VLINITREQUEST request = {total < r->visibleCount ? total : r->visibleCount, r->loadBatch};
    return VListStartView(w, r, request);
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
            if (!ResizeCache(w, r, total))
                return FALSE;
            r->loadBatch = total;
        } else if (r->topIndex > total - r->visibleCount) {
            r->topIndex = total - r->visibleCount;
        }
    }
    r->totalItems = total;
    if (!PlaceCache(w, r) || !Refill(w, r) || !UpdateThumb(w, r) || !RepaintAll(w, r))
        return FALSE;
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
    if (!MoveMark(w, r, r->currentSelection, index) || !VListBox_SetTopIndex(w, index))
        return FALSE;
    r->caretIndex = index;
    UpdateWindow(w);
    if (!GadgetAlive(w, r))
        return FALSE;
    if (!r->inTextSync && !(SyncText(w, r) && GadgetNotifyAlive(w, kCodeSelChange, r)))
        return FALSE;
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
    return MoveMark(w, r, r->caretIndex, index) ? TRUE : FALSE;
}

extern "C" BOOL WINAPI VListBox_SetSel(HWND w, BOOL /*flag*/, DWORD index)
{
    VListRecord *r = Rec(w);
    if (!r || Single(w))
        return FALSE;
    if (!VListSelAdd(r->selection, index))
        return FALSE;
    return RepaintItem(w, r, index) ? TRUE : FALSE;
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
    return RepaintAll(w, r) ? TRUE : FALSE;
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
    return ScrollTo(w, r, index, 1) ? TRUE : FALSE;
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
