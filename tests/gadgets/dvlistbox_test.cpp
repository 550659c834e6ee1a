// QzDVListBox through its exports and messages, over a fake database host:
// sorted integer keys, 4-byte references, a host callback that logs every
// request and answers loads, finds, searches and range selections.
#include "vlist_test_fixture.h"
#include "qziso32.h"
#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

const int ID_LIST = 42;
const DWORD kRows = 10;

std::string Name(DWORD key)
{
    char text[32];
    snprintf(text, sizeof text, "Name %05lu", static_cast<unsigned long>(key));
    return text;
}

std::string Index(LONG i)
{
    if (i == DVL_SENTINELTOP) return "TOP";
    if (i == DVL_SENTINELBOTTOM) return "BOTTOM";
    if (i == DVL_NOINDEX) return "NONE";
    return std::to_string(i);
}

// The database: list index i shows keys[i + offset]. The host follows the
// list's re-basing by moving its offset.
struct Db : RequestLog {
    std::vector<DWORD> keys;
    long long offset = 0;
    std::multimap<DWORD, int> held;  // keys the list holds
    int badReleases = 0;
    bool logLoads = true;
    int shiftEveryLoad = 0;  // a host that reports a new top at every load

    long long Find(DWORD key) const
    {
        auto at = std::lower_bound(keys.begin(), keys.end(), key);
        return at != keys.end() && *at == key ? at - keys.begin() : -1;
    }
    bool Add(HWND w, LONG index)
    {
        long long p = index + offset;
        if (p < 0 || p >= static_cast<long long>(keys.size()))
            return false;
        DWORD key = keys[p];
        if (DVListBox_AddString(w, index, &key, Name(key).c_str(), key))
            held.insert({key, 0});
        return true;
    }
    void OnLoad(HWND w, const DVLLOADREQUEST &load)
    {
        if (logLoads)
            log.push_back("LOAD " + Index(load.first) + " " + std::to_string(load.count) + " " +
                          std::to_string(load.effectiveCount));
        if (shiftEveryLoad) {
            DVListBox_SetAbsoluteTop(w, -shiftEveryLoad);
            return;
        }
        long long first = load.first;
        long long size = static_cast<long long>(keys.size());
        if (load.first == DVL_SENTINELTOP) {
            offset = 0;
            first = 0;
        } else if (load.first == DVL_SENTINELBOTTOM) {
            offset = size - load.effectiveCount;
            first = load.effectiveCount - static_cast<long long>(load.count);
        }
        long long last = first + load.count - 1;
        if (last + offset < 0) {
            DVListBox_SetPastTop(w, 0);
            return;
        }
        if (first + offset >= size) {
            DVListBox_SetPastBottom(w, 0);
            return;
        }
        for (long long i = first; i <= last; ++i)
            Add(w, static_cast<LONG>(i));
        if (load.first == DVL_SENTINELTOP || load.first == DVL_SENTINELBOTTOM)
            return;  // the list knows that end already
        if (first + offset <= 0) {
            long long n = -offset;  // the index of the first key
            DVListBox_SetAbsoluteTop(w, static_cast<LONG>(n));
            offset += n;
        } else if (last + offset >= size - 1) {
            long long n = size - 1 - offset;
            LONG count = DVListBox_GetNumItems(w);
            long long shift = (count - 1 > 0 ? count - 1 : 0) - n;
            DVListBox_SetAbsoluteBottom(w, static_cast<LONG>(n));
            offset -= shift;
        }
    }
};

