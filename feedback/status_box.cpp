// Status boxes: small modeless dialogs that show a line of text and a
// GasGauge for a job that reports its progress by numbers, with or without
// a Cancel button. The job polls StatusCanceled between its steps and must
// pump messages for the button to be seen. While a box is open its parent
// is disabled. Every open box has a record in one list, found by its
// dialog handle.
#include "../core/module_globals.h"
#include "qziso32.h"

namespace {

struct StatusRecord {
    StatusRecord *Prev;
    StatusRecord *Next;
    HWND Dialog;       // null until WM_INITDIALOG
    const char *Text;  // the caller's, not copied
    WORD Flags;
    DWORD Low;
    DWORD High;
    DWORD Canceled;  // 1 after the user pressed a button
};

const int kTextId = 100;
const int kGaugeId = 101;
const int kHelpId = 99;
const UINT kGaugeSetRange = WM_USER;
const UINT kGaugeSetValue = WM_USER + 1;
const WORD kTemplateMask = 0x00FF;
const WORD kHidden = 0x4000;
const WORD kCloseAtHigh = 0x8000;
const DWORD kFullGaugeMs = 55;

// The templates by the low byte of the flags.
const char *const kTemplates[] = {"SIMPLESTATUS", "CANCELSTATUS"};

StatusRecord *g_head = nullptr;
StatusRecord *g_tail = nullptr;
// Set while the dialog procedure hands a message to DefDlgProcA, which
// calls the procedure again for the same message.
bool g_inDefault = false;

void Unlink(StatusRecord *r)
{
    (r->Prev ? r->Prev->Next : g_head) = r->Next;
    (r->Next ? r->Next->Prev : g_tail) = r->Prev;
    LocalFree(r);
}

StatusRecord *Find(HWND dialog)
{
    if (!dialog)
        return nullptr;
    for (StatusRecord *r = g_head; r; r = r->Next)
        if (r->Dialog == dialog)
            return r;
    return nullptr;
}

// Finds the record of a box or records RV_BadParms: the handle must come
// from StatusBox and the box must still be open.
StatusRecord *FindOrRecord(HWND dialog, const char *caller)
{
    StatusRecord *r = Find(dialog);
    if (!r)
        OSErrorSetErrorInfo(RV_BadParms, caller);
    return r;
}

// True while `r` is still the record of the open `dialog`: a gauge that
// empties the queue may have let the box close meanwhile.
bool StillOpen(HWND dialog, const StatusRecord *r) { return Find(dialog) == r; }

INT_PTR Handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_DESTROY:
        if (StatusRecord *r = Find(dialog))
            Unlink(r);
        return 0;
    case WM_INITDIALOG: {
        StatusRecord *r = reinterpret_cast<StatusRecord *>(lParam);
        r->Dialog = dialog;
        SetDlgItemTextA(dialog, kTextId, r->Text);
        return 1;
    }
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
            if (StatusRecord *r = Find(dialog))
                r->Canceled = 1;
            return 0;
        }
        break;
    case WM_SYSCOMMAND:
        if ((wParam & 0xFFF0) == SC_CLOSE) {
            SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
            return 0;
        }
        break;
    }
    g_inDefault = true;
    LRESULT result = DefDlgProcA(dialog, message, wParam, lParam);
    g_inDefault = false;
    return result;
}

// The messages whose result a dialog procedure returns itself.
bool AnswersDirectly(UINT message)
{
    return (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC) ||
           message == WM_COMPAREITEM || message == WM_VKEYTOITEM || message == WM_CHARTOITEM ||
           message == WM_QUERYDRAGICON || message == WM_INITDIALOG;
}

