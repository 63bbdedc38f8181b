/// @file
/// SYS_StrPattern: search and replace patterns for 8-bit multibyte text.
/// The pattern language is described with the class.
///
/// Costs: compiling is linear in the pattern, and groups may nest to any
/// depth (open groups wait on the heap, not on the native stack).  Matching
/// decodes the program once per call (each thread keeps the decoded form of
/// the last program it ran, so a loop of calls with one pattern decodes it
/// once), tries each start position in turn and backtracks on a heap stack,
/// so no text is too long for it; repetitions that make no progress end.
///
/// Time: for a given pattern, one Match or Substitute takes time linear in
/// the length of the text, whatever the pattern holds (nested or lazy
/// repetitions, repeated wildcards, alternatives that overlap) and whether
/// or not the text matches.  A search that backtracks more than about 16
/// steps per character starts remembering what each branch of the pattern
/// gave at each position, and never works it out again; the results are
/// the same either way.
///
/// Memory: besides the text and the decoded pattern (which the thread
/// keeps; a few dozen bytes per pattern byte), what a call uses is given
/// back when it ends.  Once a search remembers: 2 bits per text byte for
/// each greedy repetition, for up to two per lazy one, and for each
/// alternation or `?` that can be met more than once at one position; 4
/// bytes per text byte more for each of those that succeeded somewhere in a
/// block of 4096 positions (twice all that when the pattern holds a `^`);
/// about 1 byte per text byte at most for whole numbers (`:z :h :n`).
/// Repetitions keep the positions they have passed as runs of equal steps:
/// a few words for a run of any length, 24 bytes per position at most when
/// every step differs.  Against 8 MB of text that they do not match,
/// `(a|aa)+b` needs 2 MB, `.*.*.*b` 6 MB and `(a+)+b` 36 MB.
#ifndef SYS_STRPATTERN_H
#define SYS_STRPATTERN_H

#include "SYS_String.h"
#include "keel_config.h"

/// A compiled search pattern, with leftmost-match search and replacement.
///
/// A SYS_StrPattern compiles its pattern once, when it is constructed or
/// assigned, into a compact byte program kept in `program`.  An empty, null
/// or invalid pattern gives an empty program, which never matches; nothing
/// is reported, so test `program.IsEmpty()` to find out.  The language:
///
/// @code{.unparsed}
/// x         the character x itself, for any x but the metacharacters
///           . $ ^ [ ] ( ) | ? * + @ # \  and : before a class letter;
///           a double-byte character compares its lead byte only
/// \x        with any other x: x itself, e.g. \. \\ \) \] \* \| \@ \#
/// \b \f \n \r \t   backspace, form feed, line feed, return, tab
/// \xD \xDD  a byte from one or two digits: \x9 is tab, \x41 is 'A'.
///           Only 0-9 read as hexadecimal digits (a-f and A-F give
///           other bytes, so write such bytes as themselves); a byte 0
///           makes the pattern invalid
/// .         any one character (not the end of the text)
/// $         the end of the text
/// ^         only at the start of the pattern, of a group or of an
///           alternative: the match must begin where the search began
///           (the start of the text; in Substitute, also each place
///           where the previous replacement ended)
/// [set]     one character of the set: [abc], ranges [a-z0-9], escapes
///           [\]\\], '-' literal when first or last;  [^set] one
///           character not in it;  [] matches nothing.  Double-byte
///           members compare their lead byte only
/// :a :c :d  one ASCII letter or digit, letter, digit
/// :l :u :x  one lower-case letter, upper-case letter, hexadecimal digit
/// :b        one white-space character (blank, \t \n \v \f \r)
/// :z :h :n  a whole decimal integer, hexadecimal integer, decimal number
///           without exponent; signs anywhere in it belong to it, as
///           in the scanners of SYS_Scan.h (:n takes all of "-1.5")
/// (p)       a group
/// p|q       alternatives, at the top or in a group: each is tried, and
///           the one that lets the whole match reach furthest wins
///           (a|ab against "ab" matches "ab")
/// x?        x or nothing
/// x*  x+    zero or more, one or more, greedy (as many as possible)
/// x@  x#    zero or more, one or more, lazy (as few as possible);
///           x@ takes zero only when x cannot match at all
/// @endcode
///
/// A postfix operator applies to the atom just before it (a character,
/// escape, '.', '$', class, set or group); an atom takes at most one (`a**`
/// is invalid), and an operand may compile to at most 255 bytes.  A
/// repetition whose operand matched the empty text is not repeated.  Also
/// invalid: unbalanced parentheses, an unclosed set, '^' elsewhere, a
/// postfix operator with nothing before it, a '\' at the very end.
///
/// Copies are deep.  Match and Substitute are const and keep their working
/// state per thread.
class KEEL_API SYS_StrPattern {
public:
    /// An empty program, which matches nothing.
    SYS_StrPattern();
    /// @name Compiling

