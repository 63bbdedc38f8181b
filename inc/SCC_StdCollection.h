/// @file
/// A live, sorted, filtered view of host objects known by handle, with a
/// focus set (the selection) and per-handle user data.
///
/// The host derives from SCC_StdCollection and supplies the walk over its
/// own objects (_GetFirst, _GetNext, _GetPrev, _GetSlider, _SetSlider) and the
/// change event of the object at its slider (GetEvent).  The collection keeps
/// the handles that pass its filter in the order of its comparison, listens
/// to each item's change event and to an optional parent collection, and
/// tells its own listeners of every change through GetChangeEvent(), with
/// the codes of SCC_CollectionCode.  In notifications the int* data pointer
/// carries the handle value itself (see SCC_HandleToData).
///
/// A new collection lists nothing: reloading is off until AllowReload(1).
/// GetFirst, GetNext and GetPrev return whether there is a current item (1 or
/// 0), not a handle; the handle comes from GetSlider().  A typical host:
///
///     PartList list(&board);              // SetEvent(&board.added) inside
///     list.SetSort(new ByName(&board), 0); // owned by the list from now on
///     list.AllowReload(1);                // walks the board: now it lists
///     for (int ok = list.GetFirst(); ok; ok = list.GetNext())
///         show(list.GetSlider());
///
/// Deliberate behaviour a host relies on: after a notification is handled
/// the collection has no current position and the host slider is 0; a
/// single-selection SetFocus announces code 3 for the selected handle;
/// IsEmpty reports whether there is a current item, not whether there are
/// items; SetSort with `descending` set still keeps the ascending order.
///
/// Costs, for n items and f focused handles: the list is ordered by the
/// comparison, not by handle, so the collection keeps an index from handle
/// to position beside it; finding a handle (SetSlider, SetFocus,
/// GetPositionByHandle, every notification) costs O(log n).  While the list
/// holds a handle twice (announced twice, or renumbered into another), the
/// index stands aside and a linear scan finds the first position, until the
/// next rebuild.  The focus set is sorted by handle and searched by binary
/// search.  A change of one object costs one look-up, one equal-run search
/// and one block move.  Reload walks every host object and sorts what it
/// walked, O(n log n) comparisons whatever the order of the walk, and
/// rebuilds the focus set in O(f + n); still, hosts switch it off
/// (AllowReload(0)) during large changes, as each change would rebuild.
/// Every event the items raise is listened to by one hook, stored in place
/// in a map.  Change m_Items only through the collection: an index that no
/// longer matches the list's shape is set aside (scans again), but one
/// element overwritten in place is not noticed.
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

/// The codes a collection hears from its items' events and raises on its own.
/// The data pointer carries the handle concerned (SCC_DataToHandle), or is
/// null where a code concerns no single handle.
enum SCC_CollectionCode {
    /// An object was added: heard from the source event; raised once the
    /// handle is listed (with the host slider on it).
    SCC_ObjectAdded = 1,
    /// An object was deleted: raised while the handle is still listed, then
    /// it goes.
    SCC_ObjectDeleted = 2,
    /// An object changed; this may change its place in the order.  Also
    /// raised for a single selection (SetFocus), by SetHandleData, and with
    /// null data when the host's "has objects" answer changes while reloading
    /// is off.
    SCC_ObjectChanged = 3,
    /// Changed without affecting the order; passed on as it is.
    SCC_ObjectRedrawn = 4,
    /// Ignored.
    SCC_ObjectUnused = 5,
    /// Everything may have changed.  Heard: rebuild (Reload).  Raised with
    /// null data after a rebuild that changed the list.
    SCC_CollectionReload = 6,
    /// Every object is gone; raised before the collection forgets its items.
    SCC_CollectionCleared = 7,
    /// Handle numbers changed: heard, every handle goes through UpdateHandle;
    /// then raised with null data.
    SCC_HandlesUpdated = 8
};

/// @name Handles in notifications
///@{

