// SYS_PatternMachine.cpp - decoding and running SYS_StrPattern programs.
#include "sys/internal/SYS_PatternMachine.h"
#include "sys/internal/SYS_Mbcs.h"
#include "sys/internal/SYS_Numbers.h"

#include <cstring>
#include <iterator>
#include <limits>
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
    fMemo,   // the outcome of the branch ins at p, to be remembered
};

// Why an operand was called.
enum : uint8_t { cGreedy, cLazyFirst, cLazyNext };

const size_t kNone = static_cast<size_t>(-1);

// A search remembers outcomes once it has run more than this many steps,
// plus kStepsPerChar for each character before its start position.
const long long kStepsBeforeMemo = 256;
const long long kStepsPerChar = 16;

// Runs of signs and digits at least this long are remembered.
const size_t kLongNumberRun = 64;

// Pages kept from one call to the next.
const size_t kPagesKept = 8;

thread_local SYS_PatternStats t_Stats;

} // namespace

SYS_PatternStats SYS_PatternLastStats() { return t_Stats; }

void SYS_PatternMachine::ResetThreadStats() { t_Stats = SYS_PatternStats(); }

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
        m.m_Ins.push_back({op, arg, -1, a, b, -1});
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

SYS_PatternMachine::SYS_PatternMachine(const char* program, size_t size) : m_Stats(&t_Stats) {
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
    if (!m_AnyFirst && !m_DoubleByte && n > 1 && n <= 16)
        for (int c = 1; c < 256; ++c)
            if (m_First.Has(static_cast<unsigned char>(c))) m_FirstBytes += static_cast<char>(c);

    // The characters that alternatives, and what follows lazy repetitions,
    // begin with, where that is one character test.
    auto firstSet = [&](int32_t k) {
        const Ins& first = m_Ins[static_cast<size_t>(skip(k))];
        return first.op == kChar ? first.a : -1;
    };
    m_AltFirst.resize(m_Alts.size());
    for (size_t k = 0; k < m_Alts.size(); ++k) m_AltFirst[k] = firstSet(m_Alts[k]);
    for (Ins& lazy : m_Ins)
        if (lazy.op == kLazy) lazy.rest = firstSet(lazy.next);
    AssignSlots();
}

// Chooses the instructions whose outcomes a search remembers.
//
// An instruction is met at a position once per visit of the instruction
// that leads to it when that is its only way in and the way moves the
// position one-to-one (a character, '$', '^', an empty sequence, the step
// from an alternation or a '?' into a branch).  Instructions met so from the
// start of the pattern (tried once per start position) or from the start of
// an operand (run once per remembered outcome of its repetition, or twice
// for a lazy one) need no memory: the work below them is bounded by the
// work of the instruction they hang from.  Everything else can be met again
// and again at one position: the rest after an alternation or a '?' (every
// branch leads there), after a whole number (numbers of different starts
// end at one place), after a repetition (the rest is tried after each
// count), and whatever follows such a place.  Branches there are
// remembered.  Greedy repetitions and lazy loops are always remembered:
// they reach themselves again at later positions, and each start position
// would otherwise walk the same chain.
void SYS_PatternMachine::AssignSlots() {
    const size_t count = m_Ins.size();
    std::vector<uint32_t> indegree(count, 0);
    std::vector<uint8_t> ways(count, 0); // ways in, counted up to 2
    std::vector<uint8_t> many(count, 0); // met more than once per position
    // Calls (a repetition to its operand) order the walk but bring no way in.
    auto forEachEdge = [&](size_t i, auto&& f) {
        const Ins& in = m_Ins[i];
        switch (in.op) {
        case kChar:
        case kEnd:
        case kStart:
        case kJump:
            f(in.next, true, false);
            break;
        case kNumber:
            f(in.next, false, false);
            break;
        case kAlt:
            for (int32_t k = 0; k < in.b; ++k)
                f(m_Alts[static_cast<size_t>(in.a + k)], true, false);
            break;
        case kOpt:
            f(in.a, true, false);
            f(in.next, true, false);
            break;
        case kGreedy:
        case kLazy:
            f(in.a, true, true);
            f(in.next, false, false);
            break;
        default:
            break;
        }
    };
    for (size_t i = 0; i < count; ++i)
        forEachEdge(i, [&](int32_t to, bool oneToOne, bool call) {
            const size_t t = static_cast<size_t>(to);
            ++indegree[t];
            if (call) return;
            if (ways[t] < 2) ++ways[t];
            if (!oneToOne) many[t] = 1;
        });
    // In an order where every instruction comes after those that lead to it.
    std::vector<int32_t> order;
    order.reserve(count);
    for (size_t i = 0; i < count; ++i)
        if (indegree[i] == 0) order.push_back(static_cast<int32_t>(i));
    for (size_t k = 0; k < order.size(); ++k) {
        const size_t i = static_cast<size_t>(order[k]);
        if (ways[i] > 1) many[i] = 1;
        if (m_Ins[i].op == kStart) m_HasStart = true;
        forEachEdge(i, [&](int32_t to, bool, bool call) {
            const size_t t = static_cast<size_t>(to);
            if (many[i] && !call) many[t] = 1;
            if (--indegree[t] == 0) order.push_back(to);
        });
    }
    m_SlotOf.assign(2 * count, -1);
    for (size_t i = 0; i < count; ++i) {
        const uint8_t op = m_Ins[i].op;
        if (op == kGreedy || ((op == kAlt || op == kOpt || op == kLazy) && many[i]))
            m_SlotOf[i] = m_Slots++;
        if (op == kLazy) m_SlotOf[count + i] = m_Slots++;
    }
    m_DirStride = m_HasStart ? 2 : 1;
    m_Dirs.resize(static_cast<size_t>(m_Slots) * m_DirStride);
}

