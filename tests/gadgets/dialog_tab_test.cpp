// "DialogTab" in a real dialog from the resource library: the pages TABPAGE1
// to TABPAGE3 share the button 210, and the host's own controls 300 and 301
// serve the inclusion and exclusion tabs.
#include "qz_test.h"
#include "failure_seam.h"
#include "message_box_driver.h"
#include "window_harness.h"
#include <algorithm>
#include <functional>
#include <random>
#include <vector>

namespace {

const int ID_TABS = 100;
const DWORD kIncluded[] = {300, 0};
const DWORD kExcluded[] = {301, 0};
std::vector<Message> g_seen;
WORD g_actOn;  // a hostile host: at this notification it destroys the tabs,
bool g_box;    // or opens a box

INT_PTR CALLBACK HostProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND || message == WM_SETREDRAW)
        g_seen.push_back({message, sent, wParam, lParam});
    if (message == WM_COMMAND && g_actOn && HIWORD(wParam) == g_actOn) {
        g_actOn = 0;
        if (g_box)
            MessageBoxA(dialog, "inside a notification", "host", MB_OK);
        else
            DestroyWindow(GetDlgItem(dialog, ID_TABS));
    }
    return message == WM_INITDIALOG;
}

// A control of the host's, under the page, that logs the mouse it gets.
LRESULT CALLBACK TargetProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_LBUTTONDOWN || message == WM_MOUSEMOVE)
        g_seen.push_back({message, sent, wParam, lParam});
    return DefWindowProcA(hwnd, message, wParam, lParam);
}

