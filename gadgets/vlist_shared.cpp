// Selection runs, thumb mapping and the glide of the virtual lists.
#include "vlist_shared.h"
#include "gadget_frame.h"
#include "qziso32.h"
#include <string.h>

namespace {

// The first run whose high end is not below `index` (runCount if none).
DWORD FindRun(const VListSelection &sel, DWORD index)
{
    DWORD low = 0, high = sel.runCount;
    while (low < high) {
        DWORD mid = low + (high - low) / 2;
        if (sel.runs[mid].high < index)
            low = mid + 1;
        else
            high = mid;
    }
    return low;
}

bool ResizeRuns(VListSelection &sel, DWORD runCount)
{
    if (runCount == 0) {
        if (sel.runs)
            LocalFree(sel.runs);
        sel.runs = nullptr;
        sel.runCount = 0;
        return true;
    }
    SIZE_T bytes = static_cast<SIZE_T>(runCount) * sizeof(VListRun);
    void *block = sel.runs ? LocalReAlloc(sel.runs, bytes, LMEM_MOVEABLE | LMEM_ZEROINIT)
                           : LocalAlloc(LPTR, bytes);
    if (!block) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(bytes));
        return false;
    }
    sel.runs = static_cast<VListRun *>(block);
    return true;
}

// Opens a gap of one run at `at`.
bool InsertRun(VListSelection &sel, DWORD at, VListRun run)
{
    if (!ResizeRuns(sel, sel.runCount + 1))
        return false;
    memmove(sel.runs + at + 1, sel.runs + at, (sel.runCount - at) * sizeof(VListRun));
    sel.runs[at] = run;
    ++sel.runCount;
    return true;
}

void RemoveRun(VListSelection &sel, DWORD at)
{
    memmove(sel.runs + at, sel.runs + at + 1, (sel.runCount - at - 1) * sizeof(VListRun));
    DWORD left = sel.runCount - 1;
    ResizeRuns(sel, left);  // a failed shrink keeps the larger block
    sel.runCount = left;
}

}  // namespace

bool VListSelContains(const VListSelection &sel, DWORD index)
{
    DWORD at = FindRun(sel, index);
    return at < sel.runCount && sel.runs[at].low <= index;
}

bool VListSelAdd(VListSelection &sel, DWORD index)
{
    DWORD at = FindRun(sel, index);
    if (at < sel.runCount && sel.runs[at].low <= index)
        return true;
    bool joinsPrevious = at > 0 && sel.runs[at - 1].high + 1 == index;
    bool joinsNext = at < sel.runCount && index != 0xFFFFFFFFu && sel.runs[at].low == index + 1;
    if (joinsPrevious && joinsNext) {
        sel.runs[at - 1].high = sel.runs[at].high;
        RemoveRun(sel, at);
    } else if (joinsPrevious) {
        sel.runs[at - 1].high = index;
    } else if (joinsNext) {
        sel.runs[at].low = index;
    } else if (!InsertRun(sel, at, VListRun{index, index})) {
        return false;
    }
    ++sel.count;
    return true;
}

bool VListSelRemove(VListSelection &sel, DWORD index)
{
    DWORD at = FindRun(sel, index);
    if (at >= sel.runCount || sel.runs[at].low > index)
        return true;
    VListRun &run = sel.runs[at];
    if (run.low == run.high) {
        RemoveRun(sel, at);
    } else if (index == run.low) {
        ++run.low;
    } else if (index == run.high) {
        --run.high;
    } else {
        VListRun upper{index + 1, run.high};
        if (!InsertRun(sel, at + 1, upper))
            return false;
        sel.runs[at].high = index - 1;
    }
    --sel.count;
    return true;
}

void VListSelClear(VListSelection &sel)
{
    ResizeRuns(sel, 0);
    sel.count = 0;
}

bool VListSelSetRun(VListSelection &sel, DWORD low, DWORD high)
{
    VListSelection fresh = {};
    if (!ResizeRuns(fresh, 1))
        return false;
    fresh.runs[0] = VListRun{low, high};
    fresh.runCount = 1;
    fresh.count = high - low + 1;
    VListSelClear(sel);
    sel = fresh;
    return true;
}

