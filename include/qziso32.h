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
#define QZ_VIRTUALFILE_CLEAR QZAPI void Clear()
#endif
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
typedef BOOL (WINAPI *ErrorTerminateCallback)(LONG_PTR callbackData, struct ErrorContext *context);

typedef struct ErrorContext {
    ResultCode errorCode;       /* the code recorded; 0 when none was ever set */
    DWORD contextStringId;      /* string that names what was going on */
    HMODULE contextModule;      /* module holding that string */
    BOOL isPending;             /* set from recording until cleared */
    char itemText[256];         /* the name of what failed, at most 255 characters */
    ULONG_PTR functionAddress;  /* common dialog function with RV_CommDlgError */
    DWORD detail1;
    DWORD detail2;
    DWORD itemValue;
    ULONG_PTR address;          /* offending pointer or record address */
    DWORD rangeLow;
    DWORD rangeHigh;
    DWORD stage;
    DWORD osError;
    char memberName[41];        /* at most 39 characters */
    char detailText[1025];      /* longer text or formatter output */
    FARPROC presenter;          /* presenter in force during an error callback */
    BOOL isPresenting;          /* set while an error is being shown; blocks recording */
    BOOL quietInBackground;     /* word index 476 of OSErrorSetErrorMode */
    struct VIRTUALFILE *virtualFileCopy;
    FARPROC vfToPfCallback;
    BOOL offerClose;            /* word index 479 of OSErrorSetErrorMode */
    LONG_PTR callbackData;
    ErrorTerminateCallback terminateCallback;
} ErrorContext;

/* Word indexes of OSErrorSetErrorMode that reach past the mode table. */
#define ERRORMODE_INDEX_QUIETINBACKGROUND 476
#define ERRORMODE_INDEX_OFFERCLOSE 479

/* ------------------------------------------------------------------ */
/* DateTimeValue: eight bytes, a stored format shared with the host.   */
/* Valid years 1800 to 2101. All fields 1: no date low; all 2: high.   */
/* ------------------------------------------------------------------ */
typedef struct DateTimeValue {
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
    char codePageTranslation[260];
} DateTimeIntlSettings;

/* ------------------------------------------------------------------ */
/* Instance frame                                                      */
/* ------------------------------------------------------------------ */
QZAPI BOOL WINAPI IsolateInstanceStart(DWORD reserved1, DWORD reserved2);
QZAPI BOOL WINAPI IsolateInstanceStop(DWORD reserved);

/* Registration record: "kel.ri" beside the library, stored enciphered and not
 * deciphered here. True when the record is there and opens; false with
 * RV_NoFile (absent) or RV_ReadFailure (unreadable) recorded. The buffer, when
 * given with a positive size, always receives an empty text. */
QZAPI BOOL WINAPI OSGetRegInfo(char *buffer, int bufferSize);
QZAPI BOOL WINAPI NetDLLGetVersion(char *out);
QZAPI OSVERSIONINFOA *WINAPI OSGetVersionInfo(void);

/* ------------------------------------------------------------------ */
/* Error state                                                         */
/* ------------------------------------------------------------------ */
QZAPI void __cdecl OSErrorSetErrorInfo(ResultCode code, ...);
QZAPI ResultCode WINAPI OSErrorGetErrorValue(void);
QZAPI void WINAPI OSErrorClearError(void);
QZAPI ErrorContext *WINAPI OSErrorGetErrorInfo(void);
QZAPI DWORD WINAPI OSErrorSetErrorMode(LONG index, DWORD mode);
QZAPI void WINAPI OSErrorSetContext(HMODULE module, DWORD stringId);
QZAPI BOOL WINAPI OSErrorIsValidContext(void);
QZAPI BOOL WINAPI OSErrorIsErrorPending(void);
QZAPI BOOL WINAPI OSErrorRegisterCallback(LONG_PTR callbackData, ErrorTerminateCallback callback);
QZAPI BOOL WINAPI OSErrorRegisterVFToPFCallBack(FARPROC callback);
QZAPI void WINAPI DefenceStart(void);
QZAPI void WINAPI DefenceQuit(void);
QZAPI const char *WINAPI OSErrorGetRVErrorString(ResultCode code);

/* ------------------------------------------------------------------ */
/* Error text tables: English names for diagnostics, each in a static  */
/* buffer of its own that the next call overwrites.                    */
/* ------------------------------------------------------------------ */
QZAPI const char *WINAPI OSErrorGetCommDlgErrorString(DWORD error);
QZAPI const char *WINAPI OSErrorGetDDEMLErrorString(DWORD error);
/* The system's message, or "Error %d(%#x) : name - description". */
QZAPI const char *WINAPI OSErrorGetOSErrorString(DWORD error);

/* ------------------------------------------------------------------ */
/* Formatted strings and memory                                        */
/* ------------------------------------------------------------------ */
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
QZAPI int WINAPI OScvsprintf(char *dest, LONG limit, const char *format, va_list args);
QZAPI int __cdecl OScsprintf(char *dest, LONG limit, const char *format, ...);
QZAPI int WINAPI OSrvsprintf(char *dest, LONG limit, const char *format, va_list args);
QZAPI int __cdecl OSrsprintf(char *dest, LONG limit, const char *format, ...);
/* Both always return 1. */
QZAPI BOOL WINAPI OShmemcpy(void *dest, const void *source, DWORD count);
QZAPI BOOL WINAPI OShmemset(void *dest, int value, DWORD count);
/* At most `count` characters of each, compared by the user's locale
 * (lstrcmp, lstrcmpi). 0 after a failed allocation, with the error recorded. */
QZAPI int WINAPI OSstrncmp(const char *a, const char *b, DWORD count);
QZAPI int WINAPI OSstrncmpi(const char *a, const char *b, DWORD count);

/* ------------------------------------------------------------------ */
/* Text helpers                                                        */
/* ------------------------------------------------------------------ */
/* Decimal scanners: skip blanks and tabs, take digits, no sign, wrap.
 * They return the first character not used. */
QZAPI char *WINAPI AtoI(char *text, DWORD *out);
QZAPI char *WINAPI AtoL(char *text, DWORD *out);
QZAPI char *WINAPI AtoUI(char *text, DWORD *out);
QZAPI char *WINAPI AtoDW(char *text, DWORD *out);
QZAPI char *WINAPI AtoB(char *text, BYTE *out);
/* Scans `text` by `format`: blanks skip blanks, '"' toggles quotes, %d and
 * %l take a DWORD*, %b and %fb a BYTE* (only %fb moves past the number),
 * %s a char* that receives up to a comma outside quotes or a quote inside
 * them. Any other character must match. *count is 1, lowered on a mismatch.
 * Returns where the scan stopped. */
QZAPI char *__cdecl ArgScan(char *text, LONG *count, const char *format, ...);
/* Ends the text at its first CR or LF, or after `limit` characters. */
QZAPI char *WINAPI OneLine(char *text, LONG limit);
/* Replaces the blanks at the end with NULs. */
QZAPI char *WINAPI StripTrailingSpaces(char *text);
QZAPI BOOL WINAPI IsCrLf(char c);
QZAPI BOOL WINAPI IsWhiteSpace(char c);
QZAPI char *WINAPI SkipWhiteSpace(char *text);
/* Roman numerals in lower case, or upper when `upper` is non-zero. With a
 * null buffer the library's own is used (127 steps). A caller's buffer of
 * `size` bytes is never written past; a numeral cut short records
 * RV_BufferTooSmall. */
