// Differential test of the standard collection: random host sequences run
// against SCC_StdCollection and against the plain model of
// collection_reference.h, each over a store of its own, and after every step
// everything a host can observe must agree: item order, focus, the hooks on
// the objects' events, every notification in order (with the slider and
// position the listener saw), the queue, handle data, the temporary-items
// flag, the current position and the host's slider.
#include "tests/scc/collection_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>
#include <sstream>
#include <string>

namespace {

const int kHandles = 10; // handles 1..10, widths 0..3: many equal sort keys

// The host routes objects 8 and 9 through one shared event and object 10
// through the store's own event (which a collection never hooks); the
// others announce on their own events.
struct HostCollection : BoardCollection {
    HostCollection(BoardStore* s, HostCollection* parent) : BoardCollection(s, parent) {}
    std::function<SCC_Notifier*(int)> eventOf;
    SCC_Notifier* GetEvent() override { return eventOf(slider); }
    std::function<void()> heard; // told of every OnNotification
    int OnNotification(int code, int* data) override {
        heard();
        return BoardCollection::OnNotification(code, data);
    }
};

int WidthOf(BoardStore* s, int h) {
    BoardObject* o = s->Find(h);
    return o ? o->width : -1;
}
// Sort orders: 0 width up, 1 width down, 2 handle mod 3 (a function),
// 3 a null function (ascending handles).
int Ordered(int x, int y) { return x == y ? 0 : (x < y ? -1 : 1); }
int ByThirds(const int& a, const int& b) { return Ordered(a % 3, b % 3); }
int CompareBy(BoardStore* s, int kind, int a, int b) {
    switch (kind) {
    case 0:
        return Ordered(WidthOf(s, a), WidthOf(s, b));
    case 1:
        return Ordered(WidthOf(s, b), WidthOf(s, a));
    case 2:
        return ByThirds(a, b);
    default:
        return Ordered(a, b);
    }
}
struct WidthSort : SCC_Sort<int> {
    WidthSort(BoardStore* s, int k) : store(s), kind(k) {}
    int Compare(const int& a, const int& b) override { return CompareBy(store, kind, a, b); }
    BoardStore* store;
    int kind;
};
void ApplySort(BoardCollection& c, int kind, int descending) {
    if (kind < 2)
        c.SetSort(new WidthSort(c.store, kind), descending);
    else
        c.SetSort(kind == 2 ? &ByThirds : nullptr, descending);
}
void ApplySort(reference::Collection& c, int kind, int) {
    BoardStore* s = c.store;
    if (kind == 3)
        c.SetSort(nullptr);
    else
        c.SetSort([s, kind](int a, int b) { return CompareBy(s, kind, a, b); });
}
long ItemCount(BoardCollection& c) { return c.m_Items.GetCount(); }
long ItemCount(reference::Collection& c) { return c.m_Items.Count(); }
long FocusCount(BoardCollection& c) { return c.m_Focus.GetCount(); }
long FocusCount(reference::Collection& c) { return c.m_Focus.Count(); }
int UseCount(const SCC_StdCollection::EventHook& h) { return h.m_UseCount; }
int UseCount(const std::unique_ptr<reference::Collection::Hook>& h) { return h->m_UseCount; }

struct WidthFilter : SYS_Filter {
    BoardStore* store = nullptr;
    int min = 0;
    int IsTrue(int h) const override { return store->Find(h) && store->Find(h)->width >= min; }
};

enum Kind {
    kAdd,        // h (absent), width a, announced when b
    kAnnounce,   // the store's event raises a with h
    kRemove,     // h leaves the store, announced (2) when b
    kChange,     // h takes width a, its event raises b
    kClearStore, // objects leave when a, then 7 on the store's event
    kRenumber,   // swap h and a (both present), or move h to a (absent)
    kFocus,      // SetFocus(h, a)
    kSuspend,    // Suspend(a)
    kFilter,     // threshold a; b: 1 SetFilter(filter), 2 SetFilter(null), 0 silent
    kSort,       // order a, descending b
    kAllow,      // AllowReload(a)
    kData,       // SetHandleData(h, a)
    kWalk,       // GetFirst, then bit i of a: GetNext (1) or GetPrev (0), b steps
    kPosition,   // SetPosition(a)
    kSlider,     // SetSlider(h)
    kTemp,       // FindNextTempItem(h)
    kEnable,     // EnableNotifications(a)
    kClear,      // Clear()
    kDirect,     // OnNotification(a, h)
    kParent      // child's OnParentNotification(a, h)
};
const char* const kNames[] = {"add",      "announce", "remove",  "change",   "clear-store",
                              "renumber", "focus",    "suspend", "filter",   "sort",
                              "allow",    "data",     "walk",    "position", "slider",
                              "temp",     "enable",   "clear",   "direct",   "parent"};

struct Op {
    Kind kind;
    int who; // 0 parent, 1 child
    int h, a, b;
};

std::string Describe(const Op& op) {
    std::ostringstream s;
    s << kNames[op.kind]
      << (op.kind <= kRenumber ? ""
          : op.who             ? " child"
                               : " parent")
      << " h=" << op.h << " a=" << op.a << " b=" << op.b;
    return s.str();
}

template <class Coll> struct World {
    BoardStore store;
    SCC_Notifier shared;           // the event of objects 8 and 9
    std::vector<BoardObject*> all; // every object ever made, by serial
    std::map<const SCC_Notifier*, int> serial;
    std::vector<std::unique_ptr<BoardObject>> gone; // kept so hooks stay valid
    WidthFilter filters[2];
    std::ostringstream log;
    std::unique_ptr<Coll> parent, child;

    // Records what a collection raises, and what a listener then sees.
    struct Recorder {
        SCC_ObjectEventHook<Recorder, int> hook;
        World* world;
        Coll* c;
        char who;
        Recorder(World* w, Coll* coll, char name, bool append) : world(w), c(coll), who(name) {
            hook.SetObject(this);
            hook.SetMethod(&Recorder::On);
            if (append)
                c->GetChangeEvent()->Append(&hook);
            else
                hook.Attach(c->GetChangeEvent());
        }
        int On(int code, int* data) {
            world->log << who << code << ':' << SCC_DataToHandle(data) << " s" << c->GetSlider()
                       << " p" << c->GetPosition() << ' ';
            return 0;
        }
    };
    std::unique_ptr<Recorder> recorders[2];

    void Create(int h, int width) {
        BoardObject* o = new BoardObject{"", width, {}};
        store.objects[h].reset(o);
        serial[&o->event] = static_cast<int>(all.size());
        all.push_back(o);
    }
    void Bury(int h) {
        gone.push_back(std::move(store.objects[h]));
        store.objects.erase(h);
    }
    Coll& Target(int who) { return who && child ? *child : *parent; }
    SCC_Notifier* EventOf(int h) {
        BoardObject* o = store.Find(h);
        if (!o) return nullptr;
        if (h == 10) return &store.changes;
        return h == 8 || h == 9 ? &shared : &o->event;
    }
    // An object's event raises `code`.  When the list is out of order (a
    // sort key changed unannounced), a moved item may never find a valid
    // place: its new hook hears the change again as the delivery wraps round,
    // and again.  Both worlds then cut the delivery after the same number of
    // OnNotification calls.
    SCC_Notifier* telling = nullptr;
    int budget = 0;
    void Tell(int h, int code) {
        telling = EventOf(h);
        budget = 1000;
        telling->Notify(code, SCC_HandleToData(h));
        telling->Enable(1);
        telling = nullptr;
    }
    std::unique_ptr<Coll> NewCollection(Coll* parentOf) {
        std::unique_ptr<Coll> c(new Coll(&store, parentOf));
        c->eventOf = [this](int h) { return EventOf(h); };
        c->heard = [this] {
            if (telling && --budget == 0) {
                telling->Enable(0);
                log << "cut ";
            }
        };
        return c;
    }

    World(const std::vector<int>& widths, int sort, bool allow, bool withChild, bool append) {
        for (size_t h = 1; h < widths.size(); ++h)
            if (widths[h] >= 0) Create(static_cast<int>(h), widths[h]);
        for (WidthFilter& f : filters) f.store = &store;
        parent = NewCollection(nullptr);
        recorders[0].reset(new Recorder(this, parent.get(), 'P', append));
        ApplySort(*parent, sort, 0);
        parent->AllowReload(allow);
        if (!withChild) return;
        child = NewCollection(parent.get());
        recorders[1].reset(new Recorder(this, child.get(), 'C', !append));
        ApplySort(*child, (sort + 1) % 4, 1);
        child->AllowReload(1);
    }
    ~World() {
        child.reset();
        parent.reset();
    }

    void Apply(const Op& op) {
        Coll& c = Target(op.who);
        int* data = SCC_HandleToData(op.h);
        switch (op.kind) {
        case kAdd:
            Create(op.h, op.a);
            if (op.b) store.changes.Notify(SCC_ObjectAdded, data);
            break;
        case kAnnounce:
            store.changes.Notify(op.a, op.h ? data : nullptr);
            break;
        case kRemove:
            if (op.b) Tell(op.h, SCC_ObjectDeleted);
            Bury(op.h);
            break;
        case kChange:
            store.Find(op.h)->width = op.a;
            Tell(op.h, op.b);
            break;
        case kClearStore:
            while (op.a && !store.objects.empty()) Bury(store.objects.begin()->first);
            store.changes.Notify(SCC_CollectionCleared, nullptr);
            break;
        case kRenumber: {
            std::map<int, int> renumber{{op.h, op.a}};
            if (store.Find(op.a)) {
                renumber[op.a] = op.h;
                std::swap(store.objects[op.h], store.objects[op.a]);
            } else {
                store.objects[op.a] = std::move(store.objects[op.h]);
                store.objects.erase(op.h);
            }
            parent->renumber = renumber;
            if (child) child->renumber = renumber;
            store.changes.Notify(SCC_HandlesUpdated, nullptr);
            break;
        }
        case kFocus:
            c.SetFocus(op.h, op.a != 0);
            break;
        case kSuspend:
            c.Suspend(op.a);
            break;
        case kFilter:
            filters[op.who].min = op.a;
            if (op.b) c.SetFilter(op.b == 1 ? &filters[op.who] : nullptr);
            break;
        case kSort:
            ApplySort(c, op.a, op.b);
            break;
        case kAllow:
            c.AllowReload(op.a);
            break;
        case kData:
            c.SetHandleData(op.h, op.a);
            break;
        case kWalk:
            log << "walk " << c.GetFirst();
            for (int i = 0; i < op.b; ++i) log << ((op.a >> i) & 1 ? c.GetNext() : c.GetPrev());
            log << ' ';
            break;
        case kPosition:
            c.SetPosition(op.a);
            break;
        case kSlider:
            c.SetSlider(op.h);
            break;
        case kTemp:
            log << "temp " << c.FindNextTempItem(op.h) << ' ';
            break;
        case kEnable:
            log << "enable " << c.EnableNotifications(op.a) << ' ';
            break;
        case kClear:
            c.Clear();
            break;
        case kDirect:
            log << "direct " << c.OnNotification(op.a, data) << ' ';
            break;
        case kParent:
            log << "parent " << child->OnParentNotification(op.a, data) << ' ';
            break;
        default:
            break;
        }
    }

    void Dump(Coll& c, std::ostream& out) {
        const long n = ItemCount(c);
        out << "items";
        for (long i = -1; i <= n; ++i) out << ' ' << c.GetAt(i);
        out << "\nby handle";
        for (int h = -2; h <= kHandles + 2; ++h) out << ' ' << c.GetPositionByHandle(h);
        out << "\nfocus " << c.HasFocus() << ':';
        for (long i = 0; i <= FocusCount(c); ++i) out << ' ' << c.GetFocus(i);
        out << "\nin focus";
        for (int h = -2; h <= kHandles + 2; ++h) {
            long at = -7;
            const bool in = c.IsInFocus(h, &at);
            out << ' ' << in << '@' << at;
        }
        out << "\nallowed";
        for (int h = -2; h <= kHandles + 2; ++h) out << ' ' << c.HandleNotificationsAllowed(h);
        std::vector<std::pair<int, int>> hooks;
        for (auto& e : c.m_Hooks) // by object serial; -1 the shared event, -2 another
            hooks.emplace_back(serial.count(e.first) ? serial[e.first]
                               : e.first == &shared  ? -1
                                                     : -2,
                               UseCount(e.second));
        std::sort(hooks.begin(), hooks.end());
        out << "\nhooks";
        for (auto& e : hooks) out << ' ' << e.first << 'x' << e.second;
        out << "\nqueue";
        for (auto& e : c.m_Queue) out << ' ' << e.first << ':' << e.second;
        out << "\ndata";
        for (auto& e : c.m_HandleData) out << ' ' << e.first << '=' << e.second;
        out << "\ntemp " << c.m_HasTempItems << " reload " << c.IsReloadAllowed() << " suspended "
            << c.m_Suspended << " position " << c.GetPosition() << " empty " << c.IsEmpty()
            << " slider " << c.GetSlider() << '\n';
    }

    // Everything observable since the last snapshot.
    std::string Snapshot() {
        std::ostringstream out;
        out << "heard " << log.str() << "\nparent\n";
        log.str("");
        Dump(*parent, out);
        if (child) {
            out << "child\n";
            Dump(*child, out);
        }
        out << "listeners";
        for (BoardObject* o : all) out << ' ' << ChainLength(o->event);
        out << " / " << ChainLength(shared) << ' ' << ChainLength(store.changes) << ' '
            << ChainLength(parent->m_ChangeEvent) << '\n';
        return out.str();
    }
};

// A random step, drawn from the library's world (both worlds are alike).
struct Generator {
    std::mt19937 rng;
    const std::vector<Kind>& kinds;
    int Pick(int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); }

