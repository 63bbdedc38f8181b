/// @file
/// The tagged value that properties read and write, and the convertor that
/// translates values between stored and displayed forms.
///
/// A SCC_Variant holds a 32-bit integer, a double, a string or nothing.  The
/// type numbers order generality (long, then double, then string, then
/// empty), and a comparison converts both sides to the more general type: the
/// long 5 equals the double 5.0 and the string "5"; "5.000000" is the double
/// 5.0 as text.  Two empty variants are not equal.
///
/// Conversions are strict and throw SYS_Exception with a resource text:
/// "Invalid floating point format." (text 45062) for a text that is not one
/// number (blanks and tabs around it are fine, an empty text is 0),
/// "Value out of range." (text 45063) for an integer conversion of a double
/// beyond 32 bits (or not a number).  Nothing else is thrown and no error
/// code is returned.
///
/// Validate tests the value against a rule: "[low,high)" style ranges ("["
/// and "]" include the bound, anything else excludes it) or a maximum text
/// length ("8").  A rule starting with "#" is written in stored units: the
/// value goes through the convertor (direction 1) before the test, and the
/// bounds of the message (direction 0) before they are shown.  A failed range
/// test replaces the variant by the message.
///
/// Costs: a variant is about 56 bytes; conversions of numbers are a format or
/// a strtod, and only string results allocate.
#ifndef SCC_VARIANT_H
#define SCC_VARIANT_H

#include "SCC_Shared.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <cstdint>

class SCC_Convertor;

/// A value that is a 32-bit integer, a double, a string or empty, with strict
/// conversions between them, comparison across types and validation against
/// a textual rule.  Copies are deep.
class KEEL_API SCC_Variant {
public:
    /// The kind of value held, numbered in order of generality: a comparison
    /// works in the higher of the two types.
    enum ValueType : int32_t {
        TYPE_LONG = 1,   ///< a 32-bit integer, in m_Long
        TYPE_DOUBLE = 2, ///< a double, in m_Double
        TYPE_STRING = 3, ///< a text, in m_String
        TYPE_EMPTY = 4   ///< no value
    };

    /// The kind of value held; only the field of this type is meaningful.
    ValueType m_Type;
    /// The value of a TYPE_LONG variant; 0 otherwise.
    int32_t m_Long; // 32 bits whatever the width of long
    /// The value of a TYPE_DOUBLE variant; 0.0 otherwise.
    double m_Double;
    /// The value of a TYPE_STRING variant; empty otherwise.
    SYS_StringBase m_String;

    /// An empty variant (TYPE_EMPTY).
    SCC_Variant();
    /// A TYPE_LONG variant.
    SCC_Variant(int v);
    /// A TYPE_LONG variant; keeps the low 32 bits of v.
    SCC_Variant(long v);
    /// A TYPE_DOUBLE variant.
    SCC_Variant(double v);
    /// A TYPE_STRING variant holding a copy of the text.
    SCC_Variant(SYS_StringBase v);
    /// A TYPE_STRING variant holding a copy of the text (null gives an empty
    /// text).
    SCC_Variant(const char* v);
    /// Copies type and value.
    SCC_Variant(const SCC_Variant& other);
    /// Takes other's type and other's value converted to it; assigning a
    /// variant to itself changes nothing.
    SCC_Variant& operator=(const SCC_Variant& other);

    /// Empty string, 0, 0.0, TYPE_EMPTY.
    void Clear();
    /// Whether the variant holds no value (TYPE_EMPTY).
    bool IsEmpty() const { return m_Type == TYPE_EMPTY; }
    /// The kind of value held.
    ValueType GetType() const { return m_Type; }

    /// @name Conversions
    ///@{

    /// The value as a 32-bit integer, a double, or a text.
    ///
    /// - int and long: a long as it is; a double truncated toward zero after
    ///   the range test; a text scanned as a double, then range-tested and
    ///   truncated ("12.7" gives 12); empty gives 0.
    /// - double: a long widened; a text scanned as a double; empty gives 0.0.
    /// - text: a long formatted with "%d", a double with "%f" (six decimals,
    ///   7.0 gives "7.000000"); empty gives an empty text.
    ///
    /// A text scans as one number in the C library's strtod syntax (so "1e3",
    /// "0x10" and "inf" are numbers) with only blanks and tabs around it; an
    /// empty or blank text is 0.  Anything else throws SYS_Exception with
    /// "Invalid floating point format." (text 45062).  The integer forms throw
    /// SYS_Exception with "Value out of range." (text 45063) for a value
    /// above 2147483647 or below -2147483648, or not a number.
    operator int() const;
    operator long() const;
    operator double() const;
    operator SYS_StringBase();
    ///@}

    /// 1 when the two are equal in the more general type of the two (a long
    /// and a double compare as doubles, exactly; anything and a text compare
    /// as texts); 0 when they differ or either is empty.  Never throws.
    int operator==(const SCC_Variant& other) const;
    /// 1 when == does not give a positive value, else 0; so an empty variant
    /// differs from everything, even from another empty one.
    int operator!=(const SCC_Variant& other) const;

    /// Tests the value against `rule`: 1 when it satisfies it, else 0.
    ///
    /// - An empty rule, or an empty variant, always passes.
    /// - A range "(low,high)": the opening character "[" includes `low`, any
    ///   other excludes it; the closing "]" includes `high`, any other
    ///   excludes it.  The value is tested as a double.  On failure the
    ///   variant becomes a TYPE_STRING holding resource text 45064 filled in,
    ///   for example "Please enter a value within the [0.000000,10.000000)
    ///   range.", for the host to show.
    /// - Any other rule is a maximum length: its leading number is compared
    ///   with the length of m_String (so a numeric variant, whose text field
    ///   is empty, always passes).  A length rule with no number in it sets
    ///   no limit.
    /// - A rule starting with "#" is in stored units: when `convertor` is not
    ///   null, the value is converted with direction 1 before a range test,
    ///   and the bounds with direction 0 before they go into the message.
    ///
    /// `convertor` may be null and is only used during the call.  Throws as
    /// the conversions do when a range rule meets a text that is not a
    /// number.
    int Validate(SYS_StringBase rule, SCC_Convertor* convertor);

protected:
    /// The more general of m_Type and t.
    ValueType GetSuperiorType(ValueType t) const { return t > m_Type ? t : m_Type; }

private:
    SYS_StringBase Text() const;
};

/// Translates a value between its stored form and its displayed form (for
/// example database units and the user's units): direction 0 stored to
/// displayed, 1 displayed to stored.
///
/// Reference counted through SCC_SharedPointer<SCC_Convertor>: a convertor
/// made with new is deleted with its last reference; a static or member one
/// never is.  The destructor is virtual, so a derived convertor released
/// through that pointer is destroyed whole.
class KEEL_API SCC_Convertor : public SCC_SharedBuffer {
public:
    /// A never-referenced count.
    SCC_Convertor() {}
    /// A never-referenced count; the source's count is not taken.
    SCC_Convertor(const SCC_Convertor& other) : SCC_SharedBuffer(other) {}

    /// Returns `value` in the other form: direction 0 stored to displayed, 1
    /// displayed to stored.  Override it for real conversions; the base gives
    /// the value unchanged.  May throw, as the variant's conversions do.
    virtual SCC_Variant Convert(SCC_Variant value, int direction);
    /// Frees nothing of its own; virtual for derived convertors.
    // After Convert, so that Convert keeps the first slot.
    virtual ~SCC_Convertor();
};

#endif // SCC_VARIANT_H
