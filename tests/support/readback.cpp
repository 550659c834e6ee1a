#include "readback.h"
#include <algorithm>
#include "dib_format.h"

Readback ReadDC(HDC dc, int x, int y, int width, int height)
{
    Readback result;
    if (width <= 0 || height <= 0) return result;
    BITMAPINFO info = TopDown32Format(width, height);
    void *bits = nullptr;
    HBITMAP section = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HDC memory = CreateCompatibleDC(dc);
    if (section && memory) {
        HGDIOBJ old = SelectObject(memory, section);
        if (BitBlt(memory, 0, 0, width, height, dc, x, y, SRCCOPY)) {
            GdiFlush();
            const DWORD *pixels = static_cast<const DWORD *>(bits);
            result.width_ = width;
            result.height_ = height;
            result.pixels_.assign(pixels, pixels + size_t(width) * height);
            for (auto &p : result.pixels_) p &= 0xFFFFFF;
        }
        SelectObject(memory, old);
    }
    if (memory) DeleteDC(memory);
    if (section) DeleteObject(section);
    return result;
}

Readback Readback::Of(HWND window, bool wholeWindow)
{
    UpdateWindow(window);
    RECT area;
    if (wholeWindow) {
        GetWindowRect(window, &area);
        OffsetRect(&area, -area.left, -area.top);
    } else {
        GetClientRect(window, &area);
    }
    HDC dc = wholeWindow ? GetWindowDC(window) : GetDC(window);
    Readback result = ReadDC(dc, 0, 0, area.right, area.bottom);
    ReleaseDC(window, dc);
    return result;
}

COLORREF Readback::At(int x, int y) const
{
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return CLR_INVALID;
    DWORD p = pixels_[size_t(y) * width_ + x];
    return RGB((p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF);
}

long Readback::Differences(const Readback &other) const
{
    if (width_ != other.width_ || height_ != other.height_)
        return static_cast<long>(std::max(pixels_.size(), other.pixels_.size()));
    long count = 0;
    for (size_t i = 0; i < pixels_.size(); ++i) count += pixels_[i] != other.pixels_[i];
    return count;
}

long Readback::Count(COLORREF colour, const RECT *rect) const
{
    RECT all = {0, 0, width_, height_};
    RECT area;
    if (!IntersectRect(&area, rect ? rect : &all, &all)) return 0;
    long count = 0;
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x) count += At(x, y) == colour;
    return count;
}

bool Readback::Uniform() const
{
    return !pixels_.empty() &&
           std::all_of(pixels_.begin(), pixels_.end(), [this](DWORD p) { return p == pixels_[0]; });
}


TEXTMETRICA FontMetrics(HGDIOBJ font)
{
    HDC dc = GetDC(nullptr);
    HGDIOBJ old = SelectObject(dc, font ? font : GetStockObject(SYSTEM_FONT));
    TEXTMETRICA tm;
    GetTextMetricsA(dc, &tm);
    SelectObject(dc, old);
    ReleaseDC(nullptr, dc);
    return tm;
}

long GdiObjectsInUse()
{
    DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    if (counted)
        return static_cast<long>(counted);
    std::vector<HBITMAP> made;
    for (;;) {
        HBITMAP b = CreateBitmap(1, 1, 1, 1, nullptr);
        if (!b)
            break;
        made.push_back(b);
    }
    for (HBITMAP b : made)
        DeleteObject(b);
    return -static_cast<long>(made.size());
}
