// Drawing surfaces and picture builders for the drawing tests.
#include "surface.h"
#include <cstdio>
#include "../support/dib_format.h"

Surface::Surface(int width, int height, COLORREF fill) : w(width), h(height)
{
    BITMAPINFO format = TopDown32Format(width, height);
    void *pixels = nullptr;
    bitmap = CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &pixels, nullptr, 0);
    bits = static_cast<DWORD *>(pixels);
    dc = CreateCompatibleDC(nullptr);
    old = SelectObject(dc, bitmap);
    Fill(fill);
}

Surface::~Surface()
{
    if (dc) {
        SelectObject(dc, old);
        DeleteDC(dc);
    }
    if (bitmap)
        DeleteObject(bitmap);
}

HBITMAP Surface::Release()
{
    SelectObject(dc, old);
    DeleteDC(dc);
    dc = nullptr;
    HBITMAP handed = bitmap;
    bitmap = nullptr;
    return handed;
}

COLORREF Surface::At(int x, int y) const
{
    GdiFlush();
    DWORD p = bits[y * w + x];
    return RGB((p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF);
}

void Surface::Expect(std::initializer_list<Pixel> pixels) const
{
    for (const Pixel &p : pixels)
        EXPECT_EQ(p.colour, At(p.x, p.y)) << "at " << p.x << "," << p.y;
}

void Surface::Set(int x, int y, COLORREF c)
{
    GdiFlush();
    bits[y * w + x] = GetRValue(c) << 16 | GetGValue(c) << 8 | GetBValue(c);
}

void Surface::Fill(COLORREF colour)
{
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            Set(x, y, colour);
}

HBITMAP MakeImage(const std::vector<std::string> &rows, const std::vector<COLORREF> &palette)
{
    Surface image(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()));
    for (int y = 0; y < image.h; ++y)
        for (int x = 0; x < image.w; ++x)
            image.Set(x, y, palette[rows[y][x] - 'a']);
    return image.Release();
}

TempFile::TempFile(const std::string &name, const std::vector<BYTE> &bytes)
    : path(ProgramFolder() + name)
{
    FILE *f = fopen(path.c_str(), "wb");
    if (f) {
        if (!bytes.empty())
            fwrite(bytes.data(), 1, bytes.size(), f);
        fclose(f);
    }
}

TempFile::~TempFile() { DeleteFileA(path.c_str()); }
