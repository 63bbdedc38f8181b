// SYS_Geom.h - the coordinate types: points, locations, positions and boxes.
//
// Coordinates are signed 32-bit integers in database units and angles signed
// 32-bit integers of SYS_FULL_TURN units per turn, whatever the width of
// `long`: a long argument keeps its low 32 bits, and integer sums,
// differences and products wrap in 32 bits without any overflow check.
// Doubles come back to integers rounded half away from zero, except where a
// member says it truncates.  All types are small value classes without
// virtual functions, copied by value: a point is 8 bytes, a location 12, a
// position 16, a box 16.  Accessors are inline; the arithmetic (a call and a
// few integer or double operations each) lives in SYS_Geom.cpp.
//
// Two values stand for "no box": the all-zero empty box and the inverted
// limit box SYS_Box::Null(), which only Combine skips; seed a bounding-box
// accumulation with the latter.
#ifndef SYS_GEOM_H
#define SYS_GEOM_H

#include "keel_config.h"

#include <cstdint>

// Valid coordinates and lengths lie strictly between -limit and +limit.
constexpr long SYS_COORD_LIMIT = 1066800000;
// Angle units: a full turn, a half turn (pi radians) and one degree.
constexpr long SYS_FULL_TURN = 648000000;
constexpr long SYS_HALF_TURN = 324000000;
constexpr long SYS_DEGREE = 1800000;

class SYS_DoublePoint;
class SYS_Transform;

// Integer point.  The default constructor leaves both coordinates unset on
// purpose (arrays of points are built in bulk); Initiate or SYS_Point(0, 0)
// give zero.
class KEEL_API SYS_Point {
public:
    int32_t x;
    int32_t y;

    SYS_Point() {}
    SYS_Point(long x_, long y_) : x(static_cast<int32_t>(x_)), y(static_cast<int32_t>(y_)) {}

    void Initiate() { x = y = 0; }
    int IsValid() const { return 1; }

    long GetX() const { return x; }
    long GetY() const { return y; }
    void SetX(long v) { x = static_cast<int32_t>(v); }
    void SetY(long v) { y = static_cast<int32_t>(v); }
    void Set(long x_, long y_) { SetX(x_), SetY(y_); }
    // x for 0, y for any other index.
    long operator[](int i) const { return i == 0 ? x : y; }

    operator SYS_DoublePoint() const;
    // Each coordinate rounded.
    SYS_Point& operator=(const SYS_DoublePoint& p);

    const SYS_Point operator+(const SYS_Point& p) const;
    const SYS_Point operator-(const SYS_Point& p) const;
    const SYS_Point operator+(long v) const;
    const SYS_Point operator-(long v) const;
    SYS_Point& operator+=(const SYS_Point& p);
    SYS_Point& operator-=(const SYS_Point& p);
    SYS_Point& operator+=(long v);
    SYS_Point& operator-=(long v);
    // 32-bit wrapping product.
    const SYS_Point operator*(long v) const;
    const SYS_Point operator*(int v) const { return *this * static_cast<long>(v); }
    // Product truncated toward zero (Scale rounds instead).
    const SYS_Point operator*(double v) const;
    // Quotient in double, rounded; a zero divisor is not checked.
    const SYS_Point operator/(long v) const;
    void Scale(double s);
    void Scale(double sx, double sy);

    bool operator==(const SYS_Point& p) const { return x == p.x && y == p.y; }
    bool operator!=(const SYS_Point& p) const { return !(*this == p); }
    bool operator<(const SYS_Point& p) const { return x < p.x || (x == p.x && y < p.y); }
    bool operator>(const SYS_Point& p) const { return p < *this; }

    // Euclidean length; an exact diagonal (|x| == |y|) is |x| * sqrt(2).
    double Length() const;
    double Distance(const SYS_Point& p) const;
    // Manhattan length |x| + |y|, wrapping in 32 bits.
    long MLength() const;
    long MDistance(const SYS_Point& p) const;
    // Midpoint: the sum of the two points halved and rounded.
    SYS_Point Median(const SYS_Point& p) const;
    // Angle of the vector in [0, SYS_FULL_TURN), truncated; (0, 0) gives 0.
    long GetPolarAngle() const;
    double GetPolarRadius() const;
    double ScalarProduct(const SYS_Point& p) const;
    double VectorProduct(const SYS_Point& p) const;
    void Draw() const {}

