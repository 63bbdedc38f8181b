/// @file
/// Dynamic arrays over an arbitrary index range: the untyped engine
/// _SCC_Array, its bounds record _SCC_ArrayBuffer, the typed SCC_Array<T> with
/// its storage block and iterator, and SCC_ArrayParam, the record with which
/// an array announces that elements moved.
///
/// An array's valid indices run from its lower bound to one before its upper
/// bound; either bound may be any int, negative included, and indices are
/// absolute (growing at the lower end does not renumber the elements).
/// Storage is a reference-counted block that reserves spare slots beyond the
/// bounds, so growing at either end is usually done in place.  Copies of an
/// array share one block until one of them is written through a writable
/// accessor or changes shape: that array then takes a private block (copy on
/// write).
///
/// Every structural change is announced through the array's event m_Event with
/// a pointer to an SCC_ArrayParam on the caller's stack (SCC_ArrayCode):
/// SCC_ArrayInserted after an insertion, SCC_ArrayDeleted before a deletion
/// (and after a Clear), SCC_ArrayBoundsChanged after the bounds moved to a new
/// block.  Iterators hook the event to follow their element.
///
/// New slots (opened by Insert, or by growing the bounds) are not cleared.
/// In a new block they hold default-constructed elements (an `int` is left
/// uninitialised); in a reused block they still hold whatever the slot held
/// last, often a copy of an element that moved away (for shared pointers, a
/// reference that keeps the object alive until the slot is overwritten or
/// the block goes).  Write every new slot before reading it.
///
/// A bad index is reported through the assertion manager, at the site
/// "scc/scc_arr(399)" for FastGetAt and "scc/scc_arr(406)" for the read-only
/// operator[]; the writable operator[] grows the array instead.
///
/// Costs: the first block for n elements reserves n spare slots on each side.
/// A block that is outgrown is replaced by one with
/// max(new element count, Granularity()) spare slots beyond each bound that
/// overflowed, Granularity() being twice the old element count, at least 1,
/// at most 10000; the side that still fits keeps its old reservation.  Storage
/// therefore grows geometrically: appending is amortised O(1), and filling an
/// array of n elements one by one copies it O(log n) times.  Reserve the
/// bounds first (SCC_Array(lo, hi)) when the size is known.  Inserting or
/// deleting moves the elements on one side, O(n).  Copying an array is O(1)
/// until it is written; the first write then copies the elements, O(n).
#ifndef SCC_ARRAY_H
#define SCC_ARRAY_H

#include "keel_config.h"
#include "SCC_Event.h"
#include "SCC_Shared.h"
#include "SSM_Assert.h"
#include "internal/SYS_Int32.h"

#include <climits>
#include <cstring>
#include <functional>
#include <new>
#include <type_traits>
#include <utility>

class _SCC_Array;

/// The codes with which an array announces a structural change on m_Event.
enum SCC_ArrayCode {
    SCC_ArrayInserted = 1,     ///< after Insert: blocks moved apart to open slots
    SCC_ArrayDeleted = 2,      ///< before Delete moves blocks together; after Clear
    SCC_ArrayBoundsChanged = 3 ///< after the bounds moved to a new block (no fields set)
};

/// The bounds of one storage block.  The typed block keeps the element of
/// index i at position i - m_AllocLower of its storage.
///
/// Arrays make, share and free these blocks themselves; a host reads the
/// fields (through SCC_Array::m_Buffer) but does not build blocks.
class KEEL_API _SCC_ArrayBuffer : public SCC_SharedBuffer {
public:
    /// Sort order 1, all bounds 0, count never referenced.
    _SCC_ArrayBuffer();
    /// Copies the sort order and the bounds; the count starts afresh.
    _SCC_ArrayBuffer(const _SCC_ArrayBuffer& other);
    /// Copies the count word as well as the sort order and the bounds.
    _SCC_ArrayBuffer& operator=(const _SCC_ArrayBuffer& other);
    /// Virtual, so that the typed block's elements are destroyed with it.
    virtual ~_SCC_ArrayBuffer();

