// SCC_StdCollection.h - a live, sorted, filtered view of host objects known
// by handle, with a focus set (the selection) and per-handle user data.
//
// The host derives from SCC_StdCollection and supplies the walk over its
// own objects (_GetFirst, _GetNext, _GetPrev, _GetSlider, _SetSlider) and the
// change event of the object at its slider (GetEvent).  The collection keeps
// the handles that pass its filter in the order of its comparison, listens
// to each item's change event and to an optional parent collection, and
// tells its own listeners of every change through GetChangeEvent(), with
// the codes of SCC_CollectionCode.  In notifications the int* data pointer
// carries the handle value itself (see SCC_HandleToData).
//
// Deliberate behaviour a host relies on: after a notification is handled
// the collection has no current position and the host slider is 0; a
// single-selection SetFocus announces code 3 for the selected handle;
// IsEmpty reports whether there is a current item, not whether there are
// items.
//
// Costs: items are found by a linear scan (the list is ordered by the
// comparison, not by handle); the focus set is sorted by handle and searched
// by binary search.  A change of one object costs one scan, one search and
// one block move; Reload walks every host object and rebuilds the list, so
// hosts switch it off (AllowReload(0)) during large changes.  Every event
// the items raise is listened to by one hook, stored in place in a map.
#ifndef SCC_STDCOLLECTION_H
#define SCC_STDCOLLECTION_H

#include "SCC_Event.h"
#include "SCC_SortableArray.h"
#include "SYS_StdInterface.h"
#include "keel_config.h"

#include <cstdint>
#include <deque>
#include <map>
#include <utility>

// The codes a collection hears from its items' events and raises on its own.
enum SCC_CollectionCode {
    SCC_ObjectAdded = 1,
    SCC_ObjectDeleted = 2,
    SCC_ObjectChanged = 3,     // may change the object's place in the order
    SCC_ObjectRedrawn = 4,     // changed without affecting the order
    SCC_ObjectUnused = 5,      // ignored
    SCC_CollectionReload = 6,  // everything may have changed: rebuild
    SCC_CollectionCleared = 7, // every object is gone
    SCC_HandlesUpdated = 8     // handle numbers changed
};

// The data pointer that carries `handle` in a notification, and back.
inline int* SCC_HandleToData(int handle) {
    return reinterpret_cast<int*>(static_cast<intptr_t>(handle));
}
inline int SCC_DataToHandle(const int* data) {
    return static_cast<int>(reinterpret_cast<intptr_t>(data));
}

class KEEL_API SCC_StdCollection : public SCC_EventNode<int> {
public:
    // A cursor into the item list that follows its item through insertions
    // and deletions.  A copy keeps only m_Extra: it has no array and no
    // position.  Assignment takes everything, including the place in the
    // array's chain (a detached source leaves this one detached).
    class KEEL_API Position : public SCC_Array<int>::Iterator {
    public:
        Position() : m_Extra(0) {}
        Position(const Position& other) : SCC_Array<int>::Iterator(), m_Extra(other.m_Extra) {}
        Position& operator=(const Position& other);
        // Leaves the array's chain with no array and no position.
        void Detach();

        // Free for the host's subclasses; the collection only copies it.
        int m_Extra;
    };

    // Listens to one item event and forwards to OnNotification.  It serves
    // m_UseCount items; hooks live in the map and are never copied.
    class KEEL_API EventHook : public SCC_ObjectEventHook<SCC_StdCollection, int> {
    public:
        explicit EventHook(SCC_StdCollection* collection);
        EventHook(const EventHook&) = delete;
        EventHook& operator=(const EventHook&) = delete;

        int m_UseCount;
    };

    explicit SCC_StdCollection(SCC_StdCollection* parent = nullptr);
    // A copy has the source's parent, source event, sort, filter, items,
    // focus, handle data and queued notifications, and listens to the same
    // events through hooks of its own.  Its own listeners start empty.
    SCC_StdCollection(const SCC_StdCollection& other);
    // Leaves every chain this collection is in, then becomes a copy as above;
    // this collection's own listeners stay.
    SCC_StdCollection& operator=(const SCC_StdCollection& other);
    // Releases everything without raising a notification.
    ~SCC_StdCollection() override;

