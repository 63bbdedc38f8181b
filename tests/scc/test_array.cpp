// Tests of the array engine through SCC_Array<T>: reserved storage, growth,
// copy on write, the block moves of Insert and Delete with their
// announcements, iterators, and the assertion sites.
#include "SCC_Array.h"
#include "SSM.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>
#include <string>
#include <vector>

namespace {

typedef std::vector<int> Ints;

// Opens the protected storage operations for inspection.
template <class T> struct Probe : SCC_Array<T> {
    Probe() {}
    explicit Probe(long n) : SCC_Array<T>(n) {}
    Probe(int lo, int hi) : SCC_Array<T>(lo, hi) {
        for (int i = lo; i < hi; ++i) this->FastGetAt(i) = T(i);
    }
    Probe(Probe& other) : SCC_Array<T>(other) {}
    Probe& operator=(Probe& other) {
        SCC_Array<T>::operator=(other);
        return *this;
    }
    using _SCC_Array::ChangeBounds;
    using _SCC_Array::CreateBuffer;
    using SCC_Array<T>::CopyData;
    typename SCC_Array<T>::Buffer* Buf() { return this->m_Buffer; }
    Ints Alloc() { return {Buf()->m_AllocLower, Buf()->m_AllocUpper}; }
    Ints Bounds() { return {this->GetLowerBound(), this->GetUpperBound()}; }
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
    Bare(Bare& other) : _SCC_Array(other) {}
    using _SCC_Array::Comp;
    using _SCC_Array::CopyData;
    using _SCC_Array::Swap;
};

// Records what an array announces: the code, the ten int fields (index,
// count, forward from/to/count, backward from/to/count, removed from/count)
// and the element count at that moment.
struct Recorder {
    SCC_ObjectEventHook<Recorder, SCC_ArrayParam> hook;
    std::vector<Ints> seen;
    _SCC_Array* array;
    explicit Recorder(_SCC_Array& a) : array(&a) {
        hook.SetObject(this);
        hook.SetMethod(&Recorder::On);
        a.RegisterIterator(hook);
    }
    int On(int code, SCC_ArrayParam* p) {
        EXPECT_EQ(p->m_Array, array);
        seen.push_back({code, p->m_Index, p->m_Count, p->m_ForwardFrom, p->m_ForwardTo,
                        p->m_ForwardCount, p->m_BackwardFrom, p->m_BackwardTo, p->m_BackwardCount,
                        p->m_RemovedFrom, p->m_RemovedCount, array->GetCount()});
        return 0;
    }
    std::vector<Ints> Take() { return std::exchange(seen, {}); }
};
Ints Code3(int count) { return {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, count}; }

TEST(Array, ReservesSpareSlotsAndGrowsByTheCountBasedStep) {
    IntProbe a(10L), reversed(4, 2);
    EXPECT_EQ(a.Bounds(), (Ints{0, 10}));
    EXPECT_EQ(a.Alloc(), (Ints{-10, 20}));
    EXPECT_EQ(reversed.Buf(), nullptr);

    // Writable access and appends that fit announce nothing.
    Recorder rec(a);
    a[15] = 1;
    a[-3] = 2;
    EXPECT_EQ(a.Bounds(), (Ints{-3, 16}));
    for (int v = 7; v <= 10; ++v) a.Append(v); // up to index 19
    EXPECT_TRUE(rec.Take().empty());
    a.Append(11); // 23 elements: step 46 above, the lower reserve kept
    EXPECT_EQ(rec.Take(), (std::vector<Ints>{Code3(24)}));
    EXPECT_EQ(a.Alloc(), (Ints{-10, 21 + 46}));
    EXPECT_EQ(a.Values(15, 21), (Ints{1, 7, 8, 9, 10, 11}));

    IntProbe c(-100, 0);
    c.ChangeBounds(0, 100);
    c.Insert(100, 1);
    EXPECT_EQ(c.Alloc(), (Ints{-200, 301}));
    // The count-based step stops at 10000.
    IntProbe g(-6000, 0);
    g.ChangeBounds(0, 6000);
    g.Append(1);
    EXPECT_EQ(g.Alloc(), (Ints{-12000, 16001}));
}

TEST(Array, CopiesShareStorageUntilOneIsWritten) {
    IntProbe a(0, 3), b(a);
    EXPECT_EQ(a.Buf(), b.Buf());
    EXPECT_EQ(a.Buf()->GetRefCount(), 2);
    const IntProbe& cb = b;
    EXPECT_EQ(cb[1] + b.FastGetAt(2), 3); // reads do not unshare
    EXPECT_EQ(a.Buf(), b.Buf());

    Recorder rec(a);
    a[1] = 20;
    EXPECT_EQ(rec.Take(), (std::vector<Ints>{Code3(3)}));
    EXPECT_EQ(b.Buf()->GetRefCount(), 1);
    EXPECT_EQ(a.Values(), (Ints{0, 20, 2}));
    EXPECT_EQ(b.Values(), (Ints{0, 1, 2}));

    b = a;
    b.Delete(0, 1); // a structural change unshares as well
    EXPECT_EQ(a.Values(), (Ints{0, 20, 2}));
    EXPECT_EQ(b.Values(), (Ints{20, 2}));
}

TEST(Array, InsertMovesOneSideAndAnnouncesTheBlocksAfterwards) {
    struct Case {
        int index, count;
        Ints fields, bounds, checks; // checks: index, old value, ...
    };
    const Case cases[] = {
        {5, 2, {5, 2, 0, 0, 5, 9, 11, 5, 0, 0}, {0, 12}, {4, 4, 7, 5, 11, 9}},
        {3, -2, {3, -2, 0, -2, 3, 9, 9, 7, 0, 0}, {-2, 10}, {-2, 0, 0, 2, 3, 3}},
        {-3, 2, {-3, 2, 0, 0, 0, 9, 9, 10, 0, 0}, {-3, 10}, {0, 0, 9, 9}},
        {-2, 5, {-2, 5, 0, 0, 0, 9, 12, 10, 0, 0}, {-2, 13}, {3, 0, 12, 9}},
        {12, 3, {12, 3, 0, 0, 10, 9, 9, 0, 0, 0}, {0, 15}, {0, 0, 9, 9}},
        {10, -3, {10, -3, 0, -3, 10, 9, 9, 0, 0, 0}, {-3, 10}, {-3, 0, 6, 9}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.index) + "," + std::to_string(c.count));
        IntProbe a(0, 10);
        Recorder rec(a);
        a.Insert(c.index, c.count);
        EXPECT_EQ(a.Alloc(), (Ints{-10, 20})); // all of these fit in place
        EXPECT_EQ(a.Bounds(), c.bounds);
        for (size_t k = 0; k < c.checks.size(); k += 2)
            EXPECT_EQ(a.FastGetAt(c.checks[k]), c.checks[k + 1]) << c.checks[k];
        Ints expected = c.fields;
        expected.insert(expected.begin(), 1);
        expected.push_back(c.bounds[1] - c.bounds[0]);
        EXPECT_EQ(rec.Take(), std::vector<Ints>{expected});
    }

