// Metafile bits and placeable headers: see metafile_bits.h.
#include <cstring>
#include "metafile_bits.h"

namespace {

const DWORD kHundredthsOfMmPerInch = 2540;
const DWORD kRecordHeaderWords = 3;  // rdSize (32 bits) and rdFunction

}  // namespace

DWORD ReadU16(const BYTE *bytes, DWORD offset)
{
    return static_cast<DWORD>(bytes[offset]) | static_cast<DWORD>(bytes[offset + 1]) << 8;
}

DWORD ReadU32(const BYTE *bytes, DWORD offset)
{
    return ReadU16(bytes, offset) | ReadU16(bytes, offset + 2) << 16;
}

bool MetafileByteCount(const BYTE *header, DWORD *bytes)
{
    DWORD words = ReadU32(header, kMetaSizeOffset);
    if (words > 0x7FFFFFFF)
        return false;
    *bytes = words * 2;
    return true;
}

bool PlaceableExtents(const BYTE *placeable, METAFILEPICT *picture)
{
    DWORD inch = ReadU16(placeable, 14);
    if (!inch)
        return false;
    picture->mm = MM_ISOTROPIC;
    // Unsigned arithmetic: a left edge beyond the right one wraps around.
    picture->xExt = static_cast<LONG>(
        (ReadU16(placeable, 10) * kHundredthsOfMmPerInch - ReadU16(placeable, 6) * kHundredthsOfMmPerInch) /
        inch);
    picture->yExt = static_cast<LONG>(
        (ReadU16(placeable, 12) * kHundredthsOfMmPerInch - ReadU16(placeable, 8) * kHundredthsOfMmPerInch) /
        inch);
    return true;
}

bool MetafileBitsAreSound(const BYTE *bits, DWORD size)
{
    if (!bits || size < kMetaHeaderSize)
        return false;
    DWORD type = ReadU16(bits, 0), headerWords = ReadU16(bits, 2);
    if ((type != 1 && type != 2) || headerWords * 2 != kMetaHeaderSize)
        return false;
    DWORD at = kMetaHeaderSize;
    while (at < size) {
        if (size - at < kRecordHeaderWords * 2)
            return false;
        DWORD words = ReadU32(bits, at);
        // A record shorter than its own header would never move the walk on.
        if (words < kRecordHeaderWords || words > (size - at) / 2)
            return false;
        if (ReadU16(bits, at + 4) == 0)
            return true;  // the end record
        at += words * 2;
    }
    return true;
}

HGLOBAL PictureBlockIf(HGLOBAL block, bool made)
{
    GlobalUnlock(block);
    if (made)
        return block;
    GlobalFree(block);
    return nullptr;
}

HMETAFILE MetafileFromBits(const BYTE *bits, DWORD size)
{
    if (!MetafileBitsAreSound(bits, size)) {
        OSErrorSetErrorInfo(RV_BadMetafile);
        return nullptr;
    }
    HGLOBAL staging;
    BYTE *copy = static_cast<BYTE *>(AllocateLocked(size, &staging));
    if (!copy)
        return nullptr;
    memcpy(copy, bits, size);
    HMETAFILE metafile = SetMetaFileBitsEx(size, copy);
    GlobalUnlock(staging);
    if (!metafile) {
        OSErrorSetErrorInfo(RV_GDIError);
        GlobalFree(staging);
    }
    return metafile;
}
