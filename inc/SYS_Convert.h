/// @file
/// Database units to the user's units and back: numbers, coordinates,
/// lengths and angles as text.
///
/// Database units are fixed: 19,050 per mil, 750,000 per millimetre; angles
/// are 1,800,000 units per degree.  A SYS_Convert is a plain value that a host
/// keeps per view or document: the current unit, an origin that coordinates
/// are shown relative to, a precision per unit, an angle precision and a
/// zero-trimming switch.  The seven units and their factors live in one
/// process-wide table, built (with display names from the resource texts)
/// on first use, normally by the first SYS_Convert constructed; a unit value
/// outside 0..6 selects a fallback entry with factor 1 (conversions become
/// the identity), precision 1 and no name.
///
/// Parsers return 1 on success and 0 on failure and take the whole text: a
/// trailing blank fails, an empty (or null) text is 0.  Numbers are decimal
/// only: hexadecimal, infinity and NaN texts fail.  User2Base rounds
/// half away from zero and answers the overflow marker SYS_CONVERT_OVERFLOW
/// when the value does not fit; Str2Angle truncates instead.  Coordinates and
/// angles are 32-bit quantities: a `long` argument keeps its low 32 bits.
///
/// Costs: a conversion is a multiplication or division; formatting and
/// parsing are one `snprintf` or `strtod` (after a scan of the text);
/// nothing allocates except the SYS_StringBase results.
#ifndef SYS_CONVERT_H
#define SYS_CONVERT_H

#include "SYS_Geom.h"
#include "SYS_StdInterface.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <cstdint>

/// The user's units.  Each has a display name from the resource texts, a
/// factor (database units per user unit) and a default number of decimals.
enum SYS_UnitType : int {
    SYS_UnitMils = 0,        ///< "Mils": 19050, 2 decimals
    SYS_UnitMetric = 1,      ///< millimetres, "Metric": 750000, 5 decimals
    SYS_UnitInches = 2,      ///< "Inches": 19050000, 5 decimals
    SYS_UnitMicron = 3,      ///< "Micron": 750, 2 decimals
    SYS_UnitPdf = 4,         ///< 1/72 inch, "PDF units": 264583 (not 19050000/72), 0 decimals
    SYS_UnitAsciiPcb = 5,    ///< "Basic ASCII PCB units": 0.5 (half a database unit), 2 decimals
    SYS_UnitCentimeters = 6, ///< no name (empty text): 7500000, 5 decimals
};

/// The number of units in the table (the fallback entry not counted).
constexpr int SYS_UNIT_COUNT = 7;
/// What User2Base answers for a value that does not fit 32 bits:
/// -2147483648.
constexpr long SYS_CONVERT_OVERFLOW = -2147483647L - 1;
/// Str2Base accepts results within -limit..+limit, both included
/// (1,066,800,000: 56 inches).
constexpr long SYS_CONVERT_LIMIT = 1066800000;

/// Converts between database units and text in the user's unit.
///
/// A plain value: copies are independent, and nothing is shared but the
/// process-wide unit table, which is built once (safely, even when two
/// threads get there at once) and only read after that.
class KEEL_API SYS_Convert {
public:
    /// The current unit; any value is stored, one outside 0..6 selects the
    /// fallback entry.
    SYS_UnitType unitType;
    /// The origin that CoordX2String, CoordY2String and Point2String show
    /// coordinates relative to.
    SYS_Point origin;
    /// Non-zero: formatted numbers lose their trailing zeros (TrimStrNumber).
    int zeroTrim;
    /// Decimals shown per unit, indexed by SYS_UnitType.
    int precision[SYS_UNIT_COUNT];
    /// Decimals shown for angles in degrees.
    int anglePrecision;

    /// Lists the units for a user interface: handles 1 to 7 stand for units
    /// 0 to 6.
    ///
    /// Walk it as any SYS_StdInterface:
    /// `for (u.GetFirst(nullptr); u.IsValid(); u.GetNext()) add(u.GetName(), u.GetType());`
    class KEEL_API UnitTypeObj : public SYS_StdInterface {
    public:
        /// A walker over the handles 1 to 7, at handle 0 (none) until
        /// GetFirst.
        UnitTypeObj() : SYS_StdInterface(SYS_UNIT_COUNT) {}
        /// Copies the handle state.
        UnitTypeObj(const UnitTypeObj& other) = default;
        /// Copies the handle state.
        UnitTypeObj& operator=(const UnitTypeObj& other) = default;
        /// The display name of the unit at the current handle; empty at
        /// handle 0 (or any handle outside 1..7).  The text belongs to the
        /// unit table and lives as long as the library is loaded.
        const char* GetName() const;
        /// The unit at the current handle; -1 (the fallback entry) at handle
        /// 0 (or any handle outside 1..7).
        SYS_UnitType GetType();
    };

