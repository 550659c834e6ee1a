// The film player: every frame of the test sheets read back as it reaches
// the target (the library's BitBlt is watched), in each mask mode, in order
// and by sequence; the background restored byte for byte; the films that
// are refused; and no GDI object left after a thousand plays.
#include "failure_seam.h"
#include "import_patch.h"
#include "readback.h"
#include "surface.h"
#include <algorithm>
#include <vector>

namespace {

const DWORD kCells = 9200;   // 4 x 2 cells of 16 x 16: squares on the key
const DWORD kMasked = 9201;  // 4 x 2 cells of 32 x 16: picture and mask halves
const COLORREF kKey = 0xFF00FF;
const COLORREF kColours[8] = {RGB(255, 0, 0), RGB(0, 255, 0), RGB(0, 0, 255), RGB(255, 255, 0),
                              RGB(0, 255, 255), RGB(128, 0, 0), RGB(0, 128, 0), RGB(0, 0, 128)};
const int SW = 64, SH = 48;

COLORREF Backdrop(int x, int y) { return RGB(x * 3, y * 5, 90); }
bool InSquare(int dx, int dy) { return dx >= 4 && dx < 12 && dy >= 4 && dy < 12; }

// What reaches the watched surface, one picture per BitBlt onto it.
HDC g_watched;
Surface *g_surface;
std::vector<std::vector<DWORD>> g_frames;
ImportPatch *g_bitBlt;

BOOL WINAPI WatchingBitBlt(HDC dst, int x, int y, int w, int h, HDC src, int sx, int sy, DWORD rop)
{
    BOOL done = g_bitBlt->Original<decltype(&BitBlt)>()(dst, x, y, w, h, src, sx, sy, rop);
    if (dst == g_watched) {
        GdiFlush();
        g_frames.emplace_back(g_surface->bits, g_surface->bits + SW * SH);
    }
    return done;
}

class FilmPlayer : public ErrorStateTest {
protected:
    Surface s{SW, SH};
    ImportPatch watch{LibraryModule(), "gdi32.dll", "BitBlt", reinterpret_cast<const void *>(WatchingBitBlt)};
    std::vector<DWORD> original;
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        ASSERT_TRUE(watch.Applied());
        g_bitBlt = &watch;
        g_watched = s.dc;
        g_surface = &s;
        g_frames.clear();
        for (int y = 0; y < SH; ++y)
            for (int x = 0; x < SW; ++x)
                s.Set(x, y, Backdrop(x, y));
        GdiFlush();
        original.assign(s.bits, s.bits + SW * SH);
    }
    void TearDown() override { EndFilm(), g_watched = nullptr, ErrorStateTest::TearDown(); }
    // Checks one frame: cell `cell` drawn at (x, y) in `mode`, the backdrop
    // elsewhere. Mode 1 draws the whole cell's width; only the picture half
    // is looked at.
    void ExpectFrame(const std::vector<DWORD> &frame, LONG mode, int cell, int x, int y)
    {
        long wrong = 0;
        for (int py = 0; py < SH; ++py)
            for (int px = 0; px < SW; ++px) {
                int dx = px - x, dy = py - y;
                COLORREF want = Backdrop(px, py);
                bool inside = dx >= 0 && dy >= 0 && dx < 16 && dy < 16;
                if (mode == FILM_MASKHALF && dx >= 16 && dx < 32 && dy >= 0 && dy < 16)
                    continue;
                if (inside && InSquare(dx, dy))
                    want = kColours[cell];
                else if (inside && mode == FILM_COPY)
                    want = kKey;
                DWORD p = frame[py * SW + px];
                wrong += RGB((p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF) != want;
            }
        EXPECT_EQ(0, wrong) << "mode " << mode << ", cell " << cell;
    }
    BOOL Play(DWORD id, LONG columns, LONG rows, LONG mode, DWORD count, const LONG *sequence,
              LONG runToEnd, LONG x = 8, LONG y = 10, DWORD centred = 0)
    {
        return PlayFilm(s.dc, x, y, ResourceGetHandle(), id, columns, rows, mode, count, 0, kKey,
                        centred, sequence, runToEnd);
    }
};

TEST_F(FilmPlayer, EveryFrameInEachModeThenTheBackgroundByteForByte)
{
    static const LONG inOrder[] = {0, 1, 2, 3, 4, 5, 6, 7};
    static const LONG shuffled[] = {7, 0, 3, 3, 5};
    struct Row { DWORD id; LONG mode; const LONG *sequence; DWORD count; const LONG *cells; DWORD centred; } rows[] = {
        {kCells, FILM_COPY, nullptr, 8, inOrder, 0},      {kCells, FILM_KEYCOLOUR, nullptr, 8, inOrder, 0},
        {kMasked, FILM_MASKHALF, nullptr, 8, inOrder, 0}, {kCells, 7, nullptr, 3, inOrder, 0},
        {kCells, FILM_KEYCOLOUR, shuffled, 5, shuffled, 0}, {kMasked, FILM_MASKHALF, shuffled, 5, shuffled, 1},
        {kCells, FILM_COPY, shuffled, 2, shuffled, 1},
    };
    for (const Row &row : rows) {
        g_frames.clear();
        SCOPED_TRACE(row.mode);
        ASSERT_TRUE(Play(row.id, 4, 2, row.mode, row.count, row.sequence, 1, 20, 20, row.centred));
        EXPECT_FALSE(IsFilmPlaying());
        ASSERT_EQ(row.count + 1, g_frames.size());  // the frames, then the restore
        int half = row.centred ? (row.id == kMasked ? 16 : 8) : 0;
        for (DWORD i = 0; i < row.count; ++i)
            ExpectFrame(g_frames[i], row.mode == 7 ? FILM_COPY : row.mode, row.cells[i], 20 - half,
                        20 - (row.centred ? 8 : 0));
        EXPECT_TRUE(g_frames.back() == original);
        GdiFlush();
        EXPECT_TRUE(std::equal(original.begin(), original.end(), s.bits));
    }
}

// Without run to end the first frame stays and the film's objects are gone:
// the next frame fails and ends the film, and a film can start again.
TEST_F(FilmPlayer, WithoutRunToEndTheFirstFrameStays)
{
    ASSERT_TRUE(Play(kCells, 4, 2, FILM_KEYCOLOUR, 8, nullptr, 0));
    EXPECT_EQ(1, IsFilmPlaying());
    EXPECT_FALSE(Play(kCells, 4, 2, FILM_COPY, 8, nullptr, 1));
    EXPECT_EQ(RV_Failure, OSErrorGetErrorValue());
    OSErrorClearError();
    EXPECT_FALSE(NextFrame());
    EXPECT_EQ(RV_GDIError, OSErrorGetErrorValue());
    EXPECT_EQ(0, IsFilmPlaying());
    GdiFlush();
    ExpectFrame(std::vector<DWORD>(s.bits, s.bits + SW * SH), FILM_KEYCOLOUR, 0, 8, 10);
    OSErrorClearError();
    EXPECT_FALSE(NextFrame());
    EXPECT_EQ(RV_Failure, OSErrorGetErrorValue());
    // One frame: the film ends inside the first frame and nothing is
    // released twice.
    EXPECT_TRUE(Play(kCells, 4, 2, FILM_COPY, 1, nullptr, 0));
    EXPECT_EQ(0, IsFilmPlaying());
}

TEST_F(FilmPlayer, BadFilmsAreRefusedAndDrawNothing)
{
    static const LONG high[] = {0, 8}, low[] = {-1}, edge[] = {7, 6};
    struct Row { DWORD id; LONG columns, rows; DWORD count; const LONG *sequence; ResultCode code; } rows[] = {
        {kCells, 0, 2, 8, nullptr, RV_BadParms},  {kCells, 4, 0, 8, nullptr, RV_BadParms},
        {kCells, -4, 2, 8, nullptr, RV_BadParms}, {kCells, 4, 2, 0, nullptr, RV_BadParms},
        {kCells, 4, 2, 2, high, RV_BadParms},     {kCells, 4, 2, 1, low, RV_BadParms},
        {4242, 4, 2, 8, nullptr, RV_GDIError},    {0x20000 | kCells, 4, 2, 8, nullptr, RV_GDIError},
        {kCells, 4, 2, 2, edge, RV_Success},      {kCells, 1, 1, 1, nullptr, RV_Success},
    };
    for (const Row &row : rows) {
        OSErrorClearError();
        g_frames.clear();
        BOOL played = Play(row.id, row.columns, row.rows, FILM_COPY, row.count, row.sequence, 1);
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(row.code == RV_Success, bool(played));
        EXPECT_EQ(row.code, OSErrorGetErrorValue());
        EXPECT_EQ(0, IsFilmPlaying());
        EXPECT_EQ(row.code == RV_Success ? row.count + 1 : 0, g_frames.size());
    }
    EXPECT_EQ(nullptr, GetFrame(s.dc, ResourceGetHandle(), kCells, 4, 2, 0xFFFFFFFF, 0, 0));
    EXPECT_EQ(nullptr, GetFrame(s.dc, ResourceGetHandle(), kCells, 0, 2, 0, 0, 0));
}

// Each GDI creation of a film failed in turn: the film is refused or ends
// early, and either way the screen is as it was and nothing is left.
TEST_F(FilmPlayer, EveryFailingCreationLeavesTheScreenAsItWas)
{
    static const LONG sequence[] = {5, 2, 7};
    for (LONG mode : {FILM_KEYCOLOUR, FILM_MASKHALF}) {
        DWORD id = mode == FILM_MASKHALF ? kMasked : kCells;
        unsigned points;
        {
            FailureSeam count(FailureSeam::Gdi | FailureSeam::Memory, 0);
            Play(id, 4, 2, mode, 3, sequence, 1);
            points = count.Calls();
        }
        EXPECT_GT(points, 10u);
        long before = GdiObjectsInUse();
        for (unsigned n = 1; n <= points; ++n) {
            {
                FailureSeam seam(FailureSeam::Gdi | FailureSeam::Memory, n);
                Play(id, 4, 2, mode, 3, sequence, 1);
            }
            EXPECT_EQ(0, IsFilmPlaying()) << n;
            GdiFlush();
            EXPECT_TRUE(std::equal(original.begin(), original.end(), s.bits)) << "point " << n;
        }
        EXPECT_EQ(before, GdiObjectsInUse());
    }
}

TEST_F(FilmPlayer, ThousandPlaysLeaveNoObjects)
{
    static const LONG sequence[] = {3, 1};
    Play(0x10000 | kCells, 4, 2, FILM_KEYCOLOUR, 2, sequence, 1);  // loads the kept sheet
    long before = GdiObjectsInUse();
    for (int i = 0; i < MonkeySteps(1000, 200); ++i) {
        DWORD id = i % 5 == 0 ? (0x10000 | kCells) : i % 2 ? kMasked : kCells;
        Play(id, 4, 2, i % 3, 1 + i % 4, i % 7 ? nullptr : sequence, i % 6 != 0);
        if (IsFilmPlaying() && i % 2)
            NextFrame();
        EndFilm();
        if (i % 50 == 0)
            DeleteObject(GetFrame(s.dc, ResourceGetHandle(), kMasked, 4, 2, 1, i % 8, 1));
    }
    EXPECT_EQ(before, GdiObjectsInUse());
}

}  // namespace
