// Help as a host asks for it, read from the help engine's stand-in.
#include <string>
#include <vector>
#include "qz_test.h"
#include "help_engine.h"
#include "registry_scratch.h"

namespace {

HWND MakeWindow(HWND parent = nullptr)
{
    return CreateWindowExA(0, "STATIC", "help", parent ? WS_CHILD : WS_POPUP, 0, 0, 10, 10, parent,
                           nullptr, nullptr, nullptr);
}

class Help : public ErrorStateTest {
protected:
    HelpEngine engine;
};

TEST_F(Help, FileNamesFollowTheLanguageAndTheAdministrator)
{
    HWND window = MakeWindow();
    struct Row {
        bool admin;
        UINT command;
        DWORD data;
        const char *windowName;
        std::string file;
    };
    const Row rows[] = {
        {false, HELP_CONTEXT, 42, nullptr, LanguageFile()},
        {false, HELP_FINDER, 0, "popup", LanguageFile() + ">popup"},
        {true, HELP_CONTEXT, 7, nullptr, LibraryFolder() + "admin\\KelAdmin.hlp"},
        {true, HELP_INDEX, 0, "main", LibraryFolder() + "admin\\KelAdmin.hlp>main"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.file);
        EngineCalls().clear();
        BOOL result = row.admin ? ResourceAdminHelp(window, row.command, row.data, row.windowName)
                                : ResourceHelp(window, row.command, row.data, row.windowName);
        EXPECT_EQ(1, result);
        ASSERT_EQ(1u, EngineCalls().size());
        EXPECT_EQ(row.file, EngineCalls()[0].file);
        EXPECT_EQ(row.command, EngineCalls()[0].command);
        EXPECT_EQ(static_cast<LONG>(row.data), EngineCalls()[0].data);
        EXPECT_EQ(window, EngineCalls()[0].window);
    }
    // The engine's answer is the result.
    SetEngineAnswer(0);
    EXPECT_EQ(0, ResourceHelp(window, HELP_CONTEXT, 1, nullptr));
    EXPECT_FALSE(OSErrorIsErrorPending());
    DestroyWindow(window);
}

TEST_F(Help, TheLanguageSettingNamesTheFile)
{
    // The machine's language value, as the language is read for each call.
    SavedValue language(HKEY_LOCAL_MACHINE, "Software\\Tarvo\\Kelendrix\\98.0\\Languages", "Default");
    language.SetText("fr");
    EXPECT_EQ(1, ResourceHelp(nullptr, HELP_CONTEXT, 3, nullptr));
    ASSERT_EQ(1u, EngineCalls().size());
    EXPECT_EQ(LibraryFolder() + "tv1c50fr.hlp", EngineCalls()[0].file);
}

TEST_F(Help, AnOverlongWindowNameIsRefused)
{
    std::string name(300, 'w');
    EXPECT_EQ(0, ResourceHelp(nullptr, HELP_CONTEXT, 3, name.c_str()));
    EXPECT_EQ(RV_BufferTooSmall, OSErrorGetErrorValue());
    EXPECT_TRUE(EngineCalls().empty());
}

using HelperCallsProc = LONG(WINAPI *)(LONG index, char *file, HWND *window);

// The helper library is looked for on each call until it is found, then kept.
// It lies outside the search order until the test loads it.
TEST_F(Help, HelperLibraryIsSkippedWhenAbsentAndToldWhenPresent)
{
    HWND window = MakeWindow();
    ASSERT_EQ(nullptr, GetModuleHandleA("tvhlpn31.dll"));
    EXPECT_EQ(1, ResourceHelp(window, HELP_CONTEXT, 5, nullptr));
    EXPECT_EQ(1u, EngineCalls().size()) << "help works without the helper";
    EXPECT_EQ(1, ResourceHelp(window, HELP_CONTEXT, static_cast<DWORD>(-1), nullptr));
    EXPECT_EQ(1u, EngineCalls().size()) << "-1 opens nothing";

    HMODULE helper = LoadLibraryA((ProgramFolder() + "helper\\tvhlpn31.dll").c_str());
    ASSERT_NE(nullptr, helper);
    auto helperCalls = reinterpret_cast<HelperCallsProc>(
        reinterpret_cast<void *>(GetProcAddress(helper, "HelperCalls")));
    ASSERT_NE(nullptr, helperCalls);
    EngineCalls().clear();
    struct Row {
        bool admin;
        DWORD data;
        bool opens;
        std::string file;
    };
    const Row rows[] = {
        {false, static_cast<DWORD>(-1), false, LanguageFile()},
        {false, static_cast<DWORD>(-2), false, LanguageFile()},
        {true, static_cast<DWORD>(-1), false, LibraryFolder() + "admin\\KelAdmin.hlp"},
        {false, 9, true, LanguageFile()},
    };
    LONG index = 0;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.data);
        size_t opened = EngineCalls().size();
        EXPECT_EQ(1, row.admin ? ResourceAdminHelp(window, HELP_CONTEXT, row.data, nullptr)
                               : ResourceHelp(window, HELP_CONTEXT, row.data, nullptr));
        char file[MAX_PATH] = {};
        HWND told = nullptr;
        ASSERT_EQ(index + 1, helperCalls(index, file, &told));
        EXPECT_EQ(row.file, file);
        EXPECT_EQ(window, told);
        EXPECT_EQ(opened + (row.opens ? 1 : 0), EngineCalls().size());
        ++index;
    }
    // The library stays loaded: the help family keeps its entry point.
    DestroyWindow(window);
}

