// "QzCombo": the child it drops down, the subclasses of its edit field and
// of its child, the routing of their notifications, and the text in both
// directions (a list box's choices as separated text).
#include "qz_combo.h"
#include "gadget_frame.h"
#include "../core/module_globals.h"

namespace {

const int kEditId = 0;
const int kChildId = 1;
const DWORD kEditStyle = 0x50000080;  // WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL
const WPARAM kEditLimit = 128;
const int kMostListBytes = 1024;

// The class of each child kind, by kind from 1; kind 6 has none.
const char *const kChildClasses[] = {
    "TimeTracker", "QZListBox", "TimeSetter", "DateTracker", "ListBox", nullptr, "QzVListBox",
};
const LONG kLastKind = 7;

enum ChildAction : unsigned char {
    kCopy,          // the child's text to the field, then close when the style asks
    kListChoice,    // a plain list's choice: close on a pending release, then the text
    kTextOnly,      // the text alone, no close
    kTextAs200,     // the text alone, and the code passed on as 200
    kFocus,         // the child lost the focus: close unless the focus is on it
};

struct ChildRoute {
    WORD code;
    unsigned kinds;  // bit n for kind n
    ChildAction action;
};

constexpr unsigned Kinds(int a, int b = 0, int c = 0) { return (1u << a) | (b ? 1u << b : 0) | (c ? 1u << c : 0); }

// What the combo does with each notification of its child. Every code,
// acted on or not, is passed on afterwards.
const ChildRoute kChildRoutes[] = {
    {200, Kinds(1, 3, 4), kCopy},
    {1, Kinds(2), kCopy},
    {1, Kinds(5), kListChoice},
    {17, Kinds(7), kTextOnly},
    {18, Kinds(7), kCopy},
    {500, Kinds(4), kTextAs200},
    {400, Kinds(1, 3, 4), kFocus},
    {5, Kinds(2, 5), kFocus},
    {12, Kinds(7), kFocus},
};

// A copy of a window's text in a local block, or null (RV_OutOfLocalMemory).
char *TextOf(HWND window, int *length)
{
    int size = GetWindowTextLengthA(window) + 1;
    char *text = static_cast<char *>(LocalAlloc(LPTR, size));
    if (!text) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(size));
        return nullptr;
    }
    *length = GetWindowTextA(window, text, size);
    return text;
}

// The child's text: a plain list's is its chosen item.
char *ChildText(ComboRecord *r)
{
    int length = 0;
    if (r->childKind != QCK_PLAINLIST)
        return TextOf(r->child, &length);
    LRESULT index = SendMessageA(r->child, LB_GETCURSEL, 0, 0);
    LRESULT size = index == LB_ERR ? 0 : SendMessageA(r->child, LB_GETTEXTLEN, index, 0);
    if (size == LB_ERR)
        size = 0;
    char *text = static_cast<char *>(LocalAlloc(LPTR, size + 1));
    if (!text) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(size + 1));
        return nullptr;
    }
    if (size > 0 && SendMessageA(r->child, LB_GETTEXT, index, reinterpret_cast<LPARAM>(text)) == LB_ERR)
        text[0] = 0;
    return text;
}

// Sets the child's text; a plain list chooses the item of that text.
void SetChildText(ComboRecord *r, const char *text)
{
    if (!ComboChildLive(r))
        return;
    if (r->childKind != QCK_PLAINLIST) {
        SetWindowTextA(r->child, text);
        return;
    }
    LRESULT index = SendMessageA(r->child, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text));
    SendMessageA(r->child, LB_SETCURSEL, index == LB_ERR ? static_cast<WPARAM>(-1) : index, 0);
}

// A choice closes an open combo when the style asks, though not one the
// child reports while the combo is still opening (as it takes the focus).
void CloseOnChoice(HWND gadget, ComboRecord *r)
{
    if (r->isOpen && !r->inShowHide && (GetWindowLongA(gadget, GWL_STYLE) & QCS_CLOSEONCHOICE))
        ComboClose(gadget, r, kCloseOrdinary);
}

// The focus left the child: an open combo closes unless it went back.
void OnChildFocus(HWND gadget, ComboRecord *r, HWND sender)
{
    if (r->edit)
        HideCaret(r->edit);
    if (r->isOpen && GetFocus() != sender)
        ComboClose(gadget, r, kCloseFocus);
}

