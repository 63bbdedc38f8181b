/// @file
/// The abstract drawing surface: UI_ScreenCoordConverter (the world/screen
/// conversions) and UI_DrawArea (painting, clipping, text and the process's
/// main draw area), with the host types they name.
///
/// keel draws nothing itself.  A host derives its draw areas from UI_DrawArea
/// and overrides the operations it supports; every operation has a harmless
/// base body (nothing, 0, 1.0, the all-zero box, a (0, 0) point) so that a
/// partial implementation links and runs.  The order of the virtual functions
/// below is part of the binary interface: host classes override them by slot,
/// so nothing may be added, removed or reordered, and the overloads stay in
/// the order given, also where it looks swapped.
///
/// World coordinates are database units (SYS_Point, SYS_Box); screen
/// coordinates are pixels.  Colours, pen modes, caps, brushes, faces and arc
/// directions are plain integers whose meaning is the host's; keel itself only
/// ever passes pen mode UI_DrawArea::PEN_XOR (exclusive or).
///
/// Costs: no data members, only the virtual table; every operation is one
/// virtual call.  The main draw area is one process-wide pointer, not owned.
#ifndef UI_DRAWAREA_H
#define UI_DRAWAREA_H

#include "SCC_Event.h"
#include "SYS_Geom.h"
#include "keel_config.h"

#include <cstdint>

class CDynamic;

// Host types, only passed through: keel never reads them.
class GRA_SegmentData;
class SDB_Database;
class DBD_GeomHdr;

/// The host's graphics mode, passed and returned by value.  keel stores and
/// passes on its 32 bits untouched; a default-constructed mode has every bit 0.
union gra_mode_union {
    uint32_t bits = 0; ///< The mode as unsigned bits; what a recorder stores and replays.
    int32_t value;     ///< The same 32 bits read as a signed value.
};
static_assert(sizeof(gra_mode_union) == 4, "gra_mode_union is exactly 32 bits");

/// World/screen conversions, the base of UI_DrawArea.  The base answers 1 for
/// the scales, the all-zero box for boxes and (0, 0) for points.
///
/// Of these keel itself calls only Scale2ScreenX() and Scale2ScreenY() (the
/// replay of a CDynamic); the others serve the host's own code.  The class has
/// no virtual destructor: never delete a draw area through a pointer to it.
class KEEL_API UI_ScreenCoordConverter {
public:
    /// @name Lengths
    ///@{

    /// A world length along x in pixels.  A recorder's replay draws a recorded
    /// oval or arc as a box or a line when the absolute value for its width
    /// (or Scale2ScreenY() for its height) is below 2, so an area that keeps
    /// the base answer 1 gets every recorded oval as a box and every arc as a
    /// line.  Base: 1.
    virtual int Scale2ScreenX(long length) const;
    /// A world length along y in pixels; see Scale2ScreenX().  Base: 1.
    virtual int Scale2ScreenY(long length) const;
    /// A pixel length along x in database units.  Base: 1.
    virtual long Scale2WorldX(int length) const;
    /// A pixel length along y in database units.  Base: 1.
    virtual long Scale2WorldY(int length) const;
    /// Both coordinates, screen lengths to world lengths.  Base: (0, 0).
    virtual SYS_Point Scale2World(SYS_Point p);
    /// Both coordinates, world lengths to screen lengths.  Base: (0, 0).
    virtual SYS_Point Scale2Screen(SYS_Point p);
    ///@}

    /// @name Positions and boxes
    ///@{

    /// A position or a box, screen to world and world to screen.  keel never
    /// calls them.  Base: the all-zero box, the point (0, 0).  The box form
    /// comes first in each pair.
    virtual SYS_Box Screen2World(const SYS_Box& b);
    virtual SYS_Point Screen2World(const SYS_Point& p);
    virtual SYS_Box World2Screen(const SYS_Box& b);
    virtual SYS_Point World2Screen(const SYS_Point& p);
    ///@}
};

