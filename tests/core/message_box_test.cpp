// Message boxes as the user sees them, answered by the message-box driver;
// the fallbacks for a system short of memory, watched by patching the
// library's box calls.
#include <string>
#include <vector>
#include "help_engine.h"
#include "import_patch.h"
#include "message_box_driver.h"
#include "qz_test.h"

namespace {

const UINT kSaved = 60001, kReordered = 60002, kJoined = 60003, kPopup = 60004, kMissing = 59999;

HMODULE TestTexts()
{
    static HMODULE texts = LoadLibraryA("KE1C30QA.DLL");
    return texts;
}

std::string ResourceText(UINT id)
{
    char text[1024] = {};
    LoadStringA(ResourceGetHandle(), id, text, sizeof text);
    return text;
}

HWND MakeVisibleWindow()
{
    return CreateWindowExA(0, "STATIC", "host", WS_POPUP | WS_VISIBLE, 0, 0, 40, 40, nullptr,
                           nullptr, nullptr, nullptr);
}

class MessageBoxes : public ErrorStateTest {};

TEST_F(MessageBoxes, TextComesFromTheResourceFilledInAndTheBoxAnswers)
{
    ASSERT_NE(nullptr, TestTexts());
    HWND host = MakeVisibleWindow();
    MessageBoxDriver boxes;
    boxes.Expect("Saving diary.kel failed after 3 tries.", MB_RETRYCANCEL | MB_ICONEXCLAMATION,
                 IDRETRY, "Caption");
    EXPECT_EQ(IDRETRY, OSMessage(host, TestTexts(), "Caption", kSaved,
                                 MB_RETRYCANCEL | MB_ICONEXCLAMATION, "diary.kel", 3));
    boxes.Expect("Tuesday is missing from week 12.", MB_YESNO | MB_ICONQUESTION, IDNO, "Caption");
    EXPECT_EQ(IDNO, OSMessage(nullptr, TestTexts(), "Caption", kReordered,
                              MB_YESNO | MB_ICONQUESTION, "week 12", "Tuesday"));
    ASSERT_EQ(2u, boxes.Seen().size());
    EXPECT_EQ(host, boxes.Seen()[0].owner);
    EXPECT_EQ(0, boxes.Seen()[0].disabledThreadWindows);
    // Without a parent the box is task-modal: the thread's windows wait.
    EXPECT_EQ(nullptr, boxes.Seen()[1].owner);
    EXPECT_EQ(1, boxes.Seen()[1].disabledThreadWindows);
    EXPECT_FALSE(boxes.Seen()[1].topmost);
    EXPECT_FALSE(OSErrorIsErrorPending());
    DestroyWindow(host);
}

TEST_F(MessageBoxes, HelpVariantAddsTheHelpButtonOnlyWithARecord)
{
    MessageHelpRecord help = {TestTexts(), kPopup, 0, 17};
    MessageBoxDriver boxes;
    boxes.Expect("Saving a failed after 1 tries.", MB_OKCANCEL | MB_HELP | MB_ICONASTERISK, IDOK);
    EXPECT_EQ(IDOK, OSMessageWithHelp(&help, nullptr, TestTexts(), "Caption", kSaved,
                                      MB_OKCANCEL | MB_ICONASTERISK, "a", 1));
    boxes.Expect("Saving b failed after 2 tries.", MB_OK | MB_ICONHAND, IDOK);
    EXPECT_EQ(IDOK, OSMessageWithHelp(nullptr, nullptr, TestTexts(), "Caption", kSaved,
                                      MB_OK | MB_ICONHAND, "b", 2));
}

// Presses F1 in each box as it comes up, before the driver answers it: the
// hook sees the box activate before it is filled in, so it posts a note to
// a window of its own, which the box's message loop delivers first.
const UINT kPressHelp = WM_APP + 1;
HHOOK s_helpHook;
HWND s_helpPresser;

LRESULT CALLBACK HelpPresserProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kPressHelp) {
        HWND box = reinterpret_cast<HWND>(wParam);
        HELPINFO info = {};
        info.cbSize = sizeof info;
        info.iContextType = HELPINFO_WINDOW;
        info.hItemHandle = box;
        SendMessageA(box, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

LRESULT CALLBACK PressHelp(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HCBT_ACTIVATE && wParam)
        PostMessageA(s_helpPresser, kPressHelp, wParam, 0);
    return CallNextHookEx(s_helpHook, code, wParam, lParam);
}

class HelpPresser {
public:
    HelpPresser()
    {
        WNDCLASSA wc = {};
        wc.lpfnWndProc = HelpPresserProc;
        wc.hInstance = GetModuleHandleA(nullptr);
        wc.lpszClassName = "QzHelpPresser";
        RegisterClassA(&wc);
        s_helpPresser = CreateWindowExA(0, wc.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE,
                                        nullptr, wc.hInstance, nullptr);
        s_helpHook = SetWindowsHookExA(WH_CBT, PressHelp, nullptr, GetCurrentThreadId());
    }
    ~HelpPresser()
    {
        UnhookWindowsHookEx(s_helpHook);
        DestroyWindow(s_helpPresser);
    }
    HelpPresser(const HelpPresser &) = delete;
    HelpPresser &operator=(const HelpPresser &) = delete;
};

TEST_F(MessageBoxes, HelpButtonOpensTheRecordsTopic)
{
    HelpEngine engine;
    struct Row {
        MessageHelpRecord help;
        size_t opened;
        std::string file;
        ResultCode recorded;
    };
    const Row rows[] = {
        {{TestTexts(), kPopup, 0, 17}, 1, LanguageFile() + ">Popup", RV_Success},
        {{TestTexts(), kPopup, 1, 18}, 1, LibraryFolder() + "admin\\KelAdmin.hlp>Popup", RV_Success},
        {{nullptr, kPopup, 0, 19}, 1, LanguageFile(), RV_Success},
        {{TestTexts(), kMissing, 0, 20}, 0, "", RV_StringNonExistant},
    };
    HelpPresser presser;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.help.topic);
        OSErrorClearError();
        EngineCalls().clear();
        MessageBoxDriver boxes;
        boxes.Expect("Saving c failed after 3 tries.", MB_OK | MB_HELP, IDOK);
        EXPECT_EQ(IDOK, OSMessageWithHelp(&row.help, nullptr, TestTexts(), "Caption", kSaved, MB_OK,
                                          "c", 3));
        ASSERT_EQ(row.opened, EngineCalls().size());
        if (row.opened) {
            EXPECT_EQ(row.file, EngineCalls()[0].file);
            EXPECT_EQ(static_cast<UINT>(HELP_CONTEXT), EngineCalls()[0].command);
            EXPECT_EQ(static_cast<LONG>(row.help.topic), EngineCalls()[0].data);
        }
        EXPECT_EQ(row.recorded, OSErrorGetErrorValue());
    }
    // The engine refuses: a user error.
    OSErrorClearError();
    SetEngineAnswer(0);
    {
        MessageHelpRecord help = {nullptr, 0, 0, 21};
        MessageBoxDriver boxes;
        boxes.Expect("Saving d failed after 4 tries.", MB_OK | MB_HELP, IDOK);
        OSMessageWithHelp(&help, nullptr, TestTexts(), "Caption", kSaved, MB_OK, "d", 4);
    }
    EXPECT_EQ(RV_UserError, OSErrorGetErrorValue());
}

