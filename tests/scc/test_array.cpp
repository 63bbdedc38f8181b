// Tests of the array engine through SCC_Array<T>: storage, copy on write,
// Insert and Delete with their announcements, iterators, assertion sites.
#include <keel/SCC_Array.h>
#include <keel/SCC_SortableArray.h>
#include <keel/SSM.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <utility>
#include <vector>

namespace {

typedef std::vector<int> Ints;
typedef std::vector<Ints> Records;
Ints operator+(Ints a, const Ints& b) { return a.insert(a.end(), b.begin(), b.end()), a; }

// Opens the protected storage operations for inspection.
template <class T> struct Probe : SCC_Array<T> {
    Probe() {}
    explicit Probe(long n) : SCC_Array<T>(n) {}
    Probe(int lo, int hi) : SCC_Array<T>(lo, hi) {
        for (int i = lo; i < hi; ++i) this->FastGetAt(i) = T(i);
    }
    // Spoils a block about to be freed: memory reused later must not pass a
    // check with stale values.
    ~Probe() {
        if (auto* b = Buf(); b && b->m_Data && b->m_Count == 1)
            std::fill_n(b->m_Data, b->m_AllocUpper - b->m_AllocLower, T(-1));
    }
    using _SCC_Array::ChangeBounds;
    using _SCC_Array::CreateBuffer;
    using SCC_Array<T>::CopyData;
    typename SCC_Array<T>::Buffer* Buf() { return this->m_Buffer; }
    // Lower, upper, first and one past the last index with storage.
    Ints Shape() {
        auto* b = Buf();
        return b ? Ints{b->m_Lower, b->m_Upper, b->m_AllocLower, b->m_AllocUpper} : Ints{};
    }
    Ints Values(int from, int to) {
        Ints v;
        for (int i = from; i < to; ++i) v.push_back(int(this->FastGetAt(i)));
        return v;
    }
    Ints Values() { return Values(this->GetLowerBound(), this->GetUpperBound()); }
};
typedef Probe<int> IntProbe;

// The untyped engine with the base storage operations.
struct Bare : _SCC_Array {
    Bare() {}
    explicit Bare(long n) : _SCC_Array(n) {}
    using _SCC_Array::Comp;
    using _SCC_Array::CopyData;
    using _SCC_Array::Swap;
};

// Records each announcement as the code, the ten int fields of the record in
// their order and the element count at that moment.
struct Recorder : SCC_EventHook<SCC_ArrayParam> {
    Records seen;
    _SCC_Array* array;
    explicit Recorder(_SCC_Array& a) : array(&a) { a.RegisterIterator(*this); }
    int OnNotification(int code, SCC_ArrayParam* p) override {
        EXPECT_EQ(p->m_Array, array);
        seen.push_back({code, p->m_Index, p->m_Count, p->m_ForwardFrom, p->m_ForwardTo,
                        p->m_ForwardCount, p->m_BackwardFrom, p->m_BackwardTo, p->m_BackwardCount,
                        p->m_RemovedFrom, p->m_RemovedCount, array->GetCount()});
        return 0;
    }
    Records Take() { return std::exchange(seen, {}); }
};
Ints Code3(int count) { return {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, count}; }

TEST(Array, StorageReservesSpareSlotsGrowsByTheCountBasedStepAndStaysWithinInt) {
    IntProbe a(10L);
    EXPECT_EQ(a.Shape(), (Ints{0, 10, -10, 20}));

    // Writable access, appends and bounds that fit announce nothing; a new
    // block, or none at all, is announced.
    Recorder rec(a);
    a[15] = 1;
    a[-3] = 2;
    for (int v = 7; v <= 10; ++v) a.Append(v); // up to index 19
    // At 23 elements the step is 46 above; the lower reserve is kept.
    a.Append(11);
    EXPECT_EQ(a.Shape(), (Ints{-3, 21, -10, 21 + 46}));
    a.ChangeBounds(-8, 60), a.ChangeBounds(15, 80);
    EXPECT_EQ(a.Values(15, 21), (Ints{1, 7, 8, 9, 10, 11}));
    a.ChangeBounds(3, 3);
    EXPECT_EQ(rec.Take(), (Records{Code3(24), Code3(65), Code3(0)}));

    // A full block of n: the step is 2n, stopping at 10000.
    for (auto c : {Ints{100, 301}, Ints{6000, 16001}}) {
        IntProbe full(-c[0], 0);
        full.ChangeBounds(0, c[0]);
        full.Insert(c[0], 1);
        EXPECT_EQ(full.Shape(), (Ints{0, c[0] + 1, -2 * c[0], c[1]}));
    }

    // Against a block whose bounds are empty, one end of a request is kept.
    IntProbe b(0, 10);
    EXPECT_EQ(b.CreateBuffer(5, 5), nullptr);
    b.Buf()->m_Upper = 0;
    b.CreateBuffer(0, 5);
    Ints shapes = b.Shape();
    b.Buf()->m_Lower = b.Buf()->m_Upper = 7;
    b.CreateBuffer(2, 7);
    EXPECT_EQ(shapes + b.Shape(), (Ints{4, 5, -10, 20, 2, 3, -10, 20}));

    // Reservations are kept within int; one that cannot be counted fails.
    IntProbe c;
    c.ChangeBounds(INT_MIN + 10, INT_MAX - 10);
    EXPECT_EQ(c.Buf(), nullptr);
    c.ChangeBounds(INT_MAX - 5, INT_MAX);
    EXPECT_EQ(c.Shape(), (Ints{INT_MAX - 5, INT_MAX, INT_MAX - 10, INT_MAX}));
    c[INT_MAX - 1] = 3;
    EXPECT_EQ(c.FastGetAt(INT_MAX - 1), 3);
    IntProbe m(INT_MIN, INT_MIN + 3); // the (empty) block below index INT_MIN wraps round
    m.Delete(INT_MIN, 1);
    EXPECT_EQ(m.Values(), (Ints{INT_MIN + 1, INT_MIN + 2}));
}

TEST(Array, CopiesShareStorageUntilOneIsWritten) {
    IntProbe a(0, 3), b(a);
    EXPECT_EQ(std::as_const(b)[1] + b.FastGetAt(2), 3); // reads do not unshare
    EXPECT_EQ(a.Buf()->GetRefCount(), 2);
    Recorder rec(a);
    a[1] = 20;
    EXPECT_EQ(rec.Take(), Records{Code3(3)});
    EXPECT_EQ(b.Buf()->GetRefCount(), 1);
    EXPECT_EQ(a.Values() + b.Values(), (Ints{0, 20, 2, 0, 1, 2}));
}

TEST(Array, InsertAndDeleteMoveOneSideAndAnnounceTheBlocks) {
    // checks: pairs of an index and its value afterwards.
    struct Case {
        Ints record, bounds, checks;
    };
    const Case cases[] = {
        // Insert announces afterwards.
        {{1, 5, 2, 0, 0, 5, 9, 11, 5, 0, 0, 12}, {0, 12}, {4, 4, 7, 5, 11, 9}},
        {{1, 3, -2, 0, -2, 3, 9, 9, 7, 0, 0, 12}, {-2, 10}, {-2, 0, 0, 2, 3, 3}},
        {{1, -2, -3, 0, 0, 0, 9, 9, 10, 0, 0, 15}, {-5, 10}, {0, 0, 9, 9}},
        {{1, -2, 5, 0, 0, 0, 9, 12, 10, 0, 0, 15}, {-2, 13}, {3, 0, 12, 9}},
        {{1, 12, 3, 0, 0, 10, 9, 9, 0, 0, 0, 15}, {0, 15}, {0, 0, 9, 9}},
        {{1, 10, -3, 0, -3, 10, 9, 9, 0, 0, 0, 13}, {-3, 10}, {-3, 0, 6, 9}},
        // Delete announces first.  A count of 0 moves the lower block up one
        // place, a negative one |count| + 1 places, lowering the lower bound.
        {{2, 3, 2, 5, 3, 5, 2, 2, 3, 3, 2, 10}, {0, 8}, {2, 2, 3, 5, 7, 9}},
        {{2, 5, 0, 5, 5, 5, 4, 5, 5, 5, 0, 10}, {0, 10}, {1, 0, 5, 4, 6, 6}},
        {{2, 5, -2, 5, 5, 5, 2, 5, 3, 3, 2, 10}, {-2, 10}, {3, 0, 5, 2, 6, 6}},
        {{2, 0, 10, 10, 0, 0, -1, -1, 0, 0, 10, 10}, {}, {}},
    };
    // Each runs in place and, with the block shared, into a new block.
    for (const Case& c : cases)
        for (bool shared : {false, true}) {
            const int index = c.record[1], count = c.record[2];
            SCOPED_TRACE(testing::Message() << c.record[0] << ":" << index << "," << count);
            IntProbe a(0, 10), other;
            if (shared) other = a;
            Recorder rec(a);
            c.record[0] == 1 ? a.Insert(index, count) : a.Delete(index, count);
            EXPECT_EQ(rec.Take(), Records{c.record});
            EXPECT_EQ(a.Shape(),
                      (c.bounds.empty() ? Ints{} : Ints{c.bounds[0], c.bounds[1], -10, 20}));
            for (size_t k = 0; k < c.checks.size(); k += 2)
                EXPECT_EQ(a.FastGetAt(c.checks[k]), c.checks[k + 1]) << c.checks[k];
            EXPECT_EQ(other.Values(), (shared ? Ints{0, 1, 2, 3, 4, 5, 6, 7, 8, 9} : Ints{}));
        }
    IntProbe n; // no storage: a fresh block
    n.Insert(4, 1);
    EXPECT_EQ(n.Shape(), (Ints{4, 5, 3, 6}));

    // Deletions that leave the bounds do nothing.
    IntProbe a(0, 10);
    Recorder rec(a);
    for (auto r : {Ints{-1, 1}, Ints{10, 1}, Ints{8, 3}, Ints{2, -3}}) a.Delete(r[0], r[1]);
    EXPECT_TRUE(rec.Take().empty());
    EXPECT_EQ(a.Values(), (Ints{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));

    // Clear announces after the storage went, and only when there was some.
    a[-2] = 0;
    a.Clear();
    a.Clear();
    EXPECT_EQ(rec.Take(), (Records{{2, -2, 12, 0, 0, 0, 0, 0, 0, -2, 12, 0}}));
}

// A non-trivially-copyable element takes the element loop everywhere.
struct Box {
    int v;
    Box(int i = 0) : v(i) {}
    ~Box() {}
    explicit operator int() const { return v; }
};

TEST(Array, BlockCopiesMatchTheElementLoopEvenWhereItRepeatsElements) {
    IntProbe ints(0, 10);
    Probe<Box> boxes(0, 10);
    // Storage positions are index + 10: downward onto an earlier overlap, a
    // plain move, upward onto a later overlap, and a block out of storage.
    for (auto& c : {Ints{15, 17, -4}, Ints{13, 10, 3}, Ints{12, 10, 5}, Ints{28, 10, 5}}) {
        ints.CopyData(ints.Buf(), c[0], c[1], c[2]);
        boxes.CopyData(boxes.Buf(), c[0], c[1], c[2]);
    }
    EXPECT_EQ(ints.Values(), (Ints{0, 1, 0, 1, 0, 1, 0, 7, 8, 9}));
    EXPECT_EQ(boxes.Values(), ints.Values());
}

// Where iterators set at `from` stand after `change` ran on `a`.
template <class F> Ints Follow(IntProbe& a, const Ints& from, F change) {
    std::vector<SCC_Array<int>::Iterator> its(from.size());
    for (size_t k = 0; k < from.size(); ++k) its[k].SetArray(&a, from[k]);
    change();
    Ints to;
    for (auto& it : its) to.push_back(it.GetPosition());
    return to;
}

TEST(ArrayIterator, FollowsInsertsAndDeletesButNotBoundsChanges) {
    const int none = 0x7FFFFFFF;
    IntProbe a(0, 10);
    EXPECT_EQ(Follow(a, {3, 7, 10}, [&] { a.Insert(5, 2); }), (Ints{3, 9, 10}));
    // One past the moved block moves with it.
    EXPECT_EQ(Follow(a, {5, 6, 12}, [&] { a.Delete(5, 1); }), (Ints{none, 5, 11}));
    EXPECT_EQ(Follow(a, {5}, [&] { a.ChangeBounds(0, 100), a.Insert(-1, -2); }), (Ints{5}));
    EXPECT_EQ(Follow(a, {0, 4}, [&] { a.Clear(); }), (Ints{0, none})); // position 0 is kept

    // Reads and writes go through the writable access.
    IntProbe c(-4, 4);
    SCC_Array<int>::Iterator it, outlives;
    it.SetArray(&c);
    EXPECT_EQ((Ints{it.GetPosition(), *it, ++it, --it}), (Ints{-4, -4, -3, -4}));
    it.SetArray(&c, 6);
    it = 42;
    EXPECT_EQ((Ints{c.GetUpperBound(), c.FastGetAt(6)}), (Ints{7, 42}));
    it.SetArray(nullptr, 1); // stored; the position and the chain stay
    EXPECT_TRUE(it.GetPosition() == 6 && it.GetRoot() == &c.m_Event);
    {
        IntProbe shortLived(3L);
        outlives.SetArray(&shortLived, 1);
    }
    EXPECT_EQ(outlives.GetRoot(), nullptr);
}

TEST(ArrayCore, CopyingTheEngineMovesItsHooks) {
    Bare first, sized(5L); // the base storage makes and frees plain blocks
    Recorder rec(first);
    Bare second(first);
    rec.array = &second;
    second.Insert(0, 1);
    first.Insert(0, 1);
    EXPECT_EQ(rec.Take().size(), 1u);
}

std::vector<std::string> sites; // "file:line", then " message" when there is one
int OnFailure(int, int* data) {
    auto* r = reinterpret_cast<SSM::AssertData*>(data);
    sites.push_back(r->File.GetString() + (":" + std::to_string(r->Line)));
    if (r->Message != "Message not available") (sites.back() += " ") += r->Message.GetString();
    return 0;
}
std::vector<std::string> TakeSites() { return std::exchange(sites, {}); }

TEST(ArrayAssertions, SitesReportTheirFileLineAndText) {
    SSM manager;
    SCC_EventHook<int> hook;
    hook.SetCallback(OnFailure);
    hook.Attach(&manager.FailureEvent);
    typedef std::vector<std::string> Sites;

    Bare bare;
    bare.Swap(1, 2);
    bare.CopyData(nullptr, 0, 0, 1);
    EXPECT_EQ((Ints{bare.Comp(1, 2), bare.IsValid()}), (Ints{0, 0}));
    EXPECT_EQ(TakeSites(), (Sites{"scc/scc_arr:156 _SCC_Array::Swap is called.", "scc/scc:742",
                                  "scc/scc_arr:153 _SCC_Array::Comp is called.", "scc/scc:486"}));

    // The buffer test is reversed on purpose: spare slots below fail it.
    IntProbe a(10L), t(-10, 0);
    t.ChangeBounds(-20, 5);
    EXPECT_EQ((Ints{a.IsValid(), t.IsValid()}), (Ints{0, 1}));
    EXPECT_EQ(TakeSites(), (Sites{"scc/scc:472", "scc/scc:486"}));
    t.Buf()->m_Upper = 30;
    EXPECT_EQ(t.Buf()->IsValid(), 0);

    // Unchecked reads report and neither grow nor unshare.
    IntProbe r(0, 3), sharer(r), empty;
    r.FastGetAt(5) = 9;
    r.FastGetAt(100); // no storage there: a scratch element stands in
    empty.FastGetAt(0);
    EXPECT_EQ(std::as_const(r)[5] + std::as_const(r)[2], 11);
    EXPECT_EQ((Ints{r.GetCount(), static_cast<int>(r.Buf()->GetRefCount())}), (Ints{3, 2}));

    SCC_Array<int>::Iterator it;
    EXPECT_EQ(it.OnNotification(1, nullptr), 0);

    // A sort with bad arguments reports and goes on, its comparisons growing
    // the array through the writable access.  Int storage is not cleared:
    // the whole block is set so that the slots taken in compare defined values.
    struct Cleared : SCC_SortableArray<int> {
        Cleared(int lo, int hi) : SCC_SortableArray<int>(lo, hi) {
            std::fill_n(m_Buffer->m_Data, m_Buffer->m_AllocUpper - m_Buffer->m_AllocLower, 0);
        }
    } s(0, 5);
    for (int i = 0; i < 5; ++i) s[i] = 5 - i;
    s.Sort(0, 5, 0);
    s.Sort(1, 5, 1);
    s.Sort(-1, 2, 1);
    EXPECT_EQ(TakeSites(), (Sites{"scc/scc:475", "scc/scc_arr:399", "scc/scc_arr:399",
                                  "scc/scc_arr:399", "scc/scc_arr:406", "scc/scc_arr:255",
                                  "scc/scc:759", "scc/scc:761", "scc/scc:760"}));
    EXPECT_EQ((Ints{s.GetLowerBound(), s.GetUpperBound()}), (Ints{-1, 6}));
}

} // namespace
