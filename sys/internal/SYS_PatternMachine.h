// SYS_PatternMachine.h - runs a compiled SYS_StrPattern program (internal).
//
// The byte program is decoded, under the code page in force, into a small
// graph of instructions: one-character tests become a 256-bit byte set,
// groups disappear, and the end of every alternative points straight at what
// follows its alternation.  Decoding keeps its open groups and operands on a
// heap stack, so a program may nest to any depth.  The matcher walks the
// graph with an explicit backtracking stack on the heap; nothing in it
// recurses, so the native stack stays flat whatever the text.
//
// Results are those of the plain recursive definition of the language:
// - '|' tries every alternative followed by the rest and keeps the furthest
//   end (one that reaches the end of the text ends the trying);
// - '?' takes the operand followed by the rest, else the rest;
// - '*' and '+' match their operand as a pattern of its own, once per
//   repetition, then try the rest after the most repetitions first;
// - '@' and '#' try the rest after one repetition, then after two, and so on;
//   '@' takes zero repetitions only when the operand fails at once.
// Where that definition would loop for ever the machine ends instead: a
// repetition whose operand matched the empty text is not repeated.
//
// Linear time.  Under that definition the outcome of running an instruction
// at a text position (the end it reaches, or failure) depends on the
// instruction, the position and the text, and on nothing else: an operand
// runs as a program of its own and hands back one end, an alternation keeps
// one end, and no result depends on the way the instruction was reached.
// The one exception is '^', which asks whether the attempt began where the
// search did; a program that holds one keeps that bit with every outcome.
// So an outcome, once known, stands wherever the same instruction meets the
// same position again (the .cpp says why the recorded ones are exact).  A
// search that remembers the outcome of the branches (alternation, '?', the
// first step of a lazy repetition), of every greedy repetition at every
// position it passes and of every lazy repetition's loop works out each of
// them at most once per position, and between two of them walks at most the
// program once: its time is linear in the text for a given program.
// Branches that are met at most once per position need no memory: those
// reached from the start of the pattern or of an operand through plain
// characters, '$', '^' and further such branches only (see AssignSlots).
// The outcomes are kept exactly, never dropped: 2 bits per remembered
// instruction and text position, in blocks of 4096 positions made when
// first needed, and 4 bytes more per position in a block where the
// instruction succeeded (the distance to the end it reached).  A search
// starts remembering once it has spent more than a linear number of steps
// (256, and 16 per character before its start), so ordinary searches pay
// nothing; successive searches of one text (Substitute's) share what they
// remembered, and everything is given back when the call ends.
//
// Whole numbers (:z :h :n) end where a run of signs and digits ends; runs
// longer than 64 characters are remembered, so that no run is scanned again
// from every position in it.
//
// Positions after greedy repetitions are kept as runs of equal strides, so a
// repetition over megabytes costs a few words.
#ifndef SYS_PATTERNMACHINE_H
#define SYS_PATTERNMACHINE_H

#include "keel_config.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

// What the matcher did, for tests that bound its work without a clock.
struct SYS_PatternStats {
    long long steps;   // instructions run and characters scanned
    size_t peakFrames; // deepest backtracking stack
    size_t peakRuns;   // most stored repetition runs
    int memo;          // most memory the remembered outcomes held, in KiB
                       // rounded up (0: nothing was remembered)
};

// The statistics of the last Match or Substitute on this thread.
KEEL_API SYS_PatternStats SYS_PatternLastStats();

class SYS_PatternMachine {
public:
    // Decodes `size` bytes of program; a program that does not decode (cut,
    // or written under another code page) matches nothing.
    SYS_PatternMachine(const char* program, size_t size);

    bool IsValid() const { return m_Entry >= 0; }

    // Offset from `from` of the leftmost match in the NUL-terminated text
    // from there on, and its length, or -1.  `fresh` starts a new search;
    // otherwise the outcomes remembered by the previous calls on the same
    // `text` still hold, which the caller guarantees has not changed.
    long Find(const char* text, size_t from, size_t* length, bool fresh);

    // Starts the statistics of a new Match or Substitute: on this thread, or
    // on the thread of the machine (the one that made it).
    static void ResetThreadStats();
    void ResetStats() { *m_Stats = SYS_PatternStats(); }

