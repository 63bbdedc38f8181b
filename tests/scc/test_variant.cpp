// Tests of SCC_Variant (construction, the strict conversions and their
// exception texts, equality across types, assignment, validation against
// range and length rules) and of SCC_Convertor.
#include <keel/SCC_Variant.h>
#include <keel/SYS_Exception.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace {

typedef SCC_Variant V;
const std::string kFormat = "Invalid floating point format.", kRange = "Value out of range.";
const std::string kAsk = "Please enter a value within the ";

// All four fields, as text.
std::string Fields(const V& v) {
    return std::to_string(v.m_Type) + "|" + std::to_string(v.m_Long) + "|" +
           std::to_string(v.m_Double) + "|" + v.m_String.GetString();
}

// A conversion's result as text, or the text of what it threw.
template <class T> std::string As(V v) {
    try {
        if constexpr (std::is_same<T, SYS_StringBase>::value)
            return v.operator SYS_StringBase().GetString();
        else
            return std::to_string(static_cast<T>(v));
    } catch (const SYS_Exception& x) {
        return x.GetText().GetString();
    }
}

TEST(Variant, ConstructorsSetTypeAndOnlyTheirField) {
    V cleared("x");
    cleared.m_Long = 3;
    cleared.Clear();
    struct Row {
        V v;
        const char* fields;
    } rows[] = {
        {V(), "4|0|0.000000|"},       {V(7), "1|7|0.000000|"},
        {V(-7L), "1|-7|0.000000|"},   {V(static_cast<long>(0x100000005LL)), "1|5|0.000000|"},
        {V(2.5), "2|0|2.500000|"},    {V(SYS_StringBase("ab")), "3|0|0.000000|ab"},
        {V("ab"), "3|0|0.000000|ab"}, {cleared, "4|0|0.000000|"},
    };
    for (const Row& r : rows) EXPECT_EQ(Fields(r.v), r.fields);
}

TEST(Variant, ConversionsTruncateRangeTestAndThrowResourceTexts) {
    struct Row {
        V v;
        std::string asLong, asDouble, asString; // operator int answers as operator long
    } rows[] = {
        {V(7), "7", "7.000000", "7"},
        {V(12.7), "12", "12.700000", "12.700000"},
        {V(-12.7), "-12", "-12.700000", "-12.700000"},
        {V(3.0e10), kRange, "30000000000.000000", "30000000000.000000"},
        {V(2147483647.5), kRange, "2147483647.500000", "2147483647.500000"},
        {V(-2147483648.0), "-2147483648", "-2147483648.000000", "-2147483648.000000"},
        {V(-2147483648.5), kRange, "-2147483648.500000", "-2147483648.500000"},
        {V("12.7"), "12", "12.700000", "12.7"},
        {V("  4  "), "4", "4.000000", "  4  "},
        {V(""), "0", "0.000000", ""},
        {V("12x"), kFormat, kFormat, "12x"},
        {V("1e400"), kRange, "inf", "1e400"},
        {V("nan"), kRange, "nan", "nan"},
        {V(), "0", "0.000000", ""},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(Fields(r.v));
        EXPECT_EQ((std::vector<std::string>{As<long>(r.v), As<int>(r.v), As<double>(r.v),
                                            As<SYS_StringBase>(r.v)}),
                  (std::vector<std::string>{r.asLong, r.asLong, r.asDouble, r.asString}));
    }
}

TEST(Variant, EqualityComparesInTheMoreGeneralType) {
    struct Row {
        V a, b;
        int equal;
    } rows[] = {
        {V(7), V(7.0), 1},          {V(7), V("7"), 1}, {V(7.0), V("7"), 0}, // "7.000000"
        {V(5.0), V("5.000000"), 1}, {V(7), V(7.5), 0}, {V(3.0e10), V(7), 0},
        {V("7"), V(" 7"), 0},       {V(), V(), 0},     {V(""), V(), 0},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(Fields(r.a) + " vs " + Fields(r.b));
        EXPECT_EQ((std::vector<int>{r.a == r.b, r.b == r.a, r.a != r.b, r.b != r.a}),
                  (std::vector<int>{r.equal, r.equal, !r.equal, !r.equal}));
    }
}

