// The order of two string objects (the order of string-keyed maps) is strcmp's
// under a single-byte code page, whatever the lengths, alignments and NULs
// inside the texts, and character order under a double-byte one.
#include <keel/SYS_CodePage.h>
#include <keel/SYS_String.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

int Sign(int r) { return (r > 0) - (r < 0); }

TEST(StringOrder, ObjectsCompareAsStrcmpAtEveryLengthAndNul) {
    const int previous = SYS_SetCodePage(0);
    unsigned seed = 7;
    auto next = [&seed] { return (seed = seed * 1103515245u + 12345u) >> 16; };
    for (int round = 0; round < 20000; ++round) {
        const size_t n = next() % 40, m = next() % 40;
        std::string a, b;
        for (size_t i = 0; i < n; ++i)
            a.push_back(static_cast<char>(next() % 4 ? 'a' + next() % 3 : next()));
        b = a.substr(0, std::min(n, m));
        while (b.size() < m) b.push_back(static_cast<char>(next() % 4 ? 'a' + next() % 3 : next()));
        if (m && next() % 3 == 0) b[next() % m] ^= static_cast<char>(1 << (next() % 8));
        const SYS_StringBase sa(a.data(), static_cast<int>(a.size()));
        const SYS_StringBase sb(b.data(), static_cast<int>(b.size()));
        const int want = Sign(std::strcmp(a.c_str(), b.c_str()));
        ASSERT_EQ(want, sa.Compare(sb)) << round;
        ASSERT_EQ(want, sa.Compare(sb.GetString())) << round;
        ASSERT_EQ(want < 0, sa < sb) << round;
        ASSERT_EQ(want == 0, sa == sb) << round;
    }
    SYS_SetCodePage(previous);
}

TEST(StringOrder, DoubleByteTextsCompareByCharacter) {
    const int previous = SYS_SetCodePage(932);
    // 0x81 0x40 is one character, greater than any single byte below 0x81;
    // byte order would put "\x81\x40" above "\x7f" as well, but a lone lead
    // before NUL counts as a byte.
    struct Row {
        const char* a;
        const char* b;
        int sign;
    } rows[] = {{"\x81\x40", "\x7f", 1},
                {"a\x81\x40", "a\x81\x41", -1},
                {"\x81", "\x81\x40", -1},
                {"ab", "ab", 0}};
    for (const Row& r : rows) {
        EXPECT_EQ(r.sign, SYS_StringBase(r.a).Compare(SYS_StringBase(r.b))) << r.a;
        EXPECT_EQ(r.sign, SYS_StringBase(r.a).Compare(r.b)) << r.a;
    }
    SYS_SetCodePage(previous);
}

} // namespace
