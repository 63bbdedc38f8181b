// SCC_Event.h - notification chains: events, nodes and hooks.
//
// An event heads a circular, doubly linked chain of nodes; Notify(code, data)
// calls OnNotification on every node in chain order, which is non-increasing
// priority order for hooks joined with Attach.  Listeners derive from
// SCC_EventNode<T> or use a hook that forwards to a free function
// (SCC_EventHook<T>) or to a member function (SCC_ObjectEventHook<Obj,T>).
//
// Costs: every link lives in the nodes and the delivery cursor lives on the
// stack, so attaching, detaching and delivering never allocate.  Detaching is
// O(1), Attach is linear in the chain length, delivery makes one virtual call
// per node.  Nodes are never owned by the event.
//
// Delivery survives nodes leaving the chain while it runs: the event keeps a
// stack of cursors (one Saver per active, possibly nested, Notify) and moves a
// cursor past a node that leaves.  A node that detaches itself during its own
// notification therefore makes its successor miss that one notification, and
// when it was the last node the delivery wraps round to the first node again.
//
// Copies are shallow by design: copying a node copies its links without
// joining the ring; copying or assigning an event moves the whole chain.
#ifndef SCC_EVENT_H
#define SCC_EVENT_H

#include "keel_config.h"

template <class T> class SCC_Event;

