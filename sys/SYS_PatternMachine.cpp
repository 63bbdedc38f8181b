// SYS_PatternMachine.cpp - decoding and running SYS_StrPattern programs.
#include "sys/internal/SYS_PatternMachine.h"
#include "sys/internal/SYS_Mbcs.h"
#include "SYS_Scan.h"

#include <cstring>
#include <utility>

namespace {

// Instructions.
enum : uint8_t {
    kChar,    // one character whose first byte is in set a
    kEnd,     // the end of the text
    kStart,   // the attempt began at the start of the text
    kNumber,  // a whole number; arg is the class letter
    kAlt,     // b alternatives, entries m_Alts[a...]
    kOpt,     // operand at a, then next; or next
    kGreedy,  // operand at a repeated; arg 1 for '+'
    kLazy,    // operand at a, lazily; arg 1 for '#'
    kJump,    // nothing (an empty sequence)
    kSucceed, // the end of a program or of an operand
};

// Backtracking frames.
enum : uint8_t {
    fChoice, // on failure, run ins at p
    fAlt,    // alternatives of ins at p: x the next one, y the furthest end
    fCall,   // an operand call of repetition ins at p; x the run count then
    fGreedy, // positions after repetitions of ins: runs from x up
    fLazy,   // lazy repetition ins, p the position after the last one; with the
             // outcome cache, the positions it passed are runs from x up
    fMemo,   // the outcome of the branch ins at p, to be remembered as key x
};

// Why an operand was called.
enum : uint8_t { cGreedy, cLazyFirst, cLazyNext };

const size_t kNone = static_cast<size_t>(-1);

// The outcome cache starts small and doubles when full, up to 12 MB.
const size_t kMemoStart = 4096;
const size_t kMemoLimit = size_t(1) << 19;

thread_local SYS_PatternStats t_Stats;

} // namespace

SYS_PatternStats SYS_PatternLastStats() { return t_Stats; }

void SYS_PatternMachine::ResetStats() { t_Stats = SYS_PatternStats(); }

// --- Decoding -----------------------------------------------------------------

// Turns the byte program into instructions.  Each piece of program leaves a
// list of "holes": instructions whose next is whatever follows the piece,
// chained through those next fields until it is known.  Open lists and
// operands are kept on a stack of their own, so nesting costs heap, not
// native stack.
class SYS_PatternMachine::Decoder {
public:
    Decoder(SYS_PatternMachine& m, const unsigned char* prog, size_t size)
        : m(m), prog(prog), size(size) {}

    // Alternatives after '|' end with 'e'; the last one of a list ends with
    // 'e' or with the end of the range it is in.  An operand is a sequence
    // that fills its length.
    bool Decode() {
        size_t pos = 0;
        std::vector<Level> open;
        std::vector<int32_t> entries; // the alternatives read in open lists
        auto openList = [&](size_t end) {
            Level list = {')', end, Piece(), false, entries.size(), Holes()};
            NextAlternative(list, pos);
            open.push_back(list);
        };
        openList(size);
        for (;;) {
            Level& top = open.back();
            if (pos < top.end && prog[pos] != 'e') {
                Piece node;
                switch (const unsigned char op = prog[pos]) {
                case ')':
                    ++pos;
                    openList(top.end);
                    continue;
                case '?':
                case '*':
                case '+':
                case '@':
                case '#': {
                    if (++pos >= top.end) return false;
                    const size_t n = prog[pos++];
                    if (n == 0 || top.end - pos < n) return false;
                    open.push_back({op, pos + n, Piece(), false, 0, Holes()});
                    continue;
                }
                default:
                    if (!Node(pos, top.end, node)) return false;
                    Append(top.seq, node);
                    continue;
                }
            }
            // The sequence being read ends here.
            if (top.seq.entry < 0) top.seq = Single(Add(kJump));
            Piece done;
            if (top.op != ')') {
                if (pos != top.end) return false;
                done = Repetition(top.op, top.seq);
            } else {
                if (pos < top.end)
                    ++pos; // the 'e'
                else if (top.more)
                    return false;
                entries.push_back(top.seq.entry);
                Join(top.holes, top.seq.holes);
                if (top.more) {
                    NextAlternative(top, pos);
                    continue;
                }
                done = Alternation(entries, top.alts, top.holes);
            }
            open.pop_back();
            if (open.empty()) {
                if (pos != size) return false;
                Patch(done.holes, Add(kSucceed));
                m.m_Entry = done.entry;
                return true;
            }
            Append(open.back().seq, done);
        }
    }

private:
    struct Holes {
        int32_t first = -1, last = -1;
    };
    struct Piece {
        int32_t entry = -1;
        Holes holes;
    };
    // An open list or operand, with the sequence being read in it.
    struct Level {
        unsigned char op; // ')' for a list, else the repetition operator
        size_t end;       // where the range it is in, or the operand, ends
        Piece seq;
        bool more;   // (lists) the alternative being read began with '|'
        size_t alts; // (lists) where its alternatives begin in the entries
        Holes holes; // (lists) the holes of the alternatives read
    };

