/// @file
/// SFM_FilePath, a path split into base, directory, name and extension.
///
/// The base is a drive with its colon ("C:") or the root of a network path
/// (two separators, server, separator, share, separator); the relative
/// directory keeps its separators; the extension keeps its dot.  Both the
/// backslash and the slash separate directories; the one the class adds is
/// DirectorySeparators[DefaultSeparator] (the backslash unless the host
/// changes the index).  After every change fullPath is rebuilt as
/// basePath + relPath + fileName + fileExtension.
///
/// | Path | basePath | relPath | fileName | fileExtension |
/// |---|---|---|---|---|
/// | `C:\work\data\file.txt` | `C:` | `\work\data\` | `file` | `.txt` |
/// | `\\srv\share\dir\a.b.c` | `\\srv\share\` | `dir\` | `a.b` | `.c` |
/// | `\\srv` | `\\srv` | | | |
/// | `ab:cd` | `ab:` | | `cd` | |
/// | `.profile` | | | | `.profile` |
/// | `dir/` | | `dir/` | | |
///
/// Setters parse their value as a path of its own and copy the part they
/// name, so a directory given to SetRelPath or SetFileDirectory must end with
/// a separator, SetFileExtension("") gives "." and SetFileNameExt("readme")
/// gives "readme.readme".  Scanning follows the code page in force, so a
/// trail byte that equals a separator is not taken for one.
///
/// Costs: every parse and every change is linear in the path and builds a
/// handful of strings; nothing touches the file system.
#ifndef SFM_FILEPATH_H
#define SFM_FILEPATH_H

#include "SYS_String.h"
#include "keel_config.h"

/// A path split into its parts, which can be read and replaced one by one.
///
/// A value class: copies are deep.  Nothing here checks that a file or
/// directory exists.  Getters that take a path and all setters change this
/// object; each returns a new string.
class KEEL_API SFM_FilePath {
public:
    /// An empty path: every part "".
    SFM_FilePath();
    /// Parses `path` (null counts as "").
    SFM_FilePath(const char* path);
    ///@{
    /// Copies the six parts.
    SFM_FilePath(const SFM_FilePath& other) = default;
    SFM_FilePath& operator=(const SFM_FilePath& other) = default;
    ///@}

    /// Parses `path`; a null path empties every part.  Returns fullPath.
    SYS_StringBase operator=(const char* path);

    /// The whole path.
    operator SYS_StringBase() const { return fullPath; }
    /// The whole path's text; it belongs to this object and is valid until
    /// the path changes or goes away.
    operator const char*() const { return fullPath.GetString(); }
    /// 1 when the whole path is empty, else 0.
    int IsEmpty() const { return fullPath.IsEmpty(); }

    ///@{
    /// Each getter first parses a non-null `path` as operator= does (it
    /// replaces this path), then returns its part: the base, the relative
    /// directory, base and directory together (GetFileDirectory), name with
    /// extension, name, or extension with its dot.  A missing part is "".
    SYS_StringBase GetBasePath(const char* path = nullptr);
    SYS_StringBase GetRelPath(const char* path = nullptr);
    SYS_StringBase GetFileDirectory(const char* path = nullptr);
    SYS_StringBase GetFileNameExt(const char* path = nullptr);
    SYS_StringBase GetFileName(const char* path = nullptr);
    SYS_StringBase GetFileExtension(const char* path = nullptr);
    ///@}

    ///@{
    /// Each setter parses `value` as a path and copies its part(s); the
    /// two-argument forms call the matching getter with `path` first.  All
    /// return fullPath.  A null value counts as empty.
    ///
    /// So a directory must end with a separator: SetFileDirectory with
    /// `C:\work` sets the base `C:` and the directory `\`, the last
    /// component being taken for a file name and dropped.  SetFileName with
    /// `a.txt` sets the name `a`.  SetFileDirectory sets base and directory
    /// together.
    SYS_StringBase SetBasePath(const char* value);
    SYS_StringBase SetBasePath(const char* path, const char* value);
    SYS_StringBase SetRelPath(const char* value);
    SYS_StringBase SetRelPath(const char* path, const char* value);
    SYS_StringBase SetFileDirectory(const char* value);
    SYS_StringBase SetFileDirectory(const char* path, const char* value);
    SYS_StringBase SetFileName(const char* value);
    SYS_StringBase SetFileName(const char* path, const char* value);
    ///@}
    ///@{
    /// A dot is put in front of a value that is empty or does not start with one.
    /// The extension is then the last dot and what follows: "txt" and ".txt"
    /// give ".txt", "a.b" gives ".b", "" gives ".".  Returns fullPath.
    SYS_StringBase SetFileExtension(const char* value);
    SYS_StringBase SetFileExtension(const char* path, const char* value);
    ///@}
    ///@{
    /// SetFileName(value), then SetFileExtension(value).
    /// So "notes.txt" sets the name "notes" and the extension ".txt", but a
    /// value without a dot serves as both: "readme" gives "readme.readme".
    /// Returns fullPath.
    SYS_StringBase SetFileNameExt(const char* value);
    SYS_StringBase SetFileNameExt(const char* path, const char* value);
    ///@}

    /// Fills each empty part (base, directory, name, extension) from `path`.
    /// Returns fullPath.
    SYS_StringBase SetDefault(const char* path);
    /// Puts a path without base below `path` (a directory, with or without a
    /// closing separator); a path that has a base is left alone.
    /// `C:\data` on `sub\f.txt` gives `C:\data\sub\f.txt`; on `D:\x.txt`
    /// it changes nothing.  Returns fullPath.
    SYS_StringBase SetDefPath(const char* path);
    /// Appends the default separator unless the path is empty or already
    /// ends with it, and parses the result.
    /// `C:\work` becomes `C:\work\` (directory `\work\`, no name).  A path
    /// ending in the other separator gets the default one added after it.
    void AddSeparator();

    SYS_StringBase fullPath;      ///< the whole path: basePath + relPath + fileNameExt
    SYS_StringBase basePath;      ///< drive and colon, network root with its separator, or ""
    SYS_StringBase relPath;       ///< the directory after the base, with its separators, or ""
    SYS_StringBase fileNameExt;   ///< fileName + fileExtension
    SYS_StringBase fileName;      ///< the name without its extension
    SYS_StringBase fileExtension; ///< the extension from its dot on, or ""

    /// The characters that separate directories: backslash, then slash.
    /// Process-wide; a host that changes it changes how every path parses.
    static SYS_StringBase DirectorySeparators;
    /// The index in DirectorySeparators of the separator the class adds.
    /// 0 (the backslash) at first; set 1 for the slash.  An index outside
    /// DirectorySeparators gives the backslash.  Process-wide.
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
    /// Virtual, after Process, so that a path may be deleted through a base
    /// pointer.
    virtual ~SFM_FilePath();
};

#endif // SFM_FILEPATH_H
