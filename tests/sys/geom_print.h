// Short names, readable GoogleTest messages and a helper for geometry tests.
#ifndef KEEL_TESTS_GEOM_PRINT_H
#define KEEL_TESTS_GEOM_PRINT_H
#include <keel/SYS_Geom.h>
#include <ostream>
using P = SYS_Point;
using B = SYS_Box;
inline void PrintTo(const P& p, std::ostream* o) { *o << '(' << p.x << ',' << p.y << ')'; }
inline void PrintTo(const B& b, std::ostream* o) {
    PrintTo(b.GetLowerLeft(), o), PrintTo(b.GetUpperRight(), o);
}
// The value after change(value), e.g. After(P(5, -5), [](P& p) { p.Scale(0.5); }).
template <class T, class F> T After(T value, F change) { return change(value), value; }
#endif // KEEL_TESTS_GEOM_PRINT_H
