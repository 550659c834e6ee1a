// The window harness checked against the system's own button, so that a
// gadget test failing means the gadget, not the harness.
#include "window_harness.h"

namespace {

const int kButtonId = 77;

TEST(WindowHarness, RecordsWhatAChildSendsAndPosts)
{
    RecordingParent parent;
    HWND button = parent.CreateChild("BUTTON", kButtonId, BS_PUSHBUTTON, 10, 10, 80, 24, "Press");
    ASSERT_TRUE(button);
    parent.Pump();
    parent.Clear();
    parent.Ignore(WM_CTLCOLORBTN);

    Click(button, 5, 5);
    PostMessageA(parent.Window(), WM_USER + 3, 4, 5);
    static const Message clicked[] = {
        {WM_COMMAND, sent | wparam | lparam_is_child, MAKEWPARAM(kButtonId, BN_CLICKED), 0},
        {WM_PARENTNOTIFY, sent | optional, 0, 0},
        {WM_USER + 3, posted | wparam | lparam, 4, 5},
        {0, 0, 0, 0}};
    EXPECT_SEQUENCE(parent, clicked, "click");
}

TEST(WindowHarness, ADifferenceShowsBothSequences)
{
    std::vector<Message> seen = {{WM_COMMAND, sent, MAKEWPARAM(1, 2), 0}};
    static const Message want[] = {{WM_COMMAND, sent | wparam, MAKEWPARAM(1, 3), 0},
                                   {WM_NOTIFY, sent, 0, 0},
                                   {0, 0, 0, 0}};
    auto result = SequenceMatches(seen, want, nullptr, "case");
    ASSERT_FALSE(result);
    std::string text = result.message();
    EXPECT_NE(std::string::npos, text.find("WM_NOTIFY")) << text;
    EXPECT_NE(std::string::npos, text.find("w=0x20001")) << text;
    EXPECT_NE(std::string::npos, text.find("w=0x30001")) << text;

    static const Message optionalOnly[] = {{WM_NOTIFY, sent | optional, 0, 0}, {0, 0, 0, 0}};
    EXPECT_TRUE(SequenceMatches({}, optionalOnly, nullptr, "empty"));
    EXPECT_FALSE(SequenceMatches(seen, optionalOnly, nullptr, "extra"));
}

TEST(WindowHarness, ReadsBackWhatWasPainted)
{
    RecordingParent parent(120, 80);
    Readback face = Readback::Of(parent.Window());
    ASSERT_EQ(120, face.Width());
    ASSERT_EQ(80, face.Height());
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), face.At(60, 40));
    EXPECT_TRUE(face.Uniform());

    HDC dc = GetDC(parent.Window());
    RECT spot = {10, 20, 30, 25};
    FillRect(dc, &spot, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    ReleaseDC(parent.Window(), dc);
    Readback marked = Readback::Of(parent.Window());
    EXPECT_EQ(RGB(0, 0, 0), marked.At(10, 20));
    EXPECT_EQ(100, marked.Count(RGB(0, 0, 0)));
    EXPECT_EQ(100, face.Differences(marked));
    EXPECT_EQ(CLR_INVALID, marked.At(120, 0));

    Readback whole = Readback::Of(parent.Window(), true);
    EXPECT_GT(whole.Width(), face.Width());
}

}  // namespace
