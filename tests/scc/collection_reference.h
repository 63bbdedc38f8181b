// collection_reference.h - a slow, plain model of the standard collection
// for the differential test in test_collection_reference.cpp.
//
// The model keeps its lists in std::vector and does everything the long way,
// one documented rule after another: the equal-run search and sorted
// insertion, the order check, the quicksort with its selection sort for short
// ranges, the way a cursor follows block moves, and every step of
// OnNotification, Reload, SetFocus and Suspend.  It hooks the same host
// store (board_store.h) through the same event classes, so that a faster
// SCC_StdCollection can be held to it result for result: item order, focus,
// hooks, notifications and their order, positions and the host's slider.
#ifndef KEEL_TESTS_COLLECTION_REFERENCE_H
#define KEEL_TESTS_COLLECTION_REFERENCE_H

#include "tests/scc/board_store.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace reference {

const int kNone = 0x7FFFFFFF; // a cursor without a position

// a < b: negative, equal: 0, a > b: positive.  Null: ascending int order.
typedef std::function<int(int, int)> Compare;

class List;

// A position in a List that follows its element through insertions and
// deletions, as an array iterator does.  Detached: no list, kNone.
struct Cursor {
    List* list = nullptr;
    long pos = kNone;
    Cursor() = default;
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;
    ~Cursor() { Detach(); }
    inline void Detach();
};

// An int array whose lower bound stays 0 (the collection never moves it).
// Every comparison is the sort's result times the recorded direction, which
// is always 1 here: the only sort with another direction runs on an empty
// list, and an empty list records nothing.
class List {
public:
    std::vector<int> v;
    Compare compare;
    std::vector<Cursor*> cursors;

    int Count() const { return static_cast<int>(v.size()); }
    bool In(long i) const { return i >= 0 && i < Count(); }
    int Cmp(int a, int b) const {
        if (compare) return compare(a, b);
        return a == b ? 0 : (a > b ? 1 : -1);
    }
    int Comp(int i, int j) const { return Cmp(v[i], v[j]); }

    void Attach(Cursor& c, long at) {
        if (c.list != this) {
            c.Detach();
            cursors.push_back(&c);
            c.list = this;
        }
        c.pos = at == kNone ? 0 : at;
    }

    // The block moves an insertion or deletion announces, and how a cursor
    // follows them: the backward block first, then the forward block (one
    // past it included); on a deletion anything else loses its position.
    struct Moves {
        long fwdFrom = 0, fwdTo = 0, fwdCount = 0, bwdFrom = 0, bwdTo = 0, bwdCount = 0;
    };
    void Announce(bool deletion, const Moves& m) {
        for (Cursor* c : cursors) {
            const long p = c->pos;
            if (p <= m.bwdFrom && p > m.bwdFrom - m.bwdCount)
                c->pos = p + m.bwdTo - m.bwdFrom;
            else if (p >= m.fwdFrom && p <= m.fwdFrom + m.fwdCount)
                c->pos = p + m.fwdTo - m.fwdFrom;
            else if (deletion)
                c->pos = kNone;
        }
    }
    // Opens one slot at `at` (0 to Count()) and puts `item` there.
    void Insert(int at, int item) {
        Moves m;
        const int n = Count();
        if (n > 0) {
            m.bwdFrom = m.bwdTo = n - 1;
            if (at >= n) {
                m.fwdCount = n;
            } else {
                m.bwdCount = n - at;
                m.fwdCount = at;
                m.bwdTo = n;
            }
        }
        v.insert(v.begin() + at, item);
        Announce(false, m);
    }
    // Removes the element at `at`; nothing outside the bounds.  Announced
    // before anything moves.
    void Delete(long at) {
        const int n = Count();
        if (at < 0 || at >= n) return;
        Moves m;
        m.fwdFrom = at + 1;
        m.fwdTo = at;
        m.fwdCount = n - at - 1;
        m.bwdFrom = m.bwdTo = at - 1;
        m.bwdCount = at;
        Announce(true, m);
        v.erase(v.begin() + at);
    }
    void Clear() {
        if (v.empty()) return;
        v.clear();
        Announce(true, Moves());
    }
    // The index of `item` by a scan from 0, or -1.
    long Find(int item) const {
        for (int i = 0; i < Count(); ++i)
            if (v[i] == item) return i;
        return -1;
    }

