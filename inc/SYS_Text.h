/// @file SYS_Text.h
/// The data of a placed text: style, attributes and the item.
///
/// SYS_TextStyle names a font and a character size; SYS_TextAttributes refers
/// to a style owned elsewhere and places the text with a position; SYS_Text
/// adds the string.  Plain value classes without virtual functions: copies
/// are deep except for the style, which is shared by pointer.  No layout is
/// done here.  Every setter stores its value unchecked and returns 1.
#ifndef SYS_TEXT_H
#define SYS_TEXT_H

#include "SYS_Geom.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <cstdint>

/// Font name and character height and width in database units.
class KEEL_API SYS_TextStyle {
public:
    /// Empty font name, height 0, width 0.
    SYS_TextStyle();
    /// Copies all three fields (the font name is copied).
    SYS_TextStyle(const SYS_TextStyle& other);
    /// Copies all three fields (the font name is copied).
    SYS_TextStyle& operator=(const SYS_TextStyle& other);
    /// Releases the font name.
    ~SYS_TextStyle();

    /// A copy of the font name.
    SYS_StringBase GetFont() const { return m_Font; }
    /// Stores a copy of the font name; returns 1.
    int SetFont(const SYS_StringBase& f);
    /// The character height in database units.
    long GetHeight() const { return m_Height; }
    /// The character width in database units.
    long GetWidth() const { return m_Width; }
    /// Stores the height unchecked (negative values too); returns 1.  A long
    /// keeps its low 32 bits.
    int SetHeight(long h);
    /// Stores the width unchecked (negative values too); returns 1.  A long
    /// keeps its low 32 bits.
    int SetWidth(long w);

    SYS_StringBase m_Font; ///< Font name; empty by default.
    int32_t m_Height;      ///< Character height in database units; 0 by default.
    int32_t m_Width;       ///< Character width in database units; 0 by default.
};

/// A reference to a style (not owned, may be null) and a placement.
class KEEL_API SYS_TextAttributes {
public:
    /// No style (null), position all zero.
    SYS_TextAttributes();
    /// Copies the style pointer (the style itself is shared) and the
    /// position.
    SYS_TextAttributes(const SYS_TextAttributes& other);
    /// Copies the style pointer (the style itself is shared) and the
    /// position.
    SYS_TextAttributes& operator=(const SYS_TextAttributes& other);

    /// The style pointer, or null; the style is not owned.
    const SYS_TextStyle* GetStyle() const { return m_Style; }
    /// Keeps the address of `s`, not a copy: the caller keeps `s` alive as
    /// long as these attributes (and every copy of them) use it, and a change
    /// to `s` shows through all of them.  Returns 1.
    int SetStyle(const SYS_TextStyle& s);
    /// A copy of the position.
    SYS_Position GetPosition() const { return m_Position; }
    /// Stores the fields exactly as given; the orientation is not reduced
    /// (700,000,000 stays 700,000,000) and the mirror flag not normalised.
    /// Returns 1.
    int SetPosition(const SYS_Position& p);

    /// The style, owned elsewhere; null by default.
    const SYS_TextStyle* m_Style;
    /// Origin, orientation and mirror flag of the text; all zero by default.
    SYS_Position m_Position;
};

/// A text item: its attributes and its string.
class KEEL_API SYS_Text : public SYS_TextAttributes {
public:
    /// No style, position all zero, empty text.
    SYS_Text();
    /// Copies the attributes (the style pointer is shared, not duplicated)
    /// and the text.
    SYS_Text(const SYS_Text& other);
    /// Copies the attributes (the style pointer is shared, not duplicated)
    /// and the text.
    SYS_Text& operator=(const SYS_Text& other);
    /// Releases the text; the style is left alone.
    ~SYS_Text();

    /// A copy of the text.
    SYS_StringBase GetString() const { return m_Text; }
    /// Stores a copy of s; returns 1.
    int SetString(const SYS_StringBase& s);

    SYS_StringBase m_Text; ///< The text; empty by default.
};

#endif // SYS_TEXT_H
