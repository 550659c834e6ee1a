// Waffle: the cell store, moves and keys, notifications, geometry and
// paint, refused requests, the heads (with "QzCombo"), and a monkey whose
// model of the cells also checks the renumbering of inserted and deleted rows.
#include "qz_test.h"
#include "window_harness.h"
#include "failure_seam.h"
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

const int ID = 61, COLS = 3, ROWS = 4;

class WaffleTest : public GadgetTest {
protected:
    RecordingParent parent{400, 300};
    HWND w = nullptr, edit = nullptr;
    void SetUp() override
    {
        GadgetTest::SetUp();
        w = Grid(WFS_NOSNAP, 300, 200, {8, 0xFFFFFFFF, 8}, ROWS, ID);
        ASSERT_TRUE(w != nullptr);
        edit = GetDlgItem(w, 30001);
        OSErrorClearError();
        parent.Clear();
    }
    void TearDown() override { DestroyWindow(w), GadgetTest::TearDown(); }
    LRESULT Send(UINT m, WPARAM wp = 0, const void *lp = nullptr)
    {
        return SendMessageA(w, m, wp, reinterpret_cast<LPARAM>(lp));
    }
    // A grid with a column per width, ids from 1, the first with a list.
    HWND Grid(DWORD style, int width, int height, const std::vector<DWORD> &widths, DWORD rows, int id = ID + 1)
    {
        HWND g = parent.CreateChild("Waffle", id, style, 0, 0, width, height);
        for (DWORD c = 0; c < widths.size(); ++c) {
            DWORD host[5] = {c + 1, widths[c], c == 0, 0, 0};
            SendMessageA(g, WFM_ADDCOLUMN, 0, reinterpret_cast<LPARAM>(host));
        }
        return SendMessageA(g, WFM_SETROWCOUNT, rows, 0), g;
    }
    std::string Cell(DWORD index)
    {
        char text[128] = "junk";
        return Send(WFM_GETCELL, index, text), text;
    }
    // A row's or column's strings as "a|b|" (each NUL shown as '|').
    std::string Line(UINT sizeMsg, UINT getMsg, DWORD line)
    {
        std::string buffer(Send(sizeMsg, line) + 8, '#');
        Send(getMsg, line, &buffer[0]);
        buffer.resize(Send(sizeMsg, line));
        for (char &c : buffer) c = c ? c : '|';
        return buffer;
    }
    DWORD Current() { return static_cast<DWORD>(Send(WFM_GETCURRENTCELL)); }
    TEXTMETRICA Metrics()
    {
        TEXTMETRICA tm;
        HDC dc = GetDC(w);
        return GetTextMetricsA(dc, &tm), ReleaseDC(w, dc), tm;
    }
    LONG RowHeight() { return Metrics().tmHeight + Metrics().tmInternalLeading + 5; }
    static RECT EditRect(HWND g)  // in the gadget's client
    {
        RECT e;
        GetWindowRect(GetDlgItem(g, 30001), &e);
        return MapWindowPoints(nullptr, g, reinterpret_cast<POINT *>(&e), 2), e;
    }
};

TEST_F(WaffleTest, RowsAndColumnsComeInWriteOrderAndFillPassesOverShortStrings)
{
    for (auto [index, text] : {std::pair<DWORD, const char *>{7, "g"}, {4, "d"}, {1, "a"}, {3, "c"}, {5, "e"}})
        EXPECT_EQ(1, Send(WFM_SETCELL, index, text));
    EXPECT_EQ(1, Send(WFM_SETCELL, 4, "dd"));
    EXPECT_EQ("dd|c|e||", Line(WFM_GETROWSIZE, WFM_GETROW, 1));
    EXPECT_EQ("g|dd|a||", Line(WFM_GETCOLUMNSIZE, WFM_GETCOLUMN, 1));
    EXPECT_EQ("|", Line(WFM_GETROWSIZE, WFM_GETROW, 3));
    EXPECT_EQ(2, Send(WFM_GETLASTROW));
    EXPECT_EQ(1, Send(WFM_SETCELL, 3, ""));  // emptied, still listed
    EXPECT_EQ("dd||e||", Line(WFM_GETROWSIZE, WFM_GETROW, 1));
    // Filling holds the rows of short or blank strings; putting writes all
    // (cells 7, 4 and 1 keep their early place in the column).
    const char list[] = "ab\0x\0 b\0cd\0";
    for (DWORD i : {1u, 4u, 7u, 10u}) Send(WFM_SETCELL, i, "was");
    EXPECT_EQ(1, Send(WFM_FILLCOLUMN, 1, list));
    EXPECT_EQ("was|was|ab|cd||", Line(WFM_GETCOLUMNSIZE, WFM_GETCOLUMN, 1));
    EXPECT_EQ(1, Send(WFM_PUTCOLUMN, 1, list));
    EXPECT_EQ(" b|x|ab|cd||", Line(WFM_GETCOLUMNSIZE, WFM_GETCOLUMN, 1));
}

