/*
 * qziso32.h - the public interface of the isolation layer.
 *
 * A host includes this header and links against qziso32.dll. Every function
 * is exported by name and by a fixed ordinal. Exports use the WINAPI
 * (__stdcall) convention; the variadic ones use __cdecl.
 *
 * Records the host stores or shares (DateTimeValue, the ResultCode numbers)
 * keep their 32-bit layout. In the x86_64 build pointer-sized fields widen
 * to 8 bytes; everything else stays as it is.
 */
#ifndef QZISO32_H
#define QZISO32_H

#include <windows.h>
#include <stdarg.h>

#ifdef QZISO32_BUILDING
#define QZAPI
#else
#define QZAPI __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------ */
/* Result codes. The numbers are shared with the host and must stay.   */
/* Gaps (47, 71, 94, 101, 105-116) have no name.                       */
/* ------------------------------------------------------------------ */
/** @defgroup records Shared records and result codes
 *  @{ */
/** The causes of failure the library records; RV_Success is 0. */
typedef enum ResultCode {
    RV_Success = 0,
    RV_Failure = 1,
    RV_OutOfDisk = 2,
    RV_OutOfLocalMemory = 3,
    RV_OutOfGlobalMemory = 4,
    RV_UserError = 5,
    RV_GDIError = 6,
    RV_FileLocked = 7,
    RV_RecordLocked = 8,
    RV_BadParms = 9,
    RV_Cancel = 10,
    RV_Retry = 11,
    RV_Abort = 12,
    RV_UserTerminatedProcess = 13,
    RV_AssertionFailure = 14,
    RV_StageFailure = 15,
    RV_FileCreationError = 16,
    RV_ClipboardAlreadyOpen = 17,
    RV_NoFile = 18,
    RV_IntegrityFailure = 19,
    RV_FileExists = 20,
    RV_OSError = 21,
    RV_ForceOSError = 22,
    RV_SeekFailure = 23,
    RV_ReadFailure = 24,
    RV_WriteFailure = 25,
    RV_MediaFailure = 26,
    RV_FreeListFailure = 27,
    RV_YearRange = 28,
    RV_MonthRange = 29,
    RV_DayRange = 30,
    RV_HourRange = 31,
    RV_MinuteRange = 32,
    RV_StructSizeError = 33,
    RV_StructPaddingError = 34,
    RV_StructMemberMisAligned = 35,
    RV_StructMemberCountError = 36,
    RV_KernelError = 37,
    RV_ExecuteError = 38,
    RV_BadDataPtr = 39,
    RV_BadCodePtr = 40,
    RV_StringNonExistant = 41,
    RV_NotVirtualFile = 42,
    RV_NoTable = 43,
    RV_AccessViolation = 44,
    RV_BadID = 45,
    RV_ReadPastEOF = 46,
    RV_NetworkDirectoryError = 48,
    RV_NetworkTransportError = 49,
    RV_NetworkNetDLLError = 50,
    RV_EndOfTable = 51,
    RV_InvalidVirtualFile = 52,
    RV_CommDlgError = 53,
    RV_NoNamedFile = 54,
    RV_BadMessage = 55,
    RV_Timeout = 56,
    RV_UnexpectedCommError = 57,
    RV_BadOrs = 58,
    RV_DuplicateValueInField = 59,
    RV_ForcedFailure = 60,
    RV_NotLocked = 61,
    RV_GPFault = 62,
    RV_Kelendrix1File = 63,
    RV_UserBreak = 64,
    RV_DivideByZero = 65,
    RV_FreetimeError = 66,
    RV_SecondRange = 67,
    RV_InvalidPlatformFile = 68,
    RV_ListBroken = 69,
    RV_TreeBroken = 70,
    RV_AlreadyInvited = 72,
    RV_StackOverrun = 73,
    RV_BadDIB = 74,
    RV_BadMetafile = 75,
    RV_PrinterError = 76,
    RV_RegDBError = 77,
    RV_NoPrinterConnected = 78,
    RV_IncomingCall = 79,
    RV_BufferTooSmall = 80,
    RV_WriteProtect = 81,
    RV_NetworkAccessDenied = 82,
    RV_LinkSelf = 83,
    RV_LinkAlready = 84,
    RV_RemoteDelete = 85,
    RV_Warning = 86,
    RV_TableExists = 87,
    RV_Kel10FileCorrupt = 88,
    RV_AccessDenied = 89,
    RV_BadPath = 90,
    RV_BufferNotLocked = 91,
    RV_TableDeleted = 92,
    RV_BadInstall = 93,
    RV_ODBCError = 95,
    RV_FieldOverflow = 96,
    RV_DDEMLError = 97,
    RV_NotSchedulingFile = 98,
    RV_BadPassword = 99,
    RV_CriticalFault = 100,
    RV_NoSchema = 102,
    RV_WrongMetafileFormat = 103,
    RV_WrongBackupFilePath = 104,
    RV_NoWWWBrowserFound = 117,
    RV_Compacting = 118,
    RV_Conflict = 119,
    RV_BadQSFFile = 120,
    RV_IncludeAlready = 121,
    RV_LinkBroken = 122,
    RV_QuireAPI = 123,
    RV_QSFBackend = 124,
    RV_IncludeAlreadyButCronk = 125,
    RV_NotDonePrinting = 126,
    RV_RemoteDeleteOrFilteredOut = 127,
    RV_WrongCodePage = 128
} ResultCode;

/* The highest code the mode table holds. */
#define RV_LastCode 128

/* Code 71 takes a formatter, then a format, then the format's arguments.
 * The formatter writes at most `limit` characters and a terminator. */
typedef int (WINAPI *ErrorTextFormatter)(char *out, int limit, const char *format, va_list args);

/* The code 71 itself, for readability at call sites. */
#define RV_Formatted ((ResultCode)71)

/* ------------------------------------------------------------------ */
/* VIRTUALFILE: a file-like block that stands wherever an error names  */
/* a file. Its first byte is 255, which no file name begins with.      */
/* ------------------------------------------------------------------ */
/** The first byte of a VIRTUALFILE. */
#define VIRTUALFILE_MARKER 255

#ifdef __cplusplus
/* The library exports Clear under the name the platform's own C++ compiler
 * gives the member: "?Clear@VIRTUALFILE@@QAEXXZ" (i686, thiscall) and
 * "?Clear@VIRTUALFILE@@QEAAXXZ" (x86_64), ordinal 1005. A g++ host refers to
 * that name through an assembler label, and calls it as any member. */
#if defined(__GNUC__) && !defined(QZISO32_BUILDING)
#if defined(_WIN64)
#define QZ_VIRTUALFILE_CLEAR_NAME __asm__("\"?Clear@VIRTUALFILE@@QEAAXXZ\"")
#else
#define QZ_VIRTUALFILE_CLEAR_NAME __asm__("\"?Clear@VIRTUALFILE@@QAEXXZ\"")
#endif
#define QZ_VIRTUALFILE_CLEAR void Clear() QZ_VIRTUALFILE_CLEAR_NAME
#else
/** Declares VIRTUALFILE::Clear as the library exports it. */
#define QZ_VIRTUALFILE_CLEAR QZAPI void Clear()
#endif
/** A file-like block, accepted wherever an error names a file. */
struct VIRTUALFILE {
    unsigned char marker;   /* 255 */
    void *data;             /* locked global block, or null */
    DWORD size;             /* bytes in data */
    /* Unlocks and frees the data block, if any, and zeroes pointer and size. */
    QZ_VIRTUALFILE_CLEAR;
};
#else
typedef struct VIRTUALFILE {
    unsigned char marker;
    void *data;
    DWORD size;
} VIRTUALFILE;
#endif

/* ------------------------------------------------------------------ */
/* ErrorContext: the one process-wide error record, handed out live.   */
/* ------------------------------------------------------------------ */
struct ErrorContext;
/** Asked before an error of mode 0 ends the process; non-zero vetoes the end. */
typedef BOOL (WINAPI *ErrorTerminateCallback)(LONG_PTR callbackData, struct ErrorContext *context);

/** The one process-wide error record, handed out live by OSErrorGetErrorInfo. */
typedef struct ErrorContext {
    ResultCode errorCode;       /* the code recorded; 0 when none was ever set */
    DWORD contextStringId;      /* string that names what was going on */
    HMODULE contextModule;      /* module holding that string */
    BOOL isPending;             /* set from recording until cleared */
    char itemText[256];         /* the name of what failed, at most 255 characters */
    ULONG_PTR functionAddress;  /* common dialog function with RV_CommDlgError */
    /** First detail: the size asked for with RV_OutOfGlobalMemory, and the like. */
    DWORD detail1;
    /** Second detail of the codes that take two. */
    DWORD detail2;
    /** The offending value: the size with RV_OutOfLocalMemory, the field with a range code. */
    DWORD itemValue;
    ULONG_PTR address;          /* offending pointer or record address */
    /** The lowest value allowed, with a range code. */
    DWORD rangeLow;
    /** The highest value allowed, with a range code. */
    DWORD rangeHigh;
    /** The stage reached, with RV_StageFailure. */
    DWORD stage;
    /** The system's error code, with RV_OSError and RV_ForceOSError. */
    DWORD osError;
    char memberName[41];        /* at most 39 characters */
    char detailText[1025];      /* longer text or formatter output */
    FARPROC presenter;          /* presenter in force during an error callback */
    BOOL isPresenting;          /* set while an error is being shown; blocks recording */
    BOOL quietInBackground;     /* word index 476 of OSErrorSetErrorMode */
    /** The virtual file an error named, copied. */
    struct VIRTUALFILE *virtualFileCopy;
    /** Set by OSErrorRegisterVFToPFCallBack. */
    FARPROC vfToPfCallback;
    BOOL offerClose;            /* word index 479 of OSErrorSetErrorMode */
    /** Given to the terminate callback. */
    LONG_PTR callbackData;
    /** Set by OSErrorRegisterCallback. */
    ErrorTerminateCallback terminateCallback;
} ErrorContext;

/* Word indexes of OSErrorSetErrorMode that reach past the mode table. */
#define ERRORMODE_INDEX_QUIETINBACKGROUND 476
/** The word of OSErrorSetErrorMode that sets ErrorContext::offerClose. */
#define ERRORMODE_INDEX_OFFERCLOSE 479

/* ------------------------------------------------------------------ */
/* DateTimeValue: eight bytes, a stored format shared with the host.   */
/* Valid years 1800 to 2101. All fields 1: no date low; all 2: high.   */
/* ------------------------------------------------------------------ */
/** A date and time: eight bytes, stored and shared with the host. */
typedef struct DateTimeValue {
    /** 1800 to 2101. */
    WORD year;
    BYTE month;     /* 1..12 */
    BYTE day;       /* 1..days in month */
    BYTE hour;      /* 0..23 */
    BYTE minute;    /* 0..59 */
    BYTE second;    /* 0..59 */
    BYTE hourBias;  /* whole hours added; the library writes 0 */
} DateTimeValue;

/* Date and time conventions, copied whole in and out. */
typedef struct DateTimeIntlSettings {
    LONG iTime;                     /* 0: 12-hour clock, 1: 24 hours */
    char sTime[4];                  /* time separator */
    char s1159[9];                  /* morning text */
    char s2359[9];                  /* afternoon text */
    char sDate[2];                  /* date separator */
    LONG iDate;                     /* 0 month first, 1 day first, 2 year first */
    LONG weekStart;                 /* first day of the week, 0 for Sunday */
    /** The code page translation named in the product's key. */
    char codePageTranslation[260];
} DateTimeIntlSettings;

