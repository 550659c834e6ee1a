// Error presentation without boxes: a presenter that records what it was
// asked to show, and a callback that the tests register once (only the first
// callback registered is ever called) and steer per test.
#pragma once
#include <functional>
#include <string>
#include <vector>
#include "qziso32.h"

struct PresentedBox {
    HWND window;
    HMODULE module;
    std::string caption;
    UINT messageId;
    UINT flags;
    std::vector<std::string> args;  // texts as they are, numbers in decimal
};

// What the recording presenter reads after the flags: one letter per
// argument, 's' a text, 'u' a number.
void SetPresenterArguments(const std::string &kinds);
// The answer the recording presenter gives; IDOK unless set.
void SetPresenterAnswer(int answer);
std::vector<PresentedBox> &PresentedBoxes();
int __cdecl RecordingPresenter(HWND window, HMODULE module, const char *caption, UINT messageId,
                               UINT flags, ...);

struct CallbackCall {
    HWND window;
    ResultCode code;
    FARPROC presenter;  // the presenter in force when the callback ran
};

// Registers the recording callback once per process. It records each call,
// runs the action if one is set, and answers 0 (show the error) unless told.
void InstallRecordingCallback();
std::vector<CallbackCall> &CallbackCalls();
void SetCallbackAction(std::function<LONG(HWND, ErrorContext *)> action);
// The callback puts the recording presenter in place of the one it was given.
void SetCallbackSwapsPresenter(bool swap);
// Back to the defaults: no action, no swap, nothing recorded.
void ResetErrorRecorders();

// A pending error made directly in the live record, fields zeroed first.
ErrorContext *MakePendingError(DWORD code);
