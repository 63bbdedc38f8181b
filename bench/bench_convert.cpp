// Unit conversion benchmarks: database units to text in mils and back with
// SYS_Convert against snprintf and strtod doing the same arithmetic on the
// same values.  Times are per value.
#include "keel_bench.h"

#include <keel/SYS_Convert.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace keel_bench;

const double kDbuPerMil = 19050.0;
const int kPrecision = 2; // the default precision of mils

// Coordinates spread over the whole range Str2Base accepts.
std::vector<long> RandomCoordinates(int64_t n) {
    std::vector<long> v;
    for (int x : RandomInts(n, 11))
        v.push_back(x % (2 * SYS_CONVERT_LIMIT + 1) - SYS_CONVERT_LIMIT);
    return v;
}

// The same coordinates as a user types them: mils with two decimals.
std::vector<std::string> RandomTexts(int64_t n) {
    std::vector<std::string> texts;
    char buf[64];
    for (long b : RandomCoordinates(n)) {
        std::snprintf(buf, sizeof buf, "%.*f", kPrecision, b / kDbuPerMil);
        texts.push_back(buf);
    }
    return texts;
}

SYS_Convert Mils(int zeroTrim) {
    SYS_Convert c(SYS_UnitMils);
    c.SetZeroTrimMode(zeroTrim);
    return c;
}

// --- database units to text ---------------------------------------------------

void KeelFormat(benchmark::State& state, int zeroTrim) {
    const std::vector<long> values = RandomCoordinates(state.range(0));
    const SYS_Convert c = Mils(zeroTrim);
    char buf[64];
    for (auto _ : state)
        for (long b : values) {
            c.Base2Str(buf, sizeof buf, b);
            benchmark::DoNotOptimize(buf);
            benchmark::ClobberMemory();
        }
    PerItem(state, state.range(0));
}

// TrimStrNumber's work written out: trailing zeros, then a bare point.
void Trim(char* s) {
    if (!std::strchr(s, '.')) return;
    char* p = s + std::strlen(s) - 1;
    while (p > s && *p == '0') --p;
    p[*p == '.' ? 0 : 1] = '\0';
}

void PlainFormat(benchmark::State& state, bool trim) {
    const std::vector<long> values = RandomCoordinates(state.range(0));
    char buf[64];
    for (auto _ : state)
        for (long b : values) {
            std::snprintf(buf, sizeof buf, "%.*f", kPrecision, b / kDbuPerMil);
            if (trim) Trim(buf);
            benchmark::DoNotOptimize(buf);
            benchmark::ClobberMemory();
        }
    PerItem(state, state.range(0));
}

void KeelBase2Str(benchmark::State& state) { KeelFormat(state, 0); }
void KeelBase2StrTrim(benchmark::State& state) { KeelFormat(state, 1); }
void PlainSnprintf(benchmark::State& state) { PlainFormat(state, false); }
void PlainSnprintfTrim(benchmark::State& state) { PlainFormat(state, true); }

// --- text to database units ---------------------------------------------------

void KeelStr2Base(benchmark::State& state) {
    const std::vector<std::string> texts = RandomTexts(state.range(0));
    const SYS_Convert c = Mils(1);
    for (auto _ : state)
        for (const std::string& s : texts) {
            long b = 0;
            benchmark::DoNotOptimize(c.Str2Base(s.c_str(), &b));
            benchmark::DoNotOptimize(b);
        }
    PerItem(state, state.range(0));
}

// strtod, the whole-text test, the multiply and the rounding half away from
// zero: keel's work without the errno and range tests.
void PlainStrtod(benchmark::State& state) {
    const std::vector<std::string> texts = RandomTexts(state.range(0));
    for (auto _ : state)
        for (const std::string& s : texts) {
            char* end = nullptr;
            const double p = std::strtod(s.c_str(), &end) * kDbuPerMil;
            long b = static_cast<long>(p > 0 ? p + 0.5 : p - 0.5);
            benchmark::DoNotOptimize(*end == '\0');
            benchmark::DoNotOptimize(b);
        }
    PerItem(state, state.range(0));
}

[[maybe_unused]] const bool registered = [] {
    Pair("units", "base2str")
        .Keel(KeelBase2Str, "SYS_Convert::Base2Str into a buffer, mils, 2 decimals, per value")
        .Peer("snprintf", PlainSnprintf, "snprintf(\"%.*f\") of value / 19050")
        .Register({1000});
    Pair("units", "base2str-trim")
        .Keel(KeelBase2StrTrim, "Base2Str with zero-trim on, per value")
        .Peer("snprintf", PlainSnprintfTrim, "snprintf(\"%.*f\") and the same trimming loop")
        .Register({1000});
    Pair("units", "str2base")
        .Keel(KeelStr2Base, "SYS_Convert::Str2Base of mils with 2 decimals, per value")
        .Peer("strtod", PlainStrtod, "strtod, whole-text test, * 19050, rounded")
        .Register({1000});
    return true;
}();

} // namespace
