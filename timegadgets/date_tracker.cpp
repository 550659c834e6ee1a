// DateTracker: a month calendar. A title with the month and year between two
// month buttons, a row of day names, and the month's days in up to six rows
// of seven; the selected day carries the focus rectangle and the window
// text is always that date. Years stop at 2100.
#include "time_gadgets.h"
#include "../gadgets/gadget_frame.h"
#include "../core/module_globals.h"
#include "qziso32.h"

namespace {

struct CellDate {
    BYTE day;
    BYTE month;
    BYTE spare[2];
    DWORD year;
};

struct DateTrackerRecord {
    HBITMAP prevBitmap;
    BITMAP prevInfo;
    RECT cells[42];          // row * 7 + column; zeroed before each paint
    CellDate cellDates[42];  // zero for a cell that was not drawn
    RECT rcPrev;
    RECT rcNext;
    RECT rcHeading;
    RECT rcFocus;            // all zero for none
    LONG boldDerived;        // 1: boldFont was made here; 0: normalFont was
    HFONT boldFont;
    TEXTMETRICA metrics;
    HFONT normalFont;
    DateTimeValue date;
    HBRUSH blackBrush;
    HBRUSH whiteBrush;
    HBRUSH greyBrush;
    HBRUSH darkBrush;
    LONG textGuard;          // above 0 while the gadget sets its own text
    LONG gridDrag;
    HBITMAP nextBitmap;
    BITMAP nextInfo;
    LONG rowCount;
    HBRUSH hatchBrush;
};

const UINT kPrevBitmap = 7;
const UINT kNextBitmap = 8;
const UINT_PTR kPrevTimer = 1;
const UINT_PTR kNextTimer = 2;
const UINT kFirstRepeat = 250;
const UINT kFastRepeat = 55;
const DWORD kRepeatStarts = 1000;
const DWORD kFastStarts = 2000;
const WORD kLastYear = 2100;
const int kTextSize = 80;
const COLORREF kTodayBack = 0x0000FF;
const UINT kCellText = DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOCLIP;

// One press at a time for all DateTracker windows: the capture keeps it to
// one of them.
struct DragState {
    bool active;
    DateTrackerRecord *record;
    HWND window;
    HDC dc;
    BYTE month;          // the month on show at the press
    RECT button;
    bool onButton;
    bool buttonPressed;  // a month button, not the grid
    bool timerRunning;
    DWORD pressTick;
};
DragState g_drag = {};

DateTrackerRecord *Record(HWND window) { return GadgetRecord<DateTrackerRecord>(window); }

// The fonts; when the derived one could not be made, the one given.
HFONT NormalFont(const DateTrackerRecord *r) { return r->normalFont ? r->normalFont : r->boldFont; }
HFONT BoldFont(const DateTrackerRecord *r) { return r->boldFont ? r->boldFont : r->normalFont; }

bool InRange(const DateTimeValue &d) { return OSDTIsValidDateTime(&d) && d.year <= kLastYear; }

bool SameDay(const CellDate &c, const DateTimeValue &d)
{
    return c.year == d.year && c.month == d.month && c.day == d.day;
}

// ---------------------------------------------------------------- text
// Formats the date as the window text and tells the parent `code` (none for
// 0), unless the gadget is already setting its text. False when the parent
// destroyed the gadget meanwhile.
bool SetText(HWND window, DateTrackerRecord *r, WORD code)
{
    if (r->textGuard > 0)
        return true;
    char text[kTextSize] = {};
    OSDateTimeToString(&r->date, text, nullptr, DTS_SHORTDATE, kTextSize);
    ++r->textGuard;
    SetWindowTextA(window, text);
    if (code && !GadgetNotifyAlive(window, code, r))
        return false;
    --r->textGuard;
    return true;
}

// ---------------------------------------------------------------- drawing
// The focus rectangle: the old one is inverted away, then drawn on the cell
// of the date, if one is on show.
void MoveFocus(HDC dc, DateTrackerRecord *r)
{
    DrawFocusRect(dc, &r->rcFocus);
    SetRectEmpty(&r->rcFocus);
    for (int column = 0; column < 7; ++column)
        for (int row = 0; row < 6; ++row) {
            int i = row * 7 + column;
            if (!SameDay(r->cellDates[i], r->date))
                continue;
            r->rcFocus = r->cells[i];
            DrawFocusRect(dc, &r->rcFocus);
        }
}

void MoveFocus(HWND window, DateTrackerRecord *r)
{
    if (g_drag.active && g_drag.record == r) {
        MoveFocus(g_drag.dc, r);
        return;
    }
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError);
        return;
    }
    MoveFocus(dc, r);
    ReleaseDC(window, dc);
}

