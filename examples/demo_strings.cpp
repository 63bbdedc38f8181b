// demo_strings.cpp - keel-demo step: strings, tokens and number scanning.
#include "demo_steps.h"
#include "keel.h"

#include <cstdio>

KEEL_DEMO_STEP(10, "Strings and number scanning") {
    SYS_StringBase path("boards/panel_A/top.gbr");
    std::printf("path                      : %s (%d bytes)\n", path.GetString(), path.GetLength());
    int slash = path.ReverseFindOneOf("/", -2);
    std::printf("last separator at         : %d -> file '%s'\n", slash,
                path.Mid(slash + 1).GetString());
    int dot = path.ReverseFind('.', -2);
    std::printf("extension                 : '%s'\n", path.Mid(dot + 1).GetString());

    SYS_StringBase list("drill, route ,, mill");
    int pos = 0;
    std::printf("tokens of '%s':", list.GetString());
    for (SYS_StringBase t = list.Tokenize(",", pos); pos != -1; t = list.Tokenize(",", pos))
        std::printf(" [%s]", t.AllTrim().GetString());
    std::printf("\n");

    SYS_StringBase field;
    for (int i = 0; SysExtractSubString(field, "X1200;Y-350;D02", i, ';'); ++i)
        std::printf("field %d                   : '%s'\n", i, field.GetString());

    const char* numbers[] = {"1e5", ".5", "1.2.3", "-1.5E-3", "1F", "0x1F", "017", "1-2"};
    for (const char* n : numbers)
        std::printf("%-8s double %d  decimal-only %d  dec-int %d  hex-int %d  oct-int %d\n", n,
                    isdouble(n, 0), isdecdouble(n), isdecinteger(n), ishexinteger(n),
                    isoctinteger(n));

    SYS_StringBase v("  -42mm");
    long value = 0;
    const char* end = nullptr;
    v.Value(&value, &end);
    std::printf("Value('%s')           : %ld, rest '%s'\n", v.GetString(), value, end);

    const char* names[] = {"pad10", "pad2", "pad$", "pad"};
    std::printf("natural order             :");
    for (const char* a : names) {
        int smaller = 0;
        for (const char* b : names) smaller += _tcsnumcmp(b, a) < 0;
        std::printf(" %s=#%d", a, smaller + 1);
    }
    std::printf("\n");

    SYS_StringBase report;
    report << "layers: " << 4 << ", thickness: " << 1.6 << " mm";
    std::printf("stream-style              : %s\n", report.GetString());

    int previous = SYS_SetCodePage(932);
    SYS_StringBase sjis("\x83\x5C/x"); // a double-byte character whose trail byte is '\'
    std::printf("code page 932: '\\' found at %d (the trail byte is not a character)\n",
                sjis.FindOneOf("\\"));
    SYS_SetCodePage(previous);
}
