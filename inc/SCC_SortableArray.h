// SCC_SortableArray.h - arrays that sort and search themselves through a
// pluggable, reference-counted comparison.
//
// SCC_Sort<T> compares two elements, through a free function when one is set
// and through SCC_DefaultCompare<T> otherwise.  SCC_SortableArray<T> adds
// sorting, a binary search that widens to the whole run of equal elements,
// sorted insertion (after the equal run) and identity search.
//
// The direction of the last Sort is kept in the storage block and multiplies
// every comparison, so after a descending sort the searches work on the
// reversed order.  A new block (after growth or copy on write) starts
// ascending again.
//
// Costs: Sort is an in-place quicksort, O(n log n) comparisons on average;
// FindItemPosition is O(log n) plus the length of the equal run; InsertSorted
// adds the O(n) move of Insert.  Every element access goes through the
// writable accessor, so searching a shared array gives it a private block.
#ifndef SCC_SORTABLEARRAY_H
#define SCC_SORTABLEARRAY_H

#include "SCC_Array.h"

#include <climits>
#include <type_traits>
#include <utility>

// The order of elements that have no comparison function: negative, 0 or
// positive.  Arithmetic and enumeration types compare by value, giving -1, 0
// or 1.  Element types without a natural order (handle objects, message keys)
// specialize this template next to their own declaration.
template <class T> struct SCC_DefaultCompare {
    static int Compare(const T& a, const T& b) {
        static_assert(std::is_arithmetic<T>::value || std::is_enum<T>::value,
                      "specialize SCC_DefaultCompare for this element type");
        if (a == b) return 0;
        return a > b ? 1 : -1;
    }
};

// A comparison held by reference count.  It has no virtual destructor: the
// last reference destroys it as SCC_Sort<T> and frees its memory.
template <class T> class SCC_Sort : public SCC_SharedBuffer {
public:
    typedef int (*Function)(const T& a, const T& b);

    explicit SCC_Sort(Function function = nullptr) : m_Function(function) {}

    virtual int Compare(const T& a, const T& b) {
        return m_Function ? m_Function(a, b) : SCC_DefaultCompare<T>::Compare(a, b);
    }

    Function m_Function;
};