TEST_F(MessageBoxes, BadInputIsRecordedAndShowsNothing)
{
    MessageBoxDriver boxes;   // any box is a failure
    EXPECT_EQ(0, OSMessage(nullptr, TestTexts(), "Caption", kMissing, MB_OK));
    EXPECT_EQ(RV_StringNonExistant, OSErrorGetErrorValue());
    EXPECT_EQ(kMissing, OSErrorGetErrorInfo()->itemValue);
    OSErrorClearError();
    EXPECT_EQ(0, OSMessageWithHelp(nullptr, nullptr, TestTexts(), "Caption", kMissing, MB_OK));
    EXPECT_EQ(RV_StringNonExistant, OSErrorGetErrorValue());
    // A parent destroyed before its box shows.
    HWND gone = MakeVisibleWindow();
    DestroyWindow(gone);
    for (int withHelp = 0; withHelp < 2; ++withHelp) {
        OSErrorClearError();
        int answer = withHelp ? OSMessageWithHelp(nullptr, gone, TestTexts(), "Caption", kSaved,
                                                  MB_OK, "x", 1)
                              : OSMessage(gone, TestTexts(), "Caption", kSaved, MB_OK, "x", 1);
        EXPECT_EQ(0, answer);
        EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    }
    EXPECT_TRUE(boxes.Seen().empty());
}

