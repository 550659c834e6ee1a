// The colour palette control's class, its exports and its window
// procedure. The control is a system combo box made its own owner, so the
// owner-draw requests and notifications of the combo and of its drop-down
// list come to it; the messages it does not take go to the combo box.
#include "colour_palette.h"
#include "qziso32.h"
#include "../core/module_globals.h"
#include <string.h>

const char kPaletteClass[] = "ccpal_popup";
PaletteLibrary g_palette = {};

namespace {

const char kListProperty[] = "ID";
const UINT kSetIndex = 0x487, kGetIndex = 0x488, kSetRgb = 0x489, kGetRgb = 0x48A;
const UINT kCloseDrop = 0x48B;
const LONG kFreshIndex = 15;

// Window words after the combo box's own: the instance block, the list.
int BlockOffset() { return g_palette.windowExtraBase; }
int ListOffset() { return g_palette.windowExtraBase + static_cast<int>(sizeof(LONG_PTR)); }
// Class words after the combo box's own: the window count, the font.
int CountOffset() { return g_palette.classExtraBase; }
int FontOffset() { return g_palette.classExtraBase + static_cast<int>(sizeof(LONG_PTR)); }

LRESULT Base(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!g_palette.comboProc)
        return DefWindowProcA(hwnd, message, wParam, lParam);
    return CallWindowProcA(g_palette.comboProc, hwnd, message, wParam, lParam);
}

// The combo box takes the window that gets its owner-draw requests and
// notifications from the creation record: the control names itself.
LRESULT CreateAsOwnOwner(HWND hwnd, UINT message, LPARAM lParam)
{
    CREATESTRUCTA create = *reinterpret_cast<CREATESTRUCTA *>(lParam);
    create.hwndParent = hwnd;
    return Base(hwnd, message, 0, reinterpret_cast<LPARAM>(&create));
}

// Colour requests of the combo box and its list go to the real parent.
LRESULT ParentColour(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    HWND parent = GetParent(hwnd);
    LRESULT brush = parent ? SendMessageA(parent, message, wParam, lParam) : 0;
    return brush ? brush : DefWindowProcA(hwnd, message, wParam, lParam);
}

void NoteList(HWND hwnd, PaletteInstance *block, HWND list)
{
    SetWindowLongPtrA(hwnd, ListOffset(), reinterpret_cast<LONG_PTR>(list));
    SetPropA(list, kListProperty, hwnd);
    if (block) {
        block->listWindow = list;
        block->listReady = 1;
    }
}

// The combo box's own drop-down list, as against its edit field.
bool IsDropList(HWND child)
{
    char name[16] = {};
    return child && GetClassNameA(child, name, sizeof name) && lstrcmpiA(name, "ComboLBox") == 0;
}

// An empty list gets its one item, showing the fresh colour.
void EnsureItem(HWND hwnd)
{
    if (Base(hwnd, CB_GETCOUNT, 0, 0) > 0)
        return;
    LRESULT item = Base(hwnd, CB_INSERTSTRING, static_cast<WPARAM>(-1), 0);
    if (item < 0)
        return;
    Base(hwnd, CB_SETITEMDATA, item, kFreshIndex);
    Base(hwnd, CB_SETCURSEL, item, 0);
}

LRESULT OnCreate(HWND hwnd, LPARAM lParam)
{
    if (CreateAsOwnOwner(hwnd, WM_CREATE, lParam) == -1)
        return -1;
    HGLOBAL memory = GlobalAlloc(GHND, sizeof(PaletteInstance));
    auto *block = memory ? static_cast<PaletteInstance *>(GlobalLock(memory)) : nullptr;
    if (!block) {
        if (memory)
            GlobalFree(memory);
        return -1;
    }
    block->layout = &g_palette.layout;
    block->selectedIndex = kFreshIndex;
    block->flashCell = kNoCell;
    block->hoverCell = kNoCell;
    COMBOBOXINFO info = {};
    info.cbSize = sizeof info;
    if (GetComboBoxInfo(hwnd, &info) && info.hwndList)
        NoteList(hwnd, block, info.hwndList);
    SetWindowLongPtrA(hwnd, BlockOffset(), reinterpret_cast<LONG_PTR>(block));
    EnsureItem(hwnd);
    SetClassLongPtrA(hwnd, CountOffset(), GetClassLongPtrA(hwnd, CountOffset()) + 1);
    return 0;
}

