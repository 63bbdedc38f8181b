// Tests of the pointer lists and the self-aware reference list.
#include <keel/SCC_List.h>
#include <keel/SSM.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

typedef SCC_DListRefNode N;
typedef std::vector<N*> NodeVec;
NodeVec Nodes(const SCC_RefDList& l) { return NodeVec(l.begin(), l.end()); }

struct LengthProbe : SCC_SList<int> {
    using SCC_SList<int>::CheckLength;
};

TEST(List, PlainListsSearchByPointer) {
    int a = 1, b = 2, c = 3, stranger = 9;
    SCC_DList<int> l;
    EXPECT_EQ(l.RemoveHead(), nullptr);
    l.AddTail(&c), l.AddHead(&a);
    EXPECT_EQ(l.InsertBefore(&c, &b), &b);
    EXPECT_EQ(l.InsertAfter(&stranger, &a), &a); // returned though nothing happened
    EXPECT_EQ((std::vector<int*>{l.Next(&a), l.Prev(&c), l.Next(&stranger), l.Prev(&stranger),
                                 l.Next(&c), l.Prev(&a)}),
              (std::vector<int*>{&b, &b, nullptr, nullptr, nullptr, nullptr}));
    SCC_DList<int>::iterator at = l.InsertBefore(std::next(l.begin()), &c);
    EXPECT_EQ(at, std::next(l.begin()));
    l.Remove(&c); // only the first occurrence goes
    EXPECT_EQ(std::vector<int*>(l.begin(), l.end()), (std::vector<int*>{&a, &b, &c}));
    EXPECT_EQ(l.RemoveTail(), &c);
    EXPECT_NO_THROW(LengthProbe::CheckLength(4, 5));
    EXPECT_THAT([] { LengthProbe::CheckLength(5, 5); },
                testing::ThrowsMessage<std::length_error>(testing::StrEq("list<T> too long")));
}

TEST(RefList, NodesMoveBetweenListsAndCopiesJoinBesideTheOriginal) {
    SCC_RefDList a, b, other;
    N n1, n2, n3;
    a.AddTail(&n1), a.AddTail(&n2), b.AddHead(&n3);
    b.AddTail(&n1); // leaves a
    EXPECT_EQ(Nodes(a), NodeVec{&n2});
    b.InsertAfter(&n3, &n2);
    b.InsertBefore(&n3, &n1); // within one list
    EXPECT_EQ(Nodes(b), (NodeVec{&n1, &n3, &n2}));
    EXPECT_EQ(a.Remove(&n3), &n3); // leaves b, whichever list is asked
    EXPECT_EQ(n3.GetList(), nullptr);
    // Next to a node of another list, n3 only comes to name the list.
    N stranger(&other);
    a += n3;
    b.InsertBefore(&stranger, &n3);
    EXPECT_EQ(n3.GetList(), &b);
    EXPECT_EQ(a.IsEmpty(), 1);
    EXPECT_EQ(Nodes(b), (NodeVec{&n1, &n2}));
    EXPECT_EQ(a.IsValid() + b.IsValid(), 2);

    SCC_RefDList l, m;
    N x(&l), y(&l); // y is the head
    N copy(x), loose, c(&m);
    N looseCopy(loose);
    EXPECT_EQ(Nodes(l), (NodeVec{&y, &copy, &x}));
    EXPECT_EQ(looseCopy.GetList(), nullptr);
    c = y; // leaves m, lands before y
    N& self = c;
    c = self;
    EXPECT_EQ(m.IsEmpty(), 1);
    EXPECT_EQ(Nodes(l), (NodeVec{&c, &y, &copy, &x}));
    c = loose;
    EXPECT_EQ(c.GetList(), nullptr);
    { N doomed(&l); } // leaves the list on destruction
    EXPECT_EQ(Nodes(l), (NodeVec{&y, &copy, &x}));
}

// Answers with its code, id and whether data came, and may leave its list.
struct Counter : N {
    int id, calls = 0;
    bool leave = false;
    Counter* victim = nullptr; // destroyed by the handler
    explicit Counter(int i) : id(i) {}
    int OnNotification(int code, void* data) override {
        ++calls;
        delete victim;
        victim = nullptr;
        if (leave) GetList()->Remove(this);
        return code * 10 + id + (data ? 100 : 0);
    }
};

