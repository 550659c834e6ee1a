// Loads the library as a host would and writes what its resource library
// answers to the file named first on the command line, one "key=value" line
// each: the code recorded once loaded, the language, the library's file name, string 1, an ordinal, and
// for every further argument (a "META16" name) what ResourceLoadMetafile
// made of it. Exit status: 0 written, 1 the load failed, 2 no file.
#include <windows.h>
#include <cstdio>

typedef BOOL(WINAPI *TextWriter)(char *);
typedef HMODULE(WINAPI *HandleGetter)(void);
typedef HGLOBAL(WINAPI *MetafileLoader)(HMODULE, const char *);
typedef int(WINAPI *ErrorGetter)(void);
typedef void(WINAPI *ErrorClearer)(void);
typedef BOOL(WINAPI *SuffixMaker)(DWORD, LONG, char *, LONG);

template <typename Function>
static Function Entry(HMODULE library, const char *name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void *>(GetProcAddress(library, name)));
}

int main(int argc, char **argv)
{
    if (argc < 2)
        return 2;
    HMODULE library = LoadLibraryA("qziso32.dll");
    if (!library)
        return 1;
    FILE *out = std::fopen(argv[1], "w");
    if (!out)
        return 2;
    auto errorValue = Entry<ErrorGetter>(library, "OSErrorGetErrorValue");
    std::fprintf(out, "error=%d\n", errorValue());
    char text[512] = {};
    Entry<TextWriter>(library, "OSGet2CharacterLanguageString")(text);
    std::fprintf(out, "language=%s\n", text);
    Entry<TextWriter>(library, "OSBuildResourceString")(text);
    std::fprintf(out, "library=%s\n", text);
    HMODULE resources = Entry<HandleGetter>(library, "ResourceGetHandle")();
    LoadStringA(resources, 1, text, sizeof text);
    std::fprintf(out, "title=%s\n", text);
    Entry<SuffixMaker>(library, "OSSuffix")(2, 0, text, sizeof text);
    std::fprintf(out, "ordinal=%s\n", text);
    Entry<SuffixMaker>(library, "OSSuffix")(2, 1, text, sizeof text);
    std::fprintf(out, "word=%s\n", text);

    auto loadMetafile = Entry<MetafileLoader>(library, "ResourceLoadMetafile");
    auto clearError = Entry<ErrorClearer>(library, "OSErrorClearError");
    for (int i = 2; i < argc; ++i) {
        if (argv[i][0] == '/')
            continue;
        clearError();
        HGLOBAL block = loadMetafile(resources, argv[i]);
        if (!block) {
            std::fprintf(out, "%s=null %d\n", argv[i], errorValue());
            continue;
        }
        METAFILEPICT *picture = static_cast<METAFILEPICT *>(GlobalLock(block));
        std::fprintf(out, "%s=%ld %ld %ld\n", argv[i], picture->mm, picture->xExt, picture->yExt);
        DeleteMetaFile(picture->hMF);
        GlobalUnlock(block);
        GlobalFree(block);
    }
    std::fclose(out);
    FreeLibrary(library);
    return 0;
}
