// Fuzzes the binary loader of SFM_MessageDB: the bytes become an ".mdb"
// file, which is loaded, looked up, iterated, copied, saved and the saved
// file loaded again, and compiled as keel-mdb compiles it.  Whatever the
// file holds, nothing may be read or written out of bounds and every text
// must fit getTxt's buffer.
//   build/fuzz/fuzz/fuzz_mdb_binary -max_total_time=300 /tmp/corpus fuzz/corpus/mdb_binary
#include "mdb_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string path = mdb_fuzz::Spill("fuzzed.mdb", data, size);
    SFM_MessageDB db(path.c_str());
    mdb_fuzz::Exercise(db);
    if (db.keys) mdb_fuzz::CheckCompiled(db, false);
    return 0;
}
