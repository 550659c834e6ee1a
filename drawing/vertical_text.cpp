// Text running up or down a strip. Each glyph is turned pixel by pixel once
// per font and character and kept in a strip bitmap of a ten-font cache;
// after that a character is one blit.
#include <cstring>
#include "draw_helpers.h"

namespace {

const int kSlots = 10;
const DWORD kCentreAcross = 1, kToRight = 2, kCentreAlong = 4, kToBottom = 8, kNoClip = 256;
const int kStockFontProbe = 12;

struct Glyph {
    BYTE width;  // the character's width less tmOverhang
    BYTE built;
    LONG y;      // first row of its band in the strip
};

// One font: its glyphs twice each, turned to run downwards in the left
// half and upwards in the right half, black on white.
struct VertSlot {
    HFONT font;
    HBITMAP strip;
    LONG height;
    LONG nextY;
    Glyph glyph[256];
};

VertSlot *g_cache = nullptr;
LONG g_users = 0;

// The slot of `font`, or the first free one made ready for it; null when
// all are taken by other fonts or its strip cannot be made.
VertSlot *SlotFor(HFONT font, HDC probe)
{
    VertSlot *free = nullptr;
    for (int i = 0; i < kSlots; ++i) {
        if (g_cache[i].font == font)
            return &g_cache[i];
        if (!g_cache[i].font && !free)
            free = &g_cache[i];
    }
    if (!free)
        return nullptr;
    HGDIOBJ old = SelectObject(probe, font);
    TEXTMETRICA metrics;
    INT widths[256];
    bool measured = old && GetTextMetricsA(probe, &metrics) && GetCharWidthA(probe, 0, 255, widths);
    if (old)
        SelectObject(probe, old);
    if (!measured) {
        OSErrorSetErrorInfo(RV_GDIError);
        return nullptr;
    }
    memset(free, 0, sizeof *free);
    LONG total = 0;
    for (int code = metrics.tmFirstChar; code <= metrics.tmLastChar && code < 256; ++code) {
        free->glyph[code].width = static_cast<BYTE>(widths[code] - metrics.tmOverhang);
        total += free->glyph[code].width;
    }
    free->height = metrics.tmHeight;
    free->strip = CreateBitmap(2 * metrics.tmHeight, total, 1, 1, nullptr);
    if (!free->strip) {
        OSErrorSetErrorInfo(RV_GDIError);
        memset(free, 0, sizeof *free);
        return nullptr;
    }
    free->font = font;
    return free;
}

// Draws the character on its own and turns each black pixel into the two
// halves of its band in the strip (selected in `stripDC`).
bool BuildGlyph(VertSlot *slot, unsigned char code, HDC stripDC)
{
    Glyph &glyph = slot->glyph[code];
    LONG width = glyph.width, height = slot->height;
    HBITMAP face = CreateBitmap(width ? width : 1, height, 1, 1, nullptr);
    SelectedDC faceDC;
    if (!face || !SelectIntoNewDC(stripDC, face, &faceDC)) {
        OSErrorSetErrorInfo(RV_GDIError);
        if (face)
            DeleteObject(face);
        return false;
    }
    HGDIOBJ oldFont = SelectObject(faceDC.dc, slot->font);
    glyph.y = slot->nextY;
    char text = static_cast<char>(code);
    bool drawn = PatBlt(faceDC.dc, 0, 0, width, height, WHITENESS) &&
                 PatBlt(stripDC, 0, glyph.y, 2 * height, width, WHITENESS) &&
                 TextOutA(faceDC.dc, 0, 0, &text, 1);
    if (drawn) {
        const COLORREF black = RGB(0, 0, 0);
        for (LONG r = 0; r < height; ++r) {
            for (LONG c = 0; c < width; ++c) {
                if (GetPixel(faceDC.dc, c, r) != black)
                    continue;
                SetPixel(stripDC, height - 1 - r, glyph.y + c, black);
                SetPixel(stripDC, r + height, glyph.y + width - 1 - c, black);
            }
        }
        glyph.built = 1;
        slot->nextY += width;
    } else {
        OSErrorSetErrorInfo(RV_GDIError);
    }
    if (oldFont)
        SelectObject(faceDC.dc, oldFont);
    ReleaseSelectedDC(&faceDC);
    DeleteObject(face);
    return drawn;
}

void DeleteSlot(VertSlot *slot)
{
    if (slot->strip)
        DeleteObject(slot->strip);
    memset(slot, 0, sizeof *slot);
}

}  // namespace

