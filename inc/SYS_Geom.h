/// @file SYS_Geom.h
/// The coordinate types: points, locations, positions and boxes.
///
/// Coordinates are signed 32-bit integers in database units (19,050 per mil,
/// 750,000 per millimetre) and angles signed 32-bit integers of SYS_FULL_TURN
/// units per turn, whatever the width of `long`: a long argument keeps its
/// low 32 bits, and integer sums, differences and products wrap in 32 bits
/// without any overflow check.
///
/// Doubles come back to integers rounded half away from zero (0.5 is added to
/// a positive value, subtracted from a negative one, then the value is
/// truncated), except where a member says it truncates toward zero: the
/// product of a point and a double and polar angles truncate, and box
/// centers and orientation remainders use truncating integer division;
/// conversions of double points, quotients, Scale, Median and transformed
/// points round.  A double that no 32-bit integer holds (too large,
/// infinite, NaN, as from a zero divisor) comes back as -2,147,483,648.
///
/// Valid coordinates and lengths lie strictly between -SYS_COORD_LIMIT and
/// +SYS_COORD_LIMIT.  Nothing enforces the limit: only
/// SYS_DoublePoint::IsValid and SYS_Circle::IsValid test it, and values
/// beyond it are stored and computed with like any others (wrapping at 32
/// bits).  Keep host geometry inside it: the null box is built from it, and
/// SYS_Box::Transform never puts left or lower above it nor right or upper
/// below its negative.
///
/// All types are small value classes without virtual functions, copied by
/// value: a point is 8 bytes, a location 12, a position 16, a box 16.
/// Accessors are inline; the arithmetic (a call and a few integer or double
/// operations each) lives in the library.
///
/// Two values stand for "no box": the all-zero empty box and the inverted
/// limit box SYS_Box::Null(), which only Combine skips; seed a bounding-box
/// accumulation with the latter.
#ifndef SYS_GEOM_H
#define SYS_GEOM_H

#include "keel_config.h"

#include <cstdint>

/// Coordinate limit: valid coordinates and lengths lie strictly between
/// -limit and +limit (1,066,800,000 database units).
constexpr long SYS_COORD_LIMIT = 1066800000;
/// A full turn: 648,000,000 angle units.
constexpr long SYS_FULL_TURN = 648000000;
/// A half turn, pi radians: 324,000,000 angle units.
constexpr long SYS_HALF_TURN = 324000000;
/// One degree: 1,800,000 angle units.
constexpr long SYS_DEGREE = 1800000;

class SYS_DoublePoint;
class SYS_Transform;

/// Integer point.  The default constructor leaves both coordinates unset on
/// purpose (arrays of points are built in bulk); Initiate or SYS_Point(0, 0)
/// give zero.
class KEEL_API SYS_Point {
public:
    int32_t x; ///< x coordinate in database units.
    int32_t y; ///< y coordinate in database units.

    /// Leaves x and y unset (not zero).
    SYS_Point() {}
    /// The point (x_, y_); each long keeps its low 32 bits.
    SYS_Point(long x_, long y_) : x(static_cast<int32_t>(x_)), y(static_cast<int32_t>(y_)) {}

    /// Sets both coordinates to 0.
    void Initiate() { x = y = 0; }
    /// Always 1: every integer point counts as valid.
    int IsValid() const { return 1; }

    /// The x coordinate.
    long GetX() const { return x; }
    /// The y coordinate.
    long GetY() const { return y; }
    /// Sets x (the long's low 32 bits).
    void SetX(long v) { x = static_cast<int32_t>(v); }
    /// Sets y (the long's low 32 bits).
    void SetY(long v) { y = static_cast<int32_t>(v); }
    /// Sets both coordinates (each long's low 32 bits).
    void Set(long x_, long y_) { SetX(x_), SetY(y_); }
    /// x for 0, y for any other index.
    long operator[](int i) const { return i == 0 ? x : y; }

    /// The same point in doubles, exactly.
    operator SYS_DoublePoint() const;
    /// Each coordinate rounded.
    SYS_Point& operator=(const SYS_DoublePoint& p);

