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

// Hour-and-minute texts are clamped to the day's last minute: at, one below
// and one above it; real times read by the clock.
TEST_F(TumblerStrings, ReadsHourMinuteAndRealStrings)
{
    IntlConventions conventions(CONVENTIONS_MONTH_FIRST_12H);
    const auto hm = OSConvertHourMinuteStringToTumblerTimeString, real = OSConvertRealStringToTumblerTimeString;
    const struct {
        BOOL(WINAPI *convert)(const char *, char *);
        const char *text, *minutes;
    } rows[] = {{hm, "90", "90"},       {hm, "1438", "1438"}, {hm, "1439", "1439"}, {hm, "1440", "1439"},
                {hm, "2000", "1439"},   {hm, "30h", "1439"},  {hm, "23h 59m", "1439"}, {hm, "2 30", "150"},
                {hm, "2h 30m", "150"},  {hm, "5h", "300"},    {hm, "   ", ""},       {real, "14:30", "840"},
                {real, "5 PM", "1020"}, {real, "noon", "720"}, {real, "", ""}};
    for (const auto &row : rows)
        EXPECT_EQ(row.minutes, Minutes(row.convert, row.text)) << row.text;
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
