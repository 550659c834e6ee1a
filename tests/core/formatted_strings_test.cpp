// The formatters held against the platform in the same process: the counted
// forms against wsprintfA, the reorderable forms against FormatMessageA.
#include <climits>
#include <string>
#include <vector>
#include "qz_test.h"

namespace {
class FormattedStrings : public ErrorStateTest {};

const char kGuard = '\x5A';

// A destination with guard bytes on both sides of `room` bytes.
struct Guarded {
    std::vector<char> bytes;
    explicit Guarded(size_t room) : bytes(room + 32, kGuard) {}
    char *data() { return bytes.data() + 16; }
    bool GuardsIntactFrom(size_t offset) const
    {
        for (size_t i = 0; i < 16; ++i)
            if (bytes[i] != kGuard) return false;
        for (size_t i = 16 + offset; i < bytes.size(); ++i)
            if (bytes[i] != kGuard) return false;
        return true;
    }
};

template <typename T>
void ExpectSameAsPlatform(const std::string &format, T value)
{
    char platform[2048] = {};
    Guarded ours(2000);
    int expected = wsprintfA(platform, format.c_str(), value);
    int got = OScsprintf(ours.data(), 2000, format.c_str(), value);
    EXPECT_EQ(expected, got) << "format " << format;
    EXPECT_STREQ(platform, ours.data()) << "format " << format;
    EXPECT_TRUE(ours.GuardsIntactFrom(2001)) << "format " << format;
}

TEST_F(FormattedStrings, NumbersMatchWsprintf)
{
    const char *flags[] = {"", "-", "#", "0", "-#", "#0", "-0", "-#0"};
    const char *widths[] = {"", "1", "5", "12"};
    const char *precisions[] = {"", ".0", ".3", ".8"};
    const char *sizes[] = {"", "h", "l"};
    const char *conversions[] = {"d", "i", "u", "x", "X"};
    const int values[] = {0, 7, -42, INT_MAX, INT_MIN, static_cast<int>(0xDEADBEEF)};
    for (const char *flag : flags)
        for (const char *width : widths)
            for (const char *precision : precisions)
                for (const char *size : sizes)
                    for (const char *conversion : conversions)
                        for (int value : values)
                            ExpectSameAsPlatform(std::string("<%") + flag + width + precision + size + conversion + ">",
                                                 value);
}

TEST_F(FormattedStrings, TextsAndCharactersMatchWsprintf)
{
    const char *directives[] = {"%s", "%10s", "%-10s", "%.2s", "%5.1s", "%hs", "%010s", "%#s", "%.0s"};
    const char *texts[] = {"", "abc", "a longer piece of text", nullptr};
    for (const char *directive : directives)
        for (const char *text : texts)
            ExpectSameAsPlatform(std::string("[") + directive + "]", text);
    const char *charDirectives[] = {"%c", "%3c", "%-3c", "%hc", "%.5c", "%05c"};
    for (const char *directive : charDirectives)
        for (int c : {'A', 'z', ' '})
            ExpectSameAsPlatform(directive, c);
    for (const char *directive : {"%ls", "%8ls", "%-8ls|", "%.1ls", "%S", "%hS"})
        ExpectSameAsPlatform(directive, L"wide");
    ExpectSameAsPlatform("%lc", static_cast<int>(L'W'));
}

TEST_F(FormattedStrings, OddFormatsMatchWsprintf)
{
    const char *formats[] = {"abc%", "%", "%%", "100%% sure %d", "%y", "%5y", "%-5y", "%l", "%h", "%I", "%-", "%0",
                             "%5", "%.", "%0-5d", "%#-08x", "%I32d", "%wd", "@1%d", "%5%"};
    for (const char *format : formats)
        ExpectSameAsPlatform(format, 77);
    ExpectSameAsPlatform("%I64d", static_cast<LONGLONG>(77));
}

TEST_F(FormattedStrings, LongOutputStopsAtTheBoundLikeWsprintf)
{
    const std::string text(2000, 'q');
    ExpectSameAsPlatform("%s", text.c_str());
    ExpectSameAsPlatform(std::string(1500, 'L') + "%d", 5);
    ExpectSameAsPlatform(std::string(1020, 'L') + "%d", 123456);
    ExpectSameAsPlatform(std::string(1020, 'L') + "%s", "abcdef");
    ExpectSameAsPlatform(std::string(1021, 'L') + "%08x", 0xABC);
    ExpectSameAsPlatform("%2000d", 9);
    ExpectSameAsPlatform("%-2000d|", 9);
    ExpectSameAsPlatform("%.1500d", 9);
    // Where widths and texts come within reach of the bound.
    for (size_t lead = 985; lead <= 1012; ++lead) {
        ExpectSameAsPlatform(std::string(lead, 'L') + "%-12s|", "Meeting");
        ExpectSameAsPlatform(std::string(lead, 'L') + "%12s|", "Quarterly planning");
        ExpectSameAsPlatform(std::string(lead, 'L') + "%08lX|", -1);
        ExpectSameAsPlatform(std::string(lead, 'L') + "%-9d|", INT_MIN);
        ExpectSameAsPlatform(std::string(lead, 'L') + "%011d|", -42);
    }
}

TEST_F(FormattedStrings, LimitCutsAndTerminates)
{
    struct Case { LONG limit; const char *expected; int count; } cases[] = {
        {5, "01234", 5}, {0, "", 0}, {9, "012345678", 9}, {10, "0123456789", 10}, {11, "0123456789", 10}, {5000, "0123456789", 10}};
    for (const Case &c : cases) {
        Guarded dest(64);
        EXPECT_EQ(c.count, OScsprintf(dest.data(), c.limit, "%s", "0123456789"));
        EXPECT_STREQ(c.expected, dest.data());
        EXPECT_TRUE(dest.GuardsIntactFrom(c.count + 1)) << c.limit;
    }
    Guarded big(1100);
    std::string text(1500, 'z');
    EXPECT_EQ(1024, OScsprintf(big.data(), 1100, "%s", text.c_str()));
    EXPECT_EQ(1023u, strlen(big.data()));
    EXPECT_TRUE(big.GuardsIntactFrom(1025));
}

TEST_F(FormattedStrings, BadArgumentsWriteNothing)
{
    Guarded dest(16);
    EXPECT_EQ(0, OScsprintf(dest.data(), -1, "%d", 5));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    EXPECT_TRUE(dest.GuardsIntactFrom(0));
    OSErrorClearError();
    EXPECT_EQ(0, OScsprintf(dest.data(), 10, nullptr));
    EXPECT_EQ(0, OSrsprintf(dest.data(), LONG_MIN, "@1%d", 5));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    EXPECT_TRUE(dest.GuardsIntactFrom(0));
}

// The reorderable form held against FormatMessageA: "@n%directive" is "%n!directive!".
std::string AsFormatMessage(const std::string &format)
{
    std::string out;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] == '@' && i + 2 < format.size() && format[i + 2] == '%') {
            out += '%';
            out += format[i + 1];
            out += '!';
            size_t j = i + 3;
            while (j < format.size() && !isalpha(static_cast<unsigned char>(format[j]))) out += format[j++];
            out += format[j];
            out += '!';
            i = j;
        } else {
            out += format[i];
        }
    }
    return out;
}

