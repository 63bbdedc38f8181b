// MdbCompile.h - writes a message database in the binary layout that
// SFM_MessageDB's binary constructor reads: a 14-byte header, 42-byte records
// (the two flag bytes widened to four-byte fields) and the data area.
//
// What comes back through the binary constructor:
//   - every key, with the text getTxt gave for it before: each text is stored
//     as getTxt returns it (at most 199 bytes), with one more "$" when it ends
//     in "$", so that the record length (text and NUL, at most 200) never
//     reaches the 255 at which the loader's length wraps to 0;
//   - every section with its name, key and largest number, in list order,
//     except the unnamed section of a text source (the binary form has none;
//     the messages it holds keep their keys).
// The keys come first, as message records in key order, section entries
// included; then one section record per section.  A section record's own
// key entry repeats a key already read, so the loader drops it (the first
// entry wins) and keeps only the section node it builds; that is how a
// section whose entry is not its name (a header "[[x]", two headers sharing
// a base, a message key equal to a section's entry) survives exactly.
//
// Costs: one getTxt per key, the texts held in memory until written.
#ifndef MDB_COMPILE_H
#define MDB_COMPILE_H

#include <keel/SFM_MessageDB.h>

#include <string>

// The layout's record counts are signed 16-bit fields, in both binary
// layouts (the loader's and Save's).
const long MdbMaxRecords = 32767;

// False, with the message in `error`, when `records` exceed MdbMaxRecords.
bool MdbFits(size_t records, std::string& error);

// Writes `db` to `path`.  `textSource`: the database was read from a text
// source, whose first section is the unnamed one.  Returns false when the
// file was not written whole; `error` then says why, or is empty when a file
// failure was announced through the file manager's event.
bool MdbCompile(SFM_MessageDB& db, const char* path, bool textSource, std::string& error);

#endif // MDB_COMPILE_H