// A month button's glyph, its top-left pixel being the transparent colour.
void DrawGlyph(HDC dc, HBITMAP glyph, const BITMAP &info, int x, int y)
{
    HDC source = CreateCompatibleDC(dc);
    if (!source) {
        OSErrorSetErrorInfo(RV_GDIError);
        return;
    }
    HGDIOBJ old = SelectObject(source, glyph);
    UIMaskBlt(dc, x, y, info.bmWidth, info.bmHeight, source, 0, 0, GetPixel(source, 0, 0));
    SelectObject(source, old);
    DeleteDC(source);
}

void FillHatch(HDC dc, const DateTrackerRecord *r, const RECT &rect)
{
    COLORREF oldText = SetTextColor(dc, GetSysColor(COLOR_BTNFACE));
    COLORREF oldBack = SetBkColor(dc, 0xFFFFFF);
    FillRect(dc, &rect, r->hatchBrush);
    SetBkColor(dc, oldBack);
    SetTextColor(dc, oldText);
}

// A month button up or pressed: the hatch over its rectangle and a pixel
// round it, the glyph in place or shifted down and outwards.
void DrawButton(HDC dc, const DateTrackerRecord *r, bool next, bool pressed)
{
    const RECT &rect = next ? r->rcNext : r->rcPrev;
    RECT grown = rect;
    InflateRect(&grown, 1, 1);
    FillHatch(dc, r, grown);
    int dx = pressed ? (next ? 1 : -1) : 0;
    int dy = pressed ? 1 : 0;
    DrawGlyph(dc, next ? r->nextBitmap : r->prevBitmap, next ? r->nextInfo : r->prevInfo,
              rect.left + dx, rect.top + dy);
}

// What the month walk hands each cell.
struct GridWalk {
    HWND window;
    HDC dc;
    DateTrackerRecord *record;
    RECT grid;
    int cellHeight;
    int cellWidth;
    DateTimeValue today;
    LONG stopRow;
};

LONG WINAPI PaintCell(const DateTimeValue *cell, LONG column, LONG row, LONG_PTR data1, LONG_PTR)
{
    GridWalk *walk = reinterpret_cast<GridWalk *>(data1);
    DateTrackerRecord *r = walk->record;
    if (row < 0 || row > 5 || column < 0 || column > 6)
        return 1;
    int i = row * 7 + column;
    RECT &rect = r->cells[i];
    SetRect(&rect, walk->grid.left + column * walk->cellWidth, walk->grid.top + row * walk->cellHeight,
            walk->grid.left + (column + 1) * walk->cellWidth,
            walk->grid.top + (row + 1) * walk->cellHeight);
    if (walk->stopRow != 0 && row > walk->stopRow)
        return 1;
    if (row > 1 && column == 0 && cell->day == 1) {
        // A row wholly in the next month is left out.
        walk->stopRow = row - 1;
        return 1;
    }
    if (walk->stopRow == 0 && row > 1 && cell->day == 1)
        walk->stopRow = row;
    HDC dc = walk->dc;
    if (cell->month != r->date.month || cell->year != r->date.year)
        FillRect(dc, &rect, r->greyBrush);
    bool today = cell->year == walk->today.year && cell->month == walk->today.month &&
                 cell->day == walk->today.day;
    HGDIOBJ oldFont = nullptr;
    if (today) {
        SetBkMode(dc, OPAQUE);
        oldFont = SelectObject(dc, BoldFont(r));
        SetTextColor(dc, 0xFFFFFF);
        SetBkColor(dc, kTodayBack);
    }
    char number[8];
    OScsprintf(number, sizeof number, "%d", cell->day);
    DrawTextA(dc, number, -1, &rect, kCellText);
    if (today) {
        SelectObject(dc, oldFont);
        SetTextColor(dc, 0);
        SetBkMode(dc, TRANSPARENT);
    }
    CellDate &stored = r->cellDates[i];
    stored.day = cell->day;
    stored.month = cell->month;
    stored.year = cell->year;
    return 1;
}

