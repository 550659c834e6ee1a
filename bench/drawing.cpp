// The drawing toolkit against its platform peers, measured in the same run:
// a transparent blit, a region from a picture's pixels, and loading a large
// bitmap file. Ratios above 1 mean the library is faster.
#include <windows.h>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>
#include "bench_timing.h"
#include "../tests/support/dib_format.h"
#include "qziso32.h"

namespace {

void Report(const char *what, double ours, double theirs, unsigned count, const char *goal)
{
    std::printf("%-48s ours %10.1f us  platform %10.1f us  ratio %.2fx  (goal %s)\n", what,
                ours * 1e6 / count, theirs * 1e6 / count, theirs / ours, goal);
}

struct Dib {
    Dib(int w, int h) : w(w), h(h)
    {
        BITMAPINFO f = TopDown32Format(w, h);
        void *p;
        bitmap = CreateDIBSection(nullptr, &f, DIB_RGB_COLORS, &p, nullptr, 0);
        bits = static_cast<DWORD *>(p);
        dc = CreateCompatibleDC(nullptr);
        old = SelectObject(dc, bitmap);
    }
    ~Dib()
    {
        SelectObject(dc, old);
        DeleteDC(dc);
        DeleteObject(bitmap);
    }
    int w, h;
    HBITMAP bitmap;
    HDC dc;
    HGDIOBJ old;
    DWORD *bits;
};

// A disc of ink on a background, with a few holes: runs of both colours.
void Picture(Dib &d, DWORD ink, DWORD background)
{
    for (int y = 0; y < d.h; ++y)
        for (int x = 0; x < d.w; ++x) {
            int dx = x - d.w / 2, dy = y - d.h / 2;
            bool in = dx * dx + dy * dy < d.w * d.w / 5 && (x / 16 + y / 16) % 5;
            d.bits[y * d.w + x] = in ? ink : background;
        }
}

HRGN PlatformRegion(HBITMAP bitmap, int w, int h, DWORD ink)
{
    std::vector<DWORD> pixels(static_cast<size_t>(w) * h);
    BITMAPINFO f = TopDown32Format(w, h);
    HDC screen = GetDC(nullptr);
    GetDIBits(screen, bitmap, 0, h, pixels.data(), &f, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    std::vector<BYTE> data(sizeof(RGNDATAHEADER));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w;) {
            if ((pixels[y * w + x] & 0xFFFFFF) != ink) {
                ++x;
                continue;
            }
            int start = x;
            while (x < w && (pixels[y * w + x] & 0xFFFFFF) == ink)
                ++x;
            RECT r = {start, y, x, y + 1};
            data.insert(data.end(), reinterpret_cast<BYTE *>(&r), reinterpret_cast<BYTE *>(&r + 1));
        }
    RGNDATA *rgn = reinterpret_cast<RGNDATA *>(data.data());
    rgn->rdh.dwSize = sizeof rgn->rdh;
    rgn->rdh.iType = RDH_RECTANGLES;
    rgn->rdh.nCount = static_cast<DWORD>((data.size() - sizeof(RGNDATAHEADER)) / sizeof(RECT));
    rgn->rdh.nRgnSize = 0;
    SetRect(&rgn->rdh.rcBound, 0, 0, w, h);
    return ExtCreateRegion(nullptr, static_cast<DWORD>(data.size()), rgn);
}

std::vector<BYTE> LargeBitmapFile(int w, int h)
{
    DWORD row = ((24 * w + 31) / 32) * 4, image = row * h;
    std::vector<BYTE> f(54 + image);
    f[0] = 'B';
    f[1] = 'M';
    DWORD fileSize = static_cast<DWORD>(f.size()), off = 54;
    memcpy(&f[2], &fileSize, 4);
    memcpy(&f[10], &off, 4);
    BITMAPINFOHEADER h40 = {};
    h40.biSize = 40;
    h40.biWidth = w;
    h40.biHeight = h;
    h40.biPlanes = 1;
    h40.biBitCount = 24;
    h40.biSizeImage = image;
    memcpy(&f[14], &h40, 40);
    for (DWORD i = 0; i < image; ++i)
        f[54 + i] = static_cast<BYTE>(i * 7 + i / row);
    return f;
}

}  // namespace

