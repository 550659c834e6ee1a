// What every gadget shares: its record in window word 0, the notification
// to its parent, the text colour rule, the arrow-button faces, and the
// class table that RegisterGadgets walks.
#pragma once
#include <windows.h>

// ---------------------------------------------------------------- record
// Window word 0 holds the address of the gadget's record: a zero-filled
// local block made in WM_CREATE and freed in WM_DESTROY.

// Allocates the record and stores it in word 0. On failure records
// RV_OutOfLocalMemory with the size and yields null; WM_CREATE then
// answers GadgetCreateFailed.
void *GadgetCreateRecord(HWND window, SIZE_T size);
template <typename Record>
inline Record *GadgetCreate(HWND window)
{
    return static_cast<Record *>(GadgetCreateRecord(window, sizeof(Record)));
}
// The record, or null.
template <typename Record>
inline Record *GadgetRecord(HWND window)
{
    return reinterpret_cast<Record *>(GetWindowLongPtrA(window, 0));
}
// Frees the record (records RV_KernelError if LocalFree fails); the list
// gadgets also clear the word.
void GadgetFreeRecord(HWND window, bool clearWord);
// What WM_CREATE answers when the gadget cannot be made, and what most
// private messages answer for failure.
const LRESULT GadgetCreateFailed = -1;
const LRESULT GadgetFailure = -1;
const LRESULT GadgetSuccess = 1;

// ---------------------------------------------------------------- parent
// Sends WM_COMMAND to the parent: the control id in the low word of
// wParam, `code` in the high word, the gadget in lParam.
LRESULT GadgetNotifyParent(HWND gadget, WORD code);
// True while `gadget` is a window whose word 0 still holds `record`. A
// gadget asks this after anything that hands control to the host (a
// notification, a host callback, a message box), since the host may have
// destroyed the gadget or its dialog meanwhile; on false it returns at once
// without touching the record.
bool GadgetAlive(HWND gadget, const void *record);
// GadgetNotifyParent, then GadgetAlive; the parent's answer goes to
// `answer` when given.
bool GadgetNotifyAlive(HWND gadget, WORD code, const void *record, LRESULT *answer = nullptr);

// ---------------------------------------------------------------- drawing
// The LCD option, as last given to Gadgets_LCDOption.
extern LONG g_gadgetLcdOption;
// Black or white text for `background`. Without the LCD option: black when
// the green byte is above 128. With it: white only for red 0, green 0 and
// blue below 129.
COLORREF GadgetContrastTextColor(COLORREF background);
// A raised face (DrawEdge, EDGE_RAISED, BF_RECT | BF_MIDDLE).
void GadDrawButtonUp(HDC dc, const RECT *rect);
// A pressed face: filled with COLOR_BTNFACE, framed with COLOR_BTNSHADOW.
// Records RV_GDIError if a brush cannot be made.
void GadDrawButtonDown(HDC dc, const RECT *rect);

// ---------------------------------------------------------------- classes
enum GadgetBackground : unsigned char {
    GB_None,          // hbrBackground null: the gadget paints everything
    GB_SystemColour,  // hbrBackground is the value given (a system colour + 1)
    GB_SolidBrush,    // a solid brush of the colour given, owned by the class
};

struct GadgetClassRow {
    const char *name;
    UINT style;             // WNDCLASS style
    LPCSTR cursor;          // a system cursor, or null when the gadget sets its own
    GadgetBackground background;
    COLORREF colour;        // system colour + 1, or the brush's COLORREF
    WNDPROC procedure;      // the forwarder to the gadget's procedure
};
