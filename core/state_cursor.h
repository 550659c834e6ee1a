// The library's one cursor loader, shared by the busy cursor and the gadgets.
#pragma once
#include "qziso32.h"

// Cursor `id` of `module` by the user's "Cursor State" setting: set s lies at
// the ids s * 1000 up; set 2 takes a few cursors from animated files in the
// current folder. A missing cursor gives null, with nothing recorded.
HCURSOR LoadStateCursor(HMODULE module, DWORD id);
