// Tests of SFM_File and the manager over real files: events, lines, binary
// values, failures and their messages, temporary closing, copies.
#include "sfm_fixture.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {

const int Opening = SFM::FileOpening, Opened = SFM::FileOpened, Closed = SFM::FileClosed;

std::string Quoted(const std::string& text, const std::string& name) {
    return text + "\r\n\"" + name + "\"";
}

// Has the manager close the least recently opened open file, as it does
// when an open finds no descriptor free.
SFM::EventCode OutOfDescriptors(SFM& manager) {
    SFM_EventData data("elsewhere");
    errno = EMFILE;
    return manager.Event(SFM::FileOpenFailed, data);
}

} // namespace

using FileTest = SfmTest;

TEST_F(FileTest, LifeEventsLinesPositionsAndLength) {
    const std::string path = Path("a.txt");
    SFM_File f(path.c_str());
    EXPECT_EQ(f.GetLength(), -1); // nothing there yet, and no events
    ASSERT_EQ(f.Open("w"), 1);
    EXPECT_EQ(f.WriteLine("one") + f.PutChar('2'), 2);
    EXPECT_EQ(f.Printf("%d:%s", 3, "x"), 3L);
    EXPECT_EQ(f.GetLength(), 8);
    f.Close();
    EXPECT_EQ(Heard(), (Codes{Opening, Opened, Closed}));
    EXPECT_EQ(std::make_pair(f.GetLength(), f.GetPosition()), std::make_pair(8L, -1L));

    ASSERT_EQ(f.Open("r"), 1);
    EXPECT_EQ(Str(f.GetLine(0)), "one\n");
    EXPECT_EQ(f.GetChar(), '2');
    EXPECT_EQ(f.Eof(), 0);
    EXPECT_EQ(Str(f.GetLine(0)), "3:x");
    EXPECT_EQ(f.GetChar(), -1);
    EXPECT_EQ(f.Eof(), 1);
    // A failed push stays put; popping an empty stack does nothing.
    EXPECT_EQ(f.PushPosition(1, SFM_File::SeekBegin), 1);
    EXPECT_EQ(f.PushPosition(-10, SFM_File::SeekCurrent), 0);
    EXPECT_EQ(f.GetPosition(), 1);
    f.PopPosition(), f.PopPosition();
    EXPECT_EQ(f.GetPosition(), 8);

    SFM_File unnamed; // keeps length 0 until it is opened
    unnamed.SetName(path.c_str());
    EXPECT_EQ(unnamed.GetLength(), 0);
    EXPECT_TRUE(Asserted().empty());
    f.SetName("other"); // open: an assertion, and the name is stored anyway
    f.SetMode("w");
    f = path.c_str();
    EXPECT_EQ(Asserted(), (Texts{"sfm/sfmfile:118", "sfm/sfmfile:124", "sfm/sfmfile:110"}));
    EXPECT_EQ(std::make_pair(Str(f.GetName()), Str(f.GetMode())),
              std::make_pair(path, std::string("w")));
    f.Close();
    Heard();
    // A closed, named file is opened with "r" to be measured, silently.
    SFM_File measured(path.c_str());
    EXPECT_EQ(std::make_tuple(measured.GetLength(), measured.IsOpen(), Heard().size()),
              std::make_tuple(8L, 0, size_t(0)));

    Spill(path, std::string(600, 'x'));
    SFM_File lines(path.c_str(), "r");
    for (auto limit :
         {std::make_pair(0L, 510), {511L, 510}, {1000L, 510}, {5L, 4}, {1L, 0}, {-3L, 0}}) {
        lines.Rewind();
        EXPECT_EQ(lines.GetLine(limit.first).GetLength(), limit.second) << limit.first;
    }

    // Close unmaps a file marked as mapped, open or not.
    struct Mapped : SFM_File {
        int unmapped = 0;
        void UnmapMemory() override { ++unmapped; }
    } mappedFile;
    mappedFile.mapped = 1;
    mappedFile.Close();
    EXPECT_EQ(mappedFile.unmapped, 1);
}