    /// @name Construction

    /// A converter for the unit `u` (mils when not given) and the origin `o`
    /// ((0,0) when not given), set up as by SetData.
    ///@{
    SYS_Convert();
    SYS_Convert(SYS_UnitType u);
    SYS_Convert(const SYS_Point& o);
    SYS_Convert(SYS_UnitType u, const SYS_Point& o);
    ///@}
    /// Copies every setting.
    SYS_Convert(const SYS_Convert& other) = default;
    /// Copies every setting.
    SYS_Convert& operator=(const SYS_Convert& other) = default;

    /// Unit and origin, zero-trim on, the table's default precisions, angle
    /// precision 3; every earlier setting is replaced.  The first use of the
    /// process builds the unit table.
    void SetData(SYS_UnitType u, const SYS_Point& o);

    /// The current unit.
    SYS_UnitType GetUnitType() const { return unitType; }
    /// Sets the current unit, without validation (see unitType).
    void SetUnitType(SYS_UnitType u) { unitType = u; }
    /// The origin of coordinates.
    SYS_Point GetOrigin() const { return origin; }
    /// Sets the origin of coordinates.
    void SetOrigin(const SYS_Point& o) { origin = o; }
    /// @name Unit precision

    /// The decimals of the current unit.  For a unit outside 0..6 the getter
    /// answers the fallback's 1 and the setter changes nothing.
    ///@{
    int GetUnitPrecision() const;
    void SetUnitPrecision(int p);
    ///@}
    /// The decimals of angles.
    int GetAnglePrecision() const { return anglePrecision; }
    /// Sets the decimals of angles.
    void SetAnglePrecision(int p) { anglePrecision = p; }
    /// Non-zero when formatted numbers lose their trailing zeros.
    int IsZeroTrimMode() const { return zeroTrim; }
    /// Turns zero-trimming on (non-zero) or off (0).
    void SetZeroTrimMode(int on) { zeroTrim = on; }
    /// @name Unit names

    /// The display name of the current unit, or of `u`; empty for a unit
    /// outside 0..6 and for SYS_UnitCentimeters.  The text belongs to the unit
    /// table and lives as long as the library is loaded.
    ///@{
    const char* GetUnitName() const;
    static const char* GetUnitName(SYS_UnitType u);
    ///@}

    /// `v` user units in database units, rounded half away from zero; the
    /// overflow marker SYS_CONVERT_OVERFLOW when |v| exceeds
    /// 2147483647 / factor (or v is NaN).
    long User2Base(double v) const;
    /// `v` × factor, unrounded and unchecked.
    double User2BaseDouble(double v) const;
    /// @name Database units to user units

    /// `b` / factor (a `long` keeps its low 32 bits).
    ///@{
    double Base2User(long b) const;
    double Base2User(double b) const;
    ///@}

    /// The whole of `s` as a decimal number: leading white space, an optional
    /// sign, digits with an optional decimal point (".5" and "5." count) and
    /// an optional exponent ("-2e3", "1.5E-2").  0 when characters are left
    /// over (a trailing blank, "1e"), for the other forms the C library reads
    /// ("0x10", "0x1p-2", "inf", "nan", which are refused, not converted), or
    /// when the value is too large or too small for a double ("1e400",
    /// "1e-400").  An empty text is 0 with success; a blank one fails.  `*d`
    /// is written in every case, with the decimal number that starts the
    /// text, or 0 when none does ("12x" gives 12, "0x10" and "inf" give 0).
    static int Str2Double(const char* s, double* d);
    /// The whole of `s` as a base-10 integer; `*l` is written in every case,
    /// and a value beyond 32 bits fails with the nearest 32-bit limit.
    static int Str2Long(const char* s, long* l);
    /// A number in the current unit, in database units: Str2Double, then
    /// User2Base.  Fails when the result lies outside ±SYS_CONVERT_LIMIT
    /// (the overflow marker included): in inches "56" passes and "56.0001"
    /// fails.  `*b` is written only on success.
    int Str2Base(const char* s, long* b) const;
    /// The same unrounded (User2BaseDouble) and without range check; `*b` is
    /// written only on success.
    int Str2Base(const char* s, double* b) const;
    /// A length: as Str2Base, but a negative number fails and there is no
    /// range check, so a value too large is stored as the overflow marker
    /// with success ("1e300" gives 1 and SYS_CONVERT_OVERFLOW).  `*b` is
    /// written only on success.
    int Str2Measure(const char* s, long* b) const;
    /// Degrees to angle units (× 1,800,000), truncated toward zero where
    /// User2Base rounds: "90" gives 162,000,000, "0.0000001" gives 0.  A
    /// value beyond the 32-bit range (about ±1193 degrees) gives
    /// -2147483648 with success.  `*a` is written only on success.
    static int Str2Angle(const char* s, long* a);

