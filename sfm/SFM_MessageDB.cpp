// SFM_MessageDB.cpp - the message database: the text source reader, the
// binary loader, look-ups, the section iterator and the binary writer.
#include "SFM_MessageDB.h"

#include "internal/SYS_Int32.h"
#include "ssm/internal/SSM_Check.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Record sizes of the binary form: the loader reads the two flag bytes as
// four-byte fields.
const long SavedRecordSize = 36;
const int KeyTextSize = 20;
// getTxt reads into a buffer of this size, keeping its last byte a NUL.
const int TextBufferSize = 200;

// Seeks `file` to an absolute position given as a key table offset.
bool SeekToOffset(SFM_File& file, long offset) {
    return offset >= 0 && offset <= INT_MAX &&
           file.Seek(static_cast<int>(offset), SFM_File::SeekBegin);
}

// Reads the next line of a text source with its position.  False at the end
// of the file, and when a read makes no progress (a stream error), so that
// no reading loop can spin.
bool NextLine(SFM_File& file, SYS_StringBase& line, long& at) {
    at = file.GetPosition();
    line = file.GetLine(0);
    return file.GetPosition() > at;
}

} // namespace

// --- construction ------------------------------------------------------------

SFM_MessageDB::SFM_MessageDB(SYS_StringBase name) : tableSize(0) {
    file.SetName(name);
    if (file.Open("rb")) ReadBinary();
}

SFM_MessageDB::SFM_MessageDB(SYS_StringBase name, int) : tableSize(0) {
    file.SetName(name);
    if (file.Open("r")) ReadSource();
}

SFM_MessageDB::~SFM_MessageDB() {}

int SFM_MessageDB::IsValid() { return 1; }

void SFM_MessageDB::ReadSource() {
    SYS_StringBase line;
    long at = 0;
    long count = 0;
    while (NextLine(file, line, at)) ++count;
    file.Rewind();
    tableSize = count + count / 4;
    sections.push_back(std::make_shared<SectionTableNode>(SectionTableNode{"", -1, 0}));
    keys = std::make_shared<KeyMap>();

    const char* source = file.GetName();
    SectionTableNode* section = sections.back().get();
    long lastKey = 0; // absolute key of the latest message line
    for (int number = 1; NextLine(file, line, at); ++number) {
        line.TrimRight("\n");
        line.TrimRight("");
        if (line.IsEmpty() || line.GetAt(0) == ';') continue;
        if (line.GetAt(0) == ' ') {
            std::printf("%s(%d) : leading blanks are not allowed\n", source, number);
            continue;
        }
        if (line.GetAt(0) == '[') {
            if (line.Find(']') != line.GetLength() - 1) {
                std::printf("%s(%d) : invalid section : \"%s\"\n", source, number,
                            line.GetString());
                continue;
            }
            SYS_StringBase name = line;
            name.TrimLeft("[");
            name.TrimRight("]");
            // Only message lines move lastKey: headers with nothing between
            // them share a base.
            const long base = SYS_Add32(lastKey, 2);
            sections.push_back(
                std::make_shared<SectionTableNode>(SectionTableNode{name, SYS_Sub32(base, 1), 0}));
            section = sections.back().get();
            AddKey({SYS_Neg32(base), at + 1, static_cast<unsigned char>(name.GetLength())});
            continue;
        }
        const int colon = line.Find(':');
        if (colon <= 0) {
            std::printf("%s(%d) : invalid line : \"%s\"\n", source, number, line.GetString());
            continue;
        }
        const int relative = std::atoi(line.Left(colon));
        const long key = SYS_Add32(SYS_Add32(section->key, 1), relative);
        AddKey({key, at + colon + 1, static_cast<unsigned char>(line.GetLength() - colon - 1)});
        lastKey = key;
        if (relative > section->maxKey) section->maxKey = relative;
    }
}

