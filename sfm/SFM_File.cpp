// SFM_File.cpp - files over C streams, their events, temporary closing and
// transparent reopening.
#include "SFM_File.h"

#include "sfm/internal/SFM_Registry.h"
#include "ssm/internal/SSM_Check.h"

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <type_traits>
#include <unistd.h>

static_assert(SEEK_SET == SFM_File::SeekBegin && SEEK_CUR == SFM_File::SeekCurrent &&
                  SEEK_END == SFM_File::SeekEnd,
              "seek origins are the C runtime's");

namespace {

// The cell of a shared stream closes what it still holds when the last
// holder lets go.
void CloseCell(std::FILE** cell) {
    if (*cell) std::fclose(*cell);
    delete cell;
}

// Lets go of `stream`.  The last holder closes it; a holder that shares it
// with a copy flushes it instead.  Returns 0, or the error code of the
// failed close or flush.
int ReleaseStream(SFM_SharedStream& stream) {
    int error = 0;
    if (stream && *stream) {
        errno = 0;
        if (stream.use_count() == 1) {
            if (std::fclose(*stream) != 0) error = errno ? errno : EIO;
            *stream = nullptr;
        } else if (std::fflush(*stream) != 0) {
            error = errno ? errno : EIO;
        }
    }
    stream.reset();
    return error;
}

// Opens `fileName` for the access `openMode` asks for, keeping what the file
// holds: unlike fopen, a "w" mode neither truncates nor creates the file, so
// a file the manager closed for the time being comes back with its content
// and its writes land where they would have landed.  An "a" mode still
// writes at the end, and a mode without "+" still refuses the other
// direction ("w" cannot read).  Null, with errno set, when the file cannot
// be opened; a file that is gone is not created again.
std::FILE* OpenKeeping(const char* fileName, const char* openMode) {
    const char* end = std::strchr(openMode, ',');
    const size_t flagsEnd = end ? static_cast<size_t>(end - openMode) : std::strlen(openMode);
    const bool update = std::memchr(openMode, '+', flagsEnd) != nullptr;
    int flags = update ? O_RDWR : O_WRONLY;
    switch (openMode[0]) {
    case 'r':
        if (!update) flags = O_RDONLY;
        break;
    case 'w':
        break;
    case 'a':
        flags |= O_APPEND;
        break;
    default:
        errno = EINVAL;
        return nullptr;
    }
    if (std::memchr(openMode, 'e', flagsEnd)) flags |= O_CLOEXEC;
    const int fd = ::open(fileName, flags);
    if (fd < 0) return nullptr;
    std::FILE* fp = ::fdopen(fd, openMode);
    if (!fp) {
        const int error = errno;
        ::close(fd);
        errno = error;
    }
    return fp;
}

// Bit 0 becomes the top bit, and so on over the width of U.
template <class U> U ReverseBits(U v) {
    U r = 0;
    for (unsigned i = 0; i < sizeof(U) * CHAR_BIT; ++i, v = static_cast<U>(v >> 1))
        r = static_cast<U>(r << 1 | (v & 1u));
    return r;
}

// Reads sizeof(Raw) bytes over the low bytes of `value`, as a read into the
// value itself would (bytes not read keep their old contents).
template <class Raw, class T> T GetBits(SFM_File& file, T& value, int reverse) {
    Raw raw = static_cast<Raw>(value);
    file.Read(&raw, sizeof raw);
    if (reverse) raw = ReverseBits(raw);
    typedef typename std::conditional<std::is_signed<T>::value,
                                      typename std::make_signed<Raw>::type, Raw>::type Widened;
    value = static_cast<T>(static_cast<Widened>(raw));
    return value;
}

template <class Raw, class T> void PutBits(SFM_File& file, T value, int reverse) {
    Raw raw = static_cast<Raw>(value);
    if (reverse) raw = ReverseBits(raw);
    file.Write(&raw, sizeof raw);
}

} // namespace

SFM_File::SFM_File(const char* fileName) : length(0), tempClosed(0), mapped(0), m_DeferredError(0) {
    SFM* manager = SFM::GetManager();
    SSM_CHECK(manager, "sfm/sfmfile", 62);
    if (fileName && *fileName) {
        name = fileName;
        CheckLength();
    }
    if (manager) manager->files.push_front(this);
}

SFM_File::SFM_File(const char* fileName, const char* openMode) : SFM_File(fileName) {
    SSM_CHECK(fileName && *fileName, "sfm/sfmfile", 75);
    SSM_CHECK(openMode && *openMode, "sfm/sfmfile", 76);
    mode = openMode;
    Open(mode);
    CheckLength();
}

