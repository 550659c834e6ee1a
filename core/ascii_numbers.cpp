// Decimal scanners: skip blanks and tabs, then take digits. No sign and no
// overflow test; the value wraps in the width of the output.
#include "qziso32.h"

template <typename T>
static char *ScanDigits(char *text, T *out)
{
    T value = 0;
    if (text) {
        while (*text == ' ' || *text == '\t')
            ++text;
        while (*text >= '0' && *text <= '9')
            value = static_cast<T>(value * 10 + static_cast<T>(*text++ - '0'));
    }
    if (out)
        *out = value;
    return text;
}

extern "C" char *WINAPI AtoI(char *text, DWORD *out) { return ScanDigits(text, out); }
extern "C" char *WINAPI AtoL(char *text, DWORD *out) { return ScanDigits(text, out); }
extern "C" char *WINAPI AtoUI(char *text, DWORD *out) { return ScanDigits(text, out); }
extern "C" char *WINAPI AtoDW(char *text, DWORD *out) { return ScanDigits(text, out); }
extern "C" char *WINAPI AtoB(char *text, BYTE *out) { return ScanDigits(text, out); }