LRESULT FromChild(HWND gadget, ComboRecord *r, WORD code, LPARAM lParam)
{
    WORD passed = code;
    for (const ChildRoute &route : kChildRoutes) {
        if (route.code != code || !(route.kinds & (1u << r->childKind)))
            continue;
        switch (route.action) {
        case kCopy:
            ComboCopyChildText(gadget, r);
            if (GadgetAlive(gadget, r))
                CloseOnChoice(gadget, r);
            break;
        case kListChoice:
            if (r->chooseOnRelease) {
                r->chooseOnRelease = 0;
                CloseOnChoice(gadget, r);
            }
            if (GadgetAlive(gadget, r))
                ComboCopyChildText(gadget, r);
            break;
        case kTextOnly:
            ComboCopyChildText(gadget, r);
            break;
        case kTextAs200:
            ComboCopyChildText(gadget, r);
            passed = 200;
            break;
        case kFocus:
            OnChildFocus(gadget, r, reinterpret_cast<HWND>(lParam));
            break;
        }
        break;
    }
    if (!GadgetAlive(gadget, r))
        return 0;
    ComboPassOn(gadget, r, static_cast<WORD>(r->controlId), passed, lParam);
    return 0;
}

LRESULT FromEdit(HWND gadget, ComboRecord *r, WORD code)
{
    if (code == EN_KILLFOCUS) {
        HideCaret(r->edit);
        HWND focus = GetFocus();
        if (r->isOpen && focus != r->child && focus != gadget && focus != r->edit)
            ComboClose(gadget, r, kCloseFocus);
        if (!GadgetAlive(gadget, r))
            return 0;
        if (!r->updatingText && ComboChildLive(r)) {
            int length = 0;
            if (char *text = TextOf(r->edit, &length)) {
                if (r->childKind == QCK_TIMETRACKER || length > 0)
                    SetChildText(r, text);
                LocalFree(text);
            }
            if (!GadgetAlive(gadget, r))
                return 0;
        }
    } else if (code == EN_SETFOCUS) {
        SendMessageA(r->edit, EM_SETSEL, 0, -1);
    }
    ComboPassOn(gadget, r, static_cast<WORD>(GetDlgCtrlID(gadget)), code, reinterpret_cast<LPARAM>(gadget));
    return 0;
}

ComboRecord *RecordOfChild(HWND window, HWND *gadget)
{
    *gadget = GetParent(window);
    if (!*gadget)
        return nullptr;
    char name[16] = "";
    GetClassNameA(*gadget, name, sizeof name);
    return lstrcmpiA(name, "QzCombo") == 0 ? ComboOf(*gadget) : nullptr;
}

}  // namespace

bool ComboChildLive(ComboRecord *r) { return r->child && IsWindow(r->child); }

bool ComboCreateEdit(HWND gadget, ComboRecord *r)
{
    RECT client;
    GetClientRect(gadget, &client);
    HWND edit = CreateWindowExA(0, "Edit", "", kEditStyle, 3, 4, r->arrowRect.left - 3, r->stripHeight - 6, gadget,
                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(kEditId)), g_module.hModule, nullptr);
    if (!edit) {
        OSErrorSetErrorInfo(RV_UserError, "CreateWindowEx");
        return false;
    }
    SendMessageA(edit, EM_LIMITTEXT, kEditLimit, 0);
    if (r->font)
        SendMessageA(edit, WM_SETFONT, reinterpret_cast<WPARAM>(r->font), FALSE);
    r->edit = edit;
    r->editOldProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(GadComboEditSubProc)));
    ComboLayout(gadget, r, client.right, r->fullHeight, false);
    return true;
}

void ComboRestoreEdit(ComboRecord *r)
{
    if (r->edit && IsWindow(r->edit) && r->editOldProc)
        SetWindowLongPtrA(r->edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(r->editOldProc));
    r->editOldProc = nullptr;
}

