// TimeSetter: a vertical hour scale with one clock face and one label, for
// picking a single time by dragging the clock or label, by clicking on the
// scale (which rounds to the nearest hour), or with the arrow keys. An arrow
// button above and one below the scale move the view; held, they repeat.
//
// The scale is drawn once into a one-bit surface; a paint copies it into a
// colour work surface (black becomes the text colour, white the background),
// puts the clock and label on it and copies that to the window. A drag step
// repaints only the band the label and clock crossed.
#include "time_gadgets.h"
#include "clock_face.h"
#include "time_scale_shared.h"
#include "../gadgets/gadget_frame.h"
#include "../core/module_globals.h"
#include "qziso32.h"

namespace {

struct TimeSetterRecord {
    DateTimeValue viewStart;  // time at the top of the scale
    DateTimeValue value;      // the time the gadget sets
    RECT rcFrame;             // the scale's column; the surfaces cover it
    RECT rcUpArrow;
    RECT rcDownArrow;
    RECT rcScale;
    RECT rcClock;             // 17 x 17, above the label
    RECT rcLabel;
    COLORREF backColour;
    HFONT font;               // in use; the caller's after WM_SETFONT
    HFONT ownFont;
    HBITMAP clockBitmap, clockMask;
    HBITMAP upBitmap, downBitmap;
    HBITMAP upMask, downMask;
    HBITMAP savedScaleBitmap; // first selected in dcScale
    HBITMAP savedWorkBitmap;  // first selected in dcWork
    HDC dcWork;               // composition surface
    HDC dcScale;              // one-bit drawing of the scale
    DWORD hoursInView;
    DWORD pixelsPerHour;
    DWORD extraPixels;        // the first so many hours are one pixel taller
    DWORD hourLabelHeight;
    LONG valueY;
    DWORD labelWidth, labelHeight;  // both odd, so the label has a centre
    BYTE coarseStep;          // snap with Shift, minutes
    BYTE fineStep;            // snap without Shift, minutes
    BYTE autoScrollMode;      // kNoScroll, kScrollUp or kScrollDown
    LONG inTextUpdate;        // set while the gadget sets its own text
};

const COLORREF kDefaultBack = 0x818100;  // also the pictures' transparent key
const COLORREF kLabelGrey = 0xC0C0C0;
const UINT kClockBitmap = 1;
const UINT kUpBitmap = 4;
const UINT kDownBitmap = 5;
const UINT_PTR kUpTimer = 1;
const UINT_PTR kDownTimer = 2;
const UINT_PTR kScrollTimer = 5;
const UINT kTick = 75;
const LONG kArrowStep = 30;  // minutes the view moves per arrow step
const BYTE kNoScroll = 0, kScrollUp = 1, kScrollDown = 2;
const DWORD kTimeFlags = DTS_TIME;
const DWORD kTimeText = 20;

// One drag at a time for all TimeSetter windows: the capture lets only one
// gadget have the mouse, so the state lives here and not in the records.
struct SetterDrag {
    bool active;
    bool upHeld;
    bool downHeld;
    bool dragging;
    TimeSetterRecord *record;
    HWND window;
    HDC dc;
    DateTimeValue anchor;
    DWORD scrollStep;
    DWORD ticks;
};
SetterDrag g_drag = {};
bool g_sizing = false;  // the gadget's own SetWindowPos in WM_SIZE

TimeSetterRecord *Record(HWND window) { return GadgetRecord<TimeSetterRecord>(window); }

void Notify(HWND window, WORD code) { GadgetNotifyParent(window, code); }

LONG Width(const RECT &r) { return r.right - r.left; }
LONG Height(const RECT &r) { return r.bottom - r.top; }

// ---------------------------------------------------------------- time
BYTE CurrentStep(const TimeSetterRecord *r) { return HeldStep(r->coarseStep, r->fineStep); }

bool SnapTo(DateTimeValue *t, BYTE step) { return SnapMinute(t, step, "TimeSetter step"); }

bool Snap(const TimeSetterRecord *r, DateTimeValue *t) { return SnapTo(t, CurrentStep(r)); }

bool ShiftMinutes(DateTimeValue *t, LONG minutes) { return ShiftDateTime(t, 0, 0, minutes, 0); }

// Moves `t` by `minutes` and snaps it.
bool StepSnapped(const TimeSetterRecord *r, DateTimeValue *t, LONG minutes)
{
    return ShiftMinutes(t, minutes) && Snap(r, t);
}

// The y of `t`. The taller-hour test compares the relative base with the
// scale's absolute limits, which is how the gadget has always placed it.
bool TimeToY(const TimeSetterRecord *r, const DateTimeValue *t, LONG *y)
{
    LONG days, hours, minutes, seconds;
    if (!OSDiffDateTime(&r->viewStart, t, &days, &hours, &minutes, &seconds))
        return false;
    LONG h = hours + 24 * days;
    DWORD base = r->pixelsPerHour * static_cast<DWORD>(h);
    if (h >= 0 && minutes >= 0)
        base += static_cast<DWORD>(h) < r->extraPixels ? static_cast<DWORD>(h) : r->extraPixels;
    DWORD scale = r->pixelsPerHour;
    LONG relative = static_cast<LONG>(base);
    if (relative >= r->rcScale.top && relative < r->rcScale.bottom && h >= 0 &&
        static_cast<DWORD>(h) < r->extraPixels)
        ++scale;
    LONG part = static_cast<LONG>(scale * static_cast<DWORD>(minutes)) / 60;
    *y = static_cast<LONG>(static_cast<DWORD>(r->rcScale.top) + base + static_cast<DWORD>(part));
    return true;
}

// The time at `y`, snapped.
bool YToTime(const TimeSetterRecord *r, LONG y, DateTimeValue *out)
{
    LONG perHour = static_cast<LONG>(r->pixelsPerHour);
    if (perHour == 0) {
        OSErrorSetErrorInfo(RV_BadParms, "TimeSetter hours");
        return false;
    }
    LONG rel = y - r->rcScale.top;
    LONG h = static_cast<LONG>(static_cast<long long>(rel) / perHour);
    LONG extra = static_cast<LONG>(r->extraPixels);
    DWORD base = static_cast<DWORD>(perHour) * static_cast<DWORD>(h);
    if (y >= 0)
        base += static_cast<DWORD>(h < extra ? h : extra);
    LONG taller = (h >= 0 && static_cast<DWORD>(h) < r->extraPixels) ? 1 : 0;
    LONG divisor = perHour + taller;
    if (divisor == 0) {
        OSErrorSetErrorInfo(RV_BadParms, "TimeSetter hours");
        return false;
    }
    LONG span = static_cast<LONG>((static_cast<DWORD>(rel) - base) * 60u);
    LONG minutes = static_cast<LONG>(static_cast<long long>(span) / divisor);
    DateTimeValue t = r->viewStart;
    if (!ShiftDateTime(&t, 0, h, minutes, 0) || !Snap(r, &t))
        return false;
    *out = t;
    return true;
}

bool InScaleRows(const TimeSetterRecord *r, LONG y)
{
    return y >= r->rcScale.top && y <= r->rcScale.bottom;
}

// The label's text: the time of `value`.
void ValueText(const TimeSetterRecord *r, char *text)
{
    text[0] = '\0';
    OSDateTimeToString(&r->value, text, nullptr, kTimeFlags, kTimeText);
}

// Sets the window text to the time of `value` and tells the parent; false
// when the parent destroyed the gadget meanwhile.
bool SetText(HWND window, TimeSetterRecord *r)
{
    char text[kTimeText];
    ValueText(r, text);
    r->inTextUpdate = 1;
    SetWindowTextA(window, text);
    r->inTextUpdate = 0;
    return GadgetNotifyAlive(window, TSN_TIMECHANGED, r);
}

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

void DrawArrows(HDC dc, TimeSetterRecord *r)
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

// ---------------------------------------------------------------- messages
bool CheckedTime(const DateTimeValue *t)
{
    if (!t) {
        OSErrorSetErrorInfo(RV_BadParms, "DateTimeValue");
        return false;
    }
    if (!OSIsValidDateTime(t)) {
        OSWhyIsInvalidDateTime(t);
        return false;
    }
    return true;
}

LRESULT OnSetViewStart(HWND window, TimeSetterRecord *r, const DateTimeValue *t)
{
    if (!CheckedTime(t))
        return GadgetFailure;
    r->viewStart = *t;
    return Redraw(window, r) ? GadgetSuccess : GadgetFailure;
}

LRESULT OnSetValue(HWND window, TimeSetterRecord *r, const DateTimeValue *t)
{
    if (!CheckedTime(t))
        return GadgetFailure;
    r->value = *t;
    bool ok = Redraw(window, r);
    SetText(window, r);
    return ok ? GadgetSuccess : GadgetFailure;
}

LRESULT OnSetHoursInView(HWND window, TimeSetterRecord *r, WPARAM hours)
{
    if (hours > 24)
        return GadgetFailure;
    r->hoursInView = static_cast<DWORD>(hours);
    Redraw(window, r);
    return GadgetSuccess;
}

LRESULT OnSetBackColour(HWND window, TimeSetterRecord *r, COLORREF colour)
{
    if (r->dcWork) {
        r->backColour = GetNearestColor(r->dcWork, colour);
    } else {
        HDC dc = GetDC(window);
        r->backColour = dc ? GetNearestColor(dc, colour) : colour;
        if (dc)
            ReleaseDC(window, dc);
    }
    if (r->dcWork)
        SetWorkColours(r);
    InvalidateRect(window, nullptr, TRUE);
    UpdateWindow(window);
    return GadgetSuccess;
}

LRESULT CopyOut(const DateTimeValue &t, DateTimeValue *out)
{
    if (!out) {
        OSErrorSetErrorInfo(RV_BadParms, "DateTimeValue");
        return GadgetFailure;
    }
    *out = t;
    return GadgetSuccess;
}

LRESULT OnSetCoarseStep(TimeSetterRecord *r, WPARAM wParam)
{
    BYTE minutes = static_cast<BYTE>(wParam & 0xFF);
    if (minutes < 1 || minutes > 59)
        return GadgetFailure;
    r->coarseStep = minutes;
    return GadgetSuccess;
}

// A typed time keeps the date of `value`; text that cannot be read gives
// the current time, and an error after the change. The system keeps the
// text as given in every case.
LRESULT OnSetText(HWND window, TimeSetterRecord *r, LPARAM lParam)
{
    if (!r->inTextUpdate) {
        DateTimeValue t = {};
        bool parsed = OSStringToDateTimeTimeBias(&t, reinterpret_cast<const char *>(lParam)) != 0;
        if (!parsed)
            OSGetDateTime(&t);
        t.year = r->value.year;
        t.month = r->value.month;
        t.day = r->value.day;
        SendMessageA(window, TSM_SETVALUE, 0, reinterpret_cast<LPARAM>(&t));
        if (!parsed)
            Notify(window, TSN_ERROR);
    }
    return DefWindowProcA(window, WM_SETTEXT, 0, lParam);
}

// ---------------------------------------------------------------- keys
// One fine step up or down, snapped by the step in force; the view
// follows a value that leaves it.
void OnKeyDown(HWND window, TimeSetterRecord *r, WPARAM key)
{
    if (key != VK_UP && key != VK_DOWN)
        return;
    DateTimeValue t = r->value;
    bool up = key == VK_UP;
    bool ok = StepSnapped(r, &t, up ? -static_cast<LONG>(r->fineStep) : r->fineStep);
    if (ok && up) {
        if (OSDateTimeCompare(&t, &r->viewStart) < 0)
            r->viewStart = t;
        r->value = t;
    } else if (ok) {
        DateTimeValue last = r->viewStart;
        ok = ShiftDateTime(&last, 0, static_cast<LONG>(r->hoursInView), 0, 0);
        if (ok && OSDateTimeCompare(&t, &last) > 0) {
            DateTimeValue view = t;
            ok = ShiftDateTime(&view, 0, -static_cast<LONG>(r->hoursInView), 0, 0);
            if (ok)
                r->viewStart = view;
        }
        if (ok)
            r->value = t;
    }
    if (!ok) {
        Notify(window, TSN_ERROR);
        return;
    }
    Redraw(window, r);
    SetText(window, r);
}

// ---------------------------------------------------------------- mouse
void KillScrollTimers(HWND window)
{
    KillTimer(window, kUpTimer);
    KillTimer(window, kDownTimer);
    KillTimer(window, kScrollTimer);
}

// Ends the drag: the DC and the capture go back, the state is cleared.
void EndDrag()
{
    HWND window = g_drag.window;
    if (g_drag.dc)
        ReleaseDC(window, g_drag.dc);
    g_drag = SetterDrag{};
    if (GetCapture() == window)
        ReleaseCapture();
    ShowCursor(TRUE);
}

// A mouse step failed: the drag ends and the parent hears of it.
void AbortDrag(HWND window, TimeSetterRecord *r)
{
    KillScrollTimers(window);
    r->autoScrollMode = kNoScroll;
    EndDrag();
    Notify(window, TSN_ERROR);
}

bool Inside(const RECT &rect, LONG x, LONG y)
{
    POINT p = {x, y};
    return PtInRect(&rect, p) != 0;
}

bool ArrowStep(TimeSetterRecord *r, bool up)
{
    return StepSnapped(r, &r->viewStart, up ? -kArrowStep : kArrowStep);
}

void OnLButtonDown(HWND window, TimeSetterRecord *r, LONG x, LONG y)
{
    if (g_drag.active)
        return;
    g_drag = SetterDrag{};
    g_drag.active = true;
    g_drag.record = r;
    g_drag.window = window;
    g_drag.dc = GetDC(window);
    SetCapture(window);
    // The cursor stays in sight whatever the count was.
    int count = ShowCursor(FALSE);
    while (count < 0)
        count = ShowCursor(TRUE);
    if (!g_drag.dc) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        AbortDrag(window, r);
        return;
    }
    if (Inside(r->rcUpArrow, x, y) || Inside(r->rcDownArrow, x, y)) {
        bool up = Inside(r->rcUpArrow, x, y);
        (up ? g_drag.upHeld : g_drag.downHeld) = true;
        if (!ArrowStep(r, up)) {
            AbortDrag(window, r);
            return;
        }
        SetTimer(window, up ? kUpTimer : kDownTimer, kTick, nullptr);
        Redraw(window, r);
        InvertArrow(g_drag.dc, r, up);
    } else if (Inside(r->rcClock, x, y) || Inside(r->rcLabel, x, y)) {
        g_drag.dragging = true;
        if (!YToTime(r, y, &g_drag.anchor))
            AbortDrag(window, r);
    } else if (Inside(r->rcScale, x, y)) {
        // A click goes to the nearest hour.
        DateTimeValue t;
        if (!YToTime(r, y, &t) || (t.minute > 29 && !ShiftDateTime(&t, 0, 1, 0, 0))) {
            AbortDrag(window, r);
            return;
        }
        t.minute = 0;
        SendMessageA(window, TSM_SETVALUE, 0, reinterpret_cast<LPARAM>(&t));
    }
}