    int32_t Add(uint8_t op, uint8_t arg = 0, int32_t a = 0, int32_t b = -1) {
        m.m_Ins.push_back({op, arg, -1, a, b});
        return static_cast<int32_t>(m.m_Ins.size() - 1);
    }

    int32_t AddSet(const ByteSet& s) {
        m.m_Sets.push_back(s);
        return static_cast<int32_t>(m.m_Sets.size() - 1);
    }

    static Piece Single(int32_t ins) { return {ins, {ins, ins}}; }

    void Join(Holes& holes, const Holes& more) {
        if (more.first < 0) return;
        if (holes.first < 0)
            holes.first = more.first;
        else
            m.m_Ins[static_cast<size_t>(holes.last)].next = more.first;
        holes.last = more.last;
    }

    void Patch(const Holes& holes, int32_t target) {
        for (int32_t h = holes.first; h >= 0;) {
            Ins& in = m.m_Ins[static_cast<size_t>(h)];
            h = in.next;
            in.next = target;
        }
    }

    void Append(Piece& seq, const Piece& piece) {
        if (seq.entry < 0) {
            seq = piece;
            return;
        }
        Patch(seq.holes, piece.entry);
        seq.holes = piece.holes;
    }

    void NextAlternative(Level& list, size_t& pos) {
        list.seq = Piece();
        list.more = pos < list.end && prog[pos] == '|';
        if (list.more) ++pos;
    }

    // The list of the alternatives from `first` on, which it takes off
    // `entries`.
    Piece Alternation(std::vector<int32_t>& entries, size_t first, const Holes& holes) {
        Piece out = {entries.back(), holes};
        const size_t count = entries.size() - first;
        if (count > 1) {
            out.entry =
                Add(kAlt, 0, static_cast<int32_t>(m.m_Alts.size()), static_cast<int32_t>(count));
            m.m_Alts.insert(m.m_Alts.end(), entries.begin() + static_cast<std::ptrdiff_t>(first),
                            entries.end());
        }
        entries.resize(first);
        return out;
    }

    Piece Repetition(unsigned char op, const Piece& operand) {
        if (op == '?') {
            // The operand runs inline, straight on into the rest.
            Piece out = Single(Add(kOpt, 0, operand.entry));
            Join(out.holes, operand.holes);
            return out;
        }
        // The operand is a program of its own.
        const int32_t succeed = Add(kSucceed);
        Patch(operand.holes, succeed);
        const Ins& first = m.m_Ins[static_cast<size_t>(operand.entry)];
        const int32_t simple = first.op == kChar && first.next == succeed ? first.a : -1;
        const bool greedy = op == '*' || op == '+';
        return Single(Add(greedy ? kGreedy : kLazy, op == '+' || op == '#', operand.entry, simple));
    }

