// Error presentation: the order callback, snapshot, cleared record, box;
// the caption chain; the real boxes and their fallbacks.
#include <functional>
#include "error_recorders.h"
#include "failure_seam.h"
#include "import_patch.h"
#include "message_box_driver.h"
#include "qz_test.h"

namespace {

std::function<void()> g_underBox;
int g_secondCalls;

LONG WINAPI SecondCallback(HWND, ErrorContext *)
{
    return ++g_secondCalls, 0;
}

// A presenter that runs the test's action as if a box were up.
int __cdecl ActingPresenter(HWND, HMODULE, const char *, UINT, UINT, ...)
{
    if (g_underBox)
        g_underBox();
    return IDOK;
}

std::string Text(UINT id)
{
    char text[512] = {};
    LoadStringA(ResourceGetHandle(), id, text, sizeof text);
    return text;
}

HWND TopWindow(const char *title, DWORD style = WS_OVERLAPPEDWINDOW | WS_VISIBLE, HWND parent = nullptr)
{
    return CreateWindowA(parent ? "EDIT" : "STATIC", title, style, 0, 0, 200, 100, parent, nullptr, nullptr, nullptr);
}

class ErrorPresentation : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        InstallRecordingCallback();
        ResetErrorRecorders();
        g_underBox = nullptr;
    }
    void TearDown() override
    {
        ResetErrorRecorders();
        g_underBox = nullptr;
        OSErrorGetErrorInfo()->quietInBackground = 0;
        ErrorStateTest::TearDown();
    }
};

}  // namespace

TEST_F(ErrorPresentation, TheRecordIsClearedBeforeTheBoxAndErrorsUnderItAreDropped)
{
    EXPECT_EQ(UIHandleErrorFunc(nullptr, 0, RecordingPresenter), IDCANCEL);  // nothing pending
    EXPECT_TRUE(PresentedBoxes().empty() && CallbackCalls().empty());
    bool pendingUnderBox = true, presentingUnderBox = false;
    int nested = 0;
    g_underBox = [&] {
        pendingUnderBox = OSErrorGetErrorInfo()->isPending != 0;
        presentingUnderBox = OSErrorGetErrorInfo()->isPresenting != 0;
        OSErrorSetErrorInfo(RV_NoFile, "dropped.txt");
        nested = UIHandleErrorFunc(nullptr, 0, RecordingPresenter);
    };
    MakePendingError(RV_UserError);
    EXPECT_EQ(UIHandleErrorFunc(nullptr, 0, ActingPresenter), IDOK);
    EXPECT_FALSE(pendingUnderBox);
    EXPECT_TRUE(presentingUnderBox);
    EXPECT_EQ(nested, IDCANCEL);
    EXPECT_TRUE(PresentedBoxes().empty());
    EXPECT_FALSE(OSErrorIsErrorPending());
    EXPECT_EQ(OSErrorGetErrorInfo()->isPresenting, 0);
}

TEST_F(ErrorPresentation, OnlyTheFirstCallbackRunsItMaySuppressTheBoxAndNestedCallsGetCancel)
{
    EXPECT_TRUE(UIErrorRegisterCallback(0, SecondCallback));
    EXPECT_TRUE(UIErrorUnRegisterCallback(0));
    int nested = 0;
    LONG suppress = 0;
    SetCallbackAction([&](HWND, ErrorContext *) -> LONG {
        nested = UIHandleErrorFunc(nullptr, 0, RecordingPresenter);
        return suppress;
    });
    SetPresenterArguments("s");
    lstrcpyA(MakePendingError(RV_NoFile)->itemText, "diary.kel");
    EXPECT_EQ(UIHandleErrorFunc(nullptr, 0, RecordingPresenter), IDOK);
    EXPECT_EQ(nested, IDCANCEL);
    ASSERT_EQ(PresentedBoxes().size(), 1u);
    EXPECT_EQ(PresentedBoxes()[0].args[0], "diary.kel");
    EXPECT_EQ(reinterpret_cast<void *>(CallbackCalls()[0].presenter), reinterpret_cast<void *>(&RecordingPresenter));
    suppress = 1;
    MakePendingError(RV_UserError);
    EXPECT_EQ(UIHandleErrorFunc(nullptr, 0, RecordingPresenter), IDCANCEL);
    EXPECT_EQ(PresentedBoxes().size(), 1u);
    EXPECT_EQ(CallbackCalls().size(), 2u);
    EXPECT_EQ(g_secondCalls, 0);
    EXPECT_FALSE(OSErrorIsErrorPending());
    EXPECT_FALSE(UIErrorRegisterCallback(0, nullptr));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_BadParms);
}