    /// @name Formatting into a buffer

    /// Base2User(b) with `"%.*f"` and the unit's precision into `buf`, cut to
    /// `size` bytes with its NUL, then zero-trimmed when the mode is on;
    /// returns `buf`.  A null `buf` or a `size` of 0 writes nothing.  A value
    /// that rounds to zero keeps its sign: -1 in mils gives "-0".
    ///@{
    const char* Base2Str(char* buf, unsigned int size, long b) const;
    const char* Base2Str(char* buf, unsigned int size, double b) const;
    ///@}
    /// @name Formatting into a string

    /// As the buffer forms, through a 512-byte buffer: in mils with 2
    /// decimals and zero-trim on, 19050 gives "1" and 1 gives "0"; with
    /// zero-trim off, "0.00".
    ///@{
    SYS_StringBase Base2Str(long b) const;
    SYS_StringBase Base2Str(double b) const;
    ///@}
    /// A length: Base2Str(b).
    SYS_StringBase Measure2String(long b) const;
    /// @name Coordinates

    /// Base2Str of the coordinate less the origin's x (or y).
    ///@{
    SYS_StringBase CoordX2String(long x) const;
    SYS_StringBase CoordY2String(long y) const;
    ///@}
    /// "(x,y)" relative to the origin: (19050, 38100) in mils gives "(1,2)".
    SYS_StringBase Point2String(const SYS_Point& p) const;
    /// @name With a prefix

    /// `prefix` followed by the text of the form without prefix.
    ///@{
    SYS_StringBase Measure2String(const SYS_StringBase& prefix, long b) const;
    SYS_StringBase CoordX2String(const SYS_StringBase& prefix, long x) const;
    SYS_StringBase CoordY2String(const SYS_StringBase& prefix, long y) const;
    SYS_StringBase Point2String(const SYS_StringBase& prefix, const SYS_Point& p) const;
    ///@}
    /// @name Angles

    /// Angle units as degrees with the angle precision, zero-trimmed when the
    /// mode is on (162,000,000 gives "90", or "90.000" untrimmed).  The buffer
    /// form writes into `buf` as Base2Str does and returns it; the other goes
    /// through a 512-byte buffer.
    ///@{
    const char* Angle2Str(char* buf, unsigned int size, long a) const;
    SYS_StringBase Angle2Str(long a) const;
    ///@}
    /// Drops the trailing zeros of a formatted number in place, and the point
    /// when nothing follows it: 1.500 -> 1.5, 2.000 -> 2, 0.0 -> 0, and 100
    /// (no point) stays 100.  The text is changed although it is passed as
    /// const: pass a writable buffer, never a literal.  Null is ignored.
    static void TrimStrNumber(const char* s);

    /// The minimum routing grid, always 1 for now; alignment to it is then
    /// the identity, but callers should still align where a grid applies.
    long GetMinRoutingGrid() const { return 1; }
    /// @name Grid alignment

    /// The value (each coordinate of the point) moved to the nearest multiple
    /// of the grid, an exact half away from zero.
    ///@{
    long AlignToMinRoutingGrid(long v) const;
    SYS_Point AlignToMinRoutingGrid(SYS_Point p);
    ///@}
    /// @name Grid test

    /// 1 when the value (both coordinates of the point) is a multiple of the
    /// grid, else 0.
    ///@{
    int IsAlignedToMinRoutingGrid(long v) const;
    int IsAlignedToMinRoutingGrid(SYS_Point p) const;
    ///@}
};

#endif // SYS_CONVERT_H
