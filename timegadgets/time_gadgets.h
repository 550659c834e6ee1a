// The window procedures of the time gadgets, for the class table.
#pragma once
#include <windows.h>

LRESULT CALLBACK TumblerWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Exported under its own name as well, so it carries C linkage.
extern "C" LRESULT CALLBACK GadTSWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK DateTrackerWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK TimeTrackerWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK GasGaugeWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK StopWatchWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK FreeTimeForwarder(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK WaffleWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Exported under their own names as well.
extern "C" LRESULT CALLBACK GadWWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
extern "C" LRESULT CALLBACK GadWEditSubProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam);
