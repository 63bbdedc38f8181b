/// @file
/// SYS_StringBase, the one string type of keel, with its concatenation,
/// comparison and formatting functions.
///
/// An 8-bit text in the process's multibyte code page (see SYS_CodePage.h),
/// laid over std::string, which it holds by value: a string costs a virtual
/// table pointer and a std::string, and short texts need no heap block.
/// Lengths and positions are `int` byte counts (a double-byte character
/// counts 2); -1 means "not found".  Copies are deep; nothing is shared.
///
/// Some operations are deliberately byte-oriented and others multibyte-aware;
/// each says which.  The concatenation family (`+`, `+=`, ConcatCopy,
/// ConcatInPlace) takes every operand up to its first NUL, whatever length is
/// passed; only Append(const SYS_StringBase&) and Append(const char*, int) are
/// length-exact.
///
/// Errors: bad positions throw std::out_of_range with the text "invalid
/// string position" (Mid, Right, Insert, Delete, Replace at a position); a
/// negative size or a length beyond what a string can hold throws
/// std::length_error with "string too long"; memory exhaustion throws
/// std::bad_alloc.  Nothing else reports: reads and searches answer
/// out-of-range positions with 0, no action or -1.  Text pointers must not be
/// null unless a member says so.
///
/// A string may be used by one thread at a time; distinct strings share no
/// state.
#ifndef SYS_STRING_H
#define SYS_STRING_H

#include "internal/SYS_ByteCompare.h"
#include "internal/SYS_CodePageState.h"
#include "keel_config.h"

#include <cstdarg>
#include <cstring>
#include <string>

/// An owned, NUL-terminated 8-bit text in the multibyte code page in force.
///
/// The text may hold NUL bytes inside; GetLength counts them and Append
/// keeps them, but substrings, comparisons and the concatenation family stop
/// at the first one.  The destructor is virtual and is the only virtual
/// member.
class KEEL_API SYS_StringBase {
public:
    /// An empty string.
    SYS_StringBase();
    /// A deep copy of the whole length of `other` (NUL bytes inside kept).
    SYS_StringBase(const SYS_StringBase& other);
    /// A copy of `s` up to its NUL; a null `s` gives an empty string.
    SYS_StringBase(const char* s);
    /// A copy of exactly `n` bytes of `s`, NUL bytes included.  A null `s`
    /// gives an empty string; a negative `n` throws std::length_error.
    SYS_StringBase(const char* s, int n);
    /// `n` copies of `c` (which may be 0); a negative `n` throws
    /// std::length_error.
    SYS_StringBase(char c, int n);
    /// Converts the zero-terminated 16-bit (UTF-16) text `w` into the code
    /// page in force; `w` must not be null.  A character the code page cannot
    /// hold becomes '?'.  Costs one conversion pass over the text.
    SYS_StringBase(const unsigned short* w);
    /// Frees the text.
    virtual ~SYS_StringBase();

    /// Deep copy of the whole length; assigning a string to itself does
    /// nothing.
    const SYS_StringBase& operator=(const SYS_StringBase& other);
    /// A copy of `s` up to its NUL; null gives an empty string.
    const SYS_StringBase& operator=(const char* s);
    /// The string becomes the one character `c`; its length is 1 even for
    /// the character 0 (unlike `+=`, which appends nothing for it).
    const SYS_StringBase& operator=(char c);

    /// Length in bytes, NUL bytes inside included.
    int GetLength() const { return static_cast<int>(body.size()); }
    /// 1 when the length is 0, else 0.
    int IsEmpty() const { return body.empty() ? 1 : 0; }
    /// Makes the length 0.
    void Empty() { body.clear(); }
    /// @name Text access

    /// The NUL-terminated characters.  The pointer belongs to the string and
    /// stays valid until the string is next modified or destroyed.
    ///@{
    const char* GetString() const { return body.c_str(); }
    operator const char*() const { return body.c_str(); }
    ///@}
    /// The byte at `i`; 0 when `i` < 0 or `i` >= GetLength().
    char GetAt(int i) const;
    /// Stores `c` at `i` when 0 <= `i` < GetLength(); otherwise does nothing.
    void SetAt(int i, char c);
    /// Reference to byte `i`, unchecked: `i` must lie in 0..GetLength()-1.
    char& operator[](int i) { return body[static_cast<size_t>(i)]; }
    /// Bytes before the NUL of `s`; `s` must not be null.
    static int StringLength(const char* s);