    /// Component-wise sum or difference, wrapping in 32 bits; a long is added
    /// to (subtracted from) both coordinates.
    ///@{
    const SYS_Point operator+(const SYS_Point& p) const;
    const SYS_Point operator-(const SYS_Point& p) const;
    const SYS_Point operator+(long v) const;
    const SYS_Point operator-(long v) const;
    SYS_Point& operator+=(const SYS_Point& p);
    SYS_Point& operator-=(const SYS_Point& p);
    SYS_Point& operator+=(long v);
    SYS_Point& operator-=(long v);
    ///@}
    /// Both coordinates multiplied, wrapping in 32 bits.
    const SYS_Point operator*(long v) const;
    /// Both coordinates multiplied, wrapping in 32 bits.
    const SYS_Point operator*(int v) const { return *this * static_cast<long>(v); }
    /// Both coordinates multiplied in double and truncated toward zero (Scale
    /// rounds instead): (5, -5) * 0.5 is (2, -2).
    const SYS_Point operator*(double v) const;
    /// Both coordinates divided in double and rounded: (5, -5) / 2 is (3, -3).
    /// A zero divisor is not checked; it gives (-2,147,483,648, -2,147,483,648).
    const SYS_Point operator/(long v) const;
    /// Multiplies both coordinates in place and rounds: (5, -5) scaled by 0.5
    /// is (3, -3).
    void Scale(double s);
    /// Multiplies x by sx and y by sy in place and rounds each.
    void Scale(double sx, double sy);

    /// Both coordinates equal.
    bool operator==(const SYS_Point& p) const { return x == p.x && y == p.y; }
    /// Some coordinate differs.
    bool operator!=(const SYS_Point& p) const { return !(*this == p); }
    /// Lexicographic order: x first, then y.
    bool operator<(const SYS_Point& p) const { return x < p.x || (x == p.x && y < p.y); }
    /// Lexicographic order: x first, then y.
    bool operator>(const SYS_Point& p) const { return p < *this; }

    /// Euclidean length of the vector, in double.  An axis vector gives the
    /// absolute coordinate and an exact diagonal (|x| == |y|) gives
    /// |x| * 1.4142135623730951; others the square root of x^2 + y^2.
    double Length() const;
    /// Length of the difference to p.
    double Distance(const SYS_Point& p) const;
    /// Manhattan length |x| + |y|, wrapping in 32 bits.
    long MLength() const;
    /// Manhattan length of the difference to p.
    long MDistance(const SYS_Point& p) const;
    /// Midpoint: the 32-bit sum of the two points, halved and rounded, so
    /// (0, 0) and (1, -1) give (1, -1).
    SYS_Point Median(const SYS_Point& p) const;
    /// Angle of the vector in [0, SYS_FULL_TURN), truncated; (0, 0) gives 0,
    /// (-1, 0) gives 324,000,000 and (0, -1) 486,000,000.
    long GetPolarAngle() const;
    /// Euclidean length through SYS_DoublePoint::GetPolarRadius (square root
    /// refined by one Newton step).
    double GetPolarRadius() const;
    /// x * p.x + y * p.y, computed in double (no overflow).
    double ScalarProduct(const SYS_Point& p) const;
    /// x * p.y - y * p.x, computed in double (no overflow).
    double VectorProduct(const SYS_Point& p) const;
    /// Does nothing; points have no drawing of their own.
    void Draw() const {}

    /// Replaces the point by its image under t (each coordinate rounded).
    void Transform(const SYS_Transform& t);
};

/// Double-precision point; no rounding anywhere except the conversion to
/// SYS_Point.  Comparisons are exact (no tolerance).
class KEEL_API SYS_DoublePoint {
public:
    double x; ///< x coordinate.
    double y; ///< y coordinate.

    /// (0.0, 0.0).
    SYS_DoublePoint() : x(0.0), y(0.0) {}
    /// The point (x_, y_).
    SYS_DoublePoint(double x_, double y_) : x(x_), y(y_) {}

    /// Sets both coordinates to 0.0.
    void Initiate() { x = y = 0.0; }
    /// 1 when both coordinates lie strictly inside the coordinate limit
    /// (between -1,066,800,000.0 and 1,066,800,000.0), else 0.
    int IsValid() const;

