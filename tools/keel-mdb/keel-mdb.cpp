// keel-mdb - builds and reads message database files.
//
//   keel-mdb compile SOURCE OUT.mdb   writes the binary form the loader reads
//   keel-mdb save SOURCE OUT          writes what SFM_MessageDB::Save writes
//   keel-mdb get FILE KEY             prints the text of one key
//   keel-mdb section FILE NAME        prints every message of a section,
//                                     "N:text", negative numbers too
//   keel-mdb dump FILE                prints every section and every key
//
// SOURCE and FILE are read in the form their extension names, as
// SFM::Initiate chooses it: ".mdb" (any case) is the binary form, anything
// else a text source.  The tool is a host like any other: it builds the file
// manager, names its database with Initiate and hears file failures on the
// manager's event.  Lines the text reader rejects are printed by the library
// on standard output and skipped; they do not fail a command.
//
// The database is read on demand, with seeks, so FILE and SOURCE must be
// seekable files (not a pipe); `compile` and `save` refuse to write over
// their own input, and `save` to write into a pipe.  Both binary layouts
// hold at most 32,767 records: `compile` and `save` refuse more.  `--help` (or `-h`)
// prints the usage text on standard output.
//
// Exit status: 0 done, 1 a file could not be read or written, was refused,
// or the key or section asked for is not there, 2 bad arguments (with the
// usage text).
#include "MdbCompile.h"

#include <keel/SFM.h>
#include <keel/SFM_FilePath.h>
#include <keel/SFM_MessageDB.h>
#include <keel/SYS_Resource.h>
#include <keel/internal/SYS_Int32.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace {

enum Exit { Done = 0, Failed = 1, BadArguments = 2 };

const char Usage[] = "usage: keel-mdb compile SOURCE OUT.mdb\n"
                     "       keel-mdb save SOURCE OUT\n"
                     "       keel-mdb get FILE KEY\n"
                     "       keel-mdb section FILE NAME\n"
                     "       keel-mdb dump FILE\n"
                     "       keel-mdb --help\n"
                     "FILE and SOURCE ending in .mdb are read as binary files, others as text;\n"
                     "both must be seekable files (not a pipe).  KEY is a decimal number.\n";

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

// A decimal key; keys are 32-bit.
bool ParseKey(const char* text, long& key) {
    char* end = nullptr;
    errno = 0;
    key = std::strtol(text, &end, 10);
    return end != text && *end == '\0' && errno == 0 && key >= INT32_MIN && key <= INT32_MAX;
}

// True when `path` opens but cannot seek (a pipe, a terminal).  A file that
// does not open is left to the library, which reports why.
bool NotSeekable(const char* path) {
    const int fd = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return false;
    const bool pipe = ::lseek(fd, 0, SEEK_CUR) < 0 && errno == ESPIPE;
    ::close(fd);
    return pipe;
}

// True when both paths name one existing file (device and inode, whatever
// the names).
bool SameFile(const char* a, const char* b) {
    struct stat sa, sb;
    return ::stat(a, &sa) == 0 && ::stat(b, &sb) == 0 && sa.st_dev == sb.st_dev &&
           sa.st_ino == sb.st_ino;
}

