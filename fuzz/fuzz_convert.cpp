// Fuzzes unit conversion and the tagged value with arbitrary text: every
// parser of SYS_Convert in every unit (and in units outside the table), the
// formatters at any precision into buffers of any size, and SCC_Variant's
// conversions and Validate with arbitrary rules.  Buffers are allocated at
// their exact size, so a formatter that writes past one is caught by ASan.
//   build/fuzz/fuzz/fuzz_convert -max_total_time=60 /tmp/corpus fuzz/corpus/convert
// Input: four control bytes (unit, unit precision, angle precision, flags:
// bit 0 zero-trim, the rest the size of the small buffer), then a value text
// and, after the first newline, a rule text.
#include <keel/SCC_Variant.h>
#include <keel/SYS_Convert.h>
#include <keel/SYS_Exception.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

namespace {

void Check(bool ok) {
    if (!ok) __builtin_trap();
}

// Small precisions most of the time, and now and then one whose text of a
// large double does not fit 512 bytes (or a negative one, which printf
// treats as absent).
int Precision(uint8_t byte) {
    static const int large[] = {100, 300, 340, 400, 480, 500, 511, -1};
    return byte & 0x80 ? large[byte % 8] : byte % 24;
}

// A formatted number that went through TrimStrNumber: with its point kept,
// it ends in a digit other than 0.
void CheckTrimmed(const char* s) {
    const size_t n = std::strlen(s);
    if (std::strchr(s, '.')) Check(n > 0 && s[n - 1] != '0' && s[n - 1] != '.');
}

// The formatters into a buffer of exactly `size` bytes and into 512 bytes;
// without zero-trim the small text is the start of the large one.
void Format(const SYS_Convert& c, unsigned int size, long b, double d, long angle) {
    std::unique_ptr<char[]> small(new char[size]), large(new char[512]);
    const std::string whole = c.Base2Str(large.get(), 512, b);
    if (c.IsZeroTrimMode()) CheckTrimmed(whole.c_str());
    c.Base2Str(small.get(), size, b);
    if (size > 0) {
        Check(std::strlen(small.get()) < size);
        if (!c.IsZeroTrimMode())
            Check(whole.compare(0, size - 1, small.get(), std::strlen(small.get())) == 0);
    }
    c.Base2Str(small.get(), size, d);
    c.Base2Str(large.get(), 512, d);
    if (c.IsZeroTrimMode()) CheckTrimmed(large.get());
    c.Angle2Str(small.get(), size, angle);
    c.Angle2Str(large.get(), 512, angle);
    if (c.IsZeroTrimMode()) CheckTrimmed(large.get());

    c.Base2Str(b);
    c.Base2Str(d);
    c.Measure2String(b);
    c.Angle2Str(angle);
    c.Point2String(SYS_Point(b, angle));
    c.Point2String(SYS_StringBase("at "), SYS_Point(angle, b));
    c.CoordX2String(SYS_StringBase("x "), b);
    c.CoordY2String(SYS_StringBase("y "), angle);
}

// Every parser on one text, with the results checked against each other.
// Returns the value Str2Long wrote (the nearest 32-bit limit beyond them).
long Parse(const SYS_Convert& c, const char* s) {
    double d = 0;
    const int isNumber = SYS_Convert::Str2Double(s, &d);
    long l = 0;
    if (SYS_Convert::Str2Long(s, &l)) Check(l >= INT32_MIN && l <= INT32_MAX);

    const long unset = 12345;
    long b = unset;
    const long expected = isNumber ? c.User2Base(d) : 0;
    const bool fits = isNumber && expected >= -SYS_CONVERT_LIMIT && expected <= SYS_CONVERT_LIMIT;
    const int based = c.Str2Base(s, &b);
    Check(based == (fits ? 1 : 0));
    Check(b == (based ? expected : unset));
    if (based) {
        // Back to text with enough decimals and parsed again: the same value.
        SYS_Convert exact = c;
        exact.SetUnitPrecision(12);
        long again = unset;
        Check(exact.Str2Base(exact.Base2Str(b).GetString(), &again) == 1 && again == b);
    }

    double bd = 0;
    Check(c.Str2Base(s, &bd) == isNumber);
    long m = unset;
    const int measured = c.Str2Measure(s, &m);
    Check(measured == (isNumber && !(d < 0) ? 1 : 0));
    Check(m == (measured ? expected : unset));
    long a = 0;
    Check(SYS_Convert::Str2Angle(s, &a) == isNumber);

    Check(c.AlignToMinRoutingGrid(l) == static_cast<int32_t>(l));
    SYS_Convert::UnitTypeObj units;
    units.SetHandle(static_cast<int>(l), nullptr);
    units.GetName();
    units.GetType();
    return l;
}

// Shown as mils, stored as database units: 19,050 per mil.
class MilConvertor : public SCC_Convertor {
public:
    SCC_Variant Convert(SCC_Variant value, int direction) override {
        const double v = value;
        return SCC_Variant(direction ? v * 19050.0 : v / 19050.0);
    }
};

// The conversions of a variant agree: the integer is the truncated double,
// and it throws exactly when the double is beyond 32 bits or not a number.
void Convert(const SCC_Variant& v) {
    bool isNumber = true;
    double d = 0;
    try {
        d = static_cast<double>(v);
    } catch (const SYS_Exception&) {
        isNumber = false;
    }
    bool isInt = true;
    long l = 0;
    try {
        l = static_cast<long>(v);
    } catch (const SYS_Exception&) {
        isInt = false;
    }
    const bool fits = d >= -2147483648.0 && d <= 2147483647.0;
    Check(isInt == (isNumber && fits));
    if (isInt) Check(l == static_cast<long>(static_cast<int32_t>(d)));
    try {
        Check(static_cast<int>(v) == l);
    } catch (const SYS_Exception&) {
        Check(!isInt);
    }
    SCC_Variant copy;
    copy = v;
    Check(static_cast<SYS_StringBase>(copy) == static_cast<SYS_StringBase>(SCC_Variant(v)));
}

bool Same(const SCC_Variant& a, const SCC_Variant& b) {
    return a.GetType() == b.GetType() && a.m_Long == b.m_Long &&
           std::memcmp(&a.m_Double, &b.m_Double, sizeof(double)) == 0 && a.m_String == b.m_String;
}

// Validate on a copy: a success leaves the value alone; a failure either
// leaves it (a length rule) or replaces it by the message text.
void Validate(const SCC_Variant& v, const SYS_StringBase& rule, SCC_Convertor* convertor) {
    SCC_Variant w(v);
    try {
        if (w.Validate(rule, convertor))
            Check(Same(w, v));
        else
            Check(Same(w, v) || w.GetType() == SCC_Variant::TYPE_STRING);
    } catch (const SYS_Exception&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    static const int units[] = {0, 1, 2, 3, 4, 5, 6, 7, -1, 1000};
    SYS_Convert c(static_cast<SYS_UnitType>(units[data[0] % 10]));
    c.SetUnitPrecision(Precision(data[1]));
    c.SetAnglePrecision(Precision(data[2]));
    c.SetZeroTrimMode(data[3] & 1);
    const unsigned int bufferSize = (data[3] >> 1) % 24;

    const std::string text(reinterpret_cast<const char*>(data + 4), size - 4);
    const size_t newline = text.find('\n');
    const std::string value = text.substr(0, newline);
    const std::string rule = newline == std::string::npos ? "" : text.substr(newline + 1);

    const long lv = Parse(c, value.c_str());
    const long lr = Parse(c, rule.c_str());
    double dv = 0;
    SYS_Convert::Str2Double(value.c_str(), &dv);
    c.SetOrigin(SYS_Point(lr, lv));
    Format(c, bufferSize, lv, dv, lr);

    // TrimStrNumber on a writable copy of the text: it only ever shortens it.
    std::string trimmed = value;
    SYS_Convert::TrimStrNumber(trimmed.c_str());
    const size_t length = std::strlen(trimmed.c_str());
    Check(length <= value.size() && value.compare(0, length, trimmed.c_str()) == 0);

    // The value as a text, a double and a long; equality across types.
    const SCC_Variant variants[] = {SCC_Variant(value.c_str()), SCC_Variant(dv), SCC_Variant(lv),
                                    SCC_Variant()};
    for (const SCC_Variant& v : variants) Convert(v);
    Check(SCC_Variant(lv) == SCC_Variant(static_cast<double>(static_cast<int32_t>(lv))));
    Check(SCC_Variant(dv) == SCC_Variant(SYS_StringBase(SCC_Variant(dv))));
    Check(!(SCC_Variant() == SCC_Variant()));

    // The rule as it is and written in stored units, with no convertor, the
    // identity convertor and a scaling one.
    SCC_Convertor identity;
    MilConvertor mils;
    const SYS_StringBase rules[] = {SYS_StringBase(rule.c_str()),
                                    SYS_StringBase(("#" + rule).c_str())};
    for (const SYS_StringBase& r : rules)
        for (const SCC_Variant& v : variants) {
            Validate(v, r, nullptr);
            Validate(v, r, &identity);
            Validate(v, r, &mils);
        }
    return 0;
}
