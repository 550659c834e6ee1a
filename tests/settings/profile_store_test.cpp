// The settings store through its exports, against a scratch key of the
// test's own under the product key; with memory short too.
#include <cstring>
#include "failure_seam.h"
#include "registry_scratch.h"

using ProfileStore = ScratchKeyTest;

TEST_F(ProfileStore, MissingKeyIsCreatedAndAnsweredByTheDefault)
{
    ASSERT_FALSE(KeyExists());
    EXPECT_EQ(7, OSGetProfileInt(path.c_str(), "Missing", 7, "report", 0));
    EXPECT_TRUE(KeyExists());
    EXPECT_EQ(7, OSGetProfileInt(path.c_str(), "Missing", 7, "report", 0));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(ProfileStore, TextsAreCountedWithTheirTerminatorAndCutWithout)
{
    StoreText("Text", "hello world");
    struct Case {
        const char *name, *defaultText;
        DWORD bufferSize, expected;
        const char *bytes;  // what the buffer must start with
    } cases[] = {
        {"Text", "", 13, 12, "hello world"},      // whole, terminator counted
        {"Text", "", 12, 12, "hello world"},      // exactly
        {"Text", "", 11, 11, "hello world"},      // cut, no terminator
        {"Missing", "", 8, 0, ""},                // empty default: one zero byte
        {"Missing", "abcdefg", 7, 7, "abcdefg"},  // long default cut, no terminator
        {"Missing", "abcdefg", 8, 8, "abcdefg"},
        {"Missing", "x", 8, 2, "x"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.name) + " / " + c.defaultText);
        char buffer[40];
        memset(buffer, kGuard, sizeof buffer);
        EXPECT_EQ(c.expected, OSGetProfileString(path.c_str(), c.name, c.defaultText, buffer,
                                                 c.bufferSize, "report", 0));
        size_t placed = c.expected ? c.expected : 1;
        EXPECT_EQ(0, memcmp(buffer, c.bytes, placed < strlen(c.bytes) + 1 ? placed : strlen(c.bytes) + 1));
        EXPECT_TRUE(GuardIntact(buffer, placed, sizeof buffer));
    }
}

TEST_F(ProfileStore, NumbersReadFromTextOrRawBytes)
{
    const BYTE eight[] = {1, 0, 0, 0, 9, 9, 9, 9};
    const BYTE two[] = {5, 1};
    DWORD twelve = 12;
    struct Case {
        const char *name;
        DWORD type;
        const void *data;
        DWORD size;
        LONG expected;
    } cases[] = {
        {"Text", REG_SZ, "12", 3, 12},
        {"Word", REG_DWORD, &twelve, 4, 12},
        {"Padded", REG_SZ, "  42xyz", 8, 42},
        {"Unterminated", REG_SZ, "77", 2, 77},
        {"TooLongText", REG_SZ, "1234567890123456", 17, 0},  // more than 12 bytes
        {"ShortBinary", REG_BINARY, two, 2, 0x105},
        {"LongBinary", REG_BINARY, eight, 8, 1},
        {"Empty", REG_BINARY, "", 0, -5},  // no bytes: the default
    };
    for (const Case &c : cases)
        Store(c.name, c.type, c.data, c.size);
    for (const Case &c : cases)
        EXPECT_EQ(c.expected, OSGetProfileInt(path.c_str(), c.name, -5, "report", 0)) << c.name;
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

// A text longer than the caller's buffer is read whole into a block on the
// stack, or past that block's size into one from the heap, and cut; its
// bytes never pass the buffer. With memory short a stored number and a cut
// text that fits the stack block read as they do with memory to spare.
TEST_F(ProfileStore, CutTextsAndNumbersReadTheSameWithEveryAllocationRefused)
{
    const BYTE raw[8] = {0x2A, 0x01, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    Store("Word", REG_DWORD, raw, 4);
    Store("Binary", REG_BINARY, raw, sizeof raw);
    Store("Short", REG_BINARY, raw, 2);
    StoreText("Text", "299");
    StoreText("Long", std::string(4000, 'q').c_str());
    StoreText("Big", std::string(100000, 'q').c_str());
    struct Row {
        const char *name;
        LONG number;
    } const numbers[] = {{"Word", 0x12A}, {"Binary", 0x12A}, {"Short", 0x12A}, {"Text", 299}};
    for (int refused = 0; refused < 2; ++refused) {
        FailureSeam seam(FailureSeam::Memory, refused, true);
        for (const Row &row : numbers)
            EXPECT_EQ(row.number, OSGetProfileInt(path.c_str(), row.name, -1, "r", 0)) << row.name << refused;
        for (const char *name : {"Long", "Big"})
            for (DWORD size : {1u, 8u, 16u, 3999u, 4000u}) {
                if (refused && !strcmp(name, "Big"))
                    continue;
                std::vector<char> buffer(size + 1, kGuard);
                EXPECT_EQ(size, OSGetProfileString(path.c_str(), name, "default", buffer.data(), size, "r", 0))
                    << name << " " << size << " " << refused;
                EXPECT_EQ(std::string(size, 'q'), std::string(buffer.data(), size)) << size << " " << refused;
                EXPECT_TRUE(GuardIntact(buffer.data(), size, size + 1));
            }
        EXPECT_EQ(RV_Success, OSErrorGetErrorValue()) << refused;
    }
}

TEST_F(ProfileStore, KeyThatCannotBeOpenedIsAReadFailure)
{
    char buffer[8];
    memset(buffer, kGuard, sizeof buffer);
    HKEY noRoot = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x7770));
    EXPECT_EQ(0u, OSGetProfileStringPassID("Any", "Value", "dflt", buffer, sizeof buffer,
                                           "report.ini", 0, noRoot));
    EXPECT_TRUE(GuardIntact(buffer, 0, sizeof buffer));
    EXPECT_EQ(RV_ReadFailure, OSErrorGetErrorValue());
    EXPECT_STREQ("report.ini", OSErrorGetErrorInfo()->itemText);
    OSErrorClearError();
    EXPECT_EQ(0, OSGetProfileInt(nullptr, "Value", 9, "other.ini", 0));  // 0, not the default
    EXPECT_EQ(RV_ReadFailure, OSErrorGetErrorValue());
    EXPECT_STREQ("other.ini", OSErrorGetErrorInfo()->itemText);
}

