// Tests of SYS_StrPattern: compiled programs, matching rules, substitution,
// double-byte text, and the bounds on work and stack for any input.
#include <keel/SYS_CodePage.h>
#include <keel/SYS_StrPattern.h>
#include "sys/internal/SYS_PatternMachine.h"

// The fuzz target's independent matcher (class Reference), a plain recursive
// reading of the language, judges the generated cases below.
#include "fuzz/fuzz_pattern.cpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>

#include <pthread.h>

namespace {

// Every test starts under the single-byte code page.
class Pattern : public ::testing::Test {
protected:
    void SetUp() override { SYS_SetCodePage(0); }
};

std::string Program(const SYS_StrPattern& p) {
    return std::string(p.program.GetString(), static_cast<size_t>(p.program.GetLength()));
}

struct Found {
    int at, length;
};
Found Find(const char* pattern, const char* text) {
    Found f{0, -1};
    f.at = SYS_StrPattern(pattern).Match(text, &f.length);
    return f;
}

struct FindCase {
    const char* pattern;
    const char* text;
    int at, length;
};
void ExpectFinds(std::initializer_list<FindCase> cases) {
    for (const FindCase& c : cases) {
        const Found f = Find(c.pattern, c.text);
        EXPECT_EQ(f.at, c.at) << c.pattern << " in " << c.text;
        EXPECT_EQ(f.length, c.length) << c.pattern << " in " << c.text;
    }
}

TEST_F(Pattern, CompilesToByteProgram) {
    const struct {
        const char* pattern;
        std::string program;
    } cases[] = {
        {"a|b", "|caecbe"},
        {"(ab)*", std::string("*\x06)cacbee")},
        {"a|", "|caee"},
        {"^a?", std::string("^?\002cae")},
        {":d+:q", std::string("+\x02:dc:cqe")},             // :q names no class
        {"$.\\t\\x41\\xa\\x4a", "$.c\tcAc1cqe"},            // the exact hexadecimal arithmetic
        {"\\b\\f\\n\\r\\*\\]\\\\", "c\bc\fc\nc\rc*c]c\\e"}, // escapes; metacharacters
        {"[\\b\\f\\n\\r\\]\\-]", "[\006\b\f\n\r]-e"},       // ... also in sets
        {"[a-c][^-a][a-][c-a]", std::string("[\003abc]\002-a[\002a-[\001ce")},
        {"[a-cx-z]", std::string("[\006abcxyze")},
        {"[\xfd-\xff]", std::string("[\003\375\376\377e")},    // stops at 255
        {"[\xff-\x01]", std::string("[\003\377\000\001e", 6)}, // wraps to 0
        {"[]", std::string("[\000e", 3)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Program(SYS_StrPattern(c.pattern)), c.program) << c.pattern;

    // Copies cut at the zero byte; the cut program never matches.
    SYS_StrPattern empty("[]|a"), copy(empty);
    EXPECT_EQ(Program(copy), "|[");
    SYS_StrPattern assigned;
    assigned = SYS_StrPattern("[\xff-\x01]");
    EXPECT_EQ(Program(assigned), "[\x03\xff");
    int n;
    EXPECT_EQ(empty.Match("xa", &n), 1);
    EXPECT_EQ(copy.Match("xa", &n), -1);
    EXPECT_STREQ(static_cast<const char*>(SYS_StrPattern("ab")), "cacbe");
}

TEST_F(Pattern, InvalidPatternsCompileToNothing) {
    for (const std::string& bad :
         {std::string("a**"), std::string("ab)"), std::string("[abc"), std::string("^^a"),
          std::string("a^"), std::string("\\x0"), std::string("\\x00"), std::string("\\xg"),
          std::string("a\\"), std::string("(a|*)"), std::string("*a"), std::string("[a-"),
          std::string("a]"), std::string("]"), std::string(1 << 20, '('),
          std::string(200, '(') + "a" + std::string(200, ')') + "*"}) {
        SYS_StrPattern p(bad.c_str());
        EXPECT_TRUE(p.program.IsEmpty()) << bad.substr(0, 20);
        SYS_StringBase target("aaa");
        EXPECT_EQ(p.Substitute(target, "b", 0), 0);
    }
    SYS_StrPattern p(nullptr);
    EXPECT_TRUE(p.program.IsEmpty());
    // A program a host wrote itself is decoded with bounds checks.
    p.program = "*\011ca";
    int n;
    EXPECT_EQ(p.Match("aaa", &n), -1);
}

TEST_F(Pattern, MatchingRules) {
    ExpectFinds({
        {"b+", "aabbbc", 2, 3},
        {"b*", "bbb", 0, 3},
        {"b*", "abbb", 0, 0},
        {"b@", "bbb", 0, 1},
        {"b@", "abbb", 0, 0},
        {"b#", "abbb", 1, 1},
        {"a@b", "aaab", 0, 4},
        {"a@a", "a", -1, 0}, // '@' tries zero repetitions only when the operand fails
        {"a*a", "a", -1, 0}, // the greedy repetition never gives back its first
        {"a*a", "aa", 0, 2},
        {"a?ab", "ab", 0, 2},
        {"(ab)?ab", "abab", 0, 4},
        {"^b", "ab", -1, 0},
        {"a(^b)", "ab", 0, 2}, // '^' asks where the attempt began
        {"x|^b", "ab", -1, 0},
        {"b$", "abb", 2, 1},
        {"$", "abc", -1, 0}, // never at the terminating zero
        {"x*", "", -1, 0},
        {".", "", -1, 0},
        {":z", "ab123cd", 2, 3},
        {":n", "x-1.5y", 1, 4},
        {":h", "zz1Fg", 2, 2},
        {":q", "a:q", 1, 2},
        {":a+:b:u:l:x", "-Ab9 Qqf", 1, 7},
        {"[a-c]+", "xxbcay", 2, 3},
        {"[^a-c]", "abcd", 3, 1},
        {"[]", "abc", -1, 0},
        {"[^]", "abc", 0, 1},
        {"a|ab", "ab", 0, 2}, // the furthest end wins
        {"ab|abcd|abc", "abcdx", 0, 4},
        {"(a|ab)c", "abc", 0, 3},
        {"(x*)*y", "aay", 2, 1}, // an operand that matched nothing is not repeated
    });
}

TEST_F(Pattern, Substitute) {
    const struct {
        const char* pattern;
        const char* target;
        const char* with;
        int max;
        const char* result;
        int count;
    } cases[] = {
        {"a", "banana", "o", 0, "bonono", 3},
        {"a", "banana", "o", 1, "bonana", 1},
        {"a", "banana", "", 0, "bnn", 3},
        {"^a", "aaab", "x", 0, "xxxb", 3}, // '^' holds at every continuation
        {"x*", "abc", "", 0, "abc", 3},    // empty matches move on by a character
        {"x*", "abc", "-", 0, "-a-b-c", 3},
        {"b*", "abbc", "-", 0, "-a--c", 3},
        {"x*", "abc", "-", 4, "----abc", 4}, // with a limit they repeat in place
        {"x*", "abc", "", 2000000000, "abc", 2000000000},
        {"a", "banana", "o", -1, "banana", 0},
        {"(", "banana", "o", 0, "banana", 0},
    };
    for (const auto& c : cases) {
        SYS_StringBase target(c.target);
        EXPECT_EQ(SYS_StrPattern(c.pattern).Substitute(target, c.with, c.max), c.count)
            << c.pattern << " in " << c.target;
        EXPECT_STREQ(target.GetString(), c.result) << c.pattern << " in " << c.target;
    }
    // Every search reads the target through GetBuffer(0), which leaves an
    // empty target with a length of 1.
    SYS_StringBase empty;
    EXPECT_EQ(SYS_StrPattern("a").Substitute(empty, "b", 0), 0);
    EXPECT_EQ(empty.GetLength(), 1);
    for (int limit : {0, 1, 2}) {
        SYS_StringBase all("ab");
        EXPECT_EQ(SYS_StrPattern("ab").Substitute(all, "", limit), 1);
        EXPECT_EQ(all.GetLength(), limit == 1 ? 0 : 1) << limit;
    }
}

TEST_F(Pattern, DoubleByteText) {
    SYS_SetCodePage(932);
    EXPECT_EQ(Program(SYS_StrPattern("\x82\xa0")), "c\202\240e");
    EXPECT_EQ(Program(SYS_StrPattern("[\x82\xa0-\x82\xa2]")), "[\006\202\240\202\241\202\242e");
    EXPECT_EQ(Program(SYS_StrPattern("[\x82\xa0-\x83\x40]")), "[\002\202\240e"); // leads differ
    EXPECT_EQ(Program(SYS_StrPattern("\\\x82|")), "c\x82|e"); // the trail byte goes with its lead
    EXPECT_EQ(Program(SYS_StrPattern("\\x82|a\x82")), "|c\202\100ecac\202\100e"); // lone leads
    ExpectFinds({
        {"\x82\xa0", "a\x82\xa1", 1, 2},   // lead bytes compared only
        {"[\x82\xa0]", "a\x82\x41", 1, 2}, // and in sets
        {"[^\x82\xa0]", "\x82\x41z", 2, 1},
        {"..", "\202\240ab", 0, 3},
        {"\xa0", "\x82\xa0", -1, 0}, // no match starts on a trail byte
        {":c", "\202\141a", 2, 1},
        {"\x82\xa0+", "\x82\xa0\x82\xa1x", 0, 4},
        {"\\x82|a", "\x82\x99", 0, 2},
    });
    SYS_StringBase target("\x82\xa0");
    EXPECT_EQ(SYS_StrPattern("x*").Substitute(target, "-", 0), 1);
    EXPECT_STREQ(target.GetString(), "-\x82\xa0");
}

// Patterns whose backtracking explodes, or that try a repetition again
// from every start position, on a text of 1000 characters: the steps stay
// within a few hundred per character.
TEST_F(Pattern, HeavyBacktrackingIsBounded) {
    const std::string as(1000, 'a');
    std::string optional, alternatives, joined;
    for (int i = 0; i < 30; ++i) optional += "a?", alternatives += "(a|a)";
    for (int i = 0; i < 12; ++i) joined += "(a|a)a";
    const struct {
        std::string pattern;
        int at;
    } cases[] = {
        {optional + std::string(30, 'a') + "b", -1},
        {alternatives + "b", -1},
        {joined + "b", -1}, // each alternation is met twice, through the 'a' after a join
        {".*.*.*.*.*b", -1},
        {"(a*)*(a+)+(a@)@b", -1},
        {"(.|a)*(a|.)*$", 0},
        {".*x", -1},
        {"(a*)*x", -1},
        {".@b#x", -1},
    };
    for (const auto& c : cases) {
        int n;
        EXPECT_EQ(SYS_StrPattern(c.pattern.c_str()).Match(as.c_str(), &n), c.at) << c.pattern;
        EXPECT_LT(SYS_PatternLastStats().steps, 400000) << c.pattern;
    }
    // An empty match at each of the 1000 positions: Substitute's searches
    // share what they learnt about the text.
    SYS_StringBase target(as.c_str());
    EXPECT_EQ(SYS_StrPattern((alternatives + "b|").c_str()).Substitute(target, "", 0), 1000);
    EXPECT_LT(SYS_PatternLastStats().steps, 400000);
}

// Random patterns built of the constructs that make backtracking blow up
// (nested and lazy repetitions, overlapping alternatives, wildcards, whole
// numbers, '^' and '$') on random texts.  Half of them must end with a 'c'
// that the text holds once, late: those searches fail at many start
// positions first, and many of them start remembering outcomes half way.
// Every Match agrees with the independent matcher, and every limited
// Substitute with Match applied step by step.
struct Random {
    uint32_t seed;
    uint32_t Next(uint32_t n) {
        seed = seed * 1103515245u + 12345u;
        return (seed >> 8) % n;
    }
};

std::string RandomList(Random& r, int depth);

std::string RandomAtom(Random& r, int depth) {
    static const char* const atoms[] = {"a",  "a",  "a",  "b", ".", "[ab]", "[^b]",
                                        ":d", ":z", ":n", "$", "1", "\\.",  "\x82"};
    static const char* const postfix[] = {"", "", "?", "*", "+", "@", "#"};
    const std::string atom =
        depth > 0 && r.Next(3) == 0 ? "(" + RandomList(r, depth - 1) + ")" : atoms[r.Next(14)];
    return atom + postfix[r.Next(7)];
}

std::string RandomList(Random& r, int depth) {
    std::string list;
    do {
        if (!list.empty()) list += '|';
        if (r.Next(10) == 0) list += '^';
        for (uint32_t n = 1 + r.Next(3); n > 0; --n) list += RandomAtom(r, depth);
    } while (r.Next(3) == 0);
    return list;
}

TEST_F(Pattern, RememberingChangesNoResult) {
    Random r{2024};
    int checked = 0, remembered = 0;
    for (int i = 0; i < 4000; ++i) {
        g_DoubleByte = r.Next(4) == 0; // the independent matcher's code page
        SYS_SetCodePage(g_DoubleByte ? 932 : 0);
        std::string pattern = RandomList(r, 3);
        static const char* const pieces[] = {"a", "a", "a", "a", "b", "1", "-", ".", "\x82\xa0"};
        std::string text;
        for (uint32_t n = 20 + r.Next(140); n > 0; --n)
            text += pieces[r.Next(g_DoubleByte ? 9 : 8)];
        if (r.Next(2) == 0) {
            pattern = "(" + pattern + ")c";
            text.insert(text.size() - r.Next(static_cast<uint32_t>(text.size() / 3)), "c");
        }

        const SYS_StrPattern pat(pattern.c_str());
        if (pat.program.IsEmpty()) continue; // a lone lead byte took the next byte
        int length = 0;
        const int at = pat.Match(text.c_str(), &length);
        const bool memo = SYS_PatternLastStats().memo > 0;
        Reference reference(reinterpret_cast<Pc>(pat.program.GetString()),
                            static_cast<size_t>(pat.program.GetLength()),
                            reinterpret_cast<const unsigned char*>(text.c_str()));
        long expectedLength = 0;
        const long expected = reference.Find(&expectedLength);
        if (reference.aborted) continue;
        ++checked;
        remembered += memo;
        ASSERT_EQ(at, expected) << pattern << " in " << text;
        ASSERT_EQ(length, at >= 0 ? expectedLength : 0) << pattern << " in " << text;

        const int limit = 1 + static_cast<int>(r.Next(3));
        SYS_StringBase target(text.c_str()), stepwise(text.c_str());
        const int count = pat.Substitute(target, "-", limit);
        int done = 0, pos = 0, n = 0;
        for (int m; done < limit && (m = pat.Match(stepwise.GetBuffer(0) + pos, &n)) >= 0; ++done) {
            stepwise = stepwise.Left(pos + m) + "-" + stepwise.Mid(pos + m + n);
            pos += m + 1;
        }
        ASSERT_EQ(count, done) << pattern << " in " << text;
        ASSERT_STREQ(target.GetString(), stepwise.GetString()) << pattern << " in " << text;
    }
    g_DoubleByte = false;
    // Most cases are judged, and many of those remembered outcomes.
    EXPECT_GT(checked, 3500);
    EXPECT_GT(remembered, 500);
}

// An 8 MB text: repetitions keep their positions as runs, and the
// backtracking stack stays a few frames deep.
TEST_F(Pattern, LongTextsKeepTheStackFlat) {
    std::string text;
    for (int i = 0; i < (4 << 20); ++i) text += "ab";
    const struct {
        const char* pattern;
        int at, length;
    } cases[] = {
        {".*", 0, 8 << 20},
        {"(ab)*$", 0, 8 << 20},
        {"(ab)+x|b(ab)@$", 1, (8 << 20) - 1},
        {"[ab]*b", 0, 8 << 20},
    };
    for (const auto& c : cases) {
        const Found f = Find(c.pattern, text.c_str());
        EXPECT_EQ(f.at, c.at) << c.pattern;
        EXPECT_EQ(f.length, c.length) << c.pattern;
        const SYS_PatternStats s = SYS_PatternLastStats();
        EXPECT_LE(s.peakFrames, 8u) << c.pattern;
        EXPECT_LE(s.peakRuns, 2u) << c.pattern;
    }
}

// Whole numbers inside long runs of signs and digits, which the matcher
// keeps once scanned: numbers tried at every position of a run agree with
// the independent matcher (the scanners' own reading).
TEST_F(Pattern, NumbersInLongRuns) {
    Random r{7};
    int checked = 0;
    for (int i = 0; i < 40; ++i) {
        std::string text;
        while (text.size() < 150) {
            const uint32_t k = r.Next(7);
            text += k < 3 ? std::string(1 + r.Next(90), "-+-"[k]) : std::string(1, "7.ae"[k - 3]);
        }
        for (const char* pattern :
             {".@:z:z", ".@:nx", "(.|:z)@a", ".*:h", ":n.@:n$", "(:z|-)*a", "..@:h+a", "-@:n"}) {
            const SYS_StrPattern pat(pattern);
            int length = 0;
            const int at = pat.Match(text.c_str(), &length);
            Reference reference(reinterpret_cast<Pc>(pat.program.GetString()),
                                static_cast<size_t>(pat.program.GetLength()),
                                reinterpret_cast<const unsigned char*>(text.c_str()));
            long expectedLength = 0;
            const long expected = reference.Find(&expectedLength);
            if (reference.aborted) continue;
            ++checked;
            EXPECT_EQ(at, expected) << pattern << " in " << text;
            EXPECT_EQ(length, at >= 0 ? expectedLength : 0) << pattern << " in " << text;
        }
    }
    EXPECT_GT(checked, 250);
    // A run scanned first from before its digit, then tried after it.
    const std::string run = std::string(10, '-') + "7" + std::string(90, '-') + "y";
    EXPECT_EQ(Find(":zx|7-:zy", run.c_str()).at, -1);
}

// Searches that take a backtracking matcher exponential or polynomial time
// (overlapping alternatives, nested repetitions, repeated wildcards, lazy
// ones, numbers) over texts that none of them matches: the steps per
// character are the same at 32 KB and at 256 KB, and what is remembered
// stays within its bits per character.  Then one at 4 MB.
TEST_F(Pattern, AdversarialSearchesStayLinear) {
    const struct {
        const char* pattern;
        char fill;
        double memoBits; // per character
    } cases[] = {
        {"(a|aa)+b", 'a', 2.2},      {".*.*.*b", 'a', 6.5},
        {"(a+)+b", 'a', 37},        // the inner repetition succeeds: its ends are kept
        {".@.@.@b", 'a', 11},       // two lazy repetitions and three loops
        {"((a|aa)*c)*x", 'a', 4.3}, // two greedy repetitions
        {"(.|a)*(a|.)*b", 'a', 4.3}, {"x|^(a|aa)+b", 'a', 2.2},
        {":z*x", '1', 2.2},          {"(:n|1)@x", '1', 4.3},
    };
    for (const auto& c : cases) {
        double perChar[2];
        for (int k = 0; k < 2; ++k) {
            const std::string text(static_cast<size_t>(32 << (10 + 3 * k)), c.fill);
            int n;
            EXPECT_EQ(SYS_StrPattern(c.pattern).Match(text.c_str(), &n), -1) << c.pattern;
            const SYS_PatternStats s = SYS_PatternLastStats();
            perChar[k] = static_cast<double>(s.steps) / static_cast<double>(text.size());
            // (At 256 KB, where whole pages of 4096 positions count little.)
            const double memoBits = s.memo * 8192.0 / static_cast<double>(text.size());
            if (k == 1) {
                EXPECT_LE(memoBits, c.memoBits) << c.pattern;
            }
            EXPECT_LE(s.peakFrames, 8u) << c.pattern;
        }
        EXPECT_LT(perChar[1], 16) << c.pattern;
        EXPECT_NEAR(perChar[1], perChar[0], 0.01 * perChar[0]) << c.pattern;
    }
    const std::string text(4 << 20, 'a');
    int n;
    EXPECT_EQ(SYS_StrPattern("(a|aa)+b").Match(text.c_str(), &n), -1);
    EXPECT_LE(SYS_PatternLastStats().steps, 8 * static_cast<long long>(text.size()));
    EXPECT_LE(SYS_PatternLastStats().memo, 1100); // KiB: 2 bits per character
}

// Runs `body` on a thread with a 256 KB stack, which a recursion over the
// nesting of a pattern would overflow.
void OnSmallStack(std::function<void()> body) {
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, 256 << 10);
    pthread_t thread;
    auto run = [](void* f) -> void* {
        (*static_cast<std::function<void()>*>(f))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attr, run, &body), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
}

TEST_F(Pattern, DeepNestingCompilesAndMatches) {
    OnSmallStack([] {
        const int million = 1000000;
        const SYS_StrPattern plain(
            (std::string(million, '(') + "a" + std::string(million, ')')).c_str());
        EXPECT_TRUE(Program(plain) ==
                    std::string(million, ')') + "ca" + std::string(million + 1, 'e'));
        int n;
        EXPECT_EQ(plain.Match("xa", &n), 1);
        EXPECT_EQ(n, 1);

        // 120 levels inside the operand of a repetition (242 bytes).
        const SYS_StrPattern starred(
            (std::string(120, '(') + "a" + std::string(120, ')') + "*").c_str());
        EXPECT_EQ(Program(starred), "*\xf2" + std::string(120, ')') + "ca" + std::string(121, 'e'));
        EXPECT_EQ(starred.Match("aaab", &n), 0);
        EXPECT_EQ(n, 3);

        // 100,000 levels around "a": ((a)+|b)+ innermost, and "|c" every
        // thousandth level, the outermost included.
        const int levels = 100000;
        std::string pattern(levels, '('), opening, closing;
        pattern += "a)+|b))+";
        for (int k = 4; k <= levels; ++k) {
            const bool alternation = k % 1000 == 0;
            pattern += alternation ? "|c)" : ")";
            opening += alternation ? "|)" : ")"; // reversed below: outer levels go first
            closing += alternation ? "ecce" : "e";
        }
        std::reverse(opening.begin(), opening.end());
        const SYS_StrPattern deep(pattern.c_str());
        EXPECT_TRUE(Program(deep) == opening + "+\x0e))|+\x04)caeecbee" + closing + "e");
        const struct {
            const char* text;
            int at, length;
        } cases[] = {{"xaabay", 1, 4}, {"zzc", 2, 1}, {"d", -1, 0}};
        for (const auto& c : cases) {
            EXPECT_EQ(deep.Match(c.text, &n), c.at) << c.text;
            EXPECT_EQ(n, c.length) << c.text;
        }
    });
}

} // namespace
