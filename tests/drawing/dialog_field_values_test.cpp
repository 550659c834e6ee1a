// Lengths in dialog fields and the range checks, as a dialog uses them:
// through a field of a real window and the boxes the checks show.
#include <string>
#include "message_box_driver.h"
#include "qz_test.h"

namespace {

const int kFieldId = 100;

// A window with one edit field, and the decimal separator set for the test.
class DialogField : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        GetProfileStringA("intl", "sDecimal", ".", savedSeparator_, sizeof savedSeparator_);
        dialog_ = CreateWindowA("STATIC", "dialog", WS_OVERLAPPEDWINDOW, 0, 0, 200, 100, nullptr,
                                nullptr, nullptr, nullptr);
        CreateWindowA("EDIT", "", WS_CHILD, 0, 0, 150, 20, dialog_,
                      reinterpret_cast<HMENU>(kFieldId), nullptr, nullptr);
    }
    void TearDown() override
    {
        DestroyWindow(dialog_);
        WriteProfileStringA("intl", "sDecimal", savedSeparator_);
        ErrorStateTest::TearDown();
    }
    void UseSeparator(const char *separator) { WriteProfileStringA("intl", "sDecimal", separator); }
    std::string Shown(DWORD value, LONG metric)
    {
        SetDlgItemReal(dialog_, kFieldId, value, metric);
        char text[64] = {};
        GetDlgItemTextA(dialog_, kFieldId, text, sizeof text);
        return text;
    }
    DWORD Read(const char *text, LONG metric)
    {
        SetDlgItemTextA(dialog_, kFieldId, text);
        return GetDlgItemReal(dialog_, kFieldId, metric);
    }

    HWND dialog_ = nullptr;
    char savedSeparator_[16] = {};
};

