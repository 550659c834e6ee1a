// Gallery pages of the mapping and canvas gadgets: a FieldMapper linking
// the columns of an import file to the diary's fields, and a SuperText
// whose long content the page measures and draws, shown scrolled.
#include "gallery.h"
#include "qziso32.h"
#include <stdio.h>

namespace {

const int kLines = 60;

HWND MakeChild(HWND page, const char *className, DWORD style, int id, int x, int y, int w, int h)
{
    HWND child = CreateWindowExA(0, className, "", WS_CHILD | WS_VISIBLE | style, x, y, w, h, page,
                                 reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                 GetModuleHandleA(nullptr), nullptr);
    if (child)
        SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    return child;
}

void LineText(int n, char *text, int size)
{
    static const char *const kWords[] = {"meeting with the supplier", "call the garage",
                                         "lunch in the park", "review the quarterly figures",
                                         "dentist", "pick up the parcel"};
    snprintf(text, size, "%02d:%02d  %s", 8 + n / 6, (n % 6) * 10, kWords[n % 6]);
}

// The page measures the content in the gadget's font and draws it at the
// rectangle the gadget gives, which the scroll positions have moved.
LRESULT CALLBACK CanvasPageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    char text[80];
    if (message == WM_MEASUREITEM) {
        auto *m = reinterpret_cast<MEASUREITEMSTRUCT *>(lParam);
#if defined(_WIN64)
        HDC dc = reinterpret_cast<HDC>(m->itemData);
#else
        HDC dc = reinterpret_cast<HDC>(static_cast<UINT_PTR>(m->itemID));
#endif
        TEXTMETRICA tm;
        GetTextMetricsA(dc, &tm);
        UINT widest = 0;
        for (int n = 0; n < kLines; ++n) {
            LineText(n, text, sizeof text);
            SIZE size;
            GetTextExtentPoint32A(dc, text, lstrlenA(text), &size);
            if (UINT(size.cx) > widest) widest = size.cx;
        }
        m->itemWidth = widest + 8;
        m->itemHeight = kLines * tm.tmHeight;
        return TRUE;
    }
    if (message == WM_DRAWITEM) {
        auto *d = reinterpret_cast<DRAWITEMSTRUCT *>(lParam);
        TEXTMETRICA tm;
        GetTextMetricsA(d->hDC, &tm);
        SetBkMode(d->hDC, TRANSPARENT);
        for (int n = 0; n < kLines; ++n) {
            LineText(n, text, sizeof text);
            SetTextColor(d->hDC, n % 6 == 3 ? RGB(160, 0, 0) : RGB(0, 0, 0));
            TextOutA(d->hDC, d->rcItem.left + 4, d->rcItem.top + n * tm.tmHeight, text, lstrlenA(text));
        }
        return TRUE;
    }
    if (message == WM_CTLCOLORSTATIC)
        return reinterpret_cast<LRESULT>(GetStockObject(WHITE_BRUSH));
    return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

HWND BuildFieldMapperPage(HWND host)
{
    HWND page = MakePageWindow(host, "FieldMapper", 380, 180);
    if (!page) return nullptr;
    HWND mapper = MakeChild(page, "FieldMapper", 0, 301, 10, 10, 360, 160);
    if (!mapper) return nullptr;
    static const char *const kImport[] = {"SURNAME", "FIRST", "TEL", "EMAIL", "DOB", "MEMO", "ZIP"};
    static const char *const kDiary[] = {"Birthday", "E-mail", "Given name", "Name", "Notes",
                                         "Phone", "Postcode"};
    HWND left = reinterpret_cast<HWND>(SendMessageA(mapper, FMM_GETLEFTLIST, 0, 0));
    HWND right = reinterpret_cast<HWND>(SendMessageA(mapper, FMM_GETRIGHTLIST, 0, 0));
    for (int i = 0; i < 7; ++i) {
        SendMessageA(left, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(kImport[i]));
        SendMessageA(right, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(kDiary[i]));
    }
    static const WORD kLinks[][2] = {{0, 3}, {1, 2}, {2, 5}, {4, 0}};
    for (const auto &link : kLinks)
        SendMessageA(mapper, FMM_LINK, 1, MAKELPARAM(link[0], link[1]));
    return page;
}

HWND BuildSuperTextPage(HWND host)
{
    static ATOM atom = RegisterFaceClass("QzGalleryCanvasPage", CanvasPageProc);
    if (!atom) return nullptr;
    const DWORD style = WS_OVERLAPPED | WS_CAPTION;
    RECT frame = {0, 0, 300, 200};
    AdjustWindowRect(&frame, style, FALSE);
    HWND page = CreateWindowExA(0, "QzGalleryCanvasPage", "SuperText", style, 40, 40,
                                frame.right - frame.left, frame.bottom - frame.top, host, nullptr,
                                GetModuleHandleA(nullptr), nullptr);
    if (!page) return nullptr;
    HWND canvas = MakeChild(page, "SuperText", WS_BORDER, 302, 10, 10, 280, 180);
    if (!canvas) return nullptr;
    SendMessageA(canvas, WM_VSCROLL, SB_THUMBPOSITION, MAKELPARAM(150, 0));
    return page;
}
