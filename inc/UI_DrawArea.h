// UI_DrawArea.h - the abstract drawing surface: UI_ScreenCoordConverter (the
// world/screen conversions) and UI_DrawArea (painting, clipping, text and the
// process's main draw area), with the host types they name.
//
// keel draws nothing itself.  A host derives its draw areas from UI_DrawArea
// and overrides the operations it supports; every operation has a harmless
// base body (nothing, 0, 1.0, the all-zero box, a (0, 0) point) so that a
// partial implementation links and runs.  The order of the virtual functions
// below is part of the binary interface: host classes override them by slot,
// so nothing may be added, removed or reordered, and the overloads stay in
// the order given, also where it looks swapped.
//
// World coordinates are database units (SYS_Point, SYS_Box); screen
// coordinates are pixels.  Colours, pen modes, caps, brushes, faces and arc
// directions are plain integers whose meaning is the host's; keel itself only
// ever passes pen mode UI_DrawArea::PEN_XOR (exclusive or).
//
// Costs: no data members, only the virtual table; every operation is one
// virtual call.  The main draw area is one process-wide pointer, not owned.
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

// The host's graphics mode, passed and returned by value.  keel stores and
// passes on its 32 bits untouched; a default-constructed mode has every bit 0.
union gra_mode_union {
    uint32_t bits = 0;
    int32_t value;
};
static_assert(sizeof(gra_mode_union) == 4, "gra_mode_union is exactly 32 bits");

// World/screen conversions.  The base answers 1 for the scales, the all-zero
// box for boxes and (0, 0) for points.
class KEEL_API UI_ScreenCoordConverter {
public:
    // A length along one axis, world to screen and back.
    virtual int Scale2ScreenX(long length) const;
    virtual int Scale2ScreenY(long length) const;
    virtual long Scale2WorldX(int length) const;
    virtual long Scale2WorldY(int length) const;
    virtual SYS_Point Scale2World(SYS_Point p);
    virtual SYS_Point Scale2Screen(SYS_Point p);
    // Positions and boxes; the box form comes first.
    virtual SYS_Box Screen2World(const SYS_Box& b);
    virtual SYS_Point Screen2World(const SYS_Point& p);
    virtual SYS_Box World2Screen(const SYS_Box& b);
    virtual SYS_Point World2Screen(const SYS_Point& p);
};

class KEEL_API UI_DrawArea : public UI_ScreenCoordConverter {
public:
    // What the host passes with its redraw notifications; defined by the
    // host, so that SCC_Event<UI_DrawArea::RedrawBlock> works with it.
    struct RedrawBlock;

    // The codes of the redraw event, as a recorder (CDynamic) answers them:
    // the first two replay it, the third detaches it, the last clears it.
    enum RedrawCode {
        REDRAW_ERASE = 0,     // replay to take the feedback off the screen
        REDRAW_SHOW = 1,      // replay to put it back (XOR: the same replay)
        REDRAW_AREA_GONE = 2, // the area is going away: forget it
        REDRAW_CLEAR = 3      // erase the feedback and drop the records
    };
    // The last argument of RedrawDynamic: what the recorder reports.
    enum DynamicReport {
        DYNAMIC_OLD = 0, // its content before it is dropped (to erase)
        DYNAMIC_NEW = 1  // its new content at the end of a batch (to show)
    };
    // The only pen mode keel passes itself.
    enum { PEN_XOR = 2 };

    UI_DrawArea() {}
    UI_DrawArea(const UI_DrawArea&) {}
    UI_DrawArea& operator=(const UI_DrawArea&) { return *this; }

    // The process's main draw area: null until set, then whatever was set
    // last, even an area destroyed since.  Not owned, nobody is told.
    static UI_DrawArea* GetMainDrawArea() { return s_pMainDrawArea; }
    static void SetMainDrawArea(UI_DrawArea* area) { s_pMainDrawArea = area; }

