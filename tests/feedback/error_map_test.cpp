// The map from result code to message, walked for every code through the
// recording presenter, and the resource texts held against the arguments
// the map hands them, in both languages.
#include <map>
#include <set>
#include "error_map_table.h"
#include "error_recorders.h"
#include "qz_test.h"

namespace {

// What the user is shown for a code, grouped as the icons and arguments go.
// Arguments: I itemText, V itemValue, D detail1, T detailText, N the code's name.
struct ExpectedGroup {
    UINT icon;
    const char *args;
    bool appTitle;
    std::vector<std::pair<DWORD, DWORD>> codes;  // code, message id
};

const std::vector<ExpectedGroup> kExpected = {
    {0x40, "", false, {{5, 11005}, {6, 11005}, {8, 15007}, {17, 11021}, {74, 11026}, {75, 11027},
                       {76, 11025}, {78, 11020}, {83, 11016}, {84, 11017}, {103, 11309},
                       {104, 11310}, {117, 11311}, {119, 11435}, {121, 8105}, {122, 52006},
                       {125, 8106}, {126, 8107}, {128, 52082}}},
    {0x40, "I", false, {{2, 11002}, {16, 11006}, {18, 11007}, {19, 11028}, {20, 11008}, {68, 11019},
                        {87, 11038}, {90, 11040}, {102, 11307}, {120, 52003}, {105, 11410},
                        {106, 11421}, {107, 11420}, {108, 11419}, {109, 11418}, {110, 11417},
                        {111, 11411}, {112, 11412}, {113, 11413}, {114, 11414}, {115, 11415},
                        {116, 11416}}},
    {0x40, "D", false, {{4, 11004}}},
    {0x40, "T", false, {{124, 11013}}},
    {0x40, "", true, {{92, 11041}, {93, 10005}, {96, 10103}, {99, 11044}}},
    {0x40, "I", true, {{98, 11043}}},
    {0x30, "", false, {{85, 11018}, {127, 52054}}},
    {0x10, "", false, {{44, 11031}}},
    {0x10, "I", false, {{24, 11011}, {27, 11011}, {25, 11012}, {57, 11024}, {81, 11014}, {82, 11015},
                        {89, 11029}, {118, 11047}}},
    {0x10, "V", false, {{3, 11003}}},
    {0x10, "T", false, {{71, 11013}}},
    {0x10, "I", true, {{88, 29904}}},
    {0x10, "N", false, {{14, 11001}, {15, 11001}, {23, 11001}, {26, 11001}, {100, 11001}, {22, 11000},
                        {37, 11000}, {48, 11000}, {49, 11000}, {50, 11000}, {66, 11000}, {91, 11000},
                        {95, 11000}, {101, 11000}}},
};

// 1, RV_Failure, shows only when the defensive setting asks for it.
const std::set<DWORD> kSilent = {0,  1,  7,  9,  10, 11, 12, 13, 28, 29, 30, 31, 32, 67, 33, 34, 35, 36,
                                 39, 40, 41, 42, 43, 45, 46, 47, 51, 52, 53, 54, 55, 56, 58, 59, 60,
                                 61, 62, 63, 64, 65, 69, 70, 72, 73, 77, 79, 80, 86, 97};

std::string Text(HMODULE module, UINT id)
{
    char text[1024] = {};
    LoadStringA(module, id, text, sizeof text);
    return text;
}

// Fills the fields each argument comes from with values that name the code.
void FillFields(ErrorContext *ctx, DWORD code)
{
    lstrcpyA(ctx->itemText, ("item " + std::to_string(code)).c_str());
    lstrcpyA(ctx->detailText, ("detail " + std::to_string(code)).c_str());
    ctx->detail1 = 1000 + code;
    ctx->itemValue = 2000 + code;
}

std::string ExpectedArg(char arg, DWORD code)
{
    switch (arg) {
    case 'I': return "item " + std::to_string(code);
    case 'T': return "detail " + std::to_string(code);
    case 'D': return std::to_string(1000 + code);
    case 'V': return std::to_string(2000 + code);
    default: return OSErrorGetRVErrorString(static_cast<ResultCode>(code));
    }
}

std::string Kinds(const std::string &args)
{
    std::string kinds;
    for (char arg : args)
        kinds += (arg == 'D' || arg == 'V') ? 'u' : 's';
    return kinds;
}

class ErrorMap : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        InstallRecordingCallback();
        ResetErrorRecorders();
        resources_ = ResourceGetHandle();
        caption13000_ = Text(resources_, 13000);
        appTitle_ = Text(resources_, 1);
    }
    void TearDown() override
    {
        ResetErrorRecorders();
        ErrorStateTest::TearDown();
    }
    HMODULE resources_ = nullptr;
    std::string caption13000_, appTitle_;
};

}  // namespace

