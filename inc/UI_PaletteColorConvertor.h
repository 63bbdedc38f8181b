// UI_PaletteColorConvertor.h - the convertor that shows a palette index as
// the colour the main draw area currently gives it.
//
// A colour property stores a palette index; read through this convertor
// (direction 0) it is displayed as the main draw area's colour for that
// index (GetCurrentPaletteColorRGB).  Direction 1 leaves the value as it is.
// A main draw area must be set while a convertor is used: it is not tested.
//
// Every convertor hangs a hook on the class-wide notifier s_Notifier, which
// NotifyPaletteChange raises with PALETTE_CHANGED; the library's own handler
// does nothing, so the notification serves the hooks a subclass attaches.
//
// Costs: a conversion is one virtual call on the draw area and a variant
// copy; construction and destruction link and unlink one hook (O(1)).
#ifndef UI_PALETTECOLORCONVERTOR_H
#define UI_PALETTECOLORCONVERTOR_H

#include "SCC_Event.h"
#include "SCC_Variant.h"
#include "keel_config.h"

class KEEL_API UI_PaletteColorConvertor : public SCC_Convertor {
public:
    // The code with which NotifyPaletteChange raises s_Notifier.
    enum { PALETTE_CHANGED = 4 };

    // Calls OnEvent on this convertor, priority 0.
    SCC_ObjectEventHook<UI_PaletteColorConvertor, int> m_Hook;

    // Appends the hook to the end of s_Notifier's chain.
    UI_PaletteColorConvertor();
    // The new hook joins the chain just before the source's hook and, as a
    // copied hook does, calls the source's OnEvent.
    UI_PaletteColorConvertor(UI_PaletteColorConvertor& other);
    // Assigns the count word (as the shared-buffer base does) and the hook
    // (leaving its chain for the place before the source's hook).
    UI_PaletteColorConvertor& operator=(UI_PaletteColorConvertor& other);
    // The hook leaves s_Notifier's chain.
    ~UI_PaletteColorConvertor() override;

    // Direction 0: the main draw area's colour for the index held by the
    // value, as a long variant (throws as SCC_Variant::operator int does).
    // Any other direction: a copy of the value.
    SCC_Variant Convert(SCC_Variant value, int direction) override;
    // The hook's method: does nothing, returns 0.
    int OnEvent(int code, int* data);
    // Raises s_Notifier with PALETTE_CHANGED and no data.
    static void NotifyPaletteChange();

protected:
    // The palette-change event; every live convertor's hook is in its chain.
    static SCC_Notifier s_Notifier;
};

#endif // UI_PALETTECOLORCONVERTOR_H
