// QzVListBox: keys, the mouse and its drag, and the text set by the host.
#include "vlistbox.h"
#include <string.h>

namespace vlb {

// Scrolls the caret into view, or repaints its row when it is on view.
bool FollowCaret(HWND w, VListRecord *r, int step)
{
    DWORD caret = r->caretIndex;
    if (caret < r->topIndex)
        return ScrollTo(w, r, caret, step);
    if (r->visibleCount && caret - r->topIndex >= r->visibleCount)
        return ScrollTo(w, r, caret - r->visibleCount + 1, step);
    return RepaintItem(w, r, caret);
}

// VLN_SELCHANGE (and the text link), then code 0x11 to the parent.
bool SelAndParent(HWND w, VListRecord *r)
{
    return SelChanged(w, r) && GadgetNotifyAlive(w, kCodeSelChange, r);
}

void OnKeyDown(HWND w, VListRecord *r, WPARAM key)
{
    if (key < VK_SPACE || key > VK_DOWN || key == VK_LEFT || key == VK_RIGHT || !r->callback)
        return;
    DWORD old = r->caretIndex, oldSel = r->currentSelection, caret = old;
    DWORD count = Count(r);
    DWORD lastItem = r->totalItems != kUnknown ? r->totalItems - 1 : kUnknown;
    int step = r->itemHeight;
    switch (key) {
    case VK_SPACE:
        if (Single(w))
            r->currentSelection = r->currentSelection == caret ? kUnknown : caret;
        else if (Multiple(w) && !Toggle(w, r, caret))
            return;
        if (SelAndParent(w, r))
            RepaintItem(w, r, r->caretIndex);
        return;
    case VK_PRIOR:
        caret = r->visibleCount && caret > r->visibleCount - 1 ? caret - r->visibleCount + 1 : 0;
        break;
    case VK_NEXT:
        caret = caret + (r->visibleCount ? r->visibleCount - 1 : 0);
        if (caret > lastItem || caret < old)
            caret = lastItem;
        break;
    case VK_END: caret = count - 1; break;
    case VK_HOME: caret = 0; break;
    case VK_UP:
        caret = caret ? caret - 1 : 0;
        step = 1;
        break;
    case VK_DOWN:
        if (!Single(w) && !Extended(w))
            caret = caret < lastItem ? caret + 1 : lastItem;
        else if (r->currentSelection != kUnknown)
            caret = caret < lastItem ? caret + 1 : lastItem;
        step = 1;
        break;
    }
    r->caretIndex = caret;
    if (!Multiple(w))
        r->currentSelection = caret;
    if (!SelAndParent(w, r))
        return;
    if (Extended(w)) {
        bool alive;
        if (GetKeyState(VK_SHIFT) < 0) {
            alive = key == VK_HOME || key == VK_END ? SelectRun(w, r)
                                                    : RangeWalk(w, r, old, r->caretIndex);
        } else {
            VListSelClear(r->selection);
            r->anchorIndex = r->caretIndex;
            alive = (VListSelAdd(r->selection, r->caretIndex) || ReportError(w)) && RepaintAll(w, r);
        }
        if (!alive || !SelAndParent(w, r))
            return;
    }
    if (!RepaintItem(w, r, old))
        return;
    if (Single(w) && oldSel != kUnknown && !RepaintItem(w, r, oldSel))
        return;
    FollowCaret(w, r, step);
}

DWORD IndexAt(const VListRecord *r, int y)
{
    return static_cast<DWORD>(static_cast<long long>(r->topIndex) + y / r->itemHeight);
}

void OnLButtonDown(HWND w, VListRecord *r, WPARAM keys, int y)
{
    if (!r->callback)
        return;
    DWORD index = IndexAt(r, y);
    if (r->totalItems != kUnknown && index > r->totalItems - 1)
        return;
    SetCapture(w);
    r->mouseCaptured = true;
    DWORD oldCaret = r->caretIndex, oldSel = r->currentSelection;
    r->caretIndex = index;
    bool alive = true;
    if (Single(w)) {
        r->currentSelection = index;
        alive = RepaintItem(w, r, oldSel);
    } else if (Multiple(w)) {
        alive = Toggle(w, r, index);
    } else {
        r->currentSelection = index;
        if (keys & MK_CONTROL) {
            r->anchorIndex = index;
            alive = Toggle(w, r, index);
            if (alive)
                EndDrag(w, r);
            ReleaseCapture();
        } else if (keys & MK_SHIFT) {
            alive = SelectRun(w, r);
        } else {
            r->anchorIndex = index;
            VListSelClear(r->selection);
            alive = (VListSelAdd(r->selection, index) || ReportError(w)) && RepaintAll(w, r);
        }
    }
    if (alive && RepaintItem(w, r, oldCaret) && RepaintItem(w, r, index))
        SetFocus(w);
}

void OnMouseMove(HWND w, VListRecord *r, int y)
{
    if (!r->mouseCaptured || r->itemHeight <= 0)
        return;
    DWORD old = r->caretIndex, caret = old;
    int rowsBottom = static_cast<int>(r->visibleCount) * r->itemHeight;
    DWORD count = Count(r);
    DWORD lastRow = count > r->topIndex ? count - r->topIndex : 0;  // rows holding items
    if (lastRow > r->visibleCount)
        lastRow = r->visibleCount;
    if (y >= 0 && y < rowsBottom && (r->totalItems == kUnknown || (DWORD)(y / r->itemHeight) < lastRow)) {
        caret = IndexAt(r, y);
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, false);
    } else {
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, true);
        if (y < 0) {
            if (r->topIndex == 0)
                return;
            caret = r->topIndex - 1;
            if (!ScrollTo(w, r, r->topIndex - 1, r->itemHeight))
                return;
        } else {
            if (r->totalItems != kUnknown && r->topIndex == ClampTop(r, kUnknown))
                return;
            caret = r->topIndex + r->visibleCount;
            if (!ScrollTo(w, r, r->topIndex + 1, r->itemHeight))
                return;
        }
    }
    if (caret == old)
        return;
    r->caretIndex = caret;
    if (Single(w)) {
        DWORD oldSel = r->currentSelection;
        r->currentSelection = caret;
        if (!RepaintItem(w, r, oldSel))
            return;
    } else if (Extended(w)) {
        r->currentSelection = caret;
        if (!RangeWalk(w, r, old, caret))
            return;
    }
    if (RepaintItem(w, r, old))
        RepaintItem(w, r, caret);
}

// The drag ends without a word to anyone: capture lost, WM_CANCELMODE, or
// a Ctrl click that ends it at once.
void EndDrag(HWND w, VListRecord *r)
{
    r->mouseCaptured = false;
    VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, false);
}

void OnLButtonUp(HWND w, VListRecord *r)
{
    if (!r->mouseCaptured)
        return;
    EndDrag(w, r);
    ReleaseCapture();
    if (GadgetAlive(w, r) && SelChanged(w, r))
        GadgetNotifyParent(w, kCodeMouseUp);
}

void OnSetText(HWND w, VListRecord *r, const char *text)
{
    if (r->inTextSync || !Single(w) || !r->callback)
        return;
    r->inTextSync = true;
    char current[256] = "";
    GetWindowTextA(w, current, sizeof current);
    if (lstrcmpiA(text ? text : "", current) != 0) {
        VLFINDREQUEST request = {text ? text : "", 0};
        if (!Notify(w, r, VLN_FIND, &request))
            return;
        if (request.index != kUnknown && !VListBox_SetCurSel(w, request.index))
            return;
    }
    if (GadgetAlive(w, r))
        r->inTextSync = false;
}

}  // namespace vlb
