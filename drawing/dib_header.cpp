// Sizes of packed bitmaps and the reader of bitmap file headers, shared by
// the file and the in-memory loaders.
#include <climits>
#include <cstring>
#include "dib_internal.h"

DWORD DibNumColors(const BITMAPINFOHEADER *header)
{
    WORD bits;
    if (header->biSize == kCoreHeaderSize) {
        bits = reinterpret_cast<const BITMAPCOREHEADER *>(header)->bcBitCount;
    } else {
        if (LOWORD(header->biClrUsed))
            return LOWORD(header->biClrUsed);
        bits = header->biBitCount;
    }
    switch (bits) {
    case 1: return 2;
    case 4: return 16;
    case 8: return 256;
    default: return 0;
    }
}

DWORD DibPaletteSize(const BITMAPINFOHEADER *header)
{
    return DibNumColors(header) * (header->biSize == kCoreHeaderSize ? 3 : 4);
}

bool DibImageSize(const BITMAPINFOHEADER *header, DWORD *size)
{
    long long rowWords = (static_cast<long long>(header->biBitCount) * header->biWidth + 31) / 32;
    long long bytes = rowWords * header->biHeight * 4;
    if (bytes < 0 || bytes > 0xFFFFFFFFLL)
        return false;
    *size = static_cast<DWORD>(bytes);
    return true;
}

bool DibWholeSize(const BITMAPINFOHEADER *header, DWORD *size)
{
    unsigned long long whole = static_cast<unsigned long long>(header->biSize) +
                               LOWORD(DibPaletteSize(header)) + header->biSizeImage;
    if (whole > 0xFFFFFFFFULL)
        return false;
    *size = static_cast<DWORD>(whole);
    return true;
}

BYTE *DibBits(BITMAPINFOHEADER *header)
{
    return reinterpret_cast<BYTE *>(header) + header->biSize + DibPaletteSize(header);
}

bool DibHeaderIsSound(const BITMAPINFOHEADER *header)
{
    static const WORD kBitCounts[] = {1, 4, 8, 16, 24, 32};
    bool knownBits = false;
    for (WORD bits : kBitCounts)
        knownBits = knownBits || header->biBitCount == bits;
    if (header->biSize != kInfoHeaderSize || !knownBits || header->biWidth <= 0 ||
        header->biCompression > BI_BITFIELDS)
        return false;
    DWORD colours = DibNumColors(header);
    if (colours * 4 > 0xFFFF || (header->biBitCount <= 8 && colours > (1u << header->biBitCount)))
        return false;
    if (header->biCompression == BI_RLE8 || header->biCompression == BI_RLE4)
        return true;
    // Uncompressed rows, bottom-up or top-down, all within biSizeImage.
    if (header->biHeight == LONG_MIN)
        return false;
    BITMAPINFOHEADER rows = *header;
    rows.biHeight = header->biHeight < 0 ? -header->biHeight : header->biHeight;
    DWORD needed;
    if (!DibImageSize(&rows, &needed))
        return false;
    // Three colour masks come first with BI_BITFIELDS.
    DWORD masks = header->biCompression == BI_BITFIELDS ? 12 : 0;
    return needed <= header->biSizeImage && masks <= header->biSizeImage - needed;
}

namespace {

// Reads of this size or more copy from a mapped view of the file, which
// spares the system a pass through its own buffers.
const DWORD kMappedRead = 1 << 20;

bool CopyMapped(DibSource *source, void *to, DWORD count)
{
    HANDLE file = reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(source->file));
    HANDLE mapping = CreateFileMappingA(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
    if (!mapping)
        return false;
    const BYTE *view = static_cast<const BYTE *>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0));
    // The file may have shrunk since it was measured: copy only from the view.
    bool whole = view && ReadableRoom(view + source->position, count) == count;
    if (whole) {
        memcpy(to, view + source->position, count);
        _llseek(source->file, static_cast<LONG>(source->position + count), FILE_BEGIN);
    }
    if (view)
        UnmapViewOfFile(view);
    CloseHandle(mapping);
    return whole;
}

}  // namespace

DWORD ReadSource(DibSource *source, void *to, DWORD count)
{
    if (source->position >= source->size)
        return 0;
    DWORD room = source->size - source->position;
    if (count > room)
        count = room;
    if (source->memory) {
        memcpy(to, source->memory + source->position, count);
    } else if (count >= kMappedRead && CopyMapped(source, to, count)) {
        // Large rows come straight from a view of the file.
    } else {
        // _hread takes a signed count: read in pieces below 2 GB.
        DWORD done = 0;
        while (done < count) {
            DWORD piece = count - done > 0x40000000 ? 0x40000000 : count - done;
            long got = _hread(source->file, static_cast<BYTE *>(to) + done, static_cast<long>(piece));
            if (got <= 0)
                break;
            done += static_cast<DWORD>(got);
        }
        count = done;
    }
    source->position += count;
    return count;
}

void SeekSource(DibSource *source, DWORD position)
{
    source->position = position;
    if (!source->memory)
        _llseek(source->file, static_cast<LONG>(position), FILE_BEGIN);
}