    /// The string becomes `s1` followed by `s2`, each taken up to its NUL;
    /// `len1` and `len2` are ignored.  A null `s1` counts as empty; `s2` must
    /// not be null.  Safe when `s1` or `s2` points into this string.
    void ConcatCopy(int len1, const char* s1, int len2, const char* s2);
    /// Appends `s` up to its NUL; `len` is ignored and `s` must not be null.
    void ConcatInPlace(int len, const char* s);
    /// @name Appending with +=

    /// Appends the operand up to its first NUL (a string operand included)
    /// and returns `*this`; appending the character 0 appends nothing.
    /// Amortised O(length of the operand).
    ///@{
    const SYS_StringBase& operator+=(const char* s);
    const SYS_StringBase& operator+=(const SYS_StringBase& s);
    const SYS_StringBase& operator+=(char c) {
        AppendChar(c);
        return *this;
    }
    ///@}
    /// Appends the whole length of `s`, NUL bytes inside kept; appending a
    /// string to itself is safe (`s` is copied first).
    void Append(const SYS_StringBase& s);
    /// Appends `s` up to its NUL.
    void Append(const char* s);
    /// Appends exactly `n` bytes of `s`, NUL bytes included; a negative `n`
    /// throws std::length_error.
    void Append(const char* s, int n);
    /// Appends `c`; the character 0 appends nothing.
    void AppendChar(char c) {
        if (c != '\0') body.push_back(c);
    }

    /// @name Stream-style appending

    /// Appends the operand's text and returns `*this`, so that appends chain.
    /// Characters and texts are appended as by `+=` (up to the first NUL;
    /// the character 0 appends nothing).  Integers are appended in decimal;
    /// `float` and `double` with `printf`'s `%%f` (six decimals, no exponent).
    ///@{
    SYS_StringBase& operator<<(char c);
    SYS_StringBase& operator<<(const char* s);
    SYS_StringBase& operator<<(const SYS_StringBase& s);
    SYS_StringBase& operator<<(int v);
    SYS_StringBase& operator<<(long v);
    SYS_StringBase& operator<<(unsigned int v);
    SYS_StringBase& operator<<(unsigned long v);
    SYS_StringBase& operator<<(float v);
    SYS_StringBase& operator<<(double v);
    ///@}

    /// @name Numeric parsing

    /// Parses the number at the start of the text, stores it through `out`
    /// (which must not be null) and returns it; `*end`, when `end` is not
    /// null, receives the position just after the number.
    ///
    /// Leading white space and one sign are accepted; the parse stops at the
    /// first character that does not fit and nothing is reported: a text
    /// with no number gives 0 with `*end` at the start of the text.  To
    /// require the whole text to be a number, compare `*end` with
    /// GetString() + GetLength().  Integers are base 10 and saturate at the
    /// 32-bit limits (`short` then keeps the low 16 bits); the unsigned forms
    /// wrap a negative number as 32 bits ("-1" gives 4294967295).  The
    /// floating-point forms parse as the C library's `strtod` (decimal or
    /// exponent form) and `float` narrows the result.
    ///@{
    short Value(short* out, const char** end) const;
    int Value(int* out, const char** end) const;
    long Value(long* out, const char** end) const;
    unsigned int Value(unsigned int* out, const char** end) const;
    unsigned long Value(unsigned long* out, const char** end) const;
    double Value(double* out, const char** end) const;
    float Value(float* out, const char** end) const;
    ///@}