void SFM_MessageDB::ReadBinary() {
    short reserved = 0, dataCount = 0, recordCount = 0;
    long reserved1 = 0, reserved2 = 0;
    file >> reserved >> dataCount >> recordCount >> reserved1 >> reserved2;
    tableSize = recordCount + recordCount / 4;
    keys = std::make_shared<KeyMap>();
    const long headerEnd = file.GetPosition();

    long dataStart = 0;
    for (long i = 0; i < recordCount; ++i) {
        const long recordStart = file.GetPosition();
        short sequence = 0;
        long section = 0, flag = 0, offset = 0, length = 0, maxKey = 0;
        char keyText[KeyTextSize + 1] = {};
        file >> sequence >> section >> flag >> offset >> length >> maxKey;
        file.Read(keyText, KeyTextSize);
        const long recordEnd = file.GetPosition();
        // A record cut short by the end of the file ends the table.
        if (recordEnd - recordStart < 2 + 5 * 4 + KeyTextSize) break;
        if (i == 0) dataStart = headerEnd + dataCount * (recordEnd - headerEnd);

        const long key = std::atoi(keyText);
        keyTableElem elem{key, dataStart + offset, static_cast<unsigned char>(length % 255)};
        if (static_cast<unsigned char>(section) != 0) {
            SYS_StringBase name;
            if (elem.offset >= 0 && elem.offset <= INT_MAX &&
                file.PushPosition(static_cast<int>(elem.offset), SFM_File::SeekBegin)) {
                name = file.GetLine(length);
                file.PopPosition();
            }
            sections.push_back(
                std::make_shared<SectionTableNode>(SectionTableNode{name, key, maxKey}));
            elem.key = SYS_Sub32(-1, key);
        }
        AddKey(elem);
    }
}

// --- look-ups ----------------------------------------------------------------

SYS_StringBase SFM_MessageDB::getTxt(long key) {
    if (!keys || !file.IsOpen()) return SYS_StringBase();
    const KeyMap::const_iterator it = keys->find(key);
    if (it == keys->end()) return SYS_StringBase();
    const keyTableElem& elem = it->second;
    char buffer[TextBufferSize] = {};
    if (!SeekToOffset(file, elem.offset)) return SYS_StringBase();
    file.Read(buffer, std::min<long>(elem.length, TextBufferSize - 1));
    const size_t n = std::strlen(buffer);
    if (n > 0 && buffer[n - 1] == '$') buffer[n - 1] = '\0';
    return SYS_StringBase(buffer);
}

SFM_MessageDB::SectionTableNode* SFM_MessageDB::GetSection(SYS_StringBase name) {
    for (const std::shared_ptr<SectionTableNode>& node : sections)
        if (node->name.CompareNoCase(name) == 0) return node.get();
    return nullptr;
}

long SFM_MessageDB::GetSectionBase(SYS_StringBase name) {
    const SectionTableNode* node = GetSection(name);
    return node ? SYS_Add32(node->key, 1) : -1;
}

// --- the binary writer ---------------------------------------------------------

namespace {

// A record as Save writes it: 36 bytes.
struct SavedRecord {
    short sequence;
    unsigned char section;
    long offset;
    long length;
    long maxKey; // sections: their maxKey; messages: left as the previous record had it
    char keyText[KeyTextSize];
};

void WriteRecord(SFM_File& out, const SavedRecord& r) {
    out << r.sequence << r.section << static_cast<unsigned char>(0) << r.offset << r.length
        << r.maxKey;
    out.Write(r.keyText, KeyTextSize);
}

} // namespace

