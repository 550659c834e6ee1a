// "DialogTab": a strip of tabs in a dialog. The gadget has no pages of its
// own: every page's controls are children of its parent, and a change of
// tab moves, shows, hides and enables them. A tab is a dialog template, a
// list of controls shown only while it is current (inclusion) or a list of
// controls hidden only while it is current (exclusion). The gadget lies over
// the page too, so it passes on the mouse that is not for its tabs.
#include "dialog_tab.h"
#include <string.h>

namespace {

enum TabKind { TK_Dialog, TK_Inclusion, TK_Exclusion };
enum SwitchKind { SK_Plain, SK_Ex, SK_ExEx };
enum ListStep { LS_HideIncluded, LS_ShowIncluded, LS_EnterExclusion, LS_LeaveExclusion };

// The list head of the gadget an add function is building, one for each
// of them: gadgets are built on one thread, one at a time.
TabNode *g_dialogTabsBuilding;
TabNode *g_inclusionTabsBuilding;
TabNode *g_exclusionTabsBuilding;

DialogTabRecord *TabRecordOf(HWND gadget)
{
    char name[16];
    if (!IsWindow(gadget) || !GetClassNameA(gadget, name, sizeof name) ||
        lstrcmpiA(name, "DialogTab") != 0) {
        OSErrorSetErrorInfo(RV_BadParms, "DialogTab");
        return nullptr;
    }
    return GadgetRecord<DialogTabRecord>(gadget);
}

// ---------------------------------------------------------------- nodes
char *CopyText(const char *text)
{
    if (!text)
        text = "";
    const int length = lstrlenA(text);
    char *copy = static_cast<char *>(LocalAlloc(LPTR, length + 1));
    if (!copy) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(length + 1));
        return nullptr;
    }
    lstrcpyA(copy, text);
    return copy;
}

// Text, or below 65536 a string id of `module`.
char *CopyLabel(const char *label, HMODULE module)
{
    if (!IS_INTRESOURCE(label))
        return CopyText(label);
    char buffer[512];
    if (LoadStringA(module, LOWORD(reinterpret_cast<ULONG_PTR>(label)), buffer, sizeof buffer) <= 0)
        buffer[0] = '\0';
    return CopyText(buffer);
}

// The ids with their zero terminator; an absent list is an empty one.
DWORD *CopyIds(const DWORD *ids)
{
    DWORD count = 0;
    while (ids && ids[count])
        ++count;
    DWORD *copy = static_cast<DWORD *>(LocalAlloc(LPTR, (count + 1) * sizeof(DWORD)));
    if (!copy) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, (count + 1) * sizeof(DWORD));
        return nullptr;
    }
    if (count)
        memcpy(copy, ids, count * sizeof(DWORD));
    return copy;
}

TabNode *FindTab(const DialogTabRecord *record, DWORD tabId)
{
    TabNode *found = nullptr;
    for (TabNode *tab = record->firstTab; tab; tab = tab->next) {
        if (tabId == TAB_LAST)
            found = tab;
        else if (tab->tabId == tabId)
            return tab;
    }
    return found;
}

void FreeNode(TabNode *node)
{
    if (node->label)
        LocalFree(node->label);
    if (node->exclusionIds)
        LocalFree(node->exclusionIds);
    if (node->inclusionIds)
        LocalFree(node->inclusionIds);
    if (node->dialogTemplate)
        FreeResource(node->dialogTemplate);
    LocalFree(node);
}

// ---------------------------------------------------------------- switch
void SetVisibleBit(HWND control, bool visible)
{
    const LONG style = GetWindowLongA(control, GWL_STYLE);
    SetWindowLongA(control, GWL_STYLE, visible ? (style | WS_VISIBLE) : (style & ~WS_VISIBLE));
}

