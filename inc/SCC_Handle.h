/// @file
/// Handle objects and the sorted tables that keep them.
///
/// A host object is addressed by a pair: a handle number and a type.
/// SCC_HandleWithEvent stands for one pair.  It is reference counted (held
/// through SCC_SharedPointer) and is itself a node of the change event of the
/// object it stands for, so it hears when that object is deleted (code 2, the
/// leaving handle number carried as the data pointer's value), when
/// everything is cleared (7) and when handles are renumbered (8), and passes
/// each notification on to its table.
///
/// SCC_SavedHandles keeps handle objects sorted by (type, handle), both as
/// signed numbers, creates them through the virtual factory CreateByType, finds
/// them by binary search and drops them when their objects go away.  After a
/// renumbering the table is re-sorted by the next lookup.
///
/// Costs: Find is a binary search (O(log n) comparisons, each a virtual call);
/// Save and Delete add the O(n) move of one insertion or deletion.  A handle
/// object is one event node plus a count word, a type and a handle.
#ifndef SCC_HANDLE_H
#define SCC_HANDLE_H

#include "SCC_Event.h"
#include "SCC_Shared.h"
#include "SCC_SortableArray.h"
#include "keel_config.h"

class SCC_SavedHandles;

/// What a table does with a notification its handle objects pass on.  These
/// are the codes SCC_ObjectDeleted, SCC_CollectionCleared and
/// SCC_HandlesUpdated that collections raise; every other code is ignored.
enum SCC_HandleCode {
    /// The object whose handle is the data pointer's value is gone: its entry
    /// is dropped.
    SCC_HandleDeleted = 2,
    /// Every object is gone: the table empties.
    SCC_HandlesCleared = 7,
    /// Handle numbers changed: the table re-sorts before the next lookup.
    SCC_HandlesRenumbered = 8
};

/// One (handle, type) pair that a table keeps, listening to the change event
/// of the object it stands for.
///
/// Make it with new and hold it through SCC_SharedPointer: the last reference
/// deletes it (an object on the stack or a member is never deleted).  Derive
/// from it to return the object's event from GetChangeEvent() and, when
/// needed, to refresh cached pointers in OnUpdatePointers().
class KEEL_API SCC_HandleWithEvent : public SCC_EventNode<int>, public SCC_SharedBuffer {
public:
    /// A detached node with a never-referenced count.  `owner` is the table
    /// to notify; it is only pointed at, never owned.
    SCC_HandleWithEvent(int handle, long type, SCC_SavedHandles* owner);
    /// Copies the node links as they stand (the copy is not in the ring:
    /// re-insert it before it is destroyed), starts a fresh count and copies
    /// type, handle and owner.
    SCC_HandleWithEvent(const SCC_HandleWithEvent& other);
    /// Takes other's count word as it stands, joins other's chain just before
    /// other, and copies type, handle and owner.
    SCC_HandleWithEvent& operator=(SCC_HandleWithEvent& other);
    /// Leaves the event's chain.
    ~SCC_HandleWithEvent() override;

    /// Code 8 first calls OnUpdatePointers; then the owner's
    /// HandleNotification decides, and its result is returned (0 from the
    /// library's table).  A handle object without an owner ignores
    /// notifications and returns 0.  The table may drop, and so destroy, this
    /// object while it answers.
    int OnNotification(int code, int* data) override;

    /// The event to listen to: the change event of the object the handle
    /// stands for.  The base has none (null), and then SCC_SavedHandles::Save
    /// attaches the object nowhere.  The event is only pointed at.
    virtual SCC_Notifier* GetChangeEvent();
    /// Called when handles were renumbered, before the table hears of it;
    /// a subclass refreshes what it derived from the old numbers.  Nothing by
    /// default.
    virtual void OnUpdatePointers();

    /// The handle number.
    int GetHandle() const { return handle; }
    /// The type of object the handle addresses.
    long GetType() const { return type; }

