// Tests of SYS_StringBase: bounds rules, the NUL-bounded concatenation family,
// searching, modification, buffers and formatting.
#include <keel/SYS_String.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

typedef SYS_StringBase S;
typedef std::vector<int> Ints;
typedef std::vector<std::string> Strs;

std::string Bytes(const S& s) { return std::string(s.GetString(), s.GetLength()); }

template <class F> std::string WhatOf(F f) {
    try {
        f();
    } catch (const std::exception& e) {
        return e.what();
    }
    return "no exception";
}
const char* const kPos = "invalid string position";

TEST(String, ConstructionAccessAndImpossibleLengths) {
    S withNul("a\0b", 3), copy(withNul), s;
    EXPECT_EQ((Strs{Bytes(S(static_cast<const char*>(nullptr))), Bytes(S(nullptr, 5)), Bytes(copy),
                    Bytes(S('x', 3))}),
              (Strs{"", "", std::string("a\0b", 3), "xxx"}));
    s = 'q';
    EXPECT_EQ(Bytes(s), "q");
    s = static_cast<const char*>(nullptr);
    EXPECT_EQ(s.IsEmpty(), 1);
    S& alias = s;
    s = "abc";
    s = alias; // self-assignment keeps the text
    EXPECT_EQ(Bytes(s), "abc");

    // Checked access ignores what is out of range.
    EXPECT_EQ((Ints{s.GetAt(-1), s.GetAt(3), s.GetAt(2)}), (Ints{0, 0, 'c'}));
    s.SetAt(-1, 'x'), s.SetAt(3, 'x'), s.SetAt(0, 'X');
    s[1] = 'Y';
    EXPECT_EQ(Bytes(s), "XYc");

    EXPECT_EQ(WhatOf([] { S('x', -1); }), "string too long");
    EXPECT_EQ(WhatOf([&] { s.GetBufferSetLength(-1); }), "string too long");
    EXPECT_EQ(WhatOf([&] { s.ReleaseBufferSetLength(-3); }), "string too long");
    EXPECT_THROW(s.GetBufferSetLength(-1), std::length_error);
}

TEST(String, ConcatenationStopsAtTheFirstNul) {
    S s("ab"), nul("a\0b", 3), t("z");
    EXPECT_TRUE(s + '\0' == s);
    EXPECT_EQ((Strs{Bytes(s + 'x'), Bytes('x' + s), Bytes("<" + s + ">"), Bytes(nul + "c"),
                    Bytes(t + nul)}),
              (Strs{"abx", "xab", "<ab>", "ac", "za"}));
    t += nul;
    EXPECT_EQ(Bytes(t), "za");
    t.Append(nul); // length-exact
    EXPECT_EQ(Bytes(t), std::string("zaa\0b", 5));
    t.Append("xy\0z", 4);
    t += '\0';
    t.AppendChar('\0');
    EXPECT_EQ(t.GetLength(), 9);

    s.Append(s);
    s += s;
    EXPECT_EQ(Bytes(s), "abababab");

    S c;
    c.ConcatCopy(100, nullptr, -5, "tail");
    c.ConcatCopy(0, c.GetString(), 0, c.GetString()); // operands alias the target
    c.ConcatInPlace(999, "!");
    EXPECT_EQ(Bytes(c), "tailtail!");

    s = "";
    s << 'a' << "b" << S("c") << -12 << 34L << 5u << 4294967295ul << 1.5 << 0.25f;
    EXPECT_EQ(Bytes(s), "abc-1234542949672951.5000000.250000");
    S big;
    big << -DBL_MAX;
    EXPECT_EQ(big.GetAt(0), '-');
    EXPECT_EQ(big.Find('e'), -1); // "%f" never uses an exponent
}

TEST(String, ValueParsesTheStartAndReportsTheEnd) {
    const char* end = nullptr;
    long l = 0;
    int i = 1;
    short sh = 0;
    unsigned long ul = 0;
    unsigned int ui = 0;
    S s("  -42mm"), x("x");
    EXPECT_EQ(s.Value(&l, &end), -42);
    EXPECT_EQ(l, -42);
    EXPECT_STREQ(end, "mm");
    EXPECT_EQ(x.Value(&i, &end), 0);
    EXPECT_EQ(end, x.GetString());
    EXPECT_EQ(S("99999999999").Value(&i, nullptr), 2147483647);
    EXPECT_EQ(S("-99999999999").Value(&l, nullptr), -2147483647L - 1);
    EXPECT_EQ(S("65537").Value(&sh, nullptr), 1); // truncated to 16 bits
    EXPECT_EQ(S("-1").Value(&ul, nullptr), 4294967295ul);
    EXPECT_EQ(S("99999999999").Value(&ul, nullptr), 4294967295ul);
    EXPECT_EQ(S("+7").Value(&ui, nullptr), 7u);

    double d = 0;
    float f = 0;
    S e("1.5e3x");
    EXPECT_DOUBLE_EQ(e.Value(&d, &end), 1500.0);
    EXPECT_STREQ(end, "x");
    EXPECT_FLOAT_EQ(S("0.1").Value(&f, nullptr), 0.1f);
}

