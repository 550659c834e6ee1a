#include "import_patch.h"
#include <cstring>

namespace {

template <typename T> T *At(HMODULE module, DWORD rva)
{
    return reinterpret_cast<T *>(reinterpret_cast<BYTE *>(module) + rva);
}

// The import address table slot through which `module` calls
// dllName!functionName, or null.
void **FindSlot(HMODULE module, const char *dllName, const char *functionName)
{
    if (!module)
        return nullptr;
    auto *dos = reinterpret_cast<IMAGE_DOS_HEADER *>(module);
    auto *nt = At<IMAGE_NT_HEADERS>(module, dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY &directory =
        nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!directory.VirtualAddress)
        return nullptr;
    for (auto *import = At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
         import->Name; ++import) {
        if (lstrcmpiA(At<char>(module, import->Name), dllName) != 0)
            continue;
        auto *names = At<IMAGE_THUNK_DATA>(module, import->OriginalFirstThunk
                                                       ? import->OriginalFirstThunk
                                                       : import->FirstThunk);
        auto *slots = At<IMAGE_THUNK_DATA>(module, import->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            auto *byName = At<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(names->u1.AddressOfData));
            if (strcmp(reinterpret_cast<const char *>(byName->Name), functionName) == 0)
                return reinterpret_cast<void **>(&slots->u1.Function);
        }
    }
    return nullptr;
}

void WriteSlot(void **slot, void *value)
{
    DWORD protection = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
    *slot = value;
    VirtualProtect(slot, sizeof *slot, protection, &protection);
}

} // namespace

ImportPatch::ImportPatch(HMODULE module, const char *dllName, const char *functionName,
                         const void *replacement)
{
    slot_ = FindSlot(module, dllName, functionName);
    if (slot_) {
        original_ = *slot_;
        WriteSlot(slot_, const_cast<void *>(replacement));
    }
}

ImportPatch::~ImportPatch()
{
    if (slot_)
        WriteSlot(slot_, original_);
}

HMODULE LibraryModule()
{
    return GetModuleHandleA("qziso32.dll");
}
