// SCC_VirtualSlots.h - whether an object's class overrides given virtual
// functions (internal: included by keel's public headers, not meant for
// hosts).
//
// A class template whose virtual operations nobody has overridden may run
// them inline over its own data instead of calling through its virtual
// table, with the same steps.  "Nobody has overridden" means: for each of
// the operations in question, a virtual call on the object would reach the
// very function it reaches on an object of exactly the base class.  A
// derived class that overrides none of them qualifies; one that overrides
// any of them does not, however it behaves.
//
// How it is read, on the Itanium C++ ABI of g++ and clang on x86:
// - an object of a class with virtual functions starts with a pointer to its
//   virtual table (the classes asked about here get theirs through a chain
//   of single bases, so a base part starts with one too);
// - a pointer to a virtual member function holds 1 + the byte offset of its
//   slot in the table in its first word and the this-adjustment in its
//   second (0 for a function of that chain);
// - the table of exactly the base class is read once, from an object built
//   and destroyed for the purpose.
// Equal entries mean the same function.  Different entries mean an
// override, or the same function compiled into two modules (a host's and
// keel's copies of a template) with the object made in the other one: the
// answer is then "overridden", which only costs the inline path, never a
// wrong result.  On other platforms only an object of exactly the base class
// qualifies.  The same reading tells an object of exactly a class by its
// table (SCC_ExactVirtualTable).
#ifndef SCC_VIRTUALSLOTS_H
#define SCC_VIRTUALSLOTS_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <typeinfo>

#if defined(__GXX_ABI_VERSION) && (defined(__x86_64__) || defined(__i386__))
#define SCC_VIRTUAL_SLOTS_READABLE 1
#endif

#if defined(SCC_VIRTUAL_SLOTS_READABLE)

// The virtual table an object starts with.
template <class C> const void* const* SCC_VirtualTableOf(const C& object) {
    static_assert(std::is_polymorphic<C>::value, "a class with a virtual table");
    const void* const* table;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof table);
    return table;
}

// The virtual table of objects of exactly Exact (default-constructible),
// read once from one built and destroyed for the purpose.
template <class Exact> const void* const* SCC_ExactVirtualTable() {
    static const void* const* const table = [] {
        const Exact reference;
        return SCC_VirtualTableOf(reference);
    }();
    return table;
}

// The entry of `table` in the slot of `member`; null when `member` is not a
// virtual function reached without adjusting `this`.
template <class M> const void* SCC_VirtualEntry(const void* const* table, M member) {
    struct Raw {
        std::uintptr_t ptr;
        std::ptrdiff_t adj;
    } raw;
    static_assert(sizeof(M) == sizeof(Raw), "an Itanium C++ ABI member function pointer");
    std::memcpy(&raw, &member, sizeof raw);
    if ((raw.ptr & 1) == 0 || raw.adj != 0) return nullptr;
    return table[(raw.ptr - 1) / sizeof(void*)];
}

#endif

// True when a virtual call of each of `members` on `object` reaches the
// function it reaches on an object of exactly Exact (see the file notes).
template <class Exact, class... M> bool SCC_SameOverriders(const Exact& object, M... members) {
#if defined(SCC_VIRTUAL_SLOTS_READABLE)
    const void* const* mine = SCC_VirtualTableOf(object);
    const void* const* exact = SCC_ExactVirtualTable<Exact>();
    const auto same = [mine, exact](auto member) {
        const void* entry = SCC_VirtualEntry(mine, member);
        return entry && entry == SCC_VirtualEntry(exact, member);
    };
    return mine == exact || (same(members) && ...);
#else
    ((void)members, ...);
    return typeid(object) == typeid(Exact);
#endif
}

#endif // SCC_VIRTUALSLOTS_H
