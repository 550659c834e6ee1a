// The log pane under a live gallery page: every notification the page's
// gadgets send their parent, decoded by name, as a host would receive it.
// The page (a page window or a dialog) is subclassed; its own procedure
// still answers every message.
#include "gallery.h"
#include "qziso32.h"
#include <cstdio>

namespace {

const char kOldProc[] = "QzLogOldProc";
const char kPane[] = "QzLogPane";
const int kPaneHeight = 140;
const int kMostLines = 500;

struct CodeName {
    const char *className;  // as the system gives it, compared without case
    WORD code;
    const char *name;
};

// What each class sends in WM_COMMAND's high word of wParam.
const CodeName kCodeNames[] = {
    {"TimeTracker", TTN_ERROR, "TTN_ERROR"},
    {"TimeTracker", TTN_TIMECHANGED, "TTN_TIMECHANGED"},
    {"TimeTracker", TTN_SETFOCUS, "TTN_SETFOCUS"},
    {"TimeTracker", TTN_KILLFOCUS, "TTN_KILLFOCUS"},
    {"TimeTracker", TTN_VIEWCHANGED, "TTN_VIEWCHANGED"},
    {"TimeTracker", TTN_TRACKING, "TTN_TRACKING"},
    {"TimeTracker", TTN_SCROLLED, "TTN_SCROLLED"},
    {"TimeSetter", TSN_ERROR, "TSN_ERROR"},
    {"TimeSetter", TSN_TIMECHANGED, "TSN_TIMECHANGED"},
    {"TimeSetter", TSN_SETFOCUS, "TSN_SETFOCUS"},
    {"TimeSetter", TSN_KILLFOCUS, "TSN_KILLFOCUS"},
    {"DateTracker", DTKN_ERROR, "DTKN_ERROR"},
    {"DateTracker", DTKN_DATECHOSEN, "DTKN_DATECHOSEN"},
    {"DateTracker", DTKN_SETFOCUS, "DTKN_SETFOCUS"},
    {"DateTracker", DTKN_KILLFOCUS, "DTKN_KILLFOCUS"},
    {"DateTracker", DTKN_DATECHANGED, "DTKN_DATECHANGED"},
    {"DialogTab", TABN_CHANGING, "TABN_CHANGING"},
    {"DialogTab", TABN_CHANGED, "TABN_CHANGED"},
    {"QzVListBox", 0x0B, "set focus (0x0B)"},
    {"QzVListBox", 0x0C, "kill focus (0x0C)"},
    {"QzVListBox", 0x11, "selection changed (0x11)"},
    {"QzVListBox", 0x12, "mouse released (0x12)"},
    // The Tumbler passes its edit's notifications on under their own codes.
    {"Tumbler", EN_SETFOCUS, "EN_SETFOCUS"},
    {"Tumbler", EN_KILLFOCUS, "EN_KILLFOCUS"},
    {"Tumbler", EN_CHANGE, "EN_CHANGE"},
    {"Tumbler", EN_UPDATE, "EN_UPDATE"},
    {"Tumbler", EN_MAXTEXT, "EN_MAXTEXT"},
    {"Tumbler", EN_HSCROLL, "EN_HSCROLL"},
    {"Edit", EN_SETFOCUS, "EN_SETFOCUS"},
    {"Edit", EN_KILLFOCUS, "EN_KILLFOCUS"},
    {"Edit", EN_CHANGE, "EN_CHANGE"},
    {"Edit", EN_UPDATE, "EN_UPDATE"},
    {"Button", BN_CLICKED, "BN_CLICKED"},
    {"Button", BN_DOUBLECLICKED, "BN_DOUBLECLICKED"},
    {"Button", BN_SETFOCUS, "BN_SETFOCUS"},
    {"Button", BN_KILLFOCUS, "BN_KILLFOCUS"},
    {"Static", STN_CLICKED, "STN_CLICKED"},
    {"Static", STN_DBLCLK, "STN_DBLCLK"},
};

const char *CodeNameOf(const char *className, WORD code)
{
    for (const CodeName &row : kCodeNames)
        if (row.code == code && lstrcmpiA(row.className, className) == 0)
            return row.name;
    return nullptr;
}

// Appends a line; a line equal to the last one counts up instead.
void AddLine(HWND list, const char *text)
{
    static char last[160];
    static int repeats;
    int count = static_cast<int>(SendMessageA(list, LB_GETCOUNT, 0, 0));
    if (count > 0 && lstrcmpA(last, text) == 0) {
        char line[200];
        std::snprintf(line, sizeof line, "%s  (x%d)", text, ++repeats);
        SendMessageA(list, LB_DELETESTRING, count - 1, 0);
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line));
    } else {
        lstrcpynA(last, text, sizeof last);
        repeats = 1;
        if (count >= kMostLines)
            SendMessageA(list, LB_DELETESTRING, 0, 0);
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    }
    count = static_cast<int>(SendMessageA(list, LB_GETCOUNT, 0, 0));
    SendMessageA(list, LB_SETTOPINDEX, count - 1, 0);
}

