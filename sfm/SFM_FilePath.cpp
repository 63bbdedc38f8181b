// SFM_FilePath.cpp - splitting paths into their parts and putting them
// together again.
#include "SFM_FilePath.h"

#include "sys/internal/SYS_Mbcs.h"

#include <cstring>

SYS_StringBase SFM_FilePath::DirectorySeparators("\\/");
int SFM_FilePath::DefaultSeparator = 0;

namespace {

// The separator the class adds; the backslash when the host left the index
// outside DirectorySeparators.
char DefaultSeparatorChar() {
    const SYS_StringBase& seps = SFM_FilePath::DirectorySeparators;
    const int i = SFM_FilePath::DefaultSeparator;
    return i >= 0 && i < seps.GetLength() && seps.GetAt(i) != '\0' ? seps.GetAt(i) : '\\';
}

// The first separator of `s` at or after `from` (a character boundary), or null.
const char* NextSeparator(const char* from) {
    return SYS_MbsPbrk(from, SFM_FilePath::DirectorySeparators.GetString());
}

// The start of the last character of `s`, or null when `s` is empty.
const char* LastCharacter(const char* s) {
    const char* last = nullptr;
    for (; *s; s = SYS_MbsInc(s)) last = s;
    return last;
}

bool EndsWithDefaultSeparator(const SYS_StringBase& s) {
    const char* last = LastCharacter(s.GetString());
    return last && SYS_MbcValue(last) == static_cast<unsigned char>(DefaultSeparatorChar());
}

} // namespace

SFM_FilePath::SFM_FilePath() {}

SFM_FilePath::SFM_FilePath(const char* path) { Process(SYS_NotNull(path)); }

SFM_FilePath::~SFM_FilePath() {}

SYS_StringBase SFM_FilePath::operator=(const char* path) {
    if (path)
        Process(path);
    else
        Clear();
    return fullPath;
}

// The text is taken up to its first NUL, as every scan stops there.
void SFM_FilePath::Process(const SYS_StringBase& path) {
    const char* p = path.GetString();
    const int n = static_cast<int>(std::strlen(p));
    const char* seps = DirectorySeparators.GetString();

    // Base: up to the first colon, or a network root of two equal separators,
    // a server and a share; the rest of the path starts after it.
    int rest = 0;
    if (const char* colon = SYS_MbsChr(p, ':')) {
        rest = static_cast<int>(colon - p) + 1;
    } else if (n > 2 && p[0] != '\0' && std::strchr(seps, p[0]) && p[1] == p[0]) {
        const char* server = NextSeparator(p + 2);
        const char* share = server ? NextSeparator(SYS_MbsInc(server)) : nullptr;
        rest = share ? static_cast<int>(share - p) + 1 : n;
    }
    basePath = SYS_StringBase(p, rest);

    // Directory: from the rest's start to the last separator of the path.
    int lastSep = -1;
    for (const char* hit = NextSeparator(p); hit; hit = NextSeparator(SYS_MbsInc(hit)))
        lastSep = static_cast<int>(hit - p);
    if (lastSep < rest) {
        relPath.Empty();
        fileNameExt = SYS_StringBase(p + rest, n - rest);
    } else {
        relPath = SYS_StringBase(p + rest, lastSep + 1 - rest);
        fileNameExt = SYS_StringBase(p + lastSep + 1, n - lastSep - 1);
    }

    // Extension: from the last dot of the name on.
    const char* name = fileNameExt.GetString();
    if (const char* dot = SYS_MbsRChr(name, '.')) {
        const int at = static_cast<int>(dot - name);
        fileName = SYS_StringBase(name, at);
        fileExtension = SYS_StringBase(dot, fileNameExt.GetLength() - at);
    } else {
        fileName = fileNameExt;
        fileExtension.Empty();
    }
    Regenerate();
}

void SFM_FilePath::Regenerate() {
    fileNameExt = fileName + fileExtension;
    fullPath = basePath + relPath + fileNameExt;
}

void SFM_FilePath::Clear() {
    basePath.Empty();
    relPath.Empty();
    fileName.Empty();
    fileExtension.Empty();
    Regenerate();
}

// A getter first parses a non-null path, and always rebuilds the whole.
SYS_StringBase SFM_FilePath::Part(const char* path, const SYS_StringBase& part) {
    if (path) *this = path;
    Regenerate();
    return part;
}

