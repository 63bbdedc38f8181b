/// @file
/// Linked lists of object pointers, addressed by element.
///
/// SCC_SList and SCC_DList are thin layers over std::list<T*>: elements are
/// named by their pointer, not by an iterator, so every search is a linear
/// scan from the head for the first link holding that pointer.  The lists
/// never own their pointees: removing an element frees only its link, and
/// copying a list copies the pointers.
///
/// SCC_RefDList and SCC_DListRefNode build on them a list whose elements know
/// the list that holds them: a node can leave its list by itself, move to
/// another list, join a list beside another node and be destroyed safely while
/// listed.  Each move costs a scan of the lists involved.
///
/// Growing a list past the standard list's maximum throws std::length_error
/// with the text "list<T> too long".
#ifndef SCC_LIST_H
#define SCC_LIST_H

#include "keel_config.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <list>
#include <stdexcept>

/// Empty polymorphic base of list elements.
/// @tparam T the element class.
template <class T> class SCC_SListNode {
public:
    /// Virtual, so that elements may be deleted through this base.
    virtual ~SCC_SListNode() {}
};

/// Base of doubly linked list elements; adds nothing to SCC_SListNode.
/// @tparam T the element class.
template <class T> class SCC_DListNode : public SCC_SListNode<T> {};

/// The notifier slot of the list templates; it does nothing.
class SCC_NullNotifier {};

/// A list of T* over std::list.  N is a tag the operations do not read.
///
/// The list holds pointers only and never deletes a pointee.  The standard
/// list's own operations stay available.
/// @tparam T the element type (the list holds T*).
/// @tparam N a tag, unused.
/// @tparam Notifier an extra base class, SCC_NullNotifier by default.
template <class T, int N = 0, class Notifier = SCC_NullNotifier>
class SCC_SList : public std::list<T*>, public Notifier {
public:
    /// The standard list underneath.
    typedef std::list<T*> ListType;
    /// A position in the list.
    typedef typename ListType::iterator iterator;
    /// A read-only position in the list.
    typedef typename ListType::const_iterator const_iterator;

    /// An empty list.
    SCC_SList() {}
    /// Copies the pointers (not the pointees): both lists hold them.
    SCC_SList(const SCC_SList& other) : ListType(other), Notifier(other) {}
    /// Replaces this list's pointers with copies of `other`'s.
    SCC_SList& operator=(const SCC_SList& other) {
        ListType::operator=(other);
        Notifier::operator=(other);
        return *this;
    }
    /// Frees the links; the pointees are untouched.
    virtual ~SCC_SList() {}

    /// Appends `p`; returns `p`.
    T* AddTail(T* p) {
        Grow();
        this->push_back(p);
        return p;
    }
    /// Inserts `p` before the first link holding `pos`, only when `pos` is
    /// listed; returns `p` either way.  O(n).
    T* InsertBefore(T* pos, T* p) {
        iterator it = Find(pos);
        if (it != this->end()) {
            Grow();
            this->insert(it, p);
        }
        return p;
    }
    /// Inserts `p` after the first link holding `pos`, only when `pos` is
    /// listed; returns `p` either way.  O(n).
    T* InsertAfter(T* pos, T* p) {
        iterator it = Find(pos);
        if (it != this->end()) {
            Grow();
            this->insert(std::next(it), p);
        }
        return p;
    }
    /// Unlinks the first occurrence of `p`, if any; returns `p`.  O(n).
    T* Remove(T* p) {
        iterator it = Find(p);
        if (it != this->end()) this->erase(it);
        return p;
    }
    /// Unlinks every element; the pointees are untouched.
    void RemoveAll() { this->clear(); }

    /// The first element, null when the list is empty.
    T* First() const { return this->empty() ? nullptr : this->front(); }
    /// The last element, null when the list is empty.
    T* Last() const { return this->empty() ? nullptr : this->back(); }
    /// The element before `p`; null when `p` is first or not listed.  O(n).
    T* Prev(T* p) const {
        const_iterator it = std::find(this->begin(), this->end(), p);
        if (it == this->end() || it == this->begin()) return nullptr;
        return *std::prev(it);
    }
    /// 1 when the list has no element, else 0.
    int IsEmpty() { return this->empty() ? 1 : 0; }
    /// The number of elements.
    long GetCount() const { return static_cast<long>(this->size()); }
    /// Always 1.
    int IsValid() { return 1; }

protected:
    /// The first link holding `p`, or end().  O(n).
    iterator Find(T* p) { return std::find(this->begin(), this->end(), p); }

