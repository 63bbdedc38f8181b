// SCC_Array.cpp - the untyped array engine: bounds, growth, block moves,
// announcements and sorting.
#include "SCC_Array.h"
// Index arithmetic wraps at 32 bits, as int arithmetic does on the platforms
// the array layout was made for.
#include "internal/SCC_QuickSort.h"
#include "internal/SYS_Int32.h"
#include "ssm/internal/SSM_Check.h"

#include <algorithm>
#include <climits>

// ---------------------------------------------------------------------------
// _SCC_ArrayBuffer

_SCC_ArrayBuffer::_SCC_ArrayBuffer()
    : m_SortOrder(1), m_Lower(0), m_AllocLower(0), m_Upper(0), m_AllocUpper(0) {}

// Member-wise: the count word follows SCC_SharedBuffer's own copy rules.
_SCC_ArrayBuffer::_SCC_ArrayBuffer(const _SCC_ArrayBuffer& other) = default;
_SCC_ArrayBuffer& _SCC_ArrayBuffer::operator=(const _SCC_ArrayBuffer& other) = default;

_SCC_ArrayBuffer::~_SCC_ArrayBuffer() {}

int _SCC_ArrayBuffer::IsValid() {
    const bool lowerOk = m_AllocLower >= m_Lower;
    SSM_CHECK(lowerOk, "scc/scc", 472);
    const bool upperOk = m_AllocUpper >= m_Upper;
    SSM_CHECK(upperOk, "scc/scc", 475);
    return lowerOk && upperOk ? 1 : 0;
}

// ---------------------------------------------------------------------------
// _SCC_Array: construction

_SCC_Array::_SCC_Array() {}

_SCC_Array::_SCC_Array(long n) { ChangeBounds(0, static_cast<int>(n)); }

_SCC_Array::_SCC_Array(int lo, int hi) { ChangeBounds(lo, hi); }

_SCC_Array::_SCC_Array(_SCC_Array& other) : m_Event(other.m_Event) {}

_SCC_Array::~_SCC_Array() { m_Event.RemoveAll(); }

_SCC_Array& _SCC_Array::operator=(_SCC_Array& other) {
    SetData(other.GetData());
    return *this;
}

void _SCC_Array::RegisterIterator(SCC_EventHook<SCC_ArrayParam>& hook) { hook.Attach(&m_Event); }

// ---------------------------------------------------------------------------
// _SCC_Array: the base storage operations

_SCC_ArrayBuffer* _SCC_Array::GetData() { return nullptr; }
int _SCC_Array::GetUpperBound() const { return 0; }
int _SCC_Array::GetLowerBound() const { return 0; }
void _SCC_Array::SetData(_SCC_ArrayBuffer*) {}

_SCC_ArrayBuffer* _SCC_Array::AllocData(int) { return new _SCC_ArrayBuffer; }

void _SCC_Array::CopyData(_SCC_ArrayBuffer*, int, int, int) { SSM_CHECK(false, "scc/scc", 742); }

int _SCC_Array::Comp(long, long) {
    SSM_CHECK_MSG(false, "_SCC_Array::Comp is called.", "scc/scc_arr", 153);
    return 0;
}

void _SCC_Array::Swap(long, long) {
    SSM_CHECK_MSG(false, "_SCC_Array::Swap is called.", "scc/scc_arr", 156);
}

int _SCC_Array::GetCount() const { return 0; }
int _SCC_Array::IsEmpty() const { return GetCount() <= 0 ? 1 : 0; }

int _SCC_Array::IsValid() {
    _SCC_ArrayBuffer* buffer = GetData();
    if (buffer && buffer->IsValid()) return 1;
    SSM_CHECK(false, "scc/scc", 486);
    return 0;
}

int _SCC_Array::Granularity() {
    const long long g = 2LL * GetCount();
    if (g < 1) return 1;
    return static_cast<int>(std::min(g, 10000LL));
}

// ---------------------------------------------------------------------------
// _SCC_Array: bounds and storage

void _SCC_Array::Adopt(_SCC_ArrayBuffer* buffer) {
    SetData(buffer);
    // A block that SetData did not reference (the base class keeps none) has
    // no owner: free it if it came from the heap.
    if (buffer && buffer->m_Count < 0) {
        buffer->Ref(dynamic_cast<void*>(buffer));
        if (buffer->Deref() == 0) delete buffer;
    }
}

