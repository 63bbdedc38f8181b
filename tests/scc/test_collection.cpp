// Tests of the standard collection over a small in-memory board store.
#include "tests/scc/board_store.h"

#include <gtest/gtest.h>

namespace {

typedef std::vector<std::pair<int, int>> Heard;

std::vector<int> Items(SCC_StdCollection& c) {
    std::vector<int> out;
    for (long i = 0; c.GetAt(i); ++i) out.push_back(c.GetAt(i));
    return out;
}

int ChainLength(SCC_Notifier& e) {
    int n = 0;
    for (SCC_EventNode<int>* p = e.next; p != &e; p = p->next) ++n;
    return n;
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
        EXPECT_EQ(0x7FFFFFFF, c->GetPosition());
        EXPECT_EQ(1, c->IsEmpty());
        EXPECT_EQ(0, c->slider);
    }
};

struct MinWidth : SYS_Filter {
    BoardStore* store;
    int min;
    MinWidth(BoardStore* s, int m) : store(s), min(m) {}
    int IsTrue(int h) const override {
        BoardObject* o = store->Find(h);
        return o && o->width >= min;
    }
};

TEST_F(Board, IteratesInSortOrderAndFindsByLinearScan) {
    // Ordered by name, not by handle: only a scan finds handle 1 at index 1.
    EXPECT_EQ((std::vector<int>{3, 1, 2}), Items(*c));
    EXPECT_EQ(1, c->IsEmpty()) << "items but no current item";
    std::vector<int> walked;
    for (int more = c->GetFirst(); more; more = c->GetNext()) walked.push_back(c->slider);
    EXPECT_EQ((std::vector<int>{3, 1, 2}), walked);
    EXPECT_EQ(1, c->IsEmpty());
    c->SetPosition(2);
    EXPECT_EQ(0, c->IsEmpty());
    EXPECT_EQ(1, c->GetPrev());
    EXPECT_EQ(1, c->slider);
    EXPECT_EQ(1, c->GetPositionByHandle(1));
    EXPECT_EQ(-1, c->GetPositionByHandle(0));
    EXPECT_EQ(-1, c->GetPositionByHandle(99));
    EXPECT_EQ(0, c->GetAt(3));
    EXPECT_EQ(0, c->GetAt(-1));
    c->SetSlider(99);
    EXPECT_EQ(0, c->slider);
    EXPECT_EQ(1, c->IsEmpty());
}

TEST_F(Board, FollowsAdditionsChangesAndDeletions) {
    store.Put(4, "dat", 1);
    store.AnnounceAdd(4);
    EXPECT_EQ((std::vector<int>{3, 4, 1, 2}), Items(*c));
    EXPECT_EQ(1, ChainLength(store.Find(4)->event)) << "the collection listens to the new item";
    ExpectNoCurrent();

    store.Rename(1, "gnd2"); // keeps its place
    store.Rename(3, "zz");   // moves to the end
    EXPECT_EQ((std::vector<int>{4, 1, 2, 3}), Items(*c));
    store.Find(2)->event.Notify(SCC_ObjectRedrawn, SCC_HandleToData(2));
    store.Find(2)->event.Notify(SCC_ObjectUnused, SCC_HandleToData(2));

    c->SetFocus(2, true);
    c->SetHandleData(2, 7);
    heard->heard.clear();
    store.Remove(2);
    EXPECT_EQ((std::vector<int>{4, 1, 3}), Items(*c));
    EXPECT_EQ(0, c->HasFocus());
    EXPECT_EQ(0, c->GetHandleData(2));
    EXPECT_EQ((Heard{{2, 2}}), heard->heard);
    ExpectNoCurrent();

    store.changes.Notify(SCC_CollectionCleared, nullptr);
    EXPECT_TRUE(Items(*c).empty());
    EXPECT_TRUE(c->m_Hooks.empty());
    EXPECT_EQ(0, ChainLength(store.Find(1)->event));
}

