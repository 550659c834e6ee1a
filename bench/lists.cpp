// QzVListBox against the platform's list view in owner-data mode (report
// view, one column, no header), both with 10,000,000 items in windows of the
// same size and font, measured in the same run: paging down with a repaint
// after each page, jumping between the ends, and the memory left in use
// after scrolling through the whole list compared with a list of 1,000.
// Ratios above 1 mean the library is faster.
#include <windows.h>
#include <commctrl.h>
#include <psapi.h>
#include <cstdio>
#include <initializer_list>
#include "bench_timing.h"
#include "qziso32.h"

namespace {

const DWORD kHuge = 10000000;
const int kWidth = 300, kHeight = 400;

// ------------------------------------------------------------ our list
LRESULT CALLBACK LoadItems(HWND list, UINT code, void *request, LPARAM)
{
    if (code == VLN_LOAD || code == VLN_INIT) {
        DWORD first = 0, last = 0;
        if (code == VLN_LOAD) {
            first = static_cast<VLLOADREQUEST *>(request)->first;
            last = static_cast<VLLOADREQUEST *>(request)->last;
        } else if (static_cast<VLINITREQUEST *>(request)->firstRows) {
            last = static_cast<VLINITREQUEST *>(request)->firstRows - 1;
        } else {
            return 0;
        }
        char text[32];
        for (DWORD i = first;; ++i) {
            std::snprintf(text, sizeof text, "Item %lu", static_cast<unsigned long>(i));
            VListBox_AddString(list, i, text, static_cast<LPARAM>(i));
            if (i == last)
                break;
        }
    }
    return 0;
}

HWND MakeOurs(HWND frame, DWORD total)
{
    HWND list = CreateWindowExA(0, "QzVListBox", "", WS_CHILD | WS_VISIBLE | WS_VSCROLL, 0, 0, kWidth,
                                kHeight, frame, reinterpret_cast<HMENU>(1), nullptr, nullptr);
    SendMessageA(list, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    VListBox_Initialize(list, total, 0xFFFFFFFFu, 100, LoadItems, 0);
    UpdateWindow(list);
    return list;
}

// ------------------------------------------------------------ the list view
LRESULT CALLBACK FrameProc(HWND w, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NOTIFY) {
        NMLVDISPINFOA *info = reinterpret_cast<NMLVDISPINFOA *>(lParam);
        if (info->hdr.code == LVN_GETDISPINFOA && (info->item.mask & LVIF_TEXT))
            std::snprintf(info->item.pszText, info->item.cchTextMax, "Item %d", info->item.iItem);
        return 0;
    }
    return DefWindowProcA(w, message, wParam, lParam);
}

HWND MakeView(HWND frame, DWORD total)
{
    HWND view = CreateWindowExA(0, "SysListView32", "",
                                WS_CHILD | WS_VISIBLE | WS_VSCROLL | LVS_REPORT | LVS_OWNERDATA |
                                    LVS_NOCOLUMNHEADER | LVS_SINGLESEL,
                                0, 0, kWidth, kHeight, frame, reinterpret_cast<HMENU>(2), nullptr, nullptr);
    SendMessageA(view, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    LVCOLUMNA column = {};
    column.mask = LVCF_WIDTH;
    column.cx = kWidth - GetSystemMetrics(SM_CXVSCROLL);
    SendMessageA(view, LVM_INSERTCOLUMNA, 0, reinterpret_cast<LPARAM>(&column));
    SendMessageA(view, LVM_SETITEMCOUNT, total, LVSICF_NOINVALIDATEALL);
    UpdateWindow(view);
    return view;
}

HWND MakeFrame()
{
    return CreateWindowExA(0, "QzBenchFrame", "lists", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight,
                           nullptr, nullptr, nullptr, nullptr);
}

// ------------------------------------------------------------ memory
// Bytes in busy blocks of the process heap, where both lists allocate.
SIZE_T HeapInUse()
{
    HANDLE heap = GetProcessHeap();
    SIZE_T busy = 0;
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(heap);
    while (HeapWalk(heap, &entry))
        if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
            busy += entry.cbData;
    HeapUnlock(heap);
    return busy;
}

// The process's working set as the system reports it (the private-bytes
// counter stays 0 under Wine, which fills these from the process's status).
SIZE_T WorkingSet()
{
    typedef BOOL(WINAPI * InfoFn)(HANDLE, PPROCESS_MEMORY_COUNTERS, DWORD);
    InfoFn info = reinterpret_cast<InfoFn>(reinterpret_cast<void *>(
        GetProcAddress(GetModuleHandleA("kernel32.dll"), "K32GetProcessMemoryInfo")));
    PROCESS_MEMORY_COUNTERS_EX counters = {};
    counters.cb = sizeof counters;
    if (!info || !info(GetCurrentProcess(), reinterpret_cast<PPROCESS_MEMORY_COUNTERS>(&counters),
                       sizeof counters))
        return 0;
    return counters.WorkingSetSize;
}

struct Memory {
    long long heap, workingSet;
};

// Scrolls a fresh list of `total` items from top to bottom in jumps of
// `jump` rows, painting after each, and gives what it holds at the end.
template <typename Make, typename Jump>
Memory AfterScrolling(DWORD total, DWORD jump, Make make, Jump scroll)
{
    HWND frame = MakeFrame();
    SIZE_T heap = HeapInUse(), workingSet = WorkingSet();
    HWND list = make(frame, total);
    for (DWORD top = 0; top < total; top += jump) {
        scroll(list, top);
        UpdateWindow(list);
    }
    Memory held = {static_cast<long long>(HeapInUse()) - static_cast<long long>(heap),
                   static_cast<long long>(WorkingSet()) - static_cast<long long>(workingSet)};
    DestroyWindow(frame);
    return held;
}

int ViewRowHeight(HWND view)
{
    RECT item = {LVIR_BOUNDS, 0, 0, 0};
    SendMessageA(view, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&item));
    return item.bottom - item.top;
}

void Report(const char *what, double ours, double theirs, unsigned count, const char *goal)
{
    std::printf("%-44s ours %9.1f us  list view %9.1f us  ratio %.2fx  (goal %s)\n", what,
                ours * 1e6 / count, theirs * 1e6 / count, theirs / ours, goal);
}

}  // namespace

