// Geometry benchmarks: point transformation and bounding-box accumulation
// with keel's types against a plain loop over doubles doing the same work.
#include "SYS_Geom.h"
#include "SYS_Transform.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

std::vector<SYS_Point> RandomPoints(size_t n) {
    std::mt19937 rng(7);
    std::uniform_int_distribution<long> coord(-100000000, 100000000);
    std::vector<SYS_Point> pts;
    for (size_t i = 0; i < n; ++i) pts.emplace_back(coord(rng), coord(rng));
    return pts;
}

SYS_Transform Placement() { return SYS_Transform(SYS_Position(1000, -2000, 81000000, 1), 0, 0, 0); }

} // namespace

static void BM_Keel_TransformPoints(benchmark::State& state) {
    const std::vector<SYS_Point> in = RandomPoints(static_cast<size_t>(state.range(0)));
    std::vector<SYS_Point> out(in.size());
    const SYS_Transform t = Placement();
    for (auto _ : state) {
        for (size_t i = 0; i < in.size(); ++i) out[i] = t.Transform(in[i]);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Keel_TransformPoints)->Arg(4096);

static void BM_Plain_TransformPoints(benchmark::State& state) {
    const std::vector<SYS_Point> pts = RandomPoints(static_cast<size_t>(state.range(0)));
    std::vector<double> x, y;
    for (const SYS_Point& p : pts) x.push_back(p.x), y.push_back(p.y);
    std::vector<long> ox(x.size()), oy(y.size());
    const SYS_Transform t = Placement();
    const double a = t.a, b = t.b, c = t.c, d = t.d, e = t.e, f = t.f;
    for (auto _ : state) {
        for (size_t i = 0; i < x.size(); ++i) {
            ox[i] = std::lround(a * x[i] + b * y[i] + c);
            oy[i] = std::lround(d * x[i] + e * y[i] + f);
        }
        benchmark::DoNotOptimize(ox.data());
        benchmark::DoNotOptimize(oy.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Plain_TransformPoints)->Arg(4096);

static void BM_Keel_CombineBoxes(benchmark::State& state) {
    const std::vector<SYS_Point> pts = RandomPoints(static_cast<size_t>(state.range(0)));
    std::vector<SYS_Box> boxes;
    for (const SYS_Point& p : pts) boxes.emplace_back(p, 5000L);
    for (auto _ : state) {
        SYS_Box acc = SYS_Box::Null();
        for (const SYS_Box& b : boxes) acc.Combine(b);
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Keel_CombineBoxes)->Arg(4096);

static void BM_Plain_CombineBoxes(benchmark::State& state) {
    const std::vector<SYS_Point> pts = RandomPoints(static_cast<size_t>(state.range(0)));
    std::vector<double> l, lo, r, up;
    for (const SYS_Point& p : pts)
        l.push_back(p.x), lo.push_back(p.y), r.push_back(p.x + 5000.0), up.push_back(p.y + 5000.0);
    for (auto _ : state) {
        double bl = HUGE_VAL, blo = HUGE_VAL, br = -HUGE_VAL, bup = -HUGE_VAL;
        for (size_t i = 0; i < l.size(); ++i) {
            bl = std::min(bl, l[i]), blo = std::min(blo, lo[i]);
            br = std::max(br, r[i]), bup = std::max(bup, up[i]);
        }
        benchmark::DoNotOptimize(bl + blo + br + bup);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Plain_CombineBoxes)->Arg(4096);
