// A sortable array sorts and searches its own storage directly when nobody
// overrides its sorting operations.  These tests hold that path to the one
// that goes through the virtual Comp, Swap and ShortSort: the same order of
// equal elements, the same comparisons, the same recorded direction.
#include <keel/SCC_SortableArray.h>
#include "internal/SCC_VirtualSlots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

struct Item {
    int key;
    int id;
    bool operator==(const Item& o) const { return key == o.key && id == o.id; }
};
template <> struct SCC_DefaultCompare<Item> {
    static int Compare(const Item& a, const Item& b) { return a.key - b.key; }
};

namespace {

long g_Compares = 0;
int ByKey(const Item& a, const Item& b) {
    ++g_Compares;
    return a.key - b.key;
}

// A subclass that overrides a sorting step takes the path through the
// virtual operations; each of these counts the calls of the step it
// overrides.
long g_Steps[3] = {};
struct Virtual : SCC_SortableArray<Item> {
    Virtual(int lo, int hi) : SCC_SortableArray<Item>(lo, hi) {}
    int Comp(long i, long j) override { return ++g_Steps[0], SCC_SortableArray<Item>::Comp(i, j); }
};
struct OwnSwap : SCC_SortableArray<Item> {
    OwnSwap(int lo, int hi) : SCC_SortableArray<Item>(lo, hi) {}
    void Swap(long i, long j) override { ++g_Steps[1], SCC_SortableArray<Item>::Swap(i, j); }
};
struct OwnShortSort : SCC_SortableArray<Item> {
    OwnShortSort(int lo, int hi) : SCC_SortableArray<Item>(lo, hi) {}
    void ShortSort(long lo, long hi, int direction) override {
        ++g_Steps[2], SCC_SortableArray<Item>::ShortSort(lo, hi, direction);
    }
};
// One that overrides none of them sorts its storage directly.
struct Plain : SCC_SortableArray<Item> {
    Plain(int lo, int hi) : SCC_SortableArray<Item>(lo, hi) {}
    int Granularity() override { return SCC_SortableArray<Item>::Granularity(); }
};

// A comparison object that is not exactly SCC_Sort<Item>.
struct Reversed : SCC_Sort<Item> {
    int Compare(const Item& a, const Item& b) override { return ByKey(b, a); }
};

struct Outcome {
    std::vector<int> ids;
    long compares;
    int order;
};

template <class Array>
Outcome SortWith(int lo, int n, long start, long count, int direction, bool reversed, bool shared,
                 unsigned seed) {
    Array a(lo, lo + n);
    if (reversed)
        a.SetSort(new Reversed);
    else
        a.SetSortFunction(ByKey);
    for (int i = 0; i < n; ++i) {
        seed = seed * 1103515245u + 12345u;
        a[lo + i] = Item{static_cast<int>(seed >> 16) % 7, i};
    }
    Array other(a); // shares the block when asked to
    if (!shared) other.Clear();
    g_Compares = 0;
    a.Sort(start, count, direction);
    Outcome out{{}, g_Compares, a.m_Buffer ? a.m_Buffer->m_SortOrder : 0};
    for (int i = lo; i < lo + n; ++i) out.ids.push_back(a[i].id);
    return out;
}

TEST(SortPaths, DirectSortMatchesTheVirtualOneStepForStep) {
    struct Case {
        int lo, n;
        long start, count;
        int direction;
        bool reversed, shared;
    } cases[] = {
        {0, 9, 0, 9, 1, false, false},
        {0, 200, 0, 200, 1, false, false},
        {-50, 300, -50, 300, -1, false, false},
        {5, 100, 20, 60, 2, false, false},
        {0, 150, 0, 150, 1, true, false},
        {0, 150, 0, 150, -3, true, false},
        // A shared block is copied on the first access, and the copy starts
        // ascending again: the sort then compares in that order.
        {0, 120, 0, 120, -1, false, true},
    };
    for (const Case& c : cases) {
        for (unsigned seed = 1; seed <= 3; ++seed) {
            Outcome direct = SortWith<SCC_SortableArray<Item>>(
                c.lo, c.n, c.start, c.count, c.direction, c.reversed, c.shared, seed);
            std::fill(std::begin(g_Steps), std::end(g_Steps), 0);
            const Outcome others[] = {SortWith<Virtual>(c.lo, c.n, c.start, c.count, c.direction,
                                                        c.reversed, c.shared, seed),
                                      SortWith<OwnSwap>(c.lo, c.n, c.start, c.count, c.direction,
                                                        c.reversed, c.shared, seed),
                                      SortWith<OwnShortSort>(c.lo, c.n, c.start, c.count,
                                                             c.direction, c.reversed, c.shared,
                                                             seed),
                                      SortWith<Plain>(c.lo, c.n, c.start, c.count, c.direction,
                                                      c.reversed, c.shared, seed)};
            for (const Outcome& virt : others) {
                EXPECT_EQ(direct.ids, virt.ids) << c.n << " " << c.direction << " seed " << seed;
                EXPECT_EQ(direct.compares, virt.compares) << c.n << " " << c.direction;
                EXPECT_EQ(direct.order, virt.order) << c.n << " " << c.direction;
            }
            for (long calls : g_Steps) EXPECT_GT(calls, 0) << c.n << " " << c.direction;
        }
    }
}

// The direct path is chosen by what a class overrides, not by its type.
TEST(SortPaths, OnlyAnOverriddenStepLeavesTheDirectPath) {
    using Array = SCC_SortableArray<Item>;
    const auto direct = [](const Array& a) {
        return SCC_SameOverriders<Array>(a, &Array::Comp, &Array::Swap);
    };
    EXPECT_TRUE(direct(Array(0, 1)));
    EXPECT_TRUE(direct(Plain(0, 1)));
    EXPECT_FALSE(direct(Virtual(0, 1)));
    EXPECT_FALSE(direct(OwnSwap(0, 1)));
    struct SameOrder : SCC_Sort<Item> {};
    const auto inlineCompare = [](const SCC_Sort<Item>& s) {
        return SCC_SameOverriders<SCC_Sort<Item>>(s, &SCC_Sort<Item>::Compare);
    };
    EXPECT_TRUE(inlineCompare(SCC_Sort<Item>()));
    EXPECT_TRUE(inlineCompare(SameOrder()));
    EXPECT_FALSE(inlineCompare(Reversed()));
}

// The equal-run search step by step as it is defined, over v[i - lower].
std::pair<long, long> ReferenceRun(const std::vector<int>& v, long lower, int item) {
    auto comp = [&](long i) { return v[i - lower] == item ? 0 : v[i - lower] > item ? 1 : -1; };
    const long upper = lower + static_cast<long>(v.size());
    long first = lower, last = upper - 1;
    long long cf = comp(first), cl = comp(last);
    if (cf >= 0) {
        last = first;
    } else if (cl < 0) {
        first = last = last + 1;
    } else if (cl == 0) {
        first = last;
        last = last + 1;
    } else {
        while (last - first > 0) {
            long mid = (first + last) / 2;
            const long long cm = comp(mid);
            if (cm * cf <= 0) {
                cl = cm;
                if (last == mid && cm != 0) mid = mid - 1;
                last = mid;
            }
            if (cm * cl <= 0) {
                cf = cm;
                if (first == mid && cm != 0) mid = mid + 1;
                first = mid;
            }
        }
    }
    while (first > lower && comp(first - 1) == 0) --first;
    while (last < upper && comp(last) == 0) ++last;
    return {first, last};
}

// Sorted or not, with bounds on either side of zero (where the midpoint
// truncates toward zero), the search lands where the definition does.
TEST(SortPaths, SearchFollowsItsDefinitionOnAnyContent) {
    unsigned seed = 11;
    auto next = [&seed] { return (seed = seed * 1103515245u + 12345u) >> 16; };
    for (int round = 0; round < 3000; ++round) {
        const int n = 1 + static_cast<int>(next() % 40);
        const int lower = static_cast<int>(next() % 60) - 50;
        std::vector<int> v(static_cast<size_t>(n));
        for (int& x : v) x = static_cast<int>(next() % 12);
        if (round % 3) std::sort(v.begin(), v.end());
        SCC_SortableArray<int> a(lower, lower + n);
        for (int i = 0; i < n; ++i) a[lower + i] = v[static_cast<size_t>(i)];
        const int item = static_cast<int>(next() % 14) - 1;
        std::pair<long, long> got;
        a.FindItemPosition(item, got.first, got.second);
        ASSERT_EQ(ReferenceRun(v, lower, item), got) << round;
    }
}

TEST(SortPaths, SearchOfASharedBlockMakesItPrivateFirst) {
    SCC_SortableArray<int> a(0, 5);
    for (int i = 0; i < 5; ++i) a[i] = i * 10;
    SCC_SortableArray<int> copy(a);
    ASSERT_EQ(2, a.m_Buffer->m_Count);
    long first = 0, last = 0;
    copy.FindItemPosition(20, first, last);
    EXPECT_EQ(2, first);
    EXPECT_EQ(3, last);
    EXPECT_NE(a.m_Buffer, copy.m_Buffer);
    EXPECT_EQ(1, a.m_Buffer->m_Count);
}

} // namespace