    // The equal run of `item`: [first, last), or the insertion point twice.
    void FindItemPosition(int item, int& first, int& last) const {
        const int n = Count();
        if (n == 0) {
            first = last = 0;
            return;
        }
        auto c = [&](int i) { return Cmp(v[i], item); };
        first = 0;
        last = n - 1;
        int cf = c(first);
        int cl = c(last);
        if (cf >= 0) {
            last = first;
        } else if (cl < 0) {
            last = last + 1;
            first = last;
        } else if (cl == 0) {
            first = last;
            last = last + 1;
        } else {
            while (last - first > 0) {
                int mid = (first + last) / 2;
                const int cm = c(mid);
                if (cm * cf <= 0) {
                    cl = cm;
                    if (last == mid && cm != 0) mid = mid - 1;
                    last = mid;
                }
                if (cm * cl <= 0) {
                    cf = cm;
                    if (first == mid && cm != 0) mid = mid + 1;
                    first = mid;
                }
            }
        }
        while (first > 0 && c(first - 1) == 0) --first;
        while (last < n && c(last) == 0) ++last;
    }
    // After the equal run; returns the index.
    int InsertSorted(int item) {
        int first = 0, last = 0;
        FindItemPosition(item, first, last);
        Insert(last, item);
        return last;
    }
    // Whether element i is not out of order with its neighbours.
    bool InValidPlace(int i) const {
        const int lo = 0, hi = Count() - 1;
        if (lo == hi) return true;
        if (i == lo) return Comp(i, lo + 1) <= 0;
        if (i == hi) return Comp(i, hi - 1) >= 0;
        if (Comp(i, i - 1) < 0) return false;
        return Comp(i, i + 1) <= 0;
    }

    // Ascending sort of [start, start + count): a quicksort with the middle
    // element as pivot and an explicit stack, ranges of up to 8 by selection.
    // Not stable: equal elements come out in the order these steps leave.
    void Sort(int start, int count) {
        if (v.empty() || count < 2) return;
        std::vector<std::pair<int, int>> pending;
        int lo = start, hi = start + count - 1;
        for (;;) {
            const int size = hi - lo + 1;
            if (size <= 8) {
                ShortSort(lo, hi);
            } else {
                std::swap(v[lo + size / 2], v[lo]);
                int up = lo, down = hi + 1;
                for (;;) {
                    do ++up;
                    while (up <= hi && Comp(up, lo) <= 0);
                    do --down;
                    while (down > lo && Comp(down, lo) >= 0);
                    if (down < up) break;
                    std::swap(v[up], v[down]);
                }
                std::swap(v[lo], v[down]);
                if (down - 1 - lo >= hi - up) {
                    if (lo + 1 < down) pending.emplace_back(lo, down - 1);
                    if (up < hi) {
                        lo = up;
                        continue;
                    }
                } else {
                    if (up < hi) pending.emplace_back(up, hi);
                    if (lo + 1 < down) {
                        hi = down - 1;
                        continue;
                    }
                }
            }
            if (pending.empty()) return;
            lo = pending.back().first;
            hi = pending.back().second;
            pending.pop_back();
        }
    }
    // The greatest of lo..last goes to last (the first of equal greatest).
    void ShortSort(int lo, int hi) {
        for (int last = hi; last > lo; --last) {
            int m = lo;
            for (int p = lo + 1; p <= last; ++p)
                if (Comp(p, m) > 0) m = p;
            std::swap(v[m], v[last]);
        }
    }
};

inline void Cursor::Detach() {
    if (list) {
        auto& all = list->cursors;
        all.erase(std::find(all.begin(), all.end(), this));
    }
    list = nullptr;
    pos = kNone;
}

// The model collection, with the host side of BoardCollection built in.
class Collection : public SCC_EventNode<int> {
public:
    struct Hook : SCC_ObjectEventHook<Collection, int> {
        int m_UseCount = 0;
    };

    Collection(BoardStore* s, Collection* parent) : store(s) {
        m_ParentHook.SetObject(this);
        m_ParentHook.SetMethod(&Collection::OnParentNotification);
        // The host's overrides are not in force while the base is built.
        constructing = true;
        SetParent(parent);
        constructing = false;
        SetEvent(&store->changes);
    }

