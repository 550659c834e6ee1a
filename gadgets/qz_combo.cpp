// "QzCombo": the window procedure, creation and destruction, the layout of
// strip and child, the font, the painting, and the arrow button's track.
#include "qz_combo.h"
#include "gadget_frame.h"
#include "../core/module_globals.h"

namespace {

const int kEditInsetStart = 1;
const int kStripPadding = 9;  // strip height = text height + this
const int kOemComboArrow = 32738;
const UINT kRedrawDeferred = RDW_INVALIDATE | RDW_ERASE;

// The arrow track: one combo at a time can hold its arrow button.
struct ArrowTrack {
    bool held;
    bool inside;
    HDC dc;
    HWND window;
};
ArrowTrack g_track = {};

int ScrollWidth() { return GetSystemMetrics(SM_CXVSCROLL); }

int FaceHeight(const ComboRecord *r) { return r->stripHeight > 5 ? r->stripHeight - 4 : 1; }

// Draws one face of the arrow (0 raised, 1 pressed) from the picture.
void DrawFace(HDC dc, ComboRecord *r, int face)
{
    if (!r->arrowDC || !dc)
        return;
    int width = ScrollWidth();
    BitBlt(dc, r->arrowRect.left, r->arrowRect.top, width, FaceHeight(r), r->arrowDC, face * width, 0,
           SRCCOPY);
}

void FreeArrowFaces(ComboRecord *r)
{
    if (!r->arrowDC)
        return;
    HGDIOBJ bitmap = SelectObject(r->arrowDC, r->arrowSavedBitmap);
    if (bitmap)
        DeleteObject(bitmap);
    DeleteDC(r->arrowDC);
    r->arrowDC = nullptr;
    r->arrowSavedBitmap = nullptr;
}

// Both faces of the arrow side by side: raised on the left, pressed on the
// right with the image one pixel down and right.
bool BuildArrowFaces(HWND gadget, ComboRecord *r)
{
    FreeArrowFaces(r);
    int width = ScrollWidth();
    int height = FaceHeight(r);
    HDC screen = GetDC(gadget);
    if (!screen) {
        OSErrorSetErrorInfo(RV_GDIError, "GetDC");
        return false;
    }
    HDC dc = CreateCompatibleDC(screen);
    HBITMAP bitmap = dc ? CreateCompatibleBitmap(screen, width * 2, height) : nullptr;
    ReleaseDC(gadget, screen);
    if (!bitmap) {
        OSErrorSetErrorInfo(RV_GDIError, dc ? "CreateCompatibleBitmap" : "CreateCompatibleDC");
        if (dc)
            DeleteDC(dc);
        return false;
    }
    r->arrowSavedBitmap = static_cast<HBITMAP>(SelectObject(dc, bitmap));
    r->arrowDC = dc;
    HBITMAP arrow = LoadBitmapA(nullptr, MAKEINTRESOURCEA(kOemComboArrow));
    bool drawn = arrow != nullptr;
    SetTextColor(dc, GetSysColor(IsWindowEnabled(gadget) ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    SetBkColor(dc, RGB(255, 255, 255));
    RECT up = {0, 0, width, height};
    GadDrawButtonUp(dc, &up);
    RECT down = {width, 0, width * 2, height};
    GadDrawButtonDown(dc, &down);
    if (arrow) {
        drawn = GadUtilMonoBlt(dc, &up, arrow) != 0;
        OffsetRect(&down, 1, 1);
        drawn = GadUtilMonoBlt(dc, &down, arrow) != 0 && drawn;
        DeleteObject(arrow);
    } else {
        OSErrorSetErrorInfo(RV_GDIError, "LoadBitmap");
    }
    return drawn;
}

void EndTrack(HWND gadget, ComboRecord *r, bool release)
{
    if (!g_track.held || g_track.window != gadget)
        return;
    HDC dc = g_track.dc;
    g_track = ArrowTrack{};
    if (dc) {
        if (r)
            DrawFace(dc, r, 0);
        ReleaseDC(gadget, dc);
    }
    if (release && GetCapture() == gadget)
        ReleaseCapture();
}

// ---------------------------------------------------------------- font
void ApplyFont(HWND gadget, ComboRecord *r, HFONT font, BOOL redraw)
{
    RECT client, window;
    GetClientRect(gadget, &client);
    GetWindowRect(gadget, &window);
    r->frame.cx = (window.right - window.left) - client.right;
    r->frame.cy = (window.bottom - window.top) - client.bottom;
    if (r->edit)
        SendMessageA(r->edit, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    if (ComboChildLive(r))
        SendMessageA(r->child, WM_SETFONT, reinterpret_cast<WPARAM>(font), redraw);
    r->editInset = kEditInsetStart;
    r->reserved = kEditInsetStart;
    LONG textHeight = 0;
    if (HDC dc = GetDC(gadget)) {
        HGDIOBJ earlier = SelectObject(dc, font ? font : GetStockObject(SYSTEM_FONT));
        TEXTMETRICA tm = {};
        GetTextMetricsA(dc, &tm);
        textHeight = tm.tmHeight + tm.tmExternalLeading;
        SelectObject(dc, earlier);
        ReleaseDC(gadget, dc);
    }
    r->stripHeight = r->fixedStripHeight ? r->fixedStripHeight : textHeight + kStripPadding;
    r->font = font;
    bool faces = BuildArrowFaces(gadget, r);
    if (!r->isOpen) {
        r->inShowHide = 1;
        SetWindowPos(gadget, nullptr, 0, 0, client.right + r->frame.cx, r->stripHeight + r->frame.cy,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        r->inShowHide = 0;
        ComboLayout(gadget, r, client.right, r->fullHeight, false);
    }
    InvalidateRect(gadget, nullptr, TRUE);
    if (!faces)
        ComboNotifyOwn(gadget, r, QCN_ERROR);
}

// ---------------------------------------------------------------- paint
void Paint(HWND gadget, ComboRecord *r)
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(gadget, &ps);
    if (!dc)
        return;
    bool enabled = IsWindowEnabled(gadget) != 0;
    FillRect(dc, &r->frameRect, GetSysColorBrush(enabled ? COLOR_WINDOW : COLOR_BTNFACE));
    RECT edge = r->frameRect;
    DrawEdge(dc, &edge, EDGE_SUNKEN, BF_RECT);
    if (r->child)
        DrawFace(dc, r, g_track.held && g_track.window == gadget && g_track.inside ? 1 : 0);
    if (!r->edit) {
        int length = GetWindowTextLengthA(gadget);
        char *text = static_cast<char *>(LocalAlloc(LPTR, length + 1));
        if (text) {
            GetWindowTextA(gadget, text, length + 1);
            RECT area;
            if (r->child) {
                area = r->frameRect;
                area.left += r->editInset;
                area.right = r->arrowRect.left - r->editInset;
            } else {
                GetClientRect(gadget, &area);
            }
            HGDIOBJ earlier = r->font ? SelectObject(dc, r->font) : nullptr;
            SetBkMode(dc, TRANSPARENT);
            SetTextColor(dc, GetSysColor(enabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT));
            DrawTextA(dc, text, length, &area, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
            if (earlier)
                SelectObject(dc, earlier);
            LocalFree(text);
        } else {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(length + 1));
        }
    }
    EndPaint(gadget, &ps);
}

// ---------------------------------------------------------------- mouse
void OnLButtonDown(HWND gadget, ComboRecord *r, LPARAM lParam)
{
    // The focus is taken unless it already lies inside the combo: taking it
    // from an open child would close the drop-down under the click.
    HWND focus = GetFocus();
    if (focus != gadget && focus != r->edit && !(r->child && (focus == r->child || IsChild(r->child, focus))))
        SetFocus(gadget);
    if (!GadgetAlive(gadget, r))
        return;
    if (!g_track.held && !ComboNotifyOwn(gadget, r, QCN_PRESSED))
        return;
    POINT point = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    if (r->child && PtInRect(&r->arrowRect, point)) {
        if (g_track.held)
            return;
        SetCapture(gadget);
        HDC dc = GetDC(gadget);
        if (!dc) {
            OSErrorSetErrorInfo(RV_GDIError, "GetDC");
            if (GetCapture() == gadget)
                ReleaseCapture();
            ComboNotifyOwn(gadget, r, QCN_ERROR);
            return;
        }
        g_track = ArrowTrack{true, true, dc, gadget};
        DrawFace(dc, r, 1);
        return;
    }
    if (r->isOpen) {
        // The click is meant for what lies under the combo once it is
        // closed; the point is found there, but nothing is sent to it.
        ClientToScreen(gadget, &point);
        ComboClose(gadget, r, kCloseOrdinary);
        if (HWND under = WindowFromPoint(point))
            ScreenToClient(under, &point);
    }
}

void OnMouseMove(HWND gadget, ComboRecord *r, LPARAM lParam)
{
    if (!g_track.held || g_track.window != gadget)
        return;
    POINT point = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    bool inside = PtInRect(&r->arrowRect, point) != 0;
    if (inside != g_track.inside) {
        g_track.inside = inside;
        DrawFace(g_track.dc, r, inside ? 1 : 0);
    }
}

void OnLButtonUp(HWND gadget, ComboRecord *r, LPARAM lParam)
{
    if (!g_track.held || g_track.window != gadget)
        return;
    POINT point = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    bool inside = PtInRect(&r->arrowRect, point) != 0;
    EndTrack(gadget, r, true);
    if (!inside || !GadgetAlive(gadget, r))
        return;
    if (r->isOpen)
        ComboClose(gadget, r, kCloseOrdinary);
    else
        ComboOpen(gadget, r);
}

// ---------------------------------------------------------------- life
LRESULT OnCreate(HWND gadget, const CREATESTRUCTA *cs)
{
    auto *r = GadgetCreate<ComboRecord>(gadget);
    if (!r)
        return GadgetCreateFailed;
    r->parent = cs->hwndParent ? cs->hwndParent : GetParent(gadget);
    r->editInset = kEditInsetStart;
    r->reserved = kEditInsetStart;
    RECT client;
    GetClientRect(gadget, &client);
    r->fullHeight = client.bottom;
    ComboLayout(gadget, r, client.right, r->fullHeight, false);
    ApplyFont(gadget, r, static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)), TRUE);
    if (!GadgetAlive(gadget, r))
        return GadgetCreateFailed;
    if (!(cs->style & QCS_STATIC) && !ComboCreateEdit(gadget, r))
        return GadgetCreateFailed;
    return 0;
}

void OnDestroy(HWND gadget, ComboRecord *r)
{
    EndTrack(gadget, r, true);
    if (r->isOpen)
        ComboClose(gadget, r, kCloseDestroying);
    ComboUnsubclassAncestors(gadget, r);
    if (ComboChildLive(r) && r->dropOldProc) {
        SetWindowLongPtrA(r->child, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(r->dropOldProc));
        r->dropOldProc = nullptr;
    }
    ComboRestoreEdit(r);
    FreeArrowFaces(r);
    r->isOpen = 0;
    ComboWakeLoop();
}

void OnSize(HWND gadget, ComboRecord *r, LPARAM lParam)
{
    if (r->inShowHide || r->isOpen)
        return;
    int width = LOWORD(lParam);
    int height = HIWORD(lParam);
    // A host that sizes the combo gives the height of strip and child.
    if (height > r->stripHeight)
        r->fullHeight = height;
    r->inShowHide = 1;
    SetWindowPos(gadget, nullptr, 0, 0, width + r->frame.cx, r->stripHeight + r->frame.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    r->inShowHide = 0;
    ComboLayout(gadget, r, width, r->fullHeight, false);
}

// Sends WM_DRAWITEM or WM_MEASUREITEM on to the dialog parent under the
// combo's own identifier for its child.
LRESULT ForwardItem(ComboRecord *r, UINT message, LPARAM lParam)
{
    if (!lParam)
        return FALSE;
    UINT *id = message == WM_DRAWITEM ? &reinterpret_cast<DRAWITEMSTRUCT *>(lParam)->CtlID
                                      : &reinterpret_cast<MEASUREITEMSTRUCT *>(lParam)->CtlID;
    UINT earlier = *id;
    *id = static_cast<UINT>(r->controlId);
    LRESULT result = SendMessageA(r->parent, message, static_cast<WPARAM>(r->controlId), lParam);
    *id = earlier;
    return result;
}

LRESULT OnPrivate(HWND gadget, ComboRecord *r, UINT message, WPARAM wParam, LPARAM lParam)
{
    RECT client;
    switch (message) {
    case QCM_SETCHILD:
        return ComboCreateChild(gadget, r, wParam, lParam);
    case QCM_SETARROWS:
        if (static_cast<int>(wParam) < 0)
            return GadgetFailure;
        r->arrowsHidden = static_cast<LONG>(wParam);
        r->childSide = static_cast<LONG>(lParam);
        GetClientRect(gadget, &client);
        if (!r->isOpen)
            ComboLayout(gadget, r, client.right, r->fullHeight, false);
        return GadgetSuccess;
    case QCM_GETCHILD:
        return ComboChildLive(r) ? reinterpret_cast<LRESULT>(r->child) : GadgetFailure;
    case QCM_GETEDIT:
        return reinterpret_cast<LRESULT>(r->edit);
    case QCM_SHOWDROPDOWN:
        if (wParam)
            return ComboOpen(gadget, r);
        // Only the ordinary close is taken as it stands from outside; any
        // other mode closes as a loss of focus. The ancestors' own close
        // leaves their subclass to them, so a host asking for it would
        // leave the subclass behind.
        return ComboClose(gadget, r, lParam == QCC_ORDINARY ? kCloseOrdinary : kCloseFocus);
    case QCM_ISOPEN:
        return r->isOpen;
    case QCM_SETSTRIPHEIGHT:
        r->fixedStripHeight = static_cast<LONG>(wParam);
        ApplyFont(gadget, r, r->font, TRUE);
        return GadgetSuccess;
    case QCM_GETTEXTSIZE:
        return GetWindowTextLengthA(ComboTextWindow(gadget, r)) + 2;
    case QCM_GETTEXT:
        return ComboGetText(gadget, r, wParam, lParam);
    case QCM_CHILDTOTEXT:
        ComboCopyChildText(gadget, r);
        if (GadgetAlive(gadget, r) && r->edit)
            SendMessageA(r->edit, EM_SETSEL, 0, -1);
        return GadgetSuccess;
    case QCM_SETEXTRAHEIGHT: {
        LONG most = (GetSystemMetrics(SM_CYSCREEN) - r->stripHeight) / 2;
        LONG extra = static_cast<LONG>(wParam);
        if (extra > most)
            extra = most;
        if (extra < 0)
            extra = 0;
        r->fullHeight = r->stripHeight + extra;
        GetClientRect(gadget, &client);
        if (!r->isOpen)
            ComboLayout(gadget, r, client.right, r->fullHeight, false);
        return GadgetSuccess;
    }
    case QCM_RELAYOUT:
        GetClientRect(gadget, &client);
        if (!r->isOpen)
            ComboLayout(gadget, r, client.right, r->fullHeight, false);
        return GadgetSuccess;
    case QCM_SETTEXT:
        return ComboSetText(gadget, r, lParam);
    default:
        return 0;
    }
}

LRESULT ComboProc(HWND gadget, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE)
        return OnCreate(gadget, reinterpret_cast<const CREATESTRUCTA *>(lParam));
    ComboRecord *r = ComboOf(gadget);
    if (!r)
        return DefWindowProcA(gadget, message, wParam, lParam);
    switch (message) {
    case WM_DESTROY:
        OnDestroy(gadget, r);
        GadgetFreeRecord(gadget, true);
        return 0;
    case WM_SIZE:
        OnSize(gadget, r, lParam);
        return 0;
    case WM_SETFOCUS:
        if (r->edit)
            SetFocus(r->edit);
        return 0;
    case WM_KILLFOCUS: {
        if (r->edit)
            HideCaret(r->edit);
        HWND to = reinterpret_cast<HWND>(wParam);
        if (r->isOpen && to != r->edit && to != r->child && !(r->child && IsChild(r->child, to)))
            ComboClose(gadget, r, kCloseFocus);
        return 0;
    }
    case WM_ENABLE:
        if (r->edit)
            EnableWindow(r->edit, static_cast<BOOL>(wParam));
        if (!BuildArrowFaces(gadget, r) && GadgetAlive(gadget, r))
            ComboNotifyOwn(gadget, r, QCN_ERROR);
        InvalidateRect(gadget, nullptr, TRUE);
        return 0;
    case WM_ACTIVATEAPP:
        if (r->isOpen)
            ComboClose(gadget, r, kCloseFocus);
        return 0;
    case WM_CANCELMODE:
        EndTrack(gadget, r, true);
        if (GadgetAlive(gadget, r) && r->isOpen)
            ComboClose(gadget, r, kCloseOrdinary);
        return 0;
    case WM_CAPTURECHANGED:
        // Another window took the mouse during a track: the press is
        // abandoned, and an open drop-down closes.
        if (g_track.held && g_track.window == gadget && reinterpret_cast<HWND>(lParam) != gadget) {
            EndTrack(gadget, r, false);
            if (GadgetAlive(gadget, r) && r->isOpen)
                ComboClose(gadget, r, kCloseOrdinary);
        }
        return 0;
    case WM_DRAWITEM:
    case WM_MEASUREITEM:
        return ForwardItem(r, message, lParam);
    case WM_SETFONT:
        ApplyFont(gadget, r, reinterpret_cast<HFONT>(wParam), static_cast<BOOL>(LOWORD(lParam)));
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(r->font);
    case WM_PAINT:
        Paint(gadget, r);
        return 0;
    case WM_NCPAINT:
        return 0;
    case WM_COMMAND:
        return ComboOnCommand(gadget, r, wParam, lParam);
    case WM_MOUSEMOVE:
        OnMouseMove(gadget, r, lParam);
        return 0;
    case WM_LBUTTONDOWN:
        OnLButtonDown(gadget, r, lParam);
        return 0;
    case WM_LBUTTONUP:
        OnLButtonUp(gadget, r, lParam);
        return 0;
    case WM_SETTEXT: {
        LRESULT result = DefWindowProcA(gadget, message, wParam, lParam);
        if (!r->edit)
            InvalidateRect(gadget, nullptr, TRUE);
        return result;
    }
    default:
        if (message > WM_USER && message <= QCM_SETTEXT)
            return OnPrivate(gadget, r, message, wParam, lParam);
        return DefWindowProcA(gadget, message, wParam, lParam);
    }
}

}  // namespace

// ---------------------------------------------------------------- shared
void ComboLayout(HWND gadget, ComboRecord *r, int width, int fullHeight, bool upward)
{
    int scroll = ScrollWidth();
    int strip = r->stripHeight;
    int childWidth = 0, childHeight = 0;
    if (ComboChildLive(r)) {
        int wanted = fullHeight - strip;
        SetWindowPos(r->child, nullptr, 0, 0, width - r->arrowsHidden * scroll, wanted > 0 ? wanted : 0,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        // A list box rounds its height to whole items.
        RECT real;
        GetWindowRect(r->child, &real);
        childWidth = real.right - real.left;
        childHeight = real.bottom - real.top;
    }
    int dropLeft = r->childSide == 1 ? 0 : r->arrowsHidden * scroll;
    r->droppedUp = upward;
    if (!upward) {
        SetRect(&r->arrowRect, width - scroll - 2, 2, width - 2, strip - 2);
        SetRect(&r->dropRect, dropLeft, strip, dropLeft + childWidth, strip + childHeight);
        SetRect(&r->frameRect, 0, 0, width, strip);
        if (r->edit)
            MoveWindow(r->edit, 3, 4, r->arrowRect.left - 3, strip - 6, TRUE);
    } else {
        int full = childHeight + strip;
        // The arrow's bottom stays that of the closed form, above its top,
        // so that no click hits the arrow in this form.
        SetRect(&r->arrowRect, width - scroll - 2, full - strip + 1, width - 2, strip - 2);
        SetRect(&r->dropRect, dropLeft, 0, dropLeft + childWidth, childHeight);
        SetRect(&r->frameRect, 0, full - strip, width, full);
        if (r->edit)
            MoveWindow(r->edit, 2, r->dropRect.bottom + 4, r->arrowRect.left - 3, strip - 6, TRUE);
    }
    if (ComboChildLive(r))
        SetWindowPos(r->child, nullptr, r->dropRect.left, r->dropRect.top - (upward ? 0 : 1), 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    (void)gadget;
}

bool ComboNotifyOwn(HWND gadget, ComboRecord *r, WORD code)
{
    WPARAM wParam = MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(gadget)), code);
    SendMessageA(r->parent, WM_COMMAND, wParam, reinterpret_cast<LPARAM>(gadget));
    return GadgetAlive(gadget, r);
}

bool ComboPassOn(HWND gadget, ComboRecord *r, WORD id, WORD code, LPARAM from)
{
    HWND target = r->isOpen ? r->parent : GetParent(gadget);
    SendMessageA(target, WM_COMMAND, MAKEWPARAM(id, code), from);
    return GadgetAlive(gadget, r);
}

void ComboEndTrack(HWND gadget) { EndTrack(gadget, ComboOf(gadget), true); }

extern "C" LRESULT WINAPI GadComboWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return ComboProc(window, message, wParam, lParam);
}

// The class's procedure: forwards to the exported one.
LRESULT CALLBACK ComboClassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return GadComboWndProc(window, message, wParam, lParam);
}
