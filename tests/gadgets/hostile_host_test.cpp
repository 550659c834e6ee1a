// The virtual lists under a host that, inside one notification or callback,
// destroys the list or opens a message box; run under Wine's heap checks.
#include "vlist_test_fixture.h"
#include "failure_seam.h"
#include "message_box_driver.h"
#include "qziso32.h"
#include <functional>
#include <set>
#include <vector>

namespace {

const DWORD kRows = 6;
const UINT kParent = 0x10000;  // marks a WM_COMMAND code in `target`

struct Hostile {
    bool dynamic;
    UINT target;        // callback code, or kParent | WM_COMMAND code
    bool box;           // open a box rather than destroy
    HWND list = nullptr;
    std::set<UINT> seen;
    bool acted = false;
    void Meet(UINT what)
    {
        seen.insert(what);
        if (what != target || acted)
            return;
        acted = true;
        if (box)
            MessageBoxA(GetParent(list), "inside a notification", "host", MB_OK);
        else
            DestroyWindow(list);
    }
};

void Add(HWND w, Hostile &h, LONG index)
{
    DWORD key = static_cast<DWORD>(index);
    if (h.dynamic)
        DVListBox_AddString(w, index, &key, "item", index);
    else
        VListBox_AddString(w, index, "item", index);
}

LRESULT CALLBACK HostileProc(HWND w, UINT code, void *request, LPARAM data)
{
    Hostile &h = *reinterpret_cast<Hostile *>(data);
    if (code == VLN_INIT)
        for (DWORD i = 0; i < static_cast<VLINITREQUEST *>(request)->firstRows; ++i)
            Add(w, h, i);
    if (code == VLN_LOAD && h.dynamic) {
        auto *load = static_cast<DVLLOADREQUEST *>(request);
        LONG first = load->first == DVL_SENTINELTOP ? 0 : load->first;
        for (DWORD i = 0; i < load->count && first >= 0; ++i)
            Add(w, h, first + i);
    } else if (code == VLN_LOAD) {
        auto *load = static_cast<VLLOADREQUEST *>(request);
        for (DWORD i = load->first; i <= load->last; ++i)
            Add(w, h, i);
    }
    if (code == VLN_FIND && h.dynamic)
        static_cast<DVLFINDREQUEST *>(request)->reload = 1;
    h.Meet(code);
    return 0;
}

// What a user and a host do with a list, each step only while it lives.
void Exercise(HWND list, Hostile &h)
{
    const int rh = RowHeight();
    auto live = [&] { return IsWindow(list) != FALSE; };
    const std::function<void()> steps[] = {
        [&] { SetFocus(list); },
        [&] { SetWindowPos(list, nullptr, 0, 0, 200, 2 * kRows * rh, SWP_NOMOVE | SWP_NOZORDER); },
        [&] { UpdateWindow(list); },
        [&] { Click(list, 5, 2 * rh + 1); },
        [&] { Key(list, VK_DOWN); },
        [&] { Key(list, VK_NEXT); },
        [&] { SendMessageA(list, WM_VSCROLL, SB_BOTTOM, 0); },
        [&] { SendMessageA(list, WM_VSCROLL, SB_TOP, 0); },
        [&] { h.dynamic ? DVListBox_SetTopIndex(list, 300, TRUE) : VListBox_SetTopIndex(list, 300); },
        [&] { h.dynamic ? DVListBox_GetItemData(list, 5) : VListBox_GetItemData(list, 5); },
        [&] { SetWindowTextA(list, "item"); },
        [&] { DoubleClick(list, 5, rh + 1); },
        [&] { SendMessageA(list, WM_CHAR, 'b', 1); },
        [&] {
            SendMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 1));
            if (IsWindow(list))
                SendMessageA(list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, -5));
            if (IsWindow(list))
                SendMessageA(list, WM_LBUTTONUP, 0, MAKELPARAM(5, 1));
        },
        [&] { SendMessageA(list, WM_SETFONT, 0, TRUE); },
        [&] { SetFocus(GetParent(list)); },
        [&] { DestroyWindow(list); },
    };
    for (const auto &step : steps)
        if (live())
            step();
}

