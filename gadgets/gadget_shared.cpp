// Services every gadget shares: its record, the notification to its
// parent, and the drawing helpers for text colour and arrow buttons.
#include "gadget_frame.h"
#include "qziso32.h"

LONG g_gadgetLcdOption = 0;

void *GadgetCreateRecord(HWND window, SIZE_T size)
{
    void *record = LocalAlloc(LPTR, size);
    if (!record) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(size));
        return nullptr;
    }
    SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(record));
    return record;
}

void GadgetFreeRecord(HWND window, bool clearWord)
{
    HLOCAL record = reinterpret_cast<HLOCAL>(GetWindowLongPtrA(window, 0));
    if (record && LocalFree(record))
        OSErrorSetErrorInfo(RV_KernelError);
    if (clearWord)
        SetWindowLongPtrA(window, 0, 0);
}

LRESULT GadgetNotifyParent(HWND gadget, WORD code)
{
    WPARAM wParam = MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(gadget)), code);
    return SendMessageA(GetParent(gadget), WM_COMMAND, wParam, reinterpret_cast<LPARAM>(gadget));
}

bool GadgetAlive(HWND gadget, const void *record)
{
    return IsWindow(gadget) && GetWindowLongPtrA(gadget, 0) == reinterpret_cast<LONG_PTR>(record);
}

bool GadgetNotifyAlive(HWND gadget, WORD code, const void *record, LRESULT *answer)
{
    LRESULT result = GadgetNotifyParent(gadget, code);
    if (answer)
        *answer = result;
    return GadgetAlive(gadget, record);
}

COLORREF GadgetContrastTextColor(COLORREF background)
{
    const COLORREF black = RGB(0, 0, 0);
    const COLORREF white = RGB(255, 255, 255);
    if (!g_gadgetLcdOption)
        return GetGValue(background) > 128 ? black : white;
    bool dark = GetRValue(background) == 0 && GetGValue(background) == 0 &&
                GetBValue(background) < 129;
    return dark ? white : black;
}

void GadDrawButtonUp(HDC dc, const RECT *rect)
{
    RECT face = *rect;
    DrawEdge(dc, &face, EDGE_RAISED, BF_RECT | BF_MIDDLE);
}

void GadDrawButtonDown(HDC dc, const RECT *rect)
{
    // Fill with the face colour, then frame with the shadow colour.
    for (int step = 0; step < 2; ++step) {
        HBRUSH brush = CreateSolidBrush(GetSysColor(step ? COLOR_BTNSHADOW : COLOR_BTNFACE));
        if (!brush) {
            OSErrorSetErrorInfo(RV_GDIError, "CreateSolidBrush");
            return;
        }
        if (step)
            FrameRect(dc, rect, brush);
        else
            FillRect(dc, rect, brush);
        DeleteObject(brush);
    }
}
