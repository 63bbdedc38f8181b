// SYS_GeomChain.h - the bases through which a host groups its geometry:
// chains of typed nodes, geometry values and iterators over them.
//
// SYS_GeomNode is an intrusive node of a circular chain (a drawing object and
// the attribute, group and database records attached to it).  A node alone
// points to itself.  The searches walk the chain by `next`, never look at the
// node they are called on, and end at that node, at a null link, or at a node
// the walk has already passed (a loop that never comes back: only a damaged
// chain has one).  A search or an exclusion costs one step per node passed
// and allocates nothing; the accessors are inline.
//
// SYS_Geometry is the abstract base of a geometry value that reports its
// kind; SYS_GeomIterator walks geometry values by handle (SYS_StdInterface)
// and hands out the current one through the getter of its kind.  Both answer
// 0 and null pointers until a host class overrides them.
#ifndef SYS_GEOMCHAIN_H
#define SYS_GEOMCHAIN_H

#include "SYS_Curve.h"
#include "SYS_Geom.h"
#include "SYS_StdInterface.h"
#include "keel_config.h"

// Node types.  The library gives meaning to those named here; every other
// value of the 16-bit range belongs to the host.
enum SGN_Type : short {
    SGN_Unset = 0, // a node of this type is not valid
    // The geometry node types are 1, 2, 4 and 6.
    SGN_Geom1 = 1,
    SGN_Geom2 = 2,
    SGN_Geom4 = 4,
    SGN_GeomBarrier = 6, // a geometry type that also stops ExcludeRoot and GetPrevRoot
    SGN_BRT = 7,         // what GetBRTRoot finds
    SGN_DB = 9           // what GetDBRoot finds
};

// Kinds of geometry value.  Only 0 (none) has a meaning here; the host names
// the others.
enum SYS_GeometryType : int { SYS_GeometryNone = 0 };

class KEEL_API SYS_GeomNode {
public:
    // The next node of the circular chain; this node when it is alone.
    SYS_GeomNode* next;
    SGN_Type type;
    // 32767 in a new node and copied with the node; free for the host.
    short spare;
    // The group the node belongs to, or null.
    void* parentGroup;

    // Copies all four fields as they stand: the copy joins no chain of its
    // own, it shares its source's successor.
    SYS_GeomNode(const SYS_GeomNode& other) = default;
    SYS_GeomNode& operator=(const SYS_GeomNode& other) = default;

    int IsValid() const { return type != SGN_Unset; }
    // Type 1, 2, 4 or 6.
    int IsGeomType() const {
        return type == SGN_Geom1 || type == SGN_Geom2 || type == SGN_Geom4 ||
               type == SGN_GeomBarrier;
    }
    SGN_Type GetGeomType() const { return type; }
    void SetGeomType(SGN_Type t) { type = t; }
    short GetNodeType() const { return type; }
    void SetNodeType(short t) { type = static_cast<SGN_Type>(t); }

    int IsMemberOfGroup() const { return parentGroup != nullptr; }
    void* GetParentGroup() const { return parentGroup; }
    void SetParentGroup(void* group) { parentGroup = group; }

    // next = n, nothing else (n may be null).
    void SetRoot(SYS_GeomNode* n) { next = n; }
    // Inserts n right after this node.
    void IncludeRoot(SYS_GeomNode* n);
    // Finds n's predecessor by walking on from n and gives it this node's
    // successor, then leaves this node alone.  On n itself this takes n out
    // of its chain; on another node it deliberately links n's predecessor to
    // this node's successor, whatever chains they are in.  Nothing changes
    // when n is alone or a barrier node (type 6) lies on the walk from n's
    // successor to n's predecessor, both included.
    void ExcludeRoot(SYS_GeomNode* n);
    // Drops the successor from the chain without touching it.
    void ExcludeOwnRoot();
    // Drops the run of type-t nodes that follows this node.
    void ExcludeNearType(short t);
    // Unlinks every other node of type t from the chain; unlinked nodes keep
    // their own next.
    void ExcludeByType(short t);

    // next, or null when this node is alone.
    SYS_GeomNode* GetRoot() const { return next == this ? nullptr : next; }
    // n's successor, or null when that is this node: feeding each result
    // back in, starting from this node, walks the chain once.
    SYS_GeomNode* GetNextRoot(const SYS_GeomNode* n) const;
    // The first node of type t after n.
    SYS_GeomNode* GetNextRoot(const SYS_GeomNode* n, SGN_Type t) const;
    // The predecessor of this node, walking on from n; null when a barrier
    // (type 6) comes first.  The node right after n is not tested.
    SYS_GeomNode* GetPrevRoot(const SYS_GeomNode* n) const;
    // The first geometry node, type-9 node or type-7 node after this one.
    SYS_GeomNode* GetNextGeomRoot() const;
    SYS_GeomNode* GetDBRoot() const;
    SYS_GeomNode* GetBRTRoot() const;
    // The first node of type t after this one.
    SYS_GeomNode* GetRoot(short t) const;
    // The first node of type t after n.  A node linked to itself on the way
    // is reported as a corrupted chain (identifier 2; SSM_Throw follows when
    // the manager asks for it); the walk goes on only if the report's
    // handlers relinked that node, and otherwise ends with null.
    SYS_GeomNode* NextRoot(SYS_GeomNode* n, short t) const;

protected:
    // Alone, type 0, spare 32767, no group.  Nodes exist only as bases of
    // host classes and are never deleted through this class.
    SYS_GeomNode() : next(this), type(SGN_Unset), spare(0x7FFF), parentGroup(nullptr) {}
    virtual ~SYS_GeomNode();
};

class KEEL_API SYS_Geometry {
public:
    SYS_Geometry() = default;
    SYS_Geometry(const SYS_Geometry&) = default;
    SYS_Geometry& operator=(const SYS_Geometry&) = default;

    // 0 here.
    virtual int IsValid() const;
    // SYS_GeometryNone here.
    virtual SYS_GeometryType GetGeometry();
    // Last, so that the slots above keep their places.
    virtual ~SYS_Geometry();
};

// A concrete iterator answers the getter of the kind GetObjectType names
// with a pointer to the current item, and null from the others.
class KEEL_API SYS_GeomIterator : public SYS_StdInterface {
public:
    SYS_GeomIterator() : SYS_StdInterface(0) {}

    // SYS_GeometryNone and null pointers here.
    virtual SYS_GeometryType GetObjectType();
    virtual SYS_Point* GetPointValue();
    virtual SYS_DoublePoint* GetDoublePointValue();
    virtual SYS_Location* GetLocationValue();
    virtual SYS_Circle* GetCircleValue();
    virtual SYS_Segment* GetSegmentValue();
    virtual SYS_Arc* GetArcValue();
    virtual SYS_Box* GetRectangleValue();
};

#endif // SYS_GEOMCHAIN_H
