// SCC_Variant.cpp - conversions, comparison and validation of the tagged
// value, and the identity convertor.
#include "SCC_Variant.h"
#include "SYS_Exception.h"
#include "SYS_Resource.h"
#include "internal/SYS_Int32.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

// Resource texts of the conversion failures.
const int kInvalidFloat = 45062;
const int kOutOfRange = 45063;
const int kRangeMessage = 45064;

[[noreturn]] void Fail(int id) { throw SYS_Exception(TR(id).GetString()); }

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// The strict "%f" scan: blanks and tabs around one floating-point number,
// nothing else.  The number is strtod's (an empty text is 0, a value beyond
// the double range is infinite); anything left over is a format error.
double ScanDouble(const char* s) {
    while (IsBlank(*s)) ++s;
    char* end = nullptr;
    const double d = std::strtod(s, &end);
    while (IsBlank(*end)) ++end;
    if (*end) Fail(kInvalidFloat);
    return d;
}

// The range test of the integer conversions, then truncation toward zero.  A
// value that is not a number fails the test as well.
int32_t ToInt32(double d) {
    if (!(d <= 2147483647.0 && d >= -2147483648.0)) Fail(kOutOfRange);
    return static_cast<int32_t>(d);
}

// The leading decimal number of a length rule, saturated to int; false when
// the text holds none.
bool ScanLength(const char* s, long long* n) {
    char* end = nullptr;
    const long long v = std::strtoll(s, &end, 10);
    if (end == s) return false;
    *n = v;
    return true;
}

} // namespace

// ---------------------------------------------------------------------------
// Construction and assignment

SCC_Variant::SCC_Variant() : m_Type(TYPE_EMPTY), m_Long(0), m_Double(0.0) {}
SCC_Variant::SCC_Variant(int v) : m_Type(TYPE_LONG), m_Long(v), m_Double(0.0) {}
SCC_Variant::SCC_Variant(long v) : m_Type(TYPE_LONG), m_Long(SYS_Wrap32(v)), m_Double(0.0) {}
SCC_Variant::SCC_Variant(double v) : m_Type(TYPE_DOUBLE), m_Long(0), m_Double(v) {}
SCC_Variant::SCC_Variant(SYS_StringBase v)
    : m_Type(TYPE_STRING), m_Long(0), m_Double(0.0), m_String(v) {}
SCC_Variant::SCC_Variant(const char* v)
    : m_Type(TYPE_STRING), m_Long(0), m_Double(0.0), m_String(v) {}
SCC_Variant::SCC_Variant(const SCC_Variant& other) = default;

SCC_Variant& SCC_Variant::operator=(const SCC_Variant& other) {
    if (&other == this) return *this;
    Clear();
    switch (other.m_Type) {
    case TYPE_LONG:
        m_Long = static_cast<int32_t>(static_cast<long>(other));
        break;
    case TYPE_DOUBLE:
        m_Double = static_cast<double>(other);
        break;
    case TYPE_STRING:
        m_String = other.Text();
        break;
    default:
        return *this;
    }
    m_Type = other.m_Type;
    return *this;
}

void SCC_Variant::Clear() {
    m_String.Empty();
    m_Long = 0;
    m_Double = 0.0;
    m_Type = TYPE_EMPTY;
}

// ---------------------------------------------------------------------------
// Conversions

SCC_Variant::operator long() const {
    switch (m_Type) {
    case TYPE_LONG:
        return m_Long;
    case TYPE_DOUBLE:
        return ToInt32(m_Double);
    case TYPE_STRING:
        return ToInt32(ScanDouble(m_String.GetString()));
    default:
        return 0;
    }
}

SCC_Variant::operator int() const { return static_cast<int>(static_cast<long>(*this)); }

SCC_Variant::operator double() const {
    switch (m_Type) {
    case TYPE_LONG:
        return m_Long;
    case TYPE_DOUBLE:
        return m_Double;
    case TYPE_STRING:
        return ScanDouble(m_String.GetString());
    default:
        return 0.0;
    }
}

SCC_Variant::operator SYS_StringBase() { return Text(); }

SYS_StringBase SCC_Variant::Text() const {
    switch (m_Type) {
    case TYPE_LONG:
        return FormattedString("%d", static_cast<int>(m_Long));
    case TYPE_DOUBLE:
        return FormattedString("%f", m_Double);
    case TYPE_STRING:
        return m_String;
    default:
        return SYS_StringBase();
    }
}

// ---------------------------------------------------------------------------
// Comparison

int SCC_Variant::operator==(const SCC_Variant& other) const {
    switch (GetSuperiorType(other.m_Type)) {
    case TYPE_LONG:
        return static_cast<long>(*this) == static_cast<long>(other) ? 1 : 0;
    case TYPE_DOUBLE:
        return static_cast<double>(*this) == static_cast<double>(other) ? 1 : 0;
    case TYPE_STRING:
        return Text() == other.Text() ? 1 : 0;
    default:
        return 0;
    }
}

int SCC_Variant::operator!=(const SCC_Variant& other) const { return (*this == other) > 0 ? 0 : 1; }

// ---------------------------------------------------------------------------
// Validation

int SCC_Variant::Validate(SYS_StringBase rule, SCC_Convertor* convertor) {
    if (rule.IsEmpty() || IsEmpty()) return 1;
    const char* text = rule.GetString();
    const bool stored = *text == '#';
    if (stored) ++text;
    const bool convert = stored && convertor;

    const SCC_Variant value = convert ? convertor->Convert(*this, 1) : *this;

    char open = 0, close = 0;
    double low = 0, high = 0;
    if (std::sscanf(text, "%c %lf , %lf %c", &open, &low, &high, &close) != 4) {
        // A maximum length, measured on this variant's text field.  A rule
        // that holds no number sets no limit.
        long long limit = 0;
        if (!ScanLength(text, &limit)) return 1;
        return m_String.GetLength() <= limit ? 1 : 0;
    }

    const double d = static_cast<double>(value);
    const bool lowOk = open == '[' ? low <= d : low < d;
    const bool highOk = close == ']' ? d <= high : d < high;
    if (lowOk && highOk) return 1;

    if (convert) {
        low = static_cast<double>(convertor->Convert(SCC_Variant(low), 0));
        high = static_cast<double>(convertor->Convert(SCC_Variant(high), 0));
    }
    *this = SCC_Variant(FormattedString(TR(kRangeMessage).GetString(), open, low, high, close));
    return 0;
}

// ---------------------------------------------------------------------------
// SCC_Convertor

SCC_Convertor::~SCC_Convertor() {}

SCC_Variant SCC_Convertor::Convert(SCC_Variant value, int) { return value; }
