// RasterArea.cpp - the raster draw area: primitives rasterised into pixel
// sets, painted once per pixel in copy or exclusive-or mode, PNG output.
#include "RasterArea.h"

#include <keel/UI_Dynamic.h>

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

const double kPi = 3.14159265358979323846;
// Character cell of DrawXorText before any TextSize, in pixels.
const int kDefaultCharWidth = 6, kDefaultCharHeight = 9;

// The default palette: black, then bright and dark colours.
const uint32_t kDefaultPalette[RasterArea::kPaletteSize] = {
    0x000000, 0xFFFFFF, 0xFF4040, 0x40FF40, 0x4080FF, 0xFFFF40, 0xFF40FF, 0x40FFFF,
    0x808080, 0xC0C0C0, 0x802020, 0x1E5A2A, 0x202080, 0xC89632, 0x802080, 0x208080,
};

long RoundToLong(double v) {
    const double limit = 1.0e15;
    return static_cast<long>(std::lround(std::max(-limit, std::min(limit, v))));
}

int RoundToInt(double v) {
    return static_cast<int>(std::lround(std::max(-2147483647.0, std::min(2147483647.0, v))));
}

// An angle brought into [0, 2 pi).
double Turn(double a) {
    a = std::fmod(a, 2 * kPi);
    return a < 0 ? a + 2 * kPi : a;
}

// The direction of (dx, dy) in [0, 2 pi).
double Angle(double dx, double dy) { return Turn(std::atan2(dy, dx)); }

} // namespace

RasterArea::RasterArea(int width, int height, const SYS_Box& world)
    : m_Width(std::max(1, width)), m_Height(std::max(1, height)), m_World(world),
      m_Pixels(static_cast<size_t>(m_Width) * m_Height, kDefaultPalette[0]) {
    m_World.Normalize();
    const double dx = std::max(1.0, double(m_World.GetRight()) - m_World.GetLeft());
    const double dy = std::max(1.0, double(m_World.GetUpper()) - m_World.GetLower());
    m_Scale = std::min((m_Width - 1) / dx, (m_Height - 1) / dy);
    std::memcpy(m_Palette, kDefaultPalette, sizeof m_Palette);
}

RasterArea::~RasterArea() { m_Redraw.Notify(REDRAW_AREA_GONE, nullptr); }

void RasterArea::SetPaletteColor(int index, uint32_t rgb) {
    if (index >= 0 && index < kPaletteSize) m_Palette[index] = rgb & 0xFFFFFF;
}

long RasterArea::GetCurrentPaletteColorRGB(int index) const {
    return m_Palette[((index % kPaletteSize) + kPaletteSize) % kPaletteSize];
}

bool RasterArea::WritePng(const std::string& path, std::string* error) const {
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) {
        if (error) *error = path + ": " + std::strerror(errno);
        return false;
    }
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    std::vector<png_byte> row(static_cast<size_t>(m_Width) * 3);
    bool ok = png && info;
    if (ok && setjmp(png_jmpbuf(png))) ok = false;
    if (ok) {
        png_init_io(png, file);
        png_set_IHDR(png, info, m_Width, m_Height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        for (int y = 0; y < m_Height; ++y) {
            const uint32_t* in = &m_Pixels[static_cast<size_t>(y) * m_Width];
            for (int x = 0; x < m_Width; ++x) {
                row[3 * x] = static_cast<png_byte>(in[x] >> 16);
                row[3 * x + 1] = static_cast<png_byte>(in[x] >> 8);
                row[3 * x + 2] = static_cast<png_byte>(in[x]);
            }
            png_write_row(png, row.data());
        }
        png_write_end(png, nullptr);
    }
    png_destroy_write_struct(&png, &info);
    if (std::fclose(file) != 0) ok = false;
    if (!ok && error) *error = path + ": the PNG could not be written";
    return ok;
}