SFM_File::SFM_File(const SFM_File& other)
    : stream(other.stream), name(other.name), mode(other.mode), message(other.message),
      length(other.length), tempClosed(other.tempClosed), positions(other.positions),
      mapped(other.mapped), m_DeferredError(0) {}

SFM_File& SFM_File::operator=(const SFM_File& other) {
    if (&other == this) return *this;
    stream = other.stream;
    name = other.name;
    mode = other.mode;
    message = other.message;
    length = other.length;
    tempClosed = other.tempClosed;
    positions = other.positions;
    mapped = other.mapped;
    return *this;
}

SFM_File::~SFM_File() {
    Close();
    SFM_ForgetFile(this);
}

const char* SFM_File::operator=(const char* newName) {
    SSM_CHECK(!IsOpen(), "sfm/sfmfile", 110);
    name = newName;
    return newName;
}

void SFM_File::SetName(const SYS_StringBase& newName) {
    SSM_CHECK(!IsOpen(), "sfm/sfmfile", 118);
    name = newName;
}

void SFM_File::SetMode(const SYS_StringBase& newMode) {
    SSM_CHECK(!IsOpen(), "sfm/sfmfile", 124);
    mode = newMode;
}

SFM::EventCode SFM_File::Raise(SFM::EventCode code) {
    SFM_EventData data(name);
    SFM* manager = SFM::GetManager();
    return manager ? manager->Event(code, data) : SFM::NoAnswer;
}

int SFM_File::OpenStream(const SYS_StringBase& openMode, SFM_EventData& data, bool announce) {
    for (;;) {
        errno = 0;
        SFM_SharedStream opened(new std::FILE*(nullptr), CloseCell);
        // Only Open creates or truncates: a reopen or a measure takes the
        // file as it is.
        *opened = announce ? std::fopen(name, openMode) : OpenKeeping(name, openMode);
        if (*opened) {
            stream = opened;
            return 1;
        }
        const int error = errno;
        SFM* manager = SFM::GetManager();
        if (!manager || (!announce && error != EMFILE)) return 0;
        const SFM::EventCode answer = manager->Event(SFM::FileOpenFailed, data);
        if (error == EMFILE && !manager->m_ClosedForRetry) {
            // No file left to close: the open fails with the system's text.
            manager->CreateMessage(SFM::FileOpenFailed, data);
            message = data.GetText();
            return 0;
        }
        if (answer != SFM::Retry) return 0;
    }
}

int SFM_File::MayBeTempClosed() { return stream && !tempClosed ? 1 : 0; }

void SFM_File::TempClose() {
    SSM_CHECK(MayBeTempClosed(), "sfm/sfmfile", 240);
    if (!stream) return;
    // Flush before the position is taken: the seek would push the buffered
    // bytes out itself and, when that fails, drop them without a trace.  A
    // failure is kept and reported by the next Close.
    errno = 0;
    if (*stream && std::fflush(*stream) != 0 && !m_DeferredError)
        m_DeferredError = errno ? errno : EIO;
    // ReOpen pops exactly one position, even for a stream that cannot tell it.
    if (!PushPosition(0, SeekCurrent)) positions.push_back(-1);
    tempClosed = 1;
    const int error = ReleaseStream(stream);
    if (error && !m_DeferredError) m_DeferredError = error;
}

int SFM_File::ReOpen(const SYS_StringBase& newName, const SYS_StringBase& newMode) {
    Close();
    SetName(newName);
    return Open(newMode);
}

void SFM_File::ReOpen() {
    SSM_CHECK(SFM::GetManager(), "sfm/sfmfile", 262);
    if (!tempClosed) return;
    tempClosed = 0;
    SFM_EventData data(name);
    SFM* manager = SFM::GetManager();
    if (manager) manager->Event(SFM::FileOpening, data);
    OpenStream(GetReOpenMode(), data, false);
    SSM_CHECK(stream, "sfm/sfmfile", 270);
    if (!stream) {
        // Still closed, position still saved: the next use tries again.
        tempClosed = 1;
        return;
    }
    PopPosition();
}

// The stored mode without "x": the file exists by now.  The reopen itself
// (OpenKeeping) neither truncates nor creates, so "w" modes keep their
// content and continue at the saved position.
SYS_StringBase SFM_File::GetReOpenMode() {
    SYS_StringBase reopen;
    bool options = false; // past a ',' (",ccs=..."), copied as it is
    for (int i = 0; i < mode.GetLength(); ++i) {
        const char c = mode.GetAt(i);
        options = options || c == ',';
        if (options || c != 'x') reopen += c;
    }
    return reopen;
}

