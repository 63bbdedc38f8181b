/// @file
/// Arrays that sort and search themselves through a pluggable,
/// reference-counted comparison.
///
/// SCC_Sort<T> compares two elements, through a free function when one is set
/// and through SCC_DefaultCompare<T> otherwise.  SCC_SortableArray<T> adds
/// sorting, a binary search that widens to the whole run of equal elements,
/// sorted insertion (after the equal run) and identity search.
///
/// The direction of the last Sort is kept in the storage block and multiplies
/// every comparison, so after a descending sort the searches work on the
/// reversed order.  A new block (after growth or copy on write) starts at
/// direction 1 again.  Sorting an array whose block is shared with a copy
/// records the direction in the shared block, where the copy sees it, and
/// then sorts a private block that starts at 1.
///
/// What a derived class may change: the order, by giving the array a sort
/// object (SetSortFunction, or SetSort with an SCC_Sort<T> subclass that
/// overrides Compare); and the sorting steps, by overriding Comp, Swap, Sort,
/// ShortSort or Granularity of _SCC_Array.  Searches (FindItemPosition,
/// InsertSorted, Find) always compare through the sort object, never through
/// Comp: a class that overrides Comp to change the order must give the array
/// the same order as a sort object, or its searches disagree with its sorts.
///
/// Costs: Sort is an in-place quicksort, O(n log n) comparisons on average;
/// FindItemPosition is O(log n) plus the length of the equal run; InsertSorted
/// adds the O(n) move of Insert.  Sorting and searching give a shared array a
/// private block first, as the writable accessor does.  A sortable array
/// whose Comp, Swap and ShortSort nobody overrides (a subclass that leaves
/// them alone included) sorts and searches its storage directly, calling its
/// comparison function inline: 1 to 2 times std::sort and std::equal_range;
/// a sort object that overrides Compare adds one virtual call per
/// comparison.  A subclass that overrides one of those three steps goes
/// through the virtual Comp and Swap for every step, several times slower.
/// Either way a comparison must not change the array.
#ifndef SCC_SORTABLEARRAY_H
#define SCC_SORTABLEARRAY_H

#include "SCC_Array.h"
#include "internal/SCC_QuickSort.h"
#include "internal/SCC_VirtualSlots.h"

#include <climits>
#include <type_traits>
#include <utility>

/// The order of elements that have no comparison function: negative, 0 or
/// positive.  Arithmetic and enumeration types compare by value, giving -1, 0
/// or 1.  Element types without a natural order (handle objects, message keys)
/// specialize this template next to their own declaration.  A host element
/// type that is neither arithmetic nor an enumeration needs a specialization
/// too, even when its arrays always compare through a function, or it does
/// not compile.
/// @tparam T the element type.
template <class T> struct SCC_DefaultCompare {
    /// -1, 0 or 1 as `a` is less than, equal to or greater than `b`.
    static int Compare(const T& a, const T& b) {
        static_assert(std::is_arithmetic<T>::value || std::is_enum<T>::value,
                      "specialize SCC_DefaultCompare for this element type");
        if (a == b) return 0;
        return a > b ? 1 : -1;
    }
};

/// A comparison held by reference count.  It has no virtual destructor: the
/// last reference destroys it as SCC_Sort<T> and frees its memory.
///
/// Arrays hold it through SCC_SharedPointer, so the rules of SCC_SharedBuffer
/// apply: one made with `new` is deleted by the last array that lets go of
/// it; a static, automatic or member one is never deleted and must outlive
/// the arrays using it.  A subclass may override Compare; its own destructor
/// never runs, so it must not hold anything that needs one.
/// @tparam T the element type.
template <class T> class SCC_Sort : public SCC_SharedBuffer {
public:
    /// A comparison function: negative, 0 or positive as `a` is less than,
    /// equal to or greater than `b`.
    typedef int (*Function)(const T& a, const T& b);

    /// Compares through `function`, or the default order when it is null.
    explicit SCC_Sort(Function function = nullptr) : m_Function(function) {}

    /// Negative, 0 or positive as `a` is less than, equal to or greater than
    /// `b`: m_Function's result when it is set, else SCC_DefaultCompare<T>'s.
    /// Arrays multiply it by their recorded sort direction.
    virtual int Compare(const T& a, const T& b) {
        return m_Function ? m_Function(a, b) : SCC_DefaultCompare<T>::Compare(a, b);
    }

    /// The comparison function, or null for the default order.
    Function m_Function;
};

