/// @file
/// CDynamic, the recorder of dynamic (rubber-band) drawing.
///
/// A tool draws its feedback into a CDynamic with the ordinary draw-area
/// operations; the recorder appends each one as an operation code and its
/// operands to a flat array of 32-bit values and widens a dirty box (world
/// coordinates).  When its draw area asks (the redraw event codes of
/// UI_DrawArea), the recorder replays the records into that area.  Drawn in
/// exclusive or, the same records replayed twice leave the screen as it was:
/// the feedback can be shown, erased and shown again without the area knowing
/// what it consists of.  Not every operation switches the area to exclusive
/// or by itself; CDynamic lists which do and which draw in the area's current
/// pen mode.
///
/// The usual cycle: StartBatchDraw reports the old content to the area
/// (RedrawDynamic with DYNAMIC_OLD) and drops it, the tool records its shapes,
/// EndBatchDraw reports the new dirty box (DYNAMIC_NEW); the area replays the
/// recorder when it sees fit.
///
/// Costs: recording appends a few values to one growable array (amortised
/// O(1), no allocation once the storage has grown); replaying makes one or a
/// few virtual calls per operation, and allocates only for the operations
/// that pass arrays or texts (codes OP_DRAW_XOR_TEXT, OP_POLY_POLYLINE,
/// OP_POLYLINE, OP_DRAW_STRING).
#ifndef UI_DYNAMIC_H
#define UI_DYNAMIC_H

