// UI_Dynamic.cpp - the dynamic-drawing recorder: recording operations as
// coded 32-bit records, the dirty box, the batch cycle and the exclusive-or
// replay.
#include "UI_Dynamic.h"

#include "internal/SYS_Int32.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

// Angle units per tenth of a degree, and the stored precision of a text
// direction: ten-thousandths of a degree.
const double kAnglePerTenthDegree = 180000.0;
const double kDirectionScale = 10000.0;
// Beyond this many degrees the direction is first reduced with fmod, so that
// the one-turn steps below stay few whatever the angle.
const double kLongWayRound = 1.0e6;

// The box of two corners, lower-left first.
inline SYS_Box Normalized(const SYS_Box& b) {
    return SYS_Box(std::min(b.lowerLeft.x, b.upperRight.x), std::min(b.lowerLeft.y, b.upperRight.y),
                   std::max(b.lowerLeft.x, b.upperRight.x),
                   std::max(b.lowerLeft.y, b.upperRight.y));
}

// A text as the records keep it: one unsigned byte value per character.
// A null text counts as empty.
const unsigned char* Bytes(const char* text) {
    return reinterpret_cast<const unsigned char*>(text ? text : "");
}

// Reads the operands of one operation from the records.  The records are
// read afresh at every step, because an area called during the replay may
// record into the very recorder that is replaying.
class Operands {
public:
    Operands(const std::vector<int32_t>& records, const size_t& count, size_t at)
        : m_Records(records), m_Count(count), m_At(at) {}

    // Whether n more values follow among the records and their NO_OP.
    bool Has(size_t n) const { return m_At <= m_Count + 1 && n <= m_Count + 1 - m_At; }
    int32_t Int() { return m_Records[m_At++]; }
    // A count stored as 32 bits, read as unsigned.
    size_t Count() { return static_cast<uint32_t>(Int()); }
    SYS_Point Point() {
        const int32_t x = Int();
        return SYS_Point(x, Int());
    }
    SYS_Box Box() {
        const SYS_Point ll = Point();
        return SYS_Box(ll, Point());
    }
    // n characters, one per value; the caller has checked Has(n).
    std::string Text(size_t n) {
        std::string text(n, '\0');
        for (char& c : text) c = static_cast<char>(Int());
        return text;
    }
    // n points; the caller has checked Has(2 * n).
    std::vector<SYS_Point> Points(size_t n) {
        std::vector<SYS_Point> points(n);
        for (SYS_Point& p : points) p = Point();
        return points;
    }
    size_t At() const { return m_At; }

private:
    const std::vector<int32_t>& m_Records;
    const size_t& m_Count;
    size_t m_At;
};

// Whether the box covers fewer than two pixels across or up: such ovals and
// arcs are replayed as a box or a line.
bool BelowTwoPixels(UI_DrawArea* area, const SYS_Box& b) {
    const int32_t sx = SYS_Abs32(area->Scale2ScreenX(SYS_Sub32(b.GetRight(), b.GetLeft())));
    const int32_t sy = SYS_Abs32(area->Scale2ScreenY(SYS_Sub32(b.GetUpper(), b.GetLower())));
    return sx < 2 || sy < 2;
}

// Fixed operand counts by code; the variable operations give their header.
const unsigned char kOperands[CDynamic::OP_COUNT] = {
    1, 1, 4, 4, 5, 5, 6, 10, 1, 1, 3, 2, 2, 4, 3, 4, 2, 1, 1, 1, 2, 1, 1, 1,
};

} // namespace

CDynamic::CDynamic(UI_DrawArea* area)
    : m_Records(1, NO_OP), m_Count(0), m_pDrawArea(nullptr), m_BatchDepth(0), m_DirtyBox(),
      m_CurrentPoint(0, 0), m_bFlushing(false) {
    Install(area);
    m_DirtyBox.SetEmpty();
}

