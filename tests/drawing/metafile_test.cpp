// Metafiles: placeable files, streams of both forms, the mapping modes,
// playing into a rectangle, and records that would never end.
#include "picture_files.h"
#include "readback.h"
#include "surface.h"

namespace {

using Metafiles = ErrorStateTest;

// Metafile bits that fill 0,0 to w,h with `colour`.
std::vector<BYTE> FillBits(COLORREF colour, int w, int h)
{
    HDC m = CreateMetaFileA(nullptr);
    HBRUSH brush = CreateSolidBrush(colour);
    SelectObject(m, brush);
    PatBlt(m, 0, 0, w, h, PATCOPY);
    HMETAFILE made = CloseMetaFile(m);
    DeleteObject(brush);
    return BitsOfMetafile(made);
}

std::vector<BYTE> Placeable(const std::vector<BYTE> &bits, WORD right, WORD bottom, WORD inch)
{
    std::vector<BYTE> f(22 + bits.size());
    DWORD key = 0x9AC6CDD7;
    memcpy(&f[0], &key, 4);
    memcpy(&f[10], &right, 2);
    memcpy(&f[12], &bottom, 2);
    memcpy(&f[14], &inch, 2);
    std::copy(bits.begin(), bits.end(), f.begin() + 22);
    return f;
}

std::vector<BYTE> NewForm(LONG mode, LONG x, LONG y, const std::vector<BYTE> &bits)
{
    std::vector<BYTE> s(16 + bits.size());
    LONG head[4] = {mode, x, y, 0};
    memcpy(s.data(), head, 16);
    std::copy(bits.begin(), bits.end(), s.begin() + 16);
    return s;
}

struct Picture {
    explicit Picture(HGLOBAL b) : block(b), pict(b ? static_cast<METAFILEPICT *>(GlobalLock(b)) : nullptr) {}
    ~Picture()
    {
        if (block) {
            GlobalUnlock(block);
            MF_Destroy(block);
        }
    }
    HGLOBAL block;
    METAFILEPICT *pict;
};

TEST_F(Metafiles, PlaceableFileLoadsAndPlaysClipped)
{
    const COLORREF ink = GetSysColor(COLOR_HIGHLIGHT), back = GetSysColor(COLOR_WINDOW);
    TempFile file("picture.wmf", Placeable(FillBits(ink, 1000, 500), 1000, 500, 1440));
    Picture p(MF_OpenMetaFile(file.path.c_str()));
    ASSERT_NE(nullptr, p.pict);
    EXPECT_EQ(MM_ISOTROPIC, p.pict->mm);
    EXPECT_EQ(1000 * 2540 / 1440, p.pict->xExt);
    EXPECT_EQ(500 * 2540 / 1440, p.pict->yExt);
    Surface s(32, 32, back);
    RECT clip = {2, 2, 10, 10};
    EXPECT_TRUE(MF_Play(s.dc, &clip, p.block));
    s.Expect({{2, 2, ink}, {1, 1, back}, {12, 4, back}});  // the last cut off by the rectangle
    EXPECT_EQ(1, GetMapMode(s.dc));  // the context as it was

    std::vector<BYTE> stream(MF_Size(p.block));
    ASSERT_TRUE(MF_MFToStream(stream.data(), p.block));
    Picture again(MF_StreamToMF(stream.data(), 0));
    ASSERT_NE(nullptr, again.pict);
    EXPECT_EQ(0, memcmp(p.pict, again.pict, offsetof(METAFILEPICT, hMF))) << "mode and extents";
    EXPECT_EQ(stream.size(), MF_Size(again.block));
}

TEST_F(Metafiles, ResourceMetafilePlays)
{
    Picture p(ResourceLoadMetafile(ResourceGetHandle(), "SAMPLE"));
    ASSERT_NE(nullptr, p.pict);
    Surface s(64, 64, RGB(255, 255, 255));
    RECT rect = {0, 0, 64, 64};
    EXPECT_TRUE(MF_Play(s.dc, &rect, p.block));
    EXPECT_GT(ReadDC(s.dc, 0, 0, 64, 64).Count(RGB(255, 0, 0)), 0);
}

TEST_F(Metafiles, MappingModesGiveDeviceSizes)
{
    Surface s(40, 40, RGB(255, 255, 255));
    std::vector<BYTE> bits = FillBits(RGB(0, 0, 255), 4, 2);
    const int himetricX = MulDiv(2540, GetDeviceCaps(s.dc, HORZRES), GetDeviceCaps(s.dc, HORZSIZE) * 100);
    struct Mode {
        LONG mode, x, y;
        SIZE expected;
    } const modes[] = {
        {MM_TEXT, 20, 10, {20, 10}},
        {MM_HIMETRIC, 2540, 2540, {himetricX, -1}},
        {MM_ISOTROPIC, 2540, 2540, {himetricX, -1}},
        {MM_ANISOTROPIC, 2540, 2540, {himetricX, -1}},
        {MM_ISOTROPIC, 0, 0, {7, 9}},  // the fall-back stands
    };
    for (const Mode &m : modes) {
        SCOPED_TRACE(m.mode);
        std::vector<BYTE> stream = NewForm(m.mode, m.x, m.y, bits);
        Picture p(MF_StreamToMF(stream.data(), 0));
        ASSERT_NE(nullptr, p.pict);
        SIZE size = {7, 9};
        LONG height = MF_GetDimensions(s.dc, p.block, &size);
        EXPECT_EQ(height, size.cy);
        EXPECT_NEAR(m.expected.cx, size.cx, 1);
        if (m.expected.cy != -1)
            EXPECT_EQ(m.expected.cy, size.cy);
        else
            EXPECT_NEAR(size.cx, size.cy, 2);
        EXPECT_EQ(MM_TEXT, GetMapMode(s.dc));
    }
    // MM_TEXT plays with the viewport origin at (left, top + height).
    std::vector<BYTE> stream = NewForm(MM_TEXT, 8, 4, bits);
    Picture p(MF_StreamToMF(stream.data(), 0));
    RECT rect = {10, 10, 30, 30};
    EXPECT_TRUE(MF_Play(s.dc, &rect, p.block));
    s.Expect({{10, 14, RGB(0, 0, 255)}, {10, 10, RGB(255, 255, 255)}});
    // MM_ANISOTROPIC plays one to one from the rectangle's corner.
    std::vector<BYTE> aniso = NewForm(MM_ANISOTROPIC, 2540, 2540, bits);
    Picture a(MF_StreamToMF(aniso.data(), 0));
    s.Fill(RGB(255, 255, 255));
    RECT corner = {20, 30, 40, 40};
    EXPECT_TRUE(MF_Play(s.dc, &corner, a.block));
    s.Expect({{23, 31, RGB(0, 0, 255)}, {24, 31, RGB(255, 255, 255)}, {20, 32, RGB(255, 255, 255)}});
    // The old form: three 16-bit values, sign-extended.
    std::vector<BYTE> old(8);
    SHORT head[4] = {MM_TEXT, -3, 5, 0};
    memcpy(old.data(), head, 8);
    old.insert(old.end(), bits.begin(), bits.end());
    Picture o(MF_StreamToMF(old.data(), 0));
    ASSERT_NE(nullptr, o.pict);
    EXPECT_EQ(-3, o.pict->xExt);
    EXPECT_EQ(5, o.pict->yExt);
}

TEST_F(Metafiles, BrokenFilesAndHandlesAreRefused)
{
    std::vector<BYTE> bits = FillBits(RGB(0, 0, 255), 4, 2);
    std::vector<BYTE> placeable = Placeable(bits, 100, 100, 1440);
    struct Bad {
        const char *what;
        std::vector<BYTE> file;
        ResultCode code;
    };
    std::vector<Bad> bad = {
        {"wrong key", placeable, RV_WrongMetafileFormat},
        {"cut in the first header", std::vector<BYTE>(placeable.begin(), placeable.begin() + 20), RV_BadMetafile},
        {"cut in the second", std::vector<BYTE>(placeable.begin(), placeable.begin() + 30), RV_BadMetafile},
        {"cut in the records", std::vector<BYTE>(placeable.begin(), placeable.end() - 2), RV_ReadFailure},
        {"inch 0", Placeable(bits, 100, 100, 0), RV_BadMetafile},
        {"record of size 0", placeable, RV_BadMetafile},
        {"huge mtSize", placeable, RV_ReadFailure},
    };
    bad[0].file[0] ^= 1;
    memset(&bad[5].file[22 + 18], 0, 4);
    const DWORD huge = 0x7FFFFFF0;
    memcpy(&bad[6].file[28], &huge, 4);
    for (const Bad &b : bad) {
        SCOPED_TRACE(b.what);
        TempFile file("broken.wmf", b.file);
        OSErrorClearError();
        EXPECT_EQ(nullptr, MF_OpenMetaFile(file.path.c_str()));
        EXPECT_EQ(b.code, OSErrorGetErrorValue());
    }
    // A stream whose first record has size 0 would never move on.
    std::vector<BYTE> stream = NewForm(MM_TEXT, 4, 4, bits);
    memset(&stream[16 + 18], 0, 4);
    OSErrorClearError();
    EXPECT_EQ(nullptr, MF_StreamToMF(stream.data(), 0));
    EXPECT_EQ(RV_BadMetafile, OSErrorGetErrorValue());

    HGLOBAL empty = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(METAFILEPICT));
    OSErrorClearError();
    EXPECT_EQ(0u, MF_Size(empty));
    EXPECT_EQ(RV_BadMetafile, OSErrorGetErrorValue());
    BYTE out[16];
    EXPECT_FALSE(MF_MFToStream(out, empty));
    Surface s(4, 4);
    RECT rect = {0, 0, 4, 4};
    EXPECT_FALSE(MF_Play(s.dc, &rect, empty));
    MF_Destroy(empty);
    OSErrorClearError();
    EXPECT_EQ(nullptr, MF_OpenMetaFile("no such picture.wmf"));
    EXPECT_EQ(RV_NoFile, OSErrorGetErrorValue());
}