    // Replaces the point by its image (rounded).
    void Transform(const SYS_Transform& t);
};

// Double-precision point; no rounding anywhere except the conversion to
// SYS_Point.  Comparisons are exact.
class KEEL_API SYS_DoublePoint {
public:
    double x;
    double y;

    SYS_DoublePoint() : x(0.0), y(0.0) {}
    SYS_DoublePoint(double x_, double y_) : x(x_), y(y_) {}

    void Initiate() { x = y = 0.0; }
    // Both coordinates strictly inside the coordinate limit.
    int IsValid() const;

    double GetX() const { return x; }
    double GetY() const { return y; }
    void SetX(double v) { x = v; }
    void SetY(double v) { y = v; }
    void Set(double x_, double y_) { x = x_, y = y_; }
    double operator[](int i) const { return i == 0 ? x : y; }

    // Each coordinate rounded.
    operator SYS_Point() const;
    SYS_DoublePoint& operator=(const SYS_Point& p) {
        x = p.x, y = p.y;
        return *this;
    }

    const SYS_DoublePoint operator+(const SYS_DoublePoint& p) const {
        return SYS_DoublePoint(x + p.x, y + p.y);
    }
    const SYS_DoublePoint operator-(const SYS_DoublePoint& p) const {
        return SYS_DoublePoint(x - p.x, y - p.y);
    }
    const SYS_DoublePoint operator+(double v) const { return SYS_DoublePoint(x + v, y + v); }
    const SYS_DoublePoint operator-(double v) const { return SYS_DoublePoint(x - v, y - v); }
    SYS_DoublePoint& operator+=(const SYS_DoublePoint& p) { return *this = *this + p; }
    SYS_DoublePoint& operator-=(const SYS_DoublePoint& p) { return *this = *this - p; }
    SYS_DoublePoint& operator+=(double v) { return *this = *this + v; }
    SYS_DoublePoint& operator-=(double v) { return *this = *this - v; }
    const SYS_DoublePoint operator*(double v) const { return SYS_DoublePoint(x * v, y * v); }
    const SYS_DoublePoint operator/(double v) const { return SYS_DoublePoint(x / v, y / v); }
    void Scale(double s) { x *= s, y *= s; }
    void Scale(double sx, double sy) { x *= sx, y *= sy; }

    bool operator==(const SYS_DoublePoint& p) const { return x == p.x && y == p.y; }
    bool operator!=(const SYS_DoublePoint& p) const { return !(*this == p); }
    bool operator<(const SYS_DoublePoint& p) const { return x < p.x || (x == p.x && y < p.y); }
    bool operator>(const SYS_DoublePoint& p) const { return p < *this; }

    long GetPolarAngle() const;
    // sqrt(x^2 + y^2) refined by one Newton step.
    double GetPolarRadius() const;
    double ScalarProduct(const SYS_DoublePoint& p) const { return x * p.x + y * p.y; }
    double VectorProduct(const SYS_DoublePoint& p) const { return x * p.y - y * p.x; }

    // Replaces the point by its image (not rounded).
    void Transform(const SYS_Transform& t);
};

// A point with an orientation.  Every setter keeps the orientation as its
// remainder by a full turn with the sign of the argument, so it lies in
// [-647,999,999, 647,999,999].
class KEEL_API SYS_Location : public SYS_Point {
public:
    int32_t orientation;

    SYS_Location() : SYS_Point(0, 0), orientation(0) {}
    SYS_Location(const SYS_Point& p, long o) : SYS_Point(p), orientation(Reduce(o)) {}
    SYS_Location(long x_, long y_, long o) : SYS_Point(x_, y_), orientation(Reduce(o)) {}

    void Set(const SYS_Point& p, long o) { SetOrigin(p), SetOrientation(o); }
    void Set(long x_, long y_, long o) { SetOrigin(x_, y_), SetOrientation(o); }
    void Initiate() { x = y = orientation = 0; }
    int IsValid() const {
        return orientation >= -(SYS_FULL_TURN - 1) && orientation <= SYS_FULL_TURN - 1;
    }

