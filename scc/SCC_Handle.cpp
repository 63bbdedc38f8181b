// SCC_Handle.cpp - handle objects and the sorted tables that keep them.
#include "SCC_Handle.h"

#include <cstdint>

SCC_HandleWithEvent::SCC_HandleWithEvent(int h, long t, SCC_SavedHandles* o)
    : type(t), handle(h), owner(o) {}

SCC_HandleWithEvent::SCC_HandleWithEvent(const SCC_HandleWithEvent& other)
    : SCC_EventNode<int>(other), SCC_SharedBuffer(), type(other.type), handle(other.handle),
      owner(other.owner) {}

SCC_HandleWithEvent& SCC_HandleWithEvent::operator=(SCC_HandleWithEvent& other) {
    if (&other == this) return *this;
    SCC_SharedBuffer::operator=(other);
    SCC_EventNode<int>::operator=(other);
    type = other.type;
    handle = other.handle;
    owner = other.owner;
    return *this;
}

SCC_HandleWithEvent::~SCC_HandleWithEvent() {}

int SCC_HandleWithEvent::OnNotification(int code, int* data) {
    if (code == SCC_HandlesRenumbered) OnUpdatePointers();
    // The table may drop this object while it answers: read nothing after.
    if (!owner) return 0;
    return owner->HandleNotification(handle, type, code, data);
}

SCC_Notifier* SCC_HandleWithEvent::GetChangeEvent() { return nullptr; }

void SCC_HandleWithEvent::OnUpdatePointers() {}

SCC_SavedHandles::~SCC_SavedHandles() {
    for (long i = 0, n = GetCount(); i < n; ++i) {
        SCC_HandleWithEvent* object = FastGetAt(static_cast<int>(GetLowerBound() + i)).Get();
        if (object && object->owner == this) object->owner = nullptr;
    }
}

SCC_SharedPointer<SCC_HandleWithEvent> SCC_SavedHandles::CreateByType(int handle, long type) {
    (void)handle;
    (void)type;
    return SCC_SharedPointer<SCC_HandleWithEvent>();
}

int SCC_SavedHandles::HandleNotification(int handle, long type, int code, int* data) {
    (void)handle;
    switch (code) {
    case SCC_HandleDeleted:
        // The handle that leaves travels as the data pointer's value.
        Delete(static_cast<int>(reinterpret_cast<intptr_t>(data)), type);
        break;
    case SCC_HandlesCleared:
        _SCC_Array::Clear();
        break;
    case SCC_HandlesRenumbered:
        resort = true;
        break;
    default:
        break;
    }
    return 0;
}

SCC_SharedPointer<SCC_HandleWithEvent> SCC_SavedHandles::Find(int handle, long type,
                                                              long* position) {
    if (resort) {
        resort = false;
        Sort(0, GetCount(), 1);
    }
    // The key lives on the stack: a count that was never taken on the heap
    // never reaches 0, so the pointer does not delete it.
    SCC_HandleWithEvent key(handle, type, this);
    const SCC_SharedPointer<SCC_HandleWithEvent> keyPointer(&key);
    long first = 0;
    long last = 0;
    FindItemPosition(keyPointer, first, last);
    if (position) *position = first;
    if (first >= last) return SCC_SharedPointer<SCC_HandleWithEvent>();
    const Base& items = *this;
    return items[static_cast<int>(first)];
}

int SCC_SavedHandles::Save(int handle, long type) {
    long position = 0;
    if (Find(handle, type, &position)) return 0;
    SCC_SharedPointer<SCC_HandleWithEvent> created = CreateByType(handle, type);
    if (!created) return 0;
    if (SCC_Notifier* event = created->GetChangeEvent()) event->Append(created.Get());
    Insert(static_cast<int>(position), 1);
    (*this)[static_cast<int>(position)] = created;
    return 1;
}

int SCC_SavedHandles::Delete(int handle, long type) {
    long position = 0;
    // Held here until the element is gone, so the object dies after it.
    const SCC_SharedPointer<SCC_HandleWithEvent> found = Find(handle, type, &position);
    if (!found) return 0;
    _SCC_Array::Delete(static_cast<int>(position), 1);
    // The array leaves a copy of the old last element in the storage slot
    // past the new end; drop it, so that no reference outlives the entry.
    if (SCC_SharedPointer<SCC_HandleWithEvent>* stale = Slot(GetUpperBound())) *stale = nullptr;
    return 1;
}
