// demo_units.h - human-readable units for keel-demo output.
//
// keel stores coordinates as signed 32-bit database units and angles as
// 32-bit angle units.  The demo prints them next to mils, millimetres and
// degrees so that a reader can check every number by eye:
//     DemoPoint(19050000, 9525000)  -> "(19050000, 9525000) = (1000, 500) mil"
//     DemoDeg(486000000)            -> "270 deg"
// Each helper returns a std::string; print it with .c_str().
#ifndef KEEL_DEMO_UNITS_H
#define KEEL_DEMO_UNITS_H

#include <cstdio>
#include <string>

// Database units per mil and per millimetre, angle units per degree.
constexpr long kDemoDbuPerMil = 19050;
constexpr long kDemoDbuPerMm = 750000;
constexpr long kDemoUnitsPerDegree = 1800000;

// A plain decimal with at most `decimals` places and no trailing zeros:
// 1000, 24.384, -0.5.
inline std::string DemoDecimal(double v, int decimals = 3) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, v);
    std::string s(text);
    if (s.find('.') != std::string::npos) {
        s.erase(s.find_last_not_of('0') + 1);
        if (s.back() == '.') s.pop_back();
    }
    if (s == "-0") s = "0";
    return s;
}

// A length or coordinate in mils or millimetres, without the unit name.
inline std::string DemoMil(long dbu) { return DemoDecimal(double(dbu) / kDemoDbuPerMil); }
inline std::string DemoMm(long dbu) { return DemoDecimal(double(dbu) / kDemoDbuPerMm); }

// An angle in degrees, with its unit: "90 deg".
inline std::string DemoDeg(long units) {
    return DemoDecimal(double(units) / kDemoUnitsPerDegree) + " deg";
}

// "(x, y) = (x, y) mil", database units first.
inline std::string DemoPoint(long x, long y) {
    return "(" + std::to_string(x) + ", " + std::to_string(y) + ") = (" + DemoMil(x) + ", " +
           DemoMil(y) + ") mil";
}

// "(x, y) mil" alone, for a point whose database units were shown already.
inline std::string DemoPointMil(long x, long y) {
    return "(" + DemoMil(x) + ", " + DemoMil(y) + ") mil";
}

#endif // KEEL_DEMO_UNITS_H
