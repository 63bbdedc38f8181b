// SYS_Curve.cpp - lengths, angles and boxes of segments, circles and arcs.
#include "SYS_Curve.h"
#include "sys/internal/SYS_GeomMath.h"

#include <algorithm>

// ---- SYS_Segment ----

long SYS_Segment::GetDX() const { return SYS_Sub32(end.x, start.x); }
long SYS_Segment::GetDY() const { return SYS_Sub32(end.y, start.y); }

double SYS_Segment::GetLength() const { return (end - start).GetPolarRadius(); }

SYS_Box SYS_Segment::GetBox() const {
    return SYS_Box(std::min(start.x, end.x), std::min(start.y, end.y), std::max(start.x, end.x),
                   std::max(start.y, end.y));
}

// ---- SYS_Circle ----

SYS_Box SYS_Circle::GetBox() const {
    return SYS_Box(SYS_Sub32(center.x, radius), SYS_Sub32(center.y, radius),
                   SYS_Add32(center.x, radius), SYS_Add32(center.y, radius));
}

// ---- SYS_Arc ----

int SYS_Arc::IsValidArc() const {
    double r2 = static_cast<double>(radius) * radius;
    for (const SYS_Point* p : {&start, &end}) {
        SYS_Point v = *p - center;
        long d = SYS_Round32(v.ScalarProduct(v) - r2);
        if (d > 1 || d < -1) return 0;
    }
    return 1;
}

long SYS_Arc::GetStartAngle() const { return (start - center).GetPolarAngle(); }
long SYS_Arc::GetEndAngle() const { return (end - center).GetPolarAngle(); }

long SYS_Arc::GetSizeAngle() const {
    long d = GetEndAngle() - GetStartAngle();
    if (d > 0 && radius < 0) d -= SYS_FULL_TURN;
    if (d < 0 && radius >= 1) d += SYS_FULL_TURN;
    return d;
}

double SYS_Arc::GetLength() const { return GetSizeAngle() * SYS_GEOM_PI / SYS_HALF_TURN * radius; }

// Both walks work in the frame of a counter-clockwise arc: multiplying the
// offsets from the center by the direction s turns a clockwise arc into one.
int SYS_Arc::GetXNearestExtrem(const SYS_Point& from, SYS_Point* out) const {
    const SYS_Point f = from; // `out` may alias `from`
    SYS_Point local;
    if (!out) out = &local;
    *out = center;
    const int32_t s = radius < 0 ? -1 : 1, r = radius;
    const int32_t ey = SYS_Mul32(s, SYS_Sub32(center.y, end.y));
    const int32_t py = SYS_Mul32(s, SYS_Sub32(center.y, f.y));
    const int32_t px = SYS_Mul32(s, SYS_Sub32(f.x, center.x));
    if ((py < 0 || px == r) && (ey > 0 || f.x <= end.x)) {
        out->x = SYS_Sub32(center.x, SYS_Abs32(r));
        return -1;
    }
    if ((py > 0 || px == SYS_Neg32(r)) && (ey < 0 || end.x <= f.x)) {
        out->x = SYS_Add32(center.x, SYS_Abs32(r));
        return 1;
    }
    return 0;
}

int SYS_Arc::GetYNearestExtrem(const SYS_Point& from, SYS_Point* out) const {
    const SYS_Point f = from;
    SYS_Point local;
    if (!out) out = &local;
    *out = center;
    const int32_t s = radius < 0 ? -1 : 1, r = radius;
    const int32_t ex = SYS_Mul32(s, SYS_Sub32(end.x, center.x));
    const int32_t py = SYS_Mul32(s, SYS_Sub32(center.y, f.y));
    const int32_t px = SYS_Mul32(s, SYS_Sub32(f.x, center.x));
    if ((px < 0 || py == SYS_Neg32(r)) && (ex > 0 || f.y <= end.y)) {
        out->y = SYS_Sub32(center.y, SYS_Abs32(r));
        return -1;
    }
    if ((px > 0 || py == r) && (ex < 0 || end.y <= f.y)) {
        out->y = SYS_Add32(center.y, SYS_Abs32(r));
        return 1;
    }
    return 0;
}

SYS_Box SYS_Arc::GetBox() const {
    SYS_Box box = SYS_Segment::GetBox();
    auto takeX = [&box](int k, const SYS_Point& e) {
        if (k < 0) box.lowerLeft.x = e.x;
        if (k > 0) box.upperRight.x = e.x;
    };
    auto takeY = [&box](int k, const SYS_Point& e) {
        if (k < 0) box.lowerLeft.y = e.y;
        if (k > 0) box.upperRight.y = e.y;
    };
    // At most two extremes per axis: the first one met after the start
    // point, then the next one met after that extreme.
    SYS_Point e;
    if (int k = GetXNearestExtrem(start, &e)) {
        takeX(k, e);
        takeX(GetXNearestExtrem(e, &e), e);
    }
    if (int k = GetYNearestExtrem(start, &e)) {
        takeY(k, e);
        takeY(GetYNearestExtrem(e, &e), e);
    }
    return box;
}
