// A library that a probe loads before qziso32.dll. When the process ends
// (attach of qziso32 may end it), it writes the error record's code and item
// value to the file named by QZ_ATTACH_WITNESS, as "code value": the cause of
// an attach that ended the process. Kernel calls only, since it runs while the
// process shuts down.
#include <windows.h>

struct ErrorContextStart {
    DWORD errorCode;
    DWORD contextStringId;
    HMODULE contextModule;
    BOOL isPending;
    char itemText[256];
    ULONG_PTR functionAddress;
    DWORD detail1;
    DWORD detail2;
    DWORD itemValue;
};
typedef ErrorContextStart *(WINAPI *ErrorInfoGetter)(void);

static char *PutNumber(char *out, DWORD n)
{
    char digits[12];
    int count = 0;
    do {
        digits[count++] = static_cast<char>('0' + n % 10);
        n /= 10;
    } while (n);
    while (count)
        *out++ = digits[--count];
    return out;
}

static void WriteWitness()
{
    char path[MAX_PATH];
    if (!GetEnvironmentVariableA("QZ_ATTACH_WITNESS", path, sizeof path))
        return;
    HMODULE library = GetModuleHandleA("qziso32.dll");
    if (!library)
        return;
    ErrorInfoGetter get = reinterpret_cast<ErrorInfoGetter>(
        reinterpret_cast<void *>(GetProcAddress(library, "OSErrorGetErrorInfo")));
    if (!get)
        return;
    const ErrorContextStart *record = get();
    char line[40];
    char *end = PutNumber(line, record->errorCode);
    *end++ = ' ';
    end = PutNumber(end, record->itemValue);
    HANDLE file = CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    DWORD written = 0;
    WriteFile(file, line, static_cast<DWORD>(end - line), &written, nullptr);
    CloseHandle(file);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_DETACH)
        WriteWitness();
    return TRUE;
}
