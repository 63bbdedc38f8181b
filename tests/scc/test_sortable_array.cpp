// Tests of SCC_SortableArray<int>: the sort in both directions, the
// equal-run search, sorted insertion, identity search and the sort objects.
#include <keel/SCC_SortableArray.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

typedef std::vector<int> Ints;
typedef std::pair<long, long> Span;
typedef std::vector<Span> Spans;

// Logs the swaps of a sort and opens the storage block.
struct Sortable : SCC_SortableArray<int> {
    Spans swaps;
    explicit Sortable(const Ints& values, int lo = 0)
        : SCC_SortableArray<int>(lo, lo + static_cast<int>(values.size())) {
        for (int v : values) FastGetAt(lo++) = v;
    }
    void Swap(long i, long j) override {
        swaps.emplace_back(i, j);
        SCC_SortableArray<int>::Swap(i, j);
    }
    Ints Values() {
        Ints v;
        for (int i = GetLowerBound(); i < GetUpperBound(); ++i) v.push_back(FastGetAt(i));
        return v;
    }
    Span Run(int item) {
        Span run(-99, -99);
        FindItemPosition(item, run.first, run.second);
        return run;
    }
};

int ByTens(const int& a, const int& b) { return a / 10 - b / 10; }

Ints Random(int n, unsigned seed) {
    Ints v;
    while (n-- > 0) v.push_back(static_cast<int>((seed = seed * 1103515245u + 12345u) >> 16) % 13);
    return v;
}

TEST(SortableArray, SortsBothWaysAndPartitionsFromNineElementsOn) {
    for (int n = 0; n <= 40; ++n) {
        Ints values = Random(n, n);
        Sortable a(values, -7);
        a.Sort(-7, n, 1);
        std::sort(values.begin(), values.end());
        EXPECT_EQ(a.Values(), values) << n;
    }
    Sortable eight({5, 2, 8, 1, 9, 3, 7, 4}), nine({5, 2, 8, 1, 9, 3, 7, 4, 6});
    eight.Sort(0, 8, 1);
    EXPECT_EQ(eight.swaps, (Spans{{4, 7}, {2, 6}, {2, 5}, {0, 4}, {0, 3}, {2, 2}, {1, 1}}));
    nine.Sort(0, 9, 1);
    EXPECT_EQ(nine.swaps,
              (Spans{{4, 0}, {0, 8}, {2, 7}, {6, 6}, {0, 5}, {4, 4}, {2, 3}, {0, 2}, {1, 1}}));
    // The first of equal greatest elements goes to the end.
    Sortable keyed({21, 10, 22, 11});
    keyed.SetSortFunction(ByTens);
    keyed.Sort(0, 4, 1);
    EXPECT_EQ(keyed.Values(), (Ints{10, 11, 22, 21}));

    // Descending, from 9 elements on the partition runs reversed around short
    // runs that the selection sort orders by the reversed comparison.
    const std::pair<Ints, Ints> cases[] = {
        {{5, 2, 8, 1, 9, 3, 7, 4}, {9, 8, 7, 5, 4, 3, 2, 1}},
        {{5, 2, 8, 1, 9, 3, 7, 4, 6}, {8, 7, 6, 5, 4, 3, 2, 1, 9}},
        {{5, 2, 8, 1, 9, 3, 7, 4, 6, 0, 11, 10}, {6, 5, 4, 3, 2, 1, 0, 7, 11, 10, 9, 8}},
    };
    for (auto& c : cases) {
        Sortable a(c.first);
        a.Sort(0, static_cast<long>(c.first.size()), -1);
        EXPECT_EQ(a.Values(), c.second) << c.first.size();
    }

    // The searches then work on the reversed order, until a new block.
    Sortable down({1, 3, 0, 5, 3});
    down.Sort(0, 5, -1);
    EXPECT_EQ(down.Run(3), Span(1, 3));
    EXPECT_EQ(down.InsertSorted(2), 3);
    EXPECT_EQ(down.Values(), (Ints{5, 3, 3, 2, 1, 0}));
    Sortable copy(down);
    copy[0] = 5; // copy on write: the new block starts ascending again
    EXPECT_EQ(copy.Run(2), Span(0, 0));
    down.Sort(0, 0, 1); // a sort of nothing still records its direction
    EXPECT_EQ(down.Run(2), Span(0, 0));
}

