// Exports a host reaches by their C++ name, the registration record, and
// the start-up and per-client calls.
#include <cstring>
#include <functional>
#include <string>
#include "qz_test.h"

namespace {

#if defined(_WIN64)
const char kClearName[] = "?Clear@VIRTUALFILE@@QEAAXXZ";
typedef void (*ClearMember)(VIRTUALFILE *self);
#else
const char kClearName[] = "?Clear@VIRTUALFILE@@QAEXXZ";
// A member function on i686: `this` in ECX, the callee cleans up.
typedef void(__attribute__((thiscall)) * ClearMember)(VIRTUALFILE *self);
#endif

// A file block holding `size` bytes in a locked global block.
VIRTUALFILE FileWithData(DWORD size)
{
    VIRTUALFILE file = {};
    file.marker = VIRTUALFILE_MARKER;
    file.data = GlobalLock(GlobalAlloc(GMEM_MOVEABLE, size));
    file.size = size;
    return file;
}

// The header binds the member to the exported C++ name, as the platform's
// compiler would: the host's call links against the import library, and the
// name and the ordinal resolve to that one member function.
TEST(VirtualFileClear, HostCallsTheMemberByImportNameAndOrdinal)
{
    HMODULE library = GetModuleHandleA("qziso32.dll");
    ASSERT_NE(nullptr, library);
    FARPROC byName = GetProcAddress(library, kClearName);
    ASSERT_NE(nullptr, byName);
    EXPECT_EQ(byName, GetProcAddress(library, MAKEINTRESOURCEA(1005)));
    EXPECT_EQ(nullptr, GetProcAddress(library, "_ZN11VIRTUALFILE5ClearEv"));
    const ClearMember member = reinterpret_cast<ClearMember>(reinterpret_cast<void *>(byName));
    const std::function<void(VIRTUALFILE *)> clears[] = {[](VIRTUALFILE *file) { file->Clear(); },
                                                         [member](VIRTUALFILE *file) { member(file); }};
    for (const auto &clear : clears) {
        VIRTUALFILE file = FileWithData(64);
        ASSERT_NE(nullptr, file.data);
        HGLOBAL block = GlobalHandle(file.data);
        clear(&file);
        EXPECT_EQ(UINT(GMEM_INVALID_HANDLE), GlobalFlags(block)) << "the block is freed";
        EXPECT_EQ(VIRTUALFILE_MARKER, file.marker);
        EXPECT_EQ(nullptr, file.data);
        EXPECT_EQ(0u, file.size);
        clear(&file);  // an empty block stays empty
        EXPECT_EQ(nullptr, file.data);
    }
}

// The registration record: absent, present but held without sharing, and
// present; it is opened, never read.
TEST(RegistrationRecord, AbsentHeldAndPresent)
{
    OSErrorClearError();
    const std::string path = ProgramFolder() + "kel.ri";
    DeleteFileA(path.c_str());
    char buffer[16];
    memset(buffer, 'x', sizeof buffer);
    EXPECT_FALSE(OSGetRegInfo(buffer, sizeof buffer));
    EXPECT_EQ('\0', buffer[0]);
    EXPECT_EQ('x', buffer[1]);
    EXPECT_EQ(RV_NoFile, OSErrorGetErrorValue());
    EXPECT_STREQ(path.c_str(), OSErrorGetErrorInfo()->itemText);
    OSErrorClearError();
    EXPECT_FALSE(OSGetRegInfo(nullptr, 40)) << "no buffer: still no crash";
    EXPECT_FALSE(OSGetRegInfo(buffer, -1));
    OSErrorClearError();
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    DWORD written = 0;
    WriteFile(file, "\x13\x57\x9b\xdf", 4, &written, nullptr);
    strcpy(buffer, "old");
    EXPECT_FALSE(OSGetRegInfo(buffer, sizeof buffer));
    EXPECT_EQ(RV_ReadFailure, OSErrorGetErrorValue());
    CloseHandle(file);
    OSErrorClearError();
    strcpy(buffer, "old");
    EXPECT_TRUE(OSGetRegInfo(buffer, sizeof buffer));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    DeleteFileA(path.c_str());
}

// Start-up fills the version record; stop always agrees.
TEST(InstanceFrame, StartFillsTheVersionRecordAndStopAlwaysAgrees)
{
    ASSERT_TRUE(IsolateInstanceStart(0, 0));
    const OSVERSIONINFOA *info = OSGetVersionInfo();
    EXPECT_EQ(148u, info->dwOSVersionInfoSize);
    EXPECT_GT(info->dwMajorVersion, 0u);
    EXPECT_EQ(1, IsolateInstanceStop(0));
    EXPECT_EQ(1, IsolateInstanceStop(0)) << "stopping without a start still agrees";
    EXPECT_TRUE(IsolateInstanceStart(0, 0));
}

TEST(InstanceFrame, VersionStringIsEmptyAndWritesOneByte)
{
    char buffer[8];
    memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(1, NetDLLGetVersion(buffer));
    EXPECT_EQ('\0', buffer[0]);
    EXPECT_EQ('x', buffer[1]);
}

}  // namespace
