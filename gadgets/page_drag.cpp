// Page hover and drag: which handle lies under the pointer, the focus
// rectangle that follows a drag, and the measure each move writes back
// into the layout, with one notification to the parent per move.
#include "page.h"
#include "gadget_frame.h"

namespace {

const WORD kMeasureChanged = 1;

// Left and top inclusive, right and bottom exclusive.
bool Inside(const RECT &rect, POINT p)
{
    return p.x >= rect.left && p.x < rect.right && p.y >= rect.top && p.y < rect.bottom;
}

void Hover(PageRecord *r, LONG kind, LONG handle, HCURSOR cursor)
{
    r->hoverKind = kind;
    r->hoverHandle = handle;
    r->activeCursor = cursor;
    SetCursor(cursor);
}

// Which sides of the drag's rectangle a handle moves.
struct Sides {
    bool left, top, right, bottom;
};

const Sides kMarginSides[4] = {
    {true, false, false, false}, {false, true, false, false},
    {false, false, true, false}, {false, false, false, true},
};
const Sides kGridSides[2] = {{false, false, true, false}, {false, false, false, true}};
// Top left, top middle, top right, right middle, bottom right, bottom
// middle, bottom left, left middle.
const Sides kCellSides[kPageCellHandles] = {
    {true, true, false, false},  {false, true, false, false}, {false, true, true, false},
    {false, false, true, false}, {false, false, true, true},  {false, false, false, true},
    {true, false, false, true},  {true, false, false, false},
};

Sides SidesOf(LONG kind, LONG handle)
{
    Sides none = {};
    if (kind == PK_Margin && handle >= 0 && handle < 4)
        return kMarginSides[handle];
    if (kind == PK_Grid && handle >= 0 && handle < 2)
        return kGridSides[handle];
    if (kind == PK_Cell && handle >= 0 && handle < kPageCellHandles)
        return kCellSides[handle];
    return none;
}

const RECT &RectOfKind(const PageRecord *r, LONG kind)
{
    return kind == PK_Margin ? r->marginRect : kind == PK_Grid ? r->gridRect : r->cellRect;
}

LONG AtLeast(LONGLONG value, LONG least)
{
    if (value < least)
        return least;
    return value > LONG_MAX ? LONG_MAX : static_cast<LONG>(value);
}

// Writes the measure the handle stands for from the pointer `p`, already
// in layout units; `moved` tells which coordinates the handle carries.
void WriteMeasure(PageRecord *r, POINT p, const Sides &moved)
{
    PageLayout &l = r->layout;
    const LONGLONG x = p.x, y = p.y;
    switch (r->hoverKind) {
    case PK_Margin:
        if (moved.left) l.marginLeft = AtLeast(x, l.minMarginLeft);
        if (moved.top) l.marginTop = AtLeast(y, l.minMarginTop);
        if (moved.right) l.marginRight = AtLeast(l.sheetWidth - x, l.minMarginRight);
        if (moved.bottom) l.marginBottom = AtLeast(l.sheetHeight - y, l.minMarginBottom);
        break;
    case PK_Grid:
        if (moved.right) l.cellWidth = AtLeast(x - l.marginLeft, 0);
        if (moved.bottom) l.cellHeight = AtLeast(y - l.marginTop, 0);
        break;
    case PK_Cell:
        // A side whose converted coordinate is 0 keeps its value; so do
        // the sides the handle does not carry, whose coordinate stays 0.
        if (x != 0 && moved.left) l.cellMarginLeft = AtLeast(x - l.marginLeft, 0);
        if (y != 0 && moved.top) l.cellMarginTop = AtLeast(y - l.marginTop, 0);
        if (x != 0 && moved.right)
            l.cellMarginRight = AtLeast(LONGLONG(l.cellWidth) + l.marginLeft - x, 0);
        if (y != 0 && moved.bottom)
            l.cellMarginBottom = AtLeast(LONGLONG(l.cellHeight) + l.marginTop - y, 0);
        break;
    }
}

}  // namespace

