// Bitmaps and "META16" metafiles out of the resource library: the real ones
// of the language in force here, and broken ones of the test language QA,
// loaded in a child process.
#include "probe_answers.h"

using ResourcePictures = ErrorStateTest;

namespace {

const DWORD kSampleBitmap = 9100;

// Colour of one pixel of `bitmap`, read through a memory context.
COLORREF PixelOf(HBITMAP bitmap, int x, int y)
{
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(dc, bitmap);
    COLORREF colour = GetPixel(dc, x, y);
    SelectObject(dc, old);
    DeleteDC(dc);
    return colour;
}

}  // namespace

TEST_F(ResourcePictures, BitmapComesFromTheLibrary)
{
    HBITMAP bitmap = ResourceLoadBitmap(ResourceGetHandle(), kSampleBitmap);
    ASSERT_NE(nullptr, bitmap);
    BITMAP info = {};
    ASSERT_TRUE(GetObjectA(bitmap, sizeof info, &info));
    EXPECT_EQ(32, info.bmWidth);
    EXPECT_EQ(16, info.bmHeight);
    EXPECT_EQ(RGB(200, 0, 0), PixelOf(bitmap, 3, 3));
    EXPECT_EQ(RGB(0, 0, 200), PixelOf(bitmap, 28, 12));
    DeleteObject(bitmap);
    EXPECT_EQ(nullptr, ResourceLoadBitmap(ResourceGetHandle(), 9999));
}

TEST_F(ResourcePictures, MetafileExtentsAndDrawing)
{
    HGLOBAL block = ResourceLoadMetafile(ResourceGetHandle(), "SAMPLE");
    ASSERT_NE(nullptr, block);
    METAFILEPICT *picture = static_cast<METAFILEPICT *>(GlobalLock(block));
    ASSERT_NE(nullptr, picture);
    // Bounds 0,0 to 1000,500 at 1440 units per inch, in hundredths of a mm.
    EXPECT_EQ(MM_ISOTROPIC, picture->mm);
    EXPECT_EQ(1000 * 2540 / 1440, picture->xExt);
    EXPECT_EQ(500 * 2540 / 1440, picture->yExt);

    // Played over a 64 x 64 white surface: a red rectangle over the middle.
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof format.bmiHeader;
    format.bmiHeader.biWidth = 64;
    format.bmiHeader.biHeight = -64;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    void *bits = nullptr;
    HBITMAP surface = CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    ASSERT_NE(nullptr, surface);
    memset(bits, 0xFF, 64 * 64 * 4);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(dc, surface);
    SetMapMode(dc, MM_ANISOTROPIC);
    SetViewportExtEx(dc, 64, 64, nullptr);
    EXPECT_TRUE(PlayMetaFile(dc, picture->hMF));
    GdiFlush();
    const DWORD *pixels = static_cast<const DWORD *>(bits);
    EXPECT_EQ(0x00FF0000u, pixels[32 * 64 + 32] & 0xFFFFFF);  // centre: red
    EXPECT_EQ(0x00FFFFFFu, pixels[4 * 64 + 4] & 0xFFFFFF);    // corner: untouched
    SelectObject(dc, old);
    DeleteDC(dc);
    DeleteObject(surface);
    DeleteMetaFile(picture->hMF);
    GlobalUnlock(block);
    GlobalFree(block);
}

TEST_F(ResourcePictures, AbsentOrMismatchedMetafileGivesNull)
{
    EXPECT_EQ(nullptr, ResourceLoadMetafile(ResourceGetHandle(), "NOSUCH"));
    EXPECT_EQ(nullptr, ResourceLoadMetafile(ResourceGetHandle(), MAKEINTRESOURCEA(5)));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    // Found in the resource library, it cannot be loaded through another module.
    EXPECT_EQ(nullptr, ResourceLoadMetafile(nullptr, "SAMPLE"));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
}

TEST_F(ResourcePictures, BrokenMetafilesInAChildProcess)
{
    ProbeAnswers answers =
        RunResourceProbe("metafiles", "/LQA SAMPLE WRONGKEY INCHZERO BACKWARD TOOLONG");
    ASSERT_EQ(0u, answers.status);
    struct Case {
        const char *name, *expected;
    } cases[] = {
        {"SAMPLE", "7 1763 881"},
        {"WRONGKEY", "null 0"},              // nothing recorded, nothing made
        {"INCHZERO", "null 75"},             // RV_BadMetafile instead of a division by 0
        {"BACKWARD", "7 2980852 881"},       // left beyond right wraps, unsigned
        {"TOOLONG", "null 75"},              // size past the resource's end
    };
    for (const Case &c : cases)
        EXPECT_EQ(c.expected, answers.values[c.name]) << c.name;
}
