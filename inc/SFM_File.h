/// @file
/// SFM_File, a named file over a C stream that reports its life to the file
/// manager (SFM.h).
///
/// A file has a name, an open mode ("r", "w", "a", "rb"...), the message of
/// its last failure, a cached length and a stack of saved positions.  It reads
/// and writes lines, blocks, formatted text and binary values: Get and Put
/// move 1, 2 or 4 bytes for the integer types (4 for `long` too) and 8 for
/// `double`; their flag reverses the order of the bits over the value's width,
/// not the order of its bytes.  Opening, closing and every failure raise the
/// manager's event (SFM::EventCode); failures leave their text in GetMsg().
///
/// When the process runs out of file descriptors the manager may close a file
/// temporarily; the file then reopens itself, at the position it had, at its
/// next use.  The reopen keeps the file as it stands: nothing is truncated
/// or created, reads and writes are allowed as the mode allows them, and
/// every write after it lands where it would have landed without the
/// closing, also in a file written with seeks (a "w" file is not turned into
/// an appending one; an "a" file still writes at the end).  A reopen that
/// again finds no descriptor free has the manager close another file first,
/// so no write is lost.  A temporarily closed file counts as open.
///
/// Copies share the stream of their source (one C stream, one position); the
/// last copy to let go of it closes it.  Only files built by the constructors
/// register with the manager; a destroyed file leaves the manager's list.
///
/// Costs: no buffering of its own beyond the C stream's; every operation is a
/// stream call plus a test for a temporary close.  Events cost a walk of the
/// manager's list.
#ifndef SFM_FILE_H
#define SFM_FILE_H

#include "SFM.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <cstdio>
#include <deque>
#include <memory>

/// A C stream shared by the copies of a file: the cell holds the stream, and
/// the last holder to let go of it closes it.
typedef std::shared_ptr<std::FILE*> SFM_SharedStream;

/// A named file over a C stream, registered with the file manager.
///
/// Build the manager (SFM) first: building a file without one is the
/// assertion `sfm/sfmfile` 62 and leaves the file unregistered.  A file is
/// closed until Open (or the opening constructor) succeeds; name and mode
/// may change only while it is closed.  Failures are never thrown: the
/// operation returns its failure value (0, -1 or ""), the manager raises
/// the matching SFM::EventCode and stores its text in GetMsg().  Misuse
/// (a null buffer, a closed file where a stream is needed) is an assertion
/// of source `sfm/sfmfile`, after which the operation returns its failure
/// value.  A temporarily closed file that cannot reopen itself (no
/// descriptor to be had, or the file was removed meanwhile: the reopen does
/// not create it again) is the assertion `sfm/sfmfile` 270: the operation
/// fails, the file stays temporarily closed with its position saved and the
/// next use tries again.
///
/// Copying is deliberately shallow: a copy shares the source's C stream and
/// so its position; closing one copy flushes the stream and leaves it open
/// for the others, and the last holder closes it.  A copy is not registered
/// with the manager: it is never closed temporarily, and the failure texts
/// of its events land in the registered file of the same name, not in the
/// copy.
///
/// Every operation is virtual so that a derived class (for instance one
/// that maps the file into memory, see #mapped and UnmapMemory) can replace
/// it.
class KEEL_API SFM_File {
public:
    /// The C runtime's seek origins.
    enum SeekType {
        SeekBegin = 0,   ///< from the start of the file
        SeekCurrent = 1, ///< from the current position
        SeekEnd = 2      ///< from the end of the file
    };

    /// Registers with the manager (building a file without one is the
    /// assertion `sfm/sfmfile` 62).  The file stays closed and its mode "".
    /// A file built without a name keeps length 0, so GetLength reports 0
    /// until an Open, even after SetName; a named one measures its length
    /// at the first GetLength.
    SFM_File(const char* name = "");
    /// As above, then opens `name` with `mode` at once (both must be given:
    /// assertions `sfm/sfmfile` 75 and 76).  Raises the events of Open; test
    /// IsOpen() to learn whether the open succeeded.
    SFM_File(const char* name, const char* mode);
    ///@{
    /// Copies every field and shares the stream; the copy does not register
    /// (see the class description).  Assignment lets go of the target's own
    /// stream first, without an event (closing it when no copy holds it).
    SFM_File(const SFM_File& other);
    SFM_File& operator=(const SFM_File& other);
    ///@}

