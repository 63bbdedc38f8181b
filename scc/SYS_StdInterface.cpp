// SYS_StdInterface.cpp - the default handle walk and the filter combinators.
#include "SYS_StdInterface.h"
#include "internal/SYS_Int32.h"

#include <cstddef>
#include <new>

// ---------------------------------------------------------------------------
// SYS_StdInterface

SCC_Notifier* SYS_StdInterface::GetChangeEvent(void*) { return nullptr; }
void SYS_StdInterface::SetMaxHandle(int max) { maxHandle = max; }
int SYS_StdInterface::IsValid() const { return handle != 0 ? 1 : 0; }
void SYS_StdInterface::SetHandle(int h, void*) { handle = h; }
int SYS_StdInterface::GetHandle() const { return handle; }
void SYS_StdInterface::GetFirst(void*) { handle = maxHandle > 0 ? 1 : 0; }

void SYS_StdInterface::GetNext() {
    handle = SYS_Add32(handle, 1);
    if (handle > maxHandle) handle = 0;
}

void SYS_StdInterface::OnUpdatePointers() {}

int SYS_StdInterface::DefaultSort(const int& a, const int& b) { return SYS_Sub32(a, b); }

// ---------------------------------------------------------------------------
// SYS_Filter

SYS_Filter::SYS_Filter() : function(nullptr), left(nullptr), right(nullptr), owned(nullptr) {}

SYS_Filter::SYS_Filter(const SYS_Filter* l, const SYS_Filter* r, Function f)
    : function(f), left(l), right(r), owned(nullptr) {}

// Besides `owned`, a filter keeps two pointers in m_Built (the vector stays
// empty when both are null):
// - [kKept]: the filter that this one's builder held in `owned` when the
//   combination built this one.  Chaining ownership this way keeps a replaced
//   combination alive as long as the one that replaced it, so it goes with it
//   wherever `owned` goes: freed with the owner, or handed to the host when
//   the host takes `owned` over.
// - [kBorrowed]: in a copy, the `owned` it was copied with.  That filter
//   belongs to the source; the copy shows it but never frees it.
namespace {
const std::size_t kKept = 0, kBorrowed = 1;

SYS_Filter* Slot(const std::vector<SYS_Filter*>& held, std::size_t i) {
    return i < held.size() ? held[i] : nullptr;
}

// Frees a filter built by `new SYS_Filter`, by this library or by the host.
// The class has no virtual destructor, by design: the objects held are plain
// SYS_Filters, and they are destroyed as such.
void Free(SYS_Filter* f) {
    f->SYS_Filter::~SYS_Filter();
    ::operator delete(f);
}
} // namespace

SYS_Filter::SYS_Filter(const SYS_Filter& other)
    : function(other.function), left(other.left), right(other.right), owned(other.owned) {
    if (owned) m_Built.assign({nullptr, owned});
}

SYS_Filter& SYS_Filter::operator=(const SYS_Filter& other) {
    function = other.function;
    left = other.left;
    right = other.right;
    return *this;
}

// Frees what `owned` holds (unless a copy only borrowed it) and the filter
// this one keeps alive, then theirs in turn.  A filter recombined many times,
// or a long a & b & c & ..., makes a deep tree, so it is freed from a list
// instead of by recursion: each filter taken from the tree is stripped of its
// own two (pushed on the list, linked through `right`, which nothing reads
// any more) before it is freed.
SYS_Filter::~SYS_Filter() {
    SYS_Filter* pending = nullptr;
    auto strip = [&pending](SYS_Filter& f) {
        SYS_Filter* const held[] = {f.owned != Slot(f.m_Built, kBorrowed) ? f.owned : nullptr,
                                    Slot(f.m_Built, kKept)};
        f.owned = nullptr;
        f.m_Built.clear();
        for (SYS_Filter* h : held) {
            if (!h) continue;
            h->right = pending;
            pending = h;
        }
    };
    strip(*this);
    while (pending) {
        SYS_Filter* const f = pending;
        pending = const_cast<SYS_Filter*>(f->right);
        strip(*f);
        Free(f);
    }
}

int SYS_Filter::IsTrue(int handle) const { return function ? function(this, handle) : 0; }

namespace {
int Test(const SYS_Filter* filter, int handle) { return filter ? filter->IsTrue(handle) : 0; }
} // namespace

int SYS_Filter::And_F(const SYS_Filter* filter, int handle) {
    const int r = Test(filter->right, handle);
    const int l = Test(filter->left, handle);
    return l & r;
}

int SYS_Filter::Or_F(const SYS_Filter* filter, int handle) {
    const int r = Test(filter->right, handle);
    const int l = Test(filter->left, handle);
    return l | r;
}

int SYS_Filter::Not_F(const SYS_Filter* filter, int handle) {
    return Test(filter->left, handle) <= 0 ? 1 : 0;
}

// The new filter takes over what `owned` held, if this filter owned it, and
// replaces it there.  Both allocations come before anything changes.
SYS_Filter& SYS_Filter::Combine(const SYS_Filter* r, Function f) {
    SYS_Filter* const previous = owned;
    const bool mine = previous && previous != Slot(m_Built, kBorrowed);
    SYS_Filter* built = new (std::nothrow) SYS_Filter(this, r, f);
    if (built && mine) {
        try {
            built->m_Built.push_back(previous);
        } catch (const std::bad_alloc&) {
            Free(built);
            built = nullptr;
        }
    }
    if (m_Built.size() > kBorrowed) m_Built[kBorrowed] = nullptr; // no longer in owned
    owned = built;
    if (!built) throw std::bad_alloc();
    return *built;
}

SYS_Filter& SYS_Filter::operator&(const SYS_Filter& other) { return Combine(&other, And_F); }
SYS_Filter& SYS_Filter::operator|(const SYS_Filter& other) { return Combine(&other, Or_F); }
SYS_Filter& SYS_Filter::operator!() { return Combine(nullptr, Not_F); }
