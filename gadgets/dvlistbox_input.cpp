// QzDVListBox: keys, the mouse and its drag, type-ahead and the scroll bar.
#include "dvlistbox.h"
#include <string.h>

namespace dvl {

void SelChange(HWND w, DVListRecord *r)
{
    DWORD word = 0;
    Notify(w, r, VLN_SELCHANGE, &word);
}

// Step 4 of a key move: the caret's entry gives the references.
bool TakeCaretEntry(HWND w, DVListRecord *r, bool load)
{
    DvEntry *e = LookUp(w, r->caretIndex, load);
    if (!(r = Rec(w)) || !e || !e->ref)
        return false;
    memcpy(r->caretRef, e->ref, r->refSize);
    memcpy(r->currentRef, e->ref, r->refSize);
    r->caretRefValid = r->currentRefValid = true;
    if (!Multiple(w))
        e->flags |= kSelected;
    if (r->anchorIndex == r->caretIndex) {
        memcpy(r->anchorRef, e->ref, r->refSize);
        r->anchorRefValid = true;
    }
    return true;
}

// The Shift step from the old caret `p` to the caret: the selection keeps
// being the run between anchor and caret.
void ShiftStep(HWND w, DVListRecord *r, LONG p)
{
    LONG q = r->caretIndex, a = r->anchorIndex;
    if (p == q || r->refSize == 0)
        return;
    BYTE *pRef = static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize));
    if (!pRef)
        return;
    bool havePRef = LookUpRef(w, r, p, pRef);
    if (!(r = Rec(w))) {
        LocalFree(pRef);
        return;
    }
    bool keep = q == a ? true : (p >= a ? q < p : q > p);
    bool anchorWas = r->anchorRefValid && IsRefSelected(w, r, r->anchorRef);
    r->updateEnabled = false;
    SelectRange(w, r, p, q, 2);
    if ((r = Rec(w)) != nullptr) {
        if (!keep && havePRef)
            SetSelRef(w, r, 2, pRef);
        if (r->anchorRefValid && IsRefSelected(w, r, r->anchorRef) != anchorWas)
            SetSelRef(w, r, 2, r->anchorRef);
        if (r->caretRefValid)
            SetSelRef(w, r, 1, r->caretRef);
        r->updateEnabled = true;
        if (!RepaintAll(w, r))
            return;
    }
    LocalFree(pRef);
}

bool NothingSelected(HWND w, const DVListRecord *r)
{
    if (Single(w))
        return r->currentIndex == kNoIndex && !r->currentRefValid;
    return r->selectedCount == 0;
}

