// SFM_FilePath.h - a path split into base, directory, name and extension.
//
// The base is a drive with its colon ("C:") or the root of a network path
// (two separators, server, separator, share, separator); the relative
// directory keeps its separators; the extension keeps its dot.  Both the
// backslash and the slash separate directories; the one the class adds is
// DirectorySeparators[DefaultSeparator] (the backslash unless the host
// changes the index).  After every change fullPath is rebuilt as
// basePath + relPath + fileName + fileExtension.
//
// Setters parse their value as a path of its own and copy the part they
// name, so a directory given to SetRelPath or SetFileDirectory must end with
// a separator, SetFileExtension("") gives "." and SetFileNameExt("readme")
// gives "readme.readme".  Scanning follows the code page in force, so a
// trail byte that equals a separator is not taken for one.
//
// Costs: every parse and every change is linear in the path and builds a
// handful of strings; nothing touches the file system.
#ifndef SFM_FILEPATH_H
#define SFM_FILEPATH_H

#include "SYS_String.h"
#include "keel_config.h"

class KEEL_API SFM_FilePath {
public:
    SFM_FilePath();
    SFM_FilePath(const char* path);
    SFM_FilePath(const SFM_FilePath& other) = default;
    SFM_FilePath& operator=(const SFM_FilePath& other) = default;

    // Parses `path`; a null path empties every part.  Returns fullPath.
    SYS_StringBase operator=(const char* path);

    operator SYS_StringBase() const { return fullPath; }
    operator const char*() const { return fullPath.GetString(); }
    int IsEmpty() const { return fullPath.IsEmpty(); }

    // Each getter first parses a non-null `path` as operator= does.
    SYS_StringBase GetBasePath(const char* path = nullptr);
    SYS_StringBase GetRelPath(const char* path = nullptr);
    SYS_StringBase GetFileDirectory(const char* path = nullptr); // base + directory
    SYS_StringBase GetFileNameExt(const char* path = nullptr);
    SYS_StringBase GetFileName(const char* path = nullptr);
    SYS_StringBase GetFileExtension(const char* path = nullptr);

    // Each setter parses `value` as a path and copies its part(s); the
    // two-argument forms call the matching getter with `path` first.  All
    // return fullPath.  A null value counts as empty.
    SYS_StringBase SetBasePath(const char* value);
    SYS_StringBase SetBasePath(const char* path, const char* value);
    SYS_StringBase SetRelPath(const char* value);
    SYS_StringBase SetRelPath(const char* path, const char* value);
    SYS_StringBase SetFileDirectory(const char* value); // base and directory
    SYS_StringBase SetFileDirectory(const char* path, const char* value);
    SYS_StringBase SetFileName(const char* value);
    SYS_StringBase SetFileName(const char* path, const char* value);
    // A dot is put in front of a value that is empty or does not start with one.
    SYS_StringBase SetFileExtension(const char* value);
    SYS_StringBase SetFileExtension(const char* path, const char* value);
    // SetFileName(value), then SetFileExtension(value).
    SYS_StringBase SetFileNameExt(const char* value);
    SYS_StringBase SetFileNameExt(const char* path, const char* value);

    // Fills each empty part (base, directory, name, extension) from `path`.
    SYS_StringBase SetDefault(const char* path);
    // Puts a path without base below `path` (a directory, with or without a
    // closing separator); a path that has a base is left alone.
    SYS_StringBase SetDefPath(const char* path);
    // Appends the default separator unless the path is empty or already
    // ends with it, and parses the result.
    void AddSeparator();

    SYS_StringBase fullPath;
    SYS_StringBase basePath;
    SYS_StringBase relPath;
    SYS_StringBase fileNameExt;
    SYS_StringBase fileName;
    SYS_StringBase fileExtension;

    // The characters that separate directories: backslash, then slash.
    static SYS_StringBase DirectorySeparators;
    // The index in DirectorySeparators of the separator the class adds.
    static int DefaultSeparator;

private:
    virtual void Process(const SYS_StringBase& path);
    void Regenerate();
    void Clear();
    // Parses a non-null `path`, rebuilds the whole and returns `part`.
    SYS_StringBase Part(const char* path, const SYS_StringBase& part);
    // Rebuilds the whole and returns it.
    SYS_StringBase Rebuilt();

public:
    // Virtual, after Process, so that a path may be deleted through a base
    // pointer.
    virtual ~SFM_FilePath();
};

#endif // SFM_FILEPATH_H
