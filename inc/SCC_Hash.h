// SCC_Hash.h - bucket indexes and three-way comparisons for hash-table keys.
//
// Free overloads of SCC_Hash (a bucket index in [0, size) for a key) and
// SCC_Compare (negative, 0 or positive) for the key types a hash table uses,
// and SCC_GetNewTableSize, the bucket count a growing table moves to.  Text
// hashes walk the text once; nothing keeps state.  Hash arithmetic is done in
// 32 bits, whatever the width of `long`, so a key lands in the same bucket
// everywhere.
#ifndef SCC_HASH_H
#define SCC_HASH_H

#include "SYS_Geom.h"
#include "SYS_String.h"
#include "keel_config.h"

// A text key that hashes and compares without regard to letter case.
class KEEL_API SCC_StrNoCase : public SYS_StringBase {
public:
    SCC_StrNoCase() {}
    SCC_StrNoCase(const char* s) : SYS_StringBase(s) {}
    SCC_StrNoCase(const SYS_StringBase& s) : SYS_StringBase(s) {}
};

// The bucket counts, primes near 1.5 * 2^k in increasing order.
constexpr int SCC_TABLE_SIZE_COUNT = 29;
extern KEEL_API const int32_t SCC_TableSizes[SCC_TABLE_SIZE_COUNT];

// The first bucket count greater than `n`; 0 past the largest.
KEEL_API long SCC_GetNewTableSize(long n);

// Text hashes: byte c(i) at 1-based place i weighs c(i) * i * 6293815^i,
// summed modulo 2^32; the bucket is that sum modulo `size` by unsigned 32-bit
// division, read back as a signed 32-bit number.
// This one does not test `size`: a negative size acts as its unsigned 32-bit
// value, and a size of 0 leaves the sum unreduced.  A null text hashes as "".
KEEL_API long SCC_Hash(const char* const& s, long size);
// 0 when `size` < 1.
KEEL_API long SCC_Hash(const SYS_StringBase& s, long size);
// Every byte lowered by tolower first; 0 when `size` < 1.
KEEL_API long SCC_Hash(const SCC_StrNoCase& s, long size);
// The address as an unsigned 32-bit number modulo `size`; a remainder that
// reads as negative in 32 bits gets `size` added.
KEEL_API long SCC_Hash(const void* const& p, long size);
KEEL_API long SCC_Hash(void* const& p, long size);
// |x * y| (32-bit, wrapping; the most negative product stays itself), then
// its signed remainder by `size`.
KEEL_API long SCC_Hash(const SYS_Point& p, long size);

// 0 for equal values; 1 when b < a or either is not a number; else -1.
KEEL_API int SCC_Compare(const double& a, const double& b);
// Multibyte character order (a null text compares as "").
KEEL_API int SCC_Compare(const char* const& a, const char* const& b);
KEEL_API int SCC_Compare(const SYS_StringBase& a, const SYS_StringBase& b);
// Multibyte order with single-byte letters compared without case.
KEEL_API int SCC_Compare(const SCC_StrNoCase& a, const SCC_StrNoCase& b);
// Address order, unsigned: 0, 1 when a is the higher address, else -1.
KEEL_API int SCC_Compare(const void* const& a, const void* const& b);
KEEL_API int SCC_Compare(void* const& a, void* const& b);
// a.x - b.x when it is not 0, else a.y - b.y (32-bit differences, wrapping).
KEEL_API int SCC_Compare(const SYS_Point& a, const SYS_Point& b);

#endif // SCC_HASH_H
