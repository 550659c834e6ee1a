// TimeTracker painting: the metrics and layout, the off-screen surfaces,
// the hour scale rendered once into a one-bit surface, the lanes, and the
// composition of bar, labels and clocks for each change.
#include "time_tracker.h"
#include "clock_face.h"
#include "../gadgets/gadget_frame.h"
#include "../core/module_globals.h"
#include "../drawing/draw_helpers.h"

namespace {

const COLORREF kBusyColour = 0xFF0000;
const COLORREF kLabelGrey = 0xC0C0C0;
const UINT kArrowDown = 2300;
const UINT kArrowUp = 2302;
const UINT kArrowDownToAppointment = 2304;
const UINT kArrowUpToAppointment = 2306;
const UINT kArrowDownAtLimit = 2308;
const UINT kArrowUpAtLimit = 2310;

// The hour texts share one buffer, as all trackers paint on one thread.
char g_hourText[20];

DWORD Odd(DWORD n) { return (n % 2 == 0) ? n + 1 : n; }

LONG TextWidth(HDC dc, const char *text)
{
    SIZE size = {};
    GetTextExtentPoint32A(dc, text, lstrlenA(text), &size);
    return size.cx;
}

// The duration's format, loaded once for each resource library: every
// paint of a drag step formats a new duration with it.
struct DurationFormat {
    HINSTANCE library;
    char *text;
};
DurationFormat g_durationFormat = {};

bool DurationText(DWORD hours, DWORD minutes, char *out, LONG size)
{
    if (!g_durationFormat.text || g_durationFormat.library != g_module.hResourceLibrary) {
        char *format = LoadStringCopy(g_module.hResourceLibrary, kDurationFormatString);
        if (!format) {
            OSErrorSetErrorInfo(RV_StringNonExistant, kDurationFormatString);
            out[0] = '\0';
            return false;
        }
        if (g_durationFormat.text)
            LocalFree(g_durationFormat.text);
        g_durationFormat = {g_module.hResourceLibrary, format};
    }
    OSrsprintf(out, size - 1, g_durationFormat.text, hours, minutes);
    return true;
}

// The advance widths and the line height of the font in a work surface,
// measured once per surface and font, so that a label's text is centred
// without measuring it on every paint. A few surfaces are remembered, for
// several trackers on one dialog.
struct TextMeasure {
    HDC dc;
    HGDIOBJ font;
    LONG height;
    INT widths[256];
};
TextMeasure g_measures[4];
unsigned g_nextMeasure;

const TextMeasure *MeasureFor(HDC dc)
{
    HGDIOBJ font = GetCurrentObject(dc, OBJ_FONT);
    for (const TextMeasure &m : g_measures)
        if (m.dc == dc && m.font == font)
            return &m;
    TextMeasure &m = g_measures[g_nextMeasure++ % 4];
    SIZE size = {};
    if (!GetCharWidth32A(dc, 0, 255, m.widths) || !GetTextExtentPoint32A(dc, "0", 1, &size)) {
        m.dc = nullptr;
        return nullptr;
    }
    m.dc = dc;
    m.font = font;
    m.height = size.cy;
    return &m;
}

void ForgetMeasures(HDC dc)
{
    for (TextMeasure &m : g_measures)
        if (m.dc == dc)
            m.dc = nullptr;
}

// One line centred in `rect` both ways, placed as DrawText places it with
// DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOCLIP, over `face` filled
// with the background colour first (in the same call where it can be).
void CentredText(HDC dc, const RECT &rect, const char *text, const RECT &face)
{
    const TextMeasure *m = MeasureFor(dc);
    LONG width = 0;
    int length = 0;
    for (; text[length]; ++length) {
        const unsigned char c = static_cast<unsigned char>(text[length]);
        if (c >= 0x80 || c < 0x20 || c == '&' || !m)
            m = nullptr;
        else
            width += m->widths[c];
    }
    if (!m) {
        // Bytes that may start a character of two, or that DrawText reads
        // as a tab or a prefix: the platform lays the line out.
        ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &face, nullptr, 0, nullptr);
        RECT inner = rect;
        DrawTextA(dc, text, -1, &inner, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOCLIP);
        return;
    }
    const LONG x = (rect.left + rect.right - width) / 2;
    const LONG y = rect.top + (rect.bottom - rect.top) / 2 - m->height / 2;
    ExtTextOutA(dc, x, y, ETO_OPAQUE, &face, text, static_cast<UINT>(length), nullptr);
}

