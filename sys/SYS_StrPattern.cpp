// SYS_StrPattern.cpp - the pattern compiler, Match and Substitute.
#include "SYS_StrPattern.h"
#include "sys/internal/SYS_Mbcs.h"
#include "sys/internal/SYS_Numbers.h"
#include "sys/internal/SYS_PatternMachine.h"

#include "SYS_CodePage.h"

#include <climits>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

inline unsigned char Byte(char c) { return static_cast<unsigned char>(c); }

// The trail byte stored after a literal lead byte that came without one.
const char kStandInTrail = '\x40';

// The pattern is read in one pass, with the open groups on a stack of their
// own, so nesting costs heap, not native stack.  Two kinds of program bytes
// stand before text that they describe and are known only after it: the '|'
// that introduces every alternative but the last, and a postfix operator with
// its operand's length.  Everything else is written in order to `body`; those
// bytes are noted as prefixes with the body offset they go before, and the
// two are merged at the end.  A sequence notes an empty prefix when it starts
// and fills it when it ends, so the notes stay in body order; an operator's
// note goes before the notes of its operand, which has at most 255 bytes.
class Compiler {
public:
    explicit Compiler(const char* source) : s(source) {}

    bool Compile(std::string& out) {
        if (!Parse()) return false;
        out.reserve(body.size() + prefixBytes);
        size_t from = 0;
        for (const Prefix& p : prefixes) {
            out.append(body, from, p.at - from);
            out.append(p.bytes, p.size);
            from = p.at;
        }
        out.append(body, from, std::string::npos);
        return true;
    }

private:
    struct Prefix {
        size_t at;
        char bytes[2];
        unsigned char size;
    };
    // Where an atom began: in the body, among the prefixes, and how many
    // prefix bytes were noted before it.
    struct Start {
        size_t at, prefix, noted;
    };
    struct Group {
        Start atom;
        size_t seq; // the prefix of the sequence the group is part of
    };

    Start Here() const { return {body.size(), prefixes.size(), prefixBytes}; }

    // Alternation lists of sequences: every sequence ends with 'e', and one
    // followed by '|' is introduced by '|'.  A '^' may open a sequence; atoms
    // follow up to a character that only a group, a set or an alternation
    // can take.
    bool Parse() {
        std::vector<Group> open;
        size_t seq = StartSeq();
        for (;;) {
            const char c = s[i];
            if (!std::strchr("#)*+?@]^|", c)) { // the terminating zero is in the list
                const Start atom = Here();
                if (c == '(') {
                    ++i;
                    open.push_back({atom, seq});
                    body += ')';
                    seq = StartSeq();
                } else if (!Atom() || !Postfix(atom)) {
                    return false;
                }
                continue;
            }
            body += 'e';
            if (c == '|') {
                ++i;
                prefixes[seq].bytes[0] = '|';
                prefixes[seq].size = 1;
                ++prefixBytes;
                seq = StartSeq();
                continue;
            }
            if (open.empty()) return c == '\0';
            if (c != ')') return false;
            ++i;
            const Group g = open.back();
            open.pop_back();
            seq = g.seq;
            if (!Postfix(g.atom)) return false;
        }
    }

    size_t StartSeq() {
        prefixes.push_back({body.size(), {0, 0}, 0});
        if (s[i] == '^') {
            body += '^';
            ++i;
        }
        return prefixes.size() - 1;
    }

    // An atom other than a group.
    bool Atom() {
        const char c = s[i++];
        switch (c) {
        case '$':
        case '.':
            body += c;
            return true;
        case ':':
            // A letter that names no class leaves ':' a literal.
            if (s[i] && std::strchr("abcdhlnuxz", s[i])) {
                body += ':';
                body += s[i++];
            } else {
                body += 'c';
                body += ':';
            }
            return true;
        case '[':
            if (!Set(body) || s[i] != ']') return false;
            ++i;
            return true;
        case '\\':
            body += 'c';
            return Escape(body);
        default:
            --i;
            body += 'c';
            Char(body);
            return true;
        }
    }

