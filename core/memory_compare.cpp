// Copy, fill and the locale-aware bounded compares.
#include "qziso32.h"

extern "C" BOOL WINAPI OShmemcpy(void *dest, const void *source, DWORD count)
{
    if (dest == source || count == 0)
        return 1;
    if (!dest || !source) {
        OSErrorSetErrorInfo(RV_BadParms, "OShmemcpy");
        return 1;
    }
    MoveMemory(dest, source, count);
    return 1;
}

extern "C" BOOL WINAPI OShmemset(void *dest, int value, DWORD count)
{
    if (count == 0)
        return 1;
    if (!dest) {
        OSErrorSetErrorInfo(RV_BadParms, "OShmemset");
        return 1;
    }
    FillMemory(dest, count, static_cast<BYTE>(value));
    return 1;
}

// Copies at most `count` bytes of each text into zeroed blocks of count plus
// one and compares those by the user's locale. A failed allocation answers
// 0, "equal", with the error recorded.
static int CompareBounded(const char *caller, const char *a, const char *b, DWORD count,
                          int(WINAPI *compare)(LPCSTR, LPCSTR))
{
    if (!a || !b) {
        OSErrorSetErrorInfo(RV_BadParms, caller);
        return 0;
    }
    const SIZE_T size = static_cast<SIZE_T>(count) + 1;
    char *first = size ? static_cast<char *>(LocalAlloc(LPTR, size)) : nullptr;
    char *second = first ? static_cast<char *>(LocalAlloc(LPTR, size)) : nullptr;
    if (!second) {
        if (first)
            LocalFree(first);
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, static_cast<DWORD>(size));
        return 0;
    }
    lstrcpynA(first, a, static_cast<int>(size > 0x7FFFFFFF ? 0x7FFFFFFF : size));
    lstrcpynA(second, b, static_cast<int>(size > 0x7FFFFFFF ? 0x7FFFFFFF : size));
    int result = compare(first, second);
    LocalFree(second);
    LocalFree(first);
    return result;
}

extern "C" int WINAPI OSstrncmp(const char *a, const char *b, DWORD count)
{
    return CompareBounded("OSstrncmp", a, b, count, lstrcmpA);
}

// The user's-locale compare of lstrcmpi (the thread's locale, case ignored,
// answered as -1, 0 or 1) on at most `count` bytes of each text, without
// copying them: the platform compares counted texts as it compares
// terminated ones.
//
// Printable ASCII without the two marks that sort by their place in the word
// (hyphen and apostrophe) is the common case, and two shortcuts hold there:
// it widens byte for byte in every code page, and a lead that both texts
// share up to a blank weighs the same in both at every level, while no
// letter group of any locale reaches across a blank; so the compare starts
// after that blank. Only the English sort lets the lead differ in letter
// case: elsewhere a group of letters may form in one case and not in a mix
// of cases (a Danish "aa" or "AA" but not "aA", a Czech "ch" but not "cH").
static bool IsPlain(unsigned char c)
{
    return !c || (c >= 0x20 && c <= 0x7E && c != '-' && c != '\'');
}

// Where two plain texts first differ other than by letter case, the first
// weight that differs decides. In the English sort, which groups no letters
// and orders none apart from the alphabet, the end of a text weighs least,
// then the symbols and blanks, then the digits in their order, then the
// letters in theirs; two symbols are left to the platform.
enum PlainClass { kEnd, kSymbol, kDigit, kLetter };

static PlainClass ClassOf(unsigned char c)
{
    if (!c)
        return kEnd;
    if (c >= '0' && c <= '9')
        return kDigit;
    if ((c | 0x20) >= 'a' && (c | 0x20) <= 'z')
        return kLetter;
    return kSymbol;
}

// -1 or 1 where the first difference decides alone, 0 where it does not.
static int DecideAt(unsigned char ca, unsigned char cb)
{
    const PlainClass a = ClassOf(ca), b = ClassOf(cb);
    if (a != b)
        return a < b ? -1 : 1;
    if (a == kSymbol)
        return 0;
    const unsigned char fa = a == kLetter ? (ca | 0x20) : ca, fb = b == kLetter ? (cb | 0x20) : cb;
    return fa == fb ? 0 : (fa < fb ? -1 : 1);
}

static int CompareIgnoringCase(const char *a, const char *b, DWORD count)
{
    DWORD lengthA = 0, lengthB = 0;
    while (lengthA < count && a[lengthA])
        ++lengthA;
    while (lengthB < count && b[lengthB])
        ++lengthB;
    bool plain = true;
    DWORD from = 0;      // after the last blank of the shared lead
    bool shared = true;  // still within the lead both texts share
    const LCID locale = GetThreadLocale();
    const bool english = PRIMARYLANGID(LANGIDFROMLCID(locale)) == LANG_ENGLISH && SORTIDFROMLCID(locale) == SORT_DEFAULT;
    const DWORD longer = lengthA > lengthB ? lengthA : lengthB;
    unsigned char firstA = 0, firstB = 0;  // the first pair that differs beyond case
    for (DWORD i = 0; i < longer && plain; ++i) {
        const unsigned char ca = i < lengthA ? static_cast<unsigned char>(a[i]) : 0;
        const unsigned char cb = i < lengthB ? static_cast<unsigned char>(b[i]) : 0;
        if (ca == cb && shared) {
            if (ca == ' ')
                from = i + 1;
        } else if (shared && (!english || (ca | 0x20) != (cb | 0x20) || (ca | 0x20) < 'a' || (ca | 0x20) > 'z')) {
            shared = false;  // not the two cases of one letter in the English sort
            firstA = ca;
            firstB = cb;
        }
        plain = IsPlain(ca) && IsPlain(cb);
    }
    if (plain && shared && lengthA == lengthB)
        return 0;  // the same text, letter case aside
    if (plain && !shared && english) {
        if (const int decided = DecideAt(firstA, firstB))
            return decided;
    }
    int result;
    if (!plain) {
        result = CompareStringA(locale, NORM_IGNORECASE | LOCALE_USE_CP_ACP, a, static_cast<int>(lengthA), b, static_cast<int>(lengthB));
    } else {
        a += from, b += from, lengthA -= from, lengthB -= from;
        const DWORD kWideRoom = 512;
        if (lengthA <= kWideRoom && lengthB <= kWideRoom) {
            WCHAR wideA[kWideRoom], wideB[kWideRoom];
            for (DWORD i = 0; i < lengthA; ++i)
                wideA[i] = static_cast<unsigned char>(a[i]);
            for (DWORD i = 0; i < lengthB; ++i)
                wideB[i] = static_cast<unsigned char>(b[i]);
            result = CompareStringW(locale, NORM_IGNORECASE, wideA, static_cast<int>(lengthA), wideB,
                                    static_cast<int>(lengthB));
        } else {
            result = CompareStringA(locale, NORM_IGNORECASE | LOCALE_USE_CP_ACP, a, static_cast<int>(lengthA), b,
                                    static_cast<int>(lengthB));
        }
    }
    return result ? result - CSTR_EQUAL : 0;
}

// Counts up to this many bytes compare in place; larger ones still take the
// two zeroed blocks, whose allocation may fail and is then recorded.
const DWORD kCompareInPlace = 1u << 20;

extern "C" int WINAPI OSstrncmpi(const char *a, const char *b, DWORD count)
{
    if (a && b && count <= kCompareInPlace)
        return CompareIgnoringCase(a, b, count);
    return CompareBounded("OSstrncmpi", a, b, count, lstrcmpiA);
}