TEST_F(ErrorPresentation, CaptionChain)
{
    HWND window = TopWindow("Week view", WS_POPUP);
    struct Case {
        const char *title;
        DWORD useWindowCaption, contextId;
        std::string caption;
    } cases[] = {
        {"Week view", 1, 0, "Week view"},
        {"Week <SBA> view", 1, 0, Text(13000)},
        {"Week view", 0, 13060, Text(13060)},
        {"Week view", 0, 0, Text(13000)},
        {"Week view", 0, 65000, Text(13000)},  // a context string that does not exist
    };
    for (const Case &c : cases) {
        PresentedBoxes().clear();
        SetWindowTextA(window, c.title);
        ErrorContext *ctx = MakePendingError(RV_UserError);
        ctx->contextStringId = c.contextId;
        ctx->contextModule = ResourceGetHandle();
        UIHandleErrorFunc(window, c.useWindowCaption, RecordingPresenter);
        ASSERT_EQ(PresentedBoxes().size(), 1u);
        EXPECT_EQ(PresentedBoxes()[0].caption, c.caption) << c.title << " " << c.contextId;
    }
    // A window destroyed before its box is replaced by none.
    DestroyWindow(window);
    PresentedBoxes().clear();
    MakePendingError(RV_UserError);
    UIHandleErrorFunc(window, 1, RecordingPresenter);
    ASSERT_EQ(PresentedBoxes().size(), 1u);
    EXPECT_EQ(PresentedBoxes()[0].window, nullptr);
}

namespace {

LONG WINAPI NameTheVirtualFile(LONG_PTR, VIRTUALFILE *file, char *itemText)
{
    lstrcpyA(itemText, file && file->data ? "virtual.kel" : "no data");
    return itemText[0] == 'v';
}

}  // namespace

// A virtual file recorded as the item is named by the host's callback when
// its data begins with the marker byte, and only then.
TEST_F(ErrorPresentation, TheVirtualFileCallbackNamesTheItem)
{
    OSErrorRegisterVFToPFCallBack(reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(NameTheVirtualFile)));
    SetPresenterArguments("s");
    for (unsigned char first : {0xFF, 0x00}) {
        PresentedBoxes().clear();
        unsigned char data[2] = {first, 1};
        VIRTUALFILE file = {VIRTUALFILE_MARKER, data, sizeof data};
        OSErrorSetErrorInfo(RV_NoFile, reinterpret_cast<const char *>(&file));
        UIHandleErrorFunc(nullptr, 0, RecordingPresenter);
        ASSERT_EQ(PresentedBoxes().size(), 1u);
        EXPECT_EQ(PresentedBoxes()[0].args[0], first ? "virtual.kel" : "") << int(first);
    }
    OSErrorRegisterVFToPFCallBack(nullptr);
}

TEST_F(ErrorPresentation, YesToTheCloseQuestionClosesTheTopLevelWindow)
{
    HWND top = TopWindow("Top", WS_OVERLAPPEDWINDOW);
    HWND child = TopWindow("", WS_CHILD, top);
    for (int answer : {IDNO, IDYES}) {
        MSG msg;
        while (PeekMessageA(&msg, top, WM_SYSCOMMAND, WM_SYSCOMMAND, PM_REMOVE)) {
        }
        SetPresenterArguments("su");
        SetPresenterAnswer(answer);
        MakePendingError(RV_QuireAPI)->offerClose = 1;
        EXPECT_EQ(UIHandleErrorFunc(child, 0, RecordingPresenter), answer);
        bool closed = PeekMessageA(&msg, top, WM_SYSCOMMAND, WM_SYSCOMMAND, PM_REMOVE) && msg.wParam == SC_CLOSE;
        EXPECT_EQ(closed, answer == IDYES);
    }
    DestroyWindow(top);
}

TEST_F(ErrorPresentation, Code94LetsTheMouseGoAndHandsTheFocusOn)
{
    HWND top = TopWindow("Top");
    HWND from = TopWindow("", WS_CHILD | WS_VISIBLE, top), to = TopWindow("", WS_CHILD | WS_VISIBLE, top);
    SetFocus(from);
    BYTE keys[256];
    GetKeyboardState(keys);
    keys[VK_LBUTTON] = 0x80;
    SetKeyboardState(keys);
    ErrorContext *ctx = MakePendingError(94);
    ctx->itemValue = 11005;
    ctx->detail2 = static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(to));
    {
        // The message of the caller's choice comes through OSMessage.
        MessageBoxDriver boxes;
        boxes.Expect(Text(11005), MB_OK | MB_ICONASTERISK, IDOK, Text(13000).c_str());
        EXPECT_EQ(UIHandleErrorFunc(top, 0, RecordingPresenter), IDCANCEL);
    }
    EXPECT_TRUE(PresentedBoxes().empty());
    EXPECT_EQ(GetFocus(), to);
    GetKeyboardState(keys);
    EXPECT_EQ(keys[VK_LBUTTON] & 0x80, 0);
    DestroyWindow(top);
}