void VListSelCopy(const VListSelection &sel, DWORD *buffer)
{
    for (DWORD r = 0; r < sel.runCount; ++r)
        for (DWORD index = sel.runs[r].low;; ++index) {
            *buffer++ = index;
            if (index == sel.runs[r].high)
                break;
        }
}

int VListThumbRange(DWORD count, DWORD visible)
{
    if (count < visible)
        return 0;
    DWORD range = count - visible;
    return range > 32000 ? 32000 : static_cast<int>(range);
}

int VListThumbFromIndex(DWORD index, DWORD count, DWORD visible)
{
    if (count < visible)
        return 0;
    unsigned long long range = count - visible;
    if (range < 32001)
        return static_cast<int>(index > range ? range : index);
    unsigned long long pos = static_cast<unsigned long long>(index) * 32000 / range;
    return static_cast<int>(pos > 32000 ? 32000 : pos);
}

DWORD VListIndexFromThumb(int thumb, DWORD count, DWORD visible)
{
    if (count < visible || thumb <= 0)
        return 0;
    unsigned long long range = count - visible;
    if (range < 32001)
        return static_cast<DWORD>(thumb);
    return static_cast<DWORD>(range * static_cast<unsigned>(thumb) / 32000);
}

bool VListCacheSize(DWORD asked, DWORD most, DWORD visible, DWORD *size)
{
    if (asked == 0xFFFFFFFFu)
        asked = most;
    if (asked > most)
        return false;
    *size = asked > visible ? asked : visible;
    return true;
}

bool VListSetThumbRange(HWND window, const void *record, DWORD count, DWORD visible)
{
    int range = VListThumbRange(count, visible);
    int low, high;
    GetScrollRange(window, SB_VERT, &low, &high);
    if (low != 0 || high != range)
        SetScrollRange(window, SB_VERT, 0, range, TRUE);
    return GadgetAlive(window, record);
}

void VListSetThumbPos(HWND window, DWORD top, DWORD count, DWORD visible)
{
    int pos = VListThumbFromIndex(top, count, visible);
    if (GetScrollPos(window, SB_VERT) != pos)
        SetScrollPos(window, SB_VERT, pos, TRUE);
}

void VListGlide(HWND window, HDC memory, const RECT &rows, int distance, int step)
{
    // Nobody sees the slices of a hidden window; it shows the final picture
    // from `memory` when it is shown.
    if (distance == 0 || !IsWindowVisible(window))
        return;
    HDC screen = GetDC(window);
    if (!screen) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return;
    }
    int total = distance > 0 ? distance : -distance;
    int width = rows.right - rows.left;
    if (step < 1)
        step = 1;
    for (int moved = 0; moved < total;) {
        int slice = total - moved < step ? total - moved : step;
        moved += slice;
        RECT area = rows;
        if (distance > 0) {
            // Content moves up; the slice at the bottom comes from memory.
            ScrollDC(screen, 0, -slice, &area, &area, nullptr, nullptr);
            BitBlt(screen, rows.left, rows.bottom - slice, width, slice, memory, rows.left,
                   rows.bottom - slice + moved - total, SRCCOPY);
        } else {
            ScrollDC(screen, 0, slice, &area, &area, nullptr, nullptr);
            BitBlt(screen, rows.left, rows.top, width, slice, memory, rows.left,
                   rows.top + total - moved, SRCCOPY);
        }
    }
    ReleaseDC(window, screen);
}

VListRowMetrics VListMeasureRows(HWND w, HFONT font, bool ownerDraw, VLISTBOXPROC callback,
                                 LPARAM data, int clientHeight)
{
    HDC dc = GetDC(w);
    TEXTMETRICA tm = {};
    HGDIOBJ old = SelectObject(dc, font ? font : GetStockObject(SYSTEM_FONT));
    GetTextMetricsA(dc, &tm);
    int height = tm.tmHeight + tm.tmInternalLeading;
    if (ownerDraw && callback) {
        RECT client;
        GetClientRect(w, &client);
        VLMEASUREREQUEST request = {dc, 0, client.right, height, 0};
        callback(w, VLN_MEASURE, &request, data);
        if (request.height > 0)
            height = request.height;
    }
    SelectObject(dc, old);
    ReleaseDC(w, dc);
    if (height <= 0)
        height = 1;
    VListRowMetrics m = {height, clientHeight > 0 ? static_cast<DWORD>(clientHeight / height) : 0u,
                         tm.tmAveCharWidth};
    return m;
}

