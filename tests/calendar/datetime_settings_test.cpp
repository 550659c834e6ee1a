// The date and time conventions: reading, formats by flags, and writing back.
#include <cstring>
#include <string>
#include "intl_conventions.h"

namespace {

class DateTimeSettings : public ErrorStateTest {};

TEST_F(DateTimeSettings, EmptyMarkersFallBackAndYearDigitsAreCounted)
{
    IntlConventions conventions({{"s1159", ""}, {"sShortDate", "dd/MM/yy"}});
    DateTimeIntlSettings intl;
    OSDateTimeGetIntlSettings(&intl);
    EXPECT_STREQ("AM", intl.s1159);
    char format[32];
    OSDateTimeGetDateFormat(format, 2, sizeof format);
    EXPECT_STREQ("dd/MM/yy", format);
}

TEST_F(DateTimeSettings, DefaultFormatsWhenTheSystemHasNone)
{
    // Short and long date formats by field order come from the resource
    // library; the time format by the clock.
    const struct { const char *iDate; UINT shortId; } orders[] = {
        {"0", 50452}, {"1", 50450}, {"2", 50454}, {"3", 50454}};
    for (const auto &order : orders) {
        for (const char *iTime : {"0", "1"}) {
            IntlConventions conventions({{"iDate", order.iDate}, {"iTime", iTime}, {"sShortDate", nullptr},
                                         {"sLongDate", nullptr}, {"sTimeFormat", nullptr}});
            char expected[64] = {}, format[64] = {};
            LoadStringA(ResourceGetHandle(), order.shortId, expected, sizeof expected);
            OSDateTimeGetDateFormat(format, 2, sizeof format);
            EXPECT_STREQ(expected, format) << "iDate " << order.iDate;
            LoadStringA(ResourceGetHandle(), order.shortId + 1, expected, sizeof expected);
            OSDateTimeGetDateFormat(format, 0, sizeof format);
            EXPECT_STREQ(expected, format) << "iDate " << order.iDate;
            OSDateTimeGetTimeFormat(format, 16, sizeof format);
            EXPECT_STREQ(*iTime == '1' ? "HH:mm:ss" : "h:mm:ss tt", format) << "iTime " << iTime;
        }
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

const char kSystemKey[] = "Control Panel\\International";
const char kProductKey[] = "Software\\Tarvo\\Kelendrix\\98.0\\International";

// A value of the current user's store as text ("" when absent); numbers in
// decimal.
std::string StoredValue(const char *keyPath, const char *name, bool *exists)
{
    char data[300] = {};
    DWORD size = sizeof data - 1, type = 0;
    *exists = RegGetValueA(HKEY_CURRENT_USER, keyPath, name, RRF_RT_ANY, &type, data, &size) == ERROR_SUCCESS;
    return type == REG_DWORD ? std::to_string(*reinterpret_cast<DWORD *>(data)) : std::string(data);
}

// What OSDateTimeSetIntlSettings writes back, field by field.
const struct WrittenValue {
    const char *keyPath, *name, *text;
    void (*change)(DateTimeIntlSettings &);
} kWrittenValues[] = {
    {kSystemKey, "KeliTime", "7", [](DateTimeIntlSettings &s) { s.iTime = 7; }},
    {kSystemKey, "KelsTime", "#", [](DateTimeIntlSettings &s) { strcpy(s.sTime, "#"); }},
    {kSystemKey, "Kels1159", "morn", [](DateTimeIntlSettings &s) { strcpy(s.s1159, "morn"); }},
    {kSystemKey, "Kels2359", "eve", [](DateTimeIntlSettings &s) { strcpy(s.s2359, "eve"); }},
    {kSystemKey, "KeliDate", "5", [](DateTimeIntlSettings &s) { s.iDate = 5; }},
    {kSystemKey, "KelsDate", "~", [](DateTimeIntlSettings &s) { strcpy(s.sDate, "~"); }},
    {kProductKey, "KeliWeekStartsOn", "4", [](DateTimeIntlSettings &s) { s.weekStart = 4; }},
    {kProductKey, "KelsCodePageTranslation", "1252",
     [](DateTimeIntlSettings &s) { strcpy(s.codePageTranslation, "1252"); }},
};

void DeleteWrittenValues()
{
    for (const WrittenValue &value : kWrittenValues)
        RegDeleteKeyValueA(HKEY_CURRENT_USER, value.keyPath, value.name);
}

TEST_F(DateTimeSettings, SetWritesEachChangedFieldUnderItsNameAndNothingElse)
{
    DateTimeIntlSettings saved;
    OSDateTimeGetIntlSettings(&saved);
    for (const WrittenValue &row : kWrittenValues) {
        DeleteWrittenValues();
        DateTimeIntlSettings changed = saved;
        row.change(changed);
        EXPECT_TRUE(OSDateTimeSetIntlSettings(&changed));
        for (const WrittenValue &value : kWrittenValues) {
            bool exists = false;
            const std::string text = StoredValue(value.keyPath, value.name, &exists);
            EXPECT_EQ(&value == &row, exists) << row.name << " changed, " << value.name << " stored";
            if (&value == &row) {
                EXPECT_EQ(row.text, text) << row.name;
            }
        }
        EXPECT_TRUE(OSDateTimeSetIntlSettings(&saved));
    }
    // An unchanged record writes nothing.
    DeleteWrittenValues();
    EXPECT_TRUE(OSDateTimeSetIntlSettings(&saved));
    for (const WrittenValue &value : kWrittenValues) {
        bool exists = true;
        StoredValue(value.keyPath, value.name, &exists);
        EXPECT_FALSE(exists) << value.name;
    }
    OSDateTimeGetWinIniSettings();
}

} // namespace
