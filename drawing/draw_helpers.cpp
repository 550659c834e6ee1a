// The shared drawing helpers: see draw_helpers.h.
#include "draw_helpers.h"

bool MeasureBitmap(HBITMAP bitmap, SIZE *size)
{
    BITMAP info;
    if (!bitmap || !GetObjectA(bitmap, sizeof info, &info)) {
        OSErrorSetErrorInfo(RV_GDIError);
        return false;
    }
    size->cx = info.bmWidth;
    size->cy = info.bmHeight;
    return true;
}

POINT CentreIn(const RECT *rect, SIZE size)
{
    POINT at;
    at.x = (rect->right - rect->left - size.cx) / 2 + rect->left;
    at.y = (rect->bottom - rect->top - size.cy) / 2 + rect->top;
    return at;
}

bool SelectIntoNewDC(HDC reference, HGDIOBJ object, SelectedDC *out)
{
    out->dc = CreateCompatibleDC(reference);
    if (!out->dc) {
        OSErrorSetErrorInfo(RV_GDIError);
        return false;
    }
    out->old = object ? SelectObject(out->dc, object) : nullptr;
    if (object && !out->old) {
        OSErrorSetErrorInfo(RV_GDIError);
        DeleteDC(out->dc);
        out->dc = nullptr;
        return false;
    }
    return true;
}

void ReleaseSelectedDC(SelectedDC *selected)
{
    if (!selected->dc)
        return;
    if (selected->old)
        SelectObject(selected->dc, selected->old);
    DeleteDC(selected->dc);
    selected->dc = nullptr;
    selected->old = nullptr;
}

MaskColours SetMaskColours(HDC dc)
{
    MaskColours saved;
    saved.text = SetTextColor(dc, RGB(0, 0, 0));
    saved.back = SetBkColor(dc, RGB(255, 255, 255));
    return saved;
}

void RestoreMaskColours(HDC dc, MaskColours saved)
{
    SetTextColor(dc, saved.text);
    SetBkColor(dc, saved.back);
}

bool TransparencyPasses(HDC dst, int x, int y, int w, int h, HDC image, int imageX, int imageY,
                        HDC mask, int maskX, int maskY)
{
    bool done = BitBlt(dst, x, y, w, h, image, imageX, imageY, SRCINVERT) &&
                BitBlt(dst, x, y, w, h, mask, maskX, maskY, SRCAND) &&
                BitBlt(dst, x, y, w, h, image, imageX, imageY, SRCINVERT);
    if (!done)
        OSErrorSetErrorInfo(RV_GDIError);
    return done;
}

void *AllocateLocked(SIZE_T size, HGLOBAL *block)
{
    *block = GlobalAlloc(kPictureFlags, size);
    if (!*block)
        return nullptr;
    void *bytes = GlobalLock(*block);
    if (!bytes) {
        GlobalFree(*block);
        *block = nullptr;
    }
    return bytes;
}

SIZE_T ReadableRoom(const void *start, SIZE_T wanted)
{
    const DWORD readable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READ |
                           PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    const char *at = static_cast<const char *>(start);
    SIZE_T room = 0;
    while (at && room < wanted) {
        MEMORY_BASIC_INFORMATION region;
        if (!VirtualQuery(at, &region, sizeof region) || region.State != MEM_COMMIT ||
            !(region.Protect & readable) || (region.Protect & PAGE_GUARD))
            break;
        SIZE_T here = static_cast<const char *>(region.BaseAddress) + region.RegionSize - at;
        room += here;
        at += here;
    }
    return room < wanted ? room : wanted;
}