TEST(SortableArray, SearchesWidenToTheEqualRunAndCheckBothNeighbours) {
    // Against std::lower_bound/upper_bound.  The midpoint is truncated toward
    // zero, so with a negative base a missing item between two negative
    // indices lands on the lower of them.
    Ints values;
    for (int i = 0; i < 37; ++i) values.push_back(i / 3 * 2);
    for (int base : {0, -20}) {
        Sortable b(values, base);
        for (int item = -1; item <= 26; ++item) {
            long first = std::lower_bound(values.begin(), values.end(), item) - values.begin();
            long last = std::upper_bound(values.begin(), values.end(), item) - values.begin();
            if (base < 0 && first == last && first > 0 && first + base <= 0) --first, --last;
            EXPECT_EQ(b.Run(item), Span(first + base, last + base)) << item << base;
        }
    }
    Sortable gone({4, 5}, 10);
    gone.Delete(10, 2);
    EXPECT_EQ(gone.Run(4), Span(0, 0));

    Sortable order({1, 3, 2, 4, 5}), back({2, 1}), one({8}, 5);
    EXPECT_EQ((Ints{order.ItemInValidPlace(0), order.ItemInValidPlace(1), order.ItemInValidPlace(2),
                    order.ItemInValidPlace(3), order.ItemInValidPlace(4), back.ItemInValidPlace(0),
                    back.ItemInValidPlace(1), one.ItemInValidPlace(5)}),
              (Ints{1, 0, 0, 1, 1, 0, 0, 1}));
}

TEST(SortableArray, InsertSortedGoesAfterTheRunAndFindLooksForTheIdenticalItem) {
    Sortable a({1, 3, 3, 3, 5});
    SCC_Array<int>::Iterator at4;
    at4.SetArray(&a, 4);
    EXPECT_EQ((Ints{static_cast<int>(a.InsertSorted(3)), at4.GetPosition()}), (Ints{4, 5}));

    Sortable b({});
    Ints expected;
    for (int v : Random(200, 7)) {
        b.InsertSorted(v);
        expected.insert(std::upper_bound(expected.begin(), expected.end(), v), v);
    }
    b.InsertSorted(b.FastGetAt(0)); // an item that lives in the moving block
    expected.insert(expected.begin(), int(expected.front()));
    EXPECT_EQ(b.Values(), expected);

    Sortable keyed({10, 21, 22, 23, 30});
    keyed.SetSortFunction(ByTens);
    for (auto& c : {Ints{22, 1, 2}, Ints{25, 0, 4}, Ints{45, 0, 5}, Ints{5, 0, 0}}) {
        long position = -1;
        EXPECT_EQ((Ints{keyed.Find(c[0], position), int(position)}), (Ints{c[1], c[2]})) << c[0];
    }
}

struct Descending : SCC_Sort<int> {
    int Compare(const int& a, const int& b) override { return a == b ? 0 : a < b ? 1 : -1; }
};

TEST(SortableArray, SortObjectsAreCountedSharedAndReplaceable) {
    Descending descending; // automatic: never deleted through its count
    Sortable a({2, 9, 4});
    SCC_SharedPointer<SCC_Sort<int>> first = a.GetSort();
    EXPECT_EQ(first->m_Function, nullptr);
    EXPECT_EQ(first->GetRefCount(), 2);
    Sortable b(a);
    EXPECT_EQ(b.GetSort().Get(), first.Get());
    a.SetSortFunction(ByTens);
    b.SetSort(&descending);
    EXPECT_EQ(first->GetRefCount(), 1);
    b.Sort(0, 3, 1);
    EXPECT_EQ(b.Values(), (Ints{9, 4, 2}));
    EXPECT_EQ(a.Values(), (Ints{2, 9, 4}));
    a = b;
    EXPECT_EQ(descending.GetRefCount(), 3);
    a.SetSort(nullptr); // without a sort object everything compares equal
    EXPECT_EQ(a.Comp(0, 1), 0);
}

} // namespace
