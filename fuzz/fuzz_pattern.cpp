// Fuzzes SYS_StrPattern: compiles a fuzzed pattern, matches and substitutes
// it on fuzzed text under a single-byte and a double-byte code page, and
// runs a fuzzed program written straight into `program`.  Each match is
// checked against a plain recursive reading of the language (below), run
// with a step budget so that its own blow-ups are skipped, not reported.
// Input: a flag byte, the pattern, a zero byte, the text.
//   build/fuzz/fuzz/fuzz_pattern -max_len=1100 -timeout=1 -max_total_time=600
//       /tmp/corpus fuzz/corpus/pattern
#include <keel/SYS_CodePage.h>
#include <keel/SYS_StrPattern.h>
#include <keel/SYS_Scan.h>
#include <keel/SYS_String.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

typedef const unsigned char* Pc;
const long kFail = -1;

// Lead bytes of the two code pages the harness uses: none in 0, and
// 0x81-0x9F and 0xE0-0xFC in 932.
bool g_DoubleByte = false;
bool IsLead(unsigned char b) {
    return g_DoubleByte && ((b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC));
}
long CharLen(const char* s) { return IsLead(static_cast<unsigned char>(s[0])) && s[1] ? 2 : 1; }

// The program run as the recursive definition states it, each repetition a
// nested call.  `start0` tells whether the attempt began at offset 0.
class Reference {
public:
    Reference(Pc program, size_t size, const unsigned char* text)
        : prog(program), progEnd(program + size), text(text),
          length(static_cast<long>(std::strlen(reinterpret_cast<const char*>(text)))) {}

    bool aborted = false;

    long Find(long* matched) {
        for (long p = 0; p < length; p += CharLen(p)) {
            start0 = p == 0;
            const long end = Run(prog, progEnd, nullptr, p);
            if (aborted) return kFail;
            if (end != kFail) {
                *matched = end - p;
                return p;
            }
        }
        return kFail;
    }

private:
    // What runs after the current range.
    struct Cont {
        Pc pc, end;
        const Cont* next;
    };

    long CharLen(long p) const { return ::CharLen(reinterpret_cast<const char*>(text + p)); }

    Pc SkipNode(Pc pc, Pc end) const {
        switch (*pc) {
        case 'c':
            return pc + (IsLead(pc[1]) && pc + 2 < end && pc[2] ? 3 : 2);
        case ':':
            return pc + 2;
        case '[':
        case ']':
        case '*':
        case '+':
        case '?':
        case '@':
        case '#':
            return pc + 2 + pc[1];
        case ')':
            return SkipList(pc + 1, end);
        default:
            return pc + 1;
        }
    }
    Pc SkipSeq(Pc pc, Pc end) const {
        while (pc < end && *pc != 'e') pc = SkipNode(pc, end);
        return pc;
    }
    Pc SkipList(Pc pc, Pc end) const {
        while (pc < end && *pc == '|') pc = SkipSeq(pc + 1, end) + 1;
        pc = SkipSeq(pc, end);
        return pc < end ? pc + 1 : pc;
    }

    bool InSet(Pc members, size_t n, unsigned char c) const {
        for (size_t i = 0; i < n; i += IsLead(members[i]) && i + 1 < n ? 2 : 1)
            if (members[i] == c) return true;
        return false;
    }

    bool InClass(unsigned char letter, unsigned char c) const {
        const bool digit = c >= '0' && c <= '9', lower = c >= 'a' && c <= 'z',
                   upper = c >= 'A' && c <= 'Z';
        switch (letter) {
        case 'a':
            return digit || lower || upper;
        case 'b':
            return c == ' ' || (c >= '\t' && c <= '\r');
        case 'c':
            return lower || upper;
        case 'd':
            return digit;
        case 'l':
            return lower;
        case 'u':
            return upper;
        default:
            return digit || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
        }
    }

    long Run(Pc pc, Pc end, const Cont* k, long p) {
        if (++steps > 50000 || depth > 3000) aborted = true;
        if (aborted) return kFail;
        ++depth;
        const long r = Step(pc, end, k, p);
        --depth;
        return r;
    }