// A window tree whose windows answer WM_KEL_HELP from a table.
struct HelpAnswer {
    LRESULT context;
    HMODULE instance;
    DWORD stringId;
    DWORD admin;
};

LRESULT CALLBACK AnsweringProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    static const UINT helpMessage = RegisterWindowMessageA("WM_KEL_HELP");
    if (message == helpMessage) {
        const HelpAnswer *answer =
            reinterpret_cast<const HelpAnswer *>(GetWindowLongPtrA(window, GWLP_USERDATA));
        HelpRequest *request = reinterpret_cast<HelpRequest *>(lParam);
        if (!answer)
            return 0;
        if (answer->instance)
            request->Instance = answer->instance;
        if (answer->stringId)
            request->StringId = answer->stringId;
        if (answer->admin)
            request->Admin = answer->admin;
        return answer->context;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

HWND MakeAnsweringWindow(HWND parent, const HelpAnswer *answer)
{
    WNDCLASSA wc = {};
    wc.lpfnWndProc = AnsweringProc;
    wc.hInstance = GetModuleHandleA(nullptr);
    wc.lpszClassName = "QzHelpAnswering";
    RegisterClassA(&wc);
    HWND window = CreateWindowExA(0, wc.lpszClassName, "", parent ? WS_CHILD : WS_POPUP, 0, 0, 10,
                                  10, parent, nullptr, wc.hInstance, nullptr);
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(answer));
    return window;
}

TEST_F(Help, OSHelpAsksTheWindowThenItsParentsAndOpensForTheTopWindow)
{
    HMODULE resources = ResourceGetHandle();
    char title[64] = {};
    LoadStringA(resources, 1, title, sizeof title);
    const HelpAnswer none = {};
    struct Row {
        const char *name;
        HelpAnswer top, middle, focus;
        UINT command;
        LONG data;
        std::string file;
    };
    const Row rows[] = {
        {"nobody answers: the contents", none, none, none, HELP_FINDER, 0, LanguageFile()},
        {"the focus answers", none, none, {12, nullptr, 0, 0}, HELP_CONTEXT, 12, LanguageFile()},
        {"a parent answers with a window name", none, {34, resources, 1, 0}, none, HELP_CONTEXT, 34,
         LanguageFile() + ">" + title},
        {"the first answer wins", {99, nullptr, 0, 0}, {56, nullptr, 0, 0}, none, HELP_CONTEXT, 56,
         LanguageFile()},
        {"administrator's context", {78, nullptr, 0, 1}, none, none, HELP_CONTEXT, 78,
         LibraryFolder() + "admin\\KelAdmin.hlp"},
        {"administrator's index keeps the window name", none, none, {0, resources, 1, 1},
         HELP_INDEX, 0, LibraryFolder() + "admin\\KelAdmin.hlp>" + title},
        {"the contents take no window name", none, none, {0, resources, 1, 0}, HELP_FINDER, 0,
         LanguageFile()},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        HWND top = MakeAnsweringWindow(nullptr, &row.top);
        HWND middle = MakeAnsweringWindow(top, &row.middle);
        HWND focus = MakeAnsweringWindow(middle, &row.focus);
        EngineCalls().clear();
        EXPECT_EQ(1, OSHelp(focus));
        ASSERT_EQ(1u, EngineCalls().size());
        EXPECT_EQ(top, EngineCalls()[0].window);
        EXPECT_EQ(row.command, EngineCalls()[0].command);
        EXPECT_EQ(row.data, EngineCalls()[0].data);
        EXPECT_EQ(row.file, EngineCalls()[0].file);
        EXPECT_FALSE(OSErrorIsErrorPending());
        DestroyWindow(top);
    }
}

TEST_F(Help, OSHelpFailuresAreRecorded)
{
    const HelpAnswer missingName = {5, ResourceGetHandle(), 4999, 0};
    HWND window = MakeAnsweringWindow(nullptr, &missingName);
    EXPECT_EQ(0, OSHelp(window));
    EXPECT_EQ(RV_StringNonExistant, OSErrorGetErrorValue());
    EXPECT_EQ(4999u, OSErrorGetErrorInfo()->itemValue);
    EXPECT_TRUE(EngineCalls().empty());
    DestroyWindow(window);

    OSErrorClearError();
    const HelpAnswer context = {5, nullptr, 0, 0};
    window = MakeAnsweringWindow(nullptr, &context);
    SetEngineAnswer(0);
    EXPECT_EQ(0, OSHelp(window));
    EXPECT_EQ(RV_UserError, OSErrorGetErrorValue()) << "the engine refused";
    DestroyWindow(window);

    // No window, or one already destroyed.
    EngineCalls().clear();
    for (HWND bad : {static_cast<HWND>(nullptr), window}) {
        OSErrorClearError();
        EXPECT_EQ(0, OSHelp(bad));
        EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    }
    EXPECT_TRUE(EngineCalls().empty());
}

}  // namespace
