// SCC_Variant.h - the tagged value that properties read and write, and the
// convertor that translates values between stored and displayed forms.
//
// A SCC_Variant holds a 32-bit integer, a double, a string or nothing.  The
// type numbers order generality (long < double < string < empty), and a
// comparison converts both sides to the more general type: the long 5 equals
// the double 5.0 and the string "5"; "5.000000" is the double 5.0 as text.
// Two empty variants are not equal.
//
// Conversions are strict and throw SYS_Exception with a resource text:
// "Invalid floating point format." for a text that is not one number (blanks
// around it are fine, an empty text is 0), "Value out of range." for an
// integer conversion of a double beyond 32 bits (or not a number).
//
// Validate tests the value against a rule: "[low,high)" style ranges ("["
// and "]" include the bound, anything else excludes it) or a maximum text
// length ("8").  A rule starting with "#" is written in stored units: the
// value goes through the convertor (direction 1) before the test, and the
// bounds of the message (direction 0) before they are shown.  A failed range
// test replaces the variant by the message.
//
// Costs: a variant is about 56 bytes; conversions of numbers are a format or
// a strtod, and only string results allocate.
#ifndef SCC_VARIANT_H
#define SCC_VARIANT_H

#include "SCC_Shared.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <cstdint>

class SCC_Convertor;

class KEEL_API SCC_Variant {
public:
    enum ValueType : int32_t { TYPE_LONG = 1, TYPE_DOUBLE = 2, TYPE_STRING = 3, TYPE_EMPTY = 4 };

    ValueType m_Type;
    int32_t m_Long; // 32 bits whatever the width of long
    double m_Double;
    SYS_StringBase m_String;

    SCC_Variant();
    SCC_Variant(int v);
    // Keeps the low 32 bits of v.
    SCC_Variant(long v);
    SCC_Variant(double v);
    SCC_Variant(SYS_StringBase v);
    SCC_Variant(const char* v);
    SCC_Variant(const SCC_Variant& other);
    // Takes other's type and other's value converted to it; assigning a
    // variant to itself changes nothing.
    SCC_Variant& operator=(const SCC_Variant& other);

    // Empty string, 0, 0.0, TYPE_EMPTY.
    void Clear();
    bool IsEmpty() const { return m_Type == TYPE_EMPTY; }
    ValueType GetType() const { return m_Type; }

    // The value as a 32-bit integer (doubles and texts truncated toward
    // zero after the range test), a double, or a text ("%d", "%f").
    operator int() const;
    operator long() const;
    operator double() const;
    operator SYS_StringBase();

    // Compared in the more general type of the two; 0 when either is empty.
    int operator==(const SCC_Variant& other) const;
    // 1 when == does not give a positive value.
    int operator!=(const SCC_Variant& other) const;

    // 1 when the value satisfies `rule` (an empty rule, or an empty variant,
    // always does).  A failed range test leaves the filled-in message of
    // resource text 45064 in the variant.  A length rule with no number in
    // it sets no limit.  Throws as the conversions do when a range rule meets
    // a value that is not a number.
    int Validate(SYS_StringBase rule, SCC_Convertor* convertor);

protected:
    // The more general of m_Type and t.
    ValueType GetSuperiorType(ValueType t) const { return t > m_Type ? t : m_Type; }

private:
    SYS_StringBase Text() const;
};

// Translates a value between its stored form and its displayed form:
// direction 0 stored to displayed, 1 displayed to stored.  Reference counted
// through SCC_SharedPointer<SCC_Convertor>; the destructor is virtual, so a
// derived convertor released through that pointer is destroyed whole.
class KEEL_API SCC_Convertor : public SCC_SharedBuffer {
public:
    SCC_Convertor() {}
    SCC_Convertor(const SCC_Convertor& other) : SCC_SharedBuffer(other) {}

    // The base gives the value unchanged.
    virtual SCC_Variant Convert(SCC_Variant value, int direction);
    // After Convert, so that Convert keeps the first slot.
    virtual ~SCC_Convertor();
};

#endif // SCC_VARIANT_H
