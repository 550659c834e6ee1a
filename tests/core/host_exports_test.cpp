// Exports a host reaches by their C++ name, and the registration record.
#include <cstring>
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

TEST(VirtualFileClear, HostCallsTheMemberThroughTheImportLibrary)
{
    // The header binds the member to the exported C++ name, as the platform's
    // compiler would; this call links against the import library.
    VIRTUALFILE file = FileWithData(64);
    ASSERT_NE(nullptr, file.data);
    HGLOBAL block = GlobalHandle(file.data);
    file.Clear();
    EXPECT_EQ(UINT(GMEM_INVALID_HANDLE), GlobalFlags(block)) << "the block is freed";
    EXPECT_EQ(VIRTUALFILE_MARKER, file.marker);
    EXPECT_EQ(nullptr, file.data);
    EXPECT_EQ(0u, file.size);
    file.Clear();  // an empty block stays empty
    EXPECT_EQ(nullptr, file.data);
}

TEST(VirtualFileClear, OrdinalAndNameResolveToOneMemberFunction)
{
    HMODULE library = GetModuleHandleA("qziso32.dll");
    ASSERT_NE(nullptr, library);
    FARPROC byName = GetProcAddress(library, kClearName);
    ASSERT_NE(nullptr, byName);
    EXPECT_EQ(byName, GetProcAddress(library, MAKEINTRESOURCEA(1005)));
    EXPECT_EQ(nullptr, GetProcAddress(library, "_ZN11VIRTUALFILE5ClearEv"));

    VIRTUALFILE file = FileWithData(16);
    ClearMember clear = reinterpret_cast<ClearMember>(reinterpret_cast<void *>(byName));
    clear(&file);
    EXPECT_EQ(nullptr, file.data);
    EXPECT_EQ(0u, file.size);
}

class RegistrationRecord : public ErrorStateTest {
protected:
    std::string path = ProgramFolder() + "kel.ri";
    void TearDown() override
    {
        DeleteFileA(path.c_str());
        ErrorStateTest::TearDown();
    }
};

TEST_F(RegistrationRecord, AbsentRecordIsRecordedAndReadsNothing)
{
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
}

TEST_F(RegistrationRecord, PresentRecordOpensAndStaysUnread)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    DWORD written = 0;
    WriteFile(file, "\x13\x57\x9b\xdf", 4, &written, nullptr);
    // Held without sharing: the record is there but cannot be read.
    char buffer[8] = "old";
    EXPECT_FALSE(OSGetRegInfo(buffer, sizeof buffer));
    EXPECT_EQ(RV_ReadFailure, OSErrorGetErrorValue());
    CloseHandle(file);
    OSErrorClearError();

    strcpy(buffer, "old");
    EXPECT_TRUE(OSGetRegInfo(buffer, sizeof buffer));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

}  // namespace
