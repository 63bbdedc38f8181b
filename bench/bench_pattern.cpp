// Pattern benchmarks: every match of a search in 2 MB of netlist-like text,
// with SYS_StrPattern beside std::regex and PCRE2 (when it was found).  Each
// search is written in each language so that all three find the same
// matches; a count that differs stops the benchmark with an error.
#include "keel_bench.h"

#include <keel/SYS_CodePage.h>
#include <keel/SYS_StrPattern.h>

#include <cstdio>
#include <regex>
#include <string>

#if KEEL_BENCH_PCRE2
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>
#endif

namespace {

using namespace keel_bench;

struct Search {
    const char* operation;
    const char* keel; // the same search in keel's language...
    const char* ecma; // ...and in the ECMAScript syntax of std::regex and PCRE2
    const char* what;
};

const Search kSearches[] = {
    {"literal", "GND", "GND", "a literal net name"},
    {"class-run", "U:d+", "U[0-9]+", "a reference and its digits"},
    {"set-run", "N[0-9]+_[A-Z]+", "N[0-9]+_[A-Z]+", "net names built of sets"},
    {"alternation", "VCC|GND|AGND", "VCC|GND|AGND", "three alternatives"},
    {"lazy-field", "PAD :d+ [^\\n]@;", "PAD [0-9]+ [^\\n]+?;", "a record up to its ';'"},
};

// Lines of a netlist: nets with their pins, pads and components.
const std::string& Netlist() {
    static const std::string text = [] {
        std::string s;
        uint32_t seed = 12345;
        auto next = [&](uint32_t n) {
            seed = seed * 1103515245u + 12345u;
            return (seed >> 8) % n;
        };
        static const char* const special[] = {"GND", "VCC", "AGND", "CLK", "RST"};
        char line[160];
        while (s.size() < (2u << 20)) {
            const uint32_t kind = next(4);
            if (kind == 0)
                std::snprintf(line, sizeof line, "NET %s U%u-%u R%u-%u C%u-%u;\n", special[next(5)],
                              next(500), next(16), next(900), next(2), next(400), next(2));
            else if (kind == 1)
                std::snprintf(line, sizeof line, "NET N%u_%s U%u-%u R%u-%u;\n", next(9000),
                              next(2) ? "DATA" : "ADDR", next(500), next(16), next(900), next(2));
            else if (kind == 2)
                std::snprintf(line, sizeof line, "PAD %u TOP_COPPER %u.%02u %u.%02u;\n", next(200),
                              next(3), next(100), next(3), next(100));
            else
                std::snprintf(line, sizeof line, "COMP U%u SOIC%u X%u Y-%u;\n", next(500),
                              8 + 2 * next(6), next(90000), next(90000));
            s += line;
        }
        return s;
    }();
    return text;
}

long KeelCount(const SYS_StrPattern& pattern, const std::string& text) {
    long count = 0;
    const char* p = text.c_str();
    int length = 0;
    for (int at; (at = pattern.Match(p, &length)) >= 0;) {
        ++count;
        p += at + (length ? length : 1);
    }
    return count;
}

long RegexCount(const std::regex& re, const std::string& text) {
    return static_cast<long>(
        std::distance(std::sregex_iterator(text.begin(), text.end(), re), std::sregex_iterator()));
}

#if KEEL_BENCH_PCRE2
struct Pcre2 {
    explicit Pcre2(const char* pattern) {
        int error;
        PCRE2_SIZE offset;
        code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern), PCRE2_ZERO_TERMINATED, 0,
                             &error, &offset, nullptr);
        if (code) pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
        data = pcre2_match_data_create_from_pattern(code, nullptr);
    }
    ~Pcre2() {
        pcre2_match_data_free(data);
        pcre2_code_free(code);
    }
    long Count(const std::string& text) const {
        long count = 0;
        PCRE2_SIZE at = 0;
        const auto subject = reinterpret_cast<PCRE2_SPTR>(text.data());
        while (pcre2_match(code, subject, text.size(), at, 0, data, nullptr) >= 0) {
            const PCRE2_SIZE* v = pcre2_get_ovector_pointer(data);
            ++count;
            at = v[1] > v[0] ? v[1] : v[0] + 1;
        }
        return count;
    }
    pcre2_code* code;
    pcre2_match_data* data;
};
#endif

// The number of matches every engine must find, counted by std::regex.
long Expected(int i) {
    static long counts[sizeof kSearches / sizeof kSearches[0]] = {};
    if (!counts[i]) counts[i] = RegexCount(std::regex(kSearches[i].ecma), Netlist());
    return counts[i];
}

void Finish(benchmark::State& state, int i, long count) {
    if (count != Expected(i)) state.SkipWithError("the engines disagree on the matches");
    state.counters["matches"] = static_cast<double>(count);
}

template <int I> void KeelSearch(benchmark::State& state) {
    SYS_SetCodePage(0);
    const SYS_StrPattern pattern(kSearches[I].keel);
    long count = 0;
    for (auto _ : state) benchmark::DoNotOptimize(count = KeelCount(pattern, Netlist()));
    Finish(state, I, count);
}

template <int I> void RegexSearch(benchmark::State& state) {
    const std::regex re(kSearches[I].ecma);
    long count = 0;
    for (auto _ : state) benchmark::DoNotOptimize(count = RegexCount(re, Netlist()));
    Finish(state, I, count);
}

#if KEEL_BENCH_PCRE2
template <int I> void PcreSearch(benchmark::State& state) {
    const Pcre2 re(kSearches[I].ecma);
    long count = 0;
    for (auto _ : state) benchmark::DoNotOptimize(count = re.Count(Netlist()));
    Finish(state, I, count);
}
#endif

template <int I> bool RegisterSearch() {
    Pair pair("pattern", kSearches[I].operation);
    pair.Keel(KeelSearch<I>, kSearches[I].what)
        .Peer("std-regex", RegexSearch<I>, "std::regex, sregex_iterator", 1.0);
#if KEEL_BENCH_PCRE2
    pair.Peer("pcre2", PcreSearch<I>, "PCRE2 with JIT, pcre2_match loop");
#endif
    pair.With([](benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMillisecond); })
        .Register();
    return true;
}

const bool registered = RegisterSearch<0>() && RegisterSearch<1>() && RegisterSearch<2>() &&
                        RegisterSearch<3>() && RegisterSearch<4>();

} // namespace
