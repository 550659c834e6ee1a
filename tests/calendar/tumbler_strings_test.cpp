// Tumbler time strings both ways.
#include "intl_conventions.h"

namespace {

class TumblerStrings : public ErrorStateTest {};

std::string Minutes(BOOL(WINAPI *convert)(const char *, char *), const char *text)
{
    char out[64];
    memset(out, '#', sizeof out);
    EXPECT_TRUE(convert(text, out));
    return out;
}

TEST_F(TumblerStrings, ReadsHourAndMinuteStrings)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    const struct {
        const char *text, *minutes;
    } rows[] = {{"90", "90"}, {"2000", "1439"}, {"30h", "1439"}, {"2 30", "150"}, {"2h 30m", "150"},
                {"5h", "300"}, {"   ", ""}};
    for (const auto &row : rows)
        EXPECT_EQ(row.minutes, Minutes(OSConvertHourMinuteStringToTumblerTimeString, row.text)) << row.text;
}

TEST_F(TumblerStrings, ReadsRealStrings)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    const struct {
        const char *text, *minutes;
    } rows[] = {{"14:30", "840"}, {"5 PM", "1020"}, {"noon", "720"}, {"", ""}};
    for (const auto &row : rows)
        EXPECT_EQ(row.minutes, Minutes(OSConvertRealStringToTumblerTimeString, row.text)) << row.text;
}

TEST_F(TumblerStrings, WritesByTheClockAndRoundTrips)
{
    {
        IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
        EXPECT_EQ("01h 30m", Minutes(OSConvertTumblerTimeStringToHourMinuteString, "90"));
        EXPECT_EQ("17h 0", Minutes(OSConvertTumblerTimeStringToRealString, "5 PM"));
        // The minute unit separates: "pm" loses its marker.
        EXPECT_EQ("05h 0", Minutes(OSConvertTumblerTimeStringToRealString, "5 pm"));
    }
    IntlConventions conventions(CONVENTIONS_DAY_FIRST_24H);
    for (int minutes = 0; minutes < 1440; ++minutes) {
        char number[16], text[64], back[16];
        snprintf(number, sizeof number, "%d", minutes);
        ASSERT_TRUE(OSConvertTumblerTimeStringToHourMinuteString(number, text));
        ASSERT_TRUE(OSConvertHourMinuteStringToTumblerTimeString(text, back));
        ASSERT_STREQ(number, back) << text;
    }
    char guarded[8];
    memset(guarded, '#', sizeof guarded);
    EXPECT_TRUE(OSConvertTumblerTimeStringToRealString("23:59", guarded));
    EXPECT_STREQ("23:00", guarded);
    EXPECT_EQ('#', guarded[6]);
}

} // namespace
