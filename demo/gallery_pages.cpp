// The gallery's pages. Adding a page: one row in kGalleryPages and one
// function that builds it.
#include "gallery.h"
#include "gadget_frame.h"
#include "qziso32.h"
#include <algorithm>
#include <string>
#include <string.h>
#include <vector>

namespace {

const char kPageClass[] = "QzGalleryPage";
// Pictures the pages hand to their gadgets; they live as long as the program.
std::vector<HBITMAP> g_pictures;

typedef void (*PagePainter)(HWND page, HDC dc);

LRESULT CALLBACK PageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_PAINT) {
        PAINTSTRUCT paint;
        HDC dc = BeginPaint(window, &paint);
        auto painter = reinterpret_cast<PagePainter>(GetWindowLongPtrA(window, GWLP_USERDATA));
        if (painter) painter(window, dc);
        EndPaint(window, &paint);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

// A sample picture: `colour` with a white border and a darker band, on a
// magenta top-left pixel colour that the check box treats as transparent.
HBITMAP SamplePicture(COLORREF colour, int width, int height)
{
    HDC screen = GetDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    HDC dc = CreateCompatibleDC(screen);
    ReleaseDC(nullptr, screen);
    if (!bitmap || !dc) {
        if (dc) DeleteDC(dc);
        if (bitmap) DeleteObject(bitmap);
        return nullptr;
    }
    HGDIOBJ old = SelectObject(dc, bitmap);
    RECT all = {0, 0, width, height};
    HBRUSH clear = CreateSolidBrush(RGB(255, 0, 255));
    FillRect(dc, &all, clear);
    DeleteObject(clear);
    RECT body = {2, 2, width - 2, height - 2};
    HBRUSH fill = CreateSolidBrush(colour);
    FillRect(dc, &body, fill);
    DeleteObject(fill);
    FrameRect(dc, &body, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    RECT band = {2, 2, width - 2, 6};
    FillRect(dc, &band, static_cast<HBRUSH>(GetStockObject(DKGRAY_BRUSH)));
    SelectObject(dc, old);
    DeleteDC(dc);
    g_pictures.push_back(bitmap);
    return bitmap;
}

// A visible child of the page with its control id, in the dialog font unless
// `guiFont` is false (the gadget's own font then stands).
HWND Child(HWND page, const char *className, const char *text, DWORD style, int id, int x, int y,
           int width, int height, bool guiFont = true)
{
    HWND child = CreateWindowExA(0, className, text, WS_CHILD | WS_VISIBLE | style, x, y, width,
                                 height, page, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                 GetModuleHandleA(nullptr), nullptr);
    if (child && guiFont)
        SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    return child;
}

// ---------------------------------------------------------------- pages

INT_PTR CALLBACK NoticeProc(HWND, UINT message, WPARAM, LPARAM)
{
    return message == WM_INITDIALOG;
}

// The one-time notice from the resource library, grey and centred by the skin.
HWND BuildDialogPage(HWND host)
{
    return CreateDialog(ResourceGetHandle(), "EIGHTEEN", host, NoticeProc);
}

// Check boxes and radio buttons with pictures, in a group box painted on
// the grey face.
HWND BuildCheckBoxPage(HWND host)
{
    HWND page = MakePageWindow(host, "Check boxes", 340, 170);
    if (!page) return nullptr;
    struct Row {
        const char *label;
        DWORD style;
        COLORREF colour;
        bool checked, enabled;
    } rows[] = {
        {"Appointments", BS_AUTOCHECKBOX, RGB(0, 128, 192), false, true},
        {"Birthdays", BS_AUTOCHECKBOX, RGB(192, 64, 0), true, true},
        {"Holidays", BS_AUTOCHECKBOX, RGB(0, 160, 64), true, false},
        {"Day view", BS_AUTORADIOBUTTON, RGB(128, 0, 160), true, true},
        {"Week view", BS_AUTORADIOBUTTON, RGB(160, 160, 0), false, true},
    };
    HWND group = Child(page, "BUTTON", "Show in the diary", BS_GROUPBOX, 99, 10, 8, 320, 152);
    // The skin paints a group box once it is subclassed; the text is put
    // back after the subclassing replaced it.
    if (!group || !UIBitmapCheckBox(group, SamplePicture(RGB(0, 0, 0), 4, 4)))
        return DestroyWindow(page), nullptr;
    SetWindowTextA(group, "Show in the diary");
    int id = 100;
    for (const Row &row : rows) {
        int y = 30 + (id - 100) * 24;
        HWND button = Child(page, "BUTTON", row.label, row.style, id, 24, y, 150, 20);
        HBITMAP picture = SamplePicture(row.colour, 48, 16);
        if (!button || !picture || !UIBitmapCheckBox(button, picture))
            return DestroyWindow(page), nullptr;
        // The plain system control beside it, for comparison.
        HWND plain = Child(page, "BUTTON", row.label, row.style, id + 50, 180, y, 140, 20);
        if (!plain)
            return DestroyWindow(page), nullptr;
        for (HWND each : {button, plain}) {
            SendMessageA(each, BM_SETCHECK, row.checked ? BST_CHECKED : BST_UNCHECKED, 0);
            EnableWindow(each, row.enabled);
        }
        ++id;
    }
    return page;
}

// The drawing every gadget shares: arrow-button faces, the text colour
// rule on user colours with and without the LCD option, and the trough.
void PaintSharedDrawing(HWND, HDC dc)
{
    SetBkMode(dc, TRANSPARENT);
    SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    TextOutA(dc, 10, 8, "Button faces: up, down", 22);
    for (int i = 0; i < 4; ++i) {
        RECT face = {10 + i * 40, 28, 44 + i * 40, 50};
        if (i % 2) GadDrawButtonDown(dc, &face);
        else GadDrawButtonUp(dc, &face);
    }
    const COLORREF swatches[] = {RGB(0, 128, 0), RGB(0, 129, 0), RGB(0, 0, 128), RGB(0, 0, 129),
                                 RGB(0x81, 0x81, 0), RGB(255, 255, 255), RGB(192, 192, 192)};
    for (LONG lcd = 0; lcd < 2; ++lcd) {
        int y = 64 + lcd * 44;
        SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
        TextOutA(dc, 10, y, lcd ? "Text colour, LCD rule" : "Text colour, plain rule",
                 lcd ? 21 : 23);
        g_gadgetLcdOption = lcd;
        for (int i = 0; i < static_cast<int>(sizeof swatches / sizeof *swatches); ++i) {
            RECT swatch = {10 + i * 46, y + 18, 52 + i * 46, y + 40};
            HBRUSH brush = CreateSolidBrush(swatches[i]);
            FillRect(dc, &swatch, brush);
            DeleteObject(brush);
            SetTextColor(dc, GadgetContrastTextColor(swatches[i]));
            DrawTextA(dc, "Aa", 2, &swatch, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        }
        g_gadgetLcdOption = 0;
    }
    RECT trough = {10, 158, 330, 176};
    UITroughRect(dc, &trough);

    // A picture with a transparent border put on three backgrounds by the
    // gadgets' mask blits, then the other polarity.
    static HBITMAP picture = SamplePicture(RGB(0, 96, 160), 40, 20);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    TextOutA(dc, 10, 186, "Mask blits", 10);
    const COLORREF grounds[] = {RGB(255, 255, 255), RGB(0x81, 0x81, 0), GetSysColor(COLOR_BTNFACE)};
    for (int i = 0; i < 3; ++i) {
        RECT cell = {10 + i * 56, 204, 60 + i * 56, 232};
        HBRUSH brush = CreateSolidBrush(grounds[i]);
        FillRect(dc, &cell, brush);
        DeleteObject(brush);
        GadUtilMaskBltNoFlicker(dc, &cell, picture, nullptr, RGB(255, 0, 255));
    }
    // Each inverting call flips the picture itself after its mask is made:
    // the first shows it inverted, the second (whose border is green by
    // then) as it was.
    RECT inverted = {178, 204, 228, 232}, again = {234, 204, 284, 232};
    GadUtilMaskBltInvertNoFlicker(dc, &inverted, picture, nullptr, RGB(255, 0, 255));
    GadUtilMaskBltInvertNoFlicker(dc, &again, picture, nullptr, RGB(0, 255, 0));
}

HWND BuildSharedDrawingPage(HWND host)
{
    HWND page = MakePageWindow(host, "Shared gadget drawing", 340, 242);
    if (page) SetWindowLongPtrA(page, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(PaintSharedDrawing));
    return page;
}

// QzBitmap on the dialog colour: centred with its magenta corner transparent,
// the same picture drawn plain, a monochrome one, and none at all.
HWND BuildBitmapPage(HWND host)
{
    HWND page = MakePageWindow(host, "QzBitmap", 340, 120);
    if (!page) return nullptr;
    static const BYTE kChecker[8 * 2] = {0xF0, 0, 0xF0, 0, 0xF0, 0, 0xF0, 0,
                                         0x0F, 0, 0x0F, 0, 0x0F, 0, 0x0F, 0};
    HBITMAP mono = CreateBitmap(8, 8, 1, 1, kChecker);
    if (mono) g_pictures.push_back(mono);
    const struct {
        const char *label;
        DWORD style;
        HBITMAP bitmap;
    } cells[] = {
        {"Transparent", 0x8000, SamplePicture(RGB(0, 96, 160), 48, 24)},
        {"Plain", 0, SamplePicture(RGB(0, 96, 160), 48, 24)},
        {"Monochrome", 0x8000, mono},
        {"Empty", 0x8000, nullptr},
    };
    int x = 10;
    for (const auto &cell : cells) {
        if (!Child(page, "STATIC", cell.label, SS_LEFT, -1, x, 10, 76, 16))
            return DestroyWindow(page), nullptr;
        HWND g = Child(page, "QzBitmap", "", cell.style, 200 + x, x, 30, 72, 48);
        if (!g)
            return DestroyWindow(page), nullptr;
        SendMessageA(g, 0x401, reinterpret_cast<WPARAM>(cell.bitmap), 0);
        x += 82;
    }
    return page;
}

// Three tumblers: an integer with a negative minimum, a time of hours and
// minutes, and one disabled; each with its label.
HWND BuildTumblerPage(HWND host)
{
    HWND page = MakePageWindow(host, "Tumbler", 260, 120);
    if (!page) return nullptr;
    const struct {
        const char *label;
        DWORD style;
        LONG range[4];
        bool enabled;
    } rows[] = {
        {"Integer, -50 to 50 by 5", 0, {-50, 50, -15, 5}, true},
        {"Hours and minutes", TUS_HOURMINUTE, {0, 1439, 570, 15}, true},
        {"Disabled", 0, {0, 99, 42, 1}, false},
    };
    for (int i = 0; i < 3; ++i) {
        const int y = 10 + i * 36;
        HWND label = Child(page, "static", rows[i].label, 0, 0, 10, y + 4, 140, 18);
        HWND tumbler = Child(page, "Tumbler", "", WS_BORDER | rows[i].style, 100 + i, 150, y, 100, 24);
        if (!label || !tumbler) return nullptr;
        SetWindowPos(tumbler, nullptr, 0, 0, 100, 24, SWP_NOMOVE | SWP_NOZORDER);  // height from the font
        SendMessageA(tumbler, TUM_SETRANGE, 0, reinterpret_cast<LPARAM>(rows[i].range));
        EnableWindow(tumbler, rows[i].enabled);
    }
    return page;
}

// Two time setters on one morning: one on its own colour with the value at
// 10:25, one on white over a 12-hour view with the value at 14:00.
HWND BuildTimeSetterPage(HWND host)
{
    HWND page = MakePageWindow(host, "TimeSetter", 180, 340);
    if (!page) return nullptr;
    const struct {
        int x;
        WPARAM hours;
        COLORREF back;
        DateTimeValue view, value;
    } rows[] = {
        {10, 8, 0x818100, {2026, 3, 10, 8, 0, 0, 0}, {2026, 3, 10, 10, 25, 0, 0}},
        {95, 12, RGB(255, 255, 255), {2026, 3, 10, 7, 0, 0, 0}, {2026, 3, 10, 14, 0, 0, 0}},
    };
    for (const auto &row : rows) {
        HWND setter = Child(page, "TimeSetter", "", 0, 200 + row.x, row.x, 10, 60, 320, false);
        if (!setter) return nullptr;
        SendMessageA(setter, TSM_SETHOURSINVIEW, row.hours, 0);
        SendMessageA(setter, TSM_SETBACKCOLOUR, 0, static_cast<LPARAM>(row.back));
        SendMessageA(setter, TSM_SETVIEWSTART, 0, reinterpret_cast<LPARAM>(&row.view));
        SendMessageA(setter, TSM_SETVALUE, 0, reinterpret_cast<LPARAM>(&row.value));
    }
    return page;
}

// Two month calendars: this month with a day chosen and today marked, in
// the system font; and a six-row month with the days of its neighbours in
// grey, in the dialog font.
HWND BuildDateTrackerPage(HWND host)
{
    HWND page = MakePageWindow(host, "DateTracker", 430, 170);
    if (!page) return nullptr;
    HWND trackers[2];
    for (int i = 0; i < 2; ++i) {
        trackers[i] = Child(page, "DateTracker", "", 0, 100 + i, 10 + i * 215, 10, 100, 100, false);
        if (!trackers[i]) return DestroyWindow(page), nullptr;
    }
    DateTimeValue chosen;
    OSGetDateTime(&chosen);
    chosen.day = static_cast<BYTE>(chosen.day > 20 ? chosen.day - 12 : chosen.day + 6);
    SendMessageA(trackers[0], DTKM_SETDATE, 0, reinterpret_cast<LPARAM>(&chosen));
    SendMessageA(trackers[1], WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    SetWindowPos(trackers[1], nullptr, 0, 0, 100, 100, SWP_NOMOVE | SWP_NOZORDER);  // size from the font
    DateTimeValue august = {2015, 8, 14, 0, 0, 0, 0};
    SendMessageA(trackers[1], DTKM_SETDATE, 0, reinterpret_cast<LPARAM>(&august));
    return page;
}

// Two trackers side by side: a working day with colleagues' busy times in
// lanes, the appointment clashing (red strip); and a free evening on the
// default colour, in a narrower view.
DateTimeValue GalleryTime(int hour, int minute)
{
    DateTimeValue v = {};
    OSSetDateTime(&v, 2026, 3, 11, hour, minute, 0, 0);
    return v;
}

HWND BuildTimeTrackerPage(HWND host)
{
    HWND page = MakePageWindow(host, "TimeTracker", 300, 330);
    if (!page) return nullptr;
    const struct {
        int x;
        DWORD hours;
        int startHour, startMinute, endHour, endMinute, viewHour;
        bool busy;
    } rows[] = {
        {10, 8, 10, 30, 12, 0, 8, true},
        {160, 6, 18, 0, 19, 30, 16, false},
    };
    const BusyInterval busy[] = {
        {GalleryTime(9, 0), 90, 1, 0, 0},  {GalleryTime(9, 30), 120, 2, 0, 0},
        {GalleryTime(11, 0), 45, 3, 0, 0}, {GalleryTime(13, 0), 60, 4, 0, 0},
        {GalleryTime(14, 30), 30, 5, 0, 0},
    };
    for (int i = 0; i < 2; ++i) {
        HWND tracker = Child(page, "TimeTracker", "", 0, 100 + i, rows[i].x, 10, 120, 310, false);
        if (!tracker) return nullptr;
        DateTimeValue view = GalleryTime(rows[i].viewHour, 0);
        DateTimeValue start = GalleryTime(rows[i].startHour, rows[i].startMinute);
        DateTimeValue end = GalleryTime(rows[i].endHour, rows[i].endMinute);
        SendMessageA(tracker, TTM_SETHOURSINVIEW, rows[i].hours, 0);
        SendMessageA(tracker, TTM_SETVIEWSTART, 0, reinterpret_cast<LPARAM>(&view));
        SendMessageA(tracker, TTM_SETEND, 0, reinterpret_cast<LPARAM>(&end));
        SendMessageA(tracker, TTM_SETSTART, 0, reinterpret_cast<LPARAM>(&start));
        if (rows[i].busy)
            SendMessageA(tracker, TTM_SETBUSYLIST, sizeof busy / sizeof *busy, reinterpret_cast<LPARAM>(busy));
    }
    return page;
}

// A million entries that exist only as numbers: the list asks for the ones
// it shows and forgets them when they leave its window.
LRESULT CALLBACK MillionListProc(HWND list, UINT code, void *request, LPARAM)
{
    DWORD first = 0, last = 0;
    if (code == VLN_INIT) {
        auto *init = static_cast<VLINITREQUEST *>(request);
        if (!init->firstRows) return 0;
        last = init->firstRows - 1;
    } else if (code == VLN_LOAD) {
        first = static_cast<VLLOADREQUEST *>(request)->first;
        last = static_cast<VLLOADREQUEST *>(request)->last;
    } else {
        return 0;
    }
    // A one-item lookup keeps the text pointer, so the text must outlive it.
    static char text[48];
    for (DWORD i = first;; ++i) {
        wsprintfA(text, "Entry %lu of 1,000,000", static_cast<unsigned long>(i + 1));
        VListBox_AddString(list, i, text, static_cast<LPARAM>(i));
        if (i == last) break;
    }
    return 0;
}

HWND BuildVirtualListPage(HWND host)
{
    HWND page = MakePageWindow(host, "Virtual list", 340, 242);
    if (!page) return nullptr;
    HWND list = Child(page, "QzVListBox", "", WS_VSCROLL | VLS_EXTENDEDSEL | VLS_NOTIFY, 1, 10, 10, 320, 222,
                      false);
    if (!list || !VListBox_Initialize(list, 1000000, 200, 40, MillionListProc, 0)) return nullptr;
    VListBox_SetTopIndex(list, 499995);
    const DWORD chosen[] = {499997, 499998, 499999, 500002};
    VListBox_SetSelItems(list, 4, chosen);
    VListBox_SetCaretIndex(list, 500002);
    return page;
}


// The dynamic list over a table of 50,000 names that changes while it is
// shown. A record's reference is its id, which never changes; its index is
// its place in the sorted table.
struct NameRecord {
    std::string name;
    DWORD id;
};
std::vector<NameRecord> g_names;
DWORD g_nextNameId = 1;
const int kInsertButton = 2, kDeleteButton = 3;

bool NameLess(const NameRecord &a, const NameRecord &b) { return a.name < b.name; }

void MakeNames()
{
    static const char *const first[] = {"Ada", "Bela", "Cora", "Dag", "Edda", "Finn", "Greta",
                                        "Hugo", "Ilse", "Jon", "Kai", "Lena", "Mads", "Nora",
                                        "Olaf", "Pia", "Rune", "Siv", "Tove", "Ulla"};
    static const char *const last[] = {"Aalto", "Berg", "Dahl", "Eklund", "Falk", "Holm", "Isaksen",
                                       "Jarl", "Krogh", "Lind", "Moberg", "Nyberg", "Ostrom",
                                       "Lund", "Sand", "Strand", "Viklund", "Wahl", "Ask", "Tofte"};
    g_names.clear();
    for (DWORD i = 0; i < 50000; ++i) {
        char text[64];
        wsprintfA(text, "%s %s %05lu", last[(i / 20) % 20], first[i % 20],
                  static_cast<unsigned long>(i / 400));
        g_names.push_back({text, g_nextNameId++});
    }
    std::sort(g_names.begin(), g_names.end(), NameLess);
}

void AddName(HWND list, long long index)
{
    if (index < 0 || index >= static_cast<long long>(g_names.size())) return;
    const NameRecord &record = g_names[index];
    DVListBox_AddString(list, static_cast<LONG>(index), &record.id, record.name.c_str(), record.id);
}

LRESULT CALLBACK NameListProc(HWND list, UINT code, void *request, LPARAM)
{
    long long size = static_cast<long long>(g_names.size());
    if (code == VLN_INIT) {
        auto *init = static_cast<VLINITREQUEST *>(request);
        for (DWORD i = 0; i < init->firstRows; ++i) AddName(list, i);
    } else if (code == VLN_LOAD) {
        auto *load = static_cast<DVLLOADREQUEST *>(request);
        long long first = load->first;
        if (load->first == DVL_SENTINELTOP) first = 0;
        if (load->first == DVL_SENTINELBOTTOM) first = size - load->count;
        if (first >= size) DVListBox_SetPastBottom(list, 0);
        for (long long i = first; i < first + load->count; ++i) AddName(list, i);
    } else if (code == VLN_FIND) {
        auto *find = static_cast<DVLFINDREQUEST *>(request);
        DWORD id = *static_cast<const DWORD *>(find->ref);
        for (size_t i = 0; i < g_names.size(); ++i)
            if (g_names[i].id == id) {
                find->index = static_cast<LONG>(i);
                find->reload = 1;
            }
    } else if (code == VLN_SEARCH) {
        auto *search = static_cast<DVLSEARCHREQUEST *>(request);
        NameRecord key = {search->text, 0};
        auto at = std::lower_bound(g_names.begin(), g_names.end(), key, NameLess);
        if (at != g_names.end()) {
            search->index = static_cast<LONG>(at - g_names.begin());
            search->reload = 1;
            if (search->refBuffer) memcpy(search->refBuffer, &at->id, 4);
        }
    }
    return 0;
}

// The host's live changes: a record comes or goes and the list reloads
// around its present top, keeping its selection by reference.
void InsertName(HWND list, const char *name)
{
    NameRecord record = {name, g_nextNameId++};
    g_names.insert(std::upper_bound(g_names.begin(), g_names.end(), record, NameLess), record);
    DVListBox_SetNumItems(list, static_cast<LONG>(g_names.size()));
    DVListBox_SetTopIndex(list, DVL_NOINDEX, TRUE);
}

void DeleteName(HWND list, long long index)
{
    if (index < 0 || index >= static_cast<long long>(g_names.size())) return;
    g_names.erase(g_names.begin() + index);
    DVListBox_SetNumItems(list, static_cast<LONG>(g_names.size()));
    DVListBox_SetTopIndex(list, DVL_NOINDEX, TRUE);
}

WNDPROC g_dynamicPageBase = nullptr;

LRESULT CALLBACK DynamicPageProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED) {
        HWND list = GetDlgItem(page, 1);
        static int inserted = 0;
        char name[48];
        if (LOWORD(wParam) == kInsertButton) {
            wsprintfA(name, "Lind Ada 00004 (%d)", ++inserted);
            InsertName(list, name);
        } else if (LOWORD(wParam) == kDeleteButton) {
            LONG at = DVListBox_GetCurSel(list);
            DeleteName(list, at != DVL_NOINDEX ? at : DVListBox_GetTopIndex(list));
        }
        return 0;
    }
    return CallWindowProcA(g_dynamicPageBase, page, message, wParam, lParam);
}

HWND BuildDynamicListPage(HWND host)
{
    HWND page = MakePageWindow(host, "Dynamic list", 340, 272);
    if (!page) return nullptr;
    MakeNames();
    HWND list = Child(page, "QzDVListBox", "", WS_VSCROLL | VLS_NOTIFY | VLS_DOUBLEBUFFER, 1, 10, 10, 320, 222,
                      false);
    if (!list || !DVListBox_Initialize(list, static_cast<LONG>(g_names.size()), 200, 40, 4,
                                       NameListProc, 0))
        return nullptr;
    Child(page, "BUTTON", "Insert", 0, kInsertButton, 10, 240, 90, 24, false);
    Child(page, "BUTTON", "Delete", 0, kDeleteButton, 110, 240, 90, 24, false);
    g_dynamicPageBase = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(page, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(DynamicPageProc)));
    // Open in the middle, select a record, then let the data change around
    // it: two records come in on view, one goes.
    DVListBox_SetTopIndex(list, 25000, TRUE);
    DWORD chosen = g_names[25004].id;
    DVListBox_SetCurSelRef(list, &chosen);
    std::string before = g_names[25002].name + " (new)", after = g_names[25006].name + " (new)";
    InsertName(list, before.c_str());
    InsertName(list, after.c_str());
    DeleteName(list, 25001);
    return page;
}

// A tabbed dialog: three pages from templates, a tab that adds the host's
// "Private" box and one that takes its note away; the second page is
// current, so its group box and the moved button show.
HWND BuildDialogTabsPage(HWND host)
{
    HMODULE resources = ResourceGetHandle();
    HWND dialog = CreateDialog(resources, "TABHOST", host, NoticeProc);
    if (!dialog) return nullptr;
    // Shown first: a change of page turns the parent's redraw off and on,
    // and turning it on marks a hidden window visible without painting it.
    ShowWindow(dialog, SW_SHOWNA);
    HWND tabs = GetDlgItem(dialog, 100);
    static const DWORD included[] = {300, 0}, excluded[] = {301, 0};
    const char *pages[] = {"TABPAGE1", "TABPAGE2", "TABPAGE3"};
    for (DWORD i = 0; i < 3; ++i)
        if (!Tab_AddDialogTab(tabs, MAKEINTRESOURCEA(30180 + i), i + 1, resources, pages[i]))
            return nullptr;
    char options[64], plain[64];
    LoadStringA(resources, 30183, options, sizeof options);
    LoadStringA(resources, 30184, plain, sizeof plain);
    if (!Tab_AddInclusionTab(tabs, options, 4, included, 0) ||
        !Tab_AddExclusionTab(tabs, plain, 5, excluded))
        return nullptr;
    Tab_SetCurrentTab(tabs, 2);
    return dialog;
}

// A film's frames side by side over a striped ground: each cell of the
// sheet played as the first frame of its own film, which stays; copied
// whole, through the transparent colour, and through the mask halves.
void PaintFilmStrip(HWND page, HDC dc)
{
    RECT client;
    GetClientRect(page, &client);
    for (int x = 0; x < client.right; x += 8) {
        RECT stripe = {x, 0, x + 4, client.bottom};
        FillRect(dc, &stripe, static_cast<HBRUSH>(GetStockObject(LTGRAY_BRUSH)));
    }
    // Two frames of one cell each: the second is never shown.
    static const LONG cells[8][2] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}, {7, 7}};
    const struct { DWORD sheet; LONG mode; int step; } rows[] = {
        {9200, FILM_COPY, 24}, {9200, FILM_KEYCOLOUR, 24}, {9201, FILM_MASKHALF, 36},
    };
    for (int r = 0; r < 3; ++r)
        for (int i = 0; i < 8; ++i) {
            PlayFilm(dc, 10 + i * rows[r].step, 10 + r * 26, ResourceGetHandle(), rows[r].sheet, 4, 2,
                     rows[r].mode, 2, 0, RGB(255, 0, 255), 0, cells[i], 0);
            EndFilm();
        }
}