/// The drawing surface that a host implements.
///
/// keel calls a draw area from two places only: a dynamic-drawing recorder
/// (CDynamic, UI_Dynamic.h), which records a tool's rubber-band feedback and
/// replays it into its area, and UI_PaletteColorConvertor, which asks the main
/// draw area for palette colours.  Every other operation is called by the
/// host's own code alone, and its meaning is the host's.  To show recorded
/// feedback and take it off the screen again, an implementation overrides:
/// - Scale2ScreenX() and Scale2ScreenY(): the replay measures ovals and arcs
///   with them (see there);
/// - PenMode() and GetPenMode(): the replay reads the mode, switches to
///   PEN_XOR for some operations and sets the mode it read when it ends;
/// - the drawing operations that CDynamic replays (its class documentation
///   lists them and the pen mode each runs in), with DrawXorBox() and
///   DrawXorText() drawn in exclusive or whatever the pen mode;
/// - RegisterRedrawHook() and InstallDynamic(): the area keeps a redraw event
///   (an SCC_Event<RedrawBlock>), puts the hooks and recorders on it, and
///   raises it with the RedrawCode values around its repaints;
/// - RedrawDynamic(): a recorder's report that its content is about to be
///   dropped or has been recorded anew;
/// - its destructor: raise the redraw event with REDRAW_AREA_GONE, so that
///   recorders forget the area (this class's destructor tells nobody), and
///   clear the main draw area if it is this one;
/// - GetCurrentPaletteColorRGB() when it is the main draw area and palette
///   convertors are in use.
class KEEL_API UI_DrawArea : public UI_ScreenCoordConverter {
public:
    /// What the host passes with its redraw notifications
    /// (SCC_Event<UI_DrawArea::RedrawBlock>).  keel declares it and never
    /// reads it: the host defines it (`struct UI_DrawArea::RedrawBlock {...};`)
    /// with whatever fields its redraw hooks need.
    struct RedrawBlock;

    /// The codes of the redraw event, as a recorder (CDynamic) answers them:
    /// the first two replay it, the third detaches it, the last clears it.
    /// Other codes are ignored by recorders.
    enum RedrawCode {
        REDRAW_ERASE = 0,     ///< Replay to take the feedback off the screen.
        REDRAW_SHOW = 1,      ///< Replay to put it back (exclusive or: the same replay).
        REDRAW_AREA_GONE = 2, ///< The area is going away: recorders forget it.
        REDRAW_CLEAR = 3      ///< Erase the feedback (CDynamic::Clear()) and drop the records.
    };
    /// The last argument of RedrawDynamic(): what the recorder reports.
    enum DynamicReport {
        DYNAMIC_OLD = 0, ///< Its content before it is dropped (to erase).
        DYNAMIC_NEW = 1  ///< Its new content at the end of a batch (to show).
    };
    /// PEN_XOR, the only pen mode keel passes itself: exclusive or, in which
    /// drawing the same thing twice restores the screen.
    enum { PEN_XOR = 2 };

    /// @name Construction
    ///@{

    /// A draw area has no fields: construction, copying and assignment copy
    /// nothing.
    UI_DrawArea() {}
    UI_DrawArea(const UI_DrawArea&) {}
    UI_DrawArea& operator=(const UI_DrawArea&) { return *this; }
    ///@}

    /// The process's main draw area: null until SetMainDrawArea() is called,
    /// then the pointer set last, even when that area has been destroyed
    /// since.  UI_PaletteColorConvertor uses it without a null test.
    static UI_DrawArea* GetMainDrawArea() { return s_pMainDrawArea; }
    /// Makes @p area the main draw area (null clears it).  keel only keeps the
    /// pointer: it does not own the area, tell it, or notice its destruction,
    /// so the host clears or replaces it before the area is destroyed.
    static void SetMainDrawArea(UI_DrawArea* area) { s_pMainDrawArea = area; }

    /// Does nothing; in particular the recorders installed on the area are
    /// not told (see REDRAW_AREA_GONE).
    virtual ~UI_DrawArea();

    /// @name Viewport
    ///@{

    /// The area's viewport and user viewport, read into or set from a world
    /// box, and a box fitted to the window.  keel never calls them.  Base:
    /// nothing, the box is left as it is.
    virtual void GetVP(SYS_Box& vp) const;
    virtual void GetUserVP(SYS_Box& vp);
    virtual void SetVP(SYS_Box& vp);
    virtual void SetUserVP(SYS_Box& vp);
    ///@}

    /// Attaches @p hook to the area's redraw event, so that host code hears
    /// the RedrawCode notifications too (for example hook->Attach(&event)).
    /// The area only keeps the pointer; the hook leaves the event when it is
    /// destroyed.  keel never calls it.  Base: nothing.
    virtual void RegisterRedrawHook(SCC_EventHook<RedrawBlock>* hook);
    /// Fits a world box to the window.  keel never calls it.  Base: nothing.
    virtual void FitRectToWindow(SYS_Box& b);

