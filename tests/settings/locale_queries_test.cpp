// The regional settings readers against the system's own values, each
// changed for the test and put back afterwards.
#include <cstring>
#include "registry_scratch.h"

namespace {

const char kIntlKey[] = "Control Panel\\International";

class LocaleQueries : public ErrorStateTest {};

}  // namespace

TEST_F(LocaleQueries, SeparatorAndMeasurementFollowTheRegistry)
{
    SavedValue list(HKEY_CURRENT_USER, kIntlKey, "sList");
    SavedValue measure(HKEY_CURRENT_USER, kIntlKey, "iMeasure");
    list.SetText(";");
    EXPECT_EQ(';', OSGetSeparator());
    list.Set(REG_SZ, "", 0);  // no bytes: the default
    EXPECT_EQ(',', OSGetSeparator());
    list.Remove();
    EXPECT_EQ(',', OSGetSeparator());
    measure.SetText("0");
    EXPECT_EQ(0, OSGetMeasurement());
    measure.Set(REG_BINARY, "00000000002", 11);  // longer than its 10 bytes, no terminator
    EXPECT_EQ(0, OSGetMeasurement());
    measure.Remove();
    EXPECT_EQ(1, OSGetMeasurement());
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(LocaleQueries, LanguageAndItsMisreadCountryCode)
{
    SavedValue language(HKEY_CURRENT_USER, kIntlKey, "sLanguage");
    char buffer[8];
    language.SetText("DEU");
    memset(buffer, kGuard, sizeof buffer);
    EXPECT_EQ(1, OSGetLanguage(buffer, 6));
    EXPECT_STREQ("DEU", buffer);
    EXPECT_EQ(0, OSGetCountryCode());  // a language name has no digits
    language.SetText("12");
    EXPECT_EQ(12, OSGetCountryCode());
    language.SetText("123456789");
    EXPECT_EQ(1234, OSGetCountryCode());  // four bytes read, no terminator among them
    language.Remove();
    memset(buffer, kGuard, sizeof buffer);
    EXPECT_EQ(1, OSGetLanguage(buffer, 6));
    EXPECT_STREQ("en", buffer);
    EXPECT_TRUE(GuardIntact(buffer, 3, sizeof buffer));
    EXPECT_EQ(GetACP(), OSGetCodePage());
}

TEST_F(LocaleQueries, CountryByTable)
{
    SavedValue country(HKEY_CURRENT_USER, kIntlKey, "iCountry");
    struct Case {
        const char *stored;
        LONG size;
        BOOL result;
        const char *expected;  // null: the buffer stays as it was
    } cases[] = {
        {"1", 8, 1, "US"},    {"49", 8, 1, "DE"},  {"358", 8, 1, "FI"}, {"41", 8, 1, "**"},
        {"44", 2, 1, "G"},    {"1000", 8, 0, nullptr}, {nullptr, 8, 0, nullptr},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.stored ? c.stored : "(absent)");
        if (c.stored)
            country.SetText(c.stored);
        else
            country.Remove();
        char buffer[12];
        memset(buffer, kGuard, sizeof buffer);
        EXPECT_EQ(c.result, OSGetCountry(buffer, c.size));
        if (c.expected) {
            EXPECT_STREQ(c.expected, buffer);
            EXPECT_TRUE(GuardIntact(buffer, strlen(c.expected) + 1, sizeof buffer));
        } else {
            EXPECT_TRUE(GuardIntact(buffer, 0, sizeof buffer));
        }
    }
}

// The profile's "Intl" section is the same key on this platform, so the
// fallback finds nothing the key has not: the fixed answers stand in.
TEST_F(LocaleQueries, MarksFromTheRegistryOrTheirFixedAnswers)
{
    SavedValue decimal(HKEY_CURRENT_USER, kIntlKey, "sDecimal");
    SavedValue thousand(HKEY_CURRENT_USER, kIntlKey, "sThousand");
    decimal.SetText(",");
    thousand.SetText(".");
    EXPECT_EQ(',', OSGetDecimal());
    EXPECT_EQ('.', OSGetThousand());
    decimal.SetText(":;");
    EXPECT_EQ(':', OSGetDecimal());
    // One byte, as from the profile, counts as nothing found.
    thousand.Set(REG_BINARY, "'", 1);
    EXPECT_EQ(',', OSGetThousand());
    decimal.Set(REG_BINARY, "", 0);
    thousand.Remove();
    EXPECT_EQ('.', OSGetDecimal());
    EXPECT_EQ(',', OSGetThousand());
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(LocaleQueries, NegativeNumberForm)
{
    SavedValue negative(HKEY_CURRENT_USER, kIntlKey, "iNegNumber");
    negative.SetText("3");
    EXPECT_EQ(3, OSGetNegNumber());
    DWORD two = 2;
    negative.Set(REG_DWORD, &two, sizeof two);
    EXPECT_EQ(2, OSGetNegNumber());
    negative.SetText("1234567890123");  // does not fit the 12 bytes
    EXPECT_EQ(0, OSGetNegNumber());
    negative.Remove();
    EXPECT_EQ(1, OSGetNegNumber());
}

TEST_F(LocaleQueries, OrdinalSuffixes)
{
    struct Case {
        DWORD number;
        LONG plain, size;
        const char *expected;
    } cases[] = {
        {1, 0, 16, "1st"},   {2, 0, 16, "2nd"},    {11, 0, 16, "11th"},  {22, 0, 16, "22nd"},
        {31, 0, 16, "31st"}, {3, 1, 16, "third"},  {22, 0, 3, "22"},     {21, 1, 7, "twenty"},
        {0, 0, 16, "@2%s"},  // string 2600 is both the format and the ordinal text
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.expected);
        char buffer[24];
        memset(buffer, kGuard, sizeof buffer);
        EXPECT_EQ(1, OSSuffix(c.number, c.plain, buffer, c.size));
        EXPECT_STREQ(c.expected, buffer);
        EXPECT_TRUE(GuardIntact(buffer, strlen(c.expected) + 1, sizeof buffer));
    }
    char buffer[8];
    memset(buffer, kGuard, sizeof buffer);
    EXPECT_EQ(0, OSSuffix(99, 0, buffer, sizeof buffer));
    EXPECT_EQ(RV_StringNonExistant, OSErrorGetErrorValue());
    EXPECT_EQ(2699u, OSErrorGetErrorInfo()->itemValue);
    OSErrorClearError();
    EXPECT_EQ(0, OSSuffix(99, 1, buffer, sizeof buffer));
    EXPECT_EQ(3099u, OSErrorGetErrorInfo()->itemValue);
    OSErrorClearError();
    EXPECT_EQ(0, OSSuffix(1, 0, buffer, 0));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    EXPECT_TRUE(GuardIntact(buffer, 0, sizeof buffer));
}
