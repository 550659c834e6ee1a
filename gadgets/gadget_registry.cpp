// Registration of the gadget classes, nested: the classes exist from the
// first successful RegisterGadgets to the balancing last UnRegisterGadgets.
#include "gadget_frame.h"
#include "../core/module_globals.h"
#include "../timegadgets/time_gadgets.h"

LRESULT CALLBACK DialogTabWndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK ZimboWndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK QzBitmapWndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK PageWndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

// The window procedures of the gadgets in the table.
LRESULT CALLBACK GadVListWndProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK GadDVListForwarder(HWND, UINT, WPARAM, LPARAM);
extern "C" LRESULT CALLBACK GadFMWndProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK SuperTextWndProc(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK QzListBoxForwarder(HWND, UINT, WPARAM, LPARAM);
LRESULT CALLBACK ComboClassProc(HWND, UINT, WPARAM, LPARAM);

namespace {

// The gadget classes in registration order, one row each; every class has
// one pointer-sized word of window extra and no class extra. A gadget joins
// by adding its row here.
const GadgetClassRow kGadgetClasses[] = {
    {"StopWatch", 0x6003, IDC_ARROW, GB_None, 0, StopWatchWndProc},
    {"Page", 0x6003, IDC_ARROW, GB_SystemColour, COLOR_WINDOW + 1, PageWndProc},
    {"DialogTab", 0x600B, IDC_ARROW, GB_None, 0, DialogTabWndProc},
    {"Zimbo", 0x400B, IDC_ARROW, GB_None, 0, ZimboWndProc},
    {"QzBitmap", 0x6003, IDC_ARROW, GB_None, 0, QzBitmapWndProc},
    {"GasGauge", 0x6003, IDC_ARROW, GB_SolidBrush, 0xFFFFFF, GasGaugeWndProc},
    {"FieldMapper", 0x4003, IDC_ARROW, GB_None, 0, GadFMWndProc},
    {"FreeTime", 0x6003, IDC_ARROW, GB_SystemColour, COLOR_WINDOW + 1, FreeTimeForwarder},
    {"QzListBox", 0x4003, IDC_ARROW, GB_None, 0, QzListBoxForwarder},
    {"QzVListBox", 0x600B, IDC_ARROW, GB_None, 0, GadVListWndProc},
    {"QzDVListBox", 0x600B, IDC_ARROW, GB_None, 0, GadDVListForwarder},
    {"Waffle", 0x4003, IDC_IBEAM, GB_SystemColour, COLOR_WINDOW + 1, WaffleWndProc},
    {"TimeTracker", 0x6003, nullptr, GB_SolidBrush, 0x818100, TimeTrackerWndProc},
    {"DateTracker", 0x4003, IDC_ARROW, GB_SolidBrush, 0xC0C0C0, DateTrackerWndProc},
    {"TimeSetter", 0x6003, IDC_ARROW, GB_SolidBrush, 0x818100, GadTSWndProc},
    {"QzCombo", 0x4800, IDC_ARROW, GB_None, 0, ComboClassProc},
    {"Tumbler", CS_GLOBALCLASS | CS_HREDRAW | CS_VREDRAW, IDC_ARROW, GB_SystemColour, COLOR_WINDOW + 1,
     TumblerWndProc},
    {"SuperText", 0x4003, IDC_ARROW, GB_SolidBrush, 0xFFFFFF, SuperTextWndProc},
    {nullptr, 0, nullptr, GB_None, 0, nullptr},
};

// The order in which the last UnRegisterGadgets takes the classes down.
// Names not registered are passed over.
const char *const kUnregisterOrder[] = {
    "QzCombo",  "TimeTracker", "TimeSetter", "QzListBox", "QzVListBox", "QzDVListBox",
    "DateTracker", "Waffle",   "StopWatch",  "Tumbler",   "GasGauge",   "FieldMapper",
    "SuperText", "FreeTime",   "QzBitmap",   "DialogTab", "Zimbo",      "Page",
};

// The text the colour controls label their cells with.
const UINT kColourLabelString = 30160;

LONG g_registrationCount = 0;

const GadgetClassRow *FindRow(const char *name)
{
    for (const GadgetClassRow *row = kGadgetClasses; row->name; ++row)
        if (lstrcmpA(row->name, name) == 0)
            return row;
    return nullptr;
}

// Registers one class; a brush it owns is made just before.
bool RegisterRow(const GadgetClassRow &row)
{
    WNDCLASSA wc = {};
    wc.style = row.style;
    wc.lpfnWndProc = row.procedure;
    wc.cbWndExtra = sizeof(LONG_PTR);
    wc.hInstance = g_module.hModule;
    wc.hCursor = row.cursor ? LoadCursorA(nullptr, row.cursor) : nullptr;
    if (row.background == GB_SystemColour)
        wc.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(row.colour));
    else if (row.background == GB_SolidBrush)
        wc.hbrBackground = CreateSolidBrush(row.colour);
    wc.lpszClassName = row.name;
    if (RegisterClassA(&wc))
        return true;
    OSErrorSetErrorInfo(RV_UserError, "RegisterClass");
    if (row.background == GB_SolidBrush && wc.hbrBackground)
        DeleteObject(wc.hbrBackground);
    return false;
}

// Takes one class down, with the brush it owns.
void UnregisterName(const char *name)
{
    WNDCLASSA wc;
    BOOL known = GetClassInfoA(g_module.hModule, name, &wc);
    const GadgetClassRow *row = FindRow(name);
    if (known && row && row->background == GB_SolidBrush)
        DeleteObject(wc.hbrBackground);
    UnregisterClassA(name, g_module.hModule);
}

// A registration whose classes all went in but whose label could not be
// copied takes them down again, so nothing leaks and a later call starts
// afresh.
BOOL UndoRegistration(const GadgetClassRow *end)
{
    for (const GadgetClassRow *row = kGadgetClasses; row != end; ++row)
        UnregisterName(row->name);
    ccUnregisterClass(reinterpret_cast<HINSTANCE>(g_module.hModule));
    return FALSE;
}

}  // namespace

extern "C" BOOL WINAPI RegisterGadgets(DWORD /*ignored*/)
{
    if (g_registrationCount == 0) {
        // A class refused stops the registration where it stands: the
        // classes before it stay registered, as a caller may rely on.
        const GadgetClassRow *row = kGadgetClasses;
        for (; row->name; ++row)
            if (!RegisterRow(*row))
                return FALSE;
        // The colour controls come next; what counts of them is that they
        // take their label text.
        ccRegisterClass(reinterpret_cast<HINSTANCE>(g_module.hModule));
        char *label = LoadStringCopy(g_module.hResourceLibrary, kColourLabelString);
        LONG taken = label ? ccSetColorString(label) : -1;
        if (label)
            LocalFree(label);
        if (taken == -1)
            return UndoRegistration(row);
    }
    ++g_registrationCount;
    return TRUE;
}

extern "C" LONG WINAPI UnRegisterGadgets(void)
{
    if (g_registrationCount > 1)
        return --g_registrationCount;
    if (g_registrationCount == 0)
        return -1;
    g_registrationCount = 0;
    for (const char *name : kUnregisterOrder)
        UnregisterName(name);
    ccUnregisterClass(reinterpret_cast<HINSTANCE>(g_module.hModule));
    return 0;
}

extern "C" LONG WINAPI Gadgets_LCDOption(LONG flag)
{
    g_gadgetLcdOption = flag;
    return flag;
}
