// Tests of SFM_MessageDB: the text source rules, iterators, the binary
// loader (also on every truncation of a valid file), Save byte for byte,
// and SFM::Initiate.
#include <keel/SFM_MessageDB.h>
#include "sfm_fixture.h"

namespace {

// Little-endian bytes of v.
std::string Le(long v, int bytes) {
    std::string s;
    for (int i = 0; i < bytes; ++i) s += static_cast<char>(v >> (8 * i));
    return s;
}
std::string KeyText(long key) {
    std::string s = std::to_string(key);
    return s + std::string(20 - s.size(), '\0');
}
// The first count places the data area, the second is the number of records.
std::string Header(long count, long records) {
    return Le(0, 2) + Le(count, 2) + Le(records, 2) + Le(0, 8);
}
std::string Header(long count) { return Header(count, count); }
// A record as Save writes it (36 bytes) and as the loader reads it (42).
std::string Saved(int seq, int section, long offset, long length, long maxKey, long key) {
    return Le(seq, 2) + Le(section, 1) + Le(0, 1) + Le(offset, 4) + Le(length, 4) + Le(maxKey, 4) +
           KeyText(key);
}
std::string Loaded(int seq, int section, long offset, long length, long maxKey, long key) {
    return Le(seq, 2) + Le(section, 4) + Le(0, 4) + Le(offset, 4) + Le(length, 4) + Le(maxKey, 4) +
           KeyText(key);
}

// Every text of a section from number `start` on, through both increments.
Texts Walk(SFM_MessageDB& db, const char* section, long start) {
    SFM_MessageDB::SectionIterator it(&db, section, start);
    Texts texts;
    if (!it.IsEmpty()) {
        const std::string at = std::to_string(it.GetPosition()) + "=";
        texts.push_back(at + it++.GetString());
    }
    for (; !it.IsEmpty(); ++it) texts.push_back(std::to_string(it.GetPosition()) + "=" + Str(it));
    return texts;
}

} // namespace

using MessageDbTest = SfmTest;