LONG ScaleHeight(const TimeTrackerRecord *r) { return r->rcScale.bottom - r->rcScale.top; }
LONG FrameWidth(const TimeTrackerRecord *r) { return r->rcFrame.right - r->rcFrame.left; }
LONG FrameHeight(const TimeTrackerRecord *r) { return r->rcFrame.bottom - r->rcFrame.top; }
LONG StripWidth() { return static_cast<LONG>((kMaxLanes + 1) * kLaneWidth); }

void Fill(HDC dc, LONG left, LONG top, LONG right, LONG bottom, COLORREF colour)
{
    RECT rect = {left, top, right, bottom};
    SetBkColor(dc, colour);
    ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr);
}

// A block of the lanes: white outline, half-bright fill, the colour inset.
void Block(HDC dc, LONG x, LONG top, LONG bottom, COLORREF colour)
{
    if (bottom <= top)
        return;
    COLORREF half = RGB(GetRValue(colour) / 2, GetGValue(colour) / 2, GetBValue(colour) / 2);
    Fill(dc, x, top, x + 6, bottom, 0xFFFFFF);
    Fill(dc, x + 1, top + 1, x + 5, bottom - 1, half);
    Fill(dc, x + 2, top + 2, x + 4, bottom - 2, colour);
}

HDC MakeSurface(HDC screen, LONG width, LONG height, bool mono, HBITMAP *saved)
{
    HDC dc = CreateCompatibleDC(screen);
    if (!dc)
        return nullptr;
    UINT planes = mono ? 1 : static_cast<UINT>(GetDeviceCaps(screen, PLANES));
    UINT bits = mono ? 1 : static_cast<UINT>(GetDeviceCaps(screen, BITSPIXEL));
    HBITMAP bitmap = CreateBitmap(width > 0 ? width : 1, height > 0 ? height : 1, planes, bits, nullptr);
    if (!bitmap) {
        DeleteDC(dc);
        return nullptr;
    }
    *saved = static_cast<HBITMAP>(SelectObject(dc, bitmap));
    return dc;
}

void FreeSurface(HDC *dc, HBITMAP *saved)
{
    if (!*dc)
        return;
    HGDIOBJ bitmap = SelectObject(*dc, *saved);
    DeleteObject(bitmap);
    DeleteDC(*dc);
    *dc = nullptr;
    *saved = nullptr;
}

void PaintLabel(HDC dc, const TimeTrackerRecord *r, const RECT &label, const char *text)
{
    if (label.bottom <= r->rcScale.top || label.top >= r->rcScale.bottom)
        return;
    Fill(dc, label.left, label.top, label.right, label.bottom, 0xFFFFFF);
    Fill(dc, label.left + 1, label.top + 1, label.right, label.bottom, 0);
    SetBkMode(dc, TRANSPARENT);
    COLORREF oldText = SetTextColor(dc, 0);
    SetBkColor(dc, kLabelGrey);
    CentredText(dc, label, text, RECT{label.left + 1, label.top + 1, label.right - 1, label.bottom - 1});
    SetTextColor(dc, oldText);
}

// The dial and its mask, copied once for each work surface into bitmaps of
// their own that stay selected in two kept contexts: selecting a picture is
// the dearest step of a paint. (The originals stay free for the hit test.)
struct ClockCopies {
    HDC work;
    HBITMAP dial;        // the original the copies were made from
    SIZE size;
    HDC image, mask;
    HGDIOBJ oldImage, oldMask;
};
ClockCopies g_clockCopies[4];
unsigned g_nextClockCopies;

void FreeClockCopies(ClockCopies &c)
{
    if (c.image) {
        if (c.oldImage)
            DeleteObject(SelectObject(c.image, c.oldImage));
        DeleteDC(c.image);
    }
    if (c.mask) {
        if (c.oldMask)
            DeleteObject(SelectObject(c.mask, c.oldMask));
        DeleteDC(c.mask);
    }
    c = ClockCopies{};
}

void ForgetClockCopies(HDC work)
{
    for (ClockCopies &c : g_clockCopies)
        if (work && c.work == work)
            FreeClockCopies(c);
}

