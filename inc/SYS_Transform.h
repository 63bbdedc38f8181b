// SYS_Transform.h - SYS_Transform, the affine map between coordinate frames.
//
// A 2x3 matrix (x' = a*x + b*y + c, y' = d*x + e*y + f) carried together with
// separate angle, sweep and length parameters, so that orientations, arc
// sweeps and lengths convert without decomposing the matrix.  Composition and
// inversion update both.  Integer images are rounded half away from zero.
// About 100 bytes, copied by value; an image costs four multiplications, a
// composition a dozen, an inversion one division by the determinant.
// Every Set... replaces the whole transform, except that the angle-given
// SetRotate and SetMirror keep the previous angleOffset.
//
// angleOffset is in radians while the angles it is added to are in angle
// units; Convert(angle, sweep) uses it as it stands.  Hosts depend on that
// mixture, so it stays.
#ifndef SYS_TRANSFORM_H
#define SYS_TRANSFORM_H

#include "SYS_Curve.h"
#include "SYS_Geom.h"
#include "keel_config.h"

class KEEL_API SYS_Transform {
public:
    double a, b, c;
    double d, e, f;
    // Multiplier and offset (radians) of Convert(angle, sweep) when the
    // factor is not 1.
    double angleFactor;
    double angleOffset;
    // Rotation in angle units, as GetOrientation returns it.
    int32_t rotation;
    double sweepFactor;
    double sweepOffset;
    int32_t sweepShift;
    // Length factor of Convert(long&) and the length operators.
    double scale;

    // Identity.
    SYS_Transform();
    // Placement of a part at a position: move the position's origin to
    // (0, 0) unless noMoveIn, mirror x (before the rotation when mirrorFirst,
    // after it otherwise), rotate by the orientation, and move back to the
    // origin unless noMoveOut.
    SYS_Transform(const SYS_Position& pos, int mirrorFirst, int noMoveIn, int noMoveOut);
    SYS_Transform(long x, long y, long angle, int mirror, int mirrorFirst, int noMoveIn,
                  int noMoveOut);
    SYS_Transform(const SYS_Point& p, long angle, int mirror, int mirrorFirst, int noMoveIn,
                  int noMoveOut);
    ~SYS_Transform() {}

    // Copies *p (nothing when p is null) and returns a copy of the result.
    SYS_Transform operator=(const SYS_Transform* p);

    void SetMove(long dx, long dy);
    void SetMove(int dx, int dy) { SetMove(static_cast<long>(dx), static_cast<long>(dy)); }
    void SetMove(double dx, double dy);
    // Rotation about center by angle units (kept as given, not reduced).
    void SetRotate(const SYS_Point& center, long angle);
    // Rotation along a direction vector; a vector that is not of unit length
    // is normalised, and one shorter than about 3e-5 is taken as (1, 0).
    void SetRotate(const SYS_Point& center, double cosPart, double sinPart);
    void SetScale(const SYS_Point& center, double s);
    // Reflection about the line through center at angle.
    void SetMirror(const SYS_Point& center, long angle);
    // Reflection about the line through center along a direction vector.
    // Only an exact unit vector or one of length 2 or more is taken as given
    // (the latter normalised); any other becomes (1, 0).
    void SetMirror(const SYS_Point& center, double cosPart, double sinPart);
    // World to the local frame at origin turned by angle.
    void SetCoordSys(const SYS_Point& origin, long angle);
    // The same with a direction pair, taken exchanged and negated.
    void SetCoordSys(const SYS_Point& origin, double first, double second);
    // Scales the rectangle spanned by p1 and p2 to fit into box, centred;
    // a zero span is not checked.
    void SetBoxConv(const SYS_Point& p1, const SYS_Point& p2, const SYS_Box& box);

    // This transform followed by o.
    void AddConv(const SYS_Transform& o);
    // This transform followed by the inverse of o (may reset o's scale, see
    // SetRConv).
    void SubConv(SYS_Transform& o);
    // Writes the inverse into out; 0 for a singular matrix or parameter, with
    // out as far as it got.  A zero scale also resets this transform's own
    // scale to 1.
    short SetRConv(SYS_Transform& out);
    // Becomes its SetRConv inverse, even a partial one.
    void RConv();
    // Inverts the matrix alone; the angle and sweep parameters are reset and
    // the scale recomputed.  0 (nothing changed) for a singular matrix.
    int Invert();
    SYS_Transform operator+(const SYS_Transform& o) const;
    SYS_Transform operator-(SYS_Transform& o) const;

    // Images of points: rounded for integer points, exact for double ones.
    void Transform(SYS_Point* p) const;
    // Images of count points in place (nothing for a null array or a count
    // of 0 or less); each point gets exactly what Transform(&point) gives.
    void Transform(SYS_Point* points, int count) const;
    void Convert(SYS_Point& p) const { Transform(&p); }
    SYS_Point operator+(SYS_Point p) const { return Transform(p); }
    SYS_Point Transform(const SYS_Point& p) const;
    void Transform(SYS_DoublePoint* p) const;
    SYS_DoublePoint Transform(const SYS_DoublePoint& p) const;
    // Image under the SetRConv inverse.
    SYS_Point operator-(SYS_Point p);

    // Lengths: v * scale rounded, and the inverse v / scale rounded (a zero
    // scale is not checked).
    void Convert(long& v) const;
    long operator+(long v) const;
    long operator-(long v) const;
    // Start angle (into [0, full turn]) and sweep (truncated, a sweep of
    // more than a full turn either way becomes +full turn).
    void Convert(long& angle, long& sweep) const;

    long GetOrientation() const { return rotation; }
    // Rotation of the matrix's x axis in [0, full turn), truncated.
    long CalcAngle() const;
    double CalcXScale() const;
    double CalcYScale() const;
    short IsRotate() const { return angleFactor != 1 || rotation != 0; }
    short GetMirror() const { return sweepFactor != 1 || sweepShift != 0; }
    short IsScale() const { return scale != 1; }

    // Exact comparison of every field.
    short operator==(const SYS_Transform& o) const;
    short operator!=(const SYS_Transform& o) const { return !(*this == o); }
};

#endif // SYS_TRANSFORM_H
