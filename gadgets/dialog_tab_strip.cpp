// "DialogTab": the strip. Tabs sit side by side, each overlapping the next
// by 6 pixels; each is two copies of an end piece with the label between
// them, drawn through a mask so that the key colour lets the strip show.
// The current tab is drawn last and one pixel higher, and opens into the
// frame of the page below.
#include "dialog_tab.h"

namespace {

// An end piece in the user's colours; null with RV_GDIError.
HBITMAP LoadRecoloured(int id)
{
    HBITMAP bitmap = LoadBitmapA(g_module.hResourceLibrary, MAKEINTRESOURCEA(id));
    if (!bitmap) {
        OSErrorSetErrorInfo(RV_GDIError);
        return nullptr;
    }
    const COLORREF from[] = {0xC0C0C0, 0x808080, 0xFFFFFF};
    const int to[] = {COLOR_BTNFACE, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT};
    for (int i = 0; i < 3 && bitmap; ++i) {
        HBITMAP changed = UIChangeBitmapColor(bitmap, from[i], GetSysColor(to[i]));
        DeleteObject(bitmap);
        bitmap = changed;
    }
    return bitmap;
}

HFONT GadgetFont(const DialogTabRecord *record)
{
    return record->font ? record->font : static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
}

void Fill(HDC dc, const RECT &rect, COLORREF colour)
{
    SetBkColor(dc, colour);
    ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr);
}

struct TabLook {
    HBITMAP piece;
    SIZE pieceSize;
    HFONT font;
    bool current;
    bool first;
    bool focus;
    COLORREF background;
};

// One tab, drawn in a canvas of its own size and masked onto `target`.
void DrawTab(HDC target, const TabNode *tab, const TabLook &look)
{
    const int w = tab->rect.right - tab->rect.left, h = tab->rect.bottom - tab->rect.top;
    HDC dc = CreateCompatibleDC(target);
    HBITMAP canvas = dc ? CreateCompatibleBitmap(target, w, h) : nullptr;
    if (!canvas) {
        OSErrorSetErrorInfo(RV_GDIError);
        if (dc)
            DeleteDC(dc);
        return;
    }
    HGDIOBJ oldBitmap = SelectObject(dc, canvas);
    const RECT all = {0, 0, w, h};
    Fill(dc, all, GetSysColor(COLOR_BTNFACE));
    SetTextColor(dc, 0);
    SetBkMode(dc, TRANSPARENT);
    RECT end = {0, 0, look.pieceSize.cx, h};
    UIBitBlt(dc, &end, look.piece);
    end = {w - look.pieceSize.cx, 0, w, h};
    UIBitBlt(dc, &end, look.piece);
    const int middleLeft = look.pieceSize.cx / 2, middleRight = w - look.pieceSize.cx / 2;
    Fill(dc, {middleLeft, 0, middleRight, h}, look.background);

    const char *label = tab->label ? tab->label : "";
    HGDIOBJ oldFont = SelectObject(dc, look.font);
    SIZE text = {0, 0};
    GetTextExtentPoint32A(dc, label, lstrlenA(label), &text);
    const int x = (w - text.cx) / 2, y = (h - text.cy) / 2;
    TextOutA(dc, x, y, label, lstrlenA(label));
    if (look.focus && look.current) {
        RECT around = {x - 1, y - 1, x + text.cx + 1, y + text.cy + 1};
        DrawFocusRect(dc, &around);
    }
    SelectObject(dc, oldFont);
    Fill(dc, {middleLeft, 0, middleRight, 1}, GetSysColor(COLOR_BTNHIGHLIGHT));

    // A tab behind the current one sits a pixel lower; every tab but the
    // first leaves its last column to the neighbour it overlaps.
    const int lower = look.current ? 0 : 1;
    // The toolkit's blit records nothing when it cannot make its mask; the
    // strip records that its tab was not drawn.
    if (!UIMaskBlt(target, tab->rect.left, tab->rect.top + lower, w - (look.first ? 0 : 1), h - lower,
                   dc, 0, 0, kTabTransparent))
        OSErrorSetErrorInfo(RV_GDIError);
    SelectObject(dc, oldBitmap);
    DeleteObject(canvas);
    DeleteDC(dc);
}

