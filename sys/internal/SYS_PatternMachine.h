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
// Positions after greedy repetitions are kept as runs of equal strides, so a
// repetition over megabytes costs a few words.  A search that spends more
// than a linear number of steps starts remembering the outcome of each branch
// at each position (a bounded cache), which keeps it polynomial; successive
// searches of one text (Substitute's) share what they remembered.
#ifndef SYS_PATTERNMACHINE_H
#define SYS_PATTERNMACHINE_H

#include "keel_config.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// What the matcher did, for tests that bound its work without a clock.
struct SYS_PatternStats {
    long long steps;   // instructions run and characters scanned
    size_t peakFrames; // deepest backtracking stack
    size_t peakRuns;   // most stored repetition runs
    int memo;          // non-zero once the outcome cache was used
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

    // Starts the statistics of a new Match or Substitute.
    static void ResetStats();

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
    };
    struct Frame {
        uint8_t type;
        uint8_t phase;
        int32_t ins;
        size_t p;
        size_t x;
        size_t y;
    };
    struct Run {
        size_t start;
        size_t stride;
        size_t count;
    };
    struct MemoEntry {
        uint64_t key;
        uint64_t generation;
        size_t value;
    };
    class Decoder;

    size_t Search(size_t start);
    bool Recall(int32_t ins, size_t p, size_t& value);
    void Remember(uint64_t key, size_t value);
    uint64_t Key(int32_t ins, size_t p) const;
    void PushRun(size_t q);
    size_t PopRun();
    size_t CharLen(size_t p) const;

    std::vector<Ins> m_Ins;
    std::vector<ByteSet> m_Sets;
    std::vector<int32_t> m_Alts;
    int32_t m_Entry = -1;
    ByteSet m_First;      // bytes a match can begin with
    int m_FirstByte = -1; // the one byte a match begins with, if only one
    bool m_AnyFirst = true;
    bool m_Anchored = false; // the program begins with '^'
    bool m_DoubleByte = false;

    // State of a search (Find calls on one text).
    const unsigned char* m_Text = nullptr;
    bool m_AtZero = false;
    long long m_Steps = 0;
    long long m_Budget = 0; // steps before outcomes are remembered
    std::vector<Frame> m_Frames;
    std::vector<Run> m_Runs;
    std::vector<MemoEntry> m_Memo;
    size_t m_MemoWrites = 0;
    uint64_t m_Generation = 0;
    bool m_MemoOn = false;
};

#endif // SYS_PATTERNMACHINE_H