_SCC_ArrayBuffer* _SCC_Array::CreateBuffer(int lo, int hi) {
    _SCC_ArrayBuffer* cur = GetData();
    long long allocLo = cur ? cur->m_AllocLower : lo;
    long long allocHi = cur ? cur->m_AllocUpper : hi;
    if (hi <= lo) return nullptr;

    // An array whose block is empty keeps one end of the request only.
    if (cur && cur->m_Lower == cur->m_Upper) {
        if (cur->m_Lower == lo)
            lo = hi - 1;
        else if (cur->m_Lower == hi)
            hi = lo + 1;
    }

    long long step = static_cast<long long>(hi) - lo;
    const int granularity = Granularity();
    if (granularity > step) step = granularity;
    SSM_CHECK_MSG(step > 0, "In SCC_Array, Granularity should be > 0", "scc/scc", 573);

    bool needNew = !cur || cur->m_Count > 1;
    if (!cur || hi > allocHi) {
        allocHi = std::min<long long>(hi + step, INT_MAX);
        needNew = true;
    }
    if (!cur || lo < allocLo) {
        allocLo = std::max<long long>(lo - step, INT_MIN);
        needNew = true;
    } else if (!needNew) {
        cur->m_Lower = lo;
        cur->m_Upper = hi;
        return cur;
    }

    // A reservation that does not fit an int count fails like an allocation.
    const long long size = allocHi - allocLo;
    if (size > INT_MAX) return nullptr;
    _SCC_ArrayBuffer* buffer = AllocData(static_cast<int>(size));
    if (buffer) {
        buffer->m_AllocLower = static_cast<int>(allocLo);
        buffer->m_AllocUpper = static_cast<int>(allocHi);
        buffer->m_Lower = lo;
        buffer->m_Upper = hi;
        SSM_CHECK(lo <= hi, "scc/scc", 599);
    }
    return buffer;
}

void _SCC_Array::ChangeBounds(int lo, int hi) {
    _SCC_ArrayBuffer* old = GetData();
    _SCC_ArrayBuffer* buffer = CreateBuffer(lo, hi);
    if (buffer == old) return;

    if (buffer) {
        const int oldLower = old ? old->m_Lower : 0;
        const int oldUpper = old ? old->m_Upper : 0;
        const int oldAlloc = old ? old->m_AllocLower : 0;
        const int from = std::max(oldLower, buffer->m_Lower);
        const int to = std::min(oldUpper, buffer->m_Upper);
        if (to > from)
            CopyData(buffer, SYS_Sub32(from, buffer->m_AllocLower), SYS_Sub32(from, oldAlloc),
                     to - from);
    }
    Adopt(buffer);

    SCC_ArrayParam param = {};
    param.m_Array = this;
    m_Event.Notify(SCC_ArrayBoundsChanged, &param);
}

void _SCC_Array::CheckArray(int index) {
    if (index >= GetUpperBound()) {
        ChangeBounds(GetLowerBound(), SYS_Add32(index, 1));
    } else if (index < GetLowerBound()) {
        ChangeBounds(index, GetUpperBound());
    } else {
        _SCC_ArrayBuffer* buffer = GetData();
        if (buffer && buffer->m_Count > 1) ChangeBounds(GetLowerBound(), GetUpperBound());
    }
}

// ---------------------------------------------------------------------------
// _SCC_Array: insertion and deletion

// Builds the block for newLo..newHi and moves into it the runs that `param`
// describes: the forward and backward runs asked for, and both runs when the
// block is a new one.  `cur` is the block the runs are read from.
void _SCC_Array::MoveBlocks(const SCC_ArrayParam& param, _SCC_ArrayBuffer* cur, int newLo,
                            int newHi, bool forward, bool backward) {
    const int alloc = cur ? cur->m_AllocLower : 0;
    _SCC_ArrayBuffer* buffer = CreateBuffer(newLo, newHi);
    const bool moved = buffer != cur;
    if (buffer) {
        const int newAlloc = buffer->m_AllocLower;
        if (forward || moved)
            CopyData(buffer, SYS_Sub32(param.m_ForwardTo, newAlloc),
                     SYS_Sub32(param.m_ForwardFrom, alloc), param.m_ForwardCount);
        if (backward || moved)
            CopyData(buffer, SYS_Sub32(param.m_BackwardTo, newAlloc),
                     SYS_Sub32(param.m_BackwardFrom, alloc), -param.m_BackwardCount);
    }
    if (moved) Adopt(buffer);
}

