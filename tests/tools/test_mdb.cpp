// Tests of the keel-mdb tool, run as a program: compile then read back,
// save against SFM_MessageDB::Save, section order, usage and failures.
#include <keel/SFM_MessageDB.h>
#include "tests/sfm/sfm_fixture.h"

#include <sys/wait.h>

#include <cstdio>
#include <tuple>

// The sanitizers' type checks open a pipe of their own, which a process
// with one descriptor free cannot: their builds skip the runs that leave
// the tool just one.
#if defined(__SANITIZE_ADDRESS__)
#define SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(undefined_behavior_sanitizer)
#define SANITIZED 1
#endif
#endif

namespace {

struct Outcome {
    int status;
    std::string out, err;
    bool operator==(const Outcome& o) const {
        return std::tie(status, out, err) == std::tie(o.status, o.out, o.err);
    }
};
std::ostream& operator<<(std::ostream& os, const Outcome& o) {
    return os << o.status << " [" << o.out << "] [" << o.err << "]";
}

typedef std::tuple<std::string, long, long> Section;
std::vector<Section> Sections(const SFM_MessageDB& db) {
    std::vector<Section> all;
    for (const auto& s : db.sections) all.emplace_back(s->name.GetString(), s->key, s->maxKey);
    return all;
}

} // namespace

class MdbToolTest : public SfmTest {
protected:
    // Runs keel-mdb in the temporary directory with `args` (words without
    // blanks or quotes), after the shell commands `before` (which may end in
    // a pipe into the tool).
    Outcome Run(const std::string& args, const std::string& before = "") {
        const std::string command =
            "cd " + dir + " && " + before + KEEL_MDB + " " + args + " 2>" + Path("err");
        FILE* pipe = popen(command.c_str(), "r");
        std::string out;
        char buffer[4096];
        for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
        const int status = pclose(pipe);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out, Slurp(Path("err"))};
    }
};

TEST_F(MdbToolTest, CompiledFileReadsBackEveryKeyAndSection) {
    // A message key taking a section's entry (-3), a header whose entry text
    // is not its name, headers sharing a base, "$" endings, and the lengths
    // around the loader's wrap at 255 and getTxt's 199 bytes.
    Spill(Path("src"),
          "0:zero\n-3:neg\n1:Hello\n[Units]\n1:mm\n2:inch$\n3:cash$$\n[[x]\n[A]\n[B]\n5:" +
              std::string(253, 'a') + "\n6:" + std::string(254, 'b') +
              "\n7:" + std::string(255, 'c') + "\n8:" + std::string(300, 'd') +
              "\n9:" + std::string(198, 'e') + "$$\nbad line\n");
    const std::string rejected = "src(16) : invalid line : \"bad line\"\n";
    EXPECT_EQ(Run("compile src out.mdb"), (Outcome{0, rejected, ""}));

    testing::internal::CaptureStdout();
    SFM_MessageDB text(Path("src").c_str(), 0), binary(Path("out.mdb").c_str());
    testing::internal::GetCapturedStdout();
    ASSERT_TRUE(binary.keys);
    EXPECT_EQ(binary.keys->size(), text.keys->size());
    for (const auto& entry : *text.keys)
        EXPECT_EQ(Str(binary.getTxt(entry.first)), Str(text.getTxt(entry.first))) << entry.first;
    // The unnamed section is the text form's alone.
    std::vector<Section> expected = Sections(text);
    expected.erase(expected.begin());
    EXPECT_EQ(Sections(binary), expected);

    // keel-mdb get gives back every key, as the library reads it.
    for (const auto& entry : *text.keys)
        EXPECT_EQ(Run("get out.mdb " + std::to_string(entry.first)),
                  (Outcome{0, Str(text.getTxt(entry.first)) + "\n", ""}))
            << entry.first;
    EXPECT_EQ(Run("get out.mdb 6").out, "cash$\n");
    EXPECT_NE(Run("dump out.mdb").out.find("cash$"), std::string::npos);
    const std::string units = "1:mm\n2:inch\n3:cash$\n";
    EXPECT_EQ(Run("section out.mdb UNITS"), (Outcome{0, units, ""}));
    EXPECT_EQ(Run("section src units"), (Outcome{0, rejected + units, ""}));
}