// A copy of `original` (`planes` and `bits` as given) selected into a new
// context compatible with `work`.
bool CopyInto(HDC work, HBITMAP original, SIZE size, UINT planes, UINT bits, HDC *dc, HGDIOBJ *old)
{
    *dc = CreateCompatibleDC(work);
    HBITMAP copy = *dc ? CreateBitmap(size.cx, size.cy, planes, bits, nullptr) : nullptr;
    *old = copy ? SelectObject(*dc, copy) : nullptr;
    if (!*old) {
        if (copy)
            DeleteObject(copy);
        return false;
    }
    SelectedDC from;
    if (!SelectIntoNewDC(work, original, &from))
        return false;
    bool done = BitBlt(*dc, 0, 0, size.cx, size.cy, from.dc, 0, 0, SRCCOPY) != 0;
    ReleaseSelectedDC(&from);
    return done;
}

const ClockCopies *ClockCopiesFor(HDC work, const TimeTrackerRecord *r)
{
    for (const ClockCopies &c : g_clockCopies)
        if (c.work == work && c.dial == r->clockBitmap)
            return &c;
    ClockCopies &c = g_clockCopies[g_nextClockCopies++ % 4];
    FreeClockCopies(c);
    BITMAP dial = {}, mask = {};
    if (!r->clockBitmap || !r->clockMask || !GetObjectA(r->clockBitmap, sizeof dial, &dial) ||
        !GetObjectA(r->clockMask, sizeof mask, &mask) || mask.bmBitsPixel != 1 ||
        mask.bmWidth < dial.bmWidth || mask.bmHeight < dial.bmHeight)
        return nullptr;
    c.size = SIZE{dial.bmWidth, dial.bmHeight};
    if (!CopyInto(work, r->clockBitmap, c.size, dial.bmPlanes, dial.bmBitsPixel, &c.image, &c.oldImage) ||
        !CopyInto(work, r->clockMask, c.size, 1, 1, &c.mask, &c.oldMask)) {
        FreeClockCopies(c);
        return nullptr;
    }
    c.work = work;
    c.dial = r->clockBitmap;
    return &c;
}

bool ClockShown(const TimeTrackerRecord *r, const RECT &clock)
{
    return clock.top >= r->rcFrame.top && clock.bottom <= r->rcFrame.bottom;
}

// The start and end clocks: the dial laid on through its mask, as the
// gadgets' flicker blit lays it, then the hands. Where no copies can be
// made, the shared clock face draws each.
// True when `reach` meets one of `parts`, or when no parts are given.
bool Reaches(const RECT &reach, const RECT *parts, int count)
{
    RECT meet;
    for (int i = 0; i < count; ++i)
        if (IntersectRect(&meet, &reach, &parts[i]))
            return true;
    return !parts;
}

void PaintClocks(HDC dc, const TimeTrackerRecord *r, const RECT *parts, int count)
{
    const RECT *clocks[2] = {&r->rcStartClock, &r->rcEndClock};
    const DateTimeValue *times[2] = {&r->start, &r->end};
    const ClockCopies *c = nullptr;
    for (int i = 0; i < 2; ++i) {
        if (!ClockShown(r, *clocks[i]) || !Reaches(TrackerClockReach(*clocks[i]), parts, count))
            continue;
        if (!c && !(c = ClockCopiesFor(dc, r))) {
            DrawClockFace(dc, *clocks[i], r->rcFrame, r->clockBitmap, r->clockMask, kTrackerDefaultBack,
                          times[i]->hour, times[i]->minute);
            continue;
        }
        POINT at = CentreIn(clocks[i], c->size);
        MaskColours saved = SetMaskColours(dc);
        TransparencyPasses(dc, at.x, at.y, c->size.cx, c->size.cy, c->image, 0, 0, c->mask, 0, 0);
        RestoreMaskColours(dc, saved);
        DrawClockHands(dc, *clocks[i], times[i]->hour, times[i]->minute);
    }
}

void PaintBar(HDC dc, const TimeTrackerRecord *r)
{
    LONG left = r->rcScale.left + ((r->rcScale.right - r->rcScale.left) - 5) / 2;
    LONG top = r->rcScale.top > r->rcStartLabel.bottom ? r->rcScale.top : r->rcStartLabel.bottom;
    LONG bottom = r->rcScale.bottom < r->rcEndLabel.top ? r->rcScale.bottom : r->rcEndLabel.top;
    if (bottom <= top || !r->barBrush)
        return;
    POINT origin = {left, top};
    LPtoDP(dc, &origin, 1);
    UnrealizeObject(r->barBrush);
    SetBrushOrgEx(dc, origin.x & 7, origin.y & 7, nullptr);
    HGDIOBJ old = SelectObject(dc, r->barBrush);
    PatBlt(dc, left, top, 5, bottom - top, PATCOPY);
    SelectObject(dc, old);
}