/// The data pointer that carries `handle` in a notification
/// (SCC_HandleToData), and the handle a data pointer carries
/// (SCC_DataToHandle).  The pointer is never dereferenced.
inline int* SCC_HandleToData(int handle) {
    return reinterpret_cast<int*>(static_cast<intptr_t>(handle));
}
inline int SCC_DataToHandle(const int* data) {
    return static_cast<int>(reinterpret_cast<intptr_t>(data));
}
///@}

/// A live, sorted, filtered list of the host's objects, known by handle.
///
/// To write one, derive from it and supply the walk over the host's objects
/// (_GetFirst, _GetNext, _GetSlider, _SetSlider), the change event of the
/// object at the slider (GetEvent) and, when the host renumbers handles,
/// UpdateHandle.  Then SetEvent() to the event where the host announces new
/// objects, SetSort(), and AllowReload(1): reloading is off at construction,
/// so until then the list is empty.  Listeners attach to GetChangeEvent().
///
/// The list is ordered by the collection's comparison (ascending handle
/// numbers by default), with an index from handle to position beside it;
/// the focus set is ordered by handle.  Every notification the collection handles leaves it without
/// a current position and with the host slider at 0: walk again with GetFirst() afterwards.
class KEEL_API SCC_StdCollection : public SCC_EventNode<int> {
public:
    /// A cursor into the item list that follows its item through insertions
    /// and deletions.  A copy keeps only m_Extra: it has no array and no
    /// position.  Assignment takes everything, including the place in the
    /// array's chain (a detached source leaves this one detached).
    class KEEL_API Position : public SCC_Array<int>::Iterator {
    public:
        /// No array, position 0x7FFFFFFF (none), m_Extra 0.
        Position() : m_Extra(0) {}
        /// Copies m_Extra only: the copy has no array and no position.
        Position(const Position& other) : SCC_Array<int>::Iterator(), m_Extra(other.m_Extra) {}
        /// Takes other's array, position, chain place and m_Extra.
        Position& operator=(const Position& other);
        /// Leaves the array's chain with no array and no position.
        void Detach();

        /// Free for the host's subclasses; the collection only copies it.
        int m_Extra;
    };

    /// Listens to one item event and forwards to OnNotification.  It serves
    /// m_UseCount items; hooks live in the map and are never copied.
    class KEEL_API EventHook : public SCC_ObjectEventHook<SCC_StdCollection, int> {
    public:
        /// A detached hook that forwards to `collection`'s OnNotification;
        /// m_UseCount 0.
        explicit EventHook(SCC_StdCollection* collection);
        /// @name Not copyable
        ///@{

        /// Hooks stay where the map built them.
        EventHook(const EventHook&) = delete;
        EventHook& operator=(const EventHook&) = delete;
        ///@}

        /// The number of listed objects whose event this hook serves; at 0
        /// the hook is dropped.
        int m_UseCount;
    };

    /// An empty collection with reloading off (nothing is listed until
    /// AllowReload(1)), no filter and ascending handle order; then
    /// SetParent(parent), which switches reloading on in the parent.  The
    /// parent is only pointed at.
    explicit SCC_StdCollection(SCC_StdCollection* parent = nullptr);
    /// A copy has the source's parent, source event, sort, filter, items,
    /// focus, handle data and queued notifications, and listens to the same
    /// events through hooks of its own.  Its own listeners start empty.
    SCC_StdCollection(const SCC_StdCollection& other);
    /// Leaves every chain this collection is in, then becomes a copy as above;
    /// this collection's own listeners stay.
    SCC_StdCollection& operator=(const SCC_StdCollection& other);
    /// Releases everything without raising a notification: listeners are
    /// detached (not deleted), the collection leaves the item events and the
    /// source event, and child collections forget this parent.
    ~SCC_StdCollection() override;

