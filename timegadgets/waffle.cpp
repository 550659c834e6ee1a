// Waffle: named columns over a fixed number of rows, one edit that roves
// from cell to cell, and a "QzCombo" head over each column offering a list
// or a date for its cells. This unit holds the window procedure, the
// children, the fonts, the heads and the host's messages.
#include "waffle.h"
#include "time_gadgets.h"
#include "../gadgets/gadget_frame.h"
#include "qziso32.h"

namespace {

const DWORD kListHead = 5;
const DWORD kDateHead = 4;

HINSTANCE InstanceOf(HWND window)
{
    return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
}

HWND MakeChild(HWND window, const char *className, DWORD style, int id)
{
    return CreateWindowExA(0, className, "", style, 0, 0, 0, 0, window,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), InstanceOf(window), nullptr);
}

// Metrics of the normal font: the row height and the unit of widths.
void ReadMetrics(HWND window, WaffleRecord *r)
{
    TEXTMETRICA tm = {};
    HDC dc = GetDC(window);
    if (dc) {
        HGDIOBJ earlier = r->normalFont ? SelectObject(dc, r->normalFont) : nullptr;
        GetTextMetricsA(dc, &tm);
        if (earlier)
            SelectObject(dc, earlier);
        ReleaseDC(window, dc);
    }
    r->rowHeight = static_cast<DWORD>(tm.tmHeight + tm.tmInternalLeading + 5);
    r->charWidth = static_cast<DWORD>(tm.tmAveCharWidth);
}

WaffleColumn *ColumnById(WaffleRecord *r, DWORD id)
{
    for (DWORD c = 0; c < r->columnCount; ++c)
        if (r->columns[c].id == id)
            return &r->columns[c];
    return nullptr;
}

HWND HeadChild(HWND head)
{
    if (!head)
        return nullptr;
    HWND child = reinterpret_cast<HWND>(SendMessageA(head, kHeadGetChild, 0, 0));
    return IsWindow(child) ? child : nullptr;
}

void DestroyAll(WaffleRecord *r)
{
    if (r->edit && r->oldEditProc)
        SetWindowLongPtrA(r->edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(r->oldEditProc));
    if (r->gridBrush)
        DeleteObject(r->gridBrush);
    if (r->derivedFont)
        DeleteObject(r->derivedFont);
    WaffleFreeCells(r);
    if (r->columns)
        LocalFree(r->columns);
}

LRESULT OnCreate(HWND window)
{
    SetWindowLongA(window, GWL_STYLE, GetWindowLongA(window, GWL_STYLE) | WS_CLIPCHILDREN);
    WaffleRecord *r = GadgetCreate<WaffleRecord>(window);
    if (!r)
        return GadgetCreateFailed;
    r->gridBrush = CreateSolidBrush(0xC0C0C0);
    if (!r->gridBrush)
        OSErrorSetErrorInfo(RV_GDIError, "CreateSolidBrush");
    r->edit = r->gridBrush ? MakeChild(window, "Edit", 0x54000080, kWaffleEditId) : nullptr;
    r->scrollBar = r->edit ? MakeChild(window, "ScrollBar", 0x54000001, kWaffleScrollId) : nullptr;
    if (!r->scrollBar) {
        if (r->gridBrush)
            OSErrorSetErrorInfo(RV_UserError, "CreateWindowEx");
        if (r->edit)
            DestroyWindow(r->edit);
        DestroyAll(r);
        GadgetFreeRecord(window, true);
        return GadgetCreateFailed;
    }
    SendMessageA(r->edit, EM_LIMITTEXT, kWaffleTextSize, 0);
    r->oldEditProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(r->edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(GadWEditSubProc)));
    ReadMetrics(window, r);
    return 0;
}

void OnDestroy(HWND window, WaffleRecord *r)
{
    DestroyAll(r);
    // The word is cleared: the children still to be destroyed may ask.
    GadgetFreeRecord(window, true);
}

