// QzVListBox through its exports and messages, with a host callback that
// logs every request and answers loads from a list it holds.
#include "vlist_test_fixture.h"
#include "qziso32.h"
#include <algorithm>
#include <cstdio>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

const int ID_LIST = 41;
const DWORD kRows = 10;

struct Host : RequestLog {
    std::set<DWORD> held;       // loaded into the cache and not yet released
    std::set<DWORD> skipOnce;   // indices the next load leaves out
    std::vector<int> ids;       // item i shows "Item <ids[i]>"; empty: "Item <i>"
    bool logLoads = true;
    int badReleases = 0;
    DWORD findAnswer = 0;
    LONG measure = 0;  // the row height VLN_MEASURE answers; 0 keeps the list's
    std::string lastText;  // a lookup keeps the pointer it is given

    std::string Text(DWORD index) const
    {
        return "Item " + std::to_string(ids.empty() ? static_cast<long long>(index)
                                                    : static_cast<long long>(ids.at(index)));
    }
};

std::string Words(const char *name, DWORD a, DWORD b)
{
    char text[64];
    snprintf(text, sizeof text, "%s %lu %lu", name, static_cast<unsigned long>(a),
             static_cast<unsigned long>(b));
    return text;
}

bool AddText(HWND w, Host &host, DWORD i)
{
    host.lastText = host.Text(i);
    return VListBox_AddString(w, i, host.lastText.c_str(), static_cast<LPARAM>(i));
}

LRESULT CALLBACK HostProc(HWND w, UINT code, void *request, LPARAM data)
{
    Host &host = *reinterpret_cast<Host *>(data);
    switch (code) {
    case VLN_INIT: {
        auto *init = static_cast<VLINITREQUEST *>(request);
        host.log.push_back(Words("INIT", init->firstRows, init->loadBatch));
        for (DWORD i = 0; i < init->firstRows; ++i)
            if (AddText(w, host, i) && VListBox_IsItemCached(w, i))
                host.held.insert(i);
        break;
    }
    case VLN_LOAD: {
        auto *load = static_cast<VLLOADREQUEST *>(request);
        if (host.logLoads)
            host.log.push_back(Words("LOAD", load->first, load->last));
        for (DWORD i = load->first;; ++i) {
            if (!host.skipOnce.erase(i) && (host.ids.empty() || i < host.ids.size()) &&
                AddText(w, host, i) && VListBox_IsItemCached(w, i))
                host.held.insert(i);
            if (i == load->last)
                break;
        }
        break;
    }
    case VLN_RELEASE: {
        auto *release = static_cast<VLRELEASEREQUEST *>(request);
        if (host.logLoads)
            host.log.push_back("RELEASE " + std::to_string(release->index));
        if (!host.held.erase(release->index) || static_cast<DWORD>(release->itemData) != release->index)
            ++host.badReleases;
        break;
    }
    case VLN_SELCHANGE: host.log.push_back("SELCHANGE"); break;
    case VLN_GETTEXT: {
        auto *get = static_cast<VLGETTEXTREQUEST *>(request);
        host.log.push_back(Words("GETTEXT", get->index, get->size));
        lstrcpynA(get->buffer, host.Text(get->index).c_str(), get->size);
        break;
    }
    case VLN_FIND: {
        auto *find = static_cast<VLFINDREQUEST *>(request);
        host.log.push_back(std::string("FIND ") + find->text);
        find->index = host.findAnswer;
        break;
    }
    case VLN_SETFOCUS: host.log.push_back("SETFOCUS"); break;
    case VLN_KILLFOCUS: host.log.push_back("KILLFOCUS"); break;
    case VLN_DBLCLK: host.log.push_back(Words("DBLCLK", *static_cast<DWORD *>(request), 0)); break;
    case VLN_CHAR: {
        auto *c = static_cast<VLCHARREQUEST *>(request);
        host.log.push_back(Words("CHAR", c->character, c->repeat));
        break;
    }
    case VLN_MEASURE: {
        auto *m = static_cast<VLMEASUREREQUEST *>(request);
        host.log.push_back(Words("MEASURE", m->width, m->height));
        if (host.measure)
            m->height = host.measure;
        break;
    }
    case VLN_DRAW: {
        auto *d = static_cast<VLDRAWREQUEST *>(request);
        host.log.push_back(Words("DRAW", d->index, d->state) + Words("", d->rect.top, d->rect.bottom - d->rect.top) +
                           " " + (d->text ? d->text : "-"));
        break;
    }
    case VLN_DESTROY: host.log.push_back("DESTROY"); break;
    }
    return 0;
}

class VListBox : public VListFixture {
protected:
    // A list of kRows rows, initialised with `total`, a cache of 100 and a
    // batch of 20; the log starts empty.
    HWND Make(DWORD style, DWORD total, Host &host, DWORD cache = 100, DWORD batch = 20)
    {
        HWND list = CreateList("QzVListBox", ID_LIST, style, kRows);
        EXPECT_TRUE(list);
        EXPECT_TRUE(VListBox_Initialize(list, total, cache, batch, HostProc,
                                        reinterpret_cast<LPARAM>(&host)));
        host.Take();
        parent_->Pump();
        parent_->Clear();
        return list;
    }
    Host host;  // outlives the lists, which the parent takes down
};

