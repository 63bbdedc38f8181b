// UI_Dynamic.h - CDynamic, the recorder of dynamic (rubber-band) drawing.
//
// A tool draws its feedback into a CDynamic with the ordinary draw-area
// operations; the recorder appends each one as an operation code and its
// operands to a flat array of 32-bit values and widens a dirty box (world
// coordinates).  When its draw area asks (the redraw event codes of
// UI_DrawArea), the recorder replays the records into that area in
// exclusive-or pen mode, so replaying the same records twice leaves the
// screen as it was: the feedback can be shown, erased and shown again
// without the area knowing what it consists of.
//
// The usual cycle: StartBatchDraw reports the old content to the area
// (RedrawDynamic with DYNAMIC_OLD) and drops it, the tool records its shapes,
// EndBatchDraw reports the new dirty box (DYNAMIC_NEW); the area replays the
// recorder when it sees fit.
//
// Costs: recording appends a few values to one growable array (amortised
// O(1), no allocation once the storage has grown); replaying makes one or a
// few virtual calls per operation, and allocates only for the operations
// that pass arrays or texts (codes OP_DRAW_XOR_TEXT, OP_POLY_POLYLINE,
// OP_POLYLINE, OP_DRAW_STRING).
#ifndef UI_DYNAMIC_H
#define UI_DYNAMIC_H

#include "SCC_Event.h"
#include "SYS_Geom.h"
#include "UI_DrawArea.h"
#include "keel_config.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class KEEL_API CDynamic : public SCC_EventNode<UI_DrawArea::RedrawBlock>, public UI_DrawArea {
public:
    // The operation codes of the records; points are stored x then y, boxes
    // left, lower, right, upper, characters one per value (0 to 255).
    enum Op : int32_t {
        OP_PEN_COLOR = 0,       // colour
        OP_PEN_SIZE = 1,        // size
        OP_XOR_BOX = 2,         // first point, second point
        OP_XOR_OVAL = 3,        // normalised box
        OP_FILL_RECT = 4,       // normalised box, fill
        OP_DRAW_XOR_TEXT = 5,   // x, y, a, b, n, n characters with the final 0
        OP_DRAW_LINE = 6,       // first point, second point, width, colour
        OP_DRAW_ARC = 7,        // normalised box, start, end, width, colour
        OP_PEN_CAP = 8,         // cap
        OP_POLY_POLYLINE = 9,   // k, k counts, every point
        OP_SWITCH_PEN = 10,     // three arguments
        OP_MOVE_TO = 11,        // point
        OP_LINE_TO = 12,        // point
        OP_PAINT_OVAL = 13,     // box as given
        OP_POLYLINE = 14,       // width, colour, n, n points
        OP_FRAME_OVAL = 15,     // box as given
        OP_TEXT_ALIGN = 16,     // two arguments
        OP_TEXT_EXTRA = 17,     // argument
        OP_TEXT_FACE = 18,      // argument
        OP_TEXT_PATH = 19,      // ten-thousandths of a degree, 0 to 3,599,999
        OP_TEXT_SIZE = 20,      // two arguments
        OP_DRAW_STRING = 21,    // n, n characters (no final 0)
        OP_SET_GRA_MODE = 22,   // the mode's 32 bits
        OP_DRAW_ON_SCREEN = 23, // 1 or 0
        OP_COUNT = 24
    };
    // The value kept after the last record: no operation has this code.
    static constexpr int32_t NO_OP = -1;

private:
    // The operations (m_Count values), then NO_OP, then spare storage; read
    // them through GetRecords.  First, as the recorder's fields are laid out.
    std::vector<int32_t> m_Records;
    size_t m_Count;