QZAPI char *WINAPI DToRoman(DWORD number, LONG upper, char *buffer, DWORD size);
/* Seeds the generator from the tick count and returns the seed. */
QZAPI DWORD WINAPI SeedRnd(void);
/* A number below `limit`. */
QZAPI int WINAPI Rnd(WORD limit);
/* Scramble a short text into hexadecimal digits with a checksum, and back.
 * Each returns the length written, or 0 with the error recorded. */
QZAPI int WINAPI CommonSrcDlgProc(const char *plain, char *out, int size);
QZAPI int WINAPI CommonDestDlgProc(const char *scrambled, char *out, int size);

/* ------------------------------------------------------------------ */
/* Calendar: date-time value and arithmetic                            */
/* ------------------------------------------------------------------ */
QZAPI BOOL WINAPI OSGetDateTime(DateTimeValue *out);
QZAPI BOOL WINAPI OSSetDateTime(DateTimeValue *out, UINT year, UINT month, UINT day,
                                UINT hour, UINT minute, UINT second, UINT hourBias);
QZAPI DateTimeValue *WINAPI OSSetNoDateLow(DateTimeValue *out);
QZAPI DateTimeValue *WINAPI OSSetNoDateHigh(DateTimeValue *out);
QZAPI LONG WINAPI OSDaysSince01011800(WORD year, WORD month, WORD day);
QZAPI BOOL WINAPI OSIsValidDateTime(const DateTimeValue *value);
QZAPI BOOL WINAPI OSDTIsValidDateTime(const DateTimeValue *value);
QZAPI BOOL WINAPI OSWhyIsInvalidDateTime(const DateTimeValue *value);
QZAPI BOOL WINAPI OSAdjustDateTime(DateTimeValue *value, LONG years, LONG months, LONG days,
                                   LONG hours, LONG minutes, LONG seconds, LONG extraHours);
QZAPI BOOL WINAPI OSAdjustDateTimeByDays(DateTimeValue *value, LONG days);
QZAPI BOOL WINAPI OSDiffDateTime(const DateTimeValue *first, const DateTimeValue *second,
                                 LONG *days, LONG *hours, LONG *minutes, LONG *seconds);
QZAPI int WINAPI OSDateTimeCompare(const DateTimeValue *a, const DateTimeValue *b);
QZAPI int WINAPI OSDateCompare(const DateTimeValue *a, const DateTimeValue *b);
QZAPI int WINAPI OSYearCompare(const DateTimeValue *a, const DateTimeValue *b);
QZAPI BOOL WINAPI OSDayOfWeek(const DateTimeValue *value, LONG *weekday, LONG ignored);
QZAPI BOOL WINAPI OSIsWeekend(LONG weekday);
QZAPI LONG WINAPI OSDateTimeGetNumDaysInMonth(const DateTimeValue *value);
QZAPI BOOL WINAPI OSIsDateTimePM(const DateTimeValue *value);

/* ------------------------------------------------------------------ */
/* Calendar: conventions                                               */
/* ------------------------------------------------------------------ */
QZAPI BOOL WINAPI OSDateTimeGetWinIniSettings(void);
QZAPI BOOL WINAPI OSDateTimeGetIntlSettings(DateTimeIntlSettings *out);
QZAPI BOOL WINAPI OSDateTimeSetIntlSettings(const DateTimeIntlSettings *settings);
/* Flag 2: the short date format, otherwise the long one. */
QZAPI BOOL WINAPI OSDateTimeGetDateFormat(char *buffer, DWORD flags, DWORD bufferSize);
/* Flags 16 with seconds, 64 markers only, 128 no markers. */
QZAPI BOOL WINAPI OSDateTimeGetTimeFormat(char *buffer, DWORD flags, DWORD bufferSize);
QZAPI LONG WINAPI OSDateTimeGetWeekStart(void);
QZAPI LONG WINAPI OSDateTimeSetWeekStart(LONG day);
QZAPI LONG WINAPI OSDateTimeGetLeadZero(void);

/* ------------------------------------------------------------------ */
/* Calendar: text forms                                                */
/* ------------------------------------------------------------------ */
/* Flags of OSDateTimeToString, used when no format is given. */
#define DTS_LONGDATE    1
#define DTS_SHORTDATE   2
#define DTS_SECONDS     16
#define DTS_TIME        32
#define DTS_MARKERSONLY 64
#define DTS_NOMARKERS   128
/* A null buffer means a static one of 200 characters. */
QZAPI char *WINAPI OSDateTimeToString(const DateTimeValue *value, char *buffer, const char *format,
                                      DWORD flags, DWORD bufferSize);
QZAPI BOOL WINAPI OSMonthToString(LONG month, DWORD flags, char *buffer, DWORD bufferSize);
QZAPI BOOL WINAPI OSDayToString(LONG weekday, DWORD flags, char *buffer, DWORD bufferSize);
QZAPI BOOL WINAPI OSStringToDateTime(DateTimeValue *out, const char *text);
QZAPI BOOL WINAPI OSStringToDateTimeTimeBias(DateTimeValue *out, const char *text);
QZAPI BOOL WINAPI OSStringToDateTimeComplete(DateTimeValue *out, const char *text);
QZAPI BOOL WINAPI OSStringToDateTimeForImport(DateTimeValue *out, const char *text);

/* ------------------------------------------------------------------ */
/* Calendar: month grid, weeks and zodiac                              */
/* ------------------------------------------------------------------ */
/* Returns -1 to fail the walk, 0 to end it with success, else goes on. */
typedef LONG (WINAPI *MonthGridCellProc)(const DateTimeValue *cell, LONG column, LONG row,
                                         LONG_PTR data1, LONG_PTR data2);
QZAPI LONG WINAPI OSDateTimeGetColumnForDayOfWeek(LONG weekday, LONG weekStart);
QZAPI LONG WINAPI OSDateTimeCalcNumRowsForMonth(const DateTimeValue *value, LONG weekStart);
QZAPI BOOL WINAPI OSDateTimeMonthGrid(const DateTimeValue *value, LONG weekStart, BOOL skipOtherMonths,
                                      MonthGridCellProc callback, LONG_PTR data1, LONG_PTR data2);
QZAPI BOOL WINAPI OSDateTimeMonthGridEx(const DateTimeValue *value, LONG weekStart,
                                        BOOL skipOtherMonths, MonthGridCellProc callback,
                                        LONG_PTR data1, LONG_PTR data2);
QZAPI BOOL WINAPI OSWeekNo(const DateTimeValue *value, LONG weekStart, LONG *weekNumber);
/* Signs 0 (from 21 March) to 11; 12 is no sign. */
QZAPI LONG WINAPI OSGetZodiacSign(const DateTimeValue *value);
/* Mode 1 the name, 2 the name and the dates, else the dates. */
QZAPI char *WINAPI OSZodiacToString(LONG sign, char *buffer, LONG mode, DWORD bufferSize);
QZAPI BOOL WINAPI OSStringToZodiac(const char *text, LONG *sign);
QZAPI LONG WINAPI OSGetZodiacSymbol(LONG sign);

/* ------------------------------------------------------------------ */
/* Calendar: tumbler time strings (minutes of the day, in decimal)     */
/* ------------------------------------------------------------------ */
QZAPI BOOL WINAPI OSConvertTumblerTimeStringToHourMinuteString(const char *text, char *out);
QZAPI BOOL WINAPI OSConvertTumblerTimeStringToRealString(const char *text, char *out);
QZAPI BOOL WINAPI OSConvertHourMinuteStringToTumblerTimeString(const char *text, char *out);
QZAPI BOOL WINAPI OSConvertRealStringToTumblerTimeString(const char *text, char *out);

/* ------------------------------------------------------------------ */
/* Settings store and resource library                                 */
/* ------------------------------------------------------------------ */
QZAPI DWORD WINAPI OSGetProfileString(const char *keyPath, const char *valueName,
                                     const char *defaultText, char *buffer, DWORD bufferSize,
                                     const char *reportName, BOOL flag);
