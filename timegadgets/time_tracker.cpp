// TimeTracker: a vertical hour scale on which the user sets one
// appointment's start and end by dragging two clocks, moves it whole by its
// duration label, or steps it with the arrow keys. Beside the scale a strip
// of lanes shows busy times and whether the appointment clashes with them.
// This unit holds the record's life, the time arithmetic and the messages;
// painting, the busy list and the drag have units of their own.
#include "time_tracker.h"
#include "time_gadgets.h"
#include "time_scale_shared.h"
#include "../gadgets/gadget_frame.h"
#include "../core/module_globals.h"

TrackerDrag g_trackerDrag = {};

// ---------------------------------------------------------------- arithmetic
bool TrackerShift(DateTimeValue *value, LONG days, LONG hours, LONG minutes)
{
    return ShiftDateTime(value, days, hours, minutes, 0);
}

bool TrackerDiff(const DateTimeValue *a, const DateTimeValue *b, LONG *hours, LONG *minutes)
{
    LONG d = 0, h = 0, m = 0, s = 0;
    if (!OSDiffDateTime(a, b, &d, &h, &m, &s))
        return false;
    *hours = h + 24 * d;
    *minutes = m;
    return true;
}

// Reading a key asks the window server, the dearest call of a drag step.
static bool g_holdingStep = false;
static int g_heldShift = -1;  // -1 until read in the step held

void TrackerHoldStep(bool holding)
{
    g_holdingStep = holding;
    g_heldShift = -1;
}

DWORD TrackerStep(const TimeTrackerRecord *r)
{
    if (!g_holdingStep)
        return HeldStep(r->coarseStep, r->fineStep);
    if (g_heldShift < 0)
        g_heldShift = (GetKeyState(VK_SHIFT) & 0x80) ? 1 : 0;
    return g_heldShift ? r->coarseStep : r->fineStep;
}

void TrackerSnapHeld(const TimeTrackerRecord *r, DateTimeValue *value)
{
    const DWORD coarse = r->coarseStep, fine = r->fineStep, minute = value->minute;
    if (coarse && fine && minute / coarse * coarse == minute / fine * fine) {
        value->minute = static_cast<BYTE>(minute / fine * fine);
        return;
    }
    TrackerSnap(value, TrackerStep(r));
}

void TrackerSnap(DateTimeValue *value, DWORD step) { SnapMinute(value, step, "TimeTracker step"); }

bool TrackerNormalise(TimeTrackerRecord *r, bool fromEnd)
{
    r->viewStart.second = 0;
    r->start.second = 0;
    r->end.second = 0;
    LONG hours = 0, minutes = 0;
    if (!TrackerDiff(&r->start, &r->end, &hours, &minutes))
        return false;
    if (hours < 0 || minutes < 0) {
        if (fromEnd)
            r->end = r->start;
        else
            r->start = r->end;
        r->durationHours = 0;
        r->durationMinutes = 0;
        return true;
    }
    if (hours > 24 || (hours == 24 && minutes >= 1)) {
        if (fromEnd) {
            DateTimeValue s = r->end;
            if (!TrackerShift(&s, 0, -24, 0))
                return false;
            r->start = s;
        } else {
            DateTimeValue e = r->start;
            if (!TrackerShift(&e, 0, 24, 0))
                return false;
            r->end = e;
        }
        r->durationHours = 24;
        r->durationMinutes = 0;
        return true;
    }
    r->durationHours = static_cast<DWORD>(hours);
    r->durationMinutes = static_cast<DWORD>(minutes);
    return true;
}

// The scale's hours start at rcScale.top; the first extraPixels hours are a
// pixel taller. The test for the taller scale compares the offset from the
// top with the absolute range of the scale, as the gadget always has.
LONG TrackerTimeToY(const TimeTrackerRecord *r, const DateTimeValue *t, bool *ok)
{
    LONG h = 0, m = 0;
    *ok = TrackerDiff(&r->viewStart, t, &h, &m);
    if (!*ok)
        return -1;
    LONG base = static_cast<LONG>(r->pixelsPerHour * static_cast<DWORD>(h));
    if (h >= 0 && m >= 0)
        base += static_cast<LONG>(static_cast<DWORD>(h) < r->extraPixels ? static_cast<DWORD>(h) : r->extraPixels);
    LONG scale = static_cast<LONG>(r->pixelsPerHour);
    if (base >= r->rcScale.top && base < r->rcScale.bottom && static_cast<DWORD>(h) < r->extraPixels)
        scale += 1;
    return r->rcScale.top + base + (scale * m) / 60;
}

