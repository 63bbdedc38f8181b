// Message benchmarks: SFM_MessageDB::getTxt on a database of 10,000
// messages in ten sections, read from its text source and from the binary
// form keel-mdb compiles, beside a std::map<long, std::string> that holds
// the same texts in memory.  getTxt keeps only keys, offsets and lengths and
// reads each text from the open file (a seek and a read), so the peer shows
// what keeping the texts in memory would buy.  Times are per look-up.
#include "keel_bench.h"

#include "MdbCompile.h"
#include <keel/SFM.h>
#include <keel/SFM_MessageDB.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace keel_bench;

const int Sections = 10;
const int LookUps = 1000;

// A text source of n messages, its compiled binary form, and the look-up
// keys: made once per n, in a directory removed at exit.
struct Database {
    std::string text, binary;
    std::vector<long> keys;            // LookUps message keys, at random
    std::map<long, std::string> texts; // every message, as getTxt reads it
};

std::string& Directory() {
    static std::string dir;
    return dir;
}

const Database& Messages(int n) {
    static std::map<int, Database> made;
    Database& d = made[n];
    if (!d.text.empty()) return d;
    if (Directory().empty()) {
        const char* tmp = std::getenv("TMPDIR");
        std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/keel-bench-XXXXXX";
        if (!mkdtemp(pattern.data())) std::abort();
        Directory() = pattern;
        std::atexit([] { std::filesystem::remove_all(Directory()); });
    }
    d.text = Directory() + "/messages-" + std::to_string(n) + ".txt";
    d.binary = Directory() + "/messages-" + std::to_string(n) + ".mdb";
    FILE* f = std::fopen(d.text.c_str(), "w");
    if (!f) std::abort();
    for (int i = 0; i < n; ++i) {
        if (i % (n / Sections) == 0) std::fprintf(f, "[Section %d]\n", i / (n / Sections));
        std::fprintf(f, "%d:Message %d: the text of a prompt or a failure, as hosts keep them\n",
                     i % (n / Sections) + 1, i);
    }
    std::fclose(f);

    SFM manager;
    SFM_MessageDB db(d.text.c_str(), 0);
    std::string error;
    if (!MdbCompile(db, d.binary.c_str(), true, error)) std::abort();
    std::vector<long> messages;
    for (const SFM_MessageDB::KeyMap::value_type& entry : *db.keys) {
        if (entry.first < 0) continue; // section entries
        messages.push_back(entry.first);
        d.texts[entry.first] = db.getTxt(entry.first).GetString();
    }
    for (int r : RandomInts(LookUps, 11)) d.keys.push_back(messages[r % messages.size()]);
    return d;
}

void GetTxt(benchmark::State& state, bool binary) {
    const Database& d = Messages(static_cast<int>(state.range(0)));
    SFM manager;
    std::unique_ptr<SFM_MessageDB> db(binary ? new SFM_MessageDB(d.binary.c_str())
                                             : new SFM_MessageDB(d.text.c_str(), 0));
    for (auto _ : state) {
        for (long key : d.keys) {
            SYS_StringBase text = db->getTxt(key);
            benchmark::DoNotOptimize(text);
        }
    }
    PerItem(state, LookUps);
}

void TextGetTxt(benchmark::State& state) { GetTxt(state, false); }
void BinaryGetTxt(benchmark::State& state) { GetTxt(state, true); }

void MapFind(benchmark::State& state) {
    const Database& d = Messages(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        for (long key : d.keys) {
            const auto it = d.texts.find(key);
            std::string text = it == d.texts.end() ? std::string() : it->second;
            benchmark::DoNotOptimize(text);
        }
    }
    PerItem(state, LookUps);
}

[[maybe_unused]] const bool registered = [] {
    Pair("message", "get-txt-text")
        .Keel(TextGetTxt, "SFM_MessageDB::getTxt, text source, per look-up")
        .Peer("std-map", MapFind, "std::map<long, std::string>::find and a copy")
        .Register({10000});
    Pair("message", "get-txt-binary")
        .Keel(BinaryGetTxt, "SFM_MessageDB::getTxt, binary form, per look-up")
        .Peer("std-map", MapFind, "std::map<long, std::string>::find and a copy")
        .Register({10000});
    return true;
}();

} // namespace