void VListFitWindow(HWND w, int rowsHeight)
{
    RECT client;
    GetClientRect(w, &client);
    RECT fit = {0, 0, client.right, rowsHeight};
    AdjustWindowRectEx(&fit, GetWindowLongA(w, GWL_STYLE), FALSE, GetWindowLongA(w, GWL_EXSTYLE));
    RECT window;
    GetWindowRect(w, &window);
    SetWindowPos(w, nullptr, 0, 0, window.right - window.left, fit.bottom - fit.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

HDC VListCreateMemoryDC(HWND w, HBITMAP *saved)
{
    RECT client;
    GetClientRect(w, &client);
    if (client.right <= 0 || client.bottom <= 0)
        return nullptr;
    HDC screen = GetDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, client.right, client.bottom);
    HDC dc = bitmap ? CreateCompatibleDC(screen) : nullptr;
    ReleaseDC(nullptr, screen);
    if (!dc) {
        if (bitmap)
            DeleteObject(bitmap);
        OSErrorSetErrorInfo(RV_GDIError, "CreateCompatibleBitmap");
        return nullptr;
    }
    *saved = static_cast<HBITMAP>(SelectObject(dc, bitmap));
    PatBlt(dc, 0, 0, client.right, client.bottom, WHITENESS);
    return dc;
}

void VListFreeMemoryDC(HDC &memory, HBITMAP saved)
{
    if (!memory)
        return;
    HGDIOBJ own = SelectObject(memory, saved);
    DeleteObject(own);
    DeleteDC(memory);
    memory = nullptr;
}

void VListShiftEntries(void *entries, DWORD count, size_t entrySize, long long shift)
{
    char *a = static_cast<char *>(entries);
    long long n = count;
    if (!a || shift == 0)
        return;
    if (shift >= n || -shift >= n) {
        memset(a, 0, static_cast<size_t>(n) * entrySize);
    } else if (shift > 0) {
        memmove(a, a + shift * entrySize, static_cast<size_t>(n - shift) * entrySize);
        memset(a + (n - shift) * entrySize, 0, static_cast<size_t>(shift) * entrySize);
    } else {
        memmove(a - shift * entrySize, a, static_cast<size_t>(n + shift) * entrySize);
        memset(a, 0, static_cast<size_t>(-shift) * entrySize);
    }
}

// ---------------------------------------------------------------- painting
VListRowPaint VListBeginRowPaint(HDC dc, HFONT font)
{
    VListRowPaint paint;
    paint.dc = dc;
    paint.oldFont = SelectObject(dc, font ? font : GetStockObject(SYSTEM_FONT));
    paint.brush = CreateSolidBrush(GetSysColor(COLOR_WINDOW));
    if (!paint.brush)
        OSErrorSetErrorInfo(RV_GDIError, "CreateSolidBrush");
    paint.oldBrush = paint.brush ? SelectObject(dc, paint.brush) : nullptr;
    return paint;
}

void VListEndRowPaint(const VListRowPaint &paint)
{
    if (paint.brush) {
        SelectObject(paint.dc, paint.oldBrush);
        DeleteObject(paint.brush);
    }
    SelectObject(paint.dc, paint.oldFont);
}

void VListCopyArea(HDC dc, const RECT &area, HDC memory)
{
    BitBlt(dc, area.left, area.top, area.right - area.left, area.bottom - area.top, memory, area.left,
           area.top, SRCCOPY);
}

// ---------------------------------------------------------------- auto scroll
void VListSetAutoScroll(HWND window, UINT_PTR id, bool &running, bool on)
{
    if (running == on)
        return;
    if (on)
        OSSetTimer(window, id, 1, nullptr);
    else
        OSKillTimer(window, id);
    running = on;
}

void VListReplayMouseMove(HWND window)
{
    POINT pt;
    GetCursorPos(&pt);
    ScreenToClient(window, &pt);
    SendMessageA(window, WM_MOUSEMOVE, 0, MAKELPARAM(pt.x, pt.y));
}