UINT DownArrowId(HWND window, const TimeTrackerRecord *r)
{
    DateTimeValue last;
    if (!TrackerViewEnd(r, &last))
        return kArrowDown;
    if (Later(&r->start, &last))
        return kArrowDownToAppointment;
    if ((TrackerStyle(window) & TTS_SINGLEDAY) && last.hour == 23 && last.minute >= 60 - r->fineStep)
        return kArrowDownAtLimit;
    return kArrowDown;
}

UINT UpArrowId(HWND window, const TimeTrackerRecord *r)
{
    if (Later(&r->viewStart, &r->end))
        return kArrowUpToAppointment;
    if ((TrackerStyle(window) & TTS_SINGLEDAY) && r->viewStart.hour == 0 && r->viewStart.minute == 0)
        return kArrowUpAtLimit;
    return kArrowUp;
}

void PaintArrow(HDC dc, const TimeTrackerRecord *r, const RECT &where, UINT id)
{
    HBITMAP image = LoadBitmapA(g_module.hResourceLibrary, MAKEINTRESOURCEA(id));
    if (!image) {
        OSErrorSetErrorInfo(RV_GDIError);
        return;
    }
    RECT rect = where;
    if (r->backColour == kTrackerDefaultBack)
        UIBitBlt(dc, &rect, image);
    else
        GadUtilMaskBltNoFlicker(dc, &rect, image, nullptr, 0x808000);
    DeleteObject(image);
}

}  // namespace

// Green while the appointment is free, red once a busy time overlaps it.
COLORREF TrackerOwnBarColour(const TimeTrackerRecord *r)
{
    DWORD own = r->durationHours * 60 + r->durationMinutes;
    for (DWORD i = 0; i < r->busyCount; ++i)
        if (TrackerOverlap(&r->busy[i].start, r->busy[i].lengthMinutes, &r->start, own) == 1)
            return kOwnBarClash;
    return kOwnBarFree;
}

// ---------------------------------------------------------------- metrics
bool TrackerMetrics(HWND window, TimeTrackerRecord *r)
{
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError);
        return false;
    }
    HGDIOBJ old = SelectObject(dc, r->font ? r->font : GetStockObject(ANSI_VAR_FONT));
    TEXTMETRICA tm = {};
    GetTextMetricsA(dc, &tm);
    char text[64];
    DateTimeValue t = {};
    OSGetDateTime(&t);
    t.hour = t.minute = t.second = 0;
    OSDateTimeToString(&t, text, nullptr, DTS_TIME, 20);
    LONG midnight = TextWidth(dc, text);
    t.hour = 12;
    OSDateTimeToString(&t, text, nullptr, DTS_TIME, 20);
    LONG noon = TextWidth(dc, text);
    bool ok = DurationText(24, 0, text, sizeof text);
    LONG duration = TextWidth(dc, text);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    r->timeLabelWidth = Odd(static_cast<DWORD>((midnight > noon ? midnight : noon) + 6));
    r->durationLabelWidth = Odd(static_cast<DWORD>(duration + 4));
    r->labelHeight = Odd(static_cast<DWORD>(tm.tmHeight - tm.tmDescent + 2));
    r->hourLabelHeight = r->labelHeight;
    return ok;
}

DWORD TrackerIdealWidth(const TimeTrackerRecord *r)
{
    DWORD widest = r->timeLabelWidth > r->durationLabelWidth ? r->timeLabelWidth : r->durationLabelWidth;
    return widest + r->laneCount * kLaneWidth + 33;
}

DWORD TrackerIdealHeight(const TimeTrackerRecord *r) { return (r->hoursInView + 2) * r->labelHeight + 60; }

