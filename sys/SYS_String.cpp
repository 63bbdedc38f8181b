// SYS_String.cpp - SYS_StringBase and its free operators.
#include "SYS_String.h"
#include "SYS_Scan.h"
#include "sys/internal/SYS_Locale.h"
#include "sys/internal/SYS_Mbcs.h"
#include "sys/internal/SYS_Numbers.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace {

// The standard library words its errors its own way; keel's are fixed texts.
[[noreturn]] void PositionError() { throw std::out_of_range("invalid string position"); }
[[noreturn]] void LengthError() { throw std::length_error("string too long"); }

// A position must lie in [0, length].
size_t CheckedPos(int i, const std::string& body) {
    if (i < 0 || static_cast<size_t>(i) > body.size()) PositionError();
    return static_cast<size_t>(i);
}

// A size given as int; a negative one is as huge as it would be unsigned.
size_t CheckedSize(int n) {
    if (n < 0) LengthError();
    return static_cast<size_t>(n);
}

// Room for `extra` more bytes.
void CheckGrowth(const std::string& body, size_t extra) {
    if (extra > body.max_size() - body.size()) LengthError();
}

} // namespace

SYS_StringBase::SYS_StringBase() = default;
SYS_StringBase::SYS_StringBase(const SYS_StringBase& other) = default;
SYS_StringBase::SYS_StringBase(const char* s) : body(SYS_NotNull(s)) {}
SYS_StringBase::SYS_StringBase(const char* s, int n) {
    if (s) body.assign(s, CheckedSize(n));
}
SYS_StringBase::SYS_StringBase(char c, int n) : body(CheckedSize(n), c) {}
SYS_StringBase::SYS_StringBase(const unsigned short* w) {
    size_t n = 0;
    while (w[n]) ++n;
    body = SYS_WideToMultiByte(w, n);
}
SYS_StringBase::~SYS_StringBase() = default;

const SYS_StringBase& SYS_StringBase::operator=(const SYS_StringBase& other) {
    if (this != &other) body = other.body;
    return *this;
}

const SYS_StringBase& SYS_StringBase::operator=(const char* s) {
    body = std::string(SYS_NotNull(s));
    return *this;
}

const SYS_StringBase& SYS_StringBase::operator=(char c) {
    body.assign(1, c);
    return *this;
}

char SYS_StringBase::GetAt(int i) const {
    return i < 0 || i >= GetLength() ? '\0' : body[static_cast<size_t>(i)];
}

void SYS_StringBase::SetAt(int i, char c) {
    if (i >= 0 && i < GetLength()) body[static_cast<size_t>(i)] = c;
}

int SYS_StringBase::StringLength(const char* s) { return static_cast<int>(std::strlen(s)); }

void SYS_StringBase::ConcatCopy(int, const char* s1, int, const char* s2) {
    std::string joined(SYS_NotNull(s1));
    size_t n2 = std::strlen(s2);
    CheckGrowth(joined, n2);
    joined.append(s2, n2);
    body.swap(joined);
}

void SYS_StringBase::ConcatInPlace(int, const char* s) {
    size_t n = std::strlen(s);
    CheckGrowth(body, n);
    body.append(s, n);
}

const SYS_StringBase& SYS_StringBase::operator+=(const char* s) {
    ConcatInPlace(0, s);
    return *this;
}

const SYS_StringBase& SYS_StringBase::operator+=(const SYS_StringBase& s) {
    ConcatInPlace(s.GetLength(), s.GetString());
    return *this;
}

void SYS_StringBase::Append(const SYS_StringBase& s) {
    std::string copy(s.body);
    CheckGrowth(body, copy.size());
    body.append(copy);
}

void SYS_StringBase::Append(const char* s) { ConcatInPlace(0, s); }

void SYS_StringBase::Append(const char* s, int n) {
    size_t count = CheckedSize(n);
    CheckGrowth(body, count);
    body.append(s, count);
}

