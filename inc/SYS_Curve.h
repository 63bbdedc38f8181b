// SYS_Curve.h - the curve primitives: segment, circle and circular arc.
//
// Plain value classes on the integer coordinates of SYS_Geom.h.  An arc
// carries its direction in the sign of its radius: positive runs
// counter-clockwise from start to end, negative clockwise.  Its box is found
// by walking from the start point over the axis extremes of the circle that
// the arc passes, so it costs a few integer comparisons, no trigonometry.
// Nothing checks that an arc's end points lie on its circle (IsValidArc
// tells); other arcs get boxes and sweeps by the same formulas.
#ifndef SYS_CURVE_H
#define SYS_CURVE_H

#include "SYS_Geom.h"
#include "keel_config.h"

class KEEL_API SYS_Segment {
public:
    SYS_Point start;
    SYS_Point end;

    SYS_Segment() : start(0, 0), end(0, 0) {}
    SYS_Segment(const SYS_Point& s, const SYS_Point& e) : start(s), end(e) {}
    SYS_Segment(long x1, long y1, long x2, long y2) : start(x1, y1), end(x2, y2) {}

    void Set(const SYS_Point& s, const SYS_Point& e) { start = s, end = e; }
    void Set(long x1, long y1, long x2, long y2) { start.Set(x1, y1), end.Set(x2, y2); }
    void Initiate() { Set(0, 0, 0, 0); }
    int IsValid() const { return 1; }

    SYS_Point& GetStart() { return start; }
    const SYS_Point& GetStart() const { return start; }
    SYS_Point& GetEnd() { return end; }
    const SYS_Point& GetEnd() const { return end; }
    void SetStart(const SYS_Point& p) { start = p; }
    void SetStart(long x, long y) { start.Set(x, y); }
    void SetEnd(const SYS_Point& p) { end = p; }
    void SetEnd(long x, long y) { end.Set(x, y); }
    // start for 0, end for any other index.
    const SYS_Point& operator[](int i) const { return i == 0 ? start : end; }

    long GetDX() const;
    long GetDY() const;

    // Both end points translated; a long moves both coordinates.
    SYS_Segment operator+(const SYS_Point& d) const { return SYS_Segment(start + d, end + d); }
    SYS_Segment operator-(const SYS_Point& d) const { return SYS_Segment(start - d, end - d); }
    SYS_Segment operator+(long d) const { return SYS_Segment(start + d, end + d); }
    SYS_Segment operator-(long d) const { return SYS_Segment(start - d, end - d); }
    SYS_Segment& operator+=(const SYS_Point& d) { return *this = *this + d; }
    SYS_Segment& operator-=(const SYS_Point& d) { return *this = *this - d; }
    SYS_Segment& operator+=(long d) { return *this = *this + d; }
    SYS_Segment& operator-=(long d) { return *this = *this - d; }

    bool operator==(const SYS_Segment& s) const { return start == s.start && end == s.end; }
    bool operator!=(const SYS_Segment& s) const { return !(*this == s); }

    double GetLength() const;
    // Normalised box of the two end points.
    SYS_Box GetBox() const;

    // Both end points replaced by their images.
    void Transform(const SYS_Transform& t);
};

class KEEL_API SYS_Circle {
public:
    SYS_Point center;
    int32_t radius;

    SYS_Circle() : center(0, 0), radius(0) {}
    SYS_Circle(const SYS_Point& c, long r) : center(c), radius(static_cast<int32_t>(r)) {}
    SYS_Circle(long x, long y, long r) : center(x, y), radius(static_cast<int32_t>(r)) {}

    void Set(const SYS_Point& c, long r) { center = c, SetRadius(r); }
    void Set(long x, long y, long r) { center.Set(x, y), SetRadius(r); }
    void Initiate() { Set(0, 0, 0); }
    // The radius lies strictly inside the coordinate limit (the center is
    // not tested).
    int IsValid() const { return radius > -SYS_COORD_LIMIT && radius < SYS_COORD_LIMIT; }

    SYS_Point& GetCenter() { return center; }
    const SYS_Point& GetCenter() const { return center; }
    long GetRadius() const { return radius; }
    void SetCenter(const SYS_Point& c) { center = c; }
    void SetCenter(long x, long y) { center.Set(x, y); }
    void SetRadius(long r) { radius = static_cast<int32_t>(r); }

    bool operator==(const SYS_Circle& c) const { return radius == c.radius && center == c.center; }
    bool operator!=(const SYS_Circle& c) const { return !(*this == c); }

    // (center - radius, center + radius) on both axes, as stored (a negative
    // radius gives an inverted box).
    SYS_Box GetBox() const;

    // Moves the center only: the radius stays, even under a scaling
    // transform; convert lengths with the transform's length operations.
    void Transform(const SYS_Transform& t);
};

class KEEL_API SYS_Arc : public SYS_Segment, public SYS_Circle {
public:
    SYS_Arc() {}
    SYS_Arc(const SYS_Point& s, const SYS_Point& e, const SYS_Point& c, long r)
        : SYS_Segment(s, e), SYS_Circle(c, r) {}

    void Set(const SYS_Point& s, const SYS_Point& e, const SYS_Point& c, long r) {
        SYS_Segment::Set(s, e), SYS_Circle::Set(c, r);
    }
    void Initiate() { SYS_Segment::Initiate(), SYS_Circle::Initiate(); }
    int IsValid() const { return SYS_Circle::IsValid(); }
    // Both end points lie on the circle: their squared distances to the
    // center differ from radius^2 by at most 1 after rounding.
    int IsValidArc() const;

    bool operator==(const SYS_Arc& a) const {
        return SYS_Segment::operator==(a) && SYS_Circle::operator==(a);
    }
    bool operator!=(const SYS_Arc& a) const { return !(*this == a); }

    // Polar angles of the end points seen from the center, in
    // [0, SYS_FULL_TURN).
    long GetStartAngle() const;
    long GetEndAngle() const;
    // Signed sweep: [0, full turn) counter-clockwise, (-full turn, 0]
    // clockwise; equal start and end angles give 0, never a full turn.
    long GetSizeAngle() const;
    // Sweep (radians) times radius; positive for a consistent arc.
    double GetLength() const;

    // The leftmost (-1) or rightmost (1) point of the circle that the arc
    // reaches first when moving from `from` towards the end point, written
    // to *out; 0 when it reaches neither (out is then the center).
    int GetXNearestExtrem(const SYS_Point& from, SYS_Point* out) const;
    // The same for the lowest (-1) and highest (1) points.
    int GetYNearestExtrem(const SYS_Point& from, SYS_Point* out) const;
    // Tight box: the end points and at most two extremes per axis.
    SYS_Box GetBox() const;

    // Start, end and center replaced by their images; the radius, and with
    // it the direction, stays, also under a mirroring transform.
    void Transform(const SYS_Transform& t);
};

#endif // SYS_CURVE_H