// The selected indices as the list gives them.
std::vector<DWORD> Selection(HWND list)
{
    std::vector<DWORD> items(VListBox_GetSelCount(list));
    if (!items.empty())
        VListBox_GetSelItems(list, items.data());
    return items;
}

// "3-6,8": the selection as runs.
std::string Runs(HWND list)
{
    std::string text;
    std::vector<DWORD> items = Selection(list);
    for (size_t i = 0; i < items.size(); ++i) {
        size_t j = i;
        while (j + 1 < items.size() && items[j + 1] == items[j] + 1)
            ++j;
        text += (text.empty() ? "" : ",") + std::to_string(items[i]) +
                (j > i ? "-" + std::to_string(items[j]) : "");
        i = j;
    }
    return text;
}

TEST_F(VListBox, KeepsItsCacheWindowAroundTheView)
{
    HWND list = CreateList("QzVListBox", ID_LIST, 0, kRows);
    ASSERT_TRUE(VListBox_Initialize(list, 1000, 100, 20, HostProc, reinterpret_cast<LPARAM>(&host)));
    EXPECT_EQ(Log({"INIT 10 20"}), host.Take());

    EXPECT_TRUE(VListBox_SetTopIndex(list, 500));
    EXPECT_EQ(Releases(0, 9, "LOAD 495 514"), host.Take()) << "jump: the old window leaves, one batch centred on the view";
    EXPECT_TRUE(VListBox_IsItemCached(list, 514));
    EXPECT_FALSE(VListBox_IsItemCached(list, 515));

    SendMessageA(list, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(Log(), host.Take()) << "the view stays inside what is loaded";
    EXPECT_EQ(501u, VListBox_GetTopIndex(list));

    SendMessageA(list, WM_VSCROLL, SB_PAGEDOWN, 0);
    EXPECT_EQ(510u, VListBox_GetTopIndex(list));
    EXPECT_EQ(Log({Words("LOAD", 515, 534)}), host.Take()) << "page: the run after the loaded part";

    SendMessageA(list, WM_VSCROLL, SB_TOP, 0);
    EXPECT_EQ(Releases(495, 534, "LOAD 0 19"), host.Take());

    // A hole in the middle is asked for alone, the rest as one run.
    host.skipOnce = {15};
    EXPECT_TRUE(VListBox_SetTopIndex(list, 500));
    host.Take();
    EXPECT_TRUE(VListBox_SetTopIndex(list, 0));
    EXPECT_EQ(Releases(495, 514, "LOAD 0 19"), host.Take());
    EXPECT_FALSE(VListBox_IsItemCached(list, 15));
    SendMessageA(list, WM_VSCROLL, SB_PAGEDOWN, 0);  // top 9: rows 9..18 need 15
    EXPECT_EQ(Log({"LOAD 15 15", "LOAD 20 34"}), host.Take());

    DestroyWindow(list);
    EXPECT_EQ(0, host.badReleases);
    EXPECT_TRUE(host.held.empty()) << "every loaded item is released by the end";
}

TEST_F(VListBox, LooksUpALoneMissingItemOutsideTheCache)
{
    HWND list = Make(0, 1000, host);
    host.skipOnce = {999};
    SendMessageA(list, WM_VSCROLL, SB_BOTTOM, 0);
    EXPECT_EQ(990u, VListBox_GetTopIndex(list));
    Log log = host.Take();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(Words("LOAD", 980, 999), log.back());
    SendMessageA(list, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(Log(), host.Take()) << "a trailing run of one is not asked for";
    EXPECT_FALSE(VListBox_IsItemCached(list, 999));
    // A direct question loads it through a scratch entry, outside the cache.
    EXPECT_EQ(999, VListBox_GetItemData(list, 999));
    EXPECT_EQ(Log({"LOAD 999 999"}), host.Take());
    EXPECT_FALSE(VListBox_IsItemCached(list, 999));
    EXPECT_EQ(8u, VListBox_GetTextLen(list, 999));
    EXPECT_EQ(1000, VListBox_GetItemData(list, 1000)) << "an index equal to the total passes";
    EXPECT_EQ(-1, VListBox_GetItemData(list, 1001));
    char text[32] = "";
    EXPECT_TRUE(VListBox_GetText(list, 995, text));
    EXPECT_STREQ("Item 995", text);
    // In a list of unknown length such a lookup raises the count.
    HWND open = Make(0, 0xFFFFFFFFu, host);
    int low = -1, high = -1;
    GetScrollRange(open, SB_VERT, &low, &high);
    EXPECT_EQ(0, high) << "ten items on ten rows";
    EXPECT_EQ(500, VListBox_GetItemData(open, 500));
    GetScrollRange(open, SB_VERT, &low, &high);
    EXPECT_EQ(501 - static_cast<int>(kRows), high);
}

TEST_F(VListBox, AsksNothingForAnEmptyListYetTakesAClick)
{
    HWND list = Make(0, 0, host);
    SendMessageA(list, WM_VSCROLL, SB_PAGEDOWN, 0);
    EXPECT_TRUE(VListBox_SetTopIndex(list, 40));
    EXPECT_EQ(0u, VListBox_GetTopIndex(list));
    Click(list, 5, RowHeight() * 3 + 2);
    EXPECT_EQ(3u, VListBox_GetCaretIndex(list));
    EXPECT_EQ(Log(), Lines(host.Take(), "LOAD"));
    EXPECT_EQ(0u, VListBox_GetNumItems(list));
}

TEST_F(VListBox, RefusesBadArgumentsAndWindowsWithoutARecord)
{
    HWND list = Make(0, 1000, host);
    EXPECT_FALSE(VListBox_Initialize(list, 1000, 5000, 20, HostProc, reinterpret_cast<LPARAM>(&host)));
    EXPECT_EQ(0u, VListBox_GetTopIndex(list));
    EXPECT_FALSE(VListBox_Initialize(parent_->Window(), 10, 10, 10, HostProc, 0));
    EXPECT_EQ(0xFFFFFFFFu, VListBox_GetNumItems(nullptr));
    EXPECT_EQ(0xFFFFFFFFu, VListBox_GetCaretIndex(parent_->Window()));
    EXPECT_FALSE(VListBox_SetTopIndex(nullptr, 3));
    EXPECT_FALSE(VListBox_SetSel(list, TRUE, 3)) << "a single-selection list has no set";
    HWND owner = Make(VLS_OWNERDRAW | VLS_STRINGS, 100, host);
    EXPECT_FALSE(VListBox_AddString(owner, 0, "x", 0));
    EXPECT_TRUE(VListBox_AddItemData(owner, 0, 7));
}

// A click on row 2, then Down, then Space, in each mode: what the callback
// hears, and the codes the parent gets (0x0B focus, 0x11 selection, 0x12 a
// click's selection). Extended keys notify twice: the caret, then the run.
TEST_F(VListBox, ClickDownAndSpaceNotifyInEachMode)
{
    const struct {
        DWORD style;
        Log heard[3];
        std::vector<WORD> codes[3];
    } modes[] = {
        {0, {{"SETFOCUS", "SELCHANGE", "GETTEXT 2 256"}, {"SELCHANGE", "GETTEXT 3 256"}, {"SELCHANGE"}},
         {{0x0B, 0x12}, {0x11}, {0x11}}},
        {VLS_MULTIPLESEL, {{"SETFOCUS", "SELCHANGE"}, {"SELCHANGE"}, {"SELCHANGE"}}, {{0x0B, 0x12}, {0x11}, {0x11}}},
        {VLS_EXTENDEDSEL, {{"SETFOCUS", "SELCHANGE"}, {"SELCHANGE", "SELCHANGE"}, {"SELCHANGE"}},
         {{0x0B, 0x12}, {0x11, 0x11}, {0x11}}},
    };
    for (const auto &mode : modes) {
        HWND list = Make(VLS_NOTIFY | mode.style, 1000, host);
        for (int i = 0; i < 3; ++i) {
            if (i == 0)
                Click(list, 5, RowHeight() * 2 + 1);
            else
                Key(list, i == 1 ? VK_DOWN : VK_SPACE);
            EXPECT_EQ(mode.heard[i], host.Take()) << "style " << mode.style << " step " << i;
            EXPECT_EQ(mode.codes[i], Codes(list)) << "style " << mode.style << " step " << i;
        }
        SetFocus(parent_->Window());
        DestroyWindow(list);
    }
}

// The text mirrors the single selection; setting it finds the item.
TEST_F(VListBox, SingleSelectionMirrorsTheText)
{
    HWND list = Make(VLS_NOTIFY, 1000, host);
    char text[64];
    // Setting the text finds the item and selects it without notifying.
    host.findAnswer = 42;
    SetWindowTextA(list, "item 42");
    EXPECT_EQ(Log({"FIND item 42", "LOAD 37 56"}), host.Take());
    EXPECT_EQ(42u, VListBox_GetCurSel(list));
    EXPECT_EQ(42u, VListBox_GetTopIndex(list));
    SetWindowTextA(list, "ITEM 42");
    EXPECT_EQ(Log(), host.Take()) << "the same text regardless of case asks nothing";
    host.findAnswer = 0xFFFFFFFFu;
    SetWindowTextA(list, "nothing");
    EXPECT_EQ(42u, VListBox_GetCurSel(list));
    EXPECT_EQ(0u, VListBox_GetSelCount(list));

    parent_->Clear();
    host.Take();
    EXPECT_TRUE(VListBox_SetCurSel(list, 7));
    EXPECT_EQ(Log({"LOAD 10 29", "GETTEXT 7 256"}), host.Take()) << "no VLN_SELCHANGE from the export";
    GetWindowTextA(list, text, sizeof text);
    EXPECT_STREQ("Item 7", text);
    // Another program's window may take the focus meanwhile (the suites run
    // side by side on one desktop): the focus codes may come, and nothing else.
    std::vector<WORD> codes = Codes(list);
    codes.erase(std::remove(codes.begin(), codes.end(), WORD(0x0C)), codes.end());
    EXPECT_EQ(std::vector<WORD>({0x11}), codes);
}

// The clicks' selection is the walk's; here the exports that set one.
TEST_F(VListBox, MultipleSelectionExports)
{
    HWND list = Make(VLS_MULTIPLESEL, 1000, host);
    Click(list, 5, RowHeight() * 4 + 1);
    EXPECT_FALSE(VListBox_SetCurSel(list, 3));
    EXPECT_TRUE(VListBox_SetSel(list, FALSE, 9)) << "the flag is not used";
    EXPECT_EQ("4,9", Runs(list));
    const DWORD sorted[] = {1, 2, 3, 700};
    EXPECT_TRUE(VListBox_SetSelItems(list, 4, sorted));
    EXPECT_EQ("1-3,700", Runs(list)) << "the set is replaced";
}

// Fifty million items: the thumb stands for the place in the list, and an
// extended selection of them all is one run.
TEST_F(VListBox, HugeListsScaleTheThumbAndSelectInOneRun)
{
    host.logLoads = false;
    const DWORD total = 50000000;
    HWND list = Make(VLS_EXTENDEDSEL, total, host);
    int low = -1, high = -1;
    GetScrollRange(list, SB_VERT, &low, &high);
    EXPECT_EQ(0, low);
    EXPECT_EQ(32000, high);
    VListBox_SetTopIndex(list, total / 2);
    EXPECT_EQ(16000, GetScrollPos(list, SB_VERT)) << "the middle of the list is the middle";
    SendMessageA(list, WM_VSCROLL, MAKEWPARAM(SB_THUMBPOSITION, 32000), 0);
    EXPECT_EQ(total - kRows, VListBox_GetTopIndex(list));
    SendMessageA(list, WM_VSCROLL, MAKEWPARAM(SB_THUMBPOSITION, 8000), 0);
    EXPECT_EQ((total - kRows) / 4, VListBox_GetTopIndex(list));

    Key(list, VK_HOME);
    Key(list, VK_END);
    {
        HeldKey shift(VK_SHIFT);
        Key(list, VK_HOME);
    }
    EXPECT_EQ(total, VListBox_GetSelCount(list));
    EXPECT_TRUE(VListBox_GetSel(list, 31415926));
    EXPECT_EQ(0u, VListBox_GetTopIndex(list));
}

TEST_F(VListBox, GlidesToTheSamePixelsAsAFullRepaint)
{
    HWND list = Make(0, 1000, host);
    VListBox_SetCurSel(list, 503);
    VListBox_SetTopIndex(list, 500);
    UpdateWindow(list);
    RECT client;
    GetClientRect(list, &client);
    HDC dc = GetDC(list);
    struct Move {
        WPARAM request;
        DWORD top;
    } const moves[] = {
        {SB_LINEDOWN, 501},  {SB_LINEDOWN, 502}, {SB_PAGEDOWN, 511},
        {SB_LINEUP, 510},    {SB_PAGEUP, 501},   {MAKEWPARAM(SB_THUMBPOSITION, 505), 505},
        {SB_PAGEDOWN, 514},
    };
    for (const Move &move : moves) {
        SendMessageA(list, WM_VSCROLL, move.request, 0);
        ASSERT_EQ(move.top, VListBox_GetTopIndex(list));
        Readback glided = ReadDC(dc, 0, 0, client.right, client.bottom);  // as it stands
        SendMessageA(list, WM_SETFONT, 0, 0);  // a full repaint of every row
        Readback painted = Readback::Of(list);
        ASSERT_TRUE(glided.Valid());
        EXPECT_EQ(0, glided.Differences(painted)) << "after moving to " << move.top;
    }
    ReleaseDC(list, dc);
    // The selected row in the highlight colour, only while on view.
    VListBox_SetTopIndex(list, 500);
    Readback back = Readback::Of(list);
    RECT row3 = {0, 3 * RowHeight(), back.Width(), 4 * RowHeight()};
    EXPECT_GT(back.Count(GetSysColor(COLOR_HIGHLIGHT) & 0xFFFFFF, &row3), 0);
    RECT row2 = {0, 2 * RowHeight(), back.Width(), 3 * RowHeight()};
    EXPECT_EQ(0, back.Count(GetSysColor(COLOR_HIGHLIGHT) & 0xFFFFFF, &row2));
}

TEST_F(VListBox, PaintsTheSelectionInHighlightColoursAndTheFocusOnlyWhileFocused)
{
    HWND list = Make(VLS_MULTIPLESEL, 1000, host);
    const int h = RowHeight();
    const COLORREF window = GetSysColor(COLOR_WINDOW), text = GetSysColor(COLOR_WINDOWTEXT),
                   high = GetSysColor(COLOR_HIGHLIGHT), highText = GetSysColor(COLOR_HIGHLIGHTTEXT);
    SetFocus(parent_->Window());
    VListBox_SetCaretIndex(list, 7);
    Readback plain = Readback::Of(list);
    RECT row2 = {0, 2 * h, plain.Width(), 3 * h};
    ASSERT_GT(plain.Count(text, &row2), 0) << "the row's text is drawn";
    VListBox_SetSel(list, TRUE, 2);
    VListBox_SetSel(list, TRUE, 5);
    Readback selected = Readback::Of(list);
    ASSERT_EQ(plain.Width(), selected.Width());
    long wrong = 0;
    for (int y = 0; y < plain.Height(); ++y)
        for (int x = 0; x < plain.Width(); ++x) {
            COLORREF was = plain.At(x, y), want = was;
            if (y / h == 2 || y / h == 5)  // the same glyphs, the colours swapped
                want = was == text ? highText : was == window ? high : CLR_INVALID;
            if (was == text || was == window || want == was)  // edges of smoothed glyphs aside
                wrong += selected.At(x, y) != want;
        }
    EXPECT_EQ(0, wrong) << "selected rows in the highlight colours, the others as they were";

    SetFocus(list);
    ASSERT_EQ(list, GetFocus());
    Readback focused = Readback::Of(list);
    long onEdge = 0, elsewhere = 0;
    for (int y = 0; y < plain.Height(); ++y)
        for (int x = 0; x < plain.Width(); ++x)
            if (focused.At(x, y) != selected.At(x, y)) {
                bool edge = y / h == 7 && (y == 7 * h || y == 8 * h - 1 || x == 0 || x == plain.Width() - 1);
                (edge ? onEdge : elsewhere) += 1;
            }
    EXPECT_GT(onEdge, 2 * h) << "a dotted frame round the caret's row";
    EXPECT_EQ(0, elsewhere);
    SetFocus(parent_->Window());
    EXPECT_EQ(0, Readback::Of(list).Differences(selected)) << "the frame goes with the focus";
}

// Owner-drawn rows are measured and drawn by the callback; double clicks and
// characters reach it only with VLS_NOTIFY and VLS_WANTCHARS.
TEST_F(VListBox, TheCallbackDrawsRowsAndHearsDoubleClicksAndCharactersOnlyWhenAsked)
{
    for (LONG measure : {0L, 23L}) {
        const DWORD asked = measure ? VLS_NOTIFY | VLS_WANTCHARS : 0;
        HWND list = Make(VLS_OWNERDRAW | asked, 1000, host);
        RECT client;
        GetClientRect(list, &client);
        host.measure = measure;
        SendMessageA(list, WM_SETFONT, 0, 0);
        const LONG h = measure ? measure : RowHeight();
        const DWORD rows = kRows * RowHeight() / h;
        auto draw = [h](DWORD index, DWORD state, DWORD row) {
            return Words("DRAW", index, state) + Words("", row * h, h) + " Item " + std::to_string(index);
        };
        Log expected, log = host.Take(), draws = Lines(log, "DRAW");
        for (DWORD i = 0; i < rows; ++i)
            expected.push_back(draw(i, 0, i));
        ASSERT_GE(draws.size(), rows);
        EXPECT_EQ(Words("MEASURE", client.right, RowHeight()), log.at(0));
        EXPECT_EQ(expected, Log(draws.end() - rows, draws.end())) << "the last pass, row height " << h;
        GetClientRect(list, &client);
        EXPECT_EQ(static_cast<LONG>(rows) * h, client.bottom) << "the window fits whole rows";
        SetFocus(parent_->Window());
        host.Take();
        VListBox_SetCurSel(list, 3);  // drawn selected, then scrolled to the top
        SetFocus(list);
        log = host.Take();
        EXPECT_NE(log.end(), std::find(log.begin(), log.end(), draw(3, VLDS_SELECTED, 3)));
        EXPECT_EQ(draw(3, VLDS_SELECTED | VLDS_FOCUS, 0), log.back()) << "the caret drawn with the focus";
        VListBox_SetTopIndex(list, 40);
        DoubleClick(list, 5, h * 2 + 1);
        SendMessageA(list, WM_CHAR, 'x', 3);
        Log heard;
        for (const std::string &line : host.Take())
            if (line.rfind("DBLCLK", 0) == 0 || line.rfind("CHAR", 0) == 0)
                heard.push_back(line);
        EXPECT_EQ(asked ? Log({"DBLCLK 42 0", "CHAR 120 3"}) : Log(), heard) << "measure " << measure;
        SetFocus(parent_->Window());
        DestroyWindow(list);
    }
}

TEST_F(VListBox, DraggingPastAnEdgeScrollsRowByRowUntilTheEnd)
{
    host.logLoads = false;
    HWND list = Make(VLS_EXTENDEDSEL, 1000, host);
    const int h = RowHeight(), below = kRows * h + 4;
    VListBox_SetTopIndex(list, 100);
    SendMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5 * h + 1));
    SendMessageA(list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, below));
    SendMessageA(list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, below));
    EXPECT_EQ(102u, VListBox_GetTopIndex(list));
    EXPECT_EQ(111u, VListBox_GetCaretIndex(list)) << "one row past the bottom edge";
    EXPECT_EQ("105-111", Runs(list));
    SendMessageA(list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, -3));
    EXPECT_EQ(101u, VListBox_GetTopIndex(list));
    EXPECT_EQ("101-105", Runs(list));
    // The timer goes on while the pointer stays above the rows.
    POINT above = {5, -20};
    ClientToScreen(list, &above);
    SetCursorPos(above.x, above.y);
    for (DWORD start = GetTickCount(); VListBox_GetTopIndex(list) && GetTickCount() - start < 5000;)
        PumpMessages();
    EXPECT_EQ(0u, VListBox_GetTopIndex(list));
    EXPECT_EQ(0u, VListBox_GetCaretIndex(list));
    EXPECT_EQ("0-105", Runs(list));
    SendMessageA(list, WM_LBUTTONUP, 0, MAKELPARAM(5, -20));

    // At a known end nothing moves.
    VListBox_SetTopIndex(list, 990);
    SendMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 9 * h + 1));
    SendMessageA(list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, below));
    EXPECT_EQ(990u, VListBox_GetTopIndex(list));
    EXPECT_EQ(999u, VListBox_GetCaretIndex(list));
    SendMessageA(list, WM_LBUTTONUP, 0, MAKELPARAM(5, below));
}