    // Into a new block both sides are copied; into no storage, a fresh one.
    IntProbe t(-10, 0), n;
    t.ChangeBounds(0, 10);
    for (int i = 0; i < 10; ++i) t.FastGetAt(i) = i;
    t.Insert(5, 2);
    EXPECT_EQ(t.Alloc(), (Ints{-20, 32}));
    EXPECT_EQ(t.Values(0, 5), (Ints{0, 1, 2, 3, 4}));
    EXPECT_EQ(t.Values(7, 12), (Ints{5, 6, 7, 8, 9}));
    n.Insert(4, 3);
    EXPECT_EQ(n.Bounds(), (Ints{4, 7}));
    EXPECT_EQ(n.Alloc(), (Ints{1, 10}));
}

TEST(Array, DeleteAnnouncesFirstAndKeepsItsNonPositiveCountFigures) {
    struct Case {
        int index, count;
        Ints fields, bounds, values; // values of indices 0.. afterwards
    };
    const Case cases[] = {
        {3, 2, {3, 2, 5, 3, 5, 2, 2, 3, 3, 2}, {0, 8}, {0, 1, 2, 5, 6, 7, 8, 9}},
        // A count of 0 moves the lower block up one place; a negative count
        // moves it |count| + 1 places and lowers the lower bound.
        {5, 0, {5, 0, 5, 5, 5, 4, 5, 5, 5, 0}, {0, 10}, {0, 0, 1, 2, 3, 4, 6, 7, 8, 9}},
        {5, -2, {5, -2, 5, 5, 5, 2, 5, 3, 3, 2}, {-2, 10}, {0, 1, 2, 0, 1, 2, 6, 7, 8, 9}},
        {0, 10, {0, 10, 10, 0, 0, -1, -1, 0, 0, 10}, {0, 0}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.index) + "," + std::to_string(c.count));
        IntProbe a(0, 10);
        Recorder rec(a);
        a.Delete(c.index, c.count);
        Ints expected = c.fields;
        expected.insert(expected.begin(), 2);
        expected.push_back(10); // nothing had changed yet
        EXPECT_EQ(rec.Take(), std::vector<Ints>{expected});
        EXPECT_EQ(a.Bounds(), c.bounds);
        EXPECT_EQ(a.Values(0, static_cast<int>(c.values.size())), c.values);
    }

    // Requests that leave the bounds do nothing; a shared block is left alone.
    IntProbe a(0, 10), b(a);
    Recorder rec(a);
    for (auto r : {Ints{-1, 1}, Ints{10, 1}, Ints{8, 3}, Ints{2, -3}}) a.Delete(r[0], r[1]);
    EXPECT_TRUE(rec.Take().empty());
    a.Delete(3, 2);
    EXPECT_EQ(a.Values(), (Ints{0, 1, 2, 5, 6, 7, 8, 9}));
    EXPECT_EQ(b.Values(), (Ints{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));

    // Clear announces after the storage went, and only when there was some.
    rec.Take();
    IntProbe c(2, 6);
    Recorder rc(c);
    c.Clear();
    c.Clear();
    EXPECT_EQ(rc.Take(), (std::vector<Ints>{{2, 2, 4, 0, 0, 0, 0, 0, 0, 2, 4, 0}}));
}