void TrackerLayout(HWND window, TimeTrackerRecord *r)
{
    r->figuresShown = 0;
    RECT client;
    GetClientRect(window, &client);
    LONG w = static_cast<LONG>(r->laneCount * kLaneWidth + 8);
    DWORD widest = r->timeLabelWidth > r->durationLabelWidth ? r->timeLabelWidth : r->durationLabelWidth;
    LONG c = static_cast<LONG>(widest + 10);
    LONG margin = static_cast<LONG>(r->labelHeight >> 1) + 21;
    r->rcScale.top = margin;
    r->rcScale.bottom = client.bottom - margin;
    if (r->rcScale.bottom < r->rcScale.top)
        r->rcScale.bottom = r->rcScale.top;
    r->rcScale.left = w + ((client.right - w - c) >> 1);
    r->rcScale.right = r->rcScale.left + c + (c % 2 == 0 ? 1 : 0);
    r->rcFrame.left = r->rcScale.left;
    r->rcFrame.right = r->rcScale.right;
    r->rcFrame.top = client.top + 4;
    r->rcFrame.bottom = client.bottom - 1;
    if (r->rcFrame.bottom < r->rcFrame.top)
        r->rcFrame.bottom = r->rcFrame.top;
    r->rcUpArrow = RECT{client.right - 12, client.top + 2, client.right - 1, client.top + 15};
    r->rcDownArrow = RECT{client.right - 12, client.bottom - 15, client.right - 1, client.bottom - 2};
    TrackerPlaceFigures(r);
}

void TrackerPlaceFigures(TimeTrackerRecord *r)
{
    DWORD height = static_cast<DWORD>(ScaleHeight(r));
    r->pixelsPerHour = height / r->hoursInView;
    r->extraPixels = height % r->hoursInView;
    bool ok = false;
    r->endY = TrackerTimeToY(r, &r->end, &ok);
    r->startY = TrackerTimeToY(r, &r->start, &ok);
    r->middleY = r->startY + (r->endY - r->startY) / 2;
    LONG x = r->rcScale.left + (r->rcScale.right - r->rcScale.left) / 2;
    LONG half = static_cast<LONG>(r->labelHeight / 2);
    LONG tw = static_cast<LONG>(r->timeLabelWidth), dw = static_cast<LONG>(r->durationLabelWidth);
    LONG lh = static_cast<LONG>(r->labelHeight);
    r->rcStartLabel = RECT{x - tw / 2, r->startY - half, x - tw / 2 + tw, r->startY - half + lh};
    r->rcEndLabel = RECT{x - tw / 2, r->endY - half, x - tw / 2 + tw, r->endY - half + lh};
    r->rcDurationLabel = RECT{x - dw / 2, r->middleY - half, x - dw / 2 + dw, r->middleY - half + lh};
    r->rcMoveHandle = r->rcDurationLabel;
    r->rcStartClock = RECT{x - 8, r->rcStartLabel.top - 17, x + 9, r->rcStartLabel.top};
    r->rcEndClock = RECT{x - 8, r->rcEndLabel.bottom, x + 9, r->rcEndLabel.bottom + 17};
}

// ---------------------------------------------------------------- surfaces
bool TrackerBuildSurfaces(HWND window, TimeTrackerRecord *r)
{
    TrackerDestroySurfaces(r);
    HDC screen = GetDC(window);
    if (!screen) {
        OSErrorSetErrorInfo(RV_GDIError);
        return false;
    }
    LONG stripHeight = ScaleHeight(r) + 1;
    r->dcWork = MakeSurface(screen, FrameWidth(r), FrameHeight(r), false, &r->savedWork);
    r->dcScale = MakeSurface(screen, FrameWidth(r), FrameHeight(r), true, &r->savedScale);
    r->dcLanesBack = MakeSurface(screen, StripWidth(), stripHeight, false, &r->savedLanesBack);
    r->dcLanes = MakeSurface(screen, StripWidth(), stripHeight, false, &r->savedLanes);
    ReleaseDC(window, screen);
    if (!r->dcWork || !r->dcScale || !r->dcLanesBack || !r->dcLanes) {
        TrackerDestroySurfaces(r);
        OSErrorSetErrorInfo(RV_GDIError);
        return false;
    }
    // The frame's surfaces take client coordinates.
    SetWindowOrgEx(r->dcWork, r->rcFrame.left, r->rcFrame.top, nullptr);
    SetWindowOrgEx(r->dcScale, r->rcFrame.left, r->rcFrame.top, nullptr);
    SetBkColor(r->dcWork, r->backColour);
    SetTextColor(r->dcWork, GadgetContrastTextColor(r->backColour));
    SelectObject(r->dcWork, r->font);
    SelectObject(r->dcScale, r->font);
    TrackerRenderScale(r);
    TrackerRenderLanes(r);
    return true;
}

