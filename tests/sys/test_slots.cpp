// The virtual-table slots of the geometry bases a host derives its geometry
// values and iterators from.
#include <keel/SYS_GeomChain.h>

#include "tests/slot_order.h"

namespace {

TEST(GeometrySlots, ValueAndIterator) {
    // The value's destructor follows its two operations.
    const slots::Table value = {
        SLOT(&SYS_Geometry::IsValid, 0),
        SLOT(&SYS_Geometry::GetGeometry, 1),
    };
    slots::Expect("SYS_Geometry", value);
    // The iterator's getters follow the eight operations of
    // SYS_StdInterface and its destructor (slots 8 and 9).
    using I = SYS_GeomIterator;
    const slots::Table iterator = {
        SLOT(&I::GetObjectType, 10),       SLOT(&I::GetPointValue, 11),
        SLOT(&I::GetDoublePointValue, 12), SLOT(&I::GetLocationValue, 13),
        SLOT(&I::GetCircleValue, 14),      SLOT(&I::GetSegmentValue, 15),
        SLOT(&I::GetArcValue, 16),         SLOT(&I::GetRectangleValue, 17),
    };
    slots::Expect("SYS_GeomIterator", iterator);
}

} // namespace