void StopAutoScroll(HWND window, TimeSetterRecord *r)
{
    KillTimer(window, kScrollTimer);
    r->autoScrollMode = kNoScroll;
    g_drag.ticks = 0;
}

void StartAutoScroll(HWND window, TimeSetterRecord *r, BYTE mode, BYTE step)
{
    if (r->autoScrollMode == mode)
        return;
    SetTimer(window, kScrollTimer, kTick, nullptr);
    g_drag.scrollStep = step;
    r->autoScrollMode = mode;
}

// The value at the foot of the view, snapped.
bool ValueAtFoot(TimeSetterRecord *r)
{
    DateTimeValue t = r->viewStart;
    if (!ShiftDateTime(&t, 0, static_cast<LONG>(r->hoursInView), 0, 0) || !Snap(r, &t))
        return false;
    r->value = t;
    return true;
}

// Repaints the rows crossed between the old and the new place of the
// clock and label.
void RepaintBand(TimeSetterRecord *r, LONG oldTop, LONG oldBottom)
{
    LONG top = r->rcClock.top < oldTop ? r->rcClock.top : oldTop;
    LONG bottom = r->rcLabel.bottom > oldBottom ? r->rcLabel.bottom : oldBottom;
    Compose(g_drag.dc, r, top, bottom);
}