LRESULT ComboCreateChild(HWND gadget, ComboRecord *r, WPARAM wParam, LPARAM lParam)
{
    LONG kind = LOBYTE(wParam);
    if (kind < 1 || kind > kLastKind)
        return GadgetFailure;
    if (r->isOpen) {
        ComboClose(gadget, r, kCloseFocus);
        if (!GadgetAlive(gadget, r))
            return GadgetFailure;
    }
    if (ComboChildLive(r)) {
        HWND old = r->child;
        r->child = nullptr;
        DestroyWindow(old);
        if (!GadgetAlive(gadget, r))
            return GadgetFailure;
    }
    r->child = nullptr;
    r->childKind = kind;
    r->controlId = HIBYTE(LOWORD(wParam));
    r->chooseOnRelease = 0;
    const char *className = kChildClasses[kind - 1];
    if (!className) {
        InvalidateRect(gadget, nullptr, TRUE);
        return GadgetSuccess;
    }
    DWORD style = (static_cast<DWORD>(lParam) | WS_CHILD | WS_BORDER) & ~WS_VISIBLE;
    if (kind == QCK_VLISTBOX)
        style |= VLS_NOTIFY;
    RECT client;
    GetClientRect(gadget, &client);
    int height = r->fullHeight - r->stripHeight;
    HWND child = CreateWindowExA(0, className, "", style, 0, r->stripHeight, client.right, height > 0 ? height : 0,
                                 gadget, reinterpret_cast<HMENU>(static_cast<INT_PTR>(kChildId)), g_module.hModule,
                                 nullptr);
    if (!GadgetAlive(gadget, r)) {
        if (child)
            DestroyWindow(child);
        return GadgetFailure;
    }
    if (!child) {
        OSErrorSetErrorInfo(RV_UserError, "CreateWindowEx");
        return GadgetFailure;
    }
    r->child = child;
    if (r->font)
        SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(r->font), FALSE);
    ComboLayout(gadget, r, client.right, r->fullHeight, false);
    InvalidateRect(gadget, nullptr, TRUE);
    return GadgetSuccess;
}

void ComboCopyChildText(HWND gadget, ComboRecord *r)
{
    if (!ComboChildLive(r))
        return;
    char *text = ChildText(r);
    if (!text)
        return;
    r->updatingText = 1;
    SetWindowTextA(ComboTextWindow(gadget, r), text);
    LocalFree(text);
    if (GadgetAlive(gadget, r))
        r->updatingText = 0;
}

LRESULT ComboOnCommand(HWND gadget, ComboRecord *r, WPARAM wParam, LPARAM lParam)
{
    HWND from = reinterpret_cast<HWND>(lParam);
    if (from && from == r->edit)
        return FromEdit(gadget, r, HIWORD(wParam));
    if (from && from == r->child && LOWORD(wParam) == kChildId)
        return FromChild(gadget, r, HIWORD(wParam), lParam);
    return 0;
}

LRESULT ComboGetText(HWND gadget, ComboRecord *r, WPARAM size, LPARAM buffer)
{
    char *out = reinterpret_cast<char *>(buffer);
    if (!out || size < 2)
        return GadgetFailure;
    int length = 0;
    char *text = TextOf(ComboTextWindow(gadget, r), &length);
    if (!text)
        return GadgetFailure;
    if (r->childKind != QCK_LISTBOX) {
        lstrcpynA(out, text, static_cast<int>(size));
        LocalFree(text);
        return GadgetSuccess;
    }
    // Each separator ends a choice; separators and blanks after it are
    // passed over. The list ends with two zeros, whatever the buffer holds.
    char separator = static_cast<char>(OSGetSeparator());
    size_t at = 0, room = size - 2;
    for (int i = 0; i < length && at < room; ++i) {
        if (text[i] == separator) {
            out[at++] = 0;
            while (i + 1 < length && (text[i + 1] == separator || text[i + 1] == ' '))
                ++i;
        } else {
            out[at++] = text[i];
        }
    }
    out[at] = 0;
    out[at + 1] = 0;
    LocalFree(text);
    return GadgetSuccess;
}

LRESULT ComboSetText(HWND gadget, ComboRecord *r, LPARAM lParam)
{
    const char *in = reinterpret_cast<const char *>(lParam);
    if (!in)
        return GadgetFailure;
    char *text = static_cast<char *>(LocalAlloc(LPTR, kMostListBytes + 1));
    if (!text) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(kMostListBytes + 1));
        return GadgetFailure;
    }
    if (r->childKind == QCK_LISTBOX) {
        // The choices joined by the separator; the list ends at two zeros
        // or at the limit, whichever comes first.
        char separator = static_cast<char>(OSGetSeparator());
        int i = 0;
        for (; i < kMostListBytes; ++i) {
            if (in[i] == 0 && (i + 1 >= kMostListBytes || in[i + 1] == 0))
                break;
            text[i] = in[i] ? in[i] : separator;
        }
        text[i] = 0;
    } else {
        lstrcpynA(text, in, kMostListBytes + 1);
    }
    r->updatingText = 1;
    SetWindowTextA(ComboTextWindow(gadget, r), text);
    if (GadgetAlive(gadget, r))
        SetChildText(r, text);
    LocalFree(text);
    if (!GadgetAlive(gadget, r))
        return GadgetSuccess;
    r->updatingText = 0;
    return GadgetSuccess;
}