    Op Next(World<HostCollection>& w) {
        std::vector<int> present, absent;
        for (int h = 1; h <= kHandles; ++h) (w.store.Find(h) ? present : absent).push_back(h);
        for (;;) {
            Op op{kinds[Pick(static_cast<int>(kinds.size()))], w.child ? Pick(2) : 0,
                  Pick(kHandles + 4) - 2, 0, 0}; // -2..11
            BoardCollection& c = w.Target(op.who);
            if (op.kind <= kRenumber) op.who = 0; // the store's steps
            switch (op.kind) {
            case kAdd:
                if (absent.empty()) continue;
                op.h = absent[Pick(static_cast<int>(absent.size()))];
                op.a = Pick(4);
                op.b = Pick(4) != 0;
                break;
            case kAnnounce: {
                static const int codes[] = {SCC_CollectionReload, SCC_CollectionReload,
                                            SCC_CollectionCleared, SCC_HandlesUpdated,
                                            SCC_ObjectAdded};
                op.a = codes[Pick(5)];
                op.h = op.a == SCC_ObjectAdded ? 1 + Pick(kHandles) : 0;
                break;
            }
            case kRemove:
            case kChange:
                if (present.empty()) continue;
                op.h = present[Pick(static_cast<int>(present.size()))];
                if (op.kind == kRemove) {
                    op.b = Pick(4) != 0;
                } else {
                    static const int codes[] = {3, 3, 3, 3, 4, 4, 5, 9};
                    op.b = codes[Pick(8)];
                    // Codes other than 3 mostly keep the order, as they should.
                    const bool keep = op.b == 3 ? Pick(3) == 0 : Pick(4) != 0;
                    op.a = keep ? w.store.Find(op.h)->width : Pick(4);
                }
                break;
            case kClearStore:
                op.a = Pick(2);
                break;
            case kRenumber:
                if (present.empty()) continue;
                op.h = present[Pick(static_cast<int>(present.size()))];
                op.a = 1 + Pick(kHandles + 4);
                if (op.a == op.h) continue;
                break;
            case kFocus: // mostly listed handles, added, so that the focus grows
                if (ItemCount(c) && Pick(4)) op.h = c.GetAt(Pick(static_cast<int>(ItemCount(c))));
                op.a = Pick(3) != 0;
                break;
            case kAllow:
            case kSuspend:
                op.a = Pick(2);
                break;
            case kFilter:
                op.a = Pick(3);
                op.b = Pick(3);
                break;
            case kSort:
                op.a = Pick(4);
                op.b = Pick(2);
                break;
            case kData:
                op.a = 1 + Pick(100);
                break;
            case kWalk:
                op.a = Pick(256);
                op.b = Pick(8);
                break;
            case kPosition:
                if (ItemCount(c) == 0) continue;
                op.a = Pick(static_cast<int>(ItemCount(c)));
                break;
            case kEnable:
                op.a = Pick(3) != 0;
                break;
            case kDirect:
                op.a = Pick(10);
                break;
            case kParent:
                if (!w.child) continue;
                op.a = 1 + Pick(8);
                break;
            default:
                break;
            }
            return op;
        }
    }
};

