// The error state: one record, first failure wins, and a mode per code that
// says whether recording it ends the process.
#include <cstddef>
#include "error_state.h"
#include "module_globals.h"
#include "result_code_table.h"

ErrorState g_errorState;

// Texts kept beside the state for a defensive path that DefenceStart would
// open; nothing reads them back.
static struct {
    HMODULE module;
    const char *texts[3];
    LONG armed;
} s_defensive;

static void FreeVirtualFileData(VIRTUALFILE *file)
{
    if (file && file->data) {
        HGLOBAL block = GlobalHandle(file->data);
        GlobalUnlock(block);
        GlobalFree(block);
        file->data = nullptr;
        file->size = 0;
    }
}

void VIRTUALFILE::Clear()
{
    FreeVirtualFileData(this);
    data = nullptr;
    size = 0;
}

void ErrorStateReset(HMODULE module)
{
    OSErrorClearError();
    s_defensive.module = module;
    s_defensive.texts[0] = "Sorry! Defensive programming detected an unexpected condition";
    s_defensive.texts[1] = "Error: '%s'.\nApplication will close";
    s_defensive.texts[2] = "Error: '%s'. Please see QZERR.LOG for more info\n"
                           "(If you choose not to terminate, there is no guarantee that the "
                           "situation won't get worse)\nTerminate Application ?";
    s_defensive.armed = 1;
    if (VIRTUALFILE *old = g_errorState.context.virtualFileCopy) {
        FreeVirtualFileData(old);
        LocalFree(old);
    }
    ZeroMemory(&g_errorState, sizeof g_errorState);
    for (DWORD code = 0; code <= RV_LastCode; ++code)
        g_errorState.modeTable[code] = g_resultCodes[code].defaultMode;
    VIRTUALFILE *copy = static_cast<VIRTUALFILE *>(LocalAlloc(LPTR, sizeof(VIRTUALFILE)));
    if (copy)
        copy->marker = VIRTUALFILE_MARKER;
    g_errorState.context.virtualFileCopy = copy;
}

// Copies a text cut at `limit` characters into a zeroed field.
static void CopyCut(char *field, size_t fieldSize, const char *text, size_t limit)
{
    ZeroMemory(field, fieldSize);
    if (!text)
        return;
    size_t n = 0;
    while (n < limit && text[n])
        ++n;
    CopyMemory(field, text, n);
}

// itemText takes either a name or a VIRTUALFILE, told apart by the first byte.
static void ReadItemText(ErrorContext &ctx, const char *text)
{
    ZeroMemory(ctx.itemText, sizeof ctx.itemText);
    if (!text)
        return;
    if (static_cast<unsigned char>(text[0]) != VIRTUALFILE_MARKER) {
        CopyCut(ctx.itemText, sizeof ctx.itemText, text, 255);
        return;
    }
    VIRTUALFILE *copy = ctx.virtualFileCopy;
    if (!copy)
        return;
    const VIRTUALFILE *source = reinterpret_cast<const VIRTUALFILE *>(text);
    copy->marker = VIRTUALFILE_MARKER;
    if (!source->data || !source->size)
        return;
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, source->size);
    void *data = block ? GlobalLock(block) : nullptr;
    if (!data) {
        if (block)
            GlobalFree(block);
        return;
    }
    CopyMemory(data, source->data, source->size);
    copy->data = data;
    copy->size = source->size;
}

static bool ModeTerminates(ResultCode code)
{
    // Codes past the table have no mode; they are recorded only.
    if (static_cast<DWORD>(code) > RV_LastCode)
        return false;
    DWORD mode = g_errorState.modeTable[code];
    return mode != 1 && mode != 2;
}

// Translates an operating system error into the code that names it better.
static ResultCode TranslateOsError(DWORD osError)
{
    static const struct { DWORD osError; ResultCode code; } map[] = {
        {2, RV_NoFile},       {3, RV_BadPath},    {5, RV_AccessDenied},
        {32, RV_AccessDenied}, {19, RV_WriteProtect}, {65, RV_NetworkAccessDenied},
        {123, RV_InvalidPlatformFile},
    };
    for (const auto &row : map)
        if (row.osError == osError)
            return row.code;
    return RV_OSError;
}

static void ReadArguments(ErrorContext &ctx, const ResultCodeRow &row, va_list &args)
{
    for (ArgRead read : row.reads) {
        switch (read) {
        case AR_End: return;
        case AR_ItemText:
        case AR_ItemTextOrNull: ReadItemText(ctx, va_arg(args, const char *)); break;
        case AR_ItemValue: ctx.itemValue = va_arg(args, DWORD); break;
        case AR_ItemValue16: ctx.itemValue = va_arg(args, DWORD) & 0xFFFF; break;
        case AR_Detail1: ctx.detail1 = va_arg(args, DWORD); break;
        case AR_Detail2: ctx.detail2 = va_arg(args, DWORD); break;
        case AR_Address: ctx.address = va_arg(args, ULONG_PTR); break;
        case AR_RangeLow: ctx.rangeLow = va_arg(args, DWORD); break;
        case AR_RangeHigh: ctx.rangeHigh = va_arg(args, DWORD); break;
        case AR_Stage: ctx.stage = va_arg(args, DWORD); break;
        case AR_OsError: ctx.osError = va_arg(args, DWORD); break;
        case AR_MemberName:
            CopyCut(ctx.memberName, 40, va_arg(args, const char *), 39);
            break;
        case AR_DetailText255:
            CopyCut(ctx.detailText, sizeof ctx.detailText, va_arg(args, const char *), 255);
            break;
        case AR_DetailTextOrNull1023:
            CopyCut(ctx.detailText, sizeof ctx.detailText, va_arg(args, const char *), 1023);
            break;
        case AR_FunctionAddress: ctx.functionAddress = va_arg(args, ULONG_PTR); break;
        case AR_DropWord: (void)va_arg(args, DWORD); break;
        case AR_DropPointer: (void)va_arg(args, void *); break;
        }
    }
}

