// Tumbler: a spin field. A child edit shows the value (an integer, a time
// of hours and minutes, or a real number) and two stacked buttons at the
// right edge step it. Outside the edit the value is always the tumbler
// string, an integer text, so the gadget reads and writes its own value with
// GetDlgItemInt/SetDlgItemInt through its parent and its own id.
#include "time_gadgets.h"
#include "../gadgets/gadget_frame.h"
#include "../core/module_globals.h"
#include "qziso32.h"

namespace {

const int kEditId = 1;
const UINT kUpButton = 31;    // mouse mode and bitmap id of the up button
const UINT kDownButton = 32;  // the same for the down button
const UINT_PTR kDelayTimer = 1;
const UINT_PTR kRepeatTimer = 2;
const UINT kDelay = 500;
const UINT kRepeat = 50;
const int kTextBuffer = 128;
const LONG kNoCharKey = -1;

struct TumblerRecord {
    WNDPROC oldEditProc;
    LONG minimum;
    LONG maximum;
    LONG value;       // as given with TUM_SETRANGE; not read again
    DWORD step;
    LONG ready;       // the edit exists: its notifications are forwarded
    LONG lastCharKey; // '+' or '-' last handled, -1 after its key release
    DWORD upHeight;   // also the boundary between the buttons
    DWORD downHeight;
    DWORD buttonWidth;
    LONG buttonX;
    LONG upPressed;
    LONG downPressed;
    LONG mouseMode;   // 0, kUpButton or kDownButton
};

// Guards WM_SIZE against the gadget's own SetWindowPos; shared by all
// tumblers, as they all live on the window thread.
bool g_sizing = false;

TumblerRecord *Record(HWND window) { return GadgetRecord<TumblerRecord>(window); }
HWND Edit(HWND window) { return GetDlgItem(window, kEditId); }

// ---------------------------------------------------------------- text
using Conversion = BOOL(WINAPI *)(const char *, char *);

// Converts `text` into `out` (kTextBuffer bytes); an empty `out` when the
// conversion fails. A plain copy for the integer form.
void Convert(Conversion conversion, const char *text, char *out)
{
    char input[kTextBuffer];
    lstrcpynA(input, text, kTextBuffer);  // the converters assume short input
    out[0] = '\0';
    if (!conversion) {
        lstrcpynA(out, input, kTextBuffer);
        return;
    }
    char converted[kTextBuffer] = {};
    if (conversion(input, converted))
        lstrcpynA(out, converted, kTextBuffer);
}

// The conversion of the gadget's form, to the tumbler string or to the
// display text; null for the integer form. Hours and minutes win.
Conversion FormConversion(HWND window, bool toDisplay)
{
    static const Conversion hourMinute[2] = {OSConvertHourMinuteStringToTumblerTimeString,
                                             OSConvertTumblerTimeStringToHourMinuteString};
    static const Conversion real[2] = {OSConvertRealStringToTumblerTimeString,
                                       OSConvertTumblerTimeStringToRealString};
    LONG style = static_cast<LONG>(GetWindowLongPtrA(window, GWL_STYLE));
    if (style & TUS_HOURMINUTE)
        return hourMinute[toDisplay];
    if (style & TUS_REAL)
        return real[toDisplay];
    return nullptr;
}
Conversion ToTumblerString(HWND window) { return FormConversion(window, false); }
Conversion ToDisplayString(HWND window) { return FormConversion(window, true); }

// The caller keeps the raw edit text when the conversion gives nothing;
// the tumbler string is cut to the caller's buffer.
LRESULT OnGetText(HWND window, WPARAM size, char *buffer)
{
    if (!buffer || size == 0)
        return 0;
    int length = GetWindowTextA(Edit(window), buffer, static_cast<int>(size));
    char converted[kTextBuffer];
    Convert(ToTumblerString(window), buffer, converted);
    if (!converted[0])
        return length;
    lstrcpynA(buffer, converted, static_cast<int>(size));
    return lstrlenA(buffer);
}

LRESULT OnGetTextLength(HWND window)
{
    char raw[kTextBuffer];
    int length = GetWindowTextA(Edit(window), raw, kTextBuffer);
    if (length == 0)
        return 0;
    char converted[kTextBuffer];
    Convert(ToTumblerString(window), raw, converted);
    return converted[0] ? lstrlenA(converted) : length;
}

LRESULT OnSetText(HWND window, const char *text)
{
    if (!text)
        return 0;
    char display[kTextBuffer];
    Convert(ToDisplayString(window), text, display);
    if (display[0])
        SetWindowTextA(Edit(window), display);
    return 0;
}

// A typed value comes back in the display form.
void NormaliseEdit(HWND window)
{
    char raw[kTextBuffer];
    if (GetWindowTextA(Edit(window), raw, kTextBuffer) == 0)
        return;
    char tumbler[kTextBuffer];
    Convert(ToTumblerString(window), raw, tumbler);
    if (tumbler[0])
        SendMessageA(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(tumbler));
}

// ---------------------------------------------------------------- value
LONG ReadValue(HWND window, LONG fallback)
{
    BOOL ok = FALSE;
    UINT value = GetDlgItemInt(GetParent(window), GetDlgCtrlID(window), &ok, TRUE);
    return ok ? static_cast<LONG>(value) : fallback;
}

void WriteValue(HWND window, LONG value)
{
    SetDlgItemInt(GetParent(window), GetDlgCtrlID(window), static_cast<UINT>(value), TRUE);
}

// The maximum wins when the limits cross.
LONG Clamp(const TumblerRecord *r, LONG n)
{
    if ((n > r->minimum ? n : r->minimum) >= r->maximum)
        return r->maximum;
    if (r->minimum > n)
        return r->minimum;
    return n;
}

// One step. The divisions are unsigned on the 32-bit patterns: up rounds to
// the next multiple, down from a value that is not a multiple skips one,
// and down from below the step turns negative.
// False when the parent destroyed the gadget on hearing of the change.
bool Step(HWND window, bool up)
{
    TumblerRecord *r = Record(window);
    if (!r)
        return true;
    LONG v = ReadValue(window, 0);
    DWORD step = r->step;
    if (step == 0) {
        OSErrorSetErrorInfo(RV_BadParms, "Tumbler step");
        return true;
    }
    DWORD pattern = static_cast<DWORD>(v);
    DWORD n = ((up ? pattern + step : pattern - step) / step) * step;
    LONG next = Clamp(r, static_cast<LONG>(n));
    if (next == v)
        return true;
    WriteValue(window, next);
    return GadgetAlive(window, r);
}

// The edit loses the focus: an empty or low value becomes the minimum, a
// high one the maximum (unsigned comparisons), then the display form.
// False when the parent destroyed the gadget on hearing of a change.
bool ValidateOnLeaving(HWND window, TumblerRecord *r)
{
    LONG v = ReadValue(window, r->minimum);
    if (static_cast<DWORD>(v) <= static_cast<DWORD>(r->minimum))
        SetDlgItemInt(window, kEditId, static_cast<UINT>(r->minimum), TRUE);
    else if (static_cast<DWORD>(v) > static_cast<DWORD>(r->maximum))
        WriteValue(window, r->maximum);
    if (!GadgetAlive(window, r))
        return false;
    NormaliseEdit(window);
    return GadgetAlive(window, r);
}

// ---------------------------------------------------------------- buttons
void ShowButton(HWND window, TumblerRecord *r, UINT button, bool pressed)
{
    LONG &flag = button == kUpButton ? r->upPressed : r->downPressed;
    if (flag == static_cast<LONG>(pressed))
        return;
    flag = pressed;
    RECT rect = {r->buttonX, 0, r->buttonX + static_cast<LONG>(r->buttonWidth),
                 static_cast<LONG>(r->upHeight + r->downHeight)};
    InvalidateRect(window, &rect, FALSE);
    UpdateWindow(window);
}

void KillTimers(HWND window)
{
    KillTimer(window, kDelayTimer);
    KillTimer(window, kRepeatTimer);
}

void CALLBACK OnTimer(HWND window, UINT, UINT_PTR id, DWORD)
{
    TumblerRecord *r = Record(window);
    if (!r)
        return;
    SetFocus(Edit(window));
    if (!GadgetAlive(window, r))
        return;
    if (r->mouseMode && !Step(window, r->mouseMode == static_cast<LONG>(kUpButton)))
        return;
    if (id == kDelayTimer) {
        KillTimer(window, kDelayTimer);
        SetTimer(window, kRepeatTimer, kRepeat, OnTimer);
    }
}

void StartRepeat(HWND window) { SetTimer(window, kDelayTimer, kDelay, OnTimer); }

void OnLButtonDown(HWND window, int x, int y)
{
    TumblerRecord *r = Record(window);
    SetFocus(Edit(window));
    if (!GadgetAlive(window, r))
        return;
    r->buttonWidth = GetSystemMetrics(SM_CXVSCROLL);
    if (x <= r->buttonX)
        return;
    UINT button = y <= static_cast<LONG>(r->upHeight) ? kUpButton : kDownButton;
    r->mouseMode = button;
    ShowButton(window, r, button, true);
    if (!Step(window, button == kUpButton))
        return;
    StartRepeat(window);
    SetCapture(window);
}

// Pressing one half while the other is held only stops the repeat.
void OnMouseMove(HWND window, int x, int y)
{
    TumblerRecord *r = Record(window);
    if (!r->mouseMode)
        return;
    bool onButtons = x > r->buttonX && x < r->buttonX + static_cast<LONG>(r->buttonWidth) && y > 0 &&
                     y < static_cast<LONG>(r->upHeight + r->downHeight);
    if (!onButtons) {
        ShowButton(window, r, kUpButton, false);
        ShowButton(window, r, kDownButton, false);
        KillTimers(window);
        return;
    }
    UINT half = y <= static_cast<LONG>(r->upHeight) ? kUpButton : kDownButton;
    UINT other = half == kUpButton ? kDownButton : kUpButton;
    LONG shown = half == kUpButton ? r->upPressed : r->downPressed;
    if (r->mouseMode == static_cast<LONG>(other)) {
        ShowButton(window, r, other, false);
        KillTimers(window);
    } else if (!shown) {
        ShowButton(window, r, half, true);
        if (Step(window, half == kUpButton))
            StartRepeat(window);
    }
}

void OnLButtonUp(HWND window)
{
    TumblerRecord *r = Record(window);
    SetFocus(Edit(window));
    if (!GadgetAlive(window, r))
        return;
    ShowButton(window, r, kUpButton, false);
    ShowButton(window, r, kDownButton, false);
    r->mouseMode = 0;
    KillTimers(window);
    ReleaseCapture();
}

// ---------------------------------------------------------------- keys
void OnKeyDown(HWND window, WPARAM key)
{
    TumblerRecord *r = Record(window);
    switch (key) {
    case VK_UP:
        ShowButton(window, r, kUpButton, true);
        Step(window, true);
        break;
    case VK_DOWN:
        ShowButton(window, r, kDownButton, true);
        Step(window, false);
        break;
    case VK_ADD:  // the '+' that follows takes the step
        ShowButton(window, r, kUpButton, true);
        break;
    case VK_SUBTRACT:
        ShowButton(window, r, kDownButton, true);
        break;
    }
}

void OnChar(HWND window, WPARAM ch)
{
    TumblerRecord *r = Record(window);
    if (ch != '+' && ch != '-')
        return;
    bool up = ch == '+';
    if (!Step(window, up))
        return;
    r->lastCharKey = static_cast<LONG>(ch);
    ShowButton(window, r, up ? kUpButton : kDownButton, true);
}

void OnKeyUp(HWND window, WPARAM key)
{
    TumblerRecord *r = Record(window);
    if (r->lastCharKey != kNoCharKey) {
        key = r->lastCharKey == '+' ? VK_UP : VK_DOWN;
        r->lastCharKey = kNoCharKey;
    }
    if (key == VK_UP || key == VK_ADD) {
        if (GadgetNotifyAlive(window, EN_CHANGE, r))
            ShowButton(window, r, kUpButton, false);
    } else if (key == VK_DOWN || key == VK_SUBTRACT) {
        if (GadgetNotifyAlive(window, EN_CHANGE, r))
            ShowButton(window, r, kDownButton, false);
    }
}

bool IsStepKey(UINT message, WPARAM key)
{
    if (message == WM_CHAR)
        return key == '+' || key == '-';
    return key == VK_UP || key == VK_DOWN || key == VK_ADD || key == VK_SUBTRACT;
}

// The edit's subclass: the step keys go to the gadget, and leaving the edit
// validates the value.
LRESULT CALLBACK EditProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam)
{
    HWND window = GetParent(edit);
    TumblerRecord *r = Record(window);
    if (!r)
        return DefWindowProcA(edit, message, wParam, lParam);
    switch (message) {
    case WM_KEYDOWN:
    case WM_KEYUP:
    case WM_CHAR:
        if (IsStepKey(message, wParam) ||
            (message == WM_KEYUP && (r->upPressed || r->downPressed))) {
            SendMessageA(window, message, wParam, lParam);
            return 0;
        }
        break;
    case WM_KILLFOCUS: {
        HideCaret(edit);
        if (!ValidateOnLeaving(window, r) || !GadgetNotifyAlive(window, EN_CHANGE, r))
            return 0;
        LRESULT result = CallWindowProcA(r->oldEditProc, edit, message, wParam, lParam);
        InvalidateRect(window, nullptr, TRUE);
        UpdateWindow(window);
        return result;
    }
    }
    return CallWindowProcA(r->oldEditProc, edit, message, wParam, lParam);
}