// Runs `sequences` random sequences of `steps` steps with the given kinds of
// step; returns the first disagreement, or an empty string.
std::string RunSequences(unsigned seed, int sequences, int steps, const std::vector<Kind>& kinds) {
    Generator gen{std::mt19937(seed), kinds};
    for (int s = 0; s < sequences; ++s) {
        std::vector<int> widths(kHandles + 1, -1);
        for (int h = 1; h <= kHandles; ++h)
            if (gen.Pick(3) == 0) widths[h] = gen.Pick(4);
        const int sort = gen.Pick(4);
        const bool allow = gen.Pick(4) != 0, withChild = gen.Pick(2), append = gen.Pick(2);
        World<HostCollection> lib(widths, sort, allow, withChild, append);
        World<reference::Collection> ref(widths, sort, allow, withChild, append);
        std::string history;
        for (int step = 0; step <= steps; ++step) {
            const std::string got = lib.Snapshot(), want = ref.Snapshot();
            if (got != want) {
                std::ostringstream out;
                out << "seed " << seed << " sequence " << s << " step " << step << "\nsteps:\n"
                    << history << "library:\n"
                    << got << "reference:\n"
                    << want;
                return out.str();
            }
            if (step == steps) break;
            const Op op = gen.Next(lib);
            history += "  " + Describe(op) + "\n";
            lib.Apply(op);
            ref.Apply(op);
        }
    }
    return "";
}

