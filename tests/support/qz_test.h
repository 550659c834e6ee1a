// Helpers the test programs share: clean error state around each test,
// child processes, and a readable form of a DateTimeValue.
#pragma once
#include <gtest/gtest.h>
#include <string>
#include "qziso32.h"

// Clears the error state before and after each test, so tests do not
// depend on the order they run in.
class ErrorStateTest : public ::testing::Test {
protected:
    void SetUp() override { OSErrorClearError(); }
    void TearDown() override { OSErrorClearError(); }
};

// As ErrorStateTest, with the gadget classes registered for the test.
class GadgetTest : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        ASSERT_TRUE(RegisterGadgets(0));
    }
    void TearDown() override
    {
        UnRegisterGadgets();
        ErrorStateTest::TearDown();
    }
};

// Runs `commandLine` with the test program's folder as the current folder;
// returns the exit status, or -1 if the process could not start or did not
// end within `timeoutMs`.
DWORD RunChild(const std::string &commandLine, DWORD timeoutMs = 60000);

// The folder of the running test program, with a trailing backslash.
std::string ProgramFolder();

DateTimeValue MakeDate(unsigned year, unsigned month, unsigned day, unsigned hour = 0,
                       unsigned minute = 0, unsigned second = 0);

// "YYYY-MM-DD hh:mm:ss+b", for failure messages.
std::string ToText(const DateTimeValue &value);

// The step count of a monkey test: `native` on x86_64, `emulated` on the
// i686 lane, which runs under emulation some 20 times slower.
constexpr int MonkeySteps(int native, int emulated)
{
#if defined(_WIN64)
    return (void)emulated, native;
#else
    return (void)native, emulated;
#endif
}

inline bool operator==(const DateTimeValue &a, const DateTimeValue &b)
{
    return memcmp(&a, &b, sizeof a) == 0;
}

inline void PrintTo(const DateTimeValue &value, std::ostream *os) { *os << ToText(value); }