// The value follows the pointer by whole snapped steps; leaving the scale
// at either end starts the automatic scroll.
bool DragStep(HWND window, TimeSetterRecord *r, LONG y)
{
    DateTimeValue t;
    LONG days, hours, minutes, seconds;
    if (!YToTime(r, y, &t) ||
        !OSDiffDateTime(&g_drag.anchor, &t, &days, &hours, &minutes, &seconds))
        return false;
    DateTimeValue moved = r->value;
    if (!ShiftDateTime(&moved, days, hours, minutes, seconds) || !Snap(r, &moved))
        return false;
    r->value = moved;
    g_drag.anchor = t;
    LONG oldY = r->valueY;
    LONG oldTop = r->rcClock.top, oldBottom = r->rcLabel.bottom;
    if (!TimeToY(r, &r->value, &r->valueY))
        return false;
    BYTE step = CurrentStep(r);
    if (r->valueY < r->rcScale.top && oldY >= r->rcScale.top) {
        if (!StepSnapped(r, &r->viewStart, -static_cast<LONG>(step)))
            return false;
        r->value = r->viewStart;
        Redraw(window, r);
        StartAutoScroll(window, r, kScrollUp, step);
    } else if (r->valueY > r->rcScale.bottom && oldY <= r->rcScale.bottom) {
        if (!StepSnapped(r, &r->viewStart, step) || !ValueAtFoot(r))
            return false;
        Redraw(window, r);
        StartAutoScroll(window, r, kScrollDown, step);
    } else {
        Place(r);
        RepaintBand(r, oldTop, oldBottom);
        StopAutoScroll(window, r);
    }
    return true;
}

