// SuperText: a scrolling canvas whose parent does the drawing. The gadget
// asks the parent how large the content is (WM_MEASUREITEM), gives it
// scroll bars for what does not fit, and has it paint the whole content
// offset by the scroll positions (WM_DRAWITEM); the background is the
// parent's static brush.
#include "gadget_frame.h"
#include "qziso32.h"

namespace {

struct SuperTextRecord {
    // Type, control id, the DC in the item slot, the parent's width and
    // height, and a spare word. On 64-bit the spare word carries the DC
    // whole, since the item slot holds only its low half there.
    MEASUREITEMSTRUCT measure;
    RECT client;         // client rectangle at the last measuring
    HFONT font;          // the stock system font when none is given
    DWORD contentWidth;  // as the parent answered
    DWORD contentHeight;
    LONG measured;       // measuring has run since create
};

#if !defined(_WIN64)
static_assert(sizeof(MEASUREITEMSTRUCT) == 24, "the measure block is six 32-bit words");
#endif

const UINT kOwnerDrawType = 4;
// Measuring runs again from WM_SIZE when showing a bar resizes the client;
// deeper than this it is left to the outer measuring.
const int kMostNesting = 3;

// Cleared while the bars are hidden, so the WM_SIZE that hiding causes does
// not measure again. Shared by every SuperText of the process.
LONG g_measureOnSize = 1;
int g_nesting = 0;

SuperTextRecord *Record(HWND window) { return GadgetRecord<SuperTextRecord>(window); }

bool HasBar(HWND window, DWORD styleBit)
{
    return (GetWindowLongPtrA(window, GWL_STYLE) & styleBit) != 0;
}

void HideBar(HWND window, int bar)
{
    g_measureOnSize = 0;
    ShowScrollBar(window, bar, FALSE);
    g_measureOnSize = 1;
}

// One direction: a bar with the range of what does not fit, or none; the
// position back at 0.
void FitBar(HWND window, int bar, DWORD content, LONG client)
{
    DWORD styleBit = bar == SB_VERT ? WS_VSCROLL : WS_HSCROLL;
    if (static_cast<LONG>(content) > client) {
        if (!HasBar(window, styleBit))
            ShowScrollBar(window, bar, TRUE);
        SetScrollRange(window, bar, 0, static_cast<int>(content - client), TRUE);
    } else if (HasBar(window, styleBit)) {
        HideBar(window, bar);
    }
    SetScrollPos(window, bar, 0, TRUE);
}

// Asks the parent for the content's size, the font selected in the DC that
// the question carries, and fits both bars to it. False when the gadget is
// gone.
bool Measure(HWND window, SuperTextRecord *r)
{
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return true;
    }
    HGDIOBJ earlier = SelectObject(dc, r->font);
    if (!earlier) {
        OSErrorSetErrorInfo(RV_GDIError, "SelectObject");
        ReleaseDC(window, dc);
        return true;
    }
    MEASUREITEMSTRUCT &m = r->measure;
    m.CtlType = kOwnerDrawType;
    m.CtlID = static_cast<UINT>(GetDlgCtrlID(window));
    m.itemID = static_cast<UINT>(reinterpret_cast<UINT_PTR>(dc));
#if defined(_WIN64)
    m.itemData = reinterpret_cast<ULONG_PTR>(dc);
#endif
    SendMessageA(GetParent(window), WM_MEASUREITEM, 0, reinterpret_cast<LPARAM>(&m));
    bool alive = GadgetAlive(window, r);
    SelectObject(dc, earlier);
    ReleaseDC(window, dc);
    if (!alive)
        return false;
    r->contentWidth = m.itemWidth;
    r->contentHeight = m.itemHeight;
    r->measured = 1;
    GetClientRect(window, &r->client);
    RECT client = r->client;
    ++g_nesting;
    FitBar(window, SB_VERT, r->contentHeight, client.bottom - client.top);
    if (GadgetAlive(window, r))
        FitBar(window, SB_HORZ, r->contentWidth, client.right - client.left);
    --g_nesting;
    return GadgetAlive(window, r);
}

LRESULT Remeasure(HWND window, SuperTextRecord *r, bool redraw)
{
    HideBar(window, SB_BOTH);
    if (Measure(window, r) && redraw)
        InvalidateRect(window, nullptr, TRUE);
    return 0;
}

LRESULT OnSetFont(HWND window, SuperTextRecord *r, HFONT font, bool redraw)
{
    r->font = font ? font : static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
    return Remeasure(window, r, redraw);
}

LRESULT OnCreate(HWND window)
{
    if (!GadgetCreate<SuperTextRecord>(window))
        return GadgetCreateFailed;
    SendMessageA(window, WM_SETFONT, 0, 0);
    return IsWindow(window) ? 0 : GadgetCreateFailed;
}

