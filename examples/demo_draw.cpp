// demo_draw.cpp - keel-demo step: rubber-band feedback.  A small board is
// drawn into the raster area; a selection box dragged across it is recorded
// with CDynamic and replayed in exclusive-or, one PNG per frame.
#include "demo_steps.h"
#include "demo_units.h"
#include "RasterArea.h"
#include <keel/SCC_Variant.h>
#include <keel/UI_Dynamic.h>
#include <keel/UI_PaletteColorConvertor.h>

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

const long mil = kDemoDbuPerMil;
// Palette indices of the raster area's default palette.
enum Colour { kWhite = 1, kBoard = 11, kCopper = 13 };

SYS_Point Mil(long x, long y) { return SYS_Point(x * mil, y * mil); }
SYS_Box MilBox(long l, long lo, long r, long up) { return SYS_Box(Mil(l, lo), Mil(r, up)); }

// The frames go to $KEEL_DEMO_DIR when it is set, else to a new temporary
// directory, so that a run leaves the checkout as it was.
std::string FrameDirectory() {
    if (const char* dir = std::getenv("KEEL_DEMO_DIR")) {
        if (mkdir(dir, 0777) != 0 && errno != EEXIST) return "";
        return dir;
    }
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/keel-demo-XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    return mkdtemp(name.data()) ? name.data() : "";
}

// A two-layer board seen from the top: outline, two pads joined by a trace,
// a via, and the silkscreen outline of a part.
void DrawBoard(RasterArea& area) {
    area.FillRect(MilBox(0, 0, 2000, 1250), kBoard);
    area.PenColor(kCopper);
    area.FastPaintOval(MilBox(200, 150, 320, 270));
    area.FastPaintOval(MilBox(1650, 950, 1770, 1070));
    area.DrawLine(Mil(260, 210), Mil(900, 210), 25 * mil, kCopper);
    area.DrawLine(Mil(900, 210), Mil(1710, 1010), 25 * mil, kCopper);
    area.FastFrameOval(MilBox(870, 180, 930, 240));
    area.PenColor(kWhite);
    SYS_Point part[] = {Mil(500, 600), Mil(1100, 600), Mil(1100, 900), Mil(500, 900),
                        Mil(500, 600)};
    const int counts[] = {5};
    area.FastPolyPolyline(part, counts, 1);
    area.FastFrameArc(MilBox(760, 840, 840, 960), Mil(840, 900), Mil(760, 900));
}

} // namespace

KEEL_DEMO_STEP(90, "Drawing: rubber-band feedback recorded and replayed in XOR") {
    DemoIntro("A tool shows feedback (here a selection box dragged across a board) by drawing it "
              "into a CDynamic. The recorder keeps the operations as coded 32-bit records and "
              "replays them into the real draw area. The box and the oval used here replay in "
              "exclusive-or, so the same replay both shows and erases the feedback and the board "
              "underneath never needs redrawing (the Fast... operations replay in the area's own "
              "pen mode instead). "
              "The draw area is a host class; this one paints into a bitmap and writes PNG.");

    const std::string dir = FrameDirectory();
    if (dir.empty()) {
        std::printf("  no directory for the frames: %s\n", std::strerror(errno));
        return;
    }
    RasterArea area(384, 256, MilBox(-100, -100, 2100, 1350));
    DrawBoard(area);
    const std::vector<uint32_t> board = area.Pixels();
    std::printf("  board 2000 x 1250 mil in a %d x %d bitmap, %s mil per pixel\n", area.Width(),
                area.Height(), DemoMil(static_cast<long>(area.GetPixelSize())).c_str());

    UI_DrawArea::SetMainDrawArea(&area);
    UI_PaletteColorConvertor palette;
    const long copper = palette.Convert(SCC_Variant(kCopper), 0);
    std::printf("  palette index %d shown through UI_PaletteColorConvertor: #%06lX\n", kCopper,
                copper);

    CDynamic band(&area);
    const SYS_Point anchor = Mil(400, 300);
    const int frames = 4;
    std::printf("  frames written to %s:\n", dir.c_str());
    for (int f = 1; f <= frames; ++f) {
        const SYS_Point cursor = Mil(400 + 1200 * f / frames, 300 + 800 * f / frames);
        band.StartBatchDraw(); // erases the previous box (its replay), drops it
        band.PenColor(kWhite);
        band.DrawXorBox(anchor, cursor);
        band.DrawXorOval(SYS_Box(cursor - 30 * mil, cursor + 30 * mil));
        band.EndBatchDraw(); // the area replays the new records at once
        const std::string file = dir + "/rubber-band-" + std::to_string(f) + ".png";
        std::string error;
        if (!area.WritePng(file, &error)) {
            std::printf("    %s\n", error.c_str());
            break;
        }
        std::printf("    %s: cursor %s, %d values recorded, dirty box %s to %s\n",
                    file.substr(dir.size() + 1).c_str(), DemoPointMil(cursor.x, cursor.y).c_str(),
                    band.GetRecordCount(),
                    DemoPointMil(band.m_DirtyBox.GetLeft(), band.m_DirtyBox.GetLower()).c_str(),
                    DemoPointMil(band.m_DirtyBox.GetRight(), band.m_DirtyBox.GetUpper()).c_str());
    }
    band.Clear(); // one more replay takes the last box off
    std::printf("  after Clear the bitmap equals the bare board bit for bit: %s\n",
                area.Pixels() == board ? "yes" : "no");
    UI_DrawArea::SetMainDrawArea(nullptr);
}