HWND BuildFilmPage(HWND host)
{
    HWND page = MakePageWindow(host, "Film frames", 300, 88);
    if (page) SetWindowLongPtrA(page, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(PaintFilmStrip));
    return page;
}

// Two stopwatches: one stopped at 0:10:42, one past a day at 27:35:05,
// whose digits show the hours of the day.
HWND BuildStopWatchPage(HWND host)
{
    HWND page = MakePageWindow(host, "StopWatch", 220, 110);
    if (!page) return nullptr;
    const DWORD readings[2][3] = {{0, 10, 42}, {27, 35, 5}};
    for (int i = 0; i < 2; ++i) {
        HWND watch = Child(page, "StopWatch", "", 0, 100 + i, 10 + i * 105, 10, 95, 90);
        if (!watch) return nullptr;
        SendMessageA(watch, SWM_SETELAPSED, 0, reinterpret_cast<LPARAM>(readings[i]));
    }
    return page;
}

// Gauges at several values: the default colours at 0, 35 and 100 percent,
// a green bar on cream at 70, and a raised one at 55.
HWND BuildGasGaugePage(HWND host)
{
    HWND page = MakePageWindow(host, "GasGauge", 260, 196);
    if (!page) return nullptr;
    const struct {
        LONG value;
        COLORREF bar, back;
        bool raised;
    } rows[] = {
        {0, 0xFF0000, 0xFFFFFF, false},  {35, 0xFF0000, 0xFFFFFF, false},
        {70, 0x00A000, 0xD0F0FF, false}, {100, 0xFF0000, 0xFFFFFF, false},
        {55, 0x800000, 0xFFFFFF, true},
    };
    for (int i = 0; i < 5; ++i) {
        HWND gauge = Child(page, "GasGauge", "", 0, 100 + i, 10, 10 + i * 36, 240, 24);
        if (!gauge) return nullptr;
        if (rows[i].raised) {
            SendMessageA(gauge, GGM_SETRAISED, 1, 0);
            SetWindowPos(gauge, nullptr, 0, 0, 240, 26, SWP_NOMOVE | SWP_NOZORDER);
        }
        SendMessageA(gauge, GGM_SETBARCOLOUR, 0, rows[i].bar);
        SendMessageA(gauge, GGM_SETBACKCOLOUR, 0, rows[i].back);
        SendMessageA(gauge, GGM_SETVALUE, 0, rows[i].value);
    }
    return page;
}

