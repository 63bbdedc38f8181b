// Tests of properties read and written through a collection's focus.
#include <keel/SCC_Property.h>
#include <keel/SYS_Exception.h>
#include "tests/scc/board_store.h"

#include <gtest/gtest.h>

namespace {

typedef std::vector<int> Ints;

// A board object's width; writing to handle `refuse` fails.
struct Width : SCC_TypedProperty<int> {
    explicit Width(BoardStore* s) : store(s) {}
    int HasSetMethod() override { return writable; }
    int GetTypedValue(int h, int& v) override {
        BoardObject* o = store->Find(h);
        return o ? (v = o->width, 1) : 0;
    }
    int SetTypedValue(int h, int& v) override {
        written.push_back(h);
        return h == refuse ? 0 : (store->Find(h)->width = v, 1);
    }
    BoardStore* store;
    int writable = 1, refuse = 0;
    Ints written;
};

// Shows twice the stored value; records the directions it was asked for.
struct Doubler : SCC_Convertor {
    SCC_Variant Convert(SCC_Variant v, int direction) override {
        directions.push_back(direction);
        return SCC_Variant(direction ? int(v) / 2 : int(v) * 2);
    }
    Ints directions;
};

std::string Text(SCC_Variant v) { return static_cast<SYS_StringBase>(v).GetString(); }

struct Props : ::testing::Test {
    BoardStore store;
    std::unique_ptr<BoardCollection> c;
    Width width{&store};
    void SetUp() override {
        store.Put(1, "gnd", 3);
        store.Put(2, "vcc", 3);
        c.reset(new BoardCollection(&store));
        c->AllowReload(1);
    }
    // What reading through the focus returns, then the value read.
    std::string Read() {
        SCC_Variant v;
        const int result = width.GetValue(c.get(), v);
        return std::to_string(result) + ":" + Text(v);
    }
};

TEST_F(Props, ReadingGivesTheCommonValueOfTheFocus) {
    EXPECT_EQ("0:", Read()) << "nothing focused";
    c->SetFocus(1, true);
    c->SetFocus(2, true);
    EXPECT_EQ("1:3", Read());
    store.Find(2)->width = 4;
    EXPECT_EQ("1:", Read()) << "they differ: empty, but read";
    SCC_Variant v;
    EXPECT_EQ(0, width.GetValue(static_cast<SCC_StdCollection*>(nullptr), v)) << "handle 0";
    store.objects.erase(2);
    EXPECT_EQ('0', Read()[0]) << "a focused handle could not be read";
}

TEST_F(Props, WritingGoesToEveryFocusedHandleUntilOneFails) {
    SCC_Variant seven(7), nine(9), twelve(12), text("wide");
    EXPECT_EQ(1, width.SetValue(c.get(), seven, 0)) << "no focus: nothing to do, not asked";
    c->SetFocus(1, true);
    c->SetFocus(2, true);
    EXPECT_EQ(1, width.SetValue(c.get(), seven, 0));
    EXPECT_EQ((Ints{7, 7}), (Ints{store.Find(1)->width, store.Find(2)->width}));
    width.refuse = 1;
    width.written.clear();
    EXPECT_EQ(0, width.SetValue(c.get(), nine, 0));
    EXPECT_EQ(Ints{1}, width.written);

    width.SetValidation("[0,10]");
    width.written.clear();
    EXPECT_EQ(0, width.SetValue(c.get(), twelve, 1));
    EXPECT_EQ("Please enter a value within the [0.000000,10.000000] range.", Text(twelve));
    width.writable = 0;
    EXPECT_EQ(1, width.SetValue(c.get(), seven, 0)) << "read-only: accepted, not stored";
    EXPECT_TRUE(width.written.empty());
    width.writable = 1;
    width.refuse = 0;
    EXPECT_THROW(width.SetValue(1, text, 0), SYS_Exception);
}

TEST_F(Props, ConvertorsShowAndStoreInTheirDirections) {
    Doubler* doubler = new Doubler;
    EXPECT_EQ(&width, width.SetConvertor(doubler));
    EXPECT_EQ(doubler, width.GetConvertor().Get());
    SCC_Variant v, shown(10);
    ASSERT_EQ(1, width.GetValue(1, v));
    EXPECT_EQ(6, static_cast<int>(v));
    EXPECT_EQ(1, width.SetValue(2, shown, 0));
    EXPECT_EQ(5, store.Find(2)->width);
    EXPECT_EQ((Ints{0, 1}), doubler->directions);
}

TEST(Property, TypedFormsAndTheReadOnlyTextPointer) {
    struct Text : SCC_TypedProperty<const char*> {
        int HasSetMethod() override { return 1; }
        int GetTypedValue(int, const char*& v) override { return v = "TOP", 1; }
        int SetTypedValue(int, const char*&) override { return ++sets, 1; }
        int sets = 0;
    } text;
    struct Name : SCC_TypedProperty<SYS_StringBase> {
        int HasSetMethod() override { return 1; }
        int SetTypedValue(int, SYS_StringBase& v) override { return stored = v, 1; }
        SYS_StringBase stored;
    } name;
    SCC_Variant v, other("BOTTOM"), number(2.5), one(1);
    ASSERT_EQ(1, text.GetValue(1, v));
    EXPECT_STREQ("TOP", static_cast<SYS_StringBase>(v).GetString());
    EXPECT_EQ(1, text.SetValue(1, other, 0));
    EXPECT_EQ(0, text.sets);
    EXPECT_EQ(1, name.SetValue(1, number, 0));
    EXPECT_STREQ("2.500000", name.stored.GetString());
    EXPECT_EQ(0, name.GetValue(1, v)) << "the base accessor has no value";

    SCC_TypedProperty<long> plainLong;
    SCC_TypedProperty<double> plainDouble;
    SCC_StdProperty base;
    EXPECT_EQ(1, plainLong.SetValue(1, one, 0)) << "no set method: accepted";
    EXPECT_EQ((Ints{0, 0, 0}),
              (Ints{plainDouble.GetValue(1, v), base.HasSetMethod(), base.SetValue(1, one, 0)}));
    EXPECT_EQ(&base, base.GetDataSource());
}

TEST(Property, CopyStartsAFreshCountAssignmentCopiesTheCountWord) {
    SCC_TypedProperty<int> a, assigned;
    SCC_SharedPointer<SCC_StdProperty> held(&a);
    a.SetValidation("8");
    a.SetConvertor(new SCC_Convertor);
    SCC_TypedProperty<int> copy(a);
    EXPECT_EQ(0, copy.GetRefCount());
    EXPECT_STREQ("8", copy.GetValidation());
    EXPECT_EQ(a.GetConvertor().Get(), copy.GetConvertor().Get()) << "shared";
    assigned = a;
    EXPECT_EQ(a.m_Count, assigned.m_Count);
    EXPECT_EQ(a.GetConvertor().Get(), assigned.GetConvertor().Get());
}

} // namespace