LRESULT CALLBACK DbProc(HWND w, UINT code, void *request, LPARAM data)
{
    Db &db = *reinterpret_cast<Db *>(data);
    switch (code) {
    case VLN_INIT: {
        auto *init = static_cast<VLINITREQUEST *>(request);
        db.log.push_back("INIT " + std::to_string(init->firstRows) + " " +
                         std::to_string(init->loadBatch));
        for (DWORD i = 0; i < init->firstRows; ++i)
            db.Add(w, i);
        break;
    }
    case VLN_LOAD: db.OnLoad(w, *static_cast<DVLLOADREQUEST *>(request)); break;
    case VLN_RELEASE: {
        auto *release = static_cast<DVLRELEASEREQUEST *>(request);
        DWORD key = static_cast<DWORD>(release->itemData);
        if (db.logLoads)
            db.log.push_back("RELEASE " + Index(release->index));
        auto at = db.held.find(key);
        if (at == db.held.end() || !release->text || Name(key) != release->text)
            ++db.badReleases;
        else
            db.held.erase(at);
        break;
    }
    case VLN_FIND: {
        auto *find = static_cast<DVLFINDREQUEST *>(request);
        DWORD key = *static_cast<const DWORD *>(find->ref);
        db.log.push_back("FIND " + std::to_string(key));
        long long p = db.Find(key);
        if (p >= 0) {
            find->index = static_cast<LONG>(p - db.offset);
            find->reload = 1;
        }
        break;
    }
    case VLN_SEARCH: {
        auto *search = static_cast<DVLSEARCHREQUEST *>(request);
        db.log.push_back(std::string("SEARCH ") + search->text);
        // Keys stand for names; a name's first letters come from its key.
        for (size_t p = 0; p < db.keys.size(); ++p)
            if (Name(db.keys[p]).substr(5) >= search->text) {
                search->index = static_cast<LONG>(p - db.offset);
                search->reload = 1;
                if (search->refBuffer)
                    memcpy(search->refBuffer, &db.keys[p], 4);
                break;
            }
        break;
    }
    case VLN_SELRANGE: {
        auto *range = static_cast<DVLSELRANGEREQUEST *>(request);
        db.log.push_back("SELRANGE " + Index(range->first) + " " + std::to_string(range->count) +
                         " " + std::to_string(range->mode));
        break;
    }
    case VLN_SELCHANGE: db.log.push_back("SELCHANGE"); break;
    case VLN_DESTROY: db.log.push_back("DESTROY"); break;
    }
    return 0;
}

std::vector<DWORD> Keys(DWORD count, DWORD step = 10)
{
    std::vector<DWORD> keys;
    for (DWORD i = 0; i < count; ++i)
        keys.push_back(100 + i * step);
    return keys;
}

class DVListBox : public VListFixture {
protected:
    HWND Make(DWORD style, LONG total, DWORD cache = 40, DWORD batch = 20)
    {
        HWND list = CreateList("QzDVListBox", ID_LIST, style, kRows);
        EXPECT_TRUE(list);
        EXPECT_TRUE(DVListBox_Initialize(list, total, cache, batch, 4, DbProc,
                                         reinterpret_cast<LPARAM>(&db_)));
        db_.Take();
        parent_->Pump();
        parent_->Clear();
        return list;
    }
    std::string Text(HWND list, LONG index)
    {
        char text[64] = "";
        DVListBox_GetText(list, index, text);
        return text;
    }
    DWORD CurRef(HWND list)
    {
        DWORD key = 0;
        return DVListBox_GetCurSelRef(list, &key) ? key : 0;
    }
    void Finish(HWND list)
    {
        DestroyWindow(list);
        EXPECT_EQ(0, db_.badReleases);
        EXPECT_TRUE(db_.held.empty()) << "every loaded item is released by the end";
    }
    Db db_;
};

