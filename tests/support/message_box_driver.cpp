#include "message_box_driver.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <cstdio>

namespace {

// The driver of the calling thread; a driver made while another lives
// stacks on it and restores it when it goes.
thread_local MessageBoxDriver *t_driver = nullptr;

// A message box's text is the static control with this id.
const int kBoxTextId = 0xFFFF;
// How long after activation the box is read: long enough for it to finish
// its own initialisation, short enough to keep tests quick.
const UINT kAnswerDelayMs = 10;

struct ButtonSet {
    UINT style;
    const char *name;
    std::vector<int> ids;
};

// The button sets of the message box styles, as the box shows them.
const ButtonSet kButtonSets[] = {
    {MB_OK, "OK", {IDOK}},
    {MB_OKCANCEL, "OK Cancel", {IDOK, IDCANCEL}},
    {MB_ABORTRETRYIGNORE, "Abort Retry Ignore", {IDABORT, IDRETRY, IDIGNORE}},
    {MB_YESNOCANCEL, "Yes No Cancel", {IDYES, IDNO, IDCANCEL}},
    {MB_YESNO, "Yes No", {IDYES, IDNO}},
    {MB_RETRYCANCEL, "Retry Cancel", {IDRETRY, IDCANCEL}},
    {MB_CANCELTRYCONTINUE, "Cancel TryAgain Continue", {IDCANCEL, IDTRYAGAIN, IDCONTINUE}},
};

struct IconKind {
    UINT style;
    LPCSTR resource;
    const char *name;
};

const IconKind kIcons[] = {
    {MB_ICONHAND, IDI_HAND, "hand"},
    {MB_ICONQUESTION, IDI_QUESTION, "question"},
    {MB_ICONEXCLAMATION, IDI_EXCLAMATION, "exclamation"},
    {MB_ICONASTERISK, IDI_ASTERISK, "asterisk"},
};

std::string WindowText(HWND window)
{
    int length = GetWindowTextLengthA(window);
    std::string text(static_cast<size_t>(length) + 1, '\0');
    GetWindowTextA(window, &text[0], length + 1);
    text.resize(strlen(text.c_str()));
    return text;
}

bool IsMessageBox(HWND window)
{
    char className[16] = {};
    GetClassNameA(window, className, sizeof className);
    return strcmp(className, "#32770") == 0 && GetDlgItem(window, kBoxTextId) != nullptr;
}

BOOL CALLBACK FindIcon(HWND child, LPARAM found)
{
    if ((GetWindowLongA(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON && IsWindowVisible(child)) {
        *reinterpret_cast<HWND *>(found) = child;
        return FALSE;
    }
    return TRUE;
}

struct DisabledCount {
    HWND box;
    HWND owner;
    int count;
};

BOOL CALLBACK CountDisabled(HWND window, LPARAM data)
{
    auto *disabled = reinterpret_cast<DisabledCount *>(data);
    if (window != disabled->box && window != disabled->owner && IsWindowVisible(window) &&
        !IsWindowEnabled(window))
        disabled->count++;
    return TRUE;
}

const char *ButtonsName(UINT style)
{
    for (const ButtonSet &set : kButtonSets)
        if (set.style == (style & MB_TYPEMASK))
            return set.name;
    return "?";
}

const char *IconName(UINT style)
{
    for (const IconKind &kind : kIcons)
        if (kind.style == (style & MB_ICONMASK))
            return kind.name;
    return (style & MB_ICONMASK) ? "?" : "no icon";
}

} // namespace

std::string Describe(const SeenBox &box)
{
    char line[64];
    snprintf(line, sizeof line, " | %s%s | %s", ButtonsName(box.buttons),
             (box.buttons & MB_HELP) ? " Help" : "", IconName(box.icon));
    return "\"" + box.caption + "\" | \"" + box.text + "\"" + line;
}

SeenBox MessageBoxDriver::Read(HWND box)
{
    SeenBox seen;
    seen.caption = WindowText(box);
    seen.text = WindowText(GetDlgItem(box, kBoxTextId));
    seen.owner = GetWindow(box, GW_OWNER);
    seen.topmost = (GetWindowLongA(box, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0;

    HWND iconWindow = nullptr;
    EnumChildWindows(box, FindIcon, reinterpret_cast<LPARAM>(&iconWindow));
    if (iconWindow) {
        HICON shown = reinterpret_cast<HICON>(SendMessageA(iconWindow, STM_GETICON, 0, 0));
        for (const IconKind &kind : kIcons)
            if (shown && shown == LoadIconA(nullptr, kind.resource))
                seen.icon = kind.style;
    }
    // The box keeps only the buttons of its style: the largest set all of
    // whose buttons are present names it.
    size_t best = 0;
    for (const ButtonSet &set : kButtonSets) {
        bool all = std::all_of(set.ids.begin(), set.ids.end(),
                               [box](int id) { return GetDlgItem(box, id) != nullptr; });
        if (all && set.ids.size() > best) {
            best = set.ids.size();
            seen.buttons = set.style;
        }
    }
    if (GetDlgItem(box, IDHELP))
        seen.buttons |= MB_HELP;

    DisabledCount disabled = {box, seen.owner, 0};
    EnumThreadWindows(GetWindowThreadProcessId(box, nullptr), CountDisabled,
                      reinterpret_cast<LPARAM>(&disabled));
    seen.disabledThreadWindows = disabled.count;
    return seen;
}

MessageBoxDriver::MessageBoxDriver()
{
    previous_ = t_driver;
    t_driver = this;
    hook_ = SetWindowsHookExA(WH_CBT, CbtHook, nullptr, GetCurrentThreadId());
    EXPECT_NE(nullptr, hook_) << "the message box driver could not hook the thread";
}

MessageBoxDriver::~MessageBoxDriver()
{
    if (hook_)
        UnhookWindowsHookEx(hook_);
    for (const auto &timer : timers_)
        KillTimer(nullptr, timer.first);
    t_driver = previous_;
    for (const Expected &missing : expected_)
        ADD_FAILURE() << "expected a box \"" << missing.text << "\" | "
                      << ButtonsName(missing.style) << " | " << IconName(missing.style)
                      << ", and none came";
}

void MessageBoxDriver::Expect(const std::string &text, UINT buttonsAndIcon, int answer,
                              const char *caption)
{
    expected_.push_back({text, buttonsAndIcon, answer, caption != nullptr, caption ? caption : ""});
}

void MessageBoxDriver::AnswerOthers(int answer, bool strict)
{
    othersAnswer_ = answer;
    othersStrict_ = strict;
}

LRESULT CALLBACK MessageBoxDriver::CbtHook(int code, WPARAM wParam, LPARAM lParam)
{
    MessageBoxDriver *driver = t_driver;
    if (code == HCBT_ACTIVATE && driver) {
        HWND window = reinterpret_cast<HWND>(wParam);
        char className[16] = {};
        GetClassNameA(window, className, sizeof className);
        // Another test program's box on the same desktop is its own
        // driver's to answer.
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        bool dialog = strcmp(className, "#32770") == 0 && process == GetCurrentProcessId();
        bool fresh = std::find(driver->handled_.begin(), driver->handled_.end(), window) ==
                     driver->handled_.end();
        if (dialog && fresh) {
            driver->handled_.push_back(window);
            UINT_PTR id = SetTimer(nullptr, 0, kAnswerDelayMs, TimerFired);
            if (id)
                driver->timers_.push_back({id, window});
        }
    }
    return CallNextHookEx(driver ? driver->hook_ : nullptr, code, wParam, lParam);
}

void CALLBACK MessageBoxDriver::TimerFired(HWND, UINT, UINT_PTR id, DWORD)
{
    KillTimer(nullptr, id);
    MessageBoxDriver *driver = t_driver;
    if (!driver)
        return;
    auto timer = std::find_if(driver->timers_.begin(), driver->timers_.end(),
                              [id](const std::pair<UINT_PTR, HWND> &t) { return t.first == id; });
    if (timer == driver->timers_.end())
        return;
    HWND window = timer->second;
    driver->timers_.erase(timer);
    if (IsWindow(window))
        driver->Handle(window);
}

void MessageBoxDriver::Handle(HWND window)
{
    if (!IsMessageBox(window)) {
        if (dialogHandler_)
            dialogHandler_(window);
        return;
    }
    SeenBox box = Read(window);
    int answer = othersAnswer_;
    if (!expected_.empty()) {
        const Expected &want = expected_.front();
        UINT style = MB_TYPEMASK | MB_ICONMASK | MB_HELP;
        EXPECT_TRUE(box.text == want.text &&
                    box.buttons == (want.style & (MB_TYPEMASK | MB_HELP)) &&
                    box.icon == (want.style & MB_ICONMASK) &&
                    (!want.checkCaption || box.caption == want.caption))
            << "message box differs\n  expected: \"" << (want.checkCaption ? want.caption : "*")
            << "\" | \"" << want.text << "\" | " << ButtonsName(want.style & style)
            << ((want.style & MB_HELP) ? " Help" : "") << " | " << IconName(want.style)
            << "\n  shown:    " << Describe(box);
        answer = want.answer;
        expected_.pop_front();
    } else if (othersStrict_) {
        ADD_FAILURE() << "unexpected message box: " << Describe(box);
    }
    if (!GetDlgItem(window, answer)) {
        ADD_FAILURE() << "the box has no button " << answer << ": " << Describe(box);
        answer = (box.buttons & MB_TYPEMASK) == MB_OK ? IDOK : IDCANCEL;
    }
    box.answer = answer;
    seen_.push_back(box);
    PostMessageA(window, WM_COMMAND, MAKEWPARAM(answer, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(window, answer)));
}