void TrackerDestroySurfaces(TimeTrackerRecord *r)
{
    if (r->dcScaleColour) {
        DeleteObject(SelectObject(r->dcScaleColour, r->savedScaleColour));
        DeleteDC(r->dcScaleColour);
        r->dcScaleColour = nullptr;
        r->savedScaleColour = nullptr;
    }
    r->scaleColourReady = 0;
    r->figuresShown = 0;
    ForgetMeasures(r->dcWork);
    ForgetClockCopies(r->dcWork);
    FreeSurface(&r->dcWork, &r->savedWork);
    FreeSurface(&r->dcScale, &r->savedScale);
    FreeSurface(&r->dcLanesBack, &r->savedLanesBack);
    FreeSurface(&r->dcLanes, &r->savedLanes);
}

void TrackerRenderScale(TimeTrackerRecord *r)
{
    TrackerPlaceFigures(r);
    HDC dc = r->dcScale;
    r->scaleColourReady = 0;
    r->figuresShown = 0;
    if (!dc)
        return;
    Fill(dc, r->rcFrame.left, r->rcFrame.top, r->rcFrame.right, r->rcFrame.bottom, 0xFFFFFF);
    Fill(dc, r->rcScale.left, r->rcScale.top, r->rcScale.left + 1, r->rcScale.bottom + 1, 0);
    Fill(dc, r->rcScale.right - 1, r->rcScale.top, r->rcScale.right, r->rcScale.bottom + 1, 0);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, 0);
    DateTimeValue hour = r->viewStart;
    hour.minute = 0;
    hour.second = 0;
    LONG halfHour = static_cast<LONG>(r->pixelsPerHour / 2) + (r->extraPixels ? 1 : 0);
    LONG labelHeight = static_cast<LONG>(r->hourLabelHeight);
    for (DWORD i = 0; i <= r->hoursInView; ++i) {
        DateTimeValue t = hour;
        if (!TrackerShift(&t, 0, static_cast<LONG>(i), 0))
            break;
        bool ok = false;
        LONG y = TrackerTimeToY(r, &t, &ok);
        if (!ok || y < r->rcScale.top || y > r->rcScale.bottom)
            continue;
        OSDateTimeToString(&t, g_hourText, nullptr, DTS_TIME, sizeof g_hourText);
        LONG top = y - labelHeight / 2 - (r->extraPixels == 0 ? 1 : 0);
        RECT text = {r->rcScale.left, top, r->rcScale.right, top + labelHeight};
        DrawTextA(dc, g_hourText, -1, &text, DT_CENTER | DT_NOCLIP);
        Fill(dc, r->rcScale.left, y, r->rcScale.left + 5, y + 1, 0);
        Fill(dc, r->rcScale.right - 5, y, r->rcScale.right, y + 1, 0);
        if (i < r->hoursInView) {
            LONG mid = y + halfHour;
            Fill(dc, r->rcScale.left, mid, r->rcScale.left + 2, mid + 1, 0);
            Fill(dc, r->rcScale.right - 2, mid, r->rcScale.right, mid + 1, 0);
        }
    }
}

void TrackerRenderLanes(TimeTrackerRecord *r)
{
    TrackerPlaceFigures(r);
    r->figuresShown = 0;
    // The clash colour is kept whether or not the strip is shown.
    r->ownBarColour = TrackerOwnBarColour(r);
    HDC back = r->dcLanesBack;
    if (!back || !r->dcLanes)
        return;
    LONG height = ScaleHeight(r) + 1;
    Fill(back, 0, 0, StripWidth(), height, r->backColour);
    for (DWORD c = 0; c <= r->laneCount; ++c) {
        LONG x = static_cast<LONG>(c * kLaneWidth);
        bool last = c == r->laneCount;
        Fill(back, x, 0, x + (last ? 7 : 8), height, 0);
        Fill(back, x + 1, 0, x + 7, height, 0x808080);
        Fill(back, x + 7, 0, x + 8, height, kLabelGrey);
    }
    DateTimeValue viewEnd;
    bool haveEnd = TrackerViewEnd(r, &viewEnd);
    DWORD span = r->hoursInView * 60;
    for (DWORD n = r->busyCount; n-- > 0;) {
        const BusyInterval &b = r->busy[n];
        if (b.lane > r->laneCount || !haveEnd || TrackerOverlap(&b.start, b.lengthMinutes, &r->viewStart, span) != 1)
            continue;
        DateTimeValue e = b.start;
        bool ok1 = false, ok2 = false;
        LONG top = TrackerTimeToY(r, &b.start, &ok1) - r->rcScale.top;
        if (!OSAdjustDateTime(&e, 0, 0, 0, 0, static_cast<LONG>(b.lengthMinutes), 0, 0))
            continue;
        // An end past the calendar runs to the strip's foot.
        bool endsInside = OSIsValidDateTime(&e) != 0;
        LONG bottom = endsInside ? TrackerTimeToY(r, &e, &ok2) - r->rcScale.top + 1 : height;
        ok2 = ok2 || !endsInside;
        if (!ok1 || !ok2)
            continue;
        if (top < 1)
            top = 1;
        if (bottom > height - 2)
            bottom = height - 2;
        Block(back, static_cast<LONG>((r->laneCount - b.lane) * kLaneWidth) + 1, top, bottom, kBusyColour);
    }
    BitBlt(r->dcLanes, 0, 0, StripWidth(), height, back, 0, 0, SRCCOPY);
    LONG top, bottom;
    TrackerOwnRows(r, &top, &bottom);
    Block(r->dcLanes, static_cast<LONG>(r->laneCount * kLaneWidth) + 1, top, bottom, r->ownBarColour);
    r->ownShownTop = top;
    r->ownShownBottom = bottom;
    r->ownShownColour = r->ownBarColour;
}

