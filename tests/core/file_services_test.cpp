// Files and locking through the exports, on real files under the system's
// temporary folder.
#include <string>
#include <vector>
#include "import_patch.h"
#include "qz_test.h"

namespace {

// A scratch file, removed with the object.
class ScratchFile {
public:
    explicit ScratchFile(const char *stem, const std::string &contents = "")
    {
        char folder[MAX_PATH];
        GetTempPathA(MAX_PATH, folder);
        path_ = std::string(folder) + stem + ".qzt";
        HANDLE file = Open(GENERIC_WRITE, CREATE_ALWAYS);
        DWORD written = 0;
        WriteFile(file, contents.data(), static_cast<DWORD>(contents.size()), &written, nullptr);
        CloseHandle(file);
    }
    ~ScratchFile() { DeleteFileA(path_.c_str()); }
    HANDLE Open(DWORD access, DWORD disposition = OPEN_EXISTING) const
    {
        return CreateFileA(path_.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                           disposition, 0, nullptr);
    }
    std::string Contents() const
    {
        HANDLE file = Open(GENERIC_READ);
        std::string contents(GetFileSize(file, nullptr), '\0');
        DWORD read = 0;
        ReadFile(file, &contents[0], static_cast<DWORD>(contents.size()), &read, nullptr);
        CloseHandle(file);
        return contents;
    }
    const char *Path() const { return path_.c_str(); }

private:
    std::string path_;
};

std::string Pattern(size_t size)
{
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 251);
    return bytes;
}

using FileServices = ErrorStateTest;

TEST_F(FileServices, LockingAnswersInThreeWays)
{
    ScratchFile scratch("qzlock", Pattern(100));
    HANDLE mine = scratch.Open(GENERIC_READ | GENERIC_WRITE);
    HANDLE theirs = scratch.Open(GENERIC_READ | GENERIC_WRITE);

    EXPECT_EQ(1, OSLocking(mine, 10, 20, FALSE, scratch.Path(), nullptr));
    EXPECT_EQ(2, OSLocking(theirs, 15, 5, FALSE, scratch.Path(), nullptr));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue()) << "a range held by another records nothing";
    EXPECT_EQ(1, OSLocking(theirs, 30, 5, FALSE, scratch.Path(), nullptr)) << "outside the range";
    EXPECT_EQ(1, OSLocking(mine, 10, 20, TRUE, scratch.Path(), nullptr));
    EXPECT_EQ(1, OSLocking(theirs, 15, 5, FALSE, scratch.Path(), nullptr));

    // A handle that is no file is a failure of another kind.
    EXPECT_EQ(0, OSLocking(INVALID_HANDLE_VALUE, 50, 5, FALSE, scratch.Path(), nullptr));
    EXPECT_EQ(RV_OSError, OSErrorGetErrorValue());
    EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), OSErrorGetErrorInfo()->osError);
    OSErrorClearError();

    EXPECT_EQ(0, OSLocking(mine, 0, 0, FALSE, scratch.Path(), nullptr));
    EXPECT_EQ(RV_Failure, OSErrorGetErrorValue()) << "a length of zero is refused";
    CloseHandle(theirs);
    CloseHandle(mine);
}

BOOL WINAPI DeniedLock(HANDLE, DWORD, DWORD, DWORD, DWORD)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

TEST_F(FileServices, LockFailureReportsTheNameAsAsked)
{
    ImportPatch patch(LibraryModule(), "kernel32.dll", "LockFile",
                      reinterpret_cast<const void *>(DeniedLock));
    ASSERT_TRUE(patch.Applied());
    const std::string longName(600, 'n');
    struct Case {
        const char *fileName;
        const char *reportName;
        std::string reported;
    } const cases[] = {
        {"C:\\data\\diary.kel", nullptr, "C:\\data\\diary.kel"},
        {"C:\\data\\diary.kel", "Address book", "Address book."},
        {"C:\\data\\diary.old.kel", "Notes", "Notes."},
        {"C:\\data\\diary", "Notes", "Notes"},
        {longName.c_str(), "Notes", "Notes"},
        {"x.y", longName.c_str(), longName.substr(0, 255)},
    };
    for (const Case &c : cases) {
        OSErrorClearError();
        EXPECT_EQ(0, OSLocking(INVALID_HANDLE_VALUE, 0, 1, FALSE, c.fileName, c.reportName));
        EXPECT_EQ(RV_AccessDenied, OSErrorGetErrorValue());
        EXPECT_EQ(c.reported, OSErrorGetErrorInfo()->itemText) << c.fileName;
    }
}

TEST_F(FileServices, CommitDeleteAndRedirection)
{
    ScratchFile scratch("qzcommit", "abc");
    HANDLE file = scratch.Open(GENERIC_READ | GENERIC_WRITE);
    EXPECT_TRUE(OSCommitFile(file, scratch.Path()));
    CloseHandle(file);

    EXPECT_FALSE(OSCommitFile(INVALID_HANDLE_VALUE, "gone.kel"));
    EXPECT_EQ(RV_OSError, OSErrorGetErrorValue());
    EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), OSErrorGetErrorInfo()->osError);
    OSErrorClearError();

    EXPECT_TRUE(OSDeleteFile(scratch.Path()));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(scratch.Path()));
    EXPECT_FALSE(OSDeleteFile(scratch.Path()));
    EXPECT_EQ(RV_NoFile, OSErrorGetErrorValue());
    EXPECT_STREQ(scratch.Path(), OSErrorGetErrorInfo()->itemText);
    OSErrorClearError();

    const std::string tooLong = "C:\\" + std::string(400, 'p') + "\\f<>|?.kel";
    for (const char *bad : {tooLong.c_str(), static_cast<const char *>(nullptr)}) {
        EXPECT_FALSE(OSDeleteFile(bad));
        EXPECT_NE(RV_Success, OSErrorGetErrorValue());
        OSErrorClearError();
    }

    EXPECT_FALSE(OSIsRedirectedHandle(INVALID_HANDLE_VALUE));
    EXPECT_EQ(RV_Failure, OSErrorGetErrorValue());
    EXPECT_STREQ("", OSErrorGetErrorInfo()->itemText);
}