int main()
{
    typedef BOOL(WINAPI * InitFn)(const INITCOMMONCONTROLSEX *);
    HMODULE controls = LoadLibraryA("comctl32.dll");
    InitFn init =
        reinterpret_cast<InitFn>(reinterpret_cast<void *>(GetProcAddress(controls, "InitCommonControlsEx")));
    INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_LISTVIEW_CLASSES};
    if (!init || !init(&classes) || !IsolateInstanceStart(0, 0) || !RegisterGadgets(0)) {
        std::printf("the lists could not start\n");
        return 1;
    }
    WNDCLASSA frameClass = {};
    frameClass.lpfnWndProc = FrameProc;
    frameClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    frameClass.lpszClassName = "QzBenchFrame";
    RegisterClassA(&frameClass);

    HWND ourFrame = MakeFrame(), viewFrame = MakeFrame();
    HWND ours = MakeOurs(ourFrame, kHuge), view = MakeView(viewFrame, kHuge);
    DWORD ourRows = VListBox_GetTopIndex(ours);
    SendMessageA(ours, WM_VSCROLL, SB_PAGEDOWN, 0);
    ourRows = VListBox_GetTopIndex(ours) - ourRows + 1;
    DWORD viewRows = static_cast<DWORD>(SendMessageA(view, LVM_GETCOUNTPERPAGE, 0, 0));
    std::printf("%lu items, windows %dx%d, default GUI font: our rows %lu, list view rows %lu (row %d px)\n",
                static_cast<unsigned long>(kHuge), kWidth, kHeight, static_cast<unsigned long>(ourRows),
                static_cast<unsigned long>(viewRows), ViewRowHeight(view));

    // (a) Page down with a repaint after each page.
    const unsigned pages = 300;
    double mine = Time([&] {
        for (unsigned i = 0; i < pages; ++i) {
            SendMessageA(ours, WM_VSCROLL, SB_PAGEDOWN, 0);
            UpdateWindow(ours);
        }
    });
    double platform = Time([&] {
        for (unsigned i = 0; i < pages; ++i) {
            SendMessageA(view, WM_VSCROLL, SB_PAGEDOWN, 0);
            UpdateWindow(view);
        }
    });
    Report("page down + UpdateWindow, per page", mine, platform, pages, ">= 1x");

    // (b) From the top to the end and back, with a repaint after each jump.
    const unsigned jumps = 100;
    mine = Time([&] {
        for (unsigned i = 0; i < jumps; i += 2) {
            SendMessageA(ours, WM_VSCROLL, SB_BOTTOM, 0);
            UpdateWindow(ours);
            SendMessageA(ours, WM_VSCROLL, SB_TOP, 0);
            UpdateWindow(ours);
        }
    });
    platform = Time([&] {
        for (unsigned i = 0; i < jumps; i += 2) {
            SendMessageA(view, LVM_ENSUREVISIBLE, kHuge - 1, FALSE);
            UpdateWindow(view);
            SendMessageA(view, LVM_ENSUREVISIBLE, 0, FALSE);
            UpdateWindow(view);
        }
    });
    Report("jump to the end (and back) + UpdateWindow", mine, platform, jumps, ">= 1x");
    SendMessageA(ours, WM_VSCROLL, SB_BOTTOM, 0);
    SendMessageA(view, LVM_ENSUREVISIBLE, kHuge - 1, FALSE);
    std::printf("%-44s ours %lu  list view %lu\n", "top row at the end",
                static_cast<unsigned long>(VListBox_GetTopIndex(ours)),
                static_cast<unsigned long>(SendMessageA(view, LVM_GETTOPINDEX, 0, 0)));
    DestroyWindow(ourFrame);
    DestroyWindow(viewFrame);

    // (c) Memory held after scrolling from the first item to the last in
    // jumps of 20 rows (5,000 rows for the huge list), painting after each: each jump loads what came
    // into view, and our list releases what left its cache window.
    auto makeOurs = [](HWND frame, DWORD total) { return MakeOurs(frame, total); };
    auto makeView = [](HWND frame, DWORD total) { return MakeView(frame, total); };
    auto scrollOurs = [](HWND list, DWORD top) { VListBox_SetTopIndex(list, top); };
    auto scrollView = [](HWND view, DWORD top) {
        int now = static_cast<int>(SendMessageA(view, LVM_GETTOPINDEX, 0, 0));
        SendMessageA(view, LVM_SCROLL, 0, (static_cast<int>(top) - now) * ViewRowHeight(view));
    };
    std::printf("\nmemory added by a list after scrolling through it (jumps of 20 rows, of 5,000 for 10,000,000 items)\n"
                "(busy bytes of the process heap / working set)\n");
    for (DWORD total : {static_cast<DWORD>(1000), kHuge}) {
        Memory a = AfterScrolling(total, total > 100000 ? 5000 : 20, makeOurs, scrollOurs);
        Memory b = AfterScrolling(total, total > 100000 ? 5000 : 20, makeView, scrollView);
        std::printf("%8lu items   ours heap %7.1f KB, working set %8.1f KB   list view heap %7.1f KB, working set %8.1f KB\n",
                    static_cast<unsigned long>(total), a.heap / 1024.0, a.workingSet / 1024.0,
                    b.heap / 1024.0, b.workingSet / 1024.0);
    }
    UnRegisterGadgets();
    IsolateInstanceStop(0);
    return 0;
}
