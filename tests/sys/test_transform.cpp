// SYS_Transform: setters, composition, inversion, conversions and the images
// of the geometry values.
#include <keel/SYS_Transform.h>
#include "tests/sys/geom_print.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <tuple>
#include <vector>

namespace {

const double kPi = 3.141592653589793;
const P kO(0, 0);
const SYS_Position kAt(100, 200, 162000000, 1); // a quarter turn, mirrored

// A transform made by one setter, e.g. MADE(SetRotate, kO, 162000000).  It
// starts from junk in every field but angleOffset (which the angle-given
// SetRotate and SetMirror keep), so a setter that leaves a field stale shows.
const SYS_Transform kJunk = After(SYS_Transform(), [](SYS_Transform& t) {
    t.a = t.b = t.c = t.d = t.e = t.f = t.angleFactor = t.sweepFactor = t.sweepOffset = t.scale = 7;
    t.rotation = t.sweepShift = 7;
});
#define MADE(setter, ...) ([&](SYS_Transform t_) { return t_.setter(__VA_ARGS__), t_; }(kJunk))

} // namespace

TEST(SysTransform, PointImages) {
    const SYS_Transform move = MADE(SetMove, 10, 0), turn = MADE(SetRotate, kO, 162000000);
    const std::tuple<SYS_Transform, P, P> cases[] = {
        {turn, P(1000, 0), P(0, 1000)},
        {MADE(SetRotate, P(10, 10), 324000000), P(11, 10), P(9, 10)},
        {MADE(SetRotate, kO, 3.0, 4.0), P(1000, 0), P(600, 800)},
        {MADE(SetRotate, kO, 1e-5, 1e-5), P(1000, 0), P(1000, 0)}, // too short: no rotation
        {MADE(SetMirror, kO, 0L), P(3, 4), P(3, -4)},
        {MADE(SetMirror, P(10, 0), 81000000), P(13, 4), P(14, 3)}, // the diagonal through (10, 0)
        {MADE(SetMirror, kO, 0.0, 2.0), P(3, 4), P(-3, 4)},        // normalised to (0, 1)
        {MADE(SetMirror, kO, 1.0, 1.0), P(3, 4), P(3, -4)},        // shorter than 2: (1, 0)
        {MADE(SetMirror, kO, 0.6, 0.8), P(1000, 0), P(-280, 960)}, // a unit vector as given
        {MADE(SetScale, P(10, 10), 2), P(11, 10), P(12, 10)},
        {MADE(SetScale, kO, -0.5), P(-5, 3), P(3, -2)}, // 2.5 and -1.5
        {MADE(SetMove, 0.5, -0.5), P(0, 0), P(1, -1)},
        {MADE(SetMove, 0.5, -0.5), P(-1, 1), P(-1, 1)},             // -0.5 and 0.5
        {MADE(SetMove, 2147483647L, 0L), P(1, 0), P(INT32_MIN, 0)}, // no 32-bit image
        {MADE(SetCoordSys, P(100, 0), 162000000), P(100, 10), P(10, 0)},
        {MADE(SetCoordSys, kO, 0.0, 1.0), P(5, 7), P(-5, -7)}, // taken as the direction (-1, -0)
        {MADE(SetBoxConv, kO, P(100, 50), B(0, 0, 1000, 1000)), kO, P(0, 250)},
        {MADE(SetBoxConv, kO, P(100, 50), B(0, 0, 1000, 1000)), P(100, 50), P(1000, 750)},
        // The midpoint (0.5, 0.5) is truncated.
        {MADE(SetBoxConv, P(-1, -1), P(2, 2), B(0, 0, 30, 30)), P(-1, -1), P(5, 5)},
        // Placements at kAt, mirrored before or after the turn, moving in
        // and out or not.
        {SYS_Transform(kAt, 1, 0, 0), P(110, 200), P(100, 190)},
        {SYS_Transform(100, 200, 162000000, 1, 0, 0, 0), P(110, 200), P(100, 210)},
        {SYS_Transform(P(100, 200), 162000000, 1, 1, 1, 0), P(10, 0), P(100, 190)},
        {SYS_Transform(P(100, 200), 162000000, 1, 1, 0, 1), P(110, 200), P(0, -10)},
        {move + turn, kO, P(0, 10)},
        {turn + move, kO, P(10, 0)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(std::get<0>(c) + std::get<1>(c), std::get<2>(c)) << "case " << &c - cases;
    EXPECT_TRUE(SYS_Transform(SYS_Position(5, 5, 0, 0), 0, 0, 0) == SYS_Transform());
    SYS_Transform twice = move;
    twice.AddConv(twice); // with itself
    EXPECT_EQ(twice + kO, P(20, 0));
}

TEST(SysTransform, BatchImagesEqualSingleImages) {
    const SYS_Transform t = SYS_Transform(kAt, 1, 0, 0) + MADE(SetScale, P(3, -7), 0.7) +
                            MADE(SetMove, 0.5, -0.25) + MADE(SetRotate, P(5, 5), 12345678);
    const P points[] = {kO, P(1, 0), P(-3, 4), P(110, 200), P(-12345, 9876), P(200000, -150000)};
    P batch[std::size(points)];
    std::copy(std::begin(points), std::end(points), batch);
    t.Transform(batch, static_cast<int>(std::size(batch)));
    for (size_t i = 0; i < std::size(points); ++i) EXPECT_EQ(batch[i], t + points[i]) << i;

    std::copy(std::begin(points), std::end(points), batch);
    t.Transform(batch, 0), t.Transform(batch, -1), t.Transform(nullptr, 3);
    EXPECT_TRUE(std::equal(std::begin(points), std::end(points), batch));
}

TEST(SysTransform, AnglesLengthsAndDirectionThresholds) {
    const SYS_Transform turn = MADE(SetRotate, kO, 162000000), mirror = MADE(SetMirror, kO, 0L);
    EXPECT_EQ(turn.CalcAngle(), turn.GetOrientation());
    EXPECT_EQ(MADE(SetRotate, kO, -162000000).CalcAngle(), 486000000);
    EXPECT_TRUE(mirror.GetMirror() && mirror.IsRotate());
    EXPECT_EQ(MADE(SetMirror, P(10, 0), 81000000).GetOrientation(), 162000000);
    EXPECT_EQ(MADE(SetScale, kO, -0.5).GetOrientation(), 324000000);
    EXPECT_EQ(SYS_Transform(kAt, 1, 0, 0).GetOrientation(), 486000000); // 324e6 + 162e6
    EXPECT_EQ(SYS_Transform(kAt, 0, 0, 0).GetOrientation(), 162000000); // -162e6 + 324e6
    // Lengths: v * scale and v / scale, rounded to nearest, halves away from zero.
    const struct {
        double scale;
        long v, times, divided;
    } lengths[] = {
        {2, 5, 10, 3},      // 2.5
        {1.5, 3, 5, 2},     // 4.5
        {1.5, -3, -5, -2},  // -4.5
        {0.3, 7, 2, 23},    // 2.1, 23.3
        {0.3, 9, 3, 30},    // 2.7
        {0.3, -7, -2, -23}, // -2.1, -23.3
        {0.3, -9, -3, -30}, // -2.7
        {4, -10, -40, -3},  // -2.5
        {3, -8, -24, -3},   // -2.67
        {0.7, 1, 1, 1},     // 0.7, 1.43
    };
    for (const auto& l : lengths) {
        const SYS_Transform t = MADE(SetScale, P(10, 10), l.scale);
        const long converted = After(l.v, [&](long& v) { t.Convert(v); });
        EXPECT_EQ((std::vector<long>{converted, t + l.v, t - l.v}),
                  (std::vector<long>{l.times, l.times, l.divided}))
            << l.scale << " " << l.v;
    }

    // A rotation normalises any vector but a tiny one; a mirror takes only
    // unit vectors and those of length 2 or more.
    const SYS_Transform r = MADE(SetRotate, kO, 0.0, 0.5);
    EXPECT_TRUE(r == MADE(SetRotate, kO, 0.0, 1.0) && r.GetOrientation() == 162000000);
    EXPECT_DOUBLE_EQ(r.angleOffset, kPi / 2); // radians
    EXPECT_TRUE(MADE(SetMirror, kO, 0.0, 0.5) == MADE(SetMirror, kO, 1.0, 0.0));

    EXPECT_EQ(MADE(SetMove, 0.5, -0.5).Transform(SYS_DoublePoint(0, 0)),
              SYS_DoublePoint(0.5, -0.5));
    SYS_Transform t = MADE(SetRotate, kO, 0.0, 1.0);
    t.SetRotate(kO, 81000000L);
    t.SetMirror(kO, 0L);
    EXPECT_DOUBLE_EQ(t.angleOffset, kPi / 2); // kept by the angle setters
    t.SetScale(kO, 3);
    EXPECT_EQ(t.angleOffset, 0.0);

    const SYS_Transform c = MADE(SetRotate, kO, 0.0, 1.0) + MADE(SetMirror, kO, 0.0, 1.0);
    EXPECT_EQ(std::make_pair(c.rotation, c.angleFactor),
              std::make_pair(-162000000 + 324000000, -1.0));
    EXPECT_DOUBLE_EQ(c.angleOffset, -kPi / 2 + kPi);
}

// The random placements of the property tests cover AddConv with SetRConv;
// these cover the other ways to the inverse.
TEST(SysTransform, Inverses) {
    SYS_Transform pieces[3] = {MADE(SetRotate, P(123, -45), 99999999),
                               MADE(SetMirror, P(-7, 30), 0.6, -0.8),
                               MADE(SetCoordSys, P(777, 888), 1000000L)};
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

    SYS_Transform inv;
    ASSERT_EQ(MADE(SetMirror, kO, 0.0, 1.0).SetRConv(inv), 1);
    EXPECT_EQ(std::make_tuple(inv.angleFactor, inv.angleOffset, inv.rotation),
              std::make_tuple(-1.0, -kPi, -324000000));

    SYS_Transform flat = MADE(SetScale, kO, 0);
    inv.SetMove(5L, 5L);
    EXPECT_EQ(flat.SetRConv(inv) + flat.Invert(), 0);
    EXPECT_TRUE(inv == SYS_Transform() && flat.a == 0.0); // singular: out left at the identity

    SYS_Transform t = MADE(SetRotate, kO, 1000);
    t.scale = 0;
    EXPECT_EQ(t.SetRConv(inv), 0);
    // The source's scale is repaired; the rotation was written before the failure.
    EXPECT_EQ(std::make_tuple(t.scale, inv.scale, inv.rotation), std::make_tuple(1.0, 1.0, -1000));
    t.scale = 0;
    t.RConv();
    EXPECT_EQ(t.rotation, -1000); // the partial inverse is taken

    SYS_Transform s = MADE(SetScale, kO, 4) + MADE(SetMirror, kO, 0.0, 1.0);
    ASSERT_EQ(s.Invert(), 1);
    EXPECT_TRUE(s.angleFactor == 1 && s.rotation == 0 && s.sweepFactor == 1 && s.scale == 0.25);
    EXPECT_EQ(s + P(-40, 8), P(10, 2));
}

TEST(SysTransform, ConvertAngleAndSweep) {
    SYS_Transform half;
    half.sweepFactor = 0.5;
    const std::tuple<SYS_Transform, long, long, long, long> cases[] = {
        {SYS_Transform(), -1, -700000000, 647999999, 648000000}, // beyond a turn: +turn
        {SYS_Transform(), 648000000, -648000000, 648000000, -648000000},
        {SYS_Transform(), 1400000000, 0, 104000000, 0},
        {MADE(SetRotate, kO, 162000000), 600000000, 1000, 114000000, 1000},
        // A mirror adds its offset in radians: -100 + 3.14 rounded, + turn.
        {MADE(SetMirror, kO, 0.0, 1.0), 100, 1000, 648000000 - 97, -1000},
        {half, 0, 3, 0, 1}, // truncated
        {half, 0, -3, 0, -1},
    };
    for (auto [t, angle, sweep, angleOut, sweepOut] : cases) {
        const long in[2] = {angle, sweep};
        t.Convert(angle, sweep);
        EXPECT_EQ(std::make_pair(angle, sweep), std::make_pair(angleOut, sweepOut))
            << in[0] << ", " << in[1];
    }
}

TEST(SysTransform, ImagesOfLocationsAndBoxes) {
    auto image = [](auto value, const SYS_Transform& t) { return value.Transform(t), value; };
    const SYS_Transform mirror = MADE(SetMirror, kO, 0L); // y -> -y, rotation 0
    EXPECT_EQ(image(SYS_Location(10, 0, 600000000), MADE(SetRotate, kO, 162000000)),
              SYS_Location(0, 10, 114000000));
    // Reflected orientations; only a negative result is brought back.
    for (auto [in, out] : {std::pair{100000000L, 224000000L},
                           {400000000L, 572000000L},
                           {-100000000L, 424000000L},
                           {-500000000L, 824000000L}})
        EXPECT_EQ(image(SYS_Location(3, 4, in), mirror).orientation, out) << in;
    EXPECT_EQ(image(SYS_Position(1, 2, 0, 1), mirror), SYS_Position(1, -2, 324000000, 0));

    // The image (0, 0) of the first corner is left out.
    EXPECT_EQ(image(B(0, 0, 10, 10), MADE(SetRotate, kO, 81000000)), B(-7, 7, 7, 14));
    EXPECT_EQ(image(B(0, 0, 10, 20), MADE(SetRotate, kO, 162000000)), B(-20, 0, 0, 10));
    // Bounded by the starting minimum.
    EXPECT_EQ(image(B(10, 0, 20, 5), MADE(SetMove, 1066800000L, 0L)),
              B(1066800000, 0, 1066800020, 5));
}
