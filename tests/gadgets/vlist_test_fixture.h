// What the tests of the two virtual lists share: the row height of the
// system font and a fixture whose recording parent creates the lists.
#pragma once
#include "qz_test.h"
#include "window_harness.h"
#include <windows.h>

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
    RecordingParent *parent_ = nullptr;
};