    /// The x coordinate.
    double GetX() const { return x; }
    /// The y coordinate.
    double GetY() const { return y; }
    /// Sets x.
    void SetX(double v) { x = v; }
    /// Sets y.
    void SetY(double v) { y = v; }
    /// Sets both coordinates.
    void Set(double x_, double y_) { x = x_, y = y_; }
    /// x for 0, y for any other index.
    double operator[](int i) const { return i == 0 ? x : y; }

    /// Each coordinate rounded half away from zero (-2,147,483,648 when no
    /// 32-bit integer holds it).
    operator SYS_Point() const;
    /// The integer point, exactly.
    SYS_DoublePoint& operator=(const SYS_Point& p) {
        x = p.x, y = p.y;
        return *this;
    }

    /// Component-wise sum, difference, product or quotient, unrounded; a
    /// double operand of + and - is added to (subtracted from) both
    /// coordinates.
    ///@{
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
    ///@}
    /// Multiplies both coordinates in place, without rounding.
    void Scale(double s) { x *= s, y *= s; }
    /// Multiplies x by sx and y by sy in place, without rounding.
    void Scale(double sx, double sy) { x *= sx, y *= sy; }

    /// Both coordinates exactly equal (no tolerance).
    bool operator==(const SYS_DoublePoint& p) const { return x == p.x && y == p.y; }
    /// Some coordinate differs.
    bool operator!=(const SYS_DoublePoint& p) const { return !(*this == p); }
    /// Lexicographic order: x first, then y.
    bool operator<(const SYS_DoublePoint& p) const { return x < p.x || (x == p.x && y < p.y); }
    /// Lexicographic order: x first, then y.
    bool operator>(const SYS_DoublePoint& p) const { return p < *this; }

    /// Angle of the vector in angle units in [0, SYS_FULL_TURN), truncated;
    /// (0, 0) gives 0.
    long GetPolarAngle() const;
    /// sqrt(x^2 + y^2) refined by one Newton step.
    double GetPolarRadius() const;
    /// x * p.x + y * p.y.
    double ScalarProduct(const SYS_DoublePoint& p) const { return x * p.x + y * p.y; }
    /// x * p.y - y * p.x.
    double VectorProduct(const SYS_DoublePoint& p) const { return x * p.y - y * p.x; }

    /// Replaces the point by its image under t (not rounded).
    void Transform(const SYS_Transform& t);
};

/// A point with an orientation.  Every setter and constructor keeps the
/// orientation as its remainder by a full turn with the sign of the argument,
/// so it lies in [-647,999,999, 647,999,999]: 700,000,000 is kept as
/// 52,000,000 and -700,000,000 as -52,000,000.
class KEEL_API SYS_Location : public SYS_Point {
public:
    /// Orientation in angle units; writing the field directly skips the
    /// reduction (IsValid then tells).
    int32_t orientation;

    /// Origin (0, 0), orientation 0.
    SYS_Location() : SYS_Point(0, 0), orientation(0) {}
    /// Origin p, orientation o reduced.
    SYS_Location(const SYS_Point& p, long o) : SYS_Point(p), orientation(Reduce(o)) {}
    /// Origin (x_, y_), orientation o reduced.
    SYS_Location(long x_, long y_, long o) : SYS_Point(x_, y_), orientation(Reduce(o)) {}

    /// Sets origin and orientation (reduced).
    void Set(const SYS_Point& p, long o) { SetOrigin(p), SetOrientation(o); }
    /// Sets origin and orientation (reduced).
    void Set(long x_, long y_, long o) { SetOrigin(x_, y_), SetOrientation(o); }
    /// Sets all fields to 0.
    void Initiate() { x = y = orientation = 0; }
    /// 1 when the orientation lies in [-647,999,999, 647,999,999], else 0.
    int IsValid() const {
        return orientation >= -(SYS_FULL_TURN - 1) && orientation <= SYS_FULL_TURN - 1;
    }

    /// The point part, by reference.
    SYS_Point& GetOrigin() { return *this; }
    /// The point part, by reference.
    const SYS_Point& GetOrigin() const { return *this; }
    /// The orientation in angle units.
    long GetOrientation() const { return orientation; }
    /// Sets the origin.
    void SetOrigin(const SYS_Point& p) { x = p.x, y = p.y; }
    /// Sets the origin.
    void SetOrigin(long x_, long y_) { SYS_Point::Set(x_, y_); }
    /// Sets the orientation, reduced by a full turn.
    void SetOrientation(long o) { orientation = Reduce(o); }