QZAPI DWORD WINAPI OSGetProfileStringPassID(const char *keyPath, const char *valueName,
                                           const char *defaultText, char *buffer, DWORD bufferSize,
                                           const char *reportName, BOOL flag, HKEY root);
QZAPI LONG WINAPI OSGetProfileInt(const char *keyPath, const char *valueName, LONG defaultValue,
                                  const char *reportName, BOOL flag);
QZAPI BOOL WINAPI OSWriteProfileString(const char *keyPath, const char *valueName, const char *text,
                                       const char *reportName, BOOL flag);
QZAPI BOOL WINAPI OSWriteProfileInt(const char *keyPath, const char *valueName, LONG number,
                                    const char *reportName, BOOL flag);
QZAPI BOOL WINAPI OSGet2CharacterLanguageString(char *out);
QZAPI BOOL WINAPI OSBuildResourceString(char *out);
QZAPI HMODULE WINAPI OSStartResource(void);
QZAPI BOOL WINAPI OSStopResource(void);
QZAPI HMODULE WINAPI ResourceGetHandle(void);
QZAPI HBITMAP WINAPI ResourceLoadBitmap(HMODULE module, DWORD id);
/* A global block holding a METAFILEPICT (MM_ISOTROPIC, extents in 0.01 mm)
 * made from a "META16" resource; the caller owns the block and the metafile. */
QZAPI HGLOBAL WINAPI ResourceLoadMetafile(HMODULE module, const char *name);

/* ------------------------------------------------------------------ */
/* Locale queries: the system's regional settings                      */
/* ------------------------------------------------------------------ */
QZAPI BYTE WINAPI OSGetSeparator(void);
QZAPI BOOL WINAPI OSGetLanguage(char *buffer, DWORD size);
QZAPI BOOL WINAPI OSGetCountry(char *buffer, LONG size);
QZAPI LONG WINAPI OSGetCountryCode(void);
QZAPI UINT WINAPI OSGetCodePage(void);
QZAPI LONG WINAPI OSGetMeasurement(void);
QZAPI BYTE WINAPI OSGetDecimal(void);
QZAPI BYTE WINAPI OSGetThousand(void);
QZAPI LONG WINAPI OSGetNegNumber(void);
/* The number and its ending ("1st"), or with `plain` the ordinal word. */
QZAPI BOOL WINAPI OSSuffix(DWORD number, LONG plain, char *buffer, LONG size);

/* ------------------------------------------------------------------ */
/* Busy cursor, timers, key buffer and message boxes                   */
/* ------------------------------------------------------------------ */
/* Loads the eight frames of the turning cursor; 0 if one is missing. */
QZAPI BOOL WINAPI OSWaitInit(void);
/* Starts (or nests) a wait: the turning cursor shows. Returns the nesting. */
QZAPI DWORD WINAPI OSWait(void);
/* Keeps the cursor turning; with checkEscape, asks the user after an Escape
 * press. 1 when the user chose to stop the work, else 0. */
QZAPI BOOL WINAPI OSReWait(BOOL checkEscape);
QZAPI DWORD WINAPI OSUnWait(void);
/* One-way switches: after them waits and boxes do nothing. */
QZAPI void WINAPI OSWaitDisable(void);
QZAPI void WINAPI OSMessageDisable(void);
/* Removes every keyboard message waiting in the thread's queue; returns 0. */
QZAPI BOOL WINAPI OSKeyFlushBuffer(void);
QZAPI UINT_PTR WINAPI OSSetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure);
QZAPI BOOL WINAPI OSKillTimer(HWND window, UINT_PTR id);
QZAPI BOOL WINAPI OSTimerTestReincarnate(DWORD reserved1, DWORD reserved2);
/* Shows string `stringId` of `module`, filled in by OSrvsprintf with the
 * arguments, in a box of `style`. Returns the button pressed, 0 if the
 * string is missing or boxes are disabled, 2 when no box could be shown. */
QZAPI int __cdecl OSMessage(HWND parent, HMODULE module, const char *caption, UINT stringId,
                            UINT style, ...);
/* What the Help button of OSMessageWithHelp opens: string `stringId` of
 * `module` names the help window; `admin` chooses the administrator's file. */
typedef struct MessageHelpRecord {
    HMODULE module;
    DWORD stringId;
    DWORD admin;
    DWORD topic;
} MessageHelpRecord;
/* As OSMessage; with a help record the box has a Help button. */
QZAPI int __cdecl OSMessageWithHelp(const MessageHelpRecord *help, HWND parent, HMODULE module,
                                    const char *caption, UINT stringId, UINT style, ...);

/* ------------------------------------------------------------------ */
/* Trees and sorting                                                   */
/* ------------------------------------------------------------------ */
/* The head of a record linked into a tree the caller owns. Only a parent's
 * first child is linked from it; the others follow along `next`. */
typedef struct TreeNode {
    struct TreeNode *prev;      /* previous sibling */
    struct TreeNode *next;      /* next sibling */
    struct TreeNode *parent;
    struct TreeNode *child;     /* first child */
} TreeNode;
/* Answers zero to stop the walk. */
typedef LONG_PTR(WINAPI *TreeVisitor)(TreeNode *node, LONG_PTR data);
/* The node after `node`, null to end, or (TreeNode *)-1 to fail the walk. */
typedef TreeNode *(WINAPI *TreeStepper)(TreeNode *node, TreeVisitor visitor, LONG_PTR data);
typedef int(__cdecl *SortCompare)(const void *a, const void *b);
/* A null reference means the root (the last root sibling for After, the
 * deepest first child for Below); into an empty tree the node becomes the
 * root. 0 with RV_TreeBroken when the node is its own reference. */
QZAPI BOOL WINAPI OSTreeInsertBeforeNode(TreeNode **root, TreeNode *reference, TreeNode *node);
QZAPI BOOL WINAPI OSTreeInsertAfterNode(TreeNode **root, TreeNode *reference, TreeNode *node);
QZAPI BOOL WINAPI OSTreeInsertAboveNode(TreeNode **root, TreeNode *reference, TreeNode *node);
QZAPI BOOL WINAPI OSTreeInsertBelowNode(TreeNode **root, TreeNode *reference, TreeNode *node);
/* Unlinks the node, which keeps its subtree. 0 with RV_TreeBroken when the
 * node is in no tree. */
QZAPI BOOL WINAPI OSTreeRemoveNode(TreeNode **root, TreeNode *node);
/* Post-order walk (children first) along the siblings of `node`, or along what
 * the stepper returns. The visitor's last answer, or 0. */
QZAPI LONG_PTR WINAPI OSTreeNodeEnum(TreeNode *node, TreeStepper stepper, TreeVisitor visitor,
                                     LONG_PTR data);
/* Sorts in place, not stable, with the busy cursor turning; the result is
 * that of OSUnWait. A compare must not sort. */
QZAPI DWORD WINAPI QSort(void *base, DWORD count, DWORD size, SortCompare compare);
QZAPI DWORD WINAPI QSortLong(void *base, DWORD count, DWORD size, SortCompare compare);

/* ------------------------------------------------------------------ */
/* Help                                                                */
/* ------------------------------------------------------------------ */
/* Sent as WM_KEL_HELP (the registered message) with lParam pointing here;
 * the answer is the help context, 0 for none. */
typedef struct HelpRequest {
    HMODULE Instance;   /* module holding the help window's name */
    DWORD StringId;     /* that name's string, or 0 */
    DWORD Admin;        /* non-zero: the administrator's help file */
    DWORD Reserved;
} HelpRequest;
/* Opens the language's help file (or the administrator's) through WinHelpA,
 * after telling "tvhlpn31.dll" which file belongs to the application. Data
 * -1 and -2 only register and return 1. */
