/// @file SYS_Transform.h
/// SYS_Transform, the affine map between coordinate frames.
///
/// A 2x3 matrix (x' = a*x + b*y + c, y' = d*x + e*y + f) carried together with
/// separate angle, sweep and length parameters, so that orientations, arc
/// sweeps and lengths convert without decomposing the matrix.  Composition and
/// inversion update both.  Integer images are rounded half away from zero.
/// About 100 bytes, copied by value; an image costs four multiplications, a
/// composition a dozen, an inversion one division by the determinant.
/// Every Set... replaces the whole transform, except that the angle-given
/// SetRotate and SetMirror keep the previous angleOffset.
///
/// angleOffset is in radians while the angles it is added to are in angle
/// units; Convert(angle, sweep) uses it as it stands.  Hosts depend on that
/// mixture, so it stays.
///
/// Nothing here raises an assertion or throws.  The only failures reported
/// are the 0 returned by SetRConv and Invert; divisions by zero (a zero
/// scale, a zero span in SetBoxConv) are not guarded, and an integer result
/// that no 32-bit integer holds comes back as -2,147,483,648.
#ifndef SYS_TRANSFORM_H
#define SYS_TRANSFORM_H

#include "SYS_Curve.h"
#include "SYS_Geom.h"
#include "keel_config.h"
#include "internal/SYS_InlineApi.h"
#include "internal/SYS_PointMap.h"

/// Affine map of points, lengths, angles and arc sweeps; see SYS_Transform.h.
/// The identity is a = e = 1, angleFactor = sweepFactor = scale = 1 and every
/// other field 0.
class KEEL_API SYS_Transform {
public:
    /// First matrix row: x' = a*x + b*y + c.
    ///@{
    double a, b, c;
    ///@}
    /// Second matrix row: y' = d*x + e*y + f.
    ///@{
    double d, e, f;
    ///@}
    /// Multiplier of Convert(angle, sweep) when it is not 1: 1 for a proper
    /// transform, -1 for a mirror.
    double angleFactor;
    /// Offset added together with angleFactor, in radians (see the file
    /// description).
    double angleOffset;
    /// Rotation in angle units, as GetOrientation returns it.
    int32_t rotation;
    /// Multiplier of arc sweeps: -1 for a mirror.
    double sweepFactor;
    /// Added to arc sweeps.
    double sweepOffset;
    /// Only composition and inversion change it; GetMirror tests it.
    int32_t sweepShift;
    /// Length factor of Convert(long&) and the length operators.
    double scale;

    /// Identity.
    SYS_Transform();
    /// Placement of a part at a position: move the position's origin to
    /// (0, 0) unless noMoveIn, mirror x to -x when the position is mirrored
    /// (before the rotation when mirrorFirst, after it otherwise), rotate by
    /// the orientation when it is not 0, and move back to the origin unless
    /// noMoveOut.
    SYS_Transform(const SYS_Position& pos, int mirrorFirst, int noMoveIn, int noMoveOut);
    /// Placement as above of the position (x, y, angle, mirror).
    SYS_Transform(long x, long y, long angle, int mirror, int mirrorFirst, int noMoveIn,
                  int noMoveOut);
    /// Placement as above of the position (p, angle, mirror).
    SYS_Transform(const SYS_Point& p, long angle, int mirror, int mirrorFirst, int noMoveIn,
                  int noMoveOut);
    /// Does nothing.
    ~SYS_Transform() {}

    /// Copies *p (nothing when p is null) and returns a copy of the result.
    /// The pointer is only read.
    SYS_Transform operator=(const SYS_Transform* p);

    /// Identity moved by (dx, dy).
    ///@{
    void SetMove(long dx, long dy);
    void SetMove(int dx, int dy) { SetMove(static_cast<long>(dx), static_cast<long>(dy)); }
    void SetMove(double dx, double dy);
    ///@}
    /// Rotation about center by angle units (kept as given in rotation, not
    /// reduced).  Keeps the previous angleOffset.
    void SetRotate(const SYS_Point& center, long angle);
    /// Rotation along a direction vector; a vector that is not of unit length
    /// is normalised, and one shorter than about 3e-5 is taken as (1, 0).
    /// angleOffset becomes the direction's angle in radians in [0, 2 pi) and
    /// rotation the same angle in angle units, truncated.
    void SetRotate(const SYS_Point& center, double cosPart, double sinPart);
    /// Uniform scale by s about center; scale becomes s.  A negative s is a
    /// half turn as well: rotation 324,000,000, angleOffset pi.
    void SetScale(const SYS_Point& center, double s);
    /// Reflection about the line through center at angle; rotation becomes
    /// twice the angle, angleFactor and sweepFactor -1.  Keeps the previous
    /// angleOffset.
    void SetMirror(const SYS_Point& center, long angle);
    /// Reflection about the line through center along a direction vector.
    /// Only an exact unit vector or one of length 2 or more is taken as given
    /// (the latter normalised); any other becomes (1, 0), so (0.0, 0.5) acts
    /// as (1.0, 0.0).  angleOffset and rotation get the doubled direction
    /// angle, as for the rotation along a vector.
    void SetMirror(const SYS_Point& center, double cosPart, double sinPart);
    /// World to the local frame at origin turned by angle: a rotation about
    /// origin by -angle followed by a move by -origin.
    void SetCoordSys(const SYS_Point& origin, long angle);
    /// The same with a direction pair, taken exchanged and negated: the
    /// rotation is along (-second, -first).
    void SetCoordSys(const SYS_Point& origin, double first, double second);
    /// Scales the rectangle spanned by p1 and p2 to fit into box, centred: a
    /// scale about the truncated midpoint of p1 and p2 by the smaller of the
    /// width and height ratios, then a move onto box's center.  A zero span
    /// is not checked.
    void SetBoxConv(const SYS_Point& p1, const SYS_Point& p2, const SYS_Box& box);