    /// Origins added, orientations added and reduced.
    ///@{
    SYS_Location& operator+=(const SYS_Location& l);
    SYS_Location operator+(const SYS_Location& l) const;
    ///@}

    /// Origin and orientation equal.
    bool operator==(const SYS_Location& l) const {
        return SYS_Point::operator==(l) && orientation == l.orientation;
    }
    /// Origin or orientation differs.
    bool operator!=(const SYS_Location& l) const { return !(*this == l); }

    /// Replaces the location by its image under t: the origin transformed
    /// (rounded), the orientation turned by t.GetOrientation() and reduced.
    /// When t mirrors, the orientation o is then reflected about the vertical
    /// axis as 324,000,000 - o, or 972,000,000 - o when that is negative.  The
    /// result is not reduced again: it lies in [0, 972,000,000), and one of
    /// 648,000,000 or more (from a turned orientation of -324,000,000 or
    /// less) fails IsValid.
    void Transform(const SYS_Transform& t);

    /// Remainder of o by a full turn with the sign of o (o's low 32 bits).
    static int32_t Reduce(long o) {
        return static_cast<int32_t>(static_cast<int32_t>(o) % SYS_FULL_TURN);
    }
};

/// A location with a mirror flag, always 0 or 1: every setter and
/// constructor stores 1 for any non-zero argument.
class KEEL_API SYS_Position : public SYS_Location {
public:
    /// Mirror flag, 0 or 1; writing the field directly skips the
    /// normalisation (IsValid then tells).
    int32_t mirror;

    /// All fields 0.
    SYS_Position() : mirror(0) {}
    /// Location l (orientation reduced) with mirror flag m (0 or 1).
    SYS_Position(const SYS_Location& l, int m)
        : SYS_Location(l.GetOrigin(), l.orientation), mirror(m != 0) {}
    /// Origin p, orientation o (reduced), mirror flag m (0 or 1).
    SYS_Position(const SYS_Point& p, long o, int m) : SYS_Location(p, o), mirror(m != 0) {}
    /// Origin (x_, y_), orientation o (reduced), mirror flag m (0 or 1).
    SYS_Position(long x_, long y_, long o, int m) : SYS_Location(x_, y_, o), mirror(m != 0) {}

    /// Sets origin, orientation (reduced) and mirror flag (0 or 1).
    void Set(const SYS_Point& p, long o, int m) { SYS_Location::Set(p, o), SetMirror(m); }
    /// Sets origin, orientation (reduced) and mirror flag (0 or 1).
    void Set(long x_, long y_, long o, int m) { SYS_Location::Set(x_, y_, o), SetMirror(m); }
    /// Sets all fields to 0.
    void Initiate() { SYS_Location::Initiate(), mirror = 0; }
    /// 1 when the location is valid and the mirror flag is 0 or 1, else 0.
    int IsValid() const { return SYS_Location::IsValid() && (mirror == 0 || mirror == 1); }

    /// The mirror flag.
    int GetMirror() const { return mirror; }
    /// Sets the mirror flag: 1 for any non-zero m.
    void SetMirror(int m) { mirror = m != 0; }

    /// Location sum; mirror flags combine by exclusive or, so a position
    /// mirrored on both sides gives an unmirrored sum.
    ///@{
    SYS_Position& operator+=(const SYS_Position& p);
    SYS_Position operator+(const SYS_Position& p) const;
    ///@}

    /// Origin, orientation and mirror flag equal.
    bool operator==(const SYS_Position& p) const {
        return SYS_Location::operator==(p) && mirror == p.mirror;
    }
    /// Some field differs.
    bool operator!=(const SYS_Position& p) const { return !(*this == p); }

    /// Location image (see SYS_Location::Transform); the flag toggles when
    /// the transform mirrors.
    void Transform(const SYS_Transform& t);
};