TEST_F(WaffleTest, TextLengthLimitWalked)
{
    struct Row { int length; LRESULT result; } rows[] = {{0, 1}, {126, 1}, {127, 1}, {128, -1}, {300, -1}};
    for (const Row &row : rows) {
        SCOPED_TRACE(row.length);
        Send(WFM_SETCELL, 2, "old");
        OSErrorClearError();
        std::string text(row.length, 'x');
        EXPECT_EQ(row.result, Send(WFM_SETCELL, 2, text.c_str()));
        EXPECT_EQ(row.result == 1 ? RV_Success : RV_Failure, OSErrorGetErrorValue());
        EXPECT_EQ(row.result == 1 ? text : "old", Cell(2));
    }
}

// A move below 0 folds to N mod columns (a true modulo); past the last cell
// to (N mod columns) - columns + last + 1. Three rows of 1, 2 and 5 columns.
TEST_F(WaffleTest, MovesFoldOutOfRangeIndexesForEachColumnCount)
{
    struct Row { DWORD columns; LONG wanted; DWORD cell; } rows[] = {
        {1, -1, 0}, {1, -5, 0}, {1, 3, 2},  {2, -1, 1},  {2, -4, 0},  {2, 6, 4},
        {2, 9, 5},  {5, -1, 4}, {5, -7, 3}, {5, 15, 10}, {5, 23, 13}, {5, 14, 14},
    };
    for (const Row &row : rows) {
        HWND g = Grid(0, 200, 100, std::vector<DWORD>(row.columns, 4), 3);
        SendMessageA(g, WFM_GOTOCELL, static_cast<WPARAM>(static_cast<DWORD>(row.wanted)), 0);
        EXPECT_EQ(row.cell, DWORD(SendMessageA(g, WFM_GETCURRENTCELL, 0, 0))) << row.columns << " " << row.wanted;
        DestroyWindow(g);
    }
}

// Each row: the cell the edit starts in, its text, the key, Shift, and the
// cell it ends in (3 columns x 4 rows, the last cell 11).
TEST_F(WaffleTest, KeysMoveTheEditAcrossCellRowAndColumnEdges)
{
    struct Row { DWORD from; const char *text; int caret; UINT key; bool shift; DWORD to; } rows[] = {
        {4, "", 0, VK_UP, false, 1},     {1, "", 0, VK_UP, false, 1},     {10, "", 0, VK_DOWN, false, 10},
        {7, "", 0, VK_DOWN, false, 10},  {3, "", 0, VK_LEFT, false, 2},   {0, "", 0, VK_LEFT, false, 2},
        {3, "ab", 1, VK_LEFT, false, 3}, {5, "", 0, VK_RIGHT, false, 6},  {11, "", 0, VK_RIGHT, false, 9},
        {5, "ab", 2, VK_RIGHT, false, 6}, {5, "ab", 1, VK_RIGHT, false, 5}, {4, "", 0, VK_END, true, 11},
        {4, "", 0, VK_HOME, true, 0},    {4, "", 0, VK_END, false, 4},    {1, "", 0, VK_NEXT, false, 10},
        {10, "", 0, VK_PRIOR, false, 1},
    };
    for (const Row &row : rows) {
        Send(WFM_PUTCELL, row.from, ""), Send(WFM_GOTOCELL, row.from);
        Send(WFM_PUTCELL, row.from, row.text);  // the edit's text
        SendMessageA(edit, EM_SETSEL, row.caret, row.caret);
        ThreadKeys(row.shift), SendMessageA(edit, WM_KEYDOWN, row.key, 0), ThreadKeys(0);
        EXPECT_EQ(row.to, Current()) << row.from << " key " << row.key << " shift " << row.shift;
    }
}

