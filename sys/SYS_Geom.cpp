// SYS_Geom.cpp - arithmetic of points, locations, positions and boxes.
#include "SYS_Geom.h"
#include "sys/internal/SYS_GeomMath.h"

#include <algorithm>
#include <cmath>

// ---- SYS_Point ----

SYS_Point::operator SYS_DoublePoint() const { return SYS_DoublePoint(x, y); }

SYS_Point& SYS_Point::operator=(const SYS_DoublePoint& p) {
    x = SYS_Round32(p.x);
    y = SYS_Round32(p.y);
    return *this;
}

const SYS_Point SYS_Point::operator+(const SYS_Point& p) const {
    return SYS_Point(SYS_Add32(x, p.x), SYS_Add32(y, p.y));
}
const SYS_Point SYS_Point::operator-(const SYS_Point& p) const {
    return SYS_Point(SYS_Sub32(x, p.x), SYS_Sub32(y, p.y));
}
const SYS_Point SYS_Point::operator+(long v) const {
    return SYS_Point(SYS_Add32(x, v), SYS_Add32(y, v));
}
const SYS_Point SYS_Point::operator-(long v) const {
    return SYS_Point(SYS_Sub32(x, v), SYS_Sub32(y, v));
}
SYS_Point& SYS_Point::operator+=(const SYS_Point& p) { return *this = *this + p; }
SYS_Point& SYS_Point::operator-=(const SYS_Point& p) { return *this = *this - p; }
SYS_Point& SYS_Point::operator+=(long v) { return *this = *this + v; }
SYS_Point& SYS_Point::operator-=(long v) { return *this = *this - v; }

const SYS_Point SYS_Point::operator*(long v) const {
    return SYS_Point(SYS_Mul32(x, v), SYS_Mul32(y, v));
}
const SYS_Point SYS_Point::operator*(double v) const {
    return SYS_Point(SYS_Trunc32(x * v), SYS_Trunc32(y * v));
}
const SYS_Point SYS_Point::operator/(long v) const {
    double d = static_cast<double>(SYS_Wrap32(v));
    return SYS_Point(SYS_Round32(x / d), SYS_Round32(y / d));
}

void SYS_Point::Scale(double s) { Scale(s, s); }
void SYS_Point::Scale(double sx, double sy) {
    x = SYS_Round32(x * sx);
    y = SYS_Round32(y * sy);
}

double SYS_Point::Length() const {
    double ax = std::fabs(static_cast<double>(x));
    double ay = std::fabs(static_cast<double>(y));
    if (x == 0) return ay;
    if (y == 0) return ax;
    if (ax == ay) return ax * 1.4142135623730951;
    return std::sqrt(ax * ax + ay * ay);
}

double SYS_Point::Distance(const SYS_Point& p) const { return (*this - p).Length(); }

long SYS_Point::MLength() const { return SYS_Add32(SYS_Abs32(x), SYS_Abs32(y)); }

long SYS_Point::MDistance(const SYS_Point& p) const { return (*this - p).MLength(); }

SYS_Point SYS_Point::Median(const SYS_Point& p) const {
    SYS_Point sum = *this + p;
    return SYS_Point(SYS_Round32(sum.x * 0.5), SYS_Round32(sum.y * 0.5));
}

long SYS_Point::GetPolarAngle() const { return SYS_PolarAngle(x, y); }

double SYS_Point::GetPolarRadius() const { return SYS_DoublePoint(*this).GetPolarRadius(); }

double SYS_Point::ScalarProduct(const SYS_Point& p) const {
    return static_cast<double>(x) * p.x + static_cast<double>(y) * p.y;
}
double SYS_Point::VectorProduct(const SYS_Point& p) const {
    return static_cast<double>(x) * p.y - static_cast<double>(y) * p.x;
}

// ---- SYS_DoublePoint ----

int SYS_DoublePoint::IsValid() const {
    const double limit = static_cast<double>(SYS_COORD_LIMIT);
    return x > -limit && x < limit && y > -limit && y < limit;
}

SYS_DoublePoint::operator SYS_Point() const { return SYS_Point(SYS_Round32(x), SYS_Round32(y)); }

long SYS_DoublePoint::GetPolarAngle() const { return SYS_PolarAngle(x, y); }

double SYS_DoublePoint::GetPolarRadius() const { return SYS_RefinedRoot(x * x + y * y); }

// ---- SYS_Location, SYS_Position ----

SYS_Location& SYS_Location::operator+=(const SYS_Location& l) {
    SYS_Point::operator+=(l);
    orientation = Reduce(SYS_Add32(orientation, l.orientation));
    return *this;
}

SYS_Location SYS_Location::operator+(const SYS_Location& l) const {
    SYS_Location r(*this);
    return r += l;
}

SYS_Position& SYS_Position::operator+=(const SYS_Position& p) {
    SYS_Location::operator+=(p);
    mirror ^= p.mirror;
    return *this;
}

SYS_Position SYS_Position::operator+(const SYS_Position& p) const {
    SYS_Position r(*this);
    return r += p;
}

// ---- SYS_Box ----