CDynamic::CDynamic(const CDynamic& other)
    : SCC_EventNode<UI_DrawArea::RedrawBlock>(other), UI_DrawArea(other),
      m_Records(other.m_Records.begin(), other.m_Records.begin() + other.m_Count + 1),
      m_Count(other.m_Count), m_pDrawArea(other.m_pDrawArea), m_BatchDepth(other.m_BatchDepth),
      m_DirtyBox(other.m_DirtyBox), m_CurrentPoint(other.m_CurrentPoint),
      m_bFlushing(other.m_bFlushing) {}

CDynamic& CDynamic::operator=(CDynamic& other) {
    if (&other == this) return *this;
    SCC_EventNode<UI_DrawArea::RedrawBlock>::operator=(other);
    m_Records.assign(other.m_Records.begin(), other.m_Records.begin() + other.m_Count + 1);
    m_Count = other.m_Count;
    m_pDrawArea = other.m_pDrawArea;
    m_BatchDepth = other.m_BatchDepth;
    m_DirtyBox = other.m_DirtyBox;
    m_CurrentPoint = other.m_CurrentPoint;
    m_bFlushing = other.m_bFlushing;
    return *this;
}

// The records go with the members; the node base leaves the event last.
CDynamic::~CDynamic() {}

void CDynamic::Install(UI_DrawArea* area) {
    if (!area) return;
    m_pDrawArea = area;
    area->InstallDynamic(this);
}

void CDynamic::Clear() {
    if (!m_pDrawArea) return;
    m_pDrawArea->RedrawDynamic(this, &m_DirtyBox, DYNAMIC_OLD);
    Reset();
}

void CDynamic::Reset() {
    m_Count = 0;
    m_Records[0] = NO_OP;
    m_DirtyBox.SetEmpty();
}

int CDynamic::OnNotification(int code, UI_DrawArea::RedrawBlock*) {
    switch (code) {
    case REDRAW_ERASE:
    case REDRAW_SHOW:
        Redraw();
        break;
    case REDRAW_AREA_GONE:
        m_pDrawArea = nullptr;
        break;
    case REDRAW_CLEAR:
        Clear();
        break;
    default:
        break;
    }
    return 0;
}

void CDynamic::StartBatchDraw() {
    Clear();
    ++m_BatchDepth;
}

void CDynamic::EndBatchDraw() {
    if (m_BatchDepth <= 0 || !m_pDrawArea) return;
    m_pDrawArea->RedrawDynamic(this, &m_DirtyBox, DYNAMIC_NEW);
    --m_BatchDepth;
}

void CDynamic::StartScreenDraw() {
    if (m_pDrawArea) m_pDrawArea->StartScreenDraw();
}

void CDynamic::PenMode(int) {}
int CDynamic::GetPenMode() { return 0; }
void CDynamic::InvalidateRect(const SYS_Box*) {}

// Inline (hence hidden) so that the recording operations do not call them
// through the library's symbol table.
inline int32_t* CDynamic::Grow(size_t n) {
    const size_t need = m_Count + n + 1;
    if (need > m_Records.size()) m_Records.resize(std::max(need, 2 * m_Records.size()));
    int32_t* at = m_Records.data() + m_Count;
    m_Count += n;
    m_Records[m_Count] = NO_OP;
    return at;
}

// The values go straight into the storage: staging them in a temporary
// array would make the copy wait for the stores to it.
template <class... V> inline void CDynamic::Put(V... values) {
    int32_t* out = Grow(sizeof...(values));
    ((*out++ = static_cast<int32_t>(values)), ...);
}

inline void CDynamic::Merge(const SYS_Box& b) {
    if (m_DirtyBox.GetLeft() != m_DirtyBox.GetRight() ||
        m_DirtyBox.GetLower() != m_DirtyBox.GetUpper())
        m_DirtyBox.Combine(b);
    else
        m_DirtyBox = b;
}

void CDynamic::PenColor(int colour) { Put(OP_PEN_COLOR, colour); }
void CDynamic::PenSize(long size) { Put(OP_PEN_SIZE, SYS_Wrap32(size)); }
void CDynamic::PenCap(int cap) { Put(OP_PEN_CAP, cap); }
void CDynamic::SwitchPen(int a, long b, int c) { Put(OP_SWITCH_PEN, a, SYS_Wrap32(b), c); }

