// Vertical text compared glyph by glyph with the same glyph drawn
// horizontally and turned here; the font cache's limit; indented text.
#include "readback.h"
#include "surface.h"

namespace {

// Without a cache the text is not drawn, and the call still succeeds.
TEST(VerticalTextCache, NothingDrawnBeforeTheFirstInit)
{
    Surface s(40, 40);
    HFONT font = CreateFontA(-14, 0, 0, 0, FW_BOLD, 0, 0, 0, ANSI_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0, "Arial");
    SelectObject(s.dc, font);
    RECT strip = {0, 0, 40, 40};
    EXPECT_TRUE(UIVertDrawText(s.dc, "MM", -1, &strip, 0, 1));
    EXPECT_EQ(40 * 40, ReadDC(s.dc, 0, 0, 40, 40).Count(RGB(255, 255, 255)));
    SelectObject(s.dc, GetStockObject(SYSTEM_FONT));
    DeleteObject(font);
}

class VerticalText : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        ASSERT_GE(UIVertDrawTextInit(), 1);
        font = CreateFontA(-14, 0, 0, 0, FW_BOLD, 0, 0, 0, ANSI_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0, "Arial");
    }
    void TearDown() override
    {
        UITrashVertFont(font);
        UICleanUpVertDrawText();
        DeleteObject(font);
        ErrorStateTest::TearDown();
    }
    HFONT font;
};

TEST_F(VerticalText, GlyphsAreTheHorizontalOnesTurned)
{
    Surface flat(40, 40);
    SelectObject(flat.dc, font);
    TEXTMETRICA tm;
    GetTextMetricsA(flat.dc, &tm);
    INT width;
    GetCharWidthA(flat.dc, 'R', 'R', &width);
    width -= tm.tmOverhang;
    TextOutA(flat.dc, 0, 0, "R", 1);
    for (int direction : {1, 0}) {
        SCOPED_TRACE(direction);
        Surface turned(40, 40);
        SelectObject(turned.dc, font);
        RECT strip = {0, 0, tm.tmHeight, 40};
        EXPECT_TRUE(UIVertDrawText(turned.dc, "R", -1, &strip, 0, direction));
        int black = 0, wrong = 0;
        for (int r = 0; r < tm.tmHeight; ++r)
            for (int c = 0; c < width; ++c) {
                COLORREF want = flat.At(c, r) == RGB(0, 0, 0) ? RGB(0, 0, 0) : RGB(255, 255, 255);
                COLORREF got = direction ? turned.At(tm.tmHeight - 1 - r, c) : turned.At(r, 39 - c);
                black += want == RGB(0, 0, 0);
                wrong += got != want;
            }
        EXPECT_GT(black, 5);
        EXPECT_EQ(0, wrong);
    }
}

TEST_F(VerticalText, StopsAtTheTerminatorAndTheStripsEnd)
{
    Surface s(40, 200), one(40, 200);
    SelectObject(s.dc, font);
    SelectObject(one.dc, font);
    RECT strip = {0, 0, 40, 200};
    EXPECT_TRUE(UIVertDrawText(s.dc, "I\0IIIII", 7, &strip, 0, 1));
    EXPECT_TRUE(UIVertDrawText(one.dc, "I", 1, &strip, 0, 1));
    EXPECT_EQ(0, memcmp(s.bits, one.bits, 40 * 200 * 4));
    // A strip 3 rows long takes no more than 3 rows.
    Surface shortStrip(40, 40);
    SelectObject(shortStrip.dc, font);
    RECT three = {0, 0, 40, 3};
    EXPECT_TRUE(UIVertDrawText(shortStrip.dc, "WWWW", -1, &three, 256, 1));
    RECT below = {0, 3, 40, 40};
    EXPECT_EQ(37 * 40, ReadDC(shortStrip.dc, 0, 0, 40, 40).Count(RGB(255, 255, 255), &below));
}

TEST_F(VerticalText, TheEleventhFontDrawsNothing)
{
    HFONT fonts[11];
    for (int i = 0; i < 11; ++i) {
        fonts[i] = CreateFontA(-10 - i, 0, 0, 0, FW_BOLD, 0, 0, 0, ANSI_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0, "Arial");
        Surface s(40, 60);
        SelectObject(s.dc, fonts[i]);
        RECT strip = {0, 0, 40, 60};
        EXPECT_TRUE(UIVertDrawText(s.dc, "MM", -1, &strip, 0, 0));
        EXPECT_EQ(i < 10, ReadDC(s.dc, 0, 0, 40, 60).Count(RGB(0, 0, 0)) > 0) << "font " << i << ": the cache holds ten";
    }
    for (HFONT f : fonts) {
        UITrashVertFont(f);
        DeleteObject(f);
    }
}

TEST_F(VerticalText, IndentedParagraph)
{
    Surface s(200, 200);
    SelectObject(s.dc, font);
    TEXTMETRICA tm;
    GetTextMetricsA(s.dc, &tm);
    const int line = tm.tmHeight + tm.tmExternalLeading;
    RECT r = {0, 0, 200, 10};
    EXPECT_EQ(0, DrawTextWithIndent(s.dc, "", 0, &r, DT_CALCRECT, 20, 0, 0));
    SIZE blank;
    GetTextExtentPointA(s.dc, " ", 1, &blank);
    EXPECT_EQ(blank.cy, DrawTextWithIndent(s.dc, "", 0, &r, DT_CALCRECT, 20, 0, 1));
    EXPECT_EQ(blank.cy, r.bottom);
    // Fits on the first line: one line's height.
    r = {0, 0, 200, 10};
    EXPECT_EQ(line, DrawTextWithIndent(s.dc, "one two", 0, &r, DT_CALCRECT | DT_WORDBREAK, 20, 0, 0));
    // A first word wider than the first line: the whole text goes below.
    const char *text = "Extraordinarily long words";
    r = {0, 0, 200, 10};
    RECT below = {0, line, 200, 10};
    int rest = DrawTextA(s.dc, text, -1, &below, DT_CALCRECT | DT_WORDBREAK);
    EXPECT_EQ(line + rest, DrawTextWithIndent(s.dc, text, 0, &r, DT_CALCRECT | DT_WORDBREAK, 190, 0, 0));
    EXPECT_EQ(below.bottom, r.bottom);
    // A line break ends the first line; the least next top pushes the rest down.
    r = {0, 0, 200, 10};
    int h = DrawTextWithIndent(s.dc, "a\r\nb", 0, &r, DT_CALCRECT, 20, 50, 0);
    EXPECT_EQ(50 + line, h);
}

}  // namespace