SYS_StringBase SFM_FilePath::Rebuilt() {
    Regenerate();
    return fullPath;
}

SYS_StringBase SFM_FilePath::GetBasePath(const char* path) { return Part(path, basePath); }
SYS_StringBase SFM_FilePath::GetRelPath(const char* path) { return Part(path, relPath); }
SYS_StringBase SFM_FilePath::GetFileNameExt(const char* path) { return Part(path, fileNameExt); }
SYS_StringBase SFM_FilePath::GetFileName(const char* path) { return Part(path, fileName); }
SYS_StringBase SFM_FilePath::GetFileExtension(const char* path) {
    return Part(path, fileExtension);
}
SYS_StringBase SFM_FilePath::GetFileDirectory(const char* path) {
    Part(path, fullPath);
    return basePath + relPath;
}

SYS_StringBase SFM_FilePath::SetBasePath(const char* value) {
    basePath = SFM_FilePath(value).basePath;
    return Rebuilt();
}

SYS_StringBase SFM_FilePath::SetRelPath(const char* value) {
    relPath = SFM_FilePath(value).relPath;
    return Rebuilt();
}

SYS_StringBase SFM_FilePath::SetFileDirectory(const char* value) {
    const SFM_FilePath parsed(value);
    basePath = parsed.basePath;
    relPath = parsed.relPath;
    return Rebuilt();
}

SYS_StringBase SFM_FilePath::SetFileName(const char* value) {
    fileName = SFM_FilePath(value).fileName;
    return Rebuilt();
}

SYS_StringBase SFM_FilePath::SetFileExtension(const char* value) {
    SYS_StringBase ext(SYS_NotNull(value));
    if (ext.IsEmpty() || ext.GetAt(0) != '.') ext = "." + ext;
    fileExtension = SFM_FilePath(ext.GetString()).fileExtension;
    return Rebuilt();
}

SYS_StringBase SFM_FilePath::SetFileNameExt(const char* value) {
    SetFileName(value);
    return SetFileExtension(value);
}

// The two-argument setters: the matching getter with `path`, then the setter.
SYS_StringBase SFM_FilePath::SetBasePath(const char* path, const char* value) {
    return GetBasePath(path), SetBasePath(value);
}
SYS_StringBase SFM_FilePath::SetRelPath(const char* path, const char* value) {
    return GetRelPath(path), SetRelPath(value);
}
SYS_StringBase SFM_FilePath::SetFileDirectory(const char* path, const char* value) {
    return GetFileDirectory(path), SetFileDirectory(value);
}
SYS_StringBase SFM_FilePath::SetFileName(const char* path, const char* value) {
    return GetFileName(path), SetFileName(value);
}
SYS_StringBase SFM_FilePath::SetFileExtension(const char* path, const char* value) {
    return GetFileExtension(path), SetFileExtension(value);
}
SYS_StringBase SFM_FilePath::SetFileNameExt(const char* path, const char* value) {
    return GetFileNameExt(path), SetFileNameExt(value);
}

SYS_StringBase SFM_FilePath::SetDefault(const char* path) {
    const SFM_FilePath parsed(path);
    if (basePath.IsEmpty()) basePath = parsed.basePath;
    if (relPath.IsEmpty()) relPath = parsed.relPath;
    if (fileName.IsEmpty()) fileName = parsed.fileName;
    if (fileExtension.IsEmpty()) fileExtension = parsed.fileExtension;
    return Rebuilt();
}

SYS_StringBase SFM_FilePath::SetDefPath(const char* path) {
    if (!basePath.IsEmpty()) return fullPath;
    const SFM_FilePath parsed(path);
    const char separator = DefaultSeparatorChar();
    basePath = parsed.basePath;
    SYS_StringBase prefix = parsed.relPath + parsed.fileNameExt;
    if (!prefix.IsEmpty() && !EndsWithDefaultSeparator(prefix)) prefix += separator;
    relPath = prefix + relPath;
    if (!relPath.IsEmpty() && !EndsWithDefaultSeparator(relPath)) relPath += separator;
    return Rebuilt();
}

void SFM_FilePath::AddSeparator() {
    if (fullPath.IsEmpty() || EndsWithDefaultSeparator(fullPath)) return;
    Process(fullPath + DefaultSeparatorChar());
}