std::vector<Kind> AllKinds() {
    // Weighted: the single-object notifications and focus come most often.
    std::vector<Kind> kinds;
    const struct {
        Kind kind;
        int weight;
    } weights[] = {{kAdd, 8},      {kAnnounce, 3}, {kRemove, 6},  {kChange, 12},  {kClearStore, 1},
                   {kRenumber, 4}, {kFocus, 8},    {kSuspend, 5}, {kFilter, 3},   {kSort, 2},
                   {kAllow, 3},    {kData, 3},     {kWalk, 4},    {kPosition, 2}, {kSlider, 2},
                   {kTemp, 1},     {kEnable, 1},   {kClear, 1},   {kDirect, 3},   {kParent, 2}};
    for (const auto& w : weights) kinds.insert(kinds.end(), w.weight, w.kind);
    return kinds;
}

TEST(CollectionReference, RandomSequencesAgreeStepByStep) {
    const std::vector<Kind> kinds = AllKinds();
    for (unsigned seed : {1u, 2u, 3u}) {
        const std::string diff = RunSequences(seed, 100, 50, kinds);
        ASSERT_TRUE(diff.empty()) << diff;
    }
}

// Without reloads and clears, the single-object paths run long enough to
// build long equal runs and deep suspensions.
TEST(CollectionReference, LongRunsOfSingleObjectChangesAgree) {
    const std::vector<Kind> kinds = {kAdd,   kAdd,   kRemove,  kChange, kChange, kChange,
                                     kFocus, kFocus, kSuspend, kData,   kWalk,   kDirect};
    const std::string diff = RunSequences(7u, 40, 150, kinds);
    EXPECT_TRUE(diff.empty()) << diff;
}