    virtual ~UI_DrawArea();
    virtual void GetVP(SYS_Box& vp) const;
    virtual void GetUserVP(SYS_Box& vp);
    virtual void SetVP(SYS_Box& vp);
    virtual void SetUserVP(SYS_Box& vp);
    // An implementation attaches the hook to its redraw event.
    virtual void RegisterRedrawHook(SCC_EventHook<RedrawBlock>* hook);
    virtual void FitRectToWindow(SYS_Box& b);
    virtual void SwitchPen(int a, long b, int c);
    virtual void PenCap(int cap);
    virtual void PenColor(int colour);
    virtual void PenMode(int mode);
    virtual int GetPenMode();
    virtual void PenSize(long size);
    virtual void BackColor(int colour);
    virtual int GetBackColor();
    virtual int RegisterBrush(unsigned int pattern);
    virtual void SetSolidBrush(int brush);
    virtual void SetHatchBrush(int brush, int style);
    virtual void EraseRect(SYS_Box b);
    virtual void FillRect(SYS_Box b, int fill);
    virtual void MoveCursor(long x, long y);
    virtual double GetScale(SYS_Point* centre);
    virtual int SetScale(double scale, SYS_Point* centre, int redraw);
    virtual double GetWorldScale();
    virtual void SetBitmapRedraw(int on);
    virtual void SetRgnRedraw(SYS_Box* b, int on);
    virtual void Redraw(SYS_Box b);
    // The replay entry of a recorder.
    virtual void Redraw();
    virtual void RedrawRect(SYS_Box b);
    virtual void InvalidateRect(const SYS_Box* b);
    virtual void StartResize();
    virtual void EndResize();
    // An implementation keeps the recorder and hooks it to its redraw event.
    virtual void InstallDynamic(CDynamic* dynamic);
    // Called by a recorder with its dirty box and a DynamicReport.
    virtual void RedrawDynamic(CDynamic* dynamic, SYS_Box* dirty, int report);
    virtual void DrawXorBox(SYS_Box b);
    virtual void DrawXorBox(SYS_Point p1, SYS_Point p2);
    virtual SYS_Box DrawXorText(const char* text, int a, int b, long x, long y, int flag);
    virtual SYS_Box DrawXorText(const char* text, int a, int b, SYS_Point p, int flag);
    virtual void DrawOriginMark(SYS_Point p);
    virtual void DrawOriginMark(long x, long y);
    virtual void RefreshCursor(SYS_Point* p);
    virtual void StartBatchDraw();
    virtual void EndBatchDraw();
    virtual void StartScreenDraw();
    virtual void EndScreenDraw();
    virtual void DrawOnScreen(bool on);
    virtual void DiscardSplit();
    virtual void FastMoveTo(const SYS_Point& p);
    virtual void FastLineTo(const SYS_Point& p);
    virtual void FastPaintOval(SYS_Box b);
    virtual void FastPaintOval(const SYS_Point& centre, long size, int kind);
    virtual void FrameArc(SYS_Box b, double start, double end);
    virtual void FastFrameOval(const SYS_Box& b);
    virtual void FastPolyPolyline(SYS_Point* points, const int* counts, int lines);
    virtual void FastPolyPolygon(SYS_Point* points, const int* counts, int polygons, long fill);
    virtual void FastFrameArc(const SYS_Box& b, const SYS_Point& start, const SYS_Point& end);
    virtual void FastPolyLine(int n, SYS_Point* points, long width, int colour);
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
    virtual void InitClip(SYS_Box& b);
    virtual void ResetClip();
    virtual void InitLayerClip(SDB_Database* db, long layer);
    virtual void FinishLayerClip(SDB_Database* db, long layer);
    virtual void ClipCircle(const SYS_Point& centre, long radius);
    virtual void ClipPolyPolygon(SYS_Point* points, const int* counts, int polygons);
    virtual void DrawLine(const SYS_Point& p1, const SYS_Point& p2, long width, int colour);
    virtual void StartXORDraw();
    virtual void XORCross(const SYS_Point& p);
    virtual void XORFrameArc(const SYS_Box& b, const SYS_Point& start, const SYS_Point& end);
    virtual void XORFrameOval(const SYS_Point& centre, const long& radius);
    virtual void XORPaintOval(const SYS_Point& centre, const long& radius);
    virtual void XORLineTo(const SYS_Point& p);
    virtual void XORMoveTo(const SYS_Point& p);
    virtual void XORPenColor(const long& colour);
    virtual void EndXORDraw();
    virtual int SetArcDirection(int direction);
    virtual void SetPixel(const SYS_Point& p);
    virtual void DrawDotGrid(SYS_Point& origin, long dx, long dy, SYS_Box& area);
    virtual double GetPixelSize();
    virtual gra_mode_union GetGRAMode();
    virtual void SetGRAMode(gra_mode_union mode);
    virtual long GetDefaultPaletteColors(long* colours) const;
    virtual long GetCurrentPaletteColors(long* colours) const;
    virtual long GetCurrentPaletteColorRGB(int index) const;
    virtual void SetCurrentPaletteColors(long* colours);
    virtual void* GetComponentSpecificData(void* key) const;
    virtual int GetCompSideSegmentVisible(const GRA_SegmentData& segment, int side) const;
    // Everything is on top unless the host says otherwise.
    virtual int IsOnTop(DBD_GeomHdr* geometry, int side) const;

private:
    static UI_DrawArea* s_pMainDrawArea;
};

#endif // UI_DRAWAREA_H
