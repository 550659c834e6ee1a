// The parameters of one metafile record checked against the record's own
// length before it is played: the system's player trusts the counts inside
// a record (points, characters, palette entries, bitmap rows) and reads as
// far as they say, even past the record's end.
#include "metafile_bits.h"
#include "dib_internal.h"

namespace {

// Where a record's words are checked from: its parameters and their count.
struct Params {
    const WORD *word;
    DWORD count;
    DWORD At(DWORD index) const { return index < count ? word[index] : 0; }
};

// A packed bitmap that begins `offset` words into the parameters: its
// header, colour table and rows all lie within the record. `paletteIndices`
// tells 2-byte colour table entries (DIB_PAL_COLORS) from 4-byte ones.
bool DibFits(const Params &p, DWORD offset, bool paletteIndices)
{
    if (offset > p.count)
        return false;
    unsigned long long room = (static_cast<unsigned long long>(p.count) - offset) * 2;
    const BYTE *bits = reinterpret_cast<const BYTE *>(p.word + offset);
    if (room < 4)
        return false;
    DWORD headerSize = ReadU32(bits, 0);
    long long width, height;
    DWORD bitCount, colours, compression = BI_RGB, sizeImage = 0;
    if (headerSize == kCoreHeaderSize) {
        if (room < kCoreHeaderSize)
            return false;
        width = ReadU16(bits, 4);
        height = ReadU16(bits, 6);
        bitCount = ReadU16(bits, 10);
        colours = bitCount <= 8 ? 1u << bitCount : 0;
    } else {
        if (headerSize < kInfoHeaderSize || room < headerSize)
            return false;
        width = static_cast<LONG>(ReadU32(bits, 4));
        height = static_cast<LONG>(ReadU32(bits, 8));
        bitCount = ReadU16(bits, 14);
        compression = ReadU32(bits, 16);
        sizeImage = ReadU32(bits, 20);
        colours = ReadU32(bits, 32);
        if (!colours && bitCount <= 8)
            colours = 1u << bitCount;
        if (compression == BI_BITFIELDS && headerSize == kInfoHeaderSize)
            colours += 3;
    }
    if (bitCount == 0 || bitCount > 32 || colours > 0x10000 || width < 0)
        return false;
    unsigned long long entry = paletteIndices ? 2 : (headerSize == kCoreHeaderSize ? 3 : 4);
    unsigned long long rows;
    if (compression == BI_RGB || compression == BI_BITFIELDS)
        rows = ((width * bitCount + 31) / 32) * 4 * static_cast<unsigned long long>(height < 0 ? -height : height);
    else
        rows = sizeImage;
    return headerSize + colours * entry + rows <= room;
}

// An old-style bitmap (BITMAP16: type, width, height, bytes per row,
// planes and bits per pixel as two bytes, a 4-byte pointer) `offset` words
// in, its rows `gap` bytes after it. The rows are measured both by the
// bytes per row and by the width, since the system's bitmap takes the width.
bool Bitmap16Fits(const Params &p, DWORD offset, DWORD gap)
{
    const DWORD kBytes = 14;
    unsigned long long start = offset * 2ULL + kBytes + gap;
    if (start > p.count * 2ULL)
        return false;
    unsigned long long width = p.At(offset + 1), height = p.At(offset + 2);
    unsigned long long planes = p.At(offset + 4) & 0xFF, bits = p.At(offset + 4) >> 8;
    unsigned long long rowBytes = p.At(offset + 3), widthBytes = (width * bits + 15) / 16 * 2;
    if (widthBytes > rowBytes)
        rowBytes = widthBytes;
    return start + rowBytes * height * planes <= p.count * 2ULL;
}

// A polygon or polyline: a count and that many points.
bool PointsFit(const Params &p)
{
    return p.count >= 1 && 1 + 2ULL * p.At(0) <= p.count;
}

bool PolyPolygonFits(const Params &p)
{
    DWORD polygons = p.At(0);
    if (p.count < 1 || 1ULL + polygons > p.count)
        return false;
    unsigned long long points = 0;
    for (DWORD i = 0; i < polygons; ++i)
        points += p.At(1 + i);
    return 1ULL + polygons + 2 * points <= p.count;
}

// Characters as bytes, two to a word.
DWORD TextWords(DWORD characters)
{
    return (characters + 1) / 2;
}

bool TextOutFits(const Params &p)
{
    return p.count >= 1 && 1ULL + TextWords(p.At(0)) + 2 <= p.count;
}

// y, x, count, options, the rectangle with ETO_OPAQUE or ETO_CLIPPED, the
// text; the widths that may follow are read only when present.
bool ExtTextOutFits(const Params &p)
{
    if (p.count < 4)
        return false;
    DWORD rect = (p.At(3) & (ETO_OPAQUE | ETO_CLIPPED)) ? 4 : 0;
    return 4ULL + rect + TextWords(p.At(2)) <= p.count;
}

// A start or version word, a count, and that many 4-byte entries.
bool PaletteEntriesFit(const Params &p)
{
    return p.count >= 2 && 2 + 2ULL * p.At(1) <= p.count;
}

bool EscapeFits(const Params &p)
{
    return p.count >= 2 && 2ULL + TextWords(p.At(1)) <= p.count;
}

// A region object: 11 words of header, then per scan its count of x's, its
// top and bottom, the x's, and the count again.
bool RegionFits(const Params &p)
{
    const DWORD kHeader = 11;
    if (p.count < kHeader)
        return false;
    DWORD scans = p.At(6), at = kHeader;
    for (DWORD i = 0; i < scans; ++i) {
        if (at >= p.count)
            return false;
        unsigned long long next = at + 3ULL + p.At(at) + 1;
        if (next > p.count)
            return false;
        at = static_cast<DWORD>(next);
    }
    return true;
}

// The bitmap records: parameters before the bitmap, and how many they are
// when the record carries no bitmap at all.
bool DibBlitFits(const Params &p, DWORD before, DWORD withoutBitmap)
{
    return p.count == withoutBitmap || DibFits(p, before, false);
}

bool BitmapBlitFits(const Params &p, DWORD before, DWORD withoutBitmap)
{
    return p.count == withoutBitmap || Bitmap16Fits(p, before, 0);
}

// Records whose parameters carry counts, and the fixed records whose
// number does not tell their size.
struct RecordRule {
    WORD function;
    DWORD minimum;                       // parameter words at least
    bool (*fits)(const Params &);        // null: the minimum is the whole rule
};

const RecordRule kRecordRules[] = {
    {META_POLYGON, 1, PointsFit},
    {META_POLYLINE, 1, PointsFit},
    {META_POLYPOLYGON, 1, PolyPolygonFits},
    {META_TEXTOUT, 1, TextOutFits},
    {META_EXTTEXTOUT, 4, ExtTextOutFits},
    {META_ESCAPE, 2, EscapeFits},
    {META_CREATEPALETTE, 2, PaletteEntriesFit},
    {META_SETPALENTRIES, 2, PaletteEntriesFit},
    {META_ANIMATEPALETTE, 2, PaletteEntriesFit},
    {META_CREATEREGION, 11, RegionFits},
    {META_DIBBITBLT, 8, [](const Params &p) { return DibBlitFits(p, 8, 9); }},
    {META_DIBSTRETCHBLT, 10, [](const Params &p) { return DibBlitFits(p, 10, 11); }},
    {META_STRETCHDIB, 11, [](const Params &p) { return DibFits(p, 11, p.At(2) == DIB_PAL_COLORS); }},
    {META_SETDIBTODEV, 9, [](const Params &p) { return DibFits(p, 9, p.At(0) == DIB_PAL_COLORS); }},
    {META_DIBCREATEPATTERNBRUSH, 2, [](const Params &p) { return DibFits(p, 2, p.At(1) == DIB_PAL_COLORS); }},
    {META_BITBLT, 8, [](const Params &p) { return BitmapBlitFits(p, 8, 9); }},
    {META_STRETCHBLT, 10, [](const Params &p) { return BitmapBlitFits(p, 10, 11); }},
    {META_CREATEPATTERNBRUSH, 7, [](const Params &p) { return Bitmap16Fits(p, 0, 2); }},
    {META_SELECTPALETTE, 1, nullptr},
    {META_CREATEPENINDIRECT, 5, nullptr},
    {META_CREATEBRUSHINDIRECT, 4, nullptr},
    {META_CREATEFONTINDIRECT, 9, nullptr},
};

// Records that name objects of the playing table by index, and how many
// indices they begin with.
struct ObjectRule {
    WORD function;
    DWORD indices;
};

const ObjectRule kObjectRules[] = {
    {META_SELECTOBJECT, 1},  {META_DELETEOBJECT, 1}, {META_SELECTPALETTE, 1}, {META_SELECTCLIPREGION, 1},
    {META_INVERTREGION, 1},  {META_PAINTREGION, 1},  {META_FILLREGION, 2},    {META_FRAMEREGION, 2},
};

// True when every object index of the record names a slot of the table.
bool IndicesFit(const Params &p, WORD function, DWORD objects)
{
    for (const ObjectRule &rule : kObjectRules) {
        if (rule.function != function)
            continue;
        for (DWORD i = 0; i < rule.indices; ++i)
            if (i >= p.count || p.At(i) >= objects)
                return false;
    }
    return true;
}

}  // namespace

bool MetaRecordIsSound(const METARECORD *record, DWORD objects)
{
    if (record->rdSize < 3)
        return false;
    Params p = {record->rdParm, record->rdSize - 3};
    if (!IndicesFit(p, record->rdFunction, objects))
        return false;
    for (const RecordRule &rule : kRecordRules)
        if (rule.function == record->rdFunction)
            return p.count >= rule.minimum && (!rule.fits || rule.fits(p));
    // Every other record has a fixed size, which the high byte of its
    // number gives in words.
    return p.count >= (record->rdFunction >> 8);
}
