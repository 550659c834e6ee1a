// The colour palette controls ("ccpal_popup"): a superclass of the system
// combo box whose one item shows a colour of a fixed table, and whose
// drop-down list is taken over and painted as a grid of colour cells.
// What the control procedure and the grid share.
#pragma once
#include <windows.h>

// ---------------------------------------------------------------- table
const int kColourCount = 256;
const int kFavouriteCount = 16;
extern const COLORREF kColourTable[kColourCount];
extern const BYTE kFavourites[kFavouriteCount];
// The entry from 1 to 255 nearest to `colour`: the sum of the channel
// differences, the first of equal distances. Entry 0 is never chosen.
int NearestColourIndex(COLORREF colour);

// ---------------------------------------------------------------- cells
// Cells 0 to 15 are the favourites, cell n from 16 on the colour n - 16.
const int kGridColumns = 16;
const int kCellRows = 17;                         // the favourites and 16 rows of the table
const int kCellCount = kGridColumns * kCellRows;  // 272
const DWORD kNoCell = 65535;

// The library's one layout, computed by ccRegisterClass.
struct PaletteLayout {
    int gridRows;     // 18: the cell rows and the label line
    int gridColumns;  // 16
    int gridWidth;
    int gridHeight;
    int cellGap;
    int cellWidth;
    int cellHeight;
    HBITMAP gridBitmap;  // made at first need
    char *labelText;     // the text before the number, made at first need
};

// The instance block of one control, in locked global memory.
struct PaletteInstance {
    LONG selectedIndex;
    HWND listWindow;
    HWND comboWindow;
    LONG listReady;
    LONG listActive;
    LONG frameShown;
    LONG tracking;
    DWORD flashCell;
    PaletteLayout *layout;
    DWORD hoverCell;
    LONG labelPending;
    LONG labelWidth;
    LONG numberWidth;
    LONG numberHeight;
    LONG captured;
    LONG dropRequested;
};

// ---------------------------------------------------------------- shared state
struct PaletteLibrary {
    bool registered;
    WNDPROC comboProc;     // the system combo box's procedure
    int classExtraBase;    // where the class words start
    int windowExtraBase;   // where the window words start
    int itemHeight;        // a desktop font's height + 2
    HPALETTE palette;      // the 256 colours
    char *colourString;    // from ccSetColorString
    WNDPROC oldListProc;   // the taken-over list's own procedure: one list open at a time
    PaletteLayout layout;
};
extern PaletteLibrary g_palette;

extern const char kPaletteClass[];
// The instance block of `control`, or null.
PaletteInstance *PaletteBlock(HWND control);
// The class word that holds the grid text's font.
HFONT PaletteClassFont(HWND control);

// ---------------------------------------------------------------- grid
// Makes the layout from the dialog base units; false without a desktop DC.
bool ComputePaletteLayout();
// Places the list under the control (above it near the screen's bottom).
void PlacePaletteList(PaletteInstance *block, HWND control);
// Takes the list over: grid, flashing timer and the list procedure.
void TakeOverPaletteList(PaletteInstance *block, HWND control);
// Gives the list its own procedure back.
void ReleasePaletteList(PaletteInstance *block);
// Moves the frame to `cell` and makes its colour the selection.
void MovePaletteFrame(PaletteInstance *block, HWND control, DWORD cell);
// The cell a key leads to from `cell`; `cell` itself for other keys.
DWORD PaletteKeyCell(DWORD cell, WPARAM key, bool *known);
// The colour index a cell stands for.
LONG PaletteCellIndex(DWORD cell);
// Frees the grid and the label text.
void FreePaletteGrid();