// Refuses what would lose data or read nothing: an input that cannot seek
// (the database reads its file on demand), an output that is the input
// (it is truncated before it is read), a pipe as save's output (Save seeks).
bool Refused(const char* command, const char* in, const char* out) {
    if (NotSeekable(in)) {
        std::fprintf(stderr,
                     "keel-mdb: %s: not a seekable file (a pipe?); the database is "
                     "read on demand, with seeks\n",
                     in);
        return true;
    }
    if (!out) return false;
    if (SameFile(in, out)) {
        std::fprintf(stderr,
                     "keel-mdb: %s and %s are the same file; writing would destroy "
                     "the input\n",
                     in, out);
        return true;
    }
    if (std::strcmp(command, "save") == 0 && NotSeekable(out)) {
        std::fprintf(stderr,
                     "keel-mdb: %s: not a seekable file (a pipe?); save writes with "
                     "seeks\n",
                     out);
        return true;
    }
    return false;
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

// The first section called `name` (in any case) and its place in the list.
const SFM_MessageDB::SectionTableNode* FindSection(SFM_MessageDB& db, const char* name,
                                                   long& index) {
    index = 0;
    for (const std::shared_ptr<SFM_MessageDB::SectionTableNode>& node : db.sections) {
        if (node->name.CompareNoCase(name) == 0) return node.get();
        ++index;
    }
    return nullptr;
}

// The messages a text source puts under the header of section number
// `index` (0: the lines before the first header), number -> key: its lines
// read again by the reader's rules, each kept when the database holds its
// key from that very line (a line whose key an earlier line took reads as
// that line, so it is left out).  Negative numbers count like any other.
std::map<long, long> SourceMessages(SFM_MessageDB& db, const char* source, long index, long base) {
    std::map<long, long> numbers;
    SFM_File file(source);
    if (!file.Open("r")) return numbers;
    long section = 0;
    for (;;) {
        const long at = file.GetPosition();
        SYS_StringBase line = file.GetLine(0);
        if (file.GetPosition() <= at) break;
        line.TrimRight("\n");
        line.TrimRight("");
        if (line.IsEmpty() || line.GetAt(0) == ';' || line.GetAt(0) == ' ') continue;
        if (line.GetAt(0) == '[') {
            if (line.Find(']') == line.GetLength() - 1) ++section;
            continue;
        }
        const int colon = line.Find(':');
        if (colon <= 0 || section != index) continue;
        const long number = std::atoi(line.Left(colon));
        const long key = SYS_Add32(base, number);
        const auto entry = db.keys->find(key);
        if (entry != db.keys->end() && entry->second.offset == at + colon + 1)
            numbers.emplace(number, key);
    }
    return numbers;
}

// Prints "number:text" for every message of the section, in ascending
// number.  The binary form keeps no record of the header a message stood
// under: there the section's messages are its keys from number -1 (the
// section's own key, the first key after the message line before its
// header) to its largest number.
int Section(SFM_MessageDB& db, const char* file, const char* name) {
    long index = 0;
    const SFM_MessageDB::SectionTableNode* node = FindSection(db, name, index);
    if (!node) {
        std::fprintf(stderr, "keel-mdb: no section \"%s\"\n", name);
        return Failed;
    }
    if (!IsBinaryName(file)) {
        for (const auto& message : SourceMessages(db, file, index, SYS_Add32(node->key, 1)))
            std::printf("%ld:%s\n", message.first, db.getTxt(message.second).GetString());
        return Done;
    }
    for (SFM_MessageDB::SectionIterator it(&db, name, -1); !it.IsEmpty(); ++it)
        std::printf("%ld:%s\n", it.GetPosition(), SYS_StringBase(it).GetString());
    return Done;
}

int Dump(SFM_MessageDB& db) {
    std::printf("sections (%zu):\n", db.sections.size());
    for (const std::shared_ptr<SFM_MessageDB::SectionTableNode>& node : db.sections)
        std::printf("  \"%s\" key %ld, base %ld, numbers up to %ld\n", node->name.GetString(),
                    node->key, static_cast<long>(SYS_Add32(node->key, 1)), node->maxKey);
    std::printf("keys (%zu):\n", db.keys->size());
    for (const SFM_MessageDB::KeyMap::value_type& entry : *db.keys)
        std::printf("  %ld \"%s\"\n", entry.first, db.getTxt(entry.first).GetString());
    return Done;
}

int Save(SFM_MessageDB& db, const char* out) {
    std::string error;
    if (!MdbFits(db.keys->size(), error)) {
        std::fprintf(stderr, "keel-mdb: %s\n", error.c_str());
        return Failed;
    }
    db.Save(out);
    return Done;
}

int Run(SFM& manager, int argc, char** argv) {
    const char* command = argc > 1 ? argv[1] : "";
    if (argc == 2 && (std::strcmp(command, "--help") == 0 || std::strcmp(command, "-h") == 0)) {
        std::fputs(Usage, stdout);
        return Done;
    }
    const int operands = argc - 2;
    const bool known =
        ((std::strcmp(command, "compile") == 0 || std::strcmp(command, "save") == 0 ||
          std::strcmp(command, "get") == 0 || std::strcmp(command, "section") == 0) &&
         operands == 2) ||
        (std::strcmp(command, "dump") == 0 && operands == 1);
    long key = 0;
    const bool badKey = known && command[0] == 'g' && !ParseKey(argv[3], key);
    if (badKey)
        std::fprintf(stderr, "keel-mdb: bad key \"%s\": a decimal 32-bit number\n", argv[3]);
    if (!known || badKey) {
        std::fputs(Usage, stderr);
        return BadArguments;
    }
    const bool writes = command[0] == 'c' || std::strcmp(command, "save") == 0;
    if (Refused(command, argv[2], writes ? argv[3] : nullptr)) return Failed;
    SFM_MessageDB* db = Load(manager, argv[2]);
    if (!db) return Failed;
    switch (command[0]) {
    case 'c':
        return Compile(*db, argv[2], argv[3]);
    case 's':
        return command[1] == 'e' ? Section(*db, argv[2], argv[3]) : Save(*db, argv[3]);
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