QZAPI BOOL WINAPI ResourceHelp(HWND window, UINT command, DWORD data, const char *windowName);
QZAPI BOOL WINAPI ResourceAdminHelp(HWND window, UINT command, DWORD data, const char *windowName);
/* Asks the window and its parents for a help context and opens it. */
QZAPI BOOL WINAPI OSHelp(HWND window);

/* ------------------------------------------------------------------ */
/* Error presentation: a pending error shown as a message box.         */
/* Each returns the box's answer: IDOK, IDCANCEL, IDRETRY, IDYES or     */
/* IDNO; 2 (IDCANCEL) when nothing is shown.                            */
/* ------------------------------------------------------------------ */
/* Shows message `messageId` of `module`, filled in with the arguments. */
typedef int (__cdecl *UIErrorPresenter)(HWND window, HMODULE module, const char *caption,
                                        UINT messageId, UINT flags, ...);
/* Offered the error before it is shown; non-zero means it was dealt with. */
typedef LONG (WINAPI *UIErrorCallback)(HWND window, ErrorContext *context);
QZAPI int WINAPI UIHandleError(HWND window);
QZAPI int WINAPI UIHandleErrorEx(HWND window, DWORD useWindowCaption);
QZAPI int WINAPI UIHandleErrorFunc(HWND window, DWORD useWindowCaption, UIErrorPresenter presenter);
/* Presents with the window's caption and the Retry and Cancel buttons. */
QZAPI int WINAPI UIHandleErrorRetry(HWND window);
/* Only the first callback registered is ever called. */
QZAPI BOOL WINAPI UIErrorRegisterCallback(DWORD ignored, UIErrorCallback callback);
/* Does nothing and returns 1. */
QZAPI BOOL WINAPI UIErrorUnRegisterCallback(DWORD ignored);

/* ------------------------------------------------------------------ */
/* Feedback: a worker thread that shows progress in the main window's  */
/* title. The host starts Feedback_Thread with that window.            */
/* ------------------------------------------------------------------ */
#define FEEDBACK_FORMATS 8          /* strings 53000 to 53007 */
typedef struct FeedbackMessage {
    DWORD Kind;     /* 0: format Index with Text; 1: format Index alone; else Text alone */
    DWORD Index;    /* 0 to 7 */
    char *Text;     /* may be null */
} FeedbackMessage;
QZAPI BOOL WINAPI Feedback_SetX(DWORD milliseconds);
QZAPI BOOL WINAPI Feedback_SetY(DWORD milliseconds);
QZAPI BOOL WINAPI Feedback_SetZ(DWORD milliseconds);
QZAPI BOOL WINAPI Feedback_Begin(const FeedbackMessage *message);
QZAPI BOOL WINAPI Feedback_End(void);
QZAPI BOOL WINAPI Feedback_PostMsg(const FeedbackMessage *message);
/* Shows the message at once; always 0. */
QZAPI BOOL WINAPI Feedback_SendMsg(const FeedbackMessage *message);
/* Drops the queue and the count; always 0. */
QZAPI BOOL WINAPI Feedback_CleanupAll(void);
QZAPI BOOL WINAPI Feedback_TerminateThread(void);
/* The worker: run it on a thread of its own with the main window. */
QZAPI DWORD WINAPI Feedback_Thread(LPVOID window);
QZAPI BOOL WINAPI Feedback_SetCaption(const char *caption);
QZAPI BOOL WINAPI Feedback_SetFilename(const char *filename);
/* Lets one pending title update through; call it often during long work. */
QZAPI void WINAPI Feedback_Flush_WM_SETTEXT(void);
/* Drawing: mask blits and bitmap helpers. A mask is 1 bit per pixel,  */
/* set (white) where the image is transparent. Pictures given with a   */
/* rectangle are centred in it (offsets truncated toward zero).        */
/* ------------------------------------------------------------------ */
QZAPI HBITMAP WINAPI UICreateMaskBitmap(HDC hdc, HBITMAP image, COLORREF transparent);
QZAPI DWORD WINAPI UIMaskBlt(HDC dst, int x, int y, int w, int h, HDC src, int srcX, int srcY,
                             COLORREF transparent);
QZAPI DWORD WINAPI UIMaskBltWithFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                        COLORREF transparent);
QZAPI BOOL WINAPI UIMaskBltNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                     COLORREF transparent);
/* Leaves the caller's image inverted: a second call draws it as it was. */
QZAPI BOOL WINAPI UIMaskBltInvertNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                           COLORREF transparent);
/* Transparent is the colour of the image's top-left pixel. */
QZAPI BOOL WINAPI UIMaskBltNoFlickerTLC(HDC hdc, RECT *rect, HBITMAP image);
QZAPI DWORD WINAPI UIBitBlt(HDC hdc, RECT *rect, HBITMAP image);
QZAPI DWORD WINAPI UIMonoBlt(HDC hdc, RECT *rect, HBITMAP image);
QZAPI LONG WINAPI OSMaskBlt(HDC dst, int x, int y, int w, int h, HDC src, int srcX, int srcY,
                            DWORD rop, HBITMAP mask, int mirror);
QZAPI LONG WINAPI MaskBltWithBitmap(HDC dst, int x, int y, int w, int h, HDC src, int srcX,
                                    int srcY, DWORD rop, HBITMAP mask, int mirror,
                                    HBITMAP background);
QZAPI HBITMAP WINAPI UICreateDitheredBitmap(HDC hdc, HBITMAP image, COLORREF colour);
QZAPI HBITMAP WINAPI UIChangeBitmapColor(HBITMAP image, COLORREF from, COLORREF to);
QZAPI DWORD WINAPI UITileBitmap(HDC hdc, RECT *rect, HBITMAP image);
QZAPI COLORREF WINAPI UICalcHalfIntensity(COLORREF colour);
QZAPI BOOL WINAPI UIFrameAndFillRect(HDC hdc, RECT *rect, HBRUSH fill, HBRUSH topLeft,
                                     HBRUSH bottomRight);
QZAPI DWORD WINAPI UITroughRect(HDC hdc, RECT *rect);
/* Flags: 4 top, 1 left, 2 right, 8 bottom, 0x1000 bottom shortened by 2. */
QZAPI COLORREF WINAPI Draw3DFrame(HDC hdc, RECT *rect, COLORREF topLeft, COLORREF bottomRight,
                                  LONG flags);

/* ------------------------------------------------------------------ */
/* Drawing: regions, owned by the caller                               */
/* ------------------------------------------------------------------ */
/* The pixels of `colour`, the rows flipped left to right with mirror. */
QZAPI HRGN WINAPI UICreateBitmapRegion(HBITMAP bitmap, COLORREF colour, DWORD mirror);
/* All but the background `colour` (-1: the top-left pixel) of a picture
 * symmetrical in both axes, read from its top-left quarter. */
QZAPI HRGN WINAPI UICreateMirroredBitmapRegion(HBITMAP bitmap, COLORREF colour);
QZAPI HRGN WINAPI UICreateRoundRectRegion(LONG left, LONG top, LONG right, LONG bottom,
                                          LONG cornerWidth, LONG cornerHeight);

