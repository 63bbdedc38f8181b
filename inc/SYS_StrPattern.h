// SYS_StrPattern.h - search and replace patterns for 8-bit multibyte text.
//
// A SYS_StrPattern compiles its pattern once, when it is assigned, into a
// compact byte program kept in `program`; an empty program (from an empty,
// null or invalid pattern) never matches.  The language:
//
//     x        the character x (a double-byte character compares its lead
//              byte only)           \b \f \n \r \t   control characters
//     \xHH     a byte from one or two digits      \c   c itself
//     .        any character        $   the end of the text
//     ^        at the start of a sequence: the attempt began at the start
//              of the text (or of the rest of it, in Substitute)
//     [set]    one character of the set, [^set] one not in it; a-z ranges
//     :a :b :c :d :l :u :x   alphanumeric, blank, letter, digit, lower,
//              upper, hexadecimal digit (ASCII);  :h :n :z  a whole
//              hexadecimal integer, decimal number, decimal integer
//     (p|q)    grouping and alternation: the alternative that reaches
//              furthest wins
//     x?  x*  x+       optional, greedy repetitions
//     x@  x#           lazy repetitions (x@ matches zero times only when x
//                      cannot match at all)
//
// Costs: compiling is linear in the pattern, and groups may nest to any
// depth (open groups wait on the heap, not on the native stack).  Matching
// decodes the program once per call, tries each start position in turn and
// backtracks on a heap stack, so no text is too long for it; repetitions
// that make no progress end, and a search that backtracks heavily remembers
// the outcome of each branch at each position, which keeps it polynomial in
// the text length.
#ifndef SYS_STRPATTERN_H
#define SYS_STRPATTERN_H

#include "SYS_String.h"
#include "keel_config.h"

class KEEL_API SYS_StrPattern {
public:
    SYS_StrPattern();
    SYS_StrPattern(const char* source);
    SYS_StrPattern(const SYS_StringBase& source);
    // A copy takes the other's program up to its first zero byte (a program
    // with an empty set holds one, and the copy is cut there).
    SYS_StrPattern(const SYS_StrPattern& other);

    const SYS_StrPattern& operator=(const char* source);
    const SYS_StrPattern& operator=(const SYS_StringBase& source);
    const SYS_StrPattern& operator=(const SYS_StrPattern& other);

    // The compiled program bytes.
    operator const char*() const { return program.GetString(); }

    // Offset of the leftmost match in `text` and its length through
    // `length`, or -1 (length 0).  An empty text never matches, and no match
    // starts at the terminating zero.
    int Match(const char* text, int* length) const;

    // Replaces matches in `target` from left to right, at most `maxCount` of
    // them (0: no limit; a negative count replaces nothing), and returns how
    // many were replaced.
    int Substitute(SYS_StringBase& target, const SYS_StringBase& replacement, int maxCount) const;

    // The compiled program; empty when the pattern was empty or invalid.
    SYS_StringBase program;

private:
    void MakePattern(const char* source);
};

#endif // SYS_STRPATTERN_H
