// The TimeTracker's record and what its units share: the time arithmetic,
// the placing of the figures, the surfaces, the busy list and the drag.
#pragma once
#include <windows.h>
#include "qziso32.h"
#include "busy_lanes.h"

// Where a composition put the appointment's figures, and what they showed,
// to find what a drag step changed.
struct TrackerFigures {
    RECT labels[3];  // start, end, duration
    RECT clocks[2];  // start, end
    DateTimeValue start, end;
    DWORD durationHours, durationMinutes;
    LONG barTop, barBottom;  // the bar's rows; both 0 when it is not drawn
};
struct TimeTrackerRecord {
    DateTimeValue viewStart;  // the time at the top of the scale
    DateTimeValue start;
    DateTimeValue end;
    RECT rcFrame;             // the scale column; the surfaces cover it
    RECT rcUpArrow;
    RECT rcDownArrow;
    RECT rcScale;             // top and bottom: the y of the first and last hour
    RECT rcStartClock;
    RECT rcStartLabel;
    RECT rcDurationLabel;
    RECT rcEndLabel;
    RECT rcEndClock;
    RECT rcMoveHandle;        // the duration label, as the grip for moving all
    COLORREF backColour;
    COLORREF ownBarColour;    // green when free, red when clashing
    HFONT font;
    HFONT ownFont;
    HBITMAP clockBitmap;
    HBITMAP clockMask;
    HBITMAP spareBitmap1;
    HBITMAP spareBitmap2;
    HBITMAP savedWork;
    HBITMAP savedScale;
    HBITMAP savedLanesBack;
    HBITMAP savedLanes;
    HDC dcWork;
    HDC dcScale;
    HDC dcLanesBack;
    HDC dcLanes;
    HDC dcScaleColour;        // the scale in the work surface's colours
    HBITMAP savedScaleColour;
    COLORREF scaleColourBack; // the colours it was converted with
    COLORREF scaleColourText;
    BYTE scaleColourReady;    // cleared by each render of the scale
    BYTE figuresShown;        // the work surface and the window show `shown`
                              // over the scale and lanes as they stand
    TrackerFigures shown;
    LONG ownShownTop;         // the own block as last drawn in the strip
    LONG ownShownBottom;
    COLORREF ownShownColour;
    HBRUSH barBrush;
    DWORD hoursInView;
    DWORD pixelsPerHour;
    DWORD extraPixels;        // the first extraPixels hours are a pixel taller
    DWORD hourLabelHeight;
    BusyInterval *busy;
    LONG endY;
    LONG startY;
    LONG middleY;
    DWORD timeLabelWidth;
    DWORD durationLabelWidth;
    DWORD busyCount;
    DWORD laneCount;
    DWORD labelHeight;
    DWORD durationMinutes;
    DWORD durationHours;
    BYTE coarseStep;
    BYTE fineStep;
    BYTE autoScrollMode;      // 0 none, 1 up, 2 down
    LONG inTextUpdate;
    LONG dragging;
};

// The one drag of all trackers: only one window can hold the capture.
struct TrackerDrag {
    bool active;
    bool upArrow;
    bool downArrow;
    bool movingWhole;
    bool draggingStart;
    bool draggingEnd;
    HWND window;
    TimeTrackerRecord *record;
    HDC dc;
    DateTimeValue anchor;
    LONG scrollStep;
    DWORD ticks;
    bool sizing;  // guards WM_SIZE against the gadget's own SetWindowPos
};
extern TrackerDrag g_trackerDrag;

const COLORREF kTrackerDefaultBack = 0x818100;
const COLORREF kOwnBarFree = 0x00FF00;
const COLORREF kOwnBarClash = 0x0000FF;
const UINT kDurationFormatString = 30;
const UINT kClockBitmap = 1;
const UINT kBarBitmap = 3;
const DWORD kLaneWidth = 8;
const DWORD kMaxLanes = 5;

inline TimeTrackerRecord *TrackerRecord(HWND window)
{
    return reinterpret_cast<TimeTrackerRecord *>(GetWindowLongPtrA(window, 0));
}
inline LONG TrackerStyle(HWND window) { return static_cast<LONG>(GetWindowLongPtrA(window, GWL_STYLE)); }