/* ------------------------------------------------------------------ */
/* Drawing: device-independent bitmaps. A DIB handle is a movable      */
/* global block holding a packed bitmap (40-byte header, colour table, */
/* rows); the caller frees it with DIB_Destroy.                        */
/* ------------------------------------------------------------------ */
QZAPI HGLOBAL WINAPI DIB_OpenDIB(const char *name);
QZAPI HGLOBAL WINAPI DIB_FileStreamToDIB(const BYTE *image);
QZAPI HGLOBAL WINAPI DIB_StreamToDIB(const BYTE *stream);
/* Writes DIB_DIBSize bytes. */
QZAPI BOOL WINAPI DIB_DIBToStream(BYTE *out, HGLOBAL dib);
QZAPI DWORD WINAPI DIB_DIBSize(HGLOBAL dib);
QZAPI BOOL WINAPI DIB_GetDimensions(HGLOBAL dib, SIZE *size);
QZAPI HPALETTE WINAPI DIB_CreateDibPalette(HGLOBAL dib);
QZAPI HBITMAP WINAPI DIB_BitmapFromDib(HGLOBAL dib, HPALETTE palette);
QZAPI HGLOBAL WINAPI DIB_DibFromBitmap(HBITMAP bitmap, DWORD style, DWORD bits, HPALETTE palette);
QZAPI HGLOBAL WINAPI DIB_CompressDIB(HGLOBAL dib, LONG freeSource);
QZAPI HGLOBAL WINAPI DIB_ExpandDIB(HGLOBAL dib, LONG freeSource);
QZAPI BOOL WINAPI DIB_DibBlt(HDC hdc, int x, int y, int w, int h, HGLOBAL dib, int srcX, int srcY,
                             DWORD rop);
QZAPI int WINAPI DIB_StretchBlt(HDC hdc, int x, int y, int w, int h, HGLOBAL dib, int srcX,
                                int srcY, int srcW, int srcH, DWORD rop);
QZAPI HBITMAP WINAPI DIB_FiletoBM(const char *name);
QZAPI HBITMAP WINAPI DIB_CopyBitmap(HBITMAP bitmap);
QZAPI HGLOBAL WINAPI DIB_CopyDIB(HGLOBAL dib);
QZAPI HGLOBAL WINAPI DIB_Destroy(HGLOBAL dib);

/* ------------------------------------------------------------------ */
/* Drawing: metafiles. A metafile handle is a movable global block     */
/* holding a METAFILEPICT; the caller frees it with MF_Destroy.        */
/* ------------------------------------------------------------------ */
QZAPI HGLOBAL WINAPI MF_OpenMetaFile(const char *name);
/* New form: four u32 (mode, xExt, yExt, handle) then the bits; old form
 * (or oldForm non-zero): four 16-bit words then the bits. */
QZAPI HGLOBAL WINAPI MF_StreamToMF(const BYTE *stream, DWORD oldForm);
QZAPI BOOL WINAPI MF_MFToStream(BYTE *out, HGLOBAL metafile);
QZAPI DWORD WINAPI MF_Size(HGLOBAL metafile);
/* `size` comes in with a fall-back and leaves with the size in device units. */
QZAPI LONG WINAPI MF_GetDimensions(HDC hdc, HGLOBAL metafile, SIZE *size);
QZAPI BOOL WINAPI MF_Play(HDC hdc, RECT *rect, HGLOBAL metafile);
QZAPI HGLOBAL WINAPI MF_Destroy(HGLOBAL metafile);

/* ------------------------------------------------------------------ */
/* Drawing: vertical and indented text                                 */
/* ------------------------------------------------------------------ */
QZAPI LONG WINAPI UIVertDrawTextInit(void);
QZAPI void WINAPI UICleanUpVertDrawText(void);
QZAPI BOOL WINAPI UITrashVertFont(HFONT font);
/* Flags: 1 centre across, 2 right, 4 centre along, 8 bottom, 256 no clip.
 * Direction 0 upwards, 1 downwards. */
QZAPI BOOL WINAPI UIVertDrawText(HDC hdc, const char *text, int length, RECT *rect, DWORD flags,
                                 int direction);
QZAPI int WINAPI DrawTextWithIndent(HDC hdc, const char *text, DWORD ignored, RECT *rect,
                                    UINT format, int indent, int leastNextTop, int measureEmpty);
/* Dialog creation from a template of a module, and the one-time       */
/* notice. The wrappers take the names that windows.h gives to macros  */
/* of its own; those macros are removed here, so a host that includes  */
/* this header calls the wrappers by these names.                      */
/* ------------------------------------------------------------------ */
#undef DialogBox
#undef DialogBoxParam
#undef CreateDialog
#undef CreateDialogParam
QZAPI INT_PTR WINAPI DialogBoxParam(HMODULE module, const char *templateName, HWND owner,
                                    DLGPROC procedure, LPARAM param);
QZAPI HWND WINAPI CreateDialogParam(HMODULE module, const char *templateName, HWND owner,
                                    DLGPROC procedure, LPARAM param);
QZAPI INT_PTR WINAPI DialogBox(HMODULE module, const char *templateName, HWND owner,
                               DLGPROC procedure);
QZAPI HWND WINAPI CreateDialog(HMODULE module, const char *templateName, HWND owner,
                               DLGPROC procedure);
/* Shows the "EIGHTEEN" notice for ten seconds, once per `key` (every
 * time for a null key). 1 if it was shown before, otherwise 0. */
QZAPI BOOL WINAPI Eighteen(HWND owner, const char *key);

/* ------------------------------------------------------------------ */
/* Dialog skin: the grey face, centring and bitmap check boxes         */
/* ------------------------------------------------------------------ */
QZAPI LRESULT CALLBACK UIDialogSubclassProc(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam);
QZAPI LRESULT CALLBACK UIButtonSubclassProc(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam);
QZAPI BOOL WINAPI UIGrayDialogInit(HWND mainWindow);
QZAPI BOOL WINAPI UIGrayDialogUnInit(HWND mainWindow);
QZAPI BOOL WINAPI UIBitmapCheckBox(HWND button, HBITMAP bitmap);
QZAPI COLORREF WINAPI UIGetDlgColor(void);
/* The id of the first checked button from `first` to `last`, or `first`. */
QZAPI UINT WINAPI UIGetCurrentRadioButton(HWND dialog, UINT first, UINT last);

/* ------------------------------------------------------------------ */
/* Gadget registration                                                 */
/* ------------------------------------------------------------------ */
/* 1 on success, 0 on failure. Nested: only the first call registers. */
QZAPI BOOL WINAPI RegisterGadgets(DWORD ignored);
/* The count left, or -1 when nothing was registered. */
QZAPI LONG WINAPI UnRegisterGadgets(void);
/* Non-zero selects the LCD rule for text on coloured backgrounds. */
QZAPI LONG WINAPI Gadgets_LCDOption(LONG flag);
/* The mask blits under the gadgets' names: as the UI functions, except that
 * GadUtilCreateMaskBitmap leaves a new mask it cannot select, and
 * GadUtilMaskBltWithFlicker does not free a mask it made itself. */
QZAPI HBITMAP WINAPI GadUtilCreateMaskBitmap(HDC hdc, HBITMAP image, COLORREF transparent);
QZAPI BOOL WINAPI GadUtilMaskBltNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                          COLORREF transparent);
QZAPI BOOL WINAPI GadUtilMaskBltInvertNoFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                                COLORREF transparent);
QZAPI BOOL WINAPI GadUtilMaskBltWithFlicker(HDC hdc, RECT *rect, HBITMAP image, HBITMAP mask,
                                            COLORREF transparent);
QZAPI DWORD WINAPI GadUtilBitBlt(HDC hdc, RECT *rect, HBITMAP image);
QZAPI DWORD WINAPI GadUtilMonoBlt(HDC hdc, RECT *rect, HBITMAP image);
QZAPI DWORD WINAPI GadUtilMaskBlt(HDC dst, int x, int y, int w, int h, HDC src, int srcX, int srcY,
                                  COLORREF transparent);

