// SYS_Text.h - the data of a placed text: style, attributes and the item.
//
// SYS_TextStyle names a font and a character size; SYS_TextAttributes refers
// to a style owned elsewhere and places the text with a position; SYS_Text
// adds the string.  Plain value classes: copies are deep except for the
// style, which is shared by pointer.  No layout is done here.  Every setter
// stores its value unchecked and returns 1.
#ifndef SYS_TEXT_H
#define SYS_TEXT_H

#include "SYS_Geom.h"
#include "SYS_String.h"
#include "keel_config.h"

#include <cstdint>

// Font name and character height and width in database units.
class KEEL_API SYS_TextStyle {
public:
    SYS_TextStyle();
    SYS_TextStyle(const SYS_TextStyle& other);
    SYS_TextStyle& operator=(const SYS_TextStyle& other);
    ~SYS_TextStyle();

    SYS_StringBase GetFont() const { return m_Font; }
    int SetFont(const SYS_StringBase& f);
    long GetHeight() const { return m_Height; }
    long GetWidth() const { return m_Width; }
    // A long keeps its low 32 bits.
    int SetHeight(long h);
    int SetWidth(long w);

    SYS_StringBase m_Font;
    int32_t m_Height;
    int32_t m_Width;
};

// A reference to a style (not owned, may be null) and a placement.
class KEEL_API SYS_TextAttributes {
public:
    SYS_TextAttributes();
    SYS_TextAttributes(const SYS_TextAttributes& other);
    SYS_TextAttributes& operator=(const SYS_TextAttributes& other);

    const SYS_TextStyle* GetStyle() const { return m_Style; }
    // Keeps the address of `s`: the caller keeps `s` alive meanwhile.
    int SetStyle(const SYS_TextStyle& s);
    SYS_Position GetPosition() const { return m_Position; }
    // Stores the fields exactly as given; the orientation is not reduced.
    int SetPosition(const SYS_Position& p);

    const SYS_TextStyle* m_Style;
    SYS_Position m_Position;
};

// A text item: its attributes and its string.
class KEEL_API SYS_Text : public SYS_TextAttributes {
public:
    SYS_Text();
    SYS_Text(const SYS_Text& other);
    SYS_Text& operator=(const SYS_Text& other);
    ~SYS_Text();

    SYS_StringBase GetString() const { return m_Text; }
    int SetString(const SYS_StringBase& s);

    SYS_StringBase m_Text;
};

#endif // SYS_TEXT_H
