// Seeded fuzzer of the date and time readers: random bytes, mutated dates,
// over-long texts and the parser's words in odd places. Every input must end
// in a valid value or a recorded range error, with nothing written past the
// buffers given.
//   calendar_fuzz [inputs] [seed]     (or QZ_FUZZ_INPUTS, QZ_FUZZ_SEED)
// The default is 200,000 inputs on x86_64 and 40,000 in the emulated i686 lane.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include "fuzz_setting.h"
#include "qziso32.h"

namespace {

const unsigned char kGuard = 0xA5;
std::mt19937 g_random;
long g_failures = 0;

unsigned Pick(unsigned n) { return static_cast<unsigned>(g_random() % n); }

void Fail(const char *what, const std::string &input)
{
    if (++g_failures <= 20) {
        std::printf("FAIL %s on \"", what);
        for (unsigned char c : input)
            std::printf(c >= 32 && c < 127 ? "%c" : "\\x%02x", c);
        std::printf("\"\n");
    }
}

const char *const kWords[] = {"Now", "Today", "Tomorrow", "Yesterday", "Noon", "AM", "PM", "am",
                              "pm", "January", "Sept.", "Dec", "Friday", "Sun", "1st", "22nd",
                              "31st", "h", "m", ":", "/", "-", ".", " ", "\t", "12", "0", "99",
                              "2101", "1799", "4294967296", "65536", "257th", "'", "\""};

std::string RandomBytes()
{
    std::string s(Pick(300), ' ');
    for (char &c : s)
        c = static_cast<char>(1 + Pick(255));
    return s;
}

std::string ValidText()
{
    static const char *const formats[] = {"M/d/yyyy", "dddd MMMM d yyyy", "dd.MM.yy HH:mm:ss",
                                          "yyyy-MM-dd h:mm tt", "o MMM yyyy", "HHz mmZ"};
    DateTimeValue v;
    OSSetDateTime(&v, 1800, 1, 1, Pick(24), Pick(60), Pick(60), 0);
    OSAdjustDateTimeByDays(&v, static_cast<LONG>(Pick(110303)));
    char text[200];
    OSDateTimeToString(&v, text, formats[Pick(6)], 0, sizeof text);
    return text;
}

std::string Mutated()
{
    std::string s = ValidText();
    for (unsigned n = 1 + Pick(4); n; --n) {
        size_t at = s.empty() ? 0 : Pick(static_cast<unsigned>(s.size()));
        switch (Pick(4)) {
        case 0: if (!s.empty()) s[at] = static_cast<char>(1 + Pick(255)); break;
        case 1: s.insert(at, kWords[Pick(sizeof kWords / sizeof *kWords)]); break;
        case 2: if (!s.empty()) s.erase(at, 1 + Pick(3)); break;
        default: s.insert(at, s.substr(0, at)); break;
        }
    }
    return s;
}

std::string OverLong()
{
    std::string s;
    const unsigned length = 200 + Pick(2000);
    const bool digits = Pick(2);
    while (s.size() < length)
        s += digits ? std::string(1, static_cast<char>('0' + Pick(10)))
                    : std::string(kWords[Pick(sizeof kWords / sizeof *kWords)]) + (Pick(3) ? " " : "");
    return s;
}

std::string Words()
{
    std::string s;
    for (unsigned n = Pick(30); n; --n)
        s += kWords[Pick(sizeof kWords / sizeof *kWords)];
    return s;
}

bool IsRangeCode(ResultCode code)
{
    return code == RV_YearRange || code == RV_MonthRange || code == RV_DayRange ||
           code == RV_HourRange || code == RV_MinuteRange || code == RV_SecondRange;
}

bool GuardsIntact(const unsigned char *guard, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        if (guard[i] != kGuard)
            return false;
    return true;
}

void ParseOne(const std::string &input)
{
    typedef BOOL(WINAPI * Reader)(DateTimeValue *, const char *);
    static const Reader readers[] = {OSStringToDateTime, OSStringToDateTimeTimeBias,
                                     OSStringToDateTimeComplete, OSStringToDateTimeForImport};
    const unsigned which = Pick(4);
    std::string text = input;
    struct {
        unsigned char before[16];
        DateTimeValue value;
        unsigned char after[16];
    } out;
    memset(&out, kGuard, sizeof out);
    OSErrorClearError();
    BOOL ok = readers[which](&out.value, text.c_str());
    if (text != input)
        Fail("input changed", input);
    if (!GuardsIntact(out.before, sizeof out.before) || !GuardsIntact(out.after, sizeof out.after))
        Fail("write past the value", input);
    if (which == 3) {
        if (ok != 1)
            Fail("import result", input);
    } else if (ok) {
        if (!OSIsValidDateTime(&out.value))
            Fail("true with an invalid value", input);
    } else if (OSWhyIsInvalidDateTime(&out.value) || !IsRangeCode(OSErrorGetErrorValue())) {
        Fail("false without a range error", input);
    }
    OSErrorClearError();
    if (OSIsValidDateTime(&out.value)) {
        // Write it back into a small guarded buffer.
        const DWORD size = Pick(24);
        unsigned char buffer[24 + 16];
        memset(buffer, kGuard, sizeof buffer);
        OSDateTimeToString(&out.value, reinterpret_cast<char *>(buffer), text.c_str(), 0, size);
        if (!GuardsIntact(buffer + size, sizeof buffer - size))
            Fail("format write past the size", input);
    }
    // The tumbler readers write at most a short time and its terminator.
    typedef BOOL(WINAPI * Converter)(const char *, char *);
    static const Converter converters[] = {
        OSConvertTumblerTimeStringToHourMinuteString, OSConvertTumblerTimeStringToRealString,
        OSConvertHourMinuteStringToTumblerTimeString, OSConvertRealStringToTumblerTimeString};
    unsigned char converted[16 + 16];
    memset(converted, kGuard, sizeof converted);
    converters[Pick(4)](text.c_str(), reinterpret_cast<char *>(converted));
    if (!GuardsIntact(converted + 16, 16))
        Fail("tumbler write past its text", input);
    OSErrorClearError();
}

} // namespace

int main(int argc, char **argv)
{
#if defined(_WIN64)
    const unsigned long defaultInputs = 200000;
#else
    const unsigned long defaultInputs = 40000;  // the 32-bit lane runs emulated
#endif
    const unsigned long inputs = Setting(argc, argv, 1, "QZ_FUZZ_INPUTS", defaultInputs);
    const unsigned long seed = Setting(argc, argv, 2, "QZ_FUZZ_SEED", 20010705);
    g_random.seed(seed);
    DWORD slowest = 0;
    for (unsigned long i = 0; i < inputs; ++i) {
        std::string input;
        switch (i % 4) {
        case 0: input = RandomBytes(); break;
        case 1: input = Mutated(); break;
        case 2: input = OverLong(); break;
        default: input = Words(); break;
        }
        DWORD start = GetTickCount();
        ParseOne(input);
        DWORD spent = GetTickCount() - start;
        if (spent > slowest)
            slowest = spent;
    }
    std::printf("%lu inputs, seed %lu, %ld failures, slowest input %lu ms\n", inputs, seed, g_failures,
                static_cast<unsigned long>(slowest));
    return g_failures ? 1 : 0;
}
