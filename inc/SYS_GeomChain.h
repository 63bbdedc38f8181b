/// @file SYS_GeomChain.h
/// The bases through which a host groups its geometry: chains of typed nodes,
/// geometry values and iterators over them.
///
/// SYS_GeomNode is an intrusive node of a circular chain (a drawing object and
/// the attribute, group and database records attached to it).  A node alone
/// points to itself.  The searches walk the chain by `next`, never look at the
/// node they are called on, and end at that node, at a null link, or at a node
/// the walk has already passed (a loop that never comes back: only a damaged
/// chain has one); a search that ends without a match returns null.  A search
/// or an exclusion costs one step per node passed and allocates nothing; the
/// accessors are inline.
///
/// Ownership: a chain owns none of its nodes.  Nodes are host objects (bases
/// of host classes); linking and unlinking only rewrite `next` pointers and
/// never copy, allocate or delete a node.  Destroying a node does not unlink
/// it: take it out first (n->ExcludeRoot(n)) so that no other node keeps a
/// pointer to it.
///
/// SYS_Geometry is the abstract base of a geometry value that reports its
/// kind; SYS_GeomIterator walks geometry values by handle (SYS_StdInterface)
/// and hands out the current one through the getter of its kind.  Both answer
/// 0 and null pointers until a host class overrides them.  Their virtual
/// functions keep their declaration order in the table of virtual functions,
/// which host classes built against it rely on.
#ifndef SYS_GEOMCHAIN_H
#define SYS_GEOMCHAIN_H

#include "SYS_Curve.h"
#include "SYS_Geom.h"
#include "SYS_StdInterface.h"
#include "keel_config.h"

/// Node types.  The library gives meaning to those named here; every other
/// value of the 16-bit range belongs to the host.  The geometry node types
/// are 1, 2, 4 and 6.
enum SGN_Type : short {
    SGN_Unset = 0,       ///< Unset; a node of this type is not valid.
    SGN_Geom1 = 1,       ///< A geometry node type.
    SGN_Geom2 = 2,       ///< A geometry node type.
    SGN_Geom4 = 4,       ///< A geometry node type.
    SGN_GeomBarrier = 6, ///< A geometry type that also stops ExcludeRoot and GetPrevRoot.
    SGN_BRT = 7,         ///< What GetBRTRoot finds.
    SGN_DB = 9           ///< What GetDBRoot finds.
};

/// Kinds of geometry value.  Only 0 (none) has a meaning here; the host names
/// the others.
enum SYS_GeometryType : int { SYS_GeometryNone = 0 };
/// @var SYS_GeometryNone
/// No geometry; what the base classes answer.

/// Node of a circular chain of typed nodes, used as a base of host classes.
/// The chain owns nothing (see SYS_GeomChain.h); its only virtual function is
/// the protected destructor.
class KEEL_API SYS_GeomNode {
public:
    /// The next node of the circular chain; this node when it is alone.
    SYS_GeomNode* next;
    /// The node type (SGN_Type or a host value).
    SGN_Type type;
    /// 32767 in a new node and copied with the node; free for the host.
    short spare;
    /// The group the node belongs to, or null; only stored, never owned.
    void* parentGroup;

    /// Copies all four fields as they stand: the copy joins no chain of its
    /// own, it shares its source's successor.  Assignment does the same, so
    /// assigning to a linked node leaves its old chain pointing at it.
    ///@{
    SYS_GeomNode(const SYS_GeomNode& other) = default;
    SYS_GeomNode& operator=(const SYS_GeomNode& other) = default;
    ///@}

    /// 1 when the type is not 0 (SGN_Unset), else 0.
    int IsValid() const { return type != SGN_Unset; }
    /// 1 when the type is 1, 2, 4 or 6, else 0.
    int IsGeomType() const {
        return type == SGN_Geom1 || type == SGN_Geom2 || type == SGN_Geom4 ||
               type == SGN_GeomBarrier;
    }
    /// The type.
    SGN_Type GetGeomType() const { return type; }
    /// Sets the type.
    void SetGeomType(SGN_Type t) { type = t; }
    /// The type as a short.
    short GetNodeType() const { return type; }
    /// Sets the type from a short.
    void SetNodeType(short t) { type = static_cast<SGN_Type>(t); }

    /// 1 when parentGroup is not null, else 0.
    int IsMemberOfGroup() const { return parentGroup != nullptr; }
    /// The group pointer, or null.
    void* GetParentGroup() const { return parentGroup; }
    /// Stores the group pointer (not owned; null for none).
    void SetParentGroup(void* group) { parentGroup = group; }

    /// next = n, nothing else (n may be null; the old successor is not
    /// relinked).
    void SetRoot(SYS_GeomNode* n) { next = n; }
    /// Inserts n right after this node (nothing for null).  n's own next is
    /// overwritten, so n should be alone: a node still in another chain
    /// breaks that chain.
    void IncludeRoot(SYS_GeomNode* n);
    /// Finds n's predecessor by walking on from n and gives it this node's
    /// successor, then leaves this node alone.  On n itself this takes n out
    /// of its chain; on another node it deliberately links n's predecessor to
    /// this node's successor, whatever chains they are in.  Nothing changes
    /// when n is null or alone, when the walk meets a null link or a loop, or
    /// when a barrier node (type 6) lies on the walk from n's successor to n's
    /// predecessor, both included.  Costs one step per node of n's chain.
    void ExcludeRoot(SYS_GeomNode* n);
    /// Drops the successor from the chain without touching it (it keeps its
    /// own next).  Nothing for a null next; a node alone stays alone.
    void ExcludeOwnRoot();
    /// Drops the run of type-t nodes that directly follows this node.
    void ExcludeNearType(short t);
    /// Unlinks every other node of type t from the chain (never this node,
    /// whatever its type); unlinked nodes keep their own next.  One walk of
    /// the chain.
    void ExcludeByType(short t);

