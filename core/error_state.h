// The process-wide error record and its mode table.
#pragma once
#include "qziso32.h"

struct ErrorState {
    DWORD modeTable[RV_LastCode + 1];  // mode of each ResultCode
    LONG quitFlag;                     // true once the process is on its way out
    ErrorContext context;              // what OSErrorGetErrorInfo hands out
};

extern ErrorState g_errorState;

#if defined(_WIN32) && !defined(_WIN64)
// The host sets two flags by word index through OSErrorSetErrorMode.
static_assert(offsetof(ErrorState, context.quietInBackground) == ERRORMODE_INDEX_QUIETINBACKGROUND * 4,
              "word 476 must be quietInBackground");
static_assert(offsetof(ErrorState, context.offerClose) == ERRORMODE_INDEX_OFFERCLOSE * 4,
              "word 479 must be offerClose");
static_assert(sizeof(ErrorContext) == 1408, "ErrorContext keeps its 32-bit layout");
static_assert(sizeof(VIRTUALFILE) == 12, "VIRTUALFILE keeps its 32-bit layout");
static_assert(offsetof(ErrorContext, itemText) == 16 && offsetof(ErrorContext, functionAddress) == 272 &&
                  offsetof(ErrorContext, memberName) == 308 && offsetof(ErrorContext, detailText) == 349,
              "the host reads the texts and the function address at these offsets");
#endif
