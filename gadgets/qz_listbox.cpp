// "QzListBox": a multiple-selection list box wrapped in a gadget window,
// whose window text is the selection joined by the regional list
// separator. Setting the text selects the items it names; a change of
// selection rewrites the text, keeping in place the tokens that name no
// item of the list.
#include "gadget_frame.h"
#include "qziso32.h"
#include <string.h>

namespace {

struct QzListBoxRecord {
    WNDPROC oldProc;   // the inner list box's procedure before subclassing
    HWND listBox;      // the inner list box, identifier 1
    BOOL settingText;  // WM_SETTEXT comes from the gadget itself
    UINT forwarding;   // the message being handed to the list box, 0 for none
};

const int kInnerId = 1;
const DWORD kListStyle = WS_CHILD | WS_VISIBLE | WS_VSCROLL | LBS_NOTIFY | LBS_MULTIPLESEL;
const DWORD kOwnerDrawStyle = LBS_OWNERDRAWFIXED | LBS_HASSTRINGS;

// One resize at a time in the process: the gadget resizes itself inside
// its own WM_SIZE.
bool g_resizing = false;

// Walks the tokens of `text` split on `separator`: runs of the separator
// are one break, so empty tokens never appear.
struct Tokens {
    const char *at;
    char separator;
    // The next token as start and length; false at the end.
    bool Next(const char **start, size_t *length)
    {
        while (*at && *at == separator)
            ++at;
        if (!*at)
            return false;
        *start = at;
        while (*at && *at != separator)
            ++at;
        *length = static_cast<size_t>(at - *start);
        return true;
    }
};

char *LocalCopy(const char *start, size_t length)
{
    char *copy = static_cast<char *>(LocalAlloc(LPTR, length + 1));
    if (!copy) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(length + 1));
        return nullptr;
    }
    memcpy(copy, start, length);
    return copy;
}

// Item `index`'s text in a block of its exact size, or null (recorded).
char *ItemText(HWND list, LRESULT index)
{
    LRESULT length = SendMessageA(list, LB_GETTEXTLEN, index, 0);
    if (length < 0)
        length = 0;
    char *text = static_cast<char *>(LocalAlloc(LPTR, length + 1));
    if (!text) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(length + 1));
        return nullptr;
    }
    if (length)
        SendMessageA(list, LB_GETTEXT, index, reinterpret_cast<LPARAM>(text));
    text[length] = '\0';
    return text;
}

// Appends a token to `result`, behind the separator unless it is the first.
void Append(char *result, size_t *used, bool *first, char separator, const char *token,
            size_t length)
{
    if (!*first && separator)
        result[(*used)++] = separator;
    *first = false;
    memcpy(result + *used, token, length);
    *used += length;
    result[*used] = '\0';
}

bool HasToken(const char *text, char separator, const char *wanted)
{
    size_t wantedLength = strlen(wanted);
    Tokens tokens = {text, separator};
    const char *start;
    size_t length;
    while (tokens.Next(&start, &length))
        if (length == wantedLength && memcmp(start, wanted, length) == 0)
            return true;
    return false;
}

// Text to selection: every item deselected, then for each token the first
// item of exactly that text (case counts) selected. The text is stored as
// given, names of no item included.
LRESULT SetText(HWND gadget, QzListBoxRecord *record, LPARAM lParam)
{
    if (record->settingText || !record->listBox)
        return DefWindowProcA(gadget, WM_SETTEXT, 0, lParam);
    const char *given = lParam ? reinterpret_cast<const char *>(lParam) : "";
    char *copy = LocalCopy(given, strlen(given));
    if (!copy) {
        GadgetNotifyParent(gadget, 0xFFFE);
        return FALSE;
    }
    HWND list = record->listBox;
    LRESULT count = SendMessageA(list, LB_GETCOUNT, 0, 0);
    for (LRESULT item = 0; item < count; ++item)
        SendMessageA(list, LB_SETSEL, FALSE, item);
    Tokens tokens = {copy, static_cast<char>(OSGetSeparator())};
    const char *start;
    size_t length;
    bool failed = false;
    while (!failed && tokens.Next(&start, &length)) {
        for (LRESULT item = 0; item < count; ++item) {
            char *text = ItemText(list, item);
            if (!text) {
                failed = true;
                break;
            }
            bool match = strlen(text) == length && memcmp(text, start, length) == 0;
            LocalFree(text);
            if (match) {
                SendMessageA(list, LB_SETSEL, TRUE, item);
                break;
            }
        }
    }
    LocalFree(copy);
    if (failed) {
        GadgetNotifyParent(gadget, 0xFFFE);
        return FALSE;
    }
    return DefWindowProcA(gadget, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(given));
}

