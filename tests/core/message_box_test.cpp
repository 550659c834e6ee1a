// Message boxes answered by the message-box driver; help asked in boxes up,
// nested ones too; the fallbacks for a system short of memory and a text
// that cannot be filled in, watched by patching the library's box calls.
#include <functional>
#include <string>
#include <vector>
#include "failure_seam.h"
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

HWND MakeVisibleWindow()
{
    return CreateWindowExA(0, "STATIC", "host", WS_POPUP | WS_VISIBLE, 0, 0, 40, 40, nullptr,
                           nullptr, nullptr, nullptr);
}

class MessageBoxes : public ErrorStateTest {};

TEST_F(MessageBoxes, TextsComeFromTheResourceFilledIn)
{
    ASSERT_NE(nullptr, TestTexts());
    HWND host = MakeVisibleWindow();
    const MessageHelpRecord help = {TestTexts(), kPopup, 0, 17};
    MessageBoxDriver boxes;
    boxes.Expect("Saving a.kel failed after 3 tries.", MB_RETRYCANCEL | MB_ICONEXCLAMATION, IDRETRY,
                 "Caption");
    boxes.Expect("Tuesday is missing from week 12.", MB_YESNO | MB_ICONQUESTION, IDNO, "Caption");
    boxes.Expect("Saving b failed after 1 tries.", MB_OKCANCEL | MB_HELP | MB_ICONASTERISK, IDOK);
    boxes.Expect("Saving c failed after 2 tries.", MB_OK | MB_ICONHAND, IDOK);
    EXPECT_EQ(IDRETRY, OSMessage(host, TestTexts(), "Caption", kSaved,
                                 MB_RETRYCANCEL | MB_ICONEXCLAMATION, "a.kel", 3));
    EXPECT_EQ(IDNO, OSMessage(nullptr, TestTexts(), "Caption", kReordered,
                              MB_YESNO | MB_ICONQUESTION, "week 12", "Tuesday"));
    EXPECT_EQ(IDOK, OSMessageWithHelp(&help, nullptr, TestTexts(), "Caption", kSaved,
                                      MB_OKCANCEL | MB_ICONASTERISK, "b", 1));
    EXPECT_EQ(IDOK, OSMessageWithHelp(nullptr, host, TestTexts(), "Caption", kSaved,
                                      MB_OK | MB_ICONHAND, "c", 2));
    ASSERT_EQ(4u, boxes.Seen().size());
    EXPECT_EQ(host, boxes.Seen()[0].owner);
    EXPECT_EQ(0, boxes.Seen()[0].disabledThreadWindows);
    // Without a parent the box is task-modal: the thread's windows wait.
    EXPECT_EQ(nullptr, boxes.Seen()[1].owner);
    EXPECT_EQ(1, boxes.Seen()[1].disabledThreadWindows);
    EXPECT_FALSE(boxes.Seen()[1].topmost);
    EXPECT_FALSE(OSErrorIsErrorPending());
    DestroyWindow(host);
}

// Acts on each box of the thread as it comes up. The hook sees the box
// before it is filled in, so it posts a note that the box's own loop
// delivers before any answer.
std::function<void(HWND)> s_onBox;
HHOOK s_hook;
HWND s_actor;

LRESULT CALLBACK ActorProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_APP)
        return DefWindowProcA(window, message, wParam, lParam);
    s_onBox(reinterpret_cast<HWND>(wParam));
    return 0;
}

LRESULT CALLBACK BoxHook(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HCBT_ACTIVATE && wParam)
        PostMessageA(s_actor, WM_APP, wParam, 0);
    return CallNextHookEx(s_hook, code, wParam, lParam);
}

struct ActOnBoxes {
    explicit ActOnBoxes(std::function<void(HWND)> act)
    {
        s_onBox = std::move(act);
        WNDCLASSA wc = {0, ActorProc, 0, 0, GetModuleHandleA(nullptr), 0, 0, 0, 0, "QzBoxActor"};
        RegisterClassA(&wc);
        s_actor = CreateWindowExA(0, wc.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, wc.hInstance, nullptr);
        s_hook = SetWindowsHookExA(WH_CBT, BoxHook, nullptr, GetCurrentThreadId());
    }
    ~ActOnBoxes()
    {
        UnhookWindowsHookEx(s_hook);
        DestroyWindow(s_actor);
    }
};