SYS_StringBase& SYS_StringBase::operator<<(char c) {
    *this += c;
    return *this;
}
SYS_StringBase& SYS_StringBase::operator<<(const char* s) {
    *this += s;
    return *this;
}
SYS_StringBase& SYS_StringBase::operator<<(const SYS_StringBase& s) {
    *this += s;
    return *this;
}
SYS_StringBase& SYS_StringBase::operator<<(int v) { return *this << static_cast<long>(v); }
SYS_StringBase& SYS_StringBase::operator<<(long v) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%ld", v);
    return *this << static_cast<const char*>(buf);
}
SYS_StringBase& SYS_StringBase::operator<<(unsigned int v) {
    return *this << static_cast<unsigned long>(v);
}
SYS_StringBase& SYS_StringBase::operator<<(unsigned long v) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%lu", v);
    return *this << static_cast<const char*>(buf);
}
SYS_StringBase& SYS_StringBase::operator<<(float v) { return *this << static_cast<double>(v); }
SYS_StringBase& SYS_StringBase::operator<<(double v) {
    SYS_StringBase text;
    text.Format("%f", v);
    return *this << text;
}

namespace {
// Stores the parsed value and the end position, and returns the value.
template <class T, class P> T Store(T* out, const char** end, P parsed, const char* s) {
    *out = static_cast<T>(parsed.value);
    if (end) *end = s + parsed.used;
    return *out;
}
} // namespace

short SYS_StringBase::Value(short* out, const char** end) const {
    return Store(out, end, SYS_ParseLong32(GetString()), GetString());
}
int SYS_StringBase::Value(int* out, const char** end) const {
    return Store(out, end, SYS_ParseLong32(GetString()), GetString());
}
long SYS_StringBase::Value(long* out, const char** end) const {
    return Store(out, end, SYS_ParseLong32(GetString()), GetString());
}
unsigned int SYS_StringBase::Value(unsigned int* out, const char** end) const {
    return Store(out, end, SYS_ParseULong32(GetString()), GetString());
}
unsigned long SYS_StringBase::Value(unsigned long* out, const char** end) const {
    return Store(out, end, SYS_ParseULong32(GetString()), GetString());
}
double SYS_StringBase::Value(double* out, const char** end) const {
    return Store(out, end, SYS_ParseDouble(GetString()), GetString());
}
float SYS_StringBase::Value(float* out, const char** end) const {
    return Store(out, end, SYS_ParseDouble(GetString()), GetString());
}

SYS_StringBase SYS_StringBase::Mid(int first, int count) const {
    size_t pos = CheckedPos(first, body);
    size_t n = count < 0 ? std::string::npos : static_cast<size_t>(count);
    return SYS_StringBase(body.substr(pos, n).c_str());
}

SYS_StringBase SYS_StringBase::Mid(int first) const { return Mid(first, GetLength() - first); }

SYS_StringBase SYS_StringBase::Left(int count) const {
    size_t n = count < 0 ? std::string::npos : static_cast<size_t>(count);
    return SYS_StringBase(body.substr(0, n).c_str());
}

SYS_StringBase SYS_StringBase::Right(int count) const {
    if (count < 0) PositionError();
    int n = count < GetLength() ? count : GetLength();
    return SYS_StringBase(body.substr(body.size() - static_cast<size_t>(n)).c_str());
}

SYS_StringBase SYS_StringBase::SpanIncluding(const char* set) const {
    return Left(static_cast<int>(SYS_MbsSpn(GetString(), set)));
}

SYS_StringBase SYS_StringBase::SpanExcluding(const char* set) const {
    return Left(static_cast<int>(SYS_MbsCspn(GetString(), set)));
}

SYS_StringBase SYS_StringBase::Tokenize(const char* delims, int& pos) const {
    if (pos < 0) return SYS_StringBase();
    if (!delims || !*delims) {
        if (pos < GetLength()) return Mid(pos);
        pos = -1;
        return SYS_StringBase();
    }
    if (pos < GetLength()) {
        const char* at = GetString() + pos;
        at += SYS_MbsSpn(at, delims);
        if (*at) {
            int start = static_cast<int>(at - GetString());
            int len = static_cast<int>(SYS_MbsCspn(at, delims));
            pos = start + len + 1;
            return Mid(start, len);
        }
    }
    pos = -1;
    return SYS_StringBase();
}

