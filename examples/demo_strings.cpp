// demo_strings.cpp - keel-demo step: strings, fields and number scanning.
#include "demo_steps.h"
#include <keel/keel.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

const char* YesNo(int v) { return v ? "yes" : "-"; }

// The floating-point number that starts `s`, as getdouble reads it.
std::string LeadingDouble(const char* s) {
    const char* end = getdouble(s, 0);
    return end ? std::string(s, end) : std::string("(none)");
}

// The texts joined by " < ".
std::string Ordered(const std::vector<const char*>& texts) {
    std::string out;
    for (const char* t : texts) out += (out.empty() ? "" : " < ") + std::string(t);
    return out;
}

} // namespace

KEEL_DEMO_STEP(10, "Strings and number scanning") {
    DemoIntro("SYS_StringBase holds 8-bit text in the process code page. CAM files are full of "
              "paths, separated fields and numbers; keel splits, searches and scans them, and its "
              "multibyte-aware searches never split a double-byte character.");

    SYS_StringBase path("boards/panel_A/top.gbr");
    int slash = path.ReverseFindOneOf("/", -2);
    int dot = path.ReverseFind('.', -2);
    std::printf("  '%s' (%d bytes): last '/' at %d, file '%s', extension '%s'\n", path.GetString(),
                path.GetLength(), slash, path.Mid(slash + 1).GetString(),
                path.Mid(dot + 1).GetString());

    SYS_StringBase list("drill, route ,, mill");
    int pos = 0;
    std::printf("  Tokenize(\",\"): '%s' ->", list.GetString());
    for (SYS_StringBase t = list.Tokenize(",", pos); pos != -1; t = list.Tokenize(",", pos))
        std::printf(" [%s]", t.AllTrim().GetString());
    std::printf(" (trimmed, empty skipped)\n");

    const char* record = "X1200;Y-350;;D02";
    SYS_StringBase field;
    std::printf("  SysExtractSubString(';'): '%s' ->", record);
    for (int i = 0; SysExtractSubString(field, record, i, ';'); ++i)
        std::printf(" %d=[%s]", i, field.GetString());
    std::printf(" (empty kept)\n");

    std::printf(
        "  Scanners: is... = yes when the WHOLE text is one number of that kind (isdecdouble:\n"
        "  no exponent); getdouble = the number read from the start. Signs are skipped\n"
        "  anywhere (1-2 passes); the caller picks the base: no 0x prefix, a leading 0 is just\n"
        "  a digit, and e is a hex digit (1e5 is hex 1E5).\n");
    std::printf("    %-8s %-9s %-12s %-13s %-13s %-13s %s\n", "text", "isdouble", "isdecdouble",
                "isdecinteger", "isoctinteger", "ishexinteger", "getdouble");
    const char* numbers[] = {"1e5", ".5", "1.2.3", "017", "1F", "0x1F", "1-2"};
    for (const char* n : numbers)
        std::printf("    %-8s %-9s %-12s %-13s %-13s %-13s %s\n", n, YesNo(isdouble(n, 0)),
                    YesNo(isdecdouble(n)), YesNo(isdecinteger(n)), YesNo(isoctinteger(n)),
                    YesNo(ishexinteger(n)), LeadingDouble(n).c_str());

    SYS_StringBase v("  -42mm");
    long value = 0;
    const char* end = nullptr;
    v.Value(&value, &end);
    std::printf("  Value('%s') = %ld, stops at '%s' (reads the start, skipping blanks)\n",
                v.GetString(), value, end);

    // Natural order compares digit runs by value, as a pad list should sort.
    std::vector<const char*> names = {"pad10", "pad2", "pad$", "pad"};
    std::sort(names.begin(), names.end(),
              [](const char* a, const char* b) { return _tcsnumcmp(a, b) < 0; });
    std::printf("  natural order (_tcsnumcmp): %s  (numbers by value, '$' last)\n",
                Ordered(names).c_str());
    std::sort(names.begin(), names.end(),
              [](const char* a, const char* b) { return std::strcmp(a, b) < 0; });
    std::printf("  plain byte order (strcmp) : %s\n", Ordered(names).c_str());

    SYS_StringBase report;
    report << "layers: " << 4 << ", thickness: " << 1.6 << " mm";
    std::printf("  operator<< builds '%s'\n", report.GetString());

    // In code page 932 the byte 0x5C after the lead byte 0x83 is the second
    // half of one double-byte character, not a backslash.
    int previous = SYS_SetCodePage(932);
    SYS_StringBase sjis("\x83\x5C/x");
    int mbcs = sjis.FindOneOf("\\");
    int byte = sjis.Find('\\');
    int sep = sjis.FindOneOf("/");
    SYS_SetCodePage(previous);
    std::printf("  code page 932, bytes 83 5C 2F 78: FindOneOf(\"\\\\\") %s; 5C is the trail byte "
                "of the\n  character 83 5C, not a backslash. Find('\\\\'), a byte search, "
                "returns %d; '/' is at %d.\n",
                mbcs < 0 ? "finds nothing" : ("finds " + std::to_string(mbcs)).c_str(), byte, sep);
}
