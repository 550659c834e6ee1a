// The mask blits and bitmap helpers, read back pixel by pixel from DIB
// sections, with the system's colours.
#include "surface.h"

namespace {

class MaskBlits : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        back = GetSysColor(COLOR_WINDOW);
        clear = GetSysColor(COLOR_BTNFACE);
        ink = GetSysColor(COLOR_HIGHLIGHT);
        ASSERT_TRUE(back != clear && back != ink && clear != ink);
    }
    // 4 x 3: ink around transparent pixels, the top-left one among them, and
    // one corner marked.
    HBITMAP Ring() { return MakeImage({"abbb", "baab", "bbbc"}, {clear, ink, back ^ 0xFFFFFF}); }
    COLORREF back, clear, ink;
};

TEST_F(MaskBlits, MaskIsWhiteWhereTransparent)
{
    HBITMAP image = Ring();
    Surface probe(1, 1);
    HBITMAP mask = UICreateMaskBitmap(probe.dc, image, clear);
    ASSERT_NE(nullptr, mask);
    BITMAP info;
    GetObjectA(mask, sizeof info, &info);
    EXPECT_EQ(1, info.bmBitsPixel);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(dc, mask);
    EXPECT_EQ(RGB(255, 255, 255), GetPixel(dc, 1, 1));
    EXPECT_EQ(RGB(255, 255, 255), GetPixel(dc, 0, 0));
    EXPECT_EQ(RGB(0, 0, 0), GetPixel(dc, 1, 0));
    EXPECT_EQ(RGB(0, 0, 0), GetPixel(dc, 3, 2));
    SelectObject(dc, old);
    DeleteDC(dc);
    DeleteObject(mask);
    DeleteObject(image);
    EXPECT_EQ(nullptr, UICreateMaskBitmap(probe.dc, nullptr, clear));
    EXPECT_EQ(RV_GDIError, OSErrorGetErrorValue());
}

// Each centred variant: image pixels where opaque, target where transparent,
// the target's colours as they were, the image centred with truncation.
TEST_F(MaskBlits, CentredVariantsKeepTransparentPixels)
{
    struct Variant {
        const char *name;
        BOOL (*blit)(HDC, RECT *, HBITMAP, COLORREF);
    } const variants[] = {
        {"NoFlicker", [](HDC d, RECT *r, HBITMAP i, COLORREF c) { return UIMaskBltNoFlicker(d, r, i, nullptr, c); }},
        {"WithFlicker", [](HDC d, RECT *r, HBITMAP i, COLORREF c) { return (BOOL)UIMaskBltWithFlicker(d, r, i, nullptr, c); }},
        {"TopLeft", [](HDC d, RECT *r, HBITMAP i, COLORREF) { return UIMaskBltNoFlickerTLC(d, r, i); }},
    };
    for (const Variant &v : variants) {
        SCOPED_TRACE(v.name);
        HBITMAP image = Ring();
        Surface target(10, 10, back);
        SetTextColor(target.dc, RGB(1, 2, 3));
        SetBkColor(target.dc, RGB(4, 5, 6));
        RECT rect = {2, 2, 9, 8};  // (7 - 4) / 2 = 1, (6 - 3) / 2 = 1
        ASSERT_TRUE(v.blit(target.dc, &rect, image, clear));
        // Ink, two transparent pixels, the marked corner, outside the image.
        target.Expect({{4, 3, ink}, {3, 3, back}, {4, 4, back}, {6, 5, back ^ 0xFFFFFF}, {2, 2, back}});
        EXPECT_EQ(RGB(1, 2, 3), GetTextColor(target.dc));
        EXPECT_EQ(RGB(4, 5, 6), GetBkColor(target.dc));
        DeleteObject(image);
    }
}

TEST_F(MaskBlits, LargerImageGetsNegativeOffsetTruncatedTowardZero)
{
    HBITMAP image = MakeImage({"abcab"}, {ink, clear, back ^ 0xFFFFFF});
    Surface target(4, 3, back);
    RECT rect = {0, 0, 2, 1};  // (2 - 5) / 2 = -1, not -2
    ASSERT_TRUE(UIBitBlt(target.dc, &rect, image));
    target.Expect({{0, 0, clear}, {1, 0, back ^ 0xFFFFFF}});
    DeleteObject(image);
}

