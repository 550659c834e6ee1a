// FieldMapper's link table, the style rules that decide a link asked by
// message, and the painting of the gap with its lines.
#include "field_mapper.h"
#include "gadget_frame.h"
#include "qziso32.h"

namespace {

const SIZE_T kTableSize = (kMapperLeftItems + 1) * sizeof(BYTE *);
const COLORREF kFace = 0xC0C0C0;
const WORD kPaintFailed = FMN_ERROR;

BYTE CountOf(BYTE *const *links, DWORD left) { return links[left] ? links[left][0] : 0; }

bool Holds(BYTE *const *links, DWORD left, DWORD right)
{
    BYTE count = CountOf(links, left);
    for (BYTE i = 1; i <= count; ++i)
        if (links[left][i] == right)
            return true;
    return false;
}

// True when a left item other than `left` holds `right`; with `manyOnly`
// only items that carry more than one link count.
bool OtherHolds(BYTE *const *links, DWORD left, DWORD right, bool manyOnly)
{
    for (DWORD other = 0; other < kMapperLeftItems; ++other)
        if (other != left && (!manyOnly || CountOf(links, other) > 1) && Holds(links, other, right))
            return true;
    return false;
}

// How many links, over all left items, go to `right`.
int Occurrences(BYTE *const *links, DWORD right)
{
    int n = 0;
    for (DWORD left = 0; left < kMapperLeftItems; ++left) {
        BYTE count = CountOf(links, left);
        for (BYTE i = 1; i <= count; ++i)
            n += links[left][i] == right;
    }
    return n;
}

}  // namespace

BYTE **MapperNewTable()
{
    BYTE **links = static_cast<BYTE **>(LocalAlloc(LPTR, kTableSize));
    if (!links)
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(kTableSize));
    return links;
}

void MapperFreeTable(BYTE **links)
{
    if (!links)
        return;
    for (DWORD left = 0; left <= kMapperLeftItems; ++left)
        if (links[left] && LocalFree(links[left]))
            OSErrorSetErrorInfo(RV_KernelError);
    if (LocalFree(links))
        OSErrorSetErrorInfo(RV_KernelError);
}

// The array grows by one (or is made with two bytes); then only the newest
// link is kept: count 1, first index the new one.
bool MapperAddLink(BYTE **links, DWORD left, DWORD right)
{
    if (left >= kMapperLeftItems || right > kMapperMostRight)
        return false;
    BYTE *array = links[left];
    SIZE_T size = array ? array[0] + 2 : 2;
    BYTE *grown = array ? static_cast<BYTE *>(LocalReAlloc(array, size, LMEM_MOVEABLE | LMEM_ZEROINIT))
                        : static_cast<BYTE *>(LocalAlloc(LPTR, size));
    if (!grown) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(size));
        return false;
    }
    links[left] = grown;
    grown[0] = 1;
    grown[1] = static_cast<BYTE>(right);
    return true;
}

// Any removal leaves the item with no links; the array stays for reuse.
void MapperRemoveLinks(BYTE **links, DWORD left)
{
    if (left < kMapperLeftItems && links[left])
        links[left][0] = 0;
}

MapperRule MapperRuleFor(BYTE *const *links, DWORD style, DWORD left, DWORD right)
{
    if (style & FMS_RIGHTONCE) {
        if (Holds(links, left, right))
            return MR_AlreadyThere;
        return OtherHolds(links, left, right, false) ? MR_Refused : MR_MayAdd;
    }
    if (style & FMS_LEFTONCE) {
        if (CountOf(links, left) == 0)
            return MR_MayAdd;
        return Holds(links, left, right) ? MR_AlreadyThere : MR_Refused;
    }
    BYTE count = CountOf(links, left);
    if (count == 0)
        return OtherHolds(links, left, right, true) ? MR_Refused : MR_MayAdd;
    if (Holds(links, left, right))
        return MR_AlreadyThere;
    if (OtherHolds(links, left, right, false))
        return MR_Refused;
    for (BYTE i = 1; i <= count; ++i)
        if (Occurrences(links, links[left][i]) >= 2)
            return MR_Refused;
    return MR_MayAdd;
}

LRESULT MapperLinkMessage(HWND window, FieldMapperRecord *r, WPARAM add, LPARAM indexes)
{
    DWORD left = LOWORD(indexes), right = HIWORD(indexes);
    if (left >= kMapperLeftItems || right > kMapperMostRight) {
        OSErrorSetErrorInfo(RV_BadParms, "FMM_LINK");
        return GadgetFailure;
    }
    DWORD style = static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE));
    switch (MapperRuleFor(r->links, style, left, right)) {
    case MR_MayAdd:
        if (!add || !MapperAddLink(r->links, left, right))
            return GadgetFailure;
        break;
    case MR_AlreadyThere:
        if (add)
            return GadgetFailure;
        MapperRemoveLinks(r->links, left);
        break;
    case MR_Refused:
        return GadgetSuccess;
    }
    InvalidateRect(window, nullptr, TRUE);
    return GadgetSuccess;
}

