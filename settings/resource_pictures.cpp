// Bitmaps and metafiles out of the resource library. A metafile resource is
// of the type "META16": a placeable metafile, whose header gives the picture's
// bounds in units of its own per inch.
#include <cstring>
#include "../drawing/metafile_bits.h"

namespace {

const DWORD kSmallestResource = kPlaceableHeaderSize + kMetaHeaderSize;  // no records

// Makes the metafile described by the resource `bytes` of `resourceSize`
// bytes and fills `picture`; returns false (recording why) when it cannot.
bool BuildPicture(const BYTE *bytes, DWORD resourceSize, METAFILEPICT *picture)
{
    if (resourceSize < 4 || ReadU32(bytes, 0) != kPlaceableKey)
        return false;
    DWORD size;
    if (resourceSize < kSmallestResource || !PlaceableExtents(bytes, picture) ||
        !MetafileByteCount(bytes + kPlaceableHeaderSize, &size) ||
        size > resourceSize - kPlaceableHeaderSize) {
        OSErrorSetErrorInfo(RV_BadMetafile);
        return false;
    }
    // The staging block stays allocated for the life of the process: the
    // metafile is made from its bytes and nothing keeps its handle.
    picture->hMF = MetafileFromBits(bytes + kPlaceableHeaderSize, size);
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
        return PictureBlockIf(block, false);
    }
    HRSRC found = FindResourceA(ResourceGetHandle(), name, "META16");
    if (!found)
        return PictureBlockIf(block, false);
    HGLOBAL resource = LoadResource(module, found);
    const BYTE *bytes = resource ? static_cast<const BYTE *>(LockResource(resource)) : nullptr;
    bool made = bytes && BuildPicture(bytes, SizeofResource(module, found), picture);
    if (resource)
        FreeResource(resource);
    return PictureBlockIf(block, made);
}