    // A node that neither opens a list nor repeats an operand.
    bool Node(size_t& pos, size_t end, Piece& out) {
        const unsigned char op = prog[pos++];
        ByteSet set = {};
        switch (op) {
        case 'c': {
            if (pos >= end) return false;
            const unsigned char literal = prog[pos++];
            if (SYS_IsLeadByte(literal) && pos < end && prog[pos] != 0) ++pos;
            if (literal) set.Add(literal);
            out = Single(Add(kChar, 0, AddSet(set)));
            return true;
        }
        case '.':
            for (int c = 1; c < 256; ++c) set.Add(static_cast<unsigned char>(c));
            out = Single(Add(kChar, 0, AddSet(set)));
            return true;
        case '$':
            out = Single(Add(kEnd));
            return true;
        case '^':
            out = Single(Add(kStart));
            return true;
        case ':': {
            if (pos >= end) return false;
            const unsigned char letter = prog[pos++];
            if (letter == 'h' || letter == 'n' || letter == 'z') {
                out = Single(Add(kNumber, letter));
                return true;
            }
            if (!ClassSet(letter, set)) return false;
            out = Single(Add(kChar, 0, AddSet(set)));
            return true;
        }
        case '[':
        case ']': {
            if (pos >= end) return false;
            const size_t n = prog[pos++];
            if (end - pos < n) return false;
            // Only the first byte of a member counts; a double-byte member
            // is stepped over whole.
            for (size_t i = pos; i < pos + n;) {
                set.Add(prog[i]);
                i += SYS_IsLeadByte(prog[i]) && i + 1 < pos + n ? 2 : 1;
            }
            if (op == ']')
                for (uint64_t& w : set.bits) w = ~w;
            set.bits[0] &= ~uint64_t(1); // the end of the text is no character
            pos += n;
            out = Single(Add(kChar, 0, AddSet(set)));
            return true;
        }
        default:
            return false;
        }
    }

    // The one-character classes, ASCII only.
    static bool ClassSet(unsigned char letter, ByteSet& set) {
        for (int c = 1; c < 128; ++c) {
            const bool digit = c >= '0' && c <= '9';
            const bool lower = c >= 'a' && c <= 'z', upper = c >= 'A' && c <= 'Z';
            bool in = false;
            switch (letter) {
            case 'a':
                in = digit || lower || upper;
                break;
            case 'b':
                in = c == ' ' || (c >= '\t' && c <= '\r');
                break;
            case 'c':
                in = lower || upper;
                break;
            case 'd':
                in = digit;
                break;
            case 'l':
                in = lower;
                break;
            case 'u':
                in = upper;
                break;
            case 'x':
                in = digit || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
                break;
            default:
                return false;
            }
            if (in) set.Add(static_cast<unsigned char>(c));
        }
        return true;
    }

    SYS_PatternMachine& m;
    const unsigned char* prog;
    size_t size;
};

namespace {

// The bytes a whole number of class `letter` can begin with.
void NumberStart(unsigned char letter, uint64_t bits[4]) {
    auto add = [&](unsigned char c) { bits[c >> 6] |= uint64_t(1) << (c & 63); };
    for (unsigned char c = '0'; c <= '9'; ++c) add(c);
    add('+');
    add('-');
    if (letter == 'n') add('.');
    if (letter == 'h')
        for (unsigned char c = 0; c < 6; ++c) {
            add(static_cast<unsigned char>('a' + c));
            add(static_cast<unsigned char>('A' + c));
        }
}

} // namespace

