/// @file
/// Properties: one attribute of the objects that handles stand for, read and
/// written as SCC_Variant values.
///
/// SCC_StdProperty is the untyped base: it carries the validation rule of new
/// values (the syntax of SCC_Variant::Validate) and an optional convertor
/// between the stored and the displayed form, and it reads or writes the
/// attribute across every focused handle of a collection.  Reading gives the
/// common value of the focused handles, or an empty variant when they differ.
/// SCC_TypedProperty<T> binds the attribute to a native type through two
/// accessors the host implements (GetTypedValue, SetTypedValue); keel exports
/// it for int, long, double, SYS_StringBase and const char* (read-only).
///
/// Properties are reference counted (SCC_SharedBuffer).  A property without
/// a set method (HasSetMethod() 0) accepts every write and stores nothing.
///
/// Costs: a read or a write is one accessor call per handle plus a variant
/// conversion, and a convertor call when there is a convertor.
#ifndef SCC_PROPERTY_H
#define SCC_PROPERTY_H

#include "SCC_Shared.h"
#include "SCC_Variant.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <type_traits>

class SCC_StdCollection;

/// The untyped property: reads and writes one attribute as SCC_Variant
/// values, for one handle or across the focus of a collection.
///
/// Reference counted: a property made with new and held through
/// SCC_SharedPointer is deleted with its last reference.  Hosts normally
/// derive from SCC_TypedProperty rather than from this class.
class KEEL_API SCC_StdProperty : public SCC_SharedBuffer {
public:
    /// A never-referenced count, no convertor, no rule.
    SCC_StdProperty() {}
    /// A fresh count; shares the convertor and copies the rule.
    SCC_StdProperty(const SCC_StdProperty& other) = default;
    /// Copies the count word as it stands, shares the convertor, copies the rule.
    SCC_StdProperty& operator=(const SCC_StdProperty& other) = default;
    /// Releases the property's reference to its convertor.
    virtual ~SCC_StdProperty();

    /// The common value of the collection's focused handles (empty when they
    /// differ): 1; 0 when nothing is focused or a handle cannot be read.  A
    /// null collection reads handle 0.  `value` should come in empty: a value
    /// already there is compared with the first handle's.  Reads every
    /// focused handle until two differ.
    virtual int GetValue(SCC_StdCollection* collection, SCC_Variant& value);
    /// Reads the attribute of `handle` into `value`: 1 when read.  The base
    /// has no value: 0.
    virtual int GetValue(int handle, SCC_Variant& value);
    /// Writes (or with `checkOnly` non-zero only validates) `value` for every
    /// focused handle, in ascending handle order, stopping at the first
    /// failure (0); 1 otherwise, also when nothing is focused.  A null
    /// collection writes handle 0.  A failed range check leaves its message
    /// in `value`.
    virtual int SetValue(SCC_StdCollection* collection, SCC_Variant& value, int checkOnly);
    /// Writes (or with `checkOnly` non-zero only validates) `value` for
    /// `handle`: non-zero on success.  The base stores nothing: 0.
    virtual int SetValue(int handle, SCC_Variant& value, int checkOnly);
    /// Whether the attribute can be written; the base is read-only (0).
    /// Override it to return 1 in a property whose SetTypedValue stores.
    virtual int HasSetMethod();
    /// The property that holds the data; the base returns this property.
    virtual SCC_StdProperty* GetDataSource();
    /// The validation rule (empty for none), in the syntax of
    /// SCC_Variant::Validate.  The text belongs to the property and changes
    /// with SetValidation.
    virtual const char* GetValidation();
    /// Sets the validation rule; the text is copied (null clears it).
    virtual void SetValidation(const char* rule);
    /// The convertor, as a new counted reference; null when there is none.
    virtual SCC_SharedPointer<SCC_Convertor> GetConvertor();
    /// Replaces the convertor (null for none); the property holds a counted
    /// reference, so a convertor made with new lives as long as some property
    /// uses it.  Returns this property, so that calls can be chained.
    virtual SCC_StdProperty* SetConvertor(SCC_SharedPointer<SCC_Convertor> convertor);

