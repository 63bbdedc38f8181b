// demo_pattern.cpp - keel-demo step: searching and renaming with patterns.
#include "demo_steps.h"
#include <keel/keel.h>

#include <cstdio>
#include <string>

namespace {

const char* const kNetlist = "NET N12_CLK U3-4 R7-1;\n"
                             "NET GND U3-8 C2-2 C5-2;\n"
                             "NET N7_RST U3-1 R9-2;\n"
                             "PAD 14 TOP_COPPER 0.25;\n";

// Every match of `pattern` in the netlist, in brackets.
void ShowMatches(const char* pattern, const char* what) {
    const SYS_StrPattern p(pattern);
    std::string found;
    const char* text = kNetlist;
    int length = 0, count = 0;
    for (int at; (at = p.Match(text, &length)) >= 0; text += at + (length ? length : 1)) {
        found += " [" + std::string(text + at, static_cast<size_t>(length)) + "]";
        ++count;
    }
    std::printf("  %-22s %s: %d match%s%s\n", pattern, what, count, count == 1 ? "" : "es",
                found.c_str());
}

// A text line by line, indented.
void ShowLines(const std::string& lines) {
    for (size_t start = 0, end; start < lines.size(); start = end + 1) {
        end = lines.find('\n', start);
        if (end == std::string::npos) end = lines.size();
        std::printf("      %s\n", lines.substr(start, end - start).c_str());
    }
}

// The netlist after Substitute.
void ShowSubstitute(const char* pattern, const char* with, int maxCount, const char* what) {
    SYS_StringBase text(kNetlist);
    const int n = SYS_StrPattern(pattern).Substitute(text, with, maxCount);
    std::printf("  Substitute('%s' -> '%s', %s): %d replaced, %s\n", pattern, with,
                maxCount ? "limit 1" : "no limit", n, what);
    ShowLines(text.GetString());
}

} // namespace

KEEL_DEMO_STEP(15, "Patterns: finding and renaming nets") {
    DemoIntro("SYS_StrPattern is keel's own pattern language for searching and renaming nets, "
              "layers and parts. A pattern compiles once; Match finds the leftmost match, "
              "Substitute replaces from left to right. Whatever a user types, a pattern never "
              "hangs and never runs out of stack.");
    std::printf("  netlist:\n");
    ShowLines(kNetlist);
    ShowMatches("N:d+_:u+", "generated net names (':d' digit, ':u' capital)");
    ShowMatches("U:d+-:z", "pins of U parts (':z' a whole integer)");
    ShowMatches("C:d+|R:d+", "capacitors or resistors");
    ShowMatches("TOP_[A-Z]+", "a layer name");
    ShowMatches(":n;", "a number before ';' (signs count anywhere: 7-1 is one)");
    ShowMatches("NET .@;", "whole NET records ('@' stops at the first ';')");
    ShowMatches("[a-", "an invalid pattern never matches");
    ShowSubstitute("N:d+_", "SIG_", 0, "generated prefixes renamed");
    ShowSubstitute("U3-", "U30-", 1, "only the first pin moved");
}