void SFM_MessageDB::Save(SYS_StringBase name) {
    SFM_File out(name);
    if (!out.Open("w+b")) return;

    // A blank record measures the record size and leaves its bytes beyond
    // the header when there are no entries.
    SavedRecord record = {};
    WriteRecord(out, record);
    const long recordSize = out.GetPosition();
    out.Rewind();

    SCC_SortableArray<keyTableElem> entries;
    if (keys)
        for (const KeyMap::value_type& entry : *keys) entries.Append(entry.second);
    entries.Sort(entries.GetLowerBound(), entries.GetCount(), 1);
    const int n = entries.GetCount();
    out << static_cast<short>(0) << static_cast<short>(n) << static_cast<short>(n) << 0L << 0L;

    long recordAt = out.GetPosition();
    const long dataStart = recordAt + n * (recordSize > 0 ? recordSize : SavedRecordSize);
    long dataAt = dataStart;
    for (int i = 0; i < n; ++i) {
        const keyTableElem elem = entries[entries.GetLowerBound() + i];
        // The text as stored, with a NUL after it.
        char text[256 + 1] = {};
        long got = SeekToOffset(file, elem.offset) ? file.Read(text, elem.length) : 0;
        if (got == 0 || text[got - 1] != '\0') text[got++] = '\0';

        const bool isSection = elem.key < 0;
        record.sequence = static_cast<short>(i);
        record.section = isSection ? 1 : 0;
        record.offset = dataAt - dataStart;
        record.length = got;
        if (isSection) {
            const SectionTableNode* node = GetSection(SYS_StringBase(text));
            SSM_CHECK(node, "sfm/sfmmsgdb", 250);
            if (node) record.maxKey = node->maxKey;
        }
        std::memset(record.keyText, 0, sizeof record.keyText);
        std::snprintf(record.keyText, sizeof record.keyText, "%d",
                      SYS_Wrap32(isSection ? SYS_Sub32(-1, elem.key) : elem.key));

        SeekToOffset(out, recordAt);
        WriteRecord(out, record);
        SeekToOffset(out, dataAt);
        out.Write(text, got);
        recordAt += recordSize;
        dataAt += got;
    }
    out.Close();
}

// --- SectionIterator -------------------------------------------------------------

SFM_MessageDB::SectionIterator::SectionIterator(SFM_MessageDB* database, SYS_StringBase sectionName,
                                                long start)
    : db(database), current(-1), last(0), base(0), name(sectionName) {
    SSM_CHECK(db, "sfm/sfmmsgdb", 60);
    *this = start;
}

SFM_MessageDB::SectionIterator& SFM_MessageDB::SectionIterator::operator=(long start) {
    SSM_CHECK(db, "sfm/sfmmsgdb", 70);
    const SectionTableNode* node = db ? db->GetSection(name) : nullptr;
    if (!node) {
        last = base = 0;
        Clear();
        return *this;
    }
    // The start and the largest number are 32-bit quantities: their low 32
    // bits count.  The first key wraps in 32 bits as keys do; the last one
    // does not, so that numbers reaching past the highest key still cover
    // every key up to it.
    base = db->GetSectionBase(name);
    last = base + SYS_Wrap32(node->maxKey);
    current = SYS_Add32(base, SYS_Sub32(start, 1));
    GetNext();
    return *this;
}

SFM_MessageDB::SectionIterator& SFM_MessageDB::SectionIterator::operator=(SectionIterator other) {
    SSM_CHECK(db, "sfm/sfmmsgdb", 80);
    db = other.db;
    current = other.current;
    last = other.last;
    base = other.base;
    name = other.name;
    return *this;
}

// The next key of the map within the section, found in one look-up rather
// than by stepping through every number up to `last`.
void SFM_MessageDB::SectionIterator::GetNext() {
    SSM_CHECK(db && db->keys, "sfm/sfmmsgdb", 90);
    if (!db || !db->keys || current >= last) {
        Clear();
        return;
    }
    const long next = current + 1;
    if (next < 0) {
        current = next; // stepping through negative numbers leaves the iterator empty
        return;
    }
    const KeyMap::const_iterator it = db->keys->lower_bound(next);
    current = it != db->keys->end() && it->first <= last ? it->first : -1;
}

SFM_MessageDB::SectionIterator::operator SYS_StringBase() {
    return IsEmpty() || !db ? SYS_StringBase() : db->getTxt(current);
}

SYS_StringBase SFM_MessageDB::SectionIterator::operator++() {
    GetNext();
    return *this;
}

SYS_StringBase SFM_MessageDB::SectionIterator::operator++(int) {
    SYS_StringBase text = *this;
    GetNext();
    return text;
}