class DialogTab : public GadgetTest {
protected:
    void SetUp() override
    {
        GadgetTest::SetUp();
        resources_ = ResourceGetHandle();
        dialog_ = CreateDialogParamA(resources_, "TABHOST", nullptr, HostProc, 0);
        ASSERT_TRUE(dialog_);
        SetWindowPos(dialog_, HWND_TOP, 0, 0, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
        tabs_ = GetDlgItem(dialog_, ID_TABS);
        ASSERT_TRUE(tabs_);
        g_seen.clear();
    }
    void TearDown() override
    {
        DestroyWindow(dialog_);
        GadgetTest::TearDown();
    }
    void AddPages()
    {
        const char *names[] = {"TABPAGE1", "TABPAGE2", "TABPAGE3"};
        for (DWORD i = 0; i < 3; ++i)
            ASSERT_TRUE(Tab_AddDialogTab(tabs_, MAKEINTRESOURCEA(30180 + i), i + 1, resources_,
                                         names[i]));
    }
    HWND Item(int id) { return GetDlgItem(dialog_, id); }
    RECT Mapped(int x, int y, int cx, int cy)
    {
        RECT rect = {x, y, x + cx, y + cy};
        MapDialogRect(dialog_, &rect);
        return rect;
    }
    // Where `child` lies in the client area of `parent`.
    static RECT In(HWND parent, HWND child)
    {
        RECT rect = {};
        GetWindowRect(child, &rect);
        MapWindowPoints(nullptr, parent, reinterpret_cast<POINT *>(&rect), 2);
        return rect;
    }
    RECT Place(int id) { return In(dialog_, Item(id)); }
    RECT TabRect(const char *label) { return In(tabs_, FindWindowExA(tabs_, nullptr, "Zimbo", label)); }
    HMODULE resources_ = nullptr;
    HWND dialog_ = nullptr;
    HWND tabs_ = nullptr;
};

bool Same(const RECT &a, const RECT &b) { return EqualRect(&a, &b) != FALSE; }

void ExpectShown(HWND control, bool visible, bool enabled, const char *context)
{
    EXPECT_EQ(visible, IsWindowVisible(control) != FALSE) << context;
    EXPECT_EQ(enabled, IsWindowEnabled(control) != FALSE) << context;
}

TEST_F(DialogTab, SwitchShowsHidesAndMovesThePagesControls)
{
    AddPages();
    EXPECT_EQ(1, Tab_GetCurrentTab(tabs_)) << "the first tab becomes current at once";
    ExpectShown(Item(202), true, true, "page 1 edit");
    ExpectShown(Item(221), false, false, "page 2 group, made hidden");
    ExpectShown(Item(231), false, false, "page 3 edit, made hidden");
    const RECT shared1 = Mapped(184, 140, 60, 14);
    EXPECT_TRUE(Same(shared1, Place(210)));
    // A bordered edit is 2 pixels taller when made and 3 when shown; a
    // combo box keeps its closed height.
    RECT edit = Mapped(64, 24, 180, 12), made = Mapped(12, 24, 232, 60);
    EXPECT_EQ(edit.bottom - edit.top + 3, Place(202).bottom - Place(202).top);
    EXPECT_EQ(made.bottom - made.top + 2, Place(231).bottom - Place(231).top);
    RECT client;
    GetClientRect(Item(204), &client);
    EXPECT_EQ(client.bottom, Place(204).bottom - Place(204).top);
    EXPECT_LT(client.bottom, Mapped(64, 42, 100, 80).bottom - Mapped(64, 42, 100, 80).top);

    Tab_SetCurrentTab(tabs_, 2);
    ExpectShown(Item(202), false, false, "page 1 edit after leaving");
    ExpectShown(Item(210), true, true, "the shared button stays");
    const RECT shared2 = Mapped(20, 140, 60, 14);
    EXPECT_TRUE(Same(shared2, Place(210))) << "and moves";
    const RECT check = Mapped(20, 38, 80, 10);
    EXPECT_TRUE(Same(check, Place(222)));
    EXPECT_EQ(Item(221), GetWindow(tabs_, GW_HWNDNEXT)) << "the group box goes to the bottom";
    EXPECT_EQ(nullptr, GetWindow(Item(221), GW_HWNDNEXT));

    EnableWindow(Item(222), FALSE);  // the host's own choice survives the round trip
    Tab_SetCurrentTab(tabs_, 3);
    ExpectShown(Item(222), false, false, "page 2 check box on page 3");
    ExpectShown(Item(231), true, true, "page 3 edit");
    RECT shown = Place(231);
    EXPECT_EQ(made.bottom - made.top + 3, shown.bottom - shown.top);
    Tab_SetCurrentTab(tabs_, 2);
    ExpectShown(Item(222), true, false, "disabled by the host");
    ExpectShown(Item(223), true, true, "enabled as before");
}

// A parent that destroys the tabs, or opens a box, in each notification of
// a page change (by the current tab, or by replacing the current page).
TEST_F(DialogTab, HostileParentInEachNotification)
{
    MessageBoxDriver boxes;
    boxes.AnswerOthers(IDOK, false);
    for (WORD code : {0x64, 0xC8})
        for (bool box : {false, true})
            for (bool replace : {false, true}) {
                AddPages();
                g_actOn = code;
                g_box = box;
                if (replace)
                    Tab_TransmogrifyDialogTab(tabs_, "New", 1, 9, resources_, "TABPAGE2");
                else
                    Tab_SetCurrentTab(tabs_, 2);
                EXPECT_EQ(0, g_actOn) << "code " << code << " replace " << replace;
                EXPECT_EQ(box, IsWindow(tabs_) != FALSE);
                EXPECT_TRUE(HeapValidate(GetProcessHeap(), 0, nullptr));
                TearDown();
                SetUp();
            }
}

// A host that takes the tabs down midway: in a notification of an arrow's
// change (the right arrow's first step), or as the page's edit loses the
// focus to a click on a tab, a change of page or the replacement of the
// current page. Nothing is recorded, and the host's redraw is left on.
TEST_F(DialogTab, HostileParentMidwayThroughAChange)
{
    const struct {
        WORD code;
        char act;  // Right or Left arrow, Click on tab 2, Set tab 2, Transmogrify tab 1
    } cases[] = {{TABN_CHANGING, 'R'}, {TABN_CHANGED, 'R'}, {TABN_CHANGED, 'L'},
                 {EN_KILLFOCUS, 'C'},  {EN_KILLFOCUS, 'S'}, {EN_KILLFOCUS, 'T'}};
    for (const auto &c : cases) {
        AddPages();
        Tab_SetCurrentTab(tabs_, c.act == 'L' ? 2 : 1);
        SetFocus(Item(202));
        const RECT time = TabRect("Time");
        g_box = false;
        g_actOn = c.code;
        if (c.act == 'R' || c.act == 'L')
            Key(tabs_, c.act == 'R' ? VK_RIGHT : VK_LEFT);
        else if (c.act == 'C')
            Click(tabs_, (time.left + time.right) / 2, 8);
        else if (c.act == 'S')
            Tab_SetCurrentTab(tabs_, 2);
        else
            EXPECT_FALSE(Tab_TransmogrifyDialogTab(tabs_, "New", 1, 9, resources_, "TABPAGE2"));
        EXPECT_EQ(0, g_actOn) << c.act;
        EXPECT_FALSE(IsWindow(tabs_)) << c.act;
        EXPECT_EQ(RV_Success, OSErrorGetErrorValue()) << c.act << ": nothing recorded";
        EXPECT_TRUE(HeapValidate(GetProcessHeap(), 0, nullptr)) << c.act << " at " << c.code;
        auto redraw = std::find_if(g_seen.rbegin(), g_seen.rend(),
                                   [](const Message &m) { return m.message == WM_SETREDRAW; });
        EXPECT_TRUE(redraw == g_seen.rend() || redraw->wParam) << c.act << ": redraw left off";
        TearDown();
        SetUp();
    }
}

// Tabs that own their controls: replacing the current page's template
// leaves none of the old page's controls behind, only the new page's.
TEST_F(DialogTab, ReplacingAnOwnPageLeavesNoneOfTheOldControls)
{
    SetWindowLongA(tabs_, GWL_STYLE, GetWindowLongA(tabs_, GWL_STYLE) | 0x0004);
    AddPages();
    ASSERT_TRUE(Tab_TransmogrifyDialogTab(tabs_, "New", 1, 9, resources_, "TABPAGE3"));
    int old = 0, details = 0;
    for (HWND c = GetWindow(dialog_, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        int id = GetDlgCtrlID(c);
        old += id >= 201 && id <= 204 && IsWindowVisible(c);
        details += id == 210 && IsWindowVisible(c);
    }
    EXPECT_EQ(0, old) << "page 1's own controls";
    EXPECT_EQ(1, details) << "one Details button, the new page's";
    EXPECT_TRUE(IsWindowVisible(Item(231)));
}

// The tab's font goes to the controls it makes, not to a control of the
// host's own that a page names. With keep-text a change of tab leaves the
// host's texts of buttons and statics; without it the page's own come back.
TEST_F(DialogTab, FontsAndTextsTheHostSet)
{
    const HGDIOBJ theirs = GetStockObject(ANSI_FIXED_FONT), mine = GetStockObject(ANSI_VAR_FONT);
    for (LONG keep : {0L, 0x0002L}) {
        HWND own = CreateWindowExA(0, "EDIT", "", WS_CHILD, 0, 0, 50, 12, dialog_,
                                   reinterpret_cast<HMENU>(231), nullptr, nullptr);
        SendMessageA(own, WM_SETFONT, reinterpret_cast<WPARAM>(theirs), 0);
        SendMessageA(tabs_, WM_SETFONT, reinterpret_cast<WPARAM>(mine), 0);
        SetWindowLongA(tabs_, GWL_STYLE, GetWindowLongA(tabs_, GWL_STYLE) | keep);
        AddPages();
        EXPECT_EQ(reinterpret_cast<LRESULT>(theirs), SendMessageA(own, WM_GETFONT, 0, 0));
        EXPECT_EQ(reinterpret_cast<LRESULT>(mine), SendMessageA(Item(202), WM_GETFONT, 0, 0));
        char page[64], button[64], label[64];
        GetWindowTextA(Item(210), page, sizeof page);
        SetWindowTextA(Item(210), "Host's");
        SetWindowTextA(Item(201), "Host's");
        Tab_SetCurrentTab(tabs_, 3);
        Tab_SetCurrentTab(tabs_, 1);
        GetWindowTextA(Item(210), button, sizeof button);
        GetWindowTextA(Item(201), label, sizeof label);
        EXPECT_STREQ(keep ? "Host's" : page, button) << keep;
        EXPECT_EQ(keep != 0, strcmp("Host's", label) == 0) << keep;
        TearDown();
        SetUp();
    }
}

TEST_F(DialogTab, InclusionAndExclusionTabs)
{
    AddPages();
    EnableWindow(Item(300), FALSE);
    ASSERT_TRUE(Tab_AddInclusionTab(tabs_, "Options", 4, kIncluded, 0));
    ASSERT_TRUE(Tab_AddExclusionTab(tabs_, "Plain", 5, kExcluded));
    ExpectShown(Item(300), false, false, "an inclusion tab that is not current hides its own");
    ExpectShown(Item(301), true, true, "an exclusion tab does nothing when added");
    EXPECT_EQ(0, GetDlgCtrlID(FindWindowExA(tabs_, nullptr, "Zimbo", "Options")));
    EXPECT_EQ(5, GetDlgCtrlID(FindWindowExA(tabs_, nullptr, "Zimbo", "Plain")));

    Tab_SetCurrentTab(tabs_, 4);
    ExpectShown(Item(300), true, false, "shown, and still disabled by the host");
    ExpectShown(Item(202), true, true, "a page followed by a list tab hides nothing");
    Tab_SetCurrentTab(tabs_, 5);
    ExpectShown(Item(300), false, false, "left the inclusion tab");
    ExpectShown(Item(301), false, true, "hidden while the exclusion tab is current");
    EnableWindow(Item(301), FALSE);
    Tab_SetCurrentTab(tabs_, 1);
    ExpectShown(Item(301), true, true, "leaving an exclusion tab always enables");

    // The Ex variant hides a page whatever follows it.
    Tab_SetCurrentTabEx(tabs_, 4);
    ExpectShown(Item(202), false, false, "page 1 edit after the Ex switch");

    // A list tab's label is text: a number below 65536 is refused, not read.
    OSErrorClearError();
    EXPECT_FALSE(Tab_AddInclusionTab(tabs_, MAKEINTRESOURCEA(7), 6, kIncluded, 0));
    EXPECT_FALSE(Tab_AddExclusionTab(tabs_, MAKEINTRESOURCEA(65535), 7, kExcluded));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorInfo()->errorCode);
    OSErrorClearError();
}

// An expected sequence as letters: c changing, C changed (each from the
// tabs), - redraw off, + redraw on.
std::vector<Message> Sequence(const char *letters)
{
    std::vector<Message> seq;
    for (const char *l = letters; *l; ++l)
        if (*l == 'c' || *l == 'C')
            seq.push_back({WM_COMMAND, sent | wparam | lparam_is_child,
                           MAKEWPARAM(ID_TABS, *l == 'c' ? TABN_CHANGING : TABN_CHANGED), 0});
        else
            seq.push_back({WM_SETREDRAW, sent | wparam, *l == '+', 0});
    seq.push_back({0, 0, 0, 0});
    return seq;
}

TEST_F(DialogTab, NotificationsInOrder)
{
    // A page change: changing, redraw off and on, changed; a step past a
    // tab is one change and the start of the next, or two whole changes.
    struct Step {
        const char *what;
        std::function<void()> act;
        const char *expected;
        LONG current;
    };
    const Step steps[] = {
        {"first tab", [&] { AddPages(); }, "cC", 1},
        {"page to page", [&] { Tab_SetCurrentTab(tabs_, 2); }, "c-+C", 2},
        {"the current tab again", [&] { EXPECT_EQ(0, Tab_SetCurrentTab(tabs_, 2)); }, "c", 2},
        {"unknown id", [&] { Tab_SetCurrentTab(tabs_, 99); }, "cC", -1},
        {"the last tab, from none", [&] { Tab_SetCurrentTab(tabs_, TAB_LAST); }, "cC", 3},
        {"click on the first tab through its strip",
         [&] {
             HWND strip = FindWindowExA(tabs_, nullptr, "Zimbo", "General");
             SendMessageA(strip, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 4));
         },
         "c-+C", 1},
        {"right arrow", [&] { Key(tabs_, VK_RIGHT); }, "c-+Cc", 2},
        {"left arrow", [&] { Key(tabs_, VK_LEFT); }, "c-+C", 1},
        {"hide the current tab", [&] { Tab_HideTab(tabs_, 1); }, "", 1},
        {"right arrow past a hidden tab",
         [&] {
             Tab_ShowTab(tabs_, 1);
             Tab_HideTab(tabs_, 2);
             Key(tabs_, VK_RIGHT);
         },
         "c-+Cc-+C", 3},
        {"left arrow skips it", [&] { Key(tabs_, VK_LEFT); }, "c-+C", 1},
        {"left arrow at the first tab", [&] { Key(tabs_, VK_LEFT); }, "", 1},
        {"change a tab that is not current",
         [&] { EXPECT_TRUE(Tab_TransmogrifyDialogTab(tabs_, "Other", 3, 7, resources_, "TABPAGE2")); }, "", 1},
        {"change the current tab",
         [&] { EXPECT_TRUE(Tab_TransmogrifyDialogTab(tabs_, "New", 1, 8, resources_, "TABPAGE3")); }, "-c+C", 8},
    };
    for (const Step &step : steps) {
        g_seen.clear();
        step.act();
        EXPECT_TRUE(SequenceMatches(g_seen, Sequence(step.expected).data(), tabs_, step.what));
        EXPECT_EQ(step.current, Tab_GetCurrentTab(tabs_)) << step.what;
    }
    EXPECT_EQ(7, Tab_GetTabFromPosition(tabs_, 2)) << "the changed tab keeps its place";
    ExpectShown(Item(231), true, true, "the current tab's new page");
    ExpectShown(Item(202), false, false, "its old page");
    EXPECT_FALSE(Tab_TransmogrifyDialogTab(tabs_, "x", 42, 43, resources_, "TABPAGE1"));
    EXPECT_EQ(RV_Failure, OSErrorGetErrorValue());
}

