// A source context composed over the target through a given mask, with the
// caller's last raster operation and an optional left-right mirror; and the
// same over a background bitmap in place of the target's own pixels.
#include "draw_helpers.h"

namespace {

struct ContextColours {
    int mode;
    COLORREF back, text;
};

ContextColours TakeColours(HDC to, HDC from)
{
    ContextColours earlier;
    earlier.mode = SetBkMode(to, GetBkMode(from));
    earlier.back = SetBkColor(to, GetBkColor(from));
    earlier.text = SetTextColor(to, GetTextColor(from));
    return earlier;
}

void PutColours(HDC dc, ContextColours colours)
{
    SetBkMode(dc, colours.mode);
    SetBkColor(dc, colours.back);
    SetTextColor(dc, colours.text);
}

// One pass from the source context into the scratch, turned left to right
// when `mirror` is set (from column w - 1 backwards, srcX unused).
bool SourcePass(HDC scratch, int w, int h, HDC src, int srcX, int srcY, bool mirror, DWORD rop)
{
    if (mirror)
        return StretchBlt(scratch, 0, 0, w, h, src, w - 1, srcY, -w, h, rop);
    return BitBlt(scratch, 0, 0, w, h, src, srcX, srcY, rop);
}

LONG ComposeThroughMask(HDC dst, int x, int y, int w, int h, HDC src, int srcX, int srcY, DWORD rop,
                        HBITMAP mask, int mirror, HBITMAP background, bool overBackground)
{
    SIZE maskSize;
    if (!dst || !src) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    if (!MeasureBitmap(mask, &maskSize))
        return 0;
    LONG result = 0;
    HBITMAP scratch = CreateCompatibleBitmap(dst, maskSize.cx, maskSize.cy);
    if (!scratch) {
        OSErrorSetErrorInfo(RV_GDIError);
        return 0;
    }
    SelectedDC scratchDC, backgroundDC;
    HGDIOBJ earlierInSource = nullptr;
    bool copied;
    if (!SelectIntoNewDC(dst, scratch, &scratchDC))
        goto unwind;
    if (overBackground) {
        TakeColours(scratchDC.dc, dst);
        // No background to select: a fresh context's own 1x1 bitmap is no
        // picture to copy.
        if (!background) {
            OSErrorSetErrorInfo(RV_GDIError);
            goto unwind;
        }
        if (!SelectIntoNewDC(dst, background, &backgroundDC))
            goto unwind;
        copied = BitBlt(scratchDC.dc, 0, 0, w, h, backgroundDC.dc, 0, 0, SRCCOPY);
        ReleaseSelectedDC(&backgroundDC);
        if (!copied || !SourcePass(scratchDC.dc, w, h, src, srcX, srcY, mirror, SRCINVERT)) {
            OSErrorSetErrorInfo(RV_GDIError);
            goto unwind;
        }
    } else {
        if (!BitBlt(scratchDC.dc, 0, 0, w, h, dst, x, y, SRCCOPY)) {
            OSErrorSetErrorInfo(RV_GDIError);
            goto unwind;
        }
        ContextColours own = TakeColours(scratchDC.dc, dst);
        copied = SourcePass(scratchDC.dc, w, h, src, srcX, srcY, mirror, SRCINVERT);
        PutColours(scratchDC.dc, own);
        if (!copied) {
            OSErrorSetErrorInfo(RV_GDIError);
            goto unwind;
        }
    }
    earlierInSource = SelectObject(src, mask);
    if (!earlierInSource) {
        OSErrorSetErrorInfo(RV_GDIError);
        goto unwind;
    }
    // The mask of a mirrored blit is always read from its row 0, and over a
    // background the plain one from (0, 0).
    if (mirror)
        copied = StretchBlt(scratchDC.dc, 0, 0, w, h, src, w - 1, 0, -w, h, SRCAND);
    else if (overBackground)
        copied = BitBlt(scratchDC.dc, 0, 0, w, h, src, 0, 0, SRCAND);
    else
        copied = BitBlt(scratchDC.dc, 0, 0, w, h, src, srcX, srcY, SRCAND);
    if (!SelectObject(src, earlierInSource) || !copied) {
        OSErrorSetErrorInfo(RV_GDIError);
        goto unwind;
    }
    TakeColours(scratchDC.dc, dst);
    if (!SourcePass(scratchDC.dc, w, h, src, srcX, srcY, mirror, SRCINVERT) ||
        !BitBlt(dst, x, y, w, h, scratchDC.dc, 0, 0, rop)) {
        OSErrorSetErrorInfo(RV_GDIError);
        goto unwind;
    }
    result = 1;
unwind:
    ReleaseSelectedDC(&scratchDC);
    DeleteObject(scratch);
    return result;
}

}  // namespace

extern "C" LONG WINAPI OSMaskBlt(HDC dst, int x, int y, int w, int h, HDC src, int srcX, int srcY,
                                 DWORD rop, HBITMAP mask, int mirror)
{
    return ComposeThroughMask(dst, x, y, w, h, src, srcX, srcY, rop, mask, mirror, nullptr, false);
}

extern "C" LONG WINAPI MaskBltWithBitmap(HDC dst, int x, int y, int w, int h, HDC src, int srcX,
                                         int srcY, DWORD rop, HBITMAP mask, int mirror,
                                         HBITMAP background)
{
    return ComposeThroughMask(dst, x, y, w, h, src, srcX, srcY, rop, mask, mirror, background, true);
}