TEST_F(WaffleTest, NotificationsOfMovesAndSetters)
{
    const WPARAM changed = MAKEWPARAM(ID, WFN_CELLCHANGED);
    const Message one[] = {{WM_COMMAND, sent | wparam | lparam_is_child, changed, 0}, {0, 0, 0, 0}};
    const Message none[] = {{0, 0, 0, 0}};
    const Message error[] = {{WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID, WFN_ERROR), 0}, {0, 0, 0, 0}};
    struct Row { const char *what; std::function<void()> act; const Message *seq; } rows[] = {
        {"goto", [&] { Send(WFM_GOTOCELL, 5); }, one},
        {"key down", [&] { SendMessageA(edit, WM_KEYDOWN, VK_DOWN, 0); }, one},
        {"insert row", [&] { Send(WFM_INSERTROW); }, one},
        {"set and put", [&] { Send(WFM_SETCELL, 1, "a"), Send(WFM_PUTCELL, 2, "b"); }, none},
        {"tab and double click", [&] { SendMessageA(edit, WM_CHAR, '\t', 0);
                                       SendMessageA(edit, WM_LBUTTONDBLCLK, 0, 0); }, none},
        {"a head's error", [&] { Send(WM_COMMAND, MAKEWPARAM(30003, 100)); }, error},
        {"a paint refused its memory", [&] { FailureSeam seam(FailureSeam::Memory, 1);
                                             InvalidateRect(w, nullptr, TRUE), UpdateWindow(w); }, error},
    };
    for (const Row &row : rows) {
        row.act();
        EXPECT_SEQUENCE(parent, row.seq, row.what);
    }
}

TEST_F(WaffleTest, HostileParentDestroysTheGadgetInItsNotification)
{
    parent.Answer([&](HWND, UINT m, WPARAM, LPARAM, bool *) { return m == WM_COMMAND && DestroyWindow(w), LRESULT(0); });
    SendMessageA(edit, WM_KEYDOWN, VK_DOWN, 0);
    EXPECT_FALSE(IsWindow(w));
}

TEST_F(WaffleTest, WithoutColumnsNothingDividesAndPaintingIsHarmless)
{
    HWND bare = parent.CreateChild("Waffle", ID + 1, 0, 0, 0, 200, 100);
    ASSERT_TRUE(bare != nullptr);
    SendMessageA(bare, WFM_SETCELL, 5, reinterpret_cast<LPARAM>("x"));
    for (UINT m : {WFM_GETCURRENTROW, WFM_GETCURRENTCOLUMN, WFM_GETLASTROW, WFM_INSERTROW, WFM_DELETEROW}) {
        OSErrorClearError();
        EXPECT_EQ(0, SendMessageA(bare, m, 0, 0)) << MessageName(m);
        EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    }
    EXPECT_EQ(-1, SendMessageA(bare, WFM_GOTOCELL, 3, 0));
    EXPECT_TRUE(Readback::Of(bare).Valid());
    Send(WFM_SETROWCOUNT, 0);  // columns but no rows
    EXPECT_EQ(1, Send(WFM_GOTOCELL, 4));
    EXPECT_EQ(0xFFFFFFFEu, Current());  // (4 mod 3) - 3 + last + 1, with last = -1
    EXPECT_TRUE(Readback::Of(w).Valid());
    DestroyWindow(bare);
}

