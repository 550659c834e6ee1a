// DIB handles against device bitmaps and palettes, and drawn on a context.
#include <cstring>
#include "dib_internal.h"

namespace {

// The screen's context with `palette` selected and realised, if one is given.
struct ScreenWithPalette {
    HDC dc = nullptr;
    HPALETTE old = nullptr;
};

bool TakeScreen(HPALETTE palette, ScreenWithPalette *screen)
{
    screen->dc = GetDC(nullptr);
    if (!screen->dc)
        return false;
    if (palette) {
        screen->old = SelectPalette(screen->dc, palette, FALSE);
        RealizePalette(screen->dc);
    }
    return true;
}

void GiveScreenBack(ScreenWithPalette *screen)
{
    if (screen->old)
        SelectPalette(screen->dc, screen->old, FALSE);
    ReleaseDC(nullptr, screen->dc);
}

// The bit count of a DIB for a device bitmap of `deviceBits` per pixel.
WORD DibBitsFor(DWORD deviceBits)
{
    if (deviceBits <= 1)
        return 1;
    if (deviceBits <= 4)
        return 4;
    return deviceBits <= 8 ? 8 : 24;
}

HGLOBAL RecodeDib(HGLOBAL dib, LONG freeSource, DWORD style)
{
    OSWait();
    // Each step goes on after a failed one: the first failure stays recorded.
    HPALETTE palette = DIB_CreateDibPalette(dib);
    if (!palette)
        OSErrorSetErrorInfo(RV_GDIError);
    OSReWait(0);
    HBITMAP bitmap = DIB_BitmapFromDib(dib, palette);
    if (!bitmap)
        OSErrorSetErrorInfo(RV_GDIError);
    OSReWait(0);
    HGLOBAL made = DIB_DibFromBitmap(bitmap, style, 0, palette);
    if (bitmap)
        DeleteObject(bitmap);
    if (palette)
        DeleteObject(palette);
    OSUnWait();
    if (freeSource)
        GlobalFree(dib);
    return made;
}

}  // namespace

extern "C" HPALETTE WINAPI DIB_CreateDibPalette(HGLOBAL dib)
{
    BITMAPINFOHEADER *header = dib ? static_cast<BITMAPINFOHEADER *>(GlobalLock(dib)) : nullptr;
    if (!header) {
        OSErrorSetErrorInfo(RV_BadDIB);
        return nullptr;
    }
    HPALETTE palette = nullptr;
    DWORD colours = DibNumColors(header);
    if (header->biSize != kInfoHeaderSize) {
        OSErrorSetErrorInfo(RV_BadDIB);
    } else if (!colours && header->biBitCount != 24) {
        OSErrorSetErrorInfo(RV_Failure, "");
    } else {
        DWORD entries = colours ? colours : 256;
        DWORD bytes = sizeof(LOGPALETTE) + entries * sizeof(PALETTEENTRY);
        LOGPALETTE *logical = static_cast<LOGPALETTE *>(LocalAlloc(LPTR, bytes));
        if (!logical) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, bytes);
        } else {
            logical->palVersion = 0x300;
            logical->palNumEntries = static_cast<WORD>(entries);
            const RGBQUAD *table = reinterpret_cast<const RGBQUAD *>(header + 1);
            for (DWORD i = 0; i < entries; ++i) {
                PALETTEENTRY &entry = logical->palPalEntry[i];
                if (colours) {
                    entry.peRed = table[i].rgbRed;
                    entry.peGreen = table[i].rgbGreen;
                    entry.peBlue = table[i].rgbBlue;
                } else {
                    // Red fastest through eight steps, then green, blue slowest
                    // through four.
                    entry.peRed = static_cast<BYTE>((i & 7) * 32);
                    entry.peGreen = static_cast<BYTE>(((i >> 3) & 7) * 32);
                    entry.peBlue = static_cast<BYTE>(((i >> 6) & 3) * 64);
                }
                entry.peFlags = 0;
            }
            palette = CreatePalette(logical);
            if (!palette)
                OSErrorSetErrorInfo(RV_GDIError);
            LocalFree(logical);
        }
    }
    GlobalUnlock(dib);
    return palette;
}

extern "C" HBITMAP WINAPI DIB_BitmapFromDib(HGLOBAL dib, HPALETTE palette)
{
    BITMAPINFOHEADER *header = dib ? static_cast<BITMAPINFOHEADER *>(GlobalLock(dib)) : nullptr;
    if (!header) {
        OSErrorSetErrorInfo(RV_Failure, "");
        return nullptr;
    }
    HBITMAP bitmap = nullptr;
    ScreenWithPalette screen;
    if (!TakeScreen(palette, &screen)) {
        OSErrorSetErrorInfo(RV_Failure, "");
    } else {
        bitmap = CreateDIBitmap(screen.dc, header, CBM_INIT, DibBits(header),
                                reinterpret_cast<BITMAPINFO *>(header), DIB_RGB_COLORS);
        if (!bitmap)
            OSErrorSetErrorInfo(RV_GDIError);
        GiveScreenBack(&screen);
    }
    GlobalUnlock(dib);
    return bitmap;
}

