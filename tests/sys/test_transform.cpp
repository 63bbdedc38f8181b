// SYS_Transform: setters, composition, inversion, conversions and the images
// of the geometry values.
#include "SYS_Transform.h"
#include "tests/sys/geom_print.h"

#include <gtest/gtest.h>

using P = SYS_Point;

namespace {

const double kPi = 3.141592653589793;
const P kO(0, 0);

SYS_Transform Rotation(const P& c, long angle) {
    SYS_Transform t;
    t.SetRotate(c, angle);
    return t;
}

SYS_Transform Mirror(const P& c, double cosPart, double sinPart) {
    SYS_Transform t;
    t.SetMirror(c, cosPart, sinPart);
    return t;
}

} // namespace

TEST(SysTransform, RotateMirrorScale) {
    SYS_Transform t = Rotation(kO, 162000000);
    EXPECT_EQ(t + P(1000, 0), P(0, 1000));
    EXPECT_EQ(t.CalcAngle(), t.GetOrientation());
    EXPECT_EQ(Rotation(P(10, 10), 324000000) + P(11, 10), P(9, 10));
    EXPECT_EQ(Rotation(kO, -162000000).CalcAngle(), 486000000);

    t.SetMirror(kO, 0L);
    EXPECT_EQ(t + P(3, 4), P(3, -4));
    EXPECT_TRUE(t.GetMirror() && t.IsRotate());
    t.SetMirror(P(10, 0), 81000000); // the diagonal through (10, 0)
    EXPECT_EQ(t + P(13, 4), P(14, 3));
    EXPECT_EQ(t.GetOrientation(), 162000000);

    t.SetScale(P(10, 10), 2);
    EXPECT_EQ(t + P(11, 10), P(12, 10));
    long v = 5;
    t.Convert(v);
    EXPECT_EQ(v, 10);
    EXPECT_EQ(t - 5L, 3); // 2.5 away from zero
    t.SetScale(kO, -0.5);
    EXPECT_EQ(t.GetOrientation(), 324000000);
    EXPECT_EQ(t + P(-5, 3), P(3, -2)); // 2.5 and -1.5
}

TEST(SysTransform, DirectionVectorThresholds) {
    SYS_Transform r, q;
    r.SetRotate(kO, 0.0, 0.5); // normalised to (0, 1)
    q.SetRotate(kO, 0.0, 1.0);
    EXPECT_TRUE(r == q);
    EXPECT_EQ(r.GetOrientation(), 162000000);
    EXPECT_DOUBLE_EQ(r.angleOffset, kPi / 2); // radians
    r.SetRotate(kO, 3.0, 4.0);
    EXPECT_EQ(r + P(1000, 0), P(600, 800));
    r.SetRotate(kO, 1e-5, 1e-5); // too short: no rotation
    EXPECT_EQ(r + P(1000, 0), P(1000, 0));

    EXPECT_TRUE(Mirror(kO, 0.0, 0.5) == Mirror(kO, 1.0, 0.0));  // under 2: taken as (1, 0)
    EXPECT_EQ(Mirror(kO, 0.0, 2.0) + P(3, 4), P(-3, 4));        // normalised to (0, 1)
    EXPECT_EQ(Mirror(kO, 0.6, 0.8) + P(1000, 0), P(-280, 960)); // a unit vector as given
}

TEST(SysTransform, RoundingAndKeptOffset) {
    SYS_Transform t;
    t.SetMove(0.5, -0.5);
    EXPECT_EQ(t + P(0, 0), P(1, -1));
    EXPECT_EQ(t + P(-1, 1), P(-1, 1)); // -0.5 and 0.5
    EXPECT_EQ(t.Transform(SYS_DoublePoint(0, 0)), SYS_DoublePoint(0.5, -0.5));
    t.SetMove(2147483647L, 0L);
    EXPECT_EQ(t + P(1, 0), P(INT32_MIN, 0)); // no 32-bit image

    t.SetRotate(kO, 0.0, 1.0);
    t.SetRotate(kO, 81000000L);
    t.SetMirror(kO, 0L);
    EXPECT_DOUBLE_EQ(t.angleOffset, kPi / 2); // kept by the angle setters
    t.SetScale(kO, 3);
    EXPECT_EQ(t.angleOffset, 0.0);
}