    /// The `count` bytes from `first`, cut at the end of the text; a negative
    /// `count` means up to the end.  Throws std::out_of_range when `first` is
    /// negative or beyond GetLength() (GetLength() itself gives an empty
    /// string).  Like every substring, the result ends at the first NUL of
    /// the extracted part.
    SYS_StringBase Mid(int first, int count) const;
    /// The bytes from `first` to the end; std::out_of_range as Mid(int, int).
    SYS_StringBase Mid(int first) const;
    /// The first `count` bytes, cut at the end of the text; a negative
    /// `count` gives the whole string.
    SYS_StringBase Left(int count) const;
    /// The last `count` bytes, or the whole string when `count` exceeds the
    /// length; a negative `count` throws std::out_of_range.
    SYS_StringBase Right(int count) const;
    /// The leading run of characters that all occur in `set`
    /// (multibyte-aware; `set` must not be null).
    SYS_StringBase SpanIncluding(const char* set) const;
    /// The leading run of characters none of which occurs in `set`
    /// (multibyte-aware; `set` must not be null).
    SYS_StringBase SpanExcluding(const char* set) const;
    /// The next token at or after `pos`, with `pos` moved past it.
    ///
    /// Skips the delimiter characters at `pos` (multibyte-aware), returns the
    /// run of non-delimiters that follows and sets `pos` to the byte after
    /// that run's end plus one, ready for the next call.  When no token is
    /// left, returns an empty string and sets `pos` to -1, which ends a loop:
    /// over ",a,,b" with "," the calls give "a" (`pos` 3), "b" (`pos` 6), then
    /// "" (`pos` -1).  A negative `pos` returns an empty string and leaves
    /// `pos` alone.  With a null or empty `delims` the rest of the text from
    /// `pos` is returned and `pos` does not move (a loop would not end), or,
    /// at the end of the text, an empty string with `pos` -1.
    SYS_StringBase Tokenize(const char* delims, int& pos) const;

    /// First byte equal to `c` at or after `start`, or -1; a byte search, so
    /// it can hit the trail byte of a double-byte character.  A `start`
    /// below 0 or beyond GetLength() gives -1.
    int Find(char c, int start = 0) const;
    /// First occurrence of the text `s` at or after `start`, or -1 (byte
    /// search, O(length × length of `s`) at worst).  An empty `s` is found at
    /// `start` when `start` <= GetLength(); a negative `start` gives -1.
    int Find(const char* s, int start = 0) const;
    /// First character at or after `start` that occurs in `set`, or -1
    /// (multibyte-aware; `set` may hold double-byte characters).  A `start`
    /// below 0 or beyond GetLength() gives -1.
    int FindOneOf(const char* set, int start = 0) const;
    /// Last character equal to `c` at or before `start`, or -1.
    ///
    /// Pass -2, not -1, to search from the last character: -1, like any
    /// `start` below 0 or at or beyond GetLength(), gives -1.  Multibyte-aware:
    /// a trail byte never matches.  For `c` 0 the answer is GetLength() when
    /// `start` is -2 or GetLength(), else -1.
    int ReverseFind(char c, int start) const;
    /// Last character at or before `start` that occurs in `set`, or -1; pass
    /// -2 to search from the last character (other negative values give -1).
    ///
    /// Index 0 is never reported: "/abc" with the set "/" gives -1 while
    /// "a/b/c" gives 3.  After each hit the search goes on from the next
    /// byte, so under a double-byte code page a hit on a double-byte set
    /// member can be followed by one inside it.
    int ReverseFindOneOf(const char* set, int start) const;

    /// Inserts `c` before byte `i`; `i` below 0 or beyond GetLength() throws
    /// std::out_of_range.  O(length).
    void Insert(int i, char c);
    /// Inserts `s` (up to its NUL) before byte `i`; `i` below 0 or beyond
    /// GetLength() throws std::out_of_range.  O(length).
    void Insert(int i, const char* s);
    /// Removes `count` bytes from `i`, cut at the end of the text; a negative
    /// `count` removes to the end.  `i` below 0 or beyond GetLength() throws
    /// std::out_of_range.
    void Delete(int i, int count = 1);
    /// Delete(i, count) followed by Insert(i, s), with their exceptions.
    void Replace(int i, int count, const char* s);
    /// Replaces every byte `oldChar` by `newChar` and returns how many were
    /// replaced (byte-wise).  Each search starts again at index 0, so the
    /// cost is O(length × count), and `oldChar` equal to `newChar` never
    /// returns: do not pass such a pair.
    int Replace(char oldChar, char newChar);
    /// Replaces every occurrence of `oldText` by `newText` and returns how
    /// many were replaced (byte search).  Each search starts again at index
    /// 0, so a `newText` that contains `oldText`, or an empty `oldText`,
    /// never returns: do not pass such a pair.  O(length × count) at least.
    int Replace(const char* oldText, const char* newText);
    /// Removes every byte equal to `c` and returns how many were removed.
    /// O(length × count).
    int Remove(char c);
    /// @name Case conversion

