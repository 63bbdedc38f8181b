// keel-mdb - builds and reads message database files.
//
//   keel-mdb compile SOURCE OUT.mdb   writes the binary form the loader reads
//   keel-mdb save SOURCE OUT          writes what SFM_MessageDB::Save writes
//   keel-mdb get FILE KEY             prints the text of one key
//   keel-mdb section FILE NAME        prints a section's messages, "N:text"
//   keel-mdb dump FILE                prints every section and every key
//
// SOURCE and FILE are read in the form their extension names, as
// SFM::Initiate chooses it: ".mdb" (any case) is the binary form, anything
// else a text source.  The tool is a host like any other: it builds the file
// manager, names its database with Initiate and hears file failures on the
// manager's event.  Lines the text reader rejects are printed by the library
// on standard output and skipped; they do not fail a command.
//
// Exit status: 0 done, 1 a file could not be read or written or the key or
// section asked for is not there, 2 bad arguments (with the usage text).
#include "MdbCompile.h"

#include <keel/SFM.h>
#include <keel/SFM_FilePath.h>
#include <keel/SFM_MessageDB.h>
#include <keel/SYS_Resource.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

enum Exit { Done = 0, Failed = 1, BadArguments = 2 };

const char Usage[] = "usage: keel-mdb compile SOURCE OUT.mdb\n"
                     "       keel-mdb save SOURCE OUT\n"
                     "       keel-mdb get FILE KEY\n"
                     "       keel-mdb section FILE NAME\n"
                     "       keel-mdb dump FILE\n"
                     "FILE and SOURCE ending in .mdb are read as binary files, others as text.\n";

// Prints every file failure the manager announces, as "Can't open NAME: why".
class FailureReport {
public:
    explicit FailureReport(SFM& manager) {
        hook.SetObject(this);
        hook.SetMethod(&FailureReport::OnEvent);
        hook.Attach(&manager.event);
    }
    bool Heard() const { return heard; }

private:
    int OnEvent(int code, SFM_EventData* data) {
        if (code <= SFM::FailureThreshold) return 0;
        // The library's texts "Can't open %s" ... "Can't write %s" follow the
        // order of the failure codes.
        const SYS_StringBase what = FormattedString(
            TR(250 + code - SFM::FileOpenFailed).GetString(), data->fileName1.GetString());
        std::fprintf(stderr, "keel-mdb: %s: %s\n", what.GetString(), data->text.GetString());
        heard = true;
        return 0;
    }

    SCC_ObjectEventHook<FailureReport, SFM_EventData> hook;
    bool heard = false;
};

bool IsBinaryName(const char* path) {
    return SFM_FilePath(path).GetFileExtension().CompareNoCase(".mdb") == 0;
}

// The manager's database read from `path`, or null when the file could not
// be opened (its failure has been reported).
SFM_MessageDB* Load(SFM& manager, const char* path) {
    manager.Initiate(path);
    SFM_MessageDB* db = manager.messages.get();
    return db && db->keys ? db : nullptr;
}

bool ParseKey(const char* text, long& key) {
    char* end = nullptr;
    errno = 0;
    key = std::strtol(text, &end, 10);
    return end != text && *end == '\0' && errno == 0;
}

int Compile(SFM_MessageDB& db, const char* source, const char* out) {
    std::string error;
    if (MdbCompile(db, out, !IsBinaryName(source), error)) return Done;
    if (!error.empty()) std::fprintf(stderr, "keel-mdb: %s\n", error.c_str());
    return Failed;
}

int Get(SFM_MessageDB& db, long key) {
    if (!db.keys->count(key)) {
        std::fprintf(stderr, "keel-mdb: no message %ld\n", key);
        return Failed;
    }
    std::printf("%s\n", db.getTxt(key).GetString());
    return Done;
}

int Section(SFM_MessageDB& db, const char* name) {
    if (db.GetSectionBase(name) == -1) {
        std::fprintf(stderr, "keel-mdb: no section \"%s\"\n", name);
        return Failed;
    }
    // From number 0, the lowest a section's iterator reaches.
    for (SFM_MessageDB::SectionIterator it(&db, name, 0); !it.IsEmpty(); ++it)
        std::printf("%ld:%s\n", it.GetPosition(), SYS_StringBase(it).GetString());
    return Done;
}

int Dump(SFM_MessageDB& db) {
    std::printf("sections (%zu):\n", db.sections.size());
    for (const std::shared_ptr<SFM_MessageDB::SectionTableNode>& node : db.sections)
        std::printf("  \"%s\" key %ld, base %ld, numbers up to %ld\n", node->name.GetString(),
                    node->key, node->key + 1, node->maxKey);
    std::printf("keys (%zu):\n", db.keys->size());
    for (const SFM_MessageDB::KeyMap::value_type& entry : *db.keys)
        std::printf("  %ld \"%s\"\n", entry.first, db.getTxt(entry.first).GetString());
    return Done;
}

int Run(SFM& manager, int argc, char** argv) {
    const char* command = argc > 1 ? argv[1] : "";
    const int operands = argc - 2;
    long key = 0;
    const bool known =
        (std::strcmp(command, "compile") == 0 && operands == 2) ||
        (std::strcmp(command, "save") == 0 && operands == 2) ||
        (std::strcmp(command, "get") == 0 && operands == 2 && ParseKey(argv[3], key)) ||
        (std::strcmp(command, "section") == 0 && operands == 2) ||
        (std::strcmp(command, "dump") == 0 && operands == 1);
    if (!known) {
        std::fputs(Usage, stderr);
        return BadArguments;
    }
    SFM_MessageDB* db = Load(manager, argv[2]);
    if (!db) return Failed;
    switch (command[0]) {
    case 'c':
        return Compile(*db, argv[2], argv[3]);
    case 's':
        if (command[1] == 'e') return Section(*db, argv[3]);
        db->Save(argv[3]);
        return Done;
    case 'g':
        return Get(*db, key);
    default:
        return Dump(*db);
    }
}

} // namespace

int main(int argc, char** argv) {
    SFM manager;
    FailureReport failures(manager);
    const int status = Run(manager, argc, argv);
    std::fflush(stdout);
    return status == Done && failures.Heard() ? Failed : status;
}
