// SYS_PointMap.h - the rounded image of an integer point under an affine
// map (internal: included by keel's public headers, not meant for hosts).
//
// x' = a*x + b*y + c and y' = d*x + e*y + f in double, each rounded half away
// from zero as SYS_Round32 rounds.  On x86-64 both rows share one pair of
// lanes (lane 0 computes x', lane 1 y'), with the same operations in the same
// order as the scalar formulas and no branch, so every result is the same
// bit for bit: a value that no 32-bit integer holds, or NaN, gives
// -2,147,483,648 as SYS_Trunc32 does.  Only there is it inline in hosts
// (SYS_POINTMAP_LANES); elsewhere the library alone computes images.
#ifndef SYS_POINTMAP_H
#define SYS_POINTMAP_H

#include "SYS_Int32.h"

#include <cstdint>
#if defined(__SSE2__) && defined(__x86_64__)
#define SYS_POINTMAP_LANES 1
#include <emmintrin.h>
#endif

// Replaces (x, y) by its rounded image.
inline void SYS_MapPoint(double a, double b, double c, double d, double e, double f, int32_t& x,
                         int32_t& y) {
#if defined(SYS_POINTMAP_LANES)
    const __m128d xy =
        _mm_cvtepi32_pd(_mm_unpacklo_epi32(_mm_cvtsi32_si128(x), _mm_cvtsi32_si128(y)));
    const __m128d xx = _mm_unpacklo_pd(xy, xy);
    const __m128d yy = _mm_unpackhi_pd(xy, xy);
    __m128d ax = _mm_mul_pd(_mm_set_pd(d, a), xx);
    __m128d by = _mm_mul_pd(_mm_set_pd(e, b), yy);
    // The products stay products: a host built for processors with fused
    // multiply-add must not fuse them into the sum, or its images would
    // differ from the library's in rare half-unit cases.
    __asm__("" : "+x"(ax), "+x"(by));
    __m128d r = _mm_add_pd(_mm_add_pd(ax, by), _mm_set_pd(f, c));
    // + 0.5 with the sign of each lane, then the processor's truncation.
    r = _mm_add_pd(r, _mm_or_pd(_mm_and_pd(r, _mm_set1_pd(-0.0)), _mm_set1_pd(0.5)));
    const long long both = _mm_cvtsi128_si64(_mm_cvttpd_epi32(r));
    x = static_cast<int32_t>(both);
    y = static_cast<int32_t>(both >> 32);
#else
    const double px = x, py = y;
    x = SYS_Round32(a * px + b * py + c);
    y = SYS_Round32(d * px + e * py + f);
#endif
}

#endif // SYS_POINTMAP_H
