// "QzCombo": opening and closing. To drop down, the combo becomes a
// topmost child of the desktop sized around its child, subclasses every
// ancestor so that a click anywhere closes it, and runs a message loop of
// its own until it closes; closing puts everything back in reverse order.
#include "qz_combo.h"
#include "gadget_frame.h"

namespace {

const char kAncestorProperty[] = "CMPB1";
const int kMostSiblings = 31;
const UINT kRedrawGadget = RDW_INVALIDATE | RDW_ALLCHILDREN;                       // 0x81
const UINT kRedrawDesktopOpen = RDW_INVALIDATE | RDW_ERASE;                        // 5
const UINT kRedrawDesktopClose = RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW;  // 0x185
const UINT kRedrawEditClose = RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW;    // 0x181

// The block each subclassed ancestor carries as its property.
struct AncestorBlock {
    WNDPROC oldProc;
    HWND combo;
};

HWND NextAncestor(HWND window)
{
    HWND up = GetAncestor(window, GA_PARENT);
    return up == GetDesktopWindow() ? nullptr : up;
}

// Takes the subclass off one ancestor, whichever combo put it there.
void UndoAncestor(HWND ancestor, AncestorBlock *block)
{
    SetWindowLongPtrA(ancestor, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(block->oldProc));
    RemovePropA(ancestor, kAncestorProperty);
    LocalFree(block);
}

bool SubclassAncestors(HWND gadget, ComboRecord *r)
{
    for (HWND a = r->parent; a; a = NextAncestor(a)) {
        if (auto *old = static_cast<AncestorBlock *>(GetPropA(a, kAncestorProperty)))
            UndoAncestor(a, old);
        auto *block = static_cast<AncestorBlock *>(LocalAlloc(LPTR, sizeof(AncestorBlock)));
        if (!block) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(sizeof(AncestorBlock)));
            ComboUnsubclassAncestors(gadget, r);
            return false;
        }
        block->combo = gadget;
        block->oldProc = reinterpret_cast<WNDPROC>(
            GetWindowLongPtrA(a, GWLP_WNDPROC));
        if (!SetPropA(a, kAncestorProperty, block)) {
            OSErrorSetErrorInfo(RV_UserError, "SetProp");
            LocalFree(block);
            ComboUnsubclassAncestors(gadget, r);
            return false;
        }
        SetWindowLongPtrA(a, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(GadComboParentSubClassProc));
        r->subclassed = 1;
    }
    return true;
}

bool IsMovableSibling(HWND sibling)
{
    char name[16] = "";
    GetClassNameA(sibling, name, sizeof name);
    if (lstrcmpiA(name, "DialogTab") == 0)
        return true;
    return lstrcmpiA(name, "Button") == 0 && (GetWindowLongA(sibling, GWL_STYLE) & 7) == BS_GROUPBOX;
}

// Group boxes and tab strips beside the combo go to the bottom of the
// Z-order, those after the combo first, then those before; the last noted
// goes first. A 32nd takes the place of the 31st.
void MoveSiblings(HWND gadget)
{
    HWND noted[kMostSiblings];
    int count = 0;
    for (int pass = 0; pass < 2; ++pass) {
        UINT step = pass == 0 ? GW_HWNDNEXT : GW_HWNDPREV;
        for (HWND s = GetWindow(gadget, step); s; s = GetWindow(s, step)) {
            if (!IsMovableSibling(s))
                continue;
            if (count == kMostSiblings)
                noted[kMostSiblings - 1] = s;
            else
                noted[count++] = s;
        }
    }
    while (count > 0)
        SetWindowPos(noted[--count], HWND_BOTTOM, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOREDRAW | SWP_NOACTIVATE);
}

void FreeScreenCopy(ComboRecord *r)
{
    if (!r->screenDC)
        return;
    HGDIOBJ bitmap = SelectObject(r->screenDC, r->screenSavedBitmap);
    if (bitmap)
        DeleteObject(bitmap);
    DeleteDC(r->screenDC);
    r->screenDC = nullptr;
    r->screenSavedBitmap = nullptr;
}

