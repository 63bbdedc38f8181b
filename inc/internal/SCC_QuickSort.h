// SCC_QuickSort.h - the sorting engine of arrays (internal: included by
// keel's public headers, not meant for hosts).
//
// An iterative quicksort over indices lo..hi that takes the middle element as
// its pivot and hands ranges of at most 8 elements to a short sort.  It only
// compares and swaps through `ops`, so the array core runs it over its
// virtual Comp, Swap and ShortSort, and a typed array whose operations nobody
// overrides runs the same steps, in the same order, inline over its storage.
//
// Ops provides: int Comp(long i, long j); void Swap(long i, long j);
// void ShortSort(long lo, long hi).
#ifndef SCC_QUICKSORT_H
#define SCC_QUICKSORT_H

// Pending ranges of one quicksort.  Each pushed range is the larger part of
// its partition, so 30 entries cover every range an int-indexed array has;
// should they run out, the range is sorted by a nested call instead.
constexpr int SCC_SORT_STACK = 30;

template <class Ops> void SCC_QuickSort(Ops& ops, long lo, long hi, bool ascending) {
    long pendingLo[SCC_SORT_STACK];
    long pendingHi[SCC_SORT_STACK];
    int pending = 0;
    for (;;) {
        const long size = hi - lo + 1;
        bool more = false;
        if (size <= 8) {
            ops.ShortSort(lo, hi);
        } else {
            // The middle element becomes the pivot at lo.
            ops.Swap(lo + size / 2, lo);
            long up = lo;
            long down = hi + 1;
            for (;;) {
                do {
                    ++up;
                } while (up <= hi && (ascending ? ops.Comp(up, lo) <= 0 : ops.Comp(up, lo) >= 0));
                do {
                    --down;
                } while (down > lo &&
                         (ascending ? ops.Comp(down, lo) >= 0 : ops.Comp(down, lo) <= 0));
                if (down < up) break;
                ops.Swap(up, down);
            }
            ops.Swap(lo, down);

            // Keep the larger part for later and go on with the smaller one.
            long nextLo = 0, nextHi = -1;
            if (down - 1 - lo >= hi - up) {
                if (lo + 1 < down) nextLo = lo, nextHi = down - 1;
                if (up < hi) {
                    lo = up;
                    more = true;
                }
            } else {
                if (up < hi) nextLo = up, nextHi = hi;
                if (lo + 1 < down) {
                    hi = down - 1;
                    more = true;
                }
            }
            if (nextLo <= nextHi) {
                if (pending < SCC_SORT_STACK) {
                    pendingLo[pending] = nextLo;
                    pendingHi[pending] = nextHi;
                    ++pending;
                } else {
                    SCC_QuickSort(ops, nextLo, nextHi, ascending);
                }
            }
        }
        if (more) continue;
        if (pending == 0) return;
        --pending;
        lo = pendingLo[pending];
        hi = pendingHi[pending];
    }
}

// Selection sort of lo..hi, ascending by Comp whatever the direction: the
// greatest remaining element goes to the end each round.
template <class Ops> void SCC_SelectionSort(Ops& ops, long lo, long hi) {
    for (long last = hi; last > lo; --last) {
        long greatest = lo;
        for (long p = lo + 1; p <= last; ++p)
            if (ops.Comp(p, greatest) > 0) greatest = p;
        ops.Swap(greatest, last);
    }
}

#endif // SCC_QUICKSORT_H
