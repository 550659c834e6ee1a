// Check boxes with a picture in place of their text, and the painting of
// check boxes, radio buttons and group boxes on the grey dialog face.
#include "linked_records.h"
#include "qziso32.h"

namespace {

// One button given a picture; the bitmap stays the caller's.
struct BitmapButton {
    BitmapButton *prev;
    BitmapButton *next;
    HWND window;
    HBITMAP bitmap;
};

BitmapButton *g_buttons = nullptr;

const char kFormerProcedure[] = "QzOffset";
const DWORD kCheckBoxSheet = 32759;  // OBM_CHECKBOXES: 4 boxes across, 3 rows

// The button types painted here: check boxes, radio buttons, the group box.
bool PaintedHere(LONG_PTR style)
{
    switch ((style & 0xFF) & ~BS_LEFTTEXT) {
    case BS_CHECKBOX:
    case BS_AUTOCHECKBOX:
    case BS_RADIOBUTTON:
    case BS_3STATE:
    case BS_AUTO3STATE:
    case BS_GROUPBOX:
    case BS_AUTORADIOBUTTON:
        return true;
    default:
        return false;
    }
}

BitmapButton *Find(HWND window)
{
    for (BitmapButton *b = g_buttons; b; b = b->next)
        if (b->window == window)
            return b;
    return nullptr;
}

WNDPROC FormerProcedure(HWND window)
{
    return reinterpret_cast<WNDPROC>(GetPropA(window, kFormerProcedure));
}

LRESULT CallFormer(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    WNDPROC former = FormerProcedure(window);
    return former ? CallWindowProcA(former, window, message, wParam, lParam)
                  : DefWindowProcA(window, message, wParam, lParam);
}

// The group box: its text between blanks interrupts a trough line drawn a
// third of a character below the top.
void PaintGroupBox(HWND window, HDC dc)
{
    char text[81] = " ";
    int length = GetWindowTextA(window, text + 1, 79);
    if (length > 78)
        length = 78;
    text[length + 1] = ' ';
    text[length + 2] = '\0';
    TEXTMETRICA metrics;
    GetTextMetricsA(dc, &metrics);
    RECT client;
    GetClientRect(window, &client);
    RECT strip = {client.left, client.top, client.right, client.top + metrics.tmHeight};
    ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &strip, "", 0, nullptr);
    RECT trough = client;
    trough.top += metrics.tmHeight / 3;
    UITroughRect(dc, &trough);
    RECT label = client;
    label.left += metrics.tmAveCharWidth;
    DrawTextA(dc, text, -1, &label, DT_SINGLELINE);
}

// The box from the system's check mark sheet, then the button's picture.
bool PaintFace(HWND window, HDC dc)
{
    HBITMAP sheet = ResourceLoadBitmap(nullptr, kCheckBoxSheet);
    BITMAP sheetSize;
    if (!sheet || !GetObjectA(sheet, sizeof sheetSize, &sheetSize)) {
        if (sheet)
            DeleteObject(sheet);
        OSErrorSetErrorInfo(RV_GDIError, "LoadBitmap");
        return false;
    }
    int boxWidth = sheetSize.bmWidth / 4;
    int boxHeight = sheetSize.bmHeight / 3;
    RECT client;
    GetClientRect(window, &client);
    bool painted = false;
    HDC sheetDC = CreateCompatibleDC(dc);
    if (sheetDC) {
        HGDIOBJ old = SelectObject(sheetDC, sheet);
        int column = SendMessageA(window, BM_GETCHECK, 0, 0) ? boxWidth : 0;
        painted = BitBlt(dc, client.left, client.top + 1, boxWidth, boxHeight, sheetDC, column, 0,
                         SRCCOPY);
        SelectObject(sheetDC, old);
        DeleteDC(sheetDC);
    }
    DeleteObject(sheet);
    if (!painted) {
        OSErrorSetErrorInfo(RV_GDIError, "BitBlt");
        return false;
    }
    BitmapButton *button = Find(window);
    BITMAP pictureSize;
    if (button && GetObjectA(button->bitmap, sizeof pictureSize, &pictureSize)) {
        RECT picture = client;
        picture.left = client.left + boxWidth + 2;
        picture.top = client.top + 1;
        picture.right = picture.left + pictureSize.bmWidth;
        if (!UIMaskBltNoFlickerTLC(dc, &picture, button->bitmap))
            return false;
    }
    if (GetFocus() == window)
        CallFormer(window, WM_SETFOCUS, 0, 0);
    return true;
}

