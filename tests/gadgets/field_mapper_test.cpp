// FieldMapper: the style rules by message, picks by mouse, the lines read
// back as the lists scroll, a failed paint surface, and a hostile monkey.
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
    HBRUSH gapBrush = CreateSolidBrush(kGap);
    void Make(DWORD style, int items = 30)
    {
        if (g) DestroyWindow(g);
        g = parent.CreateChild("FieldMapper", ID, style, 0, 0, W, H);
        left = HWND(SendMessageA(g, FMM_GETLEFTLIST, 0, 0));
        right = HWND(SendMessageA(g, FMM_GETRIGHTLIST, 0, 0));
        for (int i = 0; i < items; ++i)
            SendMessageA(left, LB_ADDSTRING, 0, LPARAM("field")), SendMessageA(right, LB_ADDSTRING, 0, LPARAM("f"));
    }
    void SetUp() override
    {
        GadgetTest::SetUp();
        HBRUSH b = gapBrush;
        parent.Answer([b](HWND, UINT m, WPARAM, LPARAM, bool *handled) {
            *handled = m == WM_CTLCOLORSTATIC;
            return LRESULT(b);
        });
    }
    void TearDown() override { DestroyWindow(g), DeleteObject(gapBrush), GadgetTest::TearDown(); }
    LRESULT Link(bool add, int l, int r) { return SendMessageA(g, FMM_LINK, add, MAKELPARAM(l, r)); }
    // The one right index of `l`, or -1 with none.
    int LinkOf(int l)
    {
        BYTE out[4] = {};
        return SendMessageA(g, FMM_GETLINKS, l, LPARAM(out)) == 1 ? out[0] : -1;
    }
    void Pick(HWND list, int item)
    {
        int h = int(SendMessageA(list, LB_GETITEMHEIGHT, 0, 0));
        Click(list, 5, item * h + h / 2);
    }
    int Middle(HWND list, int item)
    {
        RECT r;
        SendMessageA(list, LB_GETITEMRECT, item, LPARAM(&r));
        return (r.top + r.bottom) / 2;
    }
};

// Each row: a step by message under a style, its result, and the left
// item's link afterwards. Setup for every style: 0 -> 3.
TEST_F(FieldMapperTest, StyleRulesAnswerAndRefuse)
{
    struct Step { DWORD style; bool add; int l, r; LRESULT result; int after; } steps[] = {
        {FMS_RIGHTONCE, true, 1, 3, 1, -1},  {FMS_RIGHTONCE, true, 0, 3, -1, 3},
        {FMS_RIGHTONCE, false, 1, 4, -1, -1}, {FMS_RIGHTONCE, true, 1, 4, 1, 4},
        {FMS_RIGHTONCE, false, 0, 3, 1, -1},
        {FMS_LEFTONCE, true, 0, 4, 1, 3},    {FMS_LEFTONCE, true, 1, 3, 1, 3},
        {FMS_LEFTONCE, true, 0, 3, -1, 3},   {FMS_LEFTONCE | FMS_RIGHTONCE, true, 1, 3, 1, -1},
        {0, true, 1, 3, 1, 3},   {0, true, 0, 4, 1, 3},  {0, true, 2, 5, 1, 5},
        {0, true, 2, 6, 1, 6},   {0, false, 2, 6, 1, -1}, {0, true, 99, 255, 1, 255},
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
    // The index limits: 100 passes the queries, 101 does not; links stop at 99 and 255.
    struct Limit { UINT message; WPARAM index; LRESULT result; } limits[] = {
        {FMM_GETLINKCOUNT, 99, 1}, {FMM_GETLINKCOUNT, 100, 0}, {FMM_GETLINKCOUNT, 101, -1},
        {FMM_GETLINKS, 100, -1},   {FMM_GETLINKS, 101, -1},    {FMM_GETLINKCOUNT, WPARAM(-1), -1},
    };
    BYTE out[4];
    for (const Limit &l : limits)
        EXPECT_EQ(l.result, SendMessageA(g, l.message, l.index, LPARAM(out))) << l.index;
    EXPECT_EQ(-1, Link(true, 100, 1));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorInfo()->errorCode);
    EXPECT_EQ(-1, Link(true, 1, 256));
    EXPECT_EQ(0, SendMessageA(g, FMM_CLEAR, 0, 0));
    EXPECT_EQ(0, SendMessageA(g, FMM_GETLINKCOUNT, 0, 0));
}