/* Files and locking, over the system's own handles                    */
/* ------------------------------------------------------------------ */
QZAPI BOOL WINAPI OSCommitFile(HANDLE file, const char *name);
QZAPI BOOL WINAPI OSDeleteFile(const char *name);
/* Always 0, with RV_Failure recorded: redirection cannot be told. */
QZAPI BOOL WINAPI OSIsRedirectedHandle(HANDLE file);
QZAPI BOOL WINAPI OSFileSetStampSame(HANDLE source, HANDLE destination);
/* Copies `count` bytes (0xFFFFFFFF: all) from the start of `source` to the
   start of `destination`, with less memory if need be, and copies the stamps. */
QZAPI BOOL WINAPI OSCopyFileSize(HANDLE destination, const char *destinationName, HANDLE source,
                                 const char *sourceName, DWORD count);
/* Locks (or unlocks) a byte range: 1 done, 2 held by another, 0 failed.
   A failure reports `reportName` in place of the file name's stem. */
QZAPI LONG WINAPI OSLocking(HANDLE file, DWORD offset, DWORD length, BOOL unlock,
                            const char *fileName, const char *reportName);

/* ------------------------------------------------------------------ */
/* Launch: other programs, found with the user's help when missing     */
/* ------------------------------------------------------------------ */
/* The program named by `key` in "Tarvo Applications" of "TARVO.INI". */
QZAPI BOOL WINAPI TarvoLaunch(HWND window, const char *key, char *defaultPath, LONG show);
QZAPI BOOL WINAPI CustomLaunch(HWND window, char *path, LONG show, const char *parameters);

/* ------------------------------------------------------------------ */
/* Dialog field values: lengths in tenths of a millimetre, shown in    */
/* centimetres (metric) or inches; range checks that tell the user     */
/* ------------------------------------------------------------------ */
QZAPI BOOL WINAPI SetDlgItemReal(HWND dialog, LONG control, DWORD value, LONG metric);
QZAPI DWORD WINAPI GetDlgItemReal(HWND dialog, LONG control, LONG metric);
QZAPI BOOL WINAPI RANGEIsUINTValid(HWND window, char *text, DWORD low, DWORD high);
QZAPI BOOL WINAPI RANGEIsREALValid(HWND window, char *text, DWORD low, DWORD high);
QZAPI BOOL WINAPI RANGEIsDATEValid(HWND window, char *text);
QZAPI BOOL WINAPI RANGEIsTIMEValid(HWND window, char *text);
/* ------------------------------------------------------------------ */
/* Telephony: the service "TAPI32.DLL", loaded at run time             */
/* ------------------------------------------------------------------ */
/* Line application, line and call handles are 32-bit values; the service's
 * records (LINEDEVCAPS and so on) are passed as the service defines them. */
/* Loads the service at attach; 1 always, the service being optional. */
QZAPI BOOL WINAPI TelephonyStart(DWORD reserved);
/* Uses `library` as the service from now on (null switches telephony off). */
QZAPI BOOL WINAPI Telephony_Initialize(HMODULE library);
/* Registers the application with the service once its main window exists;
 * a failure switches telephony off for good. */
QZAPI void WINAPI TelephonyClientStart(HWND window);
QZAPI DWORD WINAPI IsTelephonyEnabled(void);
QZAPI DWORD WINAPI Telephony_GetNumDevices(void);
/* Looks at line `device` without keeping it: 0 usable, 1 failed, 2 no
 * voice, 4 cannot make calls, 5 in use elsewhere, 6 cannot call now. */
QZAPI DWORD WINAPI Telephony_VerifyUsableLine(HWND window, DWORD device);
/* The version agreed between 1.3 and 1.4, or 0. */
QZAPI DWORD WINAPI Telephony_lineNegotiateLegacyAPIVersion(HWND window, DWORD device);
/* Wrappers: 0 while telephony is off, else the service's result. The first
 * argument stands where the service takes its line application; the
 * library's own goes in its place. */
QZAPI LONG WINAPI Telephony_lineGetDevCaps(DWORD lineApp, DWORD device, DWORD version,
                                           DWORD extensionVersion, void *caps);
QZAPI LONG WINAPI Telephony_lineGetAddressCaps(DWORD lineApp, DWORD device, DWORD address,
                                               DWORD version, DWORD extensionVersion, void *caps);
QZAPI LONG WINAPI Telephony_lineOpen(DWORD lineApp, DWORD device, DWORD *line, DWORD version,
                                     DWORD extensionVersion, DWORD_PTR callbackInstance,
                                     DWORD privileges, DWORD mediaModes, const void *callParams);
QZAPI LONG WINAPI Telephony_lineNegotiateAPIVersion(DWORD lineApp, DWORD device, DWORD lowVersion,
                                                    DWORD highVersion, DWORD *version,
                                                    void *extensionId);
QZAPI LONG WINAPI Telephony_lineTranslateAddress(DWORD lineApp, DWORD device, DWORD version,
                                                 const char *address, DWORD card, DWORD flags,
                                                 void *output);
QZAPI LONG WINAPI Telephony_lineGetTranslateCaps(DWORD lineApp, DWORD version, void *caps);
QZAPI LONG WINAPI Telephony_lineSetCurrentLocation(DWORD lineApp, DWORD location);
QZAPI LONG WINAPI Telephony_lineTranslateDialog(DWORD device, DWORD version, HWND owner,
                                                const char *address);
QZAPI LONG WINAPI Telephony_lineConfigDialogEdit(DWORD device, HWND owner, const char *deviceClass,
                                                 const void *config, DWORD size, void *configOut);
/* The first argument of these four is not used. */
QZAPI LONG WINAPI Telephony_lineClose(DWORD unused, DWORD line);
QZAPI LONG WINAPI Telephony_lineSetDevConfig(DWORD unused, DWORD device, const void *config,
                                             DWORD size, const char *deviceClass);
QZAPI LONG WINAPI Telephony_lineGetDevConfig(DWORD unused, DWORD device, void *config,
                                             const char *deviceClass);
QZAPI LONG WINAPI Telephony_lineGetCountry(DWORD unused, DWORD country, DWORD version, void *list);
/* Dials `number` on line `device` (-1: none chosen), piece by piece at its
 * dial modifiers, asking the user at each stop; the call stays open. 1 when
 * the call is under way or telephony is off. */
QZAPI BOOL WINAPI Telephony_DialNumber(HWND window, LONG device, DWORD address, const char *number,
                                       const char *displayName);
/* Takes the call and its line down and sends the hang-up message with
 * `reason`, the call state that ended the call. */
QZAPI BOOL WINAPI Telephony_HangupCall(HWND window, DWORD reason);
/* A hang-up sends `message` to `window` with the reason in lParam. */
QZAPI WORD WINAPI Telephony_SetHangupMessage(HWND window, WORD message);
/* Time gadgets: Tumbler, a spin field for integers, times and reals   */
/* ------------------------------------------------------------------ */
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
#define TSN_SETFOCUS    300
#define TSN_KILLFOCUS   400
/* The class procedure, for a host's own subclass. */
QZAPI LRESULT WINAPI GadTSWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/* Time gadgets: DateTracker, a month calendar                         */
/* ------------------------------------------------------------------ */
/* lParam: const DateTimeValue*. Years above 2100 are refused. Sets the
 * date and the window text and repaints. 1, or 100 when refused. */
#define DTKM_SETDATE 0x402
/* lParam: DateTimeValue* out; the gadget's own hour, minute and second are
 * cleared first. 1, or 100 when there is no valid date to give. */