void CDynamic::DrawXorBox(SYS_Point p1, SYS_Point p2) {
    Put(OP_XOR_BOX, p1.x, p1.y, p2.x, p2.y);
    Merge(SYS_Box(p1, p2));
}

void CDynamic::DrawXorBox(SYS_Box b) {
    b = Normalized(b);
    DrawXorBox(b.lowerLeft, b.upperRight);
}

void CDynamic::DrawXorOval(SYS_Box b) {
    b = Normalized(b);
    Put(OP_XOR_OVAL, b.lowerLeft.x, b.lowerLeft.y, b.upperRight.x, b.upperRight.y);
    Merge(b);
}

void CDynamic::FillRect(SYS_Box b, int fill) {
    b = Normalized(b);
    Put(OP_FILL_RECT, b.lowerLeft.x, b.lowerLeft.y, b.upperRight.x, b.upperRight.y, fill);
    Merge(b);
}

void CDynamic::DrawArc(SYS_Box b, const SYS_Point& start, const SYS_Point& end, long width,
                       int colour) {
    b = Normalized(b);
    Put(OP_DRAW_ARC, b.lowerLeft.x, b.lowerLeft.y, b.upperRight.x, b.upperRight.y, start.x, start.y,
        end.x, end.y, SYS_Wrap32(width), colour);
    Merge(b);
}

SYS_Box CDynamic::DrawXorText(const char* text, int a, int b, long x, long y, int) {
    const unsigned char* bytes = Bytes(text);
    const size_t n = std::strlen(reinterpret_cast<const char*>(bytes)) + 1;
    int32_t* out = Grow(6 + n);
    const int32_t head[6] = {OP_DRAW_XOR_TEXT,       SYS_Wrap32(x), SYS_Wrap32(y), a, b,
                             static_cast<int32_t>(n)};
    out = std::copy(head, head + 6, out);
    std::copy(bytes, bytes + n, out);
    if (!m_pDrawArea) return SYS_Box();
    const SYS_Box box =
        m_pDrawArea->DrawXorText(reinterpret_cast<const char*>(bytes), a, b, x, y, 0);
    Merge(box);
    return box;
}

SYS_Box CDynamic::DrawXorText(const char* text, int a, int b, SYS_Point p, int) {
    return DrawXorText(text, a, b, p.GetX(), p.GetY(), 1);
}

void CDynamic::DrawLine(const SYS_Point& p1, const SYS_Point& p2, long width, int colour) {
    Put(OP_DRAW_LINE, p1.x, p1.y, p2.x, p2.y, SYS_Wrap32(width), colour);
    Merge(Normalized(SYS_Box(p1.x, p1.y, p2.x, p2.x)));
}

void CDynamic::FastMoveTo(const SYS_Point& p) {
    Put(OP_MOVE_TO, p.x, p.y);
    m_CurrentPoint = p;
}

void CDynamic::FastLineTo(const SYS_Point& p) {
    Put(OP_LINE_TO, p.x, p.y);
    Merge(Normalized(SYS_Box(m_CurrentPoint, p)));
    m_CurrentPoint = p;
}

void CDynamic::FastPaintOval(SYS_Box b) {
    Put(OP_PAINT_OVAL, b.lowerLeft.x, b.lowerLeft.y, b.upperRight.x, b.upperRight.y);
    Merge(b);
}

void CDynamic::FastFrameOval(const SYS_Box& b) {
    Put(OP_FRAME_OVAL, b.lowerLeft.x, b.lowerLeft.y, b.upperRight.x, b.upperRight.y);
    Merge(b);
}

void CDynamic::FastPolyPolyline(SYS_Point* points, const unsigned long* counts, int lines) {
    // Without points or counts there are no polylines to record.
    const size_t k = points && counts && lines > 0 ? static_cast<size_t>(lines) : 0;
    size_t total = 0;
    for (size_t j = 0; j < k; ++j) total += static_cast<uint32_t>(counts[j]);
    int32_t* out = Grow(2 + k + 2 * total);
    *out++ = OP_POLY_POLYLINE;
    *out++ = static_cast<int32_t>(k);
    for (size_t j = 0; j < k; ++j) *out++ = static_cast<int32_t>(counts[j]);
    SYS_Box bounds = SYS_Box::Null();
    for (size_t j = 0; j < total; ++j) {
        *out++ = points[j].x;
        *out++ = points[j].y;
        bounds.Combine(SYS_Box(points[j], points[j]));
    }
    if (total) Merge(bounds);
}