// ---------------------------------------------------------------- geometry
// The gadget's height follows the font: one line and five pixels.
void OnSize(HWND window, int width, int height)
{
    TumblerRecord *r = Record(window);
    if (g_sizing || !r)
        return;
    HWND edit = Edit(window);
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(edit, WM_GETFONT, 0, 0));
    if (!font)
        font = static_cast<HFONT>(GetStockObject(ANSI_VAR_FONT));
    TEXTMETRICA tm = {};
    HDC dc = GetDC(window);
    if (!dc) {
        OSErrorSetErrorInfo(RV_UserError, "GetDC");
        return;
    }
    HGDIOBJ old = SelectObject(dc, font);
    GetTextMetricsA(dc, &tm);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    DWORD h = static_cast<DWORD>(tm.tmHeight + tm.tmExternalLeading + 5);
    r->upHeight = h / 2 + h % 2 + 1;
    r->downHeight = h / 2 + 1;
    r->buttonWidth = GetSystemMetrics(SM_CXVSCROLL);
    r->buttonX = width - static_cast<LONG>(r->buttonWidth);
    RECT outer, client;
    GetWindowRect(window, &outer);
    GetClientRect(window, &client);
    int nonClient = (outer.bottom - outer.top) - client.bottom;
    g_sizing = true;
    SetWindowPos(window, nullptr, 0, 0, outer.right - outer.left, nonClient + static_cast<int>(h),
                 SWP_NOMOVE | SWP_NOZORDER);
    g_sizing = false;
    MoveWindow(edit, 1, 2, r->buttonX - 2, height - 2, TRUE);
}

