// Tests of SFM_File over real files: events, lines, binary values, failures
// and their messages, temporary closing, copies.
#include "sfm_fixture.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {

typedef std::vector<int> Codes;
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

TEST_F(FileTest, LifeEventsLinesAndLength) {
    const std::string path = Path("a.txt");
    SFM_File f(path.c_str());
    EXPECT_EQ(f.GetLength(), -1); // nothing there yet, and no events
    ASSERT_EQ(f.Open("w"), 1);
    EXPECT_EQ(f.WriteLine("one"), 1);
    EXPECT_EQ(f.Printf("%d:%s\n", 2, "two"), 6L);
    EXPECT_EQ(f.PutChar('3'), 1);
    EXPECT_EQ(f.GetLength(), 11);
    f.Close();
    EXPECT_EQ(Heard(), (Codes{Opening, Opened, Closed}));
    EXPECT_EQ(f.GetLength(), 11); // cached
    EXPECT_EQ(f.GetPosition(), -1);

    ASSERT_EQ(f.Open("r"), 1);
    EXPECT_STREQ(f.GetLine(0), "one\n");
    EXPECT_STREQ(f.GetLine(0), "2:two\n");
    EXPECT_EQ(f.Eof(), 0);
    EXPECT_EQ(f.GetChar(), '3');
    EXPECT_EQ(f.GetChar(), -1);
    EXPECT_EQ(f.Eof(), 1);
    EXPECT_STREQ(f.GetLine(0), "");

    // The position stack: a failed push stays put, popping an empty stack
    // does nothing.
    EXPECT_EQ(f.PushPosition(1, SFM_File::SeekBegin), 1);
    EXPECT_EQ(f.PushPosition(-10, SFM_File::SeekCurrent), 0);
    EXPECT_EQ(f.GetPosition(), 1);
    f.PopPosition();
    EXPECT_EQ(f.GetPosition(), 11);
    f.PopPosition();
    EXPECT_EQ(f.GetPosition(), 11);

    // A file built without a name keeps length 0 until it is opened.
    SFM_File unnamed;
    unnamed.SetName(path.c_str());
    EXPECT_EQ(unnamed.GetLength(), 0);
    EXPECT_TRUE(Sites().empty());
    f.SetName("other"); // open: an assertion, and the name is stored anyway
    EXPECT_EQ(Sites(), (std::vector<std::string>{"sfm/sfmfile:118"}));
}

TEST_F(FileTest, GetLineLimits) {
    Spill(Path("long"), std::string(600, 'x') + "\n");
    SFM_File f(Path("long").c_str(), "r");
    const std::pair<long, int> limits[] = {{0, 510}, {511, 510}, {1000, 510},
                                           {5, 4},   {1, 0},     {-3, 0}};
    for (const auto& limit : limits) {
        f.Rewind();
        EXPECT_EQ(f.GetLine(limit.first).GetLength(), limit.second) << limit.first;
    }
}

TEST_F(FileTest, BinaryValuesReverseBitsNotBytes) {
    const std::string path = Path("bin");
    {
        SFM_File f(path.c_str(), "w+b");
        f.Put(1, 1);
        f.Put(static_cast<short>(1), 1);
        f.Put(static_cast<char>(1), 1);
        f.Put(-2L, 0);
        f.Put(0x12345678UL, 1);
        f << static_cast<unsigned short>(0x1234) << 0.5;
        f.Rewind();
        int i = 0;
        short s = 0;
        char c = 0;
        long l = 0;
        unsigned long ul = 0;
        unsigned short us = 0;
        double d = 0;
        f.Get(i, 1), f.Get(s, 1), f.Get(c, 1), f.Get(l, 0), f.Get(ul, 1);
        f >> us >> d;
        EXPECT_EQ(
            std::make_tuple(i, s, c, l, ul, us, d),
            std::make_tuple(1, short(1), char(1), -2L, 0x12345678UL, (unsigned short)0x1234, 0.5));
    }
    double half = 0.5;
    const std::string expected = std::string("\0\0\0\x80", 4) + std::string("\0\x80", 2) + "\x80" +
                                 "\xfe\xff\xff\xff" + "\x48\x2c\x6a\x1e" + "\x34\x12" +
                                 std::string(reinterpret_cast<char*>(&half), 8);
    EXPECT_EQ(Slurp(path), expected);
}

