// Regions that follow a picture: the pixels of one colour, the outline of a
// picture symmetrical in both axes, and a rectangle with rounded corners
// whose curve is what Ellipse draws.
#include <cstring>
#include "draw_helpers.h"

namespace {

// A bitmap's pixels as 0x00RRGGBB, read a band of rows at a time into a
// local block of at most kBandBytes (one row at the least), so that a large
// bitmap, or a monochrome one, never needs 32 bits for every pixel at once.
const SIZE_T kBandBytes = 64 * 1024;

struct Pixels {
    HBITMAP bitmap = nullptr;
    DWORD *bits = nullptr;
    LONG w = 0, h = 0;
    LONG bandRows = 0;
    LONG first = 0, count = 0;  // the rows in the block, top-down
    // Row y of the band; the band is bottom-up, as GetDIBits counts its scans.
    DWORD At(LONG x, LONG y) const
    {
        return bits[static_cast<SIZE_T>(first + count - 1 - y) * w + x] & 0xFFFFFF;
    }
};

bool ReadPixels(HBITMAP bitmap, Pixels *out)
{
    SIZE size;
    if (!MeasureBitmap(bitmap, &size))
        return false;
    out->bitmap = bitmap;
    out->w = size.cx;
    out->h = size.cy;
    if (size.cx < 1 || size.cy < 1)
        return true;
    // A row's bytes in 64 bits: a width near 2^30 overruns a 32-bit size.
    const unsigned long long rowBytes = static_cast<unsigned long long>(size.cx) * 4;
    if (rowBytes > static_cast<SIZE_T>(-1)) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(-1));
        return false;
    }
    SIZE_T rows = kBandBytes / static_cast<SIZE_T>(rowBytes);
    out->bandRows = rows < 1 ? 1 : rows > static_cast<SIZE_T>(size.cy) ? size.cy : static_cast<LONG>(rows);
    SIZE_T bytes = static_cast<SIZE_T>(rowBytes) * static_cast<SIZE_T>(out->bandRows);
    out->bits = static_cast<DWORD *>(LocalAlloc(LMEM_FIXED, bytes));
    if (!out->bits) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(bytes));
        return false;
    }
    return true;
}

// Makes row y readable with At; false, with RV_GDIError recorded, if the
// system would not hand its band over.
bool LoadRow(Pixels *pixels, LONG y)
{
    if (y >= pixels->first && y < pixels->first + pixels->count)
        return true;
    LONG first = y, count = pixels->h - y < pixels->bandRows ? pixels->h - y : pixels->bandRows;
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof format.bmiHeader;
    format.bmiHeader.biWidth = pixels->w;
    format.bmiHeader.biHeight = pixels->h;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    HDC screen = GetDC(nullptr);
    int read = screen ? GetDIBits(screen, pixels->bitmap, pixels->h - first - count, count,
                                  pixels->bits, &format, DIB_RGB_COLORS)
                      : 0;
    if (screen)
        ReleaseDC(nullptr, screen);
    if (read != count) {
        OSErrorSetErrorInfo(RV_GDIError);
        pixels->count = 0;
        return false;
    }
    pixels->first = first;
    pixels->count = count;
    return true;
}

// A colour as the pixels above hold it, or a value no pixel has.
DWORD AsPixel(COLORREF colour)
{
    if (colour & 0xFF000000)
        return 0xFFFFFFFF;
    return GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour);
}

// Rectangles gathered for one ExtCreateRegion, in the order they were found.
struct RectList {
    HLOCAL block = nullptr;
    DWORD count = 0, room = 0;
};

bool AddRect(RectList *list, LONG left, LONG top, LONG right, LONG bottom)
{
    if (list->count == list->room) {
        DWORD room = list->room ? list->room * 2 : 256;
        SIZE_T bytes = sizeof(RGNDATAHEADER) + static_cast<SIZE_T>(room) * sizeof(RECT);
        HLOCAL grown = list->block ? LocalReAlloc(list->block, bytes, LMEM_MOVEABLE)
                                   : LocalAlloc(LMEM_MOVEABLE, bytes);
        if (!grown) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(bytes));
            return false;
        }
        list->block = grown;
        list->room = room;
    }
    RGNDATA *data = static_cast<RGNDATA *>(LocalLock(list->block));
    RECT *rects = reinterpret_cast<RECT *>(data->Buffer);
    SetRect(&rects[list->count++], left, top, right, bottom);
    LocalUnlock(list->block);
    return true;
}

