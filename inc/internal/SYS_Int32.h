// SYS_Int32.h - 32-bit integer arithmetic whatever the width of `long`
// (internal: included by keel's public headers, not meant for hosts).
//
// Coordinates, angles and array indices are signed 32-bit values.  Sums,
// differences and products wrap around in 32 bits (done on unsigned values so
// that the wrap is defined), and doubles come back to integers either
// truncated toward zero or rounded half away from zero.  This header is the
// one place where those rules live.
#ifndef SYS_INT32_H
#define SYS_INT32_H

#include <cmath>
#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// A wider argument keeps its low 32 bits.
inline int32_t SYS_Wrap32(long long v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }
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
// instead of undefined behaviour.  On x86 that conversion is used directly:
// it truncates and answers the most negative integer for every value out of
// range, so the result is the same with no test at all.
inline int32_t SYS_Trunc32(double v) {
#if defined(__SSE2__)
    return _mm_cvttsd_si32(_mm_set_sd(v));
#else
    if (!(v > -2147483649.0 && v < 2147483648.0)) return INT32_MIN;
    return static_cast<int32_t>(v);
#endif
}

// Rounding half away from zero: 0.5 is added to a positive value and
// subtracted from a negative one before truncation, literally, so that the
// results match the host's own arithmetic bit for bit.  Adding 0.5 with the
// sign of the value does exactly that without a branch (random signs would
// defeat the processor's branch prediction); only +0 and -0 take the other
// half, and both still give 0.
inline int32_t SYS_Round32(double v) { return SYS_Trunc32(v + std::copysign(0.5, v)); }

#endif // SYS_INT32_H
