// ArgScan: a small scanner driven by a format. It reads numbers with the
// decimal scanners, texts up to a comma or a closing quote, and matches
// every other format character against the text.
#include "qziso32.h"

namespace {
char *SkipBlanks(char *text)
{
    while (*text == ' ' || *text == '\t')
        ++text;
    return text;
}

// Copies up to the end, a comma outside quotes, or a quote inside them.
// The character that ends the copy stays in the text.
char *CopyField(char *text, char *out, bool inQuotes)
{
    while (*text && !(inQuotes ? *text == '"' : *text == ',')) {
        if (out)
            *out++ = *text;
        ++text;
    }
    if (out)
        *out = 0;
    return text;
}
}  // namespace

extern "C" char *__cdecl ArgScan(char *text, LONG *count, const char *format, ...)
{
    if (count)
        *count = 1;
    if (!text || !format) {
        OSErrorSetErrorInfo(RV_BadParms, "ArgScan");
        return text;
    }
    va_list outputs;
    va_start(outputs, format);
    bool inQuotes = false;
    text = SkipBlanks(text);
    while (*format && *text) {
        const char f = *format;
        if (f == ' ' || f == '\t') {
            text = SkipBlanks(text);
            ++format;
        } else if (f == '"') {
            if (*text != '"') {
                // The historical scanner waited here for ever; this one
                // gives up with the count lowered once.
                if (count)
                    --*count;
                OSErrorSetErrorInfo(RV_BadParms, "ArgScan");
                break;
            }
            inQuotes = !inQuotes;
            ++text;
            ++format;
        } else if (f == '%') {
            ++format;
            bool stepsOn = false;
            if (*format == 'f' || *format == 'F') {
                stepsOn = true;
                ++format;
            }
            if (!*format)
                break;
            switch (*format++) {
            case 'd': case 'D':
            case 'l': case 'L':
                text = AtoDW(text, va_arg(outputs, DWORD *));
                break;
            case 'b': case 'B': {
                // Without the 'f' the byte is stored and the text stays put.
                char *after = AtoB(text, va_arg(outputs, BYTE *));
                if (stepsOn)
                    text = after;
                break;
            }
            case 's': case 'S':
                text = CopyField(text, va_arg(outputs, char *), inQuotes);
                break;
            default:
                break;
            }
        } else if (f == *text) {
            ++text;
            ++format;
        } else {
            if (count)
                --*count;
            break;
        }
    }
    va_end(outputs);
    return text;
}
