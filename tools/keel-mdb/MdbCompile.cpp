// MdbCompile.cpp - the binary layout that the loader reads, written from a
// database in memory.
#include "MdbCompile.h"

#include <keel/SYS_Resource.h>
#include <keel/internal/SYS_Int32.h>

#include <cstdio>
#include <vector>

namespace {

const long HeaderSize = 14;
// As the loader reads a record: the sequence number, the two flag bytes as
// four-byte fields, offset, length, the number at offset 12 and the key text.
const long RecordSize = 2 + 4 + 4 + 4 + 4 + 4 + 20;
const int KeyTextSize = 20;

struct Record {
    long section; // 1 for a section record
    long key;     // as the key text gives it
    long maxKey;
    std::string text; // without its NUL
};

} // namespace

bool MdbFits(size_t records, std::string& error) {
    error.clear();
    if (records <= static_cast<size_t>(MdbMaxRecords)) return true;
    error = "too many records for the binary form: " + std::to_string(records) + " (at most " +
            std::to_string(MdbMaxRecords) + ")";
    return false;
}

bool MdbCompile(SFM_MessageDB& db, const char* path, bool textSource, std::string& error) {
    std::vector<Record> records;
    if (db.keys) {
        for (const SFM_MessageDB::KeyMap::value_type& entry : *db.keys) {
            std::string text = db.getTxt(entry.first).GetString();
            // getTxt drops one "$" at the end: give it one to drop.  The text is at
            // most 199 bytes, so the length (with the NUL) stays below 255.
            if (!text.empty() && text.back() == '$') text += '$';
            records.push_back({0, entry.first, 0, text});
        }
    }
    auto node = db.sections.begin();
    if (textSource && node != db.sections.end()) ++node; // the unnamed section
    for (; node != db.sections.end(); ++node)
        records.push_back({1, (*node)->key, (*node)->maxKey, (*node)->name.GetString()});
    if (!MdbFits(records.size(), error)) return false;

    SFM_File out(path);
    if (!out.Open("wb")) return false;
    const short count = static_cast<short>(records.size());
    out << static_cast<short>(0) << count << count << 0L << 0L;
    long offset = 0; // from the start of the data area
    for (size_t i = 0; i < records.size(); ++i) {
        const Record& r = records[i];
        const long length = static_cast<long>(r.text.size()) + 1;
        char keyText[KeyTextSize] = {};
        std::snprintf(keyText, sizeof keyText, "%d", SYS_Wrap32(r.key));
        out << static_cast<short>(i) << r.section << 0L << offset << length << r.maxKey;
        out.Write(keyText, KeyTextSize);
        offset += length;
    }
    for (const Record& r : records) out.Write(r.text.c_str(), static_cast<long>(r.text.size()) + 1);
    // Write clears the stream's error state: the position says whether every
    // byte went in.  A failure to store them shows at Close, as its event.
    const bool whole = out.GetPosition() == HeaderSize + count * RecordSize + offset;
    out.Close();
    if (!whole) error = FormattedString(TR(253).GetString(), path).GetString();
    return whole && out.GetMsg().IsEmpty();
}
