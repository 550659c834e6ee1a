// The Waffle's roving edit: its subclass turns the navigation keys into
// moves between cells and passes everything else to the edit.
#include "waffle.h"
#include "time_gadgets.h"
#include "../gadgets/gadget_frame.h"
#include "qziso32.h"

namespace {

void GoTo(HWND waffle, LONG index)
{
    SendMessageA(waffle, WFM_GOTOCELL, static_cast<WPARAM>(static_cast<DWORD>(index)), 0);
}

bool Shifted() { return GetKeyState(VK_SHIFT) < 0; }

// A navigation key: true when the key was the gadget's.
bool OnKey(HWND edit, HWND waffle, WaffleRecord *r, WPARAM key)
{
    LONG current = static_cast<LONG>(r->currentCell);
    LONG columns = static_cast<LONG>(r->columnCount);
    DWORD start = 0, end = 0;
    switch (key) {
    case VK_PRIOR:
    case VK_NEXT: {
        LONG rows = WafflePageRows(waffle, r);
        GoTo(waffle, current + (key == VK_NEXT ? rows : -rows) * columns);
        return true;
    }
    case VK_END:
        if (!Shifted())
            return false;
        GoTo(waffle, static_cast<LONG>(r->rowCount * r->columnCount) - 1);
        return true;
    case VK_HOME:
        if (!Shifted())
            return false;
        GoTo(waffle, 0);
        return true;
    case VK_LEFT:
        SendMessageA(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
        if (start != end || start != 0)
            return false;
        GoTo(waffle, current - 1);
        return true;
    case VK_RIGHT:
        SendMessageA(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
        if (start != end || start != static_cast<DWORD>(GetWindowTextLengthA(edit)))
            return false;
        GoTo(waffle, current + 1);
        return true;
    case VK_UP:
        GoTo(waffle, current - columns);
        return true;
    case VK_DOWN:
        GoTo(waffle, current + columns);
        return true;
    }
    return false;
}

}  // namespace

extern "C" LRESULT WINAPI GadWEditSubProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam)
{
    // Only the edit of a Waffle has a record to go to: the parent's word 0
    // of any other class means something else.
    HWND waffle = GetParent(edit);
    bool ours = waffle && static_cast<LONG_PTR>(GetClassLongPtrA(waffle, GCLP_WNDPROC)) ==
                              reinterpret_cast<LONG_PTR>(WaffleWndProc);
    WaffleRecord *r = ours ? WaffleOf(waffle) : nullptr;
    if (!r || r->edit != edit || !r->oldEditProc)
        return DefWindowProcA(edit, message, wParam, lParam);
    switch (message) {
    case WM_CHAR:
        if (wParam == '\t')
            return 0;
        break;
    case WM_KEYDOWN:
        if (r->columnCount && OnKey(edit, waffle, r, wParam))
            return 0;
        break;
    case WM_SYSKEYDOWN:
        if (wParam == VK_DOWN && r->columnCount) {
            HWND head = r->columns[r->currentCell % r->columnCount].head;
            if (head)
                SendMessageA(head, kHeadOpen, 1, 0);
            return 0;
        }
        break;
    case WM_LBUTTONDBLCLK:
        return 0;
    }
    return CallWindowProcA(r->oldEditProc, edit, message, wParam, lParam);
}
