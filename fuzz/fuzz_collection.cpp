// Fuzzes the live containers through fuzzed sequences of host operations:
//
// - A store of host objects (a sort key, a flag, a change event each) with
//   a parent collection and a child collection over it, each with a filter,
//   a sort and a focus set.  Objects are added (announced or not), changed,
//   redrawn, deleted, renumbered and cleared as a host does it; collections
//   are suspended and resumed, reloaded, refiltered, resorted, cleared,
//   copied, walked, focused and given handle data, and the parent may go
//   away first.  After every step: the items are listed once each, in the
//   order of the sort, are objects of the store and pass the filter; the
//   focus is sorted by handle and holds only listed items; a full reload
//   lists exactly the objects that pass; a valid current position is the
//   host's slider; an iterator of the harness on the items follows its item
//   through insertions and deletions.  Where the collection is documented to
//   let its view go stale (a delivery missed on an object event that two
//   collections listen to; a replay of several items, over a reloaded list
//   or for an object deleted since; reloading off while the filter or sort
//   changes), those checks wait for the next full reload.
// - An int array with an arbitrary lower bound, three iterators and a shared
//   copy, driven by insertions and deletions of either sign, growth through
//   writes, appends, sorted insertion, searches and sorts, compared after
//   every step with a plain model: bounds, count, every element, the copy
//   untouched, and each iterator on the element it was on.
//
// Any assertion is a finding.
//   build/fuzz/fuzz/fuzz_collection -max_total_time=600 /tmp/corpus fuzz/corpus/collection
// Input: a flag byte (bit 0: the child reloads from the start; bit 1: the
// store is destroyed before the collections at the end), then one byte per
// step: with the top bit set an array operation, else a collection one,
// each followed by two operand bytes.  KEEL_FUZZ_TRACE=1 in the environment
// prints the steps of a rerun input.
#include <keel/SCC_SortableArray.h>
#include <keel/SCC_StdCollection.h>
#include <keel/SSM.h>
#include <keel/SYS_StdInterface.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace {

