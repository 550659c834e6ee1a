// Page: the record the window procedure, the painter and the drag share.
// Measures live in the host's unit ("layout units"); every rectangle kept
// here is in device units of the client area, for hit testing.
#pragma once
#include <windows.h>
#include <climits>
#include "qziso32.h"

static_assert(sizeof(PageLayout) == 21 * 4, "PageLayout keeps its 32-bit layout");

// Which family of handles a hover or drag is on.
enum PageHandleKind : LONG {
    PK_None = -1,
    PK_Margin = 0,  // marginHandles: left, top, right, bottom
    PK_Grid = 1,    // gridHandles: the first cell's right line, its bottom line
    PK_Cell = 2,    // cellHandles: the eight points of the first cell's inner area
};

const int kPageCellHandles = 8;

struct PageRecord {
    RECT marginHandles[4];
    RECT gridHandles[2];
    RECT cellHandles[kPageCellHandles];  // top left, then clockwise to left middle
    RECT marginRect;                     // the area inside the sheet margins
    RECT sheetRect;                      // the paper
    RECT gridRect;                       // the first cell, out to its grid lines
    RECT cellRect;                       // the first cell's inner area
    HCURSOR cursorTopBottom, cursorLeftRight;  // from the resource library
    HCURSOR cursorNorthSouth, cursorEastWest, cursorNESW, cursorNWSE;
    LONG zoomed;        // 1: the view shows one cell with the sheet margins round it
    LONG dragHandle;    // -1 when no drag runs
    LONG hoverHandle;   // under the pointer, or being dragged; -1 none
    LONG hoverKind;     // PageHandleKind
    HDC dragDC;         // held from the press to the release
    LONG dragMoved;     // the pointer moved during this drag
    RECT clientRect;    // the client area at the press: the drag's viewport
    HCURSOR activeCursor;
    RECT focusRect;     // where the drag's focus rectangle stands
    PageLayout layout;
};

// Sets `dc` to show `layout` in `viewport`: MM_ANISOTROPIC, window origin 0,
// the sheet's extents (or, zoomed, one cell with the sheet margins round
// it). False, with the DC back in MM_TEXT, when an extent is zero or does
// not fit a 32-bit value: such a view cannot be mapped.
bool PageSetMapping(HDC dc, const RECT &viewport, const PageLayout &layout, bool zoomed);

// WM_PAINT.
void PagePaint(HWND window, PageRecord *r);

// The pointer at `point` when no drag runs: sets hoverKind, hoverHandle
// and the cursor.
void PageHoverTest(PageRecord *r, POINT point);
void PageMouseMove(HWND window, PageRecord *r, POINT point);
void PageButtonDown(HWND window, PageRecord *r);
// Ends a running drag: on the release, and when the capture is lost or the
// mode cancelled. Nothing when no drag runs.
void PageEndDrag(HWND window, PageRecord *r);