TEST(SysTransform, PlacementCoordSysBoxConv) {
    const P local(110, 200); // 10 to the right of the origin
    SYS_Transform first(SYS_Position(100, 200, 162000000, 1), 1, 0, 0);
    EXPECT_EQ(first + local, P(100, 190));
    EXPECT_EQ(first.GetOrientation(), 486000000); // 324e6 of the mirror, then 162e6
    SYS_Transform after(100, 200, 162000000, 1, 0, 0, 0);
    EXPECT_EQ(after + local, P(100, 210));
    EXPECT_EQ(after.GetOrientation(), 162000000); // -162e6 + 324e6
    EXPECT_EQ(SYS_Transform(P(100, 200), 162000000, 1, 1, 1, 0) + P(10, 0), P(100, 190));
    EXPECT_EQ(SYS_Transform(P(100, 200), 162000000, 1, 1, 0, 1) + local, P(0, -10));
    EXPECT_TRUE(SYS_Transform(SYS_Position(5, 5, 0, 0), 0, 0, 0) == SYS_Transform());

    SYS_Transform t;
    t.SetCoordSys(P(100, 0), 162000000);
    EXPECT_EQ(t + P(100, 10), P(10, 0));
    t.SetCoordSys(kO, 0.0, 1.0); // taken as the direction (-1, -0)
    EXPECT_EQ(t + P(5, 7), P(-5, -7));
    t.SetBoxConv(P(0, 0), P(100, 50), SYS_Box(0, 0, 1000, 1000));
    EXPECT_EQ(t + P(0, 0), P(0, 250));
    EXPECT_EQ(t + P(100, 50), P(1000, 750));
    t.SetBoxConv(P(-1, -1), P(2, 2), SYS_Box(0, 0, 30, 30));
    EXPECT_EQ(t + P(-1, -1), P(5, 5)); // the midpoint (0.5, 0.5) is truncated
}

TEST(SysTransform, Composition) {
    SYS_Transform move, turn = Rotation(kO, 162000000);
    move.SetMove(10L, 0L);
    EXPECT_EQ((move + turn) + P(0, 0), P(0, 10));
    EXPECT_EQ((turn + move) + P(0, 0), P(10, 0));
    move.AddConv(move); // with itself
    EXPECT_EQ(move + P(0, 0), P(20, 0));
    SYS_Transform vec;
    vec.SetRotate(kO, 0.0, 1.0);
    const SYS_Transform c = vec + Mirror(kO, 0.0, 1.0);
    EXPECT_EQ(c.rotation, -162000000 + 324000000);
    EXPECT_EQ(c.angleFactor, -1.0);
    EXPECT_DOUBLE_EQ(c.angleOffset, -kPi / 2 + kPi);
}

// The random placements of the property tests cover AddConv with SetRConv;
// these cover the other ways to the inverse.
TEST(SysTransform, InverseRoundTrips) {
    SYS_Transform pieces[3] = {Rotation(P(123, -45), 99999999), Mirror(P(-7, 30), 0.6, -0.8)};
    pieces[2].SetCoordSys(P(777, 888), 1000000L);
    for (SYS_Transform& t : pieces) {
        SYS_Transform inv, rconv(t), inverted(t);
        ASSERT_EQ(t.SetRConv(inv), 1);
        rconv.RConv();
        EXPECT_TRUE(rconv == inv);
        ASSERT_EQ(inverted.Invert(), 1);
        for (const P& p : {P(1, -1), P(1000000, -123457)}) {
            EXPECT_EQ((t - t) + p, p);
            EXPECT_LE((t - (t + p)).MDistance(p), 2);
            EXPECT_LE((inverted + (t + p)).MDistance(p), 2);
        }
    }
}

