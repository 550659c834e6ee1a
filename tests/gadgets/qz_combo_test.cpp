// "QzCombo" in a dialog made from a template: the open and close round
// trip, the routing of its child's notifications, the ways its own loop
// ends, its messages at their limits, and a monkey.
#include <functional>
#include <memory>
#include <random>
#include <vector>
#include "failure_seam.h"
#include "qz_test.h"
#include "window_harness.h"

namespace {

const int kComboId = 300, kButtonId = 301, kChildRouteId = 77;
std::vector<Message> g_seen;
std::function<void(WPARAM)> g_onCommand;

INT_PTR CALLBACK DialogProc(HWND, UINT message, WPARAM wParam, LPARAM lParam)
{
    WORD id = LOWORD(wParam), code = HIWORD(wParam);
    bool own = id == kComboId && (code == QCN_ERROR || code == QCN_DROPDOWN || code == QCN_PRESSED);
    if (message == WM_COMMAND && (own || id == kChildRouteId || id == kButtonId)) {
        g_seen.push_back({WM_COMMAND, sent, wParam, lParam});
        if (g_onCommand)
            g_onCommand(wParam);
    }
    return FALSE;
}

void AddItem(std::vector<WORD> &t, const wchar_t *className, WORD atom, DWORD style, short y, short cy, WORD id)
{
    if (t.size() % 2)
        t.push_back(0);
    size_t at = t.size();
    t.resize(at + sizeof(DLGITEMTEMPLATE) / 2);
    auto *item = reinterpret_cast<DLGITEMTEMPLATE *>(&t[at]);
    item->style = WS_CHILD | WS_VISIBLE | style;
    item->x = 4, item->y = y, item->cx = 90, item->cy = cy, item->id = id;
    if (className)
        t.insert(t.end(), className, className + wcslen(className) + 1);
    else
        t.insert(t.end(), {0xFFFF, atom});
    t.insert(t.end(), {0, 0});  // no text, no data
}

// A dialog from a template: a combo, a button, and a group box last.
struct ComboDialog {
    HWND dialog = nullptr, combo = nullptr, button = nullptr;
    ComboDialog(int kind, DWORD comboStyle = WS_TABSTOP, int top = 40)
    {
        std::vector<WORD> t(sizeof(DLGTEMPLATE) / 2 + 3, 0);
        auto *d = reinterpret_cast<DLGTEMPLATE *>(t.data());
        d->style = WS_POPUP | WS_VISIBLE, d->cdit = 3, d->cx = 120, d->cy = 110;
        AddItem(t, L"QzCombo", 0, comboStyle, 4, 70, kComboId);
        AddItem(t, nullptr, 0x80, BS_PUSHBUTTON, 80, 12, kButtonId);
        AddItem(t, nullptr, 0x80, BS_GROUPBOX, 2, 100, 302);
        dialog = CreateDialogIndirectParamA(GetModuleHandleA(nullptr), reinterpret_cast<DLGTEMPLATE *>(t.data()),
                                            nullptr, DialogProc, 0);
        combo = GetDlgItem(dialog, kComboId);
        button = GetDlgItem(dialog, kButtonId);
        SetWindowPos(dialog, nullptr, 20, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        if (kind)
            SendMessageA(combo, QCM_SETCHILD, kind | (kChildRouteId << 8), 0);
        g_seen.clear();
        g_onCommand = nullptr;
    }
    ~ComboDialog()
    {
        g_onCommand = nullptr;
        if (IsWindow(dialog))
            DestroyWindow(dialog);
    }
    HWND Child() const { return reinterpret_cast<HWND>(SendMessageA(combo, QCM_GETCHILD, 0, 0)); }
};

#define EXPECT_SEQUENCE_VEC(expected, child) EXPECT_TRUE(SequenceMatches(g_seen, (expected), (child), #expected))

std::function<void()> g_body;
VOID CALLBACK BodyTimer(HWND, UINT, UINT_PTR id, DWORD)
{
    KillTimer(nullptr, id);
    auto body = std::move(g_body);
    g_body = nullptr;
    if (body)
        body();
}

// Opens `combo` by `open` and runs `body` from inside its loop; whatever
// the body leaves open is closed, so the call always returns.
LRESULT WhileOpen(HWND combo, std::function<void()> body, std::function<LRESULT()> open = nullptr,
                  bool mustOpen = true)
{
    bool ran = false;
    g_body = [&] {
        ran = true;
        body();
        if (IsWindow(combo) && SendMessageA(combo, QCM_ISOPEN, 0, 0))
            PostMessageA(combo, QCM_SHOWDROPDOWN, 0, QCC_ORDINARY);
    };
    UINT_PTR timer = SetTimer(nullptr, 0, 1, BodyTimer);
    LRESULT result = open ? open() : SendMessageA(combo, QCM_SHOWDROPDOWN, 1, 0);
    KillTimer(nullptr, timer);
    g_body = nullptr;
    if (mustOpen) {
        EXPECT_TRUE(ran) << "the call returned before the combo's own loop ran";
    }
    return result;
}

// What an open combo changes is back as it was.
void ExpectRestored(const ComboDialog &d, LONG_PTR dialogProc, HWND before, const char *context)
{
    if (IsWindow(d.dialog)) {
        EXPECT_EQ(nullptr, GetPropA(d.dialog, "CMPB1")) << context;
        EXPECT_EQ(dialogProc, GetWindowLongPtrA(d.dialog, GWLP_WNDPROC)) << context;
    }
    if (IsWindow(d.combo)) {
        EXPECT_EQ(d.dialog, GetAncestor(d.combo, GA_PARENT)) << context;
        EXPECT_EQ(before, GetWindow(d.combo, GW_HWNDPREV)) << context;
        EXPECT_EQ(0, SendMessageA(d.combo, QCM_ISOPEN, 0, 0)) << context;
    }
    EXPECT_EQ(nullptr, FindWindowExA(nullptr, nullptr, "QzCombo", nullptr)) << context << ": left on the desktop";
}

POINT ArrowCentre(HWND combo)
{
    RECT client;
    GetClientRect(combo, &client);
    return {client.right - GetSystemMetrics(SM_CXVSCROLL) / 2 - 2, client.bottom / 2};
}

class QzCombo : public GadgetTest {};

TEST_F(QzCombo, RoundTripFromADialogByMessageAndByTheArrow)
{
    // The TimeTracker's own codes on taking and losing the focus pass on
    // under the child's identifier.
    const Message byMessage[] = {{WM_COMMAND, sent | wparam, MAKEWPARAM(kComboId, QCN_DROPDOWN), 0},
                                 {WM_COMMAND, sent | wparam, MAKEWPARAM(kChildRouteId, 200), 0},
                                 {WM_COMMAND, sent | wparam, MAKEWPARAM(kChildRouteId, 300), 0},
                                 {WM_COMMAND, sent | wparam, MAKEWPARAM(kChildRouteId, 400), 0},
                                 {WM_COMMAND, sent | wparam, MAKEWPARAM(kComboId, QCN_DROPDOWN), 0},
                                 {0, 0, 0, 0}};
    const Message byArrow[] = {{WM_COMMAND, sent | wparam, MAKEWPARAM(kComboId, QCN_PRESSED), 0},
                               {WM_COMMAND, sent | wparam, MAKEWPARAM(kComboId, QCN_DROPDOWN), 0},
                               {WM_COMMAND, sent | wparam, MAKEWPARAM(kChildRouteId, 200), 0},
                               {WM_COMMAND, sent | wparam, MAKEWPARAM(kChildRouteId, 300), 0},
                               {WM_COMMAND, sent | wparam, MAKEWPARAM(kChildRouteId, 400), 0},
                               {WM_COMMAND, sent | wparam, MAKEWPARAM(kComboId, QCN_DROPDOWN), 0},
                               {0, 0, 0, 0}};
    for (int arrow = 0; arrow < 2; ++arrow) {
        ComboDialog d(QCK_TIMETRACKER);
        LONG_PTR proc = GetWindowLongPtrA(d.dialog, GWLP_WNDPROC);
        HWND before = GetWindow(d.combo, GW_HWNDPREV);
        bool sawOpen = false;
        auto open = [&]() -> LRESULT {
            if (!arrow)
                return SendMessageA(d.combo, QCM_SHOWDROPDOWN, 1, 0);
            POINT p = ArrowCentre(d.combo);
            SendMessageA(d.combo, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
            SendMessageA(d.combo, WM_LBUTTONUP, 0, MAKELPARAM(p.x, p.y));
            return 1;
        };
        EXPECT_EQ(1, WhileOpen(d.combo, [&] {
            sawOpen = SendMessageA(d.combo, QCM_ISOPEN, 0, 0) == 1;
            EXPECT_NE(d.dialog, GetAncestor(d.combo, GA_PARENT)) << "open: a window of the desktop";
            EXPECT_TRUE(GetPropA(d.dialog, "CMPB1")) << "open: the dialog carries the property";
            EXPECT_TRUE(IsWindowVisible(d.Child()));
        }, open));
        EXPECT_TRUE(sawOpen);
        EXPECT_FALSE(IsWindowVisible(d.Child()));
        EXPECT_SEQUENCE_VEC(arrow ? byArrow : byMessage, d.combo);
        ExpectRestored(d, proc, before, arrow ? "by the arrow" : "by message");
    }
}

TEST_F(QzCombo, AClickOnAnotherControlClosesAndStillReachesIt)
{
    ComboDialog d(QCK_PLAINLIST);
    LONG_PTR proc = GetWindowLongPtrA(d.dialog, GWLP_WNDPROC);
    HWND before = GetWindow(d.combo, GW_HWNDPREV);
    WhileOpen(d.combo, [&] {
        PostMessageA(d.button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        PostMessageA(d.button, WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
    });
    PumpMessages();
    const Message expected[] = {{WM_COMMAND, sent | wparam, MAKEWPARAM(kComboId, QCN_DROPDOWN), 0},
                                {WM_COMMAND, sent | wparam, MAKEWPARAM(kChildRouteId, LBN_SETFOCUS), 0},
                                {WM_COMMAND, sent | wparam, MAKEWPARAM(kChildRouteId, LBN_KILLFOCUS), 0},
                                {WM_COMMAND, sent | wparam, MAKEWPARAM(kButtonId, BN_CLICKED), 0},
                                {0, 0, 0, 0}};
    EXPECT_SEQUENCE_VEC(expected, d.combo);
    ExpectRestored(d, proc, before, "closed by a click on the button");
}

// Each way the own loop ends; the call returns as after a close.
TEST_F(QzCombo, TheLoopEndsOnEveryWayOutAndLeavesNothingBehind)
{
    struct Ender {
        const char *name;
        void (*act)(ComboDialog &);
    } const enders[] = {
        {"close for a lost focus", [](ComboDialog &d) { SendMessageA(d.combo, QCM_SHOWDROPDOWN, 0, QCC_FOCUS); }},
        {"WM_CANCELMODE", [](ComboDialog &d) { SendMessageA(d.combo, WM_CANCELMODE, 0, 0); }},
        {"capture lost", [](ComboDialog &d) {
             POINT p = ArrowCentre(d.combo);
             SendMessageA(d.combo, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
             SetCapture(d.button);
             ReleaseCapture();
         }},
        {"click on the dialog", [](ComboDialog &d) { SendMessageA(d.dialog, WM_LBUTTONDOWN, MK_LBUTTON, 0); }},
        {"menu of the dialog", [](ComboDialog &d) { SendMessageA(d.dialog, WM_INITMENU, 0, 0); }},
        {"another thread's window takes the focus", [](ComboDialog &) {
             HANDLE t = CreateThread(nullptr, 0, [](LPVOID) -> DWORD {
                 HWND w = CreateWindowA("Edit", "", WS_POPUP | WS_VISIBLE, 0, 0, 50, 20, nullptr, nullptr, nullptr, nullptr);
                 SetForegroundWindow(w);
                 SetFocus(w);
                 DestroyWindow(w);
                 return 0;
             }, nullptr, 0, nullptr);
             while (MsgWaitForMultipleObjects(1, &t, FALSE, 5000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1)
                 PumpMessages();
             CloseHandle(t);
         }},
        {"combo destroyed", [](ComboDialog &d) { DestroyWindow(d.combo); }},
        {"dialog destroyed", [](ComboDialog &d) { DestroyWindow(d.dialog); }},
    };
    for (const Ender &e : enders) {
        ComboDialog d(QCK_DATETRACKER);
        LONG_PTR proc = GetWindowLongPtrA(d.dialog, GWLP_WNDPROC);
        HWND before = GetWindow(d.combo, GW_HWNDPREV);
        bool closedByIt = false;
        WhileOpen(d.combo, [&] {
            e.act(d);
            closedByIt = !IsWindow(d.combo) || !SendMessageA(d.combo, QCM_ISOPEN, 0, 0);
        });
        EXPECT_TRUE(closedByIt) << e.name;
        ExpectRestored(d, proc, before, e.name);
    }
}

struct Route {
    int kind;
    WORD code;
    bool copies;       // the child's text reaches the edit field
    bool closes;       // an open combo with QCS_CLOSEONCHOICE closes
    WORD passedAs;     // the code the dialog hears under the combo's child id
};
const Route kRoutes[] = {
    {QCK_TIMETRACKER, 200, true, true, 200}, {QCK_TIMETRACKER, 1, false, false, 1},
    {QCK_TIMESETTER, 200, true, true, 200},  {QCK_DATETRACKER, 200, true, true, 200},
    {QCK_DATETRACKER, 500, true, false, 200}, {QCK_DATETRACKER, 17, false, false, 17},
    {QCK_PLAINLIST, 1, true, false, 1},      {QCK_VLISTBOX, 17, true, false, 17},
    {QCK_VLISTBOX, 18, true, true, 18},      {QCK_VLISTBOX, 200, false, false, 200},
    {QCK_LISTBOX, 1, true, true, 1},         {QCK_LISTBOX, 200, false, false, 200},
};

TEST_F(QzCombo, ChildNotificationsAreRoutedByKindWhileClosedAndWhileOpen)
{
    WNDCLASSA info;
    bool listBoxKnown = GetClassInfoA(GetModuleHandleA(nullptr), "QzListBox", &info) != 0;
    for (const Route &route : kRoutes) {
        if (route.kind == QCK_LISTBOX && !listBoxKnown)
            continue;
        for (int open = 0; open < 2; ++open) {
            ComboDialog d(route.kind, WS_TABSTOP | QCS_CLOSEONCHOICE);
            char text[64] = "";
            std::vector<Message> routed;
            HWND child = d.Child(), edit = reinterpret_cast<HWND>(SendMessageA(d.combo, QCM_GETEDIT, 0, 0));
            ASSERT_TRUE(child) << route.kind;
            if (route.kind == QCK_PLAINLIST) {
                SendMessageA(child, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("Chosen"));
                SendMessageA(child, LB_SETCURSEL, 0, 0);
            } else {
                SetWindowTextA(child, "Chosen");
            }
            char want[64] = "";
            bool closed = false;
            auto notify = [&] {
                if (route.kind == QCK_PLAINLIST)
                    SendMessageA(child, LB_GETTEXT, 0, reinterpret_cast<LPARAM>(want));
                else
                    GetWindowTextA(child, want, sizeof want);
                SetWindowTextA(edit, "");
                g_seen.clear();
                SendMessageA(d.combo, WM_COMMAND, MAKEWPARAM(1, route.code), reinterpret_cast<LPARAM>(child));
                closed = !SendMessageA(d.combo, QCM_ISOPEN, 0, 0);
                GetWindowTextA(edit, text, sizeof text);
                routed = g_seen;
            };
            if (open)
                WhileOpen(d.combo, notify);
            else
                notify();
            std::string context = "kind " + std::to_string(route.kind) + " code " + std::to_string(route.code) +
                                  (open ? " open" : " closed");
            EXPECT_EQ(route.copies ? std::string(want) : std::string(), text) << context;
            if (open) {
                EXPECT_EQ(route.closes, closed) << context;
            }
            // The code goes on after what it caused (a close, with the
            // child's loss of focus).
            ASSERT_FALSE(routed.empty()) << context;
            EXPECT_EQ(MAKEWPARAM(kChildRouteId, route.passedAs), routed.back().wParam) << context;
            EXPECT_EQ(reinterpret_cast<LPARAM>(child), routed.back().lParam) << context << ": as received";
        }
    }
}

TEST_F(QzCombo, AListBoxsChoicesTravelAsSeparatedText)
{
    WNDCLASSA info;
    if (!GetClassInfoA(GetModuleHandleA(nullptr), "QzListBox", &info))
        GTEST_SKIP() << "no QzListBox class in this build";
    ComboDialog d(QCK_LISTBOX);
    HWND edit = reinterpret_cast<HWND>(SendMessageA(d.combo, QCM_GETEDIT, 0, 0));
    const std::string s(1, static_cast<char>(OSGetSeparator()));
    std::string longList(1100, 'x');  // no end within the limit: cut at 1024
    struct In { std::string list; std::string text; } const ins[] = {
        {std::string("Ann\0Bob\0\0", 9), "Ann" + s + "Bob"}, {std::string("\0\0", 2), ""},
        {longList + std::string("\0\0", 2), longList.substr(0, 1024)},
    };
    for (const In &in : ins) {
        SendMessageA(d.combo, QCM_SETTEXT, 0, reinterpret_cast<LPARAM>(in.list.data()));
        char text[1200] = "";
        GetWindowTextA(edit, text, sizeof text);
        EXPECT_EQ(in.text, text) << in.list.size();
    }
    struct Out { std::string text; WPARAM size; std::string list; } const outs[] = {
        {"Ann" + s + " " + s + "  Bob", 64, std::string("Ann\0Bob\0\0", 9)},
        {"Ann" + s + "Bob", 5, std::string("Ann\0\0", 5)}, {"Ann", 2, std::string("\0\0", 2)},
        {"", 8, std::string("\0\0", 2)},
    };
    for (const Out &out : outs) {
        SetWindowTextA(edit, out.text.c_str());
        char list[80];
        memset(list, '#', sizeof list);
        EXPECT_EQ(1, SendMessageA(d.combo, QCM_GETTEXT, out.size, reinterpret_cast<LPARAM>(list)));
        EXPECT_EQ(out.list, std::string(list, out.list.size())) << out.text << " in " << out.size;
    }
}

TEST_F(QzCombo, MessagesAtTheirLimits)
{
    ComboDialog d(0);
    struct Row {
        UINT message;
        WPARAM wParam;
        LRESULT result;
    } const rows[] = {
        {QCM_SETARROWS, static_cast<WPARAM>(-1), -1}, {QCM_SETARROWS, 0, 1},
        {QCM_SETCHILD, 0, -1}, {QCM_SETCHILD, 8, -1}, {QCM_SETCHILD, QCK_NONE, 1}, {QCM_GETCHILD, 0, -1},
        {QCM_SHOWDROPDOWN, 1, 1},  // nothing to drop: returns at once
    };
    for (const Row &row : rows)
        EXPECT_EQ(row.result, SendMessageA(d.combo, row.message, row.wParam, 0)) << std::hex << row.message;
    EXPECT_TRUE(g_seen.empty()) << "a combo with nothing to drop says nothing";
    SendMessageA(d.combo, QCM_SETTEXT, 0, reinterpret_cast<LPARAM>("abc"));
    EXPECT_EQ(5, SendMessageA(d.combo, QCM_GETTEXTSIZE, 0, 0));
    // The drop-down's height: at most half the screen less the strip.
    SendMessageA(d.combo, QCM_SETCHILD, QCK_TIMETRACKER, 0);
    RECT client;
    GetClientRect(d.combo, &client);
    int most = (GetSystemMetrics(SM_CYSCREEN) - client.bottom) / 2;
    for (int extra : {most - 1, most, most + 1, 0}) {
        SendMessageA(d.combo, QCM_SETEXTRAHEIGHT, extra, 0);
        RECT c;
        GetWindowRect(d.Child(), &c);
        EXPECT_EQ(extra > most ? most : extra, c.bottom - c.top) << extra;
    }
}

TEST_F(QzCombo, OpensUpwardNearTheBottomOfTheScreenWithTheStripInPlace)
{
    int screen = GetSystemMetrics(SM_CYSCREEN);
    for (int nearBottom = 0; nearBottom < 2; ++nearBottom) {
        ComboDialog d(QCK_TIMESETTER, WS_TABSTOP, nearBottom ? screen - 90 : 40);
        HWND edit = reinterpret_cast<HWND>(SendMessageA(d.combo, QCM_GETEDIT, 0, 0));
        RECT closedEdit;
        GetWindowRect(edit, &closedEdit);
        WhileOpen(d.combo, [&] {
            RECT e, c;
            GetWindowRect(edit, &e);
            GetWindowRect(d.Child(), &c);
            EXPECT_EQ(closedEdit.top, e.top) << "the strip stays where it was";
            EXPECT_EQ(nearBottom != 0, c.bottom <= e.top) << "the child lies above the strip";
            EXPECT_LE(c.bottom, screen);
        });
    }
}

TEST_F(QzCombo, PaintsItsFaceAndTheArrowPressedAndReleased)
{
    ComboDialog d(QCK_TIMETRACKER);
    Readback closed = Readback::Of(d.combo);
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), closed.At(2, closed.Height() / 2)) << "the strip's fill";
    POINT p = ArrowCentre(d.combo);
    int left = closed.Width() - GetSystemMetrics(SM_CXVSCROLL) - 2;
    SendMessageA(d.combo, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
    EXPECT_EQ(GetSysColor(COLOR_BTNSHADOW), Readback::Of(d.combo).At(left, 2)) << "pressed";
    SendMessageA(d.combo, WM_LBUTTONUP, 0, MAKELPARAM(0, 0));  // released outside: stays closed
    EXPECT_EQ(0, Readback::Of(d.combo).Differences(closed));
    EnableWindow(d.combo, FALSE);
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), Readback::Of(d.combo).At(2, closed.Height() / 2)) << "disabled";
}

TEST_F(QzCombo, ARefusedAllocationOrDrawingObjectLeavesNothingBehind)
{
    unsigned points;
    {
        ComboDialog d(QCK_TIMETRACKER);
        FailureSeam count(FailureSeam::Memory | FailureSeam::Gdi, 0);
        WhileOpen(d.combo, [] {});
        points = count.Calls();
    }
    ASSERT_GT(points, 0u);
    int refused = 0;
    for (unsigned n = 1; n <= points; ++n) {
        ComboDialog d(QCK_TIMETRACKER);
        LONG_PTR proc = GetWindowLongPtrA(d.dialog, GWLP_WNDPROC);
        HWND before = GetWindow(d.combo, GW_HWNDPREV);
        OSErrorClearError();
        LRESULT result;
        {
            FailureSeam seam(FailureSeam::Memory | FailureSeam::Gdi, n);
            result = WhileOpen(d.combo, [] {}, nullptr, false);
        }
        ResultCode code = OSErrorGetErrorInfo()->errorCode;
        EXPECT_TRUE(code == RV_Success || code == RV_GDIError || code == RV_OutOfLocalMemory) << n << " " << code;
        EXPECT_TRUE(result == 1 || (result == -1 && code == RV_OutOfLocalMemory)) << n;
        refused += result == -1;
        ExpectRestored(d, proc, before, "refused request");
    }
    EXPECT_GT(refused, 0) << "an ancestor's block that cannot be made refuses the opening";
}

}  // namespace

namespace {

// A host that destroys the combo, or its whole dialog, inside the n-th
// notification of a round trip by the arrow.
TEST_F(QzCombo, HostileParentDestroysInsideEachNotification)
{
    for (int dialogToo = 0; dialogToo < 2; ++dialogToo) {
        for (int n = 1; n <= 6; ++n) {
            ComboDialog d(QCK_TIMETRACKER);
            LONG_PTR proc = GetWindowLongPtrA(d.dialog, GWLP_WNDPROC);
            int count = 0;
            g_onCommand = [&](WPARAM) {
                if (++count == n)
                    DestroyWindow(dialogToo ? d.dialog : d.combo);
            };
            WhileOpen(d.combo, [] {}, [&]() -> LRESULT {
                POINT p = ArrowCentre(d.combo);
                SendMessageA(d.combo, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(p.x, p.y));
                if (IsWindow(d.combo))
                    SendMessageA(d.combo, WM_LBUTTONUP, 0, MAKELPARAM(p.x, p.y));
                return 1;
            }, false);
            g_onCommand = nullptr;
            ExpectRestored(d, proc, nullptr, dialogToo ? "dialog destroyed" : "combo destroyed");
            EXPECT_EQ(nullptr, GetCapture());
        }
    }
}

// Closes the monkey's combo whenever it finds it open, so that a drop-down
// opened from inside another step's loop cannot wait for ever.
HWND g_guarded;
VOID CALLBACK GuardTimer(HWND, UINT, UINT_PTR, DWORD)
{
    if (IsWindow(g_guarded) && SendMessageA(g_guarded, QCM_ISOPEN, 0, 0))
        PostMessageA(g_guarded, QCM_SHOWDROPDOWN, 0, QCC_FOCUS);
}

TEST_F(QzCombo, MonkeyLeavesNoObjectPropertyOrStrayWindow)
{
    UINT_PTR guard = SetTimer(nullptr, 0, 5, GuardTimer);
    std::mt19937 random(24);
    auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int kind = 1; kind <= 7; ++kind)  // what the system makes once, on first use
        WhileOpen(ComboDialog(kind).combo, [] {}, nullptr, false);
    long gdiBefore = GdiObjectsInUse();
    {
        auto d = std::make_unique<ComboDialog>(QCK_PLAINLIST);
        for (int step = 0; step < MonkeySteps(300, 40); ++step) {
            if (!IsWindow(d->combo))
                d = std::make_unique<ComboDialog>(1 + pick(7));
            HWND combo = g_guarded = d->combo;
            auto act = [&, combo] {
                HWND child = reinterpret_cast<HWND>(SendMessageA(combo, QCM_GETCHILD, 0, 0));
                HWND edit = reinterpret_cast<HWND>(SendMessageA(combo, QCM_GETEDIT, 0, 0));
                LPARAM at = MAKELPARAM(pick(200) - 20, pick(40) - 10);
                const UINT keys[] = {VK_DOWN, VK_UP, VK_NEXT, VK_RETURN, VK_ESCAPE, VK_TAB};
                switch (pick(10)) {
                case 0: SendMessageA(combo, WM_LBUTTONDOWN, MK_LBUTTON, at); SendMessageA(combo, WM_LBUTTONUP, 0, at); break;
                case 1: SendMessageA(pick(2) ? d->dialog : d->button, WM_LBUTTONDOWN, MK_LBUTTON, at); break;
                case 2: if (edit) SendMessageA(edit, pick(4) ? WM_KEYDOWN : WM_SYSKEYDOWN, keys[pick(6)], 0); break;
                case 3: if (child != reinterpret_cast<HWND>(-1)) SendMessageA(child, WM_KEYDOWN, keys[pick(6)], 0); break;
                case 4: SendMessageA(combo, QCM_SETTEXT, 0, reinterpret_cast<LPARAM>(pick(2) ? "Ann\0Bob\0" : "")); break;
                case 5: SendMessageA(combo, QCM_SETCHILD, 1 + pick(8), 0); break;
                case 6: SendMessageA(combo, QCM_SETEXTRAHEIGHT, pick(2000), 0); SendMessageA(combo, QCM_SETARROWS, pick(3) - 1, pick(2)); break;
                case 7: SendMessageA(combo, QCM_SETSTRIPHEIGHT, pick(40), 0); EnableWindow(combo, pick(4) != 0); break;
                case 8: SendMessageA(combo, QCM_SHOWDROPDOWN, pick(2), pick(4)); break;
                default: if (pick(4) == 0) DestroyWindow(pick(2) ? d->dialog : combo); break;
                }
            };
            WhileOpen(combo, [&] { for (int i = pick(4); i >= 0 && IsWindow(combo); --i) act(); },
                      [&]() -> LRESULT { act(); return 1; }, false);
            PumpMessages();
            if (IsWindow(d->combo)) {
                EXPECT_EQ(0, SendMessageA(d->combo, QCM_ISOPEN, 0, 0)) << step;
                EXPECT_EQ(d->dialog, GetAncestor(d->combo, GA_PARENT)) << step;
                HWND edit = reinterpret_cast<HWND>(SendMessageA(d->combo, QCM_GETEDIT, 0, 0));
                EXPECT_EQ(GetWindowTextLengthA(edit) + 2, SendMessageA(d->combo, QCM_GETTEXTSIZE, 0, 0)) << step;
            }
            if (IsWindow(d->dialog)) {
                EXPECT_EQ(nullptr, GetPropA(d->dialog, "CMPB1")) << step;
            }
            ASSERT_EQ(nullptr, FindWindowExA(nullptr, nullptr, "QzCombo", nullptr)) << step;
        }
    }
    KillTimer(nullptr, guard);
    PumpMessages();
    EXPECT_EQ(gdiBefore, GdiObjectsInUse());
}

}  // namespace
