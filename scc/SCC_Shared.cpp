// SCC_Shared.cpp - the count word and allocator of SCC_SharedBuffer.
#include "SCC_Shared.h"

#include <cstdint>
#include <new>

namespace {

// What s_LastAllocated names before anything was allocated on a thread: an
// address that no shared object can have, and that negates to a value below 0.
char s_NoAllocation;

// The count word for a never-referenced object recorded at `address`.  The
// negation is done on the unsigned value so that it is defined for every
// address.
long NegatedAddress(const void* address) {
    return static_cast<long>(0 - reinterpret_cast<std::uintptr_t>(address));
}

} // namespace

thread_local void* SCC_SharedBuffer::s_LastAllocated = &s_NoAllocation;

void* SCC_SharedBuffer::operator new(std::size_t size) noexcept {
    void* p = ::operator new(size, std::nothrow);
    if (p) s_LastAllocated = p;
    return p;
}

void SCC_SharedBuffer::operator delete(void* p) noexcept { ::operator delete(p); }

SCC_SharedBuffer::SCC_SharedBuffer() : m_Count(NegatedAddress(s_LastAllocated)) {}

SCC_SharedBuffer::SCC_SharedBuffer(const SCC_SharedBuffer&)
    : m_Count(NegatedAddress(s_LastAllocated)) {}

SCC_SharedBuffer& SCC_SharedBuffer::operator=(const SCC_SharedBuffer& other) {
    m_Count = other.m_Count;
    return *this;
}

long SCC_SharedBuffer::Ref(void* self) {
    if (m_Count == NegatedAddress(self))
        m_Count = 1;
    else if (m_Count >= 0)
        ++m_Count;
    else
        m_Count = 2;
    return m_Count;
}

long SCC_SharedBuffer::Deref() { return --m_Count; }
