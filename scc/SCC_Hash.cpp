// SCC_Hash.cpp - hash and comparison helpers for hash-table keys.
#include "SCC_Hash.h"
#include "internal/SYS_Int32.h"
#include "sys/internal/SYS_Mbcs.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>

const int32_t SCC_TableSizes[SCC_TABLE_SIZE_COUNT] = {
    3,        5,         11,        23,        47,       97,      193,      383,
    769,      1531,      3067,      6143,      12289,    24571,   49157,    98299,
    196613,   393209,    786431,    1572869,   3145721,  6291449, 12582917, 25165813,
    50331653, 100663291, 201326611, 402653189, 805306357};

namespace {

const uint32_t kHashFactor = 6293815; // 0x600937

// The sum of c(i) * i * K^i over the bytes, modulo 2^32.
template <class Fold> uint32_t TextHash(const char* s, Fold fold) {
    uint32_t sum = 0, power = 1, place = 0;
    if (!s) return 0;
    for (const unsigned char* p = reinterpret_cast<const unsigned char*>(s); *p; ++p) {
        ++place;
        power *= kHashFactor;
        sum += fold(*p) * place * power;
    }
    return sum;
}

uint32_t Same(unsigned char c) { return c; }
uint32_t Lower(unsigned char c) { return static_cast<unsigned char>(std::tolower(c)); }

// Sizes are 32-bit quantities; a wider long keeps its low 32 bits.
uint32_t UnsignedSize(long size) { return static_cast<uint32_t>(size); }

// x modulo a 32-bit size by unsigned division; a zero size leaves x as it is
// rather than trapping.
uint32_t UnsignedRemainder(uint32_t x, long size) {
    uint32_t d = UnsignedSize(size);
    return d ? x % d : x;
}

long AddressHash(const void* p, long size) {
    uint32_t address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(p));
    int32_t r = static_cast<int32_t>(UnsignedRemainder(address, size));
    if (r < 0) r = SYS_Add32(r, size);
    return r;
}

int AddressCompare(const void* a, const void* b) {
    uintptr_t x = reinterpret_cast<uintptr_t>(a), y = reinterpret_cast<uintptr_t>(b);
    return x == y ? 0 : (x > y ? 1 : -1);
}

// A 32-bit result as the signed long it reads as.
long Signed(uint32_t v) { return static_cast<int32_t>(v); }

} // namespace

long SCC_GetNewTableSize(long n) {
    const int32_t* end = std::end(SCC_TableSizes);
    const int32_t* next = std::upper_bound(std::begin(SCC_TableSizes), end, n,
                                           [](long v, int32_t e) { return v < e; });
    return next == end ? 0 : *next;
}

long SCC_Hash(const char* const& s, long size) {
    return Signed(UnsignedRemainder(TextHash(s, Same), size));
}

long SCC_Hash(const SYS_StringBase& s, long size) {
    if (size < 1) return 0;
    return Signed(UnsignedRemainder(TextHash(s.GetString(), Same), size));
}

long SCC_Hash(const SCC_StrNoCase& s, long size) {
    if (size < 1) return 0;
    return Signed(UnsignedRemainder(TextHash(s.GetString(), Lower), size));
}

long SCC_Hash(const void* const& p, long size) { return AddressHash(p, size); }

long SCC_Hash(void* const& p, long size) { return AddressHash(p, size); }

long SCC_Hash(const SYS_Point& p, long size) {
    // |x * y| in 32 bits: the most negative value is its own negation.
    int32_t magnitude = SYS_Abs32(SYS_Mul32(p.x, p.y));
    int32_t d = static_cast<int32_t>(size);
    // The remainder is taken in 64 bits so that the most negative value by -1
    // gives 0 instead of trapping; a zero size leaves |v| as it is.
    return d ? static_cast<long>(static_cast<int64_t>(magnitude) % d) : magnitude;
}

int SCC_Compare(const double& a, const double& b) {
    if (a == b) return 0;
    if (b < a || std::isnan(a) || std::isnan(b)) return 1;
    return -1;
}

int SCC_Compare(const char* const& a, const char* const& b) {
    return SYS_MbsCmp(SYS_NotNull(a), SYS_NotNull(b));
}

int SCC_Compare(const SYS_StringBase& a, const SYS_StringBase& b) {
    return SYS_MbsCmp(a.GetString(), b.GetString());
}

int SCC_Compare(const SCC_StrNoCase& a, const SCC_StrNoCase& b) {
    return SYS_MbsICmp(a.GetString(), b.GetString());
}

int SCC_Compare(const void* const& a, const void* const& b) { return AddressCompare(a, b); }

int SCC_Compare(void* const& a, void* const& b) { return AddressCompare(a, b); }

int SCC_Compare(const SYS_Point& a, const SYS_Point& b) {
    int32_t dx = SYS_Sub32(a.x, b.x);
    if (dx) return dx;
    return SYS_Sub32(a.y, b.y);
}
