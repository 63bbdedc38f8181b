/// @file
/// Notification chains: events, nodes and hooks.
///
/// An event heads a circular, doubly linked chain of nodes; Notify(code, data)
/// calls OnNotification on every node in chain order, which is non-increasing
/// priority order for hooks joined with Attach.  Listeners derive from
/// SCC_EventNode<T> or use a hook that forwards to a free function
/// (SCC_EventHook<T>) or to a member function (SCC_ObjectEventHook<Obj,T>).
/// `T` is the type of the data block a notification carries; the code says
/// what happened and is defined by whoever raises the event.
///
/// Ownership: nodes are never owned by the event.  Detaching never deletes a
/// node, and destroying an event leaves its former nodes detached and alive.
/// A node's destructor takes it out of its chain, so a hook (usually a member
/// of the listening object) may be destroyed at any time, even from inside its
/// own notification; what it must not do is go away without its destructor
/// running while it is attached.
///
/// Costs: every link lives in the nodes and the delivery cursor lives on the
/// stack, so attaching, detaching and delivering never allocate.  Detaching is
/// O(1), Attach is linear in the chain length, delivery makes one virtual call
/// per node (a plain SCC_EventHook's callback is called directly instead).
///
/// Delivery survives nodes leaving the chain while it runs: the event keeps a
/// stack of cursors (one Saver per active, possibly nested, Notify) and moves a
/// cursor past a node that leaves.  A node that detaches itself during its own
/// notification therefore makes its successor miss that one notification, and
/// when it was the last node the delivery wraps round to the first node again
/// and runs to the end of the chain once more.  This is deliberate.
///
/// Copies are shallow by design: copying a node copies its links without
/// joining the ring; copying or assigning an event moves the whole chain, so
/// the source is left with no listeners.
#ifndef SCC_EVENT_H
#define SCC_EVENT_H

#include "keel_config.h"
#include "internal/SCC_VirtualSlots.h"

template <class T> class SCC_Event;
template <class T> class SCC_EventHook;

/// A link of an event chain, and the base of every listener.
///
/// Derive from it and override OnNotification to listen; join a chain with
/// SCC_Event::Append, InsertBefore or operator=.  Detached: root null, prev and
/// next self.  A plain node reports the highest priority, so hooks attached
/// later never go ahead of it.
/// @tparam T the data block type of the event.
template <class T> class SCC_EventNode {
public:
    /// The event whose chain the node is in, or null.  In an SCC_Event this
    /// field is the top of the event's Saver stack instead.  Read it through
    /// GetRoot; the links are the chain's to maintain.
    SCC_EventNode* root;
    /// The previous node of the ring (the node itself when detached).
    SCC_EventNode* prev;
    /// The next node of the ring (the node itself when detached).
    SCC_EventNode* next;

    /// A detached node.
    SCC_EventNode() : root(nullptr), prev(this), next(this) {}
    /// Copies the links as they stand without joining the ring: the
    /// neighbours do not point back at the copy.  This is deliberate and
    /// shallow, so copy only detached nodes: the first Remove, InsertBefore
    /// or destruction of a copy of an attached node unlinks the original
    /// instead, leaving the original with stale links.
    SCC_EventNode(const SCC_EventNode& other)
        : root(other.root), prev(other.prev), next(other.next) {}
    /// Detaches the node (as Remove).
    virtual ~SCC_EventNode() { Remove(); }

    /// Leaves the current chain and joins other's chain just before other,
    /// whatever the priorities.  Returns this node.
    SCC_EventNode& operator=(SCC_EventNode& other) {
        InsertBefore(&other);
        return *this;
    }

    /// Called by SCC_Event::Notify with the code and data block it was given.
    /// The data block belongs to the raiser and lives only during the call.
    /// The result is ignored by Notify; the default does nothing and
    /// returns 0.  An override may raise the event again, attach or detach
    /// nodes (itself included), delete itself, or disable the event.
    virtual int OnNotification(int code, T* data) {
        (void)code;
        (void)data;
        return 0;
    }
    /// Called on a node's root just before that node leaves the chain, while
    /// its links are still intact.  The default does nothing.
    virtual void OnRemoveNode(SCC_EventNode* node) { (void)node; }
    /// The priority that SCC_EventHook::Attach compares against: higher is
    /// delivered earlier.  The default is 0x7FFFFFFF, the highest.
    virtual long GetPriority() { return 0x7FFFFFFFL; }
    /// The event whose chain the node is in, or null when detached.
    virtual SCC_EventNode* GetRoot() { return root; }

    /// Detaches the node.  The root hears of it first, while the links are
    /// intact; a detached node is left untouched.  Never deletes anything.
    void Remove() {
        if (root) root->OnRemoveNode(this);
        prev->next = next;
        next->prev = prev;
        root = nullptr;
        prev = next = this;
    }

    /// Leaves the current chain and joins just before `where`, taking its
    /// root; a null `where` just detaches.  Inserting before an event itself
    /// copies the event's Saver stack top, so whoever appends that way sets
    /// root to the event afterwards (SCC_Event::Append does).
    void InsertBefore(SCC_EventNode* where) {
        Remove();
        if (!where) return;
        next = where;
        prev = where->prev;
        prev->next = this;
        where->prev = this;
        root = where->root;
    }
};