SYS_PatternMachine::SYS_PatternMachine(const char* program, size_t size) {
    m_DoubleByte = SYS_LeadBytes().doubleByte;
    Decoder decoder(*this, reinterpret_cast<const unsigned char*>(program), size);
    if (size == 0 || !decoder.Decode()) {
        m_Entry = -1;
        return;
    }
    // What a match can begin with lets the search skip start positions.
    m_First = ByteSet();
    int32_t i = m_Entry;
    auto skip = [&](int32_t k) {
        while (m_Ins[static_cast<size_t>(k)].op == kJump) k = m_Ins[static_cast<size_t>(k)].next;
        return k;
    };
    auto firstOf = [&](int32_t k) {
        const Ins& in = m_Ins[static_cast<size_t>(skip(k))];
        if (in.op == kChar) {
            const ByteSet& s = m_Sets[static_cast<size_t>(in.a)];
            for (int w = 0; w < 4; ++w) m_First.bits[w] |= s.bits[w];
            return true;
        }
        if (in.op == kNumber) {
            NumberStart(in.arg, m_First.bits);
            return true;
        }
        return in.op == kEnd; // never matches before the end of the text
    };
    i = skip(i);
    const Ins& in = m_Ins[static_cast<size_t>(i)];
    m_Anchored = in.op == kStart;
    if (in.op == kAlt) {
        m_AnyFirst = false;
        for (int32_t k = 0; k < in.b && !m_AnyFirst; ++k)
            m_AnyFirst = !firstOf(m_Alts[static_cast<size_t>(in.a + k)]);
    } else if ((in.op == kGreedy || in.op == kLazy) && in.arg) {
        m_AnyFirst = !firstOf(in.a);
    } else {
        m_AnyFirst = !firstOf(i);
    }
    int n = 0;
    for (int c = 1; c < 256; ++c)
        if (m_First.Has(static_cast<unsigned char>(c))) ++n, m_FirstByte = c;
    if (n != 1) m_FirstByte = -1;
}

// --- Matching -----------------------------------------------------------------

size_t SYS_PatternMachine::CharLen(size_t p) const {
    return m_DoubleByte ? static_cast<size_t>(SYS_MbcLen(reinterpret_cast<const char*>(m_Text + p)))
                        : 1;
}

// Instructions and, numbered after them, the loops of lazy repetitions.
uint64_t SYS_PatternMachine::Key(int32_t ins, size_t p) const {
    return (static_cast<uint64_t>(p) * 2 + (m_AtZero ? 1 : 0)) * 2 * m_Ins.size() +
           static_cast<uint64_t>(ins);
}

namespace {
inline size_t Slot(uint64_t key, size_t size) {
    return static_cast<size_t>((key * 0x9E3779B97F4A7C15ull) >> 32) & (size - 1);
}
} // namespace

bool SYS_PatternMachine::Recall(int32_t ins, size_t p, size_t& value) {
    const uint64_t key = Key(ins, p);
    const MemoEntry& e = m_Memo[Slot(key, m_Memo.size())];
    if (e.generation != m_Generation || e.key != key) return false;
    value = e.value;
    return true;
}

void SYS_PatternMachine::Remember(uint64_t key, size_t value) {
    if (++m_MemoWrites > m_Memo.size() && m_Memo.size() < kMemoLimit) {
        // Full: start again twice as large.
        m_Memo.assign(m_Memo.size() * 2, MemoEntry{0, 0, 0});
        m_MemoWrites = 0;
    }
    m_Memo[Slot(key, m_Memo.size())] = {key, m_Generation, value};
}

void SYS_PatternMachine::Trim() {
    const size_t keep = 4096;
    if (m_Frames.capacity() > keep) std::vector<Frame>().swap(m_Frames);
    if (m_Runs.capacity() > keep) std::vector<Run>().swap(m_Runs);
    if (m_Memo.size() > 16 * kMemoStart) {
        std::vector<MemoEntry>().swap(m_Memo);
        m_MemoWrites = 0;
    }
}

void SYS_PatternMachine::PushRun(size_t q) {
    Run& r = m_Runs.back();
    if (r.count == 1) {
        r.stride = q - r.start;
        r.count = 2;
    } else if (q == r.start + r.stride * r.count) {
        ++r.count;
    } else {
        m_Runs.push_back({q, 0, 1});
    }
}

size_t SYS_PatternMachine::PopRun() {
    Run& r = m_Runs.back();
    const size_t q = r.start + r.stride * (r.count - 1);
    if (--r.count == 0) m_Runs.pop_back();
    return q;
}