    /// @name Pen
    ///@{

    /// The pen the following drawing uses.  A recorder's replay calls
    /// SwitchPen(), PenCap(), PenColor() and PenSize() with the values that
    /// were recorded (long values as their low 32 bits).  Base: nothing.
    virtual void SwitchPen(int a, long b, int c);
    virtual void PenCap(int cap);
    virtual void PenColor(int colour);
    /// Sets the pen mode.  keel passes PEN_XOR during a recorder's replay and,
    /// when the replay ends, the mode that GetPenMode() answered before it.
    /// Base: nothing.
    virtual void PenMode(int mode);
    /// The current pen mode.  A recorder reads it before it replays and
    /// restores it afterwards, so an area that overrides PenMode() overrides
    /// this too; with the base, every replay ends by setting mode 0.  Base: 0.
    virtual int GetPenMode();
    virtual void PenSize(long size);
    ///@}

    /// @name Background and brushes
    ///@{

    /// The back colour and the brushes of filled shapes; RegisterBrush()
    /// answers a brush number of the host's.  keel never calls them.  The
    /// display names of five hatch styles are resource texts 45053 to 45057
    /// ("Standard", "Vertical Small Cross", "Diagonal Small Cross", "Vertical
    /// Large Cross", "Diagonal Large Cross"), read with TR; keel does not use
    /// them itself.  Base: nothing, 0.
    virtual void BackColor(int colour);
    virtual int GetBackColor();
    virtual int RegisterBrush(unsigned int pattern);
    virtual void SetSolidBrush(int brush);
    virtual void SetHatchBrush(int brush, int style);
    ///@}

    /// Fills a world box with the back colour.  keel never calls it.
    /// Base: nothing.
    virtual void EraseRect(SYS_Box b);
    /// Fills a world box with @p fill.  A recorder's replay calls it in
    /// PEN_XOR with a normalised box.  Base: nothing.
    virtual void FillRect(SYS_Box b, int fill);
    /// Moves the cursor to world (x, y).  keel never calls it.  Base: nothing.
    virtual void MoveCursor(long x, long y);

    /// @name Scale
    ///@{

    /// The zoom of the area, as the host defines it.  keel never calls them.
    /// Base: 1.0 for the two scales, 0 for SetScale().
    virtual double GetScale(SYS_Point* centre);
    virtual int SetScale(double scale, SYS_Point* centre, int redraw);
    virtual double GetWorldScale();
    ///@}

    /// @name Repainting
    ///@{

    /// How and what the area repaints.  keel never calls them (but see
    /// Redraw()).  Base: nothing.
    virtual void SetBitmapRedraw(int on);
    virtual void SetRgnRedraw(SYS_Box* b, int on);
    virtual void Redraw(SYS_Box b);
    /// The replay entry of a recorder: on a CDynamic it replays the records
    /// into the recorder's area (protected there, public through a
    /// UI_DrawArea pointer).  Base: nothing.
    virtual void Redraw();
    virtual void RedrawRect(SYS_Box b);
    /// Invalidates a world box, as the host defines it; a recorder ignores it.
    /// Base: nothing.
    virtual void InvalidateRect(const SYS_Box* b);
    virtual void StartResize();
    virtual void EndResize();
    ///@}

    /// Called by CDynamic::Install() (so also by a recorder constructed on
    /// this area): an implementation keeps the recorder and appends it to its
    /// redraw event (a CDynamic is an SCC_EventNode<RedrawBlock>, so
    /// SCC_Event::Append takes it).  The area does not own the recorder.  A
    /// destroyed recorder leaves the event by itself but tells the area
    /// nothing, so any other copy of the pointer the area keeps dangles then.
    /// Base: nothing, so the recorder hears no redraw event.
    virtual void InstallDynamic(CDynamic* dynamic);
    /// A recorder's report; @p dirty points at its dirty box (world
    /// coordinates, the recorder's own field) and @p report is a
    /// DynamicReport.  DYNAMIC_OLD comes from CDynamic::Clear() (and so from
    /// StartBatchDraw() and REDRAW_CLEAR): the records are dropped as soon as
    /// this returns, so an area that shows them replays them now, for example
    /// with dynamic->OnNotification(REDRAW_ERASE, block), or the feedback
    /// stays on the screen.  DYNAMIC_NEW comes from CDynamic::EndBatchDraw():
    /// the new records may be shown (REDRAW_SHOW) now or at the next repaint.
    /// Base: nothing.
    virtual void RedrawDynamic(CDynamic* dynamic, SYS_Box* dirty, int report);