// --- Matching -----------------------------------------------------------------

size_t SYS_PatternMachine::CharLen(size_t p) const {
    return m_DoubleByte ? static_cast<size_t>(SYS_MbcLen(reinterpret_cast<const char*>(m_Text + p)))
                        : 1;
}

// --- Remembered outcomes ------------------------------------------------------
//
// Why remembering changes no result.  The outcome of an instruction at a
// position under the recursive definition -- the end that the rest of its
// program (the whole pattern, or the operand it is in) reaches from there,
// or failure -- is determined by the instruction, the position, the text
// from there on, and, when the program holds a '^', by whether the attempt
// began where the search did (which is kept with the outcome).  Nothing
// else enters: the frames below an instruction decide what is done with its
// outcome, never what it is.  The machine writes an outcome down only once
// it is complete:
// - a branch (fMemo frame) when everything above its frame has succeeded
//   down to it with the end it reached (an alternation frame passes on the
//   furthest end only once all its alternatives are done or one reached the
//   end of the text), or has failed down to it with no way left;
// - a greedy repetition at the positions in its runs (each a position
//   after one more repetition): when the rest after the last of them has
//   failed, the repetition from the one before has failed too (it had
//   nothing left to try but that rest); when the rest succeeded after
//   q[k], the repetitions from every stored position before q[k] give that
//   same end (each tries the next repetition first, and that one gave it);
// - a lazy loop at every position it passed, when it ends: from each of
//   them the loop went on to the next, so each gives the loop's result.
// Every written outcome therefore equals the definition's, and an outcome
// read back stands for exactly the computation the definition would do in
// its place.  None is dropped or overwritten by a different one: pages
// cover every position.  So a search gives the same result with or
// without them, whenever it starts remembering.

// The page that keeps the outcomes of `slot` around p, made when missing.
SYS_PatternMachine::MemoPage* SYS_PatternMachine::PageFor(int32_t slot, size_t p) {
    std::vector<MemoPage*>& dir = m_Dirs[static_cast<size_t>(slot) * m_DirStride + m_DirOffset];
    const size_t block = p >> kPageBits;
    if (block >= dir.size()) {
        m_DirWords += block + 1 - dir.size();
        dir.resize(block + 1, nullptr);
        m_Remembered = true;
    }
    if (!dir[block]) {
        if (m_PagesUsed == m_Pages.size()) m_Pages.emplace_back(new MemoPage);
        MemoPage& fresh = *m_Pages[m_PagesUsed++];
        std::memset(fresh.known, 0, sizeof fresh.known);
        std::memset(fresh.success, 0, sizeof fresh.success);
        if (fresh.ends) ++m_EndBlocks;
        dir[block] = &fresh;
        CountMemory();
    }
    return dir[block];
}

void SYS_PatternMachine::Remember(int32_t ins, size_t p, size_t value) {
    const int32_t slot = m_SlotOf[static_cast<size_t>(ins)];
    if (slot < 0) return;
    // Ends are kept as 32-bit distances: a longer one is not remembered.
    if (value != kNone && value - p > std::numeric_limits<uint32_t>::max()) return;
    MemoPage& page = *PageFor(slot, p);
    const size_t at = p & ((size_t(1) << kPageBits) - 1);
    const uint64_t bit = uint64_t(1) << (at & 63);
    page.known[at >> 6] |= bit;
    if (value == kNone) {
        page.success[at >> 6] &= ~bit;
        return;
    }
    if (!page.ends) {
        page.ends.reset(new uint32_t[size_t(1) << kPageBits]);
        ++m_EndBlocks;
        CountMemory();
    }
    page.success[at >> 6] |= bit;
    page.ends[at] = static_cast<uint32_t>(value - p);
}