TEST_F(Board, AnnouncesEachNotificationAsItsTableSays) {
    store.Put(4, "dat", 1);
    store.AnnounceAdd(4);
    store.Rename(1, "gnd2");
    store.Rename(3, "zz");
    store.Find(2)->event.Notify(SCC_ObjectRedrawn, SCC_HandleToData(2));
    store.Find(2)->event.Notify(SCC_ObjectUnused, SCC_HandleToData(2));
    // A moved item's hook is made anew while its event is delivering; as the
    // only node it is where the delivery wraps round to, so it hears the
    // change once more and, in its place now, announces 3.
    EXPECT_EQ((Heard{{1, 4}, {3, 1}, {2, 3}, {1, 3}, {3, 3}, {4, 2}}), heard->heard);
}

TEST_F(Board, DescendingSortStillInsertsAscending) {
    c->SetSort(new ByName(&store), 1);
    store.Put(4, "dat", 1);
    store.AnnounceAdd(4);
    EXPECT_EQ((std::vector<int>{3, 4, 1, 2}), Items(*c));
}

TEST_F(Board, FilterDropsItemsThatStopPassing) {
    MinWidth wide(&store, 10);
    c->SetFilter(&wide);
    EXPECT_EQ((std::vector<int>{1, 2}), Items(*c));
    heard->heard.clear();
    store.Find(1)->width = 1;
    store.Find(1)->event.Notify(SCC_ObjectChanged, SCC_HandleToData(1));
    EXPECT_EQ((std::vector<int>{2}), Items(*c));
    EXPECT_EQ((Heard{{2, 1}}), heard->heard) << "removed, not added back";
    // A handle that neither passes nor is listed is ignored: not even queued.
    c->Suspend(1);
    EXPECT_EQ(0, c->OnNotification(SCC_ObjectDeleted, SCC_HandleToData(3)));
    EXPECT_TRUE(c->m_Queue.empty());
    EXPECT_EQ(0, c->OnNotification(SCC_ObjectDeleted, SCC_HandleToData(99)));
    EXPECT_EQ(0u, c->m_Queue.size()) << "99 is rejected by the filter too";
}

TEST_F(Board, SuspensionQueuesAndReplaysLastFirstOncePerHandle) {
    auto redraw = [&](int h) {
        store.Find(h)->event.Notify(SCC_ObjectRedrawn, SCC_HandleToData(h));
    };
    c->Suspend(1);
    redraw(1);
    redraw(1); // identical to the last entry: queued once
    redraw(2);
    store.Rename(1, "gnd1"); // keeps its place
    EXPECT_EQ(3u, c->m_Queue.size());
    EXPECT_TRUE(heard->heard.empty());
    c->Suspend(0);
    EXPECT_EQ((Heard{{3, 1}, {4, 2}}), heard->heard) << "1 hears only its latest";
    EXPECT_TRUE(c->m_Queue.empty());

    c->Suspend(1);
    redraw(2);
    store.Put(5, "new", 1);
    store.changes.Notify(SCC_CollectionReload, nullptr); // flushes and reloads at once
    EXPECT_TRUE(c->m_Queue.empty());
    EXPECT_EQ(4u, Items(*c).size());
    redraw(2);
    store.changes.Notify(SCC_CollectionCleared, nullptr); // flushes and clears at once
    EXPECT_TRUE(c->m_Queue.empty());
    EXPECT_TRUE(Items(*c).empty());
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
    store.Find(2)->event.Notify(SCC_ObjectRedrawn, SCC_HandleToData(2));
    store.changes.Notify(SCC_HandlesUpdated, nullptr);
    EXPECT_EQ(2u, c->m_Queue.size());
    c->Suspend(0);
    EXPECT_EQ((std::vector<int>{3, 0x40, 0x20}), Items(*c));
    EXPECT_EQ(3, c->GetFocus(0));
    EXPECT_EQ(0x40, c->GetFocus(1));
    EXPECT_EQ((Heard{{8, 0}, {4, 0x20}}), heard->heard);
}

