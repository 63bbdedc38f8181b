// board_store.h - a small in-memory host for collection and property tests:
// board objects with a change event each, and a collection that walks them.
#ifndef KEEL_TESTS_BOARD_STORE_H
#define KEEL_TESTS_BOARD_STORE_H

#include <keel/SCC_StdCollection.h>

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
    // Put adds silently, Add announces the addition; Tell raises `code` on
    // the object's own event.
    void Put(int h, const char* name, int width) {
        objects[h].reset(new BoardObject{name, width, {}});
    }
    void Add(int h, const char* name, int width) {
        Put(h, name, width);
        changes.Notify(SCC_ObjectAdded, SCC_HandleToData(h));
    }
    void Tell(int h, int code) { Find(h)->event.Notify(code, SCC_HandleToData(h)); }
    void Rename(int h, const char* name) {
        Find(h)->name = name;
        Tell(h, SCC_ObjectChanged);
    }
    void Remove(int h) {
        Tell(h, SCC_ObjectDeleted);
        objects.erase(h);
    }
};

// Orders handles by object name (then handle), reading the store.
struct ByName : SCC_Sort<int> {
    explicit ByName(BoardStore* s) : store(s) {}
    int Compare(const int& a, const int& b) override {
        const std::string &x = store->Find(a)->name, &y = store->Find(b)->name;
        return x != y ? (x < y ? -1 : 1) : (a > b) - (a < b);
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

protected:
    int _GetSlider() override { return slider; }
    void _SetSlider(int h) override { slider = h; }
    int _GetFirst() override { return slider = store->Next(0); }
    int _GetNext() override { return slider = store->Next(slider); }

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

// How many nodes listen to an event.
inline int ChainLength(SCC_Notifier& e) {
    int n = 0;
    for (SCC_EventNode<int>* p = e.next; p != &e; p = p->next) ++n;
    return n;
}

#endif // KEEL_TESTS_BOARD_STORE_H
