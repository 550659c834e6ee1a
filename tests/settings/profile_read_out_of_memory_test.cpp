// The profile readers answer the same with memory short: a stored number or
// a text longer than the caller's buffer reads as it does with memory to
// spare, at every size up to the values a reader keeps on its stack.
#include <cstring>
#include "failure_seam.h"
#include "registry_scratch.h"

using ProfileReadOutOfMemory = ScratchKeyTest;

TEST_F(ProfileReadOutOfMemory, NumbersAndCutTextsReadTheSameWithEveryAllocationRefused)
{
    const BYTE raw[8] = {0x2A, 0x01, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    Store("Word", REG_DWORD, raw, 4);
    Store("Binary", REG_BINARY, raw, sizeof raw);
    Store("Short", REG_BINARY, raw, 2);
    StoreText("Text", "299");
    const std::string longText(4000, 'q');
    StoreText("Long", longText.c_str());
    struct Row {
        const char *name;
        LONG number;
    } const numbers[] = {{"Word", 0x12A}, {"Binary", 0x12A}, {"Short", 0x12A}, {"Text", 299}};
    for (int refused = 0; refused < 2; ++refused) {
        FailureSeam seam(FailureSeam::Memory, refused, true);
        for (const Row &row : numbers)
            EXPECT_EQ(row.number, OSGetProfileInt(path.c_str(), row.name, -1, "r", 0)) << row.name << refused;
        for (DWORD size : {1u, 8u, 3999u, 4000u}) {
            std::vector<char> buffer(size + 1, '#');
            EXPECT_EQ(size, OSGetProfileString(path.c_str(), "Long", "default", buffer.data(), size, "r", 0))
                << size << " " << refused;
            EXPECT_EQ(std::string(size, 'q'), std::string(buffer.data(), size)) << size << " " << refused;
            EXPECT_EQ('#', buffer[size]);
        }
        EXPECT_EQ(RV_Success, OSErrorGetErrorValue()) << refused;
    }
}
