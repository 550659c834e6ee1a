// FieldMapper: two list boxes that the host fills through their handles,
// and lines in the gap from left items to right items. The user links an
// item on each side by picking them in turn; picking an item again undoes
// its link. The host links by message under the style's rules and reads
// the links back. The lists' notifications reach the parent as the
// gadget's own.
#include "field_mapper.h"
#include "gadget_frame.h"
#include "qziso32.h"

namespace {

const int kLeftId = 1, kRightId = 2;
const DWORD kListStyle = WS_CHILD | WS_VISIBLE | WS_BORDER | WS_VSCROLL | LBS_NOTIFY;

// The list box procedure, the same for every list of the process; kept
// apart from the record so that a list whose gadget is gone still works.
WNDPROC g_listProc = nullptr;

FieldMapperRecord *Record(HWND window) { return GadgetRecord<FieldMapperRecord>(window); }

// Both lists: scrolling one repaints the gap so the lines follow.
LRESULT CALLBACK MapperListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_VSCROLL)
        InvalidateRect(GetParent(list), nullptr, TRUE);
    return CallWindowProcA(g_listProc, list, message, wParam, lParam);
}

void Unsubclass(HWND list, WNDPROC original)
{
    if (list && IsWindow(list) &&
        GetWindowLongPtrA(list, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(MapperListProc))
        SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original));
}

HWND MakeList(HWND window, int id, DWORD ownerDraw)
{
    HWND list = CreateWindowExA(0, "Listbox", "", kListStyle | ownerDraw, 0, 0, 0, 0, window,
                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE)),
                                nullptr);
    if (!list)
        OSErrorSetErrorInfo(RV_UserError, "CreateWindow");
    return list;
}

void FreeParts(FieldMapperRecord *r)
{
    Unsubclass(r->leftList, r->oldListProc);
    Unsubclass(r->rightList, r->oldListProc);
    MapperFreeTable(r->links);
    r->links = nullptr;
}

LRESULT OnCreate(HWND window)
{
    FieldMapperRecord *r = GadgetCreate<FieldMapperRecord>(window);
    if (!r)
        return GadgetCreateFailed;
    r->selectedLeft = r->selectedRight = kMapperNone;
    r->links = MapperNewTable();
    DWORD ownerDraw = (GetWindowLongPtrA(window, GWL_STYLE) & FMS_OWNERDRAW) ? LBS_OWNERDRAWFIXED : 0;
    // An owner-drawn list asks its parent for its item height while it is
    // made; the record must outlive that question.
    if (r->links)
        r->leftList = MakeList(window, kLeftId, ownerDraw);
    if (r->leftList && GadgetAlive(window, r))
        r->rightList = MakeList(window, kRightId, ownerDraw);
    if (!GadgetAlive(window, r))
        return GadgetCreateFailed;
    if (!r->rightList) {
        if (r->leftList)
            DestroyWindow(r->leftList);
        FreeParts(r);
        GadgetFreeRecord(window, true);
        return GadgetCreateFailed;
    }
    r->oldListProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(r->leftList, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(MapperListProc)));
    g_listProc = r->oldListProc;
    SetWindowLongPtrA(r->rightList, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(MapperListProc));
    return 0;
}

void OnDestroy(HWND window, FieldMapperRecord *r)
{
    FreeParts(r);
    GadgetFreeRecord(window, true);
}

