// Tests of double-byte behaviour: lead bytes are taken with their trail byte
// by the multibyte-aware operations and not by the byte-wise ones; and of the
// wide-text conversion.
#include <keel/SYS_CodePage.h>
#include <keel/SYS_Scan.h>
#include <keel/SYS_String.h>

#include <gtest/gtest.h>

#include <clocale>

namespace {

// "\x83\x5C" is a Shift_JIS character whose trail byte is '\' (0x5C), and
// "\x82\x61" one whose trail byte is 'a'.
class CodePage932 : public ::testing::Test {
protected:
    void SetUp() override { previous = SYS_SetCodePage(932); }
    void TearDown() override { SYS_SetCodePage(previous); }
    int previous = 0;
};

TEST(CodePage, SetReturnsThePreviousAndUnknownPagesAreSingleByte) {
    int original = SYS_SetCodePage(936);
    EXPECT_EQ(SYS_GetCodePage(), 936);
    EXPECT_EQ(SYS_SetCodePage(949), 936);
    EXPECT_EQ(SYS_SetCodePage(950), 949);
    EXPECT_EQ(SYS_SetCodePage(1252), 950);
    EXPECT_EQ(SYS_GetCodePage(), 0);
    SYS_SetCodePage(original);
}

TEST_F(CodePage932, TrailBytesAreNotCharacters) {
    SYS_StringBase s("\x83\x5C\\x");
    EXPECT_EQ(s.FindOneOf("\\"), 2);
    EXPECT_EQ(s.ReverseFind('\\', 1), -1);
    EXPECT_EQ(s.ReverseFind('\\', -2), 2);
    EXPECT_EQ(s.ReverseFind('\\', 2), 2);
    EXPECT_EQ(SYS_StringBase("\x83\x5C\\").ReverseFind('\\', -2), 2);
    EXPECT_EQ(SYS_StringBase("a\x83\x5C\\").ReverseFindOneOf("\\", 3), 3);
    EXPECT_EQ(s.Find('\\'), 1); // Find is a byte search
    EXPECT_EQ(SYS_StringBase("a\x83\x5C").ReverseFindOneOf("\\", -2), -1);
    EXPECT_EQ(s.SpanExcluding("\\"), "\x83\x5C");
    EXPECT_EQ(SYS_StringBase("\x83\x5C\x83\x5Cz").SpanIncluding("\x83\x5C"), "\x83\x5C\x83\x5C");

    SYS_StringBase field;
    EXPECT_EQ(SysExtractSubString(field, "\x83\x5C\\b", 1, '\\'), 1);
    EXPECT_EQ(field, "b");

    SYS_StringBase tokens("\x83\x5C,x");
    int pos = 0;
    EXPECT_EQ(tokens.Tokenize("\\,", pos), "\x83\x5C");
}

TEST_F(CodePage932, ByteWiseOperationsTouchTrailBytes) {
    SYS_StringBase s("\x82\x61");
    s.MakeUpper();
    EXPECT_EQ(s, "\x82\x41");
    EXPECT_NE(SYS_StringBase("\x82\x61").CompareNoCase("\x82\x41"), 0); // only single bytes fold
}

TEST_F(CodePage932, ComparisonTakesWholeCharacters) {
    // Under code page 932 "\x81\x40" is one character, greater than any single byte.
    EXPECT_GT(SYS_StringBase("\x81\x40").Compare("\xA1"), 0);
    SYS_SetCodePage(0);
    EXPECT_LT(SYS_StringBase("\x81\x40").Compare("\xA1"), 0);
    SYS_SetCodePage(932);
    EXPECT_LT(_tcsnumcmp("\x82\x61"
                         "1",
                         "\x82\x61"
                         "2"),
              0);
    EXPECT_EQ(_tcsnumcmp("\x82\x61"
                         "01",
                         "\x82\x61"
                         "1"),
              0);
    EXPECT_EQ(isdecinteger("1\x82\x4F"), 0);
}

TEST(WideText, ConvertsToTheLocaleCharacterSet) {
    const unsigned short ascii[] = {'p', 'a', 'd', 0};
    EXPECT_EQ(SYS_StringBase(ascii), "pad");
    const unsigned short empty[] = {0};
    EXPECT_EQ(SYS_StringBase(empty).GetLength(), 0);
    EXPECT_TRUE(SYS_StringBase("pad") == ascii);
    EXPECT_TRUE(ascii == SYS_StringBase("pad"));
    EXPECT_TRUE(SYS_StringBase("pa") != ascii);

    int previous = SYS_SetCodePage(932);
    const unsigned short kana[] = {0x30A2, 'x', 0}; // KATAKANA LETTER A
    EXPECT_EQ(SYS_StringBase(kana), "\x83\x41x");
    const unsigned short hangul[] = {0xAC00, 'y', 0}; // not in Shift_JIS
    EXPECT_EQ(SYS_StringBase(hangul), "?y");
    const unsigned short lone[] = {0xD800, 'z', 0}; // unpaired surrogate
    EXPECT_EQ(SYS_StringBase(lone), "?z");
    SYS_SetCodePage(previous);
}

} // namespace
