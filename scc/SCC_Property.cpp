// SCC_Property.cpp - properties read and written across a collection's focus.
#include "SCC_Property.h"

#include "SCC_StdCollection.h"

SCC_StdProperty::~SCC_StdProperty() {}

int SCC_StdProperty::GetValue(SCC_StdCollection* collection, SCC_Variant& value) {
    if (!collection) return GetValue(0, value);
    if (!collection->HasFocus()) return 0;
    for (long i = 0;; ++i) {
        const int handle = collection->GetFocus(i);
        if (!handle) return 1;
        SCC_Variant read;
        if (!GetValue(handle, read)) return 0;
        if (value.IsEmpty()) {
            value = read;
        } else if (value != read) {
            value.Clear();
            return 1;
        }
    }
}

int SCC_StdProperty::GetValue(int handle, SCC_Variant& value) {
    (void)handle;
    (void)value;
    return 0;
}

int SCC_StdProperty::SetValue(SCC_StdCollection* collection, SCC_Variant& value, int checkOnly) {
    if (!collection) return SetValue(0, value, checkOnly);
    // Unlike reading, writing does not ask HasFocus first.
    for (long i = 0;; ++i) {
        const int handle = collection->GetFocus(i);
        if (!handle) return 1;
        if (!SetValue(handle, value, checkOnly)) return 0;
    }
}

int SCC_StdProperty::SetValue(int handle, SCC_Variant& value, int checkOnly) {
    (void)handle;
    (void)value;
    (void)checkOnly;
    return 0;
}

int SCC_StdProperty::HasSetMethod() { return 0; }

SCC_StdProperty* SCC_StdProperty::GetDataSource() { return this; }

const char* SCC_StdProperty::GetValidation() { return m_Validation.GetString(); }

void SCC_StdProperty::SetValidation(const char* rule) { m_Validation = rule; }

SCC_SharedPointer<SCC_Convertor> SCC_StdProperty::GetConvertor() { return m_Convertor; }

SCC_StdProperty* SCC_StdProperty::SetConvertor(SCC_SharedPointer<SCC_Convertor> convertor) {
    m_Convertor = convertor;
    return this;
}

template class SCC_TypedProperty<int>;
template class SCC_TypedProperty<long>;
template class SCC_TypedProperty<double>;
template class SCC_TypedProperty<SYS_StringBase>;
template class SCC_TypedProperty<const char*>;
