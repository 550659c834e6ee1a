// A number with its ordinal ending, or the ordinal as a word, in the
// language of the resource library: strings 2600 + n hold the endings
// (2600 itself the format that joins number and ending), 3000 + n the words.
#include "../core/module_globals.h"

namespace {

const UINT kSuffixFormatId = 2600;
const UINT kPlainOrdinalBase = 3000;

// Formats into the caller's buffer, at most `limit` characters and a
// terminator after them; returns the characters written.
int FormatCounted(char *out, int limit, const char *format, ...)
{
    char work[1025] = {};
    va_list args;
    va_start(args, format);
    int length = wvsprintfA(work, format, args);
    va_end(args);
    if (length > limit)
        length = limit;
    if (length < 0)
        length = 0;
    CopyMemory(out, work, length);
    out[length] = '\0';
    return length;
}

}  // namespace

extern "C" BOOL WINAPI OSSuffix(DWORD number, LONG plain, char *buffer, LONG size)
{
    // The buffer holds `size` bytes, the terminator included.
    if (!buffer || size < 1) {
        OSErrorSetErrorInfo(RV_BadParms);
        return 0;
    }
    HMODULE resources = ResourceGetHandle();
    if (plain) {
        char *word = LoadStringCopy(resources, kPlainOrdinalBase + number);
        if (!word)
            return 0;
        FormatCounted(buffer, size - 1, "%s", word);
        LocalFree(word);
        return 1;
    }
    char *format = LoadStringCopy(resources, kSuffixFormatId);
    if (!format)
        return 0;
    char *suffix = LoadStringCopy(resources, kSuffixFormatId + number);
    if (!suffix) {
        LocalFree(format);
        return 0;
    }
    FormatCounted(buffer, size - 1, format, number, suffix);
    LocalFree(suffix);
    LocalFree(format);
    return 1;
}