#include "SCC_Event.h"
#include "SYS_Geom.h"
#include "UI_DrawArea.h"
#include "keel_config.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Records draw-area operations as rubber-band feedback and replays them into
/// a real draw area.
///
/// A recorder is a UI_DrawArea (a tool draws into it) and a node of its area's
/// redraw event (SCC_EventNode<UI_DrawArea::RedrawBlock>), through which the
/// area makes it replay (REDRAW_ERASE, REDRAW_SHOW), forget the area
/// (REDRAW_AREA_GONE) or clear (REDRAW_CLEAR).  The recorder does not own its
/// area, nor the area the recorder.
///
/// Pen modes during a replay.  The replay reads the area's mode with
/// GetPenMode() before the first operation and sets it back with PenMode()
/// after the last; in between it never restores the mode, so once an
/// operation has switched the area to PEN_XOR, every later operation of the
/// same replay runs in PEN_XOR too.  By recorded operation:
/// - switched to exclusive or (PenMode(PEN_XOR), then the drawing call):
///   FillRect(); DrawLine() and DrawArc(), which also set PenColor() and
///   PenSize() to the recorded colour and width; DrawXorOval() when its box
///   covers at least two pixels both ways (replayed as FastFrameOval());
/// - left to the area's own exclusive-or operations, pen mode untouched:
///   DrawXorBox() (replayed as DrawXorBox(SYS_Box)), DrawXorText() (the point
///   form, flag 1) and DrawXorOval() when its box covers fewer than two pixels
///   across or up (replayed as DrawXorBox());
/// - drawn in the area's current pen mode: FastMoveTo(), FastLineTo(),
///   FastPaintOval(), FastFrameOval(), FastPolyPolyline(), FastPolyLine() and
///   DrawString().  Unless the area is in PEN_XOR when the replay starts, or
///   an earlier operation of the same replay has switched it, these draw in
///   the area's normal mode and a second replay does not erase them;
/// - settings, replayed as recorded: PenColor(), PenSize(), PenCap(),
///   SwitchPen(), TextAlign(), TextExtra(), TextFace(), TextPath(),
///   TextSize(), SetGRAMode(), DrawOnScreen().  Only the pen mode is set back
///   at the end: the pen colour, size and the other settings stay as the
///   replay left them.
///
/// A box "covers fewer than two pixels" when |Scale2ScreenX(right - left)| or
/// |Scale2ScreenY(upper - lower)| of the area is below 2; with the base
/// scales (1) that is every box, so DrawXorOval() then replays as a box and
/// DrawArc() as a line.
///
/// Only the recorder's own overloads record.  DrawXorOval(), DrawArc(),
/// FastPolyPolyline() with unsigned long counts, TextPath(double) and
/// TextSize(int, int) are members of the recorder alone, so drawing code that
/// holds the recorder as a UI_DrawArea cannot record them; the draw-area
/// operations of the same names (FastPolyPolyline() with int counts,
/// TextPath(double, const char*), TextSize(int, int, const char*),
/// FastPaintOval(const SYS_Point&, long, int), Redraw(SYS_Box)) do nothing on
/// a recorder, as does every draw-area operation not overridden here.
///
/// The replay reads the records afresh for every operation, so an area may
/// record into, clear or reset the recorder while it replays: the replay then
/// ends where the old records ended, or earlier.  It also stops when the area
/// detaches the recorder (REDRAW_AREA_GONE) in the middle, and the pen mode is
/// then not set back.
class KEEL_API CDynamic : public SCC_EventNode<UI_DrawArea::RedrawBlock>, public UI_DrawArea {
public:
    /// The operation codes of the records, each followed by its operands (see
    /// GetRecords()).  Points are stored x then y, boxes left, lower, right,
    /// upper, characters one per value (0 to 255), long values as their low
    /// 32 bits.
    enum Op : int32_t {
        OP_PEN_COLOR = 0,       ///< PenColor(): colour.
        OP_PEN_SIZE = 1,        ///< PenSize(): size.
        OP_XOR_BOX = 2,         ///< DrawXorBox(): first point, second point.
        OP_XOR_OVAL = 3,        ///< DrawXorOval(): normalised box.
        OP_FILL_RECT = 4,       ///< FillRect(): normalised box, fill.
        OP_DRAW_XOR_TEXT = 5,   ///< DrawXorText(): x, y, a, b, n, n characters with the final 0.
        OP_DRAW_LINE = 6,       ///< DrawLine(): first point, second point, width, colour.
        OP_DRAW_ARC = 7,        ///< DrawArc(): normalised box, start, end, width, colour.
        OP_PEN_CAP = 8,         ///< PenCap(): cap.
        OP_POLY_POLYLINE = 9,   ///< FastPolyPolyline(): k, k counts, every point.
        OP_SWITCH_PEN = 10,     ///< SwitchPen(): three arguments.
        OP_MOVE_TO = 11,        ///< FastMoveTo(): point.
        OP_LINE_TO = 12,        ///< FastLineTo(): point.
        OP_PAINT_OVAL = 13,     ///< FastPaintOval(): box as given.
        OP_POLYLINE = 14,       ///< FastPolyLine(): width, colour, n, n points.
        OP_FRAME_OVAL = 15,     ///< FastFrameOval(): box as given.
        OP_TEXT_ALIGN = 16,     ///< TextAlign(): two arguments.
        OP_TEXT_EXTRA = 17,     ///< TextExtra(): argument.
        OP_TEXT_FACE = 18,      ///< TextFace(): argument.
        OP_TEXT_PATH = 19,      ///< TextPath(): ten-thousandths of a degree, 0 to 3,599,999.
        OP_TEXT_SIZE = 20,      ///< TextSize(): two arguments.
        OP_DRAW_STRING = 21,    ///< DrawString(): n, n characters (no final 0).
        OP_SET_GRA_MODE = 22,   ///< SetGRAMode(): the mode's 32 bits.
        OP_DRAW_ON_SCREEN = 23, ///< DrawOnScreen(): 1 or 0.
        OP_COUNT = 24           ///< The number of codes; not an operation.
    };
    /// The value kept after the last record: no operation has this code.
    static constexpr int32_t NO_OP = -1;

private:
    // The operations (m_Count values), then NO_OP, then spare storage; read
    // them through GetRecords.  First, as the recorder's fields are laid out.
    std::vector<int32_t> m_Records;
    size_t m_Count;

public:
    /// The area the recorder replays into and reports to; not owned, null
    /// while detached.  Writing it is SetDrawArea().
    UI_DrawArea* m_pDrawArea;
    /// Open StartBatchDraw() calls not yet closed by EndBatchDraw().
    int32_t m_BatchDepth;
    /// What the records cover, in world coordinates; all zero when empty.  A
    /// merged box replaces a dirty box that is a single point (such as the
    /// all-zero start) and is combined (SYS_Box::Combine) with any other.
    SYS_Box m_DirtyBox;
    /// The pen position of FastLineTo(), (0, 0) until a FastMoveTo() or
    /// FastLineTo().
    SYS_Point m_CurrentPoint;
    /// True only while Redraw() replays; see IsFlushing().
    bool m_bFlushing;

