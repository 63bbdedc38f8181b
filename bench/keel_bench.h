// keel_bench.h - registration of paired benchmarks and the inputs they share.
//
// Every measurement in keel-bench is one side of a pair: keel doing an
// operation, and a peer (the standard library, a plain loop, another library)
// doing the same work on the same inputs in the same process.  bench/report.py
// pairs the two sides by name and writes docs/performance.md.
//
// Naming convention, which the report relies on:
//
//     family/operation/keel[/arg...]     keel's side
//     family/operation/PEER[/arg...]     a peer's side, PEER being any other
//                                        word (std, plain, boost-signals2...)
//
// family and operation are lower-case words joined by '-' and contain no
// '/'; the arguments are the ones given to Pair::Register, which gives the
// same ones to every side.  Google Benchmark's
// own suffixes (iterations:N, min_time:T, real_time, ...) are ignored when
// pairing.  An operation may have several peers: each becomes a row.
//
// Register the sides with Pair below rather than BENCHMARK():
//
//     Pair("event", "notify")
//         .Keel(KeelNotify, "SCC_Event<int>::Notify, per hook")
//         .Peer("std-function", LoopNotify, "loop over std::vector<std::function>", 1.5)
//         .Register({1, 8, 64});
//
//   - `what` is the human description shown in the report (it becomes the
//     benchmark's label, so the console shows it too);
//   - a peer may carry a target, the largest acceptable ratio of keel's CPU
//     time to the peer's (0 for an informational row); it is reported as the
//     counter "target";
//   - Register runs the sides of each argument back to back (keel/1, its
//     peers/1, keel/8, ...), so that a pair sees the same machine load;
//   - a benchmark that handles several items per iteration (hooks, points,
//     look-ups) calls PerItem(state, n): the report then shows times per
//     item, and its description should say "per hook", "per point"...
//
// A new family is a new bench_<family>.cpp in this folder (CMake picks it
// up); its rows appear in the report under the family's name without any
// change to the report script.
#ifndef KEEL_BENCH_H
#define KEEL_BENCH_H

#include <benchmark/benchmark.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace keel_bench {

using Function = void (*)(benchmark::State&);
using Options = std::function<void(benchmark::internal::Benchmark*)>;

// keel's side and the peers of one operation, registered together.
class Pair {
public:
    Pair(const char* family, const char* operation)
        : m_Prefix(std::string(family) + "/" + operation + "/") {}

    Pair& Keel(Function function, const char* what) { return Join("keel", function, what, 0); }

    // target: the largest acceptable keel/peer CPU-time ratio, 0 for none.
    Pair& Peer(const char* peer, Function function, const char* what, double target = 0) {
        return Join(peer, function, what, target);
    }

    // Settings applied to every benchmark of the pair (unit, iterations...).
    Pair& With(Options options) {
        m_Options = std::move(options);
        return *this;
    }

    // Registers every side once per argument, the sides of one argument
    // next to each other; no arguments registers each side once.
    void Register(std::initializer_list<int64_t> args = {}) const {
        if (args.size() == 0) {
            for (const Entry& side : m_Sides) Add(side, nullptr);
            return;
        }
        for (int64_t arg : args)
            for (const Entry& side : m_Sides) Add(side, &arg);
    }

private:
    struct Entry {
        std::string name;
        Function function;
        std::string label;
        double target;
    };

    Pair& Join(const char* side, Function function, const char* what, double target) {
        m_Sides.push_back({m_Prefix + side, function, what ? what : "", target});
        return *this;
    }

    void Add(const Entry& side, const int64_t* arg) const {
        const Function function = side.function;
        const std::string label = side.label;
        const double target = side.target;
        benchmark::internal::Benchmark* b =
            benchmark::RegisterBenchmark(side.name.c_str(), [=](benchmark::State& state) {
                function(state);
                if (!label.empty()) state.SetLabel(label);
                if (target > 0) state.counters["target"] = target;
            });
        if (arg) b->Arg(*arg);
        if (m_Options) m_Options(b);
    }

    std::string m_Prefix;
    std::vector<Entry> m_Sides;
    Options m_Options;
};

namespace detail {

// glibc serves large blocks with mmap until a block of that size is freed,
// and then raises its threshold: without fixed thresholds a benchmark that
// allocates a few hundred kilobytes runs ten times faster or slower
// depending on which benchmarks ran before it.  Fixed thresholds (blocks up
// to 32 MB from the heap, no trimming) give every benchmark the allocator of
// a long-running host, whatever the order or filter.
inline bool FixAllocator() {
#if defined(__GLIBC__)
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 512 << 20);
#endif
    return true;
}
inline const bool allocatorFixed = FixAllocator();

} // namespace detail

// Declares that each iteration handled n items: the report divides the time
// by n, and the console shows items per second.
inline void PerItem(benchmark::State& state, int64_t n) {
    state.SetItemsProcessed(state.iterations() * n);
    state.counters["items"] = static_cast<double>(n);
}

// n pseudo-random non-negative ints, the same for the same seed on every
// machine (a fixed linear congruential generator, not <random>'s
// implementation-defined distributions).
inline std::vector<int> RandomInts(int64_t n, uint32_t seed) {
    std::vector<int> v(static_cast<size_t>(n));
    for (int& x : v) {
        seed = seed * 1103515245u + 12345u;
        x = static_cast<int>(seed >> 1);
    }
    return v;
}

} // namespace keel_bench

#endif // KEEL_BENCH_H
