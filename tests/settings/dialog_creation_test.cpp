// Dialogs made from templates of the resource library, and the one-time
// notice.
#include "qz_test.h"
#include <string>

namespace {

const char kNoticeSection[] = "Kelendrix-EighteenFeatureDone";

INT_PTR CALLBACK EndWithParam(HWND dialog, UINT message, WPARAM, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        EndDialog(dialog, lParam ? lParam : 42);
        return TRUE;
    }
    return FALSE;
}

LPARAM g_initParam = -1;
INT_PTR CALLBACK KeepParam(HWND, UINT message, WPARAM, LPARAM lParam)
{
    if (message == WM_INITDIALOG) g_initParam = lParam;
    return message == WM_INITDIALOG;
}

// Each wrapper from the resource library's template, its parameter handed to
// WM_INITDIALOG; a missing template fails without recording.
TEST(DialogCreation, TheFourWrappersMakeDialogsFromTheResourceLibrary)
{
    HMODULE resources = ResourceGetHandle();
    OSErrorClearError();
    EXPECT_EQ(42, DialogBox(resources, "EIGHTEEN", nullptr, EndWithParam));
    EXPECT_EQ(7, DialogBoxParam(resources, "EIGHTEEN", nullptr, EndWithParam, 7));
    EXPECT_EQ(-1, DialogBox(resources, "NOSUCHDIALOG", nullptr, EndWithParam));
    EXPECT_EQ(-1, DialogBoxParam(resources, MAKEINTRESOURCEA(4711), nullptr, EndWithParam, 1));
    for (LPARAM param : {LPARAM(0), LPARAM(99)}) {
        g_initParam = -1;
        HWND made = param ? CreateDialogParam(resources, "EIGHTEEN", nullptr, KeepParam, param)
                          : CreateDialog(resources, "EIGHTEEN", nullptr, KeepParam);
        ASSERT_TRUE(made);
        EXPECT_EQ(param, g_initParam);
        char text[64] = {};
        GetDlgItemTextA(made, 100, text, sizeof text);
        EXPECT_STREQ("New in this version", text);
        DestroyWindow(made);
    }
    EXPECT_EQ(nullptr, CreateDialog(resources, "NOSUCHDIALOG", nullptr, KeepParam));
    EXPECT_EQ(nullptr, CreateDialogParam(nullptr, "NOSUCHDIALOG", nullptr, KeepParam, 1));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

struct NoticeSeen {
    DWORD thread;
    std::string key;
    LONG valueWhenShown = -1;
    RECT frame = {};
    HWND window = nullptr;
};

BOOL CALLBACK FindShown(HWND window, LPARAM data)
{
    auto *seen = reinterpret_cast<NoticeSeen *>(data);
    if (IsWindowVisible(window) && GetDlgItem(window, 101)) {
        seen->window = window;
        return FALSE;
    }
    return TRUE;
}

DWORD WINAPI WatchForNotice(void *data)
{
    auto *seen = static_cast<NoticeSeen *>(data);
    for (int tries = 0; tries < 500 && !seen->window; ++tries) {
        EnumThreadWindows(seen->thread, FindShown, reinterpret_cast<LPARAM>(seen));
        if (!seen->window) Sleep(10);
    }
    if (seen->window) {
        seen->valueWhenShown = GetProfileIntA(kNoticeSection, seen->key.c_str(), -1);
        GetWindowRect(seen->window, &seen->frame);
    }
    return 0;
}

// The notice stands for ten seconds: this is the one test that shows it.
TEST(DialogCreation, NoticeShowsOncePerKeyRecordedBeforeItShows)
{
    NoticeSeen seen;
    seen.thread = GetCurrentThreadId();
    seen.key = "notice" + std::to_string(GetCurrentProcessId());
    WriteProfileStringA(kNoticeSection, seen.key.c_str(), nullptr);

    HANDLE watcher = CreateThread(nullptr, 0, WatchForNotice, &seen, 0, nullptr);
    DWORD start = GetTickCount();
    EXPECT_EQ(FALSE, Eighteen(nullptr, seen.key.c_str()));
    DWORD shownFor = GetTickCount() - start;
    WaitForSingleObject(watcher, 10000);
    CloseHandle(watcher);

    EXPECT_GE(shownFor, 9900u);
    ASSERT_TRUE(seen.window) << "the notice was never visible";
    EXPECT_EQ(1, seen.valueWhenShown);
    EXPECT_FALSE(IsWindow(seen.window));
    // Centred on the screen, as it has no owner.
    int w = seen.frame.right - seen.frame.left, h = seen.frame.bottom - seen.frame.top;
    EXPECT_EQ((GetSystemMetrics(SM_CXSCREEN) - w) / 2, seen.frame.left);
    EXPECT_EQ((GetSystemMetrics(SM_CYSCREEN) - h) / 2, seen.frame.top);

    start = GetTickCount();
    EXPECT_EQ(TRUE, Eighteen(nullptr, seen.key.c_str()));
    EXPECT_LT(GetTickCount() - start, 1000u);
    WriteProfileStringA(kNoticeSection, seen.key.c_str(), nullptr);
}

}  // namespace
