// mdb_fuzz.h - what the message database fuzz targets share: the file
// manager every file needs, a private temporary directory for the fuzzed
// files, a walk over everything a database answers, and the check of what
// keel-mdb's compile step makes of it.
#ifndef MDB_FUZZ_H
#define MDB_FUZZ_H

#include "MdbCompile.h"
#include <keel/SFM.h>
#include <keel/SFM_MessageDB.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

namespace mdb_fuzz {

inline std::string& Directory() {
    static std::string dir;
    return dir;
}

// Builds the manager and the directory once; the directory goes at exit.
inline void Start() {
    if (!Directory().empty()) return;
    static SFM* manager = new SFM; // lives as long as the process
    (void)manager;
    // Memory-backed when possible: a disk file system writes back every file
    // truncated on open, which costs more than the whole target.
    const bool shm = std::filesystem::is_directory("/dev/shm");
    std::string pattern = shm ? "/dev/shm/keel-fuzz-mdb-XXXXXX" : "/tmp/keel-fuzz-mdb-XXXXXX";
    char* name = pattern.data();
    if (!mkdtemp(name)) std::abort();
    Directory() = name;
    std::atexit([] { std::filesystem::remove_all(Directory()); });
}

// Writes `data` to the file `name` of the directory; returns its path.
inline std::string Spill(const char* name, const uint8_t* data, size_t size) {
    Start();
    const std::string path = Directory() + "/" + name;
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) std::abort();
    if (size) std::fwrite(data, 1, size, f);
    std::fclose(f);
    return path;
}

// Looks up every key and its neighbours and walks every section from 0 and
// from 1 with both increments: texts fit getTxt's buffer, iterators climb
// within their section.  Then a copy is dropped (the original must keep its
// tables) and the database is saved and the saved file loaded.
inline void Exercise(SFM_MessageDB& db) {
    if (db.keys) {
        for (const SFM_MessageDB::KeyMap::value_type& entry : *db.keys)
            for (long key = entry.first - 1; key <= entry.first + 1; ++key)
                if (db.getTxt(key).GetLength() > 199) __builtin_trap();
    }
    for (const auto& node : db.sections) {
        for (long start = 0; start <= 1; ++start) {
            SFM_MessageDB::SectionIterator it(&db, node->name, start);
            long previous = -1;
            for (int step = 0; !it.IsEmpty(); ++step) {
                const long at = it.GetPosition();
                if (at <= previous || at < start || at > it.last - it.base) __builtin_trap();
                previous = at;
                if (step % 2)
                    it++;
                else
                    ++it;
            }
        }
    }
    { SFM_MessageDB copy(db); }
    if (db.keys && !db.keys->empty()) db.getTxt(db.keys->begin()->first);

    const std::string saved = Directory() + "/saved.mdb";
    db.Save(saved.c_str());
    SFM_MessageDB reloaded(saved.c_str());
    if (reloaded.keys)
        for (const SFM_MessageDB::KeyMap::value_type& entry : *reloaded.keys)
            reloaded.getTxt(entry.first);
}

// Compiles `db` as keel-mdb does and loads the result: it must give back
// every key with the same text, and every section (but the unnamed one of a
// text source) with the same name, key and largest number, in order.
inline void CheckCompiled(SFM_MessageDB& db, bool textSource) {
    const std::string compiled = Directory() + "/compiled.mdb";
    std::string error;
    if (!MdbCompile(db, compiled.c_str(), textSource, error)) {
        if (error.find("too many records") == std::string::npos) __builtin_trap();
        return;
    }
    SFM_MessageDB binary(compiled.c_str());
    if (!binary.keys || binary.keys->size() != db.keys->size()) __builtin_trap();
    for (const SFM_MessageDB::KeyMap::value_type& entry : *db.keys)
        if (binary.getTxt(entry.first) != db.getTxt(entry.first)) __builtin_trap();
    auto theirs = db.sections.begin();
    if (textSource) ++theirs;
    if (binary.sections.size() != static_cast<size_t>(std::distance(theirs, db.sections.end())))
        __builtin_trap();
    for (const auto& node : binary.sections) {
        const auto& source = *theirs++;
        if (node->name != source->name || node->key != source->key ||
            node->maxKey != source->maxKey)
            __builtin_trap();
    }
}

} // namespace mdb_fuzz

#endif // MDB_FUZZ_H