void PaintMonth(HWND window, HDC dc, DateTrackerRecord *r)
{
    DateTimeValue today = {};
    OSGetDateTime(&today);
    DateTimeValue first = r->date;
    first.day = 1;
    LONG weekStart = OSDateTimeGetWeekStart();
    const TEXTMETRICA &tm = r->metrics;
    const int line = tm.tmHeight + tm.tmExternalLeading + 1;
    SetRectEmpty(&r->rcFocus);

    RECT rc;
    GetClientRect(window, &rc);
    FillRect(dc, &rc, r->whiteBrush);
    InflateRect(&rc, -1, -1);
    RECT edge = {rc.left, rc.bottom - 1, rc.right, rc.bottom};
    FillRect(dc, &edge, r->darkBrush);
    edge = {rc.right - 1, rc.top, rc.right, rc.bottom};
    FillRect(dc, &edge, r->darkBrush);
    RECT face = {rc.left, rc.top, rc.right - 1, rc.bottom - 1};
    FillHatch(dc, r, face);
    InflateRect(&rc, -1, -1);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, 0);

    HGDIOBJ oldFont = SelectObject(dc, NormalFont(r));
    char text[kTextSize] = {};
    OSDateTimeToString(&r->date, text, "MMMM yyyy", 0, kTextSize);
    DrawTextA(dc, text, -1, &rc, DT_CENTER | DT_SINGLELINE | DT_NOCLIP);

    SetRect(&r->rcPrev, rc.left + 2, rc.top + (line - r->prevInfo.bmHeight) / 2, 0, 0);
    r->rcPrev.right = r->rcPrev.left + r->prevInfo.bmWidth;
    r->rcPrev.bottom = r->rcPrev.top + r->prevInfo.bmHeight;
    SetRect(&r->rcNext, rc.right - r->nextInfo.bmWidth - 2, rc.top + (line - r->nextInfo.bmHeight) / 2, 0, 0);
    r->rcNext.right = r->rcNext.left + r->nextInfo.bmWidth;
    r->rcNext.bottom = r->rcNext.top + r->nextInfo.bmHeight;
    DrawGlyph(dc, r->prevBitmap, r->prevInfo, r->rcPrev.left, r->rcPrev.top);
    DrawGlyph(dc, r->nextBitmap, r->nextInfo, r->rcNext.left, r->rcNext.top);

    // The day names over seven columns centred in the face.
    const int y = rc.top - 1 + line;
    const int width = (rc.right - rc.left) / 7;
    rc.left += (rc.right - 7 * width - rc.left) >> 1;
    rc.right = rc.left + 7 * width;
    for (int i = 0; i < 7; ++i) {
        char name[kTextSize] = {};
        OSDayToString((i + weekStart) % 7, 1, name, kTextSize);
        RECT cell = {rc.left + i * width, y, rc.left + (i + 1) * width, y + tm.tmHeight};
        DrawTextA(dc, name, -1, &cell, kCellText);
    }
    SetRect(&r->rcHeading, rc.left, y, rc.right, y + line + 1);
    RECT rule = {rc.left, y + line, rc.right, y + line + 1};
    FillRect(dc, &rule, r->blackBrush);
    OffsetRect(&rule, 0, 1);
    FillRect(dc, &rule, r->whiteBrush);

    // The days: rows of equal height centred in what is left.
    rc.top = r->rcHeading.bottom + 1;
    r->rowCount = OSDateTimeCalcNumRowsForMonth(&first, weekStart);
    ZeroMemory(r->cells, sizeof r->cells);
    ZeroMemory(r->cellDates, sizeof r->cellDates);
    if (r->rowCount > 0) {
        const int height = (rc.bottom - rc.top) / r->rowCount;
        rc.top += (rc.bottom - rc.top - height * r->rowCount) / 2;
        GridWalk walk = {window, dc, r, rc, height, width, today, 0};
        OSDateTimeMonthGridEx(&first, weekStart, FALSE, PaintCell, reinterpret_cast<LONG_PTR>(&walk), 0);
    }
    SelectObject(dc, oldFont);
    MoveFocus(dc, r);
}

