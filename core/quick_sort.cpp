// QSort and QSortLong: arrays of fixed-size elements sorted in place while the
// busy cursor turns. Not stable, and not reentrant: a compare must not sort.
#include <string.h>
#include "module_globals.h"

namespace {

// The element size and compare of the sort under way.
DWORD s_size;
SortCompare s_compare;

char *At(char *base, DWORD index) { return base + static_cast<size_t>(index) * s_size; }

void Swap(char *a, char *b)
{
    switch (s_size) {
    case 1: {
        char t = *a;
        *a = *b;
        *b = t;
        return;
    }
    case 2: {
        WORD t;
        memcpy(&t, a, 2);
        memcpy(a, b, 2);
        memcpy(b, &t, 2);
        return;
    }
    case 4: {
        DWORD t;
        memcpy(&t, a, 4);
        memcpy(a, b, 4);
        memcpy(b, &t, 4);
        return;
    }
    default:
        break;
    }
    // Larger elements go through a small buffer, a piece at a time.
    char buffer[64];
    for (DWORD done = 0; done < s_size;) {
        const DWORD piece = s_size - done < sizeof buffer ? s_size - done : sizeof buffer;
        memcpy(buffer, a + done, piece);
        memcpy(a + done, b + done, piece);
        memcpy(b + done, buffer, piece);
        done += piece;
    }
}

// Partition sort of [low, high] around the element at low. The smaller part
// is sorted by recursion and the larger in this call, so the depth stays
// logarithmic.
void PartitionSort(char *base, DWORD low, DWORD high)
{
    while (low < high) {
        OSReWait(0);
        char *pivot = At(base, low);
        DWORD i = low;
        DWORD j = high + 1;
        for (;;) {
            do
                ++i;
            while (i < high && s_compare(At(base, i), pivot) <= 0);
            do
                --j;
            while (j > low && s_compare(At(base, j), pivot) >= 0);
            if (i >= j)
                break;
            Swap(At(base, i), At(base, j));
        }
        if (j != low)
            Swap(pivot, At(base, j));
        if (j - low < high - j) {
            if (j > low + 1)
                PartitionSort(base, low, j - 1);
            low = j + 1;
        } else {
            if (j + 1 < high)
                PartitionSort(base, j + 1, high);
            high = j - 1;
        }
    }
}

bool IsSorted(char *base, DWORD count)
{
    for (DWORD i = 0; i + 1 < count; ++i)
        if (s_compare(At(base, i), At(base, i + 1)) > 0)
            return false;
    return true;
}

DWORD SortArray(void *base, DWORD count, DWORD size, SortCompare compare)
{
    OSWait();
    if (count >= 2) {
        if (!base || !compare || !size) {
            OSErrorSetErrorInfo(RV_BadParms);
        } else {
            s_size = size;
            s_compare = compare;
            char *bytes = static_cast<char *>(base);
            if (!IsSorted(bytes, count))
                PartitionSort(bytes, 0, count - 1);
        }
    }
    return OSUnWait();
}

}  // namespace

extern "C" DWORD WINAPI QSort(void *base, DWORD count, DWORD size, SortCompare compare)
{
    return SortArray(base, count, size, compare);
}

extern "C" DWORD WINAPI QSortLong(void *base, DWORD count, DWORD size, SortCompare compare)
{
    return SortArray(base, count, size, compare);
}