    /// Sets the name of a closed file and returns `name`.  On an open file
    /// this is the assertion `sfm/sfmfile` 110, and the name is stored anyway.
    const char* operator=(const char* name);

    /// The file name.
    const SYS_StringBase& GetName() const { return name; }
    /// The open mode last stored: the one given to the opening constructor,
    /// to SetMode or (when not empty) to Open; "" for a file never given
    /// one.  A reopen after a temporary close (which neither truncates nor
    /// creates, and ignores "x") does not change it, nor does the measuring
    /// open of GetLength.
    const SYS_StringBase& GetMode() const { return mode; }
    /// The text of the last failure, as the manager stored it (the system's
    /// text or a handler's, a line break and the quoted file name); "" until
    /// a failure.  Success never clears it.
    const SYS_StringBase& GetMsg() const { return message; }
    /// Stores the name; on an open file the assertion `sfm/sfmfile` 118, and
    /// the name is stored anyway.
    void SetName(const SYS_StringBase& newName);
    /// Stores the mode used by the next Open without a mode; on an open file
    /// the assertion `sfm/sfmfile` 124, and the mode is stored anyway.
    void SetMode(const SYS_StringBase& newMode);
    /// Replaces the failure text.
    void SetMsg(const SYS_StringBase& newMessage) { message = newMessage; }

    /// The length in bytes, measured once and cached until a write passes
    /// it.  A closed file is opened with "r" for the measure (no events);
    /// -1 when that fails.  An open file is measured by seeking to its end
    /// and back; a temporarily closed one reopens itself.
    long GetLength();
    /// The position, or -1 when the file is not open.
    long GetPosition();
    /// Seek(0, SeekBegin): 1 on success, 0 on failure or when not open.
    int Rewind() { return Seek(0, SeekBegin); }
    /// Seek(0, SeekEnd): 1 on success, 0 on failure or when not open.
    int SeekToEnd() { return Seek(0, SeekEnd); }
    /// The stream, or null while closed or temporarily closed.  The file
    /// keeps it: do not close it.  It is valid only until this file closes,
    /// and any failed open elsewhere may close it temporarily, so do not
    /// keep it across other file operations.
    std::FILE* GetStream() const { return stream ? *stream : nullptr; }

private:
    virtual int MayBeTempClosed();
    virtual void TempClose();

public:
    /// Closes the file (with Close's events), takes the new name and opens
    /// it with `newMode` (an empty mode keeps the stored one).
    /// @return Open's result: 1 when open, 0 when the open failed.
    virtual int ReOpen(const SYS_StringBase& newName, const SYS_StringBase& newMode);

private:
    // Reopens a temporarily closed file in its reopen mode, at its position.
    virtual void ReOpen();

public:
    /// 1: a file has no state to check.  The manager's IsValid calls it for
    /// every registered file; a derived class may check more.
    virtual int IsValid();
    /// Opens with `openMode` (a C runtime mode, stored as the file's mode),
    /// or with the stored mode when it is empty.
    ///
    /// Raises SFM::FileOpening, then SFM::FileOpened on success and resets
    /// the cached length.  On failure raises SFM::FileOpenFailed and tries
    /// again while a handler answers SFM::Retry.  When the process is out of
    /// file descriptors the manager closes another file temporarily and the
    /// open is tried again, without an event, for as long as it finds a file
    /// to close; when none is left, Open returns 0 with the system's text in
    /// GetMsg() and the handlers never see that failure.  Opening an open
    /// file is the assertion `sfm/sfmfile` 160.
    /// @return 1 when open, 0 when the open failed (GetMsg() tells why).
    virtual int Open(SYS_StringBase openMode = "");
    /// 1 at the end: the stream says so, or the position equals the length;
    /// else 0.  The file must have a stream: on a closed or temporarily
    /// closed file this is the assertion `sfm/sfmfile` 300 (a temporarily
    /// closed file then reopens itself and answers; a closed one answers 1).
    virtual int Eof();
    /// 1 when open or temporarily closed, else 0.
    virtual int IsOpen();
    /// Flushes the stream of an open file; nothing when closed.  A failure
    /// is not reported.
    virtual void Flush();
    /// Closes an open file and raises SFM::FileClosed, or
    /// SFM::FileCloseFailed when the close (or a flush, also one made when
    /// the manager closed it temporarily) failed.  A temporarily closed file
    /// is reopened first in order to be closed (raising SFM::FileOpening; if
    /// that fails, the assertion `sfm/sfmfile` 210 and the file ends closed).
    /// When a copy still holds the stream it is only flushed.  Nothing is
    /// raised for a closed file.  Calls UnmapMemory when #mapped is set,
    /// open or not.
    virtual void Close();
    /// For subclasses that map the file: called by Close when #mapped is
    /// set.  Does nothing here.
    virtual void UnmapMemory();
    /// Moves to `offset` from `origin`.
    /// @return 1 on success, 0 when the seek failed or the file is not open.
    virtual int Seek(int offset, SeekType origin);
    /// Saves the position and seeks; on failure returns 0 where it stood.
    /// @return 1 when the position was saved and the seek succeeded.  Each
    /// successful push is undone by one PopPosition.
    virtual int PushPosition(int offset, SeekType origin);
    /// Returns to the latest saved position; does nothing when none is saved.
    virtual void PopPosition();
    /// Reads up to `count` bytes into `buffer`, which the caller owns and
    /// sizes.  Raises SFM::FileReadFailed on a stream error.  A null buffer
    /// is the assertion `sfm/sfmfile` 330.
    /// @return the number of bytes read: fewer than `count` at the end of
    /// the file, 0 when not open, for a null buffer or a count of 0 or less.
    virtual long Read(void* buffer, long count);
    /// Writes `count` bytes from `buffer` (not kept).  The stream buffers,
    /// so a failure to store them shows at Flush or Close; Write itself
    /// raises nothing, its result is the only report.
    /// @return 1 when all `count` bytes went into the stream (also for 0
    /// bytes); 0 when not open, for a null buffer (the assertion
    /// `sfm/sfmfile` 352), a negative count or a short write.
    virtual int Write(const void* buffer, long count);

