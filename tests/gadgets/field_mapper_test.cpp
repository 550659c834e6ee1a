// FieldMapper: the style rules by message, picks by mouse, the lines read
// back as a list scrolls, a failed paint surface, and a hostile monkey.
#include "qz_test.h"
#include "failure_seam.h"
#include "window_harness.h"
#include <random>

namespace {

const int ID = 61, W = 240, H = 120;
const COLORREF kGap = 0x00FF00;

class FieldMapperTest : public GadgetTest {
protected:
    RecordingParent parent{320, 240};
    HWND g = nullptr, left = nullptr, right = nullptr;
    HBRUSH gap = CreateSolidBrush(kGap);
    std::mt19937 random{61};
    int destroyOneIn = 0;  // the parent destroys the gadget in that share of its paints
    void SetUp() override
    {
        GadgetTest::SetUp();
        parent.Answer([this](HWND, UINT m, WPARAM, LPARAM, bool *handled) {
            if (m == WM_CTLCOLORSTATIC && destroyOneIn && random() % destroyOneIn == 0) DestroyWindow(g);
            return LRESULT((*handled = m == WM_CTLCOLORSTATIC) ? gap : nullptr);
        });
    }
    void TearDown() override { DestroyWindow(g), DeleteObject(gap), GadgetTest::TearDown(); }
    void Make(DWORD style, int items = 30)
    {
        DestroyWindow(g);
        g = parent.CreateChild("FieldMapper", ID, style, 0, 0, W, H);
        left = HWND(SendMessageA(g, FMM_GETLEFTLIST, 0, 0)), right = HWND(SendMessageA(g, FMM_GETRIGHTLIST, 0, 0));
        for (int i = 0; i < items; ++i)
            SendMessageA(left, LB_ADDSTRING, 0, LPARAM("field")), SendMessageA(right, LB_ADDSTRING, 0, LPARAM("f"));
    }
    LRESULT Link(bool add, int l, int r) { return SendMessageA(g, FMM_LINK, add, MAKELPARAM(l, r)); }
    int LinkOf(int l)  // the one right index of `l`, or -1
    {
        BYTE out[4] = {};
        return SendMessageA(g, FMM_GETLINKS, l, LPARAM(out)) == 1 ? out[0] : -1;
    }
    void Pick(HWND list, int item) { int h = int(SendMessageA(list, LB_GETITEMHEIGHT, 0, 0)); Click(list, 5, item * h + h / 2); }
    int Middle(HWND list, int item)
    {
        RECT r;
        SendMessageA(list, LB_GETITEMRECT, item, LPARAM(&r));
        return (r.top + r.bottom) / 2;
    }
};

// A step by message under a style, its result, and the left item's link
// afterwards; each style starts from the link 0 -> 3.
TEST_F(FieldMapperTest, StyleRulesAnswerAndRefuse)
{
    const DWORD R = FMS_RIGHTONCE, L = FMS_LEFTONCE;
    struct Step { DWORD style; bool add; int l, r; LRESULT result; int after; } steps[] = {
        {R, 1, 1, 3, 1, -1}, {R, 1, 0, 3, -1, 3}, {R, 0, 1, 4, -1, -1}, {R, 1, 1, 4, 1, 4}, {R, 0, 0, 3, 1, -1},
        {L, 1, 0, 4, 1, 3},  {L, 1, 1, 3, 1, 3},  {L, 1, 0, 3, -1, 3},  {L | R, 1, 1, 3, 1, -1},
        {0, 1, 1, 3, 1, 3},  {0, 1, 0, 4, 1, 3},  {0, 1, 2, 5, 1, 5},   {0, 1, 2, 6, 1, 6},
        {0, 0, 2, 6, 1, -1}, {0, 1, 99, 255, 1, 255}, {0, 1, 1, 256, -1, 3}, {0, 1, 100, 1, -1, -1},
    };
    DWORD style = 0xFF;
    for (const Step &s : steps) {
        if (s.style != style) {
            Make(style = s.style);
            ASSERT_EQ(1, Link(true, 0, 3));
        }
        EXPECT_EQ(s.result, Link(s.add, s.l, s.r)) << s.style << ": " << s.l << "->" << s.r;
        EXPECT_EQ(s.after, LinkOf(s.l)) << s.style << ": " << s.l << "->" << s.r;
    }
    // 100 passes the queries, 101 does not; links stop at 99 and 255.
    struct Limit { UINT message; WPARAM index; LRESULT result; } limits[] = {
        {FMM_GETLINKCOUNT, 99, 1}, {FMM_GETLINKCOUNT, 100, 0}, {FMM_GETLINKCOUNT, 101, -1},
        {FMM_GETLINKS, 100, -1},   {FMM_GETLINKS, 101, -1},    {FMM_GETLINKCOUNT, WPARAM(-1), -1},
    };
    BYTE out[4];
    for (const Limit &l : limits)
        EXPECT_EQ(l.result, SendMessageA(g, l.message, l.index, LPARAM(out))) << l.index;
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorInfo()->errorCode);
    EXPECT_EQ(0, SendMessageA(g, FMM_CLEAR, 0, 0));
    EXPECT_EQ(0, SendMessageA(g, FMM_GETLINKCOUNT, 0, 0));
}