TEST_F(DialogField, ShowsCentimetresAndInches)
{
    UseSeparator(".");
    struct Case {
        DWORD value;
        const char *metric, *inches;
    } const cases[] = {
        {0, "0.00", "0.000"},       {1, "0.01", "0.003"},     {254, "2.54", "1.000"},
        {100, "1.00", "0.393"},     {2540, "25.40", "10.000"}, {99999, "999.99", "393.696"},
        {372998, "3729.98", "1468.496"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(c.metric, Shown(c.value, 1)) << c.value;
        EXPECT_EQ(c.inches, Shown(c.value, 0)) << c.value;
    }
    UseSeparator(",");
    EXPECT_EQ("2,54", Shown(254, 1));
    EXPECT_EQ("1,000", Shown(254, 0));
}

TEST_F(DialogField, ReadsWhatTheUserTyped)
{
    UseSeparator(".");
    struct Case {
        const char *text;
        LONG metric;
        DWORD value;
    } const cases[] = {
        {"2.54", 1, 254},  {"3", 1, 300},      {"1.000", 0, 254},  {"1", 0, 254},
        {"1.5", 1, 150},   {"1.05", 1, 105},   {"0.123", 1, 12},   {"2.5", 0, 635},
        {"0.1234", 0, 31}, {"", 1, 0},         {"12.", 1, 1200},   {"abc", 1, 0},
        // 19 characters are read, "12345678.0099999999"; the fraction is then
        // brought under 100 a digit at a time.
        {"12345678.0099999999999999999999999", 1, 1234567899},
    };
    for (const Case &c : cases)
        EXPECT_EQ(c.value, Read(c.text, c.metric)) << "\"" << c.text << "\" metric " << c.metric;
    UseSeparator(",");
    EXPECT_EQ(254u, Read("2,54", 1));
    EXPECT_EQ(200u, Read("2.54", 1)) << "a dot is no separator now";
}

TEST_F(DialogField, WhatIsShownReadsBackUnchanged)
{
    UseSeparator(".");
    // Every value of the first metre, then a spread up to where the inch
    // conversion's 32-bit products still hold.
    const DWORD step = sizeof(void *) == 4 ? 4999 : 1499;
    for (DWORD value = 0; value <= 372998; value += value < 1000 ? 1 : step) {
        SetDlgItemReal(dialog_, kFieldId, value, 0);
        ASSERT_EQ(value, GetDlgItemReal(dialog_, kFieldId, 0)) << "inches, " << value;
        SetDlgItemReal(dialog_, kFieldId, value, 1);
        ASSERT_EQ(value, GetDlgItemReal(dialog_, kFieldId, 1)) << "metric, " << value;
    }
    SetDlgItemReal(dialog_, kFieldId, 372998, 0);
    EXPECT_EQ(372998u, GetDlgItemReal(dialog_, kFieldId, 0)) << "the last that holds";
}

// The text of range message `id` with its two arguments.
std::string RangeText(UINT id, const char *format, ...)
{
    char pattern[512] = {}, text[1024] = {};
    LoadStringA(ResourceGetHandle(), id, pattern, sizeof pattern);
    va_list args;
    va_start(args, format);
    (void)format;
    wvsprintfA(text, pattern, args);
    va_end(args);
    return text;
}

struct RangeCase {
    const char *text;
    DWORD low, high;
    BOOL valid;
};

// Each case's answer, and the range message `message` for each refusal.
template <size_t N>
void ExpectRangeAnswers(const RangeCase (&cases)[N], UINT message,
                        BOOL(WINAPI *check)(HWND, char *, DWORD, DWORD))
{
    for (const RangeCase &c : cases) {
        MessageBoxDriver boxes;
        if (!c.valid)
            boxes.Expect(RangeText(message, "", c.low, c.high), MB_OK, IDOK);
        char text[16];
        lstrcpyA(text, c.text);
        EXPECT_EQ(c.valid, check(nullptr, text, c.low, c.high)) << "\"" << c.text << "\"";
    }
}

TEST_F(DialogField, WholeNumbersInRangeOrTold)
{
    const RangeCase cases[] = {
        {"5", 1, 10, TRUE},  {"1", 1, 10, TRUE},   {"10", 1, 10, TRUE},  {"11", 1, 10, FALSE},
        {"0", 1, 10, FALSE}, {"", 0, 10, TRUE},    {"", 1, 10, FALSE},   {"12a", 0, 100, FALSE},
        {"-3", 0, 10, FALSE}, {" 5", 0, 10, FALSE}, {"007", 0, 10, TRUE},
    };
    ExpectRangeAnswers(cases, 20000, RANGEIsUINTValid);
}

TEST_F(DialogField, RealNumbersInRangeOrTold)
{
    const RangeCase cases[] = {
        {"", 0, 10, TRUE},        {"...", 0, 10, TRUE},    {"5", 0, 10, TRUE},
        {"10.5", 0, 11, TRUE},    {"10.5", 0, 10, FALSE},  {"10.0", 0, 10, TRUE},
        {"1.2.3", 0, 10, FALSE},  {"x.5", 0, 10, FALSE},   {"11", 0, 10, FALSE},
        {"5.", 0, 10, TRUE},      {".5", 0, 10, TRUE},     {"4..5", 0, 10, TRUE},
        // The fraction's digit test bounds each character by the whole
        // part's character at the same place.
        {"9.:", 0, 10, TRUE},     {"1.5a", 0, 10, TRUE},   {"9.a", 0, 10, TRUE},
        {"5.-", 0, 10, FALSE},
    };
    ExpectRangeAnswers(cases, 21000, RANGEIsREALValid);
}

TEST_F(DialogField, DatesAndTimesValidOrTold)
{
    char date[] = "3/4/2005", time[] = "10:30", bad[] = "not a date", early[] = "1/1/1700";
    EXPECT_TRUE(RANGEIsDATEValid(dialog_, date));
    EXPECT_TRUE(RANGEIsTIMEValid(dialog_, time));
    {
        MessageBoxDriver boxes;
        boxes.Expect(RangeText(22000, "", "01/01/1880", "12/12/2100"), MB_OK, IDOK);
        boxes.Expect(RangeText(22000, "", "01/01/1880", "12/12/2100"), MB_OK, IDOK);
        boxes.Expect(RangeText(23000, "", "00:00:00", "23:59:59"), MB_OK, IDOK);
        EXPECT_FALSE(RANGEIsDATEValid(dialog_, bad));
        EXPECT_FALSE(RANGEIsDATEValid(dialog_, early));
        EXPECT_FALSE(RANGEIsTIMEValid(dialog_, bad));
    }
    OSErrorClearError();
}

} // namespace
