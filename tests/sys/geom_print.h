// geom_print.h - readable GoogleTest messages for points and boxes.
#ifndef KEEL_TESTS_GEOM_PRINT_H
#define KEEL_TESTS_GEOM_PRINT_H

#include "SYS_Geom.h"

#include <ostream>

inline void PrintTo(const SYS_Point& p, std::ostream* os) {
    *os << "(" << p.x << ", " << p.y << ")";
}
inline void PrintTo(const SYS_Box& b, std::ostream* os) {
    *os << "(" << b.GetLeft() << ", " << b.GetLower() << ", " << b.GetRight() << ", "
        << b.GetUpper() << ")";
}

#endif // KEEL_TESTS_GEOM_PRINT_H
