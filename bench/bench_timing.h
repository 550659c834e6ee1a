// Timing for the benchmarks: a clock, the best of three rounds of a piece
// of work, and the report of two call rates side by side.
#pragma once
#include <windows.h>
#include <cstdio>

inline double Seconds()
{
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

template <typename F> double Time(F work)
{
    double best = 1e9;
    for (int round = 0; round < 3; ++round) {
        double start = Seconds();
        work();
        double spent = Seconds() - start;
        if (spent < best)
            best = spent;
    }
    return best;
}

// Prints the library's and the platform's call rates and their ratio, so
// that a figure above 1 means the library is faster.
inline void ReportRates(const char *ours, double ourRate, const char *peer, double peerRate)
{
    printf("%-44s %12.0f calls/s\n", ours, ourRate);
    printf("%-44s %12.0f calls/s\n", peer, peerRate);
    printf("ratio (library / platform)                   %12.2f\n\n", ourRate / peerRate);
}
