/// @file
/// The file manager: SFM, the process's one manager of files, and
/// SFM_EventData, the block with which file events travel.
///
/// Every SFM_File registers with the manager when built and reports its
/// openings, closings and failures through SFM::Event.  The manager keeps the
/// files from the most to the least recently opened, turns system error codes
/// into message texts, lets the host answer through SFM::event (handlers may
/// replace the text with SetText and answer with SetResult, for instance
/// Retry to an open that failed) and leaves each failure's text in the file's
/// message.  When an open fails because the process has no file descriptor
/// left, the manager temporarily closes the least recently opened open file
/// and answers Retry without raising its event; the closed file reopens
/// itself where it stood the next time it is used, with its content kept, so
/// that its later writes land where they would have without the closing.
/// The manager also owns the process's message database (Initiate).
///
/// Lifecycle: build one SFM before the first file (building a file without
/// a manager is the assertion `sfm/sfmfile` 62, and that file is never
/// registered), name the message database with SFM::Initiate, and destroy
/// the manager after the last file.
///
/// Costs: an event is a walk of the file list (for 101 and failures) plus the
/// host's handlers; failures also ask the system for the error's text.
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

/// The process's file manager.
///
/// Build exactly one (a second is an assertion) before the first SFM_File and
/// keep it until the last file is gone; SFM::GetManager() finds it.  Hook a
/// handler (an SCC_EventHook<SFM_EventData>) to #event to watch the files and
/// answer their failures.  A handler is called with the event code and the
/// SFM_EventData block; its return value is ignored, it answers with
/// SFM_EventData::SetResult and may replace the message with
/// SFM_EventData::SetText.  The events, all with the file's name as
/// SFM_EventData::fileName1:
///
/// - #FileOpening: before SFM_File::Open and before a temporarily closed file
///   reopens itself; the manager first moves the file to the front of #files.
/// - #FileOpened: after a successful SFM_File::Open (not after a reopen).
/// - #FileClosed: after SFM_File::Close of an open file.
/// - #FileOpenFailed: an SFM_File::Open failed (but not for "too many open
///   files", see Event).  Answer #Retry to have Open try again; any other
///   answer, or none, makes it return 0.
/// - #FileCloseFailed: SFM_File::Close (its flush or close) failed.
/// - #FileReadFailed: SFM_File::Read, GetChar, GetLine or a Get met a stream
///   error.
/// - #FileWriteFailed: SFM_File::PutChar or Printf met a stream error.
///
/// Only the answer to #FileOpenFailed is used.
///
/// For the failures the block arrives with the system's text for the error
/// already in SFM_EventData::text; after the handlers the manager stores
/// SFM_EventData::GetText() (the text, a line break and the quoted file name)
/// in the message of the first registered file of that name
/// (SFM_File::GetMsg).  The transparent reopen and the measuring open of
/// SFM_File::GetLength raise no failure event.
///
/// The class has virtual members and a virtual destructor; a host may derive
/// from it to override Initiate or IsValid.
class KEEL_API SFM {
public:
    /// Event codes and the answers handlers give.  Codes above
    /// #FailureThreshold are failures: they get a message text, which is also
    /// stored in the file.
    enum EventCode {
        NoAnswer = 0,           ///< no answer yet (the initial result)
        Retry = 2,              ///< answer to FileOpenFailed: try the open again
        FileOpening = 101,      ///< a file is about to be opened or reopened
        FileOpened = 102,       ///< a file was opened
        FileClosed = 103,       ///< a file was closed
        FailureThreshold = 150, ///< codes above this are failures; never raised itself
        FileOpenFailed = 201,   ///< an open failed
        FileCloseFailed = 202,  ///< closing reported an error
        FileReadFailed = 203,   ///< reading reported an error
        FileWriteFailed = 204   ///< writing reported an error
    };

    /// Registered files, most recently opened first.  Files add themselves
    /// when built and leave every manager's list when destroyed.  The
    /// manager only points at them: it never deletes a file.
    std::list<SFM_File*> files;
    /// The process's message database; null until Initiate.  Copies of the
    /// manager share it; the last one to go deletes it.
    std::shared_ptr<SFM_MessageDB> messages;
    /// Raised with every event code and a pointer to the data block (see the
    /// class description).  The event does not own its hooks.
    SCC_Event<SFM_EventData> event;

    static SFM* Instance;      ///< the manager, null when there is none
    static long InstanceCount; ///< managers built by the default constructor and alive

    /// Becomes Instance; building a second manager is an assertion (twice:
    /// the count and the instance are checked separately, `sfm/sfmanagr` 40
    /// and 41).
    SFM();
    ///@{
    /// Copies the file list, shares the message database and takes over the
    /// hooks of `event`: the source's #event is left without hooks, so its
    /// handlers no longer hear the files.  A copy never becomes Instance nor
    /// counts as one.
    SFM(SFM& other);
    SFM& operator=(SFM& other);
    ///@}