int SYS_StringBase::Find(char c, int start) const {
    if (start < 0 || start > GetLength()) return -1;
    size_t at = body.find(c, static_cast<size_t>(start));
    return at == std::string::npos ? -1 : static_cast<int>(at);
}

int SYS_StringBase::Find(const char* s, int start) const {
    if (start < 0) return -1;
    size_t at = body.find(s, static_cast<size_t>(start));
    return at == std::string::npos ? -1 : static_cast<int>(at);
}

int SYS_StringBase::FindOneOf(const char* set, int start) const {
    if (start < 0 || start > GetLength()) return -1;
    const char* hit = SYS_MbsPbrk(GetString() + start, set);
    return hit ? static_cast<int>(hit - GetString()) : -1;
}

// The reverse searches look only at the text up to and including `start`, as
// if it were cut there, without writing into the body.
int SYS_StringBase::ReverseFind(char c, int start) const {
    if (c == '\0') return start == GetLength() || start == -2 ? GetLength() : -1;
    if (start == -2) start = GetLength() - 1;
    if (start >= GetLength() || start < 0) return -1;
    const char* s = GetString();
    const char* hit = SYS_MbsRChr(s, static_cast<unsigned char>(c), s + start + 1);
    return hit ? static_cast<int>(hit - s) : -1;
}

int SYS_StringBase::ReverseFindOneOf(const char* set, int start) const {
    if (start == -2) start = GetLength() - 1;
    if (start >= GetLength() || start < 0) return -1;
    const char* s = GetString();
    const char* cut = s + start + 1;
    // Index 0 is never looked at, and each new search begins one byte (not
    // one character) after the previous hit.
    int last = -1;
    for (const char* hit = SYS_MbsPbrk(s + 1, set, cut); hit; hit = SYS_MbsPbrk(hit + 1, set, cut))
        last = static_cast<int>(hit - s);
    return last;
}

void SYS_StringBase::Insert(int i, char c) {
    size_t pos = CheckedPos(i, body);
    CheckGrowth(body, 1);
    body.insert(pos, 1, c);
}

void SYS_StringBase::Insert(int i, const char* s) {
    size_t pos = CheckedPos(i, body);
    std::string text(s);
    CheckGrowth(body, text.size());
    body.insert(pos, text);
}

void SYS_StringBase::Delete(int i, int count) {
    size_t pos = CheckedPos(i, body);
    body.erase(pos, count < 0 ? std::string::npos : static_cast<size_t>(count));
}

void SYS_StringBase::Replace(int i, int count, const char* s) {
    Delete(i, count);
    Insert(i, s);
}

// Each search restarts at the beginning of the text, so an `oldChar` equal to
// `newChar` never ends; callers must not pass such a pair.
int SYS_StringBase::Replace(char oldChar, char newChar) {
    int count = 0;
    for (size_t at = body.find(oldChar); at != std::string::npos; at = body.find(oldChar)) {
        body[at] = newChar;
        ++count;
    }
    return count;
}

// As above: a `newText` containing `oldText`, or an empty `oldText`, never ends.
int SYS_StringBase::Replace(const char* oldText, const char* newText) {
    size_t n = std::strlen(oldText);
    int count = 0;
    for (size_t at = body.find(oldText, 0, n); at != std::string::npos;
         at = body.find(oldText, 0, n)) {
        body.replace(at, n, newText);
        ++count;
    }
    return count;
}

int SYS_StringBase::Remove(char c) {
    int count = 0;
    for (size_t at = body.find(c); at != std::string::npos; at = body.find(c)) {
        body.erase(at, 1);
        ++count;
    }
    return count;
}

SYS_StringBase& SYS_StringBase::MakeUpper() {
    for (char& c : body) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return *this;
}

SYS_StringBase& SYS_StringBase::MakeLower() {
    for (char& c : body) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return *this;
}

namespace {
inline bool IsSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
} // namespace

SYS_StringBase& SYS_StringBase::TrimLeft(const char* set) {
    size_t keep = 0;
    if (set && *set) {
        keep = body.find_first_not_of(set);
    } else {
        while (keep < body.size() && IsSpace(body[keep])) ++keep;
    }
    body.erase(0, keep);
    return *this;
}