int main()
{
    typedef BOOL(WINAPI * TransparentBltFn)(HDC, int, int, int, int, HDC, int, int, int, int, UINT);
    TransparentBltFn transparentBlt =
        reinterpret_cast<TransparentBltFn>(GetProcAddress(GetModuleHandleA("gdi32.dll"), "GdiTransparentBlt"));
    const DWORD ink = 0x3366CC, background = 0xF0F0F0;
    const COLORREF inkRef = RGB(0x33, 0x66, 0xCC), backRef = RGB(0xF0, 0xF0, 0xF0);

    {
        Dib source(64, 64), ours(64, 64), theirs(64, 64);
        Picture(source, ink, background);
        for (Dib *d : {&ours, &theirs})
            for (int i = 0; i < 64 * 64; ++i)
                d->bits[i] = 0x102030 + i;
        UIMaskBlt(ours.dc, 0, 0, 64, 64, source.dc, 0, 0, backRef);
        transparentBlt(theirs.dc, 0, 0, 64, 64, source.dc, 0, 0, 64, 64, backRef);
        GdiFlush();
        bool same = memcmp(ours.bits, theirs.bits, 64 * 64 * 4) == 0;
        const unsigned count = 2000;
        double mine = Time([&] {
            for (unsigned i = 0; i < count; ++i)
                UIMaskBlt(ours.dc, 0, 0, 64, 64, source.dc, 0, 0, backRef);
            GdiFlush();
        });
        double platform = Time([&] {
            for (unsigned i = 0; i < count; ++i)
                transparentBlt(theirs.dc, 0, 0, 64, 64, source.dc, 0, 0, 64, 64, backRef);
            GdiFlush();
        });
        Report(same ? "UIMaskBlt 64x64 (same pixels)" : "UIMaskBlt 64x64 (PIXELS DIFFER)", mine, platform,
               count, ">= 0.83x");
    }
    {
        Dib picture(512, 512);
        Picture(picture, ink, background);
        HRGN a = UICreateBitmapRegion(picture.bitmap, inkRef, 0);
        HRGN b = PlatformRegion(picture.bitmap, 512, 512, ink);
        bool same = a && b && EqualRgn(a, b);
        DeleteObject(a);
        DeleteObject(b);
        const unsigned count = 20;
        double mine = Time([&] {
            for (unsigned i = 0; i < count; ++i)
                DeleteObject(UICreateBitmapRegion(picture.bitmap, inkRef, 0));
        });
        double platform = Time([&] {
            for (unsigned i = 0; i < count; ++i)
                DeleteObject(PlatformRegion(picture.bitmap, 512, 512, ink));
        });
        Report(same ? "UICreateBitmapRegion 512x512 (equal region)" : "UICreateBitmapRegion 512x512 (REGIONS DIFFER)",
               mine, platform, count, ">= 1x");
    }
    {
        char folder[MAX_PATH];
        GetTempPathA(sizeof folder, folder);
        std::string path = std::string(folder) + "qz_bench_4096.bmp";
        std::vector<BYTE> file = LargeBitmapFile(4096, 4096);
        FILE *f = std::fopen(path.c_str(), "wb");
        std::fwrite(file.data(), 1, file.size(), f);
        std::fclose(f);
        file.clear();
        file.shrink_to_fit();
        const unsigned count = 2;
        double mine = Time([&] {
            for (unsigned i = 0; i < count; ++i)
                DIB_Destroy(DIB_OpenDIB(path.c_str()));
        });
        double platform = Time([&] {
            for (unsigned i = 0; i < count; ++i)
                DeleteObject(LoadImageA(nullptr, path.c_str(), IMAGE_BITMAP, 0, 0,
                                        LR_LOADFROMFILE | LR_CREATEDIBSECTION));
        });
        Report("DIB_OpenDIB 4096x4096 24-bit file", mine, platform, count, ">= 1x");
        DeleteFileA(path.c_str());
    }
    return 0;
}
