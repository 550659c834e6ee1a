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

TEST_F(ErrorPresentation, TheBoxShowsTheMessageWithItsFirstTildeBlankAndTheWindowCaption)
{
    HWND window = TopWindow("Month view"), other = TopWindow("Other");
    MessageBoxDriver boxes;
    // The text holds two tildes: only the first one becomes a blank.
    boxes.Expect("The program is not installed correctly. Please run SETUP~1.EXE from the installation disk.",
                 MB_OK | MB_ICONASTERISK, IDOK, Text(1).c_str());
    MakePendingError(RV_BadInstall);
    EXPECT_EQ(UIHandleErrorEx(window, 1), IDOK);
    boxes.Expect("The file plan.kel was not found.", MB_RETRYCANCEL | MB_ICONASTERISK, IDRETRY, "Month view");
    lstrcpyA(MakePendingError(RV_NoFile)->itemText, "plan.kel");
    EXPECT_EQ(UIHandleErrorRetry(window), IDRETRY);
    boxes.Expect("An unexpected error occurred (ErrorNo (300)).", MB_OK | MB_ICONHAND, IDOK, Text(13000).c_str());
    MakePendingError(300);
    EXPECT_EQ(UIHandleError(window), IDOK);
    // Without a window the box is task-modal.
    boxes.Expect(Text(11005), MB_OK | MB_ICONASTERISK, IDOK);
    MakePendingError(RV_UserError);
    EXPECT_EQ(UIHandleError(nullptr), IDOK);
    ASSERT_EQ(boxes.Seen().size(), 4u);
    EXPECT_EQ(boxes.Seen()[2].owner, window);
    EXPECT_EQ(boxes.Seen()[2].disabledThreadWindows, 0);
    EXPECT_GE(boxes.Seen()[3].disabledThreadWindows, 1);
    EXPECT_TRUE(IsWindowEnabled(other));
    DestroyWindow(other);
    DestroyWindow(window);
}

TEST_F(ErrorPresentation, QuietInBackgroundShowsNothingForAWindowBehindOrIconic)
{
    HWND front = TopWindow("Front"), behind = TopWindow("Behind");
    SetActiveWindow(front);
    ASSERT_EQ(GetActiveWindow(), front);
    OSErrorGetErrorInfo()->quietInBackground = 1;
    for (int step = 0; step < 3; ++step) {
        MessageBoxDriver boxes;  // strict: any box not expected fails
        if (step == 1)
            boxes.Expect(Text(11005), MB_OK | MB_ICONASTERISK, IDOK);
        if (step == 2)
            ShowWindow(front, SW_MINIMIZE);
        MakePendingError(RV_UserError);
        EXPECT_EQ(UIHandleError(step ? front : behind), step == 1 ? IDOK : IDCANCEL) << step;
        EXPECT_FALSE(OSErrorIsErrorPending());
    }
    DestroyWindow(behind);
    DestroyWindow(front);
}

namespace {

struct BoxCall {
    std::string text;
    UINT style;
};
std::vector<BoxCall> s_boxCalls;
int s_refusals;

int WINAPI RecordBox(HWND, const char *text, const char *, UINT style)
{
    s_boxCalls.push_back({text ? text : "", style});
    return s_refusals-- > 0 ? 0 : IDOK;
}

}  // namespace

// A box that cannot be shown is tried system-modal, then the fixed
// out-of-memory text is shown and the answer is Cancel.
TEST_F(ErrorPresentation, TheDefaultBoxFallsBackAndNeverShowsAnEarlierText)
{
    ImportPatch plain(LibraryModule(), "user32.dll", "MessageBoxA", reinterpret_cast<const void *>(RecordBox));
    ASSERT_TRUE(plain.Applied());
    const std::string text = "The file plan.kel was not found.", memory = Text(10003);
    const UINT style = MB_RETRYCANCEL | MB_ICONASTERISK;
    const BoxCall tries[] = {{text, style | MB_TASKMODAL}, {text, style | MB_SYSTEMMODAL},
                             {memory, MB_SYSTEMMODAL | MB_ICONHAND}};
    for (int refusals = 0; refusals < 3; ++refusals) {
        s_boxCalls.clear();
        s_refusals = refusals;
        lstrcpyA(MakePendingError(RV_NoFile)->itemText, "plan.kel");
        EXPECT_EQ(UIHandleErrorRetry(nullptr), refusals < 2 ? IDOK : IDCANCEL);
        ASSERT_EQ(s_boxCalls.size(), static_cast<size_t>(refusals + 1));
        for (int i = 0; i <= refusals; ++i) {
            EXPECT_EQ(s_boxCalls[i].text, tries[i].text) << refusals << " " << i;
            EXPECT_EQ(s_boxCalls[i].style, tries[i].style) << refusals << " " << i;
        }
    }
    // With every allocation refused the text cannot be filled in: the box
    // shows its message as it stands, not the text of the box before.
    s_boxCalls.clear();
    s_refusals = 0;
    {
        FailureSeam seam(FailureSeam::Memory, 1, true);
        MakePendingError(RV_UserError);
        UIHandleError(nullptr);
        EXPECT_TRUE(seam.Refused());
    }
    ASSERT_EQ(s_boxCalls.size(), 1u);
    EXPECT_EQ(s_boxCalls[0].text, Text(11005));
}