class HostileHost : public VListFixture {
protected:
    // A list of 500 items with a cache of 20 and a batch of 10, for `h`.
    void Make(Hostile &h, DWORD style)
    {
        h.list = CreateList(h.dynamic ? "QzDVListBox" : "QzVListBox", 7,
                            style | (h.dynamic ? VLS_STRINGS : 0), kRows);
        ASSERT_TRUE(h.list);
        if (h.dynamic)
            DVListBox_Initialize(h.list, 500, 20, 10, 4, HostileProc, reinterpret_cast<LPARAM>(&h));
        else
            VListBox_Initialize(h.list, 500, 20, 10, HostileProc, reinterpret_cast<LPARAM>(&h));
    }
    void Walk(bool dynamic, const std::vector<UINT> &targets)
    {
        MessageBoxDriver boxes;
        boxes.AnswerOthers(IDOK, false);
        for (bool box : {false, true})
            for (UINT target : targets) {
                Hostile h{dynamic, target, box, nullptr, {}, false};
                parent_->Answer([&](HWND, UINT message, WPARAM wParam, LPARAM, bool *) {
                    if (message == WM_COMMAND)
                        h.Meet(kParent | HIWORD(wParam));
                    return LRESULT(0);
                });
                Make(h, VLS_OWNERDRAW | VLS_NOTIFY | VLS_WANTCHARS);
                Exercise(h.list, h);
                parent_->Answer(nullptr);
                EXPECT_TRUE(h.acted) << "target " << std::hex << target << " box " << box;
                EXPECT_FALSE(IsWindow(h.list));
                EXPECT_TRUE(HeapValidate(GetProcessHeap(), 0, nullptr)) << std::hex << target;
                if (HasFailure())
                    return;
            }
    }
};

TEST_F(HostileHost, BothListsSurviveAHostThatDestroysThemOrOpensABoxAnywhere)
{
    Walk(false, {VLN_INIT, VLN_LOAD, VLN_RELEASE, VLN_MEASURE, VLN_DRAW, VLN_SELCHANGE, VLN_DBLCLK,
                 VLN_SETFOCUS, VLN_KILLFOCUS, VLN_CHAR, VLN_FIND, VLN_GETTEXT, VLN_DESTROY,
                 kParent | 0x0B, kParent | 0x0C, kParent | 0x11, kParent | 0x12});
    Walk(true, {VLN_INIT, VLN_LOAD, VLN_RELEASE, VLN_MEASURE, VLN_DRAW, VLN_SELCHANGE, VLN_DBLCLK,
                VLN_SETFOCUS, VLN_KILLFOCUS, VLN_CHAR});
}

// A drag held below the rows auto-scrolls on timer 29; losing the capture
// (WM_CANCELMODE, or another window taking it) ends it: the timer stops and
// the release that follows tells nobody.
TEST_F(HostileHost, DragsEndWhenTheCaptureIsLost)
{
    for (bool dynamic : {false, true})
        for (bool cancel : {false, true}) {
            Hostile h{dynamic, 0, false, nullptr, {}, false};
            Make(h, VLS_NOTIFY);
            SendMessageA(h.list, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 1));
            SendMessageA(h.list, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, kRows * RowHeight() + 5));
            ASSERT_EQ(h.list, GetCapture());
            if (cancel)
                SendMessageA(h.list, WM_CANCELMODE, 0, 0);
            else
                SetCapture(parent_->Window());
            EXPECT_NE(h.list, GetCapture());
            EXPECT_FALSE(KillTimer(h.list, 29)) << "dynamic " << dynamic << " cancel " << cancel;
            h.seen.clear();
            parent_->Clear();
            SendMessageA(h.list, WM_LBUTTONUP, 0, MAKELPARAM(5, 1));
            EXPECT_TRUE(h.seen.empty());
            EXPECT_TRUE(parent_->Take().empty());
            ReleaseCapture();
            DestroyWindow(h.list);
        }
}

// With GDI objects short, each failure while a list scrolls and repaints is
// recorded; with memory short, DVListBox_SetCurSel says why it failed.
TEST_F(HostileHost, ShortagesWhilePaintingAreRecorded)
{
    for (bool dynamic : {false, true}) {
        Hostile h{dynamic, 0, false, nullptr, {}, false};
        Make(h, 0);
        auto scroll = [&] {
            SendMessageA(h.list, WM_VSCROLL, SB_TOP, 0);
            SendMessageA(h.list, WM_VSCROLL, SB_PAGEDOWN, 0);
        };
        unsigned points;
        {
            FailureSeam count(FailureSeam::Gdi, 0);
            scroll();
            points = count.Calls();
        }
        ASSERT_GT(points, 0u);
        for (unsigned n = 1; n <= points; ++n) {
            OSErrorClearError();
            {
                FailureSeam seam(FailureSeam::Gdi, n);
                scroll();
            }
            EXPECT_NE(0, OSErrorGetErrorInfo()->errorCode) << "dynamic " << dynamic << " point " << n;
        }
        if (dynamic) {
            OSErrorClearError();
            FailureSeam seam(FailureSeam::Memory, 1);
            EXPECT_FALSE(DVListBox_SetCurSel(h.list, 3));
            EXPECT_EQ(RV_OutOfLocalMemory, OSErrorGetErrorInfo()->errorCode);
        }
        OSErrorClearError();
        DestroyWindow(h.list);
    }
}

}  // namespace
