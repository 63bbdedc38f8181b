// SFM.h - the file manager: SFM, the process's one manager of files, and
// SFM_EventData, the block with which file events travel.
//
// Every SFM_File registers with the manager when built and reports its
// openings, closings and failures through SFM::Event.  The manager keeps the
// files from the most to the least recently opened, turns system error codes
// into message texts, lets the host answer through `event` (handlers may
// replace the text with SetText and answer with SetResult, for instance
// Retry to an open that failed) and leaves each failure's text in the file's
// message.  When an open fails because the process has no file descriptor
// left, the manager temporarily closes the least recently opened open file
// and answers Retry without raising its event; the closed file reopens
// itself where it stood the next time it is used.  The manager also owns the
// process's message database (Initiate).
//
// Costs: an event is a walk of the file list (for 101 and failures) plus the
// host's handlers; failures also ask the system for the error's text.
#ifndef SFM_H
#define SFM_H

#include "SCC_Event.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <list>
#include <memory>

class SFM_EventData;
class SFM_File;
class SFM_MessageDB;

class KEEL_API SFM {
public:
    // Event codes and the answers handlers give.  Codes above
    // FailureThreshold are failures: they get a message text, which is also
    // stored in the file.
    enum EventCode {
        NoAnswer = 0,      // no answer yet (the initial result)
        Retry = 2,         // answer to FileOpenFailed: try the open again
        FileOpening = 101, // a file is about to be opened or reopened
        FileOpened = 102,  // a file was opened
        FileClosed = 103,  // a file was closed
        FailureThreshold = 150,
        FileOpenFailed = 201,  // an open failed
        FileCloseFailed = 202, // closing reported an error
        FileReadFailed = 203,  // reading reported an error
        FileWriteFailed = 204  // writing reported an error
    };

    // Registered files, most recently opened first.  Files add themselves
    // when built and leave every manager's list when destroyed.
    std::list<SFM_File*> files;
    // The process's message database; null until Initiate.  Copies of the
    // manager share it; the last one to go deletes it.
    std::shared_ptr<SFM_MessageDB> messages;
    // Raised with every event code and a pointer to the data block.
    SCC_Event<SFM_EventData> event;

    static SFM* Instance;      // the manager, null when there is none
    static long InstanceCount; // managers built by the default constructor and alive

    // Becomes Instance; building a second manager is an assertion (twice:
    // the count and the instance are checked separately).
    SFM();
    // Copies the file list, shares the message database and takes over the
    // hooks of `event`.  A copy never becomes Instance nor counts as one.
    SFM(SFM& other);
    SFM& operator=(SFM& other);

    static SFM* GetManager() { return Instance; }

    // Loads the message database from `path` once: the binary form when the
    // extension is ".mdb" in any case, the text source otherwise.
    virtual void Initiate(const char* path);
    // 1 when the message database exists and every registered file is valid.
    virtual int IsValid();
    // Deletes the message database (when no copy shares it); the manager
    // that is Instance clears it.  The files themselves are not touched.
    // Virtual, after the other slots.
    virtual ~SFM();

    // Handles one file event (see the header comment) and returns the answer.
    EventCode Event(EventCode code, SFM_EventData& data);

    static void SetThrowMemException(int on) { s_bThrowMemException = on; }
    static int GetThrowMemException() { return s_bThrowMemException; }

private:
    friend class SFM_File;

    // Puts the system's text for data.error (or resource text 45103 when the
    // system has none) into data.
    void CreateMessage(EventCode code, SFM_EventData& data);
    // Temporarily closes the least recently opened file that is open; 1 when
    // one was closed.
    int TempCloseSomeFile();

    // Whether the last FileOpenFailed with "too many open files" found a file
    // to close; an open that keeps failing stops when none was found.
    int m_ClosedForRetry;
    // Set by the default constructor: this manager counts in InstanceCount.
    int m_Counted;

    static int s_bThrowMemException; // the host's out-of-memory policy; 1 at first
};

// The data block of a file event.
class KEEL_API SFM_EventData {
public:
    unsigned long error;      // the system's last error code, set by SFM::Event
    SYS_StringBase fileName1; // the file concerned, "" if none
    SYS_StringBase fileName2; // a second file, "" if none (hosts only)
    SYS_StringBase text;      // the message text
    SFM::EventCode result;    // the answer, NoAnswer until a handler sets one

    // Null names become "".
    SFM_EventData(const char* fileName1 = nullptr, const char* fileName2 = nullptr);
    SFM_EventData(const SFM_EventData& other) = default;
    SFM_EventData& operator=(const SFM_EventData& other) = default;
    ~SFM_EventData() = default;

    SYS_StringBase GetFileName1() const { return fileName1; }
    SYS_StringBase GetFileName2() const { return fileName2; }
    SFM::EventCode GetResult() const { return result; }
    // Stores the answer.  The first handler to answer should be the only
    // one: a second non-zero answer is an assertion (and is stored anyway).
    void SetResult(SFM::EventCode answer);
    void SetText(SYS_StringBase message) { text = message; }
    // The text, then for each non-empty name a line break and the name in
    // double quotes.
    SYS_StringBase GetText() const;
};

#endif // SFM_H