    /// 1 when m_AllocLower >= m_Lower and m_AllocUpper >= m_Upper, else 0;
    /// a failed test is reported at "scc/scc(472)" (lower) or "scc/scc(475)"
    /// (upper).  Deliberately, the first test is the reverse of how storage
    /// is laid out, so a block with spare slots below its lower bound (almost
    /// every block an array makes) fails it: this is no health check.
    int IsValid();

    int m_SortOrder;  ///< direction of the last Sort on an array using the block; 1 in a new block
    int m_Lower;      ///< first valid index
    int m_AllocLower; ///< first index with storage
    int m_Upper;      ///< one past the last valid index
    int m_AllocUpper; ///< one past the last index with storage
};

/// What an array announces.  A forward block of m_ForwardCount elements moves
/// its first element from m_ForwardFrom to m_ForwardTo (copied upward); a
/// backward block of m_BackwardCount elements moves its last element from
/// m_BackwardFrom to m_BackwardTo (copied downward).  A block whose count is 0
/// does not move, whatever its positions say; fields an announcement does not
/// use are 0.  The record lives on the raiser's stack during the
/// notification only: copy what you need, do not keep the pointer.
struct SCC_ArrayParam {
    int m_Index;         ///< index argument (Clear: old lower bound; bounds change: 0)
    int m_Count;         ///< count argument (Clear: old element count; bounds change: 0)
    _SCC_Array* m_Array; ///< the array that raises the event
    int m_ForwardFrom;   ///< old index of the first element of the forward block
    int m_ForwardTo;     ///< new index of the first element of the forward block
    int m_ForwardCount;  ///< elements in the forward block
    int m_BackwardFrom;  ///< old index of the last element of the backward block
    int m_BackwardTo;    ///< new index of the last element of the backward block
    int m_BackwardCount; ///< elements in the backward block
    int m_RemovedFrom;   ///< first index a deletion takes away
    int m_RemovedCount;  ///< number of elements a deletion takes away
};

/// The untyped engine.  The typed subclass owns the storage block and supplies
/// element storage, copying and comparison through the virtual operations.
///
/// Hosts use SCC_Array<T> or SCC_SortableArray<T>; the members here are the
/// shape operations every array shares.  The destructor is not virtual: never
/// delete an array through a pointer to this class.
class KEEL_API _SCC_Array {
public:
    /// Moves the event's hooks from `other` (the event's copy semantics, so
    /// the moved hooks still name `other`'s event as their root); takes no
    /// storage.  SCC_Array's own copy does not use this: it starts with no
    /// hooks.
    _SCC_Array(_SCC_Array& other);
    /// Detaches every hook, leaving them alive.  The typed destructor has
    /// released the block.
    ~_SCC_Array();

    /// Opens |count| slots: at `index` moving the elements from `index`
    /// upward when count > 0, just below `index` moving the elements below it
    /// downward (the lower bound drops by |count|) when count < 0.  An index
    /// beyond either bound also makes the gap up to it valid.  New slots are
    /// not cleared (see the file notes).  Announces SCC_ArrayInserted
    /// afterwards.  O(n) for the elements moved; takes a new block when the
    /// storage is outgrown or shared.
    void Insert(int index, int count);
    /// Removes `count` elements from `index`, moving the elements above them
    /// down.  A count <= 0 instead lowers the lower bound by |count| and moves
    /// the elements below `index` up until the last of them lands on `index`;
    /// this is kept as it is, so Delete(i, 0) is not a no-op when i is above
    /// the lower bound: pass a positive count.  Announces SCC_ArrayDeleted
    /// before anything changes, while the doomed elements are still readable.
    /// A request that leaves the bounds (an array without storage included)
    /// does nothing and announces nothing.  Deleting the last elements drops
    /// the storage.  O(n) for the elements moved.
    void Delete(int index, int count);
    /// Drops the storage (the block is freed unless a copy shares it); the
    /// bounds become 0 and 0.  Announces SCC_ArrayDeleted afterwards, with
    /// the old lower bound and count as the removed range, when there was
    /// any storage.
    void Clear();
    /// Joins `hook` to the array's event in priority order (SCC_EventHook::
    /// Attach).  The array keeps a pointer only: the hook must stay alive or
    /// detach itself, which its destructor does.
    void RegisterIterator(SCC_EventHook<SCC_ArrayParam>& hook);

protected:
    /// An array without storage and with no hooks.
    _SCC_Array();
    ///@{
    /// These construct the bounds through the base's storage operations,
    /// which keep no storage: a typed subclass builds its base empty and
    /// calls ChangeBounds itself once its own members exist.
    explicit _SCC_Array(long n);
    _SCC_Array(int lo, int hi);
    ///@}

