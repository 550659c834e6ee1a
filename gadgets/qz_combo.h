// "QzCombo": a combo box that drops down any control. The units share the
// record and a few helpers declared here:
//   qz_combo.cpp          the window procedure, creation, layout, font, paint, arrow
//   qz_combo_open.cpp     opening and closing, the ancestors' subclass, the own loop
//   qz_combo_children.cpp the child kinds, the edit and child subclasses, the
//                         routing of notifications and the text conversions
#pragma once
#include <windows.h>
#include "qziso32.h"

struct ComboRecord {
    RECT dropRect;   // where the child lies in the gadget
    RECT arrowRect;  // the arrow button
    RECT frameRect;  // the strip
    WNDPROC editOldProc;
    WNDPROC dropOldProc;
    DWORD unused1, unused2;
    HWND edit;        // null in the static form
    HWND child;       // the dropped control, or null
    HWND parent;      // the dialog parent
    HWND zOrderAfter; // the window before the gadget in Z-order while open
    HDC arrowDC;      // both faces of the arrow, side by side
    HDC screenDC;     // the screen under the drop-down, while open
    HBITMAP arrowSavedBitmap;
    HBITMAP screenSavedBitmap;
    HFONT font;
    LONG editInset;
    LONG reserved;
    LONG fixedStripHeight;
    LONG stripHeight;
    LONG controlId;
    LONG childSide;
    LONG arrowsHidden;
    LONG isOpen;
    LONG inShowHide;
    DWORD unused3;
    LONG updatingText;
    LONG childKind;
    DWORD unused4;
    LONG chooseOnRelease;
    // Beyond the shared layout: what the closed form is laid out with.
    LONG fullHeight;     // height of strip and child together
    LONG droppedUp;      // the open form has the strip at the bottom
    POINT closedOrigin;  // the gadget's place in its parent while open
    SIZE closedSize;     // its size there
    LONG loopDepth;      // own message loops running for this gadget
    LONG subclassed;     // ancestors carry the subclass
    RECT screenRect;     // where the screen copy was taken, in screen coordinates
    SIZE frame;          // window size less client size
};

// Close modes of QCM_SHOWDROPDOWN, and the one used when the gadget or an
// ancestor is being destroyed: no notification, no focus change.
enum ComboCloseMode : LONG {
    kCloseOrdinary = 0,
    kCloseFocus = 1,
    kCloseByAncestor = 2,
    kCloseTeardown = 3,    // an ancestor is being destroyed: back into it, to go with it
    kCloseDestroying = 4,  // the combo itself is being destroyed: left where it is
};

inline ComboRecord *ComboOf(HWND window)
{
    return reinterpret_cast<ComboRecord *>(GetWindowLongPtrA(window, 0));
}

// qz_combo.cpp
void ComboLayout(HWND gadget, ComboRecord *r, int width, int fullHeight, bool upward);
// Sends the gadget's own code to `parent` (the dialog parent); false when
// the gadget died meanwhile.
bool ComboNotifyOwn(HWND gadget, ComboRecord *r, WORD code);
// Sends a passed-on code: to `parent` under `controlId` while open, else to
// GetParent. False when the gadget died meanwhile.
bool ComboPassOn(HWND gadget, ComboRecord *r, WORD id, WORD code, LPARAM from);
void ComboEndTrack(HWND gadget);

// qz_combo_open.cpp
LRESULT ComboOpen(HWND gadget, ComboRecord *r);
LRESULT ComboClose(HWND gadget, ComboRecord *r, LONG mode);
// Undoes the subclass of every ancestor that carries this gadget's property.
void ComboUnsubclassAncestors(HWND gadget, ComboRecord *r);
// Wakes the own loop so that it sees the state change.
void ComboWakeLoop();

// qz_combo_children.cpp
LRESULT ComboCreateChild(HWND gadget, ComboRecord *r, WPARAM wParam, LPARAM lParam);
bool ComboCreateEdit(HWND gadget, ComboRecord *r);
void ComboRestoreEdit(ComboRecord *r);
LRESULT ComboOnCommand(HWND gadget, ComboRecord *r, WPARAM wParam, LPARAM lParam);
void ComboCopyChildText(HWND gadget, ComboRecord *r);
LRESULT ComboGetText(HWND gadget, ComboRecord *r, WPARAM size, LPARAM buffer);
LRESULT ComboSetText(HWND gadget, ComboRecord *r, LPARAM text);
// The window that holds the text: the edit field, or the gadget itself in
// the static form.
inline HWND ComboTextWindow(HWND gadget, ComboRecord *r) { return r->edit ? r->edit : gadget; }
bool ComboChildLive(ComboRecord *r);