    /// Converts every byte with the C library's `toupper` / `tolower` and
    /// returns `*this`.  Byte by byte, not multibyte-aware: trail bytes of
    /// double-byte characters that fall in the letter range change too.
    ///@{
    SYS_StringBase& MakeUpper();
    SYS_StringBase& MakeLower();
    ///@}
    /// @name Trimming

    /// Removes the leading (TrimLeft), trailing (TrimRight) or both
    /// (AllTrim) runs of bytes that occur in `set`, and returns `*this`.
    /// Membership is tested byte by byte, not multibyte-aware.  A null or
    /// empty `set` removes white space (the C library's `isspace`: blank,
    /// tab, line ends, vertical tab, form feed).
    ///@{
    SYS_StringBase& TrimLeft(const char* set = nullptr);
    SYS_StringBase& TrimRight(const char* set = nullptr);
    SYS_StringBase& AllTrim(const char* set = nullptr);
    ///@}

    /// Compares the text with `s` (not null) character by character in
    /// multibyte order: -1, 0 or 1.  Both texts count up to their first NUL;
    /// a character is its byte, or lead × 256 + trail for a double-byte one.
    /// O(length of the common prefix); under a single-byte code page this is
    /// `strcmp`, inline.
    int Compare(const char* s) const {
        if (SYS_SingleByteCodePage) return SYS_Sign(std::strcmp(body.c_str(), s));
        return CompareMultiByte(s);
    }
    /// The same for a string object, whose known length lets the single-byte
    /// path compare sixteen bytes at a time.  This is the order of the
    /// comparison operators and so of every string-keyed map.
    int Compare(const SYS_StringBase& s) const {
        if (SYS_SingleByteCodePage)
            return SYS_CompareBytes(body.c_str(), s.body.c_str(),
                                    body.size() < s.body.size() ? body.size() : s.body.size());
        return CompareMultiByte(s.body.c_str());
    }
    /// As Compare, ignoring the case of the ASCII letters only: -1, 0 or 1.
    int CompareNoCase(const char* s) const;
    /// Natural, number-aware comparison, as `_tcsnumcmp` (SYS_Scan.h), with
    /// the result -1, 0 or 1: digit runs compare by value ("a2" before "a10")
    /// and '$' sorts last.
    int CompareAlNum(const char* s) const;

