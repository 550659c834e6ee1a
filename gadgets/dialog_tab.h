// "DialogTab": what its three source units share. The gadget's record and
// its tab nodes, the template walk, the show and hide steps of a page, and
// the strip's layout and painting.
#pragma once
#include "gadget_frame.h"
#include "../core/module_globals.h"
#include <cstddef>

// A tab. One zero-filled local block; the words marked spare keep the
// record's 32-bit layout.
const int kTabControlSlots = 255;
struct TabNode {
    TabNode *prev;
    TabNode *next;
    DWORD spare1;
    char *label;                 // owned
    DWORD spare2[2];
    DWORD tabId;
    DWORD templateSize;          // bytes of `dialogTemplate`
    RECT rect;                   // in the gadget's client area
    DWORD *exclusionIds;         // owned, 0-terminated, or null
    DWORD *inclusionIds;         // owned, 0-terminated, or null
    HGLOBAL dialogTemplate;      // the loaded template, or null
    BOOL hidden;                 // not shown, cannot be reached
    HWND labelWindow;            // the "Zimbo" over the tab
    HWND controls[kTabControlSlots];  // made from the template, in its order
};

// The gadget's record, in window word 0.
struct DialogTabRecord {
    TabNode *currentTab;
    TabNode *firstTab;
    HFONT font;                  // from WM_SETFONT; null: the system font
    DWORD spare;
    BOOL layoutDirty;            // set by WM_SIZE and WM_SETFONT, read by nothing
};

#if defined(_M_IX86) || defined(__i386__)
static_assert(sizeof(DialogTabRecord) == 20, "DialogTabRecord keeps its 32-bit layout");
static_assert(offsetof(TabNode, rect) == 32 && offsetof(TabNode, controls) == 68,
              "TabNode keeps its 32-bit layout");
#endif

const LONG kTabKeepTextStyle = 0x0002;
const LONG kTabOwnControlsStyle = 0x0004;
const WORD kTabChanging = 0x64;
const WORD kTabChanged = 0xC8;
const int kTabCurrentBitmap = 2100;
const int kTabOtherBitmap = 2101;
const COLORREF kTabTransparent = 0xFFFF00;

inline bool OwnsControls(HWND gadget)
{
    return (GetWindowLongA(gadget, GWL_STYLE) & kTabOwnControlsStyle) != 0;
}

// ---------------------------------------------------------------- pages
// Loads dialog template `name` of `module` and makes its controls as
// children of the gadget's parent (or finds them there by id), storing the
// handles in node->controls. With `hide`, the controls made here start
// hidden and disabled. Null with RV_UserError when the template or a window
// cannot be had. On success sets node->templateSize.
HGLOBAL TabLoadTemplate(HWND gadget, TabNode *node, HMODULE module, LPCSTR name, bool hide,
                        DWORD *size);
// Hides the controls of node's template, leaving those whose id also
// occurs in `next` (unless every tab owns its controls). Adds their places
// to *region when region is given; a region that cannot be grown is
// deleted and set to null. Stops at once when the gadget is destroyed
// meanwhile (the host, told of a focus change, may do that).
void TabHideDialogControls(HWND gadget, const TabNode *node, HGLOBAL next, DWORD nextSize,
                           HRGN *region);
// The place of `control` in the client coordinates of `window`.
RECT TabRectIn(HWND window, HWND control);
// Shows, moves and enables node's controls and fixes their Z-order.
void TabShowDialogControls(HWND gadget, const TabNode *node, HRGN *region);
// True when `id` is the id of an item of the template.
bool TabTemplateHasId(HGLOBAL dialogTemplate, DWORD size, WORD id);

// The name of the property that marks a hidden control the host had
// disabled: 1 when it was disabled, 0 when not.
extern const char kDisabledMarkProperty[];

// ---------------------------------------------------------------- strip
// The size of the current tab's end piece; false with RV_GDIError.
bool TabEndPieceSize(SIZE *size);
// Places every tab and its "Zimbo"; hidden tabs keep their slot.
void TabLayoutStrip(HWND gadget, DialogTabRecord *record);
void TabPaint(HWND gadget, DialogTabRecord *record);
