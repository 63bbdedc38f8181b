// String benchmarks: SYS_StringBase against std::string and the C library for
// the operations a host runs in loops (comparing, formatting, appending,
// searching, natural comparison).
#include "keel_bench.h"

#include <keel/SYS_CodePage.h>
#include <keel/SYS_Scan.h>
#include <keel/SYS_String.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

using namespace keel_bench;

// Puts a code page in force for the life of a benchmark and restores the
// previous one, so that the order of the benchmarks does not matter.
class CodePage {
public:
    explicit CodePage(int cp) : m_Previous(SYS_SetCodePage(cp)) {}
    ~CodePage() { SYS_SetCodePage(m_Previous); }

private:
    int m_Previous;
};

// Two texts of `n` bytes that differ only in the last one, so that a
// comparison reads them whole.
std::string Text(int64_t n, char last) {
    std::string s;
    for (int64_t i = 0; i + 1 < n; ++i) s += static_cast<char>('a' + i % 26);
    return s + last;
}

// --- Compare ----------------------------------------------------------------

// `last` is the second text's last byte: 'y' makes the texts differ there,
// 'x' makes them equal.
template <char last> void KeelCompare(benchmark::State& state) {
    CodePage cp(0);
    const SYS_StringBase a(Text(state.range(0), 'x').c_str());
    const SYS_StringBase b(Text(state.range(0), last).c_str());
    for (auto _ : state) {
        int r = a.Compare(b);
        benchmark::DoNotOptimize(r);
    }
}

template <char last> void StdCompare(benchmark::State& state) {
    const std::string a = Text(state.range(0), 'x');
    const std::string b = Text(state.range(0), last);
    for (auto _ : state) {
        int r = a.compare(b);
        benchmark::DoNotOptimize(r);
    }
}

// --- Format -----------------------------------------------------------------

const char* const kFormat = "%s %d %f";

void KeelFormat(benchmark::State& state) {
    SYS_StringBase s;
    int i = 0;
    for (auto _ : state) {
        s.Format(kFormat, "TOP_COPPER", ++i, 3.14159);
        benchmark::DoNotOptimize(s.GetString());
    }
}

// What a careful caller writes: format into a stack buffer and copy, and
// format again into the string only when the buffer was too small.
void SnprintfFormat(benchmark::State& state) {
    std::string s;
    int i = 0;
    for (auto _ : state) {
        ++i;
        char buffer[256];
        const int n = std::snprintf(buffer, sizeof buffer, kFormat, "TOP_COPPER", i, 3.14159);
        if (n < 0) {
            s.clear();
        } else if (static_cast<size_t>(n) < sizeof buffer) {
            s.assign(buffer, static_cast<size_t>(n));
        } else {
            s.resize(static_cast<size_t>(n));
            std::snprintf(&s[0], static_cast<size_t>(n) + 1, kFormat, "TOP_COPPER", i, 3.14159);
        }
        benchmark::DoNotOptimize(s.data());
    }
}

// --- appending single characters --------------------------------------------

void KeelAppendChar(benchmark::State& state) {
    for (auto _ : state) {
        SYS_StringBase s;
        for (int64_t i = 0; i < state.range(0); ++i) s += 'x';
        benchmark::DoNotOptimize(s.GetString());
    }
}

void StdPushBack(benchmark::State& state) {
    for (auto _ : state) {
        std::string s;
        for (int64_t i = 0; i < state.range(0); ++i) s.push_back('x');
        benchmark::DoNotOptimize(s.data());
    }
}

// --- searching for one of a set of characters --------------------------------

void KeelFindOneOf(benchmark::State& state) {
    const SYS_StringBase s(Text(state.range(0), '/').c_str());
    for (auto _ : state) {
        int at = s.FindOneOf("/\\");
        benchmark::DoNotOptimize(at);
    }
}

void StdFindFirstOf(benchmark::State& state) {
    const std::string s = Text(state.range(0), '/');
    for (auto _ : state) {
        size_t at = s.find_first_of("/\\");
        benchmark::DoNotOptimize(at);
    }
}

// --- natural comparison (digit runs by value) against a plain strcmp ----------

const char* const kLayerA = "layer_top_0012_copper";
const char* const kLayerB = "layer_top_12_copper";

// Compares the two layer names with `compare` in every iteration.
template <int (*compare)(const char*, const char*)> void CompareLayers(benchmark::State& state) {
    const char* a = kLayerA;
    const char* b = kLayerB;
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        int r = compare(a, b);
        benchmark::DoNotOptimize(r);
    }
}

int PlainStrcmp(const char* a, const char* b) { return std::strcmp(a, b); }

[[maybe_unused]] const bool registered = [] {
    Pair("string", "compare")
        .Keel(KeelCompare<'y'>,
              "SYS_StringBase::Compare, code page 0, texts differing at the last byte")
        .Peer("std", StdCompare<'y'>, "std::string::compare", 1.2)
        .Register({32});
    Pair("string", "compare-equal")
        .Keel(KeelCompare<'x'>, "SYS_StringBase::Compare, code page 0, equal texts")
        .Peer("std", StdCompare<'x'>, "std::string::compare", 1.2)
        .Register({32});
    Pair("string", "format")
        .Keel(KeelFormat, "SYS_StringBase::Format(\"%s %d %f\")")
        .Peer("snprintf", SnprintfFormat, "snprintf into a buffer, then std::string::assign", 1.3)
        .Register();
    Pair("string", "append-char")
        .Keel(KeelAppendChar, "SYS_StringBase += 'x', fresh string")
        .Peer("std", StdPushBack, "std::string::push_back", 1.2)
        .Register({4096});
    Pair("string", "find-one-of")
        .Keel(KeelFindOneOf, "SYS_StringBase::FindOneOf(\"/\\\\\"), match at the end")
        .Peer("std", StdFindFirstOf, "std::string::find_first_of")
        .Register({1000});
    Pair("string", "natural-compare")
        .Keel(CompareLayers<_tcsnumcmp>, "_tcsnumcmp, 21-byte layer names (digit runs by value)")
        .Peer("strcmp", CompareLayers<PlainStrcmp>, "strcmp (plain byte order)")
        .Register();
    return true;
}();

} // namespace