    /// Starts detached and empty, then installs itself in @p area (when not
    /// null: the area's InstallDynamic() is called from this constructor, so
    /// the overrides of a class derived from CDynamic are not in effect yet).
    /// The dirty box is all zero afterwards whatever the area did.
    explicit CDynamic(UI_DrawArea* area = nullptr);
    /// Copies the records and every field, the area included (without calling
    /// its InstallDynamic()).  The event links are copied as they stand,
    /// without joining the chain (shallow by design), and removing the copy
    /// from a chain in any way, its destructor included, would cut the
    /// source out of its redraw event.  When the source is in an event, detach
    /// the copy's links by hand before anything else:
    /// `copy.root = nullptr; copy.prev = copy.next = &copy;`.
    CDynamic(const CDynamic& other);
    /// Leaves its chain and joins the source's, just before the source, then
    /// copies the records and every field, the area included (without calling
    /// its InstallDynamic()).  Assigning a recorder to itself changes nothing.
    CDynamic& operator=(CDynamic& other);
    /// Frees the records and leaves the redraw event.  The area is not told
    /// and the feedback is not erased: call Clear() first if it is on the
    /// screen, and let the area forget any pointer it kept from
    /// InstallDynamic().
    ~CDynamic() override;

    /// Attaches to @p area and calls its InstallDynamic() with this recorder;
    /// null changes nothing.  The previous area, if any, is not told.
    void Install(UI_DrawArea* area);
    /// Attaches to @p area (or detaches for null) without telling it; the
    /// recorder's place in a redraw event does not change.
    void SetDrawArea(UI_DrawArea* area) { m_pDrawArea = area; }
    /// The area replayed into, or null while detached.
    UI_DrawArea* GetDrawArea() const { return m_pDrawArea; }
    /// Whether the recorder is replaying now: an area can test it from inside
    /// its drawing operations to tell a replay from direct drawing.
    bool IsFlushing() const { return m_bFlushing; }

    /// Reports the content to the area (RedrawDynamic() with the dirty box and
    /// DYNAMIC_OLD), then drops the records (keeping their storage) and zeroes
    /// the dirty box; the area erases the feedback during that call or not at
    /// all.  Without an area nothing happens and the records stay.
    void Clear();
    /// Drops the records and zeroes the dirty box without telling the area:
    /// feedback on the screen stays there.
    void Reset();

    /// The recorded values, read only: GetRecordCount() of them, followed by
    /// one NO_OP that is not counted.  Valid until the recorder records again
    /// or is assigned to.
    const int32_t* GetRecords() const { return m_Records.data(); }
    /// The number of recorded values (codes and operands), 0 when empty.
    int GetRecordCount() const { return static_cast<int>(m_Count); }

    /// The redraw event: REDRAW_ERASE and REDRAW_SHOW replay the records
    /// (Redraw()), REDRAW_AREA_GONE detaches the recorder, REDRAW_CLEAR calls
    /// Clear(); other codes are ignored.  @p block is not read and may be
    /// null, so an area may also call this directly.  Returns 0.
    int OnNotification(int code, UI_DrawArea::RedrawBlock* block) override;

    /// Clear(), then one more open batch.  Without an area the old records
    /// stay, but the batch opens all the same.
    void StartBatchDraw() override;
    /// With an open batch and an area: reports the dirty box (RedrawDynamic()
    /// with DYNAMIC_NEW), then closes the batch.  Otherwise nothing, and
    /// m_BatchDepth stays as it is.
    void EndBatchDraw() override;
    /// Passed on to the area when attached; not recorded.
    void StartScreenDraw() override;
    /// @name Neutral operations
    ///@{

    /// Do nothing and record nothing (GetPenMode() answers 0): a tool cannot
    /// record a pen mode, the replay sets it itself (see CDynamic).
    void PenMode(int mode) override;
    int GetPenMode() override;
    void InvalidateRect(const SYS_Box* b) override;
    ///@}

    /// @name Recording operations
    /// Each appends its code (Op) and operands to the records; the dirty box
    /// grows by the box its description names, and the others leave it alone.
    ///@{

