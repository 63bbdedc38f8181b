// UI_PaletteColorConvertor.cpp - palette indices shown as the main draw
// area's colours, and the class-wide palette-change notifier.
#include "UI_PaletteColorConvertor.h"

#include "UI_DrawArea.h"

SCC_Notifier UI_PaletteColorConvertor::s_Notifier;

UI_PaletteColorConvertor::UI_PaletteColorConvertor() {
    m_Hook.SetObject(this);
    m_Hook.SetMethod(&UI_PaletteColorConvertor::OnEvent);
    m_Hook.SetPriority(0);
    s_Notifier.Append(&m_Hook);
}

UI_PaletteColorConvertor::UI_PaletteColorConvertor(UI_PaletteColorConvertor& other)
    : SCC_Convertor(other), m_Hook(other.m_Hook) {}

UI_PaletteColorConvertor& UI_PaletteColorConvertor::operator=(UI_PaletteColorConvertor& other) {
    SCC_SharedBuffer::operator=(other);
    m_Hook = other.m_Hook;
    return *this;
}

UI_PaletteColorConvertor::~UI_PaletteColorConvertor() {}

SCC_Variant UI_PaletteColorConvertor::Convert(SCC_Variant value, int direction) {
    if (direction != 0) return value;
    const int index = value;
    return SCC_Variant(UI_DrawArea::GetMainDrawArea()->GetCurrentPaletteColorRGB(index));
}

int UI_PaletteColorConvertor::OnEvent(int, int*) { return 0; }

void UI_PaletteColorConvertor::NotifyPaletteChange() {
    s_Notifier.Notify(PALETTE_CHANGED, nullptr);
}
