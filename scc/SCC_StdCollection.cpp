// SCC_StdCollection.cpp - the live, sorted, filtered view of host objects.
#include "SCC_StdCollection.h"

#include <algorithm>
#include <climits>
#include <set>
#include <tuple>
#include <typeinfo>

typedef SCC_ObjectEventHook<SCC_StdCollection, int> ParentHook;

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
    SetParent(parent);
}

SCC_StdCollection::SCC_StdCollection(const SCC_StdCollection& other)
    : SCC_EventNode<int>(), m_SourceEvent(nullptr), m_Filter(nullptr), m_Parent(nullptr),
      m_Suspended(0), m_ReloadAllowed(0), m_HasTempItems(0) {
    m_ParentHook.SetObject(this);
    m_ParentHook.SetMethod(&SCC_StdCollection::OnParentNotification);
    m_ParentHook.SetPriority(0);
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
    SetSlider(0);
    int parentSlider = 0;
    if (m_Parent) {
        m_Parent->AllowReload(1);
        parentSlider = m_Parent->GetSlider();
    }
    SCC_Notifier* lastEvent = nullptr;
    EventHook* lastHook = nullptr;
    unsigned removals = m_HooksRemoved;
    for (int more = _GetFirst(); more; more = _GetNext()) {
        const int handle = GetSlider();
        if (!Filter(handle)) continue;
        long first = 0;
        long last = 0;
        m_Items.FindItemPosition(handle, first, last);
        bool listed = false;
        for (long i = first; i < last && !listed; ++i)
            listed = m_Items.FastGetAt(static_cast<int>(i)) == handle;
        if (!listed) {
            m_Items.Insert(static_cast<int>(last), 1);
            m_Items[static_cast<int>(last)] = handle;
        }
        if (removals != m_HooksRemoved) lastHook = nullptr;
        ConnectEvent(1, &lastEvent, &lastHook);
        removals = m_HooksRemoved;
    }
    if (m_Parent) m_Parent->SetSlider(parentSlider);

    bool same = old.GetCount() == m_Items.GetCount();
    for (int i = 0, n = m_Items.GetCount(); same && i < n; ++i)
        same = old.FastGetAt(old.GetLowerBound() + i) ==
               m_Items.FastGetAt(m_Items.GetLowerBound() + i);
    if (same) return;

    m_HasTempItems = m_Items.GetCount() > 0 ? 1 : 0;
    SCC_SortableArray<int> focus;
    for (int i = 0, n = m_Focus.GetCount(); i < n; ++i) {
        const int handle = m_Focus.FastGetAt(m_Focus.GetLowerBound() + i);
        if (FindItem(handle) >= 0) focus.InsertSorted(handle);
    }
    m_Focus = focus;
    m_Items.Sort(m_Items.GetLowerBound(), m_Items.GetCount(), 1);
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
    const int* at = std::find(first, last, handle);
    return at == last ? -1 : b->m_Lower + (at - first);
}

bool SCC_StdCollection::CurrentValid() const {
    return m_Current.m_Array == &m_Items && m_Items.InBounds(m_Current.m_Position);
}

int SCC_StdCollection::AddItem(int handle, int* data) {
    const long at = m_Items.InsertSorted(handle);
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
        if (CurrentValid()) m_Items.Delete(m_Current.m_Position, 1);
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
        if (m_Items.InBounds(scratch.m_Position)) m_Items.Delete(scratch.m_Position, 1);
        if (!passes) {
            result = 0;
            break;
        }
        long first = 0;
        long last = 0;
        m_Items.FindItemPosition(handle, first, last);
        m_Items.Insert(static_cast<int>(last), 1);
        m_Items[static_cast<int>(last)] = handle;
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
        m_Focus.Clear();
        break;
    case SCC_HandlesUpdated: {
        for (int i = m_Items.GetLowerBound(), n = m_Items.GetUpperBound(); i < n; ++i)
            m_Items[i] = UpdateHandle(m_Items[i]);
        for (int i = m_Focus.GetLowerBound(), n = m_Focus.GetUpperBound(); i < n; ++i)
            m_Focus[i] = UpdateHandle(m_Focus[i]);
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
    _SetSlider(m_Items[at]);
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
    Reload();
}