/// Head and sentinel of a chain: next is the first node, prev the last.
///
/// Notify delivers to the nodes in chain order.  The event owns none of its
/// nodes; its destructor detaches them all.
/// @tparam T the data block type passed to every node.
template <class T> class SCC_Event : public SCC_EventNode<T> {
    using Node = SCC_EventNode<T>;

public:
    /// The cursor of one delivery, made by Notify only (hosts never build
    /// one).  It lives on Notify's stack: root is the node being notified,
    /// prev is itself, next is the enclosing Saver of the same event (or
    /// null), and `slot` is the event's stack top.
    class Saver : public SCC_EventNode<T> {
    public:
        /// The event's Saver stack top, restored when the Saver goes.
        Node** slot;

// The Saver lives on Notify's stack and takes itself off the event's stack
// in its destructor; GCC cannot see that and warns about the stored address.
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdangling-pointer"
#endif
        /// Pushes a cursor on the first node of `event`.
        explicit Saver(SCC_Event* event) : slot(&event->root) {
            this->root = event->next;
            this->next = event->root;
            *slot = this;
        }
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic pop
#endif
        /// Pops the cursor, restoring the enclosing one.
        ~Saver() override {
            *slot = this->next;
            this->root = nullptr;
            this->prev = this->next = this;
        }
        /// Not copyable.
        Saver(const Saver&) = delete;
        /// Not assignable.
        Saver& operator=(const Saver&) = delete;
    };

    /// While 0, Notify delivers nothing; clearing it during a delivery stops
    /// that delivery after the current node.  Set it through Enable.
    int enabled;

    /// An empty, enabled event.
    SCC_Event() : enabled(1) {}

    /// Moves the chain (and the Saver stack top and `enabled`) out of `other`,
    /// which is left empty.  Deliberately, the moved nodes keep naming `other`
    /// as their root: GetRoot answers `other`, and a moved node that detaches
    /// tells `other`, not this event.  Keep `other` alive while they stay
    /// attached, or use operator=, which renames them.
    SCC_Event(SCC_Event& other) : Node(), enabled(1) {
        this->InsertBefore(&other);
        other.Remove();
        enabled = other.enabled;
    }

    /// Detaches this event's own nodes, then moves the chain out of `other`
    /// (left empty) and makes every moved node name this event.  `enabled`
    /// stays as it is.  Assigning an event to itself does nothing.
    SCC_Event& operator=(SCC_Event& other) {
        if (&other == this) return *this;
        RemoveAll();
        this->InsertBefore(&other);
        other.Remove();
        for (Node* n = this->next; n != this; n = n->next) n->root = this;
        return *this;
    }

    /// Detaches every node (leaving them alive), then the event itself.
    ~SCC_Event() override {
        RemoveAll();
        this->Remove();
    }

    /// An event receives no notifications of its own: returns 0.
    int OnNotification(int code, T* data) override {
        (void)code;
        (void)data;
        return 0;
    }

    /// Moves every active cursor that stands on `node` to its successor.
    void OnRemoveNode(Node* node) override {
        for (Node* s = this->root; s; s = s->next)
            if (s->root == node) s->root = node->next;
    }

    /// Delivers (code, data) to every node in chain order; always returns 0.
    /// Nothing is delivered while the event is disabled.  `data` is passed
    /// as it is (null allowed); keel neither copies nor keeps it.
    ///
    /// A node may raise the event again (the nested delivery runs the whole
    /// chain first), attach, detach or disable it.  A node that leaves is
    /// not reached; a node joined after the cursor is.  When the node being
    /// notified detaches itself, its successor misses this delivery, and if
    /// it was the last node, delivery runs over the whole chain once more
    /// (deliberate).  If a notification throws, the cursor is popped and the
    /// exception passes on.
    int Notify(int code, T* data) {
        // A disabled event would push a cursor and pop it again untouched.
        if (!enabled) return 0;
        const void* const* const hookTable = s_HookTable;
        Saver saver(this);
        do {
            Node* node = saver.root;
            if (node == this) break;
            Deliver(node, hookTable, code, data);
            node = saver.root;
            // A node that left a chain whose nodes name another root is not
            // seen leaving by this event: stop rather than spin on it.
            if (node->next == node) break;
            saver.root = node->next;
        } while (enabled);
        return 0;
    }

    /// Puts `node` at the tail of the chain, whatever its priority, after
    /// taking it out of any chain it is in.  A null node, or the event
    /// itself, is ignored.  The event only keeps the pointer.
    void Append(Node* node) {
        if (!node || node == this) return;
        node->InsertBefore(this);
        node->root = this;
    }

    /// Detaches every node (none is deleted); active deliveries move past
    /// each one.  Linear in the chain length.
    void RemoveAll() {
        while (this->next != this) this->next->Remove();
    }

    /// Sets `enabled` (0 disables delivery, any other value enables it) and
    /// returns its previous value, so that a caller can restore it.
    int Enable(int enable) {
        int previous = enabled;
        enabled = enable;
        return previous;
    }

private:
    // The virtual table of a node of exactly SCC_EventHook<T>, set when the
    // program starts (null before, and where tables cannot be read).
    static const void* const* const s_HookTable;

    // Calls node->OnNotification(code, data).  A node of exactly
    // SCC_EventHook<T> gets its callback called directly, which is what its
    // OnNotification does, sparing one indirect call.
    static void Deliver(Node* node, const void* const* hookTable, int code, T* data);
};