int RasterArea::Scale2ScreenX(long length) const { return RoundToInt(length * m_Scale); }
int RasterArea::Scale2ScreenY(long length) const { return RoundToInt(length * m_Scale); }
long RasterArea::Scale2WorldX(int length) const { return RoundToLong(length / m_Scale); }
long RasterArea::Scale2WorldY(int length) const { return RoundToLong(length / m_Scale); }
double RasterArea::GetPixelSize() { return 1.0 / m_Scale; }

SYS_Point RasterArea::World2Screen(const SYS_Point& p) {
    const Pixel q = ToPixel(p);
    return SYS_Point(RoundToInt(q.x), RoundToInt(q.y));
}

SYS_Box RasterArea::World2Screen(const SYS_Box& b) {
    return SYS_Box(World2Screen(b.lowerLeft), World2Screen(b.upperRight));
}

void RasterArea::RegisterRedrawHook(SCC_EventHook<RedrawBlock>* hook) {
    if (hook) hook->Attach(&m_Redraw);
}

void RasterArea::InstallDynamic(CDynamic* dynamic) { m_Redraw.Append(dynamic); }

// The bitmap is the screen: the old content is erased and the new shown at
// once, both by the recorder's exclusive-or replay.  The old content is
// taken to be on the bitmap, as it is in the batch cycle.
void RasterArea::RedrawDynamic(CDynamic* dynamic, SYS_Box* dirty, int report) {
    if (!dynamic) return;
    RedrawBlock block{dirty ? *dirty : SYS_Box()};
    dynamic->OnNotification(report == DYNAMIC_OLD ? REDRAW_ERASE : REDRAW_SHOW, &block);
}

void RasterArea::TextSize(int width, int height, const char*) {
    m_TextWidth = width;
    m_TextHeight = height;
}

void RasterArea::EraseRect(SYS_Box b) {
    AddRect(b, true);
    Paint(m_BackColor, false);
}

void RasterArea::FillRect(SYS_Box b, int fill) {
    AddRect(b, true);
    Paint(fill, m_PenMode == PEN_XOR);
}

void RasterArea::DrawXorBox(SYS_Box b) {
    AddRect(b, false);
    Paint(m_PenColor, true);
}

void RasterArea::DrawXorBox(SYS_Point p1, SYS_Point p2) { DrawXorBox(SYS_Box(p1, p2)); }

// Flag 0 only measures: the recorder asks for the box that way while it
// records, and draws with flag 1 when it replays.
SYS_Box RasterArea::DrawXorText(const char* text, int, int, long x, long y, int flag) {
    const long n = text ? static_cast<long>(std::strlen(text)) : 0;
    const long w = m_TextWidth > 0 ? m_TextWidth : Scale2WorldX(kDefaultCharWidth);
    const long h = m_TextHeight > 0 ? m_TextHeight : Scale2WorldY(kDefaultCharHeight);
    const SYS_Box box(x, y, x + n * w, y + h);
    if (flag == 0) return box;
    AddRect(box, false);
    Paint(m_PenColor, true);
    return box;
}

SYS_Box RasterArea::DrawXorText(const char* text, int a, int b, SYS_Point p, int flag) {
    return DrawXorText(text, a, b, p.GetX(), p.GetY(), flag);
}

void RasterArea::FastLineTo(const SYS_Point& p) {
    AddLine(ToPixel(m_Pen), ToPixel(p), PixelWidth(m_PenSize));
    Paint(m_PenColor, m_PenMode == PEN_XOR);
    m_Pen = p;
}

void RasterArea::FastPaintOval(SYS_Box b) {
    AddOval(b, true);
    Paint(m_PenColor, m_PenMode == PEN_XOR);
}

void RasterArea::FastFrameOval(const SYS_Box& b) {
    AddOval(b, false);
    Paint(m_PenColor, m_PenMode == PEN_XOR);
}