// Takes a font from the host: a light one is the normal font and a bold
// copy is made; a heavy one is the bold font and a normal copy is made.
void OnSetFont(HWND window, WaffleRecord *r, HFONT font, BOOL redraw)
{
    if (font) {
        LOGFONTA lf;
        HFONT made = nullptr;
        if (GetObjectA(font, sizeof lf, &lf)) {
            bool light = lf.lfWeight < 401;
            lf.lfWeight = light ? FW_BOLD : FW_NORMAL;
            if (r->derivedFont)
                DeleteObject(r->derivedFont);
            r->derivedFont = nullptr;
            made = CreateFontIndirectA(&lf);
            r->fontIsNormal = light ? 1 : 0;
            r->normalFont = light ? font : made;
            r->boldFont = light ? made : font;
            r->derivedFont = made;
        }
        if (!made) {
            OSErrorSetErrorInfo(RV_GDIError, "CreateFontIndirect");
            if (!WaffleNotifyError(window, r))
                return;
        }
    }
    ReadMetrics(window, r);
    for (DWORD c = 0; c < r->columnCount; ++c) {
        HWND head = r->columns[c].head;
        if (!head)
            continue;
        SendMessageA(head, WM_SETFONT, reinterpret_cast<WPARAM>(r->boldFont), redraw);
        if (HWND list = HeadChild(head))
            SendMessageA(list, WM_SETFONT, reinterpret_cast<WPARAM>(r->normalFont), redraw);
    }
    SendMessageA(r->edit, WM_SETFONT, reinterpret_cast<WPARAM>(r->normalFont), redraw);
    WaffleSetRange(window, r);
    WaffleLayout(window, r);
    InvalidateRect(window, nullptr, TRUE);
}

LPARAM ListStyle(const WaffleColumn &column)
{
    return static_cast<LPARAM>(column.headStyle | (column.sortList ? 0x200003 : 0x200001));
}

// Adds a column and its head. A head that cannot be made is recorded and
// answered with -1; the column stays, without a head.
LRESULT OnAddColumn(HWND window, WaffleRecord *r, const DWORD *host)
{
    if (!host) {
        OSErrorSetErrorInfo(RV_BadParms, "WFM_ADDCOLUMN");
        return -1;
    }
    SIZE_T bytes = SIZE_T(r->columnCount + 1) * sizeof(WaffleColumn);
    void *block = r->columns ? LocalReAlloc(r->columns, bytes, LMEM_MOVEABLE | LMEM_ZEROINIT)
                             : LocalAlloc(LPTR, bytes);
    if (!block) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(bytes));
        return -1;
    }
    r->columns = static_cast<WaffleColumn *>(block);
    WaffleColumn &column = r->columns[r->columnCount++];
    column.id = host[0];
    column.width = host[1];
    column.hasList = static_cast<LONG>(host[2]);
    column.sortList = static_cast<LONG>(host[3]);
    column.headStyle = host[4];
    column.headType = kListHead;
    column.head = CreateWindowExA(0, "QzCombo", "", 0x54000003, 0, 0, 0, 5 * r->rowHeight, window,
                                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(kWaffleHeadId)),
                                  InstanceOf(window), nullptr);
    if (!GadgetAlive(window, r))
        return -1;
    WaffleSetRange(window, r);
    WaffleLayout(window, r);
    InvalidateRect(window, nullptr, TRUE);
    if (!column.head) {
        OSErrorSetErrorInfo(RV_UserError, "CreateWindowEx");
        return -1;
    }
    HWND head = column.head;
    BringWindowToTop(head);
    SendMessageA(head, WM_SETFONT, reinterpret_cast<WPARAM>(r->boldFont), TRUE);
    if (column.hasList) {
        SendMessageA(head, kHeadSetup, ((column.id & 0xFF) << 8) | kListHead, ListStyle(column));
        if (HWND list = HeadChild(head))
            SendMessageA(list, WM_SETFONT, reinterpret_cast<WPARAM>(r->normalFont), TRUE);
    }
    return GadgetAlive(window, r) ? 1 : -1;
}

LRESULT OnSetColumnType(HWND window, WaffleRecord *r, DWORD index, DWORD type)
{
    if (index >= r->columnCount)
        return -1;
    WaffleColumn &column = r->columns[index];
    if (column.head)
        SendMessageA(column.head, kHeadSetup, (column.id << 8) | (type & 0xFF), column.headStyle);
    if (GadgetAlive(window, r))
        r->columns[index].headType = type;
    return -1;
}