void PageHoverTest(PageRecord *r, POINT p)
{
    r->hoverHandle = -1;
    r->hoverKind = PK_None;
    // A later cell handle may win over an earlier one, but once a side
    // handle has matched, no handle on the same pair of sides overrules it:
    // 1 and 5 end the test of the top and bottom handles, 3 and 7 that of
    // the left and right ones.
    bool topBottomDone = false, leftRightDone = false;
    static const LONG onTopBottom = 0x77, onLeftRight = 0xDD;  // bits by handle number
    HCURSOR cellCursors[kPageCellHandles] = {r->cursorNWSE, r->cursorNorthSouth, r->cursorNESW,
                                             r->cursorEastWest, r->cursorNWSE, r->cursorNorthSouth,
                                             r->cursorNESW, r->cursorEastWest};
    for (LONG i = 0; i < kPageCellHandles; ++i) {
        if ((topBottomDone && (onTopBottom >> i & 1)) || (leftRightDone && (onLeftRight >> i & 1)))
            continue;
        if (!Inside(r->cellHandles[i], p))
            continue;
        Hover(r, PK_Cell, i, cellCursors[i]);
        if (i == 1 || i == 5)
            topBottomDone = true;
        if (i == 3 || i == 7)
            leftRightDone = true;
    }
    if (r->hoverKind != PK_None)
        return;
    for (LONG i = 0; i < 4; ++i)
        if (Inside(r->marginHandles[i], p))
            Hover(r, PK_Margin, i, i % 2 ? r->cursorTopBottom : r->cursorLeftRight);
    if (r->hoverKind != PK_None)
        return;
    // The bottom line first, so that the right line wins where they cross.
    if (Inside(r->gridHandles[1], p))
        Hover(r, PK_Grid, 1, r->cursorTopBottom);
    if (Inside(r->gridHandles[0], p))
        Hover(r, PK_Grid, 0, r->cursorLeftRight);
    if (r->hoverKind != PK_None)
        return;
    r->activeCursor = LoadCursorA(nullptr, IDC_ARROW);
    SetCursor(r->activeCursor);
}

void PageButtonDown(HWND window, PageRecord *r)
{
    if (r->dragHandle != -1)
        return;
    if (r->hoverKind == PK_None) {
        r->zoomed = !r->zoomed;
        InvalidateRect(window, nullptr, TRUE);
        return;
    }
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return;
    }
    r->dragHandle = r->hoverHandle;
    r->dragDC = dc;
    r->dragMoved = 0;
    GetClientRect(window, &r->clientRect);
    r->focusRect = RectOfKind(r, r->hoverKind);
    SetCapture(window);
    DrawFocusRect(dc, &r->focusRect);
}

void PageMouseMove(HWND window, PageRecord *r, POINT p)
{
    if (r->dragHandle == -1) {
        PageHoverTest(r, p);
        return;
    }
    SetCursor(r->activeCursor);
    r->dragMoved = 1;
    DrawFocusRect(r->dragDC, &r->focusRect);
    const Sides sides = SidesOf(r->hoverKind, r->hoverHandle);
    if (sides.left) r->focusRect.left = p.x;
    if (sides.top) r->focusRect.top = p.y;
    if (sides.right) r->focusRect.right = p.x;
    if (sides.bottom) r->focusRect.bottom = p.y;
    DrawFocusRect(r->dragDC, &r->focusRect);
    // Only the coordinates the handle carries are converted; the others
    // stay 0.
    POINT moved = {sides.left || sides.right ? p.x : 0, sides.top || sides.bottom ? p.y : 0};
    bool mapped = PageSetMapping(r->dragDC, r->clientRect, r->layout, r->zoomed != 0);
    if (mapped)
        DPtoLP(r->dragDC, &moved, 1);
    SetMapMode(r->dragDC, MM_TEXT);
    SetViewportOrgEx(r->dragDC, 0, 0, nullptr);
    // A view with no extent cannot say where the pointer is in the layout.
    if (!mapped)
        return;
    WriteMeasure(r, moved, sides);
    GadgetNotifyAlive(window, kMeasureChanged, r);
}

void PageEndDrag(HWND window, PageRecord *r)
{
    if (r->dragHandle == -1)
        return;
    // The drag is over before the capture goes, so that the capture change
    // this causes finds nothing left to end.
    r->dragHandle = -1;
    if (GetCapture() == window)
        ReleaseCapture();
    DrawFocusRect(r->dragDC, &r->focusRect);
    ReleaseDC(window, r->dragDC);
    r->dragDC = nullptr;
    if (r->dragMoved)
        InvalidateRect(window, nullptr, TRUE);
}
