// SYS_Convert: the unit table, rounding and the overflow marker, the parsers,
// the formatters, the grid operations and the walk over the units.
#include <keel/SYS_Convert.h>
#include "tests/sys/geom_print.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <tuple>
#include <vector>

namespace {

const SYS_UnitType kMils = SYS_UnitMils, kInches = SYS_UnitInches, kHalf = SYS_UnitAsciiPcb;
const SYS_UnitType kFallback = static_cast<SYS_UnitType>(7); // factor 1
const long kMark = SYS_CONVERT_OVERFLOW, kMin = -2147483647L - 1, kMax = 2147483647;
const long kKept = 77; // what a parse that must not write leaves
const double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const char* const kNames[] = {
    "Mils", "Metric", "Inches", "Micron", "PDF units", "Basic ASCII PCB units", ""};

std::vector<long> Fields(const SYS_Convert& c) {
    std::vector<long> f = {c.unitType, c.origin.x, c.origin.y, c.zeroTrim, c.anglePrecision};
    return f.insert(f.end(), c.precision, c.precision + SYS_UNIT_COUNT), f;
}

// Runs parse(text, &out) on each case from a sentinel and with errno left at
// ERANGE (a stale range error must not fail a parse): the status, then out.
using Case = std::tuple<const char*, int, long>;

template <class T, size_t N, class F>
void ExpectParses(const std::tuple<const char*, int, T> (&cases)[N], F parse) {
    for (const auto& [s, ok, out] : cases) {
        T v = T(kKept);
        errno = ERANGE;
        EXPECT_EQ(ok, parse(s, &v)) << '"' << s << '"';
        EXPECT_EQ(out, v) << '"' << s << '"';
    }
}

} // namespace

TEST(SysConvert, UnitTableAndFallback) {
    const std::tuple<int, double, int> units[] = {
        {0, 19050.0, 2}, {1, 750000.0, 5},  {2, 19050000.0, 5}, {3, 750.0, 2}, {4, 264583.0, 0},
        {5, 0.5, 2},     {6, 7500000.0, 5}, {7, 1.0, 1},        {-1, 1.0, 1},  {100, 1.0, 1}};
    for (const auto& [u, factor, precision] : units) {
        SYS_Convert c(static_cast<SYS_UnitType>(u));
        const bool listed = u >= 0 && u < SYS_UNIT_COUNT;
        const char* name = listed ? kNames[u] : "";
        EXPECT_EQ(factor, c.User2BaseDouble(1.0)) << u;
        EXPECT_EQ(2.0, c.Base2User(c.User2BaseDouble(2.0))) << u;
        EXPECT_EQ(precision, c.GetUnitPrecision()) << u;
        EXPECT_STREQ(name, c.GetUnitName()) << u;
        EXPECT_STREQ(name, SYS_Convert::GetUnitName(c.unitType)) << u;
        // Outside the table, precision[-1] and precision[7] would land on
        // zeroTrim and anglePrecision: nothing may change.
        const std::vector<long> before = Fields(c);
        c.SetUnitPrecision(9);
        EXPECT_EQ(listed ? 9 : 1, c.GetUnitPrecision()) << u;
        EXPECT_TRUE(listed || before == Fields(c)) << u;
    }
    SYS_Convert seventh(kFallback); // formats with one decimal
    EXPECT_EQ(3, seventh.User2Base(3.0));
    seventh.SetZeroTrimMode(0);
    EXPECT_STREQ("3.0", seventh.Base2Str(3L));
    // Only the low 32 bits of a long count; a double is taken whole.
    EXPECT_EQ(1.0, SYS_Convert().Base2User(4294967296L + 19050));
    EXPECT_NE(1.0, SYS_Convert().Base2User(4294967296.0 + 19050));
}

TEST(SysConvert, ConstructionCopyAndSetData) {
    const P o(5, -6), zero(0, 0);
    auto set = [](long u, P at) {
        return std::vector<long>{u, at.x, at.y, 1, 3, 2, 5, 5, 2, 0, 2, 5};
    };
    EXPECT_EQ(set(kMils, zero), Fields(SYS_Convert()));
    EXPECT_EQ(set(SYS_UnitMicron, zero), Fields(SYS_Convert(SYS_UnitMicron)));
    EXPECT_EQ(set(kMils, o), Fields(SYS_Convert(o)));
    EXPECT_EQ(set(SYS_UnitPdf, o), Fields(SYS_Convert(SYS_UnitPdf, o)));
    SYS_Convert changed(kInches, o), assigned;
    changed.SetZeroTrimMode(0), changed.SetAnglePrecision(1), changed.precision[3] = 9;
    assigned = changed;
    EXPECT_EQ(Fields(changed), Fields(SYS_Convert(changed)));
    EXPECT_EQ(Fields(changed), Fields(assigned));
    changed.SetData(SYS_UnitMicron, P(1, 2));
    EXPECT_EQ(set(SYS_UnitMicron, P(1, 2)), Fields(changed));
}