TEST_F(FileTest, LengthCacheKeptInsideDroppedAtOrPastTheEnd) {
    // Every kind of write keeps the measured length while it ends inside the
    // file and drops it when it reaches the end; the next GetLength measures.
    SFM_File f(Path("len").c_str());
    Spill(Path("len"), "0123456789");
    EXPECT_EQ(f.GetLength(), 10); // measured while closed
    ASSERT_EQ(f.Open("r+"), 1);
    EXPECT_EQ(f.length, -1); // opening forgets it
    const struct {
        int at;
        std::function<void(SFM_File&)> write;
        long cached; // the cache after the write
        long measured;
    } cases[] = {
        {2, [](SFM_File& g) { g.Write("abc", 3); }, 10, 10},
        {8, [](SFM_File& g) { g.Write("ab", 2); }, -1, 10},
        {9, [](SFM_File& g) { g.PutChar('x'); }, -1, 10},
        {0, [](SFM_File& g) { g.PutChar('x'); }, 10, 10},
        {9, [](SFM_File& g) { g.Printf("%d", 12); }, -1, 11},
        {3, [](SFM_File& g) { g.Printf("%d", 12); }, 11, 11},
        {10, [](SFM_File& g) { g.WriteLine("z"); }, -1, 12},
        {1, [](SFM_File& g) { g.Put(7, 0); }, 12, 12},
    };
    for (const auto& c : cases) {
        f.GetLength(); // measured, cached
        f.Seek(c.at, SFM_File::SeekBegin);
        c.write(f);
        EXPECT_EQ(f.length, c.cached) << c.at;
        EXPECT_EQ(f.GetLength(), c.measured) << c.at;
    }
    f.Close();
    EXPECT_EQ(Slurp(Path("len")), std::string("x\x07\0\0\0", 5) + "567a1z\n");
}

TEST_F(FileTest, BinaryValuesReverseBitsNotBytes) {
    SFM_File f(Path("bin").c_str(), "w+b");
    f.Put(1, 1), f.Put(short(1), 1), f.Put(char(1), 1), f.Put(-2L, 0), f.Put(0x12345678UL, 1);
    f << static_cast<unsigned short>(0x1234) << 0.5;
    f.Flush();
    double half = 0.5;
    EXPECT_EQ(Slurp(Path("bin")),
              std::string("\0\0\0\x80\0\x80\x80\xfe\xff\xff\xff\x48\x2c\x6a\x1e\x34\x12", 17) +
                  std::string(reinterpret_cast<char*>(&half), 8));
    f.Rewind();
    int i = 0;
    short s = 0;
    char c = 0;
    long l = 0;
    unsigned long ul = 0;
    f.Get(i, 1), f.Get(s, 1), f.Get(c, 1), f.Get(l, 0), f.Get(ul, 1); // in this order
    EXPECT_EQ(std::make_tuple(i, s, c, l, ul),
              std::make_tuple(1, short(1), char(1), -2L, 0x12345678UL));
}

TEST_F(FileTest, FailuresRaiseEventsWithTheSystemsText) {
    const std::string path = Path("c");
    SFM_File f(path.c_str());
    char buffer[4];
    // Not open: nothing happens and nothing is heard.
    EXPECT_EQ(std::make_tuple(f.Read(buffer, 4), f.Write("x", 1), f.GetChar(), f.PutChar('x'),
                              f.Printf("x")),
              std::make_tuple(0L, 0, char(-1), 0, 0L));
    ASSERT_EQ(f.Open("w"), 1);
    EXPECT_EQ(std::make_pair(f.Read(buffer, 4), f.GetChar()), std::make_pair(0L, char(-1)));
    EXPECT_EQ(Str(f.GetMsg()), Quoted(std::strerror(EBADF), path));
    f.Close();
    f.SetMsg("");
    ASSERT_EQ(f.Open("r"), 1);
    EXPECT_EQ(f.Write("x", 1), 0); // the result is Write's only report
    EXPECT_EQ(std::make_pair(f.PutChar('x'), f.Printf("%s", "x")), std::make_pair(0, 0L));
    EXPECT_EQ(Str(f.GetMsg()), Quoted(std::strerror(EBADF), path));
    f.Close();
    EXPECT_EQ(Heard(),
              (Codes{Opening, Opened, 203, 203, Closed, Opening, Opened, 204, 204, Closed}));

    // The stream buffers what goes to a full device: the failure shows at Close.
    SFM_File full("/dev/full", "w");
    EXPECT_EQ(full.Write("x", 1), 1);
    full.Close();
    EXPECT_EQ(Heard(), (Codes{Opening, Opened, SFM::FileCloseFailed}));
    EXPECT_EQ(Str(full.GetMsg()), Quoted(std::strerror(ENOSPC), "/dev/full"));
    // Also when the manager closed it in between: the flush before its
    // temporary close failed, and Close reports that.
    SFM_File parked("/dev/full", "w");
    EXPECT_EQ(parked.Write("x", 1), 1);
    EXPECT_EQ(OutOfDescriptors(sfm), SFM::Retry);
    parked.Close();
    EXPECT_EQ(Heard(), (Codes{Opening, Opened, Opening, SFM::FileCloseFailed}));
    EXPECT_EQ(Str(parked.GetMsg()), Quoted(std::strerror(ENOSPC), "/dev/full"));

    // A directory that is not there; then a handler replaces the text,
    // makes the directory and asks for a retry.
    const std::string missing = Path("no/such.txt");
    SFM_File g(missing.c_str());
    EXPECT_EQ(g.Open("w"), 0);
    EXPECT_EQ(Heard(), (Codes{Opening, SFM::FileOpenFailed}));
    EXPECT_EQ(Str(g.GetMsg()), Quoted(std::strerror(ENOENT), missing));
    answer = [&](int code, SFM_EventData* data) {
        if (code != SFM::FileOpenFailed) return;
        data->SetText("made it");
        mkdir(Path("no").c_str(), 0700);
        data->SetResult(SFM::Retry);
    };
    EXPECT_EQ(g.Open("w"), 1);
    EXPECT_EQ(Heard(), (Codes{Opening, SFM::FileOpenFailed, Opened}));
    EXPECT_EQ(Str(g.GetMsg()), Quoted("made it", missing));
}