// The global allocations the library asks for while a test refuses those
// above `g_allocLimit`.
std::vector<SIZE_T> g_allocSizes;
SIZE_T g_allocLimit;
ImportPatch *g_allocPatch;

HGLOBAL WINAPI LimitedGlobalAlloc(UINT flags, SIZE_T size)
{
    g_allocSizes.push_back(size);
    if (size > g_allocLimit)
        return nullptr;
    return g_allocPatch->Original<decltype(&GlobalAlloc)>()(flags, size);
}

class CopyFileSize : public ErrorStateTest {
protected:
    // Copies `count` bytes of `contents` with allocations above `limit`
    // refused; the copy's bytes, or "failed".
    std::string Copy(const std::string &contents, DWORD count, SIZE_T limit = ~SIZE_T(0))
    {
        ScratchFile source("qzsource", contents), target("qztarget", "old contents, longer");
        HANDLE from = source.Open(GENERIC_READ | GENERIC_WRITE);
        HANDLE to = target.Open(GENERIC_READ | GENERIC_WRITE);
        FILETIME stamp = {0x12345678, 0x01C00000};
        SetFileTime(from, &stamp, &stamp, &stamp);

        ImportPatch patch(LibraryModule(), "kernel32.dll", "GlobalAlloc",
                          reinterpret_cast<const void *>(LimitedGlobalAlloc));
        EXPECT_TRUE(patch.Applied());
        g_allocPatch = &patch;
        g_allocLimit = limit;
        g_allocSizes.clear();
        BOOL copied = OSCopyFileSize(to, target.Path(), from, source.Path(), count);
        g_allocPatch = nullptr;

        FILETIME created = {}, accessed = {}, written = {};
        GetFileTime(to, &created, &accessed, &written);
        EXPECT_EQ(0, CompareFileTime(&stamp, &written)) << "the stamps go with the copy";
        CloseHandle(to);
        CloseHandle(from);
        return copied ? target.Contents() : "failed";
    }
};

TEST_F(CopyFileSize, CopiesWholeOrPartFromTheStart)
{
    const std::string data = Pattern(100000);
    EXPECT_EQ(data, Copy(data, 0xFFFFFFFF));
    EXPECT_EQ(std::vector<SIZE_T>{32768}, g_allocSizes);
    // The copy overwrites from the start and leaves the rest of the target.
    EXPECT_EQ(data.substr(0, 5) + std::string("old contents, longer").substr(5), Copy(data, 5));
    EXPECT_EQ(std::vector<SIZE_T>{5}, g_allocSizes);
    EXPECT_EQ("old contents, longer", Copy(data, 0)) << "a count of 0 writes nothing";
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(CopyFileSize, GoesOnWithLessMemory)
{
    const std::string data = Pattern(70000);
    EXPECT_EQ(data, Copy(data, 0xFFFFFFFF, 5000));
    EXPECT_EQ((std::vector<SIZE_T>{32768, 16384, 8192, 4096}), g_allocSizes);
    EXPECT_EQ(RV_OutOfGlobalMemory, OSErrorGetErrorValue()) << "the first refusal stays pending";
    EXPECT_EQ(32768u, OSErrorGetErrorInfo()->detail1);
    OSErrorClearError();

    // With no global memory at all, a 256-byte buffer does the work.
    EXPECT_EQ(data, Copy(data, 0xFFFFFFFF, 0));
    EXPECT_EQ((std::vector<SIZE_T>{32768, 16384, 8192, 4096, 2048, 1024, 512, 256}), g_allocSizes);
    EXPECT_EQ(RV_OutOfGlobalMemory, OSErrorGetErrorValue());
}

TEST_F(CopyFileSize, ReportsTheFileThatFailed)
{
    ScratchFile source("qzsource", Pattern(1000)), target("qztarget");
    HANDLE writeOnly = source.Open(GENERIC_WRITE);
    HANDLE to = target.Open(GENERIC_READ | GENERIC_WRITE);
    EXPECT_FALSE(OSCopyFileSize(to, target.Path(), writeOnly, source.Path(), 500));
    EXPECT_EQ(RV_AccessDenied, OSErrorGetErrorValue());
    EXPECT_STREQ(source.Path(), OSErrorGetErrorInfo()->itemText);
    OSErrorClearError();

    HANDLE from = source.Open(GENERIC_READ);
    HANDLE readOnly = target.Open(GENERIC_READ);
    EXPECT_FALSE(OSCopyFileSize(readOnly, target.Path(), from, source.Path(), 500));
    EXPECT_EQ(RV_AccessDenied, OSErrorGetErrorValue());
    EXPECT_STREQ(target.Path(), OSErrorGetErrorInfo()->itemText);
    OSErrorClearError();

    // A count past the source's end still writes that many bytes: what was
    // read is not looked at.
    EXPECT_TRUE(OSCopyFileSize(to, target.Path(), from, source.Path(), 1500));
    EXPECT_EQ(1500u, GetFileSize(to, nullptr));
    for (HANDLE file : {writeOnly, to, from, readOnly})
        CloseHandle(file);
}

} // namespace
