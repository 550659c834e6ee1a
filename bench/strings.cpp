// The string formatters and the bounded compare against their platform
// peers, measured in the same run. A ratio above 1 means the library is
// faster than the platform.
#include <windows.h>
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string>
#include <vector>
#include "qziso32.h"
#include "bench_timing.h"

namespace {
volatile int g_sink;

// Calls per second of `ours` and of `peer`, measured in turns of short
// batches so that the load of the machine falls on both alike; the median
// batch of each side counts.
template <typename Ours, typename Peer>
void Rates(Ours ours, Peer peer, double *ourRate, double *peerRate)
{
    for (int i = 0; i < 1000; ++i) ours(i), peer(i);
    std::vector<double> ourTimes, peerTimes;
    const double start = Seconds();
    do {
        for (int side = 0; side < 2; ++side) {
            const double begin = Seconds();
            for (int i = 0; i < 500; ++i) side ? peer(i) : ours(i);
            (side ? peerTimes : ourTimes).push_back(Seconds() - begin);
        }
    } while (Seconds() - start < 1.0 || ourTimes.size() < 21);
    std::sort(ourTimes.begin(), ourTimes.end());
    std::sort(peerTimes.begin(), peerTimes.end());
    *ourRate = 500 / ourTimes[ourTimes.size() / 2];
    *peerRate = 500 / peerTimes[peerTimes.size() / 2];
}

}  // namespace

int main()
{
    char out[1100];
    const char *format = "Entry %d of %u: %-12s at %02d:%02d, id %08lX";
    double ours, peer;
    Rates([&](int i) { g_sink = OScsprintf(out, 1024, format, i, 500u, "Meeting", 9, 30, 0xBEEFul); },
          [&](int i) { g_sink = wsprintfA(out, format, i, 500u, "Meeting", 9, 30, 0xBEEFul); }, &ours, &peer);
    ReportRates("OScsprintf (6 directives)", ours, "wsprintfA", peer);

    const char *reordered = "@4%s moved @3%s from @2%d to @1%d";
    const char *message = "%4!s! moved %3!s! from %2!d! to %1!d!";
    Rates([&](int i) { g_sink = OSrsprintf(out, 1024, reordered, i, 7, "Lunch", "Anna"); },
          [&](int i) {
        DWORD_PTR args[] = {static_cast<DWORD_PTR>(i), 7, reinterpret_cast<DWORD_PTR>("Lunch"),
                            reinterpret_cast<DWORD_PTR>("Anna")};
        g_sink = static_cast<int>(FormatMessageA(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY, message, 0,
                                                 0, out, sizeof out, reinterpret_cast<va_list *>(args)));
          }, &ours, &peer);
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
        Rates([&](int) { g_sink = OSstrncmpi(a, b, count); }, [&](int) { g_sink = lstrcmpiA(a, b); }, &ours,
              &peer);
        char label[64];
        snprintf(label, sizeof label, "OSstrncmpi (%u bytes)", static_cast<unsigned>(length));
        ReportRates(label, ours, "lstrcmpiA (same texts)", peer);
    }
    return 0;
}