// Writes each string of a list ending in an empty one, one row apart.
// Filling passes over (but counts) a string of one character or one
// starting with a blank; putting writes every string.
LRESULT OnColumnList(HWND window, WaffleRecord *r, DWORD first, const char *list, bool put)
{
    if (!list) {
        OSErrorSetErrorInfo(RV_BadParms, put ? "WFM_PUTCOLUMN" : "WFM_FILLCOLUMN");
        return 1;
    }
    DWORD index = first;
    for (const char *s = list; *s; s += lstrlenA(s) + 1, index += r->columnCount) {
        if (put) {
            SendMessageA(window, WFM_PUTCELL, index, reinterpret_cast<LPARAM>(s));
            if (!GadgetAlive(window, r))
                return 1;
        } else if (s[1] != 0 && s[0] != ' ') {
            WaffleSetCell(r, index, s);
        }
    }
    return 1;
}

void CommitEdit(WaffleRecord *r)
{
    char text[kWaffleTextSize];
    GetWindowTextA(r->edit, text, kWaffleTextSize);
    WaffleSetCell(r, r->currentCell, text);
}

void OnInsertRow(HWND window, WaffleRecord *r)
{
    DWORD rowStart = r->currentCell / r->columnCount * r->columnCount;
    SendMessageA(window, WFM_GOTOCELL, rowStart, 0);
    if (!GadgetAlive(window, r))
        return;
    WaffleOpenRow(r, r->currentCell / r->columnCount * r->columnCount);
    InvalidateRect(window, nullptr, TRUE);
    SetWindowTextA(r->edit, "");
}

void OnDeleteRow(HWND window, WaffleRecord *r)
{
    WaffleRemoveRow(r, r->currentCell / r->columnCount);
    char text[kWaffleTextSize];
    WaffleGetCell(r, r->currentCell, text);
    SetWindowTextA(r->edit, text);
    InvalidateRect(window, nullptr, TRUE);
}

bool IsHeadOrInside(const WaffleRecord *r, HWND focus)
{
    for (DWORD c = 0; focus && c < r->columnCount; ++c) {
        HWND head = r->columns[c].head;
        if (head && (focus == head || IsChild(head, focus)))
            return true;
    }
    return false;
}

// The frame shows while the edit or a head has the focus; a focus that
// left the gadget takes the edit's text into the current cell.
void FocusUpdate(HWND window, WaffleRecord *r, bool leaving)
{
    // While the edit reports losing the focus it may still hold it.
    HWND focus = GetFocus();
    if (leaving && focus == r->edit)
        focus = nullptr;
    bool shown = focus && (focus == r->edit || IsHeadOrInside(r, focus));
    if (!shown && focus != window && !IsChild(window, focus))
        CommitEdit(r);
    if (shown == (r->focusShown != 0) || !r->columnCount)
        return;
    bool ok = true;
    if (r->focusShown)
        ok = WaffleToggleFrame(window, r);
    r->focusShown = shown ? 1 : 0;
    if (ok && shown)
        ok = WaffleToggleFrame(window, r);
    if (!ok)
        WaffleNotifyError(window, r);
}

// A head opened or closed: the cell under an open one follows it.
void OnHeadOpenClose(HWND window, WaffleRecord *r)
{
    for (DWORD c = 0; c < r->columnCount; ++c) {
        HWND head = r->columns[c].head;
        if (!head || !SendMessageA(head, kHeadIsOpen, 0, 0))
            continue;
        if (!GadgetAlive(window, r))
            return;
        LONG cell = static_cast<LONG>(r->currentCell / r->columnCount * r->columnCount + c);
        if (r->columns[c].headType == kDateHead) {
            WaffleGoToCell(window, r, cell, false);
            return;
        }
        if (r->columns[c].headType != kListHead)
            return;
        SendMessageA(window, WFM_GOTOCELL, static_cast<WPARAM>(static_cast<DWORD>(cell)), 0);
        if (!GadgetAlive(window, r))
            return;
        char text[kWaffleTextSize];
        WaffleGetCell(r, r->currentCell, text);
        HWND list = HeadChild(r->columns[c].head);
        if (!list)
            return;
        LRESULT found = SendMessageA(list, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                     reinterpret_cast<LPARAM>(text));
        SendMessageA(list, LB_SETCURSEL, found == LB_ERR ? 0 : found, 0);
        return;
    }
    SetFocus(r->edit);
}