void OnMouseMove(HWND window, TimeSetterRecord *r, LONG y)
{
    if (!g_drag.active || !g_drag.dragging || g_drag.record != r)
        return;
    if (!DragStep(window, r, y)) {
        AbortDrag(window, r);
        return;
    }
    SetText(window, r);
}

// The capture went elsewhere (WM_CAPTURECHANGED, WM_CANCELMODE): the drag
// ends where it stands, and the parent hears nothing more of it.
void OnCaptureLost(HWND window, TimeSetterRecord *r)
{
    if (!g_drag.active || g_drag.record != r)
        return;
    KillScrollTimers(window);
    r->autoScrollMode = kNoScroll;
    if (g_drag.upHeld || g_drag.downHeld)
        InvertArrow(g_drag.dc, r, g_drag.upHeld);
    EndDrag();
}

void OnLButtonUp(HWND window, TimeSetterRecord *r)
{
    if (!g_drag.active || g_drag.record != r)
        return;
    if (g_drag.dragging) {
        if (r->autoScrollMode)
            KillTimer(window, kScrollTimer);
        r->autoScrollMode = kNoScroll;
        if (!SetText(window, r))
            return;
    } else if (g_drag.upHeld || g_drag.downHeld) {
        KillTimer(window, g_drag.upHeld ? kUpTimer : kDownTimer);
        InvertArrow(g_drag.dc, r, g_drag.upHeld);
    }
    EndDrag();
}

