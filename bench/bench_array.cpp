// Array benchmarks: SCC_Array<int> and SCC_SortableArray<int> against
// std::vector, std::sort and std::equal_range at 1e3, 1e5 and 1e6 elements.
#include "keel_bench.h"

#include <keel/SCC_SortableArray.h>

#include <algorithm>
#include <vector>

namespace {

using namespace keel_bench;

// --- appending ----------------------------------------------------------------
// SCC_Array grows by at most 10000 slots at a time, so filling it is
// quadratic in the element count; std::vector grows geometrically.

void KeelAppend(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        SCC_Array<int> a;
        for (int i = 0; i < n; ++i) a.Append(i);
        benchmark::DoNotOptimize(a.FastGetAt(0));
    }
}

void StdPushBack(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        std::vector<int> v;
        for (int i = 0; i < n; ++i) v.push_back(i);
        benchmark::DoNotOptimize(v.data());
    }
}

// --- indexed reads and writes -------------------------------------------------

void KeelIndexedRead(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    SCC_Array<int> a(static_cast<long>(n));
    for (int i = 0; i < n; ++i) a.FastGetAt(i) = i;
    const SCC_Array<int>& ca = a;
    for (auto _ : state) {
        long sum = 0;
        for (int i = 0; i < n; ++i) sum += ca[i];
        benchmark::DoNotOptimize(sum);
    }
}

void StdIndexedRead(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> v(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) v[static_cast<size_t>(i)] = i;
    for (auto _ : state) {
        long sum = 0;
        for (int i = 0; i < n; ++i) sum += v[static_cast<size_t>(i)];
        benchmark::DoNotOptimize(sum);
    }
}

// The writable accessor checks bounds and sharing on every access.
void KeelIndexedWrite(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    SCC_Array<int> a(static_cast<long>(n));
    for (auto _ : state) {
        for (int i = 0; i < n; ++i) a[i] = i;
        benchmark::DoNotOptimize(a.FastGetAt(0));
    }
}

void StdIndexedWrite(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> v(static_cast<size_t>(n));
    for (auto _ : state) {
        for (int i = 0; i < n; ++i) v[static_cast<size_t>(i)] = i;
        benchmark::DoNotOptimize(v.data());
    }
}

// --- sorting random ints (both sides time the refill from the same source) ----

void KeelSort(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const std::vector<int> source = RandomInts(n, 1);
    SCC_SortableArray<int> a(static_cast<long>(n));
    for (auto _ : state) {
        std::copy(source.begin(), source.end(), &a.FastGetAt(0));
        a.Sort(0, n, 1);
        benchmark::DoNotOptimize(a.FastGetAt(0));
    }
}

// A host's own array class that adds members but overrides none of the
// sorting steps.
struct PartList : SCC_SortableArray<int> {
    explicit PartList(long n) : SCC_SortableArray<int>(n) {}
    int m_Owner = 0;
};

// A sort object of the host's that overrides Compare (here with the
// default order, so both sides sort alike).
struct ByValue : SCC_Sort<int> {
    int Compare(const int& a, const int& b) override { return a < b ? -1 : a > b ? 1 : 0; }
};

template <bool ownCompare> void KeelSortDerived(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const std::vector<int> source = RandomInts(n, 1);
    PartList a(static_cast<long>(n));
    ByValue byValue;
    if (ownCompare) a.SetSort(&byValue);
    for (auto _ : state) {
        std::copy(source.begin(), source.end(), &a.FastGetAt(0));
        a.Sort(0, n, 1);
        benchmark::DoNotOptimize(a.FastGetAt(0));
    }
}

void StdSort(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const std::vector<int> source = RandomInts(n, 1);
    std::vector<int> v(static_cast<size_t>(n));
    for (auto _ : state) {
        std::copy(source.begin(), source.end(), v.begin());
        std::sort(v.begin(), v.end());
        benchmark::DoNotOptimize(v.data());
    }
}

// --- equal runs in a sorted array: 1000 random look-ups per iteration ---------

const int kLookups = 1000;

void KeelFindItemPosition(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> sorted = RandomInts(n, 2);
    std::sort(sorted.begin(), sorted.end());
    SCC_SortableArray<int> a(static_cast<long>(n));
    std::copy(sorted.begin(), sorted.end(), &a.FastGetAt(0));
    const std::vector<int> keys = RandomInts(kLookups, 3);
    for (auto _ : state) {
        long first = 0, last = 0, total = 0;
        for (int k : keys) {
            a.FindItemPosition(k, first, last);
            total += first + last;
        }
        benchmark::DoNotOptimize(total);
    }
    PerItem(state, kLookups);
}

void StdEqualRange(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> sorted = RandomInts(n, 2);
    std::sort(sorted.begin(), sorted.end());
    const std::vector<int> keys = RandomInts(kLookups, 3);
    for (auto _ : state) {
        long total = 0;
        for (int k : keys) {
            auto run = std::equal_range(sorted.begin(), sorted.end(), k);
            total += (run.first - sorted.begin()) + (run.second - sorted.begin());
        }
        benchmark::DoNotOptimize(total);
    }
    PerItem(state, kLookups);
}