namespace {

// One edge of the coverage function along an axis: this box contributes
// weight 1, the other box weight 2, positive at the low edge.
struct ClipEdge {
    int32_t at;
    int weight;
};

// Sorted distinct edges of one axis; afterwards each weight is the code of
// the interval that starts at the edge: 0 outside both boxes, 1 inside this
// box only, 2 inside the other only, 3 inside both.  An inverted pair is
// taken with its signs exchanged, which makes it count as its normalised
// range; an empty pair cancels out.
int AxisCodes(int32_t lo1, int32_t hi1, int32_t lo2, int32_t hi2, ClipEdge* e) {
    int s1 = lo1 < hi1 ? 1 : -1;
    int s2 = lo2 < hi2 ? 2 : -2;
    e[0] = {lo1, s1};
    e[1] = {hi1, -s1};
    e[2] = {lo2, s2};
    e[3] = {hi2, -s2};
    std::sort(e, e + 4, [](const ClipEdge& a, const ClipEdge& b) { return a.at < b.at; });
    int n = 0;
    for (int i = 0; i < 4; ++i) {
        if (n > 0 && e[n - 1].at == e[i].at)
            e[n - 1].weight += e[i].weight;
        else
            e[n++] = e[i];
    }
    for (int i = 1; i < n; ++i) e[i].weight += e[i - 1].weight;
    return n;
}

} // namespace

void SYS_Box::Set(const SYS_Point& p, long size) {
    SYS_Point q = p + size;
    if (SYS_Wrap32(size) >= 0)
        Set(p, q);
    else
        Set(q, p);
}

long SYS_Box::GetWidth() const { return SYS_Sub32(upperRight.x, lowerLeft.x); }
long SYS_Box::GetHeight() const { return SYS_Sub32(upperRight.y, lowerLeft.y); }

SYS_Point SYS_Box::GetCenter() const {
    return SYS_Point(SYS_Add32(lowerLeft.x, upperRight.x) / 2,
                     SYS_Add32(lowerLeft.y, upperRight.y) / 2);
}

void SYS_Box::SetCenter(SYS_Point c) {
    int32_t w = SYS_Wrap32(GetWidth()), h = SYS_Wrap32(GetHeight());
    lowerLeft.Set(SYS_Sub32(c.x, w / 2), SYS_Sub32(c.y, h / 2));
    upperRight.Set(SYS_Add32(lowerLeft.x, w), SYS_Add32(lowerLeft.y, h));
}

void SYS_Box::Move(SYS_Point d) {
    lowerLeft += d;
    upperRight += d;
}

void SYS_Box::Increase(long x_, long y_) {
    int32_t px = SYS_Wrap32(x_), py = SYS_Wrap32(y_);
    lowerLeft.x = std::min(lowerLeft.x, px);
    lowerLeft.y = std::min(lowerLeft.y, py);
    upperRight.x = std::max(upperRight.x, px);
    upperRight.y = std::max(upperRight.y, py);
}

void SYS_Box::Expand(long d) {
    lowerLeft -= d;
    upperRight += d;
    Normalize();
}

void SYS_Box::Normalize() {
    if (lowerLeft.x > upperRight.x) std::swap(lowerLeft.x, upperRight.x);
    if (lowerLeft.y > upperRight.y) std::swap(lowerLeft.y, upperRight.y);
}

int SYS_Box::SetAsIntersection(SYS_Box a, SYS_Box b) {
    lowerLeft.x = std::max(a.lowerLeft.x, b.lowerLeft.x);
    lowerLeft.y = std::max(a.lowerLeft.y, b.lowerLeft.y);
    upperRight.x = std::min(a.upperRight.x, b.upperRight.x);
    upperRight.y = std::min(a.upperRight.y, b.upperRight.y);
    if (lowerLeft.x >= upperRight.x) {
        lowerLeft.x = upperRight.x;
        return 0;
    }
    if (lowerLeft.y >= upperRight.y) {
        lowerLeft.y = upperRight.y;
        return 0;
    }
    return 1;
}

int SYS_Box::Clip(SYS_Box other, SYS_Box* out) const {
    ClipEdge ex[4], ey[4];
    int nx = AxisCodes(lowerLeft.x, upperRight.x, other.lowerLeft.x, other.upperRight.x, ex);
    int ny = AxisCodes(lowerLeft.y, upperRight.y, other.lowerLeft.y, other.upperRight.y, ey);
    int count = 0;
    auto emit = [&](int32_t l, int32_t lo, int32_t r, int32_t up) {
        if (out) out[count] = SYS_Box(l, lo, r, up);
        ++count;
    };
    for (int i = 0; i + 1 < nx; ++i) {
        if (ex[i].weight == 2) {
            // A column beside this box: the whole height of other at once.
            int first = -1, last = -1;
            for (int j = 0; j + 1 < ny; ++j) {
                if (ey[j].weight == 2 || ey[j].weight == 3) {
                    if (first < 0) first = j;
                    last = j;
                }
            }
            if (first >= 0) emit(ex[i].at, ey[first].at, ex[i + 1].at, ey[last + 1].at);
        } else if (ex[i].weight == 3) {
            // A column across this box: the parts below and above it.
            for (int j = 0; j + 1 < ny; ++j)
                if (ey[j].weight == 2) emit(ex[i].at, ey[j].at, ex[i + 1].at, ey[j + 1].at);
        }
    }
    return count;
}
