// Fuzzes the text scanners and the multibyte-aware string operations with
// arbitrary bytes under every code page: none may read past a terminator.
// The first byte picks the code page; the rest is split into a text and a
// second operand (a set, delimiters, another text).
//   build/fuzz/fuzz/fuzz_text -max_total_time=60 /tmp/corpus fuzz/corpus/text
// (new inputs go to the first folder; the seeds stay as they are).
#include <keel/SYS_CodePage.h>
#include <keel/SYS_Scan.h>
#include <keel/SYS_String.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    static const int pages[] = {0, 932, 936, 949, 950};
    SYS_SetCodePage(pages[data[0] % 5]);
    std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    size_t half = text.size() / 2;
    std::string a = text.substr(0, half), b = text.substr(half);
    const char* s = a.c_str();

    getdouble(s, 0);
    getdouble(s, 1);
    for (int kind = 0; kind < 4; ++kind) getinteger(s, kind);
    _tcsnumcmp(s, b.c_str());

    SYS_StringBase str(text.data(), static_cast<int>(text.size()));
    str.FindOneOf(b.c_str(), static_cast<int>(half));
    str.ReverseFindOneOf(b.c_str(), -2);
    str.ReverseFind(b.empty() ? 'x' : b[0], -2);
    str.SpanIncluding(b.c_str());
    str.SpanExcluding(b.c_str());
    str.Compare(b.c_str());
    // Under a single-byte code page the order of two string objects is
    // strcmp's, whatever NULs the texts hold.
    const SYS_StringBase other(b.data(), static_cast<int>(b.size()));
    const int order = str.Compare(other);
    if (SYS_GetCodePage() == 0) {
        const int r = std::strcmp(str.GetString(), other.GetString());
        if (order != (r > 0) - (r < 0)) __builtin_trap();
    }
    str.CompareNoCase(b.c_str());
    int pos = 0;
    for (int n = 0; n < 64 && pos >= 0; ++n) str.Tokenize(b.c_str(), pos);
    SYS_StringBase field;
    SysExtractSubString(field, s, static_cast<int>(data[0] % 4), b.empty() ? ',' : b[0]);
    return 0;
}
