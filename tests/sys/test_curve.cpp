// Segments, circles and arcs: sweeps, lengths, extremes and boxes.
#include <keel/SYS_Curve.h>
#include <keel/SYS_Transform.h>
#include "tests/sys/geom_print.h"

#include <gtest/gtest.h>

#include <tuple>

const double kPi = 3.141592653589793;

TEST(SysCurve, SegmentAndCircle) {
    const SYS_Segment s(10, 20, 7, 16);
    EXPECT_EQ(s.GetBox(), B(7, 16, 10, 20)); // normalised
    EXPECT_EQ(s.GetLength(), 5.0);
    EXPECT_EQ(s + 1L, SYS_Segment(11, 21, 8, 17));
    EXPECT_EQ(SYS_Segment(INT32_MIN, 0, INT32_MAX, 0).GetDX(), -1); // 32-bit wrap
    EXPECT_EQ(SYS_Circle(5, -5, 10).GetBox(), B(-5, -15, 15, 5));
    EXPECT_FALSE(SYS_Circle(0, 0, 1066800000).IsValid());
    // The radius must lie inside the limit; the center is not tested.
    EXPECT_TRUE(SYS_Circle(0, 0, -1066799999).IsValid() && SYS_Circle(2000000000, 0, 1).IsValid());
}

TEST(SysArc, SweepsAndLengths) {
    SYS_Arc a(P(10, 0), P(-10, 0), P(0, 0), 10);
    EXPECT_EQ(std::make_tuple(a.GetStartAngle(), a.GetEndAngle(), a.GetSizeAngle()),
              std::make_tuple(0L, 324000000L, 324000000L));
    EXPECT_EQ(a.GetBox(), B(-10, 0, 10, 10));
    EXPECT_DOUBLE_EQ(a.GetLength(), 10 * kPi);
    a.radius = -10;
    EXPECT_EQ(a.GetSizeAngle(), -324000000);
    EXPECT_EQ(a.GetBox(), B(-10, -10, 10, 0));
    EXPECT_DOUBLE_EQ(a.GetLength(), 10 * kPi);
    // (start, end, radius) -> sweep; a zero radius keeps the plain difference.
    const std::tuple<P, P, long, long> sweeps[] = {
        {P(0, 10), P(10, 0), -10, -162000000}, {P(0, 10), P(10, 0), 10, 486000000},
        {P(0, 10), P(10, 0), 0, -162000000},   {P(10, 0), P(0, 10), -10, -486000000},
        {P(10, 0), P(10, 0), 10, 0},           {P(10, 0), P(10, 0), -10, 0}};
    for (auto [s, e, r, sweep] : sweeps) {
        const SYS_Arc arc(s, e, P(0, 0), r);
        EXPECT_EQ(arc.GetSizeAngle(), sweep) << r;
        EXPECT_TRUE(!r || arc.GetLength() >= 0.0) << r;
    }
    EXPECT_EQ(SYS_Arc(P(3, 0), P(3, 0), P(0, 0), 3).GetLength(), 0.0);
}

TEST(SysArc, ValidityAndNearestExtremes) {
    EXPECT_TRUE(SYS_Arc(P(10, 0), P(10, 1), P(0, 0), 10).IsValidArc()); // 101 against 100
    EXPECT_FALSE(SYS_Arc(P(10, 0), P(7, 7), P(0, 0), 10).IsValidArc()); // 98 against 100
    EXPECT_FALSE(SYS_Arc(P(1006, 1003), P(1000, 990), P(1000, 1000), -10).IsValidArc()); // 45
    EXPECT_TRUE(SYS_Arc(P(1006, 992), P(1000, 990), P(1000, 1000), -10).IsValidArc());

    SYS_Arc b(P(10, 0), P(6, -8), P(0, 0), 10); // 307 degrees counter-clockwise
    P out(99, 99);
    EXPECT_EQ(b.GetXNearestExtrem(P(-10, 0), &out), 0); // the end comes before the right side
    EXPECT_EQ(out, P(0, 0));
    EXPECT_EQ(b.GetYNearestExtrem(P(0, 10), &out), -1);
    EXPECT_EQ(out, P(0, -10));
    b.SetEnd(0, -10); // an extreme that is the end point itself is not reported
    EXPECT_EQ(b.GetYNearestExtrem(P(0, 10), &out), 0);
}

TEST(SysArc, ImagesKeepTheRadius) {
    SYS_Transform doubling, mirror;
    doubling.SetScale(P(0, 0), 2);
    mirror.SetMirror(P(0, 0), 0L); // y -> -y
    EXPECT_EQ(After(SYS_Circle(10, -20, 5), [&](auto& c) { c.Transform(doubling); }),
              SYS_Circle(20, -40, 5));
    const SYS_Arc a =
        After(SYS_Arc(P(10, 0), P(0, 10), P(0, 0), 10), [&](auto& v) { v.Transform(mirror); });
    EXPECT_EQ(a, SYS_Arc(P(10, 0), P(0, -10), P(0, 0), 10));
    EXPECT_EQ(a.GetSizeAngle(), 486000000); // the direction is not reversed
}
