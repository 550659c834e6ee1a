// DToRoman: a number as Roman numerals, "mdclxvi", optionally upper case.
#include "qziso32.h"

namespace {
const char kLetters[] = "mdclxvi";
const DWORD kValues[] = {1000, 500, 100, 50, 10, 5, 1};

// The library's own buffer, used when the caller gives none: 127 steps,
// and room for the three letters the last step may add past them.
const DWORD kOwnLimit = 127;
char g_romanBuffer[kOwnLimit + 4 + 1];

// Writes letters while there is room; counts them all.
struct RomanWriter {
    char *out;
    DWORD room;     // letters that fit before the terminator
    DWORD written;  // letters the numeral has had so far
    void Put(char c)
    {
        if (written < room)
            out[written] = c;
        ++written;
    }
};

// One decimal digit at a power of ten: row is the letter of that power.
void PutDigit(RomanWriter &w, DWORD digit, int row)
{
    const char one = kLetters[row];
    const char five = row > 0 ? kLetters[row - 1] : 0;
    const char ten = row > 1 ? kLetters[row - 2] : 0;
    switch (digit) {
    case 1: case 2: case 3:
        for (DWORD i = 0; i < digit; ++i) w.Put(one);
        break;
    case 4: w.Put(one); w.Put(five); break;
    case 5: case 6: case 7: case 8:
        w.Put(five);
        for (DWORD i = 5; i < digit; ++i) w.Put(one);
        break;
    case 9: w.Put(one); w.Put(ten); break;
    default: break;
    }
}
}  // namespace

// The limit counts steps, not letters: a step starts while fewer than
// `size` letters are out, and one step writes up to four, so the numeral
// runs up to three bytes past `size`, which a caller allows for. Within those
// `size` + 3 bytes the numeral and its terminator always end; where the last
// step would need a fourth byte past `size`, the numeral is cut there and
// RV_BufferTooSmall is recorded.
extern "C" char *WINAPI DToRoman(DWORD number, LONG upper, char *buffer, DWORD size)
{
    const DWORD kPastSize = 3;
    DWORD limit = size;
    DWORD room = size + kPastSize - 1;
    if (!buffer) {
        buffer = g_romanBuffer;
        limit = kOwnLimit;
        room = sizeof g_romanBuffer - 1;
    }
    RomanWriter w = {buffer, room, 0};
    int row = 0;
    while (number && row < 7 && w.written < limit) {
        if (number >= kValues[row]) {
            w.Put(kLetters[row]);
            number -= kValues[row];
            continue;
        }
        row += 2;  // down to the next power of ten
        if (row >= 7)
            break;
        const DWORD digit = number / kValues[row];
        PutDigit(w, digit, row);
        number -= digit * kValues[row];
    }
    buffer[w.written < room ? w.written : room] = 0;
    if (w.written > room)
        OSErrorSetErrorInfo(RV_BufferTooSmall);
    if (upper)
        CharUpperA(buffer);
    return buffer;
}
