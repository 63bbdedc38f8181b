// SYS_GeomMath.h - angle arithmetic of the integer geometry (internal).
//
// Angle units and radians, polar angles and refined square roots; the 32-bit
// integer rules they rest on are in internal/SYS_Int32.h.
#ifndef SYS_GEOMMATH_H
#define SYS_GEOMMATH_H

#include "SYS_Geom.h"
#include "internal/SYS_Int32.h"

#include <cmath>
#include <cstdint>

constexpr double SYS_GEOM_PI = 3.141592653589793;

// Angle units and radians; the order of the operations is part of the result.
inline double SYS_AngleToRadians(double angle) { return angle * SYS_GEOM_PI / SYS_HALF_TURN; }
inline int32_t SYS_RadiansToAngle(double radians) {
    return SYS_Trunc32(radians * SYS_HALF_TURN / SYS_GEOM_PI);
}

// Polar angle of a vector in angle units, in [0, full turn); (0, 0) gives 0.
inline int32_t SYS_PolarAngle(double x, double y) {
    int32_t a = SYS_RadiansToAngle(std::atan2(y, x));
    return a < 0 ? static_cast<int32_t>(a + SYS_FULL_TURN) : a;
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
