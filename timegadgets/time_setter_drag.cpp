// TimeSetter's mouse and timers: the press on an arrow, the clock or label,
// or the scale; the drag that follows the pointer and scrolls at the ends;
// the release; the timers of the held arrows and of the scroll.
#include "time_setter.h"
#include "time_scale_shared.h"
#include "qziso32.h"

namespace {

const UINT_PTR kUpTimer = 1;
const UINT_PTR kDownTimer = 2;
const UINT_PTR kScrollTimer = 5;
const UINT kTick = 75;
const LONG kArrowStep = 30;  // minutes the view moves per arrow step
const BYTE kNoScroll = 0, kScrollUp = 1, kScrollDown = 2;

}  // namespace

SetterDrag g_drag = {};

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

namespace {

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

}  // namespace

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

namespace {

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

}  // namespace

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