    // After the atom that began at `atom`: a lead byte with no trail (from
    // \x, or at the end of the pattern) gets a stand-in trail byte, or the
    // program would read the next node's first byte as its trail (only the
    // lead byte is compared).  Then one postfix operator may wrap the atom;
    // a second one ends the sequence.
    bool Postfix(const Start& atom) {
        if (body.size() - atom.at == 2 && body[atom.at] == 'c' &&
            SYS_IsLeadByte(Byte(body[atom.at + 1])))
            body += kStandInTrail;
        const char op = s[i];
        if (!op || !std::strchr("#*+?@", op)) return true;
        const size_t length = body.size() - atom.at + prefixBytes - atom.noted;
        if (length > 255) return false;
        prefixes.insert(prefixes.begin() + static_cast<std::ptrdiff_t>(atom.prefix),
                        Prefix{atom.at, {op, static_cast<char>(length)}, 2});
        prefixBytes += 2;
        ++i;
        return true;
    }

    // The character at the cursor, with its trail byte.
    void Char(std::string& out) {
        const char c = s[i++];
        out += c;
        if (SYS_IsLeadByte(Byte(c)) && s[i]) out += s[i++];
    }

    // The byte or bytes escaped by the '\' just passed.
    bool Escape(std::string& out) {
        const char c = s[i];
        char byte;
        switch (c) {
        case '\0':
            return false; // nothing to escape
        case 'b':
            byte = '\b';
            break;
        case 'f':
            byte = '\f';
            break;
        case 'n':
            byte = '\n';
            break;
        case 'r':
            byte = '\r';
            break;
        case 't':
            byte = '\t';
            break;
        case 'x': {
            // One digit d1 gives d1 - '0'; two give ((d1 - '0' + 13) * 16 + d2)
            // modulo 256, which is the hexadecimal value for decimal digits.
            const char d1 = s[i + 1];
            if (!SYS_IsHexDigit(d1)) return false;
            int value = Byte(d1) - '0';
            if (SYS_IsHexDigit(s[i + 2])) {
                value = ((value + 13) * 16 + Byte(s[i + 2])) & 0xFF;
                ++i;
            }
            if (value == 0) return false;
            i += 2;
            out += static_cast<char>(value);
            return true;
        }
        default:
            Char(out);
            return true;
        }
        ++i;
        out += byte;
        return true;
    }

    // After '[': members up to ']' (not consumed).
    bool Set(std::string& out) {
        char op = '[';
        if (s[i] == '^') {
            op = ']';
            ++i;
        }
        std::string members;
        int last = -1, lastLead = -1; // the last byte added; the lead byte before it
        bool first = true;
        auto noteLast = [&](size_t before) {
            if (members.size() == before) return;
            last = Byte(members.back());
            lastLead = members.size() - before == 2 ? Byte(members[before]) : -1;
        };
        while (s[i] != ']' && s[i] != '\0') {
            const size_t before = members.size();
            if (s[i] == '-' && !first && s[i + 1] != ']') {
                ++i;
                if (s[i] == '\0') return false;
                Range(members, last, lastLead);
            } else if (s[i] == '\\') {
                ++i;
                if (!Escape(members)) return false;
                noteLast(before);
            } else {
                Char(members);
                noteLast(before);
            }
            first = false;
        }
        if (members.size() > 255) return false;
        out += op;
        out += static_cast<char>(members.size());
        out += members;
        return true;
    }

    // A range from the byte after the last one added up to the character at
    // the cursor, byte by byte; it stops at byte 255.  Double-byte ends must
    // share their lead byte, and each member then takes it.
    void Range(std::string& members, int& last, int& lastLead) {
        const unsigned char end = Byte(s[i]);
        const bool doubleEnd = SYS_IsLeadByte(end) && s[i + 1];
        const int top = doubleEnd ? Byte(s[i + 1]) : end;
        i += doubleEnd ? 2 : 1;
        if (doubleEnd ? lastLead != end : lastLead >= 0) return;
        const int from = (last + 1) & 0xFF;
        for (int b = from; b <= top; ++b) {
            if (doubleEnd) members += static_cast<char>(end);
            members += static_cast<char>(b);
        }
        if (from <= top) last = top;
    }

    const char* s;
    size_t i = 0;
    std::string body;
    std::vector<Prefix> prefixes;
    size_t prefixBytes = 0;
};

// The machine of the last program run on this thread, kept with its
// buffers: a loop of Match calls with one pattern decodes it once.
SYS_PatternMachine& MachineFor(const SYS_StringBase& program) {
    struct Cache {
        std::string program;
        int codePage = -1;
        std::unique_ptr<SYS_PatternMachine> machine;
    };
    thread_local Cache cache;
    const size_t size = static_cast<size_t>(program.GetLength());
    const int codePage = SYS_GetCodePage();
    if (!cache.machine || cache.codePage != codePage || cache.program.size() != size ||
        std::memcmp(cache.program.data(), program.GetString(), size) != 0) {
        cache.program.assign(program.GetString(), size);
        cache.codePage = codePage;
        cache.machine.reset(new SYS_PatternMachine(program.GetString(), size));
    }
    return *cache.machine;
}

