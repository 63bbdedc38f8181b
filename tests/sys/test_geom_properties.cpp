// Invariants of the geometry checked on many random inputs.  Each test runs
// from a fixed seed (KEEL_GEOM_SEED in the environment overrides it) and names
// the seed and the case in every failure.
#include <keel/SYS_Curve.h>
#include <keel/SYS_Transform.h>
#include "tests/sys/geom_print.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

const int kCases = 20000;

struct Random {
    const char* env = std::getenv("KEEL_GEOM_SEED");
    unsigned seed = env ? static_cast<unsigned>(std::strtoul(env, nullptr, 10)) : 20240611u;
    std::mt19937 rng{seed};
    long operator()(long lo, long hi) { return std::uniform_int_distribution<long>(lo, hi)(rng); }
    // Any box, possibly inverted or flat.
    B Box(long r) { return B((*this)(-r, r), (*this)(-r, r), (*this)(-r, r), (*this)(-r, r)); }
};

#define CASE_TRACE(rnd, i) SCOPED_TRACE(testing::Message() << "seed " << rnd.seed << " case " << i)

B Normalized(B b) { return b.Normalize(), b; }

// The area two boxes share; for a box with itself, its area if it is normal.
int64_t Overlap(const B& a, const B& b) {
    const int64_t w = std::min(a.GetRight(), b.GetRight()) - std::max(a.GetLeft(), b.GetLeft());
    const int64_t h = std::min(a.GetUpper(), b.GetUpper()) - std::max(a.GetLower(), b.GetLower());
    return w > 0 && h > 0 ? w * h : 0;
}

bool Contains(const B& outer, const B& inner) {
    return outer.IsInclude(inner.GetLowerLeft()) && outer.IsInclude(inner.GetUpperRight());
}

} // namespace

TEST(SysGeomProperties, CombineAndClip) {
    Random rnd;
    for (int i = 0; i < kCases; ++i) {
        CASE_TRACE(rnd, i);
        const B self = rnd.Box(i % 3 ? 12 : 400000000), other = rnd.Box(i % 3 ? 12 : 400000000);
        SCOPED_TRACE(testing::PrintToString(other) + " and " + testing::PrintToString(self));
        const B ns = Normalized(self), no = Normalized(other);
        // The union of the null box and two boxes is the smallest box holding both.
        B u = B::Null();
        u.Combine(ns), u.Combine(no);
        ASSERT_EQ(u, B(std::min(ns.GetLeft(), no.GetLeft()), std::min(ns.GetLower(), no.GetLower()),
                       std::max(ns.GetRight(), no.GetRight()),
                       std::max(ns.GetUpper(), no.GetUpper())));
        ASSERT_TRUE(Contains(u, ns) && Contains(u, no));

        // Clip pieces lie in other, outside self and apart, and add up to the
        // part of other outside self.
        B out[4];
        const int n = self.Clip(other, out);
        int64_t total = 0;
        for (int k = 0; k < n; ++k) {
            ASSERT_TRUE(Overlap(out[k], out[k]) > 0 && Contains(no, out[k]) && !Overlap(out[k], ns))
                << "piece " << k << " " << testing::PrintToString(out[k]);
            for (int j = 0; j < k; ++j) ASSERT_EQ(Overlap(out[k], out[j]), 0);
            total += Overlap(out[k], out[k]);
        }
        ASSERT_EQ(total, Overlap(no, no) - Overlap(no, ns));
    }
}