extern "C" LONG WINAPI UIVertDrawTextInit(void)
{
    if (!g_cache) {
        g_cache = static_cast<VertSlot *>(LocalAlloc(LPTR, kSlots * sizeof(VertSlot)));
        if (!g_cache) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(kSlots * sizeof(VertSlot)));
            return 0;
        }
    }
    return ++g_users;
}

extern "C" void WINAPI UICleanUpVertDrawText(void)
{
    if (g_users == 1 && g_cache) {
        for (int i = 0; i < kSlots; ++i)
            DeleteSlot(&g_cache[i]);
        LocalFree(g_cache);
        g_cache = nullptr;
    }
    if (g_users > 0)
        --g_users;
}

extern "C" BOOL WINAPI UITrashVertFont(HFONT font)
{
    for (int i = 0; g_cache && font && i < kSlots; ++i) {
        if (g_cache[i].font == font) {
            DeleteSlot(&g_cache[i]);
            return TRUE;
        }
    }
    return FALSE;
}

extern "C" BOOL WINAPI UIVertDrawText(HDC hdc, const char *text, int length, RECT *rect,
                                      DWORD flags, int direction)
{
    if (!hdc || !text || !rect) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return FALSE;
    }
    HDC memory = CreateCompatibleDC(hdc);
    if (!memory) {
        OSErrorSetErrorInfo(RV_GDIError);
        return FALSE;
    }
    if (length == -1)
        length = static_cast<int>(strlen(text));
    SIZE extent;
    if (!GetTextExtentPointA(hdc, text, length, &extent)) {
        OSErrorSetErrorInfo(RV_GDIError);
        DeleteDC(memory);
        return FALSE;
    }
    RECT strip = *rect;
    LONG along = extent.cx, thickness = extent.cy;
    if (!(flags & kNoClip)) {
        if (along > strip.bottom - strip.top)
            along = strip.bottom - strip.top;
        if (thickness > strip.right - strip.left)
            thickness = strip.right - strip.left;
    }
    HFONT font = static_cast<HFONT>(SelectObject(hdc, GetStockObject(kStockFontProbe)));
    SelectObject(hdc, font);
    DWORD rop = GetTextColor(hdc) == RGB(255, 255, 255) ? SRCPAINT : SRCAND;
    VertSlot *slot = g_cache && direction >= 0 && direction < 2 ? SlotFor(font, memory) : nullptr;
    if (slot) {
        if (flags & kCentreAcross) {
            strip.left += (strip.right - strip.left - thickness) / 2;
            strip.right = strip.left + thickness;
        } else if (flags & kToRight) {
            strip.left = strip.right - thickness;
        }
        if (flags & kCentreAlong) {
            strip.top += (strip.bottom - strip.top - along) / 2;
            strip.bottom = strip.top + along;
        } else if (flags & kToBottom) {
            strip.top = strip.bottom - along;
        }
        HGDIOBJ old = SelectObject(memory, slot->strip);
        // The text's NUL, not the length, ends the drawing.
        for (const unsigned char *at = reinterpret_cast<const unsigned char *>(text);
             old && *at && strip.top < strip.bottom; ++at) {
            Glyph &glyph = slot->glyph[*at];
            if (!glyph.built && !BuildGlyph(slot, *at, memory))
                break;
            LONG height = glyph.width < strip.bottom - strip.top ? glyph.width : strip.bottom - strip.top;
            if (direction == 1) {
                BitBlt(hdc, strip.left, strip.top, slot->height, height, memory, 0, glyph.y, rop);
                strip.top += height;
            } else {
                BitBlt(hdc, strip.left, strip.bottom - height, slot->height, height, memory,
                       slot->height, glyph.y, rop);
                strip.bottom -= height;
            }
        }
        if (old)
            SelectObject(memory, old);
    }
    DeleteDC(memory);
    return TRUE;
}
