// The formatting engine: %c %C %d %i %s %S %u %x %X %p and %%, the flags
// '-', '#', '0' in that order, a width, a precision, and the size prefixes
// h, l, w, I, I32 and I64. Unknown directives print their letter; a lone
// '%' at the end prints nothing. Every count below runs against the room
// left, so a directive near the bound is cut short exactly as the platform
// cuts it.
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
            // A run of plain text, up to the next directive or the bound:
            // measured first, so that the copy does not wait on the scan.
            const int most = room - 1;
            int run = 1;
            while (run < most && f[run] && f[run] != '%')
                ++run;
            for (int i = 0; i < run; ++i)
                o[i] = f[i];
            o += run;
            f += run;
            room -= run;
            continue;
        }
        if (*++f == '%') {
            *o++ = *f++;
            --room;
            continue;
        }
        // Plain %d, %u and %s with room to spare need none of the measuring.
        if ((f[0] == 'd' || f[0] == 'u') && room > 24) {
            const int value = va_arg(args, int);
            Directive plain = {0, 0, 0, f[0] == 'd' ? kSigned : kUnsigned};
            const unsigned length = WriteNumber(o, plain, value);
            o += length;
            room -= static_cast<int>(length);
            ++f;
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