    /// Compiles `source` (up to its NUL; null or empty gives an empty
    /// program).  The pattern text is not kept.
    ///@{
    SYS_StrPattern(const char* source);
    SYS_StrPattern(const SYS_StringBase& source);
    ///@}
    /// A copy takes the other's program up to its first zero byte (a program
    /// with an empty set `[]` holds one, and the copy, cut there, never
    /// matches).
    SYS_StrPattern(const SYS_StrPattern& other);

    /// @name Recompiling

    /// Replaces the program with that of `source`, as the constructors do,
    /// and returns `*this`.
    ///@{
    const SYS_StrPattern& operator=(const char* source);
    const SYS_StrPattern& operator=(const SYS_StringBase& source);
    ///@}
    /// Copies the other's program up to its first zero byte, as the copy
    /// constructor does; returns `*this`.
    const SYS_StrPattern& operator=(const SYS_StrPattern& other);

    /// The compiled program bytes (NUL-terminated; empty when the pattern
    /// was invalid).  The pointer belongs to the pattern and stays valid
    /// until it is assigned or destroyed.
    operator const char*() const { return program.GetString(); }

    /// Offset of the leftmost match in `text` and, through `length`, its
    /// length in bytes; -1 (length 0) when there is none.
    ///
    /// Start positions are tried from the first character on, in whole
    /// characters; at the first one where the pattern matches, the match
    /// is the one the rules above give (greedy repetitions longest,
    /// alternatives furthest).  A pattern that can match the empty text
    /// finds it at offset 0 ("b*" in "abbb" gives 0, length 0).  A null or
    /// empty text never matches, and no match starts at the terminating NUL
    /// ("$" alone finds nothing).  `length` may be null.  `text` is only
    /// read during the call.
    int Match(const char* text, int* length) const;

    /// Replaces matches in `target` from left to right and returns how many
    /// were replaced.
    ///
    /// At most `maxCount` matches are replaced (0: no limit; a negative
    /// count replaces nothing).  Each search starts where the previous match
    /// ended, on the original text, so replacements are never searched
    /// again, and '^' matches at each of those places.  The replacement is
    /// copied up to its first NUL.  An empty match right where a search
    /// began is replaced once and the search moves on one character (`x*`
    /// over "abc" with "-" gives "-a-b-c" and 3); with a limit, such a match
    /// takes the replacement as many times as the limit allows, and the
    /// count returned is the limit.
    ///
    /// The target is read as a C text through GetBuffer(0): an empty target,
    /// or one the replacements left empty, ends with a length of 1 (one NUL
    /// byte; ReleaseBuffer clears it), and once anything is replaced, text
    /// after a NUL inside the target is lost.  Builds the result in one pass;
    /// a result longer than an `int` can count throws std::length_error.
    int Substitute(SYS_StringBase& target, const SYS_StringBase& replacement, int maxCount) const;

    /// The compiled program; empty when the pattern was empty, null or
    /// invalid.  Treat it as read-only opaque bytes: a program that is not
    /// well formed (written by hand, or compiled under another code page
    /// that reads it differently) never matches.
    SYS_StringBase program;

private:
    void MakePattern(const char* source);
};

#endif // SYS_STRPATTERN_H