TEST(SysGeomProperties, ArcBoxHoldsTheArc) {
    // The 36 integer points of the circle of radius 65, to be scaled.
    std::vector<P> onCircle;
    for (P q : {P(0, 65), P(16, 63), P(25, 60), P(33, 56), P(39, 52), P(63, 16), P(60, 25),
                P(56, 33), P(52, 39)})
        for (int k = 0; k < 4; ++k, q = P(-q.y, q.x)) onCircle.push_back(q);
    Random rnd;
    std::uniform_real_distribution<double> turn(0, 6.283185307179586);
    for (int i = 0; i < kCases; ++i) {
        CASE_TRACE(rnd, i);
        const P c(rnd(-1000000, 1000000), rnd(-1000000, 1000000));
        // Even cases: end points exactly on the circle, every pair in both
        // directions in turn; odd cases: rounded from random angles, so up to
        // a unit off the circle.
        const bool exact = i % 2 == 0;
        const long pair = i / 2 % (36 * 36 * 2), k = rnd(1, i % 4 ? 3 : 10000);
        const long R = exact ? 65 * k : rnd(1, i % 3 ? 20 : 1000000);
        P ends[2];
        for (int n = 0; n < 2; ++n) {
            const double a = turn(rnd.rng);
            ends[n] = c + (exact ? onCircle[n ? pair % 36 : pair / 36 % 36] * k
                                 : P(std::lround(R * std::cos(a)), std::lround(R * std::sin(a))));
        }
        if (ends[0] == ends[1]) continue;
        const SYS_Arc arc(ends[0], ends[1], c, (exact ? pair < 36 * 36 : rnd(0, 1)) ? R : -R);
        const B box = arc.GetBox();
        SCOPED_TRACE(testing::PrintToString(ends[0]) + " to " + testing::PrintToString(ends[1]) +
                     " around " + testing::PrintToString(c) + " r " + std::to_string(arc.radius));
        ASSERT_TRUE(box.IsInclude(ends[0]) && box.IsInclude(ends[1]));

        // Sampled points lie in the box, within the rounding of the end points.
        const long sa = arc.GetStartAngle(), sweep = arc.GetSizeAngle();
        B loose = box;
        loose.Expand(1);
        for (int s = 1; s < 64; ++s) {
            const double a = (sa + sweep * (s / 64.0)) * 3.141592653589793 / 324000000.0;
            const double x = c.x + R * std::cos(a), y = c.y + R * std::sin(a);
            const B cell(std::lround(std::floor(x)), std::lround(std::floor(y)),
                         std::lround(std::ceil(x)), std::lround(std::ceil(y)));
            ASSERT_TRUE(Contains(loose, cell)) << "sample " << s;
        }
        // On an exact circle the box is tight: the end points plus the
        // extremes the sweep passes.  (Off the circle, an end point level
        // with an extreme can make the walk take one more.)
        if (!exact || sweep == 0) continue;
        B tight = arc.SYS_Segment::GetBox();
        const P dir[4] = {{R, 0}, {0, R}, {-R, 0}, {0, -R}};
        for (long q = 0; q < 4; ++q) {
            const long at = q * 162000000;
            if (((sweep > 0 ? at - sa : sa - at) + 648000000) % 648000000 <= std::labs(sweep))
                tight.Increase(c.x + dir[q].x, c.y + dir[q].y);
        }
        ASSERT_EQ(box, tight);
    }
}

TEST(SysGeomProperties, TransformRoundTripsAndBoxImages) {
    Random rnd;
    const double scales[] = {1, 2, -3, 0.5, 1.25};
    for (int i = 0; i < kCases; ++i) {
        CASE_TRACE(rnd, i);
        const SYS_Position pos(rnd(-10000000, 10000000), rnd(-10000000, 10000000),
                               rnd(-647999999, 647999999), i % 2);
        SYS_Transform t(pos, i % 3 == 0, 0, 0), s, inv;
        s.SetScale(P(rnd(-1000, 1000), rnd(-1000, 1000)), scales[i % 5]);
        t.AddConv(s);
        ASSERT_EQ(t.SetRConv(inv), 1);
        for (int k = 0; k < 4; ++k) {
            const P p(rnd(-20000000, 20000000), rnd(-20000000, 20000000));
            ASSERT_EQ((t + inv) + p, p);
            ASSERT_EQ((inv + t) + p, p);
        }

        // Under quarter turns and mirrors the box image is the true bounds.
        const B b = Normalized(rnd.Box(10000000));
        const SYS_Transform q(rnd(-1000000, 1000000), rnd(-1000000, 1000000),
                              162000000 * rnd(-4, 4), i % 2, 0, 0, 0);
        B expected = B::Null();
        for (const P& p :
             {b.GetLowerLeft(), b.GetLowerRight(), b.GetUpperRight(), b.GetUpperLeft()})
            expected.Combine(B(q + p, q + p));
        B image = b;
        image.Transform(q);
        ASSERT_EQ(image, expected);
    }
}
