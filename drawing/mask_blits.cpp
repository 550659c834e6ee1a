// Bitmaps put on a context with one colour transparent: the mask, the blit
// from a source context, and the centred family with and without flicker.
#include "draw_helpers.h"

const MaskCleanUp kToolkitCleanUp = {true, true};
const MaskCleanUp kGadgetCleanUp = {false, false};

namespace {

// A context, a rectangle and a measurable image, or false (recorded).
bool CentredArguments(HDC hdc, const RECT *rect, HBITMAP image, SIZE *size, const char *caller)
{
    if (!hdc || !rect) {
        OSErrorSetErrorInfo(RV_BadParms, caller);
        return false;
    }
    return MeasureBitmap(image, size);
}

// Colour of the image's top-left pixel, or CLR_INVALID.
COLORREF TopLeftPixel(HDC reference, HBITMAP image)
{
    SelectedDC probe;
    if (!SelectIntoNewDC(reference, image, &probe))
        return CLR_INVALID;
    COLORREF colour = GetPixel(probe.dc, 0, 0);
    ReleaseSelectedDC(&probe);
    return colour;
}

// The centred family. Builds the mask unless one is given (and deletes only
// a mask made here), then runs the passes in a scratch copy of the target
// and puts it back in one step, or straight on the target with flicker.
}  // namespace

BOOL CentredMaskBlt(HDC hdc, const RECT *rect, HBITMAP image, HBITMAP mask, COLORREF transparent,
                    Placement placement, const MaskCleanUp &cleanUp)
{
    SIZE size;
    if (!CentredArguments(hdc, rect, image, &size, __func__))
        return FALSE;
    POINT at = CentreIn(rect, size);
    BOOL result = FALSE;
    HBITMAP scratch = nullptr;
    SelectedDC maskDC, scratchDC, imageDC;
    if (!SelectIntoNewDC(hdc, nullptr, &maskDC))
        return FALSE;
    bool ownMask = !mask || placement == Placement::TopLeftColour;
    if (ownMask) {
        if (placement == Placement::TopLeftColour)
            transparent = TopLeftPixel(hdc, image);
        mask = MakeMaskBitmap(maskDC.dc, image, transparent, cleanUp);
        if (!mask)
            goto unwind;
    }
    maskDC.old = SelectObject(maskDC.dc, mask);
    if (!maskDC.old) {
        OSErrorSetErrorInfo(RV_GDIError);
        goto unwind;
    }
    if (placement != Placement::WithFlicker) {
        scratch = CreateBitmap(size.cx, size.cy, GetDeviceCaps(hdc, PLANES),
                               GetDeviceCaps(hdc, BITSPIXEL), nullptr);
        if (!scratch) {
            OSErrorSetErrorInfo(RV_GDIError);
            goto unwind;
        }
        if (!SelectIntoNewDC(hdc, scratch, &scratchDC))
            goto unwind;
        if (!BitBlt(scratchDC.dc, 0, 0, size.cx, size.cy, hdc, at.x, at.y, SRCCOPY)) {
            OSErrorSetErrorInfo(RV_GDIError);
            goto unwind;
        }
    }
    if (!SelectIntoNewDC(hdc, image, &imageDC))
        goto unwind;
    if (placement == Placement::InvertNoFlicker &&
        !PatBlt(imageDC.dc, 0, 0, size.cx, size.cy, PATINVERT)) {
        OSErrorSetErrorInfo(RV_GDIError);
        goto unwind;
    }
    if (placement == Placement::WithFlicker) {
        MaskColours saved = SetMaskColours(hdc);
        result = TransparencyPasses(hdc, at.x, at.y, size.cx, size.cy, imageDC.dc, 0, 0, maskDC.dc,
                                    0, 0);
        RestoreMaskColours(hdc, saved);
    } else {
        MaskColours saved = SetMaskColours(scratchDC.dc);
        bool passed = TransparencyPasses(scratchDC.dc, 0, 0, size.cx, size.cy, imageDC.dc, 0, 0,
                                         maskDC.dc, 0, 0);
        RestoreMaskColours(scratchDC.dc, saved);
        if (passed) {
            result = BitBlt(hdc, at.x, at.y, size.cx, size.cy, scratchDC.dc, 0, 0, SRCCOPY);
            if (!result)
                OSErrorSetErrorInfo(RV_GDIError);
        }
    }
unwind:
    ReleaseSelectedDC(&imageDC);
    ReleaseSelectedDC(&scratchDC);
    if (scratch)
        DeleteObject(scratch);
    ReleaseSelectedDC(&maskDC);
    if (ownMask && mask && (placement != Placement::WithFlicker || cleanUp.freeMadeMaskWithFlicker))
        DeleteObject(mask);
    return result ? TRUE : FALSE;
}

