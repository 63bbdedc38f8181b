// Tests of the notification chains: order, re-entrancy, moving copies.
#include <keel/SCC_Event.h>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>

namespace {

using H = SCC_EventHook<int>;
std::string g_log;

// A listener that logs its name and then runs an optional action.
struct Rec : SCC_EventNode<int> {
    char name;
    std::function<void()> action;
    explicit Rec(char n) : name(n) {}
    int OnNotification(int, int*) override {
        g_log += name;
        if (action) action();
        return 7;
    }
};

template <char C> int Log(int, int*) { return g_log += C, 0; }

H& Hook(H& h, int (*cb)(int, int*), long prio) { return h.SetCallback(cb), h.SetPriority(prio), h; }

std::string Deliver(SCC_Event<int>& ev) {
    g_log.clear();
    EXPECT_EQ(0, ev.Notify(0, nullptr));
    EXPECT_EQ(nullptr, ev.root); // the cursor stack is empty again
    return g_log;
}

bool Detached(SCC_EventNode<int>& n) { return !n.GetRoot() && n.prev == &n && n.next == &n; }

} // namespace

TEST(Event, PriorityOrderEnableAndDestruction) {
    H h1, h2, h3;
    Rec p('P'), t('T');
    {
        SCC_Event<int> ev;
        EXPECT_EQ("", Deliver(ev));
        Hook(h1, Log<'a'>, 5).Attach(&ev), Hook(h2, Log<'b'>, 10).Attach(&ev);
        Hook(h3, Log<'c'>, 5).Attach(&ev);
        {
            H gone; // leaves the chain when destroyed
            Hook(gone, Log<'x'>, 7).Attach(&ev);
        }
        EXPECT_EQ("bca", Deliver(ev)); // 10, then the newer 5, then the older 5

        // Plain nodes report the top priority: a lower hook never goes ahead
        // of them, an equal one does.  Append puts a node at the tail regardless.
        p.InsertBefore(ev.next);
        p.root = &ev;
        Hook(h1, Log<'a'>, 20).Attach(&ev); // re-attaching moves the hook
        Hook(h3, Log<'c'>, 0x7FFFFFFFL).Attach(&ev);
        ev.Append(&t);
        EXPECT_EQ(&ev, t.GetRoot());
        EXPECT_EQ("cPabT", Deliver(ev));
        EXPECT_EQ(1, ev.Enable(0));
        EXPECT_EQ("", Deliver(ev));
        EXPECT_EQ(0, ev.Enable(1));
        p.action = [&] { ev.Enable(0); }; // stops before the next node
        EXPECT_EQ("cP", Deliver(ev));
        h1.Attach(nullptr);
        EXPECT_TRUE(Detached(h1));
        ev.Append(nullptr);
    } // the event's destruction detaches its nodes
    EXPECT_TRUE(Detached(h2) && Detached(h3) && Detached(p) && Detached(t));
}

TEST(Event, DetachDuringDelivery) {
    SCC_Event<int> ev;
    Rec a('A'), b('B'), c('C'), d('D');
    auto chain = [&] {
        a.action = b.action = c.action = nullptr;
        ev.Append(&a), ev.Append(&b), ev.Append(&c);
    };
    // Who acts during the delivery to A, B, C, and what is delivered.
    const std::tuple<Rec*, std::function<void()>, const char*> cases[] = {
        {&a, [&] { b.Remove(); }, "AC"},
        {&a, [&] { a.Remove(); }, "AC"}, // the successor of a self-detaching node is skipped once
        {&c, [&] { c.Remove(); }, "ABCAB"}, // the last node leaving wraps the delivery round
        {&b, [&] { ev.RemoveAll(); }, "AB"}};
    for (const auto& [node, action, delivered] : cases) {
        chain();
        node->action = action;
        EXPECT_EQ(delivered, Deliver(ev));
    }
    EXPECT_TRUE(Detached(a) && Detached(b) && Detached(c));

    // A nested delivery runs the whole chain before the outer one resumes,
    // and a removal inside it moves the outer cursor too.
    chain();
    ev.Append(&d);
    int depth = 0;
    b.action = [&] {
        if (depth++ == 0) ev.Notify(0, nullptr);
    };
    EXPECT_EQ("ABABCDCD", Deliver(ev));
    depth = 0;
    a.action = [&] {
        if (depth == 1) b.Remove();
    };
    EXPECT_EQ("ABACDD", Deliver(ev));

    // A throwing node pops the cursor; the exception passes on.
    a.action = [] { throw std::runtime_error("x"); };
    EXPECT_THROW(ev.Notify(0, nullptr), std::runtime_error);
    EXPECT_EQ(nullptr, ev.root);
}

