// FreeTime's drawing: the layout beside the tracker, the columns, the three
// surfaces (heads and lines, the grid with its blocks, and the grid with the
// meeting), the week header, the person icons and the paint.
#include "free_time.h"
#include "../gadgets/gadget_frame.h"
#include "../core/module_globals.h"

namespace {

const COLORREF kBlockBrush = 0xFF0000;
const COLORREF kShadeBrush = 0xC0C0C0;
const COLORREF kHourLine = 0xC0C0C0;
const DWORD kBlockRop = 0xFA0089;  // dest OR brush

LONG GridWidth(const FreeTimeRecord *r) { return r->rcGrid.right - r->rcGrid.left; }
LONG GridHeight(const FreeTimeRecord *r) { return r->rcGrid.bottom - r->rcGrid.top; }

LONG TrackerY(const FreeTimeRecord *r, const DateTimeValue *t)
{
    return static_cast<LONG>(SendMessageA(r->tracker, TTM_TIMETOY, 0, reinterpret_cast<LPARAM>(t)));
}

bool ViewDate(const FreeTimeRecord *r, DateTimeValue *out)
{
    if (SendMessageA(r->tracker, TTM_GETVIEWSTART, 0, reinterpret_cast<LPARAM>(out)) != 1)
        return false;
    out->hour = out->minute = out->second = 0;
    return true;
}

bool AddMinutes(DateTimeValue *t, LONG minutes) { return OSAdjustDateTime(t, 0, 0, 0, 0, minutes, 0, 0) != 0; }

// Whole days from `from` to `to`, by the days of the difference.
bool DaysBetween(const DateTimeValue *from, const DateTimeValue *to, LONG *days)
{
    LONG h = 0, m = 0, s = 0;
    return OSDiffDateTime(from, to, days, &h, &m, &s) != 0;
}

// A grid y from a tracker y, kept a pixel inside the grid.
LONG GridY(const FreeTimeRecord *r, LONG trackerY)
{
    LONG y = trackerY + r->rcHeader.bottom - r->rcGrid.top;
    LONG bottom = GridHeight(r) - 1;
    if (y < 1)
        y = 1;
    if (y > bottom)
        y = bottom;
    return y;
}

// The block of one column between two grid y's; it keeps later blocks off.
void DrawBlock(FreeTimeRecord *r, DWORD column, LONG y1, LONG y2)
{
    if (y1 >= GridHeight(r) - 1 || y2 < 2 || y2 <= y1 || column >= FreeTimeColumnCount(r))
        return;
    LONG left = 0, width = 0;
    FreeTimeColumn(r, column, &left, &width);
    PatBlt(r->dcColour, left, y1, width, y2 - y1, DSTINVERT);
    PatBlt(r->dcColour, left, y1, width, y2 - y1, kBlockRop);
    ExcludeClipRect(r->dcColour, left, y1, left + width, y2);
}

bool PeopleBlocks(FreeTimeRecord *r)
{
    DateTimeValue day;
    if (!ViewDate(r, &day))
        return false;
    BusyInterval whole = {day, 1440, 0, 0, 0};
    DWORD columns = FreeTimeColumnCount(r);
    for (DWORD c = 0; c < columns && r->firstPerson + c < r->personCount; ++c) {
        const FreeTimePerson &p = r->people[r->firstPerson + c];
        for (DWORD i = 0; i < p.busyCount; ++i) {
            if (FreeTimeOverlap(&p.busy[i], &whole) == 2)
                continue;
            DateTimeValue end = p.busy[i].start;
            if (!AddMinutes(&end, static_cast<LONG>(p.busy[i].lengthMinutes)))
                continue;
            DrawBlock(r, c, GridY(r, TrackerY(r, &p.busy[i].start)), GridY(r, TrackerY(r, &end)));
        }
    }
    return true;
}

bool WeekBlocks(FreeTimeRecord *r)
{
    DateTimeValue day;
    if (!ViewDate(r, &day))
        return false;
    BusyInterval week = {r->weekStart, r->showWeekend ? 10080u : 7200u, 0, 0, 0};
    for (DWORD i = 0; i < r->mergedCount; ++i) {
        const BusyInterval &b = r->merged[i];
        LONG column = 0;
        if (FreeTimeOverlap(&b, &week) == 2 || !DaysBetween(&r->weekStart, &b.start, &column) || column < 0)
            continue;
        DateTimeValue start = day, end = b.start;
        start.hour = b.start.hour;
        start.minute = b.start.minute;
        if (!AddMinutes(&end, static_cast<LONG>(b.lengthMinutes)))
            continue;
        LONG y2 = GridHeight(r) - 1;
        if (end.day == b.start.day && end.month == b.start.month) {
            DateTimeValue onDay = day;
            onDay.hour = end.hour;
            onDay.minute = end.minute;
            y2 = GridY(r, TrackerY(r, &onDay));
        }
        DrawBlock(r, static_cast<DWORD>(column), GridY(r, TrackerY(r, &start)), y2);
    }
    return true;
}

bool Fill(HDC dc, const RECT &rect, COLORREF colour)
{
    HBRUSH brush = CreateSolidBrush(colour);
    if (!brush)
        return false;
    FillRect(dc, &rect, brush);
    DeleteObject(brush);
    return true;
}

void VLine(HDC dc, LONG x, LONG top, LONG bottom) { PatBlt(dc, x, top, 1, bottom - top, BLACKNESS); }

void RenderMono(FreeTimeRecord *r)
{
    HDC dc = r->dcMono;
    LONG w = GridWidth(r), h = GridHeight(r);
    PatBlt(dc, 0, 0, w, h, WHITENESS);
    PatBlt(dc, 0, 0, w, 1, BLACKNESS);
    PatBlt(dc, 0, h - 1, w, 1, BLACKNESS);
    DWORD columns = FreeTimeColumnCount(r);
    HGDIOBJ earlierFont = SelectObject(dc, r->font);
    SetBkMode(dc, TRANSPARENT);
    for (DWORD c = 0; c < columns; ++c) {
        LONG left = 0, width = 0;
        FreeTimeColumn(r, c, &left, &width);
        if (c)
            VLine(dc, left - 1, 0, h);
        if (r->viewMode != kPeopleView || r->firstPerson + c >= r->personCount)
            continue;
        const char *name = r->people[r->firstPerson + c].name;
        int length = lstrlenA(name);
        RECT measure = {0, 0, 0, 0};
        DrawTextA(dc, name, length, &measure, DT_CALCRECT | DT_SINGLELINE);
        RECT box = {left, 2, left + width, h - 2};
        // A long name starts at the bottom; a short one stands centred.
        DWORD flags = measure.right > h - 20 ? 41 : 37;
        UIVertDrawText(dc, name, length, &box, flags, 0);
    }
    if (earlierFont)
        SelectObject(dc, earlierFont);
}

bool RenderColour(FreeTimeRecord *r)
{
    HDC dc = r->dcColour;
    LONG w = GridWidth(r), h = GridHeight(r);
    PatBlt(dc, 0, 0, w, h, WHITENESS);
    static const WORD kRows[8] = {0xAA, 0x00, 0xAA, 0x00, 0xAA, 0x00, 0xAA, 0x00};
    HBITMAP pattern = CreateBitmap(8, 8, 1, 1, kRows);
    HBRUSH lines = pattern ? CreatePatternBrush(pattern) : nullptr;
    HBRUSH blue = lines ? CreateSolidBrush(kBlockBrush) : nullptr;
    HBRUSH shade = blue ? CreateSolidBrush(kShadeBrush) : nullptr;
    bool ok = shade != nullptr;
    if (!ok) {
        OSErrorSetErrorInfo(RV_GDIError, "FreeTime brushes");
    } else {
        COLORREF earlierText = SetTextColor(dc, kHourLine);
        COLORREF earlierBack = SetBkColor(dc, 0xFFFFFF);
        HGDIOBJ earlierBrush = SelectObject(dc, lines);
        DateTimeValue hour;
        ok = SendMessageA(r->tracker, TTM_GETVIEWSTART, 0, reinterpret_cast<LPARAM>(&hour)) == 1;
        DWORD hours = static_cast<DWORD>(SendMessageA(r->tracker, TTM_GETHOURSINVIEW, 0, 0));
        for (DWORD i = 1; ok && i < hours; ++i) {
            if (!AddMinutes(&hour, 60))
                break;
            LONG y = TrackerY(r, &hour) + r->rcHeader.bottom - r->rcGrid.top;
            if (y > 0 && y < h - 1)
                PatBlt(dc, 0, y, w, 1, PATCOPY);
        }
        SetTextColor(dc, earlierText);
        SetBkColor(dc, earlierBack);
        BitBlt(dc, 0, 0, w, h, r->dcMono, 0, 0, SRCAND);
        SelectObject(dc, blue);
        if (ok)
            ok = r->viewMode == kPeopleView ? PeopleBlocks(r) : WeekBlocks(r);
        if (ok && r->viewMode == kPeopleView) {
            SelectObject(dc, shade);
            DWORD columns = FreeTimeColumnCount(r);
            for (DWORD c = 0; c < columns && r->firstPerson + c < r->personCount; ++c) {
                if (!r->people[r->firstPerson + c].unavailable)
                    continue;
                LONG left = 0, width = 0;
                FreeTimeColumn(r, c, &left, &width);
                PatBlt(dc, left, 1, width, h - 2, DSTINVERT);
                PatBlt(dc, left, 1, width, h - 2, kBlockRop);
            }
        }
        SelectClipRgn(dc, nullptr);
        SelectObject(dc, earlierBrush);
    }
    if (shade) DeleteObject(shade);
    if (blue) DeleteObject(blue);
    if (lines) DeleteObject(lines);
    if (pattern) DeleteObject(pattern);
    return ok;
}

// The meeting on dcShown in the week view; the column it stands in, or -1.
LONG DrawMeeting(FreeTimeRecord *r)
{
    if (r->viewMode != kWeekView)
        return -1;
    DateTimeValue start, day;
    if (SendMessageA(r->tracker, TTM_GETSTART, 0, reinterpret_cast<LPARAM>(&start)) != 1 || !ViewDate(r, &day))
        return -1;
    LRESULT duration = SendMessageA(r->tracker, TTM_GETDURATION, 0, 0);
    LONG column = 0;
    DateTimeValue startDay = start;
    startDay.hour = startDay.minute = startDay.second = 0;
    if (!DaysBetween(&r->weekStart, &startDay, &column) || column < 0 ||
        static_cast<DWORD>(column) >= FreeTimeColumnCount(r))
        return -1;
    DateTimeValue end = start;
    if (!AddMinutes(&end, HIWORD(duration) * 60 + LOWORD(duration)))
        return -1;
    DateTimeValue top = day, bottom = day;
    top.hour = start.hour;
    top.minute = start.minute;
    bottom.hour = end.hour;
    bottom.minute = end.minute;
    LONG y1 = GridY(r, TrackerY(r, &top));
    LONG y2 = end.day == start.day ? GridY(r, TrackerY(r, &bottom)) : GridHeight(r) - 1;
    if (y2 - y1 < 3)
        return column;
    LONG left = 0, width = 0;
    FreeTimeColumn(r, static_cast<DWORD>(column), &left, &width);
    LONG blockWidth = (width & 1) ? 7 : 8;
    left += (width - blockWidth) / 2;
    COLORREF colour = static_cast<COLORREF>(SendMessageA(r->tracker, TTM_GETOWNBARCOLOUR, 0, 0));
    COLORREF half = RGB(GetRValue(colour) / 2, GetGValue(colour) / 2, GetBValue(colour) / 2);
    RECT outline = {left, y1, left + blockWidth, y2};
    RECT inset = {left + 1, y1 + 1, left + blockWidth - 1, y2 - 1};
    RECT fill = {left + 2, y1 + 2, left + blockWidth - 2, y2 - 2};
    RECT core = {left + 3, y1 + 3, left + blockWidth - 3, y2 - 3};
    Fill(r->dcShown, outline, 0);
    Fill(r->dcShown, inset, 0xFFFFFF);
    Fill(r->dcShown, fill, half);
    if (core.bottom > core.top)
        Fill(r->dcShown, core, colour);
    return column;
}

HDC MakeSurface(HDC screen, LONG width, LONG height, bool mono, HBITMAP *saved)
{
    HDC dc = CreateCompatibleDC(screen);
    if (!dc)
        return nullptr;
    HBITMAP bitmap = mono ? CreateBitmap(width, height, 1, 1, nullptr) : CreateCompatibleBitmap(screen, width, height);
    if (!bitmap) {
        DeleteDC(dc);
        return nullptr;
    }
    *saved = static_cast<HBITMAP>(SelectObject(dc, bitmap));
    return dc;
}

void DropSurface(HDC *dc, HBITMAP saved)
{
    if (!*dc)
        return;
    HGDIOBJ bitmap = SelectObject(*dc, saved);
    DeleteDC(*dc);
    if (bitmap)
        DeleteObject(bitmap);
    *dc = nullptr;
}

void PaintWeekHeader(FreeTimeRecord *r, HDC dc)
{
    HGDIOBJ earlierFont = SelectObject(dc, r->font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, 0);
    char text[64];
    if (OSMonthToString(r->weekStart.month, 4, text, 63)) {
        RECT month = r->rcHeader;
        month.left += 3;
        DrawTextA(dc, text, -1, &month, DT_SINGLELINE | DT_VCENTER);
    }
    LONG bandTop = r->rcHeader.bottom, bandBottom = r->rcGrid.top - 1;
    LONG middle = bandTop + (bandBottom - bandTop) / 2;
    DWORD columns = FreeTimeColumnCount(r);
    for (DWORD c = 0; c < columns; ++c) {
        LONG left = 0, width = 0;
        FreeTimeColumn(r, c, &left, &width);
        left += r->rcGrid.left;
        if (c)
            VLine(dc, left - 1, bandTop, bandBottom);
        DateTimeValue day = r->weekStart;
        LONG weekday = 0;
        if (!OSAdjustDateTimeByDays(&day, static_cast<LONG>(c)) || !OSDayOfWeek(&day, &weekday, 0))
            continue;
        RECT top = {left, bandTop, left + width, middle};
        RECT bottom = {left, middle, left + width, bandBottom};
        if (OSDayToString(weekday, 1, text, sizeof text))
            DrawTextA(dc, text, -1, &top, DT_SINGLELINE | DT_VCENTER | DT_CENTER);
        if (OSDateTimeToString(&day, text, "dd", 0, sizeof text))
            DrawTextA(dc, text, -1, &bottom, DT_SINGLELINE | DT_VCENTER | DT_CENTER);
    }
    if (earlierFont)
        SelectObject(dc, earlierFont);
}

void PaintIcons(FreeTimeRecord *r, HDC dc)
{
    DWORD columns = FreeTimeColumnCount(r);
    for (DWORD c = 0; c < columns && r->firstPerson + c < r->personCount; ++c) {
        DWORD state = r->people[r->firstPerson + c].state;
        if (!state)
            continue;
        // States the resource library has no picture for show none.
        HBITMAP icon = ResourceLoadBitmap(g_module.hResourceLibrary, static_cast<WORD>(state + kFirstStateBitmap));
        if (!icon)
            continue;
        LONG left = 0, width = 0;
        FreeTimeColumn(r, c, &left, &width);
        RECT band = {r->rcGrid.left + left, r->rcHeader.bottom, r->rcGrid.left + left + width, r->rcGrid.top};
        // The mask is made here, by the maker that frees what it could not
        // finish, so that a refused step leaves no bitmap behind.
        HBITMAP mask = UICreateMaskBitmap(dc, icon, kIconKey);
        if (mask) {
            GadUtilMaskBltNoFlicker(dc, &band, icon, mask, kIconKey);
            DeleteObject(mask);
        }
        DeleteObject(icon);
    }
}

}  // namespace

