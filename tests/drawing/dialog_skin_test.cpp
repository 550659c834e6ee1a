// The grey dialog skin: which dialogs the hook subclasses and when, where
// they are placed, and how bitmap check boxes paint.
#include "import_patch.h"
#include "message_box_driver.h"
#include "surface.h"
#include "window_harness.h"
#include <commdlg.h>
#include <vector>

namespace {

// A dialog template in memory: a popup of `cx` x `cy` dialog units at
// (x, y), with `children` static controls.
std::vector<WORD> DialogTemplate(short x, short y, short cx, short cy, int children)
{
    std::vector<WORD> t(sizeof(DLGTEMPLATE) / 2 + 3, 0);
    auto *dialog = reinterpret_cast<DLGTEMPLATE *>(t.data());
    dialog->style = WS_POPUP | WS_CAPTION;
    dialog->cdit = static_cast<WORD>(children);
    dialog->x = x, dialog->y = y, dialog->cx = cx, dialog->cy = cy;
    for (int i = 0; i < children; ++i) {
        if (t.size() % 2) t.push_back(0);  // DWORD alignment
        size_t at = t.size();
        t.resize(at + sizeof(DLGITEMTEMPLATE) / 2);
        auto *item = reinterpret_cast<DLGITEMTEMPLATE *>(&t[at]);
        item->style = WS_CHILD | WS_VISIBLE;
        item->x = 4, item->y = short(4 + 12 * i), item->cx = 40, item->cy = 10;
        item->id = static_cast<WORD>(100 + i);
        t.insert(t.end(), {0xFFFF, 0x0082, 0, 0});  // class STATIC, no text, no data
    }
    return t;
}

INT_PTR CALLBACK PlainDialog(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

HWND MakeDialog(HWND owner, const std::vector<WORD> &t)
{
    return CreateDialogIndirectParamA(GetModuleHandleA(nullptr),
                                      reinterpret_cast<const DLGTEMPLATE *>(t.data()), owner,
                                      PlainDialog, 0);
}

bool Subclassed(HWND dialog)
{
    return GetWindowLongPtrA(dialog, GWLP_WNDPROC) ==
               reinterpret_cast<LONG_PTR>(UIDialogSubclassProc) &&
           GetPropA(dialog, "QzOffset") != nullptr;
}

// A registered main window for the length of a test.
struct GrayMain {
    RecordingParent main{400, 300};
    GrayMain() { EXPECT_TRUE(UIGrayDialogInit(main.Window())); }
    ~GrayMain() { EXPECT_TRUE(UIGrayDialogUnInit(main.Window())); }
};

using DialogSkin = ErrorStateTest;

// First in this program: before any registration the colour is the window's.
TEST_F(DialogSkin, DialogColourTurnsGreyForGood)
{
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), UIGetDlgColor());
    {
        GrayMain gray;
        EXPECT_EQ(GetSysColor(COLOR_BTNFACE), UIGetDlgColor());
    }
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), UIGetDlgColor());
    EXPECT_FALSE(UIGrayDialogUnInit(nullptr));
    EXPECT_EQ(RV_Failure, OSErrorGetErrorValue());
}

