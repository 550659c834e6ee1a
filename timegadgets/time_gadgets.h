// The window procedures of the time gadgets, for the class table.
#pragma once
#include <windows.h>

LRESULT CALLBACK TumblerWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK TimeTrackerWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