TEST(Array, ChangeBoundsAnnouncesOnlyANewBlockAndNeverOverflows) {
    IntProbe a(0, 10);
    Recorder rec(a);
    a.ChangeBounds(-5, 15);
    EXPECT_TRUE(rec.Take().empty());
    a.ChangeBounds(0, 25);
    EXPECT_EQ(rec.Take(), (std::vector<Ints>{Code3(25)}));
    EXPECT_EQ(a.Values(0, 10), (Ints{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    a.ChangeBounds(3, 3);
    EXPECT_EQ(a.Buf(), nullptr);
    EXPECT_EQ(rec.Take(), (std::vector<Ints>{Code3(0)}));

    // Against a block whose bounds are empty, one end of a request is kept.
    IntProbe b(0, 10);
    EXPECT_EQ(b.CreateBuffer(5, 5), nullptr);
    b.Buf()->m_Upper = 0;
    b.CreateBuffer(0, 5);
    EXPECT_EQ(b.Bounds(), (Ints{4, 5}));
    b.Buf()->m_Lower = b.Buf()->m_Upper = 7;
    b.CreateBuffer(2, 7);
    EXPECT_EQ(b.Bounds(), (Ints{2, 3}));

    // Reservations are kept within int; one that cannot be counted fails.
    IntProbe c;
    c.ChangeBounds(INT_MIN + 10, INT_MAX - 10);
    EXPECT_EQ(c.Buf(), nullptr);
    c.ChangeBounds(INT_MAX - 5, INT_MAX);
    EXPECT_EQ(c.Alloc(), (Ints{INT_MAX - 10, INT_MAX}));
    c[INT_MAX - 1] = 3;
    EXPECT_EQ(c.FastGetAt(INT_MAX - 1), 3);
}

// A non-trivially-copyable element takes the element loop everywhere.
struct Box {
    int v = 0;
    Box() = default;
    Box(const Box&) = default;
    explicit Box(int i) : v(i) {}
    Box& operator=(const Box& o) { return v = o.v, *this; }
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

TEST(ArrayIterator, FollowsInsertsAndDeletesButNotBoundsChanges) {
    IntProbe a(0, 10), b(0, 10);
    SCC_Array<int>::Iterator at3, at7, atEnd, at5, at6, past;
    EXPECT_EQ(at3.GetPosition(), 0x7FFFFFFF);
    at3.SetArray(&a, 3);
    at7.SetArray(&a, 7);
    atEnd.SetArray(&a, 10);
    a.Insert(5, 2);
    EXPECT_EQ((Ints{at3.GetPosition(), at7.GetPosition(), *at7, atEnd.GetPosition()}),
              (Ints{3, 9, 7, 10}));

    at5.SetArray(&b, 5);
    at6.SetArray(&b, 6);
    past.SetArray(&b, 10);
    b.Delete(5, 1);
    EXPECT_EQ((Ints{at5.GetPosition(), at6.GetPosition(), past.GetPosition()}),
              (Ints{0x7FFFFFFF, 5, 9})); // one past the moved block moves with it
    b.ChangeBounds(0, 100);
    b.Insert(-1, -2);
    EXPECT_EQ(at6.GetPosition(), 5);

    SCC_Array<int>::Iterator at0, at4;
    at0.SetArray(&b, 0);
    at4.SetArray(&b, 4);
    b.Clear(); // the zeroed block fields take position 0 in
    EXPECT_EQ((Ints{at0.GetPosition(), at4.GetPosition()}), (Ints{0, 0x7FFFFFFF}));

    // Reads and writes go through the writable access.
    IntProbe c(-4, 4);
    SCC_Array<int>::Iterator it, outlives;
    it.SetArray(&c);
    EXPECT_EQ((Ints{it.GetPosition(), *it, ++it, --it}), (Ints{-4, -4, -3, -4}));
    it.SetArray(&c, 6);
    it = 42;
    EXPECT_EQ(c.Bounds(), (Ints{-4, 7}));
    EXPECT_EQ(c.FastGetAt(6), 42);
    it.SetArray(nullptr, 1); // stored; the position and the chain stay
    EXPECT_EQ(it.GetPosition(), 6);
    EXPECT_EQ(it.GetRoot(), &c.m_Event);
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

std::vector<std::string> sites;
int OnFailure(int, int* data) {
    auto* r = reinterpret_cast<SSM::AssertData*>(data);
    std::string site = std::string(r->File.GetString()) + ":" + std::to_string(r->Line);
    if (r->Message != "Message not available") site += std::string(" ") + r->Message.GetString();
    sites.push_back(site);
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
    EXPECT_EQ(bare.Comp(1, 2), 0);
    bare.Swap(1, 2);
    bare.CopyData(nullptr, 0, 0, 1);
    EXPECT_EQ(bare.IsValid(), 0);
    EXPECT_EQ(TakeSites(),
              (Sites{"scc/scc_arr:153 _SCC_Array::Comp is called.",
                     "scc/scc_arr:156 _SCC_Array::Swap is called.", "scc/scc:742", "scc/scc:486"}));

    // The buffer test is reversed on purpose: spare slots below fail it.
    IntProbe a(10L), t(-10, 0);
    EXPECT_EQ(a.IsValid(), 0);
    EXPECT_EQ(TakeSites(), (Sites{"scc/scc:472", "scc/scc:486"}));
    t.ChangeBounds(-20, 5);
    EXPECT_EQ(t.IsValid(), 1);
    t.Buf()->m_Upper = 30;
    EXPECT_EQ(t.Buf()->IsValid(), 0);
    EXPECT_EQ(TakeSites(), (Sites{"scc/scc:475"}));

    // Unchecked reads report and neither grow nor unshare.
    IntProbe r(0, 3), shared(r), empty;
    r.FastGetAt(5) = 9;
    r.FastGetAt(100); // no storage there: a scratch element stands in
    const IntProbe& cr = r;
    EXPECT_EQ(cr[5] + cr[2], 11);
    empty.FastGetAt(0);
    EXPECT_EQ(TakeSites(),
              (Sites{"scc/scc_arr:399", "scc/scc_arr:399", "scc/scc_arr:406", "scc/scc_arr:399"}));
    EXPECT_EQ(r.GetCount(), 3);
    EXPECT_EQ(r.Buf(), shared.Buf());

    SCC_Array<int>::Iterator it;
    EXPECT_EQ(it.OnNotification(1, nullptr), 0);
    EXPECT_EQ(TakeSites(), (Sites{"scc/scc_arr:255"}));
}

} // namespace