TEST_F(DialogTab, StripLayoutAndHitTesting)
{
    AddPages();
    ASSERT_TRUE(Tab_AddExclusionTab(tabs_, "Plain", 5, kExcluded));
    BITMAP piece;
    HBITMAP end = LoadBitmapA(resources_, MAKEINTRESOURCEA(2100));
    ASSERT_TRUE(GetObjectA(end, sizeof piece, &piece));
    DeleteObject(end);
    EXPECT_EQ(piece.bmHeight + 4, Tab_GetTabHeight(tabs_));
    HDC dc = GetDC(tabs_);
    HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(tabs_, WM_GETFONT, 0, 0)));
    const char *labels[] = {"General", "Time", "Notes", "Plain"};
    int left = 0;
    for (const char *label : labels) {
        SIZE text;
        GetTextExtentPoint32A(dc, label, lstrlenA(label), &text);
        const RECT expected = {left, 2, left + piece.bmWidth + text.cx + 3, piece.bmHeight + 2};
        const RECT got = TabRect(label);
        EXPECT_TRUE(EqualRect(&expected, &got)) << label << " at " << got.left << "," << got.top
                                                << " to " << got.right << "," << got.bottom;
        left = expected.right - 6;
    }
    SelectObject(dc, old);
    ReleaseDC(tabs_, dc);

    // A hidden tab keeps its slot and its place in the count, and cannot be
    // reached by the mouse; the overlap goes to the earlier tab.
    const RECT time = TabRect("Time"), notes = TabRect("Notes");
    Tab_HideTab(tabs_, 2);
    EXPECT_TRUE(Same(notes, TabRect("Notes")));
    EXPECT_EQ(2, Tab_GetTabFromPosition(tabs_, 1));
    EXPECT_EQ(-1, Tab_GetTabFromPosition(tabs_, 4));
    Click(tabs_, (time.left + time.right) / 2, 8);
    EXPECT_EQ(1, Tab_GetCurrentTab(tabs_));
    Tab_ShowTab(tabs_, 2);
    Click(tabs_, notes.left + 2, 8);
    EXPECT_EQ(2, Tab_GetCurrentTab(tabs_));
}

