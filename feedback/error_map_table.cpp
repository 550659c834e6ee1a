// The map from a ResultCode to what the user sees.
#include "error_map_table.h"

#define HAND MB_ICONHAND
#define EXCL MB_ICONEXCLAMATION
#define INFO MB_ICONASTERISK
#define NONE {EA_None, EA_None}
#define ITEM {EA_ItemText, EA_None}
#define NAME {EA_CodeName, EA_None}

const ErrorMapRow g_errorMap[] = {
    // Information, no arguments.
    {RV_UserError, 11005, INFO, NONE, false},
    {RV_GDIError, 11005, INFO, NONE, false},
    {RV_RecordLocked, 15007, INFO, NONE, false},
    {RV_ClipboardAlreadyOpen, 11021, INFO, NONE, false},
    {RV_BadDIB, 11026, INFO, NONE, false},
    {RV_BadMetafile, 11027, INFO, NONE, false},
    {RV_PrinterError, 11025, INFO, NONE, false},
    {RV_NoPrinterConnected, 11020, INFO, NONE, false},
    {RV_LinkSelf, 11016, INFO, NONE, false},
    {RV_LinkAlready, 11017, INFO, NONE, false},
    {RV_WrongMetafileFormat, 11309, INFO, NONE, false},
    {RV_WrongBackupFilePath, 11310, INFO, NONE, false},
    {RV_NoWWWBrowserFound, 11311, INFO, NONE, false},
    {RV_Conflict, 11435, INFO, NONE, false},
    {RV_IncludeAlready, 8105, INFO, NONE, false},
    {RV_LinkBroken, 52006, INFO, NONE, false},
    {RV_IncludeAlreadyButCronk, 8106, INFO, NONE, false},
    {RV_NotDonePrinting, 8107, INFO, NONE, false},
    {RV_WrongCodePage, 52082, INFO, NONE, false},
    // Information naming the item.
    {RV_OutOfDisk, 11002, INFO, ITEM, false},
    {RV_FileCreationError, 11006, INFO, ITEM, false},
    {RV_NoFile, 11007, INFO, ITEM, false},
    {RV_IntegrityFailure, 11028, INFO, ITEM, false},
    {RV_FileExists, 11008, INFO, ITEM, false},
    {RV_InvalidPlatformFile, 11019, INFO, ITEM, false},
    {RV_TableExists, 11038, INFO, ITEM, false},
    {RV_BadPath, 11040, INFO, ITEM, false},
    {RV_NoSchema, 11307, INFO, ITEM, false},
    {RV_BadQSFFile, 52003, INFO, ITEM, false},
    {105, 11410, INFO, ITEM, false},
    {106, 11421, INFO, ITEM, false},
    {107, 11420, INFO, ITEM, false},
    {108, 11419, INFO, ITEM, false},
    {109, 11418, INFO, ITEM, false},
    {110, 11417, INFO, ITEM, false},
    {111, 11411, INFO, ITEM, false},
    {112, 11412, INFO, ITEM, false},
    {113, 11413, INFO, ITEM, false},
    {114, 11414, INFO, ITEM, false},
    {115, 11415, INFO, ITEM, false},
    {116, 11416, INFO, ITEM, false},
    {RV_OutOfGlobalMemory, 11004, INFO, {EA_Detail1, EA_None}, false},
    {RV_QSFBackend, 11013, INFO, {EA_DetailText, EA_None}, false},
    // Information under the application's title.
    {RV_TableDeleted, 11041, INFO, NONE, true},
    {RV_BadInstall, 10005, INFO, NONE, true},
    {RV_FieldOverflow, 10103, INFO, NONE, true},
    {RV_BadPassword, 11044, INFO, NONE, true},
    {RV_NotSchedulingFile, 11043, INFO, ITEM, true},
    // Warnings.
    {RV_RemoteDelete, 11018, EXCL, NONE, false},
    {RV_RemoteDeleteOrFilteredOut, 52054, EXCL, NONE, false},
    // Stops.
    {RV_AccessViolation, 11031, HAND, NONE, false},
    {RV_ReadFailure, 11011, HAND, ITEM, false},
    {RV_FreeListFailure, 11011, HAND, ITEM, false},
    {RV_WriteFailure, 11012, HAND, ITEM, false},
    {RV_UnexpectedCommError, 11024, HAND, ITEM, false},
    {RV_WriteProtect, 11014, HAND, ITEM, false},
    {RV_NetworkAccessDenied, 11015, HAND, ITEM, false},
    {RV_AccessDenied, 11029, HAND, ITEM, false},
    {RV_Compacting, 11047, HAND, ITEM, false},
    {RV_OutOfLocalMemory, 11003, HAND, {EA_ItemValue, EA_None}, false},
    {RV_Formatted, 11013, HAND, {EA_DetailText, EA_None}, false},
    {RV_Kel10FileCorrupt, 29904, HAND, ITEM, true},
    // Stops naming the code.
    {RV_AssertionFailure, 11001, HAND, NAME, false},
    {RV_StageFailure, 11001, HAND, NAME, false},
    {RV_SeekFailure, 11001, HAND, NAME, false},
    {RV_MediaFailure, 11001, HAND, NAME, false},
    {RV_CriticalFault, 11001, HAND, NAME, false},
    {RV_ForceOSError, 11000, HAND, NAME, false},
    {RV_KernelError, 11000, HAND, NAME, false},
    {RV_NetworkDirectoryError, 11000, HAND, NAME, false},
    {RV_NetworkTransportError, 11000, HAND, NAME, false},
    {RV_NetworkNetDLLError, 11000, HAND, NAME, false},
    {RV_FreetimeError, 11000, HAND, NAME, false},
    {RV_BufferNotLocked, 11000, HAND, NAME, false},
    {RV_ODBCError, 11000, HAND, NAME, false},
    {101, 11000, HAND, NAME, false},
};
const size_t g_errorMapCount = sizeof g_errorMap / sizeof g_errorMap[0];

