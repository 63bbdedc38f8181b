// demo_geom.cpp - keel-demo step: placing a part with a rotation and mirror.
#include "demo_steps.h"
#include "SYS_Curve.h"
#include "SYS_Geom.h"
#include "SYS_Transform.h"

#include <cstdio>

namespace {

void PrintPoint(const char* label, const SYS_Point& p) {
    std::printf("%-26s: (%ld, %ld)\n", label, p.GetX(), p.GetY());
}

void PrintBox(const char* label, const SYS_Box& b) {
    std::printf("%-26s: (%ld, %ld)-(%ld, %ld)\n", label, b.GetLeft(), b.GetLower(), b.GetRight(),
                b.GetUpper());
}

} // namespace

KEEL_DEMO_STEP(60, "Geometry") {
    // A pad outline in the part's own frame, in database units (1 mil = 19,050).
    const long mil = 19050;
    const SYS_Point outline[] = {{0, 0}, {60 * mil, 0}, {60 * mil, 40 * mil}, {0, 40 * mil}};
    const SYS_Arc notch(SYS_Point(20 * mil, 40 * mil), SYS_Point(40 * mil, 40 * mil),
                        SYS_Point(30 * mil, 40 * mil), -10 * mil);

    // Placed at (1000, 500) mil, mirrored to the bottom side and turned by
    // 90 degrees: part coordinates are already relative to the part's
    // origin (no move in), mirrored first, then moved out to the place.
    const SYS_Position place(1000 * mil, 500 * mil, 90 * SYS_DEGREE, 1);
    SYS_Transform toBoard(place, 1, 1, 0);
    std::printf("placement                 : (%ld, %ld) at %ld deg, mirror %d\n", place.GetX(),
                place.GetY(), place.GetOrientation() / SYS_DEGREE, place.GetMirror());
    std::printf("transform                 : rotation %ld, mirror %d, matrix [%g %g; %g %g]\n",
                toBoard.GetOrientation(), toBoard.GetMirror(), toBoard.a, toBoard.b, toBoard.d,
                toBoard.e);

    SYS_Box bounds = SYS_Box::Null();
    for (const SYS_Point& corner : outline) {
        SYS_Point p = corner;
        p.Transform(toBoard);
        PrintPoint("corner on the board", p);
        bounds.Combine(SYS_Box(p, p));
    }
    SYS_Arc arc = notch;
    arc.Transform(toBoard);
    PrintPoint("notch center", arc.GetCenter());
    std::printf("notch sweep               : %ld before, %ld after (radius kept: %ld)\n",
                notch.GetSizeAngle(), arc.GetSizeAngle(), arc.GetRadius());
    long start = notch.GetStartAngle(), sweep = notch.GetSizeAngle();
    toBoard.Convert(start, sweep);
    std::printf("sweep converted           : %ld\n", sweep);
    PrintBox("outline bounds", bounds);
    SYS_Box image(0, 0, 60 * mil, 40 * mil);
    image.Transform(toBoard);
    PrintBox("outline box image", image);

    // Back from the board into the part's frame.
    SYS_Transform back;
    toBoard.SetRConv(back);
    SYS_Point corner = outline[2];
    corner.Transform(toBoard);
    corner.Transform(back);
    PrintPoint("corner back in the part", corner);
}