// F1 pressed in a box.
void AskHelp(HWND box)
{
    HELPINFO info = {sizeof info, HELPINFO_WINDOW, 0, box, 0, {}};
    SendMessageA(box, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
}

TEST_F(MessageBoxes, HelpButtonOpensTheRecordsTopic)
{
    HelpEngine engine;
    ActOnBoxes pressF1(AskHelp);
    struct Row {
        MessageHelpRecord help;
        LRESULT engineAnswer;
        std::string file;   // empty: nothing opens
        ResultCode recorded;
    };
    const Row rows[] = {
        {{TestTexts(), kPopup, 0, 17}, 1, LanguageFile() + ">Popup", RV_Success},
        {{TestTexts(), kPopup, 1, 18}, 1, LibraryFolder() + "admin\\KelAdmin.hlp>Popup", RV_Success},
        {{nullptr, kPopup, 0, 19}, 0, LanguageFile(), RV_UserError},
        {{TestTexts(), kMissing, 0, 20}, 1, "", RV_StringNonExistant},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.help.topic);
        OSErrorClearError();
        EngineCalls().clear();
        SetEngineAnswer(row.engineAnswer);
        MessageBoxDriver boxes;
        boxes.Expect("Saving d failed after 3 tries.", MB_OK | MB_HELP, IDOK);
        OSMessageWithHelp(&row.help, nullptr, TestTexts(), "Caption", kSaved, MB_OK, "d", 3);
        ASSERT_EQ(row.file.empty() ? 0u : 1u, EngineCalls().size());
        if (!row.file.empty()) {
            EXPECT_EQ(row.file, EngineCalls()[0].file);
            EXPECT_EQ(HELP_CONTEXT, static_cast<int>(EngineCalls()[0].command));
            EXPECT_EQ(static_cast<LONG>(row.help.topic), EngineCalls()[0].data);
        }
        EXPECT_EQ(row.recorded, OSErrorGetErrorValue());
    }
}

// A box of its own loop opens an inner box (no owner, so the outer box stays
// up beneath it); help is asked on the outer box under the inner one, on the
// inner one, and on the outer one alone again: each opens its own topic.
TEST_F(MessageBoxes, NestedBoxesEachOpenTheirOwnTopic)
{
    const MessageHelpRecord outerHelp = {nullptr, 0, 0, 31}, innerHelp = {nullptr, 0, 0, 32};
    HelpEngine engine;
    EngineCalls().clear();
    SetEngineAnswer(1);
    HWND outer = nullptr;
    ActOnBoxes actor([&](HWND box) {
        if (!outer) {
            outer = box;
            OSMessageWithHelp(&innerHelp, nullptr, ResourceGetHandle(), "Inner", 5000, MB_OK);
        } else {
            AskHelp(outer);
        }
        AskHelp(box);
        PostMessageA(box, WM_COMMAND, IDOK, 0);
    });
    OSMessageWithHelp(&outerHelp, nullptr, ResourceGetHandle(), "Outer", 5000, MB_OK);
    std::vector<LONG> topics;
    for (const EngineCall &call : EngineCalls())
        topics.push_back(call.data);
    EXPECT_EQ((std::vector<LONG>{31, 32, 31}), topics);
}

TEST_F(MessageBoxes, BadInputIsRecordedAndShowsNothing)
{
    MessageBoxDriver boxes;   // any box is a failure
    HWND gone = MakeVisibleWindow();
    DestroyWindow(gone);
    struct Row {
        HWND parent;
        UINT id;
        ResultCode recorded;
    } const rows[] = {{nullptr, kMissing, RV_StringNonExistant}, {gone, kSaved, RV_BadParms}};
    for (const Row &row : rows) {
        for (int withHelp = 0; withHelp < 2; ++withHelp) {
            OSErrorClearError();
            EXPECT_EQ(0, withHelp ? OSMessageWithHelp(nullptr, row.parent, TestTexts(), "C", row.id,
                                                      MB_OK, "x", 1)
                                  : OSMessage(row.parent, TestTexts(), "C", row.id, MB_OK, "x", 1));
            EXPECT_EQ(row.recorded, OSErrorGetErrorValue());
            if (row.id == kMissing) {
                EXPECT_EQ(kMissing, OSErrorGetErrorInfo()->itemValue);
            }
        }
    }
}