// Keeps the most memory the outcomes held, for the statistics.
void SYS_PatternMachine::CountMemory() const {
    const size_t kNumberRunBytes = 64; // a node of the map, about
    const size_t bytes = m_PagesUsed * sizeof(MemoPage) +
                         m_EndBlocks * (sizeof(uint32_t) << kPageBits) +
                         m_DirWords * sizeof(MemoPage*) +
                         (m_NumberRuns[0].size() + m_NumberRuns[1].size()) * kNumberRunBytes;
    const int kib = static_cast<int>((bytes + 1023) / 1024);
    if (kib > m_Stats->memo) m_Stats->memo = kib;
}

// Forgets every outcome; the pages stay for the next search.
void SYS_PatternMachine::ForgetAll() {
    if (!m_Remembered) return;
    m_Remembered = false;
    for (std::vector<MemoPage*>& dir : m_Dirs) dir.clear();
    m_PagesUsed = 0;
    m_DirWords = 0;
    m_EndBlocks = 0;
    m_NumberRuns[0].clear();
    m_NumberRuns[1].clear();
}

// Gives back what a long search grew; the outcomes are forgotten.
void SYS_PatternMachine::Trim() {
    const size_t keep = 4096;
    if (m_Frames.capacity() > keep) std::vector<Frame>().swap(m_Frames);
    if (m_Runs.capacity() > keep) std::vector<Run>().swap(m_Runs);
    if (!m_Remembered) return;
    ForgetAll();
    if (m_Pages.size() > kPagesKept) m_Pages.resize(kPagesKept);
    for (std::vector<MemoPage*>& dir : m_Dirs)
        if (dir.capacity() > keep) std::vector<MemoPage*>().swap(dir);
}

// --- Whole numbers ---------------------------------------------------------------

// The number scanners read a run of signs and digits (with one point for
// :n): from any position inside a run they stop where the run stops, and
// succeed when a digit lies between.  Runs are therefore kept by their end
// and their last digit, and a long run is remembered, so that a number
// tried at every position of a long run costs its length once, not once per
// position.

void SYS_PatternMachine::RunFrom(bool hex, size_t p, size_t& end, bool& digit) {
    std::map<size_t, NumberRun>& runs = m_NumberRuns[hex];
    auto next = runs.upper_bound(p);
    if (next != runs.begin()) {
        auto known = std::prev(next);
        if (p < known->second.end) {
            end = known->second.end;
            digit = known->second.lastDigit != kNone && known->second.lastDigit >= p;
            return;
        }
    }
    const size_t stop = next == runs.end() ? kNone : next->first;
    size_t q = p, last = kNone;
    for (;; ++q) {
        if (q == stop) {
            // The run goes on into one already known: they are one.
            if (next->second.lastDigit != kNone) last = next->second.lastDigit;
            q = next->second.end;
            runs.erase(next);
            break;
        }
        const unsigned char c = m_Text[q];
        const bool isDigit = hex ? SYS_IsHexDigit(static_cast<char>(c))
                                 : SYS_IsMbcDigit(reinterpret_cast<const char*>(m_Text + q));
        if (isDigit)
            last = q;
        else if (c != '-' && c != '+')
            break;
        ++m_Steps;
    }
    end = q;
    digit = last != kNone;
    if (q - p >= kLongNumberRun) {
        runs[p] = {q, last};
        m_Remembered = true;
        CountMemory();
    }
}

// The end of the whole number of class `letter` at p, or kNone; the same as
// the scanners of SYS_Scan.h give.
size_t SYS_PatternMachine::NumberEnd(unsigned char letter, size_t p) {
    size_t end;
    bool digit;
    RunFrom(letter == 'h', p, end, digit);
    if (letter == 'n' && m_Text[end] == '.') {
        // One point, then the digits after it.
        bool more;
        RunFrom(false, end + 1, end, more);
        digit = digit || more;
    }
    return digit ? end : kNone;
}

