// Points, locations, positions and boxes: exact integer results.
#include <keel/SYS_Geom.h>
#include "tests/sys/geom_print.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

TEST(SysPoint, RoundingTruncationAndWrap) {
    EXPECT_EQ(After(P(5, -5), [](P& p) { p.Scale(0.5); }), P(3, -3)); // rounded
    EXPECT_EQ(P(5, -5) * 0.5, P(2, -2));                              // truncated
    EXPECT_EQ(P(5, -5) / 2, P(3, -3));                                // rounded half away from zero
    EXPECT_EQ(P(-9, 9) * 0.99, P(-8, 8));
    EXPECT_EQ(P(1, -1) / 0, P(INT32_MIN, INT32_MIN)); // no 32-bit result, no crash
    const std::pair<double, long> rounded[] = {
        {0.5, 1},  {-0.5, -1},    {2.5, 3},          {-2.5, -3},       {0.49, 0},
        {-0.0, 0}, {-1.4999, -1}, {1e12, INT32_MIN}, {NAN, INT32_MIN}, {1066799999.5, 1066800000}};
    P q;
    for (auto [in, out] : rounded) // by assignment and by conversion
        EXPECT_EQ(P((q = SYS_DoublePoint(in, 0)).x, P(SYS_DoublePoint(0, in)).y), P(out, out))
            << in;
    EXPECT_EQ(P(INT32_MAX, INT32_MIN) + 1, P(INT32_MIN, INT32_MIN + 1));
    EXPECT_EQ(P(INT32_MIN, 0) - P(1, 1), P(INT32_MAX, -1));
    EXPECT_EQ(P(65536, 3) * 65536, P(0, 196608));
    EXPECT_EQ(P(0x100000005L, -0x100000001L), P(5, -1)); // a long keeps its low 32 bits
    EXPECT_EQ(P(INT32_MIN, 1).MLength(), INT32_MIN + 1);
    EXPECT_EQ(P(1, 1).MDistance(P(-2, 5)), 7);
}

TEST(SysPoint, LengthsAndAngles) {
    EXPECT_EQ(P(3, 3).Length(), 3 * 1.4142135623730951);
    EXPECT_EQ(P(0, -5).Length(), 5.0);
    EXPECT_EQ(P(3, -4).Length(), 5.0);
    EXPECT_EQ(P(3, 4).GetPolarRadius(), 5.0);
    EXPECT_EQ(P(65536, 0).ScalarProduct(P(65536, 0)), 4294967296.0); // in double
    EXPECT_EQ(P(2, 3).VectorProduct(P(4, -5)), -22.0);
    EXPECT_EQ(P(0, 0).Median(P(1, -1)), P(1, -1));
    EXPECT_EQ(P(0, 0).Median(P(-3, 3)), P(-2, 2));
    const std::pair<P, long> polar[] = {{P(0, -1), 486000000},  {P(-1, 0), 324000000},
                                        {P(0, 0), 0},           {P(0, 5), 162000000},
                                        {P(-7, -7), 405000000}, {P(1000000, -1), 648000000 - 103}};
    for (auto [p, angle] : polar) EXPECT_EQ(p.GetPolarAngle(), angle) << testing::PrintToString(p);
    EXPECT_EQ(SYS_DoublePoint(-1, -0.0).GetPolarAngle(), 324000000);
    EXPECT_TRUE(P(1, 9) < P(2, 0) && !(P(1, 1) > P(1, 1)));
    EXPECT_NE(SYS_DoublePoint(0.1 + 0.2, 0), SYS_DoublePoint(0.3, 0)); // exact
    EXPECT_TRUE(SYS_DoublePoint(1066799999.9, -1066799999.9).IsValid());
    EXPECT_FALSE(SYS_DoublePoint(1066800000.0, 0).IsValid());
}

TEST(SysLocation, OrientationAndMirror) {
    using L = SYS_Location;
    EXPECT_EQ(L(0, 0, 700000000).orientation, 52000000);
    EXPECT_EQ(L(0, 0, -700000000).orientation, -52000000);
    EXPECT_EQ(After(L(P(1, 2), 600000000), [](L& l) { l += L(10, 20, 100000000); }),
              L(11, 22, 52000000));
    EXPECT_EQ(After(L(), [](L& l) { l.SetOrientation(-1300000000); }).orientation, -4000000);
    L l;
    l.orientation = 648000000;
    EXPECT_FALSE(l.IsValid());
    EXPECT_EQ(SYS_Position(l, 0).orientation, 0); // reduced on the way in
    SYS_Position p(1, 2, 3, 7);
    EXPECT_EQ(p.mirror, 1);
    EXPECT_EQ(p + p, SYS_Position(2, 4, 6, 0)); // mirrored twice: not mirrored
    EXPECT_EQ((SYS_Position() + p).mirror + (p + SYS_Position()).mirror, 2);
    p.mirror = 2;
    EXPECT_FALSE(p.IsValid());
}

