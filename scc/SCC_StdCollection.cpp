// SCC_StdCollection.cpp - the live, sorted, filtered view of host objects.
#include "SCC_StdCollection.h"

#include "internal/SCC_HandleIndex.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <iterator>
#include <set>
#include <tuple>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

typedef SCC_ObjectEventHook<SCC_StdCollection, int> ParentHook;

// ---------------------------------------------------------------------------
// Where each handle stands in the item list
//
// The items are ordered by the host's comparison, so a handle cannot be
// found by a binary search without asking the comparison about it, which a
// host may not be able to answer (the object may be gone).  Each collection
// therefore keeps an index from handle to position (SCC_HandleIndex), told
// of every insertion and deletion the collection makes.  It cannot be a
// member: hosts derive from the class, so its layout is fixed.  It lives in
// a side table keyed by the collection's address instead, entered at
// construction and erased by the destructor.  The table is per thread, as a
// collection is used only on the thread that made it; an entry left behind
// by a collection destroyed on another thread is replaced when a new
// collection is built at that address.
//
// m_Items is public: a list whose shape was changed behind the collection's
// back no longer matches the index (count or lower bound), and is then
// scanned until the index is next rebuilt.

namespace {

struct ItemsIndex {
    int lower = 0;
    SCC_HandleIndex index;
};

typedef std::unordered_map<const SCC_StdCollection*, ItemsIndex> IndexTable;

// Never destroyed: a collection with static storage may be destroyed after
// the thread's own objects are.
IndexTable& Table() {
    thread_local IndexTable* table = new IndexTable;
    return *table;
}

// The element of the lower bound, or null when the list has no elements.
const int* ItemsData(const SCC_StdCollection& c) {
    const SCC_Array<int>::Buffer* b = c.m_Items.m_Buffer;
    if (!b || !b->m_Data || b->m_Upper <= b->m_Lower) return nullptr;
    return b->m_Data + (b->m_Lower - b->m_AllocLower);
}

void IndexRebuild(const SCC_StdCollection& c) {
    ItemsIndex& entry = Table()[&c];
    entry.lower = c.m_Items.GetLowerBound();
    const int count = c.m_Items.GetCount();
    const int* data = ItemsData(c);
    if (count > 0 && !data)
        entry.index.Drop();
    else
        entry.index.Rebuild(data, count);
}

void IndexDrop(const SCC_StdCollection& c) { Table()[&c].index.Drop(); }

void IndexForget(const SCC_StdCollection& c) { Table().erase(&c); }

// `handle` was inserted at index `at` of m_Items.
void IndexInserted(const SCC_StdCollection& c, long at, int handle) {
    ItemsIndex& entry = Table()[&c];
    const int* data = ItemsData(c);
    if (!data || entry.lower != c.m_Items.GetLowerBound()) return entry.index.Drop();
    entry.index.Inserted(static_cast<int>(at - entry.lower), handle, data, c.m_Items.GetCount());
}

// The element at index `at` of m_Items was deleted.
void IndexDeleted(const SCC_StdCollection& c, long at) {
    ItemsIndex& entry = Table()[&c];
    const int count = c.m_Items.GetCount();
    const int* data = ItemsData(c);
    if (count > 0 && (!data || entry.lower != c.m_Items.GetLowerBound())) return entry.index.Drop();
    entry.index.Deleted(static_cast<int>(at - entry.lower), data, count);
}

// The index of `handle` in m_Items, -1 when it is not listed, or -2 when
// the index cannot tell.
long IndexFind(const SCC_StdCollection& c, int handle) {
    const IndexTable& table = Table();
    const auto found = table.find(&c);
    if (found == table.end()) return -2;
    const ItemsIndex& entry = found->second;
    if (!entry.index.Valid(c.m_Items.GetCount()) || entry.lower != c.m_Items.GetLowerBound())
        return -2;
    const int* data = ItemsData(c);
    if (!data) return -1;
    const long at = entry.index.Find(handle, data);
    return at >= 0 ? entry.lower + at : at;
}

// Whether the range lo..hi is dense enough for a table of one byte per
// possible handle.
bool Dense(int lo, int hi, size_t n) {
    const int64_t range = static_cast<int64_t>(hi) - lo + 1;
    return range <= 4 * static_cast<int64_t>(n) + 64;
}

// Keeps the first occurrence of every handle, in order.  O(n) for handles
// within a dense range, else O(n log n).
void KeepFirst(std::vector<int>& handles) {
    if (handles.size() < 2) return;
    const auto range = std::minmax_element(handles.begin(), handles.end());
    const int lo = *range.first;
    size_t out = 0;
    if (Dense(lo, *range.second, handles.size())) {
        std::vector<unsigned char> seen(
            static_cast<size_t>(static_cast<int64_t>(*range.second) - lo + 1));
        for (int h : handles) {
            unsigned char& s = seen[static_cast<size_t>(static_cast<int64_t>(h) - lo)];
            if (!s) handles[out++] = h;
            s = 1;
        }
    } else {
        std::vector<std::pair<int, size_t>> byValue(handles.size());
        for (size_t i = 0; i < handles.size(); ++i) byValue[i] = {handles[i], i};
        std::sort(byValue.begin(), byValue.end());
        std::vector<unsigned char> drop(handles.size());
        for (size_t i = 1; i < byValue.size(); ++i)
            if (byValue[i].first == byValue[i - 1].first) drop[byValue[i].second] = 1;
        for (size_t i = 0; i < handles.size(); ++i)
            if (!drop[i]) handles[out++] = handles[i];
    }
    handles.resize(out);
}

// What ConnectEvent(1, ...) once per object does for a whole walk: one
// more use of the hook on each object's event, a hook made and attached for
// an event that has none (unless it is the collection's own source event).
// The events are taken in address order, so that the map is searched, or
// walked, once in its own order instead of once per object at random.
void ConnectAll(SCC_StdCollection& c, std::vector<SCC_Notifier*>& events) {
    if (events.empty()) return;
    std::sort(events.begin(), events.end());
    std::map<SCC_Notifier*, SCC_StdCollection::EventHook>& hooks = c.m_Hooks;
    size_t groups = 1;
    for (size_t i = 1; i < events.size(); ++i) groups += events[i] != events[i - 1];
    // Walking the map costs its size; searching it, log(size) per event.
    const bool walk = groups * 16 >= hooks.size();
    auto at = hooks.begin();
    for (size_t i = 0; i < events.size();) {
        SCC_Notifier* event = events[i];
        size_t j = i;
        while (j < events.size() && events[j] == event) ++j;
        const int uses = static_cast<int>(j - i);
        i = j;
        if (walk)
            while (at != hooks.end() && at->first < event) ++at;
        else
            at = hooks.lower_bound(event);
        if (at != hooks.end() && at->first == event) {
            at->second.m_UseCount += uses;
            continue;
        }
        if (event == c.GetRoot()) continue;
        at = hooks.emplace_hint(at, std::piecewise_construct, std::forward_as_tuple(event),
                                std::forward_as_tuple(&c));
        at->second.Attach(event);
        at->second.m_UseCount = uses;
    }
}

// Makes `items` hold `handles` (at least as many elements as it has now),
// from its lower bound on.
void FillItems(SCC_SortableArray<int>& items, const std::vector<int>& handles) {
    const int grow = static_cast<int>(handles.size()) - items.GetCount();
    if (grow > 0) items.Insert(items.GetUpperBound(), grow);
    if (handles.empty() || !items.m_Buffer || !items.m_Buffer->m_Data) return;
    std::copy(handles.begin(), handles.end(),
              items.m_Buffer->m_Data + (items.m_Buffer->m_Lower - items.m_Buffer->m_AllocLower));
}

// Membership in a set of handles: a byte table over a dense range,
// else binary search of a sorted copy.
class HandleSet {
public:
    explicit HandleSet(const std::vector<int>& handles) {
        if (handles.empty()) return;
        const auto range = std::minmax_element(handles.begin(), handles.end());
        m_Lo = *range.first;
        m_Hi = *range.second;
        if (Dense(m_Lo, m_Hi, handles.size())) {
            m_Table.assign(static_cast<size_t>(static_cast<int64_t>(m_Hi) - m_Lo + 1), 0);
            for (int h : handles) m_Table[static_cast<size_t>(static_cast<int64_t>(h) - m_Lo)] = 1;
        } else {
            m_Sorted = handles;
            std::sort(m_Sorted.begin(), m_Sorted.end());
        }
    }
    bool Contains(int h) const {
        if (!m_Table.empty())
            return h >= m_Lo && h <= m_Hi &&
                   m_Table[static_cast<size_t>(static_cast<int64_t>(h) - m_Lo)];
        return std::binary_search(m_Sorted.begin(), m_Sorted.end(), h);
    }

private:
    int m_Lo = 0;
    int m_Hi = -1;
    std::vector<unsigned char> m_Table;
    std::vector<int> m_Sorted;
};

// Whether `list` holds exactly the distinct `handles`, strictly increasing
// by `less`; if so, `handles` takes its order.  Only handles walked are
// compared: the objects of the others may be gone.
template <class Less>
bool AlreadySorted(SCC_SortableArray<int>& list, std::vector<int>& handles, const Less& less) {
    const int n = list.GetCount();
    if (n != static_cast<int>(handles.size()) || n == 0 || !list.m_Buffer || !list.m_Buffer->m_Data)
        return false;
    const int* first =
        list.m_Buffer->m_Data + (list.m_Buffer->m_Lower - list.m_Buffer->m_AllocLower);
    const std::vector<int> listed(first, first + n);
    // n distinct handles, all among the n listed: the same handles.
    const HandleSet known(listed);
    for (int h : handles)
        if (!known.Contains(h)) return false;
    for (int i = 1; i < n; ++i)
        if (!less(listed[i - 1], listed[i])) return false;
    handles = listed;
    return true;
}

} // namespace