TEST(RefList, NotifyNodesAndListCopies) {
    SCC_RefDList l, k;
    EXPECT_EQ(l.NotifyNodes(5, nullptr), 0);
    N a(&l), b(&l), c(&l);
    EXPECT_EQ(l.NotifyNodes(5, nullptr), 5);
    Counter x(1), y(2);
    k.AddTail(&x), k.AddTail(&y);
    x.leave = true; // a handler may take its node out; y still answers last
    EXPECT_EQ(k.NotifyNodes(7, &k), 172);
    EXPECT_EQ(Nodes(k), NodeVec{&y});
    EXPECT_EQ(x.calls + y.calls, 2);
    x.leave = false; // a handler may also destroy the element after its own
    k.AddHead(&x);
    x.victim = new Counter(3);
    k.InsertAfter(&x, x.victim);
    EXPECT_EQ(k.NotifyNodes(1, nullptr), 12);
    EXPECT_EQ(Nodes(k), (NodeVec{&x, &y}));
    k.Remove(&x);

    N old(&k);
    k = l;
    EXPECT_EQ(Nodes(k), Nodes(l));
    EXPECT_EQ(a.GetList(), &k);
    EXPECT_TRUE(old.GetList() == nullptr && y.GetList() == nullptr); // no stale pointer to k
    EXPECT_EQ(k.IsValid() * 10 + l.IsValid(), 10);
    {
        SCC_RefDList copy(k); // the elements keep naming k
        EXPECT_EQ(a.GetList(), &k);
    } // the copy's destruction takes them out of k, and ends
    EXPECT_EQ(k.IsEmpty(), 1);
    EXPECT_EQ(a.GetList(), nullptr);
    l.RemoveAll(); // its elements name no list: it empties all the same
    EXPECT_EQ(l.IsEmpty(), 1);
}

// Collects the sites ("file:line ") of the failures a manager handles.
struct SiteLog : SCC_ObjectEventHook<SiteLog, int> {
    SSM manager;
    std::string sites;
    SiteLog() { SetObject(this), SetMethod(&SiteLog::On), Attach(&manager.FailureEvent); }
    int On(int, int* data) {
        auto* r = reinterpret_cast<SSM::AssertData*>(data);
        sites += std::string(r->File.GetString()) + ":" + std::to_string(r->Line) + " ";
        return 0;
    }
    std::string Take() { return std::exchange(sites, ""); }
};

TEST(RefList, NullNodesAreReportedAndMergeCountsThisList) {
    SiteLog log;
    SCC_RefDList l;
    N a(&l), b;
    l.AddTail(nullptr);
    l.AddHead(nullptr);
    l.InsertBefore(nullptr, nullptr);
    l.InsertAfter(&a, nullptr);
    l.InsertAfter(nullptr, &b); // b only comes to name the list
    EXPECT_EQ(log.Take(), "scc/scc:291 scc/scc:239 scc/scc:300 scc/scc:239 scc/scc:271 "
                          "scc/scc:272 scc/scc:239 scc/scc:282 scc/scc:239 scc/scc:281 ");
    EXPECT_EQ(Nodes(l), NodeVec{&a});
    l.RemoveAll();
    EXPECT_EQ(log.Take(), "");
    EXPECT_EQ(l.RemoveTail(), nullptr); // Remove(null) on an empty list
    EXPECT_EQ(log.Take(), "scc/scc:318 scc/scc:239 ");

    // Merge depends on this list's count.
    SCC_RefDList into, from;
    N m1(&from), m2(&from);
    into.Merge(from); // an empty list takes nothing
    EXPECT_EQ(from.GetCount(), 2);
    N first(&into);
    into.Merge(from);
    EXPECT_EQ(Nodes(into), (NodeVec{&first, &m2, &m1}));
    EXPECT_EQ(log.Take(), "scc/scc:318 scc/scc:239 "); // the null element after the last
    into.Merge(into);
    EXPECT_EQ(into.GetCount(), 3);
    // Elements of a copied list name another list; merging them still ends.
    SCC_RefDList copy(into), target;
    N t(&target);
    target.Merge(copy);
    EXPECT_EQ(Nodes(target), (NodeVec{&t, &first, &m2, &m1}));
    EXPECT_EQ(copy.IsEmpty() + into.IsEmpty() + target.IsValid(), 3);
}

} // namespace
