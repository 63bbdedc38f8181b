// Fuzzes the text source reader of SFM_MessageDB: the bytes become a source
// file, which is read, looked up, iterated, copied and saved, and then
// compiled as keel-mdb compiles it (see mdb_fuzz::CheckCompiled).
//   build/fuzz/fuzz/fuzz_mdb_text -max_total_time=300 /tmp/corpus fuzz/corpus/mdb_text
#include "mdb_fuzz.h"

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
    mdb_fuzz::CheckCompiled(db, true);
    return 0;
}