// ---------------------------------------------------------------------------
// Position and EventHook

SCC_StdCollection::Position& SCC_StdCollection::Position::operator=(const Position& other) {
    if (&other == this) return *this;
    // The place in the chain: just before `other` when it is in one.
    if (other.root)
        InsertBefore(const_cast<Position*>(&other));
    else
        Remove();
    priority = other.priority;
    callback = other.callback;
    m_Position = other.m_Position;
    m_Array = other.m_Array;
    m_Extra = other.m_Extra;
    return *this;
}

void SCC_StdCollection::Position::Detach() {
    Remove();
    m_Array = nullptr;
    m_Position = NoPosition;
}

SCC_StdCollection::EventHook::EventHook(SCC_StdCollection* collection) : m_UseCount(0) {
    SetObject(collection);
    SetMethod(&SCC_StdCollection::OnNotification);
}

// ---------------------------------------------------------------------------
// Construction, copying and destruction

SCC_StdCollection::SCC_StdCollection(SCC_StdCollection* parent)
    : m_SourceEvent(nullptr), m_Filter(nullptr), m_Parent(nullptr), m_Suspended(0),
      m_ReloadAllowed(0), m_HasTempItems(0) {
    m_ParentHook.SetObject(this);
    m_ParentHook.SetMethod(&SCC_StdCollection::OnParentNotification);
    m_ParentHook.SetPriority(0);
    IndexRebuild(*this); // empty
    SetParent(parent);
}