// --- sorted insertion: each iteration inserts one item and removes it again,
// so the size stays fixed on both sides ------------------------------------------

void KeelInsertSorted(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> sorted = RandomInts(n, 4);
    std::sort(sorted.begin(), sorted.end());
    SCC_SortableArray<int> a(static_cast<long>(n));
    std::copy(sorted.begin(), sorted.end(), &a.FastGetAt(0));
    const std::vector<int> keys = RandomInts(kLookups, 5);
    size_t k = 0;
    for (auto _ : state) {
        long at = a.InsertSorted(keys[k++ % keys.size()]);
        a.Delete(static_cast<int>(at), 1);
    }
}

void StdInsertSorted(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> v = RandomInts(n, 4);
    std::sort(v.begin(), v.end());
    const std::vector<int> keys = RandomInts(kLookups, 5);
    size_t k = 0;
    for (auto _ : state) {
        const int key = keys[k++ % keys.size()];
        auto at = v.insert(std::upper_bound(v.begin(), v.end(), key), key);
        v.erase(at);
    }
}

void Microseconds(benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMicrosecond); }

// One insertion into a 1e6-element array moves megabytes: a fixed count of
// iterations keeps that row short.
void Short(benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMicrosecond)->Iterations(300); }

[[maybe_unused]] const bool registered = [] {
    Pair("array", "append")
        .Keel(KeelAppend, "SCC_Array<int>::Append, fresh array")
        .Peer("std", StdPushBack, "std::vector<int>::push_back")
        .With(Microseconds)
        .Register({1000, 100000, 1000000});
    Pair("array", "indexed-read")
        .Keel(KeelIndexedRead, "const SCC_Array<int>[i], sum of all")
        .Peer("std", StdIndexedRead, "std::vector<int>[i]")
        .With(Microseconds)
        .Register({1000, 100000, 1000000});
    Pair("array", "indexed-write")
        .Keel(KeelIndexedWrite, "SCC_Array<int>[i] = i, every element")
        .Peer("std", StdIndexedWrite, "std::vector<int>[i] = i")
        .With(Microseconds)
        .Register({1000, 100000, 1000000});
    Pair("array", "sort")
        .Keel(KeelSort, "SCC_SortableArray<int>::Sort of random ints, with refill")
        .Peer("std", StdSort, "std::sort, with refill", 3)
        .With(Microseconds)
        .Register({1000, 100000, 1000000});

    const char* derived = "Sort of a class derived from SCC_SortableArray<int>, with refill";
    Pair("array", "sort-derived")
        .Keel(KeelSortDerived<false>, derived)
        .Peer("std", StdSort, "std::sort, with refill", 3)
        .With(Microseconds)
        .Register({1000});
    Pair("array", "sort-derived")
        .Keel(KeelSortDerived<false>, derived)
        .Peer("std", StdSort, "std::sort, with refill", 1.5)
        .With(Microseconds)
        .Register({100000, 1000000});
    const char* ownCompare =
        "Sort of a class derived from SCC_SortableArray<int>, sort object overriding Compare";
    Pair("array", "sort-own-compare")
        .Keel(KeelSortDerived<true>, ownCompare)
        .Peer("std", StdSort, "std::sort, with refill")
        .With(Microseconds)
        .Register({1000, 100000});
    Pair("array", "sort-own-compare")
        .Keel(KeelSortDerived<true>, ownCompare)
        .Peer("std", StdSort, "std::sort, with refill", 3)
        .With(Microseconds)
        .Register({1000000});

    const char* find = "SCC_SortableArray<int>::FindItemPosition, per look-up";
    Pair("array", "find-item-position")
        .Keel(KeelFindItemPosition, find)
        .Peer("std", StdEqualRange, "std::equal_range")
        .With(Microseconds)
        .Register({1000});
    Pair("array", "find-item-position")
        .Keel(KeelFindItemPosition, find)
        .Peer("std", StdEqualRange, "std::equal_range", 1.5)
        .With(Microseconds)
        .Register({100000});
    Pair("array", "find-item-position")
        .Keel(KeelFindItemPosition, find)
        .Peer("std", StdEqualRange, "std::equal_range")
        .With(Microseconds)
        .Register({1000000});

    const char* insert = "SCC_SortableArray<int>::InsertSorted + Delete";
    const char* stdInsert = "std::upper_bound + vector::insert + erase";
    Pair("array", "insert-sorted")
        .Keel(KeelInsertSorted, insert)
        .Peer("std", StdInsertSorted, stdInsert)
        .With(Microseconds)
        .Register({1000, 100000});
    Pair("array", "insert-sorted")
        .Keel(KeelInsertSorted, insert)
        .Peer("std", StdInsertSorted, stdInsert)
        .With(Short)
        .Register({1000000});
    return true;
}();

} // namespace