/// Axis-aligned closed box, lower-left corner then upper-right corner, y up.
/// A point on the edge is inside.  Width and height are right - left and
/// upper - lower (no +1).  Nothing normalises the corners unless a member
/// says so.
///
/// Two boxes mean "no box" and are not interchangeable.  The empty box is all
/// zero (SetEmpty); IsEmpty is true for any box without width or height, and
/// every operation treats it as an ordinary box at its corners (Combine with
/// an all-zero box pulls the union to the origin).  The null box, Null(), is
/// the inverted limit box (left = lower = 1,066,800,000, right = upper =
/// -1,066,800,000); only Combine skips it, and Increase grows it to the first
/// point given, so it is the seed of a bounding-box accumulation.
class KEEL_API SYS_Box {
public:
    SYS_Point lowerLeft;  ///< (left, lower).
    SYS_Point upperRight; ///< (right, upper).

    /// The empty box: all four fields 0.
    SYS_Box() : lowerLeft(0, 0), upperRight(0, 0) {}
    /// The box between the two corners, stored as given (no normalisation).
    SYS_Box(const SYS_Point& ll, const SYS_Point& ur) : lowerLeft(ll), upperRight(ur) {}
    /// The box (l, lo)-(r, up), stored as given (no normalisation).
    SYS_Box(long l, long lo, long r, long up) : lowerLeft(l, lo), upperRight(r, up) {}
    /// Square of side |size| with the point as its lower-left corner for a
    /// non-negative size and as its upper-right corner for a negative one.
    SYS_Box(const SYS_Point& p, long size) { Set(p, size); }

    /// The inverted limit box that Combine treats as "nothing yet".
    static SYS_Box Null() {
        return SYS_Box(SYS_COORD_LIMIT, SYS_COORD_LIMIT, -SYS_COORD_LIMIT, -SYS_COORD_LIMIT);
    }

    /// Whether this is the box that Null() returns.
    bool IsNull() const {
        return lowerLeft.x == SYS_COORD_LIMIT && lowerLeft.y == SYS_COORD_LIMIT &&
               upperRight.x == -SYS_COORD_LIMIT && upperRight.y == -SYS_COORD_LIMIT;
    }

    /// Square of side |size| anchored at p, as the constructor of the same
    /// arguments.
    void Set(const SYS_Point& p, long size);
    /// Sets both corners as given.
    void Set(const SYS_Point& ll, const SYS_Point& ur) { lowerLeft = ll, upperRight = ur; }
    /// Sets the four fields as given.
    void Set(long l, long lo, long r, long up) { lowerLeft.Set(l, lo), upperRight.Set(r, up); }
    /// 1 when left <= right and lower <= upper, else 0 (the null box is not
    /// valid; the empty box is).
    int IsValid() const { return lowerLeft.x <= upperRight.x && lowerLeft.y <= upperRight.y; }

    /// All four fields equal.
    bool operator==(const SYS_Box& b) const {
        return lowerLeft == b.lowerLeft && upperRight == b.upperRight;
    }
    /// Some field differs.
    bool operator!=(const SYS_Box& b) const { return !(*this == b); }

    /// x of the lower-left corner.
    long GetLeft() const { return lowerLeft.x; }
    /// y of the lower-left corner.
    long GetLower() const { return lowerLeft.y; }
    /// x of the upper-right corner.
    long GetRight() const { return upperRight.x; }
    /// y of the upper-right corner.
    long GetUpper() const { return upperRight.y; }
    /// Sets x of the lower-left corner.
    void SetLeft(long v) { lowerLeft.SetX(v); }
    /// Sets y of the lower-left corner.
    void SetLower(long v) { lowerLeft.SetY(v); }
    /// Sets x of the upper-right corner.
    void SetRight(long v) { upperRight.SetX(v); }
    /// Sets y of the upper-right corner.
    void SetUpper(long v) { upperRight.SetY(v); }