void OnDestroy(HWND hwnd)
{
    PaletteInstance *block = PaletteBlock(hwnd);
    HWND list = reinterpret_cast<HWND>(GetWindowLongPtrA(hwnd, ListOffset()));
    if (block) {
        if (block->listActive)
            ReleasePaletteList(block);
        SetWindowLongPtrA(hwnd, BlockOffset(), 0);
        HGLOBAL memory = GlobalHandle(block);
        GlobalUnlock(memory);
        GlobalFree(memory);
    }
    if (list && IsWindow(list))
        RemovePropA(list, kListProperty);
    LONG_PTR count = GetClassLongPtrA(hwnd, CountOffset()) - 1;
    SetClassLongPtrA(hwnd, CountOffset(), count > 0 ? count : 0);
    if (count <= 0) {
        HFONT font = reinterpret_cast<HFONT>(GetClassLongPtrA(hwnd, FontOffset()));
        if (font)
            DeleteObject(font);
        SetClassLongPtrA(hwnd, FontOffset(), 0);
    }
}

void Swatch(const DRAWITEMSTRUCT &item, HWND hwnd)
{
    bool comboItem = item.hwndItem == hwnd;
    if (comboItem && static_cast<int>(item.itemID) == -1 && Base(hwnd, CB_GETCOUNT, 0, 0) > 0)
        return;
    if (item.itemData >= static_cast<ULONG_PTR>(kColourCount))
        return;
    RECT rect = item.rcItem;
    InflateRect(&rect, -GetSystemMetrics(SM_CXBORDER), -GetSystemMetrics(SM_CXBORDER));
    HPALETTE old = g_palette.palette ? SelectPalette(item.hDC, g_palette.palette, TRUE) : nullptr;
    if (old)
        RealizePalette(item.hDC);
    HBRUSH brush = CreateSolidBrush(kColourTable[item.itemData]);
    if (brush) {
        FillRect(item.hDC, &rect, brush);
        DeleteObject(brush);
    }
    FrameRect(item.hDC, &rect, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    if (old)
        SelectPalette(item.hDC, old, TRUE);
}

LRESULT OnDrawItem(HWND hwnd, PaletteInstance *block, const DRAWITEMSTRUCT *given)
{
    DRAWITEMSTRUCT item = *given;
    if (item.hwndItem != hwnd && item.rcItem.left == 0) {
        // An item of the opening list: the list becomes the grid.
        if (block && item.itemAction == ODA_DRAWENTIRE && !block->listActive)
            TakeOverPaletteList(block, hwnd);
        return TRUE;
    }
    LRESULT data = Base(hwnd, CB_GETITEMDATA, 0, 0);
    item.itemID = static_cast<UINT>(data);
    item.itemData = static_cast<ULONG_PTR>(data);
    if (!IsWindowVisible(item.hwndItem))
        return TRUE;
    if (item.itemState == 17 && item.itemAction == ODA_DRAWENTIRE && item.rcItem.left != 0)
        FillRect(item.hDC, &item.rcItem, GetSysColorBrush(COLOR_WINDOW));
    if (item.itemAction == ODA_DRAWENTIRE || item.itemAction == ODA_SELECT) {
        HBRUSH fill = (item.itemState & ODS_SELECTED) ? GetSysColorBrush(COLOR_HIGHLIGHT)
                                                      : static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        FillRect(item.hDC, &item.rcItem, fill);
        FrameRect(item.hDC, &item.rcItem, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
        Swatch(item, hwnd);
    } else if (item.itemAction == ODA_FOCUS) {
        DrawFocusRect(item.hDC, &item.rcItem);
    }
    return TRUE;
}

// Keys move the frame over the cells, with wrap, and choose its colour.
LRESULT OnKeyDown(HWND hwnd, PaletteInstance *block, WPARAM key)
{
    if (!block)
        return 0;
    bool known = false;
    DWORD cell = PaletteKeyCell(block->hoverCell == kNoCell ? 0 : block->hoverCell, key, &known);
    if (!known)
        return 0;
    MovePaletteFrame(block, hwnd, cell);
    SendMessageA(hwnd, CB_SETITEMDATA, 0, block->selectedIndex);
    if (IsWindow(hwnd))
        InvalidateRect(hwnd, nullptr, TRUE);
    return 0;
}

LRESULT OnSetIndex(HWND hwnd, PaletteInstance *block, WPARAM wParam, LPARAM lParam)
{
    if (block) {
        block->selectedIndex = static_cast<LONG>(lParam);
        if (lParam >= 0 && lParam < kColourCount)
            MovePaletteFrame(block, hwnd, static_cast<DWORD>(lParam) + kFavouriteCount);
    }
    SendMessageA(hwnd, CB_SETITEMDATA, wParam, lParam);
    if (IsWindow(hwnd))
        InvalidateRect(hwnd, nullptr, TRUE);
    return 0;
}

LRESULT OnCloseDrop()
{
    HWND focus = GetFocus();
    char name[32] = {};
    if (focus && GetClassNameA(focus, name, sizeof name) &&
        (lstrcmpiA(name, "ccpal_combo") == 0 || lstrcmpiA(name, kPaletteClass) == 0))
        SendMessageA(focus, CB_SHOWDROPDOWN, FALSE, 0);
    return 0;
}

LRESULT CALLBACK PaletteWndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    PaletteInstance *block = message == WM_NCCREATE ? nullptr : PaletteBlock(hwnd);
    switch (message) {
    case WM_NCCREATE:
        return CreateAsOwnOwner(hwnd, message, lParam);
    case WM_CREATE:
        return OnCreate(hwnd, lParam);
    case WM_DESTROY:
        OnDestroy(hwnd);
        return Base(hwnd, message, wParam, lParam);
    case WM_MEASUREITEM:
        reinterpret_cast<MEASUREITEMSTRUCT *>(lParam)->itemHeight = g_palette.itemHeight;
        return TRUE;
    case WM_DRAWITEM:
        return OnDrawItem(hwnd, block, reinterpret_cast<DRAWITEMSTRUCT *>(lParam));
    case WM_KEYDOWN:
        return OnKeyDown(hwnd, block, wParam);
    case WM_SYSKEYDOWN:
        if (block && (wParam == VK_UP || wParam == VK_DOWN)) {
            LRESULT result = Base(hwnd, message, wParam, lParam);
            if ((block = PaletteBlock(hwnd)) != nullptr) {
                block->dropRequested = !block->dropRequested;
                PostMessageA(hwnd, CB_SHOWDROPDOWN, block->dropRequested, 0);
            }
            return result;
        }
        break;
    case WM_PARENTNOTIFY:
        if (LOWORD(wParam) == WM_CREATE && IsDropList(reinterpret_cast<HWND>(lParam)))
            NoteList(hwnd, block, reinterpret_cast<HWND>(lParam));
        break;
    case WM_COMMAND:
        if (HIWORD(wParam) == CBN_DROPDOWN && reinterpret_cast<HWND>(lParam) == hwnd) {
            EnsureItem(hwnd);
            if (block)
                PlacePaletteList(block, hwnd);
            return 0;
        }
        break;
    case CB_SETITEMDATA: {
        LRESULT result = Base(hwnd, message, wParam, lParam);
        if (block && IsWindow(hwnd)) {
            WPARAM code = MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(hwnd)), 1);
            SendMessageA(GetParent(hwnd), WM_COMMAND, code, reinterpret_cast<LPARAM>(hwnd));
        }
        return result;
    }
    case 0x19:  // the colour request of older combo boxes
        return reinterpret_cast<LRESULT>(GetStockObject(WHITE_BRUSH));
    case WM_DELETEITEM:
    case WM_COMPAREITEM:
        // The combo box would pass these to its owner, the control itself.
        return message == WM_DELETEITEM ? TRUE : 0;
    case WM_CTLCOLORMSGBOX:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSCROLLBAR:
    case WM_CTLCOLORSTATIC:
        return ParentColour(hwnd, message, wParam, lParam);
    case kSetIndex:
        return OnSetIndex(hwnd, block, wParam, lParam);
    case kGetIndex:
        if (Base(hwnd, CB_GETCOUNT, 0, 0) != 1)
            return -1;
        return Base(hwnd, CB_GETITEMDATA, wParam, lParam);
    case kSetRgb:
        return ccPalSetRGB(hwnd, static_cast<COLORREF>(lParam));
    case kGetRgb:
        return ccPalGetRGB(hwnd, reinterpret_cast<COLORREF *>(lParam));
    case kCloseDrop:
        return OnCloseDrop();
    default:
        break;
    }
    return Base(hwnd, message, wParam, lParam);
}