// Selection to text: the old tokens that name no item, or a selected one,
// stay in their order; selected items not yet named follow at the end.
bool SelectionToText(HWND gadget, QzListBoxRecord *record)
{
    HWND list = record->listBox;
    char separator = static_cast<char>(OSGetSeparator());
    int oldLength = GetWindowTextLengthA(gadget);
    char *old = static_cast<char *>(LocalAlloc(LPTR, oldLength + 1));
    char *result = static_cast<char *>(LocalAlloc(LPTR, oldLength + 3));
    if (!old || !result) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(oldLength + (old ? 3 : 1)));
        LocalFree(old);
        LocalFree(result);
        return false;
    }
    GetWindowTextA(gadget, old, oldLength + 1);
    size_t used = 0;
    bool first = true;
    Tokens tokens = {old, separator};
    const char *start;
    size_t length;
    bool failed = false;
    while (!failed && tokens.Next(&start, &length)) {
        char *token = LocalCopy(start, length);
        if (!token) {
            failed = true;
            break;
        }
        LRESULT found = SendMessageA(list, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                     reinterpret_cast<LPARAM>(token));
        LocalFree(token);
        if (found == LB_ERR || SendMessageA(list, LB_GETSEL, found, 0) > 0)
            Append(result, &used, &first, separator, start, length);
    }
    LRESULT count = SendMessageA(list, LB_GETCOUNT, 0, 0);
    for (LRESULT item = 0; !failed && item < count; ++item) {
        if (SendMessageA(list, LB_GETSEL, item, 0) <= 0)
            continue;
        char *text = ItemText(list, item);
        if (!text) {
            failed = true;
            break;
        }
        if (!HasToken(result, separator, text)) {
            size_t textLength = strlen(text);
            SIZE_T size = used + textLength + 2;
            HLOCAL grown = LocalReAlloc(result, size, LMEM_MOVEABLE | LMEM_ZEROINIT);
            if (!grown) {
                OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(size));
                failed = true;
            } else {
                result = static_cast<char *>(grown);
                Append(result, &used, &first, separator, text, textLength);
            }
        }
        LocalFree(text);
    }
    if (!failed) {
        record->settingText = TRUE;
        SetWindowTextA(gadget, result);
        if (GadgetAlive(gadget, record))
            record->settingText = FALSE;
    }
    LocalFree(old);
    LocalFree(result);
    return !failed;
}

LRESULT OnCreate(HWND gadget, const CREATESTRUCTA *create)
{
    auto *record = GadgetCreate<QzListBoxRecord>(gadget);
    if (!record)
        return GadgetCreateFailed;
    DWORD style = kListStyle | ((create->style & 0x0010) ? kOwnerDrawStyle : 0);
    HWND list = CreateWindowExA(0, "Listbox", "", style, 0, 0, create->cx, create->cy, gadget,
                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(kInnerId)),
                                create->hInstance, nullptr);
    if (!list) {
        OSErrorSetErrorInfo(RV_UserError, "CreateWindow");
        GadgetFreeRecord(gadget, true);
        return GadgetCreateFailed;
    }
    record->oldProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(GadLBListboxSubProc)));
    record->listBox = list;
    return 0;
}