template <class T> class SCC_SortableArray : public SCC_Array<T> {
    using Base = SCC_Array<T>;

public:
    SCC_SortableArray() { SetSortFunction(nullptr); }
    explicit SCC_SortableArray(long n) : Base(n) { SetSortFunction(nullptr); }
    SCC_SortableArray(int lo, int hi) : Base(lo, hi) { SetSortFunction(nullptr); }
    // Shares `other`'s block and its comparison.
    SCC_SortableArray(SCC_SortableArray& other) : Base(other), m_Sort(other.m_Sort) {}

    SCC_SortableArray& operator=(SCC_SortableArray& other) {
        Base::operator=(other);
        m_Sort = other.m_Sort;
        return *this;
    }

    // Compares through `function`, or the default order when it is null.
    void SetSortFunction(typename SCC_Sort<T>::Function function) {
        SCC_Sort<T>* sort = new SCC_Sort<T>;
        if (sort) sort->m_Function = function;
        m_Sort = sort;
    }
    void SetSort(SCC_Sort<T>* sort) { m_Sort = sort; }
    SCC_SharedPointer<SCC_Sort<T>> GetSort() { return m_Sort; }

    // Element i against element j, in the recorded direction.  Both indices
    // go through the writable accessor (growing the array if need be).
    int Comp(long i, long j) override {
        this->WritableSlot(static_cast<int>(j));
        T* a = this->WritableSlot(static_cast<int>(i));
        T* b = this->Slot(static_cast<int>(j)); // after i's access, which may move the block
        if (!a || !b) return 0;
        return Directed(Compare(*a, *b));
    }

    void Swap(long i, long j) override {
        this->WritableSlot(static_cast<int>(i));
        T* b = this->WritableSlot(static_cast<int>(j));
        T* a = this->Slot(static_cast<int>(i)); // after j's access, which may move the block
        if (a && b && a != b) std::swap(*a, *b);
    }

    // Records `direction` in the block and sorts start..start+count-1.
    void Sort(long start, long count, int direction) override {
        _SCC_Array::Sort(start, count, direction);
    }

    // Whether element i is in order with its neighbours.
    int ItemInValidPlace(long i) {
        const long lo = this->GetLowerBound();
        const long hi = static_cast<long>(this->GetUpperBound()) - 1;
        if (lo == hi) return 1;
        if (i == lo) return Comp(i, lo + 1) <= 0 ? 1 : 0;
        if (i == hi) return Comp(i, hi - 1) >= 0 ? 1 : 0;
        if (Comp(i, i - 1) < 0) return 0;
        return Comp(i, i + 1) <= 0 ? 1 : 0;
    }

    // The run of elements equal to `item`: `first` is its first index (or
    // where `item` would go), `last` one past its end (`first` when empty).
    void FindItemPosition(const T& item, long& first, long& last) {
        if (this->GetCount() <= 0) {
            first = last = 0;
            return;
        }
        first = this->GetLowerBound();
        last = static_cast<long>(this->GetUpperBound()) - 1;
        long long cf = CompItem(first, item);
        long long cl = CompItem(last, item);
        if (cf >= 0) {
            last = first;
        } else if (cl < 0) {
            first = last = last + 1;
        } else if (cl == 0) {
            first = last;
            last = last + 1;
        } else {
            // Bisect while element `first` is below and element `last` above.
            while (last - first > 0) {
                long mid = (first + last) / 2;
                const long long cm = CompItem(mid, item);
                if (cm * cf <= 0) {
                    cl = cm;
                    if (last == mid && cm != 0) mid = mid - 1;
                    last = mid;
                }
                if (cm * cl <= 0) {
                    cf = cm;
                    if (first == mid && cm != 0) mid = mid + 1;
                    first = mid;
                }
            }
        }
        while (first > this->GetLowerBound() && CompItem(first - 1, item) == 0) --first;
        while (last < this->GetUpperBound() && CompItem(last, item) == 0) ++last;
    }

    // Inserts `item` after every element equal to it; returns its index.
    long InsertSorted(const T& item) {
        T value(item); // `item` may live in the block that Insert moves
        long first = 0;
        long last = 0;
        FindItemPosition(value, first, last);
        this->Insert(static_cast<int>(last), 1);
        (*this)[static_cast<int>(last)] = value;
        return last;
    }

    // Looks for an element identical to `item` (T's ==) in its equal run.
    // Returns 1 with its index in `position`; else 0 with `position` at the
    // end of the run.
    int Find(const T& item, long& position) {
        long first = 0;
        long last = 0;
        FindItemPosition(item, first, last);
        for (position = first; position < last; ++position)
            if ((*this)[static_cast<int>(position)] == item) return 1;
        return 0;
    }

private:
    // The comparison result times the block's recorded direction, kept
    // within int.
    int Directed(long long c) const {
        const long long order = this->m_Buffer ? this->m_Buffer->m_SortOrder : 1;
        const long long r = c * order;
        return r > INT_MAX ? INT_MAX : r < INT_MIN ? INT_MIN : static_cast<int>(r);
    }

    // A missing comparison (after SetSort(nullptr)) finds everything equal.
    int Compare(const T& a, const T& b) { return m_Sort ? m_Sort->Compare(a, b) : 0; }

    int CompItem(long i, const T& item) {
        T* a = this->WritableSlot(static_cast<int>(i));
        return a ? Directed(Compare(*a, item)) : 0;
    }

    virtual int CompItems(const T& a, const T& b) { return Directed(Compare(a, b)); }

public:
    // The comparison in force (one reference held).
    SCC_SharedPointer<SCC_Sort<T>> m_Sort;
};

#endif // SCC_SORTABLEARRAY_H