#define DTKM_GETDATE 0x403
/* Notifications. */
#define DTKN_ERROR 100        /* WM_SETTEXT with a text that is no date */
#define DTKN_DATECHOSEN 200   /* Enter, Tab, or a release on a day cell */
#define DTKN_SETFOCUS 300
#define DTKN_KILLFOCUS 400
#define DTKN_DATECHANGED 500  /* the date moved by key, button, drag or text */
/* The failure answer of the two messages. */
#define DTK_FAILURE 100
/* Time gadgets: TimeTracker, an hour scale with one appointment       */
/* ------------------------------------------------------------------ */
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
#define TTM_GETHOURSINVIEW 0x410
#define TTM_SETSTARTKEEP   0x411  /* lParam: const DateTimeValue*; keeps the duration */
#define TTM_ADDBUSY        0x412  /* wParam: id; lParam: const BusyInterval* */
#define TTM_REMOVEBUSY     0x413  /* wParam: id */
#define TTM_GETIDEALSIZE   0x414  /* MAKELONG(width, height) */
#define TTM_SETBUSYLIST    0x415  /* wParam: count; lParam: const BusyInterval array */
#define TTM_CLEARBUSY      0x416
#define TTM_TIMETOY        0x417  /* lParam: const DateTimeValue*; client y or -1 */
#define TTM_GETOWNBARCOLOUR 0x418 /* 0x00FF00 free, 0x0000FF clashing */
#define TTM_FINDFREESLOT   0x419  /* lParam: FreeSlotRequest*; 0 done, 1 at the limit, -1 */
/* Notifications (high word of WM_COMMAND's wParam). */
#define TTN_ERROR       100  /* also after an arrow button is released */
#define TTN_TIMECHANGED 200
#define TTN_SETFOCUS    300
#define TTN_KILLFOCUS   400
#define TTN_VIEWCHANGED 500
#define TTN_TRACKING    600
#define TTN_SCROLLED    700
/* A busy time of the lanes, 24 bytes, filled by the host. */
typedef struct BusyInterval {
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
    DWORD dayClose;
    DWORD weekdayOpen[7];    /* 1440 or more: the day is not worked */
    DWORD weekdayClose[7];
    DWORD useWeekdayHours;
    DWORD found;             /* out: 1 if a slot was set */
    DWORD longestGap;        /* at the limit: take the longest gap */
    DWORD includeWeekends;
} FreeSlotRequest;
typedef char BusyInterval_is_24_bytes[sizeof(BusyInterval) == 24 ? 1 : -1];
typedef char FreeSlotRequest_is_88_bytes[sizeof(FreeSlotRequest) == 88 ? 1 : -1];
/* The class procedure, for a host's subclass. */
QZAPI LRESULT WINAPI GadTTWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/* ------------------------------------------------------------------ */
/* Virtual list box ("QzVListBox")                                     */
/* ------------------------------------------------------------------ */
/* Style bits (the low word of the window style). */
#define VLS_OWNERDRAW     0x0001
#define VLS_NOTIFY        0x0004
#define VLS_EXTENDEDSEL   0x0010
#define VLS_STRINGS       0x0020
#define VLS_MULTIPLESEL   0x0040
#define VLS_WANTCHARS     0x0100
#define VLS_NOTHUMBTRACK  0x0200
#define VLS_DOUBLEBUFFER  0x0400
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
#define VLDS_SELECTED  0x01
#define VLDS_FOCUS     0x10
typedef struct VLINITREQUEST { DWORD firstRows; DWORD loadBatch; } VLINITREQUEST;
typedef struct VLLOADREQUEST { DWORD first; DWORD last; } VLLOADREQUEST;
typedef struct VLRELEASEREQUEST { DWORD index; LPARAM itemData; LPSTR text; } VLRELEASEREQUEST;
typedef struct VLMEASUREREQUEST {
    HDC dc; DWORD reserved1; LONG width; LONG height; DWORD reserved2;
} VLMEASUREREQUEST;
typedef struct VLDRAWREQUEST {
    DWORD index; DWORD state; HDC dc; RECT rect; LPARAM itemData; LPCSTR text;
} VLDRAWREQUEST;
typedef struct VLFOCUSREQUEST { HWND window; } VLFOCUSREQUEST;
typedef struct VLCHARREQUEST { DWORD character; DWORD repeat; } VLCHARREQUEST;
typedef struct VLFINDREQUEST { LPCSTR text; DWORD index; } VLFINDREQUEST;
typedef struct VLGETTEXTREQUEST { LPSTR buffer; DWORD index; DWORD size; } VLGETTEXTREQUEST;
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
QZAPI BOOL WINAPI VListBox_Initialize(HWND list, DWORD total, DWORD cacheSize, DWORD loadBatch,
                                      VLISTBOXPROC callback, LPARAM data);
QZAPI BOOL WINAPI VListBox_AddItemData(HWND list, DWORD index, LPARAM itemData);
/* The text is copied into the list's cache. */
QZAPI BOOL WINAPI VListBox_AddString(HWND list, DWORD index, LPCSTR text, LPARAM itemData);
QZAPI BOOL WINAPI VListBox_SetNumItems(HWND list, DWORD total);
QZAPI DWORD WINAPI VListBox_GetNumItems(HWND list);
QZAPI DWORD WINAPI VListBox_GetCurSel(HWND list);
QZAPI BOOL WINAPI VListBox_SetCurSel(HWND list, DWORD index);
QZAPI DWORD WINAPI VListBox_GetCaretIndex(HWND list);
QZAPI BOOL WINAPI VListBox_SetCaretIndex(HWND list, DWORD index);
/* The flag is not used: the item is always selected. */
QZAPI BOOL WINAPI VListBox_SetSel(HWND list, BOOL flag, DWORD index);
QZAPI BOOL WINAPI VListBox_GetSel(HWND list, DWORD index);
QZAPI DWORD WINAPI VListBox_GetSelCount(HWND list);
/* The buffer must hold VListBox_GetSelCount indices. */
QZAPI BOOL WINAPI VListBox_GetSelItems(HWND list, DWORD *buffer);
/* The array must be sorted ascending. */
QZAPI BOOL WINAPI VListBox_SetSelItems(HWND list, DWORD count, const DWORD *items);
QZAPI DWORD WINAPI VListBox_GetTopIndex(HWND list);
QZAPI BOOL WINAPI VListBox_SetTopIndex(HWND list, DWORD index);
QZAPI LPARAM WINAPI VListBox_GetItemData(HWND list, DWORD index);
QZAPI BOOL WINAPI VListBox_IsItemCached(HWND list, DWORD index);
/* The buffer must hold VListBox_GetTextLen + 1 characters. */
QZAPI BOOL WINAPI VListBox_GetText(HWND list, DWORD index, LPSTR buffer);
QZAPI DWORD WINAPI VListBox_GetTextLen(HWND list, DWORD index);

/* ------------------------------------------------------------------ */
/* Dynamic virtual list box ("QzDVListBox")                            */
/* ------------------------------------------------------------------ */
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
typedef struct DVLLOADREQUEST { LONG first; DWORD count; LONG effectiveCount; } DVLLOADREQUEST;
typedef struct DVLRELEASEREQUEST { LONG index; LPARAM itemData; LPSTR text; } DVLRELEASEREQUEST;
typedef struct DVLFINDREQUEST { const void *ref; LONG index; DWORD reload; } DVLFINDREQUEST;
typedef struct DVLSELRANGEREQUEST { LONG first; DWORD count; DWORD mode; } DVLSELRANGEREQUEST;
typedef struct DVLSEARCHREQUEST {
    LPCSTR text; DWORD mode; LONG index; DWORD reload; void *refBuffer;
} DVLSEARCHREQUEST;
#if defined(_M_IX86) || defined(__i386__)
typedef char DVLRELEASEREQUEST_is_12_bytes[sizeof(DVLRELEASEREQUEST) == 12 ? 1 : -1];
typedef char DVLFINDREQUEST_is_12_bytes[sizeof(DVLFINDREQUEST) == 12 ? 1 : -1];
typedef char DVLSEARCHREQUEST_is_20_bytes[sizeof(DVLSEARCHREQUEST) == 20 ? 1 : -1];
#endif
QZAPI LRESULT WINAPI DVListBox_WndProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam);
/* Total -1: unknown; cache size -1: 4096. */
QZAPI BOOL WINAPI DVListBox_Initialize(HWND list, LONG total, DWORD cacheSize, DWORD loadBatch,
                                       DWORD refSize, VLISTBOXPROC callback, LPARAM data);
