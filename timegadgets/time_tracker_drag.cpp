// TimeTracker's mouse: the press that picks a target (an arrow, the
// duration label, a clock or its label, the scale), the drag steps that
// follow the pointer and scroll at the edges, the release, the scroll
// timers and the cursor over the figures.
#include "time_tracker.h"
#include "../gadgets/gadget_frame.h"
#include "../core/module_globals.h"
#include "../core/state_cursor.h"

namespace {

const UINT kScrollDelay = 75;
const UINT_PTR kUpArrowTimer = 1;
const UINT_PTR kDownArrowTimer = 2;
const UINT_PTR kStartScrollTimer = 3;
const UINT_PTR kEndScrollTimer = 4;
const UINT_PTR kMoveScrollTimer = 5;
const LONG kArrowStep = 30;
const LONG kMaxScrollStep = 60;
const DWORD kMoveCursor = 80;
const DWORD kEdgeCursor = 83;

TrackerDrag &Drag() { return g_trackerDrag; }

LONG ClampedY(LPARAM lParam)
{
    LONG y = static_cast<short>(HIWORD(lParam));
    return y < 0 ? 0 : y;
}

POINT RawPoint(LPARAM lParam)
{
    return POINT{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

bool AtDayEnd(const DateTimeValue &t, const TimeTrackerRecord *r)
{
    return t.hour == 23 && t.minute >= 60 - r->fineStep;
}
bool AtDayStart(const DateTimeValue &t) { return t.hour == 0 && t.minute == 0; }

bool OverStart(HWND window, const TimeTrackerRecord *r, POINT pt)
{
    return TrackerClockHit(window, r, &r->rcStartClock, pt) || PtInRect(&r->rcStartLabel, pt);
}
bool OverEnd(HWND window, const TimeTrackerRecord *r, POINT pt)
{
    return TrackerClockHit(window, r, &r->rcEndClock, pt) || PtInRect(&r->rcEndLabel, pt);
}

void SetTrackerCursor(HWND window, const TimeTrackerRecord *r, POINT pt)
{
    bool singleDay = (TrackerStyle(window) & TTS_SINGLEDAY) != 0;
    DWORD id = 0;
    if (PtInRect(&r->rcFrame, pt)) {
        const DateTimeValue *edge = nullptr;
        if (PtInRect(&r->rcMoveHandle, pt)) {
            id = kMoveCursor;
            if (singleDay && AtDayEnd(r->end, r))
                id = kMoveCursor + 1;
            else if (singleDay && AtDayStart(r->start))
                id = kMoveCursor + 2;
        } else if (OverStart(window, r, pt)) {
            edge = &r->start;
        } else if (OverEnd(window, r, pt)) {
            edge = &r->end;
        }
        if (edge) {
            id = kEdgeCursor;
            if (singleDay && AtDayEnd(*edge, r))
                id = kEdgeCursor + 1;
            else if (singleDay && AtDayStart(*edge))
                id = kEdgeCursor + 2;
        }
    }
    HCURSOR cursor = id ? LoadStateCursor(g_module.hResourceLibrary, id) : nullptr;
    SetCursor(cursor ? cursor : LoadCursorA(nullptr, IDC_ARROW));
}

// Ends the drag: the clip, the arrows, the DC, the capture and the flags.
void EndDrag(HWND window, TimeTrackerRecord *r)
{
    TrackerDrag &d = Drag();
    HDC dc = d.dc;
    if (dc) {
        SelectClipRgn(dc, nullptr);
        TrackerPaintArrows(window, r, dc, false, false);
        ReleaseDC(window, dc);
    }
    bool sizing = d.sizing;
    d = TrackerDrag{};
    d.sizing = sizing;
    r->dragging = 0;
    ReleaseCapture();
    ShowCursor(TRUE);
}

// A failed step ends the drag and tells the parent.
void FailDrag(HWND window, TimeTrackerRecord *r)
{
    for (UINT_PTR id = kUpArrowTimer; id <= kMoveScrollTimer; ++id)
        KillTimer(window, id);
    r->autoScrollMode = 0;
    TrackerDrag &d = Drag();
    if (d.dc)
        ReleaseDC(window, d.dc);
    bool sizing = d.sizing;
    d = TrackerDrag{};
    d.sizing = sizing;
    r->dragging = 0;
    ReleaseCapture();
    ShowCursor(TRUE);
    GadgetNotifyParent(window, TTN_ERROR);
}

void StopAutoScroll(HWND window, TimeTrackerRecord *r, UINT_PTR timer)
{
    // A scroll timer runs only in a scroll mode: every drag step comes here,
    // and a kill asks the window server even when there is nothing to kill.
    if (r->autoScrollMode)
        KillTimer(window, timer);
    r->autoScrollMode = 0;
    Drag().ticks = 0;
}

// False when the parent destroyed the gadget on hearing of the scroll.
bool StartAutoScroll(HWND window, TimeTrackerRecord *r, UINT_PTR timer, BYTE mode)
{
    if (r->autoScrollMode != mode) {
        SetTimer(window, timer, kScrollDelay, nullptr);
        Drag().scrollStep = static_cast<LONG>(TrackerStep(r));
        r->autoScrollMode = mode;
    }
    TrackerHoldStep(false);
    return GadgetNotifyAlive(window, TTN_SCROLLED, r);
}

// The figures moved within the view: only the band they covered and cover
// now is composed again, from the scale as rendered.
void RepaintBand(HWND window, TimeTrackerRecord *r, LONG oldTop, LONG oldBottom)
{
    TrackerPlaceFigures(r);
    if (TrackerRepaintChanged(r, Drag().dc))
        return;
    TrackerRenderOwnStrip(r);
    LONG top = r->rcStartClock.top < oldTop ? r->rcStartClock.top : oldTop;
    LONG bottom = r->rcEndClock.bottom > oldBottom ? r->rcEndClock.bottom : oldBottom;
    TrackerCompose(window, r, Drag().dc, top, bottom);
}

// The pointer's time moved by the difference from the anchor to `t`.
bool ApplyMove(const DateTimeValue &anchor, const DateTimeValue &t, DateTimeValue *value)
{
    LONG days = 0, hours = 0, minutes = 0, seconds = 0;
    if (!OSDiffDateTime(&anchor, &t, &days, &hours, &minutes, &seconds))
        return false;
    return TrackerShift(value, days, hours, minutes);
}

bool StepRedraw(HWND window, TimeTrackerRecord *r)
{
    TrackerRenderScale(r);
    TrackerRedraw(window, r);
    return true;
}

// A drag step's outcome: done, failed (the drag ends with TTN_ERROR), or
// the gadget is gone (destroyed by its parent inside a notification).
enum class Step { Done, Failed, Gone };

Step DragEdge(HWND window, TimeTrackerRecord *r, LONG y, bool isEnd)
{
    TrackerDrag &d = Drag();
    DateTimeValue t;
    if (!TrackerYToTime(r, y, &t))
        return Step::Failed;
    DateTimeValue moved = isEnd ? r->end : r->start;
    if (!ApplyMove(d.anchor, t, &moved))
        return Step::Failed;
    TrackerSnapHeld(r, &moved);
    (isEnd ? r->end : r->start) = moved;
    d.anchor = t;
    LONG oldY = isEnd ? r->endY : r->startY;
    LONG oldTop = r->rcStartClock.top, oldBottom = r->rcEndClock.bottom;
    bool ok = false;
    LONG newY = TrackerTimeToY(r, &moved, &ok);
    if (!ok)
        return Step::Failed;
    bool crossed = isEnd ? (newY > r->rcScale.bottom && !(oldY > r->rcScale.bottom))
                         : (newY < r->rcScale.top && !(oldY < r->rcScale.top));
    if (crossed) {
        LONG step = static_cast<LONG>(TrackerStep(r));
        if (!TrackerStepView(window, r, isEnd ? step : -step))
            return Step::Failed;
        if (isEnd) {
            if (!TrackerViewEnd(r, &r->end))
                return Step::Failed;
        } else {
            r->start = r->viewStart;
        }
        if (!TrackerNormalise(r, isEnd) || !StepRedraw(window, r))
            return Step::Failed;
        return StartAutoScroll(window, r, isEnd ? kEndScrollTimer : kStartScrollTimer, isEnd ? 2 : 1) ? Step::Done
                                                                                                         : Step::Gone;
    }
    if (!TrackerNormalise(r, isEnd))
        return Step::Failed;
    RepaintBand(window, r, oldTop, oldBottom);
    StopAutoScroll(window, r, isEnd ? kEndScrollTimer : kStartScrollTimer);
    return Step::Done;
}

Step MoveWhole(HWND window, TimeTrackerRecord *r, LONG y)
{
    TrackerDrag &d = Drag();
    DateTimeValue t;
    if (!TrackerYToTime(r, y, &t))
        return Step::Failed;
    DateTimeValue s = r->start, e = r->end;
    if (!ApplyMove(d.anchor, t, &s) || !ApplyMove(d.anchor, t, &e))
        return Step::Failed;
    if ((TrackerStyle(window) & TTS_SINGLEDAY) &&
        (OSDateCompare(&s, &r->start) != 0 || OSDateCompare(&e, &r->start) != 0))
        return Step::Done;
    TrackerSnapHeld(r, &s);
    TrackerSnapHeld(r, &e);
    d.anchor = t;
    LONG oldStartY = r->startY, oldEndY = r->endY;
    LONG oldTop = r->rcStartClock.top, oldBottom = r->rcEndClock.bottom;
    r->start = s;
    r->end = e;
    if (!TrackerNormalise(r, false))
        return Step::Failed;
    TrackerPlaceFigures(r);
    LONG minutes = static_cast<LONG>(r->durationHours * 60 + r->durationMinutes);
    if (r->startY < r->rcScale.top && !(oldStartY < r->rcScale.top)) {
        const DWORD step = TrackerStep(r);
        if (!TrackerStepView(window, r, -static_cast<LONG>(step)))
            return Step::Failed;
        r->start = r->end = r->viewStart;
        if (!TrackerShift(&r->end, 0, 0, minutes))
            return Step::Failed;
        TrackerSnap(&r->end, step);
        StepRedraw(window, r);
        return StartAutoScroll(window, r, kMoveScrollTimer, 1) ? Step::Done : Step::Gone;
    }
    if (r->endY > r->rcScale.bottom && !(oldEndY > r->rcScale.bottom)) {
        const DWORD step = TrackerStep(r);
        if (!TrackerStepView(window, r, static_cast<LONG>(step)) || !TrackerViewEnd(r, &r->end))
            return Step::Failed;
        r->start = r->end;
        if (!TrackerShift(&r->start, 0, 0, -minutes))
            return Step::Failed;
        TrackerSnap(&r->start, step);
        StepRedraw(window, r);
        return StartAutoScroll(window, r, kMoveScrollTimer, 2) ? Step::Done : Step::Gone;
    }
    RepaintBand(window, r, oldTop, oldBottom);
    StopAutoScroll(window, r, kMoveScrollTimer);
    return Step::Done;
}

void PressArrow(HWND window, TimeTrackerRecord *r, bool up)
{
    TrackerDrag &d = Drag();
    (up ? d.upArrow : d.downArrow) = true;
    if (!TrackerStepView(window, r, up ? -kArrowStep : kArrowStep)) {
        FailDrag(window, r);
        return;
    }
    SetTimer(window, up ? kUpArrowTimer : kDownArrowTimer, kScrollDelay, nullptr);
    StepRedraw(window, r);
    TrackerPaintArrows(window, r, d.dc, up, !up);
}

// A click on the scale puts the appointment on the nearest hour.
void ClickScale(HWND window, TimeTrackerRecord *r, LONG y)
{
    DateTimeValue t;
    if (!TrackerYToTime(r, y, &t)) {
        FailDrag(window, r);
        return;
    }
    if (t.minute >= 30 && !TrackerShift(&t, 0, 1, 0)) {
        FailDrag(window, r);
        return;
    }
    t.minute = 0;
    if ((TrackerStyle(window) & TTS_SINGLEDAY) && OSDateCompare(&t, &r->start) != 0)
        return;
    SendMessageA(window, TTM_SETSTARTKEEP, 0, reinterpret_cast<LPARAM>(&t));
}

}  // namespace

void TrackerOnLButtonDown(HWND window, TimeTrackerRecord *r, LPARAM lParam)
{
    LONG y = ClampedY(lParam);
    POINT pt = RawPoint(lParam);
    // Taking the focus tells the parent, which may destroy the gadget.
    if (!(TrackerStyle(window) & TTS_NOFOCUS)) {
        SetFocus(window);
        if (!GadgetAlive(window, r))
            return;
    }
    TrackerDrag &d = Drag();
    if (d.active)
        return;
    d.active = true;
    d.window = window;
    d.record = r;
    d.dc = GetDC(window);
    SetCapture(window);
    r->dragging = 1;
    if (ShowCursor(FALSE) < 0)
        while (ShowCursor(TRUE) < 0) {
        }
    if (!d.dc) {
        OSErrorSetErrorInfo(RV_GDIError);
        FailDrag(window, r);
        return;
    }
    TrackerPlaceFigures(r);
    if (PtInRect(&r->rcUpArrow, pt)) {
        PressArrow(window, r, true);
        return;
    }
    if (PtInRect(&r->rcDownArrow, pt)) {
        PressArrow(window, r, false);
        return;
    }
    if (PtInRect(&r->rcMoveHandle, pt))
        d.movingWhole = true;
    else if (OverStart(window, r, pt))
        d.draggingStart = true;
    else if (OverEnd(window, r, pt))
        d.draggingEnd = true;
    else if (PtInRect(&r->rcScale, pt)) {
        ClickScale(window, r, y);
        return;
    } else
        return;
    if (!TrackerYToTime(r, y, &d.anchor)) {
        FailDrag(window, r);
        return;
    }
    ExcludeClipRect(d.dc, r->rcUpArrow.left, r->rcUpArrow.top, r->rcUpArrow.right, r->rcUpArrow.bottom);
    ExcludeClipRect(d.dc, r->rcDownArrow.left, r->rcDownArrow.top, r->rcDownArrow.right, r->rcDownArrow.bottom);
}

void TrackerOnMouseMove(HWND window, TimeTrackerRecord *r, LPARAM lParam)
{
    TrackerDrag &d = Drag();
    if (!d.active || d.window != window) {
        SetTrackerCursor(window, r, RawPoint(lParam));
        return;
    }
    LONG y = ClampedY(lParam);
    Step step = Step::Done;
    if (!d.draggingStart && !d.draggingEnd && !d.movingWhole)
        return;
    TrackerHoldStep(true);
    if (d.draggingStart)
        step = DragEdge(window, r, y, false);
    else if (d.draggingEnd)
        step = DragEdge(window, r, y, true);
    else
        step = MoveWhole(window, r, y);
    TrackerHoldStep(false);
    if (step == Step::Gone)
        return;
    if (step == Step::Failed) {
        FailDrag(window, r);
        return;
    }
    LONG style = TrackerStyle(window);
    if ((style & TTS_LIVETEXT) && !TrackerSetText(window, r))
        return;
    if (style & TTS_TRACKNOTIFY)
        GadgetNotifyParent(window, TTN_TRACKING);
}

void TrackerOnLButtonUp(HWND window, TimeTrackerRecord *r)
{
    TrackerDrag &d = Drag();
    if (!d.active || d.window != window)
        return;
    if (d.movingWhole || d.draggingStart || d.draggingEnd) {
        if (r->autoScrollMode) {
            KillTimer(window, d.movingWhole ? kMoveScrollTimer : d.draggingStart ? kStartScrollTimer : kEndScrollTimer);
            r->autoScrollMode = 0;
            d.ticks = 0;
            if (!GadgetNotifyAlive(window, TTN_SCROLLED, r))
                return;
        }
        d.movingWhole = d.draggingStart = d.draggingEnd = false;
        if (!TrackerSetText(window, r))
            return;
    } else if (d.upArrow || d.downArrow) {
        KillTimer(window, d.upArrow ? kUpArrowTimer : kDownArrowTimer);
        TrackerPaintArrows(window, r, d.dc, false, false);
        if (!GadgetNotifyAlive(window, TTN_SCROLLED, r) || !GadgetNotifyAlive(window, TTN_VIEWCHANGED, r))
            return;
        // The arrow path leaves by the failure exit: parents see 700, 500, 100.
        FailDrag(window, r);
        return;
    }
    EndDrag(window, r);
}

// The capture went elsewhere (WM_CAPTURECHANGED, WM_CANCELMODE): the drag
// ends where it stands, quietly; the parent hears nothing more of it.
void TrackerOnCaptureLost(HWND window, TimeTrackerRecord *r)
{
    TrackerDrag &d = Drag();
    if (!d.active || d.window != window)
        return;
    for (UINT_PTR id = kUpArrowTimer; id <= kMoveScrollTimer; ++id)
        KillTimer(window, id);
    r->autoScrollMode = 0;
    EndDrag(window, r);
}

void TrackerOnTimer(HWND window, TimeTrackerRecord *r, UINT_PTR id)
{
    TrackerDrag &d = Drag();
    if (id < kUpArrowTimer || id > kMoveScrollTimer)
        return;
    if (d.ticks % 6 == 0) {
        d.scrollStep *= 2;
        if (d.scrollStep > kMaxScrollStep)
            d.scrollStep = kMaxScrollStep;
    }
    LONG step = d.scrollStep;
    bool ok = false;
    switch (id) {
    case kUpArrowTimer:
        ok = TrackerStepView(window, r, -kArrowStep);
        break;
    case kDownArrowTimer:
        ok = TrackerStepView(window, r, kArrowStep);
        break;
    case kStartScrollTimer:
        ok = TrackerStepView(window, r, -step);
        if (ok) {
            r->start = r->viewStart;
            ok = TrackerNormalise(r, false);
        }
        break;
    case kEndScrollTimer:
        ok = TrackerStepView(window, r, step) && TrackerViewEnd(r, &r->end) && TrackerNormalise(r, true);
        break;
    case kMoveScrollTimer: {
        LONG minutes = static_cast<LONG>(r->durationHours * 60 + r->durationMinutes);
        if (r->autoScrollMode == 1) {
            ok = TrackerStepView(window, r, -step);
            if (ok) {
                r->start = r->end = r->viewStart;
                ok = TrackerShift(&r->end, 0, 0, minutes) && TrackerNormalise(r, false);
            }
        } else {
            ok = TrackerStepView(window, r, step) && TrackerViewEnd(r, &r->end);
            if (ok) {
                r->start = r->end;
                ok = TrackerShift(&r->start, 0, 0, -minutes) && TrackerNormalise(r, true);
            }
        }
        break;
    }
    }
    if (!ok) {
        for (UINT_PTR t = kUpArrowTimer; t <= kMoveScrollTimer; ++t)
            KillTimer(window, t);
        GadgetNotifyParent(window, TTN_ERROR);
        return;
    }
    StepRedraw(window, r);
    if (d.active && d.window == window && (d.upArrow || d.downArrow))
        TrackerPaintArrows(window, r, d.dc, d.upArrow, d.downArrow);
    if (GadgetNotifyAlive(window, TTN_SCROLLED, r))
        ++d.ticks;
}
