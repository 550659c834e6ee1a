// The string formatters and the bounded compare against their platform
// peers, measured in the same run. A ratio above 1 means the library is
// faster than the platform.
#include <windows.h>
#include <cstdio>
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

    const char *a = "Quarterly planning meeting, room 4";
    const char *b = "QUARTERLY PLANNING MEETING, ROOM 5";
    ours = Rate([&](int) { g_sink = OSstrncmpi(a, b, 20); });
    peer = Rate([&](int) {
        char first[21], second[21];
        lstrcpynA(first, a, sizeof first);
        lstrcpynA(second, b, sizeof second);
        g_sink = lstrcmpiA(first, second);
    });
    ReportRates("OSstrncmpi (20 characters)", ours, "lstrcmpiA on copies", peer);
    return 0;
}