// The head of a column reports under the column's id while it is open.
void OnColumnCommand(WaffleRecord *r, const WaffleColumn &column, WORD code)
{
    HWND child = HeadChild(column.head);
    if (!child)
        return;
    if (column.headType == kListHead && code == LBN_SELCHANGE) {
        LRESULT chosen = SendMessageA(child, LB_GETCURSEL, 0, 0);
        LRESULT length = chosen == LB_ERR ? LB_ERR : SendMessageA(child, LB_GETTEXTLEN, chosen, 0);
        if (length == LB_ERR || length < 0 || length > 0xFFFF)
            return;
        char *text = static_cast<char *>(LocalAlloc(LPTR, length + 1));
        if (!text) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(length + 1));
            return;
        }
        if (SendMessageA(child, LB_GETTEXT, chosen, reinterpret_cast<LPARAM>(text)) != LB_ERR)
            SetWindowTextA(r->edit, text);
        LocalFree(text);
    } else if (column.headType == kDateHead && code == 200) {
        DateTimeValue value = {};
        char text[kWaffleTextSize];
        SendMessageA(child, kDateGet, 0, reinterpret_cast<LPARAM>(&value));
        if (OSDateTimeToString(&value, text, nullptr, DTS_SHORTDATE, kWaffleTextSize))
            SetWindowTextA(r->edit, text);
    }
}

void OnCommand(HWND window, WaffleRecord *r, WPARAM wParam, LPARAM lParam)
{
    WORD id = LOWORD(wParam), code = HIWORD(wParam);
    if (id == kWaffleEditId) {
        if (code == EN_SETFOCUS || code == EN_KILLFOCUS)
            FocusUpdate(window, r, code == EN_KILLFOCUS);
        return;
    }
    if (id == kWaffleHeadId) {
        if (code == 4 || code == 5)
            FocusUpdate(window, r, false);
        else if (code == kWaffleError)
            WaffleNotifyError(window, r);
        else if (code == 200)
            OnHeadOpenClose(window, r);
        return;
    }
    (void)lParam;
    for (DWORD c = 0; c < r->columnCount; ++c) {
        if ((r->columns[c].id & 0xFF) != id || !r->columns[c].head)
            continue;
        if (code == 4 || code == 5)
            FocusUpdate(window, r, false);
        else
            OnColumnCommand(r, r->columns[c], code);
        return;
    }
}

// The heads' owner-drawn lists are drawn by the gadget's parent.
LRESULT ForwardItem(HWND window, UINT message, LPARAM lParam)
{
    UINT id = message == WM_DRAWITEM ? reinterpret_cast<DRAWITEMSTRUCT *>(lParam)->CtlID
                                     : reinterpret_cast<MEASUREITEMSTRUCT *>(lParam)->CtlID;
    return SendMessageA(GetParent(window), message, id, lParam);
}

// The messages that divide by the column count, with what they answer
// while there is no column.
struct NoColumnAnswer {
    UINT message;
    LRESULT answer;
};
const NoColumnAnswer kNoColumnAnswers[] = {
    {WFM_GETLASTROW, 0},     {WFM_GETROWSIZE, 1},       {WFM_GETROW, -1},
    {WFM_GETCOLUMNSIZE, 1},  {WFM_GETCOLUMN, -1},       {WFM_GETCURRENTROW, 0},
    {WFM_GETCURRENTCOLUMN, 0}, {WFM_INSERTROW, 0},      {WFM_DELETEROW, 0},
};

const NoColumnAnswer *WithoutColumns(const WaffleRecord *r, UINT message)
{
    if (r->columnCount)
        return nullptr;
    for (const NoColumnAnswer &row : kNoColumnAnswers)
        if (row.message == message)
            return &row;
    return nullptr;
}