void LogCommand(HWND list, WPARAM wParam, HWND control)
{
    char className[64] = "?", line[160], number[16];
    GetClassNameA(control, className, sizeof className);
    const char *name = CodeNameOf(className, HIWORD(wParam));
    if (!name) {
        std::snprintf(number, sizeof number, "code %u", HIWORD(wParam));
        name = number;
    }
    std::snprintf(line, sizeof line, "WM_COMMAND  %s  id %u  %s", className, LOWORD(wParam), name);
    AddLine(list, line);
}

void LogNotify(HWND list, const NMHDR *header)
{
    char className[64] = "?", line[160];
    GetClassNameA(header->hwndFrom, className, sizeof className);
    std::snprintf(line, sizeof line, "WM_NOTIFY  %s  id %u  code %d", className,
                  static_cast<unsigned>(header->idFrom), static_cast<int>(header->code));
    AddLine(list, line);
}

LRESULT CALLBACK LoggingProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto old = reinterpret_cast<WNDPROC>(GetPropA(page, kOldProc));
    HWND list = static_cast<HWND>(GetPropA(page, kPane));
    if (list && IsWindow(list)) {
        if (message == WM_COMMAND && lParam)
            LogCommand(list, wParam, reinterpret_cast<HWND>(lParam));
        else if (message == WM_NOTIFY && lParam)
            LogNotify(list, reinterpret_cast<const NMHDR *>(lParam));
    }
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrA(page, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(old));
        RemovePropA(page, kOldProc);
        RemovePropA(page, kPane);
    }
    return CallWindowProcA(old, page, message, wParam, lParam);
}

}  // namespace

bool AttachNotificationLog(HWND page)
{
    RECT frame;
    GetWindowRect(page, &frame);
    char title[128] = "", caption[160];
    GetWindowTextA(page, title, sizeof title);
    std::snprintf(caption, sizeof caption, "Notifications: %s", title);
    // Owned by the page: it goes when the page goes.
    HWND pane = CreateWindowExA(WS_EX_TOOLWINDOW, "LISTBOX", caption,
                                WS_POPUP | WS_CAPTION | WS_VSCROLL | LBS_NOINTEGRALHEIGHT |
                                    LBS_NOSEL,
                                frame.left, frame.bottom + 4, frame.right - frame.left,
                                kPaneHeight, page, nullptr, GetModuleHandleA(nullptr), nullptr);
    if (!pane) return false;
    SendMessageA(pane, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    SetPropA(page, kPane, pane);
    SetPropA(page, kOldProc, reinterpret_cast<HANDLE>(GetWindowLongPtrA(page, GWLP_WNDPROC)));
    SetWindowLongPtrA(page, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(LoggingProc));
    ShowWindow(pane, SW_SHOWNOACTIVATE);
    return true;
}