// The controls of an inclusion or exclusion tab, by id in the parent.
void ApplyToList(HWND gadget, const DWORD *ids, ListStep step)
{
    HWND parent = GetParent(gadget);
    for (; ids && *ids; ++ids) {
        HWND control = GetDlgItem(parent, static_cast<int>(*ids));
        if (!control)
            continue;
        RECT place = TabRectIn(parent, control);
        InflateRect(&place, 2, 2);
        switch (step) {
        case LS_HideIncluded:
            ShowWindow(control, SW_HIDE);
            SetPropA(control, kDisabledMarkProperty,
                     reinterpret_cast<HANDLE>(static_cast<INT_PTR>(IsWindowEnabled(control) ? 0 : 1)));
            EnableWindow(control, FALSE);
            InvalidateRect(parent, &place, FALSE);
            break;
        case LS_ShowIncluded:
            if (!GetPropA(control, kDisabledMarkProperty))
                EnableWindow(control, TRUE);
            ShowWindow(control, SW_SHOW);
            InvalidateRect(parent, &place, FALSE);
            break;
        case LS_EnterExclusion:
            SetVisibleBit(control, false);
            ValidateRect(parent, &place);
            break;
        case LS_LeaveExclusion:
            // The place is taken in the gadget's client area, yet used on
            // the parent.
            SetVisibleBit(control, true);
            EnableWindow(control, TRUE);
            place = TabRectIn(gadget, control);
            InflateRect(&place, 2, 2);
            ValidateRect(parent, &place);
            break;
        }
        // Hiding the control that has the focus tells the host, which may
        // take the tabs down, and their lists with them.
        if (!IsWindow(gadget))
            return;
    }
}

// Repaints the parent where the pages changed, or all of it without a
// region; deletes the region.
void RepaintParent(HWND parent, HRGN region)
{
    if (region) {
        RedrawWindow(parent, nullptr, region,
                     RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_ERASENOW);
        InvalidateRect(parent, nullptr, FALSE);
        DeleteObject(region);
    } else {
        InvalidateRect(parent, nullptr, TRUE);
    }
}

