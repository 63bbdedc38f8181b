// SYS_Transform.cpp - SYS_Transform and the images of the geometry values.
#include "SYS_Transform.h"
#include "sys/internal/SYS_GeomMath.h"

#include <algorithm>
#include <cmath>

namespace {

const double kTwoPi = 6.283185307179586;
const SYS_Point kZero(0, 0);

// Placement of a part: [move in] [mirror] [rotate] [mirror] [move out], each
// piece built fresh and composed onto t.
void Place(SYS_Transform& t, long x, long y, long angle, int mirror, int mirrorFirst, int noMoveIn,
           int noMoveOut) {
    const int32_t px = SYS_Wrap32(x), py = SYS_Wrap32(y), turn = SYS_Wrap32(angle);
    if (noMoveIn)
        t.SetMove(0L, 0L);
    else
        t.SetMove(static_cast<long>(SYS_Neg32(px)), static_cast<long>(SYS_Neg32(py)));
    auto flip = [&t] {
        SYS_Transform m;
        m.SetMirror(kZero, 0.0, 1.0); // x -> -x
        t.AddConv(m);
    };
    if (mirrorFirst && mirror) flip();
    if (turn != 0) {
        SYS_Transform r;
        r.SetRotate(kZero, static_cast<long>(turn));
        t.AddConv(r);
    }
    if (!mirrorFirst && mirror) flip();
    if (!noMoveOut) {
        SYS_Transform m;
        m.SetMove(static_cast<long>(px), static_cast<long>(py));
        t.AddConv(m);
    }
}

// Brings an angle into [0, full turn]; a full turn itself stays.
long IntoTurn(long v) {
    while (v < 0) v += SYS_FULL_TURN;
    while (v > SYS_FULL_TURN) v -= SYS_FULL_TURN;
    return v;
}

} // namespace

// ---- construction ----

SYS_Transform::SYS_Transform()
    : a(1), b(0), c(0), d(0), e(1), f(0), angleFactor(1), angleOffset(0), rotation(0),
      sweepFactor(1), sweepOffset(0), sweepShift(0), scale(1) {}

SYS_Transform::SYS_Transform(const SYS_Position& pos, int mirrorFirst, int noMoveIn,
                             int noMoveOut) {
    Place(*this, pos.x, pos.y, pos.orientation, pos.mirror, mirrorFirst, noMoveIn, noMoveOut);
}

SYS_Transform::SYS_Transform(long x, long y, long angle, int mirror, int mirrorFirst, int noMoveIn,
                             int noMoveOut) {
    Place(*this, x, y, angle, mirror, mirrorFirst, noMoveIn, noMoveOut);
}

SYS_Transform::SYS_Transform(const SYS_Point& p, long angle, int mirror, int mirrorFirst,
                             int noMoveIn, int noMoveOut) {
    Place(*this, p.x, p.y, angle, mirror, mirrorFirst, noMoveIn, noMoveOut);
}

SYS_Transform SYS_Transform::operator=(const SYS_Transform* p) {
    if (p) *this = *p;
    return *this;
}

// ---- setters ----

void SYS_Transform::SetMove(long dx, long dy) {
    *this = SYS_Transform();
    c = SYS_Wrap32(dx);
    f = SYS_Wrap32(dy);
}

void SYS_Transform::SetMove(double dx, double dy) {
    *this = SYS_Transform();
    c = dx;
    f = dy;
}

void SYS_Transform::SetRotate(const SYS_Point& center, long angle) {
    const double keep = angleOffset;
    const double theta = SYS_AngleToRadians(SYS_Wrap32(angle));
    const double S = std::sin(theta), C = std::cos(theta), cx = center.x, cy = center.y;
    *this = SYS_Transform();
    angleOffset = keep;
    a = C, b = -S, c = cx - C * cx + S * cy;
    d = S, e = C, f = cy - S * cx - C * cy;
    rotation = SYS_Wrap32(angle);
}