    SYS_Point& GetOrigin() { return *this; }
    const SYS_Point& GetOrigin() const { return *this; }
    long GetOrientation() const { return orientation; }
    void SetOrigin(const SYS_Point& p) { x = p.x, y = p.y; }
    void SetOrigin(long x_, long y_) { SYS_Point::Set(x_, y_); }
    void SetOrientation(long o) { orientation = Reduce(o); }

    // Origins added, orientations added and reduced.
    SYS_Location& operator+=(const SYS_Location& l);
    SYS_Location operator+(const SYS_Location& l) const;

    bool operator==(const SYS_Location& l) const {
        return SYS_Point::operator==(l) && orientation == l.orientation;
    }
    bool operator!=(const SYS_Location& l) const { return !(*this == l); }

    // Origin transformed, orientation turned (and reflected by a mirror).
    void Transform(const SYS_Transform& t);

    // Remainder by a full turn with the sign of the argument.
    static int32_t Reduce(long o) {
        return static_cast<int32_t>(static_cast<int32_t>(o) % SYS_FULL_TURN);
    }
};

// A location with a mirror flag, always 0 or 1.
class KEEL_API SYS_Position : public SYS_Location {
public:
    int32_t mirror;

    SYS_Position() : mirror(0) {}
    SYS_Position(const SYS_Location& l, int m)
        : SYS_Location(l.GetOrigin(), l.orientation), mirror(m != 0) {}
    SYS_Position(const SYS_Point& p, long o, int m) : SYS_Location(p, o), mirror(m != 0) {}
    SYS_Position(long x_, long y_, long o, int m) : SYS_Location(x_, y_, o), mirror(m != 0) {}

    void Set(const SYS_Point& p, long o, int m) { SYS_Location::Set(p, o), SetMirror(m); }
    void Set(long x_, long y_, long o, int m) { SYS_Location::Set(x_, y_, o), SetMirror(m); }
    void Initiate() { SYS_Location::Initiate(), mirror = 0; }
    int IsValid() const { return SYS_Location::IsValid() && (mirror == 0 || mirror == 1); }

    int GetMirror() const { return mirror; }
    void SetMirror(int m) { mirror = m != 0; }

    // Location sum; mirror flags combine by exclusive or.
    SYS_Position& operator+=(const SYS_Position& p);
    SYS_Position operator+(const SYS_Position& p) const;

    bool operator==(const SYS_Position& p) const {
        return SYS_Location::operator==(p) && mirror == p.mirror;
    }
    bool operator!=(const SYS_Position& p) const { return !(*this == p); }

    // Location image; the flag toggles when the transform mirrors.
    void Transform(const SYS_Transform& t);
};

// Axis-aligned closed box, lower-left corner then upper-right corner, y up.
// Width and height are right - left and upper - lower (no +1).  Nothing
// normalises the corners unless a member says so.
class KEEL_API SYS_Box {
public:
    SYS_Point lowerLeft;
    SYS_Point upperRight;

    SYS_Box() : lowerLeft(0, 0), upperRight(0, 0) {}
    SYS_Box(const SYS_Point& ll, const SYS_Point& ur) : lowerLeft(ll), upperRight(ur) {}
    SYS_Box(long l, long lo, long r, long up) : lowerLeft(l, lo), upperRight(r, up) {}
    // Square of side |size| with the point as its lower-left corner for a
    // non-negative size and as its upper-right corner for a negative one.
    SYS_Box(const SYS_Point& p, long size) { Set(p, size); }

    // The inverted limit box that Combine treats as "nothing yet".
    static SYS_Box Null() {
        return SYS_Box(SYS_COORD_LIMIT, SYS_COORD_LIMIT, -SYS_COORD_LIMIT, -SYS_COORD_LIMIT);
    }

    // Whether this is the box that Null() returns.
    bool IsNull() const {
        return lowerLeft.x == SYS_COORD_LIMIT && lowerLeft.y == SYS_COORD_LIMIT &&
               upperRight.x == -SYS_COORD_LIMIT && upperRight.y == -SYS_COORD_LIMIT;
    }

    void Set(const SYS_Point& p, long size);
    void Set(const SYS_Point& ll, const SYS_Point& ur) { lowerLeft = ll, upperRight = ur; }
    void Set(long l, long lo, long r, long up) { lowerLeft.Set(l, lo), upperRight.Set(r, up); }
    int IsValid() const { return lowerLeft.x <= upperRight.x && lowerLeft.y <= upperRight.y; }

