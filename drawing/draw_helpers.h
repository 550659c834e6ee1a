// Helpers the drawing units share, and that the gadget frame reuses: the
// size of a bitmap, centring in a rectangle, the transparency passes with
// the colours they need, a memory context with one object selected, and
// bounded reads of pictures held in memory.
#pragma once
#include "qziso32.h"

// GMEM_MOVEABLE | GMEM_ZEROINIT: every picture block of the library.
const UINT kPictureFlags = 0x42;

// The bitmap's width and height; false (recording RV_GDIError) when it
// cannot be measured.
bool MeasureBitmap(HBITMAP bitmap, SIZE *size);

// Top-left corner of a `size` picture centred in `rect`, each offset divided
// with truncation toward zero; a picture larger than the rectangle gets a
// negative offset.
POINT CentreIn(const RECT *rect, SIZE size);

// A memory context compatible with `reference` (null: the screen) with
// `object` selected; Release deselects and deletes it. Objects made for the
// context are the caller's to delete after Release.
struct SelectedDC {
    HDC dc = nullptr;
    HGDIOBJ old = nullptr;
};
bool SelectIntoNewDC(HDC reference, HGDIOBJ object, SelectedDC *out);
void ReleaseSelectedDC(SelectedDC *selected);

// The text colour black and the background white, so that a monochrome mask
// converts to all-zero and all-one bits; Restore puts the earlier back.
struct MaskColours {
    COLORREF text, back;
};
MaskColours SetMaskColours(HDC dc);
void RestoreMaskColours(HDC dc, MaskColours saved);

// dst <- ((dst xor image) and mask) xor image over w by h at (x, y): a set
// mask bit keeps the destination, a clear one takes the image.
bool TransparencyPasses(HDC dst, int x, int y, int w, int h, HDC image, int imageX, int imageY,
                        HDC mask, int maskX, int maskY);

// A block of `size` bytes, allocated with kPictureFlags and locked; null,
// with nothing left allocated, when either step fails.
void *AllocateLocked(SIZE_T size, HGLOBAL *block);

// How many bytes from `start` can be read: the committed, readable memory up
// to `wanted` bytes (a stream handed over by address carries no length).
SIZE_T ReadableRoom(const void *start, SIZE_T wanted);

// The mask blits, shared by the toolkit's UI functions and the gadgets'
// GadUtil copies, which differ only in two clean-up points.
struct MaskCleanUp {
    bool deleteUnselectedMask;     // a new mask that cannot be selected is deleted
    bool freeMadeMaskWithFlicker;  // the flicker form frees a mask it made itself
};
extern const MaskCleanUp kToolkitCleanUp;  // both
extern const MaskCleanUp kGadgetCleanUp;   // neither
enum class Placement { NoFlicker, InvertNoFlicker, TopLeftColour, WithFlicker };
// A one-bit mask of `image`: 1 where it has the transparent colour.
HBITMAP MakeMaskBitmap(HDC hdc, HBITMAP image, COLORREF transparent, const MaskCleanUp &cleanUp);
// The image centred in `rect` with its transparent colour (or the mask
// given) left out, through a scratch copy or, with flicker, straight on.
BOOL CentredMaskBlt(HDC hdc, const RECT *rect, HBITMAP image, HBITMAP mask, COLORREF transparent,
                    Placement placement, const MaskCleanUp &cleanUp);