void OnKeyDown(HWND w, DVListRecord *r, WPARAM key)
{
    if (key != VK_SPACE)
        r->spaceKeyDown = false;
    if (key < VK_SPACE || key > VK_DOWN || key == VK_LEFT || key == VK_RIGHT || !r->callback ||
        !r->cacheEntries)
        return;
    bool single = Single(w), extended = Extended(w), multiple = Multiple(w) && !extended;
    bool shift = GetKeyState(VK_SHIFT) < 0;
    bool reload = false;
    if ((key == VK_PRIOR || key == VK_NEXT || key == VK_UP || key == VK_DOWN) && r->caretRefValid &&
        r->caretIndex == kNoIndex) {
        DVLFINDREQUEST request = {r->caretRef, kNoIndex, 0};
        Notify(w, r, VLN_FIND, &request);
        if (!(r = Rec(w)) || request.index == kNoIndex)
            return;
        r->caretIndex = request.index;
        reload = request.reload != 0;
    }
    LONG oldCaret = r->caretIndex, oldCurrent = r->currentIndex;
    LONG caret = oldCaret, current = oldCurrent;
    long long count = Count(r), vis = r->visibleCount;
    int step = r->itemHeight;
    switch (key) {
    case VK_SPACE:
        r->spaceKeyDown = true;
        if (extended) {
            if (GetKeyState(VK_CONTROL) < 0)
                return;
            SelClear(r);
        }
        if (single) {
            DvEntry *e = LookUp(w, caret, true);
            if (!(r = Rec(w)))
                return;
            if (r->currentIndex == caret && r->currentRefValid) {
                if (e)
                    e->flags &= ~kSelected;
                r->currentIndex = kNoIndex;
                r->currentRefValid = false;
            } else if (e && e->ref) {
                SetRef(w, r, kCurrent, e->ref, false);
            }
        } else if (r->caretRefValid) {
            SetSelRef(w, r, 2, r->caretRef);
        }
        if (!(r = Rec(w)))
            return;
        SelChange(w, r);
        if ((r = Rec(w)) != nullptr)
            if (!RepaintAll(w, r))
                return;
        return;
    case VK_PRIOR:
        if ((r->endFlags & kAtTop) && caret <= vis - 1)
            caret = current = 0;
        else
            caret = current = Wrap(caret + 1 - vis);
        break;
    case VK_NEXT:
        if ((r->endFlags & kAtBottom) && caret >= count - vis)
            caret = current = Wrap(count - 1);
        else
            caret = current = Wrap(caret + vis - 1);
        break;
    case VK_END:
        if (r->endFlags & kAtBottom) {
            caret = current = Wrap(count - 1);
        } else {
            Reload(w, r, kSentinelBottom);
            if (!(r = Rec(w)))
                return;
            caret = current = Wrap(count - 1);
        }
        break;
    case VK_HOME:
        if (!(r->endFlags & kAtTop)) {
            Reload(w, r, kSentinelTop);
            if (!(r = Rec(w)))
                return;
        }
        caret = current = 0;
        break;
    case VK_UP:
        step = 1;
        if ((r->endFlags & kAtTop) && caret == 0)
            current = 0;
        else
            caret = current = Wrap(static_cast<long long>(caret) - 1);
        break;
    case VK_DOWN:
        step = 1;
        if (!multiple && NothingSelected(w, r))
            current = caret;
        else if ((r->endFlags & kAtBottom) && caret == count - 1)
            current = caret;
        else
            caret = current = Wrap(static_cast<long long>(caret) + 1);
        break;
    }
    if (caret != oldCaret || current != oldCurrent || key == VK_HOME || key == VK_END) {
        r->caretRefValid = r->currentRefValid = false;
    }
    r->caretIndex = caret;
    r->currentIndex = current;
    SelChange(w, r);
    if (!(r = Rec(w)))
        return;
    if (!multiple) {
        if (DvEntry *e = Cached(r, oldCurrent)) {
            e->flags &= ~kSelected;
            if (!RepaintRow(w, r, oldCurrent))
                return;
        }
        if (extended && !shift) {
            SelClear(r);
            r->anchorIndex = r->caretIndex;
            if (!RepaintAll(w, r))
                return;
        }
    } else {
        r->currentIndex = oldCurrent;
    }
    if (r->caretIndex != oldCaret)
        if (!RepaintRow(w, r, oldCaret))
            return;
    if (single)
        if (!RepaintRow(w, r, oldCurrent))
            return;
    TakeCaretEntry(w, r, false);
    if (!(r = Rec(w)))
        return;
    ShowIndex(w, r, r->caretIndex, reload, step);
    if (!(r = Rec(w)))
        return;
    if (!r->caretRefValid || (!multiple && !r->currentRefValid)) {
        TakeCaretEntry(w, r, true);
        if (!(r = Rec(w)))
            return;
        if (!RepaintRow(w, r, r->caretIndex))
            return;
    }
    if (extended) {
        if (shift) {
            if (key == VK_HOME || key == VK_END) {
                LONG a = r->anchorIndex != kNoIndex ? r->anchorIndex : r->caretIndex;
                SelClear(r);
                SelectRange(w, r, a, r->caretIndex, 1);
                if ((r = Rec(w)) != nullptr)
                    if (!RepaintAll(w, r))
                        return;
            } else {
                ShiftStep(w, r, oldCaret);
            }
        } else if (r->caretRefValid) {
            SetSelRef(w, r, 1, r->caretRef);
            if (!RepaintRow(w, r, r->caretIndex))
                return;
        }
        if ((r = Rec(w)) != nullptr)
            SelChange(w, r);
    }
}