// Lists of 10/24 of the width at both sides, as high as the client; then
// the gadget takes the height the left list settled on, since a list cuts
// itself to whole items.
void OnSize(HWND window, FieldMapperRecord *r)
{
    if (r->inSize)
        return;
    r->inSize = 1;
    RECT client, frame, list;
    GetClientRect(window, &client);
    int width = client.right * 10 / 24;
    MoveWindow(r->leftList, 0, 0, width, client.bottom, TRUE);
    MoveWindow(r->rightList, client.right - width, 0, width, client.bottom, TRUE);
    GetWindowRect(window, &frame);
    GetWindowRect(r->leftList, &list);
    int frameWidth = (frame.right - frame.left) - client.right;
    SetWindowPos(window, nullptr, 0, 0, client.right + frameWidth, list.bottom - list.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    if (GadgetAlive(window, r))
        r->inSize = 0;
}

// A pick in either list links or unlinks; the picks themselves are not put
// to the style's rules.
void OnPick(HWND window, FieldMapperRecord *r, bool leftSide)
{
    HWND list = leftSide ? r->leftList : r->rightList;
    DWORD picked = static_cast<DWORD>(SendMessageA(list, LB_GETCURSEL, 0, 0));
    if (leftSide) {
        if (picked == r->selectedLeft) {
            MapperRemoveLinks(r->links, r->selectedLeft);
            r->selectedLeft = kMapperNone;
        } else {
            r->selectedLeft = picked;
            if (r->selectedRight != kMapperNone)
                MapperAddLink(r->links, picked, r->selectedRight);
            else
                MapperRemoveLinks(r->links, picked);
        }
    } else if (picked == r->selectedRight) {
        if (r->selectedLeft != kMapperNone)
            MapperRemoveLinks(r->links, r->selectedLeft);
        r->selectedRight = kMapperNone;
    } else {
        r->selectedRight = picked;
        if (r->selectedLeft != kMapperNone)
            MapperAddLink(r->links, r->selectedLeft, picked);
    }
    InvalidateRect(window, nullptr, TRUE);
}

// A list's notification: picks link, and every code goes on to the parent
// under the gadget's id with the list as the sender.
LRESULT OnCommand(HWND window, FieldMapperRecord *r, WPARAM wParam, LPARAM lParam)
{
    HWND from = reinterpret_cast<HWND>(lParam);
    if (!from || (from != r->leftList && from != r->rightList))
        return DefWindowProcA(window, WM_COMMAND, wParam, lParam);
    WORD code = HIWORD(wParam);
    if (code == LBN_SELCHANGE)
        OnPick(window, r, from == r->leftList);
    WPARAM forward = MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(window)), code);
    SendMessageA(GetParent(window), WM_COMMAND, forward, lParam);
    return 0;
}

LRESULT OnClear(HWND window, FieldMapperRecord *r)
{
    for (DWORD left = 0; left < kMapperLeftItems; ++left)
        MapperRemoveLinks(r->links, left);
    r->selectedLeft = r->selectedRight = kMapperNone;
    InvalidateRect(window, nullptr, TRUE);
    return 0;
}

// The owner-draw questions of the lists, passed up with the list's id.
LRESULT ForwardOwnerDraw(HWND window, UINT message, LPARAM lParam)
{
    if (!lParam)
        return 0;
    UINT id = message == WM_DRAWITEM ? reinterpret_cast<DRAWITEMSTRUCT *>(lParam)->CtlID
                                     : reinterpret_cast<MEASUREITEMSTRUCT *>(lParam)->CtlID;
    return SendMessageA(GetParent(window), message, id, lParam);
}

}  // namespace

extern "C" LRESULT CALLBACK GadFMWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    FieldMapperRecord *r = Record(window);
    if (!r || !r->links)
        return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window, r);
        return 0;
    case WM_SIZE:
        OnSize(window, r);
        return 0;
    case WM_PAINT:
        MapperPaint(window, r);
        return 0;
    case WM_COMMAND:
        return OnCommand(window, r, wParam, lParam);
    case WM_DRAWITEM:
    case WM_MEASUREITEM:
        return ForwardOwnerDraw(window, message, lParam);
    case WM_SETFONT:
        SendMessageA(r->leftList, WM_SETFONT, wParam, lParam);
        SendMessageA(r->rightList, WM_SETFONT, wParam, lParam);
        return 0;
    case WM_GETFONT:
        // The left list is asked; its answer is not passed on.
        SendMessageA(r->leftList, WM_GETFONT, 0, 0);
        return 0;
    case FMM_GETLEFTLIST:
        return reinterpret_cast<LRESULT>(r->leftList);
    case FMM_GETRIGHTLIST:
        return reinterpret_cast<LRESULT>(r->rightList);
    case FMM_LINK:
        return MapperLinkMessage(window, r, wParam, lParam);
    case FMM_GETLINKCOUNT:
        return MapperLinkCount(r, wParam);
    case FMM_GETLINKS:
        return MapperGetLinks(r, wParam, reinterpret_cast<BYTE *>(lParam));
    case FMM_CLEAR:
        return OnClear(window, r);
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