TEST_F(FormattedStrings, ReorderedMatchesFormatMessage)
{
    const DWORD_PTR args[] = {1, 22, 0xBEEF, reinterpret_cast<DWORD_PTR>("text"), static_cast<DWORD_PTR>('Q'), 4000000000u,
                              7, 8, 9};
    struct Case { const char *format; } cases[] = {
        {"@2%d-@1%d"},
        {"@4%s has @2%u items, @3%x hex, @3%X"},
        {"@4%-8s|@4%8s|@4%.2s|"},
        {"@2%5d|@1%-5d|@1%05u|"},
        {"@5%c and @4%s"},
        {"@6%u @3%#x"},
        {"@9%d @8%d @7%d @6%u @5%c @4%s @3%x @2%d @1%d"},
        {"no inserts at all"},
        {"@1%d @1%d @2%d"},
    };
    for (const Case &c : cases) {
        char platform[512] = {};
        std::string fm = AsFormatMessage(c.format);
        DWORD expected = FormatMessageA(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY, fm.c_str(), 0, 0,
                                        platform, sizeof platform, reinterpret_cast<va_list *>(const_cast<DWORD_PTR *>(args)));
        Guarded ours(256);
        int got = OSrsprintf(ours.data(), 255, c.format, args[0], args[1], args[2], args[3], args[4], args[5], args[6],
                             args[7], args[8]);
        EXPECT_EQ(static_cast<int>(expected), got) << c.format;
        EXPECT_STREQ(platform, ours.data()) << c.format << " vs " << fm;
        EXPECT_TRUE(ours.GuardsIntactFrom(256));
    }
}

