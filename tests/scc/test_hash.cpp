// Tests of the hash-table key helpers.
#include <keel/SCC_Hash.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace {

void* Address(uintptr_t v) { return reinterpret_cast<void*>(v); }

TEST(Hash, TableSizes) {
    const std::pair<long, long> sizes[] = {
        {-7, 3}, {3, 5}, {98299, 196613}, {805306356, 805306357}, {805306357, 0}, {LONG_MAX, 0}};
    for (auto [n, size] : sizes) EXPECT_EQ(SCC_GetNewTableSize(n), size) << n;
}

// Sums worked out by hand: "A" = 65 K = 409097975, "ab" = 4201021915,
// "Hello" = 2656364235, "hello" = 2857766315 (all modulo 2^32).
TEST(Hash, TextsAddressesAndPoints) {
    const char* a = "A";
    const char* ab = "ab";
    const char* none = nullptr;
    EXPECT_EQ(SCC_Hash(ab, 1000), 915);
    EXPECT_EQ(SCC_Hash(ab, -5), 4201021915LL - 4294967296LL); // by 2^32 - 5, read signed
    EXPECT_EQ(SCC_Hash(a, 0), 409097975);                     // unreduced, no trap
    EXPECT_EQ(SCC_Hash(none, 7), 0);
    EXPECT_EQ(SCC_Hash(SYS_StringBase("Hello"), 1000), 235);
    EXPECT_EQ(SCC_Hash(SYS_StringBase("Hello"), 0) + SCC_Hash(SYS_StringBase("Hello"), -5), 0);
    EXPECT_EQ(SCC_Hash(SCC_StrNoCase("HeLLo"), 1000), 315);
    EXPECT_EQ(SCC_Hash(SCC_StrNoCase("A"), 97), SCC_Hash(SCC_StrNoCase("a"), 97));
    EXPECT_NE(SCC_Hash(SYS_StringBase("A"), 97), SCC_Hash(SYS_StringBase("a"), 97));
    EXPECT_EQ(SCC_Hash(SCC_StrNoCase("x"), -1), 0);

    void* p = Address(0x100000007u);
    const void* cp = p;
    EXPECT_EQ(SCC_Hash(p, 5) + SCC_Hash(cp, 5), 4); // only the low 32 bits count
    // 0xFFFFFFF0 modulo 2^32 - 3 is itself, which reads as -16; -3 is added.
    EXPECT_EQ(SCC_Hash(Address(0xFFFFFFF0u), -3), -19);

    EXPECT_EQ(SCC_Hash(SYS_Point(3, -4), 5), 2);
    EXPECT_EQ(SCC_Hash(SYS_Point(65536, 65536), 7), 0);   // the product wraps to 0
    EXPECT_EQ(SCC_Hash(SYS_Point(65536, 32768), 10), -8); // ... to the most negative
    EXPECT_EQ(SCC_Hash(SYS_Point(INT32_MIN, 1), -1), 0);  // no trap
}

TEST(Compare, AllKeyTypes) {
    const double nan = std::nan("");
    EXPECT_EQ(
        (std::vector<int>{SCC_Compare(0.0, -0.0), SCC_Compare(1.0, 2.0), SCC_Compare(2.0, 1.0),
                          SCC_Compare(1.0, nan), SCC_Compare(nan, 1.0)}),
        (std::vector<int>{0, -1, 1, 1, 1}));

    void* lo = Address(0x1000);
    void* hi = Address(~uintptr_t(0) - 15);
    const void* clo = lo;
    EXPECT_EQ(SCC_Compare(hi, lo) * 100 + SCC_Compare(lo, hi) * 10 + SCC_Compare(clo, clo), 90);

    EXPECT_EQ(SCC_Compare(SYS_Point(5, 10), SYS_Point(5, 3)), 7); // the difference itself
    EXPECT_EQ(SCC_Compare(SYS_Point(1, 99), SYS_Point(4, 0)), -3);
    EXPECT_EQ(SCC_Compare(SYS_Point(INT32_MAX, 0), SYS_Point(-1, 0)), INT32_MIN);

    const char* abc = "abc";
    const char* none = nullptr;
    EXPECT_GT(SCC_Compare(abc, none), 0); // null reads as ""
    EXPECT_LT(SCC_Compare(SYS_StringBase("ABC"), SYS_StringBase("abc")), 0);
    EXPECT_EQ(SCC_Compare(SCC_StrNoCase("ABC"), SCC_StrNoCase("abc")), 0);
    EXPECT_GT(SCC_Compare(SCC_StrNoCase("abd"), SCC_StrNoCase("ABC")), 0);
}

} // namespace
