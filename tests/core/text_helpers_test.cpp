// The text helpers: scanners, cutting, Roman numerals, the generator.
#include <string>
#include <vector>
#include "qz_test.h"

namespace {
class TextHelpers : public ErrorStateTest {};

TEST_F(TextHelpers, DecimalScannersOnOddInput)
{
    struct Case { const char *text; DWORD value; size_t stop; } cases[] = {
        {"  12x", 12, 4}, {"-5", 0, 0}, {"", 0, 0}, {"   \t ", 0, 5}, {"+-", 0, 0}, {"\t7", 7, 2},
        {"4294967295", 4294967295u, 10}, {"4294967296", 0, 10}, {"4294967297", 1, 10}, {"99999999999", 1215752191u, 11}};
    for (const Case &c : cases) {
        std::vector<char> text(c.text, c.text + strlen(c.text) + 1);
        DWORD value = 12345;
        char *stop = AtoDW(text.data(), &value);
        EXPECT_EQ(c.value, value) << c.text;
        EXPECT_EQ(c.stop, static_cast<size_t>(stop - text.data())) << c.text;
    }
    // Digits followed by no terminator in reach: the first non-digit ends the scan.
    char digits[8] = {'1', '2', '3', 'G', 'G', 'G', 'G', 'G'};
    DWORD value = 0;
    EXPECT_EQ(digits + 3, AtoI(digits, &value));
    EXPECT_EQ(123u, value);
    BYTE byte = 0;
    char b300[] = "300", b256[] = "256";
    AtoB(b300, &byte);
    EXPECT_EQ(44, byte);
    AtoB(b256, &byte);
    EXPECT_EQ(0, byte);
}

TEST_F(TextHelpers, ArgScanFieldsAndMismatches)
{
    DWORD a = 9, b = 9;
    LONG count = -1;
    char text1[] = "1,x";
    ArgScan(text1, &count, "%d,%d", &a, &b);
    EXPECT_EQ(1, count);
    EXPECT_EQ(1u, a);
    EXPECT_EQ(0u, b);

    char name[32] = {}, rest[32] = {};
    char text2[] = "  \"a,b\",tail";
    char *stop = ArgScan(text2, &count, "\"%s\",%s", name, rest);
    EXPECT_EQ(1, count);
    EXPECT_STREQ("a,b", name);
    EXPECT_STREQ("tail", rest);
    EXPECT_EQ('\0', *stop);

    char text3[] = "12 x";
    stop = ArgScan(text3, &count, "%d y", &a);
    EXPECT_EQ(0, count);
    EXPECT_EQ('x', *stop);

    BYTE first = 0, second = 0;
    char text4[] = "5,6";
    ArgScan(text4, &count, "%fb,%fB", &first, &second);
    EXPECT_EQ(1, count);
    EXPECT_EQ(5, first);
    EXPECT_EQ(6, second);
    char text5[] = "5,6";
    ArgScan(text5, &count, "%b,%b", &first, &second);
    EXPECT_EQ(0, count);  // the text did not move past the 5

    // A quote the text lacks: the scan gives up instead of waiting for ever.
    char text6[] = "plain";
    EXPECT_EQ(text6, ArgScan(text6, &count, "\"%s", name));
    EXPECT_EQ(0, count);
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    OSErrorClearError();
    char text7[] = "7";
    ArgScan(text7, nullptr, "%d%", &a);  // a format ending in '%'
    EXPECT_EQ(7u, a);
}

TEST_F(TextHelpers, OneLineAndTrailingSpaces)
{
    struct Case { const char *text; LONG limit; const char *expected; char after; } cases[] = {
        {"ab\r\ncd", 10, "ab", '\0'}, {"ab\ncd", 10, "ab", '\0'}, {"abcdef", 3, "abc", 'e'}, {"abc", 0, "", 'b'},
        {"abc", 10, "abc", '#'}, {"ab\rcd", 2, "ab", 'c'}, {"x", -4, "", '\0'}};
    for (const Case &c : cases) {
        std::vector<char> text(c.text, c.text + strlen(c.text) + 1);
        text.push_back('#');
        EXPECT_EQ(text.data(), OneLine(text.data(), c.limit));
        EXPECT_STREQ(c.expected, text.data()) << c.text << " " << c.limit;
        EXPECT_EQ(c.after, text[strlen(c.expected) + 1]) << c.text << " " << c.limit;
        EXPECT_EQ('#', text.back());
    }
    char spaced[] = "a b  ", blanks[] = "   ", tabbed[] = "a\t";
    EXPECT_STREQ("a b", StripTrailingSpaces(spaced));
    EXPECT_STREQ("", StripTrailingSpaces(blanks));
    EXPECT_STREQ("a\t", StripTrailingSpaces(tabbed));
    char lead[] = " \t x";
    EXPECT_EQ(lead + 3, SkipWhiteSpace(lead));
    for (int c = -128; c < 128; ++c) {
        EXPECT_EQ(c == ' ' || c == '\t', IsWhiteSpace(static_cast<char>(c)));
        EXPECT_EQ(c == 13 || c == 10, IsCrLf(static_cast<char>(c)));
    }
}

// An independent conversion: subtractive pairs, most significant first.
std::string Roman(DWORD n)
{
    static const struct { DWORD value; const char *text; } table[] = {
        {1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
        {40, "xl"}, {10, "x"}, {9, "ix"}, {5, "v"}, {4, "iv"}, {1, "i"}};
    std::string out;
    for (const auto &row : table)
        while (n >= row.value) { out += row.text; n -= row.value; }
    return out;
}

TEST_F(TextHelpers, RomanNumeralsAgreeWithAnIndependentConversion)
{
    std::vector<char> buffer(200);
    for (DWORD n = 0; n <= 8000; ++n) {   // every digit pattern, and thousands past mmm
        const std::string expected = Roman(n);
        ASSERT_STREQ(expected.c_str(), DToRoman(n, 0, buffer.data(), 200)) << n;
        std::string upper = expected;
        for (char &c : upper) c = static_cast<char>(toupper(c));
        if (n % 97 == 0) {
            ASSERT_STREQ(upper.c_str(), DToRoman(n, 1, buffer.data(), 200)) << n;
        }
    }
    // The library's own buffer takes 127 steps and no more.
    EXPECT_EQ(std::string(127, 'm'), DToRoman(500000, 0, nullptr, 0));
    EXPECT_EQ(std::string(100, 'M'), DToRoman(100000, 1, nullptr, 0));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(TextHelpers, RomanNumeralsCountStepsAndStayWithinThreeBytesPastTheSize)
{
    // 3888 is mmm dccc lxxx viii: three one-letter steps, then three of four.
    // A step starts while fewer than `size` letters are out.
    const struct { DWORD size; const char *text; ResultCode code; } rows[] = {
        {0, "", RV_Success},           {1, "m", RV_Success},
        {3, "mmm", RV_Success},        {4, "mmmdcc", RV_BufferTooSmall},
        {5, "mmmdccc", RV_Success},    {7, "mmmdccc", RV_Success},
        {8, "mmmdccclxx", RV_BufferTooSmall}, {9, "mmmdccclxxx", RV_Success},
        {11, "mmmdccclxxx", RV_Success}, {12, "mmmdccclxxxvii", RV_BufferTooSmall},
        {13, "mmmdccclxxxviii", RV_Success},
    };
    for (const auto &row : rows) {
        OSErrorClearError();
        std::vector<char> bytes(row.size + 16, '#');
        DToRoman(3888, 0, bytes.data() + 8, row.size);
        EXPECT_STREQ(row.text, bytes.data() + 8) << row.size;
        EXPECT_EQ(row.code, OSErrorGetErrorValue()) << row.size;
        for (size_t i = 0; i < 8; ++i) EXPECT_EQ('#', bytes[i]);
        for (size_t i = 8 + row.size + 3; i < bytes.size(); ++i) EXPECT_EQ('#', bytes[i]) << row.size;
    }
    OSErrorClearError();
    char exact[7 + 3];
    EXPECT_STREQ("mcmxciv", DToRoman(1994, 0, exact, 7));
    EXPECT_STREQ("MCMXCIV", DToRoman(1994, 1, exact, 7));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(TextHelpers, GeneratorFollowsItsRecurrence)
{
    LONG state = static_cast<LONG>(SeedRnd());
    for (int i = 0; i < 200; ++i) {
        const WORD limit = static_cast<WORD>(1 + i * 37);
        state = static_cast<LONG>(static_cast<ULONG>(state) * 3431u + 13367u) % 65280;
        ASSERT_EQ(state % limit, Rnd(limit)) << i;
    }
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    EXPECT_EQ(0, Rnd(0));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
}

TEST_F(TextHelpers, ScrambledTextRoundTrips)
{
    char scrambled[64], plain[32];
    const char *texts[] = {"", "a", "Registered To: Someone, 1998"};
    for (const char *text : texts) {
        int length = CommonSrcDlgProc(text, scrambled, sizeof scrambled);
        EXPECT_EQ(static_cast<int>(2 * strlen(text) + 2), length);
        EXPECT_EQ(static_cast<int>(strlen(text)), CommonDestDlgProc(scrambled, plain, sizeof plain));
        EXPECT_STREQ(text, plain);
    }
    scrambled[0] = scrambled[0] == '0' ? '1' : '0';
    EXPECT_EQ(0, CommonDestDlgProc(scrambled, plain, sizeof plain));
    EXPECT_EQ(RV_IntegrityFailure, OSErrorGetErrorValue());
}

// "abc" scrambles into 8 digits and a terminator, and back into 3 letters and
// a terminator: each room one below and at what it needs.
TEST_F(TextHelpers, ScramblerRoomsAtTheirExactEdges)
{
    char scrambled[16];
    ASSERT_EQ(8, CommonSrcDlgProc("abc", scrambled, sizeof scrambled));
    const struct { bool back; int size, written; } rows[] = {{false, 8, 0}, {false, 9, 8}, {true, 3, 0}, {true, 4, 3}};
    for (const auto &row : rows) {
        OSErrorClearError();
        std::vector<char> bytes(row.size + 8, '#');
        EXPECT_EQ(row.written, row.back ? CommonDestDlgProc(scrambled, bytes.data(), row.size)
                                        : CommonSrcDlgProc("abc", bytes.data(), row.size)) << row.size;
        EXPECT_EQ(row.written ? RV_Success : RV_BufferTooSmall, OSErrorGetErrorValue()) << row.size;
        for (size_t i = row.size; i < bytes.size(); ++i) EXPECT_EQ('#', bytes[i]) << row.size;
    }
}
}  // namespace
