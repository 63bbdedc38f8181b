// Standard collection benchmarks: the two costs a host feels when its
// objects change under a live view, on collections of 1e3, 1e4 and 1e5
// handles, beside a sorted std::vector<int> doing the same work.
//
//   - one change notification (code 3) that moves an item to another place
//     in the order: the collection scans for the handle, announces 2 and 1,
//     moves one block out and one block in, and re-hooks the item's event;
//     the vector finds, erases and re-inserts at the upper bound.
//   - Reload of an unchanged host: the collection walks every host object,
//     places it with the equal-run search and listens to its event again;
//     the vector walks the same objects, sorts and compares with the old list.
#include "keel_bench.h"

#include <keel/SCC_StdCollection.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

using namespace keel_bench;

// Host objects with handles 1..n, a width each (the sort key) and a change
// event each; handle 0 is unused.
struct Store {
    std::vector<int> width;
    std::vector<std::unique_ptr<SCC_Notifier>> events;

    explicit Store(int64_t n) : width(static_cast<size_t>(n) + 1) {
        const std::vector<int> keys = RandomInts(n, 7);
        events.resize(width.size());
        for (size_t h = 1; h < width.size(); ++h) {
            width[h] = keys[h - 1] % 1000000;
            events[h].reset(new SCC_Notifier);
        }
    }
    int Count() const { return static_cast<int>(width.size()) - 1; }
    bool Less(int a, int b) const { return width[a] != width[b] ? width[a] < width[b] : a < b; }
};

// Orders handles by width, then handle, as a host's "sort by size" would.
class ByWidth : public SCC_Sort<int> {
public:
    explicit ByWidth(const Store* s) : store(s) {}
    int Compare(const int& a, const int& b) override {
        return store->Less(a, b) ? -1 : store->Less(b, a) ? 1 : 0;
    }
    const Store* store;
};

class StoreCollection : public SCC_StdCollection {
public:
    explicit StoreCollection(Store* s) : store(s) {}
    using SCC_StdCollection::Reload;
    Store* store;
    int slider = 0;

protected:
    int _GetSlider() override { return slider; }
    void _SetSlider(int h) override { slider = h; }
    int _GetFirst() override { return slider = store->Count() > 0 ? 1 : 0; }
    int _GetNext() override { return slider = slider < store->Count() ? slider + 1 : 0; }

public:
    SCC_Notifier* GetEvent() override {
        return slider > 0 && slider <= store->Count() ? store->events[slider].get() : nullptr;
    }
};

// A collection of all n objects sorted by width (built with reloading on).
std::unique_ptr<StoreCollection> Collection(Store* store) {
    std::unique_ptr<StoreCollection> c(new StoreCollection(store));
    c->SetSort(new ByWidth(store), 0);
    c->AllowReload(1);
    return c;
}

// The handle that moves and the two widths it moves between: from the
// smallest end of the order to the largest and back, so that every
// iteration moves it across the whole list.
const int kMoved = 1;
int MovedWidth(int64_t iteration) { return iteration % 2 ? 1000001 : -1; }

void KeelChange(benchmark::State& state) {
    Store store(state.range(0));
    std::unique_ptr<StoreCollection> c = Collection(&store);
    int64_t i = 0;
    for (auto _ : state) {
        store.width[kMoved] = MovedWidth(i++);
        store.events[kMoved]->Notify(SCC_ObjectChanged, SCC_HandleToData(kMoved));
    }
    if (c->GetAt(c->GetPositionByHandle(kMoved)) != kMoved) state.SkipWithError("item lost");
}

void VectorChange(benchmark::State& state) {
    Store store(state.range(0));
    std::vector<int> items;
    for (int h = 1; h <= store.Count(); ++h) items.push_back(h);
    auto less = [&](int a, int b) { return store.Less(a, b); };
    std::sort(items.begin(), items.end(), less);
    int64_t i = 0;
    for (auto _ : state) {
        store.width[kMoved] = MovedWidth(i++);
        items.erase(std::find(items.begin(), items.end(), kMoved));
        items.insert(std::upper_bound(items.begin(), items.end(), kMoved, less), kMoved);
        benchmark::DoNotOptimize(items.data());
    }
}

void KeelReload(benchmark::State& state) {
    Store store(state.range(0));
    std::unique_ptr<StoreCollection> c = Collection(&store);
    for (auto _ : state) c->Reload();
    PerItem(state, state.range(0));
}

void VectorReload(benchmark::State& state) {
    Store store(state.range(0));
    auto less = [&](int a, int b) { return store.Less(a, b); };
    std::vector<int> old;
    for (int h = 1; h <= store.Count(); ++h) old.push_back(h);
    std::sort(old.begin(), old.end(), less);
    std::vector<int> items;
    for (auto _ : state) {
        items.clear();
        for (int h = 1; h <= store.Count(); ++h) items.push_back(h);
        std::sort(items.begin(), items.end(), less);
        benchmark::DoNotOptimize(items == old);
    }
    PerItem(state, state.range(0));
}

const bool registered = [] {
    Pair("collection", "change-move")
        .Keel(KeelChange, "code 3 moving one item end to end, per notification")
        .Peer("std", VectorChange, "sorted std::vector: find, erase, insert at upper_bound")
        .With([](benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMicrosecond); })
        .Register({1000, 10000, 100000});
    Pair("collection", "reload")
        .Keel(KeelReload, "Reload of an unchanged host, per handle")
        .Peer("std", VectorReload, "walk into std::vector, std::sort, compare, per handle")
        .Register({1000, 10000, 100000});
    return true;
}();

} // namespace