void FreeTimeMetrics(HWND window, FreeTimeRecord *r)
{
    HDC dc = GetDC(window);
    if (!dc)
        return;
    HGDIOBJ earlier = SelectObject(dc, r->font);
    TEXTMETRICA tm = {};
    GetTextMetricsA(dc, &tm);
    if (earlier)
        SelectObject(dc, earlier);
    ReleaseDC(window, dc);
    r->headerHeight = static_cast<DWORD>(tm.tmHeight + 2 * tm.tmInternalLeading + tm.tmExternalLeading);
    if (r->headerHeight == 0)
        r->headerHeight = 1;
}

DWORD FreeTimeColumnCount(const FreeTimeRecord *r)
{
    if (r->viewMode == kPeopleView)
        return static_cast<DWORD>(GridWidth(r) > 0 ? GridWidth(r) : 0) / r->headerHeight;
    return r->showWeekend ? 7 : 5;
}

void FreeTimeColumn(const FreeTimeRecord *r, DWORD index, LONG *left, LONG *width)
{
    LONG gw = GridWidth(r) > 0 ? GridWidth(r) : 0;
    LONG count = static_cast<LONG>(FreeTimeColumnCount(r));
    LONG w = 0, remainder = 0;
    if (r->viewMode == kPeopleView) {
        w = static_cast<LONG>(r->headerHeight);
        remainder = gw - count * w;
    } else {
        w = gw / count;
        remainder = gw % count;
    }
    LONG i = static_cast<LONG>(index);
    LONG x = i * w + (i < remainder ? i : remainder);
    LONG span = w + (i < remainder ? 1 : 0);
    if (i > 0) {
        ++x;
        --span;
    }
    *left = x;
    *width = span > 0 ? span : 0;
}

