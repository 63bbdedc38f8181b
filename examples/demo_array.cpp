// demo_array.cpp - keel-demo step: an array growing, shared and sorted.
#include "demo_steps.h"
#include "SCC_SortableArray.h"

#include <cstdio>

namespace {

// Opens the storage block to show what the array reserves.
struct ShownArray : SCC_SortableArray<int> {
    void Show(const char* what) {
        if (!m_Buffer) {
            std::printf("%-34s: no storage\n", what);
            return;
        }
        std::printf("%-34s: bounds %d..%d, storage %d..%d, %ld reference(s)\n", what,
                    GetLowerBound(), GetUpperBound() - 1, m_Buffer->m_AllocLower,
                    m_Buffer->m_AllocUpper - 1, m_Buffer->GetRefCount());
    }
    void Print(const char* what) {
        std::printf("%-34s:", what);
        for (int i = GetLowerBound(); i < GetUpperBound(); ++i) std::printf(" %d", FastGetAt(i));
        std::printf("\n");
    }
    const void* Block() const { return m_Buffer; }
};

int moves = 0;
int OnMove(int code, SCC_ArrayParam* p) {
    ++moves;
    std::printf("  event %d: index %d count %d, forward %d->%d x%d, backward %d->%d x%d\n", code,
                p->m_Index, p->m_Count, p->m_ForwardFrom, p->m_ForwardTo, p->m_ForwardCount,
                p->m_BackwardFrom, p->m_BackwardTo, p->m_BackwardCount);
    return 0;
}

} // namespace

KEEL_DEMO_STEP(30, "Arrays") {
    ShownArray drills;
    SCC_EventHook<SCC_ArrayParam> hook;
    hook.SetCallback(OnMove);
    drills.RegisterIterator(hook);

    const int sizes[] = {35, 8, 20, 12, 8, 50, 16, 24, 10};
    drills.Show("empty");
    for (int s : sizes) drills.Append(s);
    drills.Show("after 9 appends");
    drills[-2] = 3; // writing below the lower bound extends it
    drills.Show("after writing index -2");

    ShownArray copy;
    copy = drills;
    copy.Show("copy (shares the block)");
    copy[0] = 99;
    std::printf("%-34s: %s\n", "after writing the copy",
                copy.Block() == drills.Block() ? "still shared" : "copy has its own block");
    drills.Show("original");
    copy.Show("copy");

    drills.Delete(-2, 2);
    drills.Print("drill sizes");
    drills.Sort(drills.GetLowerBound(), drills.GetCount(), 1);
    drills.Print("sorted");
    SCC_Array<int>::Iterator it;
    it.SetArray(&drills, 4);
    std::printf("%-34s: %d at index %d\n", "iterator", *it, it.GetPosition());
    int size = 18;
    long at = drills.InsertSorted(size);
    std::printf("InsertSorted(18) went to index %ld; iterator now at %d, still on %d\n", at,
                it.GetPosition(), *it);
    long first = 0, last = 0;
    int eight = 8;
    drills.FindItemPosition(eight, first, last);
    std::printf("%-34s: %ld..%ld\n", "the 8s", first, last - 1);
    std::printf("%d events announced\n", moves);
}
