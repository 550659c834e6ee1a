// QSort against the C runtime's qsort on the same data, measured in the same
// run. A ratio above 1 means the library is faster than the runtime. The
// busy cursor's share is the cost of OSReWait(0), which the sort calls once
// per partition step (fewer steps than elements).
#include <windows.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>
#include "bench_timing.h"
#include "qziso32.h"

namespace {


int __cdecl CompareInt(const void *a, const void *b)
{
    const int x = *static_cast<const int *>(a), y = *static_cast<const int *>(b);
    return x < y ? -1 : x > y;
}

struct Record {
    unsigned key;
    char payload[60];
};
static_assert(sizeof(Record) == 64, "64-byte records");

int __cdecl CompareRecord(const void *a, const void *b)
{
    const unsigned x = static_cast<const Record *>(a)->key, y = static_cast<const Record *>(b)->key;
    return x < y ? -1 : x > y;
}

template <typename T>
void Measure(const char *what, const std::vector<T> &data, SortCompare compare)
{
    std::vector<T> work;
    const double ours = Time([&] {
        work = data;
        QSort(work.data(), static_cast<DWORD>(work.size()), sizeof(T), compare);
    });
    const double copy = Time([&] { work = data; });
    const double peer = Time([&] {
        work = data;
        qsort(work.data(), work.size(), sizeof(T), compare);
    });
    printf("QSort %-36s %10.1f ms\n", what, (ours - copy) * 1e3);
    printf("qsort %-36s %10.1f ms\n", what, (peer - copy) * 1e3);
    printf("ratio (runtime / library)                  %10.2f\n\n", (peer - copy) / (ours - copy));
}

}  // namespace

int main()
{
    std::mt19937 rng(1);
    std::vector<int> ints(1000000);
    for (int &v : ints)
        v = static_cast<int>(rng());
    Measure("1,000,000 32-bit integers", ints, CompareInt);

    std::vector<Record> records(100000);
    for (Record &r : records) {
        r.key = rng();
        memset(r.payload, static_cast<int>(r.key), sizeof r.payload);
    }
    Measure("100,000 64-byte records", records, CompareRecord);

    // The busy cursor: one OSReWait(0) per partition step, and a sort of n
    // elements takes fewer than n steps.
    OSWait();
    const int calls = 1000000;
    const double rewait = Time([&] {
        for (int i = 0; i < calls; ++i)
            OSReWait(0);
    });
    OSUnWait();
    printf("OSReWait(0) inside a wait                  %10.1f ns per call\n", rewait / calls * 1e9);
    printf("at most, for 1,000,000 elements            %10.1f ms\n", rewait / calls * 1e6 * 1e3);
    return 0;
}