int SFM_File::IsValid() { return 1; }

int SFM_File::Open(SYS_StringBase openMode) {
    SSM_CHECK(!IsOpen(), "sfm/sfmfile", 160);
    SSM_CHECK(SFM::GetManager(), "sfm/sfmfile", 161);
    SFM_EventData data(name);
    SFM* manager = SFM::GetManager();
    if (manager) manager->Event(SFM::FileOpening, data);
    if (!openMode.IsEmpty()) mode = openMode;
    if (!OpenStream(mode, data, true)) return 0;
    manager = SFM::GetManager();
    if (manager) manager->Event(SFM::FileOpened, data);
    length = -1;
    return 1;
}

int SFM_File::Eof() {
    SSM_CHECK(stream, "sfm/sfmfile", 300);
    ReOpen();
    if (!stream) return 1;
    if (std::feof(*stream)) return 1;
    return GetLength() == GetPosition() ? 1 : 0;
}

int SFM_File::IsOpen() { return stream || tempClosed ? 1 : 0; }

void SFM_File::Flush() {
    if (!IsOpen()) return;
    if (std::FILE* fp = ReadyStream(318)) std::fflush(fp);
}

void SFM_File::Close() {
    SSM_CHECK(SFM::GetManager(), "sfm/sfmfile", 205);
    if (IsOpen()) {
        // The close's own result decides; a failure met when the manager
        // closed the stream earlier is reported now, also when the file
        // could not be reopened to be closed.
        const bool ready = ReadyStream(210) != nullptr;
        int error = ready ? ReleaseStream(stream) : 0;
        if (!error) error = m_DeferredError;
        m_DeferredError = 0;
        errno = error;
        if (ready || error) Raise(error ? SFM::FileCloseFailed : SFM::FileClosed);
    }
    if (mapped) UnmapMemory();
    stream.reset();
    if (tempClosed) {
        // It could not be reopened: drop its saved position with it.
        tempClosed = 0;
        if (!positions.empty()) positions.pop_back();
    }
}

void SFM_File::UnmapMemory() {}

int SFM_File::Seek(int offset, SeekType origin) {
    ReOpen();
    if (!stream) return 0;
    return std::fseek(*stream, offset, origin) == 0 ? 1 : 0;
}

int SFM_File::SeekTo(long position) {
    ReOpen();
    if (!stream) return 0;
    return std::fseek(*stream, position, SEEK_SET) == 0 ? 1 : 0;
}

int SFM_File::PushPosition(int offset, SeekType origin) {
    const long at = GetPosition();
    if (Seek(offset, origin)) {
        positions.push_back(at);
        return 1;
    }
    SeekTo(at);
    return 0;
}

void SFM_File::PopPosition() {
    if (positions.empty()) return;
    const long at = positions.back();
    positions.pop_back();
    SeekTo(at);
}

long SFM_File::GetPosition() {
    ReOpen();
    if (!stream) return -1;
    return std::ftell(*stream);
}

long SFM_File::GetLength() {
    if (length != -1 || name.IsEmpty()) return length;
    if (IsOpen()) {
        ReOpen();
        if (!stream) return -1;
        std::FILE* fp = *stream;
        const long at = std::ftell(fp);
        std::fseek(fp, 0, SEEK_END);
        length = std::ftell(fp);
        std::fseek(fp, at, SEEK_SET);
        return length;
    }
    SFM_EventData data(name);
    if (!OpenStream("r", data, false)) return -1;
    SSM_CHECK(stream, "sfm/sfmfile", 480);
    std::fseek(*stream, 0, SEEK_END);
    length = std::ftell(*stream);
    ReleaseStream(stream);
    return length;
}

void SFM_File::CheckLength() {
    if (IsOpen() && GetPosition() < length) return;
    length = -1;
}

std::FILE* SFM_File::ReadyStream(int line) {
    ReOpen();
    errno = 0;
    SSM_CHECK(stream, "sfm/sfmfile", line);
    if (!stream) return nullptr;
    std::clearerr(*stream);
    return *stream;
}

int SFM_File::Failed(std::FILE* fp, SFM::EventCode code) {
    if (!std::ferror(fp)) return 0;
    Raise(code);
    // A handler may have closed the file.
    if (std::FILE* still = GetStream()) std::clearerr(still);
    return 1;
}

long SFM_File::Read(void* buffer, long count) {
    SSM_CHECK(buffer, "sfm/sfmfile", 330);
    if (!buffer || !IsOpen()) return 0;
    std::FILE* fp = ReadyStream(335);
    if (!fp || count <= 0) return 0;
    const long n = static_cast<long>(std::fread(buffer, 1, static_cast<size_t>(count), fp));
    Failed(fp, SFM::FileReadFailed);
    return n;
}

