/// @file
/// TR: texts of the library's resource string table.
///
/// The library carries 125 numbered texts (listed with their numbers in
/// docs/resource-texts.md): file failure messages 250-256 and texts for the
/// library and its host 45000-45117.  A number keeps its text.  TR(number)
/// returns the text stored under that number, TR(text) passes a literal
/// through, so callers can take a text from either source the same way.
/// Texts with a '%%' are printf-style formats, to be filled with
/// SYS_StringBase::Format or FormattedString.  Each call costs a table
/// look-up (O(log n)) and a copy of the text.
#ifndef SYS_RESOURCE_H
#define SYS_RESOURCE_H

#include "SYS_String.h"

/// A copy of the text stored under `id` (at most 1,023 bytes), or an empty
/// string when the table has none (1, or 45118, for example).
KEEL_API SYS_StringBase TR(int id);
/// A copy of `text` itself; null gives an empty string.
KEEL_API SYS_StringBase TR(const char* text);

#endif // SYS_RESOURCE_H