TEST_F(FileTest, TemporaryCloseAndTransparentReopen) {
    // A file comes back as it stood: content kept, at its position, reading
    // and writing as its mode allows, "x" forgotten.  Each file is written,
    // sent back two bytes, closed by the manager, then written and read.
    const struct {
        const char* mode;
        const char* before; // the file's content before the open, null: none
        const char* after;  // its content at the end
        long at;            // the position after the second write
        const char* read;   // what two bytes read at 0 give ("" when refused)
    } cases[] = {
        {"w", "old", "abcXYf", 5, ""},
        {"wb", "old", "abcXYf", 5, ""},
        {"w+", nullptr, "abcXYf", 5, "ab"},
        {"w+b", "old", "abcXYf", 5, "ab"},
        {"wx", nullptr, "abcXYf", 5, ""},
        {"wbx+", nullptr, "abcXYf", 5, "ab"},
        {"r+", "123456789", "abcXYf789", 5, "ab"},
        {"a", "12", "12abcdefXY", 10, ""},
        {"a+", "12", "12abcdefXY", 10, "12"},
    };
    for (const auto& c : cases) {
        const std::string path = Path(std::string("m") + c.mode);
        if (c.before) Spill(path, c.before);
        SFM_File f(path.c_str(), c.mode);
        f.Write("abcdef", 6);
        f.Seek(-3, SFM_File::SeekCurrent);
        EXPECT_EQ(OutOfDescriptors(sfm), SFM::Retry);
        EXPECT_EQ(std::make_tuple(f.tempClosed, f.IsOpen(), f.GetStream()),
                  std::make_tuple(1, 1, static_cast<FILE*>(nullptr)));
        EXPECT_EQ(f.Write("XY", 2), 1) << c.mode;
        EXPECT_EQ(f.GetPosition(), c.at) << c.mode;
        char two[3] = {};
        f.Rewind();
        f.Read(two, 2);
        EXPECT_EQ(std::string(two), c.read) << c.mode;
        EXPECT_EQ(Str(f.GetMode()), c.mode);
        f.Close();
        EXPECT_EQ(Slurp(path), c.after) << c.mode;
        Codes heard{Opening, Opened, Opening, Closed}; // no 201 heard
        if (!*c.read) heard.insert(heard.begin() + 3, SFM::FileReadFailed);
        EXPECT_EQ(Heard(), heard) << c.mode;
    }
    EXPECT_TRUE(Asserted().empty());

    // A file removed meanwhile is not made again: it cannot come back.
    SFM_File gone(Path("gone").c_str(), "w");
    gone.Write("ab", 2);
    OutOfDescriptors(sfm);
    std::filesystem::remove(Path("gone"));
    EXPECT_EQ(gone.Write("cd", 2), 0);
    EXPECT_EQ(std::make_pair(gone.tempClosed, std::filesystem::exists(Path("gone"))),
              std::make_pair(1, false));
    EXPECT_EQ(Asserted(), (Texts{"sfm/sfmfile:270", "sfm/sfmfile:356"}));
    gone.Close();
    Asserted(), Heard();

    // The least recently opened open file goes first; a reader comes back
    // where it stood.
    Spill(Path("r"), "xyz");
    SFM_File reader(Path("r").c_str(), "r"), writer(Path("w").c_str(), "w");
    EXPECT_EQ(reader.GetChar(), 'x');
    OutOfDescriptors(sfm);
    EXPECT_EQ(std::make_pair(reader.tempClosed, writer.tempClosed), std::make_pair(1, 0));
    EXPECT_EQ(reader.GetChar(), 'y');
    EXPECT_EQ(sfm.files.front(), &reader); // reopening moved it to the front
    OutOfDescriptors(sfm);
    EXPECT_EQ(std::make_pair(reader.tempClosed, writer.tempClosed), std::make_pair(0, 1));
    EXPECT_EQ(writer.Eof(), 1); // asserts before reopening
    EXPECT_EQ(Asserted(), (Texts{"sfm/sfmfile:300"}));
    reader.Close(), writer.Close();
    EXPECT_EQ(OutOfDescriptors(sfm), SFM::Retry); // even with nothing to close

    // FileOpening moves only the first file of that name to the front.
    SFM_File first(Path("same").c_str()), second(Path("same").c_str());
    sfm.files.push_back(sfm.files.front()); // `second` registered twice
    SFM_EventData data(Path("same").c_str());
    sfm.Event(SFM::FileOpening, data);
    EXPECT_EQ(std::make_pair(sfm.files.front(), sfm.files.back()),
              std::make_pair(&second, &second));
}