// Copies the screen under `area`. Where the display cannot give a copy
// (some drivers keep no screen surface), RV_GDIError is recorded and the
// combo drops down without one.
void KeepScreen(HWND gadget, ComboRecord *r, const RECT &area)
{
    if ((GetWindowLongA(gadget, GWL_STYLE) & QCS_NOSCREENCOPY) || r->screenDC)
        return;
    int width = area.right - area.left, height = area.bottom - area.top;
    if (width <= 0 || height <= 0)
        return;
    HDC screen = GetDC(nullptr);
    if (!screen) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return;
    }
    HDC dc = CreateCompatibleDC(screen);
    HBITMAP bitmap = dc ? CreateCompatibleBitmap(screen, width, height) : nullptr;
    const char *failed = !dc ? "CreateCompatibleDC" : !bitmap ? "CreateCompatibleBitmap" : nullptr;
    HGDIOBJ saved = bitmap ? SelectObject(dc, bitmap) : nullptr;
    if (!failed && !BitBlt(dc, 0, 0, width, height, screen, area.left, area.top, SRCCOPY))
        failed = "BitBlt";
    ReleaseDC(nullptr, screen);
    if (failed) {
        OSErrorSetErrorInfo(RV_GDIError, failed);
        if (saved)
            SelectObject(dc, saved);
        if (bitmap)
            DeleteObject(bitmap);
        if (dc)
            DeleteDC(dc);
        return;
    }
    r->screenDC = dc;
    r->screenSavedBitmap = static_cast<HBITMAP>(saved);
    r->screenRect = area;
}

void PutScreenBack(ComboRecord *r)
{
    if (!r->screenDC)
        return;
    if (HDC screen = GetDC(nullptr)) {
        const RECT &a = r->screenRect;
        BitBlt(screen, a.left, a.top, a.right - a.left, a.bottom - a.top, r->screenDC, 0, 0, SRCCOPY);
        ReleaseDC(nullptr, screen);
    }
    FreeScreenCopy(r);
}

RECT WindowArea(HWND gadget)
{
    RECT area;
    GetWindowRect(gadget, &area);
    InflateRect(&area, 1, 1);
    return area;
}

// The own loop: waits for each message and dispatches it, until the combo
// closes, dies, or the thread is asked to quit (the quit is passed on).
void RunLoop(HWND gadget, ComboRecord *r)
{
    ++r->loopDepth;
    while (GadgetAlive(gadget, r) && r->isOpen) {
        MSG msg;
        BOOL got = GetMessageA(&msg, nullptr, 0, 0);
        if (got <= 0) {
            if (got == 0)
                PostQuitMessage(static_cast<int>(msg.wParam));
            if (GadgetAlive(gadget, r) && r->isOpen)
                ComboClose(gadget, r, kCloseFocus);
            break;
        }
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    if (GadgetAlive(gadget, r))
        --r->loopDepth;
}

}  // namespace

void ComboWakeLoop() { PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0); }

void ComboUnsubclassAncestors(HWND gadget, ComboRecord *r)
{
    for (HWND a = r->parent; a && IsWindow(a); a = NextAncestor(a)) {
        auto *block = static_cast<AncestorBlock *>(GetPropA(a, kAncestorProperty));
        if (block && block->combo == gadget)
            UndoAncestor(a, block);
    }
    r->subclassed = 0;
}

