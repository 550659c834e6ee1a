// The small clock of the time scales: the dial picture with an hour and a
// minute hand, shared by the TimeSetter and the TimeTracker.
#pragma once
#include <windows.h>

// Draws the 17 x 17 dial at clock (keyed on key) and its hands for the time
// hour:minute; nothing when the clock sticks out of frame vertically. The
// hour hand points at the next hour past the half hour; the minute hand
// moves in five-minute steps.
void DrawClockFace(HDC dc, const RECT &clock, const RECT &frame, HBITMAP picture, HBITMAP mask,
                   COLORREF key, int hour, int minute);

// The two hands alone, for a caller that has put the dial there itself.
void DrawClockHands(HDC dc, const RECT &clock, int hour, int minute);