    /// Shares `other`'s storage block (no elements are copied).  Nothing is
    /// announced and the hooks stay where they are.
    _SCC_Array& operator=(_SCC_Array& other);

    /// Gives the array the bounds lo..hi, copying the elements both ranges
    /// have; indices new to the array hold whatever their slot holds.  An
    /// empty range (hi <= lo) drops the storage.  Announces
    /// SCC_ArrayBoundsChanged when that took a new block (or dropped it);
    /// a range that fits the current private block is set in place, silently.
    void ChangeBounds(int lo, int hi);
    /// The block that is to hold lo..hi: the current one with its bounds
    /// rewritten in place when it is private and lo..hi fits its storage, or a
    /// new one from AllocData with spare slots by the growth rule of the file
    /// notes (elements not copied).  Null for an empty range or when memory is
    /// short.  When the current block holds no element and the request starts
    /// (or ends) at its bound, only the index next to the other end is kept
    /// (deliberate).
    _SCC_ArrayBuffer* CreateBuffer(int lo, int hi);
    /// Makes `index` valid (growing the lower or upper bound to it) and, when
    /// it already is, makes a shared block private: the step before every
    /// writable access.  May announce SCC_ArrayBoundsChanged.
    void CheckArray(int index);

    /// The current storage block, or null.  The base has none.
    virtual _SCC_ArrayBuffer* GetData();
    /// One past the last valid index; 0 without storage.  The base returns 0.
    virtual int GetUpperBound() const;
    /// The first valid index; 0 without storage.  The base returns 0.
    virtual int GetLowerBound() const;
    /// Makes `buffer` (null allowed) the current block.  The base keeps
    /// nothing.
    virtual void SetData(_SCC_ArrayBuffer* buffer);
    /// A new block with room for `n` elements, made through
    /// SCC_SharedBuffer::operator new; null when memory is short.  The base
    /// makes a bounds record without elements.
    virtual _SCC_ArrayBuffer* AllocData(int n);
    /// Copies |count| elements of the current block into `dest`; positions are
    /// storage positions (index - m_AllocLower of the block concerned), and
    /// for count < 0 they name the last elements, copied downward.  The
    /// source elements keep their values.  The base reports "scc/scc(742)".
    virtual void CopyData(_SCC_ArrayBuffer* dest, int destPos, int srcPos, int count);
    /// Negative, 0 or positive as element i is less than, equal to or greater
    /// than element j.  The base reports "_SCC_Array::Comp is called." at
    /// "scc/scc_arr(153)" and returns 0: override it to sort.
    virtual int Comp(long i, long j);
    /// Exchanges elements i and j.  The base reports "_SCC_Array::Swap is
    /// called." at "scc/scc_arr(156)": override it to sort.
    virtual void Swap(long i, long j);
    /// Sorts start..start+count-1 through Comp and Swap: an iterative
    /// quicksort on the middle element that hands ranges of at most 8
    /// elements to ShortSort.  O(n log n) comparisons on average, O(n^2) at
    /// worst; not stable; allocates nothing.
    ///
    /// It first records `direction` in the current block's m_SortOrder (even
    /// when count < 1, and in a block shared with a copy), then does nothing
    /// more for count < 2.  A direction of 0 is reported at "scc/scc(759)", a
    /// start below the lower bound at "scc/scc(760)", a range past the upper
    /// bound at "scc/scc(761)"; the sort goes on.  A direction > 0 sorts
    /// ascending.  Any other reverses the partition tests but not ShortSort,
    /// so only a range of at most 8 elements is sure to come out in order;
    /// this is kept as it is.  For a descending order, sort with direction 1
    /// and a reversed comparison.  Without storage it does nothing.
    virtual void Sort(long start, long count, int direction);
    /// Selection sort of lo..hi, ascending by Comp whatever the direction;
    /// O(n^2).  Of equal greatest elements, the first found goes last.
    virtual void ShortSort(long lo, long hi, int direction);
    /// Growth step: twice the element count, at least 1, at most 10000.  A
    /// new block gets max(new element count, this) spare slots beyond each
    /// bound that outgrew the old one.
    virtual int Granularity();

public:
    /// The number of elements (upper bound - lower bound); 0 without storage.
    virtual int GetCount() const;
    /// 1 when GetCount() is not greater than 0, else 0.
    virtual int IsEmpty() const;
    /// 1 when there is a block and it passes _SCC_ArrayBuffer::IsValid; else
    /// reports "scc/scc(486)" and returns 0, so an array without storage
    /// reports too.  As that test fails for almost every block, this almost
    /// always returns 0 after reports: it is kept for compatibility, not as a
    /// health check.
    virtual int IsValid();