TEST(String, SubstringBounds) {
    S s("abcdef");
    EXPECT_EQ((Strs{Bytes(s.Mid(2, 3)), Bytes(s.Mid(4, 99)), Bytes(s.Mid(2, -1)), Bytes(s.Mid(6)),
                    Bytes(s.Left(-1)), Bytes(s.Left(2)), Bytes(s.Left(60)), Bytes(s.Right(2)),
                    Bytes(s.Right(60)), Bytes(s.SpanIncluding("cba")), Bytes(s.SpanExcluding("ed")),
                    Bytes(S("ab\0cd", 5).Mid(1, 3))}), // the result ends at a NUL
              (Strs{"cde", "ef", "cdef", "", "abcdef", "ab", "abcdef", "ef", "abcdef", "abc", "abc",
                    "b"}));
    EXPECT_EQ(WhatOf([&] { s.Mid(-1, 2); }), kPos);
    EXPECT_EQ(WhatOf([&] { s.Mid(7); }), kPos);
    EXPECT_EQ(WhatOf([&] { s.Right(-1); }), kPos);
}

// Calls Tokenize up to `steps` times from `pos`, recording "token@pos" each
// time; stops after the call that sets pos to -1.
std::string Walk(const char* text, const char* delims, int pos, int steps = 4) {
    S s(text);
    std::string out;
    for (int i = 0; i < steps && pos != -1; ++i) {
        std::string token = Bytes(s.Tokenize(delims, pos));
        out += token + "@" + std::to_string(pos) + " ";
    }
    return out;
}

TEST(String, TokenizeFollowsItsPosition) {
    EXPECT_EQ(Walk(",a,,b", ",", 0), "a@3 b@6 @-1 ");
    EXPECT_EQ(Walk("abc", "", 0, 2), "abc@0 abc@0 "); // no delimiters: no progress
    EXPECT_EQ(Walk("abc", nullptr, 1, 1), "bc@1 ");
    EXPECT_EQ(Walk("abc", nullptr, 3), "@-1 ");
    EXPECT_EQ(Walk("x,,", ",", 1), "@-1 ");
    EXPECT_EQ(Walk("a", ",", -5, 1), "@-5 "); // a negative position gives nothing and stays
}

TEST(String, Searches) {
    S s("abcabc");
    EXPECT_EQ((Ints{s.Find('c'), s.Find('c', 3), s.Find('c', 7), s.Find('c', -1), s.Find("bc", 2),
                    s.Find("", 6), s.Find("", 7), s.Find("zz"), S("a\0b", 3).Find('b'),
                    s.FindOneOf("xc", 0), s.FindOneOf("xc", 6), s.FindOneOf("xc", -1),
                    s.FindOneOf("xc", 7)}),
              (Ints{2, 5, -1, -1, 4, 6, -1, -1, 2, 2, -1, -1, -1}));

    // Reverse searches take -2 for "from the last character" and never
    // report a match at index 0 of a set search.
    S p("a/b/c"), name("name.ext");
    EXPECT_EQ(
        (Ints{S("/abc").ReverseFindOneOf("/", -2), p.ReverseFindOneOf("/", -2),
              p.ReverseFindOneOf("/", 2), p.ReverseFindOneOf("/", -1), p.ReverseFindOneOf("/", 5),
              p.ReverseFindOneOf("/", 1), S("a/b/").ReverseFindOneOf("/", -2)}),
        (Ints{-1, 3, 1, -1, -1, 1, 3}));
    EXPECT_EQ(
        (Ints{name.ReverseFind('.', -2), name.ReverseFind('\0', -2), name.ReverseFind('\0', 8),
              name.ReverseFind('\0', 3), name.ReverseFind('n', 3), name.ReverseFind('e', 4),
              name.ReverseFind('e', 3), S("name.").ReverseFind('.', -2),
              S("abc").ReverseFind('x', 10), S("abc").ReverseFind('a', -1)}),
        (Ints{4, 8, 8, -1, 0, 3, 3, 4, -1, -1}));
    EXPECT_EQ(Bytes(name), "name.ext");
}