// Where the first record of `function` begins in metafile bits.
size_t RecordAt(const std::vector<BYTE> &bits, WORD function)
{
    for (size_t at = 18; at + 6 <= bits.size();) {
        DWORD words;
        WORD f;
        memcpy(&words, &bits[at], 4);
        memcpy(&f, &bits[at + 4], 2);
        if (f == function || !words)
            return f == function ? at : 0;
        at += words * 2;
    }
    return 0;
}

// A record whose count claims more than it holds, or that names an object
// past the playing table, is passed over: the rest plays and the picture
// is marked bad. Each limit at, one below and one above.
TEST_F(Metafiles, RecordsThatClaimMoreThanTheyHoldArePassedOver)
{
    HDC m = CreateMetaFileA(nullptr);
    HBRUSH brush = CreateSolidBrush(RGB(0, 0, 255));
    SelectObject(m, brush);
    PatBlt(m, 0, 0, 8, 8, PATCOPY);
    POINT line[3] = {{0, 10}, {7, 10}, {7, 12}};
    Polyline(m, line, 3);
    HMETAFILE made = CloseMetaFile(m);
    DeleteObject(brush);
    const std::vector<BYTE> bits = BitsOfMetafile(made);
    size_t select = RecordAt(bits, META_SELECTOBJECT), poly = RecordAt(bits, META_POLYLINE);
    ASSERT_TRUE(select && poly);
    struct Row {
        WORD index, points;
        bool blue, line;
        ResultCode code;
    } rows[] = {
        {0, 3, true, true, RV_Success},       {0, 2, true, true, RV_Success},
        {0, 4, true, false, RV_BadMetafile},  {1, 3, false, true, RV_BadMetafile},
        {0xA000, 3, false, true, RV_BadMetafile},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(testing::Message() << "index " << row.index << ", points " << row.points);
        std::vector<BYTE> changed = bits;
        memcpy(&changed[select + 6], &row.index, 2);
        memcpy(&changed[poly + 6], &row.points, 2);
        std::vector<BYTE> stream = NewForm(MM_TEXT, 0, 0, changed);
        Picture p(MF_StreamToMF(stream.data(), 0));
        ASSERT_NE(nullptr, p.pict);
        Surface s(16, 16);
        RECT rect = {0, 0, 16, 16};
        OSErrorClearError();
        EXPECT_TRUE(MF_Play(s.dc, &rect, p.block));
        EXPECT_EQ(row.blue, s.At(2, 2) == RGB(0, 0, 255));
        EXPECT_EQ(row.line, s.At(3, 10) == RGB(0, 0, 0));
        EXPECT_EQ(row.code, OSErrorGetErrorValue());
    }
}

}  // namespace
