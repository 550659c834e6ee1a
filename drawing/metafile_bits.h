// Placeable metafiles and metafile bits, shared by the metafile family and
// the resource library's "META16" loader.
#pragma once
#include "draw_helpers.h"

const DWORD kPlaceableKey = 0x9AC6CDD7;
const DWORD kPlaceableHeaderSize = 22;  // the key to the checksum
const DWORD kMetaHeaderSize = 18;       // METAHEADER
const DWORD kMetaSizeOffset = 6;        // mtSize in the METAHEADER, in 16-bit words

DWORD ReadU16(const BYTE *bytes, DWORD offset);
DWORD ReadU32(const BYTE *bytes, DWORD offset);

// Bytes of the metafile that the METAHEADER `header` describes, mtSize x 2;
// false when that leaves 32 bits.
bool MetafileByteCount(const BYTE *header, DWORD *bytes);

// Mapping mode 7 and the extents of the placeable header's bounds in
// hundredths of a millimetre, in unsigned 32-bit arithmetic; false (nothing
// set) for an `inch` of 0.
bool PlaceableExtents(const BYTE *placeable, METAFILEPICT *picture);

// True when the bits are a metafile whose records chain, each at least one
// record header long, within `size` bytes to the end record or the end.
bool MetafileBitsAreSound(const BYTE *bits, DWORD size);

// True when the counts inside one record (points, characters, palette
// entries, a bitmap's rows) stay within the record's own length and its
// object indices within the `objects` slots of the playing table, so that
// playing it reads nothing beyond either.
bool MetaRecordIsSound(const METARECORD *record, DWORD objects);

// Copies the bits into a staging block that stays allocated, as the
// metafile's origin, and makes the metafile. Null with no error when the
// block cannot be had; RV_BadMetafile for unsound bits; RV_GDIError when
// the system refuses them.
HMETAFILE MetafileFromBits(const BYTE *bits, DWORD size);

// Unlocks the picture block and hands it out if `made`, else frees it and
// gives null.
HGLOBAL PictureBlockIf(HGLOBAL block, bool made);
