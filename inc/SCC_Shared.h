/// @file
/// Intrusive reference counting: SCC_SharedBuffer and SCC_SharedPointer<T>.
///
/// SCC_SharedBuffer is a count word that also tells heap objects from the rest.
/// Its own operator new records the address it hands out; the constructor stores
/// that address, negated, in the count.  When the first reference is taken, an
/// object whose count names its own address was made by that operator new and
/// may be deleted when its last reference goes; any other never-referenced
/// object (static, automatic, a member, or made by another allocator) starts at
/// 2, so releasing every reference never brings it to 0.
///
/// To have keel free an object: create it with a plain `new` of a class derived
/// from SCC_SharedBuffer (the class must not bring an operator new of its own)
/// and hand it to a holder (an SCC_SharedPointer, or a keel call that takes a
/// counted pointer); it is deleted when the last holder lets go.  Do not
/// delete it yourself once a holder has it.
///
/// To keep an object out of keel's hands: make it static, automatic or a
/// member, or allocate it some other way.  Holders then never delete it, so it
/// must outlive every reference to it.  A heap object stays alive as long as
/// you hold an SCC_SharedPointer of your own to it.
///
/// The heap test relies on nothing else being allocated through
/// SCC_SharedBuffer::operator new between an object's allocation and its
/// construction: in `new A(new B)`, with both shared, A is allocated before B,
/// so A is taken for a non-heap object and is never freed.  Create B first.
/// The recorded address is kept per thread, so objects built on different
/// threads do not disturb each other's test.
///
/// Costs: one pointer-wide word per object; taking and releasing a reference
/// are a few instructions and never allocate.
#ifndef SCC_SHARED_H
#define SCC_SHARED_H

#include "keel_config.h"

#include <cstddef>
#include <type_traits>

/// A reference count that knows whether its object may be deleted.
///
/// Derive reference-counted classes from it and hold them through
/// SCC_SharedPointer, which calls Ref and Deref; hosts rarely call those
/// themselves.  Not thread-safe: a counted object is used from one thread.
class KEEL_API SCC_SharedBuffer {
public:
    /// Allocates with the global allocator and records the address in
    /// s_LastAllocated.  Returns null when memory is short, so a new-expression
    /// on a derived class yields null instead of throwing: test the result.
    static void* operator new(std::size_t size) noexcept;
    /// Frees memory from operator new with the global allocator.
    static void operator delete(void* p) noexcept;

    ///@{
    /// Both start the count in the never-referenced state: the negated address
    /// of the last allocation on this thread.  The copy ignores its source, so
    /// a copy is a fresh, unreferenced object (a heap object when it was made
    /// with `new`).
    SCC_SharedBuffer();
    SCC_SharedBuffer(const SCC_SharedBuffer& other);
    ///@}
    /// Copies the source's count word as it is, unlike the copy constructor.
    /// This is deliberate: a derived assignment copies the whole object, count
    /// included.  Assigning into an object that holders reference therefore
    /// changes its count; assign only into objects nobody holds, or restore
    /// the count afterwards.
    SCC_SharedBuffer& operator=(const SCC_SharedBuffer& other);

    /// Takes a reference and returns the new count.
    /// @param self the address of the complete object (what
    ///   `dynamic_cast<void*>` gives for a polymorphic class); with any other
    ///   address a heap object is taken for a non-heap one and never freed.
    /// @return 1 for the first reference to a heap object, 2 for the first
    ///   reference to any other object, else the count plus one.
    long Ref(void* self);
    /// Drops a reference and returns the new count.  It deletes nothing: the
    /// holder deletes the object when the result is 0.
    long Deref();
    /// The number of references, 0 while never referenced.
    long GetRefCount() const { return m_Count < 0 ? 0 : m_Count; }
    /// 1 when more than one reference is held (an object that is not on the
    /// heap counts one extra), else 0.
    int IsShared() const { return m_Count > 1 ? 1 : 0; }

    /// Negative: never referenced, holding the negated address recorded by the
    /// last allocation when the object was built.  Otherwise the count.
    long m_Count;

    /// The address most recently returned by operator new on this thread.
    /// Before the first allocation it names a private byte that no object can
    /// occupy, so objects built then still count as not made on the heap.
    static thread_local void* s_LastAllocated;
};

/// Holds one counted reference to a T derived from SCC_SharedBuffer (or null).
///
/// Constructing from an object or copying takes a reference; destruction
/// releases it and deletes the object when that was the last reference to a
/// heap object (see SCC_SharedBuffer).  The new reference is taken before the
/// old one is released, so assigning a pointer its own object is harmless.
/// @tparam T a class derived from SCC_SharedBuffer.
template <class T> class SCC_SharedPointer {
public:
    /// A null pointer.
    SCC_SharedPointer() : m_Pointer(nullptr) {}
    /// Holds `p` (null allowed) and takes a reference on it.  A heap object
    /// passed here is owned by its holders from then on.
    SCC_SharedPointer(T* p) : m_Pointer(p) { Take(p); }
    /// Holds the same object as `other`, with a reference of its own.
    SCC_SharedPointer(const SCC_SharedPointer& other) : m_Pointer(other.m_Pointer) {
        Take(m_Pointer);
    }
    /// Releases the reference (see Release).
    ~SCC_SharedPointer() { Release(m_Pointer); }

    ///@{
    /// Takes a reference on the new object (null allowed), then releases the
    /// old one, which may delete it.
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
    ///@}

    ///@{
    /// The object held, or null; the pointer keeps its reference.  Two
    /// pointers compare equal when they hold the same object.
    T* Get() const { return m_Pointer; }
    operator T*() const { return m_Pointer; }
    T& operator*() const { return *m_Pointer; }
    T* operator->() const { return m_Pointer; }
    ///@}

    /// The address of the complete object that `p` is part of.
    static void* Self(T* p) {
        if constexpr (std::is_polymorphic<T>::value)
            return dynamic_cast<void*>(p);
        else
            return static_cast<void*>(p);
    }

    /// Takes a reference on `p` (null allowed).  Pair it with Release.
    static void Take(T* p) {
        if (p) p->Ref(Self(p));
    }

    /// Drops a reference on `p` (null allowed) and destroys the object when
    /// that was the last one.  A polymorphic class without a virtual
    /// destructor is destroyed as T and its memory handed back directly.
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