SYS_StringBase& SYS_StringBase::TrimRight(const char* set) {
    size_t end = body.size();
    if (set && *set) {
        size_t last = body.find_last_not_of(set);
        end = last == std::string::npos ? 0 : last + 1;
    } else {
        while (end > 0 && IsSpace(body[end - 1])) --end;
    }
    body.erase(end);
    return *this;
}

SYS_StringBase& SYS_StringBase::AllTrim(const char* set) { return TrimLeft(set).TrimRight(set); }

int SYS_StringBase::CompareMultiByte(const char* s) const { return SYS_MbsCmp(GetString(), s); }
int SYS_StringBase::CompareNoCase(const char* s) const { return SYS_MbsICmp(GetString(), s); }
int SYS_StringBase::CompareAlNum(const char* s) const { return _tcsnumcmp(GetString(), s); }

void SYS_StringBase::Format(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    FormatV(fmt, args);
    va_end(args);
}

void SYS_StringBase::FormatV(const char* fmt, va_list args) {
    // Most texts fit a stack buffer and are formatted once; a longer one is
    // formatted again into a body of the size the first pass measured.
    char buffer[512];
    va_list again;
    va_copy(again, args);
    const int count = std::vsnprintf(buffer, sizeof buffer, fmt, args);
    if (count <= 0) {
        body.clear();
    } else if (static_cast<size_t>(count) < sizeof buffer) {
        body.assign(buffer, static_cast<size_t>(count));
    } else {
        body.resize(static_cast<size_t>(count));
        std::vsnprintf(&body[0], static_cast<size_t>(count) + 1, fmt, again);
    }
    va_end(again);
}

char* SYS_StringBase::GetBuffer(int n) {
    if (n >= 0 && body.size() < static_cast<size_t>(n) + 1) body.resize(static_cast<size_t>(n) + 1);
    return &body[0];
}

char* SYS_StringBase::GetBufferSetLength(int n) {
    body.resize(CheckedSize(n));
    return &body[0];
}

void SYS_StringBase::ReleaseBuffer() { body.resize(std::strlen(body.c_str())); }

void SYS_StringBase::ReleaseBufferSetLength(int n) { body.resize(CheckedSize(n)); }

void SYS_StringBase::Reserve(int n) {
    if (n >= GetLength() && static_cast<size_t>(n) != body.capacity())
        body.reserve(static_cast<size_t>(n));
}

SYS_StringBase operator+(const SYS_StringBase& a, const SYS_StringBase& b) {
    SYS_StringBase r;
    r.ConcatCopy(a.GetLength(), a.GetString(), b.GetLength(), b.GetString());
    return r;
}

SYS_StringBase operator+(const SYS_StringBase& a, const char* b) {
    SYS_StringBase r;
    r.ConcatCopy(a.GetLength(), a.GetString(), 0, b);
    return r;
}

SYS_StringBase operator+(const char* a, const SYS_StringBase& b) {
    SYS_StringBase r;
    r.ConcatCopy(0, a, b.GetLength(), b.GetString());
    return r;
}

SYS_StringBase operator+(const SYS_StringBase& a, char b) {
    char one[2] = {b, '\0'};
    return a + static_cast<const char*>(one);
}

SYS_StringBase operator+(char a, const SYS_StringBase& b) {
    char one[2] = {a, '\0'};
    return static_cast<const char*>(one) + b;
}

bool operator==(const SYS_StringBase& a, const unsigned short* w) {
    return a.Compare(SYS_StringBase(w)) == 0;
}
bool operator!=(const SYS_StringBase& a, const unsigned short* w) { return !(a == w); }
bool operator==(const unsigned short* w, const SYS_StringBase& a) { return a == w; }
bool operator!=(const unsigned short* w, const SYS_StringBase& a) { return !(a == w); }

SYS_StringBase FormattedString(const char* fmt, ...) {
    SYS_StringBase r;
    va_list args;
    va_start(args, fmt);
    r.FormatV(fmt, args);
    va_end(args);
    return r;
}