    bool operator==(const SYS_Box& b) const {
        return lowerLeft == b.lowerLeft && upperRight == b.upperRight;
    }
    bool operator!=(const SYS_Box& b) const { return !(*this == b); }

    long GetLeft() const { return lowerLeft.x; }
    long GetLower() const { return lowerLeft.y; }
    long GetRight() const { return upperRight.x; }
    long GetUpper() const { return upperRight.y; }
    void SetLeft(long v) { lowerLeft.SetX(v); }
    void SetLower(long v) { lowerLeft.SetY(v); }
    void SetRight(long v) { upperRight.SetX(v); }
    void SetUpper(long v) { upperRight.SetY(v); }

    SYS_Point& GetLowerLeft() { return lowerLeft; }
    const SYS_Point& GetLowerLeft() const { return lowerLeft; }
    SYS_Point& GetUpperRight() { return upperRight; }
    const SYS_Point& GetUpperRight() const { return upperRight; }
    SYS_Point GetUpperLeft() const { return SYS_Point(lowerLeft.x, upperRight.y); }
    SYS_Point GetLowerRight() const { return SYS_Point(upperRight.x, lowerLeft.y); }
    void SetLowerLeft(const SYS_Point& p) { lowerLeft = p; }
    void SetLowerLeft(long x_, long y_) { lowerLeft.Set(x_, y_); }
    void SetUpperRight(const SYS_Point& p) { upperRight = p; }
    void SetUpperRight(long x_, long y_) { upperRight.Set(x_, y_); }

    long GetWidth() const;
    long GetHeight() const;
    long GetDX() const { return GetWidth(); }
    long GetDY() const { return GetHeight(); }

    // The empty box is all zero; any box without width or height is empty.
    void SetEmpty() { Set(0, 0, 0, 0); }
    int IsEmpty() const { return GetWidth() == 0 || GetHeight() == 0; }

    // Halved 32-bit sums of the corners, truncated toward zero.
    SYS_Point GetCenter() const;
    // Moves the box so that its center is c, keeping width and height.
    void SetCenter(SYS_Point c);
    int IsInclude(const SYS_Point& p) const {
        return lowerLeft.x <= p.x && p.x <= upperRight.x && lowerLeft.y <= p.y &&
               p.y <= upperRight.y;
    }

    void Move(SYS_Point d);
    // Grows the box just enough to contain (x, y).
    void Increase(long x_, long y_);
    // Grows each side by d, then normalises.
    void Expand(long d);
    void Normalize();
    // Union; a null box (see Null) on either side is skipped, any other box,
    // even the empty one, counts.  Inline: bounding-box loops call it per item.
    void Combine(const SYS_Box& other) {
        if (IsNull()) {
            *this = other;
            return;
        }
        if (other.IsNull()) return;
        // Branches rather than selects: once the box has grown, a bounding
        // loop stores nothing, and no store-to-load chain runs through it.
        if (other.lowerLeft.x < lowerLeft.x) lowerLeft.x = other.lowerLeft.x;
        if (other.lowerLeft.y < lowerLeft.y) lowerLeft.y = other.lowerLeft.y;
        if (other.upperRight.x > upperRight.x) upperRight.x = other.upperRight.x;
        if (other.upperRight.y > upperRight.y) upperRight.y = other.upperRight.y;
    }
    // Intersection of a and b; returns 1 when it has an area.  Otherwise the
    // box is degenerate (left = right or lower = upper) and 0 is returned.
    int SetAsIntersection(SYS_Box a, SYS_Box b);
    // Writes to out (room for four) the boxes that together cover the part of
    // other outside this box, column by column from left to right and from
    // bottom to top within a column; returns how many.  Pieces share their
    // edges with this box.
    int Clip(SYS_Box other, SYS_Box* out) const;

    // Bounding box of the images of the lower-right, upper-right and
    // upper-left corners.  The lower-left corner is left out, so the result
    // is exact for moves, scales, mirrors and quarter turns and may be too
    // small under other rotations.
    void Transform(const SYS_Transform& t);
};

#endif // SYS_GEOM_H
