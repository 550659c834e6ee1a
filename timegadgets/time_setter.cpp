// TimeSetter: a vertical hour scale with one clock face and one label, for
// picking a single time by dragging the clock or label, by clicking on the
// scale (which rounds to the nearest hour), or with the arrow keys. An arrow
// button above and one below the scale move the view; held, they repeat.
// This unit holds the record's life, the time arithmetic and the messages;
// painting and the drag have units of their own.
#include "time_setter.h"
#include "time_gadgets.h"
#include "time_scale_shared.h"
#include "../gadgets/gadget_frame.h"
#include "../core/module_globals.h"
#include "qziso32.h"

namespace {

const UINT kClockBitmap = 1;
const UINT kUpBitmap = 4;
const UINT kDownBitmap = 5;

bool g_sizing = false;  // the gadget's own SetWindowPos in WM_SIZE

TimeSetterRecord *Record(HWND window) { return GadgetRecord<TimeSetterRecord>(window); }

}  // namespace

void Notify(HWND window, WORD code) { GadgetNotifyParent(window, code); }

// ---------------------------------------------------------------- time
BYTE CurrentStep(const TimeSetterRecord *r) { return HeldStep(r->coarseStep, r->fineStep); }

static bool SnapTo(DateTimeValue *t, BYTE step) { return SnapMinute(t, step, "TimeSetter step"); }

bool Snap(const TimeSetterRecord *r, DateTimeValue *t) { return SnapTo(t, CurrentStep(r)); }

static bool ShiftMinutes(DateTimeValue *t, LONG minutes) { return ShiftDateTime(t, 0, 0, minutes, 0); }

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

namespace {

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
    TimeSetterRecord *r = GadgetCreate<TimeSetterRecord>(window);
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
