// "DialogTab": the pages of dialog tabs. A page is a dialog template whose
// items become children of the gadget's parent; a change of tab hides the
// old page's controls and shows, moves and re-orders the new one's.
#include "dialog_tab.h"
#include <cstdio>

const char kDisabledMarkProperty[] = "QzTabDisabledMark";

namespace {

// One item of a template, its class and text in the system code page.
struct TemplateItem {
    DWORD style;
    DWORD exStyle;
    short x, y, cx, cy;
    WORD id;
    char className[256];
    char text[256];
};

// A walk over a template's items that never reads past its `size` bytes.
struct TemplateWalk {
    const BYTE *bytes;
    DWORD size;
    DWORD pos;
    int remaining;
};

// The classes a template names by ordinal, by the ordinal's low four bits.
const char *const kOrdinalClasses[] = {"Button", "Edit", "Static", "Listbox", "Scrollbar",
                                       "Combobox"};

bool ReadWord(TemplateWalk *walk, WORD *value)
{
    if (walk->pos + 2 > walk->size)
        return false;
    *value = static_cast<WORD>(walk->bytes[walk->pos] | (walk->bytes[walk->pos + 1] << 8));
    walk->pos += 2;
    return true;
}

bool ReadDword(TemplateWalk *walk, DWORD *value)
{
    WORD low, high;
    if (!ReadWord(walk, &low) || !ReadWord(walk, &high))
        return false;
    *value = low | (static_cast<DWORD>(high) << 16);
    return true;
}

// A zero-terminated wide string, converted into `text` (256 bytes, may be
// null to skip it).
bool ReadWideString(TemplateWalk *walk, char *text)
{
    const DWORD start = walk->pos;
    WORD ch;
    do {
        if (!ReadWord(walk, &ch))
            return false;
    } while (ch != 0);
    if (text) {
        int length = static_cast<int>((walk->pos - start) / 2 - 1);
        if (length > 255)
            length = 255;
        WCHAR wide[256];
        memcpy(wide, walk->bytes + start, length * sizeof(WCHAR));
        int written = WideCharToMultiByte(CP_ACP, 0, wide, length, text, 255, nullptr, nullptr);
        text[written > 0 ? written : 0] = '\0';
    }
    return true;
}

// A menu, class or text field: absent (one zero word), an ordinal (0xFFFF
// and one word) or a string. `ordinal` receives the ordinal or 0.
bool ReadField(TemplateWalk *walk, char *text, WORD *ordinal)
{
    *ordinal = 0;
    if (text)
        text[0] = '\0';
    WORD first;
    if (walk->pos + 2 > walk->size)
        return false;
    first = static_cast<WORD>(walk->bytes[walk->pos] | (walk->bytes[walk->pos + 1] << 8));
    if (first == 0) {
        walk->pos += 2;
        return true;
    }
    if (first == 0xFFFF) {
        walk->pos += 2;
        return ReadWord(walk, ordinal);
    }
    return ReadWideString(walk, text);
}

void AlignToDword(TemplateWalk *walk) { walk->pos = (walk->pos + 3) & ~3u; }

bool BeginWalk(HGLOBAL dialogTemplate, DWORD size, TemplateWalk *walk)
{
    walk->bytes = static_cast<const BYTE *>(LockResource(dialogTemplate));
    walk->size = size;
    walk->pos = 0;
    walk->remaining = 0;
    if (!walk->bytes)
        return false;
    DWORD style, exStyle;
    WORD count, ignored, coordinate;
    if (!ReadDword(walk, &style) || !ReadDword(walk, &exStyle) || !ReadWord(walk, &count))
        return false;
    for (int i = 0; i < 4; ++i)
        if (!ReadWord(walk, &coordinate))
            return false;
    if (!ReadField(walk, nullptr, &ignored) || !ReadField(walk, nullptr, &ignored) ||
        !ReadWideString(walk, nullptr))
        return false;
    if (style & DS_SETFONT) {
        if (!ReadWord(walk, &ignored) || !ReadWideString(walk, nullptr))
            return false;
    }
    AlignToDword(walk);
    walk->remaining = count;
    return true;
}

bool NextItem(TemplateWalk *walk, TemplateItem *item)
{
    if (walk->remaining <= 0)
        return false;
    --walk->remaining;
    WORD words[5], ordinal;
    if (!ReadDword(walk, &item->style) || !ReadDword(walk, &item->exStyle))
        return false;
    for (WORD &word : words)
        if (!ReadWord(walk, &word))
            return false;
    item->x = static_cast<short>(words[0]);
    item->y = static_cast<short>(words[1]);
    item->cx = static_cast<short>(words[2]);
    item->cy = static_cast<short>(words[3]);
    item->id = words[4];
    if (!ReadField(walk, item->className, &ordinal))
        return false;
    if (ordinal) {
        const unsigned index = ordinal & 0xF;
        lstrcpyA(item->className, index < 6 ? kOrdinalClasses[index] : "Static");
    }
    if (!ReadField(walk, item->text, &ordinal))
        return false;
    if (ordinal)
        snprintf(item->text, sizeof item->text, "#%d", ordinal);
    WORD extra;
    if (!ReadWord(walk, &extra))
        return false;
    if (extra > 2)
        walk->pos += extra - 2;
    AlignToDword(walk);
    return true;
}

bool IsClass(const TemplateItem &item, const char *name)
{
    return lstrcmpiA(item.className, name) == 0;
}

// The item's place in the parent. A bordered edit is `editExtra` taller.
RECT ItemRect(HWND parent, const TemplateItem &item, int editExtra)
{
    RECT rect = {item.x, item.y, item.x + item.cx, item.y + item.cy};
    MapDialogRect(parent, &rect);
    if (IsClass(item, "Edit") && (item.style & WS_BORDER))
        rect.bottom += editExtra;
    return rect;
}

// Adds `rect` to *region; a region that cannot be grown is given up.
void AddToRegion(HRGN *region, const RECT &rect)
{
    if (!*region)
        return;
    HRGN piece = CreateRectRgnIndirect(&rect);
    if (!piece || CombineRgn(*region, *region, piece, RGN_OR) == ERROR) {
        DeleteObject(*region);
        *region = nullptr;
    }
    if (piece)
        DeleteObject(piece);
}

void SetVisibleBit(HWND control, bool visible)
{
    const LONG style = GetWindowLongA(control, GWL_STYLE);
    SetWindowLongA(control, GWL_STYLE, visible ? (style | WS_VISIBLE) : (style & ~WS_VISIBLE));
}

// Moves at once when the batch could not be had or has failed.
void Place(HDWP *batch, HWND control, HWND after, const RECT &rect, UINT flags)
{
    const int w = rect.right - rect.left, h = rect.bottom - rect.top;
    if (*batch) {
        *batch = DeferWindowPos(*batch, control, after, rect.left, rect.top, w, h, flags);
        if (*batch)
            return;
    }
    SetWindowPos(control, after, rect.left, rect.top, w, h, flags);
}

}  // namespace

