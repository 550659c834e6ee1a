// SuperText: the bars at the edges of fit, line, page and thumb steps, the
// drawing rectangle at the scroll offset, the parent's brush and font, and
// a hostile monkey.
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
    HGDIOBJ measuredFont = nullptr;  // selected in the DC the measure block carries
    HBRUSH brush = CreateSolidBrush(kBrush), ink = CreateSolidBrush(kInk);
    bool giveBrush = true;
    std::mt19937 random{62};
    int destroyOneIn = 0;  // the parent destroys the gadget in that share of its questions
    void SetUp() override
    {
        GadgetTest::SetUp();
        parent.Answer([this](HWND, UINT m, WPARAM, LPARAM lp, bool *handled) -> LRESULT {
            *handled = true;
            if (m == WM_MEASUREITEM) {
                auto *mi = reinterpret_cast<MEASUREITEMSTRUCT *>(lp);
                mi->itemWidth = destroyOneIn ? random() % 400 : contentW;
                mi->itemHeight = destroyOneIn ? random() % 400 : contentH;
#if defined(_WIN64)
                measuredFont = GetCurrentObject(HDC(mi->itemData), OBJ_FONT);
#else
                measuredFont = GetCurrentObject(HDC(mi->itemID), OBJ_FONT);
#endif
            } else if (m == WM_DRAWITEM) {
                drawn = *reinterpret_cast<DRAWITEMSTRUCT *>(lp);
                RECT corner = {drawn.rcItem.left, drawn.rcItem.top, drawn.rcItem.left + 10, drawn.rcItem.top + 10};
                FillRect(drawn.hDC, &corner, ink);
            }
            if (destroyOneIn && random() % destroyOneIn == 0) DestroyWindow(g);  // the block goes with it
            return m == WM_CTLCOLORSTATIC ? LRESULT(giveBrush ? brush : nullptr) : TRUE;
        });
        g = parent.CreateChild("SuperText", ID, 0, 0, 0, W, H);
    }
    void TearDown() override { DestroyWindow(g), DeleteObject(brush), DeleteObject(ink), GadgetTest::TearDown(); }
    void Content(UINT w, UINT h) { contentW = w, contentH = h, SendMessageA(g, STM_REMEASURE, 0, 1); }
};

// At, one below and one above the client's extent, in each direction.
TEST_F(SuperTextTest, BarsAtTheEdgeOfFit)
{
    struct Row { UINT w, h; bool vertical, horizontal; } rows[] = {
        {50, H - 1, false, false}, {50, H, false, false}, {50, H + 1, true, false},
        {W - 1, 50, false, false}, {W, 50, false, false}, {W + 1, 50, false, true}, {W + 9, H + 5, true, true},
    };
    for (const Row &row : rows) {
        Content(row.w, row.h);
        LONG_PTR style = GetWindowLongPtrA(g, GWL_STYLE);
        int least, vMost = 0, hMost = 0;
        if (row.vertical) GetScrollRange(g, SB_VERT, &least, &vMost);
        if (row.horizontal) GetScrollRange(g, SB_HORZ, &least, &hMost);
        SCOPED_TRACE(testing::Message() << row.w << " x " << row.h);
        EXPECT_EQ(row.vertical, (style & WS_VSCROLL) != 0);
        EXPECT_EQ(row.horizontal, (style & WS_HSCROLL) != 0);
        EXPECT_EQ(row.vertical ? int(row.h) - H : 0, vMost);
        EXPECT_EQ(row.horizontal ? int(row.w) - W : 0, hMost);
    }
}

