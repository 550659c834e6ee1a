// The language switch and the resource library it picks: in this process
// through the "Languages" key, and in child processes through the command
// line, where the switch decides which library attach loads.
#include <cstring>
#include "probe_answers.h"
#include "registry_scratch.h"

namespace {

const char kLanguagesKey[] = "Software\\Tarvo\\Kelendrix\\98.0\\Languages";

class Language : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        const char *line = GetCommandLineA();
        if (strstr(line, "/L") || strstr(line, "/l"))
            GTEST_SKIP() << "this program's own command line holds a language switch";
    }
};

}  // namespace

// Every value here names a library that exists, since programs starting
// side by side read the same key.
TEST_F(Language, NoSwitchReadsTheDefaultLanguageFromTheLocalMachine)
{
    SavedValue saved(HKEY_LOCAL_MACHINE, kLanguagesKey, "Default");
    const BYTE dword[] = {'D', 'E', 'E', 0};
    struct Case {
        const char *label;
        DWORD type;
        const void *data;
        DWORD size;  // 0 with a null type: no value at all
        const char *expected;
    } cases[] = {
        {"absent", 0, nullptr, 0, "en"},
        {"text", REG_SZ, "DE", 3, "DE"},
        {"lower case kept", REG_SZ, "de", 3, "de"},
        {"longer than two", REG_SZ, "DEU", 4, "DE"},
        {"no terminator", REG_BINARY, "DE", 2, "DE"},
        {"double word", REG_DWORD, dword, 4, "DE"},
        {"no bytes", REG_BINARY, "", 0, "en"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        if (c.type || c.size)
            saved.Set(c.type, c.data, c.size);
        else
            saved.Remove();
        char code[8];
        memset(code, kGuard, sizeof code);
        EXPECT_EQ(1, OSGet2CharacterLanguageString(code));
        EXPECT_STREQ(c.expected, code);
        EXPECT_TRUE(GuardIntact(code, 3, sizeof code));
        char name[32] = {};
        EXPECT_EQ(1, OSBuildResourceString(name));
        EXPECT_EQ(std::string("KE1C30") + c.expected + ".DLL", name);
    }
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    EXPECT_EQ(0, OSBuildResourceString(nullptr));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
}

TEST_F(Language, TheSwitchChangesWhatIsLoaded)
{
    struct Case {
        const char *arguments, *language, *library, *title, *ordinal, *word;
    } cases[] = {
        {"/LEN", "EN", "KE1C30EN.DLL", "Kelendrix", "2nd", "second"},
        {"/LDE", "DE", "KE1C30DE.DLL", "Kelendrix Terminplaner", "2.", "zweite"},
        {"/lde", "de", "KE1C30de.DLL", "Kelendrix Terminplaner", "2.", "zweite"},
        {"/len /LDE", "DE", "KE1C30DE.DLL", "Kelendrix Terminplaner", "2.", "zweite"},
        {"/LDEUTSCH", "DE", "KE1C30DE.DLL", "Kelendrix Terminplaner", "2.", "zweite"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.arguments);
        ProbeAnswers answers = RunResourceProbe("switch", c.arguments);
        ASSERT_EQ(0u, answers.status);
        EXPECT_EQ(c.language, answers.values["language"]);
        EXPECT_EQ(c.library, answers.values["library"]);
        EXPECT_EQ(c.title, answers.values["title"]);
        EXPECT_EQ(c.ordinal, answers.values["ordinal"]);
        EXPECT_EQ(c.word, answers.values["word"]);
    }
}

TEST_F(Language, AnEmptyOrOneLetterSwitchNamesItsLibraryAndRecordsNothing)
{
    // Libraries under the names such switches build, so that the load goes
    // through and the host can ask.
    const std::string english = ProgramFolder() + "KE1C30EN.DLL";
    const struct { const char *arguments, *language, *library; } cases[] = {
        {"/L", "", "KE1C30.DLL"}, {"/L1", "1", "KE1C301.DLL"}, {"/l", "", "KE1C30.DLL"}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments);
        const std::string copy = ProgramFolder() + c.library;
        ASSERT_TRUE(CopyFileA(english.c_str(), copy.c_str(), FALSE));
        ProbeAnswers answers = RunResourceProbe("short", c.arguments);
        DeleteFileA(copy.c_str());
        ASSERT_EQ(0u, answers.status);
        EXPECT_EQ("0", answers.values["error"]);
        EXPECT_EQ(c.language, answers.values["language"]);
        EXPECT_EQ(c.library, answers.values["library"]);
        EXPECT_EQ("Kelendrix", answers.values["title"]);
    }
}

// A library that is missing fails the load plainly (status 1 from the
// probe); one that lacks a string attach needs ends the process with 255
// through the error state.
TEST_F(Language, AttachFailsWithoutAUsableLibrary)
{
    struct Case {
        const char *arguments;
        DWORD status;
    } cases[] = {
        {"/LEN", 0},
        {"/LXX", 1},   // no such library
        {"/L", 1},     // empty code: KE1C30.DLL
        {"/L1", 1},    // one character
        {"/L..", 1},   // not letters
        {"/LZZ", 255}, // lacks string 801
    };
    for (const Case &c : cases)
        EXPECT_EQ(c.status, RunChild(std::string("attach_probe.exe ") + c.arguments)) << c.arguments;
}
