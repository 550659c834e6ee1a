// The gadgets' mask blits against their toolkit twins: the same pixels from
// the same input, and the two clean-up points where they differ.
#include "qz_test.h"
#include "readback.h"
#include <functional>
#include <utility>

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

// `blit` with the picture selected in a context of its own.
DWORD FromSource(Scene &s, const std::function<DWORD(HDC, HDC)> &blit)
{
    HDC src = CreateCompatibleDC(s.dc);
    HGDIOBJ o = SelectObject(src, s.picture);
    DWORD r = blit(s.dc, src);
    SelectObject(src, o);
    DeleteDC(src);
    return r;
}

// The mask of the picture (white where the transparent colour is), copied
// onto the target.
DWORD ShowMask(Scene &s, HBITMAP mask)
{
    std::swap(s.picture, mask);
    DWORD r = FromSource(s, [](HDC dc, HDC src) { return (DWORD)BitBlt(dc, 1, 1, 6, 4, src, 0, 0, SRCCOPY); });
    std::swap(s.picture, mask);
    DeleteObject(mask);
    return r;
}

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
        {"MaskBlt", [&](Scene &s) { return FromSource(s, [&](HDC dc, HDC src) { return GadUtilMaskBlt(dc, 1, 1, 6, 4, src, 0, 0, clear); }); },
         [&](Scene &s) { return FromSource(s, [&](HDC dc, HDC src) { return UIMaskBlt(dc, 1, 1, 6, 4, src, 0, 0, clear); }); }},
        {"CreateMaskBitmap", [&](Scene &s) { return ShowMask(s, GadUtilCreateMaskBitmap(s.dc, s.picture, clear)); },
         [&](Scene &s) { return ShowMask(s, UICreateMaskBitmap(s.dc, s.picture, clear)); }},
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
