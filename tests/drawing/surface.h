// A 32-bit DIB section selected in a memory context, to draw on and read
// back pixel by pixel; and small picture builders the drawing tests share.
#pragma once
#include <initializer_list>
#include <string>
#include <vector>
#include "qz_test.h"

struct Surface {
    Surface(int width, int height, COLORREF fill = RGB(255, 255, 255));
    ~Surface();
    Surface(const Surface &) = delete;
    Surface &operator=(const Surface &) = delete;
    COLORREF At(int x, int y) const;
    // The colour each point must have, checked one by one and named by the
    // point on a difference.
    struct Pixel {
        int x, y;
        COLORREF colour;
    };
    void Expect(std::initializer_list<Pixel> pixels) const;
    void Set(int x, int y, COLORREF colour);
    void Fill(COLORREF colour);
    // Hands the bitmap over (deselected); the surface keeps no context then.
    HBITMAP Release();

    HBITMAP bitmap = nullptr;
    HDC dc = nullptr;
    HGDIOBJ old = nullptr;
    DWORD *bits = nullptr;
    int w, h;
};

// A 32-bit DIB section whose rows are given as text, one character a pixel,
// coloured by `palette` ('a' the first entry, 'b' the second, ...).
HBITMAP MakeImage(const std::vector<std::string> &rows, const std::vector<COLORREF> &palette);

// A file in the test program's folder; removed on destruction.
struct TempFile {
    TempFile(const std::string &name, const std::vector<BYTE> &bytes);
    ~TempFile();
    std::string path;
};