// A job that advances a status box on a timer and stops on Cancel.
void CALLBACK StatusJobStep(HWND box, UINT, UINT_PTR, DWORD)
{
    static DWORD done = 6;
    if (StatusCanceled(box) || done >= 10) {
        StatusClose(box);
        return;
    }
    char text[64];
    wsprintfA(text, "Copying file %lu of 10", ++done);
    StatusSetText(box, text);
    StatusValue(box, done);
}

// A status box over a running job, six files of ten done.
HWND BuildStatusBoxPage(HWND)
{
    HWND box = StatusBox(nullptr, "Copying file 6 of 10", 0, 10, STATUS_CANCEL);
    if (!box) return nullptr;
    StatusValue(box, 6);
    SetTimer(box, 1, 700, StatusJobStep);
    return box;
}

}  // namespace

const GalleryPage kGalleryPages[] = {
    {"dialog_skin", "Dialog skin", BuildDialogPage},
    {"check_boxes", "Bitmap check boxes", BuildCheckBoxPage},
    {"gadget_drawing", "Shared gadget drawing", BuildSharedDrawingPage},
    {"qz_bitmap", "QzBitmap", BuildBitmapPage},
    {"dialog_tabs", "Dialog tabs", BuildDialogTabsPage},
    {"virtual_list", "Virtual list", BuildVirtualListPage},
    {"dynamic_list", "Dynamic list", BuildDynamicListPage},
    {"time_tracker", "TimeTracker", BuildTimeTrackerPage},
    {"time_setter", "TimeSetter", BuildTimeSetterPage},
    {"date_tracker", "DateTracker", BuildDateTrackerPage},
    {"tumbler", "Tumbler", BuildTumblerPage},
    {"gas_gauge", "GasGauge", BuildGasGaugePage},
    {"status_box", "Status box", BuildStatusBoxPage},
    {"film", "Film frames", BuildFilmPage},
    {"stop_watch", "StopWatch", BuildStopWatchPage},
    {"page", "Page", BuildPageLayoutPage},
    {"free_time", "FreeTime", BuildFreeTimePage},
    {"field_mapper", "FieldMapper", BuildFieldMapperPage},
    {"super_text", "SuperText", BuildSuperTextPage},
    {"waffle", "Waffle", BuildWafflePage},
    {"listbox_palette", "QzListBox and colour palette", BuildListBoxPalettePage},
    {"qz_combo", "QzCombo", BuildComboPage},
    {"qz_combo_open", "QzCombo open", BuildComboDroppedPage},
    {"palette_open", "Colour palette open", BuildPaletteDroppedPage},
};
const int kGalleryPageCount = sizeof kGalleryPages / sizeof *kGalleryPages;

ATOM RegisterFaceClass(const char *name, WNDPROC procedure)
{
    WNDCLASSA wc = {};
    wc.lpfnWndProc = procedure;
    wc.hInstance = GetModuleHandleA(nullptr);
    wc.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    wc.lpszClassName = name;
    return RegisterClassA(&wc);
}

HWND MakePageWindow(HWND host, const char *title, int width, int height)
{
    static ATOM atom = RegisterFaceClass(kPageClass, PageProc);
    if (!atom) return nullptr;
    const DWORD style = WS_OVERLAPPED | WS_CAPTION;
    RECT frame = {0, 0, width, height};
    AdjustWindowRect(&frame, style, FALSE);
    return CreateWindowExA(0, kPageClass, title, style, 40, 40, frame.right - frame.left,
                           frame.bottom - frame.top, host, nullptr, GetModuleHandleA(nullptr),
                           nullptr);
}
