// What IsolateInstanceStart asks of the system, watched by patching the
// library's imports: the handle count it asks for and its one failure.
#include "import_patch.h"
#include "qz_test.h"

namespace {

UINT g_handlesAsked;
UINT WINAPI RecordHandleCount(UINT count)
{
    g_handlesAsked = count;
    return count;
}

BOOL WINAPI RefuseVersion(OSVERSIONINFOA *) { return FALSE; }

// Sets or removes HKCU\Settings\MaxIncludedSections for one test.
class MaxIncludedSections {
public:
    explicit MaxIncludedSections(const DWORD *value)
    {
        HKEY key;
        if (RegCreateKeyExA(HKEY_CURRENT_USER, "Settings", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                            &key, nullptr) != ERROR_SUCCESS)
            return;
        if (value)
            RegSetValueExA(key, "MaxIncludedSections", 0, REG_DWORD,
                           reinterpret_cast<const BYTE *>(value), sizeof *value);
        else
            RegDeleteValueA(key, "MaxIncludedSections");
        RegCloseKey(key);
    }
    ~MaxIncludedSections() { RegDeleteKeyA(HKEY_CURRENT_USER, "Settings"); }
};

TEST(InstanceStart, AsksForThreeHandlesPerSectionPlusTwentyCappedAt255)
{
    ImportPatch patch(LibraryModule(), "kernel32.dll", "SetHandleCount",
                      reinterpret_cast<const void *>(RecordHandleCount));
    ASSERT_TRUE(patch.Applied());
    struct Case {
        bool stored;
        DWORD value;
        UINT asked;
    } const cases[] = {
        {false, 0, 50},            // the default of 10 sections
        {true, 0, 20},
        {true, 78, 254},
        {true, 79, 255},           // 257 is capped
        {true, 100, 255},
        {true, 0xFFFFFF9C, 255},   // -100: -280 wraps in the unsigned comparison
        {true, 0xFFFFFFFF, 17},    // -1: the product wraps back to a small count
    };
    for (const Case &c : cases) {
        MaxIncludedSections setting(c.stored ? &c.value : nullptr);
        g_handlesAsked = 0;
        ASSERT_TRUE(IsolateInstanceStart(0, 0));
        EXPECT_EQ(c.asked, g_handlesAsked) << "stored " << c.stored << " value " << c.value;
        IsolateInstanceStop(0);
    }
}

TEST(InstanceStart, FailsWhenTheVersionCannotBeReadAndRecordsNothing)
{
    OSErrorClearError();
    {
        ImportPatch patch(LibraryModule(), "kernel32.dll", "GetVersionExA",
                          reinterpret_cast<const void *>(RefuseVersion));
        ASSERT_TRUE(patch.Applied());
        EXPECT_FALSE(IsolateInstanceStart(0, 0));
    }
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    EXPECT_TRUE(IsolateInstanceStart(0, 0));
    IsolateInstanceStop(0);
}

} // namespace
