// SYS_String.h - SYS_StringBase, the one string type of keel.
//
// An 8-bit text in the process's multibyte code page, laid over std::string,
// which it holds by value.  Lengths and positions are byte counts; -1 means
// "not found".  Copies are deep; nothing is shared.
//
// Some operations are deliberately byte-oriented and others multibyte-aware;
// each says which.  The concatenation family (`+`, `+=`, ConcatCopy,
// ConcatInPlace) takes every operand up to its first NUL, whatever length is
// passed; only Append(const SYS_StringBase&) and Append(const char*, int) are
// length-exact.  Bad positions throw std::out_of_range("invalid string
// position"), impossible lengths std::length_error("string too long").
#ifndef SYS_STRING_H
#define SYS_STRING_H

#include "internal/SYS_ByteCompare.h"
#include "internal/SYS_CodePageState.h"
#include "keel_config.h"

#include <cstdarg>
#include <cstring>
#include <string>

class KEEL_API SYS_StringBase {
public:
    SYS_StringBase();
    SYS_StringBase(const SYS_StringBase& other);
    SYS_StringBase(const char* s);
    SYS_StringBase(const char* s, int n);
    SYS_StringBase(char c, int n);
    // Converts 16-bit text into the code page in force; `w` must not be null.
    SYS_StringBase(const unsigned short* w);
    virtual ~SYS_StringBase();

    const SYS_StringBase& operator=(const SYS_StringBase& other);
    const SYS_StringBase& operator=(const char* s);
    const SYS_StringBase& operator=(char c);

    // Access.
    int GetLength() const { return static_cast<int>(body.size()); }
    int IsEmpty() const { return body.empty() ? 1 : 0; }
    void Empty() { body.clear(); }
    const char* GetString() const { return body.c_str(); }
    operator const char*() const { return body.c_str(); }
    char GetAt(int i) const;
    void SetAt(int i, char c);
    char& operator[](int i) { return body[static_cast<size_t>(i)]; }
    static int StringLength(const char* s);

    // Concatenation: texts count up to their first NUL.
    void ConcatCopy(int len1, const char* s1, int len2, const char* s2);
    void ConcatInPlace(int len, const char* s);
    const SYS_StringBase& operator+=(const char* s);
    const SYS_StringBase& operator+=(const SYS_StringBase& s);
    const SYS_StringBase& operator+=(char c) {
        AppendChar(c);
        return *this;
    }
    void Append(const SYS_StringBase& s);
    void Append(const char* s);
    void Append(const char* s, int n);
    void AppendChar(char c) {
        if (c != '\0') body.push_back(c);
    }

    // Stream-style appending.
    SYS_StringBase& operator<<(char c);
    SYS_StringBase& operator<<(const char* s);
    SYS_StringBase& operator<<(const SYS_StringBase& s);
    SYS_StringBase& operator<<(int v);
    SYS_StringBase& operator<<(long v);
    SYS_StringBase& operator<<(unsigned int v);
    SYS_StringBase& operator<<(unsigned long v);
    SYS_StringBase& operator<<(float v);
    SYS_StringBase& operator<<(double v);

    // Numeric parsing of the start of the text (decimal integers saturate at
    // the 32-bit limits).  `*end`, when given, receives where the number ends.
    short Value(short* out, const char** end) const;
    int Value(int* out, const char** end) const;
    long Value(long* out, const char** end) const;
    unsigned int Value(unsigned int* out, const char** end) const;
    unsigned long Value(unsigned long* out, const char** end) const;
    double Value(double* out, const char** end) const;
    float Value(float* out, const char** end) const;

    // Substrings; each result ends at the first NUL of the extracted part.
    SYS_StringBase Mid(int first, int count) const;
    SYS_StringBase Mid(int first) const;
    SYS_StringBase Left(int count) const;
    SYS_StringBase Right(int count) const;
    SYS_StringBase SpanIncluding(const char* set) const;
    SYS_StringBase SpanExcluding(const char* set) const;
    SYS_StringBase Tokenize(const char* delims, int& pos) const;