void FreeTimeLayout(HWND window, FreeTimeRecord *r)
{
    RECT client;
    GetClientRect(window, &client);
    LONG w = client.right, h = client.bottom;
    r->rcHeader = {0, 0, w, r->viewMode == kWeekView ? static_cast<LONG>(r->headerHeight) : 0};
    LONG t = LOWORD(SendMessageA(r->tracker, TTM_GETIDEALSIZE, 0, 0));
    LONG top = r->rcHeader.bottom;
    MoveWindow(r->tracker, w - t, top, t, h - top > 0 ? h - top : 0, TRUE);
    LONG sb = GetSystemMetrics(SM_CYHSCROLL);
    MoveWindow(r->scrollBar, -1, h - sb, w - t + 1 > 0 ? w - t + 1 : 0, sb + 1, TRUE);
    DateTimeValue view, last;
    LONG y1 = 0, y2 = 0;
    if (SendMessageA(r->tracker, TTM_GETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view)) == 1) {
        last = view;
        y1 = TrackerY(r, &view);
        if (AddMinutes(&last, static_cast<LONG>(SendMessageA(r->tracker, TTM_GETHOURSINVIEW, 0, 0)) * 60))
            y2 = TrackerY(r, &last);
    }
    r->rcGrid = {0, top + y1, w - t, top + y2 + 1};
    if (r->rcGrid.right < 0)
        r->rcGrid.right = 0;
    if (r->rcGrid.bottom < r->rcGrid.top)
        r->rcGrid.bottom = r->rcGrid.top;
}

