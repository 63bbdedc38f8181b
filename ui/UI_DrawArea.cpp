// UI_DrawArea.cpp - the base bodies of the drawing surface: each does
// nothing or answers a neutral value, so that a host overrides only what it
// draws.
#include "UI_DrawArea.h"

UI_DrawArea* UI_DrawArea::s_pMainDrawArea = nullptr;

int UI_ScreenCoordConverter::Scale2ScreenX(long) const { return 1; }
int UI_ScreenCoordConverter::Scale2ScreenY(long) const { return 1; }
long UI_ScreenCoordConverter::Scale2WorldX(int) const { return 1; }
long UI_ScreenCoordConverter::Scale2WorldY(int) const { return 1; }
// The point conversions answer (0, 0) rather than an unset point.
SYS_Point UI_ScreenCoordConverter::Scale2World(SYS_Point) { return SYS_Point(0, 0); }
SYS_Point UI_ScreenCoordConverter::Scale2Screen(SYS_Point) { return SYS_Point(0, 0); }
SYS_Box UI_ScreenCoordConverter::Screen2World(const SYS_Box&) { return SYS_Box(); }
SYS_Point UI_ScreenCoordConverter::Screen2World(const SYS_Point&) { return SYS_Point(0, 0); }
SYS_Box UI_ScreenCoordConverter::World2Screen(const SYS_Box&) { return SYS_Box(); }
SYS_Point UI_ScreenCoordConverter::World2Screen(const SYS_Point&) { return SYS_Point(0, 0); }