    ///@{
    /// Reads a binary value into `value` with Read and returns it.
    ///
    /// Widths: 1 byte for `char`, 2 for `short`, 4 for `int` and `long`
    /// (unsigned alike; a 4-byte value read into a 64-bit `long` is
    /// sign-extended, into `unsigned long` zero-extended), 8 for `double`;
    /// in the machine's byte order.  When `reverse` is non-zero the order of
    /// the bits is reversed over that width (bit 0 becomes the top bit), not
    /// the order of the bytes; `double` takes no flag.  Bytes that a read
    /// at the end of the file did not deliver keep their previous contents
    /// in `value`, so initialise it to tell.  A stream error raises
    /// SFM::FileReadFailed.
    virtual double Get(double& value);
    virtual unsigned long Get(unsigned long& value, int reverse);
    virtual long Get(long& value, int reverse);
    virtual unsigned char Get(unsigned char& value, int reverse);
    virtual char Get(char& value, int reverse);
    virtual unsigned short Get(unsigned short& value, int reverse);
    virtual short Get(short& value, int reverse);
    virtual unsigned int Get(unsigned int& value, int reverse);
    virtual int Get(int& value, int reverse);
    ///@}

    ///@{
    /// Writes a binary value with Write, in the widths and byte order of Get
    /// (`long` writes its low 4 bytes).  When `reverse` is non-zero the bits
    /// are reversed over the width first: Put(1, 1) writes the bytes of
    /// 0x80000000, Put((short)1, 1) those of 0x8000, Put((char)1, 1) 0x80.
    /// `double` is written as its 8 bytes and takes no flag.  Nothing is
    /// returned nor raised (see Write): bytes the system fails to store show
    /// at Close as SFM::FileCloseFailed.
    virtual void Put(double value);
    virtual void Put(unsigned long value, int reverse);
    virtual void Put(long value, int reverse);
    virtual void Put(unsigned char value, int reverse);
    virtual void Put(char value, int reverse);
    virtual void Put(unsigned short value, int reverse);
    virtual void Put(short value, int reverse);
    virtual void Put(unsigned int value, int reverse);
    virtual void Put(int value, int reverse);
    ///@}