void FreeTimeDestroySurfaces(FreeTimeRecord *r)
{
    DropSurface(&r->dcShown, r->savedShown);
    DropSurface(&r->dcColour, r->savedColour);
    DropSurface(&r->dcMono, r->savedMono);
}

bool FreeTimeBuildSurfaces(HWND window, FreeTimeRecord *r)
{
    FreeTimeDestroySurfaces(r);
    LONG w = GridWidth(r) > 0 ? GridWidth(r) : 1, h = GridHeight(r) > 0 ? GridHeight(r) : 1;
    HDC screen = GetDC(window);
    if (!screen) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return false;
    }
    r->dcMono = MakeSurface(screen, w, h, true, &r->savedMono);
    r->dcColour = r->dcMono ? MakeSurface(screen, w, h, false, &r->savedColour) : nullptr;
    r->dcShown = r->dcColour ? MakeSurface(screen, w, h, false, &r->savedShown) : nullptr;
    ReleaseDC(window, screen);
    if (r->dcShown) {
        r->needsRender = 1;
        return true;
    }
    OSErrorSetErrorInfo(RV_GDIError, "FreeTime surfaces");
    FreeTimeDestroySurfaces(r);
    return false;
}

bool FreeTimeRender(HWND window, FreeTimeRecord *r)
{
    (void)window;
    if (!r->dcShown)
        return true;
    RenderMono(r);
    bool ok = RenderColour(r);
    BitBlt(r->dcShown, 0, 0, GridWidth(r), GridHeight(r), r->dcColour, 0, 0, SRCCOPY);
    DrawMeeting(r);
    return ok;
}