void OnPaint(HWND window, DateTrackerRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError);
        return;
    }
    PaintMonth(window, dc, r);
    EndPaint(window, &ps);
}

// ---------------------------------------------------------------- moving
// The month on show: the third row always lies in it.
bool OnShow(const DateTrackerRecord *r, const DateTimeValue &d)
{
    const CellDate &middle = r->cellDates[14];
    return middle.year == d.year && middle.month == d.month;
}

// Moves the date; all three 0 means today. A date out of range leaves
// everything as it was. Within the month on show only the focus moves;
// another month is painted at once, the buttons and day names left alone.
bool MoveDate(HWND window, DateTrackerRecord *r, LONG years, LONG months, LONG days)
{
    DateTimeValue moved = r->date;
    if (years + months + days == 0) {
        OSGetDateTime(&moved);
    } else if (!OSAdjustDateTime(&moved, years, months, days, 0, 0, 0, 0)) {
        return false;
    }
    if (!InRange(moved))
        return false;
    r->date = moved;
    if (OnShow(r, moved)) {
        MoveFocus(window, r);
    } else {
        g_drag.month = moved.month;
        InvalidateRect(window, nullptr, TRUE);
        ValidateRect(window, &r->rcPrev);
        ValidateRect(window, &r->rcNext);
        ValidateRect(window, &r->rcHeading);
        UpdateWindow(window);
    }
    return SetText(window, r, DTKN_DATECHANGED);
}

// ---------------------------------------------------------------- keys
void OnKeyDown(HWND window, DateTrackerRecord *r, WPARAM key)
{
    const bool visible = IsWindowVisible(window) != FALSE;
    const bool control = GetKeyState(VK_CONTROL) < 0;
    bool moved = false;
    switch (key) {
    case VK_TAB:
    case VK_RETURN:
        SetText(window, r, DTKN_DATECHOSEN);
        return;
    case VK_PRIOR:
        moved = control ? MoveDate(window, r, -1, 0, 0) : MoveDate(window, r, 0, -1, 0);
        break;
    case VK_NEXT:
        moved = control ? MoveDate(window, r, 1, 0, 0) : MoveDate(window, r, 0, 1, 0);
        break;
    case VK_HOME:
        moved = MoveDate(window, r, 0, 0, 0);
        break;
    case VK_LEFT:
        moved = MoveDate(window, r, 0, 0, -1);
        break;
    case VK_RIGHT:
        moved = MoveDate(window, r, 0, 0, 1);
        break;
    case VK_UP:
        moved = MoveDate(window, r, 0, 0, visible ? -7 : -1);
        break;
    case VK_DOWN:
        moved = MoveDate(window, r, 0, 0, visible ? 7 : 1);
        break;
    default:
        return;
    }
    // A hidden gadget (held closed in a drop-down) hands its text back
    // through WM_SETTEXT, so its owner follows the keys.
    if (moved && !visible) {
        char text[kTextSize] = {};
        OSDateTimeToString(&r->date, text, nullptr, DTS_SHORTDATE, kTextSize);
        SetWindowTextA(window, text);
    }
}

// ---------------------------------------------------------------- mouse
void KillRepeat(HWND window)
{
    KillTimer(window, kPrevTimer);
    KillTimer(window, kNextTimer);
    g_drag.timerRunning = false;
}

