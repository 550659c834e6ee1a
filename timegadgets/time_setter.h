// The TimeSetter's record and what its units share: the time arithmetic,
// the layout and the painting, the one drag of all setters.
#pragma once
#include <windows.h>
#include "qziso32.h"

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
extern SetterDrag g_drag;

void Notify(HWND window, WORD code);

// ------------------------------------------------------------- time
BYTE CurrentStep(const TimeSetterRecord *r);
bool Snap(const TimeSetterRecord *r, DateTimeValue *t);
// Moves `t` by `minutes` and snaps it.
bool StepSnapped(const TimeSetterRecord *r, DateTimeValue *t, LONG minutes);
bool TimeToY(const TimeSetterRecord *r, const DateTimeValue *t, LONG *y);
// The time at `y`, snapped.
bool YToTime(const TimeSetterRecord *r, LONG y, DateTimeValue *out);
bool InScaleRows(const TimeSetterRecord *r, LONG y);
// The label's text: the time of `value`.
void ValueText(const TimeSetterRecord *r, char *text);
// The window text and TSN_TIMECHANGED; false when the parent destroyed the
// gadget meanwhile.
bool SetText(HWND window, TimeSetterRecord *r);

// ------------------------------------------------------------- painting
bool Measure(HWND window, TimeSetterRecord *r);
void Layout(HWND window, TimeSetterRecord *r);
bool ScaleMetrics(TimeSetterRecord *r);
void Place(TimeSetterRecord *r);
bool PlaceValue(TimeSetterRecord *r);
void DestroySurfaces(TimeSetterRecord *r);
void SetWorkColours(TimeSetterRecord *r);
bool BuildSurfaces(HWND window, TimeSetterRecord *r);
void Compose(HDC target, const TimeSetterRecord *r, LONG top, LONG bottom);
void InvertArrow(HDC dc, TimeSetterRecord *r, bool up);
bool Redraw(HWND window, TimeSetterRecord *r);
void OnPaint(HWND window, TimeSetterRecord *r);
LRESULT OnEraseBackground(HWND window, HDC dc, const TimeSetterRecord *r);

// ------------------------------------------------------------- drag, timers
void KillScrollTimers(HWND window);
void EndDrag();
void OnLButtonDown(HWND window, TimeSetterRecord *r, LONG x, LONG y);
void OnMouseMove(HWND window, TimeSetterRecord *r, LONG y);
void OnCaptureLost(HWND window, TimeSetterRecord *r);
void OnLButtonUp(HWND window, TimeSetterRecord *r);
void OnTimer(HWND window, TimeSetterRecord *r, WPARAM id);