    /// The event on which the array announces its structural changes, with an
    /// SCC_ArrayCode and an SCC_ArrayParam.  Hook it with RegisterIterator
    /// (or SCC_EventHook::Attach); hooks are not owned.
    SCC_Event<SCC_ArrayParam> m_Event;

private:
    friend class _SCC_ArraySortOps;

    // SetData(buffer), then frees `buffer` when SetData did not keep it.
    void Adopt(_SCC_ArrayBuffer* buffer);
    // Reallocates for Insert and Delete and moves the runs they announce.
    void MoveBlocks(const SCC_ArrayParam& param, _SCC_ArrayBuffer* cur, int newLo, int newHi,
                    bool forward, bool backward);
    // The partition loop of Sort on lo..hi.
    void QuickSort(long lo, long hi, int direction);
};

/// A typed array.  Elements live in the storage block m_Buffer, shared with
/// copies of the array until one of them is written.
///
/// Elements are held by value and copied with T's assignment when blocks
/// move; a new block default-constructs its elements.  The destructor is not
/// virtual: delete an array only as the class it was made as.
/// @tparam T the element type: default-constructible and assignable.
template <class T> class SCC_Array : public _SCC_Array {
public:
    /// A storage block: bounds plus room for m_AllocUpper - m_AllocLower
    /// elements (m_Data null when that allocation failed).  Owned by the
    /// arrays that reference it; the last one frees it.
    class Buffer : public _SCC_ArrayBuffer {
    public:
        /// No element storage yet.
        Buffer() : m_Data(nullptr) {}
        /// Not copyable.
        Buffer(const Buffer&) = delete;
        /// Not assignable.
        Buffer& operator=(const Buffer&) = delete;
        /// Destroys the elements and frees their storage.
        ~Buffer() override { delete[] m_Data; }

        /// The elements; index i is at m_Data[i - m_AllocLower].
        T* m_Data;
    };

    class Iterator;

    /// An array without storage: bounds 0 and 0.
    SCC_Array() : m_Buffer(nullptr) {}
    /// Bounds 0 and `n` (no storage for n <= 0); elements not cleared.
    explicit SCC_Array(long n) : m_Buffer(nullptr) { ChangeBounds(0, static_cast<int>(n)); }
    /// Bounds `lo` and `hi` (no storage for hi <= lo); elements not cleared.
    SCC_Array(int lo, int hi) : m_Buffer(nullptr) { ChangeBounds(lo, hi); }
    /// Shares `other`'s block (O(1)); the event starts empty, so `other`'s
    /// iterators stay with `other`.
    SCC_Array(SCC_Array& other) : _SCC_Array(), m_Buffer(nullptr) { _SCC_Array::operator=(other); }
    /// Releases the block (freeing it unless a copy shares it) and detaches
    /// every hook.
    ~SCC_Array() { Release(m_Buffer); }

    /// Shares `other`'s block (O(1)) and drops this array's own.  Nothing is
    /// announced: iterators keep their positions over the new contents.
    SCC_Array& operator=(SCC_Array& other) {
        _SCC_Array::operator=(other);
        return *this;
    }

    /// One past the last valid index; 0 without storage.
    int GetUpperBound() const override { return m_Buffer ? m_Buffer->m_Upper : 0; }
    /// The first valid index; 0 without storage.
    int GetLowerBound() const override { return m_Buffer ? m_Buffer->m_Lower : 0; }
    /// The number of elements; 0 without storage.
    int GetCount() const override { return m_Buffer ? m_Buffer->m_Upper - m_Buffer->m_Lower : 0; }

    /// 1 when the array has storage and `i` is a valid index, else 0.
    int InBounds(int i) const {
        return m_Buffer && m_Buffer->m_Lower <= i && i < m_Buffer->m_Upper ? 1 : 0;
    }

    /// Unchecked access for readers that know the index is valid: an invalid
    /// index (or an array without storage) is reported at
    /// "scc/scc_arr(399)", nothing grows and the block is not made private.
    /// After a report the reference is the slot anyway when storage exists
    /// there, else a scratch element shared by all arrays of T.  Writing
    /// through it writes a block that copies may share.
    T& FastGetAt(int i) {
        if (!InBounds(i)) SSM_CheckFailed("", "scc/scc_arr", 399);
        return SlotOrScratch(i);
    }

    /// Read access: an index out of bounds is reported at
    /// "scc/scc_arr(406)", nothing grows; the reference is then as for
    /// FastGetAt.
    const T& operator[](int i) const {
        if (!InBounds(i)) SSM_CheckFailed("", "scc/scc_arr", 406);
        return const_cast<SCC_Array*>(this)->SlotOrScratch(i);
    }

    /// Write access: grows the bounds to take in `i` (the indices between
    /// are not cleared) and makes a shared block private, announcing
    /// SCC_ArrayBoundsChanged when that took a new block.  Used for reading
    /// on a non-const array it does the same: read through FastGetAt or a
    /// const reference to avoid that.  The reference stays valid until the
    /// next change of shape.  Throws std::bad_alloc when no storage could be
    /// had.
    T& operator[](int i) {
        T* slot = WritableSlot(i);
        if (!slot) throw std::bad_alloc();
        return *slot;
    }

    /// Stores a copy of `item` one past the upper bound (at index 0 in an
    /// array without storage); `item` may be an element of this array.
    /// Announces SCC_ArrayBoundsChanged only when that took a new block, and
    /// never SCC_ArrayInserted.  Amortised O(1).
    void Append(const T& item) {
        Buffer* b = m_Buffer;
        if (b && b->m_Data && b->m_Count <= 1 && b->m_AllocLower <= b->m_Lower &&
            b->m_Lower < b->m_Upper && b->m_Upper < b->m_AllocUpper) {
            // Room in a private block: what CheckArray would do, without the
            // detour.  The block stays where it is, so `item` may be in it.
            b->m_Data[b->m_Upper - b->m_AllocLower] = item;
            ++b->m_Upper;
            return;
        }
        T value(item); // `item` may live in the block that is about to move
        (*this)[GetUpperBound()] = value;
    }

protected:
    /// Returns m_Buffer.
    _SCC_ArrayBuffer* GetData() override { return m_Buffer; }

    /// Takes a reference on the new block before releasing the old one, so
    /// setting the current block again is harmless.  `buffer` must be a
    /// Buffer of this T (or null).
    void SetData(_SCC_ArrayBuffer* buffer) override {
        Buffer* b = static_cast<Buffer*>(buffer);
        if (b) b->Ref(b);
        Buffer* old = m_Buffer;
        m_Buffer = b;
        Release(old);
    }

    /// A block with storage for n default-constructed elements (ints are not
    /// cleared); null when n < 1 or memory is short for the block itself.
    /// When only the elements could not be had, m_Data is null.
    _SCC_ArrayBuffer* AllocData(int n) override {
        if (n < 1) return nullptr;
        Buffer* b = new Buffer;
        if (b) b->m_Data = new (std::nothrow) T[static_cast<std::size_t>(n)];
        return b;
    }

    /// Copies element by element with T's assignment in the direction of
    /// `count`; nothing when `dest` or the current block is missing, count is
    /// 0, or a position falls outside storage.
    void CopyData(_SCC_ArrayBuffer* dest, int destPos, int srcPos, int count) override {
        // A trivially copyable T is moved as one block wherever that gives
        // the same result.
        Buffer* d = static_cast<Buffer*>(dest);
        if (!d || !m_Buffer || count == 0 || !d->m_Data || !m_Buffer->m_Data) return;
        const bool up = count > 0;
        const long long n = up ? count : -static_cast<long long>(count);
        const long long d0 = up ? destPos : destPos - n + 1;
        const long long s0 = up ? srcPos : srcPos - n + 1;
        if (d0 < 0 || s0 < 0 || d0 + n > StorageSize(d) || s0 + n > StorageSize(m_Buffer)) return;
        T* to = d->m_Data + d0;
        const T* from = m_Buffer->m_Data + s0;
        // Copying upward onto a later overlapping block, or downward onto an
        // earlier one, repeats elements; only the plain loop does that.
        const bool repeats =
            d == m_Buffer && (up ? d0 > s0 && d0 < s0 + n : d0 < s0 && d0 + n > s0);
        if constexpr (std::is_trivially_copyable<T>::value) {
            if (!repeats) {
                std::memmove(static_cast<void*>(to), static_cast<const void*>(from),
                             static_cast<std::size_t>(n) * sizeof(T));
                return;
            }
        }
        if (up)
            for (long long k = 0; k < n; ++k) to[k] = from[k];
        else
            for (long long k = n - 1; k >= 0; --k) to[k] = from[k];
    }

    /// The slot of index i for writing, after CheckArray when that has work to
    /// do (i out of bounds or the block shared); null when no storage could be
    /// had.
    T* WritableSlot(int i) {
        Buffer* b = m_Buffer;
        if (b && b->m_Count <= 1 && b->m_Lower <= i && i < b->m_Upper) {
            T* slot = Slot(i);
            if (slot) return slot;
        }
        CheckArray(i);
        return InBounds(i) ? Slot(i) : nullptr;
    }

    /// The storage slot of index i (valid or spare), or null when it has
    /// none.  Neither grows nor copies.
    T* Slot(int i) const {
        if (!m_Buffer || !m_Buffer->m_Data) return nullptr;
        long long pos = static_cast<long long>(i) - m_Buffer->m_AllocLower;
        if (pos < 0 || pos >= StorageSize(m_Buffer)) return nullptr;
        return m_Buffer->m_Data + pos;
    }

public:
    /// The current storage block (one reference held), or null.  Read its
    /// bounds freely; change it only through the array.
    Buffer* m_Buffer;

private:
    static long long StorageSize(const Buffer* b) {
        return static_cast<long long>(b->m_AllocUpper) - b->m_AllocLower;
    }

    // The slot of index i; an index with no storage at all gets a scratch
    // element, so that a reported bad read never touches foreign memory.
    T& SlotOrScratch(int i) {
        T* slot = Slot(i);
        if (slot) return *slot;
        static T scratch;
        return scratch;
    }

    static void Release(Buffer* b) {
        if (b && b->Deref() == 0) delete b;
    }
};

