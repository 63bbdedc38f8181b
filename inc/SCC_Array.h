// SCC_Array.h - dynamic arrays over an arbitrary index range: the untyped
// engine _SCC_Array, its bounds record _SCC_ArrayBuffer, the typed
// SCC_Array<T> with its storage block and iterator, and SCC_ArrayParam, the
// record with which an array announces that elements moved.
//
// An array's valid indices run from its lower bound to one before its upper
// bound; either bound may be any int.  Storage is a reference-counted block
// that reserves spare slots beyond the bounds, so growing at either end is
// usually done in place.  Copies of an array share one block until one of
// them is written through a writable accessor or changes shape: that array
// then takes a private block (copy on write).
//
// Every structural change is announced through the array's event m_Event with
// a pointer to an SCC_ArrayParam on the caller's stack (SCC_ArrayCode):
// SCC_ArrayInserted after an insertion, SCC_ArrayDeleted before a deletion
// (and after a Clear), SCC_ArrayBoundsChanged after the bounds moved to a new
// block.  Iterators hook the event to follow their
// element.
//
// Costs: a new block reserves twice the element count in spare slots, but
// never more than 10000 per step unless the request is larger.  Up to about
// 5000 elements appending is amortised O(1); beyond that every 10000 appends
// copy the whole array, so appending n elements costs O(n^2 / 10000) element
// copies (1e6 appends copy about 5e7 elements).  The step is part of the
// array's contract and stays; reserve the bounds first (SCC_Array(lo, hi)) when
// the size is known.  Inserting or deleting moves the elements on one side,
// O(n).  Copying an array is O(1) until it is written.
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

// The codes with which an array announces a structural change on m_Event.
enum SCC_ArrayCode {
    SCC_ArrayInserted = 1,     // after Insert: blocks moved apart to open slots
    SCC_ArrayDeleted = 2,      // before Delete moves blocks together; after Clear
    SCC_ArrayBoundsChanged = 3 // after the bounds moved to a new block (no fields set)
};

// The bounds of one storage block.  The typed block keeps the element of
// index i at position i - m_AllocLower of its storage.
class KEEL_API _SCC_ArrayBuffer : public SCC_SharedBuffer {
public:
    _SCC_ArrayBuffer();
    // Copies the sort order and the bounds; the count starts afresh.
    _SCC_ArrayBuffer(const _SCC_ArrayBuffer& other);
    // Copies the count word as well as the sort order and the bounds.
    _SCC_ArrayBuffer& operator=(const _SCC_ArrayBuffer& other);
    virtual ~_SCC_ArrayBuffer();

    // 1 when m_AllocLower >= m_Lower and m_AllocUpper >= m_Upper, each test
    // reported when it fails.  The first test is the reverse of how storage
    // is laid out, so a block with spare slots below its lower bound fails it.
    int IsValid();

    int m_SortOrder;  // direction of the last Sort on an array using the block
    int m_Lower;      // first valid index
    int m_AllocLower; // first index with storage
    int m_Upper;      // one past the last valid index
    int m_AllocUpper; // one past the last index with storage
};

// What an array announces.  A forward block of m_ForwardCount elements moves
// its first element from m_ForwardFrom to m_ForwardTo (copied upward); a
// backward block of m_BackwardCount elements moves its last element from
// m_BackwardFrom to m_BackwardTo (copied downward).  A block whose count is 0
// does not move, whatever its positions say; fields an announcement does not
// use are 0.
struct SCC_ArrayParam {
    int m_Index;         // index argument (Clear: old lower bound; bounds change: 0)
    int m_Count;         // count argument (Clear: old element count; bounds change: 0)
    _SCC_Array* m_Array; // the array that raises the event
    int m_ForwardFrom;
    int m_ForwardTo;
    int m_ForwardCount;
    int m_BackwardFrom;
    int m_BackwardTo;
    int m_BackwardCount;
    int m_RemovedFrom;  // first index a deletion takes away
    int m_RemovedCount; // number of elements a deletion takes away
};

// The untyped engine.  The typed subclass owns the storage block and supplies
// element storage, copying and comparison through the virtual operations.
class KEEL_API _SCC_Array {
public:
    // Moves the event's hooks from `other` (the event's copy semantics); takes
    // no storage.
    _SCC_Array(_SCC_Array& other);
    // Detaches every hook.  The typed destructor has released the block.
    ~_SCC_Array();

