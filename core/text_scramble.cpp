// A pair that scrambles a short text into hexadecimal digits with a
// checksum, and back. Despite their names they are plain functions. Each
// returns the length written (terminator not counted), or 0 with the
// error recorded.
#include "qziso32.h"

namespace {
const char kHexDigits[] = "0123456789ABCDEF";

BYTE KeyAt(int index)
{
    return static_cast<BYTE>(0x5A + index * 7);
}

int HexValue(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}
}  // namespace

// Output: two digits per byte of the text, then two of the checksum.
extern "C" int WINAPI CommonSrcDlgProc(const char *plain, char *out, int size)
{
    if (!plain || !out || size < 0) {
        OSErrorSetErrorInfo(RV_BadParms, "CommonSrcDlgProc");
        return 0;
    }
    const int length = lstrlenA(plain);
    if (2 * length + 2 >= size) {
        OSErrorSetErrorInfo(RV_BufferTooSmall);
        return 0;
    }
    BYTE sum = 0;
    int o = 0;
    for (int i = 0; i < length; ++i) {
        const BYTE b = static_cast<BYTE>(plain[i]) ^ KeyAt(i);
        sum = static_cast<BYTE>(sum + static_cast<BYTE>(plain[i]));
        out[o++] = kHexDigits[b >> 4];
        out[o++] = kHexDigits[b & 15];
    }
    out[o++] = kHexDigits[sum >> 4];
    out[o++] = kHexDigits[sum & 15];
    out[o] = 0;
    return o;
}

extern "C" int WINAPI CommonDestDlgProc(const char *scrambled, char *out, int size)
{
    if (!scrambled || !out || size < 0) {
        OSErrorSetErrorInfo(RV_BadParms, "CommonDestDlgProc");
        return 0;
    }
    const int digits = lstrlenA(scrambled);
    if (digits < 2 || digits % 2) {
        OSErrorSetErrorInfo(RV_IntegrityFailure, "CommonDestDlgProc");
        return 0;
    }
    const int length = digits / 2 - 1;
    if (length >= size) {
        OSErrorSetErrorInfo(RV_BufferTooSmall);
        return 0;
    }
    BYTE sum = 0;
    for (int i = 0; i <= length; ++i) {
        const int high = HexValue(scrambled[2 * i]);
        const int low = HexValue(scrambled[2 * i + 1]);
        if (high < 0 || low < 0) {
            OSErrorSetErrorInfo(RV_IntegrityFailure, "CommonDestDlgProc");
            return 0;
        }
        const BYTE b = static_cast<BYTE>(high * 16 + low);
        if (i == length) {
            if (b != sum) {
                OSErrorSetErrorInfo(RV_IntegrityFailure, "CommonDestDlgProc");
                return 0;
            }
            break;
        }
        out[i] = static_cast<char>(b ^ KeyAt(i));
        sum = static_cast<BYTE>(sum + static_cast<BYTE>(out[i]));
    }
    out[length] = 0;
    return length;
}