bool TrackerYToTime(const TimeTrackerRecord *r, LONG y, DateTimeValue *out)
{
    // A scale shorter than its hours has no whole pixel per hour; it is
    // read as one, so that no step divides by zero.
    LONG pph = r->pixelsPerHour ? static_cast<LONG>(r->pixelsPerHour) : 1;
    LONG extra = static_cast<LONG>(r->extraPixels);
    LONG rel = y - r->rcScale.top;
    LONG h = rel / pph;
    LONG base = pph * h;
    if (y >= 0)
        base += h < extra ? h : extra;
    LONG taller = (h >= 0 && h < extra) ? 1 : 0;
    DateTimeValue t = r->viewStart;
    if (!TrackerShift(&t, 0, h, ((rel - base) * 60) / (pph + taller)))
        return false;
    TrackerSnapHeld(r, &t);
    *out = t;
    return true;
}

bool TrackerViewEnd(const TimeTrackerRecord *r, DateTimeValue *out)
{
    DateTimeValue t = r->viewStart;
    if (!TrackerShift(&t, 0, static_cast<LONG>(r->hoursInView), 0))
        return false;
    *out = t;
    return true;
}

// Under TTS_SINGLEDAY the view stops at 00:00 going back and at the last
// snapped time before midnight going forward; whether the day differs is
// told by the day of the month alone.
bool TrackerStepView(HWND window, TimeTrackerRecord *r, LONG minutes)
{
    if (!(TrackerStyle(window) & TTS_SINGLEDAY))
        return TrackerShift(&r->viewStart, 0, 0, minutes);
    DateTimeValue t = r->viewStart;
    if (minutes < 0) {
        if (!TrackerShift(&t, 0, 0, minutes))
            return false;
        if (t.day != r->viewStart.day) {
            r->viewStart.hour = 0;
            r->viewStart.minute = 0;
        } else {
            r->viewStart = t;
        }
        return true;
    }
    if (!TrackerShift(&t, 0, static_cast<LONG>(r->hoursInView), minutes))
        return false;
    if (t.day == r->viewStart.day)
        return TrackerShift(&r->viewStart, 0, 0, minutes);
    DateTimeValue last = r->viewStart;
    last.hour = 23;
    last.minute = 59;
    if (!TrackerShift(&last, 0, -static_cast<LONG>(r->hoursInView), 0))
        return false;
    TrackerSnap(&last, TrackerStep(r));
    r->viewStart = last;
    return true;
}

bool TrackerSetText(HWND window, TimeTrackerRecord *r)
{
    if (r->inTextUpdate)
        return true;
    char text[64];
    const DateTimeValue *t = (TrackerStyle(window) & TTS_ENDTEXT) ? &r->end : &r->start;
    if (!OSDateTimeToString(t, text, nullptr, DTS_TIME, sizeof text))
        text[0] = '\0';
    r->inTextUpdate = 1;
    SetWindowTextA(window, text);
    if (!GadgetNotifyAlive(window, TTN_TIMECHANGED, r))
        return false;
    r->inTextUpdate = 0;
    return true;
}