    long Step(Pc pc, Pc end, const Cont* k, long p) {
        for (;;) {
            if (pc >= end) {
                if (!k) return p;
                pc = k->pc, end = k->end, k = k->next;
                continue;
            }
            const unsigned char op = *pc, c = text[p];
            const Pc next = op == ')' ? pc + 1 : SkipNode(pc, end); // a group opens in place
            switch (op) {
            case 'c':
                if (c != pc[1]) return kFail;
                p += CharLen(p);
                break;
            case '.':
                if (!c) return kFail;
                p += CharLen(p);
                break;
            case '$':
                if (c) return kFail;
                break;
            case '^':
                if (!start0) return kFail;
                break;
            case ':': {
                const char* s = reinterpret_cast<const char*>(text + p);
                if (pc[1] == 'h' || pc[1] == 'n' || pc[1] == 'z') {
                    const char* e =
                        pc[1] == 'n' ? getdouble(s, 1) : getinteger(s, pc[1] == 'h' ? 3 : 1);
                    if (!e) return kFail;
                    p += e - s;
                } else {
                    if (!InClass(pc[1], c)) return kFail;
                    p += CharLen(p);
                }
                break;
            }
            case '[':
            case ']':
                if (!c || InSet(pc + 2, pc[1], c) != (op == '[')) return kFail;
                p += CharLen(p);
                break;
            case '|': {
                const Pc a = pc + 1, aEnd = SkipSeq(a, end), rest = SkipList(pc, end);
                const Cont after = {rest, end, k};
                const long r1 = Run(a, aEnd, &after, p);
                if (r1 == length) return r1;
                const long r2 = Run(aEnd + 1, end, k, p);
                if (r1 == kFail) return r2;
                if (r2 == kFail) return r1;
                return r1 > r2 ? r1 : r2;
            }
            case '?': {
                const Cont after = {next, end, k};
                const long r = Run(pc + 2, next, &after, p);
                return r != kFail ? r : Run(next, end, k, p);
            }
            case '*':
            case '+': {
                const long q = Run(pc + 2, next, nullptr, p);
                if (q == kFail) return op == '*' ? Run(next, end, k, p) : kFail;
                if (q == p) return Run(next, end, k, p); // no progress: not repeated
                const long r = Run(pc, end, k, q);
                return r != kFail ? r : Run(next, end, k, q);
            }
            case '@':
            case '#': {
                long q = Run(pc + 2, next, nullptr, p);
                if (q == kFail) return op == '@' ? Run(next, end, k, p) : kFail;
                for (;;) {
                    const long r = Run(next, end, k, q);
                    if (r != kFail) return r;
                    const long q2 = Run(pc + 2, next, nullptr, q);
                    if (q2 == kFail || q2 == q) break;
                    q = q2;
                }
                return op == '@' ? Run(next, end, k, q) : kFail;
            }
            default: // ')' and 'e'
                break;
            }
            pc = next;
        }
    }

    Pc prog, progEnd;
    const unsigned char* text;
    long length;
    bool start0 = false;
    long steps = 0;
    int depth = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const uint8_t flags = data[0];
    g_DoubleByte = flags & 1;
    SYS_SetCodePage(g_DoubleByte ? 932 : 0);
    const std::string input(reinterpret_cast<const char*>(data + 1), size - 1);
    const size_t cut = input.find('\0');
    const std::string pattern = input.substr(0, cut);
    const std::string text = cut == std::string::npos ? "" : input.substr(cut + 1);
    const char* t = text.c_str();
    const long textLength = static_cast<long>(std::strlen(t));

    SYS_StrPattern pat(pattern.c_str());
    int length = -1;
    const int at = pat.Match(t, &length);
    if (at < -1 || length < 0 || (at >= 0 && at + length > textLength)) __builtin_trap();
    if (!pat.program.IsEmpty()) {
        Reference reference(reinterpret_cast<Pc>(pat.program.GetString()),
                            static_cast<size_t>(pat.program.GetLength()),
                            reinterpret_cast<const unsigned char*>(t));
        long matched = 0;
        const long expected = reference.Find(&matched);
        if (!reference.aborted && (expected != at || (at >= 0 && matched != length)))
            __builtin_trap();
    }

    static const char* const replacements[] = {"", "x", "<>", "\x82\xa0"};
    const char* with = replacements[(flags >> 1) & 3];
    const int maxCount = (flags >> 3) & 3;
    SYS_StringBase target(t);
    const int count = pat.Substitute(target, with, maxCount);
    if (count < 0) __builtin_trap();
    if (maxCount) {
        // Substitute step by step as defined: a fresh Match on the changed
        // text from each continuation point.
        SYS_StringBase expected(t);
        int n = 0, pos = 0, done = 0;
        for (int m; done < maxCount && (m = pat.Match(expected.GetBuffer(0) + pos, &n)) >= 0;
             ++done) {
            expected = expected.Left(pos + m) + with + expected.Mid(pos + m + n);
            pos += m + static_cast<int>(std::strlen(with));
        }
        if (done != count || expected.GetLength() != target.GetLength() ||
            std::strcmp(expected.GetString(), target.GetString()) != 0)
            __builtin_trap();
    }

    SYS_StrPattern copy(pat);
    copy.Match(t, &length);
    // A program written by hand: the fuzzed pattern bytes themselves.
    copy.program = SYS_StringBase(pattern.data(), static_cast<int>(pattern.size()));
    copy.Match(t, &length);
    return 0;
}
