// SYS_Locale.cpp - locale character set detection and UTF-16 conversion.
#include "sys/internal/SYS_Locale.h"
#include "SYS_CodePage.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <clocale>
#include <cstring>
#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

namespace {

std::string Normalised(const std::string& name) {
    std::string out;
    for (char c : name)
        if (std::isalnum(static_cast<unsigned char>(c)))
            out += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return out;
}

// The iconv name of the code page in force.
std::string TargetCharset() {
    switch (SYS_GetCodePage()) {
    case 932:
        return "CP932";
    case 936:
        return "CP936";
    case 949:
        return "CP949";
    case 950:
        return "CP950";
    default:
        break;
    }
    std::string cs = SYS_LocaleCharset();
    return cs.empty() ? std::string("UTF-8") : cs;
}

// Appends one '?' for the character at `in` and steps over it (a whole
// surrogate pair when there is one).
void SkipUnconvertible(char*& in, size_t& inLeft, std::string& out) {
    size_t step = 2;
    if (inLeft >= 4) {
        unsigned short u;
        std::memcpy(&u, in, 2);
        unsigned short v;
        std::memcpy(&v, in + 2, 2);
        if (u >= 0xD800 && u <= 0xDBFF && v >= 0xDC00 && v <= 0xDFFF) step = 4;
    }
    step = std::min(step, inLeft);
    in += step;
    inLeft -= step;
    out += '?';
}

} // namespace

std::string SYS_LocaleCharset() {
    const char* current = std::setlocale(LC_CTYPE, nullptr);
    bool plain = !current || !std::strcmp(current, "C") || !std::strcmp(current, "POSIX");
    if (!plain) return nl_langinfo(CODESET);
    locale_t env = newlocale(LC_CTYPE_MASK, "", static_cast<locale_t>(0));
    if (!env) return nl_langinfo(CODESET);
    std::string cs = nl_langinfo_l(CODESET, env);
    freelocale(env);
    return cs;
}

int SYS_CodePageOfCharset(const std::string& charset) {
    std::string n = Normalised(charset);
    if (n == "SHIFTJIS" || n == "SJIS" || n == "CP932" || n == "WINDOWS31J") return 932;
    if (n == "GBK" || n == "GB2312" || n == "GB18030" || n == "CP936" || n == "EUCCN") return 936;
    if (n == "EUCKR" || n == "CP949" || n == "UHC") return 949;
    if (n == "BIG5" || n == "CP950" || n == "BIG5HKSCS") return 950;
    return 0;
}

std::string SYS_WideToMultiByte(const unsigned short* w, size_t n) {
    std::string out;
    if (n == 0) return out;
    iconv_t cd = iconv_open(TargetCharset().c_str(), "UTF-16LE");
    if (cd == reinterpret_cast<iconv_t>(-1)) cd = iconv_open("UTF-8", "UTF-16LE");
    if (cd == reinterpret_cast<iconv_t>(-1)) return out;

    std::string units(n * 2, '\0');
    for (size_t i = 0; i < n; ++i) {
        units[2 * i] = static_cast<char>(w[i] & 0xFF);
        units[2 * i + 1] = static_cast<char>(w[i] >> 8);
    }
    char* in = &units[0];
    size_t inLeft = units.size();
    char buf[256];
    while (inLeft > 0) {
        char* o = buf;
        size_t oLeft = sizeof buf;
        size_t r = iconv(cd, &in, &inLeft, &o, &oLeft);
        out.append(buf, static_cast<size_t>(o - buf));
        if (r == static_cast<size_t>(-1) && errno != E2BIG) SkipUnconvertible(in, inLeft, out);
    }
    char* o = buf;
    size_t oLeft = sizeof buf;
    iconv(cd, nullptr, nullptr, &o, &oLeft);
    out.append(buf, static_cast<size_t>(o - buf));
    iconv_close(cd);
    return out;
}
