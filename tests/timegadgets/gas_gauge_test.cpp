// GasGauge: the bar's edge and the three text layers read back, the
// percentage formula at its limits, and the queue emptied inside a long step
// (and a gauge destroyed from there). Its monkey runs in random_host_test.
#include "qz_test.h"
#include "window_harness.h"

namespace {

const int ID = 51;
const int W = 200, H = 40;
const COLORREF kBar = 0xFF0000, kBack = 0xFFFFFF, kShadow = 0x808080;
const COLORREF kBlack = 0x000000, kWhite = 0xFFFFFF;

LRESULT CALLBACK NeverValidated(HWND w, UINT m, WPARAM wp, LPARAM lp)
{
    return m == WM_PAINT ? 0 : DefWindowProcA(w, m, wp, lp);
}

class GasGaugeTest : public GadgetTest {
protected:
    RecordingParent parent;
    HWND g = nullptr;
    // Plain pixels: every text pixel in one of the three text colours.
    HFONT font = CreateFontA(-24, 0, 0, 0, FW_BOLD, 0, 0, 0, ANSI_CHARSET, 0, 0,
                             NONANTIALIASED_QUALITY, 0, "Arial");
    void SetUp() override
    {
        GadgetTest::SetUp();
        g = parent.CreateChild("GasGauge", ID, 0, 0, 0, W, H);
        ASSERT_TRUE(g != nullptr);
        SendMessageA(g, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    }
    void TearDown() override { DestroyWindow(g), DeleteObject(font), GadgetTest::TearDown(); }
    void Range(LONG minimum, LONG maximum, LONG shown = 0)
    {
        LONG range[3] = {minimum, maximum, shown};
        SendMessageA(g, GGM_SETRANGE, 0, reinterpret_cast<LPARAM>(range));
    }
    void Value(LONG value) { SendMessageA(g, GGM_SETVALUE, 0, value); }
    // Bar-coloured pixels along the top row: where the edge lies.
    long Edge()
    {
        Readback rb = Readback::Of(g);
        RECT top = {0, 0, W, 1};
        return rb.Count(kBar, &top);
    }
};

// Which colours may appear left and right of the edge, and which must.
TEST_F(GasGaugeTest, BarEdgeAndTextLayersAtZeroMiddleAndFull)
{
    struct Row { LONG value; int edge; bool textOnBar, textOnBack; } rows[] = {
        {0, 0, false, true}, {50, W / 2, true, true}, {100, W, true, false},
    };
    for (const Row &row : rows) {
        Value(row.value);
        Readback rb = Readback::Of(g);
        RECT filled = {0, 0, row.edge, H}, empty = {row.edge, 0, W, H};
        long barArea = long(row.edge) * H, backArea = long(W - row.edge) * H;
        long barText = rb.Count(kWhite, &filled);
        long backText = rb.Count(kBlack, &empty), shadow = rb.Count(kShadow, &empty);
        SCOPED_TRACE(row.value);
        EXPECT_EQ(barArea, rb.Count(kBar, &filled) + barText);
        EXPECT_EQ(backArea, rb.Count(kBack, &empty) + backText + shadow);
        EXPECT_EQ(row.textOnBar, barText > 0);
        EXPECT_EQ(row.textOnBack, backText > 0);
        EXPECT_EQ(row.textOnBack, shadow > 0);
    }
}

// Raised, after a resize: a light grey frame, then grey top left and white
// bottom right.
TEST_F(GasGaugeTest, RaisedBorderAfterResize)
{
    SendMessageA(g, GGM_SETRAISED, 1, 0);
    SetWindowPos(g, nullptr, 0, 0, W, H + 1, SWP_NOMOVE | SWP_NOZORDER);
    Readback rb = Readback::Of(g);
    EXPECT_EQ(0xC0C0C0u, rb.At(0, 0));
    EXPECT_EQ(kShadow, rb.At(1, 1));
    EXPECT_EQ(kWhite, rb.At(W - 2, H - 1));
    EXPECT_EQ(kWhite, rb.At(W - 2, H / 2));  // the empty part's sunk right edge
}

// P = value * 100 / (maximum - minimum), the minimum not taken off, no clamp.
TEST_F(GasGaugeTest, PercentFormulaAtItsLimits)
{
    struct Row { LONG minimum, maximum, value; long edge; } rows[] = {
        {0, 100, 1, MulDiv(W, 1, 100)},     {0, 3, 1, MulDiv(W, 33, 100)},
        {0, 3, 2, MulDiv(W, 66, 100)},      {50, 150, 60, MulDiv(W, 60, 100)},
        {0, 100, 99, MulDiv(W, 99, 100)},   {0, 100, 150, W},
        {0, 100, -5, 0},                    {0, 1000, 9, 0},
    };
    for (const Row &row : rows) {
        Range(row.minimum, row.maximum);
        Value(row.value);
        EXPECT_EQ(row.edge, Edge()) << row.minimum << ".." << row.maximum << " at " << row.value;
        Range(0, 100);
        Value(0);
    }
    // A range of no width stores the value and changes nothing.
    Value(40);
    Range(7, 7, 40);
    Value(90);
    EXPECT_EQ(MulDiv(W, 40, 100), Edge());
}

// A long step empties the queue before its frames; a one-percent step does
// not; a step beside a window that is never painted ends; a gauge destroyed
// by a message it dispatches stops at once.
TEST_F(GasGaugeTest, LongStepDispatchesWaitingMessages)
{
    Value(10);
    parent.Clear();
    PostMessageA(parent.Window(), WM_USER + 7, 1, 0);
    Value(11);
    MSG msg;
    EXPECT_TRUE(PeekMessageA(&msg, parent.Window(), WM_USER + 7, WM_USER + 7, PM_NOREMOVE));
    Value(60);
    EXPECT_FALSE(PeekMessageA(&msg, parent.Window(), WM_USER + 7, WM_USER + 7, PM_NOREMOVE));
    static const Message pumped[] = {{WM_USER + 7, sent | wparam, 1, 0}, {0, 0, 0, 0}};
    EXPECT_SEQUENCE(parent, pumped, "the posted message, dispatched inside the step");
    HWND gauge = g;
    parent.Answer([gauge](HWND, UINT m, WPARAM, LPARAM, bool *) { return LRESULT(m == WM_USER + 8 && DestroyWindow(gauge)); });
    // A window whose paint is never validated is sent WM_PAINT without end.
    WNDCLASSA wc = {};
    wc.lpfnWndProc = NeverValidated;
    wc.lpszClassName = "QzNeverValidated";
    RegisterClassA(&wc);
    HWND w = CreateWindowA(wc.lpszClassName, "", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, 0, 0, 0, 0);
    Value(62);
    EXPECT_EQ(MulDiv(W, 62, 100), Edge());
    PostMessageA(parent.Window(), WM_USER + 8, 0, 0);
    Value(0);
    EXPECT_FALSE(IsWindow(gauge));
    DestroyWindow(w);
}

}  // namespace
