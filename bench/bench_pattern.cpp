// Pattern benchmarks: every match of a search in 2 MB of netlist-like text,
// with SYS_StrPattern beside std::regex and PCRE2 (when it was found; both
// its interpreter and its JIT).  Each search is written in each language so
// that all the engines find the same matches; a count that differs stops the
// benchmark with an error.
//
// Then adversarial searches: patterns that make a backtracking matcher
// explode, against texts of the letter a that cannot match them, at 256 KB,
// 1 MB and 4 MB.  keel's time must grow linearly with the text.
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
// A compiled PCRE2 pattern, run by its JIT or by its interpreter.
struct Pcre2 {
    Pcre2(const char* pattern, bool jit, uint32_t options = 0) {
        int error;
        PCRE2_SIZE offset;
        code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern), PCRE2_ZERO_TERMINATED, options,
                             &error, &offset, nullptr);
        if (code && jit) pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
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
template <int I, bool Jit> void PcreSearch(benchmark::State& state) {
    const Pcre2 re(kSearches[I].ecma, Jit);
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
    pair.Peer("pcre2-interp", PcreSearch<I, false>, "PCRE2 interpreter, pcre2_match loop", 1.0)
        .Peer("pcre2", PcreSearch<I, true>, "PCRE2 with JIT, pcre2_match loop");
#endif
    pair.With([](benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMillisecond); })
        .Register();
    return true;
}

const bool registered = RegisterSearch<0>() && RegisterSearch<1>() && RegisterSearch<2>() &&
                        RegisterSearch<3>() && RegisterSearch<4>();

// Searches that a backtracking matcher without memory of what failed takes
// exponential or polynomial time over, run once over a text of n letters a
// that none of them matches.
const Search kAdversarial[] = {
    {"overlap", "(a|aa)+b", "(a|aa)+b", "alternatives that overlap, repeated; no match"},
    {"wildcards", ".*.*.*b", ".*.*.*b", "three repeated wildcards; no match"},
    {"nested", "(a+)+b", "(a+)+b", "a repetition inside a repetition; no match"},
    {"lazy", ".@.@.@b", ".*?.*?.*?b", "three lazy wildcards; no match"},
};

const std::string& Letters(int64_t n) {
    static std::string text;
    if (text.size() != static_cast<size_t>(n)) text.assign(static_cast<size_t>(n), 'a');
    return text;
}

template <int I> void KeelAdversarial(benchmark::State& state) {
    SYS_SetCodePage(0);
    const SYS_StrPattern pattern(kAdversarial[I].keel);
    const std::string& text = Letters(state.range(0));
    int at = 0, length = 0;
    for (auto _ : state) benchmark::DoNotOptimize(at = pattern.Match(text.c_str(), &length));
    if (at != -1) state.SkipWithError("keel found a match");
}

#if KEEL_BENCH_PCRE2
// PCRE2's interpreter as it comes looks for the b that the pattern needs
// before it tries anything, finds none and answers at once.  Without that
// look-ahead (PCRE2_NO_START_OPTIMIZE) it backtracks, and gives up once it
// has taken its match limit of steps (ten million by default); a row where
// it gave up has no time.
template <int I, uint32_t Options> void PcreAdversarial(benchmark::State& state) {
    const Pcre2 re(kAdversarial[I].ecma, false, Options);
    const std::string& text = Letters(state.range(0));
    const auto subject = reinterpret_cast<PCRE2_SPTR>(text.data());
    int rc = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            rc = pcre2_match(re.code, subject, text.size(), 0, 0, re.data, nullptr));
    if (rc != PCRE2_ERROR_NOMATCH) state.SkipWithError("PCRE2 gave up (match limit)");
}
#endif

// std::regex is not run here: its matcher recurses once per character and
// backtracks without limit, so on these texts it overflows the stack or runs
// for hours.
template <int I> bool RegisterAdversarial() {
    Pair pair("pattern", kAdversarial[I].operation);
    pair.Keel(KeelAdversarial<I>, kAdversarial[I].what);
#if KEEL_BENCH_PCRE2
    pair.Peer("pcre2-interp", PcreAdversarial<I, 0>,
              "PCRE2 interpreter, one pcre2_match (looks for the b first)")
        .Peer("pcre2-backtrack", PcreAdversarial<I, PCRE2_NO_START_OPTIMIZE>,
              "PCRE2 interpreter without start-of-match optimisations");
#endif
    pair.With([](benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMillisecond); })
        .Register({256 << 10, 1 << 20, 4 << 20});
    return true;
}

const bool adversarial = RegisterAdversarial<0>() && RegisterAdversarial<1>() &&
                         RegisterAdversarial<2>() && RegisterAdversarial<3>();

} // namespace
