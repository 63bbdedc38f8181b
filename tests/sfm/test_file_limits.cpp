// Fault injection: far more files than the process may hold open at once,
// written and read in interleaved order under a lowered descriptor limit;
// files written with seeks and a message database saved while the files
// take turns on the last free descriptor, compared byte for byte with the
// same work done without the limit.
#include <keel/SFM_MessageDB.h>
#include "sfm_fixture.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>

namespace {

// Lowers the soft limit on open descriptors for its lifetime.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t soft) {
        getrlimit(RLIMIT_NOFILE, &saved);
        rlimit lowered = saved;
        lowered.rlim_cur = soft;
        ok = setrlimit(RLIMIT_NOFILE, &lowered) == 0;
    }
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &saved); }
    bool ok;

private:
    rlimit saved;
};

// The number of descriptors in use (the listing's own among them).
int DescriptorsInUse() {
    const std::filesystem::directory_iterator fds("/proc/self/fd");
    return static_cast<int>(std::distance(begin(fds), end(fds)));
}

// The number the next descriptor would get.
int LowestFreeDescriptor() {
    const int fd = dup(0);
    close(fd);
    return fd;
}

std::string Content(int file, int rounds) {
    std::string s;
    for (int r = 0; r < rounds; ++r)
        s += "<" + std::to_string(file) + "." + std::to_string(r) + ">";
    return s;
}

// Writes `count` files in `where` a round at a time, each round seeking
// back and forth: a record appended at the end, a header patched at the
// start, a byte placed in the middle and read back where the mode allows.
// Returns what was read.
std::string SeekingWork(const std::string& where, int count, int rounds) {
    static const char* const modes[] = {"w", "w+b", "wx", "r+b", "a", "a+"};
    auto path = [&](int i) { return where + "/" + std::to_string(i); };
    for (int i = 0; i < count; ++i) // before any file holds the free descriptor
        if (modes[i % 6][0] != 'w') std::ofstream(path(i)) << "existing " << i << "\n";
    std::vector<std::unique_ptr<SFM_File>> files;
    for (int i = 0; i < count; ++i) files.emplace_back(new SFM_File(path(i).c_str(), modes[i % 6]));
    std::string read;
    for (int r = 0; r < rounds; ++r)
        for (int i = 0; i < count; ++i) {
            SFM_File& f = *files[i];
            f.SeekToEnd();
            f.Printf("<%d.%d>", i, r);
            f.Rewind();
            f.Put(r, 0);
            f.PushPosition(4 + r % 3, SFM_File::SeekBegin);
            f.PutChar(static_cast<char>('a' + r));
            f.PopPosition();
            char back[5] = {};
            f.Read(back, 4);
            read.append(back, 4);
        }
    for (auto& f : files) f.reset();
    return read;
}

} // namespace

using FileLimitTest = SfmTest;

TEST_F(FileLimitTest, NoByteIsLostBeyondTheDescriptorLimit) {
    const int limit = DescriptorsInUse() + 6;
    const int count = 10 * limit, rounds = 5;
    std::vector<std::unique_ptr<SFM_File>> files;
    // The undefined-behaviour checker needs a descriptor to vet a type it
    // has not seen yet: let it see a stream released before none is left.
    SFM_File(Path("warm-up").c_str(), "w").Close();
    {
        DescriptorLimit lowered(limit);
        ASSERT_TRUE(lowered.ok);
        for (int i = 0; i < count; ++i) {
            files.emplace_back(new SFM_File(Path(std::to_string(i)).c_str()));
            ASSERT_EQ(files.back()->Open(i % 2 ? "w" : "w+b"), 1) << i;
        }
        for (int r = 0; r < rounds; ++r)
            for (int i = 0; i < count; ++i) {
                const std::string chunk = Content(i, r + 1).substr(Content(i, r).size());
                ASSERT_EQ(files[i]->Write(chunk.data(), static_cast<long>(chunk.size())), 1);
            }
        for (auto& f : files) f->Close();
    }
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(Slurp(Path(std::to_string(i))), Content(i, rounds)) << i;

    // Reading back in interleaved order, a few bytes at a time.
    std::vector<std::string> read(static_cast<size_t>(count));
    {
        DescriptorLimit lowered(limit);
        ASSERT_TRUE(lowered.ok);
        for (int i = 0; i < count; ++i) ASSERT_EQ(files[i]->Open("r"), 1) << i;
        for (bool more = true; more;) {
            more = false;
            for (int i = 0; i < count; ++i) {
                char chunk[3];
                const long n = files[i]->Read(chunk, sizeof chunk);
                read[i].append(chunk, static_cast<size_t>(n));
                more = more || n > 0;
            }
        }
        for (auto& f : files) f->Close();
    }
    for (int i = 0; i < count; ++i) EXPECT_EQ(read[i], Content(i, rounds)) << i;

    // The host heard openings, reopenings and closings, never a failure.
    const std::vector<int> heard = Heard();
    EXPECT_EQ(std::count(heard.begin(), heard.end(), SFM::FileOpenFailed), 0);
    EXPECT_GT(std::count(heard.begin(), heard.end(), SFM::FileOpening), 4 * count);
    EXPECT_TRUE(Asserted().empty());
}