extern "C" void __cdecl OSErrorSetErrorInfo(ResultCode code, ...)
{
    DWORD lastError = GetLastError();
    ErrorContext &ctx = g_errorState.context;
    if (ctx.isPending || ctx.isPresenting || code == RV_Success)
        return;

    va_list args;
    va_start(args, code);
    ctx.isPending = TRUE;
    ctx.errorCode = code;
    ctx.offerClose = 0;

    ResultCode working = code;
    if (code == RV_OSError || code == RV_ForceOSError) {
        ctx.osError = code == RV_ForceOSError ? va_arg(args, DWORD) : lastError;
        working = TranslateOsError(ctx.osError);
        ctx.errorCode = working;
    }

    ctx.contextModule = nullptr;
    ctx.contextStringId = 0;
    bool terminate = ModeTerminates(ctx.errorCode);

    ZeroMemory(ctx.itemText, sizeof ctx.itemText);
    FreeVirtualFileData(ctx.virtualFileCopy);

    if (static_cast<DWORD>(working) <= RV_LastCode) {
        const ResultCodeRow &row = g_resultCodes[working];
        switch (row.special) {
        case SP_LastOsError:
            ctx.osError = lastError;
            break;
        case SP_OsError:
            if (ctx.osError == 4)
                ReadItemText(ctx, va_arg(args, const char *));
            break;
        case SP_Formatter: {
            ErrorTextFormatter formatter = va_arg(args, ErrorTextFormatter);
            const char *format = va_arg(args, const char *);
            ResultCode before = ctx.errorCode;
            if (formatter && format)
                formatter(ctx.detailText, 1024, format, args);
            else
                ZeroMemory(ctx.detailText, sizeof ctx.detailText);  // no older text shows through
            if (ctx.errorCode != before)
                terminate = ModeTerminates(ctx.errorCode);
            break;
        }
        case SP_ResourceContext:
            ctx.contextStringId = 13060;
            ctx.contextModule = g_module.hResourceLibrary;
            break;
        case SP_CommDlg:
            // The common dialog library is loaded so that functionAddress
            // could be named in a verbose mode; that mode is never on.
            if (HMODULE commDlg = LoadLibraryA("COMDLG32.DLL"))
                FreeLibrary(commDlg);
            break;
        case SP_NetDll:
            ZeroMemory(ctx.detailText, sizeof ctx.detailText);
            if (VIRTUALFILE *copy = ctx.virtualFileCopy) {
                copy->marker = 0;
                copy->data = nullptr;
                copy->size = 0;
            }
            break;
        default:
            break;
        }
        ReadArguments(ctx, row, args);
    }
    va_end(args);

    if (!terminate)
        return;
    if (ctx.terminateCallback && !ctx.terminateCallback(ctx.callbackData, &ctx))
        return;
    if (!g_errorState.quitFlag) {
        g_errorState.quitFlag = 1;
        ExitProcess(255);
    }
}

extern "C" void WINAPI OSErrorClearError(void)
{
    g_errorState.context.isPending = FALSE;
    g_errorState.context.errorCode = RV_Success;
}

extern "C" ResultCode WINAPI OSErrorGetErrorValue(void)
{
    return g_errorState.context.isPending ? g_errorState.context.errorCode : RV_Success;
}

extern "C" ErrorContext *WINAPI OSErrorGetErrorInfo(void)
{
    return &g_errorState.context;
}

extern "C" BOOL WINAPI OSErrorIsErrorPending(void)
{
    return g_errorState.context.isPending || g_errorState.context.isPresenting;
}

extern "C" void WINAPI OSErrorSetContext(HMODULE module, DWORD stringId)
{
    g_errorState.context.contextModule = module;
    g_errorState.context.contextStringId = stringId;
}

extern "C" BOOL WINAPI OSErrorIsValidContext(void)
{
    return g_errorState.context.contextModule && g_errorState.context.contextStringId;
}

extern "C" BOOL WINAPI OSErrorRegisterCallback(LONG_PTR callbackData, ErrorTerminateCallback callback)
{
    g_errorState.context.callbackData = callbackData;
    g_errorState.context.terminateCallback = callback;
    return 1;
}

extern "C" BOOL WINAPI OSErrorRegisterVFToPFCallBack(FARPROC callback)
{
    g_errorState.context.vfToPfCallback = callback;
    return 1;
}

extern "C" void WINAPI DefenceStart(void) {}

extern "C" void WINAPI DefenceQuit(void)
{
    g_errorState.quitFlag = 1;
}