TEST(String, InsertDeleteReplaceRemove) {
    S s("ace");
    s.Insert(1, 'b'), s.Insert(3, "d"), s.Insert(5, "!");
    EXPECT_EQ(Bytes(s), "abcde!");
    EXPECT_EQ(WhatOf([&] { s.Insert(7, 'x'); }), kPos);
    EXPECT_EQ(WhatOf([&] { s.Insert(-1, "x"); }), kPos);
    s.Delete(5, 10);
    EXPECT_EQ(Bytes(s), "abcde");
    s.Delete(3, -1);
    EXPECT_EQ(Bytes(s), "abc");
    EXPECT_EQ(WhatOf([&] { s.Delete(4, 1); }), kPos);
    s.Replace(1, 1, "BBB");
    EXPECT_EQ(Bytes(s), "aBBBc");
    EXPECT_EQ(WhatOf([&] { s.Replace(-2, 1, "x"); }), kPos);

    S t("aaaa"), r("a.b.c.");
    EXPECT_EQ((Ints{s.Replace('B', 'b'), s.Replace('z', 'y'), s.Replace("bb", "X"),
                    t.Replace("aa", "a"), r.Remove('.')}), // every text search restarts at 0
              (Ints{3, 0, 1, 3, 3}));
    EXPECT_EQ((Strs{Bytes(s), Bytes(t), Bytes(r)}), (Strs{"aXbc", "a", "abc"}));
}

TEST(String, CaseTrimAndComparison) {
    S s("MiXed 1");
    EXPECT_EQ(Bytes(s.MakeUpper()), "MIXED 1");
    EXPECT_EQ((Strs{Bytes(s.MakeLower()), Bytes(S("ab \t\n").TrimRight(nullptr)),
                    Bytes(S(" \tab").TrimLeft("")), Bytes(S("xyxab").TrimLeft("xy")),
                    Bytes(S("xyxab").TrimRight("xy")), Bytes(S("--a-b--").AllTrim("-")),
                    Bytes(S("xyx").AllTrim("xy"))}),
              (Strs{"mixed 1", "ab", "ab", "ab", "xyxab", "a-b", ""}));

    S a("abc"), b("abd");
    EXPECT_LT(a.Compare("abd"), 0);
    EXPECT_EQ(a.CompareNoCase("ABC"), 0);
    EXPECT_LT(S("a2").CompareAlNum("a10"), 0);
    EXPECT_TRUE(a < b && b > a && a <= a && a >= a && a != b && a == S("abc"));
    EXPECT_TRUE(a < "abd" && a > "abb" && a <= "abc" && a >= "abc" && a == "abc" && a != "x");
    EXPECT_TRUE("abb" < a && "abd" > a && "abc" <= a && "abc" >= a && "abc" == a && "x" != a);
    EXPECT_FALSE("abd" < a);
    EXPECT_TRUE(S("a") == 'a' && !(S("aa") == 'a') && 'b' != S("a"));
    EXPECT_LT(S("\x7f").Compare("\x80"), 0); // bytes compare unsigned
}

TEST(String, FormattingAndRawBuffers) {
    S s("old");
    s.Format("%d-%s", 7, "x");
    EXPECT_EQ(Bytes(s), "7-x");
    s.Format("%s", "");
    EXPECT_EQ(s.GetLength(), 0);
    std::string longText(5000, 'q');
    EXPECT_EQ(Bytes(FormattedString("<%s>", longText.c_str())), "<" + longText + ">");

    s = "ab";
    char* p = s.GetBuffer(10);
    EXPECT_EQ(s.GetLength(), 11);
    std::snprintf(p, 11, "hello");
    s.ReleaseBuffer();
    EXPECT_EQ(Bytes(s), "hello");
    s.GetBuffer(2); // never shrinks
    EXPECT_EQ(s.GetLength(), 5);

    S e;
    e.GetBuffer();
    EXPECT_EQ(e.GetLength(), 1);
    e.ReleaseBuffer();
    EXPECT_EQ(e.GetLength(), 0);
    e.GetBufferSetLength(3)[0] = 'x';
    EXPECT_EQ(e.GetLength(), 3);
    e.ReleaseBufferSetLength(5);
    EXPECT_EQ(Bytes(e), std::string("x\0\0\0\0", 5));
    e.ReleaseBufferSetLength(1);
    e.Reserve(100);
    e.Reserve(-1);
    EXPECT_EQ(Bytes(e), "x");
}

} // namespace