// Rows added after loading, by a taller window or a smaller font: the cache
// grows with them (the heap stays whole). A total cut below the view
// releases what leaves the cache at once. Either way each row then shows its
// own item, and every entry is released by the end.
TEST_F(VListBox, TheCacheFollowsTheRowsAndTheTotal)
{
    HFONT small = CreateFontA(-7, 0, 0, 0, FW_NORMAL, 0, 0, 0, ANSI_CHARSET, 0, 0, 0, 0, "Arial");
    for (int route = 0; route < 3; ++route) {
        HWND list = Make(0, 1000, host, kRows, kRows);  // cache and batch of one screen
        if (route == 0) {
            SetWindowPos(list, nullptr, 0, 0, 200, 3 * kRows * RowHeight(), SWP_NOMOVE | SWP_NOZORDER);
        } else if (route == 1) {
            SendMessageA(list, WM_SETFONT, reinterpret_cast<WPARAM>(small), TRUE);
        } else {
            EXPECT_TRUE(VListBox_SetNumItems(list, 5));
            EXPECT_EQ(Releases(5, 8, "RELEASE 9"), host.Take());
            EXPECT_EQ(std::set<DWORD>({0, 1, 2, 3, 4}), host.held);
            EXPECT_TRUE(VListBox_SetNumItems(list, 1000));
            SendMessageA(list, WM_SIZE, 0, 0);  // the view's rows come back to the cache
        }
        RECT client;
        GetClientRect(list, &client);
        const DWORD rows = client.bottom / RowHeight(route == 1 ? small : nullptr);
        ASSERT_GE(rows, route == 2 ? kRows : kRows + 5) << "route " << route;
        EXPECT_TRUE(HeapValidate(GetProcessHeap(), 0, nullptr)) << "route " << route;
        for (DWORD i = 0; i < rows; ++i) {
            char text[32] = "";
            EXPECT_TRUE(VListBox_IsItemCached(list, i)) << i;
            VListBox_GetText(list, i, text);
            EXPECT_EQ(host.Text(i), text) << "route " << route;
        }
        SendMessageA(list, WM_VSCROLL, SB_BOTTOM, 0);
        EXPECT_EQ(1000u - rows, VListBox_GetTopIndex(list));
        DestroyWindow(list);
        EXPECT_TRUE(HeapValidate(GetProcessHeap(), 0, nullptr));
        EXPECT_TRUE(host.held.empty()) << "route " << route;
        EXPECT_EQ(0, host.badReleases);
    }
    DeleteObject(small);
}

