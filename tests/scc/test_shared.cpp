// Tests of SCC_SharedBuffer and SCC_SharedPointer: the heap test behind the
// count, deletion of heap objects only, and safe reassignment.
#include "SCC_Shared.h"

#include <gtest/gtest.h>

// These tests hand automatic objects to shared pointers on purpose: the count
// keeps them from ever being freed, which GCC's static check cannot see.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wfree-nonheap-object"
#endif

namespace {

struct Counted : SCC_SharedBuffer {
    static int destroyed;
    ~Counted() { ++destroyed; }
};
int Counted::destroyed = 0;

// Polymorphic without a virtual destructor, like the sort objects.
struct Comparer : SCC_SharedBuffer {
    virtual int Compare() { return 0; }
    ~Comparer() { ++Counted::destroyed; }
};

struct Holder : SCC_SharedBuffer {
    Counted member;
};

TEST(SharedBuffer, OnlyObjectsOfItsOwnAllocationStartAtOne) {
    Counted* heap = new Counted;
    EXPECT_EQ(SCC_SharedBuffer::s_LastAllocated, static_cast<void*>(heap));
    EXPECT_EQ(heap->GetRefCount(), 0);
    EXPECT_EQ(heap->Ref(heap), 1);
    EXPECT_EQ(heap->Ref(heap), 2);
    EXPECT_EQ(heap->IsShared(), 1);
    EXPECT_EQ(heap->Deref(), 1);

    Counted automatic, copy(*heap), assigned;
    EXPECT_EQ(automatic.Ref(&automatic), 2);
    EXPECT_EQ(copy.GetRefCount(), 0); // a copy starts afresh...
    assigned = *heap;                 // ...while assignment copies the count word
    EXPECT_EQ(assigned.m_Count, 1);

    Holder* outer = new Holder;
    EXPECT_EQ(outer->member.Ref(&outer->member), 2); // a member is not the allocation
    EXPECT_EQ(outer->Ref(outer), 1);
    delete outer;
    delete heap;
}

TEST(SharedPointer, DeletesHeapObjectsAtTheLastReferenceOnly) {
    Counted::destroyed = 0;
    Counted automatic;
    {
        SCC_SharedPointer<Counted> p(new Counted), q(p), s(&automatic), none;
        EXPECT_EQ(p->GetRefCount(), 2);
        EXPECT_EQ(none.Get(), nullptr);
        SCC_SharedPointer<Counted>& same = p;
        p = same; // the new reference is taken before the old one goes
        q = nullptr;
        EXPECT_EQ(Counted::destroyed, 0);
        EXPECT_EQ(p->GetRefCount(), 1);
        p = new Counted;
        EXPECT_EQ(Counted::destroyed, 1);
        SCC_SharedPointer<Comparer> c(new Comparer);
    }
    EXPECT_EQ(Counted::destroyed, 3); // not the automatic object
    EXPECT_EQ(automatic.GetRefCount(), 1);
}

} // namespace