TEST_F(MaskBlits, InvertVariantRestoresTheBitmapOnSecondCall)
{
    HBITMAP image = Ring();
    RECT rect = {0, 0, 4, 3};
    Surface first(4, 3, back), second(4, 3, back);
    ASSERT_TRUE(UIMaskBltInvertNoFlicker(first.dc, &rect, image, nullptr, clear ^ 0xFFFFFF));
    EXPECT_EQ(ink ^ 0xFFFFFF, first.At(1, 0));  // drawn inverted
    ASSERT_TRUE(UIMaskBltInvertNoFlicker(second.dc, &rect, image, nullptr, clear ^ 0xFFFFFF));
    second.Expect({{1, 0, ink}, {1, 1, back}});
    DeleteObject(image);
}

TEST_F(MaskBlits, MaskBltFromSourceContext)
{
    Surface source(6, 3, clear);
    source.Set(4, 1, ink);
    Surface target(4, 4, back);
    COLORREF sourceBack = SetBkColor(source.dc, RGB(9, 9, 9));
    ASSERT_EQ(1u, UIMaskBlt(target.dc, 1, 1, 2, 2, source.dc, 3, 0, clear));
    EXPECT_EQ(RGB(9, 9, 9), GetBkColor(source.dc));
    target.Expect({{1, 1, back}, {2, 2, ink}, {3, 3, back}});
    SetBkColor(source.dc, sourceBack);
}

TEST_F(MaskBlits, OSMaskBltMirrors)
{
    HBITMAP image = MakeImage({"abc"}, {ink, clear, back ^ 0xFFFFFF});
    HBITMAP mask = CreateBitmap(3, 1, 1, 1, nullptr);  // all clear: all opaque
    HDC source = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(source, image);
    Surface plain(3, 1, back), mirrored(3, 1, back);
    ASSERT_EQ(1, OSMaskBlt(plain.dc, 0, 0, 3, 1, source, 0, 0, SRCCOPY, mask, 0));
    ASSERT_EQ(1, OSMaskBlt(mirrored.dc, 0, 0, 3, 1, source, 0, 0, SRCCOPY, mask, 1));
    plain.Expect({{0, 0, ink}, {2, 0, back ^ 0xFFFFFF}});
    mirrored.Expect({{0, 0, back ^ 0xFFFFFF}, {2, 0, ink}});
    Surface over(3, 1, back);
    HBITMAP background = MakeImage({"bbb"}, {ink, clear});
    ASSERT_EQ(1, MaskBltWithBitmap(over.dc, 0, 0, 3, 1, source, 0, 0, SRCCOPY, mask, 0, background));
    EXPECT_EQ(ink, over.At(0, 0));
    EXPECT_EQ(image, SelectObject(source, old));  // the source got its image back
    DeleteDC(source);
    DeleteObject(background);
    DeleteObject(mask);
    DeleteObject(image);
    EXPECT_EQ(0, OSMaskBlt(plain.dc, 0, 0, 3, 1, source, 0, 0, SRCCOPY, nullptr, 0));
}

TEST_F(MaskBlits, DitheredChangedAndTiledBitmaps)
{
    HBITMAP image = MakeImage({"ab", "ba"}, {ink, clear});
    Surface probe(1, 1);
    HBITMAP dithered = UICreateDitheredBitmap(probe.dc, image, RGB(255, 0, 255));
    ASSERT_NE(nullptr, dithered);
    RECT whole = {0, 0, 2, 2};
    Surface seen(2, 2);
    UIBitBlt(seen.dc, &whole, dithered);
    EXPECT_EQ(ink & RGB(255, 0, 255), seen.At(0, 0));
    DeleteObject(dithered);

    HBITMAP changed = UIChangeBitmapColor(image, clear, back);
    ASSERT_NE(nullptr, changed);
    UIBitBlt(seen.dc, &whole, changed);
    seen.Expect({{1, 0, back}, {0, 0, ink}});
    DeleteObject(changed);
    changed = UIChangeBitmapColor(image, RGB(1, 1, 1), back);  // no such pixel: a copy
    UIBitBlt(seen.dc, &whole, changed);
    EXPECT_EQ(clear, seen.At(1, 0));
    DeleteObject(changed);

    Surface tiled(6, 4, back);
    RECT area = {0, 0, 5, 3};
    EXPECT_EQ(1u, UITileBitmap(tiled.dc, &area, image));
    // The last tiles are cut at the edges.
    tiled.Expect({{4, 2, ink}, {3, 2, clear}, {5, 0, back}, {0, 3, back}});
    RECT empty = {4, 4, 4, 4};
    Surface untouched(5, 5, back);
    EXPECT_EQ(1u, UITileBitmap(untouched.dc, &empty, image));
    EXPECT_EQ(back, untouched.At(4, 4));
    Surface mono(2, 2, RGB(0, 255, 0));
    EXPECT_EQ(1u, UIMonoBlt(mono.dc, &whole, image));
    EXPECT_EQ(ink & RGB(0, 255, 0), mono.At(0, 0));
    DeleteObject(image);
}

