// SCC_List.h - linked lists of object pointers, addressed by element.
//
// SCC_SList and SCC_DList are thin layers over std::list<T*>: elements are
// named by their pointer, not by an iterator, so every search is a linear
// scan from the head for the first link holding that pointer.  The lists
// never own their pointees.
//
// SCC_RefDList and SCC_DListRefNode build on them a list whose elements know
// the list that holds them: a node can leave its list by itself, move to
// another list, join a list beside another node and be destroyed safely while
// listed.  Each move costs a scan of the lists involved.
#ifndef SCC_LIST_H
#define SCC_LIST_H

#include "keel_config.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <list>
#include <stdexcept>

// Empty polymorphic base of list elements.
template <class T> class SCC_SListNode {
public:
    virtual ~SCC_SListNode() {}
};

template <class T> class SCC_DListNode : public SCC_SListNode<T> {};

// The notifier slot of the list templates; it does nothing.
class SCC_NullNotifier {};

// A list of T* over std::list.  N is a tag the operations do not read.
template <class T, int N = 0, class Notifier = SCC_NullNotifier>
class SCC_SList : public std::list<T*>, public Notifier {
public:
    typedef std::list<T*> ListType;
    typedef typename ListType::iterator iterator;
    typedef typename ListType::const_iterator const_iterator;

    SCC_SList() {}
    SCC_SList(const SCC_SList& other) : ListType(other), Notifier(other) {}
    SCC_SList& operator=(const SCC_SList& other) {
        ListType::operator=(other);
        Notifier::operator=(other);
        return *this;
    }
    virtual ~SCC_SList() {}

    T* AddTail(T* p) {
        Grow();
        this->push_back(p);
        return p;
    }
    // Inserts only when `pos` is listed; returns `p` either way.
    T* InsertBefore(T* pos, T* p) {
        iterator it = Find(pos);
        if (it != this->end()) {
            Grow();
            this->insert(it, p);
        }
        return p;
    }
    T* InsertAfter(T* pos, T* p) {
        iterator it = Find(pos);
        if (it != this->end()) {
            Grow();
            this->insert(std::next(it), p);
        }
        return p;
    }
    // Unlinks the first occurrence of `p`, if any; returns `p`.
    T* Remove(T* p) {
        iterator it = Find(p);
        if (it != this->end()) this->erase(it);
        return p;
    }
    void RemoveAll() { this->clear(); }

    T* First() const { return this->empty() ? nullptr : this->front(); }
    T* Last() const { return this->empty() ? nullptr : this->back(); }
    // The element before `p`; null when `p` is first or not listed.
    T* Prev(T* p) const {
        const_iterator it = std::find(this->begin(), this->end(), p);
        if (it == this->end() || it == this->begin()) return nullptr;
        return *std::prev(it);
    }
    int IsEmpty() { return this->empty() ? 1 : 0; }
    long GetCount() const { return static_cast<long>(this->size()); }
    int IsValid() { return 1; }

protected:
    iterator Find(T* p) { return std::find(this->begin(), this->end(), p); }

    // Throws the list's length error when a list of `count` links cannot
    // take one more under the bound `limit`.
    static void CheckLength(std::size_t count, std::size_t limit) {
        if (count >= limit) throw std::length_error("list<T> too long");
    }

private:
    void Grow() const { CheckLength(this->size(), this->max_size()); }
};

// SCC_SList with operations at both ends and forward stepping.
template <class T, int N = 0, class Notifier = SCC_NullNotifier>
class SCC_DList : public SCC_SList<T, N, Notifier> {
    typedef SCC_SList<T, N, Notifier> Base;

public:
    typedef typename Base::iterator iterator;

    SCC_DList() {}
    SCC_DList(const SCC_DList& other) : Base(other) {}
    SCC_DList& operator=(const SCC_DList& other) {
        Base::operator=(other);
        return *this;
    }

