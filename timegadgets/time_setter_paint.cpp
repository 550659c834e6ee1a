// TimeSetter painting: the label sizes and the layout, the surfaces, the
// scale and the clock, label and arrows on it.
//
// The scale is drawn once into a one-bit surface; a paint copies it into a
// colour work surface (black becomes the text colour, white the background),
// puts the clock and label on it and copies that to the window. A drag step
// repaints only the band the label and clock crossed.
#include "time_setter.h"
#include "clock_face.h"
#include "time_scale_shared.h"
#include "../gadgets/gadget_frame.h"
#include "qziso32.h"

namespace {

const COLORREF kLabelGrey = 0xC0C0C0;

LONG Width(const RECT &r) { return r.right - r.left; }
LONG Height(const RECT &r) { return r.bottom - r.top; }

}  // namespace

// ---------------------------------------------------------------- geometry
// Label sizes from the font: the wider of midnight and noon today.
bool Measure(HWND window, TimeSetterRecord *r)
{
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return false;
    }
    HGDIOBJ old = SelectObject(dc, r->font);
    TEXTMETRICA tm = {};
    GetTextMetricsA(dc, &tm);
    DateTimeValue t;
    OSGetDateTime(&t);
    t.minute = t.second = 0;
    LONG widest = 0;
    const BYTE hours[2] = {0, 12};
    for (BYTE hour : hours) {
        t.hour = hour;
        char text[kTimeText] = {};
        OSDateTimeToString(&t, text, nullptr, kTimeFlags, kTimeText);
        SIZE size = {};
        GetTextExtentPoint32A(dc, text, lstrlenA(text), &size);
        if (size.cx > widest)
            widest = size.cx;
    }
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    r->labelWidth = static_cast<DWORD>(widest + 8);
    r->labelWidth |= 1;
    r->labelHeight = static_cast<DWORD>(tm.tmHeight - tm.tmDescent + 2);
    r->labelHeight |= 1;
    r->hourLabelHeight = r->labelHeight;
    return true;
}

// The column is centred; the arrows stand centred above and below it.
void Layout(HWND window, TimeSetterRecord *r)
{
    RECT client;
    GetClientRect(window, &client);
    LONG c = static_cast<LONG>(r->labelWidth) + 10;
    LONG left = (client.right - c) >> 1;
    LONG right = left + c + (c % 2 == 0 ? 1 : 0);
    LONG halfLabel = static_cast<LONG>(r->labelHeight >> 1);
    r->rcScale = {left, halfLabel + 44, right, client.bottom - halfLabel - 27};
    r->rcFrame = {left, client.top + 26, right, client.bottom - 25};
    LONG arrowLeft = left + (right - left - 11) / 2;
    LONG arrowRight = left + (right - left + 11) / 2;
    r->rcUpArrow = {arrowLeft, client.top + 6, arrowRight, client.top + 19};
    r->rcDownArrow = {arrowLeft, client.bottom - 19, arrowRight, client.bottom - 6};
}

// Pixels per hour, in unsigned 32 bits as the record holds them. With no
// hours there is nothing to divide by: the scale gets no height.
bool ScaleMetrics(TimeSetterRecord *r)
{
    DWORD height = static_cast<DWORD>(Height(r->rcScale));
    if (r->hoursInView == 0) {
        r->pixelsPerHour = r->extraPixels = 0;
        OSErrorSetErrorInfo(RV_BadParms, "TimeSetter hours");
        return false;
    }
    r->pixelsPerHour = height / r->hoursInView;
    r->extraPixels = height % r->hoursInView;
    return true;
}

// The label centred on the scale at valueY, the clock on top of it.
void Place(TimeSetterRecord *r)
{
    LONG x = r->rcScale.left + Width(r->rcScale) / 2;
    LONG left = x - static_cast<LONG>(r->labelWidth / 2);
    LONG top = r->valueY - static_cast<LONG>(r->labelHeight / 2);
    r->rcLabel = {left, top, left + static_cast<LONG>(r->labelWidth), top + static_cast<LONG>(r->labelHeight)};
    r->rcClock = {x - 8, top - 17, x + 9, top};
}

bool PlaceValue(TimeSetterRecord *r)
{
    if (!TimeToY(r, &r->value, &r->valueY))
        return false;
    Place(r);
    return true;
}

