// SYS_Numbers.cpp - decimal number parsing with fixed 32-bit limits.
#include "sys/internal/SYS_Numbers.h"

#include <cctype>
#include <cstdint>
#include <cstdlib>

namespace {

struct Scan {
    bool negative = false;
    uint64_t magnitude = 0; // saturates just above UINT32_MAX
    size_t used = 0;
};

Scan ScanDecimal(const char* s) {
    Scan r;
    const char* p = s;
    while (std::isspace(static_cast<unsigned char>(*p))) ++p;
    if (*p == '+' || *p == '-') r.negative = *p++ == '-';
    if (*p < '0' || *p > '9') return r;
    const uint64_t cap = uint64_t(UINT32_MAX) + 1;
    for (; *p >= '0' && *p <= '9'; ++p) {
        r.magnitude = r.magnitude * 10 + static_cast<uint64_t>(*p - '0');
        if (r.magnitude > cap) r.magnitude = cap;
    }
    r.used = static_cast<size_t>(p - s);
    return r;
}

} // namespace

SYS_ParsedLong SYS_ParseLong32(const char* s) {
    Scan r = ScanDecimal(s);
    int64_t v = r.negative ? -static_cast<int64_t>(r.magnitude) : static_cast<int64_t>(r.magnitude);
    if (v > INT32_MAX) v = INT32_MAX;
    if (v < INT32_MIN) v = INT32_MIN;
    return {static_cast<long>(v), r.used};
}

SYS_ParsedULong SYS_ParseULong32(const char* s) {
    Scan r = ScanDecimal(s);
    uint32_t v = r.magnitude > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(r.magnitude);
    if (r.negative && r.magnitude <= UINT32_MAX) v = static_cast<uint32_t>(0u - v);
    return {v, r.used};
}

SYS_ParsedDouble SYS_ParseDouble(const char* s) {
    char* end = nullptr;
    double v = std::strtod(s, &end);
    return {v, static_cast<size_t>(end - s)};
}