void FreeTimeFastMeeting(HWND window, FreeTimeRecord *r)
{
    if (r->viewMode != kWeekView || !r->dcShown || !r->redrawOn || r->needsRender)
        return;
    BitBlt(r->dcShown, 0, 0, GridWidth(r), GridHeight(r), r->dcColour, 0, 0, SRCCOPY);
    LONG column = DrawMeeting(r);
    HDC dc = GetDC(window);
    if (!dc)
        return;
    // The whole grid goes out when the meeting left its column.
    LONG left = 0, width = GridWidth(r);
    if (column >= 0)
        FreeTimeColumn(r, static_cast<DWORD>(column), &left, &width);
    else
        left = 0;
    BitBlt(dc, r->rcGrid.left + left, r->rcGrid.top, width, GridHeight(r), r->dcShown, left, 0, SRCCOPY);
    ReleaseDC(window, dc);
}

void FreeTimeInvalidate(HWND window, FreeTimeRecord *r)
{
    r->needsRender = 1;
    if (r->redrawOn)
        InvalidateRect(window, nullptr, FALSE);
}

void FreeTimeSetScrollBar(FreeTimeRecord *r)
{
    SCROLLINFO info = {sizeof info, SIF_RANGE | SIF_POS | SIF_PAGE, 0, 2, 0, 1, 0};
    if (r->viewMode == kWeekView) {
        SetScrollInfo(r->scrollBar, SB_CTL, &info, TRUE);
        ShowWindow(r->scrollBar, SW_SHOWNA);
        return;
    }
    DWORD columns = FreeTimeColumnCount(r);
    if (r->personCount <= columns) {
        r->firstPerson = 0;
        ShowWindow(r->scrollBar, SW_HIDE);
        return;
    }
    info.nMax = static_cast<int>(r->personCount - columns);
    info.nPage = 0;
    info.nPos = static_cast<int>(r->firstPerson);
    SetScrollInfo(r->scrollBar, SB_CTL, &info, TRUE);
    ShowWindow(r->scrollBar, SW_SHOWNA);
}