// A link of an event chain.  Detached: root null, prev and next self.
template <class T> class SCC_EventNode {
public:
    // The event whose chain the node is in, or null.  In an SCC_Event this
    // field is the top of the event's Saver stack instead.
    SCC_EventNode* root;
    SCC_EventNode* prev;
    SCC_EventNode* next;

    SCC_EventNode() : root(nullptr), prev(this), next(this) {}
    // Copies the links as they stand without joining the ring: the
    // neighbours do not point back at the copy.  Re-insert it before use.
    SCC_EventNode(const SCC_EventNode& other)
        : root(other.root), prev(other.prev), next(other.next) {}
    virtual ~SCC_EventNode() { Remove(); }

    // Leaves the current chain and joins other's chain just before other.
    SCC_EventNode& operator=(SCC_EventNode& other) {
        InsertBefore(&other);
        return *this;
    }

    virtual int OnNotification(int code, T* data) {
        (void)code;
        (void)data;
        return 0;
    }
    // Called on a node's root just before that node leaves the chain.
    virtual void OnRemoveNode(SCC_EventNode* node) { (void)node; }
    virtual long GetPriority() { return 0x7FFFFFFFL; }
    virtual SCC_EventNode* GetRoot() { return root; }

    // Detaches the node.  The root hears of it first, while the links are
    // intact; a detached node is left untouched.
    void Remove() {
        if (root) root->OnRemoveNode(this);
        prev->next = next;
        next->prev = prev;
        root = nullptr;
        prev = next = this;
    }

    // Leaves the current chain and joins just before `where`, taking its
    // root.  Inserting before an event itself copies the event's Saver stack
    // top, so whoever appends that way sets root to the event afterwards.
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

// Head and sentinel of a chain: next is the first node, prev the last.
template <class T> class SCC_Event : public SCC_EventNode<T> {
    using Node = SCC_EventNode<T>;

public:
    // The cursor of one delivery.  It lives on Notify's stack only: root is
    // the node being notified, prev is itself, next is the enclosing Saver
    // of the same event (or null), and `slot` is the event's stack top.
    class Saver : public SCC_EventNode<T> {
    public:
        Node** slot;

// The Saver lives on Notify's stack and takes itself off the event's stack
// in its destructor; GCC cannot see that and warns about the stored address.
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdangling-pointer"
#endif
        explicit Saver(SCC_Event* event) : slot(&event->root) {
            this->root = event->next;
            this->next = event->root;
            *slot = this;
        }
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic pop
#endif
        ~Saver() override {
            *slot = this->next;
            this->root = nullptr;
            this->prev = this->next = this;
        }
        Saver(const Saver&) = delete;
        Saver& operator=(const Saver&) = delete;
    };

    // While 0, Notify delivers nothing; clearing it during a delivery stops
    // that delivery after the current node.
    int enabled;

    SCC_Event() : enabled(1) {}

    // Moves the chain (and the Saver stack top and `enabled`) out of `other`,
    // which is left empty.  The moved nodes keep naming `other` as their root.
    SCC_Event(SCC_Event& other) : Node(), enabled(1) {
        this->InsertBefore(&other);
        other.Remove();
        enabled = other.enabled;
    }

    // Drops this event's nodes, then moves the chain out of `other` and
    // makes every moved node name this event.  `enabled` stays as it is.
    SCC_Event& operator=(SCC_Event& other) {
        if (&other == this) return *this;
        RemoveAll();
        this->InsertBefore(&other);
        other.Remove();
        for (Node* n = this->next; n != this; n = n->next) n->root = this;
        return *this;
    }

    ~SCC_Event() override {
        RemoveAll();
        this->Remove();
    }

    int OnNotification(int code, T* data) override {
        (void)code;
        (void)data;
        return 0;
    }

    // Moves every active cursor that stands on `node` to its successor.
    void OnRemoveNode(Node* node) override {
        for (Node* s = this->root; s; s = s->next)
            if (s->root == node) s->root = node->next;
    }

    // Delivers (code, data) to every node in chain order; always returns 0.
    // A node may raise the event again, attach, detach or disable it.  If a
    // notification throws, the cursor is popped and the exception passes on.
    int Notify(int code, T* data) {
        // A disabled event would push a cursor and pop it again untouched.
        if (!enabled) return 0;
        Saver saver(this);
        do {
            Node* node = saver.root;
            if (node == this) break;
            node->OnNotification(code, data);
            node = saver.root;
            // A node that left a chain whose nodes name another root is not
            // seen leaving by this event: stop rather than spin on it.
            if (node->next == node) break;
            saver.root = node->next;
        } while (enabled);
        return 0;
    }

    // Puts `node` at the tail of the chain, whatever its priority.
    void Append(Node* node) {
        if (!node || node == this) return;
        node->InsertBefore(this);
        node->root = this;
    }

    // Detaches every node; active deliveries move past each one.
    void RemoveAll() {
        while (this->next != this) this->next->Remove();
    }

    // Sets `enabled` and returns its previous value.
    int Enable(int enable) {
        int previous = enabled;
        enabled = enable;
        return previous;
    }
};

// A node that forwards its notifications to a free function and joins its
// event in priority order (higher priorities are delivered first).
template <class T> class SCC_EventHook : public SCC_EventNode<T> {
public:
    typedef int (*Callback)(int code, T* data);

    long priority;
    Callback callback;

    SCC_EventHook() : priority(0), callback(nullptr) {}
    // The copy joins the source's chain just before the source, with its
    // root, whatever its priority; it takes the priority and callback.
    SCC_EventHook(const SCC_EventHook& other)
        : SCC_EventNode<T>(), priority(other.priority), callback(other.callback) {
        this->InsertBefore(const_cast<SCC_EventHook*>(&other));
    }
    SCC_EventHook& operator=(const SCC_EventHook& other) {
        if (&other == this) return *this;
        this->InsertBefore(const_cast<SCC_EventHook*>(&other));
        priority = other.priority;
        callback = other.callback;
        return *this;
    }

    void SetPriority(long p) { priority = p; }
    void SetCallback(Callback c) { callback = c; }

    // The callback must have been set: it is called without a test.
    int OnNotification(int code, T* data) override { return callback(code, data); }
    long GetPriority() override { return priority; }

    // Leaves the current chain and joins `event` ahead of the first node
    // whose priority is not above this hook's; a null event leaves it
    // detached.
    void Attach(SCC_Event<T>* event) {
        this->Remove();
        if (!event) return;
        SCC_EventNode<T>* at = event->next;
        while (at != event && at->GetPriority() > priority) at = at->next;
        this->InsertBefore(at);
        this->root = event;
    }
};

// A hook that forwards its notifications to a member function of an object.
template <class Obj, class T> class SCC_ObjectEventHook : public SCC_EventHook<T> {
public:
    typedef int (Obj::*Method)(int code, T* data);

    Obj* object;
    Method method;

    SCC_ObjectEventHook() : object(nullptr), method(nullptr) {}
    SCC_ObjectEventHook(const SCC_ObjectEventHook& other)
        : SCC_EventHook<T>(other), object(other.object), method(other.method) {}
    SCC_ObjectEventHook& operator=(const SCC_ObjectEventHook& other) {
        SCC_EventHook<T>::operator=(other);
        object = other.object;
        method = other.method;
        return *this;
    }

    void SetObject(Obj* o) { object = o; }
    void SetMethod(Method m) { method = m; }

    int OnNotification(int code, T* data) override { return (object->*method)(code, data); }
};

// The change event that handles, collections and interfaces hand out.
class KEEL_API SCC_Notifier : public SCC_Event<int> {
public:
    SCC_Notifier() {}
    SCC_Notifier(SCC_Notifier& other) : SCC_Event<int>(other) {}
    SCC_Notifier& operator=(SCC_Notifier& other) {
        SCC_Event<int>::operator=(other);
        return *this;
    }
    ~SCC_Notifier() override;
};

#endif // SCC_EVENT_H