int SFM_File::Write(const void* buffer, long count) {
    SSM_CHECK(buffer, "sfm/sfmfile", 352);
    if (!buffer || !IsOpen()) return 0;
    std::FILE* fp = ReadyStream(356);
    if (!fp) return 0;
    const size_t n = count > 0 ? std::fwrite(buffer, 1, static_cast<size_t>(count), fp) : 0;
    // The error state is cleared before anyone looks at it: the result is
    // the only report of a failed write.
    std::clearerr(fp);
    CheckLength();
    return count >= 0 && n == static_cast<size_t>(count) ? 1 : 0;
}

double SFM_File::Get(double& value) {
    Read(&value, sizeof value);
    return value;
}
unsigned long SFM_File::Get(unsigned long& v, int r) { return GetBits<uint32_t>(*this, v, r); }
long SFM_File::Get(long& v, int r) { return GetBits<uint32_t>(*this, v, r); }
unsigned char SFM_File::Get(unsigned char& v, int r) { return GetBits<uint8_t>(*this, v, r); }
char SFM_File::Get(char& v, int r) { return GetBits<uint8_t>(*this, v, r); }
unsigned short SFM_File::Get(unsigned short& v, int r) { return GetBits<uint16_t>(*this, v, r); }
short SFM_File::Get(short& v, int r) { return GetBits<uint16_t>(*this, v, r); }
unsigned int SFM_File::Get(unsigned int& v, int r) { return GetBits<uint32_t>(*this, v, r); }
int SFM_File::Get(int& v, int r) { return GetBits<uint32_t>(*this, v, r); }

void SFM_File::Put(double value) { Write(&value, sizeof value); }
void SFM_File::Put(unsigned long v, int r) { PutBits<uint32_t>(*this, v, r); }
void SFM_File::Put(long v, int r) { PutBits<uint32_t>(*this, v, r); }
void SFM_File::Put(unsigned char v, int r) { PutBits<uint8_t>(*this, v, r); }
void SFM_File::Put(char v, int r) { PutBits<uint8_t>(*this, v, r); }
void SFM_File::Put(unsigned short v, int r) { PutBits<uint16_t>(*this, v, r); }
void SFM_File::Put(short v, int r) { PutBits<uint16_t>(*this, v, r); }
void SFM_File::Put(unsigned int v, int r) { PutBits<uint32_t>(*this, v, r); }
void SFM_File::Put(int v, int r) { PutBits<uint32_t>(*this, v, r); }

char SFM_File::GetChar() {
    if (!IsOpen()) return -1;
    std::FILE* fp = ReadyStream(380);
    if (!fp) return -1;
    const int c = std::fgetc(fp);
    return Failed(fp, SFM::FileReadFailed) ? -1 : static_cast<char>(c);
}

int SFM_File::PutChar(char c) {
    if (!IsOpen()) return 0;
    std::FILE* fp = ReadyStream(398);
    if (!fp) return 0;
    std::fputc(static_cast<unsigned char>(c), fp);
    const int ok = Failed(fp, SFM::FileWriteFailed) ? 0 : 1;
    CheckLength();
    return ok;
}

SYS_StringBase SFM_File::GetLine(long maxLength) {
    if (!IsOpen() || maxLength < 0) return SYS_StringBase();
    std::FILE* fp = ReadyStream(420);
    if (!fp) return SYS_StringBase();
    const int limit = maxLength == 0 || maxLength >= 511 ? 511 : static_cast<int>(maxLength);
    char buffer[511];
    if (!std::fgets(buffer, limit, fp)) {
        Failed(fp, SFM::FileReadFailed);
        return SYS_StringBase();
    }
    return SYS_StringBase(buffer);
}

int SFM_File::WriteLine(const SYS_StringBase& line) {
    const int text = Write(line.GetString(), line.GetLength());
    const int end = Write("\n", 1);
    return text && end ? 1 : 0;
}

long SFM_File::Printf(const char* format, ...) {
    SSM_CHECK(format, "sfm/sfmfile", 450);
    if (!format || !IsOpen()) return 0;
    std::FILE* fp = ReadyStream(455);
    if (!fp) return 0;
    va_list args;
    va_start(args, format);
    const int n = std::vfprintf(fp, format, args);
    va_end(args);
    const long written = Failed(fp, SFM::FileWriteFailed) || n < 0 ? 0 : n;
    CheckLength();
    return written;
}