// The region of `count` rectangles from `rects`, built from two halves and
// joined when there are many: one call for all of them would add them one
// at a time, each time walking the region so far.
HRGN RegionOfRects(RGNDATA *data, const RECT *rects, DWORD count, LONG w, LONG h)
{
    const DWORD kOneCall = 128;
    if (count > kOneCall) {
        DWORD half = count / 2;
        HRGN first = RegionOfRects(data, rects, half, w, h);
        HRGN second = first ? RegionOfRects(data, rects + half, count - half, w, h) : nullptr;
        bool joined = second && CombineRgn(first, first, second, RGN_OR) != ERROR;
        if (second)
            DeleteObject(second);
        if (!joined && first) {
            DeleteObject(first);
            first = nullptr;
        }
        return first;
    }
    // The rectangles are moved to just after the header for the call.
    RECT *buffer = reinterpret_cast<RECT *>(data->Buffer);
    if (rects != buffer)
        memmove(buffer, rects, count * sizeof(RECT));
    data->rdh.dwSize = sizeof data->rdh;
    data->rdh.iType = RDH_RECTANGLES;
    data->rdh.nCount = count;
    data->rdh.nRgnSize = count * sizeof(RECT);
    SetRect(&data->rdh.rcBound, 0, 0, w, h);
    return ExtCreateRegion(nullptr, sizeof(RGNDATAHEADER) + count * sizeof(RECT), data);
}

HRGN RegionOf(RectList *list, LONG w, LONG h)
{
    HRGN region;
    if (!list->count) {
        region = CreateRectRgn(0, 0, 0, 0);
    } else {
        // A second copy of the rectangles, since each call overwrites the
        // front of the block.
        RGNDATA *data = static_cast<RGNDATA *>(LocalLock(list->block));
        SIZE_T bytes = list->count * sizeof(RECT);
        RECT *copy = static_cast<RECT *>(LocalAlloc(LMEM_FIXED, bytes));
        if (copy) {
            memcpy(copy, data->Buffer, bytes);
            region = RegionOfRects(data, copy, list->count, w, h);
            LocalFree(copy);
        } else {
            region = nullptr;
        }
        LocalUnlock(list->block);
    }
    if (!region)
        OSErrorSetErrorInfo(RV_GDIError);
    return region;
}

void FreeRects(RectList *list)
{
    if (list->block)
        LocalFree(list->block);
    list->block = nullptr;
}

// Adds a row's span and its twin mirrored top to bottom, once when both are
// the same row.
bool AddSpanAndTwin(RectList *top, RectList *bottom, LONG x, LONG y, LONG w, LONG h)
{
    if (!AddRect(top, x, y, w - x, y + 1))
        return false;
    return h - y - 1 == y || AddRect(bottom, x, h - y - 1, w - x, h - y);
}

// Both halves as one region: the top rows in order, then the bottom twins,
// which were found from the bottom up.
HRGN JoinHalves(RectList *top, RectList *bottom, LONG w, LONG h)
{
    if (bottom->count) {
        RGNDATA *data = static_cast<RGNDATA *>(LocalLock(bottom->block));
        const RECT *rects = reinterpret_cast<const RECT *>(data->Buffer);
        bool added = true;
        for (DWORD i = bottom->count; i-- > 0 && added;)
            added = AddRect(top, rects[i].left, rects[i].top, rects[i].right, rects[i].bottom);
        LocalUnlock(bottom->block);
        if (!added)
            return nullptr;
    }
    return RegionOf(top, w, h);
}

}  // namespace

extern "C" HRGN WINAPI UICreateBitmapRegion(HBITMAP bitmap, COLORREF colour, DWORD mirror)
{
    Pixels pixels;
    if (!ReadPixels(bitmap, &pixels))
        return nullptr;
    DWORD wanted = AsPixel(colour);
    RectList list;
    bool gathered = true;
    for (LONG y = 0; y < pixels.h && gathered; ++y) {
        if (!(gathered = LoadRow(&pixels, y)))
            break;
        for (LONG x = 0; x < pixels.w && gathered; ++x) {
            LONG column = mirror ? pixels.w - x - 1 : x;
            if (pixels.At(column, y) != wanted)
                continue;
            LONG start = x;
            while (x < pixels.w && pixels.At(mirror ? pixels.w - x - 1 : x, y) == wanted)
                ++x;
            gathered = AddRect(&list, start, y, x, y + 1);
        }
    }
    HRGN region = gathered ? RegionOf(&list, pixels.w, pixels.h) : nullptr;
    FreeRects(&list);
    if (pixels.bits)
        LocalFree(pixels.bits);
    return region;
}

