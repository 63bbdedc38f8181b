// Tests of SCC_SharedBuffer and SCC_SharedPointer: the heap test behind the
// count, deletion of heap objects only, and safe reassignment.
#include <keel/SCC_Shared.h>

#include <gtest/gtest.h>

#include <vector>

// Automatic objects go to shared pointers on purpose; the count keeps them.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wfree-nonheap-object"
#endif

namespace {

typedef std::vector<long> Longs;
int destroyed = 0;

struct Counted : SCC_SharedBuffer {
    ~Counted() { ++destroyed; }
};
// Polymorphic without a virtual destructor, like the sort objects.
struct Comparer : SCC_SharedBuffer {
    virtual int Compare() { return 0; }
    ~Comparer() { ++destroyed; }
};
struct Holder : SCC_SharedBuffer {
    Counted member;
};

TEST(SharedBuffer, OnlyObjectsOfItsOwnAllocationStartAtOne) {
    Counted* heap = new Counted;
    EXPECT_EQ((Longs{heap->GetRefCount(), heap->Ref(heap), heap->IsShared(), heap->Ref(heap),
                     heap->IsShared(), heap->Deref()}),
              (Longs{0, 1, 0, 2, 1, 1}));

    // A copy starts afresh, while assignment copies the count word.
    Counted automatic, copy(*heap), assigned;
    assigned = *heap;
    EXPECT_EQ((Longs{automatic.Ref(&automatic), copy.GetRefCount(), assigned.m_Count}),
              (Longs{2, 0, 1}));

    Holder* outer = new Holder; // a member is not the allocation
    EXPECT_EQ((Longs{outer->member.Ref(&outer->member), outer->Ref(outer)}), (Longs{2, 1}));
    delete outer;
    delete heap;
}

TEST(SharedPointer, DeletesHeapObjectsAtTheLastReferenceOnly) {
    destroyed = 0;
    Counted automatic;
    {
        SCC_SharedPointer<Counted> p(new Counted), q(p), s(&automatic), none;
        q = nullptr;
        SCC_SharedPointer<Counted>& same = p;
        p = same; // the new reference is taken before the old one goes
        EXPECT_EQ((Longs{destroyed, p->GetRefCount()}), (Longs{0, 1}));
        p = new Counted;
        EXPECT_EQ(destroyed, 1);
        SCC_SharedPointer<Comparer> c(new Comparer);
    }
    EXPECT_EQ((Longs{destroyed, automatic.GetRefCount()}), (Longs{3, 1})); // not the automatic one
}

} // namespace
