// Error numbers to text: names by table, system messages, the built text.
#include <cderr.h>
#include <string>
#include "qz_test.h"

namespace {
class ErrorText : public ErrorStateTest {};

TEST_F(ErrorText, CommonDialogAndDdeNames)
{
    struct Case { DWORD number; const char *text; } dialog[] = {
        {CDERR_GENERALCODES, "CDERR_GENERALCODES"}, {CDERR_STRUCTSIZE, "CDERR_STRUCTSIZE"},
        {CDERR_DIALOGFAILURE, "CDERR_DIALOGFAILURE"}, {PDERR_DEFAULTDIFFERENT, "PDERR_DEFAULTDIFFERENT"},
        {FNERR_BUFFERTOOSMALL, "FNERR_BUFFERTOOSMALL"}, {CCERR_CHOOSECOLORCODES, "CCERR_CHOOSECOLORCODES"},
        {12345, "ErrorNo (12345)"}, {0xFFFFFFFF, "ErrorNo (-1)"}};
    for (const Case &c : dialog)
        EXPECT_STREQ(c.text, OSErrorGetCommDlgErrorString(c.number));
    Case dde[] = {{16384, "DMLERR_ADVACKTIMEOUT"}, {16392, "DMLERR_MEMORY_ERROR"}, {16401, "DMLERR_UNFOUND_QUEUE_ID"},
                  {16402, "DDEML ErrorNo 16402"}, {16383, "DDEML ErrorNo 16383"}};
    for (const Case &c : dde)
        EXPECT_STREQ(c.text, OSErrorGetDDEMLErrorString(c.number));
    EXPECT_STREQ("RV_NoFile", OSErrorGetRVErrorString(RV_NoFile));
    EXPECT_STREQ("RV_WrongCodePage", OSErrorGetRVErrorString(RV_WrongCodePage));
    EXPECT_STREQ("ErrorNo (47)", OSErrorGetRVErrorString(static_cast<ResultCode>(47)));
    EXPECT_STREQ("ErrorNo (129)", OSErrorGetRVErrorString(static_cast<ResultCode>(129)));
}

// The system's message where it has one; the built text where it has none.
void ExpectOsText(DWORD number, const char *name, const char *description)
{
    char system[256];
    std::string expected;
    if (FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, number, 1024, system,
                       sizeof system, nullptr)) {
        expected = system;
    } else {
        char built[512];
        wsprintfA(built, "Error %d(%#x) : %s - %s", static_cast<int>(number), number, name, description);
        expected = built;
    }
    EXPECT_EQ(expected, OSErrorGetOSErrorString(number)) << number;
}

TEST_F(ErrorText, OperatingSystemErrors)
{
    struct Case { DWORD number; const char *name; const char *description; } cases[] = {
        {2, "ERROR_FILE_NOT_FOUND", "The system cannot find the file specified."},
        {5, "ERROR_ACCESS_DENIED", "Access is denied."},
        {6, "ERROR_INVALID_HANDLE", "The internal file identifier is incorrect."},
        {16389, "E_FAIL", "Unspecified error"},
        {65535, "E_UNEXPECTED", "Unexpected failure"},
        {458757, "E_ACCESSDENIED", "General access denied error"},
        {458766, "E_OUTOFMEMORY", "Ran out of memory"},
        {458839, "E_INVALIDARG", "One or more arguments are invalid"},
        {0x80070057, "E_INVALIDARG", "One or more arguments are invalid"},
        {0x80004005, "E_FAIL", "Unspecified error"},
        {0x0BADF00D, "Unknown ID", ""},
        {64999, "Unknown ID", ""},
    };
    for (const Case &c : cases)
        ExpectOsText(c.number, c.name, c.description);
    // The masked status codes are not system messages: the table answers.
    EXPECT_STREQ("Error 458757(0x70005) : E_ACCESSDENIED - General access denied error", OSErrorGetOSErrorString(458757));
    EXPECT_STREQ("Error 195948557(0xbadf00d) : Unknown ID - ", OSErrorGetOSErrorString(0x0BADF00D));
}

// Every number the system cannot describe gets a well-formed built text.
TEST_F(ErrorText, BuiltTextsAreWellFormed)
{
    int named = 0;
    for (DWORD number = 0; number < 9000; ++number) {
        std::string text = OSErrorGetOSErrorString(number);
        char prefix[64];
        wsprintfA(prefix, "Error %d(%#x) : ", static_cast<int>(number), number);
        if (text.compare(0, strlen(prefix), prefix) != 0)
            continue;
        ASSERT_NE(std::string::npos, text.find(" - ")) << text;
        ASSERT_LT(text.size(), 256u);
        if (text.find("Unknown ID") == std::string::npos) {
            ++named;
            ASSERT_NE('-', text.back()) << "a named row has a description: " << text;
        }
    }
    RecordProperty("rowsNamedByTheTable", named);
}
}  // namespace
