/* A host written in C, as a host developer writes one against the package:
 * the header, and an import library of the host's toolchain. It calls a few
 * exports of different families and checks the answers, then reads the
 * version blocks of the library and its resource libraries back.
 *
 * Built twice: with the GNU toolchain against the GNU import library, and
 * with the MSVC ABI against qziso32.lib, freestanding (QZ_FREESTANDING: no
 * C runtime, only the library, kernel32 and version). The exit status is the
 * number of failed checks. */
#include "qziso32.h"
#include "qziso32_version.h"

static int failures;

static DWORD Length(const char *text)
{
    DWORD n = 0;
    while (text[n])
        n++;
    return n;
}

static void Say(const char *text)
{
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), text, Length(text), &written, NULL);
}

static int Same(const char *a, const char *b)
{
    if (!a || !b)
        return 0;
    while (*a && *a == *b)
        a++, b++;
    return *a == *b;
}

static void Check(int ok, const char *what)
{
    if (!ok)
        failures++;
    Say(ok ? "ok      " : "FAILED  ");
    Say(what);
    Say("\n");
}

static void CheckCalls(void)
{
    static const char key[] = "Software\\Tarvo\\Kelendrix\\98.0\\QzKitHost";
    char text[64];
    DateTimeValue when;

    Check(IsolateInstanceStart(0, 0), "IsolateInstanceStart");

    Check(OSSetDateTime(&when, 2024, 2, 29, 13, 5, 0, 0), "OSSetDateTime 29 February 2024");
    Check(Same(OSDateTimeToString(&when, text, "yyyy-MM-dd HH:mm", 0, sizeof text), "2024-02-29 13:05"),
          "OSDateTimeToString by a picture");
    when.year = 2023;
    Check(!OSDateTimeToString(&when, text, "d", 0, sizeof text) && OSErrorGetErrorValue() == RV_DayRange,
          "29 February 2023 records RV_DayRange");
    OSErrorClearError();

    /* __cdecl and variadic: the host's own argument passing. */
    Check(OScsprintf(text, 31, "%s-%05d|%x", "kit", 42, 255) == 12 && Same(text, "kit-00042|ff"),
          "OScsprintf");
    Check(OScsprintf(text, 4, "%s", "abcdefg") == 4 && Same(text, "abcd"), "OScsprintf cut at the limit");
    Check(OSrsprintf(text, 31, "@2%s @1%s", "one", "two") == 7 && Same(text, "two one"),
          "OSrsprintf in another order");

    Check(OSWriteProfileInt(key, "Number", 1234, "kit", 0), "OSWriteProfileInt");
    Check(OSGetProfileInt(key, "Number", 7, "kit", 0) == 1234, "OSGetProfileInt reads it back");
    Check(OSGetProfileInt(key, "Missing", 7, "kit", 0) == 7, "OSGetProfileInt answers the default");

    OSErrorSetErrorInfo(RV_NoFile, "kit.dat");
    OSErrorSetErrorInfo(RV_BadPath, "second");
    Check(OSErrorGetErrorValue() == RV_NoFile && OSErrorIsErrorPending(), "the first error wins");
    Check(Same(OSErrorGetErrorInfo()->itemText, "kit.dat"), "the error record names the file");
    Check(Same(OSErrorGetRVErrorString(RV_NoFile), "RV_NoFile"), "OSErrorGetRVErrorString");
    OSErrorClearError();
    Check(!OSErrorIsErrorPending() && OSErrorGetErrorValue() == RV_Success, "OSErrorClearError");
}

/* Reads the version block of `file` (loaded from the host's folder): the
 * fixed numbers and the texts under `translation`. */
static void CheckVersion(const char *file, const char *translation, WORD language)
{
    char path[MAX_PATH], query[80];
    static char block[4096];
    VS_FIXEDFILEINFO *fixed = NULL;
    char *value = NULL;
    WORD *languages = NULL;
    UINT size = 0;
    DWORD handle = 0, n;
    char *name;

    Say(file);
    Say(":\n");
    n = GetModuleFileNameA(NULL, path, sizeof path - 16);
    for (name = path + n; name > path && name[-1] != '\\'; name--)
        ;
    lstrcpyA(name, file);
    n = GetFileVersionInfoSizeA(path, &handle);
    Check(n > 0 && n <= sizeof block && GetFileVersionInfoA(path, 0, sizeof block, block),
          "GetFileVersionInfoA");
    Check(VerQueryValueA(block, "\\", (void **)&fixed, &size) && size >= sizeof *fixed &&
              fixed->dwFileVersionMS == (DWORD)MAKELONG(QZ_VERSION_MINOR, QZ_VERSION_MAJOR) &&
              fixed->dwFileVersionLS == (DWORD)MAKELONG(0, QZ_VERSION_PATCH) &&
              fixed->dwProductVersionMS == fixed->dwFileVersionMS,
          "file and product version numbers");
    Check(VerQueryValueA(block, "\\VarFileInfo\\Translation", (void **)&languages, &size) &&
              size >= 4 && languages[0] == language && languages[1] == 1252,
          "language and code page");
    lstrcpyA(query, "\\StringFileInfo\\");
    lstrcatA(query, translation);
    lstrcatA(query, "\\FileVersion");
    Check(VerQueryValueA(block, query, (void **)&value, &size) && Same(value, QZ_VERSION_TEXT),
          "FileVersion text");
    lstrcpyA(query + Length(query) - 11, "FileDescription");
    Check(VerQueryValueA(block, query, (void **)&value, &size) && size > 1, "FileDescription");
    lstrcpyA(query + Length(query) - 15, "OriginalFilename");
    Check(VerQueryValueA(block, query, (void **)&value, &size) && Same(value, file), "OriginalFilename");
}

static int RunHost(void)
{
    CheckCalls();
    CheckVersion("qziso32.dll", "040904E4", 0x0409);
    CheckVersion("KE1C30EN.DLL", "040904E4", 0x0409);
    CheckVersion("KE1C30DE.DLL", "040704E4", 0x0407);
    Say(failures ? "host checks FAILED\n" : "host checks passed\n");
    return failures;
}

#ifdef QZ_FREESTANDING
void __stdcall mainCRTStartup(void)
{
    ExitProcess((UINT)RunHost());
}
#else
int main(void)
{
    return RunHost();
}
#endif
