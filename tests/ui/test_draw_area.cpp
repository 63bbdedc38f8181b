// Tests of the draw area's base answers and the main draw area.
#include <keel/UI_DrawArea.h>

#include <gtest/gtest.h>

namespace {

TEST(DrawArea, BaseAnswersAreNeutral) {
    UI_DrawArea area;
    const SYS_Box zero;
    const SYS_Point origin(0, 0), p(5, 6);
    EXPECT_EQ(area.Scale2ScreenX(100) + area.Scale2ScreenY(100), 2);
    EXPECT_EQ(area.Scale2WorldX(100) + area.Scale2WorldY(100), 2);
    EXPECT_EQ(area.Scale2World(p), origin);
    EXPECT_EQ(area.Scale2Screen(p), origin);
    EXPECT_EQ(area.Screen2World(p), origin);
    EXPECT_EQ(area.World2Screen(p), origin);
    EXPECT_EQ(area.Screen2World(SYS_Box(1, 2, 3, 4)), zero);
    EXPECT_EQ(area.World2Screen(SYS_Box(1, 2, 3, 4)), zero);
    EXPECT_EQ(area.DrawXorText("ab", 1, 2, 3L, 4L, 0), zero);
    EXPECT_EQ(area.DrawXorText("ab", 1, 2, p, 0), zero);
    EXPECT_EQ(area.IsOnTop(nullptr, 0), 1);
    EXPECT_EQ(area.GetScale(nullptr), 1.0);
    EXPECT_EQ(area.GetWorldScale(), 1.0);
    EXPECT_EQ(area.GetPixelSize(), 0.0);
    EXPECT_EQ(area.GetGRAMode().bits, 0u);
    EXPECT_EQ(area.GetComponentSpecificData(&area), nullptr);
    EXPECT_EQ(area.GetPenMode() + area.GetBackColor() + area.RegisterBrush(7) +
                  area.SetScale(2.0, nullptr, 1) + area.SetArcDirection(1) +
                  area.StrokeTextLen("ab") + area.StrokeTextLen("ab", 0, 2) +
                  area.GetCurrentPaletteColorRGB(3) + area.GetDefaultPaletteColors(nullptr),
              0);
}

TEST(DrawArea, MainDrawAreaIsWhateverWasSetLast) {
    EXPECT_EQ(UI_DrawArea::GetMainDrawArea(), nullptr);
    UI_DrawArea* gone = new UI_DrawArea;
    UI_DrawArea::SetMainDrawArea(gone);
    delete gone; // nobody is told
    EXPECT_EQ(UI_DrawArea::GetMainDrawArea(), gone);
    UI_DrawArea::SetMainDrawArea(nullptr);
    EXPECT_EQ(UI_DrawArea::GetMainDrawArea(), nullptr);
}

} // namespace