    /// Hears a notification about the object whose handle `data` carries,
    /// from the source event, an item's event, the parent or a replay, and
    /// updates the list; returns 0.
    ///
    /// A handle that neither passes the filter nor is listed is ignored.
    /// While suspended the notification is queued instead (see Suspend).
    /// Otherwise, by code:
    /// - SCC_ObjectAdded: inserts the handle after the items equal to it
    ///   (not checked for duplicates: announce an object once), listens to
    ///   its event, raises SCC_ObjectAdded.
    /// - SCC_ObjectDeleted: unfocuses it; if listed, stops listening, raises
    ///   SCC_ObjectDeleted while it is still listed, then removes it and its
    ///   handle data.
    /// - SCC_ObjectChanged: an unlisted handle that passes is added as above.
    ///   A listed one that still passes and is still in order raises
    ///   SCC_ObjectChanged; otherwise SCC_ObjectDeleted is raised, the handle
    ///   is removed and, if it still passes, re-inserted at its new place
    ///   (focus kept) with SCC_ObjectAdded.
    /// - SCC_ObjectRedrawn: raised as it is.  SCC_ObjectUnused and unknown
    ///   codes: nothing.
    /// - SCC_CollectionReload: Reload().
    /// - SCC_CollectionCleared: raised, then items, focus, handle data and
    ///   item hooks are dropped.
    /// - SCC_HandlesUpdated: every handle of the items, the focus and the
    ///   queue goes through UpdateHandle, the focus is re-sorted, and the code
    ///   is raised with null data.
    ///
    /// Listeners hear the code with the same data pointer, the host slider on
    /// the handle.  Afterwards there is deliberately no current position and
    /// the host slider is 0.  Cost: a look-up (O(log n)), plus for an
    /// addition or a move an equal-run search and a block move.
    int OnNotification(int code, int* data) override;

protected:
    /// Rebuilds the list from the host's objects.
    ///
    /// With reloading off it only checks whether the host has any object that
    /// passes the filter (FindNextTempItem(0)), raising SCC_ObjectChanged with
    /// null data when that answer changed.  With reloading on it walks every
    /// object (_GetFirst, _GetNext), lists each one that passes the filter
    /// once, in order, and listens to its event; a parent's slider is kept.
    /// Only when the list differs from before are the focused handles no
    /// longer listed dropped and SCC_CollectionReload raised with null data.
    /// The list comes out as inserting each walked handle after the items
    /// equal to it would make it (unless its equal run already holds it):
    /// ordered by the comparison, equal handles in the order walked, each
    /// handle once; then sorted once more.  Cost: O(n log n) comparisons
    /// whatever the order of the walk, and O(f + n) to rebuild the focus set
    /// (O(f log n) when handles are spread over a range far wider than n).
    /// The comparison must be an order while the list is rebuilt.
    virtual void Reload();
    /// The handle of the host's current object (its slider), 0 for none.  The
    /// base returns 0.
    virtual int _GetSlider();
    /// Moves the host's slider to `handle`; 0 means none, before the first
    /// object, so that _GetNext() then gives the first.  The base does
    /// nothing.
    virtual void _SetSlider(int handle);
    /// Moves the host's slider to its first object: non-zero when there is
    /// one, 0 (slider 0) when it has none.  The collection reads the handle
    /// with _GetSlider(), not from the result.  The base returns 0.
    virtual int _GetFirst();
    /// Moves the host's slider to its next object (from slider 0: the first):
    /// non-zero while there is one.  Past the last it must return 0 and leave
    /// _GetSlider() at 0; FindNextTempItem loops until the slider is 0.  The
    /// base returns 0.
    virtual int _GetNext();
    /// Moves the host's slider to its previous object: non-zero while there
    /// is one, 0 before the first.  The base returns 0; the collection itself
    /// never calls it (GetPrev walks the list).
    virtual int _GetPrev();
    /// @name Walk by the parent's slider
    ///@{