// Larger lists, where the collection no longer inserts one handle at a time
// nor scans for handles: hundreds of objects with few distinct widths (long
// equal runs), walked in handle order (unrelated to the sort), numbered
// densely or spread over a wide range, through reloads after silent key
// changes, moves, duplicate announcements, deletions, renumbering and focus.
template <class Coll> struct LargeWorld {
    BoardStore store;
    std::unique_ptr<Coll> c;
    std::ostringstream log;
    SCC_ObjectEventHook<LargeWorld, int> hook;
    std::vector<std::unique_ptr<BoardObject>> gone; // kept so hooks stay valid

    explicit LargeWorld(const std::vector<std::pair<int, int>>& objects) {
        for (const auto& o : objects) store.Put(o.first, "", o.second);
        c.reset(new Coll(&store, nullptr));
        c->eventOf = [this](int h) {
            BoardObject* o = store.Find(h);
            return o ? &o->event : nullptr;
        };
        c->heard = [] {};
        hook.SetObject(this);
        hook.SetMethod(&LargeWorld::On);
        hook.Attach(c->GetChangeEvent());
        ApplySort(*c, 0, 0);
        c->AllowReload(1);
    }
    int On(int code, int* data) {
        log << code << ':' << SCC_DataToHandle(data) << ' ';
        return 0;
    }
    std::string Snapshot(const std::vector<int>& handles) {
        std::ostringstream out;
        out << "heard " << log.str() << "\nitems";
        log.str("");
        for (long i = 0; i < ItemCount(*c); ++i) out << ' ' << c->GetAt(i);
        out << "\nfocus";
        for (long i = 0; i < FocusCount(*c); ++i) out << ' ' << c->GetFocus(i);
        out << "\nat";
        for (int h : handles) out << ' ' << c->GetPositionByHandle(h);
        out << "\nhooks " << c->m_Hooks.size() << " temp " << c->m_HasTempItems << '\n';
        return out.str();
    }
};