/// A node that forwards its notifications to a free function and joins its
/// event in priority order (higher priorities are delivered first).
///
/// A new hook has priority 0, no callback and is detached: set the callback
/// (and the priority) before calling Attach.  The event does not own the hook.
/// @tparam T the data block type of the event.
template <class T> class SCC_EventHook : public SCC_EventNode<T> {
public:
    /// The function a hook calls: receives the code and data block of the
    /// notification; its result is returned by OnNotification.
    typedef int (*Callback)(int code, T* data);

    /// The delivery priority; higher values are delivered earlier.  It is
    /// read when the hook attaches: changing it later does not move the hook.
    long priority;
    /// The function called on every notification; must not be null while
    /// the hook is attached.
    Callback callback;

    /// Priority 0, no callback, detached.
    SCC_EventHook() : priority(0), callback(nullptr) {}
    /// The copy joins the source's chain just before the source, with its
    /// root, whatever its priority; it takes the priority and callback.
    SCC_EventHook(const SCC_EventHook& other)
        : SCC_EventNode<T>(), priority(other.priority), callback(other.callback) {
        this->InsertBefore(const_cast<SCC_EventHook*>(&other));
    }
    /// Leaves this hook's chain and joins the source's just before the source,
    /// taking its priority and callback.  Returns this hook.
    SCC_EventHook& operator=(const SCC_EventHook& other) {
        if (&other == this) return *this;
        this->InsertBefore(const_cast<SCC_EventHook*>(&other));
        priority = other.priority;
        callback = other.callback;
        return *this;
    }

    /// Sets #priority; it takes effect at the next Attach.
    void SetPriority(long p) { priority = p; }
    /// Sets #callback.
    void SetCallback(Callback c) { callback = c; }

    /// Returns callback(code, data).  The callback must have been set: it is
    /// called without a test.
    int OnNotification(int code, T* data) override { return callback(code, data); }
    /// Returns #priority.
    long GetPriority() override { return priority; }

    /// Leaves the current chain and joins `event` ahead of the first node
    /// whose priority is not above this hook's, so among equal priorities the
    /// most recently attached is delivered first; a null event leaves it
    /// detached.  Linear in the chain length.  The event only keeps a pointer
    /// to the hook: destroy or Remove the hook to leave.
    void Attach(SCC_Event<T>* event) {
        this->Remove();
        if (!event) return;
        SCC_EventNode<T>* at = event->next;
        while (at != event && at->GetPriority() > priority) at = at->next;
        this->InsertBefore(at);
        this->root = event;
    }
};

