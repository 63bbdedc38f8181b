// SCC_Handle.h - handle objects and the sorted tables that keep them.
//
// A host object is addressed by a pair: a handle number and a type.
// SCC_HandleWithEvent stands for one pair.  It is reference counted (held
// through SCC_SharedPointer) and is itself a node of the change event of the
// object it stands for, so it hears when that object is deleted (code 2, the
// leaving handle number carried as the data pointer's value), when
// everything is cleared (7) and when handles are renumbered (8), and passes
// each notification on to its table.
//
// SCC_SavedHandles keeps handle objects sorted by (type, handle), both as
// signed numbers, creates them through the virtual factory CreateByType, finds
// them by binary search and drops them when their objects go away.  After a
// renumbering the table is re-sorted by the next lookup.
//
// Costs: Find is a binary search (O(log n) comparisons, each a virtual call);
// Save and Delete add the O(n) move of one insertion or deletion.  A handle
// object is one event node plus a count word, a type and a handle.
#ifndef SCC_HANDLE_H
#define SCC_HANDLE_H

#include "SCC_Event.h"
#include "SCC_Shared.h"
#include "SCC_SortableArray.h"
#include "keel_config.h"

class SCC_SavedHandles;

// What a table does with a notification its handle objects pass on.
enum SCC_HandleCode {
    SCC_HandleDeleted = 2,    // the handle in the data pointer's value is gone
    SCC_HandlesCleared = 7,   // every object is gone
    SCC_HandlesRenumbered = 8 // handle numbers changed: re-sort before the next lookup
};

class KEEL_API SCC_HandleWithEvent : public SCC_EventNode<int>, public SCC_SharedBuffer {
public:
    // A detached node with a never-referenced count.
    SCC_HandleWithEvent(int handle, long type, SCC_SavedHandles* owner);
    // Copies the node links as they stand (the copy is not in the ring:
    // re-insert it before it is destroyed), starts a fresh count and copies
    // type, handle and owner.
    SCC_HandleWithEvent(const SCC_HandleWithEvent& other);
    // Takes other's count word as it stands, joins other's chain just before
    // other, and copies type, handle and owner.
    SCC_HandleWithEvent& operator=(SCC_HandleWithEvent& other);
    // Leaves the event's chain.
    ~SCC_HandleWithEvent() override;

    // Code 8 first calls OnUpdatePointers; then the owner's
    // HandleNotification decides, and its result is returned.  A handle
    // object without an owner ignores notifications.
    int OnNotification(int code, int* data) override;

    // The event to listen to: the change event of the object the handle
    // stands for.  The base has none.
    virtual SCC_Notifier* GetChangeEvent();
    // Called when handles were renumbered, before the table hears of it.
    virtual void OnUpdatePointers();

    int GetHandle() const { return handle; }
    long GetType() const { return type; }

    long type;
    int handle;
    SCC_SavedHandles* owner;
};

// Handle objects order by type, then handle, both signed; a null pointer
// sorts before every object.
template <> struct SCC_DefaultCompare<SCC_SharedPointer<SCC_HandleWithEvent>> {
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

class KEEL_API SCC_SavedHandles : public SCC_SortableArray<SCC_SharedPointer<SCC_HandleWithEvent>> {
    using Base = SCC_SortableArray<SCC_SharedPointer<SCC_HandleWithEvent>>;

public:
    SCC_SavedHandles() : resort(false) {}
    // Share other's elements (not clones) and its comparison.
    SCC_SavedHandles(SCC_SavedHandles& other) : Base(other), resort(other.resort) {}
    SCC_SavedHandles& operator=(SCC_SavedHandles& other) {
        Base::operator=(other);
        resort = other.resort;
        return *this;
    }

protected:
    // Makes the handle object for (handle, type), owned by this table.  The
    // base makes none.
    virtual SCC_SharedPointer<SCC_HandleWithEvent> CreateByType(int handle, long type);

public:
    // Acts on a notification one of the handle objects heard; always 0.
    virtual int HandleNotification(int handle, long type, int code, int* data);
    // Creates, listens to and inserts the object for (handle, type) when the
    // table has none; 1 when it did.
    virtual int Save(int handle, long type);
    // Drops the object for (handle, type); 1 when there was one.
    virtual int Delete(int handle, long type);
    // The object for (handle, type), or null.  `position` (may be null)
    // receives the index of its run, or where it would go.
    virtual SCC_SharedPointer<SCC_HandleWithEvent> Find(int handle, long type, long* position);
    // Declared after the table's own slots so that they keep their order.
    // Handle objects that outlive the table (a host kept one from Find) stop
    // naming it: they ignore what they hear from then on.
    virtual ~SCC_SavedHandles();

    // Set by a renumbering: the next lookup sorts the whole table first.
    bool resort;
};

#endif // SCC_HANDLE_H