    /// Throws the list's length error when a list of `count` links cannot
    /// take one more under the bound `limit`.
    static void CheckLength(std::size_t count, std::size_t limit) {
        if (count >= limit) throw std::length_error("list<T> too long");
    }

private:
    void Grow() const { CheckLength(this->size(), this->max_size()); }
};

/// SCC_SList with operations at both ends and forward stepping.
/// @tparam T the element type (the list holds T*).
/// @tparam N a tag, unused.
/// @tparam Notifier an extra base class, SCC_NullNotifier by default.
template <class T, int N = 0, class Notifier = SCC_NullNotifier>
class SCC_DList : public SCC_SList<T, N, Notifier> {
    typedef SCC_SList<T, N, Notifier> Base;

public:
    /// A position in the list.
    typedef typename Base::iterator iterator;

    /// An empty list.
    SCC_DList() {}
    /// Copies the pointers (not the pointees): both lists hold them.
    SCC_DList(const SCC_DList& other) : Base(other) {}
    /// Replaces this list's pointers with copies of `other`'s.
    SCC_DList& operator=(const SCC_DList& other) {
        Base::operator=(other);
        return *this;
    }

    /// Prepends `p`; returns `p`.
    T* AddHead(T* p) {
        iterator it = this->begin();
        InsertBefore(it, p);
        return p;
    }
    /// As SCC_SList::InsertBefore.
    T* InsertBefore(T* pos, T* p) { return Base::InsertBefore(pos, p); }
    /// Inserts `p` before a list position; returns the new element's position.
    iterator InsertBefore(iterator position, T* p) {
        Base::CheckLength(this->size(), this->max_size());
        return this->insert(position, p);
    }
    /// As SCC_SList::InsertAfter.
    T* InsertAfter(T* pos, T* p) { return Base::InsertAfter(pos, p); }
    /// As SCC_SList::Remove.
    T* Remove(T* p) { return Base::Remove(p); }
    /// Unlinks and returns the first element; null when empty.
    T* RemoveHead() {
        if (this->empty()) return nullptr;
        T* p = this->front();
        this->pop_front();
        return p;
    }
    /// Unlinks and returns the last element; null when empty.
    T* RemoveTail() {
        if (this->empty()) return nullptr;
        T* p = this->back();
        this->pop_back();
        return p;
    }
    /// The element after `p`; null when `p` is last or not listed.  O(n).
    T* Next(T* p) {
        iterator it = this->Find(p);
        if (it == this->end() || ++it == this->end()) return nullptr;
        return *it;
    }
    /// As SCC_SList::Prev.
    T* Prev(T* p) { return Base::Prev(p); }
    /// As SCC_SList::RemoveAll.
    void RemoveAll() { Base::RemoveAll(); }
    /// Always 1.
    int IsValid() { return 1; }
};

class SCC_DListRefNode;
class SCC_RefDList;

// The library carries one instantiation of the list templates, for the
// reference list below.
extern template class KEEL_API SCC_SListNode<SCC_DListRefNode>;
extern template class KEEL_API SCC_DListNode<SCC_DListRefNode>;
extern template class KEEL_API SCC_SList<SCC_DListRefNode, 0, SCC_NullNotifier>;
extern template class KEEL_API SCC_DList<SCC_DListRefNode, 0, SCC_NullNotifier>;

/// An element that knows the reference list holding it (m_List, or null).
/// Destroying a listed node takes it out of its list.
///
/// Derive host objects from it to keep them in an SCC_RefDList; the list
/// never owns them.  A node is in at most one reference list at a time:
/// joining another list leaves the first.
class KEEL_API SCC_DListRefNode : public SCC_DListNode<SCC_DListRefNode> {
public:
    /// A node in no list.
    SCC_DListRefNode() : m_List(nullptr) {}
    /// Joins the head of `list` when it is not null.
    explicit SCC_DListRefNode(SCC_RefDList* list);
    /// The copy joins other's list immediately before `other` (or no list).
    SCC_DListRefNode(SCC_DListRefNode& other);
    /// Leaves the current list and joins other's immediately before `other`
    /// (or no list).  Assigning a node to itself does nothing.
    SCC_DListRefNode& operator=(SCC_DListRefNode& other);
    /// Leaves its list, if any.
    virtual ~SCC_DListRefNode();

