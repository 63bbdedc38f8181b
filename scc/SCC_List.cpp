// SCC_List.cpp - the reference list and its nodes, and the one instantiation
// of the list templates that the library carries.
#include "SCC_List.h"
#include "ssm/internal/SSM_Check.h"

template class SCC_SListNode<SCC_DListRefNode>;
template class SCC_DListNode<SCC_DListRefNode>;
template class SCC_SList<SCC_DListRefNode, 0, SCC_NullNotifier>;
template class SCC_DList<SCC_DListRefNode, 0, SCC_NullNotifier>;

namespace {

typedef SCC_DList<SCC_DListRefNode, 0, SCC_NullNotifier> PlainList;

// A member can be reached through a null pointer by a careless caller.  The
// compiler may take `this` to be non-null and drop a plain test, so the
// address is read back through a volatile.
bool IsNullObject(const void* p) {
    const void* volatile q = p;
    return q == nullptr;
}

// n->ChangeList(list), with the null-node report made here rather than by a
// call through a null pointer.
void ChangeListOf(SCC_DListRefNode* n, SCC_RefDList* list) {
    if (!n) {
        SSM_CHECK(false, "scc/scc", 239);
        return;
    }
    n->ChangeList(list);
}

// The NotifyNodes deliveries under way on this thread, innermost first.  Each
// names its list and the element it will notify next; taking that element
// out of the list moves the cursor on, so that a handler may remove any
// element, not just its own, without the delivery touching a freed link.
struct NotifyCursor {
    SCC_RefDList* list;
    SCC_RefDList::iterator next;
    NotifyCursor* outer;
};
thread_local NotifyCursor* t_Cursors = nullptr;

// Called just before `n` is unlinked from `list`.
void StepCursorsPast(SCC_RefDList* list, SCC_DListRefNode* n) {
    for (NotifyCursor* c = t_Cursors; c; c = c->outer)
        if (c->list == list && c->next != list->end() && *c->next == n) ++c->next;
}

// Unlinks the head of `list` when it still holds `n` after `n` was told to
// leave: `n` named another list (a copied list holds such elements).  This
// keeps the loops that empty a list finite.
void DropStaleHead(SCC_RefDList& list, SCC_DListRefNode* n) {
    if (list.empty() || list.front() != n) return;
    StepCursorsPast(&list, n);
    list.pop_front();
}

} // namespace

// ---------------------------------------------------------------------------
// SCC_DListRefNode

SCC_DListRefNode::SCC_DListRefNode(SCC_RefDList* list) : m_List(nullptr) {
    if (list) list->AddHead(this);
    m_List = list;
}

SCC_DListRefNode::SCC_DListRefNode(SCC_DListRefNode& other)
    : SCC_DListNode<SCC_DListRefNode>(other), m_List(nullptr) {
    if (other.m_List) other.m_List->InsertBefore(&other, this);
    m_List = other.m_List;
}

SCC_DListRefNode& SCC_DListRefNode::operator=(SCC_DListRefNode& other) {
    // Assigning a node to itself would take it out of its list while it
    // kept naming the list.
    if (this == &other) return *this;
    ChangeList(other.m_List);
    if (m_List) m_List->InsertBefore(&other, this);
    return *this;
}

SCC_DListRefNode::~SCC_DListRefNode() {
    if (m_List) m_List->Remove(this);
}

int SCC_DListRefNode::OnNotification(int code, void*) { return code; }

void SCC_DListRefNode::ChangeList(SCC_RefDList* list) {
    if (IsNullObject(this)) {
        SSM_CHECK(false, "scc/scc", 239);
        return;
    }
    if (m_List) {
        StepCursorsPast(m_List, this);
        m_List->PlainList::Remove(this);
    }
    m_List = list;
}

// ---------------------------------------------------------------------------
// SCC_RefDList

SCC_RefDList::SCC_RefDList(const SCC_RefDList& other) : Base(other) {}

SCC_RefDList& SCC_RefDList::operator=(SCC_RefDList& other) {
    if (this == &other) return *this;
    RemoveAll();
    Base::operator=(other);
    for (SCC_DListRefNode* n : *this)
        if (n) n->m_List = this;
    // A delivery over this list cannot follow a new set of links: it ends.
    for (NotifyCursor* c = t_Cursors; c; c = c->outer)
        if (c->list == this) c->next = end();
    return *this;
}