TEST_F(DialogTab, ClicksOnThePageReachTheControlBelow)
{
    AddPages();
    const RECT spot = Mapped(12, 120, 40, 12);
    HWND target = CreateWindowA("STATIC", "", WS_CHILD | WS_VISIBLE, spot.left, spot.top, spot.right - spot.left,
                                spot.bottom - spot.top, dialog_, nullptr, nullptr, nullptr);
    SetWindowLongPtrA(target, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(TargetProc));
    SetWindowPos(target, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    POINT at = {spot.left + 5, spot.top + 3};
    MapWindowPoints(dialog_, tabs_, &at, 1);
    g_seen.clear();
    SendMessageA(tabs_, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
    SendMessageA(tabs_, WM_MOUSEMOVE, 0, MAKELPARAM(at.x, at.y));
    PumpMessages();
    const Message expected[] = {{WM_LBUTTONDOWN, sent | wparam | lparam, MK_LBUTTON, MAKELPARAM(5, 3)},
                                {WM_MOUSEMOVE, sent | wparam | lparam, 0, MAKELPARAM(5, 3)},
                                {0, 0, 0, 0}};
    EXPECT_TRUE(SequenceMatches(g_seen, expected, tabs_, "forwarded"));
    EXPECT_EQ(1, Tab_GetCurrentTab(tabs_));
    EXPECT_TRUE(IsWindowVisible(tabs_)) << "the gadget is visible again";
    DestroyWindow(target);
}

TEST_F(DialogTab, PaintLeavesNoKeyAndRaisesTheCurrentTab)
{
    AddPages();
    const COLORREF key = RGB(0, 0xFF, 0xFF), face = GetSysColor(COLOR_BTNFACE),
                   light = GetSysColor(COLOR_BTNHIGHLIGHT);
    const char *labels[] = {"General", "Time", "Notes"};
    for (DWORD current = 1; current <= 3; ++current) {
        Tab_SetCurrentTab(tabs_, current);
        SetFocus(tabs_);
        InvalidateRect(tabs_, nullptr, FALSE);  // adding a tab does not repaint the strip
        Readback shot = Readback::Of(tabs_);
        ASSERT_TRUE(shot.Valid());
        EXPECT_EQ(0, shot.Count(key)) << "tab " << current;
        for (DWORD i = 0; i < 3; ++i) {
            const RECT tab = TabRect(labels[i]);
            const int x = tab.left + 7;  // past the overlap, inside the top line
            if (i + 1 == current) {
                EXPECT_EQ(light, shot.At(x, 2)) << "current " << current;
                EXPECT_EQ(face, shot.At(tab.left + 2, tab.bottom - 1)) << "opens into the page";
            } else {
                EXPECT_EQ(face, shot.At(x, 2)) << "tab " << i + 1 << " with " << current;
                EXPECT_EQ(light, shot.At(x, 3)) << "tab " << i + 1 << " with " << current;
                EXPECT_EQ(light, shot.At(x, tab.bottom - 1)) << "base line under tab " << i + 1;
            }
        }
    }
}

TEST_F(DialogTab, MonkeyKeepsTheCurrentTabValid)
{
    const int steps = MonkeySteps(400, 60);
    std::mt19937 random(6);
    AddPages();
    DWORD nextId = 10;
    const char *pages[] = {"TABPAGE1", "TABPAGE2", "TABPAGE3"};
    RECT client;
    GetClientRect(tabs_, &client);
    for (int step = 0; step < steps; ++step) {
        const DWORD someId = random() % 2 ? random() % nextId : TAB_LAST;
        switch (random() % 8) {
        case 0:  // on the strip: a click on a page's scroll bar would start a modal loop
            Click(tabs_, random() % client.right, random() % Tab_GetTabHeight(tabs_));
            break;
        case 1:
            Key(tabs_, random() % 2 ? VK_LEFT : VK_RIGHT);
            break;
        case 2:
            (random() % 2 ? Tab_SetCurrentTab : Tab_SetCurrentTabEx)(tabs_, someId);
            break;
        case 3:
            (random() % 2 ? Tab_HideTab : Tab_ShowTab)(tabs_, someId);
            break;
        case 4:
            if (nextId < 24)
                Tab_AddInclusionTab(tabs_, "In", nextId++, kIncluded, 0);
            break;
        case 5:
            if (nextId < 24)
                Tab_AddExclusionTab(tabs_, "Out", nextId++, kExcluded);
            break;
        case 6:
            Tab_TransmogrifyDialogTab(tabs_, "Page", someId, nextId++, resources_,
                                      pages[random() % 3]);
            break;
        default:
            Tab_SetCurrentTabExEx(tabs_, someId);
            break;
        }
        OSErrorClearError();  // unknown ids are part of the game
        const LONG current = Tab_GetCurrentTab(tabs_);
        bool listed = current == -1;
        for (LONG i = 0; !listed && Tab_GetTabFromPosition(tabs_, i) != -1; ++i)
            listed = Tab_GetTabFromPosition(tabs_, i) == current;
        ASSERT_TRUE(listed) << "step " << step << ": current " << current;
    }
    UpdateWindow(dialog_);
}

// Each GDI object the strip's paint asks for, refused in turn: a tab that
// cannot be drawn is recorded. Only the off-screen copy's context and bitmap
// may fail quietly, since the strip is then drawn straight onto the window.
TEST_F(DialogTab, APaintThatCannotDrawATabRecordsIt)
{
    AddPages();
    auto paint = [&] {
        InvalidateRect(tabs_, nullptr, TRUE);
        UpdateWindow(tabs_);
    };
    unsigned points;
    {
        FailureSeam count(FailureSeam::Gdi, 0);
        paint();
        points = count.Calls();
    }
    ASSERT_GT(points, 3u);
    unsigned quiet = 0;
    for (unsigned n = 1; n <= points; ++n) {
        OSErrorClearError();
        FailureSeam seam(FailureSeam::Gdi, n);
        paint();
        quiet += OSErrorGetErrorValue() == RV_Success;
    }
    EXPECT_EQ(2u, quiet);
}

}  // namespace
