// Tests of handle objects and the tables that keep them.
#include <keel/SCC_Handle.h>
#include "tests/scc/board_store.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::string> g_log;
typedef std::vector<std::pair<long, int>> Keys;

// Listens to the change event of one of the test's objects.
struct Tracked : SCC_HandleWithEvent {
    Tracked(int h, long t, SCC_SavedHandles* o, SCC_Notifier* e)
        : SCC_HandleWithEvent(h, t, o), event(e) {}
    SCC_Notifier* GetChangeEvent() override { return event; }
    void OnUpdatePointers() override { g_log.push_back("update " + std::to_string(handle)); }
    SCC_Notifier* event;
};

struct Table : SCC_SavedHandles {
    // Notifiers cannot be copied from a const source, so the map holds them by pointer.
    std::map<std::pair<long, int>, std::unique_ptr<SCC_Notifier>> events;
    bool factoryWorks = true;
    SCC_Notifier& Event(long t, int h) {
        auto& e = events[{t, h}];
        if (!e) e = std::make_unique<SCC_Notifier>();
        return *e;
    }
    int HandleNotification(int h, long t, int code, int* data) override {
        g_log.push_back("table " + std::to_string(code));
        return SCC_SavedHandles::HandleNotification(h, t, code, data);
    }
    Keys Saved() {
        Keys out;
        const SCC_SavedHandles& self = *this;
        for (int i = 0; i < GetCount(); ++i) out.emplace_back(self[i]->type, self[i]->handle);
        return out;
    }
    SCC_SharedPointer<SCC_HandleWithEvent> CreateByType(int h, long t) override {
        return factoryWorks ? new Tracked(h, t, this, &Event(t, h)) : nullptr;
    }
};

TEST(SavedHandles, KeepsTypeThenHandleOrderAndSavesOnce) {
    Table t;
    for (auto s : Keys{{2, 9}, {1, 9}, {2, 5}, {1, 5}, {1, -3}, {-1, 0}})
        EXPECT_EQ(1, t.Save(s.second, s.first));
    EXPECT_EQ((Keys{{-1, 0}, {1, -3}, {1, 5}, {1, 9}, {2, 5}, {2, 9}}), t.Saved());
    EXPECT_EQ(0, t.Save(5, 2)) << "already there";
    EXPECT_EQ(6, t.GetCount());
    EXPECT_EQ(1, ChainLength(t.Event(2, 5))) << "saving listens to the object";

    long at = -1;
    SCC_SharedPointer<SCC_HandleWithEvent> found = t.Find(5, 2, &at);
    ASSERT_TRUE(found);
    EXPECT_EQ(4, at);
    EXPECT_EQ(found.Get(), t.Find(5, 2, nullptr).Get());
    EXPECT_FALSE(t.Find(6, 2, &at));
    EXPECT_EQ(5, at) << "where it would go";

    t.factoryWorks = false;
    EXPECT_EQ(0, t.Save(7, 3));
    EXPECT_EQ((std::vector<int>{6, 1, 0}),
              (std::vector<int>{t.GetCount(), t.Delete(9, 1), t.Delete(9, 1)}));
}

TEST(SavedHandles, ActsOnTheCodesItsObjectsHear) {
    Table t;
    for (int h : {1, 2, 3}) t.Save(h, 7);
    g_log.clear();
    // Code 2 removes the handle carried in the data, whoever heard it.
    t.Event(7, 1).Notify(SCC_HandleDeleted, SCC_HandleToData(3));
    EXPECT_EQ((Keys{{7, 1}, {7, 2}}), t.Saved());
    EXPECT_EQ(0, ChainLength(t.Event(7, 3))) << "the last reference went: detached";

    // Code 8: the object updates itself before the table hears of it; the
    // next lookup re-sorts.
    const SCC_SavedHandles& view = t;
    view[0]->handle = 50;
    t.Event(7, 2).Notify(SCC_HandlesRenumbered, nullptr);
    EXPECT_EQ((std::vector<std::string>{"table 2", "update 2", "table 8"}), g_log);
    EXPECT_TRUE(t.resort);
    EXPECT_TRUE(t.Find(50, 7, nullptr));
    EXPECT_FALSE(t.resort);
    EXPECT_EQ((Keys{{7, 2}, {7, 50}}), t.Saved());

    for (int code : {1, 3, 4, 5, 6}) t.Event(7, 2).Notify(code, SCC_HandleToData(2));
    EXPECT_EQ(2, t.GetCount());
    t.Event(7, 2).Notify(SCC_HandlesCleared, nullptr);
    EXPECT_EQ(0, t.GetCount());
    EXPECT_EQ(0, ChainLength(t.Event(7, 2)));
}

TEST(SavedHandles, AHandleObjectOutlivesItsTableEntryWhileHeld) {
    Table t;
    t.Save(4, 1);
    SCC_SharedPointer<SCC_HandleWithEvent> held = t.Find(4, 1, nullptr);
    t.Delete(4, 1);
    EXPECT_EQ(1, ChainLength(t.Event(1, 4)));
    EXPECT_EQ(1, held->GetRefCount());
    held = nullptr;
    EXPECT_EQ(0, ChainLength(t.Event(1, 4)));

    // Held past the table itself: it stops naming the table (ASan reports a
    // use after free if it still reaches it).
    SCC_Notifier outside;
    SCC_SharedPointer<SCC_HandleWithEvent> kept;
    {
        Table gone;
        gone.Save(5, 1);
        kept = gone.Find(5, 1, nullptr);
    }
    outside.Append(kept.Get());
    g_log.clear();
    EXPECT_EQ(0, outside.Notify(SCC_HandleDeleted, SCC_HandleToData(5)));
    EXPECT_EQ(nullptr, kept->owner);
    EXPECT_TRUE(g_log.empty());
}

TEST(HandleWithEvent, CopyStartsAFreshCountAssignmentTakesTheCountWord) {
    SCC_Notifier event;
    SCC_HandleWithEvent a(3, 4, nullptr);
    SCC_SharedPointer<SCC_HandleWithEvent> p(&a);
    {
        // A node copy takes its source's links as they stand: it must go
        // before its source joins a chain, or re-join one itself.
        SCC_HandleWithEvent b(a);
        EXPECT_EQ((std::vector<long>{3, 4, 0}),
                  (std::vector<long>{b.GetHandle(), b.GetType(), b.GetRefCount()}));
        EXPECT_EQ(nullptr, b.GetChangeEvent());
    }
    event.Append(&a);
    SCC_HandleWithEvent c(0, 0, nullptr);
    c = a;
    EXPECT_EQ(a.m_Count, c.m_Count);
    EXPECT_EQ(3, c.GetHandle());
    EXPECT_EQ(2, ChainLength(event)) << "joined just before a";
    EXPECT_EQ(&c, event.next);
    EXPECT_EQ(0, a.OnNotification(SCC_HandleDeleted, nullptr)) << "no owner: ignored";
}

} // namespace
