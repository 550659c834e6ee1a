#include "clock_face.h"
#include "qziso32.h"

namespace {

// The hand's direction, clockwise from twelve, in twelve steps.
const int kHandX[12] = {0, 5, 8, 10, 8, 5, 0, -5, -8, -10, -8, -5};
const int kHandY[12] = {-10, -8, -5, 0, 5, 8, 10, 8, 5, 0, -5, -8};

}  // namespace

void DrawClockFace(HDC dc, const RECT &clock, const RECT &frame, HBITMAP picture, HBITMAP mask,
                   COLORREF key, int hour, int minute)
{
    if (clock.top < frame.top || clock.bottom > frame.bottom)
        return;
    RECT place = clock;
    GadUtilMaskBltWithFlicker(dc, &place, picture, mask, key);
    DrawClockHands(dc, clock, hour, minute);
}

void DrawClockHands(HDC dc, const RECT &clock, int hour, int minute)
{
    LONG cx = clock.left + 8, cy = clock.top + 8;
    int hourStep = (minute > 30 ? hour + 1 : hour) % 12;
    int minuteStep = (minute / 5) % 12;
    HGDIOBJ oldPen = SelectObject(dc, GetStockObject(BLACK_PEN));
    MoveToEx(dc, cx, cy, nullptr);
    LineTo(dc, cx + 17 * kHandX[hourStep] / 30, cy + 17 * kHandY[hourStep] / 30);
    MoveToEx(dc, cx, cy, nullptr);
    LineTo(dc, cx + 17 * kHandX[minuteStep] / 22, cy + 17 * kHandY[minuteStep] / 22);
    SelectObject(dc, oldPen);
}