void FreeTimeOnPaint(HWND window, FreeTimeRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    HDC mem = CreateCompatibleDC(dc);
    HBITMAP bitmap = mem ? CreateCompatibleBitmap(dc, client.right > 0 ? client.right : 1,
                                                  client.bottom > 0 ? client.bottom : 1)
                         : nullptr;
    if (!bitmap) {
        if (mem)
            DeleteDC(mem);
        EndPaint(window, &ps);
        OSErrorSetErrorInfo(RV_GDIError, "FreeTime paint");
        GadgetNotifyAlive(window, FTN_ERROR, r);
        return;
    }
    HGDIOBJ saved = SelectObject(mem, bitmap);
    FillRect(mem, &client, GetSysColorBrush(COLOR_WINDOW));
    bool ok = true;
    if (r->redrawOn && r->dcShown) {
        if (r->needsRender) {
            ok = FreeTimeRender(window, r);
            r->needsRender = 0;
        }
        BitBlt(mem, r->rcGrid.left, r->rcGrid.top, GridWidth(r), GridHeight(r), r->dcShown, 0, 0, SRCCOPY);
        if (r->viewMode == kWeekView) {
            PatBlt(mem, r->rcGrid.left, r->rcHeader.bottom, GridWidth(r), 1, BLACKNESS);
            PaintWeekHeader(r, mem);
        } else {
            PaintIcons(r, mem);
        }
        VLine(mem, r->rcGrid.right, r->rcHeader.bottom, r->rcGrid.bottom);
    }
    BitBlt(dc, 0, 0, client.right, client.bottom, mem, 0, 0, SRCCOPY);
    SelectObject(mem, saved);
    DeleteObject(bitmap);
    DeleteDC(mem);
    EndPaint(window, &ps);
    if (!ok)
        GadgetNotifyAlive(window, FTN_ERROR, r);
}
