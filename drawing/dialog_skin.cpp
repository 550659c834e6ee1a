// The grey dialog skin: a per-thread CBT hook sees each dialog being made
// and subclasses it when its first control is created; the subclass
// centres the dialog and colours its gauges at WM_INITDIALOG.
#include "dialog_placement.h"
#include "linked_records.h"
#include "qziso32.h"

namespace {

// One registered main window.
struct GrayClient {
    GrayClient *prev;
    GrayClient *next;
    HWND window;
    HBRUSH brush;
    HINSTANCE instance;
    HANDLE process;
    HHOOK hook;
};

GrayClient *g_clients = nullptr;
bool g_grayOn = false;
HWND g_pendingDialog = nullptr;
WNDPROC g_pendingDialogProc = nullptr;

const char kFormerProcedure[] = "QzOffset";
// The atom of the system's dialog class, "#32770".
const ATOM kDialogClassAtom = 0x8002;

// The gauge messages that give it the dialog's face: flat, then both colours.
const UINT kGaugeSetStyle = 1030;
const UINT kGaugeSetBackColour = 1026;
const UINT kGaugeSetFaceColour = 1027;

GrayClient *ClientFor(HWND topLevel)
{
    for (GrayClient *c = g_clients; c; c = c->next)
        if (c->window == topLevel)
            return c;
    HANDLE process = GetCurrentProcess();
    for (GrayClient *c = g_clients; c; c = c->next)
        if (c->process == process)
            return c;
    return nullptr;
}

bool IsDialogClass(LPCSTR className)
{
    return IS_INTRESOURCE(className) && LOWORD(reinterpret_cast<ULONG_PTR>(className)) ==
                                            kDialogClassAtom;
}

LRESULT CALLBACK GrayHook(int code, WPARAM wParam, LPARAM lParam)
{
    if (code != HCBT_CREATEWND)
        return 0;
    const CREATESTRUCTA *create = reinterpret_cast<CBT_CREATEWNDA *>(lParam)->lpcs;
    HWND top = create->hwndParent ? TopLevelOf(create->hwndParent) : nullptr;
    GrayClient *client = ClientFor(top);
    if (!client) {
        OSErrorSetErrorInfo(RV_Failure, nullptr);
        return 0;
    }
    if (IsDialogClass(create->lpszClass)) {
        g_pendingDialog = reinterpret_cast<HWND>(wParam);
    } else if (g_pendingDialog && create->hwndParent == g_pendingDialog) {
        g_pendingDialogProc = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(
            g_pendingDialog, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(UIDialogSubclassProc)));
        g_pendingDialog = nullptr;
    }
    return CallNextHookEx(client->hook, code, wParam, lParam);
}

BOOL CALLBACK FlattenGauge(HWND child, LPARAM)
{
    char className[16] = {};
    GetClassNameA(child, className, sizeof className);
    if (lstrcmpiA(className, "GasGauge") == 0) {
        LPARAM face = static_cast<LPARAM>(GetSysColor(COLOR_BTNFACE));
        SendMessageA(child, kGaugeSetStyle, 1, 0);
        SendMessageA(child, kGaugeSetBackColour, 0, face);
        SendMessageA(child, kGaugeSetFaceColour, 0, face);
    }
    return TRUE;
}

}  // namespace

extern "C" LRESULT CALLBACK UIDialogSubclassProc(HWND window, UINT message, WPARAM wParam,
                                                 LPARAM lParam)
{
    WNDPROC former = reinterpret_cast<WNDPROC>(GetPropA(window, kFormerProcedure));
    if (!former) {
        former = g_pendingDialogProc;
        SetPropA(window, kFormerProcedure, reinterpret_cast<HANDLE>(former));
        g_pendingDialogProc = nullptr;
    }
    if (message == WM_INITDIALOG) {
        EnumChildWindows(window, FlattenGauge, 0);
        CentreDialog(window, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE, true);
    }
    if (!former)
        return 0;
    return CallWindowProcA(former, window, message, wParam, lParam);
}

extern "C" BOOL WINAPI UIGrayDialogInit(HWND mainWindow)
{
    GrayClient *client = static_cast<GrayClient *>(LocalAlloc(LPTR, sizeof(GrayClient)));
    if (!client) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(sizeof(GrayClient)));
        return FALSE;
    }
    LinkAtTail(g_clients, client);
    client->brush = CreateSolidBrush(GetSysColor(COLOR_BTNFACE));
    client->window = mainWindow;
    client->instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(mainWindow, GWLP_HINSTANCE));
    client->process = GetCurrentProcess();
    client->hook = SetWindowsHookExA(WH_CBT, GrayHook, client->instance, GetCurrentThreadId());
    if (!client->hook) {
        OSErrorSetErrorInfo(RV_UserError, "SetWindowsHookEx");
        Unlink(g_clients, client);
        if (client->brush)
            DeleteObject(client->brush);
        LocalFree(client);
        return FALSE;
    }
    g_grayOn = true;
    return TRUE;
}

extern "C" BOOL WINAPI UIGrayDialogUnInit(HWND mainWindow)
{
    GrayClient *client = g_clients;
    while (client && client->window != mainWindow)
        client = client->next;
    if (!client) {
        OSErrorSetErrorInfo(RV_Failure, nullptr);
        return FALSE;
    }
    UnhookWindowsHookEx(client->hook);
    if (client->brush)
        DeleteObject(client->brush);
    Unlink(g_clients, client);
    LocalFree(client);
    return TRUE;
}

extern "C" COLORREF WINAPI UIGetDlgColor(void)
{
    return GetSysColor(g_grayOn ? COLOR_BTNFACE : COLOR_WINDOW);
}

extern "C" UINT WINAPI UIGetCurrentRadioButton(HWND dialog, UINT first, UINT last)
{
    for (UINT id = first; id <= last && id >= first; ++id)
        if (IsDlgButtonChecked(dialog, static_cast<int>(id)))
            return id;
    return first;
}