    int OnNotification(int code, int* data) override;

protected:
    virtual void Reload();
    virtual int _GetSlider();
    virtual void _SetSlider(int handle);
    virtual int _GetFirst();
    virtual int _GetNext();
    virtual int _GetPrev();
    virtual int _GetFirstByParentSlider();
    virtual int _GetNextByParentSlider();

public:
    virtual void SetParent(SCC_StdCollection* parent);
    virtual void AllowReload(int allow);
    virtual int IsReloadAllowed();
    virtual int FindNextTempItem(int handle);
    virtual void Clear();
    // The change event of the host object at the slider; base none.
    virtual SCC_Notifier* GetEvent();
    virtual void SetEvent(SCC_Notifier* event);
    virtual void SetNotificationHandler(SCC_EventNode<int>* handler);
    virtual int OnParentNotification(int code, int* data);
    virtual int EnableNotifications(int enable);
    virtual int HandleNotificationsAllowed(int handle);
    virtual void Suspend(int on);
    virtual int IsEmpty();
    virtual int HasFocus();
    virtual int Filter(int handle);
    virtual int GetFocus(long index);
    virtual void SetFocus(int handle, bool add);
    virtual bool IsInFocus(int handle, long* position);
    virtual int GetSlider();
    virtual void SetSlider(int handle);
    virtual long GetPosition();
    virtual void SetPosition(long position);
    virtual int GetAt(long position);
    virtual long GetPositionByHandle(int handle);
    virtual int GetHandleData(int handle);
    virtual void SetHandleData(int handle, int value);
    virtual int GetFirst();
    virtual int GetNext();
    virtual int GetPrev();
    // The new number of a renumbered handle; base 0.
    virtual int UpdateHandle(int handle);

    void SetFilter(SYS_Filter* filter);
    void SetSort(int (*compare)(const int&, const int&), int descending);
    void SetSort(SCC_Sort<int>* sort, int descending);
    SCC_Notifier* GetChangeEvent() { return &m_ChangeEvent; }

protected:
    // Listens to (connect 1) or stops listening to (connect 0) the event of
    // the host object at the slider.  `event` and `hook`, when given, carry
    // the last event and hook between calls and skip the map lookup.
    void ConnectEvent(int connect, SCC_Notifier** event, EventHook** hook);

public:
    SCC_SortableArray<int> m_Focus;
    std::map<SCC_Notifier*, EventHook> m_Hooks;
    SCC_Notifier* m_SourceEvent;
    SCC_Notifier m_ChangeEvent;
    SYS_Filter* m_Filter;
    std::deque<std::pair<int, int>> m_Queue; // (code, handle)
    SCC_SortableArray<int> m_Items;
    std::map<int, int> m_HandleData;
    Position m_Current;
    SCC_StdCollection* m_Parent;
    int m_Suspended;
    int m_ReloadAllowed;
    int m_HasTempItems;
    SCC_ObjectEventHook<SCC_StdCollection, int> m_ParentHook;

private:
    // Counts the removals from m_Hooks, so that a cached hook is dropped
    // when a host callback removed hooks in the middle of a reload.
    unsigned m_HooksRemoved = 0;

    // The index of `handle` in m_Items by linear scan, or -1.
    long FindItem(int handle) const;
    // Whether m_Current stands on an element of m_Items.
    bool CurrentValid() const;
    int Raise(int code, int* data) { return m_ChangeEvent.Notify(code, data); }
    // Inserts `handle` after its equal run and makes it current (codes 1, 3).
    int AddItem(int handle, int* data);
    // Joins the chains `other` is in and copies its state (copy, assignment).
    void CopyFrom(const SCC_StdCollection& other);
    // Leaves every chain except this collection's own change event.
    void LeaveChains();
    // Tells the children listening to this collection that it is going away.
    void ReleaseChildren();
};

#endif // SCC_STDCOLLECTION_H
