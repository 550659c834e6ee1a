// GasGauge: a horizontal progress bar with its percentage written across
// it. The text takes the bar's contrast colour where the bar lies under it
// and the background's elsewhere, with a grey shadow on the empty side. The
// bar is composed on a memory surface kept for the window's whole life and
// copied to the screen in one step, so it never flickers. Setting a value
// animates one frame per percent and empties the message queue before each
// frame, so the application stays responsive during a long step.
#include "time_gadgets.h"
#include "../gadgets/gadget_frame.h"
#include "qziso32.h"

namespace {

struct GasGaugeRecord {
    LONG minimum;
    LONG maximum;
    LONG value;
    LONG percent;  // what the bar shows
    COLORREF backColour;
    HBRUSH backBrush;
    COLORREF backTextColour;
    COLORREF barColour;
    HBRUSH barBrush;
    COLORREF barTextColour;
    HFONT font;
    HDC dcMem;
    HBITMAP savedBitmap;  // selected out of dcMem by the surface's bitmap
    RECT rcClient;
    RECT rcInner;
    RECT rcBar;
    LONG raised;
};

const COLORREF kShadow = 0x808080;
const COLORREF kLight = 0xFFFFFF;
const COLORREF kFace = 0xC0C0C0;
const int kTextSize = 5;  // "100%" and its terminator
const int kMostPerFrame = 1000;

GasGaugeRecord *Record(HWND window) { return GadgetRecord<GasGaugeRecord>(window); }

// The percentage a value shows. The value is not reduced by the minimum and
// the result is not clamped. The arithmetic is that of 32-bit registers:
// the product and the span wrap; the one quotient that would trap is given
// its wrapped value.
LONG PercentOf(LONG value, LONG minimum, LONG maximum)
{
    LONG product = static_cast<LONG>(static_cast<DWORD>(value) * 100u);
    LONG span = static_cast<LONG>(static_cast<DWORD>(maximum) - static_cast<DWORD>(minimum));
    if (span == -1 && product == LONG(0x80000000))
        return product;
    return product / span;
}

// ---------------------------------------------------------------- drawing
struct Brushes {
    HBRUSH shadow, light, face;
};

void ReleaseBrushes(Brushes &b)
{
    if (b.face) DeleteObject(b.face);
    if (b.light) DeleteObject(b.light);
    if (b.shadow) DeleteObject(b.shadow);
}

bool MakeBrushes(Brushes &b)
{
    b.shadow = CreateSolidBrush(kShadow);
    b.light = b.shadow ? CreateSolidBrush(kLight) : nullptr;
    b.face = b.light ? CreateSolidBrush(kFace) : nullptr;
    if (b.face)
        return true;
    OSErrorSetErrorInfo(RV_GDIError, "CreateSolidBrush");
    ReleaseBrushes(b);
    return false;
}

void PaintRect(HDC dc, const RECT &rect, HBRUSH brush)
{
    HGDIOBJ earlier = SelectObject(dc, brush);
    PatBlt(dc, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, PATCOPY);
    if (earlier)
        SelectObject(dc, earlier);
}

// The percentage three times: in the bar's text colour over the bar, and
// as a shadow and in the background's text colour over the empty part.
void DrawPercentText(GasGaugeRecord *r, LONG percent, const RECT &filled, const RECT &empty)
{
    HDC dc = r->dcMem;
    HGDIOBJ earlierFont = r->font ? SelectObject(dc, r->font) : nullptr;
    char text[kTextSize];
    OScsprintf(text, kTextSize, "%i%%", percent);
    int length = lstrlenA(text);
    SIZE size = {};
    GetTextExtentPoint32A(dc, text, length, &size);
    const RECT &bar = r->rcBar;
    int x = (bar.right - size.cx) / 2 + bar.left;
    int y = (bar.bottom - size.cy) / 2 + bar.top;
    SetTextColor(dc, r->barTextColour);
    ExtTextOutA(dc, x, y, ETO_CLIPPED, &filled, text, length, nullptr);
    SetTextColor(dc, kShadow);
    ExtTextOutA(dc, x + 2, y + 2, ETO_CLIPPED, &empty, text, length, nullptr);
    SetTextColor(dc, r->backTextColour);
    ExtTextOutA(dc, x, y, ETO_CLIPPED, &empty, text, length, nullptr);
    if (earlierFont)
        SelectObject(dc, earlierFont);
}

// Composes `percent` on the surface and copies it to `target`. A failure
// leaves the screen as it was.
void DrawPercent(GasGaugeRecord *r, HDC target, LONG percent)
{
    if (!r->dcMem)
        return;
    Brushes b = {};
    if (!MakeBrushes(b))
        return;
    HDC dc = r->dcMem;
    const RECT &bar = r->rcBar;
    LONG edge = MulDiv(bar.right - bar.left, percent, 100) + (r->raised ? 2 : 0);
    // The edge is an absolute x, whatever the bar's left.
    RECT filled = {bar.left, bar.top, edge, bar.bottom};
    RECT empty = {edge, bar.top, bar.right, bar.bottom};
    if (r->raised) {
        FrameRect(dc, &r->rcClient, b.face);
        UIFrameAndFillRect(dc, &r->rcInner, nullptr, b.shadow, b.light);
    }
    PaintRect(dc, filled, r->barBrush);
    if (r->raised)
        UIFrameAndFillRect(dc, &filled, nullptr, b.light, b.shadow);
    if (edge < bar.right) {
        PaintRect(dc, empty, r->backBrush);
        if (r->raised)
            UIFrameAndFillRect(dc, &empty, nullptr, b.shadow, b.light);
    }
    DrawPercentText(r, percent, filled, empty);
    const RECT &c = r->rcClient;
    BitBlt(target, c.left, c.top, c.right - c.left, c.bottom - c.top, dc, c.left, c.top, SRCCOPY);
    ReleaseBrushes(b);
}

void DrawPercentOnWindow(HWND window, GasGaugeRecord *r, LONG percent)
{
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return;
    }
    DrawPercent(r, dc, percent);
    ReleaseDC(window, dc);
}