// The part of the oval's outline from the start point's direction
// anticlockwise (world y up) to the end point's; the same directions give
// the whole outline.
void RasterArea::FastFrameArc(const SYS_Box& b, const SYS_Point& start, const SYS_Point& end) {
    AddOval(b, false);
    const Pixel ll = ToPixel(b.lowerLeft), ur = ToPixel(b.upperRight);
    const double cx = (ll.x + ur.x) / 2, cy = (ll.y + ur.y) / 2;
    const double rx = std::max(0.5, std::fabs(ur.x - ll.x) / 2);
    const double ry = std::max(0.5, std::fabs(ur.y - ll.y) / 2);
    auto direction = [&](double x, double y) { return Angle((x - cx) / rx, (cy - y) / ry); };
    const Pixel s = ToPixel(start), e = ToPixel(end);
    const double from = direction(s.x, s.y);
    const double sweep = Turn(direction(e.x, e.y) - from);
    if (sweep > 0) {
        auto outside = [&](uint32_t i) {
            return Turn(direction(i % m_Width, i / m_Width) - from) > sweep;
        };
        m_Collected.erase(std::remove_if(m_Collected.begin(), m_Collected.end(), outside),
                          m_Collected.end());
    }
    Paint(m_PenColor, m_PenMode == PEN_XOR);
}

void RasterArea::FastPolyPolyline(SYS_Point* points, const int* counts, int lines) {
    if (!points || !counts) return;
    const int width = PixelWidth(m_PenSize);
    for (int j = 0; j < lines; ++j) {
        for (int i = 1; i < counts[j]; ++i)
            AddLine(ToPixel(points[i - 1]), ToPixel(points[i]), width);
        points += std::max(0, counts[j]);
    }
    Paint(m_PenColor, m_PenMode == PEN_XOR);
}

void RasterArea::FastPolyLine(int n, SYS_Point* points, long width, int colour) {
    if (!points) return;
    for (int i = 1; i < n; ++i)
        AddLine(ToPixel(points[i - 1]), ToPixel(points[i]), PixelWidth(width));
    Paint(colour, m_PenMode == PEN_XOR);
}

void RasterArea::DrawLine(const SYS_Point& p1, const SYS_Point& p2, long width, int colour) {
    AddLine(ToPixel(p1), ToPixel(p2), PixelWidth(width));
    Paint(colour, m_PenMode == PEN_XOR);
}

void RasterArea::SetPixel(const SYS_Point& p) {
    const Pixel q = ToPixel(p);
    Add(RoundToLong(q.x), RoundToLong(q.y));
    Paint(m_PenColor, m_PenMode == PEN_XOR);
}

RasterArea::Pixel RasterArea::ToPixel(const SYS_Point& p) const {
    return {(double(p.x) - m_World.GetLeft()) * m_Scale,
            (m_Height - 1) - (double(p.y) - m_World.GetLower()) * m_Scale};
}

int RasterArea::PixelWidth(long width) const {
    return std::max(1, std::min(64, Scale2ScreenX(width < 0 ? -width : width)));
}

// Clips the segment to the bitmap widened by the pen (Liang-Barsky), then
// walks it with Bresenham's algorithm, stamping a square pen at each step.
void RasterArea::AddLine(Pixel a, Pixel b, int width) {
    const double lo[2] = {-double(width), -double(width)};
    const double hi[2] = {double(m_Width + width), double(m_Height + width)};
    const double p0[2] = {a.x, a.y}, d[2] = {b.x - a.x, b.y - a.y};
    double t0 = 0, t1 = 1;
    for (int k = 0; k < 2; ++k) {
        if (d[k] == 0) {
            if (p0[k] < lo[k] || p0[k] > hi[k]) return;
            continue;
        }
        double ta = (lo[k] - p0[k]) / d[k], tb = (hi[k] - p0[k]) / d[k];
        if (ta > tb) std::swap(ta, tb);
        t0 = std::max(t0, ta);
        t1 = std::min(t1, tb);
        if (t0 > t1) return;
    }
    long x = RoundToLong(a.x + t0 * d[0]), y = RoundToLong(a.y + t0 * d[1]);
    const long x1 = RoundToLong(a.x + t1 * d[0]), y1 = RoundToLong(a.y + t1 * d[1]);
    const long dx = std::labs(x1 - x), dy = -std::labs(y1 - y);
    const long sx = x < x1 ? 1 : -1, sy = y < y1 ? 1 : -1;
    long err = dx + dy;
    const int before = (width - 1) / 2, after = width / 2;
    for (;;) {
        for (long v = y - before; v <= y + after; ++v)
            for (long u = x - before; u <= x + after; ++u) Add(u, v);
        if (x == x1 && y == y1) break;
        const long e2 = 2 * err;
        if (e2 >= dy) err += dy, x += sx;
        if (e2 <= dx) err += dx, y += sy;
    }
}

