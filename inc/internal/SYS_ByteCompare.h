// SYS_ByteCompare.h - strcmp of two texts whose lengths are known
// (internal: included by keel's public headers, not meant for hosts).
//
// Two string objects each end in a NUL at their size, so the bytes up to
// and including the shorter one's terminator can be read from both.  Within
// that span the comparison goes sixteen (or eight) bytes at a time, inline,
// which spares the library call and strcmp's page-crossing checks; the
// answer is strcmp's, including for texts with a NUL inside.
#ifndef SYS_BYTECOMPARE_H
#define SYS_BYTECOMPARE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The sign of comparing byte k of a and b as unsigned characters.
inline int SYS_CompareByteAt(const char* a, const char* b, size_t k) {
    const unsigned ca = static_cast<unsigned char>(a[k]);
    const unsigned cb = static_cast<unsigned char>(b[k]);
    return (ca > cb) - (ca < cb);
}

#if defined(__SSE2__)
// One bit per byte of the 16 at a and b: set where they differ or a's byte
// is NUL, the bytes where strcmp stops.
inline unsigned SYS_StopBytes16(const char* a, const char* b) {
    const __m128i va = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a));
    const __m128i vb = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b));
    const __m128i goOn =
        _mm_andnot_si128(_mm_cmpeq_epi8(va, _mm_setzero_si128()), _mm_cmpeq_epi8(va, vb));
    return static_cast<unsigned>(_mm_movemask_epi8(goOn)) ^ 0xFFFFu;
}
#endif

// The sign of strcmp(a, b), where `shorter` is the length of the shorter
// text: one of them has its NUL at that index, and every byte up to it can
// be read from both.  Up to `shorter` the texts are scanned for the first
// byte that differs or is NUL; when there is none, the bytes at `shorter`
// (one of them the terminator) decide.
inline int SYS_CompareBytes(const char* a, const char* b, size_t shorter) {
    const size_t m = shorter;
    size_t i = 0;
#if defined(__SSE2__)
    if (m >= 16) {
        for (; i + 32 <= m; i += 32) {
            const unsigned stop =
                SYS_StopBytes16(a + i, b + i) | (SYS_StopBytes16(a + i + 16, b + i + 16) << 16);
            if (stop) return SYS_CompareByteAt(a, b, i + static_cast<size_t>(__builtin_ctz(stop)));
        }
        if (i + 16 <= m) {
            const unsigned stop = SYS_StopBytes16(a + i, b + i);
            if (stop) return SYS_CompareByteAt(a, b, i + static_cast<size_t>(__builtin_ctz(stop)));
            i += 16;
        }
        if (i < m) {
            // The last 16 bytes before `m`, overlapping bytes already found
            // equal and not NUL, which cannot stop the scan.
            const size_t last = m - 16;
            const unsigned stop = SYS_StopBytes16(a + last, b + last);
            if (stop)
                return SYS_CompareByteAt(a, b, last + static_cast<size_t>(__builtin_ctz(stop)));
        }
        return SYS_CompareByteAt(a, b, m);
    }
#endif
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    const uint64_t ones = 0x0101010101010101ULL, highs = 0x8080808080808080ULL;
    for (; i + 8 <= m; i += 8) {
        uint64_t wa, wb;
        std::memcpy(&wa, a + i, 8);
        std::memcpy(&wb, b + i, 8);
        // The lowest byte that differs or is NUL in a decides; the NUL test
        // flags the lowest NUL exactly (higher flags may be spurious).
        const uint64_t stop = (wa ^ wb) | ((wa - ones) & ~wa & highs);
        if (stop)
            return SYS_CompareByteAt(a, b, i + static_cast<size_t>(__builtin_ctzll(stop) >> 3));
    }
#endif
    while (i < m && a[i] == b[i] && a[i] != 0) ++i;
    return SYS_CompareByteAt(a, b, i);
}

#endif // SYS_BYTECOMPARE_H
