// A stand-in for the system's help engine. WinHelpA hands each request to
// the engine's window, class "MS_WINHELP", as WM_COPYDATA; while a HelpEngine
// lives, a hidden window of that class in the test takes the requests, so a
// test reads the file, command and data, and no help opens.
#pragma once
#include <windows.h>
#include <string>
#include <vector>

struct EngineCall {
    HWND window;
    UINT command;
    LONG data;
    std::string file;
};

class HelpEngine {
public:
    HelpEngine();   // clears the calls; the engine answers 1
    ~HelpEngine();
    HelpEngine(const HelpEngine &) = delete;
    HelpEngine &operator=(const HelpEngine &) = delete;

private:
    HWND window_;
};

// The requests so far, oldest first; tests may clear them.
std::vector<EngineCall> &EngineCalls();
// What the engine answers, and so what WinHelpA returns.
void SetEngineAnswer(LRESULT answer);

// The folder of the isolation library, with its trailing backslash.
std::string LibraryFolder();
// The help file of the language in force.
std::string LanguageFile();