SCC_RefDList::~SCC_RefDList() { RemoveAll(); }

SCC_DListRefNode* SCC_RefDList::AddTail(SCC_DListRefNode* n) {
    bool nullList = IsNullObject(this);
    SSM_CHECK(!nullList, "scc/scc", 290);
    SSM_CHECK(n, "scc/scc", 291);
    if (nullList) return n;
    ChangeListOf(n, this);
    if (n) Base::AddTail(n);
    return n;
}

SCC_DListRefNode* SCC_RefDList::AddHead(SCC_DListRefNode* n) {
    bool nullList = IsNullObject(this);
    SSM_CHECK(!nullList, "scc/scc", 299);
    SSM_CHECK(n, "scc/scc", 300);
    if (nullList) return n;
    ChangeListOf(n, this);
    if (n) Base::AddHead(n);
    return n;
}

SCC_DListRefNode* SCC_RefDList::InsertBefore(SCC_DListRefNode* pos, SCC_DListRefNode* n) {
    bool nullList = IsNullObject(this);
    SSM_CHECK(!nullList, "scc/scc", 270);
    SSM_CHECK(pos, "scc/scc", 271);
    SSM_CHECK(n, "scc/scc", 272);
    if (nullList) return n;
    ChangeListOf(n, this);
    if (n) Base::InsertBefore(pos, n);
    return n;
}

SCC_DListRefNode* SCC_RefDList::InsertAfter(SCC_DListRefNode* pos, SCC_DListRefNode* n) {
    bool nullList = IsNullObject(this);
    SSM_CHECK(!nullList, "scc/scc", 280);
    SSM_CHECK(pos, "scc/scc", 281);
    SSM_CHECK(n, "scc/scc", 282);
    if (nullList) return n;
    ChangeListOf(n, this);
    if (n) Base::InsertAfter(pos, n);
    return n;
}

SCC_DListRefNode* SCC_RefDList::Remove(SCC_DListRefNode* n) {
    bool nullList = IsNullObject(this);
    SSM_CHECK(!nullList, "scc/scc", 317);
    SSM_CHECK(n, "scc/scc", 318);
    if (nullList) return n;
    ChangeListOf(n, nullptr);
    return n;
}

SCC_DListRefNode* SCC_RefDList::RemoveHead() { return Remove(First()); }

SCC_DListRefNode* SCC_RefDList::RemoveTail() { return Remove(Last()); }

SCC_RefDList& SCC_RefDList::operator+=(SCC_DListRefNode& n) {
    AddTail(&n);
    return *this;
}

void SCC_RefDList::RemoveAll() {
    bool nullList = IsNullObject(this);
    SSM_CHECK(!nullList, "scc/scc", 326);
    if (nullList) return;
    while (!IsEmpty()) {
        SCC_DListRefNode* n = Remove(First());
        DropStaleHead(*this, n);
    }
}

void SCC_RefDList::Merge(SCC_RefDList& other) {
    bool nullList = IsNullObject(this);
    SSM_CHECK(!nullList, "scc/scc", 308);
    // Merging a list into itself would cycle its elements for ever.
    if (nullList || &other == this) return;
    while (!IsEmpty()) {
        SCC_DListRefNode* n = Remove(other.First());
        if (!n) break; // `other` is exhausted: Remove has reported the null element
        DropStaleHead(other, n);
        AddTail(n);
    }
}

int SCC_RefDList::NotifyNodes(int code, void* data) {
    bool nullList = IsNullObject(this);
    SSM_CHECK(!nullList, "scc/scc", 348);
    if (nullList) return 0;
    int result = 0;
    NotifyCursor cursor{this, begin(), t_Cursors};
    t_Cursors = &cursor;
    struct Pop {
        NotifyCursor& c;
        ~Pop() { t_Cursors = c.outer; }
    } pop{cursor};
    while (cursor.next != end()) {
        SCC_DListRefNode* n = *cursor.next++;
        if (n) result = n->OnNotification(code, data);
    }
    return result;
}

int SCC_RefDList::IsValid() {
    for (SCC_DListRefNode* n : *this)
        if (!n || n->m_List != this) return 0;
    return 1;
}