bool TabTemplateHasId(HGLOBAL dialogTemplate, DWORD size, WORD id)
{
    TemplateWalk walk;
    if (!dialogTemplate || !BeginWalk(dialogTemplate, size, &walk))
        return false;
    TemplateItem item;
    while (NextItem(&walk, &item))
        if (item.id == id)
            return true;
    return false;
}

HGLOBAL TabLoadTemplate(HWND gadget, TabNode *node, HMODULE module, LPCSTR name, bool hide,
                        DWORD *size)
{
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(gadget, WM_GETFONT, 0, 0));
    HRSRC info = FindResourceA(module, name, reinterpret_cast<LPCSTR>(RT_DIALOG));
    HGLOBAL loaded = info ? LoadResource(module, info) : nullptr;
    TemplateWalk walk;
    if (!loaded || !BeginWalk(loaded, SizeofResource(module, info), &walk)) {
        OSErrorSetErrorInfo(RV_UserError, "FindResource");
        return nullptr;
    }
    HWND parent = GetParent(gadget);
    const bool own = OwnsControls(gadget);
    TemplateItem item;
    for (int index = 0; index < kTabControlSlots && NextItem(&walk, &item); ++index) {
        const RECT rect = ItemRect(parent, item, 2);
        HWND control = own ? nullptr : GetDlgItem(parent, item.id);
        const bool made = control == nullptr;
        if (made) {
            control = CreateWindowExA((item.style & WS_BORDER) ? WS_EX_CLIENTEDGE : 0,
                                      item.className, item.text, item.style | WS_VISIBLE,
                                      rect.left, rect.top, rect.right - rect.left,
                                      rect.bottom - rect.top, parent,
                                      reinterpret_cast<HMENU>(static_cast<UINT_PTR>(item.id)),
                                      g_module.hModule, nullptr);
            if (!control) {
                OSErrorSetErrorInfo(RV_UserError, "CreateWindow");
                FreeResource(loaded);
                return nullptr;
            }
        }
        node->controls[index] = control;
        if (made && hide) {
            SetVisibleBit(control, false);
            EnableWindow(control, FALSE);
        }
        if (font && made)  // the host's own controls keep their font
            SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    }
    *size = walk.size;
    return loaded;
}

