// What the two virtual lists share: the selection as a set of index runs,
// the thumb mapping, and the glide that moves the window's content towards
// an off-screen copy in slices.
#pragma once
#include <windows.h>

// ---------------------------------------------------------------- selection
// A sorted set of item indices held as disjoint, non-adjacent runs, so that
// a run of any length costs one record. The count is kept beside it.
struct VListRun {
    DWORD low;
    DWORD high;  // included
};
struct VListSelection {
    VListRun *runs;  // local block, null when empty
    DWORD runCount;
    DWORD count;     // indices selected
};
bool VListSelContains(const VListSelection &sel, DWORD index);
// Adds or removes one index; false (with the set unchanged and
// RV_OutOfLocalMemory recorded) when the block cannot grow.
bool VListSelAdd(VListSelection &sel, DWORD index);
bool VListSelRemove(VListSelection &sel, DWORD index);
void VListSelClear(VListSelection &sel);
// Replaces the set with the run low..high.
bool VListSelSetRun(VListSelection &sel, DWORD low, DWORD high);
// Copies the indices in ascending order into `buffer`.
void VListSelCopy(const VListSelection &sel, DWORD *buffer);

// ---------------------------------------------------------------- thumb
// The scroll range for `count` items with `visible` rows.
int VListThumbRange(DWORD count, DWORD visible);
// Index to thumb and back; products are taken in 64 bits.
int VListThumbFromIndex(DWORD index, DWORD count, DWORD visible);
DWORD VListIndexFromThumb(int thumb, DWORD count, DWORD visible);

// ---------------------------------------------------------------- glide
// Moves the rows area `rows` of the window's content by `distance` pixels
// (positive: the content moves up) in steps of `step` pixels, copying each
// uncovered slice from `memory`, which already holds the final picture.
void VListGlide(HWND window, HDC memory, const RECT &rows, int distance, int step);