// Ends a press: the button up, the timers, the DC and the capture gone.
void EndDrag(HWND window, DateTrackerRecord *r)
{
    if (g_drag.buttonPressed && g_drag.onButton && g_drag.dc)
        DrawButton(g_drag.dc, r, EqualRect(&g_drag.button, &r->rcNext) != FALSE, false);
    KillRepeat(window);
    if (g_drag.dc)
        ReleaseDC(g_drag.window, g_drag.dc);
    g_drag.dc = nullptr;
    g_drag.active = false;
    g_drag.record = nullptr;
    g_drag.window = nullptr;
    if (GetCapture() == window)
        ReleaseCapture();
}

bool Dragging(const DateTrackerRecord *r) { return g_drag.active && g_drag.record == r; }

void OnMouseMove(HWND window, DateTrackerRecord *r, POINT pt)
{
    if (!Dragging(r))
        return;
    if (g_drag.buttonPressed) {
        bool next = EqualRect(&g_drag.button, &r->rcNext) != FALSE;
        bool on = PtInRect(&g_drag.button, pt) != FALSE;
        if (g_drag.onButton && !on) {
            DrawButton(g_drag.dc, r, false, false);
            DrawButton(g_drag.dc, r, true, false);
        } else if (!g_drag.onButton && on) {
            DrawButton(g_drag.dc, r, next, true);
        }
        g_drag.onButton = on;
        return;
    }
    for (int i = 0; i < 42; ++i) {
        if (!PtInRect(&r->cells[i], pt))
            continue;
        if (EqualRect(&r->cells[i], &r->rcFocus))
            return;
        KillRepeat(window);
        DateTimeValue chosen = r->date;
        chosen.year = static_cast<WORD>(r->cellDates[i].year);
        chosen.month = r->cellDates[i].month;
        chosen.day = r->cellDates[i].day;
        if (!InRange(chosen))
            return;
        r->date = chosen;
        MoveFocus(window, r);
        SetText(window, r, DTKN_DATECHANGED);
        return;
    }
}

void OnLButtonDown(HWND window, DateTrackerRecord *r, WPARAM keys, LPARAM where)
{
    if (g_drag.active)
        EndDrag(g_drag.window, g_drag.record);
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError);
        return;
    }
    g_drag = {};
    g_drag.record = r;
    g_drag.window = window;
    g_drag.dc = dc;
    SetCapture(window);
    g_drag.active = true;
    g_drag.month = r->date.month;
    POINT pt = {static_cast<short>(LOWORD(where)), static_cast<short>(HIWORD(where))};
    bool prev = PtInRect(&r->rcPrev, pt) != FALSE;
    if (prev || PtInRect(&r->rcNext, pt)) {
        g_drag.button = prev ? r->rcPrev : r->rcNext;
        g_drag.buttonPressed = true;
        g_drag.onButton = true;
        DrawButton(dc, r, !prev, true);
        SetTimer(window, prev ? kPrevTimer : kNextTimer, kFirstRepeat, nullptr);
        g_drag.timerRunning = true;
        g_drag.pressTick = GetTickCount();
        MoveDate(window, r, 0, prev ? -1 : 1, 0);
        return;
    }
    r->gridDrag = 1;
    SendMessageA(window, WM_MOUSEMOVE, keys, where);
}

// A held month button steps after a second, then faster after two.
void OnTimer(HWND window, DateTrackerRecord *r, UINT_PTR id)
{
    if ((id != kPrevTimer && id != kNextTimer) || !Dragging(r))
        return;
    DWORD held = GetTickCount() - g_drag.pressTick;
    if (held <= kRepeatStarts)
        return;
    if (held > kFastStarts)
        SetTimer(window, id, kFastRepeat, nullptr);
    MoveDate(window, r, 0, id == kPrevTimer ? -1 : 1, 0);
}

void OnLButtonUp(HWND window, DateTrackerRecord *r, POINT pt)
{
    if (!Dragging(r))
        return;
    EndDrag(window, r);
    for (const RECT &cell : r->cells)
        if (PtInRect(&cell, pt)) {
            SetText(window, r, DTKN_DATECHOSEN);
            return;
        }
    if (r->date.month != g_drag.month)
        InvalidateRect(window, nullptr, TRUE);
    r->gridDrag = 0;
}

