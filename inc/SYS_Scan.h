/// @file
/// Scanners for numbers in text, natural comparison, field split.
///
/// Free functions that look at multibyte text without converting it or
/// allocating.  They step one character at a time (a lead byte with its trail
/// byte), so a double-byte character is never split, and each costs one pass
/// over the part of the text it reads.  Digits are the ASCII digits.  The
/// number scanners are lenient about signs ('+' and '-' are skipped anywhere,
/// so "1-2" and "--5" scan) and strict about notation (no "0x" prefix, no
/// octal from a leading 0).  Texts must not be null, except where
/// SysExtractSubString says so.
#ifndef SYS_SCAN_H
#define SYS_SCAN_H

#include "keel_config.h"

class SYS_StringBase;

/// The first character after the floating-point number that starts `s`, or
/// null when none does.
///
/// A number is digits with at most one '.', optionally followed by an
/// exponent letter ('e' or 'E') and exponent digits; signs are skipped
/// wherever they stand.  At least one digit must come before the exponent
/// (".5" and "5." scan, "." does not), and an exponent letter needs digits
/// ("1e" gives null).  A non-zero `decimalOnly` ends the number at an
/// exponent letter: "1e5" then gives the position of the 'e'.  A second
/// point, or a point after the exponent letter, ends the number.  The result
/// points into `s`.
KEEL_API char* getdouble(const char* s, int decimalOnly);

/// 1 when all of `s` is one floating-point number as getdouble reads it,
/// else 0.  With `decimalOnly` 0 it is true for "1e5", ".5" and "1-2", and
/// false for "1e", "." and "1.2.3".
KEEL_API int isdouble(const char* s, int decimalOnly);
/// isdouble(s, 1): a number without exponent ("1e5" is not one).
KEEL_API int isdecdouble(const char* s);

/// The first character after the integer that starts `s`, or null when it
/// starts with none.  `kind` is 1 decimal, 2 octal, 3 hexadecimal (0-9, a-f,
/// A-F); other values scan decimal digits.  Signs are skipped wherever they
/// stand, and at least one digit is needed.  The result points into `s`.
KEEL_API char* getinteger(const char* s, int kind);

/// 1 when all of `s` is one integer of the kind, else 0.
KEEL_API int isinteger(const char* s, int kind);
/// isinteger(s, 1): "123", "-123" and "1-2" pass; "12a" and "-" do not.
KEEL_API int isdecinteger(const char* s);
/// isinteger(s, 2): "17" passes, "18" does not.
KEEL_API int isoctinteger(const char* s);
/// isinteger(s, 3): "1F" and "ff" pass, "0x1F" does not.
KEEL_API int ishexinteger(const char* s);

/// Natural comparison of `a` and `b`: -1, 0 or 1.
///
/// Where both texts have a digit run at the same place, the runs compare by
/// value ("a2" before "a10"; "a007" equals "a7"; runs beyond 2,147,483,647
/// count as that value).  Other characters compare one by one, case-sensitive,
/// in multibyte order.  The character '$' sorts after every other character
/// and after the end of the text ("A" before "AB" before "A$"), so names
/// ending in '$' follow their plain forms.
KEEL_API int _tcsnumcmp(const char* a, const char* b);

/// Stores field `index` (from 0) of `s`, split at `sep`, in `out` and returns
/// 1; returns 0 when there is no such field.
///
/// Over "a,b,,c" with ',' the fields 0 to 3 are "a", "b", "" (an empty field
/// is a success) and "c"; field 4 fails.  On failure `out` is emptied, except
/// that a null `s` returns 0 and leaves `out` alone.  A negative `index`
/// always fails.  `sep` must not be the character 0.  `out` is a copy; `s`
/// is not kept.
KEEL_API int SysExtractSubString(SYS_StringBase& out, const char* s, int index, char sep);

#endif // SYS_SCAN_H
