// SYS_GeomChain.cpp - the walks along geometry chains, and the defaults of
// geometry values and iterators.
#include "SYS_GeomChain.h"
#include "ssm/internal/SSM_Check.h"

namespace {

// Tells when a walk comes back to a node it has already passed without
// reaching its end, which only a damaged chain makes happen (a loop that does
// not pass the node the walk stops at).  Brent's method: one remembered node,
// moved ever further apart, so one comparison a step and no memory.  On a
// sound chain no walk passes a node twice, so nothing stops early.
class LoopGuard {
public:
    bool Seen(const SYS_GeomNode* p) {
        if (p == m_Mark) return true;
        if (++m_Steps == m_Span) m_Mark = p, m_Steps = 0, m_Span *= 2;
        return false;
    }

private:
    const SYS_GeomNode* m_Mark = nullptr;
    unsigned long m_Steps = 0;
    unsigned long m_Span = 1;
};

// The first node from p on that `match` accepts, walking up to `self`, a
// null link or a loop; null if none.  With `report`, a node linked to itself
// is reported as a corrupted chain before the walk goes on, and ends it when
// the report's handlers left it so.
template <class Match>
SYS_GeomNode* Find(const SYS_GeomNode* self, SYS_GeomNode* p, Match match, bool report = false) {
    for (LoopGuard guard; p && p != self && !guard.Seen(p); p = p->next) {
        if (match(p)) return p;
        if (report) {
            SSM_CHECK_ID(p->next != p, "Corrupted SYS_GeomNode chain!", "sys/SYS_Geom_Inline", 2253,
                         2);
            if (p->next == p) return nullptr; // no handler relinked it
        }
    }
    return nullptr;
}

// Find's test for nodes of type t.
auto OfType(short t) {
    return [t](const SYS_GeomNode* p) { return p->type == t; };
}

} // namespace

// ---- SYS_GeomNode ----

SYS_GeomNode::~SYS_GeomNode() {}

void SYS_GeomNode::IncludeRoot(SYS_GeomNode* n) {
    if (!n) return;
    n->next = next;
    next = n;
}

void SYS_GeomNode::ExcludeRoot(SYS_GeomNode* n) {
    if (!n || !n->next || n->next == n) return;
    LoopGuard guard;
    SYS_GeomNode* p = n->next;
    for (;;) {
        if (p->type == SGN_GeomBarrier) return;
        if (p->next == n) break;
        p = p->next;
        if (!p || guard.Seen(p)) return;
    }
    p->next = next;
    next = this;
}

void SYS_GeomNode::ExcludeOwnRoot() {
    if (next) next = next->next;
}

void SYS_GeomNode::ExcludeNearType(short t) {
    LoopGuard guard;
    while (next && next != this && next->type == t && !guard.Seen(next)) next = next->next;
}

void SYS_GeomNode::ExcludeByType(short t) {
    LoopGuard guard;
    for (SYS_GeomNode *p = this, *q = next; q && q != this && !guard.Seen(q); q = p->next) {
        if (q->type == t)
            p->next = q->next;
        else
            p = q;
    }
}

SYS_GeomNode* SYS_GeomNode::GetNextRoot(const SYS_GeomNode* n) const {
    return !n || n->next == this ? nullptr : n->next;
}

SYS_GeomNode* SYS_GeomNode::GetNextRoot(const SYS_GeomNode* n, SGN_Type t) const {
    return n ? Find(this, n->next, OfType(t)) : nullptr;
}

SYS_GeomNode* SYS_GeomNode::GetPrevRoot(const SYS_GeomNode* n) const {
    LoopGuard guard;
    for (SYS_GeomNode* p = n ? n->next : nullptr; p && p != this && !guard.Seen(p);) {
        SYS_GeomNode* q = p->next;
        if (q == this) return p;
        if (q && q->type == SGN_GeomBarrier) return nullptr;
        p = q;
    }
    return nullptr;
}

SYS_GeomNode* SYS_GeomNode::GetNextGeomRoot() const {
    return Find(this, next, [](const SYS_GeomNode* p) { return p->IsGeomType(); });
}

SYS_GeomNode* SYS_GeomNode::GetDBRoot() const { return GetRoot(SGN_DB); }

SYS_GeomNode* SYS_GeomNode::GetBRTRoot() const { return GetRoot(SGN_BRT); }

SYS_GeomNode* SYS_GeomNode::GetRoot(short t) const { return Find(this, next, OfType(t)); }

SYS_GeomNode* SYS_GeomNode::NextRoot(SYS_GeomNode* n, short t) const {
    return n ? Find(this, n->next, OfType(t), true) : nullptr;
}

// ---- SYS_Geometry ----

int SYS_Geometry::IsValid() const { return 0; }
SYS_GeometryType SYS_Geometry::GetGeometry() { return SYS_GeometryNone; }
SYS_Geometry::~SYS_Geometry() {}

// ---- SYS_GeomIterator ----

SYS_GeometryType SYS_GeomIterator::GetObjectType() { return SYS_GeometryNone; }
SYS_Point* SYS_GeomIterator::GetPointValue() { return nullptr; }
SYS_DoublePoint* SYS_GeomIterator::GetDoublePointValue() { return nullptr; }
SYS_Location* SYS_GeomIterator::GetLocationValue() { return nullptr; }
SYS_Circle* SYS_GeomIterator::GetCircleValue() { return nullptr; }
SYS_Segment* SYS_GeomIterator::GetSegmentValue() { return nullptr; }
SYS_Arc* SYS_GeomIterator::GetArcValue() { return nullptr; }
SYS_Box* SYS_GeomIterator::GetRectangleValue() { return nullptr; }
