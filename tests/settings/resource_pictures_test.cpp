// Bitmaps and "META16" metafiles out of the resource library: the real ones
// of the language in force here, and broken ones of the test language QA,
// loaded in a child process.
#include "probe_answers.h"
#include "readback.h"

using ResourcePictures = ErrorStateTest;

namespace {

// What `draw` paints into a white 64 x 64 memory surface, read back.
template <class Draw>
Readback Painted(Draw draw)
{
    HDC screen = GetDC(nullptr), dc = CreateCompatibleDC(screen);
    HBITMAP surface = CreateCompatibleBitmap(screen, 64, 64);
    HGDIOBJ old = SelectObject(dc, surface);
    PatBlt(dc, 0, 0, 64, 64, WHITENESS);
    draw(dc);
    SetMapMode(dc, MM_TEXT);
    Readback pixels = ReadDC(dc, 0, 0, 64, 64);
    SelectObject(dc, old);
    DeleteObject(surface);
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
    return pixels;
}

}  // namespace

TEST_F(ResourcePictures, BitmapAndMetafileFromTheLibrary)
{
    HBITMAP bitmap = ResourceLoadBitmap(ResourceGetHandle(), 9100);
    ASSERT_NE(nullptr, bitmap);
    BITMAP info = {};
    ASSERT_TRUE(GetObjectA(bitmap, sizeof info, &info));
    EXPECT_EQ(32, info.bmWidth);
    EXPECT_EQ(16, info.bmHeight);
    Readback bits = Painted([bitmap](HDC dc) {
        HDC source = CreateCompatibleDC(dc);
        HGDIOBJ old = SelectObject(source, bitmap);
        BitBlt(dc, 0, 0, 32, 16, source, 0, 0, SRCCOPY);
        SelectObject(source, old);
        DeleteDC(source);
    });
    EXPECT_EQ(RGB(200, 0, 0), bits.At(3, 3));
    EXPECT_EQ(RGB(0, 0, 200), bits.At(28, 12));
    DeleteObject(bitmap);
    EXPECT_EQ(nullptr, ResourceLoadBitmap(ResourceGetHandle(), 9999));

    HGLOBAL block = ResourceLoadMetafile(ResourceGetHandle(), "SAMPLE");
    ASSERT_NE(nullptr, block);
    METAFILEPICT *picture = static_cast<METAFILEPICT *>(GlobalLock(block));
    // Bounds 0,0 to 1000,500 at 1440 units per inch, in hundredths of a mm.
    EXPECT_EQ(MM_ISOTROPIC, picture->mm);
    EXPECT_EQ(1000 * 2540 / 1440, picture->xExt);
    EXPECT_EQ(500 * 2540 / 1440, picture->yExt);
    // Played over the whole surface: a red rectangle over the middle.
    Readback played = Painted([picture](HDC dc) {
        SetMapMode(dc, MM_ANISOTROPIC);
        SetViewportExtEx(dc, 64, 64, nullptr);
        EXPECT_TRUE(PlayMetaFile(dc, picture->hMF));
    });
    EXPECT_EQ(RGB(255, 0, 0), played.At(32, 32));
    EXPECT_EQ(RGB(255, 255, 255), played.At(4, 4));
    DeleteMetaFile(picture->hMF);
    GlobalUnlock(block);
    GlobalFree(block);
}

TEST_F(ResourcePictures, AbsentMismatchedOrBrokenMetafilesGiveNull)
{
    EXPECT_EQ(nullptr, ResourceLoadMetafile(ResourceGetHandle(), "NOSUCH"));
    EXPECT_EQ(nullptr, ResourceLoadMetafile(ResourceGetHandle(), MAKEINTRESOURCEA(5)));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    // Found in the resource library, it cannot be loaded through another module.
    EXPECT_EQ(nullptr, ResourceLoadMetafile(nullptr, "SAMPLE"));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());

    ProbeAnswers answers =
        RunResourceProbe("metafiles", "/LQA SAMPLE WRONGKEY INCHZERO BACKWARD TOOLONG");
    ASSERT_EQ(0u, answers.status);
    const struct {
        const char *name, *expected;
    } cases[] = {
        {"SAMPLE", "7 1763 881"},
        {"WRONGKEY", "null 0"},              // nothing recorded, nothing made
        {"INCHZERO", "null 75"},             // RV_BadMetafile instead of a division by 0
        {"BACKWARD", "7 2980852 881"},       // left beyond right wraps, unsigned
        {"TOOLONG", "null 75"},              // size past the resource's end
    };
    for (const auto &c : cases)
        EXPECT_EQ(c.expected, answers.values[c.name]) << c.name;
}