/// A typed array that sorts itself, searches for runs of equal elements and
/// keeps itself sorted on insertion.
///
/// The order is that of the sort object m_Sort times the direction of the
/// last Sort (recorded in the storage block).  The searches assume the array
/// is sorted in that order; on unsorted contents they return some position.
/// @tparam T the element type.
template <class T> class SCC_SortableArray : public SCC_Array<T> {
    using Base = SCC_Array<T>;

public:
    /// An array without storage, comparing in the default order of T.
    SCC_SortableArray() { SetSortFunction(nullptr); }
    /// Bounds 0 and `n` (elements not cleared), comparing in the default order.
    explicit SCC_SortableArray(long n) : Base(n) { SetSortFunction(nullptr); }
    /// Bounds `lo` and `hi` (elements not cleared), comparing in the default
    /// order.
    SCC_SortableArray(int lo, int hi) : Base(lo, hi) { SetSortFunction(nullptr); }
    /// Shares `other`'s block and its sort object; the event starts empty.
    SCC_SortableArray(SCC_SortableArray& other) : Base(other), m_Sort(other.m_Sort) {}

    /// Shares `other`'s block and its sort object, releasing this array's
    /// own.  Nothing is announced.
    SCC_SortableArray& operator=(SCC_SortableArray& other) {
        Base::operator=(other);
        m_Sort = other.m_Sort;
        return *this;
    }

    /// Compares through `function`, or the default order when it is null:
    /// makes a new sort object (owned by the arrays that hold it) and
    /// releases the previous one.  Does not re-sort the array.
    void SetSortFunction(typename SCC_Sort<T>::Function function) {
        SCC_Sort<T>* sort = new SCC_Sort<T>;
        if (sort) sort->m_Function = function;
        m_Sort = sort;
    }
    /// Compares through `sort`: takes a counted reference on it and releases
    /// the previous one (see SCC_Sort for who frees it).  Arrays may share
    /// one sort object (SetSort(other.GetSort())).  With a null sort every
    /// element compares equal.  Does not re-sort the array.
    void SetSort(SCC_Sort<T>* sort) { m_Sort = sort; }
    /// The sort object in force, as a new counted reference.
    SCC_SharedPointer<SCC_Sort<T>> GetSort() { return m_Sort; }

    /// Element i against element j through the sort object, times the
    /// recorded direction.  Both indices go through the writable accessor
    /// (growing the array to take in an index out of bounds, and making a
    /// shared block private).  Returns 0 when no storage could be had.
    int Comp(long i, long j) override {
        T* x = PrivateSlot(i);
        T* y = PrivateSlot(j);
        if (x && y) return Directed(Compare(*x, *y), this->m_Buffer->m_SortOrder);
        this->WritableSlot(static_cast<int>(j));
        T* a = this->WritableSlot(static_cast<int>(i));
        T* b = this->Slot(static_cast<int>(j)); // after i's access, which may move the block
        if (!a || !b) return 0;
        return Directed(Compare(*a, *b));
    }

    /// Exchanges elements i and j, both taken through the writable accessor
    /// (which grows the array to take in an index out of bounds).
    void Swap(long i, long j) override {
        T* x = PrivateSlot(i);
        T* y = PrivateSlot(j);
        if (x && y) {
            if (x != y) std::swap(*x, *y);
            return;
        }
        this->WritableSlot(static_cast<int>(i));
        T* b = this->WritableSlot(static_cast<int>(j));
        T* a = this->Slot(static_cast<int>(i)); // after j's access, which may move the block
        if (a && b && a != b) std::swap(*a, *b);
    }

    /// Records `direction` in the block and sorts start..start+count-1 in the
    /// order of the sort object: ascending for direction 1 (see
    /// _SCC_Array::Sort for other directions, the cost and the assertions of a
    /// bad range).  When nobody overrides the sorting operations, the range
    /// lies within the bounds and the block can be made private, the same
    /// quicksort runs inline over the storage, making the same comparisons and
    /// swaps.  Iterators are not told: their positions keep their indices.
    void Sort(long start, long count, int direction) override {
        Buffer* b = this->m_Buffer;
        if (count >= 2 && direction != 0 && b && start >= b->m_Lower &&
            start + count <= b->m_Upper && OwnSortingSteps()) {
            b->m_SortOrder = direction; // before the block may be copied
            T* first = this->WritableSlot(static_cast<int>(start));
            if (first) {
                const Comparer comp(*this);
                if (comp.IsPlainAscending())
                    SortRun(first, start, count, PlainAscending(), direction);
                else if (comp.IsFunctionAscending())
                    SortRun(first, start, count, FunctionAscending{comp.Function()}, direction);
                else if (comp.IsObjectAscending())
                    SortRun(first, start, count, ObjectAscending{comp.Object()}, direction);
                else
                    SortRun(first, start, count, comp, direction);
                return;
            }
        }
        _SCC_Array::Sort(start, count, direction);
    }

    /// 1 when element i is in order with its neighbours (through Comp), else
    /// 0; always 1 in a one-element array.  Pass a valid index: Comp grows
    /// the array to take in the neighbour of an index out of bounds.
    int ItemInValidPlace(long i) {
        const long lo = this->GetLowerBound();
        const long hi = static_cast<long>(this->GetUpperBound()) - 1;
        if (lo == hi) return 1;
        if (i == lo) return Comp(i, lo + 1) <= 0 ? 1 : 0;
        if (i == hi) return Comp(i, hi - 1) >= 0 ? 1 : 0;
        if (Comp(i, i - 1) < 0) return 0;
        return Comp(i, i + 1) <= 0 ? 1 : 0;
    }

    /// Binary search for the run of elements equal to `item`, widened to the
    /// whole run: `first` is its first index (or where `item` would go),
    /// `last` one past its end (`first` when empty).  So in 1, 3, 3, 3, 5 at
    /// indices 0..4, 3 gives 1 and 4, 4 gives 4 and 4, 6 gives 5 and 5.  An
    /// empty array gives 0 and 0 whatever its lower bound.  Compares through
    /// the sort object, never Comp.  O(log n) plus the length of the run;
    /// makes a shared block private first.
    void FindItemPosition(const T& item, long& first, long& last) {
        if (this->GetCount() <= 0) {
            first = last = 0;
            return;
        }
        // Every element is read through the writable accessor: make the
        // block private once, then read the storage directly.  Without
        // storage every element reads as equal, so the run is the whole array.
        const long lower = this->GetLowerBound();
        const long upper = this->GetUpperBound();
        const T* at = this->WritableSlot(static_cast<int>(lower));
        if (!at) {
            first = lower;
            last = upper;
            return;
        }
        const Comparer comp(*this);
        if (comp.IsPlainAscending())
            FindRun(at, lower, upper, PlainAscending(), item, first, last);
        else
            FindRun(at, lower, upper, comp, item, first, last);
    }

    /// Inserts a copy of `item` after every element equal to it and returns its
    /// index; `item` may be an element of this array.  Announces
    /// SCC_ArrayInserted.  O(n) for the move.
    long InsertSorted(const T& item) {
        T value(item); // `item` may live in the block that Insert moves
        long first = 0;
        long last = 0;
        FindItemPosition(value, first, last);
        this->Insert(static_cast<int>(last), 1);
        (*this)[static_cast<int>(last)] = value;
        return last;
    }

    /// Looks for an element identical to `item` (T's ==: the same value for
    /// numbers, the same object for shared pointers) in its equal run.
    /// Returns 1 with its index in `position`; else 0 with `position` at the
    /// end of the run (where InsertSorted would put it).
    int Find(const T& item, long& position) {
        long first = 0;
        long last = 0;
        FindItemPosition(item, first, last);
        for (position = first; position < last; ++position)
            if ((*this)[static_cast<int>(position)] == item) return 1;
        return 0;
    }

private:
    using Buffer = typename Base::Buffer;

    // The slot of index i when the writable accessor would have nothing to
    // do (a private block holding i), else null.
    T* PrivateSlot(long i) const {
        const Buffer* b = this->m_Buffer;
        if (!b || b->m_Count > 1 || i < b->m_Lower || i >= b->m_Upper) return nullptr;
        return this->Slot(static_cast<int>(i));
    }

    // The comparison result times a recorded direction, kept within int.
    static int Directed(long long c, long long order) {
        const long long r = c * order;
        return r > INT_MAX ? INT_MAX : r < INT_MIN ? INT_MIN : static_cast<int>(r);
    }
    int Directed(long long c) const {
        return Directed(c, this->m_Buffer ? this->m_Buffer->m_SortOrder : 1);
    }

    // Whether Comp, Swap and ShortSort, the steps of the sorting engine, are
    // this class's own (a derived class that overrides none of them
    // qualifies): the sort may then run inline over the storage, making the
    // comparisons and swaps the virtual ones would make.
    bool OwnSortingSteps() const {
        return SCC_SameOverriders<SCC_SortableArray>(*this, &SCC_SortableArray::Comp,
                                                     &SCC_SortableArray::Swap,
                                                     &SCC_SortableArray::ShortSort);
    }

    // Comp's arithmetic on two elements, with the comparison in force and the
    // block's direction looked up once: a comparison object whose Compare is
    // SCC_Sort<T>'s own is called through its function or the default order
    // inline, any other through its virtual Compare.
    class Comparer {
    public:
        explicit Comparer(SCC_SortableArray& array)
            : m_Sort(array.m_Sort.operator->()),
              m_Exact(m_Sort && SCC_SameOverriders<SCC_Sort<T>>(*m_Sort, &SCC_Sort<T>::Compare)),
              m_Function(m_Sort ? m_Sort->m_Function : nullptr),
              m_Order(array.m_Buffer ? array.m_Buffer->m_SortOrder : 1) {}
        int operator()(const T& a, const T& b) const {
            long long c = 0;
            if (m_Exact)
                c = m_Function ? m_Function(a, b) : SCC_DefaultCompare<T>::Compare(a, b);
            else if (m_Sort)
                c = m_Sort->Compare(a, b);
            return Directed(c, m_Order);
        }
        // The ascending direction leaves an int result as it is, so these
        // cases need none of the tests above.
        // The default order of SCC_Sort<T>'s own Compare.
        bool IsPlainAscending() const { return m_Exact && !m_Function && m_Order == 1; }
        // The function of SCC_Sort<T>'s own Compare.
        bool IsFunctionAscending() const { return m_Exact && m_Function && m_Order == 1; }
        // A Compare of the comparison object's own.
        bool IsObjectAscending() const { return !m_Exact && m_Sort && m_Order == 1; }
        typename SCC_Sort<T>::Function Function() const { return m_Function; }
        SCC_Sort<T>* Object() const { return m_Sort; }

    private:
        SCC_Sort<T>* m_Sort;
        bool m_Exact;
        typename SCC_Sort<T>::Function m_Function;
        long long m_Order;
    };

    // What Comparer gives when IsPlainAscending, IsFunctionAscending or
    // IsObjectAscending, without its tests.
    struct PlainAscending {
        int operator()(const T& a, const T& b) const {
            return SCC_DefaultCompare<T>::Compare(a, b);
        }
    };
    struct FunctionAscending {
        typename SCC_Sort<T>::Function function;
        int operator()(const T& a, const T& b) const { return function(a, b); }
    };
    struct ObjectAscending {
        SCC_Sort<T>* sort;
        int operator()(const T& a, const T& b) const { return sort->Compare(a, b); }
    };

    // The sorting engine's operations on storage whose first slot holds
    // element `origin`.  A comparison must not change the array.
    template <class Order> struct InlineOps {
        T* base;
        long origin;
        Order comp;
        T& At(long i) { return base[i - origin]; }
        int Comp(long i, long j) { return comp(At(i), At(j)); }
        void Swap(long i, long j) {
            if (i != j) std::swap(At(i), At(j));
        }
        void ShortSort(long lo, long hi) { SCC_SelectionSort(*this, lo, hi); }
    };

    template <class Order>
    static void SortRun(T* first, long start, long count, const Order& comp, int direction) {
        InlineOps<Order> ops{first, start, comp};
        SCC_QuickSort(ops, start, start + count - 1, direction > 0);
    }

    // The search of FindItemPosition over storage whose first slot holds the
    // element of the lower bound, for an array of lower..upper-1.
    template <class Order>
    static void FindRun(const T* at, long lower, long upper, const Order& comp, const T& item,
                        long& firstOut, long& lastOut) {
        // Element i is at[i - lower]; the bounds live in locals so that the
        // loops below keep them in registers.
        long first = lower;
        long last = upper - 1;
        const int cf = comp(at[first - lower], item);
        const int cl = comp(at[last - lower], item);
        if (cf >= 0) {
            last = first;
        } else if (cl < 0) {
            first = last = last + 1;
        } else if (cl == 0) {
            first = last;
            last = last + 1;
        } else {
            // Bisect while element `first` is below and element `last` above.
            // As the search is defined, an element above moves `last` to the
            // midpoint (one below it when that is `last` itself), one below
            // moves `first` likewise, and an equal one ends the search on it.
            if (lower >= 0) {
                // The midpoint of indices that are not negative never is
                // `last`, and is `first` only when the two are adjacent, so
                // the search runs on offsets from the lower bound.
                unsigned long f = 0, l = static_cast<unsigned long>(last - lower);
                while (l > f) {
                    const unsigned long mid = (f + l) >> 1;
                    const int cm = comp(at[mid], item);
                    if (cm == 0) {
                        f = l = mid;
                        break;
                    }
                    if (cm > 0)
                        l = mid;
                    else
                        f = mid + (mid == f);
                }
                first = lower + static_cast<long>(f);
                last = lower + static_cast<long>(l);
            } else {
                while (last - first > 0) {
                    const long mid = (first + last) / 2;
                    const int cm = comp(at[mid - lower], item);
                    if (cm == 0) {
                        first = last = mid;
                        break;
                    }
                    if (cm > 0)
                        last = mid - (last == mid);
                    else
                        first = mid + (first == mid);
                }
            }
        }
        while (first > lower && comp(at[first - 1 - lower], item) == 0) --first;
        while (last < upper && comp(at[last - lower], item) == 0) ++last;
        firstOut = first;
        lastOut = last;
    }

    // A missing comparison (after SetSort(nullptr)) finds everything equal.
    int Compare(const T& a, const T& b) { return m_Sort ? m_Sort->Compare(a, b) : 0; }

    virtual int CompItems(const T& a, const T& b) { return Directed(Compare(a, b)); }

public:
    /// The comparison in force (one reference held); null only after
    /// SetSort(nullptr) or when memory was short.
    SCC_SharedPointer<SCC_Sort<T>> m_Sort;
};

#endif // SCC_SORTABLEARRAY_H
