// Help as a host asks for it, read from the help engine's stand-in.
#include <string>
#include "help_engine.h"
#include "qz_test.h"
#include "registry_scratch.h"

namespace {

const DWORD kOnlyRegister1 = static_cast<DWORD>(-1), kOnlyRegister2 = static_cast<DWORD>(-2);

class Help : public ErrorStateTest {
protected:
    HelpEngine engine;
    const std::string admin = LibraryFolder() + "admin\\KelAdmin.hlp";
};

using HelperCallsProc = LONG(WINAPI *)(LONG index, char *file, HWND *window);

// The rows run twice: without the helper library, then with it loaded.
// -1 and -2 open nothing; the helper is told of every call once it is there.
TEST_F(Help, FilesByLanguageAndAdministratorWithAndWithoutTheHelper)
{
    HWND window = CreateWindowExA(0, "STATIC", "help", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    const struct {
        bool admin;
        UINT command;
        DWORD data;
        const char *windowName;
        std::string file;
    } rows[] = {
        {false, HELP_CONTEXT, 42, nullptr, LanguageFile()},
        {false, HELP_FINDER, 0, "popup", LanguageFile() + ">popup"},
        {true, HELP_CONTEXT, 7, nullptr, admin},
        {true, HELP_INDEX, 0, "main", admin + ">main"},
        {false, HELP_CONTEXT, kOnlyRegister1, nullptr, LanguageFile()},
        {true, HELP_CONTEXT, kOnlyRegister2, "main", admin + ">main"},
    };
    ASSERT_EQ(nullptr, GetModuleHandleA("tvhlpn31.dll"));
    HelperCallsProc helperCalls = nullptr;
    for (int pass = 0; pass < 2; ++pass) {
        LONG told = 0;
        for (const auto &row : rows) {
            SCOPED_TRACE(row.file + (pass ? " with the helper" : ""));
            EngineCalls().clear();
            EXPECT_EQ(1, row.admin ? ResourceAdminHelp(window, row.command, row.data, row.windowName)
                                   : ResourceHelp(window, row.command, row.data, row.windowName));
            bool opens = row.data != kOnlyRegister1 && row.data != kOnlyRegister2;
            ASSERT_EQ(opens ? 1u : 0u, EngineCalls().size());
            if (opens) {
                EXPECT_EQ(row.file, EngineCalls()[0].file);
                EXPECT_EQ(row.command, EngineCalls()[0].command);
                EXPECT_EQ(static_cast<LONG>(row.data), EngineCalls()[0].data);
                EXPECT_EQ(window, EngineCalls()[0].window);
            }
            if (helperCalls) {
                char file[MAX_PATH] = {};
                HWND owner = nullptr;
                ASSERT_EQ(told + 1, helperCalls(told, file, &owner));
                ++told;
                EXPECT_EQ(row.file, file);
                EXPECT_EQ(window, owner);
            }
        }
        // The library keeps the helper's entry from now on: it stays loaded.
        HMODULE helper = LoadLibraryA((ProgramFolder() + "helper\\tvhlpn31.dll").c_str());
        ASSERT_NE(nullptr, helper);
        helperCalls = reinterpret_cast<HelperCallsProc>(
            reinterpret_cast<void *>(GetProcAddress(helper, "HelperCalls")));
    }
    SetEngineAnswer(0);
    EXPECT_EQ(0, ResourceHelp(window, HELP_CONTEXT, 1, nullptr)) << "the engine's answer";
    EXPECT_FALSE(OSErrorIsErrorPending());
    DestroyWindow(window);
}

TEST_F(Help, TheLanguageSettingNamesTheFileAndOverlongNamesAreRefused)
{
    SavedValue language(HKEY_LOCAL_MACHINE, "Software\\Tarvo\\Kelendrix\\98.0\\Languages", "Default");
    language.SetText("fr");
    EXPECT_EQ(1, ResourceHelp(nullptr, HELP_CONTEXT, 3, nullptr));
    ASSERT_EQ(1u, EngineCalls().size());
    EXPECT_EQ(LibraryFolder() + "tv1c50fr.hlp", EngineCalls()[0].file);
    EXPECT_EQ(0, ResourceHelp(nullptr, HELP_CONTEXT, 3, std::string(300, 'w').c_str()));
    EXPECT_EQ(RV_BufferTooSmall, OSErrorGetErrorValue());
    EXPECT_EQ(1u, EngineCalls().size());
}

// Windows that answer WM_KEL_HELP from the record in their user data.
struct HelpAnswer {
    LRESULT context;
    HMODULE instance;
    DWORD stringId;
    DWORD admin;
};

LRESULT CALLBACK AnsweringProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    static const UINT helpMessage = RegisterWindowMessageA("WM_KEL_HELP");
    auto answer = reinterpret_cast<const HelpAnswer *>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (message != helpMessage || !answer)
        return DefWindowProcA(window, message, wParam, lParam);
    HelpRequest *request = reinterpret_cast<HelpRequest *>(lParam);
    if (answer->instance)
        *request = {answer->instance, answer->stringId, answer->admin, 0};
    request->Admin |= answer->admin;
    return answer->context;
}

HWND MakeAnsweringWindow(HWND parent, const HelpAnswer *answer)
{
    WNDCLASSA wc = {0, AnsweringProc, 0, 0, GetModuleHandleA(nullptr), 0, 0, 0, 0, "QzHelpAnswer"};
    RegisterClassA(&wc);
    HWND window = CreateWindowExA(0, wc.lpszClassName, "", parent ? WS_CHILD : WS_POPUP, 0, 0, 10,
                                  10, parent, nullptr, wc.hInstance, nullptr);
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(answer));
    return window;
}