    /// @name Exclusive-or boxes and texts
    ///@{

    /// An implementation draws these in exclusive or whatever the pen mode: a
    /// recorder's replay calls DrawXorBox(SYS_Box) and the point form of
    /// DrawXorText() without setting it.  Base: nothing; the texts answer the
    /// all-zero box.
    virtual void DrawXorBox(SYS_Box b);
    virtual void DrawXorBox(SYS_Point p1, SYS_Point p2);
    /// Draws @p text (zero-terminated, read during the call only) at world
    /// (x, y) and returns the world box it covers.  A recording CDynamic calls
    /// this form with @p flag 0 only to learn the box, which joins its dirty
    /// box; the text is drawn by its replay, which calls the point form with
    /// flag 1 and ignores the result.  @p a and @p b are the host's.
    /// Base: the all-zero box.
    virtual SYS_Box DrawXorText(const char* text, int a, int b, long x, long y, int flag);
    /// The same at @p p; see the two-long form.  Base: the all-zero box.
    virtual SYS_Box DrawXorText(const char* text, int a, int b, SYS_Point p, int flag);
    ///@}

    /// @name Marks and cursor
    ///@{

    /// The origin mark at a world point, and the cursor.  keel never calls
    /// them.  Base: nothing.
    virtual void DrawOriginMark(SYS_Point p);
    virtual void DrawOriginMark(long x, long y);
    virtual void RefreshCursor(SYS_Point* p);
    ///@}

    /// @name Batches and screen drawing
    ///@{

    /// Bracket a run of drawing.  On a CDynamic, StartBatchDraw() and
    /// EndBatchDraw() are its batch cycle, StartScreenDraw() is passed on to
    /// its area and DrawOnScreen() is recorded; keel calls none of them on a
    /// host's area except StartScreenDraw() (passed on by a recorder) and
    /// DrawOnScreen() (replayed).  Base: nothing.
    virtual void StartBatchDraw();
    virtual void EndBatchDraw();
    virtual void StartScreenDraw();
    virtual void EndScreenDraw();
    virtual void DrawOnScreen(bool on);
    virtual void DiscardSplit();
    ///@}

    /// @name Fast primitives
    ///@{

    /// Lines, ovals, arcs and polylines in world coordinates, drawn with the
    /// current pen.  Arrays passed in are read during the call only (a
    /// recorder's replay frees the ones it passes when the call returns).
    /// A recorder's replay calls FastMoveTo(), FastLineTo(),
    /// FastPaintOval(SYS_Box), FastFrameOval(), FastPolyPolyline() and
    /// FastPolyLine() in the area's current pen mode, and FastFrameArc() and
    /// the FastFrameOval() of a recorded DrawXorOval in PEN_XOR.
    /// Base: nothing.
    virtual void FastMoveTo(const SYS_Point& p);
    virtual void FastLineTo(const SYS_Point& p);
    virtual void FastPaintOval(SYS_Box b);
    virtual void FastPaintOval(const SYS_Point& centre, long size, int kind);
    virtual void FrameArc(SYS_Box b, double start, double end);
    virtual void FastFrameOval(const SYS_Box& b);
    /// Draws @p lines polylines whose point counts are @p counts[0..lines-1];
    /// @p points holds all their points one polyline after the other.
    virtual void FastPolyPolyline(SYS_Point* points, const int* counts, int lines);
    virtual void FastPolyPolygon(SYS_Point* points, const int* counts, int polygons, long fill);
    /// The arc of the oval in @p b from @p start to @p end.
    virtual void FastFrameArc(const SYS_Box& b, const SYS_Point& start, const SYS_Point& end);
    /// A polyline of the @p n points at @p points.
    virtual void FastPolyLine(int n, SYS_Point* points, long width, int colour);
    ///@}

    /// @name Text
    ///@{