SCC_StdCollection::SCC_StdCollection(const SCC_StdCollection& other)
    : SCC_EventNode<int>(), m_SourceEvent(nullptr), m_Filter(nullptr), m_Parent(nullptr),
      m_Suspended(0), m_ReloadAllowed(0), m_HasTempItems(0) {
    m_ParentHook.SetObject(this);
    m_ParentHook.SetMethod(&SCC_StdCollection::OnParentNotification);
    m_ParentHook.SetPriority(0);
    IndexRebuild(*this); // empty
    CopyFrom(other);
}

SCC_StdCollection& SCC_StdCollection::operator=(const SCC_StdCollection& other) {
    if (&other == this) return *this;
    LeaveChains();
    CopyFrom(other);
    return *this;
}

SCC_StdCollection::~SCC_StdCollection() {
    // The members go in reverse order of declaration, none of them raising
    // anything: the parent hook and the cursor leave their chains, the
    // change event drops its listeners, the item hooks leave the item
    // events, and the node base leaves the source event last.
    ReleaseChildren();
    IndexForget(*this);
}

void SCC_StdCollection::CopyFrom(const SCC_StdCollection& other) {
    SCC_StdCollection& source = const_cast<SCC_StdCollection&>(other);
    m_Focus = source.m_Focus;
    m_SourceEvent = other.m_SourceEvent;
    if (m_SourceEvent && other.root == m_SourceEvent) m_SourceEvent->Append(this);
    m_ChangeEvent.enabled = other.m_ChangeEvent.enabled;
    m_Filter = other.m_Filter;
    m_Queue = other.m_Queue;
    m_Items = source.m_Items;
    IndexRebuild(*this);
    m_HandleData = other.m_HandleData;
    m_Parent = other.m_Parent;
    m_Suspended = other.m_Suspended;
    m_ReloadAllowed = other.m_ReloadAllowed;
    m_HasTempItems = other.m_HasTempItems;
    // Hooks of our own on the same item events, never copies of the
    // source's: a copied hook would share its chain links.
    for (const auto& entry : other.m_Hooks) {
        EventHook& hook = m_Hooks
                              .emplace(std::piecewise_construct, std::forward_as_tuple(entry.first),
                                       std::forward_as_tuple(this))
                              .first->second;
        hook.m_UseCount = entry.second.m_UseCount;
        // A hook whose event is gone was detached by it; do not touch it.
        if (entry.second.root == entry.first) hook.Attach(entry.first);
    }
    if (other.CurrentValid())
        m_Current.SetArray(&m_Items, other.m_Current.m_Position);
    else
        m_Current.Detach();
    m_Current.m_Extra = other.m_Current.m_Extra;
    if (m_Parent) m_Parent->SetNotificationHandler(&m_ParentHook);
}

