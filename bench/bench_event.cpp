// Delivery cost of an event chain against a loop over std::function.
#include "SCC_Event.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <vector>

namespace {

int Count(int code, int* data) {
    *data += code;
    return 0;
}

void BM_EventNotify(benchmark::State& state) {
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
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_EventNotify)->Arg(10)->Arg(100)->Arg(1000);

void BM_FunctionVectorLoop(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<std::function<int(int, int*)>> listeners(static_cast<size_t>(n), Count);
    int sum = 0;
    for (auto _ : state) {
        for (auto& f : listeners) f(1, &sum);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_FunctionVectorLoop)->Arg(10)->Arg(100)->Arg(1000);

} // namespace