// ---------------------------------------------------------------- text in
LRESULT OnSetDate(HWND window, DateTrackerRecord *r, const DateTimeValue *value)
{
    if (!value || !InRange(*value))
        return DTK_FAILURE;
    r->date = *value;
    SetText(window, r, 0);
    InvalidateRect(window, nullptr, TRUE);
    return GadgetSuccess;
}

LRESULT OnGetDate(DateTrackerRecord *r, DateTimeValue *out)
{
    r->date.hour = r->date.minute = r->date.second = 0;
    if (!out || !OSDTIsValidDateTime(&r->date))
        return DTK_FAILURE;
    *out = r->date;
    return GadgetSuccess;
}

// Text from outside is parsed; a text that is no date gives the current
// time and an error notification. The text itself is kept as given.
LRESULT OnSetText(HWND window, DateTrackerRecord *r, LPARAM lParam)
{
    const char *text = reinterpret_cast<const char *>(lParam);
    if (!text || !text[0])
        return FALSE;
    if (r->textGuard > 0)
        return DefWindowProcA(window, WM_SETTEXT, 0, lParam);
    DateTimeValue parsed = {};
    if (!OSStringToDateTime(&parsed, text)) {
        OSGetDateTime(&parsed);
        if (!GadgetNotifyAlive(window, DTKN_ERROR, r))
            return FALSE;
    }
    ++r->textGuard;
    SendMessageA(window, DTKM_SETDATE, 0, reinterpret_cast<LPARAM>(&parsed));
    if (!GadgetAlive(window, r))
        return FALSE;
    --r->textGuard;
    if (!GadgetNotifyAlive(window, DTKN_DATECHANGED, r))
        return FALSE;
    return DefWindowProcA(window, WM_SETTEXT, 0, lParam);
}

// ---------------------------------------------------------------- fonts
void DeleteDerivedFont(DateTrackerRecord *r)
{
    HFONT &derived = r->boldDerived ? r->boldFont : r->normalFont;
    if (derived)
        DeleteObject(derived);
    derived = nullptr;
}

// The font given is the bold or the normal one by its weight; the other is
// made from it.
void OnSetFont(HWND window, DateTrackerRecord *r, HFONT font, bool redraw)
{
    DeleteDerivedFont(r);
    r->boldFont = r->normalFont = nullptr;
    if (!font)
        font = static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
    HDC dc = GetDC(window);
    if (dc) {
        HGDIOBJ old = SelectObject(dc, font);
        GetTextMetricsA(dc, &r->metrics);
        SelectObject(dc, old);
        ReleaseDC(window, dc);
    } else {
        OSErrorSetErrorInfo(RV_GDIError);
    }
    LOGFONTA lf = {};
    GetObjectA(font, sizeof lf, &lf);
    bool given400 = lf.lfWeight == FW_NORMAL;
    lf.lfWeight = given400 ? FW_BOLD : FW_NORMAL;
    HFONT made = CreateFontIndirectA(&lf);
    if (!made)
        OSErrorSetErrorInfo(RV_GDIError);
    r->boldDerived = given400 ? 1 : 0;
    r->normalFont = given400 ? font : made;
    r->boldFont = given400 ? made : font;
    if (redraw)
        InvalidateRect(window, nullptr, TRUE);
}

// The gadget's size follows its font: 28 average characters by 9 lines.
void OnSize(HWND window, const DateTrackerRecord *r)
{
    RECT outer, client;
    GetWindowRect(window, &outer);
    GetClientRect(window, &client);
    int width = 28 * r->metrics.tmAveCharWidth + (outer.right - outer.left) - client.right;
    int height = 9 * r->metrics.tmHeight + (outer.bottom - outer.top) - client.bottom;
    if (width != outer.right - outer.left || height != outer.bottom - outer.top)
        SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
}

// ---------------------------------------------------------------- lifecycle
void DeleteObjects(DateTrackerRecord *r)
{
    HGDIOBJ objects[] = {r->blackBrush, r->whiteBrush, r->greyBrush, r->darkBrush,
                         r->hatchBrush, r->prevBitmap, r->nextBitmap};
    for (HGDIOBJ object : objects)
        if (object)
            DeleteObject(object);
}