    // Searching.  The reverse searches take -2 as "from the last character".
    int Find(char c, int start = 0) const;
    int Find(const char* s, int start = 0) const;
    int FindOneOf(const char* set, int start = 0) const;
    int ReverseFind(char c, int start) const;
    int ReverseFindOneOf(const char* set, int start) const;

    // Modification in place.
    void Insert(int i, char c);
    void Insert(int i, const char* s);
    void Delete(int i, int count = 1);
    void Replace(int i, int count, const char* s);
    int Replace(char oldChar, char newChar);
    int Replace(const char* oldText, const char* newText);
    int Remove(char c);
    SYS_StringBase& MakeUpper();
    SYS_StringBase& MakeLower();
    SYS_StringBase& TrimLeft(const char* set = nullptr);
    SYS_StringBase& TrimRight(const char* set = nullptr);
    SYS_StringBase& AllTrim(const char* set = nullptr);

    // Comparison, character by character in multibyte order: negative, 0 or
    // positive.  Under a single-byte code page this is strcmp, inline.
    int Compare(const char* s) const {
        if (SYS_SingleByteCodePage) return SYS_Sign(std::strcmp(body.c_str(), s));
        return CompareMultiByte(s);
    }
    // The same for a string object, whose known length lets the single-byte
    // path compare a word at a time.  This is the order of string-keyed maps.
    int Compare(const SYS_StringBase& s) const {
        if (SYS_SingleByteCodePage)
            return SYS_CompareBytes(body.c_str(), s.body.c_str(),
                                    (body.size() < s.body.size() ? body.size() : s.body.size()) +
                                        1);
        return CompareMultiByte(s.body.c_str());
    }
    int CompareNoCase(const char* s) const;
    int CompareAlNum(const char* s) const;

    // Formatting.
    void Format(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* fmt, va_list args);

    // Raw buffer access.
    char* GetBuffer(int n);
    char* GetBuffer() { return GetBuffer(0); }
    char* GetBufferSetLength(int n);
    void ReleaseBuffer();
    void ReleaseBufferSetLength(int n);
    void Reserve(int n);

private:
    // Compare under any code page, and the first look at the code page.
    int CompareMultiByte(const char* s) const;

    std::string body;
};

KEEL_API SYS_StringBase operator+(const SYS_StringBase& a, const SYS_StringBase& b);
KEEL_API SYS_StringBase operator+(const SYS_StringBase& a, const char* b);
KEEL_API SYS_StringBase operator+(const char* a, const SYS_StringBase& b);
KEEL_API SYS_StringBase operator+(const SYS_StringBase& a, char b);
KEEL_API SYS_StringBase operator+(char a, const SYS_StringBase& b);

// Ordering is the sign of Compare (multibyte character order).
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

// Wide text is converted as by the wide constructor, then compared.
KEEL_API bool operator==(const SYS_StringBase& a, const unsigned short* w);
KEEL_API bool operator!=(const SYS_StringBase& a, const unsigned short* w);
KEEL_API bool operator==(const unsigned short* w, const SYS_StringBase& a);
KEEL_API bool operator!=(const unsigned short* w, const SYS_StringBase& a);

// A string equals a character when it is exactly that one byte.
inline bool operator==(const SYS_StringBase& a, char c) {
    return a.GetLength() == 1 && a.GetAt(0) == c;
}
inline bool operator!=(const SYS_StringBase& a, char c) { return !(a == c); }
inline bool operator==(char c, const SYS_StringBase& a) { return a == c; }
inline bool operator!=(char c, const SYS_StringBase& a) { return !(a == c); }

// A new string formatted as by SYS_StringBase::Format.
KEEL_API SYS_StringBase FormattedString(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

#endif // SYS_STRING_H