void SCC_StdCollection::LeaveChains() {
    Remove();
    m_ParentHook.Remove();
    m_Hooks.clear();
    ++m_HooksRemoved;
    m_Current.Detach();
}

void SCC_StdCollection::ReleaseChildren() {
    // A child collection hears this one through its m_ParentHook; it must
    // not reach this collection through m_Parent once it is gone.
    for (SCC_EventNode<int>* n = m_ChangeEvent.next; n != &m_ChangeEvent; n = n->next) {
        ParentHook* hook = dynamic_cast<ParentHook*>(n);
        if (hook && hook->object && hook == &hook->object->m_ParentHook &&
            hook->object->m_Parent == this)
            hook->object->m_Parent = nullptr;
    }
}

// ---------------------------------------------------------------------------
// Host hooks: the base has no objects

void SCC_StdCollection::Reload() {
    if (!m_ReloadAllowed) {
        const int had = m_HasTempItems;
        m_HasTempItems = FindNextTempItem(0) ? 1 : 0;
        if (had != m_HasTempItems) Raise(SCC_ObjectChanged, nullptr);
        return;
    }

    SCC_SortableArray<int> old(m_Items); // shares the old block
    m_Items.Clear();
    IndexDrop(*this); // rebuilt with the list below
    SetSlider(0);
    int parentSlider = 0;
    if (m_Parent) {
        m_Parent->AllowReload(1);
        parentSlider = m_Parent->GetSlider();
    }
    // The walk collects the handles that pass, in the host's order, and the
    // event of each object; the collection then listens to those events
    // (ConnectAll).
    std::vector<int> walked;
    std::vector<SCC_Notifier*> events;
    for (int more = _GetFirst(); more; more = _GetNext()) {
        const int handle = GetSlider();
        if (!Filter(handle)) continue;
        walked.push_back(handle);
        if (SCC_Notifier* event = GetEvent()) events.push_back(event);
    }
    ConnectAll(*this, events);
    if (m_Parent) m_Parent->SetSlider(parentSlider);

    // Inserting each handle after its equal run, unless that run already
    // holds it, yields the handles ordered by the comparison, equal ones in
    // the order walked, each handle once (where first walked): a stable sort
    // of the first occurrences.  That is what is built here, in O(n log n)
    // comparisons instead of one block move per handle.  The comparison
    // must be an order (consistent while the list is rebuilt), as the
    // equal-run search already assumes.
    KeepFirst(walked);
    SCC_Sort<int>* sort = m_Items.m_Sort.operator->();
    const auto less = [sort](int a, int b) { return sort && sort->Compare(a, b) < 0; };
    const int* data = ItemsData(*this);
    if (!data) {
        // The usual reload finds what it listed before.  When the old list
        // is strictly increasing (no two handles compare equal) and holds
        // exactly the handles walked, it is their only sorted order: n - 1
        // comparisons instead of a sort.
        if (!AlreadySorted(old, walked, less)) std::stable_sort(walked.begin(), walked.end(), less);
        FillItems(m_Items, walked);
    } else {
        // A host callback listed items meanwhile (a parent's reload reaches
        // its children): the handles walked join them as the insertions
        // would, after the items equal to them, skipping those listed.
        std::vector<int> listed(data, data + m_Items.GetCount());
        if (m_Items.m_Buffer->m_SortOrder == 1 &&
            std::is_sorted(listed.begin(), listed.end(), less)) {
            const HandleSet known(listed);
            walked.erase(std::remove_if(walked.begin(), walked.end(),
                                        [&known](int h) { return known.Contains(h); }),
                         walked.end());
            std::stable_sort(walked.begin(), walked.end(), less);
            std::vector<int> merged;
            merged.reserve(listed.size() + walked.size());
            std::merge(listed.begin(), listed.end(), walked.begin(), walked.end(),
                       std::back_inserter(merged), less);
            FillItems(m_Items, merged);
        } else {
            for (int handle : walked) {
                long first = 0;
                long last = 0;
                m_Items.FindItemPosition(handle, first, last);
                bool held = false;
                for (long i = first; i < last && !held; ++i)
                    held = m_Items.FastGetAt(static_cast<int>(i)) == handle;
                if (held) continue;
                m_Items.Insert(static_cast<int>(last), 1);
                m_Items[static_cast<int>(last)] = handle;
            }
        }
    }

    bool same = old.GetCount() == m_Items.GetCount();
    for (int i = 0, n = m_Items.GetCount(); same && i < n; ++i)
        same = old.FastGetAt(old.GetLowerBound() + i) ==
               m_Items.FastGetAt(m_Items.GetLowerBound() + i);
    if (same) {
        IndexRebuild(*this);
        return;
    }

    m_HasTempItems = m_Items.GetCount() > 0 ? 1 : 0;
    // The focused handles that are still listed, in the focus order: one
    // look-up each in a set of the listed handles.
    SCC_SortableArray<int> focus;
    if (m_Focus.GetCount() > 0) {
        const int* items = ItemsData(*this);
        const HandleSet listed(items ? std::vector<int>(items, items + m_Items.GetCount())
                                     : std::vector<int>());
        std::vector<int> kept;
        for (int i = 0, n = m_Focus.GetCount(); i < n; ++i) {
            const int handle = m_Focus.FastGetAt(m_Focus.GetLowerBound() + i);
            if (listed.Contains(handle)) kept.push_back(handle);
        }
        // Inserted in sorted order one by one, an ascending sequence stays as
        // it is; only a focus set out of order needs the insertions.
        if (std::is_sorted(kept.begin(), kept.end())) {
            FillItems(focus, kept);
        } else {
            for (int handle : kept) focus.InsertSorted(handle);
        }
    }
    m_Focus = focus;
    m_Items.Sort(m_Items.GetLowerBound(), m_Items.GetCount(), 1);
    IndexRebuild(*this);
    Raise(SCC_CollectionReload, nullptr);
}

