// The service's variable-sized records are read into a zeroed local block
// that grows to the size the service says it needs.
#include "telephony_internal.h"

// The fields every variable-sized record starts with.
struct TapiVarHeader {
    DWORD dwTotalSize, dwNeededSize, dwUsedSize;
};

template <typename Record, typename Read>
static Record *GrowingRead(DWORD firstSize, Read read)
{
    DWORD size = firstSize;
    for (;;) {
        auto *block = static_cast<TapiVarHeader *>(LocalAlloc(LMEM_ZEROINIT, size));
        if (!block) {
            OSErrorSetErrorInfo(RV_OutOfLocalMemory, size);
            return nullptr;
        }
        block->dwTotalSize = size;
        if (!read(reinterpret_cast<Record *>(block))) {
            LocalFree(block);
            return nullptr;
        }
        if (block->dwNeededSize <= block->dwTotalSize)
            return reinterpret_cast<Record *>(block);
        size = block->dwNeededSize;
        LocalFree(block);
    }
}

TapiLineDevCaps *ReadDevCaps(DWORD device, DWORD version)
{
    return GrowingRead<TapiLineDevCaps>(1276, [&](TapiLineDevCaps *caps) {
        return g_tel.tapi.lineGetDevCaps(g_tel.lineApp, device, version, 0, caps) == 0;
    });
}

TapiLineAddressCaps *ReadAddressCaps(DWORD device, DWORD version)
{
    return GrowingRead<TapiLineAddressCaps>(1252, [&](TapiLineAddressCaps *caps) {
        return g_tel.tapi.lineGetAddressCaps(g_tel.lineApp, device, 0, version, 0, caps) == 0;
    });
}

TapiLineAddressStatus *ReadAddressStatus(TapiLine line)
{
    return GrowingRead<TapiLineAddressStatus>(1088, [&](TapiLineAddressStatus *status) {
        return g_tel.tapi.lineGetAddressStatus(line, 0, status) == 0;
    });
}

// The call status alone tells the user of a failed read, and reads again
// while the user wants it to.
TapiLineCallStatus *ReadCallStatus(HWND window, TapiCall call)
{
    return GrowingRead<TapiLineCallStatus>(1080, [&](TapiLineCallStatus *status) {
        LONG result;
        do {
            result = g_tel.tapi.lineGetCallStatus(call, status);
            if (result == 0)
                return true;
        } while (TelephonyCheckResult(window, result, 1));
        return false;
    });
}