// Lines of the font's height and average width, pages of the client, the
// thumb from lParam's low word, the ends clamped; the parent draws the
// content offset by both positions, on its own brush.
TEST_F(SuperTextTest, StepsAndTheOffsetDrawing)
{
    Content(1000, 1000);
    TEXTMETRICA tm = FontMetrics(HGDIOBJ(SendMessageA(g, WM_GETFONT, 0, 0)));
    RECT c;
    GetClientRect(g, &c);
    const int line = tm.tmHeight, ave = tm.tmAveCharWidth, V = WM_VSCROLL, Hs = WM_HSCROLL;
    struct Step { int message; WORD code; LPARAM lParam; int pos; } steps[] = {
        {V, SB_LINEDOWN, 0, line}, {V, SB_PAGEDOWN, 0, line + c.bottom}, {V, SB_THUMBTRACK, 7, line + c.bottom},
        {V, SB_LINEUP, 0, c.bottom}, {V, SB_THUMBPOSITION, 0, 0}, {V, SB_LINEUP, 0, 0},
        {V, SB_THUMBPOSITION, 1000 - H + 1, 1000 - H}, {V, SB_THUMBPOSITION, MAKELPARAM(37, 9), 37},
        {Hs, SB_LINEDOWN, 0, ave}, {Hs, SB_PAGEDOWN, 0, ave + c.right}, {Hs, SB_PAGEUP, 0, ave},
        {Hs, SB_THUMBPOSITION, 1000 - W, 1000 - W}, {Hs, SB_LINEDOWN, 0, 1000 - W}, {Hs, SB_THUMBPOSITION, 20, 20},
    };
    for (const Step &s : steps) {
        SendMessageA(g, s.message, s.code, s.lParam);
        EXPECT_EQ(s.pos, GetScrollPos(g, s.message == V ? SB_VERT : SB_HORZ)) << s.message << " code " << s.code;
    }
    InvalidateRect(g, nullptr, TRUE);
    Readback rb = Readback::Of(g);
    const RECT offset = {-20, -37, 980, 963};
    EXPECT_TRUE(EqualRect(&offset, &drawn.rcItem));
    EXPECT_EQ(UINT(4 + ID * 16 + ODA_DRAWENTIRE * 256 + ODS_SELECTED * 4096),
              drawn.CtlType + drawn.CtlID * 16 + drawn.itemAction * 256 + drawn.itemState * 4096);
    EXPECT_EQ(kBrush, rb.At(5, 5));  // the parent's corner is scrolled out
    SendMessageA(g, WM_VSCROLL, SB_THUMBPOSITION, 0), SendMessageA(g, WM_HSCROLL, SB_THUMBPOSITION, 0);
    rb = Readback::Of(g);
    EXPECT_EQ(kInk, rb.At(5, 5));
    EXPECT_EQ(kBrush, rb.At(15, 15));
}

// Without a brush nothing is erased, and erasing still answers 1; the font
// is the system's until one is given, and measuring uses it.
TEST_F(SuperTextTest, NoBrushAndFonts)
{
    giveBrush = false;
    HDC dc = GetDC(g);
    RECT all = {0, 0, W, H};
    FillRect(dc, &all, ink);
    EXPECT_EQ(1, SendMessageA(g, WM_ERASEBKGND, WPARAM(dc), 0));
    EXPECT_EQ(kInk, GetPixel(dc, W / 2, H / 2));
    ReleaseDC(g, dc);
    EXPECT_EQ(GetStockObject(SYSTEM_FONT), measuredFont);
    HGDIOBJ font = GetStockObject(ANSI_FIXED_FONT);
    SendMessageA(g, WM_SETFONT, WPARAM(font), 0);
    EXPECT_EQ(font, HGDIOBJ(SendMessageA(g, WM_GETFONT, 0, 0)));
    EXPECT_EQ(font, measuredFont);
}

// Random sizes, scrolls, fonts, remeasures, shows and destroys; the parent
// answers any size and now and then destroys the gadget inside a question.
TEST_F(SuperTextTest, MonkeyHostile)
{
    Content(1000, 1000);  // the system makes its scroll bars' drawing objects on first use
    SendMessageA(g, WM_VSCROLL, SB_LINEDOWN, 0), UpdateWindow(g), DestroyWindow(g);
    long before = GdiObjectsInUse();
    destroyOneIn = 12;
    for (int i = 0; i < MonkeySteps(700, 70); ++i) {
        if (!IsWindow(g)) g = parent.CreateChild("SuperText", ID, random() % 2 ? WS_VSCROLL : 0, 0, 0, W, H);
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
    destroyOneIn = 0;
    DestroyWindow(g);
    EXPECT_EQ(before, GdiObjectsInUse());
}

}  // namespace
