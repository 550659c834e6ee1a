// TimeTracker drag painting: after every step of a scripted drag the window
// shows exactly what a full repaint shows, for each kind of drag, with busy
// lanes whose clash colour flips on the way.
#include "qz_test.h"
#include "window_harness.h"
#include "failure_seam.h"
#include <vector>

namespace {

const int ID = 100;

DateTimeValue At(int hour, int minute)
{
    DateTimeValue v = MakeDate(2026, 3, 11);
    OSAdjustDateTime(&v, 0, 0, 0, hour, minute, 0, 0);
    return v;
}

LONG Y(HWND g, const DateTimeValue &t)
{
    return static_cast<LONG>(SendMessageA(g, TTM_TIMETOY, 0, reinterpret_cast<LPARAM>(&t)));
}

// A visible tracker in `font` (none: its own) over `hours` from `view`, the
// appointment from `start` to `end`; `x` is where the labels are gripped.
HWND Tracker(RecordingParent &parent, HFONT font, DWORD hours, DateTimeValue view, DateTimeValue start,
             DateTimeValue end, int *x)
{
    HWND g = parent.CreateChild("TimeTracker", ID, WS_VISIBLE, 10, 10, 100, 340);
    EXPECT_TRUE(g != nullptr);
    if (font)
        SendMessageA(g, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    SendMessageA(g, TTM_SETHOURSINVIEW, hours, 0);
    SendMessageA(g, TTM_SETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view));
    SendMessageA(g, TTM_SETSTART, 0, reinterpret_cast<LPARAM>(&start));
    SendMessageA(g, TTM_SETEND, 0, reinterpret_cast<LPARAM>(&end));
    RECT client;
    GetClientRect(g, &client);
    *x = client.right / 2 + 4;
    return g;
}

class TimeTrackerDragPaint : public GadgetTest {};

TEST_F(TimeTrackerDragPaint, EveryStepShowsWhatAFullRepaintShows)
{
    // Where the drag takes hold (the y of a time, offset in pixels), and the
    // times the pointer then visits: small and large steps, back and forth,
    // across the other end and out past the scale.
    struct Script {
        const char *what;
        DateTimeValue grip;
        int gripOffset;
        DWORD hours;
        std::vector<DateTimeValue> visits;
        int fontHeight = 0;  // a TrueType face of this height by WM_SETFONT; 0 keeps the gadget's
    } scripts[] = {
        {"end label", At(11, 0), 0, 8, {At(11, 5), At(11, 40), At(13, 0), At(12, 55), At(10, 20), At(9, 0),
                                        At(10, 0), At(14, 30), At(14, 30), At(11, 10)}},
        {"end clock", At(11, 0), 14, 24, {At(12, 0), At(20, 0), At(11, 30), At(3, 0), At(11, 0)}},
        {"start label", At(10, 0), 0, 8, {At(9, 35), At(8, 30), At(10, 50), At(11, 45), At(9, 10)}},
        {"duration", At(10, 30), 0, 8, {At(10, 45), At(12, 0), At(9, 15), At(10, 35)}},
        {"end label, 1 hour", At(11, 0), 0, 1, {At(11, 20), At(10, 55), At(11, 25), At(10, 40), At(11, 5)}},
        {"end label, large face", At(11, 0), 0, 8, {At(11, 35), At(12, 50), At(10, 5), At(11, 0)}, -19},
    };
    for (const Script &s : scripts) {
        RecordingParent parent(320, 420);
        HFONT font = s.fontHeight ? CreateFontA(s.fontHeight, 0, 0, 0, FW_NORMAL, 0, 0, 0, ANSI_CHARSET, 0, 0, 0,
                                                0, "Times New Roman")
                                  : nullptr;
        int x;
        HWND g = Tracker(parent, font, s.hours, At(s.hours == 24 ? 0 : s.hours == 1 ? 10 : 7, 30 * (s.hours == 1)),
                         At(10, 0), At(11, 0), &x);
        const BusyInterval busy[] = {{At(12, 0), 45, 1, 0, 0}, {At(12, 30), 60, 2, 0, 0}, {At(8, 0), 30, 3, 0, 0}};
        SendMessageA(g, TTM_SETBUSYLIST, 3, reinterpret_cast<LPARAM>(busy));
        InvalidateRect(g, nullptr, TRUE);
        Readback::Of(g);

        SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, Y(g, s.grip) + s.gripOffset));
        int step = 0;
        for (const DateTimeValue &t : s.visits) {
            SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x, Y(g, t) + s.gripOffset));
            Readback shown = Readback::Of(g);
            // The same fine step again renders the strip and the frame anew.
            SendMessageA(g, TTM_SETFINESTEP, SendMessageA(g, TTM_GETFINESTEP, 0, 0), 0);
            InvalidateRect(g, nullptr, TRUE);
            Readback full = Readback::Of(g);
            ASSERT_TRUE(full.Valid());
            EXPECT_EQ(0, shown.Differences(full)) << s.what << ", step " << step << " to " << ToText(t);
            ++step;
        }
        SendMessageA(g, WM_LBUTTONUP, 0, MAKELPARAM(x, 0));
        EXPECT_EQ(RV_Success, OSErrorGetErrorValue()) << s.what;
        DestroyWindow(g);
        if (font)
            DeleteObject(font);
    }
}