bool MakePalette()
{
    struct {
        WORD version;
        WORD entries;
        PALETTEENTRY colours[kColourCount];
    } logical = {0x300, kColourCount, {}};
    for (int i = 0; i < kColourCount; ++i)
        logical.colours[i] = {GetRValue(kColourTable[i]), GetGValue(kColourTable[i]),
                              GetBValue(kColourTable[i]), 0};
    g_palette.palette = CreatePalette(reinterpret_cast<LOGPALETTE *>(&logical));
    return g_palette.palette != nullptr;
}

}  // namespace

PaletteInstance *PaletteBlock(HWND control)
{
    if (!g_palette.registered || !control)
        return nullptr;
    return reinterpret_cast<PaletteInstance *>(GetWindowLongPtrA(control, BlockOffset()));
}

HFONT PaletteClassFont(HWND control)
{
    HFONT font = reinterpret_cast<HFONT>(GetClassLongPtrA(control, FontOffset()));
    if (font)
        return font;
    char face[LF_FACESIZE] = {};
    if (!LoadStringA(g_module.hResourceLibrary, 30151, face, sizeof face))
        lstrcpynA(face, "MS Sans Serif", sizeof face);
    HDC screen = GetDC(nullptr);
    int height = screen ? -MulDiv(8, GetDeviceCaps(screen, LOGPIXELSY), 72) : -11;
    if (screen)
        ReleaseDC(nullptr, screen);
    font = CreateFontA(height, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, face);
    SetClassLongPtrA(control, FontOffset(), reinterpret_cast<LONG_PTR>(font));
    return font;
}