// A light font is the normal one and a bold copy is made, a heavy one the
// reverse; the gadget answers with the font given and frees only its copy.
TEST_F(WaffleTest, FontsGivenAndDerived)
{
    for (int weight : {FW_NORMAL, FW_BOLD}) {
        long before = GdiObjectsInUse();
        HFONT given = CreateFontA(-13, 0, 0, 0, weight, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
        HWND g = parent.CreateChild("Waffle", ID + 1, 0, 0, 0, 100, 100);
        for (int twice = 0; twice < 2; ++twice)  // the first copy goes
            SendMessageA(g, WM_SETFONT, reinterpret_cast<WPARAM>(given), 0);
        EXPECT_EQ(given, reinterpret_cast<HFONT>(SendMessageA(g, WM_GETFONT, 0, 0)));
        HFONT edits = reinterpret_cast<HFONT>(SendMessageA(GetDlgItem(g, 30001), WM_GETFONT, 0, 0));
        EXPECT_EQ(weight == FW_NORMAL, given == edits);
        DestroyWindow(g), DeleteObject(given);
        EXPECT_EQ(before, GdiObjectsInUse()) << "weight " << weight;
    }
}

// Free width = client less the fixed columns; three sharing columns split
// it, the first Free mod 3 one pixel wider. The edit sits 3 pixels in.
TEST_F(WaffleTest, SharedWidthsSplitTheRestOddPixelsFirstAndHeightSnapsOnce)
{
    const LONG cw = Metrics().tmAveCharWidth;
    for (int width : {300, 301, 302}) {
        HWND g = Grid(WFS_NOSNAP, width, 60, {5, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}, 1);
        LONG free = width - 5 * cw, left = 5 * cw;
        for (int c = 1; c <= 3; ++c) {
            SendMessageA(g, WFM_GOTOCELL, c, 0);
            EXPECT_EQ(left + 3, EditRect(g).left) << "width " << width << " column " << c;
            left += free / 3 + (c - 1 < free % 3 ? 1 : 0);
        }
        DestroyWindow(g);
    }
    // A height of whole rows stays; another is cut to whole rows plus 4,
    // and that height then stays.
    const LONG rh = RowHeight();
    HWND g = parent.CreateChild("Waffle", ID + 1, 0, 0, 0, 200, 4 * rh);
    struct Row { LONG asked, kept; } rows[] = {
        {4 * rh, 4 * rh}, {4 * rh + 1, 4 * rh + 4}, {5 * rh - 1, 4 * rh + 4}, {4 * rh + 4, 4 * rh + 4}};
    for (const Row &row : rows) {
        SetWindowPos(g, nullptr, 0, 0, 200, row.asked, SWP_NOMOVE | SWP_NOZORDER);
        RECT c;
        GetClientRect(g, &c);
        EXPECT_EQ(row.kept, c.bottom) << "asked " << row.asked;
    }
    DestroyWindow(g);
}

// With the focus the current cell has an inverted frame, which goes when
// the focus leaves; grid lines are light grey.
TEST_F(WaffleTest, FrameInvertsAroundTheCellAndGridIsGrey)
{
    const LONG rh = RowHeight();
    Send(WFM_GOTOCELL, 4);
    SetFocus(w);
    RECT e = EditRect(w);
    const int x = e.left - 2, y = e.top - 2;  // one in from the cell's top left
    const COLORREF window = GetSysColor(COLOR_WINDOW);
    Readback shown = Readback::Of(w);
    EXPECT_EQ(window ^ 0xFFFFFF, shown.At(x, y));
    EXPECT_EQ(window, shown.At(x + 3, y + 3 + rh / 2));
    EXPECT_EQ(COLORREF(0xC0C0C0), shown.At(10, 3 * rh));
    SetFocus(parent.Window());
    EXPECT_EQ(window, Readback::Of(w).At(x, y));
}

// Each allocation or GDI object of the creation refused in turn: no gadget,
// nothing kept. A cell that needs more room keeps the store as it was.
TEST_F(WaffleTest, RefusedRequestsFailCreationCleanlyAndKeepTheStore)
{
    const unsigned kinds = FailureSeam::Memory | FailureSeam::Gdi;
    auto make = [&] { return parent.CreateChild("Waffle", ID + 1, 0, 0, 0, 100, 100); };
    unsigned points;
    { FailureSeam count(kinds, 0); DestroyWindow(make()); points = count.Calls(); }
    long gdiBefore = GdiObjectsInUse();
    for (unsigned n = 1; n <= points; ++n) {
        FailureSeam seam(kinds, n);
        EXPECT_EQ(nullptr, make()) << "request " << n;  // the parent takes any made
    }
    EXPECT_EQ(gdiBefore, GdiObjectsInUse());
    for (DWORD i = 0; i < 8; ++i) Send(WFM_SETCELL, 7 - i, "k");  // the first block is full
    const std::string before = Line(WFM_GETROWSIZE, WFM_GETROW, 1);
    FailureSeam seam(FailureSeam::Memory, 1);
    EXPECT_EQ(-1, Send(WFM_SETCELL, 9, "new"));
    EXPECT_EQ(RV_OutOfLocalMemory, OSErrorGetErrorValue());
    EXPECT_EQ(before, Line(WFM_GETROWSIZE, WFM_GETROW, 1));
    EXPECT_EQ(1, Send(WFM_SETCELL, 3, "old"));  // an existing cell needs no room
}

// Heads are "QzCombo" windows.
TEST_F(WaffleTest, HeadsDropListsAndDatesIntoTheCell)
{
    HWND head = reinterpret_cast<HWND>(Send(WFM_GETHEAD, 1));
    ASSERT_TRUE(IsWindow(head));
    for (const char *s : {"apple", "pear", "plum"}) EXPECT_GE(Send(WFM_ADDLISTSTRING, 1, s), 0);
    Send(WFM_PUTCELL, 3, "pear"), Send(WFM_GOTOCELL, 3);
    PostMessageA(head, 0x405, 0, 0);  // closes the drop-down that Alt Down opens
    SendMessageA(edit, WM_SYSKEYDOWN, VK_DOWN, 1 << 29);
    EXPECT_EQ(0, SendMessageA(head, 0x406, 0, 0));
    HWND list = reinterpret_cast<HWND>(SendMessageA(head, 0x403, 0, 0));
    ASSERT_TRUE(IsWindow(list));
    SendMessageA(list, LB_SETCURSEL, 2, 0);
    SendMessageA(w, WM_COMMAND, MAKEWPARAM(1, LBN_SELCHANGE), reinterpret_cast<LPARAM>(head));
    Send(WFM_GOTOCELL, 6);
    EXPECT_EQ("plum", Cell(3));
    EXPECT_EQ(-1, Send(WFM_SETCOLUMNTYPE, 2, reinterpret_cast<void *>(4)));
    HWND dateHead = reinterpret_cast<HWND>(Send(WFM_GETHEAD, 3));
    HWND calendar = reinterpret_cast<HWND>(SendMessageA(dateHead, 0x403, 0, 0));
    ASSERT_TRUE(IsWindow(calendar));
    DateTimeValue day = MakeDate(2024, 2, 29);
    SendMessageA(calendar, DTKM_SETDATE, 0, reinterpret_cast<LPARAM>(&day));
    Send(WFM_GOTOCELL, 5);
    SendMessageA(w, WM_COMMAND, MAKEWPARAM(3, 200), reinterpret_cast<LPARAM>(dateHead));
    Send(WFM_GOTOCELL, 0);
    char expected[128];
    OSDateTimeToString(&day, expected, nullptr, DTS_SHORTDATE, 128);
    EXPECT_EQ(expected, Cell(5));
}

TEST_F(WaffleTest, MonkeyKeepsTheCellsOfAPlainModelAndLeaksNothing)
{
    std::mt19937 rng(25);
    std::map<DWORD, std::string> model;
    const UINT keys[] = {VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT, VK_PRIOR, VK_NEXT, VK_HOME, VK_END};
    auto pick = [&](int n) { return static_cast<int>(rng() % n); };
    auto run = [&](int steps) {
        for (int step = 0; step < steps; ++step) {
            DWORD current = Current(), cell = pick(COLS * ROWS);
            std::string text(pick(4) ? pick(6) : 0, char('a' + pick(26)));
            switch (pick(10)) {
            case 0: Send(WFM_PUTCELL, cell, text.c_str()), model[cell] = text; break;
            case 1: if (cell != current) Send(WFM_SETCELL, cell, text.c_str()), model[cell] = text; break;
            case 2: SendMessageA(edit, WM_KEYDOWN, keys[pick(8)], 0); break;
            case 3: Click(w, pick(320) - 10, pick(220) - 10); break;
            case 4: Drag(w, {pick(300), pick(200)}, {pick(300), pick(200)}, 2); break;
            case 5: SetWindowPos(w, nullptr, 0, 0, pick(320), pick(240), SWP_NOMOVE | SWP_NOZORDER); break;
            case 6: Send(WM_VSCROLL, MAKEWPARAM(pick(9), pick(20))); break;
            case 8: Send(WFM_SETROWCOUNT, pick(7)); break;
            case 9: Send(WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(pick(2) ? SYSTEM_FONT : ANSI_VAR_FONT))); break;
            case 7: {
                bool insert = pick(2);
                EXPECT_EQ(0, Send(insert ? WFM_INSERTROW : WFM_DELETEROW));
                DWORD row = Current() / COLS;  // an insert first moves to the row's start
                std::map<DWORD, std::string> moved;
                for (auto &[i, t] : model)
                    if (i / COLS < row) moved[i] = t;
                    else if (insert) moved[i + COLS] = t;
                    else if (i / COLS > row) moved[i - COLS] = t;
                model.swap(moved);
            }
            }
        }
    };
    run(100);  // the system makes some objects on first use
    long gdiBefore = GdiObjectsInUse();
    run(MonkeySteps(1500, 150));
    EXPECT_EQ(gdiBefore, GdiObjectsInUse());
    for (DWORD i = 0; i < COLS * (ROWS + 40); ++i)
        ASSERT_EQ(model.count(i) ? model[i] : "", Cell(i)) << "cell " << i;
}

}  // namespace