// Picks link (a right item twice, though the style says once); an item
// picked again, or a left one with no right pick, unlinks; each pick
// reaches the parent.
TEST_F(FieldMapperTest, PicksLinkAndUnlink)
{
    Make(FMS_RIGHTONCE | FMS_OWNERDRAW, 8);
    parent.Clear();
    // Item -1: no pick, a look at another left item.
    struct Row { bool leftSide; int item, linkedLeft, link; } rows[] = {
        {true, 1, 1, -1}, {false, 2, 1, 2}, {true, 3, 3, 2},  {true, -1, 1, 2}, {true, 3, 3, -1},
        {false, 5, 3, -1}, {true, 4, 4, 5}, {false, 5, 4, -1}, {true, 1, 1, -1},
    };
    for (const Row &row : rows) {
        if (row.item >= 0) Pick(row.leftSide ? left : right, row.item);
        EXPECT_EQ(row.link, LinkOf(row.linkedLeft)) << row.leftSide << " " << row.item;
    }
    int fromLeft = 0, fromRight = 0, drawnLeft = 0, drawnRight = 0;  // the lists' items, drawn by the parent
    for (const Message &m : (parent.Pump(), parent.Take())) {
        if (m.message == WM_COMMAND && m.wParam == MAKEWPARAM(ID, LBN_SELCHANGE))
            fromLeft += m.lParam == LPARAM(left), fromRight += m.lParam == LPARAM(right);
        if (m.message == WM_DRAWITEM)
            drawnLeft += m.wParam == 1, drawnRight += m.wParam == 2;
    }
    EXPECT_EQ(5, fromLeft);
    EXPECT_EQ(3, fromRight);
    EXPECT_TRUE(drawnLeft && drawnRight);
}

// The line leaves the left item's middle and reaches the right item's; a
// scrolled list moves its end. A paint without its surface looks the same
// and tells the parent.
TEST_F(FieldMapperTest, LinesFollowScrollingAndSurviveAFailedSurface)
{
    Make(0);
    ASSERT_EQ(1, Link(true, 2, 5));
    RECT client;
    GetClientRect(g, &client);
    const int gx = client.right * 10 / 24, gw = client.right - 2 * gx;
    for (int scroll = 0, before = 0; scroll < 2; ++scroll) {
        if (scroll) SendMessageA(left, WM_VSCROLL, SB_LINEDOWN, 0);
        Readback rb = Readback::Of(g);
        int yl = Middle(left, 2);
        EXPECT_EQ(0u, rb.At(gx + 1, yl)) << scroll;
        EXPECT_EQ(kGap, rb.At(gx + 1, yl + 3)) << scroll;
        EXPECT_EQ(0u, rb.At(gx + gw - 2, Middle(right, 5))) << scroll;
        EXPECT_EQ(scroll ? kGap : 0u, rb.At(gx + 1, scroll ? before : yl)) << scroll;
        before = yl;
    }
    Readback whole = Readback::Of(g);
    parent.Clear();
    InvalidateRect(g, nullptr, TRUE);
    {
        FailureSeam seam(FailureSeam::Gdi, 1);
        EXPECT_EQ(0, Readback::Of(g).Differences(whole));
    }
    static const Message failed[] = {{WM_CTLCOLORSTATIC, sent, 0, 0},
        {WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID, FMN_ERROR), 0}, {0, 0, 0, 0}};
    EXPECT_SEQUENCE(parent, failed, "the failed surface");
}

// Random picks, drags, keys, scrolls, links, resizes and fonts; the parent
// destroys the gadget in some of its paints. (A list destroyed inside its
// own notification is the system's affair, so not there.)
TEST_F(FieldMapperTest, MonkeyHostile)
{
    Make(FMS_OWNERDRAW);  // the system makes the lists' drawing objects on first use
    Link(true, 1, 1), SendMessageA(g, WM_SETFONT, WPARAM(GetStockObject(ANSI_VAR_FONT)), 1);
    SendMessageA(left, WM_VSCROLL, SB_PAGEDOWN, 0), Pick(left, 2), Make(0), Pick(right, 3), UpdateWindow(g);
    long before = GdiObjectsInUse();
    destroyOneIn = 8;
    for (int i = 0; i < MonkeySteps(700, 70); ++i) {
        if (!IsWindow(g)) Make(random() % 16, random() % 40);
        HWND list = random() % 2 ? left : right;
        int x = int(random() % W) - 10, y = int(random() % (H + 20)) - 10;
        BYTE out[4];
        switch (random() % 10) {
        case 0: Click(list, x, y); break;
        case 1: Drag(list, {x, y}, {int(random() % W), int(random() % H)}, 2); break;
        case 2: Key(list, random() % 2 ? VK_DOWN : VK_NEXT); break;
        case 3: SendMessageA(list, WM_VSCROLL, random() % 9, 0); break;
        case 4: Link(random() % 2, random() % 110, random() % 270); break;
        case 5: SetWindowPos(g, nullptr, 0, 0, random() % 400, random() % 300, SWP_NOMOVE | SWP_NOZORDER); break;
        case 6: SendMessageA(g, WM_SETFONT, random() % 2 ? 0 : WPARAM(GetStockObject(ANSI_VAR_FONT)), 1); break;
        case 7: SendMessageA(g, FMM_GETLINKS + random() % 5, random() % 102, random() % 2 ? LPARAM(out) : 0); break;
        case 8: UpdateWindow(g); break;
        case 9: if (random() % 10 == 0) DestroyWindow(g); break;
        }
    }
    destroyOneIn = 0;
    DestroyWindow(g);
    g = nullptr;
    EXPECT_EQ(before, GdiObjectsInUse());
}

}  // namespace