TEST(Event, CopiesMoveTheChain) {
    SCC_Event<int> src;
    Rec a('A'), b('B');
    src.Append(&a), src.Append(&b);
    src.Enable(0);
    SCC_Event<int> moved(src);
    EXPECT_EQ(0, moved.Enable(1)); // the copy takes `enabled`...
    EXPECT_EQ("", Deliver(src));
    EXPECT_EQ("AB", Deliver(moved));
    EXPECT_EQ(&src, a.GetRoot()); // ...and leaves the roots naming the source

    SCC_Event<int> target;
    Rec t('T');
    target.Append(&t);
    moved.Enable(0);
    target = moved;
    // Assignment keeps its own `enabled` and renames the roots.
    EXPECT_TRUE(Detached(t) && target.enabled == 1 && b.GetRoot() == &target);
    EXPECT_EQ("", Deliver(moved));
    SCC_Event<int>& self = target;
    target = self;
    EXPECT_EQ("AB", Deliver(target));

    // Detaching from a copy whose roots name another event still ends.
    SCC_Event<int> again(target);
    a.action = [&] { a.Remove(); };
    EXPECT_EQ("A", Deliver(again));
}

// Records whether OnRemoveNode sees the node still linked.
struct WatchEvent : SCC_Event<int> {
    std::string seen;
    void OnRemoveNode(SCC_EventNode<int>* node) override {
        seen += node->prev->next == node ? 'L' : 'U';
        SCC_Event<int>::OnRemoveNode(node);
    }
};

TEST(Event, NodeCopyIsShallowAndAssignmentInserts) {
    WatchEvent ev;
    Rec a('A'), b('B'), c('C');
    ev.Append(&a), ev.Append(&b), ev.Append(&c);
    Rec copy(b); // not reached: the neighbours do not point back at it
    EXPECT_EQ(&ev, copy.root);
    EXPECT_EQ("ABC", Deliver(ev));
    // Detaching the copy tells b's event about the copy and joins b's
    // neighbours: b drops out of the ring with stale links.
    copy.Remove();
    EXPECT_TRUE(ev.seen == "U" && Detached(copy) && b.root == &ev);
    EXPECT_EQ("AC", Deliver(ev));

    SCC_EventNode<int>& asNode = c;
    asNode = a; // leaves its place, joins just before a
    EXPECT_TRUE(ev.seen == "UL" && c.root == &ev);
    EXPECT_EQ("CA", Deliver(ev));
    b.root = nullptr; // keep b's destructor off its stale links
    b.prev = b.next = &b;
}

TEST(Event, HookCopiesAndObjectHooks) {
    SCC_Event<int> ev;
    H low, high, other;
    Hook(low, Log<'a'>, 1).Attach(&ev), Hook(high, Log<'b'>, 9).Attach(&ev);
    H copy(low); // just before its source, whatever its priority
    Hook(other, Log<'c'>, 0).Attach(&ev);
    other = high;
    EXPECT_TRUE(copy.GetRoot() == &ev && copy.prev == &high && copy.next == &low);
    EXPECT_TRUE(copy.GetPriority() == 1 && other.GetPriority() == 9);
    EXPECT_EQ("bbaa", Deliver(ev));

    struct Obj {
        int seen = 0;
        int Handle(int code, int* data) { return seen = code * 100 + *data; }
    } o;
    SCC_ObjectEventHook<Obj, int> oh;
    EXPECT_TRUE(Detached(oh) && oh.GetPriority() == 0);
    oh.SetObject(&o), oh.SetMethod(&Obj::Handle);
    SCC_ObjectEventHook<Obj, int> oc(oh);
    int d = 4;
    EXPECT_EQ(304, oc.OnNotification(3, &d));
    SCC_Notifier n;
    oc.Attach(&n);
    SCC_Notifier n2(n), n3;
    n3 = n2;
    n3.Notify(2, &d);
    EXPECT_TRUE(oc.GetRoot() == &n3 && o.seen == 204);
}