TEST_F(Board, FocusCanListAHandleTwiceAndSingleSelectionAnnounces) {
    c->SetFocus(1, true);
    c->SetFocus(1, true);
    EXPECT_EQ(1, c->GetFocus(0));
    EXPECT_EQ(1, c->GetFocus(1));
    EXPECT_EQ(0, c->GetFocus(2));
    c->SetFocus(99, false); // not listed: clears and does nothing else
    EXPECT_EQ(0, c->HasFocus());
    EXPECT_TRUE(heard->heard.empty());

    c->SetSlider(3);
    c->SetFocus(2, false);
    EXPECT_EQ((Heard{{3, 2}}), heard->heard);
    EXPECT_EQ(3, c->slider) << "the remembered slider is back";
    EXPECT_EQ(0x7FFFFFFF, c->GetPosition());
    long at = -1;
    EXPECT_TRUE(c->IsInFocus(2, &at));
    EXPECT_EQ(0, at);
    EXPECT_FALSE(c->IsInFocus(1, nullptr));
}

TEST_F(Board, HandleDataIsAnnouncedOnTheSourceEvent) {
    Listener source(&store.changes);
    c->SetHandleData(1, 42);
    EXPECT_EQ(42, c->GetHandleData(1));
    EXPECT_EQ(0, c->GetHandleData(2));
    EXPECT_EQ((Heard{{3, 1}}), source.heard);
    EXPECT_EQ((Heard{{3, 1}}), heard->heard) << "heard back from the source";
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
    EXPECT_EQ((std::vector<int>{3, 1, 2}), Items(*c));
    c->AllowReload(0);
    c->AllowReload(1);
    EXPECT_EQ((Heard{{6, 0}}), heard->heard);
    EXPECT_EQ(3u, Items(*c).size());
    EXPECT_EQ((std::vector<int>{2, 0}), (std::vector<int>{c->GetFocus(0), c->GetFocus(1)}))
        << "the focus keeps only handles still listed";

    c->Clear();
    EXPECT_TRUE(Items(*c).empty());
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
    EXPECT_EQ(1, child.HandleNotificationsAllowed(0));
    EXPECT_EQ(0, c->HandleNotificationsAllowed(1)) << "no parent";
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
    EXPECT_TRUE(Items(child).empty());
    child.AllowReload(0);
    child.AllowReload(1);
    c->OnNotification(SCC_CollectionCleared, nullptr);
    EXPECT_TRUE(Items(child).empty());
}

TEST_F(Board, NotificationsCanBeSwitchedOff) {
    EXPECT_EQ(1, c->EnableNotifications(0));
    store.Rename(1, "gnd1");
    EXPECT_TRUE(heard->heard.empty());
    EXPECT_EQ(0, c->EnableNotifications(1));
    store.Rename(1, "gnd2");
    EXPECT_EQ((Heard{{3, 1}}), heard->heard);
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
    EXPECT_EQ(Items(*c), Items(copy));
    EXPECT_EQ(1, copy.GetFocus(0));
    EXPECT_EQ(2, ChainLength(store.Find(1)->event));
    Listener copyHeard(copy.GetChangeEvent());
    c.reset();
    store.Rename(3, "zz");
    EXPECT_EQ((std::vector<int>{1, 2, 3}), Items(copy));
    EXPECT_EQ((Heard{{2, 3}, {1, 3}, {3, 3}}), copyHeard.heard);

    BoardStore other;
    BoardCollection assigned(&other);
    assigned = copy;
    EXPECT_EQ(Items(copy), Items(assigned));
    EXPECT_EQ(2, ChainLength(store.Find(1)->event));
    EXPECT_EQ(0, ChainLength(other.changes));
    heard.reset();
}

} // namespace
