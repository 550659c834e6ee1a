// The error state as a host sees it: first failure wins, the argument reading
// of each code, the modes, the callback veto, and the record's flags.
#include <cstring>
#include <string>
#include "qz_test.h"

namespace {

class ErrorState : public ErrorStateTest {};

const ErrorContext &Ctx() { return *OSErrorGetErrorInfo(); }

TEST_F(ErrorState, FirstFailureWinsWithItsDetails)
{
    OSErrorSetErrorInfo(RV_Success);
    EXPECT_FALSE(OSErrorIsErrorPending()) << "code 0 records nothing";
    OSErrorSetErrorInfo(RV_NoFile, "first.txt");
    OSErrorSetErrorInfo(RV_BadPath, "second");
    OSErrorSetErrorInfo(RV_YearRange, 3000, 1800, 2101);
    EXPECT_EQ(RV_NoFile, OSErrorGetErrorValue());
    EXPECT_STREQ("first.txt", Ctx().itemText);
    EXPECT_EQ(0u, Ctx().rangeHigh);
    EXPECT_TRUE(OSErrorIsErrorPending());
    OSErrorClearError();
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    EXPECT_FALSE(OSErrorIsErrorPending());
}

TEST_F(ErrorState, OsErrorsTranslateAndKeepTheNameWhereTheNewCodeReadsOne)
{
    struct Row {
        DWORD osError;
        ResultCode expected;
        const char *keptName;
    } rows[] = {
        {2, RV_NoFile, "f.dat"},        {3, RV_BadPath, "f.dat"},
        {5, RV_AccessDenied, "f.dat"},  {32, RV_AccessDenied, "f.dat"},
        {19, RV_WriteProtect, "f.dat"}, {65, RV_NetworkAccessDenied, "f.dat"},
        {123, RV_InvalidPlatformFile, "f.dat"},
        {4, RV_OSError, "f.dat"},       {1234, RV_OSError, ""},
    };
    for (const Row &row : rows) {
        OSErrorClearError();
        SetLastError(row.osError);
        OSErrorSetErrorInfo(RV_OSError, "f.dat");
        EXPECT_EQ(row.expected, OSErrorGetErrorValue()) << row.osError;
        EXPECT_EQ(row.osError, Ctx().osError);
        EXPECT_STREQ(row.keptName, Ctx().itemText) << row.osError;

        OSErrorClearError();
        SetLastError(0);
        OSErrorSetErrorInfo(RV_ForceOSError, row.osError, "f.dat");
        EXPECT_EQ(row.expected, OSErrorGetErrorValue()) << "forced " << row.osError;
        EXPECT_EQ(row.osError, Ctx().osError);
        EXPECT_STREQ(row.keptName, Ctx().itemText) << "forced " << row.osError;
    }
    // The GDI code takes the system's last error without arguments.
    OSErrorClearError();
    SetLastError(1400);
    OSErrorSetErrorInfo(RV_GDIError);
    EXPECT_EQ(1400u, Ctx().osError);
}

// What each code reads after itself, one letter per argument: T itemText,
// M memberName, X detailText, V itemValue, w itemValue as a 16-bit word,
// 1 detail1, 2 detail2, A address, F functionAddress, L rangeLow,
// H rangeHigh, S stage, - read and dropped.
const struct { int code; const char *reads; } kArgumentRows[] = {
    {1, "-"},    {2, "T"},     {3, "V"},     {4, "1"},     {7, "T"},     {9, "T"},
    {15, "S"},   {16, "T"},    {18, "T"},    {19, "T"},    {20, "T"},    {23, "T"},
    {24, "T"},   {25, "T"},    {26, "T"},    {28, "VLH"},  {29, "VLH"},  {30, "VLH"},
    {31, "VLH"}, {32, "VLH"},  {33, "TV"},   {34, "TV"},   {35, "TMV"},  {36, "TV"},
    {38, "TV"},  {39, "TA1"},  {40, "TA"},   {41, "V"},    {42, "T"},    {43, "T"},
    {44, "LH"},  {45, "12-"},  {46, "T12"},  {47, "T"},    {48, "12"},   {49, "12"},
    {50, "HLTX"}, {53, "F1"},  {54, "T"},    {57, "T"},    {58, "HL"},   {59, "H"},
    {60, "S"},   {62, "w"},    {63, "T"},    {64, "w"},    {65, "w"},    {66, "12"},
    {67, "VLH"}, {68, "T"},    {72, "T"},    {76, "V"},    {77, "1"},    {81, "T"},
    {82, "T"},   {85, "A"},    {86, "-"},    {87, "T"},    {88, "T"},    {89, "T"},
    {90, "T"},   {95, "VL1TX"}, {97, "1"},   {98, "T"},    {100, "-"},   {102, "Tw"},
    {118, "T"},  {120, "T"},   {127, "A"},
};

// Each row once with texts and once with null texts, which read as empty.
TEST_F(ErrorState, EveryArgumentReadingRowFillsItsFields)
{
    static const char *const kTexts[] = {"text0", "text1", "text2", "text3", "text4", "text5"};
    static const char *const kNulls[] = {"", "", "", "", "", ""};
    for (const char *const *texts : {kTexts, kNulls})
        for (const auto &row : kArgumentRows) {
            const size_t count = strlen(row.reads);
            LONG_PTR args[6];
            for (size_t i = 0; i < 6; ++i)
                args[i] = i >= count || !strchr("TMX", row.reads[i]) ? static_cast<LONG_PTR>(0x15100 + i)
                          : texts == kNulls ? 0 : reinterpret_cast<LONG_PTR>(texts[i]);
            const DWORD oldMode = OSErrorSetErrorMode(row.code, 2);  // some codes end the process
            OSErrorClearError();
            OSErrorSetErrorInfo(static_cast<ResultCode>(row.code), args[0], args[1], args[2], args[3],
                                args[4], args[5]);
            OSErrorSetErrorMode(row.code, oldMode);
            const ErrorContext &c = Ctx();
            ASSERT_EQ(row.code, c.errorCode);
            for (int i = 0; row.reads[i]; ++i) {
                const DWORD number = static_cast<DWORD>(args[i]);
                switch (row.reads[i]) {
                case 'T': EXPECT_STREQ(texts[i], c.itemText) << row.code; break;
                case 'M': EXPECT_STREQ(texts[i], c.memberName) << row.code; break;
                case 'X': EXPECT_STREQ(texts[i], c.detailText) << row.code; break;
                case 'V': EXPECT_EQ(number, c.itemValue) << row.code; break;
                case 'w': EXPECT_EQ(number & 0xFFFF, c.itemValue) << row.code; break;
                case '1': EXPECT_EQ(number, c.detail1) << row.code; break;
                case '2': EXPECT_EQ(number, c.detail2) << row.code; break;
                case 'A': EXPECT_EQ(static_cast<ULONG_PTR>(args[i]), c.address) << row.code; break;
                case 'F': EXPECT_EQ(static_cast<ULONG_PTR>(args[i]), c.functionAddress) << row.code; break;
                case 'L': EXPECT_EQ(number, c.rangeLow) << row.code; break;
                case 'H': EXPECT_EQ(number, c.rangeHigh) << row.code; break;
                case 'S': EXPECT_EQ(number, c.stage) << row.code; break;
                default: break;
                }
            }
        }
}

TEST_F(ErrorState, EveryCodeStartsWithItsDefaultMode)
{
    // 0 ends the process for the codes that mean the program's own
    // structures are no longer to be trusted; 1 for RV_Failure; 2 for the rest.
    const int terminating[] = {14, 33, 34, 35, 36, 39, 40, 62, 64, 65, 69, 70, 73, 100};
    for (int code = 0; code <= RV_LastCode; ++code) {
        DWORD expected = code == RV_Failure ? 1 : 2;
        for (int t : terminating)
            if (t == code)
                expected = 0;
        const DWORD mode = OSErrorSetErrorMode(code, 7);
        EXPECT_EQ(expected, mode) << code;
        EXPECT_EQ(7u, OSErrorSetErrorMode(code, mode)) << code;
    }
    EXPECT_EQ(2u, OSErrorSetErrorMode(RV_LastCode, 2)) << "the last code of the table is a mode";
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

// Each text field one below, at and one above its limit: longer texts are cut.
TEST_F(ErrorState, TextsAreCutAtTheirFieldLimits)
{
    const DWORD old = OSErrorSetErrorMode(RV_StructMemberMisAligned, 2);
    for (int delta = -1; delta <= 1; ++delta) {
        SCOPED_TRACE(delta);
        const std::string item(255 + delta, 'n'), detail(255 + delta, 'd'), member(39 + delta, 'm');
        OSErrorClearError();
        OSErrorSetErrorInfo(RV_NoFile, item.c_str());
        EXPECT_EQ(item.substr(0, 255), Ctx().itemText);
        OSErrorClearError();
        OSErrorSetErrorInfo(RV_NetworkNetDLLError, 7, 3, "net", detail.c_str());
        EXPECT_EQ(detail.substr(0, 255), Ctx().detailText);
        OSErrorClearError();
        OSErrorSetErrorInfo(RV_StructMemberMisAligned, "Record", member.c_str(), 6);
        EXPECT_EQ(member.substr(0, 39), Ctx().memberName);
    }
    OSErrorSetErrorMode(RV_StructMemberMisAligned, old);
}

TEST_F(ErrorState, AVirtualFileIsCopiedAndReleasedAtTheNextRecording)
{
    const char payload[] = "virtual contents";
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, sizeof payload);
    VIRTUALFILE file = {};
    file.marker = VIRTUALFILE_MARKER;
    file.data = GlobalLock(block);
    file.size = sizeof payload;
    memcpy(file.data, payload, sizeof payload);

    OSErrorSetErrorInfo(RV_ReadFailure, reinterpret_cast<const char *>(&file));
    const VIRTUALFILE *copy = Ctx().virtualFileCopy;
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(VIRTUALFILE_MARKER, copy->marker);
    ASSERT_NE(nullptr, copy->data);
    EXPECT_NE(file.data, copy->data) << "the library keeps its own copy";
    EXPECT_EQ(sizeof payload, copy->size);
    EXPECT_EQ(0, memcmp(payload, copy->data, sizeof payload));
    EXPECT_STREQ("", Ctx().itemText);

    OSErrorClearError();
    OSErrorSetErrorInfo(RV_NoFile, "plain.txt");
    EXPECT_EQ(nullptr, copy->data);
    EXPECT_EQ(0u, copy->size);
    file.Clear();
}

static int WINAPI FormatInto(char *out, int limit, const char *format, va_list args)
{
    (void)limit;  // the texts here are short
    return wvsprintfA(out, format, args);
}

TEST_F(ErrorState, CodeSeventyOneFormatsIntoTheDetailText)
{
    OSErrorSetErrorInfo(RV_Formatted, FormatInto, "%s-%d", "abc", 5);
    EXPECT_EQ(71, OSErrorGetErrorValue());
    EXPECT_STREQ("abc-5", Ctx().detailText);
    // Without a formatter or a format the text is empty, not the older one.
    OSErrorClearError();
    OSErrorSetErrorInfo(RV_Formatted, static_cast<ErrorTextFormatter>(nullptr), "%s", "x");
    EXPECT_EQ(71, OSErrorGetErrorValue());
    EXPECT_STREQ("", Ctx().detailText);
    OSErrorClearError();
    OSErrorSetErrorInfo(RV_Formatted, FormatInto, "%s-%d", "abc", 5);
    OSErrorClearError();
    OSErrorSetErrorInfo(RV_Formatted, FormatInto, static_cast<const char *>(nullptr));
    EXPECT_STREQ("", Ctx().detailText);
}

TEST_F(ErrorState, ContextIsClearedByRecordingAndSetByTheResourceCodes)
{
    OSErrorSetContext(GetModuleHandleA(nullptr), 77);
    EXPECT_TRUE(OSErrorIsValidContext());
    OSErrorSetErrorInfo(RV_NoFile, "x");
    EXPECT_FALSE(OSErrorIsValidContext()) << "a context set before recording does not outlive it";
    OSErrorSetContext(GetModuleHandleA(nullptr), 78);
    OSErrorClearError();
    EXPECT_EQ(78u, Ctx().contextStringId) << "clearing leaves the context";
    EXPECT_STREQ("x", Ctx().itemText) << "clearing leaves the text";

    for (int code = 105; code <= 116; ++code) {
        OSErrorClearError();
        OSErrorSetErrorInfo(static_cast<ResultCode>(code));
        EXPECT_EQ(13060u, Ctx().contextStringId) << code;
        EXPECT_EQ(ResourceGetHandle(), Ctx().contextModule) << code;
        EXPECT_TRUE(OSErrorIsValidContext());
    }
}

TEST_F(ErrorState, PresentingBlocksRecordingAndStaysPending)
{
    ErrorContext *ctx = OSErrorGetErrorInfo();
    ctx->isPresenting = TRUE;
    OSErrorSetErrorInfo(RV_NoFile, "blocked");
    EXPECT_FALSE(ctx->isPending);
    EXPECT_TRUE(OSErrorIsErrorPending());
    OSErrorClearError();
    EXPECT_TRUE(ctx->isPresenting) << "clearing leaves isPresenting";
    ctx->isPresenting = FALSE;
    EXPECT_FALSE(OSErrorIsErrorPending());
}

TEST_F(ErrorState, ModeIndexesPastTheTableReachTheTwoFlags)
{
    ErrorContext *ctx = OSErrorGetErrorInfo();
    DWORD oldQuiet = OSErrorSetErrorMode(ERRORMODE_INDEX_QUIETINBACKGROUND, 1);
    EXPECT_EQ(1, ctx->quietInBackground);
    EXPECT_EQ(1u, OSErrorSetErrorMode(ERRORMODE_INDEX_QUIETINBACKGROUND, oldQuiet));

    OSErrorSetErrorMode(ERRORMODE_INDEX_OFFERCLOSE, 1);
    EXPECT_EQ(1, ctx->offerClose);
    OSErrorSetErrorInfo(RV_QuireAPI);
    EXPECT_EQ(0, ctx->offerClose) << "cleared at each recording";
}

TEST_F(ErrorState, ModeIndexesOnPointersOrPastTheRecordAreRefused)
{
    const LONG refused[] = {-1, 132, 150, 477, 481, 482, 100000};
    for (LONG index : refused) {
        OSErrorClearError();
        EXPECT_EQ(0u, OSErrorSetErrorMode(index, 0xDEADBEEF)) << index;
        EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue()) << index;
    }
    EXPECT_NE(nullptr, Ctx().virtualFileCopy);
}

struct Scenario {
    const char *name;
    DWORD status;
};

TEST(ErrorStateTermination, ModesCallbackAndQuitFlagDecideTheEnd)
{
    const Scenario scenarios[] = {
        {"fatal", 255},     // mode 0 ends the process
        {"veto", 7},        // a callback answering zero keeps it alive, error pending
        {"allow", 255},     // a callback answering non-zero lets it end
        {"quitting", 8},    // a process already quitting is not ended again
        {"mode3", 255},     // any mode but 1 and 2 terminates
        {"survivable", 9},  // mode 1 for a fatal code only records
        {"formatter", 255}, // a formatter that changes the code re-decides
    };
    for (const Scenario &s : scenarios)
        EXPECT_EQ(s.status, RunChild(std::string("error_probe.exe ") + s.name)) << s.name;
}

}  // namespace
