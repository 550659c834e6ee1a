// The library's one string-loading idiom: a zeroed 512-byte working block,
// then a copy of exactly the string's length plus one.
#include "module_globals.h"

char *LoadStringCopy(HMODULE module, UINT id)
{
    const UINT workSize = 512;
    char *work = static_cast<char *>(LocalAlloc(LPTR, workSize));
    if (!work) {
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, workSize);
        return nullptr;
    }
    int length = LoadStringA(module, id, work, workSize);
    if (length <= 0) {
        LocalFree(work);
        OSErrorSetErrorInfo(RV_StringNonExistant, id);
        return nullptr;
    }
    UINT copySize = static_cast<UINT>(length) + 1;
    char *copy = static_cast<char *>(LocalAlloc(LPTR, copySize));
    if (!copy) {
        LocalFree(work);
        OSErrorSetErrorInfo(RV_OutOfLocalMemory, copySize);
        return nullptr;
    }
    CopyMemory(copy, work, length);
    LocalFree(work);
    return copy;
}