    /// The process's manager (Instance), or null when there is none.
    static SFM* GetManager() { return Instance; }

    /// Loads the message database from `path` once: the binary form when the
    /// extension is ".mdb" in any case, the text source otherwise (see
    /// SFM_MessageDB).  Later calls do nothing, even with another path.  A
    /// null path is the assertion `sfm/sfmanagr` 212 and loads nothing.  A
    /// file that cannot be opened leaves an empty database whose look-ups
    /// answer "".
    virtual void Initiate(const char* path);
    /// 1 when the message database exists and is valid and every registered
    /// file is valid, else 0.  Each failing check is also an assertion
    /// (`sfm/sfmanagr` 230, 231, 233), so before Initiate this reports one.
    /// Linear in the number of files.
    virtual int IsValid();
    /// Deletes the message database (when no copy shares it); the manager
    /// that is Instance sets Instance back to null.  The files themselves
    /// are not touched.
    /// Virtual, after the other slots.
    virtual ~SFM();

    /// Handles one file event and returns the answer; the files call it, a
    /// host may call it too for events of its own.
    ///
    /// The result in `data` is reset to #NoAnswer and SFM_EventData::error
    /// set to the thread's last error code (`errno`).  Then:
    /// - #FileOpenFailed with "too many open files" (`EMFILE`, 24): the
    ///   least recently opened file that is open is temporarily closed and
    ///   #Retry returned at once; #event is not raised.  When no file could
    ///   be closed, SFM_File::Open gives up: it returns 0 and the file's
    ///   message is the system's text for that error.
    /// - #FileOpening: the first registered file of that name moves to the
    ///   front of #files.
    /// - failures (above #FailureThreshold): SFM_EventData::text becomes the
    ///   system's text for the error, or resource text 45103 ("Error %i
    ///   occurred (no further info).") when the system has none.
    ///
    /// #event is then raised and, for failures, SFM_EventData::GetText()
    /// stored in the first registered file of that name.
    /// @return the handlers' answer (SFM_EventData::GetResult), #NoAnswer when
    /// none answered.
    EventCode Event(EventCode code, SFM_EventData& data);

    ///@{
    /// A process-wide flag for the host's out-of-memory policy, 1 at first.
    /// keel only stores it; nothing in the library reads it.
    static void SetThrowMemException(int on) { s_bThrowMemException = on; }
    static int GetThrowMemException() { return s_bThrowMemException; }
    ///@}

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

/// The data block of a file event: which file, the system's error code, the
/// message text and the handlers' answer.  The manager fills it in and
/// passes a pointer to it to every handler of SFM::event for the duration
/// of the call only; a handler that wants to keep it copies it (copies are
/// deep).
class KEEL_API SFM_EventData {
public:
    unsigned long error;      ///< the system's last error code (`errno`), set by SFM::Event
    SYS_StringBase fileName1; ///< the file concerned, "" if none
    SYS_StringBase fileName2; ///< a second file, "" if none (keel leaves it empty)
    SYS_StringBase text;      ///< the message text, without the file names
    SFM::EventCode result;    ///< the answer, NoAnswer until a handler sets one

    /// Names the files; null names become "".  The names are copied; error 0,
    /// no text, no answer.
    SFM_EventData(const char* fileName1 = nullptr, const char* fileName2 = nullptr);
    ///@{
    /// Copies every field.
    SFM_EventData(const SFM_EventData& other) = default;
    SFM_EventData& operator=(const SFM_EventData& other) = default;
    ///@}
    ~SFM_EventData() = default; ///< Releases the strings.

    SYS_StringBase GetFileName1() const { return fileName1; } ///< The file concerned, "" if none.
    SYS_StringBase GetFileName2() const { return fileName2; } ///< The second file, "" if none.
    /// The answer so far: SFM::NoAnswer, or what a handler set (SFM::Retry).
    SFM::EventCode GetResult() const { return result; }
    /// Stores the answer.  The first handler to answer should be the only
    /// one: a second non-zero answer is the assertion `sfm/sfmanagr` 96 (and
    /// is stored anyway).  Setting SFM::NoAnswer always succeeds.
    void SetResult(SFM::EventCode answer);
    /// Replaces the message text (the file names are added by GetText).
    void SetText(SYS_StringBase message) { text = message; }
    /// The text, then for each non-empty name a line break (`\r\n`) and the
    /// name in double quotes.  This is what the manager stores in the file's
    /// message.
    SYS_StringBase GetText() const;
};

#endif // SFM_H
