// DIB handles from bitmap files, file images in memory and streams, and
// back to streams; their size, dimensions, copies and release.
#include <cstring>
#include "dib_internal.h"

namespace {

// The largest image of a bitmap file that a pointer is taken to hold.
const SIZE_T kLargestImage = 0xFFFFFFFF;

}  // namespace

extern "C" HGLOBAL WINAPI DIB_OpenDIB(const char *name)
{
    HFILE file = name ? _lopen(name, OF_READ) : HFILE_ERROR;
    if (file == HFILE_ERROR) {
        OSErrorSetErrorInfo(RV_NoFile, name ? name : "");
        return nullptr;
    }
    DibSource source;
    source.file = file;
    LONG end = _llseek(file, 0, FILE_END);
    source.size = end > 0 ? static_cast<DWORD>(end) : 0;
    HGLOBAL block = DibReadHeader(&source);
    if (block)
        block = DibReadRows(&source, block, name);
    _lclose(file);
    return block;
}

extern "C" HGLOBAL WINAPI DIB_FileStreamToDIB(const BYTE *image)
{
    // The image carries no length: read no further than the memory that can
    // be read from it.
    DibSource source;
    source.memory = image;
    source.size = static_cast<DWORD>(ReadableRoom(image, kLargestImage));
    HGLOBAL block = DibReadHeader(&source);
    return block ? DibReadRows(&source, block, "") : nullptr;
}

extern "C" HGLOBAL WINAPI DIB_StreamToDIB(const BYTE *stream)
{
    BITMAPINFOHEADER header;
    DWORD whole;
    if (ReadableRoom(stream, sizeof header) != sizeof header) {
        OSErrorSetErrorInfo(RV_BadDIB);
        return nullptr;
    }
    memcpy(&header, stream, sizeof header);
    if (!DibHeaderIsSound(&header) || !DibWholeSize(&header, &whole) ||
        ReadableRoom(stream, whole) != whole) {
        OSErrorSetErrorInfo(RV_BadDIB);
        return nullptr;
    }
    HGLOBAL block;
    void *bytes = AllocateLocked(whole, &block);
    if (!bytes) {
        OSErrorSetErrorInfo(RV_OutOfGlobalMemory, whole);
        return nullptr;
    }
    memcpy(bytes, stream, whole);
    GlobalUnlock(block);
    return block;
}

extern "C" DWORD WINAPI DIB_DIBSize(HGLOBAL dib)
{
    if (!dib)
        return 0;
    const BITMAPINFOHEADER *header = static_cast<const BITMAPINFOHEADER *>(GlobalLock(dib));
    if (!header)
        return 0;
    DWORD whole = 0;
    if (!DibWholeSize(header, &whole) || whole > GlobalSize(dib))
        whole = 0;
    GlobalUnlock(dib);
    return whole;
}

extern "C" BOOL WINAPI DIB_DIBToStream(BYTE *out, HGLOBAL dib)
{
    if (!out) {
        OSErrorSetErrorInfo(RV_BadParms, __func__);
        return FALSE;
    }
    DWORD size = DIB_DIBSize(dib);
    const void *bytes = size ? GlobalLock(dib) : nullptr;
    if (bytes) {
        memcpy(out, bytes, size);
        GlobalUnlock(dib);
    }
    return TRUE;
}

extern "C" BOOL WINAPI DIB_GetDimensions(HGLOBAL dib, SIZE *size)
{
    const BITMAPINFOHEADER *header =
        dib ? static_cast<const BITMAPINFOHEADER *>(GlobalLock(dib)) : nullptr;
    if (!header)
        return FALSE;
    if (size) {
        size->cx = header->biWidth;
        size->cy = header->biHeight;
    }
    GlobalUnlock(dib);
    return TRUE;
}

extern "C" HGLOBAL WINAPI DIB_CopyDIB(HGLOBAL dib)
{
    const void *from = dib ? GlobalLock(dib) : nullptr;
    SIZE_T size = from ? GlobalSize(dib) : 0;
    HGLOBAL copy = nullptr;
    void *to = from ? AllocateLocked(size, &copy) : nullptr;
    if (!to)
        OSErrorSetErrorInfo(RV_OutOfGlobalMemory, static_cast<DWORD>(size));
    else {
        memcpy(to, from, size);
        GlobalUnlock(copy);
    }
    if (from)
        GlobalUnlock(dib);
    return to ? copy : nullptr;
}

extern "C" HGLOBAL WINAPI DIB_Destroy(HGLOBAL dib)
{
    return GlobalFree(dib);
}
