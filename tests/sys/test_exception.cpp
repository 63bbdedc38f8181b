// Tests of SYS_Exception: the formatted and the numbered constructors.
#include <keel/SYS_Exception.h>
#include <keel/SYS_Resource.h>

#include <gtest/gtest.h>

TEST(Exception, FormattedTextAndCopies) {
    SYS_Exception e("Value %ld is less than the minimum value %d.", 3L, 5);
    EXPECT_STREQ("Value 3 is less than the minimum value 5.", e.GetText().GetString());
    SYS_Exception copy(e);
    EXPECT_STREQ(e.GetText().GetString(), copy.GetText().GetString());
    SYS_Exception assigned("other");
    assigned = e;
    EXPECT_STREQ(e.GetText().GetString(), assigned.GetText().GetString());

    try {
        throw SYS_Exception("%s", "Invalid integer");
    } catch (const SYS_Exception& x) {
        EXPECT_STREQ("Invalid integer", x.GetText().GetString());
    }

    // The usual way to throw a resource text.
    EXPECT_STREQ("Invalid integer", SYS_Exception(TR(45060)).GetText().GetString());

    const char* none = nullptr;
    EXPECT_TRUE(SYS_Exception(none).GetText().IsEmpty());
}

TEST(Exception, NumberedConstructorLeavesTextEmpty) {
    EXPECT_TRUE(SYS_Exception(45060).GetText().IsEmpty());
    EXPECT_TRUE(SYS_Exception(45015, "ignored", 12).GetText().IsEmpty());
}