    /// Text settings, measures and drawing; texts are zero-terminated and
    /// read during the call only.  A recorder's replay calls TextAlign(),
    /// TextExtra(), TextFace() and DrawString() with the recorded values,
    /// TextPath() with a direction in degrees from 0 up to 360 and an empty
    /// font, and TextSize() with an empty font.  Base: nothing; the measures
    /// answer 0.
    virtual void TextAlign(int horizontal, int vertical);
    virtual void TextExtra(int extra);
    virtual void TextFace(int face);
    virtual void TextPath(double degrees, const char* font);
    virtual void TextSize(int width, int height, const char* font);
    virtual int StrokeTextLen(const char* text, int from, int count);
    virtual int StrokeTextLen(const char* text);
    virtual int StrokeTextAscendingHeight();
    virtual int StrokeTextDescendingHeight();
    virtual int StrokeTextFontHeight();
    virtual void DrawString(const char* text);
    virtual void DrawStyledString(const char* text, void* style, SYS_Position at, int a, int b);
    ///@}

    /// @name Clipping
    ///@{

    /// Limit the following drawing to a box, a layer, a circle or polygons
    /// (world coordinates), and lift the limit.  keel never calls them.
    /// Base: nothing.
    virtual void InitClip(SYS_Box& b);
    virtual void ResetClip();
    virtual void InitLayerClip(SDB_Database* db, long layer);
    virtual void FinishLayerClip(SDB_Database* db, long layer);
    virtual void ClipCircle(const SYS_Point& centre, long radius);
    virtual void ClipPolyPolygon(SYS_Point* points, const int* counts, int polygons);
    ///@}

    /// A line from @p p1 to @p p2 of @p width and @p colour.  A recorder's
    /// replay calls it in PEN_XOR, after PenColor(colour) and PenSize(width),
    /// also for a recorded arc too small to draw as one.  Base: nothing.
    virtual void DrawLine(const SYS_Point& p1, const SYS_Point& p2, long width, int colour);

    /// @name Exclusive-or drawing
    ///@{

    /// A run of exclusive-or drawing between StartXORDraw() and EndXORDraw().
    /// keel never calls them.  Base: nothing.
    virtual void StartXORDraw();
    virtual void XORCross(const SYS_Point& p);
    virtual void XORFrameArc(const SYS_Box& b, const SYS_Point& start, const SYS_Point& end);
    virtual void XORFrameOval(const SYS_Point& centre, const long& radius);
    virtual void XORPaintOval(const SYS_Point& centre, const long& radius);
    virtual void XORLineTo(const SYS_Point& p);
    virtual void XORMoveTo(const SYS_Point& p);
    virtual void XORPenColor(const long& colour);
    virtual void EndXORDraw();
    ///@}

    /// @name Other drawing
    ///@{

    /// The arc direction, single pixels and the dot grid, as the host defines
    /// them.  keel never calls them.  Base: nothing; SetArcDirection() answers 0.
    virtual int SetArcDirection(int direction);
    virtual void SetPixel(const SYS_Point& p);
    virtual void DrawDotGrid(SYS_Point& origin, long dx, long dy, SYS_Box& area);
    ///@}

    /// The size of one pixel in database units.  keel never calls it.
    /// Base: 0.0.
    virtual double GetPixelSize();
    /// The host's graphics mode.  keel never calls it.  Base: a mode with
    /// every bit 0.
    virtual gra_mode_union GetGRAMode();
    /// Sets the host's graphics mode; a recorder's replay passes back the
    /// bits it recorded.  Base: nothing.
    virtual void SetGRAMode(gra_mode_union mode);

    /// @name Palette
    ///@{

    /// The area's colour palette; the long colour values are the host's
    /// encoding, and the arrays are the caller's.  Base: nothing, 0.
    virtual long GetDefaultPaletteColors(long* colours) const;
    virtual long GetCurrentPaletteColors(long* colours) const;
    /// The colour that palette index @p index shows now.
    /// UI_PaletteColorConvertor asks the main draw area for it, so with the
    /// base every converted colour is 0.  Base: 0.
    virtual long GetCurrentPaletteColorRGB(int index) const;
    virtual void SetCurrentPaletteColors(long* colours);
    ///@}

    /// @name Host queries
    ///@{

    /// Questions the host's own code asks its area about its data; keel never
    /// calls them.  Base: GetComponentSpecificData() null,
    /// GetCompSideSegmentVisible() 0, IsOnTop() 1 (everything is on top unless
    /// the host says otherwise).
    virtual void* GetComponentSpecificData(void* key) const;
    virtual int GetCompSideSegmentVisible(const GRA_SegmentData& segment, int side) const;
    virtual int IsOnTop(DBD_GeomHdr* geometry, int side) const;
    ///@}

private:
    static UI_DrawArea* s_pMainDrawArea;
};

#endif // UI_DRAWAREA_H