int SCC_StdCollection::_GetSlider() { return 0; }
void SCC_StdCollection::_SetSlider(int handle) { (void)handle; }
int SCC_StdCollection::_GetFirst() { return 0; }
int SCC_StdCollection::_GetNext() { return 0; }
int SCC_StdCollection::_GetPrev() { return 0; }
int SCC_StdCollection::_GetFirstByParentSlider() { return _GetFirst(); }
int SCC_StdCollection::_GetNextByParentSlider() { return _GetNext(); }
SCC_Notifier* SCC_StdCollection::GetEvent() { return nullptr; }
int SCC_StdCollection::UpdateHandle(int handle) {
    (void)handle;
    return 0;
}

// ---------------------------------------------------------------------------
// Parent, events and reloading

void SCC_StdCollection::SetParent(SCC_StdCollection* parent) {
    m_Parent = parent;
    if (parent) {
        parent->AllowReload(1);
        parent->SetNotificationHandler(&m_ParentHook);
    }
    Reload();
}

void SCC_StdCollection::AllowReload(int allow) {
    const int was = m_ReloadAllowed;
    m_ReloadAllowed = allow;
    if (!was) Reload();
}

int SCC_StdCollection::IsReloadAllowed() { return m_ReloadAllowed; }

int SCC_StdCollection::FindNextTempItem(int handle) {
    const int remembered = GetSlider();
    SetSlider(handle);
    int found = 0;
    do {
        _GetNext();
        found = GetSlider();
    } while (found && !Filter(found));
    SetSlider(remembered);
    return found;
}

void SCC_StdCollection::Clear() {
    m_HandleData.clear();
    m_Hooks.clear();
    ++m_HooksRemoved;
    m_Items.Clear();
    IndexRebuild(*this);
    m_Focus.Clear();
    AllowReload(0);
}

void SCC_StdCollection::SetEvent(SCC_Notifier* event) {
    if (!event) return;
    event->Append(this);
    m_SourceEvent = event;
}