void SYS_Transform::SetRotate(const SYS_Point& center, double cosPart, double sinPart) {
    const double s = cosPart * cosPart + sinPart * sinPart;
    if (s != 1) {
        if (s < 1e-9) {
            cosPart = 1, sinPart = 0;
        } else {
            const double r = SYS_RefinedRoot(s);
            cosPart /= r, sinPart /= r;
        }
    }
    const double C = cosPart, S = sinPart, cx = center.x, cy = center.y;
    *this = SYS_Transform();
    a = C, b = -S, c = cx - C * cx + S * cy;
    d = S, e = C, f = cy - S * cx - C * cy;
    angleOffset = SYS_PolarRadians(C, S);
    rotation = SYS_RadiansToAngle(angleOffset);
}

void SYS_Transform::SetScale(const SYS_Point& center, double s) {
    const double cx = center.x, cy = center.y;
    *this = SYS_Transform();
    a = e = s;
    c = cx - cx * s;
    f = cy - cy * s;
    angleOffset = s < 0 ? SYS_GEOM_PI : 0.0;
    rotation = s < 0 ? SYS_HALF_TURN : 0;
    scale = s;
}

void SYS_Transform::SetMirror(const SYS_Point& center, long angle) {
    const double keep = angleOffset;
    const double theta = SYS_AngleToRadians(SYS_Wrap32(angle)) * 2;
    const double S = std::sin(theta), C = std::cos(theta), cx = center.x, cy = center.y;
    *this = SYS_Transform();
    angleOffset = keep;
    a = C, b = S, c = cx - C * cx - S * cy;
    d = S, e = -C, f = cy - S * cx + C * cy;
    angleFactor = -1;
    rotation = SYS_Mul32(2, angle);
    sweepFactor = -1;
}

void SYS_Transform::SetMirror(const SYS_Point& center, double cosPart, double sinPart) {
    const double s = cosPart * cosPart + sinPart * sinPart;
    if (s != 1) {
        if (s < 4.0) {
            cosPart = 1, sinPart = 0;
        } else {
            const double r = std::sqrt(s);
            cosPart /= r, sinPart /= r;
        }
    }
    // The reflection matrix holds the doubled angle of the line.
    const double C = cosPart * cosPart - sinPart * sinPart, S = 2 * cosPart * sinPart;
    const double cx = center.x, cy = center.y;
    *this = SYS_Transform();
    a = C, b = S, c = cx - C * cx - S * cy;
    d = S, e = -C, f = cy - S * cx + C * cy;
    angleFactor = -1;
    angleOffset = SYS_PolarRadians(C, S);
    rotation = SYS_RadiansToAngle(angleOffset);
    sweepFactor = -1;
}

void SYS_Transform::SetCoordSys(const SYS_Point& origin, long angle) {
    SetRotate(origin, static_cast<long>(SYS_Neg32(angle)));
    SYS_Transform m;
    m.SetMove(static_cast<long>(SYS_Neg32(origin.x)), static_cast<long>(SYS_Neg32(origin.y)));
    AddConv(m);
}

void SYS_Transform::SetCoordSys(const SYS_Point& origin, double first, double second) {
    SetRotate(origin, -second, -first);
    SYS_Transform m;
    m.SetMove(static_cast<long>(SYS_Neg32(origin.x)), static_cast<long>(SYS_Neg32(origin.y)));
    AddConv(m);
}

void SYS_Transform::SetBoxConv(const SYS_Point& p1, const SYS_Point& p2, const SYS_Box& box) {
    const SYS_Point m(SYS_Add32(p1.x, p2.x) / 2, SYS_Add32(p1.y, p2.y) / 2);
    const double kx = static_cast<double>(box.GetWidth()) / SYS_Sub32(p2.x, p1.x);
    const double ky = static_cast<double>(box.GetHeight()) / SYS_Sub32(p2.y, p1.y);
    SetScale(m, std::min(kx, ky));
    const SYS_Point center = box.GetCenter();
    c += SYS_Sub32(center.x, m.x);
    f += SYS_Sub32(center.y, m.y);
}

// ---- composition and inversion ----