extern "C" HGLOBAL WINAPI DIB_DibFromBitmap(HBITMAP bitmap, DWORD style, DWORD bits, HPALETTE palette)
{
    (void)style;
    (void)bits;  // no compression is applied; the depth follows the bitmap
    BITMAP info;
    if (!bitmap || !GetObjectA(bitmap, sizeof info, &info))
        return nullptr;
    BITMAPINFOHEADER header = {};
    header.biSize = kInfoHeaderSize;
    header.biWidth = info.bmWidth;
    header.biHeight = info.bmHeight;
    header.biPlanes = 1;
    header.biBitCount = DibBitsFor(static_cast<DWORD>(info.bmPlanes) * info.bmBitsPixel);
    DWORD whole;
    if (!DibImageSize(&header, &header.biSizeImage) || !DibWholeSize(&header, &whole)) {
        OSErrorSetErrorInfo(RV_BadDIB);
        return nullptr;
    }
    HGLOBAL dib;
    BITMAPINFOHEADER *block = static_cast<BITMAPINFOHEADER *>(AllocateLocked(whole, &dib));
    if (!block) {
        OSErrorSetErrorInfo(RV_OutOfGlobalMemory, whole);
        return nullptr;
    }
    *block = header;
    ScreenWithPalette screen;
    int rows = 0;
    if (TakeScreen(palette, &screen)) {
        rows = GetDIBits(screen.dc, bitmap, 0, static_cast<UINT>(info.bmHeight), DibBits(block),
                         reinterpret_cast<BITMAPINFO *>(block), DIB_RGB_COLORS);
        GiveScreenBack(&screen);
    }
    GlobalUnlock(dib);
    if (!rows) {
        OSErrorSetErrorInfo(RV_GDIError);
        GlobalFree(dib);
        return nullptr;
    }
    return dib;
}

extern "C" HGLOBAL WINAPI DIB_CompressDIB(HGLOBAL dib, LONG freeSource)
{
    return RecodeDib(dib, freeSource, static_cast<DWORD>(-1));
}

extern "C" HGLOBAL WINAPI DIB_ExpandDIB(HGLOBAL dib, LONG freeSource)
{
    return RecodeDib(dib, freeSource, 0);
}

extern "C" BOOL WINAPI DIB_DibBlt(HDC hdc, int x, int y, int w, int h, HGLOBAL dib, int srcX,
                                  int srcY, DWORD rop)
{
    if (!dib)
        return PatBlt(hdc, x, y, w, h, rop);
    BITMAPINFOHEADER *header = static_cast<BITMAPINFOHEADER *>(GlobalLock(dib));
    if (!header) {
        OSErrorSetErrorInfo(RV_Failure, "");
        return FALSE;
    }
    // Rows count from the bottom; rop has no effect on this path.
    SetDIBitsToDevice(hdc, x, y, w, h, srcX, header->biHeight - h - srcY, 0,
                      static_cast<UINT>(header->biHeight), DibBits(header),
                      reinterpret_cast<BITMAPINFO *>(header), DIB_RGB_COLORS);
    GlobalUnlock(dib);
    return TRUE;
}

extern "C" int WINAPI DIB_StretchBlt(HDC hdc, int x, int y, int w, int h, HGLOBAL dib, int srcX,
                                     int srcY, int srcW, int srcH, DWORD rop)
{
    BITMAPINFOHEADER *header = dib ? static_cast<BITMAPINFOHEADER *>(GlobalLock(dib)) : nullptr;
    if (!header) {
        OSErrorSetErrorInfo(RV_Failure, "");
        return 0;
    }
    int result = StretchDIBits(hdc, x, y, w, h, srcX, srcY, srcW, srcH, DibBits(header),
                               reinterpret_cast<BITMAPINFO *>(header), DIB_RGB_COLORS, rop);
    GlobalUnlock(dib);
    return result;
}

extern "C" HBITMAP WINAPI DIB_FiletoBM(const char *name)
{
    HGLOBAL dib = DIB_OpenDIB(name);
    if (!dib)
        return nullptr;
    HBITMAP bitmap = nullptr;
    HPALETTE palette = DIB_CreateDibPalette(dib);
    if (palette) {
        bitmap = DIB_BitmapFromDib(dib, palette);
        DeleteObject(palette);
    }
    GlobalFree(dib);
    return bitmap;
}

extern "C" HBITMAP WINAPI DIB_CopyBitmap(HBITMAP bitmap)
{
    BITMAP info;
    if (!bitmap || !GetObjectA(bitmap, sizeof info, &info)) {
        OSErrorSetErrorInfo(RV_GDIError);
        return nullptr;
    }
    HDC screen = GetDC(nullptr);
    if (!screen) {
        OSErrorSetErrorInfo(RV_Failure, "");
        return nullptr;
    }
    HBITMAP copy = nullptr;
    SelectedDC from, to;
    from.dc = CreateCompatibleDC(screen);
    to.dc = from.dc ? CreateCompatibleDC(screen) : nullptr;
    copy = to.dc ? CreateCompatibleBitmap(screen, info.bmWidth, info.bmHeight) : nullptr;
    if (!copy) {
        OSErrorSetErrorInfo(RV_Failure, "");
    } else {
        from.old = SelectObject(from.dc, bitmap);
        to.old = from.old ? SelectObject(to.dc, copy) : nullptr;
        if (!to.old || !BitBlt(to.dc, 0, 0, info.bmWidth, info.bmHeight, from.dc, 0, 0, SRCCOPY)) {
            OSErrorSetErrorInfo(RV_GDIError);
            ReleaseSelectedDC(&to);
            DeleteObject(copy);
            copy = nullptr;
        }
    }
    if (to.dc)
        ReleaseSelectedDC(&to);
    if (from.dc)
        ReleaseSelectedDC(&from);
    ReleaseDC(nullptr, screen);
    return copy;
}
