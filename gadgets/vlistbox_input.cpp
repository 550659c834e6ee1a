// QzVListBox: keys, the mouse and its drag, and the text set by the host.
#include "vlistbox.h"
#include <string.h>

namespace vlb {

// Moves the caret to `index` and scrolls it into view.
void FollowCaret(HWND w, VListRecord *r, int step)
{
    DWORD caret = r->caretIndex;
    if (caret < r->topIndex)
        ScrollTo(w, r, caret, step);
    else if (r->visibleCount && caret - r->topIndex >= r->visibleCount)
        ScrollTo(w, r, caret - r->visibleCount + 1, step);
    else
        RepaintItem(w, r, caret);
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
        else if (Multiple(w))
            Toggle(w, r, caret);
        SelChanged(w, r);
        GadgetNotifyParent(w, kCodeSelChange);
        if ((r = Rec(w)) != nullptr)
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
    SelChanged(w, r);
    GadgetNotifyParent(w, kCodeSelChange);
    if (!(r = Rec(w)))
        return;
    if (Extended(w)) {
        if (GetKeyState(VK_SHIFT) < 0) {
            if (key == VK_HOME || key == VK_END)
                SelectRun(w, r);
            else
                RangeWalk(w, r, old, r->caretIndex);
        } else {
            VListSelClear(r->selection);
            r->anchorIndex = r->caretIndex;
            if (!VListSelAdd(r->selection, r->caretIndex))
                ReportError(w);
            RepaintAll(w, r);
        }
        SelChanged(w, r);
        GadgetNotifyParent(w, kCodeSelChange);
        if (!(r = Rec(w)))
            return;
    }
    RepaintItem(w, r, old);
    if (Single(w) && oldSel != kUnknown)
        RepaintItem(w, r, oldSel);
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
    if (Single(w)) {
        r->currentSelection = index;
        RepaintItem(w, r, oldSel);
    } else if (Multiple(w)) {
        Toggle(w, r, index);
    } else {
        r->currentSelection = index;
        if (keys & MK_CONTROL) {
            r->anchorIndex = index;
            Toggle(w, r, index);
            ReleaseCapture();
            r->mouseCaptured = false;
        } else if (keys & MK_SHIFT) {
            SelectRun(w, r);
        } else {
            r->anchorIndex = index;
            VListSelClear(r->selection);
            if (!VListSelAdd(r->selection, index))
                ReportError(w);
            RepaintAll(w, r);
        }
    }
    RepaintItem(w, r, oldCaret);
    RepaintItem(w, r, index);
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
            ScrollTo(w, r, r->topIndex - 1, r->itemHeight);
        } else {
            if (r->totalItems != kUnknown && r->topIndex == ClampTop(r, kUnknown))
                return;
            caret = r->topIndex + r->visibleCount;
            ScrollTo(w, r, r->topIndex + 1, r->itemHeight);
        }
    }
    if (!(r = Rec(w)) || caret == old)
        return;
    r->caretIndex = caret;
    if (Single(w)) {
        DWORD oldSel = r->currentSelection;
        r->currentSelection = caret;
        RepaintItem(w, r, oldSel);
    } else if (Extended(w)) {
        r->currentSelection = caret;
        RangeWalk(w, r, old, caret);
    }
    RepaintItem(w, r, old);
    RepaintItem(w, r, caret);
}

void OnLButtonUp(HWND w, VListRecord *r)
{
    if (!r->mouseCaptured)
        return;
    r->mouseCaptured = false;
    ReleaseCapture();
    if (!(r = Rec(w)))
        return;
    SelChanged(w, r);
    GadgetNotifyParent(w, kCodeMouseUp);
    if ((r = Rec(w)) != nullptr)
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, false);
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
        Notify(w, r, VLN_FIND, &request);
        if (request.index != kUnknown)
            VListBox_SetCurSel(w, request.index);
    }
    if ((r = Rec(w)) != nullptr)
        r->inTextSync = false;
}

}  // namespace vlb
