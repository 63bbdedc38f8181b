/// @file
/// Walking objects by handle number, and filters over handles.
///
/// SYS_StdInterface is the smallest iteration interface: a current handle
/// (0 for none), a largest handle, first and next, a validity test and a change
/// event.  By default it walks the handles 1 to maxHandle:
///
///     for (it.GetFirst(nullptr); it.IsValid(); it.GetNext()) use(it.GetHandle());
///
/// The void* context arguments are for subclasses that walk something else;
/// the defaults ignore them.
///
/// SYS_Filter is a predicate over handles.  Filters combine with &, | and !
/// into trees: `a & b` builds a filter that tests b, then a, and ANDs the two
/// results bitwise (so predicates should answer 0 or 1: 2 & 1 is 0); `!a` is
/// true where a gives 0 or less.  Both operands are always evaluated.  The
/// combined filter belongs to its left operand (a): a holds it in `a.owned`
/// and frees it when a goes.  A later combination on a replaces it there and
/// keeps it alive in turn, so it too lives as long as a does.
///
/// Costs: a walk step or a filter test is one virtual call per filter in the
/// tree; combining allocates one filter.
#ifndef SYS_STDINTERFACE_H
#define SYS_STDINTERFACE_H

#include "SCC_Event.h"
#include "keel_config.h"

#include <vector>

/// The default walk over handles 1 to maxHandle, and the interface that
/// subclasses walking other things implement.
///
/// A walk is GetFirst(), then GetNext() until IsValid() gives 0.  Copies copy
/// both fields.
class KEEL_API SYS_StdInterface {
public:
    /// The current handle, 0 when there is none; it starts at 0.
    int handle;
    /// The largest handle of the default walk.
    int maxHandle;

    /// Stores `maxHandle`; the current handle starts at 0 (no GetFirst yet).
    SYS_StdInterface(int maxHandle = 0) : handle(0), maxHandle(maxHandle) {}
    /// Copies both fields.
    SYS_StdInterface(const SYS_StdInterface& other) = default;
    /// Copies both fields.
    SYS_StdInterface& operator=(const SYS_StdInterface& other) = default;

    // Slots in this order: subclasses of later families rely on it.
    /// The event that announces changes of what is walked; null by default.
    /// The event belongs to the walked object, not to the caller.
    virtual SCC_Notifier* GetChangeEvent(void* context);
    /// Sets the largest handle of the walk; the current handle is not touched.
    virtual void SetMaxHandle(int max);
    /// 1 while the current handle is not 0, else 0.
    virtual int IsValid() const;
    /// Makes `handle` current, unchecked against maxHandle; the base ignores
    /// `context`.
    virtual void SetHandle(int handle, void* context);
    /// The current handle, 0 when there is none.
    virtual int GetHandle() const;
    /// Starts the walk: handle 1, or 0 when maxHandle is not above 0.  The
    /// base ignores `context`.
    virtual void GetFirst(void* context);
    /// The next handle, or 0 after maxHandle.  Called again after the end
    /// (handle 0), it starts over at 1.
    virtual void GetNext();
    /// Called when the objects behind the handles moved; nothing by default.
    virtual void OnUpdatePointers();
    /// Last, so that the slots above keep their places; a walker may be
    /// destroyed through this class.
    virtual ~SYS_StdInterface() {}

    /// A comparison for sorting handles in ascending order: the difference
    /// a - b itself, wrapping around in 32 bits, not just its sign (so two
    /// handles more than 2^31 apart compare the wrong way round).
    static int DefaultSort(const int& a, const int& b);
};

/// A predicate over handles, combinable with &, | and ! into a tree.
///
/// Subclass it and override IsTrue(), or give the constructor a test function.
/// Operands are kept as pointers, never copied: a combined filter is valid as
/// long as its operands exist.  The destructor is not virtual: never delete a
/// subclass through a SYS_Filter pointer.
class KEEL_API SYS_Filter {
public:
    /// A test: non-zero when `handle` passes `filter`.
    typedef int (*Function)(const SYS_Filter* filter, int handle);