TEST_F(DVListBox, PlacesItsWindowFromTheTopAndReleasesOnlyLeavingEntries)
{
    db_.keys = Keys(1000);
    HWND list = Make(0, 1000);
    EXPECT_TRUE(DVListBox_SetTopIndex(list, 5, FALSE));
    EXPECT_EQ(Log({"LOAD 10 21 1000"}), db_.Take()) << "the window at 0 still covers the view";
    EXPECT_TRUE(DVListBox_SetTopIndex(list, 100, FALSE));
    EXPECT_EQ(Releases(0, 30, "LOAD 95 21 1000"), db_.Take());
    SendMessageA(list, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(Log(), db_.Take());
    EXPECT_TRUE(DVListBox_SetTopIndex(list, 120, FALSE));
    EXPECT_EQ(Releases(95, 104, "LOAD 116 21 1000"), db_.Take()) << "only valid entries that leave are released";
    EXPECT_EQ(Name(db_.keys[120]), Text(list, 120));
    Finish(list);
}

TEST_F(DVListBox, RebasesIndicesWhenTheHostFindsItsFirstRecord)
{
    db_.keys = Keys(200);
    db_.offset = 3;  // opened three records below the real top
    HWND list = Make(0, -1);
    EXPECT_EQ(Name(db_.keys[3]), Text(list, 0));
    Click(list, 5, 2 * RowHeight() + 1);  // key of index 2 is keys[5]
    EXPECT_EQ(db_.keys[5], CurRef(list));
    DVListBox_SetTopIndex(list, 100, FALSE);
    DVListBox_SetTopIndex(list, 0, FALSE);
    db_.Take();
    SendMessageA(list, WM_VSCROLL, SB_LINEUP, 0);
    Log got = db_.Take();
    ASSERT_EQ(1u, got.size());
    EXPECT_EQ(0u, got[0].rfind("LOAD -1 1 ", 0)) << "the top was forgotten with entry 0";
    EXPECT_EQ(-1, DVListBox_GetTopIndex(list));
    SendMessageA(list, WM_VSCROLL, SB_PAGEUP, 0);
    got = db_.Take();
    ASSERT_EQ(7u, got.size()) << "what leaves the window, then the run above";
    EXPECT_EQ("RELEASE 15", got[0]);
    EXPECT_EQ(0u, got[6].rfind("LOAD -15 14 ", 0));
    EXPECT_EQ(0, DVListBox_GetTopIndex(list)) << "clamped at the real top after the shift";
    EXPECT_EQ(Name(db_.keys[0]), Text(list, 0));
    EXPECT_EQ(Name(db_.keys[2]), Text(list, 2)) << "the old index -1 is now 2";
    EXPECT_EQ(5, DVListBox_GetCurSel(list)) << "the selection keeps its record";
    EXPECT_EQ(db_.keys[5], CurRef(list));
    SendMessageA(list, WM_VSCROLL, SB_LINEUP, 0);
    EXPECT_EQ(Log(), db_.Take()) << "nothing above the real top";
    Finish(list);
}

TEST_F(DVListBox, GivesUpALookupThatKeepsMoving)
{
    db_.keys = Keys(100);
    HWND list = Make(0, 100);
    db_.shiftEveryLoad = 1;
    EXPECT_EQ(-1, DVListBox_GetItemData(list, 500));
    Log got = db_.Take();
    ASSERT_EQ(6u, got.size());
    EXPECT_EQ("LOAD 500 1 100", got[0]);
    EXPECT_EQ(RV_Failure, OSErrorGetErrorInfo()->errorCode);
    db_.shiftEveryLoad = 0;
    OSErrorClearError();
    Finish(list);
}

TEST_F(DVListBox, EndsAreFoundByReloadsAndKnownEndsStopTheView)
{
    db_.keys = Keys(100);
    HWND list = Make(0, -1, 40, 20);
    // A plain reload that runs past the top of the data starts again from it.
    EXPECT_TRUE(DVListBox_SetTopIndex(list, -50, TRUE));
    EXPECT_EQ(0, DVListBox_GetTopIndex(list));
    EXPECT_EQ(Name(db_.keys[0]), Text(list, 0));
    EXPECT_EQ(Name(db_.keys[9]), Text(list, 9));
    // A reload far past the data hears "past bottom" and starts again from
    // the real bottom, which it then knows.
    EXPECT_TRUE(DVListBox_SetTopIndex(list, 500, TRUE));
    EXPECT_EQ(1u, Lines(db_.Take(), "LOAD BOTTOM").size()) << "restarted from the bottom";
    LONG count = DVListBox_GetNumItems(list);
    LONG top = DVListBox_GetTopIndex(list);
    EXPECT_EQ(count - static_cast<LONG>(kRows), top);
    EXPECT_EQ(Name(db_.keys[99]), Text(list, count - 1));
    SendMessageA(list, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(top, DVListBox_GetTopIndex(list)) << "the known bottom stops the view";
    db_.Take();
    // Home reloads from the real top; Home again needs no load.
    Key(list, VK_HOME);
    EXPECT_EQ(1u, Lines(db_.Take(), "LOAD TOP").size());
    EXPECT_EQ(0, DVListBox_GetTopIndex(list));
    EXPECT_EQ(db_.keys[0], CurRef(list));
    Key(list, VK_HOME);
    EXPECT_EQ(Log({"SELCHANGE"}), db_.Take());
    Finish(list);
}

TEST_F(DVListBox, ReferencesSurviveReloadsAndDeletions)
{
    for (DWORD style : {DWORD(0), DWORD(VLS_DOUBLEBUFFER)}) {
        db_ = Db();
        db_.keys = Keys(300);
        HWND list = Make(style, 300);
        Click(list, 5, 4 * RowHeight() + 1);
        const DWORD chosen = db_.keys[4];
        EXPECT_EQ(4, DVListBox_GetCurSel(list));
        // Two records before it go; the host reloads around the present top.
        db_.keys.erase(db_.keys.begin() + 1, db_.keys.begin() + 3);
        DVListBox_SetNumItems(list, 298);
        DVListBox_SetTopIndex(list, DVL_NOINDEX, TRUE);
        EXPECT_EQ(2, DVListBox_GetCurSel(list));
        EXPECT_EQ(chosen, CurRef(list));
        EXPECT_EQ(Name(chosen), Text(list, 2));
        Readback back = Readback::Of(list);
        const COLORREF highlight = GetSysColor(COLOR_HIGHLIGHT);
        const int h = RowHeight();
        RECT row2 = {0, 2 * h, back.Width(), 3 * h}, row4 = {0, 4 * h, back.Width(), 5 * h};
        EXPECT_GT(back.Count(highlight, &row2), 0) << style << ": the record is painted where it moved";
        EXPECT_EQ(0, back.Count(highlight, &row4)) << style;
        // The record itself goes: the index is lost, the reference stays, and
        // the next move asks the host where it is.
        db_.keys.erase(db_.keys.begin() + 2);
        DVListBox_SetNumItems(list, 297);
        DVListBox_SetTopIndex(list, DVL_NOINDEX, TRUE);
        EXPECT_EQ(DVL_NOINDEX, DVListBox_GetCurSel(list));
        db_.Take();
        DWORD key = 0;
        EXPECT_TRUE(DVListBox_GetCaretRef(list, &key));
        EXPECT_EQ(chosen, key);
        Key(list, VK_DOWN);
        EXPECT_EQ(Log({"FIND " + std::to_string(chosen)}), db_.Take()) << "not found: the key is ignored";
        // It comes back: found on screen (the host asking for a reload), the
        // key moves the caret from it without reloading.
        db_.keys.insert(db_.keys.begin() + 2, chosen);
        Key(list, VK_DOWN);
        EXPECT_EQ(Log({"FIND " + std::to_string(chosen), "SELCHANGE"}), db_.Take());
        EXPECT_EQ(3, DVListBox_GetCaretIndex(list));
        // A caret set by reference to a record far off loads once around it.
        DWORD distant = db_.keys[250];
        EXPECT_TRUE(DVListBox_SetCaretRefNReload(list, &distant, FALSE));
        EXPECT_EQ(1u, Lines(db_.Take(), "LOAD").size());
        EXPECT_EQ(250, DVListBox_GetCurSel(list));
        EXPECT_TRUE(DVListBox_IsItemVisible(list, 250));
        // Out of range asks nothing.
        EXPECT_FALSE(DVListBox_GetItemRef(list, 400, &key));
        EXPECT_EQ(Log(), db_.Take());
        Finish(list);
    }
}

TEST_F(DVListBox, TypeAheadSearchesOnceForTheWholeRun)
{
    db_.keys = Keys(500, 7);  // names "Name 00100" to "Name 03593"
    HWND list = Make(0, 500);
    auto waitFor = [&](size_t lines) {  // the search runs when the typing pauses
        for (int i = 0; i < 40 && db_.log.size() < lines; ++i)
            Sleep(50), PumpMessages();
    };
    Key(list, VK_SPACE);  // its WM_CHAR is dropped
    Chars(list, "021");
    waitFor(2);
    Log got = db_.Take();
    ASSERT_GE(got.size(), 2u);
    EXPECT_EQ("SELCHANGE", got[0]);
    EXPECT_EQ("SEARCH 021", got[1]) << "one search, the space not in it";
    long long p = 0;
    while (Name(db_.keys[p]).substr(5) < "021") ++p;
    EXPECT_EQ(db_.keys[p], CurRef(list));
    EXPECT_EQ(static_cast<LONG>(p), DVListBox_GetCurSel(list));
    EXPECT_TRUE(DVListBox_IsItemVisible(list, static_cast<LONG>(p)));
    // 25 characters: the search gets the first 20.
    Chars(list, "9999999999999999999999999");
    waitFor(1);
    got = db_.Take();
    ASSERT_FALSE(got.empty());
    EXPECT_EQ("SEARCH " + std::string(20, '9'), got[0]);
    Finish(list);
}

TEST_F(DVListBox, SelectionNotifiesTheCallbackAloneInEachMode)
{
    struct Case {
        DWORD style;
        const char *what;
        Log click, down;
        DWORD selectedAfterDown;
    } cases[] = {
        {0, "single", {"SELCHANGE"}, {"SELCHANGE"}, 0},
        {VLS_MULTIPLESEL, "multiple", {"SELCHANGE"}, {"SELCHANGE"}, 1},
        {VLS_EXTENDEDSEL, "extended", {"SELCHANGE"}, {"SELCHANGE", "SELCHANGE"}, 1},
    };
    for (const Case &c : cases) {
        db_ = Db();
        db_.keys = Keys(1000);
        HWND list = Make(c.style, 1000);
        Click(list, 5, 3 * RowHeight() + 1);
        EXPECT_EQ(c.click, db_.Take()) << c.what;
        Key(list, VK_DOWN);
        EXPECT_EQ(c.down, db_.Take()) << c.what;
        EXPECT_EQ(4, DVListBox_GetCaretIndex(list)) << c.what;
        EXPECT_EQ(c.selectedAfterDown, DVListBox_GetSelCount(list)) << c.what;
        EXPECT_EQ(std::vector<WORD>(), Codes(list)) << c.what << ": nothing goes to the parent";
        Finish(list);
    }
    // Extended: Shift+End selects the run; what the list has not seen goes
    // to the host as ranges.
    HWND list = Make(VLS_EXTENDEDSEL, 1000);
    Click(list, 5, 2 * RowHeight() + 1);
    db_.Take();
    {
        HeldKey shift(VK_SHIFT);
        Key(list, VK_END);
    }
    Log got = db_.Take();
    Log tail(got.end() - 4, got.end());
    EXPECT_EQ(Log({"SELCHANGE", "SELRANGE 2 958 1", "SELRANGE 960 20 1", "SELCHANGE"}), tail)
        << "before the window, then the part of it not loaded";
    EXPECT_EQ(20u, DVListBox_GetSelCount(list)) << "the cached part of the run";
    EXPECT_TRUE(DVListBox_GetSel(list, 999));
    Finish(list);
}

// A drag that leaves below a short list and comes back into the empty rows
// under its last record stops the auto-scroll timer.
TEST_F(DVListBox, ADragBackInTheEmptyRowsStopsTheAutoScroll)
{
    db_.keys = Keys(5);
    HWND list = Make(VLS_EXTENDEDSEL, 5);
    DVListBox_SetAbsoluteBottom(list, 4);  // the host knows its last record
    SendMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 1));
    SendMessageA(list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, kRows * RowHeight() + 5));
    SendMessageA(list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, 8 * RowHeight() + 1));
    EXPECT_FALSE(KillTimer(list, 29)) << "the timer runs on";
    SendMessageA(list, WM_LBUTTONUP, 0, MAKELPARAM(5, 8 * RowHeight() + 1));
    Finish(list);
}

