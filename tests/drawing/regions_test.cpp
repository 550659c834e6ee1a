// Regions from pictures, held against regions the test builds from the same
// pixels with ExtCreateRegion.
#include "surface.h"

namespace {

using Regions = ErrorStateTest;

// One rectangle per run of pixels for which `keep` holds, row by row.
HRGN RegionFromRows(const std::vector<std::string> &rows, bool (*keep)(char))
{
    std::vector<RECT> rects;
    for (int y = 0; y < static_cast<int>(rows.size()); ++y)
        for (int x = 0; x < static_cast<int>(rows[y].size());) {
            if (!keep(rows[y][x])) {
                ++x;
                continue;
            }
            int start = x;
            while (x < static_cast<int>(rows[y].size()) && keep(rows[y][x]))
                ++x;
            rects.push_back({start, y, x, y + 1});
        }
    std::vector<BYTE> data(sizeof(RGNDATAHEADER) + rects.size() * sizeof(RECT));
    RGNDATA *r = reinterpret_cast<RGNDATA *>(data.data());
    r->rdh.dwSize = sizeof r->rdh;
    r->rdh.iType = RDH_RECTANGLES;
    r->rdh.nCount = static_cast<DWORD>(rects.size());
    if (!rects.empty())
        memcpy(r->Buffer, rects.data(), rects.size() * sizeof(RECT));
    return ExtCreateRegion(nullptr, static_cast<DWORD>(data.size()), r);
}

bool IsA(char c) { return c == 'a'; }
bool NotB(char c) { return c != 'b'; }

void ExpectEqualRegions(HRGN expected, HRGN actual)
{
    ASSERT_NE(nullptr, actual);
    EXPECT_TRUE(EqualRgn(expected, actual));
    DeleteObject(expected);
    DeleteObject(actual);
}

TEST_F(Regions, BitmapRegionKeepsTheColourAndMirrors)
{
    const COLORREF ink = GetSysColor(COLOR_HIGHLIGHT), back = GetSysColor(COLOR_WINDOW);
    const std::vector<std::string> rows = {"aabab", "bbbbb", "abbba", "aaaaa", "babbb", "ababa", "aabba"};
    std::vector<std::string> flipped;
    for (std::string r : rows)
        flipped.emplace_back(r.rbegin(), r.rend());
    HBITMAP image = MakeImage(rows, {ink, back});
    ExpectEqualRegions(RegionFromRows(rows, IsA), UICreateBitmapRegion(image, ink, 0));
    ExpectEqualRegions(RegionFromRows(flipped, IsA), UICreateBitmapRegion(image, ink, 1));
    HRGN none = UICreateBitmapRegion(image, RGB(1, 2, 3), 0);
    RECT box;
    EXPECT_EQ(NULLREGION, GetRgnBox(none, &box));
    DeleteObject(none);
    DeleteObject(image);
    EXPECT_EQ(nullptr, UICreateBitmapRegion(nullptr, ink, 0));
    EXPECT_EQ(RV_GDIError, OSErrorGetErrorValue());
}

TEST_F(Regions, MirroredRegionOfASymmetricalPicture)
{
    const COLORREF ink = GetSysColor(COLOR_HIGHLIGHT), back = GetSysColor(COLOR_WINDOW);
    // 7 x 5, odd both ways: the middle row and column belong to the top-left quarter.
    const std::vector<std::string> rows = {"bbbabbb", "bbaaabb", "aaaaaaa", "bbaaabb", "bbbabbb"};
    HBITMAP image = MakeImage(rows, {ink, back});
    ExpectEqualRegions(RegionFromRows(rows, NotB), UICreateMirroredBitmapRegion(image, back));
    ExpectEqualRegions(RegionFromRows(rows, NotB), UICreateMirroredBitmapRegion(image, CLR_INVALID));
    DeleteObject(image);
    HBITMAP blank = MakeImage({"bbb", "bbb"}, {ink, back});
    HRGN none = UICreateMirroredBitmapRegion(blank, CLR_INVALID);
    RECT box;
    EXPECT_EQ(NULLREGION, GetRgnBox(none, &box));
    DeleteObject(none);
    DeleteObject(blank);
}

TEST_F(Regions, RoundRectangle)
{
    HRGN round = UICreateRoundRectRegion(10, 20, 50, 40, 10, 8);
    ASSERT_NE(nullptr, round);
    RECT box;
    GetRgnBox(round, &box);
    EXPECT_EQ(10, box.left);
    EXPECT_EQ(20, box.top);
    EXPECT_EQ(50, box.right);
    EXPECT_EQ(40, box.bottom);
    EXPECT_FALSE(PtInRegion(round, 10, 20));  // corner cut
    EXPECT_TRUE(PtInRegion(round, 30, 30));
    EXPECT_TRUE(PtInRegion(round, 10, 30));   // the middle band
    DeleteObject(round);
    // A corner as high as the rectangle: no middle band, only the curve.
    HRGN pill = UICreateRoundRectRegion(0, 0, 20, 8, 8, 8);
    EXPECT_TRUE(PtInRegion(pill, 10, 4));
    EXPECT_FALSE(PtInRegion(pill, 0, 0));
    DeleteObject(pill);
}

}  // namespace