HGLOBAL DibReadHeader(DibSource *source)
{
    BYTE fileHeader[kFileHeaderSize];
    SeekSource(source, 0);
    if (ReadSource(source, fileHeader, sizeof fileHeader) != sizeof fileHeader ||
        fileHeader[0] != 'B' || fileHeader[1] != 'M') {
        OSErrorSetErrorInfo(RV_BadDIB);
        return nullptr;
    }
    DWORD offBits;
    memcpy(&offBits, fileHeader + 10, sizeof offBits);
    BITMAPINFOHEADER header;
    if (ReadSource(source, &header, sizeof header) != sizeof header) {
        OSErrorSetErrorInfo(RV_BadDIB);
        return nullptr;
    }
    DWORD colours = DibNumColors(&header);
    bool core = header.biSize == kCoreHeaderSize;
    if (core) {
        BITMAPCOREHEADER small;
        memcpy(&small, &header, sizeof small);
        memset(&header, 0, sizeof header);
        header.biWidth = small.bcWidth;
        header.biHeight = small.bcHeight;
        header.biPlanes = small.bcPlanes;
        header.biBitCount = small.bcBitCount;
        header.biClrUsed = header.biClrImportant = colours;
        header.biSize = kInfoHeaderSize;
        SeekSource(source, source->position - (kInfoHeaderSize - kCoreHeaderSize));
    } else if (header.biSize != kInfoHeaderSize) {
        OSErrorSetErrorInfo(RV_BadDIB);
        return nullptr;
    }
    if (!header.biSizeImage && !DibImageSize(&header, &header.biSizeImage)) {
        OSErrorSetErrorInfo(RV_BadDIB);
        return nullptr;
    }
    if (!header.biClrUsed)
        header.biClrUsed = DibNumColors(&header);
    if (!DibHeaderIsSound(&header)) {
        OSErrorSetErrorInfo(RV_BadDIB);
        return nullptr;
    }
    colours = DibNumColors(&header);
    DWORD blockSize = kInfoHeaderSize + colours * 4;
    HGLOBAL block;
    BYTE *bytes = static_cast<BYTE *>(AllocateLocked(blockSize, &block));
    if (!bytes) {
        OSErrorSetErrorInfo(RV_OutOfGlobalMemory, blockSize);
        return nullptr;
    }
    memcpy(bytes, &header, sizeof header);
    RGBQUAD *table = reinterpret_cast<RGBQUAD *>(bytes + kInfoHeaderSize);
    DWORD tableBytes = colours * (core ? 3 : 4);
    if (ReadSource(source, table, tableBytes) != tableBytes) {
        OSErrorSetErrorInfo(RV_ReadFailure, "");
        GlobalUnlock(block);
        GlobalFree(block);
        return nullptr;
    }
    if (core) {
        // Three bytes per colour widened to four, from the last entry back.
        const BYTE *triples = reinterpret_cast<const BYTE *>(table);
        for (DWORD i = colours; i-- > 0;) {
            RGBQUAD quad = {triples[i * 3], triples[i * 3 + 1], triples[i * 3 + 2], 0};
            table[i] = quad;
        }
    }
    // A zero offset sends the reader back to the file's start; any other
    // value is not used and the rows follow the colour table.
    if (!offBits)
        SeekSource(source, 0);
    GlobalUnlock(block);
    return block;
}

HGLOBAL DibReadRows(DibSource *source, HGLOBAL block, const char *name)
{
    BITMAPINFOHEADER *header = static_cast<BITMAPINFOHEADER *>(GlobalLock(block));
    if (!header) {
        OSErrorSetErrorInfo(RV_Failure, "");
        GlobalFree(block);
        return nullptr;
    }
    DWORD rows = header->biSizeImage, whole;
    bool fits = DibWholeSize(header, &whole) && source->position <= source->size &&
                rows <= source->size - source->position;
    GlobalUnlock(block);
    if (!fits) {
        OSErrorSetErrorInfo(RV_ReadFailure, name);
        GlobalFree(block);
        return nullptr;
    }
    // The block grows to its whole size: a fresh block with the header and
    // colour table copied, since growing in place would first clear the
    // rows' room that the read fills anyway.
    // Every byte of it is written below, so it is not cleared first.
    HGLOBAL grown = GlobalAlloc(GMEM_MOVEABLE, whole);
    BYTE *bytes = grown ? static_cast<BYTE *>(GlobalLock(grown)) : nullptr;
    const void *small = bytes ? GlobalLock(block) : nullptr;
    if (small) {
        memcpy(bytes, small, GlobalSize(block) < whole ? GlobalSize(block) : whole);
        GlobalUnlock(block);
    }
    if (bytes)
        GlobalUnlock(grown);
    GlobalFree(block);
    if (!small) {
        if (grown)
            GlobalFree(grown);
        OSErrorSetErrorInfo(RV_OutOfGlobalMemory, whole);
        return nullptr;
    }
    header = static_cast<BITMAPINFOHEADER *>(GlobalLock(grown));
    bool read = header && ReadSource(source, DibBits(header), rows) == rows;
    if (header)
        GlobalUnlock(grown);
    if (!read) {
        OSErrorSetErrorInfo(RV_ReadFailure, name);
        GlobalFree(grown);
        return nullptr;
    }
    return grown;
}
