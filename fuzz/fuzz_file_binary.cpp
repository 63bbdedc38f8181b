// Fuzzes the binary values of SFM_File through real files: sequences of Put
// and Get of every type, bit-reversed or not, raw blocks written and read,
// seeks (also past the end), saved positions, flushes, closes and reopens,
// and temporary closes made by the file manager, over two files that take
// turns.  Every step is compared with a plain model of the file's bytes:
// what Put writes (the value's low bytes in machine order, its bits
// reversed over the type's width when asked), what Get reads back (bytes a
// read at the end did not deliver keep the value's old contents), the
// position, the length and the end-of-file state.  A round-trip step puts a
// value, seeks back and gets it again: it must come back as written (a
// `long` as its low 32 bits).  The bytes on disk must equal the model after
// every close.  Any assertion and any failure event is a finding.
//   build/fuzz/fuzz/fuzz_file_binary -max_total_time=600 /tmp/corpus fuzz/corpus/file_binary
// Input: a flag byte (bit 0: the first file starts with the content that
// follows: a length byte and that many bytes), then one byte per step
// choosing the operation, followed by its operands.
#include <keel/SFM.h>
#include <keel/SFM_File.h>
#include <keel/SSM.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <signal.h>
#include <string>
#include <unistd.h>
#include <vector>

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the model writes little-endian bytes");

