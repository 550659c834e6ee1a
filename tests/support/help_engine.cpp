#include "help_engine.h"
#include "qziso32.h"

namespace {

// What WinHelpA sends along with WM_COPYDATA.
struct WinHelpRequest {
    WORD size;
    WORD command;
    LONG data;
    LONG reserved;
    WORD ofsFilename;
    WORD ofsData;
};

std::vector<EngineCall> s_engineCalls;
LRESULT s_engineAnswer = 1;

LRESULT CALLBACK EngineProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COPYDATA) {
        const COPYDATASTRUCT *copy = reinterpret_cast<const COPYDATASTRUCT *>(lParam);
        const WinHelpRequest *request = static_cast<const WinHelpRequest *>(copy->lpData);
        EngineCall call{reinterpret_cast<HWND>(wParam), request->command, request->data, ""};
        if (request->ofsFilename)
            call.file = reinterpret_cast<const char *>(request) + request->ofsFilename;
        s_engineCalls.push_back(call);
        return s_engineAnswer;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

HelpEngine::HelpEngine()
{
    WNDCLASSA wc = {};
    wc.lpfnWndProc = EngineProc;
    wc.hInstance = GetModuleHandleA(nullptr);
    wc.lpszClassName = "MS_WINHELP";
    RegisterClassA(&wc);
    window_ = CreateWindowExA(0, "MS_WINHELP", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                              wc.hInstance, nullptr);
    s_engineCalls.clear();
    s_engineAnswer = 1;
}

HelpEngine::~HelpEngine()
{
    DestroyWindow(window_);
}

std::vector<EngineCall> &EngineCalls()
{
    return s_engineCalls;
}

void SetEngineAnswer(LRESULT answer)
{
    s_engineAnswer = answer;
}

std::string LibraryFolder()
{
    char path[MAX_PATH] = {};
    GetModuleFileNameA(GetModuleHandleA("qziso32.dll"), path, MAX_PATH);
    std::string folder(path);
    return folder.substr(0, folder.find_last_of('\\') + 1);
}

std::string LanguageFile()
{
    char language[4] = {};
    OSGet2CharacterLanguageString(language);
    return LibraryFolder() + "tv1c50" + language + ".hlp";
}
