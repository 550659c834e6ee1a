// The gadgets' mask blits against their toolkit twins: the same pixels from
// the same input, and the two clean-up points where they differ.
#include "qz_test.h"
#include "readback.h"
#include <functional>

namespace {

// A target of 24 x 16 pixels filled with COLOR_WINDOW; a 6 x 4 picture of
// COLOR_HIGHLIGHT with a COLOR_BTNFACE (transparent) border and top-left.
struct Scene {
    HDC screen = GetDC(nullptr);
    HDC dc = CreateCompatibleDC(screen);
    HBITMAP target = CreateCompatibleBitmap(screen, 24, 16);
    HBITMAP picture = CreateCompatibleBitmap(screen, 6, 4);
    HGDIOBJ old = SelectObject(dc, target);
    RECT rect = {3, 2, 21, 14};
    Scene()
    {
        Fill(dc, {0, 0, 24, 16}, GetSysColor(COLOR_WINDOW));
        HDC p = CreateCompatibleDC(screen);
        HGDIOBJ o = SelectObject(p, picture);
        Fill(p, {0, 0, 6, 4}, GetSysColor(COLOR_BTNFACE));
        Fill(p, {1, 1, 5, 3}, GetSysColor(COLOR_HIGHLIGHT));
        SelectObject(p, o);
        DeleteDC(p);
    }
    ~Scene()
    {
        SelectObject(dc, old);
        DeleteObject(target);
        DeleteObject(picture);
        DeleteDC(dc);
        ReleaseDC(nullptr, screen);
    }
    static void Fill(HDC dc, RECT r, COLORREF c)
    {
        HBRUSH b = CreateSolidBrush(c);
        FillRect(dc, &r, b);
        DeleteObject(b);
    }
    Readback Read() const { return ReadDC(dc, 0, 0, 24, 16); }
};

using Blit = std::function<DWORD(Scene &)>;

TEST(GadUtilBlits, PaintAsTheirToolkitTwins)
{
    const COLORREF clear = GetSysColor(COLOR_BTNFACE);
    struct Twin {
        const char *name;
        Blit gadget, toolkit;
    } twins[] = {
        {"NoFlicker", [&](Scene &s) { return (DWORD)GadUtilMaskBltNoFlicker(s.dc, &s.rect, s.picture, nullptr, clear); },
         [&](Scene &s) { return (DWORD)UIMaskBltNoFlicker(s.dc, &s.rect, s.picture, nullptr, clear); }},
        {"WithFlicker", [&](Scene &s) { return (DWORD)GadUtilMaskBltWithFlicker(s.dc, &s.rect, s.picture, nullptr, clear); },
         [&](Scene &s) { return (DWORD)UIMaskBltWithFlicker(s.dc, &s.rect, s.picture, nullptr, clear); }},
        {"InvertNoFlicker", [&](Scene &s) { return (DWORD)GadUtilMaskBltInvertNoFlicker(s.dc, &s.rect, s.picture, nullptr, clear); },
         [&](Scene &s) { return (DWORD)UIMaskBltInvertNoFlicker(s.dc, &s.rect, s.picture, nullptr, clear); }},
        {"BitBlt", [](Scene &s) { return GadUtilBitBlt(s.dc, &s.rect, s.picture); },
         [](Scene &s) { return UIBitBlt(s.dc, &s.rect, s.picture); }},
        {"MonoBlt", [](Scene &s) { return GadUtilMonoBlt(s.dc, &s.rect, s.picture); },
         [](Scene &s) { return UIMonoBlt(s.dc, &s.rect, s.picture); }},
        {"MaskBlt", [&](Scene &s) {
             HDC src = CreateCompatibleDC(s.dc);
             HGDIOBJ o = SelectObject(src, s.picture);
             DWORD r = GadUtilMaskBlt(s.dc, 1, 1, 6, 4, src, 0, 0, clear);
             SelectObject(src, o);
             DeleteDC(src);
             return r; },
         [&](Scene &s) {
             HDC src = CreateCompatibleDC(s.dc);
             HGDIOBJ o = SelectObject(src, s.picture);
             DWORD r = UIMaskBlt(s.dc, 1, 1, 6, 4, src, 0, 0, clear);
             SelectObject(src, o);
             DeleteDC(src);
             return r; }},
    };
    for (const Twin &twin : twins) {
        SCOPED_TRACE(twin.name);
        Scene gadgetScene, toolkitScene;
        Readback before = gadgetScene.Read();
        EXPECT_NE(0u, twin.gadget(gadgetScene));
        EXPECT_NE(0u, twin.toolkit(toolkitScene));
        Readback gadget = gadgetScene.Read(), toolkit = toolkitScene.Read();
        EXPECT_EQ(0, gadget.Differences(toolkit));
        EXPECT_GT(before.Differences(gadget), 0);
    }
}

TEST(GadUtilBlits, MaskIsWhereTheTransparentColourIs)
{
    Scene s;
    HBITMAP mask = GadUtilCreateMaskBitmap(s.dc, s.picture, GetSysColor(COLOR_BTNFACE));
    ASSERT_TRUE(mask);
    HDC m = CreateCompatibleDC(s.dc);
    HGDIOBJ o = SelectObject(m, mask);
    Readback bits = ReadDC(m, 0, 0, 6, 4);
    SelectObject(m, o);
    DeleteDC(m);
    DeleteObject(mask);
    EXPECT_EQ(RGB(255, 255, 255), bits.At(0, 0));
    EXPECT_EQ(RGB(0, 0, 0), bits.At(2, 1));
    EXPECT_EQ(16, bits.Count(RGB(255, 255, 255)));
}

// Without a mask of its own, the gadgets' flicker form keeps the mask it
// made; the toolkit's frees it. The others free theirs.
TEST(GadUtilBlits, OnlyTheFlickerFormKeepsTheMaskItMade)
{
    const COLORREF clear = GetSysColor(COLOR_BTNFACE);
    Scene s;
    auto objects = [] { return GdiObjectsInUse(); };
    long start = objects();
    UIMaskBltWithFlicker(s.dc, &s.rect, s.picture, nullptr, clear);
    GadUtilMaskBltNoFlicker(s.dc, &s.rect, s.picture, nullptr, clear);
    EXPECT_EQ(start, objects());
    GadUtilMaskBltWithFlicker(s.dc, &s.rect, s.picture, nullptr, clear);
    EXPECT_EQ(start + 1, objects());
}

}  // namespace