namespace {

// The whole image centred in the rectangle with one raster operation.
BOOL CentredBlt(HDC hdc, const RECT *rect, HBITMAP image, DWORD rop)
{
    SIZE size;
    if (!CentredArguments(hdc, rect, image, &size, __func__))
        return FALSE;
    SelectedDC imageDC;
    if (!SelectIntoNewDC(hdc, image, &imageDC))
        return FALSE;
    POINT at = CentreIn(rect, size);
    BOOL done = BitBlt(hdc, at.x, at.y, size.cx, size.cy, imageDC.dc, 0, 0, rop);
    if (!done)
        OSErrorSetErrorInfo(RV_GDIError);
    ReleaseSelectedDC(&imageDC);
    return done ? TRUE : FALSE;
}

}  // namespace

HBITMAP MakeMaskBitmap(HDC hdc, HBITMAP image, COLORREF transparent, const MaskCleanUp &cleanUp)
{
    SIZE size;
    if (!MeasureBitmap(image, &size))
        return nullptr;
    HBITMAP mask = CreateBitmap(size.cx, size.cy, 1, 1, nullptr);
    if (!mask) {
        OSErrorSetErrorInfo(RV_GDIError);
        return nullptr;
    }
    SelectedDC maskDC, imageDC;
    bool made = false;
    bool maskSelected = SelectIntoNewDC(hdc, mask, &maskDC);
    if (maskSelected && SelectIntoNewDC(hdc, image, &imageDC)) {
        SetBkColor(imageDC.dc, transparent);
        made = BitBlt(maskDC.dc, 0, 0, size.cx, size.cy, imageDC.dc, 0, 0, SRCCOPY);
        if (!made)
            OSErrorSetErrorInfo(RV_GDIError);
    }
    ReleaseSelectedDC(&imageDC);
    ReleaseSelectedDC(&maskDC);
    if (made)
        return mask;
    if (maskSelected || cleanUp.deleteUnselectedMask)
        DeleteObject(mask);
    return nullptr;
}

extern "C" HBITMAP WINAPI UICreateMaskBitmap(HDC hdc, HBITMAP image, COLORREF transparent)
{
    return MakeMaskBitmap(hdc, image, transparent, kToolkitCleanUp);
}

extern "C" DWORD WINAPI UIMaskBlt(HDC dst, int x, int y, int w, int h, HDC src, int srcX, int srcY,
                                  COLORREF transparent)
{
    // A mask that cannot be made records nothing: the caller only sees 0.
    HBITMAP mask = CreateBitmap(w, h, 1, 1, nullptr);
    if (!mask)
        return 0;
    DWORD result = 0;
    SelectedDC maskDC;
    if (SelectIntoNewDC(dst, mask, &maskDC)) {
        COLORREF oldBack = SetBkColor(src, transparent);
        bool masked = BitBlt(maskDC.dc, 0, 0, w, h, src, srcX, srcY, SRCCOPY);
        SetBkColor(src, oldBack);
        if (!masked) {
            OSErrorSetErrorInfo(RV_GDIError);
        } else {
            MaskColours saved = SetMaskColours(dst);
            result = TransparencyPasses(dst, x, y, w, h, src, srcX, srcY, maskDC.dc, 0, 0);
            RestoreMaskColours(dst, saved);
        }
    }
    ReleaseSelectedDC(&maskDC);
    DeleteObject(mask);
    return result;
}

extern "C" DWORD WINAPI UIMaskBltWithFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                             COLORREF transparent)
{
    return CentredMaskBlt(hdc, rect, image, mask, transparent, Placement::WithFlicker,
                          kToolkitCleanUp);
}

extern "C" BOOL WINAPI UIMaskBltNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                          COLORREF transparent)
{
    return CentredMaskBlt(hdc, rect, image, mask, transparent, Placement::NoFlicker,
                          kToolkitCleanUp);
}

extern "C" BOOL WINAPI UIMaskBltInvertNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                                COLORREF transparent)
{
    return CentredMaskBlt(hdc, rect, image, mask, transparent, Placement::InvertNoFlicker,
                          kToolkitCleanUp);
}

extern "C" BOOL WINAPI UIMaskBltNoFlickerTLC(HDC hdc, RECT *rect, HBITMAP image)
{
    return CentredMaskBlt(hdc, rect, image, nullptr, 0, Placement::TopLeftColour,
                          kToolkitCleanUp);
}

extern "C" DWORD WINAPI UIBitBlt(HDC hdc, RECT *rect, HBITMAP image)
{
    return CentredBlt(hdc, rect, image, SRCCOPY);
}

extern "C" DWORD WINAPI UIMonoBlt(HDC hdc, RECT *rect, HBITMAP image)
{
    return CentredBlt(hdc, rect, image, SRCAND);
}
