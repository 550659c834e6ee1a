// Device-independent bitmaps: files of every depth and both headers, the
// headers refused, streams out and back, palettes, and drawing.
#include "picture_files.h"
#include "surface.h"

namespace {

using Dibs = ErrorStateTest;

struct Loaded {
    explicit Loaded(HGLOBAL b) : block(b), header(b ? static_cast<BITMAPINFOHEADER *>(GlobalLock(b)) : nullptr) {}
    ~Loaded()
    {
        if (block) {
            GlobalUnlock(block);
            DIB_Destroy(block);
        }
    }
    const BYTE *Rows() const { return reinterpret_cast<const BYTE *>(header + 1) + header->biClrUsed * 4; }
    HGLOBAL block;
    BITMAPINFOHEADER *header;
};

TEST_F(Dibs, EveryDepthFromFileAndMemory)
{
    for (WORD bits : {1, 4, 8, 24, 32}) {
        for (bool core : {false, true}) {
            SCOPED_TRACE(testing::Message() << bits << (core ? " core" : " info"));
            BmpShape shape;
            shape.bits = bits;
            shape.core = core;
            shape.height = 8;  // a core file must hold 40 bytes past its file header
            std::vector<BYTE> file = MakeBmp(shape);
            TempFile onDisk("dib_depth.bmp", file);
            Loaded fromFile(DIB_OpenDIB(onDisk.path.c_str()));
            Loaded fromMemory(DIB_FileStreamToDIB(file.data()));
            for (Loaded *l : {&fromFile, &fromMemory}) {
                ASSERT_NE(nullptr, l->header);
                EXPECT_EQ(40u, l->header->biSize);
                EXPECT_EQ(4, l->header->biWidth);
                EXPECT_EQ(8, l->header->biHeight);
                EXPECT_EQ(BmpRowBytes(shape) * 8, l->header->biSizeImage);
                EXPECT_EQ(BmpColours(shape), l->header->biClrUsed);
                EXPECT_EQ(40 + l->header->biClrUsed * 4 + l->header->biSizeImage, DIB_DIBSize(l->block));
                if (l->header->biClrUsed > 5) {  // red 5, green 250, blue 15, reserved 0
                    EXPECT_EQ(0x0005FA0Fu, reinterpret_cast<const DWORD *>(l->header + 1)[5]);
                }
                EXPECT_EQ(0, memcmp(l->Rows(), &file[file.size() - l->header->biSizeImage], l->header->biSizeImage));
            }
        }
    }
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(Dibs, OddHeadersReadAndBadOnesRefused)
{
    BmpShape shape;
    shape.clrUsed = 3;
    std::vector<BYTE> file = MakeBmp(shape);
    Loaded few(DIB_FileStreamToDIB(file.data()));
    ASSERT_NE(nullptr, few.header);
    EXPECT_EQ(3u, few.header->biClrUsed);
    EXPECT_EQ(0x20, few.Rows()[BmpRowBytes(shape) * 2]);  // row 2 starts after 3 colours
    // A zero offset reads the file's start as rows.
    shape = BmpShape();
    shape.bits = 24;
    shape.offBits = 0;
    file = MakeBmp(shape);
    Loaded zero(DIB_FileStreamToDIB(file.data()));
    ASSERT_NE(nullptr, zero.header);
    EXPECT_EQ(0, memcmp(zero.Rows(), file.data(), zero.header->biSizeImage));

    struct Bad {
        const char *what;
        DWORD offset, value;
        ResultCode code;
    } const bad[] = {
        {"biSize 64", 14, 64, RV_BadDIB},
        {"biSize 0", 14, 0, RV_BadDIB},
        {"not BM", 0, 0x4142, RV_BadDIB},
        {"depth 3", 28, 3, RV_BadDIB},
        {"compression 9", 30, 9, RV_BadDIB},
        {"colours past 2^bits", 46, 300, RV_BadDIB},
        {"image past the file", 34, 0x7FFFFFF0, RV_ReadFailure},
        {"negative width", 18, 0xFFFFFFFC, RV_BadDIB},
    };
    for (const Bad &b : bad) {
        SCOPED_TRACE(b.what);
        std::vector<BYTE> broken = MakeBmp(BmpShape());
        memcpy(&broken[b.offset], &b.value, b.offset == 0 ? 2 : 4);
        OSErrorClearError();
        EXPECT_EQ(nullptr, DIB_FileStreamToDIB(broken.data()));
        EXPECT_EQ(b.code, OSErrorGetErrorValue());
        TempFile onDisk("dib_bad.bmp", broken);
        OSErrorClearError();
        EXPECT_EQ(nullptr, DIB_OpenDIB(onDisk.path.c_str()));
        EXPECT_EQ(b.code, OSErrorGetErrorValue());
    }
    // Cut at every header boundary: 14-byte file header, 40-byte header,
    // within the colour table, within the rows.
    const std::vector<BYTE> full = MakeBmp(BmpShape());
    for (size_t cut : {0u, 13u, 14u, 53u, 54u, 60u, 1078u, 1080u}) {
        TempFile onDisk("dib_cut.bmp", std::vector<BYTE>(full.begin(), full.begin() + cut));
        OSErrorClearError();
        EXPECT_EQ(nullptr, DIB_OpenDIB(onDisk.path.c_str())) << cut;
        EXPECT_NE(RV_Success, OSErrorGetErrorValue()) << cut;
    }
    OSErrorClearError();
    EXPECT_EQ(nullptr, DIB_OpenDIB("no such picture.bmp"));
    EXPECT_EQ(RV_NoFile, OSErrorGetErrorValue());
}

TEST_F(Dibs, StreamOutAndBackAndCopies)
{
    BmpShape shape;
    shape.bits = 4;
    std::vector<BYTE> file = MakeBmp(shape);
    HGLOBAL dib = DIB_FileStreamToDIB(file.data());
    ASSERT_NE(nullptr, dib);
    std::vector<BYTE> stream(DIB_DIBSize(dib));
    EXPECT_TRUE(DIB_DIBToStream(stream.data(), dib));
    HGLOBAL back = DIB_StreamToDIB(stream.data());
    HGLOBAL copy = DIB_CopyDIB(dib);
    for (HGLOBAL other : {back, copy}) {
        ASSERT_EQ(stream.size(), DIB_DIBSize(other));
        std::vector<BYTE> again(stream.size());
        DIB_DIBToStream(again.data(), other);
        EXPECT_EQ(stream, again);
        DIB_Destroy(other);
    }
    SIZE size;
    EXPECT_TRUE(DIB_GetDimensions(dib, &size));
    EXPECT_EQ(4, size.cx);
    EXPECT_EQ(0u, DIB_DIBSize(nullptr));
    EXPECT_FALSE(DIB_GetDimensions(nullptr, &size));
    DIB_Destroy(dib);
}

// Rows 0 (bottom) to 3 of a 24-bit 2 x 4 picture in four colours.
HGLOBAL Stripes(const COLORREF (&rows)[4])
{
    BmpShape shape;
    shape.bits = 24;
    shape.width = 2;
    shape.height = 4;
    std::vector<BYTE> file = MakeBmp(shape);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 2; ++x) {
            BYTE *p = &file[54 + y * 8 + x * 3];
            p[0] = GetBValue(rows[y]);
            p[1] = GetGValue(rows[y]);
            p[2] = GetRValue(rows[y]);
        }
    return DIB_FileStreamToDIB(file.data());
}

TEST_F(Dibs, BltAndStretchDrawTheRightRows)
{
    const COLORREF rows[4] = {GetSysColor(COLOR_HIGHLIGHT), GetSysColor(COLOR_BTNSHADOW),
                              GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_BTNHIGHLIGHT)};
    HGLOBAL dib = Stripes(rows);
    ASSERT_NE(nullptr, dib);
    Surface s(4, 4, GetSysColor(COLOR_WINDOW));
    // Two rows from srcY 1 (counted from the top): the rows 2 and 1 from the bottom.
    EXPECT_TRUE(DIB_DibBlt(s.dc, 0, 0, 2, 2, dib, 0, 1, SRCCOPY));
    s.Expect({{0, 0, rows[2]}, {1, 1, rows[1]}, {0, 2, GetSysColor(COLOR_WINDOW)}});
    EXPECT_EQ(4, DIB_StretchBlt(s.dc, 0, 0, 4, 4, dib, 0, 0, 2, 4, SRCCOPY));
    s.Expect({{3, 0, rows[3]}, {3, 3, rows[0]}});
    SelectObject(s.dc, GetStockObject(BLACK_BRUSH));
    EXPECT_TRUE(DIB_DibBlt(s.dc, 0, 0, 1, 1, nullptr, 0, 0, PATCOPY));
    EXPECT_EQ(RGB(0, 0, 0), s.At(0, 0));

