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

// Each switch in a child process. Copies of the English library stand under
// the names that an empty or one-letter code builds, for the rows that ask;
// without them the load fails plainly (status 1).
TEST_F(Language, TheSwitchChangesWhatIsLoaded)
{
    const char *const en[] = {"Kelendrix", "2nd", "second"};
    const char *const de[] = {"Kelendrix Terminplaner", "2.", "zweite"};
    const struct {
        const char *arguments;
        bool copy;
        DWORD status;
        const char *language, *library;
        const char *const *texts;
    } cases[] = {
        {"/LEN", false, 0, "EN", "KE1C30EN.DLL", en},
        {"/LDE", false, 0, "DE", "KE1C30DE.DLL", de},
        {"/lde", false, 0, "de", "KE1C30de.DLL", de},
        {"/len /LDE", false, 0, "DE", "KE1C30DE.DLL", de},
        {"/LDEUTSCH", false, 0, "DE", "KE1C30DE.DLL", de},
        {"/L", true, 0, "", "KE1C30.DLL", en},
        {"/l", true, 0, "", "KE1C30.DLL", en},
        {"/L1", true, 0, "1", "KE1C301.DLL", en},
        {"/L", false, 1, nullptr, nullptr, nullptr},
        {"/L1", false, 1, nullptr, nullptr, nullptr},
        {"/LXX", false, 1, nullptr, nullptr, nullptr},
        {"/L..", false, 1, nullptr, nullptr, nullptr},
    };
    const std::string english = ProgramFolder() + "KE1C30EN.DLL";
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.arguments) + (c.copy ? " with a copy" : ""));
        const std::string copy = ProgramFolder() + (c.library ? c.library : "");
        if (c.copy) {
            ASSERT_TRUE(CopyFileA(english.c_str(), copy.c_str(), FALSE));
        }
        ProbeAnswers answers = RunResourceProbe("switch", c.arguments);
        if (c.copy)
            DeleteFileA(copy.c_str());
        ASSERT_EQ(c.status, answers.status);
        if (c.status)
            continue;
        EXPECT_EQ("0", answers.values["error"]);
        EXPECT_EQ(c.language, answers.values["language"]);
        EXPECT_EQ(c.library, answers.values["library"]);
        EXPECT_EQ(c.texts[0], answers.values["title"]);
        EXPECT_EQ(c.texts[1], answers.values["ordinal"]);
        EXPECT_EQ(c.texts[2], answers.values["word"]);
    }
}