int CallRv(char *dest, LONG limit, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    int count = OSrvsprintf(dest, limit, format, args);
    va_end(args);
    return count;
}

// The list and the vsprintf forms read the prefixes alike.
TEST_F(FormattedStrings, ReorderPrefixRules)
{
    struct Case { const char *format; const char *expected; } cases[] = {
        {"@2%d-@1%d", "8-7"}, {"50@ %d", "50@ 7"}, {"@5x", "@5x"}, {"@1%d @5x", "7 @5x"}, {"", ""},
        {"abc@", "abc@"}, {"abc@7", "abc@7"}, {"@0%d", "@07"}, {"@a%d", "@a7"}, {"@1%", ""},
        {"tail %", "tail "}, {"@1%d%%", "7%"},
    };
    char out[64];
    for (const Case &c : cases) {
        EXPECT_EQ(static_cast<int>(strlen(c.expected)), OSrsprintf(out, 63, c.format, 7, 8, 9));
        EXPECT_STREQ(c.expected, out) << c.format;
        EXPECT_EQ(static_cast<int>(strlen(c.expected)), CallRv(out, 63, c.format, 7, 8, 9));
        EXPECT_STREQ(c.expected, out) << c.format;
    }
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
    // The list form alone: positions skipped, and a stray prefix beside
    // plain directives, which still get the arguments (one the caller never
    // passed is not read).
    const struct { const char *format; const char *expected; } listOnly[] = {
        {"@3%d", "9"}, {"@1%d @3%d", "7 9"}, {"x@1y %d", "x@1y 7"}, {"@2%d x@1y %d", "8 x@1y 7"},
        {"@1%d x@9y %d", "7 x@9y 8"}, {"mail a@3com.com re %d", "mail a@3com.com re 7"},
    };
    for (const auto &c : listOnly) {
        EXPECT_EQ(static_cast<int>(strlen(c.expected)), OSrsprintf(out, 63, c.format, 7, 8, 9));
        EXPECT_STREQ(c.expected, out) << c.format;
    }
    // Without the sizes of positions 1 and 2 the vsprintf form cannot place 3.
    Guarded dest(16);
    EXPECT_EQ(0, CallRv(dest.data(), 15, "@3%d", 1, 2, 3));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    EXPECT_TRUE(dest.GuardsIntactFrom(0));
}

TEST_F(FormattedStrings, OrderSlotsHaveTheirRoom)
{
    // The list form has room for 20 order slots, the vsprintf form for 9.
    auto slots = [](int n) { std::string format; while (n--) format += "@1%d"; return format; };
    char out[128];
    EXPECT_EQ(20, OSrsprintf(out, 127, slots(20).c_str(), 5));
    EXPECT_EQ(std::string(20, '5'), out);
    EXPECT_EQ(9, CallRv(out, 127, slots(9).c_str(), 5));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());

    Guarded dest(64);
    EXPECT_EQ(0, OSrsprintf(dest.data(), 63, slots(21).c_str(), 5));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    OSErrorClearError();
    EXPECT_EQ(0, CallRv(dest.data(), 63, slots(10).c_str(), 5));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    EXPECT_TRUE(dest.GuardsIntactFrom(0));

    Guarded cut(8);
    EXPECT_EQ(3, OSrsprintf(cut.data(), 3, "@2%d@1%d", 123, 456));
    EXPECT_STREQ("456", cut.data());
    EXPECT_TRUE(cut.GuardsIntactFrom(4));
}

