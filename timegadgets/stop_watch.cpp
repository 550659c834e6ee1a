// StopWatch: a picture of a stopwatch with three moving hands and, under
// it, the elapsed time as "HH:mm:ss". A click starts and stops it; the host
// can start, stop, read and set it. The elapsed time is kept as a date-time
// on a fixed reference day, so the calendar's arithmetic and text forms do
// the work. The watch and its text are composed off-screen and copied to
// the middle of the client, the rest filled around it, so nothing flickers.
#include "time_gadgets.h"
#include "../core/module_globals.h"
#include "../gadgets/gadget_frame.h"
#include "qziso32.h"

namespace {

struct StopWatchRecord {
    HBITMAP upBitmap;
    HBITMAP downBitmap;
    BITMAP upInfo;
    BITMAP downInfo;
    DateTimeValue time;       // the present reading
    DateTimeValue reference;  // elapsed time is time - reference
    HFONT font;
    LONG running;  // timer 1 is on
    LONG toggle;   // the click toggle
    DWORD lastSecond;
};

const UINT kUpBitmap = 60;
const UINT kDownBitmap = 61;
const UINT_PTR kTimer = 1;
const UINT kTimerMs = 1000;
const WORD kChanged = 1;
const COLORREF kWatchKey = 0xFFFF00;
const int kTextSize = 18;

// The picture's greys and white take the system's button colours.
const struct { COLORREF from; int to; } kRecolour[] = {
    {0xC0C0C0, COLOR_BTNFACE}, {0x808080, COLOR_BTNSHADOW}, {0xFFFFFF, COLOR_BTNHIGHLIGHT},
};

// A hand's direction at each of the 60 marks and the 60th again:
// floor(1000 sin(6i degrees)) and floor(-1000 cos(6i degrees)).
const short kSineX[61] = {
    0,    104,  207,  309,  406,  500,  587,  669,  743,  809,  866,  913,  951,  978,  994,  1000,
    994,  978,  951,  913,  866,  809,  743,  669,  587,  500,  406,  309,  207,  104,  0,    -105,
    -208, -310, -407, -500, -588, -670, -744, -810, -867, -914, -952, -979, -995, -1000, -995, -979,
    -952, -914, -867, -810, -744, -670, -588, -500, -407, -310, -208, -105, 0};
const short kCosineY[61] = {
    -1000, -995, -979, -952, -914, -867, -810, -744, -670, -588, -500, -407, -310, -208, -105, 0,
    104,   207,  309,  406,  500,  587,  669,  743,  809,  866,  913,  951,  978,  994,  1000, 994,
    978,   951,  913,  866,  809,  743,  669,  587,  500,  406,  309,  207,  104,  0,    -105, -208,
    -310,  -407, -500, -588, -670, -744, -810, -867, -914, -952, -979, -995, -1000};

StopWatchRecord *Record(HWND window) { return GadgetRecord<StopWatchRecord>(window); }

// ---------------------------------------------------------------- pictures
// The bitmap `id` of the resource library in the system's colours, or null.
HBITMAP LoadRecoloured(UINT id)
{
    HBITMAP bitmap = ResourceLoadBitmap(g_module.hResourceLibrary, id);
    for (const auto &step : kRecolour) {
        if (!bitmap)
            break;
        HBITMAP recoloured = UIChangeBitmapColor(bitmap, step.from, GetSysColor(step.to));
        DeleteObject(bitmap);
        bitmap = recoloured;
    }
    if (!bitmap)
        OSErrorSetErrorInfo(RV_GDIError, "ResourceLoadBitmap");
    return bitmap;
}

// ---------------------------------------------------------------- drawing
struct Layout {
    int bw, bh, tw, th, w, h, cx, cy;
};

void DrawHand(HDC dc, const Layout &l, int index, int divisor)
{
    MoveToEx(dc, l.cx, l.cy, nullptr);
    LineTo(dc, kSineX[index] * (l.bw - 5) / divisor + l.cx,
           kCosineY[index] * (l.bh - 8) / divisor + l.cy);
}

// Composes the watch, its hands and the digits on `work` (W by H).
bool Compose(HDC work, HBRUSH brush, HBITMAP watch, const Layout &l, const StopWatchRecord *r,
             const char *text)
{
    RECT all = {0, 0, l.w, l.h};
    FillRect(work, &all, brush);
    HDC picture = CreateCompatibleDC(work);
    HGDIOBJ earlier = picture ? SelectObject(picture, watch) : nullptr;
    if (!earlier) {
        OSErrorSetErrorInfo(RV_GDIError, "SelectObject");
        if (picture)
            DeleteDC(picture);
        return false;
    }
    GadUtilMaskBlt(work, (l.w - l.bw) / 2, 0, l.bw, l.bh, picture, 0, 0, kWatchKey);
    SelectObject(picture, earlier);
    DeleteDC(picture);
    DrawHand(work, l, r->time.second % 60, 2600);
    DrawHand(work, l, r->time.minute % 60, 3400);
    DrawHand(work, l, (r->time.hour % 12) * 5, 4200);
    RECT digits = {0, l.h - l.th, l.w, l.h};
    DrawTextA(work, text, -1, &digits, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOCLIP);
    return true;
}

// Draws the watch with `watch` (`info` its size) on `dc`. The brush comes
// from the parent, which may destroy the gadget while it answers.
void Draw(HWND window, StopWatchRecord *r, HDC dc, HBITMAP watch, const BITMAP &info)
{
    HBRUSH brush = reinterpret_cast<HBRUSH>(SendMessageA(
        GetParent(window), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc),
        reinterpret_cast<LPARAM>(window)));
    if (!GadgetAlive(window, r))
        return;
    HBRUSH ownBrush = brush ? nullptr : CreateSolidBrush(GetSysColor(COLOR_WINDOW));
    if (!brush)
        brush = ownBrush;
    char text[kTextSize] = {};
    OSDateTimeToString(&r->time, text, "HH:mm:ss", DTS_SECONDS, kTextSize);
    HDC work = CreateCompatibleDC(dc);
    HGDIOBJ earlierFont = work && r->font ? SelectObject(work, r->font) : nullptr;
    Layout l = {};
    l.bw = info.bmWidth;
    l.bh = info.bmHeight;
    SIZE size = {};
    if (work)
        GetTextExtentPoint32A(work, text, lstrlenA(text), &size);
    l.tw = size.cx;
    l.th = size.cy;
    l.w = l.bw > l.tw ? l.bw : l.tw;
    l.h = l.bh + l.bh / 3 + l.th;
    l.cx = l.w / 2 - (l.w % 2 == 0 ? 1 : 0);
    l.cy = (l.bh + 3) / 2 + 1;
    HBITMAP surface = work && brush ? CreateCompatibleBitmap(dc, l.w, l.h) : nullptr;
    HGDIOBJ earlierSurface = surface ? SelectObject(work, surface) : nullptr;
    if (earlierSurface) {
        SetBkMode(work, TRANSPARENT);
        if (Compose(work, brush, watch, l, r, text)) {
            RECT client;
            GetClientRect(window, &client);
            int x = (client.right - l.w) / 2, y = (client.bottom - l.h) / 2;
            BitBlt(dc, x, y, l.w, l.h, work, 0, 0, SRCCOPY);
            int saved = SaveDC(dc);
            ExcludeClipRect(dc, x, y, x + l.w, y + l.h);
            FillRect(dc, &client, brush);
            RestoreDC(dc, saved);
        }
        SelectObject(work, earlierSurface);
    } else {
        OSErrorSetErrorInfo(RV_GDIError, "CreateCompatibleBitmap");
    }
    if (surface)
        DeleteObject(surface);
    if (earlierFont)
        SelectObject(work, earlierFont);
    if (work)
        DeleteDC(work);
    if (ownBrush)
        DeleteObject(ownBrush);
}

