// Tests of text styles, attributes and text items.
#include <keel/SYS_Text.h>

#include <gtest/gtest.h>

namespace {

TEST(Text, SettersStoreUncheckedAndCopiesShareTheStyle) {
    SYS_TextStyle style;
    EXPECT_EQ(style.SetFont("Courier") + style.SetHeight(-500) + style.SetWidth(-1), 3);
    SYS_TextStyle copy(style);
    style.SetFont("Arial");
    EXPECT_EQ(copy.GetFont(), "Courier"); // the font is copied, not shared
    EXPECT_EQ(copy.GetHeight(), -500);

    SYS_Text a, c;
    SYS_Position p(10, -20, 0, 1);
    p.orientation = 700000000; // beyond a turn: the position's own setters would reduce it
    EXPECT_EQ(a.SetStyle(style) + a.SetString("pad 1") + a.SetPosition(p), 3);
    EXPECT_EQ(a.GetPosition().orientation, 700000000);
    SYS_Text b(a);
    c = b;
    a.SetString("pad 2");
    EXPECT_EQ(c.GetString(), "pad 1");
    EXPECT_EQ(c.GetPosition(), p);
    style.SetHeight(250); // seen through every copy
    EXPECT_EQ(b.GetStyle()->GetHeight(), 250);
    EXPECT_EQ(c.GetStyle(), &style);
}

} // namespace