void Fail(const char* what, int line) {
    std::fprintf(stderr, "fuzz_collection: check failed at line %d: %s\n", line, what);
    __builtin_trap();
}
#define CHECK(c)                                                                                   \
    do {                                                                                           \
        if (!(c)) Fail(#c, __LINE__);                                                              \
    } while (0)

const bool g_Trace = std::getenv("KEEL_FUZZ_TRACE") != nullptr;

// The harness's own checks are left out of the coverage that steers the
// fuzzer: their loops would only add features of no interest and slow every
// run down.
#if defined(__clang__)
#define UNSTEERED __attribute__((no_sanitize("coverage")))
#else
#define UNSTEERED
#endif
const int kNone = SCC_Array<int>::Iterator::NoPosition;

class Input {
public:
    Input(const uint8_t* data, size_t size) : m_Data(data), m_Size(size) {}
    bool More() const { return m_At < m_Size; }
    uint8_t Byte() { return m_At < m_Size ? m_Data[m_At++] : 0; }

private:
    const uint8_t* m_Data;
    size_t m_Size;
    size_t m_At = 0;
};

// An assertion anywhere is a finding: the harness stays within the rules.
struct Assertions {
    SSM ssm;
    SCC_ObjectEventHook<Assertions, int> hook;
    Assertions() {
        hook.SetObject(this), hook.SetMethod(&Assertions::On), hook.Attach(&ssm.FailureEvent);
    }
    int On(int, int* data) {
        const SSM::AssertData* r = reinterpret_cast<const SSM::AssertData*>(data);
        std::fprintf(stderr, "fuzz_collection: assertion at %s:%d\n", r->File.GetString(), r->Line);
        __builtin_trap();
    }
};

// ===========================================================================
// The host: objects by handle.  Deleted and renumbered-away handles keep
// their object (and its event) until the input ends, so that a stale handle
// still has a key to sort by and no freed event is ever reused.

struct Object {
    int key = 0;
    int flag = 0;
    SCC_Notifier event;
};

// Handles are indices of `known`; they are never given out twice.
struct Store {
    std::vector<std::unique_ptr<Object>> owned;
    std::vector<Object*> known{nullptr}; // every handle ever given out (0 is none)
    std::vector<char> alive{0};          // whether the handle's object exists
    std::vector<int> renumber{0};        // old handle -> new (0: kept), while announcing code 8
    int liveCount = 0;
    SCC_Notifier changes; // where additions, reloads, clears and renumbering are announced

    bool Known(int h) const { return h > 0 && h < static_cast<int>(known.size()); }
    Object* Live(int h) const { return Known(h) && alive[h] ? known[h] : nullptr; }
    int Key(int h) const { return Known(h) ? known[h]->key : -1; }
    int NextLive(int h) const {
        for (int i = h < 0 ? 1 : h + 1; i < static_cast<int>(known.size()); ++i)
            if (alive[i]) return i;
        return 0;
    }
    int PrevLive(int h) const {
        for (int i = std::min(h, static_cast<int>(known.size())) - 1; i > 0; --i)
            if (alive[i]) return i;
        return 0;
    }
    std::vector<int> LiveHandles() const {
        std::vector<int> v;
        for (int h = NextLive(0); h; h = NextLive(h)) v.push_back(h);
        return v;
    }
    // At most 48 objects at a time, 400 handles in all: a view stays small
    // enough to be checked whole after every step.
    bool Full() const { return liveCount >= 48 || known.size() >= 400; }
    int Give(Object* o) {
        known.push_back(o);
        alive.push_back(1);
        renumber.push_back(0);
        ++liveCount;
        return static_cast<int>(known.size()) - 1;
    }
    int Make(int key, int flag) {
        owned.emplace_back(new Object);
        Object* o = owned.back().get();
        o->key = key;
        o->flag = flag;
        return Give(o);
    }
    void Kill(int h) {
        if (!Live(h)) return;
        alive[h] = 0;
        --liveCount;
    }
};

Store* g_Store = nullptr; // for the sort given as a plain function

int CompareKeys(const int& a, const int& b) {
    const int x = g_Store->Key(a), y = g_Store->Key(b);
    return x < y ? -1 : x > y ? 1 : 0;
}

// Orders handles by their object's key; equal keys are equal.
struct ByKey : SCC_Sort<int> {
    explicit ByKey(Store* s) : store(s) {}
    int Compare(const int& a, const int& b) override {
        const int x = store->Key(a), y = store->Key(b);
        return x < y ? -1 : x > y ? 1 : 0;
    }
    Store* store;
};

// Objects with the flag set, or with an even key; deleted ones never pass.
struct HostFilter : SYS_Filter {
    HostFilter(Store* s, int m) : store(s), mode(m) {}
    int IsTrue(int h) const override {
        const Object* o = store->Live(h);
        return o && (mode == 0 ? o->flag != 0 : o->key % 2 == 0);
    }
    Store* store;
    int mode;
};

class Collection : public SCC_StdCollection {
public:
    Collection(Store* s, SCC_StdCollection* parent, const char* name)
        : SCC_StdCollection(parent), store(s), name(name) {
        SetEvent(&s->changes);
        tracker.SetArray(&m_Items);
    }
    // A copy lists what `other` lists and joins the chains it is in; the
    // harness's iterator is not copied.
    Collection(const Collection& other)
        : SCC_StdCollection(other), store(other.store), name("copy"), slider(other.slider),
          filter(other.filter) {}

    Store* store;
    const char* name;
    int slider = 0;
    const HostFilter* filter = nullptr; // the filter set, for the model

    // What the harness knows of the view.
    bool itemsSound = true; // listed once each, sorted, live, passing
    bool focusSound = true; // focus sorted, each listed once
    bool rebuilt = false;   // a full reload ran in this step
    bool rebuiltWhileSuspended = false;
    int tracked = 0;                  // the item `tracker` should be on, 0 for none
    SCC_Array<int>::Iterator tracker; // the harness's iterator on the items

    bool Passes(int h) const { return store->Live(h) && (!filter || filter->IsTrue(h)); }
    // The objects a full reload lists, by handle.
    UNSTEERED std::vector<int> Expected() const {
        std::vector<int> v;
        for (int h = store->NextLive(0); h; h = store->NextLive(h))
            if (Passes(h)) v.push_back(h);
        return v;
    }
    std::vector<int> Items() const { return Values(m_Items); }
    std::vector<int> Focus() const { return Values(m_Focus); }
    UNSTEERED static std::vector<int> Values(const SCC_SortableArray<int>& a) {
        std::vector<int> v;
        for (int i = a.GetLowerBound(); i < a.GetUpperBound(); ++i) v.push_back(a[i]);
        return v;
    }
    UNSTEERED bool Listed(int h) const {
        const std::vector<int> items = Items();
        return std::find(items.begin(), items.end(), h) != items.end();
    }

protected:
    int _GetSlider() override { return slider; }
    void _SetSlider(int h) override { slider = h; }
    int _GetFirst() override { return slider = store->NextLive(0); }
    int _GetNext() override { return slider = store->NextLive(slider); }
    int _GetPrev() override { return slider = store->PrevLive(slider); }

    // A full reload lists exactly the objects that pass, in sort order; the
    // focus is rebuilt when the list changed.
    void Reload() override {
        const bool allowed = IsReloadAllowed() != 0;
        const std::vector<int> before = Items();
        SCC_StdCollection::Reload();
        if (!allowed) return;
        rebuilt = true;
        if (m_Suspended) rebuiltWhileSuspended = true;
        const std::vector<int> after = Items();
        std::vector<int> sorted = after;
        std::sort(sorted.begin(), sorted.end());
        CHECK(sorted == Expected());
        for (size_t i = 1; i < after.size(); ++i)
            CHECK(store->Key(after[i - 1]) <= store->Key(after[i]));
        itemsSound = true;
        if (after != before) focusSound = true;
    }

public:
    int OnNotification(int code, int* data) override {
        if (g_Trace)
            std::fprintf(stderr, "    %s hears %d for %d%s\n", name, code, SCC_DataToHandle(data),
                         m_Suspended ? " (queued)" : "");
        return SCC_StdCollection::OnNotification(code, data);
    }
    SCC_Notifier* GetEvent() override {
        Object* o = store->Live(slider);
        return o ? &o->event : nullptr;
    }
    int UpdateHandle(int h) override {
        return store->Known(h) && store->renumber[h] ? store->renumber[h] : h;
    }
};

// The checks after every step.
UNSTEERED void CheckCollection(Collection& c) {
    const std::vector<int> items = c.Items(), focus = c.Focus();
    const int n = static_cast<int>(items.size());
    // The accessors agree with the arrays (the search by handle, a linear
    // scan, for the first, middle and last item).
    for (int i = 0; i < n; ++i) CHECK(c.GetAt(i) == items[static_cast<size_t>(i)]);
    for (int i : {0, n / 2, n - 1})
        if (i >= 0 && i < n) {
            const int h = items[static_cast<size_t>(i)];
            CHECK(c.GetPositionByHandle(h) ==
                  std::find(items.begin(), items.end(), h) - items.begin());
        }
    std::vector<int> sorted = items;
    std::sort(sorted.begin(), sorted.end());
    CHECK(c.GetAt(n) == 0 && c.GetAt(-1) == 0 && c.GetPositionByHandle(0) == -1);
    CHECK(c.HasFocus() == (focus.empty() ? 0 : 1));
    for (size_t i = 0; i < focus.size(); ++i) {
        CHECK(c.GetFocus(static_cast<long>(i)) == focus[i]);
        if (i) CHECK(focus[i - 1] <= focus[i]); // sorted by handle, always
        long at = -1;
        CHECK(c.IsInFocus(focus[i], &at));
        CHECK(focus[static_cast<size_t>(at)] == focus[i] && (at == 0 || focus[at - 1] < focus[i]));
    }
    CHECK(c.GetFocus(static_cast<long>(focus.size())) == 0);
    // A valid current position stands on the host's slider.
    if (!c.IsEmpty()) {
        CHECK(c.GetPosition() >= 0 && c.GetPosition() < n);
        CHECK(c.GetAt(c.GetPosition()) == c.slider);
    }
    if (c.m_Suspended) return; // the view waits for the replay

    if (c.itemsSound) {
        CHECK(std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end());
        for (int i = 0; i < n; ++i) {
            const int h = items[static_cast<size_t>(i)];
            CHECK(c.Passes(h));
            if (i) CHECK(c.store->Key(items[static_cast<size_t>(i) - 1]) <= c.store->Key(h));
        }
    }
    if (c.itemsSound && c.focusSound)
        for (size_t i = 0; i < focus.size(); ++i) {
            CHECK(i == 0 || focus[i - 1] < focus[i]);
            CHECK(std::binary_search(sorted.begin(), sorted.end(), focus[i]));
        }
}

// The harness's iterator on the items follows its item: where the item is
// still listed and was not itself moved, the iterator is on it; where it
// went, the iterator has no position.
UNSTEERED void CheckTracker(Collection& c, const std::set<int>& touched) {
    if (c.rebuilt) c.tracked = 0;
    if (!c.tracked) return;
    const std::vector<int> items = c.Items();
    const int p = c.tracker.GetPosition();
    const auto it = std::find(items.begin(), items.end(), c.tracked);
    if (it == items.end()) {
        CHECK(p == kNone);
        c.tracked = 0;
    } else if (p == kNone) {
        CHECK(touched.count(c.tracked));
        c.tracked = 0;
    } else {
        // On its item (a stale list may hold it twice).
        CHECK(p >= 0 && p < static_cast<int>(items.size()) &&
              items[static_cast<size_t>(p)] == c.tracked);
    }
}

// ===========================================================================
// The array machine: a model of bounds and elements, and iterators that
// should be on a given index (kNone for none; kLost when the model does not
// follow it).

const int kLost = -0x40000000;
const int kKeyShift = 20;

int KeyOf(int v) { return v >> kKeyShift; }
int CompareArrayKeys(const int& a, const int& b) {
    return KeyOf(a) < KeyOf(b) ? -1 : KeyOf(a) > KeyOf(b) ? 1 : 0;
}

struct ArrayModel {
    int lo = 0;
    std::vector<int> v;      // the elements from lo on
    std::vector<bool> known; // false where the storage's contents are unspecified
    int Hi() const { return lo + static_cast<int>(v.size()); }
    int Count() const { return static_cast<int>(v.size()); }
};

// Where each element of a model goes: its new index by its old one, kNone
// for an element that goes away.
struct Moves {
    int lo;
    std::vector<int> to;
    explicit Moves(const ArrayModel& m) : lo(m.lo), to(m.v.size(), kNone) {}
    int& operator[](int i) { return to[static_cast<size_t>(i - lo)]; }
    int At(int i) const { return to[static_cast<size_t>(i - lo)]; }
};

struct ArrayMachine {
    SCC_SortableArray<int> array;
    SCC_SortableArray<int> copy;
    ArrayModel model, copyModel;
    SCC_Array<int>::Iterator iterators[3];
    int expected[3] = {kLost, kLost, kLost};
    int nextId = 1;

    ArrayMachine() {
        array.SetSortFunction(CompareArrayKeys);
        for (SCC_Array<int>::Iterator& it : iterators) it.SetArray(&array, 0);
        for (int& e : expected) e = 0;
    }

    int Fresh(int key) { return (key & 7) << kKeyShift | (nextId++ & 0xFFFFF); }

    // Old index -> new index for every element the operation keeps; the new
    // model; then iterators on elements follow them.
    UNSTEERED void Apply(const ArrayModel& next, const Moves& moves, bool clear = false) {
        for (int k = 0; k < 3; ++k) {
            const int p = expected[k];
            if (p == kLost || p == kNone) continue;
            const bool onElement = p >= model.lo && p < model.Hi();
            if (!onElement) {
                expected[k] = clear && p == 0 ? 0 : kLost;
                continue;
            }
            expected[k] = moves.At(p);
        }
        model = next;
    }

    void Insert(int index, int count) {
        ArrayModel next = model;
        Moves moves(model);
        const int L = model.lo, H = model.Hi(), n = model.Count();
        auto shift = [&](int by) {
            for (int i = L; i < H; ++i) moves[i] = i + by;
        };
        if (n == 0) {
            next.lo = index;
            next.v.assign(static_cast<size_t>(count), 0);
            next.known.assign(static_cast<size_t>(count), false);
        } else if (index < L) {
            const int newLo = std::min(index, index + count);
            const int base = count > 0 && index + count > L ? index + count : L;
            Rebuild(next, newLo, std::max(H, base + n), base);
            shift(base - L);
        } else if (index >= H) {
            if (count >= 0) {
                Rebuild(next, L, index + count, L);
                shift(0);
            } else if (index + count < H) {
                const int newLo = index - n + count;
                Rebuild(next, newLo, index, newLo);
                shift(newLo - L);
            } else {
                Rebuild(next, L, index, L);
                shift(0);
            }
        } else if (count > 0) {
            next.v.insert(next.v.begin() + (index - L), static_cast<size_t>(count), 0);
            next.known.insert(next.known.begin() + (index - L), static_cast<size_t>(count), false);
            for (int i = L; i < H; ++i) moves[i] = i < index ? i : i + count;
        } else if (count < 0) {
            next.lo = L + count;
            next.v.insert(next.v.begin() + (index - L), static_cast<size_t>(-count), 0);
            next.known.insert(next.known.begin() + (index - L), static_cast<size_t>(-count), false);
            for (int i = L; i < H; ++i) moves[i] = i < index ? i + count : i;
        } else {
            shift(0);
        }
        array.Insert(index, count);
        Apply(next, moves);
    }

    // `next` becomes the bounds [lo, hi) with the old elements placed from
    // `at` on and every other slot unknown.
    UNSTEERED void Rebuild(ArrayModel& next, int lo, int hi, int at) {
        next.lo = lo;
        next.v.assign(static_cast<size_t>(hi - lo), 0);
        next.known.assign(static_cast<size_t>(hi - lo), false);
        for (int i = 0; i < model.Count(); ++i) {
            next.v[static_cast<size_t>(at - lo + i)] = model.v[static_cast<size_t>(i)];
            next.known[static_cast<size_t>(at - lo + i)] = model.known[static_cast<size_t>(i)];
        }
    }

    void Delete(int index, int count) {
        const int L = model.lo, H = model.Hi(), e = index + count;
        Moves moves(model);
        ArrayModel next = model;
        if (index < L || index >= H || e < L || e > H) {
            // Outside the bounds: nothing happens.
            for (int i = L; i < H; ++i) moves[i] = i;
        } else if (count > 0) {
            next.v.erase(next.v.begin() + (index - L), next.v.begin() + (e - L));
            next.known.erase(next.known.begin() + (index - L), next.known.begin() + (e - L));
            if (next.v.empty()) next.lo = 0;
            for (int i = L; i < H; ++i)
                if (i < index || i >= e) moves[i] = i < index ? i : i - count;
        } else {
            // A count that is not positive moves the block below index + count
            // up by 1 - count, over the element at index, and lowers the lower
            // bound by -count.
            next.lo = L + count;
            next.v.assign(static_cast<size_t>(H - next.lo), 0);
            next.known.assign(next.v.size(), false);
            auto set = [&](int at, int from) {
                next.v[static_cast<size_t>(at - next.lo)] = model.v[static_cast<size_t>(from - L)];
                next.known[static_cast<size_t>(at - next.lo)] =
                    model.known[static_cast<size_t>(from - L)];
            };
            for (int i = index; i < H; ++i) set(i, i);
            for (int i = L; i < e; ++i) {
                set(i + 1 - count, i);
                moves[i] = i + 1 - count;
            }
            for (int i = index; i < H; ++i) moves[i] = i; // by position: index is overwritten
        }
        array.Delete(index, count);
        Apply(next, moves);
    }

    // A write through the writable accessor, or through an iterator on i:
    // grows the bounds to take in i.
    void Write(int i, int value, SCC_Array<int>::Iterator* through = nullptr) {
        ArrayModel next = model;
        Moves moves(model);
        for (int k = model.lo; k < model.Hi(); ++k) moves[k] = k;
        if (model.Count() == 0) {
            Rebuild(next, i < 0 ? i : 0, i < 0 ? 0 : i + 1, 0);
        } else if (i >= model.Hi()) {
            Rebuild(next, model.lo, i + 1, model.lo);
        } else if (i < model.lo) {
            Rebuild(next, i, model.Hi(), model.lo);
        }
        next.v[static_cast<size_t>(i - next.lo)] = value;
        next.known[static_cast<size_t>(i - next.lo)] = true;
        if (through)
            *through = value;
        else
            array[i] = value;
        Apply(next, moves);
    }

    // The equal-run search step by step as documented, on the model with
    // comparisons by key: a bisection whose middle is (first + last) / 2
    // truncated toward zero, so that with negative indices the run it finds
    // is not always the place the order asks for.
    UNSTEERED void FindRun(int item, long& first, long& last) const {
        if (model.Count() == 0) {
            first = last = 0;
            return;
        }
        auto c = [&](long i) {
            return CompareArrayKeys(model.v[static_cast<size_t>(i - model.lo)], item);
        };
        first = model.lo;
        last = model.Hi() - 1;
        long cf = c(first), cl = c(last);
        if (cf >= 0) {
            last = first;
        } else if (cl < 0) {
            first = last = last + 1;
        } else if (cl == 0) {
            first = last++;
        } else {
            while (last - first > 0) {
                long mid = (first + last) / 2;
                const long cm = c(mid);
                if (cm * cf <= 0) {
                    cl = cm;
                    if (last == mid && cm != 0) --mid;
                    last = mid;
                }
                if (cm * cl <= 0) {
                    cf = cm;
                    if (first == mid && cm != 0) ++mid;
                    first = mid;
                }
            }
        }
        while (first > model.lo && c(first - 1) == 0) --first;
        while (last < model.Hi() && c(last) == 0) ++last;
    }

    UNSTEERED bool Sorted() const {
        for (size_t i = 1; i < model.v.size(); ++i)
            if (KeyOf(model.v[i - 1]) > KeyOf(model.v[i])) return false;
        // Comparisons are multiplied by the recorded direction.
        return !array.m_Buffer || array.m_Buffer->m_SortOrder == 1;
    }

    // Slots with unspecified contents get fresh values, so that every
    // element is known; then everything is compared with the model.
    UNSTEERED void Settle() {
        for (size_t i = 0; i < model.v.size(); ++i) {
            if (model.known[i]) continue;
            const int value = Fresh(static_cast<int>(nextId % 8));
            array[model.lo + static_cast<int>(i)] = value;
            model.v[i] = value;
            model.known[i] = true;
        }
        CHECK(array.GetLowerBound() == model.lo && array.GetUpperBound() == model.Hi());
        CHECK(array.GetCount() == model.Count() && array.IsEmpty() == (model.Count() == 0));
        CHECK(!array.InBounds(model.lo - 1) && !array.InBounds(model.Hi()));
        if (const _SCC_ArrayBuffer* b = array.m_Buffer)
            CHECK(b->m_AllocLower <= b->m_Lower && b->m_Lower <= b->m_Upper &&
                  b->m_Upper <= b->m_AllocUpper);
        for (int i = 0; i < model.Count(); ++i)
            CHECK(static_cast<const SCC_SortableArray<int>&>(array)[model.lo + i] ==
                  model.v[static_cast<size_t>(i)]);
        CHECK(copy.GetLowerBound() == copyModel.lo && copy.GetCount() == copyModel.Count());
        for (int i = 0; i < copyModel.Count(); ++i)
            CHECK(static_cast<const SCC_SortableArray<int>&>(copy)[copyModel.lo + i] ==
                  copyModel.v[static_cast<size_t>(i)]);
        for (int k = 0; k < 3; ++k)
            if (expected[k] != kLost) CHECK(iterators[k].GetPosition() == expected[k]);
    }

    void Step(uint8_t op, Input& in) {
        const int L = model.lo, H = model.Hi(), n = model.Count();
        const uint8_t a = in.Byte(), b = in.Byte();
        const int index = L - 4 + a % (n + 9);
        if (g_Trace)
            std::fprintf(stderr, "array op %d (%d %d) bounds %d..%d\n", op & 15, a, b, L, H);
        switch (op & 15) {
        case 0: { // Insert, either sign; not count <= 0 without storage
            const int count = static_cast<int>(b % 16) - 6;
            if (n + std::abs(count) + 8 > 200 || (n == 0 && count <= 0)) break;
            Insert(index, count);
            break;
        }
        case 1: { // Delete, either sign, only with storage
            if (n == 0) break;
            Delete(index, static_cast<int>(b % 14) - 4);
            break;
        }
        case 2: { // Clear
            Moves moves(model);
            if (model.lo <= 0 && 0 < model.Hi()) moves[0] = 0; // the zeroed fields keep 0
            array.Clear();
            Apply(ArrayModel(), moves, true);
            break;
        }
        case 3: // Append
            if (n > 190) break;
            Write(n ? H : 0, Fresh(b));
            break;
        case 4: // a write anywhere near the bounds
            if (n > 190) break;
            Write(index, Fresh(b));
            break;
        case 5: { // sorted insertion, and the searches, on sorted contents
            if (!Sorted() || n > 190) break;
            const int value = Fresh(b);
            long first = -1, last = -1, wantFirst = 0, wantLast = 0;
            array.FindItemPosition(value, first, last);
            FindRun(value, wantFirst, wantLast);
            CHECK(first == wantFirst && last == wantLast);
            if (n) {
                // Find looks for the very element within the run it finds.
                const int existing = model.v[a % n];
                FindRun(existing, wantFirst, wantLast);
                long want = wantFirst;
                while (want < wantLast && model.v[static_cast<size_t>(want - L)] != existing)
                    ++want;
                long at = -1;
                CHECK(array.Find(existing, at) == (want < wantLast ? 1 : 0) && at == want);
                CHECK(array.Find(value, at) == 0 && at == last);
                for (int i = L; i < H; ++i) CHECK(array.ItemInValidPlace(i) == 1);
            }
            if (a & 1) break;
            const int at = static_cast<int>(last);
            Moves moves(model);
            for (int i = L; i < H; ++i) moves[i] = i < at ? i : i + 1;
            ArrayModel next = model;
            if (n == 0) next.lo = 0;
            next.v.insert(next.v.begin() + (at - next.lo), value);
            next.known.insert(next.known.begin() + (at - next.lo), true);
            CHECK(array.InsertSorted(value) == at);
            Apply(next, moves);
            break;
        }
        case 6: { // Sort a range within the bounds, either direction
            if (n == 0) break;
            const int start = L + a % n;
            const int count = b % (H - start + 1);
            const int direction = b & 0x80 ? -1 : 1;
            std::vector<int> range(model.v.begin() + (start - L),
                                   model.v.begin() + (start - L + count));
            // The direction is recorded in the block; a shared block is
            // recorded, then copied for the swaps into a new one (order 1).
            const bool shared = array.m_Buffer->GetRefCount() > 1;
            array.Sort(start, count, direction);
            CHECK(array.m_Buffer->m_SortOrder == (shared && count >= 2 ? 1 : direction));
            std::vector<int> after;
            for (int i = start; i < start + count; ++i) after.push_back(array[i]);
            std::vector<int> was = range, now = after;
            std::sort(was.begin(), was.end());
            std::sort(now.begin(), now.end());
            CHECK(was == now);
            if (direction == 1)
                for (size_t i = 1; i < after.size(); ++i)
                    CHECK(KeyOf(after[i - 1]) <= KeyOf(after[i]));
            std::copy(after.begin(), after.end(), model.v.begin() + (start - L));
            break;
        }
        case 7: // the order check, on any contents
            if (n == 0 || !Sorted()) break;
            CHECK(array.ItemInValidPlace(L + a % n) == 1);
            break;
        case 8: // a copy that shares the storage
            copy = array;
            copyModel = model;
            break;
        case 9: // a write into the copy, within its bounds
            if (copyModel.Count() == 0) break;
            {
                const int i = copyModel.lo + a % copyModel.Count();
                const int value = Fresh(b);
                copy[i] = value;
                copyModel.v[static_cast<size_t>(i - copyModel.lo)] = value;
            }
            break;
        case 10: { // put an iterator somewhere
            const int k = b % 3;
            if (a == 255) {
                iterators[k].SetArray(&array);
                expected[k] = n ? L : 0;
            } else {
                iterators[k].SetArray(&array, index);
                expected[k] = index;
            }
            break;
        }
        case 11: { // step an iterator
            const int k = b % 3;
            if (expected[k] == kLost || expected[k] == kNone) break;
            if (a & 1)
                ++iterators[k];
            else
                --iterators[k];
            expected[k] += a & 1 ? 1 : -1;
            break;
        }
        case 12: { // read or write through an iterator near the bounds
            const int k = b % 3;
            const int p = expected[k];
            if (p == kLost || p == kNone || p < L - 8 || p > H + 8 || n > 190) break;
            if (a & 1)
                Write(p, Fresh(b), &iterators[k]);
            else if (p >= L && p < H) {
                CHECK(*iterators[k] == model.v[static_cast<size_t>(p - L)]);
            }
            break;
        }
        default:
            break;
        }
        Settle();
    }
};

// ===========================================================================
// The collection machine.

struct CollectionMachine {
    std::unique_ptr<Store> owner{new Store};
    Store& store = *owner;
    HostFilter flagged{&store, 0}, evenKeys{&store, 1};
    std::unique_ptr<Collection> parent, child;

    explicit CollectionMachine(bool childReloads) {
        g_Store = &store;
        parent.reset(new Collection(&store, nullptr, "parent"));
        parent->SetSort(new ByKey(&store), 0);
        parent->AllowReload(1);
        child.reset(new Collection(&store, parent.get(), "child"));
        child->SetSort(CompareKeys, 0);
        if (childReloads) child->AllowReload(1);
    }

    std::vector<Collection*> Alive() {
        std::vector<Collection*> all;
        if (parent) all.push_back(parent.get());
        all.push_back(child.get());
        return all;
    }
    bool AnySuspended() {
        for (Collection* c : Alive())
            if (c->m_Suspended) return true;
        return false;
    }
    Collection& Pick(uint8_t b) { return (b & 1) && parent ? *parent : *child; }

    // A handle from an operand: mostly a live one, sometimes a deleted or
    // unknown one, or 0.
    int Handle(uint8_t b) {
        if (b >= 248 || store.known.size() < 2) return 0;
        if (b >= 240) return 1 + static_cast<int>(b % (store.known.size() - 1));
        const std::vector<int> live = store.LiveHandles();
        return live.empty() ? 0 : live[b % live.size()];
    }
    int ItemAt(Collection& c, uint8_t b) {
        const std::vector<int> items = c.Items();
        return items.empty() ? Handle(b) : items[b % items.size()];
    }

    // A notification on an object's own event.  A collection whose hook
    // leaves the event while it is being delivered (its last listed item of
    // that event went, or moved and got a new hook) makes the next hook in
    // the chain miss this one delivery, as events are documented to do: with
    // two listeners, a view may go stale until its next reload.
    void Tell(int h, int code) {
        Object* o = store.Live(h);
        int listeners = 0;
        for (SCC_EventNode<int>* n = o->event.next; n != &o->event; n = n->next) ++listeners;
        o->event.Notify(code, SCC_HandleToData(h));
        if (listeners > 1 && code != SCC_ObjectRedrawn)
            for (Collection* c : Alive()) c->itemsSound = c->focusSound = false;
    }

    void Step(uint8_t op, Input& in, std::set<int>& touched) {
        const uint8_t a = in.Byte(), b = in.Byte();
        Collection& c = Pick(b >> 7);
        if (g_Trace)
            std::fprintf(stderr, "collection op %d (%d %d) on %s: %d live, %d items\n", op % 24, a,
                         b, c.name, store.liveCount, c.m_Items.GetCount());
        switch (op % 24) {
        case 0: { // an object is added and announced
            if (store.Full()) break;
            const int h = store.Make(b % 8, (b >> 3) & 1);
            touched.insert(h);
            store.changes.Notify(SCC_ObjectAdded, SCC_HandleToData(h));
            break;
        }
        case 1: // an object is added without a word
            if (store.Full()) break;
            store.Make(b % 8, (b >> 3) & 1);
            break;
        case 2:   // an object's key changes, told on its event
        case 3:   // its flag changes, told on its event
        case 4: { // its key changes, told on the store's event
            const int h = Handle(a);
            Object* o = store.Live(h);
            if (!o) break;
            touched.insert(h);
            if (op % 24 == 3)
                o->flag = !o->flag;
            else
                o->key = b % 8;
            if (op % 24 == 4)
                store.changes.Notify(SCC_ObjectChanged, SCC_HandleToData(h));
            else
                Tell(h, SCC_ObjectChanged);
            break;
        }
        case 5: { // redrawn, which changes nothing: not while a replay could lose a change
            const int h = Handle(a);
            if (!store.Live(h) || AnySuspended()) break;
            Tell(h, SCC_ObjectRedrawn);
            break;
        }
        case 6: { // an object is deleted, told on its event or on the store's
            const int h = Handle(a);
            if (!store.Live(h)) break;
            touched.insert(h);
            std::vector<bool> listed;
            for (Collection* x : Alive()) listed.push_back(!x->m_Suspended && x->Listed(h));
            if (b & 1)
                store.changes.Notify(SCC_ObjectDeleted, SCC_HandleToData(h));
            else
                Tell(h, SCC_ObjectDeleted);
            // A collection that let the item go forgot its handle data.
            for (size_t i = 0; i < listed.size(); ++i)
                if (listed[i] && !Alive()[i]->Listed(h)) CHECK(Alive()[i]->GetHandleData(h) == 0);
            store.Kill(h);
            break;
        }
        case 7: { // focus one item, or add one to the focus
            const int h = b & 2 ? ItemAt(c, a) : Handle(a);
            const bool add = b & 1;
            if (add && c.IsInFocus(h, nullptr)) break; // see case 8
            const bool listed = h && c.Listed(h);
            std::vector<int> want = add && listed ? c.Focus() : std::vector<int>();
            if (listed) want.insert(std::upper_bound(want.begin(), want.end(), h), h);
            const int slider = c.slider;
            c.SetFocus(h, add);
            // (A focus change may have a child reload, and the child the
            // parent; a reload that lists anew rebuilds the focus.)
            if (!c.rebuilt) CHECK(c.Focus() == want);
            if (!add && listed) {
                CHECK(c.GetPosition() == kNone);
                CHECK(c.slider == (slider && c.Listed(slider) ? slider : 0));
                c.focusSound = true;
            }
            if (!listed) c.focusSound = true; // cleared
            break;
        }
        case 8: { // focusing a focused item again lists it twice
            const int h = ItemAt(c, a);
            if (!h || !c.IsInFocus(h, nullptr) || !c.Listed(h)) break;
            const int count = c.m_Focus.GetCount();
            c.SetFocus(h, true);
            CHECK(c.m_Focus.GetCount() == count + 1);
            c.SetFocus(h, false);
            CHECK(c.Focus() == std::vector<int>{h});
            c.focusSound = true;
            break;
        }
        case 9: // suspend, or resume and replay
            if (b & 1) {
                if (!c.m_Suspended) c.rebuiltWhileSuspended = false;
                c.Suspend(1);
            } else if (c.m_Suspended) {
                // Each handle hears its latest notification.
                std::map<int, int> latest;
                for (const auto& entry : c.m_Queue) latest[entry.second] = entry.first;
                bool deadChange = false; // an addition or change of an object gone since
                for (const auto& entry : latest) {
                    touched.insert(entry.first);
                    deadChange = deadChange ||
                                 (entry.second != SCC_ObjectDeleted && !store.Live(entry.first));
                }
                // Several replayed items, a replay over a reloaded list, or a
                // change replayed for an object whose deletion the collection
                // did not hear (it listened to the object's event only once
                // it listed it) can leave the list stale until a reload.
                const bool stale =
                    latest.size() > 1 || (c.rebuiltWhileSuspended && !latest.empty()) || deadChange;
                c.Suspend(0);
                CHECK(c.m_Queue.empty() && !c.m_Suspended);
                if (stale) c.itemsSound = c.focusSound = false;
            }
            break;
        case 10: { // reloading on or off
            // Turning it off when it is off reloads, which may tell the
            // child, whose reload turns the parent's reloading on again.
            const bool quiet = c.IsReloadAllowed() || (b & 1) || &c != parent.get();
            c.AllowReload(b & 1);
            if (quiet) CHECK(c.IsReloadAllowed() == (b & 1));
            break;
        }
        case 11: { // another filter
            HostFilter* filters[] = {nullptr, &flagged, &evenKeys};
            HostFilter* f = filters[b % 3];
            const bool allowed = c.IsReloadAllowed();
            c.filter = f;
            c.SetFilter(f);
            if (!allowed && !c.rebuilt) c.itemsSound = false; // listed by the old filter
            break;
        }
        case 12: { // another sort object (always ascending, whatever the flag)
            const bool focused = c.m_Focus.GetCount() > 0;
            if (b & 2)
                c.SetSort(new ByKey(&store), b & 1);
            else
                c.SetSort(CompareKeys, b & 1);
            // The list starts empty again, and stays so unless a reload lists
            // anew (its own, or one the child's reload asks of the parent);
            // the focus is only rebuilt when that reload lists something.
            if (!c.rebuilt) {
                CHECK(c.m_Items.GetCount() == 0);
                c.itemsSound = true;
            }
            if (focused && (!c.rebuilt || c.Expected().empty())) c.focusSound = false;
            c.tracked = 0;
            break;
        }
        case 13: { // handle data, announced as a change
            // (Only for objects that exist: without a filter, a change told
            // for any other handle adds it.)
            const int h = Handle(a);
            if (!store.Live(h)) break;
            touched.insert(h);
            c.SetHandleData(h, b);
            CHECK(c.GetHandleData(h) == b);
            break;
        }
        case 14: { // walk
            const std::vector<int> items = c.Items();
            const int n = static_cast<int>(items.size());
            switch (b % 5) {
            case 0: {
                const int more = c.GetFirst();
                CHECK(more == (n ? 1 : 0));
                if (n)
                    CHECK(c.GetPosition() == 0 && c.slider == items[0]);
                else
                    CHECK(c.GetPosition() == kNone && c.slider == 0);
                break;
            }
            case 1:
            case 2: {
                const bool valid = !c.IsEmpty();
                const long at = c.GetPosition();
                const int slider = c.slider;
                const int more = b % 5 == 1 ? c.GetNext() : c.GetPrev();
                const long want = valid ? at + (b % 5 == 1 ? 1 : -1) : at;
                CHECK(c.GetPosition() == want);
                CHECK(more == (valid && want >= 0 && want < n ? 1 : 0));
                CHECK(c.slider == (more ? items[static_cast<size_t>(want)] : slider));
                break;
            }
            case 3: {
                const int h = a & 1 ? ItemAt(c, a >> 1) : Handle(a);
                c.SetSlider(h);
                const long at = c.GetPositionByHandle(h);
                CHECK(c.GetPosition() == (at >= 0 ? at : kNone));
                CHECK(c.slider == (at >= 0 ? h : 0) && c.IsEmpty() == (at >= 0 ? 0 : 1));
                break;
            }
            default:
                if (!n) break;
                c.SetPosition(a % n);
                CHECK(c.GetPosition() == a % n && c.slider == items[a % n] && !c.IsEmpty());
            }
            break;
        }
        case 15: { // the next object after one that passes the filter
            const int h = Handle(a);
            const int slider = c.slider;
            int want = c.Listed(h) ? h : 0;
            do want = store.NextLive(want);
            while (want && !c.Passes(want));
            CHECK(c.FindNextTempItem(h) == want);
            CHECK(c.slider == (slider && c.Listed(slider) ? slider : 0));
            break;
        }
        case 16: { // some handles are renumbered, never while a collection is suspended
            if (AnySuspended() || store.Full()) break;
            // The object moves to a new handle; the old one keeps naming it
            // for the sort, but is no longer alive.
            for (int h : store.LiveHandles())
                if ((h + b) % 3 == 0) {
                    const int moved = store.Give(store.known[static_cast<size_t>(h)]);
                    store.Kill(h);
                    store.renumber[static_cast<size_t>(h)] = moved;
                }
            std::vector<std::vector<int>> before;
            for (Collection* x : Alive()) before.push_back(x->Items());
            store.changes.Notify(SCC_HandlesUpdated, nullptr);
            for (size_t i = 0; i < Alive().size(); ++i) {
                Collection* x = Alive()[i];
                std::vector<int> want = before[i];
                for (int& h : want) h = x->UpdateHandle(h);
                CHECK(x->Items() == want);
                x->tracked = x->UpdateHandle(x->tracked);
            }
            std::fill(store.renumber.begin(), store.renumber.end(), 0);
            break;
        }
        case 17: { // everything is cleared, then the objects go
            store.changes.Notify(SCC_CollectionCleared, nullptr);
            for (Collection* x : Alive()) {
                CHECK(x->m_Items.GetCount() == 0 && x->m_Focus.GetCount() == 0);
                CHECK(x->m_HandleData.empty() && x->m_Hooks.empty());
                x->itemsSound = x->focusSound = true;
                x->tracked = 0;
            }
            for (int h : store.LiveHandles()) store.Kill(h);
            break;
        }
        case 18: // a reload is requested; it empties the queues
            for (Collection* x : Alive())
                if (x->m_Suspended && !x->IsReloadAllowed()) x->itemsSound = x->focusSound = false;
            store.changes.Notify(SCC_CollectionReload, nullptr);
            for (Collection* x : Alive()) CHECK(x->m_Queue.empty());
            break;
        case 19: { // the collection forgets everything and stops reloading
            // (Unless reloading was off already: then the reload that
            // AllowReload(0) makes may tell the child, whose reload turns the
            // parent's reloading on again.)
            const bool quiet = c.IsReloadAllowed() || &c != parent.get();
            c.Clear();
            if (quiet)
                CHECK(c.m_Items.GetCount() == 0 && c.m_Focus.GetCount() == 0 &&
                      c.m_HandleData.empty() && !c.IsReloadAllowed());
            c.itemsSound = c.focusSound = true;
            c.tracked = 0;
            break;
        }
        case 20: // the parent's listeners hear nothing for a while
            if (parent) parent->EnableNotifications(b & 1);
            break;
        case 21: { // the harness's iterator goes onto an item
            const int n = c.m_Items.GetCount();
            if (!n) break;
            c.tracker.SetArray(&c.m_Items, b % n);
            c.tracked = c.Items()[b % n];
            break;
        }
        case 22: // the parent goes first
            if (!parent || !(b & 1)) break;
            parent.reset();
            CHECK(child->m_Parent == nullptr);
            break;
        default: { // a copy lists the same, and leaves again
            Collection copy(c);
            CHECK(copy.Items() == c.Items() && copy.Focus() == c.Focus());
            CHECK(copy.IsEmpty() == c.IsEmpty());
            break;
        }
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Assertions* assertions = new Assertions; // lives as long as the process
    (void)assertions;
    Input in(data, size);
    const uint8_t flags = in.Byte();

    std::unique_ptr<CollectionMachine> collections(new CollectionMachine(flags & 1));
    ArrayMachine arrays;
    while (in.More()) {
        const uint8_t op = in.Byte();
        if (op & 0x80) {
            arrays.Step(op, in);
            continue;
        }
        std::set<int> touched;
        for (Collection* c : collections->Alive()) c->rebuilt = false;
        collections->Step(op, in, touched);
        for (Collection* c : collections->Alive()) {
            if (g_Trace) {
                std::fprintf(stderr, "  %s:", c->name);
                for (int h : c->Items()) std::fprintf(stderr, " %d", h);
                std::fprintf(stderr, " | focus");
                for (int h : c->Focus()) std::fprintf(stderr, " %d", h);
                std::fprintf(stderr, "%s\n", c->m_Suspended ? " (suspended)" : "");
            }
            CheckCollection(*c);
            CheckTracker(*c, touched);
        }
    }
    // The store, and the events of its objects, may go before the
    // collections that listen to them.
    if (flags & 2) collections->owner.reset();
    return 0;
}