    /// The type of object the handle addresses; the table's first sort key.
    long type;
    /// The handle number; the table's second sort key.
    int handle;
    /// The table to notify, or null; not owned.  A table that is destroyed
    /// sets it to null in the objects it held.
    SCC_SavedHandles* owner;
};

/// Handle objects order by type, then handle, both signed; a null pointer
/// sorts before every object.
template <> struct SCC_DefaultCompare<SCC_SharedPointer<SCC_HandleWithEvent>> {
    /// Negative, 0 or positive as `a` sorts before, with or after `b`.
    static int Compare(const SCC_SharedPointer<SCC_HandleWithEvent>& a,
                       const SCC_SharedPointer<SCC_HandleWithEvent>& b) {
        const SCC_HandleWithEvent* x = a.Get();
        const SCC_HandleWithEvent* y = b.Get();
        if (!x || !y) return (x ? 1 : 0) - (y ? 1 : 0);
        if (x->type != y->type) return x->type < y->type ? -1 : 1;
        if (x->handle != y->handle) return x->handle < y->handle ? -1 : 1;
        return 0;
    }
};

/// A sorted table of handle objects, one per (handle, type) pair.
///
/// Derive from it and implement CreateByType().  The table holds one
/// reference to each object; objects stay alive while a host still holds a
/// pointer from Find().  Elements are shared pointers kept in ascending
/// (type, handle) order.
class KEEL_API SCC_SavedHandles : public SCC_SortableArray<SCC_SharedPointer<SCC_HandleWithEvent>> {
    using Base = SCC_SortableArray<SCC_SharedPointer<SCC_HandleWithEvent>>;

public:
    /// An empty table in (type, handle) order.
    SCC_SavedHandles() : resort(false) {}
    /// Share other's elements (not clones) and its comparison.
    SCC_SavedHandles(SCC_SavedHandles& other) : Base(other), resort(other.resort) {}
    /// Share other's elements (not clones), its comparison and its resort flag.
    SCC_SavedHandles& operator=(SCC_SavedHandles& other) {
        Base::operator=(other);
        resort = other.resort;
        return *this;
    }

protected:
    /// Makes the handle object for (handle, type), owned by this table: a
    /// subclass makes it with new, with `owner` set to this table, and the
    /// table keeps the returned reference.  Null (the base's answer) for a
    /// type it does not know: Save then adds nothing.
    virtual SCC_SharedPointer<SCC_HandleWithEvent> CreateByType(int handle, long type);

public:
    /// Acts on a notification one of the handle objects heard; always 0.
    /// SCC_HandleDeleted drops the entry whose handle is the data pointer's
    /// value (the `handle` argument is not used) and whose type is `type`;
    /// SCC_HandlesCleared empties the table; SCC_HandlesRenumbered sets
    /// resort.  Other codes change nothing.
    virtual int HandleNotification(int handle, long type, int code, int* data);
    /// Creates the object for (handle, type) with CreateByType when the table
    /// has none, appends it to the tail of its GetChangeEvent() (when there is
    /// one) and inserts it in order.  1 when it did; 0 when the pair was
    /// already saved or the factory made nothing.  O(log n) search plus the
    /// O(n) move of one insertion.
    virtual int Save(int handle, long type);
    /// Drops the object for (handle, type), releasing the table's reference
    /// (the object is destroyed, and leaves its event, when that was the last
    /// one).  1 when there was one, else 0.
    virtual int Delete(int handle, long type);
    /// The object for (handle, type) as a new counted reference, or null.
    /// `position` (may be null) receives the index of its run, or where it
    /// would go.  Sorts the whole table first when resort is set
    /// (O(n log n)); otherwise a binary search.
    virtual SCC_SharedPointer<SCC_HandleWithEvent> Find(int handle, long type, long* position);
    /// Releases every element.  Handle objects that outlive the table (a host
    /// kept one from Find) stop naming it: they ignore what they hear from
    /// then on.
    // Declared after the table's own slots so that they keep their order.
    virtual ~SCC_SavedHandles();

    /// Set by a renumbering: the next lookup sorts the whole table first.
    bool resort;
};

#endif // SCC_HANDLE_H