TEST_F(Help, OSHelpAsksTheFocusThenItsParentsAndOpensForTheTopWindow)
{
    HMODULE texts = ResourceGetHandle();
    char title[64] = {};
    LoadStringA(texts, 1, title, sizeof title);
    const HelpAnswer none = {};
    const struct {
        HelpAnswer top, middle, focus;
        UINT command;
        LONG data;
        std::string file;
    } rows[] = {
        {none, none, none, HELP_FINDER, 0, LanguageFile()},
        {none, none, {12, nullptr, 0, 0}, HELP_CONTEXT, 12, LanguageFile()},
        {none, {34, texts, 1, 0}, none, HELP_CONTEXT, 34, LanguageFile() + ">" + title},
        {{99, nullptr, 0, 0}, {56, nullptr, 0, 0}, none, HELP_CONTEXT, 56, LanguageFile()},
        {{78, nullptr, 0, 1}, none, none, HELP_CONTEXT, 78, admin},
        {none, none, {0, texts, 1, 1}, HELP_INDEX, 0, admin + ">" + title},
        {none, none, {0, texts, 1, 0}, HELP_FINDER, 0, LanguageFile()},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.file + " " + std::to_string(row.data));
        HWND top = MakeAnsweringWindow(nullptr, &row.top);
        HWND focus = MakeAnsweringWindow(MakeAnsweringWindow(top, &row.middle), &row.focus);
        EngineCalls().clear();
        EXPECT_EQ(1, OSHelp(focus));
        ASSERT_EQ(1u, EngineCalls().size());
        EXPECT_EQ(top, EngineCalls()[0].window);
        EXPECT_EQ(row.command, EngineCalls()[0].command);
        EXPECT_EQ(row.data, EngineCalls()[0].data);
        EXPECT_EQ(row.file, EngineCalls()[0].file);
        DestroyWindow(top);
    }
    EXPECT_FALSE(OSErrorIsErrorPending());
}

TEST_F(Help, OSHelpFailuresAreRecordedAndOpenNothing)
{
    const HelpAnswer missingName = {5, ResourceGetHandle(), 4999, 0}, context = {5, nullptr, 0, 0};
    HWND window = MakeAnsweringWindow(nullptr, &missingName);
    EXPECT_EQ(0, OSHelp(window));
    EXPECT_EQ(RV_StringNonExistant, OSErrorGetErrorValue());
    EXPECT_TRUE(EngineCalls().empty());
    DestroyWindow(window);
    OSErrorClearError();
    window = MakeAnsweringWindow(nullptr, &context);
    SetEngineAnswer(0);
    EXPECT_EQ(0, OSHelp(window));
    EXPECT_EQ(RV_UserError, OSErrorGetErrorValue()) << "the engine refused";
    DestroyWindow(window);
    EngineCalls().clear();
    for (HWND bad : {static_cast<HWND>(nullptr), window}) {   // none, and one destroyed
        OSErrorClearError();
        EXPECT_EQ(0, OSHelp(bad));
        EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    }
    EXPECT_TRUE(EngineCalls().empty());
}

}  // namespace