void TabHideDialogControls(HWND gadget, const TabNode *node, HGLOBAL next, DWORD nextSize,
                           HRGN *region)
{
    TemplateWalk walk;
    if (!node->dialogTemplate || !BeginWalk(node->dialogTemplate, node->templateSize, &walk))
        return;
    HWND parent = GetParent(gadget);
    const bool own = OwnsControls(gadget);
    TemplateItem item;
    for (int index = 0; index < kTabControlSlots && NextItem(&walk, &item); ++index) {
        if (!own && TabTemplateHasId(next, nextSize, item.id))
            continue;  // shared: it stays and is moved
        HWND control = own ? node->controls[index] : GetDlgItem(parent, item.id);
        if (!control)
            continue;
        SetVisibleBit(control, false);
        SetPropA(control, kDisabledMarkProperty,
                 reinterpret_cast<HANDLE>(static_cast<INT_PTR>(IsWindowEnabled(control) ? 0 : 1)));
        EnableWindow(control, FALSE);
        // Disabling the control that has the focus tells the host, which
        // may take the tabs down: the node is gone then.
        if (!IsWindow(gadget))
            return;
        if (region) {
            RECT place = TabRectIn(parent, control);
            InflateRect(&place, 1, 1);
            AddToRegion(region, place);
        }
    }
}

RECT TabRectIn(HWND window, HWND control)
{
    RECT rect;
    GetWindowRect(control, &rect);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT *>(&rect), 2);
    return rect;
}

void TabShowDialogControls(HWND gadget, const TabNode *node, HRGN *region)
{
    TemplateWalk walk;
    if (!node->dialogTemplate || !BeginWalk(node->dialogTemplate, node->templateSize, &walk))
        return;
    HWND parent = GetParent(gadget);
    const LONG style = GetWindowLongA(gadget, GWL_STYLE);
    const bool own = (style & kTabOwnControlsStyle) != 0;
    HDWP batch = BeginDeferWindowPos(walk.remaining);
    HWND previous = gadget;
    HWND groups[kTabControlSlots];
    int groupCount = 0;
    TemplateItem item;
    for (int index = 0; index < kTabControlSlots && NextItem(&walk, &item); ++index) {
        RECT rect = ItemRect(parent, item, 3);
        HWND control = own ? node->controls[index] : GetDlgItem(parent, item.id);
        if (!control)
            continue;
        const bool qzCombo = IsClass(item, "QzCombo");
        if (qzCombo || IsClass(item, "ComboBox")) {
            // The template's height includes the drop-down.
            RECT client;
            GetClientRect(control, &client);
            rect.bottom = rect.top + client.bottom;
        }
        if (region && *region) {
            RECT old = TabRectIn(parent, control);
            const bool visible = (GetWindowLongA(control, GWL_STYLE) & WS_VISIBLE) != 0;
            if (!visible || !EqualRect(&old, &rect)) {
                InflateRect(&old, 1, 1);
                AddToRegion(region, old);
                AddToRegion(region, rect);
            }
        }
        const bool button = IsClass(item, "Button");
        if (button && (item.style & 7) == 7)
            groups[groupCount++] = control;
        Place(&batch, control, previous, rect,
              SWP_NOREDRAW | SWP_NOACTIVATE | (qzCombo ? SWP_NOSIZE : 0));
        previous = control;
        if (!(style & kTabKeepTextStyle) && item.text[0] && (button || IsClass(item, "Static")))
            SetWindowTextA(control, item.text);
        SetVisibleBit(control, true);
        if (!GetPropA(control, kDisabledMarkProperty))
            EnableWindow(control, TRUE);
    }
    const RECT none = {0, 0, 0, 0};
    Place(&batch, gadget, HWND_BOTTOM, none,
          SWP_NOMOVE | SWP_NOSIZE | SWP_NOREDRAW | SWP_NOACTIVATE);
    if (batch)
        EndDeferWindowPos(batch);
    // Group boxes lie under the controls they frame, last found first.
    for (int i = groupCount - 1; i >= 0; --i)
        SetWindowPos(groups[i], HWND_BOTTOM, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOREDRAW | SWP_NOACTIVATE);
}
