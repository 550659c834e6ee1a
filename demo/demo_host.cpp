// The demo host: a gallery of the library's gadgets and dialogs, one page
// per family. Run it with /LDE for German.
//
//   demo_host                 a live window: a button per page; under the
//                             page a log of what its gadgets notify
//   demo_host --png FOLDER    each page painted off-screen and written as
//                             FOLDER\<page>.png; prints the paths
//   demo_host --check         each page painted off-screen; exit status 1
//                             if a page failed to build or came out blank
#include <cstdio>
#include <cstring>
#include <string>
#include "gallery.h"
#include "qziso32.h"
#include "readback.h"

namespace {

const char kHostClass[] = "QzGalleryHost";
const int kButtonBase = 500;
HWND g_currentPage = nullptr;

void ShowPage(HWND host, int index)
{
    if (g_currentPage) DestroyWindow(g_currentPage);
    g_currentPage = kGalleryPages[index].build(host);
    if (!g_currentPage) {
        std::printf("page %s: a gadget could not be made\n", kGalleryPages[index].name);
        return;
    }
    // Beside the host, so both stay in view.
    RECT hostFrame;
    GetWindowRect(host, &hostFrame);
    SetWindowPos(g_currentPage, nullptr, hostFrame.right + 8, hostFrame.top, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER);
    ShowWindow(g_currentPage, SW_SHOWNOACTIVATE);
    AttachNotificationLog(g_currentPage);
}

LRESULT CALLBACK HostProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_COMMAND:
        if (LOWORD(wParam) >= kButtonBase && LOWORD(wParam) < kButtonBase + kGalleryPageCount)
            ShowPage(window, LOWORD(wParam) - kButtonBase);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

HWND MakeHost(bool visible)
{
    RegisterFaceClass(kHostClass, HostProc);
    HWND host = CreateWindowExA(0, kHostClass, "Kelendrix gadget gallery",
                                WS_OVERLAPPEDWINDOW | (visible ? WS_VISIBLE : 0), 0, 0, 220,
                                60 + 32 * kGalleryPageCount, nullptr, nullptr,
                                GetModuleHandleA(nullptr), nullptr);
    for (int i = 0; host && i < kGalleryPageCount; ++i)
        CreateWindowExA(0, "BUTTON", kGalleryPages[i].title, WS_CHILD | WS_VISIBLE, 10,
                        10 + 32 * i, 190, 26, host,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(kButtonBase + i)),
                        GetModuleHandleA(nullptr), nullptr);
    return host;
}

void Pump()
{
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
}

// Paints every page and reads it back; with a folder, writes the PNGs.
// Returns the number of pages that failed.
int RenderPages(HWND host, const char *folder)
{
    int failed = 0;
    for (int i = 0; i < kGalleryPageCount; ++i) {
        const GalleryPage &page = kGalleryPages[i];
        HWND window = page.build(host);
        if (!window) {
            std::printf("page %s: a gadget could not be made\n", page.name);
            ++failed;
            continue;
        }
        ShowWindow(window, SW_SHOWNOACTIVATE);
        Pump();
        Readback picture = Readback::Of(window, true);
        if (!picture.Valid() || picture.Uniform()) {
            std::printf("page %s: blank\n", page.name);
            ++failed;
        } else if (folder) {
            std::string path = std::string(folder) + "\\" + page.name + ".png";
            std::wstring wide(path.begin(), path.end());
            if (WritePng(wide.c_str(), picture.Width(), picture.Height(), picture.Pixels().data()))
                std::printf("%s\n", path.c_str());
            else {
                std::printf("page %s: the PNG could not be written\n", page.name);
                ++failed;
            }
        } else {
            std::printf("page %s: %dx%d\n", page.name, picture.Width(), picture.Height());
        }
        DestroyWindow(window);
        Pump();
    }
    return failed;
}

}  // namespace

int main(int argc, char **argv)
{
    const char *folder = nullptr;
    bool headless = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--png") == 0 && i + 1 < argc)
            folder = argv[++i], headless = true;
        else if (std::strcmp(argv[i], "--check") == 0)
            headless = true;
    }
    if (!IsolateInstanceStart(0, 0)) {
        std::printf("IsolateInstanceStart failed\n");
        return 1;
    }
    char language[4] = {}, title[128] = {};
    OSGet2CharacterLanguageString(language);
    LoadStringA(ResourceGetHandle(), 1, title, sizeof title);
    std::printf("%s, language %s\n", title, language);

    int failed = 0;
    HRESULT com = CoInitialize(nullptr);
    HWND host = MakeHost(!headless);
    if (!host || !RegisterGadgets(0) || !UIGrayDialogInit(host)) {
        std::printf("the gallery could not start\n");
        failed = 1;
    } else if (headless) {
        failed = RenderPages(host, folder);
    } else {
        ShowPage(host, 0);
        MSG msg;
        while (GetMessageA(&msg, nullptr, 0, 0) > 0) {
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
        }
    }
    if (host) {
        UIGrayDialogUnInit(host);
        if (IsWindow(host)) DestroyWindow(host);
    }
    UnRegisterGadgets();
    if (SUCCEEDED(com)) CoUninitialize();
    IsolateInstanceStop(0);
    return failed ? 1 : 0;
}
