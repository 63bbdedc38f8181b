// SYS_Mbcs.h - multibyte character primitives (internal).
//
// The byte-string functions keel's text classes build on, following the code
// page in force (see SYS_CodePage.h).  A character is one byte, or a lead byte
// and the byte after it.  Every scan stops at a NUL byte; the functions that
// take an `end` also stop there, so a caller can search a prefix of a text
// without cutting it.  A lead byte followed by NUL counts as a single byte.
#ifndef SYS_MBCS_H
#define SYS_MBCS_H

#include <cstddef>

// True when `b` opens a double-byte character in the code page in force.
bool SYS_IsLeadByte(unsigned char b);

// Pointer to the character after the one at `s`.
const char* SYS_MbsInc(const char* s);

// Byte length of the character at `s` (1 or 2).
int SYS_MbcLen(const char* s);

// The character at `s` as a value: its byte, or lead * 256 + trail.
unsigned SYS_MbcValue(const char* s);

// First character of [s, end) equal to `c` (a byte or a double-byte value);
// null when there is none.  A null `end` means no bound but the NUL.
const char* SYS_MbsChr(const char* s, unsigned c, const char* end = nullptr);

// Last character of [s, end) equal to `c`, or null.
const char* SYS_MbsRChr(const char* s, unsigned c, const char* end = nullptr);

// First character of [s, end) that occurs in `set`, or null.
const char* SYS_MbsPbrk(const char* s, const char* set, const char* end = nullptr);

// Byte length of the leading run of characters that are all in `set`.
size_t SYS_MbsSpn(const char* s, const char* set);

// Byte length of the leading run of characters none of which is in `set`.
size_t SYS_MbsCspn(const char* s, const char* set);

// Character-by-character comparison: negative, 0 or positive.
int SYS_MbsCmp(const char* a, const char* b);

// The same, single-byte letters compared without case.
int SYS_MbsICmp(const char* a, const char* b);

// Compares the single characters at `a` and `b`: negative, 0 or positive.
int SYS_MbcCmp(const char* a, const char* b);

// True when the character at `s` is a decimal digit.
bool SYS_IsMbcDigit(const char* s);

#endif // SYS_MBCS_H
