// Checks what the user typed against a range and says so when it does not
// fit, with a message of the resource library under the application title.
#include "qziso32.h"
#include "../core/module_globals.h"
#include <cstring>

namespace {

enum RangeMessage : UINT {
    kWholeNumberMessage = 20000,
    kRealNumberMessage = 21000,
    kDateMessage = 22000,
    kTimeMessage = 23000,
};

bool AllDigits(const char *text)
{
    for (; *text; ++text)
        if (*text < '0' || *text > '9')
            return false;
    return true;
}

// The digit test of a fraction: its lower bound is read from the fraction,
// its upper bound from the whole part's character at the same place. Both
// lie in one copy of the text, so the reads stay inside it.
bool FractionDigits(const char *fraction, const char *whole)
{
    for (size_t i = 0; fraction[i]; ++i)
        if (fraction[i] < '0' || whole[i] > '9')
            return false;
    return true;
}

DWORD NumberOf(char *text)
{
    DWORD value = 0;
    AtoI(text, &value);
    return value;
}

bool RealInRange(char *copy, DWORD low, DWORD high)
{
    char *whole = strtok(copy, ".");
    if (!whole)
        return true;
    char *fraction = strtok(nullptr, ".");
    if (!AllDigits(whole))
        return false;
    if (fraction && (strtok(nullptr, ".") || !FractionDigits(fraction, whole)))
        return false;
    DWORD value = NumberOf(whole);
    if (value < low || value > high)
        return false;
    return !(fraction && NumberOf(fraction) > 0 && value == high);
}

BOOL DateTimeValid(HWND window, const char *text, UINT message, const char *first,
                   const char *last)
{
    DateTimeValue value = {};
    BOOL read = OSStringToDateTime(&value, text ? text : "");
    BOOL valid = OSIsValidDateTime(&value);
    if (!read || !valid)
        OSMessage(window, g_module.hResourceLibrary, g_module.appTitle, message, 0, first, last);
    return valid;
}

} // namespace

extern "C" BOOL WINAPI RANGEIsUINTValid(HWND window, char *text, DWORD low, DWORD high)
{
    char empty[1] = {0};
    if (!text)
        text = empty;
    DWORD value = NumberOf(text);
    if (AllDigits(text) && value >= low && value <= high)
        return TRUE;
    OSMessage(window, g_module.hResourceLibrary, g_module.appTitle, kWholeNumberMessage, 0, low,
              high);
    return FALSE;
}

extern "C" BOOL WINAPI RANGEIsREALValid(HWND window, char *text, DWORD low, DWORD high)
{
    size_t length = text ? strlen(text) : 0;
    char *copy = static_cast<char *>(LocalAlloc(LPTR, length + 1));
    if (!copy) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(length + 1));
        return FALSE;
    }
    if (length)
        memcpy(copy, text, length);
    bool valid = RealInRange(copy, low, high);
    LocalFree(copy);
    if (valid)
        return TRUE;
    OSMessage(window, g_module.hResourceLibrary, g_module.appTitle, kRealNumberMessage, 0, low,
              high);
    return FALSE;
}

extern "C" BOOL WINAPI RANGEIsDATEValid(HWND window, char *text)
{
    return DateTimeValid(window, text, kDateMessage, "01/01/1880", "12/12/2100");
}

extern "C" BOOL WINAPI RANGEIsTIMEValid(HWND window, char *text)
{
    return DateTimeValid(window, text, kTimeMessage, "00:00:00", "23:59:59");
}