const ErrorMapRow g_errorDefaultRow = {0, 11000, HAND, NAME, false};

const DWORD g_silentCodes[] = {
    RV_Success, RV_FileLocked, RV_BadParms, RV_Cancel, RV_Retry, RV_Abort,
    RV_UserTerminatedProcess, RV_YearRange, RV_MonthRange, RV_DayRange, RV_HourRange,
    RV_MinuteRange, RV_SecondRange, RV_StructSizeError, RV_StructPaddingError,
    RV_StructMemberMisAligned, RV_StructMemberCountError, RV_BadDataPtr, RV_BadCodePtr,
    RV_StringNonExistant, RV_NotVirtualFile, RV_NoTable, RV_BadID, RV_ReadPastEOF, 47,
    RV_EndOfTable, RV_InvalidVirtualFile, RV_CommDlgError, RV_NoNamedFile, RV_BadMessage,
    RV_Timeout, RV_BadOrs, RV_DuplicateValueInField, RV_ForcedFailure, RV_NotLocked, RV_GPFault,
    RV_Kelendrix1File, RV_UserBreak, RV_DivideByZero, RV_ListBroken, RV_TreeBroken,
    RV_AlreadyInvited, RV_StackOverrun, RV_RegDBError, RV_IncomingCall, RV_BufferTooSmall,
    RV_Warning, RV_DDEMLError,
};
const size_t g_silentCodeCount = sizeof g_silentCodes / sizeof g_silentCodes[0];

const DWORD g_specialCodes[] = {RV_Failure, RV_ExecuteError, RV_OSError, RV_QuireAPI, ERROR_CODE_94};
const size_t g_specialCodeCount = sizeof g_specialCodes / sizeof g_specialCodes[0];

const ErrorMapRow g_specialMessages[] = {
    {RV_Failure, 11001, HAND, NAME, false},
    {RV_ExecuteError, MSG_EXECUTE_BASE, INFO, ITEM, false},
    {RV_OSError, 11009, INFO, ITEM, false},
    {RV_OSError, 10104, HAND, ITEM, false},
    {RV_OSError, 11010, HAND, {EA_OsErrorText, EA_ItemText}, false},
    {RV_QuireAPI, 52053, MB_YESNO | MB_ICONHAND | MB_DEFBUTTON2, {EA_DetailText, EA_Detail1}, false},
    {RV_QuireAPI, 52007, INFO, {EA_DetailText, EA_Detail1}, false},
};
const size_t g_specialMessageCount = sizeof g_specialMessages / sizeof g_specialMessages[0];

const ErrorMapRow *FindErrorMapRow(DWORD code)
{
    for (size_t i = 0; i < g_errorMapCount; ++i)
        if (g_errorMap[i].code == code)
            return &g_errorMap[i];
    return nullptr;
}