void SYS_PatternMachine::PushRun(size_t q) {
    Run& r = m_Runs.back();
    if (r.count == 1) {
        r.stride = q - r.start;
        r.count = 2;
    } else if (q == r.start + r.stride * r.count) {
        ++r.count;
    } else {
        m_Runs.emplace_back(q, 0, 1);
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
        ForgetAll();
    }
    m_Text = reinterpret_cast<const unsigned char*>(text);
    const long long stepsBefore = m_Steps;
    m_PeakFrames = m_PeakRuns = 0;

    long found = -1;
    for (size_t p = from; m_Text[p]; p += CharLen(p)) {
        if (m_Anchored && p > from) break;
        if (!m_AnyFirst) {
            // Skip to a byte a match can begin with (the set never holds 0).
            if (m_FirstByte >= 0 && !m_DoubleByte) {
                const char* hit = std::strchr(text + p, m_FirstByte);
                if (!hit) break;
                p = static_cast<size_t>(hit - text);
            } else if (!m_FirstBytes.empty()) {
                p += std::strcspn(text + p, m_FirstBytes.c_str());
                if (!m_Text[p]) break;
            } else {
                while (m_Text[p] && !m_First.Has(m_Text[p])) p += CharLen(p);
                if (!m_Text[p]) break;
            }
        }
        // An outcome depends on the text from its position on and on
        // whether the attempt began where this search did, which is all
        // that '^' asks; so outcomes hold from one search to the next.
        m_AtZero = p == from;
        m_DirOffset = m_HasStart && m_AtZero;
        // Searches that take more than a linear number of steps start
        // remembering outcomes.
        m_Budget = kStepsBeforeMemo + kStepsPerChar * static_cast<long long>(p + 1);
        const size_t end = Search(p);
        if (end != kNone) {
            *length = end - p;
            found = static_cast<long>(p - from);
            break;
        }
    }
    SYS_PatternStats& stats = *m_Stats;
    stats.steps += m_Steps - stepsBefore;
    if (m_PeakFrames > stats.peakFrames) stats.peakFrames = m_PeakFrames;
    if (m_PeakRuns > stats.peakRuns) stats.peakRuns = m_PeakRuns;
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

    auto push = [&](uint8_t type, uint8_t phase, int32_t ins, size_t at, size_t x, size_t y) {
        m_Frames.emplace_back(type, phase, ins, at, x, y);
        if (m_Frames.size() > m_PeakFrames) m_PeakFrames = m_Frames.size();
    };
    auto pushRun = [&](size_t base, size_t q) {
        if (m_Runs.size() > base)
            PushRun(q);
        else
            m_Runs.emplace_back(q, 0, 1);
        if (m_Runs.size() > m_PeakRuns) m_PeakRuns = m_Runs.size();
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
            push(fCall, reason, r, at, m_Runs.size(), 0);
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
    // The first alternative of `in` from the k-th on that can begin at q
    // (one that begins with a character not at q fails there at once), or
    // the count of alternatives.
    auto viable = [&](const Ins& in, size_t k, size_t q) {
        const size_t count = static_cast<size_t>(in.b);
        for (; k < count; ++k) {
            const int32_t set = m_AltFirst[static_cast<size_t>(in.a) + k];
            if (set < 0 || m_Sets[static_cast<size_t>(set)].Has(m_Text[q])) break;
        }
        return k;
    };
    // Starts the next alternative of `f`, if there is one.
    auto nextAlternative = [&](Frame& f) {
        const Ins& in = m_Ins[static_cast<size_t>(f.ins)];
        if (f.x >= static_cast<size_t>(in.b)) return false;
        pc = m_Alts[static_cast<size_t>(in.a) + f.x];
        p = f.p;
        f.x = viable(in, f.x + 1, f.p);
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
                    Remember(ins, m_Runs[k].start + m_Runs[k].stride * c, result);
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
        const Ins& in = m_Ins[static_cast<size_t>(f.ins)];
        // With a one-character operand before a rest that begins with a
        // character, the rest is not run where it cannot begin: the loop
        // takes one more repetition there, or ends.
        const bool scan = in.b >= 0 && in.rest >= 0;
        for (;;) {
            size_t known;
            if (m_MemoOn && Recall(f.ins + loops, q, known)) {
                settleLazy(known);
                value = known;
                mode = known == kNone ? failing : succeeding;
                return;
            }
            if (m_MemoOn) pushRun(f.x, q);
            if (!scan || m_Sets[static_cast<size_t>(in.rest)].Has(m_Text[q])) break;
            ++m_Steps;
            if (!m_Sets[static_cast<size_t>(in.b)].Has(m_Text[q])) {
                settleLazy(kNone);
                mode = failing;
                return;
            }
            q += CharLen(q);
        }
        f.p = q;
        p = q;
        pc = in.next;
        mode = running;
    };
    // At a branch: answers from memory when the outcome is known,
    // otherwise arranges for the outcome to be remembered (branches that
    // are met once per position have no slot and are not).
    auto recalled = [&]() {
        if (!m_MemoOn || m_SlotOf[static_cast<size_t>(pc)] < 0) return false;
        size_t v;
        if (Recall(pc, p, v)) {
            value = v;
            mode = v == kNone ? failing : succeeding;
            return true;
        }
        push(fMemo, 0, pc, p, 0, 0);
        return false;
    };

    for (;;) {
        switch (mode) {
        case running: {
            if (++m_Steps > m_Budget && !m_MemoOn) {
                // Heavy backtracking: from here on, remember outcomes.
                m_MemoOn = true;
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
                const size_t e = NumberEnd(in.arg, p);
                if (e != kNone) {
                    p = e;
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
            case kAlt: {
                if (recalled()) break;
                // Alternatives that cannot begin here are passed over; when
                // only one can, it is the outcome and needs no frame.
                const size_t first = viable(in, 0, p);
                const size_t second = viable(in, first + 1, p);
                if (first >= static_cast<size_t>(in.b)) {
                    mode = failing;
                } else {
                    if (second < static_cast<size_t>(in.b)) push(fAlt, 0, pc, p, second, kNone);
                    pc = m_Alts[static_cast<size_t>(in.a) + first];
                }
                break;
            }
            case kOpt:
                if (recalled()) break;
                push(fChoice, 0, in.next, p, 0, 0);
                pc = in.a;
                break;
            case kGreedy:
                if (recalled()) break;
                if (in.b >= 0 && !m_MemoOn && !m_DoubleByte) {
                    // One-character operand, one byte per character: scan
                    // the repetitions at once; the rest is tried after the
                    // last one, and a frame keeps the positions before it
                    // when there are any.
                    const ByteSet& set = m_Sets[static_cast<size_t>(in.b)];
                    size_t q = p;
                    while (set.Has(m_Text[q])) ++q;
                    m_Steps += static_cast<long long>(q - p);
                    if (q == p && in.arg) {
                        mode = failing;
                        break;
                    }
                    if (q - p > 1) {
                        push(fGreedy, 0, pc, p, m_Runs.size(), 0);
                        m_Runs.emplace_back(p + 1, 1, q - p - 1);
                        if (m_Runs.size() > m_PeakRuns) m_PeakRuns = m_Runs.size();
                    }
                    p = q;
                    pc = in.next;
                    break;
                }
                push(fGreedy, 0, pc, p, m_Runs.size(), 0);
                if (in.b >= 0) {
                    // One-character operand: the repetitions are taken in
                    // one loop, up to a position whose outcome is known.
                    // (The same steps as calling the operand again and
                    // again, below.)
                    const ByteSet& set = m_Sets[static_cast<size_t>(in.b)];
                    const size_t base = m_Runs.size();
                    size_t q = p, known = kNone;
                    bool recalledEnd = false;
                    while (set.Has(m_Text[q])) {
                        ++m_Steps;
                        q += CharLen(q);
                        if (m_MemoOn && Recall(pc, q, known)) {
                            if (known != kNone) {
                                recalledEnd = true; // the repetitions from q on give this end
                                break;
                            }
                            pushRun(base, q); // from q on only the rest at q is left
                            break;
                        }
                        pushRun(base, q);
                    }
                    if (recalledEnd) {
                        value = known;
                        mode = succeeding;
                    } else if (m_Runs.size() == base) {
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
                    push(fLazy, 0, rep, q, m_Runs.size(), 0);
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
                Remember(f.ins, f.p, value);
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
            case fGreedy: {
                const int32_t rest = m_Ins[static_cast<size_t>(f.ins)].next;
                while (m_Runs.size() > f.x) {
                    // The rest failed after the last position, so the
                    // repetitions from it cannot match either.
                    const size_t q = PopRun();
                    if (!m_MemoOn) {
                        p = q;
                        pc = rest;
                        mode = running;
                        break;
                    }
                    Remember(f.ins, q, kNone);
                    // The rest is tried at q, unless its outcome there is
                    // known.
                    size_t known;
                    if (!Recall(rest, q, known)) {
                        p = q;
                        pc = rest;
                        mode = running;
                        break;
                    }
                    if (known != kNone) {
                        value = known;
                        mode = succeeding;
                        break;
                    }
                }
                if (mode == failing) m_Frames.pop_back();
                break;
            }
            case fLazy:
                call(f.ins, f.p, cLazyNext);
                break;
            case fMemo:
                Remember(f.ins, f.p, kNone);
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
