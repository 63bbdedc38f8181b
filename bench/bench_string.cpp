// String benchmarks: SYS_StringBase against std::string for the operations a
// host runs in loops (appending, searching, natural comparison).
#include "SYS_Scan.h"
#include "SYS_String.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

static void BM_Keel_AppendChar(benchmark::State& state) {
    for (auto _ : state) {
        SYS_StringBase s;
        for (int i = 0; i < state.range(0); ++i) s += 'x';
        benchmark::DoNotOptimize(s.GetString());
    }
}
BENCHMARK(BM_Keel_AppendChar)->Arg(1000);

static void BM_Std_AppendChar(benchmark::State& state) {
    for (auto _ : state) {
        std::string s;
        for (int i = 0; i < state.range(0); ++i) s += 'x';
        benchmark::DoNotOptimize(s.c_str());
    }
}
BENCHMARK(BM_Std_AppendChar)->Arg(1000);

static void BM_Keel_FindOneOf(benchmark::State& state) {
    SYS_StringBase s(std::string(static_cast<size_t>(state.range(0)), 'a').append("/").c_str());
    for (auto _ : state) benchmark::DoNotOptimize(s.FindOneOf("/\\"));
}
BENCHMARK(BM_Keel_FindOneOf)->Arg(1000);

static void BM_Std_FindFirstOf(benchmark::State& state) {
    std::string s = std::string(static_cast<size_t>(state.range(0)), 'a').append("/");
    for (auto _ : state) benchmark::DoNotOptimize(s.find_first_of("/\\"));
}
BENCHMARK(BM_Std_FindFirstOf)->Arg(1000);

static void BM_Keel_NaturalCompare(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(_tcsnumcmp("layer_top_0012_copper", "layer_top_12_copper"));
}
BENCHMARK(BM_Keel_NaturalCompare);

static void BM_Std_Strcmp(benchmark::State& state) {
    const char* a = "layer_top_0012_copper";
    const char* b = "layer_top_12_copper";
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(b);
    for (auto _ : state) benchmark::DoNotOptimize(std::strcmp(a, b));
}
BENCHMARK(BM_Std_Strcmp);