// ---------------------------------------------------------------- painting
// One button composed off-screen: the face, then the glyph (bitmap 31 or 32
// of the resource library) ANDed on, centred, one pixel further when pressed.
void PaintButton(HDC dc, const TumblerRecord *r, UINT button, int y, int height)
{
    int width = static_cast<int>(r->buttonWidth);
    if (width <= 0 || height <= 0)
        return;
    bool pressed = button == kUpButton ? r->upPressed : r->downPressed;
    HDC memory = CreateCompatibleDC(dc);
    HBITMAP canvas = CreateCompatibleBitmap(dc, width, height);
    HBITMAP glyph = LoadBitmapA(g_module.hResourceLibrary, MAKEINTRESOURCEA(button));
    if (!memory || !canvas || !glyph) {
        OSErrorSetErrorInfo(RV_GDIError);
    } else {
        HGDIOBJ oldCanvas = SelectObject(memory, canvas);
        RECT face = {0, 0, width, height};
        if (pressed)
            GadDrawButtonDown(memory, &face);
        else
            GadDrawButtonUp(memory, &face);
        BITMAP info = {};
        GetObjectA(glyph, sizeof info, &info);
        int glyphHeight = button == kDownButton ? info.bmHeight - 1 : info.bmHeight;
        HDC source = CreateCompatibleDC(dc);
        if (source) {
            HGDIOBJ oldGlyph = SelectObject(source, glyph);
            SetTextColor(memory, GetSysColor(COLOR_BTNTEXT));
            SetBkColor(memory, GetSysColor(COLOR_BTNFACE));
            int shift = pressed ? 1 : 0;
            BitBlt(memory, (width - info.bmWidth) / 2 + shift, (height - glyphHeight) / 2 + shift,
                   info.bmWidth, glyphHeight, source, 0, 0, SRCAND);
            SelectObject(source, oldGlyph);
            DeleteDC(source);
        } else {
            OSErrorSetErrorInfo(RV_GDIError);
        }
        BitBlt(dc, r->buttonX, y, width, height, memory, 0, 0, SRCCOPY);
        SelectObject(memory, oldCanvas);
    }
    if (glyph)
        DeleteObject(glyph);
    if (canvas)
        DeleteObject(canvas);
    if (memory)
        DeleteDC(memory);
}