// ---------------------------------------------------------------- timer
// Held arrows move the view by half hours; the automatic scroll moves it
// by a step that doubles every six ticks up to an hour, the value riding
// on the edge of the view.
void OnTimer(HWND window, TimeSetterRecord *r, WPARAM id)
{
    if (g_drag.ticks % 6 == 0) {
        g_drag.scrollStep *= 2;
        if (g_drag.scrollStep > 59)
            g_drag.scrollStep = 60;
    }
    LONG step = static_cast<LONG>(g_drag.scrollStep);
    bool ok = true;
    if (id == kUpTimer || id == kDownTimer) {
        ok = ArrowStep(r, id == kUpTimer);
    } else if (id == kScrollTimer && r->autoScrollMode == kScrollUp) {
        ok = StepSnapped(r, &r->viewStart, -step);
        if (ok)
            r->value = r->viewStart;
    } else if (id == kScrollTimer && r->autoScrollMode == kScrollDown) {
        ok = StepSnapped(r, &r->viewStart, step) && ValueAtFoot(r);
    } else if (id != kScrollTimer) {
        return;
    }
    if (ok)
        ok = Redraw(window, r);
    if (!ok) {
        KillScrollTimers(window);
        Notify(window, TSN_ERROR);
        return;
    }
    if (SetText(window, r))
        ++g_drag.ticks;
}