public:
    // The area the recorder replays into and reports to; not owned, null
    // while detached.
    UI_DrawArea* m_pDrawArea;
    // Open StartBatchDraw calls.
    int32_t m_BatchDepth;
    // What the records cover, in world coordinates; all zero when empty.
    SYS_Box m_DirtyBox;
    // The pen position of FastLineTo, (0, 0) until a FastMoveTo or FastLineTo.
    SYS_Point m_CurrentPoint;
    // True only while Redraw replays.
    bool m_bFlushing;

    // Starts detached and empty, then installs itself in `area` (when not
    // null); the dirty box is all zero afterwards whatever the area did.
    explicit CDynamic(UI_DrawArea* area = nullptr);
    // Copies the records and every field.  The event links are copied as
    // they stand, without joining the chain (shallow by design): re-insert
    // or reset the copy's links before it is used or destroyed.
    CDynamic(const CDynamic& other);
    // Leaves its chain and joins the source's, just before the source, then
    // copies the records and every field.  Assigning a recorder to itself
    // changes nothing.
    CDynamic& operator=(CDynamic& other);
    // Leaves the redraw event; the draw area is not told.
    ~CDynamic() override;

    // Attaches to `area` and calls its InstallDynamic; null changes nothing.
    void Install(UI_DrawArea* area);
    // Attaches to `area` (or detaches for null) without telling it.
    void SetDrawArea(UI_DrawArea* area) { m_pDrawArea = area; }
    UI_DrawArea* GetDrawArea() const { return m_pDrawArea; }
    bool IsFlushing() const { return m_bFlushing; }

    // Reports the content to the area (RedrawDynamic, DYNAMIC_OLD), then
    // drops the records (keeping their storage) and zeroes the dirty box.
    // Without an area nothing happens and the records stay.
    void Clear();
    // Drops the records and zeroes the dirty box without telling the area.
    void Reset();

    // The recorded values, read only: GetRecordCount() of them, followed by
    // one NO_OP that is not counted.
    const int32_t* GetRecords() const { return m_Records.data(); }
    int GetRecordCount() const { return static_cast<int>(m_Count); }

    // Redraw event: REDRAW_ERASE and REDRAW_SHOW replay the records,
    // REDRAW_AREA_GONE detaches, REDRAW_CLEAR clears.  Returns 0.
    int OnNotification(int code, UI_DrawArea::RedrawBlock* block) override;

    // Clear, then one more open batch.
    void StartBatchDraw() override;
    // With an open batch and an area: reports the dirty box (DYNAMIC_NEW)
    // and closes the batch.  Otherwise nothing.
    void EndBatchDraw() override;
    // Passed on to the area; not recorded.
    void StartScreenDraw() override;
    // Neutral on a recorder: the replay sets the pen mode itself.
    void PenMode(int mode) override;
    int GetPenMode() override;
    void InvalidateRect(const SYS_Box* b) override;

    // Recording operations.  The dirty box grows by the box each one names
    // below; the others leave it alone.
    void PenColor(int colour) override;
    void PenSize(long size) override;
    void PenCap(int cap) override;
    void SwitchPen(int a, long b, int c) override;
    // Merges the box of the two points as given, not normalised.
    void DrawXorBox(SYS_Point p1, SYS_Point p2) override;
    // Normalises the box and records it as the two-point form.
    void DrawXorBox(SYS_Box b) override;
    // Merges the normalised box.
    void DrawXorOval(SYS_Box b);
    void FillRect(SYS_Box b, int fill) override;
    void DrawArc(SYS_Box b, const SYS_Point& start, const SYS_Point& end, long width, int colour);
    // Asks the area for the text's box (with flag 0 whatever `flag` says),
    // merges and returns it; with no area the all-zero box, nothing merged.
    SYS_Box DrawXorText(const char* text, int a, int b, long x, long y, int flag) override;
    // The two-long form at the point's coordinates; `flag` is ignored.
    SYS_Box DrawXorText(const char* text, int a, int b, SYS_Point p, int flag) override;
    // Merges the normalised box of p1.x, p1.y, p2.x and p2.x: the upper
    // bound is the second point's x, and the width is not added.
    void DrawLine(const SYS_Point& p1, const SYS_Point& p2, long width, int colour) override;
    // Sets the current point.
    void FastMoveTo(const SYS_Point& p) override;
    // Merges the normalised box of the current point and p, which becomes
    // the current point.
    void FastLineTo(const SYS_Point& p) override;
    // Both merge the box as given.
    void FastPaintOval(SYS_Box b) override;
    void FastFrameOval(const SYS_Box& b) override;
    // Merges the bounding box of all points (nothing when there are none).
    // Each count keeps its low 32 bits.
    void FastPolyPolyline(SYS_Point* points, const unsigned long* counts, int lines);
    // Merges nothing.
    void FastPolyLine(int n, SYS_Point* points, long width, int colour) override;
    void TextAlign(int horizontal, int vertical) override;
    void TextExtra(int extra) override;
    void TextFace(int face) override;
    // Angle units, recorded as a direction in [0, 360) degrees.
    void TextPath(double angle);
    void TextSize(int width, int height);
    // Merges nothing.
    void DrawString(const char* text) override;
    void SetGRAMode(gra_mode_union mode) override;
    void DrawOnScreen(bool on) override;

    // The draw-area operations of the same names keep their base behaviour
    // on a recorder and stay callable on it.
    using UI_DrawArea::FastPaintOval;
    using UI_DrawArea::FastPolyPolyline;
    using UI_DrawArea::Redraw;
    using UI_DrawArea::TextPath;
    using UI_DrawArea::TextSize;

protected:
    // Replays the records into the area in exclusive-or pen mode and puts
    // the area's pen mode back afterwards.
    void Redraw() override;

private:
    // Appends one operation of fixed size.
    template <class... V> void Put(V... values);
    // Makes room for n more values before the trailing NO_OP and returns
    // where they go.
    int32_t* Grow(size_t n);
    // Widens the dirty box by b; a dirty box that is a single point (such as
    // the all-zero start) is replaced by b.
    void Merge(const SYS_Box& b);
    // Replays the operation whose operands start at `at`; returns the index
    // after them, or 0 when they do not fit in the records.
    size_t ReplayOne(UI_DrawArea* area, int32_t code, size_t at);
};

#endif // UI_DYNAMIC_H
