// SYS_Convert.cpp - the unit table, conversions, parsers and formatters.
#include "SYS_Convert.h"
#include "SYS_Resource.h"
#include "internal/SYS_Int32.h"

#include <cctype>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct UnitEntry {
    SYS_UnitType type;
    SYS_StringBase name;
    int precision;
    double factor;
};

// The seven units in order, then the fallback entry that any other unit value
// selects.  The PDF factor is the integer part of 19,050,000 / 72 on purpose.
struct UnitTable {
    UnitEntry entries[SYS_UNIT_COUNT + 1];

    UnitTable()
        : entries{{SYS_UnitMils, TR(45104), 2, 19050.0},
                  {SYS_UnitMetric, TR(45105), 5, 750000.0},
                  {SYS_UnitInches, TR(45106), 5, 19050000.0},
                  {SYS_UnitMicron, TR(45107), 2, 750.0},
                  {SYS_UnitPdf, TR(45116), 0, 264583.0},
                  {SYS_UnitAsciiPcb, TR(45117), 2, 0.5},
                  {SYS_UnitCentimeters, TR(45118), 5, 7500000.0},
                  {static_cast<SYS_UnitType>(-1), SYS_StringBase(), 1, 1.0}} {}
};

// Built once, on first use; a function-local static is safe when two threads
// get here at once.
const UnitTable& Table() {
    static const UnitTable table;
    return table;
}

const UnitEntry& Entry(int unit) {
    const UnitTable& t = Table();
    return t.entries[unit >= 0 && unit < SYS_UNIT_COUNT ? unit : SYS_UNIT_COUNT];
}

bool IsUnit(int unit) { return unit >= 0 && unit < SYS_UNIT_COUNT; }

// A number must take the whole text; an empty text is the number 0.
bool TakesAll(const char* end) { return end && *end == '\0'; }

const double kAngleUnitsPerDegree = 1800000.0;
const unsigned int kTextBuffer = 512;

} // namespace

// ---------------------------------------------------------------------------
// Construction and settings

SYS_Convert::SYS_Convert() { SetData(SYS_UnitMils, SYS_Point(0, 0)); }
SYS_Convert::SYS_Convert(SYS_UnitType u) { SetData(u, SYS_Point(0, 0)); }
SYS_Convert::SYS_Convert(const SYS_Point& o) { SetData(SYS_UnitMils, o); }
SYS_Convert::SYS_Convert(SYS_UnitType u, const SYS_Point& o) { SetData(u, o); }

void SYS_Convert::SetData(SYS_UnitType u, const SYS_Point& o) {
    const UnitTable& t = Table();
    unitType = u;
    origin = o;
    zeroTrim = 1;
    for (int i = 0; i < SYS_UNIT_COUNT; ++i) precision[i] = t.entries[i].precision;
    anglePrecision = 3;
}

int SYS_Convert::GetUnitPrecision() const {
    return IsUnit(unitType) ? precision[unitType] : Entry(unitType).precision;
}

void SYS_Convert::SetUnitPrecision(int p) {
    if (IsUnit(unitType)) precision[unitType] = p;
}

const char* SYS_Convert::GetUnitName() const { return GetUnitName(unitType); }
const char* SYS_Convert::GetUnitName(SYS_UnitType u) { return Entry(u).name.GetString(); }

const char* SYS_Convert::UnitTypeObj::GetName() const {
    return Entry(SYS_Sub32(handle, 1)).name.GetString();
}
SYS_UnitType SYS_Convert::UnitTypeObj::GetType() { return Entry(SYS_Sub32(handle, 1)).type; }

// ---------------------------------------------------------------------------
// Numeric conversion

long SYS_Convert::User2Base(double v) const {
    const double f = Entry(unitType).factor;
    if (!(2147483647.0 / f >= std::fabs(v))) return SYS_CONVERT_OVERFLOW;
    return SYS_Round32(f * v);
}