TEST_F(FileTest, CopiesShareOneStreamClosedByTheLast) {
    const size_t registered = sfm.files.size();
    {
        SFM_File f(Path("shared").c_str(), "w");
        SFM_File copy(f);
        EXPECT_EQ(copy.GetStream(), f.GetStream());
        EXPECT_EQ(sfm.files.size(), registered + 1); // copies do not register
        f.Write("ab", 2);
        f.Close(); // flushes the stream the copy still holds
        EXPECT_EQ(copy.Write("cd", 2), 1);
    }
    EXPECT_EQ(sfm.files.size(), registered); // destroyed files leave the list
    EXPECT_EQ(Slurp(Path("shared")), "abcd");
    EXPECT_EQ(Heard(), (Codes{Opening, Opened, Closed, Closed}));
}

TEST_F(FileTest, ManagerInstancesAnswersTextsAndValidity) {
    {
        SFM copy(sfm); // takes over the hooks but never the instance
        EXPECT_EQ(copy.event.next, static_cast<SCC_EventNode<SFM_EventData>*>(&hook));
    }
    EXPECT_EQ(std::make_pair(SFM::GetManager(), SFM::InstanceCount), std::make_pair(&sfm, 1L));
    hook.Attach(&sfm.event);
    {
        SFM second;
        EXPECT_EQ(SFM::Instance, &second);
    }
    EXPECT_EQ(Asserted(), (Texts{"sfm/sfmanagr:40", "sfm/sfmanagr:41"}));
    SFM::Instance = &sfm;

    // The system's text, or the resource fallback for a code it does not know.
    SFM_EventData data("one", "two");
    errno = 4000;
    sfm.Event(SFM::FileReadFailed, data);
    EXPECT_EQ(Str(data.GetText()), "Error 4000 occurred (no further info).\r\n\"one\"\r\n\"two\"");
    errno = ENOENT;
    sfm.Event(SFM::FileWriteFailed, data);
    EXPECT_EQ(
        std::make_pair(Str(data.text), data.error),
        std::make_pair(std::string(std::strerror(ENOENT)), static_cast<unsigned long>(ENOENT)));

    // The first answer should be the only one.
    SFM_EventData blank(nullptr, nullptr);
    blank.SetResult(SFM::Retry), blank.SetResult(SFM::NoAnswer), blank.SetResult(SFM::Retry);
    EXPECT_TRUE(Asserted().empty());
    blank.SetResult(SFM::Retry);
    EXPECT_EQ(std::make_pair(blank.GetResult(), Str(blank.GetText())),
              std::make_pair(SFM::Retry, std::string()));

    EXPECT_EQ(sfm.IsValid(), 0); // no message database yet
    EXPECT_EQ(Asserted(), (Texts{"sfm/sfmanagr:96", "sfm/sfmanagr:230"}));
}
