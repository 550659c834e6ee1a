// Bitmaps and metafiles out of the resource library. A metafile resource is
// of the type "META16": a placeable metafile, whose header gives the picture's
// bounds in units of its own per inch.
#include <cstring>
#include "qziso32.h"

namespace {

const DWORD kPlaceableKey = 0x9AC6CDD7;
const UINT kPictureFlags = GMEM_MOVEABLE | GMEM_ZEROINIT;  // 0x42
const DWORD kHundredthsOfMmPerInch = 2540;

// Offsets in the resource: the placeable header, then the metafile proper.
const DWORD kLeftOffset = 6, kTopOffset = 8, kRightOffset = 10, kBottomOffset = 12;
const DWORD kInchOffset = 14;
const DWORD kMetafileOffset = 22;
const DWORD kMetafileSizeOffset = 28;  // size in 16-bit words, header included
const DWORD kSmallestResource = 40;    // both headers, no records

DWORD ReadWord(const BYTE *bytes, DWORD offset)
{
    return static_cast<DWORD>(bytes[offset]) | static_cast<DWORD>(bytes[offset + 1]) << 8;
}

DWORD ReadDoubleWord(const BYTE *bytes, DWORD offset)
{
    return ReadWord(bytes, offset) | ReadWord(bytes, offset + 2) << 16;
}

// A block of `size` bytes, allocated and locked; null, with nothing left
// allocated, when either step fails.
void *AllocateLocked(SIZE_T size, HGLOBAL *block)
{
    *block = GlobalAlloc(kPictureFlags, size);
    if (!*block)
        return nullptr;
    void *bytes = GlobalLock(*block);
    if (!bytes) {
        GlobalFree(*block);
        *block = nullptr;
    }
    return bytes;
}

// Makes the metafile described by the resource `bytes` of `resourceSize`
// bytes and fills `picture`; returns false (recording why) when it cannot.
bool BuildPicture(const BYTE *bytes, DWORD resourceSize, METAFILEPICT *picture)
{
    if (resourceSize < 4 || ReadDoubleWord(bytes, 0) != kPlaceableKey)
        return false;
    if (resourceSize < kSmallestResource) {
        OSErrorSetErrorInfo(RV_BadMetafile);
        return false;
    }
    DWORD inch = ReadWord(bytes, kInchOffset);
    if (!inch) {
        OSErrorSetErrorInfo(RV_BadMetafile);
        return false;
    }
    DWORD size = ReadDoubleWord(bytes, kMetafileSizeOffset) * 2;
    if (size > resourceSize - kMetafileOffset) {
        OSErrorSetErrorInfo(RV_BadMetafile);
        return false;
    }
    // The staging block stays allocated for the life of the process: the
    // metafile is made from its bytes and nothing keeps its handle.
    HGLOBAL staging;
    BYTE *metafileBytes = static_cast<BYTE *>(AllocateLocked(size, &staging));
    if (!metafileBytes)
        return false;
    CopyMemory(metafileBytes, bytes + kMetafileOffset, size);
    picture->mm = MM_ISOTROPIC;
    // Unsigned arithmetic: a left edge beyond the right one wraps around.
    picture->xExt = static_cast<LONG>(
        (ReadWord(bytes, kRightOffset) * kHundredthsOfMmPerInch -
         ReadWord(bytes, kLeftOffset) * kHundredthsOfMmPerInch) / inch);
    picture->yExt = static_cast<LONG>(
        (ReadWord(bytes, kBottomOffset) * kHundredthsOfMmPerInch -
         ReadWord(bytes, kTopOffset) * kHundredthsOfMmPerInch) / inch);
    picture->hMF = SetMetaFileBitsEx(size, metafileBytes);
    GlobalUnlock(staging);
    return picture->hMF != nullptr;
}

}  // namespace

extern "C" HBITMAP WINAPI ResourceLoadBitmap(HMODULE module, DWORD id)
{
    return LoadBitmapA(module, MAKEINTRESOURCEA(id));
}

extern "C" HGLOBAL WINAPI ResourceLoadMetafile(HMODULE module, const char *name)
{
    HGLOBAL block;
    METAFILEPICT *picture = static_cast<METAFILEPICT *>(AllocateLocked(sizeof(METAFILEPICT), &block));
    if (!picture)
        return nullptr;
    // Found in the resource library, loaded from the module the caller gave:
    // callers pass the resource library in both roles, and a resource found
    // in one module cannot be loaded through another.
    if (module != ResourceGetHandle()) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        GlobalUnlock(block);
        GlobalFree(block);
        return nullptr;
    }
    HRSRC found = FindResourceA(ResourceGetHandle(), name, "META16");
    if (!found) {
        GlobalUnlock(block);
        GlobalFree(block);
        return nullptr;
    }
    HGLOBAL resource = LoadResource(module, found);
    const BYTE *bytes = resource ? static_cast<const BYTE *>(LockResource(resource)) : nullptr;
    bool made = bytes && BuildPicture(bytes, SizeofResource(module, found), picture);
    if (resource)
        FreeResource(resource);
    GlobalUnlock(block);
    if (made)
        return block;
    GlobalFree(block);
    return nullptr;
}
