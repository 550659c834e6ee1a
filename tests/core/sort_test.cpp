// QSort and QSortLong against std::sort: element sizes that swap whole and
// byte by byte, the orders that trip partition sorts, and the busy cursor.
#include <algorithm>
#include <cstring>
#include <random>
#include <vector>
#include "qz_test.h"

namespace {

using Sort = DWORD(WINAPI *)(void *, DWORD, DWORD, SortCompare);

// Elements of N bytes ordered by their first byte, then by the rest, so that
// every byte must travel with its element.
template <size_t N>
struct Element {
    unsigned char bytes[N];
    bool operator<(const Element &o) const { return memcmp(bytes, o.bytes, N) < 0; }
    bool operator==(const Element &o) const { return memcmp(bytes, o.bytes, N) == 0; }
};

int g_compares;
bool g_busyDuringCompare;

HCURSOR g_frames[8];

bool CursorIsBusy()
{
    const HCURSOR shown = GetCursor();
    return std::find(std::begin(g_frames), std::end(g_frames), shown) != std::end(g_frames);
}

template <size_t N>
int __cdecl Compare(const void *a, const void *b)
{
    ++g_compares;
    if (g_compares == 1)   // asking for the cursor is slow under test
        g_busyDuringCompare = CursorIsBusy();
    return memcmp(a, b, N);
}

enum Order { Random, Sorted, Reversed, AllEqual, FewKeys };

template <size_t N>
std::vector<Element<N>> Make(Order order, size_t count, std::mt19937 &rng)
{
    std::vector<Element<N>> v(count);
    for (auto &e : v)
        for (auto &b : e.bytes)
            b = static_cast<unsigned char>(order == AllEqual ? 7 : order == FewKeys ? rng() % 3
                                                                                   : rng());
    if (order == Sorted)
        std::sort(v.begin(), v.end());
    if (order == Reversed)
        std::sort(v.rbegin(), v.rend());
    return v;
}

class Sorting : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        ASSERT_EQ(1, OSWaitInit());
        for (DWORD i = 0; i < 8; ++i)
            g_frames[i] = LoadCursorA(ResourceGetHandle(), MAKEINTRESOURCEA(1001 + i));
        SetCursor(arrow);
    }
    void TearDown() override
    {
        while (OSUnWait() != 0) {
        }
        ErrorStateTest::TearDown();
    }

    template <size_t N>
    void Check(Sort sort)
    {
        std::mt19937 rng(N);
        for (Order order : {Random, Sorted, Reversed, AllEqual, FewKeys}) {
            for (size_t count : {0, 1, 2, 3, 17, 1000}) {
                auto v = Make<N>(order, count, rng);
                auto expected = v;
                std::sort(expected.begin(), expected.end());
                g_compares = 0;
                g_busyDuringCompare = count < 2;
                EXPECT_EQ(0u, sort(v.data(), static_cast<DWORD>(count), N, Compare<N>));
                EXPECT_TRUE(expected == v) << "size " << N << " order " << order << " count " << count;
                EXPECT_TRUE(g_busyDuringCompare) << "the cursor turns while the sort compares";
                EXPECT_EQ(arrow, GetCursor()) << "and is given back afterwards";
                if (order == Sorted || order == AllEqual) {
                    EXPECT_EQ(count < 2 ? 0 : static_cast<int>(count) - 1, g_compares)
                        << "a sorted array costs one pass";
                }
            }
        }
    }
    template <size_t... N>
    void CheckSizes(Sort sort) { (Check<N>(sort), ...); }
    HCURSOR arrow = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
};

TEST_F(Sorting, SortsLikeStdSortForEveryElementSizeAndOrder)
{
    for (Sort sort : {QSort, QSortLong})
        CheckSizes<1, 2, 3, 4, 8, 24, 130>(sort);
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

TEST_F(Sorting, ReturnsTheNestingOfTheWaitItEnds)
{
    ASSERT_EQ(1u, OSWait());
    int v[] = {3, 1, 2};
    EXPECT_EQ(1u, QSort(v, 3, sizeof(int), Compare<sizeof(int)>));
    EXPECT_EQ(1u, QSortLong(v, 0, sizeof(int), Compare<sizeof(int)>));
    EXPECT_TRUE(CursorIsBusy()) << "the caller's wait goes on";
    EXPECT_EQ(0u, OSUnWait());
}

TEST_F(Sorting, MissingArrayOrCompareIsRecorded)
{
    int v[] = {2, 1};
    EXPECT_EQ(0u, QSort(nullptr, 2, 4, Compare<4>));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    OSErrorClearError();
    EXPECT_EQ(0u, QSort(v, 2, 4, nullptr));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
    EXPECT_EQ(2, v[0]) << "the array is left alone";
    EXPECT_EQ(arrow, GetCursor());
}

}  // namespace
