// Tests of the keel-mdb tool, run as a program: compile then read back,
// save against SFM_MessageDB::Save, section order, usage and failures.
#include <keel/SFM_MessageDB.h>
#include "tests/sfm/sfm_fixture.h"

#include <sys/wait.h>

#include <cstdio>
#include <tuple>

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
    // blanks or quotes).
    Outcome Run(const std::string& args) {
        const std::string command =
            "cd " + dir + " && " + KEEL_MDB + " " + args + " 2>" + Path("err");
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

TEST_F(MdbToolTest, SaveWritesWhatSaveWrites) {
    Spill(Path("src"), "1:Hi\n[S]\n2:yo$\n[[x]\n");
    SFM_MessageDB db(Path("src").c_str(), 0);
    db.Save(Path("lib").c_str());
    EXPECT_EQ(Run("save src tool").status, 0);
    EXPECT_EQ(Slurp(Path("tool")), Slurp(Path("lib")));
}

TEST_F(MdbToolTest, UsageAndFailures) {
    Spill(Path("src"), "1:one\n[S]\n");
    std::string many;
    for (int i = 0; i <= 32767; ++i) many += std::to_string(i) + ":x\n";
    Spill(Path("many"), many);
    const std::string usage = "usage: keel-mdb compile SOURCE OUT.mdb\n";
    const struct {
        std::string args;
        int status;
        std::string out, err; // err: its first line
    } cases[] = {
        {"", 2, "", usage},
        {"frob src", 2, "", usage},
        {"get src", 2, "", usage},
        {"get src 1x", 2, "", usage},
        {"dump src extra", 2, "", usage},
        {"get src 99", 1, "", "keel-mdb: no message 99\n"},
        {"section src T", 1, "", "keel-mdb: no section \"T\"\n"},
        {"section src s", 0, "", ""},
        {"get absent 1", 1, "", "keel-mdb: Can't open absent: No such file or directory\n"},
        {"compile src no/x.mdb", 1, "",
         "keel-mdb: Can't open no/x.mdb: No such file or directory\n"},
        {"save src /dev/full", 1, "", "keel-mdb: Can't close /dev/full: No space left on device\n"},
        {"compile many m.mdb", 1, "",
         "keel-mdb: too many records for the binary form: 32768 (at most 32767)\n"},
        {"dump src", 0, "sections (2):\n  \"\" key -1, base 0, numbers up to 1\n", ""},
    };
    for (const auto& c : cases) {
        const Outcome got = Run(c.args);
        EXPECT_EQ(got.status, c.status) << c.args;
        EXPECT_EQ(got.out.substr(0, c.out.size()), c.out) << c.args;
        EXPECT_EQ(got.err.substr(0, got.err.find('\n') + 1), c.err) << c.args;
    }
    EXPECT_FALSE(std::filesystem::exists(Path("m.mdb")));
}