    /// This transform followed by o (o may be this transform).  Matrices,
    /// angle, sweep and length parameters all compose.
    void AddConv(const SYS_Transform& o);
    /// This transform followed by the inverse of o (may reset o's scale, see
    /// SetRConv; the status is ignored).
    void SubConv(SYS_Transform& o);
    /// Writes the inverse into out (which may be this transform).
    /// @return 1 on success; 0 for a singular matrix or a zero angleFactor,
    ///         sweepFactor or scale (within 1e-12), with out inverted as far
    ///         as it got and identity beyond.  A zero scale also resets this
    ///         transform's own scale to 1.
    short SetRConv(SYS_Transform& out);
    /// Becomes its SetRConv inverse, even a partial one.
    void RConv();
    /// Inverts the matrix alone; the angle and sweep parameters are reset to
    /// the identity's and scale becomes the x scale of the new matrix.
    /// @return 1, or 0 (nothing changed) for a singular matrix (determinant
    ///         within 1e-18).
    int Invert();
    /// A copy of this transform followed by o.
    SYS_Transform operator+(const SYS_Transform& o) const;
    /// A copy of this transform followed by the SetRConv inverse of o (o's
    /// scale may be reset, see SetRConv).
    SYS_Transform operator-(SYS_Transform& o) const;

    /// Replaces *p by its image, each coordinate rounded; nothing for null.
    /// Inline on x86-64, so that a loop over many points costs no call per
    /// point.
#if defined(SYS_POINTMAP_LANES)
    KEEL_INLINE_API void Transform(SYS_Point* p) const {
        if (p) SYS_MapPoint(a, b, c, d, e, f, p->x, p->y);
    }
#else
    void Transform(SYS_Point* p) const;
#endif
    /// Images of count points in place (nothing for a null array or a count
    /// of 0 or less); each point gets exactly what Transform(&point) gives.
    void Transform(SYS_Point* points, int count) const;
    /// Replaces p by its image, each coordinate rounded.
    void Convert(SYS_Point& p) const { Transform(&p); }
    /// The image of p, each coordinate rounded.
    SYS_Point operator+(SYS_Point p) const { return Transform(p); }
    /// The image of p, each coordinate rounded.
    SYS_Point Transform(const SYS_Point& p) const;
    /// Replaces *p by its image, not rounded; nothing for null.
    void Transform(SYS_DoublePoint* p) const;
    /// The image of p, not rounded.
    SYS_DoublePoint Transform(const SYS_DoublePoint& p) const;
    /// Image under the SetRConv inverse (its status ignored; a zero scale of
    /// this transform is reset to 1 on the way).
    SYS_Point operator-(SYS_Point p);

    /// Converts a length in place: v * scale, rounded.
    void Convert(long& v) const;
    /// A length converted: v * scale, rounded.
    long operator+(long v) const;
    /// A length converted back: v / scale, rounded (a zero scale is not
    /// checked).
    long operator-(long v) const;
    /// Converts a start angle and a sweep in place.  The angle is brought
    /// into [0, full turn] (a full turn itself stays), then turned by
    /// rotation, or, when angleFactor is not 1, multiplied by it with
    /// angleOffset added and rounded; then brought into [0, full turn] again.
    /// The sweep becomes sweep * sweepFactor + sweepOffset, truncated; a
    /// sweep of more than a full turn either way becomes +full turn.
    void Convert(long& angle, long& sweep) const;

    /// The rotation field, in angle units.
    long GetOrientation() const { return rotation; }
    /// Rotation of the matrix's x axis in [0, full turn), truncated.
    long CalcAngle() const;
    /// Length of the image of the x unit vector, sqrt(a^2 + d^2).
    double CalcXScale() const;
    /// Length of the image of the y unit vector, sqrt(b^2 + e^2).
    double CalcYScale() const;
    /// 1 when angleFactor is not 1 or rotation is not 0, else 0 (a mirror
    /// counts as a rotation).
    short IsRotate() const { return angleFactor != 1 || rotation != 0; }
    /// 1 when the transform mirrors (sweepFactor not 1 or sweepShift not 0),
    /// else 0.
    short GetMirror() const { return sweepFactor != 1 || sweepShift != 0; }
    /// 1 when scale is not 1, else 0.
    short IsScale() const { return scale != 1; }

    /// 1 when every field is exactly equal (no tolerance), else 0.
    short operator==(const SYS_Transform& o) const;
    /// 1 when some field differs, else 0.
    short operator!=(const SYS_Transform& o) const { return !(*this == o); }
};

#endif // SYS_TRANSFORM_H