LONG IndexAt(const DVListRecord *r, int y)
{
    return Wrap(static_cast<long long>(r->topIndex) + y / r->itemHeight);
}

// Moves the single selection from the row `old` (its entry `was`, null when
// not cached) to `index`: the entry there takes the mark and its reference
// is kept. False when repainting the row left finds the window gone.
bool MakeCurrent(HWND w, DVListRecord *r, LONG old, DvEntry *was, LONG index)
{
    if (was)
        was->flags &= ~kSelected;
    r->currentIndex = index;
    DvEntry *e = Cached(r, index);
    r->currentRefValid = e && e->ref;
    if (r->currentRefValid) {
        memcpy(r->currentRef, e->ref, r->refSize);
        e->flags |= kSelected;
    }
    return RepaintRow(w, r, old);
}

void OnLButtonDown(HWND w, DVListRecord *r, WPARAM keys, int y)
{
    if (!r->callback || !r->cacheEntries || r->itemHeight <= 0)
        return;
    LONG index = IndexAt(r, y);
    SetCapture(w);
    if (!(r = Rec(w)))
        return;
    r->mouseCaptured = true;
    LONG oldCaret = r->caretIndex;
    r->caretIndex = index;
    DvEntry *e = Cached(r, index);
    if (Single(w)) {
        LONG oldCurrent = r->currentIndex, found;
        DvEntry *was = nullptr;
        if (r->currentRefValid && FindInCache(r, r->currentRef, &found)) {
            was = Slot(r, found);
            oldCurrent = found;
        }
        if (!MakeCurrent(w, r, oldCurrent, was, index))
            return;
    } else if (Multiple(w) && !Extended(w)) {
        if (e && e->ref)
            SetSelRef(w, r, 2, e->ref);
    } else {
        r->currentIndex = index;
        if (e && e->ref) {
            memcpy(r->caretRef, e->ref, r->refSize);
            memcpy(r->currentRef, e->ref, r->refSize);
            r->caretRefValid = r->currentRefValid = true;
        }
        if (keys & MK_CONTROL) {
            r->anchorIndex = r->caretIndex;
            r->anchorRefValid = r->caretRefValid;
            if (r->anchorRef)
                memcpy(r->anchorRef, r->caretRef, r->refSize);
            if (e && e->ref)
                SetSelRef(w, r, 2, e->ref);
            ReleaseCapture();
            if ((r = Rec(w)) != nullptr)
                r->mouseCaptured = false;
        } else if ((keys & MK_SHIFT) && r->anchorRefValid) {
            SelClear(r);
            SelectRange(w, r, r->anchorIndex, r->caretIndex, 1);
            if ((r = Rec(w)) != nullptr)
                if (!RepaintAll(w, r))
                    return;
        } else {
            r->anchorIndex = r->caretIndex;
            r->anchorRefValid = r->caretRefValid;
            if (r->anchorRef)
                memcpy(r->anchorRef, r->caretRef, r->refSize);
            SelClear(r);
            if (e && e->ref)
                SetSelRef(w, r, 1, e->ref);
            if (!RepaintAll(w, r))
                return;
        }
    }
    if (!(r = Rec(w)))
        return;
    if (!RepaintRow(w, r, oldCaret))
        return;
    if (!RepaintRow(w, r, index))
        return;
    SetFocus(w);
}

