// The formatting engine: %c %C %d %i %s %S %u %x %X %p and %%, the flags
// '-', '#', '0' in that order, a width, a precision, and the size prefixes
// h, l, w, I, I32 and I64. Unknown directives print their letter; a lone
// '%' at the end prints nothing. Every count below runs against the room
// left, so a directive near the bound is cut short exactly as the platform
// cuts it.
#include <cstring>
#include "text_formatter.h"

namespace {
enum : unsigned {
    kLeft = 0x1,     // '-'
    kPrefix = 0x2,   // '#': 0x before hexadecimal, two places in every number
    kZeros = 0x4,    // '0'
    kLong = 0x8,     // 'l'
    kShort = 0x10,   // 'h'
    kUpper = 0x20,   // 'X' and 'p'
    kWide = 0x40,    // 'w'
    kIntPtr = 0x80,  // 'I': pointer-sized
    kInt64 = 0x100,  // 'I64'
};

enum Kind { kUnknown, kChar, kWideChar, kString, kWideString, kSigned, kUnsigned, kHex };

struct Directive {
    unsigned flags;
    unsigned width;
    unsigned precision;
    Kind kind;
};

// Reads the directive that follows a '%'. Returns where the text resumes:
// after the conversion letter, or at an unknown letter, which then prints.
const char *ReadDirective(const char *p, Directive &d)
{
    d.flags = 0;
    d.width = 0;
    d.precision = 0;
    if (*p == '-') { d.flags |= kLeft; ++p; }
    if (*p == '#') { d.flags |= kPrefix; ++p; }
    if (*p == '0') { d.flags |= kZeros; ++p; }
    while (*p >= '0' && *p <= '9')
        d.width = d.width * 10 + static_cast<unsigned>(*p++ - '0');
    if (*p == '.') {
        ++p;
        while (*p >= '0' && *p <= '9')
            d.precision = d.precision * 10 + static_cast<unsigned>(*p++ - '0');
    }
    if (*p == 'l') { d.flags |= kLong; ++p; }
    else if (*p == 'h') { d.flags |= kShort; ++p; }
    else if (*p == 'w') { d.flags |= kWide; ++p; }
    else if (*p == 'I') {
        if (p[1] == '6' && p[2] == '4') { d.flags |= kInt64; p += 3; }
        else if (p[1] == '3' && p[2] == '2') p += 3;
        else { d.flags |= kIntPtr; ++p; }
    }
    switch (*p) {
    case 'c': d.kind = (d.flags & kLong) ? kWideChar : kChar; break;
    case 'C': d.kind = (d.flags & kShort) ? kChar : kWideChar; break;
    case 'd':
    case 'i': d.kind = kSigned; break;
    case 's': d.kind = (d.flags & (kLong | kWide)) ? kWideString : kString; break;
    case 'S': d.kind = (d.flags & (kShort | kWide)) ? kString : kWideString; break;
    case 'u': d.kind = kUnsigned; break;
    case 'p':
        d.width = 2 * sizeof(void *);
        d.flags |= kZeros | kIntPtr | kUpper;
        d.kind = kHex;
        break;
    case 'X': d.flags |= kUpper; d.kind = kHex; break;
    case 'x': d.kind = kHex; break;
    default: d.kind = kUnknown; return p;
    }
    return p + 1;
}

// Writes the digits of a number, with a leading minus for negative signed
// values, and returns their count. `number` holds at least 24 bytes; the
// two after the digits are set to NUL.
unsigned WriteNumber(char *number, const Directive &d, LONGLONG value)
{
    ULONGLONG magnitude = static_cast<ULONGLONG>(value);
    char *out = number;
    if (d.kind == kSigned && value < 0) {
        *out++ = '-';
        magnitude = 0 - magnitude;
    }
    if (d.flags & kIntPtr)
        magnitude = static_cast<UINT_PTR>(magnitude);
    else if (!(d.flags & kInt64))
        magnitude = static_cast<UINT>(magnitude);
    char reversed[24];
    int count = 0;
    if (d.kind == kHex) {
        const char *digits = (d.flags & kUpper) ? "0123456789ABCDEF" : "0123456789abcdef";
        do {
            reversed[count++] = digits[magnitude & 15];
            magnitude >>= 4;
        } while (magnitude);
    } else if (magnitude <= 0xFFFFFFFFu) {
        // The common case in 32-bit arithmetic, which divides far faster.
        UINT small = static_cast<UINT>(magnitude);
        do {
            reversed[count++] = static_cast<char>('0' + small % 10);
            small /= 10;
        } while (small);
    } else {
        do {
            reversed[count++] = static_cast<char>('0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude);
    }
    while (count)
        *out++ = reversed[--count];
    // '#' may copy two places past the digits: they hold NULs.
    out[0] = 0;
    out[1] = 0;
    return static_cast<unsigned>(out - number);
}

// The multibyte length of at most `limit` bytes of a wide text (0: no limit).
unsigned WideLength(const WCHAR *text, unsigned limit)
{
    unsigned length = 0;
    for (; (!limit || length < limit) && *text; ++text)
        length += static_cast<unsigned>(WideCharToMultiByte(CP_ACP, 0, text, 1, nullptr, 0, nullptr, nullptr));
    if (limit && length > limit)
        length = limit;
    return length;
}

char *WriteWide(char *out, const WCHAR *text, unsigned length)
{
    for (unsigned written = 0; written < length; ++text) {
        char bytes[8];
        int size = WideCharToMultiByte(CP_ACP, 0, text, 1, bytes, sizeof bytes, nullptr, nullptr);
        for (int i = 0; i < size && written < length; ++i, ++written)
            *out++ = bytes[i];
        if (size <= 0)
            break;
    }
    return out;
}

// Writes the directive at `f` (just after its '%') into `*out` when it is one
// of the common forms and fits with room to spare; returns where the format
// resumes, or null to leave the directive to the general path, which gives
// the same characters.
const char *WriteCommon(char *&out, const char *f, int &room, va_list &args)
{
    const char *p = f;
    const bool left = *p == '-';
    if (left)
        ++p;
    const bool zeros = !left && *p == '0';
    if (zeros)
        ++p;
    unsigned width = 0;
    for (int digits = 0; *p >= '0' && *p <= '9'; ++p, ++digits) {
        if (digits == 3)
            return nullptr;
        width = width * 10 + static_cast<unsigned>(*p - '0');
    }
    const bool longSize = *p == 'l';
    if (longSize)
        ++p;
    const char kind = *p;
    if (static_cast<int>(width) + 24 >= room)
        return nullptr;
    char *o = out;
    if (kind == 's' && !longSize) {
        // The text is looked at through a copy of the list, and taken from
        // the list itself only once it is known to fit.
        va_list peek;
        va_copy(peek, args);
        const char *text = va_arg(peek, const char *);
        va_end(peek);
        if (!text)
            text = "(null)";
        unsigned length = 0;
        const unsigned most = static_cast<unsigned>(room) - 2 - width;
        while (text[length])
            if (++length > most)
                return nullptr;
        (void)va_arg(args, const char *);
        const unsigned pad = width > length ? width - length : 0;
        if (!left)
            for (unsigned i = 0; i < pad; ++i)
                *o++ = ' ';
        for (unsigned i = 0; i < length; ++i)
            *o++ = text[i];
        if (left)
            for (unsigned i = 0; i < pad; ++i)
                *o++ = ' ';
    } else if (kind == 'd' || kind == 'i' || kind == 'u' || kind == 'x' || kind == 'X') {
        const int value = va_arg(args, int);
        UINT magnitude = static_cast<UINT>(value);
        const bool negative = (kind == 'd' || kind == 'i') && value < 0;
        if (negative)
            magnitude = 0 - magnitude;
        // Digits end at the middle of the block, so that they can be moved
        // out in two words: the room checked above takes the spare bytes.
        char digits[32];
        char *const end = digits + 16;
        char *d = end;
        if (kind == 'x' || kind == 'X') {
            const char *set = kind == 'X' ? "0123456789ABCDEF" : "0123456789abcdef";
            do {
                *--d = set[magnitude & 15];
                magnitude >>= 4;
            } while (magnitude);
        } else {
            static const char kPairs[] =
                "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
                "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
                "8081828384858687888990919293949596979899";
            while (magnitude >= 100) {
                const unsigned pair = (magnitude % 100) * 2;
                magnitude /= 100;
                *--d = kPairs[pair + 1];
                *--d = kPairs[pair];
            }
            if (magnitude >= 10) {
                *--d = kPairs[magnitude * 2 + 1];
                *--d = kPairs[magnitude * 2];
            } else {
                *--d = static_cast<char>('0' + magnitude);
            }
        }
        const unsigned count = static_cast<unsigned>(end - d);
        const unsigned length = count + (negative ? 1 : 0);
        const unsigned pad = width > length ? width - length : 0;
        if (!left && !zeros)
            for (unsigned i = 0; i < pad; ++i)
                *o++ = ' ';
        if (negative)
            *o++ = '-';
        if (zeros)
            for (unsigned i = 0; i < pad; ++i)
                *o++ = '0';
        ULONGLONG words[2];
        memcpy(words, d, sizeof words);
        memcpy(o, words, sizeof words);
        o += count;
        if (left)
            for (unsigned i = 0; i < pad; ++i)
                *o++ = ' ';
    } else {
        return nullptr;
    }
    room -= static_cast<int>(o - out);
    out = o;
    return p + 1;
}
}  // namespace

int FormatText(char *out, const char *format, va_list args)
{
    static const char nullText[] = "(null)";
    static const WCHAR nullWide[] = L"(null)";
    char *o = out;
    int room = kFormatBound;  // the platform's count of bytes left, terminator included
    const char *f = format;
    while (*f && room > 1) {
        if (*f != '%') {
            // A run of plain text, up to the next directive or the bound.
            // Runs between directives are short and are copied as they are
            // scanned; the rest of a long one is measured, then copied whole.
            const char *stop = f + (room - 1);
            const char *const shortEnd = f + 12 < stop ? f + 12 : stop;
            char *start = o;
            char c = *f;
            do {
                *o++ = c;
                c = *++f;
            } while (c && c != '%' && f < shortEnd);
            if (f == shortEnd && c && c != '%' && f < stop) {
                size_t run = 0;
                const size_t most = static_cast<size_t>(stop - f);
                while (run < most && f[run] && f[run] != '%')
                    ++run;
                CopyMemory(o, f, run);
                o += run;
                f += run;
            }
            room -= static_cast<int>(o - start);
            continue;
        }
        if (*++f == '%') {
            *o++ = *f++;
            --room;
            continue;
        }
        // The common directives far from the bound need none of the
        // measuring: %d %i %u %x %X with '-' or '0', a width and an optional
        // 'l', and %s with '-' and a width, when neither width nor text can
        // reach the bound.
        if (const char *next = WriteCommon(o, f, room, args)) {
            f = next;
            continue;
        }
        Directive d;
        f = ReadDirective(f, d);

        char character = 0;
        WCHAR wideCharacter = 0;
        const char *text = nullptr;
        const WCHAR *wideText = nullptr;
        LONGLONG value = 0;
        switch (d.kind) {
        case kChar: character = static_cast<char>(va_arg(args, int)); break;
        case kWideChar: wideCharacter = static_cast<WCHAR>(va_arg(args, int)); break;
        case kString: text = va_arg(args, const char *); break;
        case kWideString: wideText = va_arg(args, const WCHAR *); break;
        case kSigned:
        case kUnsigned:
        case kHex:
            if (d.flags & kIntPtr) value = va_arg(args, INT_PTR);
            else if (d.flags & kInt64) value = va_arg(args, LONGLONG);
            else value = va_arg(args, int);
            break;
        case kUnknown: break;
        }

        // Measure against the room, as the platform does.
        const unsigned cap = static_cast<unsigned>(room - 1);
        char number[24];
        number[0] = 0;
        unsigned length = 0;
        if (d.flags & kLeft)
            d.flags &= ~kZeros;
        if (d.width > cap)
            d.width = cap;
        switch (d.kind) {
        case kChar:
        case kWideChar:
            length = d.precision = 1;
            break;
        case kString:
            if (!text)
                text = nullText;
            for (length = 0; !d.precision || length < d.precision; ++length)
                if (!text[length])
                    break;
            if (length > cap)
                length = cap;
            d.precision = length;
            break;
        case kWideString:
            if (!wideText)
                wideText = nullWide;
            length = WideLength(wideText, d.precision);
            if (length > cap)
                length = cap;
            d.precision = length;
            break;
        case kSigned:
        case kUnsigned:
        case kHex:
            length = WriteNumber(number, d, value);
            if (length > cap)
                length = cap;
            if (d.precision < length)
                d.precision = length;
            if (d.precision > cap)
                d.precision = cap;
            if ((d.flags & kZeros) && d.width > d.precision)
                d.precision = d.width;
            // '#' reserves two places in every number; only hexadecimal
            // fills them with 0x, the others with two NULs.
            if (d.flags & kPrefix)
                length += 2;
            break;
        case kUnknown:
            break;
        }

        if (!(d.flags & kLeft))
            for (unsigned i = d.precision; i < d.width; ++i, --room)
                *o++ = ' ';
        unsigned sign = 0;
        switch (d.kind) {
        case kChar:
            *o++ = character;
            break;
        case kWideChar: {
            char bytes[8];
            int size = WideCharToMultiByte(CP_ACP, 0, &wideCharacter, 1, bytes, sizeof bytes, nullptr, nullptr);
            *o++ = size > 0 ? bytes[0] : 0;
            break;
        }
        case kString:
            for (unsigned i = 0; i < length; ++i)
                *o++ = text[i];
            break;
        case kWideString:
            o = WriteWide(o, wideText, length);
            break;
        case kHex:
        case kSigned:
        case kUnsigned:
            if (d.kind == kHex && (d.flags & kPrefix) && room > 3) {
                *o++ = '0';
                *o++ = (d.flags & kUpper) ? 'X' : 'x';
                room -= 2;
                length -= 2;
            }
            if (number[0] == '-') {
                *o++ = '-';
                sign = 1;
            }
            for (unsigned i = length; i < d.precision; ++i, --room)
                *o++ = '0';
            for (unsigned i = sign; i < length; ++i)
                *o++ = number[i];
            break;
        case kUnknown:
            continue;
        }
        if (d.flags & kLeft)
            for (unsigned i = d.precision; i < d.width; ++i, --room)
                *o++ = ' ';
        room -= static_cast<int>(length);
    }
    *o = 0;
    return room > 1 ? static_cast<int>(o - out) : kFormatBound;
}
