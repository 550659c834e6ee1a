// Page painting: the sheet is laid out in layout units under a mapped
// coordinate system, every edge is taken to device units, and each line is
// drawn one device pixel wide there, so lines stay one pixel at any scale.
// The 14 handle rectangles are computed afresh by every paint.
#include "page.h"
#include "gadget_frame.h"

namespace {

const COLORREF kMarginLine = 0x0000FF;
const COLORREF kGridLine = 0xFFFF00;
const COLORREF kBlack = 0x000000;
const COLORREF kWhite = 0xFFFFFF;
const COLORREF kCellArea = 0x808080;
const WORD kPaintFailed = 2;

struct PaintTools {
    HBRUSH margin, grid, black, white, grey;
    HPEN dotted;
};

// Made in this order, released in reverse; true when all were made.
bool MakeTools(PaintTools &t)
{
    t.margin = CreateSolidBrush(kMarginLine);
    t.grid = t.margin ? CreateSolidBrush(kGridLine) : nullptr;
    t.black = t.grid ? CreateSolidBrush(kBlack) : nullptr;
    t.white = t.black ? CreateSolidBrush(kWhite) : nullptr;
    t.grey = t.white ? CreateSolidBrush(kCellArea) : nullptr;
    t.dotted = t.grey ? CreatePen(PS_DOT, 0, kBlack) : nullptr;
    if (t.dotted)
        return true;
    OSErrorSetErrorInfo(RV_GDIError, t.grey ? "CreatePen" : "CreateSolidBrush");
    return false;
}

void ReleaseTools(PaintTools &t)
{
    HGDIOBJ made[] = {t.dotted, t.grey, t.white, t.black, t.grid, t.margin};
    for (HGDIOBJ object : made)
        if (object)
            DeleteObject(object);
}

// A rectangle `brush` covers with PATCOPY; nothing for an empty one.
void Fill(HDC dc, HBRUSH brush, LONG left, LONG top, LONG right, LONG bottom)
{
    if (right <= left || bottom <= top)
        return;
    HGDIOBJ earlier = SelectObject(dc, brush);
    PatBlt(dc, left, top, right - left, bottom - top, PATCOPY);
    SelectObject(dc, earlier);
}

// A one-pixel frame inside `rect`.
void Frame(HDC dc, HBRUSH brush, const RECT &rect)
{
    if (rect.right <= rect.left || rect.bottom <= rect.top)
        return;
    Fill(dc, brush, rect.left, rect.top, rect.right, rect.top + 1);
    Fill(dc, brush, rect.left, rect.bottom - 1, rect.right, rect.bottom);
    Fill(dc, brush, rect.left, rect.top, rect.left + 1, rect.bottom);
    Fill(dc, brush, rect.right - 1, rect.top, rect.right, rect.bottom);
}

// Layout units to device units along one axis, through the DC's mapping.
// Values far outside the view are held a few views away from it, which
// keeps them off the screen and inside what the mapping can carry.
struct AxisMap {
    LONGLONG low, high;          // the span of layout units the view shows, widened
    LONGLONG viewLow, viewHigh;  // the span itself
};

AxisMap MakeAxis(LONG extent)
{
    LONGLONG e = extent, span = e < 0 ? -e : e;
    LONGLONG viewLow = e < 0 ? e : 0, viewHigh = e > 0 ? e : 0;
    LONGLONG low = viewLow - 2 * span, high = viewHigh + 2 * span;
    AxisMap axis = {low < LONG_MIN ? LONG_MIN : low, high > LONG_MAX ? LONG_MAX : high, viewLow,
                    viewHigh};
    return axis;
}

LONG Held(const AxisMap &axis, LONGLONG value)
{
    return static_cast<LONG>(value < axis.low ? axis.low : value > axis.high ? axis.high : value);
}

// Takes rectangles to device units through the view's mapping, which is
// set for each conversion; the DC draws in MM_TEXT in between.
struct Mapper {
    HDC dc;
    const RECT &client;
    const PageLayout &layout;
    bool zoomed;
    AxisMap x, y;
    // Converts `count` rectangles given as left, top, right, bottom.
    void ToDevice(const LONGLONG *edges, RECT *out, int count) const
    {
        POINT p[4];
        for (int i = 0; i < 2 * count; ++i)
            p[i] = {Held(x, edges[2 * i]), Held(y, edges[2 * i + 1])};
        if (PageSetMapping(dc, client, layout, zoomed)) {
            LPtoDP(dc, p, 2 * count);
            SetMapMode(dc, MM_TEXT);
            SetViewportOrgEx(dc, 0, 0, nullptr);
        }
        for (int i = 0; i < count; ++i)
            out[i] = {p[2 * i].x, p[2 * i].y, p[2 * i + 1].x, p[2 * i + 1].y};
    }
    RECT ToDevice(LONGLONG left, LONGLONG top, LONGLONG right, LONGLONG bottom) const
    {
        const LONGLONG edges[4] = {left, top, right, bottom};
        RECT r;
        ToDevice(edges, &r, 1);
        return r;
    }
};

// The cells along one axis that can show: from `first` to `last`
// inclusive, none when first > last. Cell i starts at origin + i * step
// and is `size` long; the view shows [low, high]. At most `most` cells are
// taken, enough for one per device pixel.
void VisibleCells(LONGLONG origin, LONGLONG size, LONGLONG step, LONG count, LONGLONG low,
                  LONGLONG high, LONG most, LONG &first, LONG &last)
{
    first = 0;
    last = count - 1;
    if (count < 1)
        return;
    // Every cell lies at the same place: one stands for them all.
    if (step == 0) {
        last = 0;
        return;
    }
    // Starts that leave some of the cell in view.
    LONGLONG a = low - 1 - (size > 0 ? size : 0) - origin;
    LONGLONG b = high + 1 - (size < 0 ? size : 0) - origin;
    auto floorDiv = [](LONGLONG n, LONGLONG d) { return n / d - ((n % d != 0) && ((n < 0) != (d < 0))); };
    auto ceilDiv = [&](LONGLONG n, LONGLONG d) { return floorDiv(n, d) + (n % d != 0); };
    LONGLONG from = step > 0 ? ceilDiv(a, step) : ceilDiv(b, step);
    LONGLONG to = step > 0 ? floorDiv(b, step) : floorDiv(a, step);
    if (from < 0)
        from = 0;
    if (to > count - 1)
        to = count - 1;
    if (to - from >= most)
        to = from + most - 1;
    first = static_cast<LONG>(from);
    last = static_cast<LONG>(to);
}

void ComputeHandles(PageRecord *r, bool cells)
{
    const RECT &s = r->sheetRect, &m = r->marginRect;
    auto across = [&](LONG x) { RECT h = {x - 1, s.top, x + 2, s.bottom}; return h; };
    auto down = [&](LONG y) { RECT h = {s.left, y - 1, s.right, y + 2}; return h; };
    r->marginHandles[0] = across(m.left);
    r->marginHandles[1] = down(m.top);
    r->marginHandles[2] = across(m.right);
    r->marginHandles[3] = down(m.bottom);
    const PageLayout &l = r->layout;
    if (l.columns > 1)
        r->gridHandles[0] = across(r->gridRect.right);
    if (l.rows > 1)
        r->gridHandles[1] = down(r->gridRect.bottom);
    if (!cells)
        return;
    const RECT &c = r->cellRect;
    LONG midX = c.left + (c.right - c.left) / 2, midY = c.top + (c.bottom - c.top) / 2;
    const POINT points[kPageCellHandles] = {
        {c.left, c.top}, {midX, c.top},     {c.right, c.top},    {c.right, midY},
        {c.right, c.bottom}, {midX, c.bottom}, {c.left, c.bottom}, {c.left, midY},
    };
    for (int i = 0; i < kPageCellHandles; ++i)
        SetRect(&r->cellHandles[i], points[i].x - 3, points[i].y - 3, points[i].x + 3, points[i].y + 3);
}

// Steps 2 to 8 of the picture, for a view whose window extent is `extent`.
void DrawSheet(HDC dc, PageRecord *r, const PaintTools &t, const RECT &client, SIZE extent)
{
    const PageLayout &l = r->layout;
    Mapper map = {dc, client, l, r->zoomed != 0, MakeAxis(extent.cx), MakeAxis(extent.cy)};
    const LONGLONG width = l.sheetWidth, height = l.sheetHeight;
    const LONGLONG left = l.marginLeft, top = l.marginTop;
    const LONGLONG right = width - l.marginRight, bottom = height - l.marginBottom;
    // The gaps between cells share out what the cells leave of the inner area.
    LONGLONG gx = right - LONGLONG(l.columns) * l.cellWidth - left;
    if (l.columns > 1)
        gx /= l.columns - 1;
    LONGLONG gy = bottom - LONGLONG(l.rows) * l.cellHeight - top;
    if (l.rows > 1)
        gy /= l.rows - 1;

    RECT sheet = map.ToDevice(0, 0, width, height);
    RECT inner = map.ToDevice(left, top, right, bottom);
    RECT firstCell = map.ToDevice(left, top, left + l.cellWidth, top + l.cellHeight);
    const LONGLONG stepX = l.cellWidth + gx, stepY = l.cellHeight + gy;
    LONG c0, c1, r0, r1;
    VisibleCells(left, l.cellWidth, stepX, l.columns, map.x.viewLow, map.x.viewHigh, client.right + 2,
                 c0, c1);
    VisibleCells(top, l.cellHeight, stepY, l.rows, map.y.viewLow, map.y.viewHigh, client.bottom + 2,
                 r0, r1);
    struct Cell { RECT outer, area; };
    auto cellAt = [&](LONG row, LONG column) {
        LONGLONG x = column * stepX + left, y = row * stepY + top;
        const LONGLONG edges[8] = {x, y, x + l.cellWidth, y + l.cellHeight,
                                   x + l.cellMarginLeft, y + l.cellMarginTop,
                                   x + l.cellWidth - l.cellMarginRight, y + l.cellHeight - l.cellMarginBottom};
        RECT rects[2];
        map.ToDevice(edges, rects, 2);
        Cell cell = {rects[0], rects[1]};
        return cell;
    };
    const bool cells = l.columns > 0 && l.rows > 0;
    if (cells)
        r->cellRect = cellAt(0, 0).area;
    else
        SetRectEmpty(&r->cellRect);

    Fill(dc, t.white, sheet.left, sheet.top, sheet.right, sheet.bottom);
    Frame(dc, t.black, sheet);
    r->sheetRect = sheet;
    // The margin lines run across the whole sheet.
    Fill(dc, t.margin, inner.left, sheet.top, inner.left + 1, sheet.bottom);
    Fill(dc, t.margin, inner.right, sheet.top, inner.right + 1, sheet.bottom);
    Fill(dc, t.margin, sheet.left, inner.top, sheet.right, inner.top + 1);
    Fill(dc, t.margin, sheet.left, inner.bottom, sheet.right, inner.bottom + 1);
    r->marginRect = inner;
    r->gridRect = inner;
    r->gridRect.right = firstCell.right;
    r->gridRect.bottom = firstCell.bottom;
    if (l.columns > 1)
        Fill(dc, t.grid, firstCell.right, inner.top, firstCell.right + 1, inner.bottom);
    if (l.rows > 1)
        Fill(dc, t.grid, inner.left, firstCell.bottom, inner.right, firstCell.bottom + 1);
    for (LONG row = r0; cells && row <= r1; ++row)
        for (LONG column = c0; column <= c1; ++column) {
            Cell cell = cellAt(row, column);
            Frame(dc, t.black, cell.outer);
            Fill(dc, t.grey, cell.area.left, cell.area.top, cell.area.right, cell.area.bottom);
        }
    ComputeHandles(r, cells);
    for (const RECT &h : r->cellHandles)
        if (!IsRectEmpty(&h))
            PatBlt(dc, h.left, h.top, h.right - h.left, h.bottom - h.top, DSTINVERT);
}

}  // namespace

