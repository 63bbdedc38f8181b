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

// A C text argument where null stands for the empty text.
inline const char* SYS_NotNull(const char* s) { return s ? s : ""; }

// The lead-byte table of the code page in force, built on first use.
struct SYS_LeadByteTable {
    bool ready;
    bool doubleByte; // false for code page 0: every character is one byte
    bool lead[256];
};
extern SYS_LeadByteTable g_SYS_LeadBytes;
void SYS_InitLeadBytes();

inline const SYS_LeadByteTable& SYS_LeadBytes() {
    if (!g_SYS_LeadBytes.ready) SYS_InitLeadBytes();
    return g_SYS_LeadBytes;
}

// True when `b` opens a double-byte character in the code page in force.
inline bool SYS_IsLeadByte(unsigned char b) { return SYS_LeadBytes().lead[b]; }

// Byte length of the character at `s` (1 or 2).
inline int SYS_MbcLen(const char* s) {
    return SYS_IsLeadByte(static_cast<unsigned char>(s[0])) && s[1] != '\0' ? 2 : 1;
}

// Pointer to the character after the one at `s`.
inline const char* SYS_MbsInc(const char* s) { return s + SYS_MbcLen(s); }

// The character at `s` as a value: its byte, or lead * 256 + trail.
inline unsigned SYS_MbcValue(const char* s) {
    unsigned lead = static_cast<unsigned char>(s[0]);
    if (SYS_MbcLen(s) == 1) return lead;
    return lead << 8 | static_cast<unsigned char>(s[1]);
}

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
inline int SYS_MbcCmp(const char* a, const char* b) {
    unsigned ca = SYS_MbcValue(a), cb = SYS_MbcValue(b);
    return ca == cb ? 0 : (ca < cb ? -1 : 1);
}

// True when the character at `s` is a decimal digit.
inline bool SYS_IsMbcDigit(const char* s) { return *s >= '0' && *s <= '9'; }

#endif // SYS_MBCS_H
