// SYS_Text.cpp - text style, text attributes and text items.
#include "SYS_Text.h"

SYS_TextStyle::SYS_TextStyle() : m_Height(0), m_Width(0) {}
SYS_TextStyle::SYS_TextStyle(const SYS_TextStyle& other) = default;
SYS_TextStyle& SYS_TextStyle::operator=(const SYS_TextStyle& other) = default;
SYS_TextStyle::~SYS_TextStyle() = default;

int SYS_TextStyle::SetFont(const SYS_StringBase& f) {
    m_Font = f;
    return 1;
}

int SYS_TextStyle::SetHeight(long h) {
    m_Height = static_cast<int32_t>(h);
    return 1;
}

int SYS_TextStyle::SetWidth(long w) {
    m_Width = static_cast<int32_t>(w);
    return 1;
}

SYS_TextAttributes::SYS_TextAttributes() : m_Style(nullptr) {}
SYS_TextAttributes::SYS_TextAttributes(const SYS_TextAttributes& other) = default;
SYS_TextAttributes& SYS_TextAttributes::operator=(const SYS_TextAttributes& other) = default;

int SYS_TextAttributes::SetStyle(const SYS_TextStyle& s) {
    m_Style = &s;
    return 1;
}

int SYS_TextAttributes::SetPosition(const SYS_Position& p) {
    m_Position = p; // a plain copy: the setters of SYS_Position would reduce the orientation
    return 1;
}

SYS_Text::SYS_Text() = default;
SYS_Text::SYS_Text(const SYS_Text& other) = default;
SYS_Text& SYS_Text::operator=(const SYS_Text& other) = default;
SYS_Text::~SYS_Text() = default;

int SYS_Text::SetString(const SYS_StringBase& s) {
    m_Text = s;
    return 1;
}