    // Opens |count| slots: at `index` moving the elements from `index`
    // upward when count > 0, just below `index` moving the elements below it
    // downward when count < 0.  Announces SCC_ArrayInserted afterwards.
    void Insert(int index, int count);
    // Removes `count` elements from `index`, moving the elements above them
    // down.  A count <= 0 instead lowers the lower bound by |count| and moves
    // the elements below `index` up until the last of them lands on `index`.
    // Announces SCC_ArrayDeleted before anything changes.  A request that leaves the
    // bounds does nothing.
    void Delete(int index, int count);
    // Drops the storage; announces SCC_ArrayDeleted afterwards when there was
    // any.
    void Clear();
    // Joins `hook` to the array's event in priority order.
    void RegisterIterator(SCC_EventHook<SCC_ArrayParam>& hook);

protected:
    _SCC_Array();
    // These construct the bounds through the base's storage operations; a
    // typed subclass builds its base empty and sets its bounds itself.
    explicit _SCC_Array(long n);
    _SCC_Array(int lo, int hi);

    // Shares `other`'s storage block.  Nothing is announced.
    _SCC_Array& operator=(_SCC_Array& other);

    // Gives the array the bounds lo..hi, copying the elements both ranges
    // have; announces SCC_ArrayBoundsChanged when that took a new block.
    void ChangeBounds(int lo, int hi);
    // The block that is to hold lo..hi: the current one with its bounds
    // rewritten, or a new one (elements not copied).  Null for an empty range
    // or when memory is short.
    _SCC_ArrayBuffer* CreateBuffer(int lo, int hi);
    // Makes `index` valid and the block private, for a writable access.
    void CheckArray(int index);