    HPALETTE fixed = DIB_CreateDibPalette(dib);
    ASSERT_NE(nullptr, fixed);
    PALETTEENTRY entries[256];
    EXPECT_EQ(256u, GetPaletteEntries(fixed, 0, 256, entries));
    EXPECT_EQ(32, entries[9].peRed);
    EXPECT_EQ(32, entries[9].peGreen);
    EXPECT_EQ(224, entries[191].peRed);
    EXPECT_EQ(128, entries[191].peBlue);
    HBITMAP bitmap = DIB_BitmapFromDib(dib, fixed);
    ASSERT_NE(nullptr, bitmap);
    HBITMAP copy = DIB_CopyBitmap(bitmap);
    HGLOBAL round = DIB_DibFromBitmap(copy, 0, 0, nullptr);
    Loaded l(round);
    ASSERT_NE(nullptr, l.header);
    EXPECT_EQ(24, l.header->biBitCount);
    EXPECT_EQ(0u, l.header->biCompression);
    EXPECT_EQ(GetBValue(rows[0]), l.Rows()[0]);
    DeleteObject(copy);
    DeleteObject(bitmap);
    DeleteObject(fixed);
    DIB_Destroy(dib);
}

TEST_F(Dibs, PalettesAndRecoding)
{
    BmpShape shape;
    shape.bits = 16;
    std::vector<BYTE> sixteen = MakeBmp(shape);
    HGLOBAL dib = DIB_FileStreamToDIB(sixteen.data());
    ASSERT_NE(nullptr, dib);
    EXPECT_EQ(nullptr, DIB_CreateDibPalette(dib));
    EXPECT_EQ(RV_Failure, OSErrorGetErrorValue());
    DIB_Destroy(dib);
    OSErrorClearError();

    shape.bits = 1;
    std::vector<BYTE> mono = MakeBmp(shape);
    dib = DIB_FileStreamToDIB(mono.data());
    HPALETTE two = DIB_CreateDibPalette(dib);
    ASSERT_NE(nullptr, two);
    PALETTEENTRY entry;
    GetPaletteEntries(two, 1, 1, &entry);
    EXPECT_EQ(1, entry.peRed);
    EXPECT_EQ(254, entry.peGreen);
    DeleteObject(two);
    HGLOBAL recoded = DIB_CompressDIB(dib, TRUE);  // frees the source
    Loaded l(recoded);
    ASSERT_NE(nullptr, l.header);
    EXPECT_EQ(24, l.header->biBitCount);  // a device bitmap's depth on this screen
    EXPECT_EQ(4, l.header->biWidth);
    HGLOBAL expanded = DIB_ExpandDIB(recoded, FALSE);
    ASSERT_NE(nullptr, expanded);
    EXPECT_EQ(DIB_DIBSize(recoded), DIB_DIBSize(expanded));
    DIB_Destroy(expanded);
    TempFile onDisk("dib_bm.bmp", mono);
    HBITMAP bitmap = DIB_FiletoBM(onDisk.path.c_str());
    ASSERT_NE(nullptr, bitmap);
    DeleteObject(bitmap);
}

}  // namespace
