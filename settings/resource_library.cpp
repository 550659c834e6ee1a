// The language and its resource library: every dialog, bitmap, cursor,
// metafile and string of the library lives in "KE1C30" + language + ".DLL".
#include <cstring>
#include "qziso32.h"

static HMODULE s_resourceLibrary;

extern "C" BOOL WINAPI OSGet2CharacterLanguageString(char *out)
{
    char code[4] = {};
    // A plain substring search of the raw command line: upper case first,
    // and the first occurrence anywhere counts, the program's path included.
    const char *commandLine = GetCommandLineA();
    const char *found = commandLine ? strstr(commandLine, "/L") : nullptr;
    if (!found && commandLine)
        found = strstr(commandLine, "/l");
    if (found) {
        code[0] = found[2];
        code[1] = code[0] ? found[3] : '\0';
    } else {
        OSGetProfileStringPassID("Software\\Tarvo\\Kelendrix\\98.0\\Languages", "Default", "en", code,
                                 4, "TARVO.INI", 0, HKEY_LOCAL_MACHINE);
    }
    code[2] = '\0';
    if (out)
        lstrcpyA(out, code);
    return 1;
}

extern "C" BOOL WINAPI OSBuildResourceString(char *out)
{
    char code[4] = {};
    if (!OSGet2CharacterLanguageString(code))
        return 0;
    if (!out) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return 0;
    }
    lstrcpyA(out, "KE1C30");
    lstrcatA(out, code);
    lstrcatA(out, ".DLL");
    return 1;
}

extern "C" HMODULE WINAPI OSStartResource(void)
{
    char name[64] = {};
    if (!OSBuildResourceString(name))
        return nullptr;
    // The bare name: the system's normal search order finds the library.
    HMODULE library = LoadLibraryA(name);
    if (library)
        s_resourceLibrary = library;
    return library;
}

extern "C" BOOL WINAPI OSStopResource(void)
{
    return FreeLibrary(s_resourceLibrary);
}

extern "C" HMODULE WINAPI ResourceGetHandle(void)
{
    return s_resourceLibrary;
}
