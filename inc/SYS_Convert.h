// SYS_Convert.h - database units to the user's units and back: numbers,
// coordinates, lengths and angles as text.
//
// Database units are fixed: 19,050 per mil, 750,000 per millimetre; angles
// are 1,800,000 units per degree.  A SYS_Convert is a plain value that a host
// keeps per view or document: the current unit, an origin that coordinates
// are shown relative to, a precision per unit, an angle precision and a
// zero-trimming switch.  The seven units and their factors live in one
// process-wide table, built (with display names from the resource texts) by
// the first SYS_Convert constructed; a unit value outside 0..6 selects a
// fallback entry with factor 1, precision 1 and no name.
//
// Parsers return 1 on success and 0 on failure and take the whole text: a
// trailing blank fails, an empty text is 0.  User2Base rounds half away from
// zero and answers the overflow marker SYS_CONVERT_OVERFLOW when the value
// does not fit; Str2Angle truncates instead.
//
// Costs: a conversion is a multiplication or division; formatting and
// parsing are one snprintf or strtod; nothing allocates except the
// SYS_StringBase results.
#ifndef SYS_CONVERT_H
#define SYS_CONVERT_H

#include "SYS_Geom.h"
#include "SYS_StdInterface.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <cstdint>

enum SYS_UnitType : int {
    SYS_UnitMils = 0,        // "Mils", 19050 database units each
    SYS_UnitMetric = 1,      // millimetres, "Metric", 750000
    SYS_UnitInches = 2,      // "Inches", 19050000
    SYS_UnitMicron = 3,      // "Micron", 750
    SYS_UnitPdf = 4,         // 1/72 inch, "PDF units", 264583 (not the exact quotient)
    SYS_UnitAsciiPcb = 5,    // "Basic ASCII PCB units", 0.5
    SYS_UnitCentimeters = 6, // no name in the resource texts, 7500000
};

// The number of units in the table (the fallback entry not counted).
constexpr int SYS_UNIT_COUNT = 7;
// What User2Base answers for a value that does not fit 32 bits.
constexpr long SYS_CONVERT_OVERFLOW = -2147483647L - 1;
// Str2Base accepts results within -limit..+limit, both included.
constexpr long SYS_CONVERT_LIMIT = 1066800000;

class KEEL_API SYS_Convert {
public:
    SYS_UnitType unitType;
    SYS_Point origin;
    int zeroTrim;
    int precision[SYS_UNIT_COUNT];
    int anglePrecision;

    // Lists the units for a user interface: handles 1 to 7 stand for units
    // 0 to 6.
    class KEEL_API UnitTypeObj : public SYS_StdInterface {
    public:
        UnitTypeObj() : SYS_StdInterface(SYS_UNIT_COUNT) {}
        UnitTypeObj(const UnitTypeObj& other) = default;
        UnitTypeObj& operator=(const UnitTypeObj& other) = default;
        // The unit at the current handle; the fallback entry (no name, -1)
        // at handle 0.
        const char* GetName() const;
        SYS_UnitType GetType();
    };

    SYS_Convert();
    SYS_Convert(SYS_UnitType u);
    SYS_Convert(const SYS_Point& o);
    SYS_Convert(SYS_UnitType u, const SYS_Point& o);
    SYS_Convert(const SYS_Convert& other) = default;
    SYS_Convert& operator=(const SYS_Convert& other) = default;

    // Unit and origin, zero-trim on, the table's default precisions, angle
    // precision 3.  The first call of the process builds the unit table.
    void SetData(SYS_UnitType u, const SYS_Point& o);

    SYS_UnitType GetUnitType() const { return unitType; }
    void SetUnitType(SYS_UnitType u) { unitType = u; }
    SYS_Point GetOrigin() const { return origin; }
    void SetOrigin(const SYS_Point& o) { origin = o; }
    // The precision of the current unit.  For a unit outside 0..6 the
    // getter answers the fallback's 1 and the setter changes nothing.
    int GetUnitPrecision() const;
    void SetUnitPrecision(int p);
    int GetAnglePrecision() const { return anglePrecision; }
    void SetAnglePrecision(int p) { anglePrecision = p; }
    int IsZeroTrimMode() const { return zeroTrim; }
    void SetZeroTrimMode(int on) { zeroTrim = on; }
    // Display names; empty for a unit outside 0..6.
    const char* GetUnitName() const;
    static const char* GetUnitName(SYS_UnitType u);

    // v user units in database units, rounded half away from zero; the
    // overflow marker when |v| exceeds 2147483647 / factor (or v is NaN).
    long User2Base(double v) const;
    // v * factor, unrounded.
    double User2BaseDouble(double v) const;
    // b / factor (a long keeps its low 32 bits).
    double Base2User(long b) const;
    double Base2User(double b) const;

    // The whole of s as a number; *d is written in every case.
    static int Str2Double(const char* s, double* d);
    // The whole of s as a base-10 integer; *l is written in every case, and
    // a value beyond 32 bits fails with the nearest 32-bit limit.
    static int Str2Long(const char* s, long* l);
    // A number in the current unit, in database units within the limits;
    // *b is written only on success.
    int Str2Base(const char* s, long* b) const;
    // The same unrounded and without range check.
    int Str2Base(const char* s, double* b) const;
    // A length: fails for a negative number; the overflow marker is stored
    // as it is.
    int Str2Measure(const char* s, long* b) const;
    // Degrees to angle units, truncated toward zero.
    static int Str2Angle(const char* s, long* a);

    // Base2User(b) with "%.*f" and the unit's precision into buf (at most
    // size bytes), zero-trimmed when the mode is on; returns buf.
    const char* Base2Str(char* buf, unsigned int size, long b) const;
    const char* Base2Str(char* buf, unsigned int size, double b) const;
    SYS_StringBase Base2Str(long b) const;
    SYS_StringBase Base2Str(double b) const;
    SYS_StringBase Measure2String(long b) const;
    SYS_StringBase CoordX2String(long x) const;
    SYS_StringBase CoordY2String(long y) const;
    // "(x,y)" relative to the origin.
    SYS_StringBase Point2String(const SYS_Point& p) const;
    SYS_StringBase Measure2String(const SYS_StringBase& prefix, long b) const;
    SYS_StringBase CoordX2String(const SYS_StringBase& prefix, long x) const;
    SYS_StringBase CoordY2String(const SYS_StringBase& prefix, long y) const;
    SYS_StringBase Point2String(const SYS_StringBase& prefix, const SYS_Point& p) const;
    // Angle units as degrees with the angle precision.
    const char* Angle2Str(char* buf, unsigned int size, long a) const;
    SYS_StringBase Angle2Str(long a) const;
    // Drops the trailing zeros of a formatted number in place, and the point
    // when nothing follows it: 1.500 -> 1.5, 2.000 -> 2, 100 stays 100.  The
    // text is changed although it is passed as const.
    static void TrimStrNumber(const char* s);

    // The minimum routing grid, always 1, and alignment to it: the nearest
    // multiple, an exact half away from zero.
    long GetMinRoutingGrid() const { return 1; }
    long AlignToMinRoutingGrid(long v) const;
    SYS_Point AlignToMinRoutingGrid(SYS_Point p);
    int IsAlignedToMinRoutingGrid(long v) const;
    int IsAlignedToMinRoutingGrid(SYS_Point p) const;
};

#endif // SYS_CONVERT_H
