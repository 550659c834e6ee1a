// The regional settings readers against the system's own values, each
// changed for the test and put back afterwards.
#include <cstring>
#include <functional>
#include "registry_scratch.h"

namespace {

const char kIntlKey[] = "Control Panel\\International";
using LocaleQueries = ErrorStateTest;

// Each reader walks its value: text, raw bytes of the edge sizes, absent.
// A type of 0 removes the value. One byte, as from the profile, counts as
// nothing found; the number readers take at most 12 bytes, the country code 4.
TEST_F(LocaleQueries, EachReaderAtItsValueSizes)
{
    const DWORD two = 2;
    const struct {
        const char *value;
        std::function<LONG()> reader;  // the character readers answer a byte
        DWORD type;
        const void *data;
        DWORD size;
        LONG expected;
    } rows[] = {
        {"sList", OSGetSeparator, REG_SZ, ";", 2, ';'},
        {"sList", OSGetSeparator, REG_SZ, "", 0, ','},
        {"sList", OSGetSeparator, 0, nullptr, 0, ','},
        {"sDecimal", OSGetDecimal, REG_SZ, ":;", 3, ':'},
        {"sDecimal", OSGetDecimal, REG_BINARY, "", 0, '.'},
        {"sThousand", OSGetThousand, REG_SZ, ".", 2, '.'},
        {"sThousand", OSGetThousand, REG_BINARY, "'", 1, ','},
        {"sThousand", OSGetThousand, 0, nullptr, 0, ','},
        {"iMeasure", OSGetMeasurement, REG_SZ, "0", 2, 0},
        {"iMeasure", OSGetMeasurement, REG_SZ, "000000000", 10, 0},
        {"iMeasure", OSGetMeasurement, REG_BINARY, "00000000002", 11, 0},
        {"iMeasure", OSGetMeasurement, 0, nullptr, 0, 1},
        {"iNegNumber", OSGetNegNumber, REG_SZ, "3", 2, 3},
        {"iNegNumber", OSGetNegNumber, REG_DWORD, &two, 4, 2},
        {"iNegNumber", OSGetNegNumber, REG_SZ, "00000000042", 12, 42},
        {"iNegNumber", OSGetNegNumber, REG_SZ, "123456789012", 13, 0},
        {"iNegNumber", OSGetNegNumber, 0, nullptr, 0, 1},
        {"sLanguage", OSGetCountryCode, REG_SZ, "DEU", 4, 0},
        {"sLanguage", OSGetCountryCode, REG_SZ, "12", 3, 12},
        {"sLanguage", OSGetCountryCode, REG_SZ, "123456789", 10, 1234},
    };
    for (const auto &row : rows) {
        SavedValue saved(HKEY_CURRENT_USER, kIntlKey, row.value);
        if (row.type)
            saved.Set(row.type, row.data, row.size);
        else
            saved.Remove();
        EXPECT_EQ(row.expected, row.reader())
            << row.value << " " << row.size;
    }
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    EXPECT_EQ(GetACP(), OSGetCodePage());
}

TEST_F(LocaleQueries, LanguageNameOrItsDefault)
{
    SavedValue language(HKEY_CURRENT_USER, kIntlKey, "sLanguage");
    for (const char *stored : {"DEU", static_cast<const char *>(nullptr)}) {
        if (stored)
            language.SetText(stored);
        else
            language.Remove();
        char buffer[8];
        memset(buffer, kGuard, sizeof buffer);
        EXPECT_EQ(1, OSGetLanguage(buffer, 6));
        EXPECT_STREQ(stored ? stored : "en", buffer);
        EXPECT_TRUE(GuardIntact(buffer, strlen(buffer) + 1, sizeof buffer));
    }
}

TEST_F(LocaleQueries, CountryByTable)
{
    SavedValue country(HKEY_CURRENT_USER, kIntlKey, "iCountry");
    const struct {
        const char *stored;
        LONG size;
        BOOL result;
        const char *expected;  // null: the buffer stays as it was
    } cases[] = {
        {"1", 8, 1, "US"},    {"49", 8, 1, "DE"},  {"358", 8, 1, "FI"}, {"41", 8, 1, "**"},
        {"44", 2, 1, "G"},    {"44", 3, 1, "GB"},  {"1000", 8, 0, nullptr}, {nullptr, 8, 0, nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.stored ? c.stored : "(absent)");
        c.stored ? country.SetText(c.stored) : country.Remove();
        char buffer[12];
        memset(buffer, kGuard, sizeof buffer);
        EXPECT_EQ(c.result, OSGetCountry(buffer, c.size));
        if (c.expected) {
            EXPECT_STREQ(c.expected, buffer);
        }
        EXPECT_TRUE(GuardIntact(buffer, c.expected ? strlen(c.expected) + 1 : 0, sizeof buffer));
    }
}

TEST_F(LocaleQueries, OrdinalSuffixes)
{
    const struct {
        DWORD number;
        LONG plain, size;
        BOOL result;
        const char *expected;  // null: nothing written
        ResultCode code;
        DWORD item;
    } cases[] = {
        {1, 0, 16, 1, "1st", RV_Success, 0},     {2, 0, 16, 1, "2nd", RV_Success, 0},
        {11, 0, 16, 1, "11th", RV_Success, 0},   {22, 0, 16, 1, "22nd", RV_Success, 0},
        {31, 0, 16, 1, "31st", RV_Success, 0},   {3, 1, 16, 1, "third", RV_Success, 0},
        {22, 0, 3, 1, "22", RV_Success, 0},      {22, 0, 4, 1, "22n", RV_Success, 0},
        {21, 1, 7, 1, "twenty", RV_Success, 0},
        {0, 0, 16, 1, "@2%s", RV_Success, 0},  // string 2600 is both the format and the ordinal text
        {99, 0, 8, 0, nullptr, RV_StringNonExistant, 2699},
        {99, 1, 8, 0, nullptr, RV_StringNonExistant, 3099},
        {1, 0, 0, 0, nullptr, RV_BadParms, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.number) + "/" + std::to_string(c.size));
        OSErrorClearError();
        char buffer[24];
        memset(buffer, kGuard, sizeof buffer);
        EXPECT_EQ(c.result, OSSuffix(c.number, c.plain, buffer, c.size));
        if (c.expected) {
            EXPECT_STREQ(c.expected, buffer);
        }
        EXPECT_TRUE(GuardIntact(buffer, c.expected ? strlen(c.expected) + 1 : 0, sizeof buffer));
        EXPECT_EQ(c.code, OSErrorGetErrorValue());
        if (c.item) {
            EXPECT_EQ(c.item, OSErrorGetErrorInfo()->itemValue);
        }
    }
}

}  // namespace