TEST(SysConvert, User2BaseRoundsHalfAwayFromZeroAndMarksOverflow) {
    const SYS_UnitType one = kFallback;
    const std::tuple<SYS_UnitType, double, long> rounding[] = {
        {one, 2.5, 3},   {one, -2.5, -3},   {one, 2.4999, 2}, {one, -2.4999, -2},
        {one, 0.0, 0},   {one, -0.4999, 0}, {kHalf, 1.0, 1},  {kHalf, -1.0, -1},
        {kHalf, 3.0, 2}, {kHalf, 0.998, 0}};
    // The limit is 2147483647 / factor.
    const std::tuple<SYS_UnitType, double, long> limits[] = {
        {one, 2147483647.0, kMax},     {one, -2147483647.0, -kMax}, {one, 2147483647.5, kMark},
        {one, -2147483648.0, kMark},   {kHalf, 4294967294.0, kMax}, {kHalf, 4294967295.0, kMark},
        {kMils, 112728.8, 2147483640}, {kMils, -112728.81, kMark},  {kMils, kInf, kMark},
        {kMils, -kInf, kMark},         {one, kNaN, kMark}};
    for (const auto& [u, v, expected] : rounding)
        EXPECT_EQ(expected, SYS_Convert(u).User2Base(v)) << u << ' ' << v;
    for (const auto& [u, v, expected] : limits)
        EXPECT_EQ(expected, SYS_Convert(u).User2Base(v)) << u << ' ' << v;
}

TEST(SysConvert, Str2DoubleAndStr2LongWriteTheirResultEvenOnFailure) {
    // Decimal numbers only: the other forms of the C library's parser fail,
    // with the decimal number the text starts with.
    const std::tuple<const char*, int, double> doubles[] = {
        {"1.5", 1, 1.5},  {"-2e3", 1, -2000},  {" 1", 1, 1},      {"", 1, 0},
        {".5", 1, 0.5},   {"-5.", 1, -5},      {"+1E+2", 1, 100}, {"\t\n2e-1", 1, 0.2},
        {"1 ", 0, 1},     {"12x", 0, 12},      {"x", 0, 0},       {"1e400", 0, kInf},
        {"1e-400", 0, 0}, {"1e", 0, 1},        {"2e+", 0, 2},     {" ", 0, 0},
        {"-", 0, 0},      {".", 0, 0},         {"0x10", 0, 0},    {"-0X1p-2", 0, 0},
        {"inf", 0, 0},    {"-Infinity", 0, 0}, {"nan", 0, 0},     {"nan(1)", 0, 0}};
    ExpectParses(doubles, SYS_Convert::Str2Double);
    const Case longs[] = {{"42", 1, 42}, {" -7", 1, -7}, {"", 1, 0},
                          {"5 ", 0, 5},  {"1.5", 0, 1},  {"x", 0, 0}};
    ExpectParses(longs, SYS_Convert::Str2Long);
    // Beyond 32 bits, and beyond what the C library parses.
    const char* huge = "99999999999999999999";
    const Case limits[] = {{"2147483647", 1, kMax}, {"-2147483648", 1, kMin},
                           {"2147483648", 0, kMax}, {"-2147483649", 0, kMin},
                           {"4294967296", 0, kMax}, {huge, 0, kMax}};
    ExpectParses(limits, SYS_Convert::Str2Long);
}

TEST(SysConvert, Str2BaseWithinTheLimits) {
    // 1e10 mils gives the overflow marker, which lies outside the limits.
    const Case mils[] = {{"1", 1, 19050},     {"0.5", 1, 9525},   {"-0.00002", 1, 0},
                         {" -1", 1, -19050},  {"", 1, 0},         {"1 ", 0, kKept},
                         {"x", 0, kKept},     {"1e10", 0, kKept}, {"nan", 0, kKept},
                         {"1e400", 0, kKept}, {"0x10", 0, kKept}, {".5", 1, 9525}};
    ExpectParses(mils, [](const char* s, long* b) { return SYS_Convert(kMils).Str2Base(s, b); });
    const long lim = SYS_CONVERT_LIMIT;
    const Case inches[] = {
        {"56", 1, lim}, {"-56", 1, -lim}, {"56.0001", 0, kKept}, {"-56.0001", 0, kKept}};
    ExpectParses(inches,
                 [](const char* s, long* b) { return SYS_Convert(kInches).Str2Base(s, b); });
    // The unrounded form has no range check.
    double d = 0;
    EXPECT_EQ(1, SYS_Convert(kInches).Str2Base("56.0001", &d));
    EXPECT_DOUBLE_EQ(1066801905.0, d);
    EXPECT_EQ(0, SYS_Convert(kMils).Str2Base("1 ", &d));
}

