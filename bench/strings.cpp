// The string formatters and the bounded compare against their platform
// peers, measured in the same run. A ratio above 1 means the library is
// faster than the platform.
#include <windows.h>
#include <cctype>
#include <cstdio>
#include <string>
#include "qziso32.h"
#include "bench_timing.h"

namespace {
volatile int g_sink;

// Calls per second of `body`, run for about half a second.
template <typename Body>
double Rate(Body body)
{
    for (int i = 0; i < 1000; ++i) body(i);
    long calls = 0;
    const double start = Seconds();
    double elapsed = 0;
    do {
        for (int i = 0; i < 2000; ++i) body(i);
        calls += 2000;
        elapsed = Seconds() - start;
    } while (elapsed < 0.5);
    return calls / elapsed;
}

}  // namespace

int main()
{
    char out[1100];
    const char *format = "Entry %d of %u: %-12s at %02d:%02d, id %08lX";
    double ours = Rate([&](int i) { g_sink = OScsprintf(out, 1024, format, i, 500u, "Meeting", 9, 30, 0xBEEFul); });
    double peer = Rate([&](int i) { g_sink = wsprintfA(out, format, i, 500u, "Meeting", 9, 30, 0xBEEFul); });
    ReportRates("OScsprintf (6 directives)", ours, "wsprintfA", peer);

    const char *reordered = "@4%s moved @3%s from @2%d to @1%d";
    const char *message = "%4!s! moved %3!s! from %2!d! to %1!d!";
    ours = Rate([&](int i) { g_sink = OSrsprintf(out, 1024, reordered, i, 7, "Lunch", "Anna"); });
    peer = Rate([&](int i) {
        DWORD_PTR args[] = {static_cast<DWORD_PTR>(i), 7, reinterpret_cast<DWORD_PTR>("Lunch"),
                            reinterpret_cast<DWORD_PTR>("Anna")};
        g_sink = static_cast<int>(FormatMessageA(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY, message, 0,
                                                 0, out, sizeof out, reinterpret_cast<va_list *>(args)));
    });
    ReportRates("OSrsprintf (4 reordered arguments)", ours, "FormatMessageA (argument array)", peer);

    // The bounded compare on texts of 8, 64 and 1,000 bytes that differ in
    // case throughout and in their last letter, against lstrcmpiA on the
    // same texts as they stand (the count takes them whole).
    for (size_t length : {8u, 64u, 1000u}) {
        std::string first, second;
        for (size_t i = 0; i < length; ++i) {
            first += static_cast<char>("Quarterly planning, room "[i % 25]);
            second += static_cast<char>(toupper(static_cast<unsigned char>(first.back())));
        }
        second.back() = '~';
        const char *a = first.c_str(), *b = second.c_str();
        const DWORD count = static_cast<DWORD>(length);
        ours = Rate([&](int) { g_sink = OSstrncmpi(a, b, count); });
        peer = Rate([&](int) { g_sink = lstrcmpiA(a, b); });
        char label[64];
        snprintf(label, sizeof label, "OSstrncmpi (%u bytes)", static_cast<unsigned>(length));
        ReportRates(label, ours, "lstrcmpiA (same texts)", peer);
    }
    return 0;
}