    // ---- the host (as BoardCollection)
    BoardStore* store;
    int slider = 0;
    std::map<int, int> renumber;
    bool constructing = false;
    int _GetSlider() { return constructing ? 0 : slider; }
    void _SetSlider(int h) {
        if (!constructing) slider = h;
    }
    int _GetNext() { return constructing ? 0 : (slider = store->Next(slider)); }
    int _GetFirst() { return constructing ? 0 : (slider = store->Next(0)); }
    // The host may route several objects through one event (eventOf); the
    // collection then hooks that event once.
    std::function<SCC_Notifier*(int)> eventOf;
    SCC_Notifier* GetEvent() {
        if (constructing) return nullptr;
        if (eventOf) return eventOf(slider);
        BoardObject* o = store->Find(slider);
        return o ? &o->event : nullptr;
    }
    int UpdateHandle(int h) {
        auto it = renumber.find(h);
        return it == renumber.end() ? h : it->second;
    }

    // ---- state
    List m_Focus;
    std::map<SCC_Notifier*, std::unique_ptr<Hook>> m_Hooks;
    SCC_Notifier* m_SourceEvent = nullptr;
    SCC_Notifier m_ChangeEvent;
    SYS_Filter* m_Filter = nullptr;
    std::deque<std::pair<int, int>> m_Queue;
    List m_Items;
    std::map<int, int> m_HandleData;
    Cursor m_Current;
    Collection* m_Parent = nullptr;
    int m_Suspended = 0;
    int m_ReloadAllowed = 0;
    int m_HasTempItems = 0;
    SCC_ObjectEventHook<Collection, int> m_ParentHook;

    SCC_Notifier* GetChangeEvent() { return &m_ChangeEvent; }
    int Raise(int code, int* data) { return m_ChangeEvent.Notify(code, data); }
    bool CurrentValid() const { return m_Current.list == &m_Items && m_Items.In(m_Current.pos); }

    // ---- parent and events
    void SetParent(Collection* p) {
        m_Parent = p;
        if (p) {
            p->AllowReload(1);
            p->SetNotificationHandler(&m_ParentHook);
        }
        Reload();
    }
    void SetEvent(SCC_Notifier* e) {
        if (!e) return;
        e->Append(this);
        m_SourceEvent = e;
    }
    void SetNotificationHandler(SCC_EventNode<int>* n) {
        if (n) m_ChangeEvent.Append(n);
    }
    int EnableNotifications(int v) { return m_ChangeEvent.Enable(v); }
    int HandleNotificationsAllowed(int h) {
        if (!h) return 1;
        if (!m_Parent) return 0;
        return m_Parent->IsInFocus(h, nullptr) ? 1 : 0;
    }

    // ---- iteration
    int GetSlider() { return _GetSlider(); }
    void SetSlider(int h) {
        const long at = h ? m_Items.Find(h) : -1;
        if (at < 0) {
            m_Current.Detach();
            _SetSlider(0);
            return;
        }
        m_Items.Attach(m_Current, at);
        _SetSlider(h);
    }
    long GetPosition() { return m_Current.pos; }
    void SetPosition(long pos) {
        m_Items.Attach(m_Current, pos);
        _SetSlider(m_Items.v[pos]);
    }
    int GetFirst() {
        if (m_Items.Count() == 0) {
            m_Current.Detach();
            SetSlider(0);
        } else {
            SetPosition(0);
        }
        return CurrentValid() ? 1 : 0;
    }
    int Step(int by) {
        if (!CurrentValid()) return 0;
        m_Current.pos += by;
        if (!CurrentValid()) return 0;
        _SetSlider(m_Items.v[m_Current.pos]);
        return 1;
    }
    int GetNext() { return Step(1); }
    int GetPrev() { return Step(-1); }
    int GetAt(long pos) { return m_Items.In(pos) ? m_Items.v[pos] : 0; }
    long GetPositionByHandle(int h) { return h ? m_Items.Find(h) : -1; }
    int IsEmpty() { return CurrentValid() ? 0 : 1; }

    // ---- focus and handle data
    int GetFocus(long i) { return i >= 0 && i < m_Focus.Count() ? m_Focus.v[i] : 0; }
    int HasFocus() { return m_Focus.Count() > 0 ? 1 : 0; }
    bool IsInFocus(int h, long* pos) {
        int first = 0, last = 0;
        m_Focus.FindItemPosition(h, first, last);
        if (pos) *pos = first;
        return first < last;
    }
    void SetFocus(int h, bool add) {
        const long at = h ? m_Items.Find(h) : -1;
        if (at < 0) h = 0;
        if (!add || !h) {
            m_Focus.Clear();
            if (!h) return;
        }
        m_Focus.InsertSorted(h);
        if (add) return;
        m_Items.Attach(m_Current, at);
        const int remembered = GetSlider();
        SetSlider(h);
        Raise(SCC_ObjectChanged, SCC_HandleToData(h));
        SetSlider(remembered);
        m_Current.Detach(); // takes over a copy, which has no position
    }
    int GetHandleData(int h) {
        auto it = m_HandleData.find(h);
        return it == m_HandleData.end() ? 0 : it->second;
    }
    void SetHandleData(int h, int value) {
        m_HandleData[h] = value;
        if (SCC_EventNode<int>* root = GetRoot())
            static_cast<SCC_Event<int>*>(root)->Notify(SCC_ObjectChanged, SCC_HandleToData(h));
    }

