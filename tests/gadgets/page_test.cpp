// Page: every handle dragged in the application's dialog across its clamp;
// grid handles only for two or more columns or rows; the zoom toggle; lines
// one pixel wide at every scale; no extent; drags cut short; failed paints.
#include "failure_seam.h"
#include "qz_test.h"
#include "window_harness.h"
#include <random>
#include <string>

namespace {

const int ID = 100, W = 300, H = 200;
// 2 x 3 cells of 120 x 40 on a 300 x 200 sheet: gaps of 10 across and 15
// down; the first cell's inner area is (25, 16)-(133, 42).
const PageLayout kBase = {7, 2, 3, 20, 10, 30, 40, 5, 6, 7, 8, 300, 200, 120, 40, 10, 5, 15, 20, 8, 9};
const COLORREF kRed = 0x0000FF, kCyan = 0xFFFF00;
enum Field { mL = 3, mT, mR, mB, cL, cT, cR, cB, cW = 13, cH };

LONG &At(PageLayout &l, int field) { return reinterpret_cast<LONG *>(&l)[field]; }
LONG At(const PageLayout &l, int field) { return reinterpret_cast<const LONG *>(&l)[field]; }
void Set(HWND g, const PageLayout &l) { SendMessageA(g, PGM_SETLAYOUT, 0, LPARAM(&l)), UpdateWindow(g); }
PageLayout Get(HWND g) { PageLayout l = {}; SendMessageA(g, PGM_GETLAYOUT, 0, LPARAM(&l)); return l; }
void Mouse(HWND g, UINT m, POINT p) { SendMessageA(g, m, m == WM_LBUTTONUP ? 0 : MK_LBUTTON, MAKELPARAM(p.x, p.y)); }
constexpr LRESULT HK(int kind, int handle) { return LRESULT(MAKELONG(kind, handle)); }
LRESULT Hover(HWND g, POINT p) { SendMessageA(g, WM_MOUSEMOVE, 0, MAKELPARAM(p.x, p.y)); return SendMessageA(g, PGM_GETHOVER, 0, 0); }
// A click where no handle lies: the view toggles.
void Click(HWND g) { Hover(g, {200, 120}), Mouse(g, WM_LBUTTONDOWN, {200, 120}), Mouse(g, WM_LBUTTONUP, {200, 120}); }

std::vector<WORD> g_codes;  // what the dialog is told by its Page
INT_PTR CALLBACK LogCodes(HWND, UINT m, WPARAM wp, LPARAM)
{
    if (m == WM_COMMAND && LOWORD(wp) == ID) g_codes.push_back(HIWORD(wp));
    return m == WM_INITDIALOG;
}

// The application's page dialog, its Page sized to one layout unit a pixel.
class PageTest : public GadgetTest {
protected:
    HWND dialog = nullptr, g = nullptr;
    void SetUp() override
    {
        GadgetTest::SetUp();
        ASSERT_TRUE(dialog = CreateDialogParamA(ResourceGetHandle(), "PAGEDIALOG", nullptr, LogCodes, 0));
        ShowWindow(dialog, SW_SHOWNOACTIVATE);
        SetWindowPos(g = GetDlgItem(dialog, ID), nullptr, 0, 0, W, H, SWP_NOMOVE | SWP_NOZORDER);
        Set(g, kBase), g_codes.clear();
    }
    void TearDown() override { DestroyWindow(dialog), GadgetTest::TearDown(); }
};

// Each handle pressed at its place, then moved three times across its
// clamp (one below, at, one above); the layout is read after every move.
TEST_F(PageTest, EveryHandleDraggedAcrossItsClamp)
{
    struct Row { POINT press; LRESULT hover; int a, b; POINT to[3]; LONG va[3], vb[3]; } rows[] = {
        {{20, 100}, HK(0, 0), mL, 0, {{9, 0}, {10, 0}, {11, 0}}, {10, 10, 11}, {}},
        {{200, 10}, HK(0, 1), mT, 0, {{0, 4}, {0, 5}, {0, 6}}, {5, 5, 6}, {}},
        {{270, 100}, HK(0, 2), mR, 0, {{286, 0}, {285, 0}, {284, 0}}, {15, 15, 16}, {}},
        {{100, 160}, HK(0, 3), mB, 0, {{0, 181}, {0, 180}, {0, 179}}, {20, 20, 21}, {}},
        {{140, 100}, HK(1, 0), cW, 0, {{19, 0}, {20, 0}, {21, 0}}, {0, 0, 1}, {}},
        {{200, 50}, HK(1, 1), cH, 0, {{0, 9}, {0, 10}, {0, 11}}, {0, 0, 1}, {}},
        {{25, 16}, HK(2, 0), cL, cT, {{19, 9}, {20, 10}, {21, 11}}, {0, 0, 1}, {0, 0, 1}},
        {{79, 16}, HK(2, 1), cT, 0, {{0, 9}, {0, 10}, {0, 11}}, {0, 0, 1}, {}},
        {{133, 16}, HK(2, 2), cR, cT, {{141, 9}, {140, 10}, {139, 11}}, {0, 0, 1}, {0, 0, 1}},
        {{133, 29}, HK(2, 3), cR, 0, {{141, 0}, {140, 0}, {139, 0}}, {0, 0, 1}, {}},
        {{133, 42}, HK(2, 4), cR, cB, {{141, 51}, {140, 50}, {139, 49}}, {0, 0, 1}, {0, 0, 1}},
        {{79, 42}, HK(2, 5), cB, 0, {{0, 51}, {0, 50}, {0, 49}}, {0, 0, 1}, {}},
        {{25, 42}, HK(2, 6), cL, cB, {{19, 51}, {20, 50}, {21, 49}}, {0, 0, 1}, {0, 0, 1}},
        // A cell side whose pointer converts to 0 keeps its value.
        {{25, 29}, HK(2, 7), cL, 0, {{21, 5}, {0, 5}, {19, 5}}, {1, 1, 0}, {}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(testing::Message() << "handle " << row.hover);
        Set(g, kBase);
        EXPECT_EQ(row.hover, Hover(g, row.press));
        Mouse(g, WM_LBUTTONDOWN, row.press);
        for (int i = 0; i < 3; ++i) {
            g_codes.clear(), Mouse(g, WM_MOUSEMOVE, row.to[i]);
            PageLayout got = Get(g), want = kBase;
            At(want, row.a) = row.va[i];
            if (row.b) At(want, row.b) = row.vb[i];
            EXPECT_TRUE(g_codes == std::vector<WORD>{PGN_CHANGED} && !memcmp(&want, &got, sizeof want)) << i;
        }
        Mouse(g, WM_LBUTTONUP, row.to[2]);
        EXPECT_EQ(nullptr, GetCapture());
    }
}

// A grid handle and line for columns and rows only when there are two or more.
TEST_F(PageTest, GridHandlesOnlyForMoreThanOneColumnOrRow)
{
    struct Row { LONG columns, rows; bool across, down; } rows[] = {
        {2, 3, true, true}, {1, 3, false, true}, {2, 1, true, false}, {1, 1, false, false}};
    for (const Row &row : rows) {
        PageLayout l = kBase;
        l.columns = row.columns, l.rows = row.rows;
        Set(g, l);
        Readback rb = Readback::Of(g);
        EXPECT_EQ(row.across, Hover(g, {140, 100}) == HK(1, 0)) << row.columns;
        EXPECT_EQ(row.across, rb.At(140, 100) == kCyan) << row.columns;
        EXPECT_EQ(row.down, Hover(g, {200, 50}) == HK(1, 1)) << row.rows;
        EXPECT_EQ(row.down, rb.At(200, 50) == kCyan) << row.rows;
        EXPECT_EQ(row.across ? HK(1, 0) : row.down ? HK(1, 1) : -1, Hover(g, {140, 50}));  // the right line wins
    }
}

// Lines are one device pixel wide in coarse and fine units, whole and
// zoomed by a click; the zoom moves the left margin's handle.
TEST_F(PageTest, LinesOnePixelWideAtEveryScaleAndZoomMovesHandles)
{
    struct Row { int mul, div; bool zoomed; } rows[] = {{1, 1, false}, {1, 1, true}, {1, 10, false}, {1, 10, true}, {100, 1, false}};
    for (const Row &row : rows) {
        PageLayout l = kBase;
        l.cellMarginLeft = l.cellMarginTop = l.cellMarginRight = l.cellMarginBottom = 10;
        for (int f = mL; f <= cH; ++f) At(l, f) = At(l, f) * row.mul / row.div;
        Set(g, l);
        if (row.zoomed) Click(g);
        Readback rb = Readback::Of(g);
        LONG left = row.zoomed ? MulDiv(20, W, 120 + 30 + 20) : 20, elsewhere = row.zoomed ? 20 : 35;
        EXPECT_TRUE(Hover(g, {left, 100}) == HK(0, 0) && Hover(g, {elsewhere, 100}) == -1);
        SCOPED_TRACE(testing::Message() << row.mul << "/" << row.div << (row.zoomed ? " zoomed" : ""));
        // Row 2 crosses the upright margin lines, column 2 the level ones.
        std::string across, down;
        for (int i = 0; i < W; ++i) across += rb.At(i, 2) == kRed ? 'r' : '.';
        for (int i = 0; i < H; ++i) down += rb.At(2, i) == kRed ? 'r' : '.';
        for (const std::string &line : {across, down})
            EXPECT_TRUE(line.find('r') != line.npos && line.find("rr") == line.npos) << line;
        EXPECT_TRUE(row.zoomed || (rb.At(210, 135) == 0x808080 && rb.At(150, 135) == 0));  // the last cell
        EXPECT_EQ(0u, rb.At(0, 100) | rb.At(100, 0));  // the sheet's frame
        EXPECT_NE(0u, rb.At(1, 100) & rb.At(100, 1));
        if (row.zoomed) Click(g);
    }
}

// A sheet or view with no extent shows the window colour and no handles.
TEST_F(PageTest, NoExtentPaintsBlankAndDividesNothing)
{
    PageLayout flat = kBase, thin = kBase;
    flat.sheetWidth = 0, thin.cellWidth = -50;  // the sheet, then the close-up, 0 wide
    auto blank = [&] { Readback rb = Readback::Of(g); return rb.Uniform() && rb.At(5, 5) == GetSysColor(COLOR_WINDOW); };
    Set(g, flat);
    EXPECT_TRUE(blank() && Hover(g, {20, 100}) == -1);
    Set(g, thin);
    EXPECT_FALSE(blank());
    Click(g);
    EXPECT_TRUE(blank() && g_codes.empty() && OSErrorGetErrorValue() == RV_Success);
}

// A drag ends cleanly when the capture is taken away, the mode cancelled,
// the sheet flattened to no extent (whose margin then stays as set), or the
// parent destroys the gadget from the notification.
TEST_F(PageTest, DragEndsOnCaptureLossCancelModeNoExtentAndHostileParent)
{
    PageLayout flat = kBase;
    flat.sheetWidth = 0;
    for (UINT cut : {WM_CAPTURECHANGED, WM_CANCELMODE, PGM_SETLAYOUT}) {
        Hover(g, {20, 100}), Mouse(g, WM_LBUTTONDOWN, {20, 100}), Mouse(g, WM_MOUSEMOVE, {30, 100});
        cut == WM_CAPTURECHANGED ? (void)SetCapture(dialog) : (void)SendMessageA(g, cut, 0, LPARAM(&flat));
        g_codes.clear(), Mouse(g, WM_MOUSEMOVE, {60, 100});
        EXPECT_TRUE(g_codes.empty() && Get(g).marginLeft == (cut == PGM_SETLAYOUT ? 20 : 30)) << cut;
        Mouse(g, WM_LBUTTONUP, {60, 100}), ReleaseCapture(), Set(g, kBase);
    }
    RecordingParent parent;
    HWND p = parent.CreateChild("Page", ID, 0, 0, 0, W, H);
    parent.Answer([p](HWND, UINT m, WPARAM, LPARAM, bool *) { return m == WM_COMMAND ? LRESULT(DestroyWindow(p)) : 0; });
    Set(p, kBase);
    Hover(p, {20, 100}), Mouse(p, WM_LBUTTONDOWN, {20, 100}), Mouse(p, WM_MOUSEMOVE, {40, 100});
    EXPECT_TRUE(!IsWindow(p) && !GetCapture());
}

// Each brush or pen of the paint refused in turn: PGN_ERROR, the error
// recorded, nothing left behind. The gadget is made in each cursor set of
// the resource library, and not without its cursors.
TEST_F(PageTest, FailuresAreRecordedAndLeakNothing)
{
    long before = GdiObjectsInUse();
    for (unsigned n = 1; n <= 6; ++n) {
        g_codes.clear(), OSErrorClearError();
        { FailureSeam seam(FailureSeam::Gdi, n); InvalidateRect(g, nullptr, TRUE), UpdateWindow(g); }
        EXPECT_EQ(std::vector<WORD>{PGN_ERROR}, g_codes) << n;
        EXPECT_EQ(RV_GDIError, OSErrorGetErrorValue()) << n;
    }
    EXPECT_EQ(before, GdiObjectsInUse());
    const char key[] = "Software\\Tarvo\\Kelendrix\\98.0\\UserSetup";
    for (DWORD set : {0, 1, 2, 3}) {
        RegSetKeyValueA(HKEY_CURRENT_USER, key, "Cursor State", REG_DWORD, &set, sizeof set), OSErrorClearError();
        HWND p = CreateWindowA("Page", "", WS_CHILD, 0, 0, 9, 9, dialog, nullptr, nullptr, nullptr);
        EXPECT_EQ(set < 3 ? RV_Success : RV_UserError, OSErrorGetErrorValue()) << set;
        EXPECT_EQ(set < 3, DestroyWindow(p) != FALSE) << set;
    }
    RegDeleteKeyValueA(HKEY_CURRENT_USER, key, "Cursor State");
}

TEST_F(PageTest, MonkeyKeepsTheLayoutWithinItsLimits)
{
    DestroyWindow(dialog), dialog = nullptr;
    long before = GdiObjectsInUse();
    std::mt19937 random(25);
    {
        RecordingParent parent;
        HWND p = parent.CreateChild("Page", ID, 0, 0, 0, W, H);
        PageLayout set = kBase;
        auto pick = [&](int n) { return LONG(random() % n); };
        for (int i = 0; i < MonkeySteps(3000, 300); ++i) {
            POINT at = {pick(W + 40) - 20, pick(H + 40) - 20};
            switch (pick(8)) {
            case 0: for (int f = 1; f < 15; ++f) At(set, f) = pick(4) ? At(kBase, f) : pick(400) - 50;
                    Set(p, set); break;
            case 1: SetWindowPos(p, nullptr, 0, 0, pick(W), pick(H), SWP_NOMOVE | SWP_NOZORDER), UpdateWindow(p); break;
            case 2: Hover(p, at), Mouse(p, WM_LBUTTONDOWN, at); break;
            case 3: Mouse(p, WM_LBUTTONUP, at); break;
            case 4: SendMessageA(p, pick(2) ? WM_CANCELMODE : WM_KEYDOWN, VK_ESCAPE, 0); break;
            default: Mouse(p, WM_MOUSEMOVE, at); break;
            }
        }
        PageLayout l = Get(p);  // every measure as last set, or written by a drag within its limit
        const LONG least[] = {0, 0, 0, 10, 5, 15, 20, 0, 0, 0, 0, 0, 0, 0, 0};
        for (int f = 0; f < 21; ++f)
            EXPECT_TRUE(At(l, f) == At(set, f) || (f < 15 && At(l, f) >= least[f])) << f;
    }
    EXPECT_EQ(nullptr, GetCapture());
    EXPECT_EQ(before, GdiObjectsInUse());
}

}  // namespace