// The host took the tabs down midway through a change: deletes the region
// and turns the parent's redraw on again if the change had turned it off.
void EndAfterTeardown(HWND parent, HRGN region, bool redrawOff)
{
    if (region)
        DeleteObject(region);
    if (redrawOff && IsWindow(parent)) {
        SendMessageA(parent, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(parent, nullptr, TRUE);
    }
}

void SwitchPages(HWND gadget, const TabNode *old, const TabNode *next, bool anyTemplate)
{
    HWND parent = GetParent(gadget);
    HRGN region = nullptr;
    bool redrawPending = false;
    const bool pageToPage =
        old && old->dialogTemplate && (anyTemplate || (next && next->dialogTemplate));
    if (pageToPage) {
        SendMessageA(parent, WM_SETREDRAW, FALSE, 0);
        redrawPending = true;
        region = CreateRectRgn(0, 0, 0, 0);
        TabHideDialogControls(gadget, old, next ? next->dialogTemplate : nullptr,
                              next ? next->templateSize : 0, region ? &region : nullptr);
    } else if (old) {
        // A page followed by a list tab falls through here and hides nothing.
        if (old->inclusionIds)
            ApplyToList(gadget, old->inclusionIds, LS_HideIncluded);
        else if (old->exclusionIds)
            ApplyToList(gadget, old->exclusionIds, LS_LeaveExclusion);
    }
    if (!IsWindow(gadget)) {
        // The old page's focus went and the host took the tabs down.
        EndAfterTeardown(parent, region, redrawPending);
        return;
    }
    if (next) {
        if (next->dialogTemplate) {
            TabShowDialogControls(gadget, next, region ? &region : nullptr);
            redrawPending = true;
        } else if (next->inclusionIds) {
            ApplyToList(gadget, next->inclusionIds, LS_ShowIncluded);
        } else if (next->exclusionIds) {
            ApplyToList(gadget, next->exclusionIds, LS_EnterExclusion);
        }
    }
    if (!old)
        return;
    if (redrawPending)
        SendMessageA(parent, WM_SETREDRAW, TRUE, 0);
    if (anyTemplate) {
        if (region)
            DeleteObject(region);
        return;
    }
    RepaintParent(parent, region);
}

void InvalidateTab(HWND gadget, const TabNode *tab)
{
    if (!tab)
        return;
    RECT rect = tab->rect;
    rect.bottom += 3;
    InvalidateRect(gadget, &rect, FALSE);
}

LRESULT SetCurrent(HWND gadget, DWORD tabId, SwitchKind kind)
{
    DialogTabRecord *record = TabRecordOf(gadget);
    if (!record || !GadgetNotifyAlive(gadget, kTabChanging, record))
        return 0;
    TabNode *old = record->currentTab;
    TabNode *next = FindTab(record, tabId);
    record->currentTab = next;
    if (next == old)
        return 0;
    InvalidateTab(gadget, old);
    InvalidateTab(gadget, next);
    UpdateWindow(gadget);
    SwitchPages(gadget, old, next, kind == SK_Ex);
    if (!GadgetAlive(gadget, record))  // the new page's controls may have told the host
        return 0;
    if (kind != SK_Plain)
        RedrawWindow(GetParent(gadget), nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME);
    return GadgetNotifyParent(gadget, kTabChanged);
}

// ---------------------------------------------------------------- adding
BOOL AddTab(HWND gadget, TabKind kind, const char *label, DWORD tabId, const DWORD *ids,
            HMODULE module, LPCSTR templateName, TabNode **building)
{
    DialogTabRecord *record = TabRecordOf(gadget);
    if (!record)
        return FALSE;
    // A list tab's label is text; a number below 65536 there is no address.
    if (kind != TK_Dialog && label && IS_INTRESOURCE(label)) {
        OSErrorSetErrorInfo(RV_BadParms);
        *building = nullptr;
        return FALSE;
    }
    *building = record->firstTab;
    TabNode *node = static_cast<TabNode *>(LocalAlloc(LPTR, sizeof(TabNode)));
    if (!node) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(sizeof(TabNode)));
        *building = nullptr;
        return FALSE;
    }
    node->tabId = tabId;
    if (kind == TK_Dialog) {
        node->dialogTemplate =
            TabLoadTemplate(gadget, node, module, templateName, true, &node->templateSize);
        if (!node->dialogTemplate) {
            LocalFree(node);
            *building = nullptr;
            return FALSE;
        }
    }
    TabNode *tail = record->firstTab;
    while (tail && tail->next)
        tail = tail->next;
    bool linked = false, ok = false;
    if (tail == node) {
        OSErrorSetErrorInfo(RV_ListBroken, "DialogTab");
    } else {
        node->prev = tail;
        (tail ? tail->next : record->firstTab) = node;
        linked = true;
        node->label = kind == TK_Dialog ? CopyLabel(label, module) : CopyText(label);
        if (node->label) {
            if (kind == TK_Inclusion)
                ok = (node->inclusionIds = CopyIds(ids)) != nullptr;
            else if (kind == TK_Exclusion)
                ok = (node->exclusionIds = CopyIds(ids)) != nullptr;
            else
                ok = true;
        }
    }
    if (ok) {
        const UINT_PTR labelId = kind == TK_Exclusion ? tabId : 0;
        node->labelWindow = CreateWindowExA(
            0, "Zimbo", node->label, WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, gadget,
            reinterpret_cast<HMENU>(labelId),
            reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(gadget, GWLP_HINSTANCE)), nullptr);
        if (!node->labelWindow) {
            OSErrorSetErrorInfo(RV_UserError, "CreateWindow");
            ok = false;
        }
    }
    if (!ok) {
        if (linked)
            (tail ? tail->next : record->firstTab) = nullptr;
        FreeNode(node);
        *building = nullptr;
        return FALSE;
    }
    TabLayoutStrip(gadget, record);
    if (!record->currentTab)
        SetCurrent(gadget, tabId, SK_Plain);
    else if (kind == TK_Inclusion)
        ApplyToList(gadget, node->inclusionIds, LS_HideIncluded);  // not current: not shown
    *building = nullptr;
    return TRUE;
}