TEST_F(MessageDbTest, TextSourceRulesLineByLine) {
    const std::string src = Path("src");
    const std::string longText(300, 'L');
    Spill(src, "1:Hello\n[Units]\n1:mm\n2:inch$\n 3:blank\n:nokey\nnocolon\n[bad]x\n; note\n\n"
               "\t3:tabbed  \r\n1:duplicate\n[A]\n[B]\n5:five\n12abc:x\n-3:neg\n9:" +
                   longText + "\n");
    testing::internal::CaptureStdout();
    SFM_MessageDB db(src.c_str(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              src + "(5) : leading blanks are not allowed\n" + src +
                  "(6) : invalid line : \":nokey\"\n" + src + "(7) : invalid line : \"nocolon\"\n" +
                  src + "(8) : invalid section : \"[bad]x\"\n");

    const std::pair<long, std::string> texts[] = {
        {1, "Hello"},  {4, "mm"},    {5, "inch"},
        {6, "tabbed"}, {11, "five"}, {18, "x"},
        {3, "neg"},    {0, ""},      {15, longText.substr(0, 44)},
        {-3, "Units"}};
    for (const auto& t : texts) EXPECT_EQ(Str(db.getTxt(t.first)), t.second) << t.first;

    // Sections: name, key, maxKey; the unnamed one first.  A and B share a
    // base, so B's own entry is dropped as a duplicate of A's.
    std::vector<std::tuple<std::string, long, long>> sections;
    for (const auto& s : db.sections) sections.emplace_back(s->name.GetString(), s->key, s->maxKey);
    EXPECT_EQ(sections, (std::vector<std::tuple<std::string, long, long>>{
                            {"", -1, 1}, {"Units", 2, 3}, {"A", 5, 0}, {"B", 5, 12}}));
    EXPECT_EQ(db.keys->at(-6).offset, 94); // after the "[" of line 13
    EXPECT_EQ(db.tableSize, 18 + 18 / 4);

    EXPECT_EQ(Walk(db, "units", 1), (Texts{"1=mm", "2=inch", "3=tabbed"}));
    EXPECT_EQ(Walk(db, "B", 6), (Texts{"9=" + longText.substr(0, 44), "12=x"}));
    EXPECT_EQ(Walk(db, "missing", 1), Texts{});
    // A start keeps its low 32 bits, as keys do: LONG_MAX starts as -1 would.
    EXPECT_EQ(Walk(db, "Units", LONG_MAX), Walk(db, "Units", -1));
    EXPECT_EQ(Walk(db, "Units", LONG_MIN), Walk(db, "Units", 0));
    SFM_MessageDB::SectionIterator it(&db, "Units", 3), other(&db, "Units", 1);
    EXPECT_EQ(it.GetPosition(), 3);
    EXPECT_EQ(Str(++it), "");
    it = other;
    EXPECT_EQ(Str(it), "mm");
    it = 2;
    EXPECT_EQ(Str(it), "inch");
    EXPECT_TRUE(Asserted().empty());

    SFM_MessageDB::SectionIterator orphan(nullptr, "Units", 1);
    orphan = it;
    EXPECT_EQ(Asserted(), (Texts{"sfm/sfmmsgdb:60", "sfm/sfmmsgdb:70", "sfm/sfmmsgdb:80"}));
}

TEST_F(MessageDbTest, SaveWritesThirtySixByteRecords) {
    Spill(Path("src"), "1:Hi\n[S]\n2:yo$\n[[x]\n");
    SFM_MessageDB db(Path("src").c_str(), 0);
    db.Save(Path("out").c_str());
    // Sorted by key: the sections (-7 reads "[", which names no section), then 1 and 5.
    const std::string expected = Header(4) + Saved(0, 1, 0, 2, 0, 6) + Saved(1, 1, 2, 2, 2, 2) +
                                 Saved(2, 0, 4, 3, 2, 1) + Saved(3, 0, 7, 4, 2, 5) +
                                 std::string("[\0S\0Hi\0yo$\0", 11);
    EXPECT_EQ(Slurp(Path("out")), expected);
    EXPECT_EQ(Asserted(), (Texts{"sfm/sfmmsgdb:250"}));

    SFM_MessageDB empty(Path("absent").c_str(), 0);
    empty.Save(Path("empty").c_str());
    EXPECT_EQ(std::make_pair(empty.keys.get(), Str(empty.getTxt(1))),
              std::make_pair(static_cast<SFM_MessageDB::KeyMap*>(nullptr), std::string()));
    EXPECT_EQ(Slurp(Path("empty")), std::string(36, '\0'));
}

TEST_F(MessageDbTest, BinaryLoaderReadsFortyTwoByteRecordsAndTrustsNothing) {
    const std::string data = std::string("Units\0mm\0inch$\0", 15) + "lost";
    const std::string file = Header(4) + Loaded(0, 1, 0, 6, 2, 2) + Loaded(1, 0, 6, 3, 2, 4) +
                             Loaded(2, 0, 9, 6, 0, 5) + Loaded(3, 0, 15, 255, 0, 9) + data;
    const std::string path = Path("m.mdb");
    Spill(path, file);
    {
        SFM_MessageDB db(path.c_str());
        EXPECT_EQ(db.GetSectionBase("UNITS"), 3);
        EXPECT_EQ(Walk(db, "units", 1), (Texts{"1=mm", "2=inch"}));
        EXPECT_EQ(Str(db.getTxt(9)), ""); // 255 wraps to 0
        EXPECT_EQ(Str(db.getTxt(-3)), "Units");
        EXPECT_EQ(db.tableSize, 5);
    }
    // Every truncation loads without fault and keeps what it could read.
    for (size_t cut = 0; cut < file.size(); ++cut) {
        Spill(path, file.substr(0, cut));
        SFM_MessageDB db(path.c_str());
        for (long key : {-3L, 4L, 5L, 9L}) db.getTxt(key);
        if (cut >= 14 + 4 * 42 + 9) {
            EXPECT_EQ(Str(db.getTxt(4)), "mm");
        }
    }
    // The data area follows as many records as the first count says; the
    // second says how many are read.
    Spill(path, Header(2, 1) + Loaded(0, 0, 0, 3, 0, 7) + std::string(42, '\0') + "ab");
    {
        SFM_MessageDB db(path.c_str());
        EXPECT_EQ(std::make_pair(Str(db.getTxt(7)), db.keys->size()),
                  std::make_pair(std::string("ab"), size_t(1)));
    }
    // Counts larger than the file, negative counts, offsets outside it.
    const std::string corrupt[] = {Header(0x7fff) + Loaded(0, 1, -50, 0, 1, 1),
                                   Header(-1) + Loaded(0, 0, 0, 3, 0, 1) + "ab",
                                   Header(1) + Loaded(0, 1, 1 << 30, 1 << 30, 0, 7)};
    for (const std::string& bytes : corrupt) {
        Spill(path, bytes);
        SFM_MessageDB db(path.c_str());
        EXPECT_EQ(Str(db.getTxt(1)), "");
        EXPECT_LE(db.keys->size(), 1u);
    }
}

TEST_F(MessageDbTest, InitiateChoosesTheFormOnce) {
    sfm.Initiate(nullptr);
    EXPECT_EQ(Asserted(), (Texts{"sfm/sfmanagr:212"}));
    Spill(Path("msg.txt"), "7:seven\n");
    Spill(Path("msg.MDB"), Header(1) + Loaded(0, 0, 0, 4, 0, 7) + std::string("bin\0", 4));
    sfm.Initiate(Path("msg.MDB").c_str());
    SFM_MessageDB* first = sfm.messages.get();
    sfm.Initiate(Path("msg.txt").c_str());
    EXPECT_EQ(sfm.messages.get(), first);
    EXPECT_EQ(Str(sfm.messages->getTxt(7)), "bin");
    EXPECT_EQ(sfm.IsValid(), 1);
    {
        SFM copy(sfm); // shares the database
        SFM_MessageDB dbCopy(*sfm.messages);
        EXPECT_EQ(Str(dbCopy.getTxt(7)), "bin");
    }
    EXPECT_EQ(Str(sfm.messages->getTxt(7)), "bin");

    SFM_MessageDB text(Path("msg.txt").c_str(), 0);
    EXPECT_EQ(Str(text.getTxt(7)), "seven");
}