TEST(SysConvert, Str2MeasureAndStr2Angle) {
    const Case measures[] = {{"2", 1, 38100},        {"1e300", 1, kMark}, {"-1", 0, kKept},
                             {"-0.00001", 0, kKept}, {"1e400", 0, kKept}, {"2 ", 0, kKept},
                             {"inf", 0, kKept},      {"nan", 0, kKept},   {"0x2", 0, kKept}};
    ExpectParses(measures, [](const char* s, long* b) { return SYS_Convert().Str2Measure(s, b); });
    // Angles truncate toward zero where User2Base rounds.
    const Case angles[] = {{"90", 1, 162000000},      {"-90", 1, -162000000},
                           {"0.0000001", 1, 0},       {"-0.0000001", 1, 0},
                           {"0.9999999", 1, 1799999}, {"-0.9999999", 1, -1799999},
                           {"inf", 0, kKept},         {"-nan", 0, kKept},
                           {"0x1p-2", 0, kKept},      {".5e1", 1, 9000000}};
    ExpectParses(angles, SYS_Convert::Str2Angle);
    EXPECT_EQ(1800000, SYS_Convert(kFallback).User2Base(0.9999999 * 1800000.0));
}

TEST(SysConvert, TrimStrNumber) {
    const char* const cases[][2] = {{"1.500", "1.5"},   {"2.000", "2"},   {"100", "100"},
                                    {"0.0", "0"},       {"", ""},         {"-3.10", "-3.1"},
                                    {"10.01", "10.01"}, {"1000.", "1000"}};
    for (const auto& c : cases) {
        char buf[16];
        SYS_Convert::TrimStrNumber(std::strcpy(buf, c[0]));
        EXPECT_STREQ(c[1], buf) << c[0];
    }
}

TEST(SysConvert, FormatsNumbersAndAngles) {
    SYS_Convert mm(SYS_UnitMetric);
    EXPECT_STREQ("1", mm.Base2Str(750000L));
    EXPECT_STREQ("0", mm.Base2Str(1L));
    EXPECT_STREQ("0.5", mm.Base2Str(375000.0));
    EXPECT_STREQ("90", mm.Angle2Str(162000000L));
    EXPECT_STREQ("-0.001", mm.Angle2Str(-1800L));
    mm.SetZeroTrimMode(0);
    EXPECT_STREQ("0.00000", mm.Base2Str(1L));
    EXPECT_STREQ("1.500", mm.Angle2Str(2700000L));
    mm.SetUnitPrecision(600); // the text forms go through a 512-byte buffer
    EXPECT_EQ(511, mm.Base2Str(750000L).GetLength());
    // The buffer forms write at most size bytes, then trim what fits.
    for (int trim : {0, 1}) {
        SYS_Convert in(kInches);
        in.SetZeroTrimMode(trim);
        char buf[8];
        std::memset(buf, 'x', sizeof buf);
        EXPECT_EQ(buf, in.Base2Str(buf, 4, 238125000L)); // 12.50000
        EXPECT_STREQ(trim ? "12" : "12.", buf);
        EXPECT_STREQ(trim ? "-1" : "-1.", in.Base2Str(buf, 4, -28575000.0)); // -1.50000
        EXPECT_STREQ(trim ? "1" : "1.0", in.Angle2Str(buf, 4, 1890000L));    // 1.050
        EXPECT_EQ('x', buf[4]);
    }
}

TEST(SysConvert, CoordinatesAreRelativeToTheOrigin) {
    EXPECT_STREQ("(1,2)", SYS_Convert().Point2String(P(19050, 38100)));
    const SYS_Convert c(P(19050, -19050));
    const SYS_StringBase at("at ");
    EXPECT_STREQ("(0,3)", c.Point2String(P(19050, 38100)));
    EXPECT_STREQ("-1", c.CoordX2String(0));
    EXPECT_STREQ("1", c.CoordY2String(0));
    EXPECT_STREQ("at (0,3)", c.Point2String(at, P(19050, 38100)));
    EXPECT_STREQ("at -1", c.CoordX2String(at, 0));
    EXPECT_STREQ("at 1", c.CoordY2String(at, 0));
    EXPECT_STREQ("at 2", c.Measure2String(at, 38100)); // a length ignores the origin
    EXPECT_STREQ("2", c.Measure2String(38100));
}

TEST(SysConvert, MinRoutingGridAlignsEveryValue) {
    SYS_Convert c;
    EXPECT_EQ(1, c.GetMinRoutingGrid());
    for (long v : {0L, 7L, -7L, 2147483647L, kMin}) {
        EXPECT_EQ(v, c.AlignToMinRoutingGrid(v));
        EXPECT_EQ(1, c.IsAlignedToMinRoutingGrid(v));
    }
    EXPECT_EQ(P(-7, 5), c.AlignToMinRoutingGrid(P(-7, 5)));
    EXPECT_EQ(1, c.IsAlignedToMinRoutingGrid(P(-7, 5)));
}

TEST(SysConvert, UnitTypeObjWalksTheSevenUnits) {
    SYS_Convert tableBuilt;
    SYS_Convert::UnitTypeObj it;
    int n = 0;
    for (it.GetFirst(nullptr); it.IsValid() && n < SYS_UNIT_COUNT; it.GetNext(), ++n) {
        EXPECT_EQ(n + 1, it.GetHandle());
        EXPECT_EQ(n, it.GetType());
        EXPECT_STREQ(kNames[n], it.GetName());
    }
    EXPECT_EQ(0, it.GetHandle()); // after the seventh
    EXPECT_EQ(-1, it.GetType());
    EXPECT_STREQ("", it.GetName());
}
