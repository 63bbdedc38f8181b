// Points, locations, positions and boxes: exact integer results.
#include "SYS_Geom.h"
#include "tests/sys/geom_print.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

using P = SYS_Point;
using B = SYS_Box;

TEST(SysPoint, RoundingTruncationAndWrap) {
    EXPECT_EQ(P(5, -5) * 0.5, P(2, -2)); // truncated
    EXPECT_EQ(P(5, -5) / 2, P(3, -3));   // rounded half away from zero
    P s(5, -5);
    s.Scale(0.5);
    EXPECT_EQ(s, P(3, -3));
    EXPECT_EQ(P(-9, 9) * 0.99, P(-8, 8));
    EXPECT_EQ(P(1, -1) / 0, P(INT32_MIN, INT32_MIN)); // no 32-bit result, no crash
    const struct {
        double in;
        long out;
    } rounded[] = {{0.5, 1},          {-0.5, -1},      {2.5, 3},  {-2.5, -3},
                   {0.49, 0},         {-1.4999, -1},   {-0.0, 0}, {1066799999.5, 1066800000},
                   {1e12, INT32_MIN}, {NAN, INT32_MIN}};
    for (const auto& c : rounded) {
        P p;
        p = SYS_DoublePoint(c.in, 0);
        EXPECT_EQ(p.x, c.out) << c.in;
        EXPECT_EQ(P(SYS_DoublePoint(0, c.in)).y, c.out) << c.in;
    }
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
    const struct {
        P p;
        long angle;
    } polar[] = {{P(0, -1), 486000000}, {P(-1, 0), 324000000},  {P(0, 0), 0},
                 {P(0, 5), 162000000},  {P(-7, -7), 405000000}, {P(1000000, -1), 648000000 - 103}};
    for (const auto& c : polar) EXPECT_EQ(c.p.GetPolarAngle(), c.angle) << c.p.x << "," << c.p.y;
    EXPECT_EQ(SYS_DoublePoint(-1, -0.0).GetPolarAngle(), 324000000);

    EXPECT_TRUE(P(1, 9) < P(2, 0));
    EXPECT_FALSE(P(1, 1) > P(1, 1));
    EXPECT_NE(SYS_DoublePoint(0.1 + 0.2, 0), SYS_DoublePoint(0.3, 0)); // exact
    EXPECT_TRUE(SYS_DoublePoint(1066799999.9, -1066799999.9).IsValid());
    EXPECT_FALSE(SYS_DoublePoint(1066800000.0, 0).IsValid());
}

TEST(SysLocation, OrientationAndMirror) {
    EXPECT_EQ(SYS_Location(0, 0, 700000000).orientation, 52000000);
    EXPECT_EQ(SYS_Location(0, 0, -700000000).orientation, -52000000);
    SYS_Location l(P(1, 2), 600000000);
    l += SYS_Location(10, 20, 100000000);
    EXPECT_EQ(l, SYS_Location(11, 22, 52000000));
    l.SetOrientation(-1300000000);
    EXPECT_EQ(l.orientation, -4000000);
    l.orientation = 648000000;
    EXPECT_FALSE(l.IsValid());
    EXPECT_EQ(SYS_Position(l, 0).orientation, 0); // reduced on the way in

    SYS_Position p(1, 2, 3, 7);
    EXPECT_EQ(p.mirror, 1);
    EXPECT_EQ(p + p, SYS_Position(2, 4, 6, 0)); // mirrored twice: not mirrored
    EXPECT_EQ((SYS_Position() + p).mirror, 1);
    EXPECT_EQ((p + SYS_Position()).mirror, 1);
    p.mirror = 2;
    EXPECT_FALSE(p.IsValid());
}

