/// @file
/// Bucket indexes and three-way comparisons for hash-table keys.
///
/// Free overloads of SCC_Hash (a bucket index in [0, size) for a key) and
/// SCC_Compare (negative, 0 or positive) for the key types a hash table uses,
/// and SCC_GetNewTableSize, the bucket count a growing table moves to.  Text
/// hashes walk the text once, O(length); the others are O(1).  Nothing keeps
/// state.  Hash arithmetic is done in 32 bits, whatever the width of `long`,
/// so a key lands in the same bucket everywhere.
///
/// Pair the overloads by key type: a table of SCC_StrNoCase keys must both
/// hash and compare them as SCC_StrNoCase, so that keys differing only in
/// case meet in one bucket and compare equal.
#ifndef SCC_HASH_H
#define SCC_HASH_H

#include "SYS_Geom.h"
#include "SYS_String.h"
#include "keel_config.h"

/// A text key that hashes and compares without regard to letter case.
///
/// It is a string like any other; only the SCC_Hash and SCC_Compare overloads
/// for it ignore case.
class KEEL_API SCC_StrNoCase : public SYS_StringBase {
public:
    /// An empty key.
    SCC_StrNoCase() {}
    /// A key with a copy of the text `s`.
    SCC_StrNoCase(const char* s) : SYS_StringBase(s) {}
    /// A key with a copy of the text of `s`.
    SCC_StrNoCase(const SYS_StringBase& s) : SYS_StringBase(s) {}
};

/// The number of entries of SCC_TableSizes.
constexpr int SCC_TABLE_SIZE_COUNT = 29;
/// The bucket counts, primes near 1.5 * 2^k in increasing order, from 3 to
/// 805306357.
extern KEEL_API const int32_t SCC_TableSizes[SCC_TABLE_SIZE_COUNT];

/// The first bucket count of SCC_TableSizes greater than `n` (3 for any
/// negative `n`); 0 once `n` reaches the largest, 805306357.  Use it to grow a
/// table: the next size is SCC_GetNewTableSize(current size).
KEEL_API long SCC_GetNewTableSize(long n);

/// @name Hashes
/// Each returns a bucket index for a key and a table of `size` buckets.
///@{

/// Text hash: byte c(i) at 1-based place i weighs c(i) * i * 6293815^i,
/// summed modulo 2^32; the bucket is that sum modulo `size` by unsigned 32-bit
/// division, read back as a signed 32-bit number.  An empty text hashes to 0.
/// This one does not test `size`: a negative size acts as its unsigned 32-bit
/// value, and a size of 0 leaves the sum unreduced, so the result may be
/// negative or out of range.  A null text hashes as "".
KEEL_API long SCC_Hash(const char* const& s, long size);
/// Text hash of the string, as for `const char*`; 0 when `size` < 1.
KEEL_API long SCC_Hash(const SYS_StringBase& s, long size);
/// Text hash with every byte lowered by tolower first, so keys that differ
/// only in case share a bucket; 0 when `size` < 1.
KEEL_API long SCC_Hash(const SCC_StrNoCase& s, long size);
/// Address hash: the address as an unsigned 32-bit number modulo `size`; a
/// remainder that reads as negative in 32 bits gets `size` added.
KEEL_API long SCC_Hash(const void* const& p, long size);
/// Address hash, as for `const void*`.
KEEL_API long SCC_Hash(void* const& p, long size);
/// Point hash: |x * y| (32-bit, wrapping; the most negative product stays
/// itself), then its signed remainder by `size`.  Points on either axis all
/// land in bucket 0.
KEEL_API long SCC_Hash(const SYS_Point& p, long size);
///@}

/// @name Comparisons
/// Each returns 0 when the keys are equal, else a negative or positive number
/// as `a` orders before or after `b`.
///@{

/// 0 for equal values; 1 when b < a or either is not a number; else -1.  A
/// NaN therefore compares greater than everything, itself included.
KEEL_API int SCC_Compare(const double& a, const double& b);
/// Multibyte character order (a null text compares as "").
KEEL_API int SCC_Compare(const char* const& a, const char* const& b);
/// Multibyte character order of the two texts.
KEEL_API int SCC_Compare(const SYS_StringBase& a, const SYS_StringBase& b);
/// Multibyte order with single-byte letters compared without case.
KEEL_API int SCC_Compare(const SCC_StrNoCase& a, const SCC_StrNoCase& b);
/// Address order, unsigned: 0, 1 when a is the higher address, else -1.
KEEL_API int SCC_Compare(const void* const& a, const void* const& b);
/// Address order, as for `const void*`.
KEEL_API int SCC_Compare(void* const& a, void* const& b);
/// a.x - b.x when it is not 0, else a.y - b.y (32-bit differences, wrapping):
/// the difference itself, not just its sign, and of the wrong sign when the
/// difference overflows.
KEEL_API int SCC_Compare(const SYS_Point& a, const SYS_Point& b);
///@}

#endif // SCC_HASH_H
