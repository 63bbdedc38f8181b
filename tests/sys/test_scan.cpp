// Tests of the number scanners, the natural comparison and field extraction.
#include <keel/SYS_Scan.h>
#include <keel/SYS_String.h>

#include <gtest/gtest.h>

namespace {

int Sign(int v) { return (v > 0) - (v < 0); }

TEST(Scan, DoublesAreLenientAboutSignsAndStrictAboutForm) {
    for (const char* yes : {"1e5", "1.e5", ".5", "5.", "-1.5E-3", "1-2", "--5", "+3", "7"})
        EXPECT_EQ(isdouble(yes, 0), 1) << yes;
    for (const char* no : {"1e", "e5", ".", "1.2.3", "1e5.5", "", "-", "1e+", "1..", "1e5e"})
        EXPECT_EQ(isdouble(no, 0), 0) << no;

    const char* s = "1e5";
    EXPECT_EQ(isdecdouble(s), 0);
    EXPECT_EQ(getdouble(s, 1), s + 1); // the exponent letter ends a decimal-only number
    EXPECT_EQ(getdouble("e5", 1), nullptr);
    EXPECT_EQ(isdecdouble("-12.5"), 1);
    const char* t = "12abc";
    EXPECT_EQ(getdouble(t, 0), t + 2);
    const char* u = "1.5.";
    EXPECT_EQ(getdouble(u, 0), u + 3);
    EXPECT_EQ(getdouble("1e.", 0), nullptr);
}

TEST(Scan, IntegersHaveNoPrefixes) {
    for (const char* yes : {"123", "-123", "1-2", "007"}) EXPECT_EQ(isdecinteger(yes), 1) << yes;
    for (const char* no : {"12a", "-", "+", "", "1.0"}) EXPECT_EQ(isdecinteger(no), 0) << no;
    EXPECT_EQ(isoctinteger("17"), 1);
    EXPECT_EQ(isoctinteger("18"), 0);
    EXPECT_EQ(ishexinteger("1F"), 1);
    EXPECT_EQ(ishexinteger("ff"), 1);
    EXPECT_EQ(ishexinteger("0x1F"), 0);
    const char* h = "0x1F";
    EXPECT_EQ(getinteger(h, 3), h + 1);
    const char* o = "1289";
    EXPECT_EQ(getinteger(o, 2), o + 2);
    EXPECT_EQ(isinteger("99", 7), 1); // other kinds scan decimal digits
    EXPECT_EQ(isinteger("9f", 7), 0);
}

TEST(Scan, NaturalComparison) {
    struct Row {
        const char* a;
        const char* b;
        int sign;
    } rows[] = {{"a2", "a10", -1},  {"a10", "a2", 1},   {"a10", "a010", 0}, {"a007b", "a7b", 0},
                {"abc", "abd", -1}, {"A", "A$", -1},    {"A$", "A", 1},     {"AB", "A$", -1},
                {"A$", "AZ", 1},    {"x1y", "x1z", -1}, {"$", "$", 0},      {"", "a", -1},
                {"b", "", 1},       {"a", "b", -1},     {"10", "10a", -1},  {"x9", "x", 1}};
    for (const Row& r : rows) EXPECT_EQ(r.sign, Sign(_tcsnumcmp(r.a, r.b))) << r.a << " " << r.b;
}

TEST(Scan, ExtractSubStringFields) {
    SYS_StringBase out("untouched");
    EXPECT_EQ(SysExtractSubString(out, nullptr, 0, ','), 0);
    EXPECT_EQ(out, "untouched");
    const char* expected[] = {"a", "b", "", "c"};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(SysExtractSubString(out, "a,b,,c", i, ','), 1) << i;
        EXPECT_EQ(out, expected[i]) << i;
    }
    EXPECT_EQ(SysExtractSubString(out, "a,b,,c", 4, ','), 0);
    EXPECT_EQ(out.GetLength(), 0);
    out = "x";
    EXPECT_EQ(SysExtractSubString(out, "a,b", -1, ','), 0);
    EXPECT_EQ(out.GetLength(), 0);
    EXPECT_EQ(SysExtractSubString(out, "", 0, ','), 1);
    EXPECT_EQ(out.GetLength(), 0);
}

} // namespace