INT_PTR CALLBACK StatusDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (g_inDefault) {
        g_inDefault = false;
        return 0;
    }
    bool command = message == WM_COMMAND;
    if (command && HIWORD(wParam) == 0) {
        HWND control = reinterpret_cast<HWND>(lParam);
        if (control && IsWindow(control))
            SetFocus(control);
        if (LOWORD(wParam) == kHelpId) {
            OSHelp(dialog);
            return 0;
        }
    }
    INT_PTR value = Handle(dialog, message, wParam, lParam);
    if (command && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        HWND parent = GetParent(dialog);
        if (parent && IsWindow(parent))
            UpdateWindow(parent);
    }
    if (!IsWindow(dialog))
        return 0;
    if (AnswersDirectly(message))
        return value;
    SetWindowLongPtrA(dialog, DWLP_MSGRESULT, value);
    return 1;
}

}  // namespace

extern "C" HWND WINAPI StatusBox(HWND parent, const char *text, DWORD low, DWORD high, LONG flags)
{
    StatusRecord *r = static_cast<StatusRecord *>(LocalAlloc(LPTR, sizeof(StatusRecord)));
    if (!r) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(sizeof(StatusRecord)));
        return nullptr;
    }
    if (r == g_tail) {
        OSErrorSetErrorInfo(RV_ListBroken);
        LocalFree(r);
        return nullptr;
    }
    r->Prev = g_tail;
    (g_tail ? g_tail->Next : g_head) = r;
    g_tail = r;
    r->Low = low;
    r->High = high;
    r->Text = text;
    r->Flags = static_cast<WORD>(flags);
    r->Canceled = 0;
    WORD kind = r->Flags & kTemplateMask;
    if (kind >= sizeof kTemplates / sizeof kTemplates[0]) {
        OSErrorSetErrorInfo(RV_Failure, "StatusBox");
        Unlink(r);
        return nullptr;
    }
    HWND dialog = CreateDialogParam(g_module.hResourceLibrary, kTemplates[kind], parent,
                                    StatusDialogProc, reinterpret_cast<LPARAM>(r));
    if (!dialog) {
        OSErrorSetErrorInfo(RV_UserError, "CreateDialogParam");
        // A dialog that failed after WM_INITDIALOG has already been
        // destroyed, and its record with it.
        for (StatusRecord *p = g_head; p; p = p->Next)
            if (p == r) {
                Unlink(r);
                break;
            }
        return nullptr;
    }
    DWORD range[3] = {low, high, 0};
    SendDlgItemMessageA(dialog, kGaugeId, kGaugeSetRange, 0, reinterpret_cast<LPARAM>(range));
    if (parent)
        EnableWindow(parent, FALSE);
    if (!(r->Flags & kHidden)) {
        ShowWindow(dialog, SW_SHOW);
        UpdateWindow(dialog);
    }
    return dialog;
}

extern "C" BOOL WINAPI StatusClose(HWND dialog)
{
    if (!dialog || !IsWindow(dialog))
        return FALSE;
    HWND parent = GetParent(dialog);
    if (parent)
        EnableWindow(parent, TRUE);
    return DestroyWindow(dialog);
}

extern "C" LRESULT WINAPI StatusValue(HWND dialog, DWORD value)
{
    StatusRecord *r = FindOrRecord(dialog, "StatusValue");
    if (!r)
        return 0;
    LRESULT result = SendDlgItemMessageA(dialog, kGaugeId, kGaugeSetValue, 0, value);
    if (!StillOpen(dialog, r) || !(r->Flags & kCloseAtHigh))
        return result;
    if (value < r->High)
        return r->High;
    SendDlgItemMessageA(dialog, kGaugeId, kGaugeSetValue, 0, r->High);
    if (!StillOpen(dialog, r))
        return 0;
    // Long enough for the full gauge to be seen.
    Sleep(kFullGaugeMs);
    return StatusClose(dialog);
}

extern "C" DWORD WINAPI StatusCanceled(HWND dialog)
{
    StatusRecord *r = FindOrRecord(dialog, "StatusCanceled");
    return r ? r->Canceled : 0;
}

extern "C" BOOL WINAPI StatusResume(HWND dialog)
{
    StatusRecord *r = Find(dialog);
    if (!r)
        return FALSE;
    r->Canceled = 0;
    return TRUE;
}

extern "C" BOOL WINAPI StatusSetText(HWND dialog, const char *text)
{
    return SetDlgItemTextA(dialog, kTextId, text);
}