    /// The next byte, or -1 at the end, on an error or when not open.
    /// A stream error raises SFM::FileReadFailed.  Where `char` is signed a
    /// byte 0xFF also reads as -1; use Eof to tell.
    virtual char GetChar();
    /// Writes one byte.
    /// @return 1 when written; 0 when not open or on a stream error (which
    /// raises SFM::FileWriteFailed).
    virtual int PutChar(char c);
    /// One line with its line feed, at most maxLength - 1 bytes (510 when
    /// maxLength is 0 or 511 and more, none when it is negative); "" at the
    /// end, on an error (which raises SFM::FileReadFailed) or when not open.
    /// A longer line comes back in pieces, one per call.
    virtual SYS_StringBase GetLine(long maxLength);
    /// The text and a line feed; 1 when both were written.  Like Write it
    /// raises nothing: 0 when not open or on a short write.
    virtual int WriteLine(const SYS_StringBase& line);
    /// Writes text formatted as by `printf` (the compiler checks the
    /// arguments).
    /// @return the number of characters written; 0 on a stream error (which
    /// raises SFM::FileWriteFailed), when not open or for a null format (the
    /// assertion `sfm/sfmfile` 450).
    virtual long Printf(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /// Closes the file (with Close's events) and leaves the manager's list.
    /// Virtual, after every other slot, so that a file may be deleted
    /// through a base pointer.
    virtual ~SFM_File();

    ///@{
    /// Field by field binary records: `<<` is Put(v, 0) and `>>` is
    /// Get(v, 0), each returning the file so that calls chain.  No result is
    /// reported; check Eof or GetMsg() after a record.
    SFM_File& operator<<(double v) { return Put(v), *this; }
    SFM_File& operator<<(unsigned long v) { return Put(v, 0), *this; }
    SFM_File& operator<<(long v) { return Put(v, 0), *this; }
    SFM_File& operator<<(unsigned char v) { return Put(v, 0), *this; }
    SFM_File& operator<<(char v) { return Put(v, 0), *this; }
    SFM_File& operator<<(unsigned short v) { return Put(v, 0), *this; }
    SFM_File& operator<<(short v) { return Put(v, 0), *this; }
    SFM_File& operator<<(unsigned int v) { return Put(v, 0), *this; }
    SFM_File& operator<<(int v) { return Put(v, 0), *this; }
    SFM_File& operator>>(double& v) { return Get(v), *this; }
    SFM_File& operator>>(unsigned long& v) { return Get(v, 0), *this; }
    SFM_File& operator>>(long& v) { return Get(v, 0), *this; }
    SFM_File& operator>>(unsigned char& v) { return Get(v, 0), *this; }
    SFM_File& operator>>(char& v) { return Get(v, 0), *this; }
    SFM_File& operator>>(unsigned short& v) { return Get(v, 0), *this; }
    SFM_File& operator>>(short& v) { return Get(v, 0), *this; }
    SFM_File& operator>>(unsigned int& v) { return Get(v, 0), *this; }
    SFM_File& operator>>(int& v) { return Get(v, 0), *this; }
    ///@}

    /// @name Fields
    /// Public for derived classes; hosts use the members above, which keep
    /// them consistent.
    ///@{
    SFM_SharedStream stream;    ///< null while closed or temporarily closed
    SYS_StringBase name;        ///< the file name
    SYS_StringBase mode;        ///< the open mode (see GetMode)
    SYS_StringBase message;     ///< the text of the last failure
    long length;                ///< cached length, -1 while not measured
    int tempClosed;             ///< 1 while the manager has the file closed
    std::deque<long> positions; ///< saved positions, latest at the back
    int mapped;                 ///< non-zero: Close calls UnmapMemory
    ///@}

private:
    friend class SFM;

    void CheckLength();
    // The mode a temporarily closed file reopens with: its own, without "x".
    SYS_StringBase GetReOpenMode();
    // Opens `openMode` into `stream`.  When the process has no descriptor
    // left the manager closes another file and the open is tried again, for
    // as long as it finds one to close.  With `announce` (Open) the mode is
    // the C runtime's and other failures raise FileOpenFailed and are
    // retried while the answer is Retry.  Without it (a reopen, a measure)
    // the existing file is opened as it stands, never truncated nor created,
    // with the access the mode gives.  Returns 1 when open.
    int OpenStream(const SYS_StringBase& openMode, SFM_EventData& data, bool announce);
    // The stream of an open file, reopened if need be, with errno and the
    // stream's error state cleared; null, after the assertion at `line` of
    // this file's source, when there is none.
    std::FILE* ReadyStream(int line);
    // When `fp` reports an error: raises `code` and clears the error; 1 then.
    int Failed(std::FILE* fp, SFM::EventCode code);
    // Seeks to an absolute position of any width.
    int SeekTo(long position);
    // Raises `code` with this file's name; returns the answer.
    SFM::EventCode Raise(SFM::EventCode code);

    // An error met while the manager closed the stream; reported at Close.
    int m_DeferredError;
};

#endif // SFM_FILE_H