    /// Walk the objects of this collection that belong to the parent's
    /// current object, as _GetFirst and _GetNext do (0 past the last).  When
    /// the parent announces SCC_ObjectDeleted, the collection starts at slider
    /// 0 and removes, as deleted, every object _GetNextByParentSlider yields
    /// that passes the filter.  The base walks every object, so without an
    /// override a deletion in the parent empties the list.
    virtual int _GetFirstByParentSlider();
    virtual int _GetNextByParentSlider();
    ///@}

public:
    /// Makes `parent` (null for none) the parent: switches reloading on in it
    /// (AllowReload(1)), appends this collection's m_ParentHook to the tail of
    /// its change event, so that OnParentNotification hears it, then
    /// reloads.  The parent is only pointed at; when it is destroyed first,
    /// m_Parent becomes null.  Passing null does not unhook from a previous
    /// parent.
    virtual void SetParent(SCC_StdCollection* parent);
    /// Switches reloading on (non-zero) or off (0); off at construction.  A
    /// call made while it was off reloads at once: switching on rebuilds the
    /// list.  While off, SCC_CollectionReload, SetSort and SetFilter do not
    /// rebuild, but single-object notifications still update the list.
    /// AllowReload(1) while already on does not rebuild: pass
    /// SCC_CollectionReload to OnNotification for that.
    virtual void AllowReload(int allow);
    /// The value last given to AllowReload (0 at construction).
    virtual int IsReloadAllowed();
    /// The next host object after `handle` (from the first when `handle` is
    /// 0 or not listed) that passes the filter, found with _GetNext; 0 for
    /// none.  The slider is put back with SetSlider afterwards.  Walks host
    /// objects until one passes.
    virtual int FindNextTempItem(int handle);
    /// Forgets items, focus, handle data and item hooks, raising nothing for
    /// them, then AllowReload(0): the list stays empty until AllowReload(1).
    /// The source event, parent and listeners stay.
    virtual void Clear();
    /// The change event of the host object at the slider (_GetSlider()), or
    /// null; the base has none, so it hears no item.  The collection attaches
    /// one hook per distinct event (objects may share one) and none to its
    /// own source event.  The event is only pointed at: destroying it
    /// detaches the hook.
    virtual SCC_Notifier* GetEvent();
    /// Listens to `event`, the host's source event that announces objects
    /// (typically SCC_ObjectAdded with the new handle): the collection joins
    /// the tail of its chain, leaving any event it was in.  Null changes
    /// nothing.  The event is neither owned nor copied: the collection keeps
    /// the pointer (m_SourceEvent) and leaves the chain when destroyed; an
    /// event destroyed first just detaches it.
    virtual void SetEvent(SCC_Notifier* event);
    /// Appends `handler` to the tail of the change event, whatever its
    /// priority, taking it out of any chain it was in; null is ignored.  The
    /// handler is not owned: it leaves when destroyed, and is detached, not
    /// deleted, with the collection.  To place a hook by priority, Attach it
    /// to GetChangeEvent() instead.
    virtual void SetNotificationHandler(SCC_EventNode<int>* handler);
    /// Hears the parent's change event.  Ignored unless
    /// HandleNotificationsAllowed(handle in `data`).  SCC_ObjectAdded,
    /// SCC_ObjectChanged, SCC_ObjectRedrawn and SCC_CollectionReload reload
    /// this collection; SCC_ObjectDeleted removes the objects of the parent's
    /// object (see _GetNextByParentSlider); SCC_CollectionCleared is handled
    /// as OnNotification does.  Other codes are ignored.  Always 0.
    virtual int OnParentNotification(int code, int* data);
    /// Switches the change event on (non-zero) or off (0) and returns the
    /// previous setting.  While off, listeners hear nothing and nothing is
    /// kept for later (unlike Suspend); the list itself stays current.
    virtual int EnableNotifications(int enable);
    /// Whether a parent's notification about `handle` concerns this
    /// collection: 1 for handle 0; 0 without a parent; else whether the
    /// parent has `handle` in focus.  A child follows its parent's selection.
    virtual int HandleNotificationsAllowed(int handle);
    /// Non-zero holds back what OnNotification hears: each (code, handle) is
    /// queued (a pair equal to the last queued one only once) and the list
    /// does not change; SCC_CollectionReload and SCC_CollectionCleared empty
    /// the queue and are handled at once.  0 resumes: the queue is replayed
    /// newest first, only the newest notification of each handle (0
    /// included), then emptied.  Not counted: one Suspend(0) ends any number
    /// of Suspend(1).
    virtual void Suspend(int on);
    /// 1 when there is no current item, else 0.  It does not count items: a
    /// collection with items but no current position, as after any handled
    /// notification, is "empty".  Ask GetFirst() or m_Items.GetCount() for
    /// items.
    virtual int IsEmpty();
    /// 1 when at least one handle is focused, else 0.
    virtual int HasFocus();
    /// Whether `handle` passes the filter: 1 without a filter, else the
    /// filter's IsTrue(handle) (non-zero passes).
    virtual int Filter(int handle);
    /// The index-th focused handle, in ascending handle order, or 0 past the
    /// last (and for a negative index).
    virtual int GetFocus(long index);
    /// Focuses `handle`.  With `add` true it joins the focus (a handle
    /// already focused is listed twice), raising nothing.  With `add` false
    /// it becomes the only focused handle and SCC_ObjectChanged is raised
    /// with it, the host slider on it during the call; afterwards the slider
    /// is put back and there is no current position.  A handle that is 0 or
    /// not listed clears the whole focus, even with `add` true.  Cost: a
    /// look-up (O(log n)), a binary search and a block move of the focus set.
    virtual void SetFocus(int handle, bool add);
    /// Whether `handle` is focused (binary search); `position`, when not
    /// null, receives its index in the focus set, or where it would go.
    virtual bool IsInFocus(int handle, long* position);
    /// The host's current object (_GetSlider()); during a walk with GetFirst
    /// and GetNext, the current item's handle.
    virtual int GetSlider();
    /// Makes `handle` current: the position goes to its first index (a
    /// look-up, O(log n)) and the host slider to it.  0, or a handle not listed, leaves no
    /// current position and the host slider at 0.
    virtual void SetSlider(int handle);
    /// The index of the current position, unchecked: 0x7FFFFFFF when there
    /// is none (as after any handled notification), one past an end after
    /// GetNext or GetPrev ran off it.
    virtual long GetPosition();
    /// Makes the item at index `position` current and moves the host slider
    /// to it.  Pass a valid index: one outside the list grows the list to
    /// take it in.
    virtual void SetPosition(long position);
    /// The handle at index `position`, or 0 when it is out of bounds.
    virtual int GetAt(long position);
    /// The first index of `handle` (a look-up, O(log n)), or -1 when it is
    /// not listed or 0.
    virtual long GetPositionByHandle(int handle);
    /// The value stored for `handle` with SetHandleData, or 0.
    virtual int GetHandleData(int handle);
    /// Stores `value` for `handle` (listed or not), then raises
    /// SCC_ObjectChanged with the handle on the event whose chain the
    /// collection is in (its source event, see SetEvent), not on its own
    /// change event; the collection hears it there like any change.  Nothing
    /// is raised without a source event.  The value goes when the object is
    /// deleted or cleared, and with Clear.
    virtual void SetHandleData(int handle, int value);
    /// Starts a walk of the items in the collection's order: makes the first
    /// item current and moves the host slider to it.  Returns 1 when there is
    /// a current item, 0 for an empty list (slider 0): a validity flag, not a
    /// handle; read the handle with GetSlider().
    virtual int GetFirst();
    /// @name Walking on
    ///@{

