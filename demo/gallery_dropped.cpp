// Drop-downs pictured open. An open drop-down is a window of its own on the
// desktop (the QzCombo even runs its own loop until it closes), so these
// pages are pictures: the page read back with its drop-downs open, each
// drop-down laid over the page where it stands on the screen.
#include "gallery.h"
#include "qziso32.h"
#include "readback.h"
#include <vector>

namespace {

// The page's client area with `popups` drawn over it at their places.
struct Picture {
    HWND page = nullptr;
    int width = 0, height = 0;
    std::vector<DWORD> pixels;
    void Start(HWND window)
    {
        page = window;
        Readback back = Readback::Of(window);
        width = back.Width(), height = back.Height();
        pixels = back.Pixels();
    }
    // Lays `popup` over the picture. With `childRows`, the rows where its
    // children stand are laid only where a child is: an open QzCombo keeps
    // there what the screen showed before it opened, and a screen that
    // cannot be copied leaves nothing to show.
    void Lay(HWND popup, bool childRows = false)
    {
        Readback back = Readback::Of(popup, true);
        RECT frame;
        GetWindowRect(popup, &frame);
        POINT at = {frame.left, frame.top};
        ScreenToClient(page, &at);
        std::vector<RECT> children;
        RECT rows = {0, 0, 0, 0};
        for (HWND child = GetWindow(popup, GW_CHILD); childRows && child; child = GetWindow(child, GW_HWNDNEXT)) {
            RECT r;
            if (!IsWindowVisible(child) || !GetWindowRect(child, &r))
                continue;
            OffsetRect(&r, -frame.left, -frame.top);
            children.push_back(r);
            UnionRect(&rows, &rows, &r);
        }
        for (int y = 0; y < back.Height(); ++y)
            for (int x = 0; x < back.Width(); ++x) {
                int px = at.x + x, py = at.y + y;
                bool shown = y < rows.top || y >= rows.bottom;
                for (const RECT &r : children)
                    shown = shown || (x >= r.left && x < r.right && y >= r.top && y < r.bottom);
                if (shown && px >= 0 && py >= 0 && px < width && py < height)
                    pixels[size_t(py) * width + px] = back.Pixels()[size_t(y) * back.Width() + x];
            }
    }
    // A page window of the same size showing the picture; null on failure.
    HWND Show(HWND host, const char *title) const
    {
        if (pixels.empty())
            return nullptr;
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void *bits = nullptr;
        HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        if (!bitmap)
            return nullptr;
        CopyMemory(bits, pixels.data(), pixels.size() * sizeof(DWORD));
        HWND shown = MakePageWindow(host, title, width, height);
        HWND still = shown ? CreateWindowExA(0, "STATIC", "", WS_CHILD | WS_VISIBLE | SS_BITMAP, 0, 0, width,
                                             height, shown, nullptr, GetModuleHandleA(nullptr), nullptr)
                           : nullptr;
        if (!still) {
            DeleteObject(bitmap);
            if (shown)
                DestroyWindow(shown);
            return nullptr;
        }
        // The static keeps the bitmap for the life of the page.
        SendMessageA(still, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap));
        return shown;
    }
};

Picture g_picture;

// Runs inside the open combo's own loop: lays the open combo over the
// picture, then closes it, which returns its opening call.
void CALLBACK LayAndClose(HWND page, UINT, UINT_PTR id, DWORD)
{
    KillTimer(page, id);
    HWND combo = reinterpret_cast<HWND>(id);
    g_picture.Lay(combo, true);
    SendMessageA(combo, QCM_SHOWDROPDOWN, 0, QCC_ORDINARY);
}

HWND MakeCombo(HWND page, int id, int x, int y, int kind)
{
    HWND combo = CreateWindowExA(0, "QzCombo", "", WS_CHILD | WS_VISIBLE, x, y, 200, 170, page,
                                 reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr),
                                 nullptr);
    if (combo && SendMessageA(combo, QCM_SETCHILD, kind | (id << 8), WS_VSCROLL) != 1)
        return nullptr;
    if (combo) {
        SendMessageA(combo, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), TRUE);
        SendMessageA(combo, QCM_CHILDTOTEXT, 0, 0);
    }
    return combo;
}

// Opens `combo` and pictures it open from inside its loop.
void OpenAndLay(HWND page, HWND combo)
{
    SetTimer(page, reinterpret_cast<UINT_PTR>(combo), 50, LayAndClose);
    SendMessageA(combo, QCM_SHOWDROPDOWN, 1, 0);
    KillTimer(page, reinterpret_cast<UINT_PTR>(combo));
}

}  // namespace

// Two QzCombos open on a page that stands at the bottom of the screen: a
// TimeTracker dropped down from the top of the page, and a DateTracker
// dropped upward from its bottom, where there is no room below.
HWND BuildComboDroppedPage(HWND host)
{
    HWND page = MakePageWindow(host, "QzCombo open", 440, 220);
    if (!page)
        return nullptr;
    RECT frame;
    GetWindowRect(page, &frame);
    SetWindowPos(page, nullptr, frame.left, GetSystemMetrics(SM_CYSCREEN) - (frame.bottom - frame.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    HWND down = MakeCombo(page, 50, 10, 10, QCK_TIMETRACKER);
    HWND up = MakeCombo(page, 51, 230, 190, QCK_DATETRACKER);
    HWND shown = nullptr;
    if (down && up) {
        ShowWindow(page, SW_SHOWNOACTIVATE);
        g_picture.Start(page);
        OpenAndLay(page, down);
        OpenAndLay(page, up);
        shown = g_picture.Show(host, "QzCombo open");
    }
    g_picture = Picture();
    DestroyWindow(page);
    return shown;
}

// The colour palette control with its grid dropped.
HWND BuildPaletteDroppedPage(HWND host)
{
    HWND page = MakePageWindow(host, "Colour palette open", 300, 330);
    if (!page)
        return nullptr;
    HWND colour = CreateWindowExA(0, "ccpal_popup", "",
                                  WS_CHILD | WS_VISIBLE | CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_NOINTEGRALHEIGHT,
                                  10, 10, 90, 300, page, reinterpret_cast<HMENU>(60), GetModuleHandleA(nullptr),
                                  nullptr);
    HWND shown = nullptr;
    COMBOBOXINFO info = {sizeof info};
    if (colour && ccPalSetRGB(colour, RGB(40, 120, 220)) == 0) {
        ShowWindow(page, SW_SHOWNOACTIVATE);
        g_picture.Start(page);
        SendMessageA(colour, CB_SHOWDROPDOWN, TRUE, 0);
        if (GetComboBoxInfo(colour, &info) && info.hwndList && IsWindowVisible(info.hwndList)) {
            g_picture.Lay(info.hwndList);
            shown = g_picture.Show(host, "Colour palette open");
        }
        SendMessageA(colour, CB_SHOWDROPDOWN, FALSE, 0);
    }
    g_picture = Picture();
    DestroyWindow(page);
    return shown;
}
