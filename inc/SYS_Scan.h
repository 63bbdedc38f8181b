// SYS_Scan.h - scanners for numbers in text, natural comparison, field split.
//
// Free functions that look at multibyte text without converting it.  They step
// one character at a time (a lead byte with its trail byte), so a double-byte
// character is never split.  The number scanners are lenient about signs
// ('+' and '-' are skipped anywhere, so "1-2" and "--5" scan) and strict about
// notation (no "0x" prefix, no octal from a leading 0).
#ifndef SYS_SCAN_H
#define SYS_SCAN_H

#include "keel_config.h"

class SYS_StringBase;

// The first character after the floating-point number that starts `s`, or
// null when none does.  A non-zero `decimalOnly` ends the number at an
// exponent letter.
KEEL_API char* getdouble(const char* s, int decimalOnly);

// 1 when all of `s` is one floating-point number.
KEEL_API int isdouble(const char* s, int decimalOnly);
KEEL_API int isdecdouble(const char* s);

// The first character after the integer that starts `s`, or null.  `kind` is
// 1 decimal, 2 octal, 3 hexadecimal; other values scan decimal digits.
KEEL_API char* getinteger(const char* s, int kind);

// 1 when all of `s` is one integer of the kind.
KEEL_API int isinteger(const char* s, int kind);
KEEL_API int isdecinteger(const char* s);
KEEL_API int isoctinteger(const char* s);
KEEL_API int ishexinteger(const char* s);

// Natural comparison: digit runs compare by value (a2 < a10, a007 == a7), and
// '$' sorts after every other character and after the end of the text.
KEEL_API int _tcsnumcmp(const char* a, const char* b);

// Stores field `index` (from 0) of `s`, split at `sep`, in `out` and returns
// 1; returns 0 when there is no such field (`out` is then emptied, unless `s`
// is null, when `out` is left alone).
KEEL_API int SysExtractSubString(SYS_StringBase& out, const char* s, int index, char sep);

#endif // SYS_SCAN_H
