// Fuzzes the text source reader of SFM_MessageDB: the bytes become a source
// file, which is read, looked up, iterated, copied and saved.  Then the
// database is compiled into the binary form as keel-mdb compiles it, and the
// binary file must give back every key with the same text and every section
// (but the unnamed one) with the same name, key and largest number.
//   build/fuzz/fuzz/fuzz_mdb_text -max_total_time=300 /tmp/corpus fuzz/corpus/mdb_text
#include "MdbCompile.h"
#include "mdb_fuzz.h"

#include <iterator>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // The reader reports rejected lines on standard output.
    if (!std::freopen("/dev/null", "w", stdout)) std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string path = mdb_fuzz::Spill("fuzzed.txt", data, size);
    SFM_MessageDB db(path.c_str(), 0);
    mdb_fuzz::Exercise(db);
    if (!db.keys) __builtin_trap(); // the file is there

    const std::string compiled = mdb_fuzz::Directory() + "/compiled.mdb";
    std::string error;
    if (!MdbCompile(db, compiled.c_str(), true, error)) {
        if (error.find("too many records") == std::string::npos) __builtin_trap();
        return 0;
    }
    SFM_MessageDB binary(compiled.c_str());
    if (!binary.keys || binary.keys->size() != db.keys->size()) __builtin_trap();
    for (const SFM_MessageDB::KeyMap::value_type& entry : *db.keys)
        if (binary.getTxt(entry.first) != db.getTxt(entry.first)) __builtin_trap();
    if (binary.sections.size() + 1 != db.sections.size()) __builtin_trap();
    auto theirs = std::next(db.sections.begin());
    for (const auto& node : binary.sections) {
        const auto& source = *theirs++;
        if (node->name != source->name || node->key != source->key ||
            node->maxKey != source->maxKey)
            __builtin_trap();
    }
    return 0;
}
