// Starting other programs: the profile's path cut to the program, the
// platform's real launch results, and the file dialog that asks the user
// where a missing program lies, driven by the test.
#include <string>
#include <vector>
#include "import_patch.h"
#include "message_box_driver.h"
#include "qz_test.h"

namespace {

const char kSection[] = "Tarvo Applications";
const char kProfile[] = "TARVO.INI";
const char kKey[] = "QzTestProgram";

std::vector<std::string> g_launched;
HINSTANCE WINAPI RecordLaunch(HWND, const char *, const char *file, const char *, const char *, int)
{
    g_launched.push_back(file);
    return reinterpret_cast<HINSTANCE>(42);
}

// The text that launch failure `number` shows for `path`.
std::string LaunchFailureText(DWORD number, const std::string &path)
{
    char pattern[512] = {}, text[1024] = {};
    if (!LoadStringA(ResourceGetHandle(), 10010 + number, pattern, sizeof pattern))
        LoadStringA(ResourceGetHandle(), 10010, pattern, sizeof pattern);
    wsprintfA(text, pattern, path.c_str());
    std::string shown = text;
    size_t tilde = shown.find('~');
    if (tilde != std::string::npos)
        shown[tilde] = ' ';
    return shown;
}

class Launch : public ErrorStateTest {
protected:
    void TearDown() override
    {
        WritePrivateProfileStringA(kSection, kKey, nullptr, kProfile);
        DeleteFileA(noAssociation_.c_str());
        ErrorStateTest::TearDown();
    }
    // A file that exists and that no program is associated with.
    const char *UnassociatedFile()
    {
        char folder[MAX_PATH];
        GetTempPathA(MAX_PATH, folder);
        noAssociation_ = std::string(folder) + "qz-no-association.qzx";
        HANDLE file = CreateFileA(noAssociation_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  0, nullptr);
        CloseHandle(file);
        return noAssociation_.c_str();
    }
    std::string noAssociation_;
};

TEST_F(Launch, CutsTheArgumentsOffTheProfilePath)
{
    ImportPatch patch(LibraryModule(), "shell32.dll", "ShellExecuteA",
                      reinterpret_cast<const void *>(RecordLaunch));
    ASSERT_TRUE(patch.Applied());
    struct Case {
        const char *stored;  // null: no entry
        const char *fallback;
        const char *launched;
    } const cases[] = {
        {"C:\\App\\run.exe -x", "", "C:\\App\\run.exe"},
        {"C:\\Program Files\\run.exe", "", "C:\\Program Files\\run.exe"},
        {"C:\\Program Files\\App\\run.exe -x -y", "", "C:\\Program Files\\App\\run.exe"},
        {"run.exe -x", "", "run.exe"},
        {"C:\\a b\\c d.exe", "", "C:\\a b\\c"},
        {"C:\\App\\run.exe", "", "C:\\App\\run.exe"},
        {nullptr, "D:\\Tools\\default.exe /s", "D:\\Tools\\default.exe"},
        {nullptr, "", ""},
    };
    for (const Case &c : cases) {
        WritePrivateProfileStringA(kSection, kKey, c.stored, kProfile);
        g_launched.clear();
        char fallback[MAX_PATH];
        lstrcpyA(fallback, c.fallback);
        EXPECT_TRUE(TarvoLaunch(nullptr, kKey, fallback, SW_HIDE));
        ASSERT_EQ(1u, g_launched.size());
        EXPECT_EQ(c.launched, g_launched[0]) << (c.stored ? c.stored : c.fallback);
    }
}

TEST_F(Launch, ProgramWithoutAssociationPassesInSilence)
{
    MessageBoxDriver boxes;
    char path[MAX_PATH];
    lstrcpyA(path, UnassociatedFile());
    EXPECT_TRUE(TarvoLaunch(nullptr, kKey, path, SW_HIDE));
    EXPECT_TRUE(boxes.Seen().empty());
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());

    // The custom launch tells the user of every failure, then carries on.
    boxes.Expect(LaunchFailureText(SE_ERR_NOASSOC, path), MB_OK | MB_ICONASTERISK, IDOK);
    EXPECT_TRUE(CustomLaunch(nullptr, path, SW_HIDE, nullptr));
}

TEST_F(Launch, MissingProgramAsksTheUserAndACancelStillTells)
{
    const std::string missing = ProgramFolder() + "qz-missing-program.exe";
    MessageBoxDriver boxes;
    int dialogs = 0;
    std::vector<std::string> types;  // the file-type list as the user reads it
    boxes.OnDialog([&](HWND dialog) {
        ++dialogs;
        HWND list = GetDlgItem(dialog, cmb1);
        types.clear();
        for (LRESULT i = 0; i < SendMessageA(list, CB_GETCOUNT, 0, 0); ++i) {
            char entry[256] = {};
            SendMessageA(list, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(entry));
            types.push_back(entry);
        }
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    char description[256] = {};
    LoadStringA(ResourceGetHandle(), 30110, description, sizeof description);
    boxes.Expect(LaunchFailureText(SE_ERR_FNF, missing), MB_OK | MB_ICONASTERISK, IDOK);
    char path[MAX_PATH];
    lstrcpyA(path, missing.c_str());
    EXPECT_FALSE(TarvoLaunch(nullptr, kKey, path, SW_HIDE));
    EXPECT_EQ(1, dialogs);
    EXPECT_EQ(std::vector<std::string>{description}, types);
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue()) << "the error was shown and cleared";

    // The custom launch tells first, then asks.
    boxes.Expect(LaunchFailureText(SE_ERR_FNF, missing), MB_OK | MB_ICONASTERISK, IDOK);
    EXPECT_FALSE(CustomLaunch(nullptr, path, SW_HIDE, "-x"));
    EXPECT_EQ(2, dialogs);

    // The program the user finds is started, and nothing more is told.
    const std::string found = ProgramFolder() + "attach_probe.exe";
    boxes.OnDialog([&found](HWND dialog) {
        SetDlgItemTextA(dialog, cmb13, found.c_str());  // the file name box
        PostMessageA(dialog, WM_COMMAND, IDOK, 0);
    });
    const size_t told = boxes.Seen().size();
    lstrcpyA(path, missing.c_str());
    EXPECT_TRUE(TarvoLaunch(nullptr, kKey, path, SW_HIDE));
    EXPECT_EQ(told, boxes.Seen().size());
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(Launch, OverlongAndOddPathsAreRefusedWithoutHarm)
{
    MessageBoxDriver boxes;
    boxes.AnswerOthers(IDOK, false);
    boxes.OnDialog([](HWND dialog) { PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0); });
    std::string longPath(1000, 'x');
    CustomLaunch(nullptr, &longPath[0], SW_HIDE, nullptr);
    char odd[] = "C:\\no such\\<|>?*.exe";
    CustomLaunch(nullptr, odd, SW_HIDE, nullptr);
    EXPECT_EQ(std::string(1000, 'x'), longPath) << "the caller's path is left alone";
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

} // namespace