// Picks link, a second link replaces the first, a picked item picked again
// unlinks; the rules play no part; each pick reaches the parent.
TEST_F(FieldMapperTest, PicksLinkAndUnlink)
{
    Make(FMS_RIGHTONCE, 8);
    parent.SetChild(left);
    parent.Clear();
    Pick(left, 1);
    Pick(right, 2);
    EXPECT_EQ(2, LinkOf(1));
    Pick(left, 1);                      // again: unlinked, no left pick
    EXPECT_EQ(-1, LinkOf(1));
    Pick(left, 3);                      // right 2 still picked: linked, though 1 held it once
    EXPECT_EQ(2, LinkOf(3));
    Pick(right, 5);                     // replaces
    EXPECT_EQ(5, LinkOf(3));
    EXPECT_EQ(1, SendMessageA(g, FMM_GETLINKCOUNT, 3, 0));
    Pick(right, 5);                     // again: unlinks the left pick
    EXPECT_EQ(-1, LinkOf(3));
    std::vector<Message> seen = (parent.Pump(), parent.Take());
    int fromLeft = 0, fromRight = 0;
    for (const Message &m : seen)
        if (m.message == WM_COMMAND && m.wParam == MAKEWPARAM(ID, LBN_SELCHANGE))
            fromLeft += m.lParam == LPARAM(left), fromRight += m.lParam == LPARAM(right);
    EXPECT_EQ(3, fromLeft);
    EXPECT_EQ(3, fromRight);
}

// The line leaves the left item's middle and reaches the right item's; a
// scrolled list moves its end. A paint whose surface cannot be made looks
// the same and tells the parent.
TEST_F(FieldMapperTest, LinesFollowScrollingAndSurviveAFailedSurface)
{
    Make(0);
    ASSERT_EQ(1, Link(true, 2, 5));
    RECT client;
    GetClientRect(g, &client);
    const int gx = client.right * 10 / 24, gw = client.right - 2 * gx;
    int before = 0;
    for (int scroll = 0; scroll < 2; ++scroll) {
        if (scroll)
            SendMessageA(left, WM_VSCROLL, SB_LINEDOWN, 0);
        Readback rb = Readback::Of(g);
        int yl = Middle(left, 2), yr = Middle(right, 5);
        SCOPED_TRACE(scroll);
        EXPECT_EQ(0u, rb.At(gx + 1, yl));
        EXPECT_EQ(kGap, rb.At(gx + 1, yl + 3));
        EXPECT_EQ(0u, rb.At(gx + gw - 2, yr));
        EXPECT_EQ(scroll ? kGap : 0u, rb.At(gx + 1, scroll ? before : yl));
        before = yl;
    }
    Readback whole = Readback::Of(g);
    parent.Clear();
    InvalidateRect(g, nullptr, TRUE);
    {
        FailureSeam seam(FailureSeam::Gdi, 1);
        EXPECT_EQ(0, Readback::Of(g).Differences(whole));
    }
    static const Message failed[] = {
        {WM_CTLCOLORSTATIC, sent, 0, 0}, {WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID, FMN_ERROR), 0}, {0, 0, 0, 0}};
    EXPECT_SEQUENCE(parent, failed, "the failed surface");
}

// Random picks, drags, keys, scrolls, links, resizes and fonts under a
// parent that now and then destroys the gadget inside a notification.
TEST_F(FieldMapperTest, MonkeyHostile)
{
    long before = GdiObjectsInUse();
    std::mt19937 random(61);
    HBRUSH b = gapBrush;
    HWND *gp = &g;
    // Only the gadget's own question: a list destroyed inside its own
    // notification is the system's affair.
    parent.Answer([&random, b, gp](HWND, UINT m, WPARAM, LPARAM, bool *handled) {
        if (m == WM_CTLCOLORSTATIC && random() % 8 == 0) DestroyWindow(*gp);
        *handled = m == WM_CTLCOLORSTATIC;
        return LRESULT(b);
    });
    for (int i = 0; i < MonkeySteps(700, 70); ++i) {
        if (!IsWindow(g))
            g = nullptr, Make(random() % 16, random() % 40);
        if (!g || !IsWindow(left)) continue;
        HWND list = random() % 2 ? left : right;
        int x = int(random() % W) - 10, y = int(random() % (H + 20)) - 10;
        switch (random() % 10) {
        case 0: Click(list, x, y); break;
        case 1: Drag(list, {x, y}, {int(random() % W), int(random() % H)}, 2); break;
        case 2: Key(list, random() % 2 ? VK_DOWN : VK_NEXT); break;
        case 3: SendMessageA(list, WM_VSCROLL, random() % 9, 0); break;
        case 4: Link(random() % 2, random() % 110, random() % 270); break;
        case 5: SetWindowPos(g, nullptr, 0, 0, random() % 400, random() % 300, SWP_NOMOVE | SWP_NOZORDER); break;
        case 6: SendMessageA(g, WM_SETFONT, random() % 2 ? 0 : WPARAM(GetStockObject(ANSI_VAR_FONT)), 1); break;
        case 7: { BYTE out[4]; SendMessageA(g, FMM_GETLINKS + random() % 5, random() % 102, random() % 2 ? LPARAM(out) : 0); break; }
        case 8: UpdateWindow(g); break;
        case 9: if (random() % 10 == 0) DestroyWindow(g); break;
        }
    }
    parent.Answer(nullptr);
    DestroyWindow(g);
    g = nullptr;
    EXPECT_EQ(before, GdiObjectsInUse());
}

}  // namespace
