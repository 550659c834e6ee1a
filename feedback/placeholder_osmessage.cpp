// A stand-in for OSMessage, replaced by the message box family.
#include "qziso32.h"

extern "C" int __cdecl OSMessage(HWND, HMODULE, const char *, UINT, UINT, ...)
{
    return 0;
}
