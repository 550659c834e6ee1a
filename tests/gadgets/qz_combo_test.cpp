// "QzCombo" in a dialog made from a template: the open and close round
// trip, the routing of its child's notifications, the ways its own loop
// ends, its messages at their limits, and a monkey.
#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <vector>
#include "failure_seam.h"
#include "message_box_driver.h"
#include "qz_test.h"
#include "window_harness.h"

namespace {

// A window of another thread that takes the focus, then goes.
// Holds the focus until `release` is set: given back at once, before the
// first thread has looked, the focus would never have been seen to go.
DWORD WINAPI TakeFocusFromAnotherThread(LPVOID release)
{
    HWND w = CreateWindowA("Edit", "", WS_POPUP | WS_VISIBLE, 0, 0, 50, 20, nullptr, nullptr, nullptr, nullptr);
    SetForegroundWindow(w), SetFocus(w);
    while (MsgWaitForMultipleObjects(1, &release, FALSE, 5000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1)
        PumpMessages();
    return DestroyWindow(w), 0;
}

BOOL CALLBACK CountWindow(HWND, LPARAM count)
{
    return ++*reinterpret_cast<int *>(count), TRUE;
}

const int kComboId = 300, kButtonId = 301, kChildRouteId = 77;
std::vector<Message> g_seen;
std::function<void(WPARAM)> g_onCommand;

INT_PTR CALLBACK DialogProc(HWND, UINT message, WPARAM wParam, LPARAM lParam)
{
    WORD id = LOWORD(wParam), code = HIWORD(wParam);
    bool own = id == kComboId && (code == QCN_ERROR || code == QCN_DROPDOWN || code == QCN_PRESSED);
    if (message == WM_COMMAND && (own || id == kChildRouteId || id == kButtonId))
        g_seen.push_back({WM_COMMAND, sent, wParam, lParam}), g_onCommand ? g_onCommand(wParam) : void();
    return FALSE;
}

void AddItem(std::vector<WORD> &t, const wchar_t *className, DWORD style, short y, short cy, WORD id)
{
    t.resize((t.size() + 1) & ~size_t(1));  // each item on a DWORD
    DLGITEMTEMPLATE item = {WS_CHILD | WS_VISIBLE | style, 0, 4, y, 90, cy, id};
    const WORD *raw = reinterpret_cast<const WORD *>(&item);
    t.insert(t.end(), raw, raw + sizeof item / 2);
    t.insert(t.end(), className, className + wcslen(className) + 1);
    t.insert(t.end(), {0, 0});  // no text, no data
}

// A dialog from a template: a combo, a button, and a group box last.
struct ComboDialog {
    HWND dialog = nullptr, combo = nullptr, button = nullptr, before = nullptr;
    LONG_PTR proc = 0;  // the dialog's procedure and the combo's predecessor, to find again
    ComboDialog(int kind, DWORD comboStyle = WS_TABSTOP, int top = 40)
    {
        std::vector<WORD> t(sizeof(DLGTEMPLATE) / 2 + 3, 0);
        auto *d = reinterpret_cast<DLGTEMPLATE *>(t.data());
        d->style = WS_POPUP | WS_VISIBLE, d->cdit = 3, d->cx = 120, d->cy = 110;
        AddItem(t, L"QzCombo", comboStyle, 4, 70, kComboId);
        AddItem(t, L"Button", BS_PUSHBUTTON, 80, 12, kButtonId);
        AddItem(t, L"Button", BS_GROUPBOX, 2, 100, 302);
        dialog = CreateDialogIndirectParamA(GetModuleHandleA(nullptr), reinterpret_cast<DLGTEMPLATE *>(t.data()),
                                            nullptr, DialogProc, 0);
        combo = GetDlgItem(dialog, kComboId);
        button = GetDlgItem(dialog, kButtonId);
        SetWindowPos(dialog, nullptr, 20, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        if (kind)
            SendMessageA(combo, QCM_SETCHILD, kind | (kChildRouteId << 8), 0);
        proc = GetWindowLongPtrA(dialog, GWLP_WNDPROC);
        before = GetWindow(combo, GW_HWNDPREV);
        g_seen.clear();
    }
    ~ComboDialog() { g_onCommand = nullptr, IsWindow(dialog) && DestroyWindow(dialog); }
    HWND Child() const { return reinterpret_cast<HWND>(SendMessageA(combo, QCM_GETCHILD, 0, 0)); }
    HWND Edit() const { return reinterpret_cast<HWND>(SendMessageA(combo, QCM_GETEDIT, 0, 0)); }
};

Message Cmd(int id, int code) { return {WM_COMMAND, sent | wparam, MAKEWPARAM(id, code), 0}; }

#define EXPECT_SEQUENCE_VEC(expected, child) EXPECT_TRUE(SequenceMatches(g_seen, (expected), (child), #expected))

std::function<void()> g_body;
HWND g_bodyCombo;
// Runs the body once the combo is open (a box the host opens before can
// take the timer's first ticks in its own loop).
VOID CALLBACK BodyTimer(HWND, UINT, UINT_PTR id, DWORD)
{
    if (IsWindow(g_bodyCombo) && !SendMessageA(g_bodyCombo, QCM_ISOPEN, 0, 0))
        return;
    KillTimer(nullptr, id);
    std::function<void()> body;
    if (body.swap(g_body), body)
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
    g_bodyCombo = combo;
    UINT_PTR timer = SetTimer(nullptr, 0, 1, BodyTimer);
    LRESULT result = open ? open() : SendMessageA(combo, QCM_SHOWDROPDOWN, 1, 0);
    KillTimer(nullptr, timer);
    g_body = nullptr;
    EXPECT_TRUE(ran || !mustOpen) << "the call returned before the combo's own loop ran";
    return result;
}

// What an open combo changes is back as it was.
void ExpectRestored(const ComboDialog &d, const char *context)
{
    if (IsWindow(d.dialog)) {
        EXPECT_EQ(nullptr, GetPropA(d.dialog, "CMPB1")) << context;
        EXPECT_EQ(d.proc, GetWindowLongPtrA(d.dialog, GWLP_WNDPROC)) << context;
    }
    if (IsWindow(d.combo)) {
        EXPECT_EQ(d.dialog, GetAncestor(d.combo, GA_PARENT)) << context;
        EXPECT_EQ(d.before, GetWindow(d.combo, GW_HWNDPREV)) << context;
        EXPECT_EQ(0, SendMessageA(d.combo, QCM_ISOPEN, 0, 0)) << context;
    }
    EXPECT_EQ(nullptr, FindWindowExA(nullptr, nullptr, "QzCombo", nullptr)) << context << ": left on the desktop";
}

// Presses on the arrow, and releases there unless told not to.
void PressArrow(HWND combo, bool release = true)
{
    RECT c;
    GetClientRect(combo, &c);
    LPARAM at = MAKELPARAM(c.right - GetSystemMetrics(SM_CXVSCROLL) / 2 - 2, c.bottom / 2);
    SendMessageA(combo, WM_LBUTTONDOWN, MK_LBUTTON, at);
    if (release && IsWindow(combo))
        SendMessageA(combo, WM_LBUTTONUP, 0, at);
}

class QzCombo : public GadgetTest {};

// Opened by message, by the arrow, or near the screen's bottom (the child
// then above the strip); closed by message, or by a click on another
// control, which closes with no code of its own and still reaches it.
TEST_F(QzCombo, RoundTripFromADialogOpenedAndClosedEachWay)
{
    // The TimeTracker's own codes on taking and losing the focus pass on
    // under the child's identifier; a press on the arrow comes first.
    const Message byArrow[] = {Cmd(kComboId, QCN_PRESSED), Cmd(kComboId, QCN_DROPDOWN), Cmd(kChildRouteId, 200),
                               Cmd(kChildRouteId, 300), Cmd(kChildRouteId, 400), Cmd(kComboId, QCN_DROPDOWN), {}};
    const Message byClick[] = {Cmd(kComboId, QCN_DROPDOWN), Cmd(kChildRouteId, LBN_SETFOCUS),
                               Cmd(kChildRouteId, LBN_KILLFOCUS), Cmd(kButtonId, BN_CLICKED), {}};
    const struct Way { const char *name; int kind; bool arrow, upward; const Message *expected; } ways[] = {
        {"by message", QCK_TIMETRACKER, false, false, byArrow + 1}, {"by the arrow", QCK_TIMETRACKER, true, false, byArrow},
        {"upward", QCK_TIMETRACKER, false, true, byArrow + 1}, {"closed by a click", QCK_PLAINLIST, false, false, byClick},
    };
    int screen = GetSystemMetrics(SM_CYSCREEN);
    for (const Way &way : ways) {
        OSErrorClearError();
        ComboDialog d(way.kind, WS_TABSTOP | (way.arrow ? QCS_NOSCREENCOPY : 0), way.upward ? screen - 90 : 40);
        bool sawOpen = false;
        RECT closedEdit, e, c;
        GetWindowRect(d.Edit(), &closedEdit);
        EXPECT_EQ(1, WhileOpen(d.combo, [&] {
            sawOpen = SendMessageA(d.combo, QCM_ISOPEN, 0, 0) == 1 && IsWindowVisible(d.Child());
            EXPECT_NE(d.dialog, GetAncestor(d.combo, GA_PARENT)) << "open: a window of the desktop";
            EXPECT_TRUE(GetPropA(d.dialog, "CMPB1")) << "open: the dialog carries the property";
            GetWindowRect(d.Edit(), &e), GetWindowRect(d.Child(), &c);
            EXPECT_EQ(closedEdit.top, e.top) << "the strip stays where it was";
            EXPECT_EQ(way.upward, c.bottom <= e.top) << "the child lies above the strip";
            EXPECT_LE(c.bottom, screen);
            if (way.expected == byClick)
                for (UINT m : {WM_LBUTTONDOWN, WM_LBUTTONUP})
                    PostMessageA(d.button, m, m == WM_LBUTTONDOWN ? MK_LBUTTON : 0, MAKELPARAM(3, 3));
        }, [&] { return way.arrow ? (PressArrow(d.combo), 1) : SendMessageA(d.combo, QCM_SHOWDROPDOWN, 1, 0); }));
        PumpMessages();
        EXPECT_TRUE(sawOpen) << way.name;
        EXPECT_FALSE(IsWindowVisible(d.Child())) << way.name;
        EXPECT_SEQUENCE_VEC(way.expected, d.combo);
        ExpectRestored(d, way.name);
        // A display may refuse the copy of the screen, the one thing recorded.
        ResultCode code = OSErrorGetErrorInfo()->errorCode;
        EXPECT_TRUE(code == RV_Success || (code == RV_GDIError && !way.arrow)) << code;
    }
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
        {"capture lost", [](ComboDialog &d) { PressArrow(d.combo, false), SetCapture(d.button), ReleaseCapture(); }},
        {"click on the dialog", [](ComboDialog &d) { SendMessageA(d.dialog, WM_LBUTTONDOWN, MK_LBUTTON, 0); }},
        {"menu of the dialog", [](ComboDialog &d) { SendMessageA(d.dialog, WM_INITMENU, 0, 0); }},
        {"dialog deactivated", [](ComboDialog &d) { SendMessageA(d.dialog, WM_ACTIVATE, WA_INACTIVE, 0); }},
        {"application deactivated", [](ComboDialog &d) { SendMessageA(d.dialog, WM_ACTIVATEAPP, FALSE, 0); }},
        {"frame pressed", [](ComboDialog &d) { SendMessageA(d.dialog, WM_NCLBUTTONDOWN, HTNOWHERE, 0); }},
        {"another thread's window takes the focus", [](ComboDialog &d) {
             HANDLE release = CreateEventA(nullptr, TRUE, FALSE, nullptr);
             HANDLE t = CreateThread(nullptr, 0, TakeFocusFromAnotherThread, release, 0, nullptr);
             for (DWORD start = GetTickCount(); SendMessageA(d.combo, QCM_ISOPEN, 0, 0) && GetTickCount() - start < 5000;)
                 MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT), PumpMessages();
             SetEvent(release);
             while (MsgWaitForMultipleObjects(1, &t, FALSE, 5000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1)
                 PumpMessages();
             CloseHandle(t), CloseHandle(release);
         }},
        {"combo destroyed", [](ComboDialog &d) { DestroyWindow(d.combo); }},
        {"dialog destroyed", [](ComboDialog &d) { DestroyWindow(d.dialog); }},
    };
    for (const Ender &e : enders) {
        ComboDialog d(QCK_DATETRACKER);
        bool closedByIt = false;
        WhileOpen(d.combo, [&] {
            e.act(d);
            closedByIt = !IsWindow(d.combo) || !SendMessageA(d.combo, QCM_ISOPEN, 0, 0);
        });
        EXPECT_TRUE(closedByIt) << e.name;
        ExpectRestored(d, e.name);
    }
}

// A child's code: whether its text reaches the edit field, whether an open
// combo of style QCS_CLOSEONCHOICE closes, and the code the dialog hears.
struct Route { int kind; WORD code; bool copies, closes; WORD passedAs; };
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
    for (const Route &route : kRoutes) {
        for (int open = 0; open < 2; ++open) {
            ComboDialog d(route.kind, WS_TABSTOP | QCS_CLOSEONCHOICE);
            HWND child = d.Child();
            if (route.kind == QCK_PLAINLIST)
                SendMessageA(child, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>("Chosen")), SendMessageA(child, LB_SETCURSEL, 0, 0);
            SetWindowTextA(child, "Chosen");
            char want[64] = "", text[64] = "";
            bool closed = false;
            std::vector<Message> routed;
            auto notify = [&] {
                SendMessageA(child, LB_GETTEXT, 0, reinterpret_cast<LPARAM>(want));
                if (route.kind != QCK_PLAINLIST)
                    GetWindowTextA(child, want, sizeof want);
                SetWindowTextA(d.Edit(), "");
                g_seen.clear();
                SendMessageA(d.combo, WM_COMMAND, MAKEWPARAM(1, route.code), reinterpret_cast<LPARAM>(child));
                closed = !SendMessageA(d.combo, QCM_ISOPEN, 0, 0);
                GetWindowTextA(d.Edit(), text, sizeof text);
                routed = g_seen;
            };
            open ? (void)WhileOpen(d.combo, notify) : notify();
            std::string context = "kind " + std::to_string(route.kind) + " code " + std::to_string(route.code) +
                                  (open ? " open" : " closed");
            EXPECT_EQ(route.copies ? std::string(want) : std::string(), text) << context;
            EXPECT_EQ(open && route.closes, open && closed) << context;
            bool told = std::any_of(routed.begin(), routed.end(),
                                    [](const Message &m) { return m.wParam == MAKEWPARAM(kComboId, QCN_DROPDOWN); });
            EXPECT_EQ(open && route.closes, told) << context << ": a close on a choice is told as a drop-down's";
            // The code goes on after what it caused (a close, with the
            // child's loss of focus), under the child's identifier.
            ASSERT_FALSE(routed.empty()) << context;
            EXPECT_EQ(MAKEWPARAM(kChildRouteId, route.passedAs), routed.back().wParam) << context;
            EXPECT_EQ(reinterpret_cast<LPARAM>(child), routed.back().lParam) << context << ": as received";
        }
    }
}

TEST_F(QzCombo, AListBoxsChoicesTravelAsSeparatedText)
{
    ComboDialog d(QCK_LISTBOX);
    const std::string s(1, static_cast<char>(OSGetSeparator())), z(1, '\0');
    std::string x1023(1023, 'x');  // with no end before it, the list is cut at 1024 bytes
    struct Row { std::string list; std::string text; WPARAM size; std::string back; } const rows[] = {
        {"Ann" + z + "Bob" + z + z, "Ann" + s + "Bob", 64, "Ann" + z + "Bob" + z + z},
        {z + z, "", 8, z + z},
        {x1023 + z + z, x1023, 2, z + z},
        {x1023 + "yz" + z + z, x1023 + "y", 6, "xxxx" + z + z},
        {"Ann" + z + "Bob" + z + z, "Ann" + s + "Bob", 5, "Ann" + z + z},
    };
    for (const Row &row : rows) {
        SendMessageA(d.combo, QCM_SETTEXT, 0, reinterpret_cast<LPARAM>(row.list.data()));
        char text[1200] = "", list[80];
        GetWindowTextA(d.Edit(), text, sizeof text);
        EXPECT_EQ(row.text, text) << row.list.size();
        memset(list, '#', sizeof list);
        EXPECT_EQ(1, SendMessageA(d.combo, QCM_GETTEXT, row.size, reinterpret_cast<LPARAM>(list)));
        EXPECT_EQ(row.back, std::string(list, row.back.size())) << row.text << " in " << row.size;
    }
    SetWindowTextA(d.Edit(), ("Ann" + s + " " + s + "  Bob").c_str());  // separators and blanks passed over
    char list[16];
    SendMessageA(d.combo, QCM_GETTEXT, sizeof list, reinterpret_cast<LPARAM>(list));
    EXPECT_EQ("Ann" + z + "Bob" + z + z, std::string(list, 9));
}

TEST_F(QzCombo, MessagesAtTheirLimits)
{
    ComboDialog d(0);
    struct Row { UINT message; WPARAM wParam; LRESULT result; } const rows[] = {
        {QCM_SETARROWS, static_cast<WPARAM>(-1), -1}, {QCM_SETARROWS, 0, 1},
        {QCM_SETCHILD, 0, -1}, {QCM_SETCHILD, 8, -1}, {QCM_SETCHILD, QCK_NONE, 1}, {QCM_GETCHILD, 0, -1},
        {QCM_SHOWDROPDOWN, 1, 1},  // nothing to drop: returns at once
    };
    for (const Row &row : rows)
        EXPECT_EQ(row.result, SendMessageA(d.combo, row.message, row.wParam, 0)) << std::hex << row.message;
    EXPECT_TRUE(g_seen.empty()) << "a combo with nothing to drop says nothing";
    // The drop-down's height: at most half the screen less the strip.
    SendMessageA(d.combo, QCM_SETCHILD, QCK_TIMETRACKER, 0);
    RECT c;
    GetClientRect(d.combo, &c);
    int most = (GetSystemMetrics(SM_CYSCREEN) - c.bottom) / 2;
    for (int extra : {most - 1, most, most + 1, 0}) {
        SendMessageA(d.combo, QCM_SETEXTRAHEIGHT, extra, 0);
        GetWindowRect(d.Child(), &c);
        EXPECT_EQ(extra > most ? most : extra, c.bottom - c.top) << extra;
    }
}

TEST_F(QzCombo, PaintsItsFaceAndTheArrowPressedAndReleased)
{
    ComboDialog d(QCK_TIMETRACKER);
    Readback closed = Readback::Of(d.combo);
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), closed.At(2, closed.Height() / 2)) << "the strip's fill";
    int left = closed.Width() - GetSystemMetrics(SM_CXVSCROLL) - 2;
    PressArrow(d.combo, false);
    EXPECT_EQ(GetSysColor(COLOR_BTNSHADOW), Readback::Of(d.combo).At(left, 2)) << "pressed";
    SendMessageA(d.combo, WM_LBUTTONUP, 0, MAKELPARAM(0, 0));  // released outside: stays closed
    EXPECT_EQ(0, Readback::Of(d.combo).Differences(closed));
    EnableWindow(d.combo, FALSE);
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), Readback::Of(d.combo).At(2, closed.Height() / 2)) << "disabled";
}

