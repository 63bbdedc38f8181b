// RasterArea.h - a draw area a person can look at: UI_DrawArea painting into
// an in-memory RGB bitmap, written out as PNG.
//
// This is host code, not part of libkeel: it shows what a host implements
// and lets the tests and keel-demo check drawings pixel by pixel.  A world
// box (database units, y up) is mapped onto the bitmap (row 0 at the top)
// with one scale for both axes.  Colours are indices into a 16-entry
// palette; pen mode UI_DrawArea::PEN_XOR makes every primitive exclusive-or
// its pixels instead of setting them, and DrawXorBox and DrawXorText always
// do.  Each primitive touches each pixel once (its pixels are collected and
// deduplicated first), so drawing a primitive twice in exclusive-or restores
// the bitmap bit for bit.
//
// The area has no font: DrawXorText frames the box the text would take,
// estimated from its length and the text size, and with flag 0 only returns
// that box (the recorder measures its texts so).
//
// Costs: 4 bytes per pixel; a primitive costs O(pixels it covers) plus a
// sort of those pixels.  Nothing outside the bitmap is visited.
#ifndef KEEL_RASTER_AREA_H
#define KEEL_RASTER_AREA_H

#include <keel/SCC_Event.h>
#include <keel/SYS_Geom.h>
#include <keel/UI_DrawArea.h>

#include <cstdint>
#include <string>
#include <vector>

// What the raster area passes with its redraw notifications: the region in
// world coordinates that the notification concerns.
struct UI_DrawArea::RedrawBlock {
    SYS_Box region;
};

class RasterArea : public UI_DrawArea {
public:
    static const int kPaletteSize = 16;

    // A bitmap of width x height pixels showing `world`, filled with the
    // back colour (palette index 0).
    RasterArea(int width, int height, const SYS_Box& world);
    // Tells every recorder on the redraw event that the area goes away.
    ~RasterArea() override;
    RasterArea(const RasterArea&) = delete;
    RasterArea& operator=(const RasterArea&) = delete;

    int Width() const { return m_Width; }
    int Height() const { return m_Height; }
    // 0x00RRGGBB per pixel, row by row from the top.
    const std::vector<uint32_t>& Pixels() const { return m_Pixels; }
    void SetPaletteColor(int index, uint32_t rgb);
    // Writes the bitmap as an 8-bit RGB PNG; on failure returns false and
    // says why in *error.
    bool WritePng(const std::string& path, std::string* error) const;

    // World/screen conversions of the bitmap's mapping.
    int Scale2ScreenX(long length) const override;
    int Scale2ScreenY(long length) const override;
    long Scale2WorldX(int length) const override;
    long Scale2WorldY(int length) const override;
    SYS_Box World2Screen(const SYS_Box& b) override;
    SYS_Point World2Screen(const SYS_Point& p) override;
    double GetPixelSize() override;

    // Recorders: installed ones hang on the redraw event; a recorder's
    // report is answered at once by replaying it.
    void RegisterRedrawHook(SCC_EventHook<RedrawBlock>* hook) override;
    void InstallDynamic(CDynamic* dynamic) override;
    void RedrawDynamic(CDynamic* dynamic, SYS_Box* dirty, int report) override;

    void PenColor(int colour) override { m_PenColor = colour; }
    void PenMode(int mode) override { m_PenMode = mode; }
    int GetPenMode() override { return m_PenMode; }
    void PenSize(long size) override { m_PenSize = size; }
    void BackColor(int colour) override { m_BackColor = colour; }
    int GetBackColor() override { return m_BackColor; }
    void TextSize(int width, int height, const char* font) override;
    long GetCurrentPaletteColorRGB(int index) const override;

    void EraseRect(SYS_Box b) override;
    void FillRect(SYS_Box b, int fill) override;
    void DrawXorBox(SYS_Box b) override;
    void DrawXorBox(SYS_Point p1, SYS_Point p2) override;
    SYS_Box DrawXorText(const char* text, int a, int b, long x, long y, int flag) override;
    SYS_Box DrawXorText(const char* text, int a, int b, SYS_Point p, int flag) override;
    void FastMoveTo(const SYS_Point& p) override { m_Pen = p; }
    void FastLineTo(const SYS_Point& p) override;
    void FastPaintOval(SYS_Box b) override;
    void FastFrameOval(const SYS_Box& b) override;
    void FastFrameArc(const SYS_Box& b, const SYS_Point& start, const SYS_Point& end) override;
    void FastPolyPolyline(SYS_Point* points, const int* counts, int lines) override;
    void FastPolyLine(int n, SYS_Point* points, long width, int colour) override;
    void DrawLine(const SYS_Point& p1, const SYS_Point& p2, long width, int colour) override;
    void SetPixel(const SYS_Point& p) override;

private:
    // A point in pixels, x right and y down; doubles so that far-away world
    // points do not overflow before they are clipped.
    struct Pixel {
        double x, y;
    };

    Pixel ToPixel(const SYS_Point& p) const;
    // Pen width in whole pixels, at least 1.
    int PixelWidth(long width) const;
    // Adds the pixels of a line of `width` pixels between a and b.
    void AddLine(Pixel a, Pixel b, int width);
    // Adds the outline (or the whole area) of the oval in box b.
    void AddOval(const SYS_Box& b, bool filled);
    void AddRect(const SYS_Box& b, bool filled);
    void Add(long x, long y);
    // Sets or exclusive-ors the collected pixels once each with the colour
    // of palette index `colour`, then forgets them.
    void Paint(int colour, bool exclusiveOr);

    int m_Width, m_Height;
    SYS_Box m_World;
    double m_Scale; // pixels per database unit
    std::vector<uint32_t> m_Pixels;
    uint32_t m_Palette[kPaletteSize];
    std::vector<uint32_t> m_Collected; // pixel indices of the primitive being drawn
    int m_PenColor = 1;
    int m_PenMode = 0;
    long m_PenSize = 0;
    int m_BackColor = 0;
    int m_TextWidth = 0, m_TextHeight = 0; // database units per character
    SYS_Point m_Pen = SYS_Point(0, 0);
    SCC_Event<RedrawBlock> m_Redraw;
};

#endif // KEEL_RASTER_AREA_H