void OnMouseMove(HWND w, DVListRecord *r, int y)
{
    if (!r->mouseCaptured || r->itemHeight <= 0)
        return;
    LONG old = r->caretIndex, caret = old;
    int rowsBottom = static_cast<int>(r->visibleCount) * r->itemHeight;
    if (y >= 0 && y < rowsBottom) {
        // Back inside the rows the scrolling stops, past a known end too.
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, false);
        caret = IndexAt(r, y);
        if (!Possible(r, caret))
            return;
    } else {
        VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, true);
        if (y < 0) {
            if ((r->endFlags & kAtTop) && r->topIndex < 1)
                return;
            caret = Wrap(static_cast<long long>(r->topIndex) - 1);
            Move(w, r, caret, r->itemHeight);
        } else {
            if (Count(r) <= static_cast<long long>(r->visibleCount) ||
                ((r->endFlags & kAtBottom) && r->topIndex >= ClampTop(r, kSentinelBottom)))
                return;
            caret = Wrap(static_cast<long long>(r->topIndex) + r->visibleCount);
            Move(w, r, Wrap(static_cast<long long>(r->topIndex) + 1), r->itemHeight);
        }
        if (!(r = Rec(w)))
            return;
    }
    if (caret == old)
        return;
    r->caretIndex = caret;
    if (Single(w)) {
        if (!MakeCurrent(w, r, r->currentIndex, Cached(r, r->currentIndex), caret))
            return;
    } else if (Extended(w)) {
        r->currentIndex = caret;
        if (DvEntry *e = Cached(r, caret)) {
            if (e->ref) {
                memcpy(r->caretRef, e->ref, r->refSize);
                r->caretRefValid = true;
            }
        }
        ShiftStep(w, r, old);
        if (!(r = Rec(w)))
            return;
    }
    if (!RepaintRow(w, r, old))
        return;
    if (!RepaintRow(w, r, caret))
        return;
}

void OnLButtonUp(HWND w, DVListRecord *r)
{
    if (!r->mouseCaptured)
        return;
    DvEntry *e = LookUp(w, r->caretIndex, false);
    r->caretRefValid = CopyEntryRef(r, e, r->caretRef);
    EndDrag(w, r);
    ReleaseCapture();
    if (GadgetAlive(w, r))
        SelChange(w, r);
}

// The drag ends without a word to anyone: capture lost or WM_CANCELMODE.
void EndDrag(HWND w, DVListRecord *r)
{
    r->mouseCaptured = false;
    VListSetAutoScroll(w, kAutoScrollTimer, r->autoScrollRunning, false);
}

void OnChar(HWND w, DVListRecord *r, WPARAM ch, LPARAM lParam)
{
    if (HasStyle(w, VLS_WANTCHARS)) {
        VLCHARREQUEST request = {static_cast<DWORD>(ch), LOWORD(lParam)};
        Notify(w, r, VLN_CHAR, &request);
        return;
    }
    if (r->spaceKeyDown) {
        r->spaceKeyDown = false;
        return;
    }
    if (r->typeAheadRunning)
        OSKillTimer(w, kTypeAheadTimer);
    DWORD repeat = LOWORD(lParam);
    if (repeat > kTypeAheadMax)
        repeat = kTypeAheadMax;
    DWORD length = lstrlenA(r->typeAhead);
    for (DWORD i = 0; i < repeat && length < kTypeAheadMax; ++i)
        r->typeAhead[length++] = static_cast<char>(ch);
    r->typeAhead[length] = 0;
    OSSetTimer(w, kTypeAheadTimer, kTypeAheadDelay, nullptr);
    r->typeAheadRunning = true;
}

// Asks the host for `text`; the answer, with its reload flag, lands in
// `request` and the reference in `ref`.
void Search(HWND w, DVListRecord *r, const char *text, BYTE *ref, DVLSEARCHREQUEST *request)
{
    DVLSEARCHREQUEST ask = {text, 0, kNoIndex, 0, ref};
    Notify(w, r, VLN_SEARCH, &ask);
    *request = ask;
}