// ---------------------------------------------------------------- input
void OnKeyDown(HWND gadget, const DialogTabRecord *record, WPARAM key)
{
    const TabNode *current = record->currentTab;
    if (!current)
        return;
    if (key == VK_LEFT) {
        for (const TabNode *tab = current->prev; tab; tab = tab->prev)
            if (!tab->hidden) {
                SetCurrent(gadget, tab->tabId, SK_Plain);
                return;
            }
    } else if (key == VK_RIGHT && current->next) {
        // The next tab becomes current even when hidden, and the walk to a
        // shown one starts there.
        const TabNode *next = current->next;
        SetCurrent(gadget, next->tabId, SK_Plain);
        if (!GadgetAlive(gadget, record))  // the host took the tabs down meanwhile
            return;
        for (const TabNode *tab = next; tab; tab = tab->next)
            if (!tab->hidden) {
                SetCurrent(gadget, tab->tabId, SK_Plain);
                return;
            }
    }
}

// The window under `screen` as if the gadget were not there.
HWND WindowBelow(HWND gadget, POINT screen)
{
    const LONG style = GetWindowLongA(gadget, GWL_STYLE);
    SetWindowLongA(gadget, GWL_STYLE, style & ~WS_VISIBLE);
    HWND below = WindowFromPoint(screen);
    SetWindowLongA(gadget, GWL_STYLE, style);
    return below;
}

void ForwardMouse(HWND gadget, UINT message, WPARAM keys, POINT point)
{
    POINT screen = point;
    ClientToScreen(gadget, &screen);
    HWND below = WindowBelow(gadget, screen);
    if (!below || below == gadget)
        return;
    const LRESULT hit = SendMessageA(below, WM_NCHITTEST, 0, MAKELPARAM(screen.x, screen.y));
    if (hit == HTCLIENT) {
        POINT local = screen;
        ScreenToClient(below, &local);
        const LPARAM at = MAKELPARAM(local.x, local.y);
        if (message == WM_MOUSEMOVE)
            PostMessageA(below, message, keys, at);
        else
            SendMessageA(below, message, keys, at);
    } else {
        SendMessageA(below, message - WM_MOUSEMOVE + WM_NCMOUSEMOVE, static_cast<WPARAM>(hit),
                     MAKELPARAM(screen.x, screen.y));
    }
}

void OnMouse(HWND gadget, const DialogTabRecord *record, UINT message, WPARAM keys, LPARAM at)
{
    const POINT point = {static_cast<short>(LOWORD(at)), static_cast<short>(HIWORD(at))};
    if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) {
        for (const TabNode *tab = record->firstTab; tab; tab = tab->next)
            if (!tab->hidden && PtInRect(&tab->rect, point)) {
                // The focus change tells the control that had it, and its
                // host may take the tabs down.
                SetFocus(gadget);
                if (GadgetAlive(gadget, record))
                    SetCurrent(gadget, tab->tabId, SK_Plain);
                return;
            }
    }
    ForwardMouse(gadget, message, keys, point);
}

LRESULT OnSetCursor(HWND gadget, LPARAM lParam)
{
    POINT screen;
    GetCursorPos(&screen);
    HWND below = WindowBelow(gadget, screen);
    if (!below || below == gadget)
        return 0;
    const LRESULT hit = SendMessageA(below, WM_NCHITTEST, 0, MAKELPARAM(screen.x, screen.y));
    return SendMessageA(below, WM_SETCURSOR, reinterpret_cast<WPARAM>(below),
                        MAKELPARAM(LOWORD(hit), HIWORD(lParam)));
}

// ---------------------------------------------------------------- lifecycle
LRESULT OnCreate(HWND gadget)
{
    return GadgetCreate<DialogTabRecord>(gadget) ? 0 : GadgetCreateFailed;
}

void OnDestroy(HWND gadget, DialogTabRecord *record)
{
    TabNode *tab = record->firstTab;
    while (tab) {
        TabNode *next = tab->next;
        FreeNode(tab);
        tab = next;
    }
    GadgetFreeRecord(gadget, true);
}

}  // namespace