LRESULT ComboOpen(HWND gadget, ComboRecord *r)
{
    if (r->isOpen || !ComboChildLive(r))
        return GadgetSuccess;
    // 1. Sizes, the caret, the child, the place in the Z-order.
    r->isOpen = 1;
    r->inShowHide = 1;
    RECT client, window;
    GetClientRect(gadget, &client);
    GetWindowRect(gadget, &window);
    r->frame.cx = (window.right - window.left) - client.right;
    r->frame.cy = (window.bottom - window.top) - client.bottom;
    r->closedSize = {window.right - window.left, window.bottom - window.top};
    if (r->edit)
        HideCaret(r->edit);
    ComboLayout(gadget, r, client.right, r->fullHeight, false);
    ShowWindow(r->child, SW_SHOWNA);
    r->zOrderAfter = GetWindow(gadget, GW_HWNDPREV);
    // 2. Group boxes and tab strips out of the way.
    MoveSiblings(gadget);
    // 3. Tell the parent, and hand the child the focus.
    if (!ComboNotifyOwn(gadget, r, QCN_DROPDOWN))
        return GadgetSuccess;
    if (!r->isOpen || !ComboChildLive(r)) {
        r->inShowHide = 0;
        if (r->isOpen)
            ComboClose(gadget, r, kCloseFocus);
        return GadgetSuccess;
    }
    SetFocus(r->child);
    if (!GadgetAlive(gadget, r))
        return GadgetSuccess;
    UpdateWindow(gadget);
    if (r->edit)
        UpdateWindow(r->edit);
    SendMessageA(gadget, WM_SETREDRAW, FALSE, 0);
    // 4. Every ancestor, so that a click anywhere closes the combo.
    if (!r->isOpen) {
        SendMessageA(gadget, WM_SETREDRAW, TRUE, 0);
        r->inShowHide = 0;
        return GadgetSuccess;
    }
    if (!SubclassAncestors(gadget, r)) {
        SendMessageA(gadget, WM_SETREDRAW, TRUE, 0);
        r->inShowHide = 0;
        ComboClose(gadget, r, kCloseFocus);
        return GadgetFailure;
    }
    // 5. The child's keys and releases.
    r->dropOldProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(r->child, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(GadComboDropDownSubClassProc)));
    // 6. Down, or up when the child would pass the bottom of the screen.
    POINT origin = {0, 0};
    ClientToScreen(gadget, &origin);
    int childHeight = 0;
    {
        RECT c;
        GetWindowRect(r->child, &c);
        childHeight = c.bottom - c.top;
    }
    bool upward = origin.y + r->stripHeight + childHeight > GetSystemMetrics(SM_CYSCREEN);
    ComboLayout(gadget, r, client.right, r->fullHeight, upward);
    int height = r->dropRect.bottom > r->frameRect.bottom ? r->dropRect.bottom : r->frameRect.bottom;
    int top = upward ? origin.y - r->dropRect.bottom : origin.y;
    RECT area;
    if (upward)
        SetRect(&area, origin.x + r->dropRect.left, top, origin.x + r->dropRect.right, top + r->dropRect.bottom + 1);
    else
        SetRect(&area, origin.x + r->dropRect.left, origin.y + r->dropRect.top - 1, origin.x + r->dropRect.right,
                origin.y + r->dropRect.bottom);
    KeepScreen(gadget, r, area);
    // 7. A topmost child of the desktop, grown around the child.
    int width = r->frameRect.right > r->dropRect.right ? r->frameRect.right : r->dropRect.right;
    int left = origin.x - (origin.x - window.left);
    int windowTop = top - (origin.y - window.top);
    SetParent(gadget, nullptr);
    SetWindowPos(gadget, HWND_TOPMOST, left, windowTop, width + r->frame.cx, height + r->frame.cy,
                 upward ? 0 : SWP_NOACTIVATE);
    // 8. Paint the combo, and what it uncovers of the desktop.
    SendMessageA(gadget, WM_SETREDRAW, TRUE, 0);
    RedrawWindow(gadget, nullptr, nullptr, kRedrawGadget);
    RECT grown = WindowArea(gadget);
    RedrawWindow(GetDesktopWindow(), &grown, nullptr, kRedrawDesktopOpen);
    // 9, 10. Open until closed.
    r->inShowHide = 0;
    RunLoop(gadget, r);
    return GadgetSuccess;
}