// ---------------------------------------------------------------- surfaces
void DestroySurfaces(TimeSetterRecord *r)
{
    if (r->dcScale) {
        HGDIOBJ mine = SelectObject(r->dcScale, r->savedScaleBitmap);
        DeleteObject(mine);
        DeleteDC(r->dcScale);
    }
    if (r->dcWork) {
        HGDIOBJ mine = SelectObject(r->dcWork, r->savedWorkBitmap);
        DeleteObject(mine);
        DeleteDC(r->dcWork);
    }
    r->dcScale = r->dcWork = nullptr;
    r->savedScaleBitmap = r->savedWorkBitmap = nullptr;
}

void SetWorkColours(TimeSetterRecord *r)
{
    SetBkColor(r->dcWork, r->backColour);
    SetTextColor(r->dcWork, GadgetContrastTextColor(r->backColour));
}

namespace {

// A memory surface over rcFrame, drawn in client coordinates.
HDC MakeSurface(HDC screen, const RECT &frame, bool oneBit, HBITMAP *saved)
{
    HDC dc = CreateCompatibleDC(screen);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError, "CreateCompatibleDC");
        return nullptr;
    }
    HBITMAP bitmap = oneBit ? CreateBitmap(Width(frame), Height(frame), 1, 1, nullptr)
                            : CreateCompatibleBitmap(screen, Width(frame), Height(frame));
    if (!bitmap) {
        OSErrorSetErrorInfo(RV_GDIError, "CreateBitmap");
        DeleteDC(dc);
        return nullptr;
    }
    *saved = static_cast<HBITMAP>(SelectObject(dc, bitmap));
    SetViewportOrgEx(dc, -frame.left, -frame.top, nullptr);
    return dc;
}

bool DrawScale(TimeSetterRecord *r);

}  // namespace

// Rebuilds both surfaces for the current frame; a frame with no area has
// none, and then only the arrows are painted.
bool BuildSurfaces(HWND window, TimeSetterRecord *r)
{
    DestroySurfaces(r);
    if (Width(r->rcFrame) <= 0 || Height(r->rcFrame) <= 0)
        return true;
    HDC screen = GetDC(window);
    if (!screen) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return false;
    }
    r->dcWork = MakeSurface(screen, r->rcFrame, false, &r->savedWorkBitmap);
    if (r->dcWork)
        r->dcScale = MakeSurface(screen, r->rcFrame, true, &r->savedScaleBitmap);
    ReleaseDC(window, screen);
    if (!r->dcScale) {
        DestroySurfaces(r);
        return false;
    }
    SetWorkColours(r);
    return DrawScale(r);
}

// ---------------------------------------------------------------- drawing
namespace {

// The hour scale in black on white: the edges, then each hour with its
// text and ticks, and a half-hour tick before the last.
bool DrawScale(TimeSetterRecord *r)
{
    HDC dc = r->dcScale;
    if (!dc)
        return true;
    const RECT &s = r->rcScale;
    const RECT &f = r->rcFrame;
    PatBlt(dc, f.left, f.top, Width(f), Height(f), WHITENESS);
    PatBlt(dc, s.left, s.top, 1, Height(s) + 1, BLACKNESS);
    PatBlt(dc, s.right - 1, s.top, 1, Height(s) + 1, BLACKNESS);
    HGDIOBJ oldFont = SelectObject(dc, r->font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, RGB(0, 0, 0));
    static char hourText[kTimeText];  // one buffer shared by every scale
    DateTimeValue t = r->viewStart;
    t.minute = 0;
    bool ok = true;
    for (DWORD i = 0; i <= r->hoursInView; ++i) {
        LONG y;
        if (!TimeToY(r, &t, &y)) {
            ok = false;
            break;
        }
        if (InScaleRows(r, y)) {
            hourText[0] = '\0';
            OSDateTimeToString(&t, hourText, nullptr, kTimeFlags, kTimeText);
            LONG top = y - static_cast<LONG>(r->hourLabelHeight / 2) - (r->extraPixels == 0 ? 1 : 0);
            RECT text = {s.left, top, s.right, top + static_cast<LONG>(r->hourLabelHeight)};
            DrawTextA(dc, hourText, -1, &text, DT_CENTER | DT_NOCLIP);
            PatBlt(dc, s.left, y, 5, 1, BLACKNESS);
            PatBlt(dc, s.right - 5, y, 5, 1, BLACKNESS);
            if (i < r->hoursInView) {
                LONG half = y + static_cast<LONG>(r->pixelsPerHour / 2) + (r->extraPixels ? 1 : 0);
                PatBlt(dc, s.left, half, 2, 1, BLACKNESS);
                PatBlt(dc, s.right - 2, half, 2, 1, BLACKNESS);
            }
        }
        // The minute stays 0 from hour to hour, so its snap changes nothing.
        if (i < r->hoursInView && !ShiftDateTime(&t, 0, 1, 0, 0)) {
            ok = false;
            break;
        }
    }
    SelectObject(dc, oldFont);
    return ok;
}

void DrawClock(HDC dc, const TimeSetterRecord *r)
{
    DrawClockFace(dc, r->rcClock, r->rcFrame, r->clockBitmap, r->clockMask, kDefaultBack, r->value.hour,
                  r->value.minute);
}

void Fill(HDC dc, LONG left, LONG top, LONG right, LONG bottom, COLORREF colour)
{
    RECT rect = {left, top, right, bottom};
    COLORREF old = SetBkColor(dc, colour);
    ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr);
    SetBkColor(dc, old);
}

