// The counted and the reorderable string formatters. Both format into one
// static buffer, then copy out at most `limit` characters and a terminator.
//
// The reorderable forms let a resource text pick its arguments: "@2%d" takes
// the second argument. They rebuild the argument list in the order the text
// names, one argument slot per directive (4 bytes in the 32-bit build, the
// width of a pointer in the 64-bit build), and hand it to the counted form.
#include <cstring>
#include "text_formatter.h"
#include "qziso32.h"

namespace {
char g_formatBuffer[kFormatBufferSize];  // shared by every call; not re-entrant

// What each reorderable form has room for.
struct ReorderRoom {
    int orderSlots;          // 20 for OSrsprintf, 9 for OSrvsprintf
    bool sizesPreset;        // every position counts as one slot, named or not
    bool countsHighest;      // the highest position named widens the count
};
const ReorderRoom kRsprintfRoom = {20, true, true};
const ReorderRoom kRvsprintfRoom = {9, false, false};
const int kMaxOrderSlots = 20;

bool IsFlagOrDigit(char c)
{
    return c == '%' || c == '-' || c == '#' || c == '.' || (c >= '0' && c <= '9');
}

// Directives in a text, "%%" not counted: how many argument words it reads
// at the least.
int CountDirectives(const char *text)
{
    int count = 0;
    for (const char *p = text; *p; ++p) {
        if (*p != '%')
            continue;
        if (p[1] == '%') {
            ++p;
            continue;
        }
        while (IsFlagOrDigit(p[1]))
            ++p;
        if (p[1])
            ++count;
    }
    return count;
}

int Reorder(const char *caller, char *dest, LONG limit, const char *format, va_list args, const ReorderRoom &room)
{
    if (!dest || !format || limit < 0) {
        OSErrorSetErrorInfo(RV_BadParms, caller);
        return 0;
    }
    const DWORD size = static_cast<DWORD>(lstrlenA(format)) + 1;
    char *copy = static_cast<char *>(LocalAlloc(LPTR, size));
    if (!copy) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, size);
        return 0;
    }
    CopyMemory(copy, format, size - 1);

    int order[kMaxOrderSlots];
    bool named[9] = {};
    int slot = 0;
    int directives = 0;
    int highest = 0;
    int namedHighest = 0;   // the highest position a directive took
    int strayPosition = -1; // noted in the next free slot by a prefix no directive took
    for (char *p = copy; *p;) {
        if (p[0] != '@' || p[1] < '1' || p[1] > '9') {
            ++p;
            continue;
        }
        if (slot >= room.orderSlots) {
            // One prefix more than the order slots hold.
            LocalFree(copy);
            OSErrorSetErrorInfo(RV_BadParms, caller);
            return 0;
        }
        const int position = p[1] - '1';
        order[slot] = position;
        if (position + 1 > highest)
            highest = position + 1;
        strayPosition = position;
        if (p[2] != '%') {
            p += 2;  // "@5x" stays in the text as it is
            continue;
        }
        MoveMemory(p, p + 2, lstrlenA(p + 2) + 1);
        while (IsFlagOrDigit(*p))
            ++p;
        if (*p) {
            named[position] = true;
            if (position + 1 > namedHighest)
                namedHighest = position + 1;
            strayPosition = -1;
            ++directives;
            ++slot;
        }
    }

    int count = directives;
    if (room.countsHighest && highest > count)
        count = highest;
    LONG_PTR block[2 * kMaxOrderSlots] = {};
    va_list reordered = args;
    if (count) {
        // The slots that a directive took, in the text's order.
        const LONG_PTR *source = reinterpret_cast<const LONG_PTR *>(args);
        for (int s = 0; s < directives; ++s) {
            if (!room.sizesPreset) {
                for (int before = 0; before < order[s]; ++before) {
                    if (!named[before]) {
                        // The place of this argument depends on positions the
                        // text never named: there is no knowing where it is.
                        LocalFree(copy);
                        OSErrorSetErrorInfo(RV_BadParms, caller);
                        return 0;
                    }
                }
            }
            block[s] = source[order[s]];
        }
        // The slot a stray prefix noted goes to the plain directives after the
        // named ones. It passes on the argument the prefix names where a
        // directive named that position or a later one, so the caller passed
        // it; else the next argument after the named ones, as a plain
        // directive reads it ("x@1y %d", "mail a@3com.com re %s").
        if (room.countsHighest && strayPosition >= 0 && count > directives &&
            CountDirectives(copy) > directives)
            block[directives] = source[strayPosition < namedHighest ? strayPosition : directives];
        reordered = reinterpret_cast<va_list>(block);
    }
    int written = OScvsprintf(dest, limit, copy, reordered);
    LocalFree(copy);
    return written;
}
}  // namespace

extern "C" int WINAPI OScvsprintf(char *dest, LONG limit, const char *format, va_list args)
{
    if (!dest || !format || limit < 0) {
        OSErrorSetErrorInfo(RV_BadParms, "OScvsprintf");
        return 0;
    }
    const int length = FormatText(g_formatBuffer, format, args);
    const int count = length < limit ? length : static_cast<int>(limit);
    // Short texts, the common case, are copied here a word at a time; long
    // ones by the runtime.
    if (count <= 64) {
        int i = 0;
        for (; i + 8 <= count; i += 8) {
            ULONGLONG word;
            memcpy(&word, g_formatBuffer + i, sizeof word);
            memcpy(dest + i, &word, sizeof word);
        }
        for (; i < count; ++i)
            dest[i] = g_formatBuffer[i];
    } else {
        CopyMemory(dest, g_formatBuffer, count);
    }
    dest[count] = 0;
    return count;
}

extern "C" int __cdecl OScsprintf(char *dest, LONG limit, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    int count = OScvsprintf(dest, limit, format, args);
    va_end(args);
    return count;
}

extern "C" int WINAPI OSrvsprintf(char *dest, LONG limit, const char *format, va_list args)
{
    return Reorder("OSrvsprintf", dest, limit, format, args, kRvsprintfRoom);
}

extern "C" int __cdecl OSrsprintf(char *dest, LONG limit, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    int count = Reorder("OSrsprintf", dest, limit, format, args, kRsprintfRoom);
    va_end(args);
    return count;
}