namespace {

void Fail(const char* what, int line) {
    std::fprintf(stderr, "fuzz_file_binary: check failed at line %d: %s\n", line, what);
    __builtin_trap();
}
#define CHECK(c)                                                                                   \
    do {                                                                                           \
        if (!(c)) Fail(#c, __LINE__);                                                              \
    } while (0)

class Input {
public:
    Input(const uint8_t* data, size_t size) : m_Data(data), m_Size(size) {}
    bool More() const { return m_At < m_Size; }
    uint8_t Byte() { return m_At < m_Size ? m_Data[m_At++] : 0; }
    uint64_t Bytes(size_t n) {
        uint64_t v = 0;
        for (size_t i = 0; i < n; ++i) v |= uint64_t(Byte()) << (8 * i);
        return v;
    }
    std::string Block(size_t n) {
        std::string s;
        while (n-- && More()) s += static_cast<char>(Byte());
        return s;
    }

private:
    const uint8_t* m_Data;
    size_t m_Size;
    size_t m_At = 0;
};

// The managers every file needs, a private directory, and hooks that turn
// an assertion or a failure event into a finding.
struct Process {
    SSM ssm;
    SFM sfm;
    std::string dir;
    SCC_ObjectEventHook<Process, int> assertHook;
    SCC_ObjectEventHook<Process, SFM_EventData> eventHook;

    Process() {
        // In memory where possible.  The directory is named after the
        // process: a finding ends the process without the clean-up at exit,
        // so the directories of processes that are gone go here.
        namespace fs = std::filesystem;
        const std::string base = fs::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
        const std::string prefix = "keel-fuzz-file-";
        std::error_code error;
        for (const fs::directory_entry& entry : fs::directory_iterator(base, error)) {
            const std::string name = entry.path().filename().string();
            if (name.compare(0, prefix.size(), prefix) != 0) continue;
            const long pid = std::strtol(name.c_str() + prefix.size(), nullptr, 10);
            if (pid > 0 && kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
                fs::remove_all(entry.path(), error);
        }
        dir = base + "/" + prefix + std::to_string(getpid());
        fs::remove_all(dir, error);
        if (!fs::create_directory(dir, error)) std::abort();
        assertHook.SetObject(this), assertHook.SetMethod(&Process::OnAssert);
        assertHook.Attach(&ssm.FailureEvent);
        eventHook.SetObject(this), eventHook.SetMethod(&Process::OnEvent);
        eventHook.Attach(&sfm.event);
    }
    int OnAssert(int, int* data) {
        const SSM::AssertData* r = reinterpret_cast<const SSM::AssertData*>(data);
        std::fprintf(stderr, "fuzz_file_binary: assertion at %s:%d\n", r->File.GetString(),
                     r->Line);
        __builtin_trap();
    }
    int OnEvent(int code, SFM_EventData* data) {
        if (code <= SFM::FailureThreshold) return 0;
        std::fprintf(stderr, "fuzz_file_binary: event %d: %s\n", code, data->GetText().GetString());
        __builtin_trap();
    }
};

Process& TheProcess() {
    static Process* process = new Process; // lives as long as the process
    static const int removed = std::atexit([] { std::filesystem::remove_all(process->dir); });
    (void)removed;
    return *process;
}

// The nine types of Get and Put: width in bytes, signedness, and whether
// they take the reverse flag.
struct Type {
    const char* name;
    unsigned width;
    bool isSigned;
};
const Type kTypes[] = {{"unsigned long", 4, false},  {"long", 4, true},
                       {"unsigned char", 1, false},  {"char", 1, true},
                       {"unsigned short", 2, false}, {"short", 2, true},
                       {"unsigned int", 4, false},   {"int", 4, true},
                       {"double", 8, false}};
const int kDouble = 8;

// The bits of the low `width` bytes of v in reverse order: the bytes in
// reverse order, each byte's bits reversed.
uint64_t ReverseBits(uint64_t v, unsigned width) {
    uint64_t r = 0;
    for (unsigned i = 0; i < width; ++i) {
        const uint8_t b = static_cast<uint8_t>(v >> (8 * i));
        const uint8_t rb = static_cast<uint8_t>(((b * 0x0202020202ULL) & 0x010884422010ULL) % 1023);
        r |= uint64_t(rb) << (8 * (width - 1 - i));
    }
    return r;
}

uint64_t Low(uint64_t v, unsigned width) {
    return width >= 8 ? v : v & ((1ULL << (8 * width)) - 1);
}

// The value a Get of type t stores from the raw bits: widened by the sign
// of the type into a 64-bit pattern (char is signed here, as on the
// platforms keel builds for).
uint64_t Widen(uint64_t raw, const Type& t) {
    if (t.width >= 8 || !t.isSigned) return raw;
    const unsigned shift = 64 - 8 * t.width;
    return static_cast<uint64_t>(static_cast<int64_t>(raw << shift) >> shift);
}

// Put and Get of type t through the file's virtual operations; the value
// travels as a 64-bit pattern.
void Put(SFM_File& f, int t, uint64_t v, int reverse) {
    switch (t) {
    case 0:
        f.Put(static_cast<unsigned long>(v), reverse);
        break;
    case 1:
        f.Put(static_cast<long>(v), reverse);
        break;
    case 2:
        f.Put(static_cast<unsigned char>(v), reverse);
        break;
    case 3:
        f.Put(static_cast<char>(v), reverse);
        break;
    case 4:
        f.Put(static_cast<unsigned short>(v), reverse);
        break;
    case 5:
        f.Put(static_cast<short>(v), reverse);
        break;
    case 6:
        f.Put(static_cast<unsigned int>(v), reverse);
        break;
    case 7:
        f.Put(static_cast<int>(v), reverse);
        break;
    default: {
        double d;
        std::memcpy(&d, &v, sizeof d);
        f.Put(d);
    }
    }
}

// Get into a variable that holds `old` first; checks that the result and
// the variable agree, and returns the variable's bits.
template <class T> uint64_t GetInto(SFM_File& f, uint64_t old, int reverse) {
    T value = static_cast<T>(old);
    const T got = f.Get(value, reverse);
    CHECK(got == value);
    return static_cast<uint64_t>(static_cast<int64_t>(value));
}
template <class T> uint64_t GetUnsigned(SFM_File& f, uint64_t old, int reverse) {
    T value = static_cast<T>(old);
    const T got = f.Get(value, reverse);
    CHECK(got == value);
    return static_cast<uint64_t>(value);
}

uint64_t Get(SFM_File& f, int t, uint64_t old, int reverse) {
    switch (t) {
    case 0:
        return GetUnsigned<unsigned long>(f, old, reverse);
    case 1:
        return GetInto<long>(f, old, reverse);
    case 2:
        return GetUnsigned<unsigned char>(f, old, reverse);
    case 3:
        return GetInto<char>(f, old, reverse);
    case 4:
        return GetUnsigned<unsigned short>(f, old, reverse);
    case 5:
        return GetInto<short>(f, old, reverse);
    case 6:
        return GetUnsigned<unsigned int>(f, old, reverse);
    case 7:
        return GetInto<int>(f, old, reverse);
    default: {
        double d;
        std::memcpy(&d, &old, sizeof d);
        const double got = f.Get(d);
        CHECK(std::memcmp(&got, &d, sizeof d) == 0);
        uint64_t bits;
        std::memcpy(&bits, &d, sizeof bits);
        return bits;
    }
    }
}

// The old value as a variable of type t holds it, as a 64-bit pattern.
uint64_t AsVariable(int t, uint64_t v) {
    if (t <= 1) return v; // a 64-bit long keeps every bit
    return Widen(Low(v, kTypes[t].width), kTypes[t]);
}

// One file and what its bytes, position and saved positions should be.
struct Model {
    std::string path;
    SFM_File* file = nullptr;
    std::string bytes;
    long pos = 0;
    std::vector<long> saved;
    int lastIo = 0; // 1 read, 2 write: a switch needs a seek between

    // A write past the end fills the gap with zeros; writing nothing there
    // leaves the file as it is.
    void WriteBytes(const std::string& b) {
        if (b.empty()) return;
        if (static_cast<size_t>(pos) > bytes.size()) bytes.resize(static_cast<size_t>(pos), '\0');
        bytes.replace(static_cast<size_t>(pos), b.size(), b);
        pos += static_cast<long>(b.size());
    }
    // The bytes a read of n delivers; moves the position past them.
    std::string ReadBytes(size_t n) {
        std::string b;
        if (static_cast<size_t>(pos) < bytes.size()) b = bytes.substr(static_cast<size_t>(pos), n);
        pos += static_cast<long>(b.size());
        return b;
    }
};

std::string Slurp(const std::string& path) {
    std::string s;
    if (FILE* f = std::fopen(path.c_str(), "rb")) {
        char buffer[4096];
        size_t n;
        while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) s.append(buffer, n);
        std::fclose(f);
    }
    return s;
}

// C streams need a seek between reading and writing: the harness puts one
// in, as a careful host does.
void Turn(Model& m, int io) {
    if (m.lastIo && m.lastIo != io) {
        CHECK(m.file->Seek(0, SFM_File::SeekCurrent) == 1);
    }
    m.lastIo = io;
}

void CheckPosition(Model& m) {
    // Asking the position reopens a temporarily closed file; leave that to
    // the next operation, so that it is the one that reopens.
    if (m.file->tempClosed) return;
    CHECK(m.file->GetPosition() == m.pos);
}

// Seeks of the three origins; a target before the start fails and leaves
// the position.
bool ModelSeek(Model& m, int offset, int origin) {
    const long base = origin == 0 ? 0 : origin == 1 ? m.pos : static_cast<long>(m.bytes.size());
    if (base + offset < 0) return false;
    m.pos = base + offset;
    m.lastIo = 0;
    return true;
}

// KEEL_FUZZ_TRACE=1 in the environment prints every step of a rerun input.
const bool g_Trace = std::getenv("KEEL_FUZZ_TRACE") != nullptr;

void Step(Input& in, Model* files, int& current) {
    Model& m = files[current];
    SFM_File& f = *m.file;
    const uint8_t op = in.Byte();
    if (g_Trace)
        std::fprintf(stderr, "file %d op %2d  pos %ld size %zu temp %d\n", current, op % 16, m.pos,
                     m.bytes.size(), f.tempClosed);
    switch (op % 16) {
    case 0:   // Put
    case 1: { // Get, into a variable that holds the operand first
        const uint8_t how = in.Byte();
        const int t = how % 9;
        const Type& type = kTypes[t];
        const int reverse = t == kDouble ? 0 : (how >> 4) & 1;
        const uint64_t v = in.Bytes(8);
        if (op % 16 == 0) {
            Turn(m, 2);
            Put(f, t, v, reverse);
            uint64_t raw = Low(v, type.width);
            if (reverse) raw = ReverseBits(raw, type.width);
            m.WriteBytes(std::string(reinterpret_cast<const char*>(&raw), type.width));
        } else {
            Turn(m, 1);
            const uint64_t old = AsVariable(t, v);
            const uint64_t got = Get(f, t, old, reverse);
            const std::string b = m.ReadBytes(type.width);
            uint64_t raw = Low(old, type.width);
            std::memcpy(&raw, b.data(), b.size());
            if (reverse) raw = ReverseBits(raw, type.width);
            CHECK(got == Widen(raw, type));
        }
        break;
    }
    case 2: { // Seek
        const int origin = in.Byte() % 3;
        const int offset = static_cast<int8_t>(in.Byte());
        const bool ok = ModelSeek(m, offset, origin);
        CHECK(f.Seek(offset, static_cast<SFM_File::SeekType>(origin)) == (ok ? 1 : 0));
        break;
    }
    case 3: { // PushPosition
        const int origin = in.Byte() % 3;
        const int offset = static_cast<int8_t>(in.Byte());
        const long at = m.pos;
        const bool ok = ModelSeek(m, offset, origin);
        if (ok) m.saved.push_back(at);
        m.lastIo = 0;
        CHECK((f.PushPosition(offset, static_cast<SFM_File::SeekType>(origin)) != 0) == ok);
        break;
    }
    case 4: // PopPosition, when something was pushed
        if (m.saved.empty()) break;
        f.PopPosition();
        m.pos = m.saved.back();
        m.saved.pop_back();
        m.lastIo = 0;
        break;
    case 5: { // Write a raw block
        const std::string block = in.Block(in.Byte() % 32);
        Turn(m, 2);
        CHECK(f.Write(block.data(), static_cast<long>(block.size())) == 1);
        m.WriteBytes(block);
        break;
    }
    case 6: { // Read a raw block
        const size_t n = in.Byte() % 32;
        Turn(m, 1);
        char buffer[32];
        const long got = f.Read(buffer, static_cast<long>(n));
        const std::string want = m.ReadBytes(n);
        CHECK(got == static_cast<long>(want.size()));
        CHECK(std::memcmp(buffer, want.data(), want.size()) == 0);
        break;
    }
    case 7: // the length, cached or measured
        CHECK(f.GetLength() == static_cast<long>(m.bytes.size()));
        m.lastIo = 0; // measuring seeks
        break;
    case 8:
        f.Flush();
        break;
    case 9: // Close, compare the bytes on disk, open again for update
        f.Close();
        CHECK(!f.IsOpen() && f.tempClosed == 0);
        CHECK(Slurp(m.path) == m.bytes);
        CHECK(f.ReOpen(SYS_StringBase(m.path.c_str()), "r+b") == 1);
        CHECK(f.GetMode() == "r+b");
        m.pos = 0;
        m.lastIo = 0;
        break;
    case 10: { // the manager closes a file for want of descriptors
        const bool before[2] = {files[0].file->tempClosed != 0, files[1].file->tempClosed != 0};
        SFM_EventData data("elsewhere");
        errno = EMFILE;
        CHECK(SFM::GetManager()->Event(SFM::FileOpenFailed, data) == SFM::Retry);
        int closed = 0;
        for (int i = 0; i < 2; ++i) {
            if (files[i].file->tempClosed && !before[i]) {
                ++closed;
                CHECK(files[i].file->GetStream() == nullptr && files[i].file->IsOpen());
                files[i].lastIo = 0;
            }
        }
        CHECK(closed == (before[0] && before[1] ? 0 : 1));
        break;
    }
    case 11:
        current = 1 - current;
        break;
    case 12: // Rewind or SeekToEnd
        if (in.Byte() & 1) {
            CHECK(f.SeekToEnd() == 1);
            ModelSeek(m, 0, 2);
        } else {
            CHECK(f.Rewind() == 1);
            ModelSeek(m, 0, 0);
        }
        break;
    case 13: // the end-of-file state (a file past its end may or may not say so)
        if (!f.tempClosed && m.pos <= static_cast<long>(m.bytes.size()))
            CHECK(f.Eof() == (m.pos == static_cast<long>(m.bytes.size()) ? 1 : 0));
        m.lastIo = 0; // Eof may measure the length, which seeks
        break;
    case 14: { // round trip: Put, seek back, Get the same type and flag
        const uint8_t how = in.Byte();
        const int t = how % 9;
        const Type& type = kTypes[t];
        const int reverse = t == kDouble ? 0 : (how >> 4) & 1;
        const uint64_t v = in.Bytes(8);
        Turn(m, 2);
        Put(f, t, v, reverse);
        uint64_t raw = Low(v, type.width);
        if (reverse) raw = ReverseBits(raw, type.width);
        m.WriteBytes(std::string(reinterpret_cast<const char*>(&raw), type.width));
        CHECK(f.Seek(-static_cast<int>(type.width), SFM_File::SeekCurrent) == 1);
        ModelSeek(m, -static_cast<int>(type.width), 1);
        const uint64_t got = Get(f, t, ~v, reverse);
        m.ReadBytes(type.width);
        m.lastIo = 1;
        // What was written comes back; 4-byte longs come back as their low
        // 32 bits, sign-extended for long.
        CHECK(got == Widen(Low(v, type.width), type));
        break;
    }
    default: { // the stream operators, which take no flag
        const int t = in.Byte() % 9;
        const uint64_t v = in.Bytes(8);
        Turn(m, 2);
        switch (t) {
        case 0:
            f << static_cast<unsigned long>(v);
            break;
        case 1:
            f << static_cast<long>(v);
            break;
        case 2:
            f << static_cast<unsigned char>(v);
            break;
        case 3:
            f << static_cast<char>(v);
            break;
        case 4:
            f << static_cast<unsigned short>(v);
            break;
        case 5:
            f << static_cast<short>(v);
            break;
        case 6:
            f << static_cast<unsigned int>(v);
            break;
        case 7:
            f << static_cast<int>(v);
            break;
        default: {
            double d;
            std::memcpy(&d, &v, sizeof d);
            f << d;
        }
        }
        const uint64_t raw = Low(v, kTypes[t].width);
        m.WriteBytes(std::string(reinterpret_cast<const char*>(&raw), kTypes[t].width));
        break;
    }
    }
    CheckPosition(m);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Process& process = TheProcess();
    Input in(data, size);
    const uint8_t flags = in.Byte();

    Model files[2];
    files[0].path = process.dir + "/a.bin";
    files[1].path = process.dir + "/b.bin";
    std::string prefill;
    if (flags & 1) prefill = in.Block(in.Byte());
    {
        FILE* f = std::fopen(files[0].path.c_str(), "wb");
        if (!f) std::abort();
        std::fwrite(prefill.data(), 1, prefill.size(), f);
        std::fclose(f);
    }
    SFM_File a(files[0].path.c_str()), b(files[1].path.c_str());
    files[0].file = &a;
    files[1].file = &b;
    CHECK(a.Open(flags & 1 ? "r+b" : "w+b") == 1);
    CHECK(b.Open("w+b") == 1);
    files[0].bytes = flags & 1 ? prefill : "";

    int current = 0;
    while (in.More()) Step(in, files, current);

    for (Model& m : files) {
        m.file->Close();
        CHECK(Slurp(m.path) == m.bytes);
    }
    return 0;
}