TEST_F(MdbToolTest, SectionListsEveryMessageOfItsHeader) {
    // Negative numbers too; a line whose key an earlier line took reads as
    // that line and is left out.  The binary form keeps no trace of the
    // header a message stood under: it lists from number -1.
    Spill(Path("src"), "1:one\n[S]\n-1:minus one\n-3:minus three\n0:zero\n-2:taken\n2:two\n"
                       "[T]\n-1:t minus one\n1:t one\n");
    ASSERT_EQ(Run("compile src out.mdb").status, 0);
    const struct {
        std::string args, out;
    } cases[] = {
        {"section src s", "-3:minus three\n-1:minus one\n0:zero\n2:two\n"},
        {"section out.mdb S", "-1:minus one\n0:zero\n2:two\n"},
        {"section src T", "-1:t minus one\n1:t one\n"},
        {"section out.mdb t", "-1:t minus one\n1:t one\n"},
        {"section src \"\"", "1:one\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(Run(c.args), (Outcome{0, c.out, ""})) << c.args;
}

TEST_F(MdbToolTest, SaveWritesWhatSaveWritesAlsoShortOfDescriptors) {
    std::string source = "1:Hi\n[S]\n2:yo$\n[[x]\n";
    for (int i = 3; i < 60; ++i) source += std::to_string(i) + ":text " + std::to_string(i) + "\n";
    Spill(Path("src"), source);
    SFM_MessageDB db(Path("src").c_str(), 0);
    db.Save(Path("lib").c_str());
    EXPECT_EQ(Run("save src tool").status, 0);
    EXPECT_TRUE(Slurp(Path("tool")) == Slurp(Path("lib")));
#ifdef SANITIZED
    GTEST_SKIP() << "a sanitized tool needs more than one free descriptor";
#endif
    // One descriptor left to the tool: its source and its output take turns.
    const std::string oneFree =
        "sh -c 'exec 3<&- 4<&- 5<&- 6<&- 7<&- 8<&- 9<&-; ulimit -n 4; exec \"$0\" \"$@\"' ";
    EXPECT_EQ(Run("save src tight", oneFree), (Outcome{0, "", ""}));
    EXPECT_TRUE(Slurp(Path("tight")) == Slurp(Path("lib")));
}

TEST_F(MdbToolTest, UsageAndFailures) {
    Spill(Path("src"), "1:one\n[S]\n");
    Spill(Path("wrap"), "2147483646:x\n[S]\n"); // S's base wraps to -2147483648
    std::filesystem::create_symlink("src", Path("link"));
    std::string many;
    for (int i = 0; i <= 32767; ++i) many += std::to_string(i) + ":x\n";
    Spill(Path("many"), many);
    const std::string usage = "usage: keel-mdb compile SOURCE OUT.mdb\n";
    const std::string tooMany = "keel-mdb: too many records for the binary form: 32768 (at most "
                                "32767)\n";
    const std::string pipe = ": not a seekable file (a pipe?); ";
    const struct {
        std::string args;
        int status;
        std::string out, err; // out: a part of it; err: its first line
        std::string before = "";
    } cases[] = {
        {"", 2, "", usage},
        {"frob src", 2, "", usage},
        {"get src", 2, "", usage},
        {"--help", 0, usage, ""},
        {"-h", 0, usage, ""},
        {"--help src", 2, "", usage},
        {"get src 1x", 2, "", "keel-mdb: bad key \"1x\": a decimal 32-bit number\n"},
        {"get src 0x10", 2, "", "keel-mdb: bad key \"0x10\": a decimal 32-bit number\n"},
        {"get src 2147483648", 2, "",
         "keel-mdb: bad key \"2147483648\": a decimal 32-bit number\n"},
        {"dump src extra", 2, "", usage},
        {"get src 99", 1, "", "keel-mdb: no message 99\n"},
        {"section src T", 1, "", "keel-mdb: no section \"T\"\n"},
        {"section src s", 0, "", ""},
        {"get absent 1", 1, "", "keel-mdb: Can't open absent: No such file or directory\n"},
        {"compile src no/x.mdb", 1, "",
         "keel-mdb: Can't open no/x.mdb: No such file or directory\n"},
        {"save src /dev/full", 1, "", "keel-mdb: Can't close /dev/full: No space left on device\n"},
        {"compile many m.mdb", 1, "", tooMany},
        {"save many m.out", 1, "", tooMany},
        {"save src src", 1, "",
         "keel-mdb: src and src are the same file; writing would "
         "destroy the input\n"},
        {"compile link ./src", 1, "",
         "keel-mdb: link and ./src are the same file; writing would "
         "destroy the input\n"},
        {"dump /dev/stdin", 1, "",
         "keel-mdb: /dev/stdin" + pipe + "the database is read on demand, with seeks\n",
         "echo 1:x | "},
        {"save src /dev/stdout", 1, "",
         "keel-mdb: /dev/stdout" + pipe + "save writes with seeks\n"},
        {"dump src", 0, "sections (2):\n  \"\" key -1, base 0, numbers up to 1\n", ""},
        {"dump wrap", 0, "\"S\" key 2147483647, base -2147483648, numbers up to 0\n", ""},
    };
    for (const auto& c : cases) {
        const Outcome got = Run(c.args, c.before);
        EXPECT_EQ(got.status, c.status) << c.args;
        EXPECT_NE(got.out.find(c.out), std::string::npos) << c.args << ": " << got.out;
        EXPECT_EQ(got.err.substr(0, got.err.find('\n') + 1), c.err) << c.args;
    }
    EXPECT_FALSE(std::filesystem::exists(Path("m.mdb")));
    EXPECT_FALSE(std::filesystem::exists(Path("m.out")));
    EXPECT_EQ(Slurp(Path("src")), "1:one\n[S]\n");
}
