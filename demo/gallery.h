// The gallery: one page per gadget family, each showing its gadgets with
// sample data. A page is one row of kGalleryPages and one function that
// builds it.
#pragma once
#include <windows.h>

struct GalleryPage {
    const char *name;     // also the PNG's file name
    const char *title;    // shown on the page's button and caption
    // Builds the page as a window owned by `host` and returns the window to
    // show and picture (a page window or a dialog), or null when a gadget
    // could not be made.
    HWND (*build)(HWND host);
};

extern const GalleryPage kGalleryPages[];
extern const int kGalleryPageCount;

// Registers a window class of this program with the arrow cursor and the
// dialog face colour as its background; yields the atom, 0 on failure.
ATOM RegisterFaceClass(const char *name, WNDPROC procedure);

// Makes an empty page window of `width` x `height` client pixels owned by
// `host`, with a grey face; the page's gadgets are its children.
HWND MakePageWindow(HWND host, const char *title, int width, int height);

// Writes `pixels` (0x00RRGGBB, top-down, `width` x `height`) as a PNG
// through the system's image encoder. False on any failure.
bool WritePng(const wchar_t *path, int width, int height, const DWORD *pixels);

// Live gallery only: puts a log pane under `page` that lists every
// notification its gadgets send it (class, control id, code by name).
bool AttachNotificationLog(HWND page);

// The Page gadget's page (gallery_page.cpp): an A4 sheet with 2 x 3 cells.
HWND BuildPageLayoutPage(HWND host);
// The FreeTime page (gallery_free_time.cpp).
HWND BuildFreeTimePage(HWND host);
// The mapping and canvas gadgets' pages (gallery_mapper.cpp).
HWND BuildFieldMapperPage(HWND host);
HWND BuildSuperTextPage(HWND host);
// Pages built in their own units.
HWND BuildWafflePage(HWND host);
// The page of the multi-select text list and the colour palette control.
HWND BuildListBoxPalettePage(HWND host);
// The QzCombo page (gallery_combo.cpp).
HWND BuildComboPage(HWND host);
// Drop-downs pictured open (gallery_dropped.cpp).
HWND BuildComboDroppedPage(HWND host);
HWND BuildPaletteDroppedPage(HWND host);
