// SYS_ByteCompare.h - strcmp of two texts whose readable length is known
// (internal: included by keel's public headers, not meant for hosts).
//
// Two string objects each end in a NUL at their size, so min(size) + 1 bytes
// can be read from both.  Within that span the comparison goes eight bytes at
// a time, inline, which spares the library call and strcmp's page-crossing
// checks; the answer is strcmp's, including for texts with a NUL inside.
#ifndef SYS_BYTECOMPARE_H
#define SYS_BYTECOMPARE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The sign of strcmp(a, b), given that n bytes can be read from both and
// that one of them has a NUL within those n bytes.
inline int SYS_CompareBytes(const char* a, const char* b, size_t n) {
    size_t i = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    for (; i + 16 <= n; i += 16) {
        const __m128i va = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
        const __m128i vb = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
        // Bytes that are equal and not NUL carry on; the first other one decides.
        const unsigned go = static_cast<unsigned>(
            _mm_movemask_epi8(_mm_andnot_si128(_mm_cmpeq_epi8(va, zero), _mm_cmpeq_epi8(va, vb))));
        if (go != 0xFFFF) {
            const size_t k = i + static_cast<size_t>(__builtin_ctz(~go));
            const unsigned ca = static_cast<unsigned char>(a[k]);
            const unsigned cb = static_cast<unsigned char>(b[k]);
            return (ca > cb) - (ca < cb);
        }
    }
#endif
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    const uint64_t ones = 0x0101010101010101ULL, highs = 0x8080808080808080ULL;
    for (; i + 8 <= n; i += 8) {
        uint64_t wa, wb;
        std::memcpy(&wa, a + i, 8);
        std::memcpy(&wb, b + i, 8);
        // The lowest byte that differs or is NUL in a decides; the NUL test
        // flags the lowest NUL exactly (higher flags may be spurious).
        const uint64_t stop = (wa ^ wb) | ((wa - ones) & ~wa & highs);
        if (stop) {
            const int shift = __builtin_ctzll(stop) & ~7;
            const unsigned ca = static_cast<unsigned>(wa >> shift) & 0xFF;
            const unsigned cb = static_cast<unsigned>(wb >> shift) & 0xFF;
            return (ca > cb) - (ca < cb);
        }
    }
#endif
    for (; i < n; ++i) {
        const unsigned ca = static_cast<unsigned char>(a[i]);
        const unsigned cb = static_cast<unsigned char>(b[i]);
        if (ca != cb) return ca < cb ? -1 : 1;
        if (ca == 0) return 0;
    }
    return 0;
}

#endif // SYS_BYTECOMPARE_H