TEST_F(FileLimitTest, WithNothingLeftToCloseAnOpenFailsAndAReopenWaits) {
    const std::string held = Path("held"), other = Path("other");
    SFM_File h(held.c_str(), "w");
    h.Write("ab", 2);
    SFM_File().Read(nullptr, 1); // lets the assertion hook be vetted while descriptors are free
    Asserted();
    SFM_EventData data;
    errno = EMFILE;
    sfm.Event(SFM::FileOpenFailed, data); // closes `h` for the time being
    Heard();
    {
        DescriptorLimit none(LowestFreeDescriptor());
        SFM_File f(other.c_str());
        EXPECT_EQ(f.Open("w"), 0);
        EXPECT_EQ(std::string(f.GetMsg()), std::strerror(EMFILE) + ("\r\n\"" + other + "\""));
        EXPECT_EQ(h.Write("cd", 2), 0); // cannot come back yet; stays closed for now
        EXPECT_EQ(h.tempClosed, 1);
    }
    EXPECT_EQ(Asserted(), (Texts{"sfm/sfmfile:270", "sfm/sfmfile:356"}));
    EXPECT_EQ(h.Write("cd", 2), 1);
    h.Close();
    EXPECT_EQ(Slurp(held), "abcd");
    EXPECT_EQ(Heard(),
              (Codes{SFM::FileOpening, SFM::FileOpening, SFM::FileOpening, SFM::FileClosed}));
}

TEST_F(FileLimitTest, WritesWithSeeksLandWhereTheyWouldWithoutTheLimit) {
    // Files taking turns on a single free descriptor, each closed and
    // reopened at nearly every step; "x" modes and update modes among them.
    const int count = 12, rounds = 6;
    std::filesystem::create_directory(Path("free"));
    std::filesystem::create_directory(Path("tight"));
    const std::string expected = SeekingWork(Path("free"), count, rounds);
    std::string got;
    {
        DescriptorLimit lowered(LowestFreeDescriptor() + 1);
        ASSERT_TRUE(lowered.ok);
        got = SeekingWork(Path("tight"), count, rounds);
    }
    EXPECT_EQ(got, expected);
    for (int i = 0; i < count; ++i) {
        const std::string name = "/" + std::to_string(i);
        EXPECT_EQ(Slurp(Path("tight") + name), Slurp(Path("free") + name)) << i;
    }
    EXPECT_TRUE(Asserted().empty());
    const std::vector<int> heard = Heard();
    EXPECT_EQ(std::count(heard.begin(), heard.end(), SFM::FileOpenFailed), 0);
    // Reads refused by the "w" and "a" files, the same in both runs.
    EXPECT_EQ(std::count(heard.begin(), heard.end(), SFM::FileReadFailed),
              2 * (count / 6) * 3 * rounds);
}

TEST_F(FileLimitTest, SaveWhileOtherFilesTakeTurnsWritesTheSameBytes) {
    // A large database saved between rounds of writes to other files, with
    // one descriptor free: the source, the saved file and the others close
    // and reopen each other all the time.
    std::string source;
    for (int s = 0; s < 40; ++s) {
        source += "[Section " + std::to_string(s) + "]\n";
        for (int m = 1; m <= 60; ++m)
            source += std::to_string(m) + ":text " + std::string(static_cast<size_t>(m), 'x') +
                      " of " + std::to_string(s) + "\n";
    }
    Spill(Path("src"), source);
    SFM_MessageDB db(Path("src").c_str(), 0);
    ASSERT_GT(db.keys->size(), 2000u);

    auto work = [&](const std::string& tag) {
        std::vector<std::unique_ptr<SFM_File>> others;
        for (int i = 0; i < 4; ++i)
            others.emplace_back(
                new SFM_File(Path(tag + "other" + std::to_string(i)).c_str(), "w+b"));
        for (int round = 0; round < 3; ++round) {
            for (auto& f : others) {
                f->SeekToEnd();
                f->Printf("round %d\n", round);
                f->Rewind();
                f->Put(round, 0);
            }
            db.Save(Path(tag + "saved" + std::to_string(round)).c_str());
        }
    };
    work("free-");
    {
        DescriptorLimit lowered(LowestFreeDescriptor() + 1);
        ASSERT_TRUE(lowered.ok);
        work("tight-");
    }
    for (const char* name : {"saved0", "saved1", "saved2", "other0", "other1", "other3"}) {
        const std::string free = Slurp(Path(std::string("free-") + name));
        EXPECT_TRUE(Slurp(Path(std::string("tight-") + name)) == free) << name;
        EXPECT_GT(free.size(), 20u) << name;
    }
    EXPECT_TRUE(Asserted().empty());
}
