// SCC_Shared.h - intrusive reference counting: SCC_SharedBuffer and
// SCC_SharedPointer<T>.
//
// SCC_SharedBuffer is a count word that also tells heap objects from the rest.
// Its own operator new records the address it hands out; the constructor stores
// that address, negated, in the count.  When the first reference is taken, an
// object whose count names its own address was made by that operator new and
// may be deleted when its last reference goes; any other never-referenced
// object (static, automatic, a member, or made by another allocator) starts at
// 2, so releasing every reference never brings it to 0.
//
// The heap test relies on nothing else being allocated through
// SCC_SharedBuffer::operator new between an object's allocation and its
// construction.  The recorded address is kept per thread, so objects built on
// different threads do not disturb each other's test.
//
// Costs: one pointer-wide word per object; taking and releasing a reference
// are a few instructions and never allocate.
#ifndef SCC_SHARED_H
#define SCC_SHARED_H

#include "keel_config.h"

#include <cstddef>
#include <type_traits>

class KEEL_API SCC_SharedBuffer {
public:
    // Allocates with the global allocator and records the address in
    // s_LastAllocated.  Returns null when memory is short, so a new-expression
    // on a derived class yields null instead of throwing.
    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* p) noexcept;

    // Both start the count in the never-referenced state: the negated address
    // of the last allocation.  The copy ignores its source.
    SCC_SharedBuffer();
    SCC_SharedBuffer(const SCC_SharedBuffer& other);
    // Copies the source's count word as it is, unlike the copy constructor.
    SCC_SharedBuffer& operator=(const SCC_SharedBuffer& other);

    // Takes a reference; `self` is the address of the complete object.
    // Returns the new count.
    long Ref(void* self);
    // Drops a reference and returns the new count; at 0 the holder deletes.
    long Deref();
    // The number of references, 0 while never referenced.
    long GetRefCount() const { return m_Count < 0 ? 0 : m_Count; }
    int IsShared() const { return m_Count > 1 ? 1 : 0; }

    // Negative: never referenced, holding the negated address recorded by the
    // last allocation when the object was built.  Otherwise the count.
    long m_Count;

    // The address most recently returned by operator new on this thread.
    // Before the first allocation it names a private byte that no object can
    // occupy, so objects built then still count as not made on the heap.
    static thread_local void* s_LastAllocated;
};

// Holds one counted reference to a T derived from SCC_SharedBuffer (or null).
// The new reference is taken before the old one is released, so assigning a
// pointer its own object is harmless.
template <class T> class SCC_SharedPointer {
public:
    SCC_SharedPointer() : m_Pointer(nullptr) {}
    SCC_SharedPointer(T* p) : m_Pointer(p) { Take(p); }
    SCC_SharedPointer(const SCC_SharedPointer& other) : m_Pointer(other.m_Pointer) {
        Take(m_Pointer);
    }
    ~SCC_SharedPointer() { Release(m_Pointer); }

    SCC_SharedPointer& operator=(const SCC_SharedPointer& other) {
        return operator=(other.m_Pointer);
    }
    SCC_SharedPointer& operator=(T* p) {
        Take(p);
        T* old = m_Pointer;
        m_Pointer = p;
        Release(old);
        return *this;
    }

    // Two pointers compare equal when they hold the same object.
    T* Get() const { return m_Pointer; }
    operator T*() const { return m_Pointer; }
    T& operator*() const { return *m_Pointer; }
    T* operator->() const { return m_Pointer; }

    // The address of the complete object that `p` is part of.
    static void* Self(T* p) {
        if constexpr (std::is_polymorphic<T>::value)
            return dynamic_cast<void*>(p);
        else
            return static_cast<void*>(p);
    }

    // Takes a reference on `p` (null allowed).
    static void Take(T* p) {
        if (p) p->Ref(Self(p));
    }

    // Drops a reference on `p` (null allowed) and destroys the object when
    // that was the last one.  A polymorphic class without a virtual
    // destructor is destroyed as T and its memory handed back directly.
    static void Release(T* p) {
        if (!p || p->Deref() != 0) return;
        if constexpr (std::is_polymorphic<T>::value && !std::has_virtual_destructor<T>::value) {
            void* self = Self(p);
            p->T::~T();
            SCC_SharedBuffer::operator delete(self);
        } else {
            delete p;
        }
    }

private:
    T* m_Pointer;
};

#endif // SCC_SHARED_H
