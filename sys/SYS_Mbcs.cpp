// SYS_Mbcs.cpp - code page state and multibyte character primitives.
#include "sys/internal/SYS_Mbcs.h"
#include "sys/internal/SYS_Locale.h"
#include "SYS_CodePage.h"
#include "internal/SYS_CodePageState.h"

#include <cctype>
#include <cstring>

SYS_LeadByteTable g_SYS_LeadBytes = {};
int SYS_SingleByteCodePage = 0;

namespace {

int g_CodePage = 0;

void FillLeadBytes(int cp) {
    SYS_LeadByteTable& t = g_SYS_LeadBytes;
    for (bool& b : t.lead) b = false;
    int lo1 = 0, hi1 = -1, lo2 = 0, hi2 = -1;
    switch (cp) {
    case 932:
        lo1 = 0x81, hi1 = 0x9F, lo2 = 0xE0, hi2 = 0xFC;
        break;
    case 936:
    case 949:
    case 950:
        lo1 = 0x81, hi1 = 0xFE;
        break;
    default:
        cp = 0;
        break;
    }
    for (int b = lo1; b <= hi1; ++b) t.lead[b] = true;
    for (int b = lo2; b <= hi2; ++b) t.lead[b] = true;
    t.doubleByte = cp != 0;
    t.ready = true;
    SYS_SingleByteCodePage = cp == 0 ? 1 : 0;
    g_CodePage = cp;
}

inline bool Reached(const char* s, const char* end) { return *s == '\0' || (end && s >= end); }

inline bool InSet(const char* c, const char* set) {
    unsigned v = SYS_MbcValue(c);
    return SYS_MbsChr(set, v) != nullptr;
}

inline unsigned FoldCase(unsigned v) {
    return v < 0x80 ? static_cast<unsigned>(std::tolower(static_cast<int>(v))) : v;
}

template <class Fold> int CompareWith(const char* a, const char* b, Fold fold) {
    for (;;) {
        unsigned ca = fold(SYS_MbcValue(a));
        unsigned cb = fold(SYS_MbcValue(b));
        if (ca != cb) return ca < cb ? -1 : 1;
        if (ca == 0) return 0;
        a = SYS_MbsInc(a);
        b = SYS_MbsInc(b);
    }
}

} // namespace

// The code page follows the process locale's character set until it is set.
void SYS_InitLeadBytes() { FillLeadBytes(SYS_CodePageOfCharset(SYS_LocaleCharset())); }

int SYS_SetCodePage(int cp) {
    SYS_LeadBytes();
    int previous = g_CodePage;
    FillLeadBytes(cp);
    return previous;
}

int SYS_GetCodePage() {
    SYS_LeadBytes();
    return g_CodePage;
}

// Under a single-byte code page the C library's byte functions give the same
// answers, faster.  A hit at or past `end` does not count.
inline const char* Bounded(const char* hit, const char* end) {
    return hit && (!end || hit < end) ? hit : nullptr;
}

const char* SYS_MbsChr(const char* s, unsigned c, const char* end) {
    if (!SYS_LeadBytes().doubleByte)
        return c == 0 || c > 0xFF ? nullptr : Bounded(std::strchr(s, static_cast<int>(c)), end);
    for (; !Reached(s, end); s = SYS_MbsInc(s))
        if (SYS_MbcValue(s) == c) return s;
    return nullptr;
}

const char* SYS_MbsRChr(const char* s, unsigned c, const char* end) {
    const char* found = nullptr;
    for (; !Reached(s, end); s = SYS_MbsInc(s))
        if (SYS_MbcValue(s) == c) found = s;
    return found;
}

const char* SYS_MbsPbrk(const char* s, const char* set, const char* end) {
    if (!SYS_LeadBytes().doubleByte) return Bounded(std::strpbrk(s, set), end);
    for (; !Reached(s, end); s = SYS_MbsInc(s))
        if (InSet(s, set)) return s;
    return nullptr;
}

size_t SYS_MbsSpn(const char* s, const char* set) {
    if (!SYS_LeadBytes().doubleByte) return std::strspn(s, set);
    const char* p = s;
    while (*p && InSet(p, set)) p = SYS_MbsInc(p);
    return static_cast<size_t>(p - s);
}

size_t SYS_MbsCspn(const char* s, const char* set) {
    if (!SYS_LeadBytes().doubleByte) return std::strcspn(s, set);
    const char* p = s;
    while (*p && !InSet(p, set)) p = SYS_MbsInc(p);
    return static_cast<size_t>(p - s);
}

int SYS_MbsCmp(const char* a, const char* b) {
    if (!SYS_LeadBytes().doubleByte) {
        // Byte order is character order here, and strcmp compares bytes as
        // unsigned char, as the character values do.
        return SYS_Sign(std::strcmp(a, b));
    }
    return CompareWith(a, b, [](unsigned v) { return v; });
}

int SYS_MbsICmp(const char* a, const char* b) { return CompareWith(a, b, FoldCase); }
