// Array benchmarks: SCC_Array<int> and SCC_SortableArray<int> against
// std::vector, std::sort and std::lower_bound/upper_bound at 1e3, 1e5 and 1e6
// elements.  Each std row carries a "keel/std" counter (time of the keel row
// before it divided by its own), and a table of the same ratios is printed
// when the program ends.
#include "SCC_SortableArray.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

// Nanoseconds per iteration of the last run of each (operation, size), and
// the ratio table printed at exit.
struct Ratios {
    std::map<std::pair<std::string, long>, std::pair<double, double>> times; // keel, std
    ~Ratios() {
        if (times.empty()) return;
        std::printf("\n%-16s %10s %14s %14s %10s\n", "operation", "elements", "keel ns/iter",
                    "std ns/iter", "keel/std");
        for (auto& t : times) {
            if (t.second.first <= 0 || t.second.second <= 0) continue;
            std::printf("%-16s %10ld %14.0f %14.0f %10.2f\n", t.first.first.c_str(), t.first.second,
                        t.second.first, t.second.second, t.second.first / t.second.second);
        }
    }
};
Ratios ratios;

// Times the loop of one benchmark run and records it for its side.
class Timer {
public:
    Timer(benchmark::State& state, const char* operation, bool keel)
        : m_State(state), m_Operation(operation), m_Keel(keel),
          m_Start(std::chrono::steady_clock::now()) {}
    ~Timer() {
        if (m_State.iterations() == 0) return;
        double ns =
            std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - m_Start)
                .count() /
            static_cast<double>(m_State.iterations());
        auto& slot = ratios.times[{m_Operation, static_cast<long>(m_State.range(0))}];
        (m_Keel ? slot.first : slot.second) = ns;
        if (!m_Keel && slot.first > 0) m_State.counters["keel/std"] = slot.first / ns;
    }

private:
    benchmark::State& m_State;
    std::string m_Operation;
    bool m_Keel;
    std::chrono::steady_clock::time_point m_Start;
};

std::vector<int> RandomValues(long n, unsigned seed) {
    std::vector<int> v(static_cast<size_t>(n));
    for (int& x : v) {
        seed = seed * 1103515245u + 12345u;
        x = static_cast<int>(seed >> 1);
    }
    return v;
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
}

// --- append -----------------------------------------------------------------

void BM_Keel_Append(benchmark::State& state) {
    Timer timer(state, "Append", true);
    for (auto _ : state) {
        SCC_Array<int> a;
        for (int i = 0; i < state.range(0); ++i) a.Append(i);
        benchmark::DoNotOptimize(a.FastGetAt(0));
    }
}
BENCHMARK(BM_Keel_Append)->Apply(Sizes);

void BM_Std_PushBack(benchmark::State& state) {
    Timer timer(state, "Append", false);
    for (auto _ : state) {
        std::vector<int> v;
        for (int i = 0; i < state.range(0); ++i) v.push_back(i);
        benchmark::DoNotOptimize(v.data());
    }
}
BENCHMARK(BM_Std_PushBack)->Apply(Sizes);

// --- indexed reads ----------------------------------------------------------