/* ------------------------------------------------------------------ */
/* Instance frame                                                      */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup instance Instance frame
 *  @{ */
/** Starts the library for one client and reads the system's version.
 *  @return Non-zero on success; 0 only when the system's version cannot be read. Records nothing of
 *  its own. */
QZAPI BOOL WINAPI IsolateInstanceStart(DWORD reserved1, DWORD reserved2);
/** Stops the library for one client.
 *  @return Always 1. */
QZAPI BOOL WINAPI IsolateInstanceStop(DWORD reserved);

/* Registration record: "kel.ri" beside the library, stored enciphered and not
 * deciphered here. True when the record is there and opens; false with
 * RV_NoFile (absent) or RV_ReadFailure (unreadable) recorded. The buffer, when
 * given with a positive size, always receives an empty text. */
/** Opens the installation's registration record "kel.ri" beside the library; the record stays
 *  enciphered and unread. The buffer, when given with a positive size, receives an empty text.
 *  @return 1 when the record is there and opens, else 0. Records RV_NoFile when it is absent,
 *  RV_ReadFailure when it cannot be read. */
QZAPI BOOL WINAPI OSGetRegInfo(char *buffer, int bufferSize);
/** Copies the network layer's version text, which is empty, with its terminator into `out`.
 *  @return Always 1. */
QZAPI BOOL WINAPI NetDLLGetVersion(char *out);
/** The system's version as read by the last IsolateInstanceStart.
 *  @return The library's own record, zeroed before the first start. */
QZAPI OSVERSIONINFOA *WINAPI OSGetVersionInfo(void);

/* ------------------------------------------------------------------ */
/* Error state                                                         */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup errors Error state
 *  @{ */
/** Records an error: `code` and the details it takes as further arguments. The first error wins
 *  until OSErrorClearError; a code of mode 0 ends the process with exit status 255 unless the
 *  registered callback vetoes it. RV_Success changes nothing. */
QZAPI void __cdecl OSErrorSetErrorInfo(ResultCode code, ...);
/** The code of the pending error.
 *  @return The code while an error is pending, otherwise RV_Success (0). */
QZAPI ResultCode WINAPI OSErrorGetErrorValue(void);
/** Clears the pending error: the next failure is recorded again. */
QZAPI void WINAPI OSErrorClearError(void);
/** The process-wide error record.
 *  @return The live record, not a copy: the next recording changes it. */
QZAPI ErrorContext *WINAPI OSErrorGetErrorInfo(void);
/** Writes word `index` of the error state: a result code's mode (0 ends the process, 1 and 2 only
 *  record), or at ERRORMODE_INDEX_QUIETINBACKGROUND and ERRORMODE_INDEX_OFFERCLOSE one of the
 *  record's flags.
 *  @return The old word. Records RV_BadParms for an index that names no mode or flag word, and
 *  writes nothing. */
QZAPI DWORD WINAPI OSErrorSetErrorMode(LONG index, DWORD mode);
/** Names what is going on: string `stringId` of `module`, shown with the next error. */
QZAPI void WINAPI OSErrorSetContext(HMODULE module, DWORD stringId);
/** Whether a context is set.
 *  @return TRUE when both the module and the string id are non-zero. */
QZAPI BOOL WINAPI OSErrorIsValidContext(void);
/** Whether an error waits to be handled or is being shown.
 *  @return TRUE while an error is pending or being presented. */
QZAPI BOOL WINAPI OSErrorIsErrorPending(void);
/** Registers the callback asked before a mode-0 error ends the process; a non-zero answer vetoes
 *  the end.
 *  @return Always 1. */
QZAPI BOOL WINAPI OSErrorRegisterCallback(LONG_PTR callbackData, ErrorTerminateCallback callback);
/** Registers the callback that turns a VIRTUALFILE named by an error into a file for presentation.
 *  @return Always 1. */
QZAPI BOOL WINAPI OSErrorRegisterVFToPFCallBack(FARPROC callback);
/** Kept for old hosts; does nothing. */
QZAPI void WINAPI DefenceStart(void);
/** Marks the defensive layer as quitting. */
QZAPI void WINAPI DefenceQuit(void);
/** The name of a result code ("RV_NoFile"), or "ErrorNo (n)" for a number without a name, in a
 *  static buffer that the next call overwrites.
 *  @return The text. */
QZAPI const char *WINAPI OSErrorGetRVErrorString(ResultCode code);

/* ------------------------------------------------------------------ */
/* Error text tables: English names for diagnostics, each in a static  */
/* buffer of its own that the next call overwrites.                    */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup error_texts Error text tables
 *  @{ */
/** The name of a common dialog error code, in a static buffer of its own.
 *  @return The text. */
QZAPI const char *WINAPI OSErrorGetCommDlgErrorString(DWORD error);
/** The name of a DDEML error code, in a static buffer of its own.
 *  @return The text. */
QZAPI const char *WINAPI OSErrorGetDDEMLErrorString(DWORD error);
/* The system's message, or "Error %d(%#x) : name - description". */
/** The system's message for error `error`, or a text built from its name and description, in a
 *  static buffer of its own.
 *  @return The text. */
QZAPI const char *WINAPI OSErrorGetOSErrorString(DWORD error);

/* ------------------------------------------------------------------ */
/* Formatted strings and memory                                        */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup strings Formatted strings and memory
 *  @{ */
/* The counted forms take wvsprintf's directives (%c %d %i %s %u %x %X %%,
 * flags '-' '#' '0', width, precision, size prefixes h and l) and write at
 * most `limit` characters and a terminator: `dest` holds limit + 1 bytes.
 * No call produces more than 1,024 characters. They return the count
 * written. A negative limit, or a null destination or format, records
 * RV_BadParms and writes nothing.
 *
 * The reorderable forms add "@n" (n from 1 to 9) directly before a '%':
 * that directive takes argument n. Every argument fills one slot: 4 bytes
 * in the 32-bit build, and pointer-sized (8 bytes) in the 64-bit build, so
 * a 64-bit host passes each argument as a full slot, as the variadic call
 * does anyway. OSrsprintf holds 20 prefixes and may skip positions;
 * OSrvsprintf holds 9 and needs every position before the highest named.
 * Both return 0 if the copy of the format cannot be allocated. */
/** Formats `args` by `format` into `dest`, at most `limit` characters and a terminator.
 *  @return The count written, without the terminator. Records RV_BadParms for a negative limit or a
 *  null destination or format, and writes nothing. */
QZAPI int WINAPI OScvsprintf(char *dest, LONG limit, const char *format, va_list args);
/** Formats the arguments by `format` into `dest`, at most `limit` characters and a terminator
 *  (__cdecl).
 *  @return The count written, without the terminator. Records RV_BadParms for a negative limit or a
 *  null destination or format. */
QZAPI int __cdecl OScsprintf(char *dest, LONG limit, const char *format, ...);
/** Formats `args` by a format whose directives may name their argument ("@2%s"), at most `limit`
 *  characters and a terminator.
 *  @return The count written; 0 if the copy of the format cannot be allocated. Records RV_BadParms
 *  for bad arguments, RV_OutOfLocalMemory when the copy fails. */
QZAPI int WINAPI OSrvsprintf(char *dest, LONG limit, const char *format, va_list args);
/** Formats the arguments by a format whose directives may name their argument ("@2%s"), at most
 *  `limit` characters and a terminator (__cdecl).
 *  @return The count written; 0 if the copy of the format cannot be allocated. Records RV_BadParms
 *  for bad arguments, RV_OutOfLocalMemory when the copy fails. */
QZAPI int __cdecl OSrsprintf(char *dest, LONG limit, const char *format, ...);
/* Both always return 1. */
/** Copies `count` bytes from `source` to `dest`; overlapping blocks are safe.
 *  @return Always 1. Records RV_BadParms for a null pointer with a count. */
QZAPI BOOL WINAPI OShmemcpy(void *dest, const void *source, DWORD count);
/** Fills `count` bytes of `dest` with `value`.
 *  @return Always 1. Records RV_BadParms for a null pointer with a count. */
QZAPI BOOL WINAPI OShmemset(void *dest, int value, DWORD count);
/* At most `count` characters of each, compared by the user's locale
 * (lstrcmp, lstrcmpi). 0 after a failed allocation, with the error recorded. */
/** Compares at most `count` characters of two texts by the user's locale, case counting (lstrcmp).
 *  @return Below, at or above zero as `a` sorts before, with or after `b`; 0 on failure. Records
 *  RV_BadParms for a null text, RV_OutOfLocalMemory when the copies cannot be made. */
QZAPI int WINAPI OSstrncmp(const char *a, const char *b, DWORD count);
/** Compares at most `count` characters of two texts by the user's locale, case ignored (lstrcmpi).
 *  @return Below, at or above zero as `a` sorts before, with or after `b`; 0 on failure. Records
 *  RV_BadParms for a null text, RV_OutOfLocalMemory when the copies cannot be made. */
QZAPI int WINAPI OSstrncmpi(const char *a, const char *b, DWORD count);

/* ------------------------------------------------------------------ */
/* Text helpers                                                        */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup text Text helpers
 *  @{ */
/* Decimal scanners: skip blanks and tabs, take digits, no sign, wrap.
 * They return the first character not used. */
/** Reads an unsigned decimal number into `*out`: blanks and tabs skipped, no sign, wrapping on
 *  overflow.
 *  @return The first character not used. */
QZAPI char *WINAPI AtoI(char *text, DWORD *out);
/** Reads an unsigned decimal number into `*out`: blanks and tabs skipped, no sign, wrapping on
 *  overflow.
 *  @return The first character not used. */
QZAPI char *WINAPI AtoL(char *text, DWORD *out);
/** Reads an unsigned decimal number into `*out`: blanks and tabs skipped, no sign, wrapping on
 *  overflow.
 *  @return The first character not used. */
QZAPI char *WINAPI AtoUI(char *text, DWORD *out);
/** Reads an unsigned decimal number into `*out`: blanks and tabs skipped, no sign, wrapping on
 *  overflow.
 *  @return The first character not used. */
QZAPI char *WINAPI AtoDW(char *text, DWORD *out);
/** Reads an unsigned decimal number into the byte `*out`: blanks and tabs skipped, no sign,
 *  wrapping on overflow.
 *  @return The first character not used. */
QZAPI char *WINAPI AtoB(char *text, BYTE *out);
/* Scans `text` by `format`: blanks skip blanks, '"' toggles quotes, %d and
 * %l take a DWORD*, %b and %fb a BYTE* (only %fb moves past the number),
 * %s a char* that receives up to a comma outside quotes or a quote inside
 * them. Any other character must match. *count is 1, lowered on a mismatch.
 * Returns where the scan stopped. */
/** Scans `text` by `format` into the outputs that follow (__cdecl); `*count` is 1, lowered on a
 *  mismatch.
 *  @return Where the scan stopped. Records RV_BadParms for a null text or format, or a directive it
 *  does not know. */
QZAPI char *__cdecl ArgScan(char *text, LONG *count, const char *format, ...);
/* Ends the text at its first CR or LF, or after `limit` characters. */
/** Ends the text at its first CR or LF, or after `limit` characters.
 *  @return The text. Records RV_BadParms for a null text. */
QZAPI char *WINAPI OneLine(char *text, LONG limit);
/* Replaces the blanks at the end with NULs. */
/** Replaces the blanks at the end of the text with NULs.
 *  @return The same text. */
QZAPI char *WINAPI StripTrailingSpaces(char *text);
/** Whether `c` is a carriage return or a line feed.
 *  @return 1 or 0. */
QZAPI BOOL WINAPI IsCrLf(char c);
/** Whether `c` is a blank, a tab, a carriage return or a line feed.
 *  @return 1 or 0. */
QZAPI BOOL WINAPI IsWhiteSpace(char c);
/** Skips white space.
 *  @return The first character that is not white space. */
QZAPI char *WINAPI SkipWhiteSpace(char *text);
/* Roman numerals in lower case, or upper when `upper` is non-zero. With a
 * null buffer the library's own is used (127 steps). A caller's buffer of
 * `size` bytes is never written past; a numeral cut short records
 * RV_BufferTooSmall. */
/** Writes `number` as a Roman numeral, in lower case or upper case when `upper` is non-zero.
 *  @return The buffer (the library's own for a null one). Records RV_BufferTooSmall when the
 *  numeral is cut short. */
QZAPI char *WINAPI DToRoman(DWORD number, LONG upper, char *buffer, DWORD size);
/* Seeds the generator from the tick count and returns the seed. */
/** Seeds the random generator from the tick count.
 *  @return The seed. */
QZAPI DWORD WINAPI SeedRnd(void);
/* A number below `limit`. */
/** A random number below `limit`.
 *  @return The number; 0 for a limit of 0, with RV_BadParms recorded. */
QZAPI int WINAPI Rnd(WORD limit);
/* Scramble a short text into hexadecimal digits with a checksum, and back.
 * Each returns the length written, or 0 with the error recorded. */
/** Scrambles a short text into hexadecimal digits with a checksum.
 *  @return The length written, or 0. Records RV_BadParms for a null text or output,
 *  RV_BufferTooSmall when `size` cannot hold the result. */
QZAPI int WINAPI CommonSrcDlgProc(const char *plain, char *out, int size);
/** Unscrambles a text made by CommonSrcDlgProc.
 *  @return The length written, or 0. Records RV_BadParms for bad arguments, RV_IntegrityFailure
 *  when the checksum does not match, RV_BufferTooSmall when `size` cannot hold the result. */
QZAPI int WINAPI CommonDestDlgProc(const char *scrambled, char *out, int size);

/* ------------------------------------------------------------------ */
/* Calendar: date-time value and arithmetic                            */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup calendar_value Calendar: date-time value and arithmetic
 *  @{ */
/** The machine's local time, with an hour bias of 0.
 *  @return Always 1. */
QZAPI BOOL WINAPI OSGetDateTime(DateTimeValue *out);
/** Stores the fields in `out` without testing them.
 *  @return 1. Records RV_BadParms for a null record. */
QZAPI BOOL WINAPI OSSetDateTime(DateTimeValue *out, UINT year, UINT month, UINT day,
                                UINT hour, UINT minute, UINT second, UINT hourBias);
/** Sets every field to 1: no date, sorting before every date.
 *  @return The pointer given. */
QZAPI DateTimeValue *WINAPI OSSetNoDateLow(DateTimeValue *out);
/** Sets every field to 2: no date, sorting after every date.
 *  @return The pointer given. */
QZAPI DateTimeValue *WINAPI OSSetNoDateHigh(DateTimeValue *out);
/** The number of days from 1 January 1800 to the date.
 *  @return The count. Records RV_MonthRange for a month outside 1 to 12. */
QZAPI LONG WINAPI OSDaysSince01011800(WORD year, WORD month, WORD day);
/** Whether the value is a valid date and time from 1800 to 2101, or one of the two no-date values.
 *  @return TRUE or FALSE; records nothing. */
QZAPI BOOL WINAPI OSIsValidDateTime(const DateTimeValue *value);
/** Whether the value is a valid date, as OSIsValidDateTime but from 1801 and with the seconds
 *  not checked.
 *  @return TRUE or FALSE; records nothing. */
QZAPI BOOL WINAPI OSDTIsValidDateTime(const DateTimeValue *value);
/** Tells why a value is invalid, by recording the range code of its first bad field.
 *  @return 1 if the value is valid, else 0. Records RV_BadParms for a null value, else the range
 *  code (RV_YearRange, RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or
 *  RV_SecondRange) of the first bad field. */
QZAPI BOOL WINAPI OSWhyIsInvalidDateTime(const DateTimeValue *value);
/** Adds years, months, days, hours, minutes, seconds and extra hours (each may be negative) to the
 *  value.
 *  @return 1, or 0 if the value is invalid. Records the range code (RV_YearRange, RV_MonthRange,
 *  RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for an invalid value. */
QZAPI BOOL WINAPI OSAdjustDateTime(DateTimeValue *value, LONG years, LONG months, LONG days,
                                   LONG hours, LONG minutes, LONG seconds, LONG extraHours);
/** Adds `days` (may be negative) to the value.
 *  @return 1, or 0 if the value is invalid. Records the range code (RV_YearRange, RV_MonthRange,
 *  RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for an invalid value. */
QZAPI BOOL WINAPI OSAdjustDateTimeByDays(DateTimeValue *value, LONG days);
/** The time from `first` to `second` in days, hours, minutes and seconds.
 *  @return 1, or 0 if either value is invalid. Records RV_BadParms for a null pointer; the range
 *  code (RV_YearRange, RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange)
 *  for an invalid value. */
QZAPI BOOL WINAPI OSDiffDateTime(const DateTimeValue *first, const DateTimeValue *second,
                                 LONG *days, LONG *hours, LONG *minutes, LONG *seconds);
/** Compares two values by date, hour bias and time.
 *  @return -1, 0 or 1; 0 when either is invalid. Records the range code (RV_YearRange,
 *  RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for an invalid
 *  value. */
QZAPI int WINAPI OSDateTimeCompare(const DateTimeValue *a, const DateTimeValue *b);
/** Compares the dates of two values, times ignored.
 *  @return -1, 0 or 1; 0 when either is invalid. Records the range code (RV_YearRange,
 *  RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for an invalid
 *  value. */
QZAPI int WINAPI OSDateCompare(const DateTimeValue *a, const DateTimeValue *b);
/** Compares the years of two values.
 *  @return -1, 0 or 1; 0 when either is invalid. Records the range code (RV_YearRange,
 *  RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for an invalid
 *  value. */
QZAPI int WINAPI OSYearCompare(const DateTimeValue *a, const DateTimeValue *b);
/** The day of the week of the value, 0 for Sunday, into `*weekday`.
 *  @return 1, or 0 if the value is invalid. Records RV_BadParms for a null output; the range code
 *  (RV_YearRange, RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for
 *  an invalid value. */
QZAPI BOOL WINAPI OSDayOfWeek(const DateTimeValue *value, LONG *weekday, LONG ignored);
/** Whether the weekday is Saturday or Sunday.
 *  @return TRUE for 0 and 6. */
QZAPI BOOL WINAPI OSIsWeekend(LONG weekday);
/** The number of days in the month of the value.
 *  @return The days. Records RV_BadParms for a null value, RV_MonthRange for a bad month. */
QZAPI LONG WINAPI OSDateTimeGetNumDaysInMonth(const DateTimeValue *value);
/** Whether the time is afternoon on a 12-hour clock.
 *  @return TRUE when the clock is not the 24-hour one and the hour is 12 or more. */
QZAPI BOOL WINAPI OSIsDateTimePM(const DateTimeValue *value);

/* ------------------------------------------------------------------ */
/* Calendar: conventions                                               */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup calendar_conventions Calendar: conventions
 *  @{ */
/** Reads the date and time conventions again from the system's regional settings and the product's
 *  key.
 *  @return Always 1. */
QZAPI BOOL WINAPI OSDateTimeGetWinIniSettings(void);
/** Copies the conventions in force into `*out`.
 *  @return Always 1. Records RV_BadParms for a null record. */
QZAPI BOOL WINAPI OSDateTimeGetIntlSettings(DateTimeIntlSettings *out);
/** Puts `*settings` in force as the date and time conventions.
 *  @return Always 1. Records RV_BadParms for a null record. */
QZAPI BOOL WINAPI OSDateTimeSetIntlSettings(const DateTimeIntlSettings *settings);
/* Flag 2: the short date format, otherwise the long one. */
/** Copies the date picture in force into `buffer`: the short one with flag 2, else the long one.
 *  @return Always 1. */
QZAPI BOOL WINAPI OSDateTimeGetDateFormat(char *buffer, DWORD flags, DWORD bufferSize);
/* Flags 16 with seconds, 64 markers only, 128 no markers. */
/** Copies the time picture in force into `buffer`, by the DTS_ flags (seconds, markers only, no
 *  markers).
 *  @return Always 1. */
QZAPI BOOL WINAPI OSDateTimeGetTimeFormat(char *buffer, DWORD flags, DWORD bufferSize);
/** The first day of the week, 0 for Sunday.
 *  @return The day. */
QZAPI LONG WINAPI OSDateTimeGetWeekStart(void);
/** Sets the first day of the week, in memory only.
 *  @return The day given. */
QZAPI LONG WINAPI OSDateTimeSetWeekStart(LONG day);
/** Whether hours are shown with a leading zero.
 *  @return The setting, 0 or 1. */
QZAPI LONG WINAPI OSDateTimeGetLeadZero(void);

/* ------------------------------------------------------------------ */
/* Calendar: text forms                                                */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup calendar_text Calendar: text forms
 *  @{ */
/* Flags of OSDateTimeToString, used when no format is given. */
#define DTS_LONGDATE    1
/** The short date. */
#define DTS_SHORTDATE   2
/** Seconds with the time. */
#define DTS_SECONDS     16
/** The time. */
#define DTS_TIME        32
/** The morning and afternoon markers alone. */
#define DTS_MARKERSONLY 64
/** No morning and afternoon markers. */
#define DTS_NOMARKERS   128
/* A null buffer means a static one of 200 characters. */
/** Writes the value as text, by the picture `format` or, without one, by the DTS_ `flags` and the
 *  conventions in force. A no-date value gives an empty text.
 *  @return The buffer written (a static one of 200 characters for a null buffer), or null if the
 *  value is invalid. Records the range code (RV_YearRange, RV_MonthRange, RV_DayRange,
 *  RV_HourRange, RV_MinuteRange or RV_SecondRange) for an invalid value. */
QZAPI char *WINAPI OSDateTimeToString(const DateTimeValue *value, char *buffer, const char *format,
                                      DWORD flags, DWORD bufferSize);
/** The name of month `month` (1 to 12), long or by `flags` short, from the resource library.
 *  @return 1. Records RV_MonthRange for a month outside 1 to 12. */
QZAPI BOOL WINAPI OSMonthToString(LONG month, DWORD flags, char *buffer, DWORD bufferSize);
/** The name of weekday `weekday` (0 for Sunday), long or by `flags` short, from the resource
 *  library.
 *  @return 1. */
QZAPI BOOL WINAPI OSDayToString(LONG weekday, DWORD flags, char *buffer, DWORD bufferSize);
/** Reads a date and time from `text` by the conventions in force; missing parts are taken from
 *  today.
 *  @return TRUE if the result is a valid value. Records RV_BadParms for a null output. */
QZAPI BOOL WINAPI OSStringToDateTime(DateTimeValue *out, const char *text);
/** As OSStringToDateTime, keeping an hour bias the text carries.
 *  @return TRUE if the result is a valid value. Records RV_BadParms for a null output. */
QZAPI BOOL WINAPI OSStringToDateTimeTimeBias(DateTimeValue *out, const char *text);
/** As OSStringToDateTime, for a text that must hold a complete date.
 *  @return TRUE if the result is a valid value. Records RV_BadParms for a null output. */
QZAPI BOOL WINAPI OSStringToDateTimeComplete(DateTimeValue *out, const char *text);
/** Reads a date and time from an imported text, which may hold any of the date orders.
 *  @return Always 1. */
QZAPI BOOL WINAPI OSStringToDateTimeForImport(DateTimeValue *out, const char *text);

/* ------------------------------------------------------------------ */
/* Calendar: month grid, weeks and zodiac                              */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup calendar_grid Calendar: month grid, weeks and zodiac
 *  @{ */
/* Returns -1 to fail the walk, 0 to end it with success, else goes on. */
typedef LONG (WINAPI *MonthGridCellProc)(const DateTimeValue *cell, LONG column, LONG row,
                                         LONG_PTR data1, LONG_PTR data2);
/** The grid column of a weekday when weeks start on `weekStart`.
 *  @return The column, 0 to 6. */
QZAPI LONG WINAPI OSDateTimeGetColumnForDayOfWeek(LONG weekday, LONG weekStart);
/** The number of week rows the month of the value needs.
 *  @return 4 to 6. Records RV_BadParms for a null value. */
QZAPI LONG WINAPI OSDateTimeCalcNumRowsForMonth(const DateTimeValue *value, LONG weekStart);
/** Walks the cells of the month grid of the value, calling `callback` for each (the neighbouring
 *  months' days too unless `skipOtherMonths`).
 *  @return 1, or 0 on failure or when the callback answers -1. Records the range code
 *  (RV_YearRange, RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for
 *  an invalid value. */
QZAPI BOOL WINAPI OSDateTimeMonthGrid(const DateTimeValue *value, LONG weekStart, BOOL skipOtherMonths,
                                      MonthGridCellProc callback, LONG_PTR data1, LONG_PTR data2);
/** As OSDateTimeMonthGrid.
 *  @return 1, or 0 on failure or when the callback answers -1. Records the range code
 *  (RV_YearRange, RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for
 *  an invalid value. */
QZAPI BOOL WINAPI OSDateTimeMonthGridEx(const DateTimeValue *value, LONG weekStart,
                                        BOOL skipOtherMonths, MonthGridCellProc callback,
                                        LONG_PTR data1, LONG_PTR data2);
/** The week number of the value, weeks starting on `weekStart`, into `*weekNumber`.
 *  @return 1, or 0 if the value is invalid. Records RV_BadParms for a null output; the range code
 *  (RV_YearRange, RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for
 *  an invalid value. */
QZAPI BOOL WINAPI OSWeekNo(const DateTimeValue *value, LONG weekStart, LONG *weekNumber);
/* Signs 0 (from 21 March) to 11; 12 is no sign. */
/** The sign of the zodiac of the date, 0 from 21 March to 11.
 *  @return The sign, or 12 if the value is invalid. Records the range code (RV_YearRange,
 *  RV_MonthRange, RV_DayRange, RV_HourRange, RV_MinuteRange or RV_SecondRange) for an invalid
 *  value. */
QZAPI LONG WINAPI OSGetZodiacSign(const DateTimeValue *value);
/* Mode 1 the name, 2 the name and the dates, else the dates. */
/** The sign's name, its dates, or both by `mode`, from the resource library.
 *  @return The buffer, or null. Records RV_StringNonExistant when the resource library lacks the
 *  text. */
QZAPI char *WINAPI OSZodiacToString(LONG sign, char *buffer, LONG mode, DWORD bufferSize);
/** Finds the sign whose name is `text`.
 *  @return 1, or 0 if no name matches. Records RV_BadParms for a null argument. */
QZAPI BOOL WINAPI OSStringToZodiac(const char *text, LONG *sign);
/** The character of the sign in the symbol font.
 *  @return The sign plus 94. */
QZAPI LONG WINAPI OSGetZodiacSymbol(LONG sign);

/* ------------------------------------------------------------------ */
/* Calendar: tumbler time strings (minutes of the day, in decimal)     */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup calendar_tumbler Calendar: tumbler time strings
 *  @{ */
/** Turns minutes of the day, in decimal, into hours and minutes.
 *  @return TRUE when written, 0 if the value cannot be written. */
QZAPI BOOL WINAPI OSConvertTumblerTimeStringToHourMinuteString(const char *text, char *out);
/** Turns minutes of the day, in decimal, into hours as a real number, at most 5 characters.
 *  @return TRUE when written. */
QZAPI BOOL WINAPI OSConvertTumblerTimeStringToRealString(const char *text, char *out);
/** Turns hours and minutes into minutes of the day, in decimal.
 *  @return The number of minutes. */
QZAPI BOOL WINAPI OSConvertHourMinuteStringToTumblerTimeString(const char *text, char *out);
/** Turns hours as a real number into minutes of the day, in decimal.
 *  @return The number of minutes. */
QZAPI BOOL WINAPI OSConvertRealStringToTumblerTimeString(const char *text, char *out);

/* ------------------------------------------------------------------ */
/* Settings store and resource library                                 */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup settings Settings store and resource library
 *  @{ */
/** Reads a text value of the settings store (key path under the current user); a missing key is
 *  created and a missing value answered by `defaultText`.
 *  @return The bytes placed in the buffer, terminator counted; 0 for nothing. Records
 *  RV_ReadFailure, naming `reportName`, when the key cannot be opened. */
QZAPI DWORD WINAPI OSGetProfileString(const char *keyPath, const char *valueName,
                                     const char *defaultText, char *buffer, DWORD bufferSize,
                                     const char *reportName, BOOL flag);
/** As OSGetProfileString, under the root `root`.
 *  @return The bytes placed in the buffer; 0 for nothing. Records RV_ReadFailure, naming
 *  `reportName`, when the key cannot be opened. */
QZAPI DWORD WINAPI OSGetProfileStringPassID(const char *keyPath, const char *valueName,
                                           const char *defaultText, char *buffer, DWORD bufferSize,
                                           const char *reportName, BOOL flag, HKEY root);
/** Reads a number of the settings store, stored as a double word or as text; a missing key is
 *  created and a missing value answered by `defaultValue`.
 *  @return The number. Records RV_ReadFailure, naming `reportName`, when the key cannot be opened. */
QZAPI LONG WINAPI OSGetProfileInt(const char *keyPath, const char *valueName, LONG defaultValue,
                                  const char *reportName, BOOL flag);
/** Writes a text value to the settings store, creating the key.
 *  @return 1, or 0 on failure. Records RV_WriteFailure, naming `reportName`, when the key cannot be
 *  opened or written. */
QZAPI BOOL WINAPI OSWriteProfileString(const char *keyPath, const char *valueName, const char *text,
                                       const char *reportName, BOOL flag);
/** Writes a number to the settings store as a double word, creating the key.
 *  @return 1, or 0 on failure. Records RV_WriteFailure, naming `reportName`, when the key cannot be
 *  opened or written. */
QZAPI BOOL WINAPI OSWriteProfileInt(const char *keyPath, const char *valueName, LONG number,
                                    const char *reportName, BOOL flag);
/** The language in force, two characters ("EN"), into `out`.
 *  @return 1. */
QZAPI BOOL WINAPI OSGet2CharacterLanguageString(char *out);
/** The resource library's file name for the language in force ("KE1C30EN.DLL") into `out`.
 *  @return 1 on success, 0 if the language could not be had. Records RV_BadParms for a null output. */
QZAPI BOOL WINAPI OSBuildResourceString(char *out);
/** Loads the resource library of the language in force.
 *  @return Its module handle, or null. */
QZAPI HMODULE WINAPI OSStartResource(void);
/** Frees the resource library.
 *  @return The result of FreeLibrary. */
QZAPI BOOL WINAPI OSStopResource(void);
/** The resource library's module handle.
 *  @return The handle; null when none is loaded. */
QZAPI HMODULE WINAPI ResourceGetHandle(void);
/** Loads bitmap `id` of `module`.
 *  @return The bitmap, owned by the caller, or null. */
QZAPI HBITMAP WINAPI ResourceLoadBitmap(HMODULE module, DWORD id);
/* A global block holding a METAFILEPICT (MM_ISOTROPIC, extents in 0.01 mm)
 * made from a "META16" resource; the caller owns the block and the metafile. */
/** Makes a metafile picture from the "META16" resource `name` of `module`.
 *  @return A global block holding a METAFILEPICT, owned by the caller, or null. Records RV_BadParms
 *  for a missing resource, RV_BadMetafile for a broken one. */
QZAPI HGLOBAL WINAPI ResourceLoadMetafile(HMODULE module, const char *name);

/* ------------------------------------------------------------------ */
/* Locale queries: the system's regional settings                      */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup locale Locale queries
 *  @{ */
/** The list separator of the regional settings.
 *  @return Its first character, "," by default. */
QZAPI BYTE WINAPI OSGetSeparator(void);
/** The language abbreviation of the regional settings ("sLanguage").
 *  @return 1; the buffer gets "en" by default. */
QZAPI BOOL WINAPI OSGetLanguage(char *buffer, DWORD size);
/** The country name of the regional settings.
 *  @return 1, or 0 if the settings cannot be read. Records RV_BadParms for a null buffer,
 *  RV_ReadFailure when the key cannot be read. */
QZAPI BOOL WINAPI OSGetCountry(char *buffer, LONG size);
/** The country code of the regional settings.
 *  @return The code. */
QZAPI LONG WINAPI OSGetCountryCode(void);
/** The system's ANSI code page.
 *  @return GetACP(). */
QZAPI UINT WINAPI OSGetCodePage(void);
/** The measurement system of the regional settings: 0 metric, 1 imperial.
 *  @return The setting, 1 by default. */
QZAPI LONG WINAPI OSGetMeasurement(void);
/** The decimal separator of the regional settings.
 *  @return Its first character, "." by default. */
QZAPI BYTE WINAPI OSGetDecimal(void);
/** The thousands separator of the regional settings.
 *  @return Its first character, "," by default. */
QZAPI BYTE WINAPI OSGetThousand(void);
/** The negative number format of the regional settings.
 *  @return The format, 1 by default. */
QZAPI LONG WINAPI OSGetNegNumber(void);
/* The number and its ending ("1st"), or with `plain` the ordinal word. */
/** Writes `number` with its ordinal ending ("1st"), or with `plain` the ordinal word, from the
 *  resource library.
 *  @return 1 or 0. Records RV_BadParms for a null buffer or a size that cannot hold the text. */
QZAPI BOOL WINAPI OSSuffix(DWORD number, LONG plain, char *buffer, LONG size);

/* ------------------------------------------------------------------ */
/* Busy cursor, timers, key buffer and message boxes                   */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup busy Busy cursor, timers, key buffer and message boxes
 *  @{ */
/* Loads the eight frames of the turning cursor; 0 if one is missing. */
/** Loads the eight frames of the turning cursor.
 *  @return 1; 0 if waits are disabled or a frame is missing. Records RV_UserError when a frame
 *  cannot be loaded. */
QZAPI BOOL WINAPI OSWaitInit(void);
/* Starts (or nests) a wait: the turning cursor shows. Returns the nesting. */
/** Starts, or nests, a wait: the turning cursor shows.
 *  @return The nesting depth; the disabled flag when waits are disabled. */
QZAPI DWORD WINAPI OSWait(void);
/* Keeps the cursor turning; with checkEscape, asks the user after an Escape
 * press. 1 when the user chose to stop the work, else 0. */
/** Turns the cursor one step and lets pending title updates through; with `checkEscape`, asks the
 *  user after an Escape press.
 *  @return 1 when the user chose to stop the work, else 0. */
QZAPI BOOL WINAPI OSReWait(BOOL checkEscape);
/** Ends one level of waiting; the last restores the cursor.
 *  @return The nesting left. */
QZAPI DWORD WINAPI OSUnWait(void);
/* One-way switches: after them waits and boxes do nothing. */
/** Switches waits off for good. */
QZAPI void WINAPI OSWaitDisable(void);
/** Switches message boxes off for good. */
QZAPI void WINAPI OSMessageDisable(void);
/* Removes every keyboard message waiting in the thread's queue; returns 0. */
/** Removes every keyboard message waiting in the thread's queue.
 *  @return 0. */
QZAPI BOOL WINAPI OSKeyFlushBuffer(void);
/** Starts a timer, as SetTimer.
 *  @return The result of SetTimer. */
QZAPI UINT_PTR WINAPI OSSetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure);
/** Stops a timer, as KillTimer.
 *  @return The result of KillTimer. */
QZAPI BOOL WINAPI OSKillTimer(HWND window, UINT_PTR id);
/** Kept for old hosts.
 *  @return Always 1. */
QZAPI BOOL WINAPI OSTimerTestReincarnate(DWORD reserved1, DWORD reserved2);
/* Shows string `stringId` of `module`, filled in by OSrvsprintf with the
 * arguments, in a box of `style`. Returns the button pressed, 0 if the
 * string is missing or boxes are disabled, 2 when no box could be shown. */
/** Shows string `stringId` of `module`, filled in by OSrvsprintf with the arguments, in a box of
 *  `style` (__cdecl).
 *  @return The button pressed; 0 if the string is missing or boxes are disabled; 2 when no box
 *  could be shown. */
QZAPI int __cdecl OSMessage(HWND parent, HMODULE module, const char *caption, UINT stringId,
                            UINT style, ...);
/* What the Help button of OSMessageWithHelp opens: string `stringId` of
 * `module` names the help window; `admin` chooses the administrator's file. */
typedef struct MessageHelpRecord {
    /** The module holding the help window's name. */
    HMODULE module;
    /** That name's string. */
    DWORD stringId;
    /** Non-zero: the administrator's help file. */
    DWORD admin;
    /** The help topic. */
    DWORD topic;
} MessageHelpRecord;
/* As OSMessage; with a help record the box has a Help button. */
/** As OSMessage; with a help record the box has a Help button that opens the help it names
 *  (__cdecl).
 *  @return The button pressed; 0 if the string is missing or boxes are disabled; 2 when no box
 *  could be shown. */
QZAPI int __cdecl OSMessageWithHelp(const MessageHelpRecord *help, HWND parent, HMODULE module,
                                    const char *caption, UINT stringId, UINT style, ...);

/* ------------------------------------------------------------------ */
/* Trees and sorting                                                   */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup trees Trees and sorting
 *  @{ */
/* The head of a record linked into a tree the caller owns. Only a parent's
 * first child is linked from it; the others follow along `next`. */
typedef struct TreeNode {
    struct TreeNode *prev;      /* previous sibling */
    struct TreeNode *next;      /* next sibling */
    /** The parent, null at the root. */
    struct TreeNode *parent;
    struct TreeNode *child;     /* first child */
} TreeNode;
/* Answers zero to stop the walk. */
typedef LONG_PTR(WINAPI *TreeVisitor)(TreeNode *node, LONG_PTR data);
/* The node after `node`, null to end, or (TreeNode *)-1 to fail the walk. */
typedef TreeNode *(WINAPI *TreeStepper)(TreeNode *node, TreeVisitor visitor, LONG_PTR data);
/** Compares two elements for QSort: below, at or above zero. */
typedef int(__cdecl *SortCompare)(const void *a, const void *b);
/* A null reference means the root (the last root sibling for After, the
 * deepest first child for Below); into an empty tree the node becomes the
 * root. 0 with RV_TreeBroken when the node is its own reference. */
/** Links `node` before `reference` in the tree at `*root`.
 *  @return 1, or 0. Records RV_BadParms for a null root or node, RV_TreeBroken when the node is its
 *  own reference. */
QZAPI BOOL WINAPI OSTreeInsertBeforeNode(TreeNode **root, TreeNode *reference, TreeNode *node);
/** Links `node` after `reference` in the tree at `*root`.
 *  @return 1, or 0. Records RV_BadParms for a null root or node, RV_TreeBroken when the node is its
 *  own reference. */
QZAPI BOOL WINAPI OSTreeInsertAfterNode(TreeNode **root, TreeNode *reference, TreeNode *node);
/** Links `node` above `reference` in the tree at `*root`.
 *  @return 1, or 0. Records RV_BadParms for a null root or node, RV_TreeBroken when the node is its
 *  own reference. */
QZAPI BOOL WINAPI OSTreeInsertAboveNode(TreeNode **root, TreeNode *reference, TreeNode *node);
/** Links `node` below `reference` in the tree at `*root`.
 *  @return 1, or 0. Records RV_BadParms for a null root or node, RV_TreeBroken when the node is its
 *  own reference. */
QZAPI BOOL WINAPI OSTreeInsertBelowNode(TreeNode **root, TreeNode *reference, TreeNode *node);
/* Unlinks the node, which keeps its subtree. 0 with RV_TreeBroken when the
 * node is in no tree. */
/** Unlinks `node`, which keeps its subtree.
 *  @return 1, or 0. Records RV_BadParms for a null argument, RV_TreeBroken when the node is in no
 *  tree. */
QZAPI BOOL WINAPI OSTreeRemoveNode(TreeNode **root, TreeNode *node);
/* Post-order walk (children first) along the siblings of `node`, or along what
 * the stepper returns. The visitor's last answer, or 0. */
/** Walks the tree post-order (children first) along the siblings of `node`, or along what `stepper`
 *  returns, calling `visitor`.
 *  @return The visitor's last answer, or 0. Records RV_BadParms for a null visitor, RV_TreeBroken
 *  when the stepper fails the walk. */
QZAPI LONG_PTR WINAPI OSTreeNodeEnum(TreeNode *node, TreeStepper stepper, TreeVisitor visitor,
                                     LONG_PTR data);
/* Sorts in place, not stable, with the busy cursor turning; the result is
 * that of OSUnWait. A compare must not sort. */
/** Sorts `count` elements of `size` bytes in place by `compare`, not stable, with the busy cursor
 *  turning.
 *  @return The result of OSUnWait. */
QZAPI DWORD WINAPI QSort(void *base, DWORD count, DWORD size, SortCompare compare);
/** As QSort, for arrays of any length.
 *  @return The result of OSUnWait. */
QZAPI DWORD WINAPI QSortLong(void *base, DWORD count, DWORD size, SortCompare compare);

/* ------------------------------------------------------------------ */
/* Help                                                                */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup help Help
 *  @{ */
/* Sent as WM_KEL_HELP (the registered message) with lParam pointing here;
 * the answer is the help context, 0 for none. */
typedef struct HelpRequest {
    HMODULE Instance;   /* module holding the help window's name */
    DWORD StringId;     /* that name's string, or 0 */
    DWORD Admin;        /* non-zero: the administrator's help file */
    /** Not used. */
    DWORD Reserved;
} HelpRequest;
/* Opens the language's help file (or the administrator's) through WinHelpA,
 * after telling "tvhlpn31.dll" which file belongs to the application. Data
 * -1 and -2 only register and return 1. */
/** Opens the language's help file through WinHelpA, after telling "tvhlpn31.dll" which file belongs
 *  to the application.
 *  @return The result of WinHelpA, or 1 for the register-only data -1 and -2. */
QZAPI BOOL WINAPI ResourceHelp(HWND window, UINT command, DWORD data, const char *windowName);
/** As ResourceHelp, with the administrator's help file.
 *  @return The result of WinHelpA, or 1 for the register-only data -1 and -2. */
QZAPI BOOL WINAPI ResourceAdminHelp(HWND window, UINT command, DWORD data, const char *windowName);
/* Asks the window and its parents for a help context and opens it. */
/** Asks the window and its parents for a help context with WM_KEL_HELP and opens it.
 *  @return 1 or 0. Records RV_BadParms for a null window, RV_UserError when no help could be
 *  opened. */
QZAPI BOOL WINAPI OSHelp(HWND window);

/* ------------------------------------------------------------------ */
/* Error presentation: a pending error shown as a message box.         */
/* Each returns the box's answer: IDOK, IDCANCEL, IDRETRY, IDYES or     */
/* IDNO; 2 (IDCANCEL) when nothing is shown.                            */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup error_presentation Error presentation
 *  @{ */
/* Shows message `messageId` of `module`, filled in with the arguments. */
typedef int (__cdecl *UIErrorPresenter)(HWND window, HMODULE module, const char *caption,
                                        UINT messageId, UINT flags, ...);
/* Offered the error before it is shown; non-zero means it was dealt with. */
typedef LONG (WINAPI *UIErrorCallback)(HWND window, ErrorContext *context);
/** Shows the pending error as a message box from the resource library, then clears it.
 *  @return The box's answer; 2 (IDCANCEL) when nothing is shown. */
QZAPI int WINAPI UIHandleError(HWND window);
/** As UIHandleError; with `useWindowCaption` the box takes the window's caption.
 *  @return The box's answer; 2 (IDCANCEL) when nothing is shown. */
QZAPI int WINAPI UIHandleErrorEx(HWND window, DWORD useWindowCaption);
/** As UIHandleErrorEx, shown through `presenter`.
 *  @return The presenter's answer; 2 (IDCANCEL) when nothing is shown. */
QZAPI int WINAPI UIHandleErrorFunc(HWND window, DWORD useWindowCaption, UIErrorPresenter presenter);
/* Presents with the window's caption and the Retry and Cancel buttons. */
/** Shows the pending error with the window's caption and the Retry and Cancel buttons.
 *  @return The box's answer; 2 (IDCANCEL) when nothing is shown. */
QZAPI int WINAPI UIHandleErrorRetry(HWND window);
/* Only the first callback registered is ever called. */
/** Registers a callback offered each error before it is shown.
 *  @return 1, or 0 if out of memory. Records RV_BadParms for a null callback, RV_OutOfLocalMemory
 *  when it cannot be kept. */
QZAPI BOOL WINAPI UIErrorRegisterCallback(DWORD ignored, UIErrorCallback callback);
/* Does nothing and returns 1. */
/** Kept for old hosts; does nothing.
 *  @return Always 1. */
QZAPI BOOL WINAPI UIErrorUnRegisterCallback(DWORD ignored);

/* ------------------------------------------------------------------ */
/* Feedback: a worker thread that shows progress in the main window's  */
/* title. The host starts Feedback_Thread with that window.            */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup feedback Feedback
 *  @{ */
#define FEEDBACK_FORMATS 8          /* strings 53000 to 53007 */
/** A message for the title, as given to the Feedback_ calls. */
typedef struct FeedbackMessage {
    DWORD Kind;     /* 0: format Index with Text; 1: format Index alone; else Text alone */
    DWORD Index;    /* 0 to 7 */
    char *Text;     /* may be null */
} FeedbackMessage;
/** Sets one of the worker's three timings, in milliseconds; values set before the worker starts
 *  stay in force.
 *  @return 1. */
QZAPI BOOL WINAPI Feedback_SetX(DWORD milliseconds);
/** Sets one of the worker's three timings, in milliseconds; values set before the worker starts
 *  stay in force.
 *  @return 1. */
QZAPI BOOL WINAPI Feedback_SetY(DWORD milliseconds);
/** Sets one of the worker's three timings, in milliseconds; values set before the worker starts
 *  stay in force.
 *  @return 1. */
QZAPI BOOL WINAPI Feedback_SetZ(DWORD milliseconds);
/** Starts (or nests) long work: the title blinks; a message, when given, is queued.
 *  @return 1, or 0 if the worker is not running. */
QZAPI BOOL WINAPI Feedback_Begin(const FeedbackMessage *message);
/** Ends one level of long work.
 *  @return 1, or 0 if the worker is not running or no work is under way. */
QZAPI BOOL WINAPI Feedback_End(void);
/** Queues a message for the title, one per step of the work.
 *  @return 1 if queued, else 0. Records RV_BadParms for a format index out of range,
 *  RV_OutOfLocalMemory when the message cannot be copied. */
QZAPI BOOL WINAPI Feedback_PostMsg(const FeedbackMessage *message);
/* Shows the message at once; always 0. */
/** Shows the message in the title at once.
 *  @return Always 0. */
QZAPI BOOL WINAPI Feedback_SendMsg(const FeedbackMessage *message);
/* Drops the queue and the count; always 0. */
/** Drops the queue and the nesting count.
 *  @return Always 0. */
QZAPI BOOL WINAPI Feedback_CleanupAll(void);
/** Stops the worker and waits for it, taking its titles.
 *  @return 1, or 0 if the worker is not running. */
QZAPI BOOL WINAPI Feedback_TerminateThread(void);
/* The worker: run it on a thread of its own with the main window. */
/** The worker: run it on a thread of its own with the main window as the argument.
 *  @return Never: it ends with ExitThread(0). */
QZAPI DWORD WINAPI Feedback_Thread(LPVOID window);
/** Sets the application's caption shown in the title.
 *  @return 1, or 0 if out of memory. Records RV_BadParms for a null caption, RV_OutOfLocalMemory
 *  when it cannot be copied. */
QZAPI BOOL WINAPI Feedback_SetCaption(const char *caption);
/** Sets the file name shown in the title; null for none.
 *  @return 1, or 0 if out of memory. Records RV_OutOfLocalMemory when it cannot be copied. */
QZAPI BOOL WINAPI Feedback_SetFilename(const char *filename);
/* Lets one pending title update through; call it often during long work. */
/** Lets one pending title update through; call it often during long work. */
QZAPI void WINAPI Feedback_Flush_WM_SETTEXT(void);
/* Drawing: mask blits and bitmap helpers. A mask is 1 bit per pixel,  */
/* set (white) where the image is transparent. Pictures given with a   */
/* rectangle are centred in it (offsets truncated toward zero).        */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup draw_mask Drawing: mask blits and bitmap helpers
 *  @{ */
/** Makes the mask of `image`: set (white) where it has the colour `transparent`.
 *  @return A new mask, owned by the caller, or null. Records RV_GDIError when a drawing object
 *  cannot be made. */
QZAPI HBITMAP WINAPI UICreateMaskBitmap(HDC hdc, HBITMAP image, COLORREF transparent);
/** Copies a rectangle of `src` to `dst`, leaving the pixels of colour `transparent` out.
 *  @return 1 or 0. Records RV_GDIError when a drawing object cannot be made. */
QZAPI DWORD WINAPI UIMaskBlt(HDC dst, int x, int y, int w, int h, HDC src, int srcX, int srcY,
                             COLORREF transparent);
/** Draws `image` centred in `rect` through `mask` (made from `transparent` when null), straight
 *  onto the device.
 *  @return 1 or 0. Records RV_GDIError when a drawing object cannot be made. */
QZAPI DWORD WINAPI UIMaskBltWithFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                        COLORREF transparent);
/** Draws `image` centred in `rect` through `mask` (made from `transparent` when null), composed
 *  off-screen first.
 *  @return 1 or 0. Records RV_GDIError when a drawing object cannot be made. */
QZAPI BOOL WINAPI UIMaskBltNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                     COLORREF transparent);
/* Leaves the caller's image inverted: a second call draws it as it was. */
/** As UIMaskBltNoFlicker, drawing the image inverted; the caller's image is left inverted.
 *  @return 1 or 0. Records RV_GDIError when a drawing object cannot be made. */
QZAPI BOOL WINAPI UIMaskBltInvertNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                           COLORREF transparent);
/* Transparent is the colour of the image's top-left pixel. */
/** As UIMaskBltNoFlicker, transparent being the colour of the image's top-left pixel.
 *  @return 1 or 0. Records RV_GDIError when a drawing object cannot be made. */
QZAPI BOOL WINAPI UIMaskBltNoFlickerTLC(HDC hdc, RECT *rect, HBITMAP image);
/** Draws `image` centred in `rect`.
 *  @return 1 or 0. Records RV_GDIError when a drawing object cannot be made. */
QZAPI DWORD WINAPI UIBitBlt(HDC hdc, RECT *rect, HBITMAP image);
/** Draws a monochrome `image` centred in `rect` in the device's text and background colours.
 *  @return 1 or 0. Records RV_GDIError when a drawing object cannot be made. */
QZAPI DWORD WINAPI UIMonoBlt(HDC hdc, RECT *rect, HBITMAP image);
/** Copies a rectangle of `src` to `dst` through a monochrome `mask` by `rop`, mirrored when
 *  `mirror` is non-zero.
 *  @return 1 or 0. Records RV_GDIError when a drawing object cannot be made. */
QZAPI LONG WINAPI OSMaskBlt(HDC dst, int x, int y, int w, int h, HDC src, int srcX, int srcY,
                            DWORD rop, HBITMAP mask, int mirror);
/** As OSMaskBlt, composing over `background`.
 *  @return 1 or 0. Records RV_GDIError when a drawing object cannot be made. */
QZAPI LONG WINAPI MaskBltWithBitmap(HDC dst, int x, int y, int w, int h, HDC src, int srcX,
                                    int srcY, DWORD rop, HBITMAP mask, int mirror,
                                    HBITMAP background);
/** Makes a copy of `image` dithered with `colour`, as for a disabled face.
 *  @return A new bitmap, owned by the caller, or null. Records RV_GDIError, or RV_UserError for a
 *  null image. */
QZAPI HBITMAP WINAPI UICreateDitheredBitmap(HDC hdc, HBITMAP image, COLORREF colour);
/** Makes a copy of `image` with the pixels of colour `from` turned to `to`.
 *  @return A new bitmap, owned by the caller, or null. Records RV_GDIError when a drawing object
 *  cannot be made. */
QZAPI HBITMAP WINAPI UIChangeBitmapColor(HBITMAP image, COLORREF from, COLORREF to);
/** Fills `rect` with copies of `image`.
 *  @return 1 or 0. Records RV_BadParms for a null rectangle or image, RV_GDIError when drawing
 *  fails. */
QZAPI DWORD WINAPI UITileBitmap(HDC hdc, RECT *rect, HBITMAP image);
/** The colour halfway to black.
 *  @return The colour. */
QZAPI COLORREF WINAPI UICalcHalfIntensity(COLORREF colour);
/** Fills `rect` with `fill` and frames it with the two edge brushes.
 *  @return 1 or 0. Records RV_BadParms for a null rectangle, RV_GDIError when drawing fails. */
QZAPI BOOL WINAPI UIFrameAndFillRect(HDC hdc, RECT *rect, HBRUSH fill, HBRUSH topLeft,
                                     HBRUSH bottomRight);
/** Draws `rect` as a sunken trough in the system's 3D colours.
 *  @return 1 or 0. Records RV_BadParms for a null rectangle, RV_GDIError when drawing fails. */
QZAPI DWORD WINAPI UITroughRect(HDC hdc, RECT *rect);
/* Flags: 4 top, 1 left, 2 right, 8 bottom, 0x1000 bottom shortened by 2. */
/** Draws the edges of `rect` chosen by `flags` in the two colours.
 *  @return The device's earlier background colour. Records RV_BadParms for a null rectangle. */
QZAPI COLORREF WINAPI Draw3DFrame(HDC hdc, RECT *rect, COLORREF topLeft, COLORREF bottomRight,
                                  LONG flags);

/* ------------------------------------------------------------------ */
/* Drawing: regions, owned by the caller                               */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup draw_regions Drawing: regions
 *  @{ */
/* The pixels of `colour`, the rows flipped left to right with mirror. */
/** Makes the region of the pixels of `colour` in `bitmap`.
 *  @return The region, owned by the caller, or null. Records RV_GDIError when a drawing object
 *  cannot be made. */
QZAPI HRGN WINAPI UICreateBitmapRegion(HBITMAP bitmap, COLORREF colour, DWORD mirror);
/* All but the background `colour` (-1: the top-left pixel) of a picture
 * symmetrical in both axes, read from its top-left quarter. */
/** Makes the region of a picture symmetrical in both axes from its top-left quarter.
 *  @return The region, owned by the caller, or null. Records RV_GDIError when a drawing object
 *  cannot be made. */
QZAPI HRGN WINAPI UICreateMirroredBitmapRegion(HBITMAP bitmap, COLORREF colour);
/** Makes a rounded rectangle region.
 *  @return The region, owned by the caller, or null. Records RV_GDIError when a drawing object
 *  cannot be made. */
QZAPI HRGN WINAPI UICreateRoundRectRegion(LONG left, LONG top, LONG right, LONG bottom,
                                          LONG cornerWidth, LONG cornerHeight);

/* ------------------------------------------------------------------ */
/* Drawing: device-independent bitmaps. A DIB handle is a movable      */
/* global block holding a packed bitmap (40-byte header, colour table, */
/* rows); the caller frees it with DIB_Destroy.                        */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup dib Drawing: device-independent bitmaps
 *  @{ */
/** Reads a bitmap file into a DIB.
 *  @return A DIB handle, or null. Records RV_NoFile when the file cannot be opened, RV_BadDIB when
 *  it is no bitmap file, RV_OutOfGlobalMemory when no block can be had. */
QZAPI HGLOBAL WINAPI DIB_OpenDIB(const char *name);
/** Makes a DIB from the image of a bitmap file in memory.
 *  @return A DIB handle, or null. Records RV_BadDIB for an image that is no bitmap file,
 *  RV_OutOfGlobalMemory when no block can be had. */
QZAPI HGLOBAL WINAPI DIB_FileStreamToDIB(const BYTE *image);
/** Makes a DIB from a stream written by DIB_DIBToStream.
 *  @return A DIB handle, or null. Records RV_BadDIB for a broken stream, RV_OutOfGlobalMemory when
 *  no block can be had. */
QZAPI HGLOBAL WINAPI DIB_StreamToDIB(const BYTE *stream);
/* Writes DIB_DIBSize bytes. */
/** Writes the DIB as a stream of DIB_DIBSize bytes.
 *  @return 1. Records RV_BadParms for a null output or handle. */
QZAPI BOOL WINAPI DIB_DIBToStream(BYTE *out, HGLOBAL dib);
/** The size of the DIB's stream.
 *  @return The size in bytes, 0 for a null handle. */
QZAPI DWORD WINAPI DIB_DIBSize(HGLOBAL dib);
/** The DIB's width and height into `*size`.
 *  @return 1, or 0 for a null handle or a failed lock. */
QZAPI BOOL WINAPI DIB_GetDimensions(HGLOBAL dib, SIZE *size);
/** Makes a palette from the DIB's colour table.
 *  @return The palette, owned by the caller, or null. Records RV_BadDIB for a broken DIB,
 *  RV_OutOfLocalMemory, RV_GDIError. */
QZAPI HPALETTE WINAPI DIB_CreateDibPalette(HGLOBAL dib);
/** Makes a device-dependent bitmap from the DIB, through `palette` when given.
 *  @return The bitmap, owned by the caller, or null. Records RV_Failure for a null handle,
 *  RV_GDIError. */
QZAPI HBITMAP WINAPI DIB_BitmapFromDib(HGLOBAL dib, HPALETTE palette);
/** Makes a DIB from `bitmap` with `bits` per pixel and compression `style`.
 *  @return A DIB handle, or null. Records RV_BadDIB, RV_OutOfGlobalMemory, RV_GDIError. */
QZAPI HGLOBAL WINAPI DIB_DibFromBitmap(HBITMAP bitmap, DWORD style, DWORD bits, HPALETTE palette);
/** Makes a run-length compressed copy of the DIB, freeing the source when `freeSource` is non-zero.
 *  @return A new DIB handle, or null. Records RV_BadDIB or RV_OutOfGlobalMemory. */
QZAPI HGLOBAL WINAPI DIB_CompressDIB(HGLOBAL dib, LONG freeSource);
/** Makes an uncompressed copy of the DIB, freeing the source when `freeSource` is non-zero.
 *  @return A new DIB handle, or null. Records RV_BadDIB or RV_OutOfGlobalMemory. */
QZAPI HGLOBAL WINAPI DIB_ExpandDIB(HGLOBAL dib, LONG freeSource);
/** Draws the DIB at (x, y) by `rop`; a null DIB paints the rectangle by `rop` alone.
 *  @return 1, or what PatBlt returned. Records RV_Failure when the DIB cannot be locked. */
QZAPI BOOL WINAPI DIB_DibBlt(HDC hdc, int x, int y, int w, int h, HGLOBAL dib, int srcX, int srcY,
                             DWORD rop);
/** Draws a rectangle of the DIB stretched into (x, y, w, h) by `rop`.
 *  @return What StretchDIBits returned. Records RV_Failure when the DIB cannot be locked. */
QZAPI int WINAPI DIB_StretchBlt(HDC hdc, int x, int y, int w, int h, HGLOBAL dib, int srcX,
                                int srcY, int srcW, int srcH, DWORD rop);
/** Reads a bitmap file into a device-dependent bitmap.
 *  @return The bitmap, owned by the caller, or null, with the cause recorded as by DIB_OpenDIB. */
QZAPI HBITMAP WINAPI DIB_FiletoBM(const char *name);
/** Copies a bitmap.
 *  @return A new bitmap, owned by the caller, or null. Records RV_Failure for a null bitmap,
 *  RV_GDIError. */
QZAPI HBITMAP WINAPI DIB_CopyBitmap(HBITMAP bitmap);
/** Copies a DIB.
 *  @return A new DIB handle, or null. Records RV_OutOfGlobalMemory when no block can be had. */
QZAPI HGLOBAL WINAPI DIB_CopyDIB(HGLOBAL dib);
/** Frees a DIB.
 *  @return What GlobalFree returned: null on success. */
QZAPI HGLOBAL WINAPI DIB_Destroy(HGLOBAL dib);

/* ------------------------------------------------------------------ */
/* Drawing: metafiles. A metafile handle is a movable global block     */
/* holding a METAFILEPICT; the caller frees it with MF_Destroy.        */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup metafiles Drawing: metafiles
 *  @{ */
/** Reads a placeable metafile file.
 *  @return A metafile handle, or null. Records RV_NoFile when the file cannot be opened,
 *  RV_ReadFailure when it cannot be read, RV_WrongMetafileFormat when it is no placeable metafile,
 *  RV_BadMetafile for a broken one. */
QZAPI HGLOBAL WINAPI MF_OpenMetaFile(const char *name);
/* New form: four u32 (mode, xExt, yExt, handle) then the bits; old form
 * (or oldForm non-zero): four 16-bit words then the bits. */
/** Makes a metafile from a stream, in its new form or, with `oldForm`, its old one.
 *  @return A metafile handle, or null. Records RV_BadMetafile for a broken stream. */
QZAPI HGLOBAL WINAPI MF_StreamToMF(const BYTE *stream, DWORD oldForm);
/** Writes the metafile as a stream of MF_Size bytes.
 *  @return 1, or 0 if there is nothing to write. Records RV_BadParms for a null output. */
QZAPI BOOL WINAPI MF_MFToStream(BYTE *out, HGLOBAL metafile);
/** The size of the metafile's stream.
 *  @return The size in bytes, 0 with no metafile. Records RV_BadMetafile for a broken handle. */
QZAPI DWORD WINAPI MF_Size(HGLOBAL metafile);
/* `size` comes in with a fall-back and leaves with the size in device units. */
/** The metafile's size in device units of `hdc` into `*size`, which comes in with a fall-back.
 *  @return The height placed in the size. Records RV_BadParms for a null argument. */
QZAPI LONG WINAPI MF_GetDimensions(HDC hdc, HGLOBAL metafile, SIZE *size);
/** Plays the metafile into `rect`.
 *  @return What EnumMetaFile returned. Records RV_BadParms for a null argument, RV_BadMetafile for
 *  a broken handle. */
QZAPI BOOL WINAPI MF_Play(HDC hdc, RECT *rect, HGLOBAL metafile);
/** Frees a metafile handle and its metafile.
 *  @return What GlobalFree returned: null on success. */
QZAPI HGLOBAL WINAPI MF_Destroy(HGLOBAL metafile);

/* ------------------------------------------------------------------ */
/* Drawing: vertical and indented text                                 */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup vertical_text Drawing: vertical and indented text
 *  @{ */
/** Counts a user of vertical text and makes its fonts on first use.
 *  @return The new user count, or 0 if out of memory. Records RV_OutOfLocalMemory. */
QZAPI LONG WINAPI UIVertDrawTextInit(void);
/** Releases one user of vertical text; the last frees its fonts. */
QZAPI void WINAPI UICleanUpVertDrawText(void);
/** Forgets the vertical font made for `font`. */
QZAPI BOOL WINAPI UITrashVertFont(HFONT font);
/* Flags: 1 centre across, 2 right, 4 centre along, 8 bottom, 256 no clip.
 * Direction 0 upwards, 1 downwards. */
/** Draws text turned upwards or downwards in `rect`, placed by `flags`.
 *  @return 1 or 0. Records RV_BadParms for a null argument, RV_GDIError when a font cannot be made. */
QZAPI BOOL WINAPI UIVertDrawText(HDC hdc, const char *text, int length, RECT *rect, DWORD flags,
                                 int direction);
/** Draws text whose lines after the first are indented by `indent`, as DrawText with `format`.
 *  @return The height drawn. Records RV_BadParms for a null argument, RV_GDIError. */
QZAPI int WINAPI DrawTextWithIndent(HDC hdc, const char *text, DWORD ignored, RECT *rect,
                                    UINT format, int indent, int leastNextTop, int measureEmpty);
/* Dialog creation from a template of a module, and the one-time       */
/* notice. The wrappers take the names that windows.h gives to macros  */
/* of its own; those macros are removed here, so a host that includes  */
/* this header calls the wrappers by these names.                      */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup dialogs Dialog creation and the one-time notice
 *  @{ */
#undef DialogBox
#undef DialogBoxParam
#undef CreateDialog
#undef CreateDialogParam
/** Runs a modal dialog from template `templateName` of `module` with `param`.
 *  @return The dialog's result, or -1; records nothing. */
QZAPI INT_PTR WINAPI DialogBoxParam(HMODULE module, const char *templateName, HWND owner,
                                    DLGPROC procedure, LPARAM param);
/** Makes a modeless dialog from template `templateName` of `module` with `param`.
 *  @return The dialog, or null; records nothing. */
QZAPI HWND WINAPI CreateDialogParam(HMODULE module, const char *templateName, HWND owner,
                                    DLGPROC procedure, LPARAM param);
/** Runs a modal dialog from template `templateName` of `module`.
 *  @return The dialog's result, or -1; records nothing. */
QZAPI INT_PTR WINAPI DialogBox(HMODULE module, const char *templateName, HWND owner,
                               DLGPROC procedure);
/** Makes a modeless dialog from template `templateName` of `module`.
 *  @return The dialog, or null; records nothing. */
QZAPI HWND WINAPI CreateDialog(HMODULE module, const char *templateName, HWND owner,
                               DLGPROC procedure);
/* Shows the "EIGHTEEN" notice for ten seconds, once per `key` (every
 * time for a null key). 1 if it was shown before, otherwise 0. */
/** Shows the "EIGHTEEN" notice for ten seconds, once per `key` (every time for a null key).
 *  @return 1 if it was shown before, otherwise 0. */
QZAPI BOOL WINAPI Eighteen(HWND owner, const char *key);

/* ------------------------------------------------------------------ */
/* Dialog skin: the grey face, centring and bitmap check boxes         */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup dialog_skin Dialog skin
 *  @{ */
/** The dialog skin's procedure for a dialog: the grey face and centring.
 *  @return What the message's handling returns. */
QZAPI LRESULT CALLBACK UIDialogSubclassProc(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam);
/** The dialog skin's procedure for a bitmap check box.
 *  @return What the message's handling returns. */
QZAPI LRESULT CALLBACK UIButtonSubclassProc(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam);
/** Starts the dialog skin for `mainWindow`'s thread: every dialog made from then on is subclassed.
 *  @return 1 or 0. Records RV_OutOfLocalMemory, or RV_UserError when the hook cannot be set. */
QZAPI BOOL WINAPI UIGrayDialogInit(HWND mainWindow);
/** Stops the dialog skin for `mainWindow`.
 *  @return 1, or 0. Records RV_Failure when the skin was not started. */
QZAPI BOOL WINAPI UIGrayDialogUnInit(HWND mainWindow);
/** Draws check box `button` with `bitmap`'s faces.
 *  @return 1 or 0. Records RV_OutOfLocalMemory. */
QZAPI BOOL WINAPI UIBitmapCheckBox(HWND button, HBITMAP bitmap);
/** The dialog face colour in force.
 *  @return The button face colour when the grey skin is on, else the window colour. */
QZAPI COLORREF WINAPI UIGetDlgColor(void);
/* The id of the first checked button from `first` to `last`, or `first`. */
/** The first checked radio button from `first` to `last`.
 *  @return Its id, or `first` when none is checked. */
QZAPI UINT WINAPI UIGetCurrentRadioButton(HWND dialog, UINT first, UINT last);

/* ------------------------------------------------------------------ */
/* Gadget registration                                                 */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup gadgets Gadget registration and shared gadget drawing
 *  @{ */
/* 1 on success, 0 on failure. Nested: only the first call registers. */
/** Registers the gadget classes (and the colour controls); nested calls count.
 *  @return 1 on success, 0 on failure, with the cause recorded. */
QZAPI BOOL WINAPI RegisterGadgets(DWORD ignored);
/* The count left, or -1 when nothing was registered. */
/** Undoes one RegisterGadgets; the last unregisters the classes.
 *  @return The count left, or -1 when nothing was registered. */
QZAPI LONG WINAPI UnRegisterGadgets(void);
/* Non-zero selects the LCD rule for text on coloured backgrounds. */
/** Selects the rule for text on coloured gadget backgrounds: non-zero the LCD one.
 *  @return The flag as given. */
QZAPI LONG WINAPI Gadgets_LCDOption(LONG flag);
/* The mask blits under the gadgets' names: as the UI functions, except that
 * GadUtilCreateMaskBitmap leaves a new mask it cannot select, and
 * GadUtilMaskBltWithFlicker does not free a mask it made itself. */
/** As UICreateMaskBitmap.
 *  @return A new one-bit mask, or null. Records RV_GDIError when a drawing object cannot be made. */
QZAPI HBITMAP WINAPI GadUtilCreateMaskBitmap(HDC hdc, HBITMAP image, COLORREF transparent);
/** As UIMaskBltNoFlicker.
 *  @return 1 on success, 0 on failure. Records RV_GDIError when a drawing object cannot be made. */
QZAPI BOOL WINAPI GadUtilMaskBltNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                          COLORREF transparent);
/** As UIMaskBltInvertNoFlicker.
 *  @return 1 on success, 0 on failure. Records RV_GDIError when a drawing object cannot be made. */
QZAPI BOOL WINAPI GadUtilMaskBltInvertNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                                COLORREF transparent);
/** As UIMaskBltWithFlicker.
 *  @return 1 on success, 0 on failure. Records RV_GDIError when a drawing object cannot be made. */
QZAPI BOOL WINAPI GadUtilMaskBltWithFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                            COLORREF transparent);
/** As UIBitBlt.
 *  @return 1 on success, 0 on failure. Records RV_GDIError when a drawing object cannot be made. */
QZAPI DWORD WINAPI GadUtilBitBlt(HDC hdc, RECT *rect, HBITMAP image);
/** As UIMonoBlt.
 *  @return 1 on success, 0 on failure. Records RV_GDIError when a drawing object cannot be made. */
QZAPI DWORD WINAPI GadUtilMonoBlt(HDC hdc, RECT *rect, HBITMAP image);
/** As UIMaskBlt.
 *  @return 1 on success, 0 on failure. Records RV_GDIError when a drawing object cannot be made. */
QZAPI DWORD WINAPI GadUtilMaskBlt(HDC dst, int x, int y, int w, int h, HDC src, int srcX, int srcY,
                                  COLORREF transparent);

/* Page ("Page"): a scaled sheet with its margins and a grid of cells  */
/* whose lines the user drags; the layout record is rewritten live.    */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup page Page gadget
 *  @{ */
/** The measures a Page shows and the user changes, all in one unit of the
 *  host's choosing: 21 signed 32-bit values, 84 bytes on both builds. */
typedef struct PageLayout {
    LONG reserved0;        /**< kept and returned, unused by the gadget */
    LONG columns;          /**< cells across */
    LONG rows;             /**< cells down */
    LONG marginLeft;       /**< sheet edge to the first cell */
    LONG marginTop;        /**< sheet top to the first cell */
    LONG marginRight;      /**< last cell to the sheet's right edge */
    LONG marginBottom;     /**< last cell to the sheet's bottom edge */
    LONG cellMarginLeft;   /**< cell edge to its inner area, left */
    LONG cellMarginTop;    /**< cell edge to its inner area, top */
    LONG cellMarginRight;  /**< cell edge to its inner area, right */
    LONG cellMarginBottom; /**< cell edge to its inner area, bottom */
    LONG sheetWidth;       /**< the paper across */
    LONG sheetHeight;      /**< the paper down */
    LONG cellWidth;        /**< one cell across */
    LONG cellHeight;       /**< one cell down */
    LONG minMarginLeft;    /**< the lowest marginLeft a drag leaves */
    LONG minMarginTop;     /**< the lowest marginTop a drag leaves */
    LONG minMarginRight;   /**< the lowest marginRight a drag leaves */
    LONG minMarginBottom;  /**< the lowest marginBottom a drag leaves */
    LONG reserved19;       /**< kept and returned, unused by the gadget */
    LONG reserved20;       /**< kept and returned, unused by the gadget */
} PageLayout;
/** lParam: const PageLayout*; copies the 21 values in and repaints with erase.
 *  Result 1; -1 with RV_BadParms for a null pointer. */
#define PGM_SETLAYOUT 0x401
/** lParam: PageLayout* out; the values in force, also in the middle of a drag.
 *  Result 1; -1 with RV_BadParms for a null pointer. */
#define PGM_GETLAYOUT 0x402
/** Result: the kind under the pointer or being dragged in the low 16 bits (0 margin,
 *  1 grid line, 2 cell margin, 0xFFFF none) and its handle in the high 16 bits. */
#define PGM_GETHOVER 0x403
/** Notification (WM_COMMAND, high word of wParam): a drag wrote a measure; one per move. */
#define PGN_CHANGED 1
/** Notification: painting failed; the error state has the reason. */
#define PGN_ERROR 2
/** The Page class procedure, for a host's own subclass.
 *  @return What the message's handling returns. */
QZAPI LRESULT WINAPI GadPageWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/* Files and locking, over the system's own handles                    */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup files Files and locking
 *  @{ */
/** Writes the file's buffers to disk.
 *  @return 1, or 0. Records RV_OSError, naming `name`, when the system refuses. */
QZAPI BOOL WINAPI OSCommitFile(HANDLE file, const char *name);
/** Deletes the file `name`.
 *  @return 1, or 0. Records RV_OSError, naming the file, when the system refuses. */
QZAPI BOOL WINAPI OSDeleteFile(const char *name);
/* Always 0, with RV_Failure recorded: redirection cannot be told. */
/** Whether a handle is redirected, which cannot be told.
 *  @return Always 0. Records RV_Failure. */
QZAPI BOOL WINAPI OSIsRedirectedHandle(HANDLE file);
/** Gives `destination` the time stamps of `source`.
 *  @return Whether the time could be set. */
QZAPI BOOL WINAPI OSFileSetStampSame(HANDLE source, HANDLE destination);
/* Copies `count` bytes (0xFFFFFFFF: all) from the start of `source` to the
   start of `destination`, with less memory if need be, and copies the stamps. */
/** Copies `count` bytes (0xFFFFFFFF: all) from the start of `source` to the start of `destination`,
 *  with less memory if need be, and copies the stamps.
 *  @return 1, or 0. Records RV_OSError naming the file that failed, RV_OutOfGlobalMemory when it
 *  falls back to a smaller buffer, RV_KernelError when its buffer cannot be freed. */
QZAPI BOOL WINAPI OSCopyFileSize(HANDLE destination, const char *destinationName, HANDLE source,
                                 const char *sourceName, DWORD count);
/* Locks (or unlocks) a byte range: 1 done, 2 held by another, 0 failed.
   A failure reports `reportName` in place of the file name's stem. */
/** Locks (or unlocks) a byte range of the file.
 *  @return 1 done, 2 held by another, 0 failed. Records RV_Failure or RV_ForceOSError naming
 *  `reportName` in place of the file name's stem. */
QZAPI LONG WINAPI OSLocking(HANDLE file, DWORD offset, DWORD length, BOOL unlock,
                            const char *fileName, const char *reportName);

/* ------------------------------------------------------------------ */
/* Launch: other programs, found with the user's help when missing     */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup launch Launch
 *  @{ */
/* The program named by `key` in "Tarvo Applications" of "TARVO.INI". */
/** Starts the program named by `key` in "Tarvo Applications" of "TARVO.INI", asking the user for it
 *  when it is missing.
 *  @return 1 or 0. Records RV_ExecuteError when it cannot be started. */
QZAPI BOOL WINAPI TarvoLaunch(HWND window, const char *key, char *defaultPath, LONG show);
/** Starts the program at `path` with `parameters`, asking the user for it when it is missing.
 *  @return 1 or 0. Records RV_ExecuteError when it cannot be started. */
QZAPI BOOL WINAPI CustomLaunch(HWND window, char *path, LONG show, const char *parameters);

/* ------------------------------------------------------------------ */
/* Dialog field values: lengths in tenths of a millimetre, shown in    */
/* centimetres (metric) or inches; range checks that tell the user     */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup fields Dialog field values and ranges
 *  @{ */
/** Shows a length in tenths of a millimetre in control `control`, in centimetres (`metric`) or
 *  inches.
 *  @return The result of SetDlgItemTextA. */
QZAPI BOOL WINAPI SetDlgItemReal(HWND dialog, LONG control, DWORD value, LONG metric);
/** Reads a length shown in centimetres or inches from control `control`.
 *  @return The length in tenths of a millimetre. */
QZAPI DWORD WINAPI GetDlgItemReal(HWND dialog, LONG control, LONG metric);
/** Checks that `text` is a whole number from `low` to `high`, telling the user when not.
 *  @return 1 or 0. */
QZAPI BOOL WINAPI RANGEIsUINTValid(HWND window, char *text, DWORD low, DWORD high);
/** Checks that `text` is a real number from `low` to `high` (hundredths), telling the user when
 *  not.
 *  @return 1 or 0. Records RV_OutOfLocalMemory. */
QZAPI BOOL WINAPI RANGEIsREALValid(HWND window, char *text, DWORD low, DWORD high);
/** Checks that `text` reads as a date, telling the user when not.
 *  @return Non-zero or 0. */
QZAPI BOOL WINAPI RANGEIsDATEValid(HWND window, char *text);
/** Checks that `text` reads as a time, telling the user when not.
 *  @return Non-zero or 0. */
QZAPI BOOL WINAPI RANGEIsTIMEValid(HWND window, char *text);
/* ------------------------------------------------------------------ */
/* Telephony: the service "TAPI32.DLL", loaded at run time             */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup telephony Telephony
 *  @{ */
/* Line application, line and call handles are 32-bit values; the service's
 * records (LINEDEVCAPS and so on) are passed as the service defines them. */
/* Loads the service at attach; 1 always, the service being optional. */
/** Loads the telephony service; run at attach.
 *  @return 1 always, the service being optional. */
QZAPI BOOL WINAPI TelephonyStart(DWORD reserved);
/* Uses `library` as the service from now on (null switches telephony off). */
/** Uses `library` as the telephony service from now on; null switches telephony off.
 *  @return 1 always. */
QZAPI BOOL WINAPI Telephony_Initialize(HMODULE library);
/* Registers the application with the service once its main window exists;
 * a failure switches telephony off for good. */
/** Registers the application with the service once its main window exists; a failure switches
 *  telephony off for good. */
QZAPI void WINAPI TelephonyClientStart(HWND window);
/** Whether telephony is on.
 *  @return Non-zero when it is. */
QZAPI DWORD WINAPI IsTelephonyEnabled(void);
/** The number of line devices.
 *  @return The count. */
QZAPI DWORD WINAPI Telephony_GetNumDevices(void);
/* Looks at line `device` without keeping it: 0 usable, 1 failed, 2 no
 * voice, 4 cannot make calls, 5 in use elsewhere, 6 cannot call now. */
/** Looks at line `device` without keeping it.
 *  @return 0 usable, 1 failed, 2 no voice, 4 cannot make calls, 5 in use elsewhere, 6 cannot call
 *  now. */
QZAPI DWORD WINAPI Telephony_VerifyUsableLine(HWND window, DWORD device);
/* The version agreed between 1.3 and 1.4, or 0. */
/** Agrees a version between 1.3 and 1.4 with line `device`.
 *  @return The version, or 0. */
QZAPI DWORD WINAPI Telephony_lineNegotiateLegacyAPIVersion(HWND window, DWORD device);
/* Wrappers: 0 while telephony is off, else the service's result. The first
 * argument stands where the service takes its line application; the
 * library's own goes in its place. */
/** Calls the service's lineGetDevCaps with the library's own line application.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineGetDevCaps(DWORD lineApp, DWORD device, DWORD version,
                                           DWORD extensionVersion, void *caps);
/** Calls the service's lineGetAddressCaps with the library's own line application.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineGetAddressCaps(DWORD lineApp, DWORD device, DWORD address,
                                               DWORD version, DWORD extensionVersion, void *caps);
/** Calls the service's lineOpen with the library's own line application.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineOpen(DWORD lineApp, DWORD device, DWORD *line, DWORD version,
                                     DWORD extensionVersion, DWORD_PTR callbackInstance,
                                     DWORD privileges, DWORD mediaModes, const void *callParams);
/** Calls the service's lineNegotiateAPIVersion with the library's own line application.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineNegotiateAPIVersion(DWORD lineApp, DWORD device, DWORD lowVersion,
                                                    DWORD highVersion, DWORD *version,
                                                    void *extensionId);
/** Calls the service's lineTranslateAddress with the library's own line application.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineTranslateAddress(DWORD lineApp, DWORD device, DWORD version,
                                                 const char *address, DWORD card, DWORD flags,
                                                 void *output);
/** Calls the service's lineGetTranslateCaps with the library's own line application.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineGetTranslateCaps(DWORD lineApp, DWORD version, void *caps);
/** Calls the service's lineSetCurrentLocation with the library's own line application.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineSetCurrentLocation(DWORD lineApp, DWORD location);
/** Calls the service's lineTranslateDialog with the library's own line application.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineTranslateDialog(DWORD device, DWORD version, HWND owner,
                                                const char *address);
/** Calls the service's lineConfigDialogEdit.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineConfigDialogEdit(DWORD device, HWND owner, const char *deviceClass,
                                                 const void *config, DWORD size, void *configOut);
/* The first argument of these four is not used. */
/** Calls the service's lineClose; the first argument is not used.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineClose(DWORD unused, DWORD line);
/** Calls the service's lineSetDevConfig; the first argument is not used.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineSetDevConfig(DWORD unused, DWORD device, const void *config,
                                             DWORD size, const char *deviceClass);
/** Calls the service's lineGetDevConfig; the first argument is not used.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineGetDevConfig(DWORD unused, DWORD device, void *config,
                                             const char *deviceClass);
/** Calls the service's lineGetCountry; the first argument is not used.
 *  @return 0 while telephony is off, else the service's result. */
QZAPI LONG WINAPI Telephony_lineGetCountry(DWORD unused, DWORD country, DWORD version, void *list);
/* Dials `number` on line `device` (-1: none chosen), piece by piece at its
 * dial modifiers, asking the user at each stop; the call stays open. 1 when
 * the call is under way or telephony is off. */
/** Dials `number` on line `device` (-1: none chosen), piece by piece at its dial modifiers, asking
 *  the user at each stop; the call stays open.
 *  @return 1 when the call is under way or telephony is off, 0 otherwise. Records RV_BadParms for a
 *  null number, RV_OutOfLocalMemory. */
QZAPI BOOL WINAPI Telephony_DialNumber(HWND window, LONG device, DWORD address, const char *number,
                                       const char *displayName);
/* Takes the call and its line down and sends the hang-up message with
 * `reason`, the call state that ended the call. */
/** Takes the call and its line down and sends the hang-up message with `reason`, the call state
 *  that ended the call.
 *  @return 1, or 0 if the call status could not be read. */
QZAPI BOOL WINAPI Telephony_HangupCall(HWND window, DWORD reason);
/* A hang-up sends `message` to `window` with the reason in lParam. */
/** A hang-up sends `message` to `window`, with the reason in lParam.
 *  @return The message. */
QZAPI WORD WINAPI Telephony_SetHangupMessage(HWND window, WORD message);
/* Time gadgets: Tumbler, a spin field for integers, times and reals   */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup tumbler Tumbler gadget
 *  @{ */
/* Styles. 0x10 wins over 0x20 when both are set. */
#define TUS_SELF31 0x01      /* sends itself WM_USER at create; no effect */
#define TUS_SELF32 0x02      /* the same with another lParam */
#define TUS_HOURMINUTE 0x10  /* the edit shows hours and minutes */
#define TUS_REAL 0x20        /* the edit shows a real number */
/* lParam: four 32-bit values: minimum, maximum, value, step (not 0).
 * Sets the gadget's text to the value. Result 0. */
#define TUM_SETRANGE 0x401
/* Notifications: every edit notification under its own code; EN_CHANGE
 * also on the release of a step key and ahead of EN_KILLFOCUS. */
/* ------------------------------------------------------------------ */
/* Time gadgets: TimeSetter, an hour scale with one clock and label     */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup time_setter TimeSetter gadget
 *  @{ */
/* Messages; results are 1 or -1 unless noted. No style bits. */
#define TSM_SETVIEWSTART   0x401  /* lParam: const DateTimeValue*, the top of the scale */
#define TSM_SETHOURSINVIEW 0x402  /* wParam: hours, at most 24 */
#define TSM_GETHOURSINVIEW 0x403  /* result: the hours */
#define TSM_SETBACKCOLOUR  0x404  /* lParam: COLORREF, taken as the nearest colour */
#define TSM_GETVIEWSTART   0x405  /* lParam: DateTimeValue* out */
#define TSM_GETBACKCOLOUR  0x406  /* result: the colour */
#define TSM_GETVALUE       0x407  /* lParam: DateTimeValue* out */
#define TSM_SETVALUE       0x408  /* lParam: const DateTimeValue*; sets the text, TSN_TIMECHANGED */
#define TSM_SETFINESTEP    0x409  /* wParam low byte: minutes, unchecked */
#define TSM_SETCOARSESTEP  0x40A  /* wParam low byte: minutes, 1 to 59 */
#define TSM_GETFINESTEP    0x40B  /* result: minutes, 255 without a record */
#define TSM_GETCOARSESTEP  0x40C  /* result: minutes, 255 without a record */
/* Notifications (WM_COMMAND, code in the high word of wParam). */
#define TSN_ERROR       100  /* a step failed; the error state has the reason */
#define TSN_TIMECHANGED 200  /* the window text is the new time; also every timer tick */
/** The gadget gained the focus. */
#define TSN_SETFOCUS    300
/** The gadget lost the focus. */
#define TSN_KILLFOCUS   400
/* The class procedure, for a host's own subclass. */
/** The TimeSetter class procedure, for a host's own subclass.
 *  @return What the message's handling returns. */
QZAPI LRESULT WINAPI GadTSWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/* Time gadgets: DateTracker, a month calendar                         */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup date_tracker DateTracker gadget
 *  @{ */
/* lParam: const DateTimeValue*. Years above 2100 are refused. Sets the
 * date and the window text and repaints. 1, or 100 when refused. */
#define DTKM_SETDATE 0x402
/* lParam: DateTimeValue* out; the gadget's own hour, minute and second are
 * cleared first. 1, or 100 when there is no valid date to give. */
#define DTKM_GETDATE 0x403
/* Notifications. */
#define DTKN_ERROR 100        /* WM_SETTEXT with a text that is no date */
#define DTKN_DATECHOSEN 200   /* Enter, Tab, or a release on a day cell */
/** The gadget gained the focus. */
#define DTKN_SETFOCUS 300
/** The gadget lost the focus. */
#define DTKN_KILLFOCUS 400
#define DTKN_DATECHANGED 500  /* the date moved by key, button, drag or text */
/* The failure answer of the two messages. */
#define DTK_FAILURE 100
/* Time gadgets: TimeTracker, an hour scale with one appointment       */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup time_tracker TimeTracker gadget
 *  @{ */
/* Styles. */
#define TTS_LIVETEXT    0x01  /* every drag move sets the text, TTN_TIMECHANGED */
#define TTS_SINGLEDAY   0x02  /* appointment and view stay on their day */
#define TTS_TRACKNOTIFY 0x04  /* drag moves and TTM_SETSTARTKEEP send TTN_TRACKING */
#define TTS_ENDTEXT     0x08  /* the window text is the end, not the start */
#define TTS_NOFOCUS     0x10  /* a click leaves the focus where it is */
#define TTS_KEEPVISIBLE 0x20  /* TTM_SETSTART and TTM_SETEND scroll to show it */
/* Messages: 1 for success, -1 for failure, unless said otherwise. */
#define TTM_SETVIEWSTART   0x401  /* lParam: const DateTimeValue* */
#define TTM_SETHOURSINVIEW 0x402  /* wParam: 1 to 24 */
#define TTM_SETBACKCOLOUR  0x403  /* lParam: COLORREF */
#define TTM_GETVIEWSTART   0x404  /* lParam: DateTimeValue* out */
#define TTM_GETBACKCOLOUR  0x405  /* the colour */
#define TTM_GETSTART       0x406  /* lParam: DateTimeValue* out */
#define TTM_SETSTART       0x407  /* lParam: const DateTimeValue* */
#define TTM_GETEND         0x408  /* lParam: DateTimeValue* out */
#define TTM_SETEND         0x409  /* lParam: const DateTimeValue* */
#define TTM_SETDURATION    0x40A  /* lParam: MAKELONG(minutes, hours) */
#define TTM_GETDURATION    0x40B  /* MAKELONG(minutes, hours) */
#define TTM_GETFINESTEP    0x40C  /* minutes, 255 without a record */
#define TTM_GETCOARSESTEP  0x40D  /* minutes, 255 without a record */
#define TTM_SETFINESTEP    0x40E  /* wParam low byte: minutes, not checked */
#define TTM_SETCOARSESTEP  0x40F  /* wParam low byte: minutes, 1 to 59 */
/** The hours in view. */
#define TTM_GETHOURSINVIEW 0x410
#define TTM_SETSTARTKEEP   0x411  /* lParam: const DateTimeValue*; keeps the duration */
#define TTM_ADDBUSY        0x412  /* wParam: id; lParam: const BusyInterval* */
#define TTM_REMOVEBUSY     0x413  /* wParam: id */
#define TTM_GETIDEALSIZE   0x414  /* MAKELONG(width, height) */
#define TTM_SETBUSYLIST    0x415  /* wParam: count; lParam: const BusyInterval array */
/** Removes every busy time. */
#define TTM_CLEARBUSY      0x416
#define TTM_TIMETOY        0x417  /* lParam: const DateTimeValue*; client y or -1 */
#define TTM_GETOWNBARCOLOUR 0x418 /* 0x00FF00 free, 0x0000FF clashing */
#define TTM_FINDFREESLOT   0x419  /* lParam: FreeSlotRequest*; 0 done, 1 at the limit, -1 */
/* Notifications (high word of WM_COMMAND's wParam). */
#define TTN_ERROR       100  /* also after an arrow button is released */
/** The start or end changed; the window text is the new time. */
#define TTN_TIMECHANGED 200
/** The gadget gained the focus. */
#define TTN_SETFOCUS    300
/** The gadget lost the focus; a running drag was ended first. */
#define TTN_KILLFOCUS   400
/** The view has settled at a new place. */
#define TTN_VIEWCHANGED 500
/** A drag step under TTS_TRACKNOTIFY. */
#define TTN_TRACKING    600
/** Each scroll step, and the end of an automatic scroll. */
#define TTN_SCROLLED    700
/* A busy time of the lanes, 24 bytes, filled by the host. */
typedef struct BusyInterval {
    /** When the busy time starts. */
    DateTimeValue start;
    DWORD lengthMinutes;  /* 0: overlaps nothing */
    DWORD id;             /* the host's key for TTM_REMOVEBUSY */
    DWORD lane;           /* written by the gadget */
    DWORD flags;          /* kept, not read */
} BusyInterval;
/* The search for free time. A limit of all 2s means no limit. */
typedef struct FreeSlotRequest {
    DateTimeValue limit;     /* overwritten: time cleared, less the fine step */
    DWORD dayOpen;           /* minutes from midnight */
    /** Minutes from midnight at which the working day ends. */
    DWORD dayClose;
    DWORD weekdayOpen[7];    /* 1440 or more: the day is not worked */
    /** Per weekday, the minutes at which it ends. */
    DWORD weekdayClose[7];
    /** Non-zero: the per-weekday hours hold, not dayOpen and dayClose. */
    DWORD useWeekdayHours;
    DWORD found;             /* out: 1 if a slot was set */
    DWORD longestGap;        /* at the limit: take the longest gap */
    /** Non-zero: Saturdays and Sundays are worked too. */
    DWORD includeWeekends;
} FreeSlotRequest;
typedef char BusyInterval_is_24_bytes[sizeof(BusyInterval) == 24 ? 1 : -1];
typedef char FreeSlotRequest_is_88_bytes[sizeof(FreeSlotRequest) == 88 ? 1 : -1];
/* The class procedure, for a host's subclass. */
/** The TimeTracker class procedure, for a host's own subclass.
 *  @return What the message's handling returns. */
QZAPI LRESULT WINAPI GadTTWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/* ------------------------------------------------------------------ */
/* QzCombo ("QzCombo"): a combo box that drops down any control         */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup qz_combo QzCombo gadget
 *  A strip with an edit field (or, in the static form, its window text)
 *  and an arrow button, over a child control that drops down. While open
 *  the combo is a top-level window, every ancestor is subclassed so that a
 *  click anywhere closes it, and QCM_SHOWDROPDOWN returns only once it has
 *  closed again.
 *  @{ */
/* Style bits. */
#define QCS_CLOSEONCHOICE 0x0001  /* the drop-down closes as soon as a choice is made */
#define QCS_STATIC        0x0002  /* no edit field: the window text is drawn in the strip */
#define QCS_NOSCREENCOPY  0x0004  /* keep no picture of the screen under the drop-down */
/* Child kinds: the low byte of wParam of QCM_SETCHILD. */
#define QCK_TIMETRACKER 1  /* "TimeTracker" */
#define QCK_LISTBOX     2  /* "QzListBox": its text is the separated list of choices */
#define QCK_TIMESETTER  3  /* "TimeSetter" */
#define QCK_DATETRACKER 4  /* "DateTracker" */
#define QCK_PLAINLIST   5  /* "ListBox", the system's own */
#define QCK_NONE        6  /* no child; the combo is repainted */
#define QCK_VLISTBOX    7  /* "QzVListBox", given VLS_NOTIFY */
/* Messages; results are 1 or -1 unless noted. */
#define QCM_SETCHILD        0x401  /* wParam: kind | identifier << 8; lParam: the child's style */
#define QCM_SETARROWS       0x402  /* wParam: scroll widths the child is inset by; lParam: 1 lays it at the left */
#define QCM_GETCHILD        0x403  /* result: the child, or -1 */
#define QCM_GETEDIT         0x404  /* result: the edit field, null in the static form */
#define QCM_SHOWDROPDOWN    0x405  /* wParam: 1 opens (returns after the close), 0 closes; lParam: QCC_ close mode */
#define QCM_ISOPEN          0x406  /* result: 1 while open */
#define QCM_SETSTRIPHEIGHT  0x407  /* wParam: strip height, 0 for the font's */
#define QCM_GETTEXTSIZE     0x408  /* result: text length + 2 */
#define QCM_GETTEXT         0x40A  /* wParam: buffer size; lParam: buffer; a list box's choices as a double-zero list */
#define QCM_CHILDTOTEXT     0x411  /* copies the child's text to the edit field and selects it */
#define QCM_SETEXTRAHEIGHT  0x412  /* wParam: height of the drop-down, at most half the screen less the strip */
#define QCM_RELAYOUT        0x413  /* lays out again with the client size */
#define QCM_SETTEXT         0x429  /* lParam: text; for a list box a double-zero list, at most 1024 bytes */
/* Close modes, lParam of QCM_SHOWDROPDOWN with 0. */
#define QCC_ORDINARY 0  /* sends QCN_DROPDOWN and gives the focus to the edit field (or the parent) */
#define QCC_FOCUS    1  /* the focus went elsewhere: no notification */
#define QCC_ANCESTOR 2  /* as QCC_FOCUS, from the ancestors' subclass */
/* Notifications (WM_COMMAND, code in the high word of wParam). The edit
 * field's and the child's own codes are passed on beside these. */
#define QCN_ERROR    0x64   /* the arrow could not be drawn or tracked */
#define QCN_DROPDOWN 0xC8   /* the drop-down opens, and an ordinary close */
#define QCN_PRESSED  0x12C  /* the user pressed on the combo, or Alt+Down in its edit field */
/** The QzCombo class procedure, for a host's own subclass.
 *  @return What the message's handling returns. */
QZAPI LRESULT WINAPI GadComboWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** The procedure an open combo puts on each of its ancestors: a click, an
 *  activation or a menu closes the combo, then the message goes on.
 *  @return What the ancestor's own procedure returns. Records RV_Failure when
 *  the window carries no combo's property. */
QZAPI LRESULT WINAPI GadComboParentSubClassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** The procedure of a combo's edit field: paging keys go to the child,
 *  Alt+Down opens.
 *  @return What the edit field's own procedure returns, or 0 for a key it takes. */
QZAPI LRESULT WINAPI GadComboEditSubProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** The procedure of a combo's dropped child: Escape, Tab and Return close.
 *  @return What the child's own procedure returns. */
QZAPI LRESULT WINAPI GadComboDropDownSubClassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/* ------------------------------------------------------------------ */
/* Virtual list box ("QzVListBox")                                     */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup vlistbox Virtual list box (QzVListBox)
 *  @{ */
/* Style bits (the low word of the window style). */
/** Rows are measured and drawn by the callback. */
#define VLS_OWNERDRAW     0x0001
/** VLN_SELCHANGE and VLN_DBLCLK go to the callback. */
#define VLS_NOTIFY        0x0004
/** Extended selection: Ctrl and Shift with mouse and keys. */
#define VLS_EXTENDEDSEL   0x0010
/** With VLS_OWNERDRAW: the list keeps texts. */
#define VLS_STRINGS       0x0020
/** Each click or Space toggles one item. */
#define VLS_MULTIPLESEL   0x0040
/** WM_CHAR goes to the callback as VLN_CHAR. */
#define VLS_WANTCHARS     0x0100
/** The list moves at the thumb's release, not while it is dragged. */
#define VLS_NOTHUMBTRACK  0x0200
/** QzDVListBox: paint through a memory bitmap. */
#define VLS_DOUBLEBUFFER  0x0400
/** QzDVListBox: the thumb stands for a place in the alphabet. */
#define VLS_ALPHATHUMB    0x0800
/* Callback codes; the third argument points at the request record named. */
#define VLN_INIT       1   /* VLINITREQUEST */
#define VLN_LOAD       2   /* VLLOADREQUEST */
#define VLN_RELEASE    5   /* VLRELEASEREQUEST */
#define VLN_MEASURE    6   /* VLMEASUREREQUEST */
#define VLN_DRAW       7   /* VLDRAWREQUEST */
#define VLN_SELCHANGE  8   /* one word, 0 */
#define VLN_ERROR      9   /* null */
#define VLN_DBLCLK     10  /* one word: the index under the pointer */
#define VLN_SETFOCUS   11  /* VLFOCUSREQUEST: the window that lost the focus */
#define VLN_KILLFOCUS  12  /* VLFOCUSREQUEST: the window that gains it */
#define VLN_CHAR       14  /* VLCHARREQUEST */
#define VLN_FIND       15  /* VLFINDREQUEST */
#define VLN_GETTEXT    16  /* VLGETTEXTREQUEST */
#define VLN_DESTROY    19  /* null */
/* VLN_DRAW state bits. */
/** The row is selected. */
#define VLDS_SELECTED  0x01
/** The row has the focus rectangle. */
#define VLDS_FOCUS     0x10
/** VLN_INIT: the rows to load first and the load batch. */
typedef struct VLINITREQUEST { DWORD firstRows; DWORD loadBatch; } VLINITREQUEST;
/** @var VLINITREQUEST::firstRows
 *  Rows loaded first. */
/** @var VLINITREQUEST::loadBatch
 *  Items per load. */
/** VLN_LOAD: the items to put in the cache. */
typedef struct VLLOADREQUEST { DWORD first; DWORD last; } VLLOADREQUEST;
/** @var VLLOADREQUEST::first
 *  The first item to load. */
/** @var VLLOADREQUEST::last
 *  The last item to load. */
/** VLN_RELEASE: an item leaves the cache. */
typedef struct VLRELEASEREQUEST { DWORD index; LPARAM itemData; LPSTR text; } VLRELEASEREQUEST;
/** @var VLRELEASEREQUEST::index
 *  The item. */
/** @var VLRELEASEREQUEST::itemData
 *  Its item data. */
/** @var VLRELEASEREQUEST::text
 *  Its text, or null. */
/** VLN_MEASURE: the callback sets the row size. */
typedef struct VLMEASUREREQUEST {
    HDC dc; DWORD reserved1; LONG width; LONG height; DWORD reserved2;
} VLMEASUREREQUEST;
/** @var VLMEASUREREQUEST::dc
 *  A device context of the list. */
/** @var VLMEASUREREQUEST::reserved1
 *  Not used. */
/** @var VLMEASUREREQUEST::width
 *  The row width. */
/** @var VLMEASUREREQUEST::height
 *  The row height. */
/** @var VLMEASUREREQUEST::reserved2
 *  Not used. */
/** VLN_DRAW: the callback draws a row. */
typedef struct VLDRAWREQUEST {
    DWORD index; DWORD state; HDC dc; RECT rect; LPARAM itemData; LPCSTR text;
} VLDRAWREQUEST;
/** @var VLDRAWREQUEST::index
 *  The item. */
/** @var VLDRAWREQUEST::state
 *  VLDS_ bits. */
/** @var VLDRAWREQUEST::dc
 *  Where to draw. */
/** @var VLDRAWREQUEST::rect
 *  The row. */
/** @var VLDRAWREQUEST::itemData
 *  The item data. */
/** @var VLDRAWREQUEST::text
 *  The text, or null. */
/** VLN_SETFOCUS and VLN_KILLFOCUS: the other window. */
typedef struct VLFOCUSREQUEST { HWND window; } VLFOCUSREQUEST;
/** @var VLFOCUSREQUEST::window
 *  The window that lost or gains the focus. */
/** VLN_CHAR: a character typed into the list. */
typedef struct VLCHARREQUEST { DWORD character; DWORD repeat; } VLCHARREQUEST;
/** @var VLCHARREQUEST::character
 *  The character. */
/** @var VLCHARREQUEST::repeat
 *  The repeat count. */
/** VLN_FIND: the callback finds the item that starts with a text. */
typedef struct VLFINDREQUEST { LPCSTR text; DWORD index; } VLFINDREQUEST;
/** @var VLFINDREQUEST::text
 *  The text typed. */
/** @var VLFINDREQUEST::index
 *  Out: the item found. */
/** VLN_GETTEXT: the callback copies an item's text. */
typedef struct VLGETTEXTREQUEST { LPSTR buffer; DWORD index; DWORD size; } VLGETTEXTREQUEST;
/** @var VLGETTEXTREQUEST::buffer
 *  Where the text goes. */
/** @var VLGETTEXTREQUEST::index
 *  The item. */
/** @var VLGETTEXTREQUEST::size
 *  The buffer's size. */
#if !defined(_WIN64)
typedef char VLRELEASEREQUEST_is_12_bytes[sizeof(VLRELEASEREQUEST) == 12 ? 1 : -1];
typedef char VLMEASUREREQUEST_is_20_bytes[sizeof(VLMEASUREREQUEST) == 20 ? 1 : -1];
typedef char VLDRAWREQUEST_is_36_bytes[sizeof(VLDRAWREQUEST) == 36 ? 1 : -1];
typedef char VLFINDREQUEST_is_8_bytes[sizeof(VLFINDREQUEST) == 8 ? 1 : -1];
typedef char VLGETTEXTREQUEST_is_12_bytes[sizeof(VLGETTEXTREQUEST) == 12 ? 1 : -1];
#endif
/* The host's callback: window, code, request record, callback data. */
typedef LRESULT(CALLBACK *VLISTBOXPROC)(HWND window, UINT code, void *request, LPARAM data);
/* A total or cache size of (DWORD)-1 means unknown or the default (4096). */
/** Gives the list its item count, cache size, load batch and callback; the list asks the callback
 *  for rows as they come into view.
 *  @return Success. Records RV_OutOfLocalMemory when the cache cannot be had. */
QZAPI BOOL WINAPI VListBox_Initialize(HWND list, DWORD total, DWORD cacheSize, DWORD loadBatch,
                                      VLISTBOXPROC callback, LPARAM data);
/** Puts the item data of item `index` in the cache, during VLN_LOAD.
 *  @return Success. */
QZAPI BOOL WINAPI VListBox_AddItemData(HWND list, DWORD index, LPARAM itemData);
/* The text is copied into the list's cache. */
/** Puts the text and item data of item `index` in the cache, during VLN_LOAD; the text is copied.
 *  @return Success. Records RV_OutOfLocalMemory when the copy cannot be had. */
QZAPI BOOL WINAPI VListBox_AddString(HWND list, DWORD index, LPCSTR text, LPARAM itemData);
/** Changes the number of items.
 *  @return Success. */
QZAPI BOOL WINAPI VListBox_SetNumItems(HWND list, DWORD total);
/** The number of items.
 *  @return The count; -1 for a window without a list record. */
QZAPI DWORD WINAPI VListBox_GetNumItems(HWND list);
/** The selected item of a single-selection list.
 *  @return Its index; -1 on a multiple-selection list. */
QZAPI DWORD WINAPI VListBox_GetCurSel(HWND list);
/** Selects item `index` of a single-selection list.
 *  @return Success; fails on a multiple-selection list. */
QZAPI BOOL WINAPI VListBox_SetCurSel(HWND list, DWORD index);
/** The item with the focus rectangle.
 *  @return Its index; -1 for a window without a list record. */
QZAPI DWORD WINAPI VListBox_GetCaretIndex(HWND list);
/** Moves the focus rectangle to item `index`.
 *  @return Success. */
QZAPI BOOL WINAPI VListBox_SetCaretIndex(HWND list, DWORD index);
/* The flag is not used: the item is always selected. */
/** Adds item `index` to the selection of a multiple-selection list; `flag` is not used.
 *  @return Success; fails on a single-selection list. */
QZAPI BOOL WINAPI VListBox_SetSel(HWND list, BOOL flag, DWORD index);
/** Whether item `index` is selected.
 *  @return TRUE or FALSE. */
QZAPI BOOL WINAPI VListBox_GetSel(HWND list, DWORD index);
/** The number of selected items.
 *  @return The count. */
QZAPI DWORD WINAPI VListBox_GetSelCount(HWND list);
/* The buffer must hold VListBox_GetSelCount indices. */
/** Copies the selected indices, ascending, into `buffer`.
 *  @return Success. Records RV_Failure when the selection cannot be read. */
QZAPI BOOL WINAPI VListBox_GetSelItems(HWND list, DWORD *buffer);
/* The array must be sorted ascending. */
/** Replaces the selection by `count` indices sorted ascending.
 *  @return Success. */
QZAPI BOOL WINAPI VListBox_SetSelItems(HWND list, DWORD count, const DWORD *items);
/** The item in the top row.
 *  @return Its index. */
QZAPI DWORD WINAPI VListBox_GetTopIndex(HWND list);
/** Scrolls item `index` to the top row.
 *  @return Success. */
QZAPI BOOL WINAPI VListBox_SetTopIndex(HWND list, DWORD index);
/** The item data of item `index`, loading it if need be.
 *  @return The data, or -1. */
QZAPI LPARAM WINAPI VListBox_GetItemData(HWND list, DWORD index);
/** Whether item `index` is in the cache.
 *  @return TRUE or FALSE. */
QZAPI BOOL WINAPI VListBox_IsItemCached(HWND list, DWORD index);
/* The buffer must hold VListBox_GetTextLen + 1 characters. */
/** Copies the text of item `index` into `buffer`, if it has one.
 *  @return Always 1. */
QZAPI BOOL WINAPI VListBox_GetText(HWND list, DWORD index, LPSTR buffer);
/** The length of the text of item `index`.
 *  @return The length, 0 if none. */
QZAPI DWORD WINAPI VListBox_GetTextLen(HWND list, DWORD index);

/* ------------------------------------------------------------------ */
/* Dynamic virtual list box ("QzDVListBox")                            */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup dvlistbox Dynamic virtual list box (QzDVListBox)
 *  @{ */
/* Items are known by references (blocks of a fixed size the host gives
 * at DVListBox_Initialize); indices are signed positions that the list
 * re-bases when the host reports an end of its data. The style bits and
 * the codes VLN_RELEASE to VLN_CHAR are those of the QzVListBox. */
#define DVL_NOINDEX        ((LONG)0x80000000)
#define DVL_SENTINELTOP    ((LONG)0x80000001) /* VLN_LOAD: from the real first item */
#define DVL_SENTINELBOTTOM ((LONG)0x7FFFFFFF) /* VLN_LOAD: up to the real last item */
/* Codes of its own; VLN_FIND carries DVLFINDREQUEST here. */
#define VLN_SELRANGE   16  /* DVLSELRANGEREQUEST */
#define VLN_SEARCH     17  /* DVLSEARCHREQUEST */
/* VLN_INIT carries a VLINITREQUEST, VLN_DRAW a VLDRAWREQUEST (the index
 * signed), VLN_RELEASE a DVLRELEASEREQUEST. */
/** VLN_LOAD: the items to put in the cache. */
typedef struct DVLLOADREQUEST { LONG first; DWORD count; LONG effectiveCount; } DVLLOADREQUEST;
/** @var DVLLOADREQUEST::first
 *  The first item to load, or a sentinel. */
/** @var DVLLOADREQUEST::count
 *  How many to load. */
/** @var DVLLOADREQUEST::effectiveCount
 *  Out: how many the host loaded. */
/** VLN_RELEASE: an item leaves the cache. */
typedef struct DVLRELEASEREQUEST { LONG index; LPARAM itemData; LPSTR text; } DVLRELEASEREQUEST;
/** @var DVLRELEASEREQUEST::index
 *  The item. */
/** @var DVLRELEASEREQUEST::itemData
 *  Its item data. */
/** @var DVLRELEASEREQUEST::text
 *  Its text, or null. */
/** VLN_FIND: the host places an item given by its reference. */
typedef struct DVLFINDREQUEST { const void *ref; LONG index; DWORD reload; } DVLFINDREQUEST;
/** @var DVLFINDREQUEST::ref
 *  The reference. */
/** @var DVLFINDREQUEST::index
 *  Out: the item's index. */
/** @var DVLFINDREQUEST::reload
 *  Out: non-zero to load the cache again. */
/** VLN_SELRANGE: a range of items changes selection. */
typedef struct DVLSELRANGEREQUEST { LONG first; DWORD count; DWORD mode; } DVLSELRANGEREQUEST;
/** @var DVLSELRANGEREQUEST::first
 *  The first item. */
/** @var DVLSELRANGEREQUEST::count
 *  How many. */
/** @var DVLSELRANGEREQUEST::mode
 *  0 deselect, 1 select, else toggle. */
/** VLN_SEARCH: the host finds an item by a text. */
typedef struct DVLSEARCHREQUEST {
    LPCSTR text; DWORD mode; LONG index; DWORD reload; void *refBuffer;
} DVLSEARCHREQUEST;
/** @var DVLSEARCHREQUEST::text
 *  The text. */
/** @var DVLSEARCHREQUEST::mode
 *  How to match. */
/** @var DVLSEARCHREQUEST::index
 *  Out: the item's index. */
/** @var DVLSEARCHREQUEST::reload
 *  Out: non-zero to load the cache again. */
/** @var DVLSEARCHREQUEST::refBuffer
 *  Out: the item's reference. */
#if defined(_M_IX86) || defined(__i386__)
typedef char DVLRELEASEREQUEST_is_12_bytes[sizeof(DVLRELEASEREQUEST) == 12 ? 1 : -1];
typedef char DVLFINDREQUEST_is_12_bytes[sizeof(DVLFINDREQUEST) == 12 ? 1 : -1];
typedef char DVLSEARCHREQUEST_is_20_bytes[sizeof(DVLSEARCHREQUEST) == 20 ? 1 : -1];
#endif
/** The QzDVListBox class procedure, for a host's own subclass.
 *  @return What the message's handling returns. */
QZAPI LRESULT WINAPI DVListBox_WndProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam);
/* Total -1: unknown; cache size -1: 4096. */
/** Gives the list its item count, cache size, load batch, reference size and callback.
 *  @return Success. Records RV_OutOfLocalMemory when the cache cannot be had. */
QZAPI BOOL WINAPI DVListBox_Initialize(HWND list, LONG total, DWORD cacheSize, DWORD loadBatch,
                                       DWORD refSize, VLISTBOXPROC callback, LPARAM data);
/** Puts the reference and item data of item `index` in the cache, during VLN_LOAD.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_AddItemData(HWND list, LONG index, const void *ref, LPARAM itemData);
/** Puts the reference, text and item data of item `index` in the cache, during VLN_LOAD; the text
 *  is copied.
 *  @return Success. Records RV_OutOfLocalMemory when the copy cannot be had. */
QZAPI BOOL WINAPI DVListBox_AddString(HWND list, LONG index, const void *ref, LPCSTR text,
                                      LPARAM itemData);
/** Changes the number of items; -1 for unknown.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_SetNumItems(HWND list, LONG total);
/** The effective number of items.
 *  @return The count; -1 for a window without a list record. */
QZAPI LONG WINAPI DVListBox_GetNumItems(HWND list);
/** The selected item of a single-selection list.
 *  @return Its index; DVL_NOINDEX on a multiple-selection list or without a record. */
QZAPI LONG WINAPI DVListBox_GetCurSel(HWND list);
/** Selects item `index` of a single-selection list.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_SetCurSel(HWND list, LONG index);
/** Copies the reference of the selected item into `buffer`.
 *  @return Success; 0 on a multiple-selection list or with nothing selected. */
QZAPI BOOL WINAPI DVListBox_GetCurSelRef(HWND list, void *buffer);
/** Selects the item with reference `ref` of a single-selection list.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_SetCurSelRef(HWND list, const void *ref);
/** The item with the focus rectangle.
 *  @return Its index; -1 for a window without a list record. */
QZAPI LONG WINAPI DVListBox_GetCaretIndex(HWND list);
/** Moves the focus rectangle to item `index`.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_SetCaretIndex(HWND list, LONG index);
/** Copies the reference of the item with the focus rectangle into `buffer`.
 *  @return Success; 0 if there is none. */
QZAPI BOOL WINAPI DVListBox_GetCaretRef(HWND list, void *buffer);
/** Moves the focus rectangle to the item with reference `ref`.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_SetCaretRef(HWND list, const void *ref);
/** As DVListBox_SetCaretRef; with `reload` the cache is loaded again around it.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_SetCaretRefNReload(HWND list, const void *ref, BOOL reload);
/** Whether the item with reference `ref` is selected, on a multiple-selection list.
 *  @return TRUE or FALSE. */
QZAPI BOOL WINAPI DVListBox_GetSelRef(HWND list, const void *ref);
/* Mode 0 deselects, 1 selects, any other value toggles. */
/** Deselects (0), selects (1) or toggles the item with reference `ref`, on a multiple-selection
 *  list.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_SetSelRef(HWND list, DWORD mode, const void *ref);
/** Whether item `index` is selected; loads the item.
 *  @return TRUE or FALSE. */
QZAPI BOOL WINAPI DVListBox_GetSel(HWND list, LONG index);
/** Deselects (0), selects (1) or toggles item `index`.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_SetSel(HWND list, DWORD mode, LONG index);
/** The number of selected items.
 *  @return The count. */
QZAPI DWORD WINAPI DVListBox_GetSelCount(HWND list);
/* The buffer must hold DVListBox_GetSelCount references. */
/** Copies the references of the selected items into `buffer`.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_GetSelItems(HWND list, void *buffer);
/* The references must be sorted ascending by their unsigned bytes. */
/** Replaces the selection by `count` references sorted ascending by their bytes.
 *  @return Success. Records RV_OutOfGlobalMemory when the selection cannot be kept. */
QZAPI BOOL WINAPI DVListBox_SetSelItems(HWND list, DWORD count, const void *refs);
/** The item in the top row.
 *  @return Its index. */
QZAPI LONG WINAPI DVListBox_GetTopIndex(HWND list);
/** Scrolls item `index` to the top row; with `reload` the cache is loaded again.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_SetTopIndex(HWND list, LONG index, BOOL reload);
/** The item data of item `index`.
 *  @return The data; -1 on failure or when the list is empty. */
QZAPI LPARAM WINAPI DVListBox_GetItemData(HWND list, LONG index);
/** Copies the reference of item `index` into `buffer`.
 *  @return Success; 0 when the reference size or the count is 0. */
QZAPI BOOL WINAPI DVListBox_GetItemRef(HWND list, LONG index, void *buffer);
/** Whether item `index` is in the cache.
 *  @return TRUE or FALSE. */
QZAPI BOOL WINAPI DVListBox_IsItemCached(HWND list, LONG index);
/** Whether the row of item `index` is on screen.
 *  @return TRUE or FALSE. */
QZAPI BOOL WINAPI DVListBox_IsItemVisible(HWND list, LONG index);
/** Copies the text of item `index` into `buffer`, if it has one.
 *  @return Always 1. */
QZAPI BOOL WINAPI DVListBox_GetText(HWND list, LONG index, LPSTR buffer);
/** The length of the text of item `index`.
 *  @return The length, or 0. */
QZAPI DWORD WINAPI DVListBox_GetTextLen(HWND list, LONG index);
/* Called by the host inside VLN_LOAD when it meets an end of its data. */
/** Tells the list, inside VLN_LOAD, that item `index` is the first of the host's data.
 *  @return 1. */
QZAPI BOOL WINAPI DVListBox_SetAbsoluteTop(HWND list, LONG index);
/** Tells the list, inside VLN_LOAD, that item `index` is the last of the host's data.
 *  @return 1. */
QZAPI BOOL WINAPI DVListBox_SetAbsoluteBottom(HWND list, LONG index);
/** Tells the list, inside VLN_LOAD, that the load ran past the top of the host's data.
 *  @return 1. */
QZAPI BOOL WINAPI DVListBox_SetPastTop(HWND list, LONG unused);
/** Tells the list, inside VLN_LOAD, that the load ran past the bottom of the host's data.
 *  @return 1. */
QZAPI BOOL WINAPI DVListBox_SetPastBottom(HWND list, LONG unused);
/** Finds the item with reference `ref` in the cache, its index into `*index`.
 *  @return Whether it was found. */
QZAPI BOOL WINAPI DVListBox_FindItemInCache(HWND list, const void *ref, LONG *index);
/** Repaints every row.
 *  @return Success. */
QZAPI BOOL WINAPI DVListBox_Invalidate(HWND list);
/** Repaints the row of item `index`.
 *  @return Success; 1 also when the row is off screen. */
QZAPI BOOL WINAPI DVListBox_InvalidateItem(HWND list, LONG index);
/** @} */
/* ------------------------------------------------------------------ */
/* QzListBox: a multiple-selection list whose window text is the       */
/* selection joined by the regional list separator (OSGetSeparator).   */
/* List-box messages (0x180 and above) go to the inner list box.       */
/* ------------------------------------------------------------------ */
/** @defgroup qz_listbox Multiple-selection text list (QzListBox)
 *  @{ */
#define QLBS_OWNERDRAW      0x0010  /* items drawn by the parent (owner-drawn, with strings) */
#define QLBN_ERROR          0xFFFE  /* the text and the selection could not be brought together */
/** The QzListBox class procedure, for a host's own subclass.
 *  @return What the message's handling returns; -1 for a list-box message without an inner list. */
QZAPI LRESULT WINAPI GadLBWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** The procedure of the inner list box: posts Escape, Return, Tab and Alt+Up to the gadget too.
 *  @return What the list box's own procedure returns. */
QZAPI LRESULT WINAPI GadLBListboxSubProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** @} */
/* ------------------------------------------------------------------ */
/* Colour palette controls ("ccpal_popup"): a combo box whose one item */
/* shows a colour of a fixed table of 256, and whose drop-down list is */
/* a grid of 16 favourites over the table. Registered by               */
/* RegisterGadgets. The parent is told of a choice by WM_COMMAND with  */
/* code CCPN_CHOICE.                                                   */
/* ------------------------------------------------------------------ */
/** @defgroup colour_palette Colour palette controls (ccpal_popup)
 *  @{ */
#define CCPM_SETINDEX       0x487   /* lParam a colour index: selects it, moves the frame; returns 0 */
#define CCPM_GETINDEX       0x488   /* the colour index, or -1 unless the list has exactly one item */
#define CCPM_SETRGB         0x489   /* lParam a COLORREF: as ccPalSetRGB */
#define CCPM_GETRGB         0x48A   /* lParam the address of a COLORREF: as ccPalGetRGB */
#define CCPM_CLOSEDROP      0x48B   /* closes the drop-down of the colour control that has the focus */
#define CCPN_CHOICE         1       /* a colour index was set (by the grid, a key or a message) */
/** Registers the class "ccpal_popup" for `instance`; a second call does nothing.
 *  @return 0, or -1 when the class or its layout cannot be made. */
QZAPI LONG WINAPI ccRegisterClass(HINSTANCE instance);
/** Unregisters "ccpal_popup" and frees the grid, the palette and the label text.
 *  @return 0. */
QZAPI LONG WINAPI ccUnregisterClass(HINSTANCE instance);
/** Sets the label written before a colour's number in the open grid (copied).
 *  @return 0, or -1 for a null text or no memory. */
QZAPI LONG WINAPI ccSetColorString(LPCSTR text);
/** Selects the table colour nearest to `colour` (sum of the channel differences; the first of
 *  equal distances; index 0 is never chosen).
 *  @return What CCPM_SETINDEX returns; -1 for a null window. */
QZAPI LONG WINAPI ccPalSetRGB(HWND control, COLORREF colour);
/** The table colour of the control's index.
 *  @return 0, or -1 unless the list holds exactly one item with an index from 0 to 255. */
QZAPI LONG WINAPI ccPalGetRGB(HWND control, COLORREF *colour);
/* Dialog tabs ("DialogTab"): a strip of tabs over a page whose        */
/* controls are children of the gadget's parent. A tab is a dialog     */
/* template, or a list of existing controls shown (inclusion) or       */
/* hidden (exclusion) while it is current. Identifier lists end in 0.  */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup dialog_tabs Dialog tabs (DialogTab)
 *  @{ */
#define TABS_KEEPTEXT       0x0002  /* a change of tab leaves the texts of statics and buttons */
#define TABS_OWNCONTROLS    0x0004  /* every tab makes its own controls; none are shared by id */
#define TABN_CHANGING       0x64    /* before any request to change tab, even one that changes nothing */
#define TABN_CHANGED        0xC8    /* the current tab has changed */
#define TAB_LAST            ((DWORD)-1)  /* stands for the last tab */
/* label: text, or a string id (below 65536) in `module`. */
/** Adds a tab whose page is dialog template `templateName` of `module`.
 *  @return 1 on success, 0 on failure. Records RV_BadParms, RV_OutOfLocalMemory, or RV_UserError
 *  when the page cannot be made. */
QZAPI BOOL WINAPI Tab_AddDialogTab(HWND tabs, LPCSTR label, DWORD tabId, HMODULE module,
                                   LPCSTR templateName);
/** Adds a tab that shows the controls `ids` (0-terminated) of the parent while it is current.
 *  @return 1, or 0. Records RV_BadParms or RV_OutOfLocalMemory. */
QZAPI BOOL WINAPI Tab_AddInclusionTab(HWND tabs, LPCSTR label, DWORD tabId, const DWORD *ids,
                                      BOOL flag);
/** Adds a tab that hides the controls `ids` (0-terminated) of the parent while it is current.
 *  @return 1, or 0. Records RV_BadParms or RV_OutOfLocalMemory. */
QZAPI BOOL WINAPI Tab_AddExclusionTab(HWND tabs, LPCSTR label, DWORD tabId, const DWORD *ids);
/* Replaces the template behind tab `oldId`, which becomes `newId`. */
/** Replaces the template behind tab `oldId`, which becomes `newId`.
 *  @return 1, or 0. Records RV_Failure when there is no such tab. */
QZAPI BOOL WINAPI Tab_TransmogrifyDialogTab(HWND tabs, LPCSTR label, DWORD oldId, DWORD newId,
                                            HMODULE module, LPCSTR templateName);
/* The parent's answer to TABN_CHANGED; 0 when the current tab stays. */
/** Makes tab `tabId` (TAB_LAST: the last) current, with TABN_CHANGING and TABN_CHANGED to the
 *  parent.
 *  @return The parent's answer to TABN_CHANGED; 0 when the current tab stays. */
QZAPI LRESULT WINAPI Tab_SetCurrentTab(HWND tabs, DWORD tabId);
/** As Tab_SetCurrentTab.
 *  @return The parent's answer to TABN_CHANGED; 0 when the current tab stays. */
QZAPI LRESULT WINAPI Tab_SetCurrentTabEx(HWND tabs, DWORD tabId);
/** As Tab_SetCurrentTab.
 *  @return The parent's answer to TABN_CHANGED; 0 when the current tab stays. */
QZAPI LRESULT WINAPI Tab_SetCurrentTabExEx(HWND tabs, DWORD tabId);
/* The current tab's id, or -1. */
/** The current tab.
 *  @return Its id, or -1. */
QZAPI LONG WINAPI Tab_GetCurrentTab(HWND tabs);
/* True when the tab was found. */
/** Hides tab `tabId` from the strip.
 *  @return TRUE when the tab was found. */
QZAPI BOOL WINAPI Tab_HideTab(HWND tabs, DWORD tabId);
/** Shows tab `tabId` in the strip again.
 *  @return TRUE when the tab was found. */
QZAPI BOOL WINAPI Tab_ShowTab(HWND tabs, DWORD tabId);
/* The id of the tab at zero-based `position`, hidden tabs counting; -1. */
/** The tab at zero-based `position`, hidden tabs counting.
 *  @return Its id, or -1. */
QZAPI LONG WINAPI Tab_GetTabFromPosition(HWND tabs, LONG position);
/* The strip's height; 0 with RV_GDIError when the tab picture is missing. */
/** The height of the strip.
 *  @return The height; 0 when the tab picture is missing. Records RV_GDIError when the tab picture
 *  will not load. */
QZAPI LONG WINAPI Tab_GetTabHeight(HWND tabs);

/** @} */
/* ------------------------------------------------------------------ */
/* Time gadgets: GasGauge, a progress bar with its percentage          */
/* ------------------------------------------------------------------ */
/** @defgroup gas_gauge GasGauge gadget
 *  @{ */
/** Sets the range. lParam: three LONGs, the minimum, the maximum and the
 *  percentage taken as shown. Nothing is repainted. Result 0; records
 *  RV_BadParms for a null pointer. */
#define GGM_SETRANGE      0x400
/** Sets the value and animates the bar to value * 100 / (maximum - minimum)
 *  percent, one frame per percent, dispatching waiting messages before
 *  each frame of a step larger than 1. lParam: the value. Result 0; with a
 *  maximum not above the minimum only the value is stored. */
#define GGM_SETVALUE      0x401
/** Sets the colour of the empty part (lParam: COLORREF) and its text
 *  colour, and repaints. Result 0; records RV_GDIError if no brush is made. */
#define GGM_SETBACKCOLOUR 0x402
/** Sets the colour of the filled part; as GGM_SETBACKCOLOUR. */
#define GGM_SETBARCOLOUR  0x403
/** Kept for hosts that send it. Result always 0. */
#define GGM_GETBACKCOLOUR 0x404
/** Kept for hosts that send it. Result always 0. */
#define GGM_GETBARCOLOUR  0x405
/** Gives the bar a three-dimensional border (wParam: flag), taking effect
 *  at the next resize, and sets both colours to light grey while the
 *  brushes stay. Result 0. */
#define GGM_SETRAISED     0x406

/* ------------------------------------------------------------------ */
/* Time gadgets: Waffle, a grid of cells with one roving edit          */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup waffle Waffle gadget
 *  A grid of named columns over a fixed number of rows. Cell index = row *
 *  column count + column. Each column head is a "QzCombo" offering a list
 *  or a date. Add columns before anything that names a row or a column:
 *  without one those messages record RV_BadParms and change nothing.
 *  @{ */
/** Style: the height is not snapped to whole rows. */
#define WFS_NOSNAP 0x01
/** wParam: the row count. Resets the scroll range and repaints. Result 1. */
#define WFM_SETROWCOUNT 0x401
/** lParam: five DWORDs: id, width in average characters (0xFFFFFFFF shares the free width),
 *  has-list flag, sort-list flag, more head style bits. Result 1, or -1 with the cause recorded
 *  (RV_UserError when the head cannot be made: the column is kept without one). */
#define WFM_ADDCOLUMN 0x402
/** wParam: cell index; lParam: text of 0 to 127 characters. Result 1, or -1 with RV_Failure for
 *  a longer text. The edit is not touched. */
#define WFM_SETCELL 0x403
/** wParam: column id; lParam: the head's caption. Result 1. */
#define WFM_SETCOLUMNCAPTION 0x404
/** wParam: column id; lParam: a text for the head's list. Result: the list's answer, 0 for an
 *  unknown id. */
#define WFM_ADDLISTSTRING 0x405
/** wParam: cell index, folded into the grid. Stores the edit's text, moves the edit, notifies
 *  WFN_CELLCHANGED. Result 1, or -1. */
#define WFM_GOTOCELL 0x406
/** wParam: cell index; lParam: a buffer of 128 for its text ("" if none). Result 1. */
#define WFM_GETCELL 0x407
/** Result: the row of the highest stored cell index, 0 with none. */
#define WFM_GETLASTROW 0x408
/** wParam: row. Result: the bytes WFM_GETROW writes. */
#define WFM_GETROWSIZE 0x409
/** wParam: row; lParam: buffer. The row's texts in the order first written, each with its NUL,
 *  and one more NUL. */
#define WFM_GETROW 0x40A
/** wParam: column index. Result: the bytes WFM_GETCOLUMN writes. */
#define WFM_GETCOLUMNSIZE 0x40B
/** wParam: column index; lParam: buffer. As WFM_GETROW for the column. */
#define WFM_GETCOLUMN 0x40C
/** wParam: column id. Result: the head's window, or 0. */
#define WFM_GETHEAD 0x40D
/** Result: the row of the current cell. */
#define WFM_GETCURRENTROW 0x40E
/** Result: the column of the current cell. */
#define WFM_GETCURRENTCOLUMN 0x40F
/** Result: the current cell's index. */
#define WFM_GETCURRENTCELL 0x410
/** Opens an empty row at the current row, moving it to column 0. Result 0. */
#define WFM_INSERTROW 0x411
/** Deletes the current row; later rows move up. Result 0. */
#define WFM_DELETEROW 0x412
/** wParam: first cell index; lParam: NUL-ended texts ending with an empty one, one row apart.
 *  A text of one character or starting with a blank keeps its row unwritten. Result 1. */
#define WFM_FILLCOLUMN 0x413
/** As WFM_SETCELL; the edit takes the text first when the index is the current cell. */
#define WFM_PUTCELL 0x414
/** As WFM_FILLCOLUMN, writing every text by WFM_PUTCELL. Result 1. */
#define WFM_PUTCOLUMN 0x415
/** wParam: column index; lParam low word: 5 a list head, 4 a date head. Result -1. */
#define WFM_SETCOLUMNTYPE 0x416
/** Notification: painting, moving a child or a focus step failed, or a head failed. */
#define WFN_ERROR 100
/** Notification: after WFM_GOTOCELL. */
#define WFN_CELLCHANGED 101
/** The Waffle class procedure, for a host's own subclass.
 *  @return What the message's handling returns. */
QZAPI LRESULT WINAPI GadWWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** The procedure of the Waffle's edit: moves between cells by the navigation keys.
 *  @return What the message's handling returns. */
QZAPI LRESULT WINAPI GadWEditSubProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam);

/* ------------------------------------------------------------------ */
/* Feedback: status boxes, a text and a GasGauge over a disabled       */
/* parent for a job that polls for Cancel between its steps            */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup status_box Status boxes
 *  @{ */
#define STATUS_SIMPLE      0x0000  /* template "SIMPLESTATUS": no button */
#define STATUS_CANCEL      0x0001  /* template "CANCELSTATUS": a Cancel button */
#define STATUS_HIDDEN      0x4000  /* the box is left hidden */
#define STATUS_CLOSEATHIGH 0x8000  /* the box closes itself when the value reaches `high` */
/** Opens a status box over `parent` (which is disabled) showing `text`,
 *  which is not copied, and a gauge from `low` to `high`.
 *  @return the box's dialog, or null. Records RV_Failure for a low byte of
 *  `flags` other than 0 and 1, RV_UserError when the dialog cannot be made
 *  and RV_OutOfLocalMemory when its record cannot. */
QZAPI HWND WINAPI StatusBox(HWND parent, const char *text, DWORD low, DWORD high, LONG flags);
/** Enables the box's parent again and destroys the box.
 *  @return the result of DestroyWindow, or 0 when `dialog` is no window. */
QZAPI BOOL WINAPI StatusClose(HWND dialog);
/** Moves the gauge to `value`; the gauge dispatches waiting messages.
 *  @return the gauge's answer; with STATUS_CLOSEATHIGH, `high` while the
 *  value is below it, else the result of closing the box. 0 with
 *  RV_BadParms recorded for a dialog that is no open status box. */
QZAPI LRESULT WINAPI StatusValue(HWND dialog, DWORD value);
/** Whether the user pressed Cancel (or closed the box by its system menu).
 *  @return 1 after a cancel, else 0. 0 with RV_BadParms recorded for a
 *  dialog that is no open status box. */
QZAPI DWORD WINAPI StatusCanceled(HWND dialog);
/** Clears the cancel, so that the job can go on.
 *  @return 1 if `dialog` is an open status box, else 0. */
QZAPI BOOL WINAPI StatusResume(HWND dialog);
/** Replaces the box's text.
 *  @return the result of SetDlgItemTextA. */
QZAPI BOOL WINAPI StatusSetText(HWND dialog, const char *text);

/* ------------------------------------------------------------------ */
/* Drawing: the film player. A film is one bitmap, a sheet of equal    */
/* cells in columns and rows (numbered left to right, then top to      */
/* bottom), played at a place on a device context over what lay there, */
/* which is put back at the end. One film plays at a time.             */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup film_player Film player
 *  @{ */
#define FILM_COPY      0  /* the cell is copied as it is */
#define FILM_MASKHALF  1  /* the cell's left half is the picture, its right half the mask */
#define FILM_KEYCOLOUR 2  /* the mask is made from the transparent colour */
/** Plays `frameCount` frames of the sheet `bitmapId` of `module` at (x, y)
 *  on `dc` (its centre with `centred`), cells in order or the cells of
 *  `sequence`, at least `minInterval` ms apart. With `runToEnd` the film
 *  plays through and the screen is as before; without it the first frame
 *  stays and the film's objects are released, so the next NextFrame ends
 *  the film. An id with 1 in its high word names a sheet kept once loaded.
 *  @return 1, or 0. Records RV_Failure during another film, RV_BadParms for
 *  no columns or rows, no frames or a sequence cell off the sheet, and
 *  RV_GDIError when a drawing step fails. */
QZAPI BOOL WINAPI PlayFilm(HDC dc, LONG x, LONG y, HMODULE module, DWORD bitmapId, LONG columns,
                           LONG rows, LONG maskMode, DWORD frameCount, DWORD minInterval,
                           COLORREF transparent, DWORD centred, const LONG *sequence,
                           LONG runToEnd);
/** Shows the next frame once the least interval has passed; the last frame
 *  ends the film.
 *  @return 1, or 0 when the frame failed or no film plays, which records
 *  RV_Failure and ends the film. */
QZAPI BOOL WINAPI NextFrame(void);
/** Puts the background back and releases the film.
 *  @return 1. */
QZAPI BOOL WINAPI EndFilm(void);
/** Whether a film plays.
 *  @return 1 while a film plays, else 0. */
QZAPI LONG WINAPI IsFilmPlaying(void);
/** Cuts cell `frame` out of a sheet: the bitmap `bitmap` of `module`, or
 *  with a null module the HBITMAP `bitmap` itself. The copy is the cell's
 *  width / (halves + 1) wide, from the cell's left plus half its width
 *  times `half`, into a new bitmap of the cell's size.
 *  @return the new bitmap, owned by the caller, or null. Records RV_BadParms
 *  for no columns or rows and RV_GDIError when a step fails. */
QZAPI HBITMAP WINAPI GetFrame(HDC dc, HMODULE module, DWORD_PTR bitmap, LONG columns, LONG rows,
                              DWORD halves, LONG frame, DWORD half);
/** A one-bit mask of `image`, set where it has the colour `transparent`;
 *  as UICreateMaskBitmap.
 *  @return the new mask, owned by the caller, or null with RV_GDIError. */
QZAPI HBITMAP WINAPI CreateMask(HDC dc, HBITMAP image, COLORREF transparent);

/* ------------------------------------------------------------------ */
/* Time gadgets: StopWatch, a watch with three hands and its digits    */
/* ------------------------------------------------------------------ */
/** @} */
/** @defgroup stop_watch StopWatch gadget
 *  @{ */
/** Starts the watch from zero, showing the press for a moment. Result 0. */
#define SWM_START      0x400
/** Stops the watch, showing the press; the reading stays. Result 0. */
#define SWM_STOP       0x401
/** Reads the elapsed time. lParam: three DWORDs out, the hours (days folded
 *  in), minutes and seconds. Result 0; records RV_BadParms for a null
 *  pointer. */
#define SWM_GETELAPSED 0x402
/** Sets the elapsed time from three DWORDs (lParam): hours, minutes,
 *  seconds. Result 0; records RV_BadParms for a null pointer. */
#define SWM_SETELAPSED 0x403
/** Notification (WM_COMMAND, high word of wParam): the reading or the
 *  running state changed, after every tick and every click. */
#define SWN_CHANGED    1
/** @} */

/* ------------------------------------------------------------------ */
/* Time gadgets: FreeTime, people's busy time beside a TimeTracker     */
/* ------------------------------------------------------------------ */
/** @defgroup free_time FreeTime gadget
 *  @{ */
/* Messages: 1 for success, -1 for failure, unless said otherwise. A person
 * id that is not known does nothing and answers 1 (FTM_GETSTATE: -1). */
#define FTM_ADDPERSON        0x401  /* wParam: id; lParam: const char* name, copied */
/** Removes the person of id wParam with the intervals and the name. */
#define FTM_REMOVEPERSON     0x402
#define FTM_ADDBUSY          0x403  /* wParam: person id; lParam: const BusyInterval*, copied */
#define FTM_REMOVEBUSY       0x404  /* wParam: person id; lParam low word: interval id */
#define FTM_SETBUSYLIST      0x405  /* wParam: person id; lParam: array of the count FTM_SETBUSYCOUNT set */
/** Empties the busy list of the person of id wParam. */
#define FTM_CLEARBUSY        0x406
#define FTM_SETSTATE         0x407  /* wParam: person id; lParam low word: state. Always 1 */
#define FTM_GETSTATE         0x408  /* wParam: person id; the state, or -1 */
#define FTM_SETWEEK          0x409  /* lParam: const DateTimeValue*; moved to its week's Monday */
#define FTM_GETWEEK          0x40A  /* lParam: DateTimeValue* out. Always 1 */
#define FTM_SETDATE          0x40B  /* lParam: const DateTimeValue*; the meeting and the view go there */
#define FTM_GETSTART         0x40C  /* lParam: DateTimeValue* out: the meeting's start */
#define FTM_SETSHOWWEEKEND   0x40D  /* wParam: flag, 7 days instead of 5. Always 1 */
#define FTM_SETHOURSINVIEW   0x410  /* wParam: hours, 1 to 24 */
#define FTM_SETSTART         0x411  /* lParam: const DateTimeValue*; keeps the duration */
#define FTM_GETDURATION      0x412  /* MAKELONG(minutes, hours) */
/** The child TimeTracker's window. */
#define FTM_GETTRACKER       0x415
/** The hours in view. */
#define FTM_GETHOURSINVIEW   0x416
#define FTM_SETVIEWMODE      0x417  /* wParam: 1 people, 2 week */
/** The view: 1 people, 2 week. */
#define FTM_GETVIEWMODE      0x418
#define FTM_SETBUSYCOUNT     0x419  /* wParam: person id; lParam low word: count for FTM_SETBUSYLIST */
#define FTM_SETUNAVAILABLE   0x41D  /* wParam: person id; lParam: flag; set clears the list */
#define FTM_FINDFREESLOT     0x41E  /* lParam: FreeSlotRequest*; 0 or -1 */
#define FTM_SETSORTMODE      0x421  /* wParam: 1 by name, 2 by state. Result 0 */
#define FTM_SETOPTIONAL      0x422  /* wParam: person id; lParam: flag */
#define FTM_SETIGNOREOPTIONAL 0x423 /* wParam: flag: optional people are not busy */
/** 1 if the meeting clashes with the union of busy time, else 0. */
#define FTM_GETCONFLICT      0x424
/* Notifications (high word of WM_COMMAND's wParam). */
/** The tracker's view has settled at a new place. */
#define FTN_VIEWCHANGED 100
/** A step failed; the error state holds the reason. */
#define FTN_ERROR       200
/** The meeting's start or end changed. */
#define FTN_TIMECHANGED 500
/** A left click on the grid. */
#define FTN_GRIDCLICK   600
/** Flag bit of BusyInterval.flags: shown on the grid, not counted as busy. */
#define FTB_NOTBUSY     1
/** The FreeTime class procedure, for a host's own subclass.
 *  @return What the message's handling returns. */
QZAPI LRESULT WINAPI GadFTWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** @} */

/* ------------------------------------------------------------------ */
/* Time gadgets: FieldMapper, links drawn between two lists            */
/* ------------------------------------------------------------------ */
/** @defgroup field_mapper FieldMapper gadget
 *  @{ */
/** Style: each right item may be linked once, over all left items. Wins
 *  over FMS_LEFTONCE. */
#define FMS_RIGHTONCE 0x02
/** Style: each left item may carry one link; right items may be shared. */
#define FMS_LEFTONCE  0x04
/** Style: both lists are owner-drawn with a fixed height
 *  (LBS_OWNERDRAWFIXED); their WM_MEASUREITEM and WM_DRAWITEM reach the
 *  parent with the list's id (1 left, 2 right) as wParam. */
#define FMS_OWNERDRAW 0x08
/** Result: the left list's window, which the host fills itself. */
#define FMM_GETLEFTLIST  0x401
/** Result: the right list's window. */
#define FMM_GETRIGHTLIST 0x402
/** Adds (wParam 1) or removes (wParam 0) the link from the left item in
 *  lParam's low word to the right item in its high word, under the style's
 *  rule. Result 1 when done, and also when the rule refuses the link (then
 *  nothing changes); -1 when adding a link already there or removing one
 *  that is not. A left index from 100 or a right index above 255 records
 *  RV_BadParms and answers -1. An item keeps only its newest link. */
#define FMM_LINK         0x403
/** wParam: left index. Result: its link count, 0 with none, -1 for an
 *  index above 100. */
#define FMM_GETLINKCOUNT 0x404
/** wParam: left index; lParam: a byte buffer that receives the right
 *  indexes. Result: their count, or -1 with none or an index above 100. */
#define FMM_GETLINKS     0x405
/** Removes every link and both picks, and repaints. Result 0. */
#define FMM_CLEAR        0x408
/** Notification (WM_COMMAND, high word of wParam): painting failed; the
 *  error state has the reason. The lists' own notifications come under
 *  their codes, with the list's window in lParam. */
#define FMN_ERROR        100
/** The FieldMapper class procedure, for a host's own subclass.
 *  @return What the message's handling returns. */
QZAPI LRESULT WINAPI GadFMWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/** @} */

/* ------------------------------------------------------------------ */
/* Time gadgets: SuperText, a canvas the parent measures and draws      */
/* ------------------------------------------------------------------ */
/** @defgroup super_text SuperText gadget
 *  @{ */
/** Hides both scroll bars and asks the parent the content's size again
 *  (WM_MEASUREITEM, wParam 0, the gadget's font selected in the DC of the
 *  record's item slot; on 64-bit the DC also stands whole in itemData),
 *  showing a bar with the range of whatever does not fit; both positions
 *  return to 0. lParam's low word: repaint. Result 0. The parent paints
 *  through WM_DRAWITEM (wParam 0), the content's rectangle offset by the
 *  scroll positions, and gives the background brush through
 *  WM_CTLCOLORSTATIC. */
#define STM_REMEASURE 0x400
/** @} */

#ifdef __cplusplus
}
#endif

#endif /* QZISO32_H */
