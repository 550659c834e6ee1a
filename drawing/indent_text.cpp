// A paragraph whose first line starts at its own place: the first line up
// to the last word that fits or its line break, then the rest below it.
#include <cstring>
#include "draw_helpers.h"

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsBreak(char c) { return c == '\r' || c == '\n'; }
bool EndsWord(char c) { return IsBlank(c) || IsBreak(c) || c == '\0'; }

}  // namespace

extern "C" int WINAPI DrawTextWithIndent(HDC hdc, const char *text, DWORD ignored, RECT *rect,
                                         UINT format, int indent, int leastNextTop,
                                         int measureEmpty)
{
    (void)ignored;
    if (!hdc || !text || !rect) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    bool measuring = (format & DT_CALCRECT) != 0;
    SIZE extent;
    if (!*text && measuring) {
        if (!measureEmpty)
            return 0;
        if (!GetTextExtentPointA(hdc, " ", 1, &extent)) {
            OSErrorSetErrorInfo(RV_GDIError);
            return 0;
        }
        rect->bottom = rect->top + extent.cy;
        return extent.cy;
    }
    TEXTMETRICA metrics;
    if (!GetTextMetricsA(hdc, &metrics)) {
        OSErrorSetErrorInfo(RV_GDIError);
        return 0;
    }
    RECT first = *rect;
    first.left = indent;
    first.bottom = first.top + metrics.tmHeight + metrics.tmExternalLeading;
    if (leastNextTop > first.bottom)
        first.bottom = leastNextTop;
    RECT rest = *rect;
    rest.top = first.bottom;

    // Word by word, measured from the start, until a word would not fit, a
    // line break follows, or the text ends.
    int lineEnd = 0, restStart = 0, at = 0;
    const int lineWidth = first.right - first.left;
    for (;;) {
        int wordEnd = at;
        while (IsBlank(text[wordEnd]))
            ++wordEnd;
        while (!EndsWord(text[wordEnd]))
            ++wordEnd;
        if (!GetTextExtentPointA(hdc, text, wordEnd, &extent)) {
            OSErrorSetErrorInfo(RV_GDIError);
            return 0;
        }
        if (extent.cx > lineWidth) {
            lineEnd = at;
            restStart = at;
            while (IsBlank(text[restStart]))
                ++restStart;
            break;
        }
        int next = wordEnd;
        while (IsBlank(text[next]))
            ++next;
        if (IsBreak(text[next])) {
            lineEnd = wordEnd;
            restStart = next + 1;
            if (IsBreak(text[restStart]) && text[restStart] != text[next])
                ++restStart;
            break;
        }
        if (!text[next]) {
            lineEnd = restStart = next;
            break;
        }
        at = wordEnd;
    }
    UINT firstFormat = (format & ~static_cast<UINT>(DT_WORDBREAK)) | DT_SINGLELINE | DT_BOTTOM;
    int height = first.bottom - first.top;
    DrawTextA(hdc, text, lineEnd, &first, firstFormat);
    if (text[restStart])
        height += DrawTextA(hdc, text + restStart, -1, &rest, format);
    if (measuring)
        rect->bottom = rest.bottom > first.bottom ? rest.bottom : first.bottom;
    return height;
}
