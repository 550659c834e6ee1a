// Timing for the benchmarks: the best of three rounds of a piece of work.
#pragma once
#include <windows.h>

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