extern "C" LRESULT WINAPI GadComboEditSubProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    HWND gadget = nullptr;
    ComboRecord *r = RecordOfChild(window, &gadget);
    if (!r || !r->editOldProc)
        return DefWindowProcA(window, message, wParam, lParam);
    WNDPROC old = r->editOldProc;
    switch (message) {
    case WM_KILLFOCUS:
        HideCaret(window);
        break;
    case WM_KEYDOWN:
        switch (wParam) {
        case VK_RETURN:
            return 0;
        case VK_PRIOR:
        case VK_NEXT:
        case VK_UP:
        case VK_DOWN:
            if (ComboChildLive(r))
                SendMessageA(r->child, WM_KEYDOWN, wParam, lParam);
            if (IsWindow(gadget))
                SendMessageA(gadget, QCM_CHILDTOTEXT, 0, 0);
            return 0;
        default:
            break;
        }
        break;
    case WM_SYSKEYDOWN:
        if (wParam == VK_DOWN) {
            if (ComboNotifyOwn(gadget, r, QCN_PRESSED))
                SendMessageA(gadget, QCM_SHOWDROPDOWN, 1, 0);
            return 0;
        }
        break;
    case WM_LBUTTONDOWN:
        if (!ComboNotifyOwn(gadget, r, QCN_PRESSED))
            return 0;
        if (r->isOpen)
            ComboClose(gadget, r, kCloseOrdinary);
        if (!IsWindow(window))
            return 0;
        break;
    default:
        break;
    }
    return CallWindowProcA(old, window, message, wParam, lParam);
}

extern "C" LRESULT WINAPI GadComboDropDownSubClassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    HWND gadget = nullptr;
    ComboRecord *r = RecordOfChild(window, &gadget);
    if (!r || !r->dropOldProc || r->child != window)
        return DefWindowProcA(window, message, wParam, lParam);
    WNDPROC old = r->dropOldProc;
    bool plainList = r->childKind == QCK_PLAINLIST;
    LPARAM self = reinterpret_cast<LPARAM>(window);
    switch (message) {
    case WM_KEYDOWN: {
        if (GetFocus() != window)
            SetFocus(window);
        if (!IsWindow(window))
            return 0;
        LRESULT result = CallWindowProcA(old, window, message, wParam, lParam);
        if (wParam == VK_ESCAPE) {
            PostMessageA(gadget, QCM_SHOWDROPDOWN, 0, QCC_ORDINARY);
        } else if (wParam == VK_TAB) {
            PostMessageA(gadget, QCM_SHOWDROPDOWN, 0, QCC_ORDINARY);
            PostMessageA(gadget, WM_KEYDOWN, VK_TAB, lParam);
        } else if (wParam == VK_RETURN) {
            if (plainList)
                PostMessageA(gadget, WM_COMMAND, MAKEWPARAM(kChildId, 1), self);
            PostMessageA(gadget, QCM_SHOWDROPDOWN, 0, QCC_ORDINARY);
            PostMessageA(gadget, WM_KEYDOWN, VK_RETURN, lParam);
        }
        return result;
    }
    case WM_SYSKEYDOWN:
        if (wParam == VK_UP) {
            if (plainList)
                SendMessageA(gadget, WM_COMMAND, MAKEWPARAM(kChildId, 1), self);
            if (IsWindow(gadget))
                PostMessageA(gadget, QCM_SHOWDROPDOWN, 0, QCC_ORDINARY);
            if (!IsWindow(window))
                return 0;
        }
        break;
    case WM_LBUTTONUP:
        if (plainList)
            r->chooseOnRelease = 1;
        break;
    case WM_KILLFOCUS: {
        // The focus went to another thread's window, or out of the combo
        // without a notification saying so: the drop-down closes.
        HWND to = reinterpret_cast<HWND>(wParam);
        bool inside = to && (to == gadget || to == r->edit || IsChild(window, to));
        if (r->isOpen && !inside)
            PostMessageA(gadget, QCM_SHOWDROPDOWN, 0, QCC_FOCUS);
        break;
    }
    case WM_DESTROY:
        // The child goes while dropped: its own procedure is put back first.
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(old));
        r->dropOldProc = nullptr;
        break;
    default:
        break;
    }
    return CallWindowProcA(old, window, message, wParam, lParam);
}
