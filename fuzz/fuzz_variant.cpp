// Fuzzes SCC_Variant: every typed conversion of long, double, text and empty
// values, equality across types, assignment, and Validate with fuzzed range
// and length rules through no convertor, the identity convertor, a scaling
// one and one that hands values back as text.  Each result is compared with
// the rules as the header states them: which conversions throw
// SYS_Exception and with which text, what a failed range rule leaves in the
// variant, and the round trips that must hold (a long through its text, a
// double through "%f").  Only SYS_Exception is caught, and only where a
// conversion is meant to throw; anything else is a finding.
//   build/fuzz/fuzz/fuzz_variant -max_total_time=600 /tmp/corpus fuzz/corpus/variant
// Input: a control byte (bits 0-1 the type of the first value: long, double,
// text, empty; bit 2 its number taken from raw bytes instead of its text;
// bits 3-5 the same for the second value; bits 6-7 the convertor), then each
// value's field as a length byte and that many bytes, and the rule.  Texts
// end at their first zero byte, as a host's would.
#include <keel/SCC_Variant.h>
#include <keel/SYS_Exception.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void Fail(const char* what, int line) {
    std::fprintf(stderr, "fuzz_variant: check failed at line %d: %s\n", line, what);
    __builtin_trap();
}
#define CHECK(c)                                                                                   \
    do {                                                                                           \
        if (!(c)) Fail(#c, __LINE__);                                                              \
    } while (0)

const char kFormatText[] = "Invalid floating point format.";
const char kRangeText[] = "Value out of range.";
const char kAskFormat[] = "Please enter a value within the %c%lf,%lf%c range.";

std::string Printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string Printf(const char* format, ...) {
    va_list args, again;
    va_start(args, format);
    va_copy(again, args);
    const int n = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    std::string s(n > 0 ? static_cast<size_t>(n) : 0, '\0');
    if (n > 0) std::vsnprintf(&s[0], s.size() + 1, format, again);
    va_end(again);
    return s;
}

std::string Str(const SYS_StringBase& s) { return s.GetString() ? s.GetString() : ""; }

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// What a conversion should do: give a value, or throw one of the two texts.
enum Outcome { Value, BadFormat, OutOfRange };

const char* TextOf(Outcome o) { return o == BadFormat ? kFormatText : kRangeText; }

struct Number {
    Outcome outcome;
    double value;
};

// The strict scan of a text: blanks and tabs around one number as strtod
// reads it, nothing else; an empty or blank text is 0.
Number Scan(const char* s) {
    while (*s == ' ' || *s == '\t') ++s;
    char* end = nullptr;
    const double d = std::strtod(s, &end);
    while (*end == ' ' || *end == '\t') ++end;
    return *end ? Number{BadFormat, 0} : Number{Value, d};
}

Number ExpectDouble(const SCC_Variant& v) {
    switch (v.GetType()) {
    case SCC_Variant::TYPE_LONG:
        return {Value, static_cast<double>(v.m_Long)};
    case SCC_Variant::TYPE_DOUBLE:
        return {Value, v.m_Double};
    case SCC_Variant::TYPE_STRING:
        return Scan(Str(v.m_String).c_str());
    default:
        return {Value, 0.0};
    }
}

// The integer forms: a long as it is; anything else through the double,
// range-tested (a value that is not a number fails too), then truncated.
struct Integer {
    Outcome outcome;
    int32_t value;
};

Integer ExpectLong(const SCC_Variant& v) {
    if (v.GetType() == SCC_Variant::TYPE_LONG) return {Value, v.m_Long};
    const Number n = ExpectDouble(v);
    if (n.outcome != Value) return {n.outcome, 0};
    if (!(n.value <= 2147483647.0 && n.value >= -2147483648.0)) return {OutOfRange, 0};
    return {Value, static_cast<int32_t>(std::trunc(n.value))};
}

std::string ExpectText(const SCC_Variant& v) {
    switch (v.GetType()) {
    case SCC_Variant::TYPE_LONG:
        return Printf("%d", static_cast<int>(v.m_Long));
    case SCC_Variant::TYPE_DOUBLE:
        return Printf("%f", v.m_Double);
    case SCC_Variant::TYPE_STRING:
        return Str(v.m_String);
    default:
        return "";
    }
}

// Runs `convert` and checks that it returns `want` or throws its text.
template <class F> void CheckThrows(Outcome want, F convert) {
    try {
        convert();
    } catch (const SYS_Exception& x) {
        CHECK(want != Value);
        CHECK(Str(x.GetText()) == TextOf(want));
        return;
    }
    CHECK(want == Value);
}

bool Same(const SCC_Variant& a, const SCC_Variant& b) {
    return a.GetType() == b.GetType() && a.m_Long == b.m_Long && SameBits(a.m_Double, b.m_Double) &&
           Str(a.m_String) == Str(b.m_String);
}

// Every conversion of `v`, its assignment to another variant, and the round
// trips of its text.
void CheckConversions(const SCC_Variant& v) {
    const SCC_Variant before(v);
    const Number d = ExpectDouble(v);
    CheckThrows(d.outcome, [&] {
        const double got = static_cast<double>(v);
        CHECK(SameBits(got, d.value) || (std::isnan(got) && std::isnan(d.value)));
    });
    const Integer l = ExpectLong(v);
    CheckThrows(l.outcome, [&] { CHECK(static_cast<long>(v) == l.value); });
    CheckThrows(l.outcome, [&] { CHECK(static_cast<int>(v) == l.value); });
    SCC_Variant writable(v);
    const std::string text = ExpectText(v);
    CHECK(Str(static_cast<SYS_StringBase>(writable)) == text);
    CHECK(Same(v, before)); // conversions leave the value alone
    CHECK(Same(writable, before));

    // Assignment takes the type and the value; self-assignment and Clear.
    SCC_Variant other(3.5);
    other = v;
    CHECK(Same(other, v));
    const SCC_Variant& same = other;
    other = same;
    CHECK(Same(other, v));
    other.Clear();
    CHECK(other.IsEmpty() && other.m_Long == 0 && SameBits(other.m_Double, 0.0) &&
          other.m_String.IsEmpty());

    // A long comes back from its text; a double's "%f" text comes back as a
    // number whose "%f" text is the same.
    if (v.GetType() == SCC_Variant::TYPE_LONG) {
        CHECK(static_cast<long>(SCC_Variant(text.c_str())) == v.m_Long);
        CHECK(static_cast<double>(SCC_Variant(text.c_str())) == v.m_Long);
    }
    if (v.GetType() == SCC_Variant::TYPE_DOUBLE) {
        const double back = static_cast<double>(SCC_Variant(text.c_str()));
        CHECK(Printf("%f", back) == text);
    }
}

// Equality in the more general type of the two; an empty side is never
// equal; a long and a double compare as doubles, anything and a text as
// texts.
int ExpectEqual(const SCC_Variant& a, const SCC_Variant& b) {
    const int t = a.GetType() > b.GetType() ? a.GetType() : b.GetType();
    switch (t) {
    case SCC_Variant::TYPE_LONG:
        return a.m_Long == b.m_Long;
    case SCC_Variant::TYPE_DOUBLE:
        return ExpectDouble(a).value == ExpectDouble(b).value;
    case SCC_Variant::TYPE_STRING:
        return ExpectText(a) == ExpectText(b);
    default:
        return 0;
    }
}

void CheckEquality(const SCC_Variant& a, const SCC_Variant& b) {
    const int want = ExpectEqual(a, b);
    CHECK((a == b) == want);
    CHECK((b == a) == want);
    CHECK((a != b) == !want);
    CHECK((a == a) == ExpectEqual(a, a));
    // A value equals its own text, unless it is empty.
    SCC_Variant writable(a);
    const SCC_Variant asText(static_cast<SYS_StringBase>(writable));
    CHECK((a == asText) == !a.IsEmpty());
}

// Convertors: shown in mils, stored in database units (19,050 per mil); and
// one that gives every value back as its text.
class MilConvertor : public SCC_Convertor {
public:
    SCC_Variant Convert(SCC_Variant value, int direction) override {
        const double v = value;
        return SCC_Variant(direction ? v * 19050.0 : v / 19050.0);
    }
};

class TextConvertor : public SCC_Convertor {
public:
    SCC_Variant Convert(SCC_Variant value, int) override {
        return SCC_Variant(static_cast<SYS_StringBase>(value));
    }
};

// Validate of a copy of `v`, against the rule as the header states it.
void CheckValidate(const SCC_Variant& v, const std::string& rule, SCC_Convertor* convertor) {
    SCC_Variant tested(v);
    int want = 1;
    Outcome thrown = Value;
    std::string message; // the text a failed range rule leaves, else empty
    if (!rule.empty() && !v.IsEmpty()) {
        const char* text = rule.c_str();
        const bool stored = *text == '#';
        if (stored) ++text;
        const bool convert = stored && convertor;
        SCC_Variant value(v);
        try {
            if (convert) value = convertor->Convert(v, 1);
        } catch (const SYS_Exception& x) {
            thrown = Str(x.GetText()) == kFormatText ? BadFormat : OutOfRange;
        }
        char open = 0, close = 0;
        double low = 0, high = 0;
        if (thrown != Value) {
            // The convertor threw before the rule was read.
        } else if (std::sscanf(text, "%c %lf , %lf %c", &open, &low, &high, &close) != 4) {
            // A maximum length of the text field; no number, no limit (a
            // number beyond 64 bits saturates).
            char* end = nullptr;
            const long long limit = std::strtoll(text, &end, 10);
            want = end == text || v.m_String.GetLength() <= limit ? 1 : 0;
        } else {
            const Number d = ExpectDouble(value);
            if (d.outcome != Value) {
                thrown = d.outcome;
            } else {
                const bool lowOk = open == '[' ? low <= d.value : low < d.value;
                const bool highOk = close == ']' ? d.value <= high : d.value < high;
                if (!(lowOk && highOk)) {
                    want = 0;
                    if (convert) {
                        low = ExpectDouble(convertor->Convert(SCC_Variant(low), 0)).value;
                        high = ExpectDouble(convertor->Convert(SCC_Variant(high), 0)).value;
                    }
                    message = Printf(kAskFormat, open, low, high, close);
                }
            }
        }
    }

    CheckThrows(thrown, [&] {
        const int got = tested.Validate(SYS_StringBase(rule.c_str()), convertor);
        CHECK(got == want);
    });
    if (thrown != Value || message.empty()) {
        CHECK(Same(tested, v)); // passed, failed a length rule, or threw
    } else {
        CHECK(tested.GetType() == SCC_Variant::TYPE_STRING);
        CHECK(Str(tested.m_String) == message);
        CHECK(tested.m_Long == 0 && SameBits(tested.m_Double, 0.0));
    }
}

// A value of the type the two control bits choose, from its field: numbers
// from the field's text (strtoll, strtod) or from its first bytes.
SCC_Variant Make(unsigned bits, const std::string& field) {
    const bool raw = bits & 4;
    switch (bits & 3) {
    case 0: {
        if (raw) {
            uint32_t u = 0;
            std::memcpy(&u, field.data(), field.size() < 4 ? field.size() : 4);
            const SCC_Variant v(static_cast<int>(u));
            CHECK(v.GetType() == SCC_Variant::TYPE_LONG && v.m_Long == static_cast<int32_t>(u));
            return v;
        }
        // A long keeps its low 32 bits.
        const long long wide = std::strtoll(field.c_str(), nullptr, 0);
        const SCC_Variant v(static_cast<long>(wide));
        CHECK(v.m_Long == static_cast<int32_t>(static_cast<uint32_t>(wide)));
        return v;
    }
    case 1: {
        double d = 0;
        if (raw)
            std::memcpy(&d, field.data(), field.size() < 8 ? field.size() : 8);
        else
            d = std::strtod(field.c_str(), nullptr);
        return SCC_Variant(d);
    }
    case 2:
        return raw ? SCC_Variant(SYS_StringBase(field.c_str())) : SCC_Variant(field.c_str());
    default:
        return SCC_Variant();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const unsigned control = data[0];
    size_t at = 1;
    auto field = [&]() {
        const size_t n = at < size ? std::min<size_t>(data[at], size - at - 1) : 0;
        const std::string f(reinterpret_cast<const char*>(data) + at + 1, at < size ? n : 0);
        at += 1 + n;
        return f;
    };
    const std::string fieldA = field(), fieldB = field();
    const std::string rule =
        at < size ? std::string(reinterpret_cast<const char*>(data) + at, size - at).c_str() : "";

    const SCC_Variant a = Make(control & 7, fieldA);
    const SCC_Variant b = Make((control >> 3) & 7, fieldB);
    CheckConversions(a);
    CheckConversions(b);
    CheckEquality(a, b);
    CHECK(SCC_Variant(static_cast<const char*>(nullptr)).m_String.IsEmpty());

    SCC_Convertor identity;
    MilConvertor mils;
    TextConvertor texts;
    SCC_Convertor* const convertors[] = {nullptr, &identity, &mils, &texts};
    SCC_Convertor* convertor = convertors[control >> 6];
    for (const SCC_Variant* v : {&a, &b}) {
        CheckValidate(*v, rule, convertor);
        CheckValidate(*v, "#" + rule, convertor);
    }
    return 0;
}