// The watch with its button pressed, held for one to two tenths of a
// second, then the plain watch at the next paint.
void ShowPress(HWND window, StopWatchRecord *r)
{
    HDC dc = GetDC(window);
    if (dc) {
        Draw(window, r, dc, r->downBitmap, r->downInfo);
        ReleaseDC(window, dc);
    }
    if (!GadgetAlive(window, r))
        return;
    DWORD now = GetTickCount();
    DWORD until = (now / 100 + 2) * 100;
    Sleep(until - now);
    InvalidateRect(window, nullptr, TRUE);
}

// ---------------------------------------------------------------- messages
void SetReference(DateTimeValue *value)
{
    OSSetDateTime(value, 1994, 1, 1, 0, 0, 0, 0);
}

LRESULT OnCreate(HWND window)
{
    StopWatchRecord *r = GadgetCreate<StopWatchRecord>(window);
    if (!r)
        return GadgetCreateFailed;
    r->upBitmap = LoadRecoloured(kUpBitmap);
    r->downBitmap = r->upBitmap ? LoadRecoloured(kDownBitmap) : nullptr;
    if (!r->downBitmap || !GetObjectA(r->upBitmap, sizeof r->upInfo, &r->upInfo) ||
        !GetObjectA(r->downBitmap, sizeof r->downInfo, &r->downInfo)) {
        if (r->downBitmap)
            DeleteObject(r->downBitmap);
        if (r->upBitmap)
            DeleteObject(r->upBitmap);
        GadgetFreeRecord(window, true);
        return GadgetCreateFailed;
    }
    SetReference(&r->time);
    SetReference(&r->reference);
    return 0;
}