// Rows added after loading, by a taller window or a smaller font: the
// entries follow the rows, each row shows its own record, all released.
TEST_F(DVListBox, GrowsItsEntriesWhenRowsAreAddedAfterLoading)
{
    HFONT small = CreateFontA(-7, 0, 0, 0, FW_NORMAL, 0, 0, 0, ANSI_CHARSET, 0, 0, 0, 0, "Arial");
    for (bool byFont : {false, true}) {
        db_ = Db();
        db_.keys = Keys(1000);
        HWND list = Make(0, 1000, kRows, kRows);  // entries for one screen
        if (byFont)
            SendMessageA(list, WM_SETFONT, reinterpret_cast<WPARAM>(small), TRUE);
        else
            SetWindowPos(list, nullptr, 0, 0, 200, 3 * kRows * RowHeight(), SWP_NOMOVE | SWP_NOZORDER);
        RECT client;
        GetClientRect(list, &client);
        const LONG rows = client.bottom / RowHeight(byFont ? small : nullptr);
        ASSERT_GT(rows, static_cast<LONG>(kRows) + 5) << "by font " << byFont;
        EXPECT_TRUE(HeapValidate(GetProcessHeap(), 0, nullptr)) << "by font " << byFont;
        for (LONG i = 0; i < rows; ++i) {
            EXPECT_TRUE(DVListBox_IsItemCached(list, i)) << i;
            EXPECT_EQ(Name(db_.keys[i]), Text(list, i)) << "by font " << byFont;
        }
        Finish(list);
    }
    DeleteObject(small);
}