    /// Called by SCC_RefDList::NotifyNodes with its code and data (the caller
    /// keeps ownership of `data`); returns `code` by default.
    virtual int OnNotification(int code, void* data);

    /// Unlinks this node from its current list and records `list`; it does
    /// not insert the node into `list` (the list operations do that after
    /// calling it).  Called on a null node, it reports "scc/scc(239)".
    void ChangeList(SCC_RefDList* list);
    /// The list that holds this node, or null.
    SCC_RefDList* GetList() { return m_List; }

    /// The list that holds this node, or null.  Change it only through the
    /// list operations.
    SCC_RefDList* m_List;
};

/// A list of reference nodes that keeps each node's m_List up to date.  It
/// does not own its nodes.  Null lists and null nodes are reported through the
/// assertion manager and otherwise left alone.
///
/// Each operation that takes a node first makes it leave whatever list holds
/// it.  The assertion sites below are lines of "scc/scc" (a null list is a
/// call through a null pointer); execution carries on after a report that
/// returns.
class KEEL_API SCC_RefDList : public SCC_DList<SCC_DListRefNode, 0, SCC_NullNotifier> {
    typedef SCC_DList<SCC_DListRefNode, 0, SCC_NullNotifier> Base;

public:
    /// An empty list.
    SCC_RefDList() {}
    /// Copies the element pointers; the elements keep naming their own list,
    /// so the copy fails IsValid.  Destroying or emptying the copy takes its
    /// elements out of the list they name: copy a reference list only to
    /// assign it onward.
    SCC_RefDList(const SCC_RefDList& other);
    /// Takes other's element pointers (other keeps them too) and makes every
    /// element name this list.  The previous elements leave this list first.
    /// `other` then fails IsValid, and its RemoveAll would take the elements
    /// out of this list.
    SCC_RefDList& operator=(SCC_RefDList& other);
    /// Every element leaves, with a null list.
    virtual ~SCC_RefDList();

    /// Moves `n` from its list to the tail of this one; returns `n`.  Sites:
    /// 290 null list, 291 null node.
    SCC_DListRefNode* AddTail(SCC_DListRefNode* n);
    /// Moves `n` from its list to the head of this one; returns `n`.  Sites:
    /// 299 null list, 300 null node.
    SCC_DListRefNode* AddHead(SCC_DListRefNode* n);
    /// Moves `n` from its list to just before `pos`; returns `n`.  When `pos`
    /// is not in this list, `n` still leaves its old list and names this one
    /// without being in it (deliberate).  Sites: 270 null list, 271 null `pos`, 272 null node.
    /// O(n).
    SCC_DListRefNode* InsertBefore(SCC_DListRefNode* pos, SCC_DListRefNode* n);
    /// As InsertBefore, just after `pos`.  Sites: 280 null list, 281 null
    /// `pos`, 282 null node.
    SCC_DListRefNode* InsertAfter(SCC_DListRefNode* pos, SCC_DListRefNode* n);
    /// `n` leaves whatever list holds it, which need not be this one; its
    /// list becomes null.  Returns `n`; the node is not deleted.  Sites:
    /// 317 null list, 318 null node.
    SCC_DListRefNode* Remove(SCC_DListRefNode* n);
    ///@{
    /// Removes and returns the first or last element.  On an empty list it
    /// passes null to Remove, which reports "scc/scc(318)" and returns null.
    SCC_DListRefNode* RemoveHead();
    SCC_DListRefNode* RemoveTail();
    ///@}
    /// AddTail(&n); returns this list.
    SCC_RefDList& operator+=(SCC_DListRefNode& n);
    /// Removes every element (none is deleted); each is left with a null
    /// list.  Site: 326 null list.
    void RemoveAll();
    /// Moves other's elements to the tail while this list is not empty (an
    /// empty list takes nothing); once `other` runs dry, the null element
    /// that follows is reported ("scc/scc(318)", then "scc/scc(239)") and
    /// ends the merge.  This is kept as it is; to move the elements without
    /// reports, AddTail(other.First()) while `other` is not empty.  Merging a
    /// list into itself does nothing.  Site: 308 null list.
    void Merge(SCC_RefDList& other);
    /// OnNotification on every element, head to tail; the last result, or 0
    /// for an empty list.  A handler may remove any element, itself included.
    /// Site: 348 null list.
    int NotifyNodes(int code, void* data);
    /// 1 when every element names this list, else 0.  O(n).
    int IsValid();
};

#endif // SCC_LIST_H
