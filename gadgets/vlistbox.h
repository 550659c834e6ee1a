// The QzVListBox's record and what its units share: the cache and its
// lookups, painting and scrolling, input and the window procedure
// (vlistbox_*.cpp; the exports are in vlistbox.cpp).
#pragma once
#include "gadget_frame.h"
#include "vlist_shared.h"
#include "qziso32.h"

namespace vlb {

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
    DWORD cacheCapacity;  // entries the array holds; cacheSize never exceeds it once made
    bool dying;           // WM_DESTROY is releasing everything
};

// The record, or null; while WM_DESTROY runs, the record belongs to it
// alone and the exports and messages find none.
inline VListRecord *Rec(HWND w)
{
    VListRecord *r = w ? GadgetRecord<VListRecord>(w) : nullptr;
    return r && !r->dying ? r : nullptr;
}
inline bool HasStyle(HWND w, DWORD mask) { return (GetWindowLongA(w, GWL_STYLE) & mask) == mask; }
inline bool Extended(HWND w) { return HasStyle(w, VLS_EXTENDEDSEL); }
inline bool Multiple(HWND w) { return HasStyle(w, VLS_MULTIPLESEL); }
inline bool Single(HWND w) { return !Extended(w) && !Multiple(w); }
inline DWORD Count(const VListRecord *r) { return r->totalItems != kUnknown ? r->totalItems : r->highWater; }

// A helper that may hand control to the host (a callback, a notification,
// a message that re-enters the procedure) answers whether the gadget still
// lives afterwards; on false its caller returns at once without touching
// the record.

// ---------------------------------------------------------------- cache and lookups
bool Notify(HWND w, VListRecord *r, UINT code, void *request);
bool ReportError(HWND w);
bool Valid(const VListRecord *r, DWORD pos);
CacheEntry *Cached(VListRecord *r, DWORD index);
bool IsSelected(HWND w, const VListRecord *r, DWORD index);
bool ReleaseEntry(HWND w, VListRecord *r, DWORD pos);
bool DropCache(HWND w, VListRecord *r);
DWORD WindowStart(const VListRecord *r, DWORD size);
bool PlaceCache(HWND w, VListRecord *r);
bool Load(HWND w, VListRecord *r, DWORD first, DWORD last);
bool Refill(HWND w, VListRecord *r);
bool ResizeCache(HWND w, VListRecord *r, DWORD size);
bool RaiseHighWater(HWND w, VListRecord *r, DWORD index);
BOOL Add(HWND w, DWORD index, const char *text, LPARAM data, bool isString);
bool LookUp(HWND w, DWORD index, CacheEntry *answer);
// ---------------------------------------------------------------- painting, scrolling, selection and row fit
RECT RowRect(const VListRecord *r, DWORD row);
RECT RowsRect(const VListRecord *r);
bool PaintRow(HWND w, VListRecord *r, HDC dc, DWORD row);
bool PaintRows(HWND w, VListRecord *r, HDC dc, DWORD first, DWORD last, bool all);
bool RepaintAll(HWND w, VListRecord *r);
bool RepaintItem(HWND w, VListRecord *r, DWORD index);
bool MoveMark(HWND w, VListRecord *r, DWORD &mark, DWORD index);
bool UpdateThumb(HWND w, VListRecord *r);
DWORD ClampTop(const VListRecord *r, DWORD top);
bool ScrollTo(HWND w, VListRecord *r, DWORD top, int step);
bool SyncText(HWND w, VListRecord *r);
bool SelChanged(HWND w, VListRecord *r);
bool Toggle(HWND w, VListRecord *r, DWORD index);
bool SelectRun(HWND w, VListRecord *r);
bool RangeWalk(HWND w, VListRecord *r, DWORD p, DWORD q);
bool FitRows(HWND w, VListRecord *r);
void FreeMemoryDC(VListRecord *r);
bool RebuildMemoryDC(HWND w, VListRecord *r);
// ---------------------------------------------------------------- input
bool FollowCaret(HWND w, VListRecord *r, int step);
void EndDrag(HWND w, VListRecord *r);
bool SelAndParent(HWND w, VListRecord *r);
void OnKeyDown(HWND w, VListRecord *r, WPARAM key);
DWORD IndexAt(const VListRecord *r, int y);
void OnLButtonDown(HWND w, VListRecord *r, WPARAM keys, int y);
void OnMouseMove(HWND w, VListRecord *r, int y);
void OnLButtonUp(HWND w, VListRecord *r);
void OnSetText(HWND w, VListRecord *r, const char *text);
// ---------------------------------------------------------------- window procedure
LRESULT OnCreate(HWND w);
void OnDestroy(HWND w, VListRecord *r);
bool OnSize(HWND w, VListRecord *r);
void OnPaint(HWND w, VListRecord *r);
bool OnFocus(HWND w, VListRecord *r, bool gained, HWND other);
LRESULT CALLBACK VListProc(HWND w, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace vlb
