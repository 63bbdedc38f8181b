// Rounding of the geometry: the branch-free rounding and truncation give
// what the literal rule gives (add 0.5 to a positive value, subtract it from
// a negative one, truncate; out of range or NaN is -2147483648) on every
// boundary, and so do the images of points, single and in batches.
#include <keel/SYS_Transform.h>
#include "internal/SYS_Int32.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace {

// The rule as written, with its branch: the reference for every case below.
int32_t ReferenceTrunc(double v) {
    if (!(v > -2147483649.0 && v < 2147483648.0)) return INT32_MIN;
    return static_cast<int32_t>(v);
}
int32_t ReferenceRound(double v) { return ReferenceTrunc(v > 0 ? v + 0.5 : v - 0.5); }

// Half steps and their neighbours, zeros of both signs, the 32-bit limits,
// the ends of the double range, infinities and NaN, each with both signs.
std::vector<double> Boundaries() {
    const double inf = std::numeric_limits<double>::infinity();
    std::vector<double> magnitudes = {0.0,
                                      0.49999999999999994, // + 0.5 rounds up to 1 in double
                                      DBL_TRUE_MIN,
                                      DBL_MIN,
                                      DBL_MAX,
                                      inf,
                                      std::numeric_limits<double>::quiet_NaN(),
                                      4503599627370496.0, // 2^52: no fraction left
                                      9007199254740993.0};
    for (double k : {0.0, 1.0, 2.0, 3.0, 1e6, 1066800000.0, 2147483646.0, 2147483647.0,
                     2147483648.0, 2147483649.0}) {
        for (double v : {k, k + 0.5}) {
            magnitudes.push_back(v);
            magnitudes.push_back(std::nextafter(v, 0.0));
            magnitudes.push_back(std::nextafter(v, inf));
        }
    }
    std::vector<double> values;
    for (double m : magnitudes) {
        values.push_back(m);
        values.push_back(-m);
    }
    return values;
}

TEST(SysRounding, RoundAndTruncMatchTheLiteralRule) {
    std::vector<double> values = Boundaries();
    uint64_t seed = 12345; // plus random bit patterns of either sign and any exponent,
    for (int i = 0; i < 100000; ++i) {
        seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
        double v;
        std::memcpy(&v, &seed, sizeof v);
        values.push_back(i % 3 ? std::fmod(v, 4294967296.0) : v); // most near the 32-bit range
    }
    for (double v : values) {
        ASSERT_EQ(SYS_Round32(v), ReferenceRound(v)) << std::hexfloat << v;
        ASSERT_EQ(SYS_Trunc32(v), ReferenceTrunc(v)) << std::hexfloat << v;
    }
    // The library's own rounding entry points follow the same rule.
    for (double v : Boundaries()) {
        EXPECT_EQ(SYS_Point(SYS_DoublePoint(v, -v)),
                  SYS_Point(ReferenceRound(v), ReferenceRound(-v)))
            << std::hexfloat << v;
        SYS_Point scaled(1, -1);
        scaled.Scale(v);
        EXPECT_EQ(scaled, SYS_Point(ReferenceRound(v), ReferenceRound(-v))) << std::hexfloat << v;
        SYS_Transform length;
        length.scale = v;
        EXPECT_EQ(length + 1L, ReferenceRound(v)) << std::hexfloat << v;
    }
}

// x' = a*x + b*y + c and y' = d*x + e*y + f, each rounded by the rule.  The
// products are rounded on their own even where the compiler could fuse them
// into the sums (a build for processors with fused multiply-add).
SYS_Point ReferenceImage(const SYS_Transform& t, const SYS_Point& p) {
    const double x = p.x, y = p.y;
    const volatile double ax = t.a * x, by = t.b * y, dx = t.d * x, ey = t.e * y;
    return SYS_Point(ReferenceRound(ax + by + t.c), ReferenceRound(dx + ey + t.f));
}

TEST(SysRounding, PointImagesMatchTheLiteralRule) {
    std::vector<SYS_Transform> maps(9);
    maps[1].SetMove(0.5, -0.5); // every image on a half step, of either sign
    maps[2].SetRotate(SYS_Point(0, 0), 60 * SYS_DEGREE);
    maps[3].SetScale(SYS_Point(7, -7), -0.5);
    maps[4].SetMirror(SYS_Point(3, 4), 0.6, 0.8);
    maps[5].SetScale(SYS_Point(0, 0), 3.0); // leaves the 32-bit range
    maps[6].c = std::numeric_limits<double>::quiet_NaN();
    maps[6].e = -1; // x' is NaN, y' is not
    // (2^53 + 1) - 2^53 is 0 in double, 2^53 + (1 - 2^53) is 1: the terms
    // are added in their written order.
    maps[7].a = maps[7].d = 4503599627370496.0;
    maps[7].c = maps[7].f = -9007199254740992.0;
    maps[7].b = 1, maps[7].e = -1;
    // Here a*x + b*y + c gives 1 only when each product is rounded before the
    // sum; fused with either product, it gives 0.
    maps[8].a = maps[8].d = 1816.4171200947856;
    maps[8].b = maps[8].e = -967.9369518324398;
    maps[8].c = maps[8].f = 0.498779296875;
    std::vector<SYS_Point> points = {{0, 0},
                                     {2, 1},
                                     {418448839, 785255314},
                                     {1, -1},
                                     {-1, 1},
                                     {3, 5},
                                     {-3, -5},
                                     {INT32_MAX, INT32_MIN},
                                     {INT32_MIN, -1},
                                     {715827883, -2},
                                     {1066799999, -1066799999}};
    uint32_t seed = 99;
    for (int i = 0; i < 2000; ++i) {
        seed = seed * 1103515245u + 12345u;
        const int32_t x = static_cast<int32_t>(seed);
        seed = seed * 1103515245u + 12345u;
        points.emplace_back(i % 2 ? x : x % 1000, static_cast<int32_t>(seed) % 100000);
    }
    for (const SYS_Transform& t : maps) {
        std::vector<SYS_Point> batch = points;
        t.Transform(batch.data(), static_cast<int>(batch.size()));
        for (size_t i = 0; i < points.size(); ++i) {
            const SYS_Point want = ReferenceImage(t, points[i]);
            SYS_Point single = points[i];
            t.Transform(&single);
            ASSERT_EQ(single, want) << "map " << &t - maps.data() << " point " << i;
            ASSERT_EQ(batch[i], want) << "map " << &t - maps.data() << " point " << i;
        }
    }
}

} // namespace
