// The order of presentation: callback, snapshot, cleared record, box; and
// what nested calls and errors recorded under a box come to.
#include <functional>
#include "error_recorders.h"
#include "message_box_driver.h"
#include "qz_test.h"

namespace {

std::function<void()> g_underBox;
int g_secondCalls;

LONG WINAPI SecondCallback(HWND, ErrorContext *)
{
    ++g_secondCalls;
    return 0;
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

class ErrorOrder : public ErrorStateTest {
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
        ErrorStateTest::TearDown();
    }
};

}  // namespace

TEST_F(ErrorOrder, NothingPendingShowsNothing)
{
    EXPECT_EQ(UIHandleErrorFunc(nullptr, 0, RecordingPresenter), IDCANCEL);
    EXPECT_TRUE(PresentedBoxes().empty());
    EXPECT_TRUE(CallbackCalls().empty());
    EXPECT_FALSE(OSErrorIsErrorPending());
}

TEST_F(ErrorOrder, TheRecordIsClearedBeforeTheBoxAndErrorsUnderItAreDropped)
{
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

TEST_F(ErrorOrder, ANestedCallFromTheCallbackReturnsCancelAndLeavesTheErrorAlone)
{
    int nested = 0;
    ResultCode seen = RV_Success;
    SetCallbackAction([&](HWND, ErrorContext *ctx) -> LONG {
        nested = UIHandleErrorFunc(nullptr, 0, RecordingPresenter);
        seen = ctx->errorCode;
        return 0;
    });
    SetPresenterArguments("s");
    lstrcpyA(MakePendingError(RV_NoFile)->itemText, "diary.kel");
    EXPECT_EQ(UIHandleErrorFunc(nullptr, 0, RecordingPresenter), IDOK);
    EXPECT_EQ(nested, IDCANCEL);
    EXPECT_EQ(seen, RV_NoFile);
    ASSERT_EQ(PresentedBoxes().size(), 1u);
    EXPECT_EQ(PresentedBoxes()[0].args[0], "diary.kel");
}

TEST_F(ErrorOrder, TheFirstCallbackAloneRunsAndCanSuppressTheBox)
{
    EXPECT_TRUE(UIErrorRegisterCallback(0, SecondCallback));
    EXPECT_TRUE(UIErrorUnRegisterCallback(0));
    SetCallbackAction([](HWND, ErrorContext *) -> LONG { return 1; });
    MakePendingError(RV_UserError);
    EXPECT_EQ(UIHandleErrorFunc(nullptr, 0, RecordingPresenter), IDCANCEL);
    EXPECT_EQ(CallbackCalls().size(), 1u);
    EXPECT_EQ(g_secondCalls, 0);
    EXPECT_TRUE(PresentedBoxes().empty());
    EXPECT_FALSE(OSErrorIsErrorPending());
    // The callback sees the presenter it could exchange.
    EXPECT_EQ(reinterpret_cast<void *>(CallbackCalls()[0].presenter), reinterpret_cast<void *>(&RecordingPresenter));
}

TEST_F(ErrorOrder, CaptionChain)
{
    HWND window = CreateWindowA("STATIC", "Week view", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
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
    DestroyWindow(window);
}

TEST_F(ErrorOrder, AWindowDestroyedBeforeItsBoxIsReplacedByNone)
{
    HWND window = CreateWindowA("STATIC", "Gone", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    DestroyWindow(window);
    MakePendingError(RV_UserError);
    UIHandleErrorFunc(window, 1, RecordingPresenter);
    ASSERT_EQ(PresentedBoxes().size(), 1u);
    EXPECT_EQ(PresentedBoxes()[0].window, nullptr);
}

TEST_F(ErrorOrder, YesToTheCloseQuestionClosesTheTopLevelWindow)
{
    HWND top = CreateWindowA("STATIC", "Top", WS_OVERLAPPEDWINDOW, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    HWND child = CreateWindowA("STATIC", "", WS_CHILD, 0, 0, 5, 5, top, nullptr, nullptr, nullptr);
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

TEST(ErrorCallbacks, ANullCallbackIsRefused)
{
    OSErrorClearError();
    EXPECT_FALSE(UIErrorRegisterCallback(0, nullptr));
    EXPECT_EQ(OSErrorGetErrorValue(), RV_BadParms);
    OSErrorClearError();
}

TEST_F(ErrorOrder, Code94LetsTheMouseGoAndHandsTheFocusOn)
{
    HWND top = CreateWindowA("STATIC", "Top", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100, nullptr,
                             nullptr, nullptr, nullptr);
    HWND from = CreateWindowA("EDIT", "", WS_CHILD | WS_VISIBLE, 0, 0, 50, 20, top, nullptr, nullptr, nullptr);
    HWND to = CreateWindowA("EDIT", "", WS_CHILD | WS_VISIBLE, 0, 30, 50, 20, top, nullptr, nullptr, nullptr);
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
