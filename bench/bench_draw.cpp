// Drawing benchmarks: CDynamic recording rubber-band operations and
// replaying them into a draw area, against appending the same 32-bit values
// to a std::vector<int> and walking it operation by operation.  Times are
// per operation; the operations cycle through PenColor, DrawXorBox,
// DrawLine and FastLineTo (17 values per cycle of 4).
#include "keel_bench.h"

#include <keel/UI_DrawArea.h>
#include <keel/UI_Dynamic.h>

#include <vector>

namespace {

using namespace keel_bench;

// The operands that follow each code of the cycle.
const int kOperands[CDynamic::OP_COUNT] = {1, 0, 4, 0, 0, 0, 6, 0, 0, 0, 0, 0, 2};

// Coordinates for the operations, the same on both sides.
std::vector<int> Inputs(int64_t n) { return RandomInts(4 * n, 7); }

void Record(CDynamic& d, const std::vector<int>& in, int64_t n) {
    d.Reset();
    for (int64_t i = 0; i < n; ++i) {
        const int* v = &in[static_cast<size_t>(4 * i)];
        switch (i % 4) {
        case 0:
            d.PenColor(v[0] & 15);
            break;
        case 1:
            d.DrawXorBox(SYS_Point(v[0], v[1]), SYS_Point(v[2], v[3]));
            break;
        case 2:
            d.DrawLine(SYS_Point(v[0], v[1]), SYS_Point(v[2], v[3]), 10, 3);
            break;
        default:
            d.FastLineTo(SYS_Point(v[0], v[1]));
            break;
        }
    }
}

void Append(std::vector<int>& out, const std::vector<int>& in, int64_t n) {
    out.clear();
    for (int64_t i = 0; i < n; ++i) {
        const int* v = &in[static_cast<size_t>(4 * i)];
        switch (i % 4) {
        case 0:
            out.push_back(CDynamic::OP_PEN_COLOR);
            out.push_back(v[0] & 15);
            break;
        case 1:
            out.push_back(CDynamic::OP_XOR_BOX);
            for (int k = 0; k < 4; ++k) out.push_back(v[k]);
            break;
        case 2:
            out.push_back(CDynamic::OP_DRAW_LINE);
            for (int k = 0; k < 4; ++k) out.push_back(v[k]);
            out.push_back(10);
            out.push_back(3);
            break;
        default:
            out.push_back(CDynamic::OP_LINE_TO);
            out.push_back(v[0]);
            out.push_back(v[1]);
            break;
        }
    }
}

void KeelRecord(benchmark::State& state) {
    const int64_t n = state.range(0);
    const std::vector<int> in = Inputs(n);
    CDynamic d;
    for (auto _ : state) {
        Record(d, in, n);
        benchmark::DoNotOptimize(d.GetRecords());
    }
    PerItem(state, n);
}

void VectorAppend(benchmark::State& state) {
    const int64_t n = state.range(0);
    const std::vector<int> in = Inputs(n);
    std::vector<int> out;
    for (auto _ : state) {
        Append(out, in, n);
        benchmark::DoNotOptimize(out.data());
    }
    PerItem(state, n);
}

void KeelReplay(benchmark::State& state) {
    const int64_t n = state.range(0);
    UI_DrawArea area; // the base operations: one virtual call each, no drawing
    CDynamic d;
    Record(d, Inputs(n), n);
    d.SetDrawArea(&area);
    for (auto _ : state) d.OnNotification(UI_DrawArea::REDRAW_SHOW, nullptr);
    PerItem(state, n);
}

void VectorWalk(benchmark::State& state) {
    const int64_t n = state.range(0);
    std::vector<int> values;
    Append(values, Inputs(n), n);
    for (auto _ : state) {
        long sum = 0;
        for (size_t i = 0; i < values.size();) {
            const int code = values[i++];
            for (int k = 0; k < kOperands[code]; ++k) sum += values[i++];
        }
        benchmark::DoNotOptimize(sum);
    }
    PerItem(state, n);
}

[[maybe_unused]] const bool registered = [] {
    Pair("drawing", "record")
        .Keel(KeelRecord, "CDynamic recording, per operation")
        .Peer("std-vector", VectorAppend, "the same values appended to std::vector<int>", 4)
        .Register({10000});
    Pair("drawing", "replay")
        .Keel(KeelReplay, "CDynamic replay into a draw area, per operation")
        .Peer("std-vector", VectorWalk, "walking the std::vector<int> operation by operation", 2.5)
        .Register({10000});
    return true;
}();

} // namespace