    // Storage operations, in the order of the virtual table.
    virtual _SCC_ArrayBuffer* GetData();
    virtual int GetUpperBound() const;
    virtual int GetLowerBound() const;
    virtual void SetData(_SCC_ArrayBuffer* buffer);
    virtual _SCC_ArrayBuffer* AllocData(int n);
    // Copies |count| elements of the current block into `dest`; positions are
    // storage positions, and for count < 0 they name the last elements.
    virtual void CopyData(_SCC_ArrayBuffer* dest, int destPos, int srcPos, int count);
    virtual int Comp(long i, long j);
    virtual void Swap(long i, long j);
    // Sorts start..start+count-1 through Comp and Swap: an iterative
    // quicksort that hands ranges of at most 8 elements to ShortSort.
    virtual void Sort(long start, long count, int direction);
    // Selection sort of lo..hi (ascending by Comp whatever the direction).
    virtual void ShortSort(long lo, long hi, int direction);
    // Growth step: twice the element count, at least 1, at most 10000.
    virtual int Granularity();

public:
    virtual int GetCount() const;
    virtual int IsEmpty() const;
    // 1 when there is a block and it passes _SCC_ArrayBuffer::IsValid.
    virtual int IsValid();

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

// A typed array.  Elements live in the storage block m_Buffer, shared with
// copies of the array until one of them is written.
template <class T> class SCC_Array : public _SCC_Array {
public:
    // A storage block: bounds plus room for m_AllocUpper - m_AllocLower
    // elements (m_Data null when that allocation failed).
    class Buffer : public _SCC_ArrayBuffer {
    public:
        Buffer() : m_Data(nullptr) {}
        Buffer(const Buffer&) = delete;
        Buffer& operator=(const Buffer&) = delete;
        ~Buffer() override { delete[] m_Data; }

        T* m_Data;
    };

    class Iterator;

    SCC_Array() : m_Buffer(nullptr) {}
    explicit SCC_Array(long n) : m_Buffer(nullptr) { ChangeBounds(0, static_cast<int>(n)); }
    SCC_Array(int lo, int hi) : m_Buffer(nullptr) { ChangeBounds(lo, hi); }
    // Shares `other`'s block; the event starts empty.
    SCC_Array(SCC_Array& other) : _SCC_Array(), m_Buffer(nullptr) { _SCC_Array::operator=(other); }
    ~SCC_Array() { Release(m_Buffer); }

    // Shares `other`'s block.
    SCC_Array& operator=(SCC_Array& other) {
        _SCC_Array::operator=(other);
        return *this;
    }

    int GetUpperBound() const override { return m_Buffer ? m_Buffer->m_Upper : 0; }
    int GetLowerBound() const override { return m_Buffer ? m_Buffer->m_Lower : 0; }
    int GetCount() const override { return m_Buffer ? m_Buffer->m_Upper - m_Buffer->m_Lower : 0; }

    int InBounds(int i) const {
        return m_Buffer && m_Buffer->m_Lower <= i && i < m_Buffer->m_Upper ? 1 : 0;
    }

    // Unchecked access for readers that know the index is valid: an invalid
    // index is reported, nothing grows and the block is not made private.
    T& FastGetAt(int i) {
        if (!InBounds(i)) SSM_CheckFailed("", "scc/scc_arr", 399);
        return SlotOrScratch(i);
    }

    // Read access: an index out of bounds is reported, nothing grows.
    const T& operator[](int i) const {
        if (!InBounds(i)) SSM_CheckFailed("", "scc/scc_arr", 406);
        return const_cast<SCC_Array*>(this)->SlotOrScratch(i);
    }

    // Write access: grows the bounds to take in `i` and makes the block
    // private.  Throws std::bad_alloc when no storage could be had.
    T& operator[](int i) {
        T* slot = WritableSlot(i);
        if (!slot) throw std::bad_alloc();
        return *slot;
    }

    // Stores `item` one past the upper bound.  Announces SCC_ArrayBoundsChanged only when that
    // took a new block.
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
    _SCC_ArrayBuffer* GetData() override { return m_Buffer; }

    // Takes a reference on the new block before releasing the old one, so
    // setting the current block again is harmless.
    void SetData(_SCC_ArrayBuffer* buffer) override {
        Buffer* b = static_cast<Buffer*>(buffer);
        if (b) b->Ref(b);
        Buffer* old = m_Buffer;
        m_Buffer = b;
        Release(old);
    }

    // A block with storage for n default-constructed elements (ints are not
    // cleared); null when n < 1 or memory is short for the block itself.
    _SCC_ArrayBuffer* AllocData(int n) override {
        if (n < 1) return nullptr;
        Buffer* b = new Buffer;
        if (b) b->m_Data = new (std::nothrow) T[static_cast<std::size_t>(n)];
        return b;
    }

    // Element by element in the direction of `count`; a trivially copyable T
    // is moved as one block wherever that gives the same result.
    void CopyData(_SCC_ArrayBuffer* dest, int destPos, int srcPos, int count) override {
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

    // The slot of index i for writing, after CheckArray when that has work to
    // do (i out of bounds or the block shared); null when no storage could be
    // had.
    T* WritableSlot(int i) {
        Buffer* b = m_Buffer;
        if (b && b->m_Count <= 1 && b->m_Lower <= i && i < b->m_Upper) {
            T* slot = Slot(i);
            if (slot) return slot;
        }
        CheckArray(i);
        return InBounds(i) ? Slot(i) : nullptr;
    }

    // The storage slot of index i, or null when it has none.
    T* Slot(int i) const {
        if (!m_Buffer || !m_Buffer->m_Data) return nullptr;
        long long pos = static_cast<long long>(i) - m_Buffer->m_AllocLower;
        if (pos < 0 || pos >= StorageSize(m_Buffer)) return nullptr;
        return m_Buffer->m_Data + pos;
    }

public:
    // The current storage block (one reference held), or null.
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

// An index cursor that follows its element through insertions and
// deletions of the array it is attached to.  0x7FFFFFFF means no position
// (the element was deleted, or nothing was set).
template <class T> class SCC_Array<T>::Iterator : public SCC_EventHook<SCC_ArrayParam> {
public:
    static constexpr int NoPosition = 0x7FFFFFFF;

    Iterator() : m_Position(NoPosition), m_Array(nullptr) {}
    ~Iterator() override {}

    // Moves the position with the blocks that an insertion or deletion moved;
    // a position whose element a deletion took away becomes NoPosition.
    // Bounds changes leave the position alone.  Returns 0.
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

    // Follows `array` from `position` (its lower bound for NoPosition).  A
    // null array is stored and nothing else changes.
    virtual void SetArray(SCC_Array<T>* array, int position = NoPosition) {
        m_Array = array;
        if (!array) return;
        m_Position = position == NoPosition ? array->GetLowerBound() : position;
        Attach(&array->m_Event);
    }

    int operator++() { return m_Position = Wrap(static_cast<long long>(m_Position) + 1); }
    int operator--() { return m_Position = Wrap(static_cast<long long>(m_Position) - 1); }
    int GetPosition() const { return m_Position; }

    // The current element, through the array's writable access (which grows
    // the array to take in the position).  Without an array or a position a
    // scratch element stands in.
    T& operator*() {
        if (!m_Array || m_Position == NoPosition) {
            static T scratch;
            return scratch;
        }
        return (*m_Array)[m_Position];
    }

    // Stores `value` in the current element.
    Iterator& operator=(const T& value) {
        **this = value;
        return *this;
    }

    int m_Position;
    SCC_Array<T>* m_Array;

private:
    static int Wrap(long long v) { return SYS_Wrap32(v); }
};

#endif // SCC_ARRAY_H
