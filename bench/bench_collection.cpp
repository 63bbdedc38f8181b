// Standard collection benchmarks: the costs a host feels when its objects
// change under a live view, on collections of 1e4, 1e5 and 1e6 handles,
// beside the standard library doing the same work.
//
//   - building a collection and reloading it, the host walking its objects
//     in an order unrelated to the sort: the collection sorts the handles it
//     walked (stably) and sorts the list once more, as its rebuild does;
//     the peer is two std::stable_sort runs of the same handles with the
//     same comparison.
//   - a reload that changes the list (a filter that lets one object through
//     every other time) with every item focused, beside the same with none
//     focused: the focus set is rebuilt from the focused handles still
//     listed.
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
    // The handles in the order the host walks them: 1..n, or shuffled.
    std::vector<int> walk;
    void Shuffle() {
        walk.clear();
        for (int h = 1; h <= Count(); ++h) walk.push_back(h);
        const std::vector<int> r = RandomInts(Count(), 11);
        for (size_t i = walk.size(); i-- > 1;)
            std::swap(walk[i], walk[static_cast<size_t>(r[i]) % (i + 1)]);
    }
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
    int _GetFirst() override {
        step = 0;
        return slider = store->Count() > 0 ? At(0) : 0;
    }
    int _GetNext() override { return slider = step + 1 < store->Count() ? At(++step) : 0; }
    int At(int i) const {
        return store->walk.empty() ? i + 1 : store->walk[static_cast<size_t>(i)];
    }
    int step = 0;

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

void KeelLoadReload(benchmark::State& state) {
    Store store(state.range(0));
    store.Shuffle();
    for (auto _ : state) {
        std::unique_ptr<StoreCollection> c = Collection(&store);
        c->Reload();
        state.PauseTiming();
        c.reset();
        state.ResumeTiming();
    }
    PerItem(state, state.range(0));
}

void StableSortTwice(benchmark::State& state) {
    Store store(state.range(0));
    store.Shuffle();
    ByWidth sort(&store);
    auto less = [&sort](int a, int b) { return sort.Compare(a, b) < 0; };
    std::vector<int> items;
    for (auto _ : state) {
        for (int pass = 0; pass < 2; ++pass) {
            items = store.walk;
            std::stable_sort(items.begin(), items.end(), less);
            benchmark::DoNotOptimize(items.data());
        }
    }
    PerItem(state, state.range(0));
}

// Lets every object through but one, which passes every other time.
class AllButOneSometimes : public SYS_Filter {
public:
    int IsTrue(int handle) const override { return handle != kMoved || pass; }
    int pass = 0;
};

void ReloadChanged(benchmark::State& state, bool focused) {
    Store store(state.range(0));
    store.Shuffle();
    std::unique_ptr<StoreCollection> c = Collection(&store);
    if (focused)
        for (int h = 1; h <= store.Count(); ++h) c->SetFocus(h, true);
    AllButOneSometimes filter;
    for (auto _ : state) {
        filter.pass = !filter.pass;
        c->SetFilter(&filter); // reloads
    }
    if (focused && c->m_Focus.GetCount() < store.Count() - 1) state.SkipWithError("focus lost");
    PerItem(state, state.range(0));
}
void KeelReloadFocused(benchmark::State& state) { ReloadChanged(state, true); }
void KeelReloadUnfocused(benchmark::State& state) { ReloadChanged(state, false); }

const bool registered = [] {
    Pair("collection", "change-move")
        .Keel(KeelChange, "code 3 moving one item end to end, per notification")
        .Peer("std", VectorChange, "sorted std::vector: find, erase, insert at upper_bound", 2)
        .With([](benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMicrosecond); })
        .Register({10000, 100000, 1000000});
    Pair("collection", "load-reload")
        .Keel(KeelLoadReload, "build (AllowReload) and Reload, host walk shuffled, per handle")
        .Peer("std", StableSortTwice, "std::stable_sort of the same handles twice, per handle", 5)
        .With([](benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMillisecond); })
        .Register({10000, 100000, 1000000});
    Pair("collection", "reload-focused")
        .Keel(KeelReloadFocused, "Reload that changes the list, every item focused, per handle")
        .Peer("unfocused", KeelReloadUnfocused, "the same Reload with nothing focused", 1.5)
        .With([](benchmark::internal::Benchmark* b) { b->Unit(benchmark::kMillisecond); })
        .Register({10000, 100000, 1000000});
    Pair("collection", "reload")
        .Keel(KeelReload, "Reload of an unchanged host, per handle")
        .Peer("std", VectorReload, "walk into std::vector, std::sort, compare, per handle")
        .Register({10000, 100000, 1000000});
    return true;
}();

} // namespace
