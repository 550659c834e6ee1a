// Every failure the drawing functions meet is recorded, and only those: the
// regions grown past one call's worth of rectangles, each allocation or GDI
// creation refused in turn, and the inputs that cannot be drawn.
#include <functional>
#include "failure_seam.h"
#include "import_patch.h"
#include "readback.h"
#include "surface.h"

namespace {

using DrawingFailures = ErrorStateTest;

// The pixels of `keep`; or, as a symmetrical outline, each row's span from
// its first pixel of another colour to its twin.
HRGN RegionFromRows(const std::vector<std::string> &rows, char keep, bool outline)
{
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    for (int y = 0; y < static_cast<int>(rows.size()); ++y) {
        const int w = static_cast<int>(rows[y].size());
        const size_t first = rows[y].find_first_not_of(keep);
        for (int x = 0; x < w; ++x) {
            bool in = outline ? first != std::string::npos && x >= static_cast<int>(first) &&
                                    x < w - static_cast<int>(first)
                              : rows[y][x] == keep;
            HRGN pixel = CreateRectRgn(x, y, x + 1, y + 1);
            if (in)
                CombineRgn(region, region, pixel, RGN_OR);
            DeleteObject(pixel);
        }
    }
    return region;
}

// 300 rows, symmetrical both ways, one to three runs a row: far more
// rectangles than one region call takes.
std::vector<std::string> ManyRows()
{
    std::vector<std::string> rows(300);
    for (int y = 0; y < 150; ++y) {
        std::string half(12, 'b');
        int start = 1 + y % 9, mid = (y * 7) % 12;
        for (int x = start; x < 12; ++x)
            half[x] = 'a';
        if (y % 3 == 0 && mid > start + 1)
            half[mid - 1] = 'b';
        rows[y] = rows[299 - y] = half + std::string(half.rbegin(), half.rend());
    }
    return rows;
}

struct RegionCall {
    const char *name;
    HRGN (*make)(HBITMAP image, COLORREF ink, COLORREF back);
    char keep;
    bool outline;  // the region is the outline around `keep`
    bool flipped;  // the scan runs right to left: the region comes out flipped
};

const RegionCall kRegionCalls[] = {
    {"bitmap", [](HBITMAP i, COLORREF ink, COLORREF) { return UICreateBitmapRegion(i, ink, 0); }, 'a', false, false},
    {"bitmap, mirrored scan", [](HBITMAP i, COLORREF ink, COLORREF) { return UICreateBitmapRegion(i, ink, 1); },
     'a', false, true},
    {"mirrored", [](HBITMAP i, COLORREF, COLORREF back) { return UICreateMirroredBitmapRegion(i, back); }, 'b',
     true, false},
    {"mirrored, corner colour",
     [](HBITMAP i, COLORREF, COLORREF) { return UICreateMirroredBitmapRegion(i, CLR_INVALID); }, 'b', true, false},
    {"round", [](HBITMAP, COLORREF, COLORREF) { return UICreateRoundRectRegion(3, 4, 300, 260, 40, 30); }, 0,
     false, false},
};

TEST_F(DrawingFailures, RegionsOfManyRectanglesAndEveryRefusalOnTheWay)
{
    const COLORREF ink = GetSysColor(COLOR_HIGHLIGHT), back = GetSysColor(COLOR_WINDOW);
    // The outline reads a symmetrical picture; the colour scan one whose
    // rows differ from their mirror images.
    std::vector<std::string> rows = ManyRows(), uneven = rows, flipped;
    for (size_t y = 0; y < uneven.size(); y += 5)
        uneven[y][y % 3] = 'a';
    for (const std::string &row : uneven)
        flipped.emplace_back(row.rbegin(), row.rend());
    HBITMAP image = MakeImage(rows, {ink, back}), unevenImage = MakeImage(uneven, {ink, back});
    for (const RegionCall &call : kRegionCalls) {
        SCOPED_TRACE(call.name);
        HBITMAP picture = call.outline ? image : unevenImage;
        auto make = [&] { return call.make(picture, ink, back); };
        HRGN whole = make();
        ASSERT_NE(nullptr, whole);
        if (call.keep) {
            HRGN expected = RegionFromRows(call.outline ? rows : call.flipped ? flipped : uneven, call.keep, call.outline);
            EXPECT_TRUE(EqualRgn(expected, whole));
            DeleteObject(expected);
        }
        unsigned points;
        {
            FailureSeam count(FailureSeam::Memory | FailureSeam::Gdi, 0);
            DeleteObject(make());
            points = count.Calls();
        }
        EXPECT_GE(points, 2u);
        long before = GdiObjectsInUse();
        for (unsigned n = 1; n <= points; ++n) {
            OSErrorClearError();
            HRGN made;
            {
                FailureSeam seam(FailureSeam::Memory | FailureSeam::Gdi, n);
                made = make();
            }
            // Refused anywhere, the call fails and says so.
            EXPECT_EQ(nullptr, made) << n;
            EXPECT_NE(RV_Success, OSErrorGetErrorValue()) << n;
            DeleteObject(made);
        }
        EXPECT_EQ(before, GdiObjectsInUse());
        DeleteObject(whole);
    }
    DeleteObject(unevenImage);
    DeleteObject(image);
}

// The edges: no pixel of the colour, an all-background outline, no bitmap,
// and the corners and band of a round rectangle.
TEST_F(DrawingFailures, RegionEdges)
{
    const COLORREF ink = GetSysColor(COLOR_HIGHLIGHT), back = GetSysColor(COLOR_WINDOW);
    HBITMAP blank = MakeImage({"bbb", "bbb"}, {ink, back});
    RECT box;
    for (HRGN none : {UICreateBitmapRegion(blank, ink, 0), UICreateMirroredBitmapRegion(blank, CLR_INVALID)}) {
        EXPECT_EQ(NULLREGION, GetRgnBox(none, &box));
        DeleteObject(none);
    }
    DeleteObject(blank);
    EXPECT_EQ(nullptr, UICreateBitmapRegion(nullptr, ink, 0));
    EXPECT_EQ(RV_GDIError, OSErrorGetErrorValue());
    OSErrorClearError();
    // A monochrome picture whose rows are wider than a band of pixels: black
    // everywhere but one white run in the last row.
    std::vector<BYTE> bits(2500 * 3, 0);
    bits[2 * 2500 + 100] = 0xFF;
    HBITMAP mono = CreateBitmap(20000, 3, 1, 1, bits.data());
    HRGN black = UICreateBitmapRegion(mono, RGB(0, 0, 0), 0), expected = CreateRectRgn(0, 0, 20000, 3),
         white = CreateRectRgn(800, 2, 808, 3);
    CombineRgn(expected, expected, white, RGN_DIFF);
    EXPECT_TRUE(EqualRgn(expected, black));
    for (HRGN r : {black, expected, white})
        DeleteObject(r);
    DeleteObject(mono);
    HRGN round = UICreateRoundRectRegion(10, 20, 50, 40, 10, 8);
    ASSERT_NE(nullptr, round);
    GetRgnBox(round, &box);
    EXPECT_EQ((std::vector<LONG>{10, 20, 50, 40}), (std::vector<LONG>{box.left, box.top, box.right, box.bottom}));
    // The corner is cut, the middle band reaches the side.
    EXPECT_FALSE(PtInRegion(round, 10, 20));
    EXPECT_TRUE(PtInRegion(round, 30, 30));
    EXPECT_TRUE(PtInRegion(round, 10, 30));
    DeleteObject(round);
    // A corner as high as the rectangle: no middle band, only the curve.
    HRGN pill = UICreateRoundRectRegion(0, 0, 20, 8, 8, 8);
    EXPECT_TRUE(PtInRegion(pill, 10, 4));
    EXPECT_FALSE(PtInRegion(pill, 0, 0));
    DeleteObject(pill);
}

BOOL WINAPI RefuseTextMetrics(HDC, TEXTMETRICA *) { return FALSE; }

// Inputs that cannot be drawn fail with a record; a picture with nothing in
// it, or no handle to measure, is no error of the caller's.
TEST_F(DrawingFailures, EachFailureIsRecordedAndEmptyPicturesAreNot)
{
    Surface target(16, 16), source(8, 8);
    HBITMAP mask = CreateBitmap(4, 4, 1, 1, nullptr);
    // A brush handle measures as a bitmap of no size.
    HBRUSH noSize = CreateSolidBrush(RGB(0, 0, 0));
    RECT rect = {0, 0, 16, 16};
    HGLOBAL empty = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(METAFILEPICT));
    SIZE fallBack = {5, 7};
    ImportPatch metrics(LibraryModule(), "gdi32.dll", "GetTextMetricsA",
                        reinterpret_cast<const void *>(RefuseTextMetrics));
    ASSERT_TRUE(metrics.Applied());
    struct Row {
        const char *name;
        std::function<LONG()> call;
        LONG result;
        ResultCode recorded;
    } rows[] = {
        {"MaskBltWithBitmap, no background",
         [&] { return MaskBltWithBitmap(target.dc, 0, 0, 4, 4, source.dc, 0, 0, SRCCOPY, mask, 0, nullptr); }, 0,
         RV_GDIError},
        {"UITileBitmap, no size", [&] { return static_cast<LONG>(UITileBitmap(target.dc, &rect, (HBITMAP)noSize)); },
         0, RV_BadParms},
        {"DrawTextWithIndent, no metrics",
         [&] { return static_cast<LONG>(DrawTextWithIndent(target.dc, "a b", 0, &rect, 0, 2, 0, 0)); }, 0,
         RV_GDIError},
        {"MF_Play, empty block", [&] { return static_cast<LONG>(MF_Play(target.dc, &rect, empty)); }, 0, RV_Success},
        {"MF_GetDimensions, no handle", [&] { return MF_GetDimensions(target.dc, nullptr, &fallBack); }, 7,
         RV_Success},
        // A null context, rectangle or text is a bad parameter, never a fault.
        {"UIMaskBltNoFlicker", [&] { return (LONG)UIMaskBltNoFlicker(nullptr, &rect, mask, nullptr, 0); }, 0, RV_BadParms},
        {"UIMaskBltWithFlicker", [&] { return (LONG)UIMaskBltWithFlicker(target.dc, nullptr, mask, nullptr, 0); }, 0,
         RV_BadParms},
        {"UIBitBlt", [&] { return (LONG)UIBitBlt(nullptr, &rect, mask); }, 0, RV_BadParms},
        {"UITileBitmap", [&] { return (LONG)UITileBitmap(target.dc, nullptr, mask); }, 0, RV_BadParms},
        {"UIFrameAndFillRect", [&] { return (LONG)UIFrameAndFillRect(nullptr, &rect, nullptr, nullptr, nullptr); }, 0,
         RV_BadParms},
        {"UITroughRect", [&] { return (LONG)UITroughRect(target.dc, nullptr); }, 0, RV_BadParms},
        {"OSMaskBlt", [&] { return OSMaskBlt(target.dc, 0, 0, 1, 1, nullptr, 0, 0, SRCCOPY, mask, 0); }, 0, RV_BadParms},
        {"MF_Play", [&] { return (LONG)MF_Play(target.dc, nullptr, nullptr); }, 0, RV_BadParms},
        {"UIVertDrawText", [&] { return (LONG)UIVertDrawText(target.dc, nullptr, -1, &rect, 0, 0); }, 0, RV_BadParms},
        {"DrawTextWithIndent", [&] { return (LONG)DrawTextWithIndent(target.dc, "a", 0, nullptr, 0, 0, 0, 0); }, 0,
         RV_BadParms},
    };
    for (const Row &row : rows) {
        OSErrorClearError();
        EXPECT_EQ(row.result, row.call()) << row.name;
        EXPECT_EQ(row.recorded, OSErrorGetErrorValue()) << row.name;
    }
    GlobalFree(empty);
    DeleteObject(noSize);
    DeleteObject(mask);
}

}  // namespace
