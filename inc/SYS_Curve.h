/// @file SYS_Curve.h
/// The curve primitives: segment, circle and circular arc.
///
/// Plain value classes on the integer coordinates of SYS_Geom.h, copied by
/// value with all their fields; the number rules (32-bit wrap, rounding half
/// away from zero, the coordinate limit) are those of SYS_Geom.h.  An arc
/// carries its direction in the sign of its radius: positive runs
/// counter-clockwise from start to end (angles increasing), negative
/// clockwise; the circle's radius is its absolute value.  Its box is found by
/// walking from the start point over the axis extremes of the circle that the
/// arc passes, so it costs a few integer comparisons, no trigonometry.
/// Nothing checks that an arc's end points lie on its circle (IsValidArc
/// tells); other arcs get boxes and sweeps by the same formulas.
#ifndef SYS_CURVE_H
#define SYS_CURVE_H

#include "SYS_Geom.h"
#include "keel_config.h"

/// Straight segment from a start point to an end point.
class KEEL_API SYS_Segment {
public:
    SYS_Point start; ///< Start point.
    SYS_Point end;   ///< End point.

    /// All four coordinates 0.
    SYS_Segment() : start(0, 0), end(0, 0) {}
    /// The segment from s to e.
    SYS_Segment(const SYS_Point& s, const SYS_Point& e) : start(s), end(e) {}
    /// The segment from (x1, y1) to (x2, y2).
    SYS_Segment(long x1, long y1, long x2, long y2) : start(x1, y1), end(x2, y2) {}

    /// Sets both end points.
    void Set(const SYS_Point& s, const SYS_Point& e) { start = s, end = e; }
    /// Sets both end points.
    void Set(long x1, long y1, long x2, long y2) { start.Set(x1, y1), end.Set(x2, y2); }
    /// Sets all four coordinates to 0.
    void Initiate() { Set(0, 0, 0, 0); }
    /// Always 1: every segment counts as valid.
    int IsValid() const { return 1; }

    /// The start point, by reference.
    SYS_Point& GetStart() { return start; }
    /// The start point, by reference.
    const SYS_Point& GetStart() const { return start; }
    /// The end point, by reference.
    SYS_Point& GetEnd() { return end; }
    /// The end point, by reference.
    const SYS_Point& GetEnd() const { return end; }
    /// Sets the start point.
    void SetStart(const SYS_Point& p) { start = p; }
    /// Sets the start point.
    void SetStart(long x, long y) { start.Set(x, y); }
    /// Sets the end point.
    void SetEnd(const SYS_Point& p) { end = p; }
    /// Sets the end point.
    void SetEnd(long x, long y) { end.Set(x, y); }
    /// start for 0, end for any other index.
    const SYS_Point& operator[](int i) const { return i == 0 ? start : end; }

    /// end.x - start.x, wrapping in 32 bits.
    long GetDX() const;
    /// end.y - start.y, wrapping in 32 bits.
    long GetDY() const;

    /// Both end points translated, wrapping in 32 bits; a long moves both
    /// coordinates of both points.
    ///@{
    SYS_Segment operator+(const SYS_Point& d) const { return SYS_Segment(start + d, end + d); }
    SYS_Segment operator-(const SYS_Point& d) const { return SYS_Segment(start - d, end - d); }
    SYS_Segment operator+(long d) const { return SYS_Segment(start + d, end + d); }
    SYS_Segment operator-(long d) const { return SYS_Segment(start - d, end - d); }
    SYS_Segment& operator+=(const SYS_Point& d) { return *this = *this + d; }
    SYS_Segment& operator-=(const SYS_Point& d) { return *this = *this - d; }
    SYS_Segment& operator+=(long d) { return *this = *this + d; }
    SYS_Segment& operator-=(long d) { return *this = *this - d; }
    ///@}

    /// Both end points equal.
    bool operator==(const SYS_Segment& s) const { return start == s.start && end == s.end; }
    /// Some end point differs.
    bool operator!=(const SYS_Segment& s) const { return !(*this == s); }

    /// Length from start to end in double (square root refined by one Newton
    /// step).
    double GetLength() const;
    /// Normalised box of the two end points, whichever way the segment runs.
    SYS_Box GetBox() const;

    /// Both end points replaced by their images under t (rounded).
    void Transform(const SYS_Transform& t);
};

/// Circle: a center and a signed 32-bit radius.
class KEEL_API SYS_Circle {
public:
    SYS_Point center; ///< Center point.
    /// Radius in database units; its sign gives an arc's direction.
    int32_t radius;

    /// Center (0, 0), radius 0.
    SYS_Circle() : center(0, 0), radius(0) {}
    /// Center c, radius r.
    SYS_Circle(const SYS_Point& c, long r) : center(c), radius(static_cast<int32_t>(r)) {}
    /// Center (x, y), radius r.
    SYS_Circle(long x, long y, long r) : center(x, y), radius(static_cast<int32_t>(r)) {}