// The alphabetic thumb: a thumb place stands for two letters, searched for
// from there back to "aa" until the host finds one; none found: the top.
TEST_F(DVListBox, AlphabeticThumbSearchesTwoLettersBackToTheTop)
{
    db_.keys = Keys(500);  // names of digits: no two letters are found
    HWND list = Make(VLS_ALPHATHUMB, 500);
    DVListBox_SetTopIndex(list, 200, FALSE);
    db_.Take();
    SendMessageA(list, WM_VSCROLL, MAKEWPARAM(SB_THUMBPOSITION, 245), 0);
    Log searches = Lines(db_.Take(), "SEARCH");
    // Thumb 245 of 490 is item 245: (245 + 1) * 676 / 500 + 1 = 333, "mv".
    ASSERT_EQ(334u, searches.size());
    EXPECT_EQ("SEARCH mv", searches[0]);
    EXPECT_EQ("SEARCH mu", searches[1]);
    EXPECT_EQ("SEARCH aa", searches.back());
    EXPECT_EQ(0, DVListBox_GetTopIndex(list));
    Finish(list);
}

// The selection block taken whole, then grown and shrunk one reference at a
// time, gives back every reference in order (keys under 256, so that their
// byte order, which the block keeps, is their numeric order).
TEST_F(DVListBox, SelectionBlockGrowsAndShrinksByOneReference)
{
    db_.keys = Keys(400);
    HWND list = Make(VLS_MULTIPLESEL, 400);
    std::vector<DWORD> refs(db_.keys.begin(), db_.keys.begin() + 15), back(16);
    EXPECT_TRUE(DVListBox_SetSelItems(list, 15, refs.data()));
    EXPECT_TRUE(DVListBox_GetSel(list, 5));
    const DWORD added = 105;  // between the first two references
    EXPECT_TRUE(DVListBox_SetSelRef(list, 1, &added));
    refs.insert(refs.begin() + 1, added);
    ASSERT_EQ(16u, DVListBox_GetSelCount(list));
    EXPECT_TRUE(DVListBox_GetSelItems(list, back.data()));
    EXPECT_EQ(refs, back);
    EXPECT_TRUE(DVListBox_SetSelRef(list, 0, &db_.keys[14]));
    refs.pop_back();
    back.assign(15, 0);
    EXPECT_TRUE(DVListBox_GetSelItems(list, back.data()));
    EXPECT_EQ(refs, back);
    EXPECT_FALSE(DVListBox_GetSel(list, 14));
    Finish(list);
}

