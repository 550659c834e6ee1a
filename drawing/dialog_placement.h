// Placing dialogs, shared by the dialog skin and the one-time notice.
#pragma once
#include <windows.h>

// The window at the top of `window`'s chain of parents (itself if it has none).
HWND TopLevelOf(HWND window);

// Centres `dialog` over the client area of its top-level parent, or over
// the screen if it has no parent, and keeps it on the screen: a dialog too
// large for it stands at the top left. `flags` go to SetWindowPos. With
// `leaveIfIconic`, a dialog whose top-level parent is iconic is not moved.
void CentreDialog(HWND dialog, UINT flags, bool leaveIfIconic);
