// SuperText: the bars at the edges of fit, line, page and thumb steps, the
// drawing rectangle at the scroll offset, the parent's brush, the measure
// block's DC, and a hostile monkey.
#include "qz_test.h"
#include "window_harness.h"
#include <random>

namespace {

const int ID = 62, W = 200, H = 100;
const COLORREF kBrush = 0x0000FF, kInk = 0xFF0000;

class SuperTextTest : public GadgetTest {
protected:
    RecordingParent parent{320, 240};
    HWND g = nullptr;
    UINT contentW = 50, contentH = 50;
    DRAWITEMSTRUCT drawn = {};
    HDC measuredDc = nullptr;
    HGDIOBJ measuredFont = nullptr;
    HBRUSH brush = CreateSolidBrush(kBrush), ink = CreateSolidBrush(kInk);
    bool giveBrush = true;
    void SetUp() override
    {
        GadgetTest::SetUp();
        parent.Answer([this](HWND, UINT m, WPARAM, LPARAM lp, bool *handled) -> LRESULT {
            *handled = true;
            if (m == WM_MEASUREITEM) {
                auto *mi = reinterpret_cast<MEASUREITEMSTRUCT *>(lp);
                mi->itemWidth = contentW, mi->itemHeight = contentH;
#if defined(_WIN64)
                measuredDc = reinterpret_cast<HDC>(mi->itemData);
#else
                measuredDc = reinterpret_cast<HDC>(mi->itemID);
#endif
                measuredFont = GetCurrentObject(measuredDc, OBJ_FONT);
            } else if (m == WM_DRAWITEM) {
                drawn = *reinterpret_cast<DRAWITEMSTRUCT *>(lp);
                RECT corner = {drawn.rcItem.left, drawn.rcItem.top, drawn.rcItem.left + 10, drawn.rcItem.top + 10};
                FillRect(drawn.hDC, &corner, ink);
            } else if (m == WM_CTLCOLORSTATIC) {
                return LRESULT(giveBrush ? brush : nullptr);
            }
            return TRUE;
        });
        g = parent.CreateChild("SuperText", ID, 0, 0, 0, W, H);
        ASSERT_TRUE(g != nullptr);
    }
    void TearDown() override { DestroyWindow(g), DeleteObject(brush), DeleteObject(ink), GadgetTest::TearDown(); }
    void Content(UINT w, UINT h) { contentW = w, contentH = h, SendMessageA(g, STM_REMEASURE, 0, 1); }
    int Pos(int bar) { return GetScrollPos(g, bar); }
};

// At, one below and one above the client's extent, in each direction.
TEST_F(SuperTextTest, BarsAtTheEdgeOfFit)
{
    struct Row { UINT w, h; bool vertical, horizontal; int range; } rows[] = {
        {50, H - 1, false, false, 0}, {50, H, false, false, 0}, {50, H + 1, true, false, 1},
        {W - 1, 50, false, false, 0}, {W, 50, false, false, 0}, {W + 1, 50, false, true, 1},
    };
    for (const Row &row : rows) {
        Content(row.w, row.h);
        LONG_PTR style = GetWindowLongPtrA(g, GWL_STYLE);
        int least = -1, most = -1;
        GetScrollRange(g, row.vertical ? SB_VERT : SB_HORZ, &least, &most);
        SCOPED_TRACE(testing::Message() << row.w << " x " << row.h);
        EXPECT_EQ(row.vertical, (style & WS_VSCROLL) != 0);
        EXPECT_EQ(row.horizontal, (style & WS_HSCROLL) != 0);
        if (row.vertical || row.horizontal)
            EXPECT_EQ(row.range, most);
    }
}

// Lines of the font's height and average width, pages of the client, the
// thumb from lParam's low word, the ends clamped; the parent draws the
// content offset by both positions with the gadget's font.
TEST_F(SuperTextTest, StepsAndTheOffsetDrawing)
{
    Content(1000, 1000);
    HDC dc = GetDC(g);
    HGDIOBJ old = SelectObject(dc, HGDIOBJ(SendMessageA(g, WM_GETFONT, 0, 0)));
    TEXTMETRICA tm;
    GetTextMetricsA(dc, &tm);
    SelectObject(dc, old), ReleaseDC(g, dc);
    RECT c;
    GetClientRect(g, &c);
    int vMax = 1000 - H, hMax = 1000 - W;
    struct Step { UINT message; WORD code; LPARAM lParam; int bar, pos; } steps[] = {
        {WM_VSCROLL, SB_LINEDOWN, 0, SB_VERT, int(tm.tmHeight)},
        {WM_VSCROLL, SB_PAGEDOWN, 0, SB_VERT, int(tm.tmHeight) + c.bottom},
        {WM_VSCROLL, SB_THUMBTRACK, 7, SB_VERT, int(tm.tmHeight) + c.bottom},
        {WM_VSCROLL, SB_LINEUP, 0, SB_VERT, c.bottom},
        {WM_VSCROLL, SB_THUMBPOSITION, 0, SB_VERT, 0},
        {WM_VSCROLL, SB_LINEUP, 0, SB_VERT, 0},
        {WM_VSCROLL, SB_THUMBPOSITION, MAKELPARAM(vMax + 1, 0), SB_VERT, vMax},
        {WM_VSCROLL, SB_THUMBPOSITION, MAKELPARAM(37, 9), SB_VERT, 37},
        {WM_HSCROLL, SB_LINEDOWN, 0, SB_HORZ, int(tm.tmAveCharWidth)},
        {WM_HSCROLL, SB_PAGEDOWN, 0, SB_HORZ, int(tm.tmAveCharWidth) + c.right},
        {WM_HSCROLL, SB_PAGEUP, 0, SB_HORZ, int(tm.tmAveCharWidth)},
        {WM_HSCROLL, SB_THUMBPOSITION, MAKELPARAM(hMax, 0), SB_HORZ, hMax},
        {WM_HSCROLL, SB_LINEDOWN, 0, SB_HORZ, hMax},
        {WM_HSCROLL, SB_THUMBPOSITION, 20, SB_HORZ, 20},
    };
    for (const Step &s : steps) {
        SendMessageA(g, s.message, s.code, s.lParam);
        EXPECT_EQ(s.pos, Pos(s.bar)) << s.message << " code " << s.code;
    }
    InvalidateRect(g, nullptr, TRUE);
    Readback rb = Readback::Of(g);
    const RECT offset = {-20, -37, 980, 963};
    EXPECT_TRUE(EqualRect(&offset, &drawn.rcItem));
    EXPECT_EQ(UINT(4), drawn.CtlType);
    EXPECT_EQ(UINT(ID), drawn.CtlID);
    EXPECT_EQ(UINT(ODA_DRAWENTIRE), drawn.itemAction);
    EXPECT_EQ(UINT(ODS_SELECTED), drawn.itemState);
    EXPECT_EQ(HGDIOBJ(GetStockObject(SYSTEM_FONT)), measuredFont);
    EXPECT_EQ(kBrush, rb.At(5, 5));  // the parent's corner is scrolled out
    SendMessageA(g, WM_VSCROLL, SB_THUMBPOSITION, 0);
    SendMessageA(g, WM_HSCROLL, SB_THUMBPOSITION, 0);
    rb = Readback::Of(g);
    EXPECT_EQ(kInk, rb.At(5, 5));
    EXPECT_EQ(kBrush, rb.At(15, 15));
}

// Without a brush from the parent nothing is erased, and erasing still
// answers 1; a new font is taken and measured with.
TEST_F(SuperTextTest, NoBrushAndANewFont)
{
    giveBrush = false;
    HDC dc = GetDC(g);
    RECT all = {0, 0, W, H};
    FillRect(dc, &all, ink);
    EXPECT_EQ(1, SendMessageA(g, WM_ERASEBKGND, WPARAM(dc), 0));
    EXPECT_EQ(kInk, GetPixel(dc, W / 2, H / 2));
    ReleaseDC(g, dc);
    HGDIOBJ font = GetStockObject(ANSI_FIXED_FONT);
    SendMessageA(g, WM_SETFONT, WPARAM(font), 0);
    EXPECT_EQ(font, HGDIOBJ(SendMessageA(g, WM_GETFONT, 0, 0)));
    EXPECT_EQ(font, measuredFont);
}

// Random sizes, scrolls, fonts, remeasures, shows and destroys under a
// parent that answers any size and now and then destroys the gadget inside
// one of its questions.
TEST_F(SuperTextTest, MonkeyHostile)
{
    // The system makes its scroll bars' drawing objects once, on first use.
    Content(1000, 1000);
    SendMessageA(g, WM_VSCROLL, SB_LINEDOWN, 0);
    UpdateWindow(g);
    DestroyWindow(g);
    long before = GdiObjectsInUse();
    std::mt19937 random(62);
    parent.Answer([&](HWND, UINT m, WPARAM, LPARAM lp, bool *handled) -> LRESULT {
        *handled = true;
        if (m == WM_MEASUREITEM) {
            auto *mi = reinterpret_cast<MEASUREITEMSTRUCT *>(lp);
            mi->itemHeight = random() % 3 ? random() % 400 : random();
            mi->itemWidth = random() % 3 ? random() % 400 : random();
        }
        if (random() % 12 == 0) DestroyWindow(g);  // the block goes with it
        return m == WM_CTLCOLORSTATIC ? LRESULT(brush) : TRUE;
    });
    g = nullptr;
    for (int i = 0; i < MonkeySteps(1000, 100); ++i) {
        if (!IsWindow(g))
            g = parent.CreateChild("SuperText", ID, random() % 2 ? WS_VSCROLL : 0, 0, 0, W, H);
        int n = int(random() % 70000);
        switch (random() % 8) {
        case 0: SendMessageA(g, WM_HSCROLL + random() % 2, random() % 9, n); break;
        case 1: SendMessageA(g, STM_REMEASURE, 0, random() % 2); break;
        case 2: SetWindowPos(g, nullptr, 0, 0, random() % 300, random() % 300, SWP_NOMOVE | SWP_NOZORDER); break;
        case 3: SendMessageA(g, WM_SETFONT, random() % 2 ? 0 : WPARAM(GetStockObject(ANSI_VAR_FONT)), 1); break;
        case 4: ShowWindow(g, random() % 2 ? SW_HIDE : SW_SHOW); break;
        case 5: UpdateWindow(g); break;
        case 6: Click(g, n % W, n % H); break;
        case 7: if (random() % 10 == 0) DestroyWindow(g); break;
        }
    }
    parent.Answer(nullptr);
    DestroyWindow(g);
    g = nullptr;
    EXPECT_EQ(before, GdiObjectsInUse());
}

}  // namespace