TEST_F(QzCombo, ARefusedAllocationOrDrawingObjectLeavesNothingBehind)
{
    int refused = 0;
    for (unsigned n = 1, more = 1; more; ++n) {
        ComboDialog d(QCK_TIMETRACKER);
        OSErrorClearError();
        LRESULT result;
        {
            FailureSeam seam(FailureSeam::Memory | FailureSeam::Gdi, n);
            result = WhileOpen(d.combo, [] {}, nullptr, false);
            more = seam.Refused();
        }
        ResultCode code = OSErrorGetErrorInfo()->errorCode;
        EXPECT_TRUE(code == RV_Success || code == RV_GDIError || code == RV_OutOfLocalMemory) << n << " " << code;
        EXPECT_TRUE(result == 1 || (result == -1 && code == RV_OutOfLocalMemory)) << n;
        refused += result == -1;
        ExpectRestored(d, "refused request");
    }
    EXPECT_GT(refused, 0) << "an ancestor's block that cannot be made refuses the opening";
}

// Closes the monkey's combo whenever it finds it open, so that a drop-down
// opened from inside another step's loop cannot wait for ever.
HWND g_guarded;
VOID CALLBACK GuardTimer(HWND, UINT, UINT_PTR, DWORD)
{
    if (IsWindow(g_guarded) && SendMessageA(g_guarded, QCM_ISOPEN, 0, 0))
        PostMessageA(g_guarded, QCM_SHOWDROPDOWN, 0, QCC_FOCUS);
}