void OnDestroy(HWND window, StopWatchRecord *r)
{
    DeleteObject(r->upBitmap);
    DeleteObject(r->downBitmap);
    if (r->running)
        KillTimer(window, kTimer);
    GadgetFreeRecord(window, true);
}

void OnStart(HWND window, StopWatchRecord *r)
{
    r->time = r->reference;
    r->lastSecond = GetTickCount() / 1000;
    ShowPress(window, r);
    if (!GadgetAlive(window, r))
        return;
    if (!r->running)
        SetTimer(window, kTimer, kTimerMs, nullptr);
    r->running = 1;
    r->toggle = 1;
}

void OnStop(HWND window, StopWatchRecord *r)
{
    KillTimer(window, kTimer);
    r->running = 0;
    ShowPress(window, r);
}

void OnGetElapsed(const StopWatchRecord *r, DWORD *out)
{
    LONG days = 0, hours = 0, minutes = 0, seconds = 0;
    if (!out) {
        OSErrorSetErrorInfo(RV_BadParms, "SWM_GETELAPSED");
        return;
    }
    OSDiffDateTime(&r->reference, &r->time, &days, &hours, &minutes, &seconds);
    out[0] = static_cast<DWORD>(hours + days * 24);
    out[1] = static_cast<DWORD>(minutes);
    out[2] = static_cast<DWORD>(seconds);
}

void OnSetElapsed(HWND window, StopWatchRecord *r, const DWORD *in)
{
    if (!in) {
        OSErrorSetErrorInfo(RV_BadParms, "SWM_SETELAPSED");
        return;
    }
    DateTimeValue t = r->reference;
    if (OSAdjustDateTime(&t, 0, 0, 0, static_cast<LONG>(in[0]), static_cast<LONG>(in[1]),
                         static_cast<LONG>(in[2]), 0))
        r->time = t;
    InvalidateRect(window, nullptr, TRUE);
}

// Real seconds since the last update, so a late timer loses no time.
void OnTimer(HWND window, StopWatchRecord *r)
{
    DWORD second = GetTickCount() / 1000;
    OSAdjustDateTime(&r->time, 0, 0, 0, 0, 0, static_cast<LONG>(second - r->lastSecond), 0);
    r->lastSecond = second;
    InvalidateRect(window, nullptr, FALSE);
    GadgetNotifyAlive(window, kChanged, r);
}

void OnLButtonDown(HWND window, StopWatchRecord *r)
{
    if (r->toggle) {
        r->toggle = 0;
        SendMessageA(window, SWM_STOP, 0, 0);
    } else {
        r->toggle = 1;
        SendMessageA(window, SWM_START, 0, 0);
    }
    if (GadgetAlive(window, r))
        GadgetNotifyAlive(window, kChanged, r);
}

void OnPaint(HWND window, StopWatchRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (dc)
        Draw(window, r, dc, r->upBitmap, r->upInfo);
    EndPaint(window, &ps);
}

}  // namespace

LRESULT CALLBACK StopWatchWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    StopWatchRecord *r = Record(window);
    if (!r)
        return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window, r);
        return 0;
    case WM_PAINT:
        OnPaint(window, r);
        return 0;
    case WM_TIMER:
        OnTimer(window, r);
        return 0;
    case WM_LBUTTONDOWN:
        OnLButtonDown(window, r);
        return 0;
    case WM_SETFONT:
        r->font = reinterpret_cast<HFONT>(wParam);
        InvalidateRect(window, nullptr, TRUE);
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(r->font);
    case SWM_START:
        OnStart(window, r);
        return 0;
    case SWM_STOP:
        OnStop(window, r);
        return 0;
    case SWM_GETELAPSED:
        OnGetElapsed(r, reinterpret_cast<DWORD *>(lParam));
        return 0;
    case SWM_SETELAPSED:
        OnSetElapsed(window, r, reinterpret_cast<const DWORD *>(lParam));
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
