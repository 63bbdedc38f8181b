// Fault injection: far more files than the process may hold open at once,
// written and read in interleaved order under a lowered descriptor limit.
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