extern "C" HRGN WINAPI UICreateMirroredBitmapRegion(HBITMAP bitmap, COLORREF colour)
{
    Pixels pixels;
    if (!ReadPixels(bitmap, &pixels))
        return nullptr;
    DWORD background = AsPixel(colour);
    bool gathered = true;
    if (colour == CLR_INVALID && pixels.bits && (gathered = LoadRow(&pixels, 0)))
        background = pixels.At(0, 0);
    LONG halfW = pixels.w / 2 + pixels.w % 2, halfH = pixels.h / 2 + pixels.h % 2;
    RectList top, bottom;
    for (LONG y = 0; y < halfH && gathered; ++y) {
        if (!(gathered = LoadRow(&pixels, y)))
            break;
        LONG x = 0;
        while (x < halfW && pixels.At(x, y) == background)
            ++x;
        if (x < halfW)
            gathered = AddSpanAndTwin(&top, &bottom, x, y, pixels.w, pixels.h);
    }
    HRGN region = gathered ? JoinHalves(&top, &bottom, pixels.w, pixels.h) : nullptr;
    FreeRects(&top);
    FreeRects(&bottom);
    if (pixels.bits)
        LocalFree(pixels.bits);
    return region;
}

extern "C" HRGN WINAPI UICreateRoundRectRegion(LONG left, LONG top, LONG right, LONG bottom,
                                               LONG cornerWidth, LONG cornerHeight)
{
    LONG w = right - left, h = bottom - top;
    HRGN region = nullptr;
    SelectedDC corner;
    HBITMAP ellipse = nullptr;
    HGDIOBJ oldBrush = nullptr;
    RectList upper, lower;
    bool gathered = true;
    LONG halfW = cornerWidth / 2 + cornerWidth % 2, halfH = cornerHeight / 2 + cornerHeight % 2;
    if (!SelectIntoNewDC(nullptr, nullptr, &corner))
        return nullptr;
    ellipse = CreateCompatibleBitmap(corner.dc, cornerWidth, cornerHeight);
    if (ellipse)
        corner.old = SelectObject(corner.dc, ellipse);
    if (corner.old)
        oldBrush = SelectObject(corner.dc, GetStockObject(BLACK_BRUSH));
    if (!oldBrush || !PatBlt(corner.dc, 0, 0, cornerWidth, cornerHeight, WHITENESS) ||
        !Ellipse(corner.dc, 0, 0, cornerWidth, cornerHeight)) {
        OSErrorSetErrorInfo(RV_GDIError);
        goto unwind;
    }
    for (LONG y = 0; y < halfH && gathered; ++y) {
        LONG x = 0;
        while (x < halfW && GetPixel(corner.dc, x, y) != 0)
            ++x;
        if (x < halfW)
            gathered = AddSpanAndTwin(&upper, &lower, x, y, w, h);
    }
    if (gathered && cornerHeight < h)
        gathered = AddRect(&upper, 0, cornerHeight / 2, w, h - cornerHeight / 2);
    if (!gathered)
        goto unwind;
    // Rows may overlap the middle band: union them one by one.
    region = CreateRectRgn(0, 0, 0, 0);
    if (!region)
        OSErrorSetErrorInfo(RV_GDIError);
    RectList *halves[2];
    halves[0] = &upper;
    halves[1] = &lower;
    for (RectList *list : halves) {
        if (!region || !list->count)
            continue;
        RGNDATA *data = static_cast<RGNDATA *>(LocalLock(list->block));
        const RECT *rects = reinterpret_cast<const RECT *>(data->Buffer);
        for (DWORD i = 0; i < list->count && region; ++i) {
            HRGN row = CreateRectRgnIndirect(&rects[i]);
            if (!row || CombineRgn(region, region, row, RGN_OR) == ERROR) {
                OSErrorSetErrorInfo(RV_GDIError);
                DeleteObject(region);
                region = nullptr;
            }
            if (row)
                DeleteObject(row);
        }
        LocalUnlock(list->block);
    }
    if (region)
        OffsetRgn(region, left, top);
unwind:
    if (oldBrush)
        SelectObject(corner.dc, oldBrush);
    ReleaseSelectedDC(&corner);
    if (ellipse)
        DeleteObject(ellipse);
    FreeRects(&upper);
    FreeRects(&lower);
    return region;
}
