// SYS_Numbers.h - decimal number parsing with fixed 32-bit limits (internal).
//
// Each parser skips leading white space, takes an optional sign and the digits
// that follow, and reports how many bytes it used (0 when no number starts the
// text).  Integers saturate at the 32-bit limits whatever the width of `long`
// on this platform; an unsigned parse of a negative number wraps as 32 bits.
#ifndef SYS_NUMBERS_H
#define SYS_NUMBERS_H

#include <cstddef>

struct SYS_ParsedLong {
    long value;
    size_t used;
};
struct SYS_ParsedULong {
    unsigned long value;
    size_t used;
};
struct SYS_ParsedDouble {
    double value;
    size_t used;
};

// 0-9, a-f, A-F, whatever the locale.
inline bool SYS_IsHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

SYS_ParsedLong SYS_ParseLong32(const char* s);
SYS_ParsedULong SYS_ParseULong32(const char* s);
SYS_ParsedDouble SYS_ParseDouble(const char* s);

#endif // SYS_NUMBERS_H
