// Bitmap helpers: a copy and'ed with a colour, one colour swapped for
// another, tiling, and the half-intensity colour of a colour.
#include "draw_helpers.h"

extern "C" HBITMAP WINAPI UICreateDitheredBitmap(HDC hdc, HBITMAP image, COLORREF colour)
{
    SIZE size;
    if (!MeasureBitmap(image, &size))
        return nullptr;
    HBITMAP made = CreateCompatibleBitmap(hdc, size.cx, size.cy);
    if (!made) {
        OSErrorSetErrorInfo(RV_GDIError);
        return nullptr;
    }
    bool drawn = false;
    HBRUSH brush = nullptr;
    HGDIOBJ oldBrush = nullptr;
    SelectedDC target, source;
    target.dc = CreateCompatibleDC(hdc);
    source.dc = CreateCompatibleDC(hdc);
    if (!target.dc || !source.dc) {
        OSErrorSetErrorInfo(RV_UserError);
        goto unwind;
    }
    brush = CreateSolidBrush(colour);
    target.old = brush ? SelectObject(target.dc, made) : nullptr;
    oldBrush = target.old ? SelectObject(target.dc, brush) : nullptr;
    if (!oldBrush) {
        OSErrorSetErrorInfo(RV_GDIError);
        goto unwind;
    }
    source.old = SelectObject(source.dc, image);
    drawn = BitBlt(target.dc, 0, 0, size.cx, size.cy, source.dc, 0, 0, MERGECOPY);
    if (!drawn)
        OSErrorSetErrorInfo(RV_GDIError);
unwind:
    if (oldBrush)
        SelectObject(target.dc, oldBrush);
    if (brush)
        DeleteObject(brush);
    if (source.dc)
        ReleaseSelectedDC(&source);
    if (target.dc)
        ReleaseSelectedDC(&target);
    if (drawn)
        return made;
    DeleteObject(made);
    return nullptr;
}

extern "C" HBITMAP WINAPI UIChangeBitmapColor(HBITMAP image, COLORREF from, COLORREF to)
{
    BITMAP info;
    if (!image || !GetObjectA(image, sizeof info, &info)) {
        OSErrorSetErrorInfo(RV_GDIError);
        return nullptr;
    }
    info.bmBits = nullptr;
    HBITMAP made = CreateBitmapIndirect(&info);
    if (!made) {
        OSErrorSetErrorInfo(RV_GDIError);
        return nullptr;
    }
    HBRUSH brush = CreateSolidBrush(to);
    SelectedDC canvas;
    bool drawn = false;
    if (!brush) {
        OSErrorSetErrorInfo(RV_GDIError);
    } else if (SelectIntoNewDC(nullptr, made, &canvas)) {
        RECT whole = {0, 0, info.bmWidth, info.bmHeight};
        drawn = FillRect(canvas.dc, &whole, brush) &&
                UIMaskBltWithFlicker(canvas.dc, &whole, image, nullptr, from);
        ReleaseSelectedDC(&canvas);
    }
    if (brush)
        DeleteObject(brush);
    if (drawn)
        return made;
    DeleteObject(made);
    return nullptr;
}

extern "C" DWORD WINAPI UITileBitmap(HDC hdc, RECT *rect, HBITMAP image)
{
    SIZE size;
    if (!hdc || !rect) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    if (!MeasureBitmap(image, &size))
        return 0;
    // An image of no width or height would step the tiling nowhere.
    if (size.cx < 1 || size.cy < 1) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    SelectedDC tile;
    if (!SelectIntoNewDC(hdc, image, &tile))
        return 0;
    DWORD result = 1;
    for (LONG y = rect->top; y < rect->bottom && result; y += size.cy) {
        for (LONG x = rect->left; x < rect->right; x += size.cx) {
            LONG w = size.cx < rect->right - x ? size.cx : rect->right - x;
            LONG h = size.cy < rect->bottom - y ? size.cy : rect->bottom - y;
            if (!BitBlt(hdc, x, y, w, h, tile.dc, 0, 0, SRCCOPY)) {
                OSErrorSetErrorInfo(RV_GDIError);
                result = 0;
                break;
            }
        }
    }
    ReleaseSelectedDC(&tile);
    return result;
}

extern "C" COLORREF WINAPI UICalcHalfIntensity(COLORREF colour)
{
    DWORD channels[3] = {GetRValue(colour), GetGValue(colour), GetBValue(colour)};
    bool dark = channels[0] < 129 && channels[1] < 129 && channels[2] < 129;
    for (DWORD &c : channels) {
        if (dark)
            c = c == 0 ? 0 : ((c & 1) ? 2 * c : 2 * c - 1) & 0xFF;
        else
            c = c / 2 + (c & 1);
    }
    return RGB(channels[0], channels[1], channels[2]);
}
