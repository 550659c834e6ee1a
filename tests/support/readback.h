// A window painted and read back through its window DC into a 32-bit
// top-down DIB section: colours at points, counts, and comparisons. Used
// by the tests and by the demo's gallery.
#pragma once
#include <windows.h>
#include <vector>

// Copies `width` x `height` from `dc` at (x, y) into a Readback.
class Readback;
Readback ReadDC(HDC dc, int x, int y, int width, int height);

class Readback {
public:
    // Paints `window` (UpdateWindow) and copies its client area, or the
    // whole window with `wholeWindow`.
    static Readback Of(HWND window, bool wholeWindow = false);

    int Width() const { return width_; }
    int Height() const { return height_; }
    bool Valid() const { return width_ > 0 && height_ > 0; }
    // The colour at (x, y) of the area read, as a COLORREF; CLR_INVALID
    // outside it.
    COLORREF At(int x, int y) const;
    // How many pixels differ from `other` (all of them if the sizes differ).
    long Differences(const Readback &other) const;
    // How many pixels of `rect` (all if null) have `colour`.
    long Count(COLORREF colour, const RECT *rect = nullptr) const;
    // True when every pixel has the colour of the first.
    bool Uniform() const;
    const std::vector<DWORD> &Pixels() const { return pixels_; }  // 0x00RRGGBB, top-down

private:
    friend Readback ReadDC(HDC dc, int x, int y, int width, int height);
    int width_ = 0;
    int height_ = 0;
    std::vector<DWORD> pixels_;
};



// The metrics of `font` (the system font when null) on the screen.
TEXTMETRICA FontMetrics(HGDIOBJ font);

// How many GDI objects the process holds: GetGuiResources where the system
// counts them; else minus the number of 1 x 1 bitmaps that can still be
// made, so that a leak raises the figure either way.
long GdiObjectsInUse();