namespace {

TimeTrackerRecord *Record(HWND window) { return TrackerRecord(window); }

bool CheckValue(const DateTimeValue *value)
{
    if (!value) {
        OSErrorSetErrorInfo(RV_BadParms, "TimeTracker");
        return false;
    }
    if (OSIsValidDateTime(value))
        return true;
    OSWhyIsInvalidDateTime(value);
    return false;
}

LRESULT CopyOut(DateTimeValue *out, const DateTimeValue &value)
{
    if (!out)
        return GadgetFailure;
    *out = value;
    return GadgetSuccess;
}

// TTS_KEEPVISIBLE: the view follows an appointment that left it.
bool KeepVisible(HWND window, TimeTrackerRecord *r)
{
    if (!(TrackerStyle(window) & TTS_KEEPVISIBLE))
        return true;
    if (Later(&r->viewStart, &r->start)) {
        r->viewStart = r->start;
        TrackerRenderScale(r);
        return true;
    }
    DateTimeValue last;
    if (!TrackerViewEnd(r, &last))
        return false;
    if (Later(&r->end, &last)) {
        DateTimeValue v = r->end;
        if (!TrackerShift(&v, 0, -static_cast<LONG>(r->hoursInView), 0))
            return false;
        r->viewStart = v;
        TrackerRenderScale(r);
    }
    return true;
}

// ---------------------------------------------------------------- setters
LRESULT OnSetViewStart(HWND window, TimeTrackerRecord *r, const DateTimeValue *value)
{
    if (!CheckValue(value))
        return GadgetFailure;
    r->viewStart = *value;
    r->viewStart.second = 0;
    TrackerRenderScale(r);
    TrackerRedraw(window, r);
    GadgetNotifyParent(window, TTN_VIEWCHANGED);
    return GadgetSuccess;
}

LRESULT OnSetHoursInView(HWND window, TimeTrackerRecord *r, WPARAM hours)
{
    if (hours < 1 || hours > 24)
        return GadgetFailure;
    r->hoursInView = static_cast<DWORD>(hours);
    TrackerLayout(window, r);
    TrackerRenderScale(r);
    TrackerRedraw(window, r);
    GadgetNotifyParent(window, TTN_VIEWCHANGED);
    return GadgetSuccess;
}

LRESULT OnSetBackColour(HWND window, TimeTrackerRecord *r, COLORREF colour)
{
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError);
        return GadgetFailure;
    }
    r->backColour = GetNearestColor(dc, colour);
    ReleaseDC(window, dc);
    r->figuresShown = 0;
    if (r->dcWork) {
        SetBkColor(r->dcWork, r->backColour);
        SetTextColor(r->dcWork, GadgetContrastTextColor(r->backColour));
    }
    InvalidateRect(window, nullptr, TRUE);
    return GadgetSuccess;
}

// Start and end: the one set wins, the other follows when they cross.
LRESULT OnSetEdge(HWND window, TimeTrackerRecord *r, const DateTimeValue *value, bool isEnd)
{
    if (!CheckValue(value))
        return GadgetFailure;
    if (isEnd) {
        r->end = *value;
        if (Later(&r->start, &r->end))
            r->start = r->end;
    } else {
        r->start = *value;
        if (Later(&r->start, &r->end))
            r->end = r->start;
    }
    if (!TrackerNormalise(r, isEnd) || !KeepVisible(window, r))
        return GadgetFailure;
    TrackerRedraw(window, r);
    TrackerSetText(window, r);
    return GadgetSuccess;
}

LRESULT OnSetDuration(HWND window, TimeTrackerRecord *r, LPARAM duration)
{
    DateTimeValue e = r->start;
    if (!TrackerShift(&e, 0, HIWORD(duration), LOWORD(duration)))
        return GadgetFailure;
    r->end = e;
    if (!TrackerNormalise(r, false))
        return GadgetFailure;
    TrackerRedraw(window, r);
    TrackerSetText(window, r);
    return GadgetSuccess;
}

LRESULT OnSetCoarseStep(HWND window, TimeTrackerRecord *r, WPARAM wParam)
{
    BYTE minutes = LOBYTE(wParam);
    if (minutes < 1 || minutes > 59)
        return GadgetFailure;
    r->coarseStep = minutes;
    TrackerRedraw(window, r);
    return GadgetSuccess;
}

}  // namespace