double SYS_Convert::User2BaseDouble(double v) const { return v * Entry(unitType).factor; }
double SYS_Convert::Base2User(long b) const { return SYS_Wrap32(b) / Entry(unitType).factor; }
double SYS_Convert::Base2User(double b) const { return b / Entry(unitType).factor; }

// ---------------------------------------------------------------------------
// Parsing

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The end of the decimal number that `s` starts with: white space, a sign,
// digits with a decimal point among or after them (".5" and "5." count), then
// an exponent if one with digits follows.  `s` itself when there is none.
// The C library's parser reads hexadecimal numbers, infinities and NaNs as
// well; numbers typed in units are decimal, so those are refused here.
const char* DecimalEnd(const char* s) {
    const char point = *std::localeconv()->decimal_point; // as the parser reads it
    const char* p = s;
    while (std::isspace(static_cast<unsigned char>(*p))) ++p;
    if (*p == '+' || *p == '-') ++p;
    const char* const digits = p;
    while (IsDigit(*p)) ++p;
    bool any = p != digits;
    if (*p == point) {
        const char* const fraction = ++p;
        while (IsDigit(*p)) ++p;
        any = any || p != fraction;
    }
    if (!any) return s;
    if (*p == 'e' || *p == 'E') {
        const char* e = p + 1;
        if (*e == '+' || *e == '-') ++e;
        if (IsDigit(*e)) {
            while (IsDigit(*e)) ++e;
            p = e;
        }
    }
    return p;
}

} // namespace

int SYS_Convert::Str2Double(const char* s, double* d) {
    if (!s) s = "";
    if (errno == ERANGE) errno = 0;
    const char* const decimal = DecimalEnd(s);
    if (decimal == s) { // no number: an empty text is 0 and succeeds
        *d = 0.0;
        return *s ? 0 : 1;
    }
    char* end = nullptr;
    *d = std::strtod(s, &end);
    // The parser went past the decimal number only into a hexadecimal one
    // ("0x10"): what was read as a decimal is a zero of the same sign.
    if (end > decimal) *d = std::copysign(0.0, *d);
    if (end != decimal || !TakesAll(decimal)) return 0;
    return errno == ERANGE ? 0 : 1;
}

// A long carries 32 bits: a value beyond them is out of range, and the result
// is the nearest limit, as a 32-bit parse would give.
int SYS_Convert::Str2Long(const char* s, long* l) {
    if (!s) s = "";
    if (errno == ERANGE) errno = 0;
    char* end = nullptr;
    long long v = std::strtoll(s, &end, 10);
    if (v > INT32_MAX || v < INT32_MIN) {
        v = v > 0 ? INT32_MAX : INT32_MIN;
        errno = ERANGE;
    }
    *l = static_cast<long>(v);
    if (!TakesAll(end)) return 0;
    return errno == ERANGE ? 0 : 1;
}

int SYS_Convert::Str2Base(const char* s, long* b) const {
    double d = 0;
    if (!Str2Double(s, &d)) return 0;
    const long v = User2Base(d);
    if (v < -SYS_CONVERT_LIMIT || v > SYS_CONVERT_LIMIT) return 0;
    *b = v;
    return 1;
}

int SYS_Convert::Str2Base(const char* s, double* b) const {
    double d = 0;
    if (!Str2Double(s, &d)) return 0;
    *b = User2BaseDouble(d);
    return 1;
}

int SYS_Convert::Str2Measure(const char* s, long* b) const {
    double d = 0;
    if (!Str2Double(s, &d) || d < 0) return 0;
    *b = User2Base(d);
    return 1;
}

int SYS_Convert::Str2Angle(const char* s, long* a) {
    double d = 0;
    if (!Str2Double(s, &d)) return 0;
    *a = SYS_Trunc32(d * kAngleUnitsPerDegree);
    return 1;
}

// ---------------------------------------------------------------------------
// Formatting

const char* SYS_Convert::Base2Str(char* buf, unsigned int size, long b) const {
    return Base2Str(buf, size, static_cast<double>(SYS_Wrap32(b)));
}