    // Gives back the buffers a long search grew, so that the thread that
    // keeps this machine does not keep them too.
    void Trim();

private:
    struct ByteSet {
        uint64_t bits[4];
        bool Has(unsigned char c) const { return (bits[c >> 6] >> (c & 63)) & 1; }
        void Add(unsigned char c) { bits[c >> 6] |= uint64_t(1) << (c & 63); }
    };
    struct Ins {
        uint8_t op;
        uint8_t arg;
        int32_t next; // the instruction after this one
        int32_t a;    // byte set, alternative list, or operand entry
        int32_t b;    // alternative count, or the byte set of a one-character operand
        int32_t rest; // (lazy) the byte set of the character the rest begins with, or -1
    };
    // Frames and runs are built in place: a copy of one built on the stack
    // would be read back wider than it was written, which stalls.
    struct Frame {
        Frame() = default;
        Frame(uint8_t type, uint8_t phase, int32_t ins, size_t p, size_t x, size_t y)
            : type(type), phase(phase), ins(ins), p(p), x(x), y(y) {}
        uint8_t type;
        uint8_t phase;
        int32_t ins;
        size_t p;
        size_t x;
        size_t y;
    };
    struct Run {
        Run() = default;
        Run(size_t start, size_t stride, size_t count)
            : start(start), stride(stride), count(count) {}
        size_t start;
        size_t stride;
        size_t count;
    };
    // The outcomes of one remembered instruction at 4096 positions: known,
    // and if so whether it succeeded; the ends reached, made at the first
    // success.
    static const int kPageBits = 12;
    struct MemoPage {
        uint64_t known[64];
        uint64_t success[64];
        std::unique_ptr<uint32_t[]> ends; // end - position
    };
    // A run of signs and digits from `start` up to `end`, the last digit in
    // it at `lastDigit` (kNone when none).
    struct NumberRun {
        size_t end;
        size_t lastDigit;
    };
    class Decoder;

    void AssignSlots();
    size_t Search(size_t start);
    // `ins` numbers an instruction, or (m_Ins.size() + lazy repetition) the
    // loop of that repetition.
    bool Recall(int32_t ins, size_t p, size_t& value) {
        const int32_t slot = m_SlotOf[static_cast<size_t>(ins)];
        if (slot < 0) return false;
        const std::vector<MemoPage*>& dir =
            m_Dirs[static_cast<size_t>(slot) * m_DirStride + m_DirOffset];
        const size_t block = p >> kPageBits;
        if (block >= dir.size() || !dir[block]) return false;
        const MemoPage& page = *dir[block];
        const size_t at = p & ((size_t(1) << kPageBits) - 1);
        const uint64_t bit = uint64_t(1) << (at & 63);
        if (!(page.known[at >> 6] & bit)) return false;
        value = page.success[at >> 6] & bit ? p + page.ends[at] : static_cast<size_t>(-1);
        return true;
    }
    void Remember(int32_t ins, size_t p, size_t value);
    MemoPage* PageFor(int32_t slot, size_t p);
    void ForgetAll();
    void CountMemory() const;
    size_t NumberEnd(unsigned char letter, size_t p);
    void RunFrom(bool hex, size_t p, size_t& end, bool& digit);
    void PushRun(size_t q);
    size_t PopRun();
    size_t CharLen(size_t p) const;

    std::vector<Ins> m_Ins;
    std::vector<ByteSet> m_Sets;
    std::vector<int32_t> m_Alts;
    std::vector<int32_t> m_AltFirst; // the byte set each alternative begins with, or -1
    int32_t m_Entry = -1;
    ByteSet m_First;          // bytes a match can begin with
    int m_FirstByte = -1;     // the one byte a match begins with, if only one
    std::string m_FirstBytes; // the few bytes a match begins with, if 2 to 16
    bool m_AnyFirst = true;
    bool m_Anchored = false; // the program begins with '^'
    bool m_HasStart = false; // the program holds a '^'
    bool m_DoubleByte = false;
    // The remembered slot of each instruction and then of each lazy loop,
    // or -1.
    std::vector<int32_t> m_SlotOf;
    int32_t m_Slots = 0;

    // State of a search (Find calls on one text).
    const unsigned char* m_Text = nullptr;
    bool m_AtZero = false;
    long long m_Steps = 0;
    long long m_Budget = 0; // steps before outcomes are remembered
    std::vector<Frame> m_Frames;
    std::vector<Run> m_Runs;
    size_t m_PeakFrames = 0, m_PeakRuns = 0;
    SYS_PatternStats* m_Stats; // the statistics of the thread that made the machine
    bool m_MemoOn = false;
    bool m_Remembered = false; // something is remembered (outcomes or number runs)
    // Remembered outcomes: per slot (and per value of m_AtZero when the
    // program holds a '^'), the page of each block of positions, or null.
    std::vector<std::vector<MemoPage*>> m_Dirs;
    size_t m_DirStride = 1, m_DirOffset = 0;
    std::vector<std::unique_ptr<MemoPage>> m_Pages; // m_PagesUsed in use
    size_t m_PagesUsed = 0;
    size_t m_EndBlocks = 0; // pages in use with their ends made
    size_t m_DirWords = 0;  // entries in m_Dirs
    // Long runs of signs and digits, by start: decimal [0], hexadecimal [1].
    std::map<size_t, NumberRun> m_NumberRuns[2];
};

#endif // SYS_PATTERNMACHINE_H