long SYS_PatternMachine::Find(const char* text, size_t from, size_t* length, bool fresh) {
    *length = 0;
    if (m_Entry < 0 || !text || !text[from]) return -1;
    if (fresh) {
        m_Steps = 0;
        m_MemoOn = false;
        ++m_Generation; // forget every outcome remembered so far
    }
    m_Text = reinterpret_cast<const unsigned char*>(text);
    const long long stepsBefore = m_Steps;

    long found = -1;
    for (size_t p = from; m_Text[p]; p += CharLen(p)) {
        if (m_Anchored && p > from) break;
        if (!m_AnyFirst) {
            // Skip to a byte a match can begin with (the set never holds 0).
            if (m_FirstByte >= 0 && !m_DoubleByte) {
                const char* hit = std::strchr(text + p, m_FirstByte);
                if (!hit) break;
                p = static_cast<size_t>(hit - text);
            } else {
                while (m_Text[p] && !m_First.Has(m_Text[p])) p += CharLen(p);
                if (!m_Text[p]) break;
            }
        }
        // An outcome depends on the text from its position on and on
        // whether the attempt began where this search did, which is all
        // that '^' asks; so outcomes hold from one search to the next.
        m_AtZero = p == from;
        // Searches that take more than a linear number of steps start
        // remembering outcomes.
        m_Budget = 4096 + 64 * static_cast<long long>(p + 1);
        const size_t end = Search(p);
        if (end != kNone) {
            *length = end - p;
            found = static_cast<long>(p - from);
            break;
        }
    }
    t_Stats.steps += m_Steps - stepsBefore;
    if (m_MemoOn) t_Stats.memo = 1;
    return found;
}