const char* SYS_Convert::Base2Str(char* buf, unsigned int size, double b) const {
    if (!buf || size == 0) return buf;
    std::snprintf(buf, size, "%.*f", GetUnitPrecision(), Base2User(b));
    if (zeroTrim) TrimStrNumber(buf);
    return buf;
}

SYS_StringBase SYS_Convert::Base2Str(long b) const {
    char buf[kTextBuffer];
    return Base2Str(buf, sizeof buf, b);
}

SYS_StringBase SYS_Convert::Base2Str(double b) const {
    char buf[kTextBuffer];
    return Base2Str(buf, sizeof buf, b);
}

SYS_StringBase SYS_Convert::Measure2String(long b) const { return Base2Str(b); }
SYS_StringBase SYS_Convert::CoordX2String(long x) const {
    return Base2Str(static_cast<long>(SYS_Sub32(x, origin.x)));
}
SYS_StringBase SYS_Convert::CoordY2String(long y) const {
    return Base2Str(static_cast<long>(SYS_Sub32(y, origin.y)));
}

SYS_StringBase SYS_Convert::Point2String(const SYS_Point& p) const {
    SYS_StringBase x = CoordX2String(p.x), y = CoordY2String(p.y);
    return FormattedString("(%s,%s)", x.GetString(), y.GetString());
}

SYS_StringBase SYS_Convert::Measure2String(const SYS_StringBase& prefix, long b) const {
    return prefix + Measure2String(b);
}
SYS_StringBase SYS_Convert::CoordX2String(const SYS_StringBase& prefix, long x) const {
    return prefix + CoordX2String(x);
}
SYS_StringBase SYS_Convert::CoordY2String(const SYS_StringBase& prefix, long y) const {
    return prefix + CoordY2String(y);
}
SYS_StringBase SYS_Convert::Point2String(const SYS_StringBase& prefix, const SYS_Point& p) const {
    return prefix + Point2String(p);
}

const char* SYS_Convert::Angle2Str(char* buf, unsigned int size, long a) const {
    if (!buf || size == 0) return buf;
    std::snprintf(buf, size, "%.*f", anglePrecision, SYS_Wrap32(a) / kAngleUnitsPerDegree);
    if (zeroTrim) TrimStrNumber(buf);
    return buf;
}

SYS_StringBase SYS_Convert::Angle2Str(long a) const {
    char buf[kTextBuffer];
    return Angle2Str(buf, sizeof buf, a);
}

void SYS_Convert::TrimStrNumber(const char* s) {
    if (!s || !*s || !std::strchr(s, '.')) return;
    char* text = const_cast<char*>(s);
    char* p = text + std::strlen(text) - 1;
    while (p > text && *p == '0') --p;
    if (*p == '.')
        *p = '\0';
    else
        p[1] = '\0';
}

// ---------------------------------------------------------------------------
// Grid alignment

long SYS_Convert::AlignToMinRoutingGrid(long v) const {
    const long long g = GetMinRoutingGrid();
    const long long w = SYS_Wrap32(v);
    const long long r = std::llabs(w % g);
    if (r == 0) return static_cast<long>(w);
    const long long up = r < g / 2 ? 0 : g;
    return static_cast<long>(SYS_Wrap32(w >= 0 ? w - r + up : w + r - up));
}

SYS_Point SYS_Convert::AlignToMinRoutingGrid(SYS_Point p) {
    return SYS_Point(AlignToMinRoutingGrid(static_cast<long>(p.x)),
                     AlignToMinRoutingGrid(static_cast<long>(p.y)));
}

int SYS_Convert::IsAlignedToMinRoutingGrid(long v) const {
    return SYS_Wrap32(v) % GetMinRoutingGrid() == 0 ? 1 : 0;
}

int SYS_Convert::IsAlignedToMinRoutingGrid(SYS_Point p) const {
    return IsAlignedToMinRoutingGrid(static_cast<long>(p.x)) &&
                   IsAlignedToMinRoutingGrid(static_cast<long>(p.y))
               ? 1
               : 0;
}