// An independent statement of the rule: dark colours lighten channel by
// channel (2c - 1 for even, 2c for odd, 0 stays), others halve rounding up.
COLORREF HalfIntensity(COLORREF c)
{
    int ch[3] = {int(c & 0xFF), int((c >> 8) & 0xFF), int((c >> 16) & 0xFF)};
    bool dark = ch[0] <= 128 && ch[1] <= 128 && ch[2] <= 128;
    COLORREF out = 0;
    for (int i = 0; i < 3; ++i) {
        int v = dark ? (ch[i] ? (2 * ch[i] - 1 + ch[i] % 2) % 256 : 0) : (ch[i] + 1) / 2;
        out |= static_cast<COLORREF>(v) << (8 * i);
    }
    return out;
}

TEST_F(MaskBlits, HalfIntensityOverEveryColour)
{
    EXPECT_EQ(0u, UICalcHalfIntensity(0xFF000000) >> 24);
#if defined(_WIN64)
    const COLORREF step = 1;
#else
    const COLORREF step = 7;  // a sample under the emulated 32-bit lane
#endif
    COLORREF wrong = 0;
    for (COLORREF c = 0; c < 0x1000000; c += step)
        if (UICalcHalfIntensity(c) != HalfIntensity(c) && !wrong++)
            ADD_FAILURE() << std::hex << c;
    EXPECT_EQ(0u, wrong);
}

TEST_F(MaskBlits, FramesAndTroughs)
{
    Surface s(6, 5, back);
    HBRUSH fill = CreateSolidBrush(clear), light = CreateSolidBrush(ink),
           dark = CreateSolidBrush(RGB(1, 2, 3));
    RECT r = {0, 0, 6, 5};
    ASSERT_TRUE(UIFrameAndFillRect(s.dc, &r, fill, light, dark));
    // The right line is drawn last: its top pixel is dark.
    s.Expect({{0, 0, ink}, {0, 3, ink}, {5, 4, RGB(1, 2, 3)}, {5, 0, RGB(1, 2, 3)}, {2, 2, clear}});

    const COLORREF shadow = GetSysColor(COLOR_BTNSHADOW), hi = GetSysColor(COLOR_BTNHIGHLIGHT);
    s.Fill(back);
    ASSERT_EQ(1u, UITroughRect(s.dc, &r));
    // Shadow then highlight at the top left, at bottom - 2 and at right - 2.
    s.Expect({{0, 0, shadow}, {1, 1, hi}, {3, 3, shadow}, {3, 4, hi}, {4, 2, shadow}, {5, 2, hi}, {2, 2, back}});

    s.Fill(back);
    SetBkColor(s.dc, RGB(7, 7, 7));
    RECT line = {0, 2, 6, 3};  // height 1: top and bottom on one row
    // The answer is what putting the old colour back returned: the second colour.
    EXPECT_EQ(clear, Draw3DFrame(s.dc, &line, ink, clear, 4 | 8 | 0x1000));
    EXPECT_EQ(RGB(7, 7, 7), GetBkColor(s.dc));
    s.Expect({{0, 2, clear}, {5, 2, ink}, {0, 1, back}});  // the bottom stops 2 short
    DeleteObject(fill);
    DeleteObject(light);
    DeleteObject(dark);
}

}  // namespace
