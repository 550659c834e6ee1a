// TimeTracker's keys and text: the arrow keys step start, end or both by
// the fine step, and a text set from outside moves the appointment.
#include "time_tracker.h"
#include "../gadgets/gadget_frame.h"

namespace {

// ---------------------------------------------------------------- keys
// Up and Down move start (Shift), end (Ctrl) or both by the fine step and
// snap to the step of the moment (the coarse one under Shift); the view
// follows when the moved time leaves it.
bool KeyUp(HWND window, TimeTrackerRecord *r, bool shift, bool ctrl)
{
    DateTimeValue t = ctrl ? r->end : r->start;
    DateTimeValue u = r->end;
    LONG step = r->fineStep;
    if (!TrackerShift(&t, 0, 0, -step) || !TrackerShift(&u, 0, 0, -step))
        return false;
    TrackerSnap(&t, TrackerStep(r));
    TrackerSnap(&u, TrackerStep(r));
    if (!Later(&r->viewStart, &t)) {
        if (ctrl) {
            r->end = t;
        } else if (shift) {
            r->start = t;
        } else {
            r->start = t;
            r->end = u;
        }
    } else {
        if (TrackerStyle(window) & TTS_SINGLEDAY) {
            if (!TrackerStepView(window, r, -step))
                return false;
        } else {
            r->viewStart = t;
        }
        if (ctrl) {
            r->end = r->viewStart;
        } else {
            r->start = r->viewStart;
            if (!shift && Later(&u, &r->start))
                r->end = u;
        }
        TrackerRenderScale(r);
    }
    return TrackerNormalise(r, ctrl);
}

bool KeyDown(HWND window, TimeTrackerRecord *r, bool shift, bool ctrl)
{
    DateTimeValue t = shift ? r->start : r->end;
    DateTimeValue u = r->start;
    LONG step = r->fineStep;
    if (!TrackerShift(&t, 0, 0, step) || !TrackerShift(&u, 0, 0, step))
        return false;
    TrackerSnap(&t, TrackerStep(r));
    TrackerSnap(&u, TrackerStep(r));
    DateTimeValue last;
    if (!TrackerViewEnd(r, &last))
        return false;
    if (!Later(&t, &last)) {
        if (shift) {
            r->start = t;
        } else if (ctrl) {
            r->end = t;
        } else {
            r->start = u;
            r->end = t;
        }
    } else {
        if (TrackerStyle(window) & TTS_SINGLEDAY) {
            if (!TrackerStepView(window, r, step) || !TrackerViewEnd(r, &last))
                return false;
        } else {
            last = t;
        }
        r->end = last;
        if (!shift && !ctrl && Later(&r->end, &u))
            r->start = u;
        DateTimeValue v = last;
        if (!TrackerShift(&v, 0, -static_cast<LONG>(r->hoursInView), 0))
            return false;
        r->viewStart = v;
        TrackerRenderScale(r);
    }
    return TrackerNormalise(r, ctrl);
}

}  // namespace

void TrackerOnKeyDown(HWND window, TimeTrackerRecord *r, WPARAM key)
{
    if (key == VK_UP || key == VK_DOWN) {
        bool shift = (GetKeyState(VK_SHIFT) & 0x8000) != 0;
        bool ctrl = !shift && (GetKeyState(VK_CONTROL) & 0x8000) != 0;
        bool ok = key == VK_UP ? KeyUp(window, r, shift, ctrl) : KeyDown(window, r, shift, ctrl);
        if (ok) {
            TrackerRedraw(window, r);
            if (!TrackerSetText(window, r))
                return;
        } else if (!GadgetNotifyAlive(window, TTN_ERROR, r)) {
            return;
        }
    }
    HDC dc = GetDC(window);
    if (dc) {
        TrackerPaintArrows(window, r, dc, false, false);
        ReleaseDC(window, dc);
    }
}

// ---------------------------------------------------------------- text
// A text set from outside moves the appointment to its time of day.
void TrackerOnSetText(HWND window, TimeTrackerRecord *r, const char *text)
{
    if (r->inTextUpdate)
        return;
    DateTimeValue t = {};
    bool failed = !text || !OSStringToDateTimeTimeBias(&t, text);
    if (failed)
        OSGetDateTime(&t);
    bool endText = (TrackerStyle(window) & TTS_ENDTEXT) != 0;
    const DateTimeValue &day = endText ? r->end : r->start;
    t.year = day.year;
    t.month = day.month;
    t.day = day.day;
    t.second = 0;
    bool ok = true;
    if (endText)
        ok = TrackerShift(&t, 0, -static_cast<LONG>(r->durationHours), -static_cast<LONG>(r->durationMinutes));
    if (ok)
        SendMessageA(window, TTM_SETSTARTKEEP, 0, reinterpret_cast<LPARAM>(&t));
    if (failed || !ok)
        GadgetNotifyParent(window, TTN_ERROR);
}