// ------------------------------------------------------------- keys and scrolls
// One walk per selection mode over 100 items on 10 rows, each step checked
// exactly: the limits of every key and scroll request at, one inside and
// one past each end. K key, S key with Shift, C click a row (`what`) with
// `mods`, B scroll request, T SetTopIndex, N SetNumItems.
struct Step {
    char kind;
    DWORD what;
    WPARAM mods;
    DWORD top, caret, cur;
    const char *set;
};
const DWORD kNone = 0xFFFFFFFFu;

const Step kSingleWalk[] = {
    {'K', VK_DOWN, 0, 0, 0, 0, ""},  // no selection yet: Down selects in place
    {'K', VK_DOWN, 0, 0, 1, 1, ""},     {'K', VK_SPACE, 0, 0, 1, kNone, ""},
    {'K', VK_SPACE, 0, 0, 1, 1, ""},    {'K', VK_UP, 0, 0, 0, 0, ""},
    {'K', VK_UP, 0, 0, 0, 0, ""},       {'K', VK_NEXT, 0, 0, 9, 9, ""},
    {'K', VK_DOWN, 0, 1, 10, 10, ""},   {'K', VK_PRIOR, 0, 1, 1, 1, ""},
    {'K', VK_PRIOR, 0, 0, 0, 0, ""},    {'K', VK_NEXT, 0, 0, 9, 9, ""},
    {'K', VK_PRIOR, 0, 0, 0, 0, ""},    {'K', VK_END, 0, 90, 99, 99, ""},
    {'K', VK_NEXT, 0, 90, 99, 99, ""},  {'K', VK_UP, 0, 90, 98, 98, ""},
    {'K', VK_NEXT, 0, 90, 99, 99, ""},  {'K', VK_HOME, 0, 0, 0, 0, ""},
    {'B', SB_LINEUP, 0, 0, 0, 0, ""},   {'B', SB_PAGEDOWN, 0, 9, 0, 0, ""},
    {'B', SB_PAGEUP, 0, 0, 0, 0, ""},   {'T', 10, 0, 10, 0, 0, ""},
    {'B', SB_PAGEUP, 0, 1, 0, 0, ""},   {'T', 91, 0, 90, 0, 0, ""},
    {'B', SB_LINEDOWN, 0, 90, 0, 0, ""}, {'B', SB_PAGEDOWN, 0, 90, 0, 0, ""},
    {'B', SB_PAGEUP, 0, 81, 0, 0, ""},  {'B', SB_BOTTOM, 0, 90, 0, 0, ""},
    {'C', 3, 0, 90, 93, 93, ""},        {'N', 95, 0, 85, 93, 93, ""},
    {'N', 100, 0, 85, 93, 93, ""},      {'B', SB_TOP, 0, 0, 93, 93, ""},
};
const Step kMultipleWalk[] = {
    {'K', VK_DOWN, 0, 0, 1, kNone, ""},      {'K', VK_SPACE, 0, 0, 1, kNone, "1"},
    {'C', 4, 0, 0, 4, kNone, "1,4"},         {'C', 1, 0, 0, 1, kNone, "4"},
    {'C', 2, MK_SHIFT, 0, 2, kNone, "2,4"},  {'K', VK_END, 0, 90, 99, kNone, "2,4"},
    {'K', VK_SPACE, 0, 90, 99, kNone, "2,4,99"}, {'K', VK_DOWN, 0, 90, 99, kNone, "2,4,99"},
    {'K', VK_PRIOR, 0, 90, 90, kNone, "2,4,99"}, {'K', VK_UP, 0, 89, 89, kNone, "2,4,99"},
    {'K', VK_HOME, 0, 0, 0, kNone, "2,4,99"}, {'K', VK_SPACE, 0, 0, 0, kNone, "0,2,4,99"},
};
const Step kExtendedWalk[] = {
    {'C', 3, 0, 0, 3, 3, "3"},               {'C', 6, MK_SHIFT, 0, 6, 6, "3-6"},
    {'C', 8, MK_CONTROL, 0, 8, 8, "3-6,8"},  {'C', 4, MK_CONTROL, 0, 4, 4, "3,5-6,8"},
    {'C', 6, MK_SHIFT, 0, 6, 6, "4-6"},      {'K', VK_DOWN, 0, 0, 7, 7, "7"},
    {'S', VK_DOWN, 0, 0, 8, 8, "7-8"},       {'S', VK_DOWN, 0, 0, 9, 9, "7-9"},
    {'S', VK_UP, 0, 0, 8, 8, "7-8"},         {'S', VK_UP, 0, 0, 7, 7, "7"},
    {'S', VK_UP, 0, 0, 6, 6, "6-7"},         {'S', VK_UP, 0, 0, 5, 5, "5-7"},
    {'S', VK_DOWN, 0, 0, 6, 6, "6-7"},       {'S', VK_DOWN, 0, 0, 7, 7, "7"},
    {'S', VK_DOWN, 0, 0, 8, 8, "7-8"},       {'S', VK_NEXT, 0, 8, 17, 17, "7-17"},
    {'S', VK_PRIOR, 0, 8, 8, 8, "7-8"},      {'S', VK_PRIOR, 0, 0, 0, 0, "0-7"},
    {'S', VK_END, 0, 90, 99, 99, "7-99"},    {'S', VK_HOME, 0, 0, 0, 0, "0-7"},
    {'K', VK_SPACE, 0, 0, 0, 0, "0-7"},      {'K', VK_END, 0, 90, 99, 99, "99"},
    {'S', VK_UP, 0, 90, 98, 98, "98-99"},
};