    // ---- sorting, filtering, reloading
    void SetSort(Compare c) {
        m_Items.compare = c;
        m_Items.Clear();
        Reload();
    }
    void SetFilter(SYS_Filter* f) {
        m_Filter = f;
        Reload();
    }
    int Filter(int h) { return m_Filter ? m_Filter->IsTrue(h) : 1; }
    int FindNextTempItem(int h) {
        const int remembered = GetSlider();
        SetSlider(h);
        int found = 0;
        do {
            _GetNext();
            found = GetSlider();
        } while (found && !Filter(found));
        SetSlider(remembered);
        return found;
    }
    void AllowReload(int v) {
        const int was = m_ReloadAllowed;
        m_ReloadAllowed = v;
        if (!was) Reload();
    }
    int IsReloadAllowed() { return m_ReloadAllowed; }
    void Clear() {
        m_HandleData.clear();
        m_Hooks.clear();
        m_Items.Clear();
        m_Focus.Clear();
        AllowReload(0);
    }

    void ConnectEvent(int connect) {
        SCC_Notifier* e = GetEvent();
        if (!e) return;
        auto it = m_Hooks.find(e);
        Hook* hook = it == m_Hooks.end() ? nullptr : it->second.get();
        if (!hook && connect && e != GetRoot()) {
            hook = new Hook;
            hook->SetObject(this);
            hook->SetMethod(&Collection::OnNotification);
            hook->Attach(e);
            m_Hooks[e].reset(hook);
        }
        if (!hook) return;
        if (connect)
            ++hook->m_UseCount;
        else if (--hook->m_UseCount == 0)
            m_Hooks.erase(e); // the hook leaves the event as it goes
    }

    void Reload() {
        if (!m_ReloadAllowed) {
            const int had = m_HasTempItems;
            m_HasTempItems = FindNextTempItem(0) ? 1 : 0;
            if (had != m_HasTempItems) Raise(SCC_ObjectChanged, nullptr);
            return;
        }
        const std::vector<int> old = m_Items.v;
        m_Items.Clear();
        SetSlider(0);
        int parentSlider = 0;
        if (m_Parent) {
            m_Parent->AllowReload(1);
            parentSlider = m_Parent->GetSlider();
        }
        for (int more = _GetFirst(); more; more = _GetNext()) {
            const int h = GetSlider();
            if (!Filter(h)) continue;
            int first = 0, last = 0;
            m_Items.FindItemPosition(h, first, last);
            bool held = false;
            for (int i = first; i < last; ++i) held = held || m_Items.v[i] == h;
            if (!held) m_Items.Insert(last, h);
            ConnectEvent(1);
        }
        if (m_Parent) m_Parent->SetSlider(parentSlider);
        if (m_Items.v == old) return;
        m_HasTempItems = m_Items.Count() > 0 ? 1 : 0;
        List kept;
        for (int f : m_Focus.v)
            if (m_Items.Find(f) >= 0) kept.InsertSorted(f);
        m_Focus.v = kept.v;
        m_Items.Sort(0, m_Items.Count());
        Raise(SCC_CollectionReload, nullptr);
    }

    // ---- notifications
    void Suspend(int on) {
        if (on) {
            m_Suspended = on;
            return;
        }
        if (!m_Suspended) return;
        m_Suspended = 0;
        std::set<int> replayed;
        for (size_t i = m_Queue.size(); i-- > 0;) {
            const std::pair<int, int> entry = m_Queue[i];
            if (!replayed.insert(entry.second).second) continue;
            OnNotification(entry.first, SCC_HandleToData(entry.second));
        }
        m_Queue.clear();
    }

    // Lists `h` after its equal run, current, listened to; raises 1.
    int Add(int h, int* data) {
        m_Items.Attach(m_Current, m_Items.InsertSorted(h));
        _SetSlider(h);
        ConnectEvent(1);
        return Raise(SCC_ObjectAdded, data);
    }