LRESULT CALLBACK DialogTabWndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DialogTabRecord *record = GadgetRecord<DialogTabRecord>(hwnd);
    if (!record && message != WM_CREATE)
        return DefWindowProcA(hwnd, message, wParam, lParam);
    switch (message) {
    case WM_CREATE:
        return OnCreate(hwnd);
    case WM_DESTROY:
        OnDestroy(hwnd, record);
        return 0;
    case WM_SIZE:
        record->layoutDirty = TRUE;
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        if (record->currentTab)
            InvalidateRect(hwnd, &record->currentTab->rect, FALSE);
        return 0;
    case WM_PAINT:
        TabPaint(hwnd, record);
        return 0;
    case WM_SETCURSOR:
        return OnSetCursor(hwnd, lParam);
    case WM_SETFONT:
        record->font = reinterpret_cast<HFONT>(wParam);
        record->layoutDirty = TRUE;
        if (LOWORD(lParam))
            InvalidateRect(hwnd, nullptr, FALSE);
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(record->font);
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS;
    case WM_KEYDOWN:
        OnKeyDown(hwnd, record, wParam);
        return 0;
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_LBUTTONDBLCLK:
        OnMouse(hwnd, record, message, wParam, lParam);
        return 0;
    default:
        return DefWindowProcA(hwnd, message, wParam, lParam);
    }
}

// ---------------------------------------------------------------- exports
extern "C" BOOL WINAPI Tab_AddDialogTab(HWND tabs, LPCSTR label, DWORD tabId, HMODULE module,
                                        LPCSTR templateName)
{
    return AddTab(tabs, TK_Dialog, label, tabId, nullptr, module, templateName,
                  &g_dialogTabsBuilding);
}

extern "C" BOOL WINAPI Tab_AddInclusionTab(HWND tabs, LPCSTR label, DWORD tabId, const DWORD *ids,
                                           BOOL /*flag: passed to the hide step, which ignores it*/)
{
    return AddTab(tabs, TK_Inclusion, label, tabId, ids, nullptr, nullptr,
                  &g_inclusionTabsBuilding);
}

extern "C" BOOL WINAPI Tab_AddExclusionTab(HWND tabs, LPCSTR label, DWORD tabId, const DWORD *ids)
{
    return AddTab(tabs, TK_Exclusion, label, tabId, ids, nullptr, nullptr,
                  &g_exclusionTabsBuilding);
}

extern "C" LRESULT WINAPI Tab_SetCurrentTab(HWND tabs, DWORD tabId)
{
    return SetCurrent(tabs, tabId, SK_Plain);
}

extern "C" LRESULT WINAPI Tab_SetCurrentTabEx(HWND tabs, DWORD tabId)
{
    return SetCurrent(tabs, tabId, SK_Ex);
}

extern "C" LRESULT WINAPI Tab_SetCurrentTabExEx(HWND tabs, DWORD tabId)
{
    return SetCurrent(tabs, tabId, SK_ExEx);
}

extern "C" LONG WINAPI Tab_GetCurrentTab(HWND tabs)
{
    const DialogTabRecord *record = TabRecordOf(tabs);
    return record && record->currentTab ? static_cast<LONG>(record->currentTab->tabId) : -1;
}

static BOOL MarkHidden(HWND tabs, DWORD tabId, BOOL hidden)
{
    DialogTabRecord *record = TabRecordOf(tabs);
    TabNode *tab = record ? FindTab(record, tabId) : nullptr;
    if (!tab)
        return FALSE;
    tab->hidden = hidden;
    SIZE piece;
    RECT strip;
    GetClientRect(tabs, &strip);
    if (TabEndPieceSize(&piece))
        strip.bottom = piece.cy + 4;
    InvalidateRect(tabs, &strip, FALSE);
    return TRUE;
}

extern "C" BOOL WINAPI Tab_HideTab(HWND tabs, DWORD tabId) { return MarkHidden(tabs, tabId, TRUE); }

extern "C" BOOL WINAPI Tab_ShowTab(HWND tabs, DWORD tabId) { return MarkHidden(tabs, tabId, FALSE); }

extern "C" LONG WINAPI Tab_GetTabFromPosition(HWND tabs, LONG position)
{
    const DialogTabRecord *record = TabRecordOf(tabs);
    if (!record)
        return -1;
    LONG index = 0;
    for (const TabNode *tab = record->firstTab; tab; tab = tab->next, ++index)
        if (index == position)
            return static_cast<LONG>(tab->tabId);
    return -1;
}

