// The virtual-table slots of the event node, the array core and its typed
// and sortable arrays, the standard interface and the standard collection.
// Host classes derive from these and override by slot, and the other
// families build their own slots on top of them (the collection after the
// node's, geometry iterators after the standard interface's).
#include <keel/SCC_Array.h>
#include <keel/SCC_Event.h>
#include <keel/SCC_SortableArray.h>
#include <keel/SCC_StdCollection.h>
#include <keel/SYS_StdInterface.h>

#include "tests/slot_order.h"

namespace {

// The protected storage and sorting operations, made nameable.
struct Core : _SCC_Array {
    using _SCC_Array::AllocData;
    using _SCC_Array::Comp;
    using _SCC_Array::CopyData;
    using _SCC_Array::GetData;
    using _SCC_Array::GetLowerBound;
    using _SCC_Array::GetUpperBound;
    using _SCC_Array::Granularity;
    using _SCC_Array::SetData;
    using _SCC_Array::ShortSort;
    using _SCC_Array::Sort;
    using _SCC_Array::Swap;
};

// The same through the sortable array: members resolve to the class that
// declares or overrides them last.  CompItems is private, so it is named
// through an override, which takes the slot of the function it overrides.
struct Sortable : SCC_SortableArray<int> {
    using SCC_Array<int>::AllocData;
    using SCC_Array<int>::CopyData;
    using SCC_Array<int>::GetData;
    using SCC_Array<int>::SetData;
    using _SCC_Array::Granularity;
    using _SCC_Array::ShortSort;
    int CompItems(const int&, const int&) override { return 0; }
};

// The protected hooks through which a host collection walks its objects.
struct Collection : SCC_StdCollection {
    using SCC_StdCollection::_GetFirst;
    using SCC_StdCollection::_GetFirstByParentSlider;
    using SCC_StdCollection::_GetNext;
    using SCC_StdCollection::_GetNextByParentSlider;
    using SCC_StdCollection::_GetPrev;
    using SCC_StdCollection::_GetSlider;
    using SCC_StdCollection::_SetSlider;
    using SCC_StdCollection::Reload;
};

TEST(ContainerSlots, EventNodeAndArrayIterator) {
    // Slots 0 and 1 hold the node's destructor.  Events and hooks override
    // these and add none; the array iterator adds SetArray.
    using Node = SCC_EventNode<int>;
    const slots::Table node = {
        SLOT(&Node::OnNotification, 2),
        SLOT(&Node::OnRemoveNode, 3),
        SLOT(&Node::GetPriority, 4),
        SLOT(&Node::GetRoot, 5),
    };
    slots::Expect("SCC_EventNode<int>", node);
    using Iterator = SCC_Array<int>::Iterator;
    const slots::Table iterator = {
        SLOT(&Iterator::SetArray, 6),
    };
    slots::Expect("SCC_Array<int>::Iterator", iterator);
}

TEST(ContainerSlots, ArrayCoreTypedAndSortable) {
    // No destructor slot: the core's destructor is not virtual.
    const slots::Table core = {
        SLOT(&Core::GetData, 0),   SLOT(&Core::GetUpperBound, 1), SLOT(&Core::GetLowerBound, 2),
        SLOT(&Core::SetData, 3),   SLOT(&Core::AllocData, 4),     SLOT(&Core::CopyData, 5),
        SLOT(&Core::Comp, 6),      SLOT(&Core::Swap, 7),          SLOT(&Core::Sort, 8),
        SLOT(&Core::ShortSort, 9), SLOT(&Core::Granularity, 10),  SLOT(&Core::GetCount, 11),
        SLOT(&Core::IsEmpty, 12),  SLOT(&Core::IsValid, 13),
    };
    slots::Expect("_SCC_Array", core);
    // SCC_Array<T> overrides seven of them in place, SCC_SortableArray<T>
    // three more, and adds CompItems after them.
    const slots::Table sortable = {
        SLOT(&Sortable::GetData, 0),       SLOT(&Sortable::GetUpperBound, 1),
        SLOT(&Sortable::GetLowerBound, 2), SLOT(&Sortable::SetData, 3),
        SLOT(&Sortable::AllocData, 4),     SLOT(&Sortable::CopyData, 5),
        SLOT(&Sortable::Comp, 6),          SLOT(&Sortable::Swap, 7),
        SLOT(&Sortable::Sort, 8),          SLOT(&Sortable::ShortSort, 9),
        SLOT(&Sortable::Granularity, 10),  SLOT(&Sortable::GetCount, 11),
        SLOT(&Sortable::IsEmpty, 12),      SLOT(&Sortable::IsValid, 13),
        SLOT(&Sortable::CompItems, 14),
    };
    slots::Expect("SCC_SortableArray<int>", sortable);
}

TEST(ContainerSlots, StandardInterface) {
    // The destructor follows these (slots 8 and 9).
    using I = SYS_StdInterface;
    const slots::Table standard = {
        SLOT(&I::GetChangeEvent, 0), SLOT(&I::SetMaxHandle, 1),     SLOT(&I::IsValid, 2),
        SLOT(&I::SetHandle, 3),      SLOT(&I::GetHandle, 4),        SLOT(&I::GetFirst, 5),
        SLOT(&I::GetNext, 6),        SLOT(&I::OnUpdatePointers, 7),
    };
    slots::Expect("SYS_StdInterface", standard);
}

TEST(ContainerSlots, StandardCollection) {
    // After the node's destructor (0 and 1) and its four operations.
    using C = Collection;
    const slots::Table collection = {
        SLOT(&C::OnNotification, 2),
        SLOT(&C::OnRemoveNode, 3),
        SLOT(&C::GetPriority, 4),
        SLOT(&C::GetRoot, 5),
        SLOT(&C::Reload, 6),
        SLOT(&C::_GetSlider, 7),
        SLOT(&C::_SetSlider, 8),
        SLOT(&C::_GetFirst, 9),
        SLOT(&C::_GetNext, 10),
        SLOT(&C::_GetPrev, 11),
        SLOT(&C::_GetFirstByParentSlider, 12),
        SLOT(&C::_GetNextByParentSlider, 13),
        SLOT(&C::SetParent, 14),
        SLOT(&C::AllowReload, 15),
        SLOT(&C::IsReloadAllowed, 16),
        SLOT(&C::FindNextTempItem, 17),
        SLOT(&C::Clear, 18),
        SLOT(&C::GetEvent, 19),
        SLOT(&C::SetEvent, 20),
        SLOT(&C::SetNotificationHandler, 21),
        SLOT(&C::OnParentNotification, 22),
        SLOT(&C::EnableNotifications, 23),
        SLOT(&C::HandleNotificationsAllowed, 24),
        SLOT(&C::Suspend, 25),
        SLOT(&C::IsEmpty, 26),
        SLOT(&C::HasFocus, 27),
        SLOT(&C::Filter, 28),
        SLOT(&C::GetFocus, 29),
        SLOT(&C::SetFocus, 30),
        SLOT(&C::IsInFocus, 31),
        SLOT(&C::GetSlider, 32),
        SLOT(&C::SetSlider, 33),
        SLOT(&C::GetPosition, 34),
        SLOT(&C::SetPosition, 35),
        SLOT(&C::GetAt, 36),
        SLOT(&C::GetPositionByHandle, 37),
        SLOT(&C::GetHandleData, 38),
        SLOT(&C::SetHandleData, 39),
        SLOT(&C::GetFirst, 40),
        SLOT(&C::GetNext, 41),
        SLOT(&C::GetPrev, 42),
        SLOT(&C::UpdateHandle, 43),
    };
    slots::Expect("SCC_StdCollection", collection);
}

} // namespace
