// slot_order.h - reads the virtual-table slot of a member function, so that
// the tests can pin the slot order of the classes hosts derive from.
//
// A host class overrides keel's virtual functions by slot: moving,
// inserting or removing a virtual function (or a virtual destructor) shifts
// the slots after it and breaks every host built against the previous
// library, without a compile error.  Each test_slots.cpp lists, per class,
// every named virtual operation with the slot it must occupy.
//
// Itanium C++ ABI (g++ and clang on 64-bit Unix targets): a pointer to a
// virtual member function holds 1 + the byte offset of its slot in the
// virtual table in its first word and the this-adjustment in its second; a
// pointer to a non-virtual function holds the function's (even) address.
// A virtual destructor takes two consecutive slots (complete and deleting
// destructor) and cannot be named by a member pointer: the tables show it as
// the gap it leaves.
#ifndef KEEL_TESTS_SLOT_ORDER_H
#define KEEL_TESTS_SLOT_ORDER_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace slots {

constexpr std::ptrdiff_t kNotVirtual = -1;
constexpr std::ptrdiff_t kNotPrimary = -2;

// The slot of `member` in the primary virtual table of its class;
// kNotVirtual for a non-virtual function, kNotPrimary for one reached
// through a non-primary base.
template <class F> std::ptrdiff_t Of(F member) {
    static_assert(std::is_member_function_pointer<F>::value, "a pointer to a member function");
    struct Raw {
        std::uintptr_t ptr;
        std::ptrdiff_t adj;
    } raw;
    static_assert(sizeof(F) == sizeof(Raw), "an Itanium C++ ABI member function pointer");
    std::memcpy(&raw, &member, sizeof raw);
    if ((raw.ptr & 1) == 0) return kNotVirtual;
    if (raw.adj != 0) return kNotPrimary;
    return static_cast<std::ptrdiff_t>((raw.ptr - 1) / sizeof(void*));
}

// Picks one overload: As<int(long) const>(&C::F).
template <class Sig, class C> constexpr Sig C::*As(Sig C::*member) { return member; }

struct Row {
    const char* member;
    std::ptrdiff_t slot;
    std::ptrdiff_t expected;
};
using Table = std::vector<Row>;

// Every row of `rows` in the slot it must occupy.
inline void Expect(const char* cls, const Table& rows) {
    for (const Row& r : rows) {
        if (r.slot == r.expected) continue;
        if (r.slot == kNotVirtual)
            ADD_FAILURE() << cls << ": " << r.member << " is not virtual, expected in slot "
                          << r.expected;
        else if (r.slot == kNotPrimary)
            ADD_FAILURE() << cls << ": " << r.member
                          << " is reached through a secondary base, expected in slot "
                          << r.expected;
        else
            ADD_FAILURE() << cls << ": " << r.member << " is in slot " << r.slot
                          << ", expected in slot " << r.expected;
    }
}

} // namespace slots

// A row of a slot table: the member pointer, as written, and its slot.
#define SLOT(member, expected)                                                                     \
    ::slots::Row { #member, ::slots::Of(member), expected }

#endif // KEEL_TESTS_SLOT_ORDER_H