void TrackerRenderOwnStrip(TimeTrackerRecord *r)
{
    r->ownBarColour = TrackerOwnBarColour(r);
    if (!r->dcLanesBack || !r->dcLanes)
        return;
    // The busy lanes stand as rendered; only the last column is drawn again.
    LONG height = ScaleHeight(r) + 1;
    LONG x = static_cast<LONG>(r->laneCount * kLaneWidth);
    BitBlt(r->dcLanes, x, 0, kLaneWidth, height, r->dcLanesBack, x, 0, SRCCOPY);
    LONG top, bottom;
    TrackerOwnRows(r, &top, &bottom);
    Block(r->dcLanes, x + 1, top, bottom, r->ownBarColour);
    r->ownShownTop = top;
    r->ownShownBottom = bottom;
    r->ownShownColour = r->ownBarColour;
}

// ---------------------------------------------------------------- showing
// The scale as the work surface shows it: the one-bit surface converted in
// the work surface's colours once for each render of the scale, so that a
// band is copied without the conversion. A converted copy that cannot be
// made leaves the one-bit surface to be converted band by band, as the
// pixels are the same either way.
static HDC ScaleSource(TimeTrackerRecord *r)
{
    HDC work = r->dcWork;
    const COLORREF back = GetBkColor(work), text = GetTextColor(work);
    if (r->dcScaleColour && r->scaleColourReady && r->scaleColourBack == back && r->scaleColourText == text)
        return r->dcScaleColour;
    const LONG width = FrameWidth(r) > 0 ? FrameWidth(r) : 1, height = FrameHeight(r) > 0 ? FrameHeight(r) : 1;
    if (!r->dcScaleColour) {
        HDC dc = CreateCompatibleDC(work);
        HBITMAP bitmap = dc ? CreateCompatibleBitmap(work, width, height) : nullptr;
        HGDIOBJ saved = bitmap ? SelectObject(dc, bitmap) : nullptr;
        if (!saved) {
            if (bitmap)
                DeleteObject(bitmap);
            if (dc)
                DeleteDC(dc);
            return r->dcScale;
        }
        SetWindowOrgEx(dc, r->rcFrame.left, r->rcFrame.top, nullptr);
        r->dcScaleColour = dc;
        r->savedScaleColour = static_cast<HBITMAP>(saved);
    }
    SetBkColor(r->dcScaleColour, back);
    SetTextColor(r->dcScaleColour, text);
    if (!BitBlt(r->dcScaleColour, r->rcFrame.left, r->rcFrame.top, width, height, r->dcScale, r->rcFrame.left,
                r->rcFrame.top, SRCCOPY))
        return r->dcScale;
    r->scaleColourBack = back;
    r->scaleColourText = text;
    r->scaleColourReady = 1;
    return r->dcScaleColour;
}

