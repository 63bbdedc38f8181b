// SYS_GeomMath.h - the number rules of the integer geometry (internal).
//
// Every geometry type works on signed 32-bit coordinates and angles whatever
// the width of `long`: integer sums, differences and products wrap in 32 bits,
// and doubles come back to integers either truncated toward zero or rounded
// half away from zero, as each operation states.  These helpers are the one
// place where those rules live.
#ifndef SYS_GEOMMATH_H
#define SYS_GEOMMATH_H

#include <cmath>
#include <cstdint>

constexpr double SYS_GEOM_PI = 3.141592653589793;
constexpr double SYS_GEOM_HALF_TURN = 324000000.0;

// A long argument keeps its low 32 bits, as the coordinate fields do.
inline int32_t SYS_Wrap32(long v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }
inline int32_t SYS_Add32(long a, long b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
inline int32_t SYS_Sub32(long a, long b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
inline int32_t SYS_Mul32(long a, long b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
inline int32_t SYS_Neg32(long a) { return SYS_Sub32(0, a); }
// |v|, where the most negative value stays itself.
inline int32_t SYS_Abs32(long a) {
    int32_t v = SYS_Wrap32(a);
    return v < 0 ? SYS_Neg32(v) : v;
}

// Truncation toward zero.  A value that no 32-bit integer holds (or NaN)
// gives the most negative integer, as the processor's own conversion does,
// instead of undefined behaviour.
inline int32_t SYS_Trunc32(double v) {
    if (!(v > -2147483649.0 && v < 2147483648.0)) return INT32_MIN;
    return static_cast<int32_t>(v);
}

// Rounding half away from zero: 0.5 is added to a positive value and
// subtracted from a negative one before truncation, literally, so that the
// results match the host's own arithmetic bit for bit.
inline int32_t SYS_Round32(double v) { return SYS_Trunc32(v > 0 ? v + 0.5 : v - 0.5); }

// Angle units and radians; the order of the operations is part of the result.
inline double SYS_AngleToRadians(double angle) { return angle * SYS_GEOM_PI / SYS_GEOM_HALF_TURN; }
inline int32_t SYS_RadiansToAngle(double radians) {
    return SYS_Trunc32(radians * SYS_GEOM_HALF_TURN / SYS_GEOM_PI);
}

// Polar angle of a vector in angle units, in [0, full turn); (0, 0) gives 0.
inline int32_t SYS_PolarAngle(double x, double y) {
    int32_t a = SYS_RadiansToAngle(std::atan2(y, x));
    return a < 0 ? a + 648000000 : a;
}

// Polar angle in radians, in [0, 2*pi), built from the first-octant arc
// tangent so that the axes and diagonals come out exact.
inline double SYS_PolarRadians(double x, double y) {
    if (y == 0) return x < 0 ? SYS_GEOM_PI : 0.0;
    if (x == 0) return y > 0 ? SYS_GEOM_PI / 2 : 3 * SYS_GEOM_PI / 2;
    double ax = std::fabs(x), ay = std::fabs(y);
    double t = ax == ay ? SYS_GEOM_PI / 4
                        : (ax > ay ? std::atan2(ay, ax) : SYS_GEOM_PI / 2 - std::atan2(ax, ay));
    if (x > 0) return y > 0 ? t : 2 * SYS_GEOM_PI - t;
    return y > 0 ? SYS_GEOM_PI - t : SYS_GEOM_PI + t;
}

// Square root refined by one Newton step.
inline double SYS_RefinedRoot(double s) {
    double r = std::sqrt(s);
    if (r != 0) r = (r * r + s) * 0.5 / r;
    return r;
}

#endif // SYS_GEOMMATH_H