// The list box fills the client area plus a border and rounds its height
// to whole lines; the gadget then takes the list's height.
void OnSize(HWND gadget, QzListBoxRecord *record)
{
    if (g_resizing || !record->listBox)
        return;
    g_resizing = true;
    int cx = GetSystemMetrics(SM_CXBORDER), cy = GetSystemMetrics(SM_CYBORDER);
    RECT client;
    GetClientRect(gadget, &client);
    MoveWindow(record->listBox, 0, 0, client.right + cx, client.bottom + cy, TRUE);
    RECT listClient;
    GetClientRect(record->listBox, &listClient);
    SetWindowPos(gadget, nullptr, 0, 0, client.right + 2 * cx, listClient.bottom + cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    g_resizing = false;
}

// Owner-draw requests go to the parent under the gadget's identifier; a
// measure's answer comes back to the list.
LRESULT ForwardItem(HWND gadget, UINT message, WPARAM wParam, LPARAM lParam)
{
    UINT id = static_cast<UINT>(GetDlgCtrlID(gadget));
    if (message == WM_DRAWITEM) {
        DRAWITEMSTRUCT copy = *reinterpret_cast<DRAWITEMSTRUCT *>(lParam);
        copy.CtlID = id;
        return SendMessageA(GetParent(gadget), message, wParam, reinterpret_cast<LPARAM>(&copy));
    }
    auto *measure = reinterpret_cast<MEASUREITEMSTRUCT *>(lParam);
    MEASUREITEMSTRUCT copy = *measure;
    copy.CtlID = id;
    LRESULT answer = SendMessageA(GetParent(gadget), message, wParam, reinterpret_cast<LPARAM>(&copy));
    measure->itemWidth = copy.itemWidth;
    measure->itemHeight = copy.itemHeight;
    return answer;
}

LRESULT OnCommand(HWND gadget, QzListBoxRecord *record, WPARAM wParam, LPARAM lParam)
{
    if (!record->listBox || reinterpret_cast<HWND>(lParam) != record->listBox)
        return DefWindowProcA(gadget, WM_COMMAND, wParam, lParam);
    if (HIWORD(wParam) == LBN_SELCHANGE && LOWORD(wParam) == kInnerId) {
        if (!SelectionToText(gadget, record)) {
            if (!GadgetNotifyAlive(gadget, 0xFFFE, record))
                return 0;
        }
        if (!GadgetAlive(gadget, record))
            return 0;
    }
    return SendMessageA(GetParent(gadget), WM_COMMAND, wParam, lParam);
}

// List-box messages go to the inner list box. One that comes back while it
// is being handed on (the list box passes a wheel or command it does not
// take to its parent) goes to the default procedure instead, which sends
// it further up.
LRESULT ForwardToList(HWND gadget, QzListBoxRecord *record, UINT message, WPARAM wParam,
                      LPARAM lParam)
{
    if (!record || !record->listBox)
        return -1;
    if (record->forwarding == message)
        return DefWindowProcA(gadget, message, wParam, lParam);
    UINT outer = record->forwarding;
    record->forwarding = message;
    HWND list = record->listBox;
    LRESULT result = SendMessageA(list, message, wParam, lParam);
    if (!GadgetAlive(gadget, record))
        return result;
    record->forwarding = outer;
    if (message == LB_SETSEL)
        SendMessageA(gadget, WM_COMMAND, MAKEWPARAM(kInnerId, LBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(list));
    return result;
}

}  // namespace

extern "C" LRESULT CALLBACK GadLBWndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *record = GadgetRecord<QzListBoxRecord>(hwnd);
    if (message >= 0x180)
        return ForwardToList(hwnd, record, message, wParam, lParam);
    switch (message) {
    case WM_CREATE:
        return OnCreate(hwnd, reinterpret_cast<CREATESTRUCTA *>(lParam));
    case WM_DESTROY:
        if (record) {
            if (record->listBox && IsWindow(record->listBox))
                SetWindowLongPtrA(record->listBox, GWLP_WNDPROC,
                                  reinterpret_cast<LONG_PTR>(record->oldProc));
            GadgetFreeRecord(hwnd, true);
        }
        return 0;
    case WM_DRAWITEM:
    case WM_MEASUREITEM:
        // The inner list measures its items while it is being made.
        if (record)
            return ForwardItem(hwnd, message, wParam, lParam);
        break;
    default:
        break;
    }
    if (!record || !record->listBox)
        return DefWindowProcA(hwnd, message, wParam, lParam);
    switch (message) {
    case WM_SIZE:
        OnSize(hwnd, record);
        return 0;
    case WM_SETFOCUS:
        SetFocus(record->listBox);
        PostMessageA(record->listBox, WM_SETFOCUS, 0, 0);
        return 0;
    case WM_SETFONT:
    case WM_GETFONT:
        return SendMessageA(record->listBox, message, wParam, lParam);
    case WM_COMMAND:
        return OnCommand(hwnd, record, wParam, lParam);
    case WM_SETTEXT:
        return SetText(hwnd, record, lParam);
    default:
        return DefWindowProcA(hwnd, message, wParam, lParam);
    }
}

// The inner list box's keys that a holder acts on (Escape, Return, Tab, and
// Alt+Up) are posted to the gadget as well.
extern "C" LRESULT CALLBACK GadLBListboxSubProc(HWND hwnd, UINT message, WPARAM wParam,
                                                LPARAM lParam)
{
    HWND gadget = GetParent(hwnd);
    auto *record = gadget ? GadgetRecord<QzListBoxRecord>(gadget) : nullptr;
    if (!record || record->listBox != hwnd || !record->oldProc)
        return DefWindowProcA(hwnd, message, wParam, lParam);
    bool handOn = (message == WM_KEYDOWN &&
                   (wParam == VK_ESCAPE || wParam == VK_RETURN || wParam == VK_TAB)) ||
                  (message == WM_SYSKEYDOWN && wParam == VK_UP);
    if (handOn)
        PostMessageA(gadget, message, wParam, lParam);
    return CallWindowProcA(record->oldProc, hwnd, message, wParam, lParam);
}

// The procedure the class is registered with: it hands everything to the
// exported one, which a host may also call from a subclass of its own.
LRESULT CALLBACK QzListBoxForwarder(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return GadLBWndProc(hwnd, message, wParam, lParam);
}