TEST_F(DialogSkin, SubclassesADialogAtItsFirstChild)
{
    GrayMain gray;
    HWND withChild = MakeDialog(gray.main.Window(), DialogTemplate(0, 0, 100, 60, 2));
    HWND childless = MakeDialog(gray.main.Window(), DialogTemplate(0, 0, 100, 60, 0));
    HWND unowned = MakeDialog(nullptr, DialogTemplate(0, 0, 100, 60, 1));
    EXPECT_TRUE(Subclassed(withChild));
    EXPECT_FALSE(Subclassed(childless));
    EXPECT_TRUE(Subclassed(unowned)) << "the process fall-back";
    // The former procedure still runs: the dialog still answers as one.
    EXPECT_EQ(DC_HASDEFID, HIWORD(SendMessageA(withChild, DM_GETDEFID, 0, 0)));
    for (HWND dialog : {withChild, childless, unowned}) DestroyWindow(dialog);
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

// Counts the window creations and activations a hook of the thread sees,
// and records the procedure of each message box or dialog as it is activated.
struct CbtWatch {
    static thread_local CbtWatch *current;
    int created = 0, activated = 0;
    std::vector<LONG_PTR> procedures;
    HHOOK hook = SetWindowsHookExA(WH_CBT, Hook, nullptr, GetCurrentThreadId());
    CbtWatch() { current = this; }
    ~CbtWatch() { UnhookWindowsHookEx(hook); }
    static LRESULT CALLBACK Hook(int code, WPARAM wParam, LPARAM lParam)
    {
        char name[16] = {};
        HWND window = reinterpret_cast<HWND>(wParam);
        current->created += code == HCBT_CREATEWND;
        if (code == HCBT_ACTIVATE && ++current->activated && GetClassNameA(window, name, 16) &&
            lstrcmpA(name, "#32770") == 0)
            current->procedures.push_back(GetWindowLongPtrA(window, GWLP_WNDPROC));
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }
};
thread_local CbtWatch *CbtWatch::current = nullptr;

TEST_F(DialogSkin, MessageBoxesAndFileDialogsAreSubclassedToo)
{
    GrayMain gray;
    MessageBoxDriver boxes;
    CbtWatch watch;
    boxes.Expect("Grey?", MB_YESNO, IDYES);
    EXPECT_EQ(IDYES, MessageBoxA(gray.main.Window(), "Grey?", "skin", MB_YESNO));
    ASSERT_FALSE(watch.procedures.empty());
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(UIDialogSubclassProc), watch.procedures[0]);

    LONG_PTR fileDialogProcedure = 0;
    boxes.OnDialog([&](HWND dialog) {
        fileDialogProcedure = GetWindowLongPtrA(dialog, GWLP_WNDPROC);
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    char file[MAX_PATH] = "";
    OPENFILENAMEA ofn = {};
    ofn.lStructSize = sizeof ofn;
    ofn.hwndOwner = gray.main.Window();
    ofn.lpstrFile = file;
    ofn.nMaxFile = sizeof file;
    ofn.Flags = OFN_EXPLORER;
    EXPECT_FALSE(GetOpenFileNameA(&ofn));
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(UIDialogSubclassProc), fileDialogProcedure);
}

// A hook installed before the skin's still sees window creation, and
// nothing else.
TEST_F(DialogSkin, HookPassesOnWindowCreationOnly)
{
    CbtWatch watch;
    RecordingParent main;
    ASSERT_TRUE(UIGrayDialogInit(main.Window()));
    watch.created = watch.activated = 0;
    HWND popup = CreateWindowExA(0, "STATIC", "p", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50,
                                 main.Window(), nullptr, nullptr, nullptr);
    SetActiveWindow(main.Window());
    DestroyWindow(popup);
    EXPECT_EQ(1, watch.created);
    EXPECT_EQ(0, watch.activated);
    EXPECT_TRUE(UIGrayDialogUnInit(main.Window()));
}

RECT Frame(HWND window)
{
    RECT r;
    GetWindowRect(window, &r);
    return r;
}

// Centred over the main window's client area or the screen, and held on
// the screen.
TEST_F(DialogSkin, CentresExactlyAndStaysOnTheScreen)
{
    const int screenW = GetSystemMetrics(SM_CXSCREEN), screenH = GetSystemMetrics(SM_CYSCREEN);
    ASSERT_EQ(1024, screenW);
    ASSERT_EQ(768, screenH);
    GrayMain gray;
    struct Case {
        int mainX, mainY;  // where the main window stands (-1: no owner)
        short cx, cy;      // dialog size in dialog units
    } cases[] = {{-1, 0, 100, 60}, {0, 0, 100, 60}, {300, 200, 100, 60}, {900, 600, 100, 60},
                 {-1, 0, 900, 700}, {50, 40, 900, 700}};
    for (const Case &c : cases) {
        HWND owner = nullptr;
        RECT area = {0, 0, screenW, screenH};
        if (c.mainX >= 0) {
            owner = gray.main.Window();
            SetWindowPos(owner, nullptr, c.mainX, c.mainY, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            GetClientRect(owner, &area);
            MapWindowPoints(owner, nullptr, reinterpret_cast<POINT *>(&area), 2);
        }
        HWND dialog = MakeDialog(owner, DialogTemplate(3, 3, c.cx, c.cy, 1));
        RECT r = Frame(dialog);
        int w = r.right - r.left, h = r.bottom - r.top;
        auto place = [](int start, int size, int own, int screen) {
            int p = (size - own) / 2 + start;
            if (p < 1 || screen - own < 1) return 0;
            return p >= screen - own ? screen - own : p;
        };
        EXPECT_EQ(place(area.left, area.right - area.left, w, screenW), r.left) << c.mainX << "," << c.cx;
        EXPECT_EQ(place(area.top, area.bottom - area.top, h, screenH), r.top) << c.mainY << "," << c.cy;
        DestroyWindow(dialog);
    }
    // An iconic main window leaves the dialog where its template put it.
    SetWindowPos(gray.main.Window(), nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    ShowWindow(gray.main.Window(), SW_MINIMIZE);
    HWND placed = MakeDialog(gray.main.Window(), DialogTemplate(3, 3, 100, 60, 1));
    ASSERT_TRUE(Subclassed(placed));
    RECT r = Frame(placed);
    EXPECT_LT(r.left, 40);
    EXPECT_LT(r.top, 40);
    DestroyWindow(placed);
    ShowWindow(gray.main.Window(), SW_RESTORE);
}

// A 16 x 12 picture: its top two rows in the transparent colour (magenta,
// the top-left pixel's), the rest `colour`.
HBITMAP Picture(COLORREF colour)
{
    std::vector<std::string> rows(12, std::string(16, 'b'));
    rows[0] = rows[1] = std::string(16, 'a');
    return MakeImage(rows, {RGB(255, 0, 255), colour});
}

BOOL WINAPI RefusedBlit(HDC, int, int, int, int, HDC, int, int, DWORD) { return FALSE; }

TEST_F(DialogSkin, BitmapCheckBoxPaintsItsBoxAndPicture)
{
    RecordingParent parent(200, 60);
    HWND box = parent.CreateChild("BUTTON", 7, BS_AUTOCHECKBOX, 10, 10, 120, 24, "text");
    HWND edit = parent.CreateChild("EDIT", 8, 0, 10, 36, 120, 20, "edit");
    HBITMAP red = Picture(RGB(255, 0, 0)), blue = Picture(RGB(0, 0, 255));
    EXPECT_FALSE(UIBitmapCheckBox(edit, red));
    EXPECT_EQ(GetWindowLongPtrA(edit, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(UIButtonSubclassProc), false);
    ASSERT_TRUE(UIBitmapCheckBox(box, red));
    ASSERT_TRUE(UIBitmapCheckBox(box, blue));  // a second record: the first still draws
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(UIButtonSubclassProc), GetWindowLongPtrA(box, GWLP_WNDPROC));
    char text[64] = {};
    GetWindowTextA(box, text, sizeof text);
    EXPECT_EQ(std::string(strlen(text), 'i'), std::string(text));
    EXPECT_GE(strlen(text), 1u);

    BITMAP sheet;
    HBITMAP sheetBitmap = LoadBitmapA(nullptr, MAKEINTRESOURCEA(32759));
    GetObjectA(sheetBitmap, sizeof sheet, &sheet);
    DeleteObject(sheetBitmap);
    const int boxW = sheet.bmWidth / 4, boxH = sheet.bmHeight / 3;

    InvalidateRect(box, nullptr, TRUE);
    Readback off = Readback::Of(box);
    RECT pictureArea = {boxW + 2, 0, boxW + 2 + 16, off.Height()};
    EXPECT_EQ(16 * 10, off.Count(RGB(255, 0, 0), &pictureArea));
    EXPECT_EQ(0, off.Count(RGB(0, 0, 255)));
    EXPECT_EQ(0, off.Count(RGB(255, 0, 255)));

    SendMessageA(box, BM_SETCHECK, BST_CHECKED, 0);
    InvalidateRect(box, nullptr, TRUE);
    Readback on = Readback::Of(box);
    RECT boxArea = {0, 1, boxW, 1 + boxH};
    // The box changed; right of it (the picture and beyond) nothing did.
    long boxChanges = 0, rightChanges = 0;
    for (int y = 0; y < on.Height(); ++y)
        for (int x = 0; x < on.Width(); ++x) {
            POINT p = {x, y};
            bool changed = on.At(x, y) != off.At(x, y);
            boxChanges += changed && PtInRect(&boxArea, p);
            rightChanges += changed && x >= boxW;
        }
    EXPECT_GT(boxChanges, 0);
    EXPECT_EQ(0, rightChanges);

    // A face that cannot be drawn is shown to the user, once per paint,
    // and leaves no error pending.
    {
        ImportPatch blit(LibraryModule(), "gdi32.dll", "BitBlt", reinterpret_cast<const void *>(RefusedBlit));
        ASSERT_TRUE(blit.Applied());
        MessageBoxDriver boxes;
        boxes.AnswerOthers(IDOK, false);
        InvalidateRect(box, nullptr, TRUE);
        UpdateWindow(box);
        ASSERT_EQ(1u, boxes.Seen().size());
        EXPECT_EQ(GetAncestor(box, GA_ROOT), boxes.Seen()[0].owner);
        EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    }
    DeleteObject(red);
    DeleteObject(blue);
}

TEST_F(DialogSkin, CurrentRadioButtonIsTheFirstChecked)
{
    RecordingParent parent;
    for (int id = 10; id <= 13; ++id)
        parent.CreateChild("BUTTON", id, BS_RADIOBUTTON, 0, 20 * (id - 10), 80, 18, "r");
    EXPECT_EQ(10u, UIGetCurrentRadioButton(parent.Window(), 10, 13));
    CheckDlgButton(parent.Window(), 12, BST_CHECKED);
    CheckDlgButton(parent.Window(), 13, BST_CHECKED);
    EXPECT_EQ(12u, UIGetCurrentRadioButton(parent.Window(), 10, 13));
    EXPECT_EQ(13u, UIGetCurrentRadioButton(parent.Window(), 13, 12));
    EXPECT_EQ(11u, UIGetCurrentRadioButton(parent.Window(), 11, 11));
}

}  // namespace
