// Lengths in dialog fields. A length is a count of tenths of a millimetre;
// the field shows centimetres with two decimals, or inches with three, in
// whole-number arithmetic only. 254 units are 2.54 cm and 1.000 in.
#include "qziso32.h"
#include <cstring>

namespace {

const int kSeparatorSize = 16;
const int kFieldLimit = 20;

void ReadDecimalSeparator(char *separator)
{
    GetProfileStringA("intl", "sDecimal", ".", separator, kSeparatorSize);
}

// Pads the fraction's digits on the right with zeros to `digits`, reads
// them, and brings a longer fraction back under `scale`.
DWORD ReadFraction(char *fraction, size_t room, size_t digits, DWORD scale)
{
    size_t length = strlen(fraction);
    while (length < digits && length + 1 < room)
        fraction[length++] = '0';
    fraction[length] = 0;
    DWORD value = 0;
    AtoI(fraction, &value);
    while (value > scale)
        value /= 10;
    return value;
}

} // namespace

extern "C" BOOL WINAPI SetDlgItemReal(HWND dialog, LONG control, DWORD value, LONG metric)
{
    char separator[kSeparatorSize];
    ReadDecimalSeparator(separator);
    char text[64];
    if (metric)
        wsprintfA(text, "%d%s%.2d", value / 100, separator, value % 100);
    else
        wsprintfA(text, "%d%s%.3d", value * 1000 / 254000, separator, value * 1000 / 254 % 1000);
    return SetDlgItemTextA(dialog, control, text);
}

extern "C" DWORD WINAPI GetDlgItemReal(HWND dialog, LONG control, LONG metric)
{
    char separator[kSeparatorSize];
    ReadDecimalSeparator(separator);
    char text[kFieldLimit + kSeparatorSize] = {};
    GetDlgItemTextA(dialog, control, text, kFieldLimit);
    if (!strstr(text, separator))
        strcat(text, separator);

    char format[kSeparatorSize + 8];
    wsprintfA(format, "%%fd%s%%s", separator);
    DWORD whole = 0;
    char fraction[sizeof text + 4] = {};
    ArgScan(text, nullptr, format, &whole, fraction);
    if (metric)
        return whole * 100 + ReadFraction(fraction, sizeof fraction, 2, 100);
    DWORD thousandths = ReadFraction(fraction, sizeof fraction, 3, 1000);
    return (whole * 1000 + thousandths + 1) * 1000 / 3937;
}