    /// Records the value as given; merges nothing.  Replayed as the same call.
    void PenColor(int colour) override;
    void PenSize(long size) override;
    void PenCap(int cap) override;
    void SwitchPen(int a, long b, int c) override;
    /// Records both points and merges their box as given, not normalised.
    /// Replayed as the area's DrawXorBox(SYS_Box).
    void DrawXorBox(SYS_Point p1, SYS_Point p2) override;
    /// Normalises the box and records it as the two-point form (lower-left and
    /// upper-right corners).
    void DrawXorBox(SYS_Box b) override;
    /// Records an exclusive-or oval in the normalised box and merges that box.
    /// A member of the recorder alone.  Replayed as FastFrameOval() in
    /// PEN_XOR, or as DrawXorBox() below two pixels.
    void DrawXorOval(SYS_Box b);
    /// Records the normalised box and @p fill, merges the box.  Replayed in
    /// PEN_XOR.
    void FillRect(SYS_Box b, int fill) override;
    /// Records an arc of the oval in the normalised box from @p start to
    /// @p end, merges the box.  A member of the recorder alone.  Replayed in
    /// PEN_XOR after PenColor(colour) and PenSize(width), as FastFrameArc(),
    /// or as DrawLine(start, end, width, colour) below two pixels.
    void DrawArc(SYS_Box b, const SYS_Point& start, const SYS_Point& end, long width, int colour);
    /// Records @p text (copied with its final zero; null counts as empty),
    /// x, y, @p a and @p b.  When attached, asks the area for the text's box
    /// with DrawXorText(text, a, b, x, y, 0), merges and returns it; detached,
    /// returns the all-zero box and merges nothing.  @p flag is ignored.
    /// Replayed as the area's point form with flag 1.
    SYS_Box DrawXorText(const char* text, int a, int b, long x, long y, int flag) override;
    /// The two-long form at the point's coordinates; @p flag is ignored.
    SYS_Box DrawXorText(const char* text, int a, int b, SYS_Point p, int flag) override;
    /// Records both points, width and colour, and merges the normalised box of
    /// p1.x, p1.y, p2.x and p2.x: the upper bound is the second point's x, and
    /// the width is not added.  Replayed in PEN_XOR after PenColor(colour) and
    /// PenSize(width).
    void DrawLine(const SYS_Point& p1, const SYS_Point& p2, long width, int colour) override;
    /// Records the point and makes it the current point; merges nothing.
    void FastMoveTo(const SYS_Point& p) override;
    /// Records the point and merges the normalised box of the current point
    /// and p, which becomes the current point.
    void FastLineTo(const SYS_Point& p) override;
    /// Records the box and merges it, both as given.
    void FastPaintOval(SYS_Box b) override;
    /// Records the box and merges it, both as given.
    void FastFrameOval(const SYS_Box& b) override;
    /// Records @p lines polylines: their point counts @p counts[0..lines-1]
    /// (each keeping its low 32 bits), then all their points, which @p points
    /// holds one polyline after the other.  Merges the bounding box of all
    /// points (nothing when there are none).  Null @p points or @p counts, or
    /// @p lines not above 0, record an operation without polylines.  A member
    /// of the recorder alone; replayed as the area's FastPolyPolyline() with
    /// int counts.
    void FastPolyPolyline(SYS_Point* points, const unsigned long* counts, int lines);
    /// Records @p width, @p colour and the @p n points (none when @p points is
    /// null or @p n is not above 0).  Merges nothing: the dirty box does not
    /// cover a recorded polyline.
    void FastPolyLine(int n, SYS_Point* points, long width, int colour) override;
    /// Records the values as given; merges nothing.  Replayed as the same call.
    void TextAlign(int horizontal, int vertical) override;
    void TextExtra(int extra) override;
    void TextFace(int face) override;
    /// Records a text direction given in angle units (1,800,000 per degree)
    /// as degrees reduced to [0, 360) in ten-thousandths of a degree,
    /// truncated toward zero; an angle that is not finite counts as 0.  A
    /// member of the recorder alone; replayed as the area's TextPath(degrees,
    /// "").  Merges nothing.
    void TextPath(double angle);
    /// Records the two values; merges nothing.  A member of the recorder
    /// alone; replayed as the area's TextSize(width, height, "").
    void TextSize(int width, int height);
    /// Records @p text without its final zero (null counts as empty); merges
    /// nothing.
    void DrawString(const char* text) override;
    /// Records the mode's 32 bits; replayed as SetGRAMode() with the same bits.
    /// Merges nothing.
    void SetGRAMode(gra_mode_union mode) override;
    /// Records 1 or 0; replayed as DrawOnScreen(value != 0).  Merges nothing.
    void DrawOnScreen(bool on) override;
    ///@}

    // The draw-area operations of the same names keep their base behaviour
    // on a recorder and stay callable on it.
    using UI_DrawArea::FastPaintOval;
    using UI_DrawArea::FastPolyPolyline;
    using UI_DrawArea::Redraw;
    using UI_DrawArea::TextPath;
    using UI_DrawArea::TextSize;

protected:
    /// Replays the records into the area (see CDynamic for the pen mode of
    /// each operation) and sets back the pen mode that the area's
    /// GetPenMode() answered before.  IsFlushing() is true during the replay,
    /// and false again afterwards also when an area operation throws; while
    /// detached nothing is replayed.  O(number of recorded values).  Reached
    /// through OnNotification() (REDRAW_ERASE, REDRAW_SHOW), or through a
    /// UI_DrawArea pointer, where Redraw() is public.
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
