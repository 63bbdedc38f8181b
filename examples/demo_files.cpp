// demo_files.cpp - keel-demo step: the file manager keeps a job going when
// the process has more files open than it may hold, closing and reopening
// them behind the host's back; then a message database read by key and by
// section.  Everything happens in a temporary directory, removed at the end.
#include "demo_steps.h"
#include <keel/SFM.h>
#include <keel/SFM_File.h>
#include <keel/SFM_MessageDB.h>
#include <keel/SSM.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

const int JobFiles = 12;
const int Rounds = 3;
const int RoomFor = 4; // descriptors left free under the lowered limit

const char* EventName(int code) {
    switch (code) {
    case SFM::FileOpening:
        return "FileOpening";
    case SFM::FileOpened:
        return "FileOpened";
    case SFM::FileClosed:
        return "FileClosed";
    case SFM::FileOpenFailed:
        return "FileOpenFailed";
    case SFM::FileCloseFailed:
        return "FileCloseFailed";
    case SFM::FileReadFailed:
        return "FileReadFailed";
    case SFM::FileWriteFailed:
        return "FileWriteFailed";
    default:
        return "another event";
    }
}

// Hears the manager's event as a host handler would and condenses what it
// heard: "FileOpening x12, FileOpened x12".
class EventTally {
public:
    explicit EventTally(SFM& manager) {
        hook.SetObject(this);
        hook.SetMethod(&EventTally::OnEvent);
        hook.Attach(&manager.event);
    }
    // What was heard since the last call, in the order first heard.
    std::string Take() {
        std::string text;
        for (const auto& c : counts)
            text += (text.empty() ? "" : ", ") + std::string(EventName(c.first)) + " x" +
                    std::to_string(c.second);
        counts.clear();
        return text.empty() ? "nothing" : text;
    }

private:
    int OnEvent(int code, SFM_EventData*) {
        for (auto& c : counts)
            if (c.first == code) return ++c.second, 0;
        counts.emplace_back(code, 1);
        return 0;
    }

    SCC_ObjectEventHook<EventTally, SFM_EventData> hook;
    std::vector<std::pair<int, int>> counts;
};

// How many more descriptors the process may open now: probed by opening
// /dev/null until the system refuses.
int FreeDescriptors() {
    std::vector<int> probes;
    for (int fd; (fd = open("/dev/null", O_RDONLY)) >= 0;) probes.push_back(fd);
    for (int fd : probes) close(fd);
    return static_cast<int>(probes.size());
}

std::string JobName(int i) {
    char name[32];
    std::snprintf(name, sizeof name, "job-%02d.txt", i + 1);
    return name;
}

// The files of `files` that hold a stream now, and those the manager has
// closed for the moment: "job-09..12 open, job-01..08 closed by the manager".
std::string Held(const std::vector<std::unique_ptr<SFM_File>>& files) {
    std::string open, closed;
    for (size_t i = 0; i < files.size(); ++i) {
        std::string& list = files[i]->GetStream() ? open : closed;
        list += (list.empty() ? "" : " ") + std::to_string(i + 1);
    }
    return "job files holding a descriptor: " + (open.empty() ? "none" : open) +
           "; closed for the moment: " + (closed.empty() ? "none" : closed);
}