void OnPaint(HWND window)
{
    TumblerRecord *r = Record(window);
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(window, &ps);
    if (!dc) {
        OSErrorSetErrorInfo(RV_UserError, "BeginPaint");
        return;
    }
    RECT client;
    GetClientRect(window, &client);
    FillRect(dc, &client, GetSysColorBrush(IsWindowEnabled(window) ? COLOR_WINDOW : COLOR_BTNFACE));
    PaintButton(dc, r, kUpButton, -1, static_cast<int>(r->upHeight));
    PaintButton(dc, r, kDownButton, static_cast<int>(r->upHeight) - 2, static_cast<int>(r->downHeight));
    EndPaint(window, &ps);
}

// ---------------------------------------------------------------- lifecycle
LRESULT OnCreate(HWND window, const CREATESTRUCTA *cs)
{
    TumblerRecord *r = GadgetCreate<TumblerRecord>(window);
    if (!r)
        return GadgetCreateFailed;
    r->maximum = 99;
    r->step = 1;
    r->lastCharKey = kNoCharKey;
    // Two styles make the gadget send itself a message nobody handles.
    if (cs->style & TUS_SELF31)
        SendMessageA(window, WM_USER, 0, 0x1F0000);
    if (cs->style & TUS_SELF32)
        SendMessageA(window, WM_USER, 0, 0x200000);
    char text[20];
    OScsprintf(text, sizeof text, "%d", 0);
    HWND edit = CreateWindowExA(0, "edit", text, WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 0, 0, 0,
                                window, reinterpret_cast<HMENU>(static_cast<INT_PTR>(kEditId)),
                                cs->hInstance, nullptr);
    if (!edit) {
        OSErrorSetErrorInfo(RV_UserError, "CreateWindowEx");
        GadgetFreeRecord(window, true);
        return GadgetCreateFailed;
    }
    r->oldEditProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(EditProc)));
    r->ready = 1;
    return 0;
}