    /// The convertor between stored and displayed values, or null.
    SCC_SharedPointer<SCC_Convertor> m_Convertor;
    /// The validation rule of new values; empty means no rule.
    SYS_StringBase m_Validation;
};

/// A property bound to a native type `T` through two accessors the host
/// implements.
///
/// Derive from it, override GetTypedValue() and, for a writable attribute,
/// SetTypedValue() and HasSetMethod() (which must return non-zero, or writes
/// are accepted and dropped).  keel instantiates it for int, long, double,
/// SYS_StringBase and const char*; the const char* form is always read-only.
template <class T> class SCC_TypedProperty : public SCC_StdProperty {
public:
    /// A never-referenced count, no convertor, no rule.
    SCC_TypedProperty() {}
    /// A fresh count; shares the convertor and copies the rule.
    SCC_TypedProperty(const SCC_TypedProperty& other) = default;
    /// Copies the count word as it stands, shares the convertor, copies the rule.
    SCC_TypedProperty& operator=(const SCC_TypedProperty& other) = default;
    /// Releases the convertor, as the base does.
    ~SCC_TypedProperty() override {}

    using SCC_StdProperty::GetValue;
    using SCC_StdProperty::SetValue;

    /// The accessor's value as a variant, through the convertor (stored to
    /// displayed) when there is one: 1; 0 when the accessor has none.  A
    /// const char* value is copied into the variant at once.
    int GetValue(int handle, SCC_Variant& value) override {
        T typed{};
        if (!GetTypedValue(handle, typed)) return 0;
        SCC_Variant v(typed);
        if (m_Convertor) v = m_Convertor->Convert(v, 0);
        value = v;
        return 1;
    }

    /// Read-only properties return 1 and change nothing (text-pointer
    /// properties always are).  With checkOnly the value is validated (a
    /// failed range leaves its message in `value`) and the result of
    /// SCC_Variant::Validate returned; nothing is stored.  Otherwise it goes
    /// through the convertor (displayed to stored), is converted to T (which
    /// may throw SYS_Exception, see SCC_Variant) and stored with
    /// SetTypedValue, whose result is returned.  The value is not validated
    /// on this path: check first.
    int SetValue(int handle, SCC_Variant& value, int checkOnly) override {
        if constexpr (std::is_same<T, const char*>::value) {
            (void)handle;
            (void)value;
            (void)checkOnly;
            return 1;
        } else {
            if (!HasSetMethod()) return 1;
            if (checkOnly) return value.Validate(GetValidation(), m_Convertor.Get());
            SCC_Variant v = m_Convertor ? m_Convertor->Convert(value, 1) : value;
            T typed = static_cast<T>(v);
            return SetTypedValue(handle, typed);
        }
    }

    /// The host's reader: fills `value` for `handle` and returns non-zero, or
    /// returns 0 when the handle has no value.  The base has none.  A const
    /// char* it returns need only stay valid until the call returns.
    virtual int GetTypedValue(int handle, T& value) {
        (void)handle;
        (void)value;
        return 0;
    }
    /// The host's writer: stores `value` for `handle` and returns non-zero on
    /// success, 0 on failure.  The base stores nothing (0).  Only called when
    /// HasSetMethod() is non-zero.
    virtual int SetTypedValue(int handle, T& value) {
        (void)handle;
        (void)value;
        return 0;
    }
};

extern template class KEEL_API SCC_TypedProperty<int>;
extern template class KEEL_API SCC_TypedProperty<long>;
extern template class KEEL_API SCC_TypedProperty<double>;
extern template class KEEL_API SCC_TypedProperty<SYS_StringBase>;
extern template class KEEL_API SCC_TypedProperty<const char*>;

#endif // SCC_PROPERTY_H