// A raised label: white, black from (1, 1), grey inside, and the time.
void DrawLabel(HDC dc, const TimeSetterRecord *r)
{
    const RECT &l = r->rcLabel;
    const RECT &s = r->rcScale;
    if (l.bottom <= s.top || l.top >= s.bottom || l.right <= s.left || l.left >= s.right)
        return;
    Fill(dc, l.left, l.top, l.right, l.bottom, RGB(255, 255, 255));
    Fill(dc, l.left + 1, l.top + 1, l.right, l.bottom, RGB(0, 0, 0));
    Fill(dc, l.left + 1, l.top + 1, l.right - 1, l.bottom - 1, kLabelGrey);
    char text[kTimeText];
    ValueText(r, text);
    HGDIOBJ oldFont = SelectObject(dc, r->font);
    int oldMode = SetBkMode(dc, TRANSPARENT);
    COLORREF oldColour = SetTextColor(dc, RGB(0, 0, 0));
    RECT box = l;
    DrawTextA(dc, text, -1, &box, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOCLIP);
    SetTextColor(dc, oldColour);
    SetBkMode(dc, oldMode);
    SelectObject(dc, oldFont);
}

}  // namespace

// Rows `top` to `bottom` of the frame: the scale, the clock and label on
// it, out to `target`.
void Compose(HDC target, const TimeSetterRecord *r, LONG top, LONG bottom)
{
    const RECT &f = r->rcFrame;
    if (top < f.top)
        top = f.top;
    if (bottom > f.bottom)
        bottom = f.bottom;
    if (!r->dcWork || bottom <= top)
        return;
    BitBlt(r->dcWork, f.left, top, Width(f), bottom - top, r->dcScale, f.left, top, SRCCOPY);
    DrawClock(r->dcWork, r);
    DrawLabel(r->dcWork, r);
    BitBlt(target, f.left, top, Width(f), bottom - top, r->dcWork, f.left, top, SRCCOPY);
}

static void DrawArrows(HDC dc, TimeSetterRecord *r)
{
    if (r->backColour == kDefaultBack) {
        UIBitBlt(dc, &r->rcUpArrow, r->upBitmap);
        UIBitBlt(dc, &r->rcDownArrow, r->downBitmap);
    } else {
        GadUtilMaskBltNoFlicker(dc, &r->rcUpArrow, r->upBitmap, r->upMask, kDefaultBack);
        GadUtilMaskBltNoFlicker(dc, &r->rcDownArrow, r->downBitmap, r->downMask, kDefaultBack);
    }
}

// Shows a held arrow pressed, or released again: the blit turns the
// picture itself over each time.
void InvertArrow(HDC dc, TimeSetterRecord *r, bool up)
{
    if (up)
        GadUtilMaskBltInvertNoFlicker(dc, &r->rcUpArrow, r->upBitmap, r->upMask, kDefaultBack);
    else
        GadUtilMaskBltInvertNoFlicker(dc, &r->rcDownArrow, r->downBitmap, r->downMask, kDefaultBack);
}

// The view or the hours changed: the scale is drawn again and the frame
// repainted at once.
bool Redraw(HWND window, TimeSetterRecord *r)
{
    bool ok = ScaleMetrics(r);
    ok = PlaceValue(r) && ok;
    ok = DrawScale(r) && ok;
    InvalidateRect(window, &r->rcFrame, FALSE);
    UpdateWindow(window);
    return ok;
}

void OnPaint(HWND window, TimeSetterRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError, "BeginPaint");
        return;
    }
    DrawArrows(dc, r);
    Compose(dc, r, r->rcFrame.top, r->rcFrame.bottom);
    EndPaint(window, &ps);
}

LRESULT OnEraseBackground(HWND window, HDC dc, const TimeSetterRecord *r)
{
    RECT client;
    GetClientRect(window, &client);
    COLORREF old = SetBkColor(dc, r->backColour);
    ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &client, nullptr, 0, nullptr);
    SetBkColor(dc, old);
    return 1;
}