void OnDestroy(HWND window)
{
    TumblerRecord *r = Record(window);
    if (!r)
        return;
    KillTimers(window);
    HWND edit = Edit(window);
    if (edit && r->oldEditProc)
        SetWindowLongPtrA(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(r->oldEditProc));
    GadgetFreeRecord(window, true);
}

LRESULT OnSetRange(HWND window, const LONG *range)
{
    TumblerRecord *r = Record(window);
    if (!range)
        return 0;
    r->minimum = range[0];
    r->maximum = range[1];
    r->value = range[2];
    r->step = static_cast<DWORD>(range[3]);
    WriteValue(window, r->value);
    return 0;
}

}  // namespace

LRESULT CALLBACK TumblerWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window, reinterpret_cast<const CREATESTRUCTA *>(lParam));
    TumblerRecord *r = Record(window);
    if (!r)
        return DefWindowProcA(window, message, wParam, lParam);
    HWND edit = Edit(window);
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window);
        return 0;
    case TUM_SETRANGE:
        return OnSetRange(window, reinterpret_cast<const LONG *>(lParam));
    case WM_GETTEXT:
        return OnGetText(window, wParam, reinterpret_cast<char *>(lParam));
    case WM_GETTEXTLENGTH:
        return OnGetTextLength(window);
    case WM_SETTEXT:
        return OnSetText(window, reinterpret_cast<const char *>(lParam));
    case WM_SETFONT:
        return SendMessageA(edit, WM_SETFONT, wParam, 1);
    case WM_GETFONT:
        return SendMessageA(edit, WM_GETFONT, 0, 0);
    case EM_LIMITTEXT:
        return SendMessageA(edit, EM_LIMITTEXT, wParam, lParam);
    case WM_SIZE:
        OnSize(window, LOWORD(lParam), HIWORD(lParam));
        return 0;
    case WM_SETFOCUS:
        SetFocus(edit);
        SendMessageA(edit, EM_SETSEL, 0, 10);
        ShowCaret(edit);
        return 0;
    case WM_KILLFOCUS: {
        LONG v = ReadValue(window, 0);
        LONG n = Clamp(r, v);
        if (n != v)
            WriteValue(window, n);
        return 0;
    }
    case WM_ENABLE:
        InvalidateRect(window, nullptr, TRUE);
        SendMessageA(edit, WM_ENABLE, wParam, lParam);
        InvalidateRect(edit, nullptr, TRUE);
        return 0;
    case WM_PAINT:
        OnPaint(window);
        return 0;
    case WM_KEYDOWN:
        OnKeyDown(window, wParam);
        return 0;
    case WM_KEYUP:
        OnKeyUp(window, wParam);
        return 0;
    case WM_CHAR:
        OnChar(window, wParam);
        return 0;
    case WM_COMMAND:
        if (r->ready)
            GadgetNotifyParent(window, HIWORD(wParam));
        return 0;
    case WM_MOUSEMOVE:
        OnMouseMove(window, static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam)));
        return 0;
    case WM_LBUTTONDOWN:
        OnLButtonDown(window, static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam)));
        return 0;
    case WM_LBUTTONUP:
        OnLButtonUp(window);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}