TEST_F(FileTest, FailuresRaiseEventsWithTheSystemsText) {
    const std::string path = Path("c");
    const std::string ebadf = Quoted(std::strerror(EBADF), path);
    SFM_File f(path.c_str());
    char buffer[4];
    // Not open: nothing happens and nothing is heard.
    EXPECT_EQ(std::make_tuple(f.Read(buffer, 4), f.Write("x", 1), f.GetChar(), f.PutChar('x'),
                              f.Printf("x"), f.GetLine(0).GetLength()),
              std::make_tuple(0L, 0, char(-1), 0, 0L, 0));

    ASSERT_EQ(f.Open("w"), 1);
    EXPECT_EQ(f.Read(buffer, 4), 0);
    EXPECT_EQ(f.GetChar(), -1);
    EXPECT_EQ(std::string(f.GetMsg()), ebadf);
    f.Close();
    f.SetMsg("");
    ASSERT_EQ(f.Open("r"), 1);
    EXPECT_EQ(f.Write("x", 1), 0); // the result is Write's only report
    EXPECT_EQ(f.PutChar('x'), 0);
    EXPECT_EQ(f.Printf("%s", "x"), 0);
    EXPECT_EQ(std::string(f.GetMsg()), ebadf);
    f.Close();
    EXPECT_EQ(Heard(),
              (Codes{Opening, Opened, 203, 203, Closed, Opening, Opened, 204, 204, Closed}));

    // The stream buffers what goes to a full device: the failure shows at Close.
    SFM_File full("/dev/full", "w");
    EXPECT_EQ(full.Write("x", 1), 1);
    full.Close();
    EXPECT_EQ(Heard(), (Codes{Opening, Opened, SFM::FileCloseFailed}));
    EXPECT_EQ(std::string(full.GetMsg()), Quoted(std::strerror(ENOSPC), "/dev/full"));
}

TEST_F(FileTest, OpenFailuresAndHostAnswers) {
    const std::string missing = Path("no/such.txt");
    SFM_File f(missing.c_str());
    EXPECT_EQ(f.Open("w"), 0);
    EXPECT_EQ(Heard(), (Codes{Opening, SFM::FileOpenFailed}));
    EXPECT_EQ(std::string(f.GetMsg()), Quoted(std::strerror(ENOENT), missing));

    // A handler replaces the text, makes the directory and asks for a retry.
    answer = [&](int code, SFM_EventData* data) {
        if (code != SFM::FileOpenFailed) return;
        data->SetText("made it");
        mkdir(Path("no").c_str(), 0700);
        data->SetResult(SFM::Retry);
    };
    EXPECT_EQ(f.Open("w"), 1);
    EXPECT_EQ(Heard(), (Codes{Opening, SFM::FileOpenFailed, Opened}));
    EXPECT_EQ(std::string(f.GetMsg()), Quoted("made it", missing));

    // The first answer should be the only one.
    SFM_EventData data(nullptr, nullptr);
    data.SetResult(SFM::Retry);
    data.SetResult(SFM::NoAnswer);
    data.SetResult(SFM::Retry);
    EXPECT_TRUE(Sites().empty());
    data.SetResult(SFM::Retry);
    EXPECT_EQ(Sites(), (std::vector<std::string>{"sfm/sfmanagr:96"}));
    EXPECT_EQ(data.GetResult(), SFM::Retry);
}