TEST(SysBox, ShapeAndGrowth) {
    EXPECT_EQ(B(P(10, 20), 5), B(10, 20, 15, 25));
    EXPECT_EQ(B(P(10, 20), -5), B(5, 15, 10, 20));
    EXPECT_EQ(B(P(10, 20), 0xFFFFFFFFL), B(9, 19, 10, 20)); // the size's low 32 bits are -1
    EXPECT_TRUE(B(5, 1, 5, 9).IsEmpty());
    EXPECT_FALSE(B(9, 1, 1, 9).IsEmpty() || B(9, 1, 1, 9).IsValid()); // inverted, not empty
    const B b(1, 2, 7, 12);
    EXPECT_TRUE(b.IsInclude(P(1, 12)) && b.IsInclude(P(7, 2)) && !b.IsInclude(P(8, 2)));
    EXPECT_EQ(B(-3, -3, 0, 0).GetCenter(), P(-1, -1));
    EXPECT_EQ(B(2147483647, 0, 1, 0).GetCenter(), P(-1073741824, 0)); // 32-bit sum
    EXPECT_EQ(After(B(0, 0, 5, 3), [](B& c) { c.SetCenter(P(0, 0)); }), B(-2, -1, 3, 2));
    EXPECT_EQ(After(B(-2, -1, 3, 2), [](B& c) { c.Increase(-4, 9); }), B(-4, -1, 3, 9));
    // Shrinks through itself, then normalised.
    EXPECT_EQ(After(B(-4, -1, 3, 9), [](B& c) { c.Expand(-10); }), B(-7, -1, 6, 9));

    auto combined = [](B acc, const B& other) { return acc.Combine(other), acc; };
    EXPECT_EQ(B::Null(), B(1066800000, 1066800000, -1066800000, -1066800000));
    EXPECT_EQ(combined(B::Null(), B(1, 2, 3, 4)), B(1, 2, 3, 4));
    EXPECT_EQ(combined(B(1, 2, 3, 4), B()), B(0, 0, 3, 4)); // the empty box is not skipped
    // Only beyond the limit does min/max differ from the null box rules.
    EXPECT_EQ(combined(B::Null(), B(2000000000, 0, 0, 0)), B(2000000000, 0, 0, 0));
    EXPECT_EQ(combined(B(2000000000, 0, 0, 0), B::Null()), B(2000000000, 0, 0, 0));
    const B almost(1066800000, 1066800000, -1066800000, -1066799999); // not the null box
    EXPECT_EQ(combined(almost, B(2000000000, 0, 0, 0)), B(1066800000, 0, 0, 0));

    auto cut = [](const B& other) {
        B r;
        return std::make_pair(r.SetAsIntersection(B(0, 0, 10, 10), other), r);
    };
    EXPECT_EQ(cut(B(10, 0, 20, 10)), std::make_pair(0, B(10, 0, 10, 10)));
    EXPECT_EQ(cut(B(5, 10, 20, 30)), std::make_pair(0, B(5, 10, 10, 10)));
    EXPECT_EQ(cut(B(30, 30, 40, 40)), std::make_pair(0, B(10, 30, 10, 10))); // y as computed
    EXPECT_EQ(cut(B(-5, 3, 4, 20)), std::make_pair(1, B(0, 3, 4, 10)));
}

TEST(SysBox, Clip) {
    const struct {
        B self, other;
        std::vector<B> pieces;
    } cases[] = {
        {B(0, 0, 10, 10), B(2, 2, 8, 8), {}},
        {B(0, 0, 10, 10), B(20, -5, 30, 5), {B(20, -5, 30, 5)}},
        {B(0, 0, 10, 10),
         B(-10, -10, 20, 20),
         {B(-10, -10, 0, 20), B(0, -10, 10, 0), B(0, 10, 10, 20), B(10, -10, 20, 20)}},
        {B(0, 0, 10, 10), B(5, 20, 15, 30), {B(5, 20, 10, 30), B(10, 20, 15, 30)}},
        {B(10, 10, 0, 0), B(20, 10, -10, 5), {B(-10, 5, 0, 10), B(10, 5, 20, 10)}}, // inverted
        {B(0, 0, 10, 10), B(-5, 3, 20, 3), {}},                                     // flat
        {B(5, 0, 5, 10), B(0, 0, 10, 10), {B(0, 0, 5, 10), B(5, 0, 10, 10)}},       // flat self
    };
    for (const auto& c : cases) {
        B out[4];
        const int n = c.self.Clip(c.other, out);
        EXPECT_EQ(std::vector<B>(out, out + n), c.pieces) << testing::PrintToString(c.other);
        EXPECT_EQ(c.self.Clip(c.other, nullptr), n); // counted only
    }
}
