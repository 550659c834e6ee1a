// A number with its ordinal ending, or the ordinal as a word, in the
// language of the resource library: string 2600 is the format, given the
// number and the ordinal text 2600 + n; 3000 + n are the words.
#include "../core/module_globals.h"

namespace {

const UINT kSuffixFormatId = 2600;
const UINT kPlainOrdinalBase = 3000;

}  // namespace

extern "C" BOOL WINAPI OSSuffix(DWORD number, LONG plain, char *buffer, LONG size)
{
    // The buffer holds `size` bytes, the terminator included.
    if (!buffer || size < 1) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    HMODULE resources = ResourceGetHandle();
    if (plain) {
        char *word = LoadStringCopy(resources, kPlainOrdinalBase + number);
        if (!word)
            return 0;
        OScsprintf(buffer, size - 1, "%s", word);
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
    OSrsprintf(buffer, size - 1, format, number, suffix);
    LocalFree(suffix);
    LocalFree(format);
    return 1;
}
