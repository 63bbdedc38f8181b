// Tests of SFM_FilePath: parsing, the setters' own parses, defaults and the
// added separator.
#include <keel/SFM_FilePath.h>
#include <keel/SYS_CodePage.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

typedef std::vector<std::string> Parts;

Parts Split(const SFM_FilePath& p) {
    return {p.basePath.GetString(), p.relPath.GetString(), p.fileName.GetString(),
            p.fileExtension.GetString()};
}

std::string Full(const SYS_StringBase& s) { return s.GetString(); }

} // namespace

TEST(FilePath, ParsesEveryKindOfPath) {
    struct Case {
        const char* path;
        Parts parts; // base, directory, name, extension
    } cases[] = {
        {"C:\\work\\data\\file.txt", {"C:", "\\work\\data\\", "file", ".txt"}},
        {"\\\\srv\\share\\dir\\a.b.c", {"\\\\srv\\share\\", "dir\\", "a.b", ".c"}},
        {"//srv/share/x", {"//srv/share/", "", "x", ""}},
        {"\\\\srv", {"\\\\srv", "", "", ""}},
        {"\\\\srv\\share", {"\\\\srv\\share", "", "", ""}},
        {"\\/x", {"", "\\/", "x", ""}}, // two different separators are no network root
        {"file", {"", "", "file", ""}},
        {".profile", {"", "", "", ".profile"}},
        {"dir/", {"", "dir/", "", ""}},
        {"a\\b/c.d", {"", "a\\b/", "c", ".d"}},
        {"ab:cd", {"ab:", "", "cd", ""}},
        {"C:x:\\y", {"C:", "x:\\", "y", ""}},
        {"", {"", "", "", ""}},
    };
    for (const Case& c : cases) {
        SFM_FilePath p(c.path);
        EXPECT_EQ(Split(p), c.parts) << c.path;
        EXPECT_EQ(Full(p.fullPath), c.path);
    }

    // Under a double-byte code page a trail byte equal to a separator or a
    // dot belongs to its character.
    const int previous = SYS_SetCodePage(932);
    SFM_FilePath dbcs("d\\\x95\x5c.txt");
    SYS_SetCodePage(previous);
    EXPECT_EQ(Split(dbcs), (Parts{"", "d\\", "\x95\x5c", ".txt"}));
}

TEST(FilePath, SettersTakeTheirPartFromTheirOwnParse) {
    struct Case {
        const char* start;
        SYS_StringBase (SFM_FilePath::*set)(const char*);
        const char* value;
        const char* result;
    } cases[] = {
        {"C:\\x\\f.txt", &SFM_FilePath::SetBasePath, "D:\\ignored", "D:\\x\\f.txt"},
        {"C:\\x\\f.txt", &SFM_FilePath::SetRelPath, "\\y\\z\\", "C:\\y\\z\\f.txt"},
        {"C:\\x\\f.txt", &SFM_FilePath::SetFileDirectory, "E:\\work", "E:\\f.txt"},
        {"C:\\x\\f.txt", &SFM_FilePath::SetFileName, "g.ignored", "C:\\x\\g.txt"},
        {"f.txt", &SFM_FilePath::SetFileExtension, "", "f."},
        {"f.txt", &SFM_FilePath::SetFileExtension, "a.b", "f.b"},
        {"f.txt", &SFM_FilePath::SetFileExtension, "doc", "f.doc"},
        {"f.txt", &SFM_FilePath::SetFileNameExt, "readme", "readme.readme"},
        {"d\\f.txt", &SFM_FilePath::SetFileNameExt, "g.h", "d\\g.h"},
        {"x", &SFM_FilePath::SetDefault, "C:\\d\\n.e", "C:\\d\\x.e"},
        {"sub\\f.txt", &SFM_FilePath::SetDefPath, "C:\\data", "C:\\data\\sub\\f.txt"},
        {"sub\\f.txt", &SFM_FilePath::SetDefPath, "C:\\data\\", "C:\\data\\sub\\f.txt"},
        {"f.txt", &SFM_FilePath::SetDefPath, "C:", "C:f.txt"},
        {"D:\\x.txt", &SFM_FilePath::SetDefPath, "C:\\data", "D:\\x.txt"},
    };
    for (const Case& c : cases) {
        SFM_FilePath p(c.start);
        EXPECT_EQ(Full((p.*c.set)(c.value)), c.result) << c.start << " / " << c.value;
        EXPECT_EQ(Full(p.fullPath), Full(p.basePath + p.relPath + p.fileName + p.fileExtension));
    }
    // The two-argument forms assign the path first.
    SFM_FilePath p("ignored.x");
    EXPECT_EQ(Full(p.SetRelPath("C:\\a\\f.txt", "b\\")), "C:b\\f.txt");
    EXPECT_EQ(Full(p.SetFileExtension("g.x", nullptr)), "g.");
}

TEST(FilePath, GettersAssignFirstAndSeparatorsAreAdded) {
    SFM_FilePath p;
    EXPECT_EQ(Full(p.GetFileName("C:\\work")), "work");
    EXPECT_EQ(Full(p.GetFileDirectory()), "C:\\");
    p.AddSeparator();
    EXPECT_EQ(Split(p), (Parts{"C:", "\\work\\", "", ""}));
    p.AddSeparator(); // already there
    SFM_FilePath slash("dir/"), empty;
    slash.AddSeparator(), empty.AddSeparator();
    EXPECT_EQ((Parts{Full(p), Full(slash), Full(empty = nullptr)}),
              (Parts{"C:\\work\\", "dir/\\", ""}));

    SFM_FilePath::DefaultSeparator = 1;
    SFM_FilePath q("C:\\work"), r("f");
    q.AddSeparator(), r.SetDefPath("root");
    SFM_FilePath::DefaultSeparator = 7; // outside the separators: the backslash
    SFM_FilePath s("x");
    s.AddSeparator();
    SFM_FilePath::DefaultSeparator = 0;
    EXPECT_EQ((Parts{Full(q), Full(r), Full(s)}), (Parts{"C:\\work/", "root/f", "x\\"}));
}