void Paint(HWND window)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    SetTextColor(dc, GetSysColor(IsWindowEnabled(window) ? COLOR_BTNTEXT : COLOR_BTNSHADOW));
    SetBkColor(dc, GetSysColor(COLOR_BTNFACE));
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0));
    HGDIOBJ oldFont = font ? SelectObject(dc, font) : nullptr;
    if (((GetWindowLongPtrA(window, GWL_STYLE) & 0xFF) & ~BS_LEFTTEXT) == BS_GROUPBOX)
        PaintGroupBox(window, dc);
    else if (!PaintFace(window, dc))
        UIHandleError(window);
    if (oldFont)
        SelectObject(dc, oldFont);
    EndPaint(window, &paint);
}

}  // namespace

extern "C" LRESULT CALLBACK UIButtonSubclassProc(HWND window, UINT message, WPARAM wParam,
                                                 LPARAM lParam)
{
    switch (message) {
    case WM_DESTROY: {
        if (BitmapButton *button = Find(window)) {
            Unlink(g_buttons, button);
            LocalFree(button);
        }
        WNDPROC former = FormerProcedure(window);
        LRESULT result = CallFormer(window, message, wParam, lParam);
        if (former)
            SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(former));
        return result;
    }
    case WM_PAINT:
        if (PaintedHere(GetWindowLongPtrA(window, GWL_STYLE))) {
            Paint(window);
            return 0;
        }
        return CallFormer(window, message, wParam, lParam);
    default:
        return CallFormer(window, message, wParam, lParam);
    }
}

extern "C" BOOL WINAPI UIBitmapCheckBox(HWND window, HBITMAP bitmap)
{
    char className[16] = {};
    if (!GetClassNameA(window, className, sizeof className) || lstrcmpiA(className, "Button") != 0)
        return FALSE;
    BitmapButton *button = static_cast<BitmapButton *>(LocalAlloc(LPTR, sizeof(BitmapButton)));
    if (!button) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(sizeof(BitmapButton)));
        return FALSE;
    }
    button->window = window;
    button->bitmap = bitmap;
    LinkAtTail(g_buttons, button);

    WNDPROC current = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC));
    if (current != UIButtonSubclassProc) {
        if (!SetPropA(window, kFormerProcedure, reinterpret_cast<HANDLE>(current)))
            return FALSE;
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(UIButtonSubclassProc));
    }

    // Text of "i"s about as wide as the picture, so the button's focus
    // frame and its click area cover the picture; the text itself is never
    // drawn.
    HDC dc = GetDC(window);
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0));
    HGDIOBJ oldFont = SelectObject(dc, font ? static_cast<HGDIOBJ>(font) : GetStockObject(SYSTEM_FONT));
    SIZE letter = {};
    GetTextExtentPoint32A(dc, "i", 1, &letter);
    BITMAP picture = {};
    GetObjectA(bitmap, sizeof picture, &picture);
    SIZE_T length = picture.bmWidth / (letter.cx > 0 ? letter.cx : 1) + 2;
    char *text = static_cast<char *>(LocalAlloc(LPTR, length));
    if (text) {
        FillMemory(text, length - 1, 'i');
        SetWindowTextA(window, text);
        LocalFree(text);
    }
    SelectObject(dc, oldFont);
    ReleaseDC(window, dc);
    return TRUE;
}
