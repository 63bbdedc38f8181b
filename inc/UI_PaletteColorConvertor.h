/// @file
/// The convertor that shows a palette index as the colour the main draw area
/// currently gives it.
///
/// A colour property stores a palette index; read through this convertor
/// (direction 0) it is displayed as the main draw area's colour for that
/// index (GetCurrentPaletteColorRGB).  Direction 1 leaves the value as it is.
/// A main draw area must be set while a convertor is used: it is not tested.
///
/// Every convertor hangs a hook on the class-wide notifier s_Notifier, which
/// NotifyPaletteChange raises with PALETTE_CHANGED; the library's own handler
/// does nothing, so the notification serves the hooks a subclass attaches.
///
/// Costs: a conversion is one virtual call on the draw area and a variant
/// copy; construction and destruction link and unlink one hook (O(1)).
#ifndef UI_PALETTECOLORCONVERTOR_H
#define UI_PALETTECOLORCONVERTOR_H

#include "SCC_Event.h"
#include "SCC_Variant.h"
#include "keel_config.h"

/// A value convertor from a palette index (stored) to the main draw area's
/// current colour for it (displayed).  Reference counted like every
/// SCC_Convertor: hand it to a property through SCC_SharedPointer.
class KEEL_API UI_PaletteColorConvertor : public SCC_Convertor {
public:
    /// PALETTE_CHANGED, the code with which NotifyPaletteChange() raises
    /// s_Notifier.
    enum { PALETTE_CHANGED = 4 };

    /// The convertor's node in s_Notifier's chain; it calls OnEvent() on this
    /// convertor, priority 0.
    SCC_ObjectEventHook<UI_PaletteColorConvertor, int> m_Hook;

    /// Appends the hook to the end of s_Notifier's chain, so convertors hear
    /// a palette change in the order they were made.
    UI_PaletteColorConvertor();
    /// The new hook joins the chain just before the source's hook and, as a
    /// copied hook does, calls the source's OnEvent(): the source must outlive
    /// the copy while palette changes are raised.  The reference count starts
    /// afresh, as for a new convertor.
    UI_PaletteColorConvertor(UI_PaletteColorConvertor& other);
    /// Assigns the count word (as the shared-buffer base does: the source's
    /// reference count is copied as it stands, so assign only convertors that
    /// no SCC_SharedPointer holds) and the hook (leaving its chain for the
    /// place before the source's hook, and calling the source's OnEvent()
    /// from then on).  Returns this convertor.
    UI_PaletteColorConvertor& operator=(UI_PaletteColorConvertor& other);
    /// The hook leaves s_Notifier's chain.
    ~UI_PaletteColorConvertor() override;

    /// Direction 0: the main draw area's GetCurrentPaletteColorRGB() for the
    /// index that @p value holds (read with SCC_Variant::operator int, which
    /// throws SYS_Exception for a number out of the int range or a text that
    /// is not a number), as a long variant (its low 32 bits).  There must be
    /// a main draw area (UI_DrawArea::SetMainDrawArea()): it is called
    /// without a null test.
    /// Any other direction: a copy of @p value.
    SCC_Variant Convert(SCC_Variant value, int direction) override;
    /// The hook's method: does nothing, returns 0.
    int OnEvent(int code, int* data);
    /// Raises s_Notifier with PALETTE_CHANGED and no data: every hook in its
    /// chain is called once, in chain order.  O(hooks).  A host calls it after
    /// it changed the main draw area's palette.
    static void NotifyPaletteChange();

protected:
    /// The palette-change event; every live convertor's hook is in its chain,
    /// and a subclass may attach hooks of its own to hear palette changes.
    static SCC_Notifier s_Notifier;
};

#endif // UI_PALETTECOLORCONVERTOR_H