void BM_Keel_IndexedRead(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    SCC_Array<int> a(static_cast<long>(n));
    for (int i = 0; i < n; ++i) a.FastGetAt(i) = i;
    const SCC_Array<int>& ca = a;
    Timer timer(state, "IndexedRead", true);
    for (auto _ : state) {
        long sum = 0;
        for (int i = 0; i < n; ++i) sum += ca[i];
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_Keel_IndexedRead)->Apply(Sizes);

void BM_Std_IndexedRead(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> v(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) v[static_cast<size_t>(i)] = i;
    Timer timer(state, "IndexedRead", false);
    for (auto _ : state) {
        long sum = 0;
        for (int i = 0; i < n; ++i) sum += v[static_cast<size_t>(i)];
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_Std_IndexedRead)->Apply(Sizes);

// The writable accessor checks bounds and sharing on every access.
void BM_Keel_IndexedWrite(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    SCC_Array<int> a(static_cast<long>(n));
    Timer timer(state, "IndexedWrite", true);
    for (auto _ : state) {
        for (int i = 0; i < n; ++i) a[i] = i;
        benchmark::DoNotOptimize(a.FastGetAt(0));
    }
}
BENCHMARK(BM_Keel_IndexedWrite)->Apply(Sizes);

void BM_Std_IndexedWrite(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> v(static_cast<size_t>(n));
    Timer timer(state, "IndexedWrite", false);
    for (auto _ : state) {
        for (int i = 0; i < n; ++i) v[static_cast<size_t>(i)] = i;
        benchmark::DoNotOptimize(v.data());
    }
}
BENCHMARK(BM_Std_IndexedWrite)->Apply(Sizes);

// --- sort (the refill is timed on both sides) -------------------------------

void BM_Keel_Sort(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const std::vector<int> source = RandomValues(n, 1);
    SCC_SortableArray<int> a(static_cast<long>(n));
    Timer timer(state, "Sort", true);
    for (auto _ : state) {
        for (int i = 0; i < n; ++i) a.FastGetAt(i) = source[static_cast<size_t>(i)];
        a.Sort(0, n, 1);
        benchmark::DoNotOptimize(a.FastGetAt(0));
    }
}
BENCHMARK(BM_Keel_Sort)->Apply(Sizes);

void BM_Std_Sort(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const std::vector<int> source = RandomValues(n, 1);
    std::vector<int> v(static_cast<size_t>(n));
    Timer timer(state, "Sort", false);
    for (auto _ : state) {
        std::copy(source.begin(), source.end(), v.begin());
        std::sort(v.begin(), v.end());
        benchmark::DoNotOptimize(v.data());
    }
}
BENCHMARK(BM_Std_Sort)->Apply(Sizes);

// --- search: 1000 look-ups per iteration ------------------------------------

const int kLookups = 1000;

void BM_Keel_FindItemPosition(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> sorted = RandomValues(n, 2);
    std::sort(sorted.begin(), sorted.end());
    SCC_SortableArray<int> a(static_cast<long>(n));
    for (int i = 0; i < n; ++i) a.FastGetAt(i) = sorted[static_cast<size_t>(i)];
    const std::vector<int> keys = RandomValues(kLookups, 3);
    Timer timer(state, "FindItemPos", true);
    for (auto _ : state) {
        long first = 0, last = 0, total = 0;
        for (int k : keys) {
            a.FindItemPosition(k, first, last);
            total += first + last;
        }
        benchmark::DoNotOptimize(total);
    }
}
BENCHMARK(BM_Keel_FindItemPosition)->Apply(Sizes);

void BM_Std_EqualRange(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> sorted = RandomValues(n, 2);
    std::sort(sorted.begin(), sorted.end());
    const std::vector<int> keys = RandomValues(kLookups, 3);
    Timer timer(state, "FindItemPos", false);
    for (auto _ : state) {
        long total = 0;
        for (int k : keys) {
            auto first = std::lower_bound(sorted.begin(), sorted.end(), k);
            auto last = std::upper_bound(first, sorted.end(), k);
            total += (first - sorted.begin()) + (last - sorted.begin());
        }
        benchmark::DoNotOptimize(total);
    }
}
BENCHMARK(BM_Std_EqualRange)->Apply(Sizes);

// --- sorted insertion: each iteration inserts one item and removes it again,
// so the size stays fixed on both sides -------------------------------------

void BM_Keel_InsertSorted(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> sorted = RandomValues(n, 4);
    std::sort(sorted.begin(), sorted.end());
    SCC_SortableArray<int> a(static_cast<long>(n));
    for (int i = 0; i < n; ++i) a.FastGetAt(i) = sorted[static_cast<size_t>(i)];
    const std::vector<int> keys = RandomValues(kLookups, 5);
    size_t k = 0;
    Timer timer(state, "InsertSorted", true);
    for (auto _ : state) {
        long at = a.InsertSorted(keys[k++ % keys.size()]);
        a.Delete(static_cast<int>(at), 1);
    }
}
BENCHMARK(BM_Keel_InsertSorted)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Keel_InsertSorted)->Arg(1000000)->Iterations(300)->Unit(benchmark::kMicrosecond);

void BM_Std_InsertSorted(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<int> v = RandomValues(n, 4);
    std::sort(v.begin(), v.end());
    const std::vector<int> keys = RandomValues(kLookups, 5);
    size_t k = 0;
    Timer timer(state, "InsertSorted", false);
    for (auto _ : state) {
        int key = keys[k++ % keys.size()];
        auto at = v.insert(std::upper_bound(v.begin(), v.end(), key), key);
        v.erase(at);
    }
}
BENCHMARK(BM_Std_InsertSorted)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Std_InsertSorted)->Arg(1000000)->Iterations(300)->Unit(benchmark::kMicrosecond);

} // namespace
