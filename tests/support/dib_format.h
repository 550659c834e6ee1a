// The one pixel format the tests, the gallery and the benchmarks draw into
// and read back from: 32 bits per pixel, top-down, no compression.
#pragma once
#include <windows.h>

inline BITMAPINFO TopDown32Format(int width, int height)
{
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof format.bmiHeader;
    format.bmiHeader.biWidth = width;
    format.bmiHeader.biHeight = -height;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    format.bmiHeader.biCompression = BI_RGB;
    return format;
}