// The parent paints the whole content at the scroll offset, the font
// selected; it may clip to the update region.
void OnPaint(HWND window, SuperTextRecord *r)
{
    if (!r->measured && !Measure(window, r))
        return;
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    HGDIOBJ earlier = dc ? SelectObject(dc, r->font) : nullptr;
    if (!earlier) {
        OSErrorSetErrorInfo(RV_GDIError, dc ? "SelectObject" : "BeginPaint");
        EndPaint(window, &ps);
        return;
    }
    DRAWITEMSTRUCT draw = {};
    draw.CtlType = kOwnerDrawType;
    draw.CtlID = static_cast<UINT>(GetDlgCtrlID(window));
    draw.itemAction = ODA_DRAWENTIRE;
    draw.itemState = ODS_SELECTED;
    draw.hwndItem = window;
    draw.hDC = dc;
    draw.rcItem.left = r->client.left - GetScrollPos(window, SB_HORZ);
    draw.rcItem.top = r->client.top - GetScrollPos(window, SB_VERT);
    draw.rcItem.right = draw.rcItem.left + static_cast<LONG>(r->contentWidth);
    draw.rcItem.bottom = draw.rcItem.top + static_cast<LONG>(r->contentHeight);
    SendMessageA(GetParent(window), WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&draw));
    SelectObject(dc, earlier);
    EndPaint(window, &ps);
}

// The parent's static brush over the whole client; without one nothing is
// erased. Always answers 1.
LRESULT OnEraseBackground(HWND window, SuperTextRecord *r, HDC dc)
{
    HBRUSH brush = reinterpret_cast<HBRUSH>(SendMessageA(
        GetParent(window), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(window)));
    if (!GadgetAlive(window, r) || !brush)
        return 1;
    HGDIOBJ earlier = SelectObject(dc, brush);
    if (earlier) {
        RECT client;
        GetClientRect(window, &client);
        PatBlt(dc, 0, 0, client.right, client.bottom, PATCOPY);
        SelectObject(dc, earlier);
    }
    return 1;
}

// A line is the font's height (vertical) or average width (horizontal), a
// page the client's extent. The thumb's position comes from lParam's low
// word, which a window's own bar leaves at 0.
void OnScroll(HWND window, SuperTextRecord *r, int bar, WPARAM wParam, LPARAM lParam)
{
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return;
    }
    HGDIOBJ earlier = SelectObject(dc, r->font);
    if (!earlier) {
        OSErrorSetErrorInfo(RV_GDIError, "SelectObject");
        ReleaseDC(window, dc);
        return;
    }
    TEXTMETRICA tm = {};
    GetTextMetricsA(dc, &tm);
    SelectObject(dc, earlier);
    ReleaseDC(window, dc);
    RECT client;
    GetClientRect(window, &client);
    bool vertical = bar == SB_VERT;
    LONGLONG line = vertical ? tm.tmHeight : tm.tmAveCharWidth;
    LONGLONG page = vertical ? client.bottom - client.top : client.right - client.left;
    int old = GetScrollPos(window, bar);
    LONGLONG position = old;
    switch (LOWORD(wParam)) {
    case SB_LINEUP: position -= line; break;
    case SB_LINEDOWN: position += line; break;
    case SB_PAGEUP: position -= page; break;
    case SB_PAGEDOWN: position += page; break;
    case SB_THUMBPOSITION: position = LOWORD(lParam); break;
    default: return;
    }
    int least = 0, most = 0;
    GetScrollRange(window, bar, &least, &most);
    if (position > most)
        position = most;
    if (position < least)
        position = least;
    if (position == old)
        return;
    SetScrollPos(window, bar, static_cast<int>(position), TRUE);
    int shift = old - static_cast<int>(position);
    ScrollWindow(window, vertical ? 0 : shift, vertical ? shift : 0, nullptr, nullptr);
}

}  // namespace

LRESULT CALLBACK SuperTextWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    SuperTextRecord *r = Record(window);
    if (!r)
        return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY:
        GadgetFreeRecord(window, true);
        return 0;
    case STM_REMEASURE:
        return Remeasure(window, r, LOWORD(lParam) != 0);
    case WM_SETFONT:
        return OnSetFont(window, r, reinterpret_cast<HFONT>(wParam), LOWORD(lParam) != 0);
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(r->font);
    case WM_SIZE:
        if (IsWindowVisible(window) && g_measureOnSize && g_nesting < kMostNesting)
            Measure(window, r);
        return 0;
    case WM_PAINT:
        OnPaint(window, r);
        return 0;
    case WM_ERASEBKGND:
        return OnEraseBackground(window, r, reinterpret_cast<HDC>(wParam));
    case WM_HSCROLL:
    case WM_VSCROLL:
        OnScroll(window, r, message == WM_VSCROLL ? SB_VERT : SB_HORZ, wParam, lParam);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