// Random steps, open or closed; the host destroys the combo or its dialog,
// or opens a message box, inside some of its notifications.
TEST_F(QzCombo, MonkeyHostileLeavesNoObjectPropertyOrStrayWindow)
{
    UINT_PTR guard = SetTimer(nullptr, 0, 5, GuardTimer);
    std::mt19937 random(24);
    auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    MessageBoxDriver boxes;
    boxes.AnswerOthers(IDOK, false);
    for (int kind = 1; kind <= 7; ++kind)  // what the system makes once, on first use
        WhileOpen(ComboDialog(kind).combo, [] {}, nullptr, false);
    {  // and the first boxes, from inside an open combo's notification
        ComboDialog d(QCK_TIMETRACKER);
        g_onCommand = [&](WPARAM) { MessageBoxA(d.dialog, "first box", "host", MB_OK); };
        WhileOpen(d.combo, [] {}, [&]() -> LRESULT { return PressArrow(d.combo), 1; }, false);
    }
    auto windows = [] {  // the thread's top-level windows: a leaked dialog or combo shows here
        int n = 0;
        EnumThreadWindows(GetCurrentThreadId(), CountWindow, reinterpret_cast<LPARAM>(&n));
        return n;
    };
    long gdiBefore = GdiObjectsInUse(), windowsBefore = windows();
    {
        auto d = std::make_unique<ComboDialog>(QCK_PLAINLIST);
        for (int step = 0; step < MonkeySteps(300, 40); ++step) {
            if (!IsWindow(d->combo))
                d = std::make_unique<ComboDialog>(1 + pick(7));
            HWND combo = g_guarded = d->combo;
            g_onCommand = [&](WPARAM) {
                int host = pick(12);
                if (host == 0)
                    MessageBoxA(d->dialog, "inside a notification", "host", MB_OK);
                else if (host == 1)
                    DestroyWindow(pick(2) ? d->dialog : d->combo);
            };
            auto act = [&, combo] {
                HWND child = reinterpret_cast<HWND>(SendMessageA(combo, QCM_GETCHILD, 0, 0));
                HWND edit = d->Edit();
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
            ExpectRestored(*d, "monkey");
            EXPECT_EQ(IsWindow(d->combo) ? GetWindowTextLengthA(d->Edit()) + 2 : 0,
                      SendMessageA(d->combo, QCM_GETTEXTSIZE, 0, 0));
            ASSERT_FALSE(HasFailure()) << "step " << step;
        }
    }
    KillTimer(nullptr, guard);
    PumpMessages();
    EXPECT_EQ(gdiBefore, GdiObjectsInUse());
    EXPECT_EQ(windowsBefore, windows());
}

}  // namespace
