// Event benchmarks: delivering one notification through an SCC_Event<int>
// chain of hooks, against a loop over std::function and a Boost.Signals2
// signal with the same number of slots.  Times are per delivery to one hook.
#include "keel_bench.h"

#include <keel/SCC_Event.h>

#if KEEL_BENCH_BOOST
#include <boost/signals2/signal.hpp>
#endif

#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace keel_bench;

// The listener on every side: a free function that touches the data.
int Count(int code, int* data) {
    *data += code;
    return 0;
}

void KeelNotify(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    SCC_Event<int> event;
    std::unique_ptr<SCC_EventHook<int>[]> hooks(new SCC_EventHook<int>[n]);
    for (int i = 0; i < n; ++i) {
        hooks[i].SetCallback(Count);
        hooks[i].SetPriority(i % 7);
        hooks[i].Attach(&event);
    }
    int sum = 0;
    for (auto _ : state) {
        event.Notify(1, &sum);
        benchmark::DoNotOptimize(sum);
    }
    PerItem(state, n);
}

void FunctionVectorNotify(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<std::function<int(int, int*)>> listeners(static_cast<size_t>(n), Count);
    int sum = 0;
    for (auto _ : state) {
        for (auto& f : listeners) f(1, &sum);
        benchmark::DoNotOptimize(sum);
    }
    PerItem(state, n);
}

#if KEEL_BENCH_BOOST
void Signals2Notify(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    boost::signals2::signal<int(int, int*)> signal;
    for (int i = 0; i < n; ++i) signal.connect(Count);
    int sum = 0;
    for (auto _ : state) {
        signal(1, &sum);
        benchmark::DoNotOptimize(sum);
    }
    PerItem(state, n);
}
#endif

[[maybe_unused]] const bool registered = [] {
    Pair("event", "notify")
        .Keel(KeelNotify, "SCC_Event<int>::Notify, per hook")
        .Peer("std-function", FunctionVectorNotify, "loop over std::vector<std::function>", 1.5)
#if KEEL_BENCH_BOOST
        .Peer("boost-signals2", Signals2Notify, "boost::signals2::signal", 0.2)
#endif
        .Register({1, 8, 64});
    return true;
}();

} // namespace