void SCC_StdCollection::SetNotificationHandler(SCC_EventNode<int>* handler) {
    if (handler) m_ChangeEvent.Append(handler);
}

int SCC_StdCollection::EnableNotifications(int enable) { return m_ChangeEvent.Enable(enable); }

int SCC_StdCollection::HandleNotificationsAllowed(int handle) {
    if (!handle) return 1;
    if (!m_Parent) return 0;
    return m_Parent->IsInFocus(handle, nullptr) ? 1 : 0;
}

void SCC_StdCollection::Suspend(int on) {
    if (on) {
        m_Suspended = on;
        return;
    }
    if (!m_Suspended) return;
    m_Suspended = 0;
    // Last first, each handle once: a handle hears its latest notification.
    // The walk goes by index, as a replayed notification may queue more.
    std::set<int> replayed;
    for (size_t i = m_Queue.size(); i-- > 0;) {
        if (i >= m_Queue.size()) continue;
        const std::pair<int, int> entry = m_Queue[i];
        if (!replayed.insert(entry.second).second) continue;
        OnNotification(entry.first, SCC_HandleToData(entry.second));
    }
    m_Queue.clear();
}

void SCC_StdCollection::ConnectEvent(int connect, SCC_Notifier** event, EventHook** hook) {
    SCC_Notifier* itemEvent = GetEvent();
    if (!itemEvent) return;
    EventHook* used = nullptr;
    if (event && hook && *event == itemEvent && *hook) {
        used = *hook;
    } else {
        const auto found = m_Hooks.find(itemEvent);
        if (found != m_Hooks.end()) used = &found->second;
    }
    if (!used && connect && itemEvent != GetRoot()) {
        used = &m_Hooks
                    .emplace(std::piecewise_construct, std::forward_as_tuple(itemEvent),
                             std::forward_as_tuple(this))
                    .first->second;
        used->Attach(itemEvent);
    }
    if (used) {
        if (connect) {
            ++used->m_UseCount;
        } else if (--used->m_UseCount <= 0) {
            m_Hooks.erase(itemEvent); // destroys the hook, which detaches it
            ++m_HooksRemoved;
            used = nullptr;
        }
    }
    if (event) *event = itemEvent;
    if (hook) *hook = used;
}

// ---------------------------------------------------------------------------
// Notifications

long SCC_StdCollection::FindItem(int handle) const {
    const SCC_Array<int>::Buffer* b = m_Items.m_Buffer;
    if (!b || !b->m_Data || b->m_Upper <= b->m_Lower) return -1;
    const int* first = b->m_Data + (b->m_Lower - b->m_AllocLower);
    const int* last = first + (b->m_Upper - b->m_Lower);
    // The index answers in O(log n); it cannot when the list holds a handle
    // twice or was changed behind the collection's back, and then the scan
    // gives the first position.
    const long indexed = IndexFind(*this, handle);
    if (indexed >= -1) return indexed;
    const int* at = std::find(first, last, handle);
    return at == last ? -1 : b->m_Lower + (at - first);
}

bool SCC_StdCollection::CurrentValid() const {
    return m_Current.m_Array == &m_Items && m_Items.InBounds(m_Current.m_Position);
}

int SCC_StdCollection::AddItem(int handle, int* data) {
    const long at = m_Items.InsertSorted(handle);
    IndexInserted(*this, at, handle);
    m_Current.SetArray(&m_Items, static_cast<int>(at));
    _SetSlider(handle);
    ConnectEvent(1, nullptr, nullptr);
    return Raise(SCC_ObjectAdded, data);
}

