// No drawing function keeps a GDI object: the number of 1 x 1 bitmaps that
// can still be made is the same before and after each runs 1,000 times,
// failures included.
#include "picture_files.h"
#include "surface.h"
#include "readback.h"

namespace {

using GdiLeaks = ErrorStateTest;

TEST_F(GdiLeaks, EveryFunctionThousandTimes)
{
    const COLORREF ink = GetSysColor(COLOR_HIGHLIGHT), back = GetSysColor(COLOR_WINDOW);
    Surface target(16, 16, back);
    HBITMAP image = MakeImage({"abab", "baba", "abab"}, {ink, back});
    HBITMAP mask = UICreateMaskBitmap(target.dc, image, back);
    Surface source(8, 8, ink);
    HBRUSH brush = CreateSolidBrush(ink);
    HFONT font = CreateFontA(-12, 0, 0, 0, 0, 0, 0, 0, ANSI_CHARSET, 0, 0, 0, 0, "Arial");
    SelectObject(target.dc, font);
    BmpShape shape;
    std::vector<BYTE> file = MakeBmp(shape), broken = file;
    broken[14] = 99;
    RECT rect = {1, 1, 15, 15};
    UIVertDrawTextInit();
    auto drawEverything = [&](int i) {
        DeleteObject(UICreateMaskBitmap(target.dc, image, back));
        UICreateMaskBitmap(target.dc, nullptr, back);
        UIMaskBlt(target.dc, 0, 0, 4, 4, source.dc, 0, 0, ink);
        UIMaskBltWithFlicker(target.dc, &rect, image, mask, back);
        UIMaskBltNoFlicker(target.dc, &rect, image, nullptr, back);
        UIMaskBltNoFlicker(target.dc, &rect, nullptr, nullptr, back);
        UIMaskBltInvertNoFlicker(target.dc, &rect, image, mask, back);
        UIMaskBltNoFlickerTLC(target.dc, &rect, image);
        UIBitBlt(target.dc, &rect, image);
        UIMonoBlt(target.dc, &rect, image);
        OSMaskBlt(target.dc, 0, 0, 4, 3, source.dc, 0, 0, SRCCOPY, mask, i & 1);
        MaskBltWithBitmap(target.dc, 0, 0, 4, 3, source.dc, 0, 0, SRCCOPY, mask, i & 1, image);
        OSMaskBlt(target.dc, 0, 0, 4, 3, source.dc, 0, 0, SRCCOPY, nullptr, 0);
        DeleteObject(UICreateDitheredBitmap(target.dc, image, ink));
        DeleteObject(UIChangeBitmapColor(image, ink, back));
        UIChangeBitmapColor(nullptr, ink, back);
        UITileBitmap(target.dc, &rect, image);
        UIFrameAndFillRect(target.dc, &rect, brush, brush, brush);
        UITroughRect(target.dc, &rect);
        Draw3DFrame(target.dc, &rect, ink, back, 15);
        DeleteObject(UICreateBitmapRegion(image, ink, i & 1));
        DeleteObject(UICreateMirroredBitmapRegion(image, CLR_INVALID));
        DeleteObject(UICreateRoundRectRegion(0, 0, 20, 10, 6, 4));
        UICreateBitmapRegion(nullptr, ink, 0);
        HGLOBAL dib = DIB_FileStreamToDIB(file.data());
        DIB_FileStreamToDIB(broken.data());
        HPALETTE palette = DIB_CreateDibPalette(dib);
        HBITMAP bitmap = DIB_BitmapFromDib(dib, palette);
        DeleteObject(DIB_CopyBitmap(bitmap));
        DIB_Destroy(DIB_DibFromBitmap(bitmap, 0, 0, palette));
        DIB_DibBlt(target.dc, 0, 0, 4, 3, dib, 0, 0, SRCCOPY);
        DIB_StretchBlt(target.dc, 0, 0, 8, 6, dib, 0, 0, 4, 3, SRCCOPY);
        DeleteObject(bitmap);
        DeleteObject(palette);
        DIB_Destroy(DIB_CompressDIB(dib, TRUE));
        UIVertDrawText(target.dc, "Leak", -1, &rect, 5, i & 1);
        DrawTextWithIndent(target.dc, "a few words here", 0, &rect, DT_WORDBREAK, 4, 0, 0);
    };
    // Once before counting: the vertical text cache keeps its strip.
    drawEverything(0);
    drawEverything(1);
    long before = GdiObjectsInUse();
    for (int i = 0; i < 1000; ++i)
        drawEverything(i);
    EXPECT_EQ(before, GdiObjectsInUse());
    UICleanUpVertDrawText();
    DeleteObject(font);
    DeleteObject(brush);
    DeleteObject(mask);
    DeleteObject(image);
}

}  // namespace
