// What the tests of the two virtual lists share: the row height of the
// system font, the host's request log, and a fixture whose recording parent
// creates the lists.
#pragma once
#include "qz_test.h"
#include "window_harness.h"
#include <string>
#include <vector>
#include <windows.h>

// A host's requests in order, one line each: "LOAD 10 29", "RELEASE 3".
typedef std::vector<std::string> Log;
struct RequestLog {
    Log log;
    Log Take()
    {
        Log taken;
        taken.swap(log);
        return taken;
    }
};

// The lines of `log` that start with `prefix`.
inline Log Lines(const Log &log, const std::string &prefix)
{
    Log lines;
    for (const std::string &line : log)
        if (line.rfind(prefix, 0) == 0)
            lines.push_back(line);
    return lines;
}

// RELEASE for `first` to `last`, then `then`.
inline Log Releases(long first, long last, const std::string &then)
{
    Log log;
    for (long i = first; i <= last; ++i)
        log.push_back("RELEASE " + std::to_string(i));
    log.push_back(then);
    return log;
}

// One row in `font` (the system font when null): the text height plus its
// internal leading.
inline int RowHeight(HFONT font = nullptr)
{
    TEXTMETRICA tm = FontMetrics(font);
    return tm.tmHeight + tm.tmInternalLeading;
}

class VListFixture : public GadgetTest {
protected:
    void SetUp() override
    {
        GadgetTest::SetUp();
        parent_ = new RecordingParent(400, 600);
        parent_->Ignore(WM_CTLCOLORSCROLLBAR);
    }
    void TearDown() override
    {
        delete parent_;
        GadgetTest::TearDown();
    }
    // A list of class `className`, 200 wide and `rows` rows high, with a
    // vertical scroll bar.
    HWND CreateList(const char *className, int id, DWORD style, DWORD rows)
    {
        return parent_->CreateChild(className, id, WS_VSCROLL | style, 0, 0, 200, rows * RowHeight());
    }
    // The WM_COMMAND codes the parent heard from `list` (0 for one from
    // elsewhere).
    std::vector<WORD> Codes(HWND list)
    {
        std::vector<WORD> codes;
        parent_->Pump();
        for (const Message &m : parent_->Take())
            if (m.message == WM_COMMAND)
                codes.push_back(LOWORD(m.wParam) == GetDlgCtrlID(list) && m.lParam == reinterpret_cast<LPARAM>(list)
                                    ? HIWORD(m.wParam) : 0);
        return codes;
    }
    RecordingParent *parent_ = nullptr;
};