TEST_F(VListBox, KeysClicksAndScrollsWalkEachModesLimitsExactly)
{
    const struct {
        DWORD style;
        const Step *steps;
        size_t count;
    } walks[] = {{0, kSingleWalk, sizeof kSingleWalk / sizeof *kSingleWalk},
                 {VLS_MULTIPLESEL, kMultipleWalk, sizeof kMultipleWalk / sizeof *kMultipleWalk},
                 {VLS_EXTENDEDSEL, kExtendedWalk, sizeof kExtendedWalk / sizeof *kExtendedWalk}};
    host.logLoads = false;
    for (const auto &walk : walks) {
        HWND list = Make(walk.style, 100, host);
        for (size_t i = 0; i < walk.count; ++i) {
            const Step &s = walk.steps[i];
            switch (s.kind) {
            case 'K': Key(list, s.what); break;
            case 'S': ThreadKeys(1), Key(list, s.what), ThreadKeys(0); break;
            case 'C': Click(list, 5, s.what * RowHeight() + 1, s.mods); break;
            case 'B': SendMessageA(list, WM_VSCROLL, s.what, 0); break;
            case 'T': VListBox_SetTopIndex(list, s.what); break;
            case 'N': VListBox_SetNumItems(list, s.what); break;
            }
            const std::string at = "style " + std::to_string(walk.style) + " step " + std::to_string(i);
            EXPECT_EQ(s.top, VListBox_GetTopIndex(list)) << at;
            EXPECT_EQ(s.caret, VListBox_GetCaretIndex(list)) << at;
            EXPECT_EQ(s.cur, VListBox_GetCurSel(list)) << at;
            EXPECT_EQ(s.set, Runs(list)) << at;
        }
        DestroyWindow(list);
        EXPECT_EQ(0, host.badReleases);
    }
}