void SYS_Transform::AddConv(const SYS_Transform& other) {
    const SYS_Transform t = *this, o = other; // `other` may be this transform
    a = o.a * t.a + o.b * t.d;
    b = o.a * t.b + o.b * t.e;
    c = o.a * t.c + o.b * t.f + o.c;
    d = o.d * t.a + o.e * t.d;
    e = o.d * t.b + o.e * t.e;
    f = o.d * t.c + o.e * t.f + o.f;
    angleFactor = t.angleFactor * o.angleFactor;
    angleOffset = t.angleOffset * o.angleFactor + o.angleOffset;
    rotation = SYS_Add32(SYS_Trunc32(t.rotation * o.angleFactor), o.rotation);
    sweepFactor = o.sweepFactor * t.sweepFactor;
    sweepOffset = o.sweepFactor * t.sweepOffset + o.sweepOffset;
    sweepShift = SYS_Add32(SYS_Trunc32(t.sweepShift * o.sweepFactor), o.sweepShift);
    scale = t.scale * o.scale;
}

void SYS_Transform::SubConv(SYS_Transform& o) {
    SYS_Transform inverse;
    o.SetRConv(inverse);
    AddConv(inverse);
}

short SYS_Transform::SetRConv(SYS_Transform& out) {
    const double tiny = 1e-12;
    SYS_Transform r; // built aside: out may be this transform
    short ok = 0;
    const double det = e * a - b * d;
    if (!(std::fabs(det) < tiny)) {
        r.a = e / det, r.b = -b / det, r.c = (f * b - c * e) / det;
        r.d = -d / det, r.e = a / det, r.f = (c * d - f * a) / det;
        if (!(std::fabs(angleFactor) < tiny)) {
            r.angleFactor = std::fabs(angleFactor - 1) > tiny ? 1 / angleFactor : angleFactor;
            r.angleOffset = -angleOffset;
            r.rotation = SYS_Neg32(rotation);
            if (!(std::fabs(sweepFactor) < tiny)) {
                r.sweepFactor = 1 / sweepFactor;
                r.sweepOffset = -sweepOffset;
                r.sweepShift = SYS_Neg32(sweepShift);
                if (std::fabs(scale) < tiny) {
                    // A zero scale is repaired in the source, not in the result.
                    scale = 1;
                } else {
                    r.scale = 1 / scale;
                    ok = 1;
                }
            }
        }
    }
    out = r;
    return ok;
}

void SYS_Transform::RConv() {
    SYS_Transform r;
    SetRConv(r);
    *this = r;
}

int SYS_Transform::Invert() {
    const double det = a * e - d * b;
    if (std::fabs(det) <= 1e-18) return 0;
    SYS_Transform r;
    r.a = e / det, r.b = -b / det, r.c = (f * b - c * e) / det;
    r.d = -d / det, r.e = a / det, r.f = (c * d - f * a) / det;
    r.scale = std::sqrt(r.a * r.a + r.d * r.d);
    *this = r;
    return 1;
}

SYS_Transform SYS_Transform::operator+(const SYS_Transform& o) const {
    SYS_Transform r(*this);
    r.AddConv(o);
    return r;
}

SYS_Transform SYS_Transform::operator-(SYS_Transform& o) const {
    SYS_Transform r(*this);
    r.SubConv(o);
    return r;
}

// ---- application ----

#if defined(SYS_POINTMAP_LANES)
// Hosts built while Transform(SYS_Point*) was out of line call this copy.
KEEL_KEEP_INLINE(transformPoint, void (SYS_Transform::*)(SYS_Point*) const,
                 &SYS_Transform::Transform);
#else
void SYS_Transform::Transform(SYS_Point* p) const {
    if (p) SYS_MapPoint(a, b, c, d, e, f, p->x, p->y);
}
#endif

void SYS_Transform::Transform(SYS_Point* points, int count) const {
    if (!points) return;
    for (int i = 0; i < count; ++i) SYS_MapPoint(a, b, c, d, e, f, points[i].x, points[i].y);
}

SYS_Point SYS_Transform::Transform(const SYS_Point& p) const {
    SYS_Point r(p);
    Transform(&r);
    return r;
}

void SYS_Transform::Transform(SYS_DoublePoint* p) const {
    if (!p) return;
    const double x = p->x, y = p->y;
    p->x = a * x + b * y + c;
    p->y = d * x + e * y + f;
}

SYS_DoublePoint SYS_Transform::Transform(const SYS_DoublePoint& p) const {
    SYS_DoublePoint r(p);
    Transform(&r);
    return r;
}