LRESULT ComboClose(HWND gadget, ComboRecord *r, LONG mode)
{
    if (!r->isOpen)
        return GadgetSuccess;
    r->isOpen = 0;
    r->inShowHide = 1;
    bool reparented = GetAncestor(gadget, GA_PARENT) != r->parent;
    // 1. No longer topmost; the child hides.
    if (reparented)
        SetWindowPos(gadget, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    RECT client, window;
    GetClientRect(gadget, &client);
    GetWindowRect(gadget, &window);
    RECT uncovered = WindowArea(gadget);
    SendMessageA(gadget, WM_SETREDRAW, FALSE, 0);
    if (ComboChildLive(r))
        ShowWindow(r->child, SW_HIDE);
    // 2. Where the strip lies.
    POINT strip = {0, r->droppedUp ? r->frameRect.top : 0};
    ClientToScreen(gadget, &strip);
    POINT clientOrigin = {0, 0};
    ClientToScreen(gadget, &clientOrigin);
    // 3. The screen as it was.
    PutScreenBack(r);
    // 4. Back into the dialog, at its place in the Z-order.
    bool parentLive = IsWindow(r->parent) != 0;
    if (reparented && parentLive && mode != kCloseDestroying) {
        ScreenToClient(r->parent, &strip);
        SetParent(gadget, r->parent);
        HWND after = r->zOrderAfter && IsWindow(r->zOrderAfter) &&
                             GetAncestor(r->zOrderAfter, GA_PARENT) == r->parent
                         ? r->zOrderAfter
                         : HWND_TOP;
        SetWindowPos(gadget, after, strip.x - (clientOrigin.x - window.left), strip.y - (clientOrigin.y - window.top),
                     r->closedSize.cx, r->stripHeight + r->frame.cy, SWP_NOACTIVATE);
        MoveSiblings(gadget);
    }
    // 5. The ancestors, unless their own subclass is closing the combo.
    if (mode != kCloseByAncestor)
        ComboUnsubclassAncestors(gadget, r);
    // 6. The child's own procedure, and the closed form.
    if (ComboChildLive(r) && r->dropOldProc)
        SetWindowLongPtrA(r->child, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(r->dropOldProc));
    r->dropOldProc = nullptr;
    GetClientRect(gadget, &client);
    ComboLayout(gadget, r, client.right, r->fullHeight, false);
    r->inShowHide = 0;
    ComboWakeLoop();
    // 7. The focus and the notification, as the mode says.
    if (mode >= kCloseTeardown) {
        SendMessageA(gadget, WM_SETREDRAW, TRUE, 0);
        return GadgetSuccess;
    }
    if (mode == kCloseOrdinary) {
        SetFocus(r->edit ? r->edit : r->parent);
        if (!GadgetAlive(gadget, r) || !ComboNotifyOwn(gadget, r, QCN_DROPDOWN))
            return GadgetSuccess;
    } else if (r->edit && GetFocus() == r->child) {
        SetFocus(r->edit);
        if (!GadgetAlive(gadget, r))
            return GadgetSuccess;
    }
    RedrawWindow(GetDesktopWindow(), &uncovered, nullptr, kRedrawDesktopClose);
    // 8. Painting on again.
    SendMessageA(gadget, WM_SETREDRAW, TRUE, 0);
    if (r->edit) {
        ShowCaret(r->edit);
        RedrawWindow(gadget, nullptr, nullptr, kRedrawEditClose);
    } else {
        RedrawWindow(gadget, nullptr, nullptr, kRedrawGadget);
    }
    return GadgetSuccess;
}

extern "C" LRESULT WINAPI GadComboParentSubClassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *block = static_cast<AncestorBlock *>(GetPropA(window, kAncestorProperty));
    if (!block) {
        OSErrorSetErrorInfo(RV_Failure);
        return DefWindowProcA(window, message, wParam, lParam);
    }
    WNDPROC oldProc = block->oldProc;
    HWND combo = block->combo;
    ComboRecord *r = IsWindow(combo) ? ComboOf(combo) : nullptr;
    switch (message) {
    case WM_ACTIVATE:
    case WM_ACTIVATEAPP:
    case WM_NCLBUTTONDOWN:
    case WM_INITMENU:
    case WM_LBUTTONDOWN: {
        if (r)
            ComboClose(combo, r, kCloseByAncestor);
        LRESULT result = CallWindowProcA(oldProc, window, message, wParam, lParam);
        if (IsWindow(combo) && (r = ComboOf(combo)) != nullptr)
            ComboUnsubclassAncestors(combo, r);
        else if (GetPropA(window, kAncestorProperty) == block)
            UndoAncestor(window, block);
        return result;
    }
    case WM_DESTROY:
        // The dialog goes while the combo is open: the combo returns to it
        // first, so that it goes with it, and every subclass comes off.
        if (r) {
            ComboClose(combo, r, kCloseTeardown);
            ComboUnsubclassAncestors(combo, r);
        }
        if (GetPropA(window, kAncestorProperty) == block)
            UndoAncestor(window, block);
        return CallWindowProcA(oldProc, window, message, wParam, lParam);
    default:
        return CallWindowProcA(oldProc, window, message, wParam, lParam);
    }
}