inline void CheckLength(size_t n) {
    if (n > static_cast<size_t>(INT_MAX)) throw std::length_error("string too long");
}

} // namespace

SYS_StrPattern::SYS_StrPattern() {}

SYS_StrPattern::SYS_StrPattern(const char* source) { MakePattern(source); }

SYS_StrPattern::SYS_StrPattern(const SYS_StringBase& source) { MakePattern(source.GetString()); }

SYS_StrPattern::SYS_StrPattern(const SYS_StrPattern& other) : program(other.program.GetString()) {}

const SYS_StrPattern& SYS_StrPattern::operator=(const char* source) {
    MakePattern(source);
    return *this;
}

const SYS_StrPattern& SYS_StrPattern::operator=(const SYS_StringBase& source) {
    MakePattern(source.GetString());
    return *this;
}

const SYS_StrPattern& SYS_StrPattern::operator=(const SYS_StrPattern& other) {
    program = other.program.GetString();
    return *this;
}

void SYS_StrPattern::MakePattern(const char* source) {
    program.Empty();
    if (!source || !*source) return;
    std::string out;
    if (!Compiler(source).Compile(out)) return;
    CheckLength(out.size());
    program.Append(out.data(), static_cast<int>(out.size()));
}

int SYS_StrPattern::Match(const char* text, int* length) const {
    int unused;
    if (!length) length = &unused;
    *length = 0;
    if (program.IsEmpty() || !text || !*text) {
        SYS_PatternMachine::ResetThreadStats();
        return -1;
    }
    SYS_PatternMachine& machine = MachineFor(program);
    machine.ResetStats();
    size_t n = 0;
    const long at = machine.Find(text, 0, &n, true);
    machine.Trim();
    *length = static_cast<int>(n);
    return static_cast<int>(at);
}

int SYS_StrPattern::Substitute(SYS_StringBase& target, const SYS_StringBase& replacement,
                               int maxCount) const {
    SYS_PatternMachine::ResetThreadStats();
    if (maxCount < 0) return 0;
    // The text is read as the C text of GetBuffer(0), which leaves an empty
    // target with a length of 1.
    const char* text = target.GetBuffer(0);
    if (program.IsEmpty()) return 0;
    SYS_PatternMachine& machine = MachineFor(program);
    if (!machine.IsValid()) return 0;

    // The result is built in one pass: each search starts where the previous
    // match ended, on text no replacement has touched, so what one search
    // learnt about the text still holds for the next.
    const char* with = replacement.GetString();
    const size_t withLength = std::strlen(with);
    std::string out;
    size_t at = 0;
    int count = 0;
    bool searchedLast = false; // the last step was a search that found nothing
    for (bool fresh = true; maxCount == 0 || count < maxCount; fresh = false) {
        size_t n = 0;
        const long m = machine.Find(text, at, &n, fresh);
        if (m < 0) {
            searchedLast = true;
            break;
        }
        out.append(text + at, static_cast<size_t>(m));
        if (m == 0 && n == 0) {
            // An empty match where the search began: the next search would
            // find it again.  With a limit, the replacement goes in as often
            // as the limit allows; without one, it goes in once and the
            // search moves on by one character.
            if (maxCount) {
                CheckLength(out.size() + withLength * static_cast<size_t>(maxCount - count));
                for (; count < maxCount && withLength; ++count) out.append(with, withLength);
                count = maxCount;
                break;
            }
            out.append(with, withLength);
            ++count;
            const size_t step = static_cast<size_t>(SYS_MbcLen(text + at));
            out.append(text + at, step);
            at += step;
            continue;
        }
        out.append(with, withLength);
        at += static_cast<size_t>(m) + n;
        ++count;
        CheckLength(out.size());
    }
    machine.Trim();
    if (count == 0) return 0;
    out.append(text + at);
    CheckLength(out.size());
    target = SYS_StringBase(out.data(), static_cast<int>(out.size()));
    // That search read the target through GetBuffer(0) too, which gives a
    // target emptied by the replacements a length of 1.
    if (searchedLast) target.GetBuffer(0);
    return count;
}