    T* AddHead(T* p) {
        iterator it = this->begin();
        InsertBefore(it, p);
        return p;
    }
    T* InsertBefore(T* pos, T* p) { return Base::InsertBefore(pos, p); }
    // Inserts `p` before a list position; returns the new element's position.
    iterator InsertBefore(iterator position, T* p) {
        Base::CheckLength(this->size(), this->max_size());
        return this->insert(position, p);
    }
    T* InsertAfter(T* pos, T* p) { return Base::InsertAfter(pos, p); }
    T* Remove(T* p) { return Base::Remove(p); }
    // Unlink and return the first or last element; null when empty.
    T* RemoveHead() {
        if (this->empty()) return nullptr;
        T* p = this->front();
        this->pop_front();
        return p;
    }
    T* RemoveTail() {
        if (this->empty()) return nullptr;
        T* p = this->back();
        this->pop_back();
        return p;
    }
    // The element after `p`; null when `p` is last or not listed.
    T* Next(T* p) {
        iterator it = this->Find(p);
        if (it == this->end() || ++it == this->end()) return nullptr;
        return *it;
    }
    T* Prev(T* p) { return Base::Prev(p); }
    void RemoveAll() { Base::RemoveAll(); }
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

// An element that knows the reference list holding it (m_List, or null).
// Destroying a listed node takes it out of its list.
class KEEL_API SCC_DListRefNode : public SCC_DListNode<SCC_DListRefNode> {
public:
    SCC_DListRefNode() : m_List(nullptr) {}
    // Joins the head of `list` when it is not null.
    explicit SCC_DListRefNode(SCC_RefDList* list);
    // The copy joins other's list immediately before `other`.
    SCC_DListRefNode(SCC_DListRefNode& other);
    // Leaves the current list and joins other's immediately before `other`.
    SCC_DListRefNode& operator=(SCC_DListRefNode& other);
    virtual ~SCC_DListRefNode();

    // Called by SCC_RefDList::NotifyNodes; returns `code` by default.
    virtual int OnNotification(int code, void* data);

    // Unlinks this node from its current list and records `list`; it does
    // not insert the node into `list`.
    void ChangeList(SCC_RefDList* list);
    SCC_RefDList* GetList() { return m_List; }

    SCC_RefDList* m_List;
};

// A list of reference nodes that keeps each node's m_List up to date.  It
// does not own its nodes.  Null lists and null nodes are reported through the
// assertion manager and otherwise left alone.
class KEEL_API SCC_RefDList : public SCC_DList<SCC_DListRefNode, 0, SCC_NullNotifier> {
    typedef SCC_DList<SCC_DListRefNode, 0, SCC_NullNotifier> Base;

public:
    SCC_RefDList() {}
    // Copies the element pointers; the elements keep naming their own list.
    SCC_RefDList(const SCC_RefDList& other);
    // Takes other's element pointers (other keeps them too) and makes every
    // element name this list.  The previous elements leave this list first.
    SCC_RefDList& operator=(SCC_RefDList& other);
    // Every element leaves, with a null list.
    virtual ~SCC_RefDList();

    SCC_DListRefNode* AddTail(SCC_DListRefNode* n);
    SCC_DListRefNode* AddHead(SCC_DListRefNode* n);
    // Inserts `n` next to `pos`.  When `pos` is not in this list, `n` still
    // leaves its old list and names this one without being in it.
    SCC_DListRefNode* InsertBefore(SCC_DListRefNode* pos, SCC_DListRefNode* n);
    SCC_DListRefNode* InsertAfter(SCC_DListRefNode* pos, SCC_DListRefNode* n);
    // `n` leaves whatever list holds it, which need not be this one.
    SCC_DListRefNode* Remove(SCC_DListRefNode* n);
    SCC_DListRefNode* RemoveHead();
    SCC_DListRefNode* RemoveTail();
    SCC_RefDList& operator+=(SCC_DListRefNode& n);
    void RemoveAll();
    // Moves other's elements to the tail while this list is not empty (an
    // empty list takes nothing); once `other` runs dry, the null element
    // that follows is reported and ends the merge.
    void Merge(SCC_RefDList& other);
    // OnNotification on every element, head to tail; the last result, or 0
    // for an empty list.
    int NotifyNodes(int code, void* data);
    // 1 when every element names this list.
    int IsValid();
};

#endif // SCC_LIST_H
