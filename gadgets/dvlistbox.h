// The QzDVListBox's record and what its units share: the cache and its
// lookups, the selection store, painting and moves, input and the window
// procedure (dvlistbox_*.cpp; the exports are in dvlistbox.cpp).
#pragma once
#include "gadget_frame.h"
#include "vlist_shared.h"
#include "qziso32.h"

namespace dvl {

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
    bool dying;           // WM_DESTROY is releasing everything
};


// The record, or null; while WM_DESTROY runs, the record belongs to it
// alone and the exports and messages find none.
inline DVListRecord *Rec(HWND w)
{
    DVListRecord *r = w ? GadgetRecord<DVListRecord>(w) : nullptr;
    return r && !r->dying ? r : nullptr;
}
inline bool HasStyle(HWND w, DWORD mask) { return (GetWindowLongA(w, GWL_STYLE) & mask) == mask; }
inline bool Extended(HWND w) { return HasStyle(w, VLS_EXTENDEDSEL); }
inline bool Multiple(HWND w) { return HasStyle(w, VLS_MULTIPLESEL); }
inline bool Single(HWND w) { return !Extended(w) && !Multiple(w); }
// Index arithmetic wraps as 32-bit signed numbers do.
inline LONG Wrap(long long v) { return static_cast<LONG>(static_cast<DWORD>(static_cast<unsigned long long>(v))); }
inline LONG Count(const DVListRecord *r) { return r->totalItems != -1 ? r->totalItems : r->highWater; }
inline bool CanPaint(const DVListRecord *r) { return r->redrawEnabled && r->updateEnabled; }

enum Which { kCaret, kCurrent };

// ---------------------------------------------------------------- cache and lookups
bool Notify(HWND w, DVListRecord *r, UINT code, void *request);
void ReportError(HWND w);
void ClearLoadFlags(DVListRecord *r);
bool AnyEndReport(const DVListRecord *r);
bool InWindow(const DVListRecord *r, LONG index);
DvEntry *Slot(DVListRecord *r, LONG index);
DvEntry *Cached(DVListRecord *r, LONG index);
bool SameRef(const DVListRecord *r, const BYTE *a, const void *b);
bool ReleaseEntry(HWND w, DVListRecord *r, DvEntry &entry, LONG index);
bool DropScratch(HWND w, DVListRecord *r);
bool Flush(HWND w, DVListRecord *r);
bool FindInCache(DVListRecord *r, const void *ref, LONG *index);
long long WindowStart(const DVListRecord *r, DWORD size);
bool PlaceCache(HWND w, DVListRecord *r);
void Load(HWND w, DVListRecord *r, LONG first, LONG last);
bool Possible(const DVListRecord *r, LONG index);
void Resolve(DVListRecord *r, bool valid, const BYTE *ref, LONG &index, long long f, long long l);
void Refill(HWND w, DVListRecord *r);
DvEntry *LookUp(HWND w, LONG index, bool load);
bool LookUpRef(HWND w, DVListRecord *r, LONG index, BYTE *to);
BOOL Add(HWND w, LONG index, const void *ref, const char *text, LPARAM data, bool isString);
// ---------------------------------------------------------------- selection and references
DWORD SelSearch(const DVListRecord *r, const BYTE *refs, const void *ref, bool *found);
bool IsRefSelected(HWND w, const DVListRecord *r, const void *ref);
void MarkCached(DVListRecord *r, const void *ref, bool selected, LONG *index);
bool SelInsert(DVListRecord *r, const void *ref, DWORD at);
void SelRemove(DVListRecord *r, DWORD at);
void SelClear(DVListRecord *r);
bool SetSelRef(HWND w, DVListRecord *r, DWORD mode, const void *ref);
bool CopyEntryRef(const DVListRecord *r, const DvEntry *e, BYTE *to);
void SelectRange(HWND w, DVListRecord *r, LONG low, LONG high, DWORD mode);
bool SetRef(HWND w, DVListRecord *r, Which which, const void *ref, bool reloadAsked);
bool SetCaretRef(HWND w, DVListRecord *r, const void *ref, bool reload);
// ---------------------------------------------------------------- painting, moves and row fit
RECT RowRect(HWND w, const DVListRecord *r, DWORD row);
bool PaintRow(HWND w, DVListRecord *r, HDC dc, DWORD row);
bool PaintRows(HWND w, DVListRecord *r, HDC dc, const RECT *clip);
bool RepaintAll(HWND w, DVListRecord *r);
bool RowOf(const DVListRecord *r, LONG index, DWORD *row);
bool RepaintRow(HWND w, DVListRecord *r, LONG index);
bool UpdateThumb(HWND w, DVListRecord *r);
LONG ClampTop(const DVListRecord *r, LONG top);
enum Settle { kSettleUp, kSettleDown, kSettleReload, kSettleAtEnd };
bool SettleTop(HWND w, DVListRecord *&r, LONG newTop, LONG &oldTop, Settle how);
void Move(HWND w, DVListRecord *r, LONG top, int step);
void Reload(HWND w, DVListRecord *r, LONG top);
void SetTop(HWND w, DVListRecord *r, LONG index, bool reload, int step);
void ShowIndex(HWND w, DVListRecord *r, LONG index, bool reload, int step);
bool FitRows(HWND w, DVListRecord *r);
// ---------------------------------------------------------------- input
void SelChange(HWND w, DVListRecord *r);
bool TakeCaretEntry(HWND w, DVListRecord *r, bool load);
void ShiftStep(HWND w, DVListRecord *r, LONG p);
bool NothingSelected(HWND w, const DVListRecord *r);
void OnKeyDown(HWND w, DVListRecord *r, WPARAM key);
LONG IndexAt(const DVListRecord *r, int y);
void OnLButtonDown(HWND w, DVListRecord *r, WPARAM keys, int y);
void OnMouseMove(HWND w, DVListRecord *r, int y);
void OnLButtonUp(HWND w, DVListRecord *r);
void EndDrag(HWND w, DVListRecord *r);
void OnChar(HWND w, DVListRecord *r, WPARAM ch, LPARAM lParam);
void Search(HWND w, DVListRecord *r, const char *text, BYTE *ref, DVLSEARCHREQUEST *request);
void OnTypeAheadTimer(HWND w, DVListRecord *r);
void AlphaThumb(HWND w, DVListRecord *r, LONG mapped);
void OnVScroll(HWND w, DVListRecord *r, WORD request, int thumb);
// ---------------------------------------------------------------- window procedure
LRESULT OnCreate(HWND w);
void FreeRefs(DVListRecord *r);
bool DropItems(HWND w, DVListRecord *r);
void OnDestroy(HWND w, DVListRecord *r);
void OnSize(HWND w, DVListRecord *r);
void OnPaint(HWND w, DVListRecord *r);
void OnFocus(HWND w, DVListRecord *r, bool gained, HWND other);
LRESULT DVListProc(HWND w, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace dvl