void CDynamic::FastPolyLine(int n, SYS_Point* points, long width, int colour) {
    const size_t count = points && n > 0 ? static_cast<size_t>(n) : 0;
    int32_t* out = Grow(4 + 2 * count);
    const int32_t head[4] = {OP_POLYLINE, SYS_Wrap32(width), colour, static_cast<int32_t>(count)};
    out = std::copy(head, head + 4, out);
    for (size_t j = 0; j < count; ++j) {
        *out++ = points[j].x;
        *out++ = points[j].y;
    }
}

void CDynamic::TextAlign(int horizontal, int vertical) { Put(OP_TEXT_ALIGN, horizontal, vertical); }
void CDynamic::TextExtra(int extra) { Put(OP_TEXT_EXTRA, extra); }
void CDynamic::TextFace(int face) { Put(OP_TEXT_FACE, face); }

void CDynamic::TextPath(double angle) {
    double degrees = angle / kAnglePerTenthDegree / 10.0;
    if (!std::isfinite(degrees)) degrees = 0.0;
    if (std::fabs(degrees) > kLongWayRound) degrees = std::fmod(degrees, 360.0);
    while (degrees < 0.0) degrees += 360.0;
    while (degrees >= 360.0) degrees -= 360.0;
    Put(OP_TEXT_PATH, SYS_Trunc32(degrees * kDirectionScale));
}

void CDynamic::TextSize(int width, int height) { Put(OP_TEXT_SIZE, width, height); }

void CDynamic::DrawString(const char* text) {
    const unsigned char* bytes = Bytes(text);
    const size_t n = std::strlen(reinterpret_cast<const char*>(bytes));
    int32_t* out = Grow(2 + n);
    *out++ = OP_DRAW_STRING;
    *out++ = static_cast<int32_t>(n);
    std::copy(bytes, bytes + n, out);
}

void CDynamic::SetGRAMode(gra_mode_union mode) {
    Put(OP_SET_GRA_MODE, static_cast<int32_t>(mode.bits));
}

void CDynamic::DrawOnScreen(bool on) { Put(OP_DRAW_ON_SCREEN, on ? 1 : 0); }

void CDynamic::Redraw() {
    // Cleared on every way out, also when the area throws.
    struct Flushing {
        bool& flag;
        explicit Flushing(bool& f) : flag(f) { flag = true; }
        ~Flushing() { flag = false; }
    } flushing(m_bFlushing);
    if (!m_pDrawArea) return;
    const int saved = m_pDrawArea->GetPenMode();
    // One step more than there are operations: the step after the last one
    // reads the trailing NO_OP and ends in the unknown-code path.
    const size_t count = m_Count;
    for (size_t i = 0; i <= count && i <= m_Count && m_pDrawArea;) {
        const size_t next = ReplayOne(m_pDrawArea, m_Records[i], i + 1);
        if (!next) break;
        i = next;
    }
    if (m_pDrawArea) m_pDrawArea->PenMode(saved);
}