// ---------------------------------------------------------------- lifecycle
void OnSize(HWND window, TimeSetterRecord *r, LPARAM lParam)
{
    if (g_sizing || LOWORD(lParam) == 0 || HIWORD(lParam) == 0)
        return;
    RECT outer;
    GetWindowRect(window, &outer);
    g_sizing = true;
    SetWindowPos(window, nullptr, 0, 0, static_cast<int>(r->labelWidth) + 20, outer.bottom - outer.top,
                 SWP_NOMOVE | SWP_NOZORDER);
    g_sizing = false;
    Layout(window, r);
    ScaleMetrics(r);
    PlaceValue(r);
    if (!BuildSurfaces(window, r))
        Notify(window, TSN_ERROR);
}

LRESULT OnSetFont(HWND window, TimeSetterRecord *r, HFONT font)
{
    if (!font)
        return 0;
    r->font = font;
    Measure(window, r);
    Layout(window, r);
    ScaleMetrics(r);
    PlaceValue(r);
    if (!BuildSurfaces(window, r))
        Notify(window, TSN_ERROR);
    InvalidateRect(window, nullptr, TRUE);
    return 0;
}

void DeletePictures(TimeSetterRecord *r)
{
    HBITMAP *pictures[] = {&r->clockBitmap, &r->clockMask, &r->upBitmap,
                           &r->downBitmap, &r->upMask, &r->downMask};
    for (HBITMAP *p : pictures) {
        if (*p)
            DeleteObject(*p);
        *p = nullptr;
    }
}

bool LoadPictures(TimeSetterRecord *r)
{
    HMODULE library = g_module.hResourceLibrary;
    r->clockBitmap = LoadBitmapA(library, MAKEINTRESOURCEA(kClockBitmap));
    r->upBitmap = LoadBitmapA(library, MAKEINTRESOURCEA(kUpBitmap));
    r->downBitmap = LoadBitmapA(library, MAKEINTRESOURCEA(kDownBitmap));
    if (!r->clockBitmap || !r->upBitmap || !r->downBitmap) {
        OSErrorSetErrorInfo(RV_GDIError, "LoadBitmap");
        return false;
    }
    HDC screen = GetDC(nullptr);
    if (!screen) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return false;
    }
    // The toolkit's mask maker: it deletes a mask it could not select.
    r->clockMask = UICreateMaskBitmap(screen, r->clockBitmap, kDefaultBack);
    r->upMask = UICreateMaskBitmap(screen, r->upBitmap, kDefaultBack);
    r->downMask = UICreateMaskBitmap(screen, r->downBitmap, kDefaultBack);
    ReleaseDC(nullptr, screen);
    return r->clockMask && r->upMask && r->downMask;
}

void ReleaseAll(HWND window, TimeSetterRecord *r)
{
    DestroySurfaces(r);
    DeletePictures(r);
    if (r->ownFont)
        DeleteObject(r->ownFont);
    r->ownFont = nullptr;
    GadgetFreeRecord(window, true);
}

LRESULT OnCreate(HWND window)
{
    TimeSetterRecord *r =
        static_cast<TimeSetterRecord *>(GadgetCreateRecord(window, sizeof(TimeSetterRecord)));
    if (!r) {
        Notify(window, TSN_ERROR);
        return GadgetCreateFailed;
    }
    r->ownFont = CreateFontA(11, 0, 0, 0, FW_NORMAL, 0, 0, 0, ANSI_CHARSET, 0, 0, 0, 17, "Small Fonts");
    r->font = r->ownFont;
    r->coarseStep = 30;
    r->fineStep = 5;
    r->hoursInView = 8;
    r->backColour = kDefaultBack;
    OSGetDateTime(&r->value);
    r->viewStart = r->value;
    r->viewStart.hour = 8;
    r->viewStart.minute = r->viewStart.second = 0;
    bool ok = r->ownFont != nullptr;
    if (!ok)
        OSErrorSetErrorInfo(RV_GDIError, "CreateFont");
    ok = ok && Measure(window, r) && LoadPictures(r);
    if (!ok) {
        ReleaseAll(window, r);
        Notify(window, TSN_ERROR);
        return GadgetCreateFailed;
    }
    char text[kTimeText];
    ValueText(r, text);
    r->inTextUpdate = 1;
    SetWindowTextA(window, text);
    r->inTextUpdate = 0;
    return 0;
}

