// Small text routines: white space, line ends, cutting a text to one line,
// trailing blanks. White space is the blank and the tab.
#include "qziso32.h"

extern "C" BOOL WINAPI IsWhiteSpace(char c)
{
    return c == ' ' || c == '\t';
}

extern "C" BOOL WINAPI IsCrLf(char c)
{
    return c == 13 || c == 10;
}

extern "C" char *WINAPI SkipWhiteSpace(char *text)
{
    if (!text)
        return text;
    while (*text == ' ' || *text == '\t')
        ++text;
    return text;
}

// Ends the text at its first line end, or after `limit` characters. A line
// end within the limit is overwritten, and so is the character after it,
// which takes the second half of a CR LF pair.
extern "C" char *WINAPI OneLine(char *text, LONG limit)
{
    if (!text) {
        OSErrorSetErrorInfo(RV_BadParms, "OneLine");
        return text;
    }
    LONG i = 0;
    while (i < limit && text[i] && text[i] != 13 && text[i] != 10)
        ++i;
    if (i < limit && (text[i] == 13 || text[i] == 10)) {
        text[i] = 0;
        text[i + 1] = 0;  // the terminator at worst: text[i] was not one
    } else {
        text[i] = 0;
    }
    return text;
}

extern "C" char *WINAPI StripTrailingSpaces(char *text)
{
    if (!text)
        return text;
    char *end = text + lstrlenA(text);
    while (end > text && end[-1] == ' ')
        *--end = 0;
    return text;
}
