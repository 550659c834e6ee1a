// Thin file services over the system's handles, reporting through the error
// state: commit, delete, the redirection query, stamps and byte-range locks.
#include "qziso32.h"

extern "C" BOOL WINAPI OSCommitFile(HANDLE file, const char *name)
{
    if (FlushFileBuffers(file))
        return TRUE;
    OSErrorSetErrorInfo(RV_OSError, name ? name : "");
    return FALSE;
}

extern "C" BOOL WINAPI OSDeleteFile(const char *name)
{
    if (name && DeleteFileA(name))
        return TRUE;
    if (!name)
        SetLastError(ERROR_INVALID_PARAMETER);
    OSErrorSetErrorInfo(RV_OSError, name ? name : "");
    return FALSE;
}

// Redirection is not something this library can tell: the answer is always
// no, with a failure recorded, whatever the handle.
extern "C" BOOL WINAPI OSIsRedirectedHandle(HANDLE)
{
    OSErrorSetErrorInfo(RV_Failure, "");
    return FALSE;
}

// Gives the destination the source's creation, access and write times.
extern "C" BOOL WINAPI OSFileSetStampSame(HANDLE source, HANDLE destination)
{
    FILETIME created = {}, accessed = {}, written = {};
    GetFileTime(source, &created, &accessed, &written);
    return SetFileTime(destination, &created, &accessed, &written);
}

// The name a lock failure reports: the file's name, or, when the caller
// gives a name to report, that name in place of everything up to the
// file name's first dot, with what stood after the dot dropped.
static void LockReportName(char *out, size_t size, const char *fileName, const char *reportName)
{
    lstrcpynA(out, fileName ? fileName : "", static_cast<int>(size));
    if (!reportName)
        return;
    const char *dot = fileName ? strchr(fileName, '.') : nullptr;
    lstrcpynA(out, reportName, static_cast<int>(size));
    size_t used = strlen(out);
    if (dot && used + 1 < size) {
        out[used] = '.';
        out[used + 1] = 0;
    }
}

// 1 when done, 2 when another holds the range (nothing recorded), 0 on any
// other failure.
extern "C" LONG WINAPI OSLocking(HANDLE file, DWORD offset, DWORD length, BOOL unlock,
                                 const char *fileName, const char *reportName)
{
    if (length == 0) {
        OSErrorSetErrorInfo(RV_Failure, "");
        return 0;
    }
    BOOL done = unlock ? UnlockFile(file, offset, 0, length, 0) : LockFile(file, offset, 0, length, 0);
    if (done)
        return 1;
    DWORD error = GetLastError();
    if (error == ERROR_LOCK_VIOLATION)
        return 2;
    char name[MAX_PATH];
    LockReportName(name, sizeof name, fileName, reportName);
    OSErrorSetErrorInfo(RV_ForceOSError, error, name);
    return 0;
}