size_t CDynamic::ReplayOne(UI_DrawArea* area, int32_t code, size_t at) {
    Operands in(m_Records, m_Count, at);
    if (code < 0 || code >= OP_COUNT) {
        char text[256];
        std::snprintf(text, sizeof text, "Dynamic: wrong draw operation Code (%d)", code);
        return at;
    }
    if (!in.Has(kOperands[code])) return 0;
    switch (code) {
    case OP_PEN_COLOR:
        area->PenColor(in.Int());
        break;
    case OP_PEN_SIZE:
        area->PenSize(in.Int());
        break;
    case OP_XOR_BOX:
        area->DrawXorBox(in.Box());
        break;
    case OP_XOR_OVAL: {
        const SYS_Box b = in.Box();
        if (BelowTwoPixels(area, b)) {
            area->DrawXorBox(b);
        } else {
            area->PenMode(PEN_XOR);
            area->FastFrameOval(b);
        }
        break;
    }
    case OP_FILL_RECT: {
        const SYS_Box b = in.Box();
        const int fill = in.Int();
        area->PenMode(PEN_XOR);
        area->FillRect(b, fill);
        break;
    }
    case OP_DRAW_XOR_TEXT: {
        const SYS_Point p = in.Point();
        const int a = in.Int(), b = in.Int();
        const size_t n = in.Count();
        if (!in.Has(n)) return 0;
        const std::string text = in.Text(n);
        area->DrawXorText(text.c_str(), a, b, p, 1);
        break;
    }
    case OP_DRAW_LINE: {
        const SYS_Point p1 = in.Point(), p2 = in.Point();
        const int32_t width = in.Int(), colour = in.Int();
        area->PenMode(PEN_XOR);
        area->PenColor(colour);
        area->PenSize(width);
        area->DrawLine(p1, p2, width, colour);
        break;
    }
    case OP_DRAW_ARC: {
        const SYS_Box b = in.Box();
        const SYS_Point start = in.Point(), end = in.Point();
        const int32_t width = in.Int(), colour = in.Int();
        area->PenMode(PEN_XOR);
        area->PenColor(colour);
        area->PenSize(width);
        if (BelowTwoPixels(area, b))
            area->DrawLine(start, end, width, colour);
        else
            area->FastFrameArc(b, start, end);
        break;
    }
    case OP_PEN_CAP:
        area->PenCap(in.Int());
        break;
    case OP_POLY_POLYLINE: {
        const size_t k = in.Count();
        if (!in.Has(k)) return 0;
        std::vector<int> counts(k);
        uint64_t total = 0;
        for (int& c : counts) {
            c = in.Int();
            total += static_cast<uint32_t>(c);
        }
        if (!in.Has(0) || total > (m_Count + 1 - in.At()) / 2) return 0;
        std::vector<SYS_Point> points = in.Points(static_cast<size_t>(total));
        area->FastPolyPolyline(points.data(), counts.data(), static_cast<int>(k));
        break;
    }
    case OP_SWITCH_PEN: {
        const int a = in.Int();
        const int32_t b = in.Int();
        area->SwitchPen(a, b, in.Int());
        break;
    }
    case OP_MOVE_TO:
        area->FastMoveTo(in.Point());
        break;
    case OP_LINE_TO:
        area->FastLineTo(in.Point());
        break;
    case OP_PAINT_OVAL:
        area->FastPaintOval(in.Box());
        break;
    case OP_POLYLINE: {
        const int32_t width = in.Int(), colour = in.Int();
        const size_t n = in.Count();
        if (!in.Has(0) || n > (m_Count + 1 - in.At()) / 2) return 0;
        std::vector<SYS_Point> points = in.Points(n);
        area->FastPolyLine(static_cast<int>(n), points.data(), width, colour);
        break;
    }
    case OP_FRAME_OVAL:
        area->FastFrameOval(in.Box());
        break;
    case OP_TEXT_ALIGN: {
        const int a = in.Int();
        area->TextAlign(a, in.Int());
        break;
    }
    case OP_TEXT_EXTRA:
        area->TextExtra(in.Int());
        break;
    case OP_TEXT_FACE:
        area->TextFace(in.Int());
        break;
    case OP_TEXT_PATH:
        area->TextPath(static_cast<uint32_t>(in.Int()) / kDirectionScale, "");
        break;
    case OP_TEXT_SIZE: {
        const int a = in.Int();
        area->TextSize(a, in.Int(), "");
        break;
    }
    case OP_DRAW_STRING: {
        const size_t n = in.Count();
        if (!in.Has(n)) return 0;
        const std::string text = in.Text(n);
        area->DrawString(text.c_str());
        break;
    }
    case OP_SET_GRA_MODE: {
        gra_mode_union mode;
        mode.bits = static_cast<uint32_t>(in.Int());
        area->SetGRAMode(mode);
        break;
    }
    case OP_DRAW_ON_SCREEN:
        area->DrawOnScreen(in.Int() != 0);
        break;
    }
    return in.At();
}
