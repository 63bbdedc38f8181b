// SFM_MessageDB.h - numbered message texts grouped in named sections, read
// on demand from a text source or a binary file.
//
// The text source has one message per line ("12:text"), sections in square
// brackets and comments after ";".  A section's messages are numbered from
// its base, one past the section's own key; the texts before the first
// header belong to an unnamed section with base 0.  A text ending in "$"
// is returned without it, so a source can keep trailing blanks.  Rejected
// lines are reported on standard output and skipped.
//
// The binary form (customarily ".mdb") is a 14-byte header, one record per
// key and a data area of NUL-terminated texts.  Save writes 36-byte records;
// the binary constructor reads 42-byte ones (its two flag bytes are read as
// four-byte fields).  The two layouts differ on purpose: a file written by
// Save is not what the binary constructor reads.  The loader trusts nothing
// in the file: a short or corrupt file yields the entries that could be read.
//
// Texts are not held in memory: the database keeps each key's offset and
// length (8 bits: a longer text wraps) and its file stays open, so getTxt
// costs a map look-up, a seek and a read of at most 199 bytes.  Copies share
// the sections, the key map and the open stream; the last copy frees them.
#ifndef SFM_MESSAGEDB_H
#define SFM_MESSAGEDB_H

#include "SCC_SortableArray.h"
#include "SFM_File.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <list>
#include <map>
#include <memory>

class KEEL_API SFM_MessageDB {
public:
    // One section: its name, its own key (its base is key + 1) and the
    // largest message number written under it (0 when it has none).
    struct SectionTableNode {
        SYS_StringBase name;
        long key;
        long maxKey;
    };

    // One map entry: a message under its absolute key, or a section under
    // minus its base; where its text starts in the file and its length.
    struct keyTableElem {
        long key;
        long offset;
        unsigned char length;
    };

    typedef std::map<long, keyTableElem> KeyMap;

    // Walks the messages of one section in ascending number.
    class KEEL_API SectionIterator {
    public:
        SFM_MessageDB* db;
        long current; // absolute key of the current message; negative when empty
        long last;    // the section's last absolute key
        long base;    // the section's base
        SYS_StringBase name;

        // Stands on the first message numbered `start` or more of the
        // section called `name` (in any case).
        SectionIterator(SFM_MessageDB* database, SYS_StringBase sectionName, long start);
        SectionIterator(const SectionIterator& other) = default;
        // Starts again from message number `start`; empty when the section
        // does not exist.
        SectionIterator& operator=(long start);
        // Copies every field (an assertion when this iterator has no database).
        SectionIterator& operator=(SectionIterator other);

        int IsEmpty() const { return current < 0 ? 1 : 0; }
        void Clear() { current = -1; }
        // The current message's number in its section, or -1 when empty.
        long GetPosition() const { return current < 0 ? -1 : current - base; }
        SYS_StringBase GetName() const { return name; }
        // The current text, "" when empty.
        operator SYS_StringBase();
        // Advances, then returns the new current text.
        SYS_StringBase operator++();
        // Returns the current text, then advances.
        SYS_StringBase operator++(int);

    private:
        void GetNext();
    };

    // Loads the binary form.
    SFM_MessageDB(SYS_StringBase name);
    // Reads the text source; the integer only selects this form.
    SFM_MessageDB(SYS_StringBase name, int);
    // Share the sections, the key map and the stream.
    SFM_MessageDB(const SFM_MessageDB& other) = default;
    SFM_MessageDB& operator=(const SFM_MessageDB& other) = default;

    // The text of `key`, or "" when there is none or the file is not open.
    SYS_StringBase getTxt(long key);
    // Writes the binary form (36-byte records) to the file `name`.
    void Save(SYS_StringBase name);
    // The base of the section called `name` (in any case), or -1.
    long GetSectionBase(SYS_StringBase name);
    virtual int IsValid();
    // Virtual, after IsValid, so that a database may be deleted through a
    // base pointer (the manager holds its database that way).
    virtual ~SFM_MessageDB();

    std::list<std::shared_ptr<SectionTableNode>> sections; // in reading order
    std::shared_ptr<KeyMap> keys;                          // null when the file could not be opened
    long tableSize; // lines or records plus a quarter; a hint only
    SFM_File file;  // open from construction to destruction

protected:
    // The first section called `name` (in any case), or null.
    SectionTableNode* GetSection(SYS_StringBase name);

private:
    void ReadSource();
    void ReadBinary();
    // Adds `elem` unless its key is already there (the first entry wins).
    void AddKey(const keyTableElem& elem) { keys->emplace(elem.key, elem); }
};

// Map entries order by key.
template <> struct SCC_DefaultCompare<SFM_MessageDB::keyTableElem> {
    static int Compare(const SFM_MessageDB::keyTableElem& a, const SFM_MessageDB::keyTableElem& b) {
        const long d = a.key - b.key;
        return d > 0 ? 1 : d < 0 ? -1 : 0;
    }
};

#endif // SFM_MESSAGEDB_H
