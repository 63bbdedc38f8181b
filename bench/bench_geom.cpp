// Geometry benchmarks: point transformation and bounding-box accumulation
// with keel's types against plain loops doing the same integer and double
// arithmetic on the same data.  Times are per point or per box.
#include "keel_bench.h"

#include <keel/SYS_Geom.h>
#include <keel/SYS_Transform.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using namespace keel_bench;

// Points with coordinates in [-1e8, 1e8], far inside the coordinate limit
// after any rotation.
std::vector<SYS_Point> RandomPoints(int64_t n) {
    const std::vector<int> v = RandomInts(2 * n, 7);
    std::vector<SYS_Point> pts;
    pts.reserve(static_cast<size_t>(n));
    for (size_t i = 0; i < v.size(); i += 2)
        pts.emplace_back(v[i] % 200000001 - 100000000L, v[i + 1] % 200000001 - 100000000L);
    return pts;
}

// A rotation by 30 degrees about the origin followed by a move.
SYS_Transform RotateAndMove() {
    SYS_Transform t;
    t.SetRotate(SYS_Point(0, 0), 30 * SYS_DEGREE);
    SYS_Transform move;
    move.SetMove(1000L, -2000L);
    t.AddConv(move);
    return t;
}

// The plain side's point: two ints, the layout of SYS_Point.
struct PlainPoint {
    int32_t x, y;
};
static_assert(sizeof(PlainPoint) == sizeof(SYS_Point), "the sides copy the same bytes");

// Every transform benchmark copies the input into a work array and
// transforms that in place, so the inputs stay the same from one iteration
// to the next and both sides pay the same copy.

void KeelTransformEach(benchmark::State& state) {
    const std::vector<SYS_Point> in = RandomPoints(state.range(0));
    std::vector<SYS_Point> work(in.size());
    const SYS_Transform t = RotateAndMove();
    for (auto _ : state) {
        std::memcpy(work.data(), in.data(), in.size() * sizeof(SYS_Point));
        for (SYS_Point& p : work) t.Transform(&p);
        benchmark::DoNotOptimize(work.data());
        benchmark::ClobberMemory();
    }
    PerItem(state, state.range(0));
}

void KeelTransformBatch(benchmark::State& state) {
    const std::vector<SYS_Point> in = RandomPoints(state.range(0));
    std::vector<SYS_Point> work(in.size());
    const SYS_Transform t = RotateAndMove();
    for (auto _ : state) {
        std::memcpy(work.data(), in.data(), in.size() * sizeof(SYS_Point));
        t.Transform(work.data(), static_cast<int>(work.size()));
        benchmark::DoNotOptimize(work.data());
        benchmark::ClobberMemory();
    }
    PerItem(state, state.range(0));
}

// x' = a*x + b*y + c, y' = d*x + e*y + f in doubles, rounded half away from
// zero the way a host writes it without a branch (0.5 with the value's sign
// added, then truncated): keel's arithmetic without its range check.  The
// points' random signs would make a rounding that branches on the sign
// mispredict on every other coordinate.
void PlainTransform(benchmark::State& state) {
    const std::vector<SYS_Point> in = RandomPoints(state.range(0));
    std::vector<PlainPoint> work(in.size());
    const SYS_Transform t = RotateAndMove();
    const double a = t.a, b = t.b, c = t.c, d = t.d, e = t.e, f = t.f;
    for (auto _ : state) {
        std::memcpy(work.data(), in.data(), in.size() * sizeof(PlainPoint));
        for (PlainPoint& p : work) {
            const double x = p.x, y = p.y;
            const double u = a * x + b * y + c;
            const double v = d * x + e * y + f;
            p.x = static_cast<int32_t>(u + std::copysign(0.5, u));
            p.y = static_cast<int32_t>(v + std::copysign(0.5, v));
        }
        benchmark::DoNotOptimize(work.data());
        benchmark::ClobberMemory();
    }
    PerItem(state, state.range(0));
}

// --- bounding box of many boxes ---------------------------------------------

std::vector<SYS_Box> RandomBoxes(int64_t n) {
    std::vector<SYS_Box> boxes;
    for (const SYS_Point& p : RandomPoints(n)) boxes.emplace_back(p, 5000L);
    return boxes;
}

void KeelCombine(benchmark::State& state) {
    const std::vector<SYS_Box> boxes = RandomBoxes(state.range(0));
    for (auto _ : state) {
        SYS_Box acc = SYS_Box::Null();
        for (const SYS_Box& b : boxes) acc.Combine(b);
        // Hand a copy to the optimiser barrier, as the peer hands over its
        // four locals: the accumulator itself never has its address taken.
        SYS_Box result = acc;
        benchmark::DoNotOptimize(result);
    }
    PerItem(state, state.range(0));
}

// The same boxes, the corners read directly and accumulated with min/max.
void PlainCombine(benchmark::State& state) {
    const std::vector<SYS_Box> boxes = RandomBoxes(state.range(0));
    for (auto _ : state) {
        int32_t l = INT32_MAX, lo = INT32_MAX, r = INT32_MIN, up = INT32_MIN;
        for (const SYS_Box& b : boxes) {
            l = std::min(l, b.lowerLeft.x), lo = std::min(lo, b.lowerLeft.y);
            r = std::max(r, b.upperRight.x), up = std::max(up, b.upperRight.y);
        }
        benchmark::DoNotOptimize(l);
        benchmark::DoNotOptimize(lo);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(up);
    }
    PerItem(state, state.range(0));
}

void Microseconds(benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMicrosecond); }

[[maybe_unused]] const bool registered = [] {
    Pair("geom", "transform-point")
        .Keel(KeelTransformEach, "SYS_Transform::Transform(SYS_Point*), rotate + move, per point")
        .Peer("plain", PlainTransform, "plain loop, same double arithmetic, branch-free rounding",
              1.5)
        .With(Microseconds)
        .Register({100000});
    Pair("geom", "transform-batch")
        .Keel(KeelTransformBatch,
              "SYS_Transform::Transform(SYS_Point*, int), rotate + move, per point")
        .Peer("plain", PlainTransform, "plain loop, same double arithmetic, branch-free rounding",
              1.5)
        .With(Microseconds)
        .Register({100000});
    Pair("geom", "combine-box")
        .Keel(KeelCombine, "SYS_Box::Combine, per box")
        .Peer("plain", PlainCombine, "plain min/max loop", 1.5)
        .With(Microseconds)
        .Register({100000});
    return true;
}();

} // namespace
