// The colour palette control: the nearest colour over the whole table, the
// grid's cells read back, keys with wrap, and a choice told to the parent.
#include <random>
#include <vector>
#include "qz_test.h"
#include "window_harness.h"

namespace {

const int ID = 52;
const DWORD kStyle = CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_NOINTEGRALHEIGHT;

class ColourPaletteTest : public GadgetTest {
protected:
    RecordingParent parent{320, 300};
    HWND c = nullptr;
    std::vector<COLORREF> table;  // the table as the control reports it
    void SetUp() override
    {
        GadgetTest::SetUp();
        c = Make();
        ASSERT_TRUE(c);
        EXPECT_EQ(15, Index()) << "a fresh control shows 15";
        for (LONG i = -1; i <= 256; ++i) {  // one below and one above the table too
            COLORREF colour = 0x123456;
            SendMessageA(c, CCPM_SETINDEX, 0, i);
            bool inTable = i >= 0 && i < 256;
            EXPECT_EQ(inTable ? 0 : -1, ccPalGetRGB(c, &colour)) << i;
            if (inTable)
                table.push_back(colour);
            else
                EXPECT_EQ(0x123456u, colour) << "left as it was for " << i;
        }
        parent.Clear();
        for (UINT m = WM_CTLCOLORMSGBOX; m <= WM_CTLCOLORSTATIC; ++m)
            parent.Ignore(m);
    }
    void TearDown() override { DestroyWindow(c), GadgetTest::TearDown(); }
    LRESULT Index() { return SendMessageA(c, CCPM_GETINDEX, 0, 0); }
    HWND Make() { return parent.CreateChild("ccpal_popup", ID, kStyle, 10, 10, 120, 200); }
    HWND List()
    {
        COMBOBOXINFO info = {};
        info.cbSize = sizeof info;
        return GetComboBoxInfo(c, &info) ? info.hwndList : nullptr;
    }
    // The colours met along a line of the read-back grid, one per run.
    static std::vector<COLORREF> Runs(const Readback &r, int x, int y, int dx, int dy)
    {
        std::vector<COLORREF> runs;
        for (; x < r.Width() && y < r.Height(); x += dx, y += dy) {
            COLORREF at = r.At(x, y);
            if (at != 0 && at != 0xFFFFFF && (runs.empty() || runs.back() != at))
                runs.push_back(at);
        }
        return runs;
    }
};

TEST_F(ColourPaletteTest, NearestColourIsTheFirstOfTheClosestOverTheWholeTableOfOneItem)
{
    std::mt19937 random(5);
    std::vector<COLORREF> probes = table;
    for (COLORREF tie : {0xFBFBFBu, 0xFFFFFFu, 0x000000u, 0x7F7F7Fu})
        probes.push_back(tie);  // FBFBFB lies as far from entry 15 as from entry 31
    for (int i = 0; i < 3000; ++i)
        probes.push_back(random() & 0xFFFFFF);
    for (COLORREF probe : probes) {
        LONG best = 65535, expected = 0;
        for (LONG i = 1; i < 256; ++i) {
            LONG d = abs(GetRValue(probe) - GetRValue(table[i])) + abs(GetGValue(probe) - GetGValue(table[i])) +
                     abs(GetBValue(probe) - GetBValue(table[i]));
            if (d < best)
                best = d, expected = i;
        }
        EXPECT_EQ(0, ccPalSetRGB(c, probe));
        ASSERT_EQ(expected, Index()) << std::hex << probe;
    }
    EXPECT_EQ(-1, ccPalSetRGB(nullptr, 0));
    // The colour belongs to the control's one item: with two there is none.
    SendMessageA(c, CB_ADDSTRING, 0, 0);
    COLORREF colour;
    EXPECT_EQ(-1, ccPalGetRGB(c, &colour)) << "two items";
    EXPECT_EQ(-1, Index());
    EXPECT_EQ(0, ccRegisterClass(GetModuleHandleA("qziso32.dll"))) << "a second registration does nothing";
}

TEST_F(ColourPaletteTest, KeysWalkTheCellsWithWrapAndEachChoiceReachesTheParent)
{
    // From an index, or (-1) from the favourites' first cell, 255, reached by Home.
    const struct { LONG from; UINT key; LONG index; } walks[] = {
        {0, VK_LEFT, 15}, {15, VK_RIGHT, 0},   // cell 16 wraps to the end of its row, and back
        {0, VK_UP, 255}, {255, VK_DOWN, 159},  // into the favourites, from the last row to their last
        {5, VK_HOME, 255}, {5, VK_END, 255}, {16, VK_UP, 0},
        {-1, VK_UP, 240},                      // from the favourites' row to the table's last
        {5, VK_F5, 5},                         // other keys do nothing
    };
    static const Message one[] = {{WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(ID, CCPN_CHOICE), 0},
                                  {0, 0, 0, 0}}, none[] = {{0, 0, 0, 0}};
    parent.SetChild(c);
    for (const auto &w : walks) {
        w.from < 0 ? SendMessageA(c, WM_KEYDOWN, VK_HOME, 0) : SendMessageA(c, CCPM_SETINDEX, 0, w.from);
        parent.Clear();
        SendMessageA(c, WM_KEYDOWN, w.key, 0);
        EXPECT_EQ(w.index, Index()) << w.from << " key " << w.key;
        EXPECT_SEQUENCE(parent, w.key == VK_F5 ? none : one, "one choice for a walking key");
    }
}

TEST_F(ColourPaletteTest, DroppedListShowsTheGridFlashesAndAClickChooses)
{
    SendMessageA(c, CB_SHOWDROPDOWN, TRUE, 0);
    PumpMessages();
    HWND list = List();
    ASSERT_TRUE(IsWindowVisible(list));
    Readback grid = Readback::Of(list);
    // Down some column: the table's column 1; across some row: the favourites.
    std::vector<COLORREF> column, favourites;
    for (int i = 0; i < 16; ++i)
        column.push_back(table[1 + 16 * i]);
    for (int i : {129, 68, 168, 50, 124, 70, 174, 132, 186, 131, 172, 118, 95, 159})
        favourites.push_back(table[i]);
    int x = 0, y = 0;
    while (x < grid.Width() && Runs(grid, x, 0, 0, 1) != column)
        ++x;
    while (y < grid.Height() && Runs(grid, 0, y, 1, 0) != favourites)
        ++y;
    ASSERT_TRUE(x < grid.Width() && y < grid.Height()) << "no column of the table, or no favourites' row";
    // The flashing frame inverts round the current cell and back.
    SendMessageA(c, CCPM_SETINDEX, 0, 0);
    Readback before = Readback::Of(list);
    SendMessageA(list, WM_TIMER, 1, 0);
    EXPECT_EQ(0, Readback::Of(list).Differences(before)) << "a moved frame stays on for a tick";
    SendMessageA(list, WM_TIMER, 1, 0);
    Readback flipped = Readback::Of(list);
    SendMessageA(list, WM_TIMER, 1, 0);
    EXPECT_GT(flipped.Differences(before), 0);
    EXPECT_EQ(0, Readback::Of(list).Differences(before));
    // A click in the column's fourth run chooses colour 1 + 16 * 3.
    int top = 0;
    while (top < grid.Height() && grid.At(x, top) != column[3])
        ++top;
    Click(list, x, top + 2);
    EXPECT_EQ(49, Index());
    PumpMessages();
    EXPECT_FALSE(SendMessageA(c, CB_GETDROPPEDSTATE, 0, 0)) << "the release closes the list";
}

// Random steps; the parent destroys the control on some of its choices.
TEST_F(ColourPaletteTest, MonkeyHostileLeavesNothingBehind)
{
    std::mt19937 random(9);
    parent.Answer([&](HWND, UINT message, WPARAM, LPARAM, bool *) -> LRESULT {
        return message == WM_COMMAND && random() % 8 == 0 ? DestroyWindow(c) : 0;
    });
    long gdi = 0;
    for (int round = 0; round < MonkeySteps(8, 2); ++round) {
        if (round == 1)
            gdi = GdiObjectsInUse();
        for (int i = 0; i < MonkeySteps(120, 30); ++i) {
            if (!IsWindow(c))
                c = Make();
            HWND list = List();
            LONG n = static_cast<LONG>(random() % 300) - 20;
            switch (random() % 10) {
            case 0: SendMessageA(c, CB_SHOWDROPDOWN, random() % 2, 0); PumpMessages(); break;
            case 1: SendMessageA(c, WM_KEYDOWN, VK_END + random() % 8, 0); break;
            case 2: SendMessageA(c, CCPM_SETINDEX, 0, n); break;
            case 3: ccPalSetRGB(c, random() & 0xFFFFFF); break;
            case 4: Click(list, random() % 250 - 20, random() % 300 - 20); PumpMessages(); break;
            case 5: SendMessageA(list, WM_TIMER, 1, 0); break;
            case 6: SendMessageA(c, WM_SYSKEYDOWN, VK_DOWN, 0x20000000); PumpMessages(); break;
            case 7: UpdateWindow(list), UpdateWindow(c); break;
            case 8: SendMessageA(c, random() % 2 ? CB_ADDSTRING : CB_DELETESTRING, 0, 0); break;
            case 9: SetWindowTextA(c, "text"), SendMessageA(c, WM_SETFONT, 0, TRUE); break;
            }
            if (!IsWindow(c))
                continue;  // destroyed by the parent: made again at the next step
            COLORREF colour = 0;
            LRESULT index = Index();
            bool inTable = index >= 0 && index < 256;
            ASSERT_EQ(inTable ? 0 : -1, ccPalGetRGB(c, &colour)) << index;
            ASSERT_TRUE(!inTable || table[index] == colour) << index;
        }
        if (random() % 2)
            SendMessageA(c, CB_SHOWDROPDOWN, TRUE, 0);
        DestroyWindow(c);  // while open, half the time
        PumpMessages();
        c = Make();
    }
    DestroyWindow(c);
    c = nullptr;
    EXPECT_EQ(gdi, GdiObjectsInUse());
}

}  // namespace
