// demo_convert.cpp - keel-demo step: database units shown in the user's unit
// and typed text parsed back, with the inputs that are refused and why.
#include "demo_steps.h"
#include "demo_units.h"
#include <keel/SCC_Variant.h>
#include <keel/SYS_Convert.h>

#include <cstdio>
#include <string>

namespace {

const long mil = kDemoDbuPerMil;

// "Inches" or, for the unit without a text, what it is.
std::string UnitName(SYS_UnitType u) {
    const std::string name = SYS_Convert::GetUnitName(u);
    return name.empty() ? "(unit " + std::to_string(u) + ", centimetres: no name in the texts)"
                        : name;
}

// One parse: the call, then the database units or the refusal and its cause.
void Parsed(const char* call, const char* text, int ok, long b, const std::string& why) {
    const std::string quoted = std::string("\"") + text + "\"";
    if (ok)
        std::printf("    %-11s %-10s -> %ld%s\n", call, quoted.c_str(), b, why.c_str());
    else
        std::printf("    %-11s %-10s -> refused: %s\n", call, quoted.c_str(), why.c_str());
}

} // namespace

KEEL_DEMO_STEP(70, "Units: database units as the user reads and types them") {
    DemoIntro("Every coordinate a user reads or types goes through SYS_Convert: it shows database "
              "units in the user's unit at that unit's precision, with trailing zeros trimmed, "
              "and parses typed text back, refusing anything that is not one number that fits.");

    const long b = 1000 * mil;
    std::printf("  %ld database units in every unit (default precision, zeros trimmed):\n", b);
    SYS_Convert::UnitTypeObj units;
    std::string line;
    for (units.GetFirst(nullptr); units.IsValid(); units.GetNext()) {
        const SYS_Convert c(units.GetType());
        const std::string item = UnitName(units.GetType()) + " " + c.Base2Str(b).GetString();
        if (line.size() + item.size() > 86) {
            std::printf("    %s\n", line.c_str());
            line.clear();
        }
        line += (line.empty() ? "" : ", ") + item;
    }
    std::printf("    %s\n", line.c_str());

    SYS_Convert mils(SYS_UnitMils, SYS_Point(250 * mil, 100 * mil));
    const SYS_Point pad(1000 * mil, 500 * mil);
    std::printf("  pad %s from origin %s: Point2String %s\n", DemoPoint(pad.x, pad.y).c_str(),
                DemoPointMil(mils.GetOrigin().x, mils.GetOrigin().y).c_str(),
                mils.Point2String(pad).GetString());
    const long turn = 81900600; // 45.500333 degrees
    std::printf("  angle %ld units: Angle2Str %s deg (3 decimals, zeros trimmed)\n", turn,
                mils.Angle2Str(turn).GetString());

    std::printf("  typed text back to database units (mils unless said):\n");
    long v = 0;
    int ok = mils.Str2Base("12.5", &v);
    Parsed("Str2Base", "12.5", ok, v, "");
    ok = mils.Str2Base("-0.00002", &v);
    Parsed("Str2Base", "-0.00002", ok, v,
           " (" + DemoDecimal(mils.User2BaseDouble(-0.00002)) + " rounded half away from zero)");
    const SYS_Convert inches(SYS_UnitInches);
    ok = inches.Str2Base("56", &v);
    Parsed("Str2Base", "56", ok, v, " in inches: the largest coordinate accepted");
    ok = inches.Str2Base("56.0001", &v);
    Parsed("Str2Base", "56.0001", ok, v,
           "in inches " + std::to_string(inches.User2Base(56.0001)) + " units, beyond " +
               std::to_string(SYS_CONVERT_LIMIT));
    ok = mils.Str2Base("1 ", &v);
    Parsed("Str2Base", "1 ", ok, v, "the trailing blank: the number must be the whole text");
    ok = mils.Str2Measure("-1", &v);
    Parsed("Str2Measure", "-1", ok, v, "a length is never negative");
    double d = 0;
    const int isDouble = SYS_Convert::Str2Double("1e400", &d);
    ok = mils.Str2Measure("1e400", &v);
    Parsed("Str2Measure", "1e400", ok, v,
           std::string("beyond the range of a double (Str2Double ") +
               (isDouble ? "accepts" : "refuses") + " it)");
    ok = SYS_Convert::Str2Angle("90", &v);
    Parsed("Str2Angle", "90", ok, v, " angle units, degrees * 1,800,000");

    SCC_Variant typed("12.5");
    const int valid = typed.Validate("[0,10)", nullptr);
    std::printf("  SCC_Variant(\"12.5\").Validate(\"[0,10)\") = %d, the variant now holds:\n",
                valid);
    std::printf("    \"%s\"\n", static_cast<SYS_StringBase>(typed).GetString());
}