// The appointment moves to `value` with its duration, its end held to the
// last snapped time of the start's day.
LRESULT TrackerSetStartKeep(HWND window, TimeTrackerRecord *r, const DateTimeValue *value)
{
    if (!CheckValue(value))
        return GadgetFailure;
    r->start = *value;
    DateTimeValue ceiling = r->start;
    ceiling.hour = 23;
    ceiling.minute = 0;
    ceiling.second = 0;
    DWORD fine = r->fineStep ? r->fineStep : 1;
    if (!r->fineStep)
        OSErrorSetErrorInfo(RV_BadParms, "TimeTracker step");
    ceiling.minute = static_cast<BYTE>((59 / fine) * fine);
    DateTimeValue e = r->start;
    if (!TrackerShift(&e, 0, static_cast<LONG>(r->durationHours), static_cast<LONG>(r->durationMinutes)))
        return GadgetFailure;
    r->end = Later(&e, &ceiling) ? ceiling : e;
    if (!TrackerNormalise(r, false))
        return GadgetFailure;
    TrackerRedraw(window, r);
    if ((TrackerStyle(window) & TTS_TRACKNOTIFY) && !GadgetNotifyAlive(window, TTN_TRACKING, r))
        return GadgetSuccess;
    TrackerSetText(window, r);
    return GadgetSuccess;
}

namespace {

// ---------------------------------------------------------------- lifecycle
bool DefaultTimes(HWND window, TimeTrackerRecord *r)
{
    DateTimeValue now;
    if (!OSGetDateTime(&now))
        return false;
    now.second = 0;
    r->viewStart = now;
    r->viewStart.minute = 0;
    if (!TrackerShift(&r->viewStart, 0, -4, 0))
        return false;
    r->start = now;
    r->end = now;
    bool ok = (TrackerStyle(window) & TTS_ENDTEXT) ? TrackerShift(&r->start, 0, -1, 0)
                                                   : TrackerShift(&r->end, 0, 1, 0);
    r->durationHours = 1;
    r->durationMinutes = 0;
    r->hoursInView = 8;
    return ok;
}

bool LoadPictures(HWND window, TimeTrackerRecord *r)
{
    r->clockBitmap = LoadBitmapA(g_module.hResourceLibrary, MAKEINTRESOURCEA(kClockBitmap));
    HBITMAP bar = LoadBitmapA(g_module.hResourceLibrary, MAKEINTRESOURCEA(kBarBitmap));
    if (!r->clockBitmap || !bar) {
        if (bar)
            DeleteObject(bar);
        OSErrorSetErrorInfo(RV_GDIError);
        return false;
    }
    r->barBrush = CreatePatternBrush(bar);
    DeleteObject(bar);
    HDC dc = GetDC(window);
    if (dc) {
        // The toolkit's mask maker: it deletes a mask it could not select.
        r->clockMask = UICreateMaskBitmap(dc, r->clockBitmap, kTrackerDefaultBack);
        ReleaseDC(window, dc);
    }
    if (!r->barBrush || !r->clockMask) {
        OSErrorSetErrorInfo(RV_GDIError);
        return false;
    }
    return true;
}

void FreeGdi(TimeTrackerRecord *r)
{
    TrackerDestroySurfaces(r);
    HGDIOBJ objects[] = {r->ownFont, r->clockBitmap, r->clockMask, r->spareBitmap1, r->spareBitmap2, r->barBrush};
    for (HGDIOBJ object : objects)
        if (object)
            DeleteObject(object);
}

LRESULT OnCreate(HWND window)
{
    TimeTrackerRecord *r = GadgetCreate<TimeTrackerRecord>(window);
    if (!r) {
        GadgetNotifyParent(window, TTN_ERROR);
        return GadgetCreateFailed;
    }
    r->inTextUpdate = 1;
    r->backColour = kTrackerDefaultBack;
    r->ownBarColour = kOwnBarFree;
    r->coarseStep = 30;
    r->fineStep = 5;
    r->hoursInView = 8;
    r->ownFont = CreateFontA(11, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 17, "Small Fonts");
    r->font = r->ownFont;
    bool ok = r->ownFont != nullptr;
    if (!ok)
        OSErrorSetErrorInfo(RV_GDIError);
    ok = ok && TrackerMetrics(window, r) && DefaultTimes(window, r) && LoadPictures(window, r);
    if (!ok) {
        FreeGdi(r);
        GadgetFreeRecord(window, true);
        GadgetNotifyParent(window, TTN_ERROR);
        return GadgetCreateFailed;
    }
    TrackerLayout(window, r);
    char text[64];
    const DateTimeValue *shown = (TrackerStyle(window) & TTS_ENDTEXT) ? &r->end : &r->start;
    if (OSDateTimeToString(shown, text, nullptr, DTS_TIME, sizeof text))
        SetWindowTextA(window, text);
    r->inTextUpdate = 0;
    return 0;
}

void OnDestroy(HWND window, TimeTrackerRecord *r)
{
    if (g_trackerDrag.active && g_trackerDrag.record == r) {
        if (g_trackerDrag.dc)
            ReleaseDC(window, g_trackerDrag.dc);
        ReleaseCapture();
        g_trackerDrag = TrackerDrag{};
    }
    for (UINT_PTR id = 1; id <= 5; ++id)
        KillTimer(window, id);
    FreeGdi(r);
    if (r->busy && LocalFree(r->busy))
        OSErrorSetErrorInfo(RV_KernelError);
    GadgetFreeRecord(window, true);
}

void OnSize(HWND window, TimeTrackerRecord *r, LPARAM lParam)
{
    if (LOWORD(lParam) == 0 || HIWORD(lParam) == 0 || g_trackerDrag.sizing)
        return;
    TrackerFitWidth(window, r);
}

void OnShowWindow(HWND window, TimeTrackerRecord *r, BOOL shown)
{
    if (shown) {
        if (TrackerBuildSurfaces(window, r))
            InvalidateRect(window, nullptr, TRUE);
    } else {
        TrackerDestroySurfaces(r);
    }
}

void OnSetFont(HWND window, TimeTrackerRecord *r, HFONT font, BOOL redraw)
{
    r->font = font ? font : r->ownFont;
    TrackerMetrics(window, r);
    TrackerLayout(window, r);
    if (r->dcWork)
        TrackerBuildSurfaces(window, r);
    if (redraw)
        InvalidateRect(window, nullptr, TRUE);
}

LRESULT OnEraseBackground(TimeTrackerRecord *r, HWND window, HDC dc)
{
    RECT client;
    GetClientRect(window, &client);
    HBRUSH brush = CreateSolidBrush(r->backColour);
    if (!brush) {
        OSErrorSetErrorInfo(RV_GDIError);
        return 0;
    }
    FillRect(dc, &client, brush);
    DeleteObject(brush);
    return 1;
}

}  // namespace

