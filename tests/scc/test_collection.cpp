// Tests of the standard collection over a small in-memory board store.
#include "tests/scc/board_store.h"

#include <gtest/gtest.h>

namespace {

typedef std::vector<std::pair<int, int>> Heard;
typedef std::vector<int> Ints;
typedef std::vector<long> Longs;
const auto kFocus = &SCC_StdCollection::GetFocus;

// The items (or, with kFocus, the focused handles) up to the first 0.
Ints List(SCC_StdCollection& c, int (SCC_StdCollection::*at)(long) = &SCC_StdCollection::GetAt) {
    Ints out;
    for (long i = 0; (c.*at)(i); ++i) out.push_back((c.*at)(i));
    return out;
}

// clk(3) gnd(1) vcc(2) by name; widths 5, 10, 20.
struct Board : ::testing::Test {
    BoardStore store;
    std::unique_ptr<BoardCollection> c;
    std::unique_ptr<Listener> heard;
    void SetUp() override {
        store.Put(1, "gnd", 10);
        store.Put(2, "vcc", 20);
        store.Put(3, "clk", 5);
        c.reset(new BoardCollection(&store));
        c->SetSort(new ByName(&store), 0);
        c->AllowReload(1);
        heard.reset(new Listener(c->GetChangeEvent()));
    }
    // Handled notifications leave no current item and the host slider at 0.
    void ExpectNoCurrent() {
        EXPECT_EQ((Longs{0x7FFFFFFF, 1, 0}), (Longs{c->GetPosition(), c->IsEmpty(), c->slider}));
    }
};

struct MinWidth : SYS_Filter {
    MinWidth(BoardStore* s, int m) : store(s), min(m) {}
    int IsTrue(int h) const override { return store->Find(h) && store->Find(h)->width >= min; }
    BoardStore* store;
    int min;
};

TEST_F(Board, IteratesInSortOrderAndFindsByLinearScan) {
    // Ordered by name, not by handle: only a scan finds handle 1 at index 1.
    EXPECT_EQ((Ints{3, 1, 2}), List(*c));
    EXPECT_EQ(1, c->IsEmpty()) << "items but no current item";
    Ints walked;
    for (int more = c->GetFirst(); more; more = c->GetNext()) walked.push_back(c->slider);
    EXPECT_EQ((Ints{3, 1, 2, 1}), (walked.push_back(c->IsEmpty()), walked));
    c->SetPosition(2);
    EXPECT_EQ((Ints{0, 1, 1}), (Ints{c->IsEmpty(), c->GetPrev(), c->slider}));
    EXPECT_EQ((Longs{1, -1, -1, 0, 0}),
              (Longs{c->GetPositionByHandle(1), c->GetPositionByHandle(0),
                     c->GetPositionByHandle(99), c->GetAt(3), c->GetAt(-1)}));
    c->SetSlider(99);
    EXPECT_EQ((Ints{0, 1}), (Ints{c->slider, c->IsEmpty()}));
}

TEST_F(Board, FollowsAndAnnouncesAdditionsChangesAndDeletions) {
    store.Add(4, "dat", 1);
    EXPECT_EQ((Ints{3, 4, 1, 2}), List(*c));
    EXPECT_EQ(1, ChainLength(store.Find(4)->event)) << "the collection listens to the new item";
    ExpectNoCurrent();
    store.Rename(1, "gnd2"); // keeps its place
    store.Rename(3, "zz");   // moves to the end
    EXPECT_EQ((Ints{4, 1, 2, 3}), List(*c));
    store.Tell(2, SCC_ObjectRedrawn);
    store.Tell(2, SCC_ObjectUnused);
    // A moved item's hook is made anew while its event is delivering; as the
    // only node it is where the delivery wraps round to, so it hears the
    // change once more and, in its place now, announces 3.
    EXPECT_EQ((Heard{{1, 4}, {3, 1}, {2, 3}, {1, 3}, {3, 3}, {4, 2}}), heard->heard);

    c->SetFocus(2, true);
    c->SetHandleData(2, 7);
    heard->heard.clear();
    store.Remove(2);
    EXPECT_EQ((Ints{4, 1, 3}), List(*c));
    EXPECT_EQ((Ints{0, 0}), (Ints{c->HasFocus(), c->GetHandleData(2)}));
    EXPECT_EQ((Heard{{2, 2}}), heard->heard);
    ExpectNoCurrent();

    store.changes.Notify(SCC_CollectionCleared, nullptr);
    EXPECT_TRUE(List(*c).empty() && c->m_Hooks.empty());
    EXPECT_EQ(0, ChainLength(store.Find(1)->event));
}

TEST_F(Board, DescendingSortStillInsertsAscending) {
    c->SetSort(new ByName(&store), 1);
    store.Add(4, "dat", 1);
    EXPECT_EQ((Ints{3, 4, 1, 2}), List(*c));
}

TEST_F(Board, FilterDropsItemsThatStopPassing) {
    MinWidth wide(&store, 10);
    c->SetFilter(&wide);
    EXPECT_EQ((Ints{1, 2}), List(*c));
    heard->heard.clear();
    store.Find(1)->width = 1;
    store.Tell(1, SCC_ObjectChanged);
    EXPECT_EQ((Ints{2}), List(*c));
    EXPECT_EQ((Heard{{2, 1}}), heard->heard) << "removed, not added back";
    // A handle that neither passes nor is listed is ignored: not even queued.
    c->Suspend(1);
    for (int h : {3, 99}) EXPECT_EQ(0, c->OnNotification(SCC_ObjectDeleted, SCC_HandleToData(h)));
    EXPECT_TRUE(c->m_Queue.empty());
}

TEST_F(Board, SuspensionQueuesAndReplaysLastFirstOncePerHandle) {
    c->Suspend(1);
    store.Tell(1, SCC_ObjectRedrawn);
    store.Tell(1, SCC_ObjectRedrawn); // identical to the last entry: queued once
    store.Tell(2, SCC_ObjectRedrawn);
    store.Rename(1, "gnd1"); // keeps its place
    EXPECT_EQ(3u, c->m_Queue.size());
    EXPECT_TRUE(heard->heard.empty());
    c->Suspend(0);
    EXPECT_EQ((Heard{{3, 1}, {4, 2}}), heard->heard) << "1 hears only its latest";
    EXPECT_TRUE(c->m_Queue.empty());

    c->Suspend(1);
    store.Tell(2, SCC_ObjectRedrawn);
    store.Put(5, "new", 1);
    store.changes.Notify(SCC_CollectionReload, nullptr); // flushes and reloads at once
    EXPECT_EQ((Longs{0, 4}), (Longs{long(c->m_Queue.size()), long(List(*c).size())}));
    store.Tell(2, SCC_ObjectRedrawn);
    store.changes.Notify(SCC_CollectionCleared, nullptr); // flushes and clears at once
    EXPECT_EQ((Longs{0, 0}), (Longs{long(c->m_Queue.size()), long(List(*c).size())}));
}

TEST_F(Board, RenumberingUpdatesItemsFocusAndQueue) {
    c->SetFocus(1, true);
    c->SetFocus(3, true);
    store.objects[0x40] = std::move(store.objects[1]);
    store.objects.erase(1);
    c->renumber = {{1, 0x40}, {2, 0x20}};
    // Queued while suspended; replayed first, it renumbers what is still
    // queued behind it.
    c->Suspend(1);
    store.Tell(2, SCC_ObjectRedrawn);
    store.changes.Notify(SCC_HandlesUpdated, nullptr);
    EXPECT_EQ(2u, c->m_Queue.size());
    c->Suspend(0);
    EXPECT_EQ((Ints{3, 0x40, 0x20}), List(*c));
    EXPECT_EQ((Ints{3, 0x40}), List(*c, kFocus));
    EXPECT_EQ((Heard{{8, 0}, {4, 0x20}}), heard->heard);
}

TEST_F(Board, FocusCanListAHandleTwiceAndSingleSelectionAnnounces) {
    c->SetFocus(1, true);
    c->SetFocus(1, true);
    EXPECT_EQ((Ints{1, 1}), List(*c, kFocus));
    c->SetFocus(99, false); // not listed: clears and does nothing else
    EXPECT_EQ(0, c->HasFocus());
    EXPECT_TRUE(heard->heard.empty());

    c->SetSlider(3);
    c->SetFocus(2, false);
    EXPECT_EQ((Heard{{3, 2}}), heard->heard);
    EXPECT_EQ(3, c->slider) << "the remembered slider is back";
    EXPECT_EQ(0x7FFFFFFF, c->GetPosition());
    long at = -1;
    EXPECT_EQ((Longs{1, 0, 0}), (Longs{c->IsInFocus(2, &at), at, c->IsInFocus(1, nullptr)}));
}

TEST_F(Board, HandleDataIsAnnouncedOnTheSourceEventAndNotificationsSwitchOff) {
    Listener source(&store.changes);
    c->SetHandleData(1, 42);
    EXPECT_EQ((Ints{42, 0}), (Ints{c->GetHandleData(1), c->GetHandleData(2)}));
    EXPECT_EQ((Heard{{3, 1}}), source.heard);
    EXPECT_EQ((Heard{{3, 1}}), heard->heard) << "heard back from the source";

    heard->heard.clear();
    EXPECT_EQ(1, c->EnableNotifications(0));
    store.Rename(1, "gnd1");
    EXPECT_TRUE(heard->heard.empty());
    EXPECT_EQ(0, c->EnableNotifications(1));
    store.Rename(1, "gnd2");
    EXPECT_EQ((Heard{{3, 1}}), heard->heard);
}

TEST_F(Board, ReloadAnnouncesOnlyRealChangesAndTracksTemporaryItems) {
    c->AllowReload(0);
    c->AllowReload(1);
    EXPECT_TRUE(heard->heard.empty()) << "same items: nothing announced";
    store.Put(4, "dat", 1);
    c->SetFocus(2, true);
    c->SetFocus(3, true);
    store.objects.erase(3); // silently: only a reload notices
    c->AllowReload(1);      // no 0 -> 1 change: no reload
    EXPECT_EQ((Ints{3, 1, 2}), List(*c));
    c->AllowReload(0);
    c->AllowReload(1);
    EXPECT_EQ((Heard{{6, 0}}), heard->heard);
    EXPECT_EQ(3u, List(*c).size());
    EXPECT_EQ((Ints{2}), List(*c, kFocus)) << "the focus keeps only handles still listed";

    c->Clear();
    EXPECT_TRUE(List(*c).empty());
    EXPECT_EQ(0, c->IsReloadAllowed());
    heard->heard.clear();
    MinWidth wide(&store, 15);
    c->m_Filter = &wide;
    EXPECT_EQ(2, c->FindNextTempItem(0)) << "the first host object that passes";
    store.objects.clear();
    c->AllowReload(0);
    EXPECT_EQ(0, c->m_HasTempItems);
    store.Put(7, "x", 50);
    c->AllowReload(0);
    EXPECT_EQ(1, c->m_HasTempItems);
    EXPECT_EQ((Heard{{3, 0}, {3, 0}}), heard->heard);
}

TEST_F(Board, ParentFocusGatesParentNotifications) {
    c->AllowReload(0);
    BoardCollection child(&store, c.get());
    EXPECT_EQ(1, c->IsReloadAllowed()) << "a child switches its parent's reloading on";
    EXPECT_EQ((Ints{1, 0}), (Ints{child.HandleNotificationsAllowed(0),
                                  c->HandleNotificationsAllowed(1)})); // no parent
    child.SetSort(new ByName(&store), 0);
    child.AllowReload(1);
    Listener childHeard(child.GetChangeEvent());
    store.Put(4, "dat", 1);
    c->OnNotification(SCC_ObjectRedrawn, SCC_HandleToData(2)); // 2 is not focused
    EXPECT_TRUE(childHeard.heard.empty());
    c->SetFocus(1, false); // the parent announces 3 for its focused handle
    EXPECT_EQ((Heard{{6, 0}}), childHeard.heard) << "the child reloaded";
    // A deletion under the parent's focus deletes what the child's walk
    // from the parent's slider yields: here every object, in host order.
    childHeard.heard.clear();
    child.OnParentNotification(SCC_ObjectDeleted, SCC_HandleToData(1));
    EXPECT_EQ((Heard{{2, 1}, {2, 2}, {2, 3}, {2, 4}}), childHeard.heard);
    EXPECT_TRUE(List(child).empty());
    child.AllowReload(0);
    child.AllowReload(1);
    c->OnNotification(SCC_CollectionCleared, nullptr);
    EXPECT_TRUE(List(child).empty());
}

TEST_F(Board, ObjectsCollectionsAndParentsDieInAnyOrder) {
    {
        auto parent = std::make_unique<BoardCollection>(&store);
        BoardCollection child(&store, parent.get());
        parent.reset();
        EXPECT_EQ(nullptr, child.m_Parent);
        child.AllowReload(1);
    }
    {
        BoardCollection early(&store);
        early.AllowReload(1);
        store.objects.erase(2); // its event goes first
    }
    c.reset(); // before the objects' events
    store.Rename(1, "late");
    EXPECT_EQ(0, ChainLength(store.Find(1)->event));
    heard.reset();
}

TEST_F(Board, CopiesListenThroughHooksOfTheirOwn) {
    c->SetFocus(1, true);
    BoardCollection copy(*c);
    EXPECT_EQ(List(*c), List(copy));
    EXPECT_EQ((Ints{1}), List(copy, kFocus));
    EXPECT_EQ(2, ChainLength(store.Find(1)->event));
    Listener copyHeard(copy.GetChangeEvent());
    c.reset();
    store.Rename(3, "zz");
    EXPECT_EQ((Ints{1, 2, 3}), List(copy));
    EXPECT_EQ((Heard{{2, 3}, {1, 3}, {3, 3}}), copyHeard.heard);

    BoardStore other;
    BoardCollection assigned(&other);
    assigned = copy;
    EXPECT_EQ(List(copy), List(assigned));
    EXPECT_EQ(2, ChainLength(store.Find(1)->event));
    EXPECT_EQ(0, ChainLength(other.changes));
    heard.reset();
}

} // namespace