    /// Moves to the next (GetNext) or previous (GetPrev) item and the host
    /// slider with it: 1 while there is a current item, 0 when the walk runs
    /// off the end (the host slider stays on the last item visited) or there
    /// was no current item.
    virtual int GetNext();
    virtual int GetPrev();
    ///@}
    /// The new number of a renumbered handle, asked for every handle on
    /// SCC_HandlesUpdated.  The base returns 0, which turns every handle into
    /// 0: a host that renumbers overrides it and returns unchanged handles as
    /// they are.
    virtual int UpdateHandle(int handle);

    /// Restricts the list to the handles `filter` passes (null: all pass),
    /// then reloads.  The filter is neither copied nor deleted: the
    /// collection (and its copies) keep the pointer, so keep the filter alive
    /// while it is set, and set it again after changing what it tests.
    void SetFilter(SYS_Filter* filter);
    /// Orders the items by `compare` (negative, 0 or positive), wrapped in a
    /// new sort object that the collection owns; otherwise as the other form.
    void SetSort(int (*compare)(const int&, const int&), int descending);
    /// Orders the items by `sort`, empties the list and reloads (with
    /// reloading off the list stays empty until AllowReload(1)).
    ///
    /// The collection holds a counted reference: a sort made with new is
    /// deleted with its last reference (when replaced, or with the collection
    /// and its copies), destroyed as SCC_Sort<int>, whose destructor is not
    /// virtual, so give a derived sort no members that need destroying.  A
    /// static or automatic sort is never deleted and must outlive the
    /// collection.  Null makes all items compare equal.  `descending` has no
    /// effect, deliberately: the items keep the ascending order of `sort`;
    /// reverse the comparison for a descending list.
    void SetSort(SCC_Sort<int>* sort, int descending);
    /// The collection's own change event, owned by it: listeners hear the
    /// SCC_CollectionCode notifications here, the handle in the data pointer.
    SCC_Notifier* GetChangeEvent() { return &m_ChangeEvent; }

protected:
    /// Listens to (connect 1) or stops listening to (connect 0) the event of
    /// the host object at the slider (GetEvent()).  Each event has one hook,
    /// counting the objects it serves; a count that drops to 0 destroys the
    /// hook.  The collection's own source event is never hooked.  `event`
    /// and `hook`, when given, carry the last event and hook between calls
    /// and skip the map lookup.
    void ConnectEvent(int connect, SCC_Notifier** event, EventHook** hook);

public:
    /// The focused handles in ascending handle order (a handle may repeat).
    SCC_SortableArray<int> m_Focus;
    /// One hook per item event the collection listens to, held in place.
    std::map<SCC_Notifier*, EventHook> m_Hooks;
    /// The source event set by SetEvent, or null; not owned.
    SCC_Notifier* m_SourceEvent;
    /// The collection's own change event (GetChangeEvent()).
    SCC_Notifier m_ChangeEvent;
    /// The filter set by SetFilter, or null (everything passes); not owned.
    SYS_Filter* m_Filter;
    /// Notifications held back while suspended, as (code, handle).
    std::deque<std::pair<int, int>> m_Queue; // (code, handle)
    /// The listed handles in the collection's order; read it, change it
    /// through the collection.
    SCC_SortableArray<int> m_Items;
    /// Per-handle user data (SetHandleData).
    std::map<int, int> m_HandleData;
    /// The current position in m_Items.
    Position m_Current;
    /// The parent collection, or null; not owned.
    SCC_StdCollection* m_Parent;
    /// Non-zero while notifications are held back (Suspend).
    int m_Suspended;
    /// Non-zero while Reload may rebuild the list (AllowReload); 0 at first.
    int m_ReloadAllowed;
    /// Whether the last check made while reloading was off found an object.
    int m_HasTempItems;
    /// The hook through which this collection hears its parent
    /// (OnParentNotification); priority 0.
    SCC_ObjectEventHook<SCC_StdCollection, int> m_ParentHook;

private:
    // Counts the removals from m_Hooks.  Reload no longer reuses a hook
    // from one object to the next, so nothing reads it; it stays because
    // the class layout is part of the binary interface.
    unsigned m_HooksRemoved = 0;

    // The first index of `handle` in m_Items, or -1: through the handle
    // index, or by linear scan when the index cannot answer.
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
