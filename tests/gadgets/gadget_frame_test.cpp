// Gadget registration and the services every gadget shares.
#include "gadget_frame.h"
#include "qz_test.h"
#include "window_harness.h"
#include <string>
#include <vector>

namespace {

// Every gadget class name, in registration order.
const char *const kGadgetClassNames[] = {
    "StopWatch", "Page",        "DialogTab",   "Zimbo",  "QzBitmap",    "GasGauge",
    "FieldMapper", "FreeTime",  "QzListBox",   "QzVListBox", "QzDVListBox", "Waffle",
    "TimeTracker", "DateTracker", "TimeSetter", "QzCombo", "Tumbler",   "SuperText",
};

HMODULE Library() { return GetModuleHandleA("qziso32.dll"); }

// The gadget classes that registration makes, in order, with their brushes.
std::vector<std::pair<std::string, HBRUSH>> RegisteredClasses()
{
    std::vector<std::pair<std::string, HBRUSH>> found;
    for (const char *name : kGadgetClassNames) {
        WNDCLASSA wc;
        if (GetClassInfoA(Library(), name, &wc)) found.emplace_back(name, wc.hbrBackground);
    }
    return found;
}

using GadgetRegistration = ErrorStateTest;

TEST_F(GadgetRegistration, NestsAndUnwindsByItsCount)
{
    ASSERT_TRUE(RegisterGadgets(0));
    auto classes = RegisteredClasses();
    EXPECT_TRUE(RegisterGadgets(12345));
    EXPECT_EQ(1, UnRegisterGadgets());
    EXPECT_EQ(classes.size(), RegisteredClasses().size());  // still all there
    for (auto &row : classes) {
        WNDCLASSA wc;
        ASSERT_TRUE(GetClassInfoA(Library(), row.first.c_str(), &wc)) << row.first;
        EXPECT_EQ(sizeof(LONG_PTR), static_cast<size_t>(wc.cbWndExtra)) << row.first;
        EXPECT_EQ(0, wc.cbClsExtra) << row.first;
    }
    EXPECT_EQ(0, UnRegisterGadgets());
    EXPECT_TRUE(RegisteredClasses().empty());
    // Every brush a class owned is gone with it.
    for (auto &row : classes)
        if (row.second && reinterpret_cast<INT_PTR>(row.second) > COLOR_MENUBAR + 1) {
            EXPECT_EQ(0u, GetObjectType(row.second)) << row.first;
        }
    EXPECT_EQ(-1, UnRegisterGadgets());
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(GadgetRegistration, AClassTakenBySomeoneElseStopsItCleanly)
{
    ASSERT_TRUE(RegisterGadgets(0));
    auto classes = RegisteredClasses();
    ASSERT_EQ(0, UnRegisterGadgets());
    if (classes.empty()) GTEST_SKIP() << "no gadget class is built yet";

    // Another module holds the last class globally: the ones before it
    // register, that one fails, and the count stays 0.
    const std::string taken = classes.back().first;
    WNDCLASSA wc = {};
    wc.style = CS_GLOBALCLASS;
    wc.lpfnWndProc = DefWindowProcA;
    wc.hInstance = GetModuleHandleA(nullptr);
    wc.lpszClassName = taken.c_str();
    ASSERT_TRUE(RegisterClassA(&wc));
    EXPECT_FALSE(RegisterGadgets(0));
    EXPECT_EQ(RV_UserError, OSErrorGetErrorValue());
    EXPECT_EQ(-1, UnRegisterGadgets());
    for (size_t i = 0; i + 1 < classes.size(); ++i)
        EXPECT_TRUE(GetClassInfoA(Library(), classes[i].first.c_str(), &wc)) << classes[i].first;
    for (size_t i = 0; i + 1 < classes.size(); ++i)
        UnregisterClassA(classes[i].first.c_str(), Library());
    UnregisterClassA(taken.c_str(), GetModuleHandleA(nullptr));
}

TEST(GadgetRegistrationProbe, AMissingLabelStringFailsWithTheCountAtZero)
{
    // Language QA lacks string 30160 and the "EIGHTEEN" template; the
    // notice still records its key before it finds that out.
    const char section[] = "Kelendrix-EighteenFeatureDone";
    std::string key = "probe" + std::to_string(GetCurrentProcessId());
    WriteProfileStringA(section, key.c_str(), nullptr);
    DWORD status = RunChild(ProgramFolder() + "gadget_probe.exe " + key + " /LQA");
    EXPECT_EQ(2u | 4u | (RV_StringNonExistant << 8), status);
    EXPECT_EQ(1u, GetProfileIntA(section, key.c_str(), 0));
    WriteProfileStringA(section, key.c_str(), nullptr);
}

// The text colour rule at its edges: green alone decides without the LCD
// option; with it only a near-black blue gives white. The library's export of
// the option hands each flag back.
TEST(GadgetContrastTextColor, SwitchesAtItsBoundaries)
{
    const COLORREF black = RGB(0, 0, 0), white = RGB(255, 255, 255);
    struct Case {
        LONG lcd;
        COLORREF background;
        COLORREF text;
    } cases[] = {
        {0, RGB(0, 128, 0), white},     {0, RGB(0, 129, 0), black},
        {0, RGB(255, 128, 255), white},
        {0, RGB(0, 255, 0), black},     {0, RGB(255, 0, 255), white},
        {1, RGB(0, 0, 128), white},     {1, RGB(0, 0, 129), black},
        {1, RGB(0, 0, 0), white},       {1, RGB(1, 0, 0), black},
        {1, RGB(0, 1, 0), black},       {-7, RGB(0, 255, 0), black},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(c.lcd, Gadgets_LCDOption(c.lcd));
        g_gadgetLcdOption = c.lcd;
        EXPECT_EQ(c.text, GadgetContrastTextColor(c.background))
            << "lcd " << c.lcd << " background " << std::hex << c.background;
    }
    g_gadgetLcdOption = Gadgets_LCDOption(0);
}

// Draws into 20 x 12 white pixels of a window and reads them back.
template <typename Draw>
Readback DrawOnWindow(Draw draw)
{
    RecordingParent window(20, 12);
    HDC dc = GetDC(window.Window());
    RECT all = {0, 0, 20, 12};
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    draw(dc, &all);
    Readback result = ReadDC(dc, 0, 0, 20, 12);
    ReleaseDC(window.Window(), dc);
    return result;
}

TEST(GadgetButtonFaces, RaisedAndPressed)
{
    Readback up = DrawOnWindow([](HDC dc, RECT *r) { GadDrawButtonUp(dc, r); });
    struct Spot {
        int x, y, colour;
    } const raised[] = {{0, 0, COLOR_3DLIGHT}, {1, 1, COLOR_3DHILIGHT}, {19, 11, COLOR_3DDKSHADOW},
                        {18, 10, COLOR_3DSHADOW}, {10, 6, COLOR_BTNFACE}};
    for (const Spot &s : raised)
        EXPECT_EQ(GetSysColor(s.colour), up.At(s.x, s.y)) << s.x << "," << s.y;

    Readback down = DrawOnWindow([](HDC dc, RECT *r) { GadDrawButtonDown(dc, r); });
    RECT inside = {1, 1, 19, 11};
    EXPECT_EQ(18 * 10, down.Count(GetSysColor(COLOR_BTNFACE), &inside));
    for (POINT edge : {POINT{0, 0}, POINT{19, 11}, POINT{10, 0}})
        EXPECT_EQ(GetSysColor(COLOR_BTNSHADOW), down.At(edge.x, edge.y)) << edge.x << "," << edge.y;
}

}  // namespace