extern "C" LONG WINAPI ccRegisterClass(HINSTANCE instance)
{
    if (g_palette.registered)
        return 0;
    if (!ComputePaletteLayout())
        return -1;
    WNDCLASSA wc = {};
    if (!GetClassInfoA(nullptr, "combobox", &wc))
        return -1;
    g_palette.comboProc = wc.lpfnWndProc;
    g_palette.classExtraBase = wc.cbClsExtra;
    g_palette.windowExtraBase = wc.cbWndExtra;
    wc.cbClsExtra += 2 * static_cast<int>(sizeof(LONG_PTR));
    wc.cbWndExtra += 2 * static_cast<int>(sizeof(LONG_PTR));
    wc.style |= CS_GLOBALCLASS;
    wc.lpfnWndProc = PaletteWndProc;
    wc.hInstance = instance;
    wc.lpszMenuName = nullptr;
    wc.lpszClassName = kPaletteClass;
    if (!RegisterClassA(&wc))
        return -1;
    g_palette.registered = true;
    MakePalette();
    return 0;
}

extern "C" LONG WINAPI ccUnregisterClass(HINSTANCE instance)
{
    FreePaletteGrid();
    if (g_palette.palette)
        DeleteObject(g_palette.palette);
    g_palette.palette = nullptr;
    // A class that still has windows stays registered, and so known.
    if (g_palette.registered && UnregisterClassA(kPaletteClass, instance))
        g_palette.registered = false;
    if (g_palette.colourString)
        LocalFree(g_palette.colourString);
    g_palette.colourString = nullptr;
    return 0;
}

extern "C" LONG WINAPI ccSetColorString(LPCSTR text)
{
    if (!text)
        return -1;
    size_t size = strlen(text) + 1;
    char *copy = static_cast<char *>(LocalAlloc(LPTR, size));
    if (!copy)
        return -1;
    memcpy(copy, text, size);
    if (g_palette.colourString)
        LocalFree(g_palette.colourString);
    g_palette.colourString = copy;
    // The label is made again from the new text at the next drawing.
    if (g_palette.layout.labelText)
        LocalFree(g_palette.layout.labelText);
    g_palette.layout.labelText = nullptr;
    return 0;
}

extern "C" LONG WINAPI ccPalSetRGB(HWND control, COLORREF colour)
{
    if (!control)
        return -1;
    return static_cast<LONG>(SendMessageA(control, kSetIndex, 0, NearestColourIndex(colour)));
}

extern "C" LONG WINAPI ccPalGetRGB(HWND control, COLORREF *colour)
{
    if (!control || !colour || SendMessageA(control, CB_GETCOUNT, 0, 0) != 1)
        return -1;
    LRESULT index = SendMessageA(control, kGetIndex, 0, 0);
    if (index < 0 || index >= kColourCount)
        return -1;
    *colour = kColourTable[index];
    return 0;
}