    /// The test of IsTrue, or null (never true).
    Function function;
    /// First operand of a combined filter; the filter only points at it.
    const SYS_Filter* left;
    /// Second operand of a combined filter; null for a negation.
    const SYS_Filter* right;
    /// What this filter owns and frees when it goes: the filter that the last
    /// combining operator built on this one, with the ones it replaced (each
    /// combination keeps the one it replaced alive).  The field is the
    /// ownership: set it to null to take the combination over (this filter
    /// then frees none of it, and you free it as below), or store a filter of
    /// your own allocated with `new SYS_Filter` (exactly that class, not a
    /// subclass) for this filter to free.  Whatever you overwrite here is
    /// yours from then on.  A copy shows its source's value here without
    /// owning it.
    SYS_Filter* owned;

    /// All fields null: false for every handle.
    SYS_Filter();
    /// Stores the operands (as pointers; the caller keeps them alive) and the
    /// test; `owned` null.
    SYS_Filter(const SYS_Filter* left, const SYS_Filter* right, Function function);
    /// Copies all four fields, owned included; the copy does not own the
    /// filter it shows there (its `owned` dangles once the source is
    /// destroyed), but frees what its own combinations, or you, store in its
    /// `owned` afterwards.
    SYS_Filter(const SYS_Filter& other);
    /// Copies function, left and right; owned and what this filter owns stay.
    SYS_Filter& operator=(const SYS_Filter& other);
    /// Frees what `owned` holds (unless this is a copy still showing its
    /// source's), and with it every combination it kept alive, however long
    /// the chain.  Not virtual: a filter is never deleted through a base
    /// pointer.  Compilers warn on a plain `delete` of this polymorphic class;
    /// a filter you took over is freed quietly by calling its destructor
    /// explicitly and then releasing its memory with the global operator
    /// delete:
    /// @code
    /// f->SYS_Filter::~SYS_Filter();
    /// ::operator delete(f);
    /// @endcode
    ~SYS_Filter();

    /// Whether `handle` passes: 0 without a function, else
    /// function(this, handle).  Subclasses override it with their own test;
    /// answer 0 or 1, as the combinators AND and OR the results bitwise.
    virtual int IsTrue(int handle) const;

    /// @name Combinators
    /// The tests of combined filters, for `filter` built by the operators.
    ///@{

    /// Evaluates right->IsTrue, then left->IsTrue (both always), and returns
    /// the bitwise AND (And_F) or OR (Or_F) of the two results; a missing
    /// operand counts as 0.
    static int And_F(const SYS_Filter* filter, int handle);
    static int Or_F(const SYS_Filter* filter, int handle);
    ///@}
    /// 1 when left->IsTrue gives 0 or less (or there is no left), else 0.
    static int Not_F(const SYS_Filter* filter, int handle);

    /// @name Combining operators
    ///@{

    /// Build a filter (this & other, this | other, !this) that points at its
    /// operands, store it in owned and return it.  The result belongs to this
    /// filter: do not delete it; it is freed with this filter.  What owned
    /// held before (when this filter owned it) now belongs to the result, so
    /// it stays alive as long as the result does.  `other` is not copied and
    /// must outlive the result.  Throws std::bad_alloc, with owned null, when
    /// no memory can be had; what owned held is then no longer freed by this
    /// filter.
    SYS_Filter& operator&(const SYS_Filter& other);
    SYS_Filter& operator|(const SYS_Filter& other);
    SYS_Filter& operator!();
    ///@}

private:
    SYS_Filter& Combine(const SYS_Filter* right, Function function);

    // At most two pointers: the combination this one keeps alive (the one it
    // replaced in its builder's owned), and in a copy the owned it was copied
    // with, which it does not own.
    std::vector<SYS_Filter*> m_Built;
};

#endif // SYS_STDINTERFACE_H