    /// next, or null when this node is alone.
    SYS_GeomNode* GetRoot() const { return next == this ? nullptr : next; }
    /// n's successor, or null when that is this node (or n is null): feeding
    /// each result back in, starting from this node, walks the chain once and
    /// ends with null.  On P -> R -> Q -> P, P.GetNextRoot(&P) is R, then Q,
    /// then null.
    SYS_GeomNode* GetNextRoot(const SYS_GeomNode* n) const;
    /// The first node of type t after n, or null.
    SYS_GeomNode* GetNextRoot(const SYS_GeomNode* n, SGN_Type t) const;
    /// The predecessor of this node, walking on from n; null when a barrier
    /// (type 6) comes first, when n's successor is this node, or when n is
    /// null.  The node right after n is not tested for a barrier.
    SYS_GeomNode* GetPrevRoot(const SYS_GeomNode* n) const;
    /// The first geometry node (type 1, 2, 4 or 6) after this one, or null.
    SYS_GeomNode* GetNextGeomRoot() const;
    /// The first type-9 node (SGN_DB) after this one, or null.
    SYS_GeomNode* GetDBRoot() const;
    /// The first type-7 node (SGN_BRT) after this one, or null.
    SYS_GeomNode* GetBRTRoot() const;
    /// The first node of type t after this one, or null.
    SYS_GeomNode* GetRoot(short t) const;
    /// The first node of type t after n, or null (also for a null n).  A
    /// node not of type t that is linked to itself is reported as a
    /// corrupted chain: SSM_AssertFailed("Corrupted SYS_GeomNode chain!",
    /// "sys/SYS_Geom_Inline", 2253, SSM_FailureFatal, 2), and SSM_Throw when
    /// that returns 0.  The walk goes on only if the report's handlers
    /// relinked that node, and otherwise ends with null.  A node of type t is
    /// returned before its link is looked at.
    SYS_GeomNode* NextRoot(SYS_GeomNode* n, short t) const;

protected:
    /// Alone, type 0, spare 32767, no group.  Nodes exist only as bases of
    /// host classes and are never deleted through this class.
    SYS_GeomNode() : next(this), type(SGN_Unset), spare(0x7FFF), parentGroup(nullptr) {}
    /// Does nothing; in particular it does not unlink the node.
    virtual ~SYS_GeomNode();
};

/// Abstract base of a geometry value that reports its kind.  A host class
/// overrides IsValid and GetGeometry; the slots are IsValid, GetGeometry,
/// then the destructor, in that order.
class KEEL_API SYS_Geometry {
public:
    /// Does nothing (there are no fields).
    SYS_Geometry() = default;
    /// Does nothing (there are no fields).
    SYS_Geometry(const SYS_Geometry&) = default;
    /// Does nothing (there are no fields).
    SYS_Geometry& operator=(const SYS_Geometry&) = default;

    /// Whether the value is valid: 1 or 0; 0 here.
    virtual int IsValid() const;
    /// The kind of the value (a host SYS_GeometryType); SYS_GeometryNone here.
    virtual SYS_GeometryType GetGeometry();
    /// Last, so that the slots above keep their places; a value may be
    /// destroyed through this class.
    virtual ~SYS_Geometry();
};

/// Iterator over geometry values by handle.  A host class overrides the walk
/// of SYS_StdInterface (GetFirst, GetNext, IsValid and the others it needs),
/// GetObjectType, and the getter of each kind it hands out; the slots follow
/// those of SYS_StdInterface in declaration order.  A concrete iterator
/// answers the getter of the kind GetObjectType names with a pointer to the
/// current item, and null from the others.  The caller does not own the
/// pointer: it belongs to the iterator and names the current item until the
/// iterator moves on.
class KEEL_API SYS_GeomIterator : public SYS_StdInterface {
public:
    /// maxHandle 0: the default walk finds no handle.
    SYS_GeomIterator() : SYS_StdInterface(0) {}

    /// The kind of the current item; SYS_GeometryNone here.
    virtual SYS_GeometryType GetObjectType();
    /// @name Current item by kind
    /// Each returns a pointer to the current item when it is of that kind,
    /// else null; null here.
    ///@{

    /// The current item as a point, or null.
    virtual SYS_Point* GetPointValue();
    /// The current item as a double point, or null.
    virtual SYS_DoublePoint* GetDoublePointValue();
    /// The current item as a location, or null.
    virtual SYS_Location* GetLocationValue();
    /// The current item as a circle, or null.
    virtual SYS_Circle* GetCircleValue();
    /// The current item as a segment, or null.
    virtual SYS_Segment* GetSegmentValue();
    /// The current item as an arc, or null.
    virtual SYS_Arc* GetArcValue();
    /// The current item as a box, or null.
    virtual SYS_Box* GetRectangleValue();
    ///@}
};

#endif // SYS_GEOMCHAIN_H
