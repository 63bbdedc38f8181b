// SCC_HandleIndex.h - where each handle stands in a collection's item list.
//
// The items are ordered by the host's comparison, not by handle, so finding
// a handle means scanning, unless something remembers where each handle
// was put.  Positions shift with every insertion and deletion before them,
// so the index does not rewrite them: it keeps, for every handle, the
// position it had at some moment (a hint), plus the list of insertions and
// deletions made since the index was last rebuilt (the log).  A look-up
// replays the log entries newer than the hint: O(1) plus the log's length.
// When the log reaches its limit, a few times log2(n) entries, the index is
// rebuilt from the list in O(n); as every insertion or deletion in the list
// already moves O(n) elements, that adds O(n / log n) to each change.
//
// The index only answers for a list that holds every handle once: when it
// is rebuilt from a list with a handle twice, or a handle is inserted that
// is already listed, it gives up (Valid() is false) until the next rebuild,
// and the caller scans.  Its answers are exact, never a guess: a handle it
// does not know is not listed.
//
// Hints live in a table indexed by handle when the handles lie in a range at
// most a few times their number (the usual case: hosts number their objects
// densely), else in a hash map.
#ifndef SCC_INTERNAL_SCC_HANDLEINDEX_H
#define SCC_INTERNAL_SCC_HANDLEINDEX_H

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

class SCC_HandleIndex {
public:
    // Forgets everything: look-ups answer "unknown" until Rebuild.
    void Drop() {
        m_Valid = false;
        m_Log.clear();
        m_Table.clear();
        m_Map.clear();
    }

    // Indexes the `count` handles at items[0..count-1].  Gives up when one
    // is there twice.  O(count).
    void Rebuild(const int* items, int count) {
        Drop();
        m_Count = count;
        m_Limit = 64;
        for (int n = count; n > 1; n >>= 1) m_Limit += 8;
        m_Valid = true;
        if (count == 0) return;
        const auto range = std::minmax_element(items, items + count);
        m_Dense = Dense(*range.first, *range.second, count);
        if (m_Dense) {
            m_Lo = *range.first;
            m_Table.assign(Offset(*range.second) + 1, Hint());
        } else {
            m_Map.reserve(static_cast<size_t>(count));
        }
        for (int i = 0; i < count; ++i) {
            Hint& hint = At(items[i]);
            if (hint.index >= 0) {
                Drop(); // listed twice
                return;
            }
            hint.index = i;
            hint.time = 0;
        }
    }

    // Whether the index answers for a list of `count` handles.
    bool Valid(int count) const { return m_Valid && count == m_Count; }

    // The position of `handle`: -1 when it is not listed, -2 when it has
    // moved in a way the index cannot follow (the caller then scans).
    long Find(int handle, const int* items) const {
        const Hint* hint = Get(handle);
        if (!hint || hint->index < 0) return -1;
        const long at = Replay(*hint);
        if (at < 0) return -1;
        return at < m_Count && items[at] == handle ? at : -2;
    }

    // `handle` was inserted at `pos` of items[0..count-1] (count including
    // it).
    void Inserted(int pos, int handle, const int* items, int count) {
        if (!Valid(count - 1)) return Drop();
        const Hint* old = Get(handle);
        if (old && old->index >= 0 && Replay(*old) >= 0) return Drop(); // listed twice
        m_Count = count;
        if (Full()) return Rebuild(items, count);
        if (m_Dense && !Covers(handle)) {
            // Grow the table geometrically while the range stays dense; a
            // handle far away makes the index rebuild as a hash map.
            const int64_t lo = std::min<int64_t>(m_Lo, handle);
            const int64_t hi =
                std::max<int64_t>(m_Lo + static_cast<int64_t>(m_Table.size()) - 1, handle);
            if (!Dense(lo, hi + (hi - lo + 1), count)) return Rebuild(items, count);
            std::vector<Hint> table(static_cast<size_t>(2 * (hi - lo + 1)));
            std::copy(m_Table.begin(), m_Table.end(), table.begin() + (m_Lo - lo));
            m_Table.swap(table);
            m_Lo = static_cast<int>(lo);
        }
        m_Log.push_back(Edit{pos, 1});
        Hint& hint = At(handle);
        hint.index = pos;
        hint.time = static_cast<int>(m_Log.size());
    }

    // The handle at `pos` was deleted; `count` elements remain.
    void Deleted(int pos, const int* items, int count) {
        if (!Valid(count + 1)) return Drop();
        m_Count = count;
        if (Full()) return Rebuild(items, count);
        m_Log.push_back(Edit{pos, -1});
    }

private:
    struct Hint {
        int index = -1; // position at `time`; -1 for none
        int time = 0;   // the number of log entries it already reflects
    };
    struct Edit {
        int pos;
        int delta; // 1: inserted at pos, -1: deleted at pos
    };

    static bool Dense(int64_t lo, int64_t hi, int64_t count) { return hi - lo < 4 * count + 64; }
    size_t Offset(int handle) const {
        return static_cast<size_t>(static_cast<int64_t>(handle) - m_Lo);
    }
    bool Covers(int handle) const {
        return handle >= m_Lo &&
               static_cast<int64_t>(handle) - m_Lo < static_cast<int64_t>(m_Table.size());
    }
    bool Full() const { return static_cast<int>(m_Log.size()) >= m_Limit; }
    Hint& At(int handle) { return m_Dense ? m_Table[Offset(handle)] : m_Map[handle]; }
    const Hint* Get(int handle) const {
        if (!m_Valid) return nullptr;
        if (m_Dense) return Covers(handle) ? &m_Table[Offset(handle)] : nullptr;
        const auto found = m_Map.find(handle);
        return found == m_Map.end() ? nullptr : &found->second;
    }
    // The hint's position now, following the edits made since; -1 when one
    // of them deleted it.
    long Replay(const Hint& hint) const {
        long at = hint.index;
        for (size_t t = static_cast<size_t>(hint.time); t < m_Log.size(); ++t) {
            const Edit& e = m_Log[t];
            if (e.delta > 0) {
                if (at >= e.pos) ++at;
            } else if (at == e.pos) {
                return -1;
            } else if (at > e.pos) {
                --at;
            }
        }
        return at;
    }

    bool m_Valid = false;
    bool m_Dense = true;
    int m_Count = 0;
    int m_Limit = 64;
    int m_Lo = 0;
    std::vector<Hint> m_Table;
    std::unordered_map<int, Hint> m_Map;
    std::vector<Edit> m_Log;
};

#endif // SCC_INTERNAL_SCC_HANDLEINDEX_H