    /// Sets center and radius.
    void Set(const SYS_Point& c, long r) { center = c, SetRadius(r); }
    /// Sets center and radius.
    void Set(long x, long y, long r) { center.Set(x, y), SetRadius(r); }
    /// Sets center and radius to 0.
    void Initiate() { Set(0, 0, 0); }
    /// 1 when the radius lies strictly inside the coordinate limit
    /// (-1,066,799,999 to 1,066,799,999), else 0; the center is not tested.
    int IsValid() const { return radius > -SYS_COORD_LIMIT && radius < SYS_COORD_LIMIT; }

    /// The center, by reference.
    SYS_Point& GetCenter() { return center; }
    /// The center, by reference.
    const SYS_Point& GetCenter() const { return center; }
    /// The signed radius.
    long GetRadius() const { return radius; }
    /// Sets the center.
    void SetCenter(const SYS_Point& c) { center = c; }
    /// Sets the center.
    void SetCenter(long x, long y) { center.Set(x, y); }
    /// Sets the signed radius.
    void SetRadius(long r) { radius = static_cast<int32_t>(r); }

    /// Same radius and center.
    bool operator==(const SYS_Circle& c) const { return radius == c.radius && center == c.center; }
    /// Radius or center differs.
    bool operator!=(const SYS_Circle& c) const { return !(*this == c); }

    /// (center - radius, center + radius) on both axes, as stored (a negative
    /// radius gives an inverted box).
    SYS_Box GetBox() const;

    /// Moves the center only: the radius stays, even under a scaling
    /// transform; convert lengths with the transform's length operations
    /// (SYS_Transform::Convert(long&)).
    void Transform(const SYS_Transform& t);
};

/// Circular arc from start to end around the circle's center.  The radius is
/// signed: positive runs counter-clockwise, negative clockwise.  Start, end
/// and center are reached through the accessors of the two bases; GetBox,
/// GetLength and Transform are the arc's own.
class KEEL_API SYS_Arc : public SYS_Segment, public SYS_Circle {
public:
    /// All seven fields 0.
    SYS_Arc() {}
    /// The arc from s to e around c with signed radius r, stored as given
    /// (nothing checks that the end points lie on the circle).
    SYS_Arc(const SYS_Point& s, const SYS_Point& e, const SYS_Point& c, long r)
        : SYS_Segment(s, e), SYS_Circle(c, r) {}

    /// Sets all fields as given, unchecked.
    void Set(const SYS_Point& s, const SYS_Point& e, const SYS_Point& c, long r) {
        SYS_Segment::Set(s, e), SYS_Circle::Set(c, r);
    }
    /// Sets all fields to 0.
    void Initiate() { SYS_Segment::Initiate(), SYS_Circle::Initiate(); }
    /// The radius test of SYS_Circle::IsValid (1 or 0); the end points are not
    /// tested (see IsValidArc).
    int IsValid() const { return SYS_Circle::IsValid(); }
    /// 1 when both end points lie on the circle: their squared distances to
    /// the center differ from radius^2 by at most 1 after rounding; else 0.
    /// The tolerance is on squared lengths and deliberately this tight.
    int IsValidArc() const;

    /// All seven fields equal.
    bool operator==(const SYS_Arc& a) const {
        return SYS_Segment::operator==(a) && SYS_Circle::operator==(a);
    }
    /// Some field differs.
    bool operator!=(const SYS_Arc& a) const { return !(*this == a); }

    /// Polar angle of the start point seen from the center, in
    /// [0, SYS_FULL_TURN), truncated.
    long GetStartAngle() const;
    /// Polar angle of the end point seen from the center, in
    /// [0, SYS_FULL_TURN), truncated.
    long GetEndAngle() const;
    /// Signed sweep from the start angle to the end angle: [0, full turn)
    /// counter-clockwise, (-full turn, 0] clockwise; equal start and end
    /// angles give 0, never a full turn.  Radius 0 takes the plain difference
    /// of the angles.
    long GetSizeAngle() const;
    /// Sweep (in radians) times the signed radius, in double; positive for a
    /// consistent arc of either direction, 0 when start equals end.
    double GetLength() const;

    /// The leftmost (-1) or rightmost (1) point of the circle that the arc
    /// reaches first when moving along its direction from `from` (a point on
    /// the arc) towards the end point, written to *out; 0 when it reaches
    /// neither (out is then the center).  out may be from itself, or null.
    int GetXNearestExtrem(const SYS_Point& from, SYS_Point* out) const;
    /// The same for the lowest (-1) and highest (1) points.
    int GetYNearestExtrem(const SYS_Point& from, SYS_Point* out) const;
    /// Tight box: the end points and at most two extremes per axis, which
    /// covers every arc shorter than a full turn.  Radius 10 from (10, 0) to
    /// (-10, 0) around (0, 0) gives (-10, 0, 10, 10); radius -10 gives
    /// (-10, -10, 10, 0).
    SYS_Box GetBox() const;

    /// Start, end and center replaced by their images (rounded); the radius,
    /// and with it the direction, stays, also under a scaling or mirroring
    /// transform.
    void Transform(const SYS_Transform& t);
};

#endif // SYS_CURVE_H
