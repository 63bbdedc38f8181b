/// @file
/// SFM_MessageDB, numbered message texts grouped in named sections, read on
/// demand from a text source or a binary file.  The process's database is
/// named with SFM::Initiate and held by the manager (SFM::messages).
///
/// The text source has one entry per line (keep lines under 511 bytes; line
/// feeds and trailing white space are dropped):
///
/// ~~~
/// ; a comment: ";" in the first column
/// 1:Hello
/// [Units]
/// 1:mm
/// 2:inch  $
/// ~~~
///
/// - `N:text` is a message: N is read as `atoi` reads it (`12abc` is 12,
///   `abc` 0, `-3` -3) and the text is everything after the first colon.
///   Its key is the current section's base plus N.  A text ending in "$" is
///   returned without it, so a source can keep trailing blanks.  A key that
///   is already taken keeps its first text.
/// - `[Name]` starts a section (valid when its first "]" is its last
///   character; the name may be empty).  Its base is the key of the latest
///   message line plus 2 (2 before any message), its own key the base
///   minus 1.  Two headers with no message line between them get the same base;
///   this is deliberate.  Number each section's messages in ascending order:
///   the next section starts after the latest line, not the largest number.
/// - Lines before the first header belong to an unnamed section with base 0.
/// - Empty lines and comment lines are skipped.  A line starting with a
///   blank, a message line without a number before its colon and a bad
///   header are rejected: printed on standard output as
///   `file(line) : leading blanks are not allowed`, `file(line) : invalid
///   line : "..."` or `file(line) : invalid section : "..."`, and skipped.
///
/// The example gives key 1 "Hello"; section Units key 2, base 3; key 4
/// "mm" and key 5 "inch  ".
///
/// The binary form (customarily ".mdb") is a 14-byte header, one record per
/// key and a data area of NUL-terminated texts.  Save writes 36-byte records;
/// the binary constructor reads 42-byte ones (its two flag bytes are read as
/// four-byte fields).  The two layouts differ on purpose: a file written by
/// Save is not what the binary constructor reads.  The loader trusts nothing
/// in the file: a short or corrupt file yields the entries that could be read.
/// Integers are little-endian:
///
/// - Header, 14 bytes: int16 0; int16 record count (places the data area);
///   int16 record count (the records read); int32 0; int32 0.
/// - Record as Save writes it, 36 bytes: int16 sequence number from 0; uint8
///   1 for a section, 0 for a message; uint8 0; int32 text offset from the
///   start of the data area; int32 text length with its NUL; int32 a
///   section's largest message number (a message repeats the previous
///   record's); char[20] the key in decimal, NUL-terminated (for a section
///   its own key).
/// - Record as the loader reads it, 42 bytes: the same, but the two one-byte
///   fields are int32 each; the data area starts after the first count of
///   42-byte records.
/// - Data area: the texts in record order, each with its NUL; a section's
///   text is its name.
///
/// Records run in ascending key order (sections first).  The loader keeps a
/// text's length modulo 255 (a length of exactly 255 becomes 0) and makes
/// no unnamed section.
///
/// Texts are not held in memory: the database keeps each key's offset and
/// length (8 bits: a longer text wraps) and its file stays open, so getTxt
/// costs a map look-up, a seek and a read of at most 199 bytes.  Copies share
/// the sections, the key map and the open stream; the last copy frees them.
#ifndef SFM_MESSAGEDB_H
#define SFM_MESSAGEDB_H

#include "SCC_SortableArray.h"
#include "SFM_File.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <list>
#include <map>
#include <memory>

/// A table of numbered message texts in named sections.
///
/// Build the file manager (SFM) first: the database's file registers with
/// it.  Messages are found by absolute key (getTxt), or by section name and
/// number: getTxt(GetSectionBase(name) + number), or a SectionIterator.  A
/// database whose file could not be opened is empty and answers every
/// look-up with "" (the file's failure events have been raised).
///
/// Copying is deliberately shallow: copies share the section nodes, the key
/// map and the open stream, and the last copy to go frees them.  Reads move
/// the shared file position, so use a database and its copies from one
/// thread.
class KEEL_API SFM_MessageDB {
public:
    /// One section: its name, its own key (its base is key + 1) and the
    /// largest message number written under it (0 when it has none).
    struct SectionTableNode {
        SYS_StringBase name; ///< the section's name, as written in the file
        long key;            ///< the section's own key; its messages start at key + 1
        long maxKey;         ///< the largest message number under it, 0 for none
    };

    /// One map entry: a message under its absolute key, or a section under
    /// minus its base; where its text starts in the file and its length.
    struct keyTableElem {
        long key;             ///< absolute message key, or minus a section's base
        long offset;          ///< where the text starts in the database's file
        unsigned char length; ///< bytes to read (kept in 8 bits)
    };

    /// The key table: entries by key, messages and sections together.
    typedef std::map<long, keyTableElem> KeyMap;

