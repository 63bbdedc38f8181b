// SYS_Mbcs.cpp - code page state and multibyte character primitives.
#include "sys/SYS_Mbcs.h"
#include "sys/SYS_Locale.h"
#include "SYS_CodePage.h"

#include <cctype>

namespace {

struct CodePageState {
    int codePage = 0;
    bool lead[256] = {};
};

void FillLeadBytes(CodePageState& st, int cp) {
    for (bool& b : st.lead) b = false;
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
    for (int b = lo1; b <= hi1; ++b) st.lead[b] = true;
    for (int b = lo2; b <= hi2; ++b) st.lead[b] = true;
    st.codePage = cp;
}

// The state is built on first use from the process locale's character set.
CodePageState& State() {
    static CodePageState st = [] {
        CodePageState s;
        FillLeadBytes(s, SYS_CodePageOfCharset(SYS_LocaleCharset()));
        return s;
    }();
    return st;
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

int SYS_SetCodePage(int cp) {
    CodePageState& st = State();
    int previous = st.codePage;
    FillLeadBytes(st, cp);
    return previous;
}

int SYS_GetCodePage() { return State().codePage; }

bool SYS_IsLeadByte(unsigned char b) { return State().lead[b]; }

int SYS_MbcLen(const char* s) {
    return SYS_IsLeadByte(static_cast<unsigned char>(s[0])) && s[1] != '\0' ? 2 : 1;
}

const char* SYS_MbsInc(const char* s) { return s + SYS_MbcLen(s); }

unsigned SYS_MbcValue(const char* s) {
    unsigned lead = static_cast<unsigned char>(s[0]);
    if (SYS_MbcLen(s) == 1) return lead;
    return lead << 8 | static_cast<unsigned char>(s[1]);
}

const char* SYS_MbsChr(const char* s, unsigned c, const char* end) {
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
    for (; !Reached(s, end); s = SYS_MbsInc(s))
        if (InSet(s, set)) return s;
    return nullptr;
}

size_t SYS_MbsSpn(const char* s, const char* set) {
    const char* p = s;
    while (*p && InSet(p, set)) p = SYS_MbsInc(p);
    return static_cast<size_t>(p - s);
}

size_t SYS_MbsCspn(const char* s, const char* set) {
    const char* p = s;
    while (*p && !InSet(p, set)) p = SYS_MbsInc(p);
    return static_cast<size_t>(p - s);
}

int SYS_MbsCmp(const char* a, const char* b) {
    return CompareWith(a, b, [](unsigned v) { return v; });
}

int SYS_MbsICmp(const char* a, const char* b) { return CompareWith(a, b, FoldCase); }

int SYS_MbcCmp(const char* a, const char* b) {
    unsigned ca = SYS_MbcValue(a), cb = SYS_MbcValue(b);
    return ca == cb ? 0 : (ca < cb ? -1 : 1);
}

bool SYS_IsMbcDigit(const char* s) { return *s >= '0' && *s <= '9'; }
