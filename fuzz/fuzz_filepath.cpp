// Fuzzes SFM_FilePath with arbitrary bytes under every code page: parsing,
// every setter, defaults and the added separator.  After each operation the
// whole path must be its parts put together, and a parse must give back its
// input.  The first byte picks the code page and the default separator; the
// rest is split at its first NUL into a path and a value.
//   build/fuzz/fuzz/fuzz_filepath -max_total_time=300 /tmp/corpus fuzz/corpus/filepath
#include <keel/SFM_FilePath.h>
#include <keel/SYS_CodePage.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

void Check(const SFM_FilePath& p) {
    const SYS_StringBase whole = p.basePath + p.relPath + p.fileName + p.fileExtension;
    if (std::strcmp(whole, p.fullPath) != 0) __builtin_trap();
    if (std::strcmp(p.fileName + p.fileExtension, p.fileNameExt) != 0) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    static const int pages[] = {0, 932, 936, 949, 950};
    SYS_SetCodePage(pages[data[0] % 5]);
    SFM_FilePath::DefaultSeparator = (data[0] / 5) % 3; // 2 falls back to the backslash
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::string path = text.substr(0, text.find('\0'));
    const std::string value = path.size() < text.size() ? text.substr(path.size() + 1) : "";
    const char* v = value.c_str();

    SFM_FilePath p(path.c_str());
    Check(p);
    if (p.fullPath != path.c_str()) __builtin_trap();

    typedef SYS_StringBase (SFM_FilePath::*Setter)(const char*);
    static const Setter setters[] = {&SFM_FilePath::SetBasePath,      &SFM_FilePath::SetRelPath,
                                     &SFM_FilePath::SetFileDirectory, &SFM_FilePath::SetFileName,
                                     &SFM_FilePath::SetFileExtension, &SFM_FilePath::SetFileNameExt,
                                     &SFM_FilePath::SetDefault,       &SFM_FilePath::SetDefPath};
    for (Setter set : setters) {
        SFM_FilePath q(p);
        (q.*set)(v);
        Check(q);
        q.AddSeparator();
        Check(q);
    }
    SFM_FilePath q;
    q.SetFileNameExt(path.c_str(), v);
    Check(q);
    q.GetFileDirectory(v);
    Check(q);
    q = nullptr;
    if (!q.IsEmpty()) __builtin_trap();
    return 0;
}