TEST_F(ProfileStore, WritersStoreTextAndDoubleWords)
{
    EXPECT_EQ(1, OSWriteProfileString(path.c_str(), "Name", "Kel", "report", 0));
    EXPECT_EQ(1, OSWriteProfileInt(path.c_str(), "Count", -2, "report", 0));
    char buffer[8] = {};
    EXPECT_EQ(4u, OSGetProfileString(path.c_str(), "Name", "", buffer, sizeof buffer, "r", 0));
    EXPECT_STREQ("Kel", buffer);
    EXPECT_EQ(-2, OSGetProfileInt(path.c_str(), "Count", 0, "report", 0));
    DWORD type = 0, size = 0;
    EXPECT_EQ(ERROR_SUCCESS, RegGetValueA(HKEY_CURRENT_USER, path.c_str(), "Count", RRF_RT_ANY,
                                          &type, nullptr, &size));
    EXPECT_EQ(static_cast<DWORD>(REG_DWORD), type);
    EXPECT_EQ(4u, size);
    // A null text removes the value; removing it again fails.
    EXPECT_EQ(1, OSWriteProfileString(path.c_str(), "Name", nullptr, "report", 0));
    EXPECT_EQ(0u, OSGetProfileString(path.c_str(), "Name", "", buffer, sizeof buffer, "r", 0));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    EXPECT_EQ(0, OSWriteProfileString(path.c_str(), "Name", nullptr, "gone.ini", 0));
    EXPECT_EQ(RV_WriteFailure, OSErrorGetErrorValue());
    EXPECT_STREQ("gone.ini", OSErrorGetErrorInfo()->itemText);
    OSErrorClearError();
    EXPECT_EQ(0, OSWriteProfileInt(nullptr, "Count", 1, "nokey.ini", 0));
    EXPECT_EQ(RV_WriteFailure, OSErrorGetErrorValue());
}

TEST_F(ProfileStore, NullValueNameListsTheNames)
{
    StoreText("a", "1");
    StoreText("bb", "2");
    StoreText("ccc", "3");
    char buffer[32];
    memset(buffer, kGuard, sizeof buffer);
    ASSERT_EQ(9u, OSGetProfileString(path.c_str(), nullptr, "", buffer, sizeof buffer, "r", 0));
    std::string names(buffer, 9);
    for (const char *name : {"a", "bb", "ccc"})
        EXPECT_NE(std::string::npos, names.find(std::string(name) + '\0')) << name;
    // A small buffer takes what fits and no more.
    memset(buffer, kGuard, sizeof buffer);
    OSGetProfileString(path.c_str(), nullptr, "", buffer, 5, "r", 0);
    EXPECT_TRUE(GuardIntact(buffer, 5, sizeof buffer));
}
