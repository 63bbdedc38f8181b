// Tests of SYS_StringBase: bounds rules, the NUL-bounded concatenation family,
// searching, modification, buffers and formatting.
#include "SYS_String.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <stdexcept>
#include <string>

namespace {

std::string Bytes(const SYS_StringBase& s) { return std::string(s.GetString(), s.GetLength()); }

template <class F> std::string WhatOf(F f) {
    try {
        f();
    } catch (const std::exception& e) {
        return e.what();
    }
    return "no exception";
}

TEST(String, ConstructionKeepsOrDropsBytesAsStated) {
    EXPECT_EQ(SYS_StringBase(static_cast<const char*>(nullptr)).GetLength(), 0);
    EXPECT_EQ(SYS_StringBase(nullptr, 5).GetLength(), 0);
    SYS_StringBase withNul("a\0b", 3);
    EXPECT_EQ(Bytes(withNul), std::string("a\0b", 3));
    SYS_StringBase copy(withNul);
    EXPECT_EQ(Bytes(copy), std::string("a\0b", 3));
    EXPECT_EQ(Bytes(SYS_StringBase('x', 3)), "xxx");
    SYS_StringBase s;
    s = 'q';
    EXPECT_EQ(Bytes(s), "q");
    s = static_cast<const char*>(nullptr);
    EXPECT_EQ(s.IsEmpty(), 1);
    SYS_StringBase& alias = s;
    s = alias; // self-assignment keeps the text
    s = "abc";
    s = alias;
    EXPECT_EQ(Bytes(s), "abc");
}

TEST(String, ImpossibleLengthsThrowLengthError) {
    EXPECT_EQ(WhatOf([] { SYS_StringBase('x', -1); }), "string too long");
    SYS_StringBase s("ab");
    EXPECT_EQ(WhatOf([&] { s.GetBufferSetLength(-1); }), "string too long");
    EXPECT_EQ(WhatOf([&] { s.ReleaseBufferSetLength(-3); }), "string too long");
    EXPECT_THROW(s.GetBufferSetLength(-1), std::length_error);
}

TEST(String, CheckedAccessIgnoresOutOfRange) {
    SYS_StringBase s("abc");
    EXPECT_EQ(s.GetAt(-1), 0);
    EXPECT_EQ(s.GetAt(3), 0);
    EXPECT_EQ(s.GetAt(2), 'c');
    s.SetAt(-1, 'x');
    s.SetAt(3, 'x');
    EXPECT_EQ(Bytes(s), "abc");
    s.SetAt(0, 'X');
    s[1] = 'Y';
    EXPECT_EQ(Bytes(s), "XYc");
    EXPECT_EQ(SYS_StringBase::StringLength("hello"), 5);
}

TEST(String, ConcatenationStopsAtTheFirstNul) {
    SYS_StringBase s("ab");
    EXPECT_EQ(Bytes(s + 'x'), "abx");
    EXPECT_TRUE(s + '\0' == s);
    EXPECT_EQ(Bytes('x' + s), "xab");
    EXPECT_EQ(Bytes("<" + s + ">"), "<ab>");

    SYS_StringBase nul("a\0b", 3);
    EXPECT_EQ(Bytes(nul + "c"), "ac");
    EXPECT_EQ(Bytes(SYS_StringBase("z") + nul), "za");
    SYS_StringBase t("z");
    t += nul;
    EXPECT_EQ(Bytes(t), "za");
    t.Append(nul); // length-exact
    EXPECT_EQ(Bytes(t), std::string("zaa\0b", 5));
    t.Append("xy\0z", 4);
    EXPECT_EQ(t.GetLength(), 9);
    t += '\0';
    t.AppendChar('\0');
    EXPECT_EQ(t.GetLength(), 9);

    SYS_StringBase self("ab");
    self.Append(self);
    EXPECT_EQ(Bytes(self), "abab");
    self += self;
    EXPECT_EQ(Bytes(self), "abababab");

    SYS_StringBase c;
    c.ConcatCopy(100, nullptr, -5, "tail");
    EXPECT_EQ(Bytes(c), "tail");
    c.ConcatCopy(0, c.GetString(), 0, c.GetString()); // operands alias the target
    EXPECT_EQ(Bytes(c), "tailtail");
    c.ConcatInPlace(999, "!");
    EXPECT_EQ(Bytes(c), "tailtail!");
}

TEST(String, StreamAppendingFormatsNumbers) {
    SYS_StringBase s;
    s << 'a' << "b" << SYS_StringBase("c") << -12 << 34L << 5u << 4294967295ul << 1.5 << 0.25f;
    EXPECT_EQ(Bytes(s), "abc-1234542949672951.5000000.250000");
    SYS_StringBase big;
    big << -DBL_MAX;
    EXPECT_EQ(big.GetAt(0), '-');
    EXPECT_EQ(big.Find('e'), -1); // "%f" never uses an exponent
}

TEST(String, ValueParsesTheStartAndReportsTheEnd) {
    const char* end = nullptr;
    long l = 0;
    SYS_StringBase s("  -42mm");
    EXPECT_EQ(s.Value(&l, &end), -42);
    EXPECT_EQ(l, -42);
    EXPECT_STREQ(end, "mm");

    int i = 1;
    SYS_StringBase x("x");
    EXPECT_EQ(x.Value(&i, &end), 0);
    EXPECT_EQ(end, x.GetString());
    EXPECT_EQ(SYS_StringBase("99999999999").Value(&i, nullptr), 2147483647);
    EXPECT_EQ(SYS_StringBase("-99999999999").Value(&l, nullptr), -2147483647L - 1);

    short sh = 0;
    EXPECT_EQ(SYS_StringBase("65537").Value(&sh, nullptr), 1); // truncated to 16 bits

    unsigned long ul = 0;
    EXPECT_EQ(SYS_StringBase("-1").Value(&ul, nullptr), 4294967295ul);
    EXPECT_EQ(SYS_StringBase("99999999999").Value(&ul, nullptr), 4294967295ul);
    unsigned int ui = 0;
    EXPECT_EQ(SYS_StringBase("+7").Value(&ui, nullptr), 7u);

    double d = 0;
    SYS_StringBase e("1.5e3x");
    EXPECT_DOUBLE_EQ(e.Value(&d, &end), 1500.0);
    EXPECT_STREQ(end, "x");
    float f = 0;
    EXPECT_FLOAT_EQ(SYS_StringBase("0.1").Value(&f, nullptr), 0.1f);
}

TEST(String, SubstringBounds) {
    SYS_StringBase s("abcdef");
    EXPECT_EQ(Bytes(s.Mid(2, 3)), "cde");
    EXPECT_EQ(Bytes(s.Mid(4, 99)), "ef");
    EXPECT_EQ(Bytes(s.Mid(2, -1)), "cdef");
    EXPECT_EQ(Bytes(s.Mid(6)), "");
    EXPECT_EQ(WhatOf([&] { s.Mid(-1, 2); }), "invalid string position");
    EXPECT_EQ(WhatOf([&] { s.Mid(7); }), "invalid string position");
    EXPECT_EQ(Bytes(s.Left(-1)), "abcdef");
    EXPECT_EQ(Bytes(s.Left(2)), "ab");
    EXPECT_EQ(Bytes(s.Left(60)), "abcdef");
    EXPECT_EQ(Bytes(s.Right(2)), "ef");
    EXPECT_EQ(Bytes(s.Right(60)), "abcdef");
    EXPECT_EQ(WhatOf([&] { s.Right(-1); }), "invalid string position");
    EXPECT_EQ(Bytes(SYS_StringBase("ab\0cd", 5).Mid(1, 3)), "b"); // the result ends at a NUL
    EXPECT_EQ(Bytes(s.SpanIncluding("cba")), "abc");
    EXPECT_EQ(Bytes(s.SpanExcluding("ed")), "abc");
}

// Calls Tokenize up to `steps` times from `pos`, recording "token@pos" each
// time; stops after the call that sets pos to -1.
std::string Walk(const char* text, const char* delims, int pos, int steps = 4) {
    SYS_StringBase s(text);
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
    SYS_StringBase s("a");
    int pos = -5; // a negative position gives nothing and stays
    EXPECT_EQ(Bytes(s.Tokenize(",", pos)), "");
    EXPECT_EQ(pos, -5);
}

TEST(String, ForwardSearches) {
    SYS_StringBase s("abcabc");
    EXPECT_EQ(s.Find('c'), 2);
    EXPECT_EQ(s.Find('c', 3), 5);
    EXPECT_EQ(s.Find('c', 7), -1);
    EXPECT_EQ(s.Find('c', -1), -1);
    EXPECT_EQ(s.Find("bc", 2), 4);
    EXPECT_EQ(s.Find("", 6), 6);
    EXPECT_EQ(s.Find("", 7), -1);
    EXPECT_EQ(s.Find("zz"), -1);
    EXPECT_EQ(SYS_StringBase("a\0b", 3).Find('b'), 2); // a byte search over the whole length
    EXPECT_EQ(s.FindOneOf("xc", 0), 2);
    EXPECT_EQ(s.FindOneOf("xc", s.GetLength()), -1);
    EXPECT_EQ(s.FindOneOf("xc", -1), -1);
    EXPECT_EQ(s.FindOneOf("xc", 7), -1);
}

TEST(String, ReverseSearchesTakeMinusTwoAndSkipIndexZero) {
    EXPECT_EQ(SYS_StringBase("/abc").ReverseFindOneOf("/", -2), -1);
    EXPECT_EQ(SYS_StringBase("a/b/c").ReverseFindOneOf("/", -2), 3);
    EXPECT_EQ(SYS_StringBase("a/b/c").ReverseFindOneOf("/", 2), 1);
    EXPECT_EQ(SYS_StringBase("a/b/c").ReverseFindOneOf("/", -1), -1);
    EXPECT_EQ(SYS_StringBase("a/b/c").ReverseFindOneOf("/", 5), -1);
    EXPECT_EQ(SYS_StringBase("a/b/c").ReverseFindOneOf("/", 1), 1); // a match at the start counts
    EXPECT_EQ(SYS_StringBase("a/b/").ReverseFindOneOf("/", -2), 3); // -2: from the last character

    SYS_StringBase name("name.ext");
    EXPECT_EQ(name.ReverseFind('.', -2), 4);
    EXPECT_EQ(name.ReverseFind('\0', -2), 8);
    EXPECT_EQ(name.ReverseFind('\0', 8), 8);
    EXPECT_EQ(name.ReverseFind('\0', 3), -1);
    EXPECT_EQ(name.ReverseFind('n', 3), 0);
    EXPECT_EQ(name.ReverseFind('e', 4), 3);
    EXPECT_EQ(name.ReverseFind('e', 3), 3);
    EXPECT_EQ(SYS_StringBase("name.").ReverseFind('.', -2), 4);
    EXPECT_EQ(SYS_StringBase("abc").ReverseFind('x', 10), -1);
    EXPECT_EQ(SYS_StringBase("abc").ReverseFind('a', -1), -1);
    EXPECT_EQ(name.ReverseFind('.', -2), 4); // the text is unchanged by the search
    EXPECT_EQ(Bytes(name), "name.ext");
}

TEST(String, InsertDeleteReplaceRemove) {
    SYS_StringBase s("ace");
    s.Insert(1, 'b');
    s.Insert(3, "d");
    s.Insert(5, "!");
    EXPECT_EQ(Bytes(s), "abcde!");
    EXPECT_EQ(WhatOf([&] { s.Insert(7, 'x'); }), "invalid string position");
    EXPECT_EQ(WhatOf([&] { s.Insert(-1, "x"); }), "invalid string position");
    s.Delete(5, 10);
    EXPECT_EQ(Bytes(s), "abcde");
    s.Delete(3, -1);
    EXPECT_EQ(Bytes(s), "abc");
    EXPECT_EQ(WhatOf([&] { s.Delete(4, 1); }), "invalid string position");
    s.Replace(1, 1, "BBB");
    EXPECT_EQ(Bytes(s), "aBBBc");
    EXPECT_EQ(WhatOf([&] { s.Replace(-2, 1, "x"); }), "invalid string position");

    EXPECT_EQ(s.Replace('B', 'b'), 3);
    EXPECT_EQ(s.Replace('z', 'y'), 0);
    EXPECT_EQ(Bytes(s), "abbbc");
    EXPECT_EQ(s.Replace("bb", "X"), 1);
    EXPECT_EQ(Bytes(s), "aXbc");
    SYS_StringBase t("aaaa");
    EXPECT_EQ(t.Replace("aa", "a"), 3); // every search restarts at 0
    EXPECT_EQ(Bytes(t), "a");
    SYS_StringBase r("a.b.c.");
    EXPECT_EQ(r.Remove('.'), 3);
    EXPECT_EQ(Bytes(r), "abc");
}

TEST(String, CaseAndTrim) {
    SYS_StringBase s("MiXed 1");
    EXPECT_EQ(Bytes(s.MakeUpper()), "MIXED 1");
    EXPECT_EQ(Bytes(s.MakeLower()), "mixed 1");
    EXPECT_EQ(Bytes(SYS_StringBase("ab \t\n").TrimRight(nullptr)), "ab");
    EXPECT_EQ(Bytes(SYS_StringBase(" \tab").TrimLeft("")), "ab");
    EXPECT_EQ(Bytes(SYS_StringBase("xyxab").TrimLeft("xy")), "ab");
    EXPECT_EQ(Bytes(SYS_StringBase("xyxab").TrimRight("xy")), "xyxab");
    EXPECT_EQ(Bytes(SYS_StringBase("--a-b--").AllTrim("-")), "a-b");
    EXPECT_EQ(Bytes(SYS_StringBase("xyx").AllTrim("xy")), "");
}

TEST(String, ComparisonOperators) {
    SYS_StringBase a("abc"), b("abd");
    EXPECT_LT(a.Compare("abd"), 0);
    EXPECT_EQ(a.CompareNoCase("ABC"), 0);
    EXPECT_LT(SYS_StringBase("a2").CompareAlNum("a10"), 0);
    EXPECT_TRUE(a < b && b > a && a <= a && a >= a && a != b && a == SYS_StringBase("abc"));
    EXPECT_TRUE(a < "abd" && a > "abb" && a <= "abc" && a >= "abc" && a == "abc" && a != "x");
    EXPECT_TRUE("abb" < a && "abd" > a && "abc" <= a && "abc" >= a && "abc" == a && "x" != a);
    EXPECT_FALSE("abd" < a);
    EXPECT_TRUE(SYS_StringBase("a") == 'a');
    EXPECT_FALSE(SYS_StringBase("aa") == 'a');
    EXPECT_TRUE('b' != SYS_StringBase("a"));
    EXPECT_LT(SYS_StringBase("\x7f").Compare("\x80"), 0); // bytes compare unsigned
}

TEST(String, Formatting) {
    SYS_StringBase s("old");
    s.Format("%d-%s", 7, "x");
    EXPECT_EQ(Bytes(s), "7-x");
    s.Format("%s", "");
    EXPECT_EQ(s.GetLength(), 0);
    std::string longText(5000, 'q');
    EXPECT_EQ(FormattedString("<%s>", longText.c_str()).GetLength(), 5002);
}

TEST(String, RawBuffers) {
    SYS_StringBase s("ab");
    char* p = s.GetBuffer(10);
    EXPECT_EQ(s.GetLength(), 11);
    std::snprintf(p, 11, "hello");
    s.ReleaseBuffer();
    EXPECT_EQ(Bytes(s), "hello");
    s.GetBuffer(2); // never shrinks
    EXPECT_EQ(s.GetLength(), 5);

    SYS_StringBase e;
    e.GetBuffer();
    EXPECT_EQ(e.GetLength(), 1);
    e.ReleaseBuffer();
    EXPECT_EQ(e.GetLength(), 0);

    char* q = e.GetBufferSetLength(3);
    q[0] = 'x';
    EXPECT_EQ(e.GetLength(), 3);
    e.ReleaseBufferSetLength(5);
    EXPECT_EQ(Bytes(e), std::string("x\0\0\0\0", 5));
    e.ReleaseBufferSetLength(1);
    EXPECT_EQ(Bytes(e), "x");

    e.Reserve(100);
    EXPECT_EQ(Bytes(e), "x");
    e.Reserve(-1);
    EXPECT_EQ(Bytes(e), "x");
}

} // namespace
