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

}  // namespace