    std::function<void()> heard; // told of every OnNotification, for the test
    int OnNotification(int code, int* data) {
        if (heard) heard();
        const int h = SCC_DataToHandle(data);
        int passes = 1;
        long index = -1;
        if (h) {
            passes = Filter(h);
            index = m_Items.Find(h);
        }
        if (!passes && index < 0) return 0;
        if (m_Suspended) {
            if (code == SCC_CollectionReload || code == SCC_CollectionCleared) {
                m_Queue.clear();
            } else {
                const std::pair<int, int> entry(code, h);
                if (m_Queue.empty() || m_Queue.back() != entry) m_Queue.push_back(entry);
                return 0;
            }
        }
        Cursor scratch; // follows h through the moves below
        if (index >= 0) m_Items.Attach(scratch, index);
        if (code != SCC_ObjectAdded && code != SCC_ObjectChanged) SetSlider(h);

        int result = 0;
        switch (code) {
        case SCC_ObjectAdded:
            result = Add(h, data);
            break;
        case SCC_ObjectDeleted: {
            long at = 0;
            if (IsInFocus(h, &at)) m_Focus.Delete(at);
            if (!CurrentValid()) break;
            ConnectEvent(0);
            result = Raise(SCC_ObjectDeleted, data);
            if (m_Current.list == &m_Items) m_Items.Delete(m_Current.pos);
            m_HandleData.erase(h);
            break;
        }
        case SCC_ObjectChanged: {
            if (index < 0) {
                result = Add(h, data);
                break;
            }
            m_Items.Attach(m_Current, scratch.pos);
            _SetSlider(h);
            if (passes && m_Items.InValidPlace(static_cast<int>(m_Current.pos))) {
                result = Raise(SCC_ObjectChanged, data);
                break;
            }
            long at = 0;
            const bool focused = IsInFocus(h, &at);
            if (focused) m_Focus.Delete(at);
            result = Raise(SCC_ObjectDeleted, data);
            ConnectEvent(0);
            m_Items.Delete(scratch.pos);
            if (!passes) {
                result = 0;
                break;
            }
            int first = 0, last = 0;
            m_Items.FindItemPosition(h, first, last);
            m_Items.Insert(last, h);
            m_Items.Attach(m_Current, last);
            ConnectEvent(1);
            if (focused) m_Focus.InsertSorted(h);
            _SetSlider(h);
            result = Raise(SCC_ObjectAdded, data);
            break;
        }
        case SCC_ObjectRedrawn:
            result = Raise(SCC_ObjectRedrawn, data);
            break;
        case SCC_CollectionReload:
            Reload();
            break;
        case SCC_CollectionCleared:
            result = Raise(SCC_CollectionCleared, data);
            m_HandleData.clear();
            m_Hooks.clear();
            m_Items.Clear();
            m_Focus.Clear();
            break;
        case SCC_HandlesUpdated:
            for (int& x : m_Items.v) x = UpdateHandle(x);
            for (int& x : m_Focus.v) x = UpdateHandle(x);
            for (auto& entry : m_Queue) entry.second = UpdateHandle(entry.second);
            m_Focus.Sort(0, m_Focus.Count());
            result = Raise(SCC_HandlesUpdated, nullptr);
            break;
        default:
            break;
        }
        m_Current.Detach(); // takes over the copy made on entry: no position
        SetSlider(CurrentValid() ? m_Items.v[m_Current.pos] : 0);
        return result;
    }

    int OnParentNotification(int code, int* data) {
        const int h = SCC_DataToHandle(data);
        if (!HandleNotificationsAllowed(h)) return 0;
        switch (code) {
        case SCC_ObjectAdded:
        case SCC_ObjectChanged:
        case SCC_ObjectRedrawn:
        case SCC_CollectionReload:
            Reload();
            break;
        case SCC_ObjectDeleted:
            SetSlider(0);
            while (_GetNext()) { // the base walk by the parent's slider
                const int child = GetSlider();
                if (!Filter(child)) continue;
                OnNotification(SCC_ObjectDeleted, SCC_HandleToData(child));
                _SetSlider(child);
            }
            break;
        case SCC_CollectionCleared:
            OnNotification(SCC_CollectionCleared, data);
            break;
        default:
            break;
        }
        return 0;
    }
};

} // namespace reference

#endif // KEEL_TESTS_COLLECTION_REFERENCE_H