TEST_F(FormattedStrings, MemoryFillAndCopy)
{
    std::vector<unsigned char> block(70000 + 2, 0);
    EXPECT_TRUE(OShmemset(block.data() + 1, 0xA5, 70000));
    EXPECT_EQ(0, block.front());
    EXPECT_EQ(0, block.back());
    for (size_t i = 1; i <= 70000; ++i) ASSERT_EQ(0xA5, block[i]) << i;
    char from[] = "copy me", to[16] = {};
    EXPECT_TRUE(OShmemcpy(to, from, sizeof from));
    EXPECT_STREQ("copy me", to);
    EXPECT_TRUE(OShmemcpy(to, to, 5));
    EXPECT_TRUE(OShmemcpy(nullptr, from, 0));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

int Sign(int v) { return (v > 0) - (v < 0); }
const std::string kLong = std::string(999, 'q') + "A", kLonger = std::string(999, 'Q') + "b";

TEST_F(FormattedStrings, BoundedComparesFollowTheLocale)
{
    struct Case { const char *a; const char *b; DWORD count; } cases[] = {
        {"abcX", "abcY", 3}, {"abcX", "abcY", 4}, {"Apple", "apple", 5}, {"apple", "Banana", 10},
        {"a-b", "ab", 3}, {"", "x", 1}, {"same", "same", 100}, {"zeta", "Zebra", 2}, {"x", "y", 0},
        {"co-op", "coop", 5}, {"O'Neil", "oneil", 9}, {"\xC4pfel", "apfel", 5}, {"\xE9t\xE9", "ETE", 3},
        {"stra\xDF" "e", "STRASSE", 7}, {"ab", "abc", 3}, {"abc", "ABC", 1}, {kLong.c_str(), kLonger.c_str(), 1000},
        {kLong.c_str(), kLonger.c_str(), 999}, {kLonger.c_str(), kLong.c_str(), 600}, {kLong.c_str(), "\xC4", 2},
        {"\x9C" "a", "\x8C" "A", 2}, {"Room 4, Quarterly plan", "ROOM 4, QUARTERLY PLAN", 30},
        {"x dzs y", "X DZ Y", 9}, {"cs x", "CS Y", 9}, {"in it", "IN IT", 5}, {"a-b c", "A-B D", 5}};
    // The thread's locale rules, with the letter groups and cases of a few.
    const LCID start = GetThreadLocale();
    for (LANGID language : {LANGIDFROMLCID(start), (LANGID)MAKELANGID(LANG_TURKISH, SUBLANG_DEFAULT),
                            (LANGID)MAKELANGID(LANG_HUNGARIAN, SUBLANG_DEFAULT), (LANGID)MAKELANGID(LANG_CZECH, SUBLANG_DEFAULT)}) {
        SetThreadLocale(MAKELCID(language, SORT_DEFAULT));
        for (const Case &c : cases) {
            std::string a = std::string(c.a).substr(0, c.count), b = std::string(c.b).substr(0, c.count);
            EXPECT_EQ(Sign(lstrcmpA(a.c_str(), b.c_str())), Sign(OSstrncmp(c.a, c.b, c.count))) << c.a << " " << c.b;
            EXPECT_EQ(lstrcmpiA(a.c_str(), b.c_str()), OSstrncmpi(c.a, c.b, c.count)) << c.a << " " << c.b << " " << language;
        }
    }
    SetThreadLocale(start);
    EXPECT_EQ(0, OSstrncmp("abcd", "abce", 3));
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

// Every pair of printable bytes (and the end of a text) where two texts
// first differ beyond letter case, after a lead that differs in case, with
// and without a tail: the bounded compare answers as lstrcmpiA does, in the
// English sort and in sorts that group or order letters apart.
TEST_F(FormattedStrings, BoundedCompareMeetsThePlatformAtEveryFirstDifference)
{
    std::string bytes(1, '\0');
    for (char c = 0x20; c <= 0x7E; ++c)
        bytes += c;
    const LCID start = GetThreadLocale();
    for (LANGID language : {(LANGID)MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), (LANGID)MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_UK),
                            (LANGID)MAKELANGID(LANG_DANISH, SUBLANG_DEFAULT), (LANGID)MAKELANGID(LANG_ESTONIAN, SUBLANG_DEFAULT),
                            (LANGID)MAKELANGID(LANG_CZECH, SUBLANG_DEFAULT)}) {
        SetThreadLocale(MAKELCID(language, SORT_DEFAULT));
        int wrong = 0;
        for (char x : bytes)
            for (char y : bytes)
                for (const char *tail : {"", "h", "A"}) {
                    const std::string a = std::string("Room c") + x + tail, b = std::string("rOOM C") + y + "a";
                    const DWORD count = static_cast<DWORD>(b.size());
                    if (OSstrncmpi(a.c_str(), b.c_str(), count) != lstrcmpiA(a.c_str(), b.c_str()) && ++wrong < 5)
                        ADD_FAILURE() << a.c_str() << " against " << b.c_str() << " in " << language;
                }
        EXPECT_EQ(0, wrong) << language;
    }
    SetThreadLocale(start);
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}
}  // namespace