TEST_F(DVListBox, MonkeyAgreesWithTheDatabase)
{
    const int steps = MonkeySteps(20000, 1000);
    db_.logLoads = false;
    db_.keys = Keys(400, 3);
    DWORD nextKey = 5000;
    std::mt19937 random(63);
    auto pick = [&](DWORD n) { return static_cast<DWORD>(random() % (n ? n : 1)); };
    HWND list = Make(0, 400, 60, 20);
    ShowWindow(list, SW_HIDE);  // no glides: they are tested on a visible list
    const int h = RowHeight();
    DWORD rows = kRows;
    for (int step = 0; step < steps; ++step) {
        int action = pick(11);
        LONG size = static_cast<LONG>(db_.keys.size());
        switch (action) {
        case 0: {
            LONG top = DVListBox_GetTopIndex(list);
            DWORD row = pick(rows);
            if (top + static_cast<LONG>(row) >= size)
                break;
            Click(list, 5, row * h + 1);
            ASSERT_EQ(top + static_cast<LONG>(row), DVListBox_GetCurSel(list)) << step;
            ASSERT_EQ(db_.keys[top + row + db_.offset], CurRef(list)) << step;
            break;
        }
        case 1: case 2: {
            static const UINT keys[] = {VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT, VK_HOME, VK_END, VK_SPACE};
            Key(list, keys[pick(7)]);
            break;
        }
        case 3: case 4: {
            static const WORD requests[] = {SB_LINEUP, SB_LINEDOWN, SB_PAGEUP, SB_PAGEDOWN, SB_TOP,
                                            SB_BOTTOM};
            SendMessageA(list, WM_VSCROLL, requests[pick(6)], 0);
            break;
        }
        case 5:
            DVListBox_SetTopIndex(list, static_cast<LONG>(pick(size + 20)), pick(2));
            break;
        case 6: {
            rows = 3 + pick(12);
            RECT window;
            GetWindowRect(list, &window);
            SetWindowPos(list, nullptr, 0, 0, window.right - window.left, rows * h,
                         SWP_NOMOVE | SWP_NOZORDER);
            break;
        }
        case 7: case 8: {  // the host inserts or deletes a record and reloads
            if (action == 7 || size < 30) {
                DWORD key = nextKey++;
                db_.keys.insert(std::lower_bound(db_.keys.begin(), db_.keys.end(), key), key);
            } else {
                db_.keys.erase(db_.keys.begin() + pick(size));
            }
            DVListBox_SetNumItems(list, static_cast<LONG>(db_.keys.size()));
            DVListBox_SetTopIndex(list, DVL_NOINDEX, TRUE);
            break;
        }
        default: {
            LONG index = static_cast<LONG>(pick(size));
            ASSERT_EQ(Name(db_.keys[index + db_.offset]), Text(list, index)) << "step " << step;
            break;
        }
        }
        size = static_cast<LONG>(db_.keys.size());
        ASSERT_EQ(size, DVListBox_GetNumItems(list)) << step;
        LONG top = DVListBox_GetTopIndex(list);
        ASSERT_GE(top, 0) << "step " << step << " action " << action;
        ASSERT_LE(top, std::max<LONG>(0, size - static_cast<LONG>(rows))) << "step " << step;
        for (LONG i = top; i < top + static_cast<LONG>(rows) && i < size; ++i) {
            if (!DVListBox_IsItemCached(list, i))
                continue;
            ASSERT_EQ(Name(db_.keys[i + db_.offset]), Text(list, i)) << "stale row at step " << step;
        }
        DWORD key;
        LONG found;
        if (DVListBox_GetCurSelRef(list, &key) && DVListBox_FindItemInCache(list, &key, &found)) {
            ASSERT_EQ(found, DVListBox_GetCurSel(list)) << "step " << step << " action " << action;
        }
        ASSERT_EQ(0, db_.badReleases) << step;
        ASSERT_LE(db_.held.size(), 60u + 1u) << "the cache and one scratch entry";
    }
    Finish(list);
}

}  // namespace