// ---------------------------------------------------------------- surface
void ReleaseSurface(GasGaugeRecord *r)
{
    if (!r->dcMem)
        return;
    HGDIOBJ bitmap = SelectObject(r->dcMem, r->savedBitmap);
    if (bitmap)
        DeleteObject(bitmap);
    DeleteDC(r->dcMem);
    r->dcMem = nullptr;
    r->savedBitmap = nullptr;
}

void OnSize(HWND window, GasGaugeRecord *r)
{
    GetClientRect(window, &r->rcClient);
    r->rcInner = r->rcClient;
    InflateRect(&r->rcInner, -1, -1);
    r->rcBar = r->rcClient;
    if (r->raised)
        InflateRect(&r->rcBar, -2, -2);
    ReleaseSurface(r);
    HDC screen = GetDC(window);
    if (!screen) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return;
    }
    int width = r->rcClient.right > 0 ? r->rcClient.right : 1;
    int height = r->rcClient.bottom > 0 ? r->rcClient.bottom : 1;
    HDC dc = CreateCompatibleDC(screen);
    HBITMAP bitmap = dc ? CreateCompatibleBitmap(screen, width, height) : nullptr;
    ReleaseDC(window, screen);
    if (!bitmap) {
        OSErrorSetErrorInfo(RV_GDIError, dc ? "CreateCompatibleBitmap" : "CreateCompatibleDC");
        if (dc)
            DeleteDC(dc);
        return;
    }
    r->savedBitmap = static_cast<HBITMAP>(SelectObject(dc, bitmap));
    SetBkMode(dc, TRANSPARENT);
    r->dcMem = dc;
}

// ---------------------------------------------------------------- messages
LRESULT OnCreate(HWND window)
{
    GasGaugeRecord *r = GadgetCreate<GasGaugeRecord>(window);
    if (!r)
        return GadgetCreateFailed;
    r->maximum = 100;
    r->backColour = 0xFFFFFF;
    r->barColour = 0xFF0000;
    r->backBrush = CreateSolidBrush(r->backColour);
    r->barBrush = r->backBrush ? CreateSolidBrush(r->barColour) : nullptr;
    if (!r->barBrush) {
        OSErrorSetErrorInfo(RV_GDIError, "CreateSolidBrush");
        if (r->backBrush)
            DeleteObject(r->backBrush);
        GadgetFreeRecord(window, true);
        return GadgetCreateFailed;
    }
    r->backTextColour = GadgetContrastTextColor(r->backColour);
    r->barTextColour = GadgetContrastTextColor(r->barColour);
    return 0;
}