    /// Walks the messages of one section in ascending number, skipping
    /// numbers that have no message.  It only points at its database, which
    /// must outlive it; each step costs a map look-up, each text a read.
    ///
    /// ~~~{.cpp}
    /// SFM_MessageDB* db = SFM::GetManager()->messages.get();
    /// for (SFM_MessageDB::SectionIterator it(db, "units", 1); !it.IsEmpty(); ++it)
    ///     std::printf("%ld: %s\n", it.GetPosition(), SYS_StringBase(it).GetString());
    /// ~~~
    class KEEL_API SectionIterator {
    public:
        SFM_MessageDB* db;   ///< the database walked (not owned)
        long current;        ///< absolute key of the current message; negative when empty
        long last;           ///< the section's last absolute key
        long base;           ///< the section's base
        SYS_StringBase name; ///< the section's name as given

        /// Stands on the first message numbered `start` or more of the
        /// section called `name` (in any case).
        /// Empty when there is no such section or message.  A null database
        /// is the assertion `sfm/sfmmsgdb` 60.
        SectionIterator(SFM_MessageDB* database, SYS_StringBase sectionName, long start);
        /// Copies every field.
        SectionIterator(const SectionIterator& other) = default;
        /// Starts again from message number `start`; empty when the section
        /// does not exist.
        SectionIterator& operator=(long start);
        /// Copies every field (an assertion when this iterator has no database).
        /// The assertion is `sfm/sfmmsgdb` 80; the fields are copied anyway.
        SectionIterator& operator=(SectionIterator other);

        /// 1 when past the last message (or never on one), else 0.
        int IsEmpty() const { return current < 0 ? 1 : 0; }
        /// Makes the iterator empty.
        void Clear() { current = -1; }
        /// The current message's number in its section, or -1 when empty.
        long GetPosition() const { return current < 0 ? -1 : current - base; }
        /// The section's name as given to the constructor.
        SYS_StringBase GetName() const { return name; }
        /// The current text, "" when empty.
        operator SYS_StringBase();
        /// Advances, then returns the new current text.
        SYS_StringBase operator++();
        /// Returns the current text, then advances.
        SYS_StringBase operator++(int);

    private:
        void GetNext();
    };

    /// Loads the binary form (42-byte records as the loader reads them, see
    /// the file description; a file written by Save does not load).
    /// The file `name` is opened with "rb" and stays open; when it cannot be
    /// opened the database is empty.  Linear in the records.
    SFM_MessageDB(SYS_StringBase name);
    /// Reads the text source; the integer only selects this form.
    /// The file `name` is opened with "r" and stays open; when it cannot be
    /// opened the database is empty.  Reading costs two passes over the
    /// lines; rejected lines are printed on standard output.
    SFM_MessageDB(SYS_StringBase name, int);
    ///@{
    /// Share the sections, the key map and the stream.
    SFM_MessageDB(const SFM_MessageDB& other) = default;
    SFM_MessageDB& operator=(const SFM_MessageDB& other) = default;
    ///@}

    /// The text of `key`, or "" when there is none or the file is not open.
    /// A trailing "$" is dropped; at most 199 bytes are read.  Keys are
    /// absolute: a section's message N is GetSectionBase(name) + N (test
    /// the base for -1 first: a missing section gives no error of its own).
    SYS_StringBase getTxt(long key);
    /// Writes the binary form (36-byte records) to the file `name`.
    /// The file is created or truncated; when it cannot be opened nothing is
    /// written (the file's failure events report it).  Each text is read
    /// back from this database's file; a section entry whose name matches no
    /// section is the assertion `sfm/sfmmsgdb` 250.  Costs a sort of the
    /// keys and one seek and read per entry.
    void Save(SYS_StringBase name);
    /// The base of the section called `name` (in any case), or -1.
    /// The first section of that name counts; linear in the sections.
    long GetSectionBase(SYS_StringBase name);
    /// 1: a database has no state to check.  SFM::IsValid calls it.
    virtual int IsValid();
    /// Virtual, after IsValid, so that a database may be deleted through a
    /// base pointer (the manager holds its database that way).
    /// The last copy to go frees the shared tables and closes the file.
    virtual ~SFM_MessageDB();

    /// The sections, in reading order (from a text source the unnamed
    /// section comes first).  Shared with copies.
    std::list<std::shared_ptr<SectionTableNode>> sections;
    /// The key table; null when the file could not be opened.  Shared with
    /// copies.
    std::shared_ptr<KeyMap> keys;
    long tableSize; ///< lines or records plus a quarter; a hint only
    SFM_File file;  ///< open from construction to destruction

protected:
    /// The first section called `name` (in any case), or null.
    /// The node belongs to the database (and its copies); linear in the
    /// sections.
    SectionTableNode* GetSection(SYS_StringBase name);

private:
    void ReadSource();
    void ReadBinary();
    // Adds `elem` unless its key is already there (the first entry wins).
    void AddKey(const keyTableElem& elem) { keys->emplace(elem.key, elem); }
};

/// Orders key table entries by key; Save sorts with it.
template <> struct SCC_DefaultCompare<SFM_MessageDB::keyTableElem> {
    /// 1 when `a`'s key is the larger, -1 when the smaller, 0 when equal.
    static int Compare(const SFM_MessageDB::keyTableElem& a, const SFM_MessageDB::keyTableElem& b) {
        const long d = a.key - b.key;
        return d > 0 ? 1 : d < 0 ? -1 : 0;
    }
};

#endif // SFM_MESSAGEDB_H