// ------------------------------------------------------------- monkey
// Any sequence of user and host moves: the view starts within the items,
// every row on view shows its own item, and every release is of a held one.
TEST_F(VListBox, MonkeyKeepsRowsTrueAndTheViewWithinTheItems)
{
    for (DWORD style : {0ul, static_cast<unsigned long>(VLS_MULTIPLESEL), static_cast<unsigned long>(VLS_EXTENDEDSEL)}) {
        host.logLoads = false;
        host.ids.clear();
        for (int i = 0; i < 300; ++i)
            host.ids.push_back(i);
        int nextId = 300;
        HWND list = Make(style, 300, host);
        ShowWindow(list, SW_HIDE);  // no glides: GlidesToTheSamePixelsAsAFullRepaint has them
        std::mt19937 random(14 + style);
        auto pick = [&](DWORD n) { return static_cast<DWORD>(random() % n); };
        const int h = RowHeight(), steps = MonkeySteps(20000 / 3, 1000 / 3);
        DWORD rows = kRows;
        for (int step = 0; step < steps; ++step) {
            DWORD total = static_cast<DWORD>(host.ids.size());
            switch (pick(11)) {
            case 0: Click(list, 5, pick(rows) * h + 1, pick(2) ? 0 : pick(2) ? MK_CONTROL : MK_SHIFT); break;
            case 1:  // press, drag over the rows, release
                SendMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, pick(rows) * h + 1));
                SendMessageA(list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, pick(rows) * h + 2));
                SendMessageA(list, WM_LBUTTONUP, 0, MAKELPARAM(5, 2));
                break;
            case 2: case 3: {
                static const UINT keys[] = {VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT, VK_HOME, VK_END, VK_SPACE};
                ThreadKeys(BYTE(pick(2)));
                Key(list, keys[pick(7)]);
                ThreadKeys(0);
                break;
            }
            case 4: SendMessageA(list, WM_VSCROLL, pick(8), 0); break;
            case 5: VListBox_SetTopIndex(list, pick(total + 20)); break;
            case 6:  // the host resizes the list
                rows = 3 + pick(12);
                SetWindowPos(list, nullptr, 0, 0, 200, rows * h, SWP_NOMOVE | SWP_NOZORDER);
                break;
            case 7: {  // the host inserts or deletes an item and starts again
                bool insert = pick(2) || total < 30;
                DWORD at = pick(total + insert);
                if (insert)
                    host.ids.insert(host.ids.begin() + at, nextId++);
                else
                    host.ids.erase(host.ids.begin() + at);
                total = static_cast<DWORD>(host.ids.size());
                ASSERT_TRUE(VListBox_Initialize(list, total, 100, 20, HostProc, reinterpret_cast<LPARAM>(&host)));
                break;
            }
            case 8:  // items come at the end: the total alone changes
                for (int i = 0; i < 5; ++i)
                    host.ids.push_back(nextId++);
                ASSERT_TRUE(VListBox_SetNumItems(list, static_cast<DWORD>(host.ids.size())));
                break;
            default: {
                DWORD index = pick(total);
                char text[32] = "";
                VListBox_GetText(list, index, text);
                ASSERT_EQ(host.Text(index), text) << "step " << step;
            }
            }
            total = static_cast<DWORD>(host.ids.size());
            const DWORD top = VListBox_GetTopIndex(list);
            ASSERT_EQ(total, VListBox_GetNumItems(list));
            ASSERT_LT(top, total) << "step " << step;  // a taller window may leave rows empty
            for (DWORD index = top; index < top + rows && index < total; ++index) {
                char text[32] = "";
                if (VListBox_IsItemCached(list, index) && VListBox_GetText(list, index, text)) {
                    ASSERT_EQ(host.Text(index), text) << "stale row at step " << step;
                }
            }
            ASSERT_EQ(0, host.badReleases) << "step " << step;
            ASSERT_LE(host.held.size(), 100u + 20u);
        }
        DestroyWindow(list);
        EXPECT_TRUE(host.held.empty()) << "style " << style;
    }
}

}  // namespace
