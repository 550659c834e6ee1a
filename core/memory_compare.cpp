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

extern "C" int WINAPI OSstrncmpi(const char *a, const char *b, DWORD count)
{
    return CompareBounded("OSstrncmpi", a, b, count, lstrcmpiA);
}