void OnDestroy(HWND window, GasGaugeRecord *r)
{
    DeleteObject(r->backBrush);
    DeleteObject(r->barBrush);
    ReleaseSurface(r);
    GadgetFreeRecord(window, true);
}

void OnSetRange(GasGaugeRecord *r, const LONG *range)
{
    if (!range) {
        OSErrorSetErrorInfo(RV_BadParms, "GGM_SETRANGE");
        return;
    }
    r->minimum = range[0];
    r->maximum = range[1];
    r->percent = range[2];
}

// One frame per whole percent between what is shown and the new value, the
// queue emptied before each; a single step draws once without pumping.
// Frames outside 0 to 100 percent look alike and are passed over, so a wild
// value costs no more frames than a full sweep.
void OnSetValue(HWND window, GasGaugeRecord *r, LONG value)
{
    r->value = value;
    if (r->maximum <= r->minimum)
        return;
    LONG target = PercentOf(value, r->minimum, r->maximum);
    LONG shown = r->percent;
    if (target == shown)
        return;
    LONGLONG distance = static_cast<LONGLONG>(target) - shown;
    if (distance == 1 || distance == -1) {
        DrawPercentOnWindow(window, r, target);
    } else {
        LONG direction = target > shown ? 1 : -1;
        LONG from = shown + direction;
        // Skip ahead to the visible span; the last frame is always drawn.
        if (direction > 0 && from < 0)
            from = target < 0 ? target : 0;
        if (direction < 0 && from > 100)
            from = target > 100 ? target : 100;
        for (LONG p = from;; p += direction) {
            if ((direction > 0 && p > 100) || (direction < 0 && p < 0))
                p = target;
            MSG msg;
            // A window that never validates its paint would refill the
            // queue for ever: a frame dispatches a bounded number.
            for (int n = 0; n < kMostPerFrame && PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE); ++n) {
                if (msg.message == WM_QUIT) {
                    PostQuitMessage(static_cast<int>(msg.wParam));
                    break;
                }
                TranslateMessage(&msg);
                DispatchMessageA(&msg);
            }
            if (!GadgetAlive(window, r))
                return;
            DrawPercentOnWindow(window, r, p);
            if (p == target)
                break;
        }
    }
    r->percent = target;
}

void SetColour(HWND window, GasGaugeRecord *r, bool bar, COLORREF colour)
{
    HBRUSH brush = CreateSolidBrush(colour);
    if (!brush) {
        OSErrorSetErrorInfo(RV_GDIError, "CreateSolidBrush");
        return;
    }
    HBRUSH &slot = bar ? r->barBrush : r->backBrush;
    DeleteObject(slot);
    slot = brush;
    (bar ? r->barColour : r->backColour) = colour;
    (bar ? r->barTextColour : r->backTextColour) = GadgetContrastTextColor(colour);
    InvalidateRect(window, nullptr, TRUE);
}

void OnPaint(HWND window, GasGaugeRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (dc)
        DrawPercent(r, dc, r->percent);
    EndPaint(window, &ps);
}

}  // namespace

LRESULT CALLBACK GasGaugeWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    GasGaugeRecord *r = Record(window);
    if (!r)
        return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window, r);
        return 0;
    case WM_SIZE:
        OnSize(window, r);
        return 0;
    case WM_PAINT:
        OnPaint(window, r);
        return 0;
    case WM_SETFONT:
        r->font = reinterpret_cast<HFONT>(wParam);
        InvalidateRect(window, nullptr, TRUE);
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(r->font);
    case GGM_SETRANGE:
        OnSetRange(r, reinterpret_cast<const LONG *>(lParam));
        return 0;
    case GGM_SETVALUE:
        OnSetValue(window, r, static_cast<LONG>(lParam));
        return 0;
    case GGM_SETBACKCOLOUR:
        SetColour(window, r, false, static_cast<COLORREF>(lParam));
        return 0;
    case GGM_SETBARCOLOUR:
        SetColour(window, r, true, static_cast<COLORREF>(lParam));
        return 0;
    case GGM_GETBACKCOLOUR:
    case GGM_GETBARCOLOUR:
        // The colours are not handed out: both getters answer 0.
        return 0;
    case GGM_SETRAISED:
        // The colours change, the brushes stay: the bar keeps its paint.
        r->raised = static_cast<LONG>(wParam);
        r->backColour = r->barColour = kFace;
        InvalidateRect(window, nullptr, FALSE);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
