// SFM_File.h - a named file over a C stream that reports its life to the
// file manager (SFM.h).
//
// A file has a name, an open mode ("r", "w", "a", "rb"...), the message of
// its last failure, a cached length and a stack of saved positions.  It reads
// and writes lines, blocks, formatted text and binary values: Get and Put
// move 1, 2 or 4 bytes for the integer types (4 for `long` too) and 8 for
// `double`; their flag reverses the order of the bits over the value's width,
// not the order of its bytes.  Opening, closing and every failure raise the
// manager's event (SFM::EventCode); failures leave their text in GetMsg().
//
// When the process runs out of file descriptors the manager may close a file
// temporarily; the file then reopens itself, at the position it had, at its
// next use ("w" modes reopen as "a" so nothing is truncated).  A reopen that
// again finds no descriptor free has the manager close another file first,
// so no write is lost.  A temporarily closed file counts as open.
//
// Copies share the stream of their source (one C stream, one position); the
// last copy to let go of it closes it.  Only files built by the constructors
// register with the manager; a destroyed file leaves the manager's list.
//
// Costs: no buffering of its own beyond the C stream's; every operation is a
// stream call plus a test for a temporary close.  Events cost a walk of the
// manager's list.
#ifndef SFM_FILE_H
#define SFM_FILE_H

#include "SFM.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <cstdio>
#include <deque>
#include <memory>

// A C stream shared by the copies of a file: the cell holds the stream, and
// the last holder to let go of it closes it.
typedef std::shared_ptr<std::FILE*> SFM_SharedStream;

class KEEL_API SFM_File {
public:
    // The C runtime's seek origins.
    enum SeekType { SeekBegin = 0, SeekCurrent = 1, SeekEnd = 2 };

    // Registers with the manager (building a file without one is an
    // assertion).  A file built without a name keeps length 0, so GetLength
    // reports 0 until an Open, even after SetName.
    SFM_File(const char* name = "");
    // As above, then opens `name` with `mode` at once (both must be given).
    SFM_File(const char* name, const char* mode);
    // Copies every field and shares the stream; the copy does not register.
    SFM_File(const SFM_File& other);
    SFM_File& operator=(const SFM_File& other);

    // Sets the name of a closed file (an assertion when it is open).
    const char* operator=(const char* name);

    const SYS_StringBase& GetName() const { return name; }
    const SYS_StringBase& GetMode() const { return mode; }
    const SYS_StringBase& GetMsg() const { return message; }
    void SetName(const SYS_StringBase& newName); // assertion when open
    void SetMode(const SYS_StringBase& newMode); // assertion when open
    void SetMsg(const SYS_StringBase& newMessage) { message = newMessage; }

    // The length in bytes, measured once and cached until a write passes
    // it.  A closed file is opened with "r" for the measure (no events);
    // -1 when that fails.
    long GetLength();
    // The position, or -1 when the file is not open.
    long GetPosition();
    int Rewind() { return Seek(0, SeekBegin); }
    int SeekToEnd() { return Seek(0, SeekEnd); }
    // The stream, or null while closed or temporarily closed.
    std::FILE* GetStream() const { return stream ? *stream : nullptr; }

private:
    virtual int MayBeTempClosed();
    virtual void TempClose();

public:
    // Closes the file, takes the new name and opens it with `mode`.
    virtual int ReOpen(const SYS_StringBase& newName, const SYS_StringBase& newMode);

private:
    // Reopens a temporarily closed file in its reopen mode, at its position.
    virtual void ReOpen();

public:
    virtual int IsValid();
    // Opens with `openMode`, or with the stored mode when it is empty.
    // Raises FileOpening, then FileOpened or FileOpenFailed; retries while
    // the answer is Retry.  Returns 1 when open.
    virtual int Open(SYS_StringBase openMode = "");
    // At the end: the stream says so, or the position equals the length.
    virtual int Eof();
    // Open or temporarily closed.
    virtual int IsOpen();
    virtual void Flush();
    // Raises FileClosed, or FileCloseFailed when closing (flushing) failed.
    virtual void Close();
    // For subclasses that map the file: called by Close when `mapped` is set.
    virtual void UnmapMemory();
    virtual int Seek(int offset, SeekType origin);
    // Saves the position and seeks; on failure returns 0 where it stood.
    virtual int PushPosition(int offset, SeekType origin);
    // Returns to the latest saved position; does nothing when none is saved.
    virtual void PopPosition();
    // The number of bytes read; FileReadFailed on a stream error.
    virtual long Read(void* buffer, long count);
    // 1 when all `count` bytes went into the stream.  The stream buffers, so
    // a failure to store them shows at Flush or Close; Write raises nothing.
    virtual int Write(const void* buffer, long count);

    virtual double Get(double& value);
    virtual unsigned long Get(unsigned long& value, int reverse);
    virtual long Get(long& value, int reverse);
    virtual unsigned char Get(unsigned char& value, int reverse);
    virtual char Get(char& value, int reverse);
    virtual unsigned short Get(unsigned short& value, int reverse);
    virtual short Get(short& value, int reverse);
    virtual unsigned int Get(unsigned int& value, int reverse);
    virtual int Get(int& value, int reverse);

    virtual void Put(double value);
    virtual void Put(unsigned long value, int reverse);
    virtual void Put(long value, int reverse);
    virtual void Put(unsigned char value, int reverse);
    virtual void Put(char value, int reverse);
    virtual void Put(unsigned short value, int reverse);
    virtual void Put(short value, int reverse);
    virtual void Put(unsigned int value, int reverse);
    virtual void Put(int value, int reverse);

    // The next byte, or -1 at the end, on an error or when not open.
    virtual char GetChar();
    virtual int PutChar(char c);
    // One line with its line feed, at most maxLength - 1 bytes (510 when
    // maxLength is 0 or 511 and more, none when it is negative); "" at the
    // end or on an error.
    virtual SYS_StringBase GetLine(long maxLength);
    // The text and a line feed; 1 when both were written.
    virtual int WriteLine(const SYS_StringBase& line);
    // The number of characters written, 0 on a failure.
    virtual long Printf(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // Closes the file and leaves the manager's list.  Virtual, after every
    // other slot, so that a file may be deleted through a base pointer.
    virtual ~SFM_File();

    // Field by field binary records: Put(value, 0) and Get(value, 0).
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

    SFM_SharedStream stream; // null while closed or temporarily closed
    SYS_StringBase name;
    SYS_StringBase mode;
    SYS_StringBase message;     // the text of the last failure
    long length;                // cached length, -1 while not measured
    int tempClosed;             // 1 while the manager has the file closed
    std::deque<long> positions; // saved positions, latest at the back
    int mapped;                 // non-zero: Close calls UnmapMemory

private:
    friend class SFM;

    void CheckLength();
    SYS_StringBase GetReOpenMode();
    // Opens `openMode` into `stream`.  When the process has no descriptor
    // left the manager closes another file and the open is tried again, for
    // as long as it finds one to close.  With `announce`, other failures
    // raise FileOpenFailed and are retried while the answer is Retry.
    // Returns 1 when open.
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