namespace {

struct BoxCall {
    HWND owner;
    std::string caption, text;
    UINT style;
};
bool operator==(const BoxCall &a, const BoxCall &b)
{
    return a.owner == b.owner && a.caption == b.caption && a.text == b.text && a.style == b.style;
}
void PrintTo(const BoxCall &c, std::ostream *os)
{
    *os << c.owner << " \"" << c.caption << "\" \"" << c.text << "\" style 0x" << std::hex << c.style << std::dec;
}
std::vector<BoxCall> s_boxCalls;
int s_refusals;

int WINAPI RecordBox(HWND owner, const char *text, const char *caption, UINT style)
{
    s_boxCalls.push_back({owner, caption ? caption : "", text ? text : "", style});
    return s_refusals-- > 0 ? 0 : IDOK;
}

}  // namespace

// The default presenter's boxes as the system is asked for them: the text
// with its first tilde blank, the caption, the owner, task-modal without
// one, nothing for a window behind or iconic when asked to keep quiet, and
// when a box cannot be shown: system-modal, then the out-of-memory text.
TEST_F(ErrorPresentation, TheDefaultBoxesAndTheirFallbacks)
{
    ImportPatch plain(LibraryModule(), "user32.dll", "MessageBoxA", reinterpret_cast<const void *>(RecordBox));
    ASSERT_TRUE(plain.Applied());
    HWND window = TopWindow("Month view"), behind = TopWindow("Behind");
    SetActiveWindow(window);
    const std::string install = "The program is not installed correctly. Please run SETUP~1.EXE from the "
                                "installation disk.", plan = "The file plan.kel was not found.";
    const UINT info = MB_ICONASTERISK, hand = MB_ICONHAND | MB_SYSTEMMODAL;
    struct Row {
        const char *name;
        std::function<int()> present;
        int refusals, answer;
        std::vector<BoxCall> calls;
    } const rows[] = {
        {"tilde and title", [&] { return MakePendingError(RV_BadInstall), UIHandleErrorEx(window, 1); }, 0, IDOK,
         {{window, Text(1), install, info}}},
        {"retry", [&] { return lstrcpyA(MakePendingError(RV_NoFile)->itemText, "plan.kel"), UIHandleErrorRetry(window); },
         0, IDOK, {{window, "Month view", plan, MB_RETRYCANCEL | info}}},
        {"past the table", [&] { return MakePendingError(300), UIHandleError(window); }, 0, IDOK,
         {{window, Text(13000), "An unexpected error occurred (ErrorNo (300)).", MB_ICONHAND}}},
        {"no window", [&] { return MakePendingError(RV_UserError), UIHandleError(nullptr); }, 0, IDOK,
         {{nullptr, Text(13000), Text(11005), info | MB_TASKMODAL}}},
        {"refused once", [&] { return MakePendingError(RV_UserError), UIHandleError(window); }, 1, IDOK,
         {{window, Text(13000), Text(11005), info}, {window, Text(13000), Text(11005), info | MB_SYSTEMMODAL}}},
        {"refused twice", [&] { return MakePendingError(RV_UserError), UIHandleError(nullptr); }, 2, IDCANCEL,
         {{nullptr, Text(13000), Text(11005), info | MB_TASKMODAL},
          {nullptr, Text(13000), Text(11005), info | MB_SYSTEMMODAL},
          {nullptr, Text(13000), Text(10003), hand}}},
        {"quiet, in front", [&] { return OSErrorGetErrorInfo()->quietInBackground = 1, MakePendingError(RV_UserError),
                                         UIHandleError(window); }, 0, IDOK, {{window, Text(13000), Text(11005), info}}},
        {"quiet, behind", [&] { return MakePendingError(RV_UserError), UIHandleError(behind); }, 0, IDCANCEL, {}},
        {"quiet, iconic", [&] { return ShowWindow(window, SW_MINIMIZE), MakePendingError(RV_UserError),
                                       UIHandleError(window); }, 0, IDCANCEL, {}},
    };
    for (const Row &row : rows) {
        s_boxCalls.clear();
        s_refusals = row.refusals;
        EXPECT_EQ(row.answer, row.present()) << row.name;
        EXPECT_FALSE(OSErrorIsErrorPending()) << row.name;
        EXPECT_EQ(row.calls, s_boxCalls) << row.name;
    }
    // With every allocation refused the text cannot be filled in: the box
    // shows its message as it stands, not the text of the box before.
    OSErrorGetErrorInfo()->quietInBackground = 0;
    s_boxCalls.clear();
    {
        FailureSeam seam(FailureSeam::Memory, 1, true);
        MakePendingError(RV_UserError);
        UIHandleError(nullptr);
        EXPECT_TRUE(seam.Refused());
    }
    ASSERT_EQ(s_boxCalls.size(), 1u);
    EXPECT_EQ(s_boxCalls[0].text, Text(11005));
    DestroyWindow(behind);
    DestroyWindow(window);
}
