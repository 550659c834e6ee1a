// The gadgets' own names for the toolkit's mask blits. The mask makers and
// the centred blits are the toolkit's, with the gadgets' clean-up: a new
// mask that cannot be selected is left, and the flicker form does not free
// a mask it made (a gadget that paints often passes its own mask).
#include "../drawing/draw_helpers.h"

extern "C" HBITMAP WINAPI GadUtilCreateMaskBitmap(HDC hdc, HBITMAP image, COLORREF transparent)
{
    return MakeMaskBitmap(hdc, image, transparent, kGadgetCleanUp);
}

extern "C" BOOL WINAPI GadUtilMaskBltNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                               COLORREF transparent)
{
    return CentredMaskBlt(hdc, rect, image, mask, transparent, Placement::NoFlicker,
                          kGadgetCleanUp);
}

extern "C" BOOL WINAPI GadUtilMaskBltInvertNoFlicker(HDC hdc, RECT *rect, HBITMAP image,
                                                     HBITMAP mask, COLORREF transparent)
{
    return CentredMaskBlt(hdc, rect, image, mask, transparent, Placement::InvertNoFlicker,
                          kGadgetCleanUp);
}

extern "C" BOOL WINAPI GadUtilMaskBltWithFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                                 COLORREF transparent)
{
    return CentredMaskBlt(hdc, rect, image, mask, transparent, Placement::WithFlicker,
                          kGadgetCleanUp);
}

// Second names of the toolkit's blits themselves.
extern "C" DWORD WINAPI GadUtilBitBlt(HDC hdc, RECT *rect, HBITMAP image)
{
    return UIBitBlt(hdc, rect, image);
}

extern "C" DWORD WINAPI GadUtilMonoBlt(HDC hdc, RECT *rect, HBITMAP image)
{
    return UIMonoBlt(hdc, rect, image);
}

extern "C" DWORD WINAPI GadUtilMaskBlt(HDC dst, int x, int y, int w, int h, HDC src, int srcX,
                                       int srcY, COLORREF transparent)
{
    return UIMaskBlt(dst, x, y, w, h, src, srcX, srcY, transparent);
}
