// Library start-up and the per-client calls, as a host sees them.
#include <cstring>
#include "qz_test.h"

namespace {

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

TEST(InstanceFrame, ResourceLibraryIsLoadedAtAttach)
{
    HMODULE resources = ResourceGetHandle();
    ASSERT_NE(nullptr, resources);
    // Which language depends on the machine's setting; some library is loaded.
    char name[MAX_PATH] = {};
    GetModuleFileNameA(resources, name, MAX_PATH);
    EXPECT_NE(nullptr, strstr(name, "KE1C30")) << name;
    char title[64] = {};
    EXPECT_GT(LoadStringA(resources, 1, title, sizeof title), 0);
}

TEST(InstanceFrame, AttachFailsTheLoadAsTheCauseDecides)
{
    // A library that lacks string 801: the missing string is recorded while
    // the mode table is still zero, which ends the process with 255.
    EXPECT_EQ(255u, RunChild("attach_probe.exe /LZZ"));
    // The language's own library: the load succeeds.
    EXPECT_EQ(0u, RunChild("attach_probe.exe /LEN"));
    // No library at all: the load fails without ending the process.
    EXPECT_EQ(1u, RunChild("attach_probe.exe /LQQ"));
}

// The host relies on these offsets in the 32-bit product. The test reads
// them at run time, so a wrong layout fails the i686 lane only.
TEST(HostLayout, RecordsKeepTheir32BitLayout)
{
    EXPECT_EQ(8u, sizeof(DateTimeValue));
    if (sizeof(void *) != 4)
        GTEST_SKIP() << "pointer-sized fields widen in the x86_64 build";
    EXPECT_EQ(1408u, sizeof(ErrorContext));
    EXPECT_EQ(12u, sizeof(VIRTUALFILE));
    EXPECT_EQ(16u, offsetof(ErrorContext, itemText));
    EXPECT_EQ(272u, offsetof(ErrorContext, functionAddress));
    EXPECT_EQ(308u, offsetof(ErrorContext, memberName));
    EXPECT_EQ(349u, offsetof(ErrorContext, detailText));
    EXPECT_EQ((476u - 130u) * 4, offsetof(ErrorContext, quietInBackground));
    EXPECT_EQ((479u - 130u) * 4, offsetof(ErrorContext, offerClose));
}

}  // namespace