TEST(Variant, AssignmentTakesTheSourcesTypeAndClearsTheRest) {
    V v("abc"), source("s");
    source.m_Long = 9; // a stray field is not carried over, unlike a copy
    EXPECT_EQ(Fields(v = source), "3|0|0.000000|s");
    EXPECT_EQ(Fields(V(source)), "3|9|0.000000|s");
    EXPECT_EQ(Fields(v = V(5)), "1|5|0.000000|");
    EXPECT_EQ(Fields(v = V(2.5)), "2|0|2.500000|");
    EXPECT_EQ(Fields(v = V()), "4|0|0.000000|");
    V& same = source;
    EXPECT_EQ(Fields(source = same), "3|9|0.000000|s");
}

// Stored in thousandths, displayed in units.
struct Milli : SCC_Convertor {
    V Convert(V value, int direction) override {
        return V(direction ? double(value) * 1000 : double(value) / 1000);
    }
};

TEST(Variant, ValidateTestsRangesAndLengthsAndLeavesTheRangeMessage) {
    struct Row {
        V v;
        const char* rule;
        bool milli;
        int ok;
        std::string message; // empty: the variant stays as it was
    } rows[] = {
        {V(10), "", false, 1, ""},
        {V(), "[0,10)", false, 1, ""},
        {V(10), "[0,10)", false, 0, kAsk + "[0.000000,10.000000) range."},
        {V(0), "[0,10)", false, 1, ""},
        {V(0), "(0,10]", false, 0, kAsk + "(0.000000,10.000000] range."},
        {V("10"), "(0,10]", false, 1, ""},
        {V(1), "<1,2>", false, 0, kAsk + "<1.000000,2.000000> range."}, // excludes
        {V("12345678"), "8", false, 1, ""},
        {V("123456789"), "8", false, 0, ""},     // a length failure leaves the value
        {V(123456789), "8", false, 1, ""},       // the string field is empty
        {V("a long text"), "abc", false, 1, ""}, // no number: no limit
        {V("a long text"), "[0,10", false, 1, ""},
        {V(0.02), "#[0,10]", true, 0, kAsk + "[0.000000,0.010000] range."},
        {V(0.005), "#[0,10]", true, 1, ""},
        {V(5), "[0,10]", true, 1, ""},                                      // not in stored units
        {V(10), "#[0,10)", false, 0, kAsk + "[0.000000,10.000000) range."}, // no convertor
    };
    Milli milli;
    for (const Row& r : rows) {
        SCOPED_TRACE(Fields(r.v) + " against " + r.rule);
        V v(r.v);
        EXPECT_EQ(v.Validate(r.rule, r.milli ? &milli : nullptr), r.ok);
        EXPECT_EQ(Fields(v), r.message.empty() ? Fields(r.v) : "3|0|0.000000|" + r.message);
    }
    try {
        V("abc").Validate("[0,10)", nullptr);
        ADD_FAILURE() << "no exception";
    } catch (const SYS_Exception& x) {
        EXPECT_EQ(x.GetText().GetString(), kFormat);
    }
}

int destroyed = 0;
struct Counting : SCC_Convertor {
    std::vector<int> payload = std::vector<int>(8); // leaks if destroyed as a base
    ~Counting() override { ++destroyed; }
};

TEST(Variant, ConvertorIsIdentityAndDerivedOnesAreDestroyedWhole) {
    SCC_Convertor base;
    for (const V& v : {V(7), V(2.5), V("s"), V()})
        for (int direction : {0, 1}) EXPECT_EQ(Fields(base.Convert(v, direction)), Fields(v));
    {
        SCC_SharedPointer<SCC_Convertor> p(new Counting), q(p);
        p = nullptr;
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
}

} // namespace
