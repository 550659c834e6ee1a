// A box whose text cannot be filled in shows its own format, never the text
// of the box before; and nested boxes with help each open their own topic.
#include <string>
#include <vector>
#include "failure_seam.h"
#include "help_engine.h"
#include "import_patch.h"
#include "qz_test.h"

namespace {

const UINT kSaved = 60001;

HMODULE TestTexts()
{
    static HMODULE texts = LoadLibraryA("KE1C30QA.DLL");
    return texts;
}

std::vector<std::string> s_texts;

int WINAPI RecordBox(HWND, const char *text, const char *, UINT)
{
    s_texts.push_back(text ? text : "");
    return IDOK;
}

int WINAPI RecordIndirectBox(const MSGBOXPARAMSA *params)
{
    return RecordBox(nullptr, params->lpszText, nullptr, 0);
}

TEST(MessageBoxText, AFillingThatFailsShowsTheFormatNotThePreviousText)
{
    ImportPatch plain(LibraryModule(), "user32.dll", "MessageBoxA", reinterpret_cast<const void *>(RecordBox));
    ImportPatch indirect(LibraryModule(), "user32.dll", "MessageBoxIndirectA",
                         reinterpret_cast<const void *>(RecordIndirectBox));
    ASSERT_TRUE(plain.Applied() && indirect.Applied());
    char format[512] = {};
    ASSERT_GT(LoadStringA(TestTexts(), kSaved, format, sizeof format), 0);
    const MessageHelpRecord help = {};
    for (int withHelp = 0; withHelp < 2; ++withHelp) {
        s_texts.clear();
        auto show = [&](const char *name, int tries) {
            return withHelp ? OSMessageWithHelp(&help, nullptr, TestTexts(), "C", kSaved, MB_OK, name, tries)
                            : OSMessage(nullptr, TestTexts(), "C", kSaved, MB_OK, name, tries);
        };
        show("a.kel", 3);
        {
            // Every allocation refused: the filling-in cannot copy its format.
            FailureSeam seam(FailureSeam::Memory, 1, true);
            EXPECT_EQ(IDOK, show("b.kel", 4));
            EXPECT_TRUE(seam.Refused());
        }
        ASSERT_EQ(2u, s_texts.size());
        EXPECT_EQ("Saving a.kel failed after 3 tries.", s_texts[0]);
        EXPECT_EQ(format, s_texts[1]) << withHelp;
        OSErrorClearError();
    }
}

// A box of its own loop opens an inner box (no owner, so the outer box stays
// up beneath it); while the inner box is up, help is asked on the outer one.
const MessageHelpRecord kOuterHelp = {nullptr, 0, 0, 31};
const MessageHelpRecord kInnerHelp = {nullptr, 0, 0, 32};
HHOOK s_hook;
HWND s_actor, s_outerBox;

void AskHelp(HWND box)
{
    HELPINFO info = {sizeof info, HELPINFO_WINDOW, 0, box, 0, {}};
    SendMessageA(box, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
}

LRESULT CALLBACK ActorProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    HWND box = reinterpret_cast<HWND>(wParam);
    if (message == WM_APP && !s_outerBox) {
        s_outerBox = box;
        OSMessageWithHelp(&kInnerHelp, nullptr, ResourceGetHandle(), "Inner", 5000, MB_OK);
        AskHelp(box);  // the inner box is gone again
        PostMessageA(box, WM_COMMAND, IDOK, 0);
        return 0;
    }
    if (message == WM_APP) {
        AskHelp(s_outerBox);
        AskHelp(box);
        PostMessageA(box, WM_COMMAND, IDOK, 0);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

LRESULT CALLBACK BoxHook(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HCBT_ACTIVATE && wParam)
        PostMessageA(s_actor, WM_APP, wParam, 0);
    return CallNextHookEx(s_hook, code, wParam, lParam);
}

TEST(MessageBoxHelp, NestedBoxesEachOpenTheirOwnTopic)
{
    HelpEngine engine;
    EngineCalls().clear();
    SetEngineAnswer(1);
    WNDCLASSA wc = {0, ActorProc, 0, 0, GetModuleHandleA(nullptr), 0, 0, 0, 0, "QzNestedHelpActor"};
    RegisterClassA(&wc);
    s_actor = CreateWindowExA(0, wc.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, wc.hInstance, nullptr);
    s_outerBox = nullptr;
    s_hook = SetWindowsHookExA(WH_CBT, BoxHook, nullptr, GetCurrentThreadId());
    OSMessageWithHelp(&kOuterHelp, nullptr, ResourceGetHandle(), "Outer", 5000, MB_OK);
    UnhookWindowsHookEx(s_hook);
    DestroyWindow(s_actor);
    std::vector<LONG> topics;
    for (const EngineCall &call : EngineCalls())
        topics.push_back(call.data);
    // Outer under the inner box, the inner box, the outer box alone again.
    EXPECT_EQ((std::vector<LONG>{31, 32, 31}), topics);
    OSErrorClearError();
}

}  // namespace