SYS_Point SYS_Transform::operator-(SYS_Point p) {
    SYS_Transform inverse;
    SetRConv(inverse);
    return inverse.Transform(p);
}

void SYS_Transform::Convert(long& v) const { v = *this + v; }

long SYS_Transform::operator+(long v) const { return SYS_Round32(SYS_Wrap32(v) * scale); }

long SYS_Transform::operator-(long v) const { return SYS_Round32(SYS_Wrap32(v) / scale); }

void SYS_Transform::Convert(long& angle, long& sweep) const {
    long turned = IntoTurn(SYS_Wrap32(angle));
    if (std::fabs(angleFactor - 1) > 1e-9)
        turned = SYS_Round32(turned * angleFactor + angleOffset);
    else
        turned = SYS_Add32(turned, rotation);
    angle = IntoTurn(turned);

    long swept = SYS_Trunc32(SYS_Wrap32(sweep) * sweepFactor + sweepOffset);
    if (swept > SYS_FULL_TURN || swept < -SYS_FULL_TURN) swept = SYS_FULL_TURN;
    sweep = swept;
}

// ---- queries ----

long SYS_Transform::CalcAngle() const {
    double t = std::atan2(d, a);
    while (t >= kTwoPi) t -= kTwoPi;
    while (t < 0) t += kTwoPi;
    return SYS_RadiansToAngle(t);
}

double SYS_Transform::CalcXScale() const { return std::sqrt(a * a + d * d); }
double SYS_Transform::CalcYScale() const { return std::sqrt(b * b + e * e); }

short SYS_Transform::operator==(const SYS_Transform& o) const {
    return a == o.a && b == o.b && c == o.c && d == o.d && e == o.e && f == o.f &&
           angleFactor == o.angleFactor && angleOffset == o.angleOffset && rotation == o.rotation &&
           sweepFactor == o.sweepFactor && sweepOffset == o.sweepOffset &&
           sweepShift == o.sweepShift && scale == o.scale;
}

// ---- images of the geometry values ----

void SYS_Point::Transform(const SYS_Transform& t) { t.Transform(this); }

void SYS_DoublePoint::Transform(const SYS_Transform& t) { t.Transform(this); }

void SYS_Location::Transform(const SYS_Transform& t) {
    t.Transform(static_cast<SYS_Point*>(this));
    const int32_t turned = Reduce(SYS_Add32(Reduce(orientation), t.GetOrientation()));
    int32_t o = turned;
    if (t.GetMirror()) {
        // Reflected about the vertical axis; only a negative result is
        // brought back, from the other side.
        o = SYS_Sub32(SYS_HALF_TURN, turned);
        if (o < 0) o = SYS_Sub32(3 * SYS_HALF_TURN, turned);
    }
    orientation = o;
}

void SYS_Position::Transform(const SYS_Transform& t) {
    SYS_Location::Transform(t);
    if (t.GetMirror()) mirror ^= 1;
}

void SYS_Box::Transform(const SYS_Transform& t) {
    const SYS_Point corners[4] = {lowerLeft, GetLowerRight(), upperRight, GetUpperLeft()};
    int32_t lo[2] = {static_cast<int32_t>(SYS_COORD_LIMIT), static_cast<int32_t>(SYS_COORD_LIMIT)};
    int32_t hi[2] = {static_cast<int32_t>(-SYS_COORD_LIMIT),
                     static_cast<int32_t>(-SYS_COORD_LIMIT)};
    for (int i = 0; i < 4; ++i) {
        const SYS_Point p = t.Transform(corners[i]);
        if (i == 0) continue; // the first corner's image stays out of the bounds
        lo[0] = std::min(lo[0], p.x), hi[0] = std::max(hi[0], p.x);
        lo[1] = std::min(lo[1], p.y), hi[1] = std::max(hi[1], p.y);
    }
    Set(lo[0], lo[1], hi[0], hi[1]);
}

void SYS_Segment::Transform(const SYS_Transform& t) {
    t.Transform(&start);
    t.Transform(&end);
}

void SYS_Circle::Transform(const SYS_Transform& t) { t.Transform(&center); }

void SYS_Arc::Transform(const SYS_Transform& t) {
    t.Transform(&start);
    t.Transform(&end);
    t.Transform(&center);
}