extern "C" LRESULT WINAPI GadTTWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    TimeTrackerRecord *r = Record(window);
    if (!r) {
        switch (message) {
        case TTM_GETBACKCOLOUR:
            return -1;
        case TTM_GETFINESTEP:
        case TTM_GETCOARSESTEP:
            return 255;
        }
        if (message >= TTM_SETVIEWSTART && message <= TTM_FINDFREESLOT)
            return GadgetFailure;
        return DefWindowProcA(window, message, wParam, lParam);
    }
    const DateTimeValue *value = reinterpret_cast<const DateTimeValue *>(lParam);
    DateTimeValue *out = reinterpret_cast<DateTimeValue *>(lParam);
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window, r);
        return 0;
    case WM_SIZE:
        OnSize(window, r, lParam);
        return 0;
    case WM_SETFOCUS:
        GadgetNotifyParent(window, TTN_SETFOCUS);
        return 0;
    case WM_KILLFOCUS:
        if (g_trackerDrag.active && g_trackerDrag.window == window)
            SendMessageA(window, WM_LBUTTONUP, 0, 0);
        GadgetNotifyParent(window, TTN_KILLFOCUS);
        return 0;
    case WM_SETTEXT:
        TrackerOnSetText(window, r, reinterpret_cast<const char *>(lParam));
        return DefWindowProcA(window, message, wParam, lParam);
    case WM_PAINT:
        TrackerOnPaint(window, r);
        return 0;
    case WM_ERASEBKGND:
        return OnEraseBackground(r, window, reinterpret_cast<HDC>(wParam));
    case WM_SHOWWINDOW:
        OnShowWindow(window, r, static_cast<BOOL>(wParam));
        return 0;
    case WM_SETFONT:
        OnSetFont(window, r, reinterpret_cast<HFONT>(wParam), static_cast<BOOL>(LOWORD(lParam)));
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(r->font);
    case WM_KEYDOWN:
        TrackerOnKeyDown(window, r, wParam);
        return 0;
    case WM_TIMER:
        TrackerOnTimer(window, r, wParam);
        return 0;
    case WM_MOUSEMOVE:
        TrackerOnMouseMove(window, r, lParam);
        return 0;
    case WM_LBUTTONDOWN:
        TrackerOnLButtonDown(window, r, lParam);
        return 0;
    case WM_LBUTTONUP:
        TrackerOnLButtonUp(window, r);
        return 0;
    case WM_CAPTURECHANGED:
        if (reinterpret_cast<HWND>(lParam) != window)
            TrackerOnCaptureLost(window, r);
        return 0;
    case WM_CANCELMODE:
        TrackerOnCaptureLost(window, r);
        return 0;
    case TTM_SETVIEWSTART:
        return OnSetViewStart(window, r, value);
    case TTM_SETHOURSINVIEW:
        return OnSetHoursInView(window, r, wParam);
    case TTM_SETBACKCOLOUR:
        return OnSetBackColour(window, r, static_cast<COLORREF>(lParam));
    case TTM_GETVIEWSTART:
        return CopyOut(out, r->viewStart);
    case TTM_GETBACKCOLOUR:
        return static_cast<LRESULT>(r->backColour);
    case TTM_GETSTART:
        return CopyOut(out, r->start);
    case TTM_SETSTART:
        return OnSetEdge(window, r, value, false);
    case TTM_GETEND:
        return CopyOut(out, r->end);
    case TTM_SETEND:
        return OnSetEdge(window, r, value, true);
    case TTM_SETDURATION:
        return OnSetDuration(window, r, lParam);
    case TTM_GETDURATION:
        return static_cast<LRESULT>(MAKELONG(r->durationMinutes, r->durationHours));
    case TTM_GETFINESTEP:
        return r->fineStep;
    case TTM_GETCOARSESTEP:
        return r->coarseStep;
    case TTM_SETFINESTEP:
        r->fineStep = LOBYTE(wParam);
        TrackerRedraw(window, r);
        return GadgetSuccess;
    case TTM_SETCOARSESTEP:
        return OnSetCoarseStep(window, r, wParam);
    case TTM_GETHOURSINVIEW:
        return static_cast<LRESULT>(r->hoursInView);
    case TTM_SETSTARTKEEP:
        return TrackerSetStartKeep(window, r, value);
    case TTM_ADDBUSY:
        return TrackerAddBusy(window, r, static_cast<DWORD>(wParam), reinterpret_cast<const BusyInterval *>(lParam));
    case TTM_REMOVEBUSY:
        return TrackerRemoveBusy(window, r, static_cast<DWORD>(wParam));
    case TTM_GETIDEALSIZE:
        return static_cast<LRESULT>(MAKELONG(TrackerIdealWidth(r), TrackerIdealHeight(r)));
    case TTM_SETBUSYLIST:
        return TrackerSetBusyList(window, r, static_cast<DWORD>(wParam), reinterpret_cast<const BusyInterval *>(lParam));
    case TTM_CLEARBUSY:
        return TrackerClearBusy(window, r);
    case TTM_TIMETOY: {
        bool ok = false;
        LONG y = value ? TrackerTimeToY(r, value, &ok) : -1;
        return ok ? y : -1;
    }
    case TTM_GETOWNBARCOLOUR:
        return static_cast<LRESULT>(r->ownBarColour);
    case TTM_FINDFREESLOT:
        return TrackerFindFreeSlot(window, r, reinterpret_cast<FreeSlotRequest *>(lParam));
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

LRESULT CALLBACK TimeTrackerWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return GadTTWndProc(window, message, wParam, lParam);
}