// The box calls, refused a given number of times and recorded.
struct BoxCall {
    std::string text;
    UINT style;
};
std::vector<BoxCall> s_boxCalls;
std::vector<UINT> s_beeps;
int s_refusals;

int WINAPI RecordBox(HWND, const char *text, const char *, UINT style)
{
    s_boxCalls.push_back({text ? text : "", style});
    return s_refusals-- > 0 ? 0 : IDOK;
}

int WINAPI RecordIndirectBox(const MSGBOXPARAMSA *params)
{
    EXPECT_EQ(1024u, params->dwLanguageId);
    return RecordBox(params->hwndOwner, params->lpszText, params->lpszCaption, params->dwStyle);
}

BOOL WINAPI RecordBeep(UINT style)
{
    s_beeps.push_back(style);
    return TRUE;
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
    char memory[512] = {}, format[512] = {};
    LoadStringA(ResourceGetHandle(), 10003, memory, sizeof memory);
    ASSERT_GT(LoadStringA(TestTexts(), kSaved, format, sizeof format), 0);
    const std::string text = "Saving f failed after 5 tries.";
    const UINT style = MB_YESNO | MB_ICONEXCLAMATION;
    const BoxCall tries[] = {{text, style | MB_TASKMODAL}, {text, style | MB_SYSTEMMODAL},
                             {memory, MB_SYSTEMMODAL | MB_ICONHAND}};
    const MessageHelpRecord help = {};
    for (int withHelp = 0; withHelp < 2; ++withHelp) {
        auto show = [&] {
            return withHelp ? OSMessageWithHelp(&help, nullptr, TestTexts(), "C", kSaved, style, "f", 5)
                            : OSMessage(nullptr, TestTexts(), "C", kSaved, style, "f", 5);
        };
        for (int refusals = 0; refusals < 3; ++refusals) {
            SCOPED_TRACE(refusals);
            s_boxCalls.clear();
            s_beeps.clear();
            s_refusals = refusals;
            EXPECT_EQ(refusals < 2 ? IDOK : IDCANCEL, show());
            ASSERT_EQ(static_cast<size_t>(refusals + 1), s_boxCalls.size());
            for (int i = 0; i <= refusals; ++i) {
                EXPECT_EQ(tries[i].text, s_boxCalls[i].text) << i;
                UINT helpButton = withHelp && i < 2 ? MB_HELP : 0;
                EXPECT_EQ(tries[i].style | helpButton, s_boxCalls[i].style) << i;
            }
            EXPECT_EQ(std::vector<UINT>{style | (withHelp ? MB_HELP : 0)}, s_beeps);
        }
        // With every allocation refused the text cannot be filled in: the box
        // shows its format, never the text of the box before.
        s_boxCalls.clear();
        {
            FailureSeam seam(FailureSeam::Memory, 1, true);
            EXPECT_EQ(IDOK, show());
            EXPECT_TRUE(seam.Refused());
        }
        ASSERT_EQ(1u, s_boxCalls.size());
        EXPECT_EQ(format, s_boxCalls[0].text) << withHelp;
        OSErrorClearError();
    }
    // An oversize text stops at the formatter's 1,023 characters.
    std::string first(700, 'a'), second(700, 'b');
    s_boxCalls.clear();
    OSMessage(nullptr, TestTexts(), "C", kJoined, MB_OK, first.c_str(), second.c_str());
    ASSERT_EQ(1u, s_boxCalls.size());
    EXPECT_EQ(first + std::string(323, 'b'), s_boxCalls[0].text);
}

}  // namespace