// Outline: for every column and every row the oval crosses, the pixels
// where it crosses, so that steep and flat parts are both closed.
void RasterArea::AddOval(const SYS_Box& b, bool filled) {
    const Pixel p = ToPixel(b.lowerLeft), q = ToPixel(b.upperRight);
    const double x0 = std::min(p.x, q.x), x1 = std::max(p.x, q.x);
    const double y0 = std::min(p.y, q.y), y1 = std::max(p.y, q.y);
    const double cx = (x0 + x1) / 2, cy = (y0 + y1) / 2, rx = (x1 - x0) / 2, ry = (y1 - y0) / 2;
    if (rx < 0.5 || ry < 0.5) {
        AddRect(b, filled);
        return;
    }
    const long top = std::max(0L, RoundToLong(y0)),
               bottom = std::min(m_Height - 1L, RoundToLong(y1));
    const long left = std::max(0L, RoundToLong(x0)),
               right = std::min(m_Width - 1L, RoundToLong(x1));
    auto half = [](double r, double t) { return r * std::sqrt(std::max(0.0, 1 - t * t)); };
    for (long y = top; y <= bottom; ++y) {
        const double dx = half(rx, (y - cy) / ry);
        const long from = RoundToLong(cx - dx), to = RoundToLong(cx + dx);
        if (filled) {
            for (long x = std::max(from, 0L); x <= std::min(to, m_Width - 1L); ++x) Add(x, y);
        } else {
            Add(from, y);
            Add(to, y);
        }
    }
    if (filled) return;
    for (long x = left; x <= right; ++x) {
        const double dy = half(ry, (x - cx) / rx);
        Add(x, RoundToLong(cy - dy));
        Add(x, RoundToLong(cy + dy));
    }
}

void RasterArea::AddRect(const SYS_Box& b, bool filled) {
    const Pixel p = ToPixel(b.lowerLeft), q = ToPixel(b.upperRight);
    const long x0 = RoundToLong(std::min(p.x, q.x)), x1 = RoundToLong(std::max(p.x, q.x));
    const long y0 = RoundToLong(std::min(p.y, q.y)), y1 = RoundToLong(std::max(p.y, q.y));
    const long left = std::max(x0, 0L), right = std::min(x1, m_Width - 1L);
    const long top = std::max(y0, 0L), bottom = std::min(y1, m_Height - 1L);
    for (long y = top; y <= bottom; ++y) {
        if (filled || y == y0 || y == y1) {
            for (long x = left; x <= right; ++x) Add(x, y);
        } else {
            Add(x0, y);
            Add(x1, y);
        }
    }
}

void RasterArea::Add(long x, long y) {
    if (x >= 0 && x < m_Width && y >= 0 && y < m_Height)
        m_Collected.push_back(static_cast<uint32_t>(y * m_Width + x));
}

void RasterArea::Paint(int colour, bool exclusiveOr) {
    std::sort(m_Collected.begin(), m_Collected.end());
    m_Collected.erase(std::unique(m_Collected.begin(), m_Collected.end()), m_Collected.end());
    const uint32_t rgb = static_cast<uint32_t>(GetCurrentPaletteColorRGB(colour));
    for (uint32_t i : m_Collected) m_Pixels[i] = exclusiveOr ? m_Pixels[i] ^ rgb : rgb;
    m_Collected.clear();
}
