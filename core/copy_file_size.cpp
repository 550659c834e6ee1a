// Copies bytes from one open file to another with whatever memory there is:
// a block of up to 32 KB, halved while the system refuses it, down to a
// 256-byte buffer on the stack. The busy cursor turns throughout.
#include "qziso32.h"

namespace {

const DWORD kLargestBlock = 32768;
const DWORD kSmallestBlock = 256;

struct CopyBlock {
    HGLOBAL handle;
    BYTE *bytes;
    DWORD size;
};

// Takes the largest block the system gives, halving from `wanted`; once the
// block would fall below the smallest size, the caller's stack buffer serves.
CopyBlock TakeBlock(DWORD wanted, BYTE *stackBuffer)
{
    if (wanted == 0)
        return {nullptr, stackBuffer, kSmallestBlock};  // nothing will be copied
    DWORD size = wanted < kLargestBlock ? wanted : kLargestBlock;
    for (;;) {
        if (HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size)) {
            if (BYTE *bytes = static_cast<BYTE *>(GlobalLock(handle)))
                return {handle, bytes, size};
            GlobalFree(handle);
        }
        OSErrorSetErrorInfo(RV_OutOfGlobalMemory, size);
        size /= 2;
        if (size < kSmallestBlock)
            return {nullptr, stackBuffer, kSmallestBlock};
    }
}

} // namespace

extern "C" BOOL WINAPI OSCopyFileSize(HANDLE destination, const char *destinationName, HANDLE source,
                                      const char *sourceName, DWORD count)
{
    if (count == 0xFFFFFFFF)
        count = SetFilePointer(source, 0, nullptr, FILE_END);
    OSReWait(0);
    SetFilePointer(source, 0, nullptr, FILE_BEGIN);
    SetFilePointer(destination, 0, nullptr, FILE_BEGIN);

    BYTE stackBuffer[kSmallestBlock];
    CopyBlock block = TakeBlock(count, stackBuffer);
    BOOL result = TRUE;
    DWORD remaining = count;
    while (remaining) {
        DWORD chunk = remaining < block.size ? remaining : block.size;
        DWORD moved = 0;
        if (!ReadFile(source, block.bytes, chunk, &moved, nullptr)) {
            OSErrorSetErrorInfo(RV_OSError, sourceName ? sourceName : "");
            result = FALSE;
            break;
        }
        // The count read is not looked at: the same number is written.
        if (!WriteFile(destination, block.bytes, chunk, &moved, nullptr)) {
            OSErrorSetErrorInfo(RV_OSError, destinationName ? destinationName : "");
            result = FALSE;
            break;
        }
        remaining -= chunk;
        OSReWait(0);
    }
    if (result)
        OSFileSetStampSame(source, destination);
    if (block.handle) {
        GlobalUnlock(block.handle);
        if (GlobalFree(block.handle))
            OSErrorSetErrorInfo(RV_KernelError);
    }
    OSReWait(0);
    return result;
}
