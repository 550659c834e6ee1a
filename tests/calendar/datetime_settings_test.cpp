// The date and time conventions: reading, formats by flags, and writing back.
#include "intl_conventions.h"

namespace {

class DateTimeSettings : public ErrorStateTest {};

void DeleteValue(const char *keyPath, const char *name)
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, keyPath, 0, KEY_WRITE, &key) == ERROR_SUCCESS) {
        RegDeleteValueA(key, name);
        RegCloseKey(key);
    }
}

TEST_F(DateTimeSettings, EmptyMarkersFallBackAndYearDigitsAreCounted)
{
    {
        IntlConventions conventions({{"s1159", ""}, {"sShortDate", "dd/MM/yy"}});
        DateTimeIntlSettings intl;
        OSDateTimeGetIntlSettings(&intl);
        EXPECT_STREQ("AM", intl.s1159);
        char format[32];
        OSDateTimeGetDateFormat(format, 2, sizeof format);
        EXPECT_STREQ("dd/MM/yy", format);
    }
}

TEST_F(DateTimeSettings, TimeFormatByFlags)
{
    IntlConventions conventions({{"sTimeFormat", "h:mm:ss tt"}, {"sTime", ":"}});
    const struct {
        DWORD flags;
        const char *format;
    } rows[] = {{0, "h:mm tt"}, {128, "h:mm "}, {64, "tt"}, {16, "h:mm:ss tt"}};
    for (const auto &row : rows) {
        char format[50];
        memset(format, '#', sizeof format);
        EXPECT_TRUE(OSDateTimeGetTimeFormat(format, row.flags, sizeof format));
        EXPECT_STREQ(row.format, format) << row.flags;
    }
    char small[4];
    memset(small, '#', sizeof small);
    OSDateTimeGetTimeFormat(small, 0, 3);
    EXPECT_STREQ("h:", small);
}

TEST_F(DateTimeSettings, SetWritesOnlyWhatChanged)
{
    const char *key = "Software\\Tarvo\\Kelendrix\\98.0\\International";
    DateTimeIntlSettings saved;
    OSDateTimeGetIntlSettings(&saved);
    DeleteValue("Control Panel\\International", "KeliDate");
    DateTimeIntlSettings changed = saved;
    changed.iDate = saved.iDate == 1 ? 2 : 1;
    changed.weekStart = 3;
    EXPECT_TRUE(OSDateTimeSetIntlSettings(&changed));
    EXPECT_EQ(3, OSDateTimeGetWeekStart());
    EXPECT_EQ(3, OSGetProfileInt(key, "KeliWeekStartsOn", -1, "test", 0));
    EXPECT_EQ(changed.iDate, OSGetProfileInt("Control Panel\\International", "KeliDate", -1, "test", 0));
    // The week start alone changes nothing in the store.
    EXPECT_EQ(5, OSDateTimeSetWeekStart(5));
    EXPECT_EQ(3, OSGetProfileInt(key, "KeliWeekStartsOn", -1, "test", 0));
    EXPECT_TRUE(OSDateTimeSetIntlSettings(&saved));
    DeleteValue("Control Panel\\International", "KeliDate");
    DeleteValue(key, "KeliWeekStartsOn");
    OSDateTimeGetWinIniSettings();
    EXPECT_EQ(saved.weekStart, OSDateTimeGetWeekStart());
}

} // namespace