    /// Replaces the contents with the printf-style formatting of `fmt` and
    /// the arguments.  A format error, or a text of no characters, leaves the
    /// string empty.  One formatting pass into a 512-byte stack buffer; a
    /// longer text is formatted a second time directly into the string.
    void Format(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    /// Format with an argument list; `args` is consumed as by `vsnprintf`
    /// (the caller still ends it with `va_end`).
    void FormatV(const char* fmt, va_list args);

    /// Writable access to the characters, for C functions that fill a buffer.
    ///
    /// Makes the length at least `n + 1` by appending NUL bytes (never
    /// shrinks; a negative `n` changes nothing) and returns the characters.
    /// The length thus grows to the room asked for plus one byte: after
    /// writing, call ReleaseBuffer to set the length to the written text
    /// (GetBuffer(10) on "ab" gives a length of 11; write "hello" and a NUL,
    /// and ReleaseBuffer gives 5).  The pointer stays valid until the next
    /// operation that changes the length.
    char* GetBuffer(int n);
    /// GetBuffer(0): an empty string gets a length of 1 until ReleaseBuffer.
    char* GetBuffer() { return GetBuffer(0); }
    /// Sets the length to exactly `n` (cut, or extended with NUL bytes) and
    /// returns the writable characters; a negative `n` throws
    /// std::length_error.
    char* GetBufferSetLength(int n);
    /// Sets the length to that of the NUL-terminated text in the buffer.
    void ReleaseBuffer();
    /// Sets the length to exactly `n` (cut, or extended with NUL bytes); a
    /// negative `n` throws std::length_error.
    void ReleaseBufferSetLength(int n);
    /// Asks for room for `n` bytes, so that appending up to that length does
    /// not reallocate.  Ignored when `n` is below the length; the text never
    /// changes.
    void Reserve(int n);

private:
    // Compare under any code page, and the first look at the code page.
    int CompareMultiByte(const char* s) const;

    std::string body;
};

/// @name Concatenation

/// A new string: the two operands in order, each up to its first NUL (a
/// string with a NUL inside loses the rest; use Append to keep it).  A `char`
/// operand is that one character, and the character 0 adds nothing.  A
/// `const char*` operand must not be null on the right; on the left, null
/// counts as empty.
///@{
KEEL_API SYS_StringBase operator+(const SYS_StringBase& a, const SYS_StringBase& b);
KEEL_API SYS_StringBase operator+(const SYS_StringBase& a, const char* b);
KEEL_API SYS_StringBase operator+(const char* a, const SYS_StringBase& b);
KEEL_API SYS_StringBase operator+(const SYS_StringBase& a, char b);
KEEL_API SYS_StringBase operator+(char a, const SYS_StringBase& b);
///@}

/// @name Comparison operators

/// Ordering by the sign of SYS_StringBase::Compare: multibyte character
/// order, each text up to its first NUL.  Each reads as written whichever
/// side the plain text is on (`"a" < s` is `s.Compare("a") > 0`).  The
/// `const char*` operand must not be null.
///@{
inline bool operator==(const SYS_StringBase& a, const SYS_StringBase& b) {
    return a.Compare(b) == 0;
}
inline bool operator!=(const SYS_StringBase& a, const SYS_StringBase& b) {
    return a.Compare(b) != 0;
}
inline bool operator<(const SYS_StringBase& a, const SYS_StringBase& b) { return a.Compare(b) < 0; }
inline bool operator>(const SYS_StringBase& a, const SYS_StringBase& b) { return a.Compare(b) > 0; }
inline bool operator<=(const SYS_StringBase& a, const SYS_StringBase& b) {
    return a.Compare(b) <= 0;
}
inline bool operator>=(const SYS_StringBase& a, const SYS_StringBase& b) {
    return a.Compare(b) >= 0;
}
inline bool operator==(const SYS_StringBase& a, const char* b) { return a.Compare(b) == 0; }
inline bool operator!=(const SYS_StringBase& a, const char* b) { return a.Compare(b) != 0; }
inline bool operator<(const SYS_StringBase& a, const char* b) { return a.Compare(b) < 0; }
inline bool operator>(const SYS_StringBase& a, const char* b) { return a.Compare(b) > 0; }
inline bool operator<=(const SYS_StringBase& a, const char* b) { return a.Compare(b) <= 0; }
inline bool operator>=(const SYS_StringBase& a, const char* b) { return a.Compare(b) >= 0; }
inline bool operator==(const char* a, const SYS_StringBase& b) { return b.Compare(a) == 0; }
inline bool operator!=(const char* a, const SYS_StringBase& b) { return b.Compare(a) != 0; }
inline bool operator<(const char* a, const SYS_StringBase& b) { return b.Compare(a) > 0; }
inline bool operator>(const char* a, const SYS_StringBase& b) { return b.Compare(a) < 0; }
inline bool operator<=(const char* a, const SYS_StringBase& b) { return b.Compare(a) >= 0; }
inline bool operator>=(const char* a, const SYS_StringBase& b) { return b.Compare(a) <= 0; }
///@}

/// @name Comparison with wide text

/// The zero-terminated 16-bit text `w` (not null) is converted as by the
/// wide constructor, then compared with Compare.  Costs a conversion and a
/// temporary string per call.
///@{
KEEL_API bool operator==(const SYS_StringBase& a, const unsigned short* w);
KEEL_API bool operator!=(const SYS_StringBase& a, const unsigned short* w);
KEEL_API bool operator==(const unsigned short* w, const SYS_StringBase& a);
KEEL_API bool operator!=(const unsigned short* w, const SYS_StringBase& a);
///@}

/// @name Comparison with a character

/// A string equals a character when its length is exactly 1 and its one byte
/// is the character: "aa" != 'a'.
///@{
inline bool operator==(const SYS_StringBase& a, char c) {
    return a.GetLength() == 1 && a.GetAt(0) == c;
}
inline bool operator!=(const SYS_StringBase& a, char c) { return !(a == c); }
inline bool operator==(char c, const SYS_StringBase& a) { return a == c; }
inline bool operator!=(char c, const SYS_StringBase& a) { return !(a == c); }
///@}

/// A new string formatted as by SYS_StringBase::Format: printf-style, empty
/// on a format error.
KEEL_API SYS_StringBase FormattedString(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

#endif // SYS_STRING_H