TEST_F(ErrorMap, EachRowReachesThePresenterWithItsMessageIconArgumentsAndCaption)
{
    HWND window = CreateWindowA("STATIC", "Owner", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    size_t rows = 0;
    for (const ExpectedGroup &group : kExpected) {
        for (const auto &row : group.codes) {
            DWORD code = row.first;
            SCOPED_TRACE("code " + std::to_string(code));
            ResetErrorRecorders();
            SetPresenterArguments(Kinds(group.args));
            SetPresenterAnswer(IDRETRY);
            FillFields(MakePendingError(code), code);
            EXPECT_EQ(UIHandleErrorFunc(window, 0, RecordingPresenter), IDRETRY);
            ASSERT_EQ(PresentedBoxes().size(), 1u);
            const PresentedBox &box = PresentedBoxes()[0];
            EXPECT_EQ(box.window, window);
            EXPECT_EQ(box.module, resources_);
            EXPECT_EQ(box.messageId, row.second);
            EXPECT_EQ(box.flags, group.icon);
            EXPECT_EQ(box.caption, group.appTitle ? appTitle_ : caption13000_);
            std::vector<std::string> expected;
            for (const char *arg = group.args; *arg; ++arg)
                expected.push_back(ExpectedArg(*arg, code));
            EXPECT_EQ(box.args, expected);
            EXPECT_FALSE(OSErrorIsErrorPending());
            // With retry, through the default presenter the callback swaps.
            PresentedBoxes().clear();
            SetCallbackSwapsPresenter(true);
            MakePendingError(code);
            UIHandleErrorRetry(nullptr);
            SetCallbackSwapsPresenter(false);
            ASSERT_EQ(PresentedBoxes().size(), 1u);
            EXPECT_EQ(PresentedBoxes()[0].flags, MB_RETRYCANCEL | group.icon);
            ++rows;
        }
    }
    EXPECT_EQ(rows, g_errorMapCount);
    DestroyWindow(window);
}

TEST_F(ErrorMap, SilentCodesShowNothingAndCodesPastTheTableShowTheirNumber)
{
    for (DWORD code : kSilent) {
        ResetErrorRecorders();
        MakePendingError(code);
        EXPECT_EQ(UIHandleErrorFunc(nullptr, 0, RecordingPresenter), IDCANCEL) << code;
        EXPECT_TRUE(PresentedBoxes().empty()) << code;
        EXPECT_FALSE(OSErrorIsErrorPending()) << code;
    }
    for (DWORD code : {129u, 1000u, 0x7FFFFFFFu}) {
        ResetErrorRecorders();
        SetPresenterArguments("s");
        MakePendingError(code);
        UIHandleErrorFunc(nullptr, 0, RecordingPresenter);
        ASSERT_EQ(PresentedBoxes().size(), 1u);
        EXPECT_EQ(PresentedBoxes()[0].messageId, 11000u);
        EXPECT_EQ(PresentedBoxes()[0].flags, 0x10u);
        EXPECT_EQ(PresentedBoxes()[0].args[0], "ErrorNo (" + std::to_string(static_cast<int>(code)) + ")");
    }
}

// Rules of their own, each with the fields that decide it.
TEST_F(ErrorMap, CodesWithRulesOfTheirOwn)
{
    struct Case {
        const char *name;
        DWORD code, osError, itemValue, offerClose;
        const char *kinds;
        UINT messageId, flags;
    } cases[] = {
        {"system error 4", RV_OSError, 4, 0, 0, "s", 11009, 0x40},
        {"system error 32", RV_OSError, 32, 0, 0, "s", 10104, 0x10},
        {"system error 5", RV_OSError, 5, 0, 0, "ss", 11010, 0x10},
        {"launch code 2", RV_ExecuteError, 0, 2, 0, "s", 10012, 0x40},
        {"launch code 31", RV_ExecuteError, 0, 31, 0, "s", 10041, 0x40},
        {"launch code without text", RV_ExecuteError, 0, 500, 0, "s", 10010, 0x40},
        {"data service report", RV_QuireAPI, 0, 0, 0, "su", 52007, 0x40},
        {"data service question", RV_QuireAPI, 0, 0, 1, "su", 52053, 0x114},
    };
    for (const Case &c : cases) {
        ResetErrorRecorders();
        SetPresenterArguments(c.kinds);
        ErrorContext *ctx = MakePendingError(c.code);
        lstrcpyA(ctx->itemText, "C:\\run.exe");
        lstrcpyA(ctx->detailText, "backend");
        ctx->detail1 = 77;
        ctx->osError = c.osError;
        ctx->itemValue = c.itemValue;
        ctx->offerClose = c.offerClose;
        UIHandleErrorFunc(nullptr, 0, RecordingPresenter);
        ASSERT_EQ(PresentedBoxes().size(), 1u) << c.name;
        EXPECT_EQ(PresentedBoxes()[0].messageId, c.messageId) << c.name;
        EXPECT_EQ(PresentedBoxes()[0].flags, c.flags) << c.name;
        if (c.code == RV_QuireAPI) {
            EXPECT_EQ(PresentedBoxes()[0].args, (std::vector<std::string>{"backend", "77"}));
        } else {
            EXPECT_EQ(PresentedBoxes()[0].args.back(), "C:\\run.exe") << c.name;
        }
    }
}

// Each message's directives, in order, take the kinds of argument its row
// passes: a text for %s, a number for the numeric ones. "%%" takes none.
namespace {

std::string Directives(const std::string &text)
{
    std::string kinds;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%')
            continue;
        size_t j = i + 1;
        if (j < text.size() && text[j] == '%') {
            i = j;
            continue;
        }
        while (j < text.size() && strchr("-#0123456789.hl", text[j]))
            ++j;
        char conversion = j < text.size() ? text[j] : '?';
        kinds += conversion == 's' ? 's' : strchr("diuxXc", conversion) ? 'u' : '?';
        i = j;
    }
    return kinds;
}

std::string RowKinds(const ErrorMapRow &row)
{
    std::string kinds;
    for (ErrorArg arg : row.args)
        if (arg != EA_None)
            kinds += (arg == EA_Detail1 || arg == EA_ItemValue) ? 'u' : 's';
    return kinds;
}

}  // namespace

