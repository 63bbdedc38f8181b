// board_store.h - a small in-memory host for collection and property tests:
// board objects with a change event each, and a collection that walks them.
#ifndef KEEL_TESTS_BOARD_STORE_H
#define KEEL_TESTS_BOARD_STORE_H

#include "SCC_StdCollection.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

struct BoardObject {
    std::string name;
    int width = 0;
    SCC_Notifier event;
};

// Objects by handle; `changes` is the source event where additions are
// announced.  Handles walk in ascending order; Next(0) is the first one.
struct BoardStore {
    std::map<int, std::unique_ptr<BoardObject>> objects;
    SCC_Notifier changes;

    BoardObject* Find(int h) {
        auto it = objects.find(h);
        return it == objects.end() ? nullptr : it->second.get();
    }
    int Next(int h) {
        auto it = objects.upper_bound(h);
        return it == objects.end() ? 0 : it->first;
    }
    int Prev(int h) {
        auto it = objects.lower_bound(h);
        return it == objects.begin() ? 0 : std::prev(it)->first;
    }
    // Adds silently; Announce* raise what a host would raise.
    void Put(int h, const char* name, int width) {
        objects[h].reset(new BoardObject{name, width, {}});
    }
    void AnnounceAdd(int h) { changes.Notify(SCC_ObjectAdded, SCC_HandleToData(h)); }
    void Rename(int h, const char* name) {
        Find(h)->name = name;
        Find(h)->event.Notify(SCC_ObjectChanged, SCC_HandleToData(h));
    }
    void Remove(int h) {
        Find(h)->event.Notify(SCC_ObjectDeleted, SCC_HandleToData(h));
        objects.erase(h);
    }
};

// Orders handles by object name (then handle), reading the store.
class ByName : public SCC_Sort<int> {
public:
    explicit ByName(BoardStore* s) : store(s) {}
    int Compare(const int& a, const int& b) override {
        int c = store->Find(a)->name.compare(store->Find(b)->name);
        if (c == 0) c = a - b;
        return c < 0 ? -1 : c > 0 ? 1 : 0;
    }
    BoardStore* store;
};

class BoardCollection : public SCC_StdCollection {
public:
    explicit BoardCollection(BoardStore* s, SCC_StdCollection* parent = nullptr)
        : SCC_StdCollection(parent), store(s) {
        SetEvent(&store->changes);
    }
    BoardStore* store;
    int slider = 0;
    std::map<int, int> renumber; // old handle -> new

    using SCC_StdCollection::ConnectEvent;
    using SCC_StdCollection::Reload;

protected:
    int _GetSlider() override { return slider; }
    void _SetSlider(int h) override { slider = h; }
    int _GetFirst() override { return slider = store->Next(0); }
    int _GetNext() override { return slider = store->Next(slider); }
    int _GetPrev() override { return slider = store->Prev(slider); }

public:
    SCC_Notifier* GetEvent() override {
        BoardObject* o = store->Find(slider);
        return o ? &o->event : nullptr;
    }
    int UpdateHandle(int h) override {
        auto it = renumber.find(h);
        return it == renumber.end() ? h : it->second;
    }
};

// Records what a change event announces: (code, handle).
struct Listener {
    SCC_ObjectEventHook<Listener, int> hook;
    std::vector<std::pair<int, int>> heard;
    explicit Listener(SCC_Notifier* event) {
        hook.SetObject(this);
        hook.SetMethod(&Listener::On);
        hook.Attach(event);
    }
    int On(int code, int* data) {
        heard.emplace_back(code, SCC_DataToHandle(data));
        return 0;
    }
};

#endif // KEEL_TESTS_BOARD_STORE_H