// Runs the program from `start`; the end of the match, or kNone.
size_t SYS_PatternMachine::Search(size_t start) {
    enum { running, succeeding, failing, returning } mode = running;
    m_Frames.clear();
    m_Runs.clear();
    int32_t pc = m_Entry;
    size_t p = start;
    size_t value = 0; // the end reached, while succeeding or returning
    // An operand call: repetition `rep`, called at `from`, for `why`; `ok`
    // and `value` tell how it went.
    int32_t rep = 0;
    size_t from = 0;
    const int32_t loops = static_cast<int32_t>(m_Ins.size()); // keys of lazy loops
    uint8_t why = cGreedy;
    bool ok = false;

    auto push = [&](const Frame& f) {
        m_Frames.push_back(f);
        if (m_Frames.size() > t_Stats.peakFrames) t_Stats.peakFrames = m_Frames.size();
    };
    auto pushRun = [&](size_t base, size_t q) {
        if (m_Runs.size() > base)
            PushRun(q);
        else
            m_Runs.push_back({q, 0, 1});
        if (m_Runs.size() > t_Stats.peakRuns) t_Stats.peakRuns = m_Runs.size();
    };
    // Calls the operand of `rep` at `from`: a one-character operand is
    // tested here and then, others run as a program of their own.
    auto call = [&](int32_t r, size_t at, uint8_t reason) {
        const Ins& in = m_Ins[static_cast<size_t>(r)];
        rep = r;
        from = at;
        why = reason;
        if (in.b >= 0) {
            ++m_Steps;
            ok = m_Sets[static_cast<size_t>(in.b)].Has(m_Text[at]);
            value = ok ? at + CharLen(at) : 0;
            mode = returning;
        } else {
            push({fCall, reason, r, at, m_Runs.size(), 0});
            pc = in.a;
            p = at;
            mode = running;
        }
    };
    // Back from an operand call, to the repetition that made it.
    auto leaveCall = [&](bool succeeded) {
        const Frame& f = m_Frames.back();
        m_Runs.resize(f.x);
        rep = f.ins;
        from = f.p;
        why = f.phase;
        ok = succeeded;
        m_Frames.pop_back();
        mode = returning;
    };
    // Starts the next alternative of `f`, if there is one.
    auto nextAlternative = [&](Frame& f) {
        const Ins& in = m_Ins[static_cast<size_t>(f.ins)];
        if (f.x >= static_cast<size_t>(in.b)) return false;
        pc = m_Alts[static_cast<size_t>(in.a) + f.x];
        p = f.p;
        ++f.x;
        mode = running;
        return true;
    };
    // The repetition on top is done, with `result` from every position
    // stored in its runs: with the cache on, that is remembered for `ins`.
    auto rememberRuns = [&](int32_t ins, size_t result) {
        const size_t base = m_Frames.back().x;
        if (m_MemoOn)
            for (size_t k = base; k < m_Runs.size(); ++k)
                for (size_t c = 0; c < m_Runs[k].count; ++c)
                    Remember(Key(ins, m_Runs[k].start + m_Runs[k].stride * c), result);
        m_Runs.resize(base);
    };
    // A lazy repetition (the frame on top) ends with `result` (kNone for
    // failure), which is then also the outcome of its loop from every
    // position it passed.
    auto settleLazy = [&](size_t result) {
        rememberRuns(m_Frames.back().ins + loops, result);
        m_Frames.pop_back();
    };
    // The lazy repetition on top has reached q: the rest is tried there,
    // unless the outcome of its loop from q is known.
    auto lazyStep = [&](size_t q) {
        Frame& f = m_Frames.back();
        f.p = q;
        size_t known;
        if (m_MemoOn && Recall(f.ins + loops, q, known)) {
            settleLazy(known);
            value = known;
            mode = known == kNone ? failing : succeeding;
            return;
        }
        if (m_MemoOn) pushRun(f.x, q);
        p = q;
        pc = m_Ins[static_cast<size_t>(f.ins)].next;
        mode = running;
    };
    // At a branch: answers from the cache when it knows the outcome,
    // otherwise arranges for the outcome to be remembered.
    auto recalled = [&]() {
        if (!m_MemoOn) return false;
        size_t v;
        if (Recall(pc, p, v)) {
            value = v;
            mode = v == kNone ? failing : succeeding;
            return true;
        }
        push({fMemo, 0, pc, p, static_cast<size_t>(Key(pc, p)), 0});
        return false;
    };

    for (;;) {
        switch (mode) {
        case running: {
            if (++m_Steps > m_Budget && !m_MemoOn) {
                // Heavy backtracking: from here on, remember outcomes.
                m_MemoOn = true;
                if (m_Memo.empty()) m_Memo.assign(kMemoStart, MemoEntry{0, 0, 0});
            }
            const Ins& in = m_Ins[static_cast<size_t>(pc)];
            switch (in.op) {
            case kChar:
                if (m_Sets[static_cast<size_t>(in.a)].Has(m_Text[p])) {
                    p += CharLen(p);
                    pc = in.next;
                } else {
                    mode = failing;
                }
                break;
            case kEnd:
                if (!m_Text[p])
                    pc = in.next;
                else
                    mode = failing;
                break;
            case kStart:
                if (m_AtZero)
                    pc = in.next;
                else
                    mode = failing;
                break;
            case kNumber: {
                const char* s = reinterpret_cast<const char*>(m_Text + p);
                const char* e =
                    in.arg == 'n' ? getdouble(s, 1) : getinteger(s, in.arg == 'h' ? 3 : 1);
                if (e) {
                    p += static_cast<size_t>(e - s);
                    pc = in.next;
                } else {
                    mode = failing;
                }
                break;
            }
            case kJump:
                pc = in.next;
                break;
            case kSucceed:
                value = p;
                mode = succeeding;
                break;
            case kAlt:
                if (recalled()) break;
                push({fAlt, 0, pc, p, 1, kNone});
                pc = m_Alts[static_cast<size_t>(in.a)];
                break;
            case kOpt:
                if (recalled()) break;
                push({fChoice, 0, in.next, p, 0, 0});
                pc = in.a;
                break;
            case kGreedy:
                if (recalled()) break;
                push({fGreedy, 0, pc, p, m_Runs.size(), 0});
                if (in.b >= 0 && !m_MemoOn) {
                    // One-character operand: scan the repetitions at once.
                    const ByteSet& set = m_Sets[static_cast<size_t>(in.b)];
                    const size_t base = m_Runs.size();
                    size_t q = p;
                    while (set.Has(m_Text[q])) {
                        q += CharLen(q);
                        pushRun(base, q);
                        ++m_Steps;
                    }
                    if (q == p) {
                        m_Frames.pop_back();
                        if (in.arg) mode = failing;
                        pc = in.next;
                    } else {
                        p = PopRun();
                        pc = in.next;
                    }
                    break;
                }
                call(pc, p, cGreedy);
                break;
            case kLazy:
                if (recalled()) break;
                call(pc, p, cLazyFirst);
                break;
            }
            break;
        }

        case returning: {
            const Ins& in = m_Ins[static_cast<size_t>(rep)];
            const size_t q = value;
            if (why == cLazyFirst) {
                if (ok) {
                    push({fLazy, 0, rep, q, m_Runs.size(), 0});
                    lazyStep(q);
                } else if (in.arg) {
                    mode = failing;
                } else {
                    p = from;
                    pc = in.next;
                    mode = running;
                }
                break;
            }
            if (why == cLazyNext) {
                if (!ok || q == m_Frames.back().p) { // no further repetition, or no progress
                    settleLazy(kNone);
                    mode = failing;
                } else {
                    lazyStep(q);
                }
                break;
            }
            // Greedy: collect the positions after each repetition.
            const size_t base = m_Frames.back().x;
            const bool chain = m_Runs.size() > base;
            if (ok && q != from) {
                size_t known;
                if (m_MemoOn && Recall(rep, q, known)) {
                    if (known != kNone) {
                        // The repetitions from q on already gave this end.
                        value = known;
                        mode = succeeding;
                        break;
                    }
                    pushRun(base, q); // from q on only the rest at q is left
                } else {
                    pushRun(base, q);
                    call(rep, q, cGreedy);
                    break;
                }
            } else if (ok) {
                if (!chain) pushRun(base, q); // matched empty: not repeated
            } else if (!chain) {
                m_Frames.pop_back();
                if (in.arg) {
                    mode = failing;
                    break;
                }
                p = from;
                pc = in.next;
                mode = running;
                break;
            }
            // The rest after the most repetitions first.
            p = PopRun();
            pc = in.next;
            mode = running;
            break;
        }

        case succeeding: {
            if (m_Frames.empty()) return value;
            Frame& f = m_Frames.back();
            switch (f.type) {
            case fChoice:
                m_Frames.pop_back();
                break;
            case fLazy:
                settleLazy(value);
                break;
            case fGreedy:
                // The rest matched after fewer repetitions than those left
                // untried, so from each of their positions the repetition
                // gives this end too.
                rememberRuns(f.ins, value);
                m_Frames.pop_back();
                break;
            case fMemo:
                Remember(f.x, value);
                m_Frames.pop_back();
                break;
            case fAlt:
                if (f.y == kNone || value > f.y) f.y = value;
                // Short of the end of the text, another alternative may
                // reach further.
                if (m_Text[value] && nextAlternative(f)) break;
                value = f.y;
                m_Frames.pop_back();
                break;
            case fCall:
                leaveCall(true);
                break;
            }
            break;
        }

        case failing: {
            if (m_Frames.empty()) return kNone;
            Frame& f = m_Frames.back();
            switch (f.type) {
            case fChoice:
                pc = f.ins;
                p = f.p;
                m_Frames.pop_back();
                mode = running;
                break;
            case fGreedy:
                if (m_Runs.size() > f.x) {
                    // The rest failed here, so the repetitions from the
                    // position before cannot match either.
                    if (m_MemoOn) {
                        const Run& r = m_Runs.back();
                        Remember(Key(f.ins, r.start + r.stride * (r.count - 1)), kNone);
                    }
                    p = PopRun();
                    pc = m_Ins[static_cast<size_t>(f.ins)].next;
                    mode = running;
                } else {
                    m_Frames.pop_back();
                }
                break;
            case fLazy:
                call(f.ins, f.p, cLazyNext);
                break;
            case fMemo:
                Remember(f.x, kNone);
                m_Frames.pop_back();
                break;
            case fAlt:
                if (nextAlternative(f)) break;
                value = f.y;
                m_Frames.pop_back();
                if (value != kNone) mode = succeeding;
                break;
            case fCall:
                leaveCall(false);
                break;
            }
            break;
        }
        }
    }
}