extern "C" LONG WINAPI Tab_GetTabHeight(HWND /*tabs*/)
{
    SIZE piece;
    return TabEndPieceSize(&piece) ? piece.cy + 4 : 0;
}

// The host took the tabs down amid a replacement: gives back what the call
// took and turns the parent's redraw on again.
static BOOL GiveBackReplacement(HWND parent, HGLOBAL loaded, HRGN region)
{
    FreeResource(loaded);
    EndAfterTeardown(parent, region, true);
    return FALSE;
}

extern "C" BOOL WINAPI Tab_TransmogrifyDialogTab(HWND tabs, LPCSTR label, DWORD oldId, DWORD newId,
                                                 HMODULE module, LPCSTR templateName)
{
    DialogTabRecord *record = TabRecordOf(tabs);
    if (!record)
        return FALSE;
    TabNode *node = FindTab(record, oldId);
    if (!node) {
        OSErrorSetErrorInfo(RV_Failure, "DialogTab");
        return FALSE;
    }
    HWND parent = GetParent(tabs);
    const bool current = node == record->currentTab;
    HRGN region = nullptr;
    if (current) {
        SendMessageA(parent, WM_SETREDRAW, FALSE, 0);
        region = CreateRectRgn(0, 0, 0, 0);
    }
    BOOL done = FALSE;
    DWORD size = 0;
    // With own controls the load writes the new page's handles over the old
    // ones: the old are kept here, hidden from here and then destroyed.
    const bool own = OwnsControls(tabs);
    HWND previous[kTabControlSlots];
    memcpy(previous, node->controls, sizeof previous);
    HGLOBAL loaded = TabLoadTemplate(tabs, node, module, templateName, !current, &size);
    if (!loaded && own)
        memcpy(node->controls, previous, sizeof previous);
    if (loaded && current && !GadgetNotifyAlive(tabs, kTabChanging, record))
        return GiveBackReplacement(parent, loaded, region);
    if (loaded) {
        if (current && own) {
            HWND fresh[kTabControlSlots];
            memcpy(fresh, node->controls, sizeof fresh);
            memcpy(node->controls, previous, sizeof previous);
            TabHideDialogControls(tabs, node, loaded, size, &region);
            if (GadgetAlive(tabs, record))
                memcpy(node->controls, fresh, sizeof fresh);
        } else if (current) {
            TabHideDialogControls(tabs, node, loaded, size, &region);
        }
        // Hiding the old page may move the focus, and the host told of it
        // may take the tabs down.
        if (current && !GadgetAlive(tabs, record))
            return GiveBackReplacement(parent, loaded, region);
        char *text = CopyLabel(label, module);
        if (text) {
            if (node->dialogTemplate)
                FreeResource(node->dialogTemplate);
            LocalFree(node->label);
            node->label = text;
            node->dialogTemplate = loaded;
            node->templateSize = size;
            node->tabId = newId;
            TabLayoutStrip(tabs, record);
            done = TRUE;
        } else {
            FreeResource(loaded);
        }
        // The page that goes takes its own controls with it; a failed
        // replacement keeps the old page and drops the new one's.
        HWND *gone = done ? previous : node->controls;
        for (int i = 0; own && i < kTabControlSlots; ++i)
            if (gone[i] && IsWindow(gone[i]))
                DestroyWindow(gone[i]);
        if (own && !done)
            memcpy(node->controls, previous, sizeof previous);
    }
    // Also after a failure: the parent is never left with redraw off.
    if (current) {
        TabShowDialogControls(tabs, node, &region);
        SendMessageA(parent, WM_SETREDRAW, TRUE, 0);
        RepaintParent(parent, region);
    }
    RECT client;
    GetClientRect(tabs, &client);
    RECT strip = {0, node->rect.top, client.right, node->rect.bottom + 3};
    InvalidateRect(tabs, &strip, FALSE);
    if (current)
        GadgetNotifyParent(tabs, kTabChanged);
    return done;
}
