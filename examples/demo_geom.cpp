// demo_geom.cpp - keel-demo step: placing a part on the board with a
// rotation and a mirror, and reading the result back.
#include "demo_steps.h"
#include "demo_units.h"
#include <keel/SYS_Curve.h>
#include <keel/SYS_Geom.h>
#include <keel/SYS_Transform.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace {

const long mil = kDemoDbuPerMil;

// A matrix entry for display: the cosine of 90 degrees comes out as 6e-17,
// which is 0 for every coordinate the library can hold.
double Shown(double v) { return std::fabs(v) < 1e-9 ? 0.0 : v; }

std::string Point(const SYS_Point& p) { return DemoPoint(p.GetX(), p.GetY()); }

std::string Box(const SYS_Box& b) {
    return "(" + DemoMil(b.GetLeft()) + ", " + DemoMil(b.GetLower()) + ")-(" +
           DemoMil(b.GetRight()) + ", " + DemoMil(b.GetUpper()) + ") mil, " + DemoMm(b.GetWidth()) +
           " x " + DemoMm(b.GetHeight()) + " mm";
}

// "+90 deg (counter-clockwise)" / "-90 deg (clockwise)".
std::string Sweep(long sweep) {
    return (sweep > 0 ? "+" : "") + DemoDeg(sweep) +
           (sweep < 0   ? " (clockwise)"
            : sweep > 0 ? " (counter-clockwise)"
                        : "");
}

} // namespace

KEEL_DEMO_STEP(60, "Geometry") {
    DemoIntro("Coordinates are signed 32-bit database units (19,050 per mil, 750,000 per mm) "
              "and angles 1,800,000 units per degree. A transform places a part, drawn in its "
              "own frame, on the board: turned, mirrored to the bottom side, moved into place.");

    // A 60 x 40 mil pad in the part's frame, and the 10 mil arc that rounds
    // off its upper right corner.
    struct Corner {
        const char* name;
        SYS_Point at;
    };
    const Corner outline[] = {{"lower left ", {0, 0}},
                              {"lower right", {60 * mil, 0}},
                              {"upper right", {60 * mil, 40 * mil}},
                              {"upper left ", {0, 40 * mil}}};
    const SYS_Arc rounding(SYS_Point(60 * mil, 30 * mil), SYS_Point(50 * mil, 40 * mil),
                           SYS_Point(50 * mil, 30 * mil), 10 * mil);

    // Bottom side: mirrored in x first, then turned, then moved to the place.
    // The outline is already relative to the part's origin: no move in.
    const SYS_Position place(1000 * mil, 500 * mil, 90 * SYS_DEGREE, 1);
    SYS_Transform toBoard(place, 1, 1, 0);
    std::printf("  placement %s, turned %s, %s\n", Point(place).c_str(),
                DemoDeg(place.GetOrientation()).c_str(),
                place.GetMirror() ? "mirrored (bottom side)" : "not mirrored");
    std::printf("  transform: matrix [%g %g; %g %g] (|entries| < 1e-9 shown as 0), offset %s\n",
                Shown(toBoard.a), Shown(toBoard.b), Shown(toBoard.d), Shown(toBoard.e),
                DemoPointMil(std::lround(toBoard.c), std::lround(toBoard.f)).c_str());
    std::printf(
        "    rotation %ld = %s, mirror %s. Not 90 deg: mirror-then-turn is one reflection,\n"
        "    about the line at %s, and a reflection stores twice its line's angle.\n",
        toBoard.GetOrientation(), DemoDeg(toBoard.GetOrientation()).c_str(),
        toBoard.GetMirror() ? "yes" : "no", DemoDeg(toBoard.GetOrientation() / 2).c_str());

    SYS_Box bounds = SYS_Box::Null();
    for (const Corner& c : outline) {
        SYS_Point p = c.at;
        p.Transform(toBoard);
        std::printf("  part %s %-16s -> board %s\n", c.name,
                    DemoPointMil(c.at.GetX(), c.at.GetY()).c_str(), Point(p).c_str());
        bounds.Combine(SYS_Box(p, p));
    }
    std::printf("  board bounds of the corners: %s\n", Box(bounds).c_str());
    SYS_Box image(0, 0, 60 * mil, 40 * mil);
    image.Transform(toBoard);
    if (image == bounds)
        std::printf("    SYS_Box::Transform of the part's box gives the same\n");
    else
        std::printf("    SYS_Box::Transform of the part's box gives %s\n", Box(image).c_str());

    // Arcs: a mirror reverses the turning direction, a rotation keeps it.
    std::printf("  corner arc around %s, radius %s mil: sweep %s\n",
                DemoPointMil(rounding.GetCenter().GetX(), rounding.GetCenter().GetY()).c_str(),
                DemoMil(rounding.GetRadius()).c_str(), Sweep(rounding.GetSizeAngle()).c_str());
    long start = rounding.GetStartAngle(), sweep = rounding.GetSizeAngle();
    toBoard.Convert(start, sweep);
    std::printf("    Convert(angle, sweep) -> %s: a mirror reverses the turning direction\n",
                Sweep(sweep).c_str());
    SYS_Arc arc = rounding;
    arc.Transform(toBoard);
    std::printf("    SYS_Arc::Transform moves the points, keeps the radius sign -> %s,\n",
                Sweep(arc.GetSizeAngle()).c_str());
    if (toBoard.GetMirror()) arc.SetRadius(-arc.GetRadius());
    std::printf("    the rest of the circle; a host negates the radius under a mirror -> %s\n",
                Sweep(arc.GetSizeAngle()).c_str());

    // Back from the board into the part's frame.
    SYS_Transform back;
    toBoard.SetRConv(back);
    SYS_Point corner = outline[2].at;
    corner.Transform(toBoard);
    corner.Transform(back);
    std::printf("  upper right corner back through the inverse: %s\n", Point(corner).c_str());
}
