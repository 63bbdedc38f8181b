// demo_collection.cpp - keel-demo step: a live view of board parts sorted by
// reference designator, following additions, a rename and a deletion, with
// every notification its listener hears.
#include "demo_steps.h"
#include "demo_units.h"
#include <keel/SCC_StdCollection.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>

namespace {

struct Part {
    std::string name;
    long width; // database units
    SCC_Notifier event;
};

// The host's store: parts by handle, and the event where it announces new
// parts.
struct Board {
    std::map<int, std::unique_ptr<Part>> parts;
    SCC_Notifier added;

    Part* Find(int h) {
        auto it = parts.find(h);
        return it == parts.end() ? nullptr : it->second.get();
    }
    int After(int h) {
        auto it = parts.upper_bound(h);
        return it == parts.end() ? 0 : it->first;
    }
    void Add(int h, const char* name, long width) {
        parts[h].reset(new Part{name, width, {}});
        added.Notify(SCC_ObjectAdded, SCC_HandleToData(h));
    }
    void Rename(int h, const char* name) {
        Find(h)->name = name;
        Find(h)->event.Notify(SCC_ObjectChanged, SCC_HandleToData(h));
    }
    void Delete(int h) {
        Find(h)->event.Notify(SCC_ObjectDeleted, SCC_HandleToData(h));
        parts.erase(h);
    }
};

class ByName : public SCC_Sort<int> {
public:
    explicit ByName(Board* b) : board(b) {}
    int Compare(const int& a, const int& b) override {
        const int c = board->Find(a)->name.compare(board->Find(b)->name);
        return c < 0 ? -1 : c > 0 ? 1 : (a > b) - (a < b);
    }
    Board* board;
};

// The host's collection: walks the board in handle order and hands out
// each part's change event.
class PartList : public SCC_StdCollection {
public:
    explicit PartList(Board* b) : board(b) { SetEvent(&board->added); }
    Board* board;
    int slider = 0;

protected:
    int _GetSlider() override { return slider; }
    void _SetSlider(int h) override { slider = h; }
    int _GetFirst() override { return slider = board->After(0); }
    int _GetNext() override { return slider = board->After(slider); }

public:
    SCC_Notifier* GetEvent() override {
        Part* p = board->Find(slider);
        return p ? &p->event : nullptr;
    }
};

const char* CodeName(int code) {
    switch (code) {
    case SCC_ObjectAdded:
        return "ObjectAdded";
    case SCC_ObjectDeleted:
        return "ObjectDeleted";
    case SCC_ObjectChanged:
        return "ObjectChanged";
    case SCC_ObjectRedrawn:
        return "ObjectRedrawn";
    case SCC_CollectionReload:
        return "CollectionReload";
    case SCC_CollectionCleared:
        return "CollectionCleared";
    case SCC_HandlesUpdated:
        return "HandlesUpdated";
    default:
        return "(unused code)";
    }
}

// Prints what the collection announces, naming the part while it exists.
struct Listener {
    Board* board;
    SCC_ObjectEventHook<Listener, int> hook;
    int Heard(int code, int* data) {
        const int h = SCC_DataToHandle(data);
        const Part* p = board->Find(h);
        std::printf("    heard %-16s handle %d%s\n", CodeName(code), h,
                    p ? (" (" + p->name + ")").c_str() : "");
        return 0;
    }
};

void Show(PartList& list) {
    std::string line;
    for (long i = 0; i < list.m_Items.GetCount(); ++i) {
        const Part* p = list.board->Find(list.GetAt(i));
        line += (i ? ", " : "") + p->name + " " + DemoMil(p->width) + " mil (" +
                std::to_string(p->width) + ")";
    }
    std::printf("  list: %s\n", line.empty() ? "(empty)" : line.c_str());
}

} // namespace

KEEL_DEMO_STEP(50, "Collections: a live, sorted view of board objects") {
    DemoIntro("A host's part list is an SCC_StdCollection: it keeps the handles of the host's "
              "objects sorted by the host's comparison, listens to each object's change event, "
              "and re-announces every change to its own listeners, so that a list view stays "
              "current without reloading.");

    Board board;
    board.parts[1].reset(new Part{"R12", 60 * kDemoDbuPerMil, {}});
    board.parts[2].reset(new Part{"C3", 80 * kDemoDbuPerMil, {}});
    PartList list(&board);
    list.SetSort(new ByName(&board), 0);
    list.AllowReload(1);
    Listener listener{&board, {}};
    listener.hook.SetObject(&listener);
    listener.hook.SetMethod(&Listener::Heard);
    list.SetNotificationHandler(&listener.hook);
    std::printf("  parts sorted by name, with their widths (database units in brackets)\n");
    Show(list);

    std::printf("  the board adds U7 (handle 3) and announces it on its source event:\n");
    board.Add(3, "U7", 250 * kDemoDbuPerMil);
    Show(list);
    std::printf(
        "  R12 (handle 1) is renamed A1 and moves to the front: 2 then 1 are heard, then 3\n"
        "  from the item's new hook, which joins the event still delivering the change:\n");
    board.Rename(1, "A1");
    Show(list);
    std::printf("  C3 (handle 2) is renamed C4: its place holds, so one change is heard:\n");
    board.Rename(2, "C4");
    Show(list);
    std::printf("  U7 (handle 3) is deleted:\n");
    board.Delete(3);
    Show(list);
}