TEST_F(FileTest, TemporaryCloseAndTransparentReopen) {
    // Files being written reopen for appending, at their position.
    for (const char* mode : {"w", "wb", "w+"}) {
        const std::string path = Path(mode);
        SFM_File f(path.c_str(), mode);
        f.Write("ab", 2);
        EXPECT_EQ(OutOfDescriptors(sfm), SFM::Retry);
        EXPECT_EQ(std::make_tuple(f.tempClosed, f.IsOpen(), f.GetStream()),
                  std::make_tuple(1, 1, static_cast<FILE*>(nullptr)));
        EXPECT_EQ(f.Write("cd", 2), 1);
        EXPECT_EQ(f.GetPosition(), 4);
        f.Close();
        EXPECT_EQ(Slurp(path), "abcd") << mode;
        EXPECT_EQ(Heard(), (Codes{Opening, Opened, Opening, Closed})); // no 201 heard
    }

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
    EXPECT_EQ(Sites(), (std::vector<std::string>{"sfm/sfmfile:300"}));
    reader.Close(), writer.Close();
    // With nothing left to close the answer is still Retry.
    EXPECT_EQ(OutOfDescriptors(sfm), SFM::Retry);

    // FileOpening moves only the first file of that name to the front.
    SFM_File first(Path("same").c_str()), second(Path("same").c_str());
    sfm.files.push_back(sfm.files.front()); // `second` registered twice
    SFM_EventData data(Path("same").c_str());
    sfm.Event(SFM::FileOpening, data);
    EXPECT_EQ(sfm.files.front(), &second);
    EXPECT_EQ(sfm.files.back(), &second);
}

TEST_F(FileTest, CopiesShareOneStreamClosedByTheLast) {
    const std::string path = Path("shared");
    const size_t registered = sfm.files.size();
    {
        SFM_File f(path.c_str(), "w");
        SFM_File copy(f);
        EXPECT_EQ(copy.GetStream(), f.GetStream());
        EXPECT_EQ(sfm.files.size(), registered + 1); // copies do not register
        f.Write("ab", 2);
        f.Close(); // flushes the stream the copy still holds
        EXPECT_EQ(copy.Write("cd", 2), 1);
    }
    EXPECT_EQ(sfm.files.size(), registered); // destroyed files leave the list
    EXPECT_EQ(Slurp(path), "abcd");
    EXPECT_EQ(Heard(), (Codes{Opening, Opened, Closed, Closed}));
}

TEST_F(FileTest, ManagerInstancesTextsAndValidity) {
    EXPECT_EQ(SFM::GetManager(), &sfm);
    {
        SFM copy(sfm); // takes over the hooks but never the instance
        EXPECT_EQ(copy.event.next, static_cast<SCC_EventNode<SFM_EventData>*>(&hook));
    }
    EXPECT_EQ(std::make_pair(SFM::Instance, SFM::InstanceCount), std::make_pair(&sfm, 1L));
    hook.Attach(&sfm.event);
    {
        SFM second;
        EXPECT_EQ(SFM::Instance, &second);
    }
    EXPECT_EQ(Sites(), (std::vector<std::string>{"sfm/sfmanagr:40", "sfm/sfmanagr:41"}));
    SFM::Instance = &sfm;

    // The system's text, or the resource fallback for a code it does not know.
    SFM_EventData data("one", "two");
    errno = 4000;
    sfm.Event(SFM::FileReadFailed, data);
    EXPECT_STREQ(data.GetText(), "Error 4000 occurred (no further info).\r\n\"one\"\r\n\"two\"");
    errno = ENOENT;
    sfm.Event(SFM::FileWriteFailed, data);
    EXPECT_STREQ(data.text, std::strerror(ENOENT));
    EXPECT_EQ(data.error, static_cast<unsigned long>(ENOENT));

    EXPECT_EQ(sfm.IsValid(), 0); // no message database yet
    EXPECT_EQ(Sites(), (std::vector<std::string>{"sfm/sfmanagr:230"}));
    SFM::SetThrowMemException(0);
    EXPECT_EQ(SFM::GetThrowMemException(), 0);
    SFM::SetThrowMemException(1);
}