void _SCC_Array::Insert(int index, int count) {
    _SCC_ArrayBuffer* cur = GetData();
    const int end = SYS_Add32(index, count);

    SCC_ArrayParam param = {};
    param.m_Index = index;
    param.m_Count = count;
    param.m_Array = this;
    bool forward = false;
    bool backward = false;
    int newLo = index;
    int newHi = end;

    if (cur) {
        const int lower = cur->m_Lower;
        const int upper = cur->m_Upper;
        const int n = GetCount();
        param.m_ForwardFrom = param.m_ForwardTo = lower;
        param.m_BackwardFrom = param.m_BackwardTo = SYS_Sub32(upper, 1);
        newLo = lower;
        newHi = upper;
        if (index < lower) {
            // Before the first element: the gap up to the old lower bound
            // becomes valid too.
            newLo = std::min(index, end);
            param.m_BackwardCount = n;
            if (end > lower) {
                newHi = SYS_Add32(n, end);
                param.m_BackwardTo = SYS_Sub32(newHi, 1);
                backward = true;
            }
        } else if (index >= upper) {
            // After the last element, likewise.
            newHi = std::max(end, index);
            param.m_ForwardCount = n;
            if (end < upper) {
                newLo = SYS_Add32(SYS_Sub32(index, n), count);
                param.m_ForwardTo = newLo;
                forward = true;
            }
        } else {
            param.m_BackwardCount = upper - index;
            param.m_ForwardCount = index - lower;
            if (count > 0) {
                param.m_BackwardTo = SYS_Add32(upper - 1, count);
                newHi = SYS_Add32(upper, count);
                backward = true;
            } else {
                param.m_ForwardTo = SYS_Add32(lower, count);
                newLo = SYS_Add32(lower, count);
                forward = true;
            }
        }
    }

    MoveBlocks(param, cur, newLo, newHi, forward, backward);

    m_Event.Notify(SCC_ArrayInserted, &param);
}

void _SCC_Array::Delete(int index, int count) {
    const int lower = GetLowerBound();
    const int upper = GetUpperBound();
    const long long end = static_cast<long long>(index) + count;
    if (index < lower || index >= upper || end < lower || end > upper) return;

    const int e = static_cast<int>(end);
    const int hiEdge = std::max(index, e);
    const int loEdge = std::min(index, e);
    SCC_ArrayParam param = {};
    param.m_Index = index;
    param.m_Count = count;
    param.m_Array = this;
    param.m_ForwardFrom = param.m_ForwardTo = hiEdge;
    param.m_ForwardCount = upper - hiEdge;
    param.m_BackwardFrom = param.m_BackwardTo = SYS_Sub32(loEdge, 1);
    param.m_BackwardCount = loEdge - lower;
    int newLo = lower;
    int newHi = upper;
    bool forward = false;
    bool backward = false;

    if (count > 0) {
        newHi = upper - count;
        param.m_ForwardTo = index;
        param.m_RemovedFrom = index;
        param.m_RemovedCount = count;
        forward = true;
    } else {
        // A count that is not positive lowers the lower bound by |count| and
        // moves the block below `index` up so that its last element lands on
        // `index`: one place further than the width removed.
        newLo = SYS_Add32(lower, count);
        param.m_BackwardTo = index;
        param.m_RemovedFrom = e;
        param.m_RemovedCount = -count;
        backward = true;
    }

    // Listeners see the doomed elements before anything changes.
    m_Event.Notify(SCC_ArrayDeleted, &param);

    MoveBlocks(param, GetData(), newLo, newHi, forward, backward);
}

void _SCC_Array::Clear() {
    if (!GetData()) return;
    const int lower = GetLowerBound();
    const int upper = GetUpperBound();
    SCC_ArrayParam param = {};
    param.m_Index = lower;
    param.m_Count = upper - lower;
    param.m_Array = this;
    param.m_RemovedFrom = lower;
    param.m_RemovedCount = upper - lower;
    SetData(nullptr);
    m_Event.Notify(SCC_ArrayDeleted, &param);
}

// ---------------------------------------------------------------------------
// _SCC_Array: sorting

void _SCC_Array::Sort(long start, long count, int direction) {
    _SCC_ArrayBuffer* buffer = GetData();
    if (!buffer) return;
    buffer->m_SortOrder = direction;
    if (count < 1) return;
    SSM_CHECK(direction != 0, "scc/scc", 759);
    SSM_CHECK(start >= buffer->m_Lower, "scc/scc", 760);
    SSM_CHECK(start + count <= buffer->m_Upper, "scc/scc", 761);
    if (count < 2) return;
    QuickSort(start, start + count - 1, direction);
}

// The engine's view of an array whose Comp, Swap and ShortSort may be
// overridden: every step goes through the virtual operations.
class _SCC_ArraySortOps {
public:
    _SCC_ArraySortOps(_SCC_Array& array, int direction) : m_Array(array), m_Direction(direction) {}
    int Comp(long i, long j) { return m_Array.Comp(i, j); }
    void Swap(long i, long j) { m_Array.Swap(i, j); }
    void ShortSort(long lo, long hi) { m_Array.ShortSort(lo, hi, m_Direction); }

private:
    _SCC_Array& m_Array;
    int m_Direction;
};

void _SCC_Array::QuickSort(long lo, long hi, int direction) {
    _SCC_ArraySortOps ops(*this, direction);
    SCC_QuickSort(ops, lo, hi, direction > 0);
}

void _SCC_Array::ShortSort(long lo, long hi, int direction) {
    _SCC_ArraySortOps ops(*this, direction);
    SCC_SelectionSort(ops, lo, hi);
}