LRESULT OnHostMessage(HWND window, WaffleRecord *r, UINT message, WPARAM wParam, LPARAM lParam)
{
    const char *text = reinterpret_cast<const char *>(lParam);
    char *buffer = reinterpret_cast<char *>(lParam);
    DWORD index = static_cast<DWORD>(wParam);
    WaffleColumn *column = nullptr;
    switch (message) {
    case WFM_SETROWCOUNT:
        r->rowCount = index;
        WaffleSetRange(window, r);
        WaffleLayout(window, r);
        InvalidateRect(window, nullptr, TRUE);
        return 1;
    case WFM_ADDCOLUMN:
        return OnAddColumn(window, r, reinterpret_cast<const DWORD *>(lParam));
    case WFM_SETCELL:
        return WaffleSetCell(r, index, text);
    case WFM_SETCOLUMNCAPTION:
        if ((column = ColumnById(r, index)) && column->head) {
            SetWindowTextA(column->head, text);
            InvalidateRect(column->head, nullptr, TRUE);
        }
        return 1;
    case WFM_ADDLISTSTRING:
        column = ColumnById(r, index);
        if (!column)
            return 0;
        if (HWND list = HeadChild(column->head))
            return SendMessageA(list, LB_ADDSTRING, 0, lParam);
        return 0;
    case WFM_GOTOCELL:
        return WaffleGoToCell(window, r, static_cast<LONG>(index), true);
    case WFM_GETCELL:
        if (!buffer)
            return -1;
        WaffleGetCell(r, index, buffer);
        return 1;
    case WFM_GETLASTROW:
        return WaffleLastRow(r);
    case WFM_GETROWSIZE:
    case WFM_GETCOLUMNSIZE:
        return WaffleLineSize(r, index, message == WFM_GETCOLUMNSIZE);
    case WFM_GETROW:
    case WFM_GETCOLUMN:
        if (!buffer)
            return -1;
        WaffleGetLine(r, index, message == WFM_GETCOLUMN, buffer);
        return 1;
    case WFM_GETHEAD:
        column = ColumnById(r, index);
        return column ? reinterpret_cast<LRESULT>(column->head) : 0;
    case WFM_GETCURRENTROW:
        return r->currentCell / r->columnCount;
    case WFM_GETCURRENTCOLUMN:
        return r->currentCell % r->columnCount;
    case WFM_GETCURRENTCELL:
        return r->currentCell;
    case WFM_INSERTROW:
        OnInsertRow(window, r);
        return 0;
    case WFM_DELETEROW:
        OnDeleteRow(window, r);
        return 0;
    case WFM_FILLCOLUMN:
    case WFM_PUTCOLUMN:
        return OnColumnList(window, r, index, text, message == WFM_PUTCOLUMN);
    case WFM_PUTCELL:
        if (index == r->currentCell && text)
            SetWindowTextA(r->edit, text);
        return WaffleSetCell(r, index, text);
    case WFM_SETCOLUMNTYPE:
        return OnSetColumnType(window, r, index, LOWORD(lParam));
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

extern "C" LRESULT WINAPI GadWWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(window);
    WaffleRecord *r = WaffleOf(window);
    if (!r)
        return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY:
        OnDestroy(window, r);
        return 0;
    case WM_SIZE:
        WaffleOnSize(window, r);
        return 0;
    case WM_SETFOCUS:
        SetFocus(r->edit);
        return 0;
    case WM_PAINT:
        WaffleOnPaint(window, r);
        return 0;
    case WM_SETFONT:
        OnSetFont(window, r, reinterpret_cast<HFONT>(wParam), LOWORD(lParam));
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(r->fontIsNormal ? r->normalFont : r->boldFont);
    case WM_COMMAND:
        OnCommand(window, r, wParam, lParam);
        return 0;
    case WM_VSCROLL:
        WaffleOnVScroll(window, r, LOWORD(wParam), HIWORD(wParam));
        return 0;
    case WM_LBUTTONDOWN:
        WaffleOnLButtonDown(window, r, static_cast<short>(LOWORD(lParam)),
                             static_cast<short>(HIWORD(lParam)));
        return 0;
    case WM_DRAWITEM:
    case WM_MEASUREITEM:
        if (lParam)
            return ForwardItem(window, message, lParam);
        break;
    }
    if (message >= WFM_SETROWCOUNT && message <= WFM_SETCOLUMNTYPE) {
        if (const NoColumnAnswer *refused = WithoutColumns(r, message)) {
            // Without a column there is nothing to divide a cell index by.
            OSErrorSetErrorInfo(RV_BadParms, "Waffle");
            return refused->answer;
        }
        return OnHostMessage(window, r, message, wParam, lParam);
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

LRESULT CALLBACK WaffleWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return GadWWndProc(window, message, wParam, lParam);
}