#if defined(SCC_VIRTUAL_SLOTS_READABLE)
template <class T>
const void* const* const SCC_Event<T>::s_HookTable = SCC_ExactVirtualTable<SCC_EventHook<T>>();
#else
template <class T> const void* const* const SCC_Event<T>::s_HookTable = nullptr;
#endif

template <class T>
inline void SCC_Event<T>::Deliver(Node* node, const void* const* hookTable, int code, T* data) {
#if defined(SCC_VIRTUAL_SLOTS_READABLE)
    if (SCC_VirtualTableOf(*node) == hookTable) {
        static_cast<SCC_EventHook<T>*>(node)->callback(code, data);
        return;
    }
#else
    (void)hookTable;
#endif
    node->OnNotification(code, data);
}

/// A hook that forwards its notifications to a member function of an object.
///
/// The hook keeps a plain pointer to the object and does not own it: set
/// #object and #method before attaching, and detach (or destroy) the hook
/// before the object goes.  Making the hook a member of the object does both.
/// @tparam Obj the class of the listening object.
/// @tparam T the data block type of the event.
template <class Obj, class T> class SCC_ObjectEventHook : public SCC_EventHook<T> {
public:
    /// The member function a hook calls with the code and data block.
    typedef int (Obj::*Method)(int code, T* data);

    /// The object whose #method is called; not owned.
    Obj* object;
    /// The member function called on every notification.
    Method method;

    /// No object, no method, priority 0, detached.
    SCC_ObjectEventHook() : object(nullptr), method(nullptr) {}
    /// As SCC_EventHook's copy (joins just before `other`), taking the
    /// object and method as well.
    SCC_ObjectEventHook(const SCC_ObjectEventHook& other)
        : SCC_EventHook<T>(other), object(other.object), method(other.method) {}
    /// As SCC_EventHook's assignment, taking the object and method as well.
    SCC_ObjectEventHook& operator=(const SCC_ObjectEventHook& other) {
        SCC_EventHook<T>::operator=(other);
        object = other.object;
        method = other.method;
        return *this;
    }

    /// Sets #object.
    void SetObject(Obj* o) { object = o; }
    /// Sets #method.
    void SetMethod(Method m) { method = m; }

    /// Returns (object->*method)(code, data); both must have been set.
    int OnNotification(int code, T* data) override { return (object->*method)(code, data); }
};

/// The change event that handles, collections and interfaces hand out
/// (`GetChangeEvent`), carrying an `int` data block.  Attach an
/// SCC_EventHook<int> or SCC_ObjectEventHook<Obj,int> to listen.
class KEEL_API SCC_Notifier : public SCC_Event<int> {
public:
    /// An empty, enabled notifier.
    SCC_Notifier() {}
    /// Moves the listeners out of `other`, as SCC_Event's copy does.
    SCC_Notifier(SCC_Notifier& other) : SCC_Event<int>(other) {}
    /// Moves the listeners out of `other`, as SCC_Event's assignment does.
    SCC_Notifier& operator=(SCC_Notifier& other) {
        SCC_Event<int>::operator=(other);
        return *this;
    }
    /// Detaches every listener, leaving them alive.
    ~SCC_Notifier() override;
};

#endif // SCC_EVENT_H
