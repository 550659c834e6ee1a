// The FreeTime gadget's record and what its units share: the people and
// their busy lists, the merged union, the surfaces and the layout.
#pragma once
#include <windows.h>
#include "qziso32.h"

struct FreeTimePerson {
    char *name;          // a private copy
    BusyInterval *busy;  // owned
    DWORD busyCount;
    DWORD id;            // the host's key
    DWORD state;         // selects the icon and the sort; starts at 1
    LONG unavailable;    // column shaded, busy list dropped
    LONG optional;       // left out of the tracker's list under ignoreOptional
    DWORD pendingCount;  // the count FTM_SETBUSYCOUNT set for FTM_SETBUSYLIST
    LONG countSet;       // pendingCount was set and not yet used
};

struct FreeTimeRecord {
    FreeTimePerson *people;
    BusyInterval *merged;    // the week view's union of all busy time
    DateTimeValue weekStart; // first day of the grid, time fields 0
    RECT rcHeader;           // the week view's header strip; empty in the people view
    RECT rcGrid;             // the columns, from the tracker's first to last hour
    HWND scrollBar;
    HWND tracker;
    HDC dcMono;              // column heads and lines
    HDC dcColour;            // the grid with its blocks
    HDC dcShown;             // dcColour with the meeting on it
    HBITMAP savedMono;
    HBITMAP savedColour;
    HBITMAP savedShown;
    HFONT font;
    DWORD viewMode;          // 1 people, 2 week
    DWORD personCount;
    DWORD mergedCount;
    DWORD headerHeight;      // the week header's height, and a person's column width
    LONG showWeekend;
    LONG needsRender;
    DWORD firstPerson;
    LONG redrawOn;
    DWORD sortMode;          // 1 by name, 2 by state
    LONG ignoreOptional;
    LONG busyListDirty;
    LONG mergedDirty;
    LONG vertText;           // counted as a user of vertical text
};

const int kTrackerId = 1;
const int kScrollBarId = 2;
const DWORD kPeopleView = 1;
const DWORD kWeekView = 2;
const UINT kFirstStateBitmap = 9;  // a person's icon is bitmap state + 9
const COLORREF kIconKey = 0xFFFF00;

inline FreeTimeRecord *FreeTimeOf(HWND window)
{
    return reinterpret_cast<FreeTimeRecord *>(GetWindowLongPtrA(window, 0));
}

// ---------------------------------------------------------------- merging
// The overlap of two intervals given as start and length: 2 none (or a
// length 0), 12 overlap with A starting first or together, 13 with B first,
// 1 when the arithmetic failed. Touching is not overlapping.
int FreeTimeOverlap(const BusyInterval *a, const BusyInterval *b);
// Merges one interval into the list: absorbed into the first element it
// overlaps (with any further ones it overlaps), or appended.
bool FreeTimeMergeOne(BusyInterval **list, DWORD *count, const BusyInterval *interval);
// The tracker's busy list as the union of everyone's, when redraw is on and
// the list is dirty. False when a step failed (recorded).
bool FreeTimeFeedTracker(HWND window, FreeTimeRecord *r);
// `merged` again from every person, when redraw is on and it is dirty.
bool FreeTimeRebuildMerged(FreeTimeRecord *r);
// Both of the above; sends FTN_ERROR on a failure. False when the parent
// destroyed the gadget meanwhile.
bool FreeTimeRunPending(HWND window, FreeTimeRecord *r);
void FreeTimeFreeList(BusyInterval *list);

// ---------------------------------------------------------------- drawing
void FreeTimeMetrics(HWND window, FreeTimeRecord *r);
void FreeTimeLayout(HWND window, FreeTimeRecord *r);
bool FreeTimeBuildSurfaces(HWND window, FreeTimeRecord *r);
void FreeTimeDestroySurfaces(FreeTimeRecord *r);
// The three surfaces from the data; false on a GDI failure (recorded).
bool FreeTimeRender(HWND window, FreeTimeRecord *r);
void FreeTimeOnPaint(HWND window, FreeTimeRecord *r);
// The meeting again on dcShown, and its column strip to the window.
void FreeTimeFastMeeting(HWND window, FreeTimeRecord *r);
// Columns of the grid in the current view, and the left and width of one.
DWORD FreeTimeColumnCount(const FreeTimeRecord *r);
void FreeTimeColumn(const FreeTimeRecord *r, DWORD index, LONG *left, LONG *width);
// The scroll bar's range and position for the view, and its visibility.
void FreeTimeSetScrollBar(FreeTimeRecord *r);
// Marks the surfaces for rendering and invalidates, when redraw is on.
void FreeTimeInvalidate(HWND window, FreeTimeRecord *r);