void OnTypeAheadTimer(HWND w, DVListRecord *r)
{
    OSKillTimer(w, kTypeAheadTimer);
    r->typeAheadRunning = false;
    BYTE *ref = r->refSize ? static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize)) : nullptr;
    DVLSEARCHREQUEST request;
    Search(w, r, r->typeAhead, ref, &request);
    if (!(r = Rec(w))) {
        if (ref)
            LocalFree(ref);
        return;
    }
    if (request.index == kNoIndex) {
        MessageBeep(static_cast<UINT>(-1));
    } else {
        r->updateEnabled = false;
        if (r->multiSelect) {
            SelClear(r);
            SetSelRef(w, r, 1, ref);
        }
        if (request.reload)
            SetTop(w, r, request.index, true, 1);
        if ((r = Rec(w)) != nullptr && ref)
            SetCaretRef(w, r, ref, false);
        if ((r = Rec(w)) != nullptr) {
            r->updateEnabled = true;
            if (!RepaintAll(w, r))
                return;
            if (r->redrawEnabled)
                UpdateWindow(w);
        }
    }
    if ((r = Rec(w)) != nullptr)
        r->typeAhead[0] = 0;
    if (ref)
        LocalFree(ref);
}

// The thumb as a place in the alphabet: the first two letters searched for.
void AlphaThumb(HWND w, DVListRecord *r, LONG mapped)
{
    long long n = Count(r);
    long long v = n > 0 ? (static_cast<long long>(mapped) + 1) * 676 / n + 1 : 1;
    BYTE *ref = r->refSize ? static_cast<BYTE *>(LocalAlloc(LPTR, r->refSize)) : nullptr;
    DVLSEARCHREQUEST request = {};
    request.index = kNoIndex;
    for (;;) {
        char text[3] = {static_cast<char>(v / 26 + 'a'), static_cast<char>(v % 26 + 'a'), 0};
        Search(w, r, text, ref, &request);
        if (!(r = Rec(w)) || request.index != kNoIndex || v <= 0)
            break;
        --v;
    }
    if (r) {
        if (request.index != kNoIndex)
            SetTop(w, r, request.index, request.reload != 0, r->itemHeight);
        else
            Reload(w, r, kSentinelTop);
    }
    if (ref)
        LocalFree(ref);
}

void OnVScroll(HWND w, DVListRecord *r, WORD request, int thumb)
{
    LONG top = r->topIndex;
    long long vis = r->visibleCount;
    int step = r->itemHeight;
    if (request == SB_THUMBTRACK) {
        if (HasStyle(w, VLS_NOTHUMBTRACK))
            return;
        request = SB_THUMBPOSITION;
    }
    if (request == SB_THUMBPOSITION) {
        int low, high;
        GetScrollRange(w, SB_VERT, &low, &high);
        if (thumb <= low) {
            request = SB_TOP;
        } else if (thumb >= high) {
            request = SB_BOTTOM;
        } else {
            DWORD count = Count(r) > 0 ? static_cast<DWORD>(Count(r)) : 0;
            LONG index = static_cast<LONG>(VListIndexFromThumb(thumb, count, r->visibleCount));
            if (HasStyle(w, VLS_ALPHATHUMB))
                AlphaThumb(w, r, index);
            else
                Move(w, r, index, step);
            return;
        }
    }
    switch (request) {
    case SB_LINEUP:
        if ((r->endFlags & kAtTop) && top == 0)
            return;
        Move(w, r, Wrap(static_cast<long long>(top) - 1), 1);
        return;
    case SB_LINEDOWN: Move(w, r, Wrap(static_cast<long long>(top) + 1), 1); return;
    case SB_PAGEUP: Move(w, r, Wrap(top - vis + 1), step); return;
    case SB_PAGEDOWN: Move(w, r, Wrap(top + vis - 1), step); return;
    case SB_TOP:
        if (r->endFlags & kAtTop)
            Move(w, r, 0, step);
        else
            Reload(w, r, kSentinelTop);
        return;
    case SB_BOTTOM:
        if (r->endFlags & kAtBottom)
            Move(w, r, Wrap(static_cast<long long>(r->totalItems) - vis), step);
        else
            Reload(w, r, kSentinelBottom);
        return;
    }
}

}  // namespace dvl