TEST(ErrorTexts, DirectivesMatchTheArgumentsInBothLanguages)
{
    std::vector<std::pair<UINT, std::string>> messages;
    for (size_t i = 0; i < g_errorMapCount; ++i)
        messages.push_back({g_errorMap[i].messageId, RowKinds(g_errorMap[i])});
    for (size_t i = 0; i < g_specialMessageCount; ++i)
        messages.push_back({g_specialMessages[i].messageId, RowKinds(g_specialMessages[i])});
    messages.push_back({g_errorDefaultRow.messageId, RowKinds(g_errorDefaultRow)});
    for (UINT id = MSG_EXECUTE_BASE; id <= MSG_EXECUTE_LAST; ++id)
        messages.push_back({id, "s"});
    messages.push_back({53000, ""});
    for (UINT id = 53001; id <= 53007; ++id)
        messages.push_back({id, "s"});
    for (const char *name : {"KE1C30EN.DLL", "KE1C30DE.DLL"}) {
        HMODULE library = LoadLibraryExA((ProgramFolder() + name).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(library, nullptr) << name;
        for (const auto &message : messages) {
            std::string text = Text(library, message.first);
            EXPECT_FALSE(text.empty()) << name << " lacks " << message.first;
            EXPECT_EQ(Directives(text), message.second) << name << " " << message.first << ": " << text;
        }
        for (UINT id : {13000u, 13060u})
            EXPECT_FALSE(Text(library, id).empty()) << name << " lacks " << id;
        FreeLibrary(library);
    }
}
