// OSErrorSetErrorMode writes one 32-bit word of the error state, counted from
// the start of the mode table. Words past the table are how the host sets
// quietInBackground (476) and offerClose (479). The indexes are those of the
// 32-bit layout; the table below maps them so that both builds behave alike.
#include <cstddef>
#include "error_state.h"

namespace {
struct ScalarWord {
    LONG index;
    size_t offset;  // of a 32-bit field inside ErrorState
};

#define WORD_AT(index, field) {index, offsetof(ErrorState, field)}
const ScalarWord kScalarWords[] = {
    WORD_AT(129, quitFlag),
    WORD_AT(130, context.errorCode),
    WORD_AT(131, context.contextStringId),
    WORD_AT(133, context.isPending),
    WORD_AT(199, context.detail1),
    WORD_AT(200, context.detail2),
    WORD_AT(201, context.itemValue),
    WORD_AT(203, context.rangeLow),
    WORD_AT(204, context.rangeHigh),
    WORD_AT(205, context.stage),
    WORD_AT(206, context.osError),
    WORD_AT(475, context.isPresenting),
    WORD_AT(ERRORMODE_INDEX_QUIETINBACKGROUND, context.quietInBackground),
    WORD_AT(ERRORMODE_INDEX_OFFERCLOSE, context.offerClose),
};
#undef WORD_AT

DWORD *WordAt(LONG index)
{
    if (index >= 0 && index <= RV_LastCode)
        return &g_errorState.modeTable[index];
    for (const ScalarWord &word : kScalarWords)
        if (word.index == index)
            return reinterpret_cast<DWORD *>(reinterpret_cast<BYTE *>(&g_errorState) + word.offset);
    return nullptr;
}
}  // namespace

extern "C" DWORD WINAPI OSErrorSetErrorMode(LONG index, DWORD mode)
{
    DWORD *word = WordAt(index);
    if (!word) {
        // Pointers, texts and anything past the record are not overwritten.
        OSErrorSetErrorInfo(RV_BadParms, "OSErrorSetErrorMode");
        return 0;
    }
    DWORD old = *word;
    *word = mode;
    return old;
}