QZAPI BOOL WINAPI DVListBox_AddItemData(HWND list, LONG index, const void *ref, LPARAM itemData);
QZAPI BOOL WINAPI DVListBox_AddString(HWND list, LONG index, const void *ref, LPCSTR text,
                                      LPARAM itemData);
QZAPI BOOL WINAPI DVListBox_SetNumItems(HWND list, LONG total);
QZAPI LONG WINAPI DVListBox_GetNumItems(HWND list);
QZAPI LONG WINAPI DVListBox_GetCurSel(HWND list);
QZAPI BOOL WINAPI DVListBox_SetCurSel(HWND list, LONG index);
QZAPI BOOL WINAPI DVListBox_GetCurSelRef(HWND list, void *buffer);
QZAPI BOOL WINAPI DVListBox_SetCurSelRef(HWND list, const void *ref);
QZAPI LONG WINAPI DVListBox_GetCaretIndex(HWND list);
QZAPI BOOL WINAPI DVListBox_SetCaretIndex(HWND list, LONG index);
QZAPI BOOL WINAPI DVListBox_GetCaretRef(HWND list, void *buffer);
QZAPI BOOL WINAPI DVListBox_SetCaretRef(HWND list, const void *ref);
QZAPI BOOL WINAPI DVListBox_SetCaretRefNReload(HWND list, const void *ref, BOOL reload);
QZAPI BOOL WINAPI DVListBox_GetSelRef(HWND list, const void *ref);
/* Mode 0 deselects, 1 selects, any other value toggles. */
QZAPI BOOL WINAPI DVListBox_SetSelRef(HWND list, DWORD mode, const void *ref);
QZAPI BOOL WINAPI DVListBox_GetSel(HWND list, LONG index);
QZAPI BOOL WINAPI DVListBox_SetSel(HWND list, DWORD mode, LONG index);
QZAPI DWORD WINAPI DVListBox_GetSelCount(HWND list);
/* The buffer must hold DVListBox_GetSelCount references. */
QZAPI BOOL WINAPI DVListBox_GetSelItems(HWND list, void *buffer);
/* The references must be sorted ascending by their unsigned bytes. */
QZAPI BOOL WINAPI DVListBox_SetSelItems(HWND list, DWORD count, const void *refs);
QZAPI LONG WINAPI DVListBox_GetTopIndex(HWND list);
QZAPI BOOL WINAPI DVListBox_SetTopIndex(HWND list, LONG index, BOOL reload);
QZAPI LPARAM WINAPI DVListBox_GetItemData(HWND list, LONG index);
QZAPI BOOL WINAPI DVListBox_GetItemRef(HWND list, LONG index, void *buffer);
QZAPI BOOL WINAPI DVListBox_IsItemCached(HWND list, LONG index);
QZAPI BOOL WINAPI DVListBox_IsItemVisible(HWND list, LONG index);
QZAPI BOOL WINAPI DVListBox_GetText(HWND list, LONG index, LPSTR buffer);
QZAPI DWORD WINAPI DVListBox_GetTextLen(HWND list, LONG index);
/* Called by the host inside VLN_LOAD when it meets an end of its data. */
QZAPI BOOL WINAPI DVListBox_SetAbsoluteTop(HWND list, LONG index);
QZAPI BOOL WINAPI DVListBox_SetAbsoluteBottom(HWND list, LONG index);
QZAPI BOOL WINAPI DVListBox_SetPastTop(HWND list, LONG unused);
QZAPI BOOL WINAPI DVListBox_SetPastBottom(HWND list, LONG unused);
QZAPI BOOL WINAPI DVListBox_FindItemInCache(HWND list, const void *ref, LONG *index);
QZAPI BOOL WINAPI DVListBox_Invalidate(HWND list);
QZAPI BOOL WINAPI DVListBox_InvalidateItem(HWND list, LONG index);
/* Dialog tabs ("DialogTab"): a strip of tabs over a page whose        */
/* controls are children of the gadget's parent. A tab is a dialog     */
/* template, or a list of existing controls shown (inclusion) or       */
/* hidden (exclusion) while it is current. Identifier lists end in 0.  */
/* ------------------------------------------------------------------ */
#define TABS_KEEPTEXT       0x0002  /* a change of tab leaves the texts of statics and buttons */
#define TABS_OWNCONTROLS    0x0004  /* every tab makes its own controls; none are shared by id */
#define TABN_CHANGING       0x64    /* before any request to change tab, even one that changes nothing */
#define TABN_CHANGED        0xC8    /* the current tab has changed */
#define TAB_LAST            ((DWORD)-1)  /* stands for the last tab */
/* label: text, or a string id (below 65536) in `module`. */
QZAPI BOOL WINAPI Tab_AddDialogTab(HWND tabs, LPCSTR label, DWORD tabId, HMODULE module,
                                   LPCSTR templateName);
QZAPI BOOL WINAPI Tab_AddInclusionTab(HWND tabs, LPCSTR label, DWORD tabId, const DWORD *ids,
                                      BOOL flag);
QZAPI BOOL WINAPI Tab_AddExclusionTab(HWND tabs, LPCSTR label, DWORD tabId, const DWORD *ids);
/* Replaces the template behind tab `oldId`, which becomes `newId`. */
QZAPI BOOL WINAPI Tab_TransmogrifyDialogTab(HWND tabs, LPCSTR label, DWORD oldId, DWORD newId,
                                            HMODULE module, LPCSTR templateName);
/* The parent's answer to TABN_CHANGED; 0 when the current tab stays. */
QZAPI LRESULT WINAPI Tab_SetCurrentTab(HWND tabs, DWORD tabId);
QZAPI LRESULT WINAPI Tab_SetCurrentTabEx(HWND tabs, DWORD tabId);
QZAPI LRESULT WINAPI Tab_SetCurrentTabExEx(HWND tabs, DWORD tabId);
/* The current tab's id, or -1. */
QZAPI LONG WINAPI Tab_GetCurrentTab(HWND tabs);
/* True when the tab was found. */
QZAPI BOOL WINAPI Tab_HideTab(HWND tabs, DWORD tabId);
QZAPI BOOL WINAPI Tab_ShowTab(HWND tabs, DWORD tabId);
/* The id of the tab at zero-based `position`, hidden tabs counting; -1. */
QZAPI LONG WINAPI Tab_GetTabFromPosition(HWND tabs, LONG position);
/* The strip's height; 0 with RV_GDIError when the tab picture is missing. */
QZAPI LONG WINAPI Tab_GetTabHeight(HWND tabs);

/* ------------------------------------------------------------------ */
/* Time gadgets: GasGauge, a progress bar with its percentage          */
/* ------------------------------------------------------------------ */
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
/* Feedback: status boxes, a text and a GasGauge over a disabled       */
/* parent for a job that polls for Cancel between its steps            */
/* ------------------------------------------------------------------ */
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

#ifdef __cplusplus
}
#endif

#endif /* QZISO32_H */