TEST(SysBox, CornersCenterAndGrowth) {
    EXPECT_EQ(B(P(10, 20), 5), B(10, 20, 15, 25));
    EXPECT_EQ(B(P(10, 20), -5), B(5, 15, 10, 20));
    EXPECT_TRUE(B(5, 1, 5, 9).IsEmpty());
    EXPECT_FALSE(B(9, 1, 1, 9).IsEmpty()); // inverted but not empty
    EXPECT_FALSE(B(9, 1, 1, 9).IsValid());
    const B b(1, 2, 7, 12);
    EXPECT_TRUE(b.IsInclude(P(1, 12)) && b.IsInclude(P(7, 2)));
    EXPECT_FALSE(b.IsInclude(P(8, 2)));
    EXPECT_EQ(b.GetWidth(), 6);

    EXPECT_EQ(B(-3, -3, 0, 0).GetCenter(), P(-1, -1));
    EXPECT_EQ(B(2147483647, 0, 1, 0).GetCenter(), P(-1073741824, 0)); // 32-bit sum
    B c(0, 0, 5, 3);
    c.SetCenter(P(0, 0));
    EXPECT_EQ(c, B(-2, -1, 3, 2));
    c.Increase(-4, 9);
    EXPECT_EQ(c, B(-4, -1, 3, 9));
    c.Expand(-10); // shrinks through itself, then normalised
    EXPECT_EQ(c, B(-7, -1, 6, 9));
}

TEST(SysBox, CombineAndIntersection) {
    B acc = B::Null();
    EXPECT_EQ(acc, B(1066800000, 1066800000, -1066800000, -1066800000));
    acc.Combine(B(1, 2, 3, 4));
    EXPECT_EQ(acc, B(1, 2, 3, 4));
    acc.Combine(B::Null());
    EXPECT_EQ(acc, B(1, 2, 3, 4));
    acc.Combine(B()); // the empty box is not skipped
    EXPECT_EQ(acc, B(0, 0, 3, 4));
    B almost(1066800000, 1066800000, -1066800000, -1066799999); // not the null box
    almost.Combine(B(0, 0, 1, 1));
    EXPECT_EQ(almost, B(0, 0, 1, 1));

    B r;
    EXPECT_EQ(r.SetAsIntersection(B(0, 0, 10, 10), B(10, 0, 20, 10)), 0);
    EXPECT_EQ(r, B(10, 0, 10, 10));
    EXPECT_EQ(r.SetAsIntersection(B(0, 0, 10, 10), B(5, 10, 20, 30)), 0);
    EXPECT_EQ(r, B(5, 10, 10, 10));
    EXPECT_EQ(r.SetAsIntersection(B(0, 0, 10, 10), B(30, 30, 40, 40)), 0);
    EXPECT_EQ(r, B(10, 30, 10, 10)); // x failed first, y left as computed
    EXPECT_EQ(r.SetAsIntersection(B(0, 0, 10, 10), B(-5, 3, 4, 20)), 1);
    EXPECT_EQ(r, B(0, 3, 4, 10));
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
        // Disjoint in y only: one piece per column.
        {B(0, 0, 10, 10), B(5, 20, 15, 30), {B(5, 20, 10, 30), B(10, 20, 15, 30)}},
        // Inverted boxes count as their normalised ranges.
        {B(10, 10, 0, 0), B(20, 10, -10, 5), {B(-10, 5, 0, 10), B(10, 5, 20, 10)}},
        // A flat box has nothing left; a flat self box still splits columns.
        {B(0, 0, 10, 10), B(-5, 3, 20, 3), {}},
        {B(5, 0, 5, 10), B(0, 0, 10, 10), {B(0, 0, 5, 10), B(5, 0, 10, 10)}},
    };
    for (const auto& c : cases) {
        B out[4];
        const int n = c.self.Clip(c.other, out);
        EXPECT_EQ(std::vector<B>(out, out + n), c.pieces) << testing::PrintToString(c.other);
        EXPECT_EQ(c.self.Clip(c.other, nullptr), n); // counted only
    }
}
