// Tests of UI_PaletteColorConvertor: conversions through the main draw area
// and the class-wide notifier's chain of hooks.
#include <keel/UI_DrawArea.h>
#include <keel/UI_PaletteColorConvertor.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

class Palette : public UI_DrawArea {
public:
    long GetCurrentPaletteColorRGB(int index) const override { return index == 3 ? 0x00FF00 : 0; }
};

// Exposes the notifier's chain, and lists the convertors it reaches.
class Probe : public UI_PaletteColorConvertor {
public:
    static std::vector<SCC_EventNode<int>*> Chain() {
        std::vector<SCC_EventNode<int>*> hooks;
        for (SCC_EventNode<int>* n = s_Notifier.next; n != &s_Notifier; n = n->next)
            hooks.push_back(n);
        return hooks;
    }
};

typedef std::vector<SCC_EventNode<int>*> Hooks;

TEST(PaletteConvertor, ConvertsIndicesThroughTheMainDrawArea) {
    Palette palette;
    UI_DrawArea plain;
    UI_PaletteColorConvertor c;
    UI_DrawArea::SetMainDrawArea(&palette);
    const SCC_Variant green = c.Convert(SCC_Variant(3), 0);
    EXPECT_EQ(green.GetType(), SCC_Variant::TYPE_LONG);
    EXPECT_EQ(green.m_Long, 0x00FF00);
    EXPECT_EQ(c.Convert(SCC_Variant("3.9"), 0).m_Long, 0x00FF00); // the index is truncated
    const SCC_Variant back = c.Convert(SCC_Variant(3), 1);
    EXPECT_EQ(back.GetType(), SCC_Variant::TYPE_LONG);
    EXPECT_EQ(back.m_Long, 3);
    EXPECT_EQ(c.Convert(SCC_Variant("x"), 7).m_String, SYS_StringBase("x"));
    UI_DrawArea::SetMainDrawArea(&plain);
    EXPECT_EQ(c.Convert(SCC_Variant(3), 0).m_Long, 0);
    UI_DrawArea::SetMainDrawArea(nullptr);
}

TEST(PaletteConvertor, HooksJoinAndLeaveTheNotifier) {
    UI_PaletteColorConvertor a, b;
    EXPECT_EQ(Probe::Chain(), (Hooks{&a.m_Hook, &b.m_Hook}));
    {
        UI_PaletteColorConvertor copy(b);
        EXPECT_EQ(Probe::Chain(), (Hooks{&a.m_Hook, &copy.m_Hook, &b.m_Hook}));
        EXPECT_EQ(copy.m_Hook.object, &b);
        a = b; // a's hook moves in front of b's
        EXPECT_EQ(Probe::Chain(), (Hooks{&copy.m_Hook, &a.m_Hook, &b.m_Hook}));
    }
    EXPECT_EQ(Probe::Chain(), (Hooks{&a.m_Hook, &b.m_Hook}));
    UI_PaletteColorConvertor::NotifyPaletteChange(); // every OnEvent runs and returns
    {
        SCC_SharedPointer<SCC_Convertor> held(new UI_PaletteColorConvertor);
        EXPECT_EQ(Probe::Chain().size(), 3u);
    }
    EXPECT_EQ(Probe::Chain(), (Hooks{&a.m_Hook, &b.m_Hook}));
}

// A subclass's own hook hears the change code.
TEST(PaletteConvertor, NotifyRaisesPaletteChanged) {
    struct Listener : UI_PaletteColorConvertor {
        SCC_ObjectEventHook<Listener, int> ear;
        std::vector<int> codes;
        Listener() {
            ear.SetObject(this);
            ear.SetMethod(&Listener::Heard);
            ear.Attach(&s_Notifier);
        }
        int Heard(int code, int*) { return codes.push_back(code), 0; }
    } listener;
    UI_PaletteColorConvertor::NotifyPaletteChange();
    EXPECT_EQ(listener.codes, std::vector<int>{UI_PaletteColorConvertor::PALETTE_CHANGED});
    EXPECT_EQ(listener.OnEvent(4, nullptr), 0);
}

} // namespace
