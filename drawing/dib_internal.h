// The packed-bitmap arithmetic and the header reader that the DIB units
// share. Sizes are 32-bit unsigned on both builds; a header whose sizes do
// not fit, or that claims more than its source holds, is refused.
#pragma once
#include "draw_helpers.h"

const DWORD kInfoHeaderSize = 40;
const DWORD kCoreHeaderSize = 12;
const DWORD kFileHeaderSize = 14;

// Colours in the table: the low 16 bits of biClrUsed, else (and always for
// a core header) 2, 16 or 256 by the bit count, else 0.
DWORD DibNumColors(const BITMAPINFOHEADER *header);
// Bytes of the colour table: 3 per colour for a core header, 4 otherwise.
DWORD DibPaletteSize(const BITMAPINFOHEADER *header);
// ((bits x width + 31) / 32) x height x 4, height as it stands; false when
// the result leaves 0..2^32-1.
bool DibImageSize(const BITMAPINFOHEADER *header, DWORD *size);
// biSize + the colour table + biSizeImage; false on overflow.
bool DibWholeSize(const BITMAPINFOHEADER *header, DWORD *size);
// Where the pixel rows of a locked block begin.
BYTE *DibBits(BITMAPINFOHEADER *header);
// The checks every loaded or streamed 40-byte header passes: a bit count
// and compression that exist, a positive width, a colour table of at most
// 2^bits entries (and under 64 KB), and rows that fit in biSizeImage.
bool DibHeaderIsSound(const BITMAPINFOHEADER *header);

// Where a bitmap file is read from: an open file, or the image of one in
// memory with the bytes that may be read there.
struct DibSource {
    HFILE file = HFILE_ERROR;
    const BYTE *memory = nullptr;
    DWORD size = 0;      // bytes the file or the memory holds
    DWORD position = 0;  // from the start of the file image
};

// Copies up to `count` bytes on from the position; returns how many.
DWORD ReadSource(DibSource *source, void *to, DWORD count);
void SeekSource(DibSource *source, DWORD position);

// Reads the file header, the bitmap header (widening a core one) and the
// colour table into a new block of the 40-byte header and 4 bytes per
// colour, and leaves the source where the rows are taken from. Null
// (recorded) when the file is not a sound bitmap.
HGLOBAL DibReadHeader(DibSource *source);

// The rest of a load: grows the block to hold biSizeImage bytes of rows
// read from the source. Null (recorded, the block freed) on failure.
HGLOBAL DibReadRows(DibSource *source, HGLOBAL block, const char *name);