std::string RunLarge(unsigned seed, int objects, int spread, int steps) {
    std::mt19937 rng(seed);
    auto pick = [&rng](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
    std::vector<int> pool; // every handle the run uses, present or not
    std::set<int> used;
    while (static_cast<int>(pool.size()) < objects * 2) {
        const int h = 1 + pick(spread);
        if (used.insert(h).second) pool.push_back(h);
    }
    std::vector<std::pair<int, int>> initial;
    for (int i = 0; i < objects; ++i) initial.emplace_back(pool[i], pick(4));
    LargeWorld<HostCollection> lib(initial);
    LargeWorld<reference::Collection> ref(initial);
    std::string history;
    for (int step = 0; step <= steps; ++step) {
        const std::string got = lib.Snapshot(pool), want = ref.Snapshot(pool);
        if (got != want)
            return "seed " + std::to_string(seed) + " step " + std::to_string(step) + "\n" +
                   history + "library:\n" + got + "reference:\n" + want;
        if (step == steps) break;
        std::vector<int> present;
        for (auto& o : lib.store.objects) present.push_back(o.first);
        const int h = pool[pick(static_cast<int>(pool.size()))];
        const int p = present.empty() ? 0 : present[pick(static_cast<int>(present.size()))];
        const int kind = pick(20), width = pick(4);
        history += "  " + std::to_string(kind) + " h=" + std::to_string(h) +
                   " p=" + std::to_string(p) + " w=" + std::to_string(width) + "\n";
        auto both = [&](const std::function<void(BoardStore&, BoardCollection*,
                                                 reference::Collection*)>& f) {
            f(lib.store, lib.c.get(), nullptr);
            f(ref.store, nullptr, ref.c.get());
        };
        auto bury = [&](BoardStore& s, int x) {
            (&s == &lib.store ? lib.gone : ref.gone).push_back(std::move(s.objects[x]));
            s.objects.erase(x);
        };
        if (kind < 3) { // a new object, announced
            if (lib.store.Find(h)) continue;
            both([&](BoardStore& s, BoardCollection*, reference::Collection*) {
                s.Put(h, "", width);
                s.changes.Notify(SCC_ObjectAdded, SCC_HandleToData(h));
            });
        } else if (kind < 9 && p) { // a new width, announced: moves across the list
            both([&](BoardStore& s, BoardCollection*, reference::Collection*) {
                s.Find(p)->width = kind < 7 ? width : (s.Find(p)->width + 1) % 4;
                s.Tell(p, SCC_ObjectChanged);
            });
        } else if (kind < 10 && p) { // announced twice: listed twice
            both([&](BoardStore& s, BoardCollection*, reference::Collection*) {
                s.changes.Notify(SCC_ObjectAdded, SCC_HandleToData(p));
            });
        } else if (kind < 12 && p) { // deleted, announced, gone
            both([&](BoardStore& s, BoardCollection*, reference::Collection*) {
                s.Tell(p, SCC_ObjectDeleted);
                bury(s, p);
            });
        } else if (kind < 15 && p) { // focus, mostly added
            const bool add = pick(6) != 0;
            both([&](BoardStore&, BoardCollection* l, reference::Collection* r) {
                if (l) l->SetFocus(p, add);
                if (r) r->SetFocus(p, add);
            });
        } else if (kind < 17) { // silent key changes, then a reload request
            std::vector<int> changed;
            for (int i = 0; i < 1 + pick(40) && !present.empty(); ++i)
                changed.push_back(present[pick(static_cast<int>(present.size()))]);
            both([&](BoardStore& s, BoardCollection*, reference::Collection*) {
                for (int x : changed) s.Find(x)->width = (s.Find(x)->width + 3) % 4;
                s.changes.Notify(SCC_CollectionReload, nullptr);
            });
        } else if (kind < 18 && p && !lib.store.Find(h)) { // renumbered to a free handle
            both([&](BoardStore& s, BoardCollection* l, reference::Collection* r) {
                s.objects[h] = std::move(s.objects[p]);
                s.objects.erase(p);
                if (l) l->renumber = {{p, h}};
                if (r) r->renumber = {{p, h}};
                s.changes.Notify(SCC_HandlesUpdated, nullptr);
            });
        } else if (kind < 20 && p) { // redrawn: nothing moves
            both([&](BoardStore& s, BoardCollection*, reference::Collection*) {
                s.Tell(p, SCC_ObjectRedrawn);
            });
        }
    }
    return "";
}

TEST(CollectionReference, LargeListsAgreeDenseAndSpreadHandles) {
    // Dense handles index by table, spread ones by hash; both rebuild their
    // index after enough moves, and drop it while a handle is listed twice.
    const struct {
        int objects, spread, steps;
    } cases[] = {{300, 700, 400}, {300, 1000000, 400}, {2000, 4100, 150}};
    unsigned seed = 11;
    for (const auto& k : cases) {
        const std::string diff = RunLarge(seed++, k.objects, k.spread, k.steps);
        EXPECT_TRUE(diff.empty()) << diff;
    }
}

} // namespace