// The index is let through up to 100 inclusive; 100 reads the spare slot.
LRESULT MapperLinkCount(const FieldMapperRecord *r, WPARAM left)
{
    if (left > kMapperLeftItems)
        return GadgetFailure;
    return CountOf(r->links, static_cast<DWORD>(left));
}

LRESULT MapperGetLinks(const FieldMapperRecord *r, WPARAM left, BYTE *buffer)
{
    if (left > kMapperLeftItems)
        return GadgetFailure;
    BYTE count = CountOf(r->links, static_cast<DWORD>(left));
    if (count == 0)
        return GadgetFailure;
    if (!buffer) {
        OSErrorSetErrorInfo(RV_BadParms, "FMM_GETLINKS");
        return GadgetFailure;
    }
    CopyMemory(buffer, r->links[left] + 1, count);
    return count;
}

// ---------------------------------------------------------------- painting
namespace {

// The middle of an item's rectangle in its list's client coordinates, or
// false for an index the list does not hold.
bool ItemMiddle(HWND list, DWORD item, int *middle)
{
    RECT rect;
    if (SendMessageA(list, LB_GETITEMRECT, item, reinterpret_cast<LPARAM>(&rect)) == LB_ERR)
        return false;
    *middle = (rect.top + rect.bottom) / 2;
    return true;
}

// Each linked left item's line: out level, across the gap, in level.
void DrawLines(HDC dc, const FieldMapperRecord *r, int gap)
{
    LRESULT listed = SendMessageA(r->leftList, LB_GETCOUNT, 0, 0);
    DWORD items = listed < 0 ? 0 : static_cast<DWORD>(listed);
    if (items > kMapperLeftItems)
        items = kMapperLeftItems;
    for (DWORD left = 0; left < items; ++left) {
        int yl, yr;
        BYTE count = CountOf(r->links, left);
        if (!count || !ItemMiddle(r->leftList, left, &yl))
            continue;
        for (BYTE i = 1; i <= count; ++i) {
            if (!ItemMiddle(r->rightList, r->links[left][i], &yr))
                continue;
            MoveToEx(dc, 0, yl, nullptr);
            LineTo(dc, gap / 3, yl);
            LineTo(dc, gap - gap / 3, yr);
            LineTo(dc, gap, yr);
        }
    }
}

}  // namespace

// The client in the dialog grey, then the gap composed on a memory surface
// in the parent's static brush with the lines over it. Without a surface
// the gap is drawn straight onto the window with the origin moved, and the
// parent is told of the failure.
void MapperPaint(HWND window, FieldMapperRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError, "BeginPaint");
        EndPaint(window, &ps);
        GadgetNotifyParent(window, kPaintFailed);
        return;
    }
    RECT client;
    GetClientRect(window, &client);
    int g = client.right * 10 / 24;
    int gap = client.right - 2 * g;
    int height = client.bottom;
    SetBkColor(dc, kFace);
    ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &client, "", 0, nullptr);
    HDC mem = gap > 0 && height > 0 ? CreateCompatibleDC(dc) : nullptr;
    HBITMAP surface = mem ? CreateCompatibleBitmap(dc, gap, height) : nullptr;
    HGDIOBJ earlierBitmap = surface ? SelectObject(mem, surface) : nullptr;
    bool failed = gap > 0 && height > 0 && !earlierBitmap;
    HDC target = dc;
    POINT origin = {};
    if (earlierBitmap) {
        target = mem;
    } else {
        if (failed)
            OSErrorSetErrorInfo(RV_GDIError, mem ? "CreateCompatibleBitmap" : "CreateCompatibleDC");
        SetViewportOrgEx(dc, g, 0, &origin);
    }
    HBRUSH brush = reinterpret_cast<HBRUSH>(SendMessageA(GetParent(window), WM_CTLCOLORSTATIC,
                                                         reinterpret_cast<WPARAM>(target),
                                                         reinterpret_cast<LPARAM>(window)));
    bool alive = GadgetAlive(window, r);
    if (alive) {
        HGDIOBJ earlierBrush = brush ? SelectObject(target, brush) : nullptr;
        if (earlierBrush) {
            PatBlt(target, 0, 0, gap, height, PATCOPY);
            SelectObject(target, earlierBrush);
        }
        DrawLines(target, r, gap);
        if (target == mem)
            BitBlt(dc, g, 0, gap, height, mem, 0, 0, SRCCOPY);
        else
            SetViewportOrgEx(dc, origin.x, origin.y, nullptr);
    }
    if (earlierBitmap)
        SelectObject(mem, earlierBitmap);
    if (surface)
        DeleteObject(surface);
    if (mem)
        DeleteDC(mem);
    EndPaint(window, &ps);
    if (alive && failed)
        GadgetNotifyParent(window, kPaintFailed);
}
