// One-pixel frames: a framed and filled rectangle, the sunken trough, and
// the 3-D frame painted as opaque empty text.
#include "draw_helpers.h"

namespace {

struct Line {
    bool highlight;
    int x, y, w, h;  // relative: see UITroughRect
};

}  // namespace

extern "C" BOOL WINAPI UIFrameAndFillRect(HDC hdc, RECT *rect, HBRUSH fill, HBRUSH topLeft,
                                          HBRUSH bottomRight)
{
    if (!hdc || !rect) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return FALSE;
    }
    LONG w = rect->right - rect->left, h = rect->bottom - rect->top;
    HGDIOBJ earlier = SelectObject(hdc, topLeft);
    if (!earlier) {
        OSErrorSetErrorInfo(RV_GDIError);
        return FALSE;
    }
    PatBlt(hdc, rect->left, rect->top, w, 1, PATCOPY);
    PatBlt(hdc, rect->left, rect->top, 1, h, PATCOPY);
    // A failing second selection gives 0 with nothing recorded.
    BOOL result = SelectObject(hdc, bottomRight) != nullptr;
    if (result) {
        PatBlt(hdc, rect->left, rect->bottom - 1, w, 1, PATCOPY);
        PatBlt(hdc, rect->right - 1, rect->top, 1, h, PATCOPY);
        if (fill) {
            RECT inside = {rect->left + 1, rect->top + 1, rect->right - 1, rect->bottom - 1};
            FillRect(hdc, &inside, fill);
        }
    }
    SelectObject(hdc, earlier);
    return result;
}

extern "C" DWORD WINAPI UITroughRect(HDC hdc, RECT *rect)
{
    if (!hdc || !rect) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    LONG l = rect->left, t = rect->top, r = rect->right, b = rect->bottom;
    LONG w = r - l, h = b - t;
    const Line lines[] = {
        {false, l, t, w, 1},          {false, l, b - 2, w, 1},      {true, l, b - 1, w, 1},
        {false, l, t, 1, h - 2},      {false, r - 2, t, 1, h - 2},  {true, l + 1, t + 1, w - 1, 1},
        {true, l + 1, t + 1, 1, h - 1}, {true, r - 1, t + 1, 1, h - 1},
    };
    HBRUSH shadow = CreateSolidBrush(GetSysColor(COLOR_BTNSHADOW));
    HBRUSH highlight = CreateSolidBrush(GetSysColor(COLOR_BTNHIGHLIGHT));
    HGDIOBJ earlier = nullptr;
    DWORD result = 0;
    if (shadow && highlight && (earlier = SelectObject(hdc, shadow)) != nullptr) {
        result = 1;
        for (const Line &line : lines) {
            SelectObject(hdc, line.highlight ? highlight : shadow);
            if (!PatBlt(hdc, line.x, line.y, line.w, line.h, PATCOPY))
                result = 0;
        }
        SelectObject(hdc, earlier);
    }
    if (!result)
        OSErrorSetErrorInfo(RV_GDIError);
    if (shadow)
        DeleteObject(shadow);
    if (highlight)
        DeleteObject(highlight);
    return result;
}

extern "C" COLORREF WINAPI Draw3DFrame(HDC hdc, RECT *rect, COLORREF topLeft, COLORREF bottomRight,
                                       LONG flags)
{
    const LONG kTop = 4, kLeft = 1, kRight = 2, kBottom = 8, kShortBottom = 0x1000;
    if (!hdc || !rect) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return CLR_INVALID;
    }
    COLORREF earlier = SetBkColor(hdc, topLeft);
    RECT edge;
    if (flags & kTop) {
        edge = *rect;
        edge.bottom = edge.top + 1;
        ExtTextOutA(hdc, 0, 0, ETO_OPAQUE, &edge, nullptr, 0, nullptr);
    }
    if (flags & kLeft) {
        edge = *rect;
        edge.right = edge.left + 1;
        ExtTextOutA(hdc, 0, 0, ETO_OPAQUE, &edge, nullptr, 0, nullptr);
    }
    SetBkColor(hdc, bottomRight);
    if (flags & kRight) {
        edge = *rect;
        edge.left = edge.right - 1;
        ExtTextOutA(hdc, 0, 0, ETO_OPAQUE, &edge, nullptr, 0, nullptr);
    }
    if (flags & kBottom) {
        edge = *rect;
        edge.top = edge.bottom - 1;
        if (flags & kShortBottom)
            edge.right -= 2;
        ExtTextOutA(hdc, 0, 0, ETO_OPAQUE, &edge, nullptr, 0, nullptr);
    }
    return SetBkColor(hdc, earlier);
}