// The tabs into `dc`, which has the strip's origin, and the base line.
void DrawStrip(HWND gadget, HDC dc, const DialogTabRecord *record, int width, int baseLine,
               COLORREF background)
{
    HBITMAP other = LoadRecoloured(kTabOtherBitmap);
    HBITMAP current = other ? LoadRecoloured(kTabCurrentBitmap) : nullptr;
    BITMAP info;
    HFONT lighter = nullptr;
    LOGFONTA logFont;
    if (current && GetObjectA(current, sizeof info, &info) &&
        GetObjectA(GadgetFont(record), sizeof logFont, &logFont)) {
        logFont.lfWeight = 500;
        lighter = CreateFontIndirectA(&logFont);
    }
    if (!lighter) {
        OSErrorSetErrorInfo(RV_GDIError);
    } else {
        const TabNode *last = record->firstTab;
        while (last && last->next)
            last = last->next;
        TabLook look = {other, {info.bmWidth, info.bmHeight}, lighter, false, false, false,
                        background};
        for (const TabNode *tab = last; tab; tab = tab->prev) {
            if (tab->hidden || tab == record->currentTab)
                continue;
            look.first = tab == record->firstTab;
            DrawTab(dc, tab, look);
        }
        const TabNode *tab = record->currentTab;
        if (tab) {
            look = {current, look.pieceSize, GadgetFont(record), true, tab == record->firstTab,
                    GetFocus() == gadget, background};
            DrawTab(dc, tab, look);
            const COLORREF light = GetSysColor(COLOR_BTNHIGHLIGHT);
            Fill(dc, {0, baseLine, tab->rect.left + 1, baseLine + 1}, light);
            Fill(dc, {tab->rect.left + 1, baseLine, tab->rect.right - 1, baseLine + 1},
                 GetSysColor(COLOR_BTNFACE));
            Fill(dc, {tab->rect.right - 1, baseLine, width, baseLine + 1}, light);
        } else {
            Fill(dc, {0, baseLine, width, baseLine + 1}, GetSysColor(COLOR_BTNHIGHLIGHT));
        }
        DeleteObject(lighter);
    }
    if (current)
        DeleteObject(current);
    if (other)
        DeleteObject(other);
}

}  // namespace

bool TabEndPieceSize(SIZE *size)
{
    HBITMAP bitmap = LoadBitmapA(g_module.hResourceLibrary, MAKEINTRESOURCEA(kTabCurrentBitmap));
    BITMAP info;
    const bool known = bitmap && GetObjectA(bitmap, sizeof info, &info);
    if (bitmap)
        DeleteObject(bitmap);
    if (!known) {
        OSErrorSetErrorInfo(RV_GDIError);
        return false;
    }
    size->cx = info.bmWidth;
    size->cy = info.bmHeight;
    return true;
}

void TabLayoutStrip(HWND gadget, DialogTabRecord *record)
{
    SIZE piece;
    if (!TabEndPieceSize(&piece))
        return;
    HDC dc = GetDC(gadget);
    if (!dc) {
        OSErrorSetErrorInfo(RV_GDIError);
        return;
    }
    HGDIOBJ oldFont = SelectObject(dc, GadgetFont(record));
    int x = 0;
    for (TabNode *tab = record->firstTab; tab; tab = tab->next) {
        const char *label = tab->label ? tab->label : "";
        SIZE text = {0, 0};
        GetTextExtentPoint32A(dc, label, lstrlenA(label), &text);
        tab->rect = {x, 2, x + piece.cx + text.cx + 3, piece.cy + 2};
        SetWindowPos(tab->labelWindow, nullptr, tab->rect.left, tab->rect.top,
                     tab->rect.right - tab->rect.left, tab->rect.bottom - tab->rect.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
        x = tab->rect.right - 6;  // neighbours overlap
    }
    SelectObject(dc, oldFont);
    ReleaseDC(gadget, dc);
}

void TabPaint(HWND gadget, DialogTabRecord *record)
{
    PAINTSTRUCT ps;
    HDC hdc = BeginPaint(gadget, &ps);
    RECT client;
    GetClientRect(gadget, &client);
    SIZE piece;
    if (!TabEndPieceSize(&piece)) {
        EndPaint(gadget, &ps);
        return;
    }
    const int bottom = record->currentTab ? record->currentTab->rect.bottom : piece.cy + 2;
    const int stripHeight = bottom + 2;
    // Drawn off screen when it can be, so that the overlapping tabs do not
    // flicker; straight onto the window when not.
    HDC memory = CreateCompatibleDC(hdc);
    HBITMAP bitmap = memory ? CreateCompatibleBitmap(hdc, client.right, stripHeight) : nullptr;
    HDC target = bitmap ? memory : hdc;
    HGDIOBJ oldBitmap = bitmap ? SelectObject(memory, bitmap) : nullptr;
    const RECT strip = {0, 0, client.right, stripHeight};
    Fill(target, strip, GetSysColor(COLOR_BTNFACE));
    DrawStrip(gadget, target, record, client.right, bottom - 1, GetSysColor(COLOR_BTNHIGHLIGHT));
    if (bitmap) {
        BitBlt(hdc, 0, 0, client.right, stripHeight, memory, 0, 0, SRCCOPY);
        SelectObject(memory, oldBitmap);
        DeleteObject(bitmap);
    }
    if (memory)
        DeleteDC(memory);

    RECT page = client;
    page.top = bottom;
    Draw3DFrame(hdc, &page, GetSysColor(COLOR_BTNHIGHLIGHT), 0, 11);
    InflateRect(&page, -1, -1);
    Draw3DFrame(hdc, &page, GetSysColor(COLOR_BTNHIGHLIGHT), GetSysColor(COLOR_BTNSHADOW), 10);
    EndPaint(gadget, &ps);
}