void OnDestroy(HWND window, TimeSetterRecord *r)
{
    KillScrollTimers(window);
    if (g_drag.active && g_drag.record == r)
        EndDrag();
    ReleaseAll(window, r);
}

LRESULT Dispatch(HWND window, TimeSetterRecord *r, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window, r);
        return 0;
    case TSM_SETVIEWSTART:
        return OnSetViewStart(window, r, reinterpret_cast<const DateTimeValue *>(lParam));
    case TSM_SETHOURSINVIEW:
        return OnSetHoursInView(window, r, wParam);
    case TSM_GETHOURSINVIEW:
        return static_cast<LRESULT>(r->hoursInView);
    case TSM_SETBACKCOLOUR:
        return OnSetBackColour(window, r, static_cast<COLORREF>(lParam));
    case TSM_GETVIEWSTART:
        return CopyOut(r->viewStart, reinterpret_cast<DateTimeValue *>(lParam));
    case TSM_GETBACKCOLOUR:
        return static_cast<LRESULT>(r->backColour);
    case TSM_GETVALUE:
        return CopyOut(r->value, reinterpret_cast<DateTimeValue *>(lParam));
    case TSM_SETVALUE:
        return OnSetValue(window, r, reinterpret_cast<const DateTimeValue *>(lParam));
    case TSM_SETFINESTEP:
        r->fineStep = static_cast<BYTE>(wParam & 0xFF);
        return GadgetSuccess;
    case TSM_SETCOARSESTEP:
        return OnSetCoarseStep(r, wParam);
    case TSM_GETFINESTEP:
        return r->fineStep;
    case TSM_GETCOARSESTEP:
        return r->coarseStep;
    case WM_SIZE:
        OnSize(window, r, lParam);
        return 0;
    case WM_SETFOCUS:
        Notify(window, TSN_SETFOCUS);
        return 0;
    case WM_KILLFOCUS:
        Notify(window, TSN_KILLFOCUS);
        return 0;
    case WM_SETTEXT:
        return OnSetText(window, r, lParam);
    case WM_PAINT:
        OnPaint(window, r);
        return 0;
    case WM_ERASEBKGND:
        return OnEraseBackground(window, reinterpret_cast<HDC>(wParam), r);
    case WM_SETFONT:
        return OnSetFont(window, r, reinterpret_cast<HFONT>(wParam));
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(r->font);
    case WM_KEYDOWN:
        OnKeyDown(window, r, wParam);
        return 0;
    case WM_TIMER:
        OnTimer(window, r, wParam);
        return 0;
    case WM_MOUSEMOVE:
        OnMouseMove(window, r, static_cast<short>(HIWORD(lParam)));
        return 0;
    case WM_LBUTTONDOWN:
        OnLButtonDown(window, r, static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam)));
        return 0;
    case WM_LBUTTONUP:
        OnLButtonUp(window, r);
        return 0;
    case WM_CAPTURECHANGED:
        if (reinterpret_cast<HWND>(lParam) != window)
            OnCaptureLost(window, r);
        return 0;
    case WM_CANCELMODE:
        OnCaptureLost(window, r);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

extern "C" LRESULT CALLBACK GadTSWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    TimeSetterRecord *r = Record(window);
    if (!r) {
        if (message == TSM_GETFINESTEP || message == TSM_GETCOARSESTEP)
            return 255;
        return DefWindowProcA(window, message, wParam, lParam);
    }
    return Dispatch(window, r, message, wParam, lParam);
}