    /// The lower-left corner, by reference.
    SYS_Point& GetLowerLeft() { return lowerLeft; }
    /// The lower-left corner, by reference.
    const SYS_Point& GetLowerLeft() const { return lowerLeft; }
    /// The upper-right corner, by reference.
    SYS_Point& GetUpperRight() { return upperRight; }
    /// The upper-right corner, by reference.
    const SYS_Point& GetUpperRight() const { return upperRight; }
    /// (left, upper), by value.
    SYS_Point GetUpperLeft() const { return SYS_Point(lowerLeft.x, upperRight.y); }
    /// (right, lower), by value.
    SYS_Point GetLowerRight() const { return SYS_Point(upperRight.x, lowerLeft.y); }
    /// Sets the lower-left corner.
    void SetLowerLeft(const SYS_Point& p) { lowerLeft = p; }
    /// Sets the lower-left corner.
    void SetLowerLeft(long x_, long y_) { lowerLeft.Set(x_, y_); }
    /// Sets the upper-right corner.
    void SetUpperRight(const SYS_Point& p) { upperRight = p; }
    /// Sets the upper-right corner.
    void SetUpperRight(long x_, long y_) { upperRight.Set(x_, y_); }

    /// right - left, wrapping in 32 bits; negative for an inverted box.
    long GetWidth() const;
    /// upper - lower, wrapping in 32 bits; negative for an inverted box.
    long GetHeight() const;
    /// right - left, as GetWidth.
    long GetDX() const { return GetWidth(); }
    /// upper - lower, as GetHeight.
    long GetDY() const { return GetHeight(); }

    /// Sets the empty box: all four fields 0.
    void SetEmpty() { Set(0, 0, 0, 0); }
    /// 1 when width or height is 0, whatever the corners, else 0.  The null
    /// box is not empty.
    int IsEmpty() const { return GetWidth() == 0 || GetHeight() == 0; }

    /// Halved 32-bit sums of the corners, truncated toward zero: the center
    /// of (-3, -3, 0, 0) is (-1, -1).
    SYS_Point GetCenter() const;
    /// Moves the box so that its center is c, keeping width w and height h:
    /// left becomes c.x - w / 2 (truncated) and right left + w; the same in y.
    void SetCenter(SYS_Point c);
    /// 1 when left <= p.x <= right and lower <= p.y <= upper (edges
    /// included), else 0.
    int IsInclude(const SYS_Point& p) const {
        return lowerLeft.x <= p.x && p.x <= upperRight.x && lowerLeft.y <= p.y &&
               p.y <= upperRight.y;
    }

    /// Translates both corners by d.
    void Move(SYS_Point d);
    /// Grows the box just enough to contain (x_, y_).  From the null box this
    /// gives the point's own box; from the empty box the origin stays in.
    void Increase(long x_, long y_);
    /// Moves each side outward by d (inward for a negative d), then
    /// normalises: (0, 0, 10, 10) expanded by -6 is (4, 4, 6, 6).
    void Expand(long d);
    /// Swaps left and right, and lower and upper, where they are inverted.
    void Normalize();
    /// Union with other, field by field.  A null box (see Null) on either side
    /// is skipped; any other box counts, even the empty one: combining
    /// (1, 2, 3, 4) with an all-zero box gives (0, 0, 3, 4).  Inline:
    /// bounding-box loops call it per item.
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
    /// Sets this box to the intersection of a and b; returns 1 when it has an
    /// area.  Otherwise the box is left degenerate (left = right when the x
    /// ranges do not overlap, else lower = upper) and 0 is returned; boxes
    /// that only touch give 0.
    int SetAsIntersection(SYS_Box a, SYS_Box b);
    /// Writes to out the boxes that together cover the part of other outside
    /// this box, column by column from left to right and from bottom to top
    /// within a column; returns how many (0 to 4).  Pieces share their edges
    /// with this box; an inverted box counts as its normalised range.
    /// @param other the box to cut up.
    /// @param out room for four boxes, owned by the caller; null counts the
    ///        pieces without writing them.
    /// @return 0 when other lies inside this box, 1 (other itself) when they
    ///         are disjoint, 4 when this box lies strictly inside other: the
    ///         full-height column to its left, the pieces below and above it,
    ///         the full-height column to its right.
    int Clip(SYS_Box other, SYS_Box* out) const;

    /// Replaces the box by the bounding box of the images of the lower-right,
    /// upper-right and upper-left corners, each rounded.  The lower-left
    /// corner is left out, so the result is exact for moves, scales, mirrors
    /// and quarter turns and may be too small under other rotations: (0, 0,
    /// 10, 10) turned by 45 degrees about the origin gives (-7, 7, 7, 14).
    void Transform(const SYS_Transform& t);
};

#endif // SYS_GEOM_H