HBRUSH MakeHatchBrush()
{
    static const WORD rows[8] = {0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA};
    HBITMAP pattern = CreateBitmap(8, 8, 1, 1, rows);
    if (!pattern)
        return nullptr;
    HBRUSH brush = CreatePatternBrush(pattern);
    DeleteObject(pattern);
    return brush;
}

LRESULT OnCreate(HWND window)
{
    DateTrackerRecord *r = GadgetCreate<DateTrackerRecord>(window);
    if (!r)
        return GadgetCreateFailed;
    HINSTANCE resources = g_module.hResourceLibrary;
    r->prevBitmap = LoadBitmapA(resources, MAKEINTRESOURCEA(kPrevBitmap));
    r->nextBitmap = LoadBitmapA(resources, MAKEINTRESOURCEA(kNextBitmap));
    r->blackBrush = CreateSolidBrush(0x000000);
    r->whiteBrush = CreateSolidBrush(0xFFFFFF);
    r->greyBrush = CreateSolidBrush(0xC0C0C0);
    r->darkBrush = CreateSolidBrush(0x808080);
    r->hatchBrush = MakeHatchBrush();
    if (!r->prevBitmap || !r->nextBitmap || !r->blackBrush || !r->whiteBrush || !r->greyBrush ||
        !r->darkBrush || !r->hatchBrush) {
        OSErrorSetErrorInfo(RV_UserError, "DateTracker");
        DeleteObjects(r);
        GadgetFreeRecord(window, true);
        return GadgetCreateFailed;
    }
    GetObjectA(r->prevBitmap, sizeof r->prevInfo, &r->prevInfo);
    GetObjectA(r->nextBitmap, sizeof r->nextInfo, &r->nextInfo);
    OSGetDateTime(&r->date);
    SetText(window, r, 0);
    SendMessageA(window, WM_SETFONT, 0, 0);
    return 0;
}

void OnDestroy(HWND window, DateTrackerRecord *r)
{
    if (Dragging(r))
        EndDrag(window, r);
    KillRepeat(window);
    DeleteDerivedFont(r);
    DeleteObjects(r);
    GadgetFreeRecord(window, true);
}

POINT PointOf(LPARAM lParam)
{
    return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

}  // namespace

LRESULT CALLBACK DateTrackerWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    DateTrackerRecord *r = Record(window);
    if (!r) {
        if (message == DTKM_SETDATE || message == DTKM_GETDATE)
            return DTK_FAILURE;
        return DefWindowProcA(window, message, wParam, lParam);
    }
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window, r);
        return 0;
    case DTKM_SETDATE:
        return OnSetDate(window, r, reinterpret_cast<const DateTimeValue *>(lParam));
    case DTKM_GETDATE:
        return OnGetDate(r, reinterpret_cast<DateTimeValue *>(lParam));
    case WM_SIZE:
        OnSize(window, r);
        return 0;
    case WM_SETFOCUS:
        GadgetNotifyParent(window, DTKN_SETFOCUS);
        return 0;
    case WM_KILLFOCUS:
        GadgetNotifyParent(window, DTKN_KILLFOCUS);
        return 0;
    case WM_SETTEXT:
        return OnSetText(window, r, lParam);
    case WM_PAINT:
        OnPaint(window, r);
        return 0;
    case WM_SETFONT:
        OnSetFont(window, r, reinterpret_cast<HFONT>(wParam), lParam != 0);
        return 0;
    case WM_KEYDOWN:
        OnKeyDown(window, r, wParam);
        return 0;
    case WM_TIMER:
        OnTimer(window, r, wParam);
        return 0;
    case WM_MOUSEMOVE:
        OnMouseMove(window, r, PointOf(lParam));
        return 0;
    case WM_LBUTTONDOWN:
        OnLButtonDown(window, r, wParam, lParam);
        return 0;
    case WM_LBUTTONUP:
        OnLButtonUp(window, r, PointOf(lParam));
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
