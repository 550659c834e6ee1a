// "QzListBox": the window text is the selection joined by the regional
// separator; a text selects the items it names exactly, and tokens the
// list does not know stay in place through selection changes.
#include <algorithm>
#include <random>
#include <string>
#include <vector>
#include "failure_seam.h"
#include "qz_test.h"
#include "window_harness.h"

namespace {

const int ID = 41;
const char *const kItems[] = {"Apple", "Pear", "apple", "Plum", "Pear"};

class QzListBoxTest : public GadgetTest {
protected:
    RecordingParent parent{320, 400};
    HWND g = nullptr;
    char sep = static_cast<char>(OSGetSeparator());
    void SetUp() override
    {
        GadgetTest::SetUp();
        g = parent.CreateChild("QzListBox", ID, 0, 10, 10, 150, 120);
        ASSERT_TRUE(g);
        for (const char *item : kItems)
            SendMessageA(g, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
        parent.Clear();
    }
    void TearDown() override { DestroyWindow(g), GadgetTest::TearDown(); }
    // "a|b" with the regional separator in place of '|'.
    std::string T(std::string text) const
    {
        std::replace(text.begin(), text.end(), '|', sep);
        return text;
    }
    std::string Selected() const
    {
        std::string flags;
        for (int i = 0; i < 5; ++i)
            flags += SendMessageA(g, LB_GETSEL, i, 0) > 0 ? '1' : '0';
        return flags;
    }
    std::string Text() const { char text[256] = {}; return GetWindowTextA(g, text, sizeof text), text; }
};

TEST_F(QzListBoxTest, TextSelectsTheFirstExactMatchOfEachToken)
{
    const struct { const char *text, *selected; } cases[] = {
        {"Pear", "01000"},          // the first of equal items only
        {"apple", "00100"},         // case counts
        {"Pea|Pearl|pear", "00000"}, // no prefix, no longer text, no other case
        {"Kiwi|Plum", "00010"},     // an unknown token is passed over
        {"||Apple|||Plum|", "10010"}, // runs of separators are one break
        {"", "00000"},
    };
    SendMessageA(g, LB_SETSEL, TRUE, 4);
    for (const auto &c : cases) {
        SetWindowTextA(g, T(c.text).c_str());
        EXPECT_EQ(c.selected, Selected()) << c.text;
        EXPECT_EQ(T(c.text), Text()) << "the text is kept as given";
    }
}

TEST_F(QzListBoxTest, SelectionChangesKeepUnknownTokensInPlace)
{
    SetWindowTextA(g, T("Apple|Kiwi|Plum").c_str());
    parent.Clear();
    const struct { int item; BOOL on; const char *text; } steps[] = {
        {0, FALSE, "Kiwi|Plum"},       // a deselected item's token goes
        {1, TRUE, "Kiwi|Plum|Pear"},   // a selected item is appended
        {4, TRUE, "Kiwi|Plum|Pear"},   // an item whose text is already named adds nothing
        {3, FALSE, "Kiwi|Pear"},
    };
    for (const auto &s : steps) {
        EXPECT_EQ(LB_OKAY, SendMessageA(g, LB_SETSEL, s.on, s.item));
        EXPECT_EQ(T(s.text), Text()) << s.item;
    }
    parent.SetChild(GetDlgItem(g, 1));
    std::vector<Message> seq(4, {WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(1, LBN_SELCHANGE), 0});
    seq.push_back({0, 0, 0, 0});
    EXPECT_SEQUENCE(parent, seq.data(), "each change reaches the parent as the list sent it");
    // A token differing from an item only in case selects nothing, but at
    // the next change it is found as that (unselected) item and dropped.
    SetWindowTextA(g, T("APPLE|Kiwi").c_str());
    EXPECT_EQ("00000", Selected());
    SendMessageA(g, LB_SETSEL, TRUE, 3);
    EXPECT_EQ(T("Kiwi|Plum"), Text());
}

TEST_F(QzListBoxTest, HeightRoundsToWholeLines)
{
    int line = static_cast<int>(SendMessageA(g, LB_GETITEMHEIGHT, 0, 0));
    int cx = GetSystemMetrics(SM_CXBORDER), cy = GetSystemMetrics(SM_CYBORDER);
    ASSERT_GT(line, 2);
    for (int asked : {2 * line - cy - 1, 2 * line - cy, 2 * line - cy + 1, 4 * line - cy + 1}) {
        HWND h = parent.CreateChild("QzListBox", ID + 1, 0, 0, 0, 100, asked);
        RECT r;
        GetWindowRect(h, &r);
        EXPECT_EQ((asked + cy) / line * line + cy, r.bottom - r.top) << asked;
        EXPECT_EQ(100 + 2 * cx, r.right - r.left) << asked;
        DestroyWindow(h);
    }
}

TEST_F(QzListBoxTest, ATextThatCannotBeCopiedIsReportedToTheParent)
{
    {
        FailureSeam seam(FailureSeam::Memory, 1);
        EXPECT_FALSE(SetWindowTextA(g, "Plum"));
    }
    EXPECT_EQ(RV_OutOfLocalMemory, OSErrorGetErrorInfo()->errorCode);
    static const Message seq[] = {{WM_COMMAND, sent | wparam, MAKEWPARAM(ID, 0xFFFE), 0}, {0, 0, 0, 0}};
    EXPECT_SEQUENCE(parent, seq, "failure notification");
}

// Random steps; the parent destroys the list inside some of its notifications.
TEST_F(QzListBoxTest, MonkeyHostileKeepsTextAndSelectionTogether)
{
    DestroyWindow(g);
    long gdi = 0;
    std::mt19937 random(24);
    parent.Answer([&](HWND, UINT message, WPARAM, LPARAM, bool *) -> LRESULT {
        return message == WM_COMMAND && random() % 16 == 0 ? DestroyWindow(g) : 0;
    });
    const char *words[] = {"Apple", "Pear", "Kiwi", "apple", "", "Fig"};
    for (int round = 0; round < MonkeySteps(12, 3); ++round) {
        if (round == 1)  // after the system's own first-use caches
            gdi = GdiObjectsInUse();
        g = parent.CreateChild("QzListBox", ID, random() % 2 ? 0x10 : 0, 5, 5, 120, 90);
        for (int i = 0; i < MonkeySteps(200, 40); ++i) {
            if (!IsWindow(g))
                g = parent.CreateChild("QzListBox", ID, 0, 5, 5, 120, 90);
            int n = static_cast<int>(SendMessageA(g, LB_GETCOUNT, 0, 0));
            std::string text = std::string(words[random() % 6]) + sep + words[random() % 6];
            switch (random() % 8) {
            case 0: SendMessageA(g, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(words[random() % 6])); break;
            case 1: SendMessageA(g, LB_DELETESTRING, n ? random() % n : 0, 0); break;
            case 2: SendMessageA(g, LB_SETSEL, random() % 2, n ? random() % (n + 1) - 1 : -1); break;
            case 3: SetWindowTextA(g, text.c_str()); break;
            case 4: Click(GetDlgItem(g, 1), random() % 130, random() % 100); break;
            case 5: // (not Space: the system's list box toggles on it without telling)
                if (n) Key(GetDlgItem(g, 1), random() % 2 ? VK_DOWN : VK_HOME);
                break;
            case 6: SetWindowPos(g, nullptr, 0, 0, random() % 200, random() % 150, SWP_NOMOVE | SWP_NOZORDER); break;
            case 7: SendMessageA(g, WM_SETFONT, 0, TRUE); break;
            }
            // Every selected item is named by a token of the text.
            std::string all = sep + Text() + sep;
            n = static_cast<int>(SendMessageA(g, LB_GETCOUNT, 0, 0));
            for (int k = 0; k < n; ++k) {
                char item[32] = {};
                SendMessageA(g, LB_GETTEXT, k, reinterpret_cast<LPARAM>(item));
                if (item[0] && SendMessageA(g, LB_GETSEL, k, 0) > 0) {
                    ASSERT_NE(std::string::npos, all.find(sep + std::string(item) + sep)) << all;
                }
            }
        }
        PumpMessages();
        DestroyWindow(g);
    }
    EXPECT_EQ(gdi, GdiObjectsInUse());
}

}  // namespace
