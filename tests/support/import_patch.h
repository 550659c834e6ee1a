// Replaces one imported function of a loaded module for as long as the
// patch lives, so a test can watch or refuse a platform call the library
// makes (WinHelpA, ShellExecuteA, GlobalAlloc...) without any seam in the
// library itself:
//
//     static ImportPatch *s_alloc;
//     HGLOBAL WINAPI FailingAlloc(UINT flags, SIZE_T size) { ... s_alloc->Original() ... }
//     ImportPatch alloc(LibraryModule(), "kernel32.dll", "GlobalAlloc", FailingAlloc);
//
// The patch rewrites the module's import address table entry; the original
// is put back when the patch is destroyed.
#pragma once
#include <windows.h>

class ImportPatch {
public:
    ImportPatch(HMODULE module, const char *dllName, const char *functionName, const void *replacement);
    ~ImportPatch();
    ImportPatch(const ImportPatch &) = delete;
    ImportPatch &operator=(const ImportPatch &) = delete;

    // False if the module does not import that function by name.
    bool Applied() const { return slot_ != nullptr; }
    // The function the entry held before, to call through.
    template <typename F> F Original() const { return reinterpret_cast<F>(original_); }

private:
    void **slot_ = nullptr;
    void *original_ = nullptr;
};

// The library's own module, "qziso32.dll".
HMODULE LibraryModule();