/// An index cursor that follows its element through insertions and
/// deletions of the array it is attached to.  0x7FFFFFFF (NoPosition) means
/// no position (the element was deleted, or nothing was set).
///
/// Attach it with SetArray.  Positions are absolute indices: growing the
/// bounds (Append, the writable operator[], SCC_ArrayBoundsChanged) leaves
/// them alone.  The iterator does not own its array; destroying the array
/// detaches the iterator but leaves m_Array naming it, so call SetArray
/// again before using the iterator.
template <class T> class SCC_Array<T>::Iterator : public SCC_EventHook<SCC_ArrayParam> {
public:
    /// The position of an iterator that has none.
    static constexpr int NoPosition = 0x7FFFFFFF;

    /// No array, NoPosition, priority 0, detached.
    Iterator() : m_Position(NoPosition), m_Array(nullptr) {}
    /// Detaches from the array's event.
    ~Iterator() override {}

    /// Moves the position with the blocks that an insertion or deletion moved
    /// (the position one past the forward block moves with it); a position
    /// whose element a deletion took away becomes NoPosition.  After Clear,
    /// position 0 stays 0 and every other becomes NoPosition.  Bounds changes
    /// leave the position alone.  A null `param` is reported at
    /// "scc/scc_arr(255)".  Returns 0.
    int OnNotification(int code, SCC_ArrayParam* param) override {
        if (!param) {
            SSM_CheckFailed("", "scc/scc_arr", 255);
            return 0;
        }
        if (code != SCC_ArrayInserted && code != SCC_ArrayDeleted) return 0;
        const long long p = m_Position;
        const SCC_ArrayParam& a = *param;
        if (p <= a.m_BackwardFrom &&
            p > static_cast<long long>(a.m_BackwardFrom) - a.m_BackwardCount)
            m_Position = Wrap(p + a.m_BackwardTo - a.m_BackwardFrom);
        else if (p >= a.m_ForwardFrom &&
                 p <= static_cast<long long>(a.m_ForwardFrom) + a.m_ForwardCount)
            m_Position = Wrap(p + a.m_ForwardTo - a.m_ForwardFrom);
        else if (code == SCC_ArrayDeleted)
            m_Position = NoPosition;
        return 0;
    }

    /// Follows `array` from `position` (its lower bound for NoPosition),
    /// joining its event at this iterator's priority and leaving any earlier
    /// array.  A null array is stored and nothing else changes: the iterator
    /// stays hooked to the array it followed (Remove detaches it).
    virtual void SetArray(SCC_Array<T>* array, int position = NoPosition) {
        m_Array = array;
        if (!array) return;
        m_Position = position == NoPosition ? array->GetLowerBound() : position;
        Attach(&array->m_Event);
    }

    /// Moves the position one index up and returns it; no bounds are checked.
    int operator++() { return m_Position = Wrap(static_cast<long long>(m_Position) + 1); }
    /// Moves the position one index down and returns it; no bounds are
    /// checked.
    int operator--() { return m_Position = Wrap(static_cast<long long>(m_Position) - 1); }
    /// The current index, or NoPosition.
    int GetPosition() const { return m_Position; }

    /// The current element, through the array's writable access (which grows
    /// the array to take in the position and makes a shared block private).
    /// Without an array or a position a scratch element stands in.
    T& operator*() {
        if (!m_Array || m_Position == NoPosition) {
            static T scratch;
            return scratch;
        }
        return (*m_Array)[m_Position];
    }

    /// Stores `value` in the current element (as `*it = value`).
    Iterator& operator=(const T& value) {
        **this = value;
        return *this;
    }

    /// The current index, or NoPosition.
    int m_Position;
    /// The array followed (not owned), or null.
    SCC_Array<T>* m_Array;

private:
    static int Wrap(long long v) { return SYS_Wrap32(v); }
};

#endif // SCC_ARRAY_H
