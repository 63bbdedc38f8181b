// SYS_Scan.cpp - number scanners, natural comparison and field extraction.
#include "SYS_Scan.h"
#include "SYS_String.h"
#include "sys/internal/SYS_Mbcs.h"
#include "sys/internal/SYS_Numbers.h"

namespace {

inline bool IsSign(char c) { return c == '-' || c == '+'; }

inline int AtEnd(const char* p) { return p && *p == '\0' ? 1 : 0; }

} // namespace

char* getdouble(const char* s, int decimalOnly) {
    if (!*s) return nullptr;
    int mantissa = 0, marker = 0, exponent = 0;
    const char* p = s;
    bool exponentLetterEnds = false;
    for (; *p; p = SYS_MbsInc(p)) {
        char c = *p;
        if (IsSign(c)) continue;
        if (c == '.' && exponent == 0 && marker == 0) {
            marker = 1;
            continue;
        }
        if ((c == 'E' || c == 'e') && exponent == 0) {
            if (decimalOnly) {
                exponentLetterEnds = true;
                break;
            }
            ++marker;
            exponent = 1;
            continue;
        }
        if (!SYS_IsMbcDigit(p)) break;
        if (exponent > 0)
            ++exponent;
        else
            ++mantissa;
    }
    if (!exponentLetterEnds && exponent == 1) return nullptr; // "1e" has no exponent digits
    return mantissa == 0 ? nullptr : const_cast<char*>(p);
}

int isdouble(const char* s, int decimalOnly) { return AtEnd(getdouble(s, decimalOnly)); }

int isdecdouble(const char* s) { return isdouble(s, 1); }

char* getinteger(const char* s, int kind) {
    if (!*s) return nullptr;
    int digits = 0;
    const char* p = s;
    for (; *p; p = SYS_MbsInc(p)) {
        char c = *p;
        if (IsSign(c)) continue;
        if (kind == 3) {
            if (!SYS_IsHexDigit(c)) break;
        } else if (!SYS_IsMbcDigit(p) || (kind == 2 && c > '7')) {
            break;
        }
        ++digits;
    }
    return digits == 0 ? nullptr : const_cast<char*>(p);
}

int isinteger(const char* s, int kind) { return AtEnd(getinteger(s, kind)); }
int isdecinteger(const char* s) { return isinteger(s, 1); }
int isoctinteger(const char* s) { return isinteger(s, 2); }
int ishexinteger(const char* s) { return isinteger(s, 3); }

int _tcsnumcmp(const char* a, const char* b) {
    while (*a && *b) {
        if (SYS_IsMbcDigit(a) && SYS_IsMbcDigit(b)) {
            long na = SYS_ParseLong32(a).value;
            long nb = SYS_ParseLong32(b).value;
            if (na != nb) return na > nb ? 1 : -1;
            while (SYS_IsMbcDigit(a)) ++a;
            while (SYS_IsMbcDigit(b)) ++b;
            if (!*a) break;
            continue;
        }
        if (SYS_MbcCmp(a, b) != 0) break;
        a = SYS_MbsInc(a);
        b = SYS_MbsInc(b);
        if (!*a) break;
    }
    if (*a == '$' && *b != '$') return 1;
    if (*b == '$' && *a != '$') return -1;
    return SYS_MbcCmp(a, b);
}

int SysExtractSubString(SYS_StringBase& out, const char* s, int index, char sep) {
    if (!s) return 0;
    unsigned c = static_cast<unsigned char>(sep);
    const char* p = s;
    for (int skipped = 0; index < 0 || skipped < index; ++skipped) {
        const char* hit = SYS_MbsChr(p, c);
        if (!hit) {
            out.Empty();
            return 0;
        }
        p = hit + 1;
    }
    const char* next = SYS_MbsChr(p, c);
    out = next ? SYS_StringBase(p, static_cast<int>(next - p)) : SYS_StringBase(p);
    return 1;
}