TEST(SysTransform, InverseFailuresAndParameters) {
    SYS_Transform inv;
    ASSERT_EQ(Mirror(kO, 0.0, 1.0).SetRConv(inv), 1);
    EXPECT_EQ(inv.angleFactor, -1.0);
    EXPECT_EQ(inv.angleOffset, -kPi);
    EXPECT_EQ(inv.rotation, -324000000);

    SYS_Transform flat;
    flat.SetScale(kO, 0);
    inv.SetMove(5L, 5L);
    EXPECT_EQ(flat.SetRConv(inv), 0);
    EXPECT_TRUE(inv == SYS_Transform()); // singular: out left at the identity
    EXPECT_EQ(flat.Invert(), 0);
    EXPECT_EQ(flat.a, 0.0);

    SYS_Transform t = Rotation(kO, 1000);
    t.scale = 0;
    EXPECT_EQ(t.SetRConv(inv), 0);
    EXPECT_EQ(t.scale, 1.0); // repaired in the source
    EXPECT_EQ(inv.scale, 1.0);
    EXPECT_EQ(inv.rotation, -1000); // written before the failure
    t.scale = 0;
    t.RConv();
    EXPECT_EQ(t.rotation, -1000); // the partial inverse is taken

    SYS_Transform s;
    s.SetScale(kO, 4);
    s.AddConv(Mirror(kO, 0.0, 1.0));
    ASSERT_EQ(s.Invert(), 1);
    EXPECT_TRUE(s.angleFactor == 1 && s.rotation == 0 && s.sweepFactor == 1);
    EXPECT_DOUBLE_EQ(s.scale, 0.25);
    EXPECT_EQ(s + P(-40, 8), P(10, 2));
}

TEST(SysTransform, ConvertAngleAndSweep) {
    const SYS_Transform turn = Rotation(kO, 162000000);
    SYS_Transform half;
    half.sweepFactor = 0.5;
    const struct {
        SYS_Transform t;
        long angle, sweep, angleOut, sweepOut;
    } cases[] = {
        {SYS_Transform(), -1, -700000000, 647999999, 648000000}, // beyond a turn: +turn
        {SYS_Transform(), 648000000, -648000000, 648000000, -648000000},
        {SYS_Transform(), 1400000000, 0, 104000000, 0},
        {turn, 600000000, 1000, 114000000, 1000},
        // A mirror adds its offset in radians: -100 + 3.14 rounded, + turn.
        {Mirror(kO, 0.0, 1.0), 100, 1000, 648000000 - 97, -1000},
        {half, 0, 3, 0, 1}, // truncated
        {half, 0, -3, 0, -1},
    };
    for (const auto& c : cases) {
        long angle = c.angle, sweep = c.sweep;
        c.t.Convert(angle, sweep);
        EXPECT_EQ(angle, c.angleOut) << c.angle;
        EXPECT_EQ(sweep, c.sweepOut) << c.sweep;
    }
}

TEST(SysTransform, ImagesOfLocationsAndBoxes) {
    SYS_Location l(10, 0, 600000000);
    l.Transform(Rotation(kO, 162000000));
    EXPECT_EQ(l, SYS_Location(0, 10, 114000000));
    SYS_Transform m;
    m.SetMirror(kO, 0L); // y -> -y, rotation 0
    // Reflected orientations; only a negative result is brought back.
    const long cases[][2] = {{100000000, 224000000},
                             {400000000, 572000000},
                             {-100000000, 424000000},
                             {-500000000, 824000000}};
    for (const auto& c : cases) {
        SYS_Location loc(3, 4, c[0]);
        loc.Transform(m);
        EXPECT_EQ(loc.GetOrigin(), P(3, -4));
        EXPECT_EQ(loc.orientation, c[1]) << c[0];
    }
    SYS_Position p(1, 2, 0, 1);
    p.Transform(m);
    EXPECT_EQ(p.mirror, 0);
    EXPECT_EQ(p.orientation, 324000000);

    SYS_Box b(0, 0, 10, 10);
    b.Transform(Rotation(kO, 81000000));
    EXPECT_EQ(b, SYS_Box(-7, 7, 7, 14)); // the image (0, 0) of the first corner is left out
    SYS_Box q(0, 0, 10, 20);
    q.Transform(Rotation(kO, 162000000));
    EXPECT_EQ(q, SYS_Box(-20, 0, 0, 10));
    SYS_Transform far;
    far.SetMove(1066800000L, 0L);
    SYS_Box s(10, 0, 20, 5);
    s.Transform(far);
    EXPECT_EQ(s, SYS_Box(1066800000, 0, 1066800020, 5)); // bounded by the starting minimum
}