void TrackerComposeWork(TimeTrackerRecord *r, LONG top, LONG bottom, const RECT *parts, int count)
{
    HDC work = r->dcWork;
    LONG left = r->rcFrame.left, width = FrameWidth(r);
    SetBkColor(work, r->backColour);
    SetTextColor(work, GadgetContrastTextColor(r->backColour));
    BitBlt(work, left, top, width, bottom - top, ScaleSource(r), left, top, SRCCOPY);
    PaintBar(work, r);
    char text[64];
    if (Reaches(TrackerLabelReach(r, r->rcStartLabel), parts, count)) {
        OSDateTimeToString(&r->start, text, nullptr, DTS_TIME, sizeof text);
        PaintLabel(work, r, r->rcStartLabel, text);
    }
    if (Reaches(TrackerLabelReach(r, r->rcEndLabel), parts, count)) {
        OSDateTimeToString(&r->end, text, nullptr, DTS_TIME, sizeof text);
        PaintLabel(work, r, r->rcEndLabel, text);
    }
    if (Reaches(TrackerLabelReach(r, r->rcDurationLabel), parts, count)) {
        DurationText(r->durationHours, r->durationMinutes, text, sizeof text);
        PaintLabel(work, r, r->rcDurationLabel, text);
    }
    PaintClocks(work, r, parts, count);
    SetBkColor(work, r->backColour);
    SetTextColor(work, GadgetContrastTextColor(r->backColour));
}

void TrackerCompose(HWND window, TimeTrackerRecord *r, HDC dc, LONG top, LONG bottom)
{
    HDC work = r->dcWork;
    if (!work)
        return;
    const bool whole = top <= r->rcFrame.top && bottom >= r->rcFrame.bottom;
    if (top < r->rcFrame.top)
        top = r->rcFrame.top;
    if (bottom > r->rcFrame.bottom)
        bottom = r->rcFrame.bottom;
    if (bottom <= top)
        return;
    LONG left = r->rcFrame.left, width = FrameWidth(r);
    TrackerComposeWork(r, top, bottom);
    BitBlt(dc, left, top, width, bottom - top, work, left, top, SRCCOPY);
    // The strip whole, or its rows within the band.
    LONG stripTop = r->rcScale.top, stripBottom = r->rcScale.bottom + 1;
    if (!whole) {
        stripTop = top > stripTop ? top : stripTop;
        stripBottom = bottom < stripBottom ? bottom : stripBottom;
    }
    if (stripBottom > stripTop)
        BitBlt(dc, 0, stripTop, static_cast<int>(r->laneCount * kLaneWidth + 8), stripBottom - stripTop, r->dcLanes,
               0, stripTop - r->rcScale.top, SRCCOPY);
    if (whole) {
        TrackerTakeFigures(r, &r->shown);
        r->figuresShown = 1;
    } else {
        r->figuresShown = 0;
    }
    (void)window;
}

void TrackerPaintArrows(HWND window, TimeTrackerRecord *r, HDC dc, bool upPressed, bool downPressed)
{
    PaintArrow(dc, r, r->rcUpArrow, UpArrowId(window, r) + (upPressed ? 1 : 0));
    PaintArrow(dc, r, r->rcDownArrow, DownArrowId(window, r) + (downPressed ? 1 : 0));
}

void TrackerRedraw(HWND window, TimeTrackerRecord *r)
{
    TrackerPlaceFigures(r);
    TrackerRenderLanes(r);
    bool own = !(g_trackerDrag.active && g_trackerDrag.window == window && g_trackerDrag.dc);
    HDC dc = own ? GetDC(window) : g_trackerDrag.dc;
    if (!dc)
        return;
    TrackerCompose(window, r, dc, r->rcFrame.top, r->rcFrame.bottom);
    if (own) {
        TrackerPaintArrows(window, r, dc, false, false);
        ReleaseDC(window, dc);
    }
}

void TrackerOnPaint(HWND window, TimeTrackerRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError);
        return;
    }
    TrackerPlaceFigures(r);
    TrackerCompose(window, r, dc, r->rcFrame.top, r->rcFrame.bottom);
    bool pressedUp = g_trackerDrag.active && g_trackerDrag.window == window && g_trackerDrag.upArrow;
    bool pressedDown = g_trackerDrag.active && g_trackerDrag.window == window && g_trackerDrag.downArrow;
    TrackerPaintArrows(window, r, dc, pressedUp, pressedDown);
    EndPaint(window, &ps);
}

bool TrackerClockHit(HWND window, const TimeTrackerRecord *r, const RECT *rect, POINT pt)
{
    if (!PtInRect(rect, pt) || !r->clockMask)
        return false;
    HDC screen = GetDC(window);
    HDC dc = CreateCompatibleDC(screen);
    ReleaseDC(window, screen);
    if (!dc)
        return false;
    HGDIOBJ old = SelectObject(dc, r->clockMask);
    COLORREF pixel = GetPixel(dc, pt.x - rect->left, pt.y - rect->top);
    SelectObject(dc, old);
    DeleteDC(dc);
    return pixel == 0;
}