void ManyFiles(SFM& manager, const std::string& dir) {
    rlimit saved;
    getrlimit(RLIMIT_NOFILE, &saved);
    rlimit low = saved;
    for (low.rlim_cur = 3; low.rlim_cur < saved.rlim_cur; ++low.rlim_cur) {
        setrlimit(RLIMIT_NOFILE, &low);
        if (FreeDescriptors() >= RoomFor) break;
    }
    std::printf("  descriptor limit lowered from %lu to %lu: room for %d more files; "
                "the job has %d\n",
                static_cast<unsigned long>(saved.rlim_cur),
                static_cast<unsigned long>(low.rlim_cur), FreeDescriptors(), JobFiles);

    EventTally heard(manager);
    std::vector<std::unique_ptr<SFM_File>> files;
    for (int i = 0; i < JobFiles; ++i) {
        files.push_back(std::make_unique<SFM_File>((dir + "/" + JobName(i)).c_str()));
        files.back()->Open("w");
    }
    std::printf("  open job-01..%02d for writing (\"w\"); the handler heard %s\n", JobFiles,
                heard.Take().c_str());
    std::printf("    every open beyond the limit failed with \"too many open files\"; the "
                "manager then\n    closed the least recently opened file, saving its position, "
                "and retried, without an event\n    %s\n",
                Held(files).c_str());

    for (int round = 1; round <= Rounds; ++round)
        for (int i = 0; i < JobFiles; ++i) files[i]->Printf("j%02d.%d ", i + 1, round);
    std::printf("  write %d words to each file, one file after the other: heard %s\n", Rounds,
                heard.Take().c_str());
    std::printf("    each write to a closed file reopened it first (the file as it stood, never "
                "truncated,\n    at its saved position) and the manager closed another one to make "
                "room\n    %s\n",
                Held(files).c_str());
    for (auto& f : files) f->Close();
    std::printf("  close them all: heard %s\n    (a file the manager had closed is reopened "
                "to be closed, so that its close\n    is reported like any other)\n",
                heard.Take().c_str());

    // Read back one word at a time, one file after the other: the same
    // juggling with "r" files, which reopen where they stopped reading.
    std::vector<std::string> words(JobFiles);
    for (auto& f : files) f->Open("r");
    for (int round = 1; round <= Rounds; ++round) {
        for (int i = 0; i < JobFiles; ++i) {
            char word[7] = {};
            files[i]->Read(word, 6);
            words[i] += word;
        }
    }
    for (auto& f : files) f->Close();
    std::printf("  read them back (\"r\") a word at a time, one file after the other:\n    heard "
                "%s\n",
                heard.Take().c_str());
    int whole = 0;
    for (int i = 0; i < JobFiles; ++i) {
        std::string expected;
        for (int round = 1; round <= Rounds; ++round)
            expected += "j" + JobName(i).substr(4, 2) + "." + std::to_string(round) + " ";
        whole += words[i] == expected;
        if (i < 2 || i == JobFiles - 1)
            std::printf("    %s: \"%s\"\n", JobName(i).c_str(), words[i].c_str());
        else if (i == 2)
            std::printf("    ...\n");
    }
    std::printf("    %d of %d files hold every word they were given\n", whole, JobFiles);
    files.clear();
    setrlimit(RLIMIT_NOFILE, &saved);
    std::printf("  descriptor limit restored to %lu\n", static_cast<unsigned long>(saved.rlim_cur));
}

// The message source, written through an SFM_File.  Written before the
// descriptor limit is lowered, which also lets the undefined-behaviour
// checker of a sanitizer build vet the stream's type while it can still
// open the files it needs for that.
void WriteMessageSource(const std::string& source) {
    SFM_File file(source.c_str(), "w");
    file.Printf("; prompts of the drill editor\n"
                "1:Job loaded.\n"
                "2:Drill file not found: $\n"
                "[Units]\n"
                "1:mil\n"
                "2:mm\n"
                "3:inch\n"
                "[Layers]\n"
                "1:Top copper\n"
                "2:Bottom copper\n"
                "4:Silkscreen\n");
    file.Close();
}

void Messages(SFM& manager, const std::string& source) {
    manager.Initiate(source.c_str());
    SFM_MessageDB& db = *manager.messages;
    std::printf("  SFM::Initiate(\"messages.txt\") reads the text source; only keys, offsets and "
                "lengths\n  stay in memory and each look-up reads its text from the open file\n");
    for (long key : {1L, 2L, 99L})
        std::printf("    getTxt(%ld) = \"%s\"\n", key, db.getTxt(key).GetString());
    std::printf("    (a text ending in \"$\" keeps its trailing blank; key 99 has no message)\n");
    for (const char* name : {"units", "Layers"}) {
        std::printf("  section \"%s\" (any case), base %ld:", name, db.GetSectionBase(name));
        for (SFM_MessageDB::SectionIterator it(&db, name, 1); !it.IsEmpty(); ++it)
            std::printf(" %ld=\"%s\"", it.GetPosition(), SYS_StringBase(it).GetString());
        std::printf("\n");
    }
}

} // namespace

KEEL_DEMO_STEP(80, "Files and messages: running out of file descriptors, and a message database") {
    DemoIntro("A CAM job keeps many files open at once, more than a process may hold. Every "
              "SFM_File reports to the file manager (SFM); when an open fails for want of a "
              "descriptor, the manager closes the least recently opened file for the moment and "
              "the open is retried. A file closed that way reopens itself at its next use, where "
              "it stood, so the host never notices. Here the process's limit is lowered to "
              "make that happen.");

    std::error_code ec;
    std::string name = (std::filesystem::temp_directory_path(ec) / "keel-demo-files-XXXXXX");
    if (ec || !mkdtemp(name.data())) {
        std::printf("  no temporary directory: %s\n", std::strerror(errno));
        return;
    }
    {
        SSM assertions;
        SFM manager;
        const std::string source = name + "/messages.txt";
        WriteMessageSource(source);
        ManyFiles(manager, name);
        Messages(manager, source);
    }
    std::filesystem::remove_all(name);
}