UI_DrawArea::~UI_DrawArea() {}
void UI_DrawArea::GetVP(SYS_Box&) const {}
void UI_DrawArea::GetUserVP(SYS_Box&) {}
void UI_DrawArea::SetVP(SYS_Box&) {}
void UI_DrawArea::SetUserVP(SYS_Box&) {}
void UI_DrawArea::RegisterRedrawHook(SCC_EventHook<RedrawBlock>*) {}
void UI_DrawArea::FitRectToWindow(SYS_Box&) {}
void UI_DrawArea::SwitchPen(int, long, int) {}
void UI_DrawArea::PenCap(int) {}
void UI_DrawArea::PenColor(int) {}
void UI_DrawArea::PenMode(int) {}
int UI_DrawArea::GetPenMode() { return 0; }
void UI_DrawArea::PenSize(long) {}
void UI_DrawArea::BackColor(int) {}
int UI_DrawArea::GetBackColor() { return 0; }
int UI_DrawArea::RegisterBrush(unsigned int) { return 0; }
void UI_DrawArea::SetSolidBrush(int) {}
void UI_DrawArea::SetHatchBrush(int, int) {}
void UI_DrawArea::EraseRect(SYS_Box) {}
void UI_DrawArea::FillRect(SYS_Box, int) {}
void UI_DrawArea::MoveCursor(long, long) {}
double UI_DrawArea::GetScale(SYS_Point*) { return 1.0; }
int UI_DrawArea::SetScale(double, SYS_Point*, int) { return 0; }
double UI_DrawArea::GetWorldScale() { return 1.0; }
void UI_DrawArea::SetBitmapRedraw(int) {}
void UI_DrawArea::SetRgnRedraw(SYS_Box*, int) {}
void UI_DrawArea::Redraw(SYS_Box) {}
void UI_DrawArea::Redraw() {}
void UI_DrawArea::RedrawRect(SYS_Box) {}
void UI_DrawArea::InvalidateRect(const SYS_Box*) {}
void UI_DrawArea::StartResize() {}
void UI_DrawArea::EndResize() {}
void UI_DrawArea::InstallDynamic(CDynamic*) {}
void UI_DrawArea::RedrawDynamic(CDynamic*, SYS_Box*, int) {}
void UI_DrawArea::DrawXorBox(SYS_Box) {}
void UI_DrawArea::DrawXorBox(SYS_Point, SYS_Point) {}
SYS_Box UI_DrawArea::DrawXorText(const char*, int, int, long, long, int) { return SYS_Box(); }
SYS_Box UI_DrawArea::DrawXorText(const char*, int, int, SYS_Point, int) { return SYS_Box(); }
void UI_DrawArea::DrawOriginMark(SYS_Point) {}
void UI_DrawArea::DrawOriginMark(long, long) {}
void UI_DrawArea::RefreshCursor(SYS_Point*) {}
void UI_DrawArea::StartBatchDraw() {}
void UI_DrawArea::EndBatchDraw() {}
void UI_DrawArea::StartScreenDraw() {}
void UI_DrawArea::EndScreenDraw() {}
void UI_DrawArea::DrawOnScreen(bool) {}
void UI_DrawArea::DiscardSplit() {}
void UI_DrawArea::FastMoveTo(const SYS_Point&) {}
void UI_DrawArea::FastLineTo(const SYS_Point&) {}
void UI_DrawArea::FastPaintOval(SYS_Box) {}
void UI_DrawArea::FastPaintOval(const SYS_Point&, long, int) {}
void UI_DrawArea::FrameArc(SYS_Box, double, double) {}
void UI_DrawArea::FastFrameOval(const SYS_Box&) {}
void UI_DrawArea::FastPolyPolyline(SYS_Point*, const int*, int) {}
void UI_DrawArea::FastPolyPolygon(SYS_Point*, const int*, int, long) {}
void UI_DrawArea::FastFrameArc(const SYS_Box&, const SYS_Point&, const SYS_Point&) {}
void UI_DrawArea::FastPolyLine(int, SYS_Point*, long, int) {}
void UI_DrawArea::TextAlign(int, int) {}
void UI_DrawArea::TextExtra(int) {}
void UI_DrawArea::TextFace(int) {}
void UI_DrawArea::TextPath(double, const char*) {}
void UI_DrawArea::TextSize(int, int, const char*) {}
int UI_DrawArea::StrokeTextLen(const char*, int, int) { return 0; }
int UI_DrawArea::StrokeTextLen(const char*) { return 0; }
int UI_DrawArea::StrokeTextAscendingHeight() { return 0; }
int UI_DrawArea::StrokeTextDescendingHeight() { return 0; }
int UI_DrawArea::StrokeTextFontHeight() { return 0; }
void UI_DrawArea::DrawString(const char*) {}
void UI_DrawArea::DrawStyledString(const char*, void*, SYS_Position, int, int) {}
void UI_DrawArea::InitClip(SYS_Box&) {}
void UI_DrawArea::ResetClip() {}
void UI_DrawArea::InitLayerClip(SDB_Database*, long) {}
void UI_DrawArea::FinishLayerClip(SDB_Database*, long) {}
void UI_DrawArea::ClipCircle(const SYS_Point&, long) {}
void UI_DrawArea::ClipPolyPolygon(SYS_Point*, const int*, int) {}
void UI_DrawArea::DrawLine(const SYS_Point&, const SYS_Point&, long, int) {}
void UI_DrawArea::StartXORDraw() {}
void UI_DrawArea::XORCross(const SYS_Point&) {}
void UI_DrawArea::XORFrameArc(const SYS_Box&, const SYS_Point&, const SYS_Point&) {}
void UI_DrawArea::XORFrameOval(const SYS_Point&, const long&) {}
void UI_DrawArea::XORPaintOval(const SYS_Point&, const long&) {}
void UI_DrawArea::XORLineTo(const SYS_Point&) {}
void UI_DrawArea::XORMoveTo(const SYS_Point&) {}
void UI_DrawArea::XORPenColor(const long&) {}
void UI_DrawArea::EndXORDraw() {}
int UI_DrawArea::SetArcDirection(int) { return 0; }
void UI_DrawArea::SetPixel(const SYS_Point&) {}
void UI_DrawArea::DrawDotGrid(SYS_Point&, long, long, SYS_Box&) {}
double UI_DrawArea::GetPixelSize() { return 0.0; }
gra_mode_union UI_DrawArea::GetGRAMode() { return gra_mode_union(); }
void UI_DrawArea::SetGRAMode(gra_mode_union) {}
long UI_DrawArea::GetDefaultPaletteColors(long*) const { return 0; }
long UI_DrawArea::GetCurrentPaletteColors(long*) const { return 0; }
long UI_DrawArea::GetCurrentPaletteColorRGB(int) const { return 0; }
void UI_DrawArea::SetCurrentPaletteColors(long*) {}
void* UI_DrawArea::GetComponentSpecificData(void*) const { return nullptr; }
int UI_DrawArea::GetCompSideSegmentVisible(const GRA_SegmentData&, int) const { return 0; }
int UI_DrawArea::IsOnTop(DBD_GeomHdr*, int) const { return 1; }