bool PageSetMapping(HDC dc, const RECT &viewport, const PageLayout &l, bool zoomed)
{
    LONGLONG ex = l.sheetWidth, ey = l.sheetHeight;
    if (zoomed) {
        ex = LONGLONG(l.cellWidth) + l.marginRight + l.marginLeft;
        ey = LONGLONG(l.cellHeight) + l.marginBottom + l.marginTop;
    }
    LONG vx = viewport.right - viewport.left, vy = viewport.bottom - viewport.top;
    bool fits = ex != 0 && ey != 0 && ex >= LONG_MIN && ex <= LONG_MAX && ey >= LONG_MIN &&
                ey <= LONG_MAX && vx > 0 && vy > 0;
    if (fits && SetMapMode(dc, MM_ANISOTROPIC) && SetWindowOrgEx(dc, 0, 0, nullptr) &&
        SetWindowExtEx(dc, static_cast<int>(ex), static_cast<int>(ey), nullptr) &&
        SetViewportOrgEx(dc, viewport.left, viewport.top, nullptr) &&
        SetViewportExtEx(dc, vx, vy, nullptr))
        return true;
    SetMapMode(dc, MM_TEXT);
    SetViewportOrgEx(dc, 0, 0, nullptr);
    return false;
}

void PagePaint(HWND window, PageRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (!dc) {
        EndPaint(window, &ps);
        return;
    }
    // The background comes from the parent, as for a static control.
    LRESULT brush = SendMessageA(GetParent(window), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc),
                                 reinterpret_cast<LPARAM>(window));
    if (!GadgetAlive(window, r)) {
        EndPaint(window, &ps);
        return;
    }
    if (ps.fErase && brush)
        FillRect(dc, &ps.rcPaint, reinterpret_cast<HBRUSH>(brush));
    ZeroMemory(r->marginHandles, sizeof r->marginHandles);
    ZeroMemory(r->gridHandles, sizeof r->gridHandles);
    ZeroMemory(r->cellHandles, sizeof r->cellHandles);
    PaintTools tools = {};
    if (!MakeTools(tools)) {
        ReleaseTools(tools);
        bool alive = GadgetNotifyAlive(window, kPaintFailed, r);
        (void)alive;
        EndPaint(window, &ps);
        return;
    }
    RECT client;
    GetClientRect(window, &client);
    // A sheet or view with no extent has nothing to show and no handles.
    if (PageSetMapping(dc, client, r->layout, r->zoomed != 0)) {
        SIZE extent = {};
        GetWindowExtEx(dc, &extent);
        SetMapMode(dc, MM_TEXT);
        SetViewportOrgEx(dc, 0, 0, nullptr);
        DrawSheet(dc, r, tools, client, extent);
    }
    ReleaseTools(tools);
    EndPaint(window, &ps);
    // The cursor state is brought in line with what is now shown.
    if (r->dragHandle == -1) {
        POINT origin = {0, 0};
        PageHoverTest(r, origin);
    }
}