// ------------------------------------------------------------- arithmetic
// Moves `value` by the amounts given; fails (with the calendar's reason
// recorded, the value untouched) when it would leave the calendar.
bool TrackerShift(DateTimeValue *value, LONG days, LONG hours, LONG minutes);
// `b` - `a` in whole hours (days folded in) and minutes.
bool TrackerDiff(const DateTimeValue *a, const DateTimeValue *b, LONG *hours, LONG *minutes);
// True when `a` is later than `b`.
inline bool Later(const DateTimeValue *a, const DateTimeValue *b) { return OSDateTimeCompare(a, b) > 0; }
// The step of the moment: the coarse one while Shift is down. Within a drag
// step the key is read once: the state cannot change before the step
// tells the parent anything.
DWORD TrackerStep(const TimeTrackerRecord *r);
void TrackerHoldStep(bool holding);
// Snaps to the step of the moment; where the coarse and the fine step give
// the same minute, the key is not read at all.
void TrackerSnapHeld(const TimeTrackerRecord *r, DateTimeValue *value);
// minute = (minute / step) * step; a step of 0 leaves it and records the fault.
void TrackerSnap(DateTimeValue *value, DWORD step);
// Normalises start, end and the duration from one end.
bool TrackerNormalise(TimeTrackerRecord *r, bool fromEnd);
LONG TrackerTimeToY(const TimeTrackerRecord *r, const DateTimeValue *t, bool *ok);
bool TrackerYToTime(const TimeTrackerRecord *r, LONG y, DateTimeValue *out);
// The view's last time: viewStart + hoursInView.
bool TrackerViewEnd(const TimeTrackerRecord *r, DateTimeValue *out);
// One view step of `minutes`, bounded to the day under TTS_SINGLEDAY.
bool TrackerStepView(HWND window, TimeTrackerRecord *r, LONG minutes);
// The window text from start (end under TTS_ENDTEXT) and TTN_TIMECHANGED;
// false when the parent destroyed the gadget meanwhile.
bool TrackerSetText(HWND window, TimeTrackerRecord *r);
// TTM_SETSTARTKEEP.
LRESULT TrackerSetStartKeep(HWND window, TimeTrackerRecord *r, const DateTimeValue *value);

// ------------------------------------------------------------- painting
bool TrackerMetrics(HWND window, TimeTrackerRecord *r);
void TrackerLayout(HWND window, TimeTrackerRecord *r);
void TrackerPlaceFigures(TimeTrackerRecord *r);
DWORD TrackerIdealWidth(const TimeTrackerRecord *r);
DWORD TrackerIdealHeight(const TimeTrackerRecord *r);
bool TrackerBuildSurfaces(HWND window, TimeTrackerRecord *r);
void TrackerDestroySurfaces(TimeTrackerRecord *r);
// Repaints the scale surface (after a change of view or size) and the lanes.
void TrackerRenderScale(TimeTrackerRecord *r);
void TrackerRenderLanes(TimeTrackerRecord *r);
// The appointment's own column of the strip and its clash colour, over the
// busy lanes as last rendered.
void TrackerRenderOwnStrip(TimeTrackerRecord *r);
// Composes the work surface and shows the band [top, bottom) of rcFrame.
void TrackerCompose(HWND window, TimeTrackerRecord *r, HDC dc, LONG top, LONG bottom);
// Composes the rows [top, bottom) of the work surface, within its clip;
// with `parts` given, the figures that reach none of them are left out.
void TrackerComposeWork(TimeTrackerRecord *r, LONG top, LONG bottom, const RECT *parts = nullptr, int count = 0);
// How far a label's or a clock's pixels may reach.
RECT TrackerLabelReach(const TimeTrackerRecord *r, const RECT &label);
RECT TrackerClockReach(const RECT &clock);
void TrackerTakeFigures(const TimeTrackerRecord *r, TrackerFigures *f);
// The own block's rows in the strip as the placed figures give them.
void TrackerOwnRows(const TimeTrackerRecord *r, LONG *top, LONG *bottom);
COLORREF TrackerOwnBarColour(const TimeTrackerRecord *r);
// Shows a drag step's change (figures placed anew) by composing and showing
// only what changed since the last composition; false, with nothing drawn,
// when the whole band must be composed instead.
bool TrackerRepaintChanged(TimeTrackerRecord *r, HDC dc);
void TrackerPaintArrows(HWND window, TimeTrackerRecord *r, HDC dc, bool upPressed, bool downPressed);
// Everything again, at once.
void TrackerRedraw(HWND window, TimeTrackerRecord *r);
void TrackerOnPaint(HWND window, TimeTrackerRecord *r);
// The clock mask's pixel at (x, y) within `rect` is opaque.
bool TrackerClockHit(HWND window, const TimeTrackerRecord *r, const RECT *rect, POINT pt);

// ------------------------------------------------------------- busy list
LRESULT TrackerAddBusy(HWND window, TimeTrackerRecord *r, DWORD id, const BusyInterval *interval);
LRESULT TrackerRemoveBusy(HWND window, TimeTrackerRecord *r, DWORD id);
LRESULT TrackerSetBusyList(HWND window, TimeTrackerRecord *r, DWORD count, const BusyInterval *list);
LRESULT TrackerClearBusy(HWND window, TimeTrackerRecord *r);
LRESULT TrackerFindFreeSlot(HWND window, TimeTrackerRecord *r, FreeSlotRequest *request);
// Keeps the height, sets the ideal width, lays out and rebuilds.
void TrackerFitWidth(HWND window, TimeTrackerRecord *r);

// ------------------------------------------------------------- keys, text
void TrackerOnKeyDown(HWND window, TimeTrackerRecord *r, WPARAM key);
void TrackerOnSetText(HWND window, TimeTrackerRecord *r, const char *text);

// ------------------------------------------------------------- drag
void TrackerOnLButtonDown(HWND window, TimeTrackerRecord *r, LPARAM lParam);
void TrackerOnMouseMove(HWND window, TimeTrackerRecord *r, LPARAM lParam);
void TrackerOnLButtonUp(HWND window, TimeTrackerRecord *r);
void TrackerOnTimer(HWND window, TimeTrackerRecord *r, UINT_PTR id);
void TrackerOnCaptureLost(HWND window, TimeTrackerRecord *r);