int SCC_StdCollection::OnNotification(int code, int* data) {
    const int handle = SCC_DataToHandle(data);
    int passes = 1;
    long index = -1;
    if (handle) {
        passes = Filter(handle);
        index = FindItem(handle);
    }
    if (!passes && index < 0) return 0;

    if (m_Suspended) {
        if (code == SCC_CollectionReload || code == SCC_CollectionCleared) {
            m_Queue.clear();
        } else {
            const std::pair<int, int> entry(code, handle);
            if (m_Queue.empty() || m_Queue.back() != entry) m_Queue.push_back(entry);
            return 0;
        }
    }

    Position saved(m_Current); // keeps only m_Extra: no array, no position
    Position scratch;          // follows the handle through the moves below
    if (index >= 0) scratch.SetArray(&m_Items, static_cast<int>(index));

    if (code != SCC_ObjectAdded && code != SCC_ObjectChanged) SetSlider(handle);

    int result = 0;
    switch (code) {
    case SCC_ObjectAdded:
        result = AddItem(handle, data);
        break;
    case SCC_ObjectDeleted: {
        long focusAt = 0;
        if (IsInFocus(handle, &focusAt)) m_Focus.Delete(static_cast<int>(focusAt), 1);
        if (!CurrentValid()) break;
        ConnectEvent(0, nullptr, nullptr);
        result = Raise(SCC_ObjectDeleted, data);
        if (CurrentValid()) {
            const long at = m_Current.m_Position;
            m_Items.Delete(static_cast<int>(at), 1);
            IndexDeleted(*this, at);
        }
        m_HandleData.erase(handle);
        break;
    }
    case SCC_ObjectChanged: {
        if (index < 0) {
            result = AddItem(handle, data);
            break;
        }
        m_Current.SetArray(&m_Items, scratch.m_Position);
        _SetSlider(handle);
        if (passes && CurrentValid() && m_Items.ItemInValidPlace(m_Current.m_Position)) {
            result = Raise(SCC_ObjectChanged, data);
            break;
        }
        long focusAt = 0;
        const bool focused = IsInFocus(handle, &focusAt);
        if (focused) m_Focus.Delete(static_cast<int>(focusAt), 1);
        result = Raise(SCC_ObjectDeleted, data);
        ConnectEvent(0, nullptr, nullptr);
        if (m_Items.InBounds(scratch.m_Position)) {
            const long at = scratch.m_Position;
            m_Items.Delete(static_cast<int>(at), 1);
            IndexDeleted(*this, at);
        }
        if (!passes) {
            result = 0;
            break;
        }
        long first = 0;
        long last = 0;
        m_Items.FindItemPosition(handle, first, last);
        m_Items.Insert(static_cast<int>(last), 1);
        m_Items[static_cast<int>(last)] = handle;
        IndexInserted(*this, last, handle);
        m_Current.SetArray(&m_Items, static_cast<int>(last));
        ConnectEvent(1, nullptr, nullptr);
        if (focused) m_Focus.InsertSorted(handle);
        _SetSlider(handle);
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
        ++m_HooksRemoved;
        m_Items.Clear();
        IndexRebuild(*this);
        m_Focus.Clear();
        break;
    case SCC_HandlesUpdated: {
        for (int i = m_Items.GetLowerBound(), n = m_Items.GetUpperBound(); i < n; ++i)
            m_Items[i] = UpdateHandle(m_Items[i]);
        for (int i = m_Focus.GetLowerBound(), n = m_Focus.GetUpperBound(); i < n; ++i)
            m_Focus[i] = UpdateHandle(m_Focus[i]);
        IndexRebuild(*this);
        for (std::pair<int, int>& entry : m_Queue) entry.second = UpdateHandle(entry.second);
        m_Focus.Sort(m_Focus.GetLowerBound(), m_Focus.GetCount(), 1);
        result = Raise(SCC_HandlesUpdated, nullptr);
        break;
    }
    default:
        break;
    }

    // Deliberately no current position afterwards and the slider at 0.
    m_Current = saved;
    SetSlider(CurrentValid() ? m_Items.FastGetAt(m_Current.m_Position) : 0);
    return result;
}

int SCC_StdCollection::OnParentNotification(int code, int* data) {
    const int handle = SCC_DataToHandle(data);
    if (!HandleNotificationsAllowed(handle)) return 0;
    switch (code) {
    case SCC_ObjectAdded:
    case SCC_ObjectChanged:
    case SCC_ObjectRedrawn:
    case SCC_CollectionReload:
        Reload();
        break;
    case SCC_ObjectDeleted:
        SetSlider(0);
        while (_GetNextByParentSlider()) {
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

// ---------------------------------------------------------------------------
// Iteration, focus and handle data

int SCC_StdCollection::IsEmpty() { return CurrentValid() ? 0 : 1; }

int SCC_StdCollection::HasFocus() { return m_Focus.GetCount() > 0 ? 1 : 0; }

int SCC_StdCollection::Filter(int handle) { return m_Filter ? m_Filter->IsTrue(handle) : 1; }

int SCC_StdCollection::GetFocus(long index) {
    if (index < 0 || index >= m_Focus.GetCount()) return 0;
    return m_Focus.FastGetAt(m_Focus.GetLowerBound() + static_cast<int>(index));
}

void SCC_StdCollection::SetFocus(int handle, bool add) {
    long index = handle ? FindItem(handle) : -1;
    if (index < 0) handle = 0;
    if (!add || !handle) {
        m_Focus.Clear();
        if (!handle) return;
    }
    long first = 0;
    long last = 0;
    m_Focus.FindItemPosition(handle, first, last);
    m_Focus.Insert(static_cast<int>(last), 1);
    m_Focus[static_cast<int>(last)] = handle;
    if (add) return;

    // Single selection: announce the selected handle with the host's slider
    // on it, then put everything back.
    Position saved(m_Current);
    m_Current.SetArray(&m_Items, static_cast<int>(index));
    const int slider = GetSlider();
    SetSlider(handle);
    Raise(SCC_ObjectChanged, SCC_HandleToData(handle));
    SetSlider(slider);
    m_Current = saved;
}

bool SCC_StdCollection::IsInFocus(int handle, long* position) {
    long first = 0;
    long last = 0;
    m_Focus.FindItemPosition(handle, first, last);
    if (position) *position = first;
    return first < last;
}

int SCC_StdCollection::GetSlider() { return _GetSlider(); }

void SCC_StdCollection::SetSlider(int handle) {
    const long index = handle ? FindItem(handle) : -1;
    if (index < 0) {
        m_Current.Detach();
        _SetSlider(0);
        return;
    }
    m_Current.SetArray(&m_Items, static_cast<int>(index));
    _SetSlider(handle);
}

long SCC_StdCollection::GetPosition() { return m_Current.m_Position; }

void SCC_StdCollection::SetPosition(long position) {
    const int at = static_cast<int>(position);
    m_Current.SetArray(&m_Items, at);
    // An index outside the list grows it with slots that hold no handle yet.
    const bool grows = !m_Items.InBounds(at);
    const int handle = m_Items[at];
    if (grows) IndexDrop(*this);
    _SetSlider(handle);
}

int SCC_StdCollection::GetAt(long position) {
    if (position < INT_MIN || position > INT_MAX) return 0;
    const int at = static_cast<int>(position);
    if (!m_Items.InBounds(at) || !m_Items.m_Buffer->m_Data) return 0;
    return m_Items.FastGetAt(at);
}

long SCC_StdCollection::GetPositionByHandle(int handle) { return handle ? FindItem(handle) : -1; }

int SCC_StdCollection::GetHandleData(int handle) {
    const auto found = m_HandleData.find(handle);
    return found == m_HandleData.end() ? 0 : found->second;
}

void SCC_StdCollection::SetHandleData(int handle, int value) {
    m_HandleData[handle] = value;
    // Announced on the event whose chain the collection is in, not on its
    // own change event.
    if (SCC_EventNode<int>* event = GetRoot())
        static_cast<SCC_Event<int>*>(event)->Notify(SCC_ObjectChanged, SCC_HandleToData(handle));
}

int SCC_StdCollection::GetFirst() {
    if (m_Items.GetCount() == 0) {
        m_Current.Detach();
        SetSlider(0);
    } else {
        SetPosition(m_Items.GetLowerBound());
    }
    return CurrentValid() ? 1 : 0;
}

int SCC_StdCollection::GetNext() {
    if (!CurrentValid()) return 0;
    ++m_Current;
    if (!CurrentValid()) return 0;
    _SetSlider(m_Items.FastGetAt(m_Current.m_Position));
    return 1;
}

int SCC_StdCollection::GetPrev() {
    if (!CurrentValid()) return 0;
    --m_Current;
    if (!CurrentValid()) return 0;
    _SetSlider(m_Items.FastGetAt(m_Current.m_Position));
    return 1;
}

// ---------------------------------------------------------------------------
// Sorting and filtering

void SCC_StdCollection::SetFilter(SYS_Filter* filter) {
    m_Filter = filter;
    Reload();
}

void SCC_StdCollection::SetSort(int (*compare)(const int&, const int&), int descending) {
    SetSort(new SCC_Sort<int>(compare), descending);
}

void SCC_StdCollection::SetSort(SCC_Sort<int>* sort, int descending) {
    m_Items.SetSort(sort);
    m_Items.Clear();
    // The cleared list has no storage, so this records no direction: the
    // items keep the ascending order of `sort`.
    m_Items.Sort(0, 0, descending ? -1 : 1);
    IndexRebuild(*this);
    Reload();
}