// A drag step refused its n-th GDI object, once right after the surfaces
// were made anew (the scale in the work colours is made then) and once
// after a full paint (the clip of the changed parts): the window still
// shows what a full repaint shows, and no object is kept.
TEST_F(TimeTrackerDragPaint, StepRefusedAnObjectStillShowsTheFullRepaint)
{
    RecordingParent parent(320, 420);
    long before = 0;
    for (unsigned n = 0, points = 1; n <= points; ++n) {
        if (n == 1)
            before = GdiObjectsInUse();
        int x;
        HWND g = Tracker(parent, nullptr, 8, At(7, 0), At(10, 0), At(11, 0), &x);
        Readback::Of(g);
        SendMessageA(g, WM_SETFONT, SendMessageA(g, WM_GETFONT, 0, 0), FALSE);
        SendMessageA(g, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, Y(g, At(11, 0))));
        for (const DateTimeValue &t : {At(12, 20), At(11, 35)}) {
            {
                FailureSeam seam(FailureSeam::Gdi, n);
                SendMessageA(g, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x, Y(g, t)));
                points = seam.Calls() > points ? seam.Calls() : points;
            }
            Readback shown = Readback::Of(g);
            SendMessageA(g, TTM_SETFINESTEP, SendMessageA(g, TTM_GETFINESTEP, 0, 0), 0);
            InvalidateRect(g, nullptr, TRUE);
            EXPECT_EQ(0, shown.Differences(Readback::Of(g))) << "refused at " << n << " moving to " << ToText(t);
        }
        SendMessageA(g, WM_LBUTTONUP, 0, MAKELPARAM(x, 0));
        DestroyWindow(g);
        OSErrorClearError();
    }
    EXPECT_EQ(before, GdiObjectsInUse());
}

// The end label as the gadget shows it, against the same label drawn by the
// platform's DrawText (centred both ways, one line) on a copy of what is
// shown: the label's edges are found in the pixels (white top and left,
// black right and bottom, the grey face from one pixel in), its face filled
// grey again, and the text drawn.
TEST_F(TimeTrackerDragPaint, LabelTextStandsWhereDrawTextPutsIt)
{
    RecordingParent parent(320, 420);
    HFONT trueType = CreateFontA(-13, 0, 0, 0, FW_NORMAL, 0, 0, 0, ANSI_CHARSET, 0, 0, 0, 0, "Arial");
    for (HFONT font : {static_cast<HFONT>(nullptr), trueType, static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT))}) {
        const DateTimeValue end = At(13, 25);
        int x;
        HWND g = Tracker(parent, font, 8, At(7, 0), At(9, 0), end, &x);
        InvalidateRect(g, nullptr, TRUE);
        Readback shown = Readback::Of(g);
        RECT client;
        GetClientRect(g, &client);
        const LONG cy = Y(g, end);
        LONG left = x, top = cy, bottom = cy;
        while (left > 0 && shown.At(left, cy) != 0xFFFFFF) --left;
        while (top > 0 && shown.At(left + 2, top) != 0xFFFFFF) --top;
        while (bottom < client.bottom && shown.At(left + 2, bottom) != 0) ++bottom;
        LONG right = left + 1;
        while (right < client.right && shown.At(right, bottom) == 0) ++right;
        --right;
        ASSERT_GT(right - left, 10);
        // The platform's label on a copy of the window's pixels.
        HDC screen = GetDC(g);
        HDC dc = CreateCompatibleDC(screen);
        HBITMAP bitmap = CreateCompatibleBitmap(screen, client.right, client.bottom);
        HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
        BitBlt(dc, 0, 0, client.right, client.bottom, screen, 0, 0, SRCCOPY);
        ReleaseDC(g, screen);
        RECT face = {left + 1, top + 1, right, bottom};
        HBRUSH grey = CreateSolidBrush(0xC0C0C0);
        FillRect(dc, &face, grey);
        DeleteObject(grey);
        char text[64];
        OSDateTimeToString(&end, text, nullptr, DTS_TIME, sizeof text);
        HGDIOBJ oldFont = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(g, WM_GETFONT, 0, 0)));
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, 0);
        RECT label = {left, top, right + 1, bottom + 1};
        DrawTextA(dc, text, -1, &label, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOCLIP);
        SelectObject(dc, oldFont);
        Readback expected = ReadDC(dc, 0, 0, client.right, client.bottom);
        SelectObject(dc, oldBitmap);
        DeleteObject(bitmap);
        DeleteDC(dc);
        EXPECT_EQ(0, shown.Differences(expected)) << text << (font ? " in a font set by WM_SETFONT" : "");
        DestroyWindow(g);
    }
    DeleteObject(trueType);
}

}  // namespace
