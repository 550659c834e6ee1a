// Centring a dialog over its owner, kept on the screen.
#include "dialog_placement.h"

HWND TopLevelOf(HWND window)
{
    for (HWND parent = GetParent(window); parent; parent = GetParent(window))
        window = parent;
    return window;
}

namespace {

// One axis: centred in the area, then held between 0 and screen - size.
int Place(int areaStart, int areaSize, int size, int screenSize)
{
    int position = (areaSize - size) / 2 + areaStart;
    int room = screenSize - size;
    if (position < 1 || room < 1)
        return 0;
    return position >= room ? room : position;
}

}  // namespace

void CentreDialog(HWND dialog, UINT flags, bool leaveIfIconic)
{
    int screenWidth = GetSystemMetrics(SM_CXSCREEN);
    int screenHeight = GetSystemMetrics(SM_CYSCREEN);
    RECT area = {0, 0, screenWidth, screenHeight};
    if (GetParent(dialog)) {
        HWND top = TopLevelOf(dialog);
        if (leaveIfIconic && IsIconic(top))
            return;
        GetClientRect(top, &area);
        MapWindowPoints(top, nullptr, reinterpret_cast<POINT *>(&area), 2);
    }
    RECT frame;
    GetWindowRect(dialog, &frame);
    int width = frame.right - frame.left;
    int height = frame.bottom - frame.top;
    int x = Place(area.left, area.right - area.left, width, screenWidth);
    int y = Place(area.top, area.bottom - area.top, height, screenHeight);
    SetWindowPos(dialog, nullptr, x, y, 0, 0, flags);
}