// The box calls, refused a given number of times and recorded.
struct BoxCall {
    HWND parent;
    std::string text;
    UINT style;
};
std::vector<BoxCall> s_boxCalls;
std::vector<UINT> s_beeps;
int s_refusals;

int WINAPI RecordBox(HWND parent, const char *text, const char *, UINT style)
{
    s_boxCalls.push_back({parent, text ? text : "", style});
    return s_refusals-- > 0 ? 0 : IDOK;
}

int WINAPI RecordIndirectBox(const MSGBOXPARAMSA *params)
{
    EXPECT_EQ(1024u, params->dwLanguageId);
    EXPECT_NE(nullptr, params->lpfnMsgBoxCallback);
    return RecordBox(params->hwndOwner, params->lpszText, params->lpszCaption, params->dwStyle);
}

BOOL WINAPI RecordBeep(UINT style)
{
    s_beeps.push_back(style);
    return TRUE;
}

TEST_F(MessageBoxes, AnOversizeTextIsCutByTheFormatter)
{
    ImportPatch plain(LibraryModule(), "user32.dll", "MessageBoxA",
                      reinterpret_cast<const void *>(RecordBox));
    ASSERT_TRUE(plain.Applied());
    s_boxCalls.clear();
    s_refusals = 0;
    std::string first(700, 'a'), second(700, 'b');
    EXPECT_EQ(IDOK, OSMessage(nullptr, TestTexts(), "Caption", kJoined, MB_OK, first.c_str(),
                              second.c_str()));
    ASSERT_EQ(1u, s_boxCalls.size());
    // The formatter stops at 1,023 characters and its terminator.
    EXPECT_EQ(first + std::string(323, 'b'), s_boxCalls[0].text);
}

TEST_F(MessageBoxes, WhenNoBoxCanBeShownTheFallbacksFollow)
{
    ImportPatch plain(LibraryModule(), "user32.dll", "MessageBoxA",
                      reinterpret_cast<const void *>(RecordBox));
    ImportPatch indirect(LibraryModule(), "user32.dll", "MessageBoxIndirectA",
                         reinterpret_cast<const void *>(RecordIndirectBox));
    ImportPatch beep(LibraryModule(), "user32.dll", "MessageBeep",
                     reinterpret_cast<const void *>(RecordBeep));
    ASSERT_TRUE(plain.Applied() && indirect.Applied() && beep.Applied());
    const std::string text = "Saving f failed after 5 tries.";
    const std::string memory = ResourceText(10003);
    const UINT style = MB_YESNO | MB_ICONEXCLAMATION;
    struct Row {
        int refusals;
        int answer;
        std::vector<BoxCall> calls;
    };
    const Row rows[] = {
        {0, IDOK, {{nullptr, text, style | MB_TASKMODAL}}},
        {1, IDOK, {{nullptr, text, style | MB_TASKMODAL}, {nullptr, text, style | MB_SYSTEMMODAL}}},
        {2, IDCANCEL,
         {{nullptr, text, style | MB_TASKMODAL},
          {nullptr, text, style | MB_SYSTEMMODAL},
          {nullptr, memory, MB_SYSTEMMODAL | MB_ICONHAND}}},
    };
    const MessageHelpRecord help = {};
    for (int withHelp = 0; withHelp < 2; ++withHelp) {
        for (const Row &row : rows) {
            SCOPED_TRACE(row.refusals);
            s_boxCalls.clear();
            s_beeps.clear();
            s_refusals = row.refusals;
            int answer = withHelp ? OSMessageWithHelp(&help, nullptr, TestTexts(), "Caption", kSaved,
                                                      style, "f", 5)
                                  : OSMessage(nullptr, TestTexts(), "Caption", kSaved, style, "f", 5);
            EXPECT_EQ(row.answer, answer);
            ASSERT_EQ(row.calls.size(), s_boxCalls.size());
            for (size_t i = 0; i < row.calls.size(); ++i) {
                UINT helpButton = withHelp && i < 2 ? MB_HELP : 0;
                EXPECT_EQ(row.calls[i].text, s_boxCalls[i].text) << i;
                EXPECT_EQ(row.calls[i].style | helpButton, s_boxCalls[i].style) << i;
            }
            EXPECT_EQ(std::vector<UINT>{style | (withHelp ? MB_HELP : 0)}, s_beeps);
        }
    }
}

}  // namespace
