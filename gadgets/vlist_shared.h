// What the two virtual lists share: the selection as a set of index runs,
// the thumb mapping, the glide that moves the window's content towards an
// off-screen copy in slices, the row fit and the sliding of cache entries.
#pragma once
#include <windows.h>
#include "qziso32.h"

// ---------------------------------------------------------------- selection
// A sorted set of item indices held as disjoint, non-adjacent runs, so that
// a run of any length costs one record. The count is kept beside it.
struct VListRun {
    DWORD low;
    DWORD high;  // included
};
struct VListSelection {
    VListRun *runs;  // local block, null when empty
    DWORD runCount;
    DWORD count;     // indices selected
};
bool VListSelContains(const VListSelection &sel, DWORD index);
// Adds or removes one index; false (with the set unchanged and
// RV_OutOfLocalMemory recorded) when the block cannot grow.
bool VListSelAdd(VListSelection &sel, DWORD index);
bool VListSelRemove(VListSelection &sel, DWORD index);
void VListSelClear(VListSelection &sel);
// Replaces the set with the run low..high.
bool VListSelSetRun(VListSelection &sel, DWORD low, DWORD high);
// Copies the indices in ascending order into `buffer`.
void VListSelCopy(const VListSelection &sel, DWORD *buffer);

// ---------------------------------------------------------------- thumb
// The scroll range for `count` items with `visible` rows.
int VListThumbRange(DWORD count, DWORD visible);
// Index to thumb and back; products are taken in 64 bits.
int VListThumbFromIndex(DWORD index, DWORD count, DWORD visible);
DWORD VListIndexFromThumb(int thumb, DWORD count, DWORD visible);
// Sets the bar's range for `count` items where it differs; false when the
// window `record` belongs to is gone after it.
bool VListSetThumbRange(HWND window, const void *record, DWORD count, DWORD visible);
void VListSetThumbPos(HWND window, DWORD top, DWORD count, DWORD visible);
// Keeps the bar of the list `r` in step with its view. SetScrollRange may
// show or hide the bar, which re-enters the window procedure: the record's
// `inScrollRange` turns that inner call into a no-op, and `top(r)` reads
// the first row only once the range is set.
template <typename Record, typename Top>
bool VListSyncThumb(HWND window, Record *r, DWORD count, Top top)
{
    if (r->inScrollRange)
        return true;
    r->inScrollRange = true;
    if (!VListSetThumbRange(window, r, count, r->visibleCount))
        return false;
    VListSetThumbPos(window, top(r), count, r->visibleCount);
    r->inScrollRange = false;
    return true;
}

// ---------------------------------------------------------------- start
// The size of a list's cache: `asked` entries (all ones: `most`), at least
// `visible`; false when more than `most` is asked for.
bool VListCacheSize(DWORD asked, DWORD most, DWORD visible, DWORD *size);
// The end of a list's Initialize: the host is asked for the first rows,
// then the bar and the rows are brought up to date (the list's own Notify,
// UpdateThumb and RepaintAll, found beside its record type). False when
// the window is gone meanwhile or painting fails.
template <typename Record>
BOOL VListStartView(HWND window, Record *r, VLINITREQUEST &request)
{
    return Notify(window, r, VLN_INIT, &request) && UpdateThumb(window, r) && RepaintAll(window, r);
}

// The mouse and capture messages both lists take alike; true when `message`
// was one of them. The list's own OnMouseMove, OnLButtonDown, OnLButtonUp
// and EndDrag are found beside its record type.
template <typename Record>
bool VListMouseMessage(HWND window, Record *r, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_MOUSEMOVE: OnMouseMove(window, r, static_cast<short>(HIWORD(lParam))); return true;
    case WM_LBUTTONDOWN: OnLButtonDown(window, r, wParam, static_cast<short>(HIWORD(lParam))); return true;
    case WM_LBUTTONUP: OnLButtonUp(window, r); return true;
    case WM_CAPTURECHANGED:
        if (reinterpret_cast<HWND>(lParam) != window)
            EndDrag(window, r);
        return true;
    case WM_CANCELMODE:
        if (r->mouseCaptured) {
            EndDrag(window, r);
            ReleaseCapture();
        }
        return true;
    }
    return false;
}

// ---------------------------------------------------------------- glide
// Moves the rows area `rows` of the window's content by `distance` pixels
// (positive: the content moves up) in steps of `step` pixels, copying each
// uncovered slice from `memory`, which already holds the final picture.
// A hidden window is left alone: it shows `memory` when it is shown.
void VListGlide(HWND window, HDC memory, const RECT &rows, int distance, int step);

// ---------------------------------------------------------------- row fit
struct VListRowMetrics {
    int itemHeight;     // at least 1
    DWORD visibleCount; // whole rows in `clientHeight`
    int charWidth;      // average character width of the font
};
// Measures a row with `font` (the system font when null): the text height
// plus its internal leading, or what the callback answers to VLN_MEASURE
// when `ownerDraw` (an answer of 0 keeps the measured height).
VListRowMetrics VListMeasureRows(HWND window, HFONT font, bool ownerDraw, VLISTBOXPROC callback,
                                 LPARAM data, int clientHeight);
// Resizes the window, keeping its width and place, so that its client area
// is `rowsHeight` high.
void VListFitWindow(HWND window, int rowsHeight);

// ---------------------------------------------------------------- memory copy
// A bitmap of the client size in the screen's format, cleared to white and
// selected into a memory context; null (and nothing held) for an empty
// client area or when GDI fails (RV_GDIError recorded). `saved` receives
// what the context held before.
HDC VListCreateMemoryDC(HWND window, HBITMAP *saved);
void VListFreeMemoryDC(HDC &memory, HBITMAP saved);

// ---------------------------------------------------------------- cache
// Slides `count` entries of `entrySize` bytes by `shift` places (positive:
// entry `shift` becomes entry 0) and zeroes the places left behind.
void VListShiftEntries(void *entries, DWORD count, size_t entrySize, long long shift);

// ---------------------------------------------------------------- painting
// What painting rows selects into a context: the list's font (the system
// font when null) and a brush of the window colour. VListEndRowPaint puts
// back what the context held and frees the brush.
struct VListRowPaint {
    HDC dc;
    HGDIOBJ oldFont;
    HBRUSH brush;
    HGDIOBJ oldBrush;
};
// A brush that cannot be made leaves `brush` null, with RV_GDIError recorded.
VListRowPaint VListBeginRowPaint(HDC dc, HFONT font);
void VListEndRowPaint(const VListRowPaint &paint);
// Copies `area` of the off-screen copy `memory` to the same place on `dc`.
void VListCopyArea(HDC dc, const RECT &area, HDC memory);

// ---------------------------------------------------------------- auto scroll
// Starts (`on`) or stops the timer `id`, keeping `running` in step; does
// nothing when it already is in that state.
void VListSetAutoScroll(HWND window, UINT_PTR id, bool &running, bool on);
// Sends the window a mouse move at the cursor's place, so that a drag held
// outside the rows goes on scrolling while the timer runs.
void VListReplayMouseMove(HWND window);
