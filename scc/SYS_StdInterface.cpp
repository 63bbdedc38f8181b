// SYS_StdInterface.cpp - the default handle walk and the filter combinators.
#include "SYS_StdInterface.h"
#include "internal/SYS_Int32.h"

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

// The copy shows its source's `owned` but builds its own list of what it
// owns, which starts empty: the source alone frees what it built.
SYS_Filter::SYS_Filter(const SYS_Filter& other)
    : function(other.function), left(other.left), right(other.right), owned(other.owned) {}

SYS_Filter& SYS_Filter::operator=(const SYS_Filter& other) {
    function = other.function;
    left = other.left;
    right = other.right;
    return *this;
}

// Latest first, so that nothing a later filter refers to is gone before it.
// Every filter on the list was built here as exactly a SYS_Filter, so it is
// destroyed as one (the destructor is not virtual by design).
SYS_Filter::~SYS_Filter() {
    for (auto it = m_Built.rbegin(); it != m_Built.rend(); ++it) {
        (*it)->SYS_Filter::~SYS_Filter();
        ::operator delete(*it);
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

SYS_Filter& SYS_Filter::Combine(const SYS_Filter* r, Function f) {
    // Make room first, so that a filter once built is always on the list.
    try {
        m_Built.reserve(m_Built.size() + 1);
    } catch (const std::bad_alloc&) {
        owned = nullptr;
        throw;
    }
    owned = new (std::nothrow) SYS_Filter(this, r, f);
    if (!owned) throw std::bad_alloc();
    m_Built.push_back(owned);
    return *owned;
}

SYS_Filter& SYS_Filter::operator&(const SYS_Filter& other) { return Combine(&other, And_F); }
SYS_Filter& SYS_Filter::operator|(const SYS_Filter& other) { return Combine(&other, Or_F); }
SYS_Filter& SYS_Filter::operator!() { return Combine(nullptr, Not_F); }
